// Variable-length strings and text runs.
#include <gtest/gtest.h>

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include <string>

#include "format/field_primitives.h"
#include "tests/unit/field_line_test.h"

namespace {

struct FieldCharv : FieldLineTest {};

std::string Hex(const void *p) {
  char text[16];
  snprintf(text, sizeof text, "0x%08X", (unsigned)(uintptr_t)p);
  return text;
}

// A structure that holds a descriptor and, behind it, the string it may
// address by offset.
struct Holder {
  char StrucId[4];
  int32_t Version;
  ZKCHARV String;
  char Text[400];
};

ZKCHARV Charv(const void *ptr, int32_t offset, int32_t bufSize, int32_t length, int32_t ccsid) {
  ZKCHARV v;
  v.VSPtr = (void *)ptr;
  v.VSOffset = offset;
  v.VSBufSize = bufSize;
  v.VSLength = length;
  v.VSCCSID = ccsid;
  return v;
}

} // namespace

TEST_F(FieldCharv, StringByPointerOnTheFieldLine) {
  static const char text[] = "SPORTS/TENNIS";
  Holder h = {};
  h.String = Charv(text, 0, 0, 13, 273);
  ShowZKCHARV(cb, "ObjectString", &h.String, &h, nullptr);
  EXPECT_EQ(capture.Take(), FieldLineName("ObjectString") + "\n" + FieldLineName("  VSPtr") +
                                Hex(text) + "\n" + FieldLineName("  VSOffset") + "0\n" +
                                FieldLineName("  VSBufSize") + "(use VSLength)\n" +
                                FieldLineName("  VSLength") + "13\n" + FieldLineName("  VSCCSID") +
                                "273 (AUS/GERM EBCDIC)\n" + FieldLineName("  Value (in string)") +
                                "SPORTS/TENNIS\n");
}

TEST_F(FieldCharv, NullTerminatedStringCountsItsTerminator) {
  static const char text[] = "hello";
  Holder h = {};
  h.String = Charv(text, 0, 0, -1, 0);
  EXPECT_EQ(CalculateZkcharvDataLength(&h.String, nullptr, &h), 6u);
  ShowZKCHARV(cb, "SelectionString", &h.String, &h, nullptr);
  EXPECT_EQ(capture.Take(), FieldLineName("SelectionString") + "\n" + FieldLineName("  VSPtr") +
                                Hex(text) + "\n" + FieldLineName("  VSOffset") + "0\n" +
                                FieldLineName("  VSBufSize") + "(use VSLength)\n" +
                                FieldLineName("VSLength") + "(null terminate)\n" +
                                FieldLineName("  VSCCSID") + "0 (default / queue_manager)\n" +
                                FieldLineName("  Value (in string)") + "hello\n");
}

TEST_F(FieldCharv, StringByOffsetFromTheStructure) {
  Holder h = {};
  strcpy(h.Text, "by offset");
  h.String = Charv(nullptr, (int32_t)offsetof(Holder, Text), 0, 9, 37);
  EXPECT_EQ(ZkcharvStringAddress(&h.String, nullptr, &h), (const void *)h.Text);
  ShowZKCHARV(cb, "ObjectString", &h.String, &h, nullptr);
  EXPECT_EQ(capture.Take(),
            FieldLineName("ObjectString") + "\n" + FieldLineName("  VSPtr") + "(null)\n" +
                FieldLineName("  VSOffset") + std::to_string(offsetof(Holder, Text)) + "\n" +
                FieldLineName("  VSBufSize") + "(use VSLength)\n" + FieldLineName("  VSLength") +
                "9\n" + FieldLineName("  VSCCSID") + "37 (COM EUROPE EBCDIC)\n" +
                FieldLineName("  Value (in string)") + "by offset\n");
}

