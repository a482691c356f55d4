// Fixed trace records: call headers, summary-only lines, notes and
// hex-and-character dumps.
#pragma once

#include <stdint.h>

#include "zk/zk.h"

struct ExitControlBlock;
struct CallCounterRecord;

// Dump modes of PutHexDataLen.
#define HEX_MODE_PLAIN 0
#define HEX_MODE_PREFIXED 1

// Writes the header record of a call before or after it. After the call it
// shows the codes and the elapsed time and counts the call in the given
// counter records (either may be null).
void PutHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason, int32_t compCode,
                     int32_t reason, CallCounterRecord *first, CallCounterRecord *second);

// The one-line record of summary-only mode; times and counts the call.
// `md` may be null; `msgLength` -1 means none.
void PutSimpleRecord(ExitControlBlock *cb, int32_t compCode, int32_t reason,
                     CallCounterRecord *first, CallCounterRecord *second, const ZKMD *md,
                     int32_t msgLength);

// A note: "|  *** text ***  " with the time stamp.
void PutMsgToTrace(ExitControlBlock *cb, const char *text);

// Hex-and-character dump of `length` bytes at `address`.
void PutHexData(ExitControlBlock *cb, const char *title, const void *address, int32_t length,
                int32_t mode);

// The same, dumping `dumpLength` bytes while the title shows `shownLength`.
void PutHexDataLen(ExitControlBlock *cb, const char *title, const void *address, int32_t dumpLength,
                   int32_t mode, int32_t shownLength);

// Dumps the text of a variable-length string; `base` is the address of the
// structure that holds the descriptor, for offset-addressed text.
void PutHexCharvData(ExitControlBlock *cb, const char *title, const ZKCHARV *charv,
                     const void *base);

// High and low hex digit ("0"-"9", "A"-"F") of every byte value.
extern const char GraphicHexUpper4Bits[256];
extern const char GraphicHexLower4Bits[256];

// Writes `length` bytes as 2 x `length` upper-case hex digits, high digit
// first, and a NUL; returns the address of the NUL.
char *FormatHexBytes(char *out, const void *bytes, int32_t length);
