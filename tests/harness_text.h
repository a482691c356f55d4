// Text helpers shared by the unit-test fixtures and the fuzz harness:
// splitting captured trace text into lines, and filling the blank-padded
// fixed-width fields of the exit's parameter structures.
#pragma once

#include <string.h>

#include <string>
#include <vector>

// The lines of `text` without their line feeds; a last line without one
// counts too.
inline std::vector<std::string> SplitTextLines(const std::string &text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) {
      end = text.size();
    }
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

// `value` in a field of `width` bytes, cut to fit, blanks after it.
inline void SetBlankPadded(char *field, size_t width, const std::string &value) {
  memset(field, ' ', width);
  memcpy(field, value.data(), value.size() < width ? value.size() : width);
}
