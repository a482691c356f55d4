// Alert messages: one line per message, appended to the connection's error
// file in the trace directory, or to the process's error file in the
// current directory when there is no control block or that write fails.
#include "exit/alerts.h"

#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "exit/control_block.h"
#include "exit/exit_files.h"
#include "exit/message_tables.h"
#include "text/string_utils.h"

namespace {

constexpr int32_t kLineSize = 4096;

void FormatTimeStamp(char *out, size_t size) {
  struct timeval now;
  gettimeofday(&now, nullptr);
  struct tm local;
  time_t seconds = now.tv_sec;
  localtime_r(&seconds, &local);
  snprintf(out, size, "%04u/%02u/%02u %02u:%02u:%02u.%06u", (unsigned)(local.tm_year + 1900),
           (unsigned)(local.tm_mon + 1), (unsigned)local.tm_mday, (unsigned)local.tm_hour,
           (unsigned)local.tm_min, (unsigned)local.tm_sec, (unsigned)now.tv_usec);
}

// A text being built in a fixed buffer: what does not fit is cut.
struct LineOut {
  char *Text;
  int32_t Size;
  int32_t Used;
};

void Append(LineOut *out, const char *text, size_t length) {
  if (out->Size <= 0) {
    return;
  }
  size_t room = (size_t)(out->Size - 1 - out->Used);
  if (length > room) {
    length = room;
  }
  memcpy(out->Text + out->Used, text, length);
  out->Used += (int32_t)length;
  out->Text[out->Used] = '\0';
}

void AppendText(LineOut *out, const char *text) {
  Append(out, text, strlen(text));
}

// The value of a placeholder, or null when it has none and stays as it
// stands.
const char *PlaceholderValue(const MessagePlaceholder &placeholder, const char *timeStamp,
                             int32_t errorNumber, const AlertArgument *arguments, int32_t count,
                             uint32_t *used, char *scratch, size_t scratchSize) {
  if (placeholder.Kind == 't') {
    return timeStamp; // null: left as it stands
  }
  if (placeholder.Number == 0) {
    if (placeholder.Kind == 's') {
      return SearchErrorName(errorNumber);
    }
    if (placeholder.Kind == 'd') {
      snprintf(scratch, scratchSize, "%d", (int)errorNumber);
      return scratch;
    }
    return nullptr;
  }
  int32_t index = placeholder.Number - 1;
  if (index >= count || index >= 32 || (*used & (1u << index)) != 0) {
    return nullptr;
  }
  const AlertArgument &argument = arguments[index];
  char wanted = placeholder.Kind == 'x' ? 'u' : placeholder.Kind;
  if (argument.Kind != wanted) {
    return nullptr;
  }
  *used |= 1u << index;
  switch (placeholder.Kind) {
  case 's':
    return argument.Text != nullptr ? argument.Text : "(null)";
  case 'd':
    snprintf(scratch, scratchSize, "%d", (int)(int32_t)argument.Number);
    return scratch;
  case 'u':
    snprintf(scratch, scratchSize, "%u", (unsigned)argument.Number);
    return scratch;
  default:
    snprintf(scratch, scratchSize, "0x%08X", (unsigned)argument.Number);
    return scratch;
  }
}

void FillInto(LineOut *out, const char *messageTemplate, const char *timeStamp, int32_t errorNumber,
              const AlertArgument *arguments, int32_t count) {
  uint32_t used = 0;
  bool timeDone = false;
  bool errorNameDone = false;
  bool errorNumberDone = false;
  const char *p = messageTemplate;
  while (*p != '\0') {
    const char *literal = p;
    while (*p != '\0' && !(p[0] == '[' && p[1] == '$')) {
      p++;
    }
    Append(out, literal, (size_t)(p - literal));
    if (*p == '\0') {
      break;
    }
    MessagePlaceholder placeholder = ReadMessagePlaceholder(p);
    if (placeholder.Length == 0) {
      Append(out, p, 2);
      p += 2;
      continue;
    }
    // The time and the error are each filled at their first place only.
    bool *once = placeholder.Kind == 't'                              ? &timeDone
                 : placeholder.Number == 0 && placeholder.Kind == 's' ? &errorNameDone
                 : placeholder.Number == 0 && placeholder.Kind == 'd' ? &errorNumberDone
                                                                      : nullptr;
    char scratch[16];
    const char *value = (once != nullptr && *once)
                            ? nullptr
                            : PlaceholderValue(placeholder, timeStamp, errorNumber, arguments,
                                               count, &used, scratch, sizeof scratch);
    if (value != nullptr && once != nullptr) {
      *once = true;
    }
    if (value != nullptr) {
      AppendText(out, value);
    } else {
      Append(out, p, (size_t)placeholder.Length);
    }
    p += placeholder.Length;
  }
}

// The process and thread a message is written for: the connection's own
// identifiers when the block holds them, else the caller's.
void MessageIdentity(const ExitControlBlock *cb, uint32_t *pid, uint32_t *tid) {
  *pid = (uint32_t)getpid();
  *tid = (uint32_t)pthread_self();
  if (cb != nullptr) {
    if (cb->Identity.ProcessId != 0) {
      *pid = (uint32_t)cb->Identity.ProcessId;
    }
    if (cb->Identity.ThreadId != 0) {
      *tid = cb->Identity.ThreadId;
    }
  }
}

} // namespace

