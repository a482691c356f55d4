// The client channel definition ZKCD field by field, versions 1 to 10. The
// structure has no identifier: the channel name comes first and the version
// follows it.
#include "format/structure_fields.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

// A value named by its constant, known only within the given range.
#define CD_VALUE(family, lowest, highest, prefix)                                                  \
  ValueDisplay {                                                                                   \
    ConstantIdentifier_##family, lowest, highest, sizeof prefix - 1, VALUE_NUMBER_REPORTED,        \
        "ZKCD - " prefix "..."                                                                     \
  }
// A value named by its family's table, which answers for unknown values too.
#define CD_TABLE(family)                                                                           \
  ValueDisplay {                                                                                   \
    Constant_##family, INT32_MIN, INT32_MAX, 0, VALUE_TABLE_TEXT, ""                               \
  }

constexpr ValueDisplay kChannelType = CD_VALUE(Zkcht, ZKCHT_SENDER, ZKCHT_CLUSSDR, "ZKCHT_");
constexpr ValueDisplay kTransportType = CD_VALUE(Zkxpt, ZKXPT_LOCAL, ZKXPT_UDP, "ZKXPT_");
constexpr ValueDisplay kPutAuthority = CD_VALUE(Zkpa, ZKPA_DEFAULT, ZKPA_ALTERNATE_OR_MCA, "ZKPA_");
constexpr ValueDisplay kDataConversion =
    CD_VALUE(Zkcdc, ZKCDC_NO_SENDER_CONVERSION, ZKCDC_SENDER_CONVERSION, "ZKCDC_");
constexpr ValueDisplay kMcaType = CD_VALUE(Zkmcat, ZKMCAT_PROCESS, ZKMCAT_THREAD, "ZKMCAT_");
constexpr ValueDisplay kNonPersistentMsgSpeed =
    CD_VALUE(Zknpms, ZKNPMS_NORMAL, ZKNPMS_FAST, "ZKNPMS_");
constexpr ValueDisplay kSslClientAuth = CD_VALUE(Zksca, ZKSCA_REQUIRED, ZKSCA_OPTIONAL, "ZKSCA_");
constexpr ValueDisplay kMonitoring = CD_TABLE(Zkmon);
constexpr ValueDisplay kPropertyControl = CD_TABLE(Zkprop);
constexpr ValueDisplay kConnectionAffinity = CD_TABLE(Zkcafty);
constexpr ValueDisplay kUseDlq = CD_TABLE(Zkusedlq);
constexpr ValueDisplay kDefReconnect = CD_TABLE(Zkrcn);

