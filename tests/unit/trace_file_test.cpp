// Trace files: opening, switching by size, sequence numbers, reopening a
// closed file, and the failures that stop the trace.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <errno.h>

#include "exit/exit_files.h"

#include "tests/unit/trace_file_test_support.h"

namespace {

struct TraceFileSwitch : ::testing::Test {
  TempDir dir;
  TraceFileBlock block{dir.Path()};
  ExitControlBlock *cb = block.cb;

  std::string Path(const std::string &name) const { return dir.File(name); }
};

// A text of `size` bytes that starts with a recognisable marker.
std::string Text(const std::string &marker, size_t size) {
  std::string text = marker;
  text.resize(size - 1, 'x');
  return text + "\n";
}

TEST_F(TraceFileSwitch, EveryLargeTextOpensANewFile) {
  cb->Settings.MaxFileSize = 1000000;
  const char *markers[] = {"<first>", "<second>", "<third>"};
  for (const char *marker : markers) {
    ASSERT_EQ(SetDataToWriteBuffer(cb, Text(marker, 600000).c_str()), 0);
  }
  EXPECT_EQ(cb->File.FileSequenceNumber, 3);
  std::vector<std::string> expected = {TEST_STEM "001.txt", TEST_STEM "002.txt", TEST_STEM "003.t"};
  ASSERT_EQ(TraceFileNames(dir), expected);
  for (int i = 0; i < 3; i++) {
    std::string content = ReadWholeFile(Path(expected[i]));
    EXPECT_EQ(CountOf(content, Text(markers[i], 600000)), 1u) << expected[i];
    for (const char *other : markers) {
      if (other != markers[i]) {
        EXPECT_EQ(content.find(other), std::string::npos) << expected[i];
      }
    }
  }
}

TEST_F(TraceFileSwitch, SwitchOnlyWhenTheTextWouldPassMaxFileSize) {
  cb->Settings.MaxFileSize = 1000000;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  ASSERT_EQ(FlushTraceDataInBuffer(cb), 0);
  // Fill the file up to exactly MaxFileSize: no switch yet.
  std::string text = Text("<fill>", (size_t)(cb->Settings.MaxFileSize - cb->File.CurrentFileSize));
  ASSERT_EQ(SetDataToWriteBuffer(cb, text.c_str()), 0);
  EXPECT_EQ(cb->File.CurrentFileSize, cb->Settings.MaxFileSize);
  EXPECT_EQ(cb->File.FileSequenceNumber, 1);
  // Any more would pass it.
  ASSERT_EQ(SetDataToWriteBuffer(cb, "<over>"), 0);
  EXPECT_EQ(cb->File.FileSequenceNumber, 2);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "002.t"));
  std::string first = ReadWholeFile(Path(TEST_STEM "001.txt"));
  EXPECT_GE((long long)first.size(), (long long)cb->Settings.MaxFileSize);
  EXPECT_NE(first.find(text), std::string::npos);
  EXPECT_EQ(first.find("<over>"), std::string::npos);
  ASSERT_EQ(FlushTraceDataInBuffer(cb), 0);
  EXPECT_NE(ReadWholeFile(cb->File.TraceFilePath).find("<over>"), std::string::npos);
}

TEST_F(TraceFileSwitch, NoSwitchWhileRotationIsNotPermitted) {
  cb->Settings.MaxFileSize = 1000000;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  cb->File.RotationPermitted = 0;
  ASSERT_EQ(SetDataToWriteBuffer(cb, Text("<a>", 600000).c_str()), 0);
  ASSERT_EQ(SetDataToWriteBuffer(cb, Text("<b>", 600000).c_str()), 0);
  EXPECT_EQ(cb->File.FileSequenceNumber, 1);
  EXPECT_GT(cb->File.CurrentFileSize, cb->Settings.MaxFileSize);
  // The next permitted text switches.
  cb->File.RotationPermitted = 1;
  ASSERT_EQ(SetDataToWriteBuffer(cb, "-"), 0);
  EXPECT_EQ(cb->File.FileSequenceNumber, 2);
  std::string first = ReadWholeFile(Path(TEST_STEM "001.txt"));
  EXPECT_NE(first.find(Text("<a>", 600000) + Text("<b>", 600000)), std::string::npos);
}

