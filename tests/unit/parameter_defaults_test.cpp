// Defaults of the settings block, the keyword table and the sample file.
#include <gtest/gtest.h>

#include <string.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "config/parameters.h"
#include "tests/unit/test_support.h"

namespace {

void ExpectDefaults(const ParameterSettings &s) {
  EXPECT_EQ(memcmp(s.EyeCatcher, "KT5RPM\0\0", 8), 0);
  EXPECT_EQ(s.CompressCommand[0], '\0');
  EXPECT_EQ(s.MaxFileSize, 100000000);
  EXPECT_EQ(s.CheckUpdateRequestInterval, 30);
  EXPECT_EQ(s.WriteBufferSize, 10000);
  EXPECT_EQ(s.WriteInterval, 30);
  EXPECT_EQ(s.ShowMaxLenPut, -1);
  EXPECT_EQ(s.ShowMaxLenGet, -1);
  EXPECT_EQ(s.ShowMaxLenChannel, -1);
  EXPECT_EQ(s.ShowMaxLenParsedContent, -1);
  EXPECT_EQ(s.ShowMaxLenCharv, -1);
  EXPECT_EQ(s.ShowMaxLenCharvString, 400);
  EXPECT_EQ(s.MaxParsedOutputLineLength, 100);
  EXPECT_EQ(s.ShowPerformanceIntervalTime, 0);
  EXPECT_EQ(s.ShowPerformanceIntervalCount, 0);
  EXPECT_EQ(s.ShowHexCharCcsid, 0);
  EXPECT_EQ(s.CompressFileSizeThreshold, 1000000);
  EXPECT_EQ(s.ShowPerformanceOnly, 0);
  EXPECT_EQ(s.ShowSummaryOnly, 0);
  EXPECT_EQ(s.ShowDataConvOnGet, 0);
  EXPECT_EQ(s.ShowHexCharImage, 1);
  EXPECT_EQ(s.ShowParsedData, 1);
  EXPECT_EQ(s.ShowParsedMsgContent, 1);
  EXPECT_EQ(s.ShowProcessEnvValue, 0);
  EXPECT_EQ(s.ShowZkVersion, 1);
  EXPECT_EQ(s.ShowSummaryCorrelId, 1);
  EXPECT_EQ(s.ShowChannelAttributes, 1);
  EXPECT_EQ(s.ShowXaCalls, 0);
  EXPECT_EQ(s.Spare, 0);
  EXPECT_EQ(s.WriteCache, 1);
  EXPECT_EQ(s.WriteStream, 0);
  EXPECT_EQ(s.WriteAfterEachApi, 1);
  EXPECT_EQ(s.CountSelectedCallsOnly, 0);
  EXPECT_EQ(s.ExecFlag, 1);
  EXPECT_EQ(s.CreateEmptyFile, 1);
  EXPECT_EQ(s.PutAlertFileInfo, 0);
  EXPECT_EQ(s.PutAlertFileWarning, 0);
  EXPECT_EQ(s.PutAlertFileError, 1);
  EXPECT_EQ(s.NoExitProcessIfProcNameMismatch, 0);
  EXPECT_EQ(s.LocaleSwitch, 0);
  EXPECT_EQ(s.fx40217, 0);
  EXPECT_EQ(s.TargetQueueCount, 0);
  EXPECT_EQ(s.TargetProcessCount, 0);
  EXPECT_EQ(s.ExcludeProcessCount, 0);
  EXPECT_EQ(s.PutAlertSuppressCount, 0);
  EXPECT_EQ(s.ShowSummaryDataSuppressCount, 0);
}

bool AllZero(const void *p, size_t n) {
  const unsigned char *b = (const unsigned char *)p;
  for (size_t i = 0; i < n; i++) {
    if (b[i] != 0) {
      return false;
    }
  }
  return true;
}

std::string SourceRoot() {
  std::string file = __FILE__;
  return file.substr(0, file.rfind("tests/unit/"));
}

std::string ReadSample() {
  std::ifstream in(SourceRoot() + "docs/wz.def.sample", std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// The block as read, with the path of the file blanked out so that it can
// be compared with a block that was never read from a file.
ParameterSettings WithoutPath(const ParameterSettings &s) {
  ParameterSettings copy;
  memcpy(&copy, &s, sizeof copy);
  memset(copy.ParameterFilePath, 0, sizeof copy.ParameterFilePath);
  return copy;
}

TEST(SetDefaultParameterSettings, SetsEveryDefault) {
  ParameterSettings s;
  memset(&s, 0xA5, sizeof s);
  SetDefaultParameterSettings(&s);
  ExpectDefaults(s);
  EXPECT_TRUE(AllZero(s.ParameterFilePath, sizeof s.ParameterFilePath));
  EXPECT_TRUE(AllZero(s.CompressCommand, sizeof s.CompressCommand));
  EXPECT_TRUE(AllZero(s.TargetQueue, sizeof s.TargetQueue));
  EXPECT_TRUE(AllZero(s.TargetProcess, sizeof s.TargetProcess));
  EXPECT_TRUE(AllZero(s.ExcludeProcess, sizeof s.ExcludeProcess));
  EXPECT_TRUE(AllZero(s.PutAlertSuppress, sizeof s.PutAlertSuppress));
  EXPECT_TRUE(AllZero(s.ShowSummaryDataSuppress, sizeof s.ShowSummaryDataSuppress));
}

TEST(ParameterSettingsLayout, FieldsInTheirOrder) {
  EXPECT_EQ(offsetof(ParameterSettings, EyeCatcher), 0u);
  EXPECT_EQ(offsetof(ParameterSettings, ParameterFilePath), 8u);
  EXPECT_EQ(offsetof(ParameterSettings, CompressCommand), 308u);
  EXPECT_EQ(offsetof(ParameterSettings, MaxFileSize), 608u);
  EXPECT_LT(offsetof(ParameterSettings, CompressFileSizeThreshold),
            offsetof(ParameterSettings, ShowPerformanceOnly));
  EXPECT_EQ(offsetof(ParameterSettings, fx40217) - offsetof(ParameterSettings, ShowPerformanceOnly),
            23u);
  EXPECT_EQ(offsetof(ParameterSettings, Spare) - offsetof(ParameterSettings, ShowPerformanceOnly),
            11u);
  EXPECT_LT(offsetof(ParameterSettings, ShowSummaryDataSuppressCount),
            offsetof(ParameterSettings, TargetQueue));
  EXPECT_EQ(sizeof(TargetQueueEntry), 53u);
  EXPECT_EQ(sizeof(((ParameterSettings *)nullptr)->TargetProcess), 100u * 32u);
}

TEST(ParameterKeywordTable, PerformanceIntervalCountIsTestedTwice) {
  int rows = 0;
  std::set<std::string> seen;
  std::set<std::string> duplicated;
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    if (!seen.insert(row->Keyword).second) {
      duplicated.insert(row->Keyword);
    }
    if (strcmp(row->Keyword, "ShowPerformanceIntervalCount") == 0) {
      rows++;
    }
  }
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(duplicated, std::set<std::string>{"ShowPerformanceIntervalCount"});
}

TEST(ParameterKeywordTable, HoldsEveryKeyword) {
  const std::set<std::string> expected = {"WriteCache",
                                          "WriteStream",
                                          "WriteAfterEachApi",
                                          "ShowDataConvOnGet",
                                          "ShowSummaryOnly",
                                          "ShowParsedData",
                                          "ShowParsedMsgContent",
                                          "ShowHexCharImage",
                                          "CreateEmptyFile",
                                          "ShowPerformanceOnly",
                                          "PutAlertFileError",
                                          "PutAlertFileWarning",
                                          "PutAlertFileInfo",
                                          "ShowProcessEnvValue",
                                          "ShowZkVersion",
                                          "ShowSummaryCorrelId",
                                          "CountSelectedCallsOnly",
                                          "NoExitProcessIfProcNameMismatch",
                                          "ShowChannelAttributes",
                                          "ShowXaCalls",
                                          "fx40217",
                                          "ExecFlag",
                                          "WriteBufferSize",
                                          "WriteInterval",
                                          "CompressFileSizeThreshold",
                                          "MaxFileSize",
                                          "MaxParsedOutputLineLength",
                                          "ShowMaxLenPut",
                                          "ShowMaxDataLengthPut",
                                          "ShowMaxLenGet",
                                          "ShowMaxDataLengthGet",
                                          "ShowMaxLenChannel",
                                          "ShowMaxDataLengthChannel",
                                          "ShowMaxLenParsedContent",
                                          "ShowMaxLenCharv",
                                          "ShowMaxLenCharvString",
                                          "ShowPerformanceIntervalTime",
                                          "ShowPerformanceIntervalCount",
                                          "ShowHexCharCcsid",
                                          "CheckUpdateRequestInterval",
                                          "CompressCommand",
                                          "TargetProcess",
                                          "ExcludeProcess",
                                          "TargetQueue",
                                          "PutAlertSuppress",
                                          "ShowSummaryDataSuppress"};
  std::set<std::string> found;
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    found.insert(row->Keyword);
  }
  EXPECT_EQ(found, expected);
}

class SampleFile : public ::testing::Test {
protected:
  TempDir dir_;
  char exitData_[32];
  ParameterSettings defaults_;
  ParameterSettings settings_;
  void SetUp() override {
    SetFixedField(exitData_, sizeof exitData_, dir_.Path());
    SetDefaultParameterSettings(&defaults_);
  }
};

TEST_F(SampleFile, ParsesWithNoBadLineAndChangesNothing) {
  std::string sample = ReadSample();
  ASSERT_FALSE(sample.empty());
  dir_.Write("wz.def", sample);
  EXPECT_EQ(ReadParameterFile(nullptr, exitData_, &settings_), 0);
  EXPECT_EQ(std::string(settings_.ParameterFilePath), dir_.Path() + "/wz.def");
  ParameterSettings read = WithoutPath(settings_);
  EXPECT_EQ(memcmp(&read, &defaults_, sizeof read), 0);
}

// Every "#Keyword=value" line of the sample shows the default: with the
// "#" taken away the file must still parse cleanly and set the defaults.
TEST_F(SampleFile, ShownValuesAreTheDefaults) {
  std::istringstream in(ReadSample());
  std::string line, uncommented;
  std::set<std::string> shown;
  while (std::getline(in, line)) {
    if (line.size() > 1 && line[0] == '#' && isalpha((unsigned char)line[1])) {
      uncommented += line.substr(1) + "\n";
      shown.insert(line.substr(1, line.find('=') - 1));
    }
  }
  dir_.Write("wz.def", uncommented);
  EXPECT_EQ(ReadParameterFile(nullptr, exitData_, &settings_), 0);
  ParameterSettings read = WithoutPath(settings_);
  EXPECT_EQ(memcmp(&read, &defaults_, sizeof read), 0);
  ExpectDefaults(settings_);

  // Every single-valued keyword is shown with its default.
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    if (row->Kind <= PARM_KIND_INT64_RANGE) {
      EXPECT_EQ(shown.count(row->Keyword), 1u) << row->Keyword;
    }
  }
}

TEST_F(SampleFile, MentionsEveryKeyword) {
  std::string sample = ReadSample();
  for (const ParameterKeywordEntry *row = ParameterKeywordTable; row->Keyword != nullptr; row++) {
    EXPECT_NE(sample.find(std::string(row->Keyword) + "="), std::string::npos) << row->Keyword;
  }
}

} // namespace
