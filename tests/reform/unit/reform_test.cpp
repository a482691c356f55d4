// Unit tests of wzreform's parts: the JSON writer, the reading of lines,
// stamps and file names, the parser on small hand-written traces, the
// selection of calls and the JSON Lines and CSV writers.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reform/filters.h"
#include "reform/json.h"
#include "reform/parser.h"
#include "reform/trace_names.h"
#include "reform/writers.h"

namespace wzreform {
namespace {

// ---- JSON ------------------------------------------------------------------

TEST(Json, EscapesEveryByteThatIsNotPrintableAscii) {
  std::string out;
  AppendJsonString(out, std::string("a\"b\\c\n\x01\x7F\xC3\xA9 ~", 12));
  EXPECT_EQ(out, "\"a\\\"b\\\\c\\u000A\\u0001\\u007F\\u00C3\\u00A9 ~\"");
  out.clear();
  AppendJsonString(out, std::string("\0z", 2));
  EXPECT_EQ(out, "\"\\u0000z\"");
}

TEST(Json, WriterPutsCommasAndNesting) {
  std::string out;
  JsonWriter w(out);
  w.BeginObject();
  w.Key("a");
  w.BeginArray();
  w.Int(1);
  w.Int(-2);
  w.BeginObject();
  w.Key("b");
  w.Null();
  w.EndObject();
  w.BeginArray();
  w.EndArray();
  w.EndArray();
  w.Key("c");
  w.Hex32(0xABCD);
  w.Member("d", true);
  w.Key("e");
  w.Double(0.5);
  w.EndObject();
  EXPECT_EQ(out, "{\"a\":[1,-2,{\"b\":null},[]],\"c\":\"0x0000ABCD\",\"d\":true,\"e\":0.5}");
  EXPECT_EQ(w.Level(), 0);
}

// ---- stamps, times, lines ----------------------------------------------------

TEST(Stamp, ReadsLocalTimeAsUtcMicroseconds) {
  EXPECT_EQ(ParseStampMicros("[1970/01/01 00:00:01.000002]"), 1000002);
  EXPECT_EQ(ParseStampMicros("2026/11/24 12:00:00.123456"), 1795521600123456LL);
  EXPECT_EQ(ParseStampMicros("[2000/02/29 23:59:59.999999]"), 951868799999999LL);
  EXPECT_EQ(ParseStampMicros("[2026/13/01 00:00:00.000000]"), -1);
  EXPECT_EQ(ParseStampMicros("[2026/11/24 12:00:00.12345]"), -1);
  EXPECT_EQ(ParseStampMicros("[YYYY/MM/DD hh:mm:ss.uuuuuu]"), -1);
  EXPECT_EQ(ParseStampMicros(""), -1);
}

TEST(ProcessTime, ReadsSecondsAndMicroseconds) {
  int64_t micros = 0;
  EXPECT_TRUE(ParseProcessTime("    0.000034", &micros));
  EXPECT_EQ(micros, 34);
  EXPECT_TRUE(ParseProcessTime("   12.500000", &micros));
  EXPECT_EQ(micros, 12500000);
  EXPECT_TRUE(ParseProcessTime("    0.-00005", &micros));
  EXPECT_EQ(micros, -5);
  EXPECT_TRUE(ParseProcessTime("   -1.-500000", &micros));
  EXPECT_EQ(micros, -1500000);
  EXPECT_FALSE(ParseProcessTime("s.uuuuuu", &micros));
  EXPECT_FALSE(ParseProcessTime("12", &micros));
}

struct Classified {
  FieldLine::Kind Type;
  const char *Name;
  const char *Value;
};

Classified Classify(const char *text) {
  static FieldLine line;
  ClassifyLine(text, &line);
  EXPECT_EQ(line.Text, text);
  return {line.Type, line.Name.c_str(), line.Value.c_str()};
}

#define EXPECT_LINE(text, type, name, value)                                                      \
  do {                                                                                             \
    Classified c = Classify(text);                                                                 \
    EXPECT_EQ(c.Type, FieldLine::type) << text;                                                    \
    EXPECT_STREQ(c.Name, name) << text;                                                            \
    EXPECT_STREQ(c.Value, value) << text;                                                          \
  } while (0)

TEST(Lines, AreToldApartByKind) {
  EXPECT_LINE("|> Version                  : 2", FIELD, "Version", "2");
  EXPECT_LINE("|> ReplyToQ                 : ", FIELD, "ReplyToQ", "");
  EXPECT_LINE("|> ZKIA_CURRENT_Q_DEPTH_AND_MORE: 5", FIELD, "ZKIA_CURRENT_Q_DEPTH_AND_MORE", "5");
  EXPECT_LINE("|> Encoding                 : 546 (Native) A / B   ", FIELD, "Encoding",
              "546 (Native) A / B");
  EXPECT_LINE("|> <order id='7'>", OTHER, "", "");
  EXPECT_LINE("|> a: b", OTHER, "", "");
  EXPECT_LINE("|> ----- offset 0-107 (=x0-x6B) length 108", SECTION, "", "");
  EXPECT_LINE("|> --- MD version 2----------", SECTION, "", "");
  EXPECT_LINE("| ObjectName:APP.Q", NAME, "ObjectName", "APP.Q");
  EXPECT_LINE("| (real name):(topic) NEWS", NAME, "(real name)", "(topic) NEWS");
  EXPECT_LINE("MD:(324=x144 bytes, Address 0x5739B590)", DUMP, "MD",
              "(324=x144 bytes, Address 0x5739B590)");
  EXPECT_LINE("CNO->SCO->AIR:(4=x4 bytes, Address <addr>)", DUMP, "CNO->SCO->AIR",
              "(4=x4 bytes, Address <addr>)");
  EXPECT_LINE("00000000:4D442020 02000000  [MD  ....]", DUMP, "", "");
  EXPECT_LINE("00000030-0000005F same as above", DUMP, "", "");
  EXPECT_LINE("QMgrName:ZKQM1      ", VALUE, "QMgrName", "ZKQM1");
  EXPECT_LINE("Hconn:0x00000001", VALUE, "Hconn", "0x00000001");
  EXPECT_LINE("xa_info:\"queue manager ZKQM1\"", VALUE, "xa_info", "\"queue manager ZKQM1\"");
  EXPECT_LINE("  (Shown only leading 16 byte(s) ...)", OTHER, "", "");
  EXPECT_LINE("|* Unknown : ZKCNO version 6", OTHER, "", "");
}

// ---- summary-only records -------------------------------------------------

TEST(SimpleRecord, ReadsTheColumns) {
  Call call;
  ASSERT_TRUE(ParseSimpleRecord(
      "       5 [2026/11/24 03:52:37.420038]  ZKPUT        0    0     0.000012  PAY.Q"
      "                                            "
      "5A4B51205A4B514D31202020202020200000000000000001         9  (null)",
      &call));
  EXPECT_EQ(call.Function, "ZKPUT");
  EXPECT_EQ(call.Sequence, 5u);
  EXPECT_EQ(call.AfterTime, "2026/11/24 03:52:37.420038");
  EXPECT_EQ(call.ElapsedMicros, 12);
  EXPECT_EQ(call.BeforeMicros, call.AfterMicros - 12);
  EXPECT_TRUE(call.HasCodes);
  EXPECT_EQ(call.CompCode, 0);
  EXPECT_EQ(call.ObjectName, "PAY.Q");
  ASSERT_EQ(call.After.size(), 3u);
  EXPECT_EQ(call.After[0].Name, "MsgId");
  EXPECT_EQ(call.After[1].Name, "MsgLen");
  EXPECT_EQ(call.After[1].Value, "9");
  EXPECT_EQ(call.After[2].Name, "CorrelId");
  EXPECT_EQ(call.After[2].Value, "(null)");
}

TEST(SimpleRecord, SplitsCodesThatRanTogether) {
  Call call;
  ASSERT_TRUE(ParseSimpleRecord("      17 [2026/11/24 03:52:37.420282]  xa_complete42949672904294967290"
                                "     0.000004                                                   "
                                " (4294967290 = XAER_PROTO)",
                                &call));
  EXPECT_EQ(call.Function, "xa_complete");
  EXPECT_EQ(call.CompCode, -6);
  EXPECT_EQ(call.Reason, -6);
  EXPECT_EQ(call.ReasonName, "XAER_PROTO");
  Call other;
  ASSERT_TRUE(ParseSimpleRecord("      13 [2026/11/24 03:52:37.420187]  xa_recover   1    1     "
                                "0.000004                                                    (1 = "
                                "(Unknown AX return value))",
                                &other));
  EXPECT_EQ(other.Reason, 1);
  EXPECT_EQ(other.ReasonName, "(Unknown AX return value)");
  Call failed;
  ASSERT_TRUE(ParseSimpleRecord("       9 [2026/11/24 03:52:37.420123]  ZKGET        2 2033     "
                                "0.000003  APP.Q                                            "
                                " (2033 = ZKRC_NO_MSG_AVAILABLE)",
                                &failed));
  EXPECT_EQ(failed.CompCode, 2);
  EXPECT_EQ(failed.Reason, 2033);
  EXPECT_EQ(failed.ObjectName, "APP.Q");
  EXPECT_EQ(failed.ReasonName, "ZKRC_NO_MSG_AVAILABLE");
}

TEST(SimpleRecord, RefusesOtherLines) {
  Call call;
  EXPECT_FALSE(ParseSimpleRecord("", &call));
  EXPECT_FALSE(ParseSimpleRecord("          Time                         API         CC Reason",
                                 &call));
  EXPECT_FALSE(ParseSimpleRecord("       5 [2026/11/24 03:52:37.420038]  ZKPUT", &call));
  EXPECT_FALSE(ParseSimpleRecord("|  ZKCONN            1        0        0", &call));
}

// ---- file names ---------------------------------------------------------------

TEST(FileNames, AllTheFormsTheExitWrites) {
  TraceFileName n;
  ASSERT_TRUE(ParseTraceFileName("wz_ZKQM1_allcalls_1234_1_001.txt", &n));
  EXPECT_EQ(n.QMgr, "ZKQM1");
  EXPECT_EQ(n.Program, "allcalls");
  EXPECT_EQ(n.ProcessId, 1234);
  EXPECT_EQ(n.ThreadId, 1);
  EXPECT_EQ(n.Sequence, 1u);
  EXPECT_EQ(n.Mode, "");
  EXPECT_EQ(n.Extension, ".txt");
  EXPECT_EQ(n.Connection, "wz_ZKQM1_allcalls_1234_1_");
  ASSERT_TRUE(ParseTraceFileName("wz_ZKQM1_allcalls_1234_1_002.t", &n));
  EXPECT_EQ(n.Sequence, 2u);
  EXPECT_EQ(n.Extension, ".t");
  ASSERT_TRUE(ParseTraceFileName("wz_ZKQM1_allcalls_1234_1_003.txt.f", &n));
  EXPECT_EQ(n.Extension, ".txt.f");
  ASSERT_TRUE(ParseTraceFileName("wz_ZKQM1_allcalls_1234_1_004.txt.txt.gz", &n));
  EXPECT_EQ(n.Extension, ".txt.txt.gz");
  ASSERT_TRUE(ParseTraceFileName("wz_ZKQM1_allcalls_1234_1_005.txt.txt.zst", &n));
  ASSERT_TRUE(ParseTraceFileName("wz_ZKQM1_my_app.v2_77_3_1000.txt.f.txt.gz", &n));
  EXPECT_EQ(n.Program, "my_app.v2");
  EXPECT_EQ(n.Sequence, 1000u);
  EXPECT_EQ(n.ThreadId, 3);
  ASSERT_TRUE(ParseTraceFileName("wz_client_payments_9_1_summary_012.txt", &n));
  EXPECT_EQ(n.QMgr, "client");
  EXPECT_EQ(n.Mode, "summary");
  EXPECT_EQ(n.Connection, "wz_client_payments_9_1_summary_");
  ASSERT_TRUE(ParseTraceFileName("wz_Q_p_9_1_perf_123456.txt", &n));
  EXPECT_EQ(n.Mode, "perf");
  EXPECT_EQ(n.Sequence, 123456u);
}

TEST(FileNames, RefusesOtherNames) {
  TraceFileName n;
  EXPECT_FALSE(ParseTraceFileName("wz.def", &n));
  EXPECT_FALSE(ParseTraceFileName("alertQM1_payments_1_1_001.txt", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_apiexit_debug_12_1_4154066752.txt", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_Q_p_9_1_01.txt", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_Q_p_9_1_0001.txt", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_Q_p_9_1_001.gz", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_Q_p_9_1_001.txt.bak", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_Q_p_x_1_001.txt", &n));
  EXPECT_FALSE(ParseTraceFileName("wz_Qp_9_1_001.txt", &n));
}

// ---- the parser ---------------------------------------------------------------

// Calls written by a parser, deep copies.
struct Collected {
  std::vector<Call> Calls;
  TraceParser::Sink Sink() {
    return [this](const Call &call) {
      Calls.push_back(call);
      return 0;
    };
  }
};

// Feeds text (lines separated by '\n') to the parser as one file.
bool Feed(TraceParser &parser, TraceSource *source, const std::string &text) {
  parser.BeginFile(source);
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) {
      end = text.size();
    }
    parser.Line(std::string_view(text).substr(start, end - start));
    start = end + 1;
  }
  bool cut = false;
  parser.EndFile(false, &cut);
  return cut;
}

