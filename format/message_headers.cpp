// The headers that message data can begin with, each shown field by field
// with the byte order in force before it. The chain (message_chain.cpp)
// checks that a header's fixed part lies within the data before it calls
// one of these; what a header points to beyond its fixed part is checked
// here.
#include <string.h>

#include "exit/control_block.h"
#include "format/message_content.h"
#include "format/message_headers.h"
#include "format/structure_fields.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

constexpr FlagDisplay kDhFlags = {
    ConstantIdentifier_Zkdhf, &ConstantKnownBits_Zkdhf, ~(uint32_t)ZKDHF_NEW_MSG_IDS,
    FLAGS_ALL_BITS,           FLAGS_UNKNOWN_BITS,       sizeof "ZKDHF_" - 1,
    "ZKDH - ZKDHF_..."};
constexpr FlagDisplay kRmhFlags = {
    ConstantIdentifier_Zkrmhf, &ConstantKnownBits_Zkrmhf, ~(uint32_t)ZKRMHF_LAST, FLAGS_ALL_BITS,
    FLAGS_UNKNOWN_BITS,        sizeof "ZKRMHF_" - 1,      "ZKRMH - ZKRMHF_..."};
constexpr ValueDisplay kDeadLetterReason = {Constant_Zkrc, INT32_MIN, INT32_MAX, 0,
                                            VALUE_REASON,  ""};
constexpr ValueDisplay kPutApplType = {Constant_ApplType, INT32_MIN, INT32_MAX, 0,
                                       VALUE_NUMBER,      ""};
constexpr ValueDisplay kTriggerApplType = {Constant_ApplType, INT32_MIN, INT32_MAX, 0,
                                           VALUE_TABLE_TEXT,  ""};
constexpr ValueDisplay kEphFlags = {Constant_EPH_Flags, INT32_MIN, INT32_MAX, 0,
                                    VALUE_TABLE_TEXT,   ""};

void ShowPutMsgRecFields(FieldWalk *walk, const StructField *field) {
  FieldWalkFlush(walk);
  ShowParsedZkpmrf(walk->Text.Cb, FieldWalkInt32(walk, field->Offset, 0));
}

void ShowEmbeddedMsgFlags(FieldWalk *walk, const StructField *field) {
  TraceTextAppendFieldName(&walk->Text, field->Name);
  FieldWalkFlush(walk);
  ShowParsedMsgFlags(walk->Text.Cb, FieldWalkInt32(walk, field->Offset, 0), 1);
}

// The fields that open every header that names what follows it.
#define CHAINED_HEADER_FIELDS(S)                                                                   \
  FIELD_OF(S, Version, "Version", FIELD_INT), FIELD_OF(S, StrucLength, "StrucLength", FIELD_INT),  \
      FIELD_OF(S, Encoding, "Encoding", FIELD_ENCODING),                                           \
      FIELD_OF(S, CodedCharSetId, "CodedCharSetId", FIELD_CCSID),                                  \
      FIELD_OF(S, Format, "Format", FIELD_FORMAT)

