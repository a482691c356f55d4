// The header record of every traced call and the notes written between
// records.
#include "output/record_writers.h"

#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "output/timing.h"
#include "output/trace_file.h"
#include "output/trace_text.h"
#include "text/call_names.h"
#include "text/constant_table.h"

namespace {

// The lines that number a before-call, with a note about the calls the
// filters left out since the last number printed.
void AppendSequenceLines(ExitControlBlock *cb, TraceText *text) {
  uint32_t count = cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount;
  uint32_t last = cb->Counters.LastPrintedSequence;
  if (last < count) {
    TraceTextAppendLiteral(text, "|>-- Seq # : ");
    if (last + 1 != count) {
      TraceTextAppendUInt32(text, last + 1, 0);
      TraceTextAppendChar(text, '-');
    }
    TraceTextAppendUInt32(text, count, 0);
    TraceTextAppendLiteral(text, " suppressed by parameter file\n");
  }
  TraceTextAppendLiteral(text, "|--- Seq # : ");
  TraceTextAppendUInt32(text, count + 1, 0);
  TraceTextAppendLiteral(text, " ---------------------------------------\n");
  cb->Counters.LastPrintedSequence = count + 1;
}

// One name line: the marker, the name, and the value's number after an
// unknown name's text when `withNumber` is set.
void AppendNameLine(TraceText *text, char marker, const char *name, int32_t value,
                    bool withNumber) {
  TraceTextAppendChar(text, marker);
  // Names are short: copied byte by byte while they fit, the rest (if any)
  // the general way.
  char *p = text->Buffer + text->Length;
  const char *end = text->Buffer + TRACE_TEXT_SIZE;
  while (*name != '\0' && p < end) {
    *p++ = *name++;
  }
  TraceTextCommit(text, p);
  if (*name != '\0') {
    TraceTextAppendString(text, name);
  }
  if (withNumber) {
    TraceTextAppendChar(text, ' ');
    TraceTextAppendInt32(text, value, 0);
  }
  TraceTextAppendChar(text, '\n');
}

// "<" and "(" lines of an API call. An unknown function or reason shows its
// number after both names, so the line still says what was called.
void AppendApiNames(TraceText *text, int32_t function, int32_t exitReason) {
  const char *functionName = FunctionName(function);
  const char *reasonName = ExitReasonName(exitReason);
  bool unknown = functionName[0] == '(' || reasonName[0] == '(';
  AppendNameLine(text, '<', functionName, function, unknown);
  AppendNameLine(text, '(', reasonName, exitReason, unknown);
}

// A result line: the label and the value in decimal.
template <int32_t N> void AppendValueLine(TraceText *text, const char (&label)[N], int32_t value) {
  TraceTextAppendLiteral(text, label);
  TraceTextAppendInt32(text, value, 0);
  TraceTextAppendChar(text, '\n');
}

// The "| " line that names a result value.
template <int32_t N>
void AppendValueNameLine(TraceText *text, const char (&label)[N], const char *name) {
  TraceTextAppendLiteral(text, "| ");
  TraceTextAppendLiteral(text, label);
  TraceTextAppendString(text, name);
  TraceTextAppendChar(text, '\n');
}

// The result of a completed call: codes of a queue-manager call, or the
// return value of a transaction-manager call.
void AppendResultLines(TraceText *text, int32_t function, int32_t compCode, int32_t reason) {
  if (function < ZKXF_XACLOSE) {
    AppendValueLine(text, "CompCode:", compCode);
    AppendValueLine(text, "Reason:", reason);
    if (reason != 0) {
      AppendValueNameLine(text, "Reason:", SearchConstantInt(reason, Constant_Zkrc));
    }
    return;
  }
  // A transaction-manager call has one return value, passed as both codes.
  int32_t value = compCode;
  if (function == ZKXF_XARECOVER && value >= 0) {
    AppendValueLine(text, "Total number of XIDs:", value);
    return;
  }
  AppendValueLine(text, "XA return value:", value);
  if (value != 0) {
    const ConstantIntEntry *table = function >= ZKXF_AXREG ? Constant_Axrc : Constant_Xarc;
    AppendValueNameLine(text, "XA return value:", SearchConstantInt(value, table));
  }
}

} // namespace

