// The message descriptor field by field: every field of both versions, the
// report options and message flags, and the values a descriptor being
// received may hold before the call.
#include <string.h>

#include "format/structures.h"
#include "tests/harness_text.h"
#include "tests/unit/structure_test.h"
#include "text/constant_table.h"
#include "zk/zk.h"

namespace {

struct MessageDescriptor : StructureTest {};

// Every field a distinctive value, host byte order.
ZKMD DistinctiveMd(int32_t version) {
  ZKMD md = ZKMD_DEFAULT;
  md.Version = version;
  md.Report = ZKRO_COA_WITH_DATA | ZKRO_PAN | ZKRO_PASS_MSG_ID;
  md.MsgType = ZKMT_REQUEST;
  md.Expiry = 6000;
  md.Feedback = 275;
  md.Encoding = 546;
  md.CodedCharSetId = 819;
  memcpy(md.Format, "ZKSTR   ", 8);
  md.Priority = 7;
  md.Persistence = ZKPER_PERSISTENT;
  for (int i = 0; i < 24; i++) {
    md.MsgId[i] = (ZKBYTE)(0x41 + i);
    md.CorrelId[i] = (ZKBYTE)(i == 23 ? 1 : 0);
  }
  md.BackoutCount = 3;
  SetBlankPadded(md.ReplyToQ, sizeof md.ReplyToQ, "REPLY.QUEUE");
  SetBlankPadded(md.ReplyToQMgr, sizeof md.ReplyToQMgr, "QM.REPLY");
  SetBlankPadded(md.UserIdentifier, sizeof md.UserIdentifier, "appuser");
  for (int i = 0; i < 32; i++) {
    md.AccountingToken[i] = (ZKBYTE)i;
  }
  SetBlankPadded(md.ApplIdentityData, sizeof md.ApplIdentityData, "identity data");
  md.PutApplType = 6;
  SetBlankPadded(md.PutApplName, sizeof md.PutApplName, "orders/putter");
  SetBlankPadded(md.PutDate, sizeof md.PutDate, "20261123");
  SetBlankPadded(md.PutTime, sizeof md.PutTime, "12345678");
  SetBlankPadded(md.ApplOriginData, sizeof md.ApplOriginData, "ORIG");
  for (int i = 0; i < 24; i++) {
    md.GroupId[i] = (ZKBYTE)(0x61 + i);
  }
  md.MsgSeqNumber = 4;
  md.Offset = 8192;
  md.MsgFlags = ZKMF_MSG_IN_GROUP | ZKMF_LAST_SEGMENT;
  md.OriginalLength = 65536;
  return md;
}

} // namespace

TEST_F(MessageDescriptor, Version1WholeAndNoVersionHeader) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKMD md = DistinctiveMd(1);
  ShowParsedZkmd(cb, &md);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkmd_v1.txt");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(MessageDescriptor, Version2WholeWithItsGroup) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKMD md = DistinctiveMd(2);
  ShowParsedZkmd(cb, &md);
  EXPECT_STRUCTURE_TEXT(capture.Take(), "zkmd_v2.txt");
}

TEST_F(MessageDescriptor, Version3ShowsTheVersion2GroupAndNothingMore) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKMD md = DistinctiveMd(3);
  ShowParsedZkmd(cb, &md);
  std::string text = capture.Take();
  std::string expected = ExpectedStructureText("zkmd_v2.txt");
  const std::string version2 = FieldLineName("Version") + "2\n";
  expected.replace(expected.find(version2), version2.size(), FieldLineName("Version") + "3\n");
  EXPECT_EQ(text, expected);
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(MessageDescriptor, BigEndianDescriptorIsReversed) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKMD md = DistinctiveMd(2);
  ZKMD swapped = md;
  int32_t *words[] = {&swapped.Version,        &swapped.Report,      &swapped.MsgType,
                      &swapped.Expiry,         &swapped.Feedback,    &swapped.Encoding,
                      &swapped.CodedCharSetId, &swapped.Priority,    &swapped.Persistence,
                      &swapped.BackoutCount,   &swapped.PutApplType, &swapped.MsgSeqNumber,
                      &swapped.Offset,         &swapped.MsgFlags,    &swapped.OriginalLength};
  for (int32_t *word : words) {
    *word = (int32_t)__builtin_bswap32((uint32_t)*word);
  }
  ShowParsedZkmd(cb, &md);
  std::string host = capture.Take();
  ShowParsedZkmd(cb, &swapped);
  EXPECT_EQ(capture.Take(), host);
}

