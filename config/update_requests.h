// Dynamic update requests: request files dropped into the trace directory
// that switch tracing on, off or renew it in running processes.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// Looks for request files. With a null directory only records what exists.
// Request files are not acted on yet: this records nothing and returns 0.
int32_t SeekUpdateRequestFiles(const char *exitData, ExitControlBlock *cb);
