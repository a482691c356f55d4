// The write buffer: collecting small texts, writing large ones straight,
// flushing by size and by interval, the cache-off and stream modes, and
// write failures.
#include <gtest/gtest.h>

#include <time.h>

#include "tests/unit/trace_file_test_support.h"

namespace {

struct TraceFileBuffer : ::testing::Test {
  TempDir dir;
  TraceFileBlock block{dir.Path()};
  ExitControlBlock *cb = block.cb;

  // Opens the first file; whatever the profile wrote is on disk then.
  long long Open() {
    EXPECT_EQ(SetDataToWriteBuffer(cb, ""), 0);
    EXPECT_EQ(FlushTraceDataInBuffer(cb), 0);
    return SizeOfFile(cb->File.TraceFilePath);
  }
  std::string OnDisk() const { return ReadWholeFile(cb->File.TraceFilePath); }
  // Replaces the open descriptor by one that cannot be written.
  void MakeDescriptorReadOnly() {
    int readOnly = open(cb->File.TraceFilePath, O_RDONLY);
    ASSERT_GE(readOnly, 0);
    ASSERT_EQ(dup2(readOnly, cb->File.FileDescriptor), cb->File.FileDescriptor);
    close(readOnly);
  }
};

TEST_F(TraceFileBuffer, SmallTextsWaitInTheBufferUntilFlushed) {
  long long before = Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "first\n"), 0);
  ASSERT_EQ(SetDataToWriteBuffer(cb, "second\n"), 0);
  ASSERT_EQ(WriteTraceData(cb, "third\n"), 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
  EXPECT_EQ(cb->WriteBufferFill, 19);
  EXPECT_STREQ(cb->WriteBuffer, "first\nsecond\nthird\n");
  ASSERT_EQ(FlushTraceDataInBuffer(cb), 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before + 19);
  EXPECT_EQ(OnDisk().substr((size_t)before), "first\nsecond\nthird\n");
}

TEST_F(TraceFileBuffer, FlushOfAnEmptyBufferWritesNothing) {
  long long before = Open();
  EXPECT_EQ(FlushTraceDataInBuffer(cb), 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
}

TEST_F(TraceFileBuffer, TextAsLargeAsTheBufferGoesStraightToDisk) {
  long long before = Open();
  std::string large(5000, 'L');
  ASSERT_EQ(WriteTraceData(cb, large.c_str()), 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before + 5000);
  // One byte less is buffered.
  std::string smaller(4999, 'S');
  ASSERT_EQ(WriteTraceData(cb, smaller.c_str()), 0);
  EXPECT_EQ(cb->WriteBufferFill, 4999);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before + 5000);
}

TEST_F(TraceFileBuffer, BufferedTextsGoOutBeforeALargeText) {
  long long before = Open();
  ASSERT_EQ(WriteTraceData(cb, "small\n"), 0);
  std::string large(6000, 'L');
  ASSERT_EQ(WriteTraceData(cb, large.c_str()), 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(OnDisk().substr((size_t)before), "small\n" + large);
}

TEST_F(TraceFileBuffer, BufferIsFlushedWhenTheNextTextWouldFillIt) {
  long long before = Open();
  std::string a(3000, 'a');
  std::string b(1999, 'b');
  std::string c(1, 'c');
  ASSERT_EQ(WriteTraceData(cb, a.c_str()), 0);
  ASSERT_EQ(WriteTraceData(cb, b.c_str()), 0); // 4999: still fits
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
  ASSERT_EQ(WriteTraceData(cb, c.c_str()), 0); // would reach 5000
  EXPECT_EQ(OnDisk().substr((size_t)before), a + b);
  EXPECT_EQ(cb->WriteBufferFill, 1);
  EXPECT_STREQ(cb->WriteBuffer, "c");
  EXPECT_EQ(cb->File.CurrentFileSize, before + 5000);
}

TEST_F(TraceFileBuffer, BufferNeverWritesPastItsEnd) {
  // A block with guard bytes behind the buffer.
  const int32_t size = 5000;
  const int32_t guard = 64;
  ExitControlBlock *saved = cb;
  cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock) + size + guard);
  memcpy(cb, saved, sizeof(ExitControlBlock));
  memset(cb->WriteBuffer + size, 0x5A, guard);
  Open();
  srand(7);
  for (int i = 0; i < 3000; i++) {
    std::string text((size_t)(1 + rand() % 5200), (char)('a' + i % 26));
    ASSERT_EQ(WriteTraceData(cb, text.c_str()), 0);
    ASSERT_LT(cb->WriteBufferFill, size);
  }
  for (int32_t i = 0; i < guard; i++) {
    ASSERT_EQ((unsigned char)cb->WriteBuffer[size + i], 0x5A) << "guard byte " << i;
  }
  ASSERT_EQ(FlushTraceDataInBuffer(cb), 0);
  EXPECT_EQ(cb->File.CurrentFileSize, SizeOfFile(cb->File.TraceFilePath));
  close(cb->File.FileDescriptor);
  free(cb);
  saved->File.FileDescriptor = 0;
  cb = saved;
}

