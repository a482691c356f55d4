#include "exit_call.h"

#include <atomic>
#include <cstring>

#include "log.h"
#include "names.h"

namespace zkqm {
namespace {

// Off only for benchmarks: the copies and comparisons cost more than the exit.
bool gParameterCheck = true;

std::atomic<int> errorCount{0};

// The fields of ZKAXP that belong to the exit: everything else must come
// back as it was sent.
const std::vector<std::string> kExitOwnedAxpFields = {
    "ExitResponse", "ExitResponse2", "Feedback", "ExitUserArea", "ExitPDArea", "ExitChainAreaPtr"};

void fillParameters(const ExitInstance &exit, ZKLONG exitReason, ZKLONG exitFunction, ZKAXP &axp) {
  const Connection &connection = *exit.connection;
  const ExitDefinition &def = exit.module->definition;
  std::memset(&axp, 0, sizeof axp);
  std::memcpy(axp.StrucId, ZKAXP_STRUC_ID, 4);
  axp.Version = connection.identity.axpVersion;
  axp.ExitId = ZKXT_API_EXIT;
  axp.ExitReason = exitReason;
  axp.ExitResponse = ZKXCC_OK;
  axp.ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
  axp.Feedback = 0;
  axp.APICallerType = connection.identity.callerType;
  std::memcpy(axp.ExitUserArea, exit.userArea, sizeof axp.ExitUserArea);
  setBlankPadded(axp.ExitData, sizeof axp.ExitData, def.data);
  setBlankPadded(axp.ExitInfoName, sizeof axp.ExitInfoName, def.name);
  std::memcpy(axp.ExitPDArea, exit.pdArea, sizeof axp.ExitPDArea);
  setBlankPadded(axp.QMgrName, sizeof axp.QMgrName, connection.qmgrName);
  axp.ExitChainAreaPtr = exit.chainArea;
  axp.Hconfig = exit.hconfig;
  axp.Function = exitFunction;
  axp.ExitMsgHandle = 0;
}

// Copies the exit's own areas back into the queue manager's records.
void takeBack(ExitInstance &exit, const ZKAXP &axp) {
  std::memcpy(exit.userArea, axp.ExitUserArea, sizeof exit.userArea);
  std::memcpy(exit.pdArea, axp.ExitPDArea, sizeof exit.pdArea);
  exit.chainArea = axp.ExitChainAreaPtr;
}

void addExitParameters(ParamSnapshot &snapshot, const ZKAXP &axp, const ZKAXC &axc) {
  snapshot.addStruct("ZKAXP", &axp, structNamed("ZKAXP"), sizeof axp, kExitOwnedAxpFields);
  snapshot.addStruct("ZKAXC", &axc, structNamed("ZKAXC"), sizeof axc);
}

void report(const Connection &c, const std::string &where, const ExitInstance &exit,
            const std::string &entry, const std::vector<std::string> &changes) {
  for (const std::string &change : changes) {
    ++errorCount;
    runLog().always("%s %s %s: PARAMETER CHANGED by %s: %s", c.name.c_str(), where.c_str(),
                    exit.name().c_str(), entry.c_str(), change.c_str());
    reportError("parameter check: %s %s: exit %s (%s) changed %s", c.name.c_str(), where.c_str(),
                exit.name().c_str(), entry.c_str(), change.c_str());
  }
}

// Calls one exit's function for `exitReason`, if it registered one. False
// when it did not.
bool callOne(Connection &c, ExitInstance &exit, ZKLONG exitReason, ApiCall &call,
             ExitAnswer &answer) {
  const Registration *reg = exit.functions.find(exitReason, call.function);
  if (reg == nullptr) {
    return false;
  }
  ZKAXP axp;
  fillParameters(exit, exitReason, call.function, axp);
  ZKAXC axc;
  c.fillContext(axc);
  std::string entry;
  if (!Log::quiet()) {
    entry = entryPointName(reg->entry);
    runLog().line("%s   %s %s: %s", c.name.c_str(), exitReasonName(exitReason).c_str(),
                  exit.name().c_str(), entry.c_str());
  }
  ParamSnapshot snapshot;
  if (gParameterCheck) {
    addExitParameters(snapshot, axp, axc);
    if (call.describe) {
      call.describe(snapshot);
    }
  }
  call.invoke(reg->entry, &axp, &axc);
  takeBack(exit, axp);
  answer.response = axp.ExitResponse;
  answer.response2 = axp.ExitResponse2;
  if (gParameterCheck) {
    answer.violations = snapshot.differences();
  }
  if (!answer.violations.empty()) {
    if (entry.empty()) {
      entry = entryPointName(reg->entry);
    }
    report(c, call.name + " " + exitReasonName(exitReason), exit, entry, answer.violations);
  }
  return true;
}

void logResponse(const Connection &c, const ApiCall &call, const ExitInstance &exit,
                 const char *phase, const ExitAnswer &answer) {
  if (answer.response != ZKXCC_OK) {
    runLog().line("%s   %s %s: response %s", c.name.c_str(), phase, exit.name().c_str(),
                  exitResponseName(answer.response).c_str());
  }
  if (answer.response2 != ZKXR2_DEFAULT_CONTINUATION) {
    runLog().line("%s   %s %s: %s", c.name.c_str(), phase, exit.name().c_str(),
                  exitResponse2Name(answer.response2).c_str());
  }
  (void)call;
}

// Calls an exit's function for `exitReason` unless the exit is suppressed or
// registered none, and logs its answer. False when it was not called.
bool callAndLog(Connection &c, ExitInstance &exit, ZKLONG exitReason, const char *phase,
                ApiCall &call, ExitAnswer &answer) {
  if (exit.suppressed || !callOne(c, exit, exitReason, call, answer)) {
    return false;
  }
  logResponse(c, call, exit, phase, answer);
  return true;
}

} // namespace

ApiCall makeApiCall(ZKLONG function, const std::string &name, ZKLONG &compCode, ZKLONG &reason) {
  ApiCall call;
  call.function = function;
  call.name = name;
  call.compCode = &compCode;
  call.reason = &reason;
  return call;
}

void setParameterCheck(bool on) {
  gParameterCheck = on;
}

int parameterErrors() {
  return errorCount.load();
}

ExitAnswer callConnectionFunction(ExitInstance &exit, ZKLONG exitFunction, PZK_INIT_EXIT function,
                                  ZKLONG &compCode, ZKLONG &reason) {
  Connection &connection = *exit.connection;
  ZKAXP axp;
  fillParameters(exit, ZKXR_CONNECTION, exitFunction, axp);
  ZKAXC axc;
  connection.fillContext(axc);
  ParamSnapshot snapshot;
  addExitParameters(snapshot, axp, axc);
  snapshot.addLong("CompCode", &compCode);
  snapshot.addLong("Reason", &reason);

  function(&axp, &axc, &compCode, &reason);

  takeBack(exit, axp);
  ExitAnswer answer;
  answer.response = axp.ExitResponse;
  answer.response2 = axp.ExitResponse2;
  answer.violations = snapshot.differences();
  if (!answer.violations.empty()) {
    report(connection, functionName(exitFunction), exit,
           exitFunction == ZKXF_INIT ? exit.module->definition.function : "TERM function",
           answer.violations);
  }
  return answer;
}

const char *chainAreaChange(ZKPTR before, ZKPTR after) {
  if (before == nullptr) {
    return after == nullptr ? "empty" : "set";
  }
  if (after == nullptr) {
    return "cleared";
  }
  return before == after ? "kept" : "changed";
}

BeforeOutcome runBefore(Connection &c, ApiCall &call) {
  BeforeOutcome outcome;
  for (std::size_t i = 0; i < c.exits.size(); ++i) {
    ExitInstance &exit = *c.exits[i];
    outcome.reached = i + 1;
    ExitAnswer answer;
    if (!callAndLog(c, exit, ZKXR_BEFORE, "BEFORE", call, answer)) {
      continue;
    }
    if (answer.response == ZKXCC_SUPPRESS_EXIT) {
      exit.functions.clear();
      exit.suppressed = true;
    } else if (answer.response == ZKXCC_SKIP_FUNCTION) {
      // The exit has done the call's work itself: CompCode and Reason are
      // what it left.
      outcome.perform = false;
      return outcome;
    } else if (answer.response == ZKXCC_SUPPRESS_FUNCTION) {
      outcome.perform = false;
      if (call.compCode != nullptr) {
        *call.compCode = ZKCC_FAILED;
        *call.reason = ZKRC_SUPPRESSED_BY_EXIT;
      }
      return outcome;
    }
    if (answer.response2 == ZKXR2_SUPPRESS_CHAIN) {
      return outcome;
    }
  }
  return outcome;
}

void runAfter(Connection &c, ApiCall &call, const BeforeOutcome &before) {
  for (std::size_t i = before.reached; i-- > 0;) {
    if (i >= c.exits.size()) {
      continue;
    }
    ExitInstance &exit = *c.exits[i];
    ExitAnswer answer;
    if (!callAndLog(c, exit, ZKXR_AFTER, "AFTER", call, answer)) {
      continue;
    }
    if (answer.response == ZKXCC_SUPPRESS_EXIT) {
      exit.functions.clear();
      exit.suppressed = true;
    }
    if (answer.response2 == ZKXR2_SUPPRESS_CHAIN) {
      return;
    }
  }
}

void runExitPoint(Connection &c, ApiCall &call) {
  for (auto &exit : c.exits) {
    ExitAnswer answer;
    if (!callAndLog(c, *exit, ZKXR_BEFORE, "BEFORE", call, answer)) {
      continue;
    }
    if (answer.response2 == ZKXR2_SUPPRESS_CHAIN) {
      return;
    }
  }
}

} // namespace zkqm
