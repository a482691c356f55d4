// Fuzz target "parameter_file": the input, byte for byte, is the wz.def of
// a scratch directory, read by ReadParameterFile twice: silently (no
// control block) and with a control block, whose alerts go to the error
// file of the same directory.
//
// Checks:
//  - both readings return the same result (0 or -1) and byte-identical
//    settings blocks; the silent reading writes no file at all;
//  - every setting is within what its keyword allows (switches 0 or 1,
//    numbers within their limits, texts and list entries NUL-terminated,
//    list counts within 0..PARAMETER_LIST_MAX), whatever the input;
//  - the alert lines: a reading that returns -1 reports message 2008 first
//    and then one 2009 line per bad line, in increasing line order, at most
//    PARAMETER_BAD_LINES_REPORTED of them, and one 2011 line for the rest
//    (lines beyond a full list likewise: 2010, then one 2012);
//    a reading that returns 0 reports none of these. So a reading adds at
//    most PARAMETER_BAD_LINES_REPORTED + 2 bad-line alert lines.
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "config/parameters.h"
#include "exit/control_block.h"
#include "fuzz/fuzz_support.h"

namespace {

// The block the reading with a context reports through: only what the
// alert writer looks at is filled in.
ExitControlBlock *ContextBlock() {
  ExitControlBlock *cb = AlertBlock();
  cb->Identity.ProcessId = 4711;
  cb->Identity.ThreadId = 815;
  strcpy(cb->Identity.ProcessName, "wzfuzz");
  return cb;
}

// The 32-character exit data naming the scratch directory, blank-padded,
// with or without its closing "/".
void ExitData(char out[32], bool slash) {
  std::string directory = ScratchDirectory();
  if (!slash) {
    directory.pop_back();
  }
  FUZZ_CHECK(directory.size() <= 32);
  memset(out, ' ', 32);
  memcpy(out, directory.data(), directory.size());
}

bool Terminated(const char *text, size_t size) {
  return memchr(text, '\0', size) != nullptr;
}

template <typename T> T FieldAt(const ParameterSettings &settings, uint32_t offset) {
  T value;
  memcpy(&value, (const char *)&settings + offset, sizeof value);
  return value;
}

void CheckSettings(const ParameterSettings &s) {
  FUZZ_CHECK(memcmp(s.EyeCatcher, PARAMETER_EYE_CATCHER, sizeof PARAMETER_EYE_CATCHER - 1) == 0);
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    switch (row->Kind) {
    case PARM_KIND_YES_NO:
    case PARM_KIND_EXEC_FLAG: {
      uint8_t value = FieldAt<uint8_t>(s, row->Offset);
      FUZZ_CHECK(value <= 1, "%s=%u", row->Keyword, value);
      break;
    }
    case PARM_KIND_INTEGER_MIN: {
      int32_t value = FieldAt<int32_t>(s, row->Offset);
      FUZZ_CHECK(value >= row->Minimum, "%s=%d", row->Keyword, value);
      break;
    }
    case PARM_KIND_INTEGER_RANGE: {
      int32_t value = FieldAt<int32_t>(s, row->Offset);
      FUZZ_CHECK(value >= row->Minimum && value <= row->Maximum, "%s=%d", row->Keyword, value);
      break;
    }
    case PARM_KIND_INT64_RANGE: {
      int64_t value = FieldAt<int64_t>(s, row->Offset);
      FUZZ_CHECK(value >= row->Minimum && value <= row->Maximum, "%s=%lld", row->Keyword,
                 (long long)value);
      break;
    }
    case PARM_KIND_TEXT:
      FUZZ_CHECK(Terminated((const char *)&s + row->Offset, (size_t)row->Maximum + 1), "%s",
                 row->Keyword);
      break;
    default:
      break;
    }
  }
  // A code page chosen from the locale is never negative.
  FUZZ_CHECK(s.ShowHexCharCcsid >= 0, "ShowHexCharCcsid=%d", s.ShowHexCharCcsid);
  FUZZ_CHECK(s.LocaleSwitch <= 1);
  FUZZ_CHECK(Terminated(s.ParameterFilePath, sizeof s.ParameterFilePath));

