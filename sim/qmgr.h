// The stand-in queue manager: its connections and the exit chain that it
// runs for them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "connection.h"
#include "exit_chain.h"
#include "log.h"

namespace zkqm {

class QueueManager {
public:
  // `chain` may be empty: connections then run without exits.
  QueueManager(Log &log, const ExitChain &chain) : log_(log), chain_(chain) {}
  QueueManager(const QueueManager &) = delete;
  QueueManager &operator=(const QueueManager &) = delete;

  const std::string &name() const { return name_; }
  void setName(const std::string &name) { name_ = name; }

  // Defines a connection, or returns the one of that name.
  Connection &define(const std::string &name);
  Connection *find(const std::string &name);

  // ZKCONN or ZKCONNX (`function`): calls the entry function of every exit
  // of the chain, then connects. False when the connect failed; the
  // connection's last CompCode and Reason say why.
  bool connect(Connection &connection, ZKLONG function);
  // ZKDISC: calls the TERM function of every exit that registered one.
  bool disconnect(Connection &connection);
  // Disconnects whatever is still connected, in the order of definition.
  void disconnectAll();

  void showRegistrations(const Connection &connection);
  void showConnection(const Connection &connection);
  void showExits();

private:
  void logRegistrationSummary(const Connection &connection);
  void terminateExits(Connection &connection);
  void releaseExits(Connection &connection);
  void logViolations(const Connection &connection, const char *point, const ExitInstance &exit,
                     const std::vector<std::string> &violations);

  Log &log_;
  const ExitChain &chain_;
  std::string name_ = "ZKQM";
  std::vector<std::unique_ptr<Connection>> connections_;
  ZKHCONN nextHconn_ = 1;
};

} // namespace zkqm
