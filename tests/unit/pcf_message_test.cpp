// Command-format messages: the header, every parameter type, the numbering
// of nested groups, the values by name, and bodies that are cut short or
// lie about their lengths and counts (run under AddressSanitizer in CI:
// every body is handed over in a block of exactly its size).
#include <stdio.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "format/message_content.h"
#include "format/pcf_message.h"
#include "tests/unit/pcf_builder.h"
#include "tests/unit/structure_test.h"
#include "zk/zk.h"

namespace {

struct PcfMessage : StructureTest {
  // The text ShowParsedPCF writes for the body, handed over in a block of
  // exactly its size.
  std::string Show(const std::vector<unsigned char> &body, int32_t encoding = 546,
                   uint32_t offset = 0) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[body.size()]);
    if (!body.empty()) {
      memcpy(exact.get(), body.data(), body.size());
    }
    capture.Clear();
    ShowParsedPCF(cb, encoding, exact.get(), (int32_t)body.size(), offset);
    return capture.Take();
  }
};

std::string Line(const std::string &name, const std::string &value) {
  return FieldLineName(name) + value + "\n";
}

std::string Section(uint32_t offset, uint32_t length) {
  char text[160];
  snprintf(
      text, sizeof text,
      "|> ----- offset %u-%u (=x%X-x%X) length %u (=x%X) - ZKCFH (PCF header and parameters)\n",
      offset, offset + length - 1, offset, offset + length - 1, length, length);
  return text;
}

// The heading of a parameter, built with printf as the layout says.
std::string Heading(const std::string &number, uint32_t first, uint32_t length) {
  char text[200];
  snprintf(text, sizeof text,
           "|> ------------------------ : --- %s --- offset %u-%u (=x%X-x%X) length %u (=x%X)\n",
           number.c_str(), first, first + length - 1, first, first + length - 1, length, length);
  return text;
}

// Type, Length and Parameter lines.
std::string Words(const std::string &type, int32_t length, int32_t parameter,
                  const std::string &name) {
  char number[16];
  snprintf(number, sizeof number, "%6d", length);
  char id[16];
  snprintf(id, sizeof id, "%6d", parameter);
  return Line("(parm) - Type", type) + Line("(parm) - Length", number) +
         Line("(parm) - Parameter", std::string(id) + " (" + name + ")");
}

std::string Header(const std::string &type, int32_t version, const std::string &command,
                   const std::string &control, const std::string &compCode,
                   const std::string &reason, int32_t count) {
  char number[16];
  snprintf(number, sizeof number, "%6d", count);
  char v[16];
  snprintf(v, sizeof v, "%6d", version);
  return Line("Type", type) + Line("StrucLength", "    36") + Line("Version", v) +
         Line("Command", command) + Line("MsgSeqNumber", "     1") + Line("Control", control) +
         Line("CompCode", compCode) + Line("Reason", reason) + Line("ParameterCount", number);
}

std::string InquireQHeader(int32_t count) {
  return Header("ZKCFT_COMMAND", 3, "    13 (ZKCMD_INQUIRE_Q)", "ZKCFC_LAST", "     0", "     0",
                count);
}

size_t Occurrences(const std::string &text, const std::string &piece) {
  size_t n = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) {
    n++;
  }
  return n;
}

std::vector<std::string> HeadingsOf(const std::string &text) {
  std::vector<std::string> headings;
  for (const std::string &line : TextLines(text)) {
    if (line.rfind("|> ------------------------ : ", 0) == 0) {
      headings.push_back(line);
    }
  }
  return headings;
}

