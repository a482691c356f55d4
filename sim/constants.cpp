#include "constants.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace zkqm {
namespace {

struct Named {
  const char *name;
  ZKLONG value;
};

// Every constant of zk/defs, by name: the option, flag and selector
// families, the exit interface's completion codes and responses, and every
// other family. Where two families share a prefix, the one listed first in
// zk/defs/all.def names a value.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text) {#name, (ZKLONG)(value)},
#define ZK_NAMED(name, value) {#name, (ZKLONG)(value)},
#define ZK_ALIAS(name, value) {#name, (ZKLONG)(value)},
#define ZK_ROW(value, text)
#define ZK_FLAG_FAMILY_BEGIN(table)
#define ZK_FLAG_FAMILY_END(table, endText)
#define ZK_FLAG(name, value, text) {#name, (ZKLONG)(value)},
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(name, key, text)
#define ZK_STRING_ROW(key, text)
const Named kDefs[] = {
#include "zk/defs/all.def"
};
#include "zk/defs/undef.h"

// The reason codes alone: a value's first row names it.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(name, value, text) {#name, (ZKLONG)(value)},
#define ZK_NAMED(name, value) {#name, (ZKLONG)(value)},
#define ZK_ALIAS(name, value)
#define ZK_ROW(value, text)
const Named kReasons[] = {
#include "zk/defs/zkrc.def"
};
const Named kXaReturns[] = {
#include "zk/defs/xarc.def"
};
const Named kAxReturns[] = {
#include "zk/defs/axrc.def"
};
#include "zk/defs/undef.h"

template <std::size_t N> std::string nameOf(const Named (&table)[N], ZKLONG value) {
  for (const Named &row : table) {
    if (row.value == value) {
      return row.name;
    }
  }
  return "";
}

template <std::size_t N>
bool valueOf(const Named (&table)[N], std::string_view name, ZKLONG &value) {
  for (const Named &row : table) {
    if (name == row.name) {
      value = row.value;
      return true;
    }
  }
  return false;
}

bool parseNumber(std::string_view text, ZKLONG &value) {
  std::string s(text);
  if (s.empty()) {
    return false;
  }
  if (s.size() == 3 && s[0] == '\'' && s[2] == '\'') {
    value = static_cast<unsigned char>(s[1]);
    return true;
  }
  char *end = nullptr;
  errno = 0;
  long long n = 0;
  bool hex = s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X');
  if (hex) {
    n = static_cast<long long>(std::strtoull(s.c_str() + 2, &end, 16));
    if (n > 0xFFFFFFFFLL) {
      return false;
    }
    value = static_cast<ZKLONG>(static_cast<uint32_t>(n));
  } else {
    n = std::strtoll(s.c_str(), &end, 10);
    if (n < INT32_MIN || n > INT32_MAX) {
      return false;
    }
    value = static_cast<ZKLONG>(n);
  }
  return errno == 0 && end != nullptr && *end == '\0' && end != s.c_str() + (hex ? 2 : 0);
}

} // namespace

std::string reasonName(ZKLONG reason) {
  return nameOf(kReasons, reason);
}

std::string reasonWithName(ZKLONG reason) {
  if (reason == 0) {
    return "0";
  }
  std::string name = reasonName(reason);
  return std::to_string(reason) + (name.empty() ? "" : " (" + name + ")");
}

std::string xaReturnName(ZKLONG rc) {
  return nameOf(kXaReturns, rc);
}

std::string axReturnName(ZKLONG rc) {
  return nameOf(kAxReturns, rc);
}

std::string constantName(ZKLONG value, std::string_view prefix) {
  for (const Named &row : kDefs) {
    if (row.value == value && std::string_view(row.name).substr(0, prefix.size()) == prefix) {
      return row.name + prefix.size();
    }
  }
  return "";
}

bool constantByName(std::string_view name, ZKLONG &value) {
  return valueOf(kDefs, name, value);
}

bool parseLong(std::string_view text, std::string_view prefix, ZKLONG &value, std::string &error) {
  if (parseNumber(text, value)) {
    return true;
  }
  ZKLONG total = 0;
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t end = text.find_first_of("+|", start);
    if (end == std::string_view::npos) {
      end = text.size();
    }
    std::string_view part = text.substr(start, end - start);
    ZKLONG one = 0;
    bool found = parseNumber(part, one) || constantByName(part, one);
    // The prefix may name several, separated by commas.
    for (std::size_t p = 0; !found && p < prefix.size();) {
      std::size_t comma = prefix.find(',', p);
      std::string_view one_prefix =
          prefix.substr(p, comma == std::string_view::npos ? std::string_view::npos : comma - p);
      found = constantByName(std::string(one_prefix) + std::string(part), one);
      p = comma == std::string_view::npos ? prefix.size() : comma + 1;
    }
    if (!found) {
      error = "'" + std::string(part) + "' is neither a number nor a constant" +
              (prefix.empty() ? std::string() : " (" + std::string(prefix) + "...)");
      return false;
    }
    total |= one;
    start = end + 1;
  }
  value = total;
  return true;
}

} // namespace zkqm
