// Attribute selectors of ZKINQ and ZKSET and the parameter identifiers of
// command-format messages: finding a selector's row, showing an integer
// attribute's value by name or as flags, and walking the selectors of a
// call with its integer values and its character area.
#include "exit/control_block.h"
#include "format/attribute_selectors.h"
#include "format/structure_fields.h"
#include "zk/zkconst.h"

namespace {

constexpr int32_t kFixedWidth = 6;

int32_t WidthOf(uint8_t fixedLength) {
  return fixedLength != 0 ? kFixedWidth : 0;
}

bool IsIntSelector(int32_t selector) {
  return selector >= ZK_ATTR_INT_FIRST && selector <= ZK_ATTR_INT_LAST;
}

bool IsCharSelector(int32_t selector) {
  return selector >= ZK_ATTR_CHAR_FIRST && selector <= ZK_ATTR_CHAR_LAST;
}

// The names of the bits of a flag word joined by " / ", "(none)" when none
// is set, and the line end; a word with bits outside `known` is reported
// under `unknownName` after the line, unless `report` is 0.
void AppendFlagWord(FieldWalk *walk, const ConstantIntEntry *rows, uint32_t known,
                    const char *unknownName, uint32_t word, uint8_t report) {
  const FlagDisplay flags = {rows, &known,     ~known, FLAGS_ALL_BITS, FLAGS_UNKNOWN_BITS,
                             0,    unknownName};
  FieldWalkAppendFlags(walk, &flags, word, report);
}

// "0x%08X (" and the names of the bits of a flag word, then ")" and the line
// end. The flag list ends its line itself: its line end is taken back so
// that the parenthesis closes the line.
void AppendHexAndFlagNames(FieldWalk *walk, const ConstantIntEntry *rows, uint32_t known,
                           uint32_t word) {
  TraceText *text = &walk->Text;
  TraceTextAppendLiteral(text, "0x");
  TraceTextAppendHex32(text, word);
  TraceTextAppendLiteral(text, " (");
  AppendFlagWord(walk, rows, known, "", word, 0);
  if (text->Length > 0 && text->Buffer[text->Length - 1] == '\n') {
    text->Length--;
  }
  TraceTextAppendLiteral(text, ")\n");
}

// The value and, in parentheses, its name from the table (or the table's
// answer for a value it lacks), and the line end.
void AppendValueAndName(TraceText *text, int32_t value, uint8_t fixedLength,
                        const ConstantIntEntry *table) {
  TraceTextAppendInt32(text, value, WidthOf(fixedLength));
  TraceTextAppendLiteral(text, " (");
  TraceTextAppendString(text, SearchConstantInt(value, table));
  TraceTextAppendLiteral(text, ")\n");
}

// An encoding: its value (right-aligned in six columns when `fixedLength`),
// the names of its parts, and the line end.
void AppendEncoding(TraceText *text, int32_t encoding, uint8_t fixedLength) {
  if (fixedLength != 0) {
    int32_t digits = 1;
    for (uint32_t rest = (uint32_t)encoding / 10; rest != 0; rest /= 10) {
      digits++;
    }
    TraceTextAppendRepeat(text, ' ', kFixedWidth - digits);
  }
  TraceTextAppendEncoding(text, encoding);
}

// A field line with the name and no value.
void ShowNameOnly(ExitControlBlock *cb, const char *name) {
  TraceText line;
  TraceTextStartField(&line, cb, name);
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
}

} // namespace

