// Connection-time path of the exit: control block, registration, termination.
#pragma once

#include <stdint.h>

#include "exit/control_block.h"
#include "wz_version.h"
#include "zk/zkxc.h"

#define PROGRAM_VERSION WZ_VERSION
#define PRODUCT_TITLE "wz API call trace exit for ZK"
#define BUILD_VARIANT "Common to single thread and multi thread"
#define MAKER_CONTACT "wz support <support@wz-trace.example>"

// Registers the exit's functions for a connection; 0 when the connection
// is to be traced (the entry functions pass the handlers' registration).
typedef int32_t RegisterAllFunction(ExitControlBlock *cb, PZKAXP pExitParms, PZKLONG pCompCode,
                                    PZKLONG pReason);

// The connection-time path of the entry functions: control block,
// parameter file, process filter, first trace file, registration.
void ApiTraceExitEntry(PZKAXP pExitParms, PZKAXC pExitContext, PZKLONG pCompCode, PZKLONG pReason,
                       int32_t level, const char *entryName, uint8_t debug,
                       RegisterAllFunction *registerAll);

// The end of a connection: the closing record, the file closed, the
// control block freed.
void TerminateConnection(PZKAXP pExitParms, PZKLONG pCompCode, PZKLONG pReason);

int32_t InitializeMemoryArea(ExitControlBlock *cb, int32_t size, const ParameterSettings *settings,
                             const ZKAXP *pExitParms, const ZKAXC *pExitContext, uint8_t debug);

// After the process filters: a process that the target list leaves out, or
// that ExecFlag leaves untraced, gets a note saying why, and its file is
// closed. 1 when it did, 0 when the process is traced.
int32_t PutUntracedProcessNote(ExitControlBlock *cb);

// The last component of a 28-character application name: what follows the
// last '/' or ' ' once the name is trimmed. `out` has room for 80 bytes.
void DeriveProcessName(const char *applName28, char *out);
