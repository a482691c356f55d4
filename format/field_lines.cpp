// The plain field lines: names, version headers, integers, strings, flag
// lists and integers or pointers in hex.
#include <string.h>

#include "format/field_primitives.h"

namespace {

// A version header line is filled with "-" to this length, as in
// "|> --- MD version 2-----------".
constexpr int32_t kVersionLineWidth = 30;

void AppendHexOrNull(TraceLine *line, uint32_t value, uint8_t nullFlag) {
  if (value == 0 && nullFlag != 0) {
    TraceLineAppend(line, "(null)", 6);
    return;
  }
  TraceLineAppend(line, "0x", 2);
  TraceLineAppendHex32(line, value);
}

// An integer field right-aligned in `width` columns (0: no padding).
int32_t ShowInt32Field(ExitControlBlock *cb, const char *name, int32_t value, int32_t width,
                       uint8_t endOfLine) {
  TraceLine line;
  TraceLineStartField(&line, cb, name);
  TraceLineAppendInt32(&line, value, width);
  if (endOfLine != 0) {
    TraceLineAppendChar(&line, '\n');
  }
  return TraceLineWrite(&line);
}

} // namespace

int32_t ShowFieldName(ExitControlBlock *cb, const char *name) {
  TraceLine line;
  TraceLineStart(&line, cb);
  TraceLineAppendFieldName(&line, name);
  return TraceLineWrite(&line);
}

int32_t ShowDataVersion(ExitControlBlock *cb, const char *structureName, int32_t version) {
  TraceLine line;
  TraceLineStart(&line, cb);
  TraceLineAppend(&line, "|> --- ", 7);
  TraceLineAppendText(&line, structureName);
  TraceLineAppend(&line, " version ", 9);
  TraceLineAppendInt32(&line, version, 0);
  // Names are short, so the line is still in the buffer and its length known.
  if (line.used < kVersionLineWidth) {
    TraceLineAppendRepeat(&line, '-', kVersionLineWidth - line.used);
  }
  TraceLineAppendChar(&line, '\n');
  return TraceLineWrite(&line);
}

int32_t ShowFieldValueZklong(ExitControlBlock *cb, const char *name, int32_t value,
                             uint8_t endOfLine) {
  return ShowInt32Field(cb, name, value, 0, endOfLine);
}

int32_t ShowFieldValueZklongFixedLen(ExitControlBlock *cb, const char *name, int32_t value,
                                     uint8_t endOfLine) {
  return ShowInt32Field(cb, name, value, 6, endOfLine);
}

int32_t ShowFieldValueZkInt64FixedLen(ExitControlBlock *cb, const char *name, uint32_t low,
                                      uint32_t high, const char *description) {
  TraceLine line;
  TraceLineStartField(&line, cb, name);
  TraceLineAppendInt64(&line, (int64_t)(((uint64_t)high << 32) | low), 6);
  if (description != nullptr && description[0] != '\0') {
    TraceLineAppend(&line, " (", 2);
    TraceLineAppendText(&line, description);
    TraceLineAppendChar(&line, ')');
  }
  TraceLineAppendChar(&line, '\n');
  return TraceLineWrite(&line);
}

int32_t ShowFieldValueStringFixed(ExitControlBlock *cb, const char *name, const void *bytes,
                                  int32_t length) {
  const unsigned char *data = (const unsigned char *)bytes;
  if (data == nullptr || length < 0) {
    length = 0;
  }
  while (length > 0 &&
         (data[length - 1] == '\n' || data[length - 1] == '\r' || data[length - 1] == ' ')) {
    length--;
  }
  TraceLine line;
  TraceLineStartField(&line, cb, name);
  // Piece by piece: a zero byte ends the text of its piece only.
  for (int32_t start = 0; start < length; start += FIELD_STRING_PIECE) {
    int32_t end = start + FIELD_STRING_PIECE < length ? start + FIELD_STRING_PIECE : length;
    TraceLineAppendSevenBit(&line, data + start, end - start);
  }
  TraceLineAppendChar(&line, '\n');
  return TraceLineWrite(&line);
}

int32_t ShowAttributeDescription(ExitControlBlock *cb, uint32_t *counter, const char *text) {
  TraceLine line;
  TraceLineStart(&line, cb);
  if (*counter > 0) {
    TraceLineAppend(&line, " / ", 3);
  }
  TraceLineAppendText(&line, text);
  (*counter)++;
  return TraceLineWrite(&line);
}

int32_t Show4ByteIntegerInHex(ExitControlBlock *cb, uint32_t value, uint8_t nullFlag) {
  TraceLine line;
  TraceLineStart(&line, cb);
  AppendHexOrNull(&line, value, nullFlag);
  return TraceLineWrite(&line);
}

int32_t ShowPointerInHex(ExitControlBlock *cb, const void *pointer, uint8_t nullFlag) {
  return Show4ByteIntegerInHex(cb, (uint32_t)(uintptr_t)pointer, nullFlag);
}

int32_t Show8ByteIntegerInHex(ExitControlBlock *cb, uint32_t low, uint32_t high, uint8_t nullFlag) {
  TraceLine line;
  TraceLineStart(&line, cb);
  if (low == 0 && high == 0 && nullFlag != 0) {
    TraceLineAppend(&line, "(null)", 6);
  } else {
    TraceLineAppend(&line, "0x", 2);
    TraceLineAppendHex32(&line, high);
    TraceLineAppendChar(&line, ' ');
    TraceLineAppendHex32(&line, low);
  }
  return TraceLineWrite(&line);
}
