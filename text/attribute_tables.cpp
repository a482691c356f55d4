// Builds the attribute tables from the constant families of zk/defs and the
// rows of text/attribute_rows.def, so that a selector's value is written
// once. The tables are checked to be in the order of their selectors when
// the code is compiled: the look-ups halve them.
#include <stddef.h>

#include "text/attribute_tables.h"
#include "text/named_tables.h"
#include "zk/zk.h"

namespace {

constexpr char kUnknownAttribute[] = "Unknown attribute";

} // namespace

// The command-format structures by their constants' names.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text) {(int32_t)(value), #name},
#define ZK_NAMED(name, value) {(int32_t)(value), #name},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table)
#define ZK_FLAG_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text) {(int32_t)(value), #name},
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
extern constexpr ConstantIntEntry Constant_ZkAttrsPcfType[] = {
#include "zk/defs/zkcft.def"
    {CONSTANT_TABLE_END, "(Unknown value)"}};
extern constexpr ConstantIntEntry Constant_ZkAttrsPcfCommand[] = {
#include "zk/defs/zkcmd.def"
    {CONSTANT_TABLE_END, "(Unknown value)"}};
extern constexpr ConstantIntEntry Constant_ZkAttrsPcfControl[] = {
#include "zk/defs/zkcfc.def"
    {CONSTANT_TABLE_END, "(Unknown value)"}};
extern constexpr ConstantIntEntry Constant_ZkAttrsZkcfop[] = {
#include "zk/defs/zkcfop.def"
    {CONSTANT_TABLE_END, "(Unknown value)"}};

// The parameters that are neither integers nor character attributes of
// ZKINQ, by their constants' names.
extern constexpr ConstantIntEntry Constant_ZkAttrsZkbacf[] = {
#include "zk/defs/zkbacf.def"
    {CONSTANT_TABLE_END, kUnknownAttribute}};
extern constexpr ConstantIntEntry Constant_ZkAttrsZkgacf[] = {
#include "zk/defs/zkgacf.def"
    {CONSTANT_TABLE_END, kUnknownAttribute}};
extern constexpr ConstantIntEntry Constant_ZkAttrsZkcacfcachcamo[] = {
#include "zk/defs/zkcamo.def"
#include "zk/defs/zkcacf_zkcach.def"
    {CONSTANT_TABLE_END, kUnknownAttribute}};
#include "zk/defs/undef.h"

// The integer and character attributes.
#define ZK_ATTR_INT(name) {(int32_t)(name), #name, nullptr},
#define ZK_ATTR_INT_VALUES(name, family) {(int32_t)(name), #name, Constant_##family},
#define ZK_ATTR_CHAR(name, length)
extern constexpr ZkAttrIntEntry Constant_ZkAttrsZkia[] = {
#include "text/attribute_rows.def"
    {CONSTANT_TABLE_END, kUnknownAttribute, nullptr}};
#undef ZK_ATTR_INT
#undef ZK_ATTR_INT_VALUES
#undef ZK_ATTR_CHAR

#define ZK_ATTR_INT(name)
#define ZK_ATTR_INT_VALUES(name, family)
#define ZK_ATTR_CHAR(name, length) {(int32_t)(name), #name, (int32_t)(length)},
extern constexpr ZkAttrCharEntry Constant_ZkAttrsZkca[] = {
#include "text/attribute_rows.def"
    {CONSTANT_TABLE_END, kUnknownAttribute, 0}};
#undef ZK_ATTR_INT
#undef ZK_ATTR_INT_VALUES
#undef ZK_ATTR_CHAR

extern constexpr ZkAttrIntEntry Constant_ZkAttrsZkiaUnknown[] = {
    {CONSTANT_TABLE_END, kUnknownAttribute, nullptr}};
extern constexpr ZkAttrCharEntry Constant_ZkAttrsZkcaUnknown[] = {
    {CONSTANT_TABLE_END, kUnknownAttribute, 0}};

extern constexpr SelectorIntListEntry Constant_SelectorsForIntList[] = {
    {ZKIAMO_DISCS, "by disconnect type", Constant_ZkIntListZkdiscType},
    {ZKIAMO_OPENS, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_OPENS_FAILED, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_CLOSES, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_CLOSES_FAILED, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_INQS, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_INQS_FAILED, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_SETS, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_SETS_FAILED, "by object type", Constant_ZkIntListZkot},
    {ZKIAMO_PUTS, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_PUT1S, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO64_PUT_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_GETS, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO64_GET_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_BROWSES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO64_BROWSE_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_MSGS, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_MSGS_EXPIRED, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO64_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_PUT_MIN_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_PUT_MAX_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_GET_MIN_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_GET_MAX_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_BROWSE_MIN_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_BROWSE_MAX_BYTES, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_Q_TIME_MIN, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_Q_TIME_AVG, "by persistence", Constant_ZkIntListPersistence},
    {ZKIAMO_Q_TIME_MAX, "by persistence", Constant_ZkIntListPersistence},
    {ZKIACF_Q_TIME_INDICATOR, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_BATCH_SIZE_INDICATOR, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_COMPRESSION_RATE, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_COMPRESSION_TIME, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_EXIT_TIME_INDICATOR, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_NETWORK_TIME_INDICATOR, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_XMITQ_TIME_INDICATOR, "over a short and a long period", Constant_ZkIntListPeriod},
    {ZKIACH_HDR_COMPRESSION, "header compression", Constant_ZkIntListCompression},
    {ZKIACH_MSG_COMPRESSION, "message compression", Constant_ZkIntListCompression},
    {CONSTANT_TABLE_END, "", nullptr}};

