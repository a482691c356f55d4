// Calling the exits: the queue manager's side of the ZKAXP/ZKAXC hand-over,
// at connection time (INIT, TERM) and around every ZKI call (BEFORE,
// AFTER, and the exit points inside a call). Every exit function call is
// checked: whatever the exit changed that is not its own to change is
// reported as a parameter error, naming the call, the exit and the field.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "connection.h"
#include "param_check.h"

namespace zkqm {

struct ExitAnswer {
  ZKLONG response = ZKXCC_OK;                    // ZKAXP ExitResponse
  ZKLONG response2 = ZKXR2_DEFAULT_CONTINUATION; // ZKAXP ExitResponse2
  // Each parameter the exit changed that it must leave alone.
  std::vector<std::string> violations;
};

// Builds the ZKAXP (with the exit's own user and problem-determination areas
// and the connection's chain area pointer) and the ZKAXC, calls `function`
// with them and takes back what the exit may change.
ExitAnswer callConnectionFunction(ExitInstance &exit, ZKLONG exitFunction, PZK_INIT_EXIT function,
                                  ZKLONG &compCode, ZKLONG &reason);

// "set", "cleared", "kept", "changed" or "empty": what a call did to the
// chain area pointer.
const char *chainAreaChange(ZKPTR before, ZKPTR after);

// One ZKI call (or exit point) as the exits see it.
struct ApiCall {
  ZKLONG function = 0; // ZKXF_*
  std::string name;    // "ZKPUT", for the log
  // Calls one registered exit function with the call's parameters.
  std::function<void(PZKFUNC entry, PZKAXP axp, PZKAXC axc)> invoke;
  // Adds every parameter the exit function can reach to a snapshot.
  std::function<void(ParamSnapshot &)> describe;
  // The call's completion code and reason, which an exit can set when it
  // answers SKIP_FUNCTION; null for calls without them.
  ZKLONG *compCode = nullptr;
  ZKLONG *reason = nullptr;
};

// A call with a completion code and reason, which the exits see and can set.
ApiCall makeApiCall(ZKLONG function, const std::string &name, ZKLONG &compCode, ZKLONG &reason);

struct BeforeOutcome {
  bool perform = true;     // false: an exit answered SKIP_FUNCTION or SUPPRESS_FUNCTION
  std::size_t reached = 0; // exits of the chain reached: their AFTER functions are due
};

// The BEFORE functions in chain order, then (after the call) the AFTER
// functions in reverse order, of the exits that the BEFORE pass reached.
BeforeOutcome runBefore(Connection &connection, ApiCall &call);
void runAfter(Connection &connection, ApiCall &call, const BeforeOutcome &before);
// An exit point inside a call (ZKXF_DATA_CONV_ON_GET): its BEFORE functions
// in chain order.
void runExitPoint(Connection &connection, ApiCall &call);

// Parameter errors found so far in this process (for the exit status).
// Whether each exit call is checked for changed parameters (on unless a
// benchmark turns it off).
void setParameterCheck(bool on);
int parameterErrors();

} // namespace zkqm
