#include "scenario.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <strings.h>

#include "constants.h"

namespace zkqm {
namespace {

const CommandRow *findCommand(const CommandRow *table, const std::string &name) {
  for (const CommandRow *row = table; row->name != nullptr; ++row) {
    if (name == row->name) {
      return row;
    }
  }
  return nullptr;
}

struct Parser {
  std::ifstream in;
  std::string path;
  int lineNo = 0;

  bool fail(std::string &error, const std::string &message) {
    error = path + ":" + std::to_string(lineNo) + ": " + message;
    return false;
  }

  // Reads commands up to the end of the file (depth 0) or to the '}' that
  // closes the block being read; `closed` tells which ended it.
  bool read(const CommandRow *table, int depth, std::vector<ScenarioCommand> &out,
            std::string &error, bool &closed) {
    closed = false;
    std::string raw;
    while (std::getline(in, raw)) {
      ++lineNo;
      ScenarioCommand command;
      command.line = lineNo;
      std::string why;
      if (!splitWords(raw, command.words, command.quoted, command.text, why)) {
        return fail(error, why);
      }
      if (command.words.empty()) {
        continue;
      }
      if (command.words.size() == 1 && command.words[0] == "}" && !command.quoted[0]) {
        if (depth == 0) {
          return fail(error, "'}' closes no block");
        }
        closed = true;
        return true;
      }
      bool opens = command.words.back() == "{" && !command.quoted.back();
      if (opens) {
        command.words.pop_back();
        command.quoted.pop_back();
        if (command.words.empty()) {
          return fail(error, "a block needs a command in front of its '{'");
        }
      }
      command.row = findCommand(table, command.words[0]);
      if (command.row == nullptr) {
        return fail(error, "unknown command '" + command.words[0] + "'");
      }
      if (command.row->block != opens) {
        return fail(error, command.row->block
                               ? "'" + command.words[0] + "' takes a block: end the line with '{'"
                               : "'" + command.words[0] + "' takes no block");
      }
      int args = static_cast<int>(command.words.size()) - 1;
      if (args < command.row->minArgs ||
          (command.row->maxArgs >= 0 && args > command.row->maxArgs)) {
        return fail(error, std::string("usage: ") + command.row->usage);
      }
      int line = lineNo;
      if (opens) {
        const CommandRow *inner =
            command.row->childTable != nullptr ? command.row->childTable : table;
        bool innerClosed = false;
        if (!read(inner, depth + 1, command.children, error, innerClosed)) {
          return false;
        }
        if (!innerClosed) {
          lineNo = line;
          return fail(error, "the block opened here is not closed with '}'");
        }
      }
      if (command.row->check != nullptr && !command.row->check(command, why)) {
        lineNo = line;
        return fail(error, why);
      }
      out.push_back(std::move(command));
    }
    return true;
  }
};

// Sets the field of a "word=value" argument; false with `error` when the
// structure has no such field or the field does not take the value.
bool setNamedField(void *structure, const StructDef &def, const std::string &word,
                   const std::string &fieldName, const std::string &value,
                   const ByteResolver &resolver, std::string &error) {
  const FieldDef *field = def.find(fieldName);
  if (field == nullptr) {
    error = "'" + word + "': " + def.name + " has no such field";
    return false;
  }
  return setFieldValue(*field, structure, value, resolver, error);
}

} // namespace

bool splitWords(const std::string &line, std::vector<std::string> &words, std::vector<bool> &quoted,
                std::string &text, std::string &error) {
  words.clear();
  quoted.clear();
  std::string word;
  bool inWord = false;
  bool inQuotes = false;
  bool startedQuoted = false;
  std::size_t end = line.size();
  for (std::size_t i = 0; i < line.size(); ++i) {
    char ch = line[i];
    if (inQuotes) {
      if (ch == '"') {
        inQuotes = false;
      } else {
        word += ch;
      }
    } else if (ch == '"') {
      if (!inWord) {
        startedQuoted = true;
      }
      inQuotes = true;
      inWord = true;
    } else if (ch == '#' && !inWord) {
      // A comment starts with a '#' that begins a word; inside a word
      // ("sports/#") it is an ordinary character.
      end = i;
      break;
    } else if (ch == ' ' || ch == '\t' || ch == '\r') {
      if (inWord) {
        words.push_back(word);
        quoted.push_back(startedQuoted);
        word.clear();
        inWord = false;
        startedQuoted = false;
      }
    } else {
      word += ch;
      inWord = true;
    }
  }
  if (inQuotes) {
    error = "a quote is not closed";
    return false;
  }
  if (inWord) {
    words.push_back(word);
    quoted.push_back(startedQuoted);
  }
  text = line.substr(0, end);
  std::size_t b = text.find_first_not_of(" \t\r");
  std::size_t e = text.find_last_not_of(" \t\r");
  text = b == std::string::npos ? "" : text.substr(b, e - b + 1);
  return true;
}

bool parseScenario(const std::string &path, Scenario &scenario, std::string &error) {
  Parser parser;
  parser.in.open(path);
  if (!parser.in) {
    error = "cannot open scenario '" + path + "': " + std::strerror(errno);
    return false;
  }
  parser.path = path;
  scenario.path = path;
  std::size_t slash = path.rfind('/');
  scenario.directory = slash == std::string::npos ? "." : path.substr(0, slash);
  scenario.commands.clear();
  error.clear();
  std::vector<ScenarioCommand> commands;
  bool closed = false;
  if (!parser.read(kCommands, 0, commands, error, closed)) {
    return false;
  }
  scenario.commands = std::move(commands);
  return true;
}

// ---- Args -----------------------------------------------------------------------

Args::Args(const ScenarioCommand &command, std::size_t from) {
  for (std::size_t i = from; i < command.words.size(); ++i) {
    const std::string &w = command.words[i];
    std::size_t eq = w.find('=');
    if (command.quoted[i] || eq == std::string::npos || eq == 0) {
      positional_.push_back(w);
    } else {
      named_.emplace_back(w.substr(0, eq), w.substr(eq + 1));
    }
  }
}

bool Args::has(const std::string &key) const {
  for (const auto &kv : named_) {
    if (kv.first == key) {
      return true;
    }
  }
  return false;
}

std::string Args::get(const std::string &key, const std::string &fallback) const {
  std::string value = fallback;
  for (const auto &kv : named_) {
    if (kv.first == key) {
      value = kv.second;
    }
  }
  return value;
}

std::vector<std::string> Args::all(const std::string &key) const {
  std::vector<std::string> out;
  for (const auto &kv : named_) {
    if (kv.first == key) {
      out.push_back(kv.second);
    }
  }
  return out;
}

bool Args::checkKeys(const std::vector<std::string> &keys, const std::vector<std::string> &prefixes,
                     std::string &error) const {
  for (const auto &kv : named_) {
    bool known = false;
    for (const std::string &k : keys) {
      if (kv.first == k) {
        known = true;
      }
    }
    std::size_t dot = kv.first.find('.');
    if (!known && dot != std::string::npos) {
      std::string prefix = kv.first.substr(0, dot);
      for (const std::string &p : prefixes) {
        if (p != prefix) {
          continue;
        }
        const StructDef *def = findStruct(p);
        const FieldDef *field = def != nullptr ? def->find(kv.first.substr(dot + 1)) : nullptr;
        if (field == nullptr) {
          error = "'" + kv.first + "': " + (def != nullptr ? def->name : p) + " has no such field";
          return false;
        }
        if (!hasVariable(kv.second)) {
          // Try the value on a scratch structure.
          std::vector<unsigned char> scratch(def->size, 0);
          ByteResolver accept = [](const std::string &, std::vector<uint8_t> &) { return true; };
          std::string why;
          if (!setFieldValue(*field, scratch.data(), kv.second, accept, why)) {
            error = why;
            return false;
          }
        }
        known = true;
      }
    }
    if (!known) {
      std::string list;
      for (const std::string &k : keys) {
        list += (list.empty() ? "" : ", ") + k;
      }
      for (const std::string &p : prefixes) {
        list += (list.empty() ? "" : ", ") + p + ".FIELD";
      }
      error = "unknown key '" + kv.first + "'" + (list.empty() ? "" : " (" + list + ")");
      return false;
    }
  }
  return true;
}

bool Args::checkValues(const std::vector<std::pair<std::string, std::string>> &keyPrefixes,
                       std::string &error) const {
  for (const auto &kp : keyPrefixes) {
    for (const std::string &value : all(kp.first)) {
      ZKLONG n = 0;
      if (!hasVariable(value) && !parseValue(value, kp.second, n, error)) {
        error = kp.first + "=" + value + ": " + error;
        return false;
      }
    }
  }
  return true;
}

bool Args::applyFields(const std::string &prefix, void *structure, const StructDef &def,
                       const ByteResolver &resolver, std::string &error) const {
  for (const auto &kv : named_) {
    std::size_t dot = kv.first.find('.');
    if (dot == std::string::npos || kv.first.substr(0, dot) != prefix) {
      continue;
    }
    if (!setNamedField(structure, def, kv.first, kv.first.substr(dot + 1), kv.second, resolver,
                       error)) {
      return false;
    }
  }
  return true;
}

bool Args::applyBareFields(void *structure, const StructDef &def,
                           const std::vector<std::string> &skip, const ByteResolver &resolver,
                           std::string &error) const {
  for (const auto &kv : named_) {
    bool skipped = false;
    for (const std::string &s : skip) {
      if (s == kv.first) {
        skipped = true;
      }
    }
    if (skipped) {
      continue;
    }
    if (!setNamedField(structure, def, kv.first, kv.first, kv.second, resolver, error)) {
      return false;
    }
  }
  return true;
}

bool parseValue(const std::string &text, const std::string &prefix, ZKLONG &value,
                std::string &error) {
  return parseLong(text, prefix, value, error);
}

bool hasVariable(const std::string &text) {
  return text.find("${") != std::string::npos;
}

ScenarioCommand substitute(const ScenarioCommand &command, const ScenarioContext &context) {
  ScenarioCommand out = command;
  auto replace = [&](std::string &s) {
    std::size_t start = 0;
    while ((start = s.find("${", start)) != std::string::npos) {
      std::size_t end = s.find('}', start);
      if (end == std::string::npos) {
        return;
      }
      std::string name = s.substr(start + 2, end - start - 2);
      auto it = context.vars.find(name);
      std::string value = it != context.vars.end() ? it->second : "";
      s.replace(start, end - start + 1, value);
      start += value.size();
    }
  };
  for (std::string &w : out.words) {
    replace(w);
  }
  replace(out.text);
  return out;
}

ScenarioCommand substituteAll(const ScenarioCommand &command, const ScenarioContext &context) {
  ScenarioCommand out = substitute(command, context);
  for (ScenarioCommand &child : out.children) {
    child = substituteAll(child, context);
  }
  return out;
}

bool ScenarioContext::resolveSaved(const std::string &ref, std::vector<uint8_t> &bytes) {
  std::string name = ref;
  bool correl = false;
  std::size_t dot = ref.rfind('.');
  if (dot != std::string::npos && ref.substr(dot + 1) == "correl") {
    name = ref.substr(0, dot);
    correl = true;
  }
  std::lock_guard<std::mutex> lock(shared.mutex);
  auto it = shared.saved.find(name);
  if (it == shared.saved.end()) {
    return false;
  }
  bytes = correl ? it->second.second : it->second.first;
  return true;
}

// ---- running -----------------------------------------------------------------------

bool runCommands(const std::vector<ScenarioCommand> &commands, ScenarioContext &context) {
  for (const ScenarioCommand &original : commands) {
    ScenarioCommand command = substitute(original, context);
    context.log.line(">> %s", command.text.c_str());
    std::string error;
    if (!command.row->run(context, command, error)) {
      std::string where = context.scenario.path + ":" + std::to_string(command.line) + ": ";
      context.log.always("error: %s", error.c_str());
      reportError("%s%s", where.c_str(), error.c_str());
      return false;
    }
    context.qmgr.deliverPending(context);
  }
  return true;
}

} // namespace zkqm
