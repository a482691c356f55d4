// Layout of the platform structures as the trace reads them: the offsets of
// the fields that the dumps and formatters depend on, the lengths by
// version, and the identity and defaults that the initializers carry.
#include "zk/zk.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

// Call forms that share one signature, so that one function can be
// registered for both.
static_assert(std::is_same_v<ZK_GET_EXIT, ZK_DATA_CONV_ON_GET_EXIT>);
static_assert(std::is_same_v<ZK_CONNX_EXIT, ZK_CONN_EXIT>);

namespace {

std::string Text(const char *p, size_t n) {
  return std::string(p, n);
}

bool AllBlanks(const char *p, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    if (p[i] != ' ') {
      return false;
    }
  }
  return true;
}

bool AllZero(const unsigned char *p, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    if (p[i] != 0) {
      return false;
    }
  }
  return true;
}

} // namespace

TEST(ZkLayout, MessageDescriptorFields) {
  EXPECT_EQ(offsetof(ZKMD, Version), 4u);
  EXPECT_EQ(offsetof(ZKMD, Encoding), 24u);
  EXPECT_EQ(offsetof(ZKMD, CodedCharSetId), 28u);
  EXPECT_EQ(offsetof(ZKMD, Format), 32u);
  EXPECT_EQ(offsetof(ZKMD, Persistence), 44u);
  EXPECT_EQ(offsetof(ZKMD, MsgId), 48u);
  EXPECT_EQ(offsetof(ZKMD, CorrelId), 72u);
  EXPECT_EQ(offsetof(ZKMD, ReplyToQ), 100u);
  EXPECT_EQ(offsetof(ZKMD, UserIdentifier), 196u);
  EXPECT_EQ(offsetof(ZKMD, PutApplType), 272u);
  EXPECT_EQ(offsetof(ZKMD, ApplOriginData), 320u);
  EXPECT_EQ(offsetof(ZKMD, GroupId), static_cast<size_t>(ZKMD_LENGTH_1));
  EXPECT_EQ(offsetof(ZKMD, OriginalLength), 360u);
  EXPECT_EQ(sizeof(ZKMD), 364u);
  EXPECT_EQ(sizeof(ZKMD1), 324u);
  // The version-1 form is field for field the first part of the full one.
  EXPECT_EQ(offsetof(ZKMD1, Format), offsetof(ZKMD, Format));
  EXPECT_EQ(offsetof(ZKMD1, ApplOriginData), offsetof(ZKMD, ApplOriginData));
  EXPECT_EQ(sizeof(ZKMDE), 72u);
  EXPECT_EQ(offsetof(ZKMDE, Format), 20u);
  EXPECT_EQ(offsetof(ZKMDE, GroupId), 32u);
}

TEST(ZkLayout, ObjectDescriptorVersions) {
  EXPECT_EQ(offsetof(ZKOD, ObjectType), 8u);
  EXPECT_EQ(offsetof(ZKOD, ObjectName), 12u);
  EXPECT_EQ(offsetof(ZKOD, RecsPresent), 168u);
  EXPECT_EQ(offsetof(ZKOD, ObjectRecPtr), 192u);
  EXPECT_EQ(offsetof(ZKOD, AlternateSecurityId), 200u);
  EXPECT_EQ(offsetof(ZKOD, ObjectString), 336u);
  EXPECT_EQ(offsetof(ZKOD, SelectionString), 356u);
  EXPECT_EQ(offsetof(ZKOD, ResObjectString), 376u);
  EXPECT_EQ(offsetof(ZKOD, ResolvedType), 396u);
  EXPECT_EQ(sizeof(ZKOD), 400u);
  EXPECT_EQ(sizeof(ZKOR), 96u);
  EXPECT_EQ(sizeof(ZKRR), 8u);
}