// Every parameter type, groups in groups, values by name.
PcfBuilder EveryType(bool reversed) {
  PcfBuilder b(reversed);
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q)
      .Int(ZKIA_Q_TYPE, ZKQT_LOCAL)
      .Int(ZKIA_CODED_CHAR_SET_ID, 1208)
      .String(ZKCA_Q_NAME, "ORDERS.*")
      .String(ZKCA_Q_DESC, "      ")
      .String(ZKCA_Q_DESC, "")
      .IntList(ZKIACF_Q_ATTRS, {ZKIA_CURRENT_Q_DEPTH, ZKIA_MAX_Q_DEPTH, ZKIA_Q_TYPE})
      .IntList(ZKIACH_MSG_COMPRESSION, {ZKCOMPRESS_NONE, ZKCOMPRESS_RLE | ZKCOMPRESS_ZLIBFAST})
      .IntList(ZKIAMO_PUTS, {5, 7})
      .Int64(ZKIACF_ROUTE_DETAIL, -9876543210LL)
      .Int64List(ZKIAMO64_PUT_BYTES, {1, 30000000000LL})
      .StringList(ZKCA_NAMES, {"ORDERS.IN", "ORDERS.OUT", "ORDERS.ERR"}, 12)
      .ByteString(ZKBACF_EVENT_ACCOUNTING_TOKEN, std::string("\x00\x01\x02\x03\x04\x05\x06\x07"
                                                             "\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F",
                                                             16))
      .ByteString(ZKBACF_MSG_ID, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcd")
      .IntFilter(ZKIA_CURRENT_Q_DEPTH, ZKCFOP_GREATER, 10)
      .StringFilter(ZKCA_Q_DESC, ZKCFOP_LIKE, "order*")
      .ByteStringFilter(ZKBACF_EVENT_SECURITY_ID, ZKCFOP_EQUAL, "\xCA\xFE")
      .Group(ZKGACF_COMMAND_CONTEXT, 3)
      .Int(ZKIA_Q_TYPE, ZKQT_ALIAS)
      .String(ZKCA_Q_NAME, "IN.GROUP")
      .Group(ZKGACF_COMMAND_DATA, 2)
      .IntList(ZKIACH_HDR_COMPRESSION, {ZKCOMPRESS_NONE, ZKCOMPRESS_SYSTEM})
      .Int64(ZKIACF_MAX_ACTIVITIES, 42)
      .EndGroup()
      .EndGroup()
      .Int(ZKIACF_REGISTRATION_OPTIONS, ZKREGO_CORREL_ID_AS_IDENTITY | ZKREGO_PERSISTENT)
      .Int(ZKIACF_COMMAND, ZKCMD_INQUIRE_Q)
      .Raw(77, 4321, "\x01\x02\x03\x04\x05")
      .Int(ZKIA_Q_TYPE, ZKQT_REMOTE);
  return b;
}

} // namespace

// -- The edge cases of the header --------------------------------------------

TEST_F(PcfMessage, ThirtyFiveBytesShowNothingThirtySixTheHeaderAlone) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Count(0);
  std::vector<unsigned char> body = b.Bytes();
  ASSERT_EQ(body.size(), 36u);
  EXPECT_EQ(Show(std::vector<unsigned char>(body.begin(), body.end() - 1)), "");
  EXPECT_EQ(Show(body), Section(0, 36) + InquireQHeader(0));
  // A header that promises parameters, with no room for one.
  b.Count(5);
  EXPECT_EQ(Show(b.Bytes()), Section(0, 36) + InquireQHeader(5));
}

TEST_F(PcfMessage, ReasonZeroShowsTheNumberAloneOtherReasonsTheirNames) {
  PcfBuilder b;
  b.Header(ZKCFT_RESPONSE, ZKCMD_INQUIRE_Q, 1, 2, 2085, 0).Count(0);
  EXPECT_EQ(Show(b.Bytes()),
            Section(0, 36) + Header("ZKCFT_RESPONSE", 1, "    13 (ZKCMD_INQUIRE_Q)",
                                    "ZKCFC_NOT_LAST", "     2", "  2085 (ZKRC_UNKNOWN_OBJECT_NAME)",
                                    0));
  PcfBuilder zero;
  zero.Header(ZKCFT_RESPONSE, ZKCMD_INQUIRE_Q, 1, 0, 0, 0).Count(0);
  EXPECT_EQ(Show(zero.Bytes()),
            Section(0, 36) + Header("ZKCFT_RESPONSE", 1, "    13 (ZKCMD_INQUIRE_Q)",
                                    "ZKCFC_NOT_LAST", "     0", "     0", 0));
}