const char kProfile[] = "|----------------------------------------------------------\n"
                        "|Program information\n"
                        "|  Program name       : wz API call trace exit for ZK\n"
                        "|API Exit context\n"
                        "|  Queue manager      : ZKQM9\n"
                        "|  Program name       : tester\n"
                        "|  Process id         : 42\n"
                        "|  Thread id          : 7\n"
                        "|Operating environment\n"
                        "|  Node name          : box\n"
                        "|----------------------------------------------------------\n";
const char kInit[] = "-\n"
                     "[2026/11/24 12:00:00.000001]\n"
                     "<INIT\n"
                     "(CONNECTION\n";

std::string Before(int seq, const char *function, const char *time, const char *body) {
  return std::string("-\n|--- Seq # : ") + std::to_string(seq) +
         " ---------------------------------------\n[2026/11/24 " + time + "]\n<" + function +
         "\n(BEFORE\n" + body;
}

std::string After(const char *function, const char *time, const char *result, const char *body) {
  return std::string("-\n[2026/11/24 ") + time + "]\n<" + function + "\n(AFTER\n" + result +
         "| API process time:    0.000010 second\n" + body;
}

const char kOk[] = "CompCode:0\nReason:0\n";

TEST(Parser, JoinsBeforeAndAfterWithTheirHeaderFields) {
  Collected out;
  TraceParser parser(out.Sink());
  TraceSource source;
  std::string text = std::string(kProfile) + kInit +
                     Before(1, "ZKCLOSE", "12:00:01.000000",
                            "Hconn:0x00000001\nHobj:0x00000065\n| ObjectName:APP.Q\n"
                            "Options:0x00000000\n|> Options                  : (none)\n") +
                     "|\n|\n|  *** Disabled ***  [2026/11/24 12:00:01.000001]\n|\n" +
                     After("ZKCLOSE", "12:00:01.000010",
                           "CompCode:2\nReason:2019\n| Reason:ZKRC_HOBJ_ERROR\n",
                           "Hobj:0xFFFFFFFF\n") +
                     "-\n|------\n|Call summary - [2026/11/24 12:00:02.000000]\n|  ZKCLOSE  1\n";
  EXPECT_FALSE(Feed(parser, &source, text));
  EXPECT_EQ(parser.Recognised(), 1);
  parser.EndConnection();
  ASSERT_EQ(out.Calls.size(), 1u);
  const Call &c = out.Calls[0];
  EXPECT_EQ(c.Function, "ZKCLOSE");
  EXPECT_EQ(c.Sequence, 1u);
  EXPECT_EQ(c.ObjectName, "APP.Q");
  EXPECT_TRUE(c.HasHconn);
  EXPECT_EQ(c.Hconn, 1u);
  EXPECT_TRUE(c.HasHobj);
  EXPECT_EQ(c.Hobj, 0x65u); // the before-record's, not the after-record's 0xFFFFFFFF
  EXPECT_TRUE(c.HasCodes);
  EXPECT_EQ(c.CompCode, 2);
  EXPECT_EQ(c.Reason, 2019);
  EXPECT_EQ(c.ReasonName, "ZKRC_HOBJ_ERROR");
  EXPECT_EQ(c.BeforeTime, "2026/11/24 12:00:01.000000");
  EXPECT_EQ(c.AfterTime, "2026/11/24 12:00:01.000010");
  EXPECT_EQ(c.AfterMicros - c.BeforeMicros, 10);
  EXPECT_TRUE(c.HasElapsed);
  EXPECT_EQ(c.ElapsedMicros, 10);
  EXPECT_FALSE(c.Unfinished);
  ASSERT_EQ(c.Before.size(), 5u); // the note of live control is no line of the record
  EXPECT_EQ(c.Before[4].Type, FieldLine::FIELD);
  ASSERT_EQ(c.After.size(), 1u);
  EXPECT_EQ(source.QMgr, "ZKQM9");
  EXPECT_EQ(source.Program, "tester");
  EXPECT_EQ(source.ProcessId, 42);
  EXPECT_EQ(source.ThreadId, 7);
  EXPECT_EQ(source.Host, "box");
}

