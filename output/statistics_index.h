// Which counter records of the summary a function has.
#pragma once

#include <stdint.h>

// Index of a function's counter records (0..30), or -1 when it has none.
int32_t StatisticsIndexOfFunction(int32_t function);
