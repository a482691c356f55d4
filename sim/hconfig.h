// Configuration handles: the Hconfig that the queue manager puts in each
// exit's ZKAXP, and by which ZKXEP finds the exit and its connection.
#pragma once

#include "connection.h"

namespace zkqm {

// Gives the exit instance a new handle (stored in it too).
ZKHCONFIG issueHconfig(ExitInstance &exit);
// The handle is no longer valid; ZKXEP rejects it from now on.
void withdrawHconfig(ExitInstance &exit);
// The exit instance of a handle, or null for a handle not (or no longer) issued.
ExitInstance *findHconfig(ZKHCONFIG hconfig);

} // namespace zkqm
