// Fuzz target "alert_line": the alert line builder (exit/alerts.h) with
// arbitrary templates, argument kinds, texts and counts, and small and large
// output sizes.
//
// The input: a header (see Header below), the template, then each
// argument's kind, number and text.
//
// Checks:
//  - FillMessageTemplate and BuildMessageLine never write beyond `size`
//    (the output is a heap block of exactly that size), the output is
//    NUL-terminated within it and the length returned is its length;
//  - the filled template is exactly what the rules in alerts.h give, worked
//    out here on their own: one pass over the template; "[$t]" the time
//    stamp, "[$0s]"/"[$0d]" the error's name and number (each at its first
//    place only), "[$ns]", "[$nd]", "[$nu]", "[$nx]" argument n of that kind
//    (each argument once); any other placeholder, or one without its
//    argument, stays as it stands; cut to the size. So an argument's text
//    (say "[$2s]") is never read as a template: it appears as it is;
//  - a whole line is the time stamp, the process name (with a control
//    block), "(pid.tid) Msg<number>: ", the filled template or "(Unknown
//    message id)" and a line feed, cut so that the line feed stays;
//  - PutMessageArguments appends exactly that line to the error file.
#include <errno.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "exit/alerts.h"
#include "exit/control_block.h"
#include "exit/message_tables.h"
#include "fuzz/fuzz_support.h"

