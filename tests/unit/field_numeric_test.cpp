// Numbers with thousands separators.
#include <gtest/gtest.h>

#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "output/profile.h"
#include "text/number_text.h"
#include "tests/unit/capture.h"

namespace {

std::string Formatted(uint64_t value, char separator) {
  char area[28];
  int32_t length = FormatNumericWithSeparators(area, value, separator);
  EXPECT_EQ((size_t)length, strlen(area));
  return area;
}

// Makes a locale whose decimal point is a comma available in a temporary
// directory; false when the tools for it are missing.
bool MakeCommaLocale(const TempDir &dir, std::string *name) {
  std::string command =
      "localedef -i de_DE -f UTF-8 " + dir.Path() + "/de_DE.UTF-8 >/dev/null 2>&1";
  if (system(command.c_str()) != 0) {
    return false;
  }
  setenv("LOCPATH", dir.Path().c_str(), 1);
  *name = "de_DE.UTF-8";
  return true;
}

} // namespace

TEST(FieldNumeric, GroupsOfThree) {
  EXPECT_EQ(Formatted(0, ','), "0");
  EXPECT_EQ(Formatted(7, ','), "7");
  EXPECT_EQ(Formatted(999, ','), "999");
  EXPECT_EQ(Formatted(1000, ','), "1,000");
  EXPECT_EQ(Formatted(100000, ','), "100,000");
  EXPECT_EQ(Formatted(1234567, ','), "1,234,567");
  EXPECT_EQ(Formatted(1234567, '.'), "1.234.567");
  EXPECT_EQ(Formatted(UINT64_MAX, ','), "18,446,744,073,709,551,615");
}

TEST(FieldNumeric, ShownWithoutNewlineInTheCLocale) {
  CaptureBlock capture;
  ASSERT_NE(setlocale(LC_NUMERIC, "C"), nullptr);
  EXPECT_EQ(NumericGroupSeparator(), ',');
  ReformatAndShowNumericValue(capture.cb(), 1234567);
  EXPECT_EQ(capture.Take(), "1,234,567");
  ReformatAndShowNumericValue(capture.cb(), 5000000000ULL);
  EXPECT_EQ(capture.Take(), "5,000,000,000");
  ReformatAndShowNumericValue(capture.cb(), 12);
  EXPECT_EQ(capture.Take(), "12");
}

TEST(FieldNumeric, CommaDecimalPointGivesDotSeparators) {
  TempDir dir;
  std::string name;
  if (!MakeCommaLocale(dir, &name) || setlocale(LC_NUMERIC, name.c_str()) == nullptr) {
    unsetenv("LOCPATH");
    GTEST_SKIP() << "no locale with a decimal comma can be made here";
  }
  char probe[8];
  snprintf(probe, sizeof probe, "%3.1f", 0.0);
  EXPECT_EQ(probe[1], ',');
  EXPECT_EQ(NumericGroupSeparator(), '.');
  CaptureBlock capture;
  ReformatAndShowNumericValue(capture.cb(), 1234567);
  EXPECT_EQ(capture.Take(), "1.234.567");
  setlocale(LC_NUMERIC, "C");
  unsetenv("LOCPATH");
}
