#include "names.h"

#include <algorithm>
#include <cstring>

namespace zkqm {
namespace {

struct NamedValue {
  ZKLONG value;
  const char *text;
};

// The rows of the platform's constant families, taken from the same .def
// files as the constants themselves.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text) {(ZKLONG)(value), text},
#define ZK_NAMED(name, value) {(ZKLONG)(value), #name},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text) {(ZKLONG)(value), text},
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
const NamedValue kFunctions[] = {
#include "zk/defs/function.def"
};
const NamedValue kExitReasons[] = {
#include "zk/defs/exitreason.def"
};
const NamedValue kResponses[] = {
#include "zk/defs/zkxcc.def"
};
const NamedValue kResponses2[] = {
#include "zk/defs/zkxr2.def"
};
#include "zk/defs/undef.h"

template <std::size_t N>
std::string lookUp(const NamedValue (&table)[N], ZKLONG value, const char *unknown) {
  for (const NamedValue &row : table) {
    if (row.value == value) {
      return row.text;
    }
  }
  return std::string(unknown) + "(" + std::to_string(value) + ")";
}

} // namespace

std::string functionName(ZKLONG function) {
  return lookUp(kFunctions, function, "function");
}

std::string exitReasonName(ZKLONG exitReason) {
  return lookUp(kExitReasons, exitReason, "reason");
}

std::string exitResponseName(ZKLONG response) {
  return lookUp(kResponses, response, "response");
}

std::string exitResponse2Name(ZKLONG response2) {
  return lookUp(kResponses2, response2, "response2");
}

bool isKnownFunction(ZKLONG function) {
  for (const NamedValue &row : kFunctions) {
    if (row.value == function) {
      return true;
    }
  }
  return false;
}

ZKLONG functionByName(std::string_view name) {
  for (const NamedValue &row : kFunctions) {
    if (name == row.text) {
      return row.value;
    }
  }
  return -1;
}

void setBlankPadded(char *field, std::size_t width, std::string_view text) {
  std::size_t n = std::min(width, text.size());
  std::memcpy(field, text.data(), n);
  std::memset(field + n, ' ', width - n);
}

void setBlankPaddedTail(char *field, std::size_t width, std::string_view text) {
  if (text.size() > width) {
    text.remove_prefix(text.size() - width);
  }
  setBlankPadded(field, width, text);
}

std::string fieldText(const char *field, std::size_t width) {
  std::size_t n = strnlen(field, width);
  while (n > 0 && field[n - 1] == ' ') {
    --n;
  }
  return std::string(field, n);
}

} // namespace zkqm
