// The records of the transaction-manager calls: the XID dumped at the length
// its layout and lengths give, rmid and flags with their names, xa_info,
// the handle and retval of xa_complete, the XIDs of xa_recover and ax_reg,
// the return code by name, and the one-line records of summary-only mode.
#include <gtest/gtest.h>

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "handlers/handlers.h"
#include "handlers/xa_fields.h"
#include "tests/harness_text.h"
#include "tests/unit/handler_fixture.h"
#include "zk/zk.h"
#include "zk/zkxa.h"

namespace {

const ZKHCONN kXaHconn = 0x2A;

// The transaction-manager calls pass one return code in place of a
// completion code and reason.
struct XaCalls : HandlerFixture {
  ZKHCONN hconn = kXaHconn;
  ZKLONG rmid = 7;
  ZKLONG flags = 0;
  ZKLONG rc = 0;

  // The header record, up to its process time.
  std::vector<std::string> Header() {
    std::vector<std::string> lines = SplitTextLines(capture.Take());
    std::vector<std::string> header;
    for (const std::string &line : lines) {
      if (line.compare(0, 19, "| API process time:") == 0) {
        break;
      }
      header.push_back(line);
    }
    return header;
  }
};

ZKXID32 Xid32(int32_t format, const char *gtrid, const char *bqual) {
  ZKXID32 xid = ZKXID32_DEFAULT;
  xid.formatID = format;
  xid.gtrid_length = (ZKLONG)strlen(gtrid);
  xid.bqual_length = (ZKLONG)strlen(bqual);
  memcpy(xid.data, gtrid, strlen(gtrid));
  memcpy(xid.data + strlen(gtrid), bqual, strlen(bqual));
  return xid;
}

ZKXID64 Xid64(int64_t format, const char *gtrid, const char *bqual) {
  ZKXID64 xid = ZKXID64_DEFAULT;
  xid.formatID = format;
  xid.gtrid_length = (ZKINT64)strlen(gtrid);
  xid.bqual_length = (ZKINT64)strlen(bqual);
  memcpy(xid.data, gtrid, strlen(gtrid));
  memcpy(xid.data + strlen(gtrid), bqual, strlen(bqual));
  return xid;
}

} // namespace

// ---------------------------------------------------------------------------
// The XID

TEST_F(XaCalls, Xid32WithTenAndFourBytesDumps26Bytes) {
  ZKXID32 xid = Xid32(5, "GTRID-0001", "BQ01");
  EXPECT_EQ(XaShowXid(cb, &xid), ZKXID32_LENGTH);
  EXPECT_EQ(capture.Take(), "xid:(26=x1A bytes)\n"
                            "00000000:05000000 0A000000 04000000 47545249  [............GTRI]\n"
                            "00000010:442D3030 30314251 3031               [D-0001BQ01]\n");
}

TEST_F(XaCalls, WordsOfTwentyAndZeroAtEightAndSixteenMeanThe64BitLayout) {
  ZKXID64 xid = Xid64(5, "GTRID-0001-ABCDEFGHIJ", "");
  xid.gtrid_length = 20;
  EXPECT_EQ(XaShowXid(cb, &xid), ZKXID64_LENGTH);
  std::string text = capture.Take();
  EXPECT_EQ(text.rfind("xid:(44=x2C bytes)\n", 0), 0u) << text;
}

TEST_F(XaCalls, Xid32LengthsBeyondTheXidDumpTheWholeXid) {
  ZKXID32 xid = Xid32(5, "G", "B");
  xid.gtrid_length = 100;
  xid.bqual_length = 100;
  EXPECT_EQ(XaShowXid(cb, &xid), ZKXID32_LENGTH);
  EXPECT_EQ(capture.Take().rfind("xid:(140=x8C bytes)\n", 0), 0u);
  xid.gtrid_length = -5000;
  xid.bqual_length = 3;
  XaShowXid(cb, &xid);
  EXPECT_EQ(capture.Take().rfind("xid:(15=xF bytes)\n", 0), 0u);
}

