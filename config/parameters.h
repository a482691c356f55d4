// The exit's settings, read from the parameter file "wz.def" in the exit
// data directory: every switch, size and list that the rest of the exit
// consults. The block is a plain value with no pointers, so it can be copied
// whole into the control block and replaced whole on a re-read.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct ExitControlBlock;

#define PARAMETER_EYE_CATCHER "KT5RPM"
#define PARAMETER_FILE_NAME "wz.def"
// Entries each list keyword can hold; further lines are dropped with
// message 2010.
#define PARAMETER_LIST_MAX 100
// A line is read in pieces of at most this many characters.
#define PARAMETER_LINE_MAX 498
// Bad lines of one reading that are reported one by one; the rest are
// counted in one closing message.
#define PARAMETER_BAD_LINES_REPORTED 100
// What a list setter leaves in its error when the list is full: the line
// is dropped, but it is not a bad line.
#define PARAMETER_LIST_FULL 1
// Significant characters of a list entry's names and of the compress command.
#define PARAMETER_QUEUE_NAME_MAX 48
#define PARAMETER_PROCESS_NAME_MAX 28
#define PARAMETER_COMMAND_MAX 299
// Stands for "any" in the code and function fields of a suppress entry.
#define PARAMETER_ANY (-1)

// One TargetQueue line: a queue name and the call families it selects
// (put, get, inquire, set).
struct TargetQueueEntry {
  char QueueName[49];
  uint8_t P, G, I, S;
};

// One PutAlertSuppress line; -1 in a code or the function means any.
struct AlertSuppressEntry {
  int32_t CompCode;
  int32_t Reason;
  int32_t Function;
  char ObjectName[49];
  char ProcessName[29];
};

// One ShowSummaryDataSuppress line; -1 in a code or the function means any.
struct SummaryDataSuppressEntry {
  int32_t CompCode;
  int32_t Reason;
  int32_t Function;
  char ObjectName[49];
};

struct ParameterSettings {
  char EyeCatcher[8];
  char ParameterFilePath[300]; // the file that was opened; all NULs when none
  char CompressCommand[300];
  int64_t MaxFileSize;
  int32_t CheckUpdateRequestInterval;
  int32_t WriteBufferSize;
  int32_t WriteInterval;
  int32_t ShowMaxLenPut;
  int32_t ShowMaxLenGet;
  int32_t ShowMaxLenChannel;
  int32_t ShowMaxLenParsedContent;
  int32_t ShowMaxLenCharv;
  int32_t ShowMaxLenCharvString;
  int32_t MaxParsedOutputLineLength;
  int32_t ShowPerformanceIntervalTime;
  int32_t ShowPerformanceIntervalCount;
  int32_t ShowHexCharCcsid;
  int32_t CompressFileSizeThreshold;
  // Switches: 0 = no, 1 = yes.
  uint8_t ShowPerformanceOnly;
  uint8_t ShowSummaryOnly;
  uint8_t ShowDataConvOnGet;
  uint8_t ShowHexCharImage;
  uint8_t ShowParsedData;
  uint8_t ShowParsedMsgContent;
  uint8_t ShowProcessEnvValue;
  uint8_t ShowZkVersion;
  uint8_t ShowSummaryCorrelId;
  uint8_t ShowChannelAttributes;
  uint8_t ShowXaCalls;
  // The spare switch has no keyword, so the file never sets it. The dump
  // reads it as "do not collapse": at 0 (always, outside tests) runs of
  // identical dump lines are shown once with a count; a test may set it to
  // see every line.
  uint8_t Spare;
  uint8_t WriteCache;
  uint8_t WriteStream;
  uint8_t WriteAfterEachApi;
  uint8_t CountSelectedCallsOnly;
  uint8_t ExecFlag;
  uint8_t CreateEmptyFile;
  uint8_t PutAlertFileInfo;
  uint8_t PutAlertFileWarning;
  uint8_t PutAlertFileError;
  uint8_t NoExitProcessIfProcNameMismatch;
  uint8_t LocaleSwitch; // 1 when ShowHexCharCcsid was chosen from the locale
  uint8_t fx40217;
  int32_t TargetQueueCount;
  int32_t TargetProcessCount;
  int32_t ExcludeProcessCount;
  int32_t PutAlertSuppressCount;
  int32_t ShowSummaryDataSuppressCount;
  TargetQueueEntry TargetQueue[PARAMETER_LIST_MAX];
  char TargetProcess[PARAMETER_LIST_MAX][32];
  char ExcludeProcess[PARAMETER_LIST_MAX][32];
  AlertSuppressEntry PutAlertSuppress[PARAMETER_LIST_MAX];
  SummaryDataSuppressEntry ShowSummaryDataSuppress[PARAMETER_LIST_MAX];
};

