// The timeline (trace-event JSON), span (OTLP/JSON), summary and HTML
// report writers of wzreform, fed with calls built here: nested,
// unfinished, failed, warned, transaction-manager and summary-only ones.
#include <gtest/gtest.h>

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "reform/call.h"
#include "reform/summary.h"
#include "reform/writers.h"

using namespace wzreform;

namespace {

// ----- A small strict JSON parser, enough to check the documents written.

struct JsonValue {
  enum Kind { NUL, BOOL, NUMBER, STRING, ARRAY, OBJECT } Type = NUL;
  bool Bool = false;
  double Number = 0;
  std::string Text; // a string's value; a number as written
  std::vector<JsonValue> Items;
  std::vector<std::pair<std::string, JsonValue>> Members;

  const JsonValue *Get(const std::string &key) const {
    for (const auto &member : Members) {
      if (member.first == key) {
        return &member.second;
      }
    }
    return nullptr;
  }
  bool Has(const std::string &key) const { return Get(key) != nullptr; }
  std::string Str(const std::string &key) const {
    const JsonValue *value = Get(key);
    return value != nullptr && value->Type == STRING ? value->Text : std::string();
  }
  double Num(const std::string &key) const {
    const JsonValue *value = Get(key);
    return value != nullptr && value->Type == NUMBER ? value->Number : -1e300;
  }
};

class JsonParser {
public:
  explicit JsonParser(const std::string &text) : Text(text) {}

  // The whole text as one value; false (with Error set) when it is not
  // valid JSON.
  bool Parse(JsonValue *value) {
    Pos = 0;
    if (!Value(value, 0)) {
      return false;
    }
    Blanks();
    if (Pos != Text.size()) {
      return Fail("text after the value");
    }
    return true;
  }

  std::string Error;

private:
  bool Fail(const char *what) {
    Error = std::string(what) + " at offset " + std::to_string(Pos);
    return false;
  }
  void Blanks() {
    while (Pos < Text.size() && strchr(" \t\r\n", Text[Pos]) != nullptr) {
      Pos++;
    }
  }
  bool Literal(const char *word) {
    size_t n = strlen(word);
    if (Text.compare(Pos, n, word) != 0) {
      return Fail("bad literal");
    }
    Pos += n;
    return true;
  }
  bool Value(JsonValue *value, int depth) {
    if (depth > 64) {
      return Fail("too deep");
    }
    Blanks();
    if (Pos >= Text.size()) {
      return Fail("end of text");
    }
    char c = Text[Pos];
    if (c == '{') {
      value->Type = JsonValue::OBJECT;
      Pos++;
      Blanks();
      if (Pos < Text.size() && Text[Pos] == '}') {
        Pos++;
        return true;
      }
      for (;;) {
        Blanks();
        std::string key;
        if (!String(&key)) {
          return false;
        }
        Blanks();
        if (Pos >= Text.size() || Text[Pos] != ':') {
          return Fail("':' expected");
        }
        Pos++;
        JsonValue member;
        if (!Value(&member, depth + 1)) {
          return false;
        }
        value->Members.emplace_back(key, std::move(member));
        Blanks();
        if (Pos < Text.size() && Text[Pos] == ',') {
          Pos++;
          continue;
        }
        if (Pos < Text.size() && Text[Pos] == '}') {
          Pos++;
          return true;
        }
        return Fail("',' or '}' expected");
      }
    }
    if (c == '[') {
      value->Type = JsonValue::ARRAY;
      Pos++;
      Blanks();
      if (Pos < Text.size() && Text[Pos] == ']') {
        Pos++;
        return true;
      }
      for (;;) {
        JsonValue item;
        if (!Value(&item, depth + 1)) {
          return false;
        }
        value->Items.push_back(std::move(item));
        Blanks();
        if (Pos < Text.size() && Text[Pos] == ',') {
          Pos++;
          continue;
        }
        if (Pos < Text.size() && Text[Pos] == ']') {
          Pos++;
          return true;
        }
        return Fail("',' or ']' expected");
      }
    }
    if (c == '"') {
      value->Type = JsonValue::STRING;
      return String(&value->Text);
    }
    if (c == 't' || c == 'f') {
      value->Type = JsonValue::BOOL;
      value->Bool = c == 't';
      return Literal(c == 't' ? "true" : "false");
    }
    if (c == 'n') {
      value->Type = JsonValue::NUL;
      return Literal("null");
    }
    return Number(value);
  }
  bool Number(JsonValue *value) {
    size_t start = Pos;
    if (Pos < Text.size() && Text[Pos] == '-') {
      Pos++;
    }
    auto digits = [this] {
      size_t from = Pos;
      while (Pos < Text.size() && Text[Pos] >= '0' && Text[Pos] <= '9') {
        Pos++;
      }
      return Pos - from;
    };
    size_t intDigits = digits();
    if (intDigits == 0 || (intDigits > 1 && Text[Pos - intDigits] == '0')) {
      return Fail("bad number");
    }
    if (Pos < Text.size() && Text[Pos] == '.') {
      Pos++;
      if (digits() == 0) {
        return Fail("bad fraction");
      }
    }
    if (Pos < Text.size() && (Text[Pos] == 'e' || Text[Pos] == 'E')) {
      Pos++;
      if (Pos < Text.size() && (Text[Pos] == '+' || Text[Pos] == '-')) {
        Pos++;
      }
      if (digits() == 0) {
        return Fail("bad exponent");
      }
    }
    value->Type = JsonValue::NUMBER;
    value->Text = Text.substr(start, Pos - start);
    value->Number = strtod(value->Text.c_str(), nullptr);
    return true;
  }
  bool String(std::string *out) {
    if (Pos >= Text.size() || Text[Pos] != '"') {
      return Fail("string expected");
    }
    Pos++;
    while (Pos < Text.size()) {
      unsigned char c = static_cast<unsigned char>(Text[Pos++]);
      if (c == '"') {
        return true;
      }
      if (c < 0x20) {
        return Fail("control character in a string");
      }
      if (c != '\\') {
        out->push_back(static_cast<char>(c));
        continue;
      }
      if (Pos >= Text.size()) {
        break;
      }
      char e = Text[Pos++];
      switch (e) {
      case '"':
      case '\\':
      case '/':
        out->push_back(e);
        break;
      case 'b':
        out->push_back('\b');
        break;
      case 'f':
        out->push_back('\f');
        break;
      case 'n':
        out->push_back('\n');
        break;
      case 'r':
        out->push_back('\r');
        break;
      case 't':
        out->push_back('\t');
        break;
      case 'u': {
        if (Pos + 4 > Text.size()) {
          return Fail("short \\u escape");
        }
        unsigned code = 0;
        for (int i = 0; i < 4; i++) {
          char h = Text[Pos++];
          code <<= 4;
          if (h >= '0' && h <= '9') {
            code |= h - '0';
          } else if (h >= 'a' && h <= 'f') {
            code |= h - 'a' + 10;
          } else if (h >= 'A' && h <= 'F') {
            code |= h - 'A' + 10;
          } else {
            return Fail("bad \\u escape");
          }
        }
        // The writers escape single bytes only: keep the code as one byte
        // when it fits, so that the trace's bytes come back as they were.
        if (code < 0x100) {
          out->push_back(static_cast<char>(code));
        } else {
          out->push_back('?');
        }
        break;
      }
      default:
        return Fail("bad escape");
      }
    }
    return Fail("unterminated string");
  }

