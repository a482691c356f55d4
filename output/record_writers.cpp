// The header record of every traced call and the notes written between
// records.
#include "output/record_writers.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/counting.h"
#include "exit/timing.h"
#include "output/record_text.h"
#include "output/trace_file.h"
#include "text/constant_table.h"

namespace {

// A header never needs more: a few lines of names, numbers and a time.
#define HEADER_TEXT_SIZE 1024

// The lines that number a before-call, with a note about the calls the
// filters left out since the last number printed.
void AppendSequenceLines(ExitControlBlock *cb, RecordText *text) {
  uint32_t count = cb->Totals[COUNTER_CUMULATIVE].CallCount;
  uint32_t last = cb->LastPrintedSequence;
  if (last < count) {
    if (last + 1 == count) {
      RecordTextAppend(text, "|>-- Seq # : %u suppressed by parameter file\n", count);
    } else {
      RecordTextAppend(text, "|>-- Seq # : %u-%u suppressed by parameter file\n", last + 1, count);
    }
  }
  RecordTextAppend(text, "|--- Seq # : %u ---------------------------------------\n", count + 1);
  cb->LastPrintedSequence = count + 1;
}

// "<" and "(" lines of an API call. An unknown function or reason shows its
// number after both names, so the line still says what was called.
void AppendApiNames(RecordText *text, int32_t function, int32_t exitReason) {
  const char *functionName = SearchConstantInt(function, Constant_Function);
  const char *reasonName = SearchConstantInt(exitReason, Constant_ExitReason);
  if (functionName[0] == '(' || reasonName[0] == '(') {
    RecordTextAppend(text, "<%s %d\n(%s %d\n", functionName, function, reasonName, exitReason);
  } else {
    RecordTextAppend(text, "<%s\n(%s\n", functionName, reasonName);
  }
}

// The result of a completed call: codes of a queue-manager call, or the
// return value of a transaction-manager call.
void AppendResultLines(RecordText *text, int32_t function, int32_t compCode, int32_t reason) {
  if (function < ZKXF_XACLOSE) {
    RecordTextAppend(text, "%s%d\n%s%d\n", "CompCode:", compCode, "Reason:", reason);
    if (reason != 0) {
      RecordTextAppend(text, "| %s%s\n", "Reason:", SearchConstantInt(reason, Constant_Zkrc));
    }
    return;
  }
  // A transaction-manager call has one return value, passed as both codes.
  int32_t value = compCode;
  if (function == ZKXF_XARECOVER && value >= 0) {
    RecordTextAppend(text, "%s%d\n", "Total number of XIDs:", value);
    return;
  }
  RecordTextAppend(text, "%s%d\n", "XA return value:", value);
  if (value != 0) {
    const ConstantIntEntry *table = function >= ZKXF_AXREG ? Constant_Axrc : Constant_Xarc;
    RecordTextAppend(text, "| %s%s\n", "XA return value:", SearchConstantInt(value, table));
  }
}

} // namespace

void PutHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason, int32_t compCode,
                     int32_t reason, CallCounterRecord *first, CallCounterRecord *second) {
  bool apiExit = cb->ExitType != EXIT_TYPE_CHANNEL;

  // Only a before-call may start a new file, so that the records before and
  // after one call always share a file.
  if (apiExit) {
    cb->RotationPermitted = (exitReason == ZKXR_AFTER || function == ZKXF_DATA_CONV_ON_GET) ? 0 : 1;
  } else {
    cb->RotationPermitted = 1;
  }
  int32_t status = SetDataToWriteBuffer(cb, "-");
  cb->RotationPermitted = 0;

  char buffer[HEADER_TEXT_SIZE];
  RecordText text;
  RecordTextStart(&text, buffer, sizeof buffer);
  RecordTextAppendString(&text, "\n");

  bool numbered = apiExit ? (exitReason == ZKXR_BEFORE && function != ZKXF_DATA_CONV_ON_GET)
                          : (exitReason != ZKXR_INIT && exitReason != ZKXR_TERM);
  if (numbered) {
    AppendSequenceLines(cb, &text);
  }

  struct timeval now;
  SetTimeAndShow(&now, cb->RecordTimeText);
  RecordTextAppend(&text, "%s\n", cb->RecordTimeText);

  ZKLONG countCompCode = compCode;
  ZKLONG countReason = reason;
  if (!apiExit) {
    // A channel exit: the exit reason, then the kind of channel exit.
    RecordTextAppend(&text, "<%s\n(%s\n", SearchConstantInt(exitReason, Constant_ExitReason),
                     SearchConstantInt(function, Constant_ChlExitId));
    if (status == 0) {
      WriteTraceData(cb, buffer);
    }
    if (exitReason != ZKXR_INIT && exitReason != ZKXR_TERM) {
      IncrementResultCount(cb, function, &countCompCode, &countReason, first, second, 0, 0, 0, 0);
    }
    cb->RecordTimeText[0] = '\0';
    return;
  }

  AppendApiNames(&text, function, exitReason);
  if (exitReason == ZKXR_BEFORE && function != ZKXF_DATA_CONV_ON_GET) {
    // The header's time is when the call started.
    if (function < ZKXF_XACLOSE) {
      cb->ApiBeforeTime = now;
    } else {
      cb->XaBeforeTime = now;
    }
  }

  bool after = exitReason == ZKXR_AFTER;
  int64_t elapsed = 0;
  if (after) {
    AppendResultLines(&text, function, compCode, reason);
    char elapsedText[32];
    CalculateApiCallTimeAndShow(cb, function, &now, elapsedText, &elapsed);
    RecordTextAppend(&text, "| API process time:%s second\n", elapsedText);
  }
  if (status == 0) {
    WriteTraceData(cb, buffer);
  }
  if (after) {
    IncrementResultCount(cb, function, &countCompCode, &countReason, first, second, 1, elapsed, 0,
                         0);
  }
  cb->RecordTimeText[0] = '\0';
}

void PutMsgToTrace(ExitControlBlock *cb, const char *text) {
  struct timeval now;
  char stamp[64];
  SetTimeAndShow(&now, stamp);
  char buffer[512];
  RecordText note;
  RecordTextStart(&note, buffer, sizeof buffer);
  RecordTextAppend(&note, "|\n|\n|  *** %s ***  %s\n|\n", text, stamp);
  SetDataToWriteBuffer(cb, buffer);
}
