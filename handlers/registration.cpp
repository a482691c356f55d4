// The exit functions registered at connection time, in registration order,
// from the one call table.
#include "handlers/registration.h"

#include <string.h>

#include "exit/alerts.h"
#include "handlers/handlers.h"
#include "text/constant_table.h"
#include "text/named_tables.h"

namespace {

// When a row is registered.
enum RegistrationCondition : uint8_t {
  kAlways,          // every connection
  kExitParmsV2,     // ZKAXP version 2 or more
  kApiLevel700,     // the version-7 calls
  kTransactionCalls // ApiLevel 700 and ShowXaCalls; failures do not stop the group
};

struct RegistrationRow {
  ZKLONG ExitReason;
  ZKLONG Function;
  PZKFUNC EntryPoint;
  RegistrationCondition Condition;
};

#define ENTRY(f) reinterpret_cast<PZKFUNC>(&f)

const RegistrationRow kRegistrationTable[] = {
#define WZ_ENTRY(name, type)
#define WZ_CONNECTION(name, type, function, condition)                                             \
  {ZKXR_CONNECTION, function, ENTRY(name), condition},
#define WZ_CALL(function, type, before, after, condition)                                          \
  {ZKXR_BEFORE, function, ENTRY(before), condition},                                               \
      {ZKXR_AFTER, function, ENTRY(after), condition},
#define WZ_CALL_CONVERT(function, conversion, type, before, after, condition)                      \
  {ZKXR_BEFORE, function, ENTRY(before), condition},                                               \
      {ZKXR_BEFORE, conversion, ENTRY(before), condition},                                         \
      {ZKXR_AFTER, function, ENTRY(after), condition},
#include "handlers/calls.def"
#undef WZ_ENTRY
#undef WZ_CONNECTION
#undef WZ_CALL
#undef WZ_CALL_CONVERT
};

bool ConditionHolds(RegistrationCondition condition, const ExitControlBlock *cb, const ZKAXP *axp) {
  switch (condition) {
  case kAlways:
    return true;
  case kExitParmsV2:
    return axp->Version >= ZKAXP_VERSION_2;
  case kApiLevel700:
    return cb->Identity.ApiLevel == API_LEVEL_700;
  case kTransactionCalls:
    return cb->Identity.ApiLevel == API_LEVEL_700 && cb->Settings.ShowXaCalls == 1;
  }
  return false;
}

} // namespace

void RegisterApiEntry(ExitControlBlock *cb, PZKAXP axp, ZKLONG exitReason, ZKLONG function,
                      PZKFUNC entryPoint, PZKXEPO exitOpts, PZKLONG pCompCode, PZKLONG pReason) {
  ZKXEP(axp->Hconfig, exitReason, function, entryPoint, exitOpts, pCompCode, pReason);
  if (*pReason != 0) {
    PutMessage<1021>(cb, 0, "ZKXEP", (int32_t)*pCompCode, (int32_t)*pReason,
                     SearchConstantInt(*pReason, Constant_Zkrc), "", "", "");
    axp->ExitResponse = ZKXCC_FAILED;
  }
}

int32_t RegisterAllApiEntries(ExitControlBlock *cb, PZKAXP axp, PZKLONG pCompCode,
                              PZKLONG pReason) {
  // The ZKXF_INIT registration carries the exit property "ApiExit".
  static char exitProperty[] = "ApiExit";
  ZKXEPO initOptions = ZKXEPO_DEFAULT;
  initOptions.ExitProperties.VSPtr = exitProperty;
  initOptions.ExitProperties.VSLength = (ZKLONG)strlen(exitProperty);

  for (const RegistrationRow &row : kRegistrationTable) {
    if (!ConditionHolds(row.Condition, cb, axp)) {
      continue;
    }
    PZKXEPO options = row.Function == ZKXF_INIT ? &initOptions : nullptr;
    RegisterApiEntry(cb, axp, row.ExitReason, row.Function, row.EntryPoint, options, pCompCode,
                     pReason);
    if (row.Condition != kTransactionCalls && *pReason != 0) {
      return -1;
    }
  }
  return 0;
}
