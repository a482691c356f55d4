// Helpers shared by the trace-file tests: a control block with a trace
// directory and a write buffer, and small file utilities.
#pragma once

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/parameters.h"
#include "exit/control_block.h"
#include "output/trace_file.h"
#include "tests/unit/test_support.h"

// The name stem of the block below: queue manager ZKQM1, process "app",
// exit-context process 4242 and thread 7.
#define TEST_STEM "wz_ZKQM1_app_4242_7_"
#define TEST_CONTACT "trace-support@wz.example"

// A zero-filled control block as start-up leaves it for the trace output:
// default settings, the first text opens the first file.
struct TraceFileBlock {
  ExitControlBlock *cb;

  explicit TraceFileBlock(const std::string &directory, int32_t bufferSize = 5000) {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock) + (size_t)bufferSize);
    SetDefaultParameterSettings(&cb->Settings);
    cb->Settings.WriteBufferSize = bufferSize;
    cb->Settings.WriteInterval = 0;
    cb->Settings.ShowZkVersion = 0; // no version command run by the profile
    cb->WriteBufferSize = bufferSize;
    snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/", directory.c_str());
    snprintf(cb->Identity.QMgrName, sizeof cb->Identity.QMgrName, "ZKQM1");
    snprintf(cb->Identity.ProcessName, sizeof cb->Identity.ProcessName, "app");
    snprintf(cb->Identity.MakerContact, sizeof cb->Identity.MakerContact, TEST_CONTACT);
    cb->Identity.ZkaxcProcessId = 4242;
    cb->Identity.ZkaxcThreadId = 7;
    cb->ExitType = EXIT_TYPE_API;
    cb->ExecStatus = 1;
    cb->Identity.ApiLevel = API_LEVEL_700;
    cb->File.CurrentFileSize = cb->Settings.MaxFileSize + 1;
    cb->File.RotationPermitted = 1;
  }
  ~TraceFileBlock() {
    // Leaves the file as it is; the temporary directory removes it.
    if (cb->File.FileStream != nullptr) {
      fclose(cb->File.FileStream);
    }
    if (cb->File.FileDescriptor > 0) {
      close(cb->File.FileDescriptor);
    }
    free(cb);
  }
  TraceFileBlock(const TraceFileBlock &) = delete;
  TraceFileBlock &operator=(const TraceFileBlock &) = delete;
};

inline std::string ReadWholeFile(const std::string &path) {
  std::string content;
  int fd = open(path.c_str(), O_RDONLY);
  if (fd < 0) {
    return content;
  }
  char chunk[65536];
  ssize_t n;
  while ((n = read(fd, chunk, sizeof chunk)) > 0) {
    content.append(chunk, (size_t)n);
  }
  close(fd);
  return content;
}

// Size of a file, -1 when it does not exist.
inline long long SizeOfFile(const std::string &path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? (long long)status.st_size : -1;
}

inline bool FileExists(const std::string &path) {
  return SizeOfFile(path) >= 0;
}

inline size_t CountOf(const std::string &text, const std::string &piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) {
    count++;
  }
  return count;
}

// The text of the first error file in `directory`, empty when there is none.
inline std::string ErrorFileText(const TempDir &directory) {
  for (const std::string &name : directory.List()) {
    if (name.rfind("wz_apiexit_error_", 0) == 0) {
      return directory.Read(name);
    }
  }
  return "";
}

// Names in `directory` that begin with the test stem, sorted.
inline std::vector<std::string> TraceFileNames(const TempDir &directory) {
  std::vector<std::string> names;
  for (const std::string &name : directory.List()) {
    if (name.rfind(TEST_STEM, 0) == 0) {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}
