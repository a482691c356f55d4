// The records of ZKOPEN, ZKCLOSE, ZKPUT1, ZKPUT and ZKGET and of the get's
// data-conversion point: which calls TargetQueue selects, the names an open
// remembers (queue manager, distribution list, model queue, topic), failed
// opens and gets, how much message data is shown, calls that are counted
// but not written, summary-only mode, and parameters that are missing.
#include <gtest/gtest.h>

#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "handlers/handlers.h"
#include "handlers/short_dumps.h"
#include "tests/unit/handler_fixture.h"
#include "zk/zk.h"

namespace {

// One call's parameters as the queue manager passes them: each structure
// and the buffer by a pointer whose address the handler gets.
struct QueueParms {
  ZKHCONN hconn = kHconn;
  ZKOD od = ZKOD_DEFAULT;
  PZKOD pOd = &od;
  ZKLONG options = 0;
  ZKHOBJ hobj = 0;
  PZKHOBJ pHobj = &hobj;
  ZKMD md = ZKMD_DEFAULT;
  PZKMD pMd = &md;
  ZKPMO pmo = ZKPMO_DEFAULT;
  PZKPMO pPmo = &pmo;
  ZKGMO gmo = ZKGMO_DEFAULT;
  PZKGMO pGmo = &gmo;
  ZKLONG bufferLength = 0;
  unsigned char buffer[256] = {};
  PZKVOID pBuffer = buffer;
  ZKLONG dataLength = 0;
  PZKLONG pDataLength = &dataLength;
  ZKOR objectRecords[2] = {ZKOR_DEFAULT, ZKOR_DEFAULT};
  ZKRR responseRecords[2] = {};
  char topic[128] = {};
};

struct QueueCalls : HandlerParmsFixture<QueueParms> {
  void SetUp() override {
    HandlerParmsFixture::SetUp();
    cb->Settings.ShowParsedMsgContent = 0;
    cb->Settings.ShowMaxLenPut = -1;
    cb->Settings.ShowMaxLenGet = -1;
  }

  void Target(const char *name, uint8_t put, uint8_t get) {
    TargetQueueEntry &entry = cb->Settings.TargetQueue[cb->Settings.TargetQueueCount++];
    strcpy(entry.QueueName, name);
    entry.P = put;
    entry.G = get;
    entry.I = 1;
    entry.S = 1;
  }

  void ObjectName(const std::string &name) { SetBlankPadded(p->od.ObjectName, 48, name); }

  // `count` bytes of message data, "ABC...XYZABC...".
  void Message(int32_t count) {
    for (int32_t i = 0; i < count; i++) {
      p->buffer[i] = (unsigned char)('A' + i % 26);
    }
    p->bufferLength = count;
  }

