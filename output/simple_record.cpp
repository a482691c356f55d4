// The one-line record of summary-only mode: one line per call with its
// time, codes, elapsed time, object and message identifiers, under a column
// heading written once per file.
#include "output/record_writers.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "output/timing.h"
#include "output/trace_file.h"
#include "output/trace_text.h"
#include "text/call_names.h"
#include "text/constant_table.h"

namespace {

// Message flags of a version-2 descriptor that place it in a group.
#define MSG_FLAG_MSG_IN_GROUP 8
#define MSG_FLAG_LAST_MSG_IN_GROUP 16

const char kSimpleRecordHeading[] =
    "          Time                         API         CC Reason  Time(sec)  ObjectName       "
    "                                MsgId                                               MsgLen";

// An object name of a ShowSummaryDataSuppress entry against the call's.
bool SuppressObjectMatches(const char *entry, const char *object) {
  if (entry[0] == '*') {
    return true;
  }
  size_t n = strlen(entry);
  if (n > 0 && entry[n - 1] == '*') {
    return strncmp(entry, object, n - 1) == 0;
  }
  return strcmp(entry, object) == 0;
}

// Whether the call gets a line: not in performance-only mode, and not when
// an entry of the ShowSummaryDataSuppress list matches it.
bool SimpleRecordWanted(const ExitControlBlock *cb, int32_t function, int32_t compCode,
                        int32_t reason) {
  const ParameterSettings &settings = cb->Settings;
  if (settings.ShowPerformanceOnly) {
    return false;
  }
  for (int32_t i = 0; i < settings.ShowSummaryDataSuppressCount; i++) {
    const SummaryDataSuppressEntry &e = settings.ShowSummaryDataSuppress[i];
    if ((e.CompCode == PARAMETER_ANY || e.CompCode == compCode) &&
        (e.Reason == PARAMETER_ANY || e.Reason == reason) &&
        (e.Function == PARAMETER_ANY || e.Function == function) &&
        SuppressObjectMatches(e.ObjectName, cb->Call.CurrentQueueName)) {
      return false;
    }
  }
  return true;
}

// The 24 zero bytes of an identifier that is not set.
const ZKBYTE24 kNoIdentifier = {};

// A 24-byte identifier as 48 upper-case hex digits, high digit first.
void AppendIdentifier(TraceText *text, const ZKBYTE24 identifier) {
  char *p = TraceTextReserve(text, 2 * sizeof(ZKBYTE24));
  if (p == nullptr) {
    return;
  }
  for (size_t i = 0; i < sizeof(ZKBYTE24); i++) {
    memcpy(p + 2 * i, HexDigitPair(identifier[i]), 2);
  }
  TraceTextCommit(text, p + 2 * sizeof(ZKBYTE24));
}

// The descriptor's columns: message id, length, correlation id and the
// message's place in its group.
void AppendDescriptor(const ExitControlBlock *cb, TraceText *text, const ZKMD *md,
                      int32_t msgLength) {
  TraceTextAppendChar(text, ' ');
  AppendIdentifier(text, md->MsgId);
  if (msgLength != -1) {
    TraceTextAppendUInt32(text, (uint32_t)msgLength, 10);
  }
  if (cb->Settings.ShowSummaryCorrelId) {
    if (memcmp(md->CorrelId, kNoIdentifier, sizeof md->CorrelId) == 0) {
      TraceTextAppendLiteral(text, "  (null)");
    } else {
      TraceTextAppendLiteral(text, "  ");
      AppendIdentifier(text, md->CorrelId);
    }
  }
  if (md->Version >= ZKMD_VERSION_2) {
    if (md->MsgFlags & MSG_FLAG_LAST_MSG_IN_GROUP) {
      TraceTextAppendInt32(text, md->MsgSeqNumber, 8);
      TraceTextAppendLiteral(text, " (End of group)");
    } else if (md->MsgFlags & MSG_FLAG_MSG_IN_GROUP) {
      TraceTextAppendInt32(text, md->MsgSeqNumber, 8);
    }
  }
}

// Name of a reason: a queue-manager reason, or the return value of a
// transaction-manager call.
const char *ReasonName(int32_t function, int32_t reason) {
  if (function < ZKXF_XACLOSE) {
    return SearchConstantInt(reason, Constant_Zkrc);
  }
  return SearchConstantInt(reason, function >= ZKXF_AXREG ? Constant_Axrc : Constant_Xarc);
}

} // namespace

int64_t WriteSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason, const ZKMD *md,
                          int32_t msgLength) {
  int32_t function = cb->Call.CurrentFunction;
  struct timeval now;
  int32_t stampLength = SetRecordTimeAndShow(cb, &now);
  int64_t elapsed = 0;
  CalculateApiCallTimeAndShow(cb, function, &now, nullptr, &elapsed);
  if (SimpleRecordWanted(cb, function, compCode, reason)) {
    // The file may switch here, between calls.
    cb->File.RotationPermitted = 1;
    int32_t status = SetDataToWriteBuffer(cb, "");

    TraceText text;
    TraceTextStart(&text, cb, TRACE_TEXT_CUT);
    if (cb->File.NewFileOpened) {
      TraceTextAppendLiteral(&text, "-\n");
      TraceTextAppendLiteral(&text, kSimpleRecordHeading);
      if (cb->Settings.ShowSummaryCorrelId) {
        TraceTextAppendLiteral(&text, "  CorrelId");
      }
      TraceTextAppendChar(&text, '\n');
      cb->File.NewFileOpened = 0;
    }
    TraceTextAppendUInt32(&text, cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount + 1, 8);
    TraceTextAppendChar(&text, ' ');
    AppendRecordTime(&text, cb, stampLength);
    TraceTextAppendLiteral(&text, "  ");
    TraceTextAppendPadded(&text, FunctionName(function), 11);
    TraceTextAppendUInt32(&text, (uint32_t)compCode, 3);
    TraceTextAppendUInt32(&text, (uint32_t)reason, 5);
    TraceTextAppendChar(&text, ' ');
    AppendProcessTime(&text, elapsed);
    TraceTextAppendLiteral(&text, "  ");
    TraceTextAppendPadded(&text, function < ZKXF_XACLOSE ? cb->Call.CurrentQueueName : "", 48);
    if (md != nullptr && compCode != ZKCC_FAILED) {
      AppendDescriptor(cb, &text, md, msgLength);
    }
    if (reason != 0) {
      TraceTextAppendLiteral(&text, " (");
      TraceTextAppendUInt32(&text, (uint32_t)reason, 0);
      TraceTextAppendLiteral(&text, " = ");
      TraceTextAppendString(&text, ReasonName(function, reason));
      TraceTextAppendLiteral(&text, ")\n");
    } else {
      TraceTextAppendChar(&text, '\n');
    }
    if (status == 0) {
      TraceTextWrite(&text);
    }
    if (cb->Settings.WriteAfterEachApi) {
      FlushTraceDataInBuffer(cb);
    }
  }
  return elapsed;
}
