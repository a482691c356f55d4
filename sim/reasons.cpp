#include "reasons.h"

namespace zkqm {

const char *reasonText(ZKLONG reason) {
  switch (reason) {
  case kReasonAlreadyConnected:
    return "already connected";
  case kReasonHconfigError:
    return "configuration handle not valid";
  case kReasonApiExitFailed:
    return "API exit failed";
  case kReasonNotConnected:
    return "connection handle not valid";
  case kReasonBadRegistration:
    return "function not supported";
  default:
    return "";
  }
}

} // namespace zkqm
