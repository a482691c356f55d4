#include <gtest/gtest.h>

#include <locale.h>
#include <stdlib.h>
#include <string.h>

#include <optional>
#include <string>
#include <vector>

#include "text/codepage.h"

namespace {

// Every variable that setlocale consults for an empty locale name.
const char *const kLocaleVariables[] = {
    "LC_ALL",     "LC_MESSAGES",  "LANG",           "LC_CTYPE",          "LC_NUMERIC",
    "LC_TIME",    "LC_COLLATE",   "LC_MONETARY",    "LC_PAPER",          "LC_NAME",
    "LC_ADDRESS", "LC_TELEPHONE", "LC_MEASUREMENT", "LC_IDENTIFICATION", "LANGUAGE",
};

// Clears the locale variables for one test and puts back what was there.
class LocaleEnvironment : public ::testing::Test {
protected:
  void SetUp() override {
    for (const char *name : kLocaleVariables) {
      const char *value = getenv(name);
      saved_.push_back({name, value ? std::optional<std::string>(value) : std::nullopt});
      unsetenv(name);
    }
  }
  void TearDown() override {
    for (const auto &[name, value] : saved_) {
      if (value) {
        setenv(name, value->c_str(), 1);
      } else {
        unsetenv(name);
      }
    }
  }
  static int32_t SelectFromEnvironment(std::string *nameFound = nullptr) {
    char locale[LOCALE_NAME_SIZE];
    memset(locale, 0, sizeof locale);
    int32_t ccsid = SelectCcsidByLocale(locale);
    if (nameFound != nullptr) {
      *nameFound = locale;
    }
    return ccsid;
  }

private:
  std::vector<std::pair<const char *, std::optional<std::string>>> saved_;
};

int32_t SelectNamed(const char *name) {
  char locale[LOCALE_NAME_SIZE];
  strcpy(locale, name);
  int32_t ccsid = SelectCcsidByLocale(locale);
  EXPECT_STREQ(locale, name) << "a given name stays as it is";
  return ccsid;
}

bool LocaleInstalled(const char *name) {
  locale_t probe = newlocale(LC_MESSAGES_MASK, name, (locale_t)0);
  if (probe == (locale_t)0) {
    return false;
  }
  freelocale(probe);
  return true;
}

// Map of one CCSID and the length of the character at the start of bytes.
struct MapOf {
  CodeRangeMap map;
  explicit MapOf(int32_t ccsid) { FillCodeRangeMap(&map, ccsid); }
  int32_t Length(std::initializer_list<uint8_t> bytes) const {
    std::vector<uint8_t> data(bytes);
    return CodeRangeCharLength(&map, data.data(), (int32_t)data.size());
  }
  int32_t Count() const { return CodeRangePatternCount(&map); }
};

} // namespace

// ---- locale table ----------------------------------------------------------

TEST(LocaleCcsidTable, RowsInOrderWithTheExtraNamesWhereTheyBelong) {
  std::vector<std::string> names;
  for (const LocaleCcsidEntry *row = LocaleCcsidTable; row->locale[0] != '\0'; row++) {
    names.push_back(row->locale);
  }
  ASSERT_EQ(names.size(), 54u);
  EXPECT_EQ(names.front(), "JA_JP");
  EXPECT_EQ(names.back(), "en_US");
  auto indexOf = [&](const char *name) {
    for (size_t i = 0; i < names.size(); i++) {
      if (names[i] == name) {
        return (int)i;
      }
    }
    return -1;
  };
  EXPECT_EQ(indexOf("Ja_JP"), 2);
  EXPECT_EQ(indexOf("Ja_JP.cp932"), 3);
  EXPECT_EQ(indexOf("Ja_JP.sjis-open"), 4);
  EXPECT_EQ(indexOf("ja_JP"), 5);
  EXPECT_EQ(indexOf("ja_JP.eucJP-open"), 6);
  EXPECT_EQ(indexOf("ja_JP.PCK"), 7);
  EXPECT_EQ(indexOf("ko_KR.eucKR-open"), indexOf("ko_KR") + 1);
  EXPECT_EQ(indexOf("zh_CN.eucCN-open"), indexOf("zh_CN") + 1);
  EXPECT_EQ(indexOf("zh_TW.eucTW-open"), indexOf("zh_TW.BIG5") + 1);
  EXPECT_EQ(indexOf("Zh_TW.big5"), indexOf("Zh_TW") - 1);
  EXPECT_EQ(LocaleCcsidTable[names.size()].ccsid, 0);
}

