#include <gtest/gtest.h>

#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <regex>
#include <string>
#include <vector>

#include "exit/control_block.h"
#include "exit/counting.h"
#include "output/timing.h"
#include "output/summary.h"
#include "tests/unit/capture.h"
#include "tests/unit/test_support.h"
#include "output/statistics_index.h"

namespace {

#define DASHES                                                                                     \
  "|---------------------------------------------------------------------------------------------" \
  "---\n"
#define API_HEADING                                                                                \
  "|                                                          -------- Process time (second) "     \
  "-------\n"                                                                                      \
  "|  API         Success     Info  Warning     Fail    Total      Average      Minimum      "     \
  "Maximum\n"                                                                                      \
  "|  ---------- -------- -------- -------- -------- -------- ------------ ------------ "          \
  "------------\n"
#define CHL_HEADING                                                                                \
  "|                                                               ---- Data length (byte) "       \
  "-----\n"                                                                                        \
  "|  API              Success     Info  Warning     Fail    Total   Average   Minimum   "         \
  "Maximum\n"                                                                                      \
  "|  --------------- -------- -------- -------- -------- -------- --------- --------- "           \
  "---------\n"
#define EMPTY_COUNTS "       0        0        0        0        0 "

// A capture block whose flushed text goes to a file, with counting helpers.
struct SummaryCapture : FileCapture {
  SummaryCapture() {
    cb->Identity.ApiLevel = API_LEVEL_700;
    cb->ExecStatus = 1;
  }
  CallCounterRecord &Record(int32_t function, int32_t period) {
    int32_t index = StatisticsIndexOfFunction(function);
    EXPECT_GE(index, 0);
    return cb->Counters.Statistics[index][period];
  }
  // Counts one call in both periods, as the after-handlers do.
  void Count(int32_t function, ZKLONG compCode, ZKLONG reason, int64_t elapsed) {
    IncrementResultCount(cb, function, &compCode, &reason, &Record(function, COUNTER_CUMULATIVE),
                         &Record(function, COUNTER_SPLIT), 1, elapsed, 0, 0);
  }
};

// The labels of the table rows in the first table of the text.
std::vector<std::string> RowLabels(const std::string &text, size_t labelWidth) {
  std::vector<std::string> labels;
  bool inTable = false;
  for (const std::string &line : TextLines(text)) {
    if (line.rfind("|  ---", 0) == 0) {
      inTable = true;
      continue;
    }
    if (!inTable) {
      continue;
    }
    if (line.rfind("|---", 0) == 0) {
      continue;
    }
    if (line.rfind("|  ", 0) != 0) {
      break;
    }
    std::string label = line.substr(3, labelWidth);
    label.erase(label.find_last_not_of(' ') + 1);
    labels.push_back(label);
    if (label == "Total") {
      break;
    }
  }
  return labels;
}

size_t Occurrences(const std::string &text, const std::string &what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    n++;
  }
  return n;
}

const std::vector<std::string> kBaseLabels = {"ZKCONN",  "ZKCONNX", "ZKDISC", "ZKOPEN", "ZKCLOSE",
                                              "ZKPUT1",  "ZKPUT",   "ZKGET",  "ZKINQ",  "ZKSET",
                                              "ZKBEGIN", "ZKCMIT",  "ZKBACK"};
const std::vector<std::string> kLevel700Labels = {"ZKSTAT", "ZKSUB", "ZKSUBRQ",
                                                  "ZKCTL",  "ZKCB",  "ZKCB_FU"};
const std::vector<std::string> kXaLabels = {"xa_close",    "xa_commit", "xa_complete", "xa_end",
                                            "xa_forget",   "xa_open",   "xa_prepare",  "xa_recover",
                                            "xa_rollback", "xa_start",  "ax_reg",      "ax_unreg"};

