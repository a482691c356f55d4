#include <gtest/gtest.h>

#include "text/name_match.h"

TEST(CompareModuleNameNocase, ExactAndCaseInsensitive) {
  EXPECT_EQ(CompareModuleNameNocase("payroll", "payroll"), 1);
  EXPECT_EQ(CompareModuleNameNocase("PayRoll", "pAYROLL"), 1);
  EXPECT_EQ(CompareModuleNameNocase("payroll", "payrolls"), 0);
}

TEST(CompareModuleNameNocase, IgnoresNdAndExeSuffixes) {
  EXPECT_EQ(CompareModuleNameNocase("myapp_nd", "myapp"), 1);
  EXPECT_EQ(CompareModuleNameNocase("myapp", "MYAPP_ND"), 1);
  EXPECT_EQ(CompareModuleNameNocase("myapp.exe", "myapp"), 1);
  EXPECT_EQ(CompareModuleNameNocase("myapp_xx", "myapp"), 0);
}

TEST(CompareModuleNameNocase, StarAtStartMatchesEverything) {
  EXPECT_EQ(CompareModuleNameNocase("anything", "*"), 1);
  EXPECT_EQ(CompareModuleNameNocase("*x", "anything"), 1);
}

TEST(CompareModuleNameNocase, StarAtEndIsAPrefixOnEitherSide) {
  EXPECT_EQ(CompareModuleNameNocase("APPPUT0", "appput*"), 1);
  EXPECT_EQ(CompareModuleNameNocase("appput*", "appput0"), 1);
  EXPECT_EQ(CompareModuleNameNocase("appget0", "appput*"), 0);
  EXPECT_EQ(CompareModuleNameNocase("a*b", "axb"), 0);
}
