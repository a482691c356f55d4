// Messages written while reading "wz.def": 2008 once per reading, 2009 per
// bad line, 2010 per line beyond a full list; none without a control block.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "config/parameters.h"
#include "exit/control_block.h"
#include "tests/unit/test_support.h"

namespace {

class ParameterMessages : public ::testing::Test {
protected:
  TempDir dir_;
  char exitData_[32];
  ParameterSettings settings_;
  ExitControlBlock *cb_ = nullptr;

  void SetUp() override {
    SetFixedField(exitData_, sizeof exitData_, dir_.Path());
    cb_ = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    snprintf(cb_->File.TraceDirectory, sizeof cb_->File.TraceDirectory, "%s/", dir_.Path().c_str());
    strcpy(cb_->Identity.ProcessName, "payroll");
    cb_->Identity.ProcessId = 77;
    cb_->Identity.ThreadId = 88;
  }
  void TearDown() override { free(cb_); }

  int32_t Read(const std::string &content, ExitControlBlock *context) {
    dir_.Write("wz.def", content);
    return ReadParameterFile(context, exitData_, &settings_);
  }
  std::string Path() const { return dir_.Path() + "/wz.def"; }
  // The message part (after "MsgNNNN: ") of every line of the error file.
  std::vector<std::string> Messages() const {
    std::vector<std::string> lines;
    std::istringstream in(dir_.Read("wz_apiexit_error_77_88.txt"));
    std::string line;
    while (std::getline(in, line)) {
      size_t at = line.find(") Msg");
      lines.push_back(at == std::string::npos ? line : line.substr(at + 2));
    }
    return lines;
  }
  static std::string Msg2008(const std::string &path) {
    return "Msg2008: Invalid parameter was found in " + path +
           " file.  (This message might be put to a message file in another directory.)";
  }
  static std::string Msg2009(int line, const std::string &text) {
    return "Msg2009:   Line : " + std::to_string(line) + "   Parameter : " + text;
  }
};

TEST_F(ParameterMessages, GoodFileWritesNothing) {
  EXPECT_EQ(Read("# settings\nWriteCache=no\n\nTargetQueue=Q1,P\n", cb_), 0);
  EXPECT_TRUE(Messages().empty());
}

// A file of many bad lines reports the first hundred and counts the rest
// in one line, so that a connection never floods the error file.
TEST_F(ParameterMessages, OnlyTheFirstHundredBadLinesAreReported) {
  std::string content = "WriteCache=no\n";
  for (int i = 0; i < 1000; i++) {
    content += "bad line " + std::to_string(i) + "\n";
  }
  EXPECT_EQ(Read(content, cb_), -1);
  EXPECT_EQ(settings_.WriteCache, 0);
  std::vector<std::string> lines = Messages();
  ASSERT_EQ(lines.size(), 102u);
  EXPECT_EQ(lines[0], Msg2008(Path()));
  EXPECT_EQ(lines[1], Msg2009(2, "bad line 0"));
  EXPECT_EQ(lines[100], Msg2009(101, "bad line 99"));
  EXPECT_EQ(lines[101],
            "Msg2011:   900 more invalid line(s) in " + Path() + " file are not shown.");
}

TEST_F(ParameterMessages, ExactlyAHundredBadLinesNeedNoCount) {
  std::string content;
  for (int i = 0; i < 100; i++) {
    content += "bad\n";
  }
  EXPECT_EQ(Read(content, cb_), -1);
  EXPECT_EQ(Messages().size(), 101u);
}

TEST_F(ParameterMessages, TwoBadLinesGiveOne2008AndTwo2009) {
  EXPECT_EQ(Read("# first line\n"
                 "WriteBufferSize=4999   \t\n"
                 "WriteCache=no\n"
                 "writecache=maybe # lower case\r\n",
                 cb_),
            -1);
  EXPECT_EQ(settings_.WriteBufferSize, 10000);
  EXPECT_EQ(settings_.WriteCache, 0);
  std::vector<std::string> expected = {
      Msg2008(Path()),
      Msg2009(2, "WriteBufferSize=4999"),
      Msg2009(4, "writecache=maybe # lower case"),
  };
  EXPECT_EQ(Messages(), expected);
}

TEST_F(ParameterMessages, EachReadingReports2008Again) {
  EXPECT_EQ(Read("WriteBufferSize=1\n", cb_), -1);
  EXPECT_EQ(Read("WriteBufferSize=1\n", cb_), -1);
  std::vector<std::string> expected = {
      Msg2008(Path()),
      Msg2009(1, "WriteBufferSize=1"),
      Msg2008(Path()),
      Msg2009(1, "WriteBufferSize=1"),
  };
  EXPECT_EQ(Messages(), expected);
}

TEST_F(ParameterMessages, PiecesOfALongLineAreNumberedOnTheirOwn) {
  // Line 1 is 600 characters: its second piece (line 2) is a bad keyword.
  std::string first = "ShowMaxLenPut=123" + std::string(481, ' ');
  std::string second = "Nonsense=1" + std::string(92, ' ');
  ASSERT_EQ(first.size() + second.size(), 600u);
  EXPECT_EQ(Read(first + second + "\nMaxFileSize=1\n", cb_), -1);
  std::vector<std::string> expected = {
      Msg2008(Path()),
      Msg2009(2, "Nonsense=1"),
      Msg2009(3, "MaxFileSize=1"),
  };
  EXPECT_EQ(Messages(), expected);
  EXPECT_EQ(settings_.ShowMaxLenPut, 123);
}

TEST_F(ParameterMessages, LineWithoutValueIsReportedAsRead) {
  EXPECT_EQ(Read("  ShowXaCalls   \n", cb_), -1);
  std::vector<std::string> expected = {Msg2008(Path()), Msg2009(1, "  ShowXaCalls")};
  EXPECT_EQ(Messages(), expected);
}

TEST_F(ParameterMessages, FullListsWrite2010AndTheLineIsNotBad) {
  std::string content;
  for (int i = 0; i < 102; i++) {
    std::string n = std::to_string(i);
    content += "TargetQueue=Q" + n + "\n";
    content += "TargetProcess=p" + n + "\n";
    content += "ExcludeProcess=x" + n + "\n";
    content += "PutAlertSuppress=2,*,ZKPUT,Q" + n + ",*\n";
    content += "ShowSummaryDataSuppress=2,*,ZKPUT,Q" + n + "\n";
  }
  EXPECT_EQ(Read(content, cb_), 0);
  EXPECT_EQ(settings_.TargetQueueCount, 100);
  std::vector<std::string> expected;
  for (int i = 0; i < 2; i++) {
    for (const char *keyword : {"TargetQueue", "TargetProcess", "ExcludeProcess",
                                "PutAlertSuppress", "ShowSummaryDataSuppress"}) {
      expected.push_back(std::string("Msg2010: Too many ") + keyword +
                         " parameters.  Maximum count allowed is 100");
    }
  }
  EXPECT_EQ(Messages(), expected);
}

// Lines beyond a full list are reported like bad lines: the first hundred
// one by one (the keyword as written, blanks around it dropped), the rest
// counted in one line.
TEST_F(ParameterMessages, OnlyTheFirstHundredFullListLinesAreReported) {
  std::string content;
  for (int i = 0; i < 100; i++) {
    content += "TargetProcess=p" + std::to_string(i) + "\n";
  }
  for (int i = 0; i < 350; i++) {
    content += "  TargetProcess = extra" + std::to_string(i) + "\n";
  }
  EXPECT_EQ(Read(content, cb_), 0);
  EXPECT_EQ(settings_.TargetProcessCount, 100);
  std::vector<std::string> lines = Messages();
  ASSERT_EQ(lines.size(), 101u);
  EXPECT_EQ(lines[0], "Msg2010: Too many TargetProcess parameters.  Maximum count allowed is 100");
  EXPECT_EQ(lines[99], lines[0]);
  EXPECT_EQ(lines[100],
            "Msg2012:   250 more line(s) for full lists in " + Path() + " file are not shown.");
}

TEST_F(ParameterMessages, MissingFileWritesNothing) {
  EXPECT_EQ(ReadParameterFile(cb_, exitData_, &settings_), 0);
  EXPECT_EQ(settings_.ParameterFilePath[0], '\0');
  EXPECT_TRUE(dir_.List().empty());
}

TEST_F(ParameterMessages, NoContextNoMessages) {
  // Without a control block the messages would go to the current
  // directory: run there to see that nothing is written.
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(dir_.Path().c_str()), 0);
  int32_t result = Read("WriteBufferSize=1\nbogus\n", nullptr);
  std::string fill;
  for (int i = 0; i < 101; i++) {
    fill += "TargetQueue=Q" + std::to_string(i) + "\n";
  }
  int32_t fullResult = Read(fill, nullptr);
  std::vector<std::string> files = dir_.List();
  ASSERT_EQ(chdir(previous), 0);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(fullResult, 0);
  EXPECT_EQ(files, std::vector<std::string>{"wz.def"});
}

} // namespace
