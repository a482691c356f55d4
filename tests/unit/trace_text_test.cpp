// The trace text builder: what each append writes, and the two ways a full
// buffer is taken (written out, or cut).
#include <gtest/gtest.h>

#include <stdint.h>
#include <stdio.h>

#include <string>

#include "output/trace_text.h"
#include "tests/unit/capture.h"

namespace {

// Counts the compiler cannot see through, so that it does not warn about
// the fast path of an append that these counts never take.
int32_t Opaque(int32_t value) {
  volatile int32_t v = value;
  return v;
}

std::string Held(TraceText *t) {
  return std::string(t->Buffer, (size_t)t->Length);
}

TEST(TraceText, AppendsTextBytesAndCharacters) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&t, "ab");
  TraceTextAppend(&t, "cdef", 2);
  TraceTextAppend(&t, "xyz", Opaque(-1)); // a negative length appends nothing
  TraceTextAppendString(&t, "ef");
  TraceTextAppendString(&t, nullptr);
  TraceTextAppendChar(&t, '|');
  TraceTextAppendRepeat(&t, '-', 3);
  TraceTextAppendRepeat(&t, '-', Opaque(-2));
  EXPECT_EQ(Held(&t), "abcdef|---");
  EXPECT_EQ(capture.Text(), ""); // nothing reaches the file before the write
  EXPECT_EQ(TraceTextWrite(&t), 0);
  EXPECT_EQ(capture.Take(), "abcdef|---");
  EXPECT_EQ(t.Length, 0);
}

TEST(TraceText, BoundedStopsAtTheLimitOrTheFirstZeroByte) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  const char unterminated[4] = {'W', 'X', 'Y', 'Z'};
  TraceTextAppendBounded(&t, unterminated, 3);
  TraceTextAppendChar(&t, '|');
  TraceTextAppendBounded(&t, "ab\0cd", 5);
  TraceTextAppendBounded(&t, "ignored", 0);
  TraceTextAppendBounded(&t, nullptr, 5);
  EXPECT_EQ(Held(&t), "WXY|ab");
}

TEST(TraceText, PaddedAgreesWithPrintfLeftJustified) {
  const char *samples[] = {"", "PUT", "exactly8", "longer than the width"};
  for (const char *s : samples) {
    CaptureBlock capture;
    TraceText t;
    TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
    TraceTextAppendPadded(&t, s, 8);
    TraceTextAppendChar(&t, '|');
    char expected[64];
    snprintf(expected, sizeof expected, "%-8s|", s);
    EXPECT_EQ(Held(&t), expected);
  }
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  TraceTextAppendPadded(&t, nullptr, 3);
  EXPECT_EQ(Held(&t), "   ");
}

TEST(TraceText, NumbersAgreeWithPrintf) {
  const int64_t samples[] = {0,          1,          9,           10,        99,        100,
                             -1,         -10,        999999,      1000000,   INT32_MAX, INT32_MIN,
                             4294967295, 4294967296, -4294967296, INT64_MAX, INT64_MIN};
  const int32_t widths[] = {0, 1, 3, 8, 12, 25};
  CaptureBlock capture;
  for (int64_t v : samples) {
    for (int32_t w : widths) {
      TraceText t;
      TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
      char expected[128];
      TraceTextAppendInt64(&t, v, w);
      TraceTextAppendChar(&t, '|');
      int n = snprintf(expected, sizeof expected, "%*lld|", (int)w, (long long)v);
      if (v >= INT32_MIN && v <= INT32_MAX) {
        TraceTextAppendInt32(&t, (int32_t)v, w);
        TraceTextAppendChar(&t, '|');
        n += snprintf(expected + n, sizeof expected - (size_t)n, "%*d|", (int)w, (int)v);
      }
      if (v >= 0 && v <= UINT32_MAX) {
        TraceTextAppendUInt32(&t, (uint32_t)v, w);
        TraceTextAppendChar(&t, '|');
        TraceTextAppendZeroPadded(&t, (uint32_t)v, w);
        TraceTextAppendChar(&t, '|');
        TraceTextAppendHex(&t, (uint32_t)v);
        TraceTextAppendChar(&t, '|');
        TraceTextAppendHex32(&t, (uint32_t)v);
        snprintf(expected + n, sizeof expected - (size_t)n, "%*u|%0*u|%X|%08X", (int)w, (unsigned)v,
                 (int)w, (unsigned)v, (unsigned)v, (unsigned)v);
      }
      ASSERT_EQ(Held(&t), expected) << v << " width " << w;
    }
  }
}

TEST(TraceText, FieldNameIsPaddedToItsColumnAndNeverCut) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  TraceTextAppendFieldName(&t, "Priority");
  EXPECT_EQ(Held(&t), "|> Priority                 : ");
  t.Length = 0;
  TraceTextAppendFieldName(&t, "AVeryLongFieldNameBeyondTheColumn");
  EXPECT_EQ(Held(&t), "|> AVeryLongFieldNameBeyondTheColumn: ");
  t.Length = 0;
  TraceTextAppendFieldName(&t, nullptr);
  EXPECT_EQ(Held(&t), "|> " + std::string(FIELD_NAME_WIDTH, ' ') + ": ");
}

