// Request files in the trace directory that enable, disable or renew the
// trace of a running connection: the test of one name (its kind by size,
// the newest time shared by all names, what is not a request) and the
// requests carried out on a connection made through the entry function.
#include <gtest/gtest.h>

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <utime.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/parameters.h"
#include "exit/control_block.h"
#include "exit/dispatch.h"
#include "exit/handle_list.h"
#include "exit/update_requests.h"
#include "output/trace_file.h"
#include "tests/unit/test_support.h"

extern "C" void wzEntry(PZKAXP, PZKAXC, PZKLONG, PZKLONG);
extern "C" void Terminate(PZKAXP, PZKAXC, PZKLONG, PZKLONG);

namespace {

// The exit context of TestConnection: process 4242, thread 7.
const char kContextName[] = "signal_4242_7.set";
const char kAllName[] = "signal_all_all.set";
const char kStem[] = "wz_ZKQM1_payroll_4242_7_";

std::string ProcessName() {
  return "signal_" + std::to_string((unsigned)getpid()) + "_all.set";
}

std::string RunningThreadName() {
  return "signal_" + std::to_string((unsigned)getpid()) + "_" +
         std::to_string((uint32_t)(uintptr_t)pthread_self()) + ".set";
}

std::string ReadPath(const std::string &path) {
  std::string content;
  int fd = open(path.c_str(), O_RDONLY);
  if (fd < 0) {
    return content;
  }
  char chunk[4096];
  ssize_t n;
  while ((n = read(fd, chunk, sizeof chunk)) > 0) {
    content.append(chunk, (size_t)n);
  }
  close(fd);
  return content;
}

size_t CountOf(const std::string &text, const std::string &piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) {
    count++;
  }
  return count;
}

// A note as PutMsgToTrace writes it, up to its time stamp.
std::string Note(const std::string &text) {
  return "|  *** " + text + " ***  [";
}

struct RequestFiles {
  const TempDir &dir;
  // Writes `size` bytes to the request file and sets its modification time
  // to `modified`.
  void Make(const std::string &name, size_t size, time_t modified) const {
    dir.Write(name, std::string(size, '0'));
    Stamp(name, modified);
  }
  void Stamp(const std::string &name, time_t modified) const {
    struct utimbuf times;
    times.actime = modified;
    times.modtime = modified;
    ASSERT_EQ(utime(dir.File(name).c_str(), &times), 0) << name << ": " << strerror(errno);
  }
};

// ---- one name ------------------------------------------------------------------------

struct RequestCheckTest : ::testing::Test {
  TempDir dir;
  RequestFiles files{dir};
  ExitControlBlock *cb = nullptr;
  time_t now = time(nullptr);
  void SetUp() override {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/", dir.Path().c_str());
  }
  void TearDown() override { free(cb); }
  int32_t CheckAll() { return CheckUpdateRequestFileExistence(cb, 0, 0); }
};

TEST_F(RequestCheckTest, NamesOfEveryProcessOneProcessAndOneThread) {
  char path[128];
  ASSERT_GT(BuildUpdateRequestPath(cb, 0, 0, path, sizeof path), 0);
  EXPECT_EQ(std::string(path), dir.Path() + "/signal_all_all.set");
  ASSERT_GT(BuildUpdateRequestPath(cb, 4242, 0, path, sizeof path), 0);
  EXPECT_EQ(std::string(path), dir.Path() + "/signal_4242_all.set");
  ASSERT_GT(BuildUpdateRequestPath(cb, 4242, 4294967295u, path, sizeof path), 0);
  EXPECT_EQ(std::string(path), dir.Path() + "/signal_4242_4294967295.set");
  // A path that does not fit is no path, not a cut one.
  EXPECT_EQ(BuildUpdateRequestPath(cb, 4242, 7, path, 20), -1);
  EXPECT_STREQ(path, "");
  cb->File.TraceDirectory[0] = '\0';
  EXPECT_EQ(BuildUpdateRequestPath(cb, 0, 0, path, sizeof path), -1);
}

