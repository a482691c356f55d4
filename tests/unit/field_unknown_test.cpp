// An unknown value in a real trace file: the banner where it was met, one
// alert message, and the closing block when the file is closed.
#include <gtest/gtest.h>

#include "format/field_primitives.h"
#include "tests/unit/trace_file_test_support.h"

TEST(FieldUnknown, UnknownOptionBitEndsTheFileWithTheUnknownBlock) {
  TempDir dir;
  TraceFileBlock block(dir.Path());
  ExitControlBlock *cb = block.cb;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);

  uint32_t counter = 0;
  ShowFieldName(cb, "Options");
  ShowAttributeDescription(cb, &counter, "SYNCPOINT");
  WriteTraceData(cb, "\n");
  ShowUnknownAttribute(cb, "ZKPMO - Options", 0x40000000u);
  ShowFieldValueZklong(cb, "Context", 0, 1);
  CloseAndCompressFile(cb, nullptr);
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);

  std::string content = ReadWholeFile(dir.File(TEST_STEM "001.txt"));
  const std::string banner = "|> Options                  : SYNCPOINT\n"
                             "|**********************************\n"
                             "|* Unknown : ZKPMO - Options 0x40000000\n"
                             "|**********************************\n"
                             "|> Context                  : 0\n";
  size_t at = content.find(banner);
  ASSERT_NE(at, std::string::npos) << content;
  size_t closing = content.find("|**   Unknown ZK attribute exists.\n");
  ASSERT_NE(closing, std::string::npos) << content;
  EXPECT_GT(closing, at);
  EXPECT_EQ(CountOf(content, "Unknown ZK attribute exists."), 1u);

  std::string alerts = ErrorFileText(dir);
  EXPECT_EQ(CountOf(alerts, "Msg3101: Unknown API attribute : ZKPMO - Options value 0x40000000\n"),
            1u)
      << alerts;
}

TEST(FieldUnknown, NoUnknownValueNoClosingBlock) {
  TempDir dir;
  TraceFileBlock block(dir.Path());
  ExitControlBlock *cb = block.cb;
  ASSERT_EQ(SetDataToWriteBuffer(cb, ""), 0);
  ShowFieldValueZklong(cb, "Options", 0, 1);
  CloseAndCompressFile(cb, nullptr);
  std::string content = ReadWholeFile(dir.File(TEST_STEM "001.txt"));
  EXPECT_NE(content.find("|> Options                  : 0\n"), std::string::npos) << content;
  EXPECT_EQ(content.find("Unknown"), std::string::npos) << content;
  EXPECT_EQ(ErrorFileText(dir), "");
}
