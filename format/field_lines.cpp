// The plain field lines: names, version headers, integers, strings, flag
// lists and integers or pointers in hex.
#include <string.h>

#include "format/field_primitives.h"
#include "text/number_text.h"

namespace {

// A version header line is filled with "-" to this length, as in
// "|> --- MD version 2-----------".
constexpr int32_t kVersionLineWidth = 30;

void AppendHexOrNull(TraceText *line, uint32_t value, uint8_t nullFlag) {
  if (value == 0 && nullFlag != 0) {
    TraceTextAppend(line, "(null)", 6);
    return;
  }
  TraceTextAppend(line, "0x", 2);
  TraceTextAppendHex32(line, value);
}

// An integer field right-aligned in `width` columns (0: no padding).
int32_t ShowInt32Field(ExitControlBlock *cb, const char *name, int32_t value, int32_t width,
                       uint8_t endOfLine) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendInt32(&line, value, width);
  if (endOfLine != 0) {
    TraceTextAppendChar(&line, '\n');
  }
  return TraceTextWrite(&line);
}

} // namespace

int32_t ShowFieldName(ExitControlBlock *cb, const char *name) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendFieldName(&line, name);
  return TraceTextWrite(&line);
}

void TraceTextAppendVersionHeader(TraceText *line, const char *structureName, int32_t version) {
  char number[FORMAT_DECIMAL_SIZE];
  int32_t digits = FormatDecimalInt64(number, version, 0, 0);
  const char *shown = structureName != nullptr ? structureName : "";
  int32_t name = (int32_t)strlen(shown);
  TraceTextAppend(line, "|> --- ", 7);
  TraceTextAppend(line, shown, name);
  TraceTextAppend(line, " version ", 9);
  TraceTextAppend(line, number, digits);
  // The length is counted, not taken from the buffer: the buffer may have
  // been written out in the middle of the line.
  int32_t length = 7 + name + 9 + digits;
  if (length < kVersionLineWidth) {
    TraceTextAppendRepeat(line, '-', kVersionLineWidth - length);
  }
  TraceTextAppendChar(line, '\n');
}

int32_t ShowDataVersion(ExitControlBlock *cb, const char *structureName, int32_t version) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendVersionHeader(&line, structureName, version);
  return TraceTextWrite(&line);
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
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendInt64(&line, (int64_t)(((uint64_t)high << 32) | low), 6);
  if (description != nullptr && description[0] != '\0') {
    TraceTextAppend(&line, " (", 2);
    TraceTextAppendString(&line, description);
    TraceTextAppendChar(&line, ')');
  }
  TraceTextAppendChar(&line, '\n');
  return TraceTextWrite(&line);
}

void TraceTextAppendFieldString(TraceText *line, const void *bytes, int32_t length) {
  const unsigned char *data = (const unsigned char *)bytes;
  if (data == nullptr || length < 0) {
    length = 0;
  }
  while (length > 0 &&
         (data[length - 1] == '\n' || data[length - 1] == '\r' || data[length - 1] == ' ')) {
    length--;
  }
  // Piece by piece: a zero byte ends the text of its piece only.
  for (int32_t start = 0; start < length; start += FIELD_STRING_PIECE) {
    int32_t end = start + FIELD_STRING_PIECE < length ? start + FIELD_STRING_PIECE : length;
    TraceTextAppendSevenBit(line, data + start, end - start);
  }
  TraceTextAppendChar(line, '\n');
}

int32_t ShowFieldValueStringFixed(ExitControlBlock *cb, const char *name, const void *bytes,
                                  int32_t length) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendFieldString(&line, bytes, length);
  return TraceTextWrite(&line);
}

int32_t ShowAttributeDescription(ExitControlBlock *cb, uint32_t *counter, const char *text) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  if (*counter > 0) {
    TraceTextAppend(&line, " / ", 3);
  }
  TraceTextAppendString(&line, text);
  (*counter)++;
  return TraceTextWrite(&line);
}

int32_t Show4ByteIntegerInHex(ExitControlBlock *cb, uint32_t value, uint8_t nullFlag) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  AppendHexOrNull(&line, value, nullFlag);
  return TraceTextWrite(&line);
}

int32_t ShowPointerInHex(ExitControlBlock *cb, const void *pointer, uint8_t nullFlag) {
  return Show4ByteIntegerInHex(cb, (uint32_t)(uintptr_t)pointer, nullFlag);
}

int32_t Show8ByteIntegerInHex(ExitControlBlock *cb, uint32_t low, uint32_t high, uint8_t nullFlag) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  if (low == 0 && high == 0 && nullFlag != 0) {
    TraceTextAppend(&line, "(null)", 6);
  } else {
    TraceTextAppend(&line, "0x", 2);
    TraceTextAppendHex32(&line, high);
    TraceTextAppendChar(&line, ' ');
    TraceTextAppendHex32(&line, low);
  }
  return TraceTextWrite(&line);
}