TEST_F(RequestCheckTest, SizeGivesTheKind) {
  struct {
    size_t size;
    int32_t kind;
  } const cases[] = {
      {0, UPDATE_REQUEST_RENEW},    {9, UPDATE_REQUEST_RENEW},   {10, UPDATE_REQUEST_DISABLE},
      {19, UPDATE_REQUEST_DISABLE}, {20, UPDATE_REQUEST_ENABLE}, {4096, UPDATE_REQUEST_ENABLE},
  };
  time_t modified = now - 100;
  for (const auto &c : cases) {
    // Each a second later than the one before, so that each is new.
    files.Make(kAllName, c.size, ++modified);
    EXPECT_EQ(CheckAll(), c.kind) << c.size << " bytes";
    EXPECT_EQ(cb->UpdateRequestTime, (int32_t)modified);
  }
  EXPECT_EQ(UpdateRequestKindOfSize(INT64_C(3000000000)), UPDATE_REQUEST_ENABLE);
}

TEST_F(RequestCheckTest, OnlyALaterTimeIsANewRequest) {
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE); // no file
  EXPECT_EQ(cb->UpdateRequestTime, 0);
  files.Make(kAllName, 10, now - 10);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_DISABLE);
  // The same file again, the same second, an earlier second: nothing.
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  files.Make(kAllName, 25, now - 10);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  files.Make(kAllName, 25, now - 11);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  EXPECT_EQ(cb->UpdateRequestTime, (int32_t)(now - 10));
  files.Make(kAllName, 25, now - 9);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_ENABLE);
  // Removed: nothing, and the newest time stays.
  unlink(dir.File(kAllName).c_str());
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  EXPECT_EQ(cb->UpdateRequestTime, (int32_t)(now - 9));
}

TEST_F(RequestCheckTest, TheNewestTimeIsSharedByAllNames) {
  files.Make(kAllName, 0, now - 10);
  files.Make("signal_4242_all.set", 10, now - 10);
  files.Make("signal_4242_7.set", 25, now - 20);
  EXPECT_EQ(CheckUpdateRequestFileExistence(cb, 0, 0), UPDATE_REQUEST_RENEW);
  // Not later than what the "all" name carried.
  EXPECT_EQ(CheckUpdateRequestFileExistence(cb, 4242, 0), UPDATE_REQUEST_NONE);
  EXPECT_EQ(CheckUpdateRequestFileExistence(cb, 4242, 7), UPDATE_REQUEST_NONE);
  files.Stamp("signal_4242_7.set", now - 5);
  EXPECT_EQ(CheckUpdateRequestFileExistence(cb, 4242, 7), UPDATE_REQUEST_ENABLE);
  EXPECT_EQ(CheckUpdateRequestFileExistence(cb, 0, 0), UPDATE_REQUEST_NONE);
}

// A link, a directory or a FIFO at a request name is no request: it is not
// followed, not opened, and its time is not taken.
TEST_F(RequestCheckTest, LinkDirectoryAndFifoAreNoRequests) {
  files.Make("target", 25, now - 5);
  ASSERT_EQ(symlink(dir.File("target").c_str(), dir.File(kAllName).c_str()), 0);
  // What it points to is a new enable request: followed, it would count.
  files.Stamp(kAllName, now - 4);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  unlink(dir.File(kAllName).c_str());
  ASSERT_EQ(symlink("/nonexistent/wz-target", dir.File(kAllName).c_str()), 0);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  unlink(dir.File(kAllName).c_str());

  ASSERT_EQ(mkdir(dir.File(kAllName).c_str(), 0700), 0);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE);
  rmdir(dir.File(kAllName).c_str());

  ASSERT_EQ(mkfifo(dir.File(kAllName).c_str(), 0600), 0);
  files.Stamp(kAllName, now - 3);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_NONE); // returns at once: nothing opens it
  unlink(dir.File(kAllName).c_str());
  EXPECT_EQ(cb->UpdateRequestTime, 0);

  // A regular file older than all of them is still new.
  files.Make(kAllName, 10, now - 60);
  EXPECT_EQ(CheckAll(), UPDATE_REQUEST_DISABLE);
}

// ---- on a connection -----------------------------------------------------------------