TEST(Parser, NestsTransactionCallsCallbacksAndTheDataConversion) {
  Collected out;
  TraceParser parser(out.Sink());
  TraceSource source;
  std::string text = std::string(kProfile) + kInit +
                     Before(1, "ZKPUT", "12:00:01.000000", "Hconn:0x00000001\n") +
                     Before(1, "ax_reg", "12:00:01.000001", "rmid:1\n") +
                     After("ax_reg", "12:00:01.000002", "XA return value:-4\n| XA return value:XAER_NOTA\n", "") +
                     After("ZKPUT", "12:00:01.000003", kOk, "") +
                     Before(2, "ZKGET", "12:00:01.000004", "Hconn:0x00000001\n") +
                     "-\n[2026/11/24 12:00:01.000005]\n<DATA_CONV_ON_GET\n(BEFORE\nCompCode:1\n"
                     "Reason:2110\nHobj:0x00000066\n| ObjectName:CONV.Q\n" +
                     After("ZKGET", "12:00:01.000006", kOk, "") +
                     Before(3, "ZKCTL", "12:00:01.000007", "") +
                     Before(3, "ZKCB_FU", "12:00:01.000008", "") +
                     Before(4, "ZKPUT", "12:00:01.000009", "") +
                     After("ZKPUT", "12:00:01.000010", kOk, "") +
                     After("ZKCB_FU", "12:00:01.000011", kOk, "") +
                     After("ZKCTL", "12:00:01.000012", kOk, "");
  Feed(parser, &source, text);
  parser.EndConnection();
  ASSERT_EQ(out.Calls.size(), 3u);
  const Call &put = out.Calls[0];
  ASSERT_EQ(put.Inside.size(), 1u);
  EXPECT_EQ(put.Inside[0].Function, "ax_reg");
  EXPECT_EQ(put.Inside[0].CompCode, -4);
  EXPECT_EQ(put.Inside[0].ReasonName, "XAER_NOTA");
  const Call &get = out.Calls[1];
  ASSERT_EQ(get.Inside.size(), 1u);
  const Call &conv = get.Inside[0];
  EXPECT_EQ(conv.Function, "DATA_CONV_ON_GET");
  EXPECT_TRUE(conv.HasCodes);
  EXPECT_EQ(conv.CompCode, 1);
  EXPECT_EQ(conv.Reason, 2110);
  EXPECT_EQ(conv.Hobj, 0x66u);
  EXPECT_EQ(conv.ObjectName, "CONV.Q");
  EXPECT_EQ(conv.BeforeTime, conv.AfterTime);
  const Call &ctl = out.Calls[2];
  ASSERT_EQ(ctl.Inside.size(), 1u);
  ASSERT_EQ(ctl.Inside[0].Function, "ZKCB_FU");
  ASSERT_EQ(ctl.Inside[0].Inside.size(), 1u);
  EXPECT_EQ(ctl.Inside[0].Inside[0].Function, "ZKPUT");
}

