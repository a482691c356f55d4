#include "exit/dispatch.h"

#include <stdio.h>

#include "exit/debug_output.h"
#include "text/call_names.h"

#include <string.h>
#include <time.h>

#include "exit/update_requests.h"
#include "exit/control_block.h"
#include "output/timing.h"
#include "exit/handle_list.h"
#include "text/string_utils.h"

const TargetQueueEntry *SearchTargetQueueParmEntry(const ExitControlBlock *cb) {
  return SearchTargetQueueEntryByName(&cb->Settings, cb->Call.CurrentQueueName);
}

const TargetQueueEntry *SearchTargetQueueEntryByName(const ParameterSettings *parameters,
                                                     const char *queue) {
  const ParameterSettings &settings = *parameters;
  const TargetQueueEntry *best = nullptr;
  int32_t bestLength = -1;
  for (int32_t i = 0; i < settings.TargetQueueCount; i++) {
    const TargetQueueEntry &entry = settings.TargetQueue[i];
    if (strcmp(entry.QueueName, queue) == 0) {
      return &entry;
    }
    int32_t length = (int32_t)strlen(entry.QueueName);
    if (length == 0 || entry.QueueName[length - 1] != '*') {
      continue;
    }
    int32_t prefix = length - 1;
    // The longest prefix wins; of equal ones, the later entry.
    if (bestLength <= prefix && strncmp(entry.QueueName, queue, (size_t)prefix) == 0) {
      best = &entry;
      bestLength = prefix;
    }
  }
  return best;
}

void ReselectQueueHandles(ExitControlBlock *cb) {
  if (cb->Handles.HandleList == nullptr) {
    return;
  }
  for (int32_t i = 0; i < cb->Handles.HandleCount; i++) {
    QueueHandleEntry &entry = cb->Handles.HandleList[i];
    uint8_t open = 1, put = 1, get = 1, inq = 1, set = 1;
    if (cb->Settings.TargetQueueCount > 0) {
      const TargetQueueEntry *target = SearchTargetQueueEntryByName(&cb->Settings, entry.QueueName);
      open = target != nullptr ? 1 : 0;
      put = target != nullptr ? target->P : 0;
      get = target != nullptr ? target->G : 0;
      inq = target != nullptr ? target->I : 0;
      set = target != nullptr ? target->S : 0;
    }
    entry.OpenFlag = open;
    entry.CloseFlag = open;
    entry.PutFlag = put;
    entry.GetFlag = get;
    entry.InqFlag = inq;
    entry.SetFlag = set;
  }
}

void SelectCurrentCallAgain(ExitControlBlock *cb) {
  if (cb->Call.CurrentExitReason != ZKXR_BEFORE) {
    return;
  }
  int32_t function = cb->Call.CurrentFunction;
  switch (function) {
  case ZKXF_OPEN:
  case ZKXF_CLOSE:
  case ZKXF_PUT:
  case ZKXF_GET:
  case ZKXF_INQ:
  case ZKXF_SET:
    break;
  default: // ZKCB keeps what the previous call decided, as at its selection
    return;
  }
  if (cb->Settings.TargetQueueCount == 0) {
    cb->Call.QueueSelected = 1;
    return;
  }
  const char *name = cb->Call.CurrentQueueName;
  // A handle that was not in the list left "(unknown)" or "(null)" as its
  // name: no object name begins so, and such a call is not selected.
  if (function != ZKXF_OPEN && name[0] == '(') {
    cb->Call.QueueSelected = 0;
    return;
  }
  const TargetQueueEntry *target = SearchTargetQueueEntryByName(&cb->Settings, name);
  uint8_t selected = target != nullptr ? 1 : 0;
  if (target != nullptr) {
    switch (function) {
    case ZKXF_PUT:
      selected = target->P;
      break;
    case ZKXF_GET:
      selected = target->G;
      break;
    case ZKXF_INQ:
      selected = target->I;
      break;
    case ZKXF_SET:
      selected = target->S;
      break;
    default:
      break;
    }
  }
  cb->Call.QueueSelected = selected;
}

void PreProcessOpenBefore(ExitControlBlock *cb, const char *objectName48) {
  memset(cb->Call.CurrentQueueName, 0, sizeof cb->Call.CurrentQueueName);
  if (objectName48 != nullptr) {
    memcpy(cb->Call.CurrentQueueName, objectName48, strnlen(objectName48, 48));
  }
  StringTrim(cb->Call.CurrentQueueName);
  if (cb->Settings.TargetQueueCount == 0) {
    cb->Call.QueueSelected = 1;
    cb->Call.OpenEntryAdded =
        queueHandleListAddEntry(cb, cb->Call.CurrentQueueName, 1, 1, 1, 1, 1, 1) == 0;
    return;
  }
  const TargetQueueEntry *entry = SearchTargetQueueParmEntry(cb);
  if (entry != nullptr) {
    cb->Call.QueueSelected = 1;
    cb->Call.OpenEntryAdded = queueHandleListAddEntry(cb, cb->Call.CurrentQueueName, 1, 1, entry->P,
                                                      entry->G, entry->I, entry->S) == 0;
  } else {
    cb->Call.QueueSelected = 0;
    cb->Call.OpenEntryAdded =
        queueHandleListAddEntry(cb, cb->Call.CurrentQueueName, 0, 0, 0, 0, 0, 0) == 0;
  }
}

