// Hex-and-character dumps as they reach the trace file.
#include <gtest/gtest.h>

#include <stdio.h>
#include <string.h>

#include <string>

#include "format/field_primitives.h"
#include "output/record_writers.h"
#include "tests/unit/trace_capture.h"

namespace {

struct HexDumpTest : TraceCaptureTest {
  void UseCcsid(int32_t ccsid) {
    cb->Settings.ShowHexCharCcsid = ccsid;
    SetValueForCodeRangeCheck(cb);
  }
};

std::string Bytes(std::initializer_list<int> values) {
  std::string s;
  for (int v : values) {
    s.push_back((char)v);
  }
  return s;
}

TEST(HexDigitTables, GiveBothDigitsOfEveryByteInUpperCase) {
  for (int b = 0; b < 256; b++) {
    char expected[3];
    snprintf(expected, sizeof expected, "%02X", b);
    EXPECT_EQ(GraphicHexUpper4Bits[b], expected[0]) << b;
    EXPECT_EQ(GraphicHexLower4Bits[b], expected[1]) << b;
  }
}

TEST(HexDigitTables, FormatHexBytesWritesHighDigitFirstAndEnds) {
  const unsigned char bytes[] = {0x00, 0x1F, 0xA0, 0xFF};
  char out[9];
  memset(out, 'x', sizeof out);
  char *end = FormatHexBytes(out, bytes, 4);
  EXPECT_STREQ(out, "001FA0FF");
  EXPECT_EQ(end, out + 8);
}

TEST_F(HexDumpTest, FortyBytesGiveTwoFullLinesAndAPaddedShortOne) {
  unsigned char data[40];
  for (int i = 0; i < 40; i++) {
    data[i] = (unsigned char)(0x40 + i);
  }
  PutHexData(cb, "Data", data, 40, HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "Data:(40=x28 bytes)\n"
                    "00000000:40414243 44454647 48494A4B 4C4D4E4F  [@ABCDEFGHIJKLMNO]\n"
                    "00000010:50515253 54555657 58595A5B 5C5D5E5F  [PQRSTUVWXYZ[\\]^_]\n"
                    "00000020:60616263 64656667                    [`abcdefg]\n");
}

TEST_F(HexDumpTest, ShortLineIsPaddedToTheFullHexWidth) {
  unsigned char data[21] = {};
  PutHexData(cb, "", data, 21, HEX_MODE_PLAIN);
  std::string text = Take();
  size_t second = text.find('\n') + 1;
  // Offset, colon, 32 digits, four blanks: 45 characters before " [".
  EXPECT_EQ(text.find(" [", second) - second, 45u) << text;
  EXPECT_EQ(text.substr(second), "00000010:00000000 00                          [.....]\n");
}

TEST_F(HexDumpTest, SixtyFourZeroBytesCollapseTheMiddleLines) {
  unsigned char data[64] = {};
  PutHexData(cb, "Zeros", data, 64, HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "Zeros:(64=x40 bytes)\n"
                    "00000000:00000000 00000000 00000000 00000000  [................]\n"
                    "00000010-0000002F same as above\n"
                    "00000030:00000000 00000000 00000000 00000000  [................]\n");
}

TEST_F(HexDumpTest, RunAfterADifferentLineNamesItsFirstAndLastSkippedByte) {
  std::string data(16, 'A');
  data += std::string(64, 'B');
  data += "C";
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:41414141 41414141 41414141 41414141  [AAAAAAAAAAAAAAAA]\n"
                    "00000010:42424242 42424242 42424242 42424242  [BBBBBBBBBBBBBBBB]\n"
                    "00000020-0000004F same as above\n"
                    "00000050:43                                   [C]\n");
}

TEST_F(HexDumpTest, LastFullLineIsWrittenEvenWhenItRepeats) {
  std::string data(16, 'A');
  data += std::string(32, 'B');
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:41414141 41414141 41414141 41414141  [AAAAAAAAAAAAAAAA]\n"
                    "00000010:42424242 42424242 42424242 42424242  [BBBBBBBBBBBBBBBB]\n"
                    "00000020:42424242 42424242 42424242 42424242  [BBBBBBBBBBBBBBBB]\n");
}

