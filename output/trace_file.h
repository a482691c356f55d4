// Trace files: the write buffer, file naming, rotation and compression.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// The one entry point of the record writers. An empty text only makes the
// file checks (this is how start-up opens the first file). 0 or -1.
// The file writer is not in place yet: texts are accepted and dropped.
int32_t SetDataToWriteBuffer(ExitControlBlock *cb, const char *text);

// Closes the current trace file; `suffix` (or null) follows ".txt".
// Not in place yet: does nothing.
int32_t CloseAndCompressFile(ExitControlBlock *cb, const char *suffix);
