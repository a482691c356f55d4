// The platform constants and the look-up tables come from the same rows:
// every constant that names a row is found in its table with its own text,
// at the place of its row, and every family of flags knows exactly the bits
// its flag rows name.
#include <gtest/gtest.h>

#include <string.h>

#include <set>
#include <string>

#include "text/constant_table.h"
#include "zk/zk.h"

namespace {

struct ConstantRow {
  const char *Name;
  int32_t Value;
  const char *Text; // null: the row's text is the constant's own name
};

// Every reason and feedback constant with a row, read from the same rows
// that build the table.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text) {#name, (int32_t)(value), text},
#define ZK_NAMED(name, value) {#name, (int32_t)(value), nullptr},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table)
#define ZK_FLAG_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text)
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
const ConstantRow kReasonRows[] = {
#include "zk/defs/zkrc.def"
};
#include "zk/defs/undef.h"

// One pass over every family of zk/defs. Each entry keeps, next to what its
// row says, the C constant of the same name as zk/zkconst.h defines it and
// the table that text/constant_tables.cpp built, so that the walk below can
// hold the three against each other.
enum class DefKind {
  Family,
  FlagFamily,
  Const,
  Named,
  Alias,
  Row,
  Flag,
  FamilyEnd,
  StringFamily,
  StringConst,
  StringRow,
  StringFamilyEnd
};

struct DefEntry {
  DefKind Kind;
  const char *Name;        // the constant's name, or the family's table name
  int32_t Constant;        // the C constant (integer rows)
  int32_t Value;           // the value written in the row
  const char *Text;        // the row's text, or the family's end text
  const char *Key;         // string rows: the key written in the row
  const char *ConstantKey; // string constants: the C constant
  const ConstantIntEntry *IntTable;
  const ConstantStringEntry *StringTable;
  uint32_t KnownBits; // families of flags: the mask built with the table
};

// Members left out are zero: no text, no key, no table.
#define ZK_FAMILY_BEGIN(table)                                                                     \
  {.Kind = DefKind::Family, .Name = #table, .IntTable = Constant_##table},
#define ZK_FAMILY_END(table, endText) {.Kind = DefKind::FamilyEnd, .Name = #table, .Text = endText},
#define ZK_CONST(name, value, text)                                                                \
  {.Kind = DefKind::Const,                                                                         \
   .Name = #name,                                                                                  \
   .Constant = (int32_t)name,                                                                      \
   .Value = (int32_t)(value),                                                                      \
   .Text = text},
#define ZK_NAMED(name, value)                                                                      \
  {.Kind = DefKind::Named,                                                                         \
   .Name = #name,                                                                                  \
   .Constant = (int32_t)name,                                                                      \
   .Value = (int32_t)(value),                                                                      \
   .Text = #name},
#define ZK_ALIAS(name, value)                                                                      \
  {.Kind = DefKind::Alias, .Name = #name, .Constant = (int32_t)name, .Value = (int32_t)(value)},
#define ZK_ROW(value, text) {.Kind = DefKind::Row, .Value = (int32_t)(value), .Text = text},
#define ZK_FLAG_FAMILY_BEGIN(table)                                                                \
  {.Kind = DefKind::FlagFamily,                                                                    \
   .Name = #table,                                                                                 \
   .IntTable = Constant_##table,                                                                   \
   .KnownBits = ConstantKnownBits_##table},
#define ZK_FLAG_FAMILY_END(table, endText) ZK_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text)                                                                 \
  {.Kind = DefKind::Flag,                                                                          \
   .Name = #name,                                                                                  \
   .Constant = (int32_t)name,                                                                      \
   .Value = (int32_t)(value),                                                                      \
   .Text = text},
#define ZK_STRING_FAMILY_BEGIN(table)                                                              \
  {.Kind = DefKind::StringFamily, .Name = #table, .StringTable = Constant_##table},
#define ZK_STRING_FAMILY_END(table, endText)                                                       \
  {.Kind = DefKind::StringFamilyEnd, .Name = #table, .Text = endText},
#define ZK_STRING_CONST(name, key, text)                                                           \
  {.Kind = DefKind::StringConst, .Name = #name, .Text = text, .Key = key, .ConstantKey = name},
#define ZK_STRING_ROW(key, text) {.Kind = DefKind::StringRow, .Text = text, .Key = key},
const DefEntry kAllRows[] = {
#include "zk/defs/all.def"
};
#include "zk/defs/undef.h"

// The option, flag and selector families of the calls and structures, the
// encodings, and the exit interface's completion codes and responses: zkqm
// and the formatters take them from zk/defs alone, so each must be a family
// of the one pass.
const char *const kMovedFamilies[] = {
    "Zkhc",        "Zkho",          "Zkcno",         "Zkcsp",       "Zkco",    "Zkpmo",
    "Zkpmrf",      "Zkactp",        "Zkgmo",         "Zkwi",        "Zkmo",    "Zkgs",
    "Zkss",        "Zkseg",         "Zkro",          "Zkmf",        "Zkpri",   "Zkei",
    "Zkenc",       "Zkenc_integer", "Zkenc_decimal", "Zkenc_float", "Zkso",    "Zksro",
    "Zkstat_type", "Zkop",          "Zkcbdo",        "Zkcbd",       "Zkctlo",  "Zkcbct",
    "Zkcs",        "Zkcbcf",        "Zkbo",          "Zkdhf",       "Zkrmhf",  "Zkmdef",
    "Zkrfh",       "Zkus_queue",    "Zkiav",         "Zkia",        "Zkca",    "Zkinq_length",
    "Zkcft",       "Zkcfc",         "Zkcfop",        "Zkcmd",       "Tmflags", "Zkcc",
    "Zkxt",        "Zkxcc",         "Zkxr2"};

// The range bounds among the reason and feedback constants: not codes.
const char *const kRangeBounds[] = {
    "ZKFB_NONE",        "ZKRC_APPL_FIRST",         "ZKRC_APPL_LAST",         "ZKFB_SYSTEM_FIRST",
    "ZKFB_SYSTEM_LAST", "ZKFB_TXN_DATABASE_FIRST", "ZKFB_TXN_DATABASE_LAST", "ZKFB_APPL_FIRST",
    "ZKFB_APPL_LAST"};

// Whether the table has a row of this value with this text.
bool TableHasRow(const ConstantIntEntry *table, int32_t value, const char *text) {
  for (const ConstantIntEntry *row = table; row->value != CONSTANT_TABLE_END; row++) {
    if (row->value == value && strcmp(row->text, text) == 0) {
      return true;
    }
  }
  return false;
}

} // namespace

TEST(ConstantSource, EveryReasonAndFeedbackConstantHasItsRow) {
  size_t checked = 0;
  for (const ConstantRow &row : kReasonRows) {
    const char *text = row.Text != nullptr ? row.Text : row.Name;
    EXPECT_TRUE(TableHasRow(Constant_Zkrc, row.Value, text)) << row.Name;
    checked++;
  }
  EXPECT_EQ(checked, (size_t)CountConstantIntRows(Constant_Zkrc));
}

TEST(ConstantSource, RowlessReasonConstantsAreOnlyRangeBounds) {
  // Each bound either has no row, or shares the value of a real code.
  for (const char *bound : kRangeBounds) {
    EXPECT_EQ(SearchConstantIntByString(bound, Constant_Zkrc), CONSTANT_TABLE_END) << bound;
  }
  EXPECT_EQ(ZKRC_APPL_FIRST, 900);
  EXPECT_EQ(ZKFB_APPL_LAST, 999999999);
}

TEST(ConstantSource, ConstantsEqualTheirRowsAcrossFamilies) {
  EXPECT_STREQ(SearchConstantInt(ZKRC_Q_FULL, Constant_Zkrc), "ZKRC_Q_FULL");
  EXPECT_STREQ(SearchConstantInt(ZKFB_QUIT, Constant_Zkrc), "ZKFB_QUIT");
  EXPECT_STREQ(SearchConstantInt(ZKXF_CALLBACK, Constant_Function), "ZKCB_FU");
  EXPECT_STREQ(SearchConstantInt(ZKXR_AUTO_CLUSRCVR, Constant_ExitReason), "AUTO_CLUSRCVR");
  EXPECT_STREQ(SearchConstantInt(ZKOT_Q_MGR, Constant_Zkot), "queue manager");
  EXPECT_STREQ(SearchConstantInt(ZKAT_SYSTEM_EXTENSION, Constant_ApplType), "SYSTEM_EXTENSION");
}

TEST(ConstantSource, EveryFamilyHasItsConstantsAndTableFromTheSameRows) {
  const ConstantIntEntry *intTable = nullptr;
  const ConstantStringEntry *stringTable = nullptr;
  const char *family = "";
  bool flagFamily = false;
  uint32_t knownBits = 0;
  uint32_t flagBits = 0;
  int32_t index = 0;
  size_t families = 0;
  size_t constants = 0;
  for (const DefEntry &e : kAllRows) {
    SCOPED_TRACE(std::string(family) + (e.Name != nullptr ? std::string(" ") + e.Name : ""));
    switch (e.Kind) {
    case DefKind::Family:
    case DefKind::FlagFamily:
      ASSERT_EQ(intTable, nullptr) << "family not closed";
      ASSERT_EQ(stringTable, nullptr) << "family not closed";
      family = e.Name;
      intTable = e.IntTable;
      flagFamily = e.Kind == DefKind::FlagFamily;
      knownBits = e.KnownBits;
      flagBits = 0;
      index = 0;
      families++;
      break;
    case DefKind::Const:
    case DefKind::Named:
    case DefKind::Flag:
      ASSERT_NE(intTable, nullptr) << "row outside a family";
      EXPECT_EQ(e.Constant, e.Value) << "the C constant is not its row's value";
      EXPECT_EQ(intTable[index].value, e.Value) << "row " << index;
      EXPECT_STREQ(intTable[index].text, e.Text) << "row " << index;
      if (e.Kind == DefKind::Flag) {
        EXPECT_TRUE(flagFamily) << "a flag row outside a family of flags";
        EXPECT_NE(e.Value, 0) << "a flag names at least one bit";
        flagBits |= (uint32_t)e.Value;
      }
      index++;
      constants++;
      break;
    case DefKind::Row:
      ASSERT_NE(intTable, nullptr) << "row outside a family";
      EXPECT_EQ(intTable[index].value, e.Value) << "row " << index;
      EXPECT_STREQ(intTable[index].text, e.Text) << "row " << index;
      index++;
      break;
    case DefKind::Alias:
      ASSERT_TRUE(intTable != nullptr || stringTable != nullptr) << "alias outside a family";
      EXPECT_EQ(e.Constant, e.Value) << "the C constant is not its row's value";
      constants++;
      break;
    case DefKind::FamilyEnd:
      ASSERT_NE(intTable, nullptr);
      EXPECT_STREQ(e.Name, family);
      EXPECT_EQ(intTable[index].value, CONSTANT_TABLE_END) << "the table has rows of its own";
      EXPECT_STREQ(intTable[index].text, e.Text);
      EXPECT_EQ(CountConstantIntRows(intTable), index);
      if (flagFamily) {
        EXPECT_EQ(knownBits, flagBits) << "known bits are not the bits of the flag rows";
      }
      intTable = nullptr;
      break;
    case DefKind::StringFamily:
      ASSERT_EQ(intTable, nullptr) << "family not closed";
      family = e.Name;
      stringTable = e.StringTable;
      index = 0;
      families++;
      break;
    case DefKind::StringConst:
      ASSERT_NE(stringTable, nullptr) << "row outside a family";
      EXPECT_STREQ(e.ConstantKey, e.Key) << "the C constant is not its row's key";
      EXPECT_STREQ(stringTable[index].key, e.Key) << "row " << index;
      EXPECT_STREQ(stringTable[index].text, e.Text) << "row " << index;
      index++;
      constants++;
      break;
    case DefKind::StringRow:
      ASSERT_NE(stringTable, nullptr) << "row outside a family";
      EXPECT_STREQ(stringTable[index].key, e.Key) << "row " << index;
      EXPECT_STREQ(stringTable[index].text, e.Text) << "row " << index;
      index++;
      break;
    case DefKind::StringFamilyEnd:
      ASSERT_NE(stringTable, nullptr);
      EXPECT_STREQ(stringTable[index].key, "") << "the table has rows of its own";
      EXPECT_STREQ(stringTable[index].text, e.Text);
      EXPECT_EQ(CountConstantStringRows(stringTable), index);
      stringTable = nullptr;
      break;
    }
  }
  EXPECT_EQ(intTable, nullptr) << "last family not closed";
  EXPECT_EQ(stringTable, nullptr) << "last family not closed";
  // Every family and constant was walked: the pass is not cut short.
  EXPECT_GE(families, 200u);
  EXPECT_GE(constants, 2300u);
}

TEST(ConstantSource, EachConstantNameHasOneRow) {
  std::set<std::string> names;
  for (const DefEntry &e : kAllRows) {
    if (e.Kind == DefKind::Const || e.Kind == DefKind::Named || e.Kind == DefKind::Alias ||
        e.Kind == DefKind::Flag || e.Kind == DefKind::StringConst) {
      EXPECT_TRUE(names.insert(e.Name).second) << e.Name << " is defined twice";
    }
  }
}

TEST(ConstantSource, MovedFamiliesAreFamiliesOfTheOneSource) {
  std::set<std::string> families;
  for (const DefEntry &e : kAllRows) {
    if (e.Kind == DefKind::Family || e.Kind == DefKind::FlagFamily) {
      families.insert(e.Name);
    }
  }
  for (const char *family : kMovedFamilies) {
    EXPECT_EQ(families.count(family), 1u) << family;
  }
}

// Names the bits of a flag word as a formatter would: each flag row whose
// bits are all set, then what is left outside the family's known bits.
std::string NameFlags(uint32_t word, const ConstantIntEntry *table, uint32_t knownBits) {
  std::string names;
  for (const ConstantIntEntry *row = table; row->value != CONSTANT_TABLE_END; row++) {
    uint32_t bits = (uint32_t)row->value;
    if (bits != 0 && (bits & ~knownBits) == 0 && (word & bits) == bits) {
      names += names.empty() ? "" : " ";
      names += row->text;
    }
  }
  if ((word & ~knownBits) != 0) {
    char unknown[16];
    snprintf(unknown, sizeof unknown, "0x%08X", word & ~knownBits);
    names += names.empty() ? "" : " ";
    names += unknown;
  }
  return names;
}

TEST(ConstantSource, FlagTablesNameEachBitAndLeaveUnknownBits) {
  EXPECT_EQ(NameFlags(ZKGMO_WAIT | ZKGMO_CONVERT | ZKGMO_FAIL_IF_QUIESCING, Constant_Zkgmo,
                      ConstantKnownBits_Zkgmo),
            "WAIT FAIL_IF_QUIESCING CONVERT");
  EXPECT_EQ(NameFlags(0x80000000u | ZKGMO_SYNCPOINT, Constant_Zkgmo, ConstantKnownBits_Zkgmo),
            "SYNCPOINT 0x80000000");
  EXPECT_EQ(NameFlags(ZKPMO_SYNCPOINT | 0x00000001u, Constant_Zkpmo, ConstantKnownBits_Zkpmo),
            "SYNCPOINT 0x00000001");
  EXPECT_EQ(NameFlags((uint32_t)TMASYNC | TMJOIN, Constant_Tmflags, ConstantKnownBits_Tmflags),
            "JOIN ASYNC");
  // Groups of bits: the group comes before the bit it holds, and this plain
  // walk names both (the report-options display takes the group's bits away).
  EXPECT_EQ(NameFlags(ZKRO_COA_WITH_DATA, Constant_Zkro, ConstantKnownBits_Zkro),
            "COA_WITH_DATA COA");
  // Whole words are no bits: "any" and "not available" of the compression
  // list stay out of its known bits.
  EXPECT_EQ(ConstantKnownBits_Zkcompress, 0x0000000Fu);
  EXPECT_EQ(NameFlags(ZKCOMPRESS_ANY, Constant_Zkcompress, ConstantKnownBits_Zkcompress),
            "RLE ZLIBFAST ZLIBHIGH SYSTEM 0x0FFFFFF0");
  // A family whose only row is the empty word knows no bits.
  EXPECT_EQ(ConstantKnownBits_Zkbo, 0u);
  EXPECT_EQ(NameFlags(1, Constant_Zkbo, ConstantKnownBits_Zkbo), "0x00000001");
}

TEST(ConstantSource, MovedConstantsKeepThePlatformValues) {
  EXPECT_EQ(ZKENC_NATIVE, 546);
  EXPECT_STREQ(SearchConstantInt(ZKENC_NATIVE, Constant_Zkenc), "Native encoding");
  EXPECT_STREQ(SearchConstantInt((int32_t)ZKENC_NATIVE & ZKENC_FLOAT_MASK, Constant_Zkenc_float),
               "FLOAT_IEEE_REVERSED");
  EXPECT_EQ(ZKGMO_NO_WAIT, ZKGMO_NONE);
  EXPECT_EQ(ZKGMO_FAIL_IF_QUIESCING, 0x00002000);
  EXPECT_EQ(ZKRO_EXCEPTION_WITH_FULL_DATA, 0x07000000);
  EXPECT_EQ(TMASYNC, (int32_t)0x80000000u);
  EXPECT_EQ(ZKGS_LAST_MSG_IN_GROUP, 'L');
  EXPECT_EQ(ZKIA_CURRENT_Q_DEPTH, 3);
  EXPECT_EQ(ZKCA_TOPIC_STRING, 2094);
  EXPECT_EQ(ZK_MAX_SELECTOR_COUNT, 256);
  EXPECT_EQ(ZKCC_UNKNOWN, -1);
  EXPECT_EQ(ZKXCC_SUPPRESS_EXIT, -5);
  EXPECT_EQ(ZKXR2_SUPPRESS_CHAIN, 16);
  EXPECT_STREQ(SearchConstantInt(ZKXCC_SKIP_FUNCTION, Constant_Zkxcc), "SKIP_FUNCTION");
  EXPECT_STREQ(SearchConstantInt(ZKCBCT_MSG_REMOVED, Constant_Zkcbct), "message removed");
  // The queue usages and the resource usages share their prefix, not a table.
  EXPECT_STREQ(SearchConstantInt(ZKUS_TRANSMISSION, Constant_Zkus_queue), "transmission");
  EXPECT_STREQ(SearchConstantInt(ZKUS_EXCLUSIVE, Constant_Zkus), "exclusive");
  // The platform defaults take the same constants.
  ZKMD md = ZKMD_DEFAULT;
  EXPECT_EQ(md.Encoding, ZKENC_NATIVE);
  ZKDLH dlh = ZKDLH_DEFAULT;
  EXPECT_EQ(dlh.Encoding, ZKENC_NATIVE);
}
