// A call's place in time among the calls around it, as the timeline
// formats (trace events, OTLP spans) draw it.
#pragma once

#include <stdint.h>

#include <algorithm>

#include "reform/call.h"
#include "reform/summary.h"

namespace wzreform {

// The start and the end of a call's span, in microseconds.
struct SpanBounds {
  int64_t Start;
  int64_t End;
};

// The span of a call: its own times when known, kept within its parent's
// span when it has one (parent null for a call of the top level). An
// unfinished call of the top level lasts up to `last`, the latest end seen
// so far where it is drawn (its track, its trace file); a call with no
// time at all takes its parent's start, or `last`. `last` then moves on to
// the span's end. False (and nothing placed) when the call has no time and
// neither a parent nor a last time to borrow one from.
inline bool PlaceSpan(const Call &call, const SpanBounds *parent, int64_t &last,
                      SpanBounds *place) {
  int64_t start = -1;
  int64_t end = -1;
  bool timed = CallSpan(call, &start, &end);
  if (!timed) {
    if (parent != nullptr) {
      start = parent->Start;
    } else if (last > 0) {
      start = last;
    } else {
      return false;
    }
  }
  if (end < start) {
    end = parent == nullptr && call.Unfinished ? std::max(start, last) : start;
  }
  if (parent != nullptr) {
    start = std::clamp(start, parent->Start, parent->End);
    end = std::clamp(end, start, parent->End);
  }
  last = std::max(last, end);
  place->Start = start;
  place->End = end;
  return true;
}

} // namespace wzreform
