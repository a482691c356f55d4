#include "qmgr.h"

#include "exit_call.h"
#include "hconfig.h"
#include "names.h"
#include "reasons.h"

namespace zkqm {

Connection &QueueManager::define(const std::string &name) {
  if (Connection *existing = find(name)) {
    return *existing;
  }
  connections_.push_back(std::make_unique<Connection>());
  connections_.back()->name = name;
  return *connections_.back();
}

Connection *QueueManager::find(const std::string &name) {
  for (auto &c : connections_) {
    if (c->name == name) {
      return c.get();
    }
  }
  return nullptr;
}

bool QueueManager::connect(Connection &c, ZKLONG function) {
  const char *call = function == ZKXF_CONNX ? "ZKCONNX" : "ZKCONN";
  if (c.state == ConnectionState::Connected) {
    c.lastCompCode = ZKCC_FAILED;
    c.lastReason = kReasonAlreadyConnected;
    log_.line("%s %s refused: already connected; CompCode 2 Reason %d (%s)", c.name.c_str(), call,
              kReasonAlreadyConnected, reasonText(kReasonAlreadyConnected));
    return false;
  }
  c.qmgrName = name_;
  c.counts = RegistrationCounts();
  c.chainArea = nullptr;
  releaseExits(c);
  log_.line("%s %s to %s", c.name.c_str(), call, name_.c_str());

  for (const ExitModule &module : chain_.modules()) {
    auto exit = std::make_unique<ExitInstance>();
    exit->module = &module;
    exit->connection = &c;
    issueHconfig(*exit);
    c.exits.push_back(std::move(exit));
  }

  const ExitInstance *failedBy = nullptr;
  for (auto &exit : c.exits) {
    const ExitModule &module = *exit->module;
    log_.line("%s INIT %s: calling %s", c.name.c_str(), exit->name().c_str(),
              module.definition.function.c_str());
    ZKLONG compCode = ZKCC_OK;
    ZKLONG reason = 0;
    ZKPTR chainBefore = c.chainArea;
    ExitAnswer answer = callConnectionFunction(*exit, ZKXF_INIT, module.entry, compCode, reason);
    exit->initCalled = true;
    log_.line("%s INIT %s: response %s, %s; chain area %s", c.name.c_str(), exit->name().c_str(),
              exitResponseName(answer.response).c_str(),
              exitResponse2Name(answer.response2).c_str(),
              chainAreaChange(chainBefore, c.chainArea));
    logViolations(c, "INIT", *exit, answer.violations);

    if (answer.response == ZKXCC_FAILED) {
      failedBy = exit.get();
      break;
    }
    if (answer.response == ZKXCC_SUPPRESS_EXIT) {
      // The exit is not called again on this connection, not even at TERM.
      exit->functions.clear();
      exit->suppressed = true;
      log_.line("%s INIT %s: exit suppressed for this connection", c.name.c_str(),
                exit->name().c_str());
    } else if (answer.response != ZKXCC_OK) {
      log_.line("%s INIT %s: response %s has no meaning at INIT, taken as OK", c.name.c_str(),
                exit->name().c_str(), exitResponseName(answer.response).c_str());
    }
    if (answer.response2 == ZKXR2_SUPPRESS_CHAIN && exit != c.exits.back()) {
      log_.line("%s INIT %s: the rest of the chain is not called", c.name.c_str(),
                exit->name().c_str());
      break;
    }
  }
  logRegistrationSummary(c);

  if (failedBy != nullptr) {
    c.state = ConnectionState::ConnectFailed;
    c.lastCompCode = ZKCC_FAILED;
    c.lastReason = kReasonApiExitFailed;
    log_.line("%s connect failed: exit %s answered FAILED; CompCode 2 Reason %d (%s)",
              c.name.c_str(), failedBy->name().c_str(), kReasonApiExitFailed,
              reasonText(kReasonApiExitFailed));
    // Exits that registered a TERM function get it, so that they can free
    // what they allocated at INIT.
    terminateExits(c);
    releaseExits(c);
    return false;
  }
  c.state = ConnectionState::Connected;
  c.hconn = nextHconn_++;
  c.lastCompCode = ZKCC_OK;
  c.lastReason = 0;
  log_.line("%s connected: Hconn %d", c.name.c_str(), c.hconn);
  return true;
}

bool QueueManager::disconnect(Connection &c) {
  if (c.state != ConnectionState::Connected) {
    c.lastCompCode = ZKCC_FAILED;
    c.lastReason = kReasonNotConnected;
    log_.line("%s ZKDISC refused: not connected; CompCode 2 Reason %d (%s)", c.name.c_str(),
              kReasonNotConnected, reasonText(kReasonNotConnected));
    return false;
  }
  log_.line("%s ZKDISC", c.name.c_str());
  terminateExits(c);
  releaseExits(c);
  c.state = ConnectionState::Disconnected;
  c.hconn = 0;
  c.lastCompCode = ZKCC_OK;
  c.lastReason = 0;
  log_.line("%s disconnected", c.name.c_str());
  return true;
}

void QueueManager::disconnectAll() {
  for (auto &c : connections_) {
    if (c->state == ConnectionState::Connected) {
      log_.line("%s still connected at the end of the scenario", c->name.c_str());
      disconnect(*c);
    }
  }
}

void QueueManager::terminateExits(Connection &c) {
  for (auto &exit : c.exits) {
    if (!exit->initCalled || exit->suppressed) {
      continue;
    }
    const Registration *term = exit->functions.find(ZKXR_CONNECTION, ZKXF_TERM);
    if (term == nullptr) {
      log_.line("%s TERM %s: no TERM function registered", c.name.c_str(), exit->name().c_str());
      continue;
    }
    log_.line("%s TERM %s: calling %s", c.name.c_str(), exit->name().c_str(),
              entryPointName(term->entry).c_str());
    ZKLONG compCode = ZKCC_OK;
    ZKLONG reason = 0;
    ZKPTR chainBefore = c.chainArea;
    ExitAnswer answer = callConnectionFunction(
        *exit, ZKXF_TERM, reinterpret_cast<PZK_TERM_EXIT>(term->entry), compCode, reason);
    log_.line("%s TERM %s: response %s, %s; chain area %s", c.name.c_str(), exit->name().c_str(),
              exitResponseName(answer.response).c_str(),
              exitResponse2Name(answer.response2).c_str(),
              chainAreaChange(chainBefore, c.chainArea));
    logViolations(c, "TERM", *exit, answer.violations);
  }
}

void QueueManager::releaseExits(Connection &c) {
  // Only the queue manager's own records go; whatever an exit allocated is
  // the exit's to free.
  for (auto &exit : c.exits) {
    withdrawHconfig(*exit);
  }
  c.exits.clear();
}

void QueueManager::logViolations(const Connection &c, const char *point, const ExitInstance &exit,
                                 const std::vector<std::string> &violations) {
  for (const std::string &field : violations) {
    log_.line("%s %s %s: exit changed %s, which belongs to the queue manager", c.name.c_str(),
              point, exit.name().c_str(), field.c_str());
  }
}

void QueueManager::logRegistrationSummary(const Connection &c) {
  const RegistrationCounts &n = c.counts;
  if (n.failed == 0 && n.deregistrations == 0) {
    log_.line("%s registrations: %d", c.name.c_str(), n.calls);
    return;
  }
  log_.line("%s registrations: %d (%d failed, %d deregistrations, %zu functions in force)",
            c.name.c_str(), n.calls, n.failed, n.deregistrations, c.functionsInForce());
}

void QueueManager::showRegistrations(const Connection &c) {
  if (c.state != ConnectionState::Connected) {
    log_.line("%s functions in force: none (%s)", c.name.c_str(), stateName(c.state));
    return;
  }
  log_.line("%s functions in force: %zu", c.name.c_str(), c.functionsInForce());
  for (const auto &exit : c.exits) {
    for (const Registration &r : exit->functions.entries()) {
      std::string line =
          c.name + "   " + (r.number < 10 ? " " : "") + std::to_string(r.number) + ": ";
      if (c.severalExits()) {
        line += "[" + exit->name() + "] ";
      }
      line += exitReasonName(r.exitReason) + " " + functionName(r.function) + " -> " +
              entryPointName(r.entry);
      if (!r.options.empty()) {
        line += "  " + r.options;
      }
      log_.line("%s", line.c_str());
    }
  }
}

void QueueManager::showConnection(const Connection &c) {
  const ApplicationIdentity &id = c.identity;
  log_.line("%s connection: appl '%s' type %d user '%s' axp v%d env %d caller %d thread %d "
            "conname '%s' channel '%s'",
            c.name.c_str(), id.applName.c_str(), id.applType, id.userId.c_str(), id.axpVersion,
            id.environment, id.callerType, id.threadId, id.connectionName.c_str(),
            id.channelName.c_str());
  log_.line("%s state: %s, Hconn %d, last CompCode %d Reason %d", c.name.c_str(),
            stateName(c.state), c.hconn, c.lastCompCode, c.lastReason);
}

void QueueManager::showExits() {
  if (chain_.empty()) {
    log_.line("exits: none");
    return;
  }
  int n = 0;
  for (const ExitModule &m : chain_.modules()) {
    log_.line("exit %d: %s, %s in %s, sequence %d, data '%s'", ++n, m.definition.name.c_str(),
              m.definition.function.c_str(), m.moduleFileName.c_str(), m.definition.sequence,
              m.definition.data.c_str());
  }
}

} // namespace zkqm
