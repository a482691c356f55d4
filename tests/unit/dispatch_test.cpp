#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include "exit/control_block.h"
#include "exit/dispatch.h"
#include "exit/handle_list.h"
#include "exit/process_filter.h"
#include "tests/unit/test_support.h"

namespace {

struct DispatchTest : ::testing::Test {
  ExitControlBlock *cb = nullptr;
  ZKAXP axp;
  ZKLONG compCode = 0, reason = 0;
  void SetUp() override {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    SetDefaultParameterSettings(&cb->Settings);
    cb->Settings.CheckUpdateRequestInterval = 0;
    cb->Handles.HandleList = (QueueHandleEntry *)calloc(HANDLE_LIST_STEP, sizeof(QueueHandleEntry));
    cb->Handles.HandleCapacity = HANDLE_LIST_STEP;
    cb->ExecStatus = 1;
    memset(&axp, 0, sizeof axp);
  }
  void TearDown() override {
    free(cb->Handles.HandleList);
    free(cb);
  }
  void TargetQueue(const char *name, uint8_t p = 1, uint8_t g = 1, uint8_t i = 1, uint8_t s = 1) {
    TargetQueueEntry &e = cb->Settings.TargetQueue[cb->Settings.TargetQueueCount++];
    strcpy(e.QueueName, name);
    e.P = p, e.G = g, e.I = i, e.S = s;
  }
  const char *SelectedBy(const char *queue) {
    strcpy(cb->Call.CurrentQueueName, queue);
    const TargetQueueEntry *e = SearchTargetQueueParmEntry(cb);
    return e != nullptr ? e->QueueName : "(none)";
  }
  int32_t Call(int32_t function, int32_t exitReason, const ZKHOBJ *hobj = nullptr,
               const char *name = nullptr) {
    axp.Function = function;
    axp.ExitReason = exitReason;
    return PreProcessForAnExitCall(&axp, cb, &compCode, &reason, hobj, name);
  }
  // Opens a queue as the handlers do: before, then the returned handle.
  void Open(const char *name, ZKHOBJ handle) {
    char name48[48];
    SetFixedField(name48, 48, name);
    Call(ZKXF_OPEN, ZKXR_BEFORE, nullptr, name48);
    queueHandleListSetHandleToLastEntry(
        cb, handle, cb->Handles.HandleList[cb->Handles.HandleCount - 1].QueueName, nullptr);
  }
};

} // namespace

TEST_F(DispatchTest, LongestWildcardWinsWhateverTheOrder) {
  TargetQueue("A*");
  TargetQueue("AB*");
  TargetQueue("*");
  EXPECT_STREQ(SelectedBy("ABC"), "AB*");
  EXPECT_STREQ(SelectedBy("XYZ"), "*");
  cb->Settings.TargetQueueCount = 0;
  TargetQueue("*");
  TargetQueue("AB*");
  EXPECT_STREQ(SelectedBy("ABC"), "AB*");
}

TEST_F(DispatchTest, ExactNameWinsAtOnce) {
  TargetQueue("AB*");
  TargetQueue("ABC");
  EXPECT_STREQ(SelectedBy("ABC"), "ABC");
  cb->Settings.TargetQueueCount = 0;
  TargetQueue("ABC");
  TargetQueue("AB*");
  EXPECT_STREQ(SelectedBy("ABC"), "ABC");
}

TEST_F(DispatchTest, LaterStarOfEqualLengthWinsAndStarInsideIsPlain) {
  TargetQueue("*", 1, 0, 0, 0);
  TargetQueue("*", 0, 1, 0, 0);
  EXPECT_EQ(SearchTargetQueueParmEntry((strcpy(cb->Call.CurrentQueueName, "Q"), cb)),
            &cb->Settings.TargetQueue[1]);
  cb->Settings.TargetQueueCount = 0;
  TargetQueue("A*C");
  EXPECT_STREQ(SelectedBy("ABC"), "(none)");
  EXPECT_STREQ(SelectedBy("A*C"), "A*C");
}

TEST_F(DispatchTest, QueueNamesAreCaseSensitive) {
  TargetQueue("APP.IN");
  EXPECT_STREQ(SelectedBy("app.in"), "(none)");
  EXPECT_STREQ(SearchTargetQueueParmEntry(cb) == nullptr ? "(none)" : "x", "(none)");
}

TEST_F(DispatchTest, OpenAddsEntryWithTheEntryFlags) {
  TargetQueue("APP.*", 1, 0, 1, 0);
  Open("APP.IN", 100);
  EXPECT_EQ(cb->Call.QueueSelected, 1);
  const QueueHandleEntry &e = cb->Handles.HandleList[0];
  EXPECT_EQ(e.Hobj, 100);
  EXPECT_EQ(e.OpenFlag + e.CloseFlag + e.PutFlag + e.GetFlag + e.InqFlag + e.SetFlag, 4);
  EXPECT_EQ(e.GetFlag, 0);
  Open("OTHER", 101);
  EXPECT_EQ(cb->Call.QueueSelected, 0);
  ZKHOBJ h = 100;
  Call(ZKXF_PUT, ZKXR_BEFORE, &h);
  EXPECT_EQ(cb->Call.QueueSelected, 1);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "APP.IN");
  Call(ZKXF_GET, ZKXR_BEFORE, &h);
  EXPECT_EQ(cb->Call.QueueSelected, 0);
}