std::vector<std::string> Join(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto &part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

// ---- rows ------------------------------------------------------------------

TEST(SummaryRows, ProcessTimeRowShowsCountsAverageMinimumAndMaximum) {
  SummaryCapture c;
  CallCounterRecord r = {};
  r.OkCount = 3;
  r.ExpectedFailureCount = 1;
  r.WarningCount = 2;
  r.ErrorCount = 4;
  r.CallCount = 10;
  r.TimedCalls = 10;
  r.TotalTime = 12345670; // average 1234567
  r.MinimumTime = 100;
  r.MaximumTime = 5000000;
  PutOneSummaryRecord(c.cb, "ZKPUT", &r, 0);
  EXPECT_EQ(c.Text(), "|  ZKPUT      "
                      "       3        1        2        4       10 "
                      "    1.234567"
                      " "
                      "    0.000100"
                      " "
                      "    5.000000"
                      "\n");
  EXPECT_EQ(r.CallCount, 10u) << "mode 0 keeps the record";
  EXPECT_EQ(r.TotalTime, 12345670);
}

TEST(SummaryRows, AverageIsIntegerDivision) {
  SummaryCapture c;
  CallCounterRecord r = {};
  r.CallCount = 3;
  r.OkCount = 3;
  r.TimedCalls = 3;
  r.TotalTime = 11; // 3.67 rounds down to 3
  r.MinimumTime = 1;
  r.MaximumTime = 7;
  PutOneSummaryRecord(c.cb, "ZKGET", &r, 0);
  EXPECT_EQ(c.Text(), "|  ZKGET      "
                      "       3        0        0        0        3 "
                      "    0.000003     0.000001     0.000007\n");
}

TEST(SummaryRows, RowWithoutMeasuredTimeEndsAfterTheCounts) {
  SummaryCapture c;
  CallCounterRecord r = {};
  r.ErrorCount = 2;
  r.CallCount = 2;
  PutOneSummaryRecord(c.cb, "ZKCMIT", &r, 0);
  EXPECT_EQ(c.Text(), "|  ZKCMIT     "
                      "       0        0        0        2        2 \n");
}

TEST(SummaryRows, LongLabelIsNotCut) {
  SummaryCapture c;
  CallCounterRecord r = {};
  PutOneSummaryRecord(c.cb, "xa_rollback", &r, 0);
  PutOneSummaryRecord(c.cb, "xa_complete!", &r, 0);
  EXPECT_EQ(c.Text(), "|  xa_rollback" EMPTY_COUNTS "\n"
                      "|  xa_complete!" EMPTY_COUNTS "\n");
}

TEST(SummaryRows, ModeOneZeroesTheWholeRecord) {
  SummaryCapture c;
  CallCounterRecord r = {};
  r.OkCount = 1;
  r.CallCount = 1;
  r.TimedCalls = 1;
  r.TotalTime = r.MinimumTime = r.MaximumTime = 42;
  r.SecondCount = 5;
  PutOneSummaryRecord(c.cb, "ZKOPEN", &r, 1);
  CallCounterRecord zero = {};
  EXPECT_EQ(memcmp(&r, &zero, sizeof r), 0);
  EXPECT_NE(c.Text().find("    0.000042     0.000042     0.000042\n"), std::string::npos);
}

TEST(SummaryRows, DataLengthRowWithAndWithoutMeasures) {
  SummaryCapture c;
  CallCounterRecord r = {};
  r.OkCount = 4;
  r.ExpectedFailureCount = 3;
  r.WarningCount = 2;
  r.ErrorCount = 1;
  r.CallCount = 10;
  PutOneChlSummaryRecord(c.cb, "ZKPUT   reply", &r, 0);
  r.TimedCalls = 4;
  r.TotalTime = 1002; // average 250
  r.MinimumTime = 2;
  r.MaximumTime = 900;
  PutOneChlSummaryRecord(c.cb, "ZKPUT   reply", &r, 1);
  EXPECT_EQ(c.Text(), "|  ZKPUT   reply   "
                      "       4        3        2        1       10\n"
                      "|  ZKPUT   reply   "
                      "       4        3        2        1       10"
                      "       250         2       900\n");
  EXPECT_EQ(r.CallCount, 0u);
  EXPECT_EQ(r.TimedCalls, 0);
}

TEST(SummaryRows, RequestRowShowsOnlyTheTotalAndTakesItsResultsOutOfTheTotal) {
  SummaryCapture c;
  CallCounterRecord total = {};
  total.OkCount = 10;
  total.ExpectedFailureCount = 5;
  total.WarningCount = 4;
  total.ErrorCount = 3;
  total.CallCount = 22;
  CallCounterRecord r = {};
  r.OkCount = 2;
  r.ExpectedFailureCount = 1;
  r.WarningCount = 1;
  r.ErrorCount = 1;
  r.CallCount = 5;
  PutOneChlSummaryRecordNorc(c.cb, "ZKGET   request", &r, 0, &total);
  EXPECT_EQ(c.Text(), "|  ZKGET   request "
                      "                                    "
                      "       5\n");
  EXPECT_EQ(total.OkCount, 8u);
  EXPECT_EQ(total.ExpectedFailureCount, 4u);
  EXPECT_EQ(total.WarningCount, 3u);
  EXPECT_EQ(total.ErrorCount, 2u);
  EXPECT_EQ(total.CallCount, 22u) << "the total column counts every exchange";
  EXPECT_EQ(r.OkCount + r.ExpectedFailureCount + r.WarningCount + r.ErrorCount, 0u);
  EXPECT_EQ(r.CallCount, 5u) << "mode 0 keeps the rest of the record";

  // Printed again, the row takes nothing more out of the total.
  PutOneChlSummaryRecordNorc(c.cb, "ZKGET   request", &r, 0, &total);
  EXPECT_EQ(total.OkCount, 8u);
}

TEST(SummaryRows, RequestRowWithMeasuredData) {
  SummaryCapture c;
  CallCounterRecord total = {};
  CallCounterRecord r = {};
  r.CallCount = 4;
  r.TimedCalls = 4;
  r.TotalTime = 4000;
  r.MinimumTime = 10;
  r.MaximumTime = 3000;
  PutOneChlSummaryRecordNorc(c.cb, "MSG", &r, 1, &total);
  EXPECT_EQ(c.Text(), "|  MSG             "
                      "                                    "
                      "       4      1000        10      3000\n");
  EXPECT_EQ(r.CallCount, 0u);
  EXPECT_EQ(r.TotalTime, 0);
}

// ---- the call summary --------------------------------------------------------

TEST(CallSummary, NothingIsWrittenBeforeTheFirstCall) {
  SummaryCapture c;
  PutSummaryRecord(c.cb);
  EXPECT_EQ(c.Text(), "");
  c.cb->Settings.ShowPerformanceIntervalCount = 5;
  PutSummaryRecord(c.cb);
  EXPECT_EQ(c.Text(), "");
  EXPECT_EQ(c.cb->Counters.SplitSequence, 0u);
}

TEST(CallSummary, WholeTableAtLevel600WithoutAddresses) {
  SummaryCapture c;
  c.cb->Identity.ApiLevel = API_LEVEL_600;
  c.cb->File.NoAddress = 1;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 2000000);
  c.Count(ZKXF_PUT, ZKCC_WARNING, 2190, 1000000);
  c.Count(ZKXF_GET, ZKCC_FAILED, 2033, 500);
  PutSummaryRecord(c.cb);
  const char *expected =
      "-\n" DASHES "|Call summary - \n" API_HEADING "|  ZKCONN     " EMPTY_COUNTS "\n"
      "|  ZKCONNX    " EMPTY_COUNTS "\n"
      "|  ZKDISC     " EMPTY_COUNTS "\n"
      "|  ZKOPEN     " EMPTY_COUNTS "\n"
      "|  ZKCLOSE    " EMPTY_COUNTS "\n"
      "|  ZKPUT1     " EMPTY_COUNTS "\n"
      "|  ZKPUT      "
      "       1        0        1        0        2 "
      "    1.500000     1.000000     2.000000\n"
      "|  ZKGET      "
      "       0        1        0        0        1 "
      "    0.000500     0.000500     0.000500\n"
      "|  ZKINQ      " EMPTY_COUNTS "\n"
      "|  ZKSET      " EMPTY_COUNTS "\n"
      "|  ZKBEGIN    " EMPTY_COUNTS "\n"
      "|  ZKCMIT     " EMPTY_COUNTS "\n"
      "|  ZKBACK     " EMPTY_COUNTS "\n" DASHES "|  Total      "
      "       1        1        1        0        3 \n" DASHES "\n";
  EXPECT_EQ(c.Text(), expected);
}