TEST_F(TraceFileSwitch, EmptyTextOnlyChecksTheFile) {
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  int64_t size = cb->File.CurrentFileSize;
  int32_t fill = cb->WriteBufferFill;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(cb->File.CurrentFileSize, size);
  EXPECT_EQ(cb->WriteBufferFill, fill);
  EXPECT_EQ(cb->File.FileSequenceNumber, 1);
}

TEST_F(TraceFileSwitch, BytesWrittenFollowTheFileSize) {
  ASSERT_EQ(SetDataToWriteBuffer(cb, "one line\n"), 0);
  ASSERT_EQ(WriteTraceData(cb, "another line\n"), 0);
  ASSERT_EQ(FlushTraceDataInBuffer(cb), 0);
  EXPECT_EQ(cb->File.CurrentFileSize, SizeOfFile(cb->File.TraceFilePath));
}

TEST_F(TraceFileSwitch, SequenceNumbersKeepRisingAcrossSwitches) {
  cb->Settings.MaxFileSize = 1000000;
  ASSERT_EQ(SetDataToWriteBuffer(cb, Text("<1>", 600000).c_str()), 0);
  ASSERT_EQ(SetDataToWriteBuffer(cb, Text("<2>", 600000).c_str()), 0);
  CloseAndCompressFile(cb, nullptr);
  for (const std::string &name : TraceFileNames(dir)) {
    unlink(Path(name).c_str());
  }
  // Number 001 is free again, but the block goes on counting.
  cb->File.CurrentFileSize = cb->Settings.MaxFileSize + 1;
  ASSERT_EQ(SetDataToWriteBuffer(cb, "after\n"), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "003.t"));
  EXPECT_EQ(cb->File.FileSequenceNumber, 3);
}

TEST_F(TraceFileSwitch, MaxFileSizeSwitchClosesOldAsTxtAndOpensNext) {
  cb->Settings.MaxFileSize = 1000000;
  ASSERT_EQ(SetDataToWriteBuffer(cb, "small\n"), 0);
  std::string first = cb->File.TraceFilePath;
  ASSERT_EQ(SetDataToWriteBuffer(cb, Text("<big>", 999990).c_str()), 0);
  EXPECT_FALSE(FileExists(first));
  std::string closed = ReadWholeFile(Path(TEST_STEM "001.txt"));
  EXPECT_NE(closed.find("small\n"), std::string::npos);
  EXPECT_EQ(closed.find("<big>"), std::string::npos);
  EXPECT_NE(ReadWholeFile(Path(TEST_STEM "002.t")).find("<big>"), std::string::npos);
}

TEST_F(TraceFileSwitch, ClosedFileOneIsReopenedAndContinued) {
  const std::string old = "old content of file one\n";
  dir.Write(TEST_STEM "001.txt", old);
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "001.t"));
  EXPECT_FALSE(FileExists(Path(TEST_STEM "001.txt")));
  EXPECT_EQ(cb->File.FileReopened, 1);
  ASSERT_EQ(SetDataToWriteBuffer(cb, "new line\n"), 0);
  ASSERT_EQ(FlushTraceDataInBuffer(cb), 0);
  // The count started from the old size.
  EXPECT_EQ(cb->File.CurrentFileSize, SizeOfFile(cb->File.TraceFilePath));
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(cb->File.FileReopened, 0);
  std::string content = ReadWholeFile(Path(TEST_STEM "001.txt"));
  EXPECT_EQ(content.rfind(old, 0), 0u);
  size_t added = content.find("new line\n");
  ASSERT_NE(added, std::string::npos);
  size_t note = content.find("|\n"
                             "|*****************************************************************\n"
                             "|**   This trace file was reopened.\n"
                             "|**   Multiple sets of call summary data might exist in the file.\n"
                             "|*****************************************************************\n"
                             "|\n");
  ASSERT_NE(note, std::string::npos);
  EXPECT_GT(note, added);
}

