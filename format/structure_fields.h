// Structures shown field by field from a table of their fields. Each
// structure lists its fields in order (name, offset, size, how the value is
// shown, the version that brings it); one walker writes the version headers,
// the field lines and the reports of unknown values. A field that needs more
// than a row can say has a function of its own.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "format/field_primitives.h"
#include "text/constant_table.h"

// How a field's value is shown.
enum FieldKind : uint8_t {
  FIELD_VERSION_GROUP, // the fields below arrive with version Size
  FIELD_INT,           // "%d"
  FIELD_TEXT,          // Size characters
  FIELD_BYTES,         // Size bytes on one line, "(null)" when all are 0
  FIELD_BYTES_DUMP,    // Size bytes as a dump, "(null)" when all are 0
  FIELD_MESSAGE_HANDLE,
  FIELD_FLAGS,     // a flag list (Flags)
  FIELD_VALUE,     // a value by name (Value)
  FIELD_CHARACTER, // a one-character value by name (Value)
  FIELD_CCSID,     // a coded character set identifier and its name
  FIELD_ENCODING,  // an encoding and its names
  FIELD_FORMAT,    // a message format name
  FIELD_COMPRESSION,
  FIELD_FUNCTION, // shown by Show
};

// Rules a field may carry.
enum FieldRule : uint8_t {
  FIELD_RULE_NONE = 0,
  // Read as stored: the structure's byte order is not applied.
  FIELD_RAW = 1,
  // An output field, which may hold anything before the call: its unknown
  // values are reported only when the walk says so.
  FIELD_RECEIVED = 2,
  // A version group without a header line.
  FIELD_NO_HEADER = 4,
  // A version group that a channel exit does not show, nor anything after it.
  FIELD_NOT_IN_CHANNEL_EXIT = 8,
};

// How the rows of a flag list are tested against the word.
enum FlagTest : uint8_t {
  // A row is named when all its bits are set; its bits are then taken away,
  // so that of a group of rows holding each other only the widest is named.
  FLAGS_ALL_BITS,
  // A row is named when it has any bit in common with the word. Used where a
  // value is an enumeration shown as if it were flags.
  FLAGS_ANY_BIT,
};

// What counts as unknown in a flag word.
enum FlagUnknownTest : uint8_t {
  FLAGS_UNKNOWN_BITS,  // any of the bits of Unknown is set
  FLAGS_UNKNOWN_ABOVE, // the word, signed, is above Unknown
};

struct FlagDisplay {
  const ConstantIntEntry *Rows; // in the order the list names them
  const uint32_t *Known;        // only rows within these bits are named
  uint32_t Unknown;             // see UnknownTest
  uint8_t Test;                 // FlagTest
  uint8_t UnknownTest;          // FlagUnknownTest
  uint8_t Skip;                 // characters of each row text left out
  const char *UnknownName;      // for the report of an unknown word
};

// How a value without a name is shown.
enum ValueUnknownForm : uint8_t {
  VALUE_NUMBER,                  // the number alone
  VALUE_NUMBER_REPORTED,         // the number, reported
  VALUE_NUMBER_UNKNOWN_REPORTED, // the number and "(Unknown value)", reported
  VALUE_SECOND_LINE_REPORTED,    // no name, a second field line with the number, reported
  VALUE_TABLE_TEXT,              // the table's answer for a value it lacks
  VALUE_BYTE_REPORTED,           // the byte in hex with its image, reported
  VALUE_REASON,                  // "0", or the number and its name in parentheses
};

struct ValueDisplay {
  const ConstantIntEntry *Rows;
  int32_t Lowest;  // values outside Lowest..Highest have no name even when a
  int32_t Highest; // row names them
  uint8_t Skip;    // characters of each row text left out (a constant's prefix)
  uint8_t UnknownForm;
  const char *UnknownName; // for the report of an unknown value
};

struct FieldWalk;
struct StructField;
typedef void (*FieldFunction)(FieldWalk *walk, const StructField *field);

struct StructField {
  const char *Name;
  uint16_t Offset;
  uint16_t Size; // bytes of a text or byte field; the version of a group
  uint8_t Kind;  // FieldKind
  uint8_t Rule;  // FieldRule bits
  const FlagDisplay *Flags;
  const ValueDisplay *Value;
  FieldFunction Show;
};

