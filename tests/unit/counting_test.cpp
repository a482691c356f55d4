#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/counting.h"
#include "format/structures.h"
#include "tests/unit/test_support.h"
#include "output/timing.h"
#include "output/statistics_index.h"

namespace {

struct CountingTest : ::testing::Test {
  TempDir dir;
  ExitControlBlock *cb = nullptr;
  CallCounterRecord first{}, second{};
  void SetUp() override {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    SetDefaultParameterSettings(&cb->Settings);
    strcpy(cb->Identity.ProcessName, "payroll");
    snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s/wz_QM1_payroll_1_2_001.t",
             dir.Path().c_str());
    strcpy(cb->Clock.RecordTimeText, "[2026/11/21 12:00:00.000001]");
  }
  void TearDown() override { free(cb); }
  void Count(int32_t function, ZKLONG cc, ZKLONG rs, int64_t elapsed = -1) {
    IncrementResultCount(cb, function, &cc, &rs, &first, &second, elapsed >= 0 ? 1 : 0, elapsed, 0,
                         0);
  }
  // "alert" is written over the first five characters of the trace file name.
  std::string Alerts() { return dir.Read("alert1_payroll_1_2_001.txt"); }
  void Suppress(int32_t cc, int32_t rs, int32_t fn, const char *object, const char *process) {
    AlertSuppressEntry &e = cb->Settings.PutAlertSuppress[cb->Settings.PutAlertSuppressCount++];
    e.CompCode = cc, e.Reason = rs, e.Function = fn;
    strcpy(e.ObjectName, object);
    strcpy(e.ProcessName, process);
  }
};

} // namespace

TEST(Counting, ResultClasses) {
  EXPECT_EQ(ClassifyCallResult(0, 0), RESULT_OK);
  EXPECT_EQ(ClassifyCallResult(1, 2079), RESULT_WARNING);
  for (ZKLONG reason : {2033, 2161, 2059, 2437, 2471, 2107}) {
    EXPECT_EQ(ClassifyCallResult(2, reason), RESULT_EXPECTED_FAILURE) << reason;
  }
  EXPECT_EQ(ClassifyCallResult(2, 2085), RESULT_ERROR);
  EXPECT_EQ(ClassifyCallResult(-3, 2033), RESULT_EXPECTED_FAILURE);
  EXPECT_EQ(ClassifyCallResult(-3, -3), RESULT_ERROR);
}

TEST(Counting, ProcessTimeFormat) {
  char text[64];
  ReformatProcessTime(text, sizeof text, 1234567);
  EXPECT_STREQ(text, "    1.234567");
  ReformatProcessTime(text, sizeof text, 42);
  EXPECT_STREQ(text, "    0.000042");
  ReformatProcessTime(text, sizeof text, 123456000000LL);
  EXPECT_STREQ(text, "123456.000000");
}

TEST(Counting, PutMessageRecordLength) {
  EXPECT_EQ(CalculateZkpmrUnitLength(31), 108);
  EXPECT_EQ(CalculateZkpmrUnitLength(0), 0);
  EXPECT_EQ(CalculateZkpmrUnitLength(1 | 8), 28);
  EXPECT_EQ(CalculateZkpmrUnitLength(16), 32);
}

TEST(Counting, StatisticsOrder) {
  EXPECT_EQ(StatisticsIndexOfFunction(ZKXF_CONN), 0);
  EXPECT_EQ(StatisticsIndexOfFunction(ZKXF_GET), 5);
  EXPECT_EQ(StatisticsIndexOfFunction(ZKXF_CALLBACK), 18);
  EXPECT_EQ(StatisticsIndexOfFunction(ZKXF_AXUNREG), 30);
  EXPECT_EQ(StatisticsIndexOfFunction(ZKXF_INIT), -1);
  EXPECT_EQ(StatisticsIndexOfFunction(ZKXF_DATA_CONV_ON_GET), -1);
}

TEST_F(CountingTest, ElapsedTimeUsesTheSlotOfTheFunction) {
  cb->Clock.ApiBeforeTime = {100, 900000};
  cb->Clock.XaBeforeTime = {200, 0};
  struct timeval now = {101, 100000};
  char text[64];
  int64_t elapsed = 0;
  EXPECT_EQ(CalculateApiCallTimeAndShow(cb, ZKXF_PUT, &now, text, &elapsed), 200000);
  EXPECT_EQ(elapsed, 200000);
  EXPECT_STREQ(text, "    0.200000");
  now = {203, 5};
  EXPECT_EQ(CalculateApiCallTimeAndShow(cb, ZKXF_XACOMMIT, &now, nullptr, nullptr), 3000005);
}

TEST_F(CountingTest, FirstTimeSetsMinAndMaxThenOnlyMaxRises) {
  Count(ZKXF_PUT, 0, 0, 500);
  EXPECT_EQ(first.MinimumTime, 500);
  EXPECT_EQ(first.MaximumTime, 500);
  Count(ZKXF_PUT, 0, 0, 900);
  EXPECT_EQ(first.MinimumTime, 500);
  EXPECT_EQ(first.MaximumTime, 900);
  Count(ZKXF_PUT, 0, 0, 100);
  EXPECT_EQ(first.MinimumTime, 100);
  EXPECT_EQ(first.TotalTime, 1500);
  EXPECT_EQ(first.TimedCalls, 3);
  EXPECT_EQ(second.TimedCalls, 3);
}