  FUZZ_CHECK(s.TargetQueueCount >= 0 && s.TargetQueueCount <= PARAMETER_LIST_MAX);
  FUZZ_CHECK(s.TargetProcessCount >= 0 && s.TargetProcessCount <= PARAMETER_LIST_MAX);
  FUZZ_CHECK(s.ExcludeProcessCount >= 0 && s.ExcludeProcessCount <= PARAMETER_LIST_MAX);
  FUZZ_CHECK(s.PutAlertSuppressCount >= 0 && s.PutAlertSuppressCount <= PARAMETER_LIST_MAX);
  FUZZ_CHECK(s.ShowSummaryDataSuppressCount >= 0 &&
             s.ShowSummaryDataSuppressCount <= PARAMETER_LIST_MAX);
  for (int32_t i = 0; i < s.TargetQueueCount; i++) {
    const TargetQueueEntry &e = s.TargetQueue[i];
    FUZZ_CHECK(Terminated(e.QueueName, sizeof e.QueueName), "TargetQueue %d", i);
    FUZZ_CHECK(e.P <= 1 && e.G <= 1 && e.I <= 1 && e.S <= 1, "TargetQueue %d flags", i);
  }
  for (int32_t i = 0; i < s.TargetProcessCount; i++) {
    FUZZ_CHECK(Terminated(s.TargetProcess[i], sizeof s.TargetProcess[i]), "TargetProcess %d", i);
  }
  for (int32_t i = 0; i < s.ExcludeProcessCount; i++) {
    FUZZ_CHECK(Terminated(s.ExcludeProcess[i], sizeof s.ExcludeProcess[i]), "ExcludeProcess %d", i);
  }
  for (int32_t i = 0; i < s.PutAlertSuppressCount; i++) {
    const AlertSuppressEntry &e = s.PutAlertSuppress[i];
    FUZZ_CHECK(Terminated(e.ObjectName, sizeof e.ObjectName), "PutAlertSuppress %d", i);
    FUZZ_CHECK(Terminated(e.ProcessName, sizeof e.ProcessName), "PutAlertSuppress %d", i);
  }
  for (int32_t i = 0; i < s.ShowSummaryDataSuppressCount; i++) {
    const SummaryDataSuppressEntry &e = s.ShowSummaryDataSuppress[i];
    FUZZ_CHECK(Terminated(e.ObjectName, sizeof e.ObjectName), "ShowSummaryDataSuppress %d", i);
  }
}

// The number after "Msg" in an alert line, or 0.
uint32_t MessageNumberOf(const std::string &line) {
  size_t at = line.find(") Msg");
  return at == std::string::npos ? 0 : (uint32_t)strtoul(line.c_str() + at + 5, nullptr, 10);
}

// The line number of a 2009 alert ("  Line : N   Parameter : ...").
long LineNumberOf(const std::string &line) {
  size_t at = line.find("Line : ");
  FUZZ_CHECK(at != std::string::npos, "no line number in: %s", line.c_str());
  return strtol(line.c_str() + at + 7, nullptr, 10);
}

// The alert lines the reading with a context wrote: every file in the
// directory but wz.def must be an error file of this process.
std::vector<std::string> AlertLines(const std::string &directory) {
  std::vector<std::string> lines;
  for (const std::string &name : ListDirectory(directory)) {
    if (name == PARAMETER_FILE_NAME) {
      continue;
    }
    FUZZ_CHECK(name.rfind("wz_apiexit_error_", 0) == 0, "unexpected file %s", name.c_str());
    std::string text = ReadWholeFile(directory + name);
    FUZZ_CHECK(text.empty() || text.back() == '\n', "%s does not end in a line feed", name.c_str());
    for (const std::string &line : SplitLines(text)) {
      lines.push_back(line);
    }
  }
  return lines;
}

