// Carrying out the operator's requests: tracing switched on and off, and
// "wz.def" read again, while the application runs. The requests change only
// the exit's own state and files; the call in progress goes on as it is.
#include "exit/update_requests.h"

#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>

#include "config/parameters.h"
#include "exit/alerts.h"
#include "exit/control_block.h"
#include "exit/dispatch.h"
#include "exit/process_filter.h"
#include "exit/startup.h"
#include "output/process_id.h"
#include "output/record_writers.h"
#include "output/trace_file.h"

namespace {

// What a file closed by a request has after its ".txt".
const char kClosedByRequestSuffix[] = ".f";

// Reads "wz.def" again and puts the fresh settings in force. The block
// being read is not the one in force: the alerts the reading raises still
// go by the settings that are in force until the reading is done.
void ReplaceSettings(ExitControlBlock *cb, const char *exitData) {
  // A fresh block is some tens of kilobytes: too much for the stack of a
  // host thread, which may be small. A renew is rare; its block is freed
  // at once.
  ParameterSettings *fresh = (ParameterSettings *)malloc(sizeof(ParameterSettings));
  if (fresh == nullptr) {
    // The settings stay as they are; the renew goes on with them.
    PutMessage<1010>(cb, -1);
    return;
  }
  ReadParameterFile(cb, exitData, fresh);
  // The write buffer was sized at start-up and stays so.
  fresh->WriteBufferSize = cb->Settings.WriteBufferSize;
  // No trace file is open while tracing is off; should one be, it is
  // closed before the settings that say how it is written change.
  if (TraceFileIsOpen(cb) != 0) {
    CloseAndCompressFile(cb, nullptr);
  }
  cb->Settings = *fresh;
  free(fresh);
  // What start-up derived from the settings.
  SetValueForCodeRangeCheck(cb);
  ReselectQueueHandles(cb);
  SelectCurrentCallAgain(cb);
}

} // namespace

void EnableTraceByRequest(ExitControlBlock *cb) {
  if (cb->ExecStatus == 1) {
    return;
  }
  cb->ExecStatus = 1;
  // The note opens a new file, with its profile and the summary so far.
  cb->File.CurrentFileSize = cb->Settings.MaxFileSize + 1;
  cb->File.RotationPermitted = 1;
  PutMsgToTrace(cb, "Enabled");
  cb->File.RotationPermitted = 0;
}

void DisableTraceByRequest(ExitControlBlock *cb) {
  if (cb->ExecStatus != 1) {
    return;
  }
  cb->File.RotationPermitted = 0;
  PutMsgToTrace(cb, "Disabled");
  CloseAndCompressFile(cb, kClosedByRequestSuffix);
  cb->ExecStatus = 0;
}

void RenewTraceByRequest(ExitControlBlock *cb, const char *exitData) {
  if (cb->ExecStatus == 1) {
    cb->File.RotationPermitted = 0;
    PutMsgToTrace(cb, "Disabled for renew");
    CloseAndCompressFile(cb, kClosedByRequestSuffix);
  }
  ReplaceSettings(cb, exitData);
  // -1: the process is not traced and gets no file (CreateEmptyFile=no).
  if (SetExecStatusFlagAndProcessNameMatchFlag(cb) != 0) {
    return;
  }
  cb->File.CurrentFileSize = cb->Settings.MaxFileSize + 1;
  cb->File.RotationPermitted = 1;
  if (PutUntracedProcessNote(cb) == 0) {
    PutMsgToTrace(cb, "Enabled for renew");
    FlushTraceDataInBuffer(cb);
  }
  cb->File.RotationPermitted = 0;
}

int32_t SeekUpdateRequestFiles(const char *exitData, ExitControlBlock *cb) {
  if (cb == nullptr) {
    return UPDATE_REQUEST_NONE;
  }
  uint32_t processId = (uint32_t)CurrentProcessId();
  uint32_t threadId = (uint32_t)(uintptr_t)pthread_self();
  // Every name is tested every time, so that each one's time is recorded.
  int32_t all = CheckUpdateRequestFileExistence(cb, 0, 0);
  int32_t process = CheckUpdateRequestFileExistence(cb, processId, 0);
  int32_t thread = CheckUpdateRequestFileExistence(cb, processId, threadId);
  int32_t context = CheckUpdateRequestFileExistence(cb, (uint32_t)cb->Identity.ZkaxcProcessId,
                                                    (uint32_t)cb->Identity.ZkaxcThreadId);
  int32_t request = context != UPDATE_REQUEST_NONE   ? context
                    : thread != UPDATE_REQUEST_NONE  ? thread
                    : process != UPDATE_REQUEST_NONE ? process
                                                     : all;
  if (exitData == nullptr) {
    return request;
  }
  switch (request) {
  case UPDATE_REQUEST_ENABLE:
    EnableTraceByRequest(cb);
    break;
  case UPDATE_REQUEST_DISABLE:
    DisableTraceByRequest(cb);
    break;
  case UPDATE_REQUEST_RENEW:
    RenewTraceByRequest(cb, exitData);
    break;
  default:
    break;
  }
  return request;
}