TEST_F(XaCalls, NullXidIsAnEmptyDumpOfNoSize) {
  EXPECT_EQ(XaShowXid(cb, nullptr), 0);
  EXPECT_EQ(capture.Take(), "xid:(0=x0 bytes)\n");
}

// ---------------------------------------------------------------------------
// Flags

TEST_F(XaCalls, FlagsZeroAreTmnoflags) {
  ShowXaFlags(cb, &flags);
  EXPECT_EQ(
      SplitTextLines(capture.Take()),
      (std::vector<std::string>{"flags:0x00000000", "|> flags                    : TMNOFLAGS"}));
}

TEST_F(XaCalls, FlagsAreNamedFromTheHighestBitAndLowBitsAreLeftOut) {
  flags = (int32_t)(0x80000000u | 0x40000000u | 0x04000000u | 0x00200000u | 0x00100000u | 0x1u);
  ShowXaFlags(cb, &flags);
  EXPECT_EQ(
      SplitTextLines(capture.Take()),
      (std::vector<std::string>{
          "flags:0xC4300001",
          "|> flags                    : TMASYNC / TMONEPHASE / TMSUCCESS / TMJOIN / TMMIGRATE"}));
  flags = 0x2;
  ShowXaFlags(cb, &flags);
  EXPECT_EQ(
      SplitTextLines(capture.Take()),
      (std::vector<std::string>{"flags:0x00000002", "|> flags                    : TMNOFLAGS"}));
}

TEST_F(XaCalls, WithoutParsedDataOnlyTheHexLine) {
  cb->Settings.ShowParsedData = 0;
  flags = 0x04000000;
  ShowXaFlags(cb, &flags);
  EXPECT_EQ(capture.Take(), "flags:0x04000000\n");
}

// ---------------------------------------------------------------------------
// The records

TEST_F(XaCalls, OpenWithNullXaInfoShowsNullOnTheSameLine) {
  PZKCHAR info = nullptr;
  XaOpenBefore(Axp(ZKXF_XAOPEN, ZKXR_BEFORE), &axc, &hconn, &info, &rmid, &flags, &rc);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"Hconn:0x0000002A", "xa_info:(null)", "rmid:7",
                                                  "flags:0x00000000",
                                                  "|> flags                    : TMNOFLAGS"}));
}

TEST_F(XaCalls, OpenShowsTheXaInfoStringQuoted) {
  char text[] = "zkqm rm\nline two";
  PZKCHAR info = text;
  rmid = -1;
  XaCloseBefore(Axp(ZKXF_XACLOSE, ZKXR_BEFORE), &axc, &hconn, &info, &rmid, &flags, &rc);
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[1], "xa_info:\"zkqm rm.line two\"");
  EXPECT_EQ(lines[2], "rmid:4294967295");
}

TEST_F(XaCalls, StartShowsXidRmidAndFlags) {
  ZKXID32 xid = Xid32(5, "GTRID-0001", "BQ01");
  ZKPTR pXid = &xid;
  flags = 0x00200000;
  XaStartBefore(Axp(ZKXF_XASTART, ZKXR_BEFORE), &axc, &hconn, &pXid, &rmid, &flags, &rc);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x0000002A", "xid:(26=x1A bytes)",
                            "00000000:05000000 0A000000 04000000 47545249  [............GTRI]",
                            "00000010:442D3030 30314251 3031               [D-0001BQ01]", "rmid:7",
                            "flags:0x00200000", "|> flags                    : TMJOIN"}));
  XaStartAfter(Axp(ZKXF_XASTART, ZKXR_AFTER), &axc, &hconn, &pXid, &rmid, &flags, &rc);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
}

TEST_F(XaCalls, NegativeReturnCodeIsNamedFromTheXaTable) {
  ZKXID32 xid = Xid32(5, "G", "B");
  ZKPTR pXid = &xid;
  rc = -4; // XAER_NOTA
  XaCommitAfter(Axp(ZKXF_XACOMMIT, ZKXR_AFTER), &axc, &hconn, &pXid, &rmid, &flags, &rc);
  std::vector<std::string> header = Header();
  ASSERT_GE(header.size(), 2u);
  EXPECT_EQ(header[header.size() - 2], "XA return value:-4");
  EXPECT_EQ(header.back(), "| XA return value:XAER_NOTA");
}

