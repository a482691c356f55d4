// The object descriptor field by field at every version, the object and
// response records of a distribution list, and the open and close options.
#include <string.h>

#include "format/field_primitives.h"
#include "format/structures.h"
#include "tests/harness_text.h"
#include "tests/unit/structure_test.h"
#include "text/constant_table.h"
#include "zk/zk.h"

namespace {

struct ObjectDescriptor : StructureTest {};

// Every field a distinctive value, host byte order; the strings of version 4
// are found through their offsets.
struct DistinctiveOd {
  ZKOD od = ZKOD_DEFAULT;
  char strings[64];
};

void FillOd(DistinctiveOd *d, int32_t version) {
  ZKOD &od = d->od;
  od.Version = version;
  od.ObjectType = ZKOT_Q;
  SetBlankPadded(od.ObjectName, sizeof od.ObjectName, "ORDERS.IN");
  SetBlankPadded(od.ObjectQMgrName, sizeof od.ObjectQMgrName, "QM.EAST");
  SetBlankPadded(od.DynamicQName, sizeof od.DynamicQName, "TEMP.*");
  SetBlankPadded(od.AlternateUserId, sizeof od.AlternateUserId, "altuser");
  od.RecsPresent = 2;
  od.KnownDestCount = 3;
  od.UnknownDestCount = 4;
  od.InvalidDestCount = 5;
  od.ObjectRecOffset = 1000; // offsets and pointers are not shown
  od.ResponseRecOffset = 2000;
  for (int i = 0; i < 40; i++) {
    od.AlternateSecurityId[i] = (ZKBYTE)(i + 1);
  }
  SetBlankPadded(od.ResolvedQName, sizeof od.ResolvedQName, "ORDERS.LOCAL");
  SetBlankPadded(od.ResolvedQMgrName, sizeof od.ResolvedQMgrName, "QM.WEST");
  memcpy(d->strings, "prices/eu", 9);
  od.ObjectString.VSOffset = (ZKLONG)((char *)d->strings - (char *)&od);
  od.ObjectString.VSLength = 9;
  od.ObjectString.VSCCSID = 1208;
  od.SelectionString.VSLength = 0;
  od.ResObjectString.VSBufSize = 0;
  od.ResolvedType = ZKOT_TOPIC;
}

} // namespace

TEST_F(ObjectDescriptor, EveryVersionWhole) {
  SetCall(ZKXF_OPEN, ZKXR_BEFORE, 0);
  for (int32_t version = 1; version <= 4; version++) {
    DistinctiveOd d;
    FillOd(&d, version);
    ShowParsedZkod(cb, &d.od, nullptr, nullptr, nullptr);
    EXPECT_STRUCTURE_TEXT(capture.Take(), "zkod_v" + std::to_string(version) + ".txt");
  }
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ObjectDescriptor, ChannelExitEndsVersion4AfterResolvedQMgrName) {
  DistinctiveOd d;
  FillOd(&d, 4);
  cb->ExitType = EXIT_TYPE_CHANNEL;
  ShowParsedZkod(cb, &d.od, nullptr, nullptr, nullptr);
  std::string text = capture.Take();
  // Version 3's lines with the version field saying 4, and no header of 4.
  std::string expected = ExpectedStructureText("zkod_v3.txt");
  const std::string version3 = FieldLineName("Version") + "3\n";
  expected.replace(expected.find(version3), version3.size(), FieldLineName("Version") + "4\n");
  EXPECT_EQ(text, expected);
}

TEST_F(ObjectDescriptor, UnreadableStringsShowTheirDescriptorsOnly) {
  DistinctiveOd d;
  FillOd(&d, 4);
  ShowParsedZkod(cb, &d.od, ZKCHARV_STRING_UNREADABLE, ZKCHARV_STRING_UNREADABLE,
                 ZKCHARV_STRING_UNREADABLE);
  std::string text = capture.Take();
  EXPECT_EQ(text.find("Value (in string)"), std::string::npos) << text;
  EXPECT_NE(text.find(FieldLineName("ObjectString")), std::string::npos) << text;
}

