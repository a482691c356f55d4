// Tables of the second half of the platform-constant families: every table
// ends in its "(Unknown value)" marker, the rows are those of the constant
// families, and look-ups of the named constants give their descriptions.
#include <gtest/gtest.h>

#include <string.h>

#include <set>
#include <string>

#include "text/constant_table.h"
#include "zk/zkconst.h"

namespace {

struct NamedTable {
  const char *name;
  const ConstantIntEntry *table;
};

#define TABLE(t)                                                                                   \
  { #t, Constant_##t }
const NamedTable kTables[] = {
    TABLE(Zktc),        TABLE(Zktopt),        TABLE(Zktcpstack),    TABLE(Zktcpkeep),
    TABLE(Zksp),        TABLE(Zkssl),         TABLE(Zksqqm),        TABLE(Zkqa_share),
    TABLE(Zksvc_type),  TABLE(Zkscyc),        TABLE(Zksco),         TABLE(Zkrcvtime),
    TABLE(Zkqt),        TABLE(Zkqsie),        TABLE(Zksyncpoint),   TABLE(Zkundelivered),
    TABLE(Zkpsm),       TABLE(Zkpsclus),      TABLE(Zkscope),       TABLE(ProxySub),
    TABLE(Zkdlv),       TABLE(Zknpm),         TABLE(Zknt),          TABLE(Zkmds),
    TABLE(Zkmaster),    TABLE(Zkipaddr),      TABLE(Zkigq),         TABLE(Zkta_sub),
    TABLE(Zkta_pub),    TABLE(Zkqa_put),      TABLE(Zkqa_get),      TABLE(Zkit),
    TABLE(Zkigqpa),     TABLE(Zkqa_backout),  TABLE(Zksub),         TABLE(Zkdnswlm),
    TABLE(Zkdl),        TABLE(Zkqdt),         TABLE(Zkreada),       TABLE(Zkprt),
    TABLE(Zkper),       TABLE(Zkoo_showpart), TABLE(Zkbnd),         TABLE(Zkclwl),
    TABLE(Zkcqt),       TABLE(Zktraxstr),     TABLE(Zksvc_control), TABLE(Zkchad),
    TABLE(Zkcfr),       TABLE(Zkevr),         TABLE(Zkadopt_type),  TABLE(Zkadopt_check),
    TABLE(Zkrecording), TABLE(Zkmon),         TABLE(Zkcacf_Zkcach), TABLE(Zkrcn),
    TABLE(Zkusedlq),    TABLE(Zkopmode),      TABLE(Zkmulc),        TABLE(Zkcafty),
    TABLE(Zkprop),      TABLE(Zkmt),          TABLE(Zkxpt),         TABLE(Zksca),
    TABLE(Zkpl),        TABLE(Zkpa),          TABLE(Zkot),          TABLE(Zknpms),
    TABLE(Zkmcat),      TABLE(Zkmcas),        TABLE(Zkido),         TABLE(Zkchtab),
    TABLE(Zkcht),       TABLE(Zkchsr),        TABLE(Zkchs),         TABLE(Zkchids),
    TABLE(Zkcdc),
};
#undef TABLE

// A value that no family of these tables assigns.
const int32_t kUnassigned = 0x7A5A5A5A;

TEST(ConstantPlatformB, EveryTableIsListedOnce) {
  EXPECT_EQ(sizeof(kTables) / sizeof(kTables[0]), 77u);
  std::set<const ConstantIntEntry *> distinct;
  for (const NamedTable &t : kTables) {
    distinct.insert(t.table);
  }
  EXPECT_EQ(distinct.size(), sizeof(kTables) / sizeof(kTables[0]));
}

TEST(ConstantPlatformB, EveryTableHasRowsAndAnswersUnknownValues) {
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    EXPECT_GE(CountConstantIntRows(t.table), 1);
    EXPECT_STREQ(SearchConstantInt(kUnassigned, t.table), "(Unknown value)");
  }
}

TEST(ConstantPlatformB, TheMarkerValueFindsTheMarkerRow) {
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    int32_t rows = CountConstantIntRows(t.table);
    EXPECT_EQ(t.table[rows].value, CONSTANT_TABLE_END);
    EXPECT_STREQ(SearchConstantInt(CONSTANT_TABLE_END, t.table), "(Unknown value)");
    EXPECT_EQ(SearchConstantInt(CONSTANT_TABLE_END, t.table), t.table[rows].text);
  }
}

// Every row has a description that cannot be mistaken for the marker answer
// (the descriptor formatter tests for a leading "(").
TEST(ConstantPlatformB, RowTextsAreShortDescriptions) {
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    for (const ConstantIntEntry *row = t.table; row->value != CONSTANT_TABLE_END; row++) {
      ASSERT_NE(row->text, nullptr);
      EXPECT_GT(strlen(row->text), 0u) << row->value;
      EXPECT_LE(strlen(row->text), 48u) << row->value;
      EXPECT_NE(row->text[0], '(') << row->value;
    }
  }
}

