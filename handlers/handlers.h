// The exit functions the queue manager calls around each ZKI call, and the
// connection-time functions, declared from the one call table. Each has the
// parameter list of its call.
#pragma once

#include "exit/export.h"
#include "zk/zk.h"

typedef void WZ_START_FUNCTION(void);

#define WZ_ENTRY(name, type) WZ_EXPORT type name;
#define WZ_CONNECTION(name, type, function, condition) WZ_EXPORT type name;
#define WZ_CALL(function, type, before, after, condition)                                          \
  WZ_EXPORT type before;                                                                           \
  WZ_EXPORT type after;
#define WZ_CALL_CONVERT(function, conversion, type, before, after, condition)                      \
  WZ_CALL(function, type, before, after, condition)
#include "handlers/calls.def"
#undef WZ_ENTRY
#undef WZ_CONNECTION
#undef WZ_CALL
#undef WZ_CALL_CONVERT