namespace {

constexpr int32_t KeyOf(const ZkAttrIntEntry &row) {
  return row.Selector;
}
constexpr int32_t KeyOf(const ZkAttrCharEntry &row) {
  return row.Selector;
}
constexpr int32_t KeyOf(const ConstantIntEntry &row) {
  return row.value;
}

// Rows strictly ascending by selector, and only the last one the end marker.
template <typename Row, size_t N> constexpr bool InSelectorOrder(const Row (&rows)[N]) {
  if (KeyOf(rows[N - 1]) != CONSTANT_TABLE_END) {
    return false;
  }
  for (size_t i = 0; i + 1 < N; i++) {
    if (KeyOf(rows[i]) == CONSTANT_TABLE_END || (i > 0 && KeyOf(rows[i - 1]) >= KeyOf(rows[i]))) {
      return false;
    }
  }
  return true;
}

// Every selector within the range its table answers for.
template <typename Row, size_t N>
constexpr bool WithinRange(const Row (&rows)[N], int32_t first, int32_t last) {
  for (size_t i = 0; i + 1 < N; i++) {
    if (KeyOf(rows[i]) < first || KeyOf(rows[i]) > last) {
      return false;
    }
  }
  return true;
}

static_assert(InSelectorOrder(Constant_ZkAttrsZkia), "integer attributes out of order");
static_assert(InSelectorOrder(Constant_ZkAttrsZkca), "character attributes out of order");
static_assert(InSelectorOrder(Constant_ZkAttrsZkbacf), "byte-string parameters out of order");
static_assert(InSelectorOrder(Constant_ZkAttrsZkgacf), "group parameters out of order");
static_assert(InSelectorOrder(Constant_ZkAttrsZkcacfcachcamo), "parameters out of order");
static_assert(WithinRange(Constant_ZkAttrsZkia, ZK_ATTR_INT_FIRST, ZK_ATTR_INT_LAST));
static_assert(WithinRange(Constant_ZkAttrsZkca, ZK_ATTR_CHAR_FIRST, ZK_ATTR_CHAR_LAST));
static_assert(WithinRange(Constant_ZkAttrsZkbacf, ZK_ATTR_BYTES_FIRST, ZK_ATTR_BYTES_LAST));
static_assert(WithinRange(Constant_ZkAttrsZkgacf, ZK_ATTR_GROUP_FIRST, ZK_ATTR_GROUP_LAST));

// The row of a selector among the first `count` rows, or null.
template <typename Row> const Row *Halve(const Row *rows, size_t count, int32_t selector) {
  size_t low = 0;
  size_t high = count; // the row, if any, lies in [low, high)
  while (low < high) {
    size_t middle = low + (high - low) / 2;
    int32_t key = KeyOf(rows[middle]);
    if (key == selector) {
      return &rows[middle];
    }
    if (key < selector) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return nullptr;
}

template <typename Row, size_t N> const Row *HalveTable(const Row (&rows)[N], int32_t selector) {
  return Halve(rows, N - 1, selector);
}

} // namespace

const ZkAttrIntEntry *FindZkAttrIntRow(int32_t selector) {
  return HalveTable(Constant_ZkAttrsZkia, selector);
}

const ZkAttrCharEntry *FindZkAttrCharRow(int32_t selector) {
  return HalveTable(Constant_ZkAttrsZkca, selector);
}

const ConstantIntEntry *FindZkAttrNameRow(int32_t selector, const ConstantIntEntry *table) {
  if (table == Constant_ZkAttrsZkbacf) {
    return HalveTable(Constant_ZkAttrsZkbacf, selector);
  }
  if (table == Constant_ZkAttrsZkgacf) {
    return HalveTable(Constant_ZkAttrsZkgacf, selector);
  }
  if (table == Constant_ZkAttrsZkcacfcachcamo) {
    return HalveTable(Constant_ZkAttrsZkcacfcachcamo, selector);
  }
  const ConstantIntEntry *row = FindConstantIntRow(selector, table);
  return row->value != CONSTANT_TABLE_END ? row : nullptr;
}

const char *SearchIntListEntryDescrption(int32_t parameter, int32_t position) {
  for (const SelectorIntListEntry *row = Constant_SelectorsForIntList;
       row->Parameter != CONSTANT_TABLE_END; row++) {
    if (row->Parameter == parameter) {
      return row->Positions != nullptr ? SearchConstantInt(position, row->Positions) : "";
    }
  }
  return "";
}