void PreProcessManageHandle(ExitControlBlock *cb, int32_t function, const ZKHOBJ *pHobj) {
  int32_t handle = pHobj != nullptr ? *pHobj : 0;
  int32_t index = queueHandleListSearchEntryByHandle(cb, handle, 1);
  if (index < 0) {
    cb->Call.QueueSelected = 0;
    strcpy(cb->Call.CurrentQueueName, "(unknown)");
  } else {
    const QueueHandleEntry &entry = cb->Handles.HandleList[index];
    switch (function) {
    case ZKXF_CLOSE:
      cb->Call.QueueSelected = entry.CloseFlag;
      break;
    case ZKXF_PUT:
      cb->Call.QueueSelected = entry.PutFlag;
      break;
    case ZKXF_GET:
      cb->Call.QueueSelected = entry.GetFlag;
      break;
    case ZKXF_INQ:
      cb->Call.QueueSelected = entry.InqFlag;
      break;
    case ZKXF_SET:
      cb->Call.QueueSelected = entry.SetFlag;
      break;
    default: // ZKCB keeps what the previous call decided
      break;
    }
    // The entry goes before the close runs: a failed close loses it too.
    if (function == ZKXF_CLOSE) {
      queueHandleListDeleteEntry(cb, index);
    }
  }
  if (cb->Settings.TargetQueueCount == 0) {
    cb->Call.QueueSelected = 1;
  }
}

int32_t PreProcessForAnExitCall(const ZKAXP *axp, ExitControlBlock *cb, const ZKLONG *pCompCode,
                                const ZKLONG *, const ZKHOBJ *pHobj, const char *objectName48) {
  int32_t function = axp->Function;
  int32_t exitReason = axp->ExitReason;
  if (DebugWanted(cb)) {
    char text[64];
    snprintf(text, sizeof text, "%-8s - %s", FunctionName(function), ExitReasonName(exitReason));
    DEBUG_STRING(cb, "Function ", text);
  }
  ForgetCallClock(cb);
  cb->Call.CurrentFunction = function;
  cb->Call.CurrentExitReason = exitReason;
  cb->Call.CurrentCompCode = pCompCode != nullptr ? *pCompCode : 0;

  if (exitReason == ZKXR_BEFORE) {
    if (function != ZKXF_DATA_CONV_ON_GET) {
      // Both names are read as strings only, and whatever fills them ends
      // them with a NUL: emptying them is clearing them.
      cb->Call.CurrentQueueName[0] = '\0';
      cb->Call.ResolvedQueueName[0] = '\0';
    }
    switch (function) {
    case ZKXF_OPEN:
      PreProcessOpenBefore(cb, objectName48);
      break;
    case ZKXF_CLOSE:
    case ZKXF_PUT:
    case ZKXF_GET:
    case ZKXF_INQ:
    case ZKXF_SET:
    case ZKXF_CB:
      PreProcessManageHandle(cb, function, pHobj);
      break;
    default:
      break;
    }
  }
  if (cb->FatalError) {
    return RC_NOP;
  }
  if (exitReason == ZKXR_AFTER || function == ZKXF_DATA_CONV_ON_GET) {
    return cb->ExecStatus == 1 ? RC_OK : RC_NOP;
  }
  int32_t interval = cb->Settings.CheckUpdateRequestInterval;
  if (interval > 0) {
    // A traced call of a selected object reads the precise clock for its
    // record anyway: that reading serves here too. Other calls take the
    // cheaper coarse time.
    if (cb->ExecStatus == 1 && cb->Call.QueueSelected == 1) {
      ReadCallClock(cb);
    }
    time_t now = CallClockSeconds(cb);
    // Compared as a difference in 64 bits: any interval the file gives is
    // safe to add.
    if ((int64_t)now - (int64_t)cb->LastUpdateCheck >= (int64_t)interval) {
      SeekUpdateRequestFiles(axp->ExitData, cb);
      cb->LastUpdateCheck = now;
    }
  }
  if (cb->FatalError) {
    return RC_NOP;
  }
  return cb->ExecStatus == 1 ? RC_OK : RC_NOP;
}
