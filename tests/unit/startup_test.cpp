#include <gtest/gtest.h>

#include <dlfcn.h>
#include <string.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "exit/startup.h"
#include "tests/unit/startup_fixture.h"
#include "tests/unit/test_support.h"

extern "C" void wzEntryDebug(PZKAXP, PZKAXC, PZKLONG, PZKLONG);

namespace {

// The handler name a recorded entry point resolves to.
std::string NameOf(PZKFUNC f) {
  Dl_info info;
  if (dladdr(reinterpret_cast<void *>(f), &info) != 0 && info.dli_sname != nullptr) {
    return info.dli_sname;
  }
  return "?";
}

std::vector<std::string> Expected(bool init, bool v7, bool xa) {
  std::vector<std::string> rows;
  if (init) {
    rows.push_back("3 1 Initialize");
  }
  rows.push_back("3 2 Terminate");
  auto pair = [&rows](int function, const char *name) {
    rows.push_back("1 " + std::to_string(function) + " " + name + "Before");
    rows.push_back("2 " + std::to_string(function) + " " + name + "After");
  };
  pair(ZKXF_CONN, "Conn");
  pair(ZKXF_CONNX, "Connx");
  pair(ZKXF_DISC, "Disc");
  pair(ZKXF_BEGIN, "Begin");
  pair(ZKXF_CMIT, "Cmit");
  pair(ZKXF_BACK, "Back");
  pair(ZKXF_OPEN, "Open");
  pair(ZKXF_CLOSE, "Close");
  pair(ZKXF_PUT1, "Put1");
  pair(ZKXF_PUT, "Put");
  rows.push_back("1 10 GetBefore");
  rows.push_back("1 11 GetBefore");
  rows.push_back("2 10 GetAfter");
  pair(ZKXF_INQ, "Inq");
  pair(ZKXF_SET, "Set");
  if (v7) {
    pair(ZKXF_STAT, "Stat");
    pair(ZKXF_SUB, "Sub");
    pair(ZKXF_SUBRQ, "Subrq");
    pair(ZKXF_CTL, "Ctl");
    pair(ZKXF_CB, "Cb");
    pair(ZKXF_CALLBACK, "Callback");
  }
  if (xa) {
    pair(ZKXF_XACLOSE, "XaClose");
    pair(ZKXF_XACOMMIT, "XaCommit");
    pair(ZKXF_XACOMPLETE, "XaComplete");
    pair(ZKXF_XAEND, "XaEnd");
    pair(ZKXF_XAFORGET, "XaForget");
    pair(ZKXF_XAOPEN, "XaOpen");
    pair(ZKXF_XAPREPARE, "XaPrepare");
    pair(ZKXF_XARECOVER, "XaRecover");
    pair(ZKXF_XAROLLBACK, "XaRollback");
    pair(ZKXF_XASTART, "XaStart");
    pair(ZKXF_AXREG, "AxReg");
    pair(ZKXF_AXUNREG, "AxUnreg");
  }
  return rows;
}

std::vector<std::string> Recorded() {
  std::vector<std::string> rows;
  for (const RecordedRegistration &r : gTestXep.Calls) {
    rows.push_back(std::to_string(r.ExitReason) + " " + std::to_string(r.Function) + " " +
                   NameOf(r.EntryPoint));
  }
  return rows;
}

} // namespace

TEST_F(StartupTest, Version2RegistersFortyOneFunctionsInOrder) {
  TestConnection c = Connect("/opt/app/bin/payroll");
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_OK);
  EXPECT_EQ(c.Axp.ExitResponse2, ZKXR2_DEFAULT_CONTINUATION);
  EXPECT_EQ(gTestXep.Calls.size(), 41u);
  EXPECT_EQ(Recorded(), Expected(true, true, false));
  ASSERT_TRUE(gTestXep.Calls[0].HadOptions);
  EXPECT_EQ(gTestXep.Calls[0].ExitProperty, "ApiExit");
  for (size_t i = 1; i < gTestXep.Calls.size(); i++) {
    EXPECT_FALSE(gTestXep.Calls[i].HadOptions);
  }
  auto *cb = (ExitControlBlock *)c.Axp.ExitChainAreaPtr;
  ASSERT_NE(cb, nullptr);
  EXPECT_EQ(cb->Identity.ApiLevel, API_LEVEL_700);
  EXPECT_EQ(c.CompCode, 0); // the connection's own codes are not touched
  EXPECT_EQ(c.Reason, 0);
  Disconnect(c);
  EXPECT_EQ(c.Axp.ExitChainAreaPtr, nullptr);
}

