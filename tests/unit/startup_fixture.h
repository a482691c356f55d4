// A connection made through the entry function against a temporary exit
// data directory, with the registrations recorded by the test ZKXEP.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "exit/control_block.h"
#include "tests/unit/test_support.h"

extern "C" void wzEntry(PZKAXP, PZKAXC, PZKLONG, PZKLONG);
extern "C" void Terminate(PZKAXP, PZKAXC, PZKLONG, PZKLONG);

struct StartupTest : ::testing::Test {
  TempDir dir;
  void SetUp() override { gTestXep.Reset(); }
  void TearDown() override { gTestXep.Reset(); }

  // Connects, returns the connection; the control block is left in place.
  TestConnection Connect(const std::string &applName, ZKLONG axpVersion = 2) {
    TestConnection c(dir.Path(), applName, axpVersion);
    wzEntry(&c.Axp, &c.Axc, &c.CompCode, &c.Reason);
    return c;
  }
  void Disconnect(TestConnection &c) {
    if (c.Axp.ExitChainAreaPtr != nullptr) {
      c.Axp.ExitReason = ZKXR_CONNECTION;
      c.Axp.Function = ZKXF_TERM;
      Terminate(&c.Axp, &c.Axc, &c.CompCode, &c.Reason);
    }
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
