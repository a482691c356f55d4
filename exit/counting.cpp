// Call counting and timing: how long a call took, how it ended, and the
// alert line for calls that did not end well.
#include "exit/counting.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/name_match.h"
#include "exit/timing.h"
#include "text/constant_table.h"
#include "text/string_utils.h"

namespace {

// Reasons of a failed call that a working application expects to see.
bool IsExpectedFailureReason(ZKLONG reason) {
  switch (reason) {
  case ZKRC_NO_MSG_AVAILABLE:
  case ZKRC_Q_MGR_QUIESCING:
  case ZKRC_Q_MGR_NOT_AVAILABLE:
  case ZKRC_NO_RETAINED_MSG:
  case ZKRC_PROPERTY_NOT_AVAILABLE:
  case ZKRC_XWAIT_CANCELED:
    return true;
  default:
    return false;
  }
}

bool AlertWanted(const ParameterSettings &settings, int32_t resultClass) {
  switch (resultClass) {
  case RESULT_ERROR:
    return settings.PutAlertFileError == 1;
  case RESULT_WARNING:
    return settings.PutAlertFileWarning == 1;
  case RESULT_EXPECTED_FAILURE:
    return settings.PutAlertFileInfo == 1;
  default:
    return false;
  }
}

// An object name of a PutAlertSuppress entry against the current object.
bool SuppressObjectMatches(const char *entry, const char *current) {
  if (entry[0] == '*') {
    return true;
  }
  if (current[0] == '\0') {
    return false;
  }
  if (strcmp(entry, current) == 0) {
    return true;
  }
  size_t n = strlen(entry);
  return n > 0 && entry[n - 1] == '*' && strncmp(entry, current, n - 1) == 0;
}

bool AlertSuppressed(const ExitControlBlock *cb, int32_t function, ZKLONG compCode, ZKLONG reason) {
  const ParameterSettings &settings = cb->Settings;
  for (int32_t i = 0; i < settings.PutAlertSuppressCount; i++) {
    const AlertSuppressEntry &e = settings.PutAlertSuppress[i];
    if ((e.CompCode == -1 || e.CompCode == compCode) && (e.Reason == -1 || e.Reason == reason) &&
        (e.Function == -1 || e.Function == function) &&
        CompareModuleNameNocase(cb->ProcessName, e.ProcessName) == 1 &&
        SuppressObjectMatches(e.ObjectName, cb->CurrentQueueName)) {
      return true;
    }
  }
  return false;
}

// The alert file sits beside the trace file: "wz_..." becomes "alert...".
void WriteAlertLine(ExitControlBlock *cb, int32_t function, ZKLONG compCode, ZKLONG reason) {
  char path[sizeof cb->TraceFilePath + 8];
  snprintf(path, sizeof path, "%s", cb->TraceFilePath);
  int32_t slash = -1;
  for (int32_t i = (int32_t)strlen(path) - 1; i >= 0; i--) {
    if (path[i] == '/' && strncmp(path + i + 1, "wz_", 3) == 0) {
      slash = i;
      break;
    }
  }
  if (slash < 0) {
    return;
  }
  memcpy(path + slash + 1, "alert", 5);
  size_t n = strlen(path);
  if (n >= 2 && strcmp(path + n - 2, ".t") == 0) {
    path[n - 2] = '\0';
  }
  strcat(path, ".txt");

  char timeText[64];
  const char *stamp = cb->RecordTimeText;
  if (stamp[0] == '\0') {
    struct timeval now;
    SetTimeAndShow(&now, timeText);
    stamp = timeText;
  }
  char line[512];
  int length = snprintf(line, sizeof line, "%s%u %s  %-8s CompCode = %u  Reason = %u (%s)",
                        "|--- Seq # : ", cb->Totals[COUNTER_CUMULATIVE].CallCount + 1, stamp,
                        SearchConstantInt(function, Constant_Function), (unsigned)compCode,
                        (unsigned)reason, SearchConstantInt(reason, Constant_Zkrc));
  if (cb->CurrentQueueName[0] != '\0' && length > 0 && (size_t)length < sizeof line) {
    length += snprintf(line + length, sizeof line - (size_t)length, "  Object : %s",
                       cb->CurrentQueueName);
  }
  FILE *file = fopen(path, "a");
  if (file == nullptr) {
    return;
  }
  fprintf(file, "%s\n", line);
  fclose(file);
}

void CountInto(CallCounterRecord *record, CallCounterRecord *total, int32_t resultClass,
               uint8_t timeGiven, int64_t elapsed, uint8_t secondGiven, int64_t secondMeasure) {
  record->CallCount++;
  total->CallCount++;
  uint32_t CallCounterRecord::*classCounter = &CallCounterRecord::ErrorCount;
  switch (resultClass) {
  case RESULT_OK:
    classCounter = &CallCounterRecord::OkCount;
    break;
  case RESULT_EXPECTED_FAILURE:
    classCounter = &CallCounterRecord::ExpectedFailureCount;
    break;
  case RESULT_WARNING:
    classCounter = &CallCounterRecord::WarningCount;
    break;
  default:
    break;
  }
  (record->*classCounter)++;
  (total->*classCounter)++;
  if (timeGiven) {
    if (record->TimedCalls == 0) {
      record->MinimumTime = record->MaximumTime = elapsed;
    } else if (elapsed < record->MinimumTime) {
      record->MinimumTime = elapsed;
    } else if (elapsed > record->MaximumTime) {
      record->MaximumTime = elapsed;
    }
    record->TotalTime += elapsed;
    record->TimedCalls++;
  }
  if (secondGiven) {
    if (record->SecondCount == 0) {
      record->SecondMinimum = record->SecondMaximum = secondMeasure;
    } else if (secondMeasure < record->SecondMinimum) {
      record->SecondMinimum = secondMeasure;
    } else if (secondMeasure > record->SecondMaximum) {
      record->SecondMaximum = secondMeasure;
    }
    record->SecondTotal += secondMeasure;
    record->SecondCount++;
  }
}

} // namespace

