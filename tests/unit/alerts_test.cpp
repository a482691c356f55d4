#include <gtest/gtest.h>

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <regex>
#include <string>

#include "exit/alerts.h"
#include "output/commands.h"
#include "exit/control_block.h"
#include "exit/message_tables.h"
#include "tests/unit/alerts_fixture.h"
#include "tests/unit/test_support.h"

namespace {

const char *kStamp = R"(\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\.\d{6})";

} // namespace

TEST_F(AlertsTest, TemplateWithoutPlaceholdersGetsPrefixAndTime) {
  PutMessage<2101>(cb, 0);
  std::regex expected(std::string("^") + kStamp +
                      R"(  \[payroll\] \(77\.88\) Msg2101: Path name must be specified as Data )"
                      R"(attribute of ApiExitLocal stanza in qm\.ini file\.\n$)");
  EXPECT_TRUE(std::regex_match(ErrorFile(), expected)) << ErrorFile();
}

TEST_F(AlertsTest, UnknownNumberSaysSo) {
  PutMessageArguments(cb, 4711, 0, nullptr, 0);
  EXPECT_NE(ErrorFile().find(") Msg4711: (Unknown message id)\n"), std::string::npos)
      << ErrorFile();
}

TEST_F(AlertsTest, ErrorNumberZeroIsNoError) {
  PutMessage<1010>(cb, 0);
  EXPECT_NE(ErrorFile().find("Msg1010: No more memory is available.  NO_ERROR (0)\n"),
            std::string::npos)
      << ErrorFile();
}

TEST_F(AlertsTest, MinusOneTakesErrno) {
  errno = ENOENT;
  PutMessage<1002>(cb, -1, "popen \"x\"");
  EXPECT_NE(
      ErrorFile().find("Msg1002: System call error.  Function : popen \"x\"   Result : ENOENT "
                       "- No such file or directory (2).\n"),
      std::string::npos)
      << ErrorFile();
  EXPECT_EQ(errno, ENOENT); // the caller's errno is left as it was
}

TEST_F(AlertsTest, PlaceholdersTakeArgumentsInOrderByKind) {
  PutMessage<1021>(cb, 0, "ZKXEP", (int32_t)2, (int32_t)2298, "ZKRC_FUNCTION_NOT_SUPPORTED", "a",
                   "b", "c");
  EXPECT_NE(ErrorFile().find("Msg1021: ZK API error. Function:ZKXEP CompCode:2 Reason:2298 "
                             "(ZKRC_FUNCTION_NOT_SUPPORTED)  Parms: a b c\n"),
            std::string::npos)
      << ErrorFile();
}

TEST_F(AlertsTest, UnsignedAndHexPlaceholders) {
  PutMessage<3100>(cb, 0, "ZKMD", (uint32_t)3000000000u);
  PutMessage<3101>(cb, 0, "ZKMD - ZKRO_...", (uint32_t)0x1F);
  std::string text = ErrorFile();
  EXPECT_NE(text.find("Unknown API structure : ZKMD version 3000000000\n"), std::string::npos);
  EXPECT_NE(text.find("Unknown API attribute : ZKMD - ZKRO_... value 0x0000001F\n"),
            std::string::npos);
}

TEST_F(AlertsTest, FileErrorHasMultiLineTemplate) {
  PutMessage<1001>(cb, EACCES, "/x/wz.t", "open");
  EXPECT_NE(ErrorFile().find("File I/O error. \n  File      : /x/wz.t\n  Operation : open\n"
                             "  Result    : EACCES - Permission denied (13).\n"),
            std::string::npos)
      << ErrorFile();
}

TEST_F(AlertsTest, LinesAreAppended) {
  PutMessage<2009>(cb, 0, (int32_t)3, "Foo=bar");
  PutMessage<2009>(cb, 0, (int32_t)5, "Baz");
  std::string text = ErrorFile();
  EXPECT_NE(text.find("Msg2009:   Line : 3   Parameter : Foo=bar\n"), std::string::npos);
  EXPECT_NE(text.find("Msg2009:   Line : 5   Parameter : Baz\n"), std::string::npos);
  EXPECT_LT(text.find("Line : 3"), text.find("Line : 5"));
}

