// The process profile at the head of every new trace file: the program, the
// platform level, the operating environment, the exit context and every
// effective setting, so that a trace file can be read on its own. A
// reopened file gets a short banner instead.
#include "output/profile.h"

#include <pthread.h>
#include <string.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "exit/control_block.h"
#include "output/trace_file.h"
#include "output/trace_text.h"
#include "text/codepage.h"
#include "text/call_names.h"
#include "text/constant_table.h"
#include "text/number_text.h"

namespace {

#define PROFILE_DASHED_LINE "|----------------------------------------------------------\n"
#define ADDRESSING_MODE_BITS 32
// Width of the label column of a setting line.
#define SETTING_LABEL_WIDTH 19

// A line of a fixed label and a text value.
template <int32_t N> void AppendValueLine(TraceText *t, const char (&label)[N], const char *value) {
  TraceTextAppendLiteral(t, label);
  TraceTextAppendString(t, value);
  TraceTextAppendChar(t, '\n');
}

// The label of a setting line: as given when it already starts with "|",
// else in the 19-column layout.
void AppendSettingLabel(TraceText *t, const char *label) {
  if (label[0] == '|') {
    TraceTextAppendString(t, label);
  } else {
    TraceTextAppendLiteral(t, "|  ");
    TraceTextAppendPadded(t, label, SETTING_LABEL_WIDTH);
    TraceTextAppendLiteral(t, ": ");
  }
}

void AppendYesNoSetting(TraceText *t, const char *label, uint8_t flag) {
  AppendSettingLabel(t, label);
  if (flag != 0) {
    TraceTextAppendLiteral(t, "yes\n");
  } else {
    TraceTextAppendLiteral(t, "no\n");
  }
}

// A length setting with thousands separators; a negative one means no limit.
void AppendLengthSetting(TraceText *t, const char *label, int64_t value) {
  AppendSettingLabel(t, label);
  if (value < 0) {
    TraceTextAppendLiteral(t, "(all)\n");
    return;
  }
  char area[28];
  int32_t length = FormatNumericWithSeparators(area, (uint64_t)value, NumericGroupSeparator());
  TraceTextAppend(t, area, length);
  TraceTextAppendChar(t, '\n');
}

// A setting that is text: its label, then the text, or "(none)" when it is
// empty. The text ends at its first zero byte or after `size` bytes.
void AppendTextSetting(TraceText *t, const char *label, const char *text, int32_t size) {
  TraceTextAppendString(t, label);
  if (text[0] != '\0') {
    TraceTextAppendBounded(t, text, size);
    TraceTextAppendChar(t, '\n');
  } else {
    TraceTextAppendLiteral(t, "(none)\n");
  }
}

void PutReopenBanner(ExitControlBlock *cb) {
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&t, "-\n");
  TraceTextAppendLiteral(&t, PROFILE_DASHED_LINE);
  TraceTextAppendLiteral(&t, "|Reopen this trace file\n");
  TraceTextAppendLiteral(&t, PROFILE_DASHED_LINE);
  TraceTextWrite(&t);
  cb->File.FileReopened = 1;
}

void AppendProgramLines(TraceText *t, const ExitControlBlock *cb) {
  TraceTextAppendLiteral(t, PROFILE_DASHED_LINE);
  TraceTextAppendLiteral(t, "|Program information\n");
  AppendValueLine(t, "|  Program name       : ", cb->Identity.ProductTitle);
  AppendValueLine(t, "|  Version            : ", cb->Identity.ProgramVersion);
  AppendValueLine(t, "|  Provided by        : ", cb->Identity.MakerContact);
  TraceTextAppendLiteral(t, "|Program attributes\n");
  TraceTextAppendLiteral(t, "|  Addressing mode    : ");
  TraceTextAppendUInt32(t, ADDRESSING_MODE_BITS, 0);
  TraceTextAppendLiteral(t, "-bit\n");
  AppendValueLine(t, "|  Threading          : ", cb->Identity.BuildVariant);
  TraceTextAppendLiteral(t, "|  Process level      : ");
  TraceTextAppendUInt32(t, (uint32_t)cb->Identity.ApiLevel, 0);
  TraceTextAppendChar(t, '\n');
}

