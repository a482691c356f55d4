// In-place operations on NUL-terminated byte strings. "Blank" is the space
// character only; nothing here depends on the locale or allocates memory.
#pragma once

#include <stddef.h>
#include <stdint.h>

int32_t StringTrim(char *s);
int32_t StringTrimTrailing(char *s);
int32_t StringEliminateBlank(char *s);
void StringUppershift(char *s, int32_t length);
int32_t StringXlateToSevenBitAscii(char *s);
int32_t StringSearch(const char *s, const char *pattern);
int32_t StringSearchFromLast(const char *s, const char *pattern);
char *StringWordFindByNum(char *s, int32_t n);
int32_t StringTrimFileNameAndExtractDir(char *path);
// Replaces the first `count` characters of `s` by `replacement`, moving the
// rest of the string (its NUL included) to follow it. The caller makes room.
void StringReplace(char *s, int32_t count, const char *replacement);
// Replaces the first occurrence of `from` in `s` by `to`, in place, never
// writing more than `size` bytes (the result is cut to fit). Returns 0 when
// a replacement was made, -1 when `from` is absent.
int32_t StringReplaceFirst(char *s, int32_t size, const char *from, const char *to);
// Copies a blank-padded platform field of `width` bytes into `out` (which has
// room for width + 1 bytes), NUL-terminates and trims it. Returns the length.
int32_t StringCopyFixedField(char *out, const char *field, int32_t width);

// The value StringWordFindByNum returns when there is no such word.
#define STRING_WORD_NOT_FOUND ((char *)(intptr_t)-1)

// Copies `src` into `dst` of `size` bytes, cut to fit, always with its NUL
// (a size of 0 writes nothing); `src` is read no further than `size` - 1 bytes, so it need
// not be terminated.
void StringCopyCut(char *dst, const char *src, size_t size);
