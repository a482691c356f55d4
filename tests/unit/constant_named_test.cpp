// The named constant families (reason codes, XA and AX return codes, channel
// exit ids, message formats) and the tables of names that are not platform
// constants.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "text/constant_table.h"
#include "text/named_tables.h"
#include "zk/zkconst.h"

namespace {

bool StartsWith(const char *text, const char *prefix) {
  return std::string(text).rfind(prefix, 0) == 0;
}

bool IsConstantName(const char *text) {
  std::string s(text);
  if (s.size() < 6) {
    return false;
  }
  for (char c : s) {
    if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_')) {
      return false;
    }
  }
  return true;
}

const char *kUnknownReason = "(Unknown TZK Reason code)";

} // namespace

TEST(ConstantNamed, RowCounts) {
  EXPECT_EQ(CountConstantIntRows(Constant_Zkrc), 904);
  EXPECT_EQ(CountConstantIntRows(Constant_Xarc), 24);
  EXPECT_EQ(CountConstantIntRows(Constant_Axrc), 6);
  EXPECT_EQ(CountConstantIntRows(Constant_EPH_Flags), 2);
  EXPECT_EQ(CountConstantIntRows(Constant_ChlExitId), 6);
  EXPECT_EQ(CountConstantStringRows(Constant_MsgFormat), 14);
  EXPECT_EQ(CountConstantByteRows(Constant_ApiCallType), 48);
  EXPECT_EQ(CountConstantByteRows(Constant_SendReceiveSegmentStatus), 4);
  EXPECT_EQ(CountConstantByteRows(Constant_ZkiSegmentStatus), 4);
  EXPECT_EQ(CountConstantIntRows(Constant_ZkIntListPersistence), 2);
  EXPECT_EQ(CountConstantIntRows(Constant_ZkIntListPeriod), 2);
}

TEST(ConstantNamed, ReasonCodeLookups) {
  EXPECT_STREQ(SearchConstantInt(0, Constant_Zkrc), "none");
  EXPECT_STREQ(SearchConstantInt(256, Constant_Zkrc), "ZKFB_QUIT");
  EXPECT_STREQ(SearchConstantInt(2033, Constant_Zkrc), "ZKRC_NO_MSG_AVAILABLE");
  EXPECT_STREQ(SearchConstantInt(2085, Constant_Zkrc), "ZKRC_UNKNOWN_OBJECT_NAME");
  // Values that no reason or feedback code has.
  EXPECT_STREQ(SearchConstantInt(2015, Constant_Zkrc), kUnknownReason);
  EXPECT_STREQ(SearchConstantInt(5000, Constant_Zkrc), kUnknownReason);
  EXPECT_STREQ(SearchConstantInt(-1, Constant_Zkrc), kUnknownReason);
  EXPECT_STREQ(SearchConstantInt(CONSTANT_TABLE_END, Constant_Zkrc), kUnknownReason);
  // Range bounds are constants without rows.
  EXPECT_STREQ(SearchConstantInt(ZKRC_APPL_FIRST, Constant_Zkrc), kUnknownReason);
  EXPECT_STREQ(SearchConstantInt(ZKFB_APPL_FIRST, Constant_Zkrc), kUnknownReason);
}

TEST(ConstantNamed, EveryReasonRowIsNamedByItsConstant) {
  int32_t rows = 0;
  for (const ConstantIntEntry *row = Constant_Zkrc; row->value != CONSTANT_TABLE_END; row++) {
    rows++;
    if (row->value == 0) {
      EXPECT_STREQ(row->text, "none");
      continue;
    }
    bool reason = StartsWith(row->text, "ZKRC_");
    bool feedback = StartsWith(row->text, "ZKFB_");
    EXPECT_TRUE(reason || feedback) << row->value << " " << row->text;
    EXPECT_TRUE(IsConstantName(row->text)) << row->text;
    // Feedback codes lie below the reason codes.
    if (feedback) {
      EXPECT_LT(row->value, 1000) << row->text;
    }
    if (reason) {
      EXPECT_GE(row->value, 2001) << row->text;
    }
    if (StartsWith(row->text, "ZKRC_ADM_")) {
      EXPECT_TRUE(row->value > 3000 && row->value < 5000) << row->text;
    }
  }
  EXPECT_EQ(rows, 904);
}

TEST(ConstantNamed, NoTwoReasonRowsShareAText) {
  std::set<std::string> texts;
  for (const ConstantIntEntry *row = Constant_Zkrc; row->value != CONSTANT_TABLE_END; row++) {
    EXPECT_TRUE(texts.insert(row->text).second) << "twice: " << row->text;
  }
}