TEST(CallSummary, Level600ShowsNeitherVersion7NorTransactionRowsEvenWithShowXaCalls) {
  SummaryCapture c;
  c.cb->Identity.ApiLevel = API_LEVEL_600;
  c.cb->Settings.ShowXaCalls = 1;
  c.Count(ZKXF_STAT, ZKCC_OK, 0, 10);
  c.Count(ZKXF_XAOPEN, ZKCC_OK, 0, 10);
  PutSummaryRecord(c.cb);
  EXPECT_EQ(RowLabels(c.Text(), 11), Join({kBaseLabels, {"Total"}}));
}

TEST(CallSummary, Level700AddsVersion7Rows) {
  SummaryCapture c;
  c.cb->Identity.ApiLevel = API_LEVEL_700;
  c.cb->Settings.ShowXaCalls = 0;
  c.Count(ZKXF_CALLBACK, ZKCC_OK, 0, 10);
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  EXPECT_EQ(RowLabels(text, 11), Join({kBaseLabels, kLevel700Labels, {"Total"}}));
  EXPECT_NE(text.find("|  ZKCB_FU    "
                      "       1        0        0        0        1 "),
            std::string::npos);
}

TEST(CallSummary, Level700WithShowXaCallsAddsTransactionRows) {
  SummaryCapture c;
  c.cb->Identity.ApiLevel = API_LEVEL_700;
  c.cb->Settings.ShowXaCalls = 1;
  c.Count(ZKXF_AXUNREG, ZKCC_OK, 0, 10);
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  EXPECT_EQ(RowLabels(text, 11), Join({kBaseLabels, kLevel700Labels, kXaLabels, {"Total"}}));
  EXPECT_NE(text.find("|  ax_unreg   "
                      "       1        0        0        0        1 "
                      "    0.000010"),
            std::string::npos);
}

