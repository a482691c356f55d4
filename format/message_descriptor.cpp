// The message descriptor ZKMD field by field, with its report options and
// message flags. A descriptor handed to a get is output: before the call it
// may hold anything, so its unknown values are not reported then.
#include "exit/control_block.h"
#include "format/structure_fields.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

// Report options: of each group (exception, expiration, COA, COD) only the
// widest form whose bits are all set, then the single bits.
constexpr FlagDisplay kReportOptions = {Constant_Zkro,    &ConstantKnownBits_Zkro, ~0x0FE07FC7u,
                                        FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,      0,
                                        "ZKMD - ZKRO_..."};
constexpr FlagDisplay kMsgFlags = {Constant_Zkmf,    &ConstantKnownBits_Zkmf, ~0x1Fu,
                                   FLAGS_ALL_BITS,   FLAGS_UNKNOWN_BITS,      0,
                                   "ZKMD - ZKMF_..."};
constexpr ValueDisplay kMsgType = {Constant_Zkmt, INT32_MIN, INT32_MAX, 0, VALUE_NUMBER, ""};
constexpr ValueDisplay kFeedback = {Constant_Zkrc, INT32_MIN, INT32_MAX, 0, VALUE_REASON, ""};
constexpr ValueDisplay kPersistence = {ConstantIdentifier_Zkper,      ZKPER_NOT_PERSISTENT,
                                       ZKPER_PERSISTENCE_AS_Q_DEF,    sizeof "ZKPER_" - 1,
                                       VALUE_NUMBER_UNKNOWN_REPORTED, "ZKMD - ZKPER_..."};
constexpr ValueDisplay kPutApplType = {Constant_ApplType, INT32_MIN, INT32_MAX, 0,
                                       VALUE_NUMBER,      ""};

// clang-format off
constexpr StructField kZkmdFields[] = {
    FIELD_OF(ZKMD, Version, "Version", FIELD_INT),
    FIELD_FLAGS_OF(ZKMD, Report, "Report", kReportOptions, FIELD_RECEIVED),
    FIELD_VALUE_OF(ZKMD, MsgType, "MsgType", kMsgType, 0),
    FIELD_OF(ZKMD, Expiry, "Expiry", FIELD_INT),
    FIELD_VALUE_OF(ZKMD, Feedback, "Feedback", kFeedback, 0),
    FIELD_OF(ZKMD, Encoding, "Encoding", FIELD_ENCODING),
    FIELD_OF(ZKMD, CodedCharSetId, "CodedCharSetId", FIELD_CCSID),
    FIELD_OF(ZKMD, Format, "Format", FIELD_FORMAT),
    FIELD_OF(ZKMD, Priority, "Priority", FIELD_INT),
    FIELD_VALUE_OF(ZKMD, Persistence, "Persistence", kPersistence, FIELD_RECEIVED),
    FIELD_OF(ZKMD, MsgId, "MsgId", FIELD_BYTES),
    FIELD_OF(ZKMD, CorrelId, "CorrelId", FIELD_BYTES),
    FIELD_OF(ZKMD, BackoutCount, "BackoutCount", FIELD_INT),
    FIELD_OF(ZKMD, ReplyToQ, "ReplyToQ", FIELD_TEXT),
    FIELD_OF(ZKMD, ReplyToQMgr, "ReplyToQMgr", FIELD_TEXT),
    FIELD_OF(ZKMD, UserIdentifier, "UserIdentifier", FIELD_TEXT),
    FIELD_OF(ZKMD, AccountingToken, "AccountingToken", FIELD_BYTES),
    FIELD_OF(ZKMD, ApplIdentityData, "ApplIdentityData", FIELD_TEXT),
    FIELD_VALUE_OF(ZKMD, PutApplType, "PutApplType", kPutApplType, 0),
    FIELD_OF(ZKMD, PutApplName, "PutApplName", FIELD_TEXT),
    FIELD_OF(ZKMD, PutDate, "PutDate", FIELD_TEXT),
    FIELD_OF(ZKMD, PutTime, "PutTime", FIELD_TEXT),
    FIELD_OF(ZKMD, ApplOriginData, "ApplOriginData", FIELD_TEXT),
    FIELD_VERSION(2, 0),
    FIELD_OF(ZKMD, GroupId, "GroupId", FIELD_BYTES),
    FIELD_OF(ZKMD, MsgSeqNumber, "MsgSeqNumber", FIELD_INT),
    FIELD_OF(ZKMD, Offset, "Offset", FIELD_INT),
    FIELD_FLAGS_OF(ZKMD, MsgFlags, "MsgFlags", kMsgFlags, FIELD_RECEIVED),
    FIELD_OF(ZKMD, OriginalLength, "OriginalLength", FIELD_INT),
};
// clang-format on
constexpr StructDisplay kZkmd = STRUCT_DISPLAY("MD", ZKMD, Version, kZkmdFields);

// Whether unknown values of the descriptor's output fields are reported: not
// before a get (or its data conversion) and not after a get that failed.
uint8_t ReportsReceivedValues(const ExitControlBlock *cb) {
  int32_t function = cb->Call.CurrentFunction;
  int32_t reason = cb->Call.CurrentExitReason;
  bool get = function == ZKXF_GET;
  if ((get || function == ZKXF_DATA_CONV_ON_GET) && reason == ZKXR_BEFORE) {
    return 0;
  }
  if (get && reason == ZKXR_AFTER && cb->Call.CurrentCompCode == ZKCC_FAILED) {
    return 0;
  }
  return 1;
}

void ShowFlagWord(ExitControlBlock *cb, const char *name, const FlagDisplay *flags, int32_t word,
                  uint8_t embedded) {
  ShowFlagsField(cb, embedded != 0 ? nullptr : name, flags, (uint32_t)word,
                 embedded == 0 ? ReportsReceivedValues(cb) : 0);
}

} // namespace

void ShowParsedZkmd(ExitControlBlock *cb, const ZKMD *md) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, md, ZkStructureEncoding(md), kZkmd.VersionOffset);
  walk.ReportReceived = ReportsReceivedValues(cb);
  WalkStructFields(&walk, &kZkmd);
}

void ShowParsedReportOptions(ExitControlBlock *cb, int32_t options, uint8_t embedded) {
  ShowFlagWord(cb, "Report", &kReportOptions, options, embedded);
}

void ShowParsedMsgFlags(ExitControlBlock *cb, int32_t flags, uint8_t embedded) {
  ShowFlagWord(cb, "MsgFlags", &kMsgFlags, flags, embedded);
}
