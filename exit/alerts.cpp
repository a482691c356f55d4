// Alert messages: one line per message, appended to the connection's error
// file in the trace directory, or to the process's error file in the
// current directory when there is no control block or that write fails.
#include "exit/alerts.h"

#include <errno.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "exit/control_block.h"
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

// Fills the placeholders $1, $2, ... in order from the argument list; stops
// at the first number that has no placeholder of any kind.
void FillArguments(char *line, va_list args) {
  for (int32_t n = 1;; n++) {
    char placeholder[16];
    char value[kLineSize];
    snprintf(placeholder, sizeof placeholder, "[$%ds]", n);
    if (StringSearch(line, placeholder) >= 0) {
      const char *text = va_arg(args, const char *);
      snprintf(value, sizeof value, "%s", text != nullptr ? text : "(null)");
    } else if (snprintf(placeholder, sizeof placeholder, "[$%dd]", n),
               StringSearch(line, placeholder) >= 0) {
      snprintf(value, sizeof value, "%d", (int)va_arg(args, int32_t));
    } else if (snprintf(placeholder, sizeof placeholder, "[$%du]", n),
               StringSearch(line, placeholder) >= 0) {
      snprintf(value, sizeof value, "%u", (unsigned)va_arg(args, uint32_t));
    } else if (snprintf(placeholder, sizeof placeholder, "[$%dx]", n),
               StringSearch(line, placeholder) >= 0) {
      snprintf(value, sizeof value, "0x%08X", (unsigned)va_arg(args, uint32_t));
    } else {
      return;
    }
    StringReplaceFirst(line, kLineSize, placeholder, value);
  }
}

// Appends the line to a file; 0 when the whole line was written.
int32_t AppendLine(const char *path, const char *line) {
  FILE *file = fopen(path, "a");
  if (file == nullptr) {
    return -1;
  }
  int written = fprintf(file, "%s", line);
  int closed = fclose(file);
  return (written == (int)strlen(line) && closed == 0) ? 0 : -1;
}

} // namespace

void PutMessage(const ExitControlBlock *cb, uint32_t number, int32_t error, ...) {
  int savedErrno = errno;
  int32_t errorNumber = error == -1 ? savedErrno : error;
  uint32_t pid = (uint32_t)getpid();
  uint32_t tid = (uint32_t)pthread_self();
  if (cb != nullptr) {
    if (cb->ProcessId != 0) {
      pid = (uint32_t)cb->ProcessId;
    }
    if (cb->ThreadId != 0) {
      tid = cb->ThreadId;
    }
  }

  char line[kLineSize];
  if (cb != nullptr) {
    snprintf(line, sizeof line, "[$t]  [%s] (%u.%u) Msg%u: ", cb->ProcessName, pid, tid, number);
  } else {
    snprintf(line, sizeof line, "[$t]  (%u.%u) Msg%u: ", pid, tid, number);
  }
  const char *messageTemplate = SearchMessageTemplate(number);
  size_t used = strlen(line);
  snprintf(line + used, sizeof line - used, "%s",
           messageTemplate != nullptr ? messageTemplate : "(Unknown message id)");

  char value[64];
  FormatTimeStamp(value, sizeof value);
  StringReplaceFirst(line, kLineSize, "[$t]", value);
  StringReplaceFirst(line, kLineSize, "[$0s]", SearchErrorName(errorNumber));
  snprintf(value, sizeof value, "%d", (int)errorNumber);
  StringReplaceFirst(line, kLineSize, "[$0d]", value);

  va_list args;
  va_start(args, error);
  FillArguments(line, args);
  va_end(args);

  used = strlen(line);
  if (used + 1 < sizeof line) {
    line[used] = '\n';
    line[used + 1] = '\0';
  } else {
    line[sizeof line - 2] = '\n';
  }

  const char *kind = (cb != nullptr && cb->ExitType == EXIT_TYPE_CHANNEL) ? "wz_chlexit_error"
                                                                          : "wz_apiexit_error";
  char path[512];
  if (cb != nullptr) {
    snprintf(path, sizeof path, "%s%s_%u_%u.txt", cb->TraceDirectory, kind, pid, tid);
    if (AppendLine(path, line) == 0) {
      errno = savedErrno;
      return;
    }
  }
  snprintf(path, sizeof path, "%s_%u_%u.txt", kind, pid, tid);
  AppendLine(path, line);
  errno = savedErrno;
}

int32_t PerformCommand(const ExitControlBlock *cb, const char *commandLine) {
  char quoted[kLineSize];
  FILE *pipe = popen(commandLine, "r");
  if (pipe == nullptr) {
    snprintf(quoted, sizeof quoted, "popen \"%s\"", commandLine);
    PutMessage(cb, 1002, -1, quoted);
    return -1;
  }
  char buffer[1000];
  while (fgets(buffer, 998, pipe) != nullptr) {
    fputs(buffer, stdout);
  }
  if (pclose(pipe) != 0) {
    snprintf(quoted, sizeof quoted, "pclose \"%s\"", commandLine);
    PutMessage(cb, 1002, -1, quoted);
    return -1;
  }
  return 0;
}

int32_t CallReformatUtility(const ExitControlBlock *cb, const char *traceFilePath, char mode,
                            const char *inputName, const char *outputName) {
  char directory[512];
  snprintf(directory, sizeof directory, "%s", traceFilePath);
  StringTrimFileNameAndExtractDir(directory);
  const char *suffix;
  if (mode == '3') {
    suffix = "32";
  } else if (mode == '6') {
    suffix = "64";
  } else {
    char modeText[2] = {mode, '\0'};
    PutMessage(cb, 2, 0, "Invalid addressing mode : ", modeText);
    return -1;
  }
  char command[kLineSize];
  snprintf(command, sizeof command, "%s%s%s %s -o %s -q", directory, "wzreform", suffix, inputName,
           outputName);
  return PerformCommand(cb, command);
}
