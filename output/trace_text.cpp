// The trace text builder's out-of-line parts; see trace_text.h.
#include "output/trace_text.h"

#include "output/trace_file.h"

namespace {

// Appends the digits of a decimal that end at `end`, with its sign and
// padding: blanks before the sign, or zeros after it.
void AppendDigits(TraceText *t, const char *first, const char *end, bool negative, int32_t width,
                  bool zeroPad) {
  int32_t length = (int32_t)(end - first);
  int32_t pad = width - length - (negative ? 1 : 0);
  if (pad > 0 && !zeroPad) {
    TraceTextAppendRepeat(t, ' ', pad);
  }
  if (negative) {
    TraceTextAppendChar(t, '-');
  }
  if (pad > 0 && zeroPad) {
    TraceTextAppendRepeat(t, '0', pad);
  }
  TraceTextAppend(t, first, length);
}

// A 32-bit magnitude with its sign and padding. The usual case writes the
// digits straight into the buffer; a text that has no room left (or a
// width beyond any line) goes the general way, which writes out or cuts.
void AppendDecimal32(TraceText *t, uint32_t magnitude, bool negative, int32_t width, bool zeroPad) {
  int32_t digits = DecimalDigitCount32(magnitude);
  int32_t length = digits + (negative ? 1 : 0);
  int32_t pad = width > length ? width - length : 0;
  if (pad <= 16 && TraceTextRoom(t) >= 48) {
    // Padding is written as a block of 16 (inline moves, no loop); what
    // the block writes beyond the padding is overwritten by the number.
    // 48 bytes hold both blocks, the sign and the longest number.
    char *p = t->Buffer + t->Length;
    if (!zeroPad) {
      memcpy(p, "                ", 16);
      p += pad;
    }
    if (negative) {
      *p++ = '-';
    }
    if (zeroPad) {
      memcpy(p, "0000000000000000", 16);
      p += pad;
    }
    DecimalDigitsBackwards32(p + digits, magnitude);
    t->Length = (int32_t)(p + digits - t->Buffer);
    return;
  }
  char area[12];
  char *end = area + sizeof area;
  AppendDigits(t, DecimalDigitsBackwards32(end, magnitude), end, negative, width, zeroPad);
}

// Room for the next piece of an append that did not fit: a full buffer is
// written out first, or, in a text that is cut, 0 ends the append.
int32_t RoomForMore(TraceText *t) {
  if (TraceTextRoom(t) == 0) {
    if (t->WhenFull == TRACE_TEXT_CUT) {
      return 0;
    }
    TraceTextWrite(t);
  }
  return TraceTextRoom(t);
}

} // namespace

int32_t TraceTextWrite(TraceText *t) {
  if (t->Length > 0) {
    t->Buffer[t->Length] = '\0';
    t->Rc = WriteTraceDataLength(t->Cb, t->Buffer, t->Length);
    t->Length = 0;
  }
  return t->Rc;
}

void TraceTextAppendSlow(TraceText *t, const char *bytes, int32_t length) {
  int32_t room;
  while (length > 0 && (room = RoomForMore(t)) > 0) {
    int32_t n = length < room ? length : room;
    memcpy(t->Buffer + t->Length, bytes, (size_t)n);
    t->Length += n;
    bytes += n;
    length -= n;
  }
}

void TraceTextAppendRepeatSlow(TraceText *t, char c, int32_t count) {
  int32_t room;
  while (count > 0 && (room = RoomForMore(t)) > 0) {
    int32_t n = count < room ? count : room;
    memset(t->Buffer + t->Length, c, (size_t)n);
    t->Length += n;
    count -= n;
  }
}

void TraceTextAppendInt32(TraceText *t, int32_t value, int32_t width) {
  bool negative = value < 0;
  AppendDecimal32(t, negative ? 0u - (uint32_t)value : (uint32_t)value, negative, width, false);
}

void TraceTextAppendUInt32(TraceText *t, uint32_t value, int32_t width) {
  AppendDecimal32(t, value, false, width, false);
}

void TraceTextAppendInt64(TraceText *t, int64_t value, int32_t width) {
  bool negative = value < 0;
  uint64_t magnitude = negative ? 0u - (uint64_t)value : (uint64_t)value;
  if (magnitude <= 0xFFFFFFFFu) {
    AppendDecimal32(t, (uint32_t)magnitude, negative, width, false);
    return;
  }
  char area[24];
  char *end = area + sizeof area;
  AppendDigits(t, DecimalDigitsBackwards64(end, magnitude), end, negative, width, false);
}

void TraceTextAppendZeroPadded(TraceText *t, uint32_t value, int32_t width) {
  AppendDecimal32(t, value, false, width, true);
}

void TraceTextAppendHex32(TraceText *t, uint32_t value) {
  char digits[8];
  for (int i = 0; i < 4; i++) {
    const char *pair = HexDigitPair((uint8_t)(value >> (24 - 8 * i)));
    digits[2 * i] = pair[0];
    digits[2 * i + 1] = pair[1];
  }
  TraceTextAppend(t, digits, 8);
}

void TraceTextAppendHex(TraceText *t, uint32_t value) {
  char digits[8];
  char *p = digits + sizeof digits;
  do {
    *--p = "0123456789ABCDEF"[value & 0xF];
    value >>= 4;
  } while (value != 0);
  TraceTextAppend(t, p, (int32_t)(digits + sizeof digits - p));
}

int32_t TraceTextAppendSevenBit(TraceText *t, const void *bytes, int32_t length) {
  const unsigned char *data = (const unsigned char *)bytes;
  int32_t done = 0;
  int32_t room;
  while (done < length && (room = RoomForMore(t)) > 0) {
    int32_t n = length - done < room ? length - done : room;
    char *out = t->Buffer + t->Length;
    for (int32_t k = 0; k < n; k++) {
      unsigned char c = data[done + k];
      if (c == 0) {
        t->Length += k;
        return done + k;
      }
      out[k] = (c < 0x20 || c >= 0x7F) ? '.' : (char)c;
    }
    t->Length += n;
    done += n;
  }
  return done;
}

void TraceTextAppendFieldName(TraceText *t, const char *name) {
  TraceTextAppendLiteral(t, "|> ");
  TraceTextAppendPadded(t, name, FIELD_NAME_WIDTH);
  TraceTextAppendLiteral(t, ": ");
}
