// The process filter: is this process traced at all?
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// Sets ExecStatus and ProcessNameMatch from ExecFlag and the TargetProcess
// and ExcludeProcess lists. 0 when the connection gets a trace file (traced,
// or CreateEmptyFile set), -1 when it gets none.
int32_t SetExecStatusFlagAndProcessNameMatchFlag(ExitControlBlock *cb);