  const std::string &Text;
  size_t Pos = 0;
};

JsonValue ParseJson(const std::string &text) {
  JsonValue value;
  JsonParser parser(text);
  EXPECT_TRUE(parser.Parse(&value)) << parser.Error << "\n" << text.substr(0, 2000);
  return value;
}

// ----- Calls built by hand.

const int64_t kBase = 1795521600000000LL; // 2026/11/24 12:00:00 in microseconds

TraceSource MakeSource(const char *path, const char *program, int64_t pid, int64_t tid) {
  TraceSource source;
  source.Path = path;
  source.QMgr = "ZKQM1";
  source.Program = program;
  source.ProcessId = pid;
  source.ThreadId = tid;
  return source;
}

Call MakeCall(const TraceSource *source, const char *function, uint32_t sequence, int64_t before,
              int64_t after, int32_t compCode = 0, int32_t reason = 0,
              const char *reasonName = "") {
  Call call;
  call.Source = source;
  call.Function = function;
  call.Sequence = sequence;
  call.BeforeMicros = before;
  call.AfterMicros = after;
  if (after >= 0) {
    call.HasCodes = true;
    call.CompCode = compCode;
    call.Reason = reason;
    call.ReasonName = reasonName;
    if (before >= 0) {
      call.HasElapsed = true;
      call.ElapsedMicros = after - before;
    }
  } else {
    call.Unfinished = true;
  }
  return call;
}

// A transaction-manager call: the reader gives its return value as both
// codes.
Call MakeXaCall(const TraceSource *source, const char *function, uint32_t sequence, int64_t before,
                int64_t after, int32_t value, const char *name) {
  return MakeCall(source, function, sequence, before, after, value, value, name);
}

// A trace of one application: connect, open, a put, a failed put, a get
// with a data conversion and a callback inside, a warned get, a
// transaction-manager call that failed, one that worked, a put of a
// summary-only trace (no before time), and a get that never ended.
struct SampleTrace {
  TraceSource Source = MakeSource("/var/zk/wz/app.1234.1.trc", "orders", 1234, 1);
  std::vector<Call> Calls;

  SampleTrace() {
    Call conn = MakeCall(&Source, "ZKCONN", 1, kBase + 0, kBase + 900);
    conn.HasHconn = true;
    conn.Hconn = 1;
    Calls.push_back(conn);

    Call open = MakeCall(&Source, "ZKOPEN", 2, kBase + 1000, kBase + 1400);
    open.ObjectName = "ORDERS.Q";
    open.ResolvedName = "ORDERS.LOCAL";
    open.HasHconn = open.HasHobj = true;
    open.Hconn = 1;
    open.Hobj = 101;
    Calls.push_back(open);

    Call put = MakeCall(&Source, "ZKPUT", 3, kBase + 2000, kBase + 2250);
    put.ObjectName = "ORDERS.Q";
    put.HasHconn = put.HasHobj = true;
    put.Hconn = 1;
    put.Hobj = 101;
    Calls.push_back(put);

    Call failed = MakeCall(&Source, "ZKPUT", 4, kBase + 3000, kBase + 3100, 2, 2053, "ZKRC_Q_FULL");
    failed.ObjectName = "ORDERS.Q";
    Calls.push_back(failed);

    Call get = MakeCall(&Source, "ZKGET", 5, kBase + 4000, kBase + 9000);
    get.ObjectName = "ORDERS.Q";
    Call conversion = MakeCall(&Source, "DATA_CONV_ON_GET", 6, kBase + 5000, kBase + 5500);
    conversion.ObjectName = "ORDERS.Q";
    Call callback = MakeCall(&Source, "ZKCB_FU", 7, kBase + 6000, kBase + 8000);
    callback.ObjectName = "<img src=x onerror=alert(1)>";
    Call inner = MakeCall(&Source, "ZKPUT", 8, kBase + 6500, kBase + 6600);
    inner.ObjectName = "REPLY.Q";
    callback.Inside.push_back(inner);
    get.Inside.push_back(conversion);
    get.Inside.push_back(callback);
    Calls.push_back(get);

    Call warned = MakeCall(&Source, "ZKGET", 9, kBase + 10000, kBase + 10700, 1, 2079,
                           "ZKRC_TRUNCATED_MSG_ACCEPTED");
    warned.ObjectName = "ODD\"Q\\<&>\xE9";
    Calls.push_back(warned);

    Calls.push_back(
        MakeXaCall(&Source, "xa_commit", 10, kBase + 11000, kBase + 11300, -4, "XAER_NOTA"));
    Calls.push_back(
        MakeXaCall(&Source, "xa_prepare", 11, kBase + 12000, kBase + 12100, 3, "XA_RDONLY"));

    Call summaryOnly = MakeCall(&Source, "ZKPUT", 0, -1, kBase + 20000);
    summaryOnly.ObjectName = "ORDERS.Q";
    summaryOnly.HasElapsed = true;
    summaryOnly.ElapsedMicros = 1500;
    Calls.push_back(summaryOnly);

    Call unfinished = MakeCall(&Source, "ZKGET", 12, kBase + 21000, -1);
    unfinished.ObjectName = "ORDERS.Q";
    Calls.push_back(unfinished);
  }
};

// Everything a writer made of the calls, and what its methods returned.
std::string WriteAll(CallWriter *(*factory)(FILE *), const std::vector<Call> &calls) {
  char *buffer = nullptr;
  size_t size = 0;
  FILE *out = open_memstream(&buffer, &size);
  EXPECT_NE(out, nullptr);
  std::unique_ptr<CallWriter> writer(factory(out));
  EXPECT_NE(writer, nullptr);
  if (writer != nullptr) {
    EXPECT_EQ(writer->Begin(), 0);
    for (const Call &call : calls) {
      EXPECT_EQ(writer->Write(call), 0);
    }
    EXPECT_EQ(writer->End(), 0);
  }
  fclose(out);
  std::string text(buffer, size);
  free(buffer);
  return text;
}

// Whether python3's json module reads the text too (a second opinion on
// the parser above). False, with a note, when python3 is not there.
bool PythonReadsJson(const std::string &text, bool *available) {
  char path[] = "/tmp/wzreform_json_XXXXXX";
  int fd = mkstemp(path);
  if (fd < 0) {
    *available = false;
    return false;
  }
  FILE *file = fdopen(fd, "w");
  fwrite(text.data(), 1, text.size(), file);
  fclose(file);
  *available = system("python3 -c 'pass' >/dev/null 2>&1") == 0;
  bool ok = false;
  if (*available) {
    std::string command = "python3 -c 'import json,sys; json.load(open(sys.argv[1]))' ";
    command += path;
    ok = system(command.c_str()) == 0;
  }
  unlink(path);
  return ok;
}

bool IsLowerHex(const std::string &text, size_t length) {
  if (text.size() != length) {
    return false;
  }
  bool nonZero = false;
  for (char c : text) {
    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
      return false;
    }
    nonZero = nonZero || c != '0';
  }
  return nonZero;
}

// ----- Call classification

TEST(CallClass, FamiliesOfFunctions) {
  EXPECT_STREQ(FunctionFamily("ZKCONN"), "connection");
  EXPECT_STREQ(FunctionFamily("ZKCMIT"), "connection");
  EXPECT_STREQ(FunctionFamily("ZKPUT1"), "queue");
  EXPECT_STREQ(FunctionFamily("DATA_CONV_ON_GET"), "queue");
  EXPECT_STREQ(FunctionFamily("ZKINQ"), "inquire");
  EXPECT_STREQ(FunctionFamily("ZKSUBRQ"), "subscription");
  EXPECT_STREQ(FunctionFamily("ZKCB_FU"), "callback");
  EXPECT_STREQ(FunctionFamily("xa_commit"), "xa");
  EXPECT_STREQ(FunctionFamily("ax_reg"), "xa");
}

