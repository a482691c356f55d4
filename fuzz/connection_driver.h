// The queue manager's side of one connection, for the connection fuzz
// target: the registration call ZKXEP, the exit's ZKAXP and ZKAXC, and
// calls of the registered functions in which every parameter the function
// can reach is copied before the call and compared after it (zkqm's
// parameter check). Any parameter the exit changed that is not its own
// stops the process with the field named.
//
// Also a stand-in for popen and pclose in this process: the parameter file
// comes from the fuzz input, and a command in it (CompressCommand) must
// never reach a shell. A command for reading gets a fixed text (or the one
// set with SetCommandOutput), a command for writing gets /dev/null.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "param_check.h"
#include "zk/zk.h"
#include "zk/zkxfunc.h"

struct DriverRegistration {
  ZKLONG ExitReason;
  ZKLONG Function;
  PZKFUNC Entry;
};

class ConnectionDriver {
public:
  // A connection of an application with exit data `exitData` (at most 32
  // characters) and this ZKAXP version.
  ConnectionDriver(const std::string &exitData, const std::string &applName, ZKLONG axpVersion);
  ~ConnectionDriver();

  // Calls the entry function for ZKXF_INIT; its ExitResponse.
  ZKLONG Start(PZK_INIT_EXIT entry);
  // The registered function, or null.
  PZKFUNC Find(ZKLONG exitReason, ZKLONG function) const;
  // Calls the function registered for exitReason and function, if any, with
  // `invoke`; `describe` adds the call's own parameters to the check. False
  // when nothing was registered.
  bool Call(ZKLONG exitReason, ZKLONG function, const char *name,
            const std::function<void(PZKFUNC, PZKAXP, PZKAXC)> &invoke,
            const std::function<void(zkqm::ParamSnapshot &)> &describe);
  // Calls the TERM function, if registered.
  bool Terminate();

  ZKPTR ChainArea() const { return chainArea_; }
  const std::vector<DriverRegistration> &Registrations() const { return registrations_; }
  // The registration call's record: the driver of the connection in progress.
  void Register(ZKHCONFIG hconfig, ZKLONG exitReason, ZKLONG function, PZKFUNC entry,
                PZKXEPO options, PZKLONG compCode, PZKLONG reason);

private:
  // Calls a connection-time function (INIT or TERM) with fresh exit
  // parameters, checks what it changed and takes back what it may set;
  // returns its exit response.
  ZKLONG CallForConnection(ZKLONG function, PZK_INIT_EXIT entry, const char *what);
  void Fill(ZKAXP &axp, ZKLONG exitReason, ZKLONG function) const;
  void FillContext(ZKAXC &axc) const;
  void TakeBack(const ZKAXP &axp);
  void Check(const zkqm::ParamSnapshot &snapshot, const char *what) const;

  std::string exitData_;
  std::string applName_;
  ZKLONG axpVersion_;
  ZKBYTE userArea_[16];
  ZKBYTE pdArea_[48];
  ZKPTR chainArea_ = nullptr;
  char hconfig_ = 0; // its address is the configuration handle
  std::vector<DriverRegistration> registrations_;
};

// What the next popen for reading delivers (empty: the fixed text).
void SetCommandOutput(const std::string &text);
// Commands popen was asked to run since the last call; cleared.
std::vector<std::string> TakeCommands();
// popen streams not yet closed.
int OpenCommandStreams();
