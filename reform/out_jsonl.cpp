// JSON Lines: one object per call, its inner calls nested in "inside".
//
// A record (the "before" and "after" of a call) becomes one object, its
// keys in the order of the trace:
//   "Label": "value"        a value line ("Hconn:0x00000001") or a name
//                           line ("| ObjectName:APP.Q");
//   "Label": {...}          a dump ("MD:(324=x144 bytes, Address ...)"):
//                           "length", "address", "dump" (its lines), and
//                           when there are any, "fields" (the "|> Name :
//                           value" lines that show it field by field) and
//                           "text" (its other lines: version and offset
//                           sections, parsed message content);
//   "fields", "text"        the field and other lines that follow no dump
//                           (the flags of "Options:0x00000072"), last.
// A name that comes again in the same object gets "#2", "#3", ... so
// that every key is unique and every value keeps its type.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "reform/json.h"
#include "reform/writers.h"

namespace wzreform {

namespace {

// The keys of one JSON object so far, with how often each came: an open
// hash table that keeps its memory from one object to the next.
class KeySet {
public:
  // The key to write for `name`: the name, or "name#N" the Nth time.
  std::string_view Unique(std::string_view name) {
    Slot *slot = Take(name);
    if (slot == nullptr) {
      return name;
    }
    slot->Count++;
    Buffer.assign(name.data(), name.size());
    Buffer += '#';
    Buffer += std::to_string(slot->Count);
    // "Name#2" might itself be a name of the object: taken as well.
    return Unique2();
  }

  void Clear() {
    for (size_t i : Touched) {
      Slots[i].Count = 0;
    }
    Touched.clear();
    Used = 0;
  }

private:
  struct Slot {
    std::string_view Name;
    uint32_t Hash = 0;
    uint32_t Count = 0;
  };

  static uint32_t Hash(std::string_view s) {
    uint32_t h = 2166136261u;
    for (char c : s) {
      h = (h ^ static_cast<unsigned char>(c)) * 16777619u;
    }
    return h;
  }

  std::string_view Unique2() {
    // Generated names are rare: kept alive in a list of their own.
    Generated.push_back(Buffer);
    std::string_view name = Generated.back();
    if (Take(name) == nullptr) {
      return name;
    }
    // Taken by a name of the trace: one more "#".
    Buffer = Generated.back() + "#";
    return Unique2();
  }

  // Enters `name` into the table: null when it is new (its count now 1),
  // else the slot that holds it already.
  Slot *Take(std::string_view name) {
    if (Used * 2 + 2 > Slots.size()) {
      Grow();
    }
    uint32_t h = Hash(name);
    size_t mask = Slots.size() - 1;
    for (size_t i = h & mask;; i = (i + 1) & mask) {
      Slot &slot = Slots[i];
      if (slot.Count == 0) {
        slot.Name = name;
        slot.Hash = h;
        slot.Count = 1;
        Used++;
        Touched.push_back(i);
        return nullptr;
      }
      if (slot.Hash == h && slot.Name == name) {
        return &slot;
      }
    }
  }

  void Grow() {
    std::vector<Slot> old;
    old.swap(Slots);
    Slots.assign(old.empty() ? 64 : old.size() * 2, Slot());
    Touched.clear();
    size_t mask = Slots.size() - 1;
    for (const Slot &slot : old) {
      if (slot.Count == 0) {
        continue;
      }
      size_t i = slot.Hash & mask;
      while (Slots[i].Count != 0) {
        i = (i + 1) & mask;
      }
      Slots[i] = slot;
      Touched.push_back(i);
    }
  }

