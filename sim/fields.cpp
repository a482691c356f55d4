#include "fields.h"

#include <cstddef>
#include <cstring>
#include <strings.h>
#include <type_traits>

#include "constants.h"

namespace zkqm {
namespace {

template <typename T> struct KindOf;
template <> struct KindOf<int32_t> { static constexpr FieldKind kind = FieldKind::Int32; };
template <> struct KindOf<int64_t> { static constexpr FieldKind kind = FieldKind::Int64; };
template <> struct KindOf<char> { static constexpr FieldKind kind = FieldKind::Chars; };
template <> struct KindOf<void *> { static constexpr FieldKind kind = FieldKind::Pointer; };
template <std::size_t N> struct KindOf<char[N]> {
  static constexpr FieldKind kind = FieldKind::Chars;
};
template <std::size_t N> struct KindOf<unsigned char[N]> {
  static constexpr FieldKind kind = FieldKind::Bytes;
};

// Builds one structure's table.
class Builder {
public:
  Builder(const char *name, const char *key, uint32_t size, std::vector<uint32_t> lengths = {},
          int versionOffset = 4) {
    def_.name = name;
    def_.key = key;
    def_.size = size;
    def_.lengths = std::move(lengths);
    def_.versionOffset = versionOffset;
  }
  Builder &add(const char *name, std::size_t offset, std::size_t size, FieldKind kind,
               const char *prefix = "", bool hex = false) {
    FieldDef f;
    f.name = name;
    f.offset = static_cast<uint32_t>(offset);
    f.size = static_cast<uint32_t>(size);
    f.kind = kind;
    f.prefix = prefix;
    f.hex = hex;
    def_.fields.push_back(f);
    return *this;
  }
  Builder &charv(const char *name, std::size_t offset) {
    std::string n = name;
    add((n + ".VSPtr").c_str(), offset + offsetof(ZKCHARV, VSPtr), 4, FieldKind::Pointer);
    add((n + ".VSOffset").c_str(), offset + offsetof(ZKCHARV, VSOffset), 4, FieldKind::Int32);
    add((n + ".VSBufSize").c_str(), offset + offsetof(ZKCHARV, VSBufSize), 4, FieldKind::Int32);
    add((n + ".VSLength").c_str(), offset + offsetof(ZKCHARV, VSLength), 4, FieldKind::Int32);
    add((n + ".VSCCSID").c_str(), offset + offsetof(ZKCHARV, VSCCSID), 4, FieldKind::Int32);
    return *this;
  }
  Builder &longs(const char *name, std::size_t offset, int count) {
    for (int i = 0; i < count; ++i) {
      std::string n = std::string(name) + "[" + std::to_string(i) + "]";
      add(n.c_str(), offset + 4 * i, 4, FieldKind::Int32);
    }
    return *this;
  }
  // The fields of another structure embedded at `offset`, named "prefix.Field".
  Builder &nested(const char *name, std::size_t offset, const StructDef &inner) {
    for (const FieldDef &f : inner.fields) {
      FieldDef g = f;
      g.name = std::string(name) + "." + f.name;
      g.offset += static_cast<uint32_t>(offset);
      def_.fields.push_back(g);
    }
    return *this;
  }
  // The fields that every chained message header starts with, its flags
  // named with `flagsPrefix`.
  template <typename T> Builder &header(const char *flagsPrefix);
  // The fields of an XID, in either layout.
  template <typename T> Builder &xid();
  StructDef done() { return def_; }

private:
  StructDef def_;
};

#define MEMBER_TYPE(T, f) std::remove_cv_t<decltype(((T *)nullptr)->f)>
#define F(T, f) add(#f, offsetof(T, f), sizeof(((T *)nullptr)->f), KindOf<MEMBER_TYPE(T, f)>::kind)
#define FP(T, f, prefix)                                                                           \
  add(#f, offsetof(T, f), sizeof(((T *)nullptr)->f), KindOf<MEMBER_TYPE(T, f)>::kind, prefix)
#define FH(T, f, prefix)                                                                           \
  add(#f, offsetof(T, f), sizeof(((T *)nullptr)->f), KindOf<MEMBER_TYPE(T, f)>::kind, prefix, true)
#define FV(T, f) charv(#f, offsetof(T, f))
#define FL(T, f, n) longs(#f, offsetof(T, f), n)

template <typename T> Builder &Builder::header(const char *flagsPrefix) {
  return F(T, StrucId)
      .F(T, Version)
      .F(T, StrucLength)
      .FP(T, Encoding, "ZKENC_")
      .FP(T, CodedCharSetId, "ZKCCSI_")
      .F(T, Format)
      .FH(T, Flags, flagsPrefix);
}

template <typename T> Builder &Builder::xid() {
  return F(T, formatID).F(T, gtrid_length).F(T, bqual_length).F(T, data);
}

StructDef md1Fields(const char *name, const char *key, uint32_t size,
                    std::vector<uint32_t> lengths) {
  Builder b(name, key, size, std::move(lengths));
  b.F(ZKMD, StrucId)
      .F(ZKMD, Version)
      .FH(ZKMD, Report, "ZKRO_")
      .FP(ZKMD, MsgType, "ZKMT_")
      .F(ZKMD, Expiry)
      .FP(ZKMD, Feedback, "ZKFB_")
      .FP(ZKMD, Encoding, "ZKENC_")
      .FP(ZKMD, CodedCharSetId, "ZKCCSI_")
      .F(ZKMD, Format)
      .FP(ZKMD, Priority, "ZKPRI_")
      .FP(ZKMD, Persistence, "ZKPER_")
      .F(ZKMD, MsgId)
      .F(ZKMD, CorrelId)
      .F(ZKMD, BackoutCount)
      .F(ZKMD, ReplyToQ)
      .F(ZKMD, ReplyToQMgr)
      .F(ZKMD, UserIdentifier)
      .F(ZKMD, AccountingToken)
      .F(ZKMD, ApplIdentityData)
      .FP(ZKMD, PutApplType, "ZKAT_")
      .F(ZKMD, PutApplName)
      .F(ZKMD, PutDate)
      .F(ZKMD, PutTime)
      .F(ZKMD, ApplOriginData);
  return b.done();
}

std::vector<StructDef> buildAll() {
  std::vector<StructDef> all;
  all.push_back(Builder("ZKAXP", "axp", sizeof(ZKAXP), {ZKAXP_LENGTH_1, ZKAXP_LENGTH_2})
                    .F(ZKAXP, StrucId)
                    .F(ZKAXP, Version)
                    .F(ZKAXP, ExitId)
                    .FP(ZKAXP, ExitReason, "ZKXR_")
                    .F(ZKAXP, ExitResponse)
                    .F(ZKAXP, ExitResponse2)
                    .F(ZKAXP, Feedback)
                    .FP(ZKAXP, APICallerType, "ZKXACT_")
                    .F(ZKAXP, ExitUserArea)
                    .F(ZKAXP, ExitData)
                    .F(ZKAXP, ExitInfoName)
                    .F(ZKAXP, ExitPDArea)
                    .F(ZKAXP, QMgrName)
                    .F(ZKAXP, ExitChainAreaPtr)
                    .F(ZKAXP, Hconfig)
                    .FP(ZKAXP, Function, "ZKXF_")
                    .F(ZKAXP, ExitMsgHandle)
                    .done());
  all.push_back(Builder("ZKAXC", "axc", sizeof(ZKAXC), {ZKAXC_LENGTH_1, ZKAXC_LENGTH_2})
                    .F(ZKAXC, StrucId)
                    .F(ZKAXC, Version)
                    .FP(ZKAXC, Environment, "ZKXE_")
                    .F(ZKAXC, UserId)
                    .F(ZKAXC, SecurityId)
                    .F(ZKAXC, ConnectionName)
                    .F(ZKAXC, LongMCAUserIdLength)
                    .F(ZKAXC, LongRemoteUserIdLength)
                    .F(ZKAXC, LongMCAUserIdPtr)
                    .F(ZKAXC, LongRemoteUserIdPtr)
                    .F(ZKAXC, ApplName)
                    .FP(ZKAXC, ApplType, "ZKAT_")
                    .F(ZKAXC, ProcessId)
                    .F(ZKAXC, ThreadId)
                    .F(ZKAXC, ChannelName)
                    .F(ZKAXC, Reserved1)
                    .F(ZKAXC, pChannelDefinition)
                    .done());

  StructDef md = md1Fields("ZKMD", "md", sizeof(ZKMD), {ZKMD_LENGTH_1, ZKMD_LENGTH_2});
  Builder mdv2("ZKMD", "md", sizeof(ZKMD), {ZKMD_LENGTH_1, ZKMD_LENGTH_2});
  mdv2.nested("", 0, md);
  StructDef mdAll = mdv2.F(ZKMD, GroupId)
                        .F(ZKMD, MsgSeqNumber)
                        .F(ZKMD, Offset)
                        .FH(ZKMD, MsgFlags, "ZKMF_")
                        .F(ZKMD, OriginalLength)
                        .done();
  for (FieldDef &f : mdAll.fields) {
    if (!f.name.empty() && f.name[0] == '.') {
      f.name.erase(0, 1);
    }
  }
  all.push_back(mdAll);
  StructDef md1 = md1Fields("ZKMD1", "md1", sizeof(ZKMD1), {});
  all.push_back(md1);

  all.push_back(Builder("ZKMDE", "mde", sizeof(ZKMDE))
                    .header<ZKMDE>("ZKMDEF_")
                    .F(ZKMDE, GroupId)
                    .F(ZKMDE, MsgSeqNumber)
                    .F(ZKMDE, Offset)
                    .FH(ZKMDE, MsgFlags, "ZKMF_")
                    .F(ZKMDE, OriginalLength)
                    .done());
  all.push_back(Builder("ZKOD", "od", sizeof(ZKOD),
                        {ZKOD_LENGTH_1, ZKOD_LENGTH_2, ZKOD_LENGTH_3, ZKOD_LENGTH_4})
                    .F(ZKOD, StrucId)
                    .F(ZKOD, Version)
                    .FP(ZKOD, ObjectType, "ZKOT_")
                    .F(ZKOD, ObjectName)
                    .F(ZKOD, ObjectQMgrName)
                    .F(ZKOD, DynamicQName)
                    .F(ZKOD, AlternateUserId)
                    .F(ZKOD, RecsPresent)
                    .F(ZKOD, KnownDestCount)
                    .F(ZKOD, UnknownDestCount)
                    .F(ZKOD, InvalidDestCount)
                    .F(ZKOD, ObjectRecOffset)
                    .F(ZKOD, ResponseRecOffset)
                    .F(ZKOD, ObjectRecPtr)
                    .F(ZKOD, ResponseRecPtr)
                    .F(ZKOD, AlternateSecurityId)
                    .F(ZKOD, ResolvedQName)
                    .F(ZKOD, ResolvedQMgrName)
                    .FV(ZKOD, ObjectString)
                    .FV(ZKOD, SelectionString)
                    .FV(ZKOD, ResObjectString)
                    .FP(ZKOD, ResolvedType, "ZKOT_")
                    .done());
  all.push_back(Builder("ZKOR", "or", sizeof(ZKOR), {}, -1)
                    .F(ZKOR, ObjectName)
                    .F(ZKOR, ObjectQMgrName)
                    .done());
  all.push_back(Builder("ZKRR", "rr", sizeof(ZKRR), {}, -1)
                    .FP(ZKRR, CompCode, "ZKCC_")
                    .FP(ZKRR, Reason, "ZKRC_")
                    .done());
  all.push_back(
      Builder("ZKPMO", "pmo", sizeof(ZKPMO), {ZKPMO_LENGTH_1, ZKPMO_LENGTH_2, ZKPMO_LENGTH_3})
          .F(ZKPMO, StrucId)
          .F(ZKPMO, Version)
          .FH(ZKPMO, Options, "ZKPMO_")
          .F(ZKPMO, Timeout)
          .F(ZKPMO, Context)
          .F(ZKPMO, KnownDestCount)
          .F(ZKPMO, UnknownDestCount)
          .F(ZKPMO, InvalidDestCount)
          .F(ZKPMO, ResolvedQName)
          .F(ZKPMO, ResolvedQMgrName)
          .F(ZKPMO, RecsPresent)
          .FH(ZKPMO, PutMsgRecFields, "ZKPMRF_")
          .F(ZKPMO, PutMsgRecOffset)
          .F(ZKPMO, ResponseRecOffset)
          .F(ZKPMO, PutMsgRecPtr)
          .F(ZKPMO, ResponseRecPtr)
          .F(ZKPMO, OriginalMsgHandle)
          .F(ZKPMO, NewMsgHandle)
          .FP(ZKPMO, Action, "ZKACTP_")
          .F(ZKPMO, PubLevel)
          .done());
  all.push_back(Builder("ZKPMR", "pmr", sizeof(ZKPMR), {}, -1)
                    .F(ZKPMR, MsgId)
                    .F(ZKPMR, CorrelId)
                    .F(ZKPMR, GroupId)
                    .FP(ZKPMR, Feedback, "ZKFB_")
                    .F(ZKPMR, AccountingToken)
                    .done());
  all.push_back(Builder("ZKGMO", "gmo", sizeof(ZKGMO),
                        {ZKGMO_LENGTH_1, ZKGMO_LENGTH_2, ZKGMO_LENGTH_3, ZKGMO_LENGTH_4})
                    .F(ZKGMO, StrucId)
                    .F(ZKGMO, Version)
                    .FH(ZKGMO, Options, "ZKGMO_")
                    .FP(ZKGMO, WaitInterval, "ZKWI_")
                    .F(ZKGMO, Signal1)
                    .F(ZKGMO, Signal2)
                    .F(ZKGMO, ResolvedQName)
                    .FH(ZKGMO, MatchOptions, "ZKMO_,ZKMO_MATCH_")
                    .F(ZKGMO, GroupStatus)
                    .F(ZKGMO, SegmentStatus)
                    .F(ZKGMO, Segmentation)
                    .F(ZKGMO, Reserved1)
                    .F(ZKGMO, MsgToken)
                    .F(ZKGMO, ReturnedLength)
                    .F(ZKGMO, Reserved2)
                    .F(ZKGMO, MsgHandle)
                    .done());
  all.push_back(Builder("ZKBO", "bo", sizeof(ZKBO))
                    .F(ZKBO, StrucId)
                    .F(ZKBO, Version)
                    .FH(ZKBO, Options, "ZKBO_")
                    .done());
  all.push_back(
      Builder("ZKCNO", "cno", sizeof(ZKCNO),
              {ZKCNO_LENGTH_1, ZKCNO_LENGTH_2, ZKCNO_LENGTH_3, ZKCNO_LENGTH_4, ZKCNO_LENGTH_5})
          .F(ZKCNO, StrucId)
          .F(ZKCNO, Version)
          .FH(ZKCNO, Options, "ZKCNO_")
          .F(ZKCNO, ClientConnOffset)
          .F(ZKCNO, ClientConnPtr)
          .F(ZKCNO, ConnTag)
          .F(ZKCNO, SSLConfigPtr)
          .F(ZKCNO, SSLConfigOffset)
          .F(ZKCNO, ConnectionId)
          .F(ZKCNO, SecurityParmsOffset)
          .F(ZKCNO, SecurityParmsPtr)
          .done());
  all.push_back(
      Builder("ZKCD", "cd", sizeof(ZKCD),
              {ZKCD_LENGTH_1, ZKCD_LENGTH_2, ZKCD_LENGTH_3, ZKCD_LENGTH_4, ZKCD_LENGTH_5,
               ZKCD_LENGTH_6, ZKCD_LENGTH_7, ZKCD_LENGTH_8, ZKCD_LENGTH_9, ZKCD_LENGTH_10},
              ZKCD_VERSION_OFFSET)
          .F(ZKCD, ChannelName)
          .F(ZKCD, Version)
          .FP(ZKCD, ChannelType, "ZKCHT_")
          .FP(ZKCD, TransportType, "ZKXPT_")
          .F(ZKCD, Desc)
          .F(ZKCD, QMgrName)
          .F(ZKCD, XmitQName)
          .F(ZKCD, ShortConnectionName)
          .F(ZKCD, MCAName)
          .F(ZKCD, ModeName)
          .F(ZKCD, TpName)
          .F(ZKCD, BatchSize)
          .F(ZKCD, DiscInterval)
          .F(ZKCD, ShortRetryCount)
          .F(ZKCD, ShortRetryInterval)
          .F(ZKCD, LongRetryCount)
          .F(ZKCD, LongRetryInterval)
          .F(ZKCD, SecurityExit)
          .F(ZKCD, MsgExit)
          .F(ZKCD, SendExit)
          .F(ZKCD, ReceiveExit)
          .F(ZKCD, SeqNumberWrap)
          .F(ZKCD, MaxMsgLength)
          .FP(ZKCD, PutAuthority, "ZKPA_")
          .FP(ZKCD, DataConversion, "ZKCDC_")
          .F(ZKCD, SecurityUserData)
          .F(ZKCD, MsgUserData)
          .F(ZKCD, SendUserData)
          .F(ZKCD, ReceiveUserData)
          .F(ZKCD, UserIdentifier)
          .F(ZKCD, Password)
          .F(ZKCD, MCAUserIdentifier)
          .FP(ZKCD, MCAType, "ZKMCAT_")
          .F(ZKCD, ConnectionName)
          .F(ZKCD, RemoteUserIdentifier)
          .F(ZKCD, RemotePassword)
          .F(ZKCD, MsgRetryExit)
          .F(ZKCD, MsgRetryUserData)
          .F(ZKCD, MsgRetryCount)
          .F(ZKCD, MsgRetryInterval)
          .F(ZKCD, HeartbeatInterval)
          .F(ZKCD, BatchInterval)
          .FP(ZKCD, NonPersistentMsgSpeed, "ZKNPMS_")
          .F(ZKCD, StrucLength)
          .F(ZKCD, ExitNameLength)
          .F(ZKCD, ExitDataLength)
          .F(ZKCD, MsgExitsDefined)
          .F(ZKCD, SendExitsDefined)
          .F(ZKCD, ReceiveExitsDefined)
          .F(ZKCD, MsgExitPtr)
          .F(ZKCD, MsgUserDataPtr)
          .F(ZKCD, SendExitPtr)
          .F(ZKCD, SendUserDataPtr)
          .F(ZKCD, ReceiveExitPtr)
          .F(ZKCD, ReceiveUserDataPtr)
          .F(ZKCD, ClusterPtr)
          .F(ZKCD, ClustersDefined)
          .F(ZKCD, NetworkPriority)
          .F(ZKCD, LongMCAUserIdLength)
          .F(ZKCD, LongRemoteUserIdLength)
          .F(ZKCD, LongMCAUserIdPtr)
          .F(ZKCD, LongRemoteUserIdPtr)
          .F(ZKCD, MCASecurityId)
          .F(ZKCD, RemoteSecurityId)
          .F(ZKCD, SSLCipherSpec)
          .F(ZKCD, SSLPeerNamePtr)
          .F(ZKCD, SSLPeerNameLength)
          .FP(ZKCD, SSLClientAuth, "ZKSCA_")
          .F(ZKCD, KeepAliveInterval)
          .F(ZKCD, LocalAddress)
          .F(ZKCD, BatchHeartbeat)
          .FL(ZKCD, HdrCompList, ZK_HDR_COMP_LIST_LENGTH)
          .FL(ZKCD, MsgCompList, ZK_MSG_COMP_LIST_LENGTH)
          .F(ZKCD, CLWLChannelRank)
          .F(ZKCD, CLWLChannelPriority)
          .F(ZKCD, CLWLChannelWeight)
          .FP(ZKCD, ChannelMonitoring, "ZKMON_")
          .FP(ZKCD, ChannelStatistics, "ZKMON_")
          .F(ZKCD, SharingConversations)
          .FP(ZKCD, PropertyControl, "ZKPROP_")
          .F(ZKCD, MaxInstances)
          .F(ZKCD, MaxInstancesPerClient)
          .F(ZKCD, ClientChannelWeight)
          .FP(ZKCD, ConnectionAffinity, "ZKCAFTY_")
          .F(ZKCD, BatchDataLimit)
          .FP(ZKCD, UseDLQ, "ZKUSEDLQ_")
          .FP(ZKCD, DefReconnect, "ZKRCN_")
          .done());
  all.push_back(Builder("ZKSCO", "sco", sizeof(ZKSCO),
                        {ZKSCO_LENGTH_1, ZKSCO_LENGTH_2, ZKSCO_LENGTH_3, ZKSCO_LENGTH_4})
                    .F(ZKSCO, StrucId)
                    .F(ZKSCO, Version)
                    .F(ZKSCO, KeyRepository)
                    .F(ZKSCO, CryptoHardware)
                    .F(ZKSCO, AuthInfoRecCount)
                    .F(ZKSCO, AuthInfoRecOffset)
                    .F(ZKSCO, AuthInfoRecPtr)
                    .F(ZKSCO, KeyResetCount)
                    .FP(ZKSCO, FipsRequired, "ZKSSL_")
                    .FL(ZKSCO, EncryptionPolicySuiteB, ZK_SUITE_B_SIZE)
                    .F(ZKSCO, CertificateValPolicy)
                    .done());
  all.push_back(Builder("ZKAIR", "air", sizeof(ZKAIR), {ZKAIR_LENGTH_1, ZKAIR_LENGTH_2})
                    .F(ZKAIR, StrucId)
                    .F(ZKAIR, Version)
                    .FP(ZKAIR, AuthInfoType, "ZKAIT_")
                    .F(ZKAIR, AuthInfoConnName)
                    .F(ZKAIR, LDAPUserNamePtr)
                    .F(ZKAIR, LDAPUserNameOffset)
                    .F(ZKAIR, LDAPUserNameLength)
                    .F(ZKAIR, LDAPPassword)
                    .F(ZKAIR, OCSPResponderURL)
                    .done());
  all.push_back(Builder("ZKCSP", "csp", sizeof(ZKCSP))
                    .F(ZKCSP, StrucId)
                    .F(ZKCSP, Version)
                    .FP(ZKCSP, AuthenticationType, "ZKCSP_AUTH_")
                    .F(ZKCSP, Reserved1)
                    .F(ZKCSP, CSPUserIdPtr)
                    .F(ZKCSP, CSPUserIdOffset)
                    .F(ZKCSP, CSPUserIdLength)
                    .F(ZKCSP, Reserved2)
                    .F(ZKCSP, CSPPasswordPtr)
                    .F(ZKCSP, CSPPasswordOffset)
                    .F(ZKCSP, CSPPasswordLength)
                    .done());
  all.push_back(Builder("ZKSD", "sd", sizeof(ZKSD))
                    .F(ZKSD, StrucId)
                    .F(ZKSD, Version)
                    .FH(ZKSD, Options, "ZKSO_")
                    .F(ZKSD, ObjectName)
                    .F(ZKSD, AlternateUserId)
                    .F(ZKSD, AlternateSecurityId)
                    .F(ZKSD, SubExpiry)
                    .FV(ZKSD, ObjectString)
                    .FV(ZKSD, SubName)
                    .FV(ZKSD, SubUserData)
                    .F(ZKSD, SubCorrelId)
                    .FP(ZKSD, PubPriority, "ZKPRI_")
                    .F(ZKSD, PubAccountingToken)
                    .F(ZKSD, PubApplIdentityData)
                    .FV(ZKSD, SelectionString)
                    .F(ZKSD, SubLevel)
                    .FV(ZKSD, ResObjectString)
                    .done());
  all.push_back(Builder("ZKSRO", "sro", sizeof(ZKSRO))
                    .F(ZKSRO, StrucId)
                    .F(ZKSRO, Version)
                    .FH(ZKSRO, Options, "ZKSRO_")
                    .F(ZKSRO, NumPubs)
                    .done());
  all.push_back(Builder("ZKSTS", "sts", sizeof(ZKSTS), {ZKSTS_LENGTH_1, ZKSTS_LENGTH_2})
                    .F(ZKSTS, StrucId)
                    .F(ZKSTS, Version)
                    .FP(ZKSTS, CompCode, "ZKCC_")
                    .FP(ZKSTS, Reason, "ZKRC_")
                    .F(ZKSTS, PutSuccessCount)
                    .F(ZKSTS, PutWarningCount)
                    .F(ZKSTS, PutFailureCount)
                    .FP(ZKSTS, ObjectType, "ZKOT_")
                    .F(ZKSTS, ObjectName)
                    .F(ZKSTS, ObjectQMgrName)
                    .F(ZKSTS, ResolvedObjectName)
                    .F(ZKSTS, ResolvedQMgrName)
                    .FV(ZKSTS, ObjectString)
                    .FV(ZKSTS, SubName)
                    .FH(ZKSTS, OpenOptions, "ZKOO_")
                    .FH(ZKSTS, SubOptions, "ZKSO_")
                    .done());
  all.push_back(Builder("ZKCTLO", "ctlo", sizeof(ZKCTLO))
                    .F(ZKCTLO, StrucId)
                    .F(ZKCTLO, Version)
                    .FH(ZKCTLO, Options, "ZKCTLO_")
                    .F(ZKCTLO, Reserved)
                    .F(ZKCTLO, ConnectionArea)
                    .done());
  all.push_back(Builder("ZKCBD", "cbd", sizeof(ZKCBD))
                    .F(ZKCBD, StrucId)
                    .F(ZKCBD, Version)
                    .FP(ZKCBD, CallbackType, "ZKCBT_")
                    .FH(ZKCBD, Options, "ZKCBDO_")
                    .F(ZKCBD, CallbackArea)
                    .F(ZKCBD, CallbackFunction)
                    .F(ZKCBD, CallbackName)
                    .FP(ZKCBD, MaxMsgLength, "ZKCBD_")
                    .done());
  all.push_back(Builder("ZKCBC", "cbc", sizeof(ZKCBC), {ZKCBC_LENGTH_1, ZKCBC_LENGTH_2})
                    .F(ZKCBC, StrucId)
                    .F(ZKCBC, Version)
                    .FP(ZKCBC, CallType, "ZKCBCT_")
                    .F(ZKCBC, Hobj)
                    .F(ZKCBC, CallbackArea)
                    .F(ZKCBC, ConnectionArea)
                    .FP(ZKCBC, CompCode, "ZKCC_")
                    .FP(ZKCBC, Reason, "ZKRC_")
                    .FP(ZKCBC, State, "ZKCS_")
                    .F(ZKCBC, DataLength)
                    .F(ZKCBC, BufferLength)
                    .FH(ZKCBC, Flags, "ZKCBCF_")
                    .F(ZKCBC, ReconnectDelay)
                    .done());
  all.push_back(Builder("ZKXQH", "xqh", sizeof(ZKXQH))
                    .F(ZKXQH, StrucId)
                    .F(ZKXQH, Version)
                    .F(ZKXQH, RemoteQName)
                    .F(ZKXQH, RemoteQMgrName)
                    .nested("MsgDesc", offsetof(ZKXQH, MsgDesc), md1)
                    .done());
  all.push_back(Builder("ZKDH", "dh", sizeof(ZKDH))
                    .header<ZKDH>("ZKDHF_")
                    .FH(ZKDH, PutMsgRecFields, "ZKPMRF_")
                    .F(ZKDH, RecsPresent)
                    .F(ZKDH, ObjectRecOffset)
                    .F(ZKDH, PutMsgRecOffset)
                    .done());
  all.push_back(Builder("ZKRMH", "rmh", sizeof(ZKRMH))
                    .header<ZKRMH>("ZKRMHF_")
                    .F(ZKRMH, ObjectType)
                    .F(ZKRMH, ObjectInstanceId)
                    .F(ZKRMH, SrcEnvLength)
                    .F(ZKRMH, SrcEnvOffset)
                    .F(ZKRMH, SrcNameLength)
                    .F(ZKRMH, SrcNameOffset)
                    .F(ZKRMH, DestEnvLength)
                    .F(ZKRMH, DestEnvOffset)
                    .F(ZKRMH, DestNameLength)
                    .F(ZKRMH, DestNameOffset)
                    .F(ZKRMH, DataLogicalLength)
                    .F(ZKRMH, DataLogicalOffset)
                    .F(ZKRMH, DataLogicalOffset2)
                    .done());
  all.push_back(Builder("ZKDLH", "dlh", sizeof(ZKDLH))
                    .F(ZKDLH, StrucId)
                    .F(ZKDLH, Version)
                    .FP(ZKDLH, Reason, "ZKRC_")
                    .F(ZKDLH, DestQName)
                    .F(ZKDLH, DestQMgrName)
                    .FP(ZKDLH, Encoding, "ZKENC_")
                    .FP(ZKDLH, CodedCharSetId, "ZKCCSI_")
                    .F(ZKDLH, Format)
                    .FP(ZKDLH, PutApplType, "ZKAT_")
                    .F(ZKDLH, PutApplName)
                    .F(ZKDLH, PutDate)
                    .F(ZKDLH, PutTime)
                    .done());
  all.push_back(Builder("ZKRFH", "rfh", sizeof(ZKRFH)).header<ZKRFH>("ZKRFH_").done());
  all.push_back(Builder("ZKRFH2", "rfh2", sizeof(ZKRFH2))
                    .header<ZKRFH2>("ZKRFH_")
                    .FP(ZKRFH2, NameValueCCSID, "ZKCCSI_")
                    .done());
  all.push_back(Builder("ZKTM", "tm", sizeof(ZKTM))
                    .F(ZKTM, StrucId)
                    .F(ZKTM, Version)
                    .F(ZKTM, QName)
                    .F(ZKTM, ProcessName)
                    .F(ZKTM, TriggerData)
                    .FP(ZKTM, ApplType, "ZKAT_")
                    .F(ZKTM, ApplId)
                    .F(ZKTM, EnvData)
                    .F(ZKTM, UserData)
                    .done());
  StructDef cfh = Builder("ZKCFH", "cfh", sizeof(ZKCFH), {}, 8)
                      .FP(ZKCFH, Type, "ZKCFT_")
                      .F(ZKCFH, StrucLength)
                      .F(ZKCFH, Version)
                      .FP(ZKCFH, Command, "ZKCMD_")
                      .F(ZKCFH, MsgSeqNumber)
                      .FP(ZKCFH, Control, "ZKCFC_")
                      .FP(ZKCFH, CompCode, "ZKCC_")
                      .FP(ZKCFH, Reason, "ZKRC_")
                      .F(ZKCFH, ParameterCount)
                      .done();
  all.push_back(cfh);
  all.push_back(Builder("ZKEPH", "eph", sizeof(ZKEPH))
                    .header<ZKEPH>("ZKEPH_")
                    .nested("PCFHeader", offsetof(ZKEPH, PCFHeader), cfh)
                    .done());
  all.push_back(Builder("ZKXID32", "xid32", sizeof(ZKXID32), {}, -1).xid<ZKXID32>().done());
  all.push_back(Builder("ZKXID64", "xid64", sizeof(ZKXID64), {}, -1).xid<ZKXID64>().done());
  return all;
}

int hexDigit(char ch) {
  if (ch >= '0' && ch <= '9') {
    return ch - '0';
  }
  if (ch >= 'a' && ch <= 'f') {
    return ch - 'a' + 10;
  }
  if (ch >= 'A' && ch <= 'F') {
    return ch - 'A' + 10;
  }
  return -1;
}

} // namespace

bool isHexForm(const std::string &text) {
  return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

bool hexBytes(const std::string &text, std::vector<uint8_t> &bytes) {
  bytes.clear();
  std::string digits = text.substr(2);
  if (digits.size() % 2 != 0) {
    digits = "0" + digits;
  }
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    int hi = hexDigit(digits[i]);
    int lo = hexDigit(digits[i + 1]);
    if (hi < 0 || lo < 0) {
      return false;
    }
    bytes.push_back(static_cast<uint8_t>(hi * 16 + lo));
  }
  return true;
}

uint32_t StructDef::lengthOf(const void *structure) const {
  if (lengths.empty() || versionOffset < 0) {
    return size;
  }
  ZKLONG version = 0;
  std::memcpy(&version, static_cast<const char *>(structure) + versionOffset, sizeof version);
  if (version < 1) {
    return lengths.front();
  }
  if (static_cast<std::size_t>(version) > lengths.size()) {
    return lengths.back();
  }
  return lengths[version - 1];
}

const FieldDef *StructDef::find(std::string_view fieldName) const {
  for (const FieldDef &f : fields) {
    if (f.name.size() == fieldName.size() &&
        strncasecmp(f.name.c_str(), fieldName.data(), fieldName.size()) == 0) {
      return &f;
    }
  }
  return nullptr;
}

const FieldDef *StructDef::at(uint32_t offset) const {
  for (const FieldDef &f : fields) {
    if (offset >= f.offset && offset < f.offset + f.size) {
      return &f;
    }
  }
  return nullptr;
}

const std::vector<StructDef> &allStructs() {
  static const std::vector<StructDef> all = buildAll();
  return all;
}

const StructDef *findStruct(std::string_view keyOrName) {
  for (const StructDef &s : allStructs()) {
    if ((s.key.size() == keyOrName.size() &&
         strncasecmp(s.key.c_str(), keyOrName.data(), keyOrName.size()) == 0) ||
        s.name == keyOrName) {
      return &s;
    }
  }
  return nullptr;
}

const StructDef &structNamed(std::string_view name) {
  const StructDef *s = findStruct(name);
  if (s == nullptr) {
    std::abort();
  }
  return *s;
}

std::string hexText(const void *data, std::size_t length) {
  static const char digits[] = "0123456789ABCDEF";
  const auto *p = static_cast<const unsigned char *>(data);
  std::string out;
  out.reserve(length * 2);
  for (std::size_t i = 0; i < length; ++i) {
    out += digits[p[i] >> 4];
    out += digits[p[i] & 15];
  }
  return out;
}

std::string fieldValueText(const FieldDef &field, const void *structure) {
  const char *p = static_cast<const char *>(structure) + field.offset;
  switch (field.kind) {
  case FieldKind::Int32: {
    ZKLONG v = 0;
    std::memcpy(&v, p, 4);
    if (field.hex) {
      char text[16];
      std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(v));
      return text;
    }
    return std::to_string(v);
  }
  case FieldKind::Int64: {
    ZKINT64 v = 0;
    std::memcpy(&v, p, 8);
    return std::to_string(v);
  }
  case FieldKind::Pointer: {
    void *v = nullptr;
    std::memcpy(&v, p, sizeof v);
    return v == nullptr ? "null" : "set";
  }
  case FieldKind::Chars: {
    std::size_t n = field.size;
    while (n > 0 && (p[n - 1] == ' ' || p[n - 1] == '\0')) {
      --n;
    }
    std::string out = "'";
    for (std::size_t i = 0; i < n; ++i) {
      unsigned char ch = static_cast<unsigned char>(p[i]);
      out += (ch >= 0x20 && ch < 0x7f) ? static_cast<char>(ch) : '.';
    }
    return out + "'";
  }
  case FieldKind::Bytes:
    return hexText(p, field.size);
  }
  return "?";
}

bool setFieldValue(const FieldDef &field, void *structure, const std::string &text,
                   const ByteResolver &resolver, std::string &error) {
  char *p = static_cast<char *>(structure) + field.offset;
  switch (field.kind) {
  case FieldKind::Int32: {
    ZKLONG v = 0;
    if (!parseLong(text, field.prefix, v, error)) {
      error = field.name + ": " + error;
      return false;
    }
    std::memcpy(p, &v, 4);
    return true;
  }
  case FieldKind::Int64: {
    char *end = nullptr;
    long long v = std::strtoll(text.c_str(), &end, 0);
    if (text.empty() || *end != '\0') {
      error = field.name + ": '" + text + "' is not a number";
      return false;
    }
    ZKINT64 w = v;
    std::memcpy(p, &w, 8);
    return true;
  }
  case FieldKind::Pointer:
    if (text == "null" || text == "0") {
      std::memset(p, 0, sizeof(void *));
      return true;
    }
    error = field.name + ": a pointer can only be set to null";
    return false;
  case FieldKind::Chars: {
    // Text, or any bytes in the 0x form (a NUL or an unknown status byte
    // that no text can hold); blank-padded either way.
    std::vector<uint8_t> bytes;
    if (isHexForm(text)) {
      if (!hexBytes(text, bytes)) {
        error = field.name + ": '" + text + "' is not hexadecimal";
        return false;
      }
    } else {
      bytes.assign(text.begin(), text.end());
    }
    if (bytes.size() > field.size) {
      error = field.name + ": '" + text + "' is longer than " + std::to_string(field.size) +
              " characters";
      return false;
    }
    std::memset(p, ' ', field.size);
    if (!bytes.empty()) {
      std::memcpy(p, bytes.data(), bytes.size());
    }
    return true;
  }
  case FieldKind::Bytes: {
    std::vector<uint8_t> bytes;
    if (!text.empty() && text[0] == '@') {
      if (!resolver || !resolver(text.substr(1), bytes)) {
        error = field.name + ": nothing saved as '" + text.substr(1) + "'";
        return false;
      }
    } else if (isHexForm(text)) {
      if (!hexBytes(text, bytes)) {
        error = field.name + ": '" + text + "' is not hexadecimal";
        return false;
      }
    } else {
      bytes.assign(text.begin(), text.end());
    }
    if (bytes.size() > field.size) {
      error = field.name + ": " + std::to_string(bytes.size()) + " bytes do not fit in " +
              std::to_string(field.size);
      return false;
    }
    std::memset(p, 0, field.size);
    // An empty value leaves the field all zeros; an empty vector's data()
    // may be null, which memcpy must not be given even for no bytes.
    if (!bytes.empty()) {
      std::memcpy(p, bytes.data(), bytes.size());
    }
    return true;
  }
  }
  return false;
}

} // namespace zkqm