TEST_F(FieldCharv, BufferSizeWinsOverLength) {
  static const char text[] = "abcdefgh";
  Holder h = {};
  h.String = Charv(text, 0, 8, 3, -3);
  EXPECT_EQ(CalculateZkcharvDataLength(&h.String, nullptr, &h), 8u);
  ShowZKCHARV(cb, "ResObjectString", &h.String, &h, nullptr);
  std::string shown = capture.Take();
  EXPECT_NE(shown.find(FieldLineName("  VSBufSize") + "8\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find(FieldLineName("  VSLength") + "3\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find(FieldLineName("  VSCCSID") + "-3 (appl)\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find(FieldLineName("  Value (in string)") + "abcdefgh\n"), std::string::npos)
      << shown;
}

TEST_F(FieldCharv, CallerGivenAddressIsUsedAsItIs) {
  static const char text[] = "not this";
  static const char other[] = "but this";
  Holder h = {};
  h.String = Charv(text, 0, 0, 8, 0);
  EXPECT_EQ(ZkcharvStringAddress(&h.String, other, &h), (const void *)other);
  ShowZKCHARV(cb, "S", &h.String, &h, other);
  std::string shown = capture.Take();
  EXPECT_NE(shown.find(FieldLineName("  Value (in string)") + "but this\n"), std::string::npos)
      << shown;
}

TEST_F(FieldCharv, UnreadableStringShowsFieldsOnly) {
  static const char text[] = "later";
  Holder h = {};
  h.String = Charv(text, 0, 0, 5, 0);
  EXPECT_EQ(CalculateZkcharvDataLength(&h.String, ZKCHARV_STRING_UNREADABLE, &h), 0u);
  ShowZKCHARV(cb, "S", &h.String, &h, ZKCHARV_STRING_UNREADABLE);
  EXPECT_EQ(capture.Take(), FieldLineName("S") + "\n" + FieldLineName("  VSPtr") + Hex(text) +
                                "\n" + FieldLineName("  VSOffset") + "0\n" +
                                FieldLineName("  VSBufSize") + "(use VSLength)\n" +
                                FieldLineName("  VSLength") + "5\n" + FieldLineName("  VSCCSID") +
                                "0 (default / queue_manager)\n");
}

TEST_F(FieldCharv, NoPointerAndNoOffsetShowsNoValue) {
  Holder h = {};
  h.String = Charv(nullptr, 0, 0, 5, 0);
  EXPECT_EQ(CalculateZkcharvDataLength(&h.String, nullptr, &h), 0u);
  ShowZKCHARV(cb, "S", &h.String, &h, nullptr);
  std::string shown = capture.Take();
  EXPECT_EQ(shown.find("Value"), std::string::npos) << shown;
  EXPECT_NE(shown.find(FieldLineName("  VSPtr") + "(null)\n"), std::string::npos) << shown;
}

TEST_F(FieldCharv, NullOrAllOnesStructureShowsFieldsOnly) {
  static const char text[] = "abc";
  ZKCHARV v = Charv(text, 0, 0, 3, 0);
  EXPECT_EQ(CalculateZkcharvDataLength(&v, nullptr, nullptr), 0u);
  EXPECT_EQ(CalculateZkcharvDataLength(&v, nullptr, (const void *)(intptr_t)-1), 0u);
  EXPECT_EQ(CalculateZkcharvDataLength(nullptr, nullptr, &v), 0u);
  EXPECT_EQ(CalculateZkcharvDataLength((const ZKCHARV *)(intptr_t)-1, nullptr, &v), 0u);
  EXPECT_EQ(CalculateZkcharvDataLength(&v, nullptr, &v), 3u);
  ShowZKCHARV(cb, "S", &v, nullptr, nullptr);
  std::string shown = capture.Take();
  EXPECT_EQ(shown.find("Value"), std::string::npos) << shown;
  EXPECT_NE(shown.find(FieldLineName("  VSCCSID")), std::string::npos) << shown;
}

TEST_F(FieldCharv, NullDescriptorShowsItsNameOnly) {
  ShowZKCHARV(cb, "ObjectString", nullptr, nullptr, nullptr);
  EXPECT_EQ(capture.Take(), FieldLineName("ObjectString") + "\n");
}

TEST_F(FieldCharv, NegativeLengthShowsNoValue) {
  static const char text[] = "abc";
  Holder h = {};
  h.String = Charv(text, 0, 0, -5, 0);
  ShowZKCHARV(cb, "S", &h.String, &h, nullptr);
  std::string shown = capture.Take();
  EXPECT_NE(shown.find(FieldLineName("  VSLength") + "-5\n"), std::string::npos) << shown;
  EXPECT_EQ(shown.find("Value"), std::string::npos) << shown;
}

TEST_F(FieldCharv, LengthThatFitsStaysOnTheFieldLine) {
  // Length plus 30 equal to the maximum line length still fits.
  cb->Settings.MaxParsedOutputLineLength = 100;
  std::string text(70, 'a');
  ZKCHARV v = Charv(text.data(), 0, 0, 70, 0);
  ShowZKCHARV(cb, "S", &v, &v, nullptr);
  std::string shown = capture.Take();
  EXPECT_NE(shown.find(FieldLineName("  Value (in string)") + text + "\n"), std::string::npos)
      << shown;
}

TEST_F(FieldCharv, LongStringGoesToTextLines) {
  cb->Settings.MaxParsedOutputLineLength = 100;
  std::string text;
  for (int i = 0; i < 200; i++) {
    text.push_back((char)('a' + i % 26));
  }
  ZKCHARV v = Charv(text.data(), 0, 0, 200, 0);
  ShowZKCHARV(cb, "S", &v, &v, nullptr);
  std::string shown = capture.Take();
  // Indentation 4, lines of at most 100 characters: 93 characters of text.
  std::string expected = FieldLineName("  VSCCSID") + "0 (default / queue_manager)\n" +
                         FieldLineName("  Value (in string)") + "\n" + "|>     " +
                         text.substr(0, 93) + "\n" + "|>     " + text.substr(93, 93) + "\n" +
                         "|>     " + text.substr(186) + "\n";
  ASSERT_GE(shown.size(), expected.size());
  EXPECT_EQ(shown.substr(shown.size() - expected.size()), expected) << shown;
}

TEST_F(FieldCharv, LongStringBeyondTheLimitIsCut) {
  cb->Settings.MaxParsedOutputLineLength = 40;
  cb->Settings.ShowMaxLenCharvString = 10;
  const char *text = "0123456789ABCDEFGHIJ"; // 20 + 30 > 40
  ZKCHARV v = Charv(text, 0, 0, 20, 0);
  ShowZKCHARV(cb, "S", &v, &v, nullptr);
  std::string shown = capture.Take();
  std::string expected = FieldLineName("  Value (in string)") + "\n" + "|>     0123456789\n" +
                         "|>      (Shown only leading 10 byte(s) ...)\n";
  ASSERT_GE(shown.size(), expected.size());
  EXPECT_EQ(shown.substr(shown.size() - expected.size()), expected) << shown;
}

TEST_F(FieldCharv, NegativeLimitShowsTheWholeString) {
  cb->Settings.MaxParsedOutputLineLength = 40;
  cb->Settings.ShowMaxLenCharvString = -1;
  const char *text = "0123456789ABCDEFGHIJ";
  ZKCHARV v = Charv(text, 0, 0, 20, 0);
  ShowZKCHARV(cb, "S", &v, &v, nullptr);
  std::string shown = capture.Take();
  std::string expected =
      FieldLineName("  Value (in string)") + "\n" + "|>     0123456789ABCDEFGHIJ\n";
  ASSERT_GE(shown.size(), expected.size());
  EXPECT_EQ(shown.substr(shown.size() - expected.size()), expected) << shown;
}

TEST_F(FieldCharv, TextLinesBreakAtTheMaximumLength) {
  cb->Settings.MaxParsedOutputLineLength = 40;
  std::string text(80, 'x');
  text[0] = '\x01';
  text[50] = '\xE9';
  ShowTextStringDataRegardingMaximumLrecl(cb, text.data(), 80, 2);
  // 40 - "|> " - 2 blanks = 35 characters a line.
  std::string shown = capture.Take();
  std::string line1 = "|>   ." + std::string(34, 'x') + "\n";
  std::string line2 = "|>   " + std::string(15, 'x') + "." + std::string(19, 'x') + "\n";
  std::string line3 = "|>   " + std::string(10, 'x') + "\n";
  EXPECT_EQ(shown, line1 + line2 + line3);
  for (size_t start = 0, end; start < shown.size(); start = end + 1) {
    end = shown.find('\n', start);
    EXPECT_LE(end - start, 40u);
  }
}

TEST_F(FieldCharv, TextEndsAtAZeroByte) {
  cb->Settings.MaxParsedOutputLineLength = 40;
  const char text[] = "abc\0def";
  ShowTextStringDataRegardingMaximumLrecl(cb, text, 7, 0);
  EXPECT_EQ(capture.Take(), "|> abc\n");
  // A zero byte exactly at the start of a line ends the text without an
  // empty line.
  std::string exact(37, 'y');
  exact.push_back('\0');
  ShowTextStringDataRegardingMaximumLrecl(cb, exact.data(), 38, 0);
  EXPECT_EQ(capture.Take(), "|> " + std::string(37, 'y') + "\n");
  ShowTextStringDataRegardingMaximumLrecl(cb, "", 0, 4);
  EXPECT_EQ(capture.Take(), "");
}

TEST_F(FieldCharv, DeepIndentationStillCarriesText) {
  cb->Settings.MaxParsedOutputLineLength = 40;
  std::string text(20, 'z');
  ShowTextStringDataRegardingMaximumLrecl(cb, text.data(), 20, 60);
  EXPECT_EQ(capture.Take(), "|> " + std::string(60, ' ') + std::string(16, 'z') + "\n" + "|> " +
                                std::string(60, ' ') + std::string(4, 'z') + "\n");
}