TEST(ZkLayout, PutAndGetOptions) {
  EXPECT_EQ(offsetof(ZKPMO, ResolvedQName), 32u);
  EXPECT_EQ(offsetof(ZKPMO, RecsPresent), 128u);
  EXPECT_EQ(offsetof(ZKPMO, PutMsgRecPtr), 144u);
  EXPECT_EQ(offsetof(ZKPMO, OriginalMsgHandle), 152u);
  EXPECT_EQ(offsetof(ZKPMO, PubLevel), 172u);
  EXPECT_EQ(sizeof(ZKPMO), 176u);
  EXPECT_EQ(sizeof(ZKPMR), 108u);
  EXPECT_EQ(offsetof(ZKGMO, ResolvedQName), 24u);
  EXPECT_EQ(offsetof(ZKGMO, GroupStatus), 76u);
  EXPECT_EQ(offsetof(ZKGMO, Segmentation), 78u);
  EXPECT_EQ(offsetof(ZKGMO, MsgToken), 80u);
  EXPECT_EQ(offsetof(ZKGMO, ReturnedLength), 96u);
  // The 64-bit handle sits on a 4-byte boundary in this ABI.
  EXPECT_EQ(offsetof(ZKGMO, MsgHandle), 104u);
  EXPECT_EQ(sizeof(ZKGMO), 112u);
}

TEST(ZkLayout, ConnectOptionsAndChannelDefinition) {
  EXPECT_EQ(offsetof(ZKCNO, ClientConnOffset), 12u);
  EXPECT_EQ(offsetof(ZKCNO, ClientConnPtr), 16u);
  EXPECT_EQ(offsetof(ZKCNO, ConnTag), 20u);
  EXPECT_EQ(offsetof(ZKCNO, SSLConfigPtr), 148u);
  EXPECT_EQ(offsetof(ZKCNO, SSLConfigOffset), 152u);
  EXPECT_EQ(offsetof(ZKCNO, ConnectionId), 156u);
  EXPECT_EQ(offsetof(ZKCNO, SecurityParmsPtr), 184u);
  EXPECT_EQ(sizeof(ZKCNO), 188u);

  // The channel definition has its version after the 20-byte name.
  EXPECT_EQ(offsetof(ZKCD, Version), 20u);
  EXPECT_EQ(offsetof(ZKCD, ChannelType), 24u);
  EXPECT_EQ(offsetof(ZKCD, MCAType), 1020u);
  EXPECT_EQ(offsetof(ZKCD, ConnectionName), 1024u);
  EXPECT_EQ(offsetof(ZKCD, MsgRetryExit), 1312u);
  EXPECT_EQ(offsetof(ZKCD, HeartbeatInterval), 1480u);
  EXPECT_EQ(offsetof(ZKCD, ClusterPtr), static_cast<size_t>(ZKCD_LENGTH_4));
  EXPECT_EQ(offsetof(ZKCD, LongMCAUserIdLength), 1552u);
  EXPECT_EQ(offsetof(ZKCD, SSLCipherSpec), 1648u);
  EXPECT_EQ(offsetof(ZKCD, HdrCompList), 1748u);
  EXPECT_EQ(offsetof(ZKCD, MsgCompList), 1756u);
  EXPECT_EQ(offsetof(ZKCD, SharingConversations), 1840u);
  EXPECT_EQ(offsetof(ZKCD, BatchDataLimit), 1864u);
  EXPECT_EQ(sizeof(ZKCD), 1876u);

  EXPECT_EQ(offsetof(ZKSCO, AuthInfoRecCount), 520u);
  EXPECT_EQ(offsetof(ZKSCO, AuthInfoRecPtr), 528u);
  EXPECT_EQ(sizeof(ZKSCO), 560u);
  EXPECT_EQ(offsetof(ZKAIR, LDAPUserNamePtr), 276u);
  EXPECT_EQ(offsetof(ZKAIR, LDAPUserNameLength), 284u);
  EXPECT_EQ(offsetof(ZKAIR, OCSPResponderURL), 320u);
  EXPECT_EQ(sizeof(ZKAIR), 576u);
  EXPECT_EQ(offsetof(ZKCSP, CSPUserIdPtr), 16u);
  EXPECT_EQ(offsetof(ZKCSP, CSPPasswordPtr), 36u);
  EXPECT_EQ(sizeof(ZKCSP), 48u);
  EXPECT_EQ(sizeof(ZKBO), 12u);
}

