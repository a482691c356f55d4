// The section lines that open each header, folder and body of parsed
// message data, with the offsets of its bytes in the message.
#include "exit/control_block.h"
#include "format/field_primitives.h"

void TraceTextAppendOffsetRange(TraceText *line, uint32_t offset, uint32_t length) {
  // A section of no bytes shows its start as its end rather than the byte
  // before it.
  uint32_t last = length > 0 ? offset + (length - 1) : offset;
  TraceTextAppendLiteral(line, " offset ");
  TraceTextAppendUInt32(line, offset, 0);
  TraceTextAppendChar(line, '-');
  TraceTextAppendUInt32(line, last, 0);
  TraceTextAppendLiteral(line, " (=x");
  TraceTextAppendHex(line, offset);
  TraceTextAppendLiteral(line, "-x");
  TraceTextAppendHex(line, last);
  TraceTextAppendLiteral(line, ") length ");
  TraceTextAppendUInt32(line, length, 0);
  TraceTextAppendLiteral(line, " (=x");
  TraceTextAppendHex(line, length);
  TraceTextAppendChar(line, ')');
}

int32_t ShowParsedValueOffset(ExitControlBlock *cb, uint32_t offset, uint32_t length,
                              const char *title) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&line, "|> -----");
  TraceTextAppendOffsetRange(&line, offset, length);
  TraceTextAppendLiteral(&line, " - ");
  TraceTextAppendString(&line, title);
  TraceTextAppendChar(&line, '\n');
  return TraceTextWrite(&line);
}

int32_t ShowParsedGeneralData(ExitControlBlock *cb, int32_t offset, int32_t length) {
  if (offset <= 0 || length <= 0) {
    return 0;
  }
  ShowParsedValueOffset(cb, (uint32_t)offset, (uint32_t)length, "Data");
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&line, "|>  (refer to data shown in hexadecimal format)\n");
  return TraceTextWrite(&line);
}
