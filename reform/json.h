// A small streaming JSON writer for wzreform's output formats.
//
// It appends to a std::string that the caller flushes when it likes (one
// line per call in JSON Lines, or in pieces for larger documents). Commas
// and nesting are tracked by the writer; strings are escaped so that the
// output is plain ASCII whatever bytes the trace held: '"' and '\' as \"
// and \\, every byte that is not printable ASCII (below 0x20, 0x7F and
// above) as \u00XX, that is, each byte read as ISO 8859-1.
#pragma once

#include <stdint.h>

#include <string>
#include <string_view>

namespace wzreform {

// Appends text as a JSON string literal, quotes included.
void AppendJsonString(std::string &out, std::string_view text);

// Appends a 32-bit value as the hex string "0x0000ABCD" (quotes included),
// the way the trace shows handles.
void AppendJsonHex32(std::string &out, uint32_t value);

class JsonWriter {
public:
  explicit JsonWriter(std::string &out) : Out(out) {}

  // Containers. Inside an object, Key comes before each value.
  void BeginObject();
  void EndObject();
  void BeginArray();
  void EndArray();
  void Key(std::string_view name);

  // Values.
  void String(std::string_view text);
  void Int(int64_t value);
  void UInt(uint64_t value);
  void Double(double value); // finite values; NaN and infinities as null
  void Bool(bool value);
  void Null();
  void Hex32(uint32_t value); // "0x0000ABCD"
  // A value already in JSON form, written as it is.
  void Raw(std::string_view json);

  // Key and value in one call.
  void Member(std::string_view name, std::string_view text) { Key(name), String(text); }
  void Member(std::string_view name, const char *text) { Key(name), String(text); }
  void Member(std::string_view name, int64_t value) { Key(name), Int(value); }
  void Member(std::string_view name, int32_t value) { Key(name), Int(value); }
  void Member(std::string_view name, uint32_t value) { Key(name), UInt(value); }
  void Member(std::string_view name, bool value) { Key(name), Bool(value); }

  // Back to an empty state, for the next document on the same string.
  void Reset() { Depth = 0, First = true, AfterKey = false; }
  // The nesting depth now: 0 when the document is complete.
  int Level() const { return Depth; }

private:
  void Separate(); // the comma before a value or key, when one is due

  std::string &Out;
  int Depth = 0;
  bool First = true;    // no member or element yet in the innermost container
  bool AfterKey = false; // a key was written, its value comes next
};

} // namespace wzreform
