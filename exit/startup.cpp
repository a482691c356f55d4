// Connection time: decide whether the connection is traced, build its
// control block, register the exit functions and open the first trace file.
#include "exit/startup.h"

#include <errno.h>
#include <stdio.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "exit/alerts.h"
#include "exit/call_records.h"
#include "exit/process_filter.h"
#include "exit/update_requests.h"
#include "output/timing.h"
#include "output/record_writers.h"
#include "output/trace_file.h"
#include "output/trace_text.h"
#include "text/constant_table.h"
#include "text/named_tables.h"
#include "text/string_utils.h"

void DeriveProcessName(const char *applName28, char *out) {
  char name[29];
  StringCopyFixedField(name, applName28, 28);
  int32_t start = (int32_t)strlen(name);
  while (start > 0 && name[start - 1] != '/' && name[start - 1] != ' ') {
    start--;
  }
  strncpy(out, name + start, 79);
  out[79] = '\0';
}

namespace {

void SetResponse(PZKAXP axp, ZKLONG response, ZKLONG response2) {
  axp->ExitResponse = response;
  axp->ExitResponse2 = response2;
}

bool IsShutdownCommand(const char *processName) {
  return strncmp(processName, "endzkm", 6) == 0 || strncmp(processName, "ENDZKM", 6) == 0;
}

void CopyText(char *out, size_t size, const char *text) {
  strncpy(out, text, size - 1);
  out[size - 1] = '\0';
}

// The fixed-width ZKAXP and ZKAXC fields the block keeps, trimmed.
void CopyConnectionIdentity(ExitControlBlock *cb, const ZKAXP *axp, const ZKAXC *axc) {
  StringCopyFixedField(cb->Identity.ExitInfoName, axp->ExitInfoName, 48);
  CopyText(cb->Identity.ApiCallerTypeText, sizeof cb->Identity.ApiCallerTypeText,
           SearchConstantInt(axp->APICallerType, Constant_ApiCallerType));
  StringCopyFixedField(cb->Identity.QMgrName, axp->QMgrName, 48);
  CopyText(cb->Identity.EnvironmentText, sizeof cb->Identity.EnvironmentText,
           SearchConstantInt(axc->Environment, Constant_Environment));
  StringCopyFixedField(cb->Identity.UserId, axc->UserId, 12);
  StringCopyFixedField(cb->Identity.ConnectionName, axc->ConnectionName, 264);
  StringCopyFixedField(cb->Identity.ApplName, axc->ApplName, 28);
  CopyText(cb->Identity.ApplTypeText, sizeof cb->Identity.ApplTypeText,
           SearchConstantInt(axc->ApplType, Constant_ApplType));
  DeriveProcessName(axc->ApplName, cb->Identity.ProcessName);
  CopyText(cb->Identity.ProcessDescription, sizeof cb->Identity.ProcessDescription,
           SearchConstantString(cb->Identity.ProcessName, Constant_Module_Name));
}

void FreeAreas(ExitControlBlock *cb, QueueHandleEntry *handles) {
  free(handles);
  free(cb);
}

} // namespace

int32_t InitializeMemoryArea(ExitControlBlock *cb, int32_t size, const ParameterSettings *settings,
                             const ZKAXP *axp, const ZKAXC *axc, uint8_t debug) {
  memcpy(cb->EyeCatcher, CONTROL_BLOCK_EYE_CATCHER, sizeof CONTROL_BLOCK_EYE_CATCHER);
  cb->Identity.ZkaxcProcessId = axc->ProcessId;
  cb->Identity.ZkaxcThreadId = axc->ThreadId;
  cb->Identity.ProcessId = (int32_t)getpid();
  cb->Identity.ThreadId = (uint32_t)pthread_self();
  DeriveProcessName(axc->ApplName, cb->Identity.ProcessName); // names the error file's lines

  char directory[34];
  int32_t length = StringCopyFixedField(directory, axp->ExitData, 32);
  if (length == 0) {
    PutMessage<2101>(cb, 0);
    return -1;
  }
  if (directory[length - 1] != '/') {
    directory[length] = '/';
    directory[length + 1] = '\0';
  }
  memcpy(cb->File.TraceDirectory, directory, sizeof directory);

  memcpy(cb->ChainHeader.StrucId, ZKACH_STRUC_ID, 4);
  cb->ChainHeader.Version = ZKACH_VERSION_1;
  cb->ChainHeader.StrucLength = ZKACH_LENGTH_1;
  cb->ChainHeader.ChainAreaLength = size;
  memcpy(cb->ChainHeader.ExitInfoName, axp->ExitInfoName, 48);
  cb->ChainHeader.NextChainAreaPtr = nullptr;

  cb->Debug = debug;
  cb->ExecStatus = 1;
  cb->ExitType = EXIT_TYPE_API;

  CopyText(cb->Identity.ProductTitle, sizeof cb->Identity.ProductTitle, PRODUCT_TITLE);
  CopyText(cb->Identity.ProgramVersion, sizeof cb->Identity.ProgramVersion, PROGRAM_VERSION);
  CopyText(cb->Identity.BuildVariant, sizeof cb->Identity.BuildVariant, BUILD_VARIANT);
  CopyText(cb->Identity.MakerContact, sizeof cb->Identity.MakerContact, MAKER_CONTACT);

  CopyConnectionIdentity(cb, axp, axc);
  cb->Settings = *settings;
  SetValueForCodeRangeCheck(cb);
  cb->File.CurrentFileSize = cb->Settings.MaxFileSize + 1;
  cb->File.RotationPermitted = 1;
  cb->WriteBufferSize = size - (int32_t)CONTROL_BLOCK_FIXED_SIZE;

  cb->LastUpdateCheck = time(nullptr);
  SeekUpdateRequestFiles(nullptr, cb);
  SetConnectionStartTime(cb);
  return 0;
}