  void OpenB() {
    OpenBefore(Axp(ZKXF_OPEN, ZKXR_BEFORE), &axc, &p->hconn, &p->pOd, &p->options, &p->pHobj,
               &compCode, &reason);
  }
  void OpenA() {
    OpenAfter(Axp(ZKXF_OPEN, ZKXR_AFTER), &axc, &p->hconn, &p->pOd, &p->options, &p->pHobj,
              &compCode, &reason);
  }
  void CloseB() {
    CloseBefore(Axp(ZKXF_CLOSE, ZKXR_BEFORE), &axc, &p->hconn, &p->pHobj, &p->options, &compCode,
                &reason);
  }
  void CloseA() {
    CloseAfter(Axp(ZKXF_CLOSE, ZKXR_AFTER), &axc, &p->hconn, &p->pHobj, &p->options, &compCode,
               &reason);
  }
  void Put1B() {
    Put1Before(Axp(ZKXF_PUT1, ZKXR_BEFORE), &axc, &p->hconn, &p->pOd, &p->pMd, &p->pPmo,
               &p->bufferLength, &p->pBuffer, &compCode, &reason);
  }
  void Put1A() {
    Put1After(Axp(ZKXF_PUT1, ZKXR_AFTER), &axc, &p->hconn, &p->pOd, &p->pMd, &p->pPmo,
              &p->bufferLength, &p->pBuffer, &compCode, &reason);
  }
  void PutB() {
    PutBefore(Axp(ZKXF_PUT, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, &p->pMd, &p->pPmo,
              &p->bufferLength, &p->pBuffer, &compCode, &reason);
  }
  void PutA() {
    PutAfter(Axp(ZKXF_PUT, ZKXR_AFTER), &axc, &p->hconn, &p->hobj, &p->pMd, &p->pPmo,
             &p->bufferLength, &p->pBuffer, &compCode, &reason);
  }
  void GetB() {
    GetBefore(Axp(ZKXF_GET, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, &p->pMd, &p->pGmo,
              &p->bufferLength, &p->pBuffer, &p->pDataLength, &compCode, &reason);
  }
  void GetA() {
    GetAfter(Axp(ZKXF_GET, ZKXR_AFTER), &axc, &p->hconn, &p->hobj, &p->pMd, &p->pGmo,
             &p->bufferLength, &p->pBuffer, &p->pDataLength, &compCode, &reason);
  }
  // The data-conversion point the queue manager raises inside ZKGET.
  void ConvB() {
    GetBefore(Axp(ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, &p->pMd, &p->pGmo,
              &p->bufferLength, &p->pBuffer, &p->pDataLength, &compCode, &reason);
  }

  // A queue opened through the handlers; the queue manager returns kHobj
  // and, when `returned` is given, that name in the descriptor.
  void OpenQueue(const std::string &name, const std::string &returned = "") {
    ObjectName(name);
    p->hobj = 0;
    OpenB();
    p->hobj = kHobj;
    if (!returned.empty()) {
      ObjectName(returned);
    }
    OpenA();
    capture.Clear();
  }

  // What the structure dumps write by themselves, as lines.
  std::vector<std::string> Od() {
    return Shown([&] { ShowZKOD(cb, &p->od); });
  }
  std::vector<std::string> Md() {
    return Shown([&] { ShowZKMD(cb, &p->md); });
  }
  std::vector<std::string> Pmo() {
    return Shown([&] { ShowZKPMO(cb, &p->pmo); });
  }
  std::vector<std::string> Gmo(int32_t exitReason, int32_t code) {
    return Shown([&] { ShowZKGMO(cb, &p->gmo, exitReason, code); });
  }
};

// The dump of the 100 bytes Message(100) writes.
const std::vector<std::string> kHundredBytes = {
    "Buffer:(100=x64 bytes)",
    Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
    Dump("00000010:51525354 55565758 595A4142 43444546", "QRSTUVWXYZABCDEF"),
    Dump("00000020:4748494A 4B4C4D4E 4F505152 53545556", "GHIJKLMNOPQRSTUV"),
    Dump("00000030:5758595A 41424344 45464748 494A4B4C", "WXYZABCDEFGHIJKL"),
    Dump("00000040:4D4E4F50 51525354 55565758 595A4142", "MNOPQRSTUVWXYZAB"),
    Dump("00000050:43444546 4748494A 4B4C4D4E 4F505152", "CDEFGHIJKLMNOPQR"),
    Dump("00000060:53545556", "STUV"),
};

} // namespace

// ---------------------------------------------------------------------------
// Selection

TEST_F(QueueCalls, WildcardTargetNeverSelectsPut1ButSelectsAPutThroughItsHandle) {
  Target("APP.*", 1, 1);
  ObjectName("APP.IN");
  Message(5);
  Put1B();
  Put1A();
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(Counted(ZKXF_PUT1).CallCount, 1u);
  EXPECT_EQ(Counted(ZKXF_PUT1).TimedCalls, 0);

  OpenQueue("APP.IN");
  PutB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKPUT\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(), Pmo(),
                 {"BufferLength:5", "Buffer:(5=x5 bytes)", Dump("00000000:41424344 45", "ABCDE")}));
  PutA();
  EXPECT_EQ(OwnLines(), Join(Md(), Pmo()));
  EXPECT_EQ(Counted(ZKXF_PUT).CallCount, 1u);
  EXPECT_EQ(Counted(ZKXF_PUT).TimedCalls, 1);
}

TEST_F(QueueCalls, Put1IsSelectedByAnExactNameWithThePutFlagOnly) {
  Target("APP.IN", 1, 0);
  Target("APP.OUT", 0, 1);
  ObjectName("APP.IN");
  Message(3);
  Put1B();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKPUT1\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B"}, Od(), {"| ObjectName:APP.IN"}, Md(), Pmo(),
                 {"BufferLength:3", "Buffer:(3=x3 bytes)", Dump("00000000:414243", "ABC")}));
  Put1A();
  EXPECT_EQ(OwnLines(), Join(Od(), {"| ObjectName:APP.IN"}, Md(), Pmo()));

  // The entry of APP.OUT has its put flag off.
  ObjectName("APP.OUT");
  Put1B();
  Put1A();
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(Counted(ZKXF_PUT1).CallCount, 2u);
}