TEST(Parser, UnfinishedAndUnmatchedCalls) {
  Collected out;
  TraceParser parser(out.Sink());
  TraceSource source;
  // An after-record without its before; a get that a put follows without
  // an after-record (it is unfinished, and written before the put); a
  // put still open at the end.
  std::string text = std::string(kProfile) + kInit +
                     After("ZKOPEN", "12:00:01.000000", kOk, "Hobj:0x00000065\n") +
                     Before(2, "ZKGET", "12:00:01.000001", "") +
                     Before(3, "ZKPUT", "12:00:01.000002", "");
  Feed(parser, &source, text);
  ASSERT_EQ(out.Calls.size(), 2u);
  EXPECT_EQ(out.Calls[0].Function, "ZKOPEN");
  EXPECT_TRUE(out.Calls[0].BeforeTime.empty());
  EXPECT_FALSE(out.Calls[0].Unfinished);
  EXPECT_EQ(out.Calls[0].Hobj, 0x65u);
  EXPECT_EQ(out.Calls[1].Function, "ZKGET");
  EXPECT_TRUE(out.Calls[1].Unfinished);
  parser.EndConnection();
  ASSERT_EQ(out.Calls.size(), 3u);
  EXPECT_EQ(out.Calls[2].Function, "ZKPUT");
  EXPECT_TRUE(out.Calls[2].Unfinished);
  EXPECT_TRUE(out.Calls[2].AfterTime.empty());
}

