// Attribute selectors: the tables (every selector constant has its row, in
// order, found by halving), the look-up by range, every selector whose
// integer value has a display of its own, and the integer and character
// attributes of ZKINQ and ZKSET with counts that are short, zero, negative
// or larger than the values.
#include <string.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "format/attribute_selectors.h"
#include "tests/unit/field_line_test.h"
#include "text/attribute_tables.h"
#include "zk/zk.h"

namespace {

// A copy of the values in a block of exactly their size, so that the
// sanitizers see any read beyond them.
template <typename T> std::unique_ptr<T[]> Exact(const T *values, size_t count) {
  std::unique_ptr<T[]> block(new T[count]);
  if (count > 0) {
    memcpy(block.get(), values, count * sizeof(T));
  }
  return block;
}

struct AttributeSelectors : FieldLineTest {
  // The integer attributes shown for the selectors and values given.
  std::string Ints(const std::vector<int32_t> &selectors, const std::vector<int32_t> &values) {
    auto s = Exact(selectors.data(), selectors.size());
    auto v = Exact(values.data(), values.size());
    capture.Clear();
    ShowParsedZkinqZksetOptionsInt(cb, 0, (int32_t)selectors.size(), s.get(),
                                   (int32_t)values.size(), v.get());
    return capture.Take();
  }
  std::string Chars(const std::vector<int32_t> &selectors, const std::vector<int32_t> &values,
                    const std::string &area) {
    auto s = Exact(selectors.data(), selectors.size());
    auto v = Exact(values.data(), values.size());
    auto a = Exact(area.data(), area.size());
    capture.Clear();
    ShowParsedZkinqZksetOptionsChar(cb, 0, (int32_t)selectors.size(), s.get(),
                                    (int32_t)values.size(), v.get(), (int32_t)area.size(), a.get());
    return capture.Take();
  }
  // One integer value of the row of `selector`, shown under its name.
  std::string Value(int32_t selector, int32_t value, uint8_t fixedLength = 0) {
    capture.Clear();
    const ZkAttrIntEntry *row = FindZkAttrIntRow(selector);
    EXPECT_NE(row, nullptr) << selector;
    SearchIntZkAttrValueAndSetString(cb, value, row, fixedLength, row->Name);
    return capture.Take();
  }
};

std::string Line(const std::string &name, const std::string &value) {
  return FieldLineName(name) + value + "\n";
}

std::string Banner(const std::string &name, const std::string &hex) {
  return "|**********************************\n"
         "|* Unknown : " +
         name + " 0x" + hex +
         "\n"
         "|**********************************\n";
}

std::string Blank(size_t n) {
  return std::string(n, ' ');
}

// Every constant of the selector families, read from the rows that define
// them.
struct Selector {
  const char *Name;
  int32_t Value;
};
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text) {#name, (int32_t)(value)},
#define ZK_NAMED(name, value) {#name, (int32_t)(value)},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
const Selector kIntSelectors[] = {
#include "zk/defs/topicstatus.def"
#include "zk/defs/zkia.def"
#include "zk/defs/zkiacf.def"
#include "zk/defs/zkiach.def"
#include "zk/defs/zkiamo.def"
};
const Selector kCharSelectors[] = {
#include "zk/defs/zkca.def"
};
const Selector kOtherSelectors[] = {
#include "zk/defs/zkbacf.def"
#include "zk/defs/zkgacf.def"
#include "zk/defs/zkcamo.def"
#include "zk/defs/zkcacf_zkcach.def"
};
#include "zk/defs/undef.h"

} // namespace

// -- The tables -------------------------------------------------------------

