// Blocks: 'repeat' loops, 'thread' and 'process' blocks, and 'parallel',
// which runs the threads and processes it holds at the same time.
//
// The log stays deterministic: a thread's lines are captured and written
// when it has ended, a process writes its lines into a file of its own that
// the parent appends when the process has ended, in the order of the
// blocks in the file.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "commands.h"

namespace zkqm {
namespace {

thread_local bool tScenarioThread = false;

struct Started {
  const ScenarioCommand *command = nullptr;
  bool isProcess = false;
  // A thread.
  std::thread thread;
  std::vector<std::string> lines;
  bool ok = true;
  long calls = 0;
  long failedCalls = 0;
  // A process.
  pid_t pid = -1;
  std::string logFile;
};

// The exit status of a process block's process.
constexpr int kProcessOk = 0;
constexpr int kProcessExpectationFailed = 1;
constexpr int kProcessError = 2;
constexpr int kProcessParameterError = 4;

unsigned processCounter = 0;

void startThread(ScenarioContext &context, const ScenarioCommand &command, Started &s) {
  s.command = &command;
  ZKLONG threadId = context.shared.nextThreadId++;
  std::map<std::string, std::string> vars = context.vars;
  s.thread = std::thread([&context, &command, &s, threadId, vars]() {
    tScenarioThread = true;
    Engine::setThreadStream(static_cast<unsigned>(threadId));
    Log::captureThread(&s.lines);
    ScenarioContext child{context.qmgr,   context.log, context.scenario,
                          context.shared, vars,        threadId};
    s.ok = runCommands(command.children, child);
    s.calls = child.calls;
    s.failedCalls = child.failedCalls;
    Log::captureThread(nullptr);
  });
}

bool startProcess(ScenarioContext &context, const ScenarioCommand &command, Started &s,
                  std::string &error) {
  if (tScenarioThread) {
    error = "a process cannot be started from inside a thread block";
    return false;
  }
  s.command = &command;
  s.isProcess = true;
  char path[] = "/tmp/zkqm-processXXXXXX";
  int fd = mkstemp(path);
  if (fd < 0) {
    error = std::string("cannot make a log file for the process: ") + std::strerror(errno);
    return false;
  }
  close(fd);
  s.logFile = path;
  unsigned index = ++processCounter;
  std::fflush(nullptr);
  pid_t pid = fork();
  if (pid < 0) {
    error = std::string("fork failed: ") + std::strerror(errno);
    return false;
  }
  if (pid == 0) {
    // The child: its own log, its own identifiers; it disconnects what it
    // connected when its block ends.
    Log::captureThread(nullptr);
    std::string why;
    context.log.openFile(s.logFile, why);
    context.qmgr.engine().setProcessIndex(index);
    int errorsBefore = parameterErrors();
    int failedBefore = context.shared.failedExpectations.load();
    ScenarioContext child{context.qmgr,   context.log,  context.scenario,
                          context.shared, context.vars, context.defaultThreadId};
    bool ok = runCommands(command.children, child);
    for (Connection *c : context.qmgr.connections()) {
      if (c->state == ConnectionState::Connected && c->ownerPid == getpid()) {
        context.log.line("%s still connected at the end of the process", c->name.c_str());
        context.qmgr.disconnect(*c);
      }
    }
    std::fflush(nullptr);
    int status = !ok                                                ? kProcessError
                 : parameterErrors() > errorsBefore                 ? kProcessParameterError
                 : context.shared.failedExpectations > failedBefore ? kProcessExpectationFailed
                                                                    : kProcessOk;
    _exit(status);
  }
  s.pid = pid;
  return true;
}

bool finish(ScenarioContext &context, Started &s, std::string &error) {
  const std::string &name = s.command->words[1];
  if (!s.isProcess) {
    s.thread.join();
    context.log.line("-- thread %s begins", name.c_str());
    context.log.append(s.lines);
    context.log.line("-- thread %s ends", name.c_str());
    context.calls += s.calls;
    context.failedCalls += s.failedCalls;
    if (!s.ok) {
      error = "thread " + name + " stopped at an error";
      return false;
    }
    return true;
  }
  int status = 0;
  while (waitpid(s.pid, &status, 0) < 0 && errno == EINTR) {
  }
  std::vector<std::string> lines;
  std::ifstream in(s.logFile);
  std::string line;
  while (std::getline(in, line)) {
    lines.push_back(line);
  }
  unlink(s.logFile.c_str());
  context.log.line("-- process %s begins", name.c_str());
  context.log.append(lines);
  int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  context.log.always("-- process %s ends: exit status %d", name.c_str(), code);
  switch (code) {
  case kProcessOk:
    return true;
  case kProcessExpectationFailed:
    ++context.shared.failedExpectations;
    return true;
  case kProcessParameterError:
    ++context.shared.childParameterErrors;
    return true;
  default:
    error = "process " + name + " ended with exit status " + std::to_string(code);
    return false;
  }
}

bool checkName(const ScenarioCommand &cmd, std::string &error) {
  if (cmd.children.empty()) {
    error = "'" + cmd.words[0] + "' needs commands in its block";
    return false;
  }
  return checkConnectionName(cmd.words[1], error);
}

} // namespace

bool checkRepeat(const ScenarioCommand &cmd, std::string &error) {
  ZKLONG n = 0;
  if (!hasVariable(cmd.words[1]) && (!parseValue(cmd.words[1], "", n, error) || n < 0)) {
    error = "repeat: the count must be a number, 0 or more";
    return false;
  }
  Args args(cmd, 2);
  for (const std::string &p : args.positional()) {
    if (p != "quiet") {
      error = "repeat: unknown word '" + p + "' (var=NAME, quiet)";
      return false;
    }
  }
  return args.checkKeys({"var"}, {}, error);
}

bool runRepeat(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKLONG n = 0;
  if (!parseValue(cmd.words[1], "", n, error)) {
    return false;
  }
  Args args(cmd, 2);
  std::string var = args.get("var", "i");
  bool quiet = !args.positional().empty();
  auto saved = context.vars.find(var);
  bool hadValue = saved != context.vars.end();
  std::string previous = hadValue ? saved->second : "";
  long calls = context.calls;
  long failed = context.failedCalls;
  if (quiet) {
    Log::enterQuiet();
  }
  bool ok = true;
  for (ZKLONG i = 1; i <= n && ok; ++i) {
    context.vars[var] = std::to_string(i);
    ok = runCommands(cmd.children, context);
  }
  if (quiet) {
    Log::leaveQuiet();
    context.log.line("repeat: %d iteration(s), %ld call(s), %ld failed", n, context.calls - calls,
                     context.failedCalls - failed);
  }
  if (hadValue) {
    context.vars[var] = previous;
  } else {
    context.vars.erase(var);
  }
  if (!ok) {
    error = "the loop stopped at an error";
  }
  return ok;
}

bool checkThread(const ScenarioCommand &cmd, std::string &error) {
  return checkName(cmd, error);
}

bool runThread(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Started s;
  startThread(context, cmd, s);
  return finish(context, s, error);
}

bool checkProcess(const ScenarioCommand &cmd, std::string &error) {
  return checkName(cmd, error);
}

bool runProcess(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Started s;
  if (!startProcess(context, cmd, s, error)) {
    return false;
  }
  return finish(context, s, error);
}

bool checkParallel(const ScenarioCommand &cmd, std::string &error) {
  for (const ScenarioCommand &child : cmd.children) {
    if (child.words[0] != "thread" && child.words[0] != "process") {
      error = "line " + std::to_string(child.line) +
              ": a parallel block holds only thread and process blocks";
      return false;
    }
  }
  if (cmd.children.empty()) {
    error = "a parallel block needs thread or process blocks";
    return false;
  }
  return true;
}

bool runParallel(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  std::vector<Started> started(cmd.children.size());
  // Processes first: a process forked while threads of this scenario run
  // could inherit a lock one of them holds.
  bool ok = true;
  for (std::size_t i = 0; i < cmd.children.size() && ok; ++i) {
    if (cmd.children[i].words[0] == "process") {
      ok = startProcess(context, cmd.children[i], started[i], error);
    }
  }
  for (std::size_t i = 0; i < cmd.children.size(); ++i) {
    if (cmd.children[i].words[0] == "thread" && ok) {
      startThread(context, cmd.children[i], started[i]);
    }
  }
  std::string firstError;
  for (Started &s : started) {
    if (s.command == nullptr) {
      continue;
    }
    std::string why;
    if (!finish(context, s, why) && firstError.empty()) {
      firstError = why;
    }
  }
  if (!ok) {
    return false;
  }
  if (!firstError.empty()) {
    error = firstError;
    return false;
  }
  return true;
}

} // namespace zkqm
