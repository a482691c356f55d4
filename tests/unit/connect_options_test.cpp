// The connect options and what they lead to, field by field: every version
// of the connect options, the channel definition, the TLS configuration
// options and the authentication information records; the security
// parameters with their user identifier and password by address and by
// offset; the option list with its standard binding; values without a name;
// and structures of a version higher than the exit knows.
#include <stdio.h>
#include <string.h>

#include "format/field_primitives.h"
#include "format/structures.h"
#include "tests/harness_text.h"
#include "tests/unit/structure_test.h"
#include "text/constant_table.h"
#include "zk/zk.h"

namespace {

struct ConnectOptions : StructureTest {};

// A distinctive address for pointer fields that are not shown.
ZKPTR FakePointer(uintptr_t value) {
  return (ZKPTR)value;
}

// Every field a distinctive value.
ZKCNO DistinctiveCno(int32_t version) {
  ZKCNO cno = ZKCNO_DEFAULT;
  cno.Version = version;
  cno.Options = ZKCNO_CLIENT_BINDING | ZKCNO_RESTRICT_CONN_TAG_QSG | ZKCNO_HANDLE_SHARE_BLOCK |
                ZKCNO_ACCOUNTING_Q_ENABLED | ZKCNO_RECONNECT_Q_MGR;
  cno.ClientConnOffset = 188;
  cno.ClientConnPtr = FakePointer(0x11223344);
  for (int i = 0; i < 128; i++) {
    cno.ConnTag[i] = (ZKBYTE)(0x30 + i % 75);
  }
  cno.SSLConfigPtr = FakePointer(0x55667788);
  cno.SSLConfigOffset = 2064;
  for (int i = 0; i < 24; i++) {
    cno.ConnectionId[i] = (ZKBYTE)(i < 8 ? 0xC0 + i : 0x61 + i);
  }
  cno.SecurityParmsOffset = 2624;
  cno.SecurityParmsPtr = FakePointer(0x99AABBCC);
  return cno;
}

ZKCD DistinctiveCd(int32_t version) {
  ZKCD cd = ZKCD_DEFAULT;
  SetBlankPadded(cd.ChannelName, sizeof cd.ChannelName, "CHL.TO.QM2");
  cd.Version = version;
  cd.ChannelType = ZKCHT_CLNTCONN;
  cd.TransportType = ZKXPT_TCP;
  SetBlankPadded(cd.Desc, sizeof cd.Desc, "Client channel of the order service");
  SetBlankPadded(cd.QMgrName, sizeof cd.QMgrName, "QM2");
  SetBlankPadded(cd.XmitQName, sizeof cd.XmitQName, "XMIT.QM2");
  SetBlankPadded(cd.ShortConnectionName, sizeof cd.ShortConnectionName, "host-a(1414)");
  SetBlankPadded(cd.MCAName, sizeof cd.MCAName, "MCA.NAME");
  SetBlankPadded(cd.ModeName, sizeof cd.ModeName, "MODE8");
  SetBlankPadded(cd.TpName, sizeof cd.TpName, "tpname/orders");
  cd.BatchSize = 51;
  cd.DiscInterval = 6001;
  cd.ShortRetryCount = 11;
  cd.ShortRetryInterval = 61;
  cd.LongRetryCount = 999;
  cd.LongRetryInterval = 1201;
  SetBlankPadded(cd.SecurityExit, sizeof cd.SecurityExit, "secexit(SecEntry)");
  SetBlankPadded(cd.MsgExit, sizeof cd.MsgExit, "msgexit(MsgEntry)");
  SetBlankPadded(cd.SendExit, sizeof cd.SendExit, "sndexit(SendEntry)");
  SetBlankPadded(cd.ReceiveExit, sizeof cd.ReceiveExit, "rcvexit(RcvEntry)");
  cd.SeqNumberWrap = 999999998;
  cd.MaxMsgLength = 4194305;
  cd.PutAuthority = ZKPA_ALTERNATE_OR_MCA;
  cd.DataConversion = ZKCDC_SENDER_CONVERSION;
  SetBlankPadded(cd.SecurityUserData, sizeof cd.SecurityUserData, "secdata");
  SetBlankPadded(cd.MsgUserData, sizeof cd.MsgUserData, "msgdata");
  SetBlankPadded(cd.SendUserData, sizeof cd.SendUserData, "senddata");
  SetBlankPadded(cd.ReceiveUserData, sizeof cd.ReceiveUserData, "rcvdata");
  SetBlankPadded(cd.UserIdentifier, sizeof cd.UserIdentifier, "cduser");
  SetBlankPadded(cd.Password, sizeof cd.Password, "cdsecret");
  SetBlankPadded(cd.MCAUserIdentifier, sizeof cd.MCAUserIdentifier, "mcauser");
  cd.MCAType = ZKMCAT_THREAD;
  // Longer than one piece of 99 characters.
  SetBlankPadded(cd.ConnectionName, sizeof cd.ConnectionName,
                 "host-a.orders.example(1414),host-b.orders.example(1415),"
                 "host-c.orders.example(1416),host-d.orders.example(1417),"
                 "host-e.orders.example(1418)");
  SetBlankPadded(cd.RemoteUserIdentifier, sizeof cd.RemoteUserIdentifier, "remuser");
  SetBlankPadded(cd.RemotePassword, sizeof cd.RemotePassword, "remsecret");
  SetBlankPadded(cd.MsgRetryExit, sizeof cd.MsgRetryExit, "retryexit(RetryEntry)");
  SetBlankPadded(cd.MsgRetryUserData, sizeof cd.MsgRetryUserData, "retrydata");
  cd.MsgRetryCount = 12;
  cd.MsgRetryInterval = 1002;
  cd.HeartbeatInterval = 301;
  cd.BatchInterval = 7;
  cd.NonPersistentMsgSpeed = ZKNPMS_NORMAL;
  cd.StrucLength = ZKCD_LENGTH_10;
  cd.ExitNameLength = 128;
  cd.ExitDataLength = 32;
  cd.MsgExitsDefined = 1;
  cd.SendExitsDefined = 2;
  cd.ReceiveExitsDefined = 3;
  cd.MsgExitPtr = FakePointer(0x10000001);
  cd.MsgUserDataPtr = FakePointer(0x10000002);
  cd.SendExitPtr = FakePointer(0x10000003);
  cd.SendUserDataPtr = FakePointer(0x10000004);
  cd.ReceiveExitPtr = FakePointer(0x10000005);
  cd.ReceiveUserDataPtr = FakePointer(0x10000006);
  cd.ClusterPtr = FakePointer(0x10000007);
  cd.ClustersDefined = 4;
  cd.NetworkPriority = 5;
  cd.LongMCAUserIdLength = 20;
  cd.LongRemoteUserIdLength = 21;
  cd.LongMCAUserIdPtr = FakePointer(0x10000008);
  cd.LongRemoteUserIdPtr = FakePointer(0x10000009);
  for (int i = 0; i < 40; i++) {
    cd.MCASecurityId[i] = (ZKBYTE)(i + 1);
    cd.RemoteSecurityId[i] = (ZKBYTE)(0x41 + i);
  }
  SetBlankPadded(cd.SSLCipherSpec, sizeof cd.SSLCipherSpec, "TLS_RSA_WITH_AES_128_CBC_SHA256");
  cd.SSLPeerNamePtr = FakePointer(0x1000000A);
  cd.SSLPeerNameLength = 17;
  cd.SSLClientAuth = ZKSCA_OPTIONAL;
  cd.KeepAliveInterval = 30;
  SetBlankPadded(cd.LocalAddress, sizeof cd.LocalAddress, "10.1.2.3(2000,2010)");
  cd.BatchHeartbeat = 250;
  cd.HdrCompList[0] = 8;
  cd.HdrCompList[1] = 0;
  const int32_t messageCompression[16] = {1,  2,  4,  3,  0x0FFFFFFF, 0,  6,  16,
                                          -1, -1, -1, -1, -1,         -1, -1, 7};
  memcpy(cd.MsgCompList, messageCompression, sizeof cd.MsgCompList);
  cd.CLWLChannelRank = 3;
  cd.CLWLChannelPriority = 4;
  cd.CLWLChannelWeight = 51;
  cd.ChannelMonitoring = ZKMON_HIGH;
  cd.ChannelStatistics = ZKMON_LOW;
  cd.SharingConversations = 9;
  cd.PropertyControl = ZKPROP_ALL;
  cd.MaxInstances = 100;
  cd.MaxInstancesPerClient = 10;
  cd.ClientChannelWeight = 42;
  cd.ConnectionAffinity = ZKCAFTY_PREFERRED;
  cd.BatchDataLimit = 5001;
  cd.UseDLQ = ZKUSEDLQ_NO;
  cd.DefReconnect = ZKRCN_Q_MGR;
  return cd;
}

ZKSCO DistinctiveSco(int32_t version) {
  ZKSCO sco = ZKSCO_DEFAULT;
  sco.Version = version;
  SetBlankPadded(sco.KeyRepository, sizeof sco.KeyRepository, "/var/zk/qmgrs/QM2/ssl/key");
  SetBlankPadded(sco.CryptoHardware, sizeof sco.CryptoHardware,
                 "PKCS11=/usr/lib/pkcs11/driver.so;tokenlabel;tokenpin;SYMMETRIC_CIPHER_ON");
  sco.AuthInfoRecCount = 2;
  sco.AuthInfoRecOffset = 560;
  sco.AuthInfoRecPtr = FakePointer(0x20000001);
  sco.KeyResetCount = 40000;
  sco.FipsRequired = ZKSSL_FIPS_YES;
  sco.EncryptionPolicySuiteB[0] = 2;
  sco.EncryptionPolicySuiteB[1] = 4;
  sco.EncryptionPolicySuiteB[2] = 6;
  sco.EncryptionPolicySuiteB[3] = 8;
  sco.CertificateValPolicy = ZK_CERT_VAL_POLICY_RFC5280;
  return sco;
}

ZKAIR DistinctiveAir(int32_t version) {
  ZKAIR air = ZKAIR_DEFAULT;
  air.Version = version;
  air.AuthInfoType = ZKAIT_CRL_LDAP;
  SetBlankPadded(air.AuthInfoConnName, sizeof air.AuthInfoConnName, "ldap1.orders.example(389)");
  air.LDAPUserNamePtr = FakePointer(0x30000001);
  air.LDAPUserNameOffset = 576;
  air.LDAPUserNameLength = 18;
  SetBlankPadded(air.LDAPPassword, sizeof air.LDAPPassword, "ldapsecret");
  SetBlankPadded(air.OCSPResponderURL, sizeof air.OCSPResponderURL,
                 "http://ocsp.orders.example/check");
  return air;
}

// Security parameters with room behind them for what their offsets reach.
struct CspWithData {
  ZKCSP csp;
  char data[96];
};

// The single-line form of a byte field, built here: groups of four bytes in
// hex, two blanks, the printable ASCII image in brackets.
std::string SingleLineHex(const std::string &bytes) {
  std::string hex;
  std::string image;
  for (size_t i = 0; i < bytes.size(); i++) {
    char pair[3];
    unsigned char byte = (unsigned char)bytes[i];
    snprintf(pair, sizeof pair, "%02X", byte);
    if (i > 0 && i % 4 == 0) {
      hex += ' ';
    }
    hex += pair;
    image += byte >= 0x20 && byte < 0x7F ? (char)byte : '.';
  }
  return hex + "  [" + image + "]\n";
}

std::string ExpectedWithVersion(const std::string &name, int32_t shown, int32_t version) {
  std::string expected = ExpectedStructureText(name);
  const std::string line = FieldLineName("Version") + std::to_string(shown) + "\n";
  size_t at = expected.find(line);
  EXPECT_NE(at, std::string::npos) << name;
  if (at != std::string::npos) {
    expected.replace(at, line.size(), FieldLineName("Version") + std::to_string(version) + "\n");
  }
  return expected;
}

std::string OptionsLine(ExitControlBlock *cb, CaptureBlock &capture, int32_t options) {
  ZKCNO cno = DistinctiveCno(1);
  cno.Options = options;
  ShowParsedZkcno(cb, &cno);
  std::string text = capture.Take();
  const std::string version = FieldLineName("Version") + "1\n";
  EXPECT_EQ(text.compare(0, version.size(), version), 0) << text;
  return text.substr(version.size());
}

} // namespace

