// The exit functions registered at connection time, in registration order.
#include <string.h>

#include "exit/startup.h"
#include "handlers/handlers.h"

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
#define PAIR(function, before, after, condition)                                                   \
  {ZKXR_BEFORE, function, ENTRY(before), condition}, {                                             \
    ZKXR_AFTER, function, ENTRY(after), condition                                                  \
  }

const RegistrationRow kRegistrationTable[] = {
    {ZKXR_CONNECTION, ZKXF_INIT, ENTRY(Initialize), kExitParmsV2},
    {ZKXR_CONNECTION, ZKXF_TERM, ENTRY(Terminate), kAlways},
    PAIR(ZKXF_CONN, ConnBefore, ConnAfter, kAlways),
    PAIR(ZKXF_CONNX, ConnxBefore, ConnxAfter, kAlways),
    PAIR(ZKXF_DISC, DiscBefore, DiscAfter, kAlways),
    PAIR(ZKXF_BEGIN, BeginBefore, BeginAfter, kAlways),
    PAIR(ZKXF_CMIT, CmitBefore, CmitAfter, kAlways),
    PAIR(ZKXF_BACK, BackBefore, BackAfter, kAlways),
    PAIR(ZKXF_OPEN, OpenBefore, OpenAfter, kAlways),
    PAIR(ZKXF_CLOSE, CloseBefore, CloseAfter, kAlways),
    PAIR(ZKXF_PUT1, Put1Before, Put1After, kAlways),
    PAIR(ZKXF_PUT, PutBefore, PutAfter, kAlways),
    {ZKXR_BEFORE, ZKXF_GET, ENTRY(GetBefore), kAlways},
    {ZKXR_BEFORE, ZKXF_DATA_CONV_ON_GET, ENTRY(GetBefore), kAlways},
    {ZKXR_AFTER, ZKXF_GET, ENTRY(GetAfter), kAlways},
    PAIR(ZKXF_INQ, InqBefore, InqAfter, kAlways),
    PAIR(ZKXF_SET, SetBefore, SetAfter, kAlways),
    PAIR(ZKXF_STAT, StatBefore, StatAfter, kApiLevel700),
    PAIR(ZKXF_SUB, SubBefore, SubAfter, kApiLevel700),
    PAIR(ZKXF_SUBRQ, SubrqBefore, SubrqAfter, kApiLevel700),
    PAIR(ZKXF_CTL, CtlBefore, CtlAfter, kApiLevel700),
    PAIR(ZKXF_CB, CbBefore, CbAfter, kApiLevel700),
    PAIR(ZKXF_CALLBACK, CallbackBefore, CallbackAfter, kApiLevel700),
    PAIR(ZKXF_XACLOSE, XaCloseBefore, XaCloseAfter, kTransactionCalls),
    PAIR(ZKXF_XACOMMIT, XaCommitBefore, XaCommitAfter, kTransactionCalls),
    PAIR(ZKXF_XACOMPLETE, XaCompleteBefore, XaCompleteAfter, kTransactionCalls),
    PAIR(ZKXF_XAEND, XaEndBefore, XaEndAfter, kTransactionCalls),
    PAIR(ZKXF_XAFORGET, XaForgetBefore, XaForgetAfter, kTransactionCalls),
    PAIR(ZKXF_XAOPEN, XaOpenBefore, XaOpenAfter, kTransactionCalls),
    PAIR(ZKXF_XAPREPARE, XaPrepareBefore, XaPrepareAfter, kTransactionCalls),
    PAIR(ZKXF_XARECOVER, XaRecoverBefore, XaRecoverAfter, kTransactionCalls),
    PAIR(ZKXF_XAROLLBACK, XaRollbackBefore, XaRollbackAfter, kTransactionCalls),
    PAIR(ZKXF_XASTART, XaStartBefore, XaStartAfter, kTransactionCalls),
    PAIR(ZKXF_AXREG, AxRegBefore, AxRegAfter, kTransactionCalls),
    PAIR(ZKXF_AXUNREG, AxUnregBefore, AxUnregAfter, kTransactionCalls),
};

bool ConditionHolds(RegistrationCondition condition, const ExitControlBlock *cb, const ZKAXP *axp) {
  switch (condition) {
  case kAlways:
    return true;
  case kExitParmsV2:
    return axp->Version >= ZKAXP_VERSION_2;
  case kApiLevel700:
    return cb->ApiLevel == API_LEVEL_700;
  case kTransactionCalls:
    return cb->ApiLevel == API_LEVEL_700 && cb->Settings.ShowXaCalls == 1;
  }
  return false;
}

} // namespace

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