TEST(ConstantNamed, ReasonConstantsEqualTheirRows) {
  struct Sample {
    int32_t constant;
    const char *name;
  };
  const Sample samples[] = {
      {ZKRC_NONE, "none"},
      {ZKFB_QUIT, "ZKFB_QUIT"},
      {ZKFB_COA, "ZKFB_COA"},
      {ZKFB_TXN_MONITOR_UOW_BACKED_OUT, "ZKFB_TXN_MONITOR_UOW_BACKED_OUT"},
      {ZKRC_ALIAS_BASE_Q_TYPE_ERROR, "ZKRC_ALIAS_BASE_Q_TYPE_ERROR"},
      {ZKRC_HCONN_ERROR, "ZKRC_HCONN_ERROR"},
      {ZKRC_Q_FULL, "ZKRC_Q_FULL"},
      {ZKRC_NOT_AUTHORIZED, "ZKRC_NOT_AUTHORIZED"},
      {ZKRC_CONVERTED_MSG_TOO_BIG, "ZKRC_CONVERTED_MSG_TOO_BIG"},
      {ZKRC_CALL_IN_PROGRESS, "ZKRC_CALL_IN_PROGRESS"},
      {ZKRC_RECONNECT_FAILED, "ZKRC_RECONNECT_FAILED"},
      {ZKRC_XR_NOT_AVAILABLE, "ZKRC_XR_NOT_AVAILABLE"},
      {ZKRC_ADM_CFH_TYPE_ERROR, "ZKRC_ADM_CFH_TYPE_ERROR"},
      {ZKRC_ADM_OBJECT_WRONG_TYPE, "ZKRC_ADM_OBJECT_WRONG_TYPE"},
  };
  for (const Sample &s : samples) {
    EXPECT_STREQ(SearchConstantInt(s.constant, Constant_Zkrc), s.name) << s.constant;
    EXPECT_EQ(SearchConstantIntByString(s.name, Constant_Zkrc), s.constant) << s.name;
  }
  // The usual numbers of the platform.
  EXPECT_EQ(ZKRC_HCONN_ERROR, 2018);
  EXPECT_EQ(ZKRC_NO_MSG_AVAILABLE, 2033);
  EXPECT_EQ(ZKRC_Q_FULL, 2053);
  EXPECT_EQ(ZKFB_QUIT, 256);
  EXPECT_EQ((int32_t)ZKFB_NONE, (int32_t)ZKRC_NONE);
}

TEST(ConstantNamed, FirstRowWinsOnADuplicateValue) {
  // 2120 has two names; the older comes first and is the one shown.
  EXPECT_EQ((int32_t)ZKRC_TRUNCATED, (int32_t)ZKRC_CONVERTED_MSG_TOO_BIG);
  EXPECT_STREQ(SearchConstantInt(ZKRC_TRUNCATED, Constant_Zkrc), "ZKRC_CONVERTED_MSG_TOO_BIG");
  EXPECT_EQ(SearchConstantIntByString("ZKRC_TRUNCATED", Constant_Zkrc), ZKRC_TRUNCATED);
  EXPECT_STREQ(SearchConstantInt(ZKRC_STORAGE_MEDIUM_FULL, Constant_Zkrc), "ZKRC_PAGESET_FULL");
}

TEST(ConstantNamed, SearchByTextMissesWithTheEndValue) {
  EXPECT_EQ(SearchConstantIntByString("ZKRC_NO_SUCH_REASON", Constant_Zkrc), CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("zkfb_quit", Constant_Zkrc), CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("", Constant_Zkrc), CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("TM_OK", Constant_Xarc), CONSTANT_TABLE_END);
  EXPECT_EQ(SearchConstantIntByString("TM_OK", Constant_Axrc), TM_OK);
}