TEST(Parser, ACallGoesOnInTheNextFile) {
  Collected out;
  TraceParser parser(out.Sink());
  TraceSource first, second;
  Feed(parser, &first,
       std::string(kProfile) + kInit + Before(1, "ZKPUT", "12:00:01.000000", "Hconn:0x00000001\n") +
           Before(1, "ax_reg", "12:00:01.000001", ""));
  EXPECT_TRUE(out.Calls.empty());
  Feed(parser, &second,
       std::string(kProfile) + After("ax_reg", "12:00:01.000002", "XA return value:0\n", "") +
           After("ZKPUT", "12:00:01.000003", kOk, ""));
  parser.EndConnection();
  ASSERT_EQ(out.Calls.size(), 1u);
  EXPECT_EQ(out.Calls[0].Source, &first);
  EXPECT_FALSE(out.Calls[0].Unfinished);
  ASSERT_EQ(out.Calls[0].Inside.size(), 1u);
  EXPECT_FALSE(out.Calls[0].Inside[0].Unfinished);
}

TEST(Parser, TellsACutHeaderAndForeignText) {
  Collected out;
  TraceParser parser(out.Sink());
  TraceSource source;
  EXPECT_TRUE(Feed(parser, &source, std::string(kProfile) + kInit + "-\n|--- Seq # : 1 -----\n"));
  EXPECT_TRUE(Feed(parser, &source,
                   std::string(kProfile) + kInit + "-\n[2026/11/24 12:00:01.000000]\n<ZKPUT\n(AFTER\n"
                                           "CompCode:0\n"));
  EXPECT_FALSE(Feed(parser, &source, std::string(kProfile) + kInit + Before(1, "ZKPUT", "12:00:01.000000", "")));
  Feed(parser, &source, "hello\nworld\n");
  EXPECT_EQ(parser.Recognised(), -1);
  Feed(parser, &source, "-\n|--- Seq # : 1 -----\n");
  EXPECT_EQ(parser.Recognised(), 1);
}

