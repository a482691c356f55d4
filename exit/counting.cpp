// Call counting and timing: how long a call took, how it ended, and the
// alert line for calls that did not end well.
#include "exit/counting.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/exit_files.h"
#include "text/name_match.h"
#include "output/statistics_index.h"
#include "output/timing.h"
#include "output/trace_text.h"
#include "text/call_names.h"
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
        CompareModuleNameNocase(cb->Identity.ProcessName, e.ProcessName) == 1 &&
        SuppressObjectMatches(e.ObjectName, cb->Call.CurrentQueueName)) {
      return true;
    }
  }
  return false;
}

// The alert file sits beside the trace file: "wz_..." becomes "alert...".
void WriteAlertLine(ExitControlBlock *cb, int32_t function, ZKLONG compCode, ZKLONG reason) {
  char path[sizeof cb->File.TraceFilePath + 8];
  snprintf(path, sizeof path, "%s", cb->File.TraceFilePath);
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
  const char *stamp = cb->Clock.RecordTimeText;
  if (stamp[0] == '\0') {
    struct timeval now;
    SetTimeAndShow(&now, timeText);
    stamp = timeText;
  }
  // One line of at most 511 bytes with its line feed.
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&line, "|--- Seq # : ");
  TraceTextAppendUInt32(&line, cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount + 1, 0);
  TraceTextAppendChar(&line, ' ');
  TraceTextAppendString(&line, stamp);
  TraceTextAppendLiteral(&line, "  ");
  TraceTextAppendPadded(&line, FunctionName(function), 8);
  TraceTextAppendLiteral(&line, " CompCode = ");
  TraceTextAppendUInt32(&line, (uint32_t)compCode, 0);
  TraceTextAppendLiteral(&line, "  Reason = ");
  TraceTextAppendUInt32(&line, (uint32_t)reason, 0);
  TraceTextAppendLiteral(&line, " (");
  TraceTextAppendString(&line, SearchConstantInt(reason, Constant_Zkrc));
  TraceTextAppendChar(&line, ')');
  if (cb->Call.CurrentQueueName[0] != '\0') {
    TraceTextAppendLiteral(&line, "  Object : ");
    TraceTextAppendString(&line, cb->Call.CurrentQueueName);
  }
  if (line.Length > 510) {
    line.Length = 510;
  }
  TraceTextAppendChar(&line, '\n');
  // Appended whole in one write; a link or a non-file at the name loses
  // the line rather than writing through it.
  AppendToExitFile(path, line.Buffer, (size_t)line.Length);
}

// The call in a record and in its period's totals: the call count and the
// counter of its result class.
void CountCall(CallCounterRecord *record, CallCounterRecord *total, int32_t resultClass) {
  record->CallCount++;
  total->CallCount++;
  switch (resultClass) {
  case RESULT_OK:
    record->OkCount++;
    total->OkCount++;
    break;
  case RESULT_EXPECTED_FAILURE:
    record->ExpectedFailureCount++;
    total->ExpectedFailureCount++;
    break;
  case RESULT_WARNING:
    record->WarningCount++;
    total->WarningCount++;
    break;
  default:
    record->ErrorCount++;
    total->ErrorCount++;
    break;
  }
}

// One more value of a measure: its minimum, maximum, total and count.
void AddMeasure(int64_t *minimum, int64_t *maximum, int64_t *total, int64_t *count, int64_t value) {
  if (*count == 0) {
    *minimum = *maximum = value;
  } else if (value < *minimum) {
    *minimum = value;
  } else if (value > *maximum) {
    *maximum = value;
  }
  *total += value;
  (*count)++;
}

} // namespace

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
  // The first record counts with the totals of the cumulative period, the
  // second with those of the split period.
  CallCounterRecord *records[2] = {first, second};
  for (int32_t period = COUNTER_CUMULATIVE; period <= COUNTER_SPLIT; period++) {
    CallCounterRecord *record = records[period];
    if (record == nullptr) {
      continue;
    }
    CountCall(record, &cb->Counters.Totals[period], resultClass);
    if (timeGiven) {
      AddMeasure(&record->MinimumTime, &record->MaximumTime, &record->TotalTime,
                 &record->TimedCalls, elapsed);
    }
    if (secondGiven) {
      AddMeasure(&record->SecondMinimum, &record->SecondMaximum, &record->SecondTotal,
                 &record->SecondCount, secondMeasure);
    }
  }
}
