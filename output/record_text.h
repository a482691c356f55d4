// A record being put together in a caller's stack buffer before it is
// handed to the trace file in one piece. Text that does not fit is cut.
#pragma once

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

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

inline void RecordTextAppendString(RecordText *r, const char *text) {
  int32_t room = r->Size - 1 - r->Length;
  int32_t n = (int32_t)strlen(text);
  if (n > room) {
    n = room;
  }
  memcpy(r->Buffer + r->Length, text, (size_t)n);
  r->Length += n;
  r->Buffer[r->Length] = '\0';
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