TEST_F(XaCalls, CompleteShowsHandleAndRetvalBeforeAndAfter) {
  ZKLONG handle = 12, retval = 0;
  PZKLONG pHandle = &handle, pRetval = &retval;
  XaCompleteBefore(Axp(ZKXF_XACOMPLETE, ZKXR_BEFORE), &axc, &hconn, &pHandle, &pRetval, &rmid,
                   &flags, &rc);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"Hconn:0x0000002A", "handle:12", "retval:0",
                                                  "rmid:7", "flags:0x00000000",
                                                  "|> flags                    : TMNOFLAGS"}));
  retval = 3;
  XaCompleteAfter(Axp(ZKXF_XACOMPLETE, ZKXR_AFTER), &axc, &hconn, &pHandle, &pRetval, &rmid, &flags,
                  &rc);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"handle:12", "retval:3"}));
}

TEST_F(XaCalls, RecoverOfThreeXidsIn64BitLayoutDumpsThreeXids152BytesApart) {
  ZKXID64 xids[4] = {Xid64(5, "GTRID-A", "1"), Xid64(5, "GTRID-BB", "22"),
                     Xid64(5, "GTRID-CCC", "333"), Xid64(5, "NOT-SHOWN", "4")};
  ZKPTR pXids = xids;
  ZKLONG count = 4;
  flags = 0x01000000;
  XaRecoverBefore(Axp(ZKXF_XARECOVER, ZKXR_BEFORE), &axc, &hconn, &pXids, &count, &rmid, &flags,
                  &rc);
  EXPECT_EQ(OwnLines(),
            (std::vector<std::string>{"Hconn:0x0000002A", "handle:4", "rmid:7", "flags:0x01000000",
                                      "|> flags                    : TMSTARTRSCAN"}));
  rc = 3;
  XaRecoverAfter(Axp(ZKXF_XARECOVER, ZKXR_AFTER), &axc, &hconn, &pXids, &count, &rmid, &flags, &rc);
  std::string text = capture.Text();
  EXPECT_NE(text.find("Total number of XIDs:3\n"), std::string::npos) << text;
  std::vector<std::string> lines = OwnLines();
  std::vector<std::string> titles;
  for (const std::string &line : lines) {
    if (line.compare(0, 4, "xid:") == 0) {
      titles.push_back(line);
    }
  }
  EXPECT_EQ(titles, (std::vector<std::string>{"xid:(32=x20 bytes)", "xid:(34=x22 bytes)",
                                              "xid:(36=x24 bytes)"}));
  EXPECT_EQ(text.find("NOT-SHOWN"), std::string::npos);
  EXPECT_NE(text.find("  [C333]\n"), std::string::npos) << text;
}

TEST_F(XaCalls, RecoverShowsNoMoreXidsThanTheArrayHoldsAndNoneOnError) {
  ZKXID32 xids[2] = {Xid32(5, "A", "1"), Xid32(5, "B", "2")};
  ZKPTR pXids = xids;
  ZKLONG count = 2;
  rc = 5;
  XaRecoverAfter(Axp(ZKXF_XARECOVER, ZKXR_AFTER), &axc, &hconn, &pXids, &count, &rmid, &flags, &rc);
  std::vector<std::string> lines = OwnLines();
  int dumps = 0;
  for (const std::string &line : lines) {
    dumps += line.compare(0, 4, "xid:") == 0;
  }
  EXPECT_EQ(dumps, 2);
  rc = -5; // XAER_INVAL
  XaRecoverAfter(Axp(ZKXF_XARECOVER, ZKXR_AFTER), &axc, &hconn, &pXids, &count, &rmid, &flags, &rc);
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
}

