// The line builder of the field primitives: text gathered in a stack buffer
// and handed to WriteTraceData when the line is done or the buffer is full.
// Numbers are converted by hand (two digits per step) rather than through
// the printf family: these run for every field of every traced structure.
// The record writers and the clock use the same conversion on plain buffers.
#include <string.h>

#include "format/field_primitives.h"
#include "output/trace_file.h"

namespace {

constexpr char kDigitPairs[201] = "00010203040506070809"
                                  "10111213141516171819"
                                  "20212223242526272829"
                                  "30313233343536373839"
                                  "40414243444546474849"
                                  "50515253545556575859"
                                  "60616263646566676869"
                                  "70717273747576777879"
                                  "80818283848586878889"
                                  "90919293949596979899";

// Writes the decimal digits of `value` so that they end at `end`; returns
// the position of the first digit.
char *DigitsBackwards(char *end, uint64_t value) {
  char *p = end;
  if (value <= 0xFFFFFFFFu) {
    uint32_t v = (uint32_t)value; // 32-bit division is much cheaper on i386
    while (v >= 100) {
      uint32_t pairIndex = (v % 100) * 2;
      v /= 100;
      p -= 2;
      p[0] = kDigitPairs[pairIndex];
      p[1] = kDigitPairs[pairIndex + 1];
    }
    if (v >= 10) {
      p -= 2;
      p[0] = kDigitPairs[v * 2];
      p[1] = kDigitPairs[v * 2 + 1];
    } else {
      *--p = (char)('0' + v);
    }
    return p;
  }
  while (value >= 10) {
    *--p = (char)('0' + value % 10);
    value /= 10;
  }
  *--p = (char)('0' + value);
  return p;
}

void AppendDecimal(TraceLine *line, uint64_t magnitude, bool negative, int32_t width) {
  char digits[24];
  char *end = digits + sizeof digits;
  char *first = DigitsBackwards(end, magnitude);
  if (negative) {
    *--first = '-';
  }
  int32_t length = (int32_t)(end - first);
  if (width > length) {
    TraceLineAppendRepeat(line, ' ', width - length);
  }
  TraceLineAppend(line, first, length);
}

// The digits of the magnitude with the sign and padding in front; see
// FormatDecimalInt64.
int32_t FormatDecimal(char *out, uint64_t magnitude, bool negative, int32_t width,
                      uint8_t zeroPad) {
  char digits[24];
  char *end = digits + sizeof digits;
  char *first = DigitsBackwards(end, magnitude);
  int32_t length = (int32_t)(end - first);
  int32_t pad = width - length - (negative ? 1 : 0);
  char *p = out;
  if (pad > 0 && !zeroPad) {
    memset(p, ' ', (size_t)pad);
    p += pad;
  }
  if (negative) {
    *p++ = '-';
  }
  if (pad > 0 && zeroPad) {
    memset(p, '0', (size_t)pad);
    p += pad;
  }
  memcpy(p, first, (size_t)length);
  return (int32_t)(p + length - out);
}

} // namespace

const char FieldHexPairs[513] = "000102030405060708090A0B0C0D0E0F"
                                "101112131415161718191A1B1C1D1E1F"
                                "202122232425262728292A2B2C2D2E2F"
                                "303132333435363738393A3B3C3D3E3F"
                                "404142434445464748494A4B4C4D4E4F"
                                "505152535455565758595A5B5C5D5E5F"
                                "606162636465666768696A6B6C6D6E6F"
                                "707172737475767778797A7B7C7D7E7F"
                                "808182838485868788898A8B8C8D8E8F"
                                "909192939495969798999A9B9C9D9E9F"
                                "A0A1A2A3A4A5A6A7A8A9AAABACADAEAF"
                                "B0B1B2B3B4B5B6B7B8B9BABBBCBDBEBF"
                                "C0C1C2C3C4C5C6C7C8C9CACBCCCDCECF"
                                "D0D1D2D3D4D5D6D7D8D9DADBDCDDDEDF"
                                "E0E1E2E3E4E5E6E7E8E9EAEBECEDEEEF"
                                "F0F1F2F3F4F5F6F7F8F9FAFBFCFDFEFF";

