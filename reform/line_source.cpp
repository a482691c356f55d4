#include "reform/line_source.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace wzreform {

namespace {

constexpr size_t kBlock = 1 << 20;

} // namespace

LineSource::LineSource(size_t maxLine) : MaxLine(maxLine < 16 ? 16 : maxLine) {}

LineSource::~LineSource() {
  Close();
  free(Buffer);
}

void LineSource::Open(int fd, pid_t child, const char *label) {
  Close();
  Fd = fd;
  Child = child;
  ChildLabel = label != nullptr ? label : "";
  if (Buffer == nullptr) {
    Buffer = static_cast<char *>(malloc(kBlock));
    Capacity = Buffer != nullptr ? kBlock : 0;
  }
  Start = End = 0;
  Long.clear();
  Lines = Cut = BytesRead = 0;
  Eof = Failed = Unended = false;
  Error.clear();
  if (Buffer == nullptr) {
    Failed = true;
    Error = strerror(ENOMEM);
  }
}

bool LineSource::Fill() {
  if (Eof || Failed) {
    return false;
  }
  Start = End = 0;
  for (;;) {
    ssize_t n = read(Fd, Buffer, Capacity);
    if (n > 0) {
      End = static_cast<size_t>(n);
      BytesRead += static_cast<uint64_t>(n);
      return true;
    }
    if (n == 0) {
      Eof = true;
      return false;
    }
    if (errno == EINTR) {
      continue;
    }
    Failed = true;
    Error = strerror(errno);
    return false;
  }
}

bool LineSource::Next(std::string_view *line) {
  Long.clear();
  bool cut = false;
  for (;;) {
    if (Start == End && !Fill()) {
      // The end: what was gathered is the last line, without a line feed.
      if (Long.empty() && !cut) {
        return false;
      }
      Unended = true;
      Lines++;
      if (cut) {
        Cut++;
      }
      *line = Long;
      return true;
    }
    const char *begin = Buffer + Start;
    size_t available = End - Start;
    const char *feed = static_cast<const char *>(memchr(begin, '\n', available));
    size_t length = feed != nullptr ? static_cast<size_t>(feed - begin) : available;
    if (Long.empty() && !cut && feed != nullptr && length <= MaxLine) {
      // The usual case: the whole line lies in the buffer.
      Start += length + 1;
      Lines++;
      *line = std::string_view(begin, length);
      return true;
    }
    // Gathered across blocks, or cut at the limit.
    size_t room = MaxLine - Long.size();
    if (length > room) {
      cut = true;
    }
    Long.append(begin, length < room ? length : room);
    if (feed != nullptr) {
      Start += length + 1;
      Lines++;
      if (cut) {
        Cut++;
      }
      *line = Long;
      return true;
    }
    Start = End;
  }
}

int LineSource::Close() {
  int result = Failed ? -1 : 0;
  if (Fd >= 0) {
    close(Fd);
    Fd = -1;
  }
  if (Child > 0) {
    int status = 0;
    while (waitpid(Child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
      if (Error.empty()) {
        Error = ChildLabel + " ended with status " + std::to_string(WEXITSTATUS(status));
      }
      result = -1;
    } else if (WIFSIGNALED(status)) {
      if (Error.empty()) {
        Error = ChildLabel + " ended by signal " + std::to_string(WTERMSIG(status));
      }
      result = -1;
    }
    Child = 0;
  }
  Failed = Failed || result != 0;
  return result;
}

int SpawnFilter(const char *program, const char *const *args, int inFd, pid_t *child) {
  int pipeFds[2];
  if (pipe2(pipeFds, O_CLOEXEC) != 0) {
    return -1;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, inFd, 0);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
  // argv: the program's name, then the arguments.
  const char *argv[16];
  int n = 0;
  argv[n++] = program;
  for (int i = 0; args[i] != nullptr && n < 15; i++) {
    argv[n++] = args[i];
  }
  argv[n] = nullptr;
  // The child starts with the default action for SIGPIPE, whatever ours is.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  int error = posix_spawnp(child, program, &actions, &attributes, const_cast<char *const *>(argv),
                           environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  close(pipeFds[1]);
  if (error != 0) {
    close(pipeFds[0]);
    errno = error;
    return -1;
  }
  return pipeFds[0];
}

} // namespace wzreform
