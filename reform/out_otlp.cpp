// The calls as spans in OpenTelemetry's OTLP/JSON trace export:
//
//   {"resourceSpans":[{"resource":{"attributes":[...]},
//     "scopeSpans":[{"scope":{"name":"wzreform","version":"..."},"spans":[...]}]}]}
//
// The resource is the traced connection: its program (service.name),
// process and thread id, queue manager, host and connection name when the
// trace shows them. OTLP groups the spans of a resource together; to write
// each call as it comes, without holding spans back, one resourceSpans
// entry is written per run of consecutive calls of the same connection.
// Several entries for one resource are valid OTLP, and a trace of one
// connection (one file) gives exactly one.
//
// Each call of the top level is a trace of its own (a client span); the
// calls made inside it are spans of the same trace whose parent is the
// call's span. The ids are hashes of the trace file's path, the sequence
// number, the function and the time stamps, so that the same trace always
// gives the same ids. Times are the trace's time stamps (local time as
// written, read as UTC) in nanoseconds.
#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <map>
#include <string>

#include "reform/json.h"
#include "reform/write_out.h"
#include "reform/parser.h"
#include "reform/span_place.h"
#include "reform/summary.h"
#include "reform/writers.h"
#include "wz_version.h"

namespace wzreform {

namespace {

// OTLP's span kind and status codes.
const int kSpanKindClient = 3;
const int kStatusUnset = 0;
const int kStatusOk = 1;
const int kStatusError = 2;

// FNV-1a over the bytes of a key, then mixed so that every bit of the id
// depends on every bit of the key.
class IdHash {
public:
  explicit IdHash(uint64_t seed) : State(0xcbf29ce484222325ULL ^ seed) {}
  IdHash &Add(const std::string &text) {
    for (unsigned char c : text) {
      Byte(c);
    }
    Byte(0xFF); // a separator no text holds in this place: "ab","c" is not "a","bc"
    return *this;
  }
  IdHash &Add(int64_t value) {
    for (int i = 0; i < 8; i++) {
      Byte(static_cast<unsigned char>(static_cast<uint64_t>(value) >> (8 * i)));
    }
    return *this;
  }
  uint64_t Value(uint64_t salt) const {
    uint64_t z = State + salt * 0x9E3779B97F4A7C15ULL;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    z ^= z >> 31;
    return z != 0 ? z : 1; // an id of all zeros is invalid
  }

private:
  void Byte(unsigned char c) {
    State ^= c;
    State *= 0x100000001b3ULL;
  }
  uint64_t State;
};

std::string Hex64(uint64_t value) {
  char text[17];
  snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

// A span's place in time and its ids.
struct SpanPlace : SpanBounds {
  std::string TraceId;
  std::string SpanId;
};

class OtlpWriter : public CallWriter {
public:
  explicit OtlpWriter(FILE *out) : Out(out) {}

  int Begin() override {
    Text = "{\"resourceSpans\":[";
    return Flush();
  }

  int Write(const Call &call) override {
    const TraceSource *source = call.Source;
    if (!InResource || !SameConnection(source)) {
      CloseResource();
      OpenResource(source);
    }
    std::string path = source != nullptr ? source->Path : std::string();
    int64_t ordinal = static_cast<int64_t>(CallsOf[path]++);
    WriteSpan(call, path, ordinal, nullptr);
    return Flush();
  }

  int End() override {
    CloseResource();
    Text += "\n]}\n";
    return WriteOut(Out, &Text, true);
  }

private:
  static void StringAttribute(JsonWriter &json, const char *key, const std::string &value) {
    json.BeginObject();
    json.Member("key", key);
    json.Key("value");
    json.BeginObject();
    json.Member("stringValue", value);
    json.EndObject();
    json.EndObject();
  }

  // OTLP/JSON writes 64-bit integers as decimal strings.
  static void IntAttribute(JsonWriter &json, const char *key, int64_t value) {
    json.BeginObject();
    json.Member("key", key);
    json.Key("value");
    json.BeginObject();
    json.Member("intValue", std::to_string(value));
    json.EndObject();
    json.EndObject();
  }

  static void BoolAttribute(JsonWriter &json, const char *key, bool value) {
    json.BeginObject();
    json.Member("key", key);
    json.Key("value");
    json.BeginObject();
    json.Member("boolValue", value);
    json.EndObject();
    json.EndObject();
  }

  void OpenResource(const TraceSource *source) {
    Text += ResourceCount++ == 0 ? "\n" : ",\n";
    JsonWriter json(Text);
    json.BeginObject();
    json.Key("resource");
    json.BeginObject();
    json.Key("attributes");
    json.BeginArray();
    if (source != nullptr) {
      StringAttribute(json, "service.name", source->Program.empty() ? "?" : source->Program);
      IntAttribute(json, "process.pid", source->ProcessId);
      IntAttribute(json, "thread.id", source->ThreadId);
      if (!source->QMgr.empty()) {
        StringAttribute(json, "zk.queue_manager", source->QMgr);
      }
      if (!source->Host.empty()) {
        StringAttribute(json, "host.name", source->Host);
      }
      if (!source->Connection.empty()) {
        StringAttribute(json, "zk.connection_name", source->Connection);
      }
      StringAttribute(json, "wz.trace_file", source->Path);
    } else {
      StringAttribute(json, "service.name", "?");
    }
    json.EndArray();
    json.EndObject();
    json.Key("scopeSpans");
    json.BeginArray();
    json.BeginObject();
    json.Key("scope");
    json.BeginObject();
    json.Member("name", "wzreform");
    json.Member("version", WZ_VERSION);
    json.EndObject();
    json.Key("spans");
    json.BeginArray();
    // Left open: the spans follow, CloseResource ends what is open here.
    CurrentPath = source != nullptr ? source->Path : std::string();
    CurrentProcess = source != nullptr ? source->ProcessId : 0;
    CurrentThread = source != nullptr ? source->ThreadId : 0;
    InResource = true;
    SpanCount = 0;
  }

  // Whether a call comes from the connection of the open entry (told by
  // the trace file and its process and thread, not by where the reader
  // keeps them).
  bool SameConnection(const TraceSource *source) const {
    if (source == nullptr) {
      return CurrentPath.empty() && CurrentProcess == 0 && CurrentThread == 0;
    }
    return source->Path == CurrentPath && source->ProcessId == CurrentProcess &&
           source->ThreadId == CurrentThread;
  }

  void CloseResource() {
    if (InResource) {
      Text += "\n]}]}";
      InResource = false;
    }
  }

  void WriteSpan(const Call &call, const std::string &path, int64_t index,
                 const SpanPlace *parent) {
    SpanPlace place;
    if (!PlaceSpan(call, parent, LastTime[path], &place)) {
      return;
    }
    // The key of the call: its trace file, its sequence number, its
    // function, its time stamps; for one without a sequence number, its
    // place among the calls of the file (or inside its parent).
    IdHash hash(parent == nullptr ? 0 : 1);
    hash.Add(path).Add(static_cast<int64_t>(call.Sequence)).Add(call.Function);
    hash.Add(call.BeforeMicros).Add(call.AfterMicros);
    if (call.Sequence == 0) {
      hash.Add(index);
    }
    if (parent != nullptr) {
      hash.Add(parent->SpanId).Add(index);
      place.TraceId = parent->TraceId;
    } else {
      place.TraceId = Hex64(hash.Value(1)) + Hex64(hash.Value(2));
    }
    place.SpanId = Hex64(hash.Value(3));

    Text += SpanCount++ == 0 ? "\n" : ",\n";
    JsonWriter json(Text);
    json.BeginObject();
    json.Member("traceId", place.TraceId);
    json.Member("spanId", place.SpanId);
    if (parent != nullptr) {
      json.Member("parentSpanId", parent->SpanId);
    }
    std::string name = call.Function;
    if (!call.ObjectName.empty()) {
      name += " " + call.ObjectName;
    }
    json.Member("name", name);
    json.Member("kind", kSpanKindClient);
    json.Member("startTimeUnixNano", std::to_string(place.Start * 1000));
    json.Member("endTimeUnixNano", std::to_string(place.End * 1000));

    json.Key("attributes");
    json.BeginArray();
    StringAttribute(json, "zk.function", call.Function);
    if (!call.ObjectName.empty()) {
      StringAttribute(json, "zk.object_name", call.ObjectName);
    }
    if (!call.ResolvedName.empty()) {
      StringAttribute(json, "zk.resolved_name", call.ResolvedName);
    }
    if (call.HasHconn) {
      IntAttribute(json, "zk.hconn", call.Hconn);
    }
    if (call.HasHobj) {
      IntAttribute(json, "zk.hobj", call.Hobj);
    }
    if (call.HasCodes && IsTransactionFunction(call.Function)) {
      IntAttribute(json, "zk.xa_return_value", call.CompCode);
    } else if (call.HasCodes) {
      IntAttribute(json, "zk.comp_code", call.CompCode);
      IntAttribute(json, "zk.reason", call.Reason);
    }
    if (!call.ReasonName.empty()) {
      StringAttribute(json, "zk.reason_name", call.ReasonName);
    }
    if (call.Sequence != 0) {
      IntAttribute(json, "wz.sequence", call.Sequence);
    }
    if (call.Unfinished) {
      BoolAttribute(json, "wz.unfinished", true);
    }
    json.EndArray();

    Outcome outcome = CallOutcome(call);
    json.Key("status");
    json.BeginObject();
    if (outcome == Outcome::OK) {
      json.Member("code", kStatusOk);
    } else if (outcome == Outcome::FAILED) {
      json.Member("code", kStatusError);
    } else {
      json.Member("code", kStatusUnset);
    }
    if (outcome != Outcome::OK && !call.ReasonName.empty()) {
      json.Member("message", call.ReasonName);
    }
    json.EndObject();
    json.EndObject();

    int64_t inner = 0;
    for (const Call &child : call.Inside) {
      WriteSpan(child, path, inner++, &place);
    }
  }

  int Flush() { return WriteOut(Out, &Text, false); }

  FILE *Out;
  std::string Text;        // what is still to be written
  std::string CurrentPath; // the connection of the open entry
  int64_t CurrentProcess = 0;
  int64_t CurrentThread = 0;
  bool InResource = false; // a resourceSpans entry is open
  uint64_t ResourceCount = 0;
  uint64_t SpanCount = 0;                  // spans in the open entry
  std::map<std::string, uint64_t> CallsOf; // calls of the top level per trace file
  std::map<std::string, int64_t> LastTime; // the latest end per trace file
};

} // namespace

CallWriter *NewOtlpWriter(FILE *out) {
  return new OtlpWriter(out);
}

} // namespace wzreform
