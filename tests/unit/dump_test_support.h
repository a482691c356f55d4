// What the tests of the parameter dumps share: the title line of a dump,
// the unknown-version banner, the titles of a text in order, and counting.
#pragma once

#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "tests/harness_text.h"

inline std::string Title(const std::string &name, int32_t length) {
  char text[96];
  snprintf(text, sizeof text, "%s:(%d=x%X bytes)", name.c_str(), length, (unsigned)length);
  return text;
}

inline std::string VersionBanner(const std::string &name, int32_t version) {
  return "|**********************************\n"
         "|* Unknown : " +
         name + " version " + std::to_string(version) +
         "\n"
         "|**********************************\n";
}

// The dump titles among the lines of a text, in their order: dump lines
// begin with an offset, field and banner lines with "|".
inline std::vector<std::string> Titles(const std::string &text) {
  std::vector<std::string> titles;
  for (const std::string &line : SplitTextLines(text)) {
    if (!line.empty() && line[0] != '|' && line.find(":(") != std::string::npos &&
        line.find(" bytes)") == line.size() - 7) {
      titles.push_back(line);
    }
  }
  return titles;
}

inline size_t Count(const std::string &text, const std::string &what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    n++;
  }
  return n;
}
