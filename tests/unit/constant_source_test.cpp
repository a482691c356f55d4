// The platform constants and the look-up tables come from the same rows:
// every constant that names a row is found in its table with its own text.
#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "text/constant_table.h"
#include "zk/zkconst.h"

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
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
const ConstantRow kReasonRows[] = {
#include "zk/defs/zkrc.def"
};
#include "zk/defs/undef.h"

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
