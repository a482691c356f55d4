#include "handlers/handler_shape.h"

#include <stdio.h>
#include <string.h>

#include "exit/call_records.h"
#include "exit/counting.h"
#include "exit/debug_output.h"
#include "exit/dispatch.h"
#include "output/record_writers.h"
#include "output/summary.h"
#include "output/trace_file.h"
#include "output/timing.h"
#include "output/statistics_index.h"
#include "output/trace_text.h"
#include "text/call_names.h"
#include "handlers/handler_names.h"

namespace {

// The function's two counter records (cumulative and split), or nulls.
void StatisticsOf(ExitControlBlock *cb, int32_t function, CallCounterRecord **first,
                  CallCounterRecord **second) {
  int32_t index = StatisticsIndexOfFunction(function);
  *first = index >= 0 ? &cb->Counters.Statistics[index][COUNTER_CUMULATIVE] : nullptr;
  *second = index >= 0 ? &cb->Counters.Statistics[index][COUNTER_SPLIT] : nullptr;
}

const ZKLONG kZero = 0;

const ZKLONG *OrZero(const ZKLONG *p) {
  return p != nullptr ? p : &kZero;
}

} // namespace

ExitControlBlock *HandlerControlBlock(const ZKAXP *axp) {
  if (axp == nullptr) {
    return nullptr;
  }
  ExitControlBlock *cb = ControlBlockOf(axp);
  if (cb == nullptr) {
    return nullptr;
  }
  // The eye catcher's seven bytes ("KT5RCB" and its NUL), compared as four,
  // two and one: this runs twice for every ZKI call.
  static_assert(sizeof CONTROL_BLOCK_EYE_CATCHER == 7, "the eye catcher is compared in 7 bytes");
  uint32_t head, expectedHead;
  uint16_t middle, expectedMiddle;
  memcpy(&head, cb->EyeCatcher, 4);
  memcpy(&expectedHead, CONTROL_BLOCK_EYE_CATCHER, 4);
  memcpy(&middle, cb->EyeCatcher + 4, 2);
  memcpy(&expectedMiddle, CONTROL_BLOCK_EYE_CATCHER + 4, 2);
  if (head != expectedHead || middle != expectedMiddle || cb->EyeCatcher[6] != '\0') {
    return nullptr;
  }
  return cb;
}

// Pre-processing, the call's own selection step and the queue step.
static int32_t PreProcess(HandlerCall *call) {
  ExitControlBlock *cb = call->Cb = HandlerControlBlock(call->Axp);
  if (cb == nullptr || PreProcessForAnExitCall(call->Axp, cb, call->CompCode, call->Reason,
                                               call->Hobj, call->ObjectName) != RC_OK) {
    return RC_NOP;
  }
  if (call->AfterPreProcess != nullptr) {
    call->AfterPreProcess(call);
  }
  return RC_OK;
}

static void DebugLeave(const HandlerCall *call);

static int32_t BeforeStep(HandlerCall *call) {
  if (PreProcess(call) != RC_OK) {
    return RC_NOP;
  }
  ExitControlBlock *cb = call->Cb;
  bool dataConversion = call->Axp->Function == ZKXF_DATA_CONV_ON_GET;
  if (dataConversion && cb->Settings.ShowDataConvOnGet != 1) {
    return RC_NOP;
  }
  if (call->QueueCall && cb->Call.QueueSelected != 1) {
    return RC_NOP;
  }
  if (cb->Settings.ShowSummaryOnly == 1) {
    // The data-conversion point takes no time: the get's before-call did.
    if (dataConversion) {
      return RC_NOP;
    }
    setTimeBeforeApiCall(cb);
    return HANDLER_SUMMARY_ONLY;
  }
  PutHeaderRecord(cb, call->Axp->Function, call->Axp->ExitReason, *OrZero(call->CompCode),
                  *OrZero(call->Reason), nullptr, nullptr);
  return RC_OK;
}

void HandlerBeforeEnd(HandlerCall *call) {
  if (call->Cb->Settings.WriteAfterEachApi == 1) {
    FlushTraceDataInBuffer(call->Cb);
  }
  if (call->Path == HANDLER_PATH_RECORD) {
    DebugLeave(call);
  }
}

