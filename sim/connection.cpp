#include "connection.h"

#include <cstring>
#include <unistd.h>

#include "names.h"

namespace zkqm {

const char *stateName(ConnectionState state) {
  switch (state) {
  case ConnectionState::Defined:
    return "defined";
  case ConnectionState::Connected:
    return "connected";
  case ConnectionState::ConnectFailed:
    return "failed";
  case ConnectionState::Disconnected:
    return "disconnected";
  }
  return "?";
}

std::size_t Connection::functionsInForce() const {
  std::size_t n = 0;
  for (const auto &exit : exits) {
    n += exit->functions.size();
  }
  return n;
}

void Connection::fillContext(ZKAXC &axc) const {
  std::memset(&axc, 0, sizeof axc);
  std::memcpy(axc.StrucId, ZKAXC_STRUC_ID, 4);
  axc.Version = ZKAXC_VERSION_2;
  axc.Environment = identity.environment;
  setBlankPadded(axc.UserId, sizeof axc.UserId, identity.userId);
  setBlankPadded(axc.ConnectionName, sizeof axc.ConnectionName, identity.connectionName);
  setBlankPaddedTail(axc.ApplName, sizeof axc.ApplName, identity.applName);
  axc.ApplType = identity.applType;
  axc.ProcessId = static_cast<ZKLONG>(getpid());
  axc.ThreadId = identity.threadId;
  setBlankPadded(axc.ChannelName, sizeof axc.ChannelName, identity.channelName);
}

} // namespace zkqm

namespace zkqm {

void Connection::keep(const std::string &key, const void *structure, std::size_t length) {
  if (structure == nullptr) {
    lastStructs.erase(key);
    return;
  }
  const auto *p = static_cast<const unsigned char *>(structure);
  lastStructs[key].assign(p, p + length);
}

} // namespace zkqm