  std::vector<Slot> Slots;
  std::vector<size_t> Touched;
  size_t Used = 0;
  std::string Buffer;
  std::deque<std::string> Generated; // a deque: the views into it stay valid

public:
  void ClearGenerated() { Generated.clear(); }
};

// "(324=x144 bytes, Address 0x5739B590)": the length and the address.
void ParseDumpTitle(std::string_view value, int64_t *length, std::string_view *address) {
  *length = -1;
  *address = std::string_view();
  size_t i = 1;
  int64_t n = 0;
  bool digits = false;
  while (i < value.size() && value[i] >= '0' && value[i] <= '9' && n < (int64_t(1) << 40)) {
    n = n * 10 + (value[i] - '0');
    digits = true;
    i++;
  }
  if (digits) {
    *length = n;
  }
  size_t at = value.find("Address ");
  if (at != std::string_view::npos) {
    std::string_view rest = value.substr(at + 8);
    if (!rest.empty() && rest.back() == ')') {
      rest.remove_suffix(1);
    }
    *address = rest;
  }
}

// A "|> " line without its marker.
std::string_view Unmarked(const FieldLine &line) {
  std::string_view text = line.Text;
  if (text.size() >= 3 && text.substr(0, 3) == "|> ") {
    text.remove_prefix(3);
  }
  return text;
}

class JsonlWriter : public CallWriter {
public:
  explicit JsonlWriter(FILE *out) : Out(out), Json(Line) {}

  int Begin() override { return 0; }

  int Write(const Call &call) override {
    Line.clear();
    Json.Reset();
    WriteCall(call, true);
    Line.push_back('\n');
    Keys.ClearGenerated();
    if (fwrite(Line.data(), 1, Line.size(), Out) != Line.size()) {
      return -1;
    }
    return 0;
  }

  int End() override { return fflush(Out) == 0 && !ferror(Out) ? 0 : -1; }

private:
  void OptionalString(std::string_view key, const std::string &value) {
    Json.Key(key);
    if (value.empty()) {
      Json.Null();
    } else {
      Json.String(value);
    }
  }

  void OptionalInt(std::string_view key, bool has, int64_t value) {
    Json.Key(key);
    if (has) {
      Json.Int(value);
    } else {
      Json.Null();
    }
  }

  void WriteCall(const Call &call, bool top) {
    Json.BeginObject();
    if (top) {
      Json.Key("source");
      Json.BeginObject();
      const TraceSource *s = call.Source;
      Json.Member("file", s != nullptr ? std::string_view(s->Path) : std::string_view());
      Json.Member("qmgr", s != nullptr ? std::string_view(s->QMgr) : std::string_view());
      Json.Member("program", s != nullptr ? std::string_view(s->Program) : std::string_view());
      Json.Member("pid", s != nullptr ? s->ProcessId : int64_t(0));
      Json.Member("tid", s != nullptr ? s->ThreadId : int64_t(0));
      Json.EndObject();
    }
    Json.Member("function", std::string_view(call.Function));
    OptionalInt("seq", call.Sequence != 0, call.Sequence);
    OptionalString("object", call.ObjectName);
    OptionalString("resolved", call.ResolvedName);
    Json.Key("hconn");
    call.HasHconn ? Json.Hex32(call.Hconn) : Json.Null();
    Json.Key("hobj");
    call.HasHobj ? Json.Hex32(call.Hobj) : Json.Null();
    OptionalInt("compCode", call.HasCodes, call.CompCode);
    OptionalInt("reason", call.HasCodes, call.Reason);
    OptionalString("reasonName", call.ReasonName);
    OptionalString("beforeTime", call.BeforeTime);
    OptionalString("afterTime", call.AfterTime);
    OptionalInt("beforeMicros", call.BeforeMicros >= 0, call.BeforeMicros);
    OptionalInt("afterMicros", call.AfterMicros >= 0, call.AfterMicros);
    OptionalInt("elapsedMicros", call.HasElapsed, call.ElapsedMicros);
    Json.Member("unfinished", call.Unfinished);
    Json.Key("before");
    WriteRecord(call.Before, !call.BeforeTime.empty() || !call.Before.empty());
    Json.Key("after");
    WriteRecord(call.After, !call.AfterTime.empty() || !call.After.empty());
    Json.Key("inside");
    Json.BeginArray();
    for (const Call &inner : call.Inside) {
      WriteCall(inner, false);
    }
    Json.EndArray();
    Json.EndObject();
  }

