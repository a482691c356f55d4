// Command-format messages: the header ZKCFH and the typed parameters after
// it, each shown with its type, length, identifier and name and its value or
// values by name where the attribute tables know them. ShowParsedPCF (in
// format/message_content.h) walks a body; the pieces here show one
// parameter's value part.
//
// The body is hostile input: every length, count and offset read from it is
// checked against the bytes that remain before it is used, with arithmetic
// that cannot overflow; nothing is read outside the body given.
#pragma once

#include <stdint.h>
#include <string.h>

#include "format/field_primitives.h"
#include "text/attribute_tables.h"

struct ExitControlBlock;

// Groups are followed to this depth; the members of deeper groups are shown
// flat, as members of the deepest group followed, and one line says so.
#define PCF_MAX_GROUP_DEPTH 32

// A 32-bit integer of the body, in host order.
inline int32_t PcfReadInt32(const unsigned char *at, int32_t encoding) {
  int32_t value;
  memcpy(&value, at, sizeof value);
  return ZklongValueRegardingEncoding(value, encoding);
}

// A 64-bit integer of the body, in host order.
inline int64_t PcfReadInt64(const unsigned char *at, int32_t encoding) {
  uint64_t raw;
  memcpy(&raw, at, sizeof raw);
  return ZkInt64ValueRegardingEncoding((uint32_t)raw, (uint32_t)(raw >> 32), encoding);
}

// One parameter as the walk found it: its three leading words read, its
// StrucLength checked to lie between 12 and the bytes that remain.
struct PcfParameter {
  const unsigned char *At; // the parameter's first byte
  int32_t Remaining;       // bytes of the body from At on
  int32_t Encoding;        // of the body's integers
  int32_t Type;
  int32_t StrucLength;
  int32_t Parameter;
  const ZkAttrIntEntry *Row; // the identifier's integer row, or the unknown row
};

// The value part of a parameter by its type (the lines after its heading and
// its Type, Length and Parameter lines). A part whose fixed words do not fit
// in the bytes that remain, or whose variable part does not fit in the
// StrucLength, is left out. Returns a group's parameter count (0 for every
// other type, and for a group whose count does not fit).
int32_t ShowPcfParameterValue(ExitControlBlock *cb, const PcfParameter *parameter);

// The line "(parm) - Value": with a row that has a value table, the value by
// name (SearchIntZkAttrValueAndSetString, fixed width); otherwise "%6d" and,
// when the description is not empty, " (description)".
int32_t ShowPcfIntegerValue(ExitControlBlock *cb, int32_t value, const ZkAttrIntEntry *row,
                            const char *description);

// The line "(parm) - Value" of a string: "(null)" when the length is not
// above 0 or the string begins with a zero byte; trailing blanks removed and
// "(blank)" when nothing is left; a string as long as MaxParsedOutputLineLength
// or longer on lines of its own below the field name, indented by 2.
int32_t ShowPcfStringValue(ExitControlBlock *cb, const void *string, int32_t length);
