// Variable-length strings (ZKCHARV): the descriptor's five fields and the
// string it describes, on the field line when it fits, else as text lines.
#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "output/record_writers.h"

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
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendFieldName(&line, name);
  TraceTextAppendChar(&line, '\n');
  if (IsNullOrAllOnes(charv)) {
    return TraceTextWrite(&line); // nothing to read the fields from
  }

  TraceTextAppendFieldName(&line, "  VSPtr");
  if (charv->VSPtr == nullptr) {
    TraceTextAppend(&line, "(null)", 6);
  } else {
    TraceTextAppend(&line, "0x", 2);
    TraceTextAppendHex32(&line, (uint32_t)(uintptr_t)charv->VSPtr);
  }
  TraceTextAppendChar(&line, '\n');
  TraceTextAppendFieldName(&line, "  VSOffset");
  TraceTextAppendInt32(&line, charv->VSOffset, 0);
  TraceTextAppendChar(&line, '\n');
  TraceTextAppendFieldName(&line, "  VSBufSize");
  if (charv->VSBufSize == 0) {
    TraceTextAppend(&line, "(use VSLength)", 14);
  } else {
    TraceTextAppendInt32(&line, charv->VSBufSize, 0);
  }
  TraceTextAppendChar(&line, '\n');
  if (charv->VSLength == -1) {
    // The null-terminated length is written without the two leading blanks
    // of the block's other lines: its name stands at the margin.
    TraceTextAppendFieldName(&line, "VSLength");
    TraceTextAppend(&line, "(null terminate)", 16);
  } else {
    TraceTextAppendFieldName(&line, "  VSLength");
    TraceTextAppendInt32(&line, charv->VSLength, 0);
  }
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
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

  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendFieldName(&line, "  Value (in string)");
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
  int32_t limit = cb->Settings.ShowMaxLenCharvString;
  bool cut = limit >= 0 && length > limit;
  rc = ShowTextStringDataRegardingMaximumLrecl(cb, text, cut ? limit : length, 4);
  if (cut) {
    TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
    TraceTextAppendString(&line, "|> "
                                 "   "
                                 "  (Shown only leading ");
    TraceTextAppendUInt32(&line, (uint32_t)limit, 0);
    TraceTextAppend(&line, " byte(s) ...)\n", 14);
    rc = TraceTextWrite(&line);
  }
  return rc;
}

void PutHexCharvData(ExitControlBlock *cb, const char *title, const ZKCHARV *charv,
                     const void *base) {
  if (charv == nullptr || (uintptr_t)charv == (uintptr_t)-1) {
    PutHexDataLen(cb, title, nullptr, 0, HEX_MODE_PLAIN, 0);
    return;
  }
  // The string through the descriptor: its pointer, else its offset from
  // the holding structure; the length as the parsed display counts it.
  const void *data = ZkcharvStringAddress(charv, nullptr, base);
  int32_t length = (int32_t)CalculateZkcharvDataLength(charv, nullptr, base);
  if (length < 0) {
    length = 0; // a negative size or length shows no data
  }
  // Without a limit of its own the dump still stops at CHARV_DUMP_MAX: the
  // length comes from the application, and a buffer size far beyond any
  // string the platform takes is more likely a wrong field than text.
  int32_t limit = cb->Settings.ShowMaxLenCharv >= 0 ? cb->Settings.ShowMaxLenCharv : CHARV_DUMP_MAX;
  if (length > limit) {
    PutHexDataLen(cb, title, data, limit, HEX_MODE_PLAIN, length);
    TraceText note;
    TraceTextStart(&note, cb, TRACE_TEXT_WRITE_OUT);
    TraceTextAppendLiteral(&note, "  (Shown only leading ");
    TraceTextAppendUInt32(&note, (uint32_t)limit, 0);
    TraceTextAppendLiteral(&note, " byte(s) ...)\n");
    TraceTextWrite(&note);
    return;
  }
  PutHexDataLen(cb, title, data, length, HEX_MODE_PLAIN, length);
}
