// Scenario files: one command per line, words separated by blanks, double
// quotes around a word (or a value) that holds blanks, '#' to the end of the
// line is a comment. The commands are in scenario_commands.cpp.
#pragma once

#include <string>
#include <vector>

#include "log.h"
#include "qmgr.h"

namespace zkqm {

struct CommandRow;

struct ScenarioCommand {
  int line = 0;
  std::string text;               // the line without its comment, for the log
  std::vector<std::string> words; // words[0] is the command name
  const CommandRow *row = nullptr;
};

struct Scenario {
  std::string path;
  std::vector<ScenarioCommand> commands;
};

// What the commands work on while a scenario runs.
struct ScenarioContext {
  QueueManager &qmgr;
  Log &log;
  const Scenario &scenario;
  int failedExpectations = 0;
};

// Reads and checks the whole file before anything runs: an unknown command,
// a wrong number of words or a bad value is reported with its line.
bool parseScenario(const std::string &path, Scenario &scenario, std::string &error);

// Splits one line into words; false (with `error`) for an unclosed quote.
bool splitWords(const std::string &line, std::vector<std::string> &words, std::string &text,
                std::string &error);

// Runs the commands in order. Returns false when a command could not be
// carried out (the error is reported); failed expectations are counted in
// the context and do not stop the run.
bool runScenario(const Scenario &scenario, ScenarioContext &context);

// The table of commands, ending with a row whose name is null.
struct CommandRow {
  const char *name;
  int minArgs; // words after the command name
  int maxArgs; // -1: no limit
  const char *usage;
  // Checks the words when the file is read; null when the counts suffice.
  bool (*check)(const ScenarioCommand &command, std::string &error);
  // Carries the command out; false when it cannot (with `error`).
  bool (*run)(ScenarioContext &context, const ScenarioCommand &command, std::string &error);
};
extern const CommandRow kCommands[];

} // namespace zkqm
