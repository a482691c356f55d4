// Connection and unit-of-work calls: ZKCONN, ZKCONNX, ZKDISC, ZKBEGIN, ZKCMIT,
// ZKBACK. None of them has a queue step: they are traced whenever the
// connection is. Each record holds the header record, then the call's own
// lines: the queue manager name, the connection handle, the connect or
// begin options.
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"
#include "handlers/short_dumps.h"
#include "output/trace_text.h"

namespace {

// "QMgrName:" and the name parameter: its first 48 bytes, ending early at a
// NUL, trailing blanks kept; a byte that is not printable 7-bit text is
// written as ".", so that a name cannot break the line. No line when the
// name cannot be read.
void PutQMgrNameLine(ExitControlBlock *cb, const char *name) {
  if (name == nullptr) {
    return;
  }
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&line, "QMgrName:");
  TraceTextAppendSevenBit(&line, name, ZK_Q_MGR_NAME_LENGTH);
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

// The before-record of ZKCONN and ZKCONNX: the name, and for ZKCONNX the
// connect options.
void ConnectBefore(PZKAXP axp, const char *name, const ZKCNO *cno, bool extended,
                   const ZKLONG *pCompCode, const ZKLONG *pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerBefore(&call) != RC_OK) {
    return;
  }
  PutQMgrNameLine(call.Cb, name);
  if (extended) {
    ShowZKCNO(call.Cb, cno);
  }
  HandlerBeforeEnd(&call);
}

// The after-record of ZKCONN and ZKCONNX: the handle returned, and for
// ZKCONNX the connect options as the queue manager left them.
void ConnectAfter(PZKAXP axp, const ZKHCONN *hconn, const ZKCNO *cno, bool extended,
                  const ZKLONG *pCompCode, const ZKLONG *pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerAfter(&call) != RC_OK) {
    return;
  }
  PutHconnLine(call.Cb, hconn);
  if (extended) {
    ShowZKCNO(call.Cb, cno);
  }
  HandlerAfterEnd(&call);
}

// A record of the header and the connection handle only.
void HandleBefore(PZKAXP axp, const ZKHCONN *hconn, const ZKLONG *pCompCode,
                  const ZKLONG *pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerBefore(&call) == RC_OK) {
    PutHconnLine(call.Cb, hconn);
    HandlerBeforeEnd(&call);
  }
}

} // namespace

// ZKCONN passes connect options too (as the queue manager builds them);
// its records do not show them.
void ConnBefore(PZKAXP axp, PZKAXC, PZKCHAR pQMgrName, PPZKCNO, PPZKHCONN, PZKLONG pCompCode,
                PZKLONG pReason) {
  ConnectBefore(axp, pQMgrName, nullptr, false, pCompCode, pReason);
}

void ConnAfter(PZKAXP axp, PZKAXC, PZKCHAR, PPZKCNO, PPZKHCONN ppHconn, PZKLONG pCompCode,
               PZKLONG pReason) {
  ConnectAfter(axp, Deref(ppHconn), nullptr, false, pCompCode, pReason);
}

void ConnxBefore(PZKAXP axp, PZKAXC, PZKCHAR pQMgrName, PPZKCNO ppConnectOpts, PPZKHCONN,
                 PZKLONG pCompCode, PZKLONG pReason) {
  ConnectBefore(axp, pQMgrName, Deref(ppConnectOpts), true, pCompCode, pReason);
}

void ConnxAfter(PZKAXP axp, PZKAXC, PZKCHAR, PPZKCNO ppConnectOpts, PPZKHCONN ppHconn,
                PZKLONG pCompCode, PZKLONG pReason) {
  ConnectAfter(axp, Deref(ppHconn), Deref(ppConnectOpts), true, pCompCode, pReason);
}

void DiscBefore(PZKAXP axp, PZKAXC, PPZKHCONN ppHconn, PZKLONG pCompCode, PZKLONG pReason) {
  HandleBefore(axp, Deref(ppHconn), pCompCode, pReason);
}

// After a successful disconnect the handle is the value the queue manager
// set in place of the application's.
void DiscAfter(PZKAXP axp, PZKAXC, PPZKHCONN ppHconn, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerAfter(&call) == RC_OK) {
    PutHconnLine(call.Cb, Deref(ppHconn));
    HandlerAfterEnd(&call);
  }
}

void BeginBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKBO ppBeginOptions, PZKLONG pCompCode,
                 PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerBefore(&call) == RC_OK) {
    PutHconnLine(call.Cb, pHconn);
    ShowZKBO(call.Cb, Deref(ppBeginOptions));
    HandlerBeforeEnd(&call);
  }
}

// The begin options as returned; the handle is not repeated.
void BeginAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKBO ppBeginOptions, PZKLONG pCompCode,
                PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerAfter(&call) == RC_OK) {
    ShowZKBO(call.Cb, Deref(ppBeginOptions));
    HandlerAfterEnd(&call);
  }
}

void CmitBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pCompCode, PZKLONG pReason) {
  HandleBefore(axp, pHconn, pCompCode, pReason);
}

void CmitAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void BackBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pCompCode, PZKLONG pReason) {
  HandleBefore(axp, pHconn, pCompCode, pReason);
}

void BackAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}