TEST_F(StartupTest, Version1RegistersTwentyEightAndNoV7Group) {
  dir.Write("wz.def", "ShowXaCalls=yes\n");
  TestConnection c = Connect("payroll", 1);
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_OK);
  EXPECT_EQ(gTestXep.Calls.size(), 28u);
  EXPECT_EQ(Recorded(), Expected(false, false, false));
  EXPECT_EQ(((ExitControlBlock *)c.Axp.ExitChainAreaPtr)->Identity.ApiLevel, API_LEVEL_600);
  Disconnect(c);
}

TEST_F(StartupTest, ShowXaCallsAddsTheTransactionGroup) {
  dir.Write("wz.def", "ShowXaCalls=yes\n");
  TestConnection c = Connect("payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 65u);
  EXPECT_EQ(Recorded(), Expected(true, true, true));
  Disconnect(c);
}

TEST_F(StartupTest, ControlBlockIsFilledFromTheConnection) {
  TestConnection c = Connect("/opt/app/bin/payroll");
  auto *cb = (ExitControlBlock *)c.Axp.ExitChainAreaPtr;
  ASSERT_NE(cb, nullptr);
  EXPECT_STREQ(cb->EyeCatcher, "KT5RCB");
  EXPECT_EQ(memcmp(cb->ChainHeader.StrucId, "ACH ", 4), 0);
  EXPECT_EQ(cb->ChainHeader.Version, 1);
  EXPECT_EQ(cb->ChainHeader.StrucLength, 68);
  EXPECT_EQ(cb->ChainHeader.ChainAreaLength,
            (ZKLONG)(sizeof(ExitControlBlock) + cb->Settings.WriteBufferSize));
  EXPECT_EQ(cb->ChainHeader.NextChainAreaPtr, nullptr);
  EXPECT_EQ(cb->WriteBufferSize, cb->Settings.WriteBufferSize);
  EXPECT_EQ(std::string(cb->File.TraceDirectory), dir.Path() + "/");
  EXPECT_STREQ(cb->Identity.ProcessName, "payroll");
  EXPECT_STREQ(cb->Identity.ApplName, "/opt/app/bin/payroll");
  EXPECT_STREQ(cb->Identity.UserId, "alice");
  EXPECT_STREQ(cb->Identity.QMgrName, "ZKQM1");
  EXPECT_STREQ(cb->Identity.ExitInfoName, "wz");
  EXPECT_STREQ(cb->Identity.EntryName, "wzEntry");
  EXPECT_STREQ(cb->Identity.ApiCallerTypeText, "EXTERNAL");
  EXPECT_STREQ(cb->Identity.EnvironmentText, "OTHER");
  EXPECT_STREQ(cb->Identity.ApplTypeText, "UNIX");
  EXPECT_STREQ(cb->Identity.ProgramVersion, "7.52");
  EXPECT_STREQ(cb->Identity.BuildVariant, "Common to single thread and multi thread");
  EXPECT_EQ(cb->Identity.ZkaxcProcessId, 4242);
  EXPECT_EQ(cb->Identity.ZkaxcThreadId, 7);
  EXPECT_EQ(cb->Identity.ProcessId, (int32_t)getpid());
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(cb->ExitType, EXIT_TYPE_API);
  EXPECT_EQ(cb->Debug, 0);
  EXPECT_EQ(cb->File.RotationPermitted, 0); // cleared once the first header is written
  EXPECT_EQ(cb->Handles.HandleCapacity, 100);
  EXPECT_NE(cb->Handles.HandleList, nullptr);
  EXPECT_NE(cb->Clock.StartTimeText[0], '\0');
  Disconnect(c);
}

TEST_F(StartupTest, DebugEntryMarksTheBlock) {
  TestConnection c(dir.Path(), "payroll");
  wzEntryDebug(&c.Axp, &c.Axc, &c.CompCode, &c.Reason);
  auto *cb = (ExitControlBlock *)c.Axp.ExitChainAreaPtr;
  ASSERT_NE(cb, nullptr);
  EXPECT_EQ(cb->Debug, 1);
  EXPECT_STREQ(cb->Identity.EntryName, "wzEntryDebug");
  Disconnect(c);
}

TEST_F(StartupTest, ShutdownCommandIsNeverTraced) {
  for (const char *name : {"/opt/x/bin/endzkm", "ENDZKM", "endzkmx"}) {
    gTestXep.Reset();
    TestConnection c = Connect(name);
    EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_OK) << name;
    EXPECT_EQ(c.Axp.ExitResponse2, ZKXR2_DEFAULT_CONTINUATION) << name;
    EXPECT_EQ(c.Axp.ExitChainAreaPtr, nullptr) << name;
    EXPECT_TRUE(gTestXep.Calls.empty()) << name;
  }
}

