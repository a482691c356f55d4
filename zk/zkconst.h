/* Named constants of the ZK platform.
 *
 * Every family of the platform's constants is written once, in
 * zk/defs/<family>.def, as rows of value, name and description. This header
 * turns those rows into C constants; text/constant_tables.cpp turns the very
 * same rows into the look-up tables, so the two can never drift apart.
 *
 * Row forms of a .def file:
 *   ZK_FAMILY_BEGIN(Table)              starts the integer family Constant_Table
 *   ZK_CONST(NAME, value, "text")       a constant and its table row
 *   ZK_NAMED(NAME, value)               a constant whose row text is its own name
 *   ZK_ALIAS(NAME, value)               a constant with no row (a synonym)
 *   ZK_ROW(value, "text")               a table row with no constant of its own
 *   ZK_FAMILY_END(Table, "not found")   closes the family with its end text
 *   ZK_FLAG_FAMILY_BEGIN(Table)         starts a family of flags: the table
 *                                       Constant_Table and the mask of its
 *                                       known bits, ConstantKnownBits_Table
 *   ZK_FLAG(NAME, value, "text")        a constant naming one bit, or one group
 *                                       of bits, of a flag word: its table row,
 *                                       and its bits count as known bits
 *   ZK_FLAG_FAMILY_END(Table, "not found")
 *   ZK_STRING_FAMILY_BEGIN(Table)       the same for tables keyed by strings
 *   ZK_STRING_CONST(NAME, "key", "text")
 *   ZK_STRING_ROW("key", "text")
 *   ZK_STRING_FAMILY_END(Table, "not found")
 *
 * In a family of flags, ZK_CONST rows are whole words that are not made of
 * bits (the word with no bit set, "not available"); ZK_FLAG rows name bits.
 * Texts: values are described in words ("as queue definition"), bits are
 * named by their short names ("FAIL_IF_QUIESCING"), and the exit interface's
 * own families use their short names throughout ("SUPPRESS_FUNCTION"). */
#ifndef ZK_ZKCONST_H
#define ZK_ZKCONST_H

#include "zktypes.h"

/* Each family is one enumeration, so that its constants share a type. Its
 * first enumerator marks the family, so that a family of rows alone is not
 * an empty enumeration. */
#define ZK_FAMILY_BEGIN(table) enum { ZkFamilyStart_##table = 0,
#define ZK_FAMILY_END(table, endText)                                                              \
  }                                                                                                \
  ;
#define ZK_CONST(name, value, text) name = (ZKLONG)(value),
#define ZK_NAMED(name, value) name = (ZKLONG)(value),
#define ZK_ALIAS(name, value) name = (ZKLONG)(value),
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table) enum { ZkFamilyStart_##table = 0,
#define ZK_FLAG_FAMILY_END(table, endText)                                                         \
  }                                                                                                \
  ;
#define ZK_FLAG(name, value, text) name = (ZKLONG)(value),
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text) static const char name[] = key;
#define ZK_STRING_ROW(key, text)

#include "defs/all.def"

#include "defs/undef.h"

#endif
