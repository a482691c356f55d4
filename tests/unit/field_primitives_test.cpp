// The plain field lines: names, version headers, integers, strings, flag
// lists, hex integers and the unknown-value banners.
#include <gtest/gtest.h>

#include <stdio.h>
#include <string.h>

#include <string>

#include "format/field_primitives.h"
#include "tests/unit/field_line_test.h"
#include "text/string_utils.h"

namespace {

struct FieldLine : FieldLineTest {};

} // namespace

TEST_F(FieldLine, NameIsPaddedToTwentyFiveColumns) {
  ShowFieldName(cb, "Version");
  EXPECT_EQ(capture.Take(), "|> Version                  : ");
  ShowFieldName(cb, "");
  EXPECT_EQ(capture.Take(), "|>                          : ");
}

TEST_F(FieldLine, LongNameIsNotCut) {
  ShowFieldName(cb, "ThisFieldNameIsLongerThan25Chars");
  EXPECT_EQ(capture.Take(), "|> ThisFieldNameIsLongerThan25Chars: ");
  ShowFieldName(cb, "Exactly25CharactersLong..");
  EXPECT_EQ(capture.Take(), "|> Exactly25CharactersLong..: ");
}

TEST_F(FieldLine, VersionHeaderMatchesTheExamples) {
  ShowDataVersion(cb, "MD", 2);
  EXPECT_EQ(capture.Take(), "|> --- MD version 2-----------\n");
  ShowDataVersion(cb, "CD", 10);
  std::string line = capture.Take();
  EXPECT_EQ(line, "|> --- CD version 10----------\n");
}

TEST_F(FieldLine, VersionHeaderOfALongNameGetsNoDashes) {
  ShowDataVersion(cb, "ABCDEFGHIJKLMN", 123);
  EXPECT_EQ(capture.Take(), "|> --- ABCDEFGHIJKLMN version 123\n");
  ShowDataVersion(cb, "PMO", -1);
  EXPECT_EQ(capture.Take(), "|> --- PMO version -1---------\n");
}

// A version header whose line is split by a full text: the text is written
// out in the middle of the line, and the dashes are still counted right.
TEST_F(FieldLine, VersionHeaderSplitByAFullTextKeepsItsDashes) {
  for (int32_t filled = TRACE_TEXT_SIZE - 20; filled < TRACE_TEXT_SIZE; filled++) {
    TraceText text;
    TraceTextStart(&text, cb, TRACE_TEXT_WRITE_OUT);
    TraceTextAppendRepeat(&text, 'x', filled - 1);
    TraceTextAppendChar(&text, '\n');
    TraceTextAppendVersionHeader(&text, "CD", 7);
    TraceTextWrite(&text);
    std::string out = capture.Take();
    EXPECT_EQ(out.substr(out.size() - 32), "\n|> --- CD version 7-----------\n") << filled;
  }
}

