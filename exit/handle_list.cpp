#include "exit/handle_list.h"

#include "exit/debug_output.h"

#include <stdlib.h>
#include <string.h>

#include "exit/alerts.h"
#include "exit/control_block.h"
#include "text/string_utils.h"

static_assert(sizeof(QueueHandleEntry::QueueName) == sizeof(CallState::CurrentQueueName) &&
                  sizeof(QueueHandleEntry::ResolvedQueueName) ==
                      sizeof(CallState::ResolvedQueueName),
              "a handle-list name is copied whole into the current names");

namespace {

// Copies at most 48 characters of a name (NUL-terminated or not) and trims.
void CopyName48(char *out49, const char *name) {
  memset(out49, 0, 49);
  if (name != nullptr) {
    memcpy(out49, name, strnlen(name, 48));
  }
  StringTrim(out49);
}

// Grows the array by one step, keeping one free slot. 0 or -1.
int32_t GrowHandleList(ExitControlBlock *cb) {
  int32_t capacity = cb->Handles.HandleCapacity + HANDLE_LIST_STEP;
  QueueHandleEntry *entries =
      (QueueHandleEntry *)calloc((size_t)capacity, sizeof(QueueHandleEntry));
  if (entries == nullptr) {
    PutMessage<1010>(cb, -1);
    return -1;
  }
  if (cb->Handles.HandleList != nullptr) {
    memcpy(entries, cb->Handles.HandleList,
           (size_t)cb->Handles.HandleCount * sizeof(QueueHandleEntry));
    free(cb->Handles.HandleList);
  }
  cb->Handles.HandleList = entries;
  cb->Handles.HandleCapacity = capacity;
  return 0;
}

} // namespace

int32_t queueHandleListAddEntry(ExitControlBlock *cb, const char *name, uint8_t open, uint8_t close,
                                uint8_t put, uint8_t get, uint8_t inq, uint8_t set) {
  if (cb->Handles.HandleCapacity <= cb->Handles.HandleCount + 1 && GrowHandleList(cb) != 0) {
    return -1;
  }
  QueueHandleEntry &entry = cb->Handles.HandleList[cb->Handles.HandleCount];
  CopyName48(entry.QueueName, name);
  entry.OpenFlag = open;
  entry.CloseFlag = close;
  entry.PutFlag = put;
  entry.GetFlag = get;
  entry.InqFlag = inq;
  entry.SetFlag = set;
  cb->Handles.HandleCount++;
  return 0;
}

// With debug output on, the whole table under a title.
static void DebugHandleList(ExitControlBlock *cb, const char *title) {
  if (!DebugWanted(cb)) {
    return;
  }
  DEBUG_TITLE(cb, title);
  for (int32_t i = 0; i < cb->Handles.HandleCount; i++) {
    const QueueHandleEntry &entry = cb->Handles.HandleList[i];
    DEBUG_INTEGER(cb, "handle list entry table", i);
    DEBUG_INTEGER(cb, "handle (int)", entry.Hobj);
    if (DebugWanted(cb)) {
      debugHexShort(cb, "handle (hex)", &entry.Hobj, (int32_t)sizeof entry.Hobj, __FILE_NAME__,
                    __LINE__);
    }
    DEBUG_STRING(cb, "object name ", entry.QueueName);
  }
}

void queueHandleListSetHandleToLastEntry(ExitControlBlock *cb, int32_t handle,
                                         const char *objectName48, const char *resolvedName48) {
  CopyName48(cb->Call.CurrentQueueName, objectName48);
  if (resolvedName48 != nullptr) {
    CopyName48(cb->Call.ResolvedQueueName, resolvedName48);
    if (strcmp(cb->Call.ResolvedQueueName, cb->Call.CurrentQueueName) == 0) {
      cb->Call.ResolvedQueueName[0] = '\0';
    }
  } else {
    cb->Call.ResolvedQueueName[0] = '\0';
  }
  if (cb->Handles.HandleCount < 1) {
    PutMessage<1>(cb, 0, "Invalid handle count in queueHandleListSetHandleToLastEntry.");
    return;
  }
  int32_t last = cb->Handles.HandleCount - 1;
  QueueHandleEntry entry = cb->Handles.HandleList[last];
  entry.Hobj = handle;
  CopyName48(entry.QueueName, objectName48);
  if (resolvedName48 != nullptr) {
    CopyName48(entry.ResolvedQueueName, resolvedName48);
  }
  // Decided once here rather than at every look-up of the handle.
  entry.ResolvedDiffers =
      entry.ResolvedQueueName[0] != '\0' && strcmp(entry.ResolvedQueueName, entry.QueueName) != 0;
  // Search without the last entry, so the place found is among the sorted ones.
  cb->Handles.HandleCount = last;
  char current[49], resolved[49];
  memcpy(current, cb->Call.CurrentQueueName, 49);
  memcpy(resolved, cb->Call.ResolvedQueueName, 49);
  int32_t at = queueHandleListSearchEntryByHandle(cb, handle, 0);
  memcpy(cb->Call.CurrentQueueName, current, 49);
  memcpy(cb->Call.ResolvedQueueName, resolved, 49);
  cb->Handles.HandleCount = last + 1;
  if (at >= 0 && at < last) {
    memmove(&cb->Handles.HandleList[at + 1], &cb->Handles.HandleList[at],
            (size_t)(last - at) * sizeof(QueueHandleEntry));
  } else {
    at = last;
  }
  cb->Handles.HandleList[at] = entry;
  DebugHandleList(cb, "add entry to handle list");
}

