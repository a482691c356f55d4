// Units of work and status: begin, commit, backout, stat.
#include "commands.h"
#include "constants.h"
#include "describe.h"
#include "engine_util.h"

namespace zkqm {
namespace {

bool checkJustConnection(const ScenarioCommand &cmd, std::string &error) {
  return checkConnectionName(cmd.words[1], error);
}

// ZKCMIT and ZKBACK: the connection handle, completion code and reason.
bool commitOrBackout(ScenarioContext &context, const ScenarioCommand &cmd, bool commit,
                     std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  const char *name = commit ? "ZKCMIT" : "ZKBACK";
  context.log.line("%s %s", c->name.c_str(), name);
  ApiCall api = makeApiCall(commit ? ZKXF_CMIT : ZKXF_BACK, name, compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_CMIT_EXIT>(entry)(axp, axc, &hconn, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(*c, api, [&]() {
    if (commit) {
      context.qmgr.engine().cmit(hconn, &compCode, &reason);
    } else {
      context.qmgr.engine().back(hconn, &compCode, &reason);
    }
  });
  logResult(context, *c, name, compCode, reason);
  return true;
}

} // namespace

bool checkBegin(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 2);
  return args.checkKeys({"bo"}, {"bo"}, error);
}

bool runBegin(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 2);
  ZKBO bo = ZKBO_DEFAULT;
  PZKBO pBo = nullptr;
  if (!structArgument(context, args, "bo", "ZKBO", bo, pBo, error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKBEGIN%s", c->name.c_str(), pBo == nullptr ? " without begin options" : "");
  ApiCall api = makeApiCall(ZKXF_BEGIN, "ZKBEGIN", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_BEGIN_EXIT>(entry)(axp, axc, &hconn, &pBo, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addPointer("ZKBO address", reinterpret_cast<void *const *>(&pBo));
    describeSimple(s, "ZKBO", pBo);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(*c, api,
                       [&]() { context.qmgr.engine().begin(hconn, pBo, &compCode, &reason); });
  c->keep("bo", pBo, sizeof bo);
  logResult(context, *c, "ZKBEGIN", compCode, reason);
  return true;
}

bool checkCommit(const ScenarioCommand &cmd, std::string &error) {
  return checkJustConnection(cmd, error);
}

bool runCommit(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  return commitOrBackout(context, cmd, true, error);
}

bool checkBackout(const ScenarioCommand &cmd, std::string &error) {
  return checkJustConnection(cmd, error);
}

bool runBackout(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  return commitOrBackout(context, cmd, false, error);
}

bool checkStat(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 2);
  return args.checkKeys({"type", "sts", "bufsize"}, {"sts"}, error) &&
         args.checkValues({{"type", "ZKSTAT_TYPE_"}, {"sts", ""}, {"bufsize", ""}}, error);
}

bool runStat(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 2);
  ZKLONG type = ZKSTAT_TYPE_ASYNC_ERROR;
  ZKLONG version = ZKSTS_VERSION_1;
  ZKLONG bufsize = 64;
  if ((args.has("type") && !parseValue(args.get("type"), "ZKSTAT_TYPE_", type, error)) ||
      (args.has("sts") && !parseValue(args.get("sts"), "", version, error)) ||
      (args.has("bufsize") && !parseValue(args.get("bufsize"), "", bufsize, error))) {
    return false;
  }
  ZKSTS sts = ZKSTS_DEFAULT;
  sts.Version = version;
  std::vector<char> objectString(static_cast<std::size_t>(std::max<ZKLONG>(bufsize, 0)), ' ');
  std::vector<char> subName(objectString.size(), ' ');
  if (version >= ZKSTS_VERSION_2) {
    sts.ObjectString.VSPtr = objectString.data();
    sts.ObjectString.VSBufSize = bufsize;
    sts.SubName.VSPtr = subName.data();
    sts.SubName.VSBufSize = bufsize;
  }
  if (!args.applyFields("sts", &sts, structNamed("ZKSTS"), resolverOf(context), error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  PZKSTS pSts = &sts;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKSTAT type %d, ZKSTS v%d", c->name.c_str(), type, version);
  ApiCall api = makeApiCall(ZKXF_STAT, "ZKSTAT", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_STAT_EXIT>(entry)(axp, axc, &hconn, &type, &pSts, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("Type", &type);
    s.addPointer("ZKSTS address", reinterpret_cast<void *const *>(&pSts));
    describeSts(s, pSts);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(
      *c, api, [&]() { context.qmgr.engine().stat(hconn, type, pSts, &compCode, &reason); });
  c->keep("sts", &sts, sizeof sts);
  std::string details;
  if (compCode != ZKCC_FAILED) {
    details = "successes " + std::to_string(sts.PutSuccessCount) + ", warnings " +
              std::to_string(sts.PutWarningCount) + ", failures " +
              std::to_string(sts.PutFailureCount);
    if (sts.Reason != 0) {
      details += ", first error CompCode " + std::to_string(sts.CompCode) + " Reason " +
                 reasonWithName(sts.Reason) + " on '" + fixedText(sts.ObjectName, 48) + "'";
    }
  }
  logResult(context, *c, "ZKSTAT", compCode, reason, details);
  return true;
}

} // namespace zkqm
