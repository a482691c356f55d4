// Numbers with thousands separators, for the length lines of the process
// profile: 1234567 is shown as 1,234,567, or as 1.234.567 where the locale
// writes decimals with a comma.
#include <locale.h>

#include "format/field_primitives.h"
#include "output/trace_file.h"

namespace {

// Room for the digits and separators, terminating NUL included.
constexpr int32_t kNumericArea = 28;

} // namespace

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

int32_t ReformatAndShowNumericValue(ExitControlBlock *cb, uint64_t value) {
  char area[kNumericArea];
  FormatNumericWithSeparators(area, value, NumericGroupSeparator());
  return WriteTraceData(cb, area);
}