TEST_F(PcfMessage, HeaderOfAnEventWithUnknownValues) {
  PcfBuilder b;
  b.Header(99, 999, 3, 1, 2053, 7).Count(-4);
  std::string shown = Show(b.Bytes(), 546, 428);
  EXPECT_EQ(shown, Section(428, 36) + Line("Type", "(Unknown value)") +
                       Line("StrucLength", "    36") + Line("Version", "     3") +
                       Line("Command", "   999 ((Unknown value))") +
                       Line("MsgSeqNumber", "     1") + Line("Control", "(Unknown value)") +
                       Line("CompCode", "     1") + Line("Reason", "  2053 (ZKRC_Q_FULL)") +
                       Line("ParameterCount", "    -4"));
}

TEST_F(PcfMessage, VersionAboveThreeIsReportedAndShown) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q, 4).Count(0);
  std::string shown = Show(b.Bytes());
  EXPECT_EQ(shown, "|**********************************\n"
                   "|* Unknown : ZKCFH version 4\n"
                   "|**********************************\n" +
                       Section(0, 36) +
                       Header("ZKCFT_COMMAND", 4, "    13 (ZKCMD_INQUIRE_Q)", "ZKCFC_LAST",
                              "     0", "     0", 0));
  EXPECT_NE(capture.Alerts().find("Unknown API structure : ZKCFH version 4"), std::string::npos)
      << capture.Alerts();
}

// -- Parameters ----------------------------------------------------------------

TEST_F(PcfMessage, GroupOfTwoNumbersItsMembersAndTheNextParameter) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q)
      .Group(ZKGACF_COMMAND_CONTEXT, 2)
      .Int(ZKIA_CURRENT_Q_DEPTH, 4)
      .Int(ZKIA_MAX_Q_DEPTH, 5000)
      .EndGroup()
      .Int(ZKIA_Q_TYPE, ZKQT_LOCAL);
  EXPECT_EQ(Show(b.Bytes()), Section(0, 100) + InquireQHeader(2) + Heading("1", 36, 16) +
                                 Words("ZKCFT_GROUP", 16, 8001, "ZKGACF_COMMAND_CONTEXT") +
                                 Line("(parm) - parm count", "     2") + Heading("1.1", 52, 16) +
                                 Words("ZKCFT_INTEGER", 16, 3, "ZKIA_CURRENT_Q_DEPTH") +
                                 Line("(parm) - Value", "     4") + Heading("1.2", 68, 16) +
                                 Words("ZKCFT_INTEGER", 16, 15, "ZKIA_MAX_Q_DEPTH") +
                                 Line("(parm) - Value", "  5000") + Heading("2", 84, 16) +
                                 Words("ZKCFT_INTEGER", 16, 20, "ZKIA_Q_TYPE") +
                                 Line("(parm) - Value", "     1 (local)"));
}

TEST_F(PcfMessage, CompressionListShowsNamesAndPositions) {
  PcfBuilder b;
  b.Header(ZKCFT_RESPONSE, ZKCMD_INQUIRE_Q).IntList(ZKIACH_MSG_COMPRESSION, {0, 3, 0x0FFFFFFF, 16});
  std::string shown = Show(b.Bytes());
  EXPECT_EQ(shown.substr(shown.find(Heading("1", 36, 32))),
            Heading("1", 36, 32) + Words("ZKCFT_INTEGER_LIST", 32, 1576, "ZKIACH_MSG_COMPRESSION") +
                Line("(parm) - Count", "     4") +
                Line("(parm) - Value", "     0 (none) (1st choice)") +
                Line("(parm) - Value", "     3 (RLE / ZLIBFAST) (2nd choice)") +
                Line("(parm) - Value", "268435455 (any) (3rd choice)") +
                Line("(parm) - Value", "    16 () (4th choice)"));
}

TEST_F(PcfMessage, StringOfBlanksIsBlankOfLengthZeroNull) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_CHANGE_Q)
      .String(ZKCA_Q_DESC, "        ")
      .String(ZKCA_Q_DESC, "")
      .String(ZKCA_Q_DESC, std::string("\0abc", 4), 819);
  std::string shown = Show(b.Bytes());
  EXPECT_EQ(shown.substr(shown.find(Heading("1", 36, 28))),
            Heading("1", 36, 28) + Words("ZKCFT_STRING", 28, 2013, "ZKCA_Q_DESC") +
                Line("(parm) - CodedCharSetId", "  1208 (UTF-8)") +
                Line("(parm) - Length", "     8") + Line("(parm) - Value", "(blank)") +
                Heading("2", 64, 20) + Words("ZKCFT_STRING", 20, 2013, "ZKCA_Q_DESC") +
                Line("(parm) - CodedCharSetId", "  1208 (UTF-8)") +
                Line("(parm) - Length", "     0") + Line("(parm) - Value", "(null)") +
                Heading("3", 84, 24) + Words("ZKCFT_STRING", 24, 2013, "ZKCA_Q_DESC") +
                Line("(parm) - CodedCharSetId", "   819 (ISO 8859-1 ASCII)") +
                Line("(parm) - Length", "     4") + Line("(parm) - Value", "(null)"));
}

