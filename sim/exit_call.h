// Calling one exit function of one exit for one connection: the queue
// manager's side of the ZKAXP/ZKAXC hand-over.
#pragma once

#include <string>
#include <vector>

#include "connection.h"

namespace zkqm {

struct ExitAnswer {
  ZKLONG response = ZKXCC_OK;                    // ZKAXP ExitResponse
  ZKLONG response2 = ZKXR2_DEFAULT_CONTINUATION; // ZKAXP ExitResponse2
  // Fields the exit changed that it must leave alone, by name.
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

} // namespace zkqm