TEST(SelectCcsidByLocale, GivenNames) {
  EXPECT_EQ(SelectNamed("ja_JP"), 954);
  EXPECT_EQ(SelectNamed("ja_JP.SJIS"), 932);
  EXPECT_EQ(SelectNamed("Ja_JP"), 943);
  EXPECT_EQ(SelectNamed("Ja_JP.cp932"), 932);
  EXPECT_EQ(SelectNamed("Ja_JP.sjis-open"), 943);
  EXPECT_EQ(SelectNamed("ja_JP.eucJP-open"), 33722);
  EXPECT_EQ(SelectNamed("ja"), 5050);
  EXPECT_EQ(SelectNamed("ko"), 970);
  EXPECT_EQ(SelectNamed("ko_KR.eucKR-open"), 970);
  EXPECT_EQ(SelectNamed("Zh_CN.GBK"), 1386);
  EXPECT_EQ(SelectNamed("zh_CN"), 1383);
  EXPECT_EQ(SelectNamed("zh_CN.eucCN-open"), 1383);
  EXPECT_EQ(SelectNamed("zh_CN.gb18030"), 5488);
  EXPECT_EQ(SelectNamed("zh_TW"), 964);
  EXPECT_EQ(SelectNamed("zh_TW.eucTW-open"), 964);
  EXPECT_EQ(SelectNamed("Zh_TW"), 950);
  EXPECT_EQ(SelectNamed("en_US"), 819);
}

TEST(SelectCcsidByLocale, MatchIsExactAndCaseSensitive) {
  EXPECT_EQ(SelectNamed("EN_US"), 0);
  EXPECT_EQ(SelectNamed("en_US.ISO8859-1"), 0);
  EXPECT_EQ(SelectNamed("ja_jp"), 0);
  EXPECT_EQ(SelectNamed("de_DE"), 0);
}

TEST(SelectCcsidByLocale, UtfEightSuffixWinsOverTheTable) {
  EXPECT_EQ(SelectNamed("JA_JP"), 1208);
  EXPECT_EQ(SelectNamed("ko_KR.utf8"), 1208);
  EXPECT_EQ(SelectNamed("xx_XX.utf8"), 1208);
  EXPECT_EQ(SelectNamed("de_DE.UTF-8"), 1208);
  EXPECT_EQ(SelectNamed("de_DE.utf-8"), 0);
  EXPECT_EQ(SelectNamed("de_DE.UTF8"), 0);
}

// ---- from the environment ----------------------------------------------------

TEST_F(LocaleEnvironment, LangJapaneseEucGives954) {
  setenv("LANG", "ja_JP.eucJP", 1);
  std::string name;
  EXPECT_EQ(SelectFromEnvironment(&name), 954);
  EXPECT_EQ(name, "ja_JP.eucJP");
}

TEST_F(LocaleEnvironment, LangFrenchUtf8Gives1208) {
  setenv("LANG", "fr_FR.UTF-8", 1);
  EXPECT_EQ(SelectFromEnvironment(), 1208);
}

TEST_F(LocaleEnvironment, LangGermanGives0) {
  setenv("LANG", "de_DE", 1);
  std::string name;
  EXPECT_EQ(SelectFromEnvironment(&name), 0);
  EXPECT_EQ(name, "de_DE");
}

TEST_F(LocaleEnvironment, LcAllComesBeforeLang) {
  setenv("LC_ALL", "ko_KR.eucKR", 1);
  setenv("LANG", "ja_JP.eucJP", 1);
  EXPECT_EQ(SelectFromEnvironment(), 970);
}

TEST_F(LocaleEnvironment, GivenNameIgnoresTheEnvironment) {
  setenv("LANG", "ja_JP.eucJP", 1);
  EXPECT_EQ(SelectNamed("en_US"), 819);
}

TEST_F(LocaleEnvironment, ProcessLocaleIsLeftAsItWas) {
  setenv("LANG", "C.UTF-8", 1);
  std::string before = setlocale(LC_ALL, nullptr);
  std::string messagesBefore = setlocale(LC_MESSAGES, nullptr);
  EXPECT_EQ(SelectFromEnvironment(), 1208);
  EXPECT_EQ(before, setlocale(LC_ALL, nullptr));
  EXPECT_EQ(messagesBefore, setlocale(LC_MESSAGES, nullptr));
}