TEST_F(PcfMessage, LongStringGoesToLinesOfItsOwn) {
  cb->Settings.MaxParsedOutputLineLength = 40;
  std::string text(45, 'x');
  text += "END";
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_CHANGE_Q)
      .String(ZKCA_Q_DESC, text)
      .String(ZKCA_Q_NAME, std::string(39, 'y'))
      .String(ZKCA_Q_NAME, std::string(40, 'z'));
  std::string shown = Show(b.Bytes());
  // 40 columns less "|> " and the indentation of 2 leave 35 characters.
  EXPECT_NE(shown.find(FieldLineName("(parm) - Value") + "\n|>   " + std::string(35, 'x') +
                       "\n|>   " + std::string(10, 'x') + "END\n"),
            std::string::npos)
      << shown;
  EXPECT_NE(shown.find(Line("(parm) - Value", std::string(39, 'y'))), std::string::npos) << shown;
  EXPECT_NE(shown.find(FieldLineName("(parm) - Value") + "\n|>   " + std::string(35, 'z') +
                       "\n|>   zzzzz\n"),
            std::string::npos)
      << shown;
}

TEST_F(PcfMessage, EmptyGroupClosesAtOnce) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q)
      .Group(ZKGACF_COMMAND_CONTEXT, 1)
      .Group(ZKGACF_COMMAND_DATA, 0)
      .EndGroup()
      .EndGroup()
      .Int(ZKIA_Q_TYPE, 1);
  std::vector<std::string> headings = HeadingsOf(Show(b.Bytes()));
  ASSERT_EQ(headings.size(), 3u);
  EXPECT_EQ(headings[0] + "\n", Heading("1", 36, 16));
  EXPECT_EQ(headings[1] + "\n", Heading("1.1", 52, 16));
  EXPECT_EQ(headings[2] + "\n", Heading("2", 68, 16));
}

TEST_F(PcfMessage, GroupsDeeperThanThirtyTwoLevelsAreShownFlat) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q);
  // Each group holds the next group and an integer; the innermost only
  // the integer.
  for (int i = 0; i < 40; i++) {
    b.Group(ZKGACF_COMMAND_CONTEXT, i == 39 ? 1 : 2);
  }
  for (int i = 0; i < 40; i++) {
    b.Int(ZKIA_CURRENT_Q_DEPTH, i).EndGroup();
  }
  b.Int(ZKIA_Q_TYPE, 1);
  std::string shown = Show(b.Bytes());
  std::vector<std::string> headings = HeadingsOf(shown);
  ASSERT_EQ(headings.size(), 81u);
  // The 33rd group lies at the deepest level, numbered by 33 counters; it
  // opens no level of its own.
  std::string deepest = "1";
  for (int i = 1; i < 33; i++) {
    deepest += ".1";
  }
  EXPECT_EQ(headings[32] + "\n", Heading(deepest, 36 + 16 * 32, 16));
  // The 34th group and deeper count as members of the deepest level, and so
  // do their members: numbered on at that level.
  std::string flat = deepest.substr(0, deepest.size() - 1);
  EXPECT_EQ(headings[33] + "\n", Heading(flat + "2", 36 + 16 * 33, 16));
  EXPECT_EQ(headings[39] + "\n", Heading(flat + "8", 36 + 16 * 39, 16));
  EXPECT_EQ(Occurrences(shown, "|> (groups nested deeper than 32 levels are shown flat)"), 1u);
  // The line comes right after the parameter count of the 34th group.
  EXPECT_NE(shown.find(Line("(parm) - parm count", "     2") +
                       "|> (groups nested deeper than 32 levels are shown flat)\n" +
                       Heading(flat + "2", 36 + 16 * 33, 16)),
            std::string::npos);
  // Every parameter is shown, the last one at the outermost level.
  EXPECT_EQ(headings[80] + "\n", Heading("2", 36 + 16 * 80, 16));
}

