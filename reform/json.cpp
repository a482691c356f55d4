#include "reform/json.h"

#include <math.h>
#include <charconv>
#include <stdio.h>

namespace wzreform {

namespace {

const char kHexDigits[] = "0123456789ABCDEF";

// Bytes that go through as they are: printable ASCII except '"' and '\'.
struct PlainTable {
  bool Plain[256];
  constexpr PlainTable() : Plain() {
    for (int c = 0x20; c < 0x7F; c++) {
      Plain[c] = c != '"' && c != '\\';
    }
  }
};
constexpr PlainTable kPlain;

} // namespace

void AppendJsonString(std::string &out, std::string_view text) {
  const unsigned char *p = reinterpret_cast<const unsigned char *>(text.data());
  const unsigned char *end = p + text.size();
  out.reserve(out.size() + text.size() + 2);
  out.push_back('"');
  while (p < end) {
    const unsigned char *start = p;
    while (p < end && kPlain.Plain[*p]) {
      p++;
    }
    out.append(reinterpret_cast<const char *>(start), static_cast<size_t>(p - start));
    if (p == end) {
      break;
    }
    unsigned char c = *p++;
    if (c == '"' || c == '\\') {
      char escape[2] = {'\\', static_cast<char>(c)};
      out.append(escape, 2);
    } else {
      char escape[6] = {'\\', 'u', '0', '0', kHexDigits[c >> 4], kHexDigits[c & 15]};
      out.append(escape, sizeof escape);
    }
  }
  out.push_back('"');
}

void AppendJsonHex32(std::string &out, uint32_t value) {
  char text[12] = {'"', '0', 'x'};
  for (int i = 0; i < 8; i++) {
    text[3 + i] = kHexDigits[(value >> (28 - 4 * i)) & 15];
  }
  text[11] = '"';
  out.append(text, sizeof text);
}

void JsonWriter::Separate() {
  if (AfterKey) {
    AfterKey = false;
    return;
  }
  if (!First) {
    Out.push_back(',');
  }
  First = false;
}

void JsonWriter::BeginObject() {
  Separate();
  Out.push_back('{');
  Depth++;
  First = true;
}

void JsonWriter::EndObject() {
  Out.push_back('}');
  Depth--;
  First = false;
}

void JsonWriter::BeginArray() {
  Separate();
  Out.push_back('[');
  Depth++;
  First = true;
}

void JsonWriter::EndArray() {
  Out.push_back(']');
  Depth--;
  First = false;
}

void JsonWriter::Key(std::string_view name) {
  Separate();
  AppendJsonString(Out, name);
  Out.push_back(':');
  AfterKey = true;
}

void JsonWriter::String(std::string_view text) {
  Separate();
  AppendJsonString(Out, text);
}

void JsonWriter::Int(int64_t value) {
  Separate();
  char text[24];
  int n = snprintf(text, sizeof text, "%lld", static_cast<long long>(value));
  Out.append(text, n);
}

void JsonWriter::UInt(uint64_t value) {
  Separate();
  char text[24];
  int n = snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(value));
  Out.append(text, n);
}

void JsonWriter::Double(double value) {
  Separate();
  if (!isfinite(value)) {
    Out.append("null");
    return;
  }
  char text[40];
  auto result = std::to_chars(text, text + sizeof text, value);
  Out.append(text, result.ptr - text);
}

void JsonWriter::Bool(bool value) {
  Separate();
  Out.append(value ? "true" : "false");
}

void JsonWriter::Null() {
  Separate();
  Out.append("null");
}

void JsonWriter::Hex32(uint32_t value) {
  Separate();
  AppendJsonHex32(Out, value);
}

void JsonWriter::Raw(std::string_view json) {
  Separate();
  Out.append(json);
}

} // namespace wzreform
