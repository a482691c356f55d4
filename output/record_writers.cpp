// The header record of every traced call and the notes written between
// records.
#include "output/record_writers.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/counting.h"
#include "output/timing.h"
#include "output/record_text.h"
#include "output/trace_file.h"
#include "text/constant_table.h"

namespace {

// A header never needs more: a few lines of names, numbers and a time.
#define HEADER_TEXT_SIZE 1024

// Longest text of the sequence lines: two lines, each of a 13-character
// start, at most two numbers and a dash, and a tail of at most 41.
#define SEQUENCE_LINES_SIZE (2 * (13 + 2 * FORMAT_DECIMAL_SIZE + 1 + 41))

// The lines that number a before-call, with a note about the calls the
// filters left out since the last number printed; written at `p`, returns
// the position after them.
char *PutSequenceLines(ExitControlBlock *cb, char *p) {
  uint32_t count = cb->Totals[COUNTER_CUMULATIVE].CallCount;
  uint32_t last = cb->LastPrintedSequence;
  if (last < count) {
    p = PutLiteral(p, "|>-- Seq # : ");
    if (last + 1 == count) {
      p += FormatDecimalUInt32(p, count, 0, 0);
    } else {
      p += FormatDecimalUInt32(p, last + 1, 0, 0);
      *p++ = '-';
      p += FormatDecimalUInt32(p, count, 0, 0);
    }
    p = PutLiteral(p, " suppressed by parameter file\n");
  }
  p = PutLiteral(p, "|--- Seq # : ");
  p += FormatDecimalUInt32(p, count + 1, 0, 0);
  p = PutLiteral(p, " ---------------------------------------\n");
  cb->LastPrintedSequence = count + 1;
  return p;
}

// One name line: the marker, the name, and the value's number after an
// unknown name's text when `withNumber` is set.
void AppendNameLine(RecordText *text, char marker, const char *name, int32_t value,
                    bool withNumber) {
  RecordTextAppendChar(text, marker);
  RecordTextAppendString(text, name);
  if (withNumber) {
    RecordTextAppendChar(text, ' ');
    RecordTextAppendInt32(text, value, 0);
  }
  RecordTextAppendChar(text, '\n');
}

// "<" and "(" lines of an API call. An unknown function or reason shows its
// number after both names, so the line still says what was called.
void AppendApiNames(RecordText *text, int32_t function, int32_t exitReason) {
  const char *functionName = SearchConstantInt(function, Constant_Function);
  const char *reasonName = SearchConstantInt(exitReason, Constant_ExitReason);
  bool unknown = functionName[0] == '(' || reasonName[0] == '(';
  AppendNameLine(text, '<', functionName, function, unknown);
  AppendNameLine(text, '(', reasonName, exitReason, unknown);
}

// A result line at `p`: the label and the value in decimal.
template <int32_t N> char *PutValueLine(char *p, const char (&label)[N], int32_t value) {
  p = PutLiteral(p, label);
  p += FormatDecimalInt64(p, value, 0, 0);
  *p++ = '\n';
  return p;
}

// The "| " line that names a result value.
template <int32_t N>
void AppendValueNameLine(RecordText *text, const char (&label)[N], const char *name) {
  RecordTextAppendLiteral(text, "| ");
  RecordTextAppendLiteral(text, label);
  RecordTextAppendString(text, name);
  RecordTextAppendChar(text, '\n');
}

// The result of a completed call: codes of a queue-manager call, or the
// return value of a transaction-manager call.
void AppendResultLines(RecordText *text, int32_t function, int32_t compCode, int32_t reason) {
  // Two lines of the longest label ("Total number of XIDs:"), a number and
  // a newline.
  char lines[2 * (21 + FORMAT_DECIMAL_SIZE + 1)];
  if (function < ZKXF_XACLOSE) {
    char *p = PutValueLine(lines, "CompCode:", compCode);
    p = PutValueLine(p, "Reason:", reason);
    RecordTextAppendScratch(text, lines, p);
    if (reason != 0) {
      AppendValueNameLine(text, "Reason:", SearchConstantInt(reason, Constant_Zkrc));
    }
    return;
  }
  // A transaction-manager call has one return value, passed as both codes.
  int32_t value = compCode;
  if (function == ZKXF_XARECOVER && value >= 0) {
    RecordTextAppendScratch(text, lines, PutValueLine(lines, "Total number of XIDs:", value));
    return;
  }
  RecordTextAppendScratch(text, lines, PutValueLine(lines, "XA return value:", value));
  if (value != 0) {
    const ConstantIntEntry *table = function >= ZKXF_AXREG ? Constant_Axrc : Constant_Xarc;
    AppendValueNameLine(text, "XA return value:", SearchConstantInt(value, table));
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

  // The lines up to the time stamp are put together in a scratch buffer.
  char lines[1 + SEQUENCE_LINES_SIZE + TIME_STAMP_TEXT_SIZE + 1];
  char *p = lines;
  *p++ = '\n';
  bool numbered = apiExit ? (exitReason == ZKXR_BEFORE && function != ZKXF_DATA_CONV_ON_GET)
                          : (exitReason != ZKXR_INIT && exitReason != ZKXR_TERM);
  if (numbered) {
    p = PutSequenceLines(cb, p);
  }
  struct timeval now;
  int32_t stampLength = SetRecordTimeAndShow(cb, &now);
  memcpy(p, cb->RecordTimeText, (size_t)stampLength);
  p += stampLength;
  *p++ = '\n';
  RecordTextAppendScratch(&text, lines, p);

  ZKLONG countCompCode = compCode;
  ZKLONG countReason = reason;
  if (!apiExit) {
    // A channel exit: the exit reason, then the kind of channel exit.
    AppendNameLine(&text, '<', SearchConstantInt(exitReason, Constant_ExitReason), 0, false);
    AppendNameLine(&text, '(', SearchConstantInt(function, Constant_ChlExitId), 0, false);
    if (status == 0) {
      RecordTextWrite(cb, &text);
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
    CalculateApiCallTimeAndShow(cb, function, &now, nullptr, &elapsed);
    p = PutLiteral(lines, "| API process time:");
    p += FormatProcessTime(p, elapsed);
    p = PutLiteral(p, " second\n");
    RecordTextAppendScratch(&text, lines, p);
  }
  if (status == 0) {
    RecordTextWrite(cb, &text);
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