TEST_F(TraceFileSwitch, EmptyClosedFileIsReopenedWithoutTheReopenedNote) {
  dir.Write(TEST_STEM "001.txt", "");
  ASSERT_EQ(SetDataToWriteBuffer(cb, "text\n"), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "001.t"));
  EXPECT_EQ(cb->File.FileReopened, 0);
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(ReadWholeFile(Path(TEST_STEM "001.txt")).find("was reopened"), std::string::npos);
}

TEST_F(TraceFileSwitch, OnlyACompressedFileOneGivesNumberTwo) {
  dir.Write(TEST_STEM "001.txt.txt.gz", "compressed");
  ASSERT_EQ(SetDataToWriteBuffer(cb, "text\n"), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "002.t"));
  EXPECT_EQ(cb->File.FileReopened, 0);
}

TEST_F(TraceFileSwitch, NewFileIsCreatedWithMode0660) {
  mode_t saved = umask(0);
  int32_t result = SetDataToWriteBuffer(cb, "");
  umask(saved);
  ASSERT_EQ(result, 0);
  struct stat status;
  ASSERT_EQ(stat(cb->File.TraceFilePath, &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0660u);
}

// Runs the test body in another working directory, where messages go when
// the trace directory cannot take them.
struct InDirectory {
  char saved[4096];
  explicit InDirectory(const std::string &path) {
    if (getcwd(saved, sizeof saved) == nullptr) {
      saved[0] = '\0';
    }
    EXPECT_EQ(chdir(path.c_str()), 0);
  }
  ~InDirectory() {
    if (saved[0] != '\0') {
      EXPECT_EQ(chdir(saved), 0);
    }
  }
};

TEST_F(TraceFileSwitch, MissingDirectoryStopsTheTraceWithOpendirMessage) {
  TempDir elsewhere;
  InDirectory inside(elsewhere.Path());
  std::string missing = dir.Path() + "/missing/";
  snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s", missing.c_str());

  EXPECT_EQ(SetDataToWriteBuffer(cb, ""), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_EQ(TraceFileIsOpen(cb), 0);
  std::string messages = ErrorFileText(elsewhere);
  EXPECT_NE(messages.find("Msg1001: File I/O error. \n  File      : " + missing +
                          "\n  Operation : opendir\n"),
            std::string::npos)
      << messages;
  EXPECT_NE(messages.find("ENOENT"), std::string::npos);

  // Everything later is refused quietly.
  EXPECT_EQ(SetDataToWriteBuffer(cb, "-"), -1);
  EXPECT_EQ(SetDataToWriteBuffer(cb, ""), -1);
  EXPECT_EQ(WriteTraceData(cb, "text\n"), -1);
  EXPECT_EQ(FlushTraceDataInBuffer(cb), 0);
  CloseAndCompressFile(cb, nullptr);
  CloseAndCompressFile(cb, ".f");
  EXPECT_EQ(cb->File.CurrentFileSize, 0);
  EXPECT_EQ(ErrorFileText(elsewhere), messages); // no further messages
}

TEST_F(TraceFileSwitch, TraceDirectoryThatIsAFileGivesOpendirMessage) {
  TempDir elsewhere;
  InDirectory inside(elsewhere.Path());
  dir.Write("plain", "not a directory");
  snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/plain/",
           dir.Path().c_str());
  EXPECT_EQ(SetDataToWriteBuffer(cb, "x\n"), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_NE(ErrorFileText(elsewhere).find("Operation : opendir\n"), std::string::npos);
}

// Runs in a child process, which gives up the superuser's rights first
// (they would let it write anywhere). Its exit status tells the result.
TEST_F(TraceFileSwitch, UnwritableDirectoryGivesOpenMessage) {
  TempDir elsewhere;
  ASSERT_EQ(chmod(elsewhere.Path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(dir.Path().c_str(), 0555), 0);
  fflush(nullptr);
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
      _exit(3);
    }
    if (chdir(elsewhere.Path().c_str()) != 0) {
      _exit(4);
    }
    int32_t result = SetDataToWriteBuffer(cb, "x\n");
    _exit(result == -1 && cb->FatalError == 1 && TraceFileIsOpen(cb) == 0 ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  chmod(dir.Path().c_str(), 0700);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  std::string messages = ErrorFileText(elsewhere);
  EXPECT_NE(messages.find("File      : " + Path(TEST_STEM "001.t") + "\n  Operation : open\n"),
            std::string::npos)
      << messages;
  EXPECT_NE(messages.find("EACCES"), std::string::npos);
  EXPECT_TRUE(TraceFileNames(dir).empty());
}

// A directory in place of the closed file one is not taken up again: it is
// a file that cannot be opened, and it stays where it is.
TEST_F(TraceFileSwitch, FailedOpenGivesOpenMessageAndFatalError) {
  ASSERT_EQ(mkdir(Path(TEST_STEM "001.txt").c_str(), 0700), 0);
  EXPECT_EQ(SetDataToWriteBuffer(cb, "x\n"), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_EQ(TraceFileIsOpen(cb), 0);
  std::string messages = ErrorFileText(dir);
  EXPECT_NE(messages.find("File      : " + Path(TEST_STEM "001.txt") +
                          "\n  Operation : open\n  Result    : EINVAL - Invalid argument (22)."),
            std::string::npos)
      << messages;
  EXPECT_EQ(WriteTraceData(cb, "y\n"), -1);
  EXPECT_EQ(SetDataToWriteBuffer(cb, "y\n"), -1);
  struct stat status;
  EXPECT_EQ(lstat(Path(TEST_STEM "001.txt").c_str(), &status), 0);
  EXPECT_TRUE(S_ISDIR(status.st_mode));
  rmdir(Path(TEST_STEM "001.txt").c_str());
}

TEST_F(TraceFileSwitch, FailedStreamOpenGivesFopenMessage) {
  cb->Settings.WriteStream = 1;
  ASSERT_EQ(mkdir(Path(TEST_STEM "001.txt").c_str(), 0700), 0);
  EXPECT_EQ(SetDataToWriteBuffer(cb, "x\n"), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_NE(ErrorFileText(dir).find("Operation : fopen\n"), std::string::npos);
  rmdir(Path(TEST_STEM "001.txt").c_str());
}

// A link planted at the closed file's name is never followed: its target
// keeps its bytes, the link stays, and tracing stops with the open message.
TEST_F(TraceFileSwitch, LinkAtTheClosedNameIsNotFollowed) {
  std::string target = Path("victim");
  dir.Write("victim", "precious\n");
  ASSERT_EQ(symlink(target.c_str(), Path(TEST_STEM "001.txt").c_str()), 0);
  EXPECT_EQ(SetDataToWriteBuffer(cb, "x\n"), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_EQ(ReadWholeFile(target), "precious\n");
  EXPECT_NE(ErrorFileText(dir).find("Result    : ELOOP - Too many levels of symbolic links (40)."),
            std::string::npos)
      << ErrorFileText(dir);
  unlink(Path(TEST_STEM "001.txt").c_str());
}

// A link planted at the name of a new file: the open refuses it.
TEST_F(TraceFileSwitch, LinkRacedInAtTheNewNameIsNotFollowed) {
  std::string target = Path("victim");
  dir.Write("victim", "precious\n");
  snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s", Path("planted.t").c_str());
  ASSERT_EQ(symlink(target.c_str(), cb->File.TraceFilePath), 0);
  int fd = OpenExitFile(cb->File.TraceFilePath, EXIT_FILE_CREATE_NEW);
  EXPECT_EQ(fd, -1);
  EXPECT_EQ(OpenExitFile(cb->File.TraceFilePath, EXIT_FILE_READ_WRITE), -1);
  EXPECT_EQ(errno, ELOOP);
  EXPECT_EQ(ReadWholeFile(target), "precious\n");
}

TEST_F(TraceFileSwitch, NullTextIsTakenAsEmpty) {
  EXPECT_EQ(SetDataToWriteBuffer(cb, nullptr), 0);
  EXPECT_EQ(TraceFileIsOpen(cb), 1);
  EXPECT_EQ(WriteTraceData(cb, nullptr), -1);
  EXPECT_EQ(SetDataToWriteBuffer(nullptr, "x"), -1);
  CloseAndCompressFile(nullptr, nullptr);
}

} // namespace
