// The walker that writes a structure from its table of fields: version
// groups, field lines, flag lists and values by name, and the reports of
// unknown values after the line that shows them. All lines go through one
// text, which is handed on when a field writes through a primitive of its
// own and at the end.
#include <string.h>

#include "exit/control_block.h"
#include "format/structure_fields.h"
#include "format/structures.h"

namespace {

constexpr char kUnknownValue[] = "(Unknown value)";

// The name a row gives, its prefix left out.
const char *RowText(const ConstantIntEntry *row, uint8_t skip) {
  size_t length = strlen(row->text);
  return row->text + (skip < length ? skip : length);
}

bool FlagWordIsUnknown(const FlagDisplay *flags, uint32_t word) {
  if (flags->UnknownTest == FLAGS_UNKNOWN_ABOVE) {
    return (int32_t)word > (int32_t)flags->Unknown;
  }
  return (word & flags->Unknown) != 0;
}

// The row that names a value, or null.
const ConstantIntEntry *FindValueRow(const ValueDisplay *value, int32_t number) {
  if (number < value->Lowest || number > value->Highest) {
    return nullptr;
  }
  const ConstantIntEntry *row = FindConstantIntRow(number, value->Rows);
  return row->value != CONSTANT_TABLE_END ? row : nullptr;
}

// Reports an unknown value after the line that shows it.
void ReportUnknown(FieldWalk *walk, const char *name, uint32_t value) {
  FieldWalkFlush(walk);
  ShowUnknownAttribute(walk->Text.Cb, name, value);
}

bool ReportsField(const FieldWalk *walk, uint8_t rule) {
  return (rule & FIELD_RECEIVED) == 0 || walk->ReportReceived != 0;
}

void ShowField(FieldWalk *walk, const StructField *field) {
  TraceText *text = &walk->Text;
  const unsigned char *at = walk->Structure + field->Offset;
  if (field->Kind == FIELD_FUNCTION) {
    field->Show(walk, field);
    return;
  }
  if (field->Kind == FIELD_VALUE || field->Kind == FIELD_CHARACTER) {
    int32_t number = field->Kind == FIELD_CHARACTER
                         ? (int32_t)at[0]
                         : FieldWalkInt32(walk, field->Offset, field->Rule);
    FieldWalkAppendValue(walk, field->Name, field->Value, number, ReportsField(walk, field->Rule));
    return;
  }
  if (field->Kind == FIELD_BYTES_DUMP) {
    FieldWalkFlush(walk);
    ShowParsedHexValueMultipleLines(text->Cb, field->Name, at, field->Size, 1);
    return;
  }
  if (field->Kind == FIELD_FORMAT) {
    FieldWalkFlush(walk);
    ShowParsedMsgFormat(text->Cb, (const char *)at);
    return;
  }
  TraceTextAppendFieldName(text, field->Name);
  switch (field->Kind) {
  case FIELD_INT:
    TraceTextAppendInt32(text, FieldWalkInt32(walk, field->Offset, field->Rule), 0);
    TraceTextAppendChar(text, '\n');
    break;
  case FIELD_TEXT:
    TraceTextAppendFieldString(text, at, field->Size);
    break;
  case FIELD_BYTES:
    TraceTextAppendHexSingleLine(text, at, field->Size, 1, 1, 1);
    break;
  case FIELD_MESSAGE_HANDLE:
    TraceTextAppendHexSingleLine(text, at, 8, 1, 1, 1);
    break;
  case FIELD_FLAGS:
    FieldWalkAppendFlags(walk, field->Flags,
                         (uint32_t)FieldWalkInt32(walk, field->Offset, field->Rule),
                         ReportsField(walk, field->Rule));
    break;
  case FIELD_CCSID:
    TraceTextAppendCcsid(text, FieldWalkInt32(walk, field->Offset, field->Rule), 0);
    break;
  case FIELD_ENCODING:
    TraceTextAppendEncoding(text, FieldWalkInt32(walk, field->Offset, field->Rule));
    break;
  case FIELD_COMPRESSION:
    TraceTextAppendCompression(text, FieldWalkInt32(walk, field->Offset, field->Rule), 0);
    TraceTextAppendChar(text, '\n');
    break;
  default:
    TraceTextAppendChar(text, '\n');
    break;
  }
}

} // namespace

int32_t FieldWalkInt32(const FieldWalk *walk, uint16_t offset, uint8_t rule) {
  int32_t value;
  memcpy(&value, walk->Structure + offset, sizeof value);
  if ((rule & FIELD_RAW) != 0) {
    return value;
  }
  return ZklongValueRegardingEncoding(value, walk->Encoding);
}

void StartFieldWalk(FieldWalk *walk, ExitControlBlock *cb, const void *structure, int32_t encoding,
                    uint16_t versionOffset) {
  TraceTextStart(&walk->Text, cb, TRACE_TEXT_WRITE_OUT);
  walk->Structure = (const unsigned char *)structure;
  walk->Encoding = encoding;
  walk->StoredVersion = FieldWalkInt32(walk, versionOffset, FIELD_RAW);
  walk->Version = FieldWalkInt32(walk, versionOffset, 0);
  walk->ReportReceived = 1;
  walk->Strings[0] = walk->Strings[1] = walk->Strings[2] = nullptr;
}