struct UpdateRequestTest : ::testing::Test {
  TempDir dir;
  RequestFiles files{dir};
  TestConnection conn{dir.Path(), "/opt/app/bin/payroll"};
  ExitControlBlock *cb = nullptr;
  time_t now = time(nullptr);
  // Seconds before now of the next request file: each is a second newer.
  time_t next = now - 100;

  virtual std::string Parameters() { return ""; }

  void SetUp() override {
    gTestXep.Reset();
    dir.Write("wz.def", "ShowZkVersion=no\n" + Parameters());
    Connect();
  }
  void Connect() {
    wzEntry(&conn.Axp, &conn.Axc, &conn.CompCode, &conn.Reason);
    cb = ControlBlockOf(&conn.Axp);
    ASSERT_NE(cb, nullptr);
    ASSERT_EQ(cb->FatalError, 0);
  }
  void TearDown() override {
    if (conn.Axp.ExitChainAreaPtr != nullptr) {
      conn.Axp.ExitReason = ZKXR_CONNECTION;
      conn.Axp.Function = ZKXF_TERM;
      Terminate(&conn.Axp, &conn.Axc, &conn.CompCode, &conn.Reason);
    }
    gTestXep.Reset();
  }

  // A request file of `size` bytes, newer than every one before it.
  void Request(const std::string &name, size_t size) { files.Make(name, size, ++next); }
  int32_t Seek() { return SeekUpdateRequestFiles(conn.Axp.ExitData, cb); }

  // The trace files of the connection, sorted by name.
  std::vector<std::string> TraceFiles() {
    std::vector<std::string> names;
    for (const std::string &name : dir.List()) {
      if (name.rfind(kStem, 0) == 0) {
        names.push_back(name);
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  std::string Current() {
    FlushTraceDataInBuffer(cb);
    return ReadPath(cb->File.TraceFilePath);
  }
  std::string ErrorFile() {
    for (const std::string &name : dir.List()) {
      if (name.rfind("wz_apiexit_error_", 0) == 0) {
        return dir.Read(name);
      }
    }
    return "";
  }
};

TEST_F(UpdateRequestTest, DisableClosesTheFileWithItsSuffix) {
  ASSERT_EQ(cb->ExecStatus, 1);
  ASSERT_EQ(TraceFiles(), std::vector<std::string>{std::string(kStem) + "001.t"});
  Request(kAllName, 10);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_EQ(TraceFileIsOpen(cb), 0);
  ASSERT_EQ(TraceFiles(), std::vector<std::string>{std::string(kStem) + "001.txt.f"});
  std::string closed = dir.Read(std::string(kStem) + "001.txt.f");
  EXPECT_EQ(CountOf(closed, Note("Disabled")), 1u);
  // The note comes before the file's closing summary.
  EXPECT_LT(closed.find(Note("Disabled")), closed.rfind("|Call summary"));
}

TEST_F(UpdateRequestTest, DisableWhileDisabledChangesNothing) {
  Request(kAllName, 15);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  std::vector<std::string> before = TraceFiles();
  std::string closed = dir.Read(before[0]);
  Request(kAllName, 19);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_EQ(TraceFiles(), before);
  EXPECT_EQ(dir.Read(before[0]), closed);
}

TEST_F(UpdateRequestTest, EnableOpensANewFileWithItsNote) {
  Request(kAllName, 10);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  Request(kAllName, 20);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_ENABLE);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(cb->File.RotationPermitted, 0);
  ASSERT_EQ(TraceFiles(), (std::vector<std::string>{std::string(kStem) + "001.txt.f",
                                                    std::string(kStem) + "002.t"}));
  std::string opened = Current();
  EXPECT_NE(opened.find("|  Parameter file     : "), std::string::npos) << opened;
  EXPECT_EQ(CountOf(opened, Note("Enabled")), 1u);

  // Enabled already: nothing more.
  Request(kAllName, 30);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_ENABLE);
  EXPECT_EQ(TraceFiles().size(), 2u);
  EXPECT_EQ(CountOf(Current(), Note("Enabled")), 1u);
}

TEST_F(UpdateRequestTest, EmptyAllFileRereadsTheParameterFile) {
  ASSERT_EQ(cb->Settings.TargetQueueCount, 0);
  dir.Write("wz.def", "ShowZkVersion=no\nTargetQueue=ORDERS.*\nMaxParsedOutputLineLength=77\n");
  Request(kAllName, 0);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->Settings.TargetQueueCount, 1);
  EXPECT_STREQ(cb->Settings.TargetQueue[0].QueueName, "ORDERS.*");
  EXPECT_EQ(cb->Settings.MaxParsedOutputLineLength, 77);
  EXPECT_EQ(cb->ExecStatus, 1);
  ASSERT_EQ(TraceFiles(), (std::vector<std::string>{std::string(kStem) + "001.txt.f",
                                                    std::string(kStem) + "002.t"}));
  EXPECT_EQ(CountOf(dir.Read(std::string(kStem) + "001.txt.f"), Note("Disabled for renew")), 1u);
  std::string opened = Current();
  EXPECT_EQ(CountOf(opened, Note("Enabled for renew")), 1u);
  // The new file's profile shows the settings read now.
  EXPECT_NE(opened.find("ORDERS.*"), std::string::npos) << opened;
  EXPECT_EQ(cb->File.RotationPermitted, 0);
}