TEST(Parser, ReadsSummaryOnlyRecords) {
  Collected out;
  TraceParser parser(out.Sink());
  TraceSource source;
  std::string text = std::string(kProfile) + kInit +
                     "-\n          Time                         API         CC Reason  Time(sec)  "
                     "ObjectName\n"
                     "       1 [2026/11/24 12:00:00.000010]  ZKCONN       0    0     0.000007\n"
                     "       2 [2026/11/24 12:00:00.000020]  ZKOPEN       0    0     0.000015  PAY.Q\n"
                     "-\n[2026/11/24 12:00:00.000030]\n<TERM\n(CONNECTION\n";
  Feed(parser, &source, text);
  parser.EndConnection();
  ASSERT_EQ(out.Calls.size(), 2u);
  EXPECT_EQ(out.Calls[1].Function, "ZKOPEN");
  EXPECT_EQ(out.Calls[1].ObjectName, "PAY.Q");
  EXPECT_EQ(out.Calls[1].Source, &source);
}

TEST(Parser, KeepsMemoryBounded) {
  Collected out;
  ParserLimits limits;
  limits.MaxCallBytes = 4000;
  limits.MaxDepth = 4;
  TraceParser parser(out.Sink(), limits);
  TraceSource source;
  std::string body;
  for (int i = 0; i < 500; i++) {
    body += "00000000:4D442020 02000000 00000000 01000000  [MD  ............]\n";
  }
  std::string text = std::string(kProfile) + kInit + Before(1, "ZKPUT", "12:00:01.000000", body.c_str()) +
                     After("ZKPUT", "12:00:01.000001", kOk, "");
  for (int i = 0; i < 10; i++) {
    text += Before(2 + i, "ZKCB_FU", "12:00:01.000002", "");
  }
  Feed(parser, &source, text);
  parser.EndConnection();
  ASSERT_GE(out.Calls.size(), 1u);
  const Call &put = out.Calls[0];
  EXPECT_LT(put.Before.size(), 100u);
  EXPECT_GT(parser.LinesLeftOut(), 400u);
  EXPECT_NE(put.Before.back().Text.find("left out"), std::string::npos);
  EXPECT_EQ(put.CompCode, 0);
  EXPECT_GT(parser.DepthOverflows(), 0u);
  size_t callbacks = 0;
  for (const Call &c : out.Calls) {
    size_t depth = 0;
    for (const Call *p = &c; p != nullptr; p = p->Inside.empty() ? nullptr : &p->Inside[0]) {
      depth++;
      callbacks += p->Function == "ZKCB_FU";
    }
    EXPECT_LE(depth, 4u);
  }
  EXPECT_EQ(callbacks, 10u);
}

// ---- selection ------------------------------------------------------------------