TEST_F(QueueCalls, OpenOfTheQueueManagerIsNamedAndMatchedAsQueueManager) {
  p->od.ObjectType = ZKOT_Q_MGR;
  ObjectName("ZKQM1");
  Target("APP.*", 1, 1);
  OpenB();
  p->hobj = kHobj;
  OpenA();
  EXPECT_EQ(capture.Take(), "");
  ASSERT_EQ(cb->Handles.HandleCount, 1);
  EXPECT_STREQ(cb->Handles.HandleList[0].QueueName, "(queue_manager)");
  EXPECT_EQ(cb->Handles.HandleList[0].Hobj, kHobj);
  CloseB();
  CloseA();
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(cb->Handles.HandleCount, 0);

  Target("(queue_manager)", 1, 1);
  p->hobj = 0;
  OpenB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B"}, Od(),
                             {"| ObjectName:(queue_manager)", "Options:0x00000000",
                              Field("Options", "(none)")}));
  p->hobj = kHobj;
  OpenA();
  // The name the queue manager left in the descriptor is its own.
  EXPECT_EQ(OwnLines(),
            Join(Od(), {"| ObjectName:(queue_manager)", "| (real name):ZKQM1", "Hobj:0x00000051"}));
}

TEST_F(QueueCalls, OpenOfADistributionListIsNamedAsDistributionList) {
  p->od.Version = ZKOD_VERSION_2;
  p->od.RecsPresent = 1;
  p->od.ObjectRecPtr = p->objectRecords;
  p->od.ResponseRecPtr = p->responseRecords;
  SetBlankPadded(p->objectRecords[0].ObjectName, 48, "APP.IN");
  ObjectName("");
  OpenB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B"}, Od(),
                             {"| ObjectName:(distribution_list)", "Options:0x00000000",
                              Field("Options", "(none)")}));
  p->hobj = kHobj;
  OpenA();
  EXPECT_EQ(OwnLines(), Join(Od(), {"| ObjectName:(distribution_list)", "Hobj:0x00000051"}));
  ASSERT_EQ(cb->Handles.HandleCount, 1);
  EXPECT_STREQ(cb->Handles.HandleList[0].QueueName, "(distribution_list)");

  // With version 1 the record count is not part of the descriptor.
  p->od.Version = ZKOD_VERSION_1;
  ObjectName("APP.OUT");
  OpenB();
  std::vector<std::string> lines = OwnLines();
  EXPECT_TRUE(HasLine(lines, "| ObjectName:APP.OUT")) << ::testing::PrintToString(lines);
}

TEST_F(QueueCalls, OpenOfAModelQueueShowsTheDynamicNameAndPutsShowBoth) {
  ObjectName("APP.MODEL");
  p->options = ZKOO_INPUT_SHARED | ZKOO_OUTPUT;
  OpenB();
  capture.Clear();
  ObjectName("ZK.5F3A0001");
  p->hobj = kHobj;
  OpenA();
  EXPECT_EQ(OwnLines(),
            Join(Od(), {"| ObjectName:APP.MODEL", "| (real name):ZK.5F3A0001", "Hobj:0x00000051"}));

  Message(2);
  PutB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.MODEL",
                  "| (real name):ZK.5F3A0001"},
                 Md(), Pmo(),
                 {"BufferLength:2", "Buffer:(2=x2 bytes)", Dump("00000000:4142", "AB")}));
  PutA();
  EXPECT_EQ(OwnLines(), Join(Md(), Pmo()));
}

TEST_F(QueueCalls, OpenOfATopicResolvesToTheTopicNameCutAt48) {
  p->od.Version = ZKOD_VERSION_4;
  p->od.ObjectType = ZKOT_TOPIC;
  ObjectName("SPORTS");
  strcpy(p->topic, "Sports/Football/Results/Premier/League/Season");
  p->od.ObjectString.VSPtr = p->topic;
  p->od.ObjectString.VSLength = (ZKLONG)strlen(p->topic);
  OpenB();
  capture.Clear();
  p->hobj = kHobj;
  OpenA();
  std::vector<std::string> lines = OwnLines();
  std::string resolved = "(topic) SPORTS Sports/Football/Results/Premier..";
  EXPECT_EQ(lines,
            Join(Od(), {"| ObjectName:SPORTS", "| (real name):" + resolved, "Hobj:0x00000051"}));
  ASSERT_EQ(cb->Handles.HandleCount, 1);
  EXPECT_STREQ(cb->Handles.HandleList[0].ResolvedQueueName, resolved.c_str());
  EXPECT_EQ(strlen(cb->Handles.HandleList[0].ResolvedQueueName), 48u);

  // A short topic string under a blank object name.
  ObjectName("");
  strcpy(p->topic, "a/b");
  p->od.ObjectString.VSLength = -1;
  p->hobj = 0;
  OpenB();
  capture.Clear();
  p->hobj = kHobj + 1;
  OpenA();
  lines = OwnLines();
  EXPECT_EQ(lines, Join(Od(), {"| ObjectName:", "| (real name):(topic) a/b", "Hobj:0x00000052"}));
}

