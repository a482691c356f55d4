// The indexed names of functions and exit reasons agree with the table
// look-up for every value, known or not.
#include <gtest/gtest.h>

#include <stdint.h>
#include <string.h>

#include "text/call_names.h"
#include "text/constant_table.h"
#include "zk/zk.h"

namespace {

const int32_t kValues[] = {INT32_MIN, -1000, -1, 0, 17, 63, 64, 65, 1000, INT32_MAX};

TEST(CallNames, FunctionNamesAgreeWithTheTable) {
  for (int32_t f = -5; f < 200; f++) {
    ASSERT_STREQ(FunctionName(f), SearchConstantInt(f, Constant_Function)) << f;
  }
  for (int32_t f : kValues) {
    ASSERT_STREQ(FunctionName(f), SearchConstantInt(f, Constant_Function)) << f;
  }
  EXPECT_STREQ(FunctionName(ZKXF_PUT), "ZKPUT");
  EXPECT_STREQ(FunctionName(ZKXF_AXUNREG), "ax_unreg");
  EXPECT_STREQ(FunctionName(17), "(Unknown Function)");
}

TEST(CallNames, ExitReasonNamesAgreeWithTheTable) {
  for (int32_t r = -5; r < 200; r++) {
    ASSERT_STREQ(ExitReasonName(r), SearchConstantInt(r, Constant_ExitReason)) << r;
  }
  for (int32_t r : kValues) {
    ASSERT_STREQ(ExitReasonName(r), SearchConstantInt(r, Constant_ExitReason)) << r;
  }
  EXPECT_STREQ(ExitReasonName(ZKXR_BEFORE), "BEFORE");
  EXPECT_STREQ(ExitReasonName(ZKXR_CLWL_REPOS_MOVE), "CLWL_REPOS_MOVE");
}

} // namespace
