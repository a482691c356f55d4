// Code pages and locale: the locale-to-CCSID choice and the code-range map
// that tells the character column of a hex dump which byte sequences are
// characters. Everything works in fixed buffers; nothing is allocated here.
#include "text/codepage.h"

#include <locale.h>
#include <stdlib.h>
#include <string.h>

#include "text/string_utils.h"

// Exact, case-sensitive names; the first row that matches wins. Besides the
// common Unix spellings the table knows further names of the Shift-JIS and
// EUC code sets ("-open" and "cp932" forms).
const LocaleCcsidEntry LocaleCcsidTable[] = {
    {"JA_JP", 1208},
    {"JA_JP.UTF-8", 1208},
    {"Ja_JP", 943},
    {"Ja_JP.cp932", 932},
    {"Ja_JP.sjis-open", 943},
    {"ja_JP", 954},
    {"ja_JP.eucJP-open", 33722},
    {"ja_JP.PCK", 943},
    {"ja_JP.SJIS", 932},
    {"ja_JP.UTF-8", 1208},
    {"ja_JP.eucJP", 954},
    {"ja_JP.eucjp", 954},
    {"ja_JP.ujis", 954},
    {"ja_JP.utf8", 1208},
    {"japanese", 954},
    {"japanese.euc", 954},
    {"ja", 5050},
    {"KO_KR", 1208},
    {"KO_KR.UTF-8", 1208},
    {"ko_KR", 970},
    {"ko_KR.eucKR-open", 970},
    {"ko_KR.UTF-8", 1208},
    {"ko_KR.eucKR", 970},
    {"ko_KR.euckr", 970},
    {"ko_KR.utf8", 1208},
    {"korean", 970},
    {"korean.euc", 970},
    {"ko", 970},
    {"ZH_CN", 1208},
    {"ZH_CN.UTF-8", 1208},
    {"Zh_CN", 1386},
    {"Zh_CN.GBK", 1386},
    {"zh_CN", 1383},
    {"zh_CN.eucCN-open", 1383},
    {"zh_CN.UTF-8", 1208},
    {"zh_CN.gb18030", 5488},
    {"zh_CN.gb2312", 1386},
    {"zh_CN.gbk", 1386},
    {"zh_CN.hp15CN", 1386},
    {"zh_CN.utf8", 1208},
    {"ZH_TW", 1208},
    {"ZH_TW.UTF-8", 1208},
    {"Zh_TW.big5", 950},
    {"Zh_TW", 950},
    {"zh_TW", 964},
    {"zh_TW.BIG5", 950},
    {"zh_TW.eucTW-open", 964},
    {"zh_TW.UTF-8", 1208},
    {"zh_TW.big5", 950},
    {"zh_TW.ccdc", 950},
    {"zh_TW.eucTW", 964},
    {"zh_TW.euctw", 964},
    {"zh_TW.utf8", 1208},
    {"en_US", 819},
    {"", 0},
};

// One row per character pattern, ranges given as {low, high}; {0, 0} ends
// the pattern.
#define CR_END                                                                                     \
  { 0, 0 }
#define CR1(a, b)                                                                                  \
  { {a, b}, CR_END, CR_END, CR_END, CR_END }
#define CR2(a, b, c, d)                                                                            \
  { {a, b}, {c, d}, CR_END, CR_END, CR_END }
#define CR3(a, b, c, d, e, f)                                                                      \
  { {a, b}, {c, d}, {e, f}, CR_END, CR_END }
#define CR4(a, b, c, d, e, f, g, h)                                                                \
  { {a, b}, {c, d}, {e, f}, {g, h}, CR_END }