int32_t SearchZkAttributeTable(ExitControlBlock *cb, int32_t selector, const char **name,
                               const ZkAttrIntEntry **intRow, const ZkAttrCharEntry **charRow) {
  (void)cb; // the tables are the same for every connection
  if (name != nullptr) {
    *name = IsCharSelector(selector) ? Constant_ZkAttrsZkcaUnknown[0].Name
                                     : Constant_ZkAttrsZkiaUnknown[0].Name;
  }
  if (intRow != nullptr) {
    *intRow = Constant_ZkAttrsZkiaUnknown;
  }
  if (charRow != nullptr) {
    *charRow = Constant_ZkAttrsZkcaUnknown;
  }
  if (IsIntSelector(selector)) {
    const ZkAttrIntEntry *row = FindZkAttrIntRow(selector);
    if (row == nullptr) {
      return -1;
    }
    if (intRow != nullptr) {
      *intRow = row;
    }
    if (name != nullptr) {
      *name = row->Name;
    }
    return 0;
  }
  if (IsCharSelector(selector)) {
    const ZkAttrCharEntry *row = FindZkAttrCharRow(selector);
    if (row == nullptr) {
      return -1;
    }
    if (charRow != nullptr) {
      *charRow = row;
    }
    if (name != nullptr) {
      *name = row->Name;
    }
    return 0;
  }
  const ConstantIntEntry *table = Constant_ZkAttrsZkcacfcachcamo;
  if (selector >= ZK_ATTR_BYTES_FIRST && selector <= ZK_ATTR_BYTES_LAST) {
    table = Constant_ZkAttrsZkbacf;
  } else if (selector >= ZK_ATTR_GROUP_FIRST && selector <= ZK_ATTR_GROUP_LAST) {
    table = Constant_ZkAttrsZkgacf;
  }
  const ConstantIntEntry *row = FindZkAttrNameRow(selector, table);
  if (row == nullptr) {
    return -1;
  }
  if (name != nullptr) {
    *name = row->text;
  }
  return 0;
}

int32_t SearchIntZkAttrValueAndSetString(ExitControlBlock *cb, int32_t value,
                                         const ZkAttrIntEntry *row, uint8_t fixedLength,
                                         const char *name) {
  if (row == nullptr) {
    row = Constant_ZkAttrsZkiaUnknown;
  }
  FieldWalk walk;
  TraceTextStartField(&walk.Text, cb, name);
  TraceText *text = &walk.Text;
  uint32_t word = (uint32_t)value;
  switch (row->Selector) {
  case ZKIACF_AUTH_OPTIONS:
    AppendFlagWord(&walk, Constant_Zkauthopt, ConstantKnownBits_Zkauthopt, row->Name, word, 1);
    break;
  case ZKIACF_REGISTRATION_OPTIONS:
    AppendFlagWord(&walk, Constant_Zkrego, ConstantKnownBits_Zkrego, row->Name, word, 1);
    break;
  case ZKIACF_PUBLICATION_OPTIONS:
    AppendFlagWord(&walk, Constant_Zkpubo, ConstantKnownBits_Zkpubo, row->Name, word, 1);
    break;
  case ZKIACF_DELETE_OPTIONS:
    AppendFlagWord(&walk, Constant_Zkdelo, ConstantKnownBits_Zkdelo, row->Name, word, 1);
    break;
  case ZKIACF_REPORT:
    AppendHexAndFlagNames(&walk, Constant_Zkro, ConstantKnownBits_Zkro, word);
    break;
  case ZKIACF_MSG_FLAGS:
    AppendHexAndFlagNames(&walk, Constant_Zkmf, ConstantKnownBits_Zkmf, word);
    break;
  case ZKIACF_COMMAND:
    AppendValueAndName(text, value, fixedLength, Constant_ZkAttrsPcfCommand);
    break;
  case ZKIACF_ENCODING:
    AppendEncoding(text, value, fixedLength);
    break;
  case ZKIACF_ERROR_ID:
  case ZKIACF_CONV_REASON_CODE:
  case ZKIACF_FEEDBACK:
    AppendValueAndName(text, value, fixedLength, Constant_Zkrc);
    break;
  default:
    if (row->Values != nullptr) {
      AppendValueAndName(text, value, fixedLength, row->Values);
    } else {
      TraceTextAppendInt32(text, value, WidthOf(fixedLength));
      TraceTextAppendChar(text, '\n');
    }
    break;
  }
  return TraceTextWrite(text);
}