TEST(ZkLayout, SubscriptionStatusControlCallback) {
  EXPECT_EQ(offsetof(ZKSD, ObjectName), 12u);
  EXPECT_EQ(offsetof(ZKSD, ObjectString), 116u);
  EXPECT_EQ(offsetof(ZKSD, SubCorrelId), 176u);
  EXPECT_EQ(offsetof(ZKSD, ResObjectString), 292u);
  EXPECT_EQ(sizeof(ZKSD), 312u);
  EXPECT_EQ(sizeof(ZKSRO), 16u);
  EXPECT_EQ(offsetof(ZKSTS, ObjectName), 32u);
  EXPECT_EQ(offsetof(ZKSTS, ObjectString), 224u);
  EXPECT_EQ(offsetof(ZKSTS, SubOptions), 268u);
  EXPECT_EQ(sizeof(ZKSTS), 272u);
  EXPECT_EQ(offsetof(ZKCTLO, ConnectionArea), 16u);
  EXPECT_EQ(sizeof(ZKCTLO), 20u);
  EXPECT_EQ(offsetof(ZKCBD, CallbackFunction), 20u);
  EXPECT_EQ(offsetof(ZKCBD, MaxMsgLength), 152u);
  EXPECT_EQ(sizeof(ZKCBD), 156u);
  EXPECT_EQ(offsetof(ZKCBC, CompCode), 24u);
  EXPECT_EQ(offsetof(ZKCBC, DataLength), 36u);
  EXPECT_EQ(offsetof(ZKCBC, ReconnectDelay), 48u);
  EXPECT_EQ(sizeof(ZKCBC), 52u);
}

TEST(ZkLayout, MessageHeaders) {
  EXPECT_EQ(offsetof(ZKXQH, RemoteQName), 8u);
  EXPECT_EQ(offsetof(ZKXQH, MsgDesc), 104u);
  EXPECT_EQ(offsetof(ZKXQH, MsgDesc) + offsetof(ZKMD1, Format), 136u);
  EXPECT_EQ(sizeof(ZKXQH), 428u);
  EXPECT_EQ(offsetof(ZKDH, Format), 20u);
  EXPECT_EQ(offsetof(ZKDH, ObjectRecOffset), 40u);
  EXPECT_EQ(sizeof(ZKDH), 48u);
  EXPECT_EQ(offsetof(ZKRMH, ObjectInstanceId), 40u);
  EXPECT_EQ(offsetof(ZKRMH, DataLogicalOffset2), 104u);
  EXPECT_EQ(sizeof(ZKRMH), 108u);
  EXPECT_EQ(offsetof(ZKDLH, Format), 116u);
  EXPECT_EQ(offsetof(ZKDLH, PutTime), 164u);
  EXPECT_EQ(sizeof(ZKDLH), 172u);
  EXPECT_EQ(offsetof(ZKRFH, Flags), 28u);
  EXPECT_EQ(sizeof(ZKRFH), 32u);
  EXPECT_EQ(offsetof(ZKRFH2, NameValueCCSID), 32u);
  EXPECT_EQ(sizeof(ZKRFH2), 36u);
  EXPECT_EQ(offsetof(ZKTM, ApplId), 172u);
  EXPECT_EQ(sizeof(ZKTM), 684u);
  EXPECT_EQ(offsetof(ZKEPH, PCFHeader), 32u);
  EXPECT_EQ(sizeof(ZKEPH), 68u);
}

TEST(ZkLayout, CommandFormat) {
  EXPECT_EQ(offsetof(ZKCFH, Reason), 28u);
  EXPECT_EQ(offsetof(ZKCFH, ParameterCount), 32u);
  EXPECT_EQ(sizeof(ZKCFH), 36u);
  EXPECT_EQ(sizeof(ZKCFIN), 16u);
  EXPECT_EQ(sizeof(ZKCFST), 20u);
  EXPECT_EQ(sizeof(ZKCFIL), 16u);
  EXPECT_EQ(sizeof(ZKCFSL), 24u);
  EXPECT_EQ(sizeof(ZKCFBS), 16u);
  EXPECT_EQ(sizeof(ZKCFIF), 20u);
  EXPECT_EQ(sizeof(ZKCFSF), 24u);
  EXPECT_EQ(sizeof(ZKCFBF), 20u);
  EXPECT_EQ(sizeof(ZKCFGR), 16u);
  EXPECT_EQ(offsetof(ZKCFIN64, Value), 16u);
  EXPECT_EQ(sizeof(ZKCFIN64), 24u);
  EXPECT_EQ(sizeof(ZKCFIL64), 16u);
}

