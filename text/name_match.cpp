#include "text/name_match.h"

#include <string.h>

#include "text/string_utils.h"

namespace {

// Longest name copied for the comparison, plus room for a suffix.
constexpr size_t kNameMax = 90;
constexpr size_t kNameBuf = kNameMax + 8;

void CopyUpper(char *out, const char *in) {
  strncpy(out, in, kNameMax);
  out[kNameMax] = '\0';
  StringUppershift(out, 0);
}

// Compares the two names after appending the suffix to the shorter one.
bool EqualWithSuffix(const char *upperA, const char *upperB, const char *suffix) {
  char a[kNameBuf], b[kNameBuf];
  strcpy(a, upperA);
  strcpy(b, upperB);
  size_t la = strlen(a), lb = strlen(b);
  if (la < lb) {
    strcat(a, suffix);
  } else if (lb < la) {
    strcat(b, suffix);
  }
  return strcmp(a, b) == 0;
}

// The pattern ends in "*" and its characters before the "*" begin the name.
bool PrefixMatch(const char *pattern, const char *name) {
  size_t n = strlen(pattern);
  return n > 0 && pattern[n - 1] == '*' && strncmp(pattern, name, n - 1) == 0;
}

} // namespace

int32_t CompareModuleNameNocase(const char *a, const char *b) {
  if (strcmp(a, b) == 0) {
    return 1;
  }
  char ua[kNameBuf], ub[kNameBuf];
  CopyUpper(ua, a);
  CopyUpper(ub, b);
  if (strcmp(ua, ub) == 0 || EqualWithSuffix(ua, ub, "_ND") || EqualWithSuffix(ua, ub, ".EXE")) {
    return 1;
  }
  if (ua[0] == '*' || ub[0] == '*') {
    return 1;
  }
  if (PrefixMatch(ua, ub) || PrefixMatch(ub, ua)) {
    return 1;
  }
  return 0;
}
