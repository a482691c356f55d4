// A control block for alert tests: a temporary trace directory, process
// "payroll", process id 77 and thread id 88.
#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include <string>

#include "exit/control_block.h"
#include "tests/unit/test_support.h"

struct AlertsTest : ::testing::Test {
  TempDir dir;
  ExitControlBlock *cb = nullptr;
  void SetUp() override {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/", dir.Path().c_str());
    strcpy(cb->Identity.ProcessName, "payroll");
    cb->Identity.ProcessId = 77;
    cb->Identity.ThreadId = 88;
  }
  void TearDown() override { free(cb); }
  std::string ErrorFile() { return dir.Read("wz_apiexit_error_77_88.txt"); }
};
