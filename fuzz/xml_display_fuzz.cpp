// Fuzz target "xml_display": the XML display of a folder or body on
// arbitrary bytes, offsets, limits and line lengths.
//
// Input: offset (2 bytes), limit (2 bytes, 0xFFFF for none), line length (a
// byte, 40 and up), then the bytes, which end exactly where the input ends.
// Checks: bytes that are shown are XML by the display's own test (first
// byte "<", last significant byte ">", brackets that pair without nesting),
// and bytes that are not shown write nothing; the text passes the checks of
// every parsed view; no tag's indentation passes 64 columns or leaves less
// than 16 columns of a line for its text.
#include <stdint.h>
#include <string.h>

#include <string>

#include "exit/control_block.h"
#include "format/message_content.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/parsed_text_check.h"

namespace {

bool LooksLikeXml(const uint8_t *data, int32_t size) {
  int32_t last = size - 1;
  while (last >= 0 && (data[last] == ' ' || data[last] == 0)) {
    last--;
  }
  if (size < 1 || data[0] != '<' || last < 1 || data[last] != '>') {
    return false;
  }
  int32_t depth = 0;
  for (int32_t i = 0; i <= last; i++) {
    depth += data[i] == '<' ? 1 : data[i] == '>' ? -1 : 0;
    if (depth < 0 || depth > 1) {
      return false;
    }
  }
  return depth == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, size_t inputSize) {
  FuzzInput in(input, inputSize);
  uint32_t offset = in.U16();
  int32_t limit = ReadFuzzLimit(in);
  int32_t lineLength = 40 + in.Byte() * 4;
  const uint8_t *data = input + (inputSize - in.Remaining());
  int32_t size = (int32_t)in.Remaining();

  CaptureBlock &capture = ParsedContentCapture(limit, lineLength);
  ExitControlBlock *cb = capture.cb();
  int32_t shown = ShowParsedXml(cb, data, size, offset, "XML data");
  std::string text = capture.Take();
  if (shown == 0) {
    FUZZ_CHECK(text.empty(), "nothing shown, yet text");
    return 0;
  }
  FUZZ_CHECK(shown == 1);
  FUZZ_CHECK(LooksLikeXml(data, size), "shown, but not XML");
  FUZZ_CHECK(limit < 0 || (uint32_t)limit > offset, "shown beyond the limit");
  CheckParsedText(text, (size_t)size);
  int32_t widest = 64 < lineLength - 19 ? 64 : lineLength - 19;
  size_t start = text.find('\n') + 1; // after the section line
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    std::string line = text.substr(start, end - start);
    start = end + 1;
    if (line.find("nested deeper") != std::string::npos) {
      continue;
    }
    FUZZ_CHECK(line.compare(0, 3, "|> ") == 0, "line without its prefix");
    // A line that starts a tag: its blanks are all indentation (text runs
    // and the rest of a wrapped tag hold no "<").
    size_t blanks = line.find_first_not_of(' ', 3);
    if (blanks == std::string::npos || line[blanks] != '<') {
      continue;
    }
    FUZZ_CHECK((int32_t)(blanks - 3) <= widest, "indentation %zu", blanks - 3);
  }
  return 0;
}
