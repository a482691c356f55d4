#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include "output/process_id.h"

TEST(ProcessId, IsTheCallersAndFollowsFork) {
  EXPECT_EQ(CurrentProcessId(), (int32_t)getpid());
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    _exit(CurrentProcessId() == (int32_t)getpid() ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0) << "the child saw its parent's process id";
  EXPECT_EQ(CurrentProcessId(), (int32_t)getpid());
}
