#include "output/process_id.h"

#include <pthread.h>
#include <unistd.h>

namespace {

// Every record compares the process id with the one its file was opened
// under, and getpid() is a system call. The value is read once and renewed
// in the child of every fork(); the C library drops the handler again when
// the library is unloaded.
volatile int32_t gProcessId = 0;

void RenewProcessId(void) {
  gProcessId = (int32_t)getpid();
}

__attribute__((constructor)) void WatchForks(void) {
  RenewProcessId();
  pthread_atfork(nullptr, nullptr, RenewProcessId);
}

} // namespace

int32_t CurrentProcessId(void) {
  int32_t pid = gProcessId;
  return pid != 0 ? pid : (int32_t)getpid();
}
