// Closing a trace file: the closing notes, the final extension, the
// process and thread change notes, and compression.
#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/wait.h>
#include <time.h>

#include "tests/unit/trace_file_test_support.h"

namespace {

const char kStars[] = "|*****************************************************************\n";

struct TraceFileClose : ::testing::Test {
  TempDir dir;
  TraceFileBlock block{dir.Path()};
  ExitControlBlock *cb = block.cb;

  std::string Path(const std::string &name) const { return dir.File(name); }
  void Open() { ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0); }

  // Waits up to ten seconds for `path` to appear and, when `gone` is given,
  // for that one to disappear.
  static bool WaitFor(const std::string &path, const std::string &gone = "") {
    for (int i = 0; i < 200; i++) {
      if (FileExists(path) && (gone.empty() || !FileExists(gone))) {
        return true;
      }
      struct timespec pause = {0, 50 * 1000 * 1000};
      nanosleep(&pause, nullptr);
    }
    return false;
  }
};

uint32_t SelfId() {
  return (uint32_t)(uintptr_t)pthread_self();
}

void *WriteFromAnotherThread(void *argument) {
  ExitControlBlock *cb = (ExitControlBlock *)argument;
  SetDataToWriteBuffer(cb, "from the other thread\n");
  return (void *)(uintptr_t)SelfId();
}

// Writes a text from a new thread; returns that thread's identifier.
uint32_t WriteOnNewThread(ExitControlBlock *cb) {
  pthread_t thread;
  void *result = nullptr;
  if (pthread_create(&thread, nullptr, WriteFromAnotherThread, cb) != 0 ||
      pthread_join(thread, &result) != 0) {
    return 0;
  }
  return (uint32_t)(uintptr_t)result;
}

TEST_F(TraceFileClose, CloseRenamesToTxtAndResetsTheCounters) {
  Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "last words\n"), 0);
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(TraceFileIsOpen(cb), 0);
  EXPECT_EQ(cb->File.FileDescriptor, 0);
  EXPECT_EQ(cb->File.CurrentFileSize, 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(cb->WriteBuffer[0], '\0');
  EXPECT_FALSE(FileExists(Path(TEST_STEM "001.t")));
  EXPECT_NE(ReadWholeFile(Path(TEST_STEM "001.txt")).find("last words\n"), std::string::npos);
}

TEST_F(TraceFileClose, SuffixFollowsTxt) {
  Open();
  CloseAndCompressFile(cb, ".f");
  EXPECT_TRUE(FileExists(Path(TEST_STEM "001.txt.f")));
  EXPECT_FALSE(FileExists(Path(TEST_STEM "001.txt")));
}