TEST_F(HexDumpTest, TwoSeparateRunsGetTwoNotes) {
  std::string data = std::string(48, 'A') + std::string(48, 'B') + "!";
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:41414141 41414141 41414141 41414141  [AAAAAAAAAAAAAAAA]\n"
                    "00000010-0000002F same as above\n"
                    "00000030:42424242 42424242 42424242 42424242  [BBBBBBBBBBBBBBBB]\n"
                    "00000040-0000005F same as above\n"
                    "00000060:21                                   [!]\n");
}

TEST_F(HexDumpTest, SpareSwitchTurnsCollapsingOff) {
  cb->Settings.Spare = 1;
  unsigned char data[48] = {};
  PutHexData(cb, "", data, 48, HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:00000000 00000000 00000000 00000000  [................]\n"
                    "00000010:00000000 00000000 00000000 00000000  [................]\n"
                    "00000020:00000000 00000000 00000000 00000000  [................]\n");
}

TEST_F(HexDumpTest, PrefixedModeHasNoTitleAndPrefixesEveryLine) {
  cb->Settings.ShowHexCharImage = 0; // the prefixed form shows characters anyway
  std::string data = std::string(48, 'x') + "yz";
  PutHexData(cb, "Title", data.data(), (int32_t)data.size(), HEX_MODE_PREFIXED);
  EXPECT_EQ(Take(), "|>     00000000:78787878 78787878 78787878 78787878  [xxxxxxxxxxxxxxxx]\n"
                    "|>     00000010-0000002F same as above\n"
                    "|>     00000030:797A                                 [yz]\n");
}

TEST_F(HexDumpTest, WithoutCharacterImageLinesEndAfterTheHexPart) {
  cb->Settings.ShowHexCharImage = 0;
  PutHexData(cb, "Text", "ABCDEFGHIJKLMNOPQR", 18, HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "Text:(18=x12 bytes)\n"
                    "00000000:41424344 45464748 494A4B4C 4D4E4F50 \n"
                    "00000010:5152                                \n");
}

TEST_F(HexDumpTest, TitleShowsTheAddressUnlessSwitchedOff) {
  cb->File.NoAddress = 0;
  static const char data[] = "abc";
  PutHexData(cb, "Buffer", data, 3, HEX_MODE_PLAIN);
  char expected[200];
  snprintf(expected, sizeof expected,
           "Buffer:(3=x3 bytes, Address 0x%08X)\n"
           "00000000:616263                               [abc]\n",
           (unsigned)(uintptr_t)data);
  EXPECT_EQ(Take(), expected);
}

TEST_F(HexDumpTest, AddressIsEightUpperCaseDigits) {
  cb->File.NoAddress = 0;
  PutHexData(cb, "At", (const void *)(uintptr_t)0x00ABCDEF, 0, HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "At:(0=x0 bytes, Address 0x00ABCDEF)\n");
}

TEST_F(HexDumpTest, TitleCanShowMoreThanIsDumped) {
  PutHexDataLen(cb, "Message", "0123456789", 4, HEX_MODE_PLAIN, 300);
  EXPECT_EQ(Take(), "Message:(300=x12C bytes)\n"
                    "00000000:30313233                             [0123]\n");
}

TEST_F(HexDumpTest, NullAddressOrNoLengthWritesOnlyTheTitle) {
  PutHexData(cb, "None", nullptr, 16, HEX_MODE_PLAIN);
  PutHexData(cb, "Empty", "abc", 0, HEX_MODE_PLAIN);
  PutHexData(cb, "", nullptr, 0, HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "None:(16=x10 bytes)\n"
                    "Empty:(0=x0 bytes)\n");
}

TEST_F(HexDumpTest, DefaultCodePageShowsOnlyPrintableAscii) {
  std::string data = Bytes({0x1F, 0x20, 0x7E, 0x7F, 0x80, 0xC3, 0xA9, 0xFF});
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:1F207E7F 80C3A9FF                    [. ~.....]\n");
}

TEST_F(HexDumpTest, Utf8CharacterIsShownAsItself) {
  UseCcsid(1208);
  std::string data = "caf" + Bytes({0xC3, 0xA9}) + "!" + Bytes({0xE2, 0x82, 0xAC});
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:636166C3 A921E282 AC                 [caf\xC3\xA9!\xE2\x82\xAC]\n");
}