TEST_F(FieldLine, ZklongPlainAndFixedWidth) {
  ShowFieldValueZklong(cb, "Version", 2, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Version") + "2\n");
  ShowFieldValueZklong(cb, "Priority", -1, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Priority") + "-1");
  ShowFieldValueZklong(cb, "", 42, 1);
  EXPECT_EQ(capture.Take(), "42\n");
  ShowFieldValueZklong(cb, "X", INT32_MIN, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("X") + "-2147483648\n");

  ShowFieldValueZklongFixedLen(cb, "Expiry", 5, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Expiry") + "     5\n");
  ShowFieldValueZklongFixedLen(cb, "Expiry", -1, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Expiry") + "    -1");
  ShowFieldValueZklongFixedLen(cb, "", 1234567, 1);
  EXPECT_EQ(capture.Take(), "1234567\n");
  ShowFieldValueZklongFixedLen(cb, "Big", INT32_MAX, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Big") + "2147483647\n");
}

TEST_F(FieldLine, Int64FixedWidthWithAndWithoutDescription) {
  ShowFieldValueZkInt64FixedLen(cb, "Count", 7, 0, "");
  EXPECT_EQ(capture.Take(), FieldLineName("Count") + "     7\n");
  ShowFieldValueZkInt64FixedLen(cb, "Count", 7, 0, nullptr);
  EXPECT_EQ(capture.Take(), FieldLineName("Count") + "     7\n");
  ShowFieldValueZkInt64FixedLen(cb, "Bytes", 0x00000001, 0x0000000A, "bytes");
  EXPECT_EQ(capture.Take(), FieldLineName("Bytes") + "42949672961 (bytes)\n");
  ShowFieldValueZkInt64FixedLen(cb, "", 0xFFFFFFFF, 0xFFFFFFFF, "unlimited");
  EXPECT_EQ(capture.Take(), "    -1 (unlimited)\n");
  ShowFieldValueZkInt64FixedLen(cb, "Min", 0, 0x80000000u, "");
  EXPECT_EQ(capture.Take(), FieldLineName("Min") + "-9223372036854775808\n");
}

TEST_F(FieldLine, StringDropsTrailingBlanksAndLineEnds) {
  const char queue[] = "SYSTEM.DEFAULT.LOCAL.QUEUE \r\n  ";
  ShowFieldValueStringFixed(cb, "ObjectName", queue, (int32_t)strlen(queue));
  EXPECT_EQ(capture.Take(), FieldLineName("ObjectName") + "SYSTEM.DEFAULT.LOCAL.QUEUE\n");
  const char inner[] = "  A B  ";
  ShowFieldValueStringFixed(cb, "Inner", inner, 7);
  EXPECT_EQ(capture.Take(), FieldLineName("Inner") + "  A B\n");
}

TEST_F(FieldLine, AllBlankFixedNameShowsOnlyTheFieldName) {
  char name48[48];
  memset(name48, ' ', sizeof name48);
  ShowFieldValueStringFixed(cb, "ResolvedQName", name48, 48);
  EXPECT_EQ(capture.Take(), FieldLineName("ResolvedQName") + "\n");
  ShowFieldValueStringFixed(cb, "Empty", "", 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Empty") + "\n");
  ShowFieldValueStringFixed(cb, "Negative", "abc", -5);
  EXPECT_EQ(capture.Take(), FieldLineName("Negative") + "\n");
}

TEST_F(FieldLine, StringShowsOnlySevenBitAscii) {
  const unsigned char bytes[] = {'A', 0x09, 0x7F, 0x80, 0xC3, 0xA9, 'z', 0x1F, '~'};
  ShowFieldValueStringFixed(cb, "Data", bytes, (int32_t)sizeof bytes);
  EXPECT_EQ(capture.Take(), FieldLineName("Data") + "A.....z.~\n");
  // The same rule as StringXlateToSevenBitAscii, byte for byte.
  for (int b = 1; b < 256; b++) {
    char one[2] = {(char)b, 0};
    char expected[2] = {(char)b, 0};
    StringXlateToSevenBitAscii(expected);
    ShowFieldValueStringFixed(cb, "", one, 1);
    std::string text = capture.Take();
    std::string want = (b == ' ' || b == '\n' || b == '\r') ? "\n" : std::string(expected) + "\n";
    ASSERT_EQ(text, want) << "byte " << b;
  }
}

TEST_F(FieldLine, ZeroByteEndsOnlyItsOwnPiece) {
  // 250 bytes: pieces 0-98, 99-197, 198-249. A zero byte at 10 hides the
  // rest of the first piece only; one at 120 the rest of the second.
  char data[250];
  for (int i = 0; i < 250; i++) {
    data[i] = (char)('a' + i % 26);
  }
  data[10] = '\0';
  data[120] = '\0';
  ShowFieldValueStringFixed(cb, "Long", data, 250);
  std::string expected = FieldLineName("Long") + std::string(data, 10) +
                         std::string(data + 99, 21) + std::string(data + 198, 52) + "\n";
  EXPECT_EQ(capture.Take(), expected);
}

TEST_F(FieldLine, LongStringIsWrittenWhole) {
  std::string text(1500, 'x');
  for (size_t i = 0; i < text.size(); i++) {
    text[i] = (char)('A' + i % 23);
  }
  ShowFieldValueStringFixed(cb, "Big", text.data(), (int32_t)text.size());
  EXPECT_EQ(capture.Take(), FieldLineName("Big") + text + "\n");
}

TEST_F(FieldLine, AttributeDescriptionBuildsAFlagList) {
  uint32_t counter = 0;
  ShowFieldName(cb, "Options");
  ShowAttributeDescription(cb, &counter, "SYNCPOINT");
  EXPECT_EQ(counter, 1u);
  ShowAttributeDescription(cb, &counter, "NEW_MSG_ID");
  ShowAttributeDescription(cb, &counter, "FAIL_IF_QUIESCING");
  EXPECT_EQ(counter, 3u);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Options") + "SYNCPOINT / NEW_MSG_ID / FAIL_IF_QUIESCING");
}

TEST_F(FieldLine, HexIntegersAndPointers) {
  Show4ByteIntegerInHex(cb, 0, 1);
  EXPECT_EQ(capture.Take(), "(null)");
  Show4ByteIntegerInHex(cb, 0, 0);
  EXPECT_EQ(capture.Take(), "0x00000000");
  Show4ByteIntegerInHex(cb, 0xABCDEF01u, 1);
  EXPECT_EQ(capture.Take(), "0xABCDEF01");
  Show4ByteIntegerInHex(cb, 0x1Fu, 0);
  EXPECT_EQ(capture.Take(), "0x0000001F");

  ShowPointerInHex(cb, nullptr, 1);
  EXPECT_EQ(capture.Take(), "(null)");
  ShowPointerInHex(cb, nullptr, 0);
  EXPECT_EQ(capture.Take(), "0x00000000");
  ShowPointerInHex(cb, (const void *)(uintptr_t)0x0804A0F0u, 1);
  EXPECT_EQ(capture.Take(), "0x0804A0F0");
}

TEST_F(FieldLine, EightByteHexShowsHighWordFirst) {
  Show8ByteIntegerInHex(cb, 0x00000001, 0x0000000A, 1);
  EXPECT_EQ(capture.Take(), "0x0000000A 00000001");
  Show8ByteIntegerInHex(cb, 0, 0, 1);
  EXPECT_EQ(capture.Take(), "(null)");
  Show8ByteIntegerInHex(cb, 0, 0, 0);
  EXPECT_EQ(capture.Take(), "0x00000000 00000000");
  Show8ByteIntegerInHex(cb, 0, 1, 1);
  EXPECT_EQ(capture.Take(), "0x00000001 00000000");
  Show8ByteIntegerInHex(cb, 0xDEADBEEF, 0xFEEDF00D, 0);
  EXPECT_EQ(capture.Take(), "0xFEEDF00D DEADBEEF");
}

TEST_F(FieldLine, PrimitivesReturnWhatTheWriteReturned) {
  EXPECT_EQ(ShowFieldValueZklong(cb, "A", 1, 1), 0);
  EXPECT_EQ(ShowFieldValueStringFixed(cb, "B", "x", 1), 0);
}

TEST_F(FieldLine, UnknownAttributeBannerMessageAndFlag) {
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
  ShowUnknownAttribute(cb, "ZKPMO - Options", 0x00400000u);
  EXPECT_EQ(capture.Take(), "|**********************************\n"
                            "|* Unknown : ZKPMO - Options 0x00400000\n"
                            "|**********************************\n");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
  std::string alerts = capture.Alerts();
  EXPECT_NE(alerts.find("Msg3101: Unknown API attribute : ZKPMO - Options value 0x00400000\n"),
            std::string::npos)
      << alerts;
  // One message for the one field.
  EXPECT_EQ(alerts.find("Msg3101", alerts.find("Msg3101") + 1), std::string::npos);
}

TEST_F(FieldLine, UnknownStructureVersionBannerMessageAndFlag) {
  ShowUnknownStructureVersion(cb, "ZKMD", 3);
  EXPECT_EQ(capture.Take(), "|**********************************\n"
                            "|* Unknown : ZKMD version 3\n"
                            "|**********************************\n");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKMD version 3\n"),
            std::string::npos)
      << capture.Alerts();
  ShowUnknownStructureVersion(cb, "ZKCD", -2);
  EXPECT_EQ(capture.Take(), "|**********************************\n"
                            "|* Unknown : ZKCD version -2\n"
                            "|**********************************\n");
  EXPECT_NE(capture.Alerts().find("ZKCD version 4294967294\n"), std::string::npos);
}

TEST(FieldLineBuilder, HexPairsOfEveryByte) {
  for (int b = 0; b < 256; b++) {
    char expected[3];
    snprintf(expected, sizeof expected, "%02X", b);
    ASSERT_EQ(std::string(HexDigitPair((uint8_t)b), 2), expected) << b;
  }
}

TEST(FieldLineBuilder, NumbersAgreeWithPrintf) {
  CaptureBlock capture;
  const int64_t samples[] = {
      0,         1,          9,          10,          99,        100,       101,
      999999,    1000000,    -1,         -9,          -10,       -100000,   INT32_MAX,
      INT32_MIN, 4294967295, 4294967296, -4294967296, INT64_MAX, INT64_MIN, 1234567890123LL};
  for (int64_t v : samples) {
    char expected[64];
    TraceText line;
    TraceTextStart(&line, capture.cb(), TRACE_TEXT_WRITE_OUT);
    TraceTextAppendInt64(&line, v, 6);
    TraceTextAppendChar(&line, '|');
    if (v >= INT32_MIN && v <= INT32_MAX) {
      TraceTextAppendInt32(&line, (int32_t)v, 0);
      TraceTextAppendChar(&line, '|');
      TraceTextAppendUInt32(&line, (uint32_t)v, 12);
      snprintf(expected, sizeof expected, "%6lld|%d|%12u", (long long)v, (int)v, (unsigned)v);
    } else {
      snprintf(expected, sizeof expected, "%6lld|", (long long)v);
    }
    TraceTextWrite(&line);
    ASSERT_EQ(capture.Take(), expected) << v;
  }
  for (uint64_t step = 1; step <= 0xFFFFFFFFu; step = step * 3 + 7) {
    uint32_t v = (uint32_t)step;
    char expected[16];
    snprintf(expected, sizeof expected, "%08X", v);
    TraceText line;
    TraceTextStart(&line, capture.cb(), TRACE_TEXT_WRITE_OUT);
    TraceTextAppendHex32(&line, v);
    TraceTextWrite(&line);
    ASSERT_EQ(capture.Take(), expected) << v;
  }
}
