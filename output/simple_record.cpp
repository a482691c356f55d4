// The one-line record of summary-only mode: one line per call with its
// time, codes, elapsed time, object and message identifiers, under a column
// heading written once per file.
#include "output/record_writers.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/counting.h"
#include "exit/timing.h"
#include "output/record_text.h"
#include "output/trace_file.h"
#include "text/constant_table.h"

namespace {

// Message flags of a version-2 descriptor that place it in a group.
#define MSG_FLAG_MSG_IN_GROUP 8
#define MSG_FLAG_LAST_MSG_IN_GROUP 16

#define SIMPLE_RECORD_TEXT_SIZE 1024

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
        SuppressObjectMatches(e.ObjectName, cb->CurrentQueueName)) {
      return false;
    }
  }
  return true;
}

bool AllZero(const uint8_t *bytes, int32_t length) {
  for (int32_t i = 0; i < length; i++) {
    if (bytes[i] != 0) {
      return false;
    }
  }
  return true;
}

// The descriptor's columns: message id, length, correlation id and the
// message's place in its group.
void AppendDescriptor(const ExitControlBlock *cb, RecordText *text, const ZKMD *md,
                      int32_t msgLength) {
  char hex[2 * sizeof md->MsgId + 1];
  FormatHexBytes(hex, md->MsgId, (int32_t)sizeof md->MsgId);
  RecordTextAppend(text, " %s", hex);
  if (msgLength != -1) {
    RecordTextAppend(text, "%10u", (unsigned)msgLength);
  }
  if (cb->Settings.ShowSummaryCorrelId) {
    if (AllZero(md->CorrelId, (int32_t)sizeof md->CorrelId)) {
      RecordTextAppendString(text, "  (null)");
    } else {
      FormatHexBytes(hex, md->CorrelId, (int32_t)sizeof md->CorrelId);
      RecordTextAppend(text, "  %s", hex);
    }
  }
  if (md->Version >= ZKMD_VERSION_2) {
    if (md->MsgFlags & MSG_FLAG_LAST_MSG_IN_GROUP) {
      RecordTextAppend(text, "%8d (End of group)", md->MsgSeqNumber);
    } else if (md->MsgFlags & MSG_FLAG_MSG_IN_GROUP) {
      RecordTextAppend(text, "%8d", md->MsgSeqNumber);
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

void PutSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason,
                     CallCounterRecord *first, CallCounterRecord *second, const ZKMD *md,
                     int32_t msgLength) {
  int32_t function = cb->CurrentFunction;
  struct timeval now;
  SetTimeAndShow(&now, cb->RecordTimeText);
  char elapsedText[32];
  int64_t elapsed = 0;
  CalculateApiCallTimeAndShow(cb, function, &now, elapsedText, &elapsed);
  ZKLONG countCompCode = compCode;
  ZKLONG countReason = reason;

  if (SimpleRecordWanted(cb, function, compCode, reason)) {
    // The file may switch here, between calls.
    cb->RotationPermitted = 1;
    int32_t status = SetDataToWriteBuffer(cb, "");

    char buffer[SIMPLE_RECORD_TEXT_SIZE];
    RecordText text;
    RecordTextStart(&text, buffer, sizeof buffer);
    if (cb->NewFileOpened) {
      RecordTextAppend(&text, "-\n%s%s\n", kSimpleRecordHeading,
                       cb->Settings.ShowSummaryCorrelId ? "  CorrelId" : "");
      cb->NewFileOpened = 0;
    }
    RecordTextAppend(&text, "%8u %s", cb->Totals[COUNTER_CUMULATIVE].CallCount + 1,
                     cb->RecordTimeText);
    RecordTextAppend(&text, "  %-11s%3u%5u %s", SearchConstantInt(function, Constant_Function),
                     (unsigned)compCode, (unsigned)reason, elapsedText);
    RecordTextAppend(&text, "  %-48s", function < ZKXF_XACLOSE ? cb->CurrentQueueName : "");
    if (md != nullptr && compCode != ZKCC_FAILED) {
      AppendDescriptor(cb, &text, md, msgLength);
    }
    if (reason != 0) {
      RecordTextAppend(&text, " (%u = %s)", (unsigned)reason, ReasonName(function, reason));
    }
    RecordTextAppendString(&text, "\n");
    if (status == 0) {
      WriteTraceData(cb, buffer);
    }
    if (cb->Settings.WriteAfterEachApi) {
      FlushTraceDataInBuffer(cb);
    }
  }

  IncrementResultCount(cb, function, &countCompCode, &countReason, first, second, 1, elapsed, 0, 0);
  cb->RecordTimeText[0] = '\0';
}
