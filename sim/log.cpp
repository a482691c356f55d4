#include "log.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>

namespace zkqm {

Log::~Log() {
  if (out_ != stdout) {
    std::fclose(out_);
  } else {
    std::fflush(out_);
  }
}

bool Log::openFile(const std::string &path, std::string &error) {
  FILE *f = std::fopen(path.c_str(), "w");
  if (f == nullptr) {
    error = "cannot open log file '" + path + "': " + std::strerror(errno);
    return false;
  }
  std::lock_guard<std::mutex> lock(mutex_);
  if (out_ != stdout) {
    std::fclose(out_);
  }
  out_ = f;
  return true;
}

void Log::line(const char *format, ...) {
  std::lock_guard<std::mutex> lock(mutex_);
  va_list args;
  va_start(args, format);
  std::vfprintf(out_, format, args);
  va_end(args);
  std::fputc('\n', out_);
  // Flushed at once so that the log is complete up to a crash inside an exit.
  std::fflush(out_);
}

Log &runLog() {
  static Log log;
  return log;
}

void reportError(const char *format, ...) {
  std::fflush(stdout);
  std::fputs("zkqm: ", stderr);
  va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
  std::fputc('\n', stderr);
}

} // namespace zkqm
