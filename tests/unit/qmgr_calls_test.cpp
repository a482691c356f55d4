// The records of the connection and unit-of-work calls: the lines each
// handler writes after the header record (queue manager name, connection
// handle, connect and begin options), failed calls, summary-only mode, and
// connections that are not traced.
#include <gtest/gtest.h>

#include <string.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "handlers/handlers.h"
#include "handlers/short_dumps.h"
#include "tests/harness_text.h"
#include "tests/unit/handler_fixture.h"
#include "zk/zk.h"

namespace {

struct QMgrCalls : HandlerFixture {
  // What the short dumps write by themselves.
  std::string Cno(const ZKCNO *cno) {
    ShowZKCNO(cb, cno);
    return capture.Take();
  }
  std::string Bo(const ZKBO *bo) {
    ShowZKBO(cb, bo);
    return capture.Take();
  }
};

std::vector<std::string> Lines(const std::string &text) {
  return SplitTextLines(text);
}

} // namespace

// ---------------------------------------------------------------------------
// ZKCONN

TEST_F(QMgrCalls, ConnectNamesTheQueueManagerBeforeAndTheHandleAfter) {
  char name[48];
  SetBlankPadded(name, sizeof name, "ZKQM1");
  ZKCNO cno = ZKCNO_DEFAULT;
  PZKCNO pCno = &cno;
  ZKHCONN hconn = 0;
  PZKHCONN pHconn = &hconn;
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, name, &pCno, &pHconn, &compCode, &reason);
  std::string blanks(43, ' ');
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"QMgrName:ZKQM1" + blanks});
  hconn = 0x1A2B;
  ConnAfter(Axp(ZKXF_CONN, ZKXR_AFTER), &axc, name, &pCno, &pHconn, &compCode, &reason);
  // The connect options the queue manager builds for ZKCONN are not shown.
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0x00001A2B"});
}

TEST_F(QMgrCalls, FortyEightCharacterNameWithoutNulIsCutAt48WithItsTrailingBlanks) {
  // 40 characters, 8 blanks, and more bytes after the field, none a NUL.
  char name[64];
  memset(name, 'Z', sizeof name);
  memcpy(name, "QUEUE.MANAGER.WITH.A.LONG.NAME.0123456789", 40);
  memset(name + 40, ' ', 8);
  ZKHCONN hconn = 0;
  PZKHCONN pHconn = &hconn;
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, name, nullptr, &pHconn, &compCode, &reason);
  std::vector<std::string> lines = OwnLines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0], "QMgrName:" + std::string(name, 48));
  EXPECT_EQ(lines[0].size(), 9u + 48u);
  EXPECT_EQ(lines[0].substr(lines[0].size() - 8), std::string(8, ' '));
}

TEST_F(QMgrCalls, NameEndsEarlyAtANul) {
  char name[48];
  memset(name, 'X', sizeof name);
  memcpy(name, "QM2\0", 4);
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, name, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"QMgrName:QM2"});
  // The default queue manager: an empty name.
  char empty[48] = {0};
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, empty, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"QMgrName:"});
}

TEST_F(QMgrCalls, BytesThatAreNotTextCannotBreakTheNameLine) {
  char name[48];
  SetBlankPadded(name, sizeof name, "QM\nX\tY");
  name[10] = (char)0xC3;
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, name, nullptr, nullptr, &compCode, &reason);
  std::vector<std::string> lines = OwnLines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0], "QMgrName:QM.X.Y    ." + std::string(37, ' '));
}

TEST_F(QMgrCalls, FailedConnectShowsTheReasonByNameAndTheHandleReturned) {
  char name[48];
  SetBlankPadded(name, sizeof name, "NOSUCHQM");
  ZKHCONN hconn = ZKHC_UNUSABLE_HCONN;
  PZKHCONN pHconn = &hconn;
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, name, nullptr, &pHconn, &compCode, &reason);
  capture.Clear();
  compCode = ZKCC_FAILED;
  reason = ZKRC_Q_MGR_NAME_ERROR;
  ConnAfter(Axp(ZKXF_CONN, ZKXR_AFTER), &axc, name, nullptr, &pHconn, &compCode, &reason);
  std::string text = capture.Text();
  EXPECT_NE(text.find("CompCode:2\nReason:2058\n| Reason:ZKRC_Q_MGR_NAME_ERROR\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0xFFFFFFFF"});
}