TEST_F(LocaleEnvironment, GetEnvLocaleReportsLcMessages) {
  if (!LocaleInstalled("C.UTF-8")) {
    GTEST_SKIP() << "C.UTF-8 is not available here";
  }
  setenv("LC_MESSAGES", "C.UTF-8", 1);
  std::string before = setlocale(LC_ALL, nullptr);
  char category[LOCALE_CATEGORY_SIZE];
  char locale[LOCALE_NAME_SIZE];
  EXPECT_EQ(GetEnvLocale(category, locale), locale);
  EXPECT_STREQ(category, "LC_MESSAGES");
  EXPECT_STREQ(locale, "C.UTF-8");
  EXPECT_EQ(before, setlocale(LC_ALL, nullptr));
}

TEST_F(LocaleEnvironment, GetEnvLocaleGivesNothingForAnUnknownLocale) {
  setenv("LANG", "xx_NOWHERE.none", 1);
  char category[LOCALE_CATEGORY_SIZE] = "junk";
  char locale[LOCALE_NAME_SIZE] = "junk";
  EXPECT_EQ(GetEnvLocale(category, locale), nullptr);
  EXPECT_STREQ(category, "");
  EXPECT_STREQ(locale, "");
}

TEST_F(LocaleEnvironment, GetEnvValueCopiesAndCuts) {
  setenv("LANG", "abcdef", 1);
  char value[4] = "zz";
  EXPECT_EQ(GetEnvValue("LANG", value, (int32_t)sizeof value), value);
  EXPECT_STREQ(value, "abc");
  char whole[16];
  GetEnvValue("LANG", whole, (int32_t)sizeof whole);
  EXPECT_STREQ(whole, "abcdef");
  unsetenv("LANG");
  GetEnvValue("LANG", whole, (int32_t)sizeof whole);
  EXPECT_STREQ(whole, "");
}

// ---- code-range map ----------------------------------------------------------

TEST(CodeRangeMap, Size) {
  // Ten patterns of five positions, and the first-step answer and glyph of
  // each byte.
  EXPECT_EQ(sizeof(CodeRangeMap), 10u * 5u * 256u + 2u * 256u);
}

TEST(CodeRangeMap, FirstStepAgreesWithTheWalkForEveryByte) {
  const int32_t ccsids[] = {819, 1208, 943, 1386, 37, 500, 0, 99999};
  for (int32_t ccsid : ccsids) {
    MapOf m(ccsid);
    for (int32_t b = 0; b < 256; b++) {
      int32_t step = CodeRangeStep(&m.map, nullptr, 0, (uint8_t)b);
      ASSERT_EQ(m.map.firstStep[b], step) << "ccsid " << ccsid << " byte " << b;
      char glyph = step == CODE_RANGE_REJECTED ? '.' : step == CODE_RANGE_COMPLETE ? (char)b : 0;
      ASSERT_EQ(m.map.firstGlyph[b], glyph) << "ccsid " << ccsid << " byte " << b;
    }
  }
  // UTF-8: ASCII prints as itself, a lead byte starts a longer character,
  // a continuation byte alone is no character.
  MapOf utf8(1208);
  EXPECT_EQ(utf8.map.firstStep['A'], CODE_RANGE_COMPLETE);
  EXPECT_EQ(utf8.map.firstStep[0xC3], CODE_RANGE_CONTINUES);
  EXPECT_EQ(utf8.map.firstStep[0x80], CODE_RANGE_REJECTED);
}

TEST(CodeRangeMap, Utf8HasThreePatterns) {
  MapOf m(1208);
  EXPECT_EQ(m.Count(), 3);
  EXPECT_EQ(m.map.cell[3][0][0], CODE_RANGE_END);
  // Where each pattern ends.
  EXPECT_EQ(m.map.cell[0][1][0], CODE_RANGE_END);
  EXPECT_EQ(m.map.cell[1][2][0], CODE_RANGE_END);
  EXPECT_EQ(m.map.cell[1][1][0], 0);
  EXPECT_EQ(m.map.cell[2][3][0], CODE_RANGE_END);
  EXPECT_EQ(m.map.cell[2][2][0xBF], CODE_RANGE_ALLOWED);
  EXPECT_EQ(m.map.cell[2][2][0xC0], 0);
}

TEST(CodeRangeMap, Utf8Characters) {
  MapOf m(1208);
  EXPECT_EQ(m.Length({0xC3, 0xA9}), 2);
  EXPECT_EQ(m.Length({0xC3}), 0);
  EXPECT_EQ(m.Length({0xC3, 0x41}), 0);
  EXPECT_EQ(m.Length({'A', 0xC3}), 1);
  EXPECT_EQ(m.Length({0x7F}), 1);
  EXPECT_EQ(m.Length({0x1F}), 0);
  EXPECT_EQ(m.Length({0x80}), 0);
  EXPECT_EQ(m.Length({0xC1, 0x81}), 0);
  EXPECT_EQ(m.Length({0xE2, 0x82, 0xAC}), 3);
  EXPECT_EQ(m.Length({0xE2, 0x82}), 0);
  EXPECT_EQ(m.Length({0xF0, 0x9F, 0x98, 0x80}), 0);
}