// clang-format off
constexpr StructField kZkxqhFields[] = {
    FIELD_OF(ZKXQH, Version, "Version", FIELD_INT),
    FIELD_OF(ZKXQH, RemoteQName, "RemoteQName", FIELD_TEXT),
    FIELD_OF(ZKXQH, RemoteQMgrName, "RemoteQMgrName", FIELD_TEXT),
};
constexpr StructField kZkdhFields[] = {
    CHAINED_HEADER_FIELDS(ZKDH),
    FIELD_FLAGS_OF(ZKDH, Flags, "Flags", kDhFlags, 0),
    FIELD_FUNCTION_OF(ZKDH, PutMsgRecFields, "PutMsgRecFields", ShowPutMsgRecFields),
    FIELD_OF(ZKDH, RecsPresent, "RecsPresent", FIELD_INT),
};
// The reference message header in two parts: its four data items stand
// between them.
constexpr StructField kZkrmhFields[] = {
    CHAINED_HEADER_FIELDS(ZKRMH),
    FIELD_FLAGS_OF(ZKRMH, Flags, "Flags", kRmhFlags, 0),
    FIELD_OF(ZKRMH, ObjectType, "ObjectType", FIELD_TEXT),
    FIELD_OF(ZKRMH, ObjectInstanceId, "ObjectInstanceId", FIELD_BYTES),
};
constexpr StructField kZkrmhLogicalFields[] = {
    FIELD_OF(ZKRMH, DataLogicalLength, "DataLogicalLength", FIELD_INT),
    FIELD_OF(ZKRMH, DataLogicalOffset, "DataLogicalOffset", FIELD_INT),
    FIELD_OF(ZKRMH, DataLogicalOffset2, "DataLogicalOffset2", FIELD_INT),
};
constexpr StructField kZkdlhFields[] = {
    FIELD_OF(ZKDLH, Version, "Version", FIELD_INT),
    FIELD_VALUE_OF(ZKDLH, Reason, "Reason", kDeadLetterReason, 0),
    FIELD_OF(ZKDLH, DestQName, "DestQName", FIELD_TEXT),
    FIELD_OF(ZKDLH, DestQMgrName, "DestQMgrName", FIELD_TEXT),
    FIELD_OF(ZKDLH, Encoding, "Encoding", FIELD_ENCODING),
    FIELD_OF(ZKDLH, CodedCharSetId, "CodedCharSetId", FIELD_CCSID),
    FIELD_OF(ZKDLH, Format, "Format", FIELD_FORMAT),
    FIELD_VALUE_OF(ZKDLH, PutApplType, "PutApplType", kPutApplType, 0),
    FIELD_OF(ZKDLH, PutApplName, "PutApplName", FIELD_TEXT),
    FIELD_OF(ZKDLH, PutDate, "PutDate", FIELD_TEXT),
    FIELD_OF(ZKDLH, PutTime, "PutTime", FIELD_TEXT),
};
constexpr StructField kZkmdeFields[] = {
    CHAINED_HEADER_FIELDS(ZKMDE),
    FIELD_OF(ZKMDE, Flags, "Flags", FIELD_INT),
    FIELD_OF(ZKMDE, GroupId, "GroupId", FIELD_BYTES),
    FIELD_OF(ZKMDE, MsgSeqNumber, "MsgSeqNumber", FIELD_INT),
    FIELD_OF(ZKMDE, Offset, "Offset", FIELD_INT),
    FIELD_FUNCTION_OF(ZKMDE, MsgFlags, "MsgFlags", ShowEmbeddedMsgFlags),
    FIELD_OF(ZKMDE, OriginalLength, "OriginalLength", FIELD_INT),
};
constexpr StructField kZkrfh2Fields[] = {
    CHAINED_HEADER_FIELDS(ZKRFH2),
    FIELD_OF(ZKRFH2, Flags, "Flags", FIELD_INT),
    FIELD_OF(ZKRFH2, NameValueCCSID, "NameValueCCSID", FIELD_CCSID),
};
constexpr StructField kZkrfhFields[] = {
    CHAINED_HEADER_FIELDS(ZKRFH),
    FIELD_OF(ZKRFH, Flags, "Flags", FIELD_INT),
};
constexpr StructField kZktmFields[] = {
    FIELD_OF(ZKTM, Version, "Version", FIELD_INT),
    FIELD_OF(ZKTM, QName, "QName", FIELD_TEXT),
    FIELD_OF(ZKTM, ProcessName, "ProcessName", FIELD_TEXT),
    FIELD_OF(ZKTM, TriggerData, "TriggerData", FIELD_TEXT),
    FIELD_VALUE_OF(ZKTM, ApplType, "ApplType", kTriggerApplType, 0),
    FIELD_OF(ZKTM, ApplId, "ApplId", FIELD_TEXT),
    FIELD_OF(ZKTM, EnvData, "EnvData", FIELD_TEXT),
    FIELD_OF(ZKTM, UserData, "UserData", FIELD_TEXT),
};
constexpr StructField kZkephFields[] = {
    CHAINED_HEADER_FIELDS(ZKEPH),
    FIELD_VALUE_OF(ZKEPH, Flags, "Flags", kEphFlags, 0),
};
// clang-format on