TEST(CallClass, OutcomesByCompletionCodeAndXaReturnValue) {
  SampleTrace trace;
  std::map<uint32_t, Outcome> bySequence;
  for (const Call &call : trace.Calls) {
    bySequence[call.Sequence] = CallOutcome(call);
  }
  EXPECT_EQ(bySequence[3], Outcome::OK);
  EXPECT_EQ(bySequence[4], Outcome::FAILED);
  EXPECT_EQ(bySequence[9], Outcome::WARNING);
  EXPECT_EQ(bySequence[10], Outcome::FAILED); // XA -4
  EXPECT_EQ(bySequence[11], Outcome::OK);     // XA 3: read only, not an error
  EXPECT_EQ(bySequence[12], Outcome::UNFINISHED);
  Call noCodes = MakeCall(&trace.Source, "ZKCB_FU", 20, kBase, kBase + 1);
  noCodes.HasCodes = false;
  EXPECT_EQ(CallOutcome(noCodes), Outcome::NO_RESULT);
}

TEST(CallClass, SpanOfASummaryOnlyCallEndsAtItsAfterTime) {
  SampleTrace trace;
  const Call &summaryOnly = trace.Calls[8];
  ASSERT_EQ(summaryOnly.BeforeMicros, -1);
  int64_t start = 0;
  int64_t end = 0;
  ASSERT_TRUE(CallSpan(summaryOnly, &start, &end));
  EXPECT_EQ(start, kBase + 20000 - 1500);
  EXPECT_EQ(end, kBase + 20000);
  int64_t elapsed = 0;
  ASSERT_TRUE(CallElapsed(summaryOnly, &elapsed));
  EXPECT_EQ(elapsed, 1500);

  const Call &unfinished = trace.Calls.back();
  ASSERT_TRUE(CallSpan(unfinished, &start, &end));
  EXPECT_EQ(start, kBase + 21000);
  EXPECT_EQ(end, -1);
  EXPECT_FALSE(CallElapsed(unfinished, &elapsed));
}

// ----- Trace-event JSON

TEST(TraceEventOutput, EveryCallIsACompleteEventOnItsTrack) {
  SampleTrace trace;
  std::string text = WriteAll(NewTraceEventWriter, trace.Calls);
  JsonValue doc = ParseJson(text);
  ASSERT_EQ(doc.Type, JsonValue::OBJECT);
  EXPECT_EQ(doc.Str("displayTimeUnit"), "ms");
  const JsonValue *events = doc.Get("traceEvents");
  ASSERT_NE(events, nullptr);
  ASSERT_EQ(events->Type, JsonValue::ARRAY);

  std::vector<const JsonValue *> complete;
  std::set<std::string> metadata;
  for (const JsonValue &event : events->Items) {
    ASSERT_EQ(event.Type, JsonValue::OBJECT);
    std::string ph = event.Str("ph");
    if (ph == "M") {
      EXPECT_EQ(event.Num("pid"), 1234);
      EXPECT_EQ(event.Num("tid"), 1);
      const JsonValue *args = event.Get("args");
      ASSERT_NE(args, nullptr);
      metadata.insert(event.Str("name") + "=" + args->Str("name"));
      continue;
    }
    ASSERT_EQ(ph, "X");
    for (const char *key : {"ph", "ts", "dur", "pid", "tid", "name", "cat", "args"}) {
      EXPECT_TRUE(event.Has(key)) << key;
    }
    EXPECT_GE(event.Num("dur"), 0);
    EXPECT_EQ(event.Num("pid"), 1234);
    EXPECT_EQ(event.Num("tid"), 1);
    complete.push_back(&event);
  }
  EXPECT_EQ(metadata.count("process_name=orders on ZKQM1"), 1u);
  EXPECT_EQ(metadata.count("thread_name=thread 1 (orders)"), 1u);
  // 10 calls of the top level and 3 inside the get.
  ASSERT_EQ(complete.size(), 13u);

  std::map<uint32_t, const JsonValue *> bySequence;
  for (const JsonValue *event : complete) {
    if (event->Get("args")->Has("sequence")) {
      bySequence[static_cast<uint32_t>(event->Get("args")->Num("sequence"))] = event;
    }
  }
  const JsonValue &put = *bySequence.at(3);
  EXPECT_EQ(put.Str("name"), "ZKPUT ORDERS.Q");
  EXPECT_EQ(put.Str("cat"), "queue");
  EXPECT_EQ(put.Get("ts")->Text, std::to_string(kBase + 2000));
  EXPECT_EQ(put.Num("dur"), 250);
  EXPECT_EQ(put.Get("args")->Str("hobj"), "0x00000065");
  EXPECT_EQ(put.Get("args")->Str("object"), "ORDERS.Q");

  const JsonValue &open = *bySequence.at(2);
  EXPECT_EQ(open.Get("args")->Str("resolvedName"), "ORDERS.LOCAL");
  EXPECT_EQ(open.Get("args")->Str("hconn"), "0x00000001");

  const JsonValue &failed = *bySequence.at(4);
  EXPECT_EQ(failed.Get("args")->Num("compCode"), 2);
  EXPECT_EQ(failed.Get("args")->Num("reason"), 2053);
  EXPECT_EQ(failed.Get("args")->Str("reasonName"), "ZKRC_Q_FULL");

  const JsonValue &xa = *bySequence.at(10);
  EXPECT_EQ(xa.Str("cat"), "xa");
  EXPECT_EQ(xa.Get("args")->Num("xaReturnValue"), -4);
  EXPECT_EQ(xa.Get("args")->Str("reasonName"), "XAER_NOTA");

  EXPECT_EQ(bySequence.at(1)->Str("cat"), "connection");
  EXPECT_EQ(bySequence.at(7)->Str("cat"), "callback");

  // The odd bytes of an object name come back as they were.
  EXPECT_EQ(bySequence.at(9)->Get("args")->Str("object"), "ODD\"Q\\<&>\xE9");

  // Calls inside others lie within their parent's span.
  auto within = [](const JsonValue &inner, const JsonValue &outer) {
    double start = inner.Num("ts");
    double end = start + inner.Num("dur");
    return start >= outer.Num("ts") && end <= outer.Num("ts") + outer.Num("dur");
  };
  EXPECT_TRUE(within(*bySequence.at(6), *bySequence.at(5)));
  EXPECT_TRUE(within(*bySequence.at(7), *bySequence.at(5)));
  EXPECT_TRUE(within(*bySequence.at(8), *bySequence.at(7)));
  EXPECT_EQ(bySequence.at(8)->Num("ts") - bySequence.at(5)->Num("ts"), 2500);

  // The summary-only call: from its after time less its elapsed time.
  const JsonValue *summaryOnly = nullptr;
  for (const JsonValue *event : complete) {
    if (!event->Get("args")->Has("sequence")) {
      summaryOnly = event;
    }
  }
  ASSERT_NE(summaryOnly, nullptr);
  EXPECT_EQ(summaryOnly->Get("ts")->Text, std::to_string(kBase + 20000 - 1500));
  EXPECT_EQ(summaryOnly->Num("dur"), 1500);

  // The unfinished call is marked; it starts where it started.
  const JsonValue &unfinished = *bySequence.at(12);
  EXPECT_EQ(unfinished.Get("ts")->Text, std::to_string(kBase + 21000));
  ASSERT_NE(unfinished.Get("args")->Get("unfinished"), nullptr);
  EXPECT_TRUE(unfinished.Get("args")->Get("unfinished")->Bool);

  bool available = false;
  bool read = PythonReadsJson(text, &available);
  if (available) {
    EXPECT_TRUE(read);
  }
}