TEST(TraceText, SevenBitShowsControlAndHighBytesAsDotsAndStopsAtZero) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  const unsigned char bytes[] = {'A', 0x1F, 0x7F, 0x80, 0xFF, ' ', '~', 0, 'B'};
  EXPECT_EQ(TraceTextAppendSevenBit(&t, bytes, sizeof bytes), 7);
  EXPECT_EQ(Held(&t), "A.... ~");
}

TEST(TraceText, WriteOutWhenFullKeepsEveryByteInOrder) {
  CaptureBlock capture;
  std::string expected;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_WRITE_OUT);
  for (int i = 0; i < 3 * TRACE_TEXT_SIZE / 10 + 5; i++) {
    char piece[16];
    int n = snprintf(piece, sizeof piece, "%09d,", i);
    TraceTextAppend(&t, piece, n);
    expected.append(piece, (size_t)n);
  }
  // The buffer was written out on the way, before the text was finished.
  EXPECT_GE(capture.Text().size(), (size_t)2 * TRACE_TEXT_SIZE);
  TraceTextAppendRepeat(&t, '=', Opaque(2 * TRACE_TEXT_SIZE + 3));
  expected.append((size_t)2 * TRACE_TEXT_SIZE + 3, '=');
  const std::string longText(TRACE_TEXT_SIZE + 7, 'q');
  TraceTextAppendSevenBit(&t, longText.data(), (int32_t)longText.size());
  expected += longText;
  TraceTextAppendUInt32(&t, 42, TRACE_TEXT_SIZE + 1); // wider than the buffer
  expected += std::string(TRACE_TEXT_SIZE - 1, ' ') + "42";
  EXPECT_EQ(TraceTextWrite(&t), 0);
  EXPECT_EQ(capture.Take(), expected);
}

TEST(TraceText, CutWhenFullKeepsTheFirstBytesAndWritesThemOnce) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  const std::string head(TRACE_TEXT_SIZE - 3, 'h');
  TraceTextAppend(&t, head.data(), (int32_t)head.size());
  TraceTextAppendLiteral(&t, "12345");
  TraceTextAppendChar(&t, '!');
  TraceTextAppendRepeat(&t, '-', 10);
  TraceTextAppendInt32(&t, -12345, 0);
  EXPECT_EQ(TraceTextAppendSevenBit(&t, "abc", 3), 0);
  EXPECT_EQ(t.Length, TRACE_TEXT_SIZE);
  EXPECT_EQ(capture.Text(), "");
  TraceTextWrite(&t);
  EXPECT_EQ(capture.Take(), head + "123");
}

TEST(TraceText, CutNumberAtTheEndKeepsItsLeadingCharacters) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  TraceTextAppendRepeat(&t, 'x', TRACE_TEXT_SIZE - 2);
  TraceTextAppendInt32(&t, -98765, 0);
  EXPECT_EQ(Held(&t).substr(TRACE_TEXT_SIZE - 2), "-9");
}

TEST(TraceText, ReserveWritesOutOrRefusesWhenTheRoomIsShort) {
  CaptureBlock capture;
  TraceText out;
  TraceTextStart(&out, capture.cb(), TRACE_TEXT_WRITE_OUT);
  TraceTextAppendRepeat(&out, 'a', TRACE_TEXT_SIZE - 4);
  char *p = TraceTextReserve(&out, 8);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(capture.Text().size(), (size_t)TRACE_TEXT_SIZE - 4); // written out first
  memcpy(p, "reserved", 8);
  TraceTextCommit(&out, p + 8);
  TraceTextWrite(&out);
  EXPECT_EQ(capture.Take(), std::string(TRACE_TEXT_SIZE - 4, 'a') + "reserved");

  TraceText cut;
  TraceTextStart(&cut, capture.cb(), TRACE_TEXT_CUT);
  TraceTextAppendRepeat(&cut, 'b', TRACE_TEXT_SIZE - 4);
  EXPECT_EQ(TraceTextReserve(&cut, 8), nullptr);
  EXPECT_NE(TraceTextReserve(&cut, 4), nullptr);
  EXPECT_EQ(capture.Text(), "");
}

TEST(TraceText, StringIsTerminatedWhereTheTextEnds) {
  CaptureBlock capture;
  TraceText t;
  TraceTextStart(&t, capture.cb(), TRACE_TEXT_CUT);
  TraceTextAppendRepeat(&t, 'z', Opaque(TRACE_TEXT_SIZE + 10));
  EXPECT_EQ(strlen(TraceTextString(&t)), (size_t)TRACE_TEXT_SIZE);
}

TEST(TraceText, WriteWithoutAFileReportsFailure) {
  TraceText t;
  TraceTextStart(&t, nullptr, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendLiteral(&t, "nowhere");
  EXPECT_EQ(TraceTextWrite(&t), -1);
  EXPECT_EQ(TraceTextWrite(&t), -1); // the last result stays
}

} // namespace
