#include "config/update_requests.h"

int32_t SeekUpdateRequestFiles(const char *, ExitControlBlock *) {
  return 0;
}
