#include "exit_chain.h"

#include <dlfcn.h>

namespace zkqm {

bool ExitChain::load(const std::vector<ExitDefinition> &definitions, std::string &error) {
  modules_.clear();
  for (const ExitDefinition &def : definitions) {
    ExitModule module;
    module.definition = def;
    std::size_t slash = def.module.rfind('/');
    module.moduleFileName = slash == std::string::npos ? def.module : def.module.substr(slash + 1);

    dlerror();
    module.handle = dlopen(def.module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module.handle == nullptr) {
      const char *why = dlerror();
      error = "cannot load module '" + def.module + "' of exit '" + def.name +
              "': " + (why != nullptr ? why : "unknown error");
      return false;
    }
    dlerror();
    void *symbol = dlsym(module.handle, def.function.c_str());
    const char *why = dlerror();
    if (symbol == nullptr || why != nullptr) {
      error = "exit '" + def.name + "': function '" + def.function + "' not found in module '" +
              def.module + "'" + (why != nullptr ? std::string(": ") + why : std::string());
      return false;
    }
    module.entry = reinterpret_cast<PZK_INIT_EXIT>(symbol);
    modules_.push_back(module);
  }
  return true;
}

} // namespace zkqm