// Within one table each text names one value, so that a look-up by text is
// unambiguous.
TEST(ConstantPlatformB, TextsAreUniqueWithinATable) {
  for (const NamedTable &t : kTables) {
    SCOPED_TRACE(t.name);
    std::set<std::string> seen;
    for (const ConstantIntEntry *row = t.table; row->value != CONSTANT_TABLE_END; row++) {
      EXPECT_TRUE(seen.insert(row->text).second) << row->text;
    }
  }
}

TEST(ConstantPlatformB, ObjectTypesStartWithTheBasicObjects) {
  const struct {
    int32_t value;
    const char *text;
  } expected[] = {{0, "none"},          {1, "queue"},
                  {2, "name list"},     {3, "process"},
                  {4, "storage class"}, {5, "queue manager"},
                  {6, "channel"},       {7, "authentication information"},
                  {8, "topic"},         {9, "communication information"},
                  {10, "CF structure"}, {11, "listener"},
                  {12, "service"}};
  for (size_t i = 0; i < sizeof(expected) / sizeof(expected[0]); i++) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Constant_Zkot[i].value, expected[i].value);
    EXPECT_STREQ(Constant_Zkot[i].text, expected[i].text);
  }
  EXPECT_STREQ(SearchConstantInt(ZKOT_ALL, Constant_Zkot), "all");
  EXPECT_STREQ(SearchConstantInt(ZKOT_ALIAS_Q, Constant_Zkot), "alias queue");
  EXPECT_STREQ(SearchConstantInt(ZKOT_CLNTCONN_CHANNEL, Constant_Zkot),
               "client connection channel");
  EXPECT_EQ(ZKOT_Q_MGR, 5);
  EXPECT_EQ(ZKOT_ALL, 1001);
  // Value 1006 is not an object type.
  EXPECT_STREQ(SearchConstantInt(1006, Constant_Zkot), "(Unknown value)");
}

TEST(ConstantPlatformB, QueueTypesInTheirOrder) {
  const struct {
    int32_t value;
    const char *text;
  } expected[] = {{3, "alias"},  {7, "cluster"}, {1, "local"},
                  {6, "remote"}, {2, "model"},   {1001, "all"}};
  ASSERT_EQ(CountConstantIntRows(Constant_Zkqt), 7);
  for (size_t i = 0; i < sizeof(expected) / sizeof(expected[0]); i++) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Constant_Zkqt[i].value, expected[i].value);
    EXPECT_STREQ(Constant_Zkqt[i].text, expected[i].text);
  }
  EXPECT_EQ(Constant_Zkqt[6].value, 1001);
  EXPECT_STREQ(Constant_Zkqt[6].text, "all queue types");
  EXPECT_EQ(ZKQT_LOCAL, 1);
  EXPECT_EQ(ZKQT_ALL, 1001);
}

TEST(ConstantPlatformB, FirstRowWinsForAValueListedTwice) {
  EXPECT_STREQ(SearchConstantInt(1001, Constant_Zkqt), "all");
  // The second row is there: its text leads back to the same value.
  EXPECT_EQ(SearchConstantIntByString("all queue types", Constant_Zkqt), 1001);
  // The same rule in other families whose constants share a value.
  EXPECT_STREQ(SearchConstantInt(ZKMON_DISABLED, Constant_Zkmon), "off");
  EXPECT_STREQ(SearchConstantInt(ZKMON_NONE, Constant_Zkmon), "not available");
  EXPECT_STREQ(SearchConstantInt(ZKMT_SYSTEM_FIRST, Constant_Zkmt), "request");
  EXPECT_STREQ(SearchConstantInt(ZKSUB_DURABLE_YES, Constant_Zksub), "durable allowed");
  EXPECT_STREQ(SearchConstantInt(ZKOO_RESOLVE_LOCAL_TOPIC, Constant_Zkoo_showpart),
               "resolve local queue");
}

