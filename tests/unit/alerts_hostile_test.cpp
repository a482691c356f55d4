// Alert lines built from hostile text: placeholders are read from the
// template only, arguments are inserted once and never searched again, a
// placeholder without its argument stays as it stands, and the file the
// line goes to is never reached through a link.
#include <gtest/gtest.h>

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "exit/alerts.h"
#include "exit/control_block.h"
#include "exit/message_tables.h"
#include "tests/unit/alerts_fixture.h"
#include "tests/unit/test_support.h"

namespace {

// Arguments of a message are checked against its template when compiled.
static_assert(MessageTemplateAccepts(SearchMessageTemplateConst(1001), "ss"));
static_assert(!MessageTemplateAccepts(SearchMessageTemplateConst(1001), "s"));
static_assert(!MessageTemplateAccepts(SearchMessageTemplateConst(1001), "sss"));
static_assert(!MessageTemplateAccepts(SearchMessageTemplateConst(1001), "sd"));
static_assert(MessageTemplateAccepts(SearchMessageTemplateConst(2009), "ds"));
static_assert(!MessageTemplateAccepts(SearchMessageTemplateConst(2009), "sd"));
static_assert(MessageTemplateAccepts(SearchMessageTemplateConst(3101), "su"));
static_assert(!MessageTemplateAccepts(SearchMessageTemplateConst(3101), "sd"));
static_assert(MessageTemplateAccepts(SearchMessageTemplateConst(1021), "sddssss"));
static_assert(MessageTemplateAccepts(SearchMessageTemplateConst(2101), ""));
static_assert(!MessageTemplateAccepts(SearchMessageTemplateConst(2101), "s"));
static_assert(SearchMessageTemplateConst(4711) == nullptr);
static_assert(!MessageTemplateAccepts(nullptr, ""));

struct AlertsHostile : AlertsTest {};

std::string Fill(const char *messageTemplate, const AlertArgument *arguments, int32_t count,
                 int32_t size = 512) {
  char out[4096];
  int32_t length = FillMessageTemplate(out, size, messageTemplate, "T", 2, arguments, count);
  EXPECT_EQ(length, (int32_t)strlen(out));
  return out;
}

} // namespace

TEST(FillMessageTemplate, ArgumentTextIsNeverReadAsATemplate) {
  AlertArgument arguments[] = {MakeAlertArgument("[$2s][$3d][$0s][$t]"),
                               MakeAlertArgument("second")};
  EXPECT_EQ(Fill("<[$1s]|[$2s]>", arguments, 2), "<[$2s][$3d][$0s][$t]|second>");
}

TEST(FillMessageTemplate, PlaceholderWithoutArgumentStaysAsItStands) {
  AlertArgument arguments[] = {MakeAlertArgument("one")};
  EXPECT_EQ(Fill("[$1s][$2s][$3x][$4d][$5u]", arguments, 1), "one[$2s][$3x][$4d][$5u]");
  EXPECT_EQ(Fill("[$1s]", nullptr, 0), "[$1s]");
}

TEST(FillMessageTemplate, ArgumentOfAnotherKindLeavesThePlaceholder) {
  AlertArgument arguments[] = {MakeAlertArgument((int32_t)-5), MakeAlertArgument("t")};
  EXPECT_EQ(Fill("[$1s] [$2d] [$1d]", arguments, 2), "[$1s] [$2d] -5");
}

TEST(FillMessageTemplate, EachArgumentIsInsertedOnce) {
  AlertArgument arguments[] = {MakeAlertArgument("a")};
  EXPECT_EQ(Fill("[$1s][$1s]", arguments, 1), "a[$1s]");
}

TEST(FillMessageTemplate, KindsAndErrorAndTime) {
  AlertArgument arguments[] = {MakeAlertArgument((int32_t)-1), MakeAlertArgument(4000000000u),
                               MakeAlertArgument(0x1Fu)};
  EXPECT_EQ(Fill("[$t] [$1d] [$2u] [$3x] [$0s] ([$0d])", arguments, 3),
            "T -1 4000000000 0x0000001F ENOENT - No such file or directory (2)");
}

