// The run log: one line per event, to standard output or to a file. Lines
// carry no addresses, process ids or times, so that two runs of the same
// scenario give the same log.
//
// A thread of a scenario writes into a capture of its own, which the main
// thread appends to the log when the thread has ended, so that the log does
// not depend on how the threads happened to interleave. Inside a quiet loop
// only errors are written.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

namespace zkqm {

class Log {
public:
  Log() = default;
  Log(const Log &) = delete;
  Log &operator=(const Log &) = delete;
  ~Log();

  // Sends the log to `path` (truncated) instead of standard output.
  bool openFile(const std::string &path, std::string &error);

  // Writes one line; the newline is added. Not written inside a quiet loop.
  void line(const char *format, ...) __attribute__((format(printf, 2, 3)));
  // Writes one line even inside a quiet loop (errors, summaries).
  void always(const char *format, ...) __attribute__((format(printf, 2, 3)));
  // Appends lines captured elsewhere (a thread's, a process's).
  void append(const std::vector<std::string> &lines);

  // The calling thread's lines go to `capture` (null: to the log again).
  static void captureThread(std::vector<std::string> *capture);
  // Quiet loops nest; line() writes nothing while one is active.
  static void enterQuiet();
  static void leaveQuiet();
  static bool quiet();

private:
  void write(const std::string &text);

  FILE *out_ = stdout;
  std::mutex mutex_;
};

// The log of this run, used by ZKXEP, which has no other way to reach it.
Log &runLog();

// Reports a problem on standard error, prefixed with the program name.
void reportError(const char *format, ...) __attribute__((format(printf, 1, 2)));

} // namespace zkqm
