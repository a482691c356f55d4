// Fuzz target "message_chain": the parsed view of message data, from any
// starting format, on arbitrary bytes, byte orders, limits and line lengths.
//
// Input: a header (Header below), then the message data, which ends exactly
// where the input ends so that a read past it is caught. Checks: the text
// is whole lines, each starting with "|", with no control character but the
// line feed and no NUL; the number of lines is bounded by the data's size
// (the walk cannot go round in circles); nothing sets the fatal-error flag.
#include <stdint.h>
#include <string.h>

#include <string>

#include "exit/control_block.h"
#include "format/message_content.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/parsed_text_check.h"

namespace {

// The formats the chain knows, and two it does not.
const char *const kFormats[] = {"ZKADMIN ", "ZKDEAD  ", "ZKHDIST ", "ZKHEPCF ", "ZKEVENT ",
                                "ZKHMDE  ", "ZKPCF   ", "ZKHREF  ", "ZKHRF   ", "ZKHRF2  ",
                                "ZKSTR   ", "ZKTRIG  ", "ZKXMIT  ", "        ", "NOTKNOWN"};
constexpr size_t kFormatCount = sizeof kFormats / sizeof kFormats[0];

struct Header {
  char format[8];
  int32_t encoding;
  int32_t limit;
  int32_t lineLength;
};

// format: a byte choosing one of kFormats, or (past them) 8 bytes of its own;
// encoding: a byte choosing native, normal, 0, or 4 bytes of its own;
// limit: 2 bytes, 0xFFFF for none; line length: a byte, 40 and up.
Header ReadHeader(FuzzInput &in) {
  Header h;
  uint8_t choice = in.Byte();
  if (choice < kFormatCount) {
    memcpy(h.format, kFormats[choice], 8);
  } else {
    std::string own = in.Bytes(8);
    memset(h.format, ' ', 8);
    memcpy(h.format, own.data(), own.size());
  }
  h.encoding = ReadFuzzEncoding(in);
  h.limit = ReadFuzzLimit(in);
  h.lineLength = 40 + in.Byte() * 4;
  return h;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, size_t inputSize) {
  FuzzInput in(input, inputSize);
  Header h = ReadHeader(in);
  const uint8_t *data = input + (inputSize - in.Remaining());
  int32_t size = (int32_t)in.Remaining();

  CaptureBlock &capture = ParsedContentCapture(h.limit, h.lineLength);
  ExitControlBlock *cb = capture.cb();
  ShowParsedMsgData(cb, h.format, h.encoding, data, size);
  std::string text = capture.Take();
  CheckParsedText(text, (size_t)size);
  FUZZ_CHECK(cb->FatalError == 0);
  return 0;
}