TEST_F(PcfMessage, UnknownTypeShownInHexAndUnknownIdentifierNamedSo) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Raw(77, 4321, "\x01\x02\x03\x04\x05").Raw(78, 4322, "");
  std::string shown = Show(b.Bytes());
  EXPECT_EQ(shown.substr(shown.find(Heading("1", 36, 20))),
            Heading("1", 36, 20) + Words("(Unknown value)", 20, 4321, "Unknown attribute") +
                Line("(parm) - unknown (hex)", "01020304 05000000  [........]") +
                Heading("2", 56, 12) + Words("(Unknown value)", 12, 4322, "Unknown attribute"));
}

TEST_F(PcfMessage, ParameterCountEndsTheLoopBeforeTheBodyEnds) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Int(ZKIA_Q_TYPE, 1).Int(ZKIA_Q_TYPE, 2).Count(1);
  EXPECT_EQ(HeadingsOf(Show(b.Bytes())).size(), 1u);
  b.Count(0);
  EXPECT_EQ(HeadingsOf(Show(b.Bytes())).size(), 0u);
  b.Count(-1);
  EXPECT_EQ(HeadingsOf(Show(b.Bytes())).size(), 0u);
  b.Count(INT32_MAX);
  EXPECT_EQ(HeadingsOf(Show(b.Bytes())).size(), 2u);
}

TEST_F(PcfMessage, LimitCountsFromTheStartOfTheMessage) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Int(ZKIA_Q_TYPE, 1).Int(ZKIA_USAGE, 0);
  std::vector<unsigned char> body = b.Bytes(); // 68 bytes
  cb->Settings.ShowMaxLenParsedContent = 100 + 52;
  std::string shown = Show(body, 546, 100);
  EXPECT_EQ(HeadingsOf(shown).size(), 1u);
  EXPECT_EQ(shown.substr(0, Section(100, 52).size()), Section(100, 52));
  cb->Settings.ShowMaxLenParsedContent = 100 + 35;
  EXPECT_EQ(Show(body, 546, 100), "");
  cb->Settings.ShowMaxLenParsedContent = 50;
  EXPECT_EQ(Show(body, 546, 100), "");
  cb->Settings.ShowMaxLenParsedContent = 0;
  EXPECT_EQ(Show(body, 546, 0), "");
  cb->Settings.ShowMaxLenParsedContent = -1;
  EXPECT_EQ(HeadingsOf(Show(body, 546, 100)).size(), 2u);
}

TEST_F(PcfMessage, NoBodyOrANegativeLengthShowsNothing) {
  capture.Clear();
  ShowParsedPCF(cb, 546, nullptr, 100, 0);
  unsigned char byte = 0;
  ShowParsedPCF(cb, 546, &byte, -1, 0);
  ShowParsedPCF(cb, 546, &byte, INT32_MIN, 0);
  EXPECT_EQ(capture.Text(), "");
}

// -- The whole message ---------------------------------------------------------

