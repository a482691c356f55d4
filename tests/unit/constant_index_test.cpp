// The sorted copies of the large tables answer exactly as a scan of the
// table does: first match for every value, end text for values not there.
#include <gtest/gtest.h>

#include "text/constant_table.h"

namespace {

const ConstantIntEntry *ScanRow(int32_t value, const ConstantIntEntry *table) {
  const ConstantIntEntry *row = table;
  while (row->value != value && row->value != CONSTANT_TABLE_END) {
    row++;
  }
  return row;
}

TEST(ConstantIndex, IndexesTheLargeTables) {
  ASSERT_GE(ConstantIndexCount, 3);
  bool reasons = false, ccsids = false;
  for (int32_t i = 0; i < ConstantIndexCount; i++) {
    reasons = reasons || ConstantIndexes[i].Table == Constant_Zkrc;
    ccsids = ccsids || ConstantIndexes[i].Table == Constant_Ccsid_description;
  }
  EXPECT_TRUE(reasons);
  EXPECT_TRUE(ccsids);
}

TEST(ConstantIndex, SortedCopyHoldsEveryRowInValueOrder) {
  for (int32_t i = 0; i < ConstantIndexCount; i++) {
    const ConstantIntIndex &index = ConstantIndexes[i];
    ASSERT_EQ(index.Count, CountConstantIntRows(index.Table));
    for (int32_t r = 1; r < index.Count; r++) {
      EXPECT_LE(index.Sorted[r - 1].value, index.Sorted[r].value) << i << " row " << r;
    }
  }
}

TEST(ConstantIndex, EveryValueFindsTheFirstRowOfTheTable) {
  for (int32_t i = 0; i < ConstantIndexCount; i++) {
    const ConstantIntEntry *table = ConstantIndexes[i].Table;
    for (const ConstantIntEntry *row = table; row->value != CONSTANT_TABLE_END; row++) {
      const ConstantIntEntry *first = ScanRow(row->value, table);
      const ConstantIntEntry *found = FindConstantIntRow(row->value, table);
      EXPECT_EQ(found->value, first->value);
      EXPECT_STREQ(found->text, first->text) << "value " << row->value;
    }
  }
}

TEST(ConstantIndex, MissingValuesAnswerWithTheEndRow) {
  const int32_t missing[] = {INT32_MIN, -2, 1, 2, 99999, 0x7FFFFFFF, CONSTANT_TABLE_END};
  for (int32_t i = 0; i < ConstantIndexCount; i++) {
    const ConstantIntEntry *table = ConstantIndexes[i].Table;
    for (int32_t value : missing) {
      const ConstantIntEntry *scanned = ScanRow(value, table);
      if (scanned->value != CONSTANT_TABLE_END) {
        continue; // the table has it
      }
      const ConstantIntEntry *found = FindConstantIntRow(value, table);
      EXPECT_EQ(found, scanned) << "value " << value;
      EXPECT_STREQ(SearchConstantInt(value, table), scanned->text);
    }
  }
}

TEST(ConstantIndex, ReasonNamesThroughTheIndex) {
  EXPECT_STREQ(SearchConstantInt(2033, Constant_Zkrc), "ZKRC_NO_MSG_AVAILABLE");
  EXPECT_STREQ(SearchConstantInt(0, Constant_Zkrc), "none");
}

} // namespace