TEST(CallSummary, HeadingCarriesTheTimeStamp) {
  SummaryCapture c;
  c.Count(ZKXF_CONN, ZKCC_OK, 0, 10);
  PutSummaryRecord(c.cb);
  std::regex heading(
      "\\|Call summary - \\[\\d{4}/\\d{2}/\\d{2} \\d{2}:\\d{2}:\\d{2}\\.\\d{6}\\]\n");
  EXPECT_TRUE(std::regex_search(c.Text(), heading)) << c.Text();
}

TEST(CallSummary, CumulativeRecordsAreNeverZeroed) {
  SummaryCapture c;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 10);
  PutSummaryRecord(c.cb);
  PutSummaryRecord(c.cb);
  EXPECT_EQ(c.Record(ZKXF_PUT, COUNTER_CUMULATIVE).CallCount, 1u);
  EXPECT_EQ(c.cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount, 1u);
  EXPECT_EQ(Occurrences(c.Text(), "|  ZKPUT      "
                                  "       1        0        0        0        1 "),
            2u);
  EXPECT_EQ(Occurrences(c.Text(), "Split summary"), 0u) << "no interval is set";
}

TEST(CallSummary, ChannelTableRowsAtLevel700) {
  SummaryCapture c;
  c.cb->ExitType = EXIT_TYPE_CHANNEL;
  c.cb->File.NoAddress = 1;
  c.cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount = 1;
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  EXPECT_NE(text.find(CHL_HEADING), std::string::npos);
  std::vector<std::string> expected;
  for (const char *name :
       {"ZKCONN", "ZKDISC", "ZKOPEN", "ZKCLOSE", "ZKPUT", "ZKPUT1", "ZKGET", "ZKINQ", "ZKSET",
        "ZKCMIT", "ZKBACK", "ZKSTAT", "ZKSUB", "ZKSUBRQ", "ZKCTL", "ZKCB", "ZKCB_FU"}) {
    char label[32];
    snprintf(label, sizeof label, "%-7s request", name);
    expected.push_back(label);
    snprintf(label, sizeof label, "%-7s reply", name);
    expected.push_back(label);
  }
  for (const char *label : {"XA      request", "XA      reply", "XMIT    send", "XMIT    receive",
                            "MSG", "others", "Total"}) {
    expected.push_back(label);
  }
  EXPECT_EQ(RowLabels(text, 16), expected);
  EXPECT_NE(text.find("|  ZKCONN  request "
                      "                                    "
                      "       0\n"
                      "|  ZKCONN  reply   "
                      "       0        0        0        0        0\n"),
            std::string::npos);
  EXPECT_EQ(text.find("|  ZKCONNX"), std::string::npos);
  EXPECT_EQ(text.find("|  ZKBEGIN"), std::string::npos);
}

