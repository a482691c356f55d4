#include "exit/debug_output.h"

#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "exit/exit_files.h"

namespace {

// Room for one line: the head, the label and a value. Longer values (a
// string, a run of bytes) are cut at the end of the line buffer; hex dumps
// write one line at a time.
#define DEBUG_LINE_SIZE 2048

// The two nibble tables of the hex dumps: the character of each byte's
// upper and of its lower four bits.
struct NibbleTables {
  char High[256];
  char Low[256];
};

constexpr NibbleTables MakeNibbleTables() {
  NibbleTables t{};
  const char *digits = "0123456789ABCDEF";
  for (int i = 0; i < 256; i++) {
    t.High[i] = digits[i >> 4];
    t.Low[i] = digits[i & 15];
  }
  return t;
}

constexpr NibbleTables kNibbles = MakeNibbleTables();

struct DebugLine {
  char Text[DEBUG_LINE_SIZE];
  int32_t Length;
};

void Append(DebugLine *line, const char *text, int32_t length) {
  int32_t room = (int32_t)sizeof line->Text - 1 - line->Length;
  if (length > room) {
    length = room;
  }
  if (length > 0) {
    memcpy(line->Text + line->Length, text, (size_t)length);
    line->Length += length;
  }
}

void AppendString(DebugLine *line, const char *text) {
  if (text != nullptr) {
    Append(line, text, (int32_t)strlen(text));
  }
}

// The formats here are all constant; values from outside are never one.
template <typename... T> void AppendFormat(DebugLine *line, const char *format, T... values) {
  int32_t room = (int32_t)sizeof line->Text - line->Length;
  if (room <= 1) {
    return;
  }
  int written = snprintf(line->Text + line->Length, (size_t)room, format, values...);
  if (written > 0) {
    line->Length += written < room ? written : room - 1;
  }
}

// The head of every line: the time stamp with the source file and line,
// a tab, the label, a colon and a tab.
void StartLine(DebugLine *line, const char *label, const char *unit, uint32_t lineNumber) {
  line->Length = 0;
  struct timeval now;
  gettimeofday(&now, nullptr);
  struct tm local;
  time_t seconds = now.tv_sec;
  localtime_r(&seconds, &local);
  AppendFormat(line, "*%04.04u%02.02u%02.02u %02.02u%02.02u%02.02u.%06.06u  (%s %u)",
               (unsigned)(local.tm_year + 1900), (unsigned)(local.tm_mon + 1),
               (unsigned)local.tm_mday, (unsigned)local.tm_hour, (unsigned)local.tm_min,
               (unsigned)local.tm_sec, (unsigned)now.tv_usec, unit != nullptr ? unit : "",
               lineNumber);
  Append(line, "\t", 1);
  AppendString(line, label);
  Append(line, ":\t", 2);
}

void Write(const ExitControlBlock *cb, const char *text, int32_t length) {
  char path[256];
  if (DebugFileName(cb, path, (int32_t)sizeof path) < 0) {
    return;
  }
  // A failure loses the line: debug output must not disturb the call.
  (void)AppendToExitFile(path, text, (size_t)length);
}

void EndAndWrite(const ExitControlBlock *cb, DebugLine *line) {
  line->Text[line->Length++] = '\n';
  Write(cb, line->Text, line->Length);
}

// One line whose value is a number in the given (constant) format.
template <typename T>
void WriteNumberLine(ExitControlBlock *cb, const char *label, const char *format, T value,
                     const char *unit, uint32_t line) {
  DebugLine text;
  StartLine(&text, label, unit, line);
  AppendFormat(&text, format, value);
  EndAndWrite(cb, &text);
}

void AppendHexBytes(DebugLine *line, const unsigned char *bytes, int32_t length) {
  for (int32_t i = 0; i < length && line->Length < (int32_t)sizeof line->Text - 3; i++) {
    line->Text[line->Length++] = kNibbles.High[bytes[i]];
    line->Text[line->Length++] = kNibbles.Low[bytes[i]];
  }
}

// One dump line: "%-8s: %-36s  [%s]" with the offset in eight hex digits,
// the bytes in groups of four and their text.
int32_t FormatDumpLine(char *out, uint32_t offset, const unsigned char *bytes, int32_t count) {
  char hex[40];
  int32_t h = 0;
  for (int32_t i = 0; i < count; i++) {
    if (i > 0 && i % 4 == 0) {
      hex[h++] = ' ';
    }
    hex[h++] = kNibbles.High[bytes[i]];
    hex[h++] = kNibbles.Low[bytes[i]];
  }
  hex[h] = '\0';
  char text[17];
  for (int32_t i = 0; i < count; i++) {
    text[i] = bytes[i] >= 0x20 && bytes[i] <= 0x7E ? (char)bytes[i] : '.';
  }
  text[count] = '\0';
  char offsetText[9];
  snprintf(offsetText, sizeof offsetText, "%08X", offset);
  return snprintf(out, 80, "%-8s: %-36s  [%s]\n", offsetText, hex, text);
}

} // namespace

