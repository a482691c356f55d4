#include "reform/trace_names.h"

#include <string.h>

namespace wzreform {

namespace {

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() &&
         memcmp(text.data() + text.size() - suffix.size(), suffix.data(), suffix.size()) == 0;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The digits at the end of text, removed from it; false when there are
// none or too many for 64 bits.
bool TakeNumber(std::string_view *text, uint64_t *value, size_t *digits) {
  size_t n = 0;
  while (n < text->size() && IsDigit((*text)[text->size() - 1 - n])) {
    n++;
  }
  if (n == 0 || n > 18) {
    return false;
  }
  uint64_t v = 0;
  for (size_t i = text->size() - n; i < text->size(); i++) {
    v = v * 10 + static_cast<uint64_t>((*text)[i] - '0');
  }
  text->remove_suffix(n);
  *value = v;
  *digits = n;
  return true;
}

bool TakeSuffix(std::string_view *text, std::string_view suffix) {
  if (!EndsWith(*text, suffix)) {
    return false;
  }
  text->remove_suffix(suffix.size());
  return true;
}

} // namespace

bool ParseTraceFileName(std::string_view name, TraceFileName *out) {
  if (name.size() < 4 || name.substr(0, 3) != "wz_" || name.substr(0, 17) == "wz_apiexit_debug_") {
    return false;
  }
  // The extension: ".t" or ".txt", then what closing and compressing add.
  std::string_view rest = name;
  static const std::string_view kParts[] = {".gz", ".zst", ".f", ".txt", ".t"};
  std::string_view first;
  for (int guard = 0; guard < 8; guard++) {
    bool took = false;
    for (std::string_view part : kParts) {
      if (rest.size() > part.size() && EndsWith(rest, part)) {
        rest.remove_suffix(part.size());
        first = part;
        took = true;
        break;
      }
    }
    if (!took || (!rest.empty() && IsDigit(rest.back()))) {
      break;
    }
  }
  if (first != ".t" && first != ".txt") {
    return false;
  }
  std::string_view extension = name.substr(rest.size());
  uint64_t sequence, pid, tid;
  size_t digits;
  // Three digits with leading zeros below 1000, all the digits from there on.
  if (!TakeNumber(&rest, &sequence, &digits) || digits < 3 || (digits > 3 && sequence < 1000)) {
    return false;
  }
  std::string_view connection = rest;
  std::string mode;
  if (TakeSuffix(&rest, "_perf_")) {
    mode = "perf";
  } else if (TakeSuffix(&rest, "_summary_")) {
    mode = "summary";
  } else if (!TakeSuffix(&rest, "_")) {
    return false;
  }
  if (!TakeNumber(&rest, &tid, &digits) || !TakeSuffix(&rest, "_") ||
      !TakeNumber(&rest, &pid, &digits) || !TakeSuffix(&rest, "_")) {
    return false;
  }
  // "wz_" <qmgr> "_" <program>: the queue manager's name in file-name form
  // ends at the first "_".
  std::string_view middle = rest.substr(3);
  size_t split = middle.find('_');
  if (split == std::string_view::npos || split == 0 || split + 1 >= middle.size()) {
    return false;
  }
  out->Connection.assign(connection.data(), connection.size());
  out->QMgr.assign(middle.data(), split);
  out->Program.assign(middle.data() + split + 1, middle.size() - split - 1);
  out->Mode = mode;
  out->ProcessId = static_cast<int64_t>(pid);
  out->ThreadId = static_cast<int64_t>(tid);
  out->Sequence = sequence;
  out->Extension.assign(extension.data(), extension.size());
  return true;
}

} // namespace wzreform