// ---------------------------------------------------------------------------
// Connect options

TEST_F(ConnectOptions, Version1WholeWithoutVersionHeaders) {
  ZKCNO cno = DistinctiveCno(1);
  ShowParsedZkcno(cb, &cno);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcno_v1.txt");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, Version2ShowsNoMoreThanVersion1) {
  ZKCNO cno = DistinctiveCno(2);
  ShowParsedZkcno(cb, &cno);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcno_v2.txt");
}

TEST_F(ConnectOptions, Version3WholeWithTheConnectionTagDump) {
  ZKCNO cno = DistinctiveCno(3);
  ShowParsedZkcno(cb, &cno);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcno_v3.txt");
}

TEST_F(ConnectOptions, Version4ShowsNoMoreThanVersion3) {
  ZKCNO cno = DistinctiveCno(4);
  ShowParsedZkcno(cb, &cno);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcno_v4.txt");
}

TEST_F(ConnectOptions, Version5WholeWithTheConnectionId) {
  ZKCNO cno = DistinctiveCno(5);
  ShowParsedZkcno(cb, &cno);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcno_v5.txt");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, NoOptionsAreTheStandardBinding) {
  EXPECT_EQ(OptionsLine(cb, capture, 0), FieldLineName("Options") + "STANDARD_BINDING\n");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectOptions, EachBindingBitReplacesTheStandardBinding) {
  const struct {
    int32_t bit;
    const char *name;
  } bindings[] = {{ZKCNO_FASTPATH_BINDING, "FASTPATH_BINDING"},
                  {ZKCNO_SHARED_BINDING, "SHARED_BINDING"},
                  {ZKCNO_ISOLATED_BINDING, "ISOLATED_BINDING"},
                  {ZKCNO_LOCAL_BINDING, "LOCAL_BINDING"},
                  {ZKCNO_CLIENT_BINDING, "CLIENT_BINDING"}};
  for (const auto &binding : bindings) {
    EXPECT_EQ(OptionsLine(cb, capture, binding.bit | ZKCNO_HANDLE_SHARE_NONE),
              FieldLineName("Options") + binding.name + " / HANDLE_SHARE_NONE\n");
  }
  EXPECT_EQ(OptionsLine(cb, capture, ZKCNO_FASTPATH_BINDING | ZKCNO_LOCAL_BINDING),
            FieldLineName("Options") + "FASTPATH_BINDING / LOCAL_BINDING\n");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectOptions, StandardBindingStandsWhereTheClientBindingWould) {
  EXPECT_EQ(
      OptionsLine(cb, capture,
                  ZKCNO_SERIALIZE_CONN_TAG_Q_MGR | ZKCNO_ACCOUNTING_ZKI_DISABLED | ZKCNO_RECONNECT),
      FieldLineName("Options") +
          "STANDARD_BINDING / SERIALIZE_CONN_TAG_Q_MGR / ACCOUNTING_ZKI_DISABLED / "
          "RECONNECT\n");
  EXPECT_EQ(OptionsLine(cb, capture, ZKCNO_ACTIVITY_TRACE_DISABLED),
            FieldLineName("Options") + "STANDARD_BINDING / ACTIVITY_TRACE_DISABLED\n");
}