TEST(CallSummary, ChannelTableAtLevel600HasNoVersion7Pairs) {
  SummaryCapture c;
  c.cb->ExitType = EXIT_TYPE_CHANNEL;
  c.cb->Identity.ApiLevel = API_LEVEL_600;
  c.cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount = 1;
  PutSummaryRecord(c.cb);
  std::vector<std::string> labels = RowLabels(c.Text(), 16);
  ASSERT_EQ(labels.size(), 11u * 2 + 7);
  EXPECT_EQ(labels[21], "ZKBACK  reply");
  EXPECT_EQ(labels[22], "XA      request");
}

TEST(CallSummary, ChannelRequestRowsShowTheSecondMeasureAndRepliesTheFirst) {
  SummaryCapture c;
  c.cb->ExitType = EXIT_TYPE_CHANNEL;
  CallCounterRecord &put = c.Record(ZKXF_PUT, COUNTER_CUMULATIVE);
  put.OkCount = 2;
  put.CallCount = 2;
  put.TimedCalls = 2;
  put.TotalTime = 300;
  put.MinimumTime = 100;
  put.MaximumTime = 200;
  put.SecondCount = 2;
  put.SecondTotal = 8000;
  put.SecondMinimum = 3000;
  put.SecondMaximum = 5000;
  CallCounterRecord &xmit = c.Record(ZKXF_XACOMMIT, COUNTER_CUMULATIVE);
  xmit.CallCount = 7;
  c.cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount = 11;
  c.cb->Counters.Totals[COUNTER_CUMULATIVE].OkCount = 2;
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  EXPECT_NE(text.find("|  ZKPUT   request "
                      "                                    "
                      "       2      4000      3000      5000\n"
                      "|  ZKPUT   reply   "
                      "       2        0        0        0        2"
                      "       150       100       200\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("|  XMIT    send    "
                      "                                    "
                      "       7\n"),
            std::string::npos);
  EXPECT_NE(text.find(DASHES "|  Total           "
                             "       2        0        0        0       11\n"),
            std::string::npos);
}

// ---- the split summary ---------------------------------------------------------

