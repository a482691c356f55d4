// Hex-and-character dumps of storage: 16 bytes per line, the offset, the
// bytes in hex and, when wanted, the bytes as characters of the code page
// the connection shows data in. Repeated lines collapse into one note.
//
// Dumps run for every structure and every message a traced call passes, so
// the lines are written with table look-ups straight into the trace text,
// which goes to the trace file a dozen lines at a time.
#include "output/record_writers.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "output/trace_text.h"
#include "text/number_text.h"

#define HEX_SAME16(c) c, c, c, c, c, c, c, c, c, c, c, c, c, c, c, c
#define HEX_DIGITS16 '0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'

const char GraphicHexUpper4Bits[256] = {
    HEX_SAME16('0'), HEX_SAME16('1'), HEX_SAME16('2'), HEX_SAME16('3'),
    HEX_SAME16('4'), HEX_SAME16('5'), HEX_SAME16('6'), HEX_SAME16('7'),
    HEX_SAME16('8'), HEX_SAME16('9'), HEX_SAME16('A'), HEX_SAME16('B'),
    HEX_SAME16('C'), HEX_SAME16('D'), HEX_SAME16('E'), HEX_SAME16('F'),
};

const char GraphicHexLower4Bits[256] = {
    HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16,
    HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16,
    HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16, HEX_DIGITS16,
};

#undef HEX_SAME16
#undef HEX_DIGITS16

char *FormatHexBytes(char *out, const void *bytes, int32_t length) {
  const uint8_t *b = (const uint8_t *)bytes;
  for (int32_t i = 0; i < length; i++) {
    *out++ = GraphicHexUpper4Bits[b[i]];
    *out++ = GraphicHexLower4Bits[b[i]];
  }
  *out = '\0';
  return out;
}

