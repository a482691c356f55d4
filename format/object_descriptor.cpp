// The object descriptor ZKOD field by field, the object and response records
// of a distribution list, and the option words of ZKOPEN and ZKCLOSE.
#include "exit/control_block.h"
#include "format/structure_fields.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

constexpr ValueDisplay kObjectType = {Constant_Zkot_names,        INT32_MIN,        INT32_MAX, 0,
                                      VALUE_SECOND_LINE_REPORTED, "ZKOD - ZKOT_..."};
constexpr ValueDisplay kResolvedType = {Constant_Zkot,    INT32_MIN, INT32_MAX, 0,
                                        VALUE_TABLE_TEXT, ""};

// The three variable-length strings, each with the address its caller gave.
void ShowStringField(FieldWalk *walk, const StructField *field, int32_t index) {
  FieldWalkFlush(walk);
  const ZKCHARV *charv = (const ZKCHARV *)(walk->Structure + field->Offset);
  ShowZKCHARV(walk->Text.Cb, field->Name, charv, walk->Structure, walk->Strings[index]);
}

// clang-format off
constexpr StructField kZkodFields[] = {
    FIELD_OF(ZKOD, Version, "Version", FIELD_INT),
    FIELD_VALUE_OF(ZKOD, ObjectType, "ObjectType", kObjectType, 0),
    FIELD_OF(ZKOD, ObjectName, "ObjectName", FIELD_TEXT),
    FIELD_OF(ZKOD, ObjectQMgrName, "ObjectQMgrName", FIELD_TEXT),
    FIELD_OF(ZKOD, DynamicQName, "DynamicQName", FIELD_TEXT),
    FIELD_OF(ZKOD, AlternateUserId, "AlternateUserId", FIELD_TEXT),
    FIELD_VERSION(2, 0),
    FIELD_OF(ZKOD, RecsPresent, "RecsPresent", FIELD_INT),
    FIELD_OF(ZKOD, KnownDestCount, "KnownDestCount", FIELD_INT),
    FIELD_OF(ZKOD, UnknownDestCount, "UnknownDestCount", FIELD_INT),
    FIELD_OF(ZKOD, InvalidDestCount, "InvalidDestCount", FIELD_INT),
    FIELD_VERSION(3, 0),
    FIELD_OF(ZKOD, AlternateSecurityId, "AlternateSecurityId", FIELD_BYTES),
    FIELD_OF(ZKOD, ResolvedQName, "ResolvedQName", FIELD_TEXT),
    FIELD_OF(ZKOD, ResolvedQMgrName, "ResolvedQMgrName", FIELD_TEXT),
    FIELD_VERSION(4, FIELD_NOT_IN_CHANNEL_EXIT),
    FIELD_FUNCTION_OF(ZKOD, ObjectString, "ObjectString",
                      [](FieldWalk *w, const StructField *f) { ShowStringField(w, f, 0); }),
    FIELD_FUNCTION_OF(ZKOD, SelectionString, "SelectionString",
                      [](FieldWalk *w, const StructField *f) { ShowStringField(w, f, 1); }),
    FIELD_FUNCTION_OF(ZKOD, ResObjectString, "ResObjectString",
                      [](FieldWalk *w, const StructField *f) { ShowStringField(w, f, 2); }),
    FIELD_VALUE_OF(ZKOD, ResolvedType, "ResolvedType", kResolvedType, FIELD_RAW),
};
// clang-format on
constexpr StructDisplay kZkod = STRUCT_DISPLAY("OD", ZKOD, Version, kZkodFields);

// Open options, the bits above 0x1FFFFF unknown.
constexpr FlagDisplay kOpenOptions = {Constant_Zkoo,      &ConstantKnownBits_Zkoo, ~0x1FFFFFu,
                                      FLAGS_ALL_BITS,     FLAGS_UNKNOWN_BITS,      0,
                                      "ZKOPEN - ZKOO_..."};
// Close options, the bits outside 47 unknown.
constexpr FlagDisplay kCloseOptions = {Constant_Zkco,       &ConstantKnownBits_Zkco, ~47u,
                                       FLAGS_ALL_BITS,      FLAGS_UNKNOWN_BITS,      0,
                                       "ZKCLOSE - ZKCO_..."};

} // namespace

void ShowParsedZkod(ExitControlBlock *cb, const ZKOD *od, const void *objectString,
                    const void *selectionString, const void *resObjectString) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, od, ZkStructureEncoding(od), kZkod.VersionOffset);
  walk.Strings[0] = objectString;
  walk.Strings[1] = selectionString;
  walk.Strings[2] = resObjectString;
  WalkStructFields(&walk, &kZkod);
}

void ShowParsedZkor(ExitControlBlock *cb, const ZKOR *records, int32_t count) {
  if (records == nullptr) {
    return;
  }
  TraceText text;
  TraceTextStart(&text, cb, TRACE_TEXT_WRITE_OUT);
  for (int32_t i = 0; i < count; i++) {
    TraceTextAppendFieldName(&text, "ObjectName");
    TraceTextAppendFieldString(&text, records[i].ObjectName, sizeof records[i].ObjectName);
    TraceTextAppendFieldName(&text, "ObjectQMgrName");
    TraceTextAppendFieldString(&text, records[i].ObjectQMgrName, sizeof records[i].ObjectQMgrName);
  }
  TraceTextWrite(&text);
}

void ShowParsedZkrr(ExitControlBlock *cb, const ZKRR *records, int32_t count) {
  if (records == nullptr) {
    return;
  }
  // The reason codes are named only once the call has set them.
  bool after = cb->Call.CurrentExitReason != ZKXR_BEFORE;
  TraceText text;
  TraceTextStart(&text, cb, TRACE_TEXT_WRITE_OUT);
  for (int32_t i = 0; i < count; i++) {
    TraceTextAppendFieldName(&text, "CompCode");
    TraceTextAppendInt32(&text, records[i].CompCode, 0);
    TraceTextAppendChar(&text, '\n');
    TraceTextAppendFieldName(&text, "Reason");
    TraceTextAppendInt32(&text, records[i].Reason, 0);
    if (after && records[i].Reason != 0) {
      TraceTextAppend(&text, " (", 2);
      TraceTextAppendString(&text, SearchConstantInt(records[i].Reason, Constant_Zkrc));
      TraceTextAppendChar(&text, ')');
    }
    TraceTextAppendChar(&text, '\n');
  }
  TraceTextWrite(&text);
}

void ShowParsedZkoo(ExitControlBlock *cb, int32_t options) {
  ShowFlagsField(cb, "Options", &kOpenOptions, (uint32_t)options, 1);
}

void ShowParsedZkco(ExitControlBlock *cb, int32_t options) {
  ShowFlagsField(cb, "Options", &kCloseOptions, (uint32_t)options, 1);
}