TEST(ConstantNamed, XaAndAxReturnCodes) {
  EXPECT_STREQ(SearchConstantInt(100, Constant_Xarc), "XA_RBROLLBACK");
  EXPECT_STREQ(SearchConstantInt(0, Constant_Xarc), "XA_OK");
  EXPECT_STREQ(SearchConstantInt(-4, Constant_Xarc), "XAER_NOTA");
  EXPECT_STREQ(SearchConstantInt(-9, Constant_Xarc), "XAER_OUTSIDE");
  EXPECT_STREQ(SearchConstantInt(1, Constant_Xarc), "(Unknown AX return value)");
  EXPECT_STREQ(SearchConstantInt(-1, Constant_Xarc), "(Unknown AX return value)");
  EXPECT_STREQ(SearchConstantInt(108, Constant_Xarc), "(Unknown AX return value)");
  EXPECT_EQ((int32_t)XA_RBBASE, (int32_t)XA_RBROLLBACK);
  EXPECT_EQ((int32_t)XA_RBEND, (int32_t)XA_RBTRANSIENT);
  // Every XA row reads as its own constant, and the constants agree.
  for (const ConstantIntEntry *row = Constant_Xarc; row->value != CONSTANT_TABLE_END; row++) {
    EXPECT_TRUE(StartsWith(row->text, "XA_") || StartsWith(row->text, "XAER_")) << row->text;
    EXPECT_EQ(SearchConstantIntByString(row->text, Constant_Xarc), row->value);
    EXPECT_EQ(row->value < 0, StartsWith(row->text, "XAER_")) << row->text;
  }
  EXPECT_EQ(SearchConstantIntByString("XAER_RMFAIL", Constant_Xarc), XAER_RMFAIL);

  EXPECT_STREQ(SearchConstantInt(TM_JOIN, Constant_Axrc), "TM_JOIN");
  EXPECT_STREQ(SearchConstantInt(TMER_PROTO, Constant_Axrc), "TMER_PROTO");
  EXPECT_EQ(TM_JOIN, 2);
  EXPECT_EQ(TMER_PROTO, -3);
  EXPECT_STREQ(SearchConstantInt(3, Constant_Axrc), "(Unknown AX return value)");
}

TEST(ConstantNamed, EmbeddedHeaderFlagsAndChannelExitIds) {
  EXPECT_STREQ(SearchConstantInt(ZKEPH_CCSID_EMBEDDED, Constant_EPH_Flags), "ccsid embedded");
  EXPECT_STREQ(SearchConstantInt(ZKEPH_NONE, Constant_EPH_Flags), "(none)");
  EXPECT_STREQ(SearchConstantInt(2, Constant_EPH_Flags), "(Unknown value)");

  EXPECT_EQ(ZKXT_CHANNEL_SEC_EXIT, 11);
  EXPECT_STREQ(SearchConstantInt(ZKXT_CHANNEL_AUTO_DEF_EXIT, Constant_ChlExitId),
               "CHANNEL_AUTO_DEF_EXIT");
  EXPECT_STREQ(SearchConstantInt(14, Constant_ChlExitId), "CHANNEL_RCV_EXIT");
  EXPECT_STREQ(SearchConstantInt(10, Constant_ChlExitId), "(Unknown ExitId)");
  EXPECT_STREQ(SearchConstantInt(17, Constant_ChlExitId), "(Unknown ExitId)");
}

TEST(ConstantNamed, MessageFormats) {
  int32_t hrfRows = 0;
  for (const ConstantStringEntry *row = Constant_MsgFormat; row->key[0] != '\0'; row++) {
    EXPECT_EQ(std::string(row->key).size(), 8u) << row->key;
    EXPECT_TRUE(StartsWith(row->key, "ZK")) << row->key;
    if (std::string(row->key) == "ZKHRF   ") {
      hrfRows++;
    }
  }
  EXPECT_EQ(hrfRows, 2);
  EXPECT_STREQ(ZKFMT_XMIT_Q_HEADER, "ZKXMIT  ");
  EXPECT_STREQ(SearchConstantString(ZKFMT_XMIT_Q_HEADER, Constant_MsgFormat),
               "Transmission queue header");
  EXPECT_STREQ(SearchConstantString(ZKFMT_STRING, Constant_MsgFormat), "String");
  EXPECT_STREQ(SearchConstantString(ZKFMT_RF_HEADER_2, Constant_MsgFormat),
               "Rules and formatting header 2");
  EXPECT_STREQ(SearchConstantString(ZKFMT_MD_EXTENSION, Constant_MsgFormat),
               "Message descrptor extension");
  EXPECT_STREQ(SearchConstantString(ZKFMT_ADMIN, Constant_MsgFormat), "PCF - Administration");
  EXPECT_STREQ(SearchConstantString("ZKNONE  ", Constant_MsgFormat), "");
}

TEST(ConstantNamed, ModuleNamesIgnoreCase) {
  const char *endText = SearchConstantString("no-such-program", Constant_Module_Name);
  EXPECT_STREQ(endText, "(user application)");
  EXPECT_EQ(CountConstantStringRows(Constant_Module_Name) > 20, true);

  const char *lower = SearchConstantString("endzkm", Constant_Module_Name);
  EXPECT_STRNE(lower, endText);
  EXPECT_STREQ(SearchConstantString("ENDZKM", Constant_Module_Name), lower);
  EXPECT_STREQ(SearchConstantString("EndZkm", Constant_Module_Name), lower);

  const char *version = SearchConstantString("dspzkver", Constant_Module_Name);
  EXPECT_STRNE(version, endText);
  EXPECT_STRNE(version, lower);
  EXPECT_STREQ(SearchConstantString("DSPZKVER", Constant_Module_Name), version);

  // Every row answers for its own name in upper case, with its own text.
  for (const ConstantStringEntry *row = Constant_Module_Name; row->key[0] != '\0'; row++) {
    std::string upper(row->key);
    for (char &c : upper) {
      if (c >= 'a' && c <= 'z') {
        c = (char)(c - 'a' + 'A');
      }
    }
    EXPECT_STREQ(SearchConstantString(upper.c_str(), Constant_Module_Name), row->text) << row->key;
    EXPECT_STRNE(row->text, endText) << row->key;
  }
}