TEST_F(ObjectDescriptor, UnknownObjectTypeOnASecondLine) {
  DistinctiveOd d;
  FillOd(&d, 1);
  d.od.ObjectType = 77;
  ShowParsedZkod(cb, &d.od, nullptr, nullptr, nullptr);
  std::string text = capture.Take();
  EXPECT_NE(text.find(FieldLineName("ObjectType") + "\n" + FieldLineName("ObjectType") + "77\n" +
                      UnknownBanner("ZKOD - ZKOT_...", "0000004D") + FieldLineName("ObjectName")),
            std::string::npos)
      << text;
  EXPECT_NE(capture.Alerts().find("Unknown API attribute : ZKOD - ZKOT_... value 0x0000004D"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ObjectDescriptor, ObjectTypesByTheirDescriptorNames) {
  const struct {
    int32_t type;
    const char *shown;
  } cases[] = {{ZKOT_Q, "QUEUE"},
               {ZKOT_ALIAS_Q, "ALIAS_QUEUE"},
               {ZKOT_MODEL_Q, "MODEL_QUEUE"},
               {ZKOT_Q_MGR, "Q_MGR"},
               {ZKOT_TOPIC, "TOPIC"},
               {ZKOT_RESERVED_1, "RESERVED_1"},
               {ZKOT_REMOTE_Q_MGR_NAME, "REMOTE_Q_MGR_NAME"},
               {ZKOT_PROT_POLICY, "PROT_POLICY"}};
  for (const auto &c : cases) {
    DistinctiveOd d;
    FillOd(&d, 1);
    d.od.ObjectType = c.type;
    ShowParsedZkod(cb, &d.od, nullptr, nullptr, nullptr);
    std::string line = FieldLineName("ObjectType") + c.shown + "\n" + FieldLineName("ObjectName");
    EXPECT_NE(capture.Take().find(line), std::string::npos) << line;
  }
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ObjectDescriptor, BigEndianDescriptorIsReversedButResolvedTypeIsNot) {
  DistinctiveOd d;
  FillOd(&d, 4);
  ShowParsedZkod(cb, &d.od, nullptr, nullptr, nullptr);
  std::string host = capture.Take();
  DistinctiveOd s = d;
  int32_t *words[] = {&s.od.Version,        &s.od.ObjectType,       &s.od.RecsPresent,
                      &s.od.KnownDestCount, &s.od.UnknownDestCount, &s.od.InvalidDestCount};
  for (int32_t *word : words) {
    *word = (int32_t)__builtin_bswap32((uint32_t)*word);
  }
  s.od.ObjectString.VSOffset = (ZKLONG)((char *)s.strings - (char *)&s.od);
  ShowParsedZkod(cb, &s.od, nullptr, nullptr, nullptr);
  EXPECT_EQ(capture.Take(), host);
}

TEST_F(ObjectDescriptor, ObjectRecords) {
  ZKOR records[2] = {ZKOR_DEFAULT, ZKOR_DEFAULT};
  SetBlankPadded(records[0].ObjectName, 48, "Q1");
  SetBlankPadded(records[0].ObjectQMgrName, 48, "QM1");
  SetBlankPadded(records[1].ObjectName, 48, "Q2");
  ShowParsedZkor(cb, records, 2);
  EXPECT_EQ(capture.Take(), FieldLineName("ObjectName") + "Q1\n" + FieldLineName("ObjectQMgrName") +
                                "QM1\n" + FieldLineName("ObjectName") + "Q2\n" +
                                FieldLineName("ObjectQMgrName") + "\n");
  ShowParsedZkor(cb, records, 0);
  EXPECT_EQ(capture.Take(), "");
}

TEST_F(ObjectDescriptor, ResponseRecordReasonNamedOnlyAfterTheCall) {
  ZKRR records[2] = {{2, 2085}, {0, 0}};
  SetCall(ZKXF_OPEN, ZKXR_BEFORE, 0);
  ShowParsedZkrr(cb, records, 2);
  EXPECT_EQ(capture.Take(), FieldLineName("CompCode") + "2\n" + FieldLineName("Reason") + "2085\n" +
                                FieldLineName("CompCode") + "0\n" + FieldLineName("Reason") +
                                "0\n");
  SetCall(ZKXF_OPEN, ZKXR_AFTER, 2);
  ShowParsedZkrr(cb, records, 2);
  EXPECT_EQ(capture.Take(), FieldLineName("CompCode") + "2\n" + FieldLineName("Reason") + "2085 (" +
                                SearchConstantInt(2085, Constant_Zkrc) + ")\n" +
                                FieldLineName("CompCode") + "0\n" + FieldLineName("Reason") +
                                "0\n");
  EXPECT_STREQ(SearchConstantInt(2085, Constant_Zkrc), "ZKRC_UNKNOWN_OBJECT_NAME");
}

TEST_F(ObjectDescriptor, OpenOptionsInTheirOrder) {
  ShowParsedZkoo(cb, 0x1FFFFF);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Options") +
                "INPUT_AS_Q_DEF / INPUT_SHARED / INPUT_EXCLUSIVE / BROWSE / OUTPUT / INQUIRE / "
                "SET / BIND_ON_OPEN / BIND_NOT_FIXED / SAVE_ALL_CONTEXT / PASS_IDENTITY_CONTEXT / "
                "PASS_ALL_CONTEXT / SET_IDENTITY_CONTEXT / SET_ALL_CONTEXT / "
                "ALTERNATE_USER_AUTHORITY / FAIL_IF_QUIESCING / RESOLVE_NAMES / RESOLVE_LOCAL_Q / "
                "NO_READ_AHEAD / READ_AHEAD / CO_OP\n");
  ShowParsedZkoo(cb, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Options") + "(none)\n");
  EXPECT_EQ(capture.Alerts(), "");
  ShowParsedZkoo(cb, 0x200010);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Options") + "OUTPUT\n" + UnknownBanner("ZKOPEN - ZKOO_...", "00200010"));
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ObjectDescriptor, CloseOptions) {
  ShowParsedZkco(cb, 47);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Options") + "DELETE / DELETE_PURGE / KEEP_SUB / REMOVE_SUB / QUIESCE\n");
  ShowParsedZkco(cb, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Options") + "(none)\n");
  EXPECT_EQ(capture.Alerts(), "");
  ShowParsedZkco(cb, 16 | 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Options") + "DELETE\n" +
                                UnknownBanner("ZKCLOSE - ZKCO_...", "00000011"));
}
