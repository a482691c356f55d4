#include "scenario.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace zkqm {
namespace {

const CommandRow *findCommand(const std::string &name) {
  for (const CommandRow *row = kCommands; row->name != nullptr; ++row) {
    if (name == row->name) {
      return row;
    }
  }
  return nullptr;
}

} // namespace

bool splitWords(const std::string &line, std::vector<std::string> &words, std::string &text,
                std::string &error) {
  words.clear();
  std::string word;
  bool inWord = false;
  bool quoted = false;
  std::size_t end = line.size();
  for (std::size_t i = 0; i < line.size(); ++i) {
    char ch = line[i];
    if (quoted) {
      if (ch == '"') {
        quoted = false;
      } else {
        word += ch;
      }
    } else if (ch == '"') {
      quoted = true;
      inWord = true;
    } else if (ch == '#') {
      end = i;
      break;
    } else if (ch == ' ' || ch == '\t' || ch == '\r') {
      if (inWord) {
        words.push_back(word);
        word.clear();
        inWord = false;
      }
    } else {
      word += ch;
      inWord = true;
    }
  }
  if (quoted) {
    error = "a quote is not closed";
    return false;
  }
  if (inWord) {
    words.push_back(word);
  }
  text = line.substr(0, end);
  std::size_t b = text.find_first_not_of(" \t\r");
  std::size_t e = text.find_last_not_of(" \t\r");
  text = b == std::string::npos ? "" : text.substr(b, e - b + 1);
  return true;
}

bool parseScenario(const std::string &path, Scenario &scenario, std::string &error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot open scenario '" + path + "': " + std::strerror(errno);
    return false;
  }
  scenario.path = path;
  scenario.commands.clear();
  std::string raw;
  int lineNo = 0;
  while (std::getline(in, raw)) {
    ++lineNo;
    ScenarioCommand command;
    command.line = lineNo;
    std::string why;
    auto fail = [&](const std::string &message) {
      error = path + ":" + std::to_string(lineNo) + ": " + message;
      return false;
    };
    if (!splitWords(raw, command.words, command.text, why)) {
      return fail(why);
    }
    if (command.words.empty()) {
      continue;
    }
    command.row = findCommand(command.words[0]);
    if (command.row == nullptr) {
      return fail("unknown command '" + command.words[0] + "'");
    }
    int args = static_cast<int>(command.words.size()) - 1;
    if (args < command.row->minArgs || (command.row->maxArgs >= 0 && args > command.row->maxArgs)) {
      return fail(std::string("usage: ") + command.row->usage);
    }
    if (command.row->check != nullptr && !command.row->check(command, why)) {
      return fail(why);
    }
    scenario.commands.push_back(command);
  }
  return true;
}

bool runScenario(const Scenario &scenario, ScenarioContext &context) {
  for (const ScenarioCommand &command : scenario.commands) {
    context.log.line(">> %s", command.text.c_str());
    std::string error;
    if (!command.row->run(context, command, error)) {
      std::string where = scenario.path + ":" + std::to_string(command.line) + ": ";
      context.log.line("error: %s", error.c_str());
      reportError("%s%s", where.c_str(), error.c_str());
      return false;
    }
  }
  return true;
}

} // namespace zkqm
