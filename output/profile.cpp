// The process profile at the head of every new trace file: the program, the
// platform level, the operating environment, the exit context and every
// effective setting, so that a trace file can be read on its own. A
// reopened file gets a short banner instead.
#include "output/profile.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "output/trace_file.h"
#include "text/codepage.h"
#include "text/constant_table.h"

namespace {

#define PROFILE_DASHED_LINE "|----------------------------------------------------------\n"
#define PROFILE_LINE_SIZE 512
#define ADDRESSING_MODE_BITS 32

// One formatted line; values longer than the line are cut.
void PutLine(ExitControlBlock *cb, const char *format, ...) __attribute__((format(printf, 2, 3)));

void PutLine(ExitControlBlock *cb, const char *format, ...) {
  char line[PROFILE_LINE_SIZE];
  va_list args;
  va_start(args, format);
  vsnprintf(line, sizeof line, format, args);
  va_end(args);
  WriteTraceData(cb, line);
}

// The label of a setting line: as given when it already starts with "|",
// else in the 19-column layout.
void PutSettingLabel(ExitControlBlock *cb, const char *label) {
  if (label[0] == '|') {
    WriteTraceData(cb, label);
  } else {
    PutLine(cb, "|  %-19s: ", label);
  }
}

// A setting that is text: its label, then the text, or "(none)" when it is
// empty. The text ends at its first zero byte or after `size` bytes.
void PutTextSetting(ExitControlBlock *cb, const char *label, const char *text, int size) {
  WriteTraceData(cb, label);
  if (text[0] != '\0') {
    PutLine(cb, "%.*s\n", size, text);
  } else {
    WriteTraceData(cb, "(none)\n");
  }
}

void PutReopenBanner(ExitControlBlock *cb) {
  WriteTraceData(cb, "-");
  WriteTraceData(cb, "\n");
  WriteTraceData(cb, PROFILE_DASHED_LINE);
  WriteTraceData(cb, "|Reopen this trace file\n");
  WriteTraceData(cb, PROFILE_DASHED_LINE);
  cb->FileReopened = 1;
}

void PutProgramLines(ExitControlBlock *cb) {
  WriteTraceData(cb, PROFILE_DASHED_LINE);
  WriteTraceData(cb, "|Program information\n");
  PutLine(cb, "|  Program name       : %s\n", cb->ProductTitle);
  PutLine(cb, "|  Version            : %s\n", cb->ProgramVersion);
  PutLine(cb, "|  Provided by        : %s\n", cb->MakerContact);
  WriteTraceData(cb, "|Program attributes\n");
  WriteTraceData(cb, "|  Addressing mode    : ");
  PutLine(cb, "%u-bit\n", (unsigned)ADDRESSING_MODE_BITS);
  WriteTraceData(cb, "|  Threading          : ");
  PutLine(cb, "%s\n", cb->BuildVariant);
  PutLine(cb, "|  Process level      : %u\n", (unsigned)cb->ApiLevel);
}

// The platform's own level, asked for once per control block.
void PutPlatformLevelLines(ExitControlBlock *cb) {
  if (cb->ZkLevelSearched == 0) {
    SetZkLevelInfo(cb);
    cb->ZkLevelSearched = 1;
  }
  WriteTraceData(cb, "|Tarnvelde ZK\n");
  PutLine(cb, "|  Version            : %s\n", cb->ZkVersion);
  PutLine(cb, "|  Level              : %s\n", cb->ZkLevel);
  PutLine(cb, "|  Build type         : %s\n", cb->ZkBuildType);
}

void PutOperatingEnvironmentLines(ExitControlBlock *cb) {
  struct utsname system;
  memset(&system, 0, sizeof system);
  uname(&system);
  WriteTraceData(cb, "|Operating environment\n");
  WriteTraceData(cb, "|  Operating system   : ");
  PutLine(cb, "%s\n", system.sysname);
  PutLine(cb, "|  Version            : %s\n", system.version);
  PutLine(cb, "|  Release            : %s\n", system.release);
  PutLine(cb, "|  Node name          : %s\n", system.nodename);
  PutLine(cb, "|  Machine            : %s\n", system.machine);
  char category[LOCALE_CATEGORY_SIZE];
  char locale[LOCALE_NAME_SIZE];
  GetEnvLocale(category, locale); // the locale is empty when there is none
  PutTextSetting(cb, "|  Locale             : ", locale, (int)sizeof locale);
}

void PutExitContextLines(ExitControlBlock *cb) {
  WriteTraceData(cb, "|API Exit context\n");
  PutLine(cb, "|  Exit name          : %s\n", cb->ExitInfoName);
  PutLine(cb, "|  Function name      : %s\n", cb->EntryName);
  PutLine(cb, "|  API caller type    : %s\n", cb->ApiCallerTypeText);
  PutLine(cb, "|  Queue manager      : %s\n", cb->QMgrName);
  PutLine(cb, "|  Environment        : %s\n", cb->EnvironmentText);
  PutLine(cb, "|  User id            : %s\n", cb->UserId);
  PutLine(cb, "|  Connection name    : %s\n", cb->ConnectionName);
  PutLine(cb, "|  Appl/Channel name  : %s\n", cb->ApplName);
  PutLine(cb, "|  Appl/Channel type  : %s\n", cb->ApplTypeText);
  PutLine(cb, "|  Program name       : %s\n", cb->ProcessName);
  PutLine(cb, "|  Program description: %s\n", cb->ProcessDescription);
  WriteTraceData(cb, "|  Process id         : ");
  PutLine(cb, "%d\n", cb->ZkaxcProcessId);
  WriteTraceData(cb, "|  Thread id          : ");
  PutLine(cb, "%d\n", cb->ZkaxcThreadId);
  PutLine(cb, "|  Process id (real)  : %u\n", (unsigned)getpid());
  PutLine(cb, "|  Thread id  (real)  : %u\n", (unsigned)pthread_self());
}

void PutDisplaySettingLines(ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  WriteTraceData(cb, "|Process parameters\n");
  PutTextSetting(cb, "|  Parameter file     : ", s.ParameterFilePath,
                 (int)sizeof s.ParameterFilePath);
  PutLine(cb, "|  Check update req   : %d\n", s.CheckUpdateRequestInterval);

  PutProfileRecordYesNo(cb, "|  Show summary only  : ", s.ShowSummaryOnly);
  PutProfileRecordYesNo(cb, "Show perf only", s.ShowPerformanceOnly);
  PutLine(cb, "|  Perf intvl (time)  : %u\n", (unsigned)s.ShowPerformanceIntervalTime);
  PutLine(cb, "|  Perf intvl (count) : %u\n", (unsigned)s.ShowPerformanceIntervalCount);

  PutProfileRecordYesNo(cb, "Show parsed data", s.ShowParsedData);
  PutProfileRecordYesNo(cb, "Show parsed content", s.ShowParsedMsgContent);

  if (s.ShowParsedMsgContent == 1) {
    PutLine(cb, "|  Max out line length: %u\n", (unsigned)s.MaxParsedOutputLineLength);
  }
  PutProfileRecordYesNo(cb, "Show hex char image", s.ShowHexCharImage);
  if (s.ShowHexCharImage == 1) {
    WriteTraceData(cb, "|  Show hex char ccsid: ");
    if (s.LocaleSwitch == 1) {
      WriteTraceData(cb, "(auto) ");
    }
    // CCSID 0 here is the default 7-bit character column, named as such.
    PutLine(cb, "%u (%s)\n", (unsigned)s.ShowHexCharCcsid,
            SearchConstantCcsidString(s.ShowHexCharCcsid, 1));
  }

  PutProfileRecordYesNo(cb, "Show data conv", s.ShowDataConvOnGet);
  PutProfileRecordYesNo(cb, "Show XA trace", s.ShowXaCalls);
  PutProfileRecordYesNo(cb, "Show correl id", s.ShowSummaryCorrelId);
  PutProfileRecordYesNo(cb, "Show channel attrs", s.ShowChannelAttributes);

  PutProfileRecordLength(cb, "Show max len ZKPUT", s.ShowMaxLenPut);
  PutProfileRecordLength(cb, "Show max len ZKGET", s.ShowMaxLenGet);
  PutProfileRecordLength(cb, "Show max len chl", s.ShowMaxLenChannel);
  PutProfileRecordLength(cb, "Show max len parsed", s.ShowMaxLenParsedContent);
  PutProfileRecordLength(cb, "Show max len charv ", s.ShowMaxLenCharv);
  PutProfileRecordLength(cb, "Show max len cv str", s.ShowMaxLenCharvString);

  PutProfileRecordYesNo(cb, "Count only selected", s.CountSelectedCallsOnly);
}

void PutSelectionListLines(ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  for (int32_t i = 0; i < s.TargetQueueCount && i < PARAMETER_LIST_MAX; i++) {
    const TargetQueueEntry &q = s.TargetQueue[i];
    PutLine(cb, "|  Target queue name  : %.*s  ", (int)sizeof q.QueueName, q.QueueName);
    if (q.P == 1) {
      WriteTraceData(cb, "<put>");
    }
    if (q.G == 1) {
      WriteTraceData(cb, "<get>");
    }
    if (q.I == 1) {
      WriteTraceData(cb, "<inq>");
    }
    if (q.S == 1) {
      WriteTraceData(cb, "<set>");
    }
    WriteTraceData(cb, "\n");
  }
  for (int32_t i = 0; i < s.TargetProcessCount && i < PARAMETER_LIST_MAX; i++) {
    PutLine(cb, "|  Target proc name   : %.*s\n", (int)sizeof s.TargetProcess[i],
            s.TargetProcess[i]);
  }
  // The exclude list is not applied while a target list exists.
  if (s.ExcludeProcessCount > 0 && s.TargetProcessCount > 0) {
    WriteTraceData(cb, "|  Exclude proc name  : (ignored because ");
    WriteTraceData(cb, "TargetProcess");
    WriteTraceData(cb, " parameter is also specified.)\n");
  } else {
    for (int32_t i = 0; i < s.ExcludeProcessCount && i < PARAMETER_LIST_MAX; i++) {
      PutLine(cb, "|  Exclude proc name  : %.*s\n", (int)sizeof s.ExcludeProcess[i],
              s.ExcludeProcess[i]);
    }
  }
}

// One suppress entry after its label: completion code, reason code,
// function (each -1 shown as "*") and object name, then the process name
// when the entry has one (not null).
void PutSuppressEntry(ExitControlBlock *cb, const char *label, int32_t compCode, int32_t reason,
                      int32_t function, const char *objectName, int objectNameSize,
                      const char *processName, int processNameSize) {
  WriteTraceData(cb, label);
  if (compCode == PARAMETER_ANY) {
    PutLine(cb, "%c, ", '*');
  } else {
    PutLine(cb, "%d, ", compCode);
  }
  if (reason == PARAMETER_ANY) {
    PutLine(cb, "%c   , ", '*');
  } else {
    PutLine(cb, "%4d, ", reason);
  }
  if (function == PARAMETER_ANY) {
    PutLine(cb, "%c      , ", '*');
  } else {
    PutLine(cb, "%-7s, ", SearchConstantInt(function, Constant_Function));
  }
  if (processName != nullptr) {
    PutLine(cb, "%.*s, %.*s\n", objectNameSize, objectName, processNameSize, processName);
  } else {
    PutLine(cb, "%.*s\n", objectNameSize, objectName);
  }
}

void PutSuppressListLines(ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  PutProfileRecordYesNo(cb, "Alert file (error)", s.PutAlertFileError);
  PutProfileRecordYesNo(cb, "Alert file (warn)", s.PutAlertFileWarning);
  PutProfileRecordYesNo(cb, "Alert file (info)", s.PutAlertFileInfo);

  for (int32_t i = 0; i < s.PutAlertSuppressCount && i < PARAMETER_LIST_MAX; i++) {
    const AlertSuppressEntry &e = s.PutAlertSuppress[i];
    PutSuppressEntry(cb, "|  Suppress alert     : ", e.CompCode, e.Reason, e.Function, e.ObjectName,
                     (int)sizeof e.ObjectName, e.ProcessName, (int)sizeof e.ProcessName);
  }
  for (int32_t i = 0; i < s.ShowSummaryDataSuppressCount && i < PARAMETER_LIST_MAX; i++) {
    const SummaryDataSuppressEntry &e = s.ShowSummaryDataSuppress[i];
    PutSuppressEntry(cb, "|  Suppress summary   : ", e.CompCode, e.Reason, e.Function, e.ObjectName,
                     (int)sizeof e.ObjectName, nullptr, 0);
  }
}

void PutFileSettingLines(ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  PutProfileRecordLength(cb, "Max file size", s.MaxFileSize);
  PutTextSetting(cb, "|  Compress command   : ", s.CompressCommand, (int)sizeof s.CompressCommand);
  PutProfileRecordLength(cb, "Compress threshold", s.CompressFileSizeThreshold);

  PutProfileRecordYesNo(cb, "Create empty file", s.CreateEmptyFile);
  PutProfileRecordYesNo(cb, "Write stream mode", s.WriteStream);
  PutProfileRecordYesNo(cb, "Write cache", s.WriteCache);
  PutProfileRecordYesNo(cb, "Write after call", s.WriteAfterEachApi);
  PutProfileRecordLength(cb, "Write buffer size", s.WriteBufferSize);
  PutProfileRecordLength(cb, "Write interval", s.WriteInterval);
  PutProfileRecordYesNo(cb, "(Debug flag)", cb->Debug);
}

} // namespace

