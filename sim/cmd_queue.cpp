// The application's connect-extended and queue calls: connx, open, close,
// put, put1, get. Each command builds the call's parameters as an
// application would, runs the call through the exits and logs what the
// queue manager returned.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <strings.h>

#include "commands.h"
#include "constants.h"
#include "describe.h"
#include "engine_util.h"

namespace zkqm {
namespace {

// Memory for a structure and what it points to, laid out once so that the
// structures can reach each other by address or by offset.
class Block {
public:
  std::size_t reserve(std::size_t n) {
    std::size_t at = (size_ + 7) & ~std::size_t(7);
    size_ = at + n;
    return at;
  }
  void allocate() { memory_.assign((size_ + 7) / 8 + 1, 0); }
  unsigned char *at(std::size_t offset) {
    return reinterpret_cast<unsigned char *>(memory_.data()) + offset;
  }
  template <typename T> T *as(std::size_t offset) { return reinterpret_cast<T *>(at(offset)); }

private:
  std::size_t size_ = 0;
  std::vector<uint64_t> memory_;
};

// How a structure reaches another: by address (the default) or by offset.
bool byOffset(const Args &args, const std::string &what) {
  return args.get("by." + what, args.get("by", "pointer")) == "offset";
}

bool checkBy(const Args &args, std::string &error) {
  for (const auto &kv : args.named()) {
    if (kv.first.rfind("by", 0) == 0 && kv.second != "pointer" && kv.second != "offset") {
      error = kv.first + "=" + kv.second + ": pointer or offset";
      return false;
    }
  }
  return true;
}

std::vector<std::string> splitList(const std::string &text, char sep = ',') {
  std::vector<std::string> out;
  if (text.empty()) {
    return out;
  }
  std::size_t start = 0;
  while (true) {
    std::size_t end = text.find(sep, start);
    out.push_back(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
    if (end == std::string::npos) {
      return out;
    }
    start = end + 1;
  }
}

bool version(const Args &args, const std::string &key, ZKLONG low, ZKLONG high, ZKLONG &v,
             std::string &error) {
  if (!args.has(key)) {
    return true;
  }
  if (!parseValue(args.get(key), "", v, error) || v < low || v > high) {
    error = key + "=" + args.get(key) + ": a version from " + std::to_string(low) + " to " +
            std::to_string(high);
    return false;
  }
  return true;
}

std::string fixed(const char *field, std::size_t width) {
  return fixedText(field, width);
}

// The response records of open and put1 (those of the ZKOD), and of put
// (those of the ZKPMO).
const RecordKey kRrKey = {"rr", {"ZKRR"}};
const RecordKey kReturnRrKey = {"return.rr", {"ZKRR"}};

// What the queue manager returns in the fields that the scenario names
// ("return.gmo.GroupStatus=0x00", "return.rr.2.Reason=2085"): written after
// the queue manager has carried the call out, before the AFTER functions,
// so that the application and the exits see values that the queue manager
// itself would not return. Each value is made when the call is prepared:
// writing it cannot fail.
class Returned {
public:
  // The "return.KEY.Field=" words of a structure (KEY: "md", "gmo" ...).
  bool prepare(ScenarioContext &context, const Args &args, const std::string &key,
               std::string &error) {
    const std::string prefix = "return." + key + ".";
    const StructDef &def = *findStruct(key);
    for (const auto &kv : args.named()) {
      if (kv.first.compare(0, prefix.size(), prefix) != 0) {
        continue;
      }
      const FieldDef *field = def.find(kv.first.substr(prefix.size()));
      if (field == nullptr) {
        error = "'" + kv.first + "': " + def.name + " has no such field";
        return false;
      }
      if (!add(context, key, 0, *field, def, kv, error)) {
        return false;
      }
    }
    return true;
  }
  // The "return.rr[.N].Field=" words for `count` response records.
  bool prepareRecords(ScenarioContext &context, const Args &args, int count, std::string &error) {
    if (!args.checkRecordCount(kReturnRrKey.key, count, "response records", error)) {
      return false;
    }
    const StructDef &def = structNamed("ZKRR");
    for (const auto &kv : args.named()) {
      int number = 0;
      std::string name;
      if (!splitRecordWord(kv.first, kReturnRrKey.key, number, name)) {
        continue;
      }
      const FieldDef *field = def.find(name);
      if (field == nullptr) {
        error = "'" + kv.first + "': ZKRR has no such field";
        return false;
      }
      if (!add(context, "rr", number, *field, def, kv, error)) {
        return false;
      }
    }
    return true;
  }
  // Writes the values of `key` into the structure, or into each of `count`
  // records that follow each other from `structure`.
  void apply(const std::string &key, void *structure, int count = 1) {
    for (const Value &v : values_) {
      if (v.key != key || structure == nullptr) {
        continue;
      }
      for (int i = 0; i < count; ++i) {
        if (v.number == 0 || v.number == i + 1) {
          unsigned char *at = static_cast<unsigned char *>(structure) + i * v.recordSize;
          std::memcpy(at + v.offset, v.bytes.data(), v.bytes.size());
          applied_ = true;
        }
      }
    }
  }
  // After the call: the words that were written, for the log.
  void log(ScenarioContext &context, const Connection &c) const {
    if (!applied_) {
      return;
    }
    std::string words;
    for (const Value &v : values_) {
      words += " " + v.word;
    }
    context.log.line("%s   returned as the scenario sets:%s", c.name.c_str(), words.c_str());
  }

private:
  struct Value {
    std::string key;
    int number = 0; // of a record; 0: every record
    uint32_t recordSize = 0;
    uint32_t offset = 0;
    std::vector<unsigned char> bytes;
    std::string word;
  };
  bool add(ScenarioContext &context, const std::string &key, int number, const FieldDef &field,
           const StructDef &def, const std::pair<std::string, std::string> &kv,
           std::string &error) {
    std::vector<unsigned char> scratch(def.size, 0);
    if (!setFieldValue(field, scratch.data(), kv.second, resolverOf(context), error)) {
      error = kv.first + ": " + error;
      return false;
    }
    Value v;
    v.key = key;
    v.number = number;
    v.recordSize = def.size;
    v.offset = field.offset;
    v.bytes.assign(scratch.begin() + field.offset, scratch.begin() + field.offset + field.size);
    v.word = kv.first + "=" + kv.second;
    values_.push_back(std::move(v));
    return true;
  }
  std::vector<Value> values_;
  bool applied_ = false;
};

// ---- the object descriptor of open and put1 -----------------------------------------

const std::vector<std::string> kOdKeys = {"type",     "od",         "qmgr",      "dynamic",
                                          "topicstr", "selection",  "list",      "by",
                                          "resbuf",   "by.records", "by.strings"};
const std::vector<std::string> kOdPrefixes = {"od", "return.od"};
// The object records of a distribution list.
const RecordKey kOrKey = {"or", {"ZKOR"}};

struct OdBlock {
  Block block;
  ZKOD *od = nullptr;
  int destinations = 0;
  ZKRR *responses = nullptr; // the response records, one per destination
};

bool buildOd(ScenarioContext &context, const std::string &object, const Args &args, OdBlock &b,
             std::string &error) {
  ZKLONG type = ZKOT_Q;
  std::string t = args.get("type", "queue");
  if (t == "queue") {
    type = ZKOT_Q;
  } else if (t == "qmgr") {
    type = ZKOT_Q_MGR;
  } else if (t == "topic") {
    type = ZKOT_TOPIC;
  } else if (!parseValue(t, "ZKOT_", type, error)) {
    return false;
  }
  std::vector<std::string> list = splitList(args.get("list"));
  if (!args.checkRecordCount(kOrKey.key, static_cast<int>(list.size()), "object records", error) ||
      !args.checkRecordCount(kRrKey.key, static_cast<int>(list.size()), "response records",
                             error)) {
    return false;
  }
  std::string topicstr = args.get("topicstr");
  std::string selection = args.get("selection");
  ZKLONG ver = !list.empty() ? ZKOD_VERSION_2 : ZKOD_VERSION_1;
  if (args.has("topicstr") || args.has("selection")) {
    ver = ZKOD_VERSION_4;
  }
  if (!version(args, "od", 1, 99, ver, error)) {
    return false;
  }
  ZKLONG resbuf = ver >= ZKOD_VERSION_4 ? 256 : 0;
  if (args.has("resbuf") && !parseValue(args.get("resbuf"), "", resbuf, error)) {
    return false;
  }
  bool offsets = byOffset(args, "records");
  bool stringOffsets = args.get("by.strings", offsets ? "offset" : "pointer") == "offset";
  std::size_t odAt = b.block.reserve(sizeof(ZKOD));
  std::size_t orAt = b.block.reserve(sizeof(ZKOR) * list.size());
  std::size_t rrAt = b.block.reserve(sizeof(ZKRR) * list.size());
  std::size_t strAt = b.block.reserve(topicstr.size() + 1);
  std::size_t selAt = b.block.reserve(selection.size() + 1);
  std::size_t resAt = b.block.reserve(static_cast<std::size_t>(std::max<ZKLONG>(resbuf, 0)));
  b.block.allocate();
  ZKOD *od = b.block.as<ZKOD>(odAt);
  *od = ZKOD_DEFAULT;
  od->Version = ver;
  od->ObjectType = type;
  setFixed(od->ObjectName, sizeof od->ObjectName, object == "-" ? "" : object);
  setFixed(od->ObjectQMgrName, sizeof od->ObjectQMgrName, args.get("qmgr"));
  if (args.has("dynamic")) {
    setFixed(od->DynamicQName, sizeof od->DynamicQName, args.get("dynamic"));
  }
  if (!list.empty()) {
    od->RecsPresent = static_cast<ZKLONG>(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
      ZKOR *r = b.block.as<ZKOR>(orAt) + i;
      *r = ZKOR_DEFAULT;
      std::size_t at = list[i].find('@');
      setFixed(r->ObjectName, 48, list[i].substr(0, at));
      setFixed(r->ObjectQMgrName, 48, at == std::string::npos ? "" : list[i].substr(at + 1));
      ZKRR *rr = b.block.as<ZKRR>(rrAt) + i;
      rr->CompCode = -1;
      rr->Reason = -1;
      const int number = static_cast<int>(i + 1);
      if (!args.applyRecordFields(kOrKey.key, number, {{&structNamed("ZKOR"), r, sizeof(ZKOR)}},
                                  resolverOf(context), error) ||
          !args.applyRecordFields(kRrKey.key, number, {{&structNamed("ZKRR"), rr, sizeof(ZKRR)}},
                                  resolverOf(context), error)) {
        return false;
      }
    }
    b.responses = b.block.as<ZKRR>(rrAt);
    if (offsets) {
      od->ObjectRecOffset = static_cast<ZKLONG>(orAt - odAt);
      od->ResponseRecOffset = static_cast<ZKLONG>(rrAt - odAt);
    } else {
      od->ObjectRecPtr = b.block.at(orAt);
      od->ResponseRecPtr = b.block.at(rrAt);
    }
  }
  auto charv = [&](ZKCHARV &v, std::size_t at, const std::string &text) {
    std::memcpy(b.block.at(at), text.data(), text.size());
    if (stringOffsets) {
      v.VSOffset = static_cast<ZKLONG>(at - odAt);
    } else {
      v.VSPtr = b.block.at(at);
    }
    v.VSLength = static_cast<ZKLONG>(text.size());
  };
  if (!topicstr.empty()) {
    charv(od->ObjectString, strAt, topicstr);
  }
  if (!selection.empty()) {
    charv(od->SelectionString, selAt, selection);
  }
  if (resbuf > 0) {
    charv(od->ResObjectString, resAt, "");
    od->ResObjectString.VSBufSize = resbuf;
  }
  if (!args.applyFields("od", od, structNamed("ZKOD"), resolverOf(context), error)) {
    return false;
  }
  b.od = od;
  b.destinations = static_cast<int>(list.size());
  return true;
}

std::string odResults(const ZKOD *od) {
  std::string text;
  if (od->Version >= ZKOD_VERSION_2 && od->RecsPresent > 0) {
    text += "known " + std::to_string(od->KnownDestCount) + ", unknown " +
            std::to_string(od->UnknownDestCount) + ", invalid " +
            std::to_string(od->InvalidDestCount);
    const ZKRR *rr = subStructure<const ZKRR>(od, od->ResponseRecPtr, od->ResponseRecOffset);
    for (ZKLONG i = 0; rr != nullptr && i < od->RecsPresent; ++i) {
      text += "; [" + std::to_string(i + 1) + "] CompCode " + std::to_string(rr[i].CompCode) +
              " Reason " + reasonWithName(rr[i].Reason);
    }
  }
  if (od->Version >= ZKOD_VERSION_3) {
    std::string q = fixed(od->ResolvedQName, 48);
    if (!q.empty()) {
      text += std::string(text.empty() ? "" : ", ") + "resolved '" + q + "' on '" +
              fixed(od->ResolvedQMgrName, 48) + "'";
    }
  }
  if (od->Version >= ZKOD_VERSION_4 && od->ResObjectString.VSLength > 0) {
    text += std::string(text.empty() ? "" : ", ") + "resolved topic '" +
            charvText(od, od->ResObjectString)
                .substr(0, static_cast<std::size_t>(std::min(od->ResObjectString.VSLength,
                                                             od->ResObjectString.VSBufSize))) +
            "'";
  }
  return text;
}

// ---- put: the message and the put options -------------------------------------------

const std::vector<std::string> kPutKeys = {
    "msg",    "text", "hex", "file", "size",    "md",    "pmo",     "options",   "format",
    "length", "save", "pmr", "by",   "context", "ccsid", "records", "by.records"};
const std::vector<std::string> kPutPrefixes = {"md", "pmo", "return.md", "return.pmo"};

const std::vector<std::pair<std::string, std::string>> kPutValues = {
    {"options", "ZKPMO_"}, {"md", ""},     {"pmo", ""},   {"pmr", "ZKPMRF_"},
    {"size", ""},          {"length", ""}, {"ccsid", ""}, {"records", ""}};

// The put-message records of the ZKPMO and, under the same key, the
// response record of each ("pmr.2.CorrelId=", "pmr.2.Reason=").
const RecordKey kPmrKey = {"pmr", {"ZKPMR", "ZKRR"}};

// The fields of a put-message record in the order in which a record holds
// those that PutMsgRecFields names.
struct PmrPart {
  ZKLONG flag;
  const char *name;
  std::size_t offset; // in ZKPMR
  std::size_t size;
};
const PmrPart kPmrParts[] = {
    {ZKPMRF_MSG_ID, "MsgId", offsetof(ZKPMR, MsgId), sizeof(ZKPMR::MsgId)},
    {ZKPMRF_CORREL_ID, "CorrelId", offsetof(ZKPMR, CorrelId), sizeof(ZKPMR::CorrelId)},
    {ZKPMRF_GROUP_ID, "GroupId", offsetof(ZKPMR, GroupId), sizeof(ZKPMR::GroupId)},
    {ZKPMRF_FEEDBACK, "Feedback", offsetof(ZKPMR, Feedback), sizeof(ZKPMR::Feedback)},
    {ZKPMRF_ACCOUNTING_TOKEN, "AccountingToken", offsetof(ZKPMR, AccountingToken),
     sizeof(ZKPMR::AccountingToken)},
};

// Sets the "pmr[.N].Field=" words into put-message record `number` (which
// holds the fields of `fields`, packed) and its response record. A field
// that the records do not hold is an error: there is no place for it.
bool applyPutMsgRecord(ScenarioContext &context, const Args &args, int number, ZKLONG fields,
                       unsigned char *packed, ZKRR *response, std::string &error) {
  for (const auto &kv : args.named()) {
    int n = 0;
    std::string name;
    if (splitRecordWord(kv.first, kPmrKey.key, n, name) && (n == 0 || n == number) &&
        structNamed("ZKPMR").find(name) != nullptr) {
      bool held = false;
      for (const PmrPart &part : kPmrParts) {
        if (strcasecmp(part.name, name.c_str()) == 0 && (fields & part.flag) != 0) {
          held = true;
        }
      }
      if (!held) {
        error = "'" + kv.first + "': the put-message records (pmr=) hold no " + name;
        return false;
      }
    }
  }
  // Unpacked into a whole record, set, and packed again.
  ZKPMR whole = {};
  std::size_t at = 0;
  for (const PmrPart &part : kPmrParts) {
    if (fields & part.flag) {
      std::memcpy(reinterpret_cast<unsigned char *>(&whole) + part.offset, packed + at, part.size);
      at += part.size;
    }
  }
  if (!args.applyRecordFields(kPmrKey.key, number,
                              {{&structNamed("ZKPMR"), &whole, sizeof whole},
                               {&structNamed("ZKRR"), response, sizeof(ZKRR)}},
                              resolverOf(context), error)) {
    return false;
  }
  at = 0;
  for (const PmrPart &part : kPmrParts) {
    if (fields & part.flag) {
      std::memcpy(packed + at, reinterpret_cast<unsigned char *>(&whole) + part.offset, part.size);
      at += part.size;
    }
  }
  return true;
}

struct PutBlock {
  Block block;
  ZKMD *md = nullptr;
  ZKPMO *pmo = nullptr;
  std::vector<unsigned char> data;
  ZKRR *responses = nullptr; // the ZKPMO's response records
  int records = 0;
};

// `destinations`: those of the distribution list that the put goes to.
// `pmoResponses`: the rr. words are for the ZKPMO's response records (put;
// in put1 they are the ZKOD's).
bool buildPut(ScenarioContext &context, Connection &c, const Args &args, int destinations,
              bool pmoResponses, PutBlock &b, std::string &error) {
  BuiltMessage message;
  if (!messageOf(context, args, message, error)) {
    return false;
  }
  b.data = message.data;
  ZKLONG mdVersion = ZKMD_VERSION_1;
  bool withRecords = args.has("pmr") || args.has("records");
  ZKLONG pmoVersion = withRecords ? ZKPMO_VERSION_2 : ZKPMO_VERSION_1;
  if (!version(args, "md", 1, 99, mdVersion, error) ||
      !version(args, "pmo", 1, 99, pmoVersion, error)) {
    return false;
  }
  ZKLONG fields = 0;
  if (args.has("pmr") && !parseValue(args.get("pmr"), "ZKPMRF_", fields, error)) {
    return false;
  }
  int unit = putMsgRecordLength(fields);
  // As many records as the list has destinations, unless records= says how
  // many (also for a put to one queue, or a number that does not match).
  ZKLONG count = withRecords ? std::max(destinations, 0) : 0;
  if (args.has("records") &&
      (!parseValue(args.get("records"), "", count, error) || count < 0 || count > 1000)) {
    error = "records=" + args.get("records") + ": a number of records from 0 to 1000";
    return false;
  }
  std::size_t n = static_cast<std::size_t>(count);
  if (!args.checkRecordCount(kPmrKey.key, static_cast<int>(n), "put-message records", error) ||
      (pmoResponses &&
       !args.checkRecordCount(kRrKey.key, static_cast<int>(n), "response records", error))) {
    return false;
  }
  std::size_t mdAt = b.block.reserve(sizeof(ZKMD));
  std::size_t pmoAt = b.block.reserve(sizeof(ZKPMO));
  std::size_t pmrAt = b.block.reserve(n * unit);
  std::size_t rrAt = b.block.reserve(n * sizeof(ZKRR));
  b.block.allocate();
  b.md = b.block.as<ZKMD>(mdAt);
  *b.md = ZKMD_DEFAULT;
  b.md->Version = mdVersion;
  const StructDef &mdDef = structNamed("ZKMD");
  for (const auto &f : message.mdFields) {
    const FieldDef *field = mdDef.find(f.first);
    if (field == nullptr || !setFieldValue(*field, b.md, f.second, resolverOf(context), error)) {
      if (error.empty()) {
        error = "the message sets a descriptor field ZKMD has not: " + f.first;
      }
      return false;
    }
  }
  if (args.has("format")) {
    setFixed(b.md->Format, 8, args.get("format"));
  }
  if (!args.applyFields("md", b.md, mdDef, resolverOf(context), error)) {
    return false;
  }
  b.pmo = b.block.as<ZKPMO>(pmoAt);
  *b.pmo = ZKPMO_DEFAULT;
  b.pmo->Version = pmoVersion;
  if (args.has("options") && !parseValue(args.get("options"), "ZKPMO_", b.pmo->Options, error)) {
    return false;
  }
  if (args.has("context")) {
    ZKHOBJ h = 0;
    if (!handleOf(c, args.get("context"), h, error)) {
      return false;
    }
    b.pmo->Context = h;
  }
  if (n > 0) {
    b.pmo->RecsPresent = static_cast<ZKLONG>(n);
    b.pmo->PutMsgRecFields = fields;
    b.responses = b.block.as<ZKRR>(rrAt);
    b.records = static_cast<int>(n);
    for (std::size_t i = 0; i < n; ++i) {
      ZKRR *rr = b.responses + i;
      const int number = static_cast<int>(i + 1);
      if (!applyPutMsgRecord(context, args, number, fields, b.block.at(pmrAt) + i * unit, rr,
                             error) ||
          (pmoResponses &&
           !args.applyRecordFields(kRrKey.key, number, {{&structNamed("ZKRR"), rr, sizeof(ZKRR)}},
                                   resolverOf(context), error))) {
        return false;
      }
    }
    if (byOffset(args, "records")) {
      b.pmo->PutMsgRecOffset = unit > 0 ? static_cast<ZKLONG>(pmrAt - pmoAt) : 0;
      b.pmo->ResponseRecOffset = static_cast<ZKLONG>(rrAt - pmoAt);
    } else {
      b.pmo->PutMsgRecPtr = unit > 0 ? b.block.at(pmrAt) : nullptr;
      b.pmo->ResponseRecPtr = b.block.at(rrAt);
    }
  }
  return args.applyFields("pmo", b.pmo, structNamed("ZKPMO"), resolverOf(context), error);
}

std::string putResults(const ZKMD *md, const ZKPMO *pmo, ZKLONG compCode) {
  std::string text = "MsgId " + idText(md->MsgId);
  if (!allZero(md->CorrelId, 24)) {
    text += ", CorrelId " + idText(md->CorrelId);
  }
  if (compCode != ZKCC_FAILED) {
    std::string q = fixed(pmo->ResolvedQName, 48);
    if (!q.empty()) {
      text += ", resolved '" + q + "' on '" + fixed(pmo->ResolvedQMgrName, 48) + "'";
    }
    if (pmo->RecsPresent > 0 || pmo->UnknownDestCount > 0 || pmo->KnownDestCount > 1) {
      text += ", known " + std::to_string(pmo->KnownDestCount) + ", unknown " +
              std::to_string(pmo->UnknownDestCount) + ", invalid " +
              std::to_string(pmo->InvalidDestCount);
    }
  }
  if (pmo->Version >= ZKPMO_VERSION_2 && pmo->RecsPresent > 0) {
    const ZKRR *rr = subStructure<const ZKRR>(pmo, pmo->ResponseRecPtr, pmo->ResponseRecOffset);
    for (ZKLONG i = 0; rr != nullptr && i < pmo->RecsPresent; ++i) {
      text += "; [" + std::to_string(i + 1) + "] CompCode " + std::to_string(rr[i].CompCode) +
              " Reason " + reasonWithName(rr[i].Reason);
    }
  }
  return text;
}

// Runs ZKPUT (hobj set) or ZKPUT1 (o set) through the exits. False with
// `error` when a value to return cannot be made (before the call).
bool putCall(ScenarioContext &context, Connection &c, const std::string &handleName, ZKHOBJ hobj,
             OdBlock *o, PutBlock &b, const Args &args, std::string &error) {
  ZKOD *od = o != nullptr ? o->od : nullptr;
  ZKRR *responses = o != nullptr ? o->responses : b.responses;
  int records = o != nullptr ? o->destinations : b.records;
  Returned returned;
  if (!returned.prepare(context, args, "md", error) ||
      !returned.prepare(context, args, "pmo", error) ||
      (od != nullptr && !returned.prepare(context, args, "od", error)) ||
      !returned.prepareRecords(context, args, records, error)) {
    return false;
  }
  ZKHCONN hconn = c.hconn;
  PZKOD pOd = od;
  PZKMD pMd = b.md;
  PZKPMO pPmo = b.pmo;
  ZKLONG length = static_cast<ZKLONG>(b.data.size());
  std::string why;
  if (args.has("length")) {
    parseValue(args.get("length"), "", length, why);
    // A length beyond the data: the buffer holds that many bytes, zeros
    // after the data, so that the call reads only the application's memory.
    if (length > static_cast<ZKLONG>(b.data.size())) {
      b.data.resize(static_cast<std::size_t>(length), 0);
    }
  }
  PZKVOID pBuffer = b.data.empty() ? nullptr : b.data.data();
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  bool one = od != nullptr;
  std::string call = one ? "ZKPUT1" : "ZKPUT";
  if (one) {
    context.log.line("%s ZKPUT1 %s: %d bytes, format '%s'", c.name.c_str(), handleName.c_str(),
                     length, fixed(b.md->Format, 8).c_str());
  } else {
    context.log.line("%s ZKPUT %s (Hobj %d): %d bytes, format '%s'", c.name.c_str(),
                     handleName.c_str(), hobj, length, fixed(b.md->Format, 8).c_str());
  }
  ApiCall api = makeApiCall(one ? ZKXF_PUT1 : ZKXF_PUT, call, compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    if (one) {
      reinterpret_cast<PZK_PUT1_EXIT>(entry)(axp, axc, &hconn, &pOd, &pMd, &pPmo, &length, &pBuffer,
                                             &compCode, &reason);
    } else {
      reinterpret_cast<PZK_PUT_EXIT>(entry)(axp, axc, &hconn, &hobj, &pMd, &pPmo, &length, &pBuffer,
                                            &compCode, &reason);
    }
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    if (one) {
      s.addPointer("ZKOD address", reinterpret_cast<void *const *>(&pOd));
      describeOd(s, pOd);
    } else {
      s.addLong("Hobj", &hobj);
    }
    s.addPointer("ZKMD address", reinterpret_cast<void *const *>(&pMd));
    describeMd(s, pMd);
    s.addPointer("ZKPMO address", reinterpret_cast<void *const *>(&pPmo));
    describePmo(s, pPmo);
    s.addLong("BufferLength", &length);
    s.addPointer("Buffer address", &pBuffer);
    s.addBytes("Buffer", pBuffer, static_cast<std::size_t>(std::max<ZKLONG>(length, 0)));
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(c, api, [&]() {
    if (one) {
      context.qmgr.engine().put1(hconn, pOd, pMd, pPmo, length, pBuffer, &compCode, &reason);
    } else {
      context.qmgr.engine().put(hconn, hobj, pMd, pPmo, length, pBuffer, &compCode, &reason);
    }
    returned.apply("md", pMd);
    returned.apply("pmo", pPmo);
    returned.apply("od", pOd);
    returned.apply("rr", responses, records);
    returned.log(context, c);
  });
  c.keep("md", b.md, sizeof(ZKMD));
  c.keep("pmo", b.pmo, sizeof(ZKPMO));
  if (one) {
    c.keep("od", od, sizeof(ZKOD));
  }
  std::string details = putResults(b.md, b.pmo, compCode);
  bool list = one && od->Version >= ZKOD_VERSION_2 && od->RecsPresent > 0;
  if (one && !list && compCode != ZKCC_FAILED) {
    std::string odText = odResults(od);
    if (!odText.empty() && odText.find("resolved '") == std::string::npos) {
      details += ", " + odText;
    }
  }
  logResult(context, c, call, compCode, reason, details);
  if (args.has("save") && compCode != ZKCC_FAILED) {
    saveIds(context, args.get("save"), *b.md);
  }
  return true;
}

} // namespace

// ---- the message of a put -------------------------------------------------------------

bool messageOf(ScenarioContext &context, const Args &args, BuiltMessage &message,
               std::string &error) {
  message = BuiltMessage();
  int sources = 0;
  for (const char *k : {"msg", "text", "hex", "file", "size"}) {
    sources += args.has(k) ? 1 : 0;
  }
  if (sources > 1) {
    error = "give the message data once: msg=, text=, hex=, file= or size=";
    return false;
  }
  ZKLONG ccsid = 1208;
  if (args.has("ccsid") && !parseValue(args.get("ccsid"), "", ccsid, error)) {
    return false;
  }
  if (args.has("msg")) {
    std::lock_guard<std::mutex> lock(context.shared.mutex);
    auto it = context.shared.messages.find(args.get("msg"));
    if (it == context.shared.messages.end()) {
      error = "no message named '" + args.get("msg") + "' (define it with 'message')";
      return false;
    }
    message = it->second;
    return true;
  }
  if (args.has("text")) {
    std::string text = args.get("text");
    std::vector<unsigned char> in(text.begin(), text.end());
    if (!convertText(in, 1208, ccsid, message.data)) {
      message.data = in;
    }
    message.mdFields = {{"Format", ZKFMT_STRING}, {"CodedCharSetId", std::to_string(ccsid)}};
    return true;
  }
  if (args.has("hex")) {
    FieldDef f;
    f.name = "hex";
    f.kind = FieldKind::Bytes;
    std::string digits = args.get("hex");
    f.size = static_cast<uint32_t>(digits.size() / 2 + 1);
    std::vector<unsigned char> scratch(f.size);
    if (!setFieldValue(f, scratch.data(), "0x" + digits, nullptr, error)) {
      return false;
    }
    message.data.assign(scratch.begin(), scratch.begin() + (digits.size() + 1) / 2);
    return true;
  }
  if (args.has("file")) {
    return readFile(context, args.get("file"), message.data, error);
  }
  if (args.has("size")) {
    ZKLONG n = 0;
    if (!parseValue(args.get("size"), "", n, error) || n < 0) {
      error = "size=" + args.get("size") + ": a length, 0 or more";
      return false;
    }
    static const char pattern[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (ZKLONG i = 0; i < n; ++i) {
      message.data.push_back(static_cast<unsigned char>(pattern[i % 36]));
    }
    message.mdFields = {{"Format", ZKFMT_STRING}};
  }
  return true;
}

// ---- connx ---------------------------------------------------------------------------

// The authentication records of the TLS options.
const RecordKey kAirKey = {"air", {"ZKAIR"}};

bool checkConnx(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 2);
  return args.checkKeys({"qmgr", "cno", "cd", "sco", "air", "ldap", "ldap.N", "csp", "conntag",
                         "by", "by.cd", "by.sco", "by.air", "by.ldap", "by.csp", "by.user",
                         "by.password"},
                        {"cno", "cd", "sco", "csp"}, error, {kAirKey}) &&
         checkBy(args, error) && args.checkValues({{"cno", ""}, {"cd", ""}, {"sco", ""}}, error);
}

bool runConnx(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 2);
  ZKLONG cdV = 0;
  ZKLONG scoV = 0;
  if (!version(args, "cd", 1, 99, cdV, error) || !version(args, "sco", 1, 99, scoV, error)) {
    return false;
  }
  std::vector<ZKLONG> airs;
  for (const std::string &v : splitList(args.get("air"))) {
    ZKLONG n = 0;
    if (!parseValue(v, "", n, error)) {
      return false;
    }
    airs.push_back(n);
  }
  std::vector<std::string> ldaps = splitList(args.get("ldap"));
  // The records that have a user name (a record without one has neither
  // pointer nor offset).
  std::vector<bool> named(ldaps.size(), true);
  // ldap.N=NAME: the user name of record N whole, commas and all.
  for (std::size_t i = 1; i <= airs.size(); ++i) {
    std::string key = "ldap." + std::to_string(i);
    if (args.has(key)) {
      ldaps.resize(std::max(ldaps.size(), i));
      named.resize(ldaps.size(), false);
      ldaps[i - 1] = args.get(key);
      named[i - 1] = true;
    }
  }
  for (const auto &kv : args.named()) {
    if (kv.first.rfind("ldap.", 0) == 0 && std::stoul(kv.first.substr(5)) > airs.size()) {
      error = "'" + kv.first + "': the call passes " + std::to_string(airs.size()) +
              " authentication records (air=)";
      return false;
    }
  }
  if (!args.checkRecordCount(kAirKey.key, static_cast<int>(airs.size()),
                             "authentication records (air=)", error)) {
    return false;
  }
  if (!airs.empty() && scoV == 0) {
    scoV = ZKSCO_VERSION_1;
  }
  std::string csp = args.get("csp");
  bool hasCsp = args.has("csp");
  std::string user = csp.substr(0, csp.find(':'));
  std::string password = csp.find(':') == std::string::npos ? "" : csp.substr(csp.find(':') + 1);
  ZKLONG cnoV = hasCsp ? 5 : scoV != 0 ? 4 : args.has("conntag") ? 3 : cdV != 0 ? 2 : 1;
  if (!version(args, "cno", 1, 99, cnoV, error)) {
    return false;
  }

  Block block;
  std::size_t cnoAt = block.reserve(sizeof(ZKCNO));
  std::size_t cdAt = cdV != 0 ? block.reserve(sizeof(ZKCD)) : 0;
  std::size_t scoAt = scoV != 0 ? block.reserve(sizeof(ZKSCO)) : 0;
  // The records follow each other, each of its own version's length.
  std::vector<std::size_t> airAt;
  std::size_t airTotal = 0;
  for (ZKLONG v : airs) {
    airAt.push_back(airTotal);
    airTotal += v >= ZKAIR_VERSION_2 ? ZKAIR_LENGTH_2 : ZKAIR_LENGTH_1;
  }
  std::size_t airStart = airs.empty() ? 0 : block.reserve(airTotal);
  for (std::size_t &at : airAt) {
    at += airStart;
  }
  std::vector<std::size_t> ldapAt;
  for (const std::string &name : ldaps) {
    ldapAt.push_back(block.reserve(name.size()));
  }
  std::size_t cspAt = hasCsp ? block.reserve(sizeof(ZKCSP)) : 0;
  std::size_t userAt = hasCsp ? block.reserve(user.size()) : 0;
  std::size_t passwordAt = hasCsp ? block.reserve(password.size()) : 0;
  block.allocate();

  ZKCNO *cno = block.as<ZKCNO>(cnoAt);
  *cno = ZKCNO_DEFAULT;
  cno->Version = cnoV;
  if (args.has("conntag")) {
    std::string tag = args.get("conntag");
    std::memcpy(cno->ConnTag, tag.data(), std::min<std::size_t>(tag.size(), 128));
  }
  ZKCD *cd = nullptr;
  if (cdV != 0) {
    cd = block.as<ZKCD>(cdAt);
    *cd = ZKCD_DEFAULT;
    cd->Version = cdV;
    setFixed(cd->ChannelName, sizeof cd->ChannelName, "ZKQM.SVRCONN");
    cd->ChannelType = ZKCHT_CLNTCONN;
    setFixed(cd->QMgrName, sizeof cd->QMgrName, context.qmgr.name());
    setFixed(cd->ConnectionName, sizeof cd->ConnectionName, "localhost(1414)");
    setFixed(cd->ShortConnectionName, sizeof cd->ShortConnectionName, "localhost(1414)");
    std::size_t lengths[] = {ZKCD_LENGTH_1, ZKCD_LENGTH_2, ZKCD_LENGTH_3, ZKCD_LENGTH_4,
                             ZKCD_LENGTH_5, ZKCD_LENGTH_6, ZKCD_LENGTH_7, ZKCD_LENGTH_8,
                             ZKCD_LENGTH_9, ZKCD_LENGTH_10};
    cd->StrucLength = static_cast<ZKLONG>(lengths[std::clamp<ZKLONG>(cdV, 1, 10) - 1]);
    if (byOffset(args, "cd")) {
      cno->ClientConnOffset = static_cast<ZKLONG>(cdAt - cnoAt);
    } else {
      cno->ClientConnPtr = cd;
    }
    if (!args.applyFields("cd", cd, structNamed("ZKCD"), resolverOf(context), error)) {
      return false;
    }
  }
  ZKSCO *sco = nullptr;
  if (scoV != 0) {
    sco = block.as<ZKSCO>(scoAt);
    *sco = ZKSCO_DEFAULT;
    sco->Version = scoV;
    setFixed(sco->KeyRepository, sizeof sco->KeyRepository, "/var/zk/ssl/key");
    sco->AuthInfoRecCount = static_cast<ZKLONG>(airs.size());
    if (byOffset(args, "sco")) {
      cno->SSLConfigOffset = static_cast<ZKLONG>(scoAt - cnoAt);
    } else {
      cno->SSLConfigPtr = sco;
    }
    for (std::size_t i = 0; i < airs.size(); ++i) {
      ZKAIR *air = block.as<ZKAIR>(airAt[i]);
      std::size_t length = airs[i] >= ZKAIR_VERSION_2 ? ZKAIR_LENGTH_2 : ZKAIR_LENGTH_1;
      ZKAIR fresh = ZKAIR_DEFAULT;
      std::memcpy(air, &fresh, length);
      air->Version = airs[i];
      setFixed(air->AuthInfoConnName, sizeof air->AuthInfoConnName,
               "ldap" + std::to_string(i + 1) + ".zkqm.test(389)");
      setFixed(air->LDAPPassword, sizeof air->LDAPPassword, "ldap-secret");
      if (i < ldaps.size() && named[i]) {
        std::memcpy(block.at(ldapAt[i]), ldaps[i].data(), ldaps[i].size());
        air->LDAPUserNameLength = static_cast<ZKLONG>(ldaps[i].size());
        if (byOffset(args, "ldap")) {
          air->LDAPUserNameOffset = static_cast<ZKLONG>(ldapAt[i] - airAt[i]);
        } else {
          air->LDAPUserNamePtr = block.at(ldapAt[i]);
        }
      }
      if (!args.applyRecordFields(kAirKey.key, static_cast<int>(i + 1),
                                  {{&structNamed("ZKAIR"), air, static_cast<uint32_t>(length)}},
                                  resolverOf(context), error)) {
        return false;
      }
    }
    if (!airs.empty()) {
      if (byOffset(args, "air")) {
        sco->AuthInfoRecOffset = static_cast<ZKLONG>(airAt[0] - scoAt);
      } else {
        sco->AuthInfoRecPtr = block.at(airAt[0]);
      }
    }
    if (!args.applyFields("sco", sco, structNamed("ZKSCO"), resolverOf(context), error)) {
      return false;
    }
  }
  ZKCSP *sp = nullptr;
  if (hasCsp) {
    sp = block.as<ZKCSP>(cspAt);
    *sp = ZKCSP_DEFAULT;
    sp->AuthenticationType = ZKCSP_AUTH_USER_ID_AND_PWD;
    std::memcpy(block.at(userAt), user.data(), user.size());
    std::memcpy(block.at(passwordAt), password.data(), password.size());
    sp->CSPUserIdLength = static_cast<ZKLONG>(user.size());
    sp->CSPPasswordLength = static_cast<ZKLONG>(password.size());
    if (byOffset(args, "user")) {
      sp->CSPUserIdOffset = static_cast<ZKLONG>(userAt - cspAt);
    } else {
      sp->CSPUserIdPtr = block.at(userAt);
    }
    // The password goes as the user identifier does, unless by.password says.
    if (args.get("by.password", byOffset(args, "user") ? "offset" : "pointer") == "offset") {
      sp->CSPPasswordOffset = static_cast<ZKLONG>(passwordAt - cspAt);
    } else {
      sp->CSPPasswordPtr = block.at(passwordAt);
    }
    if (byOffset(args, "csp")) {
      cno->SecurityParmsOffset = static_cast<ZKLONG>(cspAt - cnoAt);
    } else {
      cno->SecurityParmsPtr = sp;
    }
    if (!args.applyFields("csp", sp, structNamed("ZKCSP"), resolverOf(context), error)) {
      return false;
    }
  }
  if (!args.applyFields("cno", cno, structNamed("ZKCNO"), resolverOf(context), error)) {
    return false;
  }
  context.qmgr.connect(*c, ZKXF_CONNX, cno, args.get("qmgr", context.qmgr.name()));
  c->keep("cd", cd, sizeof(ZKCD));
  c->keep("sco", sco, sizeof(ZKSCO));
  c->keep("csp", sp, sizeof(ZKCSP));
  ++context.calls;
  if (c->lastCompCode == ZKCC_FAILED) {
    ++context.failedCalls;
  }
  return true;
}

// ---- open and close ----------------------------------------------------------------

bool checkOpen(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 4);
  std::vector<std::string> keys = kOdKeys;
  keys.push_back("options");
  return args.checkKeys(keys, kOdPrefixes, error, {kOrKey, kRrKey, kReturnRrKey}) &&
         checkBy(args, error) && args.checkValues({{"options", "ZKOO_"}, {"od", ""}}, error);
}

bool runOpen(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  const std::string &handleName = cmd.words[2];
  Args args(cmd, 4);
  OdBlock b;
  if (!buildOd(context, cmd.words[3], args, b, error)) {
    return false;
  }
  ZKLONG options = b.od->ObjectType == ZKOT_Q_MGR ? ZKOO_INQUIRE : ZKOO_OUTPUT;
  if (args.has("options") && !parseValue(args.get("options"), "ZKOO_", options, error)) {
    return false;
  }
  Returned returned;
  if (!returned.prepare(context, args, "od", error) ||
      !returned.prepareRecords(context, args, b.destinations, error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  PZKOD pOd = b.od;
  ZKHOBJ hobj = ZKHO_UNUSABLE_HOBJ;
  PZKHOBJ pHobj = &hobj;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line(
      "%s ZKOPEN %s: '%s' type %d, options 0x%08X%s", c->name.c_str(), handleName.c_str(),
      fixed(b.od->ObjectName, 48).c_str(), b.od->ObjectType, static_cast<unsigned>(options),
      b.destinations > 0 ? (", distribution list of " + std::to_string(b.destinations)).c_str()
                         : "");
  ApiCall api = makeApiCall(ZKXF_OPEN, "ZKOPEN", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_OPEN_EXIT>(entry)(axp, axc, &hconn, &pOd, &options, &pHobj, &compCode,
                                           &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addPointer("ZKOD address", reinterpret_cast<void *const *>(&pOd));
    describeOd(s, pOd);
    s.addLong("Options", &options);
    s.addPointer("Hobj address", reinterpret_cast<void *const *>(&pHobj));
    s.addLong("Hobj", pHobj);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(*c, api, [&]() {
    context.qmgr.engine().open(hconn, pOd, options, pHobj, &compCode, &reason);
    returned.apply("od", pOd);
    returned.apply("rr", b.responses, b.destinations);
    returned.log(context, *c);
  });
  c->keep("od", b.od, sizeof(ZKOD));
  std::string details;
  if (compCode != ZKCC_FAILED) {
    c->handles[handleName] = *pHobj;
    c->lastHobj = *pHobj;
    if (b.destinations > 0) {
      c->listSizes[handleName] = b.destinations;
    }
    details = "Hobj " + std::to_string(*pHobj);
    std::string name = fixed(b.od->ObjectName, 48);
    if (name != fixed(cmd.words[3].c_str(), cmd.words[3].size()) && cmd.words[3] != "-") {
      details += ", dynamic queue '" + name + "'";
    }
    std::string more = odResults(b.od);
    if (!more.empty()) {
      details += ", " + more;
    }
  } else if (b.destinations > 0) {
    details = odResults(b.od);
  }
  logResult(context, *c, "ZKOPEN", compCode, reason, details);
  return true;
}

bool checkClose(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  return args.checkKeys({"options"}, {}, error) && args.checkValues({{"options", "ZKCO_"}}, error);
}

bool runClose(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKHOBJ hobj = 0;
  Connection *c = handleCallOf(context, cmd, hobj, error);
  if (c == nullptr) {
    return false;
  }
  const std::string &handleName = cmd.words[2];
  Args args(cmd, 3);
  ZKLONG options = ZKCO_NONE;
  if (args.has("options") && !parseValue(args.get("options"), "ZKCO_", options, error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  PZKHOBJ pHobj = &hobj;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKCLOSE %s (Hobj %d), options 0x%08X", c->name.c_str(), handleName.c_str(),
                   hobj, static_cast<unsigned>(options));
  ApiCall api = makeApiCall(ZKXF_CLOSE, "ZKCLOSE", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_CLOSE_EXIT>(entry)(axp, axc, &hconn, &pHobj, &options, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addPointer("Hobj address", reinterpret_cast<void *const *>(&pHobj));
    s.addLong("Hobj", pHobj);
    s.addLong("Options", &options);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(
      *c, api, [&]() { context.qmgr.engine().close(hconn, pHobj, options, &compCode, &reason); });
  if (compCode != ZKCC_FAILED) {
    c->handles.erase(handleName);
    c->listSizes.erase(handleName);
  }
  logResult(context, *c, "ZKCLOSE", compCode, reason,
            compCode != ZKCC_FAILED ? "Hobj " + std::to_string(*pHobj) : "");
  return true;
}

// ---- put and put1 -------------------------------------------------------------------

bool checkPut(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  return args.checkKeys(kPutKeys, kPutPrefixes, error, {kPmrKey, kRrKey, kReturnRrKey}) &&
         checkBy(args, error) && args.checkValues(kPutValues, error);
}

bool runPut(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKHOBJ hobj = 0;
  Connection *c = handleCallOf(context, cmd, hobj, error);
  if (c == nullptr) {
    return false;
  }
  const std::string &handleName = cmd.words[2];
  Args args(cmd, 3);
  auto list = c->listSizes.find(handleName);
  PutBlock b;
  if (!buildPut(context, *c, args, list != c->listSizes.end() ? list->second : 0, true, b, error)) {
    return false;
  }
  return putCall(context, *c, handleName, hobj, nullptr, b, args, error);
}

bool checkPut1(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  std::vector<std::string> keys = kPutKeys;
  keys.insert(keys.end(), kOdKeys.begin(), kOdKeys.end());
  std::vector<std::string> prefixes = kPutPrefixes;
  prefixes.insert(prefixes.end(), kOdPrefixes.begin(), kOdPrefixes.end());
  return args.checkKeys(keys, prefixes, error, {kPmrKey, kOrKey, kRrKey, kReturnRrKey}) &&
         checkBy(args, error) && args.checkValues(kPutValues, error) &&
         args.checkValues({{"od", ""}}, error);
}

bool runPut1(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 3);
  OdBlock o;
  if (!buildOd(context, cmd.words[2], args, o, error)) {
    return false;
  }
  PutBlock b;
  if (!buildPut(context, *c, args, o.destinations, false, b, error)) {
    return false;
  }
  return putCall(context, *c, cmd.words[2], 0, &o, b, args, error);
}

// ---- get ------------------------------------------------------------------------------

bool checkGet(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 3);
  return args.checkKeys({"md", "gmo", "options", "wait", "buffer", "match", "msgid", "correlid",
                         "ccsid", "encoding", "save", "datalength"},
                        {"md", "gmo", "return.md", "return.gmo"}, error) &&
         args.checkValues({{"options", "ZKGMO_"},
                           {"wait", "ZKWI_"},
                           {"match", "ZKMO_,ZKMO_MATCH_"},
                           {"md", ""},
                           {"gmo", ""},
                           {"buffer", ""},
                           {"ccsid", ""},
                           {"encoding", "ZKENC_"}},
                          error);
}

bool runGet(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKHOBJ hobj = 0;
  Connection *c = handleCallOf(context, cmd, hobj, error);
  if (c == nullptr) {
    return false;
  }
  const std::string &handleName = cmd.words[2];
  Args args(cmd, 3);
  ZKLONG mdVersion = ZKMD_VERSION_1;
  ZKLONG gmoVersion = args.has("match") ? ZKGMO_VERSION_2 : ZKGMO_VERSION_1;
  ZKLONG bufferLength = 4096;
  if (!version(args, "md", 1, 99, mdVersion, error) ||
      !version(args, "gmo", 1, 99, gmoVersion, error) ||
      (args.has("buffer") && !parseValue(args.get("buffer"), "", bufferLength, error))) {
    return false;
  }
  ZKMD md = ZKMD_DEFAULT;
  md.Version = mdVersion;
  ZKGMO gmo = ZKGMO_DEFAULT;
  gmo.Version = gmoVersion;
  if (args.has("options") && !parseValue(args.get("options"), "ZKGMO_", gmo.Options, error)) {
    return false;
  }
  if (args.has("wait")) {
    gmo.Options |= ZKGMO_WAIT;
    if (!parseValue(args.get("wait"), "ZKWI_", gmo.WaitInterval, error)) {
      return false;
    }
  }
  if (args.has("match") &&
      !parseValue(args.get("match"), "ZKMO_,ZKMO_MATCH_", gmo.MatchOptions, error)) {
    return false;
  }
  const StructDef &mdDef = structNamed("ZKMD");
  if ((args.has("msgid") &&
       !setFieldValue(*mdDef.find("MsgId"), &md, args.get("msgid"), resolverOf(context), error)) ||
      (args.has("correlid") && !setFieldValue(*mdDef.find("CorrelId"), &md, args.get("correlid"),
                                              resolverOf(context), error)) ||
      (args.has("ccsid") && !parseValue(args.get("ccsid"), "", md.CodedCharSetId, error)) ||
      (args.has("encoding") && !parseValue(args.get("encoding"), "ZKENC_", md.Encoding, error)) ||
      !args.applyFields("md", &md, mdDef, resolverOf(context), error) ||
      !args.applyFields("gmo", &gmo, structNamed("ZKGMO"), resolverOf(context), error)) {
    return false;
  }
  Returned returned;
  if (!returned.prepare(context, args, "md", error) ||
      !returned.prepare(context, args, "gmo", error)) {
    return false;
  }
  std::vector<unsigned char> buffer(static_cast<std::size_t>(std::max<ZKLONG>(bufferLength, 0)), 0);
  ZKHCONN hconn = c->hconn;
  PZKMD pMd = &md;
  PZKGMO pGmo = &gmo;
  PZKVOID pBuffer = buffer.empty() ? nullptr : buffer.data();
  ZKLONG dataLength = -1;
  PZKLONG pDataLength = args.get("datalength") == "none" ? nullptr : &dataLength;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKGET %s (Hobj %d): buffer %d, options 0x%08X", c->name.c_str(),
                   handleName.c_str(), hobj, bufferLength, static_cast<unsigned>(gmo.Options));
  auto describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("Hobj", &hobj);
    s.addPointer("ZKMD address", reinterpret_cast<void *const *>(&pMd));
    describeMd(s, pMd);
    s.addPointer("ZKGMO address", reinterpret_cast<void *const *>(&pGmo));
    describeGmo(s, pGmo);
    s.addLong("BufferLength", &bufferLength);
    s.addPointer("Buffer address", &pBuffer);
    s.addBytes("Buffer", pBuffer, buffer.size());
    s.addPointer("DataLength address", reinterpret_cast<void *const *>(&pDataLength));
    if (pDataLength != nullptr) {
      s.addLong("DataLength", pDataLength);
    }
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  auto invokeWith = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_GET_EXIT>(entry)(axp, axc, &hconn, &hobj, &pMd, &pGmo, &bufferLength,
                                          &pBuffer, &pDataLength, &compCode, &reason);
  };
  ApiCall api = makeApiCall(ZKXF_GET, "ZKGET", compCode, reason);
  api.invoke = invokeWith;
  api.describe = describe;
  ApiCall conversion;
  conversion.function = ZKXF_DATA_CONV_ON_GET;
  conversion.name = "DATA_CONV_ON_GET";
  conversion.invoke = invokeWith;
  conversion.describe = describe;
  context.qmgr.perform(*c, api, [&]() {
    context.qmgr.engine().get(
        hconn, hobj, pMd, pGmo, bufferLength, pBuffer, pDataLength, &compCode, &reason, [&]() {
          context.log.line("%s   data conversion: CompCode %d Reason %s", c->name.c_str(), compCode,
                           reasonWithName(reason).c_str());
          runExitPoint(*c, conversion);
        });
    returned.apply("md", pMd);
    returned.apply("gmo", pGmo);
    returned.log(context, *c);
  });
  c->keep("md", &md, sizeof md);
  c->keep("gmo", &gmo, sizeof gmo);
  std::string details;
  if (compCode != ZKCC_FAILED) {
    ZKLONG returned = std::min(dataLength, bufferLength);
    c->lastData.assign(buffer.begin(), buffer.begin() + std::max<ZKLONG>(returned, 0));
    c->lastDataLength = dataLength;
    details = std::to_string(std::max<ZKLONG>(returned, 0)) + " of " + std::to_string(dataLength) +
              " bytes, MsgId " + idText(md.MsgId);
    if (!allZero(md.CorrelId, 24)) {
      details += ", CorrelId " + idText(md.CorrelId);
    }
    details += ", format '" + fixed(md.Format, 8) + "', priority " + std::to_string(md.Priority) +
               ", persistence " + std::to_string(md.Persistence);
    if (md.BackoutCount != 0) {
      details += ", backout count " + std::to_string(md.BackoutCount);
    }
    if (md.CodedCharSetId != 1208) {
      details += ", CCSID " + std::to_string(md.CodedCharSetId);
    }
    if (md.Encoding != ZKENC_NATIVE) {
      details += ", encoding " + std::to_string(md.Encoding);
    }
    std::string text = printable(c->lastData.data(), c->lastData.size());
    details += ", data '" + text + "'";
    if (args.has("save")) {
      saveIds(context, args.get("save"), md);
    }
  } else {
    c->lastData.clear();
    c->lastDataLength = dataLength;
  }
  logResult(context, *c, "ZKGET", compCode, reason, details);
  return true;
}

} // namespace zkqm
