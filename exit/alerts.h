// Numbered alert messages, written to the error file of the connection (or
// of the process when there is no control block yet).
//
// A hub: every subsystem reports its failures here, so every folder may
// include this header.
//
// A message is raised as PutMessage<number>(cb, error, arguments...). The
// number must be in the catalogue and the arguments must match its
// template's placeholders $1, $2, ... in number and kind (a text for s, an
// int32_t for d, a uint32_t for u and x): anything else does not compile.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "exit/message_catalogue.h"

struct ExitControlBlock;

// One argument of a message: its kind ('s', 'd' or 'u') and its value.
struct AlertArgument {
  char Kind;
  const char *Text;
  uint32_t Number; // 'd' holds the int32_t's bits
};

// Fills `messageTemplate` into `out` (`size` bytes, always NUL-terminated
// when size > 0) in one pass over the template: "[$t]" becomes `timeStamp`,
// "[$0s]" and "[$0d]" the name and number of `errorNumber`, "[$ns]",
// "[$nd]", "[$nu]" and "[$nx]" argument n (from 1) as text, signed,
// unsigned or "0x%08X". Only the template is searched: an argument is
// inserted once and never read as a template, and a placeholder without an
// argument of its kind stays as it stands. Text that does not fit is cut.
// Returns the length written.
int32_t FillMessageTemplate(char *out, int32_t size, const char *messageTemplate,
                            const char *timeStamp, int32_t errorNumber,
                            const AlertArgument *arguments, int32_t count);

// The whole line of message `number` as it goes to the error file: prefix
// (time, process name when cb is given, process and thread id, number),
// filled template or "(Unknown message id)", line feed. `errorNumber` -1
// means errno. Returns the length written into `out`.
int32_t BuildMessageLine(char *out, int32_t size, const ExitControlBlock *cb, uint32_t number,
                         int32_t errorNumber, const AlertArgument *arguments, int32_t count);

// Builds and writes the line of message `number`. Never fails towards the
// caller; errno is kept. Use PutMessage<number> rather than this.
void PutMessageArguments(const ExitControlBlock *cb, uint32_t number, int32_t error,
                         const AlertArgument *arguments, int32_t count);

inline AlertArgument MakeAlertArgument(const char *text) {
  return {'s', text, 0};
}
inline AlertArgument MakeAlertArgument(char *text) {
  return {'s', text, 0};
}
inline AlertArgument MakeAlertArgument(int32_t value) {
  return {'d', nullptr, (uint32_t)value};
}
inline AlertArgument MakeAlertArgument(uint32_t value) {
  return {'u', nullptr, value};
}
// Any other type (long, 64-bit, bool, a pointer that is not text) is refused.
template <typename T> AlertArgument MakeAlertArgument(T) = delete;

template <typename T> constexpr char AlertKindOf() {
  if constexpr (__is_same(T, int32_t)) {
    return 'd';
  } else if constexpr (__is_same(T, uint32_t)) {
    return 'u';
  } else {
    return 's';
  }
}

// Writes alert `Number` with `arguments` for its placeholders. `error` is
// the operating system's error number for $0s/$0d; -1 means errno.
template <uint32_t Number, typename... Args>
void PutMessage(const ExitControlBlock *cb, int32_t error, Args... arguments) {
  static_assert(SearchMessageTemplateConst(Number) != nullptr,
                "message number is not in the catalogue");
  constexpr char kinds[] = {AlertKindOf<Args>()..., '\0'};
  static_assert(MessageTemplateAccepts(SearchMessageTemplateConst(Number), kinds),
                "arguments do not match the message's placeholders");
  const AlertArgument list[] = {MakeAlertArgument(arguments)..., AlertArgument{}};
  PutMessageArguments(cb, Number, error, list, (int32_t)sizeof...(Args));
}