TEST(SplitSummary, WrittenAfterTheCallSummaryWhenAnIntervalIsSet) {
  SummaryCapture c;
  c.cb->File.NoAddress = 1;
  c.cb->Identity.ApiLevel = API_LEVEL_600;
  c.cb->Settings.ShowPerformanceIntervalCount = 10;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 250);
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  size_t split = text.find(DASHES "\n" DASHES "|Split summary (1)\n");
  ASSERT_NE(split, std::string::npos) << text;
  std::string tail = text.substr(split + strlen(DASHES "\n"));
  std::string putRow = "|  ZKPUT      "
                       "       1        0        0        0        1 "
                       "    0.000250     0.000250     0.000250\n";
  EXPECT_EQ(tail.substr(0, strlen(DASHES "|Split summary (1)\n|  start ")),
            DASHES "|Split summary (1)\n|  start ");
  EXPECT_NE(tail.find("|  end   \n"
                      "|  duration         [00:00:00.000000]\n" API_HEADING
                      "|  ZKCONN     " EMPTY_COUNTS "\n"),
            std::string::npos)
      << tail;
  EXPECT_NE(tail.find(putRow), std::string::npos);
  EXPECT_EQ(tail.substr(tail.size() - strlen(DASHES "|\n|\n|\n")), DASHES "|\n|\n|\n");
  EXPECT_NE(tail.find("|  ZKBACK     " EMPTY_COUNTS "\n" DASHES "|  Total      "
                      "       1        0        0        0        1 "),
            std::string::npos);
}

TEST(SplitSummary, TimeIntervalAloneAlsoWritesIt) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalTime = 1;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 250);
  PutSummaryRecord(c.cb);
  EXPECT_EQ(Occurrences(c.Text(), "|Split summary (1)\n"), 1u);
}

TEST(SplitSummary, ZkiRowsAndTotalAreZeroedButTransactionRowsKeepGrowing) {
  SummaryCapture c;
  c.cb->File.NoAddress = 1;
  c.cb->Settings.ShowXaCalls = 1;
  c.cb->Settings.ShowPerformanceIntervalCount = 10;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 250);
  c.Count(ZKXF_XACOMMIT, ZKCC_OK, 0, 300);
  PutSummaryRecord(c.cb);
  EXPECT_EQ(c.Record(ZKXF_PUT, COUNTER_SPLIT).CallCount, 0u);
  EXPECT_EQ(c.Record(ZKXF_PUT, COUNTER_SPLIT).TimedCalls, 0);
  EXPECT_EQ(c.cb->Counters.Totals[COUNTER_SPLIT].CallCount, 0u);
  EXPECT_EQ(c.Record(ZKXF_XACOMMIT, COUNTER_SPLIT).CallCount, 1u);
  EXPECT_EQ(c.Record(ZKXF_PUT, COUNTER_CUMULATIVE).CallCount, 1u);
  EXPECT_EQ(c.cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount, 2u);

  c.Count(ZKXF_XACOMMIT, ZKCC_OK, 0, 300);
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  size_t second = text.find("|Split summary (2)\n");
  ASSERT_NE(second, std::string::npos);
  std::string tail = text.substr(second);
  EXPECT_NE(tail.find("|  ZKPUT      " EMPTY_COUNTS "\n"), std::string::npos);
  EXPECT_NE(tail.find("|  xa_commit  "
                      "       2        0        0        0        2 "),
            std::string::npos)
      << tail;
  EXPECT_NE(tail.find("|  Total      "
                      "       1        0        0        0        1 "),
            std::string::npos);
  EXPECT_EQ(c.Record(ZKXF_XACOMMIT, COUNTER_SPLIT).CallCount, 2u);
}

