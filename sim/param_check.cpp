#include "param_check.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zkqm {
namespace {

constexpr std::size_t kMaxBytesNamed = 4; // differing bytes listed per region

std::string byteText(unsigned char b) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02X", b);
  return text;
}

} // namespace

void ParamSnapshot::add(Region region) {
  if (region.address == nullptr || region.length == 0) {
    return;
  }
  region.copy.assign(region.address, region.address + region.length);
  regions_.push_back(std::move(region));
}

void ParamSnapshot::addStruct(const std::string &label, const void *address, const StructDef &def,
                              uint32_t length, std::vector<std::string> exempt) {
  if (address == nullptr) {
    return;
  }
  Region r;
  r.label = label;
  r.kind = Kind::Struct;
  r.address = static_cast<const unsigned char *>(address);
  r.length = length != 0 ? length : def.lengthOf(address);
  r.def = &def;
  r.exempt = std::move(exempt);
  add(std::move(r));
}

void ParamSnapshot::addRecords(const std::string &label, const void *address, const StructDef &def,
                               int count, uint32_t recordSize) {
  if (address == nullptr || count <= 0) {
    return;
  }
  Region r;
  r.label = label;
  r.kind = Kind::Records;
  r.address = static_cast<const unsigned char *>(address);
  r.recordSize = recordSize != 0 ? recordSize : def.size;
  r.length = static_cast<std::size_t>(count) * r.recordSize;
  r.def = &def;
  add(std::move(r));
}

void ParamSnapshot::addBytes(const std::string &label, const void *address, std::size_t length) {
  Region r;
  r.label = label;
  r.kind = Kind::Bytes;
  r.address = static_cast<const unsigned char *>(address);
  r.length = length;
  add(std::move(r));
}

void ParamSnapshot::addLong(const std::string &label, const ZKLONG *address) {
  Region r;
  r.label = label;
  r.kind = Kind::Long;
  r.address = reinterpret_cast<const unsigned char *>(address);
  r.length = sizeof(ZKLONG);
  add(std::move(r));
}

void ParamSnapshot::addPointer(const std::string &label, void *const *address) {
  Region r;
  r.label = label;
  r.kind = Kind::Pointer;
  r.address = reinterpret_cast<const unsigned char *>(address);
  r.length = sizeof(void *);
  add(std::move(r));
}

void ParamSnapshot::compareStruct(const Region &r, const unsigned char *copy,
                                  const unsigned char *now, std::size_t length,
                                  const std::string &label, std::vector<std::string> &out) const {
  std::size_t offset = 0;
  while (offset < length) {
    if (copy[offset] == now[offset]) {
      ++offset;
      continue;
    }
    const FieldDef *field = r.def->at(static_cast<uint32_t>(offset));
    if (field == nullptr || field->offset + field->size > length) {
      out.push_back(label + " byte " + std::to_string(offset) + ": " + byteText(copy[offset]) +
                    " -> " + byteText(now[offset]));
      ++offset;
      continue;
    }
    if (std::find(r.exempt.begin(), r.exempt.end(), field->name) == r.exempt.end()) {
      out.push_back(label + "." + field->name + " " + fieldValueText(*field, copy) + " -> " +
                    fieldValueText(*field, now));
    }
    offset = field->offset + field->size;
  }
}

std::vector<std::string> ParamSnapshot::differences() const {
  std::vector<std::string> out;
  for (const Region &r : regions_) {
    const unsigned char *now = r.address;
    const unsigned char *copy = r.copy.data();
    if (std::memcmp(copy, now, r.length) == 0) {
      continue;
    }
    switch (r.kind) {
    case Kind::Struct:
      compareStruct(r, copy, now, r.length, r.label, out);
      break;
    case Kind::Records:
      for (std::size_t start = 0; start < r.length; start += r.recordSize) {
        std::size_t n = std::min<std::size_t>(r.recordSize, r.length - start);
        if (std::memcmp(copy + start, now + start, n) != 0) {
          std::string label = r.label + "[" + std::to_string(start / r.recordSize + 1) + "]";
          compareStruct(r, copy + start, now + start, n, label, out);
        }
      }
      break;
    case Kind::Long: {
      ZKLONG before = 0;
      ZKLONG after = 0;
      std::memcpy(&before, copy, 4);
      std::memcpy(&after, now, 4);
      out.push_back(r.label + " " + std::to_string(before) + " -> " + std::to_string(after));
      break;
    }
    case Kind::Pointer:
      out.push_back(r.label + " now points elsewhere");
      break;
    case Kind::Bytes: {
      std::size_t changed = 0;
      std::string first;
      for (std::size_t i = 0; i < r.length; ++i) {
        if (copy[i] != now[i]) {
          if (changed < kMaxBytesNamed) {
            first += (changed == 0 ? "" : ", ") + std::string("byte ") + std::to_string(i) + " " +
                     byteText(copy[i]) + " -> " + byteText(now[i]);
          }
          ++changed;
        }
      }
      out.push_back(r.label + " (" + std::to_string(r.length) +
                    " bytes): " + std::to_string(changed) + " byte(s) changed: " + first +
                    (changed > kMaxBytesNamed ? ", ..." : ""));
      break;
    }
    }
  }
  return out;
}

} // namespace zkqm
