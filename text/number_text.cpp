// Decimal and hex digits of numbers; see number_text.h.
#include "text/number_text.h"

#include <locale.h>
#include <string.h>

namespace {

// Room for the digits and separators, terminating NUL included.
constexpr int32_t kNumericArea = 28;

// The digits of the magnitude with the sign and padding in front; see
// FormatDecimalInt64.
int32_t FormatDecimal(char *out, uint64_t magnitude, bool negative, int32_t width,
                      uint8_t zeroPad) {
  char digits[24];
  char *end = digits + sizeof digits;
  char *first = DecimalDigitsBackwards64(end, magnitude);
  int32_t length = (int32_t)(end - first);
  int32_t pad = width - length - (negative ? 1 : 0);
  char *p = out;
  if (pad > 0 && !zeroPad) {
    memset(p, ' ', (size_t)pad);
    p += pad;
  }
  if (negative) {
    *p++ = '-';
  }
  if (pad > 0 && zeroPad) {
    memset(p, '0', (size_t)pad);
    p += pad;
  }
  memcpy(p, first, (size_t)length);
  return (int32_t)(p + length - out);
}

} // namespace

const char DecimalDigitPairs[201] = "00010203040506070809"
                                    "10111213141516171819"
                                    "20212223242526272829"
                                    "30313233343536373839"
                                    "40414243444546474849"
                                    "50515253545556575859"
                                    "60616263646566676869"
                                    "70717273747576777879"
                                    "80818283848586878889"
                                    "90919293949596979899";

const char HexDigitPairs[513] = "000102030405060708090A0B0C0D0E0F"
                                "101112131415161718191A1B1C1D1E1F"
                                "202122232425262728292A2B2C2D2E2F"
                                "303132333435363738393A3B3C3D3E3F"
                                "404142434445464748494A4B4C4D4E4F"
                                "505152535455565758595A5B5C5D5E5F"
                                "606162636465666768696A6B6C6D6E6F"
                                "707172737475767778797A7B7C7D7E7F"
                                "808182838485868788898A8B8C8D8E8F"
                                "909192939495969798999A9B9C9D9E9F"
                                "A0A1A2A3A4A5A6A7A8A9AAABACADAEAF"
                                "B0B1B2B3B4B5B6B7B8B9BABBBCBDBEBF"
                                "C0C1C2C3C4C5C6C7C8C9CACBCCCDCECF"
                                "D0D1D2D3D4D5D6D7D8D9DADBDCDDDEDF"
                                "E0E1E2E3E4E5E6E7E8E9EAEBECEDEEEF"
                                "F0F1F2F3F4F5F6F7F8F9FAFBFCFDFEFF";

char *DecimalDigitsBackwards64(char *end, uint64_t value) {
  if (value <= 0xFFFFFFFFu) {
    return DecimalDigitsBackwards32(end, (uint32_t)value); // far cheaper on i386
  }
  // Split off the low nine digits so that the rest is 32-bit work too.
  char *p = end;
  while (value > 0xFFFFFFFFu) {
    uint32_t low = (uint32_t)(value % 1000000000u);
    value /= 1000000000u;
    char *first = DecimalDigitsBackwards32(p, low);
    while (first > p - 9) {
      *--first = '0';
    }
    p = first;
  }
  return DecimalDigitsBackwards32(p, (uint32_t)value);
}

int32_t FormatDecimalInt64(char *out, int64_t value, int32_t width, uint8_t zeroPad) {
  bool negative = value < 0;
  uint64_t magnitude = negative ? 0u - (uint64_t)value : (uint64_t)value;
  return FormatDecimal(out, magnitude, negative, width, zeroPad);
}

int32_t FormatDecimalUInt32(char *out, uint32_t value, int32_t width, uint8_t zeroPad) {
  return FormatDecimal(out, value, false, width, zeroPad);
}

char NumericGroupSeparator(void) {
  // The locale's decimal point is the character that printf would put after
  // the first digit of 0.0.
  const struct lconv *conventions = localeconv();
  const char *point = conventions != nullptr ? conventions->decimal_point : nullptr;
  return (point != nullptr && point[0] == ',') ? '.' : ',';
}

int32_t FormatNumericWithSeparators(char *area, uint64_t value, char separator) {
  // Fill from the right; the area holds at most kNumericArea - 1 characters.
  char digits[kNumericArea];
  int32_t position = kNumericArea - 1;
  digits[position] = '\0';
  int32_t inGroup = 0;
  do {
    if (inGroup == 3) {
      digits[--position] = separator;
      inGroup = 0;
      if (position == 0) {
        break;
      }
    }
    digits[--position] = (char)('0' + value % 10);
    value /= 10;
    inGroup++;
  } while (value != 0 && position > 0);
  int32_t length = kNumericArea - 1 - position;
  for (int32_t i = 0; i <= length; i++) {
    area[i] = digits[position + i];
  }
  return length;
}