TEST(AttributeTables, EveryIntegerSelectorConstantHasItsRowAndNoOtherRowExists) {
  std::set<std::string> names;
  for (const Selector &s : kIntSelectors) {
    const ZkAttrIntEntry *row = FindZkAttrIntRow(s.Value);
    ASSERT_NE(row, nullptr) << s.Name;
    EXPECT_EQ(row->Selector, s.Value);
    EXPECT_STREQ(row->Name, s.Name);
    names.insert(s.Name);
  }
  size_t rows = 0;
  for (const ZkAttrIntEntry *row = Constant_ZkAttrsZkia; row->Selector != CONSTANT_TABLE_END;
       row++) {
    EXPECT_EQ(names.count(row->Name), 1u) << row->Name << " is no selector constant";
    rows++;
  }
  EXPECT_EQ(rows, names.size());
  EXPECT_GE(rows, 700u);
}

TEST(AttributeTables, EveryCharacterSelectorConstantHasItsRowWithALength) {
  size_t rows = 0;
  for (const Selector &s : kCharSelectors) {
    const ZkAttrCharEntry *row = FindZkAttrCharRow(s.Value);
    ASSERT_NE(row, nullptr) << s.Name;
    EXPECT_STREQ(row->Name, s.Name);
    EXPECT_GT(row->Length, 0) << s.Name;
  }
  for (const ZkAttrCharEntry *row = Constant_ZkAttrsZkca; row->Selector != CONSTANT_TABLE_END;
       row++) {
    rows++;
  }
  EXPECT_EQ(rows, sizeof kCharSelectors / sizeof kCharSelectors[0]);
  EXPECT_EQ(FindZkAttrCharRow(ZKCA_Q_NAME)->Length, 48);
  EXPECT_EQ(FindZkAttrCharRow(ZKCA_CREATION_DATE)->Length, 12);
  EXPECT_EQ(FindZkAttrCharRow(ZKCA_TRIGGER_DATA)->Length, 64);
  EXPECT_EQ(FindZkAttrCharRow(ZKCA_NAMES)->Length, 48);
}

TEST(AttributeTables, EveryOtherParameterConstantIsNamedByItsTable) {
  for (const Selector &s : kOtherSelectors) {
    const char *name = nullptr;
    EXPECT_EQ(SearchZkAttributeTable(nullptr, s.Value, &name, nullptr, nullptr), 0) << s.Name;
    EXPECT_STREQ(name, s.Name);
  }
}

TEST(AttributeTables, RowsAreInSelectorOrderWithinTheirRanges) {
  int32_t last = 0;
  for (const ZkAttrIntEntry *row = Constant_ZkAttrsZkia; row->Selector != CONSTANT_TABLE_END;
       row++) {
    EXPECT_GT(row->Selector, last);
    EXPECT_LE(row->Selector, 2000);
    last = row->Selector;
  }
  last = 2000;
  for (const ZkAttrCharEntry *row = Constant_ZkAttrsZkca; row->Selector != CONSTANT_TABLE_END;
       row++) {
    EXPECT_GT(row->Selector, last);
    EXPECT_LE(row->Selector, 2124);
    last = row->Selector;
  }
}

TEST(AttributeTables, HalvingFindsWhatAScanFindsForEverySelector) {
  for (int32_t s = -2; s <= 9000; s++) {
    const ZkAttrIntEntry *scanned = nullptr;
    for (const ZkAttrIntEntry *row = Constant_ZkAttrsZkia; row->Selector != CONSTANT_TABLE_END;
         row++) {
      if (row->Selector == s) {
        scanned = row;
      }
    }
    ASSERT_EQ(FindZkAttrIntRow(s), scanned) << s;
    const ConstantIntEntry *other = nullptr;
    for (const ConstantIntEntry *row = Constant_ZkAttrsZkcacfcachcamo;
         row->value != CONSTANT_TABLE_END; row++) {
      if (row->value == s) {
        other = row;
      }
    }
    ASSERT_EQ(FindZkAttrNameRow(s, Constant_ZkAttrsZkcacfcachcamo), other) << s;
  }
  EXPECT_EQ(FindZkAttrIntRow(CONSTANT_TABLE_END), nullptr);
  EXPECT_EQ(FindZkAttrIntRow(INT32_MIN), nullptr);
  EXPECT_EQ(FindZkAttrIntRow(INT32_MAX), nullptr);
}