TEST(TraceEventOutput, OneTrackPerProcessAndThread) {
  TraceSource a = MakeSource("a.trc", "orders", 10, 1);
  TraceSource b = MakeSource("b.trc", "orders", 10, 2);
  TraceSource c = MakeSource("c.trc", "billing", 20, 1);
  // Another connection of process 20's thread, under another name.
  TraceSource d = MakeSource("d.trc", "audit", 20, 1);
  d.Connection = "CHL1";
  std::vector<Call> calls = {MakeCall(&a, "ZKCONN", 1, kBase, kBase + 10),
                             MakeCall(&b, "ZKCONN", 1, kBase + 5, kBase + 15),
                             MakeCall(&c, "ZKCONN", 1, kBase + 7, kBase + 17),
                             MakeCall(&a, "ZKDISC", 2, kBase + 20, kBase + 30),
                             MakeCall(&d, "ZKCONN", 1, kBase + 40, kBase + 50),
                             MakeCall(&c, "ZKDISC", 2, kBase + 60, kBase + 70)};
  JsonValue doc = ParseJson(WriteAll(NewTraceEventWriter, calls));
  std::multiset<std::string> names;
  std::set<std::pair<double, double>> tracks;
  for (const JsonValue &event : doc.Get("traceEvents")->Items) {
    if (event.Str("ph") == "M") {
      names.insert(event.Str("name") + " " + std::to_string(int(event.Num("pid"))) + " " +
                   event.Get("args")->Str("name"));
    } else {
      tracks.insert({event.Num("pid"), event.Num("tid")});
    }
  }
  EXPECT_EQ(names.count("process_name 10 orders on ZKQM1"), 1u);
  EXPECT_EQ(names.count("process_name 20 billing on ZKQM1"), 1u);
  EXPECT_EQ(names.count("process_name 20 billing, audit on ZKQM1"), 1u);
  EXPECT_EQ(names.count("thread_name 10 thread 1 (orders)"), 1u);
  EXPECT_EQ(names.count("thread_name 10 thread 2 (orders)"), 1u);
  EXPECT_EQ(names.count("thread_name 20 thread 1 (billing)"), 1u);
  EXPECT_EQ(names.count("thread_name 20 thread 1 (billing, audit; CHL1)"), 1u);
  EXPECT_EQ(names.size(), 7u);
  EXPECT_EQ(tracks.size(), 3u);
}

TEST(TraceEventOutput, AnInnerCallStaysWithinItsParent) {
  TraceSource source = MakeSource("a.trc", "orders", 10, 1);
  Call get = MakeCall(&source, "ZKGET", 1, kBase + 100, kBase + 200);
  // Time stamps a little off: before the parent's start, after its end.
  get.Inside.push_back(MakeCall(&source, "DATA_CONV_ON_GET", 2, kBase + 50, kBase + 120));
  get.Inside.push_back(MakeCall(&source, "ZKCB_FU", 3, kBase + 150, kBase + 400));
  Call noTime = MakeCall(&source, "ZKCB_FU", 4, -1, -1);
  noTime.Unfinished = false;
  get.Inside.push_back(noTime);
  JsonValue doc = ParseJson(WriteAll(NewTraceEventWriter, {get}));
  std::map<int, std::pair<double, double>> spans; // sequence -> ts, ts + dur
  for (const JsonValue &event : doc.Get("traceEvents")->Items) {
    if (event.Str("ph") == "X") {
      int sequence = static_cast<int>(event.Get("args")->Num("sequence"));
      spans[sequence] = {event.Num("ts") - kBase, event.Num("ts") + event.Num("dur") - kBase};
    }
  }
  ASSERT_EQ(spans.size(), 4u);
  EXPECT_EQ(spans[1], std::make_pair(100.0, 200.0));
  EXPECT_EQ(spans[2], std::make_pair(100.0, 120.0));
  EXPECT_EQ(spans[3], std::make_pair(150.0, 200.0));
  EXPECT_EQ(spans[4], std::make_pair(100.0, 100.0)); // no time: at the parent's start
}

TEST(TraceEventOutput, AnUnfinishedCallLastsToTheLastTimeOfItsTrack) {
  TraceSource source = MakeSource("a.trc", "orders", 10, 1);
  std::vector<Call> calls = {MakeCall(&source, "ZKGET", 2, kBase + 100, -1),
                             MakeCall(&source, "ZKPUT", 1, kBase + 200, kBase + 900)};
  // The reader gives the unfinished call last, when the trace has ended.
  std::swap(calls[0], calls[1]);
  JsonValue doc = ParseJson(WriteAll(NewTraceEventWriter, calls));
  const JsonValue *unfinished = nullptr;
  for (const JsonValue &event : doc.Get("traceEvents")->Items) {
    if (event.Str("ph") == "X" && event.Get("args")->Num("sequence") == 2) {
      unfinished = &event;
    }
  }
  ASSERT_NE(unfinished, nullptr);
  EXPECT_EQ(unfinished->Num("ts"), kBase + 100);
  EXPECT_EQ(unfinished->Num("dur"), 800);
}

TEST(TraceEventOutput, NoCallsIsAnEmptyTimeline) {
  JsonValue doc = ParseJson(WriteAll(NewTraceEventWriter, {}));
  ASSERT_NE(doc.Get("traceEvents"), nullptr);
  EXPECT_TRUE(doc.Get("traceEvents")->Items.empty());
}

// ----- OTLP/JSON

struct SpanView {
  const JsonValue *Span;
  std::map<std::string, const JsonValue *> Attributes;
};

std::vector<SpanView> Spans(const JsonValue &doc, size_t *resources) {
  std::vector<SpanView> spans;
  const JsonValue *resourceSpans = doc.Get("resourceSpans");
  EXPECT_NE(resourceSpans, nullptr);
  if (resourceSpans == nullptr) {
    return spans;
  }
  *resources = resourceSpans->Items.size();
  for (const JsonValue &resource : resourceSpans->Items) {
    EXPECT_TRUE(resource.Has("resource"));
    const JsonValue *scopeSpans = resource.Get("scopeSpans");
    EXPECT_NE(scopeSpans, nullptr);
    if (scopeSpans == nullptr) {
      continue;
    }
    for (const JsonValue &scope : scopeSpans->Items) {
      EXPECT_EQ(scope.Get("scope")->Str("name"), "wzreform");
      EXPECT_FALSE(scope.Get("scope")->Str("version").empty());
      for (const JsonValue &span : scope.Get("spans")->Items) {
        SpanView view{&span, {}};
        for (const JsonValue &attribute : span.Get("attributes")->Items) {
          view.Attributes[attribute.Str("key")] = attribute.Get("value");
        }
        spans.push_back(view);
      }
    }
  }
  return spans;
}

std::map<std::string, std::string> ResourceAttributes(const JsonValue &resourceSpan) {
  std::map<std::string, std::string> attributes;
  for (const JsonValue &attribute : resourceSpan.Get("resource")->Get("attributes")->Items) {
    const JsonValue *value = attribute.Get("value");
    attributes[attribute.Str("key")] =
        value->Has("stringValue") ? value->Str("stringValue") : value->Str("intValue");
  }
  return attributes;
}

