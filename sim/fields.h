// The fields of the platform's structures by name, offset and kind. zkqm uses
// them to name the field that an exit changed, to let scenario files set any
// field ("md.Priority=5") and to check a field after a call
// ("expect c1 md.BackoutCount 1").
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "zk/zk.h"

namespace zkqm {

enum class FieldKind { Int32, Int64, Chars, Bytes, Pointer };

struct FieldDef {
  std::string name;
  uint32_t offset = 0;
  uint32_t size = 0;
  FieldKind kind = FieldKind::Int32;
  // Constant-name prefix for values written by name ("ZKGMO_"), or empty.
  std::string prefix;
  // Shown in hexadecimal (option and flag words).
  bool hex = false;
};

struct StructDef {
  std::string name; // "ZKMD"
  std::string key;  // "md": how scenario files name it
  uint32_t size = 0;
  // Length by version (index version - 1); empty when the structure has one
  // length only.
  std::vector<uint32_t> lengths;
  // Offset of the Version field; -1 when the structure has none.
  int versionOffset = 4;
  std::vector<FieldDef> fields;

  // The length that the structure's Version gives: the highest known length
  // for a version above the known ones, the lowest for a version below 1.
  uint32_t lengthOf(const void *structure) const;
  const FieldDef *find(std::string_view fieldName) const; // case-insensitive
  const FieldDef *at(uint32_t offset) const;              // the field holding a byte
};

// Every structure zkqm knows, and a look-up by key ("md") or name ("ZKMD").
const std::vector<StructDef> &allStructs();
const StructDef *findStruct(std::string_view keyOrName);
const StructDef &structNamed(std::string_view name); // must exist

// A field's value as the log shows it: a number, 'text', hex bytes, or for a
// pointer "null"/"set" (no address ever reaches the log).
std::string fieldValueText(const FieldDef &field, const void *structure);

// Resolves "@name" for byte fields (a saved message or correlation id).
using ByteResolver = std::function<bool(const std::string &ref, std::vector<uint8_t> &bytes)>;

// Sets a field from scenario text: a number or constant names for integers,
// text or 0x-hex for character fields (blank-padded), 0x-hex, @name or text
// for byte fields (zero-padded). Pointers can only be set to "null".
bool setFieldValue(const FieldDef &field, void *structure, const std::string &text,
                   const ByteResolver &resolver, std::string &error);

// "0x" followed by at least one more character: the hexadecimal form of a
// character or byte field's value.
bool isHexForm(const std::string &text);
// The bytes of a value in that form (an odd number of digits has a 0 put in
// front); false when a character after "0x" is not a hexadecimal digit.
bool hexBytes(const std::string &text, std::vector<uint8_t> &bytes);

// Hex of a byte run, upper case, no separators.
std::string hexText(const void *data, std::size_t length);

} // namespace zkqm