void ShowParsedZkinqZksetOptionsInt(ExitControlBlock *cb, int32_t compCode, int32_t selectorCount,
                                    const int32_t *selectors, int32_t intAttrCount,
                                    const int32_t *intAttrs) {
  (void)compCode;
  if (selectors == nullptr || selectorCount <= 0) {
    return;
  }
  int32_t values = intAttrs != nullptr && intAttrCount > 0 ? intAttrCount : 0;
  int32_t used = 0;
  for (int32_t i = 0; i < selectorCount; i++) {
    int32_t selector = selectors[i];
    if (!IsIntSelector(selector)) {
      continue; // a character selector, shown with the character attributes
    }
    const ZkAttrIntEntry *row = nullptr;
    int32_t rc = SearchZkAttributeTable(cb, selector, nullptr, &row, nullptr);
    if (used >= values) {
      ShowNameOnly(cb, row->Name);
    } else {
      int32_t value = intAttrs[used++];
      if (selector == ZKIA_CODED_CHAR_SET_ID) {
        ShowParsedCommonCcsid(cb, row->Name, value, 0);
      } else if (row->Values != nullptr) {
        SearchIntZkAttrValueAndSetString(cb, value, row, 0, row->Name);
      } else {
        ShowFieldValueZklong(cb, row->Name, value, 1);
      }
    }
    if (rc != 0) {
      ShowUnknownAttribute(cb, ZK_ATTR_UNKNOWN_SELECTOR_LABEL, (uint32_t)selector);
    }
  }
}

void ShowParsedZkinqZksetOptionsChar(ExitControlBlock *cb, int32_t compCode, int32_t selectorCount,
                                     const int32_t *selectors, int32_t intAttrCount,
                                     const int32_t *intAttrs, int32_t charAttrLength,
                                     const char *charAttrs) {
  (void)compCode;
  if (selectors == nullptr || selectorCount <= 0) {
    return;
  }
  int32_t length = charAttrs != nullptr && charAttrLength > 0 ? charAttrLength : 0;
  int32_t used = 0;
  for (int32_t i = 0; i < selectorCount; i++) {
    int32_t selector = selectors[i];
    if (!IsCharSelector(selector)) {
      continue; // an integer selector, shown with the integer attributes
    }
    const ZkAttrCharEntry *row = nullptr;
    if (SearchZkAttributeTable(cb, selector, nullptr, nullptr, &row) != 0) {
      // Without its length, where the next attribute starts is unknown.
      ShowUnknownAttribute(cb, ZK_ATTR_UNKNOWN_SELECTOR_LABEL, (uint32_t)selector);
      return;
    }
    // A name list holds as many names as the name count says, one value of
    // the attribute's length each; any other attribute one value.
    int32_t names = 1;
    if (selector == ZKCA_NAMES) {
      names = SearchZkiaNameCount(selectorCount, selectors, intAttrCount, intAttrs);
    }
    for (int32_t n = 0; n < names; n++) {
      int32_t left = length - used;
      if (left <= 0) {
        ShowNameOnly(cb, row->Name);
        break;
      }
      int32_t shown = row->Length < left ? row->Length : left;
      ShowFieldValueStringFixed(cb, row->Name, charAttrs + used, shown);
      if (shown <= 0) {
        break; // a value of no bytes: the area would not be used up
      }
      used += shown;
    }
  }
}

int32_t SearchZkiaNameCount(int32_t selectorCount, const int32_t *selectors, int32_t intAttrCount,
                            const int32_t *intAttrs) {
  if (selectors == nullptr || intAttrs == nullptr) {
    return 0;
  }
  // The integers are returned in the order of the integer selectors.
  int32_t index = 0;
  for (int32_t i = 0; i < selectorCount; i++) {
    if (!IsIntSelector(selectors[i])) {
      continue;
    }
    if (selectors[i] == ZKIA_NAME_COUNT) {
      return index < intAttrCount ? intAttrs[index] : 0;
    }
    index++;
  }
  return 0;
}