TEST_F(ConnectOptions, EveryNamedBitInTheListOrder) {
  const int32_t all = 0x1F1DFFFF;
  EXPECT_EQ(OptionsLine(cb, capture, all),
            FieldLineName("Options") +
                "FASTPATH_BINDING / SHARED_BINDING / ISOLATED_BINDING / LOCAL_BINDING / "
                "CLIENT_BINDING / SERIALIZE_CONN_TAG_Q_MGR / SERIALIZE_CONN_TAG_QSG / "
                "RESTRICT_CONN_TAG_Q_MGR / RESTRICT_CONN_TAG_QSG / HANDLE_SHARE_NONE / "
                "HANDLE_SHARE_BLOCK / HANDLE_SHARE_NO_BLOCK / ACCOUNTING_ZKI_ENABLED / "
                "ACCOUNTING_ZKI_DISABLED / ACCOUNTING_Q_ENABLED / ACCOUNTING_Q_DISABLED / "
                "NO_CONV_SHARING / ALL_CONVS_SHARE / CD_FOR_OUTPUT_ONLY / USE_CD_SELECTION / "
                "RECONNECT / RECONNECT_DISABLED / RECONNECT_Q_MGR / ACTIVITY_TRACE_ENABLED / "
                "ACTIVITY_TRACE_DISABLED\n" +
                // The sharing and selection bits lie outside the checked mask.
                UnknownBanner("ZKCNO - Options", "1F1DFFFF"));
}