static int32_t AfterStep(HandlerCall *call) {
  if (PreProcess(call) != RC_OK) {
    return RC_NOP;
  }
  ExitControlBlock *cb = call->Cb;
  int32_t function = call->Axp->Function;
  CallCounterRecord *first, *second;
  StatisticsOf(cb, function, &first, &second);
  if (call->QueueCall && cb->Call.QueueSelected != 1) {
    if (cb->Settings.CountSelectedCallsOnly != 1) {
      IncrementResultCount(cb, function, OrZero(call->CompCode), OrZero(call->Reason), first,
                           second, 0, 0, 0, 0);
    }
    return RC_NOP;
  }
  if (cb->Settings.ShowSummaryOnly == 1) {
    PutSimpleRecord(cb, *OrZero(call->CompCode), *OrZero(call->Reason), first, second, call->Md,
                    call->MsgLength);
    ShowPerformanceSummary(cb);
    return RC_NOP;
  }
  PutHeaderRecord(cb, function, call->Axp->ExitReason, *OrZero(call->CompCode),
                  *OrZero(call->Reason), first, second);
  return RC_OK;
}

void HandlerAfterEnd(HandlerCall *call) {
  ShowPerformanceSummary(call->Cb);
  if (call->Cb->Settings.WriteAfterEachApi == 1) {
    FlushTraceDataInBuffer(call->Cb);
  }
  if (call->Path == HANDLER_PATH_RECORD) {
    DebugLeave(call);
  }
}

// The debug line of a handler on leaving: "ConnBefore return 3", the path
// numbered 1 (nothing written), 2 (summary-only) or 3 (the record); for a
// transaction-manager call "xa_commit (before) end".
static void DebugLeave(const HandlerCall *call) {
  if (!DebugWanted(call->Cb)) {
    return;
  }
  char text[96];
  int32_t function = call->Axp->Function;
  int32_t exitReason = call->Axp->ExitReason;
  if (function >= ZKXF_XACLOSE) {
    snprintf(text, sizeof text, "%s (%s) end", FunctionName(function),
             exitReason == ZKXR_AFTER ? "after" : "before");
  } else {
    snprintf(text, sizeof text, "%s return %d", HandlerNameOf(function, exitReason),
             (int)call->Path);
  }
  DEBUG_STRING(call->Cb, "Function ", text);
}

static void DebugXaStart(const HandlerCall *call) {
  if (!DebugWanted(call->Cb)) {
    return;
  }
  char text[96];
  snprintf(text, sizeof text, "%s (%s) start", FunctionName(call->Axp->Function),
           call->Axp->ExitReason == ZKXR_AFTER ? "after" : "before");
  DEBUG_STRING(call->Cb, "Function ", text);
}

// The path a step's answer leaves the handler by.
static uint8_t PathOf(int32_t result) {
  return result == RC_OK                  ? HANDLER_PATH_RECORD
         : result == HANDLER_SUMMARY_ONLY ? HANDLER_PATH_SUMMARY
                                          : HANDLER_PATH_NOTHING;
}

int32_t HandlerBefore(HandlerCall *call) {
  int32_t result = BeforeStep(call);
  call->Path = PathOf(result);
  if (call->Path != HANDLER_PATH_RECORD && call->Cb != nullptr) {
    DebugLeave(call);
  }
  return result;
}

int32_t HandlerAfter(HandlerCall *call) {
  int32_t result = AfterStep(call);
  call->Path = PathOf(result);
  if (call->Path != HANDLER_PATH_RECORD && call->Cb != nullptr) {
    DebugLeave(call);
  }
  return result;
}

// A label and a 32-bit value on a line of their own, in the form asked
// for; no line when the value cannot be read (its address is null).
enum NumberForm { NUMBER_HEX, NUMBER_SIGNED, NUMBER_UNSIGNED };

static void PutNumberLine(ExitControlBlock *cb, const char *label, const ZKLONG *value,
                          NumberForm form) {
  if (value == nullptr) {
    return;
  }
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendString(&line, label);
  if (form == NUMBER_HEX) {
    TraceTextAppendHex32(&line, (uint32_t)*value);
  } else if (form == NUMBER_SIGNED) {
    TraceTextAppendInt32(&line, *value, 0);
  } else {
    TraceTextAppendUInt32(&line, (uint32_t)*value, 0);
  }
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

void PutHexLine(ExitControlBlock *cb, const char *label, const ZKLONG *value) {
  PutNumberLine(cb, label, value, NUMBER_HEX);
}

void PutOptionsLine(ExitControlBlock *cb, const ZKLONG *options) {
  PutHexLine(cb, "Options:0x", options);
}

void PutDecimalLine(ExitControlBlock *cb, const char *label, const ZKLONG *value) {
  PutNumberLine(cb, label, value, NUMBER_SIGNED);
}

void PutUnsignedLine(ExitControlBlock *cb, const char *label, const ZKLONG *value) {
  PutNumberLine(cb, label, value, NUMBER_UNSIGNED);
}

void PutHconnLine(ExitControlBlock *cb, const ZKHCONN *hconn) {
  PutHexLine(cb, "Hconn:0x", hconn);
}

void PutHobjLine(ExitControlBlock *cb, const ZKHOBJ *hobj) {
  PutHexLine(cb, "Hobj:0x", hobj);
}

// A name line; names are shown as 7-bit text, so that a name cannot break
// the line.
static void PutNameLine(ExitControlBlock *cb, const char *label, const char *name, size_t size) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendString(&line, label);
  TraceTextAppendSevenBit(&line, name, (int32_t)strnlen(name, size));
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

void PutObjectNameLines(ExitControlBlock *cb) {
  PutNameLine(cb, "| ObjectName:", cb->Call.CurrentQueueName, sizeof cb->Call.CurrentQueueName);
  if (cb->Call.ResolvedQueueName[0] != '\0') {
    PutNameLine(cb, "| (real name):", cb->Call.ResolvedQueueName,
                sizeof cb->Call.ResolvedQueueName);
  }
}

void TraceCallBefore(PZKAXP axp, const ZKLONG *pCompCode, const ZKLONG *pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerBefore(&call) == RC_OK) {
    HandlerBeforeEnd(&call);
  }
}