TEST_F(TraceFileBuffer, LastFlushTimeStartsAtTheOpen) {
  time_t before = time(nullptr);
  Open();
  time_t after = time(nullptr);
  EXPECT_GE(cb->File.LastFlushTime, before);
  EXPECT_LE(cb->File.LastFlushTime, after);
}

TEST_F(TraceFileBuffer, IntervalFlushWritesTheBufferWhenTheIntervalHasPassed) {
  cb->Settings.WriteInterval = 10;
  long long before = Open();
  ASSERT_EQ(WriteTraceData(cb, "early\n"), 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
  // Ten seconds since the last flush is not yet "earlier than now".
  time_t now = time(nullptr);
  cb->File.LastFlushTime = now - 10 + 2;
  ASSERT_EQ(WriteTraceData(cb, "middle\n"), 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
  // Eleven seconds are.
  cb->File.LastFlushTime = now - 11;
  ASSERT_EQ(WriteTraceData(cb, "late\n"), 0);
  EXPECT_EQ(OnDisk().substr((size_t)before), "early\nmiddle\n");
  EXPECT_STREQ(cb->WriteBuffer, "late\n");
  EXPECT_GE(cb->File.LastFlushTime, now);
}

TEST_F(TraceFileBuffer, IntervalExactlyPassedIsNotYetDue) {
  cb->Settings.WriteInterval = 10;
  long long before = Open();
  ASSERT_EQ(WriteTraceData(cb, "waiting\n"), 0);
  // Last flush + interval == now: not earlier than now. Retried when the
  // clock moves on during the write.
  bool measured = false;
  for (int attempt = 0; attempt < 5 && !measured; attempt++) {
    time_t now = time(nullptr);
    cb->File.LastFlushTime = now - 10;
    ASSERT_EQ(WriteTraceData(cb, "x"), 0);
    if (time(nullptr) == now) {
      measured = true;
      EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
      EXPECT_EQ(cb->File.LastFlushTime, now - 10);
    }
  }
  EXPECT_TRUE(measured);
}

TEST_F(TraceFileBuffer, IntervalZeroNeverFlushesByTime) {
  cb->Settings.WriteInterval = 0;
  long long before = Open();
  cb->File.LastFlushTime = 0;
  ASSERT_EQ(WriteTraceData(cb, "one\n"), 0);
  ASSERT_EQ(WriteTraceData(cb, "two\n"), 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
  EXPECT_EQ(cb->File.LastFlushTime, 0);
}

TEST_F(TraceFileBuffer, EmptyBufferIsNotFlushedByTime) {
  cb->Settings.WriteInterval = 1;
  long long before = Open();
  cb->File.LastFlushTime = 1000;
  ASSERT_EQ(WriteTraceData(cb, "only\n"), 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before);
  EXPECT_EQ(cb->File.LastFlushTime, 1000); // the clock was not consulted
}

TEST_F(TraceFileBuffer, SizeFlushRestartsTheIntervalWhenOneIsSet) {
  cb->Settings.WriteInterval = 30;
  Open();
  cb->File.LastFlushTime = 1000;
  std::string a(4000, 'a');
  std::string b(1000, 'b');
  time_t before = time(nullptr);
  ASSERT_EQ(WriteTraceData(cb, a.c_str()), 0);
  ASSERT_EQ(WriteTraceData(cb, b.c_str()), 0); // size-triggered
  EXPECT_GE(cb->File.LastFlushTime, before);
  EXPECT_EQ(cb->WriteBufferFill, 1000);
}

TEST_F(TraceFileBuffer, WithoutCacheEveryTextGoesStraightToDisk) {
  cb->Settings.WriteCache = 0;
  long long before = Open();
  ASSERT_EQ(SetDataToWriteBuffer(cb, "direct one\n"), 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(SizeOfFile(cb->File.TraceFilePath), before + 11);
  ASSERT_EQ(WriteTraceData(cb, "direct two\n"), 0);
  EXPECT_EQ(OnDisk().substr((size_t)before), "direct one\ndirect two\n");
  EXPECT_EQ(cb->File.CurrentFileSize, SizeOfFile(cb->File.TraceFilePath));
}

TEST_F(TraceFileBuffer, StreamModeWritesThroughTheStream) {
  cb->Settings.WriteStream = 1;
  ASSERT_EQ(SetDataToWriteBuffer(cb, "streamed line\n"), 0);
  EXPECT_NE(cb->File.FileStream, nullptr);
  EXPECT_EQ(cb->File.FileDescriptor, 0);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(FlushTraceDataInBuffer(cb), 0);
  std::string path = cb->File.TraceFilePath;
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(cb->File.FileStream, nullptr);
  std::string closed = path.substr(0, path.size() - 2) + ".txt";
  EXPECT_NE(ReadWholeFile(closed).find("streamed line\n"), std::string::npos);
}

TEST_F(TraceFileBuffer, FailedDirectWriteStopsTheTrace) {
  cb->Settings.WriteCache = 0;
  Open();
  MakeDescriptorReadOnly();
  int64_t size = cb->File.CurrentFileSize;
  EXPECT_EQ(WriteTraceData(cb, "lost\n"), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_EQ(cb->File.CurrentFileSize, size);
  std::string messages = ErrorFileText(dir);
  EXPECT_NE(messages.find(std::string("File      : ") + cb->File.TraceFilePath +
                          "\n  Operation : write\n"),
            std::string::npos)
      << messages;
  EXPECT_NE(messages.find("EBADF"), std::string::npos);
  EXPECT_EQ(SetDataToWriteBuffer(cb, "more\n"), -1);
}

TEST_F(TraceFileBuffer, FailedFlushStopsTheTraceAndEmptiesTheBuffer) {
  Open();
  ASSERT_EQ(WriteTraceData(cb, "waiting\n"), 0);
  MakeDescriptorReadOnly();
  EXPECT_EQ(FlushTraceDataInBuffer(cb), -1);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_NE(ErrorFileText(dir).find("Operation : write\n"), std::string::npos);
}

TEST_F(TraceFileBuffer, FailedFputsStopsTheTrace) {
  cb->Settings.WriteStream = 1;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  // A stream that cannot be written, in place of the trace file's.
  FILE *readOnly = fopen(cb->File.TraceFilePath, "r");
  ASSERT_NE(readOnly, nullptr);
  fclose(cb->File.FileStream);
  cb->File.FileStream = readOnly;
  EXPECT_EQ(WriteTraceData(cb, "lost\n"), -1);
  EXPECT_EQ(cb->FatalError, 1);
  EXPECT_NE(ErrorFileText(dir).find("Operation : fputs\n"), std::string::npos);
}

TEST_F(TraceFileBuffer, WritingWithNoFileOpenIsRefused) {
  EXPECT_EQ(WriteTraceData(cb, "nowhere\n"), -1);
  EXPECT_EQ(cb->WriteBufferFill, 0);
  EXPECT_EQ(FlushTraceDataInBuffer(cb), 0);
  EXPECT_EQ(cb->FatalError, 0);
  EXPECT_TRUE(TraceFileNames(dir).empty());
}

TEST_F(TraceFileBuffer, ProgressMarkIsShownAndRaised) {
  Open();
  cb->File.ProgressMark = cb->File.CurrentFileSize + 3;
  int64_t mark = cb->File.ProgressMark;
  ::testing::internal::CaptureStdout();
  ASSERT_EQ(WriteTraceData(cb, "ab"), 0); // reaches the mark, does not pass it
  ASSERT_EQ(WriteTraceData(cb, "cd"), 0); // passes it
  fflush(stdout);
  std::string shown = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(shown, "<" + std::to_string(mark / 1000000) + "MB>");
  EXPECT_EQ(cb->File.ProgressMark, mark + 10000000);
}

} // namespace
