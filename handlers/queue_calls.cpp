// Queue calls: ZKOPEN, ZKCLOSE, ZKPUT1, ZKPUT, ZKGET (and its data-conversion
// point). A call on a queue that TargetQueue does not select is not
// written, only counted. ZKINQ and ZKSET are in inquire_calls.cpp.
#include <string.h>

#include "exit/handle_list.h"
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"
#include "handlers/topic_string.h"
#include "output/trace_file.h"
#include "text/string_utils.h"

namespace {

// The name a ZKOPEN is matched and remembered under.
void OpenNameOf(const ZKOD *od, char *name49) {
  memset(name49, 0, 49);
  if (od == nullptr) {
    return;
  }
  if (od->ObjectType == ZKOT_Q_MGR) {
    strcpy(name49, "(queue_manager)");
  } else if (od->Version >= 2 && od->RecsPresent >= 1) {
    strcpy(name49, "(distribution_list)");
  } else {
    memcpy(name49, od->ObjectName, strnlen(od->ObjectName, 48));
  }
  StringTrim(name49);
}

// After ZKOPEN, even when the call is not traced: the new handle gets its
// entry, or the entry of a failed open goes.
void KeepOpenedHandle(PZKAXP axp, const ZKOD *od, const ZKHOBJ *pHobj, const ZKLONG *pCompCode) {
  ExitControlBlock *cb = HandlerControlBlock(axp);
  if (cb == nullptr || cb->Handles.HandleCount < 1) {
    return;
  }
  if (pCompCode != nullptr && *pCompCode == ZKCC_FAILED) {
    queueHandleListDeleteLastEntry(cb);
    return;
  }
  char resolved[200] = "";
  if (od != nullptr) {
    if (od->ObjectType == ZKOT_TOPIC && od->Version >= 4) {
      SetTopicString(cb, od->ObjectName, &od->ObjectString, od, resolved, sizeof resolved);
    } else {
      memcpy(resolved, od->ObjectName, 48);
      resolved[48] = '\0';
      StringTrim(resolved);
    }
  }
  char asOpened[49];
  memcpy(asOpened, cb->Handles.HandleList[cb->Handles.HandleCount - 1].QueueName, sizeof asOpened);
  queueHandleListSetHandleToLastEntry(cb, pHobj != nullptr ? *pHobj : 0, asOpened, resolved);
}

// ZKPUT1 has no handle: it is selected only by an exact TargetQueue name
// with the put flag (a wildcard entry never selects it).
void SelectPut1(HandlerCall *call) {
  ExitControlBlock *cb = call->Cb;
  const ZKOD *od = (const ZKOD *)call->Data;
  memset(cb->Call.CurrentQueueName, 0, sizeof cb->Call.CurrentQueueName);
  if (od != nullptr) {
    memcpy(cb->Call.CurrentQueueName, od->ObjectName, strnlen(od->ObjectName, 48));
  }
  StringTrim(cb->Call.CurrentQueueName);
  if (cb->Settings.TargetQueueCount == 0) {
    cb->Call.QueueSelected = 1;
    return;
  }
  cb->Call.QueueSelected = 0;
  for (int32_t i = 0; i < cb->Settings.TargetQueueCount; i++) {
    const TargetQueueEntry &entry = cb->Settings.TargetQueue[i];
    if (strcmp(entry.QueueName, cb->Call.CurrentQueueName) == 0 && entry.P == 1) {
      cb->Call.QueueSelected = 1;
      return;
    }
  }
}

void TraceQueueCall(HandlerCall *call, bool before) {
  call->QueueCall = 1;
  if (before) {
    if (HandlerBefore(call) == RC_OK) {
      HandlerBeforeEnd(call);
    }
  } else if (HandlerAfter(call) == RC_OK) {
    HandlerAfterEnd(call);
  }
}

} // namespace

void OpenBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKOD ppObjDesc, PZKLONG, PPZKHOBJ,
                PZKLONG pCompCode, PZKLONG pReason) {
  char name[49];
  OpenNameOf(Deref(ppObjDesc), name);
  HandlerCall call = {axp, pCompCode, pReason};
  call.ObjectName = name;
  TraceQueueCall(&call, true);
}

void OpenAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKOD ppObjDesc, PZKLONG, PPZKHOBJ ppHobj,
               PZKLONG pCompCode, PZKLONG pReason) {
  KeepOpenedHandle(axp, Deref(ppObjDesc), Deref(ppHobj), pCompCode);
  HandlerCall call = {axp, pCompCode, pReason};
  TraceQueueCall(&call, false);
}

void CloseBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKHOBJ ppHobj, PZKLONG, PZKLONG pCompCode,
                 PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, Deref(ppHobj)};
  call.QueueCall = 1;
  int32_t result = HandlerBefore(&call);
  // In summary-only mode a close still flushes when asked to after each call.
  if (result == RC_OK || result == HANDLER_SUMMARY_ONLY) {
    HandlerBeforeEnd(&call);
  }
}

void CloseAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKHOBJ ppHobj, PZKLONG, PZKLONG pCompCode,
                PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, Deref(ppHobj)};
  TraceQueueCall(&call, false);
}

void Put1Before(PZKAXP axp, PZKAXC, PZKHCONN, PPZKOD ppObjDesc, PPZKMD, PPZKPMO, PZKLONG, PPZKVOID,
                PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  call.AfterPreProcess = SelectPut1;
  call.Data = Deref(ppObjDesc);
  TraceQueueCall(&call, true);
}

void Put1After(PZKAXP axp, PZKAXC, PZKHCONN, PPZKOD, PPZKMD ppMsgDesc, PPZKPMO,
               PZKLONG pBufferLength, PPZKVOID, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  call.Md = Deref(ppMsgDesc);
  call.MsgLength = pBufferLength != nullptr ? *pBufferLength : -1;
  TraceQueueCall(&call, false);
}

void PutBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PPZKMD, PPZKPMO, PZKLONG, PPZKVOID,
               PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  TraceQueueCall(&call, true);
}

void PutAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PPZKMD ppMsgDesc, PPZKPMO,
              PZKLONG pBufferLength, PPZKVOID, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.Md = Deref(ppMsgDesc);
  call.MsgLength = pBufferLength != nullptr ? *pBufferLength : -1;
  TraceQueueCall(&call, false);
}

// Also the data-conversion point of ZKGET, which keeps the get's names.
void GetBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PPZKMD, PPZKGMO, PZKLONG, PPZKVOID,
               PPZKLONG, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  TraceQueueCall(&call, true);
}

void GetAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PPZKMD ppMsgDesc, PPZKGMO, PZKLONG,
              PPZKVOID, PPZKLONG ppDataLength, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.Md = Deref(ppMsgDesc);
  const ZKLONG *pDataLength = Deref(ppDataLength);
  call.MsgLength = pDataLength != nullptr ? *pDataLength : -1;
  TraceQueueCall(&call, false);
}