TEST_F(UpdateRequestTest, RenewKeepsTheWriteBufferSizeAndTheCounts) {
  int32_t size = cb->WriteBufferSize;
  ASSERT_EQ(cb->Settings.WriteBufferSize, 10000);
  cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount = 17;
  cb->Counters.Statistics[0][COUNTER_CUMULATIVE].OkCount = 5;
  dir.Write("wz.def", "ShowZkVersion=no\nWriteBufferSize=50000\nWriteInterval=7\n");
  Request(kAllName, 9);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->Settings.WriteInterval, 7);
  EXPECT_EQ(cb->Settings.WriteBufferSize, 10000);
  EXPECT_EQ(cb->WriteBufferSize, size);
  EXPECT_EQ(cb->Counters.Totals[COUNTER_CUMULATIVE].CallCount, 17u);
  EXPECT_EQ(cb->Counters.Statistics[0][COUNTER_CUMULATIVE].OkCount, 5u);
}

TEST_F(UpdateRequestTest, RenewRebuildsTheCharacterMapOfDumps) {
  CodeRangeMap *before = (CodeRangeMap *)malloc(sizeof(CodeRangeMap));
  CodeRangeMap *after = (CodeRangeMap *)malloc(sizeof(CodeRangeMap));
  FillCodeRangeMap(before, cb->Settings.ShowHexCharCcsid);
  FillCodeRangeMap(after, 1208);
  ASSERT_NE(memcmp(before, after, sizeof(CodeRangeMap)), 0) << "the maps must differ to tell";
  ASSERT_EQ(memcmp(&cb->CodeRange, before, sizeof(CodeRangeMap)), 0);
  dir.Write("wz.def", "ShowZkVersion=no\nShowHexCharCcsid=1208\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(memcmp(&cb->CodeRange, after, sizeof(CodeRangeMap)), 0);
  free(before);
  free(after);
}

TEST_F(UpdateRequestTest, RenewSelectsTheOpenHandlesAgain) {
  const char *names[] = {"ORDERS.IN", "AUDIT.LOG"};
  for (int i = 0; i < 2; i++) {
    char name48[48];
    SetFixedField(name48, 48, names[i]);
    PreProcessOpenBefore(cb, name48);
    queueHandleListSetHandleToLastEntry(cb, 101 + i, name48, nullptr);
  }
  dir.Write("wz.def", "ShowZkVersion=no\nTargetQueue=ORDERS.*,P\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  ZKHOBJ orders = 101, audit = 102;
  PreProcessManageHandle(cb, ZKXF_PUT, &orders);
  EXPECT_EQ(cb->Call.QueueSelected, 1);
  PreProcessManageHandle(cb, ZKXF_GET, &orders);
  EXPECT_EQ(cb->Call.QueueSelected, 0);
  PreProcessManageHandle(cb, ZKXF_PUT, &audit);
  EXPECT_EQ(cb->Call.QueueSelected, 0);

  // And back: no list selects everything.
  dir.Write("wz.def", "ShowZkVersion=no\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  int32_t index = queueHandleListSearchEntryByHandle(cb, 102, 1);
  ASSERT_GE(index, 0);
  EXPECT_EQ(cb->Handles.HandleList[index].GetFlag, 1);
  PreProcessManageHandle(cb, ZKXF_PUT, &audit);
  EXPECT_EQ(cb->Call.QueueSelected, 1);
}

// The before-call at which the renew is noticed was selected under the old
// settings: it is selected again under the new ones.
TEST_F(UpdateRequestTest, TheCallThatMeetsARenewIsSelectedByTheNewList) {
  cb->Settings.CheckUpdateRequestInterval = 1;
  ZKLONG compCode = 0, reason = 0;
  char name48[48];
  SetFixedField(name48, 48, "ORDERS.IN");
  conn.Axp.Function = ZKXF_OPEN;
  conn.Axp.ExitReason = ZKXR_BEFORE;
  cb->LastUpdateCheck = time(nullptr) + 5;
  ASSERT_EQ(PreProcessForAnExitCall(&conn.Axp, cb, &compCode, &reason, nullptr, name48), RC_OK);
  queueHandleListSetHandleToLastEntry(cb, 101, name48, nullptr);
  ASSERT_EQ(cb->Call.QueueSelected, 1);

  dir.Write("wz.def", "ShowZkVersion=no\nCheckUpdateRequestInterval=1\nTargetQueue=AUDIT.*\n");
  Request(kAllName, 0);
  cb->LastUpdateCheck = time(nullptr) - 1;
  ZKHOBJ orders = 101;
  conn.Axp.Function = ZKXF_PUT;
  EXPECT_EQ(PreProcessForAnExitCall(&conn.Axp, cb, &compCode, &reason, &orders, nullptr), RC_OK);
  EXPECT_EQ(cb->Settings.TargetQueueCount, 1);
  EXPECT_EQ(cb->Call.QueueSelected, 0);

  // An open that meets the renew: its entry and the call itself.
  dir.Write("wz.def", "ShowZkVersion=no\nCheckUpdateRequestInterval=1\nTargetQueue=ORDERS.*,G\n");
  Request(kAllName, 0);
  cb->LastUpdateCheck = time(nullptr) - 1;
  SetFixedField(name48, 48, "ORDERS.OUT");
  conn.Axp.Function = ZKXF_OPEN;
  EXPECT_EQ(PreProcessForAnExitCall(&conn.Axp, cb, &compCode, &reason, nullptr, name48), RC_OK);
  EXPECT_EQ(cb->Call.QueueSelected, 1);
  queueHandleListSetHandleToLastEntry(cb, 102, name48, nullptr);
  int32_t index = queueHandleListSearchEntryByHandle(cb, 102, 1);
  ASSERT_GE(index, 0);
  EXPECT_EQ(cb->Handles.HandleList[index].PutFlag, 0);
  EXPECT_EQ(cb->Handles.HandleList[index].GetFlag, 1);

  // A close of a handle the list does not hold stays unselected.
  dir.Write("wz.def", "ShowZkVersion=no\nCheckUpdateRequestInterval=1\nTargetQueue=*\n");
  Request(kAllName, 0);
  cb->LastUpdateCheck = time(nullptr) - 1;
  ZKHOBJ unknown = 555;
  conn.Axp.Function = ZKXF_CLOSE;
  EXPECT_EQ(PreProcessForAnExitCall(&conn.Axp, cb, &compCode, &reason, &unknown, nullptr), RC_OK);
  EXPECT_EQ(cb->Settings.TargetQueueCount, 1);
  EXPECT_EQ(cb->Call.QueueSelected, 0);
}

TEST_F(UpdateRequestTest, RenewToAnotherProcessListNotesTheName) {
  dir.Write("wz.def", "ShowZkVersion=no\nTargetProcess=billing\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_EQ(cb->ProcessNameMatch, 0);
  EXPECT_EQ(TraceFileIsOpen(cb), 0);
  ASSERT_EQ(TraceFiles(), (std::vector<std::string>{std::string(kStem) + "001.txt.f",
                                                    std::string(kStem) + "002.txt"}));
  std::string last = dir.Read(std::string(kStem) + "002.txt");
  EXPECT_EQ(CountOf(last, Note("Process name payroll is not in target process name list.")), 1u)
      << last;
  EXPECT_EQ(CountOf(last, "Enabled for renew"), 0u);
}

TEST_F(UpdateRequestTest, RenewToExecFlagNoNotesItAndAnEnableTurnsItOn) {
  dir.Write("wz.def", "ShowZkVersion=no\nExecFlag=no\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->ExecStatus, 0);
  ASSERT_EQ(TraceFiles().size(), 2u);
  std::string last = dir.Read(std::string(kStem) + "002.txt");
  EXPECT_EQ(CountOf(last, Note("ExecFlag=no or ExecFlag=env is set in parameter file.")), 1u);

  // While off, a renew closes nothing (there is nothing open) and notes
  // again why the process is not traced.
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(CountOf(dir.Read(std::string(kStem) + "003.txt"), "Disabled for renew"), 0u);

  Request(kAllName, 20);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_ENABLE);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(CountOf(Current(), Note("Enabled")), 1u);
}

TEST_F(UpdateRequestTest, RenewWithoutEmptyFilesLeavesNoFile) {
  dir.Write("wz.def", "ShowZkVersion=no\nExecFlag=no\nCreateEmptyFile=no\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_EQ(TraceFiles(), std::vector<std::string>{std::string(kStem) + "001.txt.f"});
}

TEST_F(UpdateRequestTest, RenewReportsBadLinesAsAtStartUp) {
  ASSERT_EQ(ErrorFile(), "");
  dir.Write("wz.def", "ShowZkVersion=no\nWriteCash=yes\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  std::string errors = ErrorFile();
  EXPECT_EQ(CountOf(errors, "Invalid parameter was found in " + dir.Path() + "/wz.def file."), 1u)
      << errors;
  EXPECT_EQ(CountOf(errors, "  Line : 2   Parameter : WriteCash=yes"), 1u) << errors;
  EXPECT_EQ(cb->ExecStatus, 1);
}

// A parameter file that cannot be read gives the defaults, as at start-up;
// one that is a FIFO does not hold the call up.
TEST_F(UpdateRequestTest, RenewWithoutAReadableParameterFileTakesTheDefaults) {
  dir.Write("wz.def", "ShowZkVersion=no\nTargetQueue=ORDERS.*\n");
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  ASSERT_EQ(cb->Settings.TargetQueueCount, 1);
  unlink(dir.File("wz.def").c_str());
  ASSERT_EQ(mkfifo(dir.File("wz.def").c_str(), 0600), 0);
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->Settings.TargetQueueCount, 0);
  EXPECT_EQ(cb->Settings.ParameterFilePath[0], '\0');
  EXPECT_EQ(cb->ExecStatus, 1);
  unlink(dir.File("wz.def").c_str());
  Request(kAllName, 0);
  ASSERT_EQ(Seek(), UPDATE_REQUEST_RENEW);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(cb->FatalError, 0);
}

TEST_F(UpdateRequestTest, PerThreadRequestOlderThanTheAllFileIsIgnored) {
  files.Make(kAllName, 10, now - 10);
  files.Make(kContextName, 0, now - 20);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_EQ(cb->Settings.TargetQueueCount, 0);
  // Touched again, now the newest: it counts.
  files.Stamp(kContextName, now - 5);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_RENEW);
}

TEST_F(UpdateRequestTest, TheNarrowestNewRequestCounts) {
  files.Make(kAllName, 10, now - 30);
  files.Make(ProcessName(), 0, now - 20);
  files.Make(RunningThreadName(), 10, now - 15);
  files.Make(kContextName, 25, now - 10);
  // All four are new, each later than the one tested before it.
  EXPECT_EQ(Seek(), UPDATE_REQUEST_ENABLE);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(TraceFiles().size(), 1u); // enabled already: nothing done
  EXPECT_EQ(cb->UpdateRequestTime, (int32_t)(now - 10));
}

TEST_F(UpdateRequestTest, EachNameReachesTheConnection) {
  Request(ProcessName(), 10);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 0);
  Request(RunningThreadName(), 20);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_ENABLE);
  EXPECT_EQ(cb->ExecStatus, 1);
  Request(kContextName, 10);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 0);
  // Names of other processes and threads are not the connection's.
  Request("signal_4242_8.set", 20);
  Request("signal_4243_all.set", 20);
  Request("signal_4243_7.set", 20);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_NONE);
  EXPECT_EQ(cb->ExecStatus, 0);
}

