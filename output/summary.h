// Performance summaries: the call summary at each file's open and close,
// and split summaries at the configured intervals.
#pragma once

#include <stdint.h>

struct ExitControlBlock;
struct CallCounterRecord;
struct TraceText;

void PutSummaryRecord(ExitControlBlock *cb);
void PutOneSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                         int32_t mode);
void PutOneChlSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                            int32_t mode);
void PutOneChlSummaryRecordNorc(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                                int32_t mode, CallCounterRecord *total);
// The same rows added to a text that holds the rest of a table.
void AppendOneSummaryRecord(TraceText *t, const char *label, CallCounterRecord *record,
                            int32_t mode);
void AppendOneChlSummaryRecord(TraceText *t, const char *label, CallCounterRecord *record,
                               int32_t mode);
void AppendOneChlSummaryRecordNorc(TraceText *t, const char *label, CallCounterRecord *record,
                                   int32_t mode, CallCounterRecord *total);
// Called once per call by the after-handlers; writes a summary when an
// interval is due.
void ShowPerformanceSummary(ExitControlBlock *cb);