// The platform's own level, asked for once per control block.
void AppendPlatformLevelLines(TraceText *t, ExitControlBlock *cb) {
  if (cb->Identity.ZkLevelSearched == 0) {
    SetZkLevelInfo(cb);
    cb->Identity.ZkLevelSearched = 1;
  }
  TraceTextAppendLiteral(t, "|Tarnvelde ZK\n");
  AppendValueLine(t, "|  Version            : ", cb->Identity.ZkVersion);
  AppendValueLine(t, "|  Level              : ", cb->Identity.ZkLevel);
  AppendValueLine(t, "|  Build type         : ", cb->Identity.ZkBuildType);
}

void AppendOperatingEnvironmentLines(TraceText *t) {
  struct utsname system;
  memset(&system, 0, sizeof system);
  uname(&system);
  TraceTextAppendLiteral(t, "|Operating environment\n");
  AppendValueLine(t, "|  Operating system   : ", system.sysname);
  AppendValueLine(t, "|  Version            : ", system.version);
  AppendValueLine(t, "|  Release            : ", system.release);
  AppendValueLine(t, "|  Node name          : ", system.nodename);
  AppendValueLine(t, "|  Machine            : ", system.machine);
  char category[LOCALE_CATEGORY_SIZE];
  char locale[LOCALE_NAME_SIZE];
  GetEnvLocale(category, locale); // the locale is empty when there is none
  AppendTextSetting(t, "|  Locale             : ", locale, (int32_t)sizeof locale);
}

void AppendExitContextLines(TraceText *t, const ExitControlBlock *cb) {
  TraceTextAppendLiteral(t, "|API Exit context\n");
  AppendValueLine(t, "|  Exit name          : ", cb->Identity.ExitInfoName);
  AppendValueLine(t, "|  Function name      : ", cb->Identity.EntryName);
  AppendValueLine(t, "|  API caller type    : ", cb->Identity.ApiCallerTypeText);
  AppendValueLine(t, "|  Queue manager      : ", cb->Identity.QMgrName);
  AppendValueLine(t, "|  Environment        : ", cb->Identity.EnvironmentText);
  AppendValueLine(t, "|  User id            : ", cb->Identity.UserId);
  AppendValueLine(t, "|  Connection name    : ", cb->Identity.ConnectionName);
  AppendValueLine(t, "|  Appl/Channel name  : ", cb->Identity.ApplName);
  AppendValueLine(t, "|  Appl/Channel type  : ", cb->Identity.ApplTypeText);
  AppendValueLine(t, "|  Program name       : ", cb->Identity.ProcessName);
  AppendValueLine(t, "|  Program description: ", cb->Identity.ProcessDescription);
  TraceTextAppendLiteral(t, "|  Process id         : ");
  TraceTextAppendInt32(t, cb->Identity.ZkaxcProcessId, 0);
  TraceTextAppendLiteral(t, "\n|  Thread id          : ");
  TraceTextAppendInt32(t, cb->Identity.ZkaxcThreadId, 0);
  TraceTextAppendLiteral(t, "\n|  Process id (real)  : ");
  TraceTextAppendUInt32(t, (uint32_t)getpid(), 0);
  TraceTextAppendLiteral(t, "\n|  Thread id  (real)  : ");
  TraceTextAppendUInt32(t, (uint32_t)pthread_self(), 0);
  TraceTextAppendChar(t, '\n');
}

