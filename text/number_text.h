// Numbers as text, converted by hand (two digits per step, 32-bit
// arithmetic for 32-bit values) rather than through the printf family: they
// run for every record and every field of every traced structure. The trace
// text builder appends through these; the clock and the profile use them on
// plain buffers.
#pragma once

#include <stdint.h>

// The digit pairs "00" to "99" in order: the two digits of n < 100 start at
// 2 * n.
extern const char DecimalDigitPairs[201];

// Room for any 64-bit decimal with its sign.
#define FORMAT_DECIMAL_SIZE 20

// Six decimal digits of `value` (below 1,000,000), zeros in front, at `out`.
inline void PutSixDigits(char *out, uint32_t value) {
  uint32_t high = value / 10000;
  uint32_t rest = value - high * 10000;
  uint32_t middle = rest / 100;
  uint32_t low = rest - middle * 100;
  out[0] = DecimalDigitPairs[2 * high];
  out[1] = DecimalDigitPairs[2 * high + 1];
  out[2] = DecimalDigitPairs[2 * middle];
  out[3] = DecimalDigitPairs[2 * middle + 1];
  out[4] = DecimalDigitPairs[2 * low];
  out[5] = DecimalDigitPairs[2 * low + 1];
}

// The number of decimal digits of `value`.
inline int32_t DecimalDigitCount32(uint32_t value) {
  return value < 10           ? 1
         : value < 100        ? 2
         : value < 1000       ? 3
         : value < 10000      ? 4
         : value < 100000     ? 5
         : value < 1000000    ? 6
         : value < 10000000   ? 7
         : value < 100000000  ? 8
         : value < 1000000000 ? 9
                              : 10;
}

// Writes the decimal digits of `value` so that they end just before `end`
// and returns the position of the first one. `end` needs 10 bytes before it.
// Inline: every number of every record goes through here.
inline char *DecimalDigitsBackwards32(char *end, uint32_t value) {
  char *p = end;
  while (value >= 100) {
    uint32_t high = value / 100;
    uint32_t pair = (value - high * 100) * 2;
    value = high;
    p -= 2;
    p[0] = DecimalDigitPairs[pair];
    p[1] = DecimalDigitPairs[pair + 1];
  }
  if (value >= 10) {
    p -= 2;
    p[0] = DecimalDigitPairs[value * 2];
    p[1] = DecimalDigitPairs[value * 2 + 1];
  } else {
    *--p = (char)('0' + value);
  }
  return p;
}
// The same for a 64-bit value (20 bytes before `end`).
char *DecimalDigitsBackwards64(char *end, uint64_t value);

// The value right-aligned in `width` columns (0: no padding), written at
// `out` without a NUL; returns the number of characters. Padding is blanks
// before the sign ("%*lld"), or with zeroPad zeros after it ("%0*lld").
// `out` needs room for FORMAT_DECIMAL_SIZE characters or `width`,
// whichever is more.
int32_t FormatDecimalInt64(char *out, int64_t value, int32_t width, uint8_t zeroPad);
int32_t FormatDecimalUInt32(char *out, uint32_t value, int32_t width, uint8_t zeroPad);

// The upper-case hex digit pairs of all byte values in order, "00" to "FF".
extern const char HexDigitPairs[513];
// The two hex digits of a byte.
inline const char *HexDigitPair(uint8_t byte) {
  return HexDigitPairs + 2 * byte;
}

// Writes the value's digits with `separator` before every group of three that
// has digits in front of it into `area` (at least 28 bytes), NUL-terminated;
// returns the length.
int32_t FormatNumericWithSeparators(char *area, uint64_t value, char separator);

// The group separator for FormatNumericWithSeparators in the current locale:
// "," or, where the locale's decimal point is ",", ".".
char NumericGroupSeparator(void);
