#include "fuzz/connection_driver.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "fields.h"
#include "fuzz/fuzz_support.h"
#include "tests/harness_text.h"

namespace {

ConnectionDriver *gCurrent = nullptr;

// The fields of ZKAXP that belong to the exit: everything else must come
// back as it was sent.
const std::vector<std::string> kExitOwnedAxpFields = {
    "ExitResponse", "ExitResponse2", "Feedback", "ExitUserArea", "ExitPDArea", "ExitChainAreaPtr"};

} // namespace

extern "C" void ZKXEP(ZKHCONFIG hconfig, ZKLONG exitReason, ZKLONG function, PZKFUNC entry,
                      PZKXEPO options, PZKLONG compCode, PZKLONG reason) {
  FUZZ_CHECK(gCurrent != nullptr, "ZKXEP outside a connection");
  gCurrent->Register(hconfig, exitReason, function, entry, options, compCode, reason);
}

ConnectionDriver::ConnectionDriver(const std::string &exitData, const std::string &applName,
                                   ZKLONG axpVersion)
    : exitData_(exitData), applName_(applName), axpVersion_(axpVersion) {
  FUZZ_CHECK(exitData.size() <= 32);
  memset(userArea_, 0, sizeof userArea_);
  memset(pdArea_, 0, sizeof pdArea_);
  gCurrent = this;
}

ConnectionDriver::~ConnectionDriver() {
  gCurrent = nullptr;
}

void ConnectionDriver::Register(ZKHCONFIG hconfig, ZKLONG exitReason, ZKLONG function,
                                PZKFUNC entry, PZKXEPO options, PZKLONG compCode, PZKLONG reason) {
  FUZZ_CHECK(compCode != nullptr && reason != nullptr, "ZKXEP without CompCode or Reason");
  FUZZ_CHECK(hconfig == (ZKHCONFIG)&hconfig_, "ZKXEP with a configuration handle not given");
  FUZZ_CHECK(exitReason == ZKXR_BEFORE || exitReason == ZKXR_AFTER || exitReason == ZKXR_CONNECTION,
             "registration for exit reason %d", exitReason);
  if (options != nullptr) {
    FUZZ_CHECK(memcmp(options->StrucId, ZKXEPO_STRUC_ID, 4) == 0, "ZKXEPO without its identifier");
    const ZKCHARV &p = options->ExitProperties;
    if (p.VSPtr != nullptr && p.VSLength > 0) {
      // Read every byte the exit says it gave.
      std::string properties((const char *)p.VSPtr, (size_t)p.VSLength);
      (void)properties;
    }
  }
  *compCode = ZKCC_OK;
  *reason = 0;
  for (size_t i = 0; i < registrations_.size(); i++) {
    if (registrations_[i].ExitReason == exitReason && registrations_[i].Function == function) {
      if (entry == nullptr) {
        registrations_.erase(registrations_.begin() + (long)i);
      } else {
        registrations_[i].Entry = entry;
      }
      return;
    }
  }
  if (entry != nullptr) {
    registrations_.push_back({exitReason, function, entry});
  }
}

void ConnectionDriver::Fill(ZKAXP &axp, ZKLONG exitReason, ZKLONG function) const {
  memset(&axp, 0, sizeof axp);
  memcpy(axp.StrucId, ZKAXP_STRUC_ID, 4);
  axp.Version = axpVersion_;
  axp.ExitId = ZKXT_API_EXIT;
  axp.ExitReason = exitReason;
  axp.ExitResponse = ZKXCC_OK;
  axp.ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
  axp.APICallerType = ZKXACT_EXTERNAL;
  memcpy(axp.ExitUserArea, userArea_, sizeof axp.ExitUserArea);
  SetBlankPadded(axp.ExitData, sizeof axp.ExitData, exitData_);
  SetBlankPadded(axp.ExitInfoName, sizeof axp.ExitInfoName, "wz");
  memcpy(axp.ExitPDArea, pdArea_, sizeof axp.ExitPDArea);
  SetBlankPadded(axp.QMgrName, sizeof axp.QMgrName, "ZKQM1");
  axp.ExitChainAreaPtr = chainArea_;
  axp.Hconfig = (ZKHCONFIG)&hconfig_;
  axp.Function = function;
}

void ConnectionDriver::FillContext(ZKAXC &axc) const {
  memset(&axc, 0, sizeof axc);
  memcpy(axc.StrucId, ZKAXC_STRUC_ID, 4);
  axc.Version = ZKAXC_VERSION_2;
  axc.Environment = ZKXE_OTHER;
  SetBlankPadded(axc.UserId, sizeof axc.UserId, "alice");
  SetBlankPadded(axc.ConnectionName, sizeof axc.ConnectionName, "");
  SetBlankPadded(axc.ApplName, sizeof axc.ApplName, applName_);
  axc.ApplType = ZKAT_UNIX;
  axc.ProcessId = (ZKLONG)getpid();
  axc.ThreadId = 7;
  SetBlankPadded(axc.ChannelName, sizeof axc.ChannelName, "");
}

void ConnectionDriver::TakeBack(const ZKAXP &axp) {
  memcpy(userArea_, axp.ExitUserArea, sizeof userArea_);
  memcpy(pdArea_, axp.ExitPDArea, sizeof pdArea_);
  chainArea_ = axp.ExitChainAreaPtr;
}

