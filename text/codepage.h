// Code pages and locale: which CCSID the character column of a hex dump
// follows when ShowHexCharCcsid is not given, and the map of the byte
// sequences that count as characters in that CCSID.
#pragma once

#include <stdint.h>

// Room for a locale name, terminating NUL included. Buffers handed to
// GetEnvLocale and SelectCcsidByLocale hold at least this many bytes.
#define LOCALE_NAME_SIZE 100
// Room for a locale category name ("LC_MESSAGES"), terminating NUL included.
#define LOCALE_CATEGORY_SIZE 16

// One locale name and the CCSID it stands for. The table ends in a row
// whose name is empty.
struct LocaleCcsidEntry {
  const char *locale;
  int32_t ccsid;
};

extern const LocaleCcsidEntry LocaleCcsidTable[];

// The bytes allowed at one position of a character; high 0 ends the pattern.
struct CodeRangeBytes {
  uint8_t low;
  uint8_t high;
};

#define CODE_RANGE_POSITIONS 5

// One character pattern of a CCSID: the n-th range gives the bytes allowed at
// the n-th position. A CCSID has one row per pattern. The table ends in a row
// of CCSID 0 whose pattern (20-7E) is the default for CCSIDs with no rows.
struct CcsidRangeEntry {
  int32_t ccsid;
  CodeRangeBytes range[CODE_RANGE_POSITIONS];
};

extern const CcsidRangeEntry CcsidRangeTable[];

// Patterns a map holds, and the entry after the last one that ends the list.
#define CODE_RANGE_MAX_PATTERNS 9
#define CODE_RANGE_ALLOWED 1
#define CODE_RANGE_END 2

// cell[pattern][position][byte]: CODE_RANGE_ALLOWED when the byte may stand
// at that position of a character of that pattern; CODE_RANGE_END in the
// byte-0 cell of a position when the pattern ends before it; a pattern whose
// very first cell is CODE_RANGE_END ends the list.
//
// firstStep[byte] is what CodeRangeStep answers for a byte with nothing
// pending (CODE_RANGE_REJECTED, _CONTINUES or _COMPLETE, below), worked out
// once when the map is filled: the dumps decide most bytes by this one
// look-up. firstGlyph[byte] is what the character column shows for such a
// byte: the byte itself when it is a character alone, "." when it is none,
// and 0 when it starts a longer character (or is a zero byte that is a
// character), which the walk must follow.
struct CodeRangeMap {
  uint8_t cell[CODE_RANGE_MAX_PATTERNS + 1][CODE_RANGE_POSITIONS][256];
  int8_t firstStep[256];
  char firstGlyph[256];
};

// The locale of LC_MESSAGES or, when that has none, of LC_ALL, as setlocale
// with an empty locale name resolves it from the environment. Writes the
// category name ("LC_MESSAGES" or "LC_ALL") to categoryOut (at least
// LOCALE_CATEGORY_SIZE bytes) and the locale to localeOut (at least
// LOCALE_NAME_SIZE bytes, cut to fit). The process's locale is left as it
// was. Returns localeOut, or nullptr (both outputs empty) when neither
// category gives a locale.
char *GetEnvLocale(char *categoryOut, char *localeOut);

// Copies the environment variable's value into valueOut (size bytes, cut to
// fit), or the empty string when it is not set. Returns valueOut.
char *GetEnvValue(const char *name, char *valueOut, int32_t size);

// The CCSID of a locale. An empty locale (a buffer of at least
// LOCALE_NAME_SIZE bytes) is first filled from GetEnvLocale, then from the
// variables LC_ALL and LANG; the name found is left in the buffer. Returns
// the CCSID of the name's row in LocaleCcsidTable (exact, case-sensitive
// match), 1208 for any name ending in ".UTF-8" or ".utf8", and 0 when there
// is no name or no row.
int32_t SelectCcsidByLocale(char *locale);

// Fills the map from the rows of CcsidRangeTable for the CCSID, at most
// CODE_RANGE_MAX_PATTERNS of them; a CCSID with no rows gets the default
// pattern 20-7E.
void FillCodeRangeMap(CodeRangeMap *map, int32_t ccsid);

// The same from any range table ending in a CCSID-0 row.
void FillCodeRangeMapFromTable(CodeRangeMap *map, int32_t ccsid, const CcsidRangeEntry *table);

// Number of patterns a filled map holds.
int32_t CodeRangePatternCount(const CodeRangeMap *map);

// Byte length of the longest character of the map that starts at bytes and
// fits in the available bytes; 0 when no pattern matches there.
int32_t CodeRangeCharLength(const CodeRangeMap *map, const uint8_t *bytes, int32_t available);

// One step of walking bytes through the map: `pending` holds the `count`
// bytes of a character begun so far. Answers CODE_RANGE_REJECTED when no
// pattern takes `byte` after them (the pending bytes and this one are no
// character), CODE_RANGE_CONTINUES when a pattern takes it and the
// character goes on, CODE_RANGE_COMPLETE when the character ends with it.
// The first pattern that allows every pending byte and this one decides.
#define CODE_RANGE_REJECTED (-1)
#define CODE_RANGE_CONTINUES 0
#define CODE_RANGE_COMPLETE 1
// Inline: the dumps call it for every byte they show.
inline int32_t CodeRangeStep(const CodeRangeMap *map, const uint8_t *pending, int32_t count,
                             uint8_t byte) {
  if (count >= CODE_RANGE_POSITIONS) {
    return CODE_RANGE_REJECTED;
  }
  for (int32_t p = 0; p <= CODE_RANGE_MAX_PATTERNS; p++) {
    const uint8_t(*pattern)[256] = map->cell[p];
    if (pattern[0][0] == CODE_RANGE_END) {
      break; // end of the list of patterns
    }
    if (pattern[count][byte] != CODE_RANGE_ALLOWED) {
      continue;
    }
    int32_t k = 0;
    while (k < count && pattern[k][pending[k]] == CODE_RANGE_ALLOWED) {
      k++;
    }
    if (k < count) {
      continue;
    }
    bool ends = count + 1 == CODE_RANGE_POSITIONS || pattern[count + 1][0] == CODE_RANGE_END;
    return ends ? CODE_RANGE_COMPLETE : CODE_RANGE_CONTINUES;
  }
  return CODE_RANGE_REJECTED;
}
