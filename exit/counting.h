// Call counting and timing: elapsed times, result classes, counters and the
// alert file line.
#pragma once

#include <stdint.h>
#include <sys/time.h>

#include "zk/zktypes.h"

struct ExitControlBlock;
struct CallCounterRecord;

// Result classes of a call.
#define RESULT_OK 0
#define RESULT_EXPECTED_FAILURE 1
#define RESULT_WARNING 2
#define RESULT_ERROR 3

int32_t ClassifyCallResult(ZKLONG compCode, ZKLONG reason);

void IncrementResultCount(ExitControlBlock *cb, int32_t function, const ZKLONG *pCompCode,
                          const ZKLONG *pReason, CallCounterRecord *first,
                          CallCounterRecord *second, uint8_t timeGiven, int64_t elapsed,
                          uint8_t secondGiven, int64_t secondMeasure);