TEST_F(PcfMessage, EveryTypeAndNestedGroupsAsExpected) {
  PcfBuilder b = EveryType(false);
  EXPECT_STRUCTURE_TEXT(Show(b.Bytes(), b.Encoding(), 0), "pcf_every_type.txt");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(PcfMessage, ReversedIntegersShowTheSameMessage) {
  PcfBuilder native = EveryType(false);
  PcfBuilder reversed = EveryType(true);
  std::vector<unsigned char> a = native.Bytes();
  std::vector<unsigned char> z = reversed.Bytes();
  ASSERT_NE(a, z);
  EXPECT_EQ(Show(z, 273), Show(a, 546));
  // Read with the wrong encoding, the header's ParameterCount and lengths are
  // nonsense: the display ends without reading beyond the body.
  std::string wrong = Show(z, 546);
  EXPECT_EQ(HeadingsOf(wrong).size(), 0u) << wrong;
}

// -- Bodies cut short and lengths that lie ----------------------------------

TEST_F(PcfMessage, BodyCutAtEveryLengthShowsWholeLinesAndEarlierParametersOnly) {
  PcfBuilder b = EveryType(false);
  std::vector<unsigned char> body = b.Bytes();
  std::string full = Show(body);
  std::vector<std::string> all = HeadingsOf(full);
  size_t before = 0;
  for (size_t length = 0; length <= body.size(); length++) {
    std::string shown = Show(std::vector<unsigned char>(body.begin(), body.begin() + length));
    if (length < 36) {
      ASSERT_EQ(shown, "") << length;
      continue;
    }
    ASSERT_EQ(shown.back(), '\n') << length;
    ASSERT_EQ(shown.substr(0, Section(0, (uint32_t)length).size()), Section(0, (uint32_t)length));
    std::vector<std::string> headings = HeadingsOf(shown);
    // The parameters that fit, the same as in the whole body, never fewer
    // as the body grows.
    ASSERT_LE(headings.size(), all.size()) << length;
    for (size_t i = 0; i < headings.size(); i++) {
      ASSERT_EQ(headings[i], all[i]) << length;
    }
    ASSERT_GE(headings.size(), before) << length;
    before = headings.size();
  }
  EXPECT_EQ(before, all.size());
}

TEST_F(PcfMessage, StrucLengthsThatLieEndTheDisplayAtThatParameter) {
  for (int32_t lie : {0, -1, 8, 11, 0x7FFFFFFF, INT32_MIN, 33}) {
    PcfBuilder b;
    b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Int(ZKIA_Q_TYPE, 1).Int(ZKIA_USAGE, 1);
    size_t second = b.Last();
    b.Int(ZKIA_CURRENT_Q_DEPTH, 3);
    b.Set(second + 4, lie);
    std::string shown = Show(b.Bytes()); // 84 bytes: 32 remain at the second
    std::vector<std::string> headings = HeadingsOf(shown);
    ASSERT_EQ(headings.size(), 1u) << lie << "\n" << shown;
    EXPECT_EQ(shown.substr(shown.size() - 15), "     1 (local)\n") << lie;
  }
}

TEST_F(PcfMessage, StrucLengthShorterThanTheValueLeavesTheVariablePartOut) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_CHANGE_Q).String(ZKCA_Q_DESC, "twelve chars").Int(ZKIA_Q_TYPE, 1);
  b.Set(36 + 4, 20); // the string's StrucLength: its fixed part only
  std::string shown = Show(b.Bytes());
  // The string's value is left out; the next parameter then starts inside
  // the string's bytes, and its StrucLength (text read as a number) ends the
  // display.
  EXPECT_EQ(HeadingsOf(shown).size(), 1u) << shown;
  EXPECT_EQ(shown.substr(shown.size() - Line("(parm) - Length", "    12").size()),
            Line("(parm) - Length", "    12"))
      << shown;
}

TEST_F(PcfMessage, CountsThatLieShowTheCountAndNoValues) {
  for (int32_t lie : {0, -1, 3, 0x7FFFFFFF, INT32_MIN, 0x40000001}) {
    PcfBuilder b;
    b.Header(ZKCFT_RESPONSE, ZKCMD_INQUIRE_Q)
        .IntList(ZKIAMO_PUTS, {1, 2})
        .Int64List(ZKIAMO64_PUT_BYTES, {1, 2})
        .StringList(ZKCA_NAMES, {"A", "B"}, 4);
    std::vector<unsigned char> body = b.Bytes();
    PcfBuilder lying = b;
    lying.Set(36 + 12, lie).Set(36 + 24 + 12, lie).Set(36 + 24 + 32 + 16, lie);
    std::string shown = Show(lying.Bytes());
    char count[16];
    snprintf(count, sizeof count, "%6d", lie);
    EXPECT_EQ(Occurrences(shown, FieldLineName("(parm) - Count") + count), 3u) << shown;
    EXPECT_EQ(Occurrences(shown, FieldLineName("(parm) - Value")), 0u) << lie << "\n" << shown;
    EXPECT_EQ(HeadingsOf(shown).size(), 3u);
  }
}