TEST(Wildcards, MatchAsShellPatternsDo) {
  EXPECT_TRUE(WildcardMatch("APP.*", "APP.Q"));
  EXPECT_TRUE(WildcardMatch("APP.*", "APP."));
  EXPECT_FALSE(WildcardMatch("APP.*", "APP"));
  EXPECT_TRUE(WildcardMatch("*.Q", "X.Y.Q"));
  EXPECT_TRUE(WildcardMatch("A?C", "ABC"));
  EXPECT_FALSE(WildcardMatch("A?C", "AC"));
  EXPECT_TRUE(WildcardMatch("*", ""));
  EXPECT_TRUE(WildcardMatch("a*b*c", "aXXbYYbc"));
  EXPECT_FALSE(WildcardMatch("app.q", "APP.Q"));
  EXPECT_TRUE(WildcardMatch("zkput", "ZKPUT", true));
  // A pattern of many stars on a long text ends quickly.
  EXPECT_FALSE(WildcardMatch("*a*a*a*a*a*a*a*a*b", std::string(5000, 'a')));
}

Call Sample(const char *function, int32_t compCode, int32_t reason, const char *reasonName,
            const char *object, const char *time) {
  Call c;
  c.Function = function;
  c.HasCodes = true;
  c.CompCode = compCode;
  c.Reason = reason;
  c.ReasonName = reasonName;
  c.ObjectName = object;
  c.BeforeTime = time;
  c.BeforeMicros = ParseStampMicros(time);
  return c;
}

TEST(Filter, EachKindOfCondition) {
  Call get = Sample("ZKGET", 2, 2033, "ZKRC_NO_MSG_AVAILABLE", "APP.Q", "2026/11/24 12:00:05.500000");
  Call put = Sample("ZKPUT", 0, 0, "", "OTHER.Q", "2026/11/24 13:00:00.000000");
  Call xa = Sample("xa_commit", -4, -4, "XAER_NOTA", "", "2026/11/25 11:00:00.000000");
  Call rb = Sample("xa_end", 100, 100, "XA_RBROLLBACK", "", "2026/11/25 11:00:00.000000");

  CallFilter none;
  EXPECT_FALSE(none.Active());

  CallFilter byFunction;
  byFunction.AddFunction("zkget");
  byFunction.AddFunction("xa_*");
  EXPECT_TRUE(byFunction.Matches(get));
  EXPECT_FALSE(byFunction.Matches(put));
  EXPECT_TRUE(byFunction.Matches(xa));

  CallFilter byQueue;
  byQueue.AddQueue("APP.*");
  EXPECT_TRUE(byQueue.Matches(get));
  EXPECT_FALSE(byQueue.Matches(put));
  put.ResolvedName = "APP.REMOTE";
  EXPECT_TRUE(byQueue.Matches(put));

  CallFilter byName, byNumber, byNegative;
  ASSERT_TRUE(byName.SetReason("zkrc_no_msg_available"));
  ASSERT_TRUE(byNumber.SetReason("2033"));
  ASSERT_TRUE(byNegative.SetReason("-4"));
  EXPECT_TRUE(byName.Matches(get));
  EXPECT_TRUE(byNumber.Matches(get));
  EXPECT_FALSE(byNumber.Matches(put));
  EXPECT_TRUE(byNegative.Matches(xa));
  EXPECT_FALSE(byNegative.Matches(get));

  CallFilter failed;
  failed.SetFailed();
  EXPECT_TRUE(failed.Matches(get));
  EXPECT_FALSE(failed.Matches(put));
  EXPECT_TRUE(failed.Matches(xa));
  EXPECT_FALSE(failed.Matches(rb)); // a rollback is a result, not a failure

  CallFilter since;
  ASSERT_TRUE(since.SetSince("2026/11/24 12:00:05"));
  EXPECT_TRUE(since.Matches(get));
  EXPECT_TRUE(since.Matches(xa));
  CallFilter until;
  ASSERT_TRUE(until.SetUntil("2026/11/24 12:00:05")); // to the end of that second
  EXPECT_TRUE(until.Matches(get));
  EXPECT_FALSE(until.Matches(put));
  CallFilter ofDay;
  ASSERT_TRUE(ofDay.SetSince("12:30:00"));
  ASSERT_TRUE(ofDay.SetUntil("13:00:00"));
  EXPECT_FALSE(ofDay.Matches(get));
  EXPECT_TRUE(ofDay.Matches(put));
  EXPECT_FALSE(ofDay.Matches(xa));
  CallFilter bad;
  EXPECT_FALSE(bad.SetSince("yesterday"));
  EXPECT_FALSE(bad.SetUntil("25:00:00"));
  EXPECT_FALSE(bad.SetReason(""));

  Call timeless = put;
  timeless.BeforeMicros = -1;
  EXPECT_FALSE(since.Matches(timeless));
}