TEST_F(CountingTest, ClassesAreCountedInRecordsAndTotals) {
  Count(ZKXF_GET, 0, 0);
  Count(ZKXF_GET, 2, 2033);
  Count(ZKXF_GET, 1, 2079);
  Count(ZKXF_GET, 2, 2085);
  EXPECT_EQ(first.CallCount, 4u);
  EXPECT_EQ(first.OkCount, 1u);
  EXPECT_EQ(first.ExpectedFailureCount, 1u);
  EXPECT_EQ(first.WarningCount, 1u);
  EXPECT_EQ(first.ErrorCount, 1u);
  EXPECT_EQ(first.TimedCalls, 0); // no time given
  EXPECT_EQ(cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount, 4u);
  EXPECT_EQ(cb->Counters.Totals[COUNTER_SPLIT].ErrorCount, 1u);
}

TEST_F(CountingTest, ErrorAlertLineBesideTheTraceFile) {
  strcpy(cb->Call.CurrentQueueName, "APP.IN");
  cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount = 41;
  Count(ZKXF_OPEN, 2, 2085);
  EXPECT_EQ(Alerts(), "|--- Seq # : 42 [2026/11/21 12:00:00.000001]  ZKOPEN   CompCode = 2  "
                      "Reason = 2085 (ZKRC_UNKNOWN_OBJECT_NAME)  Object : APP.IN\n");
}

TEST_F(CountingTest, NoMessageIsInformationAndAlertedOnlyWhenAsked) {
  Count(ZKXF_GET, 2, 2033);
  EXPECT_EQ(Alerts(), "");
  cb->Settings.PutAlertFileInfo = 1;
  Count(ZKXF_GET, 2, 2033);
  EXPECT_NE(Alerts().find("ZKGET    CompCode = 2  Reason = 2033 (ZKRC_NO_MSG_AVAILABLE)\n"),
            std::string::npos)
      << Alerts();
}

TEST_F(CountingTest, WarningsNeedTheirSwitch) {
  Count(ZKXF_GET, 1, 2079);
  EXPECT_EQ(Alerts(), "");
  cb->Settings.PutAlertFileWarning = 1;
  Count(ZKXF_GET, 1, 2079);
  EXPECT_NE(Alerts().find("Reason = 2079"), std::string::npos);
  Count(ZKXF_GET, 0, 0);
  EXPECT_EQ(Alerts().find("Reason = 0"), std::string::npos); // success never alerts
}

TEST_F(CountingTest, StarObjectSuppressesCallsWithoutObjectToo) {
  Suppress(-1, -1, -1, "*", "*");
  Count(ZKXF_CMIT, 2, 2101);
  strcpy(cb->Call.CurrentQueueName, "Q1");
  Count(ZKXF_PUT, 2, 2053);
  EXPECT_EQ(Alerts(), "");
}

TEST_F(CountingTest, NamedObjectDoesNotSuppressCallsWithoutObject) {
  Suppress(-1, -1, -1, "Q1", "payroll");
  Count(ZKXF_CMIT, 2, 2101);
  EXPECT_NE(Alerts().find("ZKCMIT"), std::string::npos);
  strcpy(cb->Call.CurrentQueueName, "Q1");
  Count(ZKXF_PUT, 2, 2053);
  EXPECT_EQ(Alerts().find("ZKPUT "), std::string::npos);
}

TEST_F(CountingTest, SuppressByCodesFunctionPrefixAndProcess) {
  Suppress(2, 2053, ZKXF_PUT, "APP.*", "PAY*");
  strcpy(cb->Call.CurrentQueueName, "APP.OUT");
  Count(ZKXF_PUT, 2, 2053);  // suppressed
  Count(ZKXF_PUT, 2, 2030);  // other reason
  Count(ZKXF_PUT1, 2, 2053); // other function
  strcpy(cb->Call.CurrentQueueName, "XAPP.OUT");
  Count(ZKXF_PUT, 2, 2053); // other object
  strcpy(cb->Identity.ProcessName, "other");
  strcpy(cb->Call.CurrentQueueName, "APP.OUT");
  Count(ZKXF_PUT, 2, 2053); // other process
  std::string text = Alerts();
  int lines = 0;
  for (char c : text) {
    lines += c == '\n';
  }
  EXPECT_EQ(lines, 4) << text;
  // Of the ZKPUT calls with 2053 on APP.OUT only the other process's is written.
  std::string line = "ZKPUT    CompCode = 2  Reason = 2053 (ZKRC_Q_FULL)  Object : APP.OUT\n";
  size_t at = text.find(line);
  ASSERT_NE(at, std::string::npos) << text;
  EXPECT_EQ(text.find(line, at + 1), std::string::npos) << text;
  EXPECT_EQ(at + line.size(), text.size()) << text; // the last line, from the last call
}

TEST_F(CountingTest, AlertFileNameDropsTheOpenExtension) {
  snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s/wz_QM1_p_1_2_007.txt",
           dir.Path().c_str());
  Count(ZKXF_OPEN, 2, 2085);
  EXPECT_NE(dir.Read("alert1_p_1_2_007.txt.txt").find("ZKOPEN"), std::string::npos);
  snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s/no_trace_file_yet",
           dir.Path().c_str());
  Count(ZKXF_OPEN, 2, 2085); // no "/wz_" in the path: the line is dropped
}
