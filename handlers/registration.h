// Registration of the exit's functions with the queue manager.
#pragma once

#include <stdint.h>

#include "exit/control_block.h"
#include "zk/zkxc.h"

// Registers one function through ZKXEP; a failure is reported with message
// 1021 and turns the exit's response to FAILED.
void RegisterApiEntry(ExitControlBlock *cb, PZKAXP pExitParms, ZKLONG exitReason, ZKLONG function,
                      PZKFUNC entryPoint, PZKXEPO pExitOpts, PZKLONG pCompCode, PZKLONG pReason);

// Registers the before and after functions of every call, in order; 0 when
// all registrations outside the transaction-manager group succeeded.
int32_t RegisterAllApiEntries(ExitControlBlock *cb, PZKAXP pExitParms, PZKLONG pCompCode,
                              PZKLONG pReason);
