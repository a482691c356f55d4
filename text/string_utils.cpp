#include "text/string_utils.h"

#include <string.h>

namespace {

bool IsTrailingJunk(char c) {
  return c == '\n' || c == '\r' || c == ' ';
}

} // namespace

int32_t StringTrimTrailing(char *s) {
  size_t n = strlen(s);
  while (n > 0 && IsTrailingJunk(s[n - 1])) {
    s[--n] = '\0';
  }
  return (int32_t)n;
}

int32_t StringTrim(char *s) {
  size_t n = (size_t)StringTrimTrailing(s);
  size_t lead = 0;
  while (lead < n && s[lead] == ' ') {
    lead++;
  }
  if (lead > 0) {
    memmove(s, s + lead, n - lead + 1);
  }
  return (int32_t)(n - lead);
}

int32_t StringEliminateBlank(char *s) {
  char *out = s;
  for (const char *in = s; *in != '\0'; in++) {
    if (*in != ' ') {
      *out++ = *in;
    }
  }
  *out = '\0';
  return (int32_t)(out - s);
}

void StringUppershift(char *s, int32_t length) {
  size_t n = length < 1 ? strlen(s) : (size_t)length;
  for (size_t i = 0; i < n; i++) {
    if (s[i] >= 'a' && s[i] <= 'z') {
      s[i] = (char)(s[i] - 'a' + 'A');
    }
  }
}

int32_t StringXlateToSevenBitAscii(char *s) {
  size_t i = 0;
  for (; s[i] != '\0'; i++) {
    unsigned char c = (unsigned char)s[i];
    if (c < 0x20 || c >= 0x7F) {
      s[i] = '.';
    }
  }
  return (int32_t)i;
}

int32_t StringSearch(const char *s, const char *pattern) {
  size_t n = strlen(s), m = strlen(pattern);
  if (m > n) {
    return -1;
  }
  for (size_t i = 0; i + m <= n; i++) {
    if (memcmp(s + i, pattern, m) == 0) {
      return (int32_t)i;
    }
  }
  return -1;
}

int32_t StringSearchFromLast(const char *s, const char *pattern) {
  size_t n = strlen(s), m = strlen(pattern);
  if (n == 0 || m > n) {
    return -1;
  }
  for (size_t i = n - m + 1; i-- > 0;) {
    if (memcmp(s + i, pattern, m) == 0) {
      return (int32_t)i;
    }
  }
  return -1;
}

char *StringWordFindByNum(char *s, int32_t n) {
  if (n < 1) {
    n = 1;
  }
  char *p = s;
  for (int32_t word = 1;; word++) {
    while (*p == ' ') {
      p++;
    }
    if (*p == '\0') {
      return STRING_WORD_NOT_FOUND;
    }
    if (word == n) {
      return p;
    }
    while (*p != ' ' && *p != '\0') {
      p++;
    }
  }
}

int32_t StringTrimFileNameAndExtractDir(char *path) {
  size_t n = strlen(path);
  while (n > 0 && path[n - 1] != '/' && (unsigned char)path[n - 1] != 0xFF) {
    path[--n] = '\0';
  }
  return (int32_t)n;
}

void StringReplace(char *s, int32_t count, const char *replacement) {
  size_t n = strlen(s);
  size_t cut = count < 0 ? 0 : ((size_t)count > n ? n : (size_t)count);
  size_t length = strlen(replacement);
  memmove(s + length, s + cut, n - cut + 1);
  memcpy(s, replacement, length);
}

int32_t StringReplaceFirst(char *s, int32_t size, const char *from, const char *to) {
  int32_t at = StringSearch(s, from);
  if (at < 0 || size < 1) {
    return -1;
  }
  size_t limit = (size_t)size - 1;
  size_t n = strlen(s), fromLen = strlen(from), toLen = strlen(to);
  size_t tailLen = n - (size_t)at - fromLen;
  size_t tailAt = (size_t)at + toLen;
  if (tailAt < limit) {
    size_t keep = tailAt + tailLen > limit ? limit - tailAt : tailLen;
    memmove(s + tailAt, s + at + fromLen, keep);
    s[tailAt + keep] = '\0';
  }
  size_t copy = (size_t)at + toLen > limit ? limit - (size_t)at : toLen;
  memcpy(s + at, to, copy);
  if ((size_t)at + copy >= limit) {
    s[limit] = '\0';
  }
  return 0;
}

int32_t StringCopyFixedField(char *out, const char *field, int32_t width) {
  memset(out, 0, (size_t)width + 1);
  if (field != nullptr) {
    memcpy(out, field, (size_t)width);
    out[width] = '\0';
  }
  return StringTrim(out);
}

void StringCopyCut(char *dst, const char *src, size_t size) {
  if (size == 0) {
    return; // no room even for the NUL
  }
  size_t length = strnlen(src, size - 1);
  memcpy(dst, src, length);
  dst[length] = '\0';
}