TEST_F(HexDumpTest, Utf8CharacterSplitByTheLineEndIsWrittenWhereItEnds) {
  UseCcsid(1208);
  std::string data = "ABCDEFGHIJKLMNO" + Bytes({0xC3, 0xA9}) + "xyz";
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:41424344 45464748 494A4B4C 4D4E4FC3  [ABCDEFGHIJKLMNO>\n"
                    "00000010:A978797A                             [\xC3\xA9xyz]\n");
}

TEST_F(HexDumpTest, ThreeByteCharacterSplitInItsMiddle) {
  UseCcsid(1208);
  std::string data = std::string(15, '-') + Bytes({0xE2, 0x82, 0xAC});
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:2D2D2D2D 2D2D2D2D 2D2D2D2D 2D2D2DE2  [--------------->\n"
                    "00000010:82AC                                 [\xE2\x82\xAC]\n");
}

TEST_F(HexDumpTest, CharacterCutOffByTheEndOfDataIsDots) {
  UseCcsid(1208);
  std::string data = "ab" + Bytes({0xE2, 0x82});
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:6162E282                             [ab..]\n");
}

TEST_F(HexDumpTest, BrokenSequenceTurnsItsBytesAndTheBreakingByteIntoDots) {
  UseCcsid(1208);
  // C3 opens a two-byte character; "A" cannot continue it, so both are
  // dots; "B" starts afresh.
  std::string data = Bytes({0xC3}) + "AB" + Bytes({0xA9});
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:C34142A9                             [..B.]\n");
}

TEST_F(HexDumpTest, CharacterOpenBeforeCollapsedLinesIsNotJoinedAcrossThem) {
  UseCcsid(1208);
  std::string line = std::string(15, 'A') + Bytes({0xC3});
  std::string data = line + line + line + Bytes({0xA9}) + "Z";
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:41414141 41414141 41414141 414141C3  [AAAAAAAAAAAAAAA>\n"
                    "00000010-0000002F same as above\n"
                    "00000030:A95A                                 [..Z]\n");
}

