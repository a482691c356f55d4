// What an operator does while the application runs: 'sleep' pauses the
// scenario's thread, 'file' writes a file or sets its modification time.
// Together they let a scenario drop request files into an exit's directory
// between calls, at known points of the run.
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <utime.h>

#include "commands.h"

namespace zkqm {
namespace {

// The longest pause a scenario may ask for, in milliseconds.
constexpr ZKLONG kMaxSleep = 600000;
// The largest file 'file' writes.
constexpr ZKLONG kMaxFileSize = 100000000;

// "+S" or "-S": seconds from now.
bool parseOffset(const std::string &text, long &seconds) {
  if (text.size() < 2 || (text[0] != '+' && text[0] != '-')) {
    return false;
  }
  long value = 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] < '0' || text[i] > '9' || value > 100000000) {
      return false;
    }
    value = value * 10 + (text[i] - '0');
  }
  seconds = text[0] == '-' ? -value : value;
  return true;
}

std::string pathOf(const ScenarioContext &context, const std::string &name) {
  return !name.empty() && name[0] == '/' ? name : context.scenario.directory + "/" + name;
}

bool writeAll(int fd, const char *data, std::size_t length) {
  while (length > 0) {
    ssize_t n = write(fd, data, length);
    if (n < 0 && errno == EINTR) {
      continue;
    }
    if (n <= 0) {
      return false;
    }
    data += n;
    length -= static_cast<std::size_t>(n);
  }
  return true;
}

} // namespace

// ---- sleep MS ----------------------------------------------------------------------

bool checkSleep(const ScenarioCommand &cmd, std::string &error) {
  ZKLONG ms = 0;
  if (!hasVariable(cmd.words[1]) &&
      (!parseValue(cmd.words[1], "", ms, error) || ms < 0 || ms > kMaxSleep)) {
    error = "sleep: milliseconds from 0 to " + std::to_string(kMaxSleep) + ", found '" +
            cmd.words[1] + "'";
    return false;
  }
  return true;
}

bool runSleep(ScenarioContext &, const ScenarioCommand &cmd, std::string &error) {
  ZKLONG ms = 0;
  if (!parseValue(cmd.words[1], "", ms, error) || ms < 0 || ms > kMaxSleep) {
    error = "sleep: milliseconds from 0 to " + std::to_string(kMaxSleep) + ", found '" +
            cmd.words[1] + "'";
    return false;
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
  return true;
}

// ---- file PATH [size=N | line=TEXT ...] [touch] [mtime=+S|-S] ----------------------------

bool checkFile(const ScenarioCommand &cmd, std::string &error) {
  Args args(cmd, 2);
  if (!args.checkKeys({"size", "line", "mtime"}, {}, error)) {
    return false;
  }
  bool touch = false;
  for (const std::string &p : args.positional()) {
    if (p != "touch") {
      error = "file: unknown word '" + p + "' (size=N, line=TEXT, touch, mtime=+S|-S)";
      return false;
    }
    touch = true;
  }
  if (args.has("size") && args.has("line")) {
    error = "file: size= and line= do not go together";
    return false;
  }
  if (touch && (args.has("size") || args.has("line"))) {
    error = "file: touch leaves the content alone; it takes no size= or line=";
    return false;
  }
  std::string size = args.get("size");
  ZKLONG n = 0;
  if (args.has("size") && !hasVariable(size) &&
      (!parseValue(size, "", n, error) || n < 0 || n > kMaxFileSize)) {
    error =
        "file: size= takes 0 to " + std::to_string(kMaxFileSize) + " bytes, found '" + size + "'";
    return false;
  }
  std::string mtime = args.get("mtime");
  long seconds = 0;
  if (args.has("mtime") && !hasVariable(mtime) && !parseOffset(mtime, seconds)) {
    error = "file: mtime= takes +S or -S (seconds from now), found '" + mtime + "'";
    return false;
  }
  return true;
}

bool runFile(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Args args(cmd, 2);
  std::string path = pathOf(context, cmd.words[1]);
  bool touch = !args.positional().empty();
  long seconds = 0;
  if (args.has("mtime") && !parseOffset(args.get("mtime"), seconds)) {
    error = "file: mtime= takes +S or -S (seconds from now), found '" + args.get("mtime") + "'";
    return false;
  }
  if (touch) {
    // Made empty when it is missing; an existing file keeps its content.
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
      error = "file: cannot open '" + path + "': " + std::strerror(errno);
      return false;
    }
    close(fd);
  } else {
    std::string content;
    if (args.has("size")) {
      ZKLONG n = 0;
      if (!parseValue(args.get("size"), "", n, error) || n < 0 || n > kMaxFileSize) {
        error = "file: size= takes 0 to " + std::to_string(kMaxFileSize) + " bytes";
        return false;
      }
      content.assign(static_cast<std::size_t>(n), '0');
    }
    for (const std::string &line : args.all("line")) {
      content += line;
      content += '\n';
    }
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) {
      error = "file: cannot open '" + path + "': " + std::strerror(errno);
      return false;
    }
    bool written = writeAll(fd, content.data(), content.size());
    int savedErrno = errno;
    if (close(fd) != 0 || !written) {
      error = "file: cannot write '" + path + "': " + std::strerror(written ? errno : savedErrno);
      return false;
    }
  }
  // The modification time: now, or S seconds from now. Writing has set it
  // to now already; it is set here all the same, so that touch means the
  // same with or without new content.
  int result;
  if (args.has("mtime")) {
    struct utimbuf times;
    times.actime = time(nullptr) + static_cast<time_t>(seconds);
    times.modtime = times.actime;
    result = utime(path.c_str(), &times);
  } else {
    result = utime(path.c_str(), nullptr);
  }
  if (result != 0) {
    error = "file: cannot set the time of '" + path + "': " + std::strerror(errno);
    return false;
  }
  return true;
}

} // namespace zkqm