constexpr StructDisplay kZkxqh = STRUCT_DISPLAY("XQH", ZKXQH, Version, kZkxqhFields);
constexpr StructDisplay kZkdh = STRUCT_DISPLAY("DH", ZKDH, Version, kZkdhFields);
constexpr StructDisplay kZkrmh = STRUCT_DISPLAY("RMH", ZKRMH, Version, kZkrmhFields);
constexpr StructDisplay kZkrmhLogical = STRUCT_DISPLAY("RMH", ZKRMH, Version, kZkrmhLogicalFields);
constexpr StructDisplay kZkdlh = STRUCT_DISPLAY("DLH", ZKDLH, Version, kZkdlhFields);
constexpr StructDisplay kZkmde = STRUCT_DISPLAY("MDE", ZKMDE, Version, kZkmdeFields);
constexpr StructDisplay kZkrfh2 = STRUCT_DISPLAY("RFH2", ZKRFH2, Version, kZkrfh2Fields);
constexpr StructDisplay kZkrfh = STRUCT_DISPLAY("RFH", ZKRFH, Version, kZkrfhFields);
constexpr StructDisplay kZktm = STRUCT_DISPLAY("TM", ZKTM, Version, kZktmFields);
constexpr StructDisplay kZkeph = STRUCT_DISPLAY("EPH", ZKEPH, Version, kZkephFields);

// A 32-bit word of message data in host order.
int32_t WordAt(const unsigned char *at, int32_t encoding) {
  int32_t value;
  memcpy(&value, at, sizeof value);
  return ZklongValueRegardingEncoding(value, encoding);
}

// The header's fields, its integers in the given byte order. A version
// above the highest known has been reported by the caller; the fields are
// shown in the known layout all the same.
void WalkHeader(ExitControlBlock *cb, const StructDisplay *display, const void *header,
                int32_t encoding) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, header, encoding, display->VersionOffset);
  WalkStructFields(&walk, display);
}

// The version of a header before its section line.
int32_t HeaderVersion(const void *header, uint16_t versionOffset, int32_t encoding) {
  return WordAt((const unsigned char *)header + versionOffset, encoding);
}

// Hands on what the header says of the data after it: its format and the
// byte order of its integers.
void HandOn(const unsigned char *at, size_t formatOffset, size_t encodingOffset, int32_t order,
            char *nextFormat, int32_t *encoding) {
  if (nextFormat != nullptr) {
    memcpy(nextFormat, at + formatOffset, MESSAGE_FORMAT_LENGTH);
  }
  *encoding = WordAt(at + encodingOffset, order);
}
#define HAND_ON(S, at, order, nextFormat, encoding)                                                \
  HandOn(at, offsetof(S, Format), offsetof(S, Encoding), order, nextFormat, encoding)

// A header of fixed length that is shown whole or not at all.
struct FixedHeader {
  const StructDisplay *Display;
  int32_t Length;
  int32_t HighestVersion;
  const char *Name;  // in the report of an unknown version
  const char *Title; // of its section
  uint16_t FormatOffset;
  uint16_t EncodingOffset;
};

void ShowFixedHeader(ExitControlBlock *cb, const FixedHeader &kind, char *nextFormat,
                     int32_t *encoding, const void *header, int32_t remaining, uint32_t offset) {
  if (ParsedContentClippedLength(cb, remaining, offset) < kind.Length) {
    return;
  }
  const unsigned char *at = (const unsigned char *)header;
  int32_t order = *encoding;
  int32_t version = HeaderVersion(at, kind.Display->VersionOffset, order);
  if (version > kind.HighestVersion) {
    ShowUnknownStructureVersion(cb, kind.Name, version);
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)kind.Length, kind.Title);
  WalkHeader(cb, kind.Display, at, order);
  HandOn(at, kind.FormatOffset, kind.EncodingOffset, order, nextFormat, encoding);
}

} // namespace

int32_t ParsedContentClippedLength(const ExitControlBlock *cb, int32_t remaining, uint32_t offset) {
  if (remaining < 0) {
    return 0;
  }
  int32_t limit = cb->Settings.ShowMaxLenParsedContent;
  if (limit < 0) {
    return remaining;
  }
  int64_t left = (int64_t)limit - (int64_t)offset;
  if (left <= 0) {
    return 0;
  }
  return left < remaining ? (int32_t)left : remaining;
}

void ShowParsedZkxqh(ExitControlBlock *cb, const ZKXQH *xqh) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, xqh, ZkStructureEncoding(xqh), kZkxqh.VersionOffset);
  if (walk.Version > ZKXQH_CURRENT_VERSION) {
    ShowUnknownStructureVersion(cb, "ZKXQH", walk.Version);
  }
  WalkStructFields(&walk, &kZkxqh);
}