TEST(AttributeTables, ValueTablesOfTheSelectorsTheTraceNamesValuesFor) {
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_DEF_PERSISTENCE)->Values, Constant_Zkper);
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_Q_TYPE)->Values, Constant_Zkqt);
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_USAGE)->Values, Constant_Zkus_queue);
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_DEFINITION_TYPE)->Values, Constant_Zkqdt);
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_INHIBIT_GET)->Values, Constant_Zkqa_get);
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_INHIBIT_PUT)->Values, Constant_Zkqa_put);
  EXPECT_EQ(FindZkAttrIntRow(ZKIACF_COMMAND)->Values, Constant_ZkAttrsPcfCommand);
  EXPECT_EQ(FindZkAttrIntRow(ZKIA_CURRENT_Q_DEPTH)->Values, nullptr);
  EXPECT_EQ(FindZkAttrIntRow(ZKIAMO_PUTS)->Values, nullptr);
}

TEST(AttributeTables, SelectorsForIntegerListsNameTheirPositions) {
  EXPECT_STREQ(SearchIntListEntryDescrption(714, 1), "Disconnect type - implicit");
  EXPECT_STREQ(SearchIntListEntryDescrption(733, 0), "Object type - queue");
  EXPECT_STREQ(SearchIntListEntryDescrption(744, 7), "Object type - topic");
  EXPECT_STREQ(SearchIntListEntryDescrption(735, 0), "for nonpersistent messages");
  EXPECT_STREQ(SearchIntListEntryDescrption(742, 1), "for persistent messages");
  EXPECT_STREQ(SearchIntListEntryDescrption(1226, 0), "short-term average");
  EXPECT_STREQ(SearchIntListEntryDescrption(1604, 1), "long-term average");
  EXPECT_STREQ(SearchIntListEntryDescrption(1576, 0), "1st choice");
  EXPECT_STREQ(SearchIntListEntryDescrption(1575, 1), "2nd choice");
  // A position without a name, and a parameter without named positions.
  EXPECT_STREQ(SearchIntListEntryDescrption(735, 2), "");
  EXPECT_STREQ(SearchIntListEntryDescrption(735, -1), "");
  EXPECT_STREQ(SearchIntListEntryDescrption(735, CONSTANT_TABLE_END), "");
  EXPECT_STREQ(SearchIntListEntryDescrption(1002, 0), "");
  // Every parameter the lists name, with the table of its kind of list.
  const int32_t byObject[] = {733, 751, 709, 757, 727, 752, 744, 753};
  const int32_t byPersistence[] = {735, 734, 748, 722, 747, 705, 745, 728, 758, 746,
                                   737, 736, 724, 723, 707, 706, 743, 741, 742};
  const int32_t byPeriod[] = {1226, 1607, 1611, 1612, 1606, 1605, 1604};
  for (int32_t p : byObject) {
    EXPECT_STREQ(SearchIntListEntryDescrption(p, ZKOT_CHANNEL - 1), "Object type - channel") << p;
  }
  for (int32_t p : byPersistence) {
    EXPECT_STREQ(SearchIntListEntryDescrption(p, 1), "for persistent messages") << p;
  }
  for (int32_t p : byPeriod) {
    EXPECT_STREQ(SearchIntListEntryDescrption(p, 0), "short-term average") << p;
  }
}

TEST(AttributeTables, CommandFormatStructureTablesNameTheirConstants) {
  EXPECT_STREQ(SearchConstantInt(ZKCFT_INTEGER_LIST, Constant_ZkAttrsPcfType),
               "ZKCFT_INTEGER_LIST");
  EXPECT_STREQ(SearchConstantInt(99, Constant_ZkAttrsPcfType), "(Unknown value)");
  EXPECT_STREQ(SearchConstantInt(13, Constant_ZkAttrsPcfCommand), "ZKCMD_INQUIRE_Q");
  EXPECT_STREQ(SearchConstantInt(1, Constant_ZkAttrsPcfControl), "ZKCFC_LAST");
  EXPECT_STREQ(SearchConstantInt(18, Constant_ZkAttrsZkcfop), "ZKCFOP_LIKE");
}

