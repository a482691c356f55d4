// What the tests of the structure formatters share: a capture block whose
// call state can be set (function, exit reason, completion code), and the
// comparison of a whole formatted structure with a file of expected lines.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "exit/control_block.h"
#include "tests/unit/field_line_test.h"

#ifndef WZ_UNIT_EXPECTED_DIR
#error "WZ_UNIT_EXPECTED_DIR must name tests/unit/expected"
#endif

struct StructureTest : FieldLineTest {
  // The call the structure is shown for.
  void SetCall(int32_t function, int32_t exitReason, int32_t compCode) {
    cb->Call.CurrentFunction = function;
    cb->Call.CurrentExitReason = exitReason;
    cb->Call.CurrentCompCode = compCode;
  }
};

// The text of tests/unit/expected/<name>.
std::string ExpectedStructureText(const std::string &name);

// The banner that an unknown value writes after its line.
std::string UnknownBanner(const std::string &name, const std::string &hexValue);

// Writes tests/unit/expected/<name> when the environment variable
// WZ_BLESS_STRUCTURES is set (to write a new expected file, which is then
// read line by line against what the structure must show); false otherwise.
bool BlessStructureText(const std::string &text, const std::string &name);

// Compares text with an expected file line by line, so that a failure names
// the first line that differs.
#define EXPECT_STRUCTURE_TEXT(text, name)                                                          \
  do {                                                                                             \
    std::string gotText_ = (text);                                                                 \
    BlessStructureText(gotText_, name);                                                            \
    std::string expectedText_ = ExpectedStructureText(name);                                       \
    std::vector<std::string> got_ = TextLines(gotText_), want_ = TextLines(expectedText_);         \
    for (size_t i_ = 0; i_ < got_.size() && i_ < want_.size(); i_++) {                             \
      ASSERT_EQ(got_[i_], want_[i_]) << name << " line " << i_ + 1;                                \
    }                                                                                              \
    EXPECT_EQ(got_.size(), want_.size()) << name;                                                  \
    EXPECT_EQ(gotText_, expectedText_) << name;                                                    \
  } while (0)