TEST(OtlpOutput, SpansWithIdsTimesStatusAndAttributes) {
  SampleTrace trace;
  trace.Source.Host = "node7";
  std::string text = WriteAll(NewOtlpWriter, trace.Calls);
  JsonValue doc = ParseJson(text);
  size_t resources = 0;
  std::vector<SpanView> spans = Spans(doc, &resources);
  EXPECT_EQ(resources, 1u);
  ASSERT_EQ(spans.size(), 13u);

  std::map<std::string, std::string> resource =
      ResourceAttributes(doc.Get("resourceSpans")->Items[0]);
  EXPECT_EQ(resource["service.name"], "orders");
  EXPECT_EQ(resource["process.pid"], "1234");
  EXPECT_EQ(resource["thread.id"], "1");
  EXPECT_EQ(resource["zk.queue_manager"], "ZKQM1");
  EXPECT_EQ(resource["host.name"], "node7");

  std::set<std::string> spanIds;
  std::map<int64_t, const SpanView *> bySequence;
  for (const SpanView &view : spans) {
    const JsonValue &span = *view.Span;
    EXPECT_TRUE(IsLowerHex(span.Str("traceId"), 32)) << span.Str("traceId");
    EXPECT_TRUE(IsLowerHex(span.Str("spanId"), 16)) << span.Str("spanId");
    EXPECT_TRUE(spanIds.insert(span.Str("spanId")).second) << "span id twice";
    EXPECT_FALSE(span.Str("name").empty());
    EXPECT_EQ(span.Num("kind"), 3);
    // Nanoseconds as decimal strings, the start not after the end.
    std::string start = span.Str("startTimeUnixNano");
    std::string end = span.Str("endTimeUnixNano");
    ASSERT_FALSE(start.empty());
    ASSERT_EQ(start.find_first_not_of("0123456789"), std::string::npos);
    ASSERT_EQ(end.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_LE(std::stoull(start), std::stoull(end));
    auto sequence = view.Attributes.find("wz.sequence");
    if (sequence != view.Attributes.end()) {
      bySequence[std::stoll(sequence->second->Str("intValue"))] = &view;
    }
  }

  auto status = [&](int64_t sequence) {
    return bySequence.at(sequence)->Span->Get("status")->Num("code");
  };
  auto message = [&](int64_t sequence) {
    return bySequence.at(sequence)->Span->Get("status")->Str("message");
  };
  EXPECT_EQ(status(3), 1);
  EXPECT_EQ(status(4), 2);
  EXPECT_EQ(message(4), "ZKRC_Q_FULL");
  EXPECT_EQ(status(9), 0);
  EXPECT_EQ(message(9), "ZKRC_TRUNCATED_MSG_ACCEPTED");
  EXPECT_EQ(status(10), 2);
  EXPECT_EQ(message(10), "XAER_NOTA");
  EXPECT_EQ(status(11), 1);
  EXPECT_EQ(status(12), 0);

  const SpanView &put = *bySequence.at(3);
  EXPECT_EQ(put.Span->Str("name"), "ZKPUT ORDERS.Q");
  EXPECT_EQ(put.Span->Str("startTimeUnixNano"), std::to_string((kBase + 2000) * 1000));
  EXPECT_EQ(put.Span->Str("endTimeUnixNano"), std::to_string((kBase + 2250) * 1000));
  EXPECT_EQ(put.Attributes.at("zk.function")->Str("stringValue"), "ZKPUT");
  EXPECT_EQ(put.Attributes.at("zk.object_name")->Str("stringValue"), "ORDERS.Q");
  EXPECT_EQ(put.Attributes.at("zk.hconn")->Str("intValue"), "1");
  EXPECT_EQ(put.Attributes.at("zk.hobj")->Str("intValue"), "101");
  EXPECT_EQ(put.Attributes.at("zk.comp_code")->Str("intValue"), "0");
  EXPECT_EQ(put.Attributes.at("zk.reason")->Str("intValue"), "0");
  EXPECT_EQ(bySequence.at(2)->Attributes.at("zk.resolved_name")->Str("stringValue"),
            "ORDERS.LOCAL");
  EXPECT_EQ(bySequence.at(4)->Attributes.at("zk.reason_name")->Str("stringValue"), "ZKRC_Q_FULL");
  EXPECT_EQ(bySequence.at(10)->Attributes.at("zk.xa_return_value")->Str("intValue"), "-4");

  // Nested calls: children of their parent's span, in its trace; the calls
  // of the top level have no parent and traces of their own.
  auto span = [&](int64_t sequence) { return bySequence.at(sequence)->Span; };
  EXPECT_EQ(span(6)->Str("parentSpanId"), span(5)->Str("spanId"));
  EXPECT_EQ(span(7)->Str("parentSpanId"), span(5)->Str("spanId"));
  EXPECT_EQ(span(8)->Str("parentSpanId"), span(7)->Str("spanId"));
  EXPECT_EQ(span(8)->Str("traceId"), span(5)->Str("traceId"));
  EXPECT_EQ(span(6)->Str("traceId"), span(5)->Str("traceId"));
  EXPECT_FALSE(span(5)->Has("parentSpanId"));
  EXPECT_NE(span(3)->Str("traceId"), span(5)->Str("traceId"));
  EXPECT_LE(std::stoull(span(5)->Str("startTimeUnixNano")),
            std::stoull(span(8)->Str("startTimeUnixNano")));
  EXPECT_GE(std::stoull(span(5)->Str("endTimeUnixNano")),
            std::stoull(span(8)->Str("endTimeUnixNano")));

  bool available = false;
  bool read = PythonReadsJson(text, &available);
  if (available) {
    EXPECT_TRUE(read);
  }
}

TEST(OtlpOutput, SameTraceGivesSameIds) {
  SampleTrace first;
  SampleTrace second; // other objects in memory, the same calls
  std::string a = WriteAll(NewOtlpWriter, first.Calls);
  std::string b = WriteAll(NewOtlpWriter, second.Calls);
  EXPECT_EQ(a, b);

  // Another trace file: other ids.
  second.Source.Path = "/var/zk/wz/app.1234.1.trc.old";
  std::string c = WriteAll(NewOtlpWriter, second.Calls);
  size_t resources = 0;
  JsonValue docA = ParseJson(a);
  JsonValue docC = ParseJson(c);
  std::vector<SpanView> spansA = Spans(docA, &resources);
  std::vector<SpanView> spansC = Spans(docC, &resources);
  ASSERT_EQ(spansA.size(), spansC.size());
  for (size_t i = 0; i < spansA.size(); i++) {
    EXPECT_NE(spansA[i].Span->Str("spanId"), spansC[i].Span->Str("spanId"));
    EXPECT_NE(spansA[i].Span->Str("traceId"), spansC[i].Span->Str("traceId"));
  }
}

TEST(OtlpOutput, OneResourceEntryPerRunOfAConnection) {
  TraceSource a = MakeSource("a.trc", "orders", 10, 1);
  TraceSource b = MakeSource("b.trc", "billing", 20, 1);
  std::vector<Call> calls = {MakeCall(&a, "ZKCONN", 1, kBase, kBase + 10),
                             MakeCall(&a, "ZKOPEN", 2, kBase + 20, kBase + 30),
                             MakeCall(&b, "ZKCONN", 1, kBase + 25, kBase + 35),
                             MakeCall(&a, "ZKDISC", 3, kBase + 40, kBase + 50)};
  JsonValue doc = ParseJson(WriteAll(NewOtlpWriter, calls));
  const JsonValue *resourceSpans = doc.Get("resourceSpans");
  ASSERT_NE(resourceSpans, nullptr);
  ASSERT_EQ(resourceSpans->Items.size(), 3u);
  std::vector<std::string> services;
  std::vector<size_t> counts;
  for (const JsonValue &entry : resourceSpans->Items) {
    services.push_back(ResourceAttributes(entry)["service.name"]);
    counts.push_back(entry.Get("scopeSpans")->Items[0].Get("spans")->Items.size());
  }
  EXPECT_EQ(services, (std::vector<std::string>{"orders", "billing", "orders"}));
  EXPECT_EQ(counts, (std::vector<size_t>{2, 1, 1}));
}

TEST(OtlpOutput, NoCallsIsAnEmptyExport) {
  JsonValue doc = ParseJson(WriteAll(NewOtlpWriter, {}));
  ASSERT_NE(doc.Get("resourceSpans"), nullptr);
  EXPECT_TRUE(doc.Get("resourceSpans")->Items.empty());
}

// ----- Statistics

TEST(LatencyHistogram, PercentilesOfAKnownDistribution) {
  std::vector<int64_t> values;
  for (int64_t v = 1; v <= 1000; v++) {
    values.push_back(v);
  }
  std::shuffle(values.begin(), values.end(), std::mt19937(7));
  LatencyHistogram histogram;
  for (int64_t v : values) {
    histogram.Add(v);
  }
  EXPECT_EQ(histogram.Count(), 1000u);
  EXPECT_EQ(histogram.Min(), 1);
  EXPECT_EQ(histogram.Max(), 1000);
  EXPECT_DOUBLE_EQ(histogram.Mean(), 500.5);
  // Nearest rank: 500, 900, 990 exactly; the buckets are 1% wide.
  EXPECT_NEAR(histogram.Percentile(50), 500, 5);
  EXPECT_NEAR(histogram.Percentile(90), 900, 9);
  EXPECT_NEAR(histogram.Percentile(99), 990, 10);
  EXPECT_EQ(histogram.Percentile(100), 1000);
}

TEST(LatencyHistogram, ShortTimesAreExact) {
  LatencyHistogram histogram;
  for (int64_t v = 0; v < 100; v++) {
    histogram.Add(v);
  }
  // Under 100 us every bucket holds at most one integer.
  EXPECT_EQ(histogram.Percentile(50), 49);
  EXPECT_EQ(histogram.Percentile(90), 89);
  EXPECT_EQ(histogram.Percentile(10), 9);
  EXPECT_EQ(histogram.Min(), 0);
}

TEST(LatencyHistogram, BucketsAreOnePercentWideAndBounded) {
  for (int64_t v : {1LL, 2LL, 99LL, 100LL, 101LL, 12345LL, 999999LL, 1000000000LL}) {
    int bucket = LatencyHistogram::BucketOf(v);
    EXPECT_LE(LatencyHistogram::BucketLow(bucket), static_cast<double>(v)) << v;
    EXPECT_GT(LatencyHistogram::BucketHigh(bucket), static_cast<double>(v)) << v;
    if (bucket > 1) {
      EXPECT_NEAR(LatencyHistogram::BucketHigh(bucket) / LatencyHistogram::BucketLow(bucket), 1.01,
                  1e-9);
    }
  }
  EXPECT_EQ(LatencyHistogram::BucketOf(0), 0);
  EXPECT_LT(LatencyHistogram::BucketOf(1000000000LL), LatencyHistogram::kBuckets - 1);
  // Longer than 1000 s: the last bucket, the maximum still exact.
  EXPECT_EQ(LatencyHistogram::BucketOf(5000000000LL), LatencyHistogram::kBuckets - 1);
  LatencyHistogram histogram;
  histogram.Add(10);
  histogram.Add(5000000000LL);
  histogram.Add(7000000000LL);
  EXPECT_EQ(histogram.Max(), 7000000000LL);
  // Read from the last bucket: beyond 1000 s, not beyond the maximum.
  EXPECT_GE(histogram.Percentile(60), 1000000000LL);
  EXPECT_LE(histogram.Percentile(60), 7000000000LL);
  EXPECT_EQ(histogram.Percentile(30), 10);
}

TEST(LatencyHistogram, BucketsHoldEveryCall) {
  LatencyHistogram histogram;
  for (int64_t v : {5000LL, 3LL, 0LL, 70000000LL, 5000LL, 12LL}) {
    histogram.Add(v);
  }
  uint64_t total = 0;
  for (int bucket = 0; bucket < LatencyHistogram::kBuckets; bucket++) {
    total += histogram.BucketCount(bucket);
  }
  EXPECT_EQ(total, 6u);
  EXPECT_EQ(histogram.BucketCount(LatencyHistogram::BucketOf(5000)), 2u);
  EXPECT_EQ(histogram.BucketCount(LatencyHistogram::BucketOf(6000)), 0u);
  EXPECT_EQ(histogram.BucketCount(0), 1u);
  EXPECT_EQ(histogram.BucketCount(-1), 0u);
  EXPECT_EQ(histogram.BucketCount(LatencyHistogram::kBuckets), 0u);
}

TEST(GroupStats, KeepsTheTenSlowestWithTheirSequenceNumbers) {
  TraceSource source = MakeSource("s.trc", "orders", 1, 1);
  GroupStats group;
  // Elapsed times in a scrambled order: sequence n took (n * 37) % 101 us.
  for (uint32_t n = 1; n <= 100; n++) {
    int64_t elapsed = (n * 37) % 101;
    group.Add(MakeCall(&source, "ZKPUT", n, kBase + n * 1000, kBase + n * 1000 + elapsed));
  }
  ASSERT_EQ(group.Slowest.size(), GroupStats::kSlowest);
  for (size_t i = 0; i < group.Slowest.size(); i++) {
    int64_t expected = 100 - static_cast<int64_t>(i);
    EXPECT_EQ(group.Slowest[i].Micros, expected);
    EXPECT_EQ((group.Slowest[i].Sequence * 37) % 101, expected);
    EXPECT_EQ(group.Slowest[i].Trace, "s.trc");
  }
  EXPECT_EQ(group.Latency.Count(), 100u);
  EXPECT_EQ(group.Calls, 100u);
}

TEST(GroupStats, ResultsByClassAndThroughput) {
  TraceStats stats;
  SampleTrace trace;
  for (const Call &call : trace.Calls) {
    stats.Add(call);
  }
  const GroupStats &puts = stats.ByFunction().at("ZKPUT");
  // Two of the top level, one inside the callback, one summary-only.
  EXPECT_EQ(puts.Calls, 4u);
  EXPECT_EQ(puts.ByOutcome[static_cast<int>(Outcome::OK)], 3u);
  EXPECT_EQ(puts.ByOutcome[static_cast<int>(Outcome::FAILED)], 1u);
  const GroupStats &gets = stats.ByFunction().at("ZKGET");
  EXPECT_EQ(gets.Calls, 3u);
  EXPECT_EQ(gets.ByOutcome[static_cast<int>(Outcome::WARNING)], 1u);
  EXPECT_EQ(gets.ByOutcome[static_cast<int>(Outcome::UNFINISHED)], 1u);
  EXPECT_EQ(gets.Latency.Count(), 2u); // the unfinished one has no time
  EXPECT_EQ(stats.ByFunction().at("xa_commit").ByOutcome[static_cast<int>(Outcome::FAILED)], 1u);
  EXPECT_EQ(stats.Overall().Calls, 13u);
  EXPECT_EQ(stats.ByObject().at({"ORDERS.Q", "ZKPUT"}).Calls, 3u);
  EXPECT_EQ(stats.ByObject().at({"REPLY.Q", "ZKPUT"}).Calls, 1u);
  EXPECT_EQ(stats.Traces(), std::vector<std::string>{trace.Source.Path});

  // Trace files told apart by path, also when the reader keeps the next
  // one's source where it kept the last one's.
  TraceSource reused = MakeSource("one.trc", "orders", 1, 1);
  TraceStats files;
  files.Add(MakeCall(&reused, "ZKCONN", 1, kBase, kBase + 1));
  reused.Path = "two.trc";
  files.Add(MakeCall(&reused, "ZKCONN", 1, kBase + 2, kBase + 3));
  reused.Path = "one.trc";
  files.Add(MakeCall(&reused, "ZKDISC", 2, kBase + 4, kBase + 5));
  EXPECT_EQ(files.Traces(), (std::vector<std::string>{"one.trc", "two.trc"}));

  // 11 calls one second apart: 11 calls in 10 seconds.
  GroupStats spread;
  for (int i = 0; i <= 10; i++) {
    spread.Add(
        MakeCall(&trace.Source, "ZKINQ", i + 1, kBase + i * 1000000LL, kBase + i * 1000000LL));
  }
  EXPECT_DOUBLE_EQ(spread.Throughput(), 1.1);

  // One call is no rate at all.
  GroupStats single;
  single.Add(MakeCall(&trace.Source, "ZKINQ", 1, kBase, kBase + 5));
  EXPECT_EQ(single.Throughput(), 0);
}

std::vector<std::string> SummaryRow(const std::string &text, const std::string &section,
                                    const std::string &name);

TEST(GroupStats, ObjectNamesPastTheLimitAreCountedTogether) {
  TraceSource source = MakeSource("x.trc", "server", 1, 1);
  std::vector<Call> calls;
  const size_t names = TraceStats::kMaxObjects + 5;
  for (size_t i = 0; i < names; i++) {
    Call put = MakeCall(&source, "ZKPUT", static_cast<uint32_t>(i + 1), kBase + i, kBase + i + 1);
    put.ObjectName = "TMP.REPLY." + std::to_string(i);
    calls.push_back(put);
  }
  // A name that has a group keeps it.
  Call again = MakeCall(&source, "ZKGET", 9999, kBase + 9999, kBase + 10000);
  again.ObjectName = "TMP.REPLY.0";
  calls.push_back(again);
  TraceStats stats;
  for (const Call &call : calls) {
    stats.Add(call);
  }
  EXPECT_TRUE(stats.ObjectsCut());
  EXPECT_EQ(stats.ByObject().size(), TraceStats::kMaxObjects + 2);
  EXPECT_EQ(stats.ByObject().at({TraceStats::kOtherObjects, "ZKPUT"}).Calls, 5u);
  EXPECT_EQ(stats.ByObject().at({"TMP.REPLY.0", "ZKGET"}).Calls, 1u);
  EXPECT_EQ(stats.ByFunction().at("ZKPUT").Calls, names);
  std::vector<std::string> other =
      SummaryRow(WriteAll(NewSummaryWriter, calls), "Calls by object name", "(other");
  ASSERT_GE(other.size(), 4u);
  EXPECT_EQ(other[1], "names)");
  EXPECT_EQ(other[2], "ZKPUT");
  EXPECT_EQ(other[3], "5");
  EXPECT_NE(WriteAll(NewSummaryWriter, calls).find("Past 1000 object names"), std::string::npos);
}

TEST(CallTimeline, StaysWithinItsBinsAndKeepsEveryCall) {
  Timeline timeline;
  uint64_t failed = 0;
  for (int64_t second = 0; second < 1000; second++) {
    timeline.Add(kBase + second * 1000000, second % 7 == 0);
    failed += second % 7 == 0;
  }
  std::vector<Timeline::Bin> bins = timeline.Bins();
  // 1000 s: too many bins of 1 or 2 s, 100 of 10 s.
  EXPECT_EQ(timeline.BinMicros(), 10000000);
  EXPECT_EQ(bins.size(), 100u);
  uint64_t calls = 0;
  uint64_t failedSeen = 0;
  for (size_t i = 0; i < bins.size(); i++) {
    calls += bins[i].Calls;
    failedSeen += bins[i].Failed;
    if (i > 0) {
      EXPECT_EQ(bins[i].Start - bins[i - 1].Start, timeline.BinMicros());
    }
  }
  EXPECT_EQ(calls, 1000u);
  EXPECT_EQ(failedSeen, failed);
  EXPECT_EQ(bins.front().Start, kBase);
  EXPECT_EQ(bins.front().Calls, 10u);

  // A tenth of a second, in bins of a millisecond.
  Timeline shortOne;
  for (int64_t i = 0; i < 100; i++) {
    shortOne.Add(kBase + i * 1000 + 500, false);
  }
  EXPECT_EQ(shortOne.BinMicros(), 1000);
  EXPECT_EQ(shortOne.Bins().size(), 100u);
}

// ----- The plain summary

// The cells of the table row that starts with `name` in the section
// headed `section`.
std::vector<std::string> SummaryRow(const std::string &text, const std::string &section,
                                    const std::string &name) {
  size_t at = text.find("\n" + section + "\n");
  EXPECT_NE(at, std::string::npos) << section;
  std::istringstream lines(text.substr(at + section.size() + 2));
  std::string line;
  while (std::getline(lines, line) && !line.empty()) {
    std::istringstream words(line);
    std::vector<std::string> cells;
    std::string word;
    while (words >> word) {
      cells.push_back(word);
    }
    if (!cells.empty() && cells[0] == name) {
      return cells;
    }
  }
  ADD_FAILURE() << "no row " << name << " in " << section << ":\n" << text;
  return {};
}

TEST(SummaryOutput, TablesByFunctionAndObjectWithTheSlowestCalls) {
  TraceSource source = MakeSource("/tmp/x.trc", "orders", 1, 1);
  std::vector<Call> calls;
  // 1000 puts of 1 to 1000 us, one a millisecond; every 100th failed.
  for (uint32_t n = 1; n <= 1000; n++) {
    int64_t start = kBase + n * 1000;
    Call put = MakeCall(&source, "ZKPUT", n, start, start + n, n % 100 == 0 ? 2 : 0);
    put.ObjectName = "ORDERS.Q";
    calls.push_back(put);
  }
  Call warned = MakeCall(&source, "ZKGET", 2000, kBase, kBase + 40, 1, 2079);
  warned.ObjectName = "ORDERS.Q";
  calls.push_back(warned);
  calls.push_back(MakeCall(&source, "ZKGET", 2001, kBase + 5000, -1));

  std::string text = WriteAll(NewSummaryWriter, calls);
  std::vector<std::string> put = SummaryRow(text, "Calls by function", "ZKPUT");
  // Calls OK Warning Failed Unfinished No-result p50 p90 p99 Max Calls/s
  ASSERT_EQ(put.size(), 12u) << text;
  EXPECT_EQ(put[1], "1000");
  EXPECT_EQ(put[2], "990");
  EXPECT_EQ(put[3], "0");
  EXPECT_EQ(put[4], "10");
  EXPECT_NEAR(std::stod(put[7]), 500, 5);
  EXPECT_NEAR(std::stod(put[8]), 900, 9);
  EXPECT_NEAR(std::stod(put[9]), 990, 10);
  EXPECT_EQ(put[10], "1000");
  // From kBase + 1000 to kBase + 1001000: 1000 calls in one second.
  EXPECT_NEAR(std::stod(put[11]), 1000.0, 0.05);

  std::vector<std::string> get = SummaryRow(text, "Calls by function", "ZKGET");
  ASSERT_EQ(get.size(), 12u);
  EXPECT_EQ(get[1], "2");
  EXPECT_EQ(get[3], "1");
  EXPECT_EQ(get[5], "1");
  EXPECT_EQ(get[10], "40");

  std::vector<std::string> all = SummaryRow(text, "Calls by function", "(all)");
  ASSERT_FALSE(all.empty());
  EXPECT_EQ(all[1], "1002");

  std::vector<std::string> object = SummaryRow(text, "Calls by object name", "ORDERS.Q");
  ASSERT_GE(object.size(), 3u);
  EXPECT_EQ(object[1], "ZKGET"); // sorted: ZKGET before ZKPUT

  // The slowest puts: 1000 us down to 991 us, with their sequence numbers.
  size_t slowest = text.find("Slowest calls by function");
  ASSERT_NE(slowest, std::string::npos);
  size_t puts = text.find("  ZKPUT\n", slowest);
  ASSERT_NE(puts, std::string::npos);
  std::istringstream lines(text.substr(puts));
  std::string line;
  std::getline(lines, line); // the function
  std::getline(lines, line); // the column names
  EXPECT_NE(line.find("Seq #"), std::string::npos);
  for (int i = 0; i < 10; i++) {
    ASSERT_TRUE(std::getline(lines, line));
    std::istringstream words(line);
    int64_t micros = 0;
    uint32_t sequence = 0;
    words >> micros >> sequence;
    EXPECT_EQ(micros, 1000 - i);
    EXPECT_EQ(sequence, static_cast<uint32_t>(1000 - i));
  }
}

TEST(SummaryOutput, ControlCharactersOfATraceDoNotBreakTheTable) {
  TraceSource source = MakeSource("x.trc", "orders", 1, 1);
  Call put = MakeCall(&source, "ZKPUT", 1, kBase, kBase + 5);
  put.ObjectName = "EVIL\nQ";
  std::string text = WriteAll(NewSummaryWriter, {put});
  EXPECT_EQ(text.find("EVIL\n"), std::string::npos);
  EXPECT_NE(text.find("EVIL.Q"), std::string::npos);
}

// ----- The HTML report

// The names of all tags in a page ("svg", "/svg", "!DOCTYPE").
std::vector<std::string> TagNames(const std::string &page) {
  std::vector<std::string> names;
  for (size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
    size_t end = at + 1;
    while (end < page.size() && (isalnum(static_cast<unsigned char>(page[end])) ||
                                 page[end] == '/' || page[end] == '!')) {
      end++;
    }
    names.push_back(page.substr(at + 1, end - at - 1));
  }
  return names;
}

size_t Count(const std::string &text, const std::string &what) {
  size_t count = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    count++;
  }
  return count;
}

