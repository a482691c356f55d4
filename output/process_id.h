// The process id, without a system call per use.
#pragma once

#include <stdint.h>

// getpid() of the calling process, kept up to date across fork() by a
// child handler registered when the library is loaded.
int32_t CurrentProcessId(void);
