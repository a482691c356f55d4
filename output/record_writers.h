// Fixed trace records: call headers and notes.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// Writes the header record of a call before or after it. The extra values
// are passed on to call counting. Not in place yet: writes nothing.
void PutHeaderRecord(ExitControlBlock *cb, int32_t function, int32_t exitReason, int32_t compCode,
                     int32_t reason, const void *extra1, const void *extra2);

// Writes a note line. Not in place yet: writes nothing.
void PutMsgToTrace(ExitControlBlock *cb, const char *text);
