#include "registrations.h"

#include <cstdio>
#include <dlfcn.h>

#include "names.h"

namespace zkqm {
namespace {

constexpr int kMaxPropertyShown = 100;

std::string printable(const char *text, int length) {
  std::string out;
  for (int i = 0; i < length; ++i) {
    unsigned char ch = static_cast<unsigned char>(text[i]);
    out += (ch >= 0x20 && ch < 0x7f) ? static_cast<char>(ch) : '.';
  }
  return out;
}

} // namespace

void RegistrationTable::set(const Registration &registration) {
  remove(registration.exitReason, registration.function);
  entries_.push_back(registration);
}

bool RegistrationTable::remove(ZKLONG exitReason, ZKLONG function) {
  for (auto it = entries_.begin(); it != entries_.end(); ++it) {
    if (it->exitReason == exitReason && it->function == function) {
      entries_.erase(it);
      return true;
    }
  }
  return false;
}

const Registration *RegistrationTable::find(ZKLONG exitReason, ZKLONG function) const {
  for (const Registration &r : entries_) {
    if (r.exitReason == exitReason && r.function == function) {
      return &r;
    }
  }
  return nullptr;
}

bool isSupportedRegistration(ZKLONG exitReason, ZKLONG function) {
  switch (exitReason) {
  case ZKXR_CONNECTION:
    return function == ZKXF_INIT || function == ZKXF_TERM;
  case ZKXR_BEFORE:
    return isKnownFunction(function) && function != ZKXF_INIT && function != ZKXF_TERM;
  case ZKXR_AFTER:
    return isKnownFunction(function) && function != ZKXF_INIT && function != ZKXF_TERM &&
           function != ZKXF_DATA_CONV_ON_GET;
  default:
    return false;
  }
}

std::string entryPointName(PZKFUNC entry) {
  if (entry == nullptr) {
    return "(null)";
  }
  void *address = reinterpret_cast<void *>(entry);
  Dl_info info;
  if (dladdr(address, &info) == 0) {
    return "(address outside any module)";
  }
  if (info.dli_sname != nullptr && info.dli_saddr == address) {
    return info.dli_sname;
  }
  std::string file = info.dli_fname != nullptr ? info.dli_fname : "?";
  std::size_t slash = file.rfind('/');
  if (slash != std::string::npos) {
    file.erase(0, slash + 1);
  }
  char offset[32];
  std::snprintf(offset, sizeof offset, "+0x%lx",
                static_cast<unsigned long>(static_cast<char *>(address) -
                                           static_cast<char *>(info.dli_fbase)));
  return file + offset;
}

std::string describeExitOptions(const ZKXEPO *options) {
  std::string text =
      "opts " + printable(options->StrucId, 4) + " v" + std::to_string(options->Version);
  if (options->ExitSpace != 0) {
    text += " space " + std::to_string(options->ExitSpace);
  }
  const ZKCHARV &property = options->ExitProperties;
  const char *chars = nullptr;
  if (property.VSPtr != nullptr) {
    chars = static_cast<const char *>(property.VSPtr);
  } else if (property.VSOffset > 0) {
    chars = reinterpret_cast<const char *>(options) + property.VSOffset;
  }
  int length = property.VSLength;
  if (length <= 0 || chars == nullptr) {
    return text + " ''";
  }
  bool cut = length > kMaxPropertyShown;
  return text + " '" + printable(chars, cut ? kMaxPropertyShown : length) + (cut ? "'..." : "'");
}

} // namespace zkqm
