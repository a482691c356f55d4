// The run log: one line per event, to standard output or to a file. Lines
// carry no addresses, process ids or times, so that two runs of the same
// scenario give the same log.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>

namespace zkqm {

class Log {
public:
  Log() = default;
  Log(const Log &) = delete;
  Log &operator=(const Log &) = delete;
  ~Log();

  // Sends the log to `path` (truncated) instead of standard output.
  bool openFile(const std::string &path, std::string &error);

  // Writes one line; the newline is added. Safe from several threads: whole
  // lines interleave.
  void line(const char *format, ...) __attribute__((format(printf, 2, 3)));

private:
  FILE *out_ = stdout;
  std::mutex mutex_;
};

// The log of this run, used by ZKXEP, which has no other way to reach it.
Log &runLog();

// Reports a problem on standard error, prefixed with the program name.
void reportError(const char *format, ...) __attribute__((format(printf, 1, 2)));

} // namespace zkqm