void CheckAlerts(const std::vector<std::string> &lines, int32_t result, size_t physicalPieces) {
  size_t badLineAlerts = 0;
  size_t reported = 0;
  long lastLine = 0;
  bool sawSummary = false;
  size_t fullListReports = 0;
  bool sawFullListCount = false;
  for (size_t i = 0; i < lines.size(); i++) {
    uint32_t number = MessageNumberOf(lines[i]);
    FUZZ_CHECK(number == 2008 || number == 2009 || number == 2010 || number == 2011 ||
                   number == 2012,
               "unexpected alert: %s", lines[i].c_str());
    // Lines beyond a full list are not bad lines: at most a hundred are
    // reported, then one count of the rest.
    if (number == 2010) {
      FUZZ_CHECK(!sawFullListCount, "2010 after the count of full-list lines");
      fullListReports++;
      FUZZ_CHECK(fullListReports <= PARAMETER_BAD_LINES_REPORTED, "%zu full-list lines reported",
                 fullListReports);
      continue;
    }
    if (number == 2012) {
      FUZZ_CHECK(fullListReports == PARAMETER_BAD_LINES_REPORTED && !sawFullListCount,
                 "2012 after %zu full-list lines", fullListReports);
      sawFullListCount = true;
      continue;
    }
    FUZZ_CHECK(result == -1, "a good file reported: %s", lines[i].c_str());
    FUZZ_CHECK(!sawSummary, "alert after the closing count: %s", lines[i].c_str());
    badLineAlerts++;
    if (number == 2008) {
      FUZZ_CHECK(badLineAlerts == 1, "2008 not first: %s", lines[i].c_str());
    } else if (number == 2009) {
      FUZZ_CHECK(badLineAlerts > 1, "2009 before 2008");
      long line = LineNumberOf(lines[i]);
      FUZZ_CHECK(line > lastLine && (size_t)line <= physicalPieces,
                 "line %ld after %ld (of at most %zu)", line, lastLine, physicalPieces);
      lastLine = line;
      reported++;
    } else {
      FUZZ_CHECK(reported == PARAMETER_BAD_LINES_REPORTED, "2011 after %zu reported lines",
                 reported);
      sawSummary = true;
    }
  }
  if (result == -1) {
    FUZZ_CHECK(reported >= 1, "a bad file reported no line");
  }
  FUZZ_CHECK(reported <= PARAMETER_BAD_LINES_REPORTED, "%zu bad lines reported", reported);
  FUZZ_CHECK(badLineAlerts <= PARAMETER_BAD_LINES_REPORTED + 2, "%zu bad-line alert lines",
             badLineAlerts);
}

// An upper bound of the lines the reader numbers: each piece of at most
// PARAMETER_LINE_MAX characters of a physical line counts as one.
size_t PiecesOf(const uint8_t *data, size_t size) {
  size_t pieces = 0;
  size_t run = 0;
  for (size_t i = 0; i < size; i++) {
    run++;
    if (data[i] == '\n' || run == PARAMETER_LINE_MAX) {
      pieces++;
      run = 0;
    }
  }
  return pieces + (run > 0 ? 1 : 0);
}

ParameterSettings gSilent;
ParameterSettings gReported;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string &directory = ScratchDirectory();
  ClearDirectory(directory);
  WriteWholeFile(directory + PARAMETER_FILE_NAME, data, size);
  char exitData[32];
  ExitData(exitData, size % 2 == 0);

  int32_t silent = ReadParameterFile(nullptr, exitData, &gSilent);
  FUZZ_CHECK(silent == 0 || silent == -1, "result %d", silent);
  FUZZ_CHECK(ListDirectory(directory).size() == 1, "the silent reading wrote a file");
  FUZZ_CHECK(std::string(gSilent.ParameterFilePath) == directory + PARAMETER_FILE_NAME, "path %s",
             gSilent.ParameterFilePath);
  CheckSettings(gSilent);

  int32_t reported = ReadParameterFile(ContextBlock(), exitData, &gReported);
  FUZZ_CHECK(reported == silent, "silent %d, with a context %d", silent, reported);
  FUZZ_CHECK(memcmp(&gSilent, &gReported, sizeof gSilent) == 0,
             "the two readings give different settings");
  CheckAlerts(AlertLines(directory), reported, PiecesOf(data, size));
  return 0;
}
