// Trace file names: the byte map, the name form, the directory search and
// the choice of the next sequence number.
#include <gtest/gtest.h>

#include "tests/unit/trace_file_test_support.h"

namespace {

struct TraceFileNames : ::testing::Test {
  TempDir dir;
  TraceFileBlock block{dir.Path()};
  ExitControlBlock *cb = block.cb;

  std::string Path(const std::string &name) const { return dir.File(name); }
};

TEST(TraceFileNameMap, KeepsLettersDigitsDotAndUnderscoreOnly) {
  for (int byte = 0; byte < 256; byte++) {
    bool kept = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                (byte >= '0' && byte <= '9') || byte == '.' || byte == '_';
    unsigned char expected = kept ? (unsigned char)byte : (unsigned char)'_';
    EXPECT_EQ(ZkObjectNameToFileNameTable[byte], expected) << "byte " << byte;
  }
}

TEST(TraceFileNameMap, TranslatesOnlyTheGivenLength) {
  char text[] = "Q M/1.x_y*z";
  TranslateZkObjectNameToFileName(text, 7);
  EXPECT_STREQ(text, "Q_M_1.x_y*z");
  char zeros[4] = {'\0', ' ', '\0', '\0'};
  TranslateZkObjectNameToFileName(zeros, 3);
  EXPECT_EQ(std::string(zeros, 3), "___");
}

TEST_F(TraceFileNames, FirstTextOpensTheFirstFile) {
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "001.t"));
  EXPECT_TRUE(FileExists(Path(TEST_STEM "001.t")));
  EXPECT_EQ(cb->File.FileSequenceNumber, 1);
  EXPECT_EQ(TraceFileIsOpen(cb), 1);
  EXPECT_EQ(cb->File.NewFileOpened, 1);
}

TEST_F(TraceFileNames, QueueManagerNameIsMappedAndDotKept) {
  snprintf(cb->Identity.QMgrName, sizeof cb->Identity.QMgrName, "QM.A/B c");
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path("wz_QM.A_B_c_app_4242_7_001.t"));
}

TEST_F(TraceFileNames, EmptyQueueManagerNameGivesClient) {
  cb->Identity.QMgrName[0] = '\0';
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path("wz_client_app_4242_7_001.t"));
}

TEST_F(TraceFileNames, ProcessNameIsNotMapped) {
  snprintf(cb->Identity.ProcessName, sizeof cb->Identity.ProcessName, "my-app+1");
  cb->Identity.ZkaxcProcessId = 12;
  cb->Identity.ZkaxcThreadId = 345;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path("wz_ZKQM1_my-app+1_12_345_001.t"));
}

TEST_F(TraceFileNames, PerformanceOnlyNamesPerfAndForcesSummaryOnly) {
  cb->Settings.ShowPerformanceOnly = 1;
  cb->Settings.ShowSummaryOnly = 0;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "perf_001.t"));
  EXPECT_EQ(cb->Settings.ShowSummaryOnly, 1);
}

TEST_F(TraceFileNames, SummaryOnlyNamesSummary) {
  cb->Settings.ShowSummaryOnly = 1;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "summary_001.t"));
}

TEST_F(TraceFileNames, SequenceBelowThousandHasThreeDigitsAndAboveIsInFull) {
  int64_t size = -1;
  cb->File.FileSequenceNumber = 5;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "006.t"));
  EXPECT_EQ(size, 0);
  cb->File.FileSequenceNumber = 98;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "099.t"));
  cb->File.FileSequenceNumber = 999;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "1000.t"));
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "1001.t"));
}

TEST_F(TraceFileNames, CheckFileExistenceTellsExactPrefixAndNone) {
  dir.Write("abc.txt", "12345");
  dir.Write("abd.txt.gz", "");
  int64_t size = -1;
  EXPECT_EQ(CheckFileExistence(cb, "abc.txt", &size), 2);
  EXPECT_EQ(size, 5);
  EXPECT_EQ(CheckFileExistence(cb, "abd.txt", &size), 1);
  EXPECT_EQ(CheckFileExistence(cb, "ab", &size), 1);
  EXPECT_EQ(CheckFileExistence(cb, "abc.t", &size), 1);
  EXPECT_EQ(CheckFileExistence(cb, "xyz", &size), 0);
}

TEST_F(TraceFileNames, CheckFileExistenceFailsWithoutDirectory) {
  snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s/gone/", dir.Path().c_str());
  int64_t size = 0;
  EXPECT_EQ(CheckFileExistence(cb, "abc", &size), -1);
}

TEST_F(TraceFileNames, OpenFileOfANumberIsSkipped) {
  dir.Write(TEST_STEM "001.t", "another writer");
  int64_t size = -1;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "002.t"));
  EXPECT_EQ(size, 0);
  EXPECT_EQ(dir.Read(TEST_STEM "001.t"), "another writer");
}

TEST_F(TraceFileNames, CompressedFileOfANumberIsSkipped) {
  dir.Write(TEST_STEM "001.txt.txt.gz", "zz");
  int64_t size = -1;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "002.t"));
  EXPECT_TRUE(FileExists(Path(TEST_STEM "001.txt.txt.gz")));
}

TEST_F(TraceFileNames, ClosedFileOfANumberIsReopened) {
  dir.Write(TEST_STEM "001.txt", "0123456789");
  int64_t size = -1;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "001.t"));
  EXPECT_EQ(size, 10);
  EXPECT_EQ(cb->File.CurrentFileSize, 10);
  EXPECT_FALSE(FileExists(Path(TEST_STEM "001.txt")));
  EXPECT_EQ(dir.Read(TEST_STEM "001.t"), "0123456789");
}

TEST_F(TraceFileNames, OtherNamesDoNotCount) {
  dir.Write("wz_ZKQM1_app_4242_8_001.txt", "other thread");
  dir.Write("wz_ZKQM2_app_4242_7_001.t", "other queue manager");
  int64_t size = -1;
  ASSERT_EQ(GenerateNewFileName(cb, &size), 0);
  EXPECT_EQ(std::string(cb->File.TraceFilePath), Path(TEST_STEM "001.t"));
  EXPECT_EQ(size, 0);
}

} // namespace
