// The table of scenario commands, the commands about connections and exits,
// 'expect', and the helpers the command files share.
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#include "commands.h"
#include "constants.h"
#include "engine_util.h"
#include "names.h"

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
    if (!hasVariable(cmd.words[i]) && !applyIdentityKey(cmd.words[i], scratch, error)) {
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
  id.threadId = context.defaultThreadId;
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

// ---- connect / disconnect CONN ---------------------------------------------------

bool checkConnect(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 2);
  return args.checkKeys({"qmgr"}, {}, error);
}

bool checkOneConnection(const ScenarioCommand &cmd, std::string &error) {
  return checkConnectionName(cmd.words[1], error);
}

bool runConnect(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 2);
  context.qmgr.connect(*c, ZKXF_CONN, nullptr, args.get("qmgr", context.qmgr.name()));
  ++context.calls;
  if (c->lastCompCode == ZKCC_FAILED) {
    ++context.failedCalls;
  }
  return true;
}

bool runDisconnect(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  context.qmgr.disconnect(*c);
  ++context.calls;
  return true;
}

// ---- show registrations CONN | show connection CONN | show exits -------------------

bool checkShow(const ScenarioCommand &cmd, std::string &error) {
  const std::string &what = cmd.words[1];
  if (what == "exits" || what == "objects") {
    if (cmd.words.size() != 2) {
      error = "usage: show " + what;
      return false;
    }
    return true;
  }
  if (what == "registrations" || what == "connection" || what == "data") {
    if (cmd.words.size() != 3) {
      error = "usage: show " + what + " CONNECTION";
      return false;
    }
    return checkConnectionName(cmd.words[2], error);
  }
  if (what == "queue" || what == "message") {
    if (cmd.words.size() != 3) {
      error = "usage: show " + what + " NAME";
      return false;
    }
    return true;
  }
  error = "show what? (registrations CONNECTION, connection CONNECTION, data CONNECTION, "
          "queue NAME, message NAME, objects, exits)";
  return false;
}

bool runShow(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  const std::string &what = cmd.words[1];
  if (what == "exits") {
    context.qmgr.showExits();
    return true;
  }
  if (what == "objects" || what == "queue" || what == "message" || what == "data") {
    return runShowMore(context, cmd, error);
  }
  Connection *c = connectionOf(context, cmd.words[2], error);
  if (c == nullptr) {
    return false;
  }
  if (what == "registrations") {
    context.qmgr.showRegistrations(*c);
  } else {
    context.qmgr.showConnection(*c);
  }
  return true;
}

// ---- expect CONN what value ------------------------------------------------------

const char *const kExpectWhat =
    "state, calls, functions, compcode, reason, data, datalength, xa, delivered, int.N, char.N "
    "or STRUCT.FIELD";

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
  if (what == "calls" || what == "functions" || what == "datalength" || what == "delivered") {
    long n = 0;
    if (toNumber(value, n) || hasVariable(value)) {
      return true;
    }
    error = "expect ... " + what + ": expected a number, found '" + value + "'";
    return false;
  }
  if (what == "compcode" || what == "reason" || what == "xa") {
    ZKLONG n = 0;
    std::string why;
    if (hasVariable(value) ||
        parseValue(value,
                   what == "compcode" ? "ZKCC_"
                   : what == "reason" ? "ZKRC_"
                                      : "XA_",
                   n, why) ||
        parseValue(value, "TM_", n, why)) {
      return true;
    }
    error = "expect ... " + what + ": " + why;
    return false;
  }
  if (what == "data") {
    return true;
  }
  if (what.rfind("int.", 0) == 0 || what.rfind("char.", 0) == 0) {
    long n = 0;
    if (toNumber(what.substr(what.find('.') + 1), n) && n >= 1) {
      return true;
    }
    error = "expect ... " + what + ": the attribute number counts from 1";
    return false;
  }
  std::size_t dot = what.find('.');
  if (dot != std::string::npos) {
    const StructDef *def = findStruct(what.substr(0, dot));
    if (def != nullptr && def->find(what.substr(dot + 1)) != nullptr) {
      return true;
    }
    error = "expect ... " + what + ": no such structure field";
    return false;
  }
  error = std::string("expect CONNECTION what: ") + kExpectWhat;
  return false;
}

