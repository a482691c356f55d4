// Variable-length strings (ZKCHARV): the descriptor's five fields and the
// string it describes, on the field line when it fits, else as text lines.
#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"

namespace {

const void *const kAllOnes = (const void *)(intptr_t)-1;

bool IsNullOrAllOnes(const void *address) {
  return address == nullptr || address == kAllOnes;
}

} // namespace

const void *ZkcharvStringAddress(const ZKCHARV *charv, const void *string, const void *structure) {
  if (string == ZKCHARV_STRING_UNREADABLE) {
    return nullptr;
  }
  if (string != nullptr) {
    return string;
  }
  if (charv->VSPtr != nullptr) {
    return charv->VSPtr;
  }
  if (charv->VSOffset != 0) {
    return (const char *)structure + charv->VSOffset;
  }
  return nullptr;
}

uint32_t CalculateZkcharvDataLength(const ZKCHARV *charv, const void *string,
                                    const void *structure) {
  if (IsNullOrAllOnes(charv) || IsNullOrAllOnes(structure)) {
    return 0;
  }
  const void *address = ZkcharvStringAddress(charv, string, structure);
  if (address == nullptr) {
    return 0;
  }
  // A buffer size, where one is given, wins over the string's length.
  if (charv->VSBufSize != 0) {
    return (uint32_t)charv->VSBufSize;
  }
  if (charv->VSLength != -1) {
    return (uint32_t)charv->VSLength;
  }
  // Null-terminated: the terminator is counted.
  return (uint32_t)strlen((const char *)address) + 1;
}

int32_t ShowZKCHARV(ExitControlBlock *cb, const char *name, const ZKCHARV *charv,
                    const void *structure, const void *string) {
  TraceLine line;
  TraceLineStart(&line, cb);
  TraceLineAppendFieldName(&line, name);
  TraceLineAppendChar(&line, '\n');
  if (IsNullOrAllOnes(charv)) {
    return TraceLineWrite(&line); // nothing to read the fields from
  }

  TraceLineAppendFieldName(&line, "  VSPtr");
  if (charv->VSPtr == nullptr) {
    TraceLineAppend(&line, "(null)", 6);
  } else {
    TraceLineAppend(&line, "0x", 2);
    TraceLineAppendHex32(&line, (uint32_t)(uintptr_t)charv->VSPtr);
  }
  TraceLineAppendChar(&line, '\n');
  TraceLineAppendFieldName(&line, "  VSOffset");
  TraceLineAppendInt32(&line, charv->VSOffset, 0);
  TraceLineAppendChar(&line, '\n');
  TraceLineAppendFieldName(&line, "  VSBufSize");
  if (charv->VSBufSize == 0) {
    TraceLineAppend(&line, "(use VSLength)", 14);
  } else {
    TraceLineAppendInt32(&line, charv->VSBufSize, 0);
  }
  TraceLineAppendChar(&line, '\n');
  if (charv->VSLength == -1) {
    // The null-terminated length is written without the two leading blanks
    // of the block's other lines: its name stands at the margin.
    TraceLineAppendFieldName(&line, "VSLength");
    TraceLineAppend(&line, "(null terminate)", 16);
  } else {
    TraceLineAppendFieldName(&line, "  VSLength");
    TraceLineAppendInt32(&line, charv->VSLength, 0);
  }
  TraceLineAppendChar(&line, '\n');
  TraceLineWrite(&line);
  int32_t rc = ShowParsedCommonCcsid(cb, "  VSCCSID", charv->VSCCSID, 0);

  // Lengths are signed counts in the descriptor; a negative one shows nothing.
  int32_t length = (int32_t)CalculateZkcharvDataLength(charv, string, structure);
  if (length < 1) {
    return rc;
  }
  const char *text = (const char *)ZkcharvStringAddress(charv, string, structure);
  if ((int64_t)length + FIELD_STRING_LINE_RESERVE <= cb->Settings.MaxParsedOutputLineLength) {
    return ShowFieldValueStringFixed(cb, "  Value (in string)", text, length);
  }

  TraceLineStart(&line, cb);
  TraceLineAppendFieldName(&line, "  Value (in string)");
  TraceLineAppendChar(&line, '\n');
  TraceLineWrite(&line);
  int32_t limit = cb->Settings.ShowMaxLenCharvString;
  bool cut = limit >= 0 && length > limit;
  rc = ShowTextStringDataRegardingMaximumLrecl(cb, text, cut ? limit : length, 4);
  if (cut) {
    TraceLineStart(&line, cb);
    TraceLineAppendText(&line, "|> "
                               "   "
                               "  (Shown only leading ");
    TraceLineAppendUInt32(&line, (uint32_t)limit, 0);
    TraceLineAppend(&line, " byte(s) ...)\n", 14);
    rc = TraceLineWrite(&line);
  }
  return rc;
}