TEST_F(QueueCalls, FailedOpenShowsTheReasonNoRealNameAndTheHandleLeft) {
  ObjectName("APP.NONE");
  OpenB();
  capture.Clear();
  EXPECT_EQ(cb->Handles.HandleCount, 1);
  // What the queue manager left in the descriptor is not a resolved name.
  ObjectName("SOMETHING.ELSE");
  p->hobj = ZKHO_UNUSABLE_HOBJ;
  compCode = ZKCC_FAILED;
  reason = ZKRC_UNKNOWN_OBJECT_NAME;
  OpenA();
  std::string text = capture.Text();
  EXPECT_NE(text.find("CompCode:2\nReason:2085\n| Reason:ZKRC_UNKNOWN_OBJECT_NAME\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(OwnLines(), Join(Od(), {"| ObjectName:APP.NONE", "Hobj:0xFFFFFFFF"}));
  EXPECT_EQ(cb->Handles.HandleCount, 0);
  EXPECT_EQ(Counted(ZKXF_OPEN).ErrorCount, 1u);
}

TEST_F(QueueCalls, FailedOpenOfANotSelectedQueueAlsoLeavesNoEntry) {
  Target("APP.*", 1, 1);
  ObjectName("OTHER.Q");
  OpenB();
  EXPECT_EQ(cb->Handles.HandleCount, 1);
  compCode = ZKCC_FAILED;
  reason = ZKRC_UNKNOWN_OBJECT_NAME;
  p->hobj = ZKHO_UNUSABLE_HOBJ;
  OpenA();
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(cb->Handles.HandleCount, 0);
}

// ---------------------------------------------------------------------------
// Message data shown

TEST_F(QueueCalls, ShowMaxLenPutZeroDumpsNoBytesAndSaysSo) {
  cb->Settings.ShowMaxLenPut = 0;
  OpenQueue("APP.IN");
  Message(100);
  PutB();
  EXPECT_EQ(
      OwnLines(),
      Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(), Pmo(),
           {"BufferLength:100", "Buffer:(0=x0 bytes)", "  (Shown only leading 0 byte(s) ...)"}));
}

TEST_F(QueueCalls, ShowMaxLenPutUnlimitedDumpsTheWholeMessage) {
  cb->Settings.ShowMaxLenPut = -1;
  OpenQueue("APP.IN");
  Message(100);
  PutB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(),
                             Pmo(), {"BufferLength:100"}, kHundredBytes));
  // ZKPUT1 the same.
  ObjectName("APP.IN");
  Put1B();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B"}, Od(), {"| ObjectName:APP.IN"}, Md(), Pmo(),
                             {"BufferLength:100"}, kHundredBytes));
}

TEST_F(QueueCalls, ShowMaxLenPutSixteenDumpsTheFirstSixteenBytes) {
  cb->Settings.ShowMaxLenPut = 16;
  cb->Settings.ShowMaxLenGet = 0; // the put's limit applies to puts
  OpenQueue("APP.IN");
  Message(100);
  PutB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(), Pmo(),
                 {"BufferLength:100", "Buffer:(16=x10 bytes)",
                  Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
                  "  (Shown only leading 16 byte(s) ...)"}));
  ObjectName("APP.IN");
  Put1B();
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
            (std::vector<std::string>{
                "Buffer:(16=x10 bytes)",
                Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
                "  (Shown only leading 16 byte(s) ...)"}));
}

// ---------------------------------------------------------------------------
// ZKGET and its data-conversion point

TEST_F(QueueCalls, DataConversionPointWritesNothingUnlessAsked) {
  cb->Settings.ShowDataConvOnGet = 0;
  OpenQueue("APP.IN");
  p->bufferLength = 64;
  GetB();
  capture.Clear();
  Message(30);
  p->bufferLength = 64;
  p->dataLength = 30;
  ConvB();
  EXPECT_EQ(capture.Take(), "");
  GetA();
  EXPECT_NE(capture.Take().find("<ZKGET\n"), std::string::npos);
}