TEST_F(TraceFileClose, CloseWithoutAFileOnlyResetsTheCounters) {
  cb->File.CurrentFileSize = 1234;
  cb->WriteBufferFill = 5;
  cb->WriteBuffer[0] = 'x';
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(cb->File.CurrentFileSize, 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(cb->WriteBuffer[0], '\0');
  EXPECT_TRUE(dir.List().empty());
}

TEST_F(TraceFileClose, UnknownAttributeBannerNamesTheContact) {
  Open();
  cb->File.UnknownAttributeSeen = 1;
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
  std::string expected = std::string("\n") + kStars + kStars +
                         "|**\n"
                         "|**   Unknown ZK attribute exists.\n"
                         "|**   Please check ZK attribute settings in your program or\n"
                         "|**   report to " TEST_CONTACT " with this trace data.\n"
                         "|**   (New attributes might have been supported by Tarnvelde ZK.)\n"
                         "|**\n" +
                         kStars + kStars + "\n";
  std::string content = ReadWholeFile(Path(TEST_STEM "001.txt"));
  EXPECT_NE(content.find(expected), std::string::npos) << content;
}

TEST_F(TraceFileClose, NoBannerWithoutUnknownAttribute) {
  Open();
  CloseAndCompressFile(cb, nullptr);
  std::string content = ReadWholeFile(Path(TEST_STEM "001.txt"));
  EXPECT_EQ(content.find("Unknown ZK attribute"), std::string::npos);
  EXPECT_EQ(content.find("was reopened"), std::string::npos);
  EXPECT_EQ(content.find("Thread id has been changed"), std::string::npos);
}

TEST_F(TraceFileClose, ThreadChangeIsNotedAndTheFileKeepsDotT) {
  snprintf(cb->Settings.CompressCommand, sizeof cb->Settings.CompressCommand, "gzip $");
  cb->Settings.CompressFileSizeThreshold = 1;
  Open();
  uint32_t mine = SelfId();
  uint32_t other = WriteOnNewThread(cb);
  ASSERT_NE(other, 0u);
  ASSERT_NE(other, mine);
  EXPECT_EQ(cb->File.ThreadChanged, 1);
  EXPECT_EQ(cb->File.RecordedThreadId, other);
  EXPECT_EQ(cb->Identity.ThreadId, other);
  CloseAndCompressFile(cb, nullptr);

  // The file keeps ".t" and is not compressed.
  std::vector<std::string> expected = {TEST_STEM "001.t"};
  EXPECT_EQ(TraceFileNames(dir), expected);
  struct timespec pause = {0, 300 * 1000 * 1000};
  nanosleep(&pause, nullptr);
  EXPECT_EQ(TraceFileNames(dir), expected);

  std::string content = ReadWholeFile(Path(TEST_STEM "001.t"));
  std::string dashes = "|----------------------------------------------------------\n";
  std::string toOther = "|\n" + dashes + "|  Thread id (real) has been changed from " +
                        std::to_string(mine) + " to " + std::to_string(other) + ".\n" + dashes +
                        "|\n";
  std::string back = "|  Thread id (real) has been changed from " + std::to_string(other) + " to " +
                     std::to_string(mine) + ".\n";
  size_t first = content.find(toOther);
  ASSERT_NE(first, std::string::npos) << content;
  EXPECT_NE(content.find("from the other thread\n"), std::string::npos);
  EXPECT_GT(content.find(back), first);
  EXPECT_EQ(content.find("Process id (real) has been changed"), std::string::npos);
  std::string block = std::string("|\n") + kStars +
                      "|**   Thread id has been changed after opening trace file.\n"
                      "|**   File extension '.txt' is not set after closing this file.\n" +
                      kStars + "|\n";
  EXPECT_GT(content.find(block), content.find(back));
  EXPECT_EQ(cb->File.CurrentFileSize, 0);
}

TEST_F(TraceFileClose, SuppressedNotesStillKeepDotT) {
  Open();
  cb->File.SuppressProcessChangeNotes = 1;
  ASSERT_NE(WriteOnNewThread(cb), 0u);
  CloseAndCompressFile(cb, nullptr);
  std::string content = ReadWholeFile(Path(TEST_STEM "001.t"));
  EXPECT_EQ(content.find("has been changed from"), std::string::npos);
  EXPECT_NE(content.find("Thread id has been changed after opening trace file."),
            std::string::npos);
}

TEST_F(TraceFileClose, ThreadChangedFlagIsClearedForTheNextFile) {
  cb->Settings.MaxFileSize = 1000000;
  Open();
  ASSERT_NE(WriteOnNewThread(cb), 0u);
  // The switch, back on this thread, closes the old file as ".t".
  cb->File.CurrentFileSize = cb->Settings.MaxFileSize + 1;
  ASSERT_EQ(SetDataToWriteBuffer(cb, "next\n"), 0);
  EXPECT_EQ(cb->File.ThreadChanged, 0);
  CloseAndCompressFile(cb, nullptr);
  std::vector<std::string> expected = {TEST_STEM "001.t", TEST_STEM "002.txt"};
  EXPECT_EQ(TraceFileNames(dir), expected);
}

TEST_F(TraceFileClose, ProcessChangeIsNoted) {
  cb->Settings.WriteCache = 0;
  Open();
  uint32_t parent = (uint32_t)getpid();
  fflush(nullptr);
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    SetDataToWriteBuffer(cb, "from the child\n");
    _exit(cb->File.ThreadChanged == 1 && cb->File.RecordedProcessId == (int32_t)getpid() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  std::string content = ReadWholeFile(cb->File.TraceFilePath);
  std::string line = "|  Process id (real) has been changed from " + std::to_string(parent) +
                     " to " + std::to_string((uint32_t)child) + ".\n";
  size_t note = content.find(line);
  ASSERT_NE(note, std::string::npos) << content;
  EXPECT_GT(content.find("from the child\n"), note);
  // The parent's own block saw no change.
  EXPECT_EQ(cb->File.ThreadChanged, 0);
  CloseAndCompressFile(cb, nullptr);
  EXPECT_TRUE(FileExists(Path(TEST_STEM "001.txt")));
}

TEST_F(TraceFileClose, FirstIdentifiersAreRecordedWithoutANote) {
  cb->Settings.WriteCache = 0;
  ASSERT_EQ(SetDataToWriteBuffer(cb, "first\n"), 0);
  EXPECT_EQ(cb->File.RecordedProcessId, (int32_t)getpid());
  EXPECT_EQ(cb->File.RecordedThreadId, SelfId());
  EXPECT_EQ(cb->File.ThreadChanged, 0);
  EXPECT_EQ(ReadWholeFile(cb->File.TraceFilePath).find("has been changed"), std::string::npos);
}

TEST_F(TraceFileClose, CompressCommandRunsOnTheDoubleTxtFile) {
  snprintf(cb->Settings.CompressCommand, sizeof cb->Settings.CompressCommand, "gzip $");
  cb->Settings.CompressFileSizeThreshold = 10;
  Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "content to be compressed\n"), 0);
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(cb->File.CurrentFileSize, 0);
  std::string compressed = Path(TEST_STEM "001.txt.txt.gz");
  ASSERT_TRUE(WaitFor(compressed, Path(TEST_STEM "001.txt.txt")));
  EXPECT_FALSE(FileExists(Path(TEST_STEM "001.txt")));
  EXPECT_FALSE(FileExists(Path(TEST_STEM "001.t")));
  // The compressed file holds the trace.
  std::string command = "gzip -dc " + compressed;
  FILE *pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string text;
  char chunk[4096];
  size_t n;
  while ((n = fread(chunk, 1, sizeof chunk, pipe)) > 0) {
    text.append(chunk, n);
  }
  pclose(pipe);
  EXPECT_NE(text.find("content to be compressed\n"), std::string::npos);
}

