// Fuzz target "pcf_message": a command-format body through ShowParsedPCF,
// with any byte order, limit, offset in the message and line length.
//
// Input: a header (Header below), then the body, which ends exactly where
// the input ends so that a read past it is caught. Checks:
//  - the text is whole lines, each starting with "|", with no control
//    character but the line feed;
//  - nothing is shown for fewer than 36 bytes within the limit; otherwise
//    the section line gives the body's offset and the length shown;
//  - the parameters shown (their heading lines: number, offsets, length)
//    are exactly those a walk worked out here independently gives: each
//    heading follows the previous parameter without a gap, lies within the
//    bytes shown, and is numbered by the counters of its groups;
//  - the number of lines is bounded by the bytes shown.
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "format/message_content.h"
#include "fuzz/fuzz_support.h"

namespace {

constexpr int64_t kHeaderLength = 36;
constexpr int64_t kParameterWords = 12;
constexpr int32_t kGroupType = 20;
constexpr size_t kDeepestLevels = 33; // the body's level and 32 of groups
const char kHeadingStart[] = "|> ------------------------ : --- ";

struct Header {
  int32_t encoding;
  int32_t limit;
  int32_t lineLength;
  uint32_t offset;
};

// encoding: a byte choosing native, normal, 0, or 4 bytes of its own;
// limit: 2 bytes, 0xFFFF for none; line length: a byte, 40 and up; offset of
// the body in the message: 2 bytes.
Header ReadHeader(FuzzInput &in) {
  Header h;
  h.encoding = ReadFuzzEncoding(in);
  h.limit = ReadFuzzLimit(in);
  h.lineLength = 40 + in.Byte() * 3;
  h.offset = in.U16();
  return h;
}

int32_t Word(const uint8_t *at, int32_t encoding) {
  uint32_t v;
  memcpy(&v, at, 4);
  if (encoding != 0 && (encoding & 2) == 0) {
    v = (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
  }
  return (int32_t)v;
}

// The heading of a parameter as the layout gives it.
std::string Heading(const std::string &number, uint32_t first, uint32_t length) {
  char text[96];
  uint32_t last = first + length - 1;
  snprintf(text, sizeof text, " --- offset %u-%u (=x%X-x%X) length %u (=x%X)", first, last, first,
           last, length, length);
  return kHeadingStart + number + text;
}

// The headings a walk of the body gives: the outermost level holds the
// header's ParameterCount; a parameter that does not fit or would not move
// the walk on ends it; a group opens a level for its members (below the
// deepest level its members count at the deepest); a level whose members
// have all been shown closes.
std::vector<std::string> ExpectedHeadings(const uint8_t *body, int64_t shown, int32_t encoding,
                                          uint32_t offset) {
  struct Level {
    int64_t shown;
    int64_t holds;
  };
  std::vector<Level> levels = {{0, Word(body + 32, encoding)}};
  std::vector<std::string> headings;
  for (int64_t at = kHeaderLength; shown - at >= kParameterWords;) {
    if (levels.size() == 1 && levels[0].shown >= levels[0].holds) {
      break;
    }
    levels.back().shown++;
    int32_t type = Word(body + at, encoding);
    int32_t length = Word(body + at + 4, encoding);
    if (length < kParameterWords || length > shown - at) {
      break;
    }
    std::string number;
    for (const Level &level : levels) {
      number += (number.empty() ? "" : ".") + std::to_string(level.shown);
    }
    headings.push_back(Heading(number, offset + (uint32_t)at, (uint32_t)length));
    if (type == kGroupType) {
      int32_t members = shown - at >= 16 ? Word(body + at + 12, encoding) : 0;
      int64_t holds = members > 0 ? members : 0;
      if (levels.size() < kDeepestLevels) {
        levels.push_back({0, holds});
      } else {
        levels.back().holds += holds;
      }
    }
    while (levels.size() > 1 && levels.back().shown >= levels.back().holds) {
      levels.pop_back();
    }
    at += length;
  }
  return headings;
}

void CheckLines(const std::vector<std::string> &lines, const std::string &text, int64_t shown) {
  FUZZ_CHECK(text.back() == '\n', "text does not end in a line feed");
  for (unsigned char c : text) {
    FUZZ_CHECK(c == '\n' || (c >= ' ' && c != 0x7F), "control byte 0x%02X", c);
  }
  for (const std::string &line : lines) {
    FUZZ_CHECK(!line.empty() && line[0] == '|', "a line without \"|\": [%s]", line.c_str());
  }
  // At most a few lines for every 4 bytes (a list value, a heading and its
  // words), one for every byte of a string list of 1-byte strings, and the
  // header's lines and banners.
  FUZZ_CHECK((int64_t)lines.size() <= 40 + shown * 2, "%zu lines for %lld bytes", lines.size(),
             (long long)shown);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, size_t inputSize) {
  FuzzInput in(input, inputSize);
  Header h = ReadHeader(in);
  const uint8_t *body = input + (inputSize - in.Remaining());
  int32_t size = (int32_t)in.Remaining();

  CaptureBlock &capture = ParsedContentCapture(h.limit, h.lineLength);
  ExitControlBlock *cb = capture.cb();
  ShowParsedPCF(cb, h.encoding, body, size, h.offset);
  std::string text = capture.Take();

  int64_t shown = size;
  if (h.limit >= 0 && (int64_t)h.limit - h.offset < shown) {
    shown = (int64_t)h.limit - h.offset;
  }
  if (shown < kHeaderLength) {
    FUZZ_CHECK(text.empty(), "text for %lld bytes: [%s]", (long long)shown, text.c_str());
    return 0;
  }
  std::vector<std::string> lines = SplitLines(text);
  CheckLines(lines, text, shown);

  char section[128];
  snprintf(section, sizeof section,
           "|> ----- offset %u-%u (=x%X-x%X) length %u (=x%X) - ZKCFH (PCF header and parameters)",
           h.offset, h.offset + (uint32_t)shown - 1, h.offset, h.offset + (uint32_t)shown - 1,
           (uint32_t)shown, (uint32_t)shown);
  bool unknownVersion = Word(body + 8, h.encoding) > 3;
  size_t sectionLine = unknownVersion ? 3 : 0; // after the unknown-version banner
  FUZZ_CHECK(lines.size() > sectionLine && lines[sectionLine] == section, "section: [%s] not [%s]",
             lines.size() > sectionLine ? lines[sectionLine].c_str() : "", section);

  std::vector<std::string> headings;
  for (const std::string &line : lines) {
    if (line.compare(0, sizeof kHeadingStart - 1, kHeadingStart) == 0) {
      headings.push_back(line);
    }
  }
  std::vector<std::string> expected = ExpectedHeadings(body, shown, h.encoding, h.offset);
  FUZZ_CHECK(headings.size() == expected.size(), "%zu parameters shown, %zu expected",
             headings.size(), expected.size());
  for (size_t i = 0; i < headings.size(); i++) {
    FUZZ_CHECK(headings[i] == expected[i], "parameter %zu: [%s] not [%s]", i + 1,
               headings[i].c_str(), expected[i].c_str());
  }
  FUZZ_CHECK(cb->FatalError == 0);
  return 0;
}
