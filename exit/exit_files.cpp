// Opening the exit's own files: no link followed, regular files only, no
// blocking, no inheritance, mode 0660.
#include "exit/exit_files.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int OpenFlags(int32_t mode) {
  // O_NONBLOCK: opening a FIFO or a device must not wait for a peer. It is
  // taken off again once the file is known to be regular.
  const int common = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  switch (mode) {
  case EXIT_FILE_READ:
    return O_RDONLY | common;
  case EXIT_FILE_APPEND:
    return O_WRONLY | O_APPEND | O_CREAT | common;
  case EXIT_FILE_READ_WRITE:
    return O_RDWR | O_APPEND | common;
  case EXIT_FILE_CREATE_NEW:
    return O_RDWR | O_APPEND | O_CREAT | O_EXCL | common;
  default:
    return -1;
  }
}

void CloseKeepingErrno(int descriptor) {
  int saved = errno;
  close(descriptor);
  errno = saved;
}

} // namespace

int32_t OpenExitFile(const char *path, int32_t mode) {
  int flags = OpenFlags(mode);
  if (path == nullptr || path[0] == '\0' || flags < 0) {
    errno = EINVAL;
    return -1;
  }
  int descriptor = open(path, flags, 0660);
  if (descriptor < 0) {
    return -1;
  }
  struct stat info;
  if (fstat(descriptor, &info) != 0) {
    CloseKeepingErrno(descriptor);
    return -1;
  }
  if (!S_ISREG(info.st_mode)) {
    close(descriptor);
    errno = EXIT_FILE_NOT_REGULAR;
    return -1;
  }
  int status = fcntl(descriptor, F_GETFL);
  if (status < 0 || fcntl(descriptor, F_SETFL, status & ~O_NONBLOCK) != 0) {
    CloseKeepingErrno(descriptor);
    return -1;
  }
  if (descriptor <= 2) {
    // The host closed a standard stream: keep our file clear of its number.
    int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
    CloseKeepingErrno(descriptor);
    if (moved < 0) {
      return -1;
    }
    descriptor = moved;
  }
  return descriptor;
}

FILE *OpenExitStream(const char *path, int32_t mode) {
  int descriptor = OpenExitFile(path, mode);
  if (descriptor < 0) {
    return nullptr;
  }
  FILE *stream = fdopen(descriptor, mode == EXIT_FILE_READ ? "r" : "a");
  if (stream == nullptr) {
    CloseKeepingErrno(descriptor);
  }
  return stream;
}

int32_t AppendToExitFile(const char *path, const char *text, size_t length) {
  int descriptor = OpenExitFile(path, EXIT_FILE_APPEND);
  if (descriptor < 0) {
    return -1;
  }
  size_t done = 0;
  while (done < length) {
    ssize_t written = write(descriptor, text + done, length - done);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      CloseKeepingErrno(descriptor);
      return -1;
    }
    done += (size_t)written;
  }
  if (close(descriptor) != 0 && errno != EINTR) {
    return -1;
  }
  return 0;
}