TEST_F(UpdateRequestTest, WithoutADirectoryTimesAreOnlyRecorded) {
  Request(kAllName, 10);
  EXPECT_EQ(SeekUpdateRequestFiles(nullptr, cb), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(cb->UpdateRequestTime, (int32_t)next);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_NONE);
  EXPECT_EQ(cb->ExecStatus, 1);
}

// The dispatcher looks before calls, at the interval, and not before
// after-calls or the data conversion.
TEST_F(UpdateRequestTest, TheDispatcherLooksBeforeCallsAtTheInterval) {
  cb->Settings.CheckUpdateRequestInterval = 1;
  ZKLONG compCode = 0, reason = 0;
  auto call = [&](int32_t function, int32_t exitReason) {
    conn.Axp.Function = function;
    conn.Axp.ExitReason = exitReason;
    return PreProcessForAnExitCall(&conn.Axp, cb, &compCode, &reason, nullptr, nullptr);
  };
  Request(kAllName, 10);
  cb->LastUpdateCheck = time(nullptr) - 1;
  EXPECT_EQ(call(ZKXF_BEGIN, ZKXR_AFTER), RC_OK);
  EXPECT_EQ(call(ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE), RC_OK);
  EXPECT_EQ(cb->ExecStatus, 1);
  // Not yet a whole interval since the last look.
  cb->LastUpdateCheck = time(nullptr) + 5;
  EXPECT_EQ(call(ZKXF_BEGIN, ZKXR_BEFORE), RC_OK);
  EXPECT_EQ(cb->ExecStatus, 1);
  // 0: never.
  cb->Settings.CheckUpdateRequestInterval = 0;
  cb->LastUpdateCheck = 0;
  EXPECT_EQ(call(ZKXF_BEGIN, ZKXR_BEFORE), RC_OK);
  EXPECT_EQ(cb->ExecStatus, 1);
  cb->Settings.CheckUpdateRequestInterval = 1;
  cb->LastUpdateCheck = time(nullptr) - 1;
  EXPECT_EQ(call(ZKXF_BEGIN, ZKXR_BEFORE), RC_NOP);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_GE(cb->LastUpdateCheck, now);
  EXPECT_EQ(call(ZKXF_BEGIN, ZKXR_AFTER), RC_NOP);

  // Enabled again at a before-call: that call is traced.
  Request(kAllName, 20);
  cb->LastUpdateCheck = time(nullptr) - 1;
  EXPECT_EQ(call(ZKXF_CMIT, ZKXR_BEFORE), RC_OK);
  EXPECT_EQ(cb->ExecStatus, 1);
}

// Request files that exist when the connection is made are not requests
// until they are touched again.
struct UpdateRequestStartTest : UpdateRequestTest {
  void SetUp() override {
    gTestXep.Reset();
    dir.Write("wz.def", "ShowZkVersion=no\n");
    files.Make(kAllName, 10, now - 50);
    files.Make(kContextName, 0, now - 40);
    Connect();
  }
};

TEST_F(UpdateRequestStartTest, FilesPresentAtStartUpAreIgnoredUntilTouched) {
  EXPECT_EQ(cb->UpdateRequestTime, (int32_t)(now - 40));
  EXPECT_EQ(Seek(), UPDATE_REQUEST_NONE);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(TraceFiles().size(), 1u);
  files.Stamp(kAllName, now - 30);
  EXPECT_EQ(Seek(), UPDATE_REQUEST_DISABLE);
  EXPECT_EQ(cb->ExecStatus, 0);
}

} // namespace