TEST(ConstantPlatformB, NamedConstantsGiveTheirDescriptions) {
  EXPECT_STREQ(SearchConstantInt(ZKTC_ON, Constant_Zktc), "on");
  EXPECT_STREQ(SearchConstantInt(ZKTOPT_CLUSTER, Constant_Zktopt), "cluster");
  EXPECT_STREQ(SearchConstantInt(ZKSSL_FIPS_YES, Constant_Zkssl), "fips required");
  EXPECT_STREQ(SearchConstantInt(ZKQA_NOT_SHAREABLE, Constant_Zkqa_share), "not shareable");
  EXPECT_STREQ(SearchConstantInt(ZKRCVTIME_EQUAL, Constant_Zkrcvtime), "equal");
  EXPECT_STREQ(SearchConstantInt(ZKUNDELIVERED_KEEP, Constant_Zkundelivered), "keep");
  EXPECT_STREQ(SearchConstantInt(ZKSCOPE_QMGR, Constant_Zkscope), "queue manager");
  EXPECT_STREQ(SearchConstantInt(ZKTA_PROXY_SUB_FIRSTUSE, Constant_ProxySub), "first use");
  EXPECT_STREQ(SearchConstantInt(ZKDLV_ALL_AVAIL, Constant_Zkdlv), "all available");
  EXPECT_STREQ(SearchConstantInt(ZKNPM_CLASS_HIGH, Constant_Zknpm), "high");
  EXPECT_STREQ(SearchConstantInt(ZKNT_AUTH_INFO, Constant_Zknt), "authentication information");
  EXPECT_STREQ(SearchConstantInt(ZKIT_GROUP_ID, Constant_Zkit), "group id");
  EXPECT_STREQ(SearchConstantInt(ZKQDT_SHARED_DYNAMIC, Constant_Zkqdt), "shared dynamic");
  EXPECT_STREQ(SearchConstantInt(ZKREADA_BACKLOG, Constant_Zkreada), "backlog");
  EXPECT_STREQ(SearchConstantInt(ZKPER_PERSISTENCE_AS_PARENT, Constant_Zkper), "as parent");
  EXPECT_STREQ(SearchConstantInt(ZKOO_INPUT_EXCLUSIVE, Constant_Zkoo_showpart), "input exclusive");
  EXPECT_STREQ(SearchConstantInt(ZKCLWL_USEQ_AS_Q_MGR, Constant_Zkclwl), "as queue manager");
  EXPECT_STREQ(SearchConstantInt(ZKEVR_NO_DISPLAY, Constant_Zkevr), "no display");
  EXPECT_STREQ(SearchConstantInt(ZKADOPT_CHECK_NET_ADDR, Constant_Zkadopt_check),
               "network address");
  EXPECT_STREQ(SearchConstantInt(ZKMON_MEDIUM, Constant_Zkmon), "medium");
  EXPECT_STREQ(SearchConstantInt(ZKCACF_Q_NAMES, Constant_Zkcacf_Zkcach), "queue names");
  EXPECT_STREQ(SearchConstantInt(ZKCACH_SSL_CIPHER_SPEC, Constant_Zkcacf_Zkcach),
               "TLS cipher setting");
  EXPECT_STREQ(SearchConstantInt(ZKRCN_Q_MGR, Constant_Zkrcn), "queue manager");
  EXPECT_STREQ(SearchConstantInt(ZKPROP_FORCE_ZKRFH2, Constant_Zkprop),
               "force rules and formatting header 2");
  EXPECT_STREQ(SearchConstantInt(ZKMT_DATAGRAM, Constant_Zkmt), "datagram");
  EXPECT_STREQ(SearchConstantInt(ZKXPT_TCP, Constant_Zkxpt), "TCP");
  EXPECT_STREQ(SearchConstantInt(ZKPA_ALTERNATE_OR_MCA, Constant_Zkpa),
               "alternate or message channel agent");
  EXPECT_STREQ(SearchConstantInt(ZKCHT_CLUSSDR, Constant_Zkcht), "cluster sender");
  EXPECT_STREQ(SearchConstantInt(ZKCHS_SWITCHING, Constant_Zkchs), "switching");
  EXPECT_STREQ(SearchConstantInt(ZKCDC_SENDER_CONVERSION, Constant_Zkcdc), "sender conversion");
}

TEST(ConstantPlatformB, NamedConstantsHaveThePublishedValues) {
  EXPECT_EQ(ZKCHT_SVRCONN, 7);
  EXPECT_EQ(ZKXPT_ALL, -1);
  EXPECT_EQ(ZKMON_HIGH, 65);
  EXPECT_EQ(ZKMT_APPL_FIRST, 65536);
  EXPECT_EQ(ZKOO_FAIL_IF_QUIESCING, 0x2000);
  EXPECT_EQ(ZKCACF_FIRST, 3001);
  EXPECT_EQ(ZKCACH_FIRST, 3501);
  EXPECT_EQ(ZKPL_NATIVE, 3);
  EXPECT_STREQ(SearchConstantInt(ZKPL_NATIVE, Constant_Zkpl), "unix");
  EXPECT_EQ(ZKIGQPA_ALTERNATE_OR_IGQ, 4);
  EXPECT_EQ(ZKNPM_CLASS_HIGH, 10);
}

TEST(ConstantPlatformB, GapsInAFamilyAreUnknown) {
  // Channel type 12 and channel states 10 to 12 are not assigned.
  EXPECT_STREQ(SearchConstantInt(12, Constant_Zkcht), "(Unknown value)");
  EXPECT_STREQ(SearchConstantInt(11, Constant_Zkchs), "(Unknown value)");
  // A synonym without a row adds nothing to its table.
  EXPECT_STREQ(SearchConstantInt(ZKCACF_LAST_USED + 1, Constant_Zkcacf_Zkcach), "(Unknown value)");
}

TEST(ConstantPlatformB, LookUpByTextIsExactAndCaseSensitive) {
  EXPECT_EQ(SearchConstantIntByString("cluster receiver", Constant_Zkcht), ZKCHT_CLUSRCVR);
  EXPECT_EQ(SearchConstantIntByString("Cluster receiver", Constant_Zkcht), CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("cluster", Constant_Zkcht), CONSTANT_TABLE_END);
}

} // namespace
