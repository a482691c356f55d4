// Numbers with thousands separators, for the length lines of the process
// profile: 1234567 is shown as 1,234,567, or as 1.234.567 where the locale
// writes decimals with a comma.
#include "output/profile.h"
#include "output/trace_file.h"
#include "text/number_text.h"

int32_t ReformatAndShowNumericValue(ExitControlBlock *cb, uint64_t value) {
  char area[28];
  FormatNumericWithSeparators(area, value, NumericGroupSeparator());
  return WriteTraceData(cb, area);
}