TEST(ZkLayout, TransactionIdentifiers) {
  EXPECT_EQ(offsetof(ZKXID32, data), 12u);
  EXPECT_EQ(sizeof(ZKXID32), 140u);
  // The 64-bit words at 8 and 16 are what tells the two layouts apart.
  EXPECT_EQ(offsetof(ZKXID64, gtrid_length), 8u);
  EXPECT_EQ(offsetof(ZKXID64, bqual_length), 16u);
  EXPECT_EQ(offsetof(ZKXID64, data), 24u);
  EXPECT_EQ(sizeof(ZKXID64), 152u);
}

TEST(ZkDefaults, IdentityAndVersion) {
  const ZKMD md = ZKMD_DEFAULT;
  EXPECT_EQ(Text(md.StrucId, 4), ZKMD_STRUC_ID);
  EXPECT_EQ(md.Version, ZKMD_VERSION_1);
  const ZKMD1 md1 = ZKMD1_DEFAULT;
  EXPECT_EQ(Text(md1.StrucId, 4), "MD  ");
  EXPECT_EQ(md1.Version, 1);
  const ZKMDE mde = ZKMDE_DEFAULT;
  EXPECT_EQ(Text(mde.StrucId, 4), "MDE ");
  EXPECT_EQ(mde.Version, 2);
  EXPECT_EQ(mde.StrucLength, 72);
  const ZKOD od = ZKOD_DEFAULT;
  EXPECT_EQ(Text(od.StrucId, 4), "OD  ");
  EXPECT_EQ(od.Version, 1);
  const ZKPMO pmo = ZKPMO_DEFAULT;
  EXPECT_EQ(Text(pmo.StrucId, 4), "PMO ");
  EXPECT_EQ(pmo.Version, 1);
  const ZKGMO gmo = ZKGMO_DEFAULT;
  EXPECT_EQ(Text(gmo.StrucId, 4), "GMO ");
  EXPECT_EQ(gmo.Version, 1);
  const ZKBO bo = ZKBO_DEFAULT;
  EXPECT_EQ(Text(bo.StrucId, 4), "BO  ");
  EXPECT_EQ(bo.Version, 1);
  const ZKCNO cno = ZKCNO_DEFAULT;
  EXPECT_EQ(Text(cno.StrucId, 4), "CNO ");
  EXPECT_EQ(cno.Version, 1);
  const ZKCD cd = ZKCD_DEFAULT;
  EXPECT_TRUE(AllBlanks(cd.ChannelName, sizeof cd.ChannelName));
  EXPECT_EQ(cd.Version, ZKCD_CURRENT_VERSION);
  EXPECT_EQ(cd.StrucLength, ZKCD_CURRENT_LENGTH);
  const ZKSCO sco = ZKSCO_DEFAULT;
  EXPECT_EQ(Text(sco.StrucId, 4), "SCO ");
  EXPECT_EQ(sco.Version, 1);
  const ZKAIR air = ZKAIR_DEFAULT;
  EXPECT_EQ(Text(air.StrucId, 4), "AIR ");
  EXPECT_EQ(air.Version, 1);
  const ZKCSP csp = ZKCSP_DEFAULT;
  EXPECT_EQ(Text(csp.StrucId, 4), "CSP ");
  EXPECT_EQ(csp.Version, 1);
  const ZKSD sd = ZKSD_DEFAULT;
  EXPECT_EQ(Text(sd.StrucId, 4), "SD  ");
  EXPECT_EQ(sd.Version, 1);
  const ZKSRO sro = ZKSRO_DEFAULT;
  EXPECT_EQ(Text(sro.StrucId, 4), "SRO ");
  EXPECT_EQ(sro.Version, 1);
  const ZKSTS sts = ZKSTS_DEFAULT;
  EXPECT_EQ(Text(sts.StrucId, 4), "STAT");
  EXPECT_EQ(sts.Version, 1);
  const ZKCTLO ctlo = ZKCTLO_DEFAULT;
  EXPECT_EQ(Text(ctlo.StrucId, 4), "CTLO");
  EXPECT_EQ(ctlo.Version, 1);
  const ZKCBD cbd = ZKCBD_DEFAULT;
  EXPECT_EQ(Text(cbd.StrucId, 4), "CBD ");
  EXPECT_EQ(cbd.Version, 1);
  const ZKCBC cbc = ZKCBC_DEFAULT;
  EXPECT_EQ(Text(cbc.StrucId, 4), "CBC ");
  EXPECT_EQ(cbc.Version, 1);
  const ZKXQH xqh = ZKXQH_DEFAULT;
  EXPECT_EQ(Text(xqh.StrucId, 4), "XQH ");
  EXPECT_EQ(xqh.Version, 1);
  EXPECT_EQ(Text(xqh.MsgDesc.StrucId, 4), "MD  ");
  const ZKDH dh = ZKDH_DEFAULT;
  EXPECT_EQ(Text(dh.StrucId, 4), "DH  ");
  EXPECT_EQ(dh.StrucLength, 48);
  const ZKRMH rmh = ZKRMH_DEFAULT;
  EXPECT_EQ(Text(rmh.StrucId, 4), "RMH ");
  EXPECT_EQ(rmh.StrucLength, 108);
  const ZKDLH dlh = ZKDLH_DEFAULT;
  EXPECT_EQ(Text(dlh.StrucId, 4), "DLH ");
  EXPECT_EQ(dlh.Version, 1);
  const ZKRFH rfh = ZKRFH_DEFAULT;
  EXPECT_EQ(Text(rfh.StrucId, 4), "RFH ");
  EXPECT_EQ(rfh.Version, 1);
  EXPECT_EQ(rfh.StrucLength, 32);
  const ZKRFH2 rfh2 = ZKRFH2_DEFAULT;
  EXPECT_EQ(Text(rfh2.StrucId, 4), "RFH ");
  EXPECT_EQ(rfh2.Version, 2);
  EXPECT_EQ(rfh2.StrucLength, 36);
  const ZKTM tm = ZKTM_DEFAULT;
  EXPECT_EQ(Text(tm.StrucId, 4), "TM  ");
  EXPECT_EQ(tm.Version, 1);
  const ZKEPH eph = ZKEPH_DEFAULT;
  EXPECT_EQ(Text(eph.StrucId, 4), "EPH ");
  EXPECT_EQ(eph.StrucLength, 68);
  EXPECT_EQ(eph.PCFHeader.StrucLength, 36);
  const ZKCFH cfh = ZKCFH_DEFAULT;
  EXPECT_EQ(cfh.StrucLength, 36);
  EXPECT_EQ(cfh.Version, 1);
}