TEST(CodeRangeMap, CharLengthRespectsAvailableBytes) {
  MapOf m(1208);
  const uint8_t bytes[] = {0xE2, 0x82, 0xAC};
  EXPECT_EQ(CodeRangeCharLength(&m.map, bytes, 3), 3);
  EXPECT_EQ(CodeRangeCharLength(&m.map, bytes, 2), 0);
  EXPECT_EQ(CodeRangeCharLength(&m.map, bytes, 0), 0);
}

TEST(CodeRangeMap, EbcdicWithoutRowsGetsOnlyPrintableAscii) {
  MapOf m(37);
  EXPECT_EQ(m.Count(), 1);
  EXPECT_EQ(m.map.cell[0][1][0], CODE_RANGE_END);
  EXPECT_EQ(m.map.cell[1][0][0], CODE_RANGE_END);
  for (int byte = 0; byte < 256; byte++) {
    uint8_t b = (uint8_t)byte;
    EXPECT_EQ(CodeRangeCharLength(&m.map, &b, 1), (byte >= 0x20 && byte <= 0x7E) ? 1 : 0) << byte;
  }
}

TEST(CodeRangeMap, AnyCcsidWithoutRowsMatchesTheDefault) {
  MapOf ebcdic(37);
  for (int32_t ccsid : {0, 500, 1140, 99999, -1}) {
    MapOf other(ccsid);
    EXPECT_EQ(memcmp(&ebcdic.map, &other.map, sizeof(CodeRangeMap)), 0) << ccsid;
  }
}

TEST(CodeRangeMap, ShiftJis932) {
  MapOf m(932);
  EXPECT_EQ(m.Count(), 6);
  EXPECT_EQ(m.Length({0xB1}), 1); // half-width katakana
  EXPECT_EQ(m.Length({0xA0}), 0);
  EXPECT_EQ(m.Length({0x82, 0xA0}), 2);
  EXPECT_EQ(m.Length({0x81, 0x40}), 2);
  EXPECT_EQ(m.Length({0x81, 0x7F}), 0);
  EXPECT_EQ(m.Length({0x88, 0x9F}), 2);
  EXPECT_EQ(m.Length({0xE0, 0x80}), 2);
  EXPECT_EQ(m.Length({0xFC, 0xFC}), 2);
  EXPECT_EQ(m.Length({0xFC, 0xFD}), 0);
  EXPECT_EQ(m.Length({0xFD, 0x40}), 0);
  EXPECT_EQ(m.Length({0x82}), 0);
}

TEST(CodeRangeMap, JapaneseEuc954) {
  MapOf m(954);
  EXPECT_EQ(m.Count(), 4);
  EXPECT_EQ(m.Length({'a'}), 1);
  EXPECT_EQ(m.Length({0xA4, 0xA2}), 2);
  EXPECT_EQ(m.Length({0xA4}), 0);
  EXPECT_EQ(m.Length({0x8E, 0xB1}), 2);
  EXPECT_EQ(m.Length({0x8E, 0xE5}), 0);
  EXPECT_EQ(m.Length({0x8F, 0xA1, 0xA1}), 3);
  EXPECT_EQ(m.Length({0x8F, 0xA1}), 0);
  EXPECT_EQ(m.Length({0x8F, 0xA1, 0x41}), 0);
  EXPECT_EQ(m.Length({0xB1}), 0);
  // The other EUC Japanese CCSIDs share the patterns.
  for (int32_t ccsid : {5050, 33722, 17338}) {
    MapOf other(ccsid);
    EXPECT_EQ(memcmp(&m.map, &other.map, sizeof(CodeRangeMap)), 0) << ccsid;
  }
}

TEST(CodeRangeMap, Gb18030WithFourByteCharacters) {
  MapOf m(5488);
  EXPECT_EQ(m.Count(), 3);
  EXPECT_EQ(m.Length({0x80}), 1);
  EXPECT_EQ(m.Length({0x7F}), 1);
  EXPECT_EQ(m.Length({0x81, 0x40}), 2);
  EXPECT_EQ(m.Length({0xB0, 0xA1}), 2);
  EXPECT_EQ(m.Length({0x81, 0x7F}), 2);
  EXPECT_EQ(m.Length({0x81, 0x30, 0x81, 0x30}), 4);
  EXPECT_EQ(m.Length({0xFE, 0x39, 0xFE, 0x39}), 4);
  EXPECT_EQ(m.Length({0x81, 0x30, 0x81}), 0);
  EXPECT_EQ(m.Length({0x81, 0x30, 0x80, 0x30}), 0);
  EXPECT_EQ(m.Length({0x81, 0x3A}), 0);
  EXPECT_EQ(m.Length({0xFF, 0x40}), 0);
}