TEST_F(StartupTest, MixedCaseShutdownNameIsTraced) {
  TestConnection c = Connect("/opt/x/bin/EndZkm");
  EXPECT_EQ(gTestXep.Calls.size(), 41u);
  EXPECT_NE(c.Axp.ExitChainAreaPtr, nullptr);
  Disconnect(c);
}

TEST_F(StartupTest, ProcessNameIsWhatFollowsTheLastBlankOrSlash) {
  char out[80];
  char appl[28];
  SetFixedField(appl, 28, "my prog");
  DeriveProcessName(appl, out);
  EXPECT_STREQ(out, "prog");
  SetFixedField(appl, 28, "/a/b/c/app");
  DeriveProcessName(appl, out);
  EXPECT_STREQ(out, "app");
  SetFixedField(appl, 28, "plain");
  DeriveProcessName(appl, out);
  EXPECT_STREQ(out, "plain");
}

TEST_F(StartupTest, BlankExitDataFailsWithAlert2101) {
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(dir.Path().c_str()), 0);
  TestConnection c("", "payroll");
  wzEntry(&c.Axp, &c.Axc, &c.CompCode, &c.Reason);
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_FAILED);
  EXPECT_EQ(c.Axp.ExitResponse2, ZKXR2_SUPPRESS_CHAIN);
  EXPECT_EQ(c.Axp.ExitChainAreaPtr, nullptr);
  EXPECT_TRUE(gTestXep.Calls.empty());
  EXPECT_NE(ErrorFile().find("[payroll] (" + std::to_string(getpid())), std::string::npos)
      << ErrorFile();
  EXPECT_NE(ErrorFile().find("Msg2101: Path name must be specified"), std::string::npos);
}

TEST_F(StartupTest, FailedRegistrationStopsWithFailedResponseAndAlert1021) {
  gTestXep.FailAt = 5;
  gTestXep.FailReason = 2298; // function not supported
  TestConnection c = Connect("payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 5u);
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_FAILED);
  EXPECT_EQ(c.Axp.ExitResponse2, ZKXR2_SUPPRESS_CHAIN);
  EXPECT_NE(ErrorFile().find("Msg1021: ZK API error. Function:ZKXEP CompCode:2 Reason:2298 "
                             "(ZKRC_FUNCTION_NOT_SUPPORTED)  Parms:"),
            std::string::npos)
      << ErrorFile();
  // The block stays: the functions registered so far may still be called.
  ASSERT_NE(c.Axp.ExitChainAreaPtr, nullptr);
  Disconnect(c);
}

TEST_F(StartupTest, FailuresInsideTheTransactionGroupDoNotStopIt) {
  dir.Write("wz.def", "ShowXaCalls=yes\n");
  gTestXep.FailFunction = ZKXF_XACOMMIT;
  gTestXep.FailReason = 2298;
  TestConnection c = Connect("payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 65u);
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_OK);
  size_t alerts = 0;
  for (size_t at = ErrorFile().find("Msg1021"); at != std::string::npos;
       at = ErrorFile().find("Msg1021", at + 1)) {
    alerts++;
  }
  EXPECT_EQ(alerts, 2u);
  Disconnect(c);
}

TEST_F(StartupTest, FailureOfTheFirstV7RegistrationStopsBeforeTheRest) {
  gTestXep.FailFunction = ZKXF_STAT;
  gTestXep.FailReason = 2298;
  TestConnection c = Connect("payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 30u);
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_FAILED);
  Disconnect(c);
}

TEST_F(StartupTest, ExcludedProcessWithNoExitOptionRegistersNothing) {
  dir.Write("wz.def", "NoExitProcessIfProcNameMismatch=yes\nTargetProcess=other\n"
                      "CreateEmptyFile=no\n");
  TestConnection c = Connect("payroll");
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_OK);
  EXPECT_EQ(c.Axp.ExitResponse2, 0);
  EXPECT_TRUE(gTestXep.Calls.empty());
  // The freed block is not left behind in the chain area.
  EXPECT_EQ(c.Axp.ExitChainAreaPtr, nullptr);
}

TEST_F(StartupTest, ExcludedProcessWithoutNoExitOptionStaysRegistered) {
  dir.Write("wz.def", "TargetProcess=other\nCreateEmptyFile=no\n");
  TestConnection c = Connect("payroll");
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_OK);
  EXPECT_EQ(gTestXep.Calls.size(), 41u);
  auto *cb = (ExitControlBlock *)c.Axp.ExitChainAreaPtr;
  ASSERT_NE(cb, nullptr);
  EXPECT_EQ(cb->ExecStatus, 0);
  EXPECT_EQ(cb->ProcessNameMatch, 0);
  EXPECT_EQ(cb->File.RotationPermitted, 1); // no trace file was started
  Disconnect(c);
}

