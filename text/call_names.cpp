// Index tables of the function and exit-reason names, built when the code
// is compiled from the same rows as their constant tables.
#include "text/call_names.h"

#include "text/constant_table.h"

namespace {

// Both families have values from 1 to a few dozen.
constexpr int32_t kIndexSize = 64;

struct NameIndex {
  const char *name[kIndexSize];
};

// Each row's name at its value; the first row of a value wins, as in the
// table look-up.
#define ZK_FAMILY_BEGIN(table)
#define ZK_FAMILY_END(table, endText)
#define ZK_CONST(constant, value, text)                                                            \
  if ((value) >= 0 && (value) < kIndexSize && index.name[(value)] == nullptr) {                    \
    index.name[(value)] = text;                                                                    \
  }
#define ZK_NAMED(constant, value)
#define ZK_ALIAS(constant, value)
#define ZK_ROW(value, text) ZK_CONST(unnamed, value, text)
#define ZK_FLAG_FAMILY_BEGIN(table)
#define ZK_FLAG_FAMILY_END(table, endText)
#define ZK_FLAG(constant, value, text) ZK_CONST(constant, value, text)
#define ZK_STRING_FAMILY_BEGIN(table)
#define ZK_STRING_FAMILY_END(table, endText)
#define ZK_STRING_CONST(constant, key, text)
#define ZK_STRING_ROW(key, text)

constexpr NameIndex BuildFunctionIndex() {
  NameIndex index{};
#include "zk/defs/function.def"
  return index;
}

constexpr NameIndex BuildExitReasonIndex() {
  NameIndex index{};
#include "zk/defs/exitreason.def"
  return index;
}

#include "zk/defs/undef.h"

constexpr NameIndex kFunctionNames = BuildFunctionIndex();
constexpr NameIndex kExitReasonNames = BuildExitReasonIndex();

inline const char *Indexed(const NameIndex &index, int32_t value) {
  return value >= 0 && value < kIndexSize ? index.name[value] : nullptr;
}

} // namespace

const char *FunctionName(int32_t function) {
  const char *name = Indexed(kFunctionNames, function);
  return name != nullptr ? name : SearchConstantInt(function, Constant_Function);
}

const char *ExitReasonName(int32_t exitReason) {
  const char *name = Indexed(kExitReasonNames, exitReason);
  return name != nullptr ? name : SearchConstantInt(exitReason, Constant_ExitReason);
}
