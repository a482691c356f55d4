#include <gtest/gtest.h>

#include <stdlib.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "exit/handle_list.h"
#include "tests/unit/test_support.h"

namespace {

struct HandleListTest : ::testing::Test {
  ExitControlBlock *cb = nullptr;
  void SetUp() override {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    cb->Handles.HandleList = (QueueHandleEntry *)calloc(HANDLE_LIST_STEP, sizeof(QueueHandleEntry));
    cb->Handles.HandleCapacity = HANDLE_LIST_STEP;
  }
  void TearDown() override {
    free(cb->Handles.HandleList);
    free(cb);
  }
  void Open(int32_t handle, const char *name, const char *resolved = nullptr) {
    queueHandleListAddEntry(cb, name, 1, 1, 1, 1, 1, 1);
    queueHandleListSetHandleToLastEntry(cb, handle, name, resolved);
  }
};

} // namespace

TEST_F(HandleListTest, HandlesOpenedOutOfOrderEndUpSorted) {
  Open(30, "Q30");
  Open(10, "Q10");
  Open(20, "Q20");
  ASSERT_EQ(cb->Handles.HandleCount, 3);
  EXPECT_EQ(cb->Handles.HandleList[0].Hobj, 10);
  EXPECT_EQ(cb->Handles.HandleList[1].Hobj, 20);
  EXPECT_EQ(cb->Handles.HandleList[2].Hobj, 30);
  EXPECT_STREQ(cb->Handles.HandleList[0].QueueName, "Q10");
  EXPECT_STREQ(cb->Handles.HandleList[2].QueueName, "Q30");
}

TEST_F(HandleListTest, HundredthAddGrowsToTwoHundredFirst) {
  for (int32_t i = 1; i <= 99; i++) {
    Open(i, "Q");
  }
  EXPECT_EQ(cb->Handles.HandleCapacity, 100);
  queueHandleListAddEntry(cb, "LAST", 1, 1, 1, 1, 1, 1);
  EXPECT_EQ(cb->Handles.HandleCapacity, 200);
  EXPECT_EQ(cb->Handles.HandleCount, 100);
  EXPECT_STREQ(cb->Handles.HandleList[99].QueueName, "LAST");
  EXPECT_EQ(cb->Handles.HandleList[98].Hobj, 99); // the old entries were kept
}

TEST_F(HandleListTest, NullHandlesAndEmptyList) {
  EXPECT_EQ(queueHandleListSearchEntryByHandle(cb, 5, 1), -1);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "(unknown)");
  Open(7, "Q7");
  EXPECT_EQ(queueHandleListSearchEntryByHandle(cb, 0, 0), -1);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "(null)");
  EXPECT_EQ(queueHandleListSearchEntryByHandle(cb, -1, 0), -1);
  EXPECT_STREQ(cb->Call.CurrentQueueName, "(null)");
}

TEST_F(HandleListTest, SearchFindsByBisectionAndGivesInsertionPlace) {
  for (int32_t i = 1; i <= 50; i++) {
    Open(i * 10, ("Q" + std::to_string(i * 10)).c_str());
  }
  for (int32_t i = 1; i <= 50; i++) {
    int32_t index = queueHandleListSearchEntryByHandle(cb, i * 10, 1);
    ASSERT_EQ(index, i - 1);
    EXPECT_EQ(std::string(cb->Call.CurrentQueueName), "Q" + std::to_string(i * 10));
  }
  EXPECT_EQ(queueHandleListSearchEntryByHandle(cb, 255, 1), -1);
  EXPECT_EQ(queueHandleListSearchEntryByHandle(cb, 255, 0), 25);
}