TEST_F(ConnectOptions, UnknownBitIsShownAfterTheListAndReported) {
  EXPECT_EQ(OptionsLine(cb, capture, 0x20000000 | ZKCNO_FASTPATH_BINDING),
            FieldLineName("Options") + "FASTPATH_BINDING\n" +
                UnknownBanner("ZKCNO - Options", "20000001"));
  std::string alerts = capture.Alerts();
  EXPECT_NE(alerts.find("Msg3101: Unknown API attribute : ZKCNO - Options value 0x20000001\n"),
            std::string::npos)
      << alerts;
  EXPECT_EQ(alerts.find("Msg3101", alerts.find("Msg3101") + 1), std::string::npos) << alerts;
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ConnectOptions, UnnamedBitOutsideTheMaskLeavesTheStandardBinding) {
  EXPECT_EQ(OptionsLine(cb, capture, 0x00020000), FieldLineName("Options") + "STANDARD_BINDING\n" +
                                                      UnknownBanner("ZKCNO - Options", "00020000"));
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ConnectOptions, NoConversationSharingIsNamedAndReported) {
  EXPECT_EQ(OptionsLine(cb, capture, ZKCNO_NO_CONV_SHARING),
            FieldLineName("Options") + "STANDARD_BINDING / NO_CONV_SHARING\n" +
                UnknownBanner("ZKCNO - Options", "00010000"));
  EXPECT_NE(
      capture.Alerts().find("Msg3101: Unknown API attribute : ZKCNO - Options value 0x00010000\n"),
      std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ConnectOptions, BitsWithinTheMaskAreNotReported) {
  OptionsLine(cb, capture, 0x1F00FFFF);
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, ConnectionTagOfZerosIsNull) {
  ZKCNO cno = DistinctiveCno(3);
  memset(cno.ConnTag, 0, sizeof cno.ConnTag);
  ShowParsedZkcno(cb, &cno);
  std::string text = capture.Take();
  EXPECT_EQ(text, ExpectedWithVersion("zkcno_v1.txt", 1, 3) + "|> --- CNO version 3----------\n" +
                      FieldLineName("ConnTag") + "(null)\n");
}

TEST_F(ConnectOptions, ConnectionTagIsADumpOnTheLinesAfterItsName) {
  ZKCNO cno = DistinctiveCno(3);
  memset(cno.ConnTag, 0, sizeof cno.ConnTag);
  cno.ConnTag[127] = 0x5A;
  ShowParsedZkcno(cb, &cno);
  std::string text = capture.Take();
  ShowParsedHexValueMultipleLines(cb, "ConnTag", cno.ConnTag, 128, 1);
  std::string dump = capture.Take();
  const std::string head = FieldLineName("ConnTag") + "\n";
  ASSERT_EQ(dump.compare(0, head.size(), head), 0) << dump;
  EXPECT_GT(TextLines(dump).size(), 2u) << dump;
  size_t at = text.find(head);
  ASSERT_NE(at, std::string::npos) << text;
  EXPECT_EQ(text.substr(at), dump);
}

TEST_F(ConnectOptions, ConnectionIdNullAndInHex) {
  ZKCNO cno = DistinctiveCno(5);
  memset(cno.ConnectionId, 0, sizeof cno.ConnectionId);
  ShowParsedZkcno(cb, &cno);
  std::string text = capture.Take();
  const std::string nullId =
      "|> --- CNO version 5----------\n" + FieldLineName("ConnectionId") + "(null)\n";
  ASSERT_GE(text.size(), nullId.size());
  EXPECT_EQ(text.substr(text.size() - nullId.size()), nullId);

  const char id[] = "ABCDEFGHIJKLMNOPQRSTUVWX";
  memcpy(cno.ConnectionId, id, 24);
  ShowParsedZkcno(cb, &cno);
  text = capture.Take();
  const std::string hexId = FieldLineName("ConnectionId") + SingleLineHex(std::string(id, 24));
  ASSERT_GE(text.size(), hexId.size());
  EXPECT_EQ(text.substr(text.size() - hexId.size()), hexId);
  EXPECT_NE(hexId.find("41424344 45464748 494A4B4C 4D4E4F50 51525354 55565758  ["),
            std::string::npos);
}

// ---------------------------------------------------------------------------
// Channel definition

struct ChannelDefinitionVersion : StructureTest, ::testing::WithParamInterface<int32_t> {};

TEST_P(ChannelDefinitionVersion, WholeWithItsVersionGroups) {
  int32_t version = GetParam();
  ZKCD cd = DistinctiveCd(version);
  ShowParsedZkcd(cb, &cd);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcd_v" + std::to_string(version) + ".txt");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

INSTANTIATE_TEST_SUITE_P(ConnectOptions, ChannelDefinitionVersion,
                         ::testing::Range<int32_t>(1, 11));

// Each lower version's text is version 10's up to the next version header,
// with its own Version line: the expected files agree with each other, so
// that each group of fields is checked in one place.
TEST_F(ConnectOptions, LowerChannelDefinitionVersionsArePrefixesOfVersion10) {
  for (int32_t version = 1; version < 10; version++) {
    SCOPED_TRACE(version);
    std::string highest = ExpectedWithVersion("zkcd_v10.txt", 10, version);
    char header[32];
    snprintf(header, sizeof header, "|> --- CD version %d", version + 1);
    size_t cut = highest.find(header);
    ASSERT_NE(cut, std::string::npos) << header;
    highest.resize(cut);
    EXPECT_EQ(ExpectedStructureText("zkcd_v" + std::to_string(version) + ".txt"), highest);
  }
}

TEST_F(ConnectOptions, ChannelDefinitionVersion9ShowsConnectionAffinityTwice) {
  ZKCD cd = DistinctiveCd(9);
  cd.ConnectionAffinity = ZKCAFTY_NONE;
  ShowParsedZkcd(cb, &cd);
  std::string text = capture.Take();
  const std::string tail = FieldLineName("ClientChannelWeight") + "42\n" +
                           FieldLineName("ConnectionAffinity") + "0\n" +
                           FieldLineName("ConnectionAffinity") +
                           SearchConstantInt(ZKCAFTY_NONE, Constant_Zkcafty) + "\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  EXPECT_EQ(std::string(SearchConstantInt(ZKCAFTY_NONE, Constant_Zkcafty)), "none");
}

TEST_F(ConnectOptions, UnknownChannelTypeIsANumberAndReported) {
  ZKCD cd = DistinctiveCd(1);
  cd.ChannelType = 12;
  ShowParsedZkcd(cb, &cd);
  std::string text = capture.Take();
  EXPECT_NE(text.find(FieldLineName("ChannelType") + "12\n" +
                      UnknownBanner("ZKCD - ZKCHT_...", "0000000C") +
                      FieldLineName("TransportType") + "TCP\n"),
            std::string::npos)
      << text;
  EXPECT_NE(
      capture.Alerts().find("Msg3101: Unknown API attribute : ZKCD - ZKCHT_... value 0x0000000C\n"),
      std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

// Values of the platform that the channel definition's list does not name
// are numbers, and values that are no constant at all are too.
TEST_F(ConnectOptions, ChannelDefinitionValuesWithoutANameAreReported) {
  const struct {
    const char *field;
    int32_t ZKCD::*member;
    int32_t value;
    const char *reported;
    const char *hex;
  } cases[] = {
      {"ChannelType", &ZKCD::ChannelType, ZKCHT_ZKTT, "ZKCD - ZKCHT_...", "0000000A"},
      {"ChannelType", &ZKCD::ChannelType, 0, "ZKCD - ZKCHT_...", "00000000"},
      {"TransportType", &ZKCD::TransportType, 7, "ZKCD - ZKXPT_...", "00000007"},
      {"TransportType", &ZKCD::TransportType, ZKXPT_ALL, "ZKCD - ZKXPT_...", "FFFFFFFF"},
      {"PutAuthority", &ZKCD::PutAuthority, 0, "ZKCD - ZKPA_...", "00000000"},
      {"PutAuthority", &ZKCD::PutAuthority, 5, "ZKCD - ZKPA_...", "00000005"},
      {"DataConversion", &ZKCD::DataConversion, 2, "ZKCD - ZKCDC_...", "00000002"},
      {"MCAType", &ZKCD::MCAType, 3, "ZKCD - ZKMCAT_...", "00000003"},
      {"NonPersistentMsgSpeed", &ZKCD::NonPersistentMsgSpeed, 0, "ZKCD - ZKNPMS_...", "00000000"},
      {"SSLClientAuth", &ZKCD::SSLClientAuth, ZKSCA_NEVER_REQUIRED, "ZKCD - ZKSCA_...", "00000002"},
      {"SSLClientAuth", &ZKCD::SSLClientAuth, -5, "ZKCD - ZKSCA_...", "FFFFFFFB"},
  };
  for (const auto &unknown : cases) {
    SCOPED_TRACE(std::string(unknown.field) + " " + std::to_string(unknown.value));
    CaptureBlock fresh;
    ZKCD cd = DistinctiveCd(10);
    cd.*unknown.member = unknown.value;
    ShowParsedZkcd(fresh.cb(), &cd);
    std::string text = fresh.Take();
    const std::string shown = FieldLineName(unknown.field) + std::to_string(unknown.value) + "\n" +
                              UnknownBanner(unknown.reported, unknown.hex);
    EXPECT_NE(text.find(shown), std::string::npos) << text;
    // Only this one is reported.
    EXPECT_EQ(text.find("Unknown :"), text.find(shown) + shown.find("Unknown :"));
    EXPECT_EQ(text.find("Unknown :", text.find("Unknown :") + 1), std::string::npos);
    std::string alerts = fresh.Alerts();
    EXPECT_NE(alerts.find(std::string("Msg3101: Unknown API attribute : ") + unknown.reported +
                          " value 0x" + unknown.hex + "\n"),
              std::string::npos)
        << alerts;
    EXPECT_EQ(fresh.cb()->File.UnknownAttributeSeen, 1);
  }
}

TEST_F(ConnectOptions, ChannelDefinitionTableNamesAnswerForUnknownValues) {
  ZKCD cd = DistinctiveCd(10);
  cd.ChannelMonitoring = 99;
  cd.PropertyControl = 77;
  cd.DefReconnect = 9;
  ShowParsedZkcd(cb, &cd);
  std::string text = capture.Take();
  EXPECT_NE(
      text.find(FieldLineName("ChannelMonitoring") + SearchConstantInt(99, Constant_Zkmon) + "\n"),
      std::string::npos)
      << text;
  EXPECT_NE(
      text.find(FieldLineName("PropertyControl") + SearchConstantInt(77, Constant_Zkprop) + "\n"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find(FieldLineName("DefReconnect") + SearchConstantInt(9, Constant_Zkrcn) + "\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("Unknown :"), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, SecurityIdentifiersOfZerosAreNull) {
  ZKCD cd = DistinctiveCd(6);
  memset(cd.MCASecurityId, 0, sizeof cd.MCASecurityId);
  memset(cd.RemoteSecurityId, 0, sizeof cd.RemoteSecurityId);
  cd.RemoteSecurityId[39] = 0x7A;
  ShowParsedZkcd(cb, &cd);
  std::string text = capture.Take();
  std::string remote(40, '\0');
  remote[39] = 'z';
  const std::string tail = FieldLineName("MCASecurityId") + "(null)\n" +
                           FieldLineName("RemoteSecurityId") + SingleLineHex(remote);
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST_F(ConnectOptions, ChannelDefinitionAboveVersion10ShowsVersion10Unreported) {
  ZKCD cd = DistinctiveCd(11);
  ShowParsedZkcd(cb, &cd);
  EXPECT_EQ(capture.Take(), ExpectedWithVersion("zkcd_v10.txt", 10, 11));
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

// ---------------------------------------------------------------------------
// TLS configuration options and authentication information records

TEST_F(ConnectOptions, TlsOptionsVersion1Whole) {
  ZKSCO sco = DistinctiveSco(1);
  ShowParsedZksco(cb, &sco);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zksco_v1.txt");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectOptions, TlsOptionsVersion2WholeWithoutAHeader) {
  ZKSCO sco = DistinctiveSco(2);
  ShowParsedZksco(cb, &sco);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zksco_v2.txt");
}

TEST_F(ConnectOptions, TlsOptionsVersion3Whole) {
  ZKSCO sco = DistinctiveSco(3);
  ShowParsedZksco(cb, &sco);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zksco_v3.txt");
}

TEST_F(ConnectOptions, TlsOptionsVersion4Whole) {
  ZKSCO sco = DistinctiveSco(4);
  ShowParsedZksco(cb, &sco);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zksco_v4.txt");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, FipsNotRequiredAndUnknownFips) {
  ZKSCO sco = DistinctiveSco(2);
  sco.FipsRequired = ZKSSL_FIPS_NO;
  ShowParsedZksco(cb, &sco);
  std::string text = capture.Take();
  EXPECT_NE(text.find(FieldLineName("FipsRequired") + "NO\n"), std::string::npos) << text;
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);

  sco.FipsRequired = 2;
  ShowParsedZksco(cb, &sco);
  text = capture.Take();
  const std::string tail =
      FieldLineName("FipsRequired") + "2\n" + UnknownBanner("ZKSCO - ZKSSL_FIPS_..", "00000002");
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  EXPECT_NE(capture.Alerts().find(
                "Msg3101: Unknown API attribute : ZKSCO - ZKSSL_FIPS_.. value 0x00000002\n"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ConnectOptions, AuthenticationRecordVersion1Whole) {
  ZKAIR air = DistinctiveAir(1);
  ShowParsedZkair(cb, &air);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkair_v1.txt");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectOptions, AuthenticationRecordVersion2WholeWithoutAHeader) {
  ZKAIR air = DistinctiveAir(2);
  ShowParsedZkair(cb, &air);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkair_v2.txt");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, OnlyTheLdapRevocationListIsAKnownAuthenticationType) {
  const struct {
    int32_t type;
    const char *hex;
  } cases[] = {{ZKAIT_OCSP, "00000002"}, {ZKAIT_ALL, "00000000"}, {99, "00000063"}};
  for (const auto &unknown : cases) {
    SCOPED_TRACE(unknown.type);
    CaptureBlock fresh;
    ZKAIR air = DistinctiveAir(1);
    air.AuthInfoType = unknown.type;
    ShowParsedZkair(fresh.cb(), &air);
    EXPECT_NE(fresh.Take().find(FieldLineName("AuthInfoType") + std::to_string(unknown.type) +
                                "\n" + UnknownBanner("ZKAIR - ZKAIT_...", unknown.hex) +
                                FieldLineName("AuthInfoConnName")),
              std::string::npos);
    EXPECT_NE(fresh.Alerts().find(std::string("Msg3101: Unknown API attribute : ZKAIR - "
                                              "ZKAIT_... value 0x") +
                                  unknown.hex + "\n"),
              std::string::npos)
        << fresh.Alerts();
    EXPECT_EQ(fresh.cb()->File.UnknownAttributeSeen, 1);
  }
}

TEST_F(ConnectOptions, LdapUserNameIsTextOfItsLength) {
  const char name[] = "cn=admin,o=examplecn=not-this";
  ShowParsedLDAPUserName(cb, name, 18);
  EXPECT_EQ(capture.Take(), FieldLineName("LDAPUserName") + "cn=admin,o=example\n");
  ShowParsedLDAPUserName(cb, "uid=zk   ", 9);
  EXPECT_EQ(capture.Take(), FieldLineName("LDAPUserName") + "uid=zk\n");
}

// ---------------------------------------------------------------------------
// Security parameters

TEST_F(ConnectOptions, SecurityParametersWhole) {
  CspWithData block = {};
  ZKCSP csp = ZKCSP_DEFAULT;
  block.csp = csp;
  static const char userId[] = "appuser";
  block.csp.AuthenticationType = ZKCSP_AUTH_USER_ID_AND_PWD;
  block.csp.CSPUserIdPtr = (ZKPTR)userId;
  block.csp.CSPUserIdLength = 7;
  memcpy(block.data, "pass1234", 8);
  block.csp.CSPPasswordOffset = (ZKLONG)offsetof(CspWithData, data);
  block.csp.CSPPasswordLength = 8;
  ShowParsedZkcsp(cb, &block.csp);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkcsp_v1.txt");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, SecurityParametersWithoutAPasswordLength) {
  CspWithData block = {};
  ZKCSP csp = ZKCSP_DEFAULT;
  block.csp = csp;
  block.csp.AuthenticationType = ZKCSP_AUTH_USER_ID_AND_PWD;
  memcpy(block.data, "user1pass1", 10);
  block.csp.CSPUserIdOffset = (ZKLONG)offsetof(CspWithData, data);
  block.csp.CSPUserIdLength = 5;
  block.csp.CSPPasswordOffset = (ZKLONG)offsetof(CspWithData, data) + 5;
  block.csp.CSPPasswordPtr = (ZKPTR)(block.data + 5);
  block.csp.CSPPasswordLength = 0;
  ShowParsedZkcsp(cb, &block.csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "USER_ID_AND_PWD\n" +
                                FieldLineName("CSPUserId") + SingleLineHex("user1"));
}

TEST_F(ConnectOptions, SecurityParametersWithNothingToShow) {
  ZKCSP csp = ZKCSP_DEFAULT;
  ShowParsedZkcsp(cb, &csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "NONE\n");
  // Lengths without an address or an offset.
  csp.CSPUserIdLength = 8;
  csp.CSPPasswordLength = 8;
  ShowParsedZkcsp(cb, &csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "NONE\n");
}

TEST_F(ConnectOptions, SecurityParametersByAddressAndByOffset) {
  CspWithData block = {};
  ZKCSP csp = ZKCSP_DEFAULT;
  block.csp = csp;
  memcpy(block.data, "offsetuserOFFSETPASS", 20);
  static const char pointed[] = "pointeduserPOINTEDPASS";
  block.csp.CSPUserIdOffset = (ZKLONG)offsetof(CspWithData, data);
  block.csp.CSPUserIdLength = 10;
  block.csp.CSPPasswordOffset = (ZKLONG)offsetof(CspWithData, data) + 10;
  block.csp.CSPPasswordLength = 10;
  ShowParsedZkcsp(cb, &block.csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "NONE\n" +
                                FieldLineName("CSPUserId") + SingleLineHex("offsetuser") +
                                FieldLineName("CSPPassword") + SingleLineHex("OFFSETPASS"));
  // An address wins over an offset.
  block.csp.CSPUserIdPtr = (ZKPTR)pointed;
  block.csp.CSPUserIdLength = 11;
  block.csp.CSPPasswordPtr = (ZKPTR)(pointed + 11);
  block.csp.CSPPasswordLength = 11;
  ShowParsedZkcsp(cb, &block.csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "NONE\n" +
                                FieldLineName("CSPUserId") + SingleLineHex("pointeduser") +
                                FieldLineName("CSPPassword") + SingleLineHex("POINTEDPASS"));
}

TEST_F(ConnectOptions, LongUserIdAndPasswordAreDumps) {
  CspWithData block = {};
  ZKCSP csp = ZKCSP_DEFAULT;
  block.csp = csp;
  block.csp.AuthenticationType = ZKCSP_AUTH_USER_ID_AND_PWD;
  char userId[40];
  for (int i = 0; i < 40; i++) {
    userId[i] = (char)('a' + i % 26);
    block.data[i] = (char)('A' + i % 26);
  }
  block.csp.CSPUserIdPtr = (ZKPTR)userId;
  block.csp.CSPUserIdLength = 33;
  block.csp.CSPPasswordOffset = (ZKLONG)offsetof(CspWithData, data);
  block.csp.CSPPasswordLength = 40;
  ShowParsedZkcsp(cb, &block.csp);
  std::string text = capture.Take();
  ShowParsedHexValueMultipleLines(cb, "CSPUserId", userId, 33, 1);
  std::string userDump = capture.Take();
  ShowParsedHexValueMultipleLines(cb, "CSPPassword", block.data, 40, 1);
  std::string passwordDump = capture.Take();
  EXPECT_EQ(
      userDump.compare(0, FieldLineName("CSPUserId").size() + 1, FieldLineName("CSPUserId") + "\n"),
      0)
      << userDump;
  EXPECT_GT(TextLines(userDump).size(), 2u) << userDump;
  EXPECT_GT(TextLines(passwordDump).size(), 2u) << passwordDump;
  EXPECT_EQ(text,
            FieldLineName("AuthenticationType") + "USER_ID_AND_PWD\n" + userDump + passwordDump);

  // 32 bytes stay on one line.
  block.csp.CSPUserIdLength = 32;
  block.csp.CSPPasswordLength = 0;
  ShowParsedZkcsp(cb, &block.csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "USER_ID_AND_PWD\n" +
                                FieldLineName("CSPUserId") +
                                SingleLineHex(std::string(userId, 32)));
}

TEST_F(ConnectOptions, UnknownAuthenticationTypeIsANumberAndReported) {
  ZKCSP csp = ZKCSP_DEFAULT;
  csp.AuthenticationType = 2;
  ShowParsedZkcsp(cb, &csp);
  EXPECT_EQ(capture.Take(), FieldLineName("AuthenticationType") + "2\n" +
                                UnknownBanner("ZKCSP - ZKCSP_AUTH_...", "00000002"));
  EXPECT_NE(capture.Alerts().find(
                "Msg3101: Unknown API attribute : ZKCSP - ZKCSP_AUTH_... value 0x00000002\n"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

// ---------------------------------------------------------------------------
// Versions above the highest known

TEST_F(ConnectOptions, KnownVersionsPassUnreported) {
  EXPECT_EQ(CheckStructureVersion(cb, "ZKCNO", 5, 5), 5);
  EXPECT_EQ(CheckStructureVersion(cb, "ZKCNO", 1, 5), 1);
  EXPECT_EQ(CheckStructureVersion(cb, "ZKCD", 10, 10), 10);
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectOptions, ConnectOptionsVersion6IsReportedAndShownAsVersion5) {
  EXPECT_EQ(CheckStructureVersion(cb, "ZKCNO", 6, 5), 5);
  EXPECT_EQ(capture.Take(), "|**********************************\n"
                            "|* Unknown : ZKCNO version 6\n"
                            "|**********************************\n");
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKCNO version 6\n"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
  ZKCNO cno = DistinctiveCno(6);
  ShowParsedZkcno(cb, &cno);
  EXPECT_EQ(capture.Take(), ExpectedWithVersion("zkcno_v5.txt", 5, 6));
}

TEST_F(ConnectOptions, ChannelDefinitionVersion11IsReportedAsZkcd) {
  EXPECT_EQ(CheckStructureVersion(cb, "ZKCD", 11, 10), 10);
  EXPECT_EQ(capture.Take(), "|**********************************\n"
                            "|* Unknown : ZKCD version 11\n"
                            "|**********************************\n");
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKCD version 11\n"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ConnectOptions, HigherVersionsOfTheOtherStructures) {
  EXPECT_EQ(CheckStructureVersion(cb, "ZKSCO", 5, 4), 4);
  EXPECT_EQ(CheckStructureVersion(cb, "ZKAIR", 3, 2), 2);
  EXPECT_EQ(CheckStructureVersion(cb, "ZKCSP", 2, 1), 1);
  std::string text = capture.Take();
  EXPECT_NE(text.find("|* Unknown : ZKSCO version 5\n"), std::string::npos) << text;
  EXPECT_NE(text.find("|* Unknown : ZKAIR version 3\n"), std::string::npos) << text;
  EXPECT_NE(text.find("|* Unknown : ZKCSP version 2\n"), std::string::npos) << text;
  ZKSCO sco = DistinctiveSco(5);
  ShowParsedZksco(cb, &sco);
  EXPECT_EQ(capture.Take(), ExpectedWithVersion("zksco_v4.txt", 4, 5));
  ZKAIR air = DistinctiveAir(3);
  ShowParsedZkair(cb, &air);
  EXPECT_EQ(capture.Take(), ExpectedWithVersion("zkair_v2.txt", 2, 3));
}