const CcsidRangeEntry CcsidRangeTable[] = {
    // ISO 8859-1
    {819, CR1(0x20, 0x7E)},
    {819, CR1(0xA0, 0xFF)},
    // PC Latin pages
    {437, CR1(0x20, 0x7E)},
    {437, CR1(0x80, 0xFE)},
    {850, CR1(0x20, 0x7E)},
    {850, CR1(0x80, 0xFE)},
    // Japanese Shift-JIS
    {932, CR1(0x20, 0x7E)},
    {932, CR1(0xA1, 0xDF)},
    {932, CR2(0x81, 0x9F, 0x40, 0x7E)},
    {932, CR2(0x81, 0x9F, 0x80, 0xFC)},
    {932, CR2(0xE0, 0xFC, 0x40, 0x7E)},
    {932, CR2(0xE0, 0xFC, 0x80, 0xFC)},
    {942, CR1(0x20, 0x7E)},
    {942, CR1(0x80, 0x80)},
    {942, CR1(0xA0, 0xDF)},
    {942, CR1(0xFD, 0xFF)},
    {942, CR2(0x81, 0x9F, 0x40, 0x7E)},
    {942, CR2(0x81, 0x9F, 0x80, 0xFC)},
    {942, CR2(0xE0, 0xFC, 0x40, 0x7E)},
    {942, CR2(0xE0, 0xFC, 0x80, 0xFC)},
    {943, CR1(0x20, 0x7E)},
    {943, CR1(0xA1, 0xDF)},
    {943, CR2(0x81, 0x9F, 0x40, 0x7E)},
    {943, CR2(0x81, 0x9F, 0x80, 0xFC)},
    {943, CR2(0xE0, 0xFC, 0x40, 0x7E)},
    {943, CR2(0xE0, 0xFC, 0x80, 0xFC)},
    // Japanese EUC: two-byte kanji, SS2 half-width katakana, SS3 JIS X 0212
    {954, CR1(0x20, 0x7E)},
    {954, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    {954, CR2(0x8E, 0x8E, 0xA1, 0xE4)},
    {954, CR3(0x8F, 0x8F, 0xA1, 0xFE, 0xA1, 0xFE)},
    {5050, CR1(0x20, 0x7E)},
    {5050, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    {5050, CR2(0x8E, 0x8E, 0xA1, 0xE4)},
    {5050, CR3(0x8F, 0x8F, 0xA1, 0xFE, 0xA1, 0xFE)},
    {33722, CR1(0x20, 0x7E)},
    {33722, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    {33722, CR2(0x8E, 0x8E, 0xA1, 0xE4)},
    {33722, CR3(0x8F, 0x8F, 0xA1, 0xFE, 0xA1, 0xFE)},
    {17338, CR1(0x20, 0x7E)},
    {17338, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    {17338, CR2(0x8E, 0x8E, 0xA1, 0xE4)},
    {17338, CR3(0x8F, 0x8F, 0xA1, 0xFE, 0xA1, 0xFE)},
    // Korean
    {949, CR1(0x20, 0x7F)},
    {949, CR2(0x8F, 0xFE, 0xA1, 0xFE)},
    {1363, CR1(0x20, 0x7F)},
    {1363, CR2(0x81, 0xFE, 0x41, 0xFE)},
    // Korean and Simplified Chinese EUC
    {970, CR1(0x20, 0x7E)},
    {970, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    {1383, CR1(0x20, 0x7E)},
    {1383, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    // Simplified Chinese PC, GBK and GB18030
    {1381, CR1(0x20, 0x7E)},
    {1381, CR1(0x80, 0x84)},
    {1381, CR2(0x8C, 0xFE, 0xA1, 0xFE)},
    {1386, CR1(0x20, 0x80)},
    {1386, CR2(0x81, 0xFE, 0x40, 0xFE)},
    {5488, CR1(0x20, 0x80)},
    {5488, CR2(0x81, 0xFE, 0x40, 0xFE)},
    {5488, CR4(0x81, 0xFE, 0x30, 0x39, 0x81, 0xFE, 0x30, 0x39)},
    // Traditional Chinese Big5 and EUC
    {950, CR1(0x20, 0x7F)},
    {950, CR2(0x81, 0xFE, 0x40, 0x7E)},
    {950, CR2(0x81, 0xFE, 0x81, 0xFE)},
    {1370, CR1(0x20, 0x80)},
    {1370, CR2(0x81, 0xFE, 0x40, 0x7E)},
    {1370, CR2(0x81, 0xFE, 0x81, 0xFE)},
    {964, CR1(0x20, 0x7E)},
    {964, CR2(0xA1, 0xFE, 0xA1, 0xFE)},
    {964, CR4(0x8E, 0x8E, 0xA2, 0xB0, 0xA1, 0xFE, 0xA1, 0xFE)},
    // UTF-8 up to three bytes
    {1208, CR1(0x20, 0x7F)},
    {1208, CR2(0xC2, 0xDF, 0x80, 0xBF)},
    {1208, CR3(0xE0, 0xEF, 0x80, 0xBF, 0x80, 0xBF)},
    // End row: the pattern of every CCSID without rows of its own.
    {0, CR1(0x20, 0x7E)},
};

#undef CR_END
#undef CR1
#undef CR2
#undef CR3
#undef CR4

// What setlocale with an empty name resolves for the category, with the
// category's setting put back afterwards so that the process is unchanged.
// Returns 0 with the name in localeOut, -1 when the category gives none.
static int32_t ResolveCategoryLocale(int category, char *localeOut) {
  localeOut[0] = '\0';
  const char *current = setlocale(category, nullptr);
  // The whole setting of LC_ALL can be a list of every category; a setting
  // that cannot be kept for restoring is not touched at all.
  char saved[1024];
  if (current == nullptr || strlen(current) >= sizeof saved) {
    return -1;
  }
  memcpy(saved, current, strlen(current) + 1);
  const char *resolved = setlocale(category, "");
  if (resolved == nullptr) {
    return -1; // a failed setlocale changes nothing
  }
  StringCopyCut(localeOut, resolved, LOCALE_NAME_SIZE);
  setlocale(category, saved);
  return localeOut[0] != '\0' ? 0 : -1;
}

char *GetEnvLocale(char *categoryOut, char *localeOut) {
  if (ResolveCategoryLocale(LC_MESSAGES, localeOut) == 0) {
    StringCopyCut(categoryOut, "LC_MESSAGES", LOCALE_CATEGORY_SIZE);
    return localeOut;
  }
  if (ResolveCategoryLocale(LC_ALL, localeOut) == 0) {
    StringCopyCut(categoryOut, "LC_ALL", LOCALE_CATEGORY_SIZE);
    return localeOut;
  }
  categoryOut[0] = '\0';
  localeOut[0] = '\0';
  return nullptr;
}

char *GetEnvValue(const char *name, char *valueOut, int32_t size) {
  if (size <= 0) {
    return valueOut;
  }
  const char *value = getenv(name);
  StringCopyCut(valueOut, value != nullptr ? value : "", (size_t)size);
  return valueOut;
}

static int32_t EndsWith(const char *s, const char *suffix) {
  size_t length = strlen(s);
  size_t suffixLength = strlen(suffix);
  return length >= suffixLength && strcmp(s + length - suffixLength, suffix) == 0;
}

int32_t SelectCcsidByLocale(char *locale) {
  if (locale[0] == '\0') {
    char category[LOCALE_CATEGORY_SIZE];
    GetEnvLocale(category, locale);
  }
  if (locale[0] == '\0') {
    GetEnvValue("LC_ALL", locale, LOCALE_NAME_SIZE);
  }
  if (locale[0] == '\0') {
    GetEnvValue("LANG", locale, LOCALE_NAME_SIZE);
  }
  if (locale[0] == '\0') {
    return 0;
  }

  int32_t ccsid = 0;
  for (const LocaleCcsidEntry *row = LocaleCcsidTable; row->locale[0] != '\0'; row++) {
    if (strcmp(row->locale, locale) == 0) {
      ccsid = row->ccsid;
      break;
    }
  }
  // A UTF-8 locale is UTF-8 whatever its language.
  if (EndsWith(locale, ".UTF-8") || EndsWith(locale, ".utf8")) {
    ccsid = 1208;
  }
  return ccsid;
}

// Marks one pattern of the map from a row's ranges.
static void FillPattern(uint8_t (*pattern)[256], const CcsidRangeEntry *row) {
  for (int32_t position = 0; position < CODE_RANGE_POSITIONS; position++) {
    const CodeRangeBytes &range = row->range[position];
    if (range.high == 0) {
      pattern[position][0] = CODE_RANGE_END;
      continue;
    }
    for (int32_t byte = range.low; byte <= range.high; byte++) {
      pattern[position][byte] = CODE_RANGE_ALLOWED;
    }
  }
}

void FillCodeRangeMapFromTable(CodeRangeMap *map, int32_t ccsid, const CcsidRangeEntry *table) {
  memset(map, 0, sizeof *map);
  int32_t filled = 0;
  const CcsidRangeEntry *row = table;
  for (; row->ccsid != 0; row++) {
    if (row->ccsid == ccsid && filled < CODE_RANGE_MAX_PATTERNS) {
      FillPattern(map->cell[filled], row);
      filled++;
    }
  }
  if (filled == 0) {
    FillPattern(map->cell[0], row); // the end row's default pattern
    filled = 1;
  }
  map->cell[filled][0][0] = CODE_RANGE_END;
  for (int32_t byte = 0; byte < 256; byte++) {
    int32_t step = CodeRangeStep(map, nullptr, 0, (uint8_t)byte);
    map->firstStep[byte] = (int8_t)step;
    map->firstGlyph[byte] = step == CODE_RANGE_REJECTED   ? '.'
                            : step == CODE_RANGE_COMPLETE ? (char)byte
                                                          : '\0';
  }
}

void FillCodeRangeMap(CodeRangeMap *map, int32_t ccsid) {
  FillCodeRangeMapFromTable(map, ccsid, CcsidRangeTable);
}

int32_t CodeRangePatternCount(const CodeRangeMap *map) {
  int32_t count = 0;
  while (count <= CODE_RANGE_MAX_PATTERNS && map->cell[count][0][0] != CODE_RANGE_END) {
    count++;
  }
  return count;
}

int32_t CodeRangeCharLength(const CodeRangeMap *map, const uint8_t *bytes, int32_t available) {
  int32_t longest = 0;
  for (int32_t p = 0; p <= CODE_RANGE_MAX_PATTERNS && map->cell[p][0][0] != CODE_RANGE_END; p++) {
    int32_t length = 0;
    for (; length < CODE_RANGE_POSITIONS; length++) {
      if (map->cell[p][length][0] == CODE_RANGE_END) {
        break; // the pattern is complete
      }
      if (length >= available || map->cell[p][length][bytes[length]] != CODE_RANGE_ALLOWED) {
        length = 0; // this pattern does not match here
        break;
      }
    }
    if (length > longest) {
      longest = length;
    }
  }
  return longest;
}