TEST(HtmlReport, SelfContainedPageWithEscapedTraceText) {
  SampleTrace trace;
  trace.Source.Path = "/tmp/<script>alert(1)</script>.trc";
  std::string page = WriteAll(NewHtmlReportWriter, trace.Calls);

  ASSERT_EQ(page.rfind("<!DOCTYPE html>", 0), 0u);
  EXPECT_NE(page.find("</html>"), std::string::npos);
  // Nothing fetched from anywhere, no script.
  EXPECT_EQ(page.find("http://"), std::string::npos);
  EXPECT_EQ(page.find("https://"), std::string::npos);
  EXPECT_EQ(page.find("url("), std::string::npos);
  EXPECT_EQ(page.find("@import"), std::string::npos);
  EXPECT_EQ(page.find("<script"), std::string::npos);

  // Every '<' opens one of the report's own tags: none comes from the trace.
  const std::set<std::string> allowed = {
      "!DOCTYPE", "html",  "/html", "head", "/head", "meta",   "title", "/title", "style", "/style",
      "body",     "/body", "h1",    "/h1",  "h2",    "/h2",    "h3",    "/h3",    "p",     "/p",
      "ul",       "/ul",   "li",    "/li",  "table", "/table", "tr",    "/tr",    "th",    "/th",
      "td",       "/td",   "svg",   "/svg", "rect",  "/rect",  "line",  "/line",  "text",  "/text"};
  for (const std::string &name : TagNames(page)) {
    EXPECT_EQ(allowed.count(name), 1u) << "tag <" << name << "> in the page";
  }
  EXPECT_NE(page.find("&lt;img src=x onerror=alert(1)&gt;"), std::string::npos);
  EXPECT_NE(page.find("ODD&quot;Q\\&lt;&amp;&gt;&#xE9;"), std::string::npos);
  EXPECT_NE(page.find("&lt;script&gt;alert(1)&lt;/script&gt;.trc"), std::string::npos);
  // Plain ASCII throughout.
  for (char c : page) {
    ASSERT_LT(static_cast<unsigned char>(c), 0x80u);
  }

  // One histogram per function with an elapsed time, and the timeline.
  TraceStats stats;
  for (const Call &call : trace.Calls) {
    stats.Add(call);
  }
  size_t histograms = 0;
  for (const auto &[function, group] : stats.ByFunction()) {
    histograms += group.Latency.Count() != 0;
    EXPECT_NE(page.find("<h3>" + function + "</h3>"), std::string::npos) << function;
  }
  EXPECT_EQ(histograms, 8u); // ZKCONN ZKOPEN ZKPUT ZKGET DATA_CONV ZKCB_FU xa_commit xa_prepare
  EXPECT_EQ(Count(page, "<svg"), histograms + 1);
  EXPECT_EQ(Count(page, "<svg"), Count(page, "</svg>"));
  EXPECT_NE(page.find("Calls by function"), std::string::npos);
  EXPECT_NE(page.find("Calls per second"), std::string::npos);
}

