// The one-line record of summary-only mode: one line per call with its
// time, codes, elapsed time, object and message identifiers, under a column
// heading written once per file.
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

// Message flags of a version-2 descriptor that place it in a group.
#define MSG_FLAG_MSG_IN_GROUP 8
#define MSG_FLAG_LAST_MSG_IN_GROUP 16

#define SIMPLE_RECORD_TEXT_SIZE 1024

const char kSimpleRecordHeading[] =
    "          Time                         API         CC Reason  Time(sec)  ObjectName       "
    "                                MsgId                                               MsgLen";

// An object name of a ShowSummaryDataSuppress entry against the call's.
bool SuppressObjectMatches(const char *entry, const char *object) {
  if (entry[0] == '*') {
    return true;
  }
  size_t n = strlen(entry);
  if (n > 0 && entry[n - 1] == '*') {
    return strncmp(entry, object, n - 1) == 0;
  }
  return strcmp(entry, object) == 0;
}

// Whether the call gets a line: not in performance-only mode, and not when
// an entry of the ShowSummaryDataSuppress list matches it.
bool SimpleRecordWanted(const ExitControlBlock *cb, int32_t function, int32_t compCode,
                        int32_t reason) {
  const ParameterSettings &settings = cb->Settings;
  if (settings.ShowPerformanceOnly) {
    return false;
  }
  for (int32_t i = 0; i < settings.ShowSummaryDataSuppressCount; i++) {
    const SummaryDataSuppressEntry &e = settings.ShowSummaryDataSuppress[i];
    if ((e.CompCode == PARAMETER_ANY || e.CompCode == compCode) &&
        (e.Reason == PARAMETER_ANY || e.Reason == reason) &&
        (e.Function == PARAMETER_ANY || e.Function == function) &&
        SuppressObjectMatches(e.ObjectName, cb->CurrentQueueName)) {
      return false;
    }
  }
  return true;
}

// The 24 zero bytes of an identifier that is not set.
const ZKBYTE24 kNoIdentifier = {};

// A 24-byte identifier as 48 upper-case hex digits, high digit first, at `p`.
char *PutIdentifier(char *p, const ZKBYTE24 identifier) {
  for (size_t i = 0; i < sizeof(ZKBYTE24); i++) {
    memcpy(p + 2 * i, FieldHexPairs + 2 * identifier[i], 2);
  }
  return p + 2 * sizeof(ZKBYTE24);
}

// Longest text of the descriptor's columns: a blank, an identifier, the
// length, two blanks, an identifier, the sequence number and its note.
#define DESCRIPTOR_TEXT_SIZE (1 + 48 + 10 + 2 + 48 + FORMAT_DECIMAL_SIZE + 15)

// The descriptor's columns: message id, length, correlation id and the
// message's place in its group.
void AppendDescriptor(const ExitControlBlock *cb, RecordText *text, const ZKMD *md,
                      int32_t msgLength) {
  char columns[DESCRIPTOR_TEXT_SIZE];
  char *p = columns;
  *p++ = ' ';
  p = PutIdentifier(p, md->MsgId);
  if (msgLength != -1) {
    p += FormatDecimalUInt32(p, (uint32_t)msgLength, 10, 0);
  }
  if (cb->Settings.ShowSummaryCorrelId) {
    if (memcmp(md->CorrelId, kNoIdentifier, sizeof md->CorrelId) == 0) {
      p = PutLiteral(p, "  (null)");
    } else {
      p = PutLiteral(p, "  ");
      p = PutIdentifier(p, md->CorrelId);
    }
  }
  if (md->Version >= ZKMD_VERSION_2) {
    if (md->MsgFlags & MSG_FLAG_LAST_MSG_IN_GROUP) {
      p += FormatDecimalInt64(p, md->MsgSeqNumber, 8, 0);
      p = PutLiteral(p, " (End of group)");
    } else if (md->MsgFlags & MSG_FLAG_MSG_IN_GROUP) {
      p += FormatDecimalInt64(p, md->MsgSeqNumber, 8, 0);
    }
  }
  RecordTextAppendScratch(text, columns, p);
}

