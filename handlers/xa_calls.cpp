// Transaction-manager calls: xa_* and ax_*. They skip the dispatcher (the
// only switch for them is ShowXaCalls at start-up) and time themselves in a
// slot of their own. Their records show the call's arguments: the XID, rmid
// and flags, the xa_info string of open and close, the handle and retval of
// xa_complete; after the call the XIDs that xa_recover and ax_reg return.
#include <string.h>

#include "handlers/handler_shape.h"
#include "handlers/handlers.h"
#include "handlers/xa_fields.h"
#include "output/trace_text.h"
#include "zk/zkxa.h"

namespace {

// The longest xa_info string shown: the XA limit of an open string.
#define XA_INFO_SHOWN_MAX 256
// The most XIDs of one xa_recover shown.
#define XA_RECOVER_SHOWN_MAX 1000

void PutRmidAndFlags(ExitControlBlock *cb, const ZKLONG *pRmid, const ZKLONG *pFlags) {
  PutUnsignedLine(cb, "rmid:", pRmid);
  ShowXaFlags(cb, pFlags);
}

// "xa_info:" and the string in double quotes, as 7-bit text, or "(null)".
void PutXaInfoLine(ExitControlBlock *cb, const char *info) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&line, "xa_info:");
  if (info == nullptr) {
    TraceTextAppendLiteral(&line, "(null)");
  } else {
    TraceTextAppendChar(&line, '"');
    TraceTextAppendSevenBit(&line, info, (int32_t)strnlen(info, XA_INFO_SHOWN_MAX));
    TraceTextAppendChar(&line, '"');
  }
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

// A before-record: the header, the connection handle (not for ax_reg and
// ax_unreg), then the call's arguments by `lines`.
template <typename Lines>
void XaBefore(PZKAXP axp, const ZKHCONN *pHconn, bool handleLine, Lines lines) {
  HandlerCall call = {axp};
  if (XaHandlerBefore(&call) != RC_OK) {
    return;
  }
  if (handleLine) {
    PutHconnLine(call.Cb, pHconn);
  }
  lines(call.Cb);
  HandlerBeforeEnd(&call);
}

template <typename Lines> void XaAfter(PZKAXP axp, const ZKLONG *pXaRetCode, Lines lines) {
  HandlerCall call = {axp, pXaRetCode, pXaRetCode};
  if (XaHandlerAfter(&call) == RC_OK) {
    lines(call.Cb);
    HandlerAfterEnd(&call);
  }
}

void NoLines(ExitControlBlock *) {}

// xa_start, xa_end, xa_prepare, xa_commit, xa_rollback, xa_forget.
void XaCommonUowBefore(PZKAXP axp, const ZKHCONN *pHconn, const void *xid, const ZKLONG *pRmid,
                       const ZKLONG *pFlags) {
  XaBefore(axp, pHconn, true, [&](ExitControlBlock *cb) {
    XaShowXid(cb, xid);
    PutRmidAndFlags(cb, pRmid, pFlags);
  });
}

// xa_open, xa_close.
void XaCommonOpenCloseBefore(PZKAXP axp, const ZKHCONN *pHconn, const char *info,
                             const ZKLONG *pRmid, const ZKLONG *pFlags) {
  XaBefore(axp, pHconn, true, [&](ExitControlBlock *cb) {
    PutXaInfoLine(cb, info);
    PutRmidAndFlags(cb, pRmid, pFlags);
  });
}

void XaCommonAfter(PZKAXP axp, const ZKLONG *pXaRetCode) {
  XaAfter(axp, pXaRetCode, NoLines);
}

// The XIDs xa_recover returned: as many as its return code says, never more
// than the array holds (the count it was given).
void ShowRecoveredXids(ExitControlBlock *cb, const void *xids, const ZKLONG *pCount,
                       const ZKLONG *pXaRetCode) {
  if (xids == nullptr || pCount == nullptr || pXaRetCode == nullptr || *pXaRetCode <= 0) {
    return;
  }
  int32_t shown = *pXaRetCode < *pCount ? *pXaRetCode : *pCount;
  if (shown > XA_RECOVER_SHOWN_MAX) {
    shown = XA_RECOVER_SHOWN_MAX;
  }
  const char *xid = (const char *)xids;
  for (int32_t i = 0; i < shown; i++) {
    xid += XaShowXid(cb, xid);
  }
}

} // namespace

void XaOpenBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKCHAR ppXaInfo, PZKLONG pRmid,
                  PZKLONG pFlags, PZKLONG) {
  XaCommonOpenCloseBefore(axp, pHconn, Deref(ppXaInfo), pRmid, pFlags);
}

void XaOpenAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKCHAR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  XaCommonAfter(axp, pXaRetCode);
}

void XaCloseBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKCHAR ppXaInfo, PZKLONG pRmid,
                   PZKLONG pFlags, PZKLONG) {
  XaCommonOpenCloseBefore(axp, pHconn, Deref(ppXaInfo), pRmid, pFlags);
}

void XaCloseAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKCHAR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  XaCommonAfter(axp, pXaRetCode);
}

#define XA_UOW_CALL(Before, After)                                                                 \
  void Before(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKPTR ppXid, PZKLONG pRmid, PZKLONG pFlags,    \
              PZKLONG) {                                                                           \
    XaCommonUowBefore(axp, pHconn, Deref(ppXid), pRmid, pFlags);                                   \
  }                                                                                                \
  void After(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {         \
    XaCommonAfter(axp, pXaRetCode);                                                                \
  }

XA_UOW_CALL(XaStartBefore, XaStartAfter)
XA_UOW_CALL(XaEndBefore, XaEndAfter)
XA_UOW_CALL(XaPrepareBefore, XaPrepareAfter)
XA_UOW_CALL(XaCommitBefore, XaCommitAfter)
XA_UOW_CALL(XaRollbackBefore, XaRollbackAfter)
XA_UOW_CALL(XaForgetBefore, XaForgetAfter)

void XaCompleteBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKLONG ppHandle, PPZKLONG ppRetval,
                      PZKLONG pRmid, PZKLONG pFlags, PZKLONG) {
  XaBefore(axp, pHconn, true, [&](ExitControlBlock *cb) {
    PutUnsignedLine(cb, "handle:", Deref(ppHandle));
    PutUnsignedLine(cb, "retval:", Deref(ppRetval));
    PutRmidAndFlags(cb, pRmid, pFlags);
  });
}

void XaCompleteAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKLONG ppHandle, PPZKLONG ppRetval, PZKLONG,
                     PZKLONG, PZKLONG pXaRetCode) {
  XaAfter(axp, pXaRetCode, [&](ExitControlBlock *cb) {
    PutUnsignedLine(cb, "handle:", Deref(ppHandle));
    PutUnsignedLine(cb, "retval:", Deref(ppRetval));
  });
}

// The count of xa_recover is shown under the label "handle:", as the
// records of this call always have.
void XaRecoverBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKPTR, PZKLONG pCount, PZKLONG pRmid,
                     PZKLONG pFlags, PZKLONG) {
  XaBefore(axp, pHconn, true, [&](ExitControlBlock *cb) {
    PutUnsignedLine(cb, "handle:", pCount);
    PutRmidAndFlags(cb, pRmid, pFlags);
  });
}

void XaRecoverAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKPTR ppXids, PZKLONG pCount, PZKLONG, PZKLONG,
                    PZKLONG pXaRetCode) {
  XaAfter(axp, pXaRetCode,
          [&](ExitControlBlock *cb) { ShowRecoveredXids(cb, Deref(ppXids), pCount, pXaRetCode); });
}

void AxRegBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pRmid, PZKPTR, PZKLONG pFlags,
                 PZKLONG) {
  XaBefore(axp, pHconn, false, [&](ExitControlBlock *cb) { PutRmidAndFlags(cb, pRmid, pFlags); });
}

void AxRegAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PZKPTR ppXid, PZKLONG, PZKLONG pXaRetCode) {
  XaAfter(axp, pXaRetCode, [&](ExitControlBlock *cb) { XaShowXid(cb, Deref(ppXid)); });
}

void AxUnregBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pRmid, PZKLONG pFlags, PZKLONG) {
  XaBefore(axp, pHconn, false, [&](ExitControlBlock *cb) { PutRmidAndFlags(cb, pRmid, pFlags); });
}

void AxUnregAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PZKLONG, PZKLONG pXaRetCode) {
  XaCommonAfter(axp, pXaRetCode);
}
