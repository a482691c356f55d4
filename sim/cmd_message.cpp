// 'message NAME {': builds message data from a chain of parts, one per line:
// the platform's headers in any order and the data after them. Each header
// names the format of the part after it and carries the encoding and CCSID
// of what follows; a header's integers are written in the encoding of the
// descriptor or header before it, so a chain can mix the native encoding
// (546) with the reversed one (273).
//
//   message order encoding=546 ccsid=1208 md.Persistence=PERSISTENT {
//     rfh2 folder="<fmt><type>xml</type></fmt>" folder="<app><id>7</id></app>"
//     dlh Reason=2053 DestQName=APP.IN DestQMgrName=ZKQM1
//     xml "<order id='7'/>"
//   }
#include <cstring>

#include "commands.h"
#include "describe.h"
#include "engine_util.h"

namespace zkqm {
namespace {

// Writes integers in one encoding: native (low byte first) unless the
// integer part of the encoding says high byte first.
class Writer {
public:
  explicit Writer(bool reversed) : reversed_(reversed) {}
  void put32(ZKLONG v) {
    unsigned char b[4];
    std::memcpy(b, &v, 4);
    if (reversed_) {
      std::swap(b[0], b[3]);
      std::swap(b[1], b[2]);
    }
    bytes.insert(bytes.end(), b, b + 4);
  }
  void put64(ZKINT64 v) {
    unsigned char b[8];
    std::memcpy(b, &v, 8);
    if (reversed_) {
      for (int i = 0; i < 4; ++i) {
        std::swap(b[i], b[7 - i]);
      }
    }
    bytes.insert(bytes.end(), b, b + 8);
  }
  void put(const std::vector<unsigned char> &data) {
    bytes.insert(bytes.end(), data.begin(), data.end());
  }
  void pad(unsigned char fill = 0) {
    while (bytes.size() % 4 != 0) {
      bytes.push_back(fill);
    }
  }
  void set32(std::size_t at, ZKLONG v) {
    Writer w(reversed_);
    w.put32(v);
    std::memcpy(bytes.data() + at, w.bytes.data(), 4);
  }
  std::vector<unsigned char> bytes;

private:
  bool reversed_;
};

bool integersReversed(ZKLONG encoding) {
  return (encoding & ZKENC_INTEGER_MASK) == ZKENC_INTEGER_NORMAL;
}

// The integers of a structure in place, turned to the other byte order.
void swapIntegers(std::vector<unsigned char> &bytes, const StructDef &def) {
  for (const FieldDef &f : def.fields) {
    if (f.offset + f.size > bytes.size()) {
      continue;
    }
    if (f.kind == FieldKind::Int32) {
      std::swap(bytes[f.offset], bytes[f.offset + 3]);
      std::swap(bytes[f.offset + 1], bytes[f.offset + 2]);
    } else if (f.kind == FieldKind::Int64) {
      for (int i = 0; i < 4; ++i) {
        std::swap(bytes[f.offset + i], bytes[f.offset + 7 - i]);
      }
    }
  }
}

template <typename T> std::vector<unsigned char> bytesOf(const T &v) {
  const auto *p = reinterpret_cast<const unsigned char *>(&v);
  return std::vector<unsigned char>(p, p + sizeof v);
}

std::vector<unsigned char> textBytes(const std::string &text, ZKLONG ccsid) {
  std::vector<unsigned char> in(text.begin(), text.end());
  std::vector<unsigned char> out;
  if (!convertText(in, 1208, ccsid, out)) {
    return in; // a code page zkqm does not know: the bytes as written
  }
  return out;
}

std::string formatOf(const ScenarioCommand &part) {
  const std::string &k = part.words[0];
  Args args(part, 1);
  if (k == "xqh") {
    return ZKFMT_XMIT_Q_HEADER;
  }
  if (k == "dh") {
    return ZKFMT_DIST_HEADER;
  }
  if (k == "rmh") {
    return ZKFMT_REF_MSG_HEADER;
  }
  if (k == "dlh") {
    return ZKFMT_DEAD_LETTER_HEADER;
  }
  if (k == "mde") {
    return ZKFMT_MD_EXTENSION;
  }
  if (k == "rfh") {
    return ZKFMT_RF_HEADER;
  }
  if (k == "rfh2") {
    return ZKFMT_RF_HEADER_2;
  }
  if (k == "tm") {
    return ZKFMT_TRIGGER;
  }
  if (k == "eph") {
    return ZKFMT_EMBEDDED_PCF;
  }
  std::string explicitFormat = args.get("format");
  if (!explicitFormat.empty()) {
    explicitFormat.resize(8, ' ');
    return explicitFormat;
  }
  if (k == "pcf") {
    std::string type = args.get("Type", "COMMAND");
    ZKLONG t = ZKCFT_COMMAND;
    std::string why;
    parseValue(type, "ZKCFT_", t, why);
    return t == ZKCFT_EVENT                            ? ZKFMT_EVENT
           : t == ZKCFT_COMMAND || t == ZKCFT_RESPONSE ? ZKFMT_ADMIN
                                                       : ZKFMT_PCF;
  }
  if (k == "text" || k == "xml" || k == "size") {
    return ZKFMT_STRING;
  }
  return "        ";
}

// The parameter identifier (or an integer value) of a PCF line: a number or
// a constant name, with or without its prefix.
bool parameterId(const std::string &text, ZKLONG &id, std::string &error) {
  for (const char *prefix : {"ZKCA_", "ZKIA_", "ZKCACF_", "ZKIACF_", "ZKCACH_", "ZK"}) {
    if (parseValue(text, prefix, id, error)) {
      return true;
    }
  }
  return false;
}

// An integer value of a PCF line: a number, a selector, or an attribute
// value by name (LOCAL, PUT_INHIBITED).
bool integerValue(const std::string &text, ZKLONG &value, std::string &error) {
  return parseValue(text, kAttributeValuePrefixes, value, error) || parameterId(text, value, error);
}

bool hexBytes(const std::string &text, std::vector<unsigned char> &out, std::string &error) {
  FieldDef f;
  f.name = "hex";
  f.kind = FieldKind::Bytes;
  f.size = static_cast<uint32_t>(text.size() / 2 + 2);
  std::vector<unsigned char> scratch(f.size);
  std::string value = text.rfind("0x", 0) == 0 ? text : "0x" + text;
  if (text.empty()) {
    out.clear();
    return true;
  }
  if (!setFieldValue(f, scratch.data(), value, nullptr, error)) {
    return false;
  }
  std::string digits = value.substr(2);
  out.assign(scratch.begin(), scratch.begin() + (digits.size() + 1) / 2);
  return true;
}

// Writes the parameters of a command-format body; `count` gets the number
// of parameters at this level.
bool writeParameters(const std::vector<ScenarioCommand> &lines, Writer &w, ZKLONG ccsid,
                     ZKLONG &count, std::string &error) {
  count = 0;
  for (const ScenarioCommand &line : lines) {
    const std::string &k = line.words[0];
    Args args(line, 1);
    const auto &pos = args.positional();
    ZKLONG parm = 0;
    std::size_t start = w.bytes.size();
    auto header = [&](ZKLONG type) {
      w.put32(type);
      w.put32(0); // StrucLength, set at the end
      w.put32(parm);
    };
    auto finish = [&]() {
      w.pad();
      w.set32(start + 4, static_cast<ZKLONG>(w.bytes.size() - start));
    };
    ZKLONG stringCcsid = ccsid;
    if (args.has("ccsid") && !parseValue(args.get("ccsid"), "", stringCcsid, error)) {
      return false;
    }
    if (k == "raw") {
      ZKLONG type = 0;
      std::vector<unsigned char> data;
      if (!parseValue(pos[0], "ZKCFT_", type, error) || !parameterId(pos[1], parm, error) ||
          !hexBytes(pos.size() > 2 ? pos[2] : "", data, error)) {
        return false;
      }
      header(type);
      w.put(data);
      finish();
      ++count;
      continue;
    }
    if (!parameterId(pos[0], parm, error)) {
      return false;
    }
    if (k == "int") {
      ZKLONG v = 0;
      if (!integerValue(pos[1], v, error)) {
        return false;
      }
      header(ZKCFT_INTEGER);
      w.put32(v);
    } else if (k == "int64") {
      header(ZKCFT_INTEGER64);
      w.put32(0);
      w.put64(std::stoll(pos[1], nullptr, 0));
    } else if (k == "string") {
      std::vector<unsigned char> s = textBytes(pos[1], stringCcsid);
      header(ZKCFT_STRING);
      w.put32(stringCcsid);
      w.put32(static_cast<ZKLONG>(s.size()));
      w.put(s);
    } else if (k == "intlist") {
      header(ZKCFT_INTEGER_LIST);
      w.put32(static_cast<ZKLONG>(pos.size() - 1));
      for (std::size_t i = 1; i < pos.size(); ++i) {
        ZKLONG v = 0;
        if (!integerValue(pos[i], v, error)) {
          return false;
        }
        w.put32(v);
      }
    } else if (k == "int64list") {
      header(ZKCFT_INTEGER64_LIST);
      w.put32(static_cast<ZKLONG>(pos.size() - 1));
      for (std::size_t i = 1; i < pos.size(); ++i) {
        w.put64(std::stoll(pos[i], nullptr, 0));
      }
    } else if (k == "strlist") {
      std::size_t width = 0;
      for (std::size_t i = 1; i < pos.size(); ++i) {
        width = std::max(width, textBytes(pos[i], stringCcsid).size());
      }
      if (args.has("length")) {
        width = static_cast<std::size_t>(std::stoul(args.get("length")));
      }
      header(ZKCFT_STRING_LIST);
      w.put32(stringCcsid);
      w.put32(static_cast<ZKLONG>(pos.size() - 1));
      w.put32(static_cast<ZKLONG>(width));
      for (std::size_t i = 1; i < pos.size(); ++i) {
        std::vector<unsigned char> s = textBytes(pos[i], stringCcsid);
        s.resize(width, ' ');
        w.put(s);
      }
    } else if (k == "bytes") {
      std::vector<unsigned char> data;
      if (!hexBytes(pos[1], data, error)) {
        return false;
      }
      header(ZKCFT_BYTE_STRING);
      w.put32(static_cast<ZKLONG>(data.size()));
      w.put(data);
    } else if (k == "intfilter" || k == "strfilter" || k == "bytesfilter") {
      ZKLONG op = 0;
      if (!parseValue(pos[1], "ZKCFOP_", op, error)) {
        return false;
      }
      if (k == "intfilter") {
        ZKLONG v = 0;
        if (!integerValue(pos[2], v, error)) {
          return false;
        }
        header(ZKCFT_INTEGER_FILTER);
        w.put32(op);
        w.put32(v);
      } else if (k == "strfilter") {
        std::vector<unsigned char> s = textBytes(pos[2], stringCcsid);
        header(ZKCFT_STRING_FILTER);
        w.put32(op);
        w.put32(stringCcsid);
        w.put32(static_cast<ZKLONG>(s.size()));
        w.put(s);
      } else {
        std::vector<unsigned char> data;
        if (!hexBytes(pos[2], data, error)) {
          return false;
        }
        header(ZKCFT_BYTE_STRING_FILTER);
        w.put32(op);
        w.put32(static_cast<ZKLONG>(data.size()));
        w.put(data);
      }
    } else if (k == "group") {
      header(ZKCFT_GROUP);
      std::size_t countAt = w.bytes.size();
      w.put32(0);
      w.set32(start + 4, ZKCFGR_STRUC_LENGTH);
      ZKLONG members = 0;
      if (!writeParameters(line.children, w, ccsid, members, error)) {
        return false;
      }
      w.set32(countAt, members);
      ++count;
      continue; // a group's length is its own 16 bytes
    }
    finish();
    ++count;
  }
  return true;
}

// The state carried from part to part.
struct ChainState {
  ZKLONG encoding; // of the integers of the next part
  ZKLONG ccsid;    // of the text of the next part
};

bool buildPart(ScenarioContext &context, const ScenarioCommand &part, const std::string &next,
               ChainState &state, std::vector<unsigned char> &out, std::string &error) {
  const std::string &k = part.words[0];
  Args args(part, 1);
  const auto &pos = args.positional();
  bool reversed = integersReversed(state.encoding);
  // What this header says about the part after it.
  ZKLONG ownEncoding = state.encoding;
  ZKLONG ownCcsid = ZKCCSI_INHERIT;
  if ((args.has("encoding") && !parseValue(args.get("encoding"), "ZKENC_", ownEncoding, error)) ||
      (args.has("ccsid") && !parseValue(args.get("ccsid"), "ZKCCSI_", ownCcsid, error))) {
    return false;
  }
  ZKLONG effectiveCcsid = ownCcsid > 0 ? ownCcsid : state.ccsid;
  auto finishHeader = [&](std::vector<unsigned char> bytes, const StructDef &def,
                          const std::vector<std::string> &skip) {
    if (!args.applyBareFields(bytes.data(), def, skip, resolverOf(context), error)) {
      return false;
    }
    if (reversed) {
      swapIntegers(bytes, def);
    }
    out.insert(out.end(), bytes.begin(), bytes.end());
    state.encoding = ownEncoding;
    state.ccsid = effectiveCcsid;
    return true;
  };
  const std::vector<std::string> common = {"encoding", "ccsid"};
  auto with = [&](std::vector<std::string> more) {
    more.insert(more.end(), common.begin(), common.end());
    return more;
  };

  if (k == "xqh") {
    ZKXQH h = ZKXQH_DEFAULT;
    std::memcpy(h.MsgDesc.Format, next.data(), 8);
    h.MsgDesc.Encoding = ownEncoding;
    h.MsgDesc.CodedCharSetId = ownCcsid > 0 ? ownCcsid : state.ccsid;
    context.qmgr.engine().newMsgId(h.MsgDesc.MsgId);
    return finishHeader(bytesOf(h), structNamed("ZKXQH"), common);
  }
  if (k == "dh") {
    ZKDH h = ZKDH_DEFAULT;
    ZKLONG fields = 0;
    if (args.has("pmrfields") && !parseValue(args.get("pmrfields"), "ZKPMRF_", fields, error)) {
      return false;
    }
    std::vector<std::pair<std::string, std::string>> objects;
    for (const std::string &p : pos) {
      std::size_t at = p.find('@');
      objects.emplace_back(p.substr(0, at), at == std::string::npos ? "" : p.substr(at + 1));
    }
    int unit = putMsgRecordLength(fields);
    ZKLONG n = static_cast<ZKLONG>(objects.size());
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    h.PutMsgRecFields = fields;
    h.RecsPresent = n;
    h.ObjectRecOffset = n > 0 ? ZKDH_LENGTH_1 : 0;
    h.PutMsgRecOffset = n > 0 && unit > 0 ? ZKDH_LENGTH_1 + ZKOR_LENGTH * n : 0;
    h.StrucLength = ZKDH_LENGTH_1 + (ZKOR_LENGTH + unit) * n;
    if (!finishHeader(bytesOf(h), structNamed("ZKDH"), with({"pmrfields", "feedback"}))) {
      return false;
    }
    for (const auto &o : objects) {
      ZKOR r = ZKOR_DEFAULT;
      setFixed(r.ObjectName, sizeof r.ObjectName, o.first);
      setFixed(r.ObjectQMgrName, sizeof r.ObjectQMgrName, o.second);
      std::vector<unsigned char> b = bytesOf(r);
      out.insert(out.end(), b.begin(), b.end());
    }
    ZKLONG feedback = 0;
    if (args.has("feedback") && !parseValue(args.get("feedback"), "ZKFB_", feedback, error)) {
      return false;
    }
    Writer w(reversed);
    for (ZKLONG i = 0; i < n; ++i) {
      ZKBYTE24 id = {};
      if (fields & ZKPMRF_MSG_ID) {
        context.qmgr.engine().newMsgId(id);
        w.put(std::vector<unsigned char>(id, id + 24));
      }
      if (fields & ZKPMRF_CORREL_ID) {
        w.put(std::vector<unsigned char>(24, 0));
      }
      if (fields & ZKPMRF_GROUP_ID) {
        w.put(std::vector<unsigned char>(24, 0));
      }
      if (fields & ZKPMRF_FEEDBACK) {
        w.put32(feedback);
      }
      if (fields & ZKPMRF_ACCOUNTING_TOKEN) {
        w.put(std::vector<unsigned char>(32, 0));
      }
    }
    out.insert(out.end(), w.bytes.begin(), w.bytes.end());
    return true;
  }
  if (k == "rmh") {
    ZKRMH h = ZKRMH_DEFAULT;
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    std::vector<unsigned char> items;
    auto item = [&](const char *key, ZKLONG &length, ZKLONG &offset) {
      if (!args.has(key)) {
        return;
      }
      std::vector<unsigned char> b = textBytes(args.get(key), effectiveCcsid);
      offset = static_cast<ZKLONG>(ZKRMH_LENGTH_1 + items.size());
      length = static_cast<ZKLONG>(b.size());
      items.insert(items.end(), b.begin(), b.end());
    };
    item("srcenv", h.SrcEnvLength, h.SrcEnvOffset);
    item("srcname", h.SrcNameLength, h.SrcNameOffset);
    item("destenv", h.DestEnvLength, h.DestEnvOffset);
    item("destname", h.DestNameLength, h.DestNameOffset);
    while (items.size() % 4 != 0) {
      items.push_back(' ');
    }
    h.StrucLength = static_cast<ZKLONG>(ZKRMH_LENGTH_1 + items.size());
    if (!finishHeader(bytesOf(h), structNamed("ZKRMH"),
                      with({"srcenv", "srcname", "destenv", "destname"}))) {
      return false;
    }
    out.insert(out.end(), items.begin(), items.end());
    return true;
  }
  if (k == "dlh") {
    ZKDLH h = ZKDLH_DEFAULT;
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    h.PutApplType = ZKAT_UNIX;
    setFixed(h.PutApplName, sizeof h.PutApplName, "zkqm");
    setFixed(h.PutDate, 8, "20240101");
    setFixed(h.PutTime, 8, "12000000");
    return finishHeader(bytesOf(h), structNamed("ZKDLH"), common);
  }
  if (k == "mde") {
    ZKMDE h = ZKMDE_DEFAULT;
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    return finishHeader(bytesOf(h), structNamed("ZKMDE"), common);
  }
  if (k == "rfh") {
    ZKRFH h = ZKRFH_DEFAULT;
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    std::vector<unsigned char> nv = textBytes(args.get("namevalue"), effectiveCcsid);
    while (nv.size() % 4 != 0) {
      nv.push_back(' ');
    }
    h.StrucLength = static_cast<ZKLONG>(ZKRFH_STRUC_LENGTH_FIXED + nv.size());
    if (!finishHeader(bytesOf(h), structNamed("ZKRFH"), with({"namevalue"}))) {
      return false;
    }
    out.insert(out.end(), nv.begin(), nv.end());
    return true;
  }
  if (k == "rfh2") {
    ZKRFH2 h = ZKRFH2_DEFAULT;
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    ZKLONG nvCcsid = 1208;
    if (args.has("NameValueCCSID") && !parseValue(args.get("NameValueCCSID"), "", nvCcsid, error)) {
      return false;
    }
    Writer folders(reversed);
    for (const std::string &folder : args.all("folder")) {
      std::vector<unsigned char> f = textBytes(folder, nvCcsid);
      while (f.size() % 4 != 0) {
        f.push_back(' ');
      }
      folders.put32(static_cast<ZKLONG>(f.size()));
      folders.put(f);
    }
    h.StrucLength = static_cast<ZKLONG>(ZKRFH2_STRUC_LENGTH_FIXED + folders.bytes.size());
    if (!finishHeader(bytesOf(h), structNamed("ZKRFH2"), with({"folder"}))) {
      return false;
    }
    out.insert(out.end(), folders.bytes.begin(), folders.bytes.end());
    return true;
  }
  if (k == "tm") {
    ZKTM h = ZKTM_DEFAULT;
    h.ApplType = ZKAT_UNIX;
    return finishHeader(bytesOf(h), structNamed("ZKTM"), common);
  }
  if (k == "eph" || k == "pcf") {
    Writer params(reversed);
    ZKLONG count = 0;
    if (!writeParameters(part.children, params, effectiveCcsid, count, error)) {
      return false;
    }
    if (k == "pcf") {
      ZKCFH h = ZKCFH_DEFAULT;
      h.ParameterCount = count;
      if (!args.applyBareFields(&h, structNamed("ZKCFH"), with({"format"}), resolverOf(context),
                                error)) {
        return false;
      }
      std::vector<unsigned char> b = bytesOf(h);
      if (reversed) {
        swapIntegers(b, structNamed("ZKCFH"));
      }
      out.insert(out.end(), b.begin(), b.end());
      out.insert(out.end(), params.bytes.begin(), params.bytes.end());
      return true;
    }
    ZKEPH h = ZKEPH_DEFAULT;
    std::memcpy(h.Format, next.data(), 8);
    h.Encoding = ownEncoding;
    h.CodedCharSetId = ownCcsid;
    h.PCFHeader.ParameterCount = count;
    h.StrucLength = static_cast<ZKLONG>(ZKEPH_STRUC_LENGTH_FIXED + params.bytes.size());
    if (!finishHeader(bytesOf(h), structNamed("ZKEPH"), common)) {
      return false;
    }
    out.insert(out.end(), params.bytes.begin(), params.bytes.end());
    return true;
  }
  // The data after the headers.
  std::vector<unsigned char> data;
  if (k == "text" || k == "xml") {
    std::vector<unsigned char> once = textBytes(pos.empty() ? "" : pos[0], state.ccsid);
    ZKLONG times = 1;
    if (args.has("times") && !parseValue(args.get("times"), "", times, error)) {
      return false;
    }
    for (ZKLONG i = 0; i < times; ++i) {
      data.insert(data.end(), once.begin(), once.end());
    }
  } else if (k == "hex") {
    if (!hexBytes(pos.empty() ? "" : pos[0], data, error)) {
      return false;
    }
  } else if (k == "file") {
    if (!readFile(context, pos[0], data, error)) {
      return false;
    }
  } else if (k == "size") {
    ZKLONG n = 0;
    if (!parseValue(pos[0], "", n, error) || n < 0) {
      return false;
    }
    static const char pattern[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (ZKLONG i = 0; i < n; ++i) {
      data.push_back(static_cast<unsigned char>(pattern[i % 36]));
    }
  }
  out.insert(out.end(), data.begin(), data.end());
  return true;
}

// ---- checks of the part lines -------------------------------------------------------

bool checkPart(const ScenarioCommand &cmd, std::string &error) {
  const std::string &k = cmd.words[0];
  Args args(cmd, 1);
  auto keysFor = [&](const char *structName, std::vector<std::string> more) {
    const StructDef &def = structNamed(structName);
    for (const FieldDef &f : def.fields) {
      more.push_back(f.name);
    }
    more.push_back("encoding");
    more.push_back("ccsid");
    return args.checkKeys(more, {}, error);
  };
  if (k == "xqh") {
    return keysFor("ZKXQH", {});
  }
  if (k == "dh") {
    return keysFor("ZKDH", {"pmrfields", "feedback"});
  }
  if (k == "rmh") {
    return keysFor("ZKRMH", {"srcenv", "srcname", "destenv", "destname"});
  }
  if (k == "dlh") {
    return keysFor("ZKDLH", {});
  }
  if (k == "mde") {
    return keysFor("ZKMDE", {});
  }
  if (k == "rfh") {
    return keysFor("ZKRFH", {"namevalue"});
  }
  if (k == "rfh2") {
    return keysFor("ZKRFH2", {"folder"});
  }
  if (k == "tm") {
    return keysFor("ZKTM", {});
  }
  if (k == "eph") {
    return keysFor("ZKEPH", {});
  }
  if (k == "pcf") {
    return keysFor("ZKCFH", {"format"});
  }
  if (k == "text" || k == "xml") {
    if (args.positional().size() != 1) {
      error = k + " takes one text";
      return false;
    }
    return args.checkKeys({"format", "times"}, {}, error);
  }
  if (k == "hex" || k == "file" || k == "size") {
    if (args.positional().size() != 1) {
      error = k + " takes one value";
      return false;
    }
    return args.checkKeys({"format"}, {}, error);
  }
  return true;
}

bool checkParameterLine(const ScenarioCommand &cmd, std::string &error) {
  const std::string &k = cmd.words[0];
  Args args(cmd, 1);
  std::size_t n = args.positional().size();
  std::size_t need = k == "int" || k == "int64" || k == "string" || k == "bytes"  ? 2
                     : k == "intfilter" || k == "strfilter" || k == "bytesfilter" ? 3
                     : k == "raw"                                                 ? 2
                                                                                  : 1;
  if (n < need || ((k == "int" || k == "int64" || k == "string" || k == "bytes") && n != 2)) {
    error = "usage: " + std::string(cmd.row->usage);
    return false;
  }
  ZKLONG id = 0;
  if (k != "raw" && !hasVariable(args.positional()[0]) &&
      !parameterId(args.positional()[0], id, error)) {
    return false;
  }
  return args.checkKeys({"ccsid", "length"}, {}, error);
}

bool notAlone(ScenarioContext &, const ScenarioCommand &cmd, std::string &error) {
  error = "'" + cmd.words[0] + "' belongs inside a message block";
  return false;
}

} // namespace

const CommandRow kPcfParameters[] = {
    {"int", 2, -1, "int PARAMETER VALUE", checkParameterLine, notAlone},
    {"int64", 2, -1, "int64 PARAMETER VALUE", checkParameterLine, notAlone},
    {"string", 2, -1, "string PARAMETER TEXT [ccsid=N]", checkParameterLine, notAlone},
    {"intlist", 1, -1, "intlist PARAMETER VALUE ...", checkParameterLine, notAlone},
    {"int64list", 1, -1, "int64list PARAMETER VALUE ...", checkParameterLine, notAlone},
    {"strlist", 1, -1, "strlist PARAMETER TEXT ... [length=N] [ccsid=N]", checkParameterLine,
     notAlone},
    {"bytes", 2, -1, "bytes PARAMETER HEX", checkParameterLine, notAlone},
    {"intfilter", 3, -1, "intfilter PARAMETER OPERATOR VALUE", checkParameterLine, notAlone},
    {"strfilter", 3, -1, "strfilter PARAMETER OPERATOR TEXT [ccsid=N]", checkParameterLine,
     notAlone},
    {"bytesfilter", 3, -1, "bytesfilter PARAMETER OPERATOR HEX", checkParameterLine, notAlone},
    {"group", 1, 1, "group PARAMETER {", checkParameterLine, notAlone, true},
    {"raw", 2, 3, "raw TYPE PARAMETER [HEX]", checkParameterLine, notAlone},
    {nullptr, 0, 0, nullptr, nullptr, nullptr},
};

const CommandRow kMessageParts[] = {
    {"xqh", 0, -1, "xqh [RemoteQName=..] [RemoteQMgrName=..] [MsgDesc.FIELD=..]", checkPart,
     notAlone},
    {"dh", 0, -1, "dh [QUEUE@QMGR ...] [pmrfields=..] [feedback=N]", checkPart, notAlone},
    {"rmh", 0, -1, "rmh [ObjectType=..] [srcenv=..] [srcname=..] [destenv=..] [destname=..]",
     checkPart, notAlone},
    {"dlh", 0, -1, "dlh [Reason=N] [DestQName=..] [DestQMgrName=..]", checkPart, notAlone},
    {"mde", 0, -1, "mde [GroupId=..] [MsgSeqNumber=N] ...", checkPart, notAlone},
    {"rfh", 0, -1, "rfh [namevalue=\"NAME VALUE ...\"]", checkPart, notAlone},
    {"rfh2", 0, -1, "rfh2 [folder=\"<x>..</x>\" ...] [NameValueCCSID=N]", checkPart, notAlone},
    {"tm", 0, -1, "tm [QName=..] [ProcessName=..] [TriggerData=..] ...", checkPart, notAlone},
    {"eph", 0, -1, "eph [PCFHeader.FIELD=..] {", checkPart, notAlone, true, kPcfParameters},
    {"pcf", 0, -1, "pcf [Type=..] [Command=..] ... {", checkPart, notAlone, true, kPcfParameters},
    {"text", 1, -1, "text TEXT [times=N] [format=NAME]", checkPart, notAlone},
    {"xml", 1, -1, "xml TEXT [times=N] [format=NAME]", checkPart, notAlone},
    {"hex", 1, -1, "hex HEX [format=NAME]", checkPart, notAlone},
    {"file", 1, -1, "file PATH [format=NAME]", checkPart, notAlone},
    {"size", 1, -1, "size N [format=NAME]", checkPart, notAlone},
    {nullptr, 0, 0, nullptr, nullptr, nullptr},
};

bool buildMessage(ScenarioContext &context, const ScenarioCommand &command, BuiltMessage &out,
                  std::string &error) {
  Args args(command, 2);
  ZKLONG encoding = ZKENC_NATIVE;
  ZKLONG ccsid = 1208;
  if ((args.has("encoding") && !parseValue(args.get("encoding"), "ZKENC_", encoding, error)) ||
      (args.has("ccsid") && !parseValue(args.get("ccsid"), "ZKCCSI_", ccsid, error))) {
    return false;
  }
  out = BuiltMessage();
  std::vector<ScenarioCommand> parts;
  for (const ScenarioCommand &p : command.children) {
    parts.push_back(substituteAll(p, context));
  }
  std::string first = parts.empty() ? "        " : formatOf(parts[0]);
  out.mdFields.emplace_back("Format", args.get("format", first));
  out.mdFields.emplace_back("Encoding", std::to_string(encoding));
  out.mdFields.emplace_back("CodedCharSetId", std::to_string(ccsid));
  for (const auto &kv : args.named()) {
    if (kv.first.rfind("md.", 0) == 0) {
      out.mdFields.emplace_back(kv.first.substr(3), kv.second);
    }
  }
  ChainState state{encoding, ccsid};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    std::string next = i + 1 < parts.size() ? formatOf(parts[i + 1]) : "        ";
    if (!buildPart(context, parts[i], next, state, out.data, error)) {
      error = "line " + std::to_string(parts[i].line) + ": " + error;
      return false;
    }
  }
  return true;
}

bool checkMessage(const ScenarioCommand &cmd, std::string &error) {
  Args args(cmd, 2);
  return args.checkKeys({"encoding", "ccsid", "format"}, {"md"}, error);
}

bool runMessage(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  BuiltMessage message;
  if (!buildMessage(context, cmd, message, error)) {
    return false;
  }
  std::size_t size = message.data.size();
  {
    std::lock_guard<std::mutex> lock(context.shared.mutex);
    context.shared.messages[cmd.words[1]] = std::move(message);
  }
  context.log.line("message %s: %zu bytes", cmd.words[1].c_str(), size);
  return true;
}

} // namespace zkqm
