#include "ini.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <strings.h>

namespace zkqm {
namespace {

constexpr std::size_t kMaxName = 48;
constexpr std::size_t kMaxData = 32;

std::string trim(const std::string &s) {
  std::size_t b = s.find_first_not_of(" \t\r");
  if (b == std::string::npos) {
    return "";
  }
  std::size_t e = s.find_last_not_of(" \t\r");
  return s.substr(b, e - b + 1);
}

bool sameKey(const std::string &a, const char *b) {
  return strcasecmp(a.c_str(), b) == 0;
}

// Checks a finished stanza and adds it to the list.
bool finishStanza(const std::string &path, const ExitDefinition &def,
                  std::vector<ExitDefinition> &out, std::string &error) {
  const char *missing = def.name.empty()       ? "Name"
                        : def.function.empty() ? "Function"
                        : def.module.empty()   ? "Module"
                                               : nullptr;
  if (missing != nullptr) {
    error = path + ":" + std::to_string(def.line) + ": ApiExitLocal stanza has no " + missing;
    return false;
  }
  if (def.name.size() > kMaxName) {
    error = path + ":" + std::to_string(def.line) + ": exit name '" + def.name +
            "' is longer than 48 characters";
    return false;
  }
  if (def.data.size() > kMaxData) {
    error = path + ":" + std::to_string(def.line) + ": Data of exit '" + def.name +
            "' is longer than 32 characters";
    return false;
  }
  for (const ExitDefinition &other : out) {
    if (other.name == def.name) {
      error = path + ":" + std::to_string(def.line) + ": exit name '" + def.name +
              "' is already used at line " + std::to_string(other.line);
      return false;
    }
  }
  out.push_back(def);
  return true;
}

} // namespace

bool readQmIni(const std::string &path, QmIni &ini, std::string &error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot open configuration file '" + path + "': " + std::strerror(errno);
    return false;
  }
  ini.path = path;
  ini.apiExits.clear();

  enum class Stanza { None, ApiExitLocal, Other };
  Stanza stanza = Stanza::None;
  ExitDefinition current;
  std::string raw;
  int lineNo = 0;
  auto where = [&]() { return path + ":" + std::to_string(lineNo) + ": "; };

  while (std::getline(in, raw)) {
    ++lineNo;
    std::string text = trim(raw);
    if (text.empty() || text[0] == '#' || text[0] == ';') {
      continue;
    }
    bool indented = raw[0] == ' ' || raw[0] == '\t';
    if (!indented) {
      // A stanza header: "Name:" with nothing after the colon.
      if (text.back() != ':' || text.find('=') != std::string::npos) {
        error = where() + "expected a stanza header such as 'ApiExitLocal:', found '" + text + "'";
        return false;
      }
      if (stanza == Stanza::ApiExitLocal && !finishStanza(path, current, ini.apiExits, error)) {
        return false;
      }
      std::string name = trim(text.substr(0, text.size() - 1));
      stanza = name == "ApiExitLocal" ? Stanza::ApiExitLocal : Stanza::Other;
      current = ExitDefinition();
      current.line = lineNo;
      continue;
    }
    if (stanza == Stanza::None) {
      error = where() + "'" + text + "' stands before any stanza header";
      return false;
    }
    std::size_t eq = text.find('=');
    if (eq == std::string::npos) {
      error = where() + "expected Key=Value, found '" + text + "'";
      return false;
    }
    if (stanza == Stanza::Other) {
      continue;
    }
    std::string key = trim(text.substr(0, eq));
    std::string value = trim(text.substr(eq + 1));
    if (sameKey(key, "Name")) {
      current.name = value;
    } else if (sameKey(key, "Function")) {
      current.function = value;
    } else if (sameKey(key, "Module")) {
      current.module = value;
    } else if (sameKey(key, "Data")) {
      current.data = value;
    } else if (sameKey(key, "Sequence")) {
      char *end = nullptr;
      errno = 0;
      long n = std::strtol(value.c_str(), &end, 10);
      if (value.empty() || *end != '\0' || errno != 0 || n < 0 || n > 999999999) {
        error = where() + "Sequence must be a number, found '" + value + "'";
        return false;
      }
      current.sequence = static_cast<int>(n);
    } else {
      error = where() + "unknown key '" + key + "' in ApiExitLocal stanza";
      return false;
    }
  }
  if (stanza == Stanza::ApiExitLocal && !finishStanza(path, current, ini.apiExits, error)) {
    return false;
  }
  std::stable_sort(
      ini.apiExits.begin(), ini.apiExits.end(),
      [](const ExitDefinition &a, const ExitDefinition &b) { return a.sequence < b.sequence; });
  return true;
}

} // namespace zkqm
