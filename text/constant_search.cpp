// Look-ups in the constant tables: linear scans, first match wins, and a
// value that is not found answers with the table's end-marker text.
#include <string.h>

#include "text/name_match.h"
#include "text/constant_table.h"

const char *SearchConstantInt(int32_t value, const ConstantIntEntry *table) {
  const ConstantIntEntry *row = table;
  while (row->value != value && row->value != CONSTANT_TABLE_END) {
    row++;
  }
  return row->text;
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
