// The call summary written at each trace file's open and close: a table of
// result counts and process times per call type since start-up and, when a
// performance interval is set, the same table for the calls since the last
// split.
#include "output/summary.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "output/timing.h"
#include "output/trace_file.h"
#include "output/statistics_index.h"

namespace {

#define SUMMARY_DASHED_LINE                                                                        \
  "|---------------------------------------------------------------------------------------------" \
  "---\n"

#define MICROSECONDS_PER_SECOND 1000000LL

// A summary row and the function whose counter records it shows.
struct SummaryRow {
  const char *Label;
  int32_t Function;
};

// Calls every platform level has.
const SummaryRow kBaseRows[] = {
    {"ZKCONN", ZKXF_CONN}, {"ZKCONNX", ZKXF_CONNX}, {"ZKDISC", ZKXF_DISC},
    {"ZKOPEN", ZKXF_OPEN}, {"ZKCLOSE", ZKXF_CLOSE}, {"ZKPUT1", ZKXF_PUT1},
    {"ZKPUT", ZKXF_PUT},   {"ZKGET", ZKXF_GET},     {"ZKINQ", ZKXF_INQ},
    {"ZKSET", ZKXF_SET},   {"ZKBEGIN", ZKXF_BEGIN}, {"ZKCMIT", ZKXF_CMIT},
    {"ZKBACK", ZKXF_BACK},
};

// Calls of platform level 700 and later.
const SummaryRow kLevel700Rows[] = {
    {"ZKSTAT", ZKXF_STAT}, {"ZKSUB", ZKXF_SUB}, {"ZKSUBRQ", ZKXF_SUBRQ},
    {"ZKCTL", ZKXF_CTL},   {"ZKCB", ZKXF_CB},   {"ZKCB_FU", ZKXF_CALLBACK},
};

// Transaction-manager calls, shown at level 700 with ShowXaCalls.
const SummaryRow kXaRows[] = {
    {"xa_close", ZKXF_XACLOSE},       {"xa_commit", ZKXF_XACOMMIT},
    {"xa_complete", ZKXF_XACOMPLETE}, {"xa_end", ZKXF_XAEND},
    {"xa_forget", ZKXF_XAFORGET},     {"xa_open", ZKXF_XAOPEN},
    {"xa_prepare", ZKXF_XAPREPARE},   {"xa_recover", ZKXF_XARECOVER},
    {"xa_rollback", ZKXF_XAROLLBACK}, {"xa_start", ZKXF_XASTART},
    {"ax_reg", ZKXF_AXREG},           {"ax_unreg", ZKXF_AXUNREG},
};

// Calls a channel carries as a request and a reply.
const SummaryRow kChannelBaseRows[] = {
    {"ZKCONN", ZKXF_CONN}, {"ZKDISC", ZKXF_DISC}, {"ZKOPEN", ZKXF_OPEN}, {"ZKCLOSE", ZKXF_CLOSE},
    {"ZKPUT", ZKXF_PUT},   {"ZKPUT1", ZKXF_PUT1}, {"ZKGET", ZKXF_GET},   {"ZKINQ", ZKXF_INQ},
    {"ZKSET", ZKXF_SET},   {"ZKCMIT", ZKXF_CMIT}, {"ZKBACK", ZKXF_BACK},
};

#define ROW_COUNT(rows) ((int32_t)(sizeof(rows) / sizeof((rows)[0])))

// The counter record of a function for a period, or null when the function
// has none.
CallCounterRecord *RecordOf(ExitControlBlock *cb, int32_t function, int32_t period) {
  int32_t index = StatisticsIndexOfFunction(function);
  if (index < 0 || index >= STATISTICS_FUNCTION_COUNT) {
    return nullptr;
  }
  return &cb->Statistics[index][period];
}

void WriteFormatted(ExitControlBlock *cb, const char *format, const char *value) {
  char line[256];
  snprintf(line, sizeof line, format, value);
  WriteTraceData(cb, line);
}

// One process-time row; a function without records shows an empty row.
void PutApiRow(ExitControlBlock *cb, const SummaryRow &row, int32_t period, int32_t mode) {
  CallCounterRecord empty;
  CallCounterRecord *record = RecordOf(cb, row.Function, period);
  if (record == nullptr) {
    memset(&empty, 0, sizeof empty);
    record = &empty;
  }
  PutOneSummaryRecord(cb, row.Label, record, mode);
}

void PutApiRows(ExitControlBlock *cb, const SummaryRow *rows, int32_t count, int32_t period,
                int32_t mode) {
  for (int32_t i = 0; i < count; i++) {
    PutApiRow(cb, rows[i], period, mode);
  }
}

// The process-time table of an API exit. `mode` applies to the ZKI rows and
// the Total row; the transaction-manager rows always use mode 0, so their
// split records are never zeroed.
void PutApiSummaryTable(ExitControlBlock *cb, int32_t period, int32_t mode) {
  WriteTraceData(cb, "|                                                          -------- Process "
                     "time (second) -------\n");
  WriteTraceData(cb, "|  API         Success     Info  Warning     Fail    Total      Average      "
                     "Minimum      Maximum\n");
  WriteTraceData(cb, "|  ---------- -------- -------- -------- -------- -------- ------------ "
                     "------------ ------------\n");
  PutApiRows(cb, kBaseRows, ROW_COUNT(kBaseRows), period, mode);
  if (cb->ApiLevel >= API_LEVEL_700) {
    PutApiRows(cb, kLevel700Rows, ROW_COUNT(kLevel700Rows), period, mode);
    if (cb->Settings.ShowXaCalls == 1) {
      PutApiRows(cb, kXaRows, ROW_COUNT(kXaRows), period, 0);
    }
  }
  WriteTraceData(cb, SUMMARY_DASHED_LINE);
  PutOneSummaryRecord(cb, "Total", &cb->Totals[period], mode);
}

// Channel rows and the counter records they show. A channel build counts a
// call's reply in the function's record (its result counts and first
// measure) and the call's request in the second measure of the same record.
// The rows with no ZKI function of their own use the records that the
// transaction-manager calls have in an API exit, which a channel never
// makes: XA in that of xa_close (request and reply as above), then XMIT
// send, XMIT receive, MSG and others in those of xa_commit, xa_complete,
// xa_end and xa_forget, each shown as a request row.

// A request row from the second measure of a record. With mode 1 the
// second measure is zeroed after printing.
void PutChannelRequestRow(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                          int32_t period, int32_t mode) {
  CallCounterRecord request;
  memset(&request, 0, sizeof request);
  if (record != nullptr) {
    request.MinimumTime = record->SecondMinimum;
    request.MaximumTime = record->SecondMaximum;
    request.TotalTime = record->SecondTotal;
    request.TimedCalls = record->SecondCount;
    request.CallCount = (uint32_t)record->SecondCount;
  }
  PutOneChlSummaryRecordNorc(cb, label, &request, mode, &cb->Totals[period]);
  if (mode == 1 && record != nullptr) {
    record->SecondMinimum = 0;
    record->SecondMaximum = 0;
    record->SecondTotal = 0;
    record->SecondCount = 0;
  }
}

void PutChannelReplyRow(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                        int32_t mode) {
  CallCounterRecord empty;
  if (record == nullptr) {
    memset(&empty, 0, sizeof empty);
    record = &empty;
  }
  PutOneChlSummaryRecord(cb, label, record, mode);
}

// A request row shown from a record of its own.
void PutChannelOwnRequestRow(ExitControlBlock *cb, const char *label, int32_t function,
                             int32_t period, int32_t mode) {
  CallCounterRecord empty;
  CallCounterRecord *record = RecordOf(cb, function, period);
  if (record == nullptr) {
    memset(&empty, 0, sizeof empty);
    record = &empty;
  }
  PutOneChlSummaryRecordNorc(cb, label, record, mode, &cb->Totals[period]);
}

void PutChannelPair(ExitControlBlock *cb, const char *name, int32_t function, int32_t period,
                    int32_t mode) {
  char label[32];
  CallCounterRecord *record = RecordOf(cb, function, period);
  snprintf(label, sizeof label, "%-7s request", name);
  PutChannelRequestRow(cb, label, record, period, mode);
  snprintf(label, sizeof label, "%-7s reply", name);
  PutChannelReplyRow(cb, label, record, mode);
}

void PutChannelPairs(ExitControlBlock *cb, const SummaryRow *rows, int32_t count, int32_t period,
                     int32_t mode) {
  for (int32_t i = 0; i < count; i++) {
    PutChannelPair(cb, rows[i].Label, rows[i].Function, period, mode);
  }
}

// The data-length table of a channel exit.
void PutChannelSummaryTable(ExitControlBlock *cb, int32_t period, int32_t mode) {
  WriteTraceData(cb, "|                                                               ---- Data "
                     "length (byte) -----\n");
  WriteTraceData(cb, "|  API              Success     Info  Warning     Fail    Total   Average   "
                     "Minimum   Maximum\n");
  WriteTraceData(cb, "|  --------------- -------- -------- -------- -------- -------- --------- "
                     "--------- ---------\n");
  PutChannelPairs(cb, kChannelBaseRows, ROW_COUNT(kChannelBaseRows), period, mode);
  if (cb->ApiLevel >= API_LEVEL_700) {
    PutChannelPairs(cb, kLevel700Rows, ROW_COUNT(kLevel700Rows), period, mode);
  }
  PutChannelPair(cb, "XA", ZKXF_XACLOSE, period, mode);
  PutChannelOwnRequestRow(cb, "XMIT    send", ZKXF_XACOMMIT, period, mode);
  PutChannelOwnRequestRow(cb, "XMIT    receive", ZKXF_XACOMPLETE, period, mode);
  PutChannelOwnRequestRow(cb, "MSG", ZKXF_XAEND, period, mode);
  PutChannelOwnRequestRow(cb, "others", ZKXF_XAFORGET, period, mode);
  WriteTraceData(cb, SUMMARY_DASHED_LINE);
  PutOneChlSummaryRecord(cb, "Total", &cb->Totals[period], mode);
}

void PutSummaryTable(ExitControlBlock *cb, int32_t period, int32_t mode) {
  if (cb->ExitType == EXIT_TYPE_CHANNEL) {
    PutChannelSummaryTable(cb, period, mode);
  } else {
    PutApiSummaryTable(cb, period, mode);
  }
}

// The split starts at the connection's start until the first split summary
// has been written.
void EnsureSplitStart(ExitControlBlock *cb) {
  if (cb->SplitStartTime.tv_sec == 0 && cb->SplitStartTime.tv_usec == 0) {
    cb->SplitStartTime = cb->StartTime;
    memcpy(cb->SplitStartText, cb->StartTimeText, sizeof cb->SplitStartText);
    cb->SplitStartText[sizeof cb->SplitStartText - 1] = '\0';
  }
}

int64_t MicrosecondsBetween(const struct timeval *from, const struct timeval *to) {
  return ((int64_t)to->tv_sec - (int64_t)from->tv_sec) * MICROSECONDS_PER_SECOND +
         ((int64_t)to->tv_usec - (int64_t)from->tv_usec);
}

void PutSplitDuration(ExitControlBlock *cb, int64_t microseconds) {
  if (microseconds < 0) {
    microseconds = 0;
  }
  int64_t seconds = microseconds / MICROSECONDS_PER_SECOND;
  char line[96];
  snprintf(line, sizeof line, "|  duration         [%02u:%02u:%02u.%06u]\n",
           (unsigned)(seconds / 3600), (unsigned)(seconds / 60 % 60), (unsigned)(seconds % 60),
           (unsigned)(microseconds % MICROSECONDS_PER_SECOND));
  WriteTraceData(cb, line);
}

void PutSplitSummary(ExitControlBlock *cb, const struct timeval *now, const char *nowText,
                     int64_t elapsed) {
  char line[96];
  cb->SplitSequence++;
  WriteTraceData(cb, SUMMARY_DASHED_LINE);
  snprintf(line, sizeof line, "|Split summary (%u)\n", cb->SplitSequence);
  WriteTraceData(cb, line);
  WriteFormatted(cb, "|  start %s\n", cb->SplitStartText);
  WriteFormatted(cb, "|  end   %s\n", nowText);
  PutSplitDuration(cb, elapsed);
  PutSummaryTable(cb, COUNTER_SPLIT, 1);
  WriteTraceData(cb, SUMMARY_DASHED_LINE);
  WriteTraceData(cb, "|\n|\n|\n");
  if (now != nullptr) {
    cb->SplitStartTime = *now;
  }
  memcpy(cb->SplitStartText, nowText, sizeof cb->SplitStartText);
  cb->SplitStartText[sizeof cb->SplitStartText - 1] = '\0';
}

} // namespace