TEST_F(AlertsTest, ChannelBuildUsesItsOwnFileName) {
  cb->ExitType = EXIT_TYPE_CHANNEL;
  PutMessage<1>(cb, 0, "hello");
  EXPECT_NE(dir.Read("wz_chlexit_error_77_88.txt").find("Msg1: hello\n"), std::string::npos);
}

TEST_F(AlertsTest, WithoutControlBlockWritesToCurrentDirectory) {
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(dir.Path().c_str()), 0);
  PutMessage<1>(nullptr, 0, "no block");
  ASSERT_EQ(chdir(previous), 0);
  std::string name = "wz_apiexit_error_" + std::to_string(getpid()) + "_" +
                     std::to_string((unsigned)pthread_self()) + ".txt";
  std::regex expected(std::string("^") + kStamp + R"(  \(\d+\.\d+\) Msg1: no block\n$)");
  EXPECT_TRUE(std::regex_match(dir.Read(name), expected)) << dir.Read(name);
}

TEST_F(AlertsTest, UnwritableDirectoryFallsBackToCurrentDirectory) {
  strcpy(cb->File.TraceDirectory, "/nonexistent-wz-dir/");
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(dir.Path().c_str()), 0);
  PutMessage<1>(cb, 0, "fallback");
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_NE(ErrorFile().find("[payroll] (77.88) Msg1: fallback\n"), std::string::npos);
}

TEST(MessageTable, HasTheErrorNamesOneToOneHundredTwentySeven) {
  EXPECT_STREQ(SearchErrorName(0), "NO_ERROR");
  EXPECT_STREQ(SearchErrorName(2), "ENOENT - No such file or directory");
  EXPECT_STREQ(SearchErrorName(13), "EACCES - Permission denied");
  EXPECT_STREQ(SearchErrorName(28), "ENOSPC - No space left on device");
  EXPECT_STREQ(SearchErrorName(4000), "");
  int rows = 0;
  for (const MessageTableEntry *row = MessageTable; row->Number != MESSAGE_TABLE_END; row++) {
    EXPECT_GE(row->Number, 0);
    EXPECT_LE(row->Number, 127);
    rows++;
  }
  EXPECT_GE(rows, 110);
}

TEST(MessageCatalogue, EndsWithEmptyTemplateAndIsAscending) {
  uint32_t previous = 0;
  const MessageCatalogueEntry *row = MessageTableMonitorTool;
  for (; row->Template[0] != '\0'; row++) {
    EXPECT_GT(row->Number, previous);
    previous = row->Number;
  }
  EXPECT_EQ(row->Number, 9999u);
}

TEST_F(AlertsTest, PerformCommandCopiesOutputAndReportsFailure) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(PerformCommand(cb, "echo hello-from-command"), 0);
  fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "hello-from-command\n");
  EXPECT_EQ(PerformCommand(cb, "exit 3"), -1);
  EXPECT_NE(ErrorFile().find("Function : pclose \"exit 3\"   Result : "), std::string::npos)
      << ErrorFile();
}

TEST_F(AlertsTest, ReformatUtilityRunsFromTheTraceFileDirectory) {
  dir.Write("wzreform32", "#!/bin/sh\necho \"$@\" > \"$(dirname \"$0\")/args\"\n");
  chmod(dir.File("wzreform32").c_str(), 0755);
  EXPECT_EQ(CallReformatUtility(cb, dir.File("wz_x.txt").c_str(), '3', "in.t", "out.txt"), 0);
  EXPECT_EQ(dir.Read("args"), "in.t -o out.txt -q\n");
  EXPECT_EQ(CallReformatUtility(cb, dir.File("wz_x.txt").c_str(), 'x', "in", "out"), -1);
  EXPECT_NE(ErrorFile().find("Msg2: Invalid addressing mode : x\n"), std::string::npos)
      << ErrorFile();
}
