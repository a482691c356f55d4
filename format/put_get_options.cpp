// The put-message options ZKPMO with the put-message records ZKPMR of a
// distribution list, and the get-message options ZKGMO, field by field.
#include <string.h>

#include "exit/control_block.h"
#include "exit/handle_list.h"
#include "format/structure_fields.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

// ---------------------------------------------------------------------------
// Put-message options.

constexpr FlagDisplay kPutOptions = {Constant_Zkpmo,   &ConstantKnownBits_Zkpmo, 0xE3500019u,
                                     FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,       0,
                                     "ZKPMO - Options"};
constexpr FlagDisplay kPutMsgRecFields = {Constant_Zkpmrf,  &ConstantKnownBits_Zkpmrf, ~0x1Fu,
                                          FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,        0,
                                          "PutMsgRecFields"};
// Action is a value, shown by bit tests: 1 names FORWARD and REPORT, 2 REPLY
// and REPORT, 3 all three.
constexpr uint32_t kActionBits = 3;
constexpr FlagDisplay kAction = {
    ConstantIdentifier_Zkactp, &kActionBits,         ~kActionBits,    FLAGS_ANY_BIT,
    FLAGS_UNKNOWN_BITS,        sizeof "ZKACTP_" - 1, "ZKPMO - Action"};

// The resolved queue name and, when the handle list knows an alias or model
// queue that resolved to it, that name on a line of its own.
void ShowResolvedQName(FieldWalk *walk, const StructField *field) {
  const char *name = (const char *)(walk->Structure + field->Offset);
  TraceTextAppendFieldName(&walk->Text, field->Name);
  TraceTextAppendFieldString(&walk->Text, name, ZK_Q_NAME_LENGTH);
  char resolved[ZK_Q_NAME_LENGTH + 1];
  memcpy(resolved, name, ZK_Q_NAME_LENGTH);
  resolved[ZK_Q_NAME_LENGTH] = '\0';
  const char *alias = queueHandleListSearchAliasNameByRealName(walk->Text.Cb, resolved);
  if (alias != nullptr) {
    TraceTextAppendFieldName(&walk->Text, "(alias/model name)");
    TraceTextAppendFieldString(&walk->Text, alias, (int32_t)strnlen(alias, ZK_Q_NAME_LENGTH));
  }
}

// clang-format off
constexpr StructField kZkpmoFields[] = {
    FIELD_OF(ZKPMO, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKPMO, Options, "Options", kPutOptions, 0),
    FIELD_OF(ZKPMO, Timeout, "Timeout", FIELD_INT),
    // The handle's four bytes as stored, like the other byte fields.
    FIELD_OF(ZKPMO, Context, "Context", FIELD_BYTES),
    FIELD_OF(ZKPMO, KnownDestCount, "KnownDestCount", FIELD_INT),
    FIELD_OF(ZKPMO, UnknownDestCount, "UnknownDestCount", FIELD_INT),
    FIELD_OF(ZKPMO, InvalidDestCount, "InvalidDestCount", FIELD_INT),
    FIELD_FUNCTION_OF(ZKPMO, ResolvedQName, "ResolvedQName", ShowResolvedQName),
    FIELD_OF(ZKPMO, ResolvedQMgrName, "ResolvedQMgrName", FIELD_TEXT),
    FIELD_VERSION(2, 0),
    FIELD_OF(ZKPMO, RecsPresent, "RecsPresent", FIELD_INT),
    FIELD_FLAGS_OF(ZKPMO, PutMsgRecFields, "PutMsgRecFields", kPutMsgRecFields, 0),
    FIELD_VERSION(3, 0),
    FIELD_OF(ZKPMO, OriginalMsgHandle, "OriginalMsgHandle", FIELD_MESSAGE_HANDLE),
    FIELD_OF(ZKPMO, NewMsgHandle, "NewMsgHandle", FIELD_MESSAGE_HANDLE),
    FIELD_FLAGS_OF(ZKPMO, Action, "Action", kAction, 0),
    FIELD_OF(ZKPMO, PubLevel, "PubLevel", FIELD_INT),
};
// clang-format on
constexpr StructDisplay kZkpmo = STRUCT_DISPLAY("PMO", ZKPMO, Version, kZkpmoFields);

// The fields a put-message record may hold, in the order they are packed.
struct PutMsgRecField {
  uint32_t Flag;
  const char *Name;
  int32_t Size;
};
constexpr PutMsgRecField kPutMsgRecFieldList[] = {
    {ZKPMRF_MSG_ID, "MsgId", ZK_MSG_ID_LENGTH},
    {ZKPMRF_CORREL_ID, "CorrelId", ZK_CORREL_ID_LENGTH},
    {ZKPMRF_GROUP_ID, "GroupId", ZK_GROUP_ID_LENGTH},
    {ZKPMRF_FEEDBACK, "Feedback", ZKPMR_FEEDBACK_LENGTH},
    {ZKPMRF_ACCOUNTING_TOKEN, "AccountingToken", ZK_ACCOUNTING_TOKEN_LENGTH},
};

// ---------------------------------------------------------------------------
// Get-message options.

// Only these bits count as unknown; the top bit is not checked.
constexpr FlagDisplay kGetOptions = {Constant_Zkgmo,   &ConstantKnownBits_Zkgmo, 0x60080000u,
                                     FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,       0,
                                     "ZKGMO - Options"};
// Signal1 holds an event code, shown by bit tests: each code that has a bit
// in common with the value is named.
constexpr uint32_t kSignalBits = 7;
constexpr FlagDisplay kSignal1 = {ConstantIdentifier_Zkec, &kSignalBits,       ~kSignalBits,
                                  FLAGS_ANY_BIT,           FLAGS_UNKNOWN_BITS, sizeof "ZKEC_" - 1,
                                  "ZKGMO - ZKEC_..."};
