// The name of the exit function that handles a call at an exit reason
// ("ConnBefore", "GetAfter"), for the exit's own debug lines.
#pragma once

#include <stdint.h>

// "(unknown)" for a function and exit reason no handler is registered for.
const char *HandlerNameOf(int32_t function, int32_t exitReason);
