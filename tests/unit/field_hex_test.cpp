// Byte fields: the single-line hex and character image, the switch to the
// dump at 33 bytes, and message handles.
#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "format/field_primitives.h"
#include "output/record_writers.h"
#include "tests/unit/field_line_test.h"

namespace {

struct FieldHex : FieldLineTest {};

// The image alone: no name, no hex, no null check, no newline.
std::string Image(CaptureBlock &capture, const std::string &bytes) {
  ShowParsedHexValueSingleLine(capture.cb(), "", bytes.data(), (int32_t)bytes.size(), 0, 0, 0);
  return capture.Take();
}

} // namespace

TEST_F(FieldHex, TwentyFourZeroBytesAreNull) {
  unsigned char id[24] = {};
  ShowParsedHexValueSingleLine(cb, "MsgId", id, 24, 1, 1, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgId") + "(null)\n");
  // The newline comes whatever the end-of-line flag says.
  ShowParsedHexValueSingleLine(cb, "MsgId", id, 24, 1, 1, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgId") + "(null)\n");
}

TEST_F(FieldHex, OneNonZeroByteShowsAllTwentyFour) {
  unsigned char id[24] = {};
  id[5] = 'A';
  ShowParsedHexValueSingleLine(cb, "MsgId", id, 24, 1, 1, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgId") +
                                "00000000 00410000 00000000 00000000 00000000 00000000  "
                                "[.....A..................]\n");
}

TEST_F(FieldHex, HexGroupsOfFourBytes) {
  const unsigned char bytes[] = {0x12, 0x34, 0xAB, 0xCD, 0xEF, 0x01, 0x20, 0x7E, 0x7F};
  ShowParsedHexValueSingleLine(cb, "Token", bytes, (int32_t)sizeof bytes, 1, 1, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Token") + "1234ABCD EF01207E 7F  [.4.... ~.]\n");
}

TEST_F(FieldHex, FlagsLeaveOutNameHexAndNewline) {
  const char bytes[] = "AMQ!";
  ShowParsedHexValueSingleLine(cb, "", bytes, 4, 1, 0, 0);
  EXPECT_EQ(capture.Take(), "[AMQ!]");
  ShowParsedHexValueSingleLine(cb, nullptr, bytes, 4, 0, 1, 1);
  EXPECT_EQ(capture.Take(), "414D5121  [AMQ!]\n");
  // Without the null check zeros are shown like any bytes.
  unsigned char zeros[3] = {};
  ShowParsedHexValueSingleLine(cb, "Z", zeros, 3, 0, 1, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Z") + "000000  [...]\n");
}

TEST_F(FieldHex, EmptyField) {
  ShowParsedHexValueSingleLine(cb, "E", "x", 0, 1, 1, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("E") + "(null)\n");
  ShowParsedHexValueSingleLine(cb, "E", "x", -3, 1, 1, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("E") + "(null)\n");
  ShowParsedHexValueSingleLine(cb, "E", "x", 0, 0, 1, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("E") + "  []\n");
}

TEST_F(FieldHex, DefaultCodePageShowsOnlyPrintableAscii) {
  capture.SetCcsid(37); // no rows of its own: the default pattern 20-7E
  std::string all;
  for (int b = 0; b < 256; b++) {
    all.push_back((char)b);
  }
  std::string image = Image(capture, all);
  ASSERT_EQ(image.size(), 258u);
  for (int b = 0; b < 256; b++) {
    char expected = (b >= 0x20 && b <= 0x7E) ? (char)b : '.';
    EXPECT_EQ(image[1 + b], expected) << "byte " << b;
  }
}

TEST_F(FieldHex, Latin1ShowsTheUpperHalf) {
  capture.SetCcsid(819);
  EXPECT_EQ(Image(capture, "A\x9F\xA0\xE9\xFF\x7F"), "[A.\xA0\xE9\xFF.]");
}

TEST_F(FieldHex, Utf8SequencesAreCharactersOnlyWhenComplete) {
  capture.SetCcsid(1208);
  // C3 A9 is one character; E2 82 AC is one of three bytes.
  EXPECT_EQ(Image(capture, "a\xC3\xA9z\xE2\x82\xAC!"), "[a\xC3\xA9z\xE2\x82\xAC!]");
  // C3 alone at the end: the pending byte becomes a dot.
  EXPECT_EQ(Image(capture, "ab\xC3"), "[ab.]");
  // C3 followed by a byte that cannot continue it: both become dots, even a
  // printable second byte.
  EXPECT_EQ(Image(capture, "\xC3"
                           "A"
                           "B"),
            "[..B]");
  // A continuation byte with nothing before it.
  EXPECT_EQ(Image(capture, "\xA9x"), "[.x]");
  // Three-byte start cut short after two bytes, then a valid character.
  EXPECT_EQ(Image(capture, "\xE2\x82Q\xC3\xA9"), "[...\xC3\xA9]");
  // 7F is allowed in this code page's single-byte pattern.
  EXPECT_EQ(Image(capture, "\x7F"), "[\x7F]");
}

TEST_F(FieldHex, ShiftJisSingleAndDoubleBytes) {
  capture.SetCcsid(932);
  // A1-DF single-byte katakana; 81-9F followed by 40-7E or 80-FC.
  EXPECT_EQ(Image(capture, "\xB1\x82\xA0\x88\x40\x9F\xFD"), "[\xB1\x82\xA0\x88\x40..]");
}

TEST_F(FieldHex, ThirtyTwoBytesStayOnOneLine) {
  unsigned char bytes[32];
  for (int i = 0; i < 32; i++) {
    bytes[i] = (unsigned char)(0x41 + i);
  }
  ShowParsedHexValueFormatSelect(cb, "AccountingToken", bytes, 32);
  EXPECT_EQ(capture.Take(),
            FieldLineName("AccountingToken") +
                "41424344 45464748 494A4B4C 4D4E4F50 51525354 55565758 595A5B5C 5D5E5F60  "
                "[ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`]\n");
  unsigned char zeros[32] = {};
  ShowParsedHexValueFormatSelect(cb, "AccountingToken", zeros, 32);
  EXPECT_EQ(capture.Take(), FieldLineName("AccountingToken") + "(null)\n");
}

TEST_F(FieldHex, ThirtyThreeBytesGoToTheDump) {
  unsigned char bytes[33];
  for (int i = 0; i < 33; i++) {
    bytes[i] = (unsigned char)(0x41 + i);
  }
  ShowParsedHexValueFormatSelect(cb, "Data", bytes, 33);
  std::string shown = capture.Take();
  // The field line ends at once; the prefixed dump follows, untitled.
  PutHexData(cb, "", bytes, 33, HEX_MODE_PREFIXED);
  std::string dump = capture.Take();
  ASSERT_FALSE(dump.empty());
  EXPECT_EQ(shown, FieldLineName("Data") + "\n" + dump);
  EXPECT_EQ(dump.rfind("|>     00000000:", 0), 0u) << dump;
  EXPECT_NE(dump.find("|>     00000020:"), std::string::npos) << dump;

  unsigned char zeros[40] = {};
  ShowParsedHexValueFormatSelect(cb, "Data", zeros, 40);
  EXPECT_EQ(capture.Take(), FieldLineName("Data") + "(null)\n");
}

TEST_F(FieldHex, MultipleLinesExactDump) {
  unsigned char bytes[33];
  for (int i = 0; i < 33; i++) {
    bytes[i] = (unsigned char)(0x41 + i);
  }
  ShowParsedHexValueMultipleLines(cb, "Data", bytes, 33, 1);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Data") + "\n" +
                "|>     00000000:41424344 45464748 494A4B4C 4D4E4F50  [ABCDEFGHIJKLMNOP]\n"
                "|>     00000010:51525354 55565758 595A5B5C 5D5E5F60  [QRSTUVWXYZ[\\]^_`]\n"
                "|>     00000020:61                                   [a]\n");
}

TEST_F(FieldHex, MultipleLinesWithoutNullCheck) {
  unsigned char zeros[4] = {};
  ShowParsedHexValueMultipleLines(cb, "Z", zeros, 4, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Z") + "(null)\n");
  ShowParsedHexValueMultipleLines(cb, "Z", zeros, 0, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Z") + "(null)\n");
  ShowParsedHexValueMultipleLines(cb, "Z", zeros, 4, 0);
  std::string shown = capture.Take();
  PutHexData(cb, "", zeros, 4, HEX_MODE_PREFIXED);
  EXPECT_EQ(shown, FieldLineName("Z") + "\n" + capture.Take());
}

TEST_F(FieldHex, MessageHandleShowsItsEightBytes) {
  ShowZKHMSG(cb, "MsgHandle", 0);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgHandle") + "(null)\n");
  ShowZKHMSG(cb, "MsgHandle", (ZKHMSG)0x0000000100000002LL);
  // Bytes in storage order of the (little-endian) host.
  EXPECT_EQ(capture.Take(), FieldLineName("MsgHandle") + "02000000 01000000  [........]\n");
  ShowZKHMSG(cb, "MsgHandle", -1);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgHandle") + "FFFFFFFF FFFFFFFF  [........]\n");
}

TEST_F(FieldHex, LongSingleLineIsWrittenWhole) {
  std::string bytes(300, 'q');
  ShowParsedHexValueSingleLine(cb, "Long", bytes.data(), 300, 1, 1, 1);
  std::string hex;
  for (int i = 0; i < 300; i++) {
    if (i > 0 && i % 4 == 0) {
      hex += ' ';
    }
    hex += "71";
  }
  EXPECT_EQ(capture.Take(), FieldLineName("Long") + hex + "  [" + bytes + "]\n");
}
