// A record being put together in a caller's stack buffer before it is
// handed to the trace file in one piece. Text that does not fit is cut.
// The buffer holds a NUL-terminated text after every append.
#pragma once

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "format/field_primitives.h"

struct ExitControlBlock;

struct RecordText {
  char *Buffer;
  int32_t Size;   // bytes of Buffer, terminating NUL included
  int32_t Length; // bytes used, NUL not counted
};

inline void RecordTextStart(RecordText *r, char *buffer, int32_t size) {
  r->Buffer = buffer;
  r->Size = size;
  r->Length = 0;
  buffer[0] = '\0';
}

// Appends `length` bytes of text, or as many as fit.
inline void RecordTextAppendBytes(RecordText *r, const char *text, int32_t length) {
  int32_t room = r->Size - 1 - r->Length;
  if (length > room) {
    length = room;
  }
  memcpy(r->Buffer + r->Length, text, (size_t)length);
  r->Length += length;
  r->Buffer[r->Length] = '\0';
}

// A string constant, its length known when the code is compiled (only an
// array is taken, so a pointer cannot pass for one).
template <int32_t N> inline void RecordTextAppendLiteral(RecordText *r, const char (&literal)[N]) {
  RecordTextAppendBytes(r, literal, N - 1);
}

inline void RecordTextAppendString(RecordText *r, const char *text) {
  RecordTextAppendBytes(r, text, (int32_t)strlen(text));
}

inline void RecordTextAppendChar(RecordText *r, char c) {
  if (r->Length < r->Size - 1) {
    r->Buffer[r->Length++] = c;
    r->Buffer[r->Length] = '\0';
  }
}

// `count` copies of one character, or as many as fit.
inline void RecordTextAppendRepeat(RecordText *r, char c, int32_t count) {
  int32_t room = r->Size - 1 - r->Length;
  if (count > room) {
    count = room;
  }
  if (count > 0) {
    memset(r->Buffer + r->Length, c, (size_t)count);
    r->Length += count;
  }
  r->Buffer[r->Length] = '\0';
}

// The string left-justified in `width` columns, like "%-*s": blanks follow a
// shorter one, a longer one is not cut.
inline void RecordTextAppendPadded(RecordText *r, const char *text, int32_t width) {
  int32_t length = (int32_t)strlen(text);
  RecordTextAppendBytes(r, text, length);
  if (length < width) {
    RecordTextAppendRepeat(r, ' ', width - length);
  }
}

// A decimal number right-aligned in `width` columns (0: no padding; at most
// FORMAT_DECIMAL_SIZE), like "%*d".
inline void RecordTextAppendInt32(RecordText *r, int32_t value, int32_t width) {
  char digits[FORMAT_DECIMAL_SIZE];
  RecordTextAppendBytes(r, digits, FormatDecimalInt64(digits, value, width, 0));
}

__attribute__((format(printf, 2, 3))) inline void RecordTextAppend(RecordText *r,
                                                                   const char *format, ...) {
  int32_t room = r->Size - r->Length;
  if (room <= 1) {
    return;
  }
  va_list args;
  va_start(args, format);
  int n = vsnprintf(r->Buffer + r->Length, (size_t)room, format, args);
  va_end(args);
  if (n > 0) {
    r->Length += n < room ? n : room - 1;
  }
}

// Pieces of bounded length are put together by hand in a scratch buffer and
// appended in one piece: PutLiteral writes a string constant at `p` and
// returns the position after it (numbers go in with FormatDecimalUInt32 and
// FormatDecimalInt64, which return their length).
template <int32_t N> inline char *PutLiteral(char *p, const char (&literal)[N]) {
  memcpy(p, literal, N - 1);
  return p + N - 1;
}

// Appends the scratch text from `start` up to `end`.
inline void RecordTextAppendScratch(RecordText *r, const char *start, const char *end) {
  RecordTextAppendBytes(r, start, (int32_t)(end - start));
}

// Hands the record to the trace file as WriteTraceData does, without
// measuring its text again.
int32_t RecordTextWrite(ExitControlBlock *cb, const RecordText *r);