int32_t ShowParsedZKDH(ExitControlBlock *cb, char *nextFormat, int32_t *encoding,
                       const void *header, int32_t remaining, uint32_t offset) {
  int32_t clipped = ParsedContentClippedLength(cb, remaining, offset);
  if (clipped < ZKDH_LENGTH_1) {
    return 0;
  }
  const unsigned char *at = (const unsigned char *)header;
  int32_t order = *encoding;
  int32_t version = HeaderVersion(at, offsetof(ZKDH, Version), order);
  int32_t strucLength = WordAt(at + offsetof(ZKDH, StrucLength), order);
  int32_t count = WordAt(at + offsetof(ZKDH, RecsPresent), order);
  int32_t objectOffset = WordAt(at + offsetof(ZKDH, ObjectRecOffset), order);
  int32_t putOffset = WordAt(at + offsetof(ZKDH, PutMsgRecOffset), order);
  int32_t fields = WordAt(at + offsetof(ZKDH, PutMsgRecFields), order);
  if (version > ZKDH_CURRENT_VERSION) {
    ShowUnknownStructureVersion(cb, "ZKDH", version);
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)strucLength, "ZKDH (Distribution header)");
  WalkHeader(cb, &kZkdh, at, order);
  int64_t consumed = strucLength;
  if (count > 0) {
    if (objectOffset > 0) {
      int64_t size = (int64_t)sizeof(ZKOR) * count;
      int64_t end = objectOffset + size;
      consumed = end > consumed ? end : consumed;
      if (end <= clipped) {
        ShowParsedValueOffset(cb, offset + (uint32_t)objectOffset, (uint32_t)size,
                              "ZKDH -> ZKOR (Object record)");
        ShowParsedZkor(cb, (const ZKOR *)(at + objectOffset), count);
      }
    }
    int32_t unit = CalculateZkpmrUnitLength(fields);
    if (putOffset >= 1 && unit >= 1) {
      int64_t size = (int64_t)unit * count;
      int64_t end = putOffset + size;
      consumed = end > consumed ? end : consumed;
      if (end <= clipped) {
        ShowParsedValueOffset(cb, offset + (uint32_t)putOffset, (uint32_t)size,
                              "ZKDH -> ZKPMR (Put message record)");
        ShowParsedZkpmr(cb, at + putOffset, count, fields);
      }
    }
  }
  HAND_ON(ZKDH, at, order, nextFormat, encoding);
  return consumed > INT32_MAX ? INT32_MAX : (int32_t)consumed;
}

void ShowOneZKRMHData(ExitControlBlock *cb, const void *header, const char *name, int32_t length,
                      int32_t offset, int32_t clippedLength) {
  if (length <= 0 || offset <= 0) {
    ShowFieldValueStringFixed(cb, name, "(none)", 6);
    return;
  }
  if ((int64_t)offset + length > clippedLength) {
    TraceText line;
    TraceTextStartField(&line, cb, name);
    TraceTextAppendLiteral(&line, " ...\n");
    TraceTextWrite(&line);
    return;
  }
  const unsigned char *item = (const unsigned char *)header + offset;
  if (length < 33) {
    ShowParsedHexValueSingleLine(cb, name, item, length, 1, 1, 1);
  } else {
    ShowParsedHexValueMultipleLines(cb, name, item, length, 1);
  }
}

int32_t ShowParsedZKRMH(ExitControlBlock *cb, char *nextFormat, int32_t *encoding,
                        const void *header, int32_t remaining, uint32_t offset) {
  int32_t clipped = ParsedContentClippedLength(cb, remaining, offset);
  if (clipped < ZKRMH_LENGTH_1) {
    return 0;
  }
  const unsigned char *at = (const unsigned char *)header;
  int32_t order = *encoding;
  int32_t version = HeaderVersion(at, offsetof(ZKRMH, Version), order);
  int32_t strucLength = WordAt(at + offsetof(ZKRMH, StrucLength), order);
  if (version > ZKRMH_CURRENT_VERSION) {
    ShowUnknownStructureVersion(cb, "ZKRMH", version);
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)strucLength, "ZKRMH (Reference message header)");
  WalkHeader(cb, &kZkrmh, at, order);
  struct Item {
    const char *Name;
    uint16_t Length;
    uint16_t Offset;
  };
  static constexpr Item kItems[] = {
      {"source environment data", offsetof(ZKRMH, SrcEnvLength), offsetof(ZKRMH, SrcEnvOffset)},
      {"source object name", offsetof(ZKRMH, SrcNameLength), offsetof(ZKRMH, SrcNameOffset)},
      {"dest environment data", offsetof(ZKRMH, DestEnvLength), offsetof(ZKRMH, DestEnvOffset)},
      {"dest object name", offsetof(ZKRMH, DestNameLength), offsetof(ZKRMH, DestNameOffset)},
  };
  for (const Item &item : kItems) {
    ShowOneZKRMHData(cb, at, item.Name, WordAt(at + item.Length, order),
                     WordAt(at + item.Offset, order), clipped);
  }
  WalkHeader(cb, &kZkrmhLogical, at, order);
  HAND_ON(ZKRMH, at, order, nextFormat, encoding);
  return strucLength;
}

