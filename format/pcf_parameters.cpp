// The value parts of command-format parameters, one display per structure
// type: integers and 64-bit integers, strings, lists of integers, 64-bit
// integers and strings, byte strings, the three filters and groups; any
// other type as hex. Each fixed part is shown only when the bytes that
// remain hold it, each variable part only when it lies within the
// parameter's StrucLength (which never exceeds the bytes that remain).
#include <stddef.h>

#include "exit/control_block.h"
#include "format/attribute_selectors.h"
#include "format/pcf_message.h"
#include "zk/zkcfc.h"

namespace {

constexpr char kValue[] = "(parm) - Value";
constexpr char kCcsid[] = "(parm) - CodedCharSetId";
constexpr char kCount[] = "(parm) - Count";
constexpr char kLength[] = "(parm) - Length";
constexpr char kStringLength[] = "(parm) - StringLength";
constexpr char kStringHex[] = "(parm) - String (hex)";
constexpr char kOperator[] = "(parm) - Operator";
constexpr char kFilterValue[] = "(parm) - FilterValue";
constexpr char kValueLength[] = "(parm) - ValueLength";
constexpr char kGroupCount[] = "(parm) - parm count";
constexpr char kUnknownHex[] = "(parm) - unknown (hex)";

constexpr int32_t kFixedWidth = 6;

int32_t Word(const PcfParameter *p, size_t offset) {
  return PcfReadInt32(p->At + offset, p->Encoding);
}

// Whether `count` items of `unit` bytes after the `fixed` bytes lie within
// the parameter's StrucLength. 64-bit arithmetic: no count can overflow it.
bool VariablePartFits(const PcfParameter *p, int64_t fixed, int64_t count, int64_t unit) {
  return count >= 0 && fixed + count * unit <= (int64_t)p->StrucLength;
}

void ShowNumber(ExitControlBlock *cb, const char *name, int32_t value) {
  ShowFieldValueZklongFixedLen(cb, name, value, 1);
}

void ShowName(ExitControlBlock *cb, const char *name, const char *text) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendString(&line, text);
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

void ShowInteger(ExitControlBlock *cb, const PcfParameter *p) {
  int32_t value = Word(p, offsetof(ZKCFIN, Value));
  if (p->Parameter == ZKIA_CODED_CHAR_SET_ID) {
    ShowParsedCommonCcsid(cb, kValue, value, 1);
  } else {
    ShowPcfIntegerValue(cb, value, p->Row, "");
  }
}

void ShowString(ExitControlBlock *cb, const PcfParameter *p) {
  ShowParsedCommonCcsid(cb, kCcsid, Word(p, offsetof(ZKCFST, CodedCharSetId)), 1);
  int32_t length = Word(p, offsetof(ZKCFST, StringLength));
  ShowNumber(cb, kLength, length);
  if (length <= 0) {
    ShowPcfStringValue(cb, nullptr, length); // no string: "(null)"
  } else if (VariablePartFits(p, ZKCFST_STRUC_LENGTH_FIXED, 1, length)) {
    ShowPcfStringValue(cb, p->At + ZKCFST_STRUC_LENGTH_FIXED, length);
  }
}

// One value of the header or message compression list: the compression
// names and the position's name.
void ShowCompression(ExitControlBlock *cb, int32_t value, const char *position) {
  TraceText line;
  TraceTextStartField(&line, cb, kValue);
  TraceTextAppendCompression(&line, value, 1);
  if (position[0] != '\0') {
    TraceTextAppendLiteral(&line, " (");
    TraceTextAppendString(&line, position);
    TraceTextAppendChar(&line, ')');
  }
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

void ShowIntegerList(ExitControlBlock *cb, const PcfParameter *p) {
  int32_t count = Word(p, offsetof(ZKCFIL, Count));
  ShowNumber(cb, kCount, count);
  if (count < 1 || !VariablePartFits(p, ZKCFIL_STRUC_LENGTH_FIXED, count, 4)) {
    return;
  }
  bool compression =
      p->Parameter == ZKIACH_HDR_COMPRESSION || p->Parameter == ZKIACH_MSG_COMPRESSION;
  for (int32_t i = 0; i < count; i++) {
    int32_t value = PcfReadInt32(p->At + ZKCFIL_STRUC_LENGTH_FIXED + 4 * (size_t)i, p->Encoding);
    const char *position = SearchIntListEntryDescrption(p->Parameter, i);
    if (compression) {
      ShowCompression(cb, value, position);
    } else {
      ShowPcfIntegerValue(cb, value, p->Row, position);
    }
  }
}

void ShowInteger64(ExitControlBlock *cb, int64_t value, const char *description) {
  ShowFieldValueZkInt64FixedLen(cb, kValue, (uint32_t)(uint64_t)value,
                                (uint32_t)((uint64_t)value >> 32), description);
}

void ShowInteger64List(ExitControlBlock *cb, const PcfParameter *p) {
  int32_t count = Word(p, offsetof(ZKCFIL64, Count));
  ShowNumber(cb, kCount, count);
  if (count < 1 || !VariablePartFits(p, ZKCFIL64_STRUC_LENGTH_FIXED, count, 8)) {
    return;
  }
  for (int32_t i = 0; i < count; i++) {
    int64_t value = PcfReadInt64(p->At + ZKCFIL64_STRUC_LENGTH_FIXED + 8 * (size_t)i, p->Encoding);
    ShowInteger64(cb, value, SearchIntListEntryDescrption(p->Parameter, i));
  }
}

void ShowStringList(ExitControlBlock *cb, const PcfParameter *p) {
  ShowParsedCommonCcsid(cb, kCcsid, Word(p, offsetof(ZKCFSL, CodedCharSetId)), 1);
  int32_t count = Word(p, offsetof(ZKCFSL, Count));
  ShowNumber(cb, kCount, count);
  int32_t length = Word(p, offsetof(ZKCFSL, StringLength));
  ShowNumber(cb, kLength, length);
  // Strings of no bytes occupy nothing: a count of them is not bounded by
  // the body, so they are not listed.
  if (count < 1 || length < 1 || !VariablePartFits(p, ZKCFSL_STRUC_LENGTH_FIXED, count, length)) {
    return;
  }
  for (int32_t i = 0; i < count; i++) {
    ShowPcfStringValue(cb, p->At + ZKCFSL_STRUC_LENGTH_FIXED + (size_t)i * (size_t)length, length);
  }
}

// Bytes after a fixed part, when they lie within the StrucLength; a length
// below 1 shows "(null)".
void ShowBytes(ExitControlBlock *cb, const PcfParameter *p, const char *name, int32_t fixed,
               int32_t length) {
  if (length < 1) {
    ShowParsedHexValueFormatSelect(cb, name, nullptr, 0);
  } else if (VariablePartFits(p, fixed, 1, length)) {
    ShowParsedHexValueFormatSelect(cb, name, p->At + fixed, length);
  }
}

void ShowByteString(ExitControlBlock *cb, const PcfParameter *p) {
  int32_t length = Word(p, offsetof(ZKCFBS, StringLength));
  ShowNumber(cb, kStringLength, length);
  ShowBytes(cb, p, kStringHex, ZKCFBS_STRUC_LENGTH_FIXED, length);
}

void ShowOperator(ExitControlBlock *cb, int32_t op) {
  ShowName(cb, kOperator, SearchConstantInt(op, Constant_ZkAttrsZkcfop));
}

void ShowIntegerFilter(ExitControlBlock *cb, const PcfParameter *p) {
  ShowOperator(cb, Word(p, offsetof(ZKCFIF, Operator)));
  ShowNumber(cb, kFilterValue, Word(p, offsetof(ZKCFIF, FilterValue)));
}

void ShowStringFilter(ExitControlBlock *cb, const PcfParameter *p) {
  ShowOperator(cb, Word(p, offsetof(ZKCFSF, Operator)));
  ShowParsedCommonCcsid(cb, kCcsid, Word(p, offsetof(ZKCFSF, CodedCharSetId)), 1);
  int32_t length = Word(p, offsetof(ZKCFSF, FilterValueLength));
  ShowNumber(cb, kValueLength, length);
  if (length <= 0) {
    ShowPcfStringValue(cb, nullptr, length);
  } else if (VariablePartFits(p, ZKCFSF_STRUC_LENGTH_FIXED, 1, length)) {
    ShowPcfStringValue(cb, p->At + ZKCFSF_STRUC_LENGTH_FIXED, length);
  }
}

void ShowByteStringFilter(ExitControlBlock *cb, const PcfParameter *p) {
  ShowOperator(cb, Word(p, offsetof(ZKCFBF, Operator)));
  int32_t length = Word(p, offsetof(ZKCFBF, FilterValueLength));
  ShowNumber(cb, kValueLength, length);
  ShowBytes(cb, p, kFilterValue, ZKCFBF_STRUC_LENGTH_FIXED, length);
}

// The bytes of the minimum size of each type: what must remain before its
// value part is shown.
int32_t MinimumLength(int32_t type) {
  switch (type) {
  case ZKCFT_INTEGER:
    return ZKCFIN_STRUC_LENGTH;
  case ZKCFT_STRING:
    return ZKCFST_STRUC_LENGTH_FIXED;
  case ZKCFT_INTEGER_LIST:
    return ZKCFIL_STRUC_LENGTH_FIXED;
  case ZKCFT_STRING_LIST:
    return ZKCFSL_STRUC_LENGTH_FIXED;
  case ZKCFT_BYTE_STRING:
    return ZKCFBS_STRUC_LENGTH_FIXED;
  case ZKCFT_INTEGER_FILTER:
    return ZKCFIF_STRUC_LENGTH;
  case ZKCFT_STRING_FILTER:
    return ZKCFSF_STRUC_LENGTH_FIXED;
  case ZKCFT_BYTE_STRING_FILTER:
    return ZKCFBF_STRUC_LENGTH_FIXED;
  case ZKCFT_GROUP:
    return ZKCFGR_STRUC_LENGTH;
  case ZKCFT_INTEGER64:
    return ZKCFIN64_STRUC_LENGTH;
  case ZKCFT_INTEGER64_LIST:
    return ZKCFIL64_STRUC_LENGTH_FIXED;
  default:
    return ZKCFPARM_HEADER_LENGTH;
  }
}

} // namespace

int32_t ShowPcfParameterValue(ExitControlBlock *cb, const PcfParameter *p) {
  if (p->Remaining < MinimumLength(p->Type)) {
    return 0;
  }
  switch (p->Type) {
  case ZKCFT_INTEGER:
    ShowInteger(cb, p);
    break;
  case ZKCFT_STRING:
    ShowString(cb, p);
    break;
  case ZKCFT_INTEGER_LIST:
    ShowIntegerList(cb, p);
    break;
  case ZKCFT_INTEGER64_LIST:
    ShowInteger64List(cb, p);
    break;
  case ZKCFT_INTEGER64:
    ShowInteger64(cb, PcfReadInt64(p->At + offsetof(ZKCFIN64, Value), p->Encoding), "");
    break;
  case ZKCFT_STRING_LIST:
    ShowStringList(cb, p);
    break;
  case ZKCFT_BYTE_STRING:
    ShowByteString(cb, p);
    break;
  case ZKCFT_INTEGER_FILTER:
    ShowIntegerFilter(cb, p);
    break;
  case ZKCFT_STRING_FILTER:
    ShowStringFilter(cb, p);
    break;
  case ZKCFT_BYTE_STRING_FILTER:
    ShowByteStringFilter(cb, p);
    break;
  case ZKCFT_GROUP: {
    int32_t members = Word(p, offsetof(ZKCFGR, ParameterCount));
    ShowNumber(cb, kGroupCount, members);
    return members;
  }
  default:
    if (p->StrucLength > ZKCFPARM_HEADER_LENGTH) {
      ShowParsedHexValueFormatSelect(cb, kUnknownHex, p->At + ZKCFPARM_HEADER_LENGTH,
                                     p->StrucLength - ZKCFPARM_HEADER_LENGTH);
    }
    break;
  }
  return 0;
}

int32_t ShowPcfIntegerValue(ExitControlBlock *cb, int32_t value, const ZkAttrIntEntry *row,
                            const char *description) {
  if (row != nullptr && row->Values != nullptr) {
    return SearchIntZkAttrValueAndSetString(cb, value, row, 1, kValue);
  }
  TraceText line;
  TraceTextStartField(&line, cb, kValue);
  TraceTextAppendInt32(&line, value, kFixedWidth);
  if (description != nullptr && description[0] != '\0') {
    TraceTextAppendLiteral(&line, " (");
    TraceTextAppendString(&line, description);
    TraceTextAppendChar(&line, ')');
  }
  TraceTextAppendChar(&line, '\n');
  return TraceTextWrite(&line);
}

int32_t ShowPcfStringValue(ExitControlBlock *cb, const void *string, int32_t length) {
  const char *text = (const char *)string;
  if (text == nullptr || length <= 0 || text[0] == '\0') {
    return ShowFieldValueStringFixed(cb, kValue, "(null)", 6);
  }
  while (length > 0 && text[length - 1] == ' ') {
    length--;
  }
  if (length == 0) {
    return ShowFieldValueStringFixed(cb, kValue, "(blank)", 7);
  }
  if (length >= cb->Settings.MaxParsedOutputLineLength) {
    TraceText line;
    TraceTextStartField(&line, cb, kValue);
    TraceTextAppendChar(&line, '\n');
    TraceTextWrite(&line);
    return ShowTextStringDataRegardingMaximumLrecl(cb, text, length, 2);
  }
  return ShowFieldValueStringFixed(cb, kValue, text, length);
}