void AppendDisplaySettingLines(TraceText *t, const ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  TraceTextAppendLiteral(t, "|Process parameters\n");
  AppendTextSetting(t, "|  Parameter file     : ", s.ParameterFilePath,
                    (int32_t)sizeof s.ParameterFilePath);
  TraceTextAppendLiteral(t, "|  Check update req   : ");
  TraceTextAppendInt32(t, s.CheckUpdateRequestInterval, 0);
  TraceTextAppendChar(t, '\n');

  AppendYesNoSetting(t, "|  Show summary only  : ", s.ShowSummaryOnly);
  AppendYesNoSetting(t, "Show perf only", s.ShowPerformanceOnly);
  TraceTextAppendLiteral(t, "|  Perf intvl (time)  : ");
  TraceTextAppendUInt32(t, (uint32_t)s.ShowPerformanceIntervalTime, 0);
  TraceTextAppendLiteral(t, "\n|  Perf intvl (count) : ");
  TraceTextAppendUInt32(t, (uint32_t)s.ShowPerformanceIntervalCount, 0);
  TraceTextAppendChar(t, '\n');

  AppendYesNoSetting(t, "Show parsed data", s.ShowParsedData);
  AppendYesNoSetting(t, "Show parsed content", s.ShowParsedMsgContent);

  if (s.ShowParsedMsgContent == 1) {
    TraceTextAppendLiteral(t, "|  Max out line length: ");
    TraceTextAppendUInt32(t, (uint32_t)s.MaxParsedOutputLineLength, 0);
    TraceTextAppendChar(t, '\n');
  }
  AppendYesNoSetting(t, "Show hex char image", s.ShowHexCharImage);
  if (s.ShowHexCharImage == 1) {
    TraceTextAppendLiteral(t, "|  Show hex char ccsid: ");
    if (s.LocaleSwitch == 1) {
      TraceTextAppendLiteral(t, "(auto) ");
    }
    // CCSID 0 here is the default 7-bit character column, named as such.
    TraceTextAppendUInt32(t, (uint32_t)s.ShowHexCharCcsid, 0);
    TraceTextAppendLiteral(t, " (");
    TraceTextAppendString(t, SearchConstantCcsidString(s.ShowHexCharCcsid, 1));
    TraceTextAppendLiteral(t, ")\n");
  }

  AppendYesNoSetting(t, "Show data conv", s.ShowDataConvOnGet);
  AppendYesNoSetting(t, "Show XA trace", s.ShowXaCalls);
  AppendYesNoSetting(t, "Show correl id", s.ShowSummaryCorrelId);
  AppendYesNoSetting(t, "Show channel attrs", s.ShowChannelAttributes);

  AppendLengthSetting(t, "Show max len ZKPUT", s.ShowMaxLenPut);
  AppendLengthSetting(t, "Show max len ZKGET", s.ShowMaxLenGet);
  AppendLengthSetting(t, "Show max len chl", s.ShowMaxLenChannel);
  AppendLengthSetting(t, "Show max len parsed", s.ShowMaxLenParsedContent);
  AppendLengthSetting(t, "Show max len charv ", s.ShowMaxLenCharv);
  AppendLengthSetting(t, "Show max len cv str", s.ShowMaxLenCharvString);

  AppendYesNoSetting(t, "Count only selected", s.CountSelectedCallsOnly);
}

void AppendSelectionListLines(TraceText *t, const ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  for (int32_t i = 0; i < s.TargetQueueCount && i < PARAMETER_LIST_MAX; i++) {
    const TargetQueueEntry &q = s.TargetQueue[i];
    TraceTextAppendLiteral(t, "|  Target queue name  : ");
    TraceTextAppendBounded(t, q.QueueName, (int32_t)sizeof q.QueueName);
    TraceTextAppendLiteral(t, "  ");
    if (q.P == 1) {
      TraceTextAppendLiteral(t, "<put>");
    }
    if (q.G == 1) {
      TraceTextAppendLiteral(t, "<get>");
    }
    if (q.I == 1) {
      TraceTextAppendLiteral(t, "<inq>");
    }
    if (q.S == 1) {
      TraceTextAppendLiteral(t, "<set>");
    }
    TraceTextAppendChar(t, '\n');
  }
  for (int32_t i = 0; i < s.TargetProcessCount && i < PARAMETER_LIST_MAX; i++) {
    TraceTextAppendLiteral(t, "|  Target proc name   : ");
    TraceTextAppendBounded(t, s.TargetProcess[i], (int32_t)sizeof s.TargetProcess[i]);
    TraceTextAppendChar(t, '\n');
  }
  // The exclude list is not applied while a target list exists.
  if (s.ExcludeProcessCount > 0 && s.TargetProcessCount > 0) {
    TraceTextAppendLiteral(t, "|  Exclude proc name  : (ignored because TargetProcess parameter "
                              "is also specified.)\n");
  } else {
    for (int32_t i = 0; i < s.ExcludeProcessCount && i < PARAMETER_LIST_MAX; i++) {
      TraceTextAppendLiteral(t, "|  Exclude proc name  : ");
      TraceTextAppendBounded(t, s.ExcludeProcess[i], (int32_t)sizeof s.ExcludeProcess[i]);
      TraceTextAppendChar(t, '\n');
    }
  }
}

