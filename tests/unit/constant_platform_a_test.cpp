// The platform-constant tables of the first group of families (platform_a.def):
// each one is closed by its marker, answers "(Unknown value)" for what it does
// not hold, and names the platform's constants with their short descriptions;
// the bits of a family of flags are named by their short names.
#include <gtest/gtest.h>

#include <ctype.h>
#include <set>
#include <string.h>

#include "text/constant_table.h"
#include "zk/zkconst.h"

namespace {

struct NamedTable {
  const char *name;
  const ConstantIntEntry *table;
  uint32_t knownBits; // a family of flags: the bits its flag rows name
};

#define TABLE(t)                                                                                   \
  { #t, Constant_##t, 0 }
#define FLAG_TABLE(t)                                                                              \
  { #t, Constant_##t, ConstantKnownBits_##t }
const NamedTable kTables[] = {
    TABLE(Zksr),
    TABLE(Zkclrt),
    TABLE(Zkbt),
    TABLE(Zket),
    TABLE(Zkait),
    TABLE(Zkclxq),
    TABLE(Zkcert),
    TABLE(Zkwarn),
    TABLE(Zkusrc),
    TABLE(Zkuci),
    TABLE(Zknsh),
    TABLE(Zkmcp),
    TABLE(Zkrar),
    TABLE(Zkcaut),
    TABLE(Zkcfaccess),
    TABLE(Zkdse),
    TABLE(Zkchla),
    TABLE(Zkrecauto),
    TABLE(Zkcfoffld),
    TABLE(Zkcfconlos),
    TABLE(Zksysobj),
    TABLE(Zkextattrs),
    TABLE(Zkext),
    TABLE(Zkcbt),
    TABLE(Zkchsstate),
    TABLE(Zkinbd),
    FLAG_TABLE(Zkcompress),
    TABLE(Zkseltype),
    TABLE(Zkpsst),
    TABLE(Zkps_status),
    TABLE(Zkom),
    TABLE(Zkas),
    TABLE(Topicstatus),
    TABLE(Zksubtype),
    TABLE(Zkws),
    TABLE(Zkru),
    TABLE(Zkvu),
    TABLE(Zktscope),
    TABLE(Zkdc),
    TABLE(Zkpsprop),
    TABLE(Zkuidsupp),
    TABLE(Zkoper),
    TABLE(Zkroute),
    TABLE(Zksvc_status),
    TABLE(Zkqmsta),
    TABLE(Zkuowt),
    TABLE(Zkuowst),
    TABLE(Zkqsgd),
    TABLE(Zkzaet),
    TABLE(Zkauth),
    TABLE(Zksectype),
    TABLE(Zkqso_share),
    TABLE(Zkqso_yesno),
    TABLE(Zkcfo_removequeues),
    TABLE(Zkcfo_refreshrepos),
    TABLE(Zksus),
    TABLE(Zkact),
    TABLE(Zkqmt),
    TABLE(Zkqmdt),
    TABLE(Zkhstate),
    TABLE(Zkqsum),
    TABLE(Zkqsot),
    TABLE(Zkrq),
    TABLE(Zkevo),
    TABLE(Zkmode),
    TABLE(Zkpo),
    TABLE(Zkrp),
    TABLE(Zkfc),
    TABLE(Zkdisconnect),
    TABLE(Zkta_wildcard),
    TABLE(Zkus),
    TABLE(Zktt),
};
#undef TABLE
#undef FLAG_TABLE

// A value that none of these families uses.
const int32_t kUnusedValue = 0x7ABCDEF1;

} // namespace

TEST(ConstantPlatformA, EveryTableHasRowsAndAnswersUnknownValues) {
  EXPECT_EQ(sizeof(kTables) / sizeof(kTables[0]), 72u);
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    EXPECT_GE(CountConstantIntRows(t.table), 1);
    EXPECT_STREQ(SearchConstantInt(kUnusedValue, t.table), "(Unknown value)");
  }
}

TEST(ConstantPlatformA, MarkerValueFindsTheMarkerRow) {
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    int32_t rows = CountConstantIntRows(t.table);
    EXPECT_EQ(t.table[rows].value, CONSTANT_TABLE_END);
    EXPECT_STREQ(SearchConstantInt(CONSTANT_TABLE_END, t.table), "(Unknown value)");
    // The marker's text is the not-found answer, not a row of the table.
    EXPECT_EQ(SearchConstantIntByString("(Unknown value)", t.table), CONSTANT_TABLE_END);
  }
}

