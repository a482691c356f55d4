// Call headers, summary-only lines and notes as they reach the trace file.
#include <gtest/gtest.h>

#include <string.h>
#include <sys/time.h>

#include <regex>
#include <string>

#include "exit/control_block.h"
#include "exit/call_records.h"
#include "exit/counting.h"
#include "output/record_writers.h"
#include "tests/unit/trace_capture.h"
#include "output/timing.h"

namespace {

const char kSeqDashes[] = " ---------------------------------------\n";

struct RecordWritersTest : TraceCaptureTest {
  CallCounterRecord first = {};
  CallCounterRecord second = {};

  void Before(int32_t function) {
    PutHeaderRecord(cb, function, ZKXR_BEFORE, 0, 0, &first, &second);
  }
  void After(int32_t function, int32_t compCode = 0, int32_t reason = 0) {
    PutHeaderRecord(cb, function, ZKXR_AFTER, compCode, reason, &first, &second);
  }
  uint32_t Count() const { return cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount; }
};

TEST_F(RecordWritersTest, ConnectionHeaderIsWrittenAtStartUp) {
  EXPECT_NE(Mask(start).find("-\n[TIME]\n<INIT\n(CONNECTION\n"), std::string::npos) << start;
  // The connection-time header neither numbers nor counts anything.
  EXPECT_EQ(start.find("Seq #"), std::string::npos);
  EXPECT_EQ(Count(), 0u);
}

TEST_F(RecordWritersTest, BeforeHeaderNumbersTheCallAndStoresItsStartTime) {
  struct timeval earlier;
  gettimeofday(&earlier, nullptr);
  cb->Clock.ApiBeforeTime = {1, 0};
  cb->Clock.XaBeforeTime = {2, 0};
  Before(ZKXF_PUT);
  EXPECT_EQ(TakeMasked(),
            std::string("-\n|--- Seq # : 1") + kSeqDashes + "[TIME]\n<ZKPUT\n(BEFORE\n");
  EXPECT_GE(cb->Clock.ApiBeforeTime.tv_sec, earlier.tv_sec);
  EXPECT_EQ(cb->Clock.XaBeforeTime.tv_sec, 2);
  EXPECT_EQ(cb->Counters.LastPrintedSequence, 1u);
  EXPECT_EQ(Count(), 0u); // counted after the call
  EXPECT_EQ(cb->Clock.RecordTimeText[0], '\0');
  EXPECT_EQ(cb->File.RotationPermitted, 0);
}

TEST_F(RecordWritersTest, AfterHeaderShowsCodesAndElapsedTimeAndCounts) {
  Before(ZKXF_OPEN);
  Take();
  After(ZKXF_OPEN);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<ZKOPEN\n(AFTER\nCompCode:0\nReason:0\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  EXPECT_EQ(Count(), 1u);
  EXPECT_EQ(first.CallCount, 1u);
  EXPECT_EQ(first.OkCount, 1u);
  EXPECT_EQ(first.TimedCalls, 1);
  EXPECT_EQ(second.CallCount, 1u);
  EXPECT_EQ(cb->Counters.Totals[COUNTER_SPLIT].CallCount, 1u);
  EXPECT_EQ(cb->Clock.RecordTimeText[0], '\0');
}

TEST_F(RecordWritersTest, FailedCallShowsTheReasonName) {
  Before(ZKXF_GET);
  cb->Clock.ApiBeforeTime.tv_sec -= 3; // the call took three seconds
  Take();
  After(ZKXF_GET, 2, 2033);
  std::string text = Take();
  std::smatch m;
  ASSERT_TRUE(std::regex_search(text, m, std::regex(R"(time:    3\.\d{6} second\n$)"))) << text;
  EXPECT_EQ(Mask(text), "-\n[TIME]\n<ZKGET\n(AFTER\nCompCode:2\nReason:2033\n"
                        "| Reason:ZKRC_NO_MSG_AVAILABLE\n"
                        "| API process time:SSSSS.UUUUUU second\n");
  EXPECT_EQ(first.ExpectedFailureCount, 1u);
  EXPECT_GE(first.MinimumTime, 3000000);
}

TEST_F(RecordWritersTest, UnknownFunctionShowsNumbersAfterBothNames) {
  Before(99);
  EXPECT_EQ(TakeMasked(), std::string("-\n|--- Seq # : 1") + kSeqDashes +
                              "[TIME]\n<(Unknown Function) 99\n(BEFORE 1\n");
}

TEST_F(RecordWritersTest, UnknownExitReasonShowsNumbersAfterBothNames) {
  PutHeaderRecord(cb, ZKXF_PUT, 77, 0, 0, nullptr, nullptr);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<ZKPUT 9\n((Unknown ExitReason) 77\n");
  EXPECT_EQ(Count(), 0u);
}

TEST_F(RecordWritersTest, LeftOutCallsAreNotedBeforeTheNextNumber) {
  for (int call = 1; call <= 4; call++) {
    Before(ZKXF_PUT);
    After(ZKXF_PUT);
  }
  // Calls 5 to 7 are counted but not traced, as the filters do.
  for (int call = 5; call <= 7; call++) {
    ZKLONG cc = 0, rc = 0;
    IncrementResultCount(cb, ZKXF_PUT, &cc, &rc, &first, &second, 1, 10, 0, 0);
  }
  Take();
  Before(ZKXF_PUT);
  EXPECT_EQ(TakeMasked(), std::string("-\n|>-- Seq # : 5-7 suppressed by parameter file\n"
                                      "|--- Seq # : 8") +
                              kSeqDashes + "[TIME]\n<ZKPUT\n(BEFORE\n");
  EXPECT_EQ(cb->Counters.LastPrintedSequence, 8u);
}

TEST_F(RecordWritersTest, OneLeftOutCallIsNotedByItsNumber) {
  Before(ZKXF_PUT);
  After(ZKXF_PUT);
  ZKLONG cc = 0, rc = 0;
  IncrementResultCount(cb, ZKXF_PUT, &cc, &rc, &first, &second, 1, 10, 0, 0);
  Take();
  Before(ZKXF_CMIT);
  EXPECT_EQ(TakeMasked(), std::string("-\n|>-- Seq # : 2 suppressed by parameter file\n"
                                      "|--- Seq # : 3") +
                              kSeqDashes + "[TIME]\n<ZKCMIT\n(BEFORE\n");
}

TEST_F(RecordWritersTest, DataConversionHeaderIsNotNumberedAndKeepsTheStartTime) {
  cb->Clock.ApiBeforeTime = {5, 6};
  PutHeaderRecord(cb, ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE, 0, 0, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<DATA_CONV_ON_GET\n(BEFORE\n");
  EXPECT_EQ(cb->Clock.ApiBeforeTime.tv_sec, 5);
  EXPECT_EQ(cb->Clock.ApiBeforeTime.tv_usec, 6);
  EXPECT_EQ(cb->Counters.LastPrintedSequence, 0u);
}

TEST_F(RecordWritersTest, XaBeforeStoresTheTransactionStartTime) {
  cb->Clock.ApiBeforeTime = {1, 0};
  PutHeaderRecord(cb, ZKXF_XASTART, ZKXR_BEFORE, 0, 0, &first, &second);
  EXPECT_EQ(TakeMasked(),
            std::string("-\n|--- Seq # : 1") + kSeqDashes + "[TIME]\n<xa_start\n(BEFORE\n");
  EXPECT_EQ(cb->Clock.ApiBeforeTime.tv_sec, 1);
  EXPECT_GT(cb->Clock.XaBeforeTime.tv_sec, 1);
}

TEST_F(RecordWritersTest, XaReturnValueLines) {
  SetTimeBeforeApiCallXa(cb);
  PutHeaderRecord(cb, ZKXF_XACOMMIT, ZKXR_AFTER, -3, -3, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<xa_commit\n(AFTER\nXA return value:-3\n"
                          "| XA return value:XAER_RMERR\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  PutHeaderRecord(cb, ZKXF_XAPREPARE, ZKXR_AFTER, 3, 3, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<xa_prepare\n(AFTER\nXA return value:3\n"
                          "| XA return value:XA_RDONLY\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  PutHeaderRecord(cb, ZKXF_XAEND, ZKXR_AFTER, 0, 0, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<xa_end\n(AFTER\nXA return value:0\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  EXPECT_EQ(Count(), 3u);
}

TEST_F(RecordWritersTest, AxCallsNameTheirValuesFromTheirOwnTable) {
  SetTimeBeforeApiCallXa(cb);
  PutHeaderRecord(cb, ZKXF_AXREG, ZKXR_AFTER, 2, 2, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<ax_reg\n(AFTER\nXA return value:2\n"
                          "| XA return value:TM_JOIN\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  PutHeaderRecord(cb, ZKXF_AXUNREG, ZKXR_AFTER, -2, -2, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<ax_unreg\n(AFTER\nXA return value:-2\n"
                          "| XA return value:TMER_INVAL\n"
                          "| API process time:SSSSS.UUUUUU second\n");
}

TEST_F(RecordWritersTest, RecoverShowsTheNumberOfXidsOrItsError) {
  SetTimeBeforeApiCallXa(cb);
  PutHeaderRecord(cb, ZKXF_XARECOVER, ZKXR_AFTER, 5, 5, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<xa_recover\n(AFTER\nTotal number of XIDs:5\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  PutHeaderRecord(cb, ZKXF_XARECOVER, ZKXR_AFTER, 0, 0, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<xa_recover\n(AFTER\nTotal number of XIDs:0\n"
                          "| API process time:SSSSS.UUUUUU second\n");
  PutHeaderRecord(cb, ZKXF_XARECOVER, ZKXR_AFTER, -5, -5, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<xa_recover\n(AFTER\nXA return value:-5\n"
                          "| XA return value:XAER_INVAL\n"
                          "| API process time:SSSSS.UUUUUU second\n");
}

TEST_F(RecordWritersTest, XaElapsedTimeRunsFromTheTransactionStartTime) {
  PutHeaderRecord(cb, ZKXF_XAOPEN, ZKXR_BEFORE, 0, 0, &first, &second);
  cb->Clock.XaBeforeTime.tv_sec -= 2;
  cb->Clock.ApiBeforeTime = {0, 0};
  Take();
  PutHeaderRecord(cb, ZKXF_XAOPEN, ZKXR_AFTER, 0, 0, &first, &second);
  EXPECT_TRUE(std::regex_search(Take(), std::regex(R"(time:    2\.\d{6} second\n$)")));
}

TEST_F(RecordWritersTest, ChannelExitHeaderNamesReasonAndExitKind) {
  cb->ExitType = EXIT_TYPE_CHANNEL;
  PutHeaderRecord(cb, ZKXT_CHANNEL_MSG_EXIT, ZKXR_INIT, 0, 0, &first, &second);
  EXPECT_EQ(TakeMasked(), "-\n[TIME]\n<INIT\n(CHANNEL_MSG_EXIT\n");
  EXPECT_EQ(Count(), 0u);
  PutHeaderRecord(cb, ZKXT_CHANNEL_MSG_EXIT, ZKXR_MSG, 0, 0, &first, &second);
  EXPECT_EQ(TakeMasked(),
            std::string("-\n|--- Seq # : 1") + kSeqDashes + "[TIME]\n<MSG\n(CHANNEL_MSG_EXIT\n");
  EXPECT_EQ(Count(), 1u);
  EXPECT_EQ(first.CallCount, 1u);
  EXPECT_EQ(first.TimedCalls, 0); // channel records carry no API time
}

TEST_F(RecordWritersTest, CallIsCountedEvenWhenTheFileCannotBeWritten) {
  Before(ZKXF_PUT);
  Take();
  cb->FatalError = 1;
  After(ZKXF_PUT);
  EXPECT_EQ(Take(), "");
  EXPECT_EQ(Count(), 1u);
  EXPECT_EQ(cb->Clock.RecordTimeText[0], '\0');
}

// A file switch may happen only at the "-" of a before-call header.
struct RotationTest : RecordWritersTest {
  // Makes the current file full, so that the next text permitted to switch
  // opens a new one.
  void FillFile() { cb->Settings.MaxFileSize = cb->File.CurrentFileSize; }
};

TEST_F(RotationTest, AfterHeaderStaysInTheFileOfItsBeforeHeader) {
  Before(ZKXF_PUT);
  Take();
  std::string file = cb->File.TraceFilePath;
  int32_t sequence = cb->File.FileSequenceNumber;
  FillFile();
  After(ZKXF_PUT);
  EXPECT_EQ(cb->File.TraceFilePath, file);
  EXPECT_EQ(cb->File.FileSequenceNumber, sequence);
  EXPECT_EQ(TakeMasked().substr(0, 16), "-\n[TIME]\n<ZKPUT\n");
  EXPECT_EQ(cb->File.RotationPermitted, 0);
}

TEST_F(RotationTest, DataConversionHeaderDoesNotSwitch) {
  int32_t sequence = cb->File.FileSequenceNumber;
  FillFile();
  PutHeaderRecord(cb, ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE, 0, 0, &first, &second);
  EXPECT_EQ(cb->File.FileSequenceNumber, sequence);
}

TEST_F(RotationTest, BeforeHeaderStartsTheNewFileWhole) {
  cb->File.RotationPermitted = 0; // as left by the record before
  int32_t sequence = cb->File.FileSequenceNumber;
  FillFile();
  Before(ZKXF_PUT);
  EXPECT_EQ(cb->File.FileSequenceNumber, sequence + 1);
  EXPECT_EQ(cb->File.RotationPermitted, 0);
  std::string text = Mask(Take());
  // The new file holds its own opening records and then the whole header.
  std::string header = std::string("-\n|--- Seq # : 1") + kSeqDashes + "[TIME]\n<ZKPUT\n(BEFORE\n";
  ASSERT_GE(text.size(), header.size());
  EXPECT_EQ(text.substr(text.size() - header.size()), header);
}

TEST_F(RecordWritersTest, NoteCarriesTextAndTime) {
  PutMsgToTrace(cb, "Enabled");
  EXPECT_EQ(TakeMasked(), "|\n|\n|  *** Enabled ***  [TIME]\n|\n");
}

TEST_F(RecordWritersTest, TerminationHeaderEndsTheFile) {
  std::string file = cb->File.TraceFilePath;
  conn.Axp.ExitReason = ZKXR_CONNECTION;
  conn.Axp.Function = ZKXF_TERM;
  Terminate(&conn.Axp, &conn.Axc, &conn.CompCode, &conn.Reason);
  ASSERT_EQ(conn.Axp.ExitChainAreaPtr, nullptr);
  std::string closed = file.substr(0, file.size() - 2) + ".txt";
  std::string text = Mask(ReadFile(closed));
  EXPECT_NE(text.find("-\n[TIME]\n<TERM\n(CONNECTION\n"), std::string::npos) << text;
}

// Summary-only records.

struct SimpleRecordTest : RecordWritersTest {
  ZKMD md = {};
  void SetUp() override {
    RecordWritersTest::SetUp();
    cb->Settings.ShowSummaryCorrelId = 0;
    memcpy(md.StrucId, ZKMD_STRUC_ID, 4);
    md.Version = ZKMD_VERSION_2;
    for (int i = 0; i < 24; i++) {
      md.MsgId[i] = (ZKBYTE)(i + 1);
    }
  }
  // What pre-processing and the before-handler leave for the after-handler.
  void Call(int32_t function, const char *object) {
    setTimeBeforeApiCall(cb);
    SetTimeBeforeApiCallXa(cb);
    cb->Call.CurrentFunction = function;
    snprintf(cb->Call.CurrentQueueName, sizeof cb->Call.CurrentQueueName, "%s", object);
  }
  static std::string Heading(bool correlId) {
    return std::string(
               "-\n          Time                         API         CC Reason  Time(sec)  "
               "ObjectName                                       MsgId                   "
               "                            MsgLen") +
           (correlId ? "  CorrelId" : "") + "\n";
  }
};

const char kMsgId[] = "0102030405060708090A0B0C0D0E0F101112131415161718";
const char kPad46[] = "                                              "; // "Q1" in 48 columns

TEST_F(SimpleRecordTest, FirstRecordOfAFileHasTheHeading) {
  Call(ZKXF_PUT, "Q1");
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 100);
  EXPECT_EQ(TakeMasked(), Heading(false) + "       1 [TIME]  ZKPUT        0    0 SSSSS.UUUUUU  Q1" +
                              kPad46 + " " + kMsgId + "       100\n");
  Call(ZKXF_PUT, "Q1");
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 7);
  EXPECT_EQ(TakeMasked(), std::string("       2 [TIME]  ZKPUT        0    0 SSSSS.UUUUUU  Q1") +
                              kPad46 + " " + kMsgId + "         7\n");
  EXPECT_EQ(Count(), 2u);
  EXPECT_EQ(first.CallCount, 2u);
  EXPECT_EQ(second.CallCount, 2u);
  EXPECT_EQ(cb->Clock.RecordTimeText[0], '\0');
}

TEST_F(SimpleRecordTest, HeadingComesAgainInTheNextFile) {
  Call(ZKXF_CMIT, "");
  PutSimpleRecord(cb, 0, 0, &first, &second, nullptr, -1);
  Take();
  int32_t sequence = cb->File.FileSequenceNumber;
  // Past its size limit: the summary-only line checks with an empty text.
  cb->Settings.MaxFileSize = cb->File.CurrentFileSize - 1;
  cb->File.RotationPermitted = 0;
  PutSimpleRecord(cb, 0, 0, &first, &second, nullptr, -1);
  EXPECT_EQ(cb->File.FileSequenceNumber, sequence + 1);
  std::string text = Mask(Take());
  std::string tail = Heading(false) + "       2 [TIME]  ZKCMIT       0    0 SSSSS.UUUUUU  " +
                     std::string(48, ' ') + "\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST_F(SimpleRecordTest, FailedGetHasNoMessageIdAndNamesItsReason) {
  cb->File.NewFileOpened = 0;
  Call(ZKXF_GET, "APP.REPLY");
  PutSimpleRecord(cb, ZKCC_FAILED, 2033, &first, &second, &md, 0);
  EXPECT_EQ(TakeMasked(), "       1 [TIME]  ZKGET        2 2033 SSSSS.UUUUUU  APP.REPLY" +
                              std::string(39, ' ') + " (2033 = ZKRC_NO_MSG_AVAILABLE)\n");
  EXPECT_EQ(first.ExpectedFailureCount, 1u);
}

TEST_F(SimpleRecordTest, WarningKeepsTheMessageIdAndNamesItsReason) {
  cb->File.NewFileOpened = 0;
  Call(ZKXF_GET, "Q1");
  PutSimpleRecord(cb, 1, 2079, &first, &second, &md, 5);
  EXPECT_EQ(TakeMasked(), std::string("       1 [TIME]  ZKGET        1 2079 SSSSS.UUUUUU  Q1") +
                              kPad46 + " " + kMsgId +
                              "         5 (2079 = ZKRC_TRUNCATED_MSG_ACCEPTED)\n");
}

TEST_F(SimpleRecordTest, CorrelationIdColumnShowsNullForZeros) {
  cb->Settings.ShowSummaryCorrelId = 1;
  Call(ZKXF_PUT, "Q1");
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 10);
  EXPECT_EQ(TakeMasked(), Heading(true) + "       1 [TIME]  ZKPUT        0    0 SSSSS.UUUUUU  Q1" +
                              kPad46 + " " + kMsgId + "        10  (null)\n");
  md.CorrelId[23] = 0xAB;
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 10);
  EXPECT_EQ(TakeMasked(), std::string("       2 [TIME]  ZKPUT        0    0 SSSSS.UUUUUU  Q1") +
                              kPad46 + " " + kMsgId +
                              "        10  0000000000000000000000000000000000000000000000AB\n");
}

TEST_F(SimpleRecordTest, NoLengthLeavesTheLengthColumnOut) {
  cb->File.NewFileOpened = 0;
  Call(ZKXF_PUT, "Q1");
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, -1);
  EXPECT_EQ(TakeMasked(), std::string("       1 [TIME]  ZKPUT        0    0 SSSSS.UUUUUU  Q1") +
                              kPad46 + " " + kMsgId + "\n");
}

TEST_F(SimpleRecordTest, GroupMessagesShowTheirSequenceNumber) {
  cb->File.NewFileOpened = 0;
  Call(ZKXF_GET, "Q1");
  md.MsgSeqNumber = 3;
  md.MsgFlags = 8; // in a group
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 1);
  md.MsgFlags = 8 | 16; // the last of its group
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 1);
  md.Version = ZKMD_VERSION_1; // no group fields
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 1);
  std::string prefix = std::string(" SSSSS.UUUUUU  Q1") + kPad46 + " " + kMsgId + "         1";
  EXPECT_EQ(TakeMasked(), "       1 [TIME]  ZKGET        0    0" + prefix + "       3\n" +
                              "       2 [TIME]  ZKGET        0    0" + prefix +
                              "       3 (End of group)\n" + "       3 [TIME]  ZKGET        0    0" +
                              prefix + "\n");
}

TEST_F(SimpleRecordTest, TransactionCallsHaveNoObjectColumn) {
  cb->File.NewFileOpened = 0;
  Call(ZKXF_XACOMMIT, "Q1"); // a leftover name is not shown
  PutSimpleRecord(cb, -3, -3, &first, &second, nullptr, -1);
  EXPECT_EQ(TakeMasked(), "       1 [TIME]  xa_commit  4294967293" + std::string("4294967293") +
                              " SSSSS.UUUUUU  " + std::string(48, ' ') +
                              " (4294967293 = XAER_RMERR)\n");
}

TEST_F(SimpleRecordTest, PerformanceOnlyWritesNothingButCounts) {
  cb->Settings.ShowPerformanceOnly = 1;
  Call(ZKXF_PUT, "Q1");
  PutSimpleRecord(cb, 0, 0, &first, &second, &md, 10);
  EXPECT_EQ(Take(), "");
  EXPECT_EQ(Count(), 1u);
  EXPECT_EQ(first.CallCount, 1u);
  EXPECT_EQ(first.TimedCalls, 1);
  EXPECT_EQ(cb->Clock.RecordTimeText[0], '\0');
}

TEST_F(SimpleRecordTest, WriteAfterEachApiFlushesTheLine) {
  cb->Settings.WriteAfterEachApi = 1;
  cb->File.NewFileOpened = 0;
  Call(ZKXF_PUT, "Q1");
  PutSimpleRecord(cb, 0, 0, &first, &second, nullptr, -1);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  std::string text = Mask(Take(false));
  EXPECT_EQ(text,
            "       1 [TIME]  ZKPUT        0    0 SSSSS.UUUUUU  Q1" + std::string(kPad46) + "\n");
}

struct SummarySuppressTest : SimpleRecordTest {
  void Entry(int32_t compCode, int32_t reason, int32_t function, const char *object) {
    SummaryDataSuppressEntry &e =
        cb->Settings.ShowSummaryDataSuppress[cb->Settings.ShowSummaryDataSuppressCount++];
    e.CompCode = compCode;
    e.Reason = reason;
    e.Function = function;
    snprintf(e.ObjectName, sizeof e.ObjectName, "%s", object);
  }
  // Whether a call is written, and that it is counted either way.
  bool Written(int32_t function, const char *object, int32_t compCode, int32_t reason) {
    uint32_t before = Count();
    cb->File.NewFileOpened = 0;
    Call(function, object);
    PutSimpleRecord(cb, compCode, reason, &first, &second, nullptr, -1);
    EXPECT_EQ(Count(), before + 1);
    return !Take().empty();
  }
};

TEST_F(SummarySuppressTest, EntryWithAnyValuesAndStarSuppressesEverything) {
  Entry(-1, -1, -1, "*");
  EXPECT_FALSE(Written(ZKXF_PUT, "Q1", 0, 0));
  EXPECT_FALSE(Written(ZKXF_CMIT, "", 0, 0));
}

TEST_F(SummarySuppressTest, CodesAndFunctionMustAllMatch) {
  Entry(2, 2033, ZKXF_GET, "*");
  EXPECT_FALSE(Written(ZKXF_GET, "Q1", 2, 2033));
  EXPECT_TRUE(Written(ZKXF_GET, "Q1", 2, 2009));
  EXPECT_TRUE(Written(ZKXF_GET, "Q1", 0, 0));
  EXPECT_TRUE(Written(ZKXF_PUT, "Q1", 2, 2033));
}

TEST_F(SummarySuppressTest, ObjectNameExactOrByPrefix) {
  Entry(-1, -1, -1, "Q1");
  Entry(-1, -1, -1, "SYSTEM.*");
  EXPECT_FALSE(Written(ZKXF_PUT, "Q1", 0, 0));
  EXPECT_TRUE(Written(ZKXF_PUT, "Q10", 0, 0));
  EXPECT_TRUE(Written(ZKXF_PUT, "q1", 0, 0));
  EXPECT_FALSE(Written(ZKXF_OPEN, "SYSTEM.ADMIN.COMMAND.QUEUE", 0, 0));
  EXPECT_FALSE(Written(ZKXF_OPEN, "SYSTEM.", 0, 0));
  EXPECT_TRUE(Written(ZKXF_OPEN, "SYSTEM", 0, 0));
  EXPECT_TRUE(Written(ZKXF_CMIT, "", 0, 0));
}

TEST_F(SummarySuppressTest, EntriesAreTriedInOrderUntilOneMatches) {
  Entry(0, -1, ZKXF_PUT, "A*");
  Entry(-1, 2033, -1, "*");
  EXPECT_FALSE(Written(ZKXF_PUT, "AB", 0, 0));
  EXPECT_FALSE(Written(ZKXF_GET, "Q", 2, 2033));
  EXPECT_TRUE(Written(ZKXF_PUT, "B", 0, 0));
}

} // namespace
