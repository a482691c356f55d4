// ZKXEP, the registration call that the exits make. It is exported from the
// executable so that a module loaded with dlopen binds to it.
#include <string>

#include "hconfig.h"
#include "log.h"
#include "names.h"
#include "reasons.h"

using namespace zkqm;

namespace {

std::string codesText(ZKLONG compCode, ZKLONG reason, const char *why) {
  std::string text =
      "FAILED CompCode " + std::to_string(compCode) + " Reason " + std::to_string(reason);
  return why[0] != '\0' ? text + " (" + why + ")" : text;
}

} // namespace

extern "C" __attribute__((visibility("default"))) void ZKXEP(ZKHCONFIG Hconfig, ZKLONG ExitReason,
                                                             ZKLONG Function, PZKFUNC pEntryPoint,
                                                             PZKXEPO pExitOpts, PZKLONG pCompCode,
                                                             PZKLONG pReason) {
  Log &log = runLog();
  if (pCompCode == nullptr || pReason == nullptr) {
    log.line("ZKXEP called without CompCode or Reason: %s %s ignored",
             exitReasonName(ExitReason).c_str(), functionName(Function).c_str());
    return;
  }
  ExitInstance *exit = findHconfig(Hconfig);
  if (exit == nullptr) {
    *pCompCode = ZKCC_FAILED;
    *pReason = kReasonHconfigError;
    log.line("ZKXEP with an unknown configuration handle: %s %s -> %s  %s",
             exitReasonName(ExitReason).c_str(), functionName(Function).c_str(),
             entryPointName(pEntryPoint).c_str(),
             codesText(ZKCC_FAILED, kReasonHconfigError, reasonText(kReasonHconfigError)).c_str());
    return;
  }

  Connection &connection = *exit->connection;
  int number = ++connection.counts.calls;
  std::string target = pEntryPoint != nullptr ? entryPointName(pEntryPoint) : "(deregister)";
  std::string options = pExitOpts != nullptr ? describeExitOptions(pExitOpts) : "";
  std::string outcome;

  auto injected = connection.failRegistration.find(number);
  if (injected != connection.failRegistration.end()) {
    *pCompCode = ZKCC_FAILED;
    *pReason = injected->second;
    outcome = codesText(ZKCC_FAILED, injected->second, "injected");
  } else if (!isSupportedRegistration(ExitReason, Function)) {
    *pCompCode = ZKCC_FAILED;
    *pReason = kReasonBadRegistration;
    outcome = codesText(ZKCC_FAILED, kReasonBadRegistration, "no such exit point");
  } else {
    *pCompCode = ZKCC_OK;
    *pReason = 0;
    if (pEntryPoint == nullptr) {
      ++connection.counts.deregistrations;
      if (!exit->functions.remove(ExitReason, Function)) {
        outcome = "(nothing was registered)";
      }
    } else {
      Registration registration;
      registration.number = number;
      registration.exitReason = ExitReason;
      registration.function = Function;
      registration.entry = pEntryPoint;
      registration.options = options;
      exit->functions.set(registration);
    }
  }
  if (*pCompCode != ZKCC_OK) {
    ++connection.counts.failed;
  }

  std::string line =
      connection.name + " register " + (number < 10 ? " " : "") + std::to_string(number) + ": ";
  if (connection.severalExits()) {
    line += "[" + exit->name() + "] ";
  }
  line += exitReasonName(ExitReason) + " " + functionName(Function) + " -> " + target;
  if (!options.empty()) {
    line += "  " + options;
  }
  if (!outcome.empty()) {
    line += "  " + outcome;
  }
  log.line("%s", line.c_str());
}
