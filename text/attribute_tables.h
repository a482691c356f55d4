// Attribute tables: the names of the selectors of ZKINQ and ZKSET and of the
// parameter identifiers of command-format messages, with what the trace needs
// to show their values (the table that names an integer's values, the length
// of a character attribute), and the tables of the command-format structures
// themselves (types, commands, controls, filter operators, the names of the
// positions of integer lists).
//
// Every table is closed by a row whose selector is CONSTANT_TABLE_END. The
// attribute tables are in the order of their selectors (checked when the
// code is compiled) and searched by halving.
#pragma once

#include <stdint.h>

#include "text/constant_table.h"

// Integer selectors and parameters: 1 to 2000.
#define ZK_ATTR_INT_FIRST 1
#define ZK_ATTR_INT_LAST 2000
// Character selectors of ZKINQ and ZKSET: 2001 to 2124.
#define ZK_ATTR_CHAR_FIRST 2001
#define ZK_ATTR_CHAR_LAST 2124
// Byte-string parameters.
#define ZK_ATTR_BYTES_FIRST 7001
#define ZK_ATTR_BYTES_LAST 7035
// Group parameters.
#define ZK_ATTR_GROUP_FIRST 8001
#define ZK_ATTR_GROUP_LAST 8014

// An integer attribute: its selector, its constant's name and the table that
// names its values (null when its values are plain numbers).
struct ZkAttrIntEntry {
  int32_t Selector;
  const char *Name;
  const ConstantIntEntry *Values;
};

// A character attribute: its selector, its constant's name and the length
// of its value in bytes.
struct ZkAttrCharEntry {
  int32_t Selector;
  const char *Name;
  int32_t Length;
};

extern const ZkAttrIntEntry Constant_ZkAttrsZkia[];
extern const ZkAttrCharEntry Constant_ZkAttrsZkca[];
// Byte-string and group parameters, and every other parameter identifier
// (character parameters of commands and channels, of monitoring messages):
// selector and name.
extern const ConstantIntEntry Constant_ZkAttrsZkbacf[];
extern const ConstantIntEntry Constant_ZkAttrsZkgacf[];
extern const ConstantIntEntry Constant_ZkAttrsZkcacfcachcamo[];

// The rows that stand for a selector no table knows: their row is its own
// end marker, named "Unknown attribute", with no value table and length 0.
extern const ZkAttrIntEntry Constant_ZkAttrsZkiaUnknown[];
extern const ZkAttrCharEntry Constant_ZkAttrsZkcaUnknown[];

// The row of a selector in each attribute table, or null.
const ZkAttrIntEntry *FindZkAttrIntRow(int32_t selector);
const ZkAttrCharEntry *FindZkAttrCharRow(int32_t selector);
// For the three (selector, name) tables.
const ConstantIntEntry *FindZkAttrNameRow(int32_t selector, const ConstantIntEntry *table);

// Command-format header and parameter structures, by their constants'
// names: structure types (ZKCFT_), commands (ZKCMD_), controls (ZKCFC_) and
// filter operators (ZKCFOP_). The end text answers for an unknown value.
extern const ConstantIntEntry Constant_ZkAttrsPcfType[];
extern const ConstantIntEntry Constant_ZkAttrsPcfCommand[];
extern const ConstantIntEntry Constant_ZkAttrsPcfControl[];
extern const ConstantIntEntry Constant_ZkAttrsZkcfop[];

// The integer lists whose positions have names: the parameter, what its
// positions count, and the table of the positions' names.
struct SelectorIntListEntry {
  int32_t Parameter;
  const char *Description;
  const ConstantIntEntry *Positions;
};
extern const SelectorIntListEntry Constant_SelectorsForIntList[];

// The name of a position (0 for the first value) of the integer list of a
// parameter, or "" when the parameter's positions have no names or this one
// has none.
const char *SearchIntListEntryDescrption(int32_t parameter, int32_t position);
