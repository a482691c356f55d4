// One row of a summary table: process times of an API call, or data
// lengths of a channel reply or request.
#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "output/summary.h"
#include "output/trace_file.h"
#include "output/timing.h"

namespace {

// Room for one formatted process time; the widest 64-bit value fits.
#define PROCESS_TIME_TEXT_SIZE 200

void ZeroRecord(CallCounterRecord *record) {
  memset(record, 0, sizeof *record);
}

// Average of the measured values; callers check TimedCalls > 0 first.
int64_t AverageOf(const CallCounterRecord *record) {
  return record->TotalTime / record->TimedCalls;
}

void WriteProcessTime(ExitControlBlock *cb, int64_t microseconds) {
  char text[PROCESS_TIME_TEXT_SIZE];
  ReformatProcessTime(text, (int32_t)sizeof text, microseconds);
  WriteTraceData(cb, text);
}

} // namespace

void PutOneSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                         int32_t mode) {
  char line[128];
  snprintf(line, sizeof line, "|  %-11s%8d %8d %8d %8d %8d ", label, (int32_t)record->OkCount,
           (int32_t)record->ExpectedFailureCount, (int32_t)record->WarningCount,
           (int32_t)record->ErrorCount, (int32_t)record->CallCount);
  WriteTraceData(cb, line);
  if (record->TimedCalls > 0) {
    WriteProcessTime(cb, AverageOf(record));
    WriteTraceData(cb, " ");
    WriteProcessTime(cb, record->MinimumTime);
    WriteTraceData(cb, " ");
    WriteProcessTime(cb, record->MaximumTime);
  }
  WriteTraceData(cb, "\n");
  if (mode == 1) {
    ZeroRecord(record);
  }
}

void PutOneChlSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                            int32_t mode) {
  char line[160];
  int32_t n =
      snprintf(line, sizeof line, "|  %-16s%8d %8d %8d %8d %8d", label, (int32_t)record->OkCount,
               (int32_t)record->ExpectedFailureCount, (int32_t)record->WarningCount,
               (int32_t)record->ErrorCount, (int32_t)record->CallCount);
  if (record->TimedCalls > 0 && n > 0 && n < (int32_t)sizeof line) {
    snprintf(line + n, sizeof line - (size_t)n, "%10lld%10lld%10lld", (long long)AverageOf(record),
             (long long)record->MinimumTime, (long long)record->MaximumTime);
  }
  WriteTraceData(cb, line);
  WriteTraceData(cb, "\n");
  if (mode == 1) {
    ZeroRecord(record);
  }
}

void PutOneChlSummaryRecordNorc(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                                int32_t mode, CallCounterRecord *total) {
  char line[160];
  if (record->TimedCalls > 0) {
    snprintf(line, sizeof line,
             "|  %-16s                                    %8d%10lld%10lld%10lld\n", label,
             (int32_t)record->CallCount, (long long)AverageOf(record),
             (long long)record->MinimumTime, (long long)record->MaximumTime);
  } else {
    snprintf(line, sizeof line, "|  %-16s                                    %8d\n", label,
             (int32_t)record->CallCount);
  }
  WriteTraceData(cb, line);
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