// '#' in the expected text stands for any digit, a lone '*' for anything.
bool sameValue(const std::string &actual, const std::string &wanted) {
  if (wanted == "*") {
    return true;
  }
  if (actual.size() != wanted.size()) {
    return false;
  }
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (wanted[i] == '#' ? !(actual[i] >= '0' && actual[i] <= '9') : wanted[i] != actual[i]) {
      return false;
    }
  }
  return true;
}

bool runExpect(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  const std::string &what = cmd.words[2];
  std::string wanted = cmd.words[3];
  std::string actual;
  auto number = [&](const std::string &prefix) {
    ZKLONG n = 0;
    std::string why;
    if (parseValue(wanted, prefix, n, why) || parseValue(wanted, "TM_", n, why)) {
      wanted = std::to_string(n);
    }
  };
  if (what == "state") {
    actual = stateName(c->state);
  } else if (what == "calls") {
    actual = std::to_string(c->counts.calls);
  } else if (what == "functions") {
    actual = std::to_string(c->state == ConnectionState::Connected ? c->functionsInForce() : 0);
  } else if (what == "compcode") {
    actual = std::to_string(c->lastCompCode);
    number("ZKCC_");
  } else if (what == "reason") {
    actual = std::to_string(c->lastReason);
    number("ZKRC_");
  } else if (what == "xa") {
    actual = std::to_string(c->lastXaReturn);
    number("XA_");
  } else if (what == "data") {
    std::size_t n = std::min<std::size_t>(c->lastData.size(),
                                          static_cast<std::size_t>(std::max(0, c->lastDataLength)));
    actual = printable(c->lastData.data(), n, 100000);
  } else if (what == "datalength") {
    actual = std::to_string(c->lastDataLength);
  } else if (what == "delivered") {
    actual = std::to_string(c->delivered);
  } else if (what.rfind("int.", 0) == 0) {
    std::size_t i = std::stoul(what.substr(4));
    actual = i <= c->lastIntAttrs.size() ? std::to_string(c->lastIntAttrs[i - 1]) : "(none)";
    number(kAttributeValuePrefixes);
  } else if (what.rfind("char.", 0) == 0) {
    std::size_t i = std::stoul(what.substr(5));
    actual = "(none)";
    std::size_t at = 0;
    std::size_t k = 0;
    // The character attributes of the last inquiry, one per selector,
    // separated by unit separators.
    while (at < c->lastCharAttrs.size()) {
      std::size_t bar = c->lastCharAttrs.find('\x1f', at);
      std::string piece =
          c->lastCharAttrs.substr(at, bar == std::string::npos ? std::string::npos : bar - at);
      if (++k == i) {
        actual = fixedText(piece.data(), piece.size());
        break;
      }
      if (bar == std::string::npos) {
        break;
      }
      at = bar + 1;
    }
  } else {
    std::size_t dot = what.find('.');
    const StructDef *def = findStruct(what.substr(0, dot));
    const FieldDef *field = def->find(what.substr(dot + 1));
    auto it = c->lastStructs.find(def->key);
    if (it == c->lastStructs.end() || it->second.size() < field->offset + field->size) {
      actual = "(no " + def->name + " from the last call)";
    } else {
      actual = fieldValueText(*field, it->second.data());
      std::vector<unsigned char> bytes(def->size, 0);
      std::string why;
      if ((field->kind == FieldKind::Chars || field->kind == FieldKind::Bytes) &&
          isHexForm(wanted) && setFieldValue(*field, bytes.data(), wanted, nullptr, why)) {
        // A character or byte field expected in the 0x form: its bytes
        // compared with those of the value, padded as a set value is.
        const unsigned char *have = it->second.data() + field->offset;
        actual = "0x" + hexText(have, field->size);
        wanted = std::memcmp(have, bytes.data() + field->offset, field->size) == 0 ? actual : "";
      } else if (field->kind == FieldKind::Chars) {
        actual = actual.substr(1, actual.size() - 2);
      } else if (field->kind == FieldKind::Int32) {
        ZKLONG n = 0;
        std::string why;
        if (parseValue(wanted, field->prefix, n, why)) {
          char text[16];
          std::snprintf(text, sizeof text, field->hex ? "0x%08X" : "%d",
                        field->hex ? static_cast<int>(static_cast<unsigned>(n)) : n);
          wanted = text;
        }
      } else if (field->kind == FieldKind::Bytes && !wanted.empty() && wanted[0] == '@') {
        std::vector<uint8_t> bytes;
        if (context.resolveSaved(wanted.substr(1), bytes)) {
          bytes.resize(field->size, 0);
          wanted = hexText(bytes.data(), bytes.size());
        }
      }
    }
  }
  if (sameValue(actual, wanted)) {
    context.log.line("%s expectation met: %s %s", c->name.c_str(), what.c_str(),
                     cmd.words[3].c_str());
  } else {
    ++context.shared.failedExpectations;
    context.log.always("%s EXPECTATION FAILED (line %d): %s is %s, expected %s", c->name.c_str(),
                       cmd.line, what.c_str(), actual.c_str(), cmd.words[3].c_str());
  }
  return true;
}

