// The API exits of the configuration, loaded once per process in chain order.
#pragma once

#include <string>
#include <vector>

#include "ini.h"
#include "zk/zkxc.h"

namespace zkqm {

// One loaded exit: its definition, the module and the resolved entry function.
struct ExitModule {
  ExitDefinition definition;
  std::string moduleFileName; // last component of the module path, for the log
  void *handle = nullptr;
  PZK_INIT_EXIT entry = nullptr;
};

class ExitChain {
public:
  // Loads every module with dlopen and resolves its entry function. Stops at
  // the first failure, with `error` naming the exit, the module and the cause.
  bool load(const std::vector<ExitDefinition> &definitions, std::string &error);

  const std::vector<ExitModule> &modules() const { return modules_; }
  bool empty() const { return modules_.empty(); }

  // Modules stay loaded until the process ends: an exit may have left
  // functions registered or areas allocated that outlive a connection.

private:
  std::vector<ExitModule> modules_;
};

} // namespace zkqm
