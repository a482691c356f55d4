// The queue handle list of a connection: object handle -> the name it was
// opened under, its resolved name and the trace flags decided at open.
//
// A hub: dispatch keeps the list, and the formatters look up the names of
// handles in it, so every folder may include this header.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

int32_t queueHandleListAddEntry(ExitControlBlock *cb, const char *name, uint8_t open, uint8_t close,
                             uint8_t put, uint8_t get, uint8_t inq, uint8_t set);
void queueHandleListSetHandleToLastEntry(ExitControlBlock *cb, int32_t handle,
                                         const char *objectName48, const char *resolvedName48);
void queueHandleListDeleteLastEntry(ExitControlBlock *cb);
void queueHandleListDeleteEntry(ExitControlBlock *cb, int32_t index);
// Index of the handle's entry; when it is not there -1 with mustExist 1,
// else the index where it belongs. Handles 0 and -1 give -1 ("(null)").
int32_t queueHandleListSearchEntryByHandle(ExitControlBlock *cb, int32_t handle, uint8_t mustExist);
// The name a queue was opened under when that differs from its resolved
// name (an alias), else null.
const char *queueHandleListSearchAliasNameByRealName(ExitControlBlock *cb,
                                                     const char *resolvedName48);
