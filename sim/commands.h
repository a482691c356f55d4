// The scenario commands, one group per file, and the helpers they share.
// The table that names them is in scenario_commands.cpp.
#pragma once

#include <string>
#include <vector>

#include "scenario.h"

namespace zkqm {

using CheckFn = bool (*)(const ScenarioCommand &, std::string &);
using RunFn = bool (*)(ScenarioContext &, const ScenarioCommand &, std::string &);

#define ZKQM_COMMAND(name)                                                                         \
  bool check##name(const ScenarioCommand &command, std::string &error);                            \
  bool run##name(ScenarioContext &context, const ScenarioCommand &command, std::string &error);

// cmd_control.cpp: loops, threads, processes.
ZKQM_COMMAND(Repeat)
ZKQM_COMMAND(Thread)
ZKQM_COMMAND(Process)
ZKQM_COMMAND(Parallel)
// cmd_define.cpp: objects.
ZKQM_COMMAND(Define)
// cmd_queue.cpp: connections' queue calls and what they show.
ZKQM_COMMAND(Connx)
ZKQM_COMMAND(Open)
ZKQM_COMMAND(Close)
ZKQM_COMMAND(Put)
ZKQM_COMMAND(Put1)
ZKQM_COMMAND(Get)
// cmd_inq.cpp
ZKQM_COMMAND(Inq)
ZKQM_COMMAND(Set)
// cmd_uow.cpp
ZKQM_COMMAND(Begin)
ZKQM_COMMAND(Commit)
ZKQM_COMMAND(Backout)
ZKQM_COMMAND(Stat)
// cmd_pubsub.cpp
ZKQM_COMMAND(Sub)
ZKQM_COMMAND(Subrq)
// cmd_async.cpp
ZKQM_COMMAND(Cb)
ZKQM_COMMAND(Ctl)
ZKQM_COMMAND(Deliver)
ZKQM_COMMAND(Event)
// cmd_xa.cpp
ZKQM_COMMAND(Xid)
ZKQM_COMMAND(Xa)
ZKQM_COMMAND(During)
// cmd_message.cpp
ZKQM_COMMAND(Message)
// cmd_show.cpp: expectations and displays.
ZKQM_COMMAND(ExpectDepth)
ZKQM_COMMAND(ShowMore)
// cmd_files.cpp: pauses, and files written while the scenario runs.
ZKQM_COMMAND(Sleep)
ZKQM_COMMAND(File)

#undef ZKQM_COMMAND

// ---- shared by the command files -------------------------------------------------

// The connection a command names, or null with `error`.
Connection *connectionOf(ScenarioContext &context, const std::string &name, std::string &error);
// The connection a call command names: one that is not connected makes its
// calls all the same, with no connection handle.
Connection *connectedOf(ScenarioContext &context, const std::string &name, std::string &error);
bool checkConnectionName(const std::string &name, std::string &error);
// The Hobj of a handle name of the connection (a number stands for
// itself); false with `error` for an unknown name.
bool handleOf(Connection &c, const std::string &name, ZKHOBJ &hobj, std::string &error);
// The connection (word 1) and the Hobj of the handle (word 2) that a call
// command on an object handle names; null with `error` when either is
// unknown.
Connection *handleCallOf(ScenarioContext &context, const ScenarioCommand &command, ZKHOBJ &hobj,
                         std::string &error);

// Logs a call's result ("c1   CompCode 2 Reason 2033 (ZKRC_NO_MSG_AVAILABLE)"),
// with details after a ';' when there are some, and counts it.
void logResult(ScenarioContext &context, Connection &c, const std::string &call, ZKLONG compCode,
               ZKLONG reason, const std::string &details = "");

// The prefixes tried for the value of an integer attribute written by name
// (LOCAL, PUT_INHIBITED, ON, ...).
extern const char *const kAttributeValuePrefixes;

// A resolver for "@name" byte values.
ByteResolver resolverOf(ScenarioContext &context);

// A structure parameter of a call: "KEY.Field=value" words set fields of
// `value`, and KEY=none passes no structure at all. `address` is what the
// call gets; false with `error` when a field does not take its value.
template <typename T>
bool structArgument(ScenarioContext &context, const Args &args, const std::string &key,
                    const char *structName, T &value, T *&address, std::string &error) {
  if (!args.applyFields(key, &value, structNamed(structName), resolverOf(context), error)) {
    return false;
  }
  address = args.get(key) == "none" ? nullptr : &value;
  return true;
}

// Text of bytes for the log: printable characters, others as '.', cut to
// `max` with "..." after.
std::string printable(const unsigned char *data, std::size_t length, std::size_t max = 60);
// A 24-byte identifier for the log (hex).
std::string idText(const unsigned char *id);

// Saves a message's identifiers under a name, for "@name" later.
void saveIds(ScenarioContext &context, const std::string &name, const ZKMD &md);

// The bytes of a message given by msg=, text=, hex=, file= or size=, and the
// descriptor fields it sets. False with `error` when none can be built.
bool messageOf(ScenarioContext &context, const Args &args, BuiltMessage &message,
               std::string &error);

// Reads a whole file (relative names from the scenario's directory).
bool readFile(const ScenarioContext &context, const std::string &name,
              std::vector<unsigned char> &bytes, std::string &error);

// Builds the bytes of a 'message' block (cmd_message.cpp).
bool buildMessage(ScenarioContext &context, const ScenarioCommand &command, BuiltMessage &out,
                  std::string &error);

} // namespace zkqm
