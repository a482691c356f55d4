// The stand-in queue manager: its connections, the exit chain that it runs
// for them, and the engine that carries the calls out.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "connection.h"
#include "engine.h"
#include "exit_call.h"
#include "exit_chain.h"
#include "log.h"

namespace zkqm {

struct ScenarioContext;

class QueueManager {
public:
  // `chain` may be empty: connections then run without exits.
  QueueManager(Log &log, const ExitChain &chain) : log_(log), chain_(chain), engine_(name_) {}
  QueueManager(const QueueManager &) = delete;
  QueueManager &operator=(const QueueManager &) = delete;

  const std::string &name() const { return name_; }
  void setName(const std::string &name);
  Engine &engine() { return engine_; }
  Log &log() { return log_; }

  // Defines a connection, or returns the one of that name.
  Connection &define(const std::string &name);
  Connection *find(const std::string &name);

  // ZKCONN or ZKCONNX (`function`): calls the entry function of every exit
  // of the chain, then the BEFORE functions, connects, and the AFTER
  // functions. `cno` is the application's connect options (ZKCONNX), or
  // null for ZKCONN, for which the queue manager builds default ones.
  // False when the connect failed; the connection's last CompCode and
  // Reason say why.
  bool connect(Connection &connection, ZKLONG function, PZKCNO cno = nullptr,
               const std::string &qmgrName = "");
  // ZKDISC: BEFORE functions, the disconnect, AFTER functions, then the TERM
  // function of every exit that registered one.
  bool disconnect(Connection &connection);
  // Disconnects whatever is still connected, in the order of definition.
  void disconnectAll();

  // Runs one ZKI call through the exits: the BEFORE functions, `execute`
  // (unless an exit skipped the call), the AFTER functions.
  void perform(Connection &connection, ApiCall &call, const std::function<void()> &execute);

  // Makes the callback calls that are due to the started consumers of the
  // connections this thread connected (cmd_async.cpp).
  void deliverPending(ScenarioContext &context);
  // Delivers to one connection until nothing is due; the number delivered.
  int deliver(Connection &connection, int limit = 100000);

  void showRegistrations(const Connection &connection);
  void showConnection(const Connection &connection);
  void showExits();

  // The connections, in the order in which they were defined.
  std::vector<Connection *> connections();

private:
  void logRegistrationSummary(const Connection &connection);
  void terminateExits(Connection &connection);
  void releaseExits(Connection &connection);
  bool initExits(Connection &connection, const ExitInstance *&failedBy);

  Log &log_;
  const ExitChain &chain_;
  std::string name_ = "ZKQM";
  Engine engine_;
  std::mutex mutex_; // guards connections_
  std::vector<std::unique_ptr<Connection>> connections_;
};

} // namespace zkqm