TEST_F(HandleListTest, ResolvedNameIsKeptWhenItDiffers) {
  Open(5, "APP.ALIAS", "APP.TARGET");
  EXPECT_STREQ(cb->Call.CurrentQueueName, "APP.ALIAS");
  EXPECT_STREQ(cb->Call.ResolvedQueueName, "APP.TARGET");
  Open(6, "APP.LOCAL", "APP.LOCAL");
  EXPECT_STREQ(cb->Call.ResolvedQueueName, "");
  queueHandleListSearchEntryByHandle(cb, 5, 1);
  EXPECT_STREQ(cb->Call.ResolvedQueueName, "APP.TARGET");
  queueHandleListSearchEntryByHandle(cb, 6, 1);
  EXPECT_STREQ(cb->Call.ResolvedQueueName, "");
}

TEST_F(HandleListTest, AliasLookUpByResolvedName) {
  Open(5, "APP.ALIAS", "APP.TARGET");
  Open(6, "APP.LOCAL", "APP.LOCAL");
  EXPECT_STREQ(queueHandleListSearchAliasNameByRealName(cb, "APP.TARGET"), "APP.ALIAS");
  EXPECT_EQ(queueHandleListSearchAliasNameByRealName(cb, "APP.LOCAL"), nullptr);
  EXPECT_EQ(queueHandleListSearchAliasNameByRealName(cb, "OTHER"), nullptr);
  EXPECT_EQ(queueHandleListSearchAliasNameByRealName(cb, nullptr), nullptr);
}

TEST_F(HandleListTest, DeleteEntryAndLastEntry) {
  Open(10, "A");
  Open(20, "B");
  Open(30, "C");
  queueHandleListDeleteEntry(cb, 1);
  ASSERT_EQ(cb->Handles.HandleCount, 2);
  EXPECT_EQ(cb->Handles.HandleList[1].Hobj, 30);
  EXPECT_EQ(cb->Handles.HandleList[2].Hobj, 0); // the freed slot is zeroed
  queueHandleListAddEntry(cb, "D", 1, 1, 1, 1, 1, 1);
  queueHandleListDeleteLastEntry(cb);
  EXPECT_EQ(cb->Handles.HandleCount, 2);
  queueHandleListDeleteLastEntry(cb);
  queueHandleListDeleteLastEntry(cb);
  EXPECT_EQ(cb->Handles.HandleCount, 0);
}

TEST_F(HandleListTest, NamesAreCutAtFortyEightAndTrimmed) {
  char name[60];
  memset(name, 'N', sizeof name);
  name[59] = '\0';
  queueHandleListAddEntry(cb, name, 1, 1, 1, 1, 1, 1);
  EXPECT_EQ(strlen(cb->Handles.HandleList[0].QueueName), 48u);
  queueHandleListAddEntry(cb, "  Q1   ", 1, 1, 1, 1, 1, 1);
  EXPECT_STREQ(cb->Handles.HandleList[1].QueueName, "Q1");
}

TEST_F(HandleListTest, AnEntryThatCannotBeAddedIsReportedAndLeavesTheListAsItWas) {
  TempDir dir;
  snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/", dir.Path().c_str());
  Open(7, "Q7");
  QueueHandleEntry *list = cb->Handles.HandleList;
  // A list so long that growing it cannot be allocated.
  int32_t count = cb->Handles.HandleCount;
  int32_t capacity = cb->Handles.HandleCapacity;
  cb->Handles.HandleCount = 0x40000000;
  cb->Handles.HandleCapacity = 0x40000000;
  EXPECT_EQ(queueHandleListAddEntry(cb, "NEW", 1, 1, 1, 1, 1, 1), -1);
  EXPECT_EQ(cb->Handles.HandleCount, 0x40000000);
  EXPECT_EQ(cb->Handles.HandleList, list);
  std::vector<std::string> files = dir.List();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_NE(dir.Read(files[0]).find("Msg1010: No more memory is available."), std::string::npos);
  cb->Handles.HandleCount = count;
  cb->Handles.HandleCapacity = capacity;
  EXPECT_EQ(queueHandleListAddEntry(cb, "NEW", 1, 1, 1, 1, 1, 1), 0);
}