TEST_F(QMgrCalls, HandleUnreadableGivesNoHandleLine) {
  ConnAfter(Axp(ZKXF_CONN, ZKXR_AFTER), &axc, nullptr, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
  PZKHCONN nullHandle = nullptr;
  ConnAfter(Axp(ZKXF_CONN, ZKXR_AFTER), &axc, nullptr, nullptr, &nullHandle, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, nullptr, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
}

// ---------------------------------------------------------------------------
// ZKCONNX

TEST_F(QMgrCalls, ConnectExtendedShowsTheConnectOptionsBeforeAndAfter) {
  char name[48];
  SetBlankPadded(name, sizeof name, "ZKQM1");
  ZKCNO cno = ZKCNO_DEFAULT;
  cno.Version = 5;
  ZKCSP csp = ZKCSP_DEFAULT;
  cno.SecurityParmsPtr = &csp;
  PZKCNO pCno = &cno;
  ZKHCONN hconn = 0;
  PZKHCONN pHconn = &hconn;
  ConnxBefore(Axp(ZKXF_CONNX, ZKXR_BEFORE), &axc, name, &pCno, &pHconn, &compCode, &reason);
  std::vector<std::string> before = OwnLines();
  EXPECT_EQ(before, Join({"QMgrName:ZKQM1" + std::string(43, ' ')}, Lines(Cno(&cno))));
  // What the queue manager returns in them shows after the call.
  memcpy(cno.ConnectionId, "ZKCNZKQM1   0001        ", 24);
  hconn = 7;
  ConnxAfter(Axp(ZKXF_CONNX, ZKXR_AFTER), &axc, name, &pCno, &pHconn, &compCode, &reason);
  std::vector<std::string> after = OwnLines();
  EXPECT_EQ(after, Join({"Hconn:0x00000007"}, Lines(Cno(&cno))));
  std::string shown;
  for (const std::string &line : after) {
    shown += line + "\n";
  }
  EXPECT_NE(shown.find("CNO:(188=xBC bytes)\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find("CNO->CSP:(48=x30 bytes)\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find("[ZKCNZKQM1   0001        ]"), std::string::npos) << shown;
}

TEST_F(QMgrCalls, ConnectExtendedWithoutConnectOptionsShowsTheNameOnly) {
  char name[48];
  SetBlankPadded(name, sizeof name, "ZKQM1");
  ConnxBefore(Axp(ZKXF_CONNX, ZKXR_BEFORE), &axc, name, nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines().size(), 1u);
  PZKCNO nullCno = nullptr;
  ConnxBefore(Axp(ZKXF_CONNX, ZKXR_BEFORE), &axc, name, &nullCno, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines().size(), 1u);
}

// ---------------------------------------------------------------------------
// ZKDISC, ZKBEGIN, ZKCMIT, ZKBACK

TEST_F(QMgrCalls, DisconnectShowsTheHandleBeforeAndAsTheQueueManagerSetIt) {
  ZKHCONN hconn = 0x00ABCDEF;
  PZKHCONN pHconn = &hconn;
  DiscBefore(Axp(ZKXF_DISC, ZKXR_BEFORE), &axc, &pHconn, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0x00ABCDEF"});
  hconn = ZKHC_UNUSABLE_HCONN;
  DiscAfter(Axp(ZKXF_DISC, ZKXR_AFTER), &axc, &pHconn, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0xFFFFFFFF"});
}

TEST_F(QMgrCalls, BeginShowsHandleAndOptionsBeforeAndOnlyTheOptionsAfter) {
  ZKHCONN hconn = 1;
  ZKBO bo = ZKBO_DEFAULT;
  PZKBO pBo = &bo;
  BeginBefore(Axp(ZKXF_BEGIN, ZKXR_BEFORE), &axc, &hconn, &pBo, &compCode, &reason);
  std::vector<std::string> before = OwnLines();
  EXPECT_EQ(before, Join({"Hconn:0x00000001"}, Lines(Bo(&bo))));
  EXPECT_EQ(before[1], "BO:(12=xC bytes)");
  compCode = ZKCC_WARNING;
  reason = ZKRC_NO_EXTERNAL_PARTICIPANTS;
  BeginAfter(Axp(ZKXF_BEGIN, ZKXR_AFTER), &axc, &hconn, &pBo, &compCode, &reason);
  std::vector<std::string> after = OwnLines();
  EXPECT_EQ(after, Lines(Bo(&bo)));
  for (const std::string &line : after) {
    EXPECT_EQ(line.find("Hconn"), std::string::npos) << line;
  }
}

TEST_F(QMgrCalls, BeginWithoutOptionsShowsTheHandleOnly) {
  ZKHCONN hconn = 1;
  PZKBO none = nullptr;
  BeginBefore(Axp(ZKXF_BEGIN, ZKXR_BEFORE), &axc, &hconn, &none, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0x00000001"});
  BeginAfter(Axp(ZKXF_BEGIN, ZKXR_AFTER), &axc, &hconn, &none, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
}

TEST_F(QMgrCalls, CommitAndBackoutAfterRecordsAreTheHeaderOnly) {
  ZKHCONN hconn = 0x7FFFFFFF;
  CmitBefore(Axp(ZKXF_CMIT, ZKXR_BEFORE), &axc, &hconn, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0x7FFFFFFF"});
  CmitAfter(Axp(ZKXF_CMIT, ZKXR_AFTER), &axc, &hconn, &compCode, &reason);
  std::string text = capture.Text();
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
  // The whole after-record: header lines only.
  std::vector<std::string> lines = Lines(text);
  ASSERT_EQ(lines.size(), 7u) << text;
  EXPECT_EQ(lines[0], "-");
  EXPECT_EQ(lines[2], "<ZKCMIT");
  EXPECT_EQ(lines[3], "(AFTER");
  EXPECT_EQ(lines[4], "CompCode:0");
  EXPECT_EQ(lines[5], "Reason:0");

  BackBefore(Axp(ZKXF_BACK, ZKXR_BEFORE), &axc, &hconn, &compCode, &reason);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{"Hconn:0x7FFFFFFF"});
  BackAfter(Axp(ZKXF_BACK, ZKXR_AFTER), &axc, &hconn, &compCode, &reason);
  text = capture.Text();
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
  lines = Lines(text);
  ASSERT_EQ(lines.size(), 7u) << text;
  EXPECT_EQ(lines[2], "<ZKBACK");
}

TEST_F(QMgrCalls, BeforeRecordsOpenASequenceNumber) {
  ZKHCONN hconn = 3;
  CmitBefore(Axp(ZKXF_CMIT, ZKXR_BEFORE), &axc, &hconn, &compCode, &reason);
  std::vector<std::string> lines = Lines(capture.Take());
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[1], "|--- Seq # : 1 ---------------------------------------");
  EXPECT_EQ(lines[3], "<ZKCMIT");
  EXPECT_EQ(lines[4], "(BEFORE");
  EXPECT_EQ(lines[5], "Hconn:0x00000003");
}

// ---------------------------------------------------------------------------
// Summary-only mode and connections not traced

TEST_F(QMgrCalls, SummaryOnlyWritesNothingBeforeAndOneLineAfter) {
  cb->Settings.ShowSummaryOnly = 1;
  char name[48];
  SetBlankPadded(name, sizeof name, "ZKQM1");
  ZKCNO cno = ZKCNO_DEFAULT;
  PZKCNO pCno = &cno;
  ZKHCONN hconn = 5;
  PZKHCONN pHconn = &hconn;
  ConnxBefore(Axp(ZKXF_CONNX, ZKXR_BEFORE), &axc, name, &pCno, &pHconn, &compCode, &reason);
  EXPECT_EQ(capture.Take(), "");
  usleep(40000);
  ConnxAfter(Axp(ZKXF_CONNX, ZKXR_AFTER), &axc, name, &pCno, &pHconn, &compCode, &reason);
  std::string text = capture.Take();
  std::vector<std::string> lines = Lines(text);
  ASSERT_EQ(lines.size(), 1u) << text;
  size_t at = lines[0].find("  ZKCONNX      0    0 ");
  ASSERT_NE(at, std::string::npos) << lines[0];
  EXPECT_EQ(text.find("Hconn:"), std::string::npos);
  EXPECT_EQ(text.find("CNO:"), std::string::npos);
  // Its time is the time since the before-call.
  std::istringstream fields(lines[0].substr(at));
  std::string function;
  int compCodeShown = -1, reasonShown = -1;
  double seconds = -1;
  fields >> function >> compCodeShown >> reasonShown >> seconds;
  EXPECT_GE(seconds, 0.04) << lines[0];
  EXPECT_LT(seconds, 10.0) << lines[0];

  ZKBO bo = ZKBO_DEFAULT;
  PZKBO pBo = &bo;
  BeginBefore(Axp(ZKXF_BEGIN, ZKXR_BEFORE), &axc, &hconn, &pBo, &compCode, &reason);
  EXPECT_EQ(capture.Take(), "");
  BeginAfter(Axp(ZKXF_BEGIN, ZKXR_AFTER), &axc, &hconn, &pBo, &compCode, &reason);
  lines = Lines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKBEGIN  "), std::string::npos) << lines[0];
}

TEST_F(QMgrCalls, ConnectionNotTracedWritesNothing) {
  cb->ExecStatus = 0;
  char name[48];
  SetBlankPadded(name, sizeof name, "ZKQM1");
  ZKHCONN hconn = 5;
  PZKHCONN pHconn = &hconn;
  ZKBO bo = ZKBO_DEFAULT;
  PZKBO pBo = &bo;
  ConnBefore(Axp(ZKXF_CONN, ZKXR_BEFORE), &axc, name, nullptr, &pHconn, &compCode, &reason);
  ConnAfter(Axp(ZKXF_CONN, ZKXR_AFTER), &axc, name, nullptr, &pHconn, &compCode, &reason);
  BeginBefore(Axp(ZKXF_BEGIN, ZKXR_BEFORE), &axc, &hconn, &pBo, &compCode, &reason);
  BeginAfter(Axp(ZKXF_BEGIN, ZKXR_AFTER), &axc, &hconn, &pBo, &compCode, &reason);
  DiscBefore(Axp(ZKXF_DISC, ZKXR_BEFORE), &axc, &pHconn, &compCode, &reason);
  DiscAfter(Axp(ZKXF_DISC, ZKXR_AFTER), &axc, &pHconn, &compCode, &reason);
  EXPECT_EQ(capture.Take(), "");
}

TEST_F(QMgrCalls, TheHandlersChangeNoParameter) {
  char name[48];
  SetBlankPadded(name, sizeof name, "ZKQM1");
  char nameBefore[48];
  memcpy(nameBefore, name, sizeof name);
  ZKCNO cno = ZKCNO_DEFAULT;
  cno.Version = 2;
  ZKCD cd = ZKCD_DEFAULT;
  cno.ClientConnPtr = &cd;
  ZKCNO cnoBefore = cno;
  ZKCD cdBefore = cd;
  PZKCNO pCno = &cno;
  ZKHCONN hconn = 9;
  PZKHCONN pHconn = &hconn;
  compCode = ZKCC_WARNING;
  reason = 2121;
  ConnxBefore(Axp(ZKXF_CONNX, ZKXR_BEFORE), &axc, name, &pCno, &pHconn, &compCode, &reason);
  ConnxAfter(Axp(ZKXF_CONNX, ZKXR_AFTER), &axc, name, &pCno, &pHconn, &compCode, &reason);
  EXPECT_SAME_BYTES(name, nameBefore);
  EXPECT_SAME_BYTES(cno, cnoBefore);
  EXPECT_SAME_BYTES(cd, cdBefore);
  EXPECT_EQ(pCno, &cno);
  EXPECT_EQ(pHconn, &hconn);
  EXPECT_EQ(hconn, 9);
  EXPECT_EQ(compCode, ZKCC_WARNING);
  EXPECT_EQ(reason, 2121);
  EXPECT_NE(capture.Take().find("CNO->CD:(1876=x754 bytes)\n"), std::string::npos);
}
