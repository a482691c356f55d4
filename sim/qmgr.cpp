#include "qmgr.h"

#include <cstring>
#include <unistd.h>

#include "constants.h"
#include "describe.h"
#include "hconfig.h"
#include "names.h"
#include "reasons.h"

namespace zkqm {

void QueueManager::setName(const std::string &name) {
  name_ = name;
  engine_.setName(name);
}

Connection &QueueManager::define(const std::string &name) {
  std::lock_guard<std::mutex> lock(mutex_);
  for (auto &c : connections_) {
    if (c->name == name) {
      return *c;
    }
  }
  connections_.push_back(std::make_unique<Connection>());
  connections_.back()->name = name;
  return *connections_.back();
}

Connection *QueueManager::find(const std::string &name) {
  std::lock_guard<std::mutex> lock(mutex_);
  for (auto &c : connections_) {
    if (c->name == name) {
      return c.get();
    }
  }
  return nullptr;
}

std::vector<Connection *> QueueManager::connections() {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Connection *> out;
  for (auto &c : connections_) {
    out.push_back(c.get());
  }
  return out;
}

void QueueManager::perform(Connection &c, ApiCall &call, const std::function<void()> &execute) {
  BeforeOutcome before = runBefore(c, call);
  // A call armed by 'during' comes inside the next ZKI call, as the queue
  // manager's own calls to the transaction manager do (dynamic
  // registration on the first piece of work under syncpoint).
  if (c.insideNextCall && call.function < ZKXF_XACLOSE) {
    std::function<void()> inside = std::move(c.insideNextCall);
    c.insideNextCall = nullptr;
    inside();
  }
  if (before.perform) {
    execute();
  } else {
    log_.line("%s   %s not performed: an exit answered for it", c.name.c_str(), call.name.c_str());
  }
  runAfter(c, call, before);
}

bool QueueManager::initExits(Connection &c, const ExitInstance *&failedBy) {
  for (const ExitModule &module : chain_.modules()) {
    auto exit = std::make_unique<ExitInstance>();
    exit->module = &module;
    exit->connection = &c;
    issueHconfig(*exit);
    c.exits.push_back(std::move(exit));
  }
  failedBy = nullptr;
  for (auto &exit : c.exits) {
    const ExitModule &module = *exit->module;
    log_.line("%s INIT %s: calling %s", c.name.c_str(), exit->name().c_str(),
              module.definition.function.c_str());
    ZKLONG compCode = ZKCC_OK;
    ZKLONG reason = 0;
    ZKPTR chainBefore = exit->chainArea;
    ExitAnswer answer = callConnectionFunction(*exit, ZKXF_INIT, module.entry, compCode, reason);
    exit->initCalled = true;
    log_.line("%s INIT %s: response %s, %s; chain area %s", c.name.c_str(), exit->name().c_str(),
              exitResponseName(answer.response).c_str(),
              exitResponse2Name(answer.response2).c_str(),
              chainAreaChange(chainBefore, exit->chainArea));
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
  return failedBy == nullptr;
}

bool QueueManager::connect(Connection &c, ZKLONG function, PZKCNO cno,
                           const std::string &qmgrName) {
  const char *call = function == ZKXF_CONNX ? "ZKCONNX" : "ZKCONN";
  bool again = c.state == ConnectionState::Connected;
  if (!again) {
    c.qmgrName = name_;
    c.counts = RegistrationCounts();
    releaseExits(c);
  }
  log_.line("%s %s to %s%s", c.name.c_str(), call,
            qmgrName.empty() ? "the default queue manager" : qmgrName.c_str(),
            describeConnectOptions(function == ZKXF_CONNX ? cno : nullptr).c_str());

  if (!again) {
    const ExitInstance *failedBy = nullptr;
    if (!initExits(c, failedBy)) {
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
  }

  // The call itself, as the exits see it.
  char name[ZK_Q_MGR_NAME_LENGTH];
  setBlankPadded(name, sizeof name, qmgrName);
  ZKCNO builtCno = ZKCNO_DEFAULT; // ZKCONN: the connect options the queue manager builds
  PZKCNO pCno = function == ZKXF_CONNX ? cno : &builtCno;
  ZKHCONN hconn = again ? c.hconn : ZKHC_UNUSABLE_HCONN;
  PZKHCONN pHconn = &hconn;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  ApiCall api = makeApiCall(function, call, compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_CONNX_EXIT>(entry)(axp, axc, name, &pCno, &pHconn, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addBytes("QMgrName", name, sizeof name);
    s.addPointer("ZKCNO address", reinterpret_cast<void *const *>(&pCno));
    describeCno(s, pCno);
    s.addPointer("Hconn address", reinterpret_cast<void *const *>(&pHconn));
    s.addLong("Hconn", pHconn);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  ConnIdentity identity;
  identity.user = c.identity.userId;
  identity.applName = c.identity.applName;
  identity.applType = c.identity.applType;
  perform(c, api, [&]() {
    if (again) {
      compCode = ZKCC_WARNING;
      reason = ZKRC_ALREADY_CONNECTED;
      *pHconn = c.hconn;
      return;
    }
    engine_.conn(name, pCno, identity, pHconn, &compCode, &reason);
  });
  c.lastCall = call;
  c.lastCompCode = compCode;
  c.lastReason = reason;
  if (pCno != nullptr && function == ZKXF_CONNX) {
    c.keep("cno", pCno, sizeof(ZKCNO));
  }
  if (again) {
    log_.line("%s already connected: CompCode %d Reason %s, Hconn %d", c.name.c_str(), compCode,
              reasonWithName(reason).c_str(), *pHconn);
    return compCode != ZKCC_FAILED;
  }
  if (compCode == ZKCC_FAILED) {
    c.state = ConnectionState::ConnectFailed;
    log_.line("%s connect failed: CompCode %d Reason %s", c.name.c_str(), compCode,
              reasonWithName(reason).c_str());
    terminateExits(c);
    releaseExits(c);
    return false;
  }
  c.state = ConnectionState::Connected;
  c.hconn = *pHconn;
  c.owner = std::this_thread::get_id();
  c.ownerPid = static_cast<int>(getpid());
  c.handles.clear();
  std::string id;
  if (function == ZKXF_CONNX && cno != nullptr && cno->Version >= ZKCNO_VERSION_5) {
    id = ", ConnectionId " + hexText(cno->ConnectionId, sizeof cno->ConnectionId);
  }
  if (compCode != ZKCC_OK) {
    log_.line("%s connected: Hconn %d%s; CompCode %d Reason %s", c.name.c_str(), c.hconn,
              id.c_str(), compCode, reasonWithName(reason).c_str());
  } else {
    log_.line("%s connected: Hconn %d%s", c.name.c_str(), c.hconn, id.c_str());
  }
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
  ZKHCONN hconn = c.hconn;
  PZKHCONN pHconn = &hconn;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  ApiCall api = makeApiCall(ZKXF_DISC, "ZKDISC", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_DISC_EXIT>(entry)(axp, axc, &pHconn, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addPointer("Hconn address", reinterpret_cast<void *const *>(&pHconn));
    s.addLong("Hconn", pHconn);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  perform(c, api, [&]() { engine_.disc(pHconn, &compCode, &reason); });
  if (compCode != ZKCC_OK) {
    log_.line("%s ZKDISC: CompCode %d Reason %s", c.name.c_str(), compCode,
              reasonWithName(reason).c_str());
  }
  terminateExits(c);
  releaseExits(c);
  c.state = ConnectionState::Disconnected;
  c.hconn = 0;
  c.handles.clear();
  c.lastCall = "ZKDISC";
  c.lastCompCode = compCode;
  c.lastReason = reason;
  log_.line("%s disconnected", c.name.c_str());
  return true;
}

void QueueManager::disconnectAll() {
  for (Connection *c : connections()) {
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
    ZKPTR chainBefore = exit->chainArea;
    ExitAnswer answer = callConnectionFunction(
        *exit, ZKXF_TERM, reinterpret_cast<PZK_TERM_EXIT>(term->entry), compCode, reason);
    log_.line("%s TERM %s: response %s, %s; chain area %s", c.name.c_str(), exit->name().c_str(),
              exitResponseName(answer.response).c_str(),
              exitResponse2Name(answer.response2).c_str(),
              chainAreaChange(chainBefore, exit->chainArea));
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
