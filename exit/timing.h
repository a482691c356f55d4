// Clock of the exit: time stamps of calls and of the connection's start.
#pragma once

#include <stdint.h>
#include <sys/time.h>

struct ExitControlBlock;

// Fills `now` with the time of day; when `text` is given (64 bytes) writes
// it as "[YYYY/MM/DD hh:mm:ss.uuuuuu]" in local time.
void SetTimeAndShow(struct timeval *now, char *text);

// Records the connection's start time and its text in the control block.
void SetConnectionStartTime(ExitControlBlock *cb);
