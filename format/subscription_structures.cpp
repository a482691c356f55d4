// The structures and codes of the subscription, status, control and
// callback calls field by field: ZKSD, ZKSRO and the action of ZKSUBRQ,
// ZKSTS and the status type, ZKCTLO and the operation of ZKCB and ZKCTL,
// ZKCBD, ZKCBC.
#include <string.h>

#include "exit/control_block.h"
#include "format/structure_fields.h"
#include "format/v7_structures.h"
#include "zk/zkconst.h"

namespace {

// A variable-length string of the structure, its text found through its
// descriptor.
void ShowStringField(FieldWalk *walk, const StructField *field) {
  FieldWalkFlush(walk);
  const ZKCHARV *charv = (const ZKCHARV *)(walk->Structure + field->Offset);
  ShowZKCHARV(walk->Text.Cb, field->Name, charv, walk->Structure, nullptr);
}

// A pointer field: "0x" and eight hex digits, "(null)" for a null pointer.
void ShowPointerField(FieldWalk *walk, const StructField *field) {
  FieldWalkFlush(walk);
  ExitControlBlock *cb = walk->Text.Cb;
  ZKPTR pointer;
  memcpy(&pointer, walk->Structure + field->Offset, sizeof pointer);
  ShowFieldName(cb, field->Name);
  ShowPointerInHex(cb, pointer, 1);
  TraceTextAppendChar(&walk->Text, '\n');
}

// An object handle: "0x" and eight hex digits, whatever its value.
void ShowHandleField(FieldWalk *walk, const StructField *field) {
  FieldWalkFlush(walk);
  ExitControlBlock *cb = walk->Text.Cb;
  ShowFieldName(cb, field->Name);
  Show4ByteIntegerInHex(cb, (uint32_t)FieldWalkInt32(walk, field->Offset, 0), 0);
  TraceTextAppendChar(&walk->Text, '\n');
}

// An option word of the status structure, decoded as a status type.
void ShowStatusTypeField(FieldWalk *walk, const StructField *field) {
  FieldWalkFlush(walk);
  ShowParsedZkstatType(walk->Text.Cb, field->Name, FieldWalkInt32(walk, field->Offset, 0));
}

// ---------------------------------------------------------------------------
// Subscription descriptor and subscription request options.

constexpr FlagDisplay kSubOptions = {Constant_Zkso,   &ConstantKnownBits_Zkso, ~0x1C743BFFu,
                                     FLAGS_ALL_BITS,  FLAGS_UNKNOWN_BITS,      0,
                                     "ZKSD - Options"};
// The priorities -1 to -3 by what they mean, any other as its number.
constexpr ValueDisplay kPubPriority = {
    Constant_Zkpri, ZKPRI_PRIORITY_AS_PUBLISHED, ZKPRI_PRIORITY_AS_Q_DEF, 0, VALUE_NUMBER, ""};

// clang-format off
constexpr StructField kZksdFields[] = {
    FIELD_OF(ZKSD, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKSD, Options, "Options", kSubOptions, 0),
    FIELD_OF(ZKSD, ObjectName, "ObjectName", FIELD_TEXT),
    FIELD_OF(ZKSD, AlternateUserId, "AlternateUserId", FIELD_TEXT),
    FIELD_OF(ZKSD, AlternateSecurityId, "AlternateSecurityId", FIELD_BYTES),
    FIELD_OF(ZKSD, SubExpiry, "SubExpiry", FIELD_INT),
    FIELD_FUNCTION_OF(ZKSD, ObjectString, "ObjectString", ShowStringField),
    FIELD_FUNCTION_OF(ZKSD, SubName, "SubName", ShowStringField),
    FIELD_FUNCTION_OF(ZKSD, SubUserData, "SubUserData", ShowStringField),
    FIELD_OF(ZKSD, SubCorrelId, "SubCorrelId", FIELD_BYTES),
    FIELD_VALUE_OF(ZKSD, PubPriority, "PubPriority", kPubPriority, 0),
    FIELD_OF(ZKSD, PubAccountingToken, "PubAccountingToken", FIELD_BYTES),
    FIELD_OF(ZKSD, PubApplIdentityData, "PubApplIdentityData", FIELD_TEXT),
    FIELD_FUNCTION_OF(ZKSD, SelectionString, "SelectionString", ShowStringField),
    FIELD_OF(ZKSD, SubLevel, "SubLevel", FIELD_INT),
    FIELD_FUNCTION_OF(ZKSD, ResObjectString, "ResObjectString", ShowStringField),
};
// clang-format on
constexpr StructDisplay kZksd = STRUCT_DISPLAY("SD", ZKSD, Version, kZksdFields);

constexpr FlagDisplay kSubRequestOptions = {Constant_Zksro,   &ConstantKnownBits_Zksro, ~0x2000u,
                                            FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,       0,
                                            "ZKSRO - Options"};

constexpr StructField kZksroFields[] = {
    FIELD_OF(ZKSRO, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKSRO, Options, "Options", kSubRequestOptions, 0),
    FIELD_OF(ZKSRO, NumPubs, "NumPubs", FIELD_INT),
};
constexpr StructDisplay kZksro = STRUCT_DISPLAY("SRO", ZKSRO, Version, kZksroFields);

// The one action is a flag of its own: any value but 0 and 1 is unknown.
constexpr uint32_t kActionBits = ZKSR_ACTION_PUBLICATION;
constexpr FlagDisplay kAction = {
    ConstantIdentifier_Zksr,   &kActionBits, ~kActionBits, FLAGS_ALL_BITS, FLAGS_UNKNOWN_BITS,
    sizeof "ZKSR_ACTION_" - 1, "ZKSR_..."};

// ---------------------------------------------------------------------------
// Status structure and status type.

constexpr ValueDisplay kStatusReason = {Constant_Zkrc, INT32_MIN, INT32_MAX, 0, VALUE_REASON, ""};
constexpr ValueDisplay kStatusObjectType = {Constant_Zkot,    INT32_MIN, INT32_MAX, 0,
                                            VALUE_TABLE_TEXT, ""};

// clang-format off
constexpr StructField kZkstsFields[] = {
    FIELD_OF(ZKSTS, Version, "Version", FIELD_INT),
    FIELD_OF(ZKSTS, CompCode, "CompCode", FIELD_INT),
    FIELD_VALUE_OF(ZKSTS, Reason, "Reason", kStatusReason, 0),
    FIELD_OF(ZKSTS, PutSuccessCount, "PutSuccessCount", FIELD_INT),
    FIELD_OF(ZKSTS, PutWarningCount, "PutWarningCount", FIELD_INT),
    FIELD_OF(ZKSTS, PutFailureCount, "PutFailureCount", FIELD_INT),
    FIELD_VALUE_OF(ZKSTS, ObjectType, "ObjectType", kStatusObjectType, 0),
    FIELD_OF(ZKSTS, ObjectName, "ObjectName", FIELD_TEXT),
    FIELD_OF(ZKSTS, ObjectQMgrName, "ObjectQMgrName", FIELD_TEXT),
    FIELD_OF(ZKSTS, ResolvedObjectName, "ResolvedObjectName", FIELD_TEXT),
    FIELD_OF(ZKSTS, ResolvedQMgrName, "ResolvedQMgrName", FIELD_TEXT),
    FIELD_VERSION(2, 0),
    FIELD_FUNCTION_OF(ZKSTS, ObjectString, "ObjectString", ShowStringField),
    FIELD_FUNCTION_OF(ZKSTS, SubName, "SubName", ShowStringField),
    // The two option words are decoded with the status-type names.
    FIELD_FUNCTION_OF(ZKSTS, OpenOptions, "OpenOptions", ShowStatusTypeField),
    FIELD_FUNCTION_OF(ZKSTS, SubOptions, "SubOptions", ShowStatusTypeField),
};
// clang-format on
constexpr StructDisplay kZksts = STRUCT_DISPLAY("STS", ZKSTS, Version, kZkstsFields);

constexpr uint8_t kStatusTypePrefix = sizeof "ZKSTAT_TYPE_" - 1;

// ---------------------------------------------------------------------------
// Operation and control options.

constexpr FlagDisplay kOperation = {Constant_Zkop,          &ConstantKnownBits_Zkop, ~0x30307u,
                                    FLAGS_ALL_BITS,         FLAGS_UNKNOWN_BITS,      0,
                                    "ZKCB/ZKCTL - ZKOP_..."};
// Unknown control options are reported under the operation's name.
constexpr FlagDisplay kControlOptions = {
    Constant_Zkctlo,        &ConstantKnownBits_Zkctlo, ~0x2001u,
    FLAGS_ALL_BITS,         FLAGS_UNKNOWN_BITS,        0,
    "ZKCB/ZKCTL - ZKOP_..."};

constexpr StructField kZkctloFields[] = {
    FIELD_OF(ZKCTLO, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKCTLO, Options, "Options", kControlOptions, 0),
    FIELD_FUNCTION_OF(ZKCTLO, ConnectionArea, "ConnectionArea", ShowPointerField),
};
constexpr StructDisplay kZkctlo = STRUCT_DISPLAY("CTLO", ZKCTLO, Version, kZkctloFields);

// ---------------------------------------------------------------------------
// Callback descriptor and callback context.

// The callback type is a value shown as flags: 3 names both types, a value
// above 3 is unknown.
constexpr uint32_t kCallbackTypeBits = ZKCBT_MESSAGE_CONSUMER | ZKCBT_EVENT_HANDLER;
constexpr FlagDisplay kCallbackType = {
    ConstantIdentifier_Zkcbt, &kCallbackTypeBits,  kCallbackTypeBits,     FLAGS_ALL_BITS,
    FLAGS_UNKNOWN_ABOVE,      sizeof "ZKCBT_" - 1, "ZKCBD - CallbackType"};
constexpr FlagDisplay kCallbackOptions = {Constant_Zkcbdo,  &ConstantKnownBits_Zkcbdo, ~0x2305u,
                                          FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,        0,
                                          "ZKCBD - Options"};

// clang-format off
constexpr StructField kZkcbdFields[] = {
    FIELD_OF(ZKCBD, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKCBD, CallbackType, "CallbackType", kCallbackType, 0),
    FIELD_FLAGS_OF(ZKCBD, Options, "Options", kCallbackOptions, 0),
    FIELD_FUNCTION_OF(ZKCBD, CallbackArea, "CallbackArea", ShowPointerField),
    FIELD_FUNCTION_OF(ZKCBD, CallbackFunction, "CallbackFunction", ShowPointerField),
    FIELD_OF(ZKCBD, CallbackName, "CallbackName", FIELD_TEXT),
    FIELD_OF(ZKCBD, MaxMsgLength, "MaxMsgLength", FIELD_INT),
};
// clang-format on
constexpr StructDisplay kZkcbd = STRUCT_DISPLAY("CBD", ZKCBD, Version, kZkcbdFields);

constexpr ValueDisplay kCallType = {
    ConstantIdentifier_Zkcbct, INT32_MIN,           INT32_MAX, sizeof "ZKCBCT_" - 1,
    VALUE_NUMBER_REPORTED,     "ZKCBC - ZKCBCT_..."};
constexpr ValueDisplay kConsumerState = {
    ConstantIdentifier_Zkcs, INT32_MIN,         INT32_MAX, sizeof "ZKCS_" - 1,
    VALUE_NUMBER_REPORTED,   "ZKCBC - ZKCS_..."};
// A flag word above 1 is unknown.
constexpr FlagDisplay kContextFlags = {Constant_Zkcbcf,     &ConstantKnownBits_Zkcbcf, 1,
                                       FLAGS_ALL_BITS,      FLAGS_UNKNOWN_ABOVE,       0,
                                       "ZKCBC - ZKCBCF_..."};

// The two areas are not shown; version 2 adds the reconnection delay
// without a version line.
// clang-format off
constexpr StructField kZkcbcFields[] = {
    FIELD_OF(ZKCBC, Version, "Version", FIELD_INT),
    FIELD_VALUE_OF(ZKCBC, CallType, "CallType", kCallType, 0),
    FIELD_FUNCTION_OF(ZKCBC, Hobj, "Hobj", ShowHandleField),
    FIELD_OF(ZKCBC, CompCode, "CompCode", FIELD_INT),
    FIELD_OF(ZKCBC, Reason, "Reason", FIELD_INT),
    FIELD_VALUE_OF(ZKCBC, State, "State", kConsumerState, 0),
    FIELD_OF(ZKCBC, DataLength, "DataLength", FIELD_INT),
    FIELD_OF(ZKCBC, BufferLength, "BufferLength", FIELD_INT),
    FIELD_FLAGS_OF(ZKCBC, Flags, "Flags", kContextFlags, 0),
    FIELD_VERSION(2, FIELD_NO_HEADER),
    FIELD_OF(ZKCBC, ReconnectDelay, "ReconnectDelay", FIELD_INT),
};
// clang-format on
constexpr StructDisplay kZkcbc = STRUCT_DISPLAY("CBC", ZKCBC, Version, kZkcbcFields);

void WalkStructure(ExitControlBlock *cb, const void *structure, const StructDisplay &display) {
  if (cb == nullptr || structure == nullptr) {
    return;
  }
  FieldWalk walk;
  StartFieldWalk(&walk, cb, structure, ZkStructureEncoding(structure), display.VersionOffset);
  WalkStructFields(&walk, &display);
}

} // namespace

