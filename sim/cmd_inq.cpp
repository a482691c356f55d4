// ZKINQ and ZKSET:
//
//   inq c1 q CURRENT_Q_DEPTH MAX_Q_DEPTH Q_NAME [selectorcount=N] [intcount=N] [charlen=N]
//   set c1 q INHIBIT_PUT=1 TRIGGER_DATA="start it" [selectorcount=N] [intcount=N] [charlen=N]
//
// Selectors are written by name (without ZKIA_ or ZKCA_) or by number. The
// counts default to what the selectors given need; given explicitly they
// may be negative or disagree with the selectors. The arrays are then made
// at least as long as a count says, so that whoever reads what the count
// promises stays inside them: selectors beyond those given are 0 (no
// selector), integers beyond those given -999 (inq) or 0 (set), character
// bytes beyond those given '*' (inq) or blanks (set).
#include <cstring>

#include "commands.h"
#include "constants.h"

namespace zkqm {
namespace {} // namespace

const char *const kAttributeValuePrefixes =
    "ZKQT_,ZKQA_,ZKTC_,ZKTT_,ZKQDT_,ZKUS_,ZKMDS_,ZKPER_,ZKOO_,ZKIAV_,ZKPL_,ZKSP_,ZKDL_,ZK";

namespace {

// The keys that give a count explicitly, and the largest count they take.
const char *const kCountKeys[] = {"selectorcount", "intcount", "charlen"};
const ZKLONG kLargestCount = 1000000;

// A count given by `key`, if it is: `given` says so. A count above
// kLargestCount is refused; a negative one is passed as it is.
bool explicitCount(const Args &args, const std::string &key, ZKLONG &value, bool &given,
                   std::string &error) {
  given = args.has(key);
  if (!given) {
    return true;
  }
  if (!parseValue(args.get(key), "", value, error)) {
    return false;
  }
  if (value > kLargestCount) {
    error = key + "=" + std::to_string(value) + ": at most " + std::to_string(kLargestCount);
    return false;
  }
  return true;
}

// Makes an array at least `count` long (nothing for a negative count).
template <typename T> void padTo(std::vector<T> &array, ZKLONG count, T filler) {
  if (count > 0 && static_cast<std::size_t>(count) > array.size()) {
    array.resize(static_cast<std::size_t>(count), filler);
  }
}

bool isCountKey(const std::string &key) {
  for (const char *k : kCountKeys) {
    if (key == k) {
      return true;
    }
  }
  return false;
}

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
  std::size_t selectorsGiven = 0; // selectors the scenario named
  std::string counts;             // the counts given explicitly, for the log
};

// Takes the counts the scenario gives explicitly in place of those the
// selectors need, and pads the arrays to them. `filler` is the integer
// and the character put where nothing was given.
bool applyExplicitCounts(const Args &args, InqSetCall &v, ZKLONG intFiller, char charFiller,
                         std::string &error) {
  ZKLONG *const targets[] = {&v.selectorCount, &v.intAttrCount, &v.charAttrLength};
  const char *const names[] = {"SelectorCount", "IntAttrCount", "CharAttrLength"};
  for (std::size_t i = 0; i < 3; ++i) {
    bool given = false;
    if (!explicitCount(args, kCountKeys[i], *targets[i], given, error)) {
      return false;
    }
    if (given) {
      v.counts += std::string(v.counts.empty() ? "; " : ", ") + names[i] + " " +
                  std::to_string(*targets[i]);
    }
  }
  padTo<ZKLONG>(v.selectors, v.selectorCount, 0);
  padTo<ZKLONG>(v.intAttrs, v.intAttrCount, intFiller);
  padTo<char>(v.charAttrs, v.charAttrLength, charFiller);
  return true;
}

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
      // The selectors the scenario named that the call was given.
      std::size_t inquired = std::min<std::size_t>(
          v.selectorsGiven, static_cast<std::size_t>(std::max<ZKLONG>(v.selectorCount, 0)));
      for (std::size_t k = 0; k < inquired; ++k) {
        ZKLONG s = v.selectors[k];
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
  return args.checkKeys({"selectorcount", "intcount", "charlen"}, {}, error);
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
  v.selectorsGiven = v.selectors.size();
  v.selectorCount = static_cast<ZKLONG>(v.selectors.size());
  v.intAttrCount = ints;
  v.charAttrLength = chars;
  if (!applyExplicitCounts(args, v, -999, '*', error)) {
    return false;
  }
  context.log.line("%s ZKINQ %s (Hobj %d):%s%s", c->name.c_str(), cmd.words[2].c_str(), hobj,
                   names.c_str(), v.counts.c_str());
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
    if (isCountKey(kv.first)) {
      continue;
    }
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
    if (isCountKey(kv.first)) {
      continue;
    }
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
  v.selectorsGiven = v.selectors.size();
  v.selectorCount = static_cast<ZKLONG>(v.selectors.size());
  v.intAttrCount = static_cast<ZKLONG>(v.intAttrs.size());
  v.charAttrLength = static_cast<ZKLONG>(v.charAttrs.size());
  if (!applyExplicitCounts(args, v, 0, ' ', error)) {
    return false;
  }
  context.log.line("%s ZKSET %s (Hobj %d):%s%s", c->name.c_str(), cmd.words[2].c_str(), hobj,
                   names.c_str(), v.counts.c_str());
  runCall(context, *c, false, hobj, v);
  return true;
}

} // namespace zkqm
