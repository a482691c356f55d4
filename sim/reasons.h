// Reason codes that the stand-in queue manager gives besides those of
// zk/defs/zkrc.def.
#pragma once

#include "zk/zkconst.h"

namespace zkqm {

constexpr ZKLONG kReasonAlreadyConnected = 2002;
constexpr ZKLONG kReasonHconfigError = 2280;  // ZKXEP with a handle it does not know
constexpr ZKLONG kReasonApiExitFailed = 2374; // an API exit answered FAILED
constexpr ZKLONG kReasonNotConnected = ZKRC_HCONN_ERROR;
constexpr ZKLONG kReasonBadRegistration = ZKRC_FUNCTION_NOT_SUPPORTED;

// "API exit failed" for 2374 and the like, for the log; empty when there is
// nothing to say about the value.
const char *reasonText(ZKLONG reason);

} // namespace zkqm
