#include "fuzz/parsed_text_check.h"

#include "fuzz/fuzz_support.h"

void CheckParsedText(const std::string &text, size_t dataSize) {
  if (text.empty()) {
    return;
  }
  FUZZ_CHECK(text.back() == '\n', "text does not end in a line feed");
  size_t lines = 0;
  bool lineStart = true;
  for (unsigned char c : text) {
    if (lineStart) {
      FUZZ_CHECK(c == '|', "a line starts with 0x%02X", c);
    }
    FUZZ_CHECK(c == '\n' || (c >= ' ' && c != 0x7F), "control byte 0x%02X", c);
    lineStart = c == '\n';
    lines += lineStart;
  }
  // Every line shows at least one byte of the data, but for a fixed number
  // per header (field lines, sections, reports), and a header takes at least
  // 12 bytes.
  FUZZ_CHECK(lines <= 200 + dataSize * 16, "%zu lines for %zu bytes", lines, dataSize);
}