TEST(CodeRangeMap, LargestPatternCountInTheTable) {
  MapOf m(942);
  EXPECT_EQ(m.Count(), 8);
  EXPECT_EQ(m.map.cell[8][0][0], CODE_RANGE_END);
  EXPECT_EQ(m.Length({0x80}), 1);
  EXPECT_EQ(m.Length({0xFE}), 1);
}

TEST(CodeRangeMap, OtherTableRows) {
  EXPECT_EQ(MapOf(819).Length({0xE9}), 1);
  EXPECT_EQ(MapOf(819).Length({0x9F}), 0);
  EXPECT_EQ(MapOf(850).Length({0x82}), 1);
  EXPECT_EQ(MapOf(850).Length({0xFF}), 0);
  EXPECT_EQ(MapOf(949).Length({0xB0, 0xA1}), 2);
  EXPECT_EQ(MapOf(1363).Length({0x81, 0x41}), 2);
  EXPECT_EQ(MapOf(970).Length({0xB0, 0xA1}), 2);
  EXPECT_EQ(MapOf(1381).Length({0x84}), 1);
  EXPECT_EQ(MapOf(1381).Length({0x85}), 0);
  EXPECT_EQ(MapOf(1386).Length({0x81, 0x40}), 2);
  EXPECT_EQ(MapOf(950).Length({0x80}), 0);
  EXPECT_EQ(MapOf(1370).Length({0x80}), 1);
  EXPECT_EQ(MapOf(950).Length({0xA4, 0x40}), 2);
  EXPECT_EQ(MapOf(964).Length({0x8E, 0xA2, 0xA1, 0xA1}), 4);
  EXPECT_EQ(MapOf(964).Length({0x8E, 0xB1, 0xA1, 0xA1}), 0);
}

TEST(CodeRangeMap, RefillingClearsTheOldPatterns) {
  CodeRangeMap map;
  memset(&map, 0x55, sizeof map);
  FillCodeRangeMap(&map, 1208);
  FillCodeRangeMap(&map, 37);
  EXPECT_EQ(CodeRangePatternCount(&map), 1);
  const uint8_t bytes[] = {0xC3, 0xA9};
  EXPECT_EQ(CodeRangeCharLength(&map, bytes, 2), 0);
  EXPECT_EQ(map.cell[2][0][0], 0);
}

TEST(CodeRangeMap, AtMostNinePatternsAreTaken) {
  // Eleven single-byte patterns for one CCSID, 'A' to 'K', another CCSID's
  // row in between and the end row.
  CcsidRangeEntry table[14];
  memset(table, 0, sizeof table);
  int32_t n = 0;
  for (int32_t i = 0; i < 11; i++) {
    if (i == 5) {
      table[n].ccsid = 7;
      table[n].range[0] = {0x30, 0x39};
      n++;
    }
    table[n].ccsid = 4242;
    table[n].range[0] = {(uint8_t)('A' + i), (uint8_t)('A' + i)};
    n++;
  }
  table[n].ccsid = 0;
  table[n].range[0] = {0x20, 0x7E};

  CodeRangeMap map;
  FillCodeRangeMapFromTable(&map, 4242, table);
  EXPECT_EQ(CodeRangePatternCount(&map), 9);
  EXPECT_EQ(map.cell[9][0][0], CODE_RANGE_END);
  for (int32_t i = 0; i < 11; i++) {
    uint8_t b = (uint8_t)('A' + i);
    EXPECT_EQ(CodeRangeCharLength(&map, &b, 1), i < 9 ? 1 : 0) << (char)b;
  }
  uint8_t digit = '5';
  EXPECT_EQ(CodeRangeCharLength(&map, &digit, 1), 0);

  FillCodeRangeMapFromTable(&map, 7, table);
  EXPECT_EQ(CodeRangePatternCount(&map), 1);
  EXPECT_EQ(CodeRangeCharLength(&map, &digit, 1), 1);

  FillCodeRangeMapFromTable(&map, 99, table);
  EXPECT_EQ(CodeRangePatternCount(&map), 1);
  uint8_t space = ' ';
  EXPECT_EQ(CodeRangeCharLength(&map, &space, 1), 1);
}
