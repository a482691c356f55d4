// The platform's named constants as zkqm uses them: names for the log
// (reason codes, XA return codes) and values for the names that scenario
// files may write instead of numbers.
#pragma once

#include <string>
#include <string_view>

#include "zk/zkconst.h"
#include "zk/zkxc.h"

namespace zkqm {

// "ZKRC_NO_MSG_AVAILABLE" for 2033, "none" for 0, "" when the value has no
// name.
std::string reasonName(ZKLONG reason);
// "2033 (ZKRC_NO_MSG_AVAILABLE)", or "0" for none: the form of the log.
std::string reasonWithName(ZKLONG reason);
// "XA_OK", "XAER_NOTA", ... and "TM_OK", "TMER_PROTO", ...; "" when unknown.
std::string xaReturnName(ZKLONG rc);
std::string axReturnName(ZKLONG rc);

// The name of a value among the constants whose names start with `prefix`
// ("ZKIA_"), without the prefix; "" when there is none.
std::string constantName(ZKLONG value, std::string_view prefix);

// Looks a constant up by its full name (ZKGMO_WAIT, ZKOT_Q, TMONEPHASE).
bool constantByName(std::string_view name, ZKLONG &value);

// Parses an integer written as a number (decimal, 0x hex, negative), a
// character in single quotes ('G'), or as constant names joined with '+' or
// '|'. A name is tried as written and then with `prefix` in front of it, so
// that "WAIT+CONVERT" reads as ZKGMO_WAIT+ZKGMO_CONVERT with the prefix
// "ZKGMO_"; `prefix` may list several, separated by commas. False (with
// `error`) for anything else.
bool parseLong(std::string_view text, std::string_view prefix, ZKLONG &value, std::string &error);

} // namespace zkqm
