// The call summary written at each trace file's open and close: a table of
// result counts and process times per call type since start-up and, when a
// performance interval is set, the same table for the calls since the last
// split.
#include "output/summary.h"

#include <string.h>

#include "exit/control_block.h"
#include "output/timing.h"
#include "output/trace_text.h"
#include "output/statistics_index.h"

namespace {

#define SUMMARY_DASHED_LINE                                                                        \
  "|---------------------------------------------------------------------------------------------" \
  "---\n"

#define MICROSECONDS_PER_SECOND 1000000LL
// Width of the call name in the label of a channel row pair.
#define PAIR_NAME_WIDTH 7

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
  return &cb->Counters.Statistics[index][period];
}

// One process-time row; a function without records shows an empty row.
void AppendApiRow(TraceText *t, ExitControlBlock *cb, const SummaryRow &row, int32_t period,
                  int32_t mode) {
  CallCounterRecord empty;
  CallCounterRecord *record = RecordOf(cb, row.Function, period);
  if (record == nullptr) {
    memset(&empty, 0, sizeof empty);
    record = &empty;
  }
  AppendOneSummaryRecord(t, row.Label, record, mode);
}

void AppendApiRows(TraceText *t, ExitControlBlock *cb, const SummaryRow *rows, int32_t count,
                   int32_t period, int32_t mode) {
  for (int32_t i = 0; i < count; i++) {
    AppendApiRow(t, cb, rows[i], period, mode);
  }
}

