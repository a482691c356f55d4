// Setters for the list keywords of "wz.def": each line appends one entry.
// An entry is built aside and appended only when the whole line is good, so
// a rejected line leaves its slot as it was.
#include <stdint.h>
#include <string.h>

#include "config/parameters.h"
#include "text/constant_table.h"
#include "text/string_utils.h"

namespace {

// 1 when the list can take another entry. A full list drops the line: that
// is not an error of the line, and the reader reports it (message 2010).
int32_t ListHasRoom(int32_t count, int32_t *error) {
  if (count < PARAMETER_LIST_MAX) {
    return 1;
  }
  *error = PARAMETER_LIST_FULL;
  return 0;
}

// Splits a comma-separated value into its first `count` fields; -1 when one
// of them is missing or empty. Fields beyond `count` are ignored.
int32_t SplitRequiredFields(char *value, char **fields, int32_t count) {
  StringTrim(value);
  char *next = value;
  for (int32_t i = 0; i < count; i++) {
    fields[i] = next;
    next = pExtractOneArgInParmValue(next);
    if (fields[i][0] == '\0') {
      return -1;
    }
  }
  return 0;
}

// A completion or reason code: "*" for any, otherwise a number.
int32_t ReadCodeField(const char *field) {
  return strcmp(field, "*") == 0 ? PARAMETER_ANY : ParmAtol(field);
}

// A function by its name in the function-name table, upper-cased first, or
// "*" for any. -1 when the name is unknown.
int32_t ReadFunctionField(char *field, int32_t *function) {
  StringUppershift(field, 0);
  if (strcmp(field, "*") == 0) {
    *function = PARAMETER_ANY;
    return 0;
  }
  int32_t value = SearchConstantIntByString(field, Constant_Function);
  if (value == CONSTANT_TABLE_END) {
    return -1;
  }
  *function = value;
  return 0;
}

void AppendProcessName(char *value, char (*list)[32], int32_t *count, int32_t *error) {
  if (!ListHasRoom(*count, error)) {
    return;
  }
  StringTrim(value);
  memset(list[*count], 0, sizeof list[*count]);
  StringCopyCut(list[*count], value, PARAMETER_PROCESS_NAME_MAX + 1);
  (*count)++;
}

} // namespace

void SetParmValueTargetProcess(ExitControlBlock *, char *value, ParameterSettings *settings,
                               int32_t *error) {
  AppendProcessName(value, settings->TargetProcess, &settings->TargetProcessCount, error);
}

void SetParmValueExcludeProcess(ExitControlBlock *, char *value, ParameterSettings *settings,
                                int32_t *error) {
  AppendProcessName(value, settings->ExcludeProcess, &settings->ExcludeProcessCount, error);
}

void SetParmValueTargetQueue(ExitControlBlock *, char *value, ParameterSettings *settings,
                             int32_t *error) {
  if (!ListHasRoom(settings->TargetQueueCount, error)) {
    return;
  }
  StringTrim(value);
  char *next = pExtractOneArgInParmValue(value);
  if (value[0] == '\0') {
    *error = -1;
    return;
  }
  TargetQueueEntry entry;
  memset(&entry, 0, sizeof entry);
  StringCopyCut(entry.QueueName, value, PARAMETER_QUEUE_NAME_MAX + 1);
  // A bare name selects every call family; the first flag field starts
  // from none and each field then adds the family of its first letter.
  entry.P = entry.G = entry.I = entry.S = 1;
  int32_t firstFlagField = 1;
  while (next[0] != '\0') {
    char *field = next;
    next = pExtractOneArgInParmValue(field);
    if (firstFlagField) {
      entry.P = entry.G = entry.I = entry.S = 0;
      firstFlagField = 0;
    }
    switch (field[0]) {
    case '\0':
      break;
    case 'P':
    case 'p':
      entry.P = 1;
      break;
    case 'G':
    case 'g':
      entry.G = 1;
      break;
    case 'I':
    case 'i':
      entry.I = 1;
      break;
    case 'S':
    case 's':
      entry.S = 1;
      break;
    default:
      *error = -1;
      return;
    }
  }
  settings->TargetQueue[settings->TargetQueueCount++] = entry;
}

void SetParmValuePutAlertSuppress(ExitControlBlock *, char *value, ParameterSettings *settings,
                                  int32_t *error) {
  if (!ListHasRoom(settings->PutAlertSuppressCount, error)) {
    return;
  }
  char *fields[5];
  AlertSuppressEntry entry;
  memset(&entry, 0, sizeof entry);
  if (SplitRequiredFields(value, fields, 5) != 0 ||
      ReadFunctionField(fields[2], &entry.Function) != 0) {
    *error = -1;
    return;
  }
  entry.CompCode = ReadCodeField(fields[0]);
  entry.Reason = ReadCodeField(fields[1]);
  StringCopyCut(entry.ObjectName, fields[3], PARAMETER_QUEUE_NAME_MAX + 1);
  StringCopyCut(entry.ProcessName, fields[4], PARAMETER_PROCESS_NAME_MAX + 1);
  settings->PutAlertSuppress[settings->PutAlertSuppressCount++] = entry;
}

void SetParmValueShowSummaryDataSuppress(ExitControlBlock *, char *value,
                                         ParameterSettings *settings, int32_t *error) {
  if (!ListHasRoom(settings->ShowSummaryDataSuppressCount, error)) {
    return;
  }
  char *fields[4];
  SummaryDataSuppressEntry entry;
  memset(&entry, 0, sizeof entry);
  if (SplitRequiredFields(value, fields, 4) != 0 ||
      ReadFunctionField(fields[2], &entry.Function) != 0) {
    *error = -1;
    return;
  }
  entry.CompCode = ReadCodeField(fields[0]);
  entry.Reason = ReadCodeField(fields[1]);
  StringCopyCut(entry.ObjectName, fields[3], PARAMETER_QUEUE_NAME_MAX + 1);
  settings->ShowSummaryDataSuppress[settings->ShowSummaryDataSuppressCount++] = entry;
}