TEST_F(DispatchTest, CloseOfUnknownHandleIsReportedAgainstUnknown) {
  Open("Q1", 5);
  ZKHOBJ h = 77;
  Call(ZKXF_CLOSE, ZKXR_BEFORE, &h);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "(unknown)");
  EXPECT_EQ(cb->Call.QueueSelected, 1); // no TargetQueue list: everything is selected
  TargetQueue("Q1");
  Call(ZKXF_CLOSE, ZKXR_BEFORE, &h);
  EXPECT_EQ(cb->Call.QueueSelected, 0);
}

TEST_F(DispatchTest, CloseRemovesTheEntryBeforeTheCall) {
  Open("Q1", 5);
  ZKHOBJ h = 5;
  Call(ZKXF_CLOSE, ZKXR_BEFORE, &h);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "Q1");
  EXPECT_EQ(cb->Handles.HandleCount, 0);
}

TEST_F(DispatchTest, DataConversionKeepsTheNames) {
  Open("Q1", 5);
  ZKHOBJ h = 5;
  Call(ZKXF_GET, ZKXR_BEFORE, &h);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "Q1");
  cb->Settings.CheckUpdateRequestInterval = 1;
  cb->LastUpdateCheck = 0;
  EXPECT_EQ(Call(ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE, &h), RC_OK);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "Q1");
  EXPECT_EQ(cb->LastUpdateCheck, 0); // no update check on the data-conversion point
}

TEST_F(DispatchTest, BeforeCallsCheckForUpdatesAtTheInterval) {
  cb->Settings.CheckUpdateRequestInterval = 30;
  cb->LastUpdateCheck = 0;
  Call(ZKXF_CMIT, ZKXR_BEFORE);
  EXPECT_GT(cb->LastUpdateCheck, 0);
  time_t checked = cb->LastUpdateCheck;
  Call(ZKXF_CMIT, ZKXR_BEFORE);
  EXPECT_EQ(cb->LastUpdateCheck, checked);
  cb->LastUpdateCheck = 5;
  Call(ZKXF_CMIT, ZKXR_AFTER);
  EXPECT_EQ(cb->LastUpdateCheck, 5); // after-calls never look
}

// An interval near the largest the file can give must not wrap around and
// make every call look for requests.
TEST_F(DispatchTest, HugeUpdateIntervalNeverComesDue) {
  const int32_t intervals[] = {352000000, 2147483000, INT32_MAX};
  for (int32_t interval : intervals) {
    cb->Settings.CheckUpdateRequestInterval = interval;
    cb->LastUpdateCheck = time(nullptr);
    time_t checked = cb->LastUpdateCheck - 1;
    cb->LastUpdateCheck = checked;
    Call(ZKXF_CMIT, ZKXR_BEFORE);
    EXPECT_EQ(cb->LastUpdateCheck, checked) << interval;
  }
}

TEST_F(DispatchTest, ExecStatusAndFatalErrorDecide) {
  EXPECT_EQ(Call(ZKXF_CMIT, ZKXR_BEFORE), RC_OK);
  EXPECT_EQ(cb->Call.CurrentFunction, ZKXF_CMIT);
  cb->ExecStatus = 2; // only exactly 1 counts as on
  EXPECT_EQ(Call(ZKXF_CMIT, ZKXR_BEFORE), RC_NOP);
  EXPECT_EQ(Call(ZKXF_CMIT, ZKXR_AFTER), RC_NOP);
  cb->ExecStatus = 1;
  cb->FatalError = 1;
  EXPECT_EQ(Call(ZKXF_CMIT, ZKXR_BEFORE), RC_NOP);
}

TEST_F(DispatchTest, HandleListIsKeptWhileTracingIsOff) {
  cb->ExecStatus = 0;
  Open("Q1", 5);
  EXPECT_EQ(cb->Handles.HandleCount, 1);
  ZKHOBJ h = 5;
  EXPECT_EQ(Call(ZKXF_CLOSE, ZKXR_BEFORE, &h), RC_NOP);
  EXPECT_EQ(cb->Handles.HandleCount, 0);
}

TEST_F(DispatchTest, ProcessFilterTargetWinsOverExclude) {
  strcpy(cb->Identity.ProcessName, "APPPUT0");
  strcpy(cb->Settings.TargetProcess[0], "appput*");
  cb->Settings.TargetProcessCount = 1;
  strcpy(cb->Settings.ExcludeProcess[0], "APPPUT0");
  cb->Settings.ExcludeProcessCount = 1;
  EXPECT_EQ(SetExecStatusFlagAndProcessNameMatchFlag(cb), 0);
  EXPECT_EQ(cb->ExecStatus, 1);
  EXPECT_EQ(cb->ProcessNameMatch, 1);
}

TEST_F(DispatchTest, ProcessFilterExcludeAndEmptyFileRule) {
  strcpy(cb->Identity.ProcessName, "myapp_nd");
  strcpy(cb->Settings.ExcludeProcess[0], "myapp");
  cb->Settings.ExcludeProcessCount = 1;
  cb->Settings.CreateEmptyFile = 1;
  EXPECT_EQ(SetExecStatusFlagAndProcessNameMatchFlag(cb), 0);
  EXPECT_EQ(cb->ExecStatus, 0);
  cb->Settings.CreateEmptyFile = 0;
  EXPECT_EQ(SetExecStatusFlagAndProcessNameMatchFlag(cb), -1);
  cb->Settings.ExecFlag = 0;
  cb->Settings.ExcludeProcessCount = 0;
  EXPECT_EQ(SetExecStatusFlagAndProcessNameMatchFlag(cb), -1);
  EXPECT_EQ(cb->ProcessNameMatch, 1);
  cb->Settings.CreateEmptyFile = 1;
  EXPECT_EQ(SetExecStatusFlagAndProcessNameMatchFlag(cb), 0);
}
