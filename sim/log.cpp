#include "log.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>

namespace zkqm {
namespace {

thread_local std::vector<std::string> *tCapture = nullptr;
thread_local int tQuiet = 0;

std::string format(const char *fmt, va_list args) {
  va_list copy;
  va_copy(copy, args);
  int n = std::vsnprintf(nullptr, 0, fmt, copy);
  va_end(copy);
  std::string text(n > 0 ? static_cast<std::size_t>(n) : 0, '\0');
  if (n > 0) {
    std::vsnprintf(text.data(), text.size() + 1, fmt, args);
  }
  return text;
}

} // namespace

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

void Log::write(const std::string &text) {
  if (tCapture != nullptr) {
    tCapture->push_back(text);
    return;
  }
  std::lock_guard<std::mutex> lock(mutex_);
  std::fputs(text.c_str(), out_);
  std::fputc('\n', out_);
  // Flushed at once so that the log is complete up to a crash inside an exit.
  std::fflush(out_);
}

void Log::line(const char *fmt, ...) {
  if (tQuiet > 0) {
    return;
  }
  va_list args;
  va_start(args, fmt);
  std::string text = format(fmt, args);
  va_end(args);
  write(text);
}

void Log::always(const char *fmt, ...) {
  va_list args;
  va_start(args, fmt);
  std::string text = format(fmt, args);
  va_end(args);
  write(text);
}

void Log::append(const std::vector<std::string> &lines) {
  for (const std::string &l : lines) {
    write(l);
  }
}

void Log::captureThread(std::vector<std::string> *capture) {
  tCapture = capture;
}

void Log::enterQuiet() {
  ++tQuiet;
}

void Log::leaveQuiet() {
  --tQuiet;
}

bool Log::quiet() {
  return tQuiet > 0;
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
