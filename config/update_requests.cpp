// Testing one request name: the file's type, size and modification time,
// read without following a link and without opening the file.
//
// Large-file interfaces: the size of a request file of more than 2 GB must
// still be read (it is an enable request), not refused by lstat.
#define _FILE_OFFSET_BITS 64

#include "config/update_requests.h"

#include <stdint.h>
#include <stdio.h>
#include <sys/stat.h>

#include "exit/control_block.h"

int32_t UpdateRequestKindOfSize(int64_t size) {
  if (size < 10) {
    return UPDATE_REQUEST_RENEW;
  }
  if (size < 20) {
    return UPDATE_REQUEST_DISABLE;
  }
  return UPDATE_REQUEST_ENABLE;
}

int32_t BuildUpdateRequestPath(const ExitControlBlock *cb, uint32_t processId, uint32_t threadId,
                               char *out, int32_t size) {
  if (size <= 0) {
    return -1;
  }
  out[0] = '\0';
  // The directory of a block that start-up has not filled: no name at all,
  // rather than one relative to whatever the host's current directory is.
  const char *directory = cb->File.TraceDirectory;
  if (directory[0] == '\0') {
    return -1;
  }
  int length;
  if (processId == 0) {
    length = snprintf(out, (size_t)size, "%.*s%s%s_%s%s", (int)sizeof cb->File.TraceDirectory,
                      directory, UPDATE_REQUEST_PREFIX, UPDATE_REQUEST_ALL, UPDATE_REQUEST_ALL,
                      UPDATE_REQUEST_SUFFIX);
  } else if (threadId == 0) {
    length =
        snprintf(out, (size_t)size, "%.*s%s%u_%s%s", (int)sizeof cb->File.TraceDirectory, directory,
                 UPDATE_REQUEST_PREFIX, processId, UPDATE_REQUEST_ALL, UPDATE_REQUEST_SUFFIX);
  } else {
    length = snprintf(out, (size_t)size, "%.*s%s%u_%u%s", (int)sizeof cb->File.TraceDirectory,
                      directory, UPDATE_REQUEST_PREFIX, processId, threadId, UPDATE_REQUEST_SUFFIX);
  }
  if (length < 0 || length >= size) {
    out[0] = '\0';
    return -1;
  }
  return length;
}

int32_t CheckUpdateRequestFileExistence(ExitControlBlock *cb, uint32_t processId,
                                        uint32_t threadId) {
  char path[128];
  if (BuildUpdateRequestPath(cb, processId, threadId, path, (int32_t)sizeof path) < 0) {
    return UPDATE_REQUEST_NONE;
  }
  // lstat: a link planted at the name is looked at itself, never what it
  // points to, and nothing is opened, so a FIFO cannot block the call.
  struct stat status;
  if (lstat(path, &status) != 0 || !S_ISREG(status.st_mode)) {
    return UPDATE_REQUEST_NONE;
  }
  // Whole seconds, held in 32 bits; a time beyond that range counts as the
  // latest that can be held.
  int64_t seconds = (int64_t)status.st_mtime;
  int32_t modified = seconds > (int64_t)INT32_MAX   ? INT32_MAX
                     : seconds < (int64_t)INT32_MIN ? INT32_MIN
                                                    : (int32_t)seconds;
  if (modified <= cb->UpdateRequestTime) {
    return UPDATE_REQUEST_NONE;
  }
  cb->UpdateRequestTime = modified;
  return UpdateRequestKindOfSize((int64_t)status.st_size);
}
