// Builds every Constant_... table from the constant families of zk/defs, the
// same rows that define the platform's constants.
#include "text/constant_table.h"
#include "zk/zkconst.h"

#define ZK_FAMILY_BEGIN(table) extern const ConstantIntEntry Constant_##table[] = {
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
