// The functions the queue manager calls by name or at connection time:
// the two entry functions, and the start, initialise and terminate
// functions.
#include "exit/startup.h"
#include "handlers/handlers.h"
#include "handlers/registration.h"

WZ_EXPORT void wzEntry(PZKAXP pExitParms, PZKAXC pExitContext, PZKLONG pCompCode, PZKLONG pReason) {
  ApiTraceExitEntry(pExitParms, pExitContext, pCompCode, pReason, API_LEVEL_700, "wzEntry", 0,
                    RegisterAllApiEntries);
}

WZ_EXPORT void wzEntryDebug(PZKAXP pExitParms, PZKAXC pExitContext, PZKLONG pCompCode,
                            PZKLONG pReason) {
  ApiTraceExitEntry(pExitParms, pExitContext, pCompCode, pReason, API_LEVEL_700, "wzEntryDebug", 1,
                    RegisterAllApiEntries);
}

WZ_EXPORT void ZKStart(void) {}

WZ_EXPORT void Initialize(PZKAXP, PZKAXC, PZKLONG, PZKLONG) {}

WZ_EXPORT void Terminate(PZKAXP pExitParms, PZKAXC, PZKLONG pCompCode, PZKLONG pReason) {
  TerminateConnection(pExitParms, pCompCode, pReason);
}
