// The hand-written conversions on the hot paths give exactly what the
// printf formats they replace would give.
#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <string>

#include "exit/control_block.h"
#include "exit/counting.h"
#include "output/timing.h"
#include "format/field_primitives.h"

namespace {

std::string Printf(const char *format, long long value, int width) {
  char text[64];
  snprintf(text, sizeof text, format, width, value);
  return text;
}

std::string Decimal64(int64_t value, int32_t width, uint8_t zeroPad) {
  char out[64];
  int32_t n = FormatDecimalInt64(out, value, width, zeroPad);
  return std::string(out, (size_t)n);
}

std::string StampOf(const struct timeval &now) {
  struct tm local;
  time_t seconds = now.tv_sec;
  localtime_r(&seconds, &local);
  char text[64];
  snprintf(text, sizeof text, "[%04d/%02d/%02d %02d:%02d:%02d.%06ld]", local.tm_year + 1900,
           local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
           (long)now.tv_usec);
  return text;
}

} // namespace

TEST(NumberFormat, DecimalMatchesPrintf) {
  srand(12345);
  const int64_t edges[] = {0,
                           1,
                           -1,
                           9,
                           10,
                           99999,
                           -100000,
                           2147483647LL,
                           -2147483648LL,
                           4294967295LL,
                           INT64_MAX,
                           INT64_MIN + 1};
  for (int64_t value : edges) {
    for (int width : {0, 1, 5, 12, 22}) {
      EXPECT_EQ(Decimal64(value, width, 0), Printf("%*lld", value, width)) << value;
      EXPECT_EQ(Decimal64(value, width, 1), Printf("%0*lld", value, width)) << value;
    }
  }
  for (int i = 0; i < 100000; i++) {
    int64_t value = ((int64_t)rand() << 32 | (uint32_t)rand()) >> (rand() % 60);
    if (rand() % 2) {
      value = -value;
    }
    int width = rand() % 16;
    ASSERT_EQ(Decimal64(value, width, 0), Printf("%*lld", value, width)) << value;
  }
}

TEST(NumberFormat, UnsignedMatchesPrintf) {
  for (uint32_t value : {0u, 7u, 1000u, 65535u, 4294967295u}) {
    char out[64];
    int32_t n = FormatDecimalUInt32(out, value, 8, 0);
    char expected[64];
    snprintf(expected, sizeof expected, "%8u", value);
    EXPECT_EQ(std::string(out, (size_t)n), expected);
  }
}

TEST(NumberFormat, ProcessTimeMatchesPrintfAlsoWhenNegative) {
  for (int64_t us : {0LL, 5LL, 999999LL, 1000000LL, 1234567LL, 123456789012LL, -1LL, -1500000LL}) {
    char text[32];
    FormatProcessTime(text, us);
    char expected[64];
    snprintf(expected, sizeof expected, "%5lld.%06lld", (long long)(us / 1000000),
             (long long)(us % 1000000));
    EXPECT_STREQ(text, expected) << us;
    ReformatProcessTime(text, sizeof text, us);
    EXPECT_STREQ(text, expected) << us;
  }
}

TEST(NumberFormat, TimeStampIsTheLocalTimeOfItsTimeval) {
  struct timeval now;
  char text[TIME_STAMP_TEXT_SIZE];
  SetTimeAndShow(&now, text);
  EXPECT_EQ(text, StampOf(now));
}

TEST(NumberFormat, RecordTimeStampFollowsSecondsAcrossTheCache) {
  auto *cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
  for (int i = 0; i < 3; i++) {
    struct timeval now;
    int32_t n = SetRecordTimeAndShow(cb, &now);
    EXPECT_EQ(std::string(cb->Clock.RecordTimeText, (size_t)n), StampOf(now));
    EXPECT_EQ(strlen(cb->Clock.RecordTimeText), (size_t)n);
    if (i == 1) {
      struct timespec pause = {1, 100000000}; // into the next second
      nanosleep(&pause, nullptr);
    }
  }
  free(cb);
}
