// One application connection to the queue manager and the state that the
// exits of the chain keep for it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "exit_chain.h"
#include "registrations.h"
#include "zk/zkxc.h"

namespace zkqm {

struct Connection;

// What the queue manager keeps for one exit of the chain on one connection:
// its configuration handle, the areas handed back to it on every call and the
// functions it registered.
struct ExitInstance {
  const ExitModule *module = nullptr;
  Connection *connection = nullptr;
  ZKHCONFIG hconfig = nullptr;
  ZKBYTE16 userArea = {};
  ZKBYTE48 pdArea = {};
  // The exit chain area pointer: each exit of the chain has its own, kept
  // from call to call for the whole connection.
  ZKPTR chainArea = nullptr;
  RegistrationTable functions;
  bool initCalled = false; // the entry function has been called at connect
  bool suppressed = false; // the exit answered SUPPRESS_EXIT: not called again

  const std::string &name() const { return module->definition.name; }
};

// The application's side of a connection, as the scenario describes it.
struct ApplicationIdentity {
  std::string applName = "zkqm";
  ZKLONG applType = ZKAT_UNIX;
  std::string userId = "zkqm";
  ZKLONG axpVersion = ZKAXP_VERSION_2;
  ZKLONG environment = ZKXE_OTHER;
  std::string connectionName;
  std::string channelName;
  ZKLONG callerType = ZKXACT_EXTERNAL;
  ZKLONG threadId = 1;
};

enum class ConnectionState { Defined, Connected, ConnectFailed, Disconnected };
const char *stateName(ConnectionState state);

// ZKXEP calls of the connect in progress or last finished.
struct RegistrationCounts {
  int calls = 0;
  int failed = 0;
  int deregistrations = 0;
};

struct Connection {
  std::string name;
  ApplicationIdentity identity;
  ConnectionState state = ConnectionState::Defined;
  std::string qmgrName; // of the current connect
  ZKHCONN hconn = 0;
  ZKLONG lastCompCode = ZKCC_OK; // of the last connect or disconnect
  ZKLONG lastReason = 0;

  std::vector<std::unique_ptr<ExitInstance>> exits; // in chain order

  // ZKXEP call number (counted from the start of each connect) -> Reason
  // with which that call is to fail.
  std::map<int, ZKLONG> failRegistration;
  RegistrationCounts counts;

  // The application's side: its object handles by the names the scenario
  // gave them, and what the last call returned, for 'expect' and 'show'.
  std::map<std::string, ZKHOBJ> handles;
  std::map<std::string, int> listSizes; // destinations of a distribution-list handle
  std::string lastCall;                 // "ZKPUT", ...
  std::map<std::string, std::vector<unsigned char>> lastStructs; // "md" -> the ZKMD
  std::vector<unsigned char> lastData;                           // data a get returned
  ZKLONG lastDataLength = 0;
  std::vector<ZKLONG> lastIntAttrs;
  std::string lastCharAttrs;
  ZKLONG lastXaReturn = 0;
  ZKLONG lastHobj = 0;
  int delivered = 0;     // callback calls made to this connection's consumers
  // A transaction-manager call to be made inside the connection's next ZKI
  // call, between the exits' before and after functions ('during').
  std::function<void()> insideNextCall;
  std::thread::id owner; // the scenario thread that connected it
  int ownerPid = 0;      // and its process

  // The log names the exit on each registration line only when there is a
  // choice.
  bool severalExits() const { return exits.size() > 1; }
  std::size_t functionsInForce() const;

  // The exit context structure for a call of this connection.
  void fillContext(ZKAXC &axc) const;
  // Keeps a copy of a structure as the application has it after a call.
  void keep(const std::string &key, const void *structure, std::size_t length);
};

} // namespace zkqm