// The process-time table of an API exit. `mode` applies to the ZKI rows and
// the Total row; the transaction-manager rows always use mode 0, so their
// split records are never zeroed.
void AppendApiSummaryTable(TraceText *t, ExitControlBlock *cb, int32_t period, int32_t mode) {
  TraceTextAppendLiteral(t, "|                                                          -------- "
                            "Process time (second) -------\n"
                            "|  API         Success     Info  Warning     Fail    Total      "
                            "Average      Minimum      Maximum\n"
                            "|  ---------- -------- -------- -------- -------- -------- "
                            "------------ ------------ ------------\n");
  AppendApiRows(t, cb, kBaseRows, ROW_COUNT(kBaseRows), period, mode);
  if (cb->Identity.ApiLevel >= API_LEVEL_700) {
    AppendApiRows(t, cb, kLevel700Rows, ROW_COUNT(kLevel700Rows), period, mode);
    if (cb->Settings.ShowXaCalls == 1) {
      AppendApiRows(t, cb, kXaRows, ROW_COUNT(kXaRows), period, 0);
    }
  }
  TraceTextAppendLiteral(t, SUMMARY_DASHED_LINE);
  AppendOneSummaryRecord(t, "Total", &cb->Counters.Totals[period], mode);
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
void AppendChannelRequestRow(TraceText *t, ExitControlBlock *cb, const char *label,
                             CallCounterRecord *record, int32_t period, int32_t mode) {
  CallCounterRecord request;
  memset(&request, 0, sizeof request);
  if (record != nullptr) {
    request.MinimumTime = record->SecondMinimum;
    request.MaximumTime = record->SecondMaximum;
    request.TotalTime = record->SecondTotal;
    request.TimedCalls = record->SecondCount;
    request.CallCount = (uint32_t)record->SecondCount;
  }
  AppendOneChlSummaryRecordNorc(t, label, &request, mode, &cb->Counters.Totals[period]);
  if (mode == 1 && record != nullptr) {
    record->SecondMinimum = 0;
    record->SecondMaximum = 0;
    record->SecondTotal = 0;
    record->SecondCount = 0;
  }
}

void AppendChannelReplyRow(TraceText *t, const char *label, CallCounterRecord *record,
                           int32_t mode) {
  CallCounterRecord empty;
  if (record == nullptr) {
    memset(&empty, 0, sizeof empty);
    record = &empty;
  }
  AppendOneChlSummaryRecord(t, label, record, mode);
}

// A request row shown from a record of its own.
void AppendChannelOwnRequestRow(TraceText *t, ExitControlBlock *cb, const char *label,
                                int32_t function, int32_t period, int32_t mode) {
  CallCounterRecord empty;
  CallCounterRecord *record = RecordOf(cb, function, period);
  if (record == nullptr) {
    memset(&empty, 0, sizeof empty);
    record = &empty;
  }
  AppendOneChlSummaryRecordNorc(t, label, record, mode, &cb->Counters.Totals[period]);
}

// The label of one row of a pair: the call's name left-justified in 7
// columns, a blank and the kind of row, cut to fit the area.
void SetPairLabel(char *label, size_t size, const char *name, const char *kind) {
  size_t last = size - 1;
  size_t at = 0;
  for (const char *p = name; *p != '\0' && at < last; p++) {
    label[at++] = *p;
  }
  while (at < PAIR_NAME_WIDTH && at < last) {
    label[at++] = ' ';
  }
  if (at < last) {
    label[at++] = ' ';
  }
  for (const char *p = kind; *p != '\0' && at < last; p++) {
    label[at++] = *p;
  }
  label[at] = '\0';
}

void AppendChannelPair(TraceText *t, ExitControlBlock *cb, const char *name, int32_t function,
                       int32_t period, int32_t mode) {
  char label[32];
  CallCounterRecord *record = RecordOf(cb, function, period);
  SetPairLabel(label, sizeof label, name, "request");
  AppendChannelRequestRow(t, cb, label, record, period, mode);
  SetPairLabel(label, sizeof label, name, "reply");
  AppendChannelReplyRow(t, label, record, mode);
}

void AppendChannelPairs(TraceText *t, ExitControlBlock *cb, const SummaryRow *rows, int32_t count,
                        int32_t period, int32_t mode) {
  for (int32_t i = 0; i < count; i++) {
    AppendChannelPair(t, cb, rows[i].Label, rows[i].Function, period, mode);
  }
}

// The data-length table of a channel exit.
void AppendChannelSummaryTable(TraceText *t, ExitControlBlock *cb, int32_t period, int32_t mode) {
  TraceTextAppendLiteral(t, "|                                                               ---- "
                            "Data length (byte) -----\n"
                            "|  API              Success     Info  Warning     Fail    Total   "
                            "Average   Minimum   Maximum\n"
                            "|  --------------- -------- -------- -------- -------- -------- "
                            "--------- --------- ---------\n");
  AppendChannelPairs(t, cb, kChannelBaseRows, ROW_COUNT(kChannelBaseRows), period, mode);
  if (cb->Identity.ApiLevel >= API_LEVEL_700) {
    AppendChannelPairs(t, cb, kLevel700Rows, ROW_COUNT(kLevel700Rows), period, mode);
  }
  AppendChannelPair(t, cb, "XA", ZKXF_XACLOSE, period, mode);
  AppendChannelOwnRequestRow(t, cb, "XMIT    send", ZKXF_XACOMMIT, period, mode);
  AppendChannelOwnRequestRow(t, cb, "XMIT    receive", ZKXF_XACOMPLETE, period, mode);
  AppendChannelOwnRequestRow(t, cb, "MSG", ZKXF_XAEND, period, mode);
  AppendChannelOwnRequestRow(t, cb, "others", ZKXF_XAFORGET, period, mode);
  TraceTextAppendLiteral(t, SUMMARY_DASHED_LINE);
  AppendOneChlSummaryRecord(t, "Total", &cb->Counters.Totals[period], mode);
}

void AppendSummaryTable(TraceText *t, ExitControlBlock *cb, int32_t period, int32_t mode) {
  if (cb->ExitType == EXIT_TYPE_CHANNEL) {
    AppendChannelSummaryTable(t, cb, period, mode);
  } else {
    AppendApiSummaryTable(t, cb, period, mode);
  }
}

// The split starts at the connection's start until the first split summary
// has been written.
void EnsureSplitStart(ExitControlBlock *cb) {
  if (cb->Counters.SplitStartTime.tv_sec == 0 && cb->Counters.SplitStartTime.tv_usec == 0) {
    cb->Counters.SplitStartTime = cb->Clock.StartTime;
    memcpy(cb->Counters.SplitStartText, cb->Clock.StartTimeText,
           sizeof cb->Counters.SplitStartText);
    cb->Counters.SplitStartText[sizeof cb->Counters.SplitStartText - 1] = '\0';
  }
}

int64_t MicrosecondsBetween(const struct timeval *from, const struct timeval *to) {
  return ((int64_t)to->tv_sec - (int64_t)from->tv_sec) * MICROSECONDS_PER_SECOND +
         ((int64_t)to->tv_usec - (int64_t)from->tv_usec);
}

// The split's length as hours (at least two digits), minutes, seconds and
// microseconds.
void AppendSplitDuration(TraceText *t, int64_t microseconds) {
  if (microseconds < 0) {
    microseconds = 0;
  }
  int64_t seconds = microseconds / MICROSECONDS_PER_SECOND;
  TraceTextAppendLiteral(t, "|  duration         [");
  TraceTextAppendZeroPadded(t, (uint32_t)(seconds / 3600), 2);
  TraceTextAppendChar(t, ':');
  TraceTextAppendZeroPadded(t, (uint32_t)(seconds / 60 % 60), 2);
  TraceTextAppendChar(t, ':');
  TraceTextAppendZeroPadded(t, (uint32_t)(seconds % 60), 2);
  TraceTextAppendChar(t, '.');
  TraceTextAppendZeroPadded(t, (uint32_t)(microseconds % MICROSECONDS_PER_SECOND), 6);
  TraceTextAppendLiteral(t, "]\n");
}

void AppendSplitSummary(TraceText *t, ExitControlBlock *cb, const struct timeval *now,
                        const char *nowText, int64_t elapsed) {
  cb->Counters.SplitSequence++;
  TraceTextAppendLiteral(t, SUMMARY_DASHED_LINE);
  TraceTextAppendLiteral(t, "|Split summary (");
  TraceTextAppendUInt32(t, cb->Counters.SplitSequence, 0);
  TraceTextAppendLiteral(t, ")\n|  start ");
  TraceTextAppendString(t, cb->Counters.SplitStartText);
  TraceTextAppendLiteral(t, "\n|  end   ");
  TraceTextAppendString(t, nowText);
  TraceTextAppendChar(t, '\n');
  AppendSplitDuration(t, elapsed);
  AppendSummaryTable(t, cb, COUNTER_SPLIT, 1);
  TraceTextAppendLiteral(t, SUMMARY_DASHED_LINE);
  TraceTextAppendLiteral(t, "|\n|\n|\n");
  if (now != nullptr) {
    cb->Counters.SplitStartTime = *now;
  }
  memcpy(cb->Counters.SplitStartText, nowText, sizeof cb->Counters.SplitStartText);
  cb->Counters.SplitStartText[sizeof cb->Counters.SplitStartText - 1] = '\0';
}

} // namespace

