// The one way trace text is built. Text is gathered in a buffer on the
// stack and handed to the trace file with its length known. What happens
// when the buffer is full is chosen when the text is started:
//
//   TRACE_TEXT_WRITE_OUT  the buffer is written out and reused, so a text
//                         of any length can be built (field lines, dumps,
//                         profile and summary lines);
//   TRACE_TEXT_CUT        what does not fit is dropped, so the text reaches
//                         the file in one piece or not at all (records).
//
// Appends take text, bytes, a repeated character, decimals, hex and the
// padded field name; nothing takes a format string. Nothing allocates.
#pragma once

#include <stdint.h>
#include <string.h>

#include "text/number_text.h"

struct ExitControlBlock;

// Bytes of text one buffer holds (one more is kept for a NUL).
#define TRACE_TEXT_SIZE 2048
// Width of the name column of a field line.
#define FIELD_NAME_WIDTH 25

enum TraceTextWhenFull : uint8_t { TRACE_TEXT_WRITE_OUT, TRACE_TEXT_CUT };

struct TraceText {
  ExitControlBlock *Cb; // where the text is written
  int32_t Length;       // bytes held, NUL not counted
  int32_t Rc;           // what the last write to the trace file returned
  uint8_t WhenFull;     // TraceTextWhenFull
  char Buffer[TRACE_TEXT_SIZE + 1];
};

inline void TraceTextStart(TraceText *t, ExitControlBlock *cb, TraceTextWhenFull whenFull) {
  t->Cb = cb;
  t->Length = 0;
  t->Rc = 0;
  t->WhenFull = whenFull;
}

inline int32_t TraceTextRoom(const TraceText *t) {
  return TRACE_TEXT_SIZE - t->Length;
}

// Hands what the buffer holds to the trace file (nothing when it is empty)
// and empties it; returns what the last write of this text returned (0 when
// none was needed yet, -1 on a file failure).
int32_t TraceTextWrite(TraceText *t);

// The text held, NUL-terminated, for a caller that passes it on whole.
inline const char *TraceTextString(TraceText *t) {
  t->Buffer[t->Length] = '\0';
  return t->Buffer;
}

// Takes a full buffer as chosen at the start: writes it out, or drops what
// does not fit.
void TraceTextAppendSlow(TraceText *t, const char *bytes, int32_t length);
void TraceTextAppendRepeatSlow(TraceText *t, char c, int32_t count);

// `length` bytes as they are; a negative length appends nothing.
inline void TraceTextAppend(TraceText *t, const char *bytes, int32_t length) {
  if ((uint32_t)length <= (uint32_t)TraceTextRoom(t)) {
    memcpy(t->Buffer + t->Length, bytes, (size_t)length);
    t->Length += length;
    return;
  }
  TraceTextAppendSlow(t, bytes, length);
}

// A string constant, its length known when the code is compiled (only an
// array is taken, so a pointer cannot pass for one).
template <int32_t N> inline void TraceTextAppendLiteral(TraceText *t, const char (&literal)[N]) {
  TraceTextAppend(t, literal, N - 1);
}

// A NUL-terminated string; null appends nothing.
inline void TraceTextAppendString(TraceText *t, const char *text) {
  if (text != nullptr) {
    TraceTextAppend(t, text, (int32_t)strlen(text));
  }
}

// At most `limit` bytes of a string that may lack its NUL ("%.*s"); null
// appends nothing.
inline void TraceTextAppendBounded(TraceText *t, const char *text, int32_t limit) {
  if (text != nullptr && limit > 0) {
    TraceTextAppend(t, text, (int32_t)strnlen(text, (size_t)limit));
  }
}

inline void TraceTextAppendChar(TraceText *t, char c) {
  if (t->Length < TRACE_TEXT_SIZE) {
    t->Buffer[t->Length++] = c;
    return;
  }
  TraceTextAppendSlow(t, &c, 1);
}

// `count` copies of one character; a negative count appends nothing.
inline void TraceTextAppendRepeat(TraceText *t, char c, int32_t count) {
  if ((uint32_t)count <= (uint32_t)TraceTextRoom(t)) {
    memset(t->Buffer + t->Length, c, (size_t)count);
    t->Length += count;
    return;
  }
  TraceTextAppendRepeatSlow(t, c, count);
}

// The string left-justified in `width` columns ("%-*s"): blanks follow a
// shorter one, a longer one is not cut. Null counts as empty.
inline void TraceTextAppendPadded(TraceText *t, const char *text, int32_t width) {
  int32_t length = 0;
  if (text != nullptr) {
    length = (int32_t)strlen(text);
    TraceTextAppend(t, text, length);
  }
  if (length < width) {
    TraceTextAppendRepeat(t, ' ', width - length);
  }
}

// Decimal, right-aligned in `width` columns (0: no padding) like "%*d".
void TraceTextAppendInt32(TraceText *t, int32_t value, int32_t width);
void TraceTextAppendUInt32(TraceText *t, uint32_t value, int32_t width);
void TraceTextAppendInt64(TraceText *t, int64_t value, int32_t width);
// Decimal with zeros in front to `width` digits, like "%0*u".
void TraceTextAppendZeroPadded(TraceText *t, uint32_t value, int32_t width);
// Eight upper-case hex digits, like "%08X".
void TraceTextAppendHex32(TraceText *t, uint32_t value);
// Upper-case hex digits without leading zeros, like "%X".
void TraceTextAppendHex(TraceText *t, uint32_t value);

// At most `length` bytes, stopping at a zero byte, each byte outside 7-bit
// printable ASCII as "."; returns the number of bytes appended.
int32_t TraceTextAppendSevenBit(TraceText *t, const void *bytes, int32_t length);

// "|> ", the name left-justified in 25 columns (a longer one is not cut), ": ".
void TraceTextAppendFieldName(TraceText *t, const char *name);

// For loops that write many bytes at a time (the hex dump): room for
// `length` more bytes, written directly at the returned position and then
// taken in with TraceTextCommit. A text that writes out when full is written
// out first when the room is short; a text that is cut returns null then.
// `length` must not exceed TRACE_TEXT_SIZE.
inline char *TraceTextReserve(TraceText *t, int32_t length) {
  if (TraceTextRoom(t) < length) {
    if (t->WhenFull == TRACE_TEXT_CUT) {
      return nullptr;
    }
    TraceTextWrite(t);
  }
  return t->Buffer + t->Length;
}

// Takes in the bytes written from the reserved position up to `end`.
inline void TraceTextCommit(TraceText *t, const char *end) {
  t->Length = (int32_t)(end - t->Buffer);
}
