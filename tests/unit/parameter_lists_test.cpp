// The list keywords of "wz.def": TargetProcess, ExcludeProcess,
// TargetQueue, PutAlertSuppress and ShowSummaryDataSuppress.
#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "config/parameters.h"
#include "tests/unit/test_support.h"
#include "zk/zkconst.h"

namespace {

class ParameterLists : public ::testing::Test {
protected:
  TempDir dir_;
  char exitData_[32];
  ParameterSettings settings_;

  void SetUp() override { SetFixedField(exitData_, sizeof exitData_, dir_.Path()); }
  int32_t Read(const std::string &content) {
    dir_.Write("wz.def", content);
    return ReadParameterFile(nullptr, exitData_, &settings_);
  }
  void ExpectQueue(int32_t index, const char *name, int p, int g, int i, int s) {
    SCOPED_TRACE(name);
    ASSERT_LT(index, settings_.TargetQueueCount);
    const TargetQueueEntry &e = settings_.TargetQueue[index];
    EXPECT_STREQ(e.QueueName, name);
    EXPECT_EQ(e.P, p);
    EXPECT_EQ(e.G, g);
    EXPECT_EQ(e.I, i);
    EXPECT_EQ(e.S, s);
  }
};

bool AllZero(const void *p, size_t n) {
  const unsigned char *b = (const unsigned char *)p;
  for (size_t i = 0; i < n; i++) {
    if (b[i] != 0) {
      return false;
    }
  }
  return true;
}

// ---------------------------------------------------------------- processes

TEST_F(ParameterLists, ProcessNamesAreAppendedInOrder) {
  EXPECT_EQ(Read("TargetProcess=payroll\nTargetProcess=  appput*  \nExcludeProcess=batch\n"), 0);
  EXPECT_EQ(settings_.TargetProcessCount, 2);
  EXPECT_STREQ(settings_.TargetProcess[0], "payroll");
  EXPECT_STREQ(settings_.TargetProcess[1], "appput*");
  EXPECT_EQ(settings_.ExcludeProcessCount, 1);
  EXPECT_STREQ(settings_.ExcludeProcess[0], "batch");
}

TEST_F(ParameterLists, ProcessNamesAreCutTo28) {
  std::string name = std::string(28, 'a') + "bcdef";
  EXPECT_EQ(Read("TargetProcess=" + name + "\nExcludeProcess=" + name + "\n"), 0);
  EXPECT_EQ(std::string(settings_.TargetProcess[0]), std::string(28, 'a'));
  EXPECT_EQ(std::string(settings_.ExcludeProcess[0]), std::string(28, 'a'));
  EXPECT_TRUE(AllZero(settings_.TargetProcess[0] + 28, 4));
}

TEST_F(ParameterLists, ProcessNameKeepsCommasAndBlanksInside) {
  EXPECT_EQ(Read("TargetProcess=my prog,x\n"), 0);
  EXPECT_STREQ(settings_.TargetProcess[0], "my prog,x");
}

TEST_F(ParameterLists, EmptyProcessNameIsABadLine) {
  EXPECT_EQ(Read("TargetProcess=\nExcludeProcess=  # none\n"), -1);
  EXPECT_EQ(settings_.TargetProcessCount, 0);
  EXPECT_EQ(settings_.ExcludeProcessCount, 0);
}

// ---------------------------------------------------------------- queues

TEST_F(ParameterLists, BareQueueNameSelectsAllFamilies) {
  EXPECT_EQ(Read("TargetQueue=APP.REQUEST\n"), 0);
  EXPECT_EQ(settings_.TargetQueueCount, 1);
  ExpectQueue(0, "APP.REQUEST", 1, 1, 1, 1);
}

TEST_F(ParameterLists, QueueNameAndOneEmptyFieldSelectsAllFamilies) {
  EXPECT_EQ(Read("TargetQueue=Q1,\nTargetQueue=Q2 ,  \n"), 0);
  ExpectQueue(0, "Q1", 1, 1, 1, 1);
  ExpectQueue(1, "Q2", 1, 1, 1, 1);
}

TEST_F(ParameterLists, QueueNameAndTwoEmptyFieldsSelectsNone) {
  EXPECT_EQ(Read("TargetQueue=Q1,,\nTargetQueue=Q2, , \n"), 0);
  ExpectQueue(0, "Q1", 0, 0, 0, 0);
  ExpectQueue(1, "Q2", 0, 0, 0, 0);
}

TEST_F(ParameterLists, OneFlagFieldSelectsOnlyItsFamily) {
  EXPECT_EQ(Read("TargetQueue=Q1,p\nTargetQueue=Q2,G\nTargetQueue=Q3,inq\nTargetQueue=Q4,Set\n"),
            0);
  ExpectQueue(0, "Q1", 1, 0, 0, 0);
  ExpectQueue(1, "Q2", 0, 1, 0, 0);
  ExpectQueue(2, "Q3", 0, 0, 1, 0);
  ExpectQueue(3, "Q4", 0, 0, 0, 1);
}

TEST_F(ParameterLists, SeveralFlagFields) {
  EXPECT_EQ(Read("TargetQueue=Q1, Put , get\nTargetQueue=Q2,P,G,I,S\nTargetQueue=Q3,,s\n"
                 "TargetQueue=Q4,g,g\n"),
            0);
  ExpectQueue(0, "Q1", 1, 1, 0, 0);
  ExpectQueue(1, "Q2", 1, 1, 1, 1);
  ExpectQueue(2, "Q3", 0, 0, 0, 1);
  ExpectQueue(3, "Q4", 0, 1, 0, 0);
}

TEST_F(ParameterLists, EmptyQueueNameIsBad) {
  EXPECT_EQ(Read("TargetQueue=,P\n"), -1);
  EXPECT_EQ(settings_.TargetQueueCount, 0);
  EXPECT_EQ(Read("TargetQueue= , P\n"), -1);
  EXPECT_EQ(settings_.TargetQueueCount, 0);
}

TEST_F(ParameterLists, UnknownFlagLetterIsBadAndNotCounted) {
  EXPECT_EQ(Read("TargetQueue=Q1,x\n"), -1);
  EXPECT_EQ(settings_.TargetQueueCount, 0);
  EXPECT_EQ(Read("TargetQueue=Q1,P,Browse\n"), -1);
  EXPECT_EQ(settings_.TargetQueueCount, 0);
}

TEST_F(ParameterLists, RejectedQueueLeavesNoTrace) {
  EXPECT_EQ(Read("TargetQueue=A\nTargetQueue=BAD,z\nTargetQueue=B,g\n"), -1);
  EXPECT_EQ(settings_.TargetQueueCount, 2);
  ExpectQueue(0, "A", 1, 1, 1, 1);
  ExpectQueue(1, "B", 0, 1, 0, 0);
  EXPECT_TRUE(AllZero(&settings_.TargetQueue[2], sizeof settings_.TargetQueue[2]));
}

TEST_F(ParameterLists, QueueNameIsCutTo48) {
  std::string name = std::string(48, 'Q') + "TAIL";
  EXPECT_EQ(Read("TargetQueue=" + name + ",P\n"), 0);
  ExpectQueue(0, std::string(48, 'Q').c_str(), 1, 0, 0, 0);
}

TEST_F(ParameterLists, WildcardQueueNameIsStoredAsWritten) {
  EXPECT_EQ(Read("TargetQueue=APP.*\nTargetQueue=*,G\n"), 0);
  ExpectQueue(0, "APP.*", 1, 1, 1, 1);
  ExpectQueue(1, "*", 0, 1, 0, 0);
}

// ---------------------------------------------------------------- alert suppression

TEST_F(ParameterLists, PutAlertSuppressFullEntry) {
  EXPECT_EQ(Read("PutAlertSuppress=2, 2033 ,ZKGET,APP.REPLY,payroll\n"), 0);
  ASSERT_EQ(settings_.PutAlertSuppressCount, 1);
  const AlertSuppressEntry &e = settings_.PutAlertSuppress[0];
  EXPECT_EQ(e.CompCode, 2);
  EXPECT_EQ(e.Reason, 2033);
  EXPECT_EQ(e.Function, ZKXF_GET);
  EXPECT_STREQ(e.ObjectName, "APP.REPLY");
  EXPECT_STREQ(e.ProcessName, "payroll");
}

TEST_F(ParameterLists, PutAlertSuppressStarsMeanAny) {
  EXPECT_EQ(Read("PutAlertSuppress=*,*,*,*,*\n"), 0);
  ASSERT_EQ(settings_.PutAlertSuppressCount, 1);
  const AlertSuppressEntry &e = settings_.PutAlertSuppress[0];
  EXPECT_EQ(e.CompCode, -1);
  EXPECT_EQ(e.Reason, -1);
  EXPECT_EQ(e.Function, -1);
  EXPECT_STREQ(e.ObjectName, "*");
  EXPECT_STREQ(e.ProcessName, "*");
}

TEST_F(ParameterLists, PutAlertSuppressFunctionIsUpperCased) {
  EXPECT_EQ(Read("PutAlertSuppress=1,*,zkput,Q1,*\nPutAlertSuppress=1,*,ZkOpen,Q1,*\n"), 0);
  ASSERT_EQ(settings_.PutAlertSuppressCount, 2);
  EXPECT_EQ(settings_.PutAlertSuppress[0].Function, ZKXF_PUT);
  EXPECT_EQ(settings_.PutAlertSuppress[1].Function, ZKXF_OPEN);
}

TEST_F(ParameterLists, PutAlertSuppressUnknownFunctionIsBad) {
  EXPECT_EQ(Read("PutAlertSuppress=2,2033,ZKFETCH,Q1,app\n"), -1);
  EXPECT_EQ(settings_.PutAlertSuppressCount, 0);
  // The table holds the transaction-manager names in lower case, so once
  // upper-cased they are not found.
  EXPECT_EQ(Read("PutAlertSuppress=2,*,xa_open,*,*\n"), -1);
  EXPECT_EQ(settings_.PutAlertSuppressCount, 0);
}

TEST_F(ParameterLists, PutAlertSuppressNeedsAllFiveFields) {
  EXPECT_EQ(Read("PutAlertSuppress=2,2033,ZKGET,Q1\n"), -1);
  EXPECT_EQ(settings_.PutAlertSuppressCount, 0);
  EXPECT_EQ(Read("PutAlertSuppress=2,2033,ZKGET,Q1,\n"), -1);
  EXPECT_EQ(Read("PutAlertSuppress=2,,ZKGET,Q1,app\n"), -1);
  EXPECT_EQ(Read("PutAlertSuppress=,2033,ZKGET,Q1,app\n"), -1);
  EXPECT_EQ(Read("PutAlertSuppress=2,2033,,Q1,app\n"), -1);
  EXPECT_EQ(Read("PutAlertSuppress=2,2033,ZKGET,,app\n"), -1);
  EXPECT_EQ(settings_.PutAlertSuppressCount, 0);
}

TEST_F(ParameterLists, PutAlertSuppressNamesAreCut) {
  std::string object = std::string(48, 'O') + "XX";
  std::string process = std::string(28, 'p') + "XX";
  EXPECT_EQ(Read("PutAlertSuppress=2,2085,ZKOPEN," + object + "," + process + "\n"), 0);
  ASSERT_EQ(settings_.PutAlertSuppressCount, 1);
  EXPECT_EQ(std::string(settings_.PutAlertSuppress[0].ObjectName), std::string(48, 'O'));
  EXPECT_EQ(std::string(settings_.PutAlertSuppress[0].ProcessName), std::string(28, 'p'));
}

TEST_F(ParameterLists, PutAlertSuppressNonNumericCodeReadsAsZero) {
  EXPECT_EQ(Read("PutAlertSuppress=ok,none,ZKCMIT,*,*\n"), 0);
  ASSERT_EQ(settings_.PutAlertSuppressCount, 1);
  EXPECT_EQ(settings_.PutAlertSuppress[0].CompCode, 0);
  EXPECT_EQ(settings_.PutAlertSuppress[0].Reason, 0);
  EXPECT_EQ(settings_.PutAlertSuppress[0].Function, ZKXF_CMIT);
}

// ---------------------------------------------------------------- summary suppression

TEST_F(ParameterLists, ShowSummaryDataSuppressEntries) {
  EXPECT_EQ(Read("ShowSummaryDataSuppress=0,0,zkput,APP.AUDIT\n"
                 "ShowSummaryDataSuppress=*,*,*,*\n"),
            0);
  ASSERT_EQ(settings_.ShowSummaryDataSuppressCount, 2);
  const SummaryDataSuppressEntry &a = settings_.ShowSummaryDataSuppress[0];
  EXPECT_EQ(a.CompCode, 0);
  EXPECT_EQ(a.Reason, 0);
  EXPECT_EQ(a.Function, ZKXF_PUT);
  EXPECT_STREQ(a.ObjectName, "APP.AUDIT");
  const SummaryDataSuppressEntry &b = settings_.ShowSummaryDataSuppress[1];
  EXPECT_EQ(b.CompCode, -1);
  EXPECT_EQ(b.Reason, -1);
  EXPECT_EQ(b.Function, -1);
  EXPECT_STREQ(b.ObjectName, "*");
}

TEST_F(ParameterLists, ShowSummaryDataSuppressNeedsFourFields) {
  EXPECT_EQ(Read("ShowSummaryDataSuppress=0,0,ZKPUT\n"), -1);
  EXPECT_EQ(Read("ShowSummaryDataSuppress=0,0,ZKPUT,\n"), -1);
  EXPECT_EQ(Read("ShowSummaryDataSuppress=0,0,ZKSEND,Q1\n"), -1);
  EXPECT_EQ(settings_.ShowSummaryDataSuppressCount, 0);
}

// ---------------------------------------------------------------- full lists

TEST_F(ParameterLists, HundredEntriesEachAndNoMore) {
  std::string content;
  for (int i = 0; i < 101; i++) {
    std::string n = std::to_string(i);
    content += "TargetProcess=proc" + n + "\n";
    content += "ExcludeProcess=skip" + n + "\n";
    content += "TargetQueue=Q" + n + ",P\n";
    content += "PutAlertSuppress=2," + n + ",ZKPUT,Q" + n + ",*\n";
    content += "ShowSummaryDataSuppress=0," + n + ",ZKGET,Q" + n + "\n";
  }
  // The 101st lines are dropped, but they are not bad lines.
  EXPECT_EQ(Read(content), 0);
  EXPECT_EQ(settings_.TargetProcessCount, 100);
  EXPECT_EQ(settings_.ExcludeProcessCount, 100);
  EXPECT_EQ(settings_.TargetQueueCount, 100);
  EXPECT_EQ(settings_.PutAlertSuppressCount, 100);
  EXPECT_EQ(settings_.ShowSummaryDataSuppressCount, 100);
  EXPECT_STREQ(settings_.TargetProcess[99], "proc99");
  EXPECT_STREQ(settings_.ExcludeProcess[99], "skip99");
  EXPECT_STREQ(settings_.TargetQueue[99].QueueName, "Q99");
  EXPECT_EQ(settings_.PutAlertSuppress[99].Reason, 99);
  EXPECT_EQ(settings_.ShowSummaryDataSuppress[99].Reason, 99);
}

} // namespace
