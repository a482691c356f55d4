// Replays saved fuzz inputs through a fuzz target without the fuzzing
// engine: every file of every directory (or every file) named on the
// command line is read and handed to LLVMFuzzerTestOneInput once. A target's
// failed check aborts the process, and so fails the test that runs it.
//
//   wz_fuzz_<name> [--min-inputs N] PATH...
//
// Entries whose names begin with "." are skipped, and so is a directory
// that does not exist (a target may have no crash inputs yet). The replay
// fails when it ran fewer than N inputs (default 1), so that an emptied
// corpus cannot pass unnoticed.
#include <dirent.h>
#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int *argc, char ***argv);

namespace {

bool IsDirectory(const std::string &path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsRegularFile(const std::string &path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// Absolute paths, so that a target may change its working directory.
std::string Absolute(const std::string &path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : path;
}

void Collect(const std::string &path, std::vector<std::string> &files) {
  if (IsRegularFile(path)) {
    files.push_back(Absolute(path));
    return;
  }
  if (!IsDirectory(path)) {
    return;
  }
  std::vector<std::string> names;
  if (DIR *dir = opendir(path.c_str())) {
    while (dirent *entry = readdir(dir)) {
      if (entry->d_name[0] != '.') {
        names.push_back(entry->d_name);
      }
    }
    closedir(dir);
  }
  std::sort(names.begin(), names.end());
  for (const std::string &name : names) {
    std::string file = path + "/" + name;
    if (IsRegularFile(file)) {
      files.push_back(Absolute(file));
    }
  }
}

bool ReadFile(const std::string &path, std::vector<uint8_t> &bytes) {
  FILE *file = fopen(path.c_str(), "rb");
  if (file == nullptr) {
    return false;
  }
  bytes.clear();
  uint8_t buffer[65536];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, file)) > 0) {
    bytes.insert(bytes.end(), buffer, buffer + n);
  }
  bool ok = ferror(file) == 0;
  fclose(file);
  return ok;
}

} // namespace

int main(int argc, char **argv) {
  size_t minimum = 1;
  std::vector<std::string> files;
  for (int i = 1; i < argc; i++) {
    if (strcmp(argv[i], "--min-inputs") == 0 && i + 1 < argc) {
      minimum = (size_t)strtoul(argv[++i], nullptr, 10);
      continue;
    }
    Collect(argv[i], files);
  }
  if (LLVMFuzzerInitialize != nullptr) {
    LLVMFuzzerInitialize(&argc, &argv);
  }
  std::vector<uint8_t> bytes;
  for (const std::string &file : files) {
    if (!ReadFile(file, bytes)) {
      fprintf(stderr, "cannot read %s\n", file.c_str());
      return 1;
    }
    fprintf(stderr, "replay %s (%zu bytes)\n", file.c_str(), bytes.size());
    // A copy of exactly the input's size, so that a read past its end is
    // as visible to a sanitizer as it is under the fuzzing engine.
    uint8_t *copy = (uint8_t *)malloc(bytes.empty() ? 1 : bytes.size());
    if (!bytes.empty()) {
      memcpy(copy, bytes.data(), bytes.size());
    }
    LLVMFuzzerTestOneInput(copy, bytes.size());
    free(copy);
  }
  printf("%zu inputs replayed\n", files.size());
  if (files.size() < minimum) {
    fprintf(stderr, "fewer inputs than the %zu expected\n", minimum);
    return 1;
  }
  return 0;
}