TEST_F(TraceFileClose, FileBelowTheThresholdIsNotCompressed) {
  snprintf(cb->Settings.CompressCommand, sizeof cb->Settings.CompressCommand, "gzip $");
  cb->Settings.CompressFileSizeThreshold = 1000000;
  Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "small\n"), 0);
  CloseAndCompressFile(cb, nullptr);
  struct timespec pause = {0, 300 * 1000 * 1000};
  nanosleep(&pause, nullptr);
  std::vector<std::string> expected = {TEST_STEM "001.txt"};
  EXPECT_EQ(TraceFileNames(dir), expected);
}

TEST_F(TraceFileClose, TwoDollarsGiveThePathTwice) {
  snprintf(cb->Settings.CompressCommand, sizeof cb->Settings.CompressCommand, "cp $ $.copy");
  cb->Settings.CompressFileSizeThreshold = 1;
  Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "copied\n"), 0);
  CloseAndCompressFile(cb, nullptr);
  std::string copy = Path(TEST_STEM "001.txt.txt.copy");
  ASSERT_TRUE(WaitFor(copy));
  EXPECT_TRUE(FileExists(Path(TEST_STEM "001.txt.txt")));
  // Wait for the copy to be complete.
  for (int i = 0; i < 200 && ReadWholeFile(copy).find("copied\n") == std::string::npos; i++) {
    struct timespec pause = {0, 50 * 1000 * 1000};
    nanosleep(&pause, nullptr);
  }
  EXPECT_NE(ReadWholeFile(copy).find("copied\n"), std::string::npos);
}

TEST(TraceFileCompressCommand, DollarsAreReplacedByTheQuotedPathAndAmpersandAppended) {
  char out[200];
  ASSERT_EQ(BuildCompressCommand("gzip -f $", "/d/f.txt.txt", out, sizeof out), 0);
  EXPECT_STREQ(out, "gzip -f '/d/f.txt.txt' &");
  ASSERT_EQ(BuildCompressCommand("x $ y $", "/p", out, sizeof out), 0);
  EXPECT_STREQ(out, "x '/p' y '/p' &");
  ASSERT_EQ(BuildCompressCommand("nodollar", "/p", out, sizeof out), 0);
  EXPECT_STREQ(out, "nodollar &");
  ASSERT_EQ(BuildCompressCommand("$$", "ab", out, sizeof out), 0);
  EXPECT_STREQ(out, "'ab''ab' &");
}

