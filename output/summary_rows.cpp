// One row of a summary table: process times of an API call, or data
// lengths of a channel reply or request.
#include <string.h>

#include "exit/control_block.h"
#include "output/summary.h"
#include "output/timing.h"
#include "output/trace_text.h"

namespace {

// Width of the label column of an API row and of a channel row.
#define API_LABEL_WIDTH 11
#define CHANNEL_LABEL_WIDTH 16
// Width of a count column and of a data length column.
#define COUNT_WIDTH 8
#define LENGTH_WIDTH 10

void ZeroRecord(CallCounterRecord *record) {
  memset(record, 0, sizeof *record);
}

// Average of the measured values; callers check TimedCalls > 0 first.
int64_t AverageOf(const CallCounterRecord *record) {
  return record->TotalTime / record->TimedCalls;
}

// "|  ", the label left-justified in its column, then the five result
// counts, blank-separated.
void AppendLabelAndCounts(TraceText *t, const char *label, int32_t labelWidth,
                          const CallCounterRecord *record) {
  TraceTextAppendLiteral(t, "|  ");
  TraceTextAppendPadded(t, label, labelWidth);
  TraceTextAppendInt32(t, (int32_t)record->OkCount, COUNT_WIDTH);
  TraceTextAppendChar(t, ' ');
  TraceTextAppendInt32(t, (int32_t)record->ExpectedFailureCount, COUNT_WIDTH);
  TraceTextAppendChar(t, ' ');
  TraceTextAppendInt32(t, (int32_t)record->WarningCount, COUNT_WIDTH);
  TraceTextAppendChar(t, ' ');
  TraceTextAppendInt32(t, (int32_t)record->ErrorCount, COUNT_WIDTH);
  TraceTextAppendChar(t, ' ');
  TraceTextAppendInt32(t, (int32_t)record->CallCount, COUNT_WIDTH);
}

// Average, minimum and maximum data length, each in its column.
void AppendLengths(TraceText *t, const CallCounterRecord *record) {
  TraceTextAppendInt64(t, AverageOf(record), LENGTH_WIDTH);
  TraceTextAppendInt64(t, record->MinimumTime, LENGTH_WIDTH);
  TraceTextAppendInt64(t, record->MaximumTime, LENGTH_WIDTH);
}

} // namespace

void AppendOneSummaryRecord(TraceText *t, const char *label, CallCounterRecord *record,
                            int32_t mode) {
  AppendLabelAndCounts(t, label, API_LABEL_WIDTH, record);
  TraceTextAppendChar(t, ' ');
  if (record->TimedCalls > 0) {
    AppendProcessTime(t, AverageOf(record));
    TraceTextAppendChar(t, ' ');
    AppendProcessTime(t, record->MinimumTime);
    TraceTextAppendChar(t, ' ');
    AppendProcessTime(t, record->MaximumTime);
  }
  TraceTextAppendChar(t, '\n');
  if (mode == 1) {
    ZeroRecord(record);
  }
}

void AppendOneChlSummaryRecord(TraceText *t, const char *label, CallCounterRecord *record,
                               int32_t mode) {
  AppendLabelAndCounts(t, label, CHANNEL_LABEL_WIDTH, record);
  if (record->TimedCalls > 0) {
    AppendLengths(t, record);
  }
  TraceTextAppendChar(t, '\n');
  if (mode == 1) {
    ZeroRecord(record);
  }
}

void AppendOneChlSummaryRecordNorc(TraceText *t, const char *label, CallCounterRecord *record,
                                   int32_t mode, CallCounterRecord *total) {
  // A request has no result counts: their four columns stay blank.
  TraceTextAppendLiteral(t, "|  ");
  TraceTextAppendPadded(t, label, CHANNEL_LABEL_WIDTH);
  TraceTextAppendRepeat(t, ' ', 4 * (COUNT_WIDTH + 1));
  TraceTextAppendInt32(t, (int32_t)record->CallCount, COUNT_WIDTH);
  if (record->TimedCalls > 0) {
    AppendLengths(t, record);
  }
  TraceTextAppendChar(t, '\n');
  // A request carries no result: its result counts leave the Total row,
  // whose result columns then count replies only while its total column
  // still counts every exchange.
  total->OkCount -= record->OkCount;
  total->ExpectedFailureCount -= record->ExpectedFailureCount;
  total->WarningCount -= record->WarningCount;
  total->ErrorCount -= record->ErrorCount;
  record->OkCount = 0;
  record->ExpectedFailureCount = 0;
  record->WarningCount = 0;
  record->ErrorCount = 0;
  if (mode == 1) {
    ZeroRecord(record);
  }
}

void PutOneSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                         int32_t mode) {
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  AppendOneSummaryRecord(&t, label, record, mode);
  TraceTextWrite(&t);
}

void PutOneChlSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                            int32_t mode) {
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  AppendOneChlSummaryRecord(&t, label, record, mode);
  TraceTextWrite(&t);
}

void PutOneChlSummaryRecordNorc(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                                int32_t mode, CallCounterRecord *total) {
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  AppendOneChlSummaryRecordNorc(&t, label, record, mode, total);
  TraceTextWrite(&t);
}