void ApiTraceExitEntry(PZKAXP axp, PZKAXC axc, PZKLONG pCompCode, PZKLONG pReason, int32_t level,
                       const char *entryName, uint8_t debug, RegisterAllFunction *registerAll) {
  char processName[80];
  DeriveProcessName(axc->ApplName, processName);
  if (IsShutdownCommand(processName)) {
    SetResponse(axp, ZKXCC_OK, ZKXR2_DEFAULT_CONTINUATION);
    return;
  }
  SetResponse(axp, ZKXCC_FAILED, ZKXR2_SUPPRESS_CHAIN);

  // A first, silent reading: the block's size depends on the settings.
  ParameterSettings settings;
  int32_t parameterErrors = ReadParameterFile(nullptr, axp->ExitData, &settings);

  // A buffer size from the file can be anything up to INT32_MAX: a block
  // size that does not fit in 32 bits is memory that cannot be had.
  int64_t wanted = (int64_t)CONTROL_BLOCK_FIXED_SIZE + (int64_t)settings.WriteBufferSize;
  int32_t size = wanted <= (int64_t)INT32_MAX ? (int32_t)wanted : 0;
  ExitControlBlock *cb = size > 0 ? (ExitControlBlock *)calloc(1, (size_t)size) : nullptr;
  if (cb == nullptr) {
    if (size == 0) {
      errno = ENOMEM;
    }
    PutMessage<1010>(nullptr, -1);
    return;
  }
  QueueHandleEntry *handles =
      (QueueHandleEntry *)calloc(HANDLE_LIST_STEP, sizeof(QueueHandleEntry));
  if (handles == nullptr) {
    PutMessage<1010>(nullptr, -1);
    free(cb);
    return;
  }
  if (InitializeMemoryArea(cb, size, &settings, axp, axc, debug) != 0) {
    FreeAreas(cb, handles);
    return;
  }
  cb->Handles.HandleList = handles;
  cb->Handles.HandleCapacity = HANDLE_LIST_STEP;
  axp->ExitChainAreaPtr = cb;

  cb->Identity.ApiLevel = API_LEVEL_600;
  if (axp->Version >= ZKAXP_VERSION_2 && level >= API_LEVEL_700) {
    cb->Identity.ApiLevel = API_LEVEL_700;
  }
  CopyText(cb->Identity.EntryName, sizeof cb->Identity.EntryName, entryName);

  // Read again, now with somewhere to report the bad lines.
  if (parameterErrors != 0) {
    ReadParameterFile(cb, axp->ExitData, &cb->Settings);
  }

  if (cb->Settings.NoExitProcessIfProcNameMismatch == 1 &&
      SetExecStatusFlagAndProcessNameMatchFlag(cb) != 0) {
    // The block is gone: the chain area must not point at freed memory.
    axp->ExitChainAreaPtr = nullptr;
    FreeAreas(cb, handles);
    SetResponse(axp, ZKXCC_OK, ZKXR2_DEFAULT_CONTINUATION);
    return;
  }

  // ZKXEP answers into codes of our own: the connection's are not touched.
  ZKLONG registerCompCode = ZKCC_OK;
  ZKLONG registerReason = 0;
  if (registerAll(cb, axp, &registerCompCode, &registerReason) != 0) {
    return;
  }
  SetResponse(axp, ZKXCC_OK, ZKXR2_DEFAULT_CONTINUATION);

  if (SetExecStatusFlagAndProcessNameMatchFlag(cb) != 0) {
    return;
  }
  if (SetDataToWriteBuffer(cb, "") != 0) {
    return;
  }
  cb->File.RotationPermitted = 0;
  cb->Call.CurrentFunction = axp->Function;
  cb->Call.CurrentExitReason = axp->ExitReason;
  cb->Call.CurrentCompCode = *pCompCode;
  PutHeaderRecord(cb, axp->Function, axp->ExitReason, *pCompCode, *pReason, nullptr, nullptr);
  PutUntracedProcessNote(cb);
}

int32_t PutUntracedProcessNote(ExitControlBlock *cb) {
  if (cb->ProcessNameMatch == 0) {
    TraceText line;
    TraceTextStart(&line, cb, TRACE_TEXT_CUT);
    TraceTextAppendLiteral(&line, "Process name ");
    TraceTextAppendBounded(&line, cb->Identity.ProcessName,
                           (int32_t)sizeof cb->Identity.ProcessName);
    TraceTextAppendLiteral(&line, " is not in target process name list.");
    PutMsgToTrace(cb, TraceTextString(&line));
    CloseAndCompressFile(cb, nullptr);
    return 1;
  }
  if (cb->ExecStatus == 0) {
    PutMsgToTrace(cb, "ExecFlag=no or ExecFlag=env is set in parameter file.");
    CloseAndCompressFile(cb, nullptr);
    return 1;
  }
  return 0;
}

void TerminateConnection(PZKAXP pExitParms, PZKLONG pCompCode, PZKLONG pReason) {
  ExitControlBlock *cb = ControlBlockOf(pExitParms);
  if (cb == nullptr) {
    return;
  }
  ForgetCallClock(cb);
  if (cb->ExecStatus == 1) {
    PutHeaderRecord(cb, pExitParms->Function, pExitParms->ExitReason, *pCompCode, *pReason, nullptr,
                    nullptr);
  }
  CloseAndCompressFile(cb, nullptr);
  free(cb->Handles.HandleList);
  free(cb);
  pExitParms->ExitChainAreaPtr = nullptr;
}
