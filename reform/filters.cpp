#include "reform/filters.h"

#include "reform/parser.h"

namespace wzreform {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (size_t i = 0; i < a.size(); i++) {
    if (Lower(a[i]) != Lower(b[i])) {
      return false;
    }
  }
  return true;
}

bool AllDigits(std::string_view text) {
  if (text.empty()) {
    return false;
  }
  for (char c : text) {
    if (c < '0' || c > '9') {
      return false;
    }
  }
  return true;
}

constexpr int64_t kMicrosPerDay = 86400LL * 1000000;

} // namespace

bool WildcardMatch(std::string_view pattern, std::string_view text, bool ignoreCase) {
  // Iterative, with one point to come back to after the last '*': linear
  // in practice, and never recursive whatever the pattern.
  size_t p = 0, t = 0;
  size_t starP = std::string_view::npos, starT = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      starP = p++;
      starT = t;
      continue;
    }
    if (p < pattern.size() &&
        (pattern[p] == '?' || pattern[p] == text[t] ||
         (ignoreCase && Lower(pattern[p]) == Lower(text[t])))) {
      p++;
      t++;
      continue;
    }
    if (starP != std::string_view::npos) {
      p = starP + 1;
      t = ++starT;
      continue;
    }
    return false;
  }
  while (p < pattern.size() && pattern[p] == '*') {
    p++;
  }
  return p == pattern.size();
}

bool ParseFilterTime(std::string_view text, bool end, int64_t *micros, bool *timeOfDay) {
  bool fraction = text.find('.') != std::string_view::npos;
  std::string full(text);
  if (!fraction) {
    full += end ? ".999999" : ".000000";
  }
  if (full.size() == 15) {
    // hh:mm:ss.uuuuuu: the time of day, through a stamp of 1970/01/01.
    int64_t value = ParseStampMicros("1970/01/01 " + full);
    if (value < 0 || value >= kMicrosPerDay) {
      return false;
    }
    *micros = value;
    *timeOfDay = true;
    return true;
  }
  int64_t value = ParseStampMicros(full);
  if (value < 0) {
    return false;
  }
  *micros = value;
  *timeOfDay = false;
  return true;
}

bool CallFilter::SetReason(std::string_view reason) {
  if (reason.empty()) {
    return false;
  }
  std::string_view digits = reason;
  bool negative = false;
  if (digits[0] == '-' || digits[0] == '+') {
    negative = digits[0] == '-';
    digits.remove_prefix(1);
  }
  HasReason = true;
  if (AllDigits(digits) && digits.size() <= 10) {
    int64_t value = 0;
    for (char c : digits) {
      value = value * 10 + (c - '0');
    }
    if (negative) {
      value = -value;
    }
    if (value >= INT32_MIN && value <= UINT32_MAX) {
      ReasonIsNumber = true;
      ReasonNumber = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
      return true;
    }
  }
  ReasonIsNumber = false;
  ReasonName.assign(reason.data(), reason.size());
  return true;
}

bool CallFilter::SetSince(std::string_view time) {
  HasSince = ParseFilterTime(time, false, &Since, &SinceTimeOfDay);
  return HasSince;
}

bool CallFilter::SetUntil(std::string_view time) {
  HasUntil = ParseFilterTime(time, true, &Until, &UntilTimeOfDay);
  return HasUntil;
}

bool CallFilter::Active() const {
  return !Functions.empty() || !Queues.empty() || HasReason || HasSince || HasUntil || FailedOnly;
}

bool CallFilter::Matches(const Call &call) const {
  if (!Functions.empty()) {
    bool any = false;
    for (const std::string &f : Functions) {
      if (WildcardMatch(f, call.Function, true)) {
        any = true;
        break;
      }
    }
    if (!any) {
      return false;
    }
  }
  if (!Queues.empty()) {
    bool any = false;
    for (const std::string &q : Queues) {
      if ((!call.ObjectName.empty() && WildcardMatch(q, call.ObjectName)) ||
          (!call.ResolvedName.empty() && WildcardMatch(q, call.ResolvedName))) {
        any = true;
        break;
      }
    }
    if (!any) {
      return false;
    }
  }
  if (HasReason) {
    if (!call.HasCodes) {
      return false;
    }
    if (ReasonIsNumber ? call.Reason != ReasonNumber : !SameText(ReasonName, call.ReasonName)) {
      return false;
    }
  }
  if (HasSince || HasUntil) {
    // The call's start; its end when the trace shows no start.
    int64_t when = call.BeforeMicros >= 0 ? call.BeforeMicros : call.AfterMicros;
    if (when < 0) {
      return false;
    }
    int64_t ofDay = when % kMicrosPerDay;
    if (HasSince && (SinceTimeOfDay ? ofDay : when) < Since) {
      return false;
    }
    if (HasUntil && (UntilTimeOfDay ? ofDay : when) > Until) {
      return false;
    }
  }
  if (FailedOnly) {
    if (!call.HasCodes) {
      return false;
    }
    bool failed = IsTransactionFunction(call.Function) ? call.CompCode < 0 : call.CompCode == 2;
    if (!failed) {
      return false;
    }
  }
  return true;
}

} // namespace wzreform
