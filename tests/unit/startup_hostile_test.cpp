// Start-up with hostile parameter files: a FIFO or a directory at the name
// of "wz.def" never blocks the connection, a link is not read, and sizes
// from the file that cannot be represented are a memory failure, not an
// overflow.
#include <gtest/gtest.h>

#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "exit/control_block.h"
#include "exit/startup.h"
#include "handlers/handlers.h"
#include "tests/unit/startup_fixture.h"
#include "tests/unit/test_support.h"

namespace {

struct StartupHostile : StartupTest {
  void SetUp() override {
    StartupTest::SetUp();
    // A connection that blocks fails the test instead of hanging the run.
    alarm(20);
  }
  void TearDown() override {
    alarm(0);
    StartupTest::TearDown();
  }
  TestConnection Connect() { return StartupTest::Connect("payroll"); }
  // The settings the connection runs with: the defaults unless the file
  // was read.
  void ExpectDefaults(TestConnection &c) {
    auto *cb = (ExitControlBlock *)c.Axp.ExitChainAreaPtr;
    ASSERT_NE(cb, nullptr);
    EXPECT_EQ(cb->Settings.ParameterFilePath[0], '\0');
    EXPECT_EQ(cb->WriteBufferSize, 10000);
    EXPECT_EQ(gTestXep.Calls.size(), 41u);
  }
};

} // namespace

TEST_F(StartupHostile, FifoAsParameterFileIsNotReadAndDoesNotBlock) {
  ASSERT_EQ(mkfifo(dir.File("wz.def").c_str(), 0600), 0);
  TestConnection c = Connect();
  ExpectDefaults(c);
  Disconnect(c);
}

TEST_F(StartupHostile, DirectoryAsParameterFileIsNotRead) {
  ASSERT_EQ(mkdir(dir.File("wz.def").c_str(), 0700), 0);
  TestConnection c = Connect();
  ExpectDefaults(c);
  Disconnect(c);
}

TEST_F(StartupHostile, LinkAsParameterFileIsNotFollowed) {
  TempDir elsewhere;
  elsewhere.Write("wz.def", "WriteBufferSize=65536\n");
  ASSERT_EQ(symlink(elsewhere.File("wz.def").c_str(), dir.File("wz.def").c_str()), 0);
  TestConnection c = Connect();
  ExpectDefaults(c);
  Disconnect(c);
}

TEST_F(StartupHostile, BufferSizeBeyondAnyBlockIsAMemoryFailure) {
  dir.Write("wz.def", "WriteBufferSize=2147483000\n");
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(dir.Path().c_str()), 0);
  TestConnection c = Connect();
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_EQ(c.Axp.ExitChainAreaPtr, nullptr);
  EXPECT_TRUE(gTestXep.Calls.empty());
  EXPECT_EQ(c.Axp.ExitResponse, ZKXCC_FAILED);
  std::string errors;
  for (const std::string &name : dir.List()) {
    if (name.rfind("wz_apiexit_error_", 0) == 0) {
      errors += dir.Read(name);
    }
  }
  EXPECT_NE(errors.find("Msg1010: No more memory is available.  ENOMEM - Cannot allocate memory "
                        "(12)\n"),
            std::string::npos)
      << errors;
}
