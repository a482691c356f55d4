// Connection-time path of the exit: control block, registration, termination.
#pragma once

#include <stdint.h>

#include "exit/control_block.h"
#include "zk/zkxc.h"

#define PROGRAM_VERSION "7.52"
#define PRODUCT_TITLE "wz API call trace exit for ZK"
#define BUILD_VARIANT "Common to single thread and multi thread"
#define MAKER_CONTACT "wz support <support@wz-trace.example>"

void ApiTraceExitEntry(PZKAXP pExitParms, PZKAXC pExitContext, PZKLONG pCompCode, PZKLONG pReason,
                       int32_t level, const char *entryName, uint8_t debug);

int32_t InitializeMemoryArea(ExitControlBlock *cb, int32_t size, const ParameterSettings *settings,
                             const ZKAXP *pExitParms, const ZKAXC *pExitContext, uint8_t debug);

void RegisterApiEntry(ExitControlBlock *cb, PZKAXP pExitParms, ZKLONG exitReason, ZKLONG function,
                      PZKFUNC entryPoint, PZKXEPO pExitOpts, PZKLONG pCompCode, PZKLONG pReason);

// Registers the before and after functions of every call, in order; 0 when
// all registrations outside the transaction-manager group succeeded.
int32_t RegisterAllApiEntries(ExitControlBlock *cb, PZKAXP pExitParms, PZKLONG pCompCode,
                              PZKLONG pReason);

// The last component of a 28-character application name: what follows the
// last '/' or ' ' once the name is trimmed. `out` has room for 80 bytes.
void DeriveProcessName(const char *applName28, char *out);