TEST_F(QueueCalls, DataConversionPointWritesABeforeRecordWithCodesAndData) {
  cb->Settings.ShowDataConvOnGet = 1;
  cb->Settings.ShowMaxLenGet = 20;
  OpenQueue("APP.ALIAS", "APP.IN");
  p->gmo.Options = ZKGMO_WAIT | ZKGMO_ACCEPT_TRUNCATED_MSG;
  p->gmo.WaitInterval = 500;
  p->bufferLength = 30;
  GetB();
  capture.Clear();
  // The message is 40 bytes long; 30 of them are in the buffer.
  Message(30);
  p->dataLength = 40;
  compCode = ZKCC_WARNING;
  reason = ZKRC_TRUNCATED_MSG_ACCEPTED;
  ConvB();
  std::string text = capture.Text();
  std::vector<std::string> all = SplitTextLines(text);
  ASSERT_GE(all.size(), 5u) << text;
  EXPECT_EQ(all[0], "-");
  EXPECT_NE(text.find("\n<DATA_CONV_ON_GET\n(BEFORE\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("| API process time:"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(),
            Join({"CompCode:1", "Reason:2079", "Hconn:0x00001A2B", "Hobj:0x00000051",
                  "| ObjectName:APP.ALIAS", "| (real name):APP.IN"},
                 Md(), Gmo(ZKXR_BEFORE, ZKCC_WARNING),
                 {"WaitInterval:500", "DataLength:40", "Buffer:(20=x14 bytes)",
                  Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
                  Dump("00000010:51525354", "QRST"), "  (Shown only leading 20 byte(s) ...)"}));

  // No limit: what is in the buffer, not the message's length.
  cb->Settings.ShowMaxLenGet = -1;
  ConvB();
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
            (std::vector<std::string>{
                "Buffer:(30=x1E bytes)",
                Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
                Dump("00000010:51525354 55565758 595A4142 4344", "QRSTUVWXYZABCD")}));
}

TEST_F(QueueCalls, DataConversionPointOfAFailedCallHasNoDataLength) {
  cb->Settings.ShowDataConvOnGet = 1;
  OpenQueue("APP.IN");
  p->bufferLength = 30;
  GetB();
  capture.Clear();
  Message(30);
  p->dataLength = 30;
  compCode = ZKCC_FAILED;
  reason = ZKRC_NOT_CONVERTED;
  ConvB();
  EXPECT_EQ(OwnLines(), Join({"CompCode:2", "Reason:" + std::to_string(ZKRC_NOT_CONVERTED),
                              "Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"},
                             Md(), Gmo(ZKXR_BEFORE, ZKCC_FAILED)));
}

TEST_F(QueueCalls, DataConversionPointOfANotSelectedGetWritesNothing) {
  cb->Settings.ShowDataConvOnGet = 1;
  Target("APP.*", 1, 0);
  OpenQueue("APP.IN");
  GetB();
  Message(10);
  p->dataLength = 10;
  ConvB();
  GetA();
  EXPECT_EQ(capture.Take(), "");
}

TEST_F(QueueCalls, WaitIntervalIsShownOnlyWhenTheGetWaits) {
  OpenQueue("APP.IN");
  p->gmo.Options = ZKGMO_FAIL_IF_QUIESCING;
  p->gmo.WaitInterval = 5000;
  p->bufferLength = 256;
  GetB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(),
                             Gmo(ZKXR_BEFORE, ZKCC_OK), {"BufferLength:256"}));
  p->gmo.Options = ZKGMO_WAIT | ZKGMO_FAIL_IF_QUIESCING;
  GetB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(),
                             Gmo(ZKXR_BEFORE, ZKCC_OK), {"WaitInterval:5000", "BufferLength:256"}));
  // Waiting for ever.
  p->gmo.WaitInterval = ZKWI_UNLIMITED;
  GetB();
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[lines.size() - 2], "WaitInterval:-1");
}

TEST_F(QueueCalls, GetWithNoMessageShowsTheReasonAndNoData) {
  OpenQueue("APP.IN");
  p->gmo.Options = ZKGMO_WAIT;
  p->bufferLength = 64;
  GetB();
  capture.Clear();
  Message(64);
  p->bufferLength = 64;
  p->dataLength = 0;
  compCode = ZKCC_FAILED;
  reason = ZKRC_NO_MSG_AVAILABLE;
  GetA();
  std::string text = capture.Text();
  EXPECT_NE(text.find("CompCode:2\nReason:2033\n| Reason:ZKRC_NO_MSG_AVAILABLE\n"),
            std::string::npos)
      << text;
  std::vector<std::string> lines = OwnLines();
  EXPECT_EQ(lines, Join(Md(), Gmo(ZKXR_AFTER, ZKCC_FAILED)));
  EXPECT_FALSE(HasLine(lines, "DataLength:"));
  EXPECT_FALSE(HasLine(lines, "Buffer"));
  EXPECT_EQ(Counted(ZKXF_GET).ExpectedFailureCount, 1u);
}

