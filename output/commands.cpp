// External commands run by the exit.
#include "output/commands.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "exit/alerts.h"
#include "text/string_utils.h"

extern char **environ;

namespace {

constexpr int32_t kCommandSize = 4096;

// Spawns /bin/sh with `argv` on /dev/null, in a session of its own, with
// the default disposition of the signals a shell relies on. 0 or -1.
int32_t SpawnShell(char *const argv[], pid_t *pid) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  int error = posix_spawn_file_actions_init(&actions);
  if (error != 0) {
    errno = error;
    return -1;
  }
  error = posix_spawnattr_init(&attributes);
  if (error != 0) {
    posix_spawn_file_actions_destroy(&actions);
    errno = error;
    return -1;
  }
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  sigset_t none;
  sigemptyset(&none);
  sigset_t defaults;
  sigemptyset(&defaults);
  const int resetSignals[] = {SIGPIPE, SIGCHLD, SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM};
  for (int signal : resetSignals) {
    sigaddset(&defaults, signal);
  }
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  error = posix_spawn(pid, "/bin/sh", &actions, &attributes, argv, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    errno = error;
    return -1;
  }
  return 0;
}

// Appends `text` as it is; 0, or -1 when it does not fit.
int32_t AppendPlain(char *out, size_t size, const char *text) {
  size_t used = strnlen(out, size);
  size_t length = strlen(text);
  if (used >= size || length >= size - used) {
    return -1;
  }
  memcpy(out + used, text, length + 1);
  return 0;
}

} // namespace

int32_t AppendShellWord(char *out, size_t size, const char *text) {
  size_t used = strnlen(out, size);
  size_t needed = 2;
  for (const char *c = text; *c != '\0'; c++) {
    needed += *c == '\'' ? 4 : 1;
  }
  if (used >= size || needed >= size - used) {
    return -1;
  }
  char *p = out + used;
  *p++ = '\'';
  for (const char *c = text; *c != '\0'; c++) {
    if (*c == '\'') {
      memcpy(p, "'\\''", 4);
      p += 4;
    } else {
      *p++ = *c;
    }
  }
  *p++ = '\'';
  *p = '\0';
  return 0;
}

int32_t StartBackgroundCommand(const char *commandLine) {
  // The outer shell's script is fixed; the command line is its argument $1
  // and only the inner shell parses it. The outer shell puts the inner one
  // in the background and ends at once, so the wait below is short and
  // leaves no child of the host behind.
  char script[] = "/bin/sh -c \"$1\" wz-command &";
  char shell[] = "sh";
  char dashC[] = "-c";
  char name[] = "wz-command";
  char *argv[] = {shell, dashC, script, name, const_cast<char *>(commandLine), nullptr};
  pid_t pid = 0;
  if (SpawnShell(argv, &pid) != 0) {
    return -1;
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  // ECHILD: the host reaps its children itself; the shell has gone either way.
  return 0;
}

int32_t PerformCommand(const ExitControlBlock *cb, const char *commandLine) {
  char quoted[kCommandSize];
  FILE *pipe = popen(commandLine, "re");
  if (pipe == nullptr) {
    snprintf(quoted, sizeof quoted, "popen \"%s\"", commandLine);
    PutMessage<1002>(cb, -1, quoted);
    return -1;
  }
  char buffer[1000];
  while (fgets(buffer, 998, pipe) != nullptr) {
    fputs(buffer, stdout);
  }
  if (pclose(pipe) != 0) {
    snprintf(quoted, sizeof quoted, "pclose \"%s\"", commandLine);
    PutMessage<1002>(cb, -1, quoted);
    return -1;
  }
  return 0;
}

int32_t CallReformatUtility(const ExitControlBlock *cb, const char *traceFilePath, char mode,
                            const char *inputName, const char *outputName) {
  char program[512];
  snprintf(program, sizeof program, "%s", traceFilePath);
  StringTrimFileNameAndExtractDir(program);
  const char *suffix;
  if (mode == '3') {
    suffix = "32";
  } else if (mode == '6') {
    suffix = "64";
  } else {
    char modeText[2] = {mode, '\0'};
    PutMessage<2>(cb, 0, "Invalid addressing mode : ", modeText);
    return -1;
  }
  size_t length = strlen(program);
  snprintf(program + length, sizeof program - length, "wzreform%s", suffix);
  // Paths are passed as quoted words: a file name never becomes shell syntax.
  char command[kCommandSize] = "";
  if (AppendShellWord(command, sizeof command, program) != 0 ||
      AppendPlain(command, sizeof command, " ") != 0 ||
      AppendShellWord(command, sizeof command, inputName) != 0 ||
      AppendPlain(command, sizeof command, " -o ") != 0 ||
      AppendShellWord(command, sizeof command, outputName) != 0 ||
      AppendPlain(command, sizeof command, " -q") != 0) {
    PutMessage<1002>(cb, E2BIG, command);
    return -1;
  }
  return PerformCommand(cb, command);
}
