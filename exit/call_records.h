// The records of a traced call together with its counting: the record text
// is written by output/, then the call is counted in its statistics records
// (the counting's alert line reuses the record's time stamp).
#pragma once

#include <stdint.h>

#include "zk/zk.h"

struct ExitControlBlock;
struct CallCounterRecord;

// Writes the header record of a call before or after it. After the call it
// shows the codes and the elapsed time and counts the call in the given
// counter records (either may be null).
void PutHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason, int32_t compCode,
                     int32_t reason, CallCounterRecord *first, CallCounterRecord *second);

// The one-line record of summary-only mode; times and counts the call.
// `md` may be null; `msgLength` -1 means none.
void PutSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason,
                     CallCounterRecord *first, CallCounterRecord *second, const ZKMD *md,
                     int32_t msgLength);
