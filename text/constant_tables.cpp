// Builds every Constant_... table from the constant families of zk/defs, the
// same rows that define the platform's constants.
#include <stddef.h>

#include "text/constant_table.h"
#include "zk/zkconst.h"

#define ZK_FAMILY_BEGIN(table) extern constexpr ConstantIntEntry Constant_##table[] = {
#define ZK_FAMILY_END(table, endText)                                                              \
  { CONSTANT_TABLE_END, endText }                                                                  \
  }                                                                                                \
  ;
#define ZK_CONST(name, value, text) {(int32_t)(value), text},
#define ZK_NAMED(name, value) {(int32_t)(value), #name},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text) {(int32_t)(value), text},
#define ZK_FLAG_FAMILY_BEGIN(table) ZK_FAMILY_BEGIN(table)
#define ZK_FLAG_FAMILY_END(table, endText) ZK_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text) {(int32_t)(value), text},
#define ZK_STRING_FAMILY_BEGIN(table) extern const ConstantStringEntry Constant_##table[] = {
#define ZK_STRING_FAMILY_END(table, endText)                                                       \
  { "", endText }                                                                                  \
  }                                                                                                \
  ;
#define ZK_STRING_CONST(name, key, text) {key, text},
#define ZK_STRING_ROW(key, text) {key, text},
#include "zk/defs/all.def"
#include "zk/defs/undef.h"

// The known bits of each family of flags: the bits of its ZK_FLAG rows.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text)
#define ZK_NAMED(name, value)
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table) extern const uint32_t ConstantKnownBits_##table = 0u
#define ZK_FLAG_FAMILY_END(table, endText) ;
#define ZK_FLAG(name, value, text) | (uint32_t)(value)
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
#include "zk/defs/all.def"
#include "zk/defs/undef.h"

// The constants' own names, for each family: the structure
// formatters show a field's value by its name without the family prefix
// ("SENDER" for ZKCHT_SENDER). Rows without a constant have no name.
#define ZK_FAMILY_BEGIN(table) extern const ConstantIntEntry ConstantIdentifier_##table[] = {
#define ZK_FAMILY_END(table, endText)                                                              \
  { CONSTANT_TABLE_END, "" }                                                                       \
  }                                                                                                \
  ;
#define ZK_CONST(name, value, text) {(int32_t)(value), #name},
#define ZK_NAMED(name, value) {(int32_t)(value), #name},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table) ZK_FAMILY_BEGIN(table)
#define ZK_FLAG_FAMILY_END(table, endText) ZK_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text) {(int32_t)(value), #name},
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
#include "zk/defs/all.def"
#include "zk/defs/undef.h"

// Sorted copies of the tables with hundreds of rows: reason codes, CCSIDs
// and command attribute names are looked up on every record, where a scan
// of the whole table would cost more than the rest of the line.
namespace {

template <size_t N> struct SortedRows { ConstantIntEntry Rows[N - 1]; };

// Insertion sort: stable, so rows of one value keep their table order.
template <size_t N> constexpr SortedRows<N> SortRows(const ConstantIntEntry (&table)[N]) {
  SortedRows<N> out{};
  for (size_t i = 0; i + 1 < N; i++) {
    ConstantIntEntry row = table[i];
    size_t j = i;
    while (j > 0 && out.Rows[j - 1].value > row.value) {
      out.Rows[j] = out.Rows[j - 1];
      j--;
    }
    out.Rows[j] = row;
  }
  return out;
}

#define SORTED_COPY(table) constexpr auto kSorted_##table = SortRows(Constant_##table);
#define INDEX_ROW(table)                                                                           \
  {Constant_##table, kSorted_##table.Rows,                                                         \
   (int32_t)(sizeof kSorted_##table.Rows / sizeof(ConstantIntEntry))},
#define INDEXED_TABLES(X) X(Zkrc) X(Ccsid_description) X(Zkcacf_Zkcach)

INDEXED_TABLES(SORTED_COPY)

} // namespace

extern const ConstantIntIndex ConstantIndexes[] = {INDEXED_TABLES(INDEX_ROW)};
extern const int32_t ConstantIndexCount =
    (int32_t)(sizeof ConstantIndexes / sizeof ConstantIndexes[0]);
