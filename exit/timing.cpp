#include "exit/timing.h"

#include <stdio.h>
#include <time.h>

#include "exit/control_block.h"

void SetTimeAndShow(struct timeval *now, char *text) {
  gettimeofday(now, nullptr);
  if (text == nullptr) {
    return;
  }
  struct tm local;
  time_t seconds = now->tv_sec;
  localtime_r(&seconds, &local);
  snprintf(text, 64, "%s%04u/%02u/%02u %02u:%02u:%02u.%06u%s", "[",
           (unsigned)(local.tm_year + 1900), (unsigned)(local.tm_mon + 1), (unsigned)local.tm_mday,
           (unsigned)local.tm_hour, (unsigned)local.tm_min, (unsigned)local.tm_sec,
           (unsigned)now->tv_usec, "]");
}

void SetConnectionStartTime(ExitControlBlock *cb) {
  SetTimeAndShow(&cb->StartTime, cb->StartTimeText);
}