RecordCounting WriteHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason,
                                 int32_t compCode, int32_t reason, int64_t *elapsed) {
  *elapsed = 0;
  bool apiExit = cb->ExitType != EXIT_TYPE_CHANNEL;

  // One clock reading serves the whole record: the file checks, the time
  // stamp and the elapsed time.
  struct timeval now;
  ReadCallClock(cb);

  // Only a before-call may start a new file, so that the records before and
  // after one call always share a file. The file checks count only the
  // record's first line ("-"): the file is switched when that would not fit.
  if (apiExit) {
    cb->File.RotationPermitted =
        (exitReason == ZKXR_AFTER || function == ZKXF_DATA_CONV_ON_GET) ? 0 : 1;
  } else {
    cb->File.RotationPermitted = 1;
  }
  int32_t status = PrepareTraceFile(cb, 1);
  cb->File.RotationPermitted = 0;

  // A header is a few lines of names, numbers and a time: it always fits.
  TraceText text;
  TraceTextStart(&text, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&text, "-\n");
  bool numbered = apiExit ? (exitReason == ZKXR_BEFORE && function != ZKXF_DATA_CONV_ON_GET)
                          : (exitReason != ZKXR_INIT && exitReason != ZKXR_TERM);
  if (numbered) {
    AppendSequenceLines(cb, &text);
  }
  int32_t stampLength = SetRecordTimeAndShow(cb, &now);
  AppendRecordTime(&text, cb, stampLength);
  TraceTextAppendChar(&text, '\n');

  if (!apiExit) {
    // A channel exit: the exit reason, then the kind of channel exit.
    AppendNameLine(&text, '<', ExitReasonName(exitReason), 0, false);
    AppendNameLine(&text, '(', SearchConstantInt(function, Constant_ChlExitId), 0, false);
    if (status == 0) {
      TraceTextWrite(&text);
    }
    return exitReason != ZKXR_INIT && exitReason != ZKXR_TERM ? RECORD_COUNTED : RECORD_NOT_COUNTED;
  }

  AppendApiNames(&text, function, exitReason);
  if (exitReason == ZKXR_BEFORE && function != ZKXF_DATA_CONV_ON_GET) {
    // The header's time is when the call started.
    if (function < ZKXF_XACLOSE) {
      cb->Clock.ApiBeforeTime = now;
    } else {
      cb->Clock.XaBeforeTime = now;
    }
  }

  bool after = exitReason == ZKXR_AFTER;
  if (after) {
    AppendResultLines(&text, function, compCode, reason);
    CalculateApiCallTimeAndShow(cb, function, &now, nullptr, elapsed);
    TraceTextAppendLiteral(&text, "| API process time:");
    AppendProcessTime(&text, *elapsed);
    TraceTextAppendLiteral(&text, " second\n");
  }
  if (status == 0) {
    TraceTextWrite(&text);
  }
  return after ? RECORD_COUNTED_WITH_TIME : RECORD_NOT_COUNTED;
}

void PutMsgToTrace(ExitControlBlock *cb, const char *text) {
  struct timeval now;
  char stamp[64];
  SetTimeAndShow(&now, stamp);
  TraceText note;
  TraceTextStart(&note, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&note, "|\n|\n|  *** ");
  TraceTextAppendString(&note, text);
  TraceTextAppendLiteral(&note, " ***  ");
  TraceTextAppendString(&note, stamp);
  TraceTextAppendLiteral(&note, "\n|\n");
  SetDataToWriteBuffer(cb, TraceTextString(&note));
}