TEST(ConstantPlatformA, RowsAreShortLowerCaseTextsWithDistinctValues) {
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    std::set<int32_t> seen;
    for (const ConstantIntEntry *row = t.table; row->value != CONSTANT_TABLE_END; row++) {
      SCOPED_TRACE(row->text);
      EXPECT_TRUE(seen.insert(row->value).second) << "value " << row->value << " twice";
      size_t len = strlen(row->text);
      EXPECT_GT(len, 0u);
      EXPECT_LE(len, 48u);
      // A bit of a family of flags is named by its short upper-case name
      // ("ZLIBFAST"); every other row is described in lower-case words.
      uint32_t bits = (uint32_t)row->value;
      bool isBit = bits != 0 && (bits & ~t.knownBits) == 0;
      for (size_t i = 0; i < len; i++) {
        if (isBit) {
          EXPECT_FALSE(islower((unsigned char)row->text[i]));
        } else {
          EXPECT_FALSE(isupper((unsigned char)row->text[i]));
        }
      }
      // Each text leads back to its own row.
      EXPECT_EQ(SearchConstantIntByString(row->text, t.table), row->value);
    }
  }
}

TEST(ConstantPlatformA, NamedConstantsGiveTheirDescriptions) {
  EXPECT_STREQ(SearchConstantInt(ZKSR_ACTION_PUBLICATION, Constant_Zksr), "publication");
  EXPECT_STREQ(SearchConstantInt(ZKAIT_CRL_LDAP, Constant_Zkait), "crl ldap");
  EXPECT_STREQ(SearchConstantInt(ZKAIT_IDPW_LDAP, Constant_Zkait), "user id and password, ldap");
  EXPECT_STREQ(SearchConstantInt(ZK_CERT_VAL_POLICY_RFC5280, Constant_Zkcert), "rfc 5280");
  EXPECT_STREQ(SearchConstantInt(ZK_CERT_VAL_POLICY_DEFAULT, Constant_Zkcert), "any");
  EXPECT_STREQ(SearchConstantInt(ZKCAUT_QMGRMAP, Constant_Zkcaut), "queue manager map");
  EXPECT_STREQ(SearchConstantInt(ZKCFCONLOS_ASQMGR, Constant_Zkcfconlos), "as queue manager");
  EXPECT_STREQ(SearchConstantInt(ZKCHSSTATE_IN_ZKGET, Constant_Zkchsstate), "in zkget");
  EXPECT_STREQ(SearchConstantInt(ZKCHSSTATE_COMPRESSING, Constant_Zkchsstate), "compressing");
  EXPECT_STREQ(SearchConstantInt(ZKCOMPRESS_NOT_AVAILABLE, Constant_Zkcompress), "not available");
  EXPECT_STREQ(SearchConstantInt(ZKCOMPRESS_ANY, Constant_Zkcompress), "any");
  EXPECT_STREQ(SearchConstantInt(ZKPS_STATUS_REFUSED, Constant_Zkps_status), "refused");
  EXPECT_STREQ(SearchConstantInt(ZKAS_SUSPENDED_TEMPORARY, Constant_Zkas), "suspended temporary");
  EXPECT_STREQ(SearchConstantInt(ZKIACF_TOPIC_PUB, Constant_Topicstatus), "topic publishers");
  EXPECT_STREQ(SearchConstantInt(ZKSUBTYPE_USER, Constant_Zksubtype), "user");
  EXPECT_STREQ(SearchConstantInt(ZKPSPROP_RFH2, Constant_Zkpsprop),
               "rules and formatting header 2");
  EXPECT_STREQ(SearchConstantInt(ZKOPER_SYSTEM_FIRST, Constant_Zkoper), "unknown");
  EXPECT_STREQ(SearchConstantInt(ZKOPER_DISCARDED_PUBLISH, Constant_Zkoper), "discarded publish");
  EXPECT_STREQ(SearchConstantInt(ZKROUTE_DELIVER_REJ_UNSUP_MASK, Constant_Zkroute),
               "reject unsupported forwarding");
  EXPECT_STREQ(SearchConstantInt(ZKROUTE_ACCUMULATE_AND_REPLY, Constant_Zkroute),
               "accumulate and reply");
  EXPECT_STREQ(SearchConstantInt(ZKSVC_STATUS_RETRYING, Constant_Zksvc_status), "retrying");
  EXPECT_STREQ(SearchConstantInt(ZKQMSTA_STANDBY, Constant_Zkqmsta), "standby");
  EXPECT_STREQ(SearchConstantInt(ZKQSGD_LIVE, Constant_Zkqsgd), "live");
  EXPECT_STREQ(SearchConstantInt(ZKQSGD_ALL, Constant_Zkqsgd), "all");
  EXPECT_STREQ(SearchConstantInt(ZKAUTH_ALL_ZKI, Constant_Zkauth), "all zki");
  EXPECT_STREQ(SearchConstantInt(ZKAUTH_SYSTEM, Constant_Zkauth), "system");
  EXPECT_STREQ(SearchConstantInt(ZKQSO_NO, Constant_Zkqso_share), "no");
  EXPECT_STREQ(SearchConstantInt(ZKQSO_EXCLUSIVE, Constant_Zkqso_share), "exclusive");
  EXPECT_STREQ(SearchConstantInt(ZKQSO_YES, Constant_Zkqso_yesno), "yes");
  EXPECT_STREQ(SearchConstantInt(ZKACT_ARCHIVE_LOG, Constant_Zkact), "archive log");
  EXPECT_STREQ(SearchConstantInt(ZKQMDT_AUTO_EXP_CLUSTER_SENDER, Constant_Zkqmdt),
               "auto explicit cluster sender");
  EXPECT_STREQ(SearchConstantInt(ZKRQ_CHANNEL_BLOCKED_NOACCESS, Constant_Zkrq),
               "channel blocked no access");
  EXPECT_STREQ(SearchConstantInt(ZKEVO_ZKSUB, Constant_Zkevo), "zksub");
  EXPECT_STREQ(SearchConstantInt(ZKMODE_TERMINATE, Constant_Zkmode), "terminate");
  EXPECT_STREQ(SearchConstantInt(ZKDISCONNECT_Q_MGR, Constant_Zkdisconnect), "queue manager");
  EXPECT_STREQ(SearchConstantInt(ZKTA_PASSTHRU, Constant_Zkta_wildcard), "passthru");
  EXPECT_STREQ(SearchConstantInt(ZKTT_DEPTH, Constant_Zktt), "depth");
}