int32_t TraceLineWrite(TraceLine *line) {
  if (line->used > 0) {
    line->text[line->used] = '\0';
    line->rc = WriteTraceData(line->cb, line->text);
    line->used = 0;
  }
  return line->rc;
}

void TraceLineAppendSlow(TraceLine *line, const char *text, int32_t length) {
  while (length > 0) {
    if (TraceLineRoom(line) == 0) {
      TraceLineWrite(line);
    }
    int32_t room = TraceLineRoom(line);
    int32_t n = length < room ? length : room;
    memcpy(line->text + line->used, text, (size_t)n);
    line->used += n;
    text += n;
    length -= n;
  }
}

void TraceLineAppendRepeatSlow(TraceLine *line, char c, int32_t count) {
  while (count > 0) {
    if (TraceLineRoom(line) == 0) {
      TraceLineWrite(line);
    }
    int32_t room = TraceLineRoom(line);
    int32_t n = count < room ? count : room;
    memset(line->text + line->used, c, (size_t)n);
    line->used += n;
    count -= n;
  }
}

int32_t TraceLineAppendSevenBit(TraceLine *line, const void *bytes, int32_t length) {
  const unsigned char *data = (const unsigned char *)bytes;
  const int32_t capacity = TRACE_LINE_SIZE - 1;
  int32_t done = 0;
  while (done < length) {
    if (line->used == capacity) {
      TraceLineWrite(line);
    }
    int32_t room = capacity - line->used;
    int32_t n = length - done < room ? length - done : room;
    char *out = line->text + line->used;
    for (int32_t k = 0; k < n; k++) {
      unsigned char c = data[done + k];
      if (c == 0) {
        line->used += k;
        return done + k;
      }
      out[k] = (c < 0x20 || c >= 0x7F) ? '.' : (char)c;
    }
    line->used += n;
    done += n;
  }
  return done;
}

void TraceLineAppendInt32(TraceLine *line, int32_t value, int32_t width) {
  bool negative = value < 0;
  uint32_t magnitude = negative ? 0u - (uint32_t)value : (uint32_t)value;
  AppendDecimal(line, magnitude, negative, width);
}

void TraceLineAppendUInt32(TraceLine *line, uint32_t value, int32_t width) {
  AppendDecimal(line, value, false, width);
}

void TraceLineAppendInt64(TraceLine *line, int64_t value, int32_t width) {
  bool negative = value < 0;
  uint64_t magnitude = negative ? 0u - (uint64_t)value : (uint64_t)value;
  AppendDecimal(line, magnitude, negative, width);
}

int32_t FormatDecimalInt64(char *out, int64_t value, int32_t width, uint8_t zeroPad) {
  bool negative = value < 0;
  uint64_t magnitude = negative ? 0u - (uint64_t)value : (uint64_t)value;
  return FormatDecimal(out, magnitude, negative, width, zeroPad);
}

int32_t FormatDecimalUInt32(char *out, uint32_t value, int32_t width, uint8_t zeroPad) {
  return FormatDecimal(out, value, false, width, zeroPad);
}

void TraceLineAppendHex32(TraceLine *line, uint32_t value) {
  char digits[8];
  for (int i = 0; i < 4; i++) {
    const char *pair = FieldHexPair((uint8_t)(value >> (24 - 8 * i)));
    digits[2 * i] = pair[0];
    digits[2 * i + 1] = pair[1];
  }
  TraceLineAppend(line, digits, 8);
}

void TraceLineAppendFieldName(TraceLine *line, const char *name) {
  TraceLineAppend(line, "|> ", 3);
  int32_t length = name != nullptr ? (int32_t)strlen(name) : 0;
  TraceLineAppend(line, name, length);
  if (length < FIELD_NAME_WIDTH) {
    TraceLineAppendRepeat(line, ' ', FIELD_NAME_WIDTH - length);
  }
  TraceLineAppend(line, ": ", 2);
}
