// Setters for the single-valued keywords of "wz.def" and the splitting of
// comma-separated values.
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "config/parameters.h"
#include "text/codepage.h"
#include "text/string_utils.h"

int32_t ParmAtol(const char *value) {
  long number = strtol(value, nullptr, 10);
  if (number > INT32_MAX) {
    return INT32_MAX;
  }
  if (number < INT32_MIN) {
    return INT32_MIN;
  }
  return (int32_t)number;
}

char *pExtractOneArgInParmValue(char *text) {
  char *comma = strchr(text, ',');
  if (comma == nullptr) {
    StringTrim(text);
    return text + strlen(text);
  }
  *comma = '\0';
  char *rest = comma + 1;
  StringTrim(text);
  StringTrim(rest);
  return rest;
}

void SetParmValueYesNo(ExitControlBlock *, const char *value, uint8_t *flag, int32_t *error) {
  if (value[0] == 'Y' || value[0] == 'y') {
    *flag = 1;
  } else if (value[0] == 'N' || value[0] == 'n') {
    *flag = 0;
  } else {
    *error = -1;
  }
}

void SetParmValueExecFlag(ExitControlBlock *context, const char *value, uint8_t *flag,
                          int32_t *error) {
  if (value[0] != 'E' && value[0] != 'e') {
    SetParmValueYesNo(context, value, flag, error);
    return;
  }
  // "env": trace only while the variable KT5R holds something.
  char envValue[500];
  envValue[0] = '\0';
  GetEnvValue("KT5R", envValue, (int32_t)sizeof envValue);
  *flag = envValue[0] != '\0' ? 1 : 0;
}

void SetParmValueIntegerMin(ExitControlBlock *, const char *value, int32_t *target, int32_t minimum,
                            int32_t *error) {
  int32_t number = ParmAtol(value);
  if (number < minimum) {
    *error = -1;
    return;
  }
  *target = number;
}

void SetParmValueIntegerRange(ExitControlBlock *, const char *value, int32_t *target,
                              int32_t minimum, int32_t maximum, int32_t *error) {
  int32_t number = ParmAtol(value);
  if (number < minimum || number > maximum) {
    *error = -1;
    return;
  }
  *target = number;
}

void SetParmValueInt64Range(ExitControlBlock *, const char *value, int64_t *target, int32_t minimum,
                            int32_t maximum, int32_t *error) {
  int32_t number = ParmAtol(value);
  if (number < minimum || number > maximum) {
    *error = -1;
    return;
  }
  *target = number;
}

void SetParmValueText(ExitControlBlock *, const char *value, char *target, int32_t size,
                      int32_t *) {
  // A later line replaces the whole text; a longer value is cut to fit.
  size_t length = strnlen(value, (size_t)size - 1);
  memset(target, 0, (size_t)size);
  memcpy(target, value, length);
}
