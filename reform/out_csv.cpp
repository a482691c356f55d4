// CSV: one row per call with its header fields (RFC 4180: a heading row,
// fields with a comma, a quote or a line break in quotes with quotes
// doubled, rows ended by CR LF). A call made inside another follows it
// with its depth (1 for a call inside a top-level call, and so on).
#include <inttypes.h>
#include <stdio.h>

#include <string>
#include <string_view>

#include "reform/writers.h"

namespace wzreform {

namespace {

const char kHeading[] = "file,qmgr,program,pid,tid,depth,function,seq,object,resolved,hconn,hobj,"
                        "compCode,reason,reasonName,beforeTime,afterTime,beforeMicros,afterMicros,"
                        "elapsedMicros,unfinished\r\n";

class CsvWriter : public CallWriter {
public:
  explicit CsvWriter(FILE *out) : Out(out) {}

  int Begin() override { return fputs(kHeading, Out) >= 0 ? 0 : -1; }

  int Write(const Call &call) override {
    Row.clear();
    AddRows(call, call.Source, 0);
    return fwrite(Row.data(), 1, Row.size(), Out) == Row.size() ? 0 : -1;
  }

  int End() override { return fflush(Out) == 0 && !ferror(Out) ? 0 : -1; }

private:
  void Text(std::string_view text) {
    bool quote = text.find_first_of(",\"\r\n") != std::string_view::npos;
    if (!quote) {
      Row.append(text);
    } else {
      Row.push_back('"');
      for (char c : text) {
        if (c == '"') {
          Row.push_back('"');
        }
        Row.push_back(c);
      }
      Row.push_back('"');
    }
    Row.push_back(',');
  }

  void Number(bool has, int64_t value) {
    if (has) {
      char text[24];
      int n = snprintf(text, sizeof text, "%" PRId64, value);
      Row.append(text, static_cast<size_t>(n));
    }
    Row.push_back(',');
  }

  void Hex(bool has, uint32_t value) {
    if (has) {
      char text[12];
      int n = snprintf(text, sizeof text, "0x%08" PRIX32, value);
      Row.append(text, static_cast<size_t>(n));
    }
    Row.push_back(',');
  }

  void AddRows(const Call &call, const TraceSource *source, int depth) {
    const TraceSource *s = call.Source != nullptr ? call.Source : source;
    Text(s != nullptr ? std::string_view(s->Path) : std::string_view());
    Text(s != nullptr ? std::string_view(s->QMgr) : std::string_view());
    Text(s != nullptr ? std::string_view(s->Program) : std::string_view());
    Number(s != nullptr, s != nullptr ? s->ProcessId : 0);
    Number(s != nullptr, s != nullptr ? s->ThreadId : 0);
    Number(true, depth);
    Text(call.Function);
    Number(call.Sequence != 0, call.Sequence);
    Text(call.ObjectName);
    Text(call.ResolvedName);
    Hex(call.HasHconn, call.Hconn);
    Hex(call.HasHobj, call.Hobj);
    Number(call.HasCodes, call.CompCode);
    Number(call.HasCodes, call.Reason);
    Text(call.ReasonName);
    Text(call.BeforeTime);
    Text(call.AfterTime);
    Number(call.BeforeMicros >= 0, call.BeforeMicros);
    Number(call.AfterMicros >= 0, call.AfterMicros);
    Number(call.HasElapsed, call.ElapsedMicros);
    Row.append(call.Unfinished ? "true" : "false");
    Row.append("\r\n");
    for (const Call &inner : call.Inside) {
      AddRows(inner, s, depth + 1);
    }
  }

  FILE *Out;
  std::string Row;
};

} // namespace

CallWriter *NewCsvWriter(FILE *out) { return new CsvWriter(out); }

} // namespace wzreform
