// Name comparison for process and module names.
#pragma once

#include <stdint.h>

// 1 when the names match: exactly, or without regard to case, or once a
// "_ND" or ".EXE" suffix is ignored, or when either side is a "*" pattern
// (all names) or ends in "*" (a prefix). Otherwise 0.
int32_t CompareModuleNameNocase(const char *a, const char *b);
