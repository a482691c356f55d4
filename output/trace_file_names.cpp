// Trace file names: the name form, the search of the trace directory for
// names already taken, and the reopening of a closed file of the same name.
//
// Large-file interfaces: a 32-bit process must still read directories on
// file systems with 64-bit inode numbers and stat files beyond 2 GB.
#define _FILE_OFFSET_BITS 64

#include "output/trace_file.h"

#include <dirent.h>
#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include "exit/alerts.h"
#include "exit/exit_files.h"
#include "exit/control_block.h"

namespace {

constexpr int32_t kNameSize = 280;
constexpr int32_t kPathSize = 640;

} // namespace

// Letters, digits, "." and "_" stand for themselves; every other byte
// (NUL and blank included) becomes "_".
// clang-format off
#define UNDERSCORES_16 '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_'
const unsigned char ZkObjectNameToFileNameTable[256] = {
    UNDERSCORES_16,                                                                 // 0x00
    UNDERSCORES_16,                                                                 // 0x10
    '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '_', '.', '_', // 0x20
    '0', '1', '2', '3', '4', '5', '6', '7', '8', '9', '_', '_', '_', '_', '_', '_', // 0x30
    '_', 'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O', // 0x40
    'P', 'Q', 'R', 'S', 'T', 'U', 'V', 'W', 'X', 'Y', 'Z', '_', '_', '_', '_', '_', // 0x50
    '_', 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o', // 0x60
    'p', 'q', 'r', 's', 't', 'u', 'v', 'w', 'x', 'y', 'z', '_', '_', '_', '_', '_', // 0x70
    UNDERSCORES_16,                                                                 // 0x80
    UNDERSCORES_16,                                                                 // 0x90
    UNDERSCORES_16,                                                                 // 0xA0
    UNDERSCORES_16,                                                                 // 0xB0
    UNDERSCORES_16,                                                                 // 0xC0
    UNDERSCORES_16,                                                                 // 0xD0
    UNDERSCORES_16,                                                                 // 0xE0
    UNDERSCORES_16,                                                                 // 0xF0
};
#undef UNDERSCORES_16
// clang-format on

void TranslateZkObjectNameToFileName(char *text, int32_t length) {
  if (text == nullptr) {
    return;
  }
  for (int32_t i = 0; i < length; i++) {
    text[i] = (char)ZkObjectNameToFileNameTable[(unsigned char)text[i]];
  }
}

int32_t CheckFileExistence(ExitControlBlock *cb, const char *name, int64_t *size) {
  DIR *directory = opendir(cb->File.TraceDirectory);
  if (directory == nullptr) {
    PutMessage<1001>(cb, -1, cb->File.TraceDirectory, "opendir");
    return -1;
  }
  size_t nameLength = strlen(name);
  int32_t result = 0;
  while (struct dirent *entry = readdir(directory)) {
    if (strcmp(entry->d_name, name) == 0) {
      char path[kPathSize];
      snprintf(path, sizeof path, "%s%s", cb->File.TraceDirectory, name);
      struct stat status;
      *size = lstat(path, &status) == 0 ? (int64_t)status.st_size : 0;
      closedir(directory);
      return 2;
    }
    if (strncmp(entry->d_name, name, nameLength) == 0) {
      result = 1;
    }
  }
  closedir(directory);
  return result;
}

namespace {

// "wz_", the mapped queue manager name (or "client"), "_", the process
// name, "_pid_tid_" of the exit context, then "perf_" or "summary_".
// 0, or -1 when the stem does not fit.
int32_t BuildFileNameStem(const ExitControlBlock *cb, char *stem, size_t size) {
  char qmgr[sizeof cb->Identity.QMgrName];
  snprintf(qmgr, sizeof qmgr, "%s",
           cb->Identity.QMgrName[0] != '\0' ? cb->Identity.QMgrName : "client");
  TranslateZkObjectNameToFileName(qmgr, (int32_t)strlen(qmgr));
  const char *mode = "";
  if (cb->Settings.ShowPerformanceOnly == 1) {
    mode = "perf_";
  } else if (cb->Settings.ShowSummaryOnly == 1) {
    mode = "summary_";
  }
  int length =
      snprintf(stem, size, "wz_%s_%s_%u_%u_%s", qmgr, cb->Identity.ProcessName,
               (unsigned)cb->Identity.ZkaxcProcessId, (unsigned)cb->Identity.ZkaxcThreadId, mode);
  return (length >= 0 && (size_t)length < size) ? 0 : -1;
}

// Stem, sequence number and extension. Below 1000 the number has three
// digits with leading zeros, from there on it is written in full.
int32_t BuildFileName(const char *stem, int32_t sequence, const char *extension, char *name,
                      size_t size) {
  int length = snprintf(name, size, "%s%.3d%s", stem, (int)sequence, extension);
  return (length >= 0 && (size_t)length < size) ? 0 : -1;
}

} // namespace

int32_t GenerateNewFileName(ExitControlBlock *cb, int64_t *reopenedSize) {
  *reopenedSize = 0;
  char stem[kNameSize];
  if (BuildFileNameStem(cb, stem, sizeof stem) != 0) {
    return -1;
  }
  char openName[kNameSize];
  char closedName[kNameSize];
  int64_t size = 0;
  while (cb->File.FileSequenceNumber < INT32_MAX) {
    cb->File.FileSequenceNumber++;
    if (BuildFileName(stem, cb->File.FileSequenceNumber, ".t", openName, sizeof openName) != 0 ||
        BuildFileName(stem, cb->File.FileSequenceNumber, ".txt", closedName, sizeof closedName) !=
            0) {
      return -1;
    }
    int32_t found = CheckFileExistence(cb, openName, &size);
    if (found == -1) {
      return -1;
    }
    if (found == 2) {
      continue; // another writer has this number open
    }
    found = CheckFileExistence(cb, closedName, &size);
    if (found == -1) {
      return -1;
    }
    if (found == 1) {
      continue; // a compressed or otherwise extended file of this number
    }
    int length = snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s%s",
                          cb->File.TraceDirectory, openName);
    if (length < 0 || (size_t)length >= sizeof cb->File.TraceFilePath) {
      return -1;
    }
    if (found == 0) {
      cb->File.CurrentFileSize = 0;
      return 0;
    }
    // A closed file of exactly this name: take it up again, appending.
    char closedPath[kPathSize];
    snprintf(closedPath, sizeof closedPath, "%s%s", cb->File.TraceDirectory, closedName);
    // Only a regular file is taken up again: a link planted at the name
    // would lead the trace into someone else's file.
    struct stat status;
    int present = lstat(closedPath, &status);
    if (present != 0 || !S_ISREG(status.st_mode)) {
      if (present == 0) {
        errno = S_ISLNK(status.st_mode) ? ELOOP : EXIT_FILE_NOT_REGULAR;
      }
      PutMessage<1001>(cb, -1, closedPath, cb->Settings.WriteStream == 1 ? "fopen" : "open");
      return -1;
    }
    if (rename(closedPath, cb->File.TraceFilePath) != 0) {
      PutMessage<1006>(cb, -1, closedPath, cb->File.TraceFilePath);
      return -1;
    }
    cb->File.CurrentFileSize = size;
    *reopenedSize = size;
    return 0;
  }
  return -1;
}