// ---- echo TEXT ... ---------------------------------------------------------------

bool runEcho(ScenarioContext &, const ScenarioCommand &, std::string &) {
  // The runner has already logged the line itself.
  return true;
}

} // namespace

// ---- shared helpers ------------------------------------------------------------------

bool checkConnectionName(const std::string &name, std::string &error) {
  if (!isConnectionName(name) && !hasVariable(name)) {
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

Connection *connectedOf(ScenarioContext &context, const std::string &name, std::string &error) {
  // A connection that is not connected calls all the same, with the handle
  // it has (none): the queue manager answers with a reason code.
  return connectionOf(context, name, error);
}

bool handleOf(Connection &c, const std::string &name, ZKHOBJ &hobj, std::string &error) {
  auto it = c.handles.find(name);
  if (it != c.handles.end()) {
    hobj = it->second;
    return true;
  }
  // A number stands for itself: calls with a handle the application made up.
  char *end = nullptr;
  long n = std::strtol(name.c_str(), &end, 0);
  if (!name.empty() && *end == '\0') {
    hobj = static_cast<ZKHOBJ>(n);
    return true;
  }
  error = c.name + " has no handle named '" + name + "' (open it first)";
  return false;
}

Connection *handleCallOf(ScenarioContext &context, const ScenarioCommand &command, ZKHOBJ &hobj,
                         std::string &error) {
  Connection *c = connectedOf(context, command.words[1], error);
  if (c == nullptr || !handleOf(*c, command.words[2], hobj, error)) {
    return nullptr;
  }
  return c;
}

void logResult(ScenarioContext &context, Connection &c, const std::string &call, ZKLONG compCode,
               ZKLONG reason, const std::string &details) {
  c.lastCall = call;
  c.lastCompCode = compCode;
  c.lastReason = reason;
  ++context.calls;
  if (compCode == ZKCC_FAILED) {
    ++context.failedCalls;
  }
  context.log.line("%s   CompCode %d Reason %s%s%s", c.name.c_str(), compCode,
                   reasonWithName(reason).c_str(), details.empty() ? "" : "; ", details.c_str());
}

ByteResolver resolverOf(ScenarioContext &context) {
  return [&context](const std::string &ref, std::vector<uint8_t> &bytes) {
    return context.resolveSaved(ref, bytes);
  };
}

std::string printable(const unsigned char *data, std::size_t length, std::size_t max) {
  std::string out;
  std::size_t n = std::min(length, max);
  for (std::size_t i = 0; i < n; ++i) {
    unsigned char ch = data[i];
    out += (ch >= 0x20 && ch < 0x7f) ? static_cast<char>(ch) : '.';
  }
  if (length > max) {
    out += "...";
  }
  return out;
}

std::string idText(const unsigned char *id) {
  return hexText(id, 24);
}

void saveIds(ScenarioContext &context, const std::string &name, const ZKMD &md) {
  std::lock_guard<std::mutex> lock(context.shared.mutex);
  context.shared.saved[name] = {std::vector<uint8_t>(md.MsgId, md.MsgId + 24),
                                std::vector<uint8_t>(md.CorrelId, md.CorrelId + 24)};
}

bool readFile(const ScenarioContext &context, const std::string &name,
              std::vector<unsigned char> &bytes, std::string &error) {
  std::string path =
      !name.empty() && name[0] == '/' ? name : context.scenario.directory + "/" + name;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot read '" + path + "': " + std::strerror(errno);
    return false;
  }
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return true;
}

// ---- the table ----------------------------------------------------------------------

const CommandRow kCommands[] = {
    {"qmgr", 1, 1, "qmgr NAME", checkQmgr, runQmgr},
    {"define", 2, -1, "define qlocal|qalias|qmodel|qremote|topic|sub|qmgr NAME [key=value ...]",
     checkDefine, runDefine},
    {"connection", 1, -1, "connection NAME [key=value ...]", checkConnection, runConnection},
    {"fail-registration", 3, 3, "fail-registration CONNECTION N REASON", checkFailRegistration,
     runFailRegistration},
    {"connect", 1, 2, "connect CONNECTION [qmgr=NAME]", checkConnect, runConnect},
    {"connx", 1, -1, "connx CONNECTION [cno=N cd=N sco=N air=V,.. ldap=.. csp=USER:PW by=..]",
     checkConnx, runConnx},
    {"disconnect", 1, 1, "disconnect CONNECTION", checkOneConnection, runDisconnect},
    {"open", 3, -1, "open CONNECTION HANDLE OBJECT [key=value ...]", checkOpen, runOpen},
    {"close", 2, -1, "close CONNECTION HANDLE [options=...]", checkClose, runClose},
    {"put", 2, -1, "put CONNECTION HANDLE [msg=NAME|text=..|hex=..|file=..|size=N] [key=value ...]",
     checkPut, runPut},
    {"put1", 2, -1, "put1 CONNECTION OBJECT [msg=NAME|text=..] [key=value ...]", checkPut1,
     runPut1},
    {"get", 2, -1, "get CONNECTION HANDLE [key=value ...]", checkGet, runGet},
    {"inq", 2, -1, "inq CONNECTION HANDLE SELECTOR ... [intcount=N] [charlen=N]", checkInq, runInq},
    {"set", 2, -1, "set CONNECTION HANDLE SELECTOR=VALUE ...", checkSet, runSet},
    {"begin", 1, -1, "begin CONNECTION [bo=none] [bo.FIELD=...]", checkBegin, runBegin},
    {"commit", 1, 1, "commit CONNECTION", checkCommit, runCommit},
    {"backout", 1, 1, "backout CONNECTION", checkBackout, runBackout},
    {"stat", 1, -1, "stat CONNECTION [type=..] [sts=1|2]", checkStat, runStat},
    {"sub", 2, -1, "sub CONNECTION HSUB [topic=..] [topicstr=..] [dest=HANDLE] [key=value ...]",
     checkSub, runSub},
    {"subrq", 2, -1, "subrq CONNECTION HSUB [action=..] [sro=none]", checkSubrq, runSubrq},
    {"cb", 2, -1, "cb CONNECTION OPERATION [HANDLE] [key=value ...]", checkCb, runCb},
    {"ctl", 2, -1, "ctl CONNECTION OPERATION [ctlo.FIELD=...]", checkCtl, runCtl},
    {"deliver", 1, 1, "deliver CONNECTION", checkDeliver, runDeliver},
    {"event", 1, 3, "event CONNECTION [compcode=N] [reason=N]", checkEvent, runEvent},
    {"xid", 1, -1, "xid NAME format=N gtrid=TEXT bqual=TEXT [layout=32|64]", checkXid, runXid},
    {"xa", 2, -1,
     "xa CONNECTION open|close|start|end|prepare|commit|rollback|forget|recover|"
     "complete|reg|unreg [XID] [key=value ...]",
     checkXa, runXa},
    {"during", 4, -1, "during CONNECTION xa CONNECTION OPERATION [XID] [key=value ...]",
     checkDuring, runDuring},
    {"message", 1, -1, "message NAME [key=value ...] {", checkMessage, runMessage, true,
     kMessageParts},
    {"show", 1, 2,
     "show registrations|connection|data CONNECTION, show queue|message NAME, "
     "show objects|exits",
     checkShow, runShow},
    {"expect", 3, 3, "expect CONNECTION what VALUE", checkExpect, runExpect},
    {"expect-depth", 2, 2, "expect-depth QUEUE N", checkExpectDepth, runExpectDepth},
    {"echo", 0, -1, "echo TEXT", nullptr, runEcho},
    {"sleep", 1, 1, "sleep MILLISECONDS", checkSleep, runSleep},
    {"file", 1, -1, "file PATH [size=N | line=TEXT ...] [touch] [mtime=+S|-S]", checkFile, runFile},
    {"repeat", 1, 3, "repeat N [var=NAME] [quiet] {", checkRepeat, runRepeat, true},
    {"thread", 1, 1, "thread NAME {", checkThread, runThread, true},
    {"process", 1, 1, "process NAME {", checkProcess, runProcess, true},
    {"parallel", 0, 0, "parallel {", checkParallel, runParallel, true},
    {nullptr, 0, 0, nullptr, nullptr, nullptr},
};

} // namespace zkqm