void PutProfileRecordYesNo(ExitControlBlock *cb, const char *label, uint8_t flag) {
  PutSettingLabel(cb, label);
  WriteTraceData(cb, flag != 0 ? "yes\n" : "no\n");
}

void PutProfileRecordLength(ExitControlBlock *cb, const char *label, int64_t value) {
  PutSettingLabel(cb, label);
  if (value < 0) {
    WriteTraceData(cb, "(all)\n");
    return;
  }
  ReformatAndShowNumericValue(cb, (uint64_t)value);
  WriteTraceData(cb, "\n");
}

void PutProcessProfileRecords(ExitControlBlock *cb, int64_t reopenedSize) {
  if (reopenedSize > 0) {
    PutReopenBanner(cb);
    return;
  }
  PutProgramLines(cb);
  if (cb->Settings.ShowZkVersion == 1) {
    PutPlatformLevelLines(cb);
  }
  PutOperatingEnvironmentLines(cb);
  PutExitContextLines(cb);
  PutDisplaySettingLines(cb);
  PutSelectionListLines(cb);
  PutSuppressListLines(cb);
  PutFileSettingLines(cb);
  WriteTraceData(cb, PROFILE_DASHED_LINE);
  FlushTraceDataInBuffer(cb);
  if (cb->Settings.ShowProcessEnvValue == 1) {
    PutEnvironmentVariables(cb);
  }
}