TEST_F(StartupTest, BadParameterLinesAreReportedAndStartUpGoesOn) {
  dir.Write("wz.def", "WriteBufferSize=4999\nbogus line\nShowXaCalls=yes\n");
  TestConnection c = Connect("payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 65u);
  std::string errors = ErrorFile();
  EXPECT_NE(errors.find("Msg2008: Invalid parameter was found in " + dir.Path() + "/wz.def file."),
            std::string::npos)
      << errors;
  EXPECT_NE(errors.find("Msg2009:   Line : 1   Parameter : WriteBufferSize=4999\n"),
            std::string::npos);
  EXPECT_NE(errors.find("Msg2009:   Line : 2   Parameter : bogus line\n"), std::string::npos);
  Disconnect(c);
}

TEST_F(StartupTest, WriteBufferSizeSizesTheBlock) {
  dir.Write("wz.def", "WriteBufferSize=65536\n");
  TestConnection c = Connect("payroll");
  auto *cb = (ExitControlBlock *)c.Axp.ExitChainAreaPtr;
  ASSERT_NE(cb, nullptr);
  EXPECT_EQ(cb->WriteBufferSize, 65536);
  EXPECT_EQ(cb->ChainHeader.ChainAreaLength, (ZKLONG)(sizeof(ExitControlBlock) + 65536));
  Disconnect(c);
}

namespace {

// The one trace file in the directory, by its name's start and end.
std::string OnlyTraceFile(const TempDir &dir, const std::string &suffix) {
  std::string found;
  for (const std::string &name : dir.List()) {
    if (name.rfind("wz_", 0) == 0 && name.rfind("wz_apiexit_error", 0) != 0 &&
        name.size() > suffix.size() &&
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
      EXPECT_TRUE(found.empty()) << "more than one trace file: " << found << ", " << name;
      found = name;
    }
  }
  return found;
}

} // namespace

TEST_F(StartupTest, ExecFlagNoWithEmptyFileWritesTheReasonAndCloses) {
  dir.Write("wz.def", "ExecFlag=no\nCreateEmptyFile=yes\n");
  TestConnection c = Connect("/opt/app/bin/payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 41u); // still registered
  std::string name = OnlyTraceFile(dir, ".txt");
  ASSERT_FALSE(name.empty());
  EXPECT_EQ(name, "wz_ZKQM1_payroll_4242_7_001.txt");
  std::string text = dir.Read(name);
  EXPECT_NE(text.find("|Program information\n"), std::string::npos);
  EXPECT_NE(text.find("<INIT\n(CONNECTION\n"), std::string::npos);
  EXPECT_NE(text.find("|  *** ExecFlag=no or ExecFlag=env is set in parameter file. ***  ["),
            std::string::npos)
      << text;
  Disconnect(c);
  EXPECT_EQ(OnlyTraceFile(dir, ".t"), "");
}

TEST_F(StartupTest, ProcessNotInTargetListWithEmptyFileSaysSo) {
  dir.Write("wz.def", "TargetProcess=other\nCreateEmptyFile=yes\n");
  TestConnection c = Connect("/opt/app/bin/payroll");
  std::string name = OnlyTraceFile(dir, ".txt");
  ASSERT_FALSE(name.empty());
  EXPECT_NE(
      dir.Read(name).find("|  *** Process name payroll is not in target process name list. ***  ["),
      std::string::npos)
      << dir.Read(name);
  Disconnect(c);
}

TEST_F(StartupTest, ExecFlagNoWithoutEmptyFileWritesNoFile) {
  dir.Write("wz.def", "ExecFlag=no\nCreateEmptyFile=no\n");
  TestConnection c = Connect("/opt/app/bin/payroll");
  EXPECT_EQ(gTestXep.Calls.size(), 41u);
  EXPECT_EQ(OnlyTraceFile(dir, ".txt"), "");
  EXPECT_EQ(OnlyTraceFile(dir, ".t"), "");
  Disconnect(c);
  EXPECT_EQ(OnlyTraceFile(dir, ".txt"), "");
}

TEST_F(StartupTest, TracedConnectionKeepsItsFileOpenUntilTermination) {
  TestConnection c = Connect("/opt/app/bin/payroll");
  std::string open = OnlyTraceFile(dir, ".t");
  ASSERT_EQ(open, "wz_ZKQM1_payroll_4242_7_001.t");
  Disconnect(c);
  EXPECT_EQ(OnlyTraceFile(dir, ".t"), "");
  std::string text = dir.Read("wz_ZKQM1_payroll_4242_7_001.txt");
  EXPECT_NE(text.find("<INIT\n(CONNECTION\n"), std::string::npos) << text;
  EXPECT_NE(text.find("<TERM\n(CONNECTION\n"), std::string::npos) << text;
}
