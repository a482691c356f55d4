// Byte order of integers read from structures that may come from a machine
// of the other byte order. The host is little-endian, which the encoding
// value calls "integer reversed".
#include "format/field_primitives.h"
#include "zk/zkconst.h"

int32_t ZklongValueRegardingEncoding(int32_t value, int32_t encoding) {
  if (encoding != 0 && (encoding & ZKENC_INTEGER_REVERSED) == 0) {
    return (int32_t)__builtin_bswap32((uint32_t)value);
  }
  return value;
}

int64_t ZkInt64ValueRegardingEncoding(uint32_t low, uint32_t high, int32_t encoding) {
  uint64_t value = ((uint64_t)high << 32) | low;
  if (encoding != 0 && (encoding & ZKENC_INTEGER_REVERSED) == 0) {
    value = __builtin_bswap64(value);
  }
  return (int64_t)value;
}

int32_t ZkStructureEncoding(const void *structure) {
  // Versions are small numbers: only a little-endian Version field has a
  // non-zero first byte. It follows the 4-byte structure identifier.
  const unsigned char *bytes = (const unsigned char *)structure;
  return bytes[4] != 0 ? (int32_t)ZKENC_INTEGER_REVERSED : (int32_t)ZKENC_INTEGER_NORMAL;
}
