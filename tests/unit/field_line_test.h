// What the tests of field lines share: a fixture with a capture block, and
// the name part of a field line built independently of the code under test.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/capture.h"

struct FieldLineTest : ::testing::Test {
  CaptureBlock capture;
  ExitControlBlock *cb = capture.cb();
};

// "|> ", the name left-justified in 25 columns, ": ".
inline std::string FieldLineName(const std::string &name) {
  std::string padded = name;
  if (padded.size() < 25) {
    padded.append(25 - padded.size(), ' ');
  }
  return "|> " + padded + ": ";
}
