// Reading "wz.def": defaults first, then one keyword per line, each line
// checked on its own so that a bad line costs only itself.
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "config/parameters.h"
#include "exit/alerts.h"
#include "exit/exit_files.h"
#include "text/codepage.h"
#include "text/string_utils.h"

namespace {

template <typename T> T *FieldAt(ParameterSettings *settings, uint32_t offset) {
  return (T *)((char *)settings + offset);
}

const ParameterKeywordEntry *SearchParameterKeyword(const char *keyword) {
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    if (strcmp(row->Keyword, keyword) == 0) {
      return row;
    }
  }
  return nullptr;
}

// Applies one keyword's value; -1 when the line is bad.
int32_t ApplyParameter(ExitControlBlock *context, const char *keyword, char *value,
                       ParameterSettings *settings) {
  const ParameterKeywordEntry *row = SearchParameterKeyword(keyword);
  if (row == nullptr) {
    return -1;
  }
  int32_t error = 0;
  switch (row->Kind) {
  case PARM_KIND_YES_NO:
    SetParmValueYesNo(context, value, FieldAt<uint8_t>(settings, row->Offset), &error);
    break;
  case PARM_KIND_EXEC_FLAG:
    SetParmValueExecFlag(context, value, FieldAt<uint8_t>(settings, row->Offset), &error);
    break;
  case PARM_KIND_INTEGER_MIN:
    SetParmValueIntegerMin(context, value, FieldAt<int32_t>(settings, row->Offset), row->Minimum,
                           &error);
    break;
  case PARM_KIND_INTEGER_RANGE:
    SetParmValueIntegerRange(context, value, FieldAt<int32_t>(settings, row->Offset), row->Minimum,
                             row->Maximum, &error);
    break;
  case PARM_KIND_INT64_RANGE:
    SetParmValueInt64Range(context, value, FieldAt<int64_t>(settings, row->Offset), row->Minimum,
                           row->Maximum, &error);
    break;
  case PARM_KIND_TEXT:
    SetParmValueText(context, value, FieldAt<char>(settings, row->Offset), row->Maximum + 1,
                     &error);
    break;
  case PARM_KIND_TARGET_PROCESS:
    SetParmValueTargetProcess(context, value, settings, &error);
    break;
  case PARM_KIND_EXCLUDE_PROCESS:
    SetParmValueExcludeProcess(context, value, settings, &error);
    break;
  case PARM_KIND_TARGET_QUEUE:
    SetParmValueTargetQueue(context, value, settings, &error);
    break;
  case PARM_KIND_PUT_ALERT_SUPPRESS:
    SetParmValuePutAlertSuppress(context, value, settings, &error);
    break;
  case PARM_KIND_SHOW_SUMMARY_DATA_SUPPRESS:
    SetParmValueShowSummaryDataSuppress(context, value, settings, &error);
    break;
  }
  return error;
}

// Parses one line (cut to at most 498 characters by the reader); -1 when it
// is bad, PARAMETER_LIST_FULL when a full list dropped it (the line then
// starts with its keyword). Comment-only and blank lines are good.
int32_t ParseParameterLine(ExitControlBlock *context, char *line, ParameterSettings *settings) {
  char *comment = strchr(line, '#');
  if (comment != nullptr) {
    *comment = '\0';
  }
  char noValue[1] = {'\0'};
  char *keyword = line;
  char *value = noValue;
  char *equals = strchr(line, '=');
  if (equals != nullptr) {
    *equals = '\0';
    value = equals + 1;
  }
  StringTrim(keyword);
  StringTrim(value);
  if (keyword[0] == '\0' && value[0] == '\0') {
    return 0;
  }
  if (keyword[0] == '\0' || value[0] == '\0') {
    return -1;
  }
  return ApplyParameter(context, keyword, value, settings);
}

// Removes blanks, tabs, line ends and other white space from the end.
void TrimTrailingWhiteSpace(char *text) {
  size_t n = strlen(text);
  while (n > 0 && strchr(" \t\n\r\v\f", text[n - 1]) != nullptr) {
    text[--n] = '\0';
  }
}

} // namespace

