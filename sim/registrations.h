// The exit functions that one exit has registered for one connection through
// ZKXEP, and the texts the log shows for them.
#pragma once

#include <string>
#include <vector>

#include "zk/zkxc.h"

namespace zkqm {

struct Registration {
  int number = 0;        // number of the ZKXEP call within the connect
  ZKLONG exitReason = 0; // ZKXR_CONNECTION, ZKXR_BEFORE or ZKXR_AFTER
  ZKLONG function = 0;   // ZKXF_*
  PZKFUNC entry = nullptr;
  std::string options; // exit options as shown in the log, or empty
};

// At most one function per (exit reason, function); a later registration of
// the same pair replaces the earlier one.
class RegistrationTable {
public:
  void set(const Registration &registration);
  // Removes the function of the pair; false when there was none.
  bool remove(ZKLONG exitReason, ZKLONG function);
  const Registration *find(ZKLONG exitReason, ZKLONG function) const;
  // In the order in which the functions were (last) registered.
  const std::vector<Registration> &entries() const { return entries_; }
  std::size_t size() const { return entries_.size(); }
  void clear() { entries_.clear(); }

private:
  std::vector<Registration> entries_;
};

// True when the queue manager calls exits for this pair: INIT and TERM at
// CONNECTION; every ZKI call BEFORE and AFTER, except the data-conversion
// point of ZKGET, which has a BEFORE call only.
bool isSupportedRegistration(ZKLONG exitReason, ZKLONG function);

// The name of the symbol at an entry point (found with dladdr), else the
// module's file name and the offset.
std::string entryPointName(PZKFUNC entry);

// "opts XEPO v1 'ApiExit'": structure id, version, exit space when not zero
// and the exit property text.
std::string describeExitOptions(const ZKXEPO *options);

} // namespace zkqm
