// Subscription, status, control and callback calls: ZKSTAT, ZKSUB, ZKSUBRQ,
// ZKCTL, ZKCB and the message-consumer callback.
#include <string.h>

#include "exit/handle_list.h"
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"
#include "handlers/topic_string.h"
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
  queueHandleListAddEntry(cb, "", 1, 1, 1, 1, 1, 1);
  queueHandleListSetHandleToLastEntry(cb, *pHsub, "", topic);
}

} // namespace

void StatBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKSTS, PZKLONG pCompCode,
                PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void StatAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKSTS, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void SubBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKSD, PPZKHOBJ, PPZKHSUB, PZKLONG pCompCode,
               PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void SubAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKSD ppSubDesc, PPZKHOBJ, PPZKHSUB ppHsub,
              PZKLONG pCompCode, PZKLONG pReason) {
  KeepSubscriptionHandle(axp, Deref(ppSubDesc), Deref(ppHsub), pCompCode);
  TraceCallAfter(axp, pCompCode, pReason);
}

void SubrqBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKHSUB, PZKLONG, PPZKSRO, PZKLONG pCompCode,
                 PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void SubrqAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHSUB, PZKLONG, PPZKSRO, PZKLONG pCompCode,
                PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void CtlBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKCTLO, PZKLONG pCompCode,
               PZKLONG pReason) {
  TraceCallBefore(axp, pCompCode, pReason);
}

void CtlAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKCTLO, PZKLONG pCompCode, PZKLONG pReason) {
  TraceCallAfter(axp, pCompCode, pReason);
}

void CbBefore(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKCBD, PZKHOBJ pHobj, PPZKMD, PPZKGMO,
              PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  call.AfterPreProcess = SelectAlways;
  if (HandlerBefore(&call) == RC_OK) {
    HandlerBeforeEnd(&call);
  }
}

void CbAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKLONG, PPZKCBD, PZKHOBJ pHobj, PPZKMD, PPZKGMO,
             PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  call.AfterPreProcess = SelectAlways;
  if (HandlerAfter(&call) == RC_OK) {
    HandlerAfterEnd(&call);
  }
}

// The callback's completion code and reason are those of its ZKCBC.
void CallbackBefore(PZKAXP axp, PZKAXC, PZKHCONN, PPZKMD, PPZKGMO ppGetMsgOpts, PPZKVOID,
                    PPZKCBC ppCallbackContext) {
  const ZKCBC *cbc = Deref(ppCallbackContext);
  HandlerCall call = {axp, cbc != nullptr ? &cbc->CompCode : nullptr,
                      cbc != nullptr ? &cbc->Reason : nullptr};
  call.AfterPreProcess = NameCallbackQueue;
  call.Data = Deref(ppGetMsgOpts);
  if (HandlerBefore(&call) == RC_OK) {
    HandlerBeforeEnd(&call);
  }
}

void CallbackAfter(PZKAXP axp, PZKAXC, PZKHCONN, PPZKMD ppMsgDesc, PPZKGMO, PPZKVOID,
                   PPZKCBC ppCallbackContext) {
  const ZKCBC *cbc = Deref(ppCallbackContext);
  HandlerCall call = {axp, cbc != nullptr ? &cbc->CompCode : nullptr,
                      cbc != nullptr ? &cbc->Reason : nullptr};
  call.Md = Deref(ppMsgDesc);
  call.MsgLength = (call.Md != nullptr && cbc != nullptr) ? cbc->DataLength : -1;
  if (call.Md == nullptr) {
    call.MsgLength = -1;
  }
  if (HandlerAfter(&call) == RC_OK) {
    HandlerAfterEnd(&call);
  }
}
