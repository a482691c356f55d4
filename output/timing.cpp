// Time stamps are formatted by hand: one is written with every record, and
// the printf family and the local-time conversion would cost more than the
// rest of a summary-only record together.
#include "output/timing.h"

#include <string.h>
#include <time.h>

#include "exit/control_block.h"
#include "output/trace_text.h"
#include "text/number_text.h"

namespace {

// "[YYYY/MM/DD hh:mm:ss." of a local time; returns its length. Every number
// is written in full, as "%04u" and "%02u" would: `out` needs 72 bytes.
int32_t FormatStampPrefix(char *out, const struct tm *local) {
  char *p = out;
  *p++ = '[';
  p += FormatDecimalUInt32(p, (uint32_t)(local->tm_year + 1900), 4, 1);
  *p++ = '/';
  p += FormatDecimalUInt32(p, (uint32_t)(local->tm_mon + 1), 2, 1);
  *p++ = '/';
  p += FormatDecimalUInt32(p, (uint32_t)local->tm_mday, 2, 1);
  *p++ = ' ';
  p += FormatDecimalUInt32(p, (uint32_t)local->tm_hour, 2, 1);
  *p++ = ':';
  p += FormatDecimalUInt32(p, (uint32_t)local->tm_min, 2, 1);
  *p++ = ':';
  p += FormatDecimalUInt32(p, (uint32_t)local->tm_sec, 2, 1);
  *p++ = '.';
  return (int32_t)(p - out);
}

// The prefix, the microseconds in 6 digits and "]", cut to the 63
// characters a 64-byte buffer holds; returns the length.
// The usual prefix ("[YYYY/MM/DD hh:mm:ss.") has 21 characters; both the
// prefix area and the stamp text have room for this many.
#define STAMP_PREFIX_COPY 24
static_assert(STAMP_PREFIX_COPY + 8 <= TIME_STAMP_TEXT_SIZE, "stamp text too small");

int32_t FinishStamp(char *text, const char *prefix, int32_t prefixLength, uint32_t microseconds) {
  const int32_t limit = TIME_STAMP_TEXT_SIZE - 1;
  if (microseconds < 1000000 && prefixLength <= STAMP_PREFIX_COPY) {
    // The usual case: six digits and "]" after the prefix, which is copied
    // as a block of fixed size (inline moves, no library call).
    memcpy(text, prefix, STAMP_PREFIX_COPY);
    char *p = text + prefixLength;
    PutSixDigits(p, microseconds);
    p[6] = ']';
    p[7] = '\0';
    return prefixLength + 7;
  }
  char tail[FORMAT_DECIMAL_SIZE + 2];
  int32_t tailLength = FormatDecimalUInt32(tail, microseconds, 6, 1);
  tail[tailLength++] = ']';
  if (prefixLength > limit) {
    prefixLength = limit;
  }
  if (tailLength > limit - prefixLength) {
    tailLength = limit - prefixLength;
  }
  memcpy(text, prefix, (size_t)prefixLength);
  memcpy(text + prefixLength, tail, (size_t)tailLength);
  text[prefixLength + tailLength] = '\0';
  return prefixLength + tailLength;
}

} // namespace

void SetTimeAndShow(struct timeval *now, char *text) {
  gettimeofday(now, nullptr);
  if (text == nullptr) {
    return;
  }
  struct tm local;
  time_t seconds = now->tv_sec;
  localtime_r(&seconds, &local);
  char prefix[72];
  int32_t length = FormatStampPrefix(prefix, &local);
  FinishStamp(text, prefix, length, (uint32_t)now->tv_usec);
}

