// Performance intervals: a summary after every so many calls and after every
// so many seconds, checked once per call by the after-handlers.
#include <time.h>

#include "exit/control_block.h"
#include "output/timing.h"
#include "output/summary.h"
#include "output/trace_file.h"

namespace {

// A summary at an interval's end may start a new trace file first, as a
// before-call header may; its own lines then stay in one file.
void PutIntervalSummary(ExitControlBlock *cb) {
  cb->File.RotationPermitted = 1;
  int32_t rc = SetDataToWriteBuffer(cb, "");
  cb->File.RotationPermitted = 0;
  if (rc != RC_OK) {
    return;
  }
  PutSummaryRecord(cb);
}

} // namespace

void ShowPerformanceSummary(ExitControlBlock *cb) {
  const ParameterSettings &settings = cb->Settings;
  uint8_t written = 0;

  if (settings.ShowPerformanceIntervalCount > 0) {
    cb->Counters.IntervalCallCounter++;
    if (cb->Counters.IntervalCallCounter >= settings.ShowPerformanceIntervalCount) {
      PutIntervalSummary(cb);
      cb->Counters.IntervalCallCounter = 0;
      written = 1;
    }
  }

  if (settings.ShowPerformanceIntervalTime >= 1) {
    time_t now = CallClockSeconds(cb);
    if (cb->Counters.LastIntervalTime == 0) {
      cb->Counters.LastIntervalTime = now;
    } else if ((int64_t)now - (int64_t)cb->Counters.LastIntervalTime >=
               (int64_t)settings.ShowPerformanceIntervalTime) {
      // One summary covers both intervals when they end at the same call.
      if (written == 0) {
        PutIntervalSummary(cb);
      }
      cb->Counters.LastIntervalTime = now;
    }
  }
}
