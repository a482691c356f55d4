// The exit's own debug output, written when the queue manager loads it
// through wzEntryDebug: a running account of its steps and values in a file
// of its own beside the trace files,
//
//   <trace directory>wz_apiexit_debug_<pid>_<exit-context thread>_<thread>.txt
//
// one per process and thread. Each line is a time stamp with the source
// file and line, the label and the value:
//
//   *20261124 101502.123456  (dispatch.cpp 145)\tFunction :\tZKPUT    - BEFORE
//
// Each call opens the file, appends and closes it: slow by design, for
// diagnosing the exit only. Call sites test the control block's Debug flag
// first (the DEBUG_... macros do), so with wzEntry none of this runs. A file
// that cannot be opened (a read-only directory, a link planted at the name)
// loses the line silently: debug output never raises alerts and never
// fails a call.
//
// A hub: every folder's code writes debug lines, so every folder may
// include this header.
#pragma once

#include <stdint.h>

#include "exit/control_block.h"

// The debug file's path: the trace directory (none without a control
// block) and the name above (0 for the exit-context thread without one).
// Returns the length, or -1 when it does not fit.
int32_t DebugFileName(const ExitControlBlock *cb, char *path, int32_t size);

void debugTitle(ExitControlBlock *cb, const char *label, const char *unit, uint32_t line);
void debugString(ExitControlBlock *cb, const char *label, const char *value, const char *unit,
                 uint32_t line);
void debugInteger(ExitControlBlock *cb, const char *label, int32_t value, const char *unit,
                  uint32_t line);
void debugUnsignedInteger(ExitControlBlock *cb, const char *label, uint32_t value, const char *unit,
                          uint32_t line);
void debugInt64(ExitControlBlock *cb, const char *label, int64_t value, const char *unit,
                uint32_t line);
void debugUnsignedInt64(ExitControlBlock *cb, const char *label, uint64_t value, const char *unit,
                        uint32_t line);
void debugDouble(ExitControlBlock *cb, const char *label, double value, const char *unit,
                 uint32_t line);
void debugPointer(ExitControlBlock *cb, const char *label, const void *value, const char *unit,
                  uint32_t line);
// The bytes as characters, NUL bytes included.
void debugFixedLenChar(ExitControlBlock *cb, const char *label, const void *bytes, int32_t length,
                       const char *unit, uint32_t line);
// The bytes in hex on the one line.
void debugHexShort(ExitControlBlock *cb, const char *label, const void *bytes, int32_t length,
                   const char *unit, uint32_t line);
// "(N = 0xN bytes)", then a dump of 16 bytes a line; a run of lines equal to
// the line before is one line "FIRST-LAST same as above" with the first and
// last offset of the bytes the run covers.
void debugHexLong(ExitControlBlock *cb, const char *label, const void *bytes, int32_t length,
                  const char *unit, uint32_t line);

// Whether debug lines are wanted for this control block.
inline bool DebugWanted(const ExitControlBlock *cb) {
  return cb != nullptr && cb->Debug != 0;
}

// Call-site forms: the flag tested first, the source file and line filled in.
#define DEBUG_STRING(cb, label, value)                                                             \
  do {                                                                                             \
    if (DebugWanted(cb))                                                                           \
      debugString((cb), (label), (value), __FILE_NAME__, __LINE__);                                \
  } while (0)
#define DEBUG_INTEGER(cb, label, value)                                                            \
  do {                                                                                             \
    if (DebugWanted(cb))                                                                           \
      debugInteger((cb), (label), (value), __FILE_NAME__, __LINE__);                               \
  } while (0)
#define DEBUG_TITLE(cb, label)                                                                     \
  do {                                                                                             \
    if (DebugWanted(cb))                                                                           \
      debugTitle((cb), (label), __FILE_NAME__, __LINE__);                                          \
  } while (0)
