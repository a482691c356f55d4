// The common first step of every exit function: record the call, keep the
// handle list right, look for update requests, and decide whether to trace.
#pragma once

#include <stdint.h>

#include "zk/zkxc.h"

struct ExitControlBlock;
struct TargetQueueEntry;

// RC_OK (0): trace this call; RC_NOP (-1): leave it alone. `pHobj` is given
// for calls that carry an object handle, `objectName48` for ZKOPEN.
int32_t PreProcessForAnExitCall(const ZKAXP *axp, ExitControlBlock *cb, const ZKLONG *pCompCode,
                                const ZKLONG *pReason, const ZKHOBJ *pHobj,
                                const char *objectName48);
void PreProcessOpenBefore(ExitControlBlock *cb, const char *objectName48);
void PreProcessManageHandle(ExitControlBlock *cb, int32_t function, const ZKHOBJ *pHobj);
// The TargetQueue entry that selects CurrentQueueName, or null.
const TargetQueueEntry *SearchTargetQueueParmEntry(const ExitControlBlock *cb);
