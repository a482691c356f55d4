#include "scenario.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <strings.h>
#include <unistd.h>

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

namespace {

// "name.N" in a list of keys: the word is "name." and a record number.
bool numberedKey(const std::string &pattern, const std::string &word) {
  if (pattern.size() < 2 || pattern.compare(pattern.size() - 2, 2, ".N") != 0) {
    return false;
  }
  std::string stem = pattern.substr(0, pattern.size() - 1); // "name."
  if (word.size() <= stem.size() || word.compare(0, stem.size(), stem) != 0) {
    return false;
  }
  std::string digits = word.substr(stem.size());
  if (digits.size() > 6 || digits.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  return std::stoi(digits) >= 1;
}

// The structure that a key prefix names by its last part ("return.md": md).
const StructDef *prefixStruct(const std::string &prefix) {
  std::size_t dot = prefix.rfind('.');
  return findStruct(dot == std::string::npos ? prefix : prefix.substr(dot + 1));
}

// Tries a value on a scratch structure, so that a wrong value is reported
// when the file is read.
bool tryValue(const FieldDef &field, const StructDef &def, const std::string &value,
              std::string &error) {
  if (hasVariable(value)) {
    return true;
  }
  std::vector<unsigned char> scratch(def.size, 0);
  ByteResolver accept = [](const std::string &, std::vector<uint8_t> &) { return true; };
  return setFieldValue(field, scratch.data(), value, accept, error);
}

} // namespace

bool splitRecordWord(const std::string &word, const std::string &key, int &number,
                     std::string &field) {
  if (word.size() <= key.size() + 1 || word.compare(0, key.size(), key) != 0 ||
      word[key.size()] != '.') {
    return false;
  }
  std::string rest = word.substr(key.size() + 1);
  number = 0;
  std::size_t dot = rest.find('.');
  if (dot != std::string::npos && dot > 0 && rest.find_first_not_of("0123456789") == dot) {
    if (dot > 6) {
      return false;
    }
    number = std::stoi(rest.substr(0, dot));
    rest = rest.substr(dot + 1);
    if (number < 1) {
      // Record numbers count from 1: "rr.0.Reason" names no record.
      number = -1;
    }
  }
  field = rest;
  return !field.empty();
}

bool Args::checkKeys(const std::vector<std::string> &keys, const std::vector<std::string> &prefixes,
                     std::string &error, const std::vector<RecordKey> &records) const {
  for (const auto &kv : named_) {
    bool known = false;
    for (const std::string &k : keys) {
      if (kv.first == k || numberedKey(k, kv.first)) {
        known = true;
      }
    }
    for (const RecordKey &r : records) {
      int number = 0;
      std::string fieldName;
      if (known || !splitRecordWord(kv.first, r.key, number, fieldName)) {
        continue;
      }
      if (number < 0) {
        error = "'" + kv.first + "': records are counted from 1";
        return false;
      }
      const FieldDef *field = nullptr;
      const StructDef *def = nullptr;
      for (const std::string &name : r.structs) {
        def = findStruct(name);
        field = def != nullptr ? def->find(fieldName) : nullptr;
        if (field != nullptr) {
          break;
        }
      }
      if (field == nullptr) {
        std::string names;
        for (const std::string &name : r.structs) {
          names += (names.empty() ? "" : " or ") + name;
        }
        error = "'" + kv.first + "': " + names + " has no such field";
        return false;
      }
      if (!tryValue(*field, *def, kv.second, error)) {
        return false;
      }
      known = true;
    }
    for (const std::string &p : prefixes) {
      if (known || kv.first.size() <= p.size() + 1 || kv.first.compare(0, p.size(), p) != 0 ||
          kv.first[p.size()] != '.') {
        continue;
      }
      const StructDef *def = prefixStruct(p);
      const FieldDef *field = def != nullptr ? def->find(kv.first.substr(p.size() + 1)) : nullptr;
      if (field == nullptr) {
        error = "'" + kv.first + "': " + (def != nullptr ? def->name : p) + " has no such field";
        return false;
      }
      if (!tryValue(*field, *def, kv.second, error)) {
        return false;
      }
      known = true;
    }
    if (!known) {
      std::string list;
      for (const std::string &k : keys) {
        list += (list.empty() ? "" : ", ") + k;
      }
      for (const std::string &p : prefixes) {
        list += (list.empty() ? "" : ", ") + p + ".FIELD";
      }
      for (const RecordKey &r : records) {
        list += (list.empty() ? "" : ", ") + r.key + "[.N].FIELD";
      }
      error = "unknown key '" + kv.first + "'" + (list.empty() ? "" : " (" + list + ")");
      return false;
    }
  }
  return true;
}

bool Args::checkRecordCount(const std::string &key, int count, const std::string &what,
                            std::string &error) const {
  for (const auto &kv : named_) {
    int number = 0;
    std::string field;
    if (!splitRecordWord(kv.first, key, number, field)) {
      continue;
    }
    if (count <= 0) {
      error = "'" + kv.first + "': the call passes no " + what;
      return false;
    }
    if (number > count) {
      error = "'" + kv.first + "': the call passes " + std::to_string(count) + " " + what;
      return false;
    }
  }
  return true;
}

bool Args::applyRecordFields(const std::string &key, int number,
                             const std::vector<RecordTarget> &targets, const ByteResolver &resolver,
                             std::string &error) const {
  for (const auto &kv : named_) {
    int n = 0;
    std::string fieldName;
    if (!splitRecordWord(kv.first, key, n, fieldName) || (n != 0 && n != number)) {
      continue;
    }
    const RecordTarget *target = nullptr;
    const FieldDef *field = nullptr;
    for (const RecordTarget &t : targets) {
      field = t.def->find(fieldName);
      if (field != nullptr) {
        target = &t;
        break;
      }
    }
    if (field == nullptr) {
      error = "'" + kv.first + "': no such field in these records";
      return false;
    }
    if (field->offset + field->size > target->length) {
      if (n == 0) {
        continue;
      }
      error = "'" + kv.first + "': record " + std::to_string(number) + " (" +
              std::to_string(target->length) + " bytes) does not reach " + field->name;
      return false;
    }
    if (!setFieldValue(*field, target->record, kv.second, resolver, error)) {
      error = kv.first + ": " + error;
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
    if (kv.first.size() <= prefix.size() + 1 || kv.first.compare(0, prefix.size(), prefix) != 0 ||
        kv.first[prefix.size()] != '.') {
      continue;
    }
    if (!setNamedField(structure, def, kv.first, kv.first.substr(prefix.size() + 1), kv.second,
                       resolver, error)) {
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
  // A loop variable, else PID (the process running the line), else the
  // environment variable of that name, else nothing. The logged text takes
  // loop variables only, so that the log stays the same from run to run.
  auto replace = [&](std::string &s, bool loopVariablesOnly) {
    std::size_t start = 0;
    while ((start = s.find("${", start)) != std::string::npos) {
      std::size_t end = s.find('}', start);
      if (end == std::string::npos) {
        return;
      }
      std::string name = s.substr(start + 2, end - start - 2);
      auto it = context.vars.find(name);
      std::string value;
      if (it != context.vars.end()) {
        value = it->second;
      } else if (loopVariablesOnly) {
        start = end + 1;
        continue;
      } else if (name == "PID") {
        value = std::to_string(static_cast<long>(getpid()));
      } else if (const char *env = std::getenv(name.c_str())) {
        value = env;
      }
      s.replace(start, end - start + 1, value);
      start += value.size();
    }
  };
  for (std::string &w : out.words) {
    replace(w, false);
  }
  replace(out.text, true);
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