TEST(ConstantNamed, ByteTablesAndTheirEndMarkers) {
  EXPECT_STREQ(SearchConstantByte(0x81, Constant_ApiCallType), "ZKCONN request");
  EXPECT_STREQ(SearchConstantByte(0x91, Constant_ApiCallType), "ZKCONN reply");
  // Only the low 8 bits of the key count.
  EXPECT_STREQ(SearchConstantByte(0x181, Constant_ApiCallType), "ZKCONN request");
  EXPECT_STREQ(SearchConstantByte(0x70, Constant_ApiCallType), "(N/A)");
  EXPECT_STREQ(SearchConstantByte(0xFF, Constant_ApiCallType), "(N/A)");
  EXPECT_STREQ(SearchConstantByte(-1, Constant_ApiCallType), "(N/A)");

  // Each call's request at 0x80 + n has its reply at 0x90 + n.
  for (int32_t n = 1; n <= 15; n++) {
    std::string request = SearchConstantByte(0x80 + n, Constant_ApiCallType);
    std::string reply = SearchConstantByte(0x90 + n, Constant_ApiCallType);
    ASSERT_GT(request.size(), 8u);
    EXPECT_EQ(request.substr(request.size() - 8), " request") << n;
    EXPECT_EQ(reply, request.substr(0, request.size() - 8) + " reply") << n;
  }

  for (const ConstantByteEntry *table :
       {Constant_SendReceiveSegmentStatus, Constant_ZkiSegmentStatus}) {
    std::set<std::string> texts;
    for (const ConstantByteEntry *row = table; (row->key & 0xFF) != 0xFF; row++) {
      texts.insert(row->text);
    }
    EXPECT_EQ(texts, (std::set<std::string>{"first", "middle", "last", "none"}));
    EXPECT_STREQ(SearchConstantByte(0xFF, table), "(others)");
    EXPECT_STREQ(SearchConstantByte(0x77, table), "(others)");
  }
  EXPECT_STREQ(SearchConstantByte(0x10, Constant_SendReceiveSegmentStatus), "first");
  EXPECT_STREQ(SearchConstantByte(0x30, Constant_SendReceiveSegmentStatus), "none");
  EXPECT_STREQ(SearchConstantByte(3, Constant_ZkiSegmentStatus), "last");
}

TEST(ConstantNamed, IntegerListPositions) {
  EXPECT_STREQ(SearchConstantInt(0, Constant_ZkIntListPersistence), "for nonpersistent messages");
  EXPECT_STREQ(SearchConstantInt(1, Constant_ZkIntListPersistence), "for persistent messages");
  EXPECT_STREQ(SearchConstantInt(2, Constant_ZkIntListPersistence), "");
  EXPECT_STREQ(SearchConstantInt(0, Constant_ZkIntListZkot), "Object type - queue");
  EXPECT_STREQ(SearchConstantInt(-987, Constant_ZkIntListZkot), "");
  EXPECT_STREQ(SearchConstantInt(16, Constant_ZkIntListCompression), "");
  EXPECT_STRNE(SearchConstantInt(15, Constant_ZkIntListCompression), "");
  EXPECT_STRNE(SearchConstantInt(1, Constant_ZkIntListPeriod), "");

  // Position n of a list by object type counts object type n + 1, and the
  // disconnect types count by their own value; the words are the types'.
  for (int32_t n = 0; n < CountConstantIntRows(Constant_ZkIntListZkot); n++) {
    EXPECT_EQ(std::string("Object type - ") + SearchConstantInt(n + 1, Constant_Zkot),
              SearchConstantInt(n, Constant_ZkIntListZkot));
  }
  EXPECT_EQ(CountConstantIntRows(Constant_ZkIntListZkdiscType),
            CountConstantIntRows(Constant_Zkdisconnect));
  for (int32_t n = 0; n < CountConstantIntRows(Constant_ZkIntListZkdiscType); n++) {
    EXPECT_EQ(std::string("Disconnect type - ") + SearchConstantInt(n, Constant_Zkdisconnect),
              SearchConstantInt(n, Constant_ZkIntListZkdiscType));
  }
}