TEST_F(PcfMessage, StringLengthsThatLieLeaveTheValueOut) {
  for (int32_t lie : {0x7FFFFFFF, 13, 100, INT32_MIN, -1, 0}) {
    PcfBuilder b;
    b.Header(ZKCFT_COMMAND, ZKCMD_CHANGE_Q)
        .String(ZKCA_Q_DESC, "twelve chars")
        .ByteString(ZKBACF_MSG_ID, "123456789012")
        .StringFilter(ZKCA_Q_DESC, ZKCFOP_LIKE, "twelve chars")
        .ByteStringFilter(ZKBACF_CORREL_ID, ZKCFOP_EQUAL, "123456789012")
        .StringList(ZKCA_NAMES, {"twelve chars"}, 12);
    b.Set(36 + 16, lie);                     // string
    b.Set(36 + 32 + 12, lie);                // byte string
    b.Set(36 + 32 + 28 + 20, lie);           // string filter
    b.Set(36 + 32 + 28 + 36 + 16, lie);      // byte string filter
    b.Set(36 + 32 + 28 + 36 + 32 + 20, lie); // string list
    std::string shown = Show(b.Bytes());
    EXPECT_EQ(HeadingsOf(shown).size(), 5u) << lie << "\n" << shown;
    // No length shows bytes beyond its parameter; those below 1 show "(null)".
    EXPECT_EQ(shown.find("twelve"), std::string::npos) << lie << "\n" << shown;
    EXPECT_EQ(shown.find("[1234"), std::string::npos) << lie << "\n" << shown;
    EXPECT_EQ(Occurrences(shown, "(null)"), lie < 1 ? 4u : 0u) << lie << "\n" << shown;
  }
}

TEST_F(PcfMessage, GroupCountThatLiesIsBoundedByTheBody) {
  PcfBuilder b;
  b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Group(ZKGACF_COMMAND_CONTEXT, 1).Int(20, 1);
  b.EndGroup().Int(20, 2);
  // A count beyond the body: every parameter after the group is a member.
  b.Set(36 + 12, 0x7FFFFFFF);
  std::vector<std::string> headings = HeadingsOf(Show(b.Bytes()));
  ASSERT_EQ(headings.size(), 3u);
  EXPECT_EQ(headings[2] + "\n", Heading("1.2", 68, 16));
  // A negative count: a group without members, so the integers after it
  // count at the outer level, where the header's count of 2 ends the walk.
  for (int32_t lie : {-5, INT32_MIN}) {
    b.Set(36 + 12, lie);
    headings = HeadingsOf(Show(b.Bytes()));
    ASSERT_EQ(headings.size(), 2u) << lie;
    EXPECT_EQ(headings[1] + "\n", Heading("2", 52, 16)) << lie;
  }
}

TEST_F(PcfMessage, ValuePartsNeedTheirFixedWordsInTheBody) {
  // Each type with its three words only, at the very end of the body.
  for (int32_t type : {3, 4, 5, 6, 9, 13, 14, 15, 20, 23, 25, 77}) {
    PcfBuilder b;
    b.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).Raw(type, ZKIA_Q_TYPE, "");
    std::string shown = Show(b.Bytes());
    std::vector<std::string> lines = TextLines(shown);
    ASSERT_EQ(HeadingsOf(shown).size(), 1u) << type;
    // The heading and its three lines are the last lines.
    EXPECT_EQ(lines[lines.size() - 4] + "\n", Heading("1", 36, 12)) << type << "\n" << shown;
  }
}

TEST_F(PcfMessage, SixtyFourBitValuesAndListsWithPositionNames) {
  PcfBuilder b;
  b.Header(ZKCFT_STATISTICS, ZKCMD_STATISTICS_Q)
      .Int64(ZKIAMO64_BYTES, INT64_MIN)
      .Int64List(ZKIAMO64_GET_BYTES, {0, 123456789012LL, -1});
  std::string shown = Show(b.Bytes());
  EXPECT_EQ(shown.substr(shown.find(Heading("1", 36, 24))),
            Heading("1", 36, 24) + Words("ZKCFT_INTEGER64", 24, 746, "ZKIAMO64_BYTES") +
                Line("(parm) - Value", "-9223372036854775808") + Heading("2", 60, 40) +
                Words("ZKCFT_INTEGER64_LIST", 40, 747, "ZKIAMO64_GET_BYTES") +
                Line("(parm) - Count", "     3") +
                Line("(parm) - Value", "     0 (for nonpersistent messages)") +
                Line("(parm) - Value", "123456789012 (for persistent messages)") +
                Line("(parm) - Value", "    -1"));
}
