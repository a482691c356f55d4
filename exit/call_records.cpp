// A call's record, then its counting; see call_records.h.
#include "exit/call_records.h"

#include "exit/control_block.h"
#include "exit/counting.h"
#include "output/record_writers.h"

void PutHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason, int32_t compCode,
                     int32_t reason, CallCounterRecord *first, CallCounterRecord *second) {
  int64_t elapsed = 0;
  RecordCounting counting = WriteHeaderRecord(cb, function, exitReason, compCode, reason, &elapsed);
  if (counting != RECORD_NOT_COUNTED) {
    ZKLONG countCompCode = compCode;
    ZKLONG countReason = reason;
    uint8_t timed = counting == RECORD_COUNTED_WITH_TIME ? 1 : 0;
    IncrementResultCount(cb, function, &countCompCode, &countReason, first, second, timed,
                         timed ? elapsed : 0, 0, 0);
  }
  cb->Clock.RecordTimeText[0] = '\0';
}

void PutSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason,
                     CallCounterRecord *first, CallCounterRecord *second, const ZKMD *md,
                     int32_t msgLength) {
  int32_t function = cb->Call.CurrentFunction;
  int64_t elapsed = WriteSimpleRecord(cb, compCode, reason, md, msgLength);
  ZKLONG countCompCode = compCode;
  ZKLONG countReason = reason;
  IncrementResultCount(cb, function, &countCompCode, &countReason, first, second, 1, elapsed, 0, 0);
  cb->Clock.RecordTimeText[0] = '\0';
}
