// The selection of calls: by function, by queue (object or resolved name,
// with the wildcards * and ?), by reason, by time, and the failed ones.
// Each kind of condition given must hold; several functions or queues
// given are alternatives.
#pragma once

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

#include "reform/call.h"

namespace wzreform {

// Whether text matches the pattern: '*' any run of characters (none too),
// '?' any one character, every other character itself (case-blind with
// ignoreCase, for ASCII letters).
bool WildcardMatch(std::string_view pattern, std::string_view text, bool ignoreCase = false);

// A time of the command line: "YYYY/MM/DD hh:mm:ss[.uuuuuu]" (microseconds
// since 1970, the local time read as UTC, as the trace's stamps are read)
// or "hh:mm:ss[.uuuuuu]" (microseconds since midnight, *timeOfDay set).
// With `end` a time without microseconds means the end of its second.
// false when the text is neither.
bool ParseFilterTime(std::string_view text, bool end, int64_t *micros, bool *timeOfDay);

class CallFilter {
public:
  void AddFunction(std::string_view name) { Functions.emplace_back(name); }
  void AddQueue(std::string_view pattern) { Queues.emplace_back(pattern); }
  // "ZKRC_NO_MSG_AVAILABLE", "XAER_NOTA" or a number ("2033", "-4"); false
  // when the text is empty.
  bool SetReason(std::string_view reason);
  // false when the time is not a time (see ParseFilterTime).
  bool SetSince(std::string_view time);
  bool SetUntil(std::string_view time);
  void SetFailed() { FailedOnly = true; }

  bool Active() const;
  bool Matches(const Call &call) const;

private:
  std::vector<std::string> Functions;
  std::vector<std::string> Queues;
  bool HasReason = false;
  bool ReasonIsNumber = false;
  int32_t ReasonNumber = 0;
  std::string ReasonName;
  bool HasSince = false, SinceTimeOfDay = false;
  int64_t Since = 0;
  bool HasUntil = false, UntilTimeOfDay = false;
  int64_t Until = 0;
  bool FailedOnly = false;
};

} // namespace wzreform