struct StructDisplay {
  const char *ShortName; // in the version headers: "MD", "CD"
  uint16_t VersionOffset;
  const StructField *Fields;
  int32_t FieldCount;
};

// One walk over one structure.
struct FieldWalk {
  TraceText Text; // the lines being written
  const unsigned char *Structure;
  int32_t Encoding;       // byte order of the structure's integers
  int32_t Version;        // the Version field in host order
  int32_t StoredVersion;  // the Version field as stored
  uint8_t ReportReceived; // report unknown values of FIELD_RECEIVED fields
  const void *Strings[3]; // string addresses handed on to variable-length strings
};

// Starts a walk: the Version field read in the structure's byte order.
void StartFieldWalk(FieldWalk *walk, ExitControlBlock *cb, const void *structure, int32_t encoding,
                    uint16_t versionOffset);

// Writes the fields of a structure, from `first` to the end of its table,
// and hands the text to the trace file.
void WalkStructFields(FieldWalk *walk, const StructDisplay *display);

// A 32-bit field of the structure in host order (or as stored with FIELD_RAW).
int32_t FieldWalkInt32(const FieldWalk *walk, uint16_t offset, uint8_t rule);

// Hands what the walk's text holds to the trace file, for a field that
// writes through a Show... primitive of its own.
inline void FieldWalkFlush(FieldWalk *walk) {
  TraceTextWrite(&walk->Text);
}

// Appends a flag list and the newline, then reports an unknown word (after
// the line). `report` 0 leaves the report out.
void FieldWalkAppendFlags(FieldWalk *walk, const FlagDisplay *flags, uint32_t word, uint8_t report);

// Appends a value by name and the newline, reporting an unknown one.
void FieldWalkAppendValue(FieldWalk *walk, const char *name, const ValueDisplay *value,
                          int32_t number, uint8_t report);

// A flag word or a value as one field line of its own, outside a structure
// (no name: the value alone). `report` 0 leaves an unknown one unreported.
void ShowFlagsField(ExitControlBlock *cb, const char *name, const FlagDisplay *flags, uint32_t word,
                    uint8_t report);
void ShowValueField(ExitControlBlock *cb, const char *name, const ValueDisplay *value,
                    int32_t number, uint8_t report);

// The rows of a table of fields, each checked against the structure's own
// layout: the offset is the member's.
#define FIELD_ROW(S, member, name, kind, rule, flags, value, show)                                 \
  StructField {                                                                                    \
    name, (uint16_t)offsetof(S, member), (uint16_t)sizeof(((S *)nullptr)->member), kind, rule,     \
        flags, value, show                                                                         \
  }
#define FIELD_VERSION(version, rule)                                                               \
  StructField {                                                                                    \
    "", 0, version, FIELD_VERSION_GROUP, rule, nullptr, nullptr, nullptr                           \
  }
#define FIELD_OF(S, member, name, kind)                                                            \
  FIELD_ROW(S, member, name, kind, 0, nullptr, nullptr, nullptr)
#define FIELD_FLAGS_OF(S, member, name, flags, rule)                                               \
  FIELD_ROW(S, member, name, FIELD_FLAGS, rule, &flags, nullptr, nullptr)
#define FIELD_VALUE_OF(S, member, name, value, rule)                                               \
  FIELD_ROW(S, member, name, FIELD_VALUE, rule, nullptr, &value, nullptr)
#define FIELD_FUNCTION_OF(S, member, name, show)                                                   \
  FIELD_ROW(S, member, name, FIELD_FUNCTION, 0, nullptr, nullptr, show)
// An element of an array member, with a name of its own ("HdrCompList[1]").
#define FIELD_ELEMENT_OF(S, member, index, name, kind)                                             \
  StructField {                                                                                    \
    name, (uint16_t)(offsetof(S, member) + (index) * sizeof(((S *)nullptr)->member[0])),           \
        (uint16_t)sizeof(((S *)nullptr)->member[0]), kind, 0, nullptr, nullptr, nullptr            \
  }

#define STRUCT_DISPLAY(shortName, S, versionMember, fields)                                        \
  StructDisplay {                                                                                  \
    shortName, (uint16_t)offsetof(S, versionMember), fields,                                       \
        (int32_t)(sizeof fields / sizeof fields[0])                                                \
  }
