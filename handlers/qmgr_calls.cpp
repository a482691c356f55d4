// Connection and unit-of-work calls: ZKCONN, ZKCONNX, ZKDISC, ZKBEGIN, ZKCMIT,
// ZKBACK. None of them has a queue step: they are traced whenever the
// connection is.
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"

void ConnBefore(PZKAXP axp, PZKAXC, PZKCHAR, PPZKCNO, PPZKHCONN, PZKLONG pCompCode,
                PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void ConnAfter(PZKAXP axp, PZKAXC, PZKCHAR, PPZKCNO, PPZKHCONN, PZKLONG pCompCode,
               PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void ConnxBefore(PZKAXP axp, PZKAXC, PZKCHAR, PPZKCNO, PPZKHCONN, PZKLONG pCompCode,
                 PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void ConnxAfter(PZKAXP axp, PZKAXC, PZKCHAR, PPZKCNO, PPZKHCONN, PZKLONG pCompCode,
                PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void DiscBefore(PZKAXP axp, PZKAXC, PPZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void DiscAfter(PZKAXP axp, PZKAXC, PPZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void BeginBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKBO, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void BeginAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKBO, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void CmitBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void CmitAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void BackBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void BackAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}
