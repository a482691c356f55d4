// The calls as a timeline in the trace-event JSON format that trace viewers
// open: {"traceEvents":[...],"displayTimeUnit":"ms"}. Each traced thread is
// a track (pid: the process id of its trace file, tid: its thread id) named
// by metadata events; each call is one complete event ("ph":"X") on its
// track, the calls made inside it events of their own within its span.
//
// Times are the trace's time stamps in microseconds (local time as
// written, read as UTC), so that traces of several processes line up.
#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "reform/json.h"
#include "reform/write_out.h"
#include "reform/parser.h"
#include "reform/span_place.h"
#include "reform/summary.h"
#include "reform/writers.h"

namespace wzreform {

namespace {

class TraceEventWriter : public CallWriter {
public:
  explicit TraceEventWriter(FILE *out) : Out(out) {}

  int Begin() override {
    Text = "{\"traceEvents\":[";
    return Flush();
  }

  int Write(const Call &call) override {
    int64_t pid = call.Source != nullptr ? call.Source->ProcessId : 0;
    int64_t tid = call.Source != nullptr ? call.Source->ThreadId : 0;
    NameTrack(call.Source, pid, tid);
    WriteCall(call, pid, tid, nullptr);
    return Flush();
  }

  int End() override {
    Text += "\n],\"displayTimeUnit\":\"ms\"}\n";
    return WriteOut(Out, &Text, true);
  }

private:
  using Track = std::pair<int64_t, int64_t>;

  // The names a track has shown so far: programs, and queue managers (of
  // a process) or connection names (of a thread).
  struct TrackNames {
    std::vector<std::string> Programs;
    std::vector<std::string> Others;
    bool Named = false;
  };

  static std::string Joined(const std::vector<std::string> &names) {
    std::string text;
    for (const std::string &name : names) {
      text += (text.empty() ? "" : ", ") + name;
    }
    return text;
  }

  // A call's place on its track, the start and the end in microseconds.
  using Span = SpanBounds;

  // Opens the next event: the comma and line break between events.
  JsonWriter Event() {
    Text += Events++ == 0 ? "\n" : ",\n";
    return JsonWriter(Text);
  }

  // The metadata events naming a process ("orders on ZKQM1") and a thread
  // ("thread 1 (orders)") the first time a call of theirs comes. A process
  // or thread that shows another program, queue manager or connection
  // name (several connections under other names) is named again with all
  // of them: viewers keep the last name.
  void NameTrack(const TraceSource *source, int64_t pid, int64_t tid) {
    std::string program = source != nullptr && !source->Program.empty() ? source->Program : "?";
    std::string qmgr = source != nullptr ? source->QMgr : std::string();
    std::string connection = source != nullptr ? source->Connection : std::string();
    TrackNames &process = Processes[pid];
    if (AddName(process.Programs, program) | AddName(process.Others, qmgr)) {
      std::string name = Joined(process.Programs);
      if (!process.Others.empty()) {
        name += " on " + Joined(process.Others);
      }
      Metadata(pid, tid, "process_name", name);
    }
    TrackNames &thread = Threads[{pid, tid}];
    if (AddName(thread.Programs, program) | AddName(thread.Others, connection) || !thread.Named) {
      thread.Named = true;
      std::string name = "thread " + std::to_string(tid) + " (" + Joined(thread.Programs);
      if (!thread.Others.empty()) {
        name += "; " + Joined(thread.Others);
      }
      Metadata(pid, tid, "thread_name", name + ")");
    }
  }

  // Adds a name not yet in the list; true when it was added.
  static bool AddName(std::vector<std::string> &names, const std::string &name) {
    if (name.empty() || std::find(names.begin(), names.end(), name) != names.end()) {
      return false;
    }
    names.push_back(name);
    return true;
  }

  void Metadata(int64_t pid, int64_t tid, const char *what, const std::string &name) {
    JsonWriter json = Event();
    json.BeginObject();
    json.Member("name", what);
    json.Member("ph", "M");
    json.Member("pid", pid);
    json.Member("tid", tid);
    json.Key("args");
    json.BeginObject();
    json.Member("name", name);
    json.EndObject();
    json.EndObject();
  }

  void WriteCall(const Call &call, int64_t pid, int64_t tid, const Span *parent) {
    Span span;
    if (!PlaceSpan(call, parent, LastTime[Track{pid, tid}], &span)) {
      return;
    }
    std::string name = call.Function;
    if (!call.ObjectName.empty()) {
      name += " " + call.ObjectName;
    }
    JsonWriter json = Event();
    json.BeginObject();
    json.Member("name", name);
    json.Member("cat", FunctionFamily(call.Function));
    json.Member("ph", "X");
    json.Member("ts", span.Start);
    json.Member("dur", span.End - span.Start);
    json.Member("pid", pid);
    json.Member("tid", tid);
    json.Key("args");
    json.BeginObject();
    json.Member("function", call.Function);
    if (!call.ObjectName.empty()) {
      json.Member("object", call.ObjectName);
    }
    if (!call.ResolvedName.empty()) {
      json.Member("resolvedName", call.ResolvedName);
    }
    if (call.HasHconn) {
      json.Key("hconn");
      json.Hex32(call.Hconn);
    }
    if (call.HasHobj) {
      json.Key("hobj");
      json.Hex32(call.Hobj);
    }
    if (call.HasCodes && IsTransactionFunction(call.Function)) {
      json.Member("xaReturnValue", call.CompCode);
    } else if (call.HasCodes) {
      json.Member("compCode", call.CompCode);
      json.Member("reason", call.Reason);
    }
    if (!call.ReasonName.empty()) {
      json.Member("reasonName", call.ReasonName);
    }
    json.Member("result", OutcomeName(CallOutcome(call)));
    if (call.Sequence != 0) {
      json.Member("sequence", call.Sequence);
    }
    int64_t elapsed = 0;
    if (call.HasElapsed && CallElapsed(call, &elapsed)) {
      json.Member("elapsedMicros", elapsed);
    }
    if (call.Unfinished) {
      json.Member("unfinished", true);
    }
    json.EndObject();
    json.EndObject();
    for (const Call &inner : call.Inside) {
      WriteCall(inner, pid, tid, &span);
    }
  }

  int Flush() { return WriteOut(Out, &Text, false); }

  FILE *Out;
  std::string Text;    // what is still to be written
  uint64_t Events = 0; // events written so far
  std::map<int64_t, TrackNames> Processes;
  std::map<Track, TrackNames> Threads;
  std::map<Track, int64_t> LastTime; // the latest end on each track
};

} // namespace

CallWriter *NewTraceEventWriter(FILE *out) {
  return new TraceEventWriter(out);
}

} // namespace wzreform