TEST_F(QueueCalls, GetOfATruncatedMessageShowsItsLengthAndWhatTheBufferHolds) {
  OpenQueue("APP.IN");
  p->bufferLength = 16;
  GetB();
  capture.Clear();
  Message(16);
  p->bufferLength = 16;
  p->dataLength = 40;
  compCode = ZKCC_WARNING;
  reason = ZKRC_TRUNCATED_MSG_FAILED;
  GetA();
  EXPECT_EQ(OwnLines(),
            Join(Md(), Gmo(ZKXR_AFTER, ZKCC_WARNING),
                 {"DataLength:40", "Buffer:(16=x10 bytes)",
                  Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP")}));
  EXPECT_EQ(Counted(ZKXF_GET).WarningCount, 1u);

  // ShowMaxLenGet cuts further.
  cb->Settings.ShowMaxLenGet = 8;
  GetB();
  capture.Clear();
  GetA();
  EXPECT_EQ(OwnLines(), Join(Md(), Gmo(ZKXR_AFTER, ZKCC_WARNING),
                             {"DataLength:40", "Buffer:(8=x8 bytes)",
                              Dump("00000000:41424344 45464748", "ABCDEFGH"),
                              "  (Shown only leading 8 byte(s) ...)"}));
}

TEST_F(QueueCalls, GetShowsTheMessageReceived) {
  cb->Settings.ShowMaxLenGet = -1;
  OpenQueue("APP.IN");
  p->bufferLength = 256;
  GetB();
  capture.Clear();
  Message(100);
  p->bufferLength = 256;
  p->dataLength = 100;
  GetA();
  EXPECT_EQ(OwnLines(), Join(Md(), Gmo(ZKXR_AFTER, ZKCC_OK), {"DataLength:100"}, kHundredBytes));
}

// ---------------------------------------------------------------------------
// Counting of calls that are not selected

TEST_F(QueueCalls, CountSelectedCallsOnlyLeavesNotSelectedCallsUncounted) {
  cb->Settings.CountSelectedCallsOnly = 1;
  Target("APP.*", 1, 1);
  OpenQueue("OTHER.Q");
  Message(4);
  PutB();
  PutA();
  p->bufferLength = 16;
  GetB();
  GetA();
  ObjectName("APP.IN");
  Put1B();
  Put1A();
  CloseB();
  CloseA();
  EXPECT_EQ(capture.Take(), "");
  for (int32_t function : {ZKXF_OPEN, ZKXF_PUT, ZKXF_GET, ZKXF_PUT1, ZKXF_CLOSE}) {
    EXPECT_EQ(Counted(function).CallCount, 0u) << function;
  }

  // A selected queue is written and counted as usual.
  OpenQueue("APP.IN");
  PutB();
  PutA();
  EXPECT_NE(capture.Take().find("<ZKPUT\n"), std::string::npos);
  EXPECT_EQ(Counted(ZKXF_OPEN).CallCount, 1u);
  EXPECT_EQ(Counted(ZKXF_PUT).CallCount, 1u);
  EXPECT_EQ(Counted(ZKXF_PUT).TimedCalls, 1);
}

TEST_F(QueueCalls, NotSelectedCallsAreCountedWithoutTimeButNotWritten) {
  Target("APP.*", 1, 1);
  OpenQueue("OTHER.Q");
  Message(4);
  PutB();
  PutA();
  p->bufferLength = 16;
  GetB();
  compCode = ZKCC_FAILED;
  reason = ZKRC_NO_MSG_AVAILABLE;
  GetA();
  compCode = ZKCC_OK;
  reason = ZKRC_NONE;
  ObjectName("APP.IN");
  Put1B();
  Put1A();
  CloseB();
  CloseA();
  EXPECT_EQ(capture.Take(), "");
  for (int32_t function : {ZKXF_OPEN, ZKXF_PUT, ZKXF_GET, ZKXF_PUT1, ZKXF_CLOSE}) {
    EXPECT_EQ(Counted(function).CallCount, 1u) << function;
    EXPECT_EQ(Counted(function).TimedCalls, 0) << function;
  }
  EXPECT_EQ(Counted(ZKXF_PUT).OkCount, 1u);
  EXPECT_EQ(Counted(ZKXF_GET).ExpectedFailureCount, 1u);
  EXPECT_EQ(cb->Handles.HandleCount, 0);
}

// ---------------------------------------------------------------------------
// Summary-only mode

TEST_F(QueueCalls, SummaryOnlyWritesNothingBeforeAndOneLineAfter) {
  cb->Settings.ShowSummaryOnly = 1;
  ObjectName("APP.IN");
  OpenB();
  EXPECT_EQ(capture.Take(), "");
  p->hobj = kHobj;
  OpenA();
  std::vector<std::string> lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKOPEN  "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find("APP.IN"), std::string::npos) << lines[0];

  memset(p->md.MsgId, 0xAB, sizeof p->md.MsgId);
  std::string msgId;
  for (int i = 0; i < 24; i++) {
    msgId += "AB";
  }
  Message(100);
  PutB();
  EXPECT_EQ(capture.Take(), "");
  PutA();
  lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKPUT  "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(msgId + "       100"), std::string::npos) << lines[0];
  EXPECT_EQ(lines[0].find("Buffer"), std::string::npos) << lines[0];

  // ZKPUT1 passes its descriptor and the buffer length too.
  ObjectName("APP.IN");
  Message(12);
  Put1B();
  EXPECT_EQ(capture.Take(), "");
  Put1A();
  lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKPUT1  "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(msgId + "        12"), std::string::npos) << lines[0];

  p->bufferLength = 256;
  GetB();
  EXPECT_EQ(capture.Take(), "");
  cb->Settings.ShowDataConvOnGet = 1;
  ConvB();
  EXPECT_EQ(capture.Take(), "");
  p->dataLength = 37;
  GetA();
  lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKGET  "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(msgId + "        37"), std::string::npos) << lines[0];

  CloseB();
  EXPECT_EQ(capture.Take(), "");
  CloseA();
  lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKCLOSE  "), std::string::npos) << lines[0];
  EXPECT_EQ(lines[0].find(msgId), std::string::npos) << lines[0];
  for (int32_t function : {ZKXF_OPEN, ZKXF_PUT, ZKXF_PUT1, ZKXF_GET, ZKXF_CLOSE}) {
    EXPECT_EQ(Counted(function).CallCount, 1u) << function;
    EXPECT_EQ(Counted(function).TimedCalls, 1) << function;
  }
}

// ---------------------------------------------------------------------------
// ZKOPEN and ZKCLOSE records

TEST_F(QueueCalls, OpenBeforeShowsHandleDescriptorNameAndOptions) {
  ObjectName("APP.IN");
  p->options = ZKOO_INPUT_SHARED | ZKOO_OUTPUT | ZKOO_FAIL_IF_QUIESCING;
  OpenB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKOPEN\n(BEFORE\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B"}, Od(),
                             {"| ObjectName:APP.IN", "Options:0x00002012",
                              Field("Options", "INPUT_SHARED / OUTPUT / FAIL_IF_QUIESCING")}));
  p->hobj = kHobj;
  OpenA();
  EXPECT_EQ(OwnLines(), Join(Od(), {"| ObjectName:APP.IN", "Hobj:0x00000051"}));

  cb->Settings.ShowParsedData = 0;
  p->hobj = 0;
  OpenB();
  std::vector<std::string> lines = OwnLines();
  EXPECT_EQ(lines, Join({"Hconn:0x00001A2B"}, Od(), {"| ObjectName:APP.IN", "Options:0x00002012"}));
  EXPECT_FALSE(HasLine(lines, "|> Options"));
}

TEST_F(QueueCalls, CloseShowsHandlesNamesAndOptionsBeforeAndTheHandleAfter) {
  OpenQueue("APP.ALIAS", "APP.IN");
  p->options = ZKCO_DELETE;
  CloseB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKCLOSE\n(BEFORE\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.ALIAS",
                            "| (real name):APP.IN",
                            "Options:0x00000001",
                            Field("Options", "DELETE"),
                        }));
  EXPECT_EQ(cb->Handles.HandleCount, 0);
  p->hobj = 0;
  CloseA();
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hobj:0x00000000"});
  EXPECT_EQ(Counted(ZKXF_CLOSE).OkCount, 1u);

  // Without the parsed options; the handle is no longer known.
  cb->Settings.ShowParsedData = 0;
  p->hobj = kHobj;
  p->options = ZKCO_NONE;
  CloseB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:(unknown)",
                            "Options:0x00000000",
                        }));
}

