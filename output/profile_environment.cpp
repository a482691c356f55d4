// The process environment, listed sorted at the end of the profile when
// ShowProcessEnvValue is on.
#include <string.h>

#include "exit/control_block.h"
#include "output/profile.h"
#include "output/trace_file.h"
#include "output/trace_text.h"

extern char **environ;

namespace {

#define PROFILE_DASHED_LINE "|----------------------------------------------------------\n"
// Entries listed at most; further ones are left out.
#define ENVIRONMENT_LIST_MAX 999

// Where `entry` goes in the sorted `list` of `count` entries: after every
// entry that is not greater, so equal entries keep their order.
int32_t InsertPosition(const char *const *list, int32_t count, const char *entry) {
  int32_t low = 0;
  int32_t high = count;
  while (low < high) {
    int32_t middle = low + (high - low) / 2;
    if (strcmp(list[middle], entry) <= 0) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

} // namespace

void PutEnvironmentVariables(ExitControlBlock *cb) {
  const char *sorted[ENVIRONMENT_LIST_MAX];
  int32_t count = 0;
  for (char **entry = environ; entry != nullptr && *entry != nullptr; entry++) {
    if (count >= ENVIRONMENT_LIST_MAX) {
      break;
    }
    int32_t at = InsertPosition(sorted, count, *entry);
    memmove(&sorted[at + 1], &sorted[at], (size_t)(count - at) * sizeof sorted[0]);
    sorted[at] = *entry;
    count++;
  }

  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&t, "|Environment variables\n");
  for (int32_t i = 0; i < count; i++) {
    TraceTextAppendLiteral(&t, "|  ");
    TraceTextAppendString(&t, sorted[i]);
    TraceTextAppendChar(&t, '\n');
  }
  TraceTextAppendLiteral(&t, PROFILE_DASHED_LINE);
  TraceTextWrite(&t);
  FlushTraceDataInBuffer(cb);
}
