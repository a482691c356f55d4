// The one way the exit opens its files: no link followed, regular files
// only, no blocking on a FIFO, not inherited, mode 0660.
#include <gtest/gtest.h>

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "exit/exit_files.h"
#include "tests/unit/test_support.h"

namespace {

struct ExitFiles : ::testing::Test {
  TempDir dir;
  std::string Path(const char *name) const { return dir.File(name); }
};

const int32_t kModes[] = {EXIT_FILE_READ, EXIT_FILE_APPEND, EXIT_FILE_READ_WRITE,
                          EXIT_FILE_CREATE_NEW};

} // namespace

TEST_F(ExitFiles, RegularFileOpensInEveryMode) {
  dir.Write("f", "abc");
  int fd = OpenExitFile(Path("f").c_str(), EXIT_FILE_READ);
  ASSERT_GE(fd, 3);
  char buffer[8] = {};
  EXPECT_EQ(read(fd, buffer, sizeof buffer), 3);
  EXPECT_EQ(fcntl(fd, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
  close(fd);
  fd = OpenExitFile(Path("f").c_str(), EXIT_FILE_READ_WRITE);
  ASSERT_GE(fd, 3);
  EXPECT_EQ(write(fd, "d", 1), 1);
  close(fd);
  EXPECT_EQ(dir.Read("f"), "abcd");
  EXPECT_EQ(OpenExitFile(Path("f").c_str(), EXIT_FILE_CREATE_NEW), -1);
  EXPECT_EQ(errno, EEXIST);
}

TEST_F(ExitFiles, CreatedFilesAreMode0660WhateverTheUmask) {
  mode_t previous = umask(0);
  int a = OpenExitFile(Path("a").c_str(), EXIT_FILE_APPEND);
  int b = OpenExitFile(Path("b").c_str(), EXIT_FILE_CREATE_NEW);
  umask(previous);
  ASSERT_GE(a, 3);
  ASSERT_GE(b, 3);
  close(a);
  close(b);
  struct stat status;
  ASSERT_EQ(stat(Path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0660u);
  ASSERT_EQ(stat(Path("b").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0660u);
}

TEST_F(ExitFiles, LinkIsRefusedInEveryModeAndItsTargetUntouched) {
  dir.Write("victim", "precious\n");
  ASSERT_EQ(symlink(Path("victim").c_str(), Path("link").c_str()), 0);
  ASSERT_EQ(symlink(Path("missing").c_str(), Path("dangling").c_str()), 0);
  for (int32_t mode : kModes) {
    EXPECT_EQ(OpenExitFile(Path("link").c_str(), mode), -1) << mode;
    EXPECT_TRUE(errno == ELOOP || errno == EEXIST) << mode << " " << errno;
    EXPECT_EQ(OpenExitFile(Path("dangling").c_str(), mode), -1) << mode;
  }
  EXPECT_EQ(AppendToExitFile(Path("link").c_str(), "x", 1), -1);
  EXPECT_EQ(errno, ELOOP);
  EXPECT_EQ(dir.Read("victim"), "precious\n");
  struct stat status;
  EXPECT_NE(stat(Path("missing").c_str(), &status), 0);
}

TEST_F(ExitFiles, FifoIsRefusedWithoutBlocking) {
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  for (int32_t mode : kModes) {
    EXPECT_EQ(OpenExitFile(Path("fifo").c_str(), mode), -1) << mode;
  }
  EXPECT_EQ(OpenExitStream(Path("fifo").c_str(), EXIT_FILE_READ), nullptr);
  EXPECT_EQ(errno, EXIT_FILE_NOT_REGULAR);
}

TEST_F(ExitFiles, DirectoryAndDeviceAreRefused) {
  ASSERT_EQ(mkdir(Path("d").c_str(), 0700), 0);
  EXPECT_EQ(OpenExitFile(Path("d").c_str(), EXIT_FILE_READ), -1);
  EXPECT_EQ(errno, EXIT_FILE_NOT_REGULAR);
  EXPECT_EQ(OpenExitFile(Path("d").c_str(), EXIT_FILE_APPEND), -1);
  EXPECT_EQ(OpenExitFile("/dev/null", EXIT_FILE_APPEND), -1);
  EXPECT_EQ(errno, EXIT_FILE_NOT_REGULAR);
  EXPECT_EQ(OpenExitFile("", EXIT_FILE_READ), -1);
  EXPECT_EQ(OpenExitFile(nullptr, EXIT_FILE_READ), -1);
  EXPECT_EQ(OpenExitFile(Path("x").c_str(), 99), -1);
}

TEST_F(ExitFiles, ClosedStandardStreamsAreNotReused) {
  dir.Write("f", "abc");
  int saved = dup(0);
  ASSERT_GE(saved, 0);
  close(0);
  int fd = OpenExitFile(Path("f").c_str(), EXIT_FILE_READ);
  dup2(saved, 0);
  close(saved);
  EXPECT_GE(fd, 3);
  close(fd);
}

TEST_F(ExitFiles, AppendWritesTheWholeText) {
  EXPECT_EQ(AppendToExitFile(Path("log").c_str(), "one\n", 4), 0);
  EXPECT_EQ(AppendToExitFile(Path("log").c_str(), "two\n", 4), 0);
  EXPECT_EQ(dir.Read("log"), "one\ntwo\n");
}
