// zkqm: a stand-in ZK queue manager that loads the API exits of a qm.ini
// configuration and runs a scenario of application calls through them.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "exit_call.h"
#include "exit_chain.h"
#include "ini.h"
#include "log.h"
#include "qmgr.h"
#include "scenario.h"
#include "wz_version.h"

using namespace zkqm;

namespace {

// Exit codes of the program.
constexpr int kExitOk = 0;
constexpr int kExitExpectationFailed = 1;
constexpr int kExitUsage = 2;
constexpr int kExitConfiguration = 3;
constexpr int kExitParameterChanged = 4;

struct Options {
  std::string ini;
  std::string scenario;
  std::string log;
  bool noExit = false;
  bool noCheck = false;
};

void usage(FILE *out) {
  std::fputs("usage: zkqm --ini QM.INI --scenario FILE [--log FILE] [--no-exit] [--no-check]\n"
             "       zkqm --version | --help\n"
             "  --ini FILE       configuration with ApiExitLocal stanzas\n"
             "  --scenario FILE  the commands to run (see sim/README.md)\n"
             "  --log FILE       write the log to FILE instead of standard output\n"
             "  --no-exit        load no exit: the connections run without any\n"
             "                   (--ini is then optional)\n"
             "  --no-check       do not check after each exit call that the exit\n"
             "                   changed nothing (for benchmarks only)\n"
             "  --version        show the version and stop\n",
             out);
}

bool parseArguments(int argc, char **argv, Options &options) {
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    auto value = [&](std::string &target) {
      if (i + 1 >= argc) {
        reportError("%s needs a value", arg.c_str());
        return false;
      }
      target = argv[++i];
      return true;
    };
    if (arg == "--ini") {
      if (!value(options.ini)) {
        return false;
      }
    } else if (arg == "--scenario") {
      if (!value(options.scenario)) {
        return false;
      }
    } else if (arg == "--log") {
      if (!value(options.log)) {
        return false;
      }
    } else if (arg == "--no-exit") {
      options.noExit = true;
    } else if (arg == "--no-check") {
      options.noCheck = true;
    } else if (arg == "--version") {
      std::printf("zkqm %s\n", WZ_VERSION);
      std::exit(kExitOk);
    } else if (arg == "--help" || arg == "-h") {
      usage(stdout);
      std::exit(kExitOk);
    } else {
      reportError("unknown argument '%s'", arg.c_str());
      return false;
    }
  }
  if (options.scenario.empty() || (options.ini.empty() && !options.noExit)) {
    reportError("--scenario and --ini are required (--ini may be left out with --no-exit)");
    return false;
  }
  return true;
}

// The platform's commands (dspzkver) are installed beside zkqm; the exits
// that zkqm loads find them on the PATH, as they would in a queue manager's
// processes.
void addOwnDirectoryToPath() {
  char self[4096];
  ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
  if (n <= 0) {
    return;
  }
  std::string dir(self, static_cast<std::size_t>(n));
  dir = dir.substr(0, dir.rfind('/'));
  const char *path = std::getenv("PATH");
  std::string value = dir + (path != nullptr && *path != '\0' ? ":" + std::string(path) : "");
  setenv("PATH", value.c_str(), 1);
}

} // namespace

int main(int argc, char **argv) {
  addOwnDirectoryToPath();
  Options options;
  if (!parseArguments(argc, argv, options)) {
    usage(stderr);
    return kExitUsage;
  }

  std::string error;
  Scenario scenario;
  if (!parseScenario(options.scenario, scenario, error)) {
    reportError("%s", error.c_str());
    return kExitUsage;
  }

  QmIni ini;
  if (!options.ini.empty() && !readQmIni(options.ini, ini, error)) {
    reportError("%s", error.c_str());
    return kExitConfiguration;
  }

  Log &log = runLog();
  if (!options.log.empty() && !log.openFile(options.log, error)) {
    reportError("%s", error.c_str());
    return kExitUsage;
  }

  setParameterCheck(!options.noCheck);
  ExitChain chain;
  if (options.noExit) {
    log.line("exits: none (--no-exit)");
  } else {
    if (!chain.load(ini.apiExits, error)) {
      reportError("%s", error.c_str());
      log.line("error: %s", error.c_str());
      return kExitConfiguration;
    }
    if (chain.empty()) {
      log.line("exits: none in the configuration");
    }
    for (const ExitModule &m : chain.modules()) {
      log.line("exit %s: %s in %s, sequence %d", m.definition.name.c_str(),
               m.definition.function.c_str(), m.moduleFileName.c_str(), m.definition.sequence);
    }
  }

  QueueManager qmgr(log, chain);
  SharedState shared;
  ScenarioContext context{qmgr, log, scenario, shared, {}, 1};
  bool completed = runCommands(scenario.commands, context);
  qmgr.disconnectAll();
  int changes = parameterErrors() + shared.childParameterErrors.load();
  if (changes > 0) {
    log.always("end of scenario: %d parameter change(s) by exits", changes);
    reportError("%d parameter change(s) by exits: an exit must only observe", changes);
    return kExitParameterChanged;
  }
  if (!completed) {
    return kExitUsage;
  }
  if (shared.failedExpectations > 0) {
    log.always("end of scenario: %d expectation(s) failed", shared.failedExpectations.load());
    reportError("%d expectation(s) failed", shared.failedExpectations.load());
    return kExitExpectationFailed;
  }
  log.line("end of scenario");
  return kExitOk;
}
