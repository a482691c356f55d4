// The common first step of every exit function: record the call, keep the
// handle list right, look for update requests, and decide whether to trace.
#pragma once

#include <stdint.h>

#include "zk/zkxc.h"

struct ExitControlBlock;
struct TargetQueueEntry;
struct ParameterSettings;

// RC_OK (0): trace this call; RC_NOP (-1): leave it alone. `pHobj` is given
// for calls that carry an object handle, `objectName48` for ZKOPEN.
int32_t PreProcessForAnExitCall(const ZKAXP *axp, ExitControlBlock *cb, const ZKLONG *pCompCode,
                                const ZKLONG *pReason, const ZKHOBJ *pHobj,
                                const char *objectName48);
void PreProcessOpenBefore(ExitControlBlock *cb, const char *objectName48);
void PreProcessManageHandle(ExitControlBlock *cb, int32_t function, const ZKHOBJ *pHobj);
// The TargetQueue entry that selects CurrentQueueName, or null.
const TargetQueueEntry *SearchTargetQueueParmEntry(const ExitControlBlock *cb);
// The TargetQueue entry of `settings` that selects the queue name, or null:
// the exact name, else the longest matching prefix ending in "*".
const TargetQueueEntry *SearchTargetQueueEntryByName(const ParameterSettings *settings,
                                                     const char *queue);
// Decides again, from the TargetQueue list now in force, which calls of each
// open handle are traced (after a renew has replaced the settings).
void ReselectQueueHandles(ExitControlBlock *cb);
// The same for the before-call in progress (CurrentFunction and
// CurrentQueueName), whose selection was made before the settings changed.
void SelectCurrentCallAgain(ExitControlBlock *cb);