int32_t DebugFileName(const ExitControlBlock *cb, char *path, int32_t size) {
  int written = snprintf(
      path, (size_t)size, "%s%s_%u_%u_%u%s", cb != nullptr ? cb->File.TraceDirectory : "",
      "wz_apiexit_debug", (unsigned)getpid(),
      cb != nullptr ? (unsigned)cb->Identity.ZkaxcThreadId : 0u, (unsigned)pthread_self(), ".txt");
  return written > 0 && written < size ? written : -1;
}

void debugTitle(ExitControlBlock *cb, const char *label, const char *unit, uint32_t line) {
  DebugLine text;
  StartLine(&text, label, unit, line);
  EndAndWrite(cb, &text);
}

void debugString(ExitControlBlock *cb, const char *label, const char *value, const char *unit,
                 uint32_t line) {
  DebugLine text;
  StartLine(&text, label, unit, line);
  AppendString(&text, value);
  EndAndWrite(cb, &text);
}

void debugInteger(ExitControlBlock *cb, const char *label, int32_t value, const char *unit,
                  uint32_t line) {
  WriteNumberLine(cb, label, "%d", value, unit, line);
}

void debugUnsignedInteger(ExitControlBlock *cb, const char *label, uint32_t value, const char *unit,
                          uint32_t line) {
  WriteNumberLine(cb, label, "%u", value, unit, line);
}

void debugInt64(ExitControlBlock *cb, const char *label, int64_t value, const char *unit,
                uint32_t line) {
  WriteNumberLine(cb, label, "%lld", (long long)value, unit, line);
}

void debugUnsignedInt64(ExitControlBlock *cb, const char *label, uint64_t value, const char *unit,
                        uint32_t line) {
  WriteNumberLine(cb, label, "%llu", (unsigned long long)value, unit, line);
}

void debugDouble(ExitControlBlock *cb, const char *label, double value, const char *unit,
                 uint32_t line) {
  WriteNumberLine(cb, label, "%.6f", value, unit, line);
}

void debugPointer(ExitControlBlock *cb, const char *label, const void *value, const char *unit,
                  uint32_t line) {
  WriteNumberLine(cb, label, "%p", value, unit, line);
}

void debugFixedLenChar(ExitControlBlock *cb, const char *label, const void *bytes, int32_t length,
                       const char *unit, uint32_t line) {
  DebugLine text;
  StartLine(&text, label, unit, line);
  if (bytes != nullptr && length > 0) {
    Append(&text, (const char *)bytes, length);
  }
  EndAndWrite(cb, &text);
}

void debugHexShort(ExitControlBlock *cb, const char *label, const void *bytes, int32_t length,
                   const char *unit, uint32_t line) {
  DebugLine text;
  StartLine(&text, label, unit, line);
  if (bytes != nullptr && length > 0) {
    AppendHexBytes(&text, (const unsigned char *)bytes, length);
  }
  EndAndWrite(cb, &text);
}

void debugHexLong(ExitControlBlock *cb, const char *label, const void *bytes, int32_t length,
                  const char *unit, uint32_t line) {
  DebugLine text;
  StartLine(&text, label, unit, line);
  AppendFormat(&text, "(%d = 0x%X bytes)", length, (unsigned)length);
  EndAndWrite(cb, &text);
  if (bytes == nullptr || length <= 0) {
    return;
  }
  const unsigned char *data = (const unsigned char *)bytes;
  // Dump lines are gathered into a block and written a block at a time.
  char block[DEBUG_LINE_SIZE];
  int32_t used = 0;
  auto flush = [&]() {
    if (used > 0) {
      Write(cb, block, used);
      used = 0;
    }
  };
  int32_t offset = 0;
  while (offset < length) {
    int32_t count = length - offset < 16 ? length - offset : 16;
    // A run of full lines equal to the line before: one line for the run.
    if (offset >= 16 && count == 16 && memcmp(data + offset, data + offset - 16, 16) == 0) {
      int32_t runEnd = offset + 16;
      while (length - runEnd >= 16 && memcmp(data + runEnd, data + offset - 16, 16) == 0) {
        runEnd += 16;
      }
      if (used > (int32_t)sizeof block - 80) {
        flush();
      }
      used += snprintf(block + used, sizeof block - (size_t)used, "%08X-%08X same as above\n",
                       (unsigned)offset, (unsigned)(runEnd - 1));
      offset = runEnd;
      continue;
    }
    if (used > (int32_t)sizeof block - 80) {
      flush();
    }
    used += FormatDumpLine(block + used, (uint32_t)offset, data + offset, count);
    offset += count;
  }
  flush();
}
