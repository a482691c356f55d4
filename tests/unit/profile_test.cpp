#include <gtest/gtest.h>

#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "exit/control_block.h"
#include "output/profile.h"
#include "tests/unit/capture.h"
#include "tests/unit/test_support.h"
#include "text/codepage.h"

extern char **environ;

namespace {

#define DASHES "|----------------------------------------------------------\n"

// A capture block whose text ends up in a file and its write buffer, with
// the identity texts that start-up would fill.
struct ProfileCapture : FileCapture {
  ProfileCapture() {
    cb->Settings.ShowZkVersion = 0;
    cb->Identity.ApiLevel = API_LEVEL_700;
    cb->ExecStatus = 1;
    snprintf(cb->Identity.ProductTitle, sizeof cb->Identity.ProductTitle, "Trace title");
    snprintf(cb->Identity.ProgramVersion, sizeof cb->Identity.ProgramVersion, "7.52");
    snprintf(cb->Identity.BuildVariant, sizeof cb->Identity.BuildVariant,
             "Common to single thread and multi thread");
    snprintf(cb->Identity.MakerContact, sizeof cb->Identity.MakerContact, "support@example.org");
    snprintf(cb->Identity.ExitInfoName, sizeof cb->Identity.ExitInfoName, "wzexit");
    snprintf(cb->Identity.EntryName, sizeof cb->Identity.EntryName, "wzEntry");
    snprintf(cb->Identity.ApiCallerTypeText, sizeof cb->Identity.ApiCallerTypeText, "external");
    snprintf(cb->Identity.QMgrName, sizeof cb->Identity.QMgrName, "QM1");
    snprintf(cb->Identity.EnvironmentText, sizeof cb->Identity.EnvironmentText, "other");
    snprintf(cb->Identity.UserId, sizeof cb->Identity.UserId, "alice");
    snprintf(cb->Identity.ConnectionName, sizeof cb->Identity.ConnectionName, "10.0.0.1(1414)");
    snprintf(cb->Identity.ApplName, sizeof cb->Identity.ApplName, "/opt/app/bin/orders");
    snprintf(cb->Identity.ApplTypeText, sizeof cb->Identity.ApplTypeText, "unix");
    snprintf(cb->Identity.ProcessName, sizeof cb->Identity.ProcessName, "orders");
    snprintf(cb->Identity.ProcessDescription, sizeof cb->Identity.ProcessDescription,
             "(user program)");
    cb->Identity.ZkaxcProcessId = 4242;
    cb->Identity.ZkaxcThreadId = 7;
  }
};

bool HasLine(const std::string &text, const std::string &line) {
  return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

// Puts a directory first on PATH, and a library path in the environment,
// for the time of one test.
struct CommandPath {
  TempDir bin;
  std::string savedPath;
  std::string savedLibraryPath;
  bool hadLibraryPath;
  bool hadLibpath;
  CommandPath() {
    savedPath = getenv("PATH") != nullptr ? getenv("PATH") : "";
    const char *library = getenv("LD_LIBRARY_PATH");
    hadLibraryPath = library != nullptr;
    savedLibraryPath = library != nullptr ? library : "";
    setenv("PATH", (bin.Path() + ":" + savedPath).c_str(), 1);
    setenv("LD_LIBRARY_PATH", "/no/such/library/dir", 1);
    hadLibpath = getenv("LIBPATH") != nullptr;
    if (!hadLibpath) {
      setenv("LIBPATH", "/no/such/libpath", 1);
    }
  }
  ~CommandPath() {
    setenv("PATH", savedPath.c_str(), 1);
    if (hadLibraryPath) {
      setenv("LD_LIBRARY_PATH", savedLibraryPath.c_str(), 1);
    } else {
      unsetenv("LD_LIBRARY_PATH");
    }
    if (!hadLibpath) {
      unsetenv("LIBPATH");
    }
  }
  void Install(const std::string &name, const std::string &script) {
    bin.Write(name, script);
    chmod(bin.File(name).c_str(), 0755);
  }
};

// A level-display command that shows the library search path it ran with
// in its build type.
const char kFakeLevelCommand[] =
    "#!/bin/sh\n"
    "echo 'Name:        ZK'\n"
    "echo 'Version:     9.3.0.17'\n"
    "echo 'Level:       p930-017-240101'\n"
    "echo \"BuildType:   IKAP - (Production) [$LD_LIBRARY_PATH$LIBPATH]\"\n"
    "echo 'a line without a colon'\n"
    "echo 'Platform:    x86 Linux'\n"
    "echo 'Version: from stderr' >&2\n";

// ---- single lines ------------------------------------------------------------

TEST(ProfileLines, YesNoLineLayout) {
  ProfileCapture c;
  PutProfileRecordYesNo(c.cb, "Write cache", 1);
  PutProfileRecordYesNo(c.cb, "Show max len charv ", 0);
  PutProfileRecordYesNo(c.cb, "A label longer than 19", 1);
  PutProfileRecordYesNo(c.cb, "|  Show summary only  : ", 0);
  EXPECT_EQ(c.Text(), "|  Write cache        : yes\n"
                      "|  Show max len charv : no\n"
                      "|  A label longer than 19: yes\n"
                      "|  Show summary only  : no\n");
}

TEST(ProfileLines, LengthLineWithSeparatorsOrAll) {
  ProfileCapture c;
  PutProfileRecordLength(c.cb, "Max file size", 1234567);
  PutProfileRecordLength(c.cb, "Write interval", 0);
  PutProfileRecordLength(c.cb, "Show max len ZKPUT", -1);
  PutProfileRecordLength(c.cb, "Show max len ZKGET", INT64_MIN);
  PutProfileRecordLength(c.cb, "|label as given: ", 2000000000);
  EXPECT_EQ(c.Text(), "|  Max file size      : 1,234,567\n"
                      "|  Write interval     : 0\n"
                      "|  Show max len ZKPUT : (all)\n"
                      "|  Show max len ZKGET : (all)\n"
                      "|label as given: 2,000,000,000\n");
}

TEST(ProfileLines, ReopenedFileGetsOnlyTheBanner) {
  ProfileCapture c;
  c.cb->Settings.ShowZkVersion = 1;
  c.cb->Settings.ShowProcessEnvValue = 1;
  PutProcessProfileRecords(c.cb, 5000);
  EXPECT_EQ(c.Text(), "-\n" DASHES "|Reopen this trace file\n" DASHES);
  EXPECT_EQ(c.cb->File.FileReopened, 1);
  EXPECT_EQ(c.cb->Identity.ZkLevelSearched, 0) << "the platform level is not asked for";
}

TEST(ProfileLines, NewFileDoesNotSetTheReopenedFlag) {
  ProfileCapture c;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_EQ(c.cb->File.FileReopened, 0);
  EXPECT_EQ(c.Text().rfind(DASHES "|Program information\n", 0), 0u);
}

// ---- the whole profile ------------------------------------------------------------

std::string OperatingEnvironmentLines() {
  struct utsname system;
  uname(&system);
  std::string lines = "|Operating environment\n";
  lines += std::string("|  Operating system   : ") + system.sysname + "\n";
  lines += std::string("|  Version            : ") + system.version + "\n";
  lines += std::string("|  Release            : ") + system.release + "\n";
  lines += std::string("|  Node name          : ") + system.nodename + "\n";
  lines += std::string("|  Machine            : ") + system.machine + "\n";
  char category[LOCALE_CATEGORY_SIZE];
  char locale[LOCALE_NAME_SIZE];
  if (GetEnvLocale(category, locale) != nullptr) {
    lines += std::string("|  Locale             : ") + locale + "\n";
  } else {
    lines += "|  Locale             : (none)\n";
  }
  return lines;
}

TEST(ProfileRecords, EveryLineInItsOrder) {
  CommandPath path;
  path.Install("dspzkver", kFakeLevelCommand);
  ProfileCapture c;
  ParameterSettings &s = c.cb->Settings;
  s.ShowZkVersion = 1;
  snprintf(s.ParameterFilePath, sizeof s.ParameterFilePath, "/var/zk/exits/wz.def");
  s.CheckUpdateRequestInterval = 45;
  s.ShowPerformanceIntervalTime = 60;
  s.ShowPerformanceIntervalCount = 100;
  s.ShowMaxLenPut = 2048;
  s.TargetQueueCount = 2;
  snprintf(s.TargetQueue[0].QueueName, 49, "APP.IN");
  s.TargetQueue[0].P = s.TargetQueue[0].G = s.TargetQueue[0].I = s.TargetQueue[0].S = 1;
  snprintf(s.TargetQueue[1].QueueName, 49, "APP.*");
  s.TargetQueue[1].G = 1;
  s.TargetQueue[1].S = 1;
  s.TargetProcessCount = 1;
  snprintf(s.TargetProcess[0], 32, "orders");
  s.PutAlertSuppressCount = 1;
  s.PutAlertSuppress[0] = {2, 2033, ZKXF_GET, "APP.IN", "orders"};
  s.ShowSummaryDataSuppressCount = 1;
  s.ShowSummaryDataSuppress[0] = {-1, -1, -1, "*"};
  snprintf(s.CompressCommand, sizeof s.CompressCommand, "gzip $");
  s.WriteAfterEachApi = 1;
  c.cb->Debug = 1;

  PutProcessProfileRecords(c.cb, 0);

  std::string expected = DASHES "|Program information\n"
                                "|  Program name       : Trace title\n"
                                "|  Version            : 7.52\n"
                                "|  Provided by        : support@example.org\n"
                                "|Program attributes\n"
                                "|  Addressing mode    : 32-bit\n"
                                "|  Threading          : Common to single thread and multi thread\n"
                                "|  Process level      : 700\n"
                                "|Tarnvelde ZK\n"
                                "|  Version            : 9.3.0.17\n"
                                "|  Level              : p930-017-240101\n"
                                "|  Build type         : IKAP - (Production) []\n";
  expected += OperatingEnvironmentLines();
  expected += "|API Exit context\n"
              "|  Exit name          : wzexit\n"
              "|  Function name      : wzEntry\n"
              "|  API caller type    : external\n"
              "|  Queue manager      : QM1\n"
              "|  Environment        : other\n"
              "|  User id            : alice\n"
              "|  Connection name    : 10.0.0.1(1414)\n"
              "|  Appl/Channel name  : /opt/app/bin/orders\n"
              "|  Appl/Channel type  : unix\n"
              "|  Program name       : orders\n"
              "|  Program description: (user program)\n"
              "|  Process id         : 4242\n"
              "|  Thread id          : 7\n";
  expected += "|  Process id (real)  : " + std::to_string((unsigned)getpid()) + "\n";
  expected += "|  Thread id  (real)  : " + std::to_string((unsigned)pthread_self()) + "\n";
  expected += "|Process parameters\n"
              "|  Parameter file     : /var/zk/exits/wz.def\n"
              "|  Check update req   : 45\n"
              "|  Show summary only  : no\n"
              "|  Show perf only     : no\n"
              "|  Perf intvl (time)  : 60\n"
              "|  Perf intvl (count) : 100\n"
              "|  Show parsed data   : yes\n"
              "|  Show parsed content: yes\n"
              "|  Max out line length: 100\n"
              "|  Show hex char image: yes\n"
              "|  Show hex char ccsid: 0 (7-bit ASCII)\n"
              "|  Show data conv     : no\n"
              "|  Show XA trace      : no\n"
              "|  Show correl id     : yes\n"
              "|  Show channel attrs : yes\n"
              "|  Show max len ZKPUT : 2,048\n"
              "|  Show max len ZKGET : (all)\n"
              "|  Show max len chl   : (all)\n"
              "|  Show max len parsed: (all)\n"
              "|  Show max len charv : (all)\n"
              "|  Show max len cv str: 400\n"
              "|  Count only selected: no\n"
              "|  Target queue name  : APP.IN  <put><get><inq><set>\n"
              "|  Target queue name  : APP.*  <get><set>\n"
              "|  Target proc name   : orders\n"
              "|  Alert file (error) : yes\n"
              "|  Alert file (warn)  : no\n"
              "|  Alert file (info)  : no\n"
              "|  Suppress alert     : 2, 2033, ZKGET  , APP.IN, orders\n"
              "|  Suppress summary   : *, *   , *      , *\n"
              "|  Max file size      : 100,000,000\n"
              "|  Compress command   : gzip $\n"
              "|  Compress threshold : 1,000,000\n"
              "|  Create empty file  : yes\n"
              "|  Write stream mode  : no\n"
              "|  Write cache        : yes\n"
              "|  Write after call   : yes\n"
              "|  Write buffer size  : 1,048,576\n"
              "|  Write interval     : 0\n"
              "|  (Debug flag)       : yes\n" DASHES;
  EXPECT_EQ(c.Text(), expected);
  EXPECT_EQ(c.cb->WriteBufferFill, 0) << "the profile ends with a flush";
}

TEST(ProfileRecords, ProcessLevelIs600WhenTheExitWorksAtIt) {
  ProfileCapture c;
  c.cb->Identity.ApiLevel = API_LEVEL_600;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_TRUE(HasLine(c.Text(), "|  Process level      : 600"));
  EXPECT_FALSE(HasLine(c.Text(), "|  Process level      : 700"));
}

TEST(ProfileRecords, WithoutParsedContentTheLineLengthIsLeftOutButTheHexImageStays) {
  ProfileCapture c;
  c.cb->Settings.ShowParsedMsgContent = 0;
  PutProcessProfileRecords(c.cb, 0);
  std::string text = c.Text();
  EXPECT_EQ(text.find("Max out line length"), std::string::npos);
  EXPECT_NE(text.find("|  Show parsed content: no\n"
                      "|  Show hex char image: yes\n"
                      "|  Show hex char ccsid: "),
            std::string::npos);
}

TEST(ProfileRecords, HexCharCcsidLineFollowsTheHexImageSwitch) {
  ProfileCapture c;
  c.cb->Settings.ShowHexCharImage = 0;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_TRUE(HasLine(c.Text(), "|  Show hex char image: no"));
  EXPECT_EQ(c.Text().find("Show hex char ccsid"), std::string::npos);

  ProfileCapture d;
  d.cb->Settings.ShowHexCharCcsid = 1208;
  d.cb->Settings.LocaleSwitch = 1;
  PutProcessProfileRecords(d.cb, 0);
  EXPECT_TRUE(HasLine(d.Text(), "|  Show hex char ccsid: (auto) 1208 (UTF-8)"));

  ProfileCapture e;
  e.cb->Settings.ShowHexCharCcsid = 943;
  PutProcessProfileRecords(e.cb, 0);
  EXPECT_TRUE(HasLine(e.Text(), "|  Show hex char ccsid: 943 (JAPANESE PC MIXED OPEN)"));
}

TEST(ProfileRecords, NegativeLimitsAreShownAsAll) {
  ProfileCapture c;
  ParameterSettings &s = c.cb->Settings;
  s.ShowMaxLenPut = -5;
  s.ShowMaxLenGet = 0;
  s.ShowMaxLenChannel = 1000;
  s.ShowMaxLenParsedContent = -1;
  s.ShowMaxLenCharv = 12345;
  s.ShowMaxLenCharvString = -1;
  PutProcessProfileRecords(c.cb, 0);
  std::string text = c.Text();
  EXPECT_NE(text.find("|  Show max len ZKPUT : (all)\n"
                      "|  Show max len ZKGET : 0\n"
                      "|  Show max len chl   : 1,000\n"
                      "|  Show max len parsed: (all)\n"
                      "|  Show max len charv : 12,345\n"
                      "|  Show max len cv str: (all)\n"),
            std::string::npos)
      << text;
}

TEST(ProfileRecords, ExcludeNamesAreIgnoredWhileTargetNamesExist) {
  ProfileCapture c;
  ParameterSettings &s = c.cb->Settings;
  s.TargetProcessCount = 2;
  snprintf(s.TargetProcess[0], 32, "orders");
  snprintf(s.TargetProcess[1], 32, "billing");
  s.ExcludeProcessCount = 1;
  snprintf(s.ExcludeProcess[0], 32, "amqsput");
  PutProcessProfileRecords(c.cb, 0);
  std::string text = c.Text();
  EXPECT_NE(text.find("|  Target proc name   : orders\n"
                      "|  Target proc name   : billing\n"
                      "|  Exclude proc name  : (ignored because TargetProcess parameter is also "
                      "specified.)\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("amqsput"), std::string::npos);
}

TEST(ProfileRecords, ExcludeNamesAreListedWithoutTargetNames) {
  ProfileCapture c;
  ParameterSettings &s = c.cb->Settings;
  s.ExcludeProcessCount = 2;
  snprintf(s.ExcludeProcess[0], 32, "runmqsc");
  snprintf(s.ExcludeProcess[1], 32, "abcdefghijklmnopqrstuvwxyz01");
  PutProcessProfileRecords(c.cb, 0);
  std::string text = c.Text();
  EXPECT_NE(text.find("|  Exclude proc name  : runmqsc\n"
                      "|  Exclude proc name  : abcdefghijklmnopqrstuvwxyz01\n"
                      "|  Alert file (error) : yes\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("ignored because"), std::string::npos);
  EXPECT_EQ(text.find("Target proc name"), std::string::npos);
}

TEST(ProfileRecords, TargetQueueFlagsAndQueueWithoutFamilies) {
  ProfileCapture c;
  ParameterSettings &s = c.cb->Settings;
  s.TargetQueueCount = 2;
  snprintf(s.TargetQueue[0].QueueName, 49, "Q.PUT");
  s.TargetQueue[0].P = 1;
  snprintf(s.TargetQueue[1].QueueName, 49, "Q.NONE");
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_TRUE(HasLine(c.Text(), "|  Target queue name  : Q.PUT  <put>"));
  EXPECT_TRUE(HasLine(c.Text(), "|  Target queue name  : Q.NONE  "));
}

TEST(ProfileRecords, SuppressEntriesWithAndWithoutWildcards) {
  ProfileCapture c;
  ParameterSettings &s = c.cb->Settings;
  s.PutAlertSuppressCount = 3;
  s.PutAlertSuppress[0] = {-1, -1, -1, "*", "*"};
  s.PutAlertSuppress[1] = {1, 7, ZKXF_CMIT, "", "batch*"};
  s.PutAlertSuppress[2] = {2, -1, ZKXF_SUBRQ, "SYSTEM.*", "orders"};
  s.ShowSummaryDataSuppressCount = 2;
  s.ShowSummaryDataSuppress[0] = {2, 2033, ZKXF_GET, "APP.REPLY"};
  s.ShowSummaryDataSuppress[1] = {-1, 2085, -1, "MISSING"};
  PutProcessProfileRecords(c.cb, 0);
  std::string text = c.Text();
  EXPECT_NE(text.find("|  Alert file (info)  : no\n"
                      "|  Suppress alert     : *, *   , *      , *, *\n"
                      "|  Suppress alert     : 1,    7, ZKCMIT , , batch*\n"
                      "|  Suppress alert     : 2, *   , ZKSUBRQ, SYSTEM.*, orders\n"
                      "|  Suppress summary   : 2, 2033, ZKGET  , APP.REPLY\n"
                      "|  Suppress summary   : *, 2085, *      , MISSING\n"
                      "|  Max file size      : "),
            std::string::npos)
      << text;
}

TEST(ProfileRecords, ParameterFileAndCompressCommandWhenNone) {
  ProfileCapture c;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_TRUE(HasLine(c.Text(), "|  Parameter file     : (none)"));
  EXPECT_TRUE(HasLine(c.Text(), "|  Compress command   : (none)"));
  EXPECT_TRUE(HasLine(c.Text(), "|  (Debug flag)       : no"));
}

// ---- the platform level --------------------------------------------------------------

TEST(ProfilePlatformLevel, MissingCommandLeavesTheVersionLinesEmpty) {
  CommandPath path; // an empty directory first, and a PATH without the command
  setenv("PATH", path.bin.Path().c_str(), 1);
  ProfileCapture c;
  c.cb->Settings.ShowZkVersion = 1;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_NE(c.Text().find("|  Process level      : 700\n"
                          "|Tarnvelde ZK\n"
                          "|  Version            : \n"
                          "|  Level              : \n"
                          "|  Build type         : \n"
                          "|Operating environment\n"),
            std::string::npos)
      << c.Text();
  EXPECT_EQ(c.cb->Identity.ZkLevelSearched, 1);
  EXPECT_EQ(SetZkLevelInfo(c.cb), RC_NOP);
}

TEST(ProfilePlatformLevel, FakeCommandFillsVersionLevelAndBuildType) {
  CommandPath path;
  path.Install("dspzkver", kFakeLevelCommand);
  ProfileCapture c;
  EXPECT_EQ(SetZkLevelInfo(c.cb), RC_OK);
  EXPECT_STREQ(c.cb->Identity.ZkVersion, "9.3.0.17");
  EXPECT_STREQ(c.cb->Identity.ZkLevel, "p930-017-240101");
  // The command runs with the library search path cleared.
  EXPECT_STREQ(c.cb->Identity.ZkBuildType, "IKAP - (Production) []");
}

// The command must not read the application's standard input: it gets
// /dev/null, and what the application was about to read is still there.
TEST(ProfilePlatformLevel, CommandDoesNotReadTheApplicationsInput) {
  CommandPath path;
  path.Install("dspzkver", "#!/bin/sh\nread line\necho \"Version: [$line]\"\n");
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  ASSERT_EQ(write(fds[1], "application input\n", 18), 18);
  close(fds[1]);
  int savedInput = dup(0);
  ASSERT_GE(savedInput, 0);
  dup2(fds[0], 0);
  close(fds[0]);
  ProfileCapture c;
  int32_t rc = SetZkLevelInfo(c.cb);
  char left[32] = {};
  ssize_t n = read(0, left, sizeof left - 1);
  dup2(savedInput, 0);
  close(savedInput);
  EXPECT_EQ(rc, RC_OK);
  EXPECT_STREQ(c.cb->Identity.ZkVersion, "[]");
  EXPECT_EQ(n, 18);
  EXPECT_STREQ(left, "application input\n");
}

TEST(ProfilePlatformLevel, TheLevelIsAskedForOncePerControlBlock) {
  CommandPath path;
  path.Install("dspzkver", kFakeLevelCommand);
  ProfileCapture c;
  c.cb->Settings.ShowZkVersion = 1;
  PutProcessProfileRecords(c.cb, 0);
  path.Install("dspzkver", "#!/bin/sh\necho 'Version: 1.0'\n");
  PutProcessProfileRecords(c.cb, 0);
  std::string text = c.Text();
  size_t first = text.find("|Tarnvelde ZK\n|  Version            : 9.3.0.17\n");
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find("|Tarnvelde ZK\n|  Version            : 9.3.0.17\n", first + 1),
            std::string::npos);
  EXPECT_EQ(text.find("1.0\n"), std::string::npos);
}

TEST(ProfilePlatformLevel, NoLevelLinesWhenShowZkVersionIsOff) {
  CommandPath path;
  path.Install("dspzkver", kFakeLevelCommand);
  ProfileCapture c;
  c.cb->Settings.ShowZkVersion = 0;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_EQ(c.Text().find("Tarnvelde"), std::string::npos);
  EXPECT_EQ(c.cb->Identity.ZkLevelSearched, 0);
  EXPECT_EQ(c.cb->Identity.ZkVersion[0], '\0');
}

TEST(ProfilePlatformLevel, ParsingSplitsAtTheFirstColonAndTrims) {
  ProfileCapture c;
  EXPECT_EQ(SetZkLevelToCommonArea(c.cb, "no colon here\n"
                                         "   Version   :   8.0.0.4  \r\n"
                                         "CMVC level:   p800-004:extra\n"
                                         "BuildType:IKAP\n"
                                         "Level x: not a key\n"),
            RC_OK);
  EXPECT_STREQ(c.cb->Identity.ZkVersion, "8.0.0.4");
  EXPECT_STREQ(c.cb->Identity.ZkLevel, "p800-004:extra");
  EXPECT_STREQ(c.cb->Identity.ZkBuildType, "IKAP");
}

TEST(ProfilePlatformLevel, ParsingWithoutVersionFails) {
  ProfileCapture c;
  EXPECT_EQ(SetZkLevelToCommonArea(c.cb, "Level: p1\nBuildType: b"), RC_NOP);
  EXPECT_STREQ(c.cb->Identity.ZkLevel, "p1");
  EXPECT_STREQ(c.cb->Identity.ZkBuildType, "b") << "the last line needs no line feed";
  EXPECT_EQ(SetZkLevelToCommonArea(c.cb, ""), RC_NOP);
  EXPECT_EQ(SetZkLevelToCommonArea(c.cb, "version: 1\n"), RC_NOP) << "keys are case-sensitive";
}

TEST(ProfilePlatformLevel, LongValuesAreCutToTheirFields) {
  ProfileCapture c;
  std::string text = "Version: " + std::string(200, 'v') + "\nLevel: " + std::string(200, 'l') +
                     "\nBuildType: " + std::string(200, 'b') + "\n";
  EXPECT_EQ(SetZkLevelToCommonArea(c.cb, text.c_str()), RC_OK);
  EXPECT_EQ(strlen(c.cb->Identity.ZkVersion), 74u);
  EXPECT_EQ(strlen(c.cb->Identity.ZkLevel), 79u);
  EXPECT_EQ(strlen(c.cb->Identity.ZkBuildType), 79u);
}

// ---- the environment -----------------------------------------------------------------

// Replaces the process environment for the time of one test.
struct EnvironmentSwap {
  char **saved;
  explicit EnvironmentSwap(std::vector<char *> &entries) {
    entries.push_back(nullptr);
    saved = environ;
    environ = entries.data();
  }
  ~EnvironmentSwap() { environ = saved; }
};

std::vector<std::string> EnvironmentListing(const std::string &text) {
  std::vector<std::string> entries;
  bool in = false;
  for (const std::string &line : TextLines(text)) {
    if (line == "|Environment variables") {
      in = true;
      continue;
    }
    if (!in) {
      continue;
    }
    if (line + "\n" == DASHES) {
      break;
    }
    EXPECT_EQ(line.rfind("|  ", 0), 0u) << line;
    entries.push_back(line.substr(3));
  }
  return entries;
}

TEST(ProfileEnvironment, ListedSortedAfterTheProfileWhenAskedFor) {
  std::string storage[] = {"PATH=/bin", "B=2", "A=1", "ZZ=last", "B=1", "A=1", "a=lower", "AB="};
  std::vector<char *> entries;
  for (std::string &s : storage) {
    entries.push_back(s.data());
  }
  ProfileCapture c;
  c.cb->Settings.ShowProcessEnvValue = 1;
  {
    EnvironmentSwap swap(entries);
    PutProcessProfileRecords(c.cb, 0);
  }
  std::string text = c.Text();
  EXPECT_EQ(EnvironmentListing(text),
            (std::vector<std::string>{"A=1", "A=1", "AB=", "B=1", "B=2", "PATH=/bin", "ZZ=last",
                                      "a=lower"}));
  // After the profile's closing dashed line, and closed by one of its own.
  EXPECT_NE(text.find("|  (Debug flag)       : no\n" DASHES "|Environment variables\n"),
            std::string::npos);
  EXPECT_EQ(text.substr(text.size() - strlen("|  a=lower\n" DASHES)), "|  a=lower\n" DASHES);
  EXPECT_EQ(c.cb->WriteBufferFill, 0) << "the listing ends with a flush";
}

TEST(ProfileEnvironment, NotListedByDefault) {
  ProfileCapture c;
  PutProcessProfileRecords(c.cb, 0);
  EXPECT_EQ(c.Text().find("|Environment variables"), std::string::npos);
}

TEST(ProfileEnvironment, DuplicatesAreBothListedAndTheEnvironmentIsLeftAlone) {
  std::string first = "SAME=1";
  std::string second = "SAME=1";
  std::vector<char *> entries = {second.data(), first.data()};
  ProfileCapture c;
  const char *order[2] = {nullptr, nullptr};
  {
    EnvironmentSwap swap(entries);
    PutEnvironmentVariables(c.cb);
    order[0] = environ[0];
    order[1] = environ[1];
  }
  EXPECT_EQ(EnvironmentListing(c.Text()), (std::vector<std::string>{"SAME=1", "SAME=1"}));
  EXPECT_EQ(order[0], second.data()) << "the environment itself is not reordered";
  EXPECT_EQ(order[1], first.data());
}

TEST(ProfileEnvironment, AtMost999EntriesInTheOrderTheyStand) {
  // 1200 entries, numbered downwards: only the first 999 are taken, and they
  // come out in ascending order.
  std::vector<std::string> storage;
  for (int i = 1199; i >= 0; i--) {
    char entry[32];
    snprintf(entry, sizeof entry, "V%04d=%d", i, i);
    storage.push_back(entry);
  }
  std::vector<char *> entries;
  for (std::string &s : storage) {
    entries.push_back(s.data());
  }
  ProfileCapture c;
  {
    EnvironmentSwap swap(entries);
    PutEnvironmentVariables(c.cb);
  }
  std::vector<std::string> listed = EnvironmentListing(c.Text());
  ASSERT_EQ(listed.size(), 999u);
  EXPECT_EQ(listed.front(), "V0201=201");
  EXPECT_EQ(listed.back(), "V1199=1199");
  for (size_t i = 1; i < listed.size(); i++) {
    EXPECT_LT(listed[i - 1], listed[i]);
  }
}

TEST(ProfileEnvironment, TheRealEnvironmentIsListedWhole) {
  setenv("WZ_PROFILE_TEST_VALUE", "a value with blanks", 1);
  ProfileCapture c;
  PutEnvironmentVariables(c.cb);
  unsetenv("WZ_PROFILE_TEST_VALUE");
  std::vector<std::string> listed = EnvironmentListing(c.Text());
  size_t count = 0;
  while (environ[count] != nullptr) {
    count++;
  }
  EXPECT_EQ(listed.size(), count + 1) << "the variable was set while listing";
  EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end()));
  EXPECT_NE(std::find(listed.begin(), listed.end(), "WZ_PROFILE_TEST_VALUE=a value with blanks"),
            listed.end());
}

} // namespace