TEST_F(HexDumpTest, ShiftJisDoubleByteCharacter) {
  UseCcsid(943);
  // 82 A0 is a double-byte character (second byte 80-FC); 81 41 one whose
  // second byte lies in 40-7E; B1 a single-byte katakana.
  std::string data = Bytes({0x82, 0xA0, 0x81, 0x41, 0xB1, 0x41});
  PutHexData(cb, "", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  EXPECT_EQ(Take(), "00000000:82A08141 B141                        [\x82\xA0\x81\x41\xB1\x41]\n");
}

TEST_F(HexDumpTest, LongDumpIsWrittenWhole) {
  // Far more lines than one piece of output holds; every line differs from
  // the one before, so none collapses.
  std::string data, expected = "Long:(3200=xC80 bytes)\n";
  for (int line = 0; line < 200; line++) {
    char letter = (char)('a' + line % 26);
    data.append(16, letter);
    char hex[3];
    snprintf(hex, sizeof hex, "%02X", (unsigned char)letter);
    std::string group = std::string(hex) + hex + hex + hex;
    char offset[10];
    snprintf(offset, sizeof offset, "%08X", line * 16);
    expected += std::string(offset) + ":" + group + " " + group + " " + group + " " + group +
                "  [" + std::string(16, letter) + "]\n";
  }
  PutHexData(cb, "Long", data.data(), (int32_t)data.size(), HEX_MODE_PLAIN);
  std::string text = Take();
  EXPECT_EQ(text, expected);
  EXPECT_NE(text.find("00000C70:72727272 72727272 72727272 72727272  [rrrrrrrrrrrrrrrr]\n"),
            std::string::npos);
}

// Variable-length strings.

struct CharvHolder {
  ZKCHARV Charv;
  char Text[16];
};

TEST_F(HexDumpTest, CharvByPointerAndLength) {
  ZKCHARV v = {};
  v.VSPtr = (ZKPTR) "topic/a";
  v.VSLength = 5;
  PutHexCharvData(cb, "ObjectString", &v, &v);
  EXPECT_EQ(Take(), "ObjectString:(5=x5 bytes)\n"
                    "00000000:746F7069 63                          [topic]\n");
}

TEST_F(HexDumpTest, CharvByOffsetFromTheHoldingStructure) {
  CharvHolder h = {};
  h.Charv.VSOffset = (ZKLONG)offsetof(CharvHolder, Text);
  h.Charv.VSLength = 3;
  memcpy(h.Text, "xyz", 3);
  PutHexCharvData(cb, "SubName", &h.Charv, &h);
  EXPECT_EQ(Take(), "SubName:(3=x3 bytes)\n"
                    "00000000:78797A                               [xyz]\n");
}

TEST_F(HexDumpTest, NullTerminatedCharvCountsItsTerminator) {
  ZKCHARV v = {};
  v.VSPtr = (ZKPTR) "abc";
  v.VSLength = -1;
  PutHexCharvData(cb, "Selection", &v, &v);
  EXPECT_EQ(Take(), "Selection:(4=x4 bytes)\n"
                    "00000000:61626300                             [abc.]\n");
}

TEST_F(HexDumpTest, CharvBufferSizeWinsOverLength) {
  char buffer[6] = {'r', 'e', 's', 0, 0, 0};
  ZKCHARV v = {};
  v.VSPtr = buffer;
  v.VSBufSize = 6;
  v.VSLength = 3;
  PutHexCharvData(cb, "ResObjectString", &v, &v);
  EXPECT_EQ(Take(), "ResObjectString:(6=x6 bytes)\n"
                    "00000000:72657300 0000                        [res...]\n");
}

TEST_F(HexDumpTest, CharvWithoutTextShowsOnlyATitle) {
  ZKCHARV v = {};
  v.VSLength = 10;
  PutHexCharvData(cb, "SubUserData", &v, &v);
  EXPECT_EQ(Take(), "SubUserData:(0=x0 bytes)\n");
}

TEST_F(HexDumpTest, CharvLongerThanTheLimitIsCutWithANote) {
  cb->Settings.ShowMaxLenCharv = 3;
  ZKCHARV v = {};
  v.VSPtr = (ZKPTR) "abcdefgh";
  v.VSLength = 8;
  PutHexCharvData(cb, "ObjectString", &v, &v);
  EXPECT_EQ(Take(), "ObjectString:(8=x8 bytes)\n"
                    "00000000:616263                               [abc]\n"
                    "  (Shown only leading 3 byte(s) ...)\n");
}

TEST_F(HexDumpTest, CharvWithoutALimitStopsAtTheBound) {
  cb->Settings.ShowMaxLenCharv = -1;
  std::string text(CHARV_DUMP_MAX + 100, 'x');
  ZKCHARV v = {};
  v.VSPtr = (ZKPTR)text.data();
  v.VSLength = (ZKLONG)text.size();
  PutHexCharvData(cb, "ObjectString", &v, &v);
  std::string out = Take();
  EXPECT_EQ(out.rfind("ObjectString:(41060=xA064 bytes)\n", 0), 0u) << out.substr(0, 80);
  EXPECT_NE(out.find("00009FF0:78787878 78787878 78787878 78787878  [xxxxxxxxxxxxxxxx]\n"
                     "  (Shown only leading 40960 byte(s) ...)\n"),
            std::string::npos);
  EXPECT_EQ(out.find("0000A000:"), std::string::npos);

  v.VSLength = CHARV_DUMP_MAX;
  PutHexCharvData(cb, "ObjectString", &v, &v);
  EXPECT_EQ(Take().find("Shown only"), std::string::npos);
}

TEST_F(HexDumpTest, CharvWithinTheLimitHasNoNote) {
  cb->Settings.ShowMaxLenCharv = 8;
  ZKCHARV v = {};
  v.VSPtr = (ZKPTR) "abcdefgh";
  v.VSLength = 8;
  PutHexCharvData(cb, "ObjectString", &v, &v);
  EXPECT_EQ(Take(), "ObjectString:(8=x8 bytes)\n"
                    "00000000:61626364 65666768                    [abcdefgh]\n");
}

} // namespace