namespace {

#define DUMP_BYTES_PER_LINE 16
// What prefixed mode puts before every line: "|> " and four blanks.
#define DUMP_LINE_PREFIX "|>     "
#define DUMP_LINE_PREFIX_LENGTH 7
// Room asked for before each line: a "same as above" line and a line of
// the longest kind (prefix, hex part, a character column that carries a
// character over from the line before).
#define DUMP_LONGEST_LINE 128
// Room for the title line; a longer title is cut.
#define DUMP_TITLE_SIZE 512

// Eight upper-case hex digits of a 32-bit value.
inline char *PutOffset(char *p, uint32_t value) {
  memcpy(p, HexDigitPair((uint8_t)(value >> 24)), 2);
  memcpy(p + 2, HexDigitPair((uint8_t)(value >> 16)), 2);
  memcpy(p + 4, HexDigitPair((uint8_t)(value >> 8)), 2);
  memcpy(p + 6, HexDigitPair((uint8_t)value), 2);
  return p + 8;
}

// 1 when the 16 bytes at `a` and `b` are the same (two 8-byte compares,
// without a call).
inline bool SameLine(const uint8_t *a, const uint8_t *b) {
  uint64_t a0, a1, b0, b1;
  memcpy(&a0, a, 8);
  memcpy(&a1, a + 8, 8);
  memcpy(&b0, b, 8);
  memcpy(&b1, b + 8, 8);
  return ((a0 ^ b0) | (a1 ^ b1)) == 0;
}

// The bytes of a character not yet complete: they are written once the
// character ends, or as "." when it turns out not to be one.
struct PendingCharacter {
  uint8_t bytes[CODE_RANGE_POSITIONS];
  int32_t count;
};

char *PutPendingAsDots(char *p, PendingCharacter *pending) {
  for (int32_t i = 0; i < pending->count; i++) {
    *p++ = '.';
  }
  pending->count = 0;
  return p;
}

// Feeds one byte to the character walk and writes what it completes. A byte
// is taken by the first pattern that allows every pending byte and this one
// at their positions; a pattern that ends after this position completes the
// character. A byte that no pattern takes turns the pending bytes and itself
// into dots.
char *PutCharacterByte(char *p, const CodeRangeMap *map, PendingCharacter *pending, uint8_t b) {
  int32_t step = pending->count == 0 ? map->firstStep[b]
                                     : CodeRangeStep(map, pending->bytes, pending->count, b);
  if (step == CODE_RANGE_REJECTED) {
    p = PutPendingAsDots(p, pending);
    *p++ = '.';
  } else if (step == CODE_RANGE_COMPLETE) {
    for (int32_t i = 0; i < pending->count; i++) {
      *p++ = (char)pending->bytes[i];
    }
    *p++ = (char)b;
    pending->count = 0;
  } else {
    pending->bytes[pending->count++] = b;
  }
  return p;
}

// The character column of `count` bytes. While no character is pending,
// bytes are shown by one look-up each (themselves, or a dot) until one
// starts a longer character, which the walk above then follows.
char *PutCharacters(char *p, const CodeRangeMap *map, PendingCharacter *pending,
                    const uint8_t *bytes, int32_t count) {
  const char *glyphs = map->firstGlyph;
  int32_t i = 0;
  while (i < count) {
    if (pending->count == 0) {
      int32_t start = i;
      char *out = p - start;
      for (; i < count; i++) {
        char glyph = glyphs[bytes[i]];
        if (glyph == '\0') {
          break;
        }
        out[i] = glyph;
      }
      p += i - start;
      if (i == count) {
        break;
      }
    }
    p = PutCharacterByte(p, map, pending, bytes[i]);
    i++;
  }
  return p;
}

// The hex part of a line: 16 bytes as digit pairs, a blank after every
// fourth byte; a short last line is padded with blanks to the full width.
char *PutHexPart(char *p, const uint8_t *bytes, int32_t count) {
  if (count == DUMP_BYTES_PER_LINE) {
    for (int32_t group = 0; group < 4; group++) {
      memcpy(p, HexDigitPair(bytes[0]), 2);
      memcpy(p + 2, HexDigitPair(bytes[1]), 2);
      memcpy(p + 4, HexDigitPair(bytes[2]), 2);
      memcpy(p + 6, HexDigitPair(bytes[3]), 2);
      p[8] = ' ';
      p += 9;
      bytes += 4;
    }
    return p;
  }
  for (int32_t i = 0; i < DUMP_BYTES_PER_LINE; i++) {
    if (i < count) {
      memcpy(p, HexDigitPair(bytes[i]), 2);
    } else {
      p[0] = ' ';
      p[1] = ' ';
    }
    p += 2;
    if ((i & 3) == 3) {
      *p++ = ' ';
    }
  }
  return p;
}

// One dump line: prefix, offset, hex part padded to its full width and the
// character column when wanted. The column begins with the bytes of a
// character carried over from the line before, written where it ends.
char *PutDumpLine(char *p, const ExitControlBlock *cb, const uint8_t *bytes, int32_t count,
                  uint32_t offset, bool prefixed, bool characters, bool lastLine, bool carryBroken,
                  PendingCharacter *pending) {
  if (prefixed) {
    memcpy(p, DUMP_LINE_PREFIX, DUMP_LINE_PREFIX_LENGTH);
    p += DUMP_LINE_PREFIX_LENGTH;
  }
  p = PutOffset(p, offset);
  *p++ = ':';
  p = PutHexPart(p, bytes, count);
  if (!characters) {
    *p++ = '\n';
    return p;
  }
  *p++ = ' ';
  *p++ = '[';
  if (carryBroken) {
    // A character left open before lines that were left out is not
    // completed by the bytes after them.
    p = PutPendingAsDots(p, pending);
  }
  p = PutCharacters(p, &cb->CodeRange, pending, bytes, count);
  if (lastLine) {
    p = PutPendingAsDots(p, pending); // a character the data cuts off
  }
  *p++ = pending->count > 0 ? '>' : ']';
  *p++ = '\n';
  return p;
}

char *PutSameAsAbove(char *p, uint32_t first, uint32_t last, bool prefixed) {
  static const char kSame[] = " same as above\n";
  if (prefixed) {
    memcpy(p, DUMP_LINE_PREFIX, DUMP_LINE_PREFIX_LENGTH);
    p += DUMP_LINE_PREFIX_LENGTH;
  }
  p = PutOffset(p, first);
  *p++ = '-';
  p = PutOffset(p, last);
  memcpy(p, kSame, sizeof kSame - 1);
  return p + sizeof kSame - 1;
}

// The title line; one longer than DUMP_TITLE_SIZE - 1 is cut and still
// ends its line, so that the first dump line starts a line of its own.
void AppendDumpTitle(TraceText *dump, const ExitControlBlock *cb, const char *title,
                     const void *address, int32_t shownLength) {
  TraceTextAppendBounded(dump, title, DUMP_TITLE_SIZE);
  TraceTextAppendLiteral(dump, ":(");
  TraceTextAppendUInt32(dump, (uint32_t)shownLength, 0);
  TraceTextAppendLiteral(dump, "=x");
  TraceTextAppendHex(dump, (uint32_t)shownLength);
  if (cb->File.NoAddress) {
    TraceTextAppendLiteral(dump, " bytes)\n");
  } else {
    TraceTextAppendLiteral(dump, " bytes, Address 0x");
    TraceTextAppendHex32(dump, (uint32_t)(uintptr_t)address);
    TraceTextAppendLiteral(dump, ")\n");
  }
  if (dump->Length > DUMP_TITLE_SIZE - 1) {
    dump->Length = DUMP_TITLE_SIZE - 1;
    dump->Buffer[dump->Length - 1] = '\n';
  }
}

} // namespace

