// Transaction-manager calls: xa_* and ax_*.
// They skip the dispatcher: the only switch for them is ShowXaCalls at start-up.
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"

void XaCloseBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKCHAR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaCloseAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKCHAR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaCommitBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaCommitAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaCompleteBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKLONG, PPZKLONG, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaCompleteAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKLONG, PPZKLONG, PZKLONG, PZKLONG,
                     PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaEndBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaEndAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaForgetBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaForgetAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaOpenBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKCHAR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaOpenAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKCHAR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaPrepareBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaPrepareAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaRecoverBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaRecoverAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG,
                    PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaRollbackBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaRollbackAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void XaStartBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void XaStartAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void AxRegBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PZKPTR, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void AxRegAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PZKPTR, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}

void AxUnregBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PZKLONG, PZKLONG) {
  TraceXaCallBefore(axp);
}

void AxUnregAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  TraceXaCallAfter(axp, pXaRetCode);
}