void ConnectionDriver::Check(const zkqm::ParamSnapshot &snapshot, const char *what) const {
  std::vector<std::string> changes = snapshot.differences();
  for (const std::string &change : changes) {
    fprintf(stderr, "%s: the exit changed %s\n", what, change.c_str());
  }
  FUZZ_CHECK(changes.empty(), "%s: the exit changed %zu parameter(s)", what, changes.size());
}

ZKLONG ConnectionDriver::CallForConnection(ZKLONG function, PZK_INIT_EXIT entry, const char *what) {
  ZKAXP axp;
  ZKAXC axc;
  Fill(axp, ZKXR_CONNECTION, function);
  FillContext(axc);
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  zkqm::ParamSnapshot snapshot;
  snapshot.addStruct("ZKAXP", &axp, zkqm::structNamed("ZKAXP"), sizeof axp, kExitOwnedAxpFields);
  snapshot.addStruct("ZKAXC", &axc, zkqm::structNamed("ZKAXC"), sizeof axc);
  snapshot.addLong("CompCode", &compCode);
  snapshot.addLong("Reason", &reason);
  entry(&axp, &axc, &compCode, &reason);
  Check(snapshot, what);
  TakeBack(axp);
  return axp.ExitResponse;
}

ZKLONG ConnectionDriver::Start(PZK_INIT_EXIT entry) {
  ZKLONG response = CallForConnection(ZKXF_INIT, entry, "INIT");
  FUZZ_CHECK(response == ZKXCC_OK || response == ZKXCC_FAILED, "INIT answered %d", response);
  return response;
}

PZKFUNC ConnectionDriver::Find(ZKLONG exitReason, ZKLONG function) const {
  for (const DriverRegistration &r : registrations_) {
    if (r.ExitReason == exitReason && r.Function == function) {
      return r.Entry;
    }
  }
  return nullptr;
}

bool ConnectionDriver::Call(ZKLONG exitReason, ZKLONG function, const char *name,
                            const std::function<void(PZKFUNC, PZKAXP, PZKAXC)> &invoke,
                            const std::function<void(zkqm::ParamSnapshot &)> &describe) {
  PZKFUNC entry = Find(exitReason, function);
  if (entry == nullptr) {
    return false;
  }
  ZKAXP axp;
  ZKAXC axc;
  Fill(axp, exitReason, function);
  FillContext(axc);
  zkqm::ParamSnapshot snapshot;
  snapshot.addStruct("ZKAXP", &axp, zkqm::structNamed("ZKAXP"), sizeof axp, kExitOwnedAxpFields);
  snapshot.addStruct("ZKAXC", &axc, zkqm::structNamed("ZKAXC"), sizeof axc);
  describe(snapshot);
  invoke(entry, &axp, &axc);
  char what[64];
  snprintf(what, sizeof what, "%s %s", name, exitReason == ZKXR_BEFORE ? "BEFORE" : "AFTER");
  Check(snapshot, what);
  if (getenv("WZ_FUZZ_VERBOSE") != nullptr) {
    fprintf(stderr, "called %s: response %d/%d\n", what, axp.ExitResponse, axp.ExitResponse2);
  }
  TakeBack(axp);
  // The exit only watches: it never answers for the call or stops the chain.
  FUZZ_CHECK(axp.ExitResponse == ZKXCC_OK, "%s answered %d", what, axp.ExitResponse);
  FUZZ_CHECK(axp.ExitResponse2 == ZKXR2_DEFAULT_CONTINUATION ||
                 axp.ExitResponse2 == ZKXR2_CONTINUE_CHAIN,
             "%s answered %d as ExitResponse2", what, axp.ExitResponse2);
  return true;
}

bool ConnectionDriver::Terminate() {
  PZKFUNC entry = Find(ZKXR_CONNECTION, ZKXF_TERM);
  if (entry == nullptr) {
    return false;
  }
  // The terminate function has the parameter list of the entry function.
  CallForConnection(ZKXF_TERM, reinterpret_cast<PZK_INIT_EXIT>(entry), "TERM");
  return true;
}

// -- popen and pclose ----------------------------------------------------------

namespace {

// What the platform's level display prints, for the trace profile.
const char kLevelText[] = "Name:        ZK\n"
                          "Version:     9.3.0.0\n"
                          "Level:       p930-L220606\n"
                          "BuildType:   IKAP - (Production)\n"
                          "Platform:    ZK for Linux (x86 platform)\n";

std::string gCommandOutput;
std::vector<std::string> gCommands;
int gOpenStreams = 0;

} // namespace

void SetCommandOutput(const std::string &text) {
  gCommandOutput = text;
}

std::vector<std::string> TakeCommands() {
  std::vector<std::string> commands;
  commands.swap(gCommands);
  return commands;
}

int OpenCommandStreams() {
  return gOpenStreams;
}

extern "C" FILE *popen(const char *command, const char *mode) {
  FUZZ_CHECK(command != nullptr && mode != nullptr, "popen without a command or mode");
  gCommands.push_back(command);
  FILE *stream;
  if (mode[0] == 'r') {
    static std::string output;
    output = gCommandOutput.empty() ? std::string(kLevelText) : gCommandOutput;
    stream = fmemopen(&output[0], output.size(), "r");
  } else {
    stream = fopen("/dev/null", "we");
  }
  if (stream != nullptr) {
    gOpenStreams++;
  }
  return stream;
}

extern "C" int pclose(FILE *stream) {
  FUZZ_CHECK(stream != nullptr && gOpenStreams > 0, "pclose of a stream popen did not give");
  gOpenStreams--;
  fclose(stream);
  return 0;
}
