// The proof that an exit only observes: before each exit function is called,
// zkqm copies every parameter the function can reach (each structure at its
// version's length, the records and strings it points to, buffers, handles,
// lengths, completion code and reason); afterwards it compares and names
// each difference.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fields.h"

namespace zkqm {

class ParamSnapshot {
public:
  // A structure at the length its Version gives (or `length` when not 0).
  // Fields named in `exempt` are the exit's to change and are not compared.
  void addStruct(const std::string &label, const void *address, const StructDef &def,
                 uint32_t length = 0, std::vector<std::string> exempt = {});
  // `count` records of `def`'s layout, each `recordSize` bytes long (0: the
  // structure's size), named label[1], label[2], ...
  void addRecords(const std::string &label, const void *address, const StructDef &def, int count,
                  uint32_t recordSize = 0);
  // Bytes without a layout (message data, strings, attribute areas).
  void addBytes(const std::string &label, const void *address, std::size_t length);
  // A 32-bit value (a handle, a length, a completion code, a reason).
  void addLong(const std::string &label, const ZKLONG *address);
  // A pointer argument's value, such as the structure address that an
  // exit receives through a pointer to a pointer.
  void addPointer(const std::string &label, void *const *address);

  // Each difference between the copies and the memory now, as
  // "ZKMD.Priority 0 -> 9" or "Buffer byte 3 of 12: 0x41 -> 0x42".
  std::vector<std::string> differences() const;

  bool empty() const { return regions_.empty(); }

private:
  enum class Kind { Struct, Records, Bytes, Long, Pointer };
  struct Region {
    std::string label;
    Kind kind = Kind::Bytes;
    const unsigned char *address = nullptr;
    std::size_t length = 0;
    const StructDef *def = nullptr;
    uint32_t recordSize = 0;
    std::vector<std::string> exempt;
    std::vector<unsigned char> copy;
  };
  void add(Region region);
  void compareStruct(const Region &r, const unsigned char *copy, const unsigned char *now,
                     std::size_t length, const std::string &label,
                     std::vector<std::string> &out) const;

  std::vector<Region> regions_;
};

} // namespace zkqm