void PutSummaryRecord(ExitControlBlock *cb) {
  if (cb->Totals[COUNTER_CUMULATIVE].CallCount == 0) {
    return;
  }
  EnsureSplitStart(cb);
  // Without addresses the output is meant to be comparable between runs:
  // no clock is read, the time texts stay empty and the split lasts 0.
  struct timeval now;
  char nowText[sizeof cb->SplitStartText];
  memset(&now, 0, sizeof now);
  nowText[0] = '\0';
  int64_t elapsed = 0;
  if (cb->NoAddress == 0) {
    SetTimeAndShow(&now, nowText);
    elapsed = MicrosecondsBetween(&cb->SplitStartTime, &now);
  }

  WriteTraceData(cb, "-");
  WriteTraceData(cb, "\n");
  WriteTraceData(cb, SUMMARY_DASHED_LINE);
  WriteFormatted(cb, "|Call summary - %s\n", nowText);
  PutSummaryTable(cb, COUNTER_CUMULATIVE, 0);
  WriteTraceData(cb, SUMMARY_DASHED_LINE);
  WriteTraceData(cb, "\n");

  if (cb->Settings.ShowPerformanceIntervalTime >= 1 ||
      cb->Settings.ShowPerformanceIntervalCount >= 1) {
    PutSplitSummary(cb, cb->NoAddress == 0 ? &now : nullptr, nowText, elapsed);
  }
}