void TraceCallAfter(PZKAXP axp, const ZKLONG *pCompCode, const ZKLONG *pReason) {
  HandlerCall call = {axp, pCompCode, pReason};
  if (HandlerAfter(&call) == RC_OK) {
    HandlerAfterEnd(&call);
  }
}

static int32_t XaBeforeStep(HandlerCall *call) {
  ExitControlBlock *cb = call->Cb = HandlerControlBlock(call->Axp);
  if (cb == nullptr || cb->FatalError) {
    return RC_NOP;
  }
  // Each exit call takes its own clock reading; pre-processing, which
  // starts a new one for the ZKI calls, is not run for these.
  ForgetCallClock(cb);
  if (cb->Settings.ShowSummaryOnly == 1) {
    SetTimeBeforeApiCallXa(cb);
    return RC_NOP;
  }
  PutHeaderRecord(cb, call->Axp->Function, call->Axp->ExitReason, 0, 0, nullptr, nullptr);
  return RC_OK;
}

static int32_t XaAfterStep(HandlerCall *call) {
  ExitControlBlock *cb = call->Cb = HandlerControlBlock(call->Axp);
  if (cb == nullptr || cb->FatalError) {
    return RC_NOP;
  }
  ForgetCallClock(cb);
  int32_t function = call->Axp->Function;
  CallCounterRecord *first, *second;
  StatisticsOf(cb, function, &first, &second);
  // The one XA return code stands for both the completion code and the reason.
  ZKLONG code = *OrZero(call->CompCode);
  if (cb->Settings.ShowSummaryOnly == 1) {
    // The summary line names and times the call by the connection's current
    // function, which pre-processing sets for ZKI calls only: a transaction
    // call sets its own for its line and gives the ZKI call (it may come
    // between that call's before and after) its function back.
    int32_t current = cb->Call.CurrentFunction;
    cb->Call.CurrentFunction = function;
    PutSimpleRecord(cb, code, code, first, second, nullptr, -1);
    cb->Call.CurrentFunction = current;
    ShowPerformanceSummary(cb);
    return RC_NOP;
  }
  PutHeaderRecord(cb, function, call->Axp->ExitReason, code, code, first, second);
  return RC_OK;
}

int32_t XaHandlerBefore(HandlerCall *call) {
  call->Cb = HandlerControlBlock(call->Axp);
  if (call->Cb != nullptr) {
    DebugXaStart(call);
  }
  int32_t result = XaBeforeStep(call);
  call->Path = result == RC_OK ? HANDLER_PATH_RECORD : HANDLER_PATH_NOTHING;
  if (result != RC_OK && call->Cb != nullptr) {
    DebugLeave(call);
  }
  return result;
}

int32_t XaHandlerAfter(HandlerCall *call) {
  call->Cb = HandlerControlBlock(call->Axp);
  if (call->Cb != nullptr) {
    DebugXaStart(call);
  }
  int32_t result = XaAfterStep(call);
  call->Path = result == RC_OK ? HANDLER_PATH_RECORD : HANDLER_PATH_NOTHING;
  if (result != RC_OK && call->Cb != nullptr) {
    DebugLeave(call);
  }
  return result;
}

void TraceXaCallBefore(PZKAXP axp) {
  HandlerCall call = {axp};
  if (XaHandlerBefore(&call) == RC_OK) {
    HandlerBeforeEnd(&call);
  }
}

void TraceXaCallAfter(PZKAXP axp, const ZKLONG *pXaRetCode) {
  HandlerCall call = {axp, pXaRetCode, pXaRetCode};
  if (XaHandlerAfter(&call) == RC_OK) {
    HandlerAfterEnd(&call);
  }
}