// How a keyword's value is read and where it goes.
enum ParameterKind : uint8_t {
  PARM_KIND_YES_NO,         // u8 field, first character Y/y or N/n
  PARM_KIND_EXEC_FLAG,      // as yes/no, or E/e: yes when KT5R is set non-empty
  PARM_KIND_INTEGER_MIN,    // i32 field, at least Minimum
  PARM_KIND_INTEGER_RANGE,  // i32 field, Minimum to Maximum inclusive
  PARM_KIND_INT64_RANGE,    // i64 field, Minimum to Maximum inclusive
  PARM_KIND_TEXT,           // char[300] field, cut to 299 characters
  PARM_KIND_TARGET_PROCESS, // list entries; Offset is not used
  PARM_KIND_EXCLUDE_PROCESS,
  PARM_KIND_TARGET_QUEUE,
  PARM_KIND_PUT_ALERT_SUPPRESS,
  PARM_KIND_SHOW_SUMMARY_DATA_SUPPRESS,
};

// One row of the keyword table. Keywords are compared exactly and
// case-sensitively, from the first row down; the first match wins.
struct ParameterKeywordEntry {
  const char *Keyword;
  ParameterKind Kind;
  uint32_t Offset; // of the field within ParameterSettings
  int32_t Minimum;
  int32_t Maximum;
  int32_t Default; // set by SetDefaultParameterSettings (list and text rows: none)
};

// The keyword table, closed by a row with a null keyword.
extern const ParameterKeywordEntry ParameterKeywordTable[];

// Zeroes the block, writes the eye-catcher and sets every keyword's default.
void SetDefaultParameterSettings(ParameterSettings *settings);

// Fills `settings` with the defaults and then from "wz.def" in `directory`
// (the 32-character exit data, blank-padded, not NUL-terminated). Bad lines
// are reported as messages 2008/2009 when `context` is given, and silently
// skipped otherwise. 0 when every line was good, when the directory is empty
// or when the file cannot be opened; -1 when at least one line was rejected.
int32_t ReadParameterFile(ExitControlBlock *context, const char *directory,
                          ParameterSettings *settings);

// A number as atol reads it on the 32-bit platform: leading blanks and a
// sign are accepted, reading stops at the first non-digit, a value without
// digits is 0 and a value beyond the 32-bit range is held at its limit.
int32_t ParmAtol(const char *value);

// Cuts `text` at its first ",", trims both pieces and returns the remainder
// (the empty string at the end of the value).
char *pExtractOneArgInParmValue(char *text);

// The setters below leave their target alone and set *error to -1 when the
// value is rejected; they never clear *error.
void SetParmValueYesNo(ExitControlBlock *context, const char *value, uint8_t *flag, int32_t *error);
void SetParmValueExecFlag(ExitControlBlock *context, const char *value, uint8_t *flag,
                          int32_t *error);
void SetParmValueIntegerMin(ExitControlBlock *context, const char *value, int32_t *target,
                            int32_t minimum, int32_t *error);
void SetParmValueIntegerRange(ExitControlBlock *context, const char *value, int32_t *target,
                              int32_t minimum, int32_t maximum, int32_t *error);
void SetParmValueInt64Range(ExitControlBlock *context, const char *value, int64_t *target,
                            int32_t minimum, int32_t maximum, int32_t *error);
void SetParmValueText(ExitControlBlock *context, const char *value, char *target, int32_t size,
                      int32_t *error);

// List setters: each appends one entry. A full list drops the entry and
// sets *error to PARAMETER_LIST_FULL: the reader reports it (message 2010)
// and does not count the line as bad. The value is split in place.
void SetParmValueTargetProcess(ExitControlBlock *context, char *value, ParameterSettings *settings,
                               int32_t *error);
void SetParmValueExcludeProcess(ExitControlBlock *context, char *value, ParameterSettings *settings,
                                int32_t *error);
void SetParmValueTargetQueue(ExitControlBlock *context, char *value, ParameterSettings *settings,
                             int32_t *error);
void SetParmValuePutAlertSuppress(ExitControlBlock *context, char *value,
                                  ParameterSettings *settings, int32_t *error);
void SetParmValueShowSummaryDataSuppress(ExitControlBlock *context, char *value,
                                         ParameterSettings *settings, int32_t *error);