// One suppress entry after its label: completion code, reason code,
// function (each -1 shown as "*") and object name, then the process name
// when the entry has one (not null).
void AppendSuppressEntry(TraceText *t, const char *label, int32_t compCode, int32_t reason,
                         int32_t function, const char *objectName, int32_t objectNameSize,
                         const char *processName, int32_t processNameSize) {
  TraceTextAppendString(t, label);
  if (compCode == PARAMETER_ANY) {
    TraceTextAppendChar(t, '*');
  } else {
    TraceTextAppendInt32(t, compCode, 0);
  }
  TraceTextAppendLiteral(t, ", ");
  if (reason == PARAMETER_ANY) {
    TraceTextAppendLiteral(t, "*   ");
  } else {
    TraceTextAppendInt32(t, reason, 4);
  }
  TraceTextAppendLiteral(t, ", ");
  if (function == PARAMETER_ANY) {
    TraceTextAppendLiteral(t, "*      ");
  } else {
    TraceTextAppendPadded(t, FunctionName(function), 7);
  }
  TraceTextAppendLiteral(t, ", ");
  TraceTextAppendBounded(t, objectName, objectNameSize);
  if (processName != nullptr) {
    TraceTextAppendLiteral(t, ", ");
    TraceTextAppendBounded(t, processName, processNameSize);
  }
  TraceTextAppendChar(t, '\n');
}

void AppendSuppressListLines(TraceText *t, const ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  AppendYesNoSetting(t, "Alert file (error)", s.PutAlertFileError);
  AppendYesNoSetting(t, "Alert file (warn)", s.PutAlertFileWarning);
  AppendYesNoSetting(t, "Alert file (info)", s.PutAlertFileInfo);

  for (int32_t i = 0; i < s.PutAlertSuppressCount && i < PARAMETER_LIST_MAX; i++) {
    const AlertSuppressEntry &e = s.PutAlertSuppress[i];
    AppendSuppressEntry(t, "|  Suppress alert     : ", e.CompCode, e.Reason, e.Function,
                        e.ObjectName, (int32_t)sizeof e.ObjectName, e.ProcessName,
                        (int32_t)sizeof e.ProcessName);
  }
  for (int32_t i = 0; i < s.ShowSummaryDataSuppressCount && i < PARAMETER_LIST_MAX; i++) {
    const SummaryDataSuppressEntry &e = s.ShowSummaryDataSuppress[i];
    AppendSuppressEntry(t, "|  Suppress summary   : ", e.CompCode, e.Reason, e.Function,
                        e.ObjectName, (int32_t)sizeof e.ObjectName, nullptr, 0);
  }
}

void AppendFileSettingLines(TraceText *t, const ExitControlBlock *cb) {
  const ParameterSettings &s = cb->Settings;
  AppendLengthSetting(t, "Max file size", s.MaxFileSize);
  AppendTextSetting(t, "|  Compress command   : ", s.CompressCommand,
                    (int32_t)sizeof s.CompressCommand);
  AppendLengthSetting(t, "Compress threshold", s.CompressFileSizeThreshold);

  AppendYesNoSetting(t, "Create empty file", s.CreateEmptyFile);
  AppendYesNoSetting(t, "Write stream mode", s.WriteStream);
  AppendYesNoSetting(t, "Write cache", s.WriteCache);
  AppendYesNoSetting(t, "Write after call", s.WriteAfterEachApi);
  AppendLengthSetting(t, "Write buffer size", s.WriteBufferSize);
  AppendLengthSetting(t, "Write interval", s.WriteInterval);
  AppendYesNoSetting(t, "(Debug flag)", cb->Debug);
}

} // namespace

void PutProfileRecordYesNo(ExitControlBlock *cb, const char *label, uint8_t flag) {
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  AppendYesNoSetting(&t, label, flag);
  TraceTextWrite(&t);
}

void PutProfileRecordLength(ExitControlBlock *cb, const char *label, int64_t value) {
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  AppendLengthSetting(&t, label, value);
  TraceTextWrite(&t);
}

void PutProcessProfileRecords(ExitControlBlock *cb, int64_t reopenedSize) {
  if (reopenedSize > 0) {
    PutReopenBanner(cb);
    return;
  }
  TraceText t;
  TraceTextStart(&t, cb, TRACE_TEXT_WRITE_OUT);
  AppendProgramLines(&t, cb);
  if (cb->Settings.ShowZkVersion == 1) {
    AppendPlatformLevelLines(&t, cb);
  }
  AppendOperatingEnvironmentLines(&t);
  AppendExitContextLines(&t, cb);
  AppendDisplaySettingLines(&t, cb);
  AppendSelectionListLines(&t, cb);
  AppendSuppressListLines(&t, cb);
  AppendFileSettingLines(&t, cb);
  TraceTextAppendLiteral(&t, PROFILE_DASHED_LINE);
  TraceTextWrite(&t);
  FlushTraceDataInBuffer(cb);
  if (cb->Settings.ShowProcessEnvValue == 1) {
    PutEnvironmentVariables(cb);
  }
}