// ---------------------------------------------------------------------------
// Missing parameters

TEST_F(QueueCalls, NullParameterAddressesLeaveTheirLinesOut) {
  PPZKOD noOd = nullptr;
  OpenBefore(Axp(ZKXF_OPEN, ZKXR_BEFORE), &axc, nullptr, noOd, nullptr, nullptr, &compCode,
             &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"| ObjectName:"});
  OpenAfter(Axp(ZKXF_OPEN, ZKXR_AFTER), &axc, nullptr, noOd, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"| ObjectName:"});
  // A descriptor pointer that is null itself.
  p->pOd = nullptr;
  OpenB();
  EXPECT_EQ(OwnLines(),
            (std::vector<std::string>{"Hconn:0x00001A2B", "| ObjectName:", "Options:0x00000000",
                                      Field("Options", "(none)")}));
  p->pOd = &p->od;

  OpenQueue("APP.IN");
  Message(8);
  // No descriptor, no buffer length: no MD dump, no length and no content.
  PutBefore(Axp(ZKXF_PUT, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, nullptr, &p->pPmo, nullptr,
            &p->pBuffer, &compCode, &reason);
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Pmo()));
  PutAfter(Axp(ZKXF_PUT, ZKXR_AFTER), &axc, &p->hconn, &p->hobj, nullptr, nullptr, nullptr, nullptr,
           &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});

  // A buffer that cannot be read: its dump holds no bytes.
  PutBefore(Axp(ZKXF_PUT, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, &p->pMd, &p->pPmo,
            &p->bufferLength, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(),
                             Pmo(), {"BufferLength:8", "Buffer:(0=x0 bytes)"}));
  p->pBuffer = nullptr;
  PutB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(),
                             Pmo(), {"BufferLength:8", "Buffer:(0=x0 bytes)"}));
  p->pBuffer = p->buffer;

  ObjectName("APP.IN");
  Put1Before(Axp(ZKXF_PUT1, ZKXR_BEFORE), &axc, &p->hconn, &p->pOd, nullptr, nullptr, nullptr,
             nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B"}, Od(), {"| ObjectName:APP.IN"}));
  Put1After(Axp(ZKXF_PUT1, ZKXR_AFTER), &axc, &p->hconn, nullptr, nullptr, nullptr, nullptr,
            nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"| ObjectName:APP.IN"});

  // ZKGET without descriptor, options, lengths or buffer.
  GetBefore(Axp(ZKXF_GET, ZKXR_BEFORE), &axc, nullptr, &p->hobj, nullptr, nullptr, nullptr, nullptr,
            nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"Hobj:0x00000051", "| ObjectName:APP.IN"}));
  GetAfter(Axp(ZKXF_GET, ZKXR_AFTER), &axc, nullptr, &p->hobj, nullptr, nullptr, nullptr, nullptr,
           nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
  // A data length pointer that is null itself: no length and no content.
  p->pDataLength = nullptr;
  p->bufferLength = 8;
  GetA();
  EXPECT_EQ(OwnLines(), Join(Md(), Gmo(ZKXR_AFTER, ZKCC_OK)));
  p->pDataLength = &p->dataLength;

  cb->Settings.ShowDataConvOnGet = 1;
  GetBefore(Axp(ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE), &axc, nullptr, &p->hobj, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"Hobj:0x00000051", "| ObjectName:APP.IN"}));

  CloseBefore(Axp(ZKXF_CLOSE, ZKXR_BEFORE), &axc, nullptr, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"| ObjectName:(unknown)"});
  CloseAfter(Axp(ZKXF_CLOSE, ZKXR_AFTER), &axc, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
}

