// Fixed trace records: call headers, summary-only lines, notes and
// hex-and-character dumps.
#pragma once

#include <stdint.h>

#include "zk/zk.h"

struct ExitControlBlock;

// Dump modes of PutHexDataLen.
#define HEX_MODE_PLAIN 0
#define HEX_MODE_PREFIXED 1

// How a call whose record was written is to be counted.
enum RecordCounting : int32_t {
  RECORD_NOT_COUNTED,       // a before-call, or a channel exit's start or end
  RECORD_COUNTED,           // a channel exit's call: counted without a time
  RECORD_COUNTED_WITH_TIME, // an API call after it ran: counted with *elapsed
};

// Writes the header record of a call before or after it; after the call it
// shows the codes and the elapsed time (also stored in *elapsed). The
// record's time stamp stays in cb->Clock.RecordTimeText for the counting that
// follows. The call counting itself is PutHeaderRecord's (exit/).
RecordCounting WriteHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason,
                                 int32_t compCode, int32_t reason, int64_t *elapsed);

// The one-line record of summary-only mode, unless ShowPerformanceOnly or a
// ShowSummaryDataSuppress entry leaves it out. `md` may be null; `msgLength`
// -1 means none. Returns the call's elapsed time; the time stamp stays in
// cb->Clock.RecordTimeText as above. PutSimpleRecord (exit/) counts the call.
int64_t WriteSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason, const ZKMD *md,
                          int32_t msgLength);

// A note: "|  *** text ***  " with the time stamp.
void PutMsgToTrace(ExitControlBlock *cb, const char *text);

// Hex-and-character dump of `length` bytes at `address`.
void PutHexData(ExitControlBlock *cb, const char *title, const void *address, int32_t length,
                int32_t mode);

// The same, dumping `dumpLength` bytes while the title shows `shownLength`.
void PutHexDataLen(ExitControlBlock *cb, const char *title, const void *address, int32_t dumpLength,
                   int32_t mode, int32_t shownLength);

// High and low hex digit ("0"-"9", "A"-"F") of every byte value.
extern const char GraphicHexUpper4Bits[256];
extern const char GraphicHexLower4Bits[256];

// Writes `length` bytes as 2 x `length` upper-case hex digits, high digit
// first, and a NUL; returns the address of the NUL.
char *FormatHexBytes(char *out, const void *bytes, int32_t length);