void PutSummaryRecord(ExitControlBlock *cb) {
  if (cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount == 0) {
    return;
  }
  EnsureSplitStart(cb);
  // Without addresses the output is meant to be comparable between runs:
  // no clock is read, the time texts stay empty and the split lasts 0.
  struct timeval now;
  char nowText[sizeof cb->Counters.SplitStartText];
  memset(&now, 0, sizeof now);
  nowText[0] = '\0';
  int64_t elapsed = 0;
  if (cb->File.NoAddress == 0) {
    SetTimeAndShow(&now, nowText);
    elapsed = MicrosecondsBetween(&cb->Counters.SplitStartTime, &now);
  }

  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&t, "-\n");
  TraceTextAppendLiteral(&t, SUMMARY_DASHED_LINE);
  TraceTextAppendLiteral(&t, "|Call summary - ");
  TraceTextAppendString(&t, nowText);
  TraceTextAppendChar(&t, '\n');
  AppendSummaryTable(&t, cb, COUNTER_CUMULATIVE, 0);
  TraceTextAppendLiteral(&t, SUMMARY_DASHED_LINE);
  TraceTextAppendChar(&t, '\n');

  if (cb->Settings.ShowPerformanceIntervalTime >= 1 ||
      cb->Settings.ShowPerformanceIntervalCount >= 1) {
    AppendSplitSummary(&t, cb, cb->File.NoAddress == 0 ? &now : nullptr, nowText, elapsed);
  }
  TraceTextWrite(&t);
}
