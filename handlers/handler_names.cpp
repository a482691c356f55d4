#include "handlers/handler_names.h"

#include "zk/zk.h"

namespace {

struct HandlerNames {
  int32_t Function;
  const char *Before;
  const char *After;
};

// One row per call of the call list; the data-conversion point has the
// get's before-function.
constexpr HandlerNames kHandlerNames[] = {
#define WZ_ENTRY(name, type)
#define WZ_CONNECTION(name, type, function, condition) {function, #name, #name},
#define WZ_CALL(function, type, before, after, condition) {function, #before, #after},
#define WZ_CALL_CONVERT(function, conversion, type, before, after, condition)                      \
  {function, #before, #after}, {conversion, #before, #before},
#include "handlers/calls.def"
#undef WZ_ENTRY
#undef WZ_CONNECTION
#undef WZ_CALL
#undef WZ_CALL_CONVERT
};

} // namespace

const char *HandlerNameOf(int32_t function, int32_t exitReason) {
  for (const HandlerNames &row : kHandlerNames) {
    if (row.Function == function) {
      return exitReason == ZKXR_AFTER ? row.After : row.Before;
    }
  }
  return "(unknown)";
}