void ShowParsedZksd(ExitControlBlock *cb, const ZKSD *sd) {
  WalkStructure(cb, sd, kZksd);
}

void ShowParsedZksro(ExitControlBlock *cb, const ZKSRO *sro) {
  WalkStructure(cb, sro, kZksro);
}

void ShowParsedZksr(ExitControlBlock *cb, int32_t action) {
  ShowFlagsField(cb, "Action", &kAction, (uint32_t)action, 1);
}

void ShowParsedZkop(ExitControlBlock *cb, int32_t operation) {
  ShowFlagsField(cb, "Operation", &kOperation, (uint32_t)operation, 1);
}

void ShowParsedZkctlo(ExitControlBlock *cb, const ZKCTLO *ctlo) {
  WalkStructure(cb, ctlo, kZkctlo);
}

void ShowParsedZkcbd(ExitControlBlock *cb, const ZKCBD *cbd) {
  WalkStructure(cb, cbd, kZkcbd);
}

void ShowParsedZkcbc(ExitControlBlock *cb, const ZKCBC *cbc) {
  WalkStructure(cb, cbc, kZkcbc);
}

void ShowParsedZksts(ExitControlBlock *cb, const ZKSTS *sts) {
  WalkStructure(cb, sts, kZksts);
}

void ShowParsedZkstatType(ExitControlBlock *cb, const char *label, int32_t value) {
  const ConstantIntEntry *row = FindConstantIntRow(value, ConstantIdentifier_Zkstat_type);
  if (row->value == CONSTANT_TABLE_END) {
    ShowUnknownAttribute(cb, "ZKSTAT_TYPE_...", (uint32_t)value);
    return;
  }
  const char *name = row->text + kStatusTypePrefix;
  ShowFieldValueStringFixed(cb, label, name, (int32_t)strlen(name));
}
