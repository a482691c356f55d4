// Byte fields: one line of hex digits and character image for short fields,
// the prefixed hex dump for long ones, and message handles.
#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "output/record_writers.h"

namespace {

bool AllZero(const unsigned char *bytes, int32_t length) {
  for (int32_t i = 0; i < length; i++) {
    if (bytes[i] != 0) {
      return false;
    }
  }
  return true;
}

// Writes the character image of the bytes: every byte sequence that forms
// one character of the connection's code page as itself, every other byte
// as ".". Bytes gather into a pending sequence while a pattern of the
// code-range map accepts them (the first pattern that allows every pending
// byte and the new one at their positions); when that pattern ends after
// the new byte the sequence is a character. A byte that no pattern accepts
// turns the pending bytes and itself into dots, and so do bytes still
// pending at the end.
void AppendCharacterImage(TraceText *line, const CodeRangeMap *map, const unsigned char *bytes,
                          int32_t length) {
  unsigned char pending[CODE_RANGE_POSITIONS];
  int32_t pendingCount = 0;
  for (int32_t i = 0; i < length; i++) {
    unsigned char byte = bytes[i];
    if (pendingCount == 0 && map->firstGlyph[byte] != 0) {
      TraceTextAppendChar(line, map->firstGlyph[byte]); // a character alone, or none
      continue;
    }
    int32_t step = CodeRangeStep(map, pending, pendingCount, byte);
    if (step == CODE_RANGE_REJECTED) {
      TraceTextAppendRepeat(line, '.', pendingCount + 1);
      pendingCount = 0;
      continue;
    }
    pending[pendingCount++] = byte;
    if (step == CODE_RANGE_COMPLETE) {
      TraceTextAppend(line, (const char *)pending, pendingCount);
      pendingCount = 0;
    }
  }
  TraceTextAppendRepeat(line, '.', pendingCount);
}

bool IsNullField(const unsigned char *data, int32_t length) {
  return length < 1 || AllZero(data, length);
}

} // namespace

void TraceTextAppendHexSingleLine(TraceText *line, const void *bytes, int32_t length,
                                  uint8_t nullCheck, uint8_t hex, uint8_t endOfLine) {
  const unsigned char *data = (const unsigned char *)bytes;
  if (data == nullptr || length < 0) {
    length = 0;
  }
  if (nullCheck != 0 && IsNullField(data, length)) {
    TraceTextAppend(line, "(null)\n", 7);
    return;
  }
  // Hex digits in groups of four bytes: 9 columns per group, then two blanks.
  int32_t hexWidth = length * 2 + (length > 0 ? (length - 1) / 4 : 0) + 2;
  char *out = hex != 0 && hexWidth <= TRACE_TEXT_SIZE ? TraceTextReserve(line, hexWidth) : nullptr;
  if (out != nullptr) {
    for (int32_t i = 0; i < length; i++) {
      if (i > 0 && (i & 3) == 0) {
        *out++ = ' ';
      }
      memcpy(out, HexDigitPair(data[i]), 2);
      out += 2;
    }
    memcpy(out, "  ", 2);
    TraceTextCommit(line, out + 2);
  } else if (hex != 0) {
    for (int32_t i = 0; i < length; i++) {
      if (i > 0 && (i & 3) == 0) {
        TraceTextAppendChar(line, ' ');
      }
      TraceTextAppend(line, HexDigitPair(data[i]), 2);
    }
    TraceTextAppend(line, "  ", 2);
  }
  TraceTextAppendChar(line, '[');
  AppendCharacterImage(line, &line->Cb->CodeRange, data, length);
  TraceTextAppendChar(line, ']');
  if (endOfLine != 0) {
    TraceTextAppendChar(line, '\n');
  }
}

int32_t ShowParsedHexValueSingleLine(ExitControlBlock *cb, const char *name, const void *bytes,
                                     int32_t length, uint8_t nullCheck, uint8_t hex,
                                     uint8_t endOfLine) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendHexSingleLine(&line, bytes, length, nullCheck, hex, endOfLine);
  return TraceTextWrite(&line);
}

int32_t ShowParsedHexValueMultipleLines(ExitControlBlock *cb, const char *name, const void *bytes,
                                        int32_t length, uint8_t nullCheck) {
  const unsigned char *data = (const unsigned char *)bytes;
  if (data == nullptr || length < 0) {
    length = 0;
  }
  TraceText line;
  TraceTextStartField(&line, cb, name);
  if (nullCheck != 0 && IsNullField(data, length)) {
    TraceTextAppend(&line, "(null)\n", 7);
    return TraceTextWrite(&line);
  }
  TraceTextAppendChar(&line, '\n');
  int32_t rc = TraceTextWrite(&line);
  // No title: the field line above names the bytes.
  PutHexData(cb, "", data, length, HEX_MODE_PREFIXED);
  return rc;
}

int32_t ShowParsedHexValueFormatSelect(ExitControlBlock *cb, const char *name, const void *bytes,
                                       int32_t length) {
  if (length < FIELD_SINGLE_LINE_HEX_LIMIT) {
    return ShowParsedHexValueSingleLine(cb, name, bytes, length, 1, 1, 1);
  }
  return ShowParsedHexValueMultipleLines(cb, name, bytes, length, 1);
}

int32_t ShowZKHMSG(ExitControlBlock *cb, const char *name, ZKHMSG handle) {
  return ShowParsedHexValueSingleLine(cb, name, &handle, (int32_t)sizeof handle, 1, 1, 1);
}