// ---------------------------------------------------------------------------
// The handlers only look

TEST_F(QueueCalls, TheHandlersChangeNoParameter) {
  cb->Settings.ShowDataConvOnGet = 1;
  cb->Settings.ShowParsedMsgContent = 1;
  cb->Settings.ShowMaxLenPut = 10;
  p->options = ZKOO_OUTPUT | ZKOO_INPUT_SHARED;
  ObjectName("APP.MODEL");
  p->gmo.Options = ZKGMO_WAIT;
  p->gmo.WaitInterval = 100;
  memset(p->md.MsgId, 0x5A, sizeof p->md.MsgId);
  Message(100);
  p->dataLength = 100;
  p->hobj = kHobj;
  compCode = ZKCC_WARNING;
  reason = ZKRC_TRUNCATED_MSG_ACCEPTED;
  std::unique_ptr<QueueParms> copy = Copy();
  OpenB();
  OpenA();
  Put1B();
  Put1A();
  PutB();
  PutA();
  GetB();
  ConvB();
  GetA();
  CloseB();
  CloseA();
  EXPECT_NE(capture.Take().find("<ZKCLOSE\n"), std::string::npos);
  EXPECT_EQ(p->hconn, copy->hconn);
  EXPECT_EQ(p->hobj, copy->hobj);
  EXPECT_EQ(p->options, copy->options);
  EXPECT_EQ(p->bufferLength, copy->bufferLength);
  EXPECT_EQ(p->dataLength, copy->dataLength);
  EXPECT_EQ(p->pOd, &p->od);
  EXPECT_EQ(p->pHobj, &p->hobj);
  EXPECT_EQ(p->pMd, &p->md);
  EXPECT_EQ(p->pPmo, &p->pmo);
  EXPECT_EQ(p->pGmo, &p->gmo);
  EXPECT_EQ(p->pBuffer, (PZKVOID)p->buffer);
  EXPECT_EQ(p->pDataLength, &p->dataLength);
  EXPECT_SAME_BYTES(p->od, copy->od);
  EXPECT_SAME_BYTES(p->md, copy->md);
  EXPECT_SAME_BYTES(p->pmo, copy->pmo);
  EXPECT_SAME_BYTES(p->gmo, copy->gmo);
  EXPECT_SAME_BYTES(p->buffer, copy->buffer);
  EXPECT_EQ(compCode, ZKCC_WARNING);
  EXPECT_EQ(reason, ZKRC_TRUNCATED_MSG_ACCEPTED);
}
