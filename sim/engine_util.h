// Small helpers of the engine for the platform's fixed-width fields and for
// structures reached by pointer or by offset.
#pragma once

#include <cstring>
#include <string>

#include "zk/zk.h"

namespace zkqm {

// A fixed-width field as text: up to the first NUL, trailing blanks removed.
inline std::string fixedText(const char *field, std::size_t width) {
  std::size_t n = strnlen(field, width);
  while (n > 0 && field[n - 1] == ' ') {
    --n;
  }
  return std::string(field, n);
}

// Writes text into a fixed-width field, blank-padded (cut to the width).
inline void setFixed(char *field, std::size_t width, const std::string &text) {
  std::size_t n = text.size() < width ? text.size() : width;
  std::memcpy(field, text.data(), n);
  std::memset(field + n, ' ', width - n);
}

inline bool hasStrucId(const void *structure, const char *id) {
  return structure != nullptr && std::memcmp(structure, id, 4) == 0;
}

// The platform's rule for a structure that another one points to: the
// address when it is set, else the offset from the start of the pointing
// structure when it is not zero, else nothing.
template <typename T> T *subStructure(const void *base, void *pointer, ZKLONG offset) {
  if (pointer != nullptr) {
    return static_cast<T *>(pointer);
  }
  if (offset != 0) {
    return reinterpret_cast<T *>(const_cast<char *>(static_cast<const char *>(base)) + offset);
  }
  return nullptr;
}

inline bool allZero(const void *bytes, std::size_t n) {
  const auto *p = static_cast<const unsigned char *>(bytes);
  for (std::size_t i = 0; i < n; ++i) {
    if (p[i] != 0) {
      return false;
    }
  }
  return true;
}

// The text of a ZKCHARV (by pointer or by offset from `base`).
inline std::string charvText(const void *base, const ZKCHARV &v) {
  const char *text = subStructure<const char>(base, v.VSPtr, v.VSOffset);
  if (text == nullptr) {
    return "";
  }
  if (v.VSLength == -1) {
    return text;
  }
  return v.VSLength > 0 ? std::string(text, static_cast<std::size_t>(v.VSLength)) : "";
}

// Returns a string in a ZKCHARV output field: into the buffer that VSPtr
// (or VSOffset) and VSBufSize describe, as far as it fits; VSLength is set
// to the whole length.
inline void setCharvOutput(void *base, ZKCHARV &v, const std::string &text) {
  char *buffer = subStructure<char>(base, v.VSPtr, v.VSOffset);
  if (buffer != nullptr && v.VSBufSize > 0) {
    std::size_t n = text.size() < static_cast<std::size_t>(v.VSBufSize)
                        ? text.size()
                        : static_cast<std::size_t>(v.VSBufSize);
    std::memcpy(buffer, text.data(), n);
  }
  v.VSLength = static_cast<ZKLONG>(text.size());
}

} // namespace zkqm