TEST_F(XaCalls, AxRegHasNoHandleLineAndShowsTheXidItReturns) {
  ZKXID64 xid = ZKXID64_DEFAULT;
  ZKPTR pXid = &xid;
  AxRegBefore(Axp(ZKXF_AXREG, ZKXR_BEFORE), &axc, &hconn, &rmid, &pXid, &flags, &rc);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"rmid:7", "flags:0x00000000",
                                                  "|> flags                    : TMNOFLAGS"}));
  xid = Xid64(5, "GTRID-R", "B");
  AxRegAfter(Axp(ZKXF_AXREG, ZKXR_AFTER), &axc, &hconn, &rmid, &pXid, &flags, &rc);
  std::vector<std::string> lines = OwnLines();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0], "xid:(32=x20 bytes)");
  AxUnregBefore(Axp(ZKXF_AXUNREG, ZKXR_BEFORE), &axc, &hconn, &rmid, &flags, &rc);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{"rmid:7", "flags:0x00000000",
                                                  "|> flags                    : TMNOFLAGS"}));
}

TEST_F(XaCalls, SummaryOnlyLineCarriesTheTransactionCallsOwnName) {
  cb->Settings.ShowSummaryOnly = 1;
  cb->Call.CurrentFunction = ZKXF_CONN;
  PZKCHAR info = nullptr;
  XaOpenBefore(Axp(ZKXF_XAOPEN, ZKXR_BEFORE), &axc, &hconn, &info, &rmid, &flags, &rc);
  EXPECT_EQ(capture.Take(), "");
  XaOpenAfter(Axp(ZKXF_XAOPEN, ZKXR_AFTER), &axc, &hconn, &info, &rmid, &flags, &rc);
  std::string line = capture.Take();
  EXPECT_NE(line.find("  xa_open    "), std::string::npos) << line;
  EXPECT_EQ(line.find("ZKCONN"), std::string::npos) << line;
  // The ZKI call the transaction call came inside keeps its function.
  EXPECT_EQ(cb->Call.CurrentFunction, ZKXF_CONN);
}

TEST_F(XaCalls, EachCallReadsTheClockAfresh) {
  // A reading left over from an earlier exit call (the epoch here) is not
  // reused: these calls have no pre-processing to start a new one.
  cb->Clock.CallTime.tv_sec = 0;
  cb->Clock.CallTime.tv_usec = 0;
  cb->Clock.CallTimeRead = 1;
  PZKCHAR info = nullptr;
  XaOpenBefore(Axp(ZKXF_XAOPEN, ZKXR_BEFORE), &axc, &hconn, &info, &rmid, &flags, &rc);
  std::string text = capture.Take();
  EXPECT_EQ(text.find("[1970/"), std::string::npos) << text;
  EXPECT_NE(cb->Clock.XaBeforeTime.tv_sec, 0);
  cb->Clock.CallTime.tv_sec = 0;
  cb->Clock.CallTimeRead = 1;
  XaOpenAfter(Axp(ZKXF_XAOPEN, ZKXR_AFTER), &axc, &hconn, &info, &rmid, &flags, &rc);
  text = capture.Take();
  EXPECT_EQ(text.find("[1970/"), std::string::npos) << text;
  EXPECT_EQ(text.find("| API process time:-"), std::string::npos) << text;
}

TEST_F(XaCalls, TheHandlersChangeNoParameter) {
  ZKXID32 xid = Xid32(5, "GTRID-0001", "BQ01");
  ZKXID32 copy = xid;
  ZKPTR pXid = &xid;
  ZKLONG r = rmid, f = flags, c = rc;
  XaEndBefore(Axp(ZKXF_XAEND, ZKXR_BEFORE), &axc, &hconn, &pXid, &rmid, &flags, &rc);
  XaEndAfter(Axp(ZKXF_XAEND, ZKXR_AFTER), &axc, &hconn, &pXid, &rmid, &flags, &rc);
  EXPECT_SAME_BYTES(xid, copy);
  EXPECT_EQ(pXid, (ZKPTR)&xid);
  EXPECT_EQ(rmid, r);
  EXPECT_EQ(flags, f);
  EXPECT_EQ(rc, c);
  EXPECT_EQ(hconn, kXaHconn);
}
