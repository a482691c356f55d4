// Subscription, status, control and callback calls: ZKSTAT, ZKSUB, ZKSUBRQ,
// ZKCTL, ZKCB and the message-consumer callback.
#include <string.h>

#include "exit/handle_list.h"
#include "format/v7_structures.h"
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"
#include "handlers/short_dumps.h"
#include "handlers/topic_string.h"
#include "handlers/v7_dumps.h"
#include "output/record_writers.h"
#include "output/trace_text.h"
#include "text/string_utils.h"

namespace {

// Registrations are always written, whatever the queue's selection.
void SelectAlways(HandlerCall *call) {
  call->Cb->Call.QueueSelected = 1;
}

// A delivered message is named by the queue it came from: the alias it was
// opened under when there is one, else its resolved name.
void NameCallbackQueue(HandlerCall *call) {
  ExitControlBlock *cb = call->Cb;
  const ZKGMO *gmo = (const ZKGMO *)call->Data;
  memset(cb->Call.CurrentQueueName, 0, sizeof cb->Call.CurrentQueueName);
  memset(cb->Call.ResolvedQueueName, 0, sizeof cb->Call.ResolvedQueueName);
  if (gmo == nullptr) {
    return;
  }
  StringCopyFixedField(cb->Call.ResolvedQueueName, gmo->ResolvedQName, 48);
  const char *alias = queueHandleListSearchAliasNameByRealName(cb, cb->Call.ResolvedQueueName);
  if (alias != nullptr) {
    StringCopyFixedField(cb->Call.CurrentQueueName, alias, 48);
  } else {
    memcpy(cb->Call.CurrentQueueName, cb->Call.ResolvedQueueName, sizeof cb->Call.CurrentQueueName);
    memset(cb->Call.ResolvedQueueName, 0, sizeof cb->Call.ResolvedQueueName);
  }
}

// After ZKSUB, even when the call is not traced: the subscription handle gets
// an entry named by its topic, for later ZKSUBRQ calls.
void KeepSubscriptionHandle(PZKAXP axp, const ZKSD *sd, const ZKHSUB *pHsub,
                            const ZKLONG *pCompCode) {
  ExitControlBlock *cb = HandlerControlBlock(axp);
  if (cb == nullptr || sd == nullptr || pHsub == nullptr ||
      (pCompCode != nullptr && *pCompCode == ZKCC_FAILED)) {
    return;
  }
  char topic[200];
  SetTopicString(cb, sd->ObjectName, &sd->ObjectString, sd, topic, sizeof topic);
  if (queueHandleListAddEntry(cb, "", 1, 1, 1, 1, 1, 1) == 0) {
    queueHandleListSetHandleToLastEntry(cb, *pHsub, "", topic);
  }
}

bool Parsed(const ExitControlBlock *cb) {
  return cb->Settings.ShowParsedData == 1;
}

// Looks a handle up in the queue handle list, which sets the current names:
// "(null)" for no handle (0 or -1), "(unknown)" when the list is empty, left
// as they are when the handle is not in the list. A handle that cannot be
// read counts as none.
void LookUpHandle(ExitControlBlock *cb, const ZKHOBJ *handle) {
  queueHandleListSearchEntryByHandle(cb, handle != nullptr ? *handle : 0, 1);
}

// "Hsub:0x" and the subscription handle, then "| (real name):" with the
// name of the subscription's topic that ZKSUB kept under the handle (its
// resolved name, else the name it is listed under).
void PutSubscriptionLines(ExitControlBlock *cb, const ZKHSUB *hsub) {
  PutHexLine(cb, "Hsub:0x", hsub);
  LookUpHandle(cb, hsub);
  const char *name = cb->Call.ResolvedQueueName[0] != '\0' ? cb->Call.ResolvedQueueName
                                                           : cb->Call.CurrentQueueName;
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&line, "| (real name):");
  TraceTextAppendSevenBit(&line, name, (int32_t)strnlen(name, sizeof cb->Call.CurrentQueueName));
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

// "Operation:0x" and the operation of ZKCB or ZKCTL, and its flags.
void PutOperationLines(ExitControlBlock *cb, const ZKLONG *operation) {
  PutHexLine(cb, "Operation:0x", operation);
  if (Parsed(cb) && operation != nullptr) {
    ShowParsedZkop(cb, *operation);
  }
}

// The message descriptor and get options of a registration or a delivery;
// one that is not there shows as a dump of no bytes.
void ShowDescriptorOrNothing(ExitControlBlock *cb, const ZKMD *md) {
  if (md != nullptr) {
    ShowZKMD(cb, md);
  } else {
    PutHexData(cb, "MD", nullptr, 0, HEX_MODE_PLAIN);
  }
}

void ShowGetOptionsOrNothing(ExitControlBlock *cb, const ZKGMO *gmo, int32_t exitReason,
                             int32_t compCode) {
  if (gmo != nullptr) {
    ShowZKGMO(cb, gmo, exitReason, compCode);
  } else {
    PutHexData(cb, "GMO", nullptr, 0, HEX_MODE_PLAIN);
  }
}

// The before- and after-record of a call: the header record, then the
// call's lines by `lines`.
template <typename Lines> void Before(HandlerCall *call, Lines lines) {
  if (HandlerBefore(call) == RC_OK) {
    lines(call->Cb);
    HandlerBeforeEnd(call);
  }
}

template <typename Lines> void After(HandlerCall *call, Lines lines) {
  if (HandlerAfter(call) == RC_OK) {
    lines(call->Cb);
    HandlerAfterEnd(call);
  }
}

} // namespace

void StatBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pType, PPZKSTS ppStatus,
                PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  Before(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    PutHexLine(cb, "Type:0x", pType);
    if (Parsed(cb) && pType != nullptr) {
      ShowParsedZkstatType(cb, "Type", *pType);
    }
    ShowZKSTS(cb, Deref(ppStatus));
  });
}

void StatAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKSTS ppStatus, PZKLONG pCompCode,
               PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  After(&call, [&](ExitControlBlock *cb) { ShowZKSTS(cb, Deref(ppStatus)); });
}

void SubBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKSD ppSubDesc, PPZKHOBJ ppHobj, PPZKHSUB,
               PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  Before(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    ShowZKSD(cb, Deref(ppSubDesc));
    PutHobjLine(cb, Deref(ppHobj));
    LookUpHandle(cb, Deref(ppHobj));
    PutObjectNameLines(cb);
  });
}

void SubAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKSD ppSubDesc, PPZKHOBJ ppHobj, PPZKHSUB ppHsub,
              PZKLONG pCompCode, PZKLONG pReason) {
  KeepSubscriptionHandle(axp, Deref(ppSubDesc), Deref(ppHsub), pCompCode);
  HandlerCall call = {axp, pCompCode, pReason};
  After(&call, [&](ExitControlBlock *cb) {
    ShowZKSD(cb, Deref(ppSubDesc));
    PutHobjLine(cb, Deref(ppHobj));
    LookUpHandle(cb, Deref(ppHobj));
    PutObjectNameLines(cb);
    PutSubscriptionLines(cb, Deref(ppHsub));
  });
}

void SubrqBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKHSUB pHsub, PZKLONG pAction,
                 PPZKSRO ppSubRqOpts, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  Before(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    PutSubscriptionLines(cb, pHsub);
    PutHexLine(cb, "Action:0x", pAction);
    if (Parsed(cb) && pAction != nullptr) {
      ShowParsedZksr(cb, *pAction);
    }
    ShowZKSRO(cb, Deref(ppSubRqOpts));
  });
}

void SubrqAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHSUB, PZKLONG, PPZKSRO ppSubRqOpts,
                PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  After(&call, [&](ExitControlBlock *cb) { ShowZKSRO(cb, Deref(ppSubRqOpts)); });
}

void CtlBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pOperation, PPZKCTLO ppControlOpts,
               PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  Before(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    PutOperationLines(cb, pOperation);
    ShowZKCTLO(cb, Deref(ppControlOpts));
  });
}

void CtlAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKCTLO, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

// A registration also shows the descriptor and get options of the
// messages it asks for.
void CbBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKLONG pOperation, PPZKCBD ppCallbackDesc,
              PZKHOBJ pHobj, PPZKMD ppMsgDesc, PPZKGMO ppGetMsgOpts, PZKLONG pCompCode,
              PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  call.AfterPreProcess = SelectAlways;
  Before(&call, [&](ExitControlBlock *cb) {
    PutHconnLine(cb, pHconn);
    PutOperationLines(cb, pOperation);
    ShowZKCBD(cb, Deref(ppCallbackDesc));
    PutHobjLine(cb, pHobj);
    PutObjectNameLines(cb);
    if (pOperation == nullptr || (*pOperation & ZKOP_REGISTER) == 0) {
      return;
    }
    ShowDescriptorOrNothing(cb, Deref(ppMsgDesc));
    const ZKGMO *gmo = Deref(ppGetMsgOpts);
    ShowGetOptionsOrNothing(cb, gmo, axp->ExitReason, pCompCode != nullptr ? *pCompCode : 0);
    if (gmo != nullptr && (gmo->Options & ZKGMO_WAIT) != 0) {
      PutDecimalLine(cb, "WaitInterval:", &gmo->WaitInterval);
    }
  });
}

void CbAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKCBD, PZKHOBJ pHobj, PPZKMD, PPZKGMO,
             PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  call.AfterPreProcess = SelectAlways;
  After(&call, [](ExitControlBlock *) {});
}

// The callback's completion code and reason are those of its ZKCBC. An
// event handler may be called without a message descriptor or get options:
// those show as dumps of no bytes, and the queue is then not named.
void CallbackBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PPZKMD ppMsgDesc, PPZKGMO ppGetMsgOpts,
                    PPZKVOID ppBuffer, PPZKCBC ppCallbackContext) {
  const ZKCBC *cbc = Deref(ppCallbackContext);
  HandlerCall call = {axp, cbc != nullptr ? &cbc->CompCode : nullptr,
                      cbc != nullptr ? &cbc->Reason : nullptr};
  call.AfterPreProcess = NameCallbackQueue;
  call.Data = Deref(ppGetMsgOpts);
  Before(&call, [&](ExitControlBlock *cb) {
    PutObjectNameLines(cb);
    PutHconnLine(cb, pHconn);
    ShowDescriptorOrNothing(cb, Deref(ppMsgDesc));
    ShowGetOptionsOrNothing(cb, Deref(ppGetMsgOpts), axp->ExitReason,
                            cbc != nullptr ? cbc->CompCode : 0);
    if (cbc == nullptr) {
      return;
    }
    ShowZKCBC(cb, cbc);
    PutDecimalLine(cb, "DataLength:", &cbc->DataLength);
    // The buffer holds no more than its length: a message longer than the
    // consumer takes is shown as far as it was delivered.
    int32_t delivered = cbc->BufferLength < cbc->DataLength ? cbc->BufferLength : cbc->DataLength;
    ShowMsgContent(cb, ppMsgDesc, (const void *const *)ppBuffer, delivered,
                   cb->Settings.ShowMaxLenGet);
  });
}

void CallbackAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKMD ppMsgDesc, PPZKGMO, PPZKVOID,
                   PPZKCBC ppCallbackContext) {
  const ZKCBC *cbc = Deref(ppCallbackContext);
  HandlerCall call = {axp, cbc != nullptr ? &cbc->CompCode : nullptr,
                      cbc != nullptr ? &cbc->Reason : nullptr};
  // The summary line shows the message's descriptor and length when there
  // is a descriptor.
  call.Md = Deref(ppMsgDesc);
  call.MsgLength = call.Md != nullptr && cbc != nullptr ? cbc->DataLength : -1;
  After(&call, [](ExitControlBlock *) {});
}