TEST(SplitSummary, SplitNumbersRiseAndEachSplitStartsWhereTheLastEnded) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalCount = 1;
  SetConnectionStartTime(c.cb);
  c.Count(ZKXF_OPEN, ZKCC_OK, 0, 1);
  PutSummaryRecord(c.cb);
  std::string first = c.Text();
  // Before the first split the split starts with the connection.
  EXPECT_NE(first.find(std::string("|  start ") + c.cb->Clock.StartTimeText + "\n"),
            std::string::npos)
      << first;
  std::smatch end;
  std::regex endLine("\\|  end   (\\[[^\\]]*\\])\n");
  ASSERT_TRUE(std::regex_search(first, end, endLine));
  EXPECT_EQ(std::string(c.cb->Counters.SplitStartText), end[1].str());
  struct timeval splitStart = c.cb->Counters.SplitStartTime;
  EXPECT_GE(splitStart.tv_sec, c.cb->Clock.StartTime.tv_sec);

  PutSummaryRecord(c.cb);
  std::string all = c.Text();
  size_t second = all.find("|Split summary (2)\n");
  ASSERT_NE(second, std::string::npos);
  EXPECT_NE(all.find("|  start " + end[1].str() + "\n", second), std::string::npos);
  EXPECT_EQ(c.cb->Counters.SplitSequence, 2u);
}

TEST(SplitSummary, DurationShowsHoursMinutesSecondsAndMicroseconds) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalTime = 60;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  struct timeval now;
  gettimeofday(&now, nullptr);
  // 1 hour, 2 minutes and 3.5 seconds before now.
  int64_t start = (int64_t)now.tv_sec * 1000000 + now.tv_usec - 3723500000LL;
  c.cb->Counters.SplitStartTime.tv_sec = (time_t)(start / 1000000);
  c.cb->Counters.SplitStartTime.tv_usec = (suseconds_t)(start % 1000000);
  snprintf(c.cb->Counters.SplitStartText, sizeof c.cb->Counters.SplitStartText, "[earlier]");
  PutSummaryRecord(c.cb);
  std::string text = c.Text();
  std::smatch m;
  ASSERT_TRUE(
      std::regex_search(text, m, std::regex("\\|  duration         \\[01:02:03\\.(\\d{6})\\]\n")))
      << c.Text();
  // The clock moves on while the summary is written: a little over 500000.
  int micro = atoi(m[1].str().c_str());
  EXPECT_GE(micro, 500000);
  EXPECT_LT(micro, 700000);
  EXPECT_NE(c.Text().find("|  start [earlier]\n"), std::string::npos);
}

TEST(SplitSummary, DurationHoursAreNotCutAt99) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalTime = 60;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  struct timeval now;
  gettimeofday(&now, nullptr);
  c.cb->Counters.SplitStartTime.tv_sec = now.tv_sec - 100 * 3600 - 1;
  c.cb->Counters.SplitStartTime.tv_usec = now.tv_usec;
  PutSummaryRecord(c.cb);
  EXPECT_TRUE(std::regex_search(c.Text(), std::regex("duration         \\[100:00:01\\.\\d{6}\\]")))
      << c.Text();
}

// ---- intervals -------------------------------------------------------------------

TEST(SummaryInterval, NothingHappensWithoutIntervals) {
  SummaryCapture c;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  for (int i = 0; i < 5; i++) {
    ShowPerformanceSummary(c.cb);
  }
  EXPECT_EQ(c.Text(), "");
  EXPECT_EQ(c.cb->Counters.IntervalCallCounter, 0);
  EXPECT_EQ(c.cb->Counters.LastIntervalTime, 0);
}

TEST(SummaryInterval, CountIntervalWritesASummaryEveryNCalls) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalCount = 3;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  ShowPerformanceSummary(c.cb);
  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(c.Text(), "");
  EXPECT_EQ(c.cb->Counters.IntervalCallCounter, 2);
  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(Occurrences(c.Text(), "|Call summary - "), 1u);
  EXPECT_EQ(Occurrences(c.Text(), "|Split summary (1)\n"), 1u);
  EXPECT_EQ(c.cb->Counters.IntervalCallCounter, 0);
  for (int i = 0; i < 3; i++) {
    ShowPerformanceSummary(c.cb);
  }
  EXPECT_EQ(Occurrences(c.Text(), "|Split summary (2)\n"), 1u);
  EXPECT_EQ(Occurrences(c.Text(), "|Call summary - "), 2u);
}