void WalkStructFields(FieldWalk *walk, const StructDisplay *display) {
  for (int32_t i = 0; i < display->FieldCount; i++) {
    const StructField *field = &display->Fields[i];
    if (field->Kind == FIELD_VERSION_GROUP) {
      int32_t version = (field->Rule & FIELD_RAW) != 0 ? walk->StoredVersion : walk->Version;
      if (version < (int32_t)field->Size) {
        break;
      }
      if ((field->Rule & FIELD_NOT_IN_CHANNEL_EXIT) != 0 &&
          walk->Text.Cb->ExitType == EXIT_TYPE_CHANNEL) {
        break;
      }
      if ((field->Rule & FIELD_NO_HEADER) == 0) {
        TraceTextAppendVersionHeader(&walk->Text, display->ShortName, field->Size);
      }
      continue;
    }
    ShowField(walk, field);
  }
  FieldWalkFlush(walk);
}

void FieldWalkAppendFlags(FieldWalk *walk, const FlagDisplay *flags, uint32_t word,
                          uint8_t report) {
  TraceText *text = &walk->Text;
  uint32_t left = word;
  uint32_t known = *flags->Known;
  int32_t named = 0;
  for (const ConstantIntEntry *row = flags->Rows; row->value != CONSTANT_TABLE_END; row++) {
    uint32_t bits = (uint32_t)row->value;
    if (bits == 0 || (bits & ~known) != 0) {
      continue;
    }
    bool shown = flags->Test == FLAGS_ANY_BIT ? (word & bits) != 0 : (left & bits) == bits;
    if (!shown) {
      continue;
    }
    if (flags->Test == FLAGS_ALL_BITS) {
      left &= ~bits;
    }
    if (named++ > 0) {
      TraceTextAppend(text, " / ", 3);
    }
    TraceTextAppendString(text, RowText(row, flags->Skip));
  }
  if (named == 0) {
    TraceTextAppend(text, "(none)", 6);
  }
  TraceTextAppendChar(text, '\n');
  if (report != 0 && FlagWordIsUnknown(flags, word)) {
    ReportUnknown(walk, flags->UnknownName, word);
  }
}

void FieldWalkAppendValue(FieldWalk *walk, const char *name, const ValueDisplay *value,
                          int32_t number, uint8_t report) {
  TraceText *text = &walk->Text;
  if (FieldHasName(name)) {
    TraceTextAppendFieldName(text, name);
  }
  const ConstantIntEntry *row = FindValueRow(value, number);
  if (value->UnknownForm == VALUE_REASON) {
    TraceTextAppendInt32(text, number, 0);
    if (number != 0) {
      TraceTextAppend(text, " (", 2);
      TraceTextAppendString(text,
                            row != nullptr ? row->text : SearchConstantInt(number, value->Rows));
      TraceTextAppendChar(text, ')');
    }
    TraceTextAppendChar(text, '\n');
    return;
  }
  if (row != nullptr) {
    TraceTextAppendString(text, RowText(row, value->Skip));
    TraceTextAppendChar(text, '\n');
    return;
  }
  bool reported = true;
  switch (value->UnknownForm) {
  case VALUE_TABLE_TEXT:
    TraceTextAppendString(text, SearchConstantInt(number, value->Rows));
    reported = false;
    break;
  case VALUE_NUMBER:
    TraceTextAppendInt32(text, number, 0);
    reported = false;
    break;
  case VALUE_NUMBER_UNKNOWN_REPORTED:
    TraceTextAppendInt32(text, number, 0);
    TraceTextAppendChar(text, ' ');
    TraceTextAppendLiteral(text, kUnknownValue);
    break;
  case VALUE_SECOND_LINE_REPORTED:
    TraceTextAppendChar(text, '\n');
    if (FieldHasName(name)) {
      TraceTextAppendFieldName(text, name);
    }
    TraceTextAppendInt32(text, number, 0);
    break;
  case VALUE_BYTE_REPORTED: {
    unsigned char byte = (unsigned char)number;
    TraceTextAppendHexSingleLine(text, &byte, 1, 0, 1, 0);
    break;
  }
  default:
    TraceTextAppendInt32(text, number, 0);
    break;
  }
  TraceTextAppendChar(text, '\n');
  if (reported && report != 0) {
    ReportUnknown(walk, value->UnknownName, (uint32_t)number);
  }
}

void ShowFlagsField(ExitControlBlock *cb, const char *name, const FlagDisplay *flags, uint32_t word,
                    uint8_t report) {
  FieldWalk walk;
  TraceTextStartField(&walk.Text, cb, name);
  FieldWalkAppendFlags(&walk, flags, word, report);
  FieldWalkFlush(&walk);
}

void ShowValueField(ExitControlBlock *cb, const char *name, const ValueDisplay *value,
                    int32_t number, uint8_t report) {
  FieldWalk walk;
  TraceTextStart(&walk.Text, cb, TRACE_TEXT_WRITE_OUT);
  FieldWalkAppendValue(&walk, name, value, number, report);
  FieldWalkFlush(&walk);
}

int32_t CheckStructureVersion(ExitControlBlock *cb, const char *name, int32_t version,
                              int32_t highestKnown) {
  if (version > highestKnown) {
    ShowUnknownStructureVersion(cb, name, version);
    return highestKnown;
  }
  return version;
}
