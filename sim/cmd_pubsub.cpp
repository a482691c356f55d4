// Publish/subscribe: sub and subrq.
//
//   sub c1 s1 topicstr=prices/fruit dest=q options=CREATE+DURABLE name=FRUIT
//   sub c1 s2 topic=SPORTS topicstr=football options=CREATE+MANAGED dest=sq
//   subrq c1 s1
#include <cstring>

#include "commands.h"
#include "constants.h"
#include "describe.h"
#include "engine_util.h"

namespace zkqm {

bool checkSub(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  return args.checkKeys({"topic", "topicstr", "dest", "options", "name", "userdata", "by", "resbuf",
                         "selection", "save"},
                        {"sd"}, error) &&
         args.checkValues({{"options", "ZKSO_"}, {"resbuf", ""}}, error);
}

bool runSub(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  const std::string &hsubName = cmd.words[2];
  Args args(cmd, 3);
  std::string dest = args.get("dest");
  ZKLONG options = ZKSO_CREATE | (args.has("dest") ? 0 : ZKSO_MANAGED);
  if (args.has("options") && !parseValue(args.get("options"), "ZKSO_", options, error)) {
    return false;
  }
  bool managed = (options & ZKSO_MANAGED) != 0;
  if (dest.empty()) {
    dest = hsubName + ".q";
  }
  ZKHOBJ hobj = 0;
  if (!managed && !handleOf(*c, dest, hobj, error)) {
    return false;
  }
  bool offsets = args.get("by", "pointer") == "offset";
  ZKLONG resbuf = 256;
  if (args.has("resbuf") && !parseValue(args.get("resbuf"), "", resbuf, error)) {
    return false;
  }
  std::string topicstr = args.get("topicstr");
  std::string name = args.get("name");
  std::string userData = args.get("userdata");
  std::string selection = args.get("selection");
  // The descriptor and its strings in one piece, so that offsets work.
  std::vector<char> memory(sizeof(ZKSD) + topicstr.size() + name.size() + userData.size() +
                               selection.size() + static_cast<std::size_t>(std::max(resbuf, 0)) + 8,
                           0);
  ZKSD *sd = reinterpret_cast<ZKSD *>(memory.data());
  *sd = ZKSD_DEFAULT;
  sd->Options = options;
  setFixed(sd->ObjectName, sizeof sd->ObjectName, args.get("topic"));
  std::size_t at = sizeof(ZKSD);
  auto charv = [&](ZKCHARV &v, const std::string &text, ZKLONG bufsize) {
    std::memcpy(memory.data() + at, text.data(), text.size());
    if (offsets) {
      v.VSOffset = static_cast<ZKLONG>(at);
    } else {
      v.VSPtr = memory.data() + at;
    }
    v.VSLength = static_cast<ZKLONG>(text.size());
    v.VSBufSize = bufsize;
    at += text.size() + static_cast<std::size_t>(bufsize);
  };
  if (!topicstr.empty()) {
    charv(sd->ObjectString, topicstr, 0);
  }
  if (!name.empty()) {
    charv(sd->SubName, name, 0);
  }
  if (!userData.empty()) {
    charv(sd->SubUserData, userData, 0);
  }
  if (!selection.empty()) {
    charv(sd->SelectionString, selection, 0);
  }
  if (resbuf > 0) {
    charv(sd->ResObjectString, "", resbuf);
  }
  if (!args.applyFields("sd", sd, structNamed("ZKSD"), resolverOf(context), error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  PZKSD pSd = sd;
  PZKHOBJ pHobj = &hobj;
  ZKHOBJ hsub = ZKHO_UNUSABLE_HOBJ;
  PZKHOBJ pHsub = &hsub;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKSUB %s: topic '%s' string '%s', options 0x%08X", c->name.c_str(),
                   hsubName.c_str(), args.get("topic").c_str(), topicstr.c_str(),
                   static_cast<unsigned>(options));
  ApiCall api = makeApiCall(ZKXF_SUB, "ZKSUB", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_SUB_EXIT>(entry)(axp, axc, &hconn, &pSd, &pHobj, &pHsub, &compCode,
                                          &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addPointer("ZKSD address", reinterpret_cast<void *const *>(&pSd));
    describeSd(s, pSd);
    s.addPointer("Hobj address", reinterpret_cast<void *const *>(&pHobj));
    s.addLong("Hobj", pHobj);
    s.addPointer("Hsub address", reinterpret_cast<void *const *>(&pHsub));
    s.addLong("Hsub", pHsub);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(
      *c, api, [&]() { context.qmgr.engine().sub(hconn, pSd, pHobj, pHsub, &compCode, &reason); });
  c->keep("sd", sd, sizeof(ZKSD));
  std::string details;
  if (compCode != ZKCC_FAILED) {
    c->handles[hsubName] = hsub;
    details = "Hsub " + std::to_string(hsub);
    if (managed) {
      c->handles[dest] = hobj;
      details += ", managed queue Hobj " + std::to_string(hobj) + " as '" + dest + "'";
    }
    details += ", SubCorrelId " + idText(sd->SubCorrelId);
    if (args.has("save")) {
      // Saved as both identifiers: "@name" matches the publications.
      ZKMD ids = ZKMD_DEFAULT;
      std::memcpy(ids.MsgId, sd->SubCorrelId, 24);
      std::memcpy(ids.CorrelId, sd->SubCorrelId, 24);
      saveIds(context, args.get("save"), ids);
    }
    if (sd->ResObjectString.VSLength > 0) {
      details +=
          ", resolved topic '" +
          charvText(sd, sd->ResObjectString)
              .substr(0, static_cast<std::size_t>(std::min(sd->ResObjectString.VSLength, resbuf))) +
          "'";
    }
  }
  logResult(context, *c, "ZKSUB", compCode, reason, details);
  return true;
}

bool checkSubrq(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  return args.checkKeys({"action", "sro"}, {"sro"}, error) &&
         args.checkValues({{"action", "ZKSR_ACTION_"}}, error);
}

bool runSubrq(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKHOBJ hsub = 0;
  Connection *c = handleCallOf(context, cmd, hsub, error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 3);
  ZKLONG action = ZKSR_ACTION_PUBLICATION;
  if (args.has("action") && !parseValue(args.get("action"), "ZKSR_ACTION_", action, error)) {
    return false;
  }
  ZKSRO sro = ZKSRO_DEFAULT;
  PZKSRO pSro = nullptr;
  if (!structArgument(context, args, "sro", "ZKSRO", sro, pSro, error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKSUBRQ %s (Hsub %d), action %d", c->name.c_str(), cmd.words[2].c_str(),
                   hsub, action);
  ApiCall api = makeApiCall(ZKXF_SUBRQ, "ZKSUBRQ", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_SUBRQ_EXIT>(entry)(axp, axc, &hconn, &hsub, &action, &pSro, &compCode,
                                            &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("Hsub", &hsub);
    s.addLong("Action", &action);
    s.addPointer("ZKSRO address", reinterpret_cast<void *const *>(&pSro));
    describeSimple(s, "ZKSRO", pSro);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(*c, api, [&]() {
    context.qmgr.engine().subrq(hconn, hsub, action, pSro, &compCode, &reason);
  });
  c->keep("sro", pSro, sizeof sro);
  logResult(context, *c, "ZKSUBRQ", compCode, reason,
            pSro != nullptr && compCode != ZKCC_FAILED
                ? "publications " + std::to_string(sro.NumPubs)
                : "");
  return true;
}

} // namespace zkqm
