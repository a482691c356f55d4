// The shape every ZKI handler shares. A before-handler is
//
//   HandlerCall call = {axp, pCompCode, pReason};   (+ Hobj, ObjectName, QueueCall)
//   if (HandlerBefore(&call) == RC_OK) {
//     ... the call's own lines ...
//     HandlerBeforeEnd(&call);
//   }
//
// and an after-handler the same with HandlerAfter / HandlerAfterEnd. The
// transaction-manager handlers use the Xa variants, which skip the
// dispatcher's pre-processing.
#pragma once

#include <stdint.h>

#include "exit/control_block.h"
#include "zk/zk.h"

// What a parameter passed by address points at, or null when the address
// itself is null (the queue manager passes most parameters this way).
template <typename T> const T *Deref(T *const *pp) {
  return pp != nullptr ? *pp : nullptr;
}

struct HandlerCall {
  PZKAXP Axp;
  const ZKLONG *CompCode;
  const ZKLONG *Reason;
  const ZKHOBJ *Hobj;     // calls that carry an object handle
  const char *ObjectName; // ZKOPEN: the name to match against TargetQueue
  uint8_t QueueCall;      // the call is written only when its queue is selected
  const ZKMD *Md;         // summary-only record: the message descriptor, or null
  int32_t MsgLength;      // summary-only record: the message length, or -1
  // Runs right after pre-processing, before the queue step: calls that
  // decide their names or selection themselves (ZKPUT1, ZKCB, the callback).
  void (*AfterPreProcess)(HandlerCall *call);
  const void *Data;     // what AfterPreProcess needs (a structure of the call)
  ExitControlBlock *Cb; // set by HandlerBefore/HandlerAfter
  uint8_t Path;         // how the handler leaves: HANDLER_PATH_...
};

// The ways a handler leaves, as its debug line numbers them.
#define HANDLER_PATH_NOTHING 1 // pre-processing or the queue step: nothing written
#define HANDLER_PATH_SUMMARY 2 // summary-only mode
#define HANDLER_PATH_RECORD 3  // the whole record

// HandlerBefore's answer when summary-only mode took the before-time.
#define HANDLER_SUMMARY_ONLY 1

// The connection's control block, or null when the chain area is not ours.
ExitControlBlock *HandlerControlBlock(const ZKAXP *axp);

// RC_OK when the call's own lines are to be written now.
int32_t HandlerBefore(HandlerCall *call);
void HandlerBeforeEnd(HandlerCall *call);
int32_t HandlerAfter(HandlerCall *call);
void HandlerAfterEnd(HandlerCall *call);

// The handle lines of a record, "Hconn:0x" and "Hobj:0x" with the handle in
// eight upper-case hex digits. No line when the handle cannot be read (its
// address is null).
void PutHconnLine(ExitControlBlock *cb, const ZKHCONN *hconn);
void PutHobjLine(ExitControlBlock *cb, const ZKHOBJ *hobj);

// "SelectorCount:", "BufferLength:" and the like: the label and the value
// in decimal, as the application gave it. No line when the value cannot be
// read (its address is null).
void PutDecimalLine(ExitControlBlock *cb, const char *label, const ZKLONG *value);
// The same with the value as unsigned ("rmid:4294967295").
void PutUnsignedLine(ExitControlBlock *cb, const char *label, const ZKLONG *value);

// "Options:0x" and the options in eight upper-case hex digits.
void PutOptionsLine(ExitControlBlock *cb, const ZKLONG *options);

// Any such line: the label ("Type:0x", "Hsub:0x", "Action:0x",
// "Operation:0x") and the value in eight upper-case hex digits. No line
// when the value cannot be read (its address is null).
void PutHexLine(ExitControlBlock *cb, const char *label, const ZKLONG *value);

// "| ObjectName:" with the name the call's object handle was opened under,
// and "| (real name):" with the name it resolved to when there is one.
void PutObjectNameLines(ExitControlBlock *cb);

// A call written with its header record only.
void TraceCallBefore(PZKAXP axp, const ZKLONG *pCompCode, const ZKLONG *pReason);
void TraceCallAfter(PZKAXP axp, const ZKLONG *pCompCode, const ZKLONG *pReason);

// Transaction-manager calls: no pre-processing, their own time slot.
int32_t XaHandlerBefore(HandlerCall *call);
int32_t XaHandlerAfter(HandlerCall *call);
void TraceXaCallBefore(PZKAXP axp);
void TraceXaCallAfter(PZKAXP axp, const ZKLONG *pXaRetCode);