void queueHandleListDeleteLastEntry(ExitControlBlock *cb) {
  if (cb->Handles.HandleCount > 0) {
    cb->Handles.HandleCount--;
    memset(&cb->Handles.HandleList[cb->Handles.HandleCount], 0, sizeof(QueueHandleEntry));
  } else {
    PutMessage<1>(cb, 0, "Invalid handle count in queueHandleListDeleteLastEntry.");
  }
}

void queueHandleListDeleteEntry(ExitControlBlock *cb, int32_t index) {
  int32_t behind = cb->Handles.HandleCount - index - 1;
  if (behind > 0) {
    memmove(&cb->Handles.HandleList[index], &cb->Handles.HandleList[index + 1],
            (size_t)behind * sizeof(QueueHandleEntry));
  }
  cb->Handles.HandleCount--;
  memset(&cb->Handles.HandleList[cb->Handles.HandleCount], 0, sizeof(QueueHandleEntry));
  DebugHandleList(cb, "delete entry to handle list");
}

int32_t queueHandleListSearchEntryByHandle(ExitControlBlock *cb, int32_t handle,
                                           uint8_t mustExist) {
  cb->Call.ResolvedQueueName[0] = '\0';
  if (handle == 0 || handle == -1) {
    strcpy(cb->Call.CurrentQueueName, "(null)");
    return -1;
  }
  if (cb->Handles.HandleCount == 0) {
    strcpy(cb->Call.CurrentQueueName, "(unknown)");
    return -1;
  }
  const QueueHandleEntry *list = cb->Handles.HandleList;
  int32_t low = 0, high = cb->Handles.HandleCount - 1;
  while (high - low >= 6) {
    int32_t mid = (low + high) / 2;
    if (handle < list[mid].Hobj) {
      high = mid;
    } else if (handle > list[mid].Hobj) {
      low = mid;
    } else {
      low = high = mid;
    }
  }
  int32_t i = low;
  for (; i <= high; i++) {
    if (list[i].Hobj == handle) {
      // The names of an entry were cut to 48 characters and trimmed when
      // they were stored: they are copied as they are.
      memcpy(cb->Call.CurrentQueueName, list[i].QueueName, sizeof cb->Call.CurrentQueueName);
      if (list[i].ResolvedDiffers) {
        memcpy(cb->Call.ResolvedQueueName, list[i].ResolvedQueueName,
               sizeof cb->Call.ResolvedQueueName);
      }
      return i;
    }
    if (list[i].Hobj > handle) {
      break;
    }
  }
  return mustExist == 1 ? -1 : i;
}

const char *queueHandleListSearchAliasNameByRealName(ExitControlBlock *cb,
                                                     const char *resolvedName48) {
  if (resolvedName48 == nullptr) {
    return nullptr;
  }
  char name[49];
  CopyName48(name, resolvedName48);
  if (name[0] == '\0' || cb->Handles.HandleCount == 0) {
    return nullptr;
  }
  for (int32_t i = 0; i < cb->Handles.HandleCount; i++) {
    const QueueHandleEntry &entry = cb->Handles.HandleList[i];
    if (strcmp(entry.ResolvedQueueName, name) == 0) {
      return strcmp(entry.QueueName, entry.ResolvedQueueName) == 0 ? nullptr : entry.QueueName;
    }
  }
  return nullptr;
}
