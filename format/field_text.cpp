// Text runs: text too long for a field line, written as lines of their own
// at an indentation and broken at MaxParsedOutputLineLength.
#include "exit/control_block.h"
#include "format/field_primitives.h"

namespace {

constexpr int32_t kLinePrefixLength = 3; // "|> "
// However deep the indentation, a line carries at least this much text.
constexpr int32_t kMinimumTextPerLine = 16;

} // namespace

int32_t ShowTextStringDataRegardingMaximumLrecl(ExitControlBlock *cb, const void *text,
                                                int32_t length, int32_t indentation) {
  const char *data = (const char *)text;
  if (data == nullptr || length < 1) {
    return 0;
  }
  if (indentation < 0) {
    indentation = 0;
  }
  int32_t width = cb->Settings.MaxParsedOutputLineLength - kLinePrefixLength - indentation;
  if (width < kMinimumTextPerLine) {
    width = kMinimumTextPerLine;
  }
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  for (int32_t done = 0; done < length;) {
    int32_t piece = length - done < width ? length - done : width;
    if (data[done] == '\0') {
      break; // the text ends at a zero byte
    }
    TraceTextAppend(&line, "|> ", kLinePrefixLength);
    TraceTextAppendRepeat(&line, ' ', indentation);
    int32_t appended = TraceTextAppendSevenBit(&line, data + done, piece);
    TraceTextAppendChar(&line, '\n');
    if (appended < piece) {
      break;
    }
    done += piece;
  }
  return TraceTextWrite(&line);
}