int32_t FillMessageTemplate(char *out, int32_t size, const char *messageTemplate,
                            const char *timeStamp, int32_t errorNumber,
                            const AlertArgument *arguments, int32_t count) {
  LineOut line = {out, size, 0};
  if (size > 0) {
    out[0] = '\0';
  }
  if (messageTemplate == nullptr) {
    return 0;
  }
  if (arguments == nullptr || count < 0) {
    count = 0;
  }
  FillInto(&line, messageTemplate, timeStamp, errorNumber, arguments, count);
  return line.Used;
}

int32_t BuildMessageLine(char *out, int32_t size, const ExitControlBlock *cb, uint32_t number,
                         int32_t errorNumber, const AlertArgument *arguments, int32_t count) {
  if (errorNumber == -1) {
    errorNumber = errno;
  }
  uint32_t pid;
  uint32_t tid;
  MessageIdentity(cb, &pid, &tid);
  LineOut line = {out, size, 0};
  if (size <= 0) {
    return 0;
  }
  out[0] = '\0';
  if (size < 2) {
    return 0; // no room for even the line feed
  }
  // The line keeps room for its line feed, whatever the text.
  line.Size = size - 1;

  char piece[64];
  FormatTimeStamp(piece, sizeof piece);
  AppendText(&line, piece);
  AppendText(&line, "  ");
  if (cb != nullptr) {
    AppendText(&line, "[");
    Append(&line, cb->Identity.ProcessName,
           strnlen(cb->Identity.ProcessName, sizeof cb->Identity.ProcessName));
    AppendText(&line, "] ");
  }
  snprintf(piece, sizeof piece, "(%u.%u) Msg%u: ", pid, tid, number);
  AppendText(&line, piece);

  const char *messageTemplate = SearchMessageTemplate(number);
  if (messageTemplate == nullptr) {
    AppendText(&line, "(Unknown message id)");
  } else {
    if (arguments == nullptr || count < 0) {
      count = 0;
    }
    // The time stands in the prefix; the template has no place for it.
    FillInto(&line, messageTemplate, nullptr, errorNumber, arguments, count);
  }
  out[line.Used++] = '\n';
  out[line.Used] = '\0';
  return line.Used;
}

void PutMessageArguments(const ExitControlBlock *cb, uint32_t number, int32_t error,
                         const AlertArgument *arguments, int32_t count) {
  int savedErrno = errno;
  char line[kLineSize];
  int32_t length = BuildMessageLine(line, sizeof line, cb, number, error == -1 ? savedErrno : error,
                                    arguments, count);

  uint32_t pid;
  uint32_t tid;
  MessageIdentity(cb, &pid, &tid);
  const char *kind = (cb != nullptr && cb->ExitType == EXIT_TYPE_CHANNEL) ? "wz_chlexit_error"
                                                                          : "wz_apiexit_error";
  char path[512];
  if (cb != nullptr) {
    snprintf(path, sizeof path, "%s%s_%u_%u.txt", cb->File.TraceDirectory, kind, pid, tid);
    if (AppendToExitFile(path, line, (size_t)length) == 0) {
      errno = savedErrno;
      return;
    }
  }
  snprintf(path, sizeof path, "%s_%u_%u.txt", kind, pid, tid);
  AppendToExitFile(path, line, (size_t)length);
  errno = savedErrno;
}