void PutHexDataLen(ExitControlBlock *cb, const char *title, const void *address, int32_t dumpLength,
                   int32_t mode, int32_t shownLength) {
  TraceText dump;
  TraceTextStart(&dump, cb, TRACE_TEXT_WRITE_OUT);

  if (title != nullptr && title[0] != '\0' && mode == HEX_MODE_PLAIN) {
    AppendDumpTitle(&dump, cb, title, address, shownLength);
  }

  if (address != nullptr && dumpLength > 0) {
    const uint8_t *bytes = (const uint8_t *)address;
    bool prefixed = mode == HEX_MODE_PREFIXED;
    bool characters = cb->Settings.ShowHexCharImage != 0 || prefixed;
    bool collapse = cb->Settings.Spare == 0;
    PendingCharacter pending = {};
    int32_t skippedFrom = -1; // offset of the first line left out, -1: none
    bool carryBroken = false; // lines were left out since the line before
    // Lines are written straight into the text's buffer; it is written out
    // when less than two of the longest lines would still fit.
    char *p = TraceTextReserve(&dump, 2 * DUMP_LONGEST_LINE);
    const char *limit = dump.Buffer + TRACE_TEXT_SIZE - 2 * DUMP_LONGEST_LINE;

    for (int32_t offset = 0; offset < dumpLength; offset += DUMP_BYTES_PER_LINE) {
      int32_t count = dumpLength - offset;
      bool lastLine = count <= DUMP_BYTES_PER_LINE;
      if (lastLine == false) {
        count = DUMP_BYTES_PER_LINE;
      }
      if (collapse && offset > 0 && !lastLine &&
          SameLine(bytes + offset, bytes + offset - DUMP_BYTES_PER_LINE)) {
        if (skippedFrom < 0) {
          skippedFrom = offset;
        }
        continue;
      }
      if (p > limit) {
        TraceTextCommit(&dump, p);
        p = TraceTextReserve(&dump, TRACE_TEXT_SIZE); // all of it, once written out
      }
      if (skippedFrom >= 0) {
        p = PutSameAsAbove(p, (uint32_t)skippedFrom, (uint32_t)offset - 1, prefixed);
        skippedFrom = -1;
        carryBroken = true;
      }
      p = PutDumpLine(p, cb, bytes + offset, count, (uint32_t)offset, prefixed, characters,
                      lastLine, carryBroken, &pending);
      carryBroken = false;
    }
    TraceTextCommit(&dump, p);
  }
  TraceTextWrite(&dump);
}

void PutHexData(ExitControlBlock *cb, const char *title, const void *address, int32_t length,
                int32_t mode) {
  PutHexDataLen(cb, title, address, length, mode, length);
}
