#include "exit/handle_list.h"

#include <stdlib.h>
#include <string.h>

#include "exit/alerts.h"
#include "exit/control_block.h"
#include "text/string_utils.h"

static_assert(sizeof(QueueHandleEntry::QueueName) == sizeof(ExitControlBlock::CurrentQueueName) &&
                  sizeof(QueueHandleEntry::ResolvedQueueName) ==
                      sizeof(ExitControlBlock::ResolvedQueueName),
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
  int32_t capacity = cb->HandleCapacity + HANDLE_LIST_STEP;
  QueueHandleEntry *entries =
      (QueueHandleEntry *)calloc((size_t)capacity, sizeof(QueueHandleEntry));
  if (entries == nullptr) {
    PutMessage<1010>(cb, -1);
    return -1;
  }
  if (cb->HandleList != nullptr) {
    memcpy(entries, cb->HandleList, (size_t)cb->HandleCount * sizeof(QueueHandleEntry));
    free(cb->HandleList);
  }
  cb->HandleList = entries;
  cb->HandleCapacity = capacity;
  return 0;
}

} // namespace

void queueHandleListAddEntry(ExitControlBlock *cb, const char *name, uint8_t open, uint8_t close,
                             uint8_t put, uint8_t get, uint8_t inq, uint8_t set) {
  if (cb->HandleCapacity <= cb->HandleCount + 1 && GrowHandleList(cb) != 0) {
    return;
  }
  QueueHandleEntry &entry = cb->HandleList[cb->HandleCount];
  CopyName48(entry.QueueName, name);
  entry.OpenFlag = open;
  entry.CloseFlag = close;
  entry.PutFlag = put;
  entry.GetFlag = get;
  entry.InqFlag = inq;
  entry.SetFlag = set;
  cb->HandleCount++;
}

void queueHandleListSetHandleToLastEntry(ExitControlBlock *cb, int32_t handle,
                                         const char *objectName48, const char *resolvedName48) {
  CopyName48(cb->CurrentQueueName, objectName48);
  if (resolvedName48 != nullptr) {
    CopyName48(cb->ResolvedQueueName, resolvedName48);
    if (strcmp(cb->ResolvedQueueName, cb->CurrentQueueName) == 0) {
      cb->ResolvedQueueName[0] = '\0';
    }
  } else {
    cb->ResolvedQueueName[0] = '\0';
  }
  if (cb->HandleCount < 1) {
    PutMessage<1>(cb, 0, "Invalid handle count in queueHandleListSetHandleToLastEntry.");
    return;
  }
  int32_t last = cb->HandleCount - 1;
  QueueHandleEntry entry = cb->HandleList[last];
  entry.Hobj = handle;
  CopyName48(entry.QueueName, objectName48);
  if (resolvedName48 != nullptr) {
    CopyName48(entry.ResolvedQueueName, resolvedName48);
  }
  // Decided once here rather than at every look-up of the handle.
  entry.ResolvedDiffers =
      entry.ResolvedQueueName[0] != '\0' && strcmp(entry.ResolvedQueueName, entry.QueueName) != 0;
  // Search without the last entry, so the place found is among the sorted ones.
  cb->HandleCount = last;
  char current[49], resolved[49];
  memcpy(current, cb->CurrentQueueName, 49);
  memcpy(resolved, cb->ResolvedQueueName, 49);
  int32_t at = queueHandleListSearchEntryByHandle(cb, handle, 0);
  memcpy(cb->CurrentQueueName, current, 49);
  memcpy(cb->ResolvedQueueName, resolved, 49);
  cb->HandleCount = last + 1;
  if (at >= 0 && at < last) {
    memmove(&cb->HandleList[at + 1], &cb->HandleList[at],
            (size_t)(last - at) * sizeof(QueueHandleEntry));
  } else {
    at = last;
  }
  cb->HandleList[at] = entry;
}

void queueHandleListDeleteLastEntry(ExitControlBlock *cb) {
  if (cb->HandleCount > 0) {
    cb->HandleCount--;
    memset(&cb->HandleList[cb->HandleCount], 0, sizeof(QueueHandleEntry));
  } else {
    PutMessage<1>(cb, 0, "Invalid handle count in queueHandleListDeleteLastEntry.");
  }
}

void queueHandleListDeleteEntry(ExitControlBlock *cb, int32_t index) {
  int32_t behind = cb->HandleCount - index - 1;
  if (behind > 0) {
    memmove(&cb->HandleList[index], &cb->HandleList[index + 1],
            (size_t)behind * sizeof(QueueHandleEntry));
  }
  cb->HandleCount--;
  memset(&cb->HandleList[cb->HandleCount], 0, sizeof(QueueHandleEntry));
}

int32_t queueHandleListSearchEntryByHandle(ExitControlBlock *cb, int32_t handle,
                                           uint8_t mustExist) {
  cb->ResolvedQueueName[0] = '\0';
  if (handle == 0 || handle == -1) {
    strcpy(cb->CurrentQueueName, "(null)");
    return -1;
  }
  if (cb->HandleCount == 0) {
    strcpy(cb->CurrentQueueName, "(unknown)");
    return -1;
  }
  const QueueHandleEntry *list = cb->HandleList;
  int32_t low = 0, high = cb->HandleCount - 1;
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
      memcpy(cb->CurrentQueueName, list[i].QueueName, sizeof cb->CurrentQueueName);
      if (list[i].ResolvedDiffers) {
        memcpy(cb->ResolvedQueueName, list[i].ResolvedQueueName, sizeof cb->ResolvedQueueName);
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
  if (name[0] == '\0' || cb->HandleCount == 0) {
    return nullptr;
  }
  for (int32_t i = 0; i < cb->HandleCount; i++) {
    const QueueHandleEntry &entry = cb->HandleList[i];
    if (strcmp(entry.ResolvedQueueName, name) == 0) {
      return strcmp(entry.QueueName, entry.ResolvedQueueName) == 0 ? nullptr : entry.QueueName;
    }
  }
  return nullptr;
}
