// The exit's own debug output: the file's name, the form of its lines, the
// dumps with their length line and collapsed runs, a link at the file's
// name, and the lines the dispatcher, the handle list and the handlers
// write when debugging is on (and that nothing is written when it is off).
#include <gtest/gtest.h>

#include <pthread.h>
#include <regex>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "exit/debug_output.h"
#include "exit/handle_list.h"
#include "handlers/handlers.h"
#include "tests/harness_text.h"
#include "tests/unit/handler_fixture.h"
#include "tests/unit/test_support.h"
#include "zk/zk.h"

namespace {

// Debugging on, the debug file in a directory of its own; a handler
// fixture, so that the lines the handlers write can be checked too.
struct DebugOutput : HandlerFixture {
  TempDir dir;

  void SetUp() override {
    HandlerFixture::SetUp();
    snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/", dir.Path().c_str());
    cb->Identity.ZkaxcThreadId = 7;
    cb->Debug = 1;
  }

  std::string FileName() const {
    return "wz_apiexit_debug_" + std::to_string(getpid()) + "_7_" +
           std::to_string((unsigned)pthread_self()) + ".txt";
  }

  // The lines of the debug file, each without its time stamp and source
  // part (up to and including the first tab).
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const std::string &line : SplitTextLines(dir.Read(FileName()))) {
      size_t tab = line[0] == '*' ? line.find('\t') : std::string::npos;
      lines.push_back(tab == std::string::npos ? line : line.substr(tab + 1));
    }
    return lines;
  }
};

} // namespace

TEST_F(DebugOutput, FileIsNamedByDirectoryProcessContextThreadAndThread) {
  char path[256];
  ASSERT_GT(DebugFileName(cb, path, sizeof path), 0);
  EXPECT_EQ(std::string(path), dir.Path() + "/" + FileName());
  ASSERT_GT(DebugFileName(nullptr, path, sizeof path), 0);
  EXPECT_EQ(std::string(path), "wz_apiexit_debug_" + std::to_string(getpid()) + "_0_" +
                                   std::to_string((unsigned)pthread_self()) + ".txt");
  char small[10];
  EXPECT_EQ(DebugFileName(cb, small, sizeof small), -1);
}

TEST_F(DebugOutput, LineHasStampSourceLabelAndValue) {
  debugString(cb, "Function ", "ConnBefore return 3", "dispatch.cpp", 145);
  std::string text = dir.Read(FileName());
  std::regex form(
      R"(\*\d{8} \d{6}\.\d{6}  \(dispatch\.cpp 145\)\tFunction :\tConnBefore return 3\n)");
  EXPECT_TRUE(std::regex_match(text, form)) << text;
}

TEST_F(DebugOutput, EveryValueForm) {
  debugTitle(cb, "title", "u", 1);
  debugInteger(cb, "int", -5, "u", 2);
  debugUnsignedInteger(cb, "uint", 4000000000u, "u", 3);
  debugInt64(cb, "i64", -9000000000LL, "u", 4);
  debugUnsignedInt64(cb, "u64", 18000000000000000000ULL, "u", 5);
  debugDouble(cb, "double", 1.5, "u", 6);
  debugFixedLenChar(cb, "chars", "ab\0c", 4, "u", 7);
  debugFixedLenChar(cb, "none", "abc", 0, "u", 8);
  debugHexShort(cb, "hex", "\x01\xAB\xff", 3, "u", 9);
  EXPECT_EQ(Lines(), (std::vector<std::string>{
                         "title:\t", "int:\t-5", "uint:\t4000000000", "i64:\t-9000000000",
                         "u64:\t18000000000000000000", "double:\t1.500000",
                         std::string("chars:\tab\0c", 11), "none:\t", "hex:\t01ABFF"}));
}

TEST_F(DebugOutput, FortyByteDumpHasALengthLineAndThreeLines) {
  unsigned char bytes[40];
  for (int i = 0; i < 40; i++) {
    bytes[i] = (unsigned char)('A' + i % 26);
  }
  bytes[3] = 0;
  debugHexLong(cb, "dump", bytes, 40, "u", 1);
  EXPECT_EQ(Lines(), (std::vector<std::string>{
                         "dump:\t(40 = 0x28 bytes)",
                         "00000000: 41424300 45464748 494A4B4C 4D4E4F50   [ABC.EFGHIJKLMNOP]",
                         "00000010: 51525354 55565758 595A4142 43444546   [QRSTUVWXYZABCDEF]",
                         "00000020: 4748494A 4B4C4D4E                     [GHIJKLMN]"}));
}