TEST(ConstantPlatformA, ConstantsCarryThePlatformValues) {
  EXPECT_EQ(ZKCAUT_USERMAP, 6);
  EXPECT_EQ(ZKCHSSTATE_NET_CONNECTING, 1250);
  EXPECT_EQ(ZKCHSSTATE_IN_ZKI_CALL, 1700);
  EXPECT_EQ(ZKCOMPRESS_ZLIBHIGH, 4);
  EXPECT_EQ(ZKCOMPRESS_ANY, 0x0FFFFFFF);
  EXPECT_EQ(ZKINBD_GROUP, 3);
  EXPECT_EQ(ZKSYSOBJ_YES, 0);
  EXPECT_EQ(ZKMCP_COMPAT, -2);
  EXPECT_EQ(ZKNSH_ALL, -1);
  EXPECT_EQ(ZKOPER_APPL_LAST, 999999999);
  EXPECT_EQ(ZKROUTE_FORWARD_REJ_UNSUP_MASK, (int32_t)0xFFFF0000);
  EXPECT_EQ(ZKROUTE_ACCUMULATE_NONE, 0x00010003);
  EXPECT_EQ(ZKQSGD_PRIVATE, 4);
  EXPECT_EQ(ZKAUTH_ALL_ADMIN, -2);
  EXPECT_EQ(ZKQMDT_CLUSTER_RECEIVER, 3);
  EXPECT_EQ(ZKQSOT_OUTPUT, 3);
  EXPECT_EQ(ZKRQ_CSP_NOT_AUTHORIZED, 29);
  EXPECT_EQ(ZKIACF_TOPIC_STATUS, 1295);
  EXPECT_EQ(ZKSUBTYPE_ALL, -1);
  EXPECT_EQ(ZKTT_EVERY, 2);
}

TEST(ConstantPlatformA, TextLookUpIsExactAndCaseSensitive) {
  EXPECT_EQ(SearchConstantIntByString("in message retry exit", Constant_Zkchsstate),
            ZKCHSSTATE_IN_MREXIT);
  EXPECT_EQ(SearchConstantIntByString("In message retry exit", Constant_Zkchsstate),
            CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("in message", Constant_Zkchsstate), CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("all", Constant_Zkauth), ZKAUTH_ALL);
}
