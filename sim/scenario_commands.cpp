// The scenario commands. Each row of kCommands names a command, the number of
// words it takes, its usage text, an optional check made when the file is
// read and the function that carries it out.
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "names.h"
#include "scenario.h"

namespace zkqm {
namespace {

bool toNumber(const std::string &text, long &value) {
  if (text.empty()) {
    return false;
  }
  char *end = nullptr;
  errno = 0;
  value = std::strtol(text.c_str(), &end, 10);
  return *end == '\0' && errno == 0 && value >= INT_MIN && value <= INT_MAX;
}

bool isConnectionName(const std::string &name) {
  if (name.empty() || name.size() > 32) {
    return false;
  }
  for (char ch : name) {
    bool ok = (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') ||
              ch == '_' || ch == '-' || ch == '.';
    if (!ok) {
      return false;
    }
  }
  return true;
}

bool checkConnectionName(const std::string &name, std::string &error) {
  if (!isConnectionName(name)) {
    error = "'" + name + "' is not a connection name (letters, digits, '_', '-', '.'; at most 32)";
    return false;
  }
  return true;
}

Connection *connectionOf(ScenarioContext &context, const std::string &name, std::string &error) {
  Connection *c = context.qmgr.find(name);
  if (c == nullptr) {
    error = "no connection named '" + name + "' (define it with the command 'connection')";
  }
  return c;
}

// ---- connection NAME key=value ... ------------------------------------------

// Applies one key=value word to an identity; `error` says what is wrong.
bool applyIdentityKey(const std::string &word, ApplicationIdentity &id, std::string &error) {
  std::size_t eq = word.find('=');
  if (eq == std::string::npos || eq == 0) {
    error = "expected key=value, found '" + word + "'";
    return false;
  }
  std::string key = word.substr(0, eq);
  std::string value = word.substr(eq + 1);
  auto number = [&](long low, long high, ZKLONG &field) {
    long n = 0;
    if (!toNumber(value, n) || n < low || n > high) {
      error = key + "=" + value + ": expected a number from " + std::to_string(low) + " to " +
              std::to_string(high);
      return false;
    }
    field = static_cast<ZKLONG>(n);
    return true;
  };
  auto text = [&](std::size_t width, std::string &field) {
    if (value.size() > width) {
      error = key + "=" + value + ": longer than " + std::to_string(width) + " characters";
      return false;
    }
    field = value;
    return true;
  };
  if (key == "appl") {
    if (value.empty()) {
      error = "appl= needs a name";
      return false;
    }
    id.applName = value; // longer than 28: the last 28 characters are passed
    return true;
  }
  if (key == "type") {
    return number(INT_MIN, INT_MAX, id.applType);
  }
  if (key == "user") {
    return text(12, id.userId);
  }
  if (key == "axp") {
    return number(ZKAXP_VERSION_1, ZKAXP_VERSION_2, id.axpVersion);
  }
  if (key == "env") {
    return number(INT_MIN, INT_MAX, id.environment);
  }
  if (key == "conname") {
    return text(264, id.connectionName);
  }
  if (key == "channel") {
    return text(20, id.channelName);
  }
  if (key == "caller") {
    return number(INT_MIN, INT_MAX, id.callerType);
  }
  if (key == "thread") {
    return number(1, INT_MAX, id.threadId);
  }
  error =
      "unknown key '" + key + "' (appl, type, user, axp, env, conname, channel, caller, thread)";
  return false;
}

bool checkConnection(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  ApplicationIdentity scratch;
  for (std::size_t i = 2; i < cmd.words.size(); ++i) {
    if (!applyIdentityKey(cmd.words[i], scratch, error)) {
      return false;
    }
  }
  return true;
}

bool runConnection(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection &c = context.qmgr.define(cmd.words[1]);
  if (c.state == ConnectionState::Connected) {
    error = "connection '" + c.name + "' is connected: disconnect it before changing it";
    return false;
  }
  ApplicationIdentity id;
  for (std::size_t i = 2; i < cmd.words.size(); ++i) {
    if (!applyIdentityKey(cmd.words[i], id, error)) {
      return false;
    }
  }
  c.identity = id;
  return true;
}

// ---- qmgr NAME ----------------------------------------------------------------

bool checkQmgr(const ScenarioCommand &cmd, std::string &error) {
  if (cmd.words[1].size() > 48) {
    error = "a queue manager name has at most 48 characters";
    return false;
  }
  return true;
}

bool runQmgr(ScenarioContext &context, const ScenarioCommand &cmd, std::string &) {
  context.qmgr.setName(cmd.words[1]);
  return true;
}

// ---- fail-registration CONN N REASON -----------------------------------------------

bool checkFailRegistration(const ScenarioCommand &cmd, std::string &error) {
  long n = 0;
  long reason = 0;
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  if (!toNumber(cmd.words[2], n) || n < 1) {
    error = "the registration number must be 1 or more, found '" + cmd.words[2] + "'";
    return false;
  }
  if (!toNumber(cmd.words[3], reason) || reason < 0) {
    error = "the reason must be a number, 0 to withdraw, found '" + cmd.words[3] + "'";
    return false;
  }
  return true;
}

bool runFailRegistration(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  int n = std::atoi(cmd.words[2].c_str());
  ZKLONG reason = std::atoi(cmd.words[3].c_str());
  if (reason == 0) {
    c->failRegistration.erase(n);
  } else {
    c->failRegistration[n] = reason;
  }
  return true;
}

// ---- connect / connx / disconnect CONN ------------------------------------------

bool checkOneConnection(const ScenarioCommand &cmd, std::string &error) {
  return checkConnectionName(cmd.words[1], error);
}

bool runConnect(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  ZKLONG function = cmd.words[0] == "connx" ? ZKLONG(ZKXF_CONNX) : ZKLONG(ZKXF_CONN);
  context.qmgr.connect(*c, function);
  return true;
}

bool runDisconnect(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  context.qmgr.disconnect(*c);
  return true;
}

// ---- show registrations CONN | show connection CONN | show exits --------------------------

bool checkShow(const ScenarioCommand &cmd, std::string &error) {
  const std::string &what = cmd.words[1];
  if (what == "exits") {
    if (cmd.words.size() != 2) {
      error = "usage: show exits";
      return false;
    }
    return true;
  }
  if (what == "registrations" || what == "connection") {
    if (cmd.words.size() != 3) {
      error = "usage: show " + what + " CONNECTION";
      return false;
    }
    return checkConnectionName(cmd.words[2], error);
  }
  error = "show what? (registrations CONNECTION, connection CONNECTION, exits)";
  return false;
}

bool runShow(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  if (cmd.words[1] == "exits") {
    context.qmgr.showExits();
    return true;
  }
  Connection *c = connectionOf(context, cmd.words[2], error);
  if (c == nullptr) {
    return false;
  }
  if (cmd.words[1] == "registrations") {
    context.qmgr.showRegistrations(*c);
  } else {
    context.qmgr.showConnection(*c);
  }
  return true;
}

// ---- expect CONN what value ------------------------------------------------------

bool checkExpect(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  const std::string &what = cmd.words[2];
  const std::string &value = cmd.words[3];
  if (what == "state") {
    if (value == "defined" || value == "connected" || value == "failed" ||
        value == "disconnected") {
      return true;
    }
    error = "expect ... state: defined, connected, failed or disconnected";
    return false;
  }
  if (what == "calls" || what == "functions" || what == "compcode" || what == "reason") {
    long n = 0;
    if (toNumber(value, n)) {
      return true;
    }
    error = "expect ... " + what + ": expected a number, found '" + value + "'";
    return false;
  }
  error = "expect CONNECTION what: state, calls, functions, compcode or reason";
  return false;
}

bool runExpect(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  const std::string &what = cmd.words[2];
  const std::string &wanted = cmd.words[3];
  std::string actual;
  if (what == "state") {
    actual = stateName(c->state);
  } else if (what == "calls") {
    actual = std::to_string(c->counts.calls);
  } else if (what == "functions") {
    actual = std::to_string(c->state == ConnectionState::Connected ? c->functionsInForce() : 0);
  } else if (what == "compcode") {
    actual = std::to_string(c->lastCompCode);
  } else {
    actual = std::to_string(c->lastReason);
  }
  if (actual == wanted) {
    context.log.line("%s expectation met: %s %s", c->name.c_str(), what.c_str(), wanted.c_str());
  } else {
    ++context.failedExpectations;
    context.log.line("%s EXPECTATION FAILED (line %d): %s is %s, expected %s", c->name.c_str(),
                     cmd.line, what.c_str(), actual.c_str(), wanted.c_str());
  }
  return true;
}

// ---- echo TEXT ... ---------------------------------------------------------------

bool runEcho(ScenarioContext &, const ScenarioCommand &, std::string &) {
  // The runner has already logged the line itself.
  return true;
}

} // namespace

const CommandRow kCommands[] = {
    {"qmgr", 1, 1, "qmgr NAME", checkQmgr, runQmgr},
    {"connection", 1, -1, "connection NAME [key=value ...]", checkConnection, runConnection},
    {"fail-registration", 3, 3, "fail-registration CONNECTION N REASON", checkFailRegistration,
     runFailRegistration},
    {"connect", 1, 1, "connect CONNECTION", checkOneConnection, runConnect},
    {"connx", 1, 1, "connx CONNECTION", checkOneConnection, runConnect},
    {"disconnect", 1, 1, "disconnect CONNECTION", checkOneConnection, runDisconnect},
    {"show", 1, 2, "show registrations|connection CONNECTION, or show exits", checkShow, runShow},
    {"expect", 3, 3, "expect CONNECTION state|calls|functions|compcode|reason VALUE", checkExpect,
     runExpect},
    {"echo", 0, -1, "echo TEXT", nullptr, runEcho},
    {nullptr, 0, 0, nullptr, nullptr, nullptr},
};

} // namespace zkqm
