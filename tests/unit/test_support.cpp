#include "tests/unit/test_support.h"
#include "tests/harness_text.h"

#include <dirent.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <stdio.h>

#include <fstream>
#include <sstream>

TestXep gTestXep;

extern "C" void ZKXEP(ZKHCONFIG, ZKLONG exitReason, ZKLONG function, PZKFUNC entryPoint,
                      PZKXEPO exitOpts, PZKLONG pCompCode, PZKLONG pReason) {
  RecordedRegistration call{exitReason, function, entryPoint, exitOpts != nullptr, ""};
  if (exitOpts != nullptr && exitOpts->ExitProperties.VSPtr != nullptr) {
    call.ExitProperty.assign((const char *)exitOpts->ExitProperties.VSPtr,
                             (size_t)exitOpts->ExitProperties.VSLength);
  }
  gTestXep.Calls.push_back(call);
  bool fail = (gTestXep.FailAt != 0 && (int)gTestXep.Calls.size() == gTestXep.FailAt) ||
              (gTestXep.FailFunction != 0 && function == gTestXep.FailFunction);
  *pCompCode = fail ? ZKCC_FAILED : ZKCC_OK;
  *pReason = fail ? gTestXep.FailReason : 0;
}

TempDir::TempDir() {
  char pattern[] = "/tmp/wz-test-XXXXXX";
  path_ = mkdtemp(pattern);
}

TempDir::~TempDir() {
  for (const std::string &name : List()) {
    unlink(File(name).c_str());
  }
  rmdir(path_.c_str());
}

void TempDir::Write(const std::string &name, const std::string &content) const {
  std::ofstream(File(name), std::ios::binary) << content;
}

std::string TempDir::Read(const std::string &name) const {
  std::ifstream in(File(name), std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::vector<std::string> TempDir::List() const {
  std::vector<std::string> names;
  if (DIR *dir = opendir(path_.c_str())) {
    while (dirent *entry = readdir(dir)) {
      if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
        names.push_back(entry->d_name);
      }
    }
    closedir(dir);
  }
  return names;
}

void SetFixedField(char *field, size_t width, const std::string &value) {
  SetBlankPadded(field, width, value);
}

TestConnection::TestConnection(const std::string &exitData, const std::string &applName,
                               ZKLONG axpVersion) {
  memset(&Axp, 0, sizeof Axp);
  memset(&Axc, 0, sizeof Axc);
  memcpy(Axp.StrucId, ZKAXP_STRUC_ID, 4);
  Axp.Version = axpVersion;
  Axp.ExitId = ZKXT_API_EXIT;
  Axp.ExitReason = ZKXR_CONNECTION;
  Axp.Function = ZKXF_INIT;
  Axp.APICallerType = ZKXACT_EXTERNAL;
  SetFixedField(Axp.ExitData, 32, exitData);
  SetFixedField(Axp.ExitInfoName, 48, "wz");
  SetFixedField(Axp.QMgrName, 48, "ZKQM1");
  memcpy(Axc.StrucId, ZKAXC_STRUC_ID, 4);
  Axc.Version = ZKAXC_VERSION_2;
  Axc.Environment = ZKXE_OTHER;
  SetFixedField(Axc.UserId, 12, "alice");
  SetFixedField(Axc.ConnectionName, 264, "");
  SetFixedField(Axc.ApplName, 28, applName);
  Axc.ApplType = ZKAT_UNIX;
  Axc.ProcessId = 4242;
  Axc.ThreadId = 7;
}

namespace {

// Runs the whole test program in a directory of its own, so that messages
// that fall back to the current directory never land in the source tree.
class WorkingDirectory : public ::testing::Environment {
public:
  void SetUp() override {
    char previous[4096];
    if (getcwd(previous, sizeof previous) != nullptr) {
      previous_ = previous;
    }
    dir_ = new TempDir();
    if (chdir(dir_->Path().c_str()) != 0) {
      perror("chdir");
    }
  }
  void TearDown() override {
    if (!previous_.empty() && chdir(previous_.c_str()) != 0) {
      perror("chdir");
    }
    delete dir_;
  }

private:
  std::string previous_;
  TempDir *dir_ = nullptr;
};

const ::testing::Environment *const kWorkingDirectory =
    ::testing::AddGlobalTestEnvironment(new WorkingDirectory);

} // namespace
