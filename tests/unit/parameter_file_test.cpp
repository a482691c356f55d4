// Reading "wz.def": line rules, single-valued keywords and their limits.
#include <gtest/gtest.h>

#include <locale.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "config/parameters.h"
#include "tests/unit/test_support.h"

namespace {

// Sets or removes an environment variable for one test and puts the old
// value back afterwards.
class EnvironmentGuard {
public:
  explicit EnvironmentGuard(const char *name) : name_(name) {
    const char *value = getenv(name);
    had_ = value != nullptr;
    if (had_) {
      value_ = value;
    }
  }
  ~EnvironmentGuard() {
    if (had_) {
      setenv(name_.c_str(), value_.c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }
  void Set(const char *value) { setenv(name_.c_str(), value, 1); }
  void Unset() { unsetenv(name_.c_str()); }

private:
  std::string name_;
  bool had_ = false;
  std::string value_;
};

class ParameterFile : public ::testing::Test {
protected:
  TempDir dir_;
  char exitData_[32];
  ParameterSettings settings_;
  ParameterSettings defaults_;

  void SetUp() override {
    SetFixedField(exitData_, sizeof exitData_, dir_.Path());
    SetDefaultParameterSettings(&defaults_);
  }
  int32_t Read(const std::string &content) {
    dir_.Write("wz.def", content);
    return ReadParameterFile(nullptr, exitData_, &settings_);
  }
  // The settings equal the defaults apart from the path of the file read.
  bool HasDefaults() const {
    ParameterSettings copy;
    memcpy(&copy, &settings_, sizeof copy);
    memset(copy.ParameterFilePath, 0, sizeof copy.ParameterFilePath);
    return memcmp(&copy, &defaults_, sizeof copy) == 0;
  }
};

// ---------------------------------------------------------------- the file

TEST_F(ParameterFile, MissingFileGivesDefaultsAndZeroesThePath) {
  memset(&settings_, 0x5A, sizeof settings_);
  EXPECT_EQ(ReadParameterFile(nullptr, exitData_, &settings_), 0);
  EXPECT_EQ(memcmp(&settings_, &defaults_, sizeof settings_), 0);
}

TEST_F(ParameterFile, EmptyDirectoryGivesDefaultsWithoutReading) {
  char blanks[32];
  memset(blanks, ' ', sizeof blanks);
  memset(&settings_, 0x5A, sizeof settings_);
  EXPECT_EQ(ReadParameterFile(nullptr, blanks, &settings_), 0);
  EXPECT_EQ(memcmp(&settings_, &defaults_, sizeof settings_), 0);
}

TEST_F(ParameterFile, DirectoryWithOrWithoutSlash) {
  dir_.Write("wz.def", "WriteCache=no\n");
  SetFixedField(exitData_, sizeof exitData_, dir_.Path() + "/");
  EXPECT_EQ(ReadParameterFile(nullptr, exitData_, &settings_), 0);
  EXPECT_EQ(std::string(settings_.ParameterFilePath), dir_.Path() + "/wz.def");
  EXPECT_EQ(settings_.WriteCache, 0);

  SetFixedField(exitData_, sizeof exitData_, "  " + dir_.Path());
  EXPECT_EQ(ReadParameterFile(nullptr, exitData_, &settings_), 0);
  EXPECT_EQ(std::string(settings_.ParameterFilePath), dir_.Path() + "/wz.def");
  EXPECT_EQ(settings_.WriteCache, 0);
}

TEST_F(ParameterFile, DirectoryIsReadAsThirtyTwoCharactersOnly) {
  // The exit data is not NUL-terminated: what follows it must not count.
  char data[40];
  SetFixedField(data, 32, dir_.Path());
  memcpy(data + 32, "junk/xx", 8);
  dir_.Write("wz.def", "WriteStream=yes\n");
  EXPECT_EQ(ReadParameterFile(nullptr, data, &settings_), 0);
  EXPECT_EQ(std::string(settings_.ParameterFilePath), dir_.Path() + "/wz.def");
  EXPECT_EQ(settings_.WriteStream, 1);
}

TEST_F(ParameterFile, CommentsAndBlankLinesOnlyGiveDefaults) {
  EXPECT_EQ(Read("# a comment\n\n   \n#WriteCache=no\n   # indented comment\n\r\n"), 0);
  EXPECT_TRUE(HasDefaults());
  EXPECT_EQ(std::string(settings_.ParameterFilePath), dir_.Path() + "/wz.def");
}

TEST_F(ParameterFile, EmptyFileGivesDefaults) {
  EXPECT_EQ(Read(""), 0);
  EXPECT_TRUE(HasDefaults());
}

TEST_F(ParameterFile, RereadStartsFromTheDefaults) {
  EXPECT_EQ(Read("WriteCache=no\nTargetQueue=Q1\nTargetProcess=p1\n"), 0);
  EXPECT_EQ(settings_.WriteCache, 0);
  EXPECT_EQ(settings_.TargetQueueCount, 1);
  EXPECT_EQ(Read("# nothing\n"), 0);
  EXPECT_TRUE(HasDefaults());
}

// ---------------------------------------------------------------- line rules

TEST_F(ParameterFile, CommentBehindAValueIsCutAway) {
  EXPECT_EQ(Read("WriteCache=no # keep the buffer off\nShowXaCalls=yes#comment\n"), 0);
  EXPECT_EQ(settings_.WriteCache, 0);
  EXPECT_EQ(settings_.ShowXaCalls, 1);
}

TEST_F(ParameterFile, HashInsideTheKeywordMakesTheLineBad) {
  EXPECT_EQ(Read("Write#Cache=no\n"), -1);
  EXPECT_EQ(settings_.WriteCache, 1);
}

TEST_F(ParameterFile, HashInsideAValueCutsTheValue) {
  EXPECT_EQ(Read("CompressCommand=gzip -f $#.gz\n"), 0);
  EXPECT_STREQ(settings_.CompressCommand, "gzip -f $");
}

TEST_F(ParameterFile, KeywordWithoutValueIsBad) {
  EXPECT_EQ(Read("WriteCache=\n"), -1);
  EXPECT_EQ(Read("WriteCache\n"), -1);
  EXPECT_EQ(Read("WriteCache =   # nothing\n"), -1);
  EXPECT_EQ(settings_.WriteCache, 1);
}

TEST_F(ParameterFile, ValueWithoutKeywordIsBad) {
  EXPECT_EQ(Read("=no\n"), -1);
  EXPECT_EQ(Read("   = no\n"), -1);
  EXPECT_TRUE(HasDefaults());
}

TEST_F(ParameterFile, LoneEqualsSignIsSkipped) {
  EXPECT_EQ(Read("=\n  =  \n= # comment\n"), 0);
  EXPECT_TRUE(HasDefaults());
}

TEST_F(ParameterFile, UnknownKeywordIsBad) {
  EXPECT_EQ(Read("WriteKash=no\n"), -1);
  EXPECT_TRUE(HasDefaults());
}

TEST_F(ParameterFile, KeywordsAreCaseSensitive) {
  EXPECT_EQ(Read("writecache=no\n"), -1);
  EXPECT_EQ(settings_.WriteCache, 1);
  EXPECT_EQ(Read("WRITECACHE=no\n"), -1);
  EXPECT_EQ(settings_.WriteCache, 1);
  EXPECT_EQ(Read("Fx40217=yes\n"), -1);
  EXPECT_EQ(settings_.fx40217, 0);
}

TEST_F(ParameterFile, BlanksAroundKeywordAndValueAreIgnored) {
  EXPECT_EQ(Read("   WriteCache   =    no   \r\n"), 0);
  EXPECT_EQ(settings_.WriteCache, 0);
}

TEST_F(ParameterFile, OnlyBlanksAreTrimmedFromTheFront) {
  // A tab is not a blank: it stays part of the keyword.
  EXPECT_EQ(Read("\tWriteCache=no\n"), -1);
  EXPECT_EQ(Read("WriteCache\t=no\n"), -1);
  EXPECT_EQ(settings_.WriteCache, 1);
}

TEST_F(ParameterFile, LaterEqualsSignsBelongToTheValue) {
  EXPECT_EQ(Read("CompressCommand=compress -o=$.Z $\n"), 0);
  EXPECT_STREQ(settings_.CompressCommand, "compress -o=$.Z $");
}

TEST_F(ParameterFile, LaterLineOverridesEarlierOne) {
  EXPECT_EQ(Read("WriteInterval=5\nWriteInterval=7\nCompressCommand=a long command\n"
                 "CompressCommand=short\n"),
            0);
  EXPECT_EQ(settings_.WriteInterval, 7);
  EXPECT_STREQ(settings_.CompressCommand, "short");
  EXPECT_EQ(settings_.CompressCommand[6], '\0');
  EXPECT_EQ(settings_.CompressCommand[10], '\0');
}

TEST_F(ParameterFile, BadLineChangesNothingAndOthersStillApply) {
  EXPECT_EQ(Read("WriteInterval=5\nWriteInterval=-1\nShowXaCalls=yes\n"), -1);
  EXPECT_EQ(settings_.WriteInterval, 5);
  EXPECT_EQ(settings_.ShowXaCalls, 1);
}

TEST_F(ParameterFile, LastLineWithoutLineFeedCounts) {
  EXPECT_EQ(Read("WriteStream=yes\nWriteCache=no"), 0);
  EXPECT_EQ(settings_.WriteCache, 0);
  EXPECT_EQ(settings_.WriteStream, 1);
}

TEST_F(ParameterFile, LongLineIsParsedInPiecesOf498) {
  // 600 characters: the first 498 are one line, the remaining 102 another.
  std::string first = "ShowMaxLenPut=123" + std::string(481, ' ');
  std::string second = "WriteCache=no" + std::string(89, ' ');
  ASSERT_EQ(first.size(), 498u);
  ASSERT_EQ(first.size() + second.size(), 600u);
  EXPECT_EQ(Read(first + second + "\nShowXaCalls=yes\n"), 0);
  EXPECT_EQ(settings_.ShowMaxLenPut, 123);
  EXPECT_EQ(settings_.WriteCache, 0);
  EXPECT_EQ(settings_.ShowXaCalls, 1);
}

TEST_F(ParameterFile, PieceOfALongLineCanBeBadOnItsOwn) {
  // The keyword of the second piece is what is left of the first piece's value.
  std::string line = "CompressCommand=" + std::string(482 + 20, 'c') + "=x";
  EXPECT_EQ(Read(line + "\n"), -1);
  EXPECT_EQ(std::string(settings_.CompressCommand), std::string(299, 'c'));
}

TEST_F(ParameterFile, BinaryBytesAndNuls) {
  std::string content;
  content += std::string("WriteCache=no\0ShowXaCalls=yes\n", 30);
  content += std::string("\0\0\0\n", 4);
  content += "ShowParsedData=n\x01\x02\xff\n";
  content += "\x01\x02\xfe\xff=\x80\n";
  content += "\x80\x81\x82\n";
  content += "WriteStream=yes\n";
  EXPECT_EQ(Read(content), -1);
  EXPECT_EQ(settings_.WriteCache, 0);
  EXPECT_EQ(settings_.ShowXaCalls, 0); // behind the NUL: not seen
  EXPECT_EQ(settings_.ShowParsedData, 0);
  EXPECT_EQ(settings_.WriteStream, 1);
}

// ---------------------------------------------------------------- yes/no

struct YesNoCase {
  const char *keyword;
  size_t offset;
};

TEST_F(ParameterFile, EveryYesNoKeywordTakesBothValues) {
  const YesNoCase cases[] = {
      {"WriteCache", offsetof(ParameterSettings, WriteCache)},
      {"WriteStream", offsetof(ParameterSettings, WriteStream)},
      {"WriteAfterEachApi", offsetof(ParameterSettings, WriteAfterEachApi)},
      {"ShowDataConvOnGet", offsetof(ParameterSettings, ShowDataConvOnGet)},
      {"ShowSummaryOnly", offsetof(ParameterSettings, ShowSummaryOnly)},
      {"ShowParsedData", offsetof(ParameterSettings, ShowParsedData)},
      {"ShowParsedMsgContent", offsetof(ParameterSettings, ShowParsedMsgContent)},
      {"ShowHexCharImage", offsetof(ParameterSettings, ShowHexCharImage)},
      {"CreateEmptyFile", offsetof(ParameterSettings, CreateEmptyFile)},
      {"ShowPerformanceOnly", offsetof(ParameterSettings, ShowPerformanceOnly)},
      {"PutAlertFileError", offsetof(ParameterSettings, PutAlertFileError)},
      {"PutAlertFileWarning", offsetof(ParameterSettings, PutAlertFileWarning)},
      {"PutAlertFileInfo", offsetof(ParameterSettings, PutAlertFileInfo)},
      {"ShowProcessEnvValue", offsetof(ParameterSettings, ShowProcessEnvValue)},
      {"ShowZkVersion", offsetof(ParameterSettings, ShowZkVersion)},
      {"ShowSummaryCorrelId", offsetof(ParameterSettings, ShowSummaryCorrelId)},
      {"CountSelectedCallsOnly", offsetof(ParameterSettings, CountSelectedCallsOnly)},
      {"NoExitProcessIfProcNameMismatch",
       offsetof(ParameterSettings, NoExitProcessIfProcNameMismatch)},
      {"ShowChannelAttributes", offsetof(ParameterSettings, ShowChannelAttributes)},
      {"ShowXaCalls", offsetof(ParameterSettings, ShowXaCalls)},
      {"fx40217", offsetof(ParameterSettings, fx40217)},
      {"ExecFlag", offsetof(ParameterSettings, ExecFlag)},
  };
  for (const YesNoCase &c : cases) {
    SCOPED_TRACE(c.keyword);
    const uint8_t *field = (const uint8_t *)&settings_ + c.offset;
    std::string k = c.keyword;
    for (const char *yes : {"yes", "Y", "y", "Yup"}) {
      EXPECT_EQ(Read(k + "=no\n" + k + "=" + yes + "\n"), 0);
      EXPECT_EQ(*field, 1);
    }
    for (const char *no : {"no", "N", "n", "Nope"}) {
      EXPECT_EQ(Read(k + "=yes\n" + k + "=" + no + "\n"), 0);
      EXPECT_EQ(*field, 0);
    }
    // Another first letter is bad and leaves the earlier value.
    for (const char *bad : {"true", "1", "0", "off", "-yes"}) {
      EXPECT_EQ(Read(k + "=no\n" + k + "=" + bad + "\n"), -1);
      EXPECT_EQ(*field, 0);
      EXPECT_EQ(Read(k + "=yes\n" + k + "=" + bad + "\n"), -1);
      EXPECT_EQ(*field, 1);
    }
  }
}

TEST(SetParmValueYesNo, SetsErrorOnlyOnAnotherLetter) {
  uint8_t flag = 7;
  int32_t error = 0;
  SetParmValueYesNo(nullptr, "yes", &flag, &error);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(error, 0);
  SetParmValueYesNo(nullptr, "n", &flag, &error);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(error, 0);
  SetParmValueYesNo(nullptr, "", &flag, &error);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(error, -1);
  error = 0;
  SetParmValueYesNo(nullptr, "x", &flag, &error);
  EXPECT_EQ(error, -1);
  // An error stays set by later good values.
  SetParmValueYesNo(nullptr, "y", &flag, &error);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(error, -1);
}

// ---------------------------------------------------------------- ExecFlag

TEST_F(ParameterFile, ExecFlagEnvFollowsTheVariable) {
  EnvironmentGuard kt5r("KT5R");
  kt5r.Unset();
  EXPECT_EQ(Read("ExecFlag=env\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 0);
  EXPECT_EQ(Read("ExecFlag=e\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 0);

  kt5r.Set("");
  EXPECT_EQ(Read("ExecFlag=env\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 0);

  kt5r.Set("1");
  EXPECT_EQ(Read("ExecFlag=e\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 1);
  EXPECT_EQ(Read("ExecFlag=no\nExecFlag=Environment\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 1);
  kt5r.Set("anything at all");
  EXPECT_EQ(Read("ExecFlag=no\nExecFlag=ENV\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 1);
}

TEST_F(ParameterFile, ExecFlagYesNoAndBad) {
  EnvironmentGuard kt5r("KT5R");
  kt5r.Set("1");
  EXPECT_EQ(Read("ExecFlag=no\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 0);
  EXPECT_EQ(Read("ExecFlag=no\nExecFlag=yes\n"), 0);
  EXPECT_EQ(settings_.ExecFlag, 1);
  EXPECT_EQ(Read("ExecFlag=no\nExecFlag=x\n"), -1);
  EXPECT_EQ(settings_.ExecFlag, 0);
}

// ---------------------------------------------------------------- integers

TEST_F(ParameterFile, WriteBufferSizeMinimum) {
  EXPECT_EQ(Read("WriteBufferSize=4999\n"), -1);
  EXPECT_EQ(settings_.WriteBufferSize, 10000);
  EXPECT_EQ(Read("WriteBufferSize=5000\n"), 0);
  EXPECT_EQ(settings_.WriteBufferSize, 5000);
  EXPECT_EQ(Read("WriteBufferSize=2000000\n"), 0);
  EXPECT_EQ(settings_.WriteBufferSize, 2000000);
}

TEST_F(ParameterFile, WriteBufferSizeNonNumericIsRejected) {
  EXPECT_EQ(Read("WriteBufferSize=big\n"), -1);
  EXPECT_EQ(settings_.WriteBufferSize, 10000);
}

TEST_F(ParameterFile, WriteIntervalMinimumAndNonNumeric) {
  EXPECT_EQ(Read("WriteInterval=-1\n"), -1);
  EXPECT_EQ(settings_.WriteInterval, 30);
  EXPECT_EQ(Read("WriteInterval=0\n"), 0);
  EXPECT_EQ(settings_.WriteInterval, 0);
  // Reads as 0, which is allowed.
  EXPECT_EQ(Read("WriteInterval=often\n"), 0);
  EXPECT_EQ(settings_.WriteInterval, 0);
}

TEST_F(ParameterFile, NumbersAreReadAsAtolReadsThem) {
  EXPECT_EQ(Read("WriteInterval=12seconds\n"), 0);
  EXPECT_EQ(settings_.WriteInterval, 12);
  EXPECT_EQ(Read("WriteInterval=+15\n"), 0);
  EXPECT_EQ(settings_.WriteInterval, 15);
  EXPECT_EQ(Read("ShowMaxLenPut=0x20\n"), 0);
  EXPECT_EQ(settings_.ShowMaxLenPut, 0);
  EXPECT_EQ(Read("ShowMaxLenGet=1 000\n"), 0);
  EXPECT_EQ(settings_.ShowMaxLenGet, 1);
}

TEST_F(ParameterFile, CompressFileSizeThresholdMinimum) {
  EXPECT_EQ(Read("CompressFileSizeThreshold=99999\n"), -1);
  EXPECT_EQ(settings_.CompressFileSizeThreshold, 1000000);
  EXPECT_EQ(Read("CompressFileSizeThreshold=100000\n"), 0);
  EXPECT_EQ(settings_.CompressFileSizeThreshold, 100000);
}

TEST_F(ParameterFile, MaxFileSizeRange) {
  EXPECT_EQ(Read("MaxFileSize=999999\n"), -1);
  EXPECT_EQ(settings_.MaxFileSize, 100000000);
  EXPECT_EQ(Read("MaxFileSize=1000000\n"), 0);
  EXPECT_EQ(settings_.MaxFileSize, 1000000);
  EXPECT_EQ(Read("MaxFileSize=2000000000\n"), 0);
  EXPECT_EQ(settings_.MaxFileSize, 2000000000);
  EXPECT_EQ(Read("MaxFileSize=2000000001\n"), -1);
  EXPECT_EQ(settings_.MaxFileSize, 100000000);
  EXPECT_EQ(Read("MaxFileSize=5000000000\n"), -1);
  EXPECT_EQ(settings_.MaxFileSize, 100000000);
  EXPECT_EQ(Read("MaxFileSize=-1\n"), -1);
  EXPECT_EQ(Read("MaxFileSize=huge\n"), -1);
  EXPECT_EQ(settings_.MaxFileSize, 100000000);
}

TEST_F(ParameterFile, MaxParsedOutputLineLengthRange) {
  EXPECT_EQ(Read("MaxParsedOutputLineLength=39\n"), -1);
  EXPECT_EQ(settings_.MaxParsedOutputLineLength, 100);
  EXPECT_EQ(Read("MaxParsedOutputLineLength=40\n"), 0);
  EXPECT_EQ(settings_.MaxParsedOutputLineLength, 40);
  EXPECT_EQ(Read("MaxParsedOutputLineLength=999\n"), 0);
  EXPECT_EQ(settings_.MaxParsedOutputLineLength, 999);
  EXPECT_EQ(Read("MaxParsedOutputLineLength=1000\n"), -1);
  EXPECT_EQ(settings_.MaxParsedOutputLineLength, 100);
}

struct AnyIntegerCase {
  const char *keyword;
  size_t offset;
};

TEST_F(ParameterFile, IntegersWithoutLimitsAndTheirSynonyms) {
  const AnyIntegerCase cases[] = {
      {"ShowMaxLenPut", offsetof(ParameterSettings, ShowMaxLenPut)},
      {"ShowMaxDataLengthPut", offsetof(ParameterSettings, ShowMaxLenPut)},
      {"ShowMaxLenGet", offsetof(ParameterSettings, ShowMaxLenGet)},
      {"ShowMaxDataLengthGet", offsetof(ParameterSettings, ShowMaxLenGet)},
      {"ShowMaxLenChannel", offsetof(ParameterSettings, ShowMaxLenChannel)},
      {"ShowMaxDataLengthChannel", offsetof(ParameterSettings, ShowMaxLenChannel)},
      {"ShowMaxLenParsedContent", offsetof(ParameterSettings, ShowMaxLenParsedContent)},
      {"ShowMaxLenCharv", offsetof(ParameterSettings, ShowMaxLenCharv)},
      {"ShowMaxLenCharvString", offsetof(ParameterSettings, ShowMaxLenCharvString)},
      {"ShowPerformanceIntervalTime", offsetof(ParameterSettings, ShowPerformanceIntervalTime)},
      {"ShowPerformanceIntervalCount", offsetof(ParameterSettings, ShowPerformanceIntervalCount)},
      {"CheckUpdateRequestInterval", offsetof(ParameterSettings, CheckUpdateRequestInterval)},
      {"ShowHexCharCcsid", offsetof(ParameterSettings, ShowHexCharCcsid)},
  };
  for (const AnyIntegerCase &c : cases) {
    SCOPED_TRACE(c.keyword);
    const int32_t *field = (const int32_t *)((const char *)&settings_ + c.offset);
    std::string k = c.keyword;
    EXPECT_EQ(Read(k + "=12345\n"), 0);
    EXPECT_EQ(*field, 12345);
    EXPECT_EQ(Read(k + "=0\n"), 0);
    EXPECT_EQ(*field, 0);
    EXPECT_EQ(Read(k + "=2147483647\n"), 0);
    EXPECT_EQ(*field, 2147483647);
    if (k != "ShowHexCharCcsid") { // a negative code page means "from the locale"
      EXPECT_EQ(Read(k + "=-7\n"), 0);
      EXPECT_EQ(*field, -7);
      EXPECT_EQ(Read(k + "=-2147483648\n"), 0);
      EXPECT_EQ(*field, INT32_MIN);
    }
  }
}

TEST(SetParmValueIntegerMin, LeavesTheTargetAloneBelowTheMinimum) {
  int32_t target = 42;
  int32_t error = 0;
  SetParmValueIntegerMin(nullptr, "9", &target, 10, &error);
  EXPECT_EQ(target, 42);
  EXPECT_EQ(error, -1);
  error = 0;
  SetParmValueIntegerMin(nullptr, "10", &target, 10, &error);
  EXPECT_EQ(target, 10);
  EXPECT_EQ(error, 0);
}

// ---------------------------------------------------------------- text

TEST_F(ParameterFile, CompressCommandIsCutTo299) {
  std::string longCommand = "gzip -9 $ " + std::string(340, 'z');
  EXPECT_EQ(Read("CompressCommand=" + longCommand + "\n"), 0);
  EXPECT_EQ(std::string(settings_.CompressCommand), longCommand.substr(0, 299));
  EXPECT_EQ(settings_.CompressCommand[299], '\0');

  std::string exact(299, 'q');
  EXPECT_EQ(Read("CompressCommand=" + exact + "\n"), 0);
  EXPECT_EQ(std::string(settings_.CompressCommand), exact);
}

// ---------------------------------------------------------------- code page

class LocaleGuard {
public:
  LocaleGuard() : all_("LC_ALL"), messages_("LC_MESSAGES"), lang_("LANG") {
    const char *current = setlocale(LC_ALL, nullptr);
    saved_ = current != nullptr ? current : "C";
  }
  ~LocaleGuard() { setlocale(LC_ALL, saved_.c_str()); }
  EnvironmentGuard all_, messages_, lang_;

private:
  std::string saved_;
};

TEST_F(ParameterFile, NegativeCcsidIsTakenFromTheLocale) {
  LocaleGuard locale;
  locale.all_.Unset();
  locale.messages_.Unset();
  locale.lang_.Set("ja_JP.eucJP");
  EXPECT_EQ(Read("ShowHexCharCcsid=-1\n"), 0);
  EXPECT_EQ(settings_.ShowHexCharCcsid, 954);
  EXPECT_EQ(settings_.LocaleSwitch, 1);

  locale.lang_.Set("fr_FR.UTF-8");
  EXPECT_EQ(Read("ShowHexCharCcsid=-5\n"), 0);
  EXPECT_EQ(settings_.ShowHexCharCcsid, 1208);
  EXPECT_EQ(settings_.LocaleSwitch, 1);
}

TEST_F(ParameterFile, UnknownLocaleGivesCodePageZeroAndStillSetsTheSwitch) {
  LocaleGuard locale;
  locale.all_.Unset();
  locale.messages_.Unset();
  locale.lang_.Set("de_DE");
  EXPECT_EQ(Read("ShowHexCharCcsid=-1\n"), 0);
  EXPECT_EQ(settings_.ShowHexCharCcsid, 0);
  EXPECT_EQ(settings_.LocaleSwitch, 1);
}

TEST_F(ParameterFile, ZeroOrPositiveCcsidIsKept) {
  LocaleGuard locale;
  locale.lang_.Set("ja_JP.eucJP");
  EXPECT_EQ(Read("ShowHexCharCcsid=1208\n"), 0);
  EXPECT_EQ(settings_.ShowHexCharCcsid, 1208);
  EXPECT_EQ(settings_.LocaleSwitch, 0);
  EXPECT_EQ(Read("ShowHexCharCcsid=0\n"), 0);
  EXPECT_EQ(settings_.ShowHexCharCcsid, 0);
  EXPECT_EQ(settings_.LocaleSwitch, 0);
}

// ---------------------------------------------------------------- splitting

TEST(pExtractOneArgInParmValue, CutsAtTheFirstCommaAndTrimsBothPieces) {
  char text[] = "  Q1 ,  P , G ";
  char *rest = pExtractOneArgInParmValue(text);
  EXPECT_STREQ(text, "Q1");
  EXPECT_STREQ(rest, "P , G");
  char *last = pExtractOneArgInParmValue(rest);
  EXPECT_STREQ(rest, "P");
  EXPECT_STREQ(last, "G");
  char *end = pExtractOneArgInParmValue(last);
  EXPECT_STREQ(last, "G");
  EXPECT_STREQ(end, "");
}

TEST(pExtractOneArgInParmValue, EmptyFields) {
  char text[] = ",,";
  char *rest = pExtractOneArgInParmValue(text);
  EXPECT_STREQ(text, "");
  EXPECT_STREQ(rest, ",");
  char *last = pExtractOneArgInParmValue(rest);
  EXPECT_STREQ(rest, "");
  EXPECT_STREQ(last, "");
}

} // namespace
