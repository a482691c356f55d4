// Clock of the exit: time stamps of calls and of the connection's start.
#pragma once

#include <stdint.h>
#include <sys/time.h>
#include <time.h>

#include "exit/control_block.h"

struct TraceText;

// Size of a time stamp text buffer.
#define TIME_STAMP_TEXT_SIZE 64

// One clock reading per exit call: the first record, before-time or
// interval check of a call that needs a precise time reads the clock, and
// everything else in the same call reuses that reading (time stamp,
// before-time, elapsed time, write interval, summary interval). The
// dispatcher forgets the reading when an exit call begins.
// Inline: the dispatcher runs these on every exit call, traced or not.
inline const struct timeval *ReadCallClock(ExitControlBlock *cb) {
  if (cb->Clock.CallTimeRead == 0) {
    gettimeofday(&cb->Clock.CallTime, nullptr);
    cb->Clock.CallTimeRead = 1;
  }
  return &cb->Clock.CallTime;
}
// The reading's seconds, or, when the call has taken no reading yet, the
// coarse time() (cheaper than a precise reading, and all the interval
// checks need).
inline time_t CallClockSeconds(const ExitControlBlock *cb) {
  return cb->Clock.CallTimeRead != 0 ? cb->Clock.CallTime.tv_sec : time(nullptr);
}
inline void ForgetCallClock(ExitControlBlock *cb) {
  cb->Clock.CallTimeRead = 0;
}

// Fills `now` with the time of day; when `text` is given (64 bytes) writes
// it as "[YYYY/MM/DD hh:mm:ss.uuuuuu]" in local time.
void SetTimeAndShow(struct timeval *now, char *text);

// The same for the record being written, from the call's clock reading:
// fills `now` and writes its text
// into the block's RecordTimeText, reusing the date and time up to the
// second while the second stays the same. Returns the text's length.
int32_t SetRecordTimeAndShow(ExitControlBlock *cb, struct timeval *now);

// Appends the record's time stamp text (`length` bytes of RecordTimeText).
void AppendRecordTime(TraceText *text, const ExitControlBlock *cb, int32_t length);

// Writes an elapsed time in microseconds as whole seconds right-aligned in
// 5 columns, a point and 6 digits ("%5lld.%06lld") with a NUL; returns the
// length. `text` needs room for 32 bytes.
int32_t FormatProcessTime(char *text, int64_t microseconds);

// The same elapsed time appended to a trace text.
void AppendProcessTime(TraceText *text, int64_t microseconds);

// Records the connection's start time and its text in the control block.
void SetConnectionStartTime(ExitControlBlock *cb);

// The before-time of a call (XA calls have their own).
void setTimeBeforeApiCall(ExitControlBlock *cb);
void SetTimeBeforeApiCallXa(ExitControlBlock *cb);

// Elapsed microseconds from the call's before-time to `now`; with a text
// buffer also its text ("%5lld.%06lld").
int64_t CalculateApiCallTimeAndShow(ExitControlBlock *cb, int32_t function,
                                    const struct timeval *now, char *text, int64_t *elapsed);

// "%5lld.%06lld": whole seconds right-aligned in 5, then 6 digits.
void ReformatProcessTime(char *text, int32_t size, int64_t microseconds);