TEST(SummaryInterval, TimeIntervalFirstOnlyRemembersTheTime) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalTime = 60;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  time_t before = time(nullptr);
  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(c.Text(), "");
  EXPECT_GE(c.cb->Counters.LastIntervalTime, before);
  EXPECT_LE(c.cb->Counters.LastIntervalTime, time(nullptr));
}

TEST(SummaryInterval, TimeIntervalWritesWhenDueAndRestartsFromNow) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalTime = 60;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  time_t now = time(nullptr);
  c.cb->Counters.LastIntervalTime = now - 30;
  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(c.Text(), "") << "not due yet";
  EXPECT_EQ(c.cb->Counters.LastIntervalTime, now - 30);

  c.cb->Counters.LastIntervalTime = now - 60; // last + interval is not after now: due
  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(Occurrences(c.Text(), "|Split summary (1)\n"), 1u);
  EXPECT_GE(c.cb->Counters.LastIntervalTime, now);
}

TEST(SummaryInterval, BothIntervalsDueAtOnceWriteOneSummary) {
  SummaryCapture c;
  c.cb->Settings.ShowPerformanceIntervalCount = 100;
  c.cb->Settings.ShowPerformanceIntervalTime = 60;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  time_t now = time(nullptr);
  c.cb->Counters.IntervalCallCounter = 99;
  c.cb->Counters.LastIntervalTime = now - 61;
  ShowPerformanceSummary(c.cb);
  std::string text = c.Text();
  EXPECT_EQ(Occurrences(text, "|Call summary - "), 1u);
  EXPECT_EQ(Occurrences(text, "|Split summary ("), 1u);
  EXPECT_EQ(c.cb->Counters.IntervalCallCounter, 0);
  EXPECT_GE(c.cb->Counters.LastIntervalTime, now) << "the time interval restarts too";
  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(Occurrences(c.Text(), "|Split summary ("), 1u);
}

TEST(SummaryInterval, SummaryAtAnIntervalMayStartANewTraceFile) {
  SummaryCapture c;
  snprintf(c.cb->Identity.QMgrName, sizeof c.cb->Identity.QMgrName, "QM1");
  snprintf(c.cb->Identity.ProcessName, sizeof c.cb->Identity.ProcessName, "app");
  c.cb->Settings.ShowZkVersion = 0;
  c.cb->Settings.ShowPerformanceIntervalCount = 2;
  c.Count(ZKXF_PUT, ZKCC_OK, 0, 1);
  // The current file is over its size: the next text that may switch does.
  c.cb->File.CurrentFileSize = c.cb->Settings.MaxFileSize + 1;

  ShowPerformanceSummary(c.cb);
  EXPECT_EQ(c.dir.List().size(), 1u) << "not due: no switch";
  ShowPerformanceSummary(c.cb);
  std::vector<std::string> names = c.dir.List();
  EXPECT_EQ(names.size(), 2u);
  bool newFile = false;
  for (const std::string &name : names) {
    if (name != "wz_capture.txt" && name.rfind("wz_", 0) == 0 && name.size() > 2 &&
        name.compare(name.size() - 2, 2, ".t") == 0) {
      newFile = true;
    }
  }
  EXPECT_TRUE(newFile);
  EXPECT_EQ(c.cb->File.RotationPermitted, 0) << "the summary's own lines stay in one file";
  EXPECT_GT(c.cb->WriteBufferFill, 0);
  std::string written(c.cb->WriteBuffer, (size_t)c.cb->WriteBufferFill);
  EXPECT_NE(written.find("|Split summary"), std::string::npos);
  close(c.cb->File.FileDescriptor);
  c.cb->File.FileDescriptor = 0;
}

} // namespace
