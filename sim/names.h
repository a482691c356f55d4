// Texts for the platform's numbers as the log shows them, and helpers for the
// fixed-width, blank-padded character fields of the exit structures.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zk/zkxc.h"

namespace zkqm {

// "ZKCONN", "INIT", ...; an unknown value reads "function(99)".
std::string functionName(ZKLONG function);
// "CONNECTION", "BEFORE", "AFTER"; an unknown value reads "reason(99)".
std::string exitReasonName(ZKLONG exitReason);
// "OK", "FAILED", ... for ZKAXP ExitResponse.
std::string exitResponseName(ZKLONG response);
// "DEFAULT_CONTINUATION", "SUPPRESS_CHAIN", ... for ZKAXP ExitResponse2.
std::string exitResponse2Name(ZKLONG response2);

// True for the ZKXF_* values of the platform.
bool isKnownFunction(ZKLONG function);

// Looks a function up by its log name ("ZKCONN", "INIT"); -1 when unknown.
ZKLONG functionByName(std::string_view name);

// Copies text into a fixed-width field, cut to the width and blank-padded.
void setBlankPadded(char *field, std::size_t width, std::string_view text);
// Copies text into a fixed-width field keeping its last `width` characters,
// blank-padded: long path names keep their program name.
void setBlankPaddedTail(char *field, std::size_t width, std::string_view text);
// A fixed-width field as text, trailing blanks and NULs removed.
std::string fieldText(const char *field, std::size_t width);

} // namespace zkqm
