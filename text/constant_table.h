// Constant tables: read-only (value, text) rows closed by a marker row whose
// text is the answer for a value that is not in the table.
#pragma once

#include <stdint.h>

#define CONSTANT_TABLE_END (-987)
#define CONSTANT_BYTE_TABLE_END 255

struct ConstantIntEntry {
  int32_t value;
  const char *text;
};

struct ConstantStringEntry {
  const char *key;
  const char *text;
};

struct ConstantByteEntry {
  int32_t key; // only the low 8 bits count
  const char *text;
};

const char *SearchConstantInt(int32_t value, const ConstantIntEntry *table);
// The first row of the value, or the table's end-marker row when no row has
// it. The large tables are searched through a sorted copy (ConstantIndexes).
const ConstantIntEntry *FindConstantIntRow(int32_t value, const ConstantIntEntry *table);
int32_t SearchConstantIntByString(const char *text, const ConstantIntEntry *table);
const char *SearchConstantString(const char *key, const ConstantStringEntry *table);
const char *SearchConstantByte(int32_t key, const ConstantByteEntry *table);
const char *SearchConstantCcsidString(int32_t ccsid, uint8_t flag);

// A sorted copy of a large table, made when the code is compiled: the rows
// in the order of their values (rows of one value in table order, so that
// the first match still wins), searched by halving.
struct ConstantIntIndex {
  const ConstantIntEntry *Table;
  const ConstantIntEntry *Sorted;
  int32_t Count; // rows, the end marker not counted
};
extern const ConstantIntIndex ConstantIndexes[];
extern const int32_t ConstantIndexCount;

// Number of rows of a table, its end marker not counted.
int32_t CountConstantIntRows(const ConstantIntEntry *table);
int32_t CountConstantStringRows(const ConstantStringEntry *table);
int32_t CountConstantByteRows(const ConstantByteEntry *table);

// Every table built from the platform's constant families. A family of
// flags also has the mask of the bits its ZK_FLAG rows name: a flag word's
// bits outside it are unknown bits. Every family also has the table of
// its constants' own names (ConstantIdentifier_...), whose end text is empty.
#define ZK_FAMILY_BEGIN(table)                                                                     \
  extern const ConstantIntEntry Constant_##table[];                                                \
  extern const ConstantIntEntry ConstantIdentifier_##table[];
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text)
#define ZK_NAMED(name, value)
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table)                                                                \
  extern const ConstantIntEntry Constant_##table[];                                                \
  extern const ConstantIntEntry ConstantIdentifier_##table[];                                      \
  extern const uint32_t ConstantKnownBits_##table;
#define ZK_FLAG_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text)
#define ZK_STRING_FAMILY_BEGIN(table) extern const ConstantStringEntry Constant_##table[];
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
#include "zk/defs/all.def"
#include "zk/defs/undef.h"