int32_t SetRecordTimeAndShow(ExitControlBlock *cb, struct timeval *now) {
  *now = *ReadCallClock(cb);
  if (cb->Clock.StampPrefixLength == 0 || cb->Clock.StampSecond != now->tv_sec) {
    struct tm local;
    time_t seconds = now->tv_sec;
    localtime_r(&seconds, &local);
    cb->Clock.StampPrefixLength = FormatStampPrefix(cb->Clock.StampPrefix, &local);
    cb->Clock.StampSecond = now->tv_sec;
  }
  return FinishStamp(cb->Clock.RecordTimeText, cb->Clock.StampPrefix, cb->Clock.StampPrefixLength,
                     (uint32_t)now->tv_usec);
}

int32_t FormatProcessTime(char *text, int64_t microseconds) {
  char *p = text;
  if (microseconds >= 0 && microseconds <= 0xFFFFFFFFLL) {
    // The usual case, in 32-bit arithmetic: far cheaper than 64-bit on i386.
    uint32_t value = (uint32_t)microseconds;
    p += FormatDecimalUInt32(p, value / 1000000, 5, 0);
    *p++ = '.';
    p += FormatDecimalUInt32(p, value % 1000000, 6, 1);
  } else {
    // Division truncates toward zero: a negative time has a negative
    // remainder, written with its sign as "%06lld" does.
    p += FormatDecimalInt64(p, microseconds / 1000000, 5, 0);
    *p++ = '.';
    p += FormatDecimalInt64(p, microseconds % 1000000, 6, 1);
  }
  *p = '\0';
  return (int32_t)(p - text);
}

void AppendRecordTime(TraceText *text, const ExitControlBlock *cb, int32_t length) {
  // Copied as a block of 32 bytes when the stamp has its usual length: the
  // text area holds 64.
  static_assert(sizeof cb->Clock.RecordTimeText >= 32, "record time text too small");
  char *p = length <= 32 ? TraceTextReserve(text, 32) : nullptr;
  if (p == nullptr) {
    TraceTextAppend(text, cb->Clock.RecordTimeText, length);
    return;
  }
  memcpy(p, cb->Clock.RecordTimeText, 32);
  TraceTextCommit(text, p + length);
}

void AppendProcessTime(TraceText *text, int64_t microseconds) {
  if (microseconds >= 0 && microseconds <= 0xFFFFFFFFLL) {
    uint32_t value = (uint32_t)microseconds; // 32-bit arithmetic, as above
    uint32_t seconds = value / 1000000;
    TraceTextAppendUInt32(text, seconds, 5);
    char *p = TraceTextReserve(text, 7);
    if (p != nullptr) {
      *p = '.';
      PutSixDigits(p + 1, value - seconds * 1000000);
      TraceTextCommit(text, p + 7);
    }
    return;
  }
  char area[32];
  TraceTextAppend(text, area, FormatProcessTime(area, microseconds));
}

void SetConnectionStartTime(ExitControlBlock *cb) {
  SetTimeAndShow(&cb->Clock.StartTime, cb->Clock.StartTimeText);
}

void setTimeBeforeApiCall(ExitControlBlock *cb) {
  cb->Clock.ApiBeforeTime = *ReadCallClock(cb);
}

void SetTimeBeforeApiCallXa(ExitControlBlock *cb) {
  cb->Clock.XaBeforeTime = *ReadCallClock(cb);
}

void ReformatProcessTime(char *text, int32_t, int64_t microseconds) {
  // The buffer size is not consulted: callers pass room for any 64-bit value.
  FormatProcessTime(text, microseconds);
}

int64_t CalculateApiCallTimeAndShow(ExitControlBlock *cb, int32_t function,
                                    const struct timeval *now, char *text, int64_t *elapsed) {
  const struct timeval &start =
      function >= ZKXF_XACLOSE ? cb->Clock.XaBeforeTime : cb->Clock.ApiBeforeTime;
  int64_t microseconds = ((int64_t)now->tv_sec - (int64_t)start.tv_sec) * 1000000 +
                         ((int64_t)now->tv_usec - (int64_t)start.tv_usec);
  if (text != nullptr) {
    ReformatProcessTime(text, 0, microseconds);
  }
  if (elapsed != nullptr) {
    *elapsed = microseconds;
  }
  return microseconds;
}
