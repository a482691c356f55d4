// Field formatting primitives: the one line layout of every parsed field.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// The value in decimal with thousands separators.
int32_t ReformatAndShowNumericValue(ExitControlBlock *cb, uint64_t value);
