// The queue manager's configuration file, qm.ini style: stanzas opened by a
// line "Name:" at the left margin, followed by indented "Key=Value" lines.
// Only the ApiExitLocal stanzas matter here; other stanzas are skipped.
#pragma once

#include <string>
#include <vector>

namespace zkqm {

// One ApiExitLocal stanza.
struct ExitDefinition {
  std::string name;     // Name: the exit's information name (at most 48)
  std::string function; // Function: the entry function in the module
  std::string module;   // Module: path of the shared library
  std::string data;     // Data: the exit data (at most 32)
  int sequence = 0;     // Sequence: position in the chain, lowest first
  int line = 0;         // line of the stanza header, for messages
};

struct QmIni {
  std::string path;
  // In chain order: by Sequence, stanzas of equal Sequence in file order.
  std::vector<ExitDefinition> apiExits;
};

// Reads `path`. On failure `error` says where and why.
bool readQmIni(const std::string &path, QmIni &ini, std::string &error);

} // namespace zkqm
