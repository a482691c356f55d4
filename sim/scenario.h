// Scenario files: one command per line, words separated by blanks, double
// quotes around a word (or a value) that holds blanks, a '#' that begins a
// word starts a comment to the end of the line. A line that ends with '{' opens a block of lines
// that a line '}' closes (loops, threads, processes, message definitions). The commands are in the
// cmd_*.cpp files.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine.h"
#include "log.h"
#include "qmgr.h"

namespace zkqm {

struct CommandRow;

struct ScenarioCommand {
  int line = 0;
  std::string text;               // the line without its comment, for the log
  std::vector<std::string> words; // words[0] is the command name
  std::vector<bool> quoted;       // the word began with a double quote
  const CommandRow *row = nullptr;
  std::vector<ScenarioCommand> children; // the block, when the line opened one
};

struct Scenario {
  std::string path;
  std::string directory; // for files that scenario lines name
  std::vector<ScenarioCommand> commands;
};

// A message built by a 'message' block: the descriptor fields it sets and
// the bytes of its data.
struct BuiltMessage {
  std::vector<std::pair<std::string, std::string>> mdFields; // "Format" -> "ZKSTR"
  std::vector<unsigned char> data;
};

// What all threads and commands of one process share.
struct SharedState {
  std::mutex mutex;
  std::map<std::string, BuiltMessage> messages;
  std::map<std::string, XidValue> xids;
  std::map<std::string, std::pair<std::vector<uint8_t>, std::vector<uint8_t>>> saved; // ids
  std::atomic<int> failedExpectations{0};
  std::atomic<int> childParameterErrors{0}; // processes that ended with parameter errors
  std::atomic<int> nextThreadId{2};
};

// What the commands work on while a scenario runs; each thread of the
// scenario has its own, with its own loop variables.
struct ScenarioContext {
  QueueManager &qmgr;
  Log &log;
  const Scenario &scenario;
  SharedState &shared;
  std::map<std::string, std::string> vars;
  ZKLONG defaultThreadId = 1;
  // Calls made and failed, for the summary of a quiet loop.
  long calls = 0;
  long failedCalls = 0;

  // Resolves "@name" (a saved message id) and "@name.correl" (its
  // correlation id) for byte fields.
  bool resolveSaved(const std::string &ref, std::vector<uint8_t> &bytes);
};

// Reads and checks the whole file before anything runs: an unknown command,
// a wrong number of words or a bad value is reported with its line.
bool parseScenario(const std::string &path, Scenario &scenario, std::string &error);

// Splits one line into words; false (with `error`) for an unclosed quote.
bool splitWords(const std::string &line, std::vector<std::string> &words, std::vector<bool> &quoted,
                std::string &text, std::string &error);

// Runs commands in order. Returns false when a command could not be carried
// out (the error is reported); failed expectations are counted and do not
// stop the run. After each command the connections of this thread that are
// started get their callbacks.
bool runCommands(const std::vector<ScenarioCommand> &commands, ScenarioContext &context);

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
  bool block = false;                     // the command takes a block
  const CommandRow *childTable = nullptr; // the block's commands (null: this table)
};
extern const CommandRow kCommands[];
extern const CommandRow kMessageParts[];
extern const CommandRow kPcfParameters[];

// ---- helpers for the commands --------------------------------------------------

// Records that a call passes several of (response records, object records,
// put-message records, authentication records) take their fields by a key of
// their own: "KEY.Field=value" sets the field in every record,
// "KEY.N.Field=value" in record N (counted from 1). The field is looked up
// in `structs` in order: the put-message records and their response records
// share one key.
struct RecordKey {
  std::string key;                  // "rr"
  std::vector<std::string> structs; // "ZKRR"
};

// One record that a record key's words are set into, and the bytes of it
// that exist (a version-1 record is shorter than the structure).
struct RecordTarget {
  const StructDef *def = nullptr;
  void *record = nullptr;
  uint32_t length = 0;
};

// Splits a word of a record key: "rr.2.Reason" of key "rr" gives record 2
// and field "Reason", "rr.Reason" record 0 (every record). False when the
// word is not of that key.
bool splitRecordWord(const std::string &word, const std::string &key, int &number,
                     std::string &field);

// The key=value words of a command after its positional words.
class Args {
public:
  // Words from `from` on: "key=value" words are named, the others (and
  // every word that began with a quote) positional.
  Args(const ScenarioCommand &command, std::size_t from);

  const std::vector<std::string> &positional() const { return positional_; }
  bool has(const std::string &key) const;
  // The last value of a key, or `fallback`.
  std::string get(const std::string &key, const std::string &fallback = "") const;
  std::vector<std::string> all(const std::string &key) const;
  // Every named word must be one of `keys`, "prefix.Field" of one of the
  // structures `prefixes`, or a field of the records of one of `records`.
  // A prefix names its structure by its last part: "md" and "return.md"
  // both the ZKMD. A key "name.N" stands for "name.1", "name.2" ...
  bool checkKeys(const std::vector<std::string> &keys, const std::vector<std::string> &prefixes,
                 std::string &error, const std::vector<RecordKey> &records = {}) const;
  // Each of the keys given (with the constant prefixes its values take)
  // that is present must hold a number or constants.
  bool checkValues(const std::vector<std::pair<std::string, std::string>> &keyPrefixes,
                   std::string &error) const;
  // Sets the "prefix.Field=value" words into a structure.
  bool applyFields(const std::string &prefix, void *structure, const StructDef &def,
                   const ByteResolver &resolver, std::string &error) const;
  // A call that passes `count` records of the key: false with `error` when a
  // word names a record beyond them (or any record when there are none).
  bool checkRecordCount(const std::string &key, int count, const std::string &what,
                        std::string &error) const;
  // Sets the words of a record key that apply to record `number` (from 1):
  // each field into the first of `targets` whose structure has it. A field
  // beyond the bytes that the record has is left out when the word is for
  // every record, and an error when it names this record.
  bool applyRecordFields(const std::string &key, int number,
                         const std::vector<RecordTarget> &targets, const ByteResolver &resolver,
                         std::string &error) const;
  // The same with the field names of a header given bare ("Reason=2053").
  bool applyBareFields(void *structure, const StructDef &def, const std::vector<std::string> &skip,
                       const ByteResolver &resolver, std::string &error) const;

  const std::vector<std::pair<std::string, std::string>> &named() const { return named_; }

private:
  std::vector<std::string> positional_;
  std::vector<std::pair<std::string, std::string>> named_;
};

// A number (or constants joined with '+') from scenario text.
bool parseValue(const std::string &text, const std::string &prefix, ZKLONG &value,
                std::string &error);
// True when the text still holds a ${variable}: it is checked when it runs.
bool hasVariable(const std::string &text);
// The command with every ${name} replaced by the variable's value; the
// second form also in the commands of its block, at every depth.
ScenarioCommand substitute(const ScenarioCommand &command, const ScenarioContext &context);
ScenarioCommand substituteAll(const ScenarioCommand &command, const ScenarioContext &context);

} // namespace zkqm