void setTimeBeforeApiCall(ExitControlBlock *cb) {
  gettimeofday(&cb->ApiBeforeTime, nullptr);
}

void SetTimeBeforeApiCallXa(ExitControlBlock *cb) {
  gettimeofday(&cb->XaBeforeTime, nullptr);
}

void ReformatProcessTime(char *text, int32_t, int64_t microseconds) {
  // The buffer size is not consulted: callers pass room for any 64-bit value.
  sprintf(text, "%5lld.%06lld", (long long)(microseconds / 1000000),
          (long long)(microseconds % 1000000));
}

int64_t CalculateApiCallTimeAndShow(ExitControlBlock *cb, int32_t function,
                                    const struct timeval *now, char *text, int64_t *elapsed) {
  const struct timeval &start = function >= ZKXF_XACLOSE ? cb->XaBeforeTime : cb->ApiBeforeTime;
  int64_t microseconds = ((int64_t)now->tv_sec - (int64_t)start.tv_sec) * 1000000 +
                         ((int64_t)now->tv_usec - (int64_t)start.tv_usec);
  if (text != nullptr) {
    ReformatProcessTime(text, 0, microseconds);
  }
  if (elapsed != nullptr) {
    *elapsed = microseconds;
  }
  return microseconds;
}

int32_t ClassifyCallResult(ZKLONG compCode, ZKLONG reason) {
  if (compCode == ZKCC_OK) {
    return RESULT_OK;
  }
  if (compCode == ZKCC_WARNING) {
    return RESULT_WARNING;
  }
  return IsExpectedFailureReason(reason) ? RESULT_EXPECTED_FAILURE : RESULT_ERROR;
}

void IncrementResultCount(ExitControlBlock *cb, int32_t function, const ZKLONG *pCompCode,
                          const ZKLONG *pReason, CallCounterRecord *first,
                          CallCounterRecord *second, uint8_t timeGiven, int64_t elapsed,
                          uint8_t secondGiven, int64_t secondMeasure) {
  ZKLONG compCode = *pCompCode;
  ZKLONG reason = *pReason;
  int32_t resultClass = ClassifyCallResult(compCode, reason);
  if (AlertWanted(cb->Settings, resultClass) && !AlertSuppressed(cb, function, compCode, reason)) {
    WriteAlertLine(cb, function, compCode, reason);
  }
  if (first != nullptr) {
    CountInto(first, &cb->Totals[COUNTER_CUMULATIVE], resultClass, timeGiven, elapsed, secondGiven,
              secondMeasure);
  }
  if (second != nullptr) {
    CountInto(second, &cb->Totals[COUNTER_SPLIT], resultClass, timeGiven, elapsed, secondGiven,
              secondMeasure);
  }
}

int32_t CalculateZkpmrUnitLength(int32_t fields) {
  int32_t length = 0;
  length += (fields & 1) ? 24 : 0;  // message id
  length += (fields & 2) ? 24 : 0;  // correlation id
  length += (fields & 4) ? 24 : 0;  // group id
  length += (fields & 8) ? 4 : 0;   // feedback
  length += (fields & 16) ? 32 : 0; // accounting token
  return length;
}

int32_t StatisticsIndexOfFunction(int32_t function) {
  static const int32_t kOrder[STATISTICS_FUNCTION_COUNT] = {
      ZKXF_CONN,     ZKXF_CONNX,     ZKXF_DISC,      ZKXF_OPEN,       ZKXF_CLOSE,   ZKXF_GET,
      ZKXF_PUT,      ZKXF_PUT1,      ZKXF_SET,       ZKXF_INQ,        ZKXF_CMIT,    ZKXF_BACK,
      ZKXF_BEGIN,    ZKXF_STAT,      ZKXF_SUB,       ZKXF_SUBRQ,      ZKXF_CTL,     ZKXF_CB,
      ZKXF_CALLBACK, ZKXF_XACLOSE,   ZKXF_XACOMMIT,  ZKXF_XACOMPLETE, ZKXF_XAEND,   ZKXF_XAFORGET,
      ZKXF_XAOPEN,   ZKXF_XAPREPARE, ZKXF_XARECOVER, ZKXF_XAROLLBACK, ZKXF_XASTART, ZKXF_AXREG,
      ZKXF_AXUNREG};
  for (int32_t i = 0; i < STATISTICS_FUNCTION_COUNT; i++) {
    if (kOrder[i] == function) {
      return i;
    }
  }
  return -1;
}
