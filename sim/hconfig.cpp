#include "hconfig.h"

#include <cstdint>
#include <map>
#include <mutex>

namespace zkqm {
namespace {

// Handles are numbers, not addresses: an exit must not use them for anything
// but ZKXEP, and a stale or made-up handle is recognised as such.
constexpr std::uintptr_t kFirstHandle = 0x48430001u;

std::mutex handleMutex;
std::map<std::uintptr_t, ExitInstance *> handles;
std::uintptr_t nextHandle = kFirstHandle;

} // namespace

ZKHCONFIG issueHconfig(ExitInstance &exit) {
  std::lock_guard<std::mutex> lock(handleMutex);
  std::uintptr_t value = nextHandle++;
  handles[value] = &exit;
  exit.hconfig = reinterpret_cast<ZKHCONFIG>(value);
  return exit.hconfig;
}

void withdrawHconfig(ExitInstance &exit) {
  std::lock_guard<std::mutex> lock(handleMutex);
  handles.erase(reinterpret_cast<std::uintptr_t>(exit.hconfig));
  exit.hconfig = nullptr;
}

ExitInstance *findHconfig(ZKHCONFIG hconfig) {
  std::lock_guard<std::mutex> lock(handleMutex);
  auto it = handles.find(reinterpret_cast<std::uintptr_t>(hconfig));
  return it == handles.end() ? nullptr : it->second;
}

} // namespace zkqm