// The initializers give every field in order; a value that slid into the
// neighbouring field would show up here.
TEST(ZkDefaults, FieldsLandInTheirPlaces) {
  const ZKMD md = ZKMD_DEFAULT;
  EXPECT_EQ(md.MsgType, 8);
  EXPECT_EQ(md.Expiry, -1);
  EXPECT_EQ(md.Encoding, 546);
  EXPECT_TRUE(AllBlanks(md.Format, sizeof md.Format));
  EXPECT_EQ(md.Priority, -1);
  EXPECT_EQ(md.Persistence, 2);
  EXPECT_TRUE(AllZero(md.MsgId, sizeof md.MsgId));
  EXPECT_TRUE(AllBlanks(md.ReplyToQ, sizeof md.ReplyToQ));
  EXPECT_TRUE(AllBlanks(md.ApplOriginData, sizeof md.ApplOriginData));
  EXPECT_EQ(md.MsgSeqNumber, 1);
  EXPECT_EQ(md.OriginalLength, -1);

  const ZKOD od = ZKOD_DEFAULT;
  EXPECT_EQ(od.ObjectType, 1);
  EXPECT_EQ(Text(od.DynamicQName, 4), "ZK.*");
  EXPECT_TRUE(AllBlanks(od.DynamicQName + 4, sizeof od.DynamicQName - 4));
  EXPECT_EQ(od.ObjectString.VSCCSID, -3);
  EXPECT_EQ(od.ResObjectString.VSCCSID, -3);
  EXPECT_EQ(od.ResolvedType, 0);

  const ZKPMO pmo = ZKPMO_DEFAULT;
  EXPECT_EQ(pmo.Timeout, -1);
  EXPECT_TRUE(AllBlanks(pmo.ResolvedQMgrName, sizeof pmo.ResolvedQMgrName));
  EXPECT_EQ(pmo.PubLevel, 9);

  const ZKGMO gmo = ZKGMO_DEFAULT;
  EXPECT_EQ(gmo.MatchOptions, 3);
  EXPECT_EQ(gmo.GroupStatus, ' ');
  EXPECT_EQ(gmo.ReturnedLength, -1);
  EXPECT_EQ(gmo.MsgHandle, 0);

  const ZKCD cd = ZKCD_DEFAULT;
  EXPECT_EQ(cd.TransportType, 2);
  EXPECT_EQ(cd.BatchSize, 50);
  EXPECT_EQ(cd.MaxMsgLength, 4194304);
  EXPECT_EQ(cd.MCAType, 1);
  EXPECT_TRUE(AllBlanks(cd.ConnectionName, sizeof cd.ConnectionName));
  EXPECT_EQ(cd.MsgRetryInterval, 1000);
  EXPECT_EQ(cd.ExitNameLength, ZK_EXIT_NAME_LENGTH);
  EXPECT_EQ(cd.ExitDataLength, ZK_EXIT_DATA_LENGTH);
  EXPECT_EQ(cd.KeepAliveInterval, -1);
  EXPECT_EQ(cd.HdrCompList[0], 0);
  EXPECT_EQ(cd.HdrCompList[1], -1);
  EXPECT_EQ(cd.MsgCompList[15], -1);
  EXPECT_EQ(cd.CLWLChannelWeight, 50);
  EXPECT_EQ(cd.ConnectionAffinity, 1);
  EXPECT_EQ(cd.BatchDataLimit, 5000);
  EXPECT_EQ(cd.UseDLQ, 2);
  EXPECT_EQ(cd.DefReconnect, 0);

  const ZKSCO sco = ZKSCO_DEFAULT;
  EXPECT_EQ(sco.EncryptionPolicySuiteB[0], 1);
  EXPECT_EQ(sco.EncryptionPolicySuiteB[3], 0);

  const ZKSD sd = ZKSD_DEFAULT;
  EXPECT_EQ(sd.SubExpiry, -1);
  EXPECT_EQ(sd.PubPriority, -1);
  EXPECT_EQ(sd.SubLevel, 1);
  EXPECT_EQ(sd.ResObjectString.VSCCSID, -3);

  const ZKCBD cbd = ZKCBD_DEFAULT;
  EXPECT_EQ(cbd.CallbackType, 1);
  EXPECT_TRUE(AllBlanks(cbd.CallbackName, sizeof cbd.CallbackName));
  EXPECT_EQ(cbd.MaxMsgLength, -1);

  const ZKXQH xqh = ZKXQH_DEFAULT;
  EXPECT_EQ(xqh.MsgDesc.Version, 1);
  EXPECT_EQ(xqh.MsgDesc.Encoding, 546);

  const ZKRFH2 rfh2 = ZKRFH2_DEFAULT;
  EXPECT_EQ(rfh2.NameValueCCSID, 1208);
  const ZKCFIN64 in64 = ZKCFIN64_DEFAULT;
  EXPECT_EQ(in64.Type, 23);
  EXPECT_EQ(in64.StrucLength, 24);
  const ZKXID64 xid = ZKXID64_DEFAULT;
  EXPECT_EQ(xid.formatID, -1);
}
