// ZKINQ and ZKSET:
//
//   inq c1 q CURRENT_Q_DEPTH MAX_Q_DEPTH Q_NAME [intcount=N] [charlen=N]
//   set c1 q INHIBIT_PUT=1 TRIGGER_DATA="start it"
//
// Selectors are written by name (without ZKIA_ or ZKCA_) or by number.
#include <cstring>

#include "commands.h"
#include "constants.h"

namespace zkqm {
namespace {} // namespace

const char *const kAttributeValuePrefixes =
    "ZKQT_,ZKQA_,ZKTC_,ZKTT_,ZKQDT_,ZKUS_,ZKMDS_,ZKPER_,ZKOO_,ZKIAV_,ZKPL_,ZKSP_,ZKDL_,ZK";

namespace {

bool selectorOf(const std::string &text, ZKLONG &selector, std::string &error) {
  return parseValue(text, "ZKIA_", selector, error) || parseValue(text, "ZKCA_", selector, error);
}

bool isIntRange(ZKLONG s) {
  return s >= 1 && s <= 2000;
}

std::string selectorName(ZKLONG s) {
  std::string name = constantName(s, isIntRange(s) ? "ZKIA_" : "ZKCA_");
  return name.empty() ? std::to_string(s) : name;
}

bool isDateOrTime(ZKLONG s) {
  return s == ZKCA_CREATION_DATE || s == ZKCA_CREATION_TIME || s == ZKCA_ALTERATION_DATE ||
         s == ZKCA_ALTERATION_TIME;
}

// Dates and times vary from run to run: the log shows their digits as '#'.
std::string masked(std::string text) {
  for (char &ch : text) {
    if (ch >= '0' && ch <= '9') {
      ch = '#';
    }
  }
  return text;
}

struct InqSetCall {
  ZKLONG selectorCount = 0;
  std::vector<ZKLONG> selectors;
  ZKLONG intAttrCount = 0;
  std::vector<ZKLONG> intAttrs;
  ZKLONG charAttrLength = 0;
  std::vector<char> charAttrs;
};

void runCall(ScenarioContext &context, Connection &c, bool inquire, ZKHOBJ hobj, InqSetCall &v) {
  ZKHCONN hconn = c.hconn;
  PZKLONG pSelectors = v.selectors.empty() ? nullptr : v.selectors.data();
  PZKLONG pInts = v.intAttrs.empty() ? nullptr : v.intAttrs.data();
  PZKCHAR pChars = v.charAttrs.empty() ? nullptr : v.charAttrs.data();
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  ApiCall api =
      makeApiCall(inquire ? ZKXF_INQ : ZKXF_SET, inquire ? "ZKINQ" : "ZKSET", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    // ZKINQ and ZKSET have the same parameter list.
    reinterpret_cast<PZK_INQ_EXIT>(entry)(axp, axc, &hconn, &hobj, &v.selectorCount, &pSelectors,
                                          &v.intAttrCount, &pInts, &v.charAttrLength, &pChars,
                                          &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("Hobj", &hobj);
    s.addLong("SelectorCount", &v.selectorCount);
    s.addPointer("Selectors address", reinterpret_cast<void *const *>(&pSelectors));
    s.addBytes("Selectors", pSelectors, v.selectors.size() * 4);
    s.addLong("IntAttrCount", &v.intAttrCount);
    s.addPointer("IntAttrs address", reinterpret_cast<void *const *>(&pInts));
    s.addBytes("IntAttrs", pInts, v.intAttrs.size() * 4);
    s.addLong("CharAttrLength", &v.charAttrLength);
    s.addPointer("CharAttrs address", reinterpret_cast<void *const *>(&pChars));
    s.addBytes("CharAttrs", pChars, v.charAttrs.size());
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(c, api, [&]() {
    if (inquire) {
      context.qmgr.engine().inq(hconn, hobj, v.selectorCount, pSelectors, v.intAttrCount, pInts,
                                v.charAttrLength, pChars, &compCode, &reason);
    } else {
      context.qmgr.engine().set(hconn, hobj, v.selectorCount, pSelectors, v.intAttrCount, pInts,
                                v.charAttrLength, pChars, &compCode, &reason);
    }
  });
  std::string details;
  if (inquire) {
    c.lastIntAttrs.clear();
    c.lastCharAttrs.clear();
    if (compCode != ZKCC_FAILED) {
      std::size_t ints = 0;
      std::size_t chars = 0;
      for (ZKLONG s : v.selectors) {
        std::string value;
        if (isIntRange(s)) {
          if (ints >= v.intAttrs.size()) {
            continue;
          }
          ZKLONG n = v.intAttrs[ints++];
          c.lastIntAttrs.push_back(n);
          value = std::to_string(n);
        } else {
          std::size_t length = static_cast<std::size_t>(charAttrLength(s));
          if (chars + length > v.charAttrs.size()) {
            continue;
          }
          std::string text(v.charAttrs.data() + chars, length);
          chars += length;
          if (!c.lastCharAttrs.empty() || chars > length) {
            c.lastCharAttrs += '\x1f';
          }
          c.lastCharAttrs += text;
          std::size_t end = text.find_last_not_of(' ');
          text = end == std::string::npos ? "" : text.substr(0, end + 1);
          value = "'" + (isDateOrTime(s) ? masked(text) : text) + "'";
        }
        details += (details.empty() ? "" : ", ") + selectorName(s) + " " + value;
      }
    }
  }
  logResult(context, c, api.name, compCode, reason, details);
}

} // namespace

bool checkInq(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  for (const std::string &p : args.positional()) {
    ZKLONG s = 0;
    if (!hasVariable(p) && !selectorOf(p, s, error)) {
      error = "inq: '" + p + "' is not a selector";
      return false;
    }
  }
  return args.checkKeys({"intcount", "charlen"}, {}, error);
}

bool runInq(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKHOBJ hobj = 0;
  Connection *c = handleCallOf(context, cmd, hobj, error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 3);
  InqSetCall v;
  ZKLONG ints = 0;
  ZKLONG chars = 0;
  std::string names;
  for (const std::string &p : args.positional()) {
    ZKLONG s = 0;
    if (!selectorOf(p, s, error)) {
      return false;
    }
    v.selectors.push_back(s);
    if (isIntRange(s)) {
      ++ints;
    } else {
      chars += charAttrLength(s);
    }
    names += " " + selectorName(s);
  }
  if ((args.has("intcount") && !parseValue(args.get("intcount"), "", ints, error)) ||
      (args.has("charlen") && !parseValue(args.get("charlen"), "", chars, error))) {
    return false;
  }
  v.selectorCount = static_cast<ZKLONG>(v.selectors.size());
  v.intAttrCount = ints;
  v.intAttrs.assign(static_cast<std::size_t>(std::max<ZKLONG>(ints, 0)), -999);
  v.charAttrLength = chars;
  v.charAttrs.assign(static_cast<std::size_t>(std::max<ZKLONG>(chars, 0)), '*');
  context.log.line("%s ZKINQ %s (Hobj %d):%s", c->name.c_str(), cmd.words[2].c_str(), hobj,
                   names.c_str());
  runCall(context, *c, true, hobj, v);
  return true;
}

bool checkSet(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  if (!args.positional().empty()) {
    error = "set: write each attribute as SELECTOR=VALUE";
    return false;
  }
  for (const auto &kv : args.named()) {
    ZKLONG s = 0;
    if (!hasVariable(kv.first) && !selectorOf(kv.first, s, error)) {
      error = "set: '" + kv.first + "' is not a selector";
      return false;
    }
  }
  return true;
}

bool runSet(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKHOBJ hobj = 0;
  Connection *c = handleCallOf(context, cmd, hobj, error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 3);
  InqSetCall v;
  std::string names;
  for (const auto &kv : args.named()) {
    ZKLONG s = 0;
    if (!selectorOf(kv.first, s, error)) {
      return false;
    }
    v.selectors.push_back(s);
    if (isIntRange(s)) {
      ZKLONG value = 0;
      if (!parseValue(kv.second, kAttributeValuePrefixes, value, error)) {
        return false;
      }
      v.intAttrs.push_back(value);
    } else {
      std::size_t length = static_cast<std::size_t>(charAttrLength(s));
      std::string text = kv.second;
      if (length == 0) {
        length = text.size();
      }
      text.resize(length, ' ');
      v.charAttrs.insert(v.charAttrs.end(), text.begin(), text.end());
    }
    names += " " + selectorName(s) + "=" + kv.second;
  }
  v.selectorCount = static_cast<ZKLONG>(v.selectors.size());
  v.intAttrCount = static_cast<ZKLONG>(v.intAttrs.size());
  v.charAttrLength = static_cast<ZKLONG>(v.charAttrs.size());
  context.log.line("%s ZKSET %s (Hobj %d):%s", c->name.c_str(), cmd.words[2].c_str(), hobj,
                   names.c_str());
  runCall(context, *c, false, hobj, v);
  return true;
}

} // namespace zkqm