// Name of a reason: a queue-manager reason, or the return value of a
// transaction-manager call.
const char *ReasonName(int32_t function, int32_t reason) {
  if (function < ZKXF_XACLOSE) {
    return SearchConstantInt(reason, Constant_Zkrc);
  }
  return SearchConstantInt(reason, function >= ZKXF_AXREG ? Constant_Axrc : Constant_Xarc);
}

} // namespace

void PutSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason,
                     CallCounterRecord *first, CallCounterRecord *second, const ZKMD *md,
                     int32_t msgLength) {
  int32_t function = cb->CurrentFunction;
  struct timeval now;
  int32_t stampLength = SetRecordTimeAndShow(cb, &now);
  int64_t elapsed = 0;
  CalculateApiCallTimeAndShow(cb, function, &now, nullptr, &elapsed);
  ZKLONG countCompCode = compCode;
  ZKLONG countReason = reason;

  if (SimpleRecordWanted(cb, function, compCode, reason)) {
    // The file may switch here, between calls.
    cb->RotationPermitted = 1;
    int32_t status = SetDataToWriteBuffer(cb, "");

    char buffer[SIMPLE_RECORD_TEXT_SIZE];
    RecordText text;
    RecordTextStart(&text, buffer, sizeof buffer);
    if (cb->NewFileOpened) {
      RecordTextAppendLiteral(&text, "-\n");
      RecordTextAppendLiteral(&text, kSimpleRecordHeading);
      if (cb->Settings.ShowSummaryCorrelId) {
        RecordTextAppendLiteral(&text, "  CorrelId");
      }
      RecordTextAppendChar(&text, '\n');
      cb->NewFileOpened = 0;
    }
    // The columns around the two names are put together in a scratch line;
    // the names are appended as they are. Either part fits: a number, a
    // blank, the time stamp and two blanks; or two numbers, a blank, the
    // elapsed time (below 32 bytes) and two blanks.
    char columns[FORMAT_DECIMAL_SIZE + 1 + TIME_STAMP_TEXT_SIZE + 2 + 32];
    char *p = columns;
    p += FormatDecimalUInt32(p, cb->Totals[COUNTER_CUMULATIVE].CallCount + 1, 8, 0);
    *p++ = ' ';
    memcpy(p, cb->RecordTimeText, (size_t)stampLength);
    p = PutLiteral(p + stampLength, "  ");
    RecordTextAppendScratch(&text, columns, p);
    RecordTextAppendPadded(&text, SearchConstantInt(function, Constant_Function), 11);
    p = columns;
    p += FormatDecimalUInt32(p, (uint32_t)compCode, 3, 0);
    p += FormatDecimalUInt32(p, (uint32_t)reason, 5, 0);
    *p++ = ' ';
    p += FormatProcessTime(p, elapsed);
    p = PutLiteral(p, "  ");
    RecordTextAppendScratch(&text, columns, p);
    RecordTextAppendPadded(&text, function < ZKXF_XACLOSE ? cb->CurrentQueueName : "", 48);
    if (md != nullptr && compCode != ZKCC_FAILED) {
      AppendDescriptor(cb, &text, md, msgLength);
    }
    if (reason != 0) {
      p = PutLiteral(columns, " (");
      p += FormatDecimalUInt32(p, (uint32_t)reason, 0, 0);
      p = PutLiteral(p, " = ");
      RecordTextAppendScratch(&text, columns, p);
      RecordTextAppendString(&text, ReasonName(function, reason));
      RecordTextAppendLiteral(&text, ")\n");
    } else {
      RecordTextAppendChar(&text, '\n');
    }
    if (status == 0) {
      RecordTextWrite(cb, &text);
    }
    if (cb->Settings.WriteAfterEachApi) {
      FlushTraceDataInBuffer(cb);
    }
  }

  IncrementResultCount(cb, function, &countCompCode, &countReason, first, second, 1, elapsed, 0, 0);
  cb->RecordTimeText[0] = '\0';
}