namespace {

constexpr size_t kMaxArguments = 9;
// Catalogue numbers tried often, and numbers that are not in it.
const uint32_t kNumbers[] = {1,    2,    1001, 1002, 1006, 1010, 1021, 2008, 2009,
                             2010, 2011, 2101, 3100, 3101, 0,    9999, 4242};
const char kTimeStamp[] = "2024/02/29 23:59:59.999999 [$1s]";

struct Header {
  uint8_t flags;
  int32_t count;
  int32_t fillSize;
  int32_t lineSize;
  int32_t errorNumber;
  uint32_t number;
  int32_t processId;
  uint32_t threadId;
};

enum : uint8_t {
  kWithBlock = 0x01,
  kNoTimeStamp = 0x02,
  kErrnoNumber = 0x04, // errorNumber -1: errno
  kNoArguments = 0x08, // a null argument list with a count
  kNegativeCount = 0x10,
  kWriteFile = 0x20,
  kFullProcessName = 0x40, // a process name filling its field, no NUL
};

struct Arguments {
  std::vector<AlertArgument> list;
  std::vector<std::string> texts;
};

// -- The rules, worked out on their own ---------------------------------------

// A placeholder at `p`: "[$t]", or "[$", one or two digits, a kind letter
// (s, d, u, x) and "]". Its length, or 0.
size_t PlaceholderAt(const char *p, int32_t *number, char *kind) {
  if (p[0] != '[' || p[1] != '$') {
    return 0;
  }
  if (p[2] == 't' && p[3] == ']') {
    *number = 0;
    *kind = 't';
    return 4;
  }
  size_t digits = 0;
  int32_t n = 0;
  while (p[2 + digits] >= '0' && p[2 + digits] <= '9') {
    n = n * 10 + (p[2 + digits] - '0');
    digits++;
    if (digits > 2) {
      return 0;
    }
  }
  char k = p[2 + digits];
  if (digits == 0 || (k != 's' && k != 'd' && k != 'u' && k != 'x') || p[3 + digits] != ']') {
    return 0;
  }
  *number = n;
  *kind = k;
  return 3 + digits + 1;
}

std::string Filled(const char *messageTemplate, const char *timeStamp, int32_t errorNumber,
                   const AlertArgument *arguments, int32_t count) {
  if (arguments == nullptr || count < 0) {
    count = 0;
  }
  std::string out;
  std::vector<bool> used((size_t)count, false);
  bool timeDone = false, nameDone = false, numberDone = false;
  char text[32];
  for (const char *p = messageTemplate; *p != '\0';) {
    int32_t number = 0;
    char kind = 0;
    size_t length = PlaceholderAt(p, &number, &kind);
    if (length == 0) {
      out.push_back(*p++);
      continue;
    }
    std::string value;
    bool filled = false;
    if (kind == 't') {
      filled = timeStamp != nullptr && !timeDone;
      timeDone = timeDone || filled;
      value = filled ? timeStamp : "";
    } else if (number == 0 && kind == 's' && !nameDone) {
      filled = nameDone = true;
      value = SearchErrorName(errorNumber);
    } else if (number == 0 && kind == 'd' && !numberDone) {
      filled = numberDone = true;
      value = std::to_string(errorNumber);
    } else if (number >= 1 && number <= count && !used[(size_t)number - 1]) {
      const AlertArgument &a = arguments[number - 1];
      if (a.Kind == (kind == 'x' ? 'u' : kind)) {
        filled = true;
        used[(size_t)number - 1] = true;
        if (kind == 's') {
          value = a.Text != nullptr ? a.Text : "(null)";
        } else {
          snprintf(text, sizeof text, kind == 'd' ? "%d" : kind == 'u' ? "%u" : "0x%08X", a.Number);
          value = text;
        }
      }
    }
    out += filled ? value : std::string(p, length);
    p += length;
  }
  return out;
}

// -- Reading the input --------------------------------------------------------

Header ReadHeader(FuzzInput &in) {
  Header h;
  h.flags = in.Byte();
  h.count = in.Byte() % (kMaxArguments + 1);
  h.fillSize = in.U16() % 5000;
  h.lineSize = in.U16() % 5000;
  h.errorNumber = (int32_t)in.U32();
  uint8_t pick = in.Byte();
  h.number = (pick & 0x80) ? in.U16() : kNumbers[pick % (sizeof kNumbers / sizeof kNumbers[0])];
  h.processId = (int32_t)in.U32();
  h.threadId = in.U32();
  return h;
}

void ReadArguments(FuzzInput &in, int32_t count, Arguments &a) {
  a.texts.resize((size_t)count);
  for (int32_t i = 0; i < count; i++) {
    uint8_t kind = in.Byte();
    AlertArgument argument;
    // Mostly the kinds PutMessage makes; now and then any byte.
    argument.Kind = kind < 0xF0 ? "sdu"[kind % 3] : (char)(kind & 0x7F);
    argument.Number = in.U32();
    a.texts[(size_t)i] = in.Piece();
    argument.Text = (kind & 0x40) != 0 && kind >= 0xC0 ? nullptr : a.texts[(size_t)i].c_str();
    a.list.push_back(argument);
  }
}

// -- Checks --------------------------------------------------------------------

// A block of exactly `size` bytes (at least one, so that the address is
// real), filled so that a missing terminator shows.
struct Output {
  char *text;
  int32_t size;
  explicit Output(int32_t n) : text((char *)malloc(n > 0 ? (size_t)n : 1)), size(n) {
    memset(text, 'Z', n > 0 ? (size_t)n : 1);
  }
  ~Output() { free(text); }
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;
};

std::string Cut(const std::string &text, int32_t size) {
  return size <= 0 ? std::string() : text.substr(0, (size_t)size - 1);
}

void CheckTerminated(const Output &out, int32_t returned, const char *what) {
  if (out.size <= 0) {
    FUZZ_CHECK(returned == 0, "%s: %d written into no room", what, returned);
    FUZZ_CHECK(out.text[0] == 'Z', "%s wrote into a buffer of size 0", what);
    return;
  }
  const char *end = (const char *)memchr(out.text, '\0', (size_t)out.size);
  FUZZ_CHECK(end != nullptr, "%s: no NUL within %d bytes", what, out.size);
  FUZZ_CHECK(returned == end - out.text, "%s returned %d for a text of %d", what, returned,
             (int)(end - out.text));
}

void CheckFill(const Header &h, const std::string &messageTemplate, const Arguments &a,
               const AlertArgument *list, int32_t count) {
  const char *timeStamp = (h.flags & kNoTimeStamp) ? nullptr : kTimeStamp;
  Output out(h.fillSize);
  int32_t n = FillMessageTemplate(out.text, out.size, messageTemplate.c_str(), timeStamp,
                                  h.errorNumber, list, count);
  CheckTerminated(out, n, "FillMessageTemplate");
  if (out.size <= 0) {
    return;
  }
  std::string expected =
      Cut(Filled(messageTemplate.c_str(), timeStamp, h.errorNumber, list, count), out.size);
  FUZZ_CHECK(expected == out.text, "template [%s]\nfilled   [%s]\nexpected [%s]",
             messageTemplate.c_str(), out.text, expected.c_str());

  // An argument's text stands as it is, placeholders in it and all.
  for (size_t i = 0; i < a.list.size() && list != nullptr; i++) {
    if (a.list[i].Kind != 's' || a.list[i].Text == nullptr) {
      continue;
    }
    std::string single = "<[$" + std::to_string(i + 1) + "s]>";
    char text[600];
    int32_t m = FillMessageTemplate(text, sizeof text, single.c_str(), kTimeStamp, 0, list,
                                    (int32_t)a.list.size());
    std::string want = "<" + std::string(a.list[i].Text) + ">";
    FUZZ_CHECK(m == (int32_t)want.size() && want == text, "argument %zu: [%s] expected [%s]", i + 1,
               text, want.c_str());
  }
}

// The line as BuildMessageLine makes it, from the time stamp on.
std::string ExpectedLine(const Header &h, const ExitControlBlock *cb, int32_t errorNumber,
                         const AlertArgument *list, int32_t count, const std::string &stamp) {
  uint32_t pid = (uint32_t)getpid();
  uint32_t tid = (uint32_t)pthread_self();
  std::string line = stamp + "  ";
  if (cb != nullptr) {
    pid = cb->Identity.ProcessId != 0 ? (uint32_t)cb->Identity.ProcessId : pid;
    tid = cb->Identity.ThreadId != 0 ? cb->Identity.ThreadId : tid;
    line += "[" +
            std::string(cb->Identity.ProcessName,
                        strnlen(cb->Identity.ProcessName, sizeof cb->Identity.ProcessName)) +
            "] ";
  }
  char prefix[64];
  snprintf(prefix, sizeof prefix, "(%u.%u) Msg%u: ", pid, tid, h.number);
  line += prefix;
  const char *messageTemplate = SearchMessageTemplate(h.number);
  line += messageTemplate != nullptr ? Filled(messageTemplate, nullptr, errorNumber, list, count)
                                     : "(Unknown message id)";
  return line;
}

// The time stamp at the start of a line: "YYYY/MM/DD hh:mm:ss.uuuuuu".
std::string StampOf(const char *line, int32_t length) {
  static const char kShape[] = "9999/99/99 99:99:99.999999";
  size_t n = sizeof kShape - 1;
  if (length < (int32_t)n) {
    n = (size_t)length;
  }
  for (size_t i = 0; i < n; i++) {
    bool digit = line[i] >= '0' && line[i] <= '9';
    FUZZ_CHECK(kShape[i] == '9' ? digit : line[i] == kShape[i], "time stamp [%.*s]", (int)n, line);
  }
  return std::string(line, n);
}

void CheckLine(const Header &h, const ExitControlBlock *cb, const AlertArgument *list,
               int32_t count) {
  Output out(h.lineSize);
  // -1 stands for errno, which is set to a known value for it.
  int32_t errorNumber = (h.flags & kErrnoNumber) ? -1 : h.errorNumber;
  int32_t shownError = errorNumber == -1 ? EACCES : errorNumber;
  errno = EACCES;
  int32_t n = BuildMessageLine(out.text, out.size, cb, h.number, errorNumber, list, count);
  CheckTerminated(out, n, "BuildMessageLine");
  if (out.size <= 1) {
    return;
  }
  FUZZ_CHECK(n >= 1 && out.text[n - 1] == '\n', "the line does not end in a line feed: [%s]",
             out.text);
  std::string stamp = StampOf(out.text, n - 1);
  std::string expected = ExpectedLine(h, cb, shownError, list, count, stamp);
  expected = Cut(expected, out.size - 1) + "\n";
  FUZZ_CHECK(expected == out.text, "line     [%s]\nexpected [%s]", out.text, expected.c_str());

  if ((h.flags & kWriteFile) && cb != nullptr) {
    // The same line, appended to the block's error file.
    const std::string &directory = ScratchDirectory();
    ClearDirectory(directory);
    errno = EACCES;
    PutMessageArguments(cb, h.number, errorNumber, list, count);
    std::vector<std::string> names = ListDirectory(directory);
    FUZZ_CHECK(names.size() == 1, "%zu files after one alert", names.size());
    char name[64];
    snprintf(name, sizeof name, "wz_apiexit_error_%u_%u.txt",
             cb->Identity.ProcessId != 0 ? (uint32_t)cb->Identity.ProcessId : (uint32_t)getpid(),
             cb->Identity.ThreadId != 0 ? cb->Identity.ThreadId : (uint32_t)pthread_self());
    FUZZ_CHECK(names[0] == name, "error file %s, expected %s", names[0].c_str(), name);
    std::string written = ReadWholeFile(directory + name);
    FUZZ_CHECK(!written.empty() && written.back() == '\n', "the error file has no whole line");
    std::string line = ExpectedLine(h, cb, shownError, list, count,
                                    StampOf(written.data(), (int32_t)written.size() - 1));
    line = Cut(line, 4095) + "\n";
    FUZZ_CHECK(written == line, "written  [%s]\nexpected [%s]", written.c_str(), line.c_str());
  }
}

ExitControlBlock *Block(const Header &h) {
  ExitControlBlock *cb = AlertBlock();
  cb->Identity.ProcessId = h.processId;
  cb->Identity.ThreadId = h.threadId;
  if (h.flags & kFullProcessName) {
    memset(cb->Identity.ProcessName, 'p', sizeof cb->Identity.ProcessName);
  } else {
    snprintf(cb->Identity.ProcessName, sizeof cb->Identity.ProcessName, "payroll");
  }
  return cb;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzInput in(data, size);
  Header h = ReadHeader(in);
  std::string messageTemplate = in.Bytes(in.U16() % 2048);
  Arguments a;
  ReadArguments(in, h.count, a);

  const AlertArgument *list = a.list.empty() ? nullptr : a.list.data();
  int32_t count = (int32_t)a.list.size();
  if (h.flags & kNoArguments) {
    list = nullptr; // a count without a list: no arguments
  }
  if (h.flags & kNegativeCount) {
    count = -1 - count;
  }
  CheckFill(h, messageTemplate, a, list, count);
  CheckLine(h, (h.flags & kWithBlock) ? Block(h) : nullptr, list, count);
  return 0;
}
