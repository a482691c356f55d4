// Displays that recur in many structures: coded character set identifiers,
// message format names, compression lists and encodings.
#include <string.h>

#include "format/field_primitives.h"
#include "text/constant_table.h"
#include "text/string_utils.h"
#include "zk/zkconst.h"

namespace {

constexpr int32_t kFormatLength = 8;

} // namespace

void TraceTextAppendCcsid(TraceText *line, int32_t ccsid, uint8_t fixedWidth) {
  TraceTextAppendInt32(line, ccsid, fixedWidth != 0 ? 6 : 0);
  TraceTextAppend(line, " (", 2);
  TraceTextAppendString(line, SearchConstantCcsidString(ccsid, 0));
  TraceTextAppend(line, ")\n", 2);
}

int32_t ShowParsedCommonCcsid(ExitControlBlock *cb, const char *name, int32_t ccsid,
                              uint8_t fixedWidth) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendCcsid(&line, ccsid, fixedWidth);
  return TraceTextWrite(&line);
}

int32_t ShowParsedMsgFormat(ExitControlBlock *cb, const char *format) {
  // The name up to its first zero byte, blank-padded to 8 characters.
  char name[kFormatLength + 1];
  int32_t length = 0;
  while (length < kFormatLength && format != nullptr && format[length] != '\0') {
    name[length] = format[length];
    length++;
  }
  memset(name + length, ' ', (size_t)(kFormatLength - length));
  name[kFormatLength] = '\0';

  // All 8 bytes must match; the first matching row answers.
  const char *description = nullptr;
  for (const ConstantStringEntry *row = Constant_MsgFormat; row->key[0] != '\0'; row++) {
    if (strncmp(row->key, name, kFormatLength) == 0) {
      description = row->text;
      break;
    }
  }

  StringTrim(name);
  const char *shown = name[0] != '\0' ? name : "(blank)";
  char value[kFormatLength + 1 + 128];
  int32_t used = (int32_t)strlen(shown);
  memcpy(value, shown, (size_t)used + 1);
  if (description != nullptr) {
    // "%s (%s)"; descriptions are short table texts, cut if one ever is not.
    int32_t room = (int32_t)sizeof value - used - 1;
    int32_t textLength = (int32_t)strlen(description);
    if (textLength + 3 > room) {
      textLength = room - 3;
    }
    value[used++] = ' ';
    value[used++] = '(';
    memcpy(value + used, description, (size_t)textLength);
    used += textLength;
    value[used++] = ')';
    value[used] = '\0';
  }
  return ShowFieldValueStringFixed(cb, "Format", value, used);
}

void TraceTextAppendCompression(TraceText *line, int32_t value, uint8_t fixedWidth) {
  TraceTextAppendInt32(line, value, fixedWidth != 0 ? 6 : 0);
  TraceTextAppend(line, " (", 2);
  // A word that is not made of known bits alone, or has none, may be one of
  // the whole words ("not available", "none", "any"); any other word lists
  // its known bits in the order of the table, unknown bits left out.
  const uint32_t known = ConstantKnownBits_Zkcompress;
  const ConstantIntEntry *whole = nullptr;
  if (value == 0 || ((uint32_t)value & ~known) != 0) {
    for (const ConstantIntEntry *row = Constant_Zkcompress; row->value != CONSTANT_TABLE_END;
         row++) {
      if (row->value == value) {
        whole = row;
        break;
      }
    }
  }
  if (whole != nullptr) {
    TraceTextAppendString(line, whole->text);
  } else {
    bool first = true;
    for (const ConstantIntEntry *row = Constant_Zkcompress; row->value != CONSTANT_TABLE_END;
         row++) {
      uint32_t bits = (uint32_t)row->value;
      if (bits != 0 && (bits & ~known) == 0 && ((uint32_t)value & bits) == bits) {
        if (!first) {
          TraceTextAppend(line, " / ", 3);
        }
        TraceTextAppendString(line, row->text);
        first = false;
      }
    }
  }
  TraceTextAppendChar(line, ')');
}

int32_t ShowParsedCompressInfo(ExitControlBlock *cb, const char *name, int32_t value,
                               uint8_t fixedWidth, uint8_t endOfLine) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendCompression(&line, value, fixedWidth);
  if (endOfLine != 0) {
    TraceTextAppendChar(&line, '\n');
  }
  return TraceTextWrite(&line);
}

void TraceTextAppendEncoding(TraceText *line, int32_t encoding) {
  TraceTextAppendUInt32(line, (uint32_t)encoding, 0);
  TraceTextAppendChar(line, ' ');
  // A named whole encoding first ("(Native encoding) "), then its three parts.
  const char *whole = SearchConstantInt(encoding, Constant_Zkenc);
  if (whole[0] != '\0') {
    TraceTextAppendChar(line, '(');
    TraceTextAppendString(line, whole);
    TraceTextAppend(line, ") ", 2);
  }
  TraceTextAppendString(line,
                        SearchConstantInt(encoding & ZKENC_INTEGER_MASK, Constant_Zkenc_integer));
  TraceTextAppend(line, " / ", 3);
  TraceTextAppendString(line,
                        SearchConstantInt(encoding & ZKENC_DECIMAL_MASK, Constant_Zkenc_decimal));
  TraceTextAppend(line, " / ", 3);
  TraceTextAppendString(line, SearchConstantInt(encoding & ZKENC_FLOAT_MASK, Constant_Zkenc_float));
  TraceTextAppendChar(line, '\n');
}

int32_t ShowParsedEncodingValue(ExitControlBlock *cb, int32_t encoding) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendFieldName(&line, "Encoding");
  TraceTextAppendEncoding(&line, encoding);
  return TraceTextWrite(&line);
}