// ---- writers ----------------------------------------------------------------------

std::string WriteWith(CallWriter *(*factory)(FILE *), const Call &call) {
  FILE *file = tmpfile();
  EXPECT_NE(file, nullptr);
  std::unique_ptr<CallWriter> writer(factory(file));
  EXPECT_EQ(writer->Begin(), 0);
  EXPECT_EQ(writer->Write(call), 0);
  EXPECT_EQ(writer->End(), 0);
  std::string text;
  rewind(file);
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, file)) > 0) {
    text.append(buffer, n);
  }
  fclose(file);
  return text;
}

FieldLine Line(const char *text) {
  FieldLine line;
  ClassifyLine(text, &line);
  return line;
}

TEST(Writers, JsonLinesShapeOfARecord) {
  TraceSource source;
  source.Path = "d/wz_Q_p_1_2_001.txt";
  source.QMgr = "Q";
  source.Program = "p";
  source.ProcessId = 1;
  source.ThreadId = 2;
  Call call = Sample("ZKPUT", 0, 0, "", "APP.Q", "2026/11/24 12:00:00.000001");
  call.Source = &source;
  call.Sequence = 3;
  call.HasHconn = true;
  call.Hconn = 1;
  call.AfterTime = "2026/11/24 12:00:00.000002";
  call.AfterMicros = ParseStampMicros(call.AfterTime);
  call.HasElapsed = true;
  call.ElapsedMicros = 1;
  for (const char *text :
       {"Hconn:0x00000001", "Options:0x00000004", "|> Options                  : FAIL_IF_QUIESCING",
        "MD:(8=x8 bytes, Address 0x1000)", "00000000:4D442020 02000000  [MD  ....]",
        "|> Version                  : 2", "|> --- MD version 2---", "|> Version                  : 9",
        "Hconn:0x00000002"}) {
    call.Before.push_back(Line(text));
  }
  call.Inside.push_back(Sample("ax_reg", 0, 0, "", "", "2026/11/24 12:00:00.000001"));
  std::string json = WriteWith(NewJsonlWriter, call);
  EXPECT_EQ(json.back(), '\n');
  EXPECT_EQ(std::count(json.begin(), json.end(), '\n'), 1);
  EXPECT_NE(json.find("{\"source\":{\"file\":\"d/wz_Q_p_1_2_001.txt\",\"qmgr\":\"Q\",\"program\":\"p\","
                      "\"pid\":1,\"tid\":2},\"function\":\"ZKPUT\",\"seq\":3,\"object\":\"APP.Q\","
                      "\"resolved\":null,\"hconn\":\"0x00000001\",\"hobj\":null,\"compCode\":0,"
                      "\"reason\":0,\"reasonName\":null,"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find("\"before\":{\"Hconn\":\"0x00000001\",\"Options\":\"0x00000004\",\"MD\":{"
                      "\"length\":8,\"address\":\"0x1000\",\"dump\":[\"00000000:4D442020 02000000  "
                      "[MD  ....]\"],\"fields\":{\"Version\":\"2\",\"Version#2\":\"9\"},\"text\":[\"--- "
                      "MD version 2---\"]},\"Hconn#2\":\"0x00000002\",\"fields\":{\"Options\":"
                      "\"FAIL_IF_QUIESCING\"}},\"after\":{},"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find("\"inside\":[{\"function\":\"ax_reg\""), std::string::npos) << json;
}

TEST(Writers, CsvQuotesAsRfc4180Says) {
  Call call = Sample("ZKOPEN", 2, 2085, "ZKRC_UNKNOWN_OBJECT_NAME", "A,\"B\"", "2026/11/24 12:00:00.000001");
  call.Inside.push_back(Sample("ax_reg", 0, 0, "", "", "2026/11/24 12:00:00.000001"));
  std::string csv = WriteWith(NewCsvWriter, call);
  size_t heading = csv.find("\r\n");
  ASSERT_NE(heading, std::string::npos);
  EXPECT_EQ(csv.substr(0, 23), "file,qmgr,program,pid,t");
  std::string rows = csv.substr(heading + 2);
  EXPECT_EQ(rows, ",,,,,0,ZKOPEN,,\"A,\"\"B\"\"\",,,,2,2085,ZKRC_UNKNOWN_OBJECT_NAME,2026/11/24 "
                  "12:00:00.000001,,1795521600000001,,,false\r\n"
                  ",,,,,1,ax_reg,,,,,,0,0,,2026/11/24 12:00:00.000001,,1795521600000001,,,false\r\n");
}

} // namespace
} // namespace wzreform
