// Performance summaries: the call summary at each file's open and close,
// and split summaries at the configured intervals.
#pragma once

#include <stdint.h>

struct ExitControlBlock;
struct CallCounterRecord;

void PutSummaryRecord(ExitControlBlock *cb);
void PutOneSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                         int32_t mode);
void PutOneChlSummaryRecord(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                            int32_t mode);
void PutOneChlSummaryRecordNorc(ExitControlBlock *cb, const char *label, CallCounterRecord *record,
                                int32_t mode, CallCounterRecord *total);
// Called once per call by the after-handlers; writes a summary when an
// interval is due.
void ShowPerformanceSummary(ExitControlBlock *cb);