TEST_F(DebugOutput, SixtyFourZeroBytesGiveOneLineAndOneSameAsAbove) {
  unsigned char zeros[64] = {};
  debugHexLong(cb, "zeros", zeros, 64, "u", 1);
  EXPECT_EQ(Lines(), (std::vector<std::string>{
                         "zeros:\t(64 = 0x40 bytes)",
                         "00000000: 00000000 00000000 00000000 00000000   [................]",
                         "00000010-0000003F same as above"}));
}

TEST_F(DebugOutput, ARunEndsAtTheFirstDifferentLine) {
  unsigned char bytes[72];
  memset(bytes, 'x', sizeof bytes);
  bytes[50] = 'y';
  debugHexLong(cb, "run", bytes, 72, "u", 1);
  EXPECT_EQ(Lines(), (std::vector<std::string>{
                         "run:\t(72 = 0x48 bytes)",
                         "00000000: 78787878 78787878 78787878 78787878   [xxxxxxxxxxxxxxxx]",
                         "00000010-0000002F same as above",
                         "00000030: 78787978 78787878 78787878 78787878   [xxyxxxxxxxxxxxxx]",
                         "00000040: 78787878 78787878                     [xxxxxxxx]"}));
}

TEST_F(DebugOutput, ALinkAtTheFileNameIsNotFollowed) {
  std::string target = dir.File("target.txt");
  dir.Write("target.txt", "untouched\n");
  ASSERT_EQ(symlink(target.c_str(), dir.File(FileName()).c_str()), 0);
  debugString(cb, "label", "value", "u", 1);
  EXPECT_EQ(dir.Read("target.txt"), "untouched\n");
}

TEST_F(DebugOutput, AnUnwritableDirectoryLosesTheLineQuietly) {
  snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "/nonexistent-dir/");
  debugString(cb, "label", "value", "u", 1);
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(DebugOutput, TheMacrosWriteNothingWithoutTheFlag) {
  cb->Debug = 0;
  DEBUG_STRING(cb, "label", "value");
  DEBUG_INTEGER(cb, "label", 1);
  DEBUG_TITLE(cb, "label");
  EXPECT_TRUE(dir.List().empty());
  cb->Debug = 1;
  DEBUG_STRING(cb, "label", "value");
  EXPECT_EQ(Lines(), std::vector<std::string>{"label:\tvalue"});
}

TEST_F(DebugOutput, HandlersWriteTheirNameAndExitPath) {
  ZKHCONN hconn = 1;
  CmitBefore(Axp(ZKXF_CMIT, ZKXR_BEFORE), &axc, &hconn, &compCode, &reason);
  cb->ExecStatus = 0;
  CmitAfter(Axp(ZKXF_CMIT, ZKXR_AFTER), &axc, &hconn, &compCode, &reason);
  cb->ExecStatus = 1;
  cb->Settings.ShowSummaryOnly = 1;
  CmitBefore(Axp(ZKXF_CMIT, ZKXR_BEFORE), &axc, &hconn, &compCode, &reason);
  EXPECT_EQ(Lines(), (std::vector<std::string>{
                         "Function :\tZKCMIT   - BEFORE", "Function :\tCmitBefore return 3",
                         "Function :\tZKCMIT   - AFTER", "Function :\tCmitAfter return 1",
                         "Function :\tZKCMIT   - BEFORE", "Function :\tCmitBefore return 2"}));
}

TEST_F(DebugOutput, TransactionCallsWriteStartAndEnd) {
  ZKHCONN hconn = 1;
  ZKLONG rmid = 1, flags = 0, rc = 0;
  ZKPTR xid = nullptr;
  XaCommitBefore(Axp(ZKXF_XACOMMIT, ZKXR_BEFORE), &axc, &hconn, &xid, &rmid, &flags, &rc);
  EXPECT_EQ(Lines(), (std::vector<std::string>{"Function :\txa_commit (before) start",
                                               "Function :\txa_commit (before) end"}));
}

TEST_F(DebugOutput, TheHandleListIsListedWhenItChanges) {
  queueHandleListAddEntry(cb, "APP.IN", 1, 1, 1, 1, 1, 1);
  queueHandleListSetHandleToLastEntry(cb, 0x65, "APP.IN", nullptr);
  queueHandleListDeleteEntry(cb, 0);
  EXPECT_EQ(Lines(),
            (std::vector<std::string>{"add entry to handle list:\t", "handle list entry table:\t0",
                                      "handle (int):\t101", "handle (hex):\t65000000",
                                      "object name :\tAPP.IN", "delete entry to handle list:\t"}));
}
