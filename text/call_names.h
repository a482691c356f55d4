// The names of an exit call's function and exit reason, found by index
// instead of by scanning their tables: every record shows both. A value
// outside the index gets what the table look-up gives it (its end text).
#pragma once

#include <stdint.h>

const char *FunctionName(int32_t function);
const char *ExitReasonName(int32_t exitReason);
