// Look-ups in the constant tables: first match wins, and a value that is
// not found answers with the table's end-marker text. Small tables are
// scanned; the few large ones have a sorted copy that is searched by halving.
#include <string.h>

#include "text/name_match.h"
#include "text/constant_table.h"

namespace {

const ConstantIntIndex *FindIndex(const ConstantIntEntry *table) {
  for (int32_t i = 0; i < ConstantIndexCount; i++) {
    if (ConstantIndexes[i].Table == table) {
      return &ConstantIndexes[i];
    }
  }
  return nullptr;
}

// The first sorted row of the value, or null.
const ConstantIntEntry *SearchSorted(const ConstantIntIndex *index, int32_t value) {
  int32_t low = 0;
  int32_t high = index->Count; // the answer lies in [low, high]
  while (low < high) {
    int32_t middle = low + (high - low) / 2;
    if (index->Sorted[middle].value < value) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low < index->Count && index->Sorted[low].value == value) {
    return &index->Sorted[low];
  }
  return nullptr;
}

} // namespace

const ConstantIntEntry *FindConstantIntRow(int32_t value, const ConstantIntEntry *table) {
  const ConstantIntIndex *index = FindIndex(table);
  if (index != nullptr) {
    const ConstantIntEntry *row = SearchSorted(index, value);
    return row != nullptr ? row : index->Table + index->Count;
  }
  const ConstantIntEntry *row = table;
  while (row->value != value && row->value != CONSTANT_TABLE_END) {
    row++;
  }
  return row;
}

const char *SearchConstantInt(int32_t value, const ConstantIntEntry *table) {
  return FindConstantIntRow(value, table)->text;
}

int32_t SearchConstantIntByString(const char *text, const ConstantIntEntry *table) {
  for (const ConstantIntEntry *row = table; row->value != CONSTANT_TABLE_END; row++) {
    if (strcmp(row->text, text) == 0) {
      return row->value;
    }
  }
  return CONSTANT_TABLE_END;
}

const char *SearchConstantString(const char *key, const ConstantStringEntry *table) {
  const ConstantStringEntry *row = table;
  for (; row->key[0] != '\0'; row++) {
    if (CompareModuleNameNocase(key, row->key) == 1) {
      return row->text;
    }
  }
  return row->text;
}

const char *SearchConstantByte(int32_t key, const ConstantByteEntry *table) {
  uint8_t wanted = (uint8_t)key;
  const ConstantByteEntry *row = table;
  while ((row->key & 0xFF) != wanted && (row->key & 0xFF) < CONSTANT_BYTE_TABLE_END) {
    row++;
  }
  return row->text;
}

const char *SearchConstantCcsidString(int32_t ccsid, uint8_t flag) {
  if (ccsid == 0 && flag == 0) {
    return "default / queue_manager";
  }
  return SearchConstantInt(ccsid, Constant_Ccsid_description);
}

int32_t CountConstantIntRows(const ConstantIntEntry *table) {
  int32_t n = 0;
  while (table[n].value != CONSTANT_TABLE_END) {
    n++;
  }
  return n;
}

int32_t CountConstantStringRows(const ConstantStringEntry *table) {
  int32_t n = 0;
  while (table[n].key[0] != '\0') {
    n++;
  }
  return n;
}

int32_t CountConstantByteRows(const ConstantByteEntry *table) {
  int32_t n = 0;
  while ((table[n].key & 0xFF) < CONSTANT_BYTE_TABLE_END) {
    n++;
  }
  return n;
}