// -- Finding a selector's row ----------------------------------------------

TEST_F(AttributeSelectors, SearchByRangeSetsTheUnknownRowsFirst) {
  const char *name = "untouched";
  const ZkAttrIntEntry *intRow = nullptr;
  const ZkAttrCharEntry *charRow = nullptr;
  EXPECT_EQ(SearchZkAttributeTable(cb, ZKIA_CURRENT_Q_DEPTH, &name, &intRow, &charRow), 0);
  EXPECT_STREQ(name, "ZKIA_CURRENT_Q_DEPTH");
  EXPECT_EQ(intRow->Selector, ZKIA_CURRENT_Q_DEPTH);
  EXPECT_EQ(charRow, Constant_ZkAttrsZkcaUnknown);

  EXPECT_EQ(SearchZkAttributeTable(cb, ZKCA_Q_NAME, &name, &intRow, &charRow), 0);
  EXPECT_STREQ(name, "ZKCA_Q_NAME");
  EXPECT_EQ(intRow, Constant_ZkAttrsZkiaUnknown);
  EXPECT_EQ(charRow->Length, 48);

  EXPECT_EQ(SearchZkAttributeTable(cb, 7001, &name, &intRow, &charRow), 0);
  EXPECT_STREQ(name, "ZKBACF_EVENT_ACCOUNTING_TOKEN");
  EXPECT_EQ(SearchZkAttributeTable(cb, 8014, &name, nullptr, nullptr), 0);
  EXPECT_STREQ(name, "ZKGACF_APP_DIST_LIST");
  EXPECT_EQ(SearchZkAttributeTable(cb, 3011, &name, nullptr, nullptr), 0);
  EXPECT_STREQ(name, "ZKCACF_Q_NAMES");
  EXPECT_EQ(SearchZkAttributeTable(cb, 2701, &name, nullptr, nullptr), 0);
  EXPECT_STREQ(name, "ZKCAMO_CLOSE_DATE");

  // Unassigned selectors in each range keep the unknown rows.
  for (int32_t selector : {0, 67, 1999, 2043, 2125, 3077, 7017, 7036, 8015, -1, 4321}) {
    name = nullptr;
    intRow = nullptr;
    charRow = nullptr;
    EXPECT_EQ(SearchZkAttributeTable(cb, selector, &name, &intRow, &charRow), -1) << selector;
    EXPECT_STREQ(name, "Unknown attribute") << selector;
    EXPECT_EQ(intRow, Constant_ZkAttrsZkiaUnknown);
    EXPECT_EQ(charRow, Constant_ZkAttrsZkcaUnknown);
  }
  EXPECT_EQ(Constant_ZkAttrsZkiaUnknown[0].Values, nullptr);
  EXPECT_EQ(Constant_ZkAttrsZkcaUnknown[0].Length, 0);
  // Every output may be left out.
  EXPECT_EQ(SearchZkAttributeTable(cb, ZKIA_Q_TYPE, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(capture.Text(), "");
}

// -- One integer value ------------------------------------------------------

TEST_F(AttributeSelectors, AuthorityOptionsAsFlagsInTheirOrder) {
  EXPECT_EQ(Value(1228, 0x100 | 0x10 | 0x1),
            Line("ZKIACF_AUTH_OPTIONS", "CUMULATIVE / ENTITY_EXPLICIT / NAME_EXPLICIT"));
  EXPECT_EQ(Value(1228, 0x2 | 0x20 | 0x40),
            Line("ZKIACF_AUTH_OPTIONS", "ENTITY_SET / NAME_ALL_MATCHING / NAME_AS_WILDCARD"));
  EXPECT_EQ(Value(1228, 0), Line("ZKIACF_AUTH_OPTIONS", "(none)"));
  EXPECT_EQ(capture.Alerts(), "");
  // Other bits: the names of the known ones, then the report of the word.
  EXPECT_EQ(Value(1228, 0x1001), Line("ZKIACF_AUTH_OPTIONS", "ENTITY_EXPLICIT") +
                                     Banner("ZKIACF_AUTH_OPTIONS", "00001001"));
  EXPECT_NE(capture.Alerts().find("Unknown API attribute : ZKIACF_AUTH_OPTIONS value 0x00001001"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(AttributeSelectors, ReportOptionsAndMessageFlagsInHexWithTheirNames) {
  EXPECT_EQ(Value(1255, 0x00000701),
            Line("ZKIACF_REPORT", "0x00000701 (COA_WITH_FULL_DATA / PAN)"));
  EXPECT_EQ(Value(1255, 0x0F000000),
            Line("ZKIACF_REPORT", "0x0F000000 (EXCEPTION_WITH_FULL_DATA / DISCARD_MSG)"));
  EXPECT_EQ(Value(1255, 0), Line("ZKIACF_REPORT", "0x00000000 ((none))"));
  EXPECT_EQ(Value(1247, 0x18),
            Line("ZKIACF_MSG_FLAGS", "0x00000018 (MSG_IN_GROUP / LAST_MSG_IN_GROUP)"));
  // Embedded use: bits without a name are not reported.
  EXPECT_EQ(Value(1247, 0x80000001), Line("ZKIACF_MSG_FLAGS", "0x80000001 (SEGMENTATION_ALLOWED)"));
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(AttributeSelectors, CommandEncodingAndReasonCodesWithTheirNames) {
  EXPECT_EQ(Value(1021, 13), Line("ZKIACF_COMMAND", "13 (ZKCMD_INQUIRE_Q)"));
  EXPECT_EQ(Value(1021, 13, 1), Line("ZKIACF_COMMAND", "    13 (ZKCMD_INQUIRE_Q)"));
  EXPECT_EQ(Value(1021, 999), Line("ZKIACF_COMMAND", "999 ((Unknown value))"));
  EXPECT_EQ(Value(1243, 546), Line("ZKIACF_ENCODING", "546 (Native encoding) INTEGER_REVERSED / "
                                                      "DECIMAL_REVERSED / FLOAT_IEEE_REVERSED"));
  EXPECT_EQ(Value(1243, 273, 1),
            Line("ZKIACF_ENCODING", "   273 INTEGER_NORMAL / DECIMAL_NORMAL / FLOAT_IEEE_NORMAL"));
  EXPECT_EQ(Value(1013, 2085), Line("ZKIACF_ERROR_ID", "2085 (ZKRC_UNKNOWN_OBJECT_NAME)"));
  EXPECT_EQ(Value(1072, 0), Line("ZKIACF_CONV_REASON_CODE", "0 (none)"));
  EXPECT_EQ(Value(1245, 256, 1), Line("ZKIACF_FEEDBACK", "   256 (ZKFB_QUIT)"));
}

TEST_F(AttributeSelectors, RegistrationPublicationAndDeleteOptions) {
  EXPECT_EQ(Value(1081, 0x1 | 0x800 | 0x100000 | 0x200000),
            Line("ZKIACF_REGISTRATION_OPTIONS",
                 "CORREL_ID_AS_IDENTITY / PERSISTENT / VARIABLE_USER_ID / LOCKED"));
  EXPECT_EQ(Value(1081, 0x80000), Line("ZKIACF_REGISTRATION_OPTIONS", "LEAVE_ONLY"));
  EXPECT_EQ(capture.Alerts(), "");
  // Bits above 21 are unknown.
  EXPECT_EQ(Value(1081, 0x400000 | 0x4), Line("ZKIACF_REGISTRATION_OPTIONS", "LOCAL") +
                                             Banner("ZKIACF_REGISTRATION_OPTIONS", "00400004"));
  EXPECT_EQ(Value(1082, 0x2 | 0x10),
            Line("ZKIACF_PUBLICATION_OPTIONS", "RETAIN_PUBLICATION / IS_RETAINED_PUBLICATION"));
  EXPECT_EQ(Value(1082, 0x20), Line("ZKIACF_PUBLICATION_OPTIONS", "(none)") +
                                   Banner("ZKIACF_PUBLICATION_OPTIONS", "00000020"));
  EXPECT_EQ(Value(1092, 4), Line("ZKIACF_DELETE_OPTIONS", "LOCAL"));
  EXPECT_EQ(Value(1092, 0), Line("ZKIACF_DELETE_OPTIONS", "(none)"));
  EXPECT_EQ(Value(1092, 1),
            Line("ZKIACF_DELETE_OPTIONS", "(none)") + Banner("ZKIACF_DELETE_OPTIONS", "00000001"));
}

TEST_F(AttributeSelectors, OtherRowsShowTheValueWithItsNameOrAlone) {
  EXPECT_EQ(Value(ZKIA_DEF_PERSISTENCE, 1), Line("ZKIA_DEF_PERSISTENCE", "1 (persistent)"));
  EXPECT_EQ(Value(ZKIA_Q_TYPE, 1, 1), Line("ZKIA_Q_TYPE", "     1 (local)"));
  EXPECT_EQ(Value(ZKIA_Q_TYPE, 1001), Line("ZKIA_Q_TYPE", "1001 (all)"));
  EXPECT_EQ(Value(ZKIA_INHIBIT_PUT, 5), Line("ZKIA_INHIBIT_PUT", "5 ((Unknown value))"));
  EXPECT_EQ(Value(ZKIA_CURRENT_Q_DEPTH, -7), Line("ZKIA_CURRENT_Q_DEPTH", "-7"));
  EXPECT_EQ(Value(ZKIA_CURRENT_Q_DEPTH, 42, 1), Line("ZKIA_CURRENT_Q_DEPTH", "    42"));
  // No row: the unknown row, a plain number; no name: the value alone.
  capture.Clear();
  SearchIntZkAttrValueAndSetString(cb, 3, nullptr, 0, "Value");
  EXPECT_EQ(capture.Take(), Line("Value", "3"));
  SearchIntZkAttrValueAndSetString(cb, 1, FindZkAttrIntRow(ZKIA_Q_TYPE), 0, nullptr);
  EXPECT_EQ(capture.Take(), "1 (local)\n");
}

// -- Integer attributes of a call ------------------------------------------

TEST_F(AttributeSelectors, SelectorCountZeroOrLessWritesNothing) {
  const int32_t selectors[] = {ZKIA_CURRENT_Q_DEPTH, ZKCA_Q_NAME};
  const int32_t values[] = {5};
  for (int32_t count : {0, -1, INT32_MIN}) {
    ShowParsedZkinqZksetOptionsInt(cb, 0, count, selectors, 1, values);
    ShowParsedZkinqZksetOptionsChar(cb, 0, count, selectors, 1, values, 4, "ABCD");
  }
  ShowParsedZkinqZksetOptionsInt(cb, 0, 2, nullptr, 1, values);
  ShowParsedZkinqZksetOptionsChar(cb, 0, 2, nullptr, 1, values, 4, "ABCD");
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(AttributeSelectors, EachIntegerSelectorWithItsValueInOrder) {
  EXPECT_EQ(Ints({ZKIA_Q_TYPE, ZKCA_Q_NAME, ZKIA_CURRENT_Q_DEPTH, ZKIA_CODED_CHAR_SET_ID,
                  ZKIA_DEF_PERSISTENCE, ZKIA_INHIBIT_GET},
                 {1, 17, 819, 0, 1}),
            Line("ZKIA_Q_TYPE", "1 (local)") + Line("ZKIA_CURRENT_Q_DEPTH", "17") +
                Line("ZKIA_CODED_CHAR_SET_ID", "819 (ISO 8859-1 ASCII)") +
                Line("ZKIA_DEF_PERSISTENCE", "0 (not persistent)") +
                Line("ZKIA_INHIBIT_GET", "1 (get inhibited)"));
}

TEST_F(AttributeSelectors, FewerIntegersThanSelectorsLeaveTheRestWithoutValues) {
  EXPECT_EQ(Ints({ZKIA_CURRENT_Q_DEPTH, ZKIA_MAX_Q_DEPTH, ZKIA_Q_TYPE}, {3}),
            Line("ZKIA_CURRENT_Q_DEPTH", "3") + FieldLineName("ZKIA_MAX_Q_DEPTH") + "\n" +
                FieldLineName("ZKIA_Q_TYPE") + "\n");
  // The names alone: what the parsers show before an inquiry.
  capture.Clear();
  const int32_t selectors[] = {ZKIA_CURRENT_Q_DEPTH, ZKIA_USAGE};
  ShowParsedZkinqZksetOptionsInt(cb, 0, 2, selectors, 0, nullptr);
  ShowParsedZkinqZksetOptionsInt(cb, 0, 2, selectors, -5, selectors);
  std::string names =
      FieldLineName("ZKIA_CURRENT_Q_DEPTH") + "\n" + FieldLineName("ZKIA_USAGE") + "\n";
  EXPECT_EQ(capture.Take(), names + names);
}

TEST_F(AttributeSelectors, UnknownIntegerSelectorIsShownThenReported) {
  EXPECT_EQ(Ints({67, ZKIA_MAX_Q_DEPTH}, {11, 12}),
            Line("Unknown attribute", "11") +
                Banner("ZKINQ/ZKSET - Attribute Selector", "00000043") +
                Line("ZKIA_MAX_Q_DEPTH", "12"));
  EXPECT_NE(capture.Alerts().find(
                "Unknown API attribute : ZKINQ/ZKSET - Attribute Selector value 0x00000043"),
            std::string::npos)
      << capture.Alerts();
}

TEST_F(AttributeSelectors, SelectorsOutsideTheIntegerRangeAreSkipped) {
  EXPECT_EQ(Ints({0, -1, 2001, 2020, 7001, 9999, ZKIA_SYNCPOINT}, {1}),
            Line("ZKIA_SYNCPOINT", "1 (available)"));
  EXPECT_EQ(capture.Alerts(), "");
}

// -- Character attributes of a call ----------------------------------------

TEST_F(AttributeSelectors, CharacterAttributesSlicedByTheirLengths) {
  std::string area =
      std::string("ORDERS.IN") + Blank(39) + "Incoming orders" + Blank(49) + "20261124" + Blank(4);
  EXPECT_EQ(Chars({ZKCA_Q_NAME, ZKIA_Q_TYPE, ZKCA_Q_DESC, ZKCA_CREATION_DATE}, {1}, area),
            Line("ZKCA_Q_NAME", "ORDERS.IN") + Line("ZKCA_Q_DESC", "Incoming orders") +
                Line("ZKCA_CREATION_DATE", "20261124"));
}

TEST_F(AttributeSelectors, AShortAreaShowsWhatItHoldsThenNamesWithoutValues) {
  std::string area = std::string(48, 'Q') + "only part of a description";
  EXPECT_EQ(Chars({ZKCA_Q_NAME, ZKCA_Q_DESC, ZKCA_TRIGGER_DATA}, {}, area),
            Line("ZKCA_Q_NAME", std::string(48, 'Q')) +
                Line("ZKCA_Q_DESC", "only part of a description") +
                FieldLineName("ZKCA_TRIGGER_DATA") + "\n");
  // A negative length, or no area: names only.
  capture.Clear();
  const int32_t selectors[] = {ZKCA_Q_NAME};
  ShowParsedZkinqZksetOptionsChar(cb, 0, 1, selectors, 0, nullptr, -48, "x");
  ShowParsedZkinqZksetOptionsChar(cb, 0, 1, selectors, 0, nullptr, 48, nullptr);
  EXPECT_EQ(capture.Take(),
            FieldLineName("ZKCA_Q_NAME") + "\n" + FieldLineName("ZKCA_Q_NAME") + "\n");
}

TEST_F(AttributeSelectors, UnknownCharacterSelectorEndsTheWalk) {
  std::string area = std::string("APP.PROC") + Blank(40) + "QMGR" + Blank(44);
  EXPECT_EQ(Chars({ZKCA_PROCESS_NAME, 2043, ZKCA_Q_MGR_NAME}, {}, area),
            Line("ZKCA_PROCESS_NAME", "APP.PROC") +
                Banner("ZKINQ/ZKSET - Attribute Selector", "000007FB"));
}

TEST_F(AttributeSelectors, NameListAsManyNamesAsTheNameCountSays) {
  std::string area = std::string("FIRST.Q") + Blank(41) + "SECOND.Q" + Blank(40) + "THIRD.Q" +
                     Blank(41) + "QMGR1" + Blank(43);
  EXPECT_EQ(Chars({ZKIA_Q_TYPE, ZKIA_NAME_COUNT, ZKCA_NAMES, ZKCA_Q_MGR_NAME}, {1, 3}, area),
            Line("ZKCA_NAMES", "FIRST.Q") + Line("ZKCA_NAMES", "SECOND.Q") +
                Line("ZKCA_NAMES", "THIRD.Q") + Line("ZKCA_Q_MGR_NAME", "QMGR1"));
}

TEST_F(AttributeSelectors, NameListWithCountZeroWritesNothing) {
  std::string area = std::string("QMGR1") + Blank(43);
  EXPECT_EQ(Chars({ZKIA_NAME_COUNT, ZKCA_NAMES, ZKCA_Q_MGR_NAME}, {0}, area),
            Line("ZKCA_Q_MGR_NAME", "QMGR1"));
  // A negative count, or no name count at all, is no name either.
  EXPECT_EQ(Chars({ZKIA_NAME_COUNT, ZKCA_NAMES, ZKCA_Q_MGR_NAME}, {-3}, area),
            Line("ZKCA_Q_MGR_NAME", "QMGR1"));
  EXPECT_EQ(Chars({ZKCA_NAMES, ZKCA_Q_MGR_NAME}, {5}, area), Line("ZKCA_Q_MGR_NAME", "QMGR1"));
}

TEST_F(AttributeSelectors, NameListEndsWhereTheAreaEnds) {
  // A name count far beyond the area: two names, a third in part, then one
  // line without a value, and nothing read beyond the area.
  std::string area = std::string("ONE") + Blank(45) + "TWO" + Blank(45) + "THR";
  std::string shown = Chars({ZKIA_NAME_COUNT, ZKCA_NAMES, ZKCA_Q_NAME}, {INT32_MAX}, area);
  EXPECT_EQ(shown, Line("ZKCA_NAMES", "ONE") + Line("ZKCA_NAMES", "TWO") +
                       Line("ZKCA_NAMES", "THR") + FieldLineName("ZKCA_NAMES") + "\n" +
                       FieldLineName("ZKCA_Q_NAME") + "\n");
}

TEST_F(AttributeSelectors, NameCountIsFoundAmongTheIntegerSelectorsOnly) {
  const int32_t selectors[] = {ZKCA_Q_NAME, ZKIA_Q_TYPE, 7001, ZKIA_NAME_COUNT, ZKIA_USAGE};
  const int32_t values[] = {1, 4, 0};
  EXPECT_EQ(SearchZkiaNameCount(5, selectors, 3, values), 4);
  // The count's value was not returned, not asked for, or no arrays.
  EXPECT_EQ(SearchZkiaNameCount(5, selectors, 1, values), 0);
  EXPECT_EQ(SearchZkiaNameCount(3, selectors, 3, values), 0);
  EXPECT_EQ(SearchZkiaNameCount(5, selectors, -1, values), 0);
  EXPECT_EQ(SearchZkiaNameCount(-5, selectors, 3, values), 0);
  EXPECT_EQ(SearchZkiaNameCount(5, nullptr, 3, values), 0);
  EXPECT_EQ(SearchZkiaNameCount(5, selectors, 3, nullptr), 0);
}
