// Displays that recur in many structures: coded character set identifiers,
// message format names, compression lists and encodings.
#include <string.h>

#include "format/field_primitives.h"
#include "text/constant_table.h"
#include "text/string_utils.h"

namespace {

constexpr int32_t kFormatLength = 8;

// Names of the compression bits, in the order they are listed.
struct CompressBitName {
  int32_t bit;
  const char *name;
  int32_t length;
};
constexpr CompressBitName kCompressBits[] = {
    {1, "RLE", 3},
    {2, "ZLIBFAST", 8},
    {4, "ZLIBHIGH", 8},
    {8, "SYSTEM", 6},
};
constexpr int32_t kCompressAny = 0x0FFFFFFF;

// The encoding value's three fields, each a 4-bit code and its names.
struct EncodingName {
  int32_t code;
  const char *name;
};
constexpr EncodingName kIntegerEncodings[] = {
    {0x1, "INTEGER_NORMAL"}, {0x2, "INTEGER_REVERSED"}, {-1, "INTEGER_UNDEFINED"}};
constexpr EncodingName kDecimalEncodings[] = {
    {0x10, "DECIMAL_NORMAL"}, {0x20, "DECIMAL_REVERSED"}, {-1, "DECIMAL_UNDEFINED"}};
constexpr EncodingName kFloatEncodings[] = {{0x100, "FLOAT_IEEE_NORMAL"},
                                            {0x200, "FLOAT_IEEE_REVERSED"},
                                            {0x300, "FLOAT_S390"},
                                            {0x400, "FLOAT_TNS"},
                                            {-1, "FLOAT_UNDEFINED"}};

const char *EncodingNameOf(const EncodingName *names, int32_t code) {
  while (names->code != -1 && names->code != code) {
    names++;
  }
  return names->name;
}

} // namespace

int32_t ShowParsedCommonCcsid(ExitControlBlock *cb, const char *name, int32_t ccsid,
                              uint8_t fixedWidth) {
  TraceLine line;
  TraceLineStartField(&line, cb, name);
  TraceLineAppendInt32(&line, ccsid, fixedWidth != 0 ? 6 : 0);
  TraceLineAppend(&line, " (", 2);
  TraceLineAppendText(&line, SearchConstantCcsidString(ccsid, 0));
  TraceLineAppend(&line, ")\n", 2);
  return TraceLineWrite(&line);
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

int32_t ShowParsedCompressInfo(ExitControlBlock *cb, const char *name, int32_t value,
                               uint8_t fixedWidth, uint8_t endOfLine) {
  TraceLine line;
  TraceLineStartField(&line, cb, name);
  TraceLineAppendInt32(&line, value, fixedWidth != 0 ? 6 : 0);
  TraceLineAppend(&line, " (", 2);
  if (value == -1) {
    TraceLineAppend(&line, "not available", 13);
  } else if (value == 0) {
    TraceLineAppend(&line, "none", 4);
  } else if (value == kCompressAny) {
    TraceLineAppend(&line, "any", 3);
  } else {
    bool first = true;
    for (const CompressBitName &bit : kCompressBits) {
      if ((value & bit.bit) != 0) {
        if (!first) {
          TraceLineAppend(&line, " / ", 3);
        }
        TraceLineAppend(&line, bit.name, bit.length);
        first = false;
      }
    }
  }
  TraceLineAppendChar(&line, ')');
  if (endOfLine != 0) {
    TraceLineAppendChar(&line, '\n');
  }
  return TraceLineWrite(&line);
}

int32_t ShowParsedEncodingValue(ExitControlBlock *cb, int32_t encoding) {
  TraceLine line;
  TraceLineStart(&line, cb);
  TraceLineAppendFieldName(&line, "Encoding");
  TraceLineAppendUInt32(&line, (uint32_t)encoding, 0);
  TraceLineAppendChar(&line, ' ');
  if (encoding == ZK_ENCODING_NATIVE) {
    TraceLineAppend(&line, "(Native encoding) ", 18);
  }
  TraceLineAppendText(&line, EncodingNameOf(kIntegerEncodings, encoding & 0xF));
  TraceLineAppend(&line, " / ", 3);
  TraceLineAppendText(&line, EncodingNameOf(kDecimalEncodings, encoding & 0xF0));
  TraceLineAppend(&line, " / ", 3);
  TraceLineAppendText(&line, EncodingNameOf(kFloatEncodings, encoding & 0xF00));
  TraceLineAppendChar(&line, '\n');
  return TraceLineWrite(&line);
}