void ShowParsedZKDLH(ExitControlBlock *cb, char *nextFormat, int32_t *encoding, const void *header,
                     int32_t remaining, uint32_t offset) {
  static constexpr FixedHeader kDeadLetter = {&kZkdlh,
                                              ZKDLH_LENGTH_1,
                                              ZKDLH_CURRENT_VERSION,
                                              "ZKDLH",
                                              "ZKDLH (Dead-letter header)",
                                              offsetof(ZKDLH, Format),
                                              offsetof(ZKDLH, Encoding)};
  ShowFixedHeader(cb, kDeadLetter, nextFormat, encoding, header, remaining, offset);
}

void ShowParsedZKMDE(ExitControlBlock *cb, char *nextFormat, int32_t *encoding, const void *header,
                     int32_t remaining, uint32_t offset) {
  static constexpr FixedHeader kExtension = {&kZkmde,
                                             ZKMDE_LENGTH_2,
                                             ZKMDE_CURRENT_VERSION,
                                             "ZKMDE",
                                             "ZKMDE (ZKMD extension)",
                                             offsetof(ZKMDE, Format),
                                             offsetof(ZKMDE, Encoding)};
  ShowFixedHeader(cb, kExtension, nextFormat, encoding, header, remaining, offset);
}

int32_t ShowParsedZKHRF2(ExitControlBlock *cb, char *nextFormat, int32_t *encoding,
                         const void *header, int32_t remaining, uint32_t offset) {
  if (remaining < ZKRFH2_STRUC_LENGTH_FIXED) {
    return 0;
  }
  const unsigned char *at = (const unsigned char *)header;
  int32_t order = *encoding;
  int32_t strucLength = WordAt(at + offsetof(ZKRFH2, StrucLength), order);
  if (strucLength < ZKRFH2_STRUC_LENGTH_FIXED) {
    return 0;
  }
  int32_t limit = cb->Settings.ShowMaxLenParsedContent;
  if (limit >= 0 && (uint32_t)limit <= offset) {
    return strucLength; // beyond the limit: passed over unseen
  }
  int32_t version = HeaderVersion(at, offsetof(ZKRFH2, Version), order);
  if (version > ZKRFH2_CURRENT_VERSION) {
    ShowUnknownStructureVersion(cb, "ZKRFH2", version);
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)strucLength,
                        "ZKHRF2 (Rules and formatting header 2)");
  WalkHeader(cb, &kZkrfh2, at, order);
  if (remaining < strucLength) {
    return remaining;
  }
  if (limit >= 0 && (int64_t)limit < (int64_t)offset + ZKRFH2_STRUC_LENGTH_FIXED) {
    return strucLength;
  }
  // The folders: a length word (in the byte order before this header) and
  // that many bytes, as long as a length word fits in the header.
  int32_t at32 = ZKRFH2_STRUC_LENGTH_FIXED;
  while (strucLength - at32 >= 4) {
    int32_t folderLength = WordAt(at + at32, order);
    int32_t left = strucLength - at32 - 4;
    uint32_t folderOffset = offset + (uint32_t)at32 + 4;
    if (folderLength < 0 || folderLength > left) {
      ShowParsedGeneralData(cb, (int32_t)folderOffset, left);
      break;
    }
    if (ShowParsedXml(cb, at + at32 + 4, folderLength, folderOffset, "XML data in ZKHRF2") == 0) {
      ShowParsedGeneralData(cb, (int32_t)folderOffset, folderLength);
    }
    at32 += 4 + folderLength;
  }
  HAND_ON(ZKRFH2, at, order, nextFormat, encoding);
  return strucLength;
}