TEST(FillMessageTemplate, NearPlaceholdersAreText) {
  EXPECT_EQ(Fill("[$ [$1 [$1q] [$123s] [$$1s] $1s] [$", nullptr, 0),
            "[$ [$1 [$1q] [$123s] [$$1s] $1s] [$");
}

TEST(FillMessageTemplate, CutsAtTheBufferAndStaysTerminated) {
  AlertArgument arguments[] = {MakeAlertArgument("0123456789")};
  EXPECT_EQ(Fill("ab[$1s]cd", arguments, 1, 8), "ab01234");
  EXPECT_EQ(Fill("ab[$1s]cd", arguments, 1, 1), "");
  char out[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(FillMessageTemplate(out, 0, "abc", nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(out[0], 'x');
}

TEST_F(AlertsHostile, BadParameterLineWithPlaceholdersIsWrittenAsItIs) {
  PutMessage<2009>(cb, 0, (int32_t)1, "[$3s][$4s][$5x]=1");
  EXPECT_NE(ErrorFile().find("Msg2009:   Line : 1   Parameter : [$3s][$4s][$5x]=1\n"),
            std::string::npos)
      << ErrorFile();
}

TEST_F(AlertsHostile, ProcessNameWithPlaceholdersIsWrittenAsItIs) {
  strcpy(cb->Identity.ProcessName, "[$2x][$3x][$1s]]");
  PutMessage<1001>(cb, 0, "/x", "open");
  std::string text = ErrorFile();
  EXPECT_NE(text.find("  [[$2x][$3x][$1s]]] (77.88) Msg1001: File I/O error. \n"
                      "  File      : /x\n  Operation : open\n  Result    : NO_ERROR (0).\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("0x"), std::string::npos);
}

TEST_F(AlertsHostile, LongArgumentIsCutAndTheLineEndsInALineFeed) {
  std::string huge(10000, 'z');
  PutMessage<1>(cb, 0, huge.c_str());
  std::string text = ErrorFile();
  EXPECT_LT(text.size(), 4096u);
  EXPECT_EQ(text.back(), '\n');
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST_F(AlertsHostile, ErrorFileIsCreatedWithoutWorldWrite) {
  mode_t previous = umask(0);
  PutMessage<1>(cb, 0, "mode");
  umask(previous);
  struct stat status;
  ASSERT_EQ(stat(dir.File("wz_apiexit_error_77_88.txt").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0660u);
}

TEST_F(AlertsHostile, LinkAtTheErrorFileIsNotFollowed) {
  dir.Write("victim", "precious\n");
  ASSERT_EQ(symlink(dir.File("victim").c_str(), dir.File("wz_apiexit_error_77_88.txt").c_str()), 0);
  TempDir fallback;
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(fallback.Path().c_str()), 0);
  PutMessage<1>(cb, 0, "through the link?");
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_EQ(dir.Read("victim"), "precious\n");
  EXPECT_NE(fallback.Read("wz_apiexit_error_77_88.txt").find("Msg1: through the link?\n"),
            std::string::npos);
}

TEST_F(AlertsHostile, ErrnoIsKept) {
  errno = EXDEV;
  PutMessage<1010>(cb, -1);
  EXPECT_EQ(errno, EXDEV);
  EXPECT_NE(ErrorFile().find("EXDEV"), std::string::npos) << ErrorFile();
}

TEST_F(AlertsHostile, LineBuiltIntoTinyBuffersStaysInside) {
  char out[8];
  for (int32_t size = 0; size <= 8; size++) {
    memset(out, 'x', sizeof out);
    AlertArgument arguments[] = {MakeAlertArgument("some text")};
    int32_t length = BuildMessageLine(out, size, cb, 1, 0, arguments, 1);
    if (size == 0) {
      EXPECT_EQ(out[0], 'x');
      continue;
    }
    EXPECT_EQ(length, (int32_t)strlen(out)) << size;
    EXPECT_LT(length, size) << size;
    for (int32_t i = length + 1; i < 8; i++) {
      EXPECT_EQ(out[i], 'x') << size << " " << i;
    }
    if (size >= 2) {
      EXPECT_EQ(out[length - 1], '\n') << size;
    }
  }
}