#define CD_INT(member) FIELD_OF(ZKCD, member, #member, FIELD_INT)
#define CD_TEXT(member) FIELD_OF(ZKCD, member, #member, FIELD_TEXT)
#define CD_ENUM(member, value) FIELD_VALUE_OF(ZKCD, member, #member, value, 0)
#define CD_HDR_COMP(index)                                                                         \
  FIELD_ELEMENT_OF(ZKCD, HdrCompList, index - 1, "HdrCompList[" #index "]", FIELD_COMPRESSION)
#define CD_MSG_COMP(index)                                                                         \
  FIELD_ELEMENT_OF(ZKCD, MsgCompList, index - 1, "MsgCompList[" #index "]", FIELD_COMPRESSION)

// clang-format off
constexpr StructField kZkcdFields[] = {
    CD_TEXT(ChannelName),
    CD_INT(Version),
    CD_ENUM(ChannelType, kChannelType),
    CD_ENUM(TransportType, kTransportType),
    FIELD_OF(ZKCD, Desc, "Channel description", FIELD_TEXT),
    CD_TEXT(QMgrName),
    CD_TEXT(XmitQName),
    CD_TEXT(ShortConnectionName),
    CD_TEXT(MCAName),
    FIELD_OF(ZKCD, ModeName, "LU 6.2 ModeName", FIELD_TEXT),
    FIELD_OF(ZKCD, TpName, "LU 6.2 TpName", FIELD_TEXT),
    CD_INT(BatchSize),
    CD_INT(DiscInterval),
    CD_INT(ShortRetryCount),
    CD_INT(ShortRetryInterval),
    CD_INT(LongRetryCount),
    CD_INT(LongRetryInterval),
    CD_TEXT(SecurityExit),
    CD_TEXT(MsgExit),
    CD_TEXT(SendExit),
    CD_TEXT(ReceiveExit),
    CD_INT(SeqNumberWrap),
    CD_INT(MaxMsgLength),
    CD_ENUM(PutAuthority, kPutAuthority),
    CD_ENUM(DataConversion, kDataConversion),
    CD_TEXT(SecurityUserData),
    CD_TEXT(MsgUserData),
    CD_TEXT(SendUserData),
    CD_TEXT(ReceiveUserData),
    FIELD_VERSION(2, 0),
    CD_TEXT(UserIdentifier),
    CD_TEXT(Password),
    CD_TEXT(MCAUserIdentifier),
    CD_ENUM(MCAType, kMcaType),
    CD_TEXT(ConnectionName),
    CD_TEXT(RemoteUserIdentifier),
    CD_TEXT(RemotePassword),
    FIELD_VERSION(3, 0),
    CD_TEXT(MsgRetryExit),
    CD_TEXT(MsgRetryUserData),
    CD_INT(MsgRetryCount),
    CD_INT(MsgRetryInterval),
    FIELD_VERSION(4, 0),
    CD_INT(HeartbeatInterval),
    CD_INT(BatchInterval),
    CD_ENUM(NonPersistentMsgSpeed, kNonPersistentMsgSpeed),
    CD_INT(StrucLength),
    CD_INT(ExitNameLength),
    CD_INT(ExitDataLength),
    CD_INT(MsgExitsDefined),
    CD_INT(SendExitsDefined),
    CD_INT(ReceiveExitsDefined),
    FIELD_VERSION(5, 0),
    CD_INT(ClustersDefined),
    CD_INT(NetworkPriority),
    FIELD_VERSION(6, 0),
    CD_INT(LongMCAUserIdLength),
    CD_INT(LongRemoteUserIdLength),
    FIELD_OF(ZKCD, MCASecurityId, "MCASecurityId", FIELD_BYTES),
    FIELD_OF(ZKCD, RemoteSecurityId, "RemoteSecurityId", FIELD_BYTES),
    FIELD_VERSION(7, 0),
    CD_TEXT(SSLCipherSpec),
    CD_INT(SSLPeerNameLength),
    CD_ENUM(SSLClientAuth, kSslClientAuth),
    CD_INT(KeepAliveInterval),
    CD_TEXT(LocalAddress),
    CD_INT(BatchHeartbeat),
    FIELD_VERSION(8, 0),
    CD_HDR_COMP(1), CD_HDR_COMP(2),
    CD_MSG_COMP(1), CD_MSG_COMP(2), CD_MSG_COMP(3), CD_MSG_COMP(4),
    CD_MSG_COMP(5), CD_MSG_COMP(6), CD_MSG_COMP(7), CD_MSG_COMP(8),
    CD_MSG_COMP(9), CD_MSG_COMP(10), CD_MSG_COMP(11), CD_MSG_COMP(12),
    CD_MSG_COMP(13), CD_MSG_COMP(14), CD_MSG_COMP(15), CD_MSG_COMP(16),
    CD_INT(CLWLChannelRank),
    CD_INT(CLWLChannelPriority),
    CD_INT(CLWLChannelWeight),
    CD_ENUM(ChannelMonitoring, kMonitoring),
    CD_ENUM(ChannelStatistics, kMonitoring),
    FIELD_VERSION(9, 0),
    CD_INT(SharingConversations),
    CD_ENUM(PropertyControl, kPropertyControl),
    CD_INT(MaxInstances),
    CD_INT(MaxInstancesPerClient),
    CD_INT(ClientChannelWeight),
    // The number and then the name, on two lines.
    CD_INT(ConnectionAffinity),
    CD_ENUM(ConnectionAffinity, kConnectionAffinity),
    FIELD_VERSION(10, 0),
    CD_INT(BatchDataLimit),
    CD_ENUM(UseDLQ, kUseDlq),
    CD_ENUM(DefReconnect, kDefReconnect),
};
// clang-format on
constexpr StructDisplay kZkcd = STRUCT_DISPLAY("CD", ZKCD, Version, kZkcdFields);

} // namespace

void ShowParsedZkcd(ExitControlBlock *cb, const ZKCD *cd) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, cd, ZKENC_NATIVE, kZkcd.VersionOffset);
  WalkStructFields(&walk, &kZkcd);
}