namespace {

// Writes one token of the name/value string: a name opens a line, a value
// closes it. Long tokens go out in pieces, all on the one line.
void AppendToken(TraceText *line, const unsigned char *token, int32_t length) {
  for (int32_t done = 0; done < length;) {
    int32_t piece = length - done < NAME_VALUE_TOKEN_PIECE ? length - done : NAME_VALUE_TOKEN_PIECE;
    TraceTextAppendSevenBit(line, token + done, piece);
    done += piece;
  }
}

// The name/value string of a version-1 rules-and-formatting header: tokens
// split at bytes of 32 or less, except a blank between double quotes, and
// taken as name, value, name, value ...
void ShowNameValueString(ExitControlBlock *cb, const unsigned char *text, int32_t length) {
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  bool value = false;
  int32_t i = 0;
  while (i < length) {
    if (text[i] <= ' ') {
      i++;
      continue;
    }
    int32_t start = i;
    bool quoted = false;
    while (i < length && (text[i] > ' ' || (quoted && text[i] == ' '))) {
      if (text[i] == '"') {
        quoted = !quoted;
      }
      i++;
    }
    if (!value) {
      TraceTextAppendLiteral(&line, "|> ");
      AppendToken(&line, text + start, i - start);
    } else {
      TraceTextAppendLiteral(&line, " - ");
      AppendToken(&line, text + start, i - start);
      TraceTextAppendChar(&line, '\n');
    }
    value = !value;
  }
  if (value) {
    TraceTextAppendChar(&line, '\n'); // a name without a value
  }
  TraceTextWrite(&line);
}

} // namespace

void ShowParsedZKHRF1(ExitControlBlock *cb, int32_t encoding, const void *header, int32_t remaining,
                      uint32_t offset) {
  int32_t clipped = ParsedContentClippedLength(cb, remaining, offset);
  if (clipped < ZKRFH_STRUC_LENGTH_FIXED) {
    return;
  }
  const unsigned char *at = (const unsigned char *)header;
  int32_t version = HeaderVersion(at, offsetof(ZKRFH, Version), encoding);
  if (version > ZKRFH_VERSION_1) {
    ShowUnknownStructureVersion(cb, "ZKRFH", version);
  }
  int32_t strucLength = WordAt(at + offsetof(ZKRFH, StrucLength), encoding);
  ShowParsedValueOffset(cb, offset, ZKRFH_STRUC_LENGTH_FIXED,
                        "ZKHRF (Rules and formatting header)");
  WalkHeader(cb, &kZkrfh, at, encoding);
  ShowParsedValueOffset(cb, offset + ZKRFH_STRUC_LENGTH_FIXED, (uint32_t)strucLength,
                        "NameValueString");
  int32_t end = clipped < strucLength ? clipped : strucLength;
  if (end < ZKRFH_STRUC_LENGTH_FIXED + 1) {
    return;
  }
  ShowNameValueString(cb, at + ZKRFH_STRUC_LENGTH_FIXED, end - ZKRFH_STRUC_LENGTH_FIXED);
}

void ShowParsedZKTM(ExitControlBlock *cb, int32_t encoding, const void *header, int32_t remaining,
                    uint32_t offset) {
  int32_t clipped = ParsedContentClippedLength(cb, remaining, offset);
  if (clipped < ZKTM_LENGTH_1) {
    return;
  }
  int32_t version = HeaderVersion(header, offsetof(ZKTM, Version), encoding);
  if (version > ZKTM_CURRENT_VERSION) {
    ShowUnknownStructureVersion(cb, "ZKTM", version);
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)clipped, "ZKTM (Trigger message)");
  WalkHeader(cb, &kZktm, header, encoding);
}

void ShowParsedZKEPH(ExitControlBlock *cb, int32_t encoding, const void *header, int32_t remaining,
                     uint32_t offset) {
  int32_t clipped = ParsedContentClippedLength(cb, remaining, offset);
  const unsigned char *at = (const unsigned char *)header;
  if (clipped >= ZKEPH_LENGTH_1) {
    int32_t version = HeaderVersion(at, offsetof(ZKEPH, Version), encoding);
    if (version > ZKEPH_CURRENT_VERSION) {
      ShowUnknownStructureVersion(cb, "ZKEPH", version);
    }
    ShowParsedValueOffset(cb, offset, (uint32_t)clipped, "ZKEPH (Embedded PCF header)");
    WalkHeader(cb, &kZkeph, at, encoding);
  }
  // The command-format header it holds, and its parameters, whether the
  // embedded header was shown or not.
  constexpr int32_t kPcfAt = offsetof(ZKEPH, PCFHeader);
  if (clipped > kPcfAt) {
    ShowParsedPCF(cb, encoding, at + kPcfAt, clipped - kPcfAt, offset + kPcfAt);
  }
}