TEST(TraceFileCompressCommand, PathIsOneShellWordWhateverItHolds) {
  char out[300];
  ASSERT_EQ(
      BuildCompressCommand("gzip $", "/d/wz_qm_x;id>INJECTED;#_1_2_001.txt.txt", out, sizeof out),
      0);
  EXPECT_STREQ(out, "gzip '/d/wz_qm_x;id>INJECTED;#_1_2_001.txt.txt' &");
  ASSERT_EQ(BuildCompressCommand("gzip $", "/d/$(id>P)`id`", out, sizeof out), 0);
  EXPECT_STREQ(out, "gzip '/d/$(id>P)`id`' &");
  ASSERT_EQ(BuildCompressCommand("gzip $", "/d/a'b\"c", out, sizeof out), 0);
  EXPECT_STREQ(out, "gzip '/d/a'\\''b\"c' &");
  // The operator's own text keeps its shell syntax.
  ASSERT_EQ(BuildCompressCommand("nice gzip $ && echo done", "/p", out, sizeof out), 0);
  EXPECT_STREQ(out, "nice gzip '/p' && echo done &");
}

TEST(TraceFileCompressCommand, CommandThatDoesNotFitIsRefused) {
  char out[14];
  EXPECT_EQ(BuildCompressCommand("gzip $", "/a/b", out, sizeof out), 0); // 13 + NUL
  EXPECT_STREQ(out, "gzip '/a/b' &");
  EXPECT_EQ(BuildCompressCommand("gzip $", "/a/bc", out, sizeof out), -1);
  EXPECT_LT(strlen(out), sizeof out);
  EXPECT_EQ(BuildCompressCommand("gzip $", "'", out, sizeof out), 0);
  EXPECT_STREQ(out, "gzip ''\\''' &");
  EXPECT_EQ(BuildCompressCommand("gzip $", "''", out, sizeof out), -1);
  EXPECT_EQ(BuildCompressCommand("gzip", "/p", out, sizeof out), 0);
  EXPECT_EQ(BuildCompressCommand("", "/p", out, 2), -1); // " &" needs three bytes
  EXPECT_EQ(BuildCompressCommand("", "/p", out, 3), 0);
  EXPECT_STREQ(out, " &");
}

// A non-empty directory in the way of a rename cannot be replaced.
std::string MakeBlockingDirectory(const std::string &path) {
  EXPECT_EQ(mkdir(path.c_str(), 0700), 0);
  std::string inner = path + "/keep";
  FILE *keep = fopen(inner.c_str(), "w");
  EXPECT_NE(keep, nullptr);
  if (keep != nullptr) {
    fclose(keep);
  }
  return inner;
}

void RemoveBlockingDirectory(const std::string &path) {
  unlink((path + "/keep").c_str());
  rmdir(path.c_str());
}

TEST_F(TraceFileClose, FailedCompressionRenameGivesMessage1006) {
  snprintf(cb->Settings.CompressCommand, sizeof cb->Settings.CompressCommand, "gzip $");
  cb->Settings.CompressFileSizeThreshold = 1;
  Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "kept\n"), 0);
  std::string blocker = Path(TEST_STEM "001.txt.txt");
  MakeBlockingDirectory(blocker);
  CloseAndCompressFile(cb, nullptr);
  std::string closed = Path(TEST_STEM "001.txt");
  EXPECT_NE(ReadWholeFile(closed).find("kept\n"), std::string::npos);
  std::string messages = ErrorFileText(dir);
  EXPECT_NE(messages.find("Msg1006: File rename error. \n  From : " + closed +
                          "\n  To   : " + blocker + "  "),
            std::string::npos)
      << messages;
  RemoveBlockingDirectory(blocker);
}

TEST_F(TraceFileClose, FailedCloseRenameIsSilentAndKeepsTheCounters) {
  Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "text\n"), 0);
  std::string blocker = Path(TEST_STEM "001.txt");
  MakeBlockingDirectory(blocker);
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(TraceFileIsOpen(cb), 0);
  EXPECT_TRUE(FileExists(Path(TEST_STEM "001.t")));
  EXPECT_GT(cb->File.CurrentFileSize, 0);
  EXPECT_EQ(ErrorFileText(dir), "");
  RemoveBlockingDirectory(blocker);
}

} // namespace
