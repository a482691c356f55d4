// Queue calls: ZKOPEN, ZKCLOSE, ZKPUT1, ZKPUT, ZKGET (and its data-conversion
// point). A call on a queue that TargetQueue does not select is not
// written, only counted. ZKINQ and ZKSET are in inquire_calls.cpp.
#include <string.h>

#include "exit/handle_list.h"
#include "handlers/handler_shape.h"
#include "format/structures.h"
#include "handlers/handlers.h"
#include "handlers/short_dumps.h"
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
  // Only the entry the before-call added is completed or taken back: when
  // the list could not grow there is none, and the last entry is another
  // handle's.
  if (cb == nullptr || cb->Handles.HandleCount < 1 || !cb->Call.OpenEntryAdded) {
    return;
  }
  cb->Call.OpenEntryAdded = 0;
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

bool Parsed(const ExitControlBlock *cb) {
  return cb->Settings.ShowParsedData == 1;
}

bool Failed(const ZKLONG *pCompCode) {
  return pCompCode != nullptr && *pCompCode == ZKCC_FAILED;
}

// The handle lines and the names that open the before-records of the calls
// made through an object handle.
void PutHandlesAndNames(ExitControlBlock *cb, const ZKHCONN *pHconn, const ZKHOBJ *pHobj) {
  PutHconnLine(cb, pHconn);
  PutHobjLine(cb, pHobj);
  PutObjectNameLines(cb);
}

// The message data a get returned: "DataLength:" with the length of the
// message, then as much of it as the application received (the buffer
// length bounds it when the message was truncated).
void PutGetData(ExitControlBlock *cb, const ZKMD *const *ppMsgDesc, const ZKLONG *pBufferLength,
                const void *const *ppBuffer, const ZKLONG *pDataLength) {
  if (pDataLength == nullptr) {
    return;
  }
  PutDecimalLine(cb, "DataLength:", pDataLength);
  int32_t received =
      pBufferLength != nullptr && *pBufferLength < *pDataLength ? *pBufferLength : *pDataLength;
  if (pBufferLength == nullptr) {
    received = 0; // how much of the buffer is there cannot be known
  }
  ShowMsgContent(cb, ppMsgDesc, ppBuffer, received, cb->Settings.ShowMaxLenGet);
}

// The message a put hands over: its descriptor, its put options, the
// buffer length and the data (no more of it dumped than ShowMaxLenPut).
void PutMessageLines(ExitControlBlock *cb, const PPZKMD ppMsgDesc, const PPZKPMO ppPutMsgOpts,
                     const ZKLONG *pBufferLength, const PPZKVOID ppBuffer) {
  ShowZKMD(cb, Deref(ppMsgDesc));
  ShowZKPMO(cb, Deref(ppPutMsgOpts));
  PutDecimalLine(cb, "BufferLength:", pBufferLength);
  if (pBufferLength != nullptr) {
    ShowMsgContent(cb, ppMsgDesc, (const void *const *)ppBuffer, *pBufferLength,
                   cb->Settings.ShowMaxLenPut);
  }
}

// A before-record of the queue step's calls: the header record, then the
// call's lines by `lines`.
template <typename Lines> void QueueBefore(HandlerCall *call, Lines lines) {
  call->QueueCall = 1;
  if (HandlerBefore(call) == RC_OK) {
    lines(call->Cb);
    HandlerBeforeEnd(call);
  }
}

template <typename Lines> void QueueAfter(HandlerCall *call, Lines lines) {
  call->QueueCall = 1;
  if (HandlerAfter(call) == RC_OK) {
    lines(call->Cb);
    HandlerAfterEnd(call);
  }
}

} // namespace

void OpenBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKOD ppObjDesc, PZKLONG pOptions, PPZKHOBJ,
                PZKLONG pCompCode, PZKLONG pReason) {
  const ZKOD *od = Deref(ppObjDesc);
  char name[49];
  OpenNameOf(od, name);
  HandlerCall call = {axp, pCompCode, pReason};
  call.ObjectName = name;
  QueueBefore(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    ShowZKOD(cb, od);
    PutObjectNameLines(cb);
    PutOptionsLine(cb, pOptions);
    if (Parsed(cb) && pOptions != nullptr) {
      ShowParsedZkoo(cb, *pOptions);
    }
  });
}

void OpenAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKOD ppObjDesc, PZKLONG, PPZKHOBJ ppHobj,
               PZKLONG pCompCode, PZKLONG pReason) {
  const ZKOD *od = Deref(ppObjDesc);
  KeepOpenedHandle(axp, od, Deref(ppHobj), pCompCode);
  HandlerCall call = {axp, pCompCode, pReason};
  QueueAfter(&call, [&](ExitControlBlock *cb) {
    ShowZKOD(cb, od);
    // A failed open resolved to nothing: its entry is gone.
    if (Failed(pCompCode)) {
      cb->Call.ResolvedQueueName[0] = '\0';
    }
    PutObjectNameLines(cb);
    PutHobjLine(cb, Deref(ppHobj));
  });
}

void CloseBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKHOBJ ppHobj, PZKLONG pOptions,
                 PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, Deref(ppHobj)};
  call.QueueCall = 1;
  int32_t result = HandlerBefore(&call);
  if (result == RC_OK) {
    ExitControlBlock *cb = call.Cb;
    PutHandlesAndNames(cb, pHconn, Deref(ppHobj));
    PutOptionsLine(cb, pOptions);
    if (Parsed(cb) && pOptions != nullptr) {
      ShowParsedZkco(cb, *pOptions);
    }
  }
  // In summary-only mode a close still flushes when asked to after each call.
  if (result == RC_OK || result == HANDLER_SUMMARY_ONLY) {
    HandlerBeforeEnd(&call);
  }
}

void CloseAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKHOBJ ppHobj, PZKLONG, PZKLONG pCompCode,
                PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, Deref(ppHobj)};
  QueueAfter(&call, [&](ExitControlBlock *cb) { PutHobjLine(cb, Deref(ppHobj)); });
}

void Put1Before(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKOD ppObjDesc, PPZKMD ppMsgDesc,
                PPZKPMO ppPutMsgOpts, PZKLONG pBufferLength, PPZKVOID ppBuffer, PZKLONG pCompCode,
                PZKLONG pReason) {
  const ZKOD *od = Deref(ppObjDesc);
  HandlerCall call = {axp, pCompCode, pReason};
  call.AfterPreProcess = SelectPut1;
  call.Data = od;
  QueueBefore(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    ShowZKOD(cb, od);
    PutObjectNameLines(cb);
    PutMessageLines(cb, ppMsgDesc, ppPutMsgOpts, pBufferLength, ppBuffer);
  });
}

void Put1After(PZKAXP axp, PZKAXC, PZKHCONN, PPZKOD ppObjDesc, PPZKMD ppMsgDesc,
               PPZKPMO ppPutMsgOpts, PZKLONG pBufferLength, PPZKVOID, PZKLONG pCompCode,
               PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  call.Md = Deref(ppMsgDesc);
  call.MsgLength = pBufferLength != nullptr ? *pBufferLength : -1;
  QueueAfter(&call, [&](ExitControlBlock *cb) {
    ShowZKOD(cb, Deref(ppObjDesc));
    PutObjectNameLines(cb);
    ShowZKMD(cb, Deref(ppMsgDesc));
    ShowZKPMO(cb, Deref(ppPutMsgOpts));
  });
}

void PutBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKHOBJ pHobj, PPZKMD ppMsgDesc,
               PPZKPMO ppPutMsgOpts, PZKLONG pBufferLength, PPZKVOID ppBuffer, PZKLONG pCompCode,
               PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  QueueBefore(&call, [&](ExitControlBlock *cb) {
    PutHandlesAndNames(cb, pHconn, pHobj);
    PutMessageLines(cb, ppMsgDesc, ppPutMsgOpts, pBufferLength, ppBuffer);
  });
}

void PutAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PPZKMD ppMsgDesc, PPZKPMO ppPutMsgOpts,
              PZKLONG pBufferLength, PPZKVOID, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.Md = Deref(ppMsgDesc);
  call.MsgLength = pBufferLength != nullptr ? *pBufferLength : -1;
  QueueAfter(&call, [&](ExitControlBlock *cb) {
    ShowZKMD(cb, Deref(ppMsgDesc));
    ShowZKPMO(cb, Deref(ppPutMsgOpts));
  });
}

// Also the data-conversion point of ZKGET, which keeps the get's names and
// shows the message as it stands before conversion.
void GetBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKHOBJ pHobj, PPZKMD ppMsgDesc,
               PPZKGMO ppGetMsgOpts, PZKLONG pBufferLength, PPZKVOID ppBuffer,
               PPZKLONG ppDataLength, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  bool conversion = axp != nullptr && axp->Function == ZKXF_DATA_CONV_ON_GET;
  QueueBefore(&call, [&](ExitControlBlock *cb) {
    if (conversion) {
      // The header record of a before-call carries no codes.
      PutDecimalLine(cb, "CompCode:", pCompCode);
      PutDecimalLine(cb, "Reason:", pReason);
    }
    PutHandlesAndNames(cb, pHconn, pHobj);
    const ZKGMO *gmo = Deref(ppGetMsgOpts);
    ShowZKMD(cb, Deref(ppMsgDesc));
    ShowZKGMO(cb, gmo, axp->ExitReason, pCompCode != nullptr ? *pCompCode : 0);
    if (gmo != nullptr && (gmo->Options & ZKGMO_WAIT) != 0) {
      PutDecimalLine(cb, "WaitInterval:", &gmo->WaitInterval);
    }
    if (!conversion) {
      PutDecimalLine(cb, "BufferLength:", pBufferLength);
    } else if (!Failed(pCompCode)) {
      PutGetData(cb, ppMsgDesc, pBufferLength, (const void *const *)ppBuffer, Deref(ppDataLength));
    }
  });
}

void GetAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PPZKMD ppMsgDesc, PPZKGMO ppGetMsgOpts,
              PZKLONG pBufferLength, PPZKVOID ppBuffer, PPZKLONG ppDataLength, PZKLONG pCompCode,
              PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.Md = Deref(ppMsgDesc);
  const ZKLONG *pDataLength = Deref(ppDataLength);
  call.MsgLength = pDataLength != nullptr ? *pDataLength : -1;
  QueueAfter(&call, [&](ExitControlBlock *cb) {
    ShowZKMD(cb, Deref(ppMsgDesc));
    ShowZKGMO(cb, Deref(ppGetMsgOpts), axp->ExitReason, pCompCode != nullptr ? *pCompCode : 0);
    if (!Failed(pCompCode)) {
      PutGetData(cb, ppMsgDesc, pBufferLength, (const void *const *)ppBuffer, pDataLength);
    }
  });
}