void SetDefaultParameterSettings(ParameterSettings *settings) {
  memset(settings, 0, sizeof *settings);
  memcpy(settings->EyeCatcher, PARAMETER_EYE_CATCHER, sizeof PARAMETER_EYE_CATCHER - 1);
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    switch (row->Kind) {
    case PARM_KIND_YES_NO:
    case PARM_KIND_EXEC_FLAG:
      *FieldAt<uint8_t>(settings, row->Offset) = (uint8_t)row->Default;
      break;
    case PARM_KIND_INTEGER_MIN:
    case PARM_KIND_INTEGER_RANGE:
      *FieldAt<int32_t>(settings, row->Offset) = row->Default;
      break;
    case PARM_KIND_INT64_RANGE:
      *FieldAt<int64_t>(settings, row->Offset) = row->Default;
      break;
    default: // text and lists start empty
      break;
    }
  }
}

int32_t ReadParameterFile(ExitControlBlock *context, const char *directory,
                          ParameterSettings *settings) {
  SetDefaultParameterSettings(settings);

  char *path = settings->ParameterFilePath;
  if (directory != nullptr) {
    memcpy(path, directory, strnlen(directory, 32));
  }
  size_t length = (size_t)StringTrim(path);
  if (length == 0) {
    return 0;
  }
  if (path[length - 1] != '/') {
    path[length++] = '/';
  }
  memcpy(path + length, PARAMETER_FILE_NAME, sizeof PARAMETER_FILE_NAME);

  // A FIFO, a device, a directory or a link at the name is a file that
  // cannot be read: opening it must neither block nor follow anything.
  FILE *file = OpenExitStream(path, EXIT_FILE_READ);
  if (file == nullptr) {
    memset(path, 0, sizeof settings->ParameterFilePath);
    return 0;
  }

  int32_t result = 0;
  int32_t lineNumber = 0;
  int32_t badLines = 0;
  int32_t fullListLines = 0;
  char line[PARAMETER_LINE_MAX + 2];
  char lineAsRead[PARAMETER_LINE_MAX + 2];
  // A longer physical line comes in pieces of 498 characters; each piece is
  // a line of its own and has its own number.
  while (fgets(line, PARAMETER_LINE_MAX + 1, file) != nullptr) {
    lineNumber++;
    memcpy(lineAsRead, line, strlen(line) + 1);
    int32_t parsed = ParseParameterLine(context, line, settings);
    if (parsed == 0) {
      continue;
    }
    if (parsed == PARAMETER_LIST_FULL) {
      // The parse left the keyword at the start of the line.
      fullListLines++;
      if (context != nullptr && fullListLines <= PARAMETER_BAD_LINES_REPORTED) {
        PutMessage<2010>(context, 0, line, (int32_t)PARAMETER_LIST_MAX);
      }
      continue;
    }
    if (result == 0 && context != nullptr) {
      PutMessage<2008>(context, 0, settings->ParameterFilePath);
    }
    result = -1;
    badLines++;
    // A file of bad lines must not flood the error file: the first ones
    // are reported, the rest counted.
    if (context != nullptr && badLines <= PARAMETER_BAD_LINES_REPORTED) {
      TrimTrailingWhiteSpace(lineAsRead);
      PutMessage<2009>(context, 0, lineNumber, lineAsRead);
    }
  }
  if (context != nullptr && fullListLines > PARAMETER_BAD_LINES_REPORTED) {
    PutMessage<2012>(context, 0, fullListLines - PARAMETER_BAD_LINES_REPORTED,
                     settings->ParameterFilePath);
  }
  if (context != nullptr && badLines > PARAMETER_BAD_LINES_REPORTED) {
    PutMessage<2011>(context, 0, badLines - PARAMETER_BAD_LINES_REPORTED,
                     settings->ParameterFilePath);
  }
  fclose(file);

  if (settings->ShowHexCharCcsid < 0) {
    char locale[LOCALE_NAME_SIZE];
    memset(locale, 0, sizeof locale);
    settings->ShowHexCharCcsid = SelectCcsidByLocale(locale);
    settings->LocaleSwitch = 1;
  }
  return result;
}