  static bool EndsDump(const FieldLine &line) {
    return line.Type == FieldLine::VALUE || line.Type == FieldLine::NAME ||
           (line.Type == FieldLine::DUMP && !line.Name.empty());
  }

  void WriteRecord(const std::vector<FieldLine> &lines, bool present) {
    if (!present) {
      Json.Null();
      return;
    }
    Keys.Clear();
    Json.BeginObject();
    Loose.clear();
    size_t n = lines.size();
    size_t i = 0;
    while (i < n) {
      const FieldLine &line = lines[i];
      if (line.Type == FieldLine::VALUE || line.Type == FieldLine::NAME) {
        Json.Key(Keys.Unique(line.Name));
        Json.String(line.Value);
        i++;
        continue;
      }
      if (line.Type == FieldLine::DUMP && !line.Name.empty()) {
        size_t end = i + 1;
        while (end < n && !EndsDump(lines[end])) {
          end++;
        }
        WriteDump(lines, i, end);
        i = end;
        continue;
      }
      Loose.push_back(i);
      i++;
    }
    WriteLoose(lines);
    Json.EndObject();
  }

  void WriteDump(const std::vector<FieldLine> &lines, size_t title, size_t end) {
    const FieldLine &head = lines[title];
    Json.Key(Keys.Unique(head.Name));
    Json.BeginObject();
    int64_t length;
    std::string_view address;
    ParseDumpTitle(head.Value, &length, &address);
    Json.Key("length");
    length >= 0 ? Json.Int(length) : Json.Null();
    Json.Key("address");
    address.empty() ? Json.Null() : Json.String(address);
    Json.Key("dump");
    Json.BeginArray();
    bool fields = false, text = false;
    for (size_t i = title + 1; i < end; i++) {
      const FieldLine &line = lines[i];
      if (line.Type == FieldLine::DUMP) {
        Json.String(line.Text);
      } else if (line.Type == FieldLine::FIELD) {
        fields = true;
      } else {
        text = true;
      }
    }
    Json.EndArray();
    if (fields) {
      Inner.Clear();
      Json.Key("fields");
      Json.BeginObject();
      for (size_t i = title + 1; i < end; i++) {
        if (lines[i].Type == FieldLine::FIELD) {
          Json.Key(Inner.Unique(lines[i].Name));
          Json.String(lines[i].Value);
        }
      }
      Json.EndObject();
      Inner.ClearGenerated();
    }
    if (text) {
      Json.Key("text");
      Json.BeginArray();
      for (size_t i = title + 1; i < end; i++) {
        if (lines[i].Type != FieldLine::DUMP && lines[i].Type != FieldLine::FIELD) {
          Json.String(Unmarked(lines[i]));
        }
      }
      Json.EndArray();
    }
    Json.EndObject();
  }

  void WriteLoose(const std::vector<FieldLine> &lines) {
    bool fields = false, text = false;
    for (size_t i : Loose) {
      (lines[i].Type == FieldLine::FIELD ? fields : text) = true;
    }
    if (fields) {
      Inner.Clear();
      Json.Key(Keys.Unique("fields"));
      Json.BeginObject();
      for (size_t i : Loose) {
        if (lines[i].Type == FieldLine::FIELD) {
          Json.Key(Inner.Unique(lines[i].Name));
          Json.String(lines[i].Value);
        }
      }
      Json.EndObject();
      Inner.ClearGenerated();
    }
    if (text) {
      Json.Key(Keys.Unique("text"));
      Json.BeginArray();
      for (size_t i : Loose) {
        if (lines[i].Type != FieldLine::FIELD) {
          Json.String(Unmarked(lines[i]));
        }
      }
      Json.EndArray();
    }
  }

  FILE *Out;
  std::string Line;
  JsonWriter Json;
  KeySet Keys;
  KeySet Inner;
  std::vector<size_t> Loose;
};

} // namespace

CallWriter *NewJsonlWriter(FILE *out) {
  return new JsonlWriter(out);
}

} // namespace wzreform