// Match options: a value above 63 is unknown, compared signed.
constexpr FlagDisplay kMatchOptions = {Constant_Zkmo,     &ConstantKnownBits_Zkmo, 63,
                                       FLAGS_ALL_BITS,    FLAGS_UNKNOWN_ABOVE,     0,
                                       "ZKGMO - ZKMO_..."};
constexpr ValueDisplay kGroupStatus = {
    ConstantIdentifier_Zkgs, 0, 255, sizeof "ZKGS_" - 1, VALUE_BYTE_REPORTED, "ZKGMO - ZKGS_..."};
constexpr ValueDisplay kSegmentStatus = {
    ConstantIdentifier_Zkss, 0, 255, sizeof "ZKSS_" - 1, VALUE_BYTE_REPORTED, "ZKGMO - ZKSS_..."};
constexpr ValueDisplay kSegmentation = {
    ConstantIdentifier_Zkseg, 0, 255, sizeof "ZKSEG_" - 1, VALUE_BYTE_REPORTED,
    "ZKGMO - ZKSEG_..."};

// clang-format off
constexpr StructField kZkgmoFields[] = {
    FIELD_OF(ZKGMO, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKGMO, Options, "Options", kGetOptions, 0),
    FIELD_OF(ZKGMO, WaitInterval, "WaitInterval", FIELD_INT),
    FIELD_FLAGS_OF(ZKGMO, Signal1, "Signal1", kSignal1, 0),
    FIELD_OF(ZKGMO, Signal2, "Signal2", FIELD_INT),
    FIELD_FUNCTION_OF(ZKGMO, ResolvedQName, "ResolvedQName", ShowResolvedQName),
    FIELD_VERSION(2, 0),
    FIELD_FLAGS_OF(ZKGMO, MatchOptions, "MatchOptions", kMatchOptions, 0),
    FIELD_ROW(ZKGMO, GroupStatus, "GroupStatus", FIELD_CHARACTER, FIELD_RECEIVED, nullptr, &kGroupStatus, nullptr),
    FIELD_ROW(ZKGMO, SegmentStatus, "SegmentStatus", FIELD_CHARACTER, FIELD_RECEIVED, nullptr, &kSegmentStatus, nullptr),
    FIELD_ROW(ZKGMO, Segmentation, "Segmentation", FIELD_CHARACTER, FIELD_RECEIVED, nullptr, &kSegmentation, nullptr),
    // Versions 3 and 4 are tested on the Version word as stored.
    FIELD_VERSION(3, FIELD_RAW),
    FIELD_OF(ZKGMO, MsgToken, "MsgToken", FIELD_BYTES),
    FIELD_OF(ZKGMO, ReturnedLength, "ReturnedLength", FIELD_INT),
    FIELD_VERSION(4, FIELD_RAW),
    FIELD_OF(ZKGMO, MsgHandle, "MsgHandle", FIELD_MESSAGE_HANDLE),
};
// clang-format on
constexpr StructDisplay kZkgmo = STRUCT_DISPLAY("GMO", ZKGMO, Version, kZkgmoFields);

} // namespace

void ShowParsedZkpmo(ExitControlBlock *cb, const ZKPMO *pmo) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, pmo, ZkStructureEncoding(pmo), kZkpmo.VersionOffset);
  WalkStructFields(&walk, &kZkpmo);
}

void ShowParsedZkpmrf(ExitControlBlock *cb, int32_t fields) {
  ShowFlagsField(cb, "PutMsgRecFields", &kPutMsgRecFields, (uint32_t)fields, 1);
}

int32_t CalculateZkpmrUnitLength(int32_t putMsgRecFields) {
  int32_t length = 0;
  for (const PutMsgRecField &field : kPutMsgRecFieldList) {
    if (((uint32_t)putMsgRecFields & field.Flag) != 0) {
      length += field.Size;
    }
  }
  return length;
}

void ShowParsedZkpmr(ExitControlBlock *cb, const void *records, int32_t count, int32_t fields) {
  if (records == nullptr || count <= 0) {
    return;
  }
  const unsigned char *at = (const unsigned char *)records;
  TraceText text;
  TraceTextStart(&text, cb, TRACE_TEXT_WRITE_OUT);
  for (int32_t i = 0; i < count; i++) {
    for (const PutMsgRecField &field : kPutMsgRecFieldList) {
      if (((uint32_t)fields & field.Flag) == 0) {
        continue;
      }
      TraceTextAppendFieldName(&text, field.Name);
      if (field.Flag == ZKPMRF_FEEDBACK) {
        int32_t feedback;
        memcpy(&feedback, at, sizeof feedback);
        TraceTextAppendInt32(&text, feedback, 0);
        TraceTextAppendChar(&text, '\n');
      } else {
        TraceTextAppendHexSingleLine(&text, at, field.Size, 1, 1, 1);
      }
      at += field.Size;
    }
  }
  TraceTextWrite(&text);
  if (((uint32_t)fields & ~0x1Fu) != 0) {
    ShowUnknownAttribute(cb, "ZKPMRF_...", (uint32_t)fields);
  }
}

void ShowParsedZkgmo(ExitControlBlock *cb, const ZKGMO *gmo, int32_t exitReason, int32_t compCode) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, gmo, ZkStructureEncoding(gmo), kZkgmo.VersionOffset);
  // The status characters are the call's output: only after a call that
  // completed is an unknown one reported.
  walk.ReportReceived = exitReason == ZKXR_AFTER && compCode == ZKCC_OK;
  WalkStructFields(&walk, &kZkgmo);
}