TEST_F(MessageDescriptor, ReportGroupsShowTheWidestForm) {
  ShowParsedReportOptions(cb, 0x0F000000, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Report") + "EXCEPTION_WITH_FULL_DATA / DISCARD_MSG\n");
  ShowParsedReportOptions(cb, 0x01000000 | 0x00600000 | 0x100 | 0x3800 | 0x4000, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Report") +
                                "EXCEPTION / EXPIRATION_WITH_DATA / COA / COD_WITH_FULL_DATA / "
                                "PASS_DISCARD_AND_EXPIRY\n");
  ShowParsedReportOptions(cb, 1 | 2 | 4 | 64 | 128, 0);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Report") + "PAN / NAN / ACTIVITY / PASS_MSG_ID / PASS_CORREL_ID\n");
  ShowParsedReportOptions(cb, 0, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Report") + "(none)\n");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(MessageDescriptor, UnknownReportBitIsReportedUnlessEmbedded) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ShowParsedReportOptions(cb, 0x10000001, 0);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Report") + "PAN\n" + UnknownBanner("ZKMD - ZKRO_...", "10000001"));
  EXPECT_NE(capture.Alerts().find("Unknown API attribute : ZKMD - ZKRO_... value 0x10000001"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
  cb->File.UnknownAttributeSeen = 0;
  ShowParsedReportOptions(cb, 0x10000001, 1);
  EXPECT_EQ(capture.Take(), "PAN\n");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(MessageDescriptor, MessageFlagsInTheirOrder) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ShowParsedMsgFlags(cb, 0x1F, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgFlags") +
                                "SEGMENTATION_ALLOWED / MSG_IN_GROUP / LAST_MSG_IN_GROUP / SEGMENT "
                                "/ LAST_SEGMENT\n");
  ShowParsedMsgFlags(cb, 0, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgFlags") + "(none)\n");
  ShowParsedMsgFlags(cb, 0x21, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgFlags") + "SEGMENTATION_ALLOWED\n" +
                                UnknownBanner("ZKMD - ZKMF_...", "00000021"));
  ShowParsedMsgFlags(cb, 0x21, 1);
  EXPECT_EQ(capture.Take(), "SEGMENTATION_ALLOWED\n");
}

TEST_F(MessageDescriptor, UnknownPersistenceBeforeAGetIsShownNotReported) {
  ZKMD md = DistinctiveMd(1);
  md.Persistence = 5;
  SetCall(ZKXF_GET, ZKXR_BEFORE, 0);
  ShowParsedZkmd(cb, &md);
  std::string text = capture.Take();
  EXPECT_NE(text.find(FieldLineName("Persistence") + "5 (Unknown value)\n"), std::string::npos);
  EXPECT_EQ(text.find("Unknown :"), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(MessageDescriptor, UnknownPersistenceOnAPutIsReported) {
  ZKMD md = DistinctiveMd(1);
  md.Persistence = 5;
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ShowParsedZkmd(cb, &md);
  EXPECT_NE(capture.Take().find(FieldLineName("Persistence") + "5 (Unknown value)\n" +
                                UnknownBanner("ZKMD - ZKPER_...", "00000005") +
                                FieldLineName("MsgId")),
            std::string::npos);
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(MessageDescriptor, ReceivedValuesAreReportedAfterAGetUnlessItFailed) {
  ZKMD md = DistinctiveMd(2);
  md.Report = 0x10000000;
  md.MsgFlags = 0x40;
  md.Persistence = -1;
  SetCall(ZKXF_DATA_CONV_ON_GET, ZKXR_BEFORE, 0);
  ShowParsedZkmd(cb, &md);
  EXPECT_EQ(capture.Take().find("Unknown :"), std::string::npos);
  SetCall(ZKXF_GET, ZKXR_AFTER, ZKCC_FAILED);
  ShowParsedZkmd(cb, &md);
  EXPECT_EQ(capture.Take().find("Unknown :"), std::string::npos);
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
  SetCall(ZKXF_GET, ZKXR_AFTER, ZKCC_WARNING);
  ShowParsedZkmd(cb, &md);
  std::string text = capture.Take();
  EXPECT_NE(text.find(UnknownBanner("ZKMD - ZKRO_...", "10000000")), std::string::npos);
  EXPECT_NE(text.find(UnknownBanner("ZKMD - ZKPER_...", "FFFFFFFF")), std::string::npos);
  EXPECT_NE(text.find(UnknownBanner("ZKMD - ZKMF_...", "00000040")), std::string::npos);
}

TEST_F(MessageDescriptor, FeedbackZeroAndAReasonName) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKMD md = DistinctiveMd(1);
  md.Feedback = 0;
  ShowParsedZkmd(cb, &md);
  EXPECT_NE(capture.Take().find(FieldLineName("Feedback") + "0\n"), std::string::npos);
  md.Feedback = 275;
  ShowParsedZkmd(cb, &md);
  std::string line =
      FieldLineName("Feedback") + "275 (" + SearchConstantInt(275, Constant_Zkrc) + ")\n";
  EXPECT_NE(capture.Take().find(line), std::string::npos) << line;
}

TEST_F(MessageDescriptor, MessageTypeAndApplicationTypeWithoutANameAreNumbers) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKMD md = DistinctiveMd(1);
  md.MsgType = 4711;
  md.PutApplType = -77;
  ShowParsedZkmd(cb, &md);
  std::string text = capture.Take();
  EXPECT_NE(text.find(FieldLineName("MsgType") + "4711\n"), std::string::npos) << text;
  EXPECT_NE(text.find(FieldLineName("PutApplType") + "-77\n"), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
}