TEST(HtmlReport, AFunctionWithoutTimesHasNoHistogram) {
  TraceSource source = MakeSource("x.trc", "orders", 1, 1);
  std::vector<Call> calls = {MakeCall(&source, "ZKPUT", 1, kBase, kBase + 10),
                             MakeCall(&source, "ZKGET", 2, kBase + 20, -1)};
  std::string page = WriteAll(NewHtmlReportWriter, calls);
  EXPECT_EQ(Count(page, "<svg"), 2u); // ZKPUT's histogram and the timeline
}

TEST(HtmlReport, NoCallsStillAPage) {
  std::string page = WriteAll(NewHtmlReportWriter, {});
  EXPECT_NE(page.find("</html>"), std::string::npos);
  EXPECT_EQ(Count(page, "<svg"), 0u);
}

// ----- Output that fails

TEST(OutputFailure, AFullDiskIsReported) {
  SampleTrace trace;
  for (auto factory : {NewTraceEventWriter, NewOtlpWriter, NewSummaryWriter, NewHtmlReportWriter}) {
    FILE *full = fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    std::unique_ptr<CallWriter> writer(factory(full));
    ASSERT_NE(writer, nullptr);
    int result = writer->Begin();
    for (const Call &call : trace.Calls) {
      result |= writer->Write(call);
    }
    errno = 0;
    result |= writer->End();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(errno, ENOSPC);
    fclose(full);
  }
}

} // namespace
