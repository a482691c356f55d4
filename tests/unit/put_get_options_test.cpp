// The put-message options with the records of a distribution list, and the
// get-message options, field by field: every field of every version, the
// option words and the values shown by bit tests, the output fields a get
// fills in, the byte order of foreign structures and the alias name of a
// resolved queue.
#include <stdlib.h>
#include <string.h>

#include "exit/handle_list.h"
#include "format/structures.h"
#include "tests/harness_text.h"
#include "tests/unit/structure_test.h"
#include "zk/zk.h"

namespace {

struct PutGetOptions : StructureTest {
  ~PutGetOptions() override {
    free(cb->Handles.HandleList);
    cb->Handles.HandleList = nullptr;
    cb->Handles.HandleCapacity = 0;
    cb->Handles.HandleCount = 0;
  }
  // A queue opened under `name` that resolved to `resolved`, as the open
  // records it in the handle list.
  void Open(int32_t handle, const char *name, const char *resolved) {
    queueHandleListAddEntry(cb, name, 1, 1, 1, 1, 1, 1);
    queueHandleListSetHandleToLastEntry(cb, handle, name, resolved);
  }
  // The text of a put-message options structure, taken from the capture.
  std::string Pmo(const ZKPMO &pmo) {
    ShowParsedZkpmo(cb, &pmo);
    return capture.Take();
  }
  std::string Gmo(const ZKGMO &gmo, int32_t exitReason, int32_t compCode) {
    SetCall(ZKXF_GET, exitReason, compCode);
    ShowParsedZkgmo(cb, &gmo, exitReason, compCode);
    return capture.Take();
  }
  void ExpectNoReport() {
    EXPECT_EQ(capture.Alerts(), "");
    EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
  }
  void ExpectReport(const std::string &name, const std::string &hexValue) {
    std::string alert = "Unknown API attribute : " + name + " value 0x" + hexValue;
    EXPECT_NE(capture.Alerts().find(alert), std::string::npos) << capture.Alerts();
    EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
  }
};

// Whether `text` holds `lines` and says which text it looked in when not.
::testing::AssertionResult Holds(const std::string &text, const std::string &lines) {
  if (text.find(lines) != std::string::npos) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "lines\n" << lines << "not in\n" << text;
}

int32_t Swap(int32_t word) {
  return (int32_t)__builtin_bswap32((uint32_t)word);
}

// Every field a distinctive value, host byte order. The record offsets and
// pointers are set too, though they are never shown.
ZKPMO DistinctivePmo(int32_t version) {
  ZKPMO pmo = ZKPMO_DEFAULT;
  pmo.Version = version;
  // LOGICAL_ORDER comes before DEFAULT_CONTEXT in the list, though its bit
  // is higher.
  pmo.Options = ZKPMO_SYNCPOINT | ZKPMO_NEW_MSG_ID | ZKPMO_LOGICAL_ORDER | ZKPMO_DEFAULT_CONTEXT |
                ZKPMO_FAIL_IF_QUIESCING | ZKPMO_RETAIN | ZKPMO_NOT_OWN_SUBS;
  pmo.Timeout = 2500;
  pmo.Context = 0x00000105;
  pmo.KnownDestCount = 11;
  pmo.UnknownDestCount = 22;
  pmo.InvalidDestCount = 33;
  SetBlankPadded(pmo.ResolvedQName, sizeof pmo.ResolvedQName, "APP.TARGET.QUEUE");
  SetBlankPadded(pmo.ResolvedQMgrName, sizeof pmo.ResolvedQMgrName, "QM.REMOTE");
  pmo.RecsPresent = 2;
  pmo.PutMsgRecFields = ZKPMRF_MSG_ID | ZKPMRF_FEEDBACK | ZKPMRF_ACCOUNTING_TOKEN;
  pmo.PutMsgRecOffset = 176;
  pmo.ResponseRecOffset = 392;
  pmo.PutMsgRecPtr = (ZKPTR)0x12345678;
  pmo.ResponseRecPtr = (ZKPTR)0x23456789;
  pmo.OriginalMsgHandle = 0x0000000A00000001LL;
  pmo.NewMsgHandle = 0x0000000200000007LL;
  pmo.Action = ZKACTP_REPLY;
  pmo.PubLevel = 7;
  return pmo;
}

// The integers of a put-message options structure in the other byte order.
ZKPMO SwappedPmo(ZKPMO pmo) {
  int32_t *words[] = {&pmo.Version,           &pmo.Options,          &pmo.Timeout,
                      &pmo.KnownDestCount,    &pmo.UnknownDestCount, &pmo.InvalidDestCount,
                      &pmo.RecsPresent,       &pmo.PutMsgRecFields,  &pmo.PutMsgRecOffset,
                      &pmo.ResponseRecOffset, &pmo.Action,           &pmo.PubLevel};
  for (int32_t *word : words) {
    *word = Swap(*word);
  }
  return pmo;
}

ZKGMO DistinctiveGmo(int32_t version) {
  ZKGMO gmo = ZKGMO_DEFAULT;
  gmo.Version = version;
  // FAIL_IF_QUIESCING comes before SYNCPOINT in the list.
  gmo.Options = ZKGMO_WAIT | ZKGMO_FAIL_IF_QUIESCING | ZKGMO_SYNCPOINT | ZKGMO_BROWSE_FIRST |
                ZKGMO_ACCEPT_TRUNCATED_MSG | ZKGMO_CONVERT | ZKGMO_PROPERTIES_IN_HANDLE;
  gmo.WaitInterval = 30000;
  gmo.Signal1 = ZKEC_WAIT_CANCELED;
  gmo.Signal2 = 77;
  SetBlankPadded(gmo.ResolvedQName, sizeof gmo.ResolvedQName, "APP.INPUT.QUEUE");
  gmo.MatchOptions = ZKMO_MATCH_CORREL_ID | ZKMO_MATCH_GROUP_ID;
  gmo.GroupStatus = ZKGS_MSG_IN_GROUP;
  gmo.SegmentStatus = ZKSS_LAST_SEGMENT;
  gmo.Segmentation = ZKSEG_ALLOWED;
  gmo.Reserved1 = 'x';
  for (int i = 0; i < 16; i++) {
    gmo.MsgToken[i] = (ZKBYTE)(0x30 + i);
  }
  gmo.ReturnedLength = 4096;
  gmo.Reserved2 = 99;
  gmo.MsgHandle = 0x0000000200000001LL;
  return gmo;
}

ZKGMO SwappedGmo(ZKGMO gmo) {
  int32_t *words[] = {&gmo.Version, &gmo.Options,      &gmo.WaitInterval,   &gmo.Signal1,
                      &gmo.Signal2, &gmo.MatchOptions, &gmo.ReturnedLength, &gmo.Reserved2};
  for (int32_t *word : words) {
    *word = Swap(*word);
  }
  return gmo;
}

// Hex and character images of the byte fields the records are filled with.
const char kMsgIdHex[] = "41424344 45464748 494A4B4C 4D4E4F50 51525354 55565758  "
                         "[ABCDEFGHIJKLMNOPQRSTUVWX]";
const char kGroupIdHex[] = "61626364 65666768 696A6B6C 6D6E6F70 71727374 75767778  "
                           "[abcdefghijklmnopqrstuvwx]";
const char kTokenHex[] = "30313233 34353637 38393A3B 3C3D3E3F 40414243 44454647 48494A4B "
                         "4C4D4E4F  [0123456789:;<=>?@ABCDEFGHIJKLMNO]";

} // namespace

// ---------------------------------------------------------------------------
// Put-message options, whole.

TEST_F(PutGetOptions, PmoVersion1Whole) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  EXPECT_STRUCTURE_TEXT(Pmo(DistinctivePmo(1)), "zkpmo_v1.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, PmoVersion2Whole) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  EXPECT_STRUCTURE_TEXT(Pmo(DistinctivePmo(2)), "zkpmo_v2.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, PmoVersion3Whole) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  EXPECT_STRUCTURE_TEXT(Pmo(DistinctivePmo(3)), "zkpmo_v3.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, PmoZeroHandlesShowNull) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  pmo.Context = 0;
  pmo.OriginalMsgHandle = 0;
  std::string text = Pmo(pmo);
  EXPECT_TRUE(Holds(text, FieldLineName("Context") + "(null)\n" + FieldLineName("KnownDestCount")));
  EXPECT_TRUE(Holds(text, FieldLineName("OriginalMsgHandle") + "(null)\n" +
                              FieldLineName("NewMsgHandle") + "07000000 02000000  [........]\n"));
}

// ---------------------------------------------------------------------------
// Put-message options: the option word.

TEST_F(PutGetOptions, PmoOptionsZeroShowNone) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(1);
  pmo.Options = 0;
  EXPECT_TRUE(
      Holds(Pmo(pmo), FieldLineName("Options") + "(none)\n" + FieldLineName("Timeout") + "2500\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, PmoOptionsBitZeroIsUnknownAndShowsNone) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(1);
  pmo.Options = 0x00000001;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Options") + "(none)\n" +
                                  UnknownBanner("ZKPMO - Options", "00000001") +
                                  FieldLineName("Timeout") + "2500\n"));
  ExpectReport("ZKPMO - Options", "00000001");
}

TEST_F(PutGetOptions, PmoUnknownOptionBitBesideKnownOnes) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(1);
  pmo.Options = ZKPMO_SYNCPOINT | ZKPMO_SCOPE_QMGR | 0x00100000;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Options") + "SYNCPOINT / SCOPE_QMGR\n" +
                                  UnknownBanner("ZKPMO - Options", "04100002") +
                                  FieldLineName("Timeout")));
  ExpectReport("ZKPMO - Options", "04100002");
}

TEST_F(PutGetOptions, PmoEveryKnownOptionInItsOrder) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(1);
  pmo.Options = (int32_t)~0xE3500019u;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Options") +
                                  "SYNCPOINT / NO_SYNCPOINT / NEW_MSG_ID / NEW_CORREL_ID / "
                                  "LOGICAL_ORDER / NO_CONTEXT / DEFAULT_CONTEXT / "
                                  "PASS_IDENTITY_CONTEXT / PASS_ALL_CONTEXT / "
                                  "SET_IDENTITY_CONTEXT / SET_ALL_CONTEXT / "
                                  "ALTERNATE_USER_AUTHORITY / FAIL_IF_QUIESCING / "
                                  "RESOLVE_LOCAL_Q / WARN_IF_NO_SUBS_MATCHED / ASYNC_RESPONSE / "
                                  "SYNC_RESPONSE / RETAIN / MD_FOR_OUTPUT_ONLY / SCOPE_QMGR / "
                                  "SUPPRESS_REPLYTO / NOT_OWN_SUBS\n" +
                                  FieldLineName("Timeout")));
  ExpectNoReport();
}

// ---------------------------------------------------------------------------
// Put-message options: Action, shown by bit tests.

TEST_F(PutGetOptions, PmoActionForwardAlsoNamesReport) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  pmo.Action = ZKACTP_FORWARD;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Action") + "FORWARD / REPORT\n" +
                                  FieldLineName("PubLevel") + "7\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, PmoActionReplyReportAndNew) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  pmo.Action = ZKACTP_REPLY;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Action") + "REPLY / REPORT\n" +
                                  FieldLineName("PubLevel") + "7\n"));
  pmo.Action = ZKACTP_REPORT;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Action") + "FORWARD / REPLY / REPORT\n" +
                                  FieldLineName("PubLevel") + "7\n"));
  pmo.Action = ZKACTP_NEW;
  EXPECT_TRUE(
      Holds(Pmo(pmo), FieldLineName("Action") + "(none)\n" + FieldLineName("PubLevel") + "7\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, PmoActionAboveThreeIsUnknown) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  pmo.Action = 4;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Action") + "(none)\n" +
                                  UnknownBanner("ZKPMO - Action", "00000004") +
                                  FieldLineName("PubLevel") + "7\n"));
  ExpectReport("ZKPMO - Action", "00000004");
  pmo.Action = 5;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("Action") + "FORWARD / REPORT\n" +
                                  UnknownBanner("ZKPMO - Action", "00000005") +
                                  FieldLineName("PubLevel")));
}

// ---------------------------------------------------------------------------
// Put-message record fields and the records.

TEST_F(PutGetOptions, PutMsgRecFieldsNames) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ShowParsedZkpmrf(cb, 0x1F);
  EXPECT_EQ(capture.Take(), FieldLineName("PutMsgRecFields") +
                                "MSG_ID / CORREL_ID / GROUP_ID / FEEDBACK / ACCOUNTING_TOKEN\n");
  ShowParsedZkpmrf(cb, ZKPMRF_CORREL_ID | ZKPMRF_FEEDBACK);
  EXPECT_EQ(capture.Take(), FieldLineName("PutMsgRecFields") + "CORREL_ID / FEEDBACK\n");
  ShowParsedZkpmrf(cb, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("PutMsgRecFields") + "(none)\n");
  ExpectNoReport();
}

TEST_F(PutGetOptions, PutMsgRecFieldsUnknownBitIsReported) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ShowParsedZkpmrf(cb, 0x20);
  EXPECT_EQ(capture.Take(), FieldLineName("PutMsgRecFields") + "(none)\n" +
                                UnknownBanner("PutMsgRecFields", "00000020"));
  ExpectReport("PutMsgRecFields", "00000020");
}

TEST_F(PutGetOptions, PutMsgRecFieldsUnknownBitInsideThePmo) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  pmo.PutMsgRecFields = 0x21;
  EXPECT_TRUE(Holds(Pmo(pmo), FieldLineName("PutMsgRecFields") + "MSG_ID\n" +
                                  UnknownBanner("PutMsgRecFields", "00000021") +
                                  "|> --- PMO version 3----------\n"));
  ExpectReport("PutMsgRecFields", "00000021");
}

TEST_F(PutGetOptions, PutMsgRecordsWithAllFieldsShowTenLines) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMR records[2] = {ZKPMR_DEFAULT, ZKPMR_DEFAULT};
  for (int i = 0; i < 24; i++) {
    records[0].MsgId[i] = (ZKBYTE)(0x41 + i);
    records[0].GroupId[i] = (ZKBYTE)(0x61 + i);
    records[1].GroupId[i] = (ZKBYTE)(0x41 + i);
  }
  records[0].CorrelId[23] = 1;
  records[0].Feedback = 275;
  for (int i = 0; i < 32; i++) {
    records[0].AccountingToken[i] = (ZKBYTE)(0x30 + i);
  }
  records[1].Feedback = -1;
  ShowParsedZkpmr(cb, records, 2, 0x1F);
  std::string text = capture.Take();
  EXPECT_EQ(text, FieldLineName("MsgId") + kMsgIdHex + "\n" + FieldLineName("CorrelId") +
                      "00000000 00000000 00000000 00000000 00000000 00000001  "
                      "[........................]\n" +
                      FieldLineName("GroupId") + kGroupIdHex + "\n" + FieldLineName("Feedback") +
                      "275\n" + FieldLineName("AccountingToken") + kTokenHex + "\n" +
                      FieldLineName("MsgId") + "(null)\n" + FieldLineName("CorrelId") + "(null)\n" +
                      FieldLineName("GroupId") + kMsgIdHex + "\n" + FieldLineName("Feedback") +
                      "-1\n" + FieldLineName("AccountingToken") + "(null)\n");
  EXPECT_EQ(TextLines(text).size(), 10u);
  ExpectNoReport();
}

TEST_F(PutGetOptions, PutMsgRecordsArePackedWithoutGaps) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  // Two records of a group id and a feedback code: 28 bytes each.
  unsigned char records[56] = {};
  for (int i = 0; i < 24; i++) {
    records[i] = (unsigned char)(0x61 + i);
    records[28 + i] = (unsigned char)(0x41 + i);
  }
  int32_t feedback[2] = {1, 258};
  memcpy(records + 24, &feedback[0], 4);
  memcpy(records + 52, &feedback[1], 4);
  ShowParsedZkpmr(cb, records, 2, ZKPMRF_GROUP_ID | ZKPMRF_FEEDBACK);
  EXPECT_EQ(capture.Take(), FieldLineName("GroupId") + kGroupIdHex + "\n" +
                                FieldLineName("Feedback") + "1\n" + FieldLineName("GroupId") +
                                kMsgIdHex + "\n" + FieldLineName("Feedback") + "258\n");
  ExpectNoReport();
}

TEST_F(PutGetOptions, PutMsgRecordsWithoutFieldsOrRecordsShowNothing) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMR records[2] = {ZKPMR_DEFAULT, ZKPMR_DEFAULT};
  records[0].Feedback = 275;
  ShowParsedZkpmr(cb, records, 2, 0);
  EXPECT_EQ(capture.Take(), "");
  ShowParsedZkpmr(cb, records, 0, 0x1F);
  EXPECT_EQ(capture.Take(), "");
  ShowParsedZkpmr(cb, records, -1, 0x1F);
  EXPECT_EQ(capture.Take(), "");
  ExpectNoReport();
}

TEST_F(PutGetOptions, PutMsgRecordsUnknownFieldsReportedAfterTheLastRecord) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMR records[2] = {ZKPMR_DEFAULT, ZKPMR_DEFAULT};
  for (int i = 0; i < 24; i++) {
    records[0].MsgId[i] = (ZKBYTE)(0x41 + i);
  }
  // With MsgId alone a record is 24 bytes: the second one is the first's
  // CorrelId, zeros.
  ShowParsedZkpmr(cb, records, 2, 0x21);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgId") + kMsgIdHex + "\n" + FieldLineName("MsgId") +
                                "(null)\n" + UnknownBanner("ZKPMRF_...", "00000021"));
  ExpectReport("ZKPMRF_...", "00000021");
}

// ---------------------------------------------------------------------------
// Put-message options: byte order.

TEST_F(PutGetOptions, BigEndianPmoShowsTheSameAsHostOrder) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  ZKPMO swapped = SwappedPmo(pmo);
  ASSERT_EQ(((const unsigned char *)&swapped.Version)[0], 0);
  std::string host = Pmo(pmo);
  EXPECT_EQ(Pmo(swapped), host);
  EXPECT_STRUCTURE_TEXT(host, "zkpmo_v3.txt");
  // The groups follow the Version word in host order.
  EXPECT_EQ(Pmo(SwappedPmo(DistinctivePmo(1))), ExpectedStructureText("zkpmo_v1.txt"));
  EXPECT_EQ(Pmo(SwappedPmo(DistinctivePmo(2))), ExpectedStructureText("zkpmo_v2.txt"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, BigEndianPmoUnknownBitsReportedInHostOrder) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  ZKPMO pmo = DistinctivePmo(3);
  pmo.Options = ZKPMO_SYNCPOINT | 0x00000008;
  EXPECT_TRUE(Holds(Pmo(SwappedPmo(pmo)), FieldLineName("Options") + "SYNCPOINT\n" +
                                              UnknownBanner("ZKPMO - Options", "0000000A")));
  ExpectReport("ZKPMO - Options", "0000000A");
}

// ---------------------------------------------------------------------------
// Get-message options, whole.

TEST_F(PutGetOptions, GmoVersion1Whole) {
  EXPECT_STRUCTURE_TEXT(Gmo(DistinctiveGmo(1), ZKXR_AFTER, ZKCC_OK), "zkgmo_v1.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoVersion2Whole) {
  EXPECT_STRUCTURE_TEXT(Gmo(DistinctiveGmo(2), ZKXR_AFTER, ZKCC_OK), "zkgmo_v2.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoVersion3Whole) {
  EXPECT_STRUCTURE_TEXT(Gmo(DistinctiveGmo(3), ZKXR_AFTER, ZKCC_OK), "zkgmo_v3.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoVersion4Whole) {
  EXPECT_STRUCTURE_TEXT(Gmo(DistinctiveGmo(4), ZKXR_AFTER, ZKCC_OK), "zkgmo_v4.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoBeforeTheCallShowsTheSame) {
  EXPECT_EQ(Gmo(DistinctiveGmo(4), ZKXR_BEFORE, 0), ExpectedStructureText("zkgmo_v4.txt"));
  ExpectNoReport();
}

// ---------------------------------------------------------------------------
// Get-message options: the option word.

TEST_F(PutGetOptions, GmoOptionsZeroShowNone) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Options = 0;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("Options") + "(none)\n" + FieldLineName("WaitInterval")));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoEveryKnownOptionInItsOrder) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Options = 0x1FF7FFFF;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("Options") +
                        "WAIT / SET_SIGNAL / FAIL_IF_QUIESCING / SYNCPOINT / "
                        "SYNCPOINT_IF_PERSISTENT / NO_SYNCPOINT / MARK_SKIP_BACKOUT / "
                        "BROWSE_FIRST / BROWSE_NEXT / BROWSE_MSG_UNDER_CURSOR / "
                        "MSG_UNDER_CURSOR / LOCK / UNLOCK / ACCEPT_TRUNCATED_MSG / CONVERT / "
                        "LOGICAL_ORDER / COMPLETE_MSG / ALL_MSGS_AVAILABLE / "
                        "ALL_SEGMENTS_AVAILABLE / MARK_BROWSE_HANDLE / MARK_BROWSE_CO_OP / "
                        "UNMARK_BROWSE_CO_OP / UNMARK_BROWSE_HANDLE / UNMARKED_BROWSE_MSG / "
                        "PROPERTIES_FORCE_ZKRFH2 / NO_PROPERTIES / PROPERTIES_IN_HANDLE / "
                        "PROPERTIES_COMPATIBILITY\n" +
                        FieldLineName("WaitInterval")));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoUnknownOptionBitsAreReported) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Options = ZKGMO_WAIT | 0x00080000;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("Options") + "WAIT\n" +
                                                  UnknownBanner("ZKGMO - Options", "00080001") +
                                                  FieldLineName("WaitInterval")));
  ExpectReport("ZKGMO - Options", "00080001");
  gmo.Options = 0x20000000;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("Options") + "(none)\n" +
                                                  UnknownBanner("ZKGMO - Options", "20000000")));
  gmo.Options = 0x40000000;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("Options") + "(none)\n" +
                                                  UnknownBanner("ZKGMO - Options", "40000000")));
}

TEST_F(PutGetOptions, GmoTopOptionBitIsNotReported) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Options = (int32_t)0x80000000u | ZKGMO_WAIT;
  std::string text = Gmo(gmo, ZKXR_AFTER, ZKCC_OK);
  EXPECT_TRUE(Holds(text, FieldLineName("Options") + "WAIT\n" + FieldLineName("WaitInterval")));
  EXPECT_EQ(text.find("Unknown :"), std::string::npos) << text;
  ExpectNoReport();
}

// ---------------------------------------------------------------------------
// Get-message options: Signal1, shown by bit tests.

TEST_F(PutGetOptions, GmoSignalTwoNamesThreeEvents) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Signal1 = 2;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("Signal1") +
                        "MSG_ARRIVED / WAIT_INTERVAL_EXPIRED / CONNECTION_QUIESCING\n" +
                        FieldLineName("Signal2") + "77\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoSignalOtherCodes) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Signal1 = 1;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("Signal1") +
                                                  "WAIT_INTERVAL_EXPIRED / Q_MGR_QUIESCING\n" +
                                                  FieldLineName("Signal2")));
  gmo.Signal1 = 0;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("Signal1") + "(none)\n" + FieldLineName("Signal2")));
  gmo.Signal1 = 7;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("Signal1") +
                        "MSG_ARRIVED / WAIT_INTERVAL_EXPIRED / WAIT_CANCELED / Q_MGR_QUIESCING / "
                        "CONNECTION_QUIESCING\n" +
                        FieldLineName("Signal2")));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoSignalEightIsUnknown) {
  ZKGMO gmo = DistinctiveGmo(1);
  gmo.Signal1 = 8;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("Signal1") + "(none)\n" +
                                                  UnknownBanner("ZKGMO - ZKEC_...", "00000008") +
                                                  FieldLineName("Signal2") + "77\n"));
  ExpectReport("ZKGMO - ZKEC_...", "00000008");
  gmo.Signal1 = 9;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("Signal1") + "WAIT_INTERVAL_EXPIRED / Q_MGR_QUIESCING\n" +
                        UnknownBanner("ZKGMO - ZKEC_...", "00000009") + FieldLineName("Signal2")));
}

// ---------------------------------------------------------------------------
// Get-message options: match options.

TEST_F(PutGetOptions, GmoMatchOptionsMinusOneIsNotUnknown) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.MatchOptions = -1;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_OK),
                    FieldLineName("MatchOptions") +
                        "MATCH_MSG_ID / MATCH_CORREL_ID / MATCH_GROUP_ID / MATCH_MSG_SEQ_NUMBER / "
                        "MATCH_OFFSET / MATCH_MSG_TOKEN\n" +
                        FieldLineName("GroupStatus")));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoMatchOptionsNoneAndAllKnown) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.MatchOptions = 0;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("MatchOptions") + "(none)\n" + FieldLineName("GroupStatus")));
  gmo.MatchOptions = 63;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0),
                    FieldLineName("MatchOptions") +
                        "MATCH_MSG_ID / MATCH_CORREL_ID / MATCH_GROUP_ID / MATCH_MSG_SEQ_NUMBER / "
                        "MATCH_OFFSET / MATCH_MSG_TOKEN\n" +
                        FieldLineName("GroupStatus")));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoMatchOptionsAboveSixtyThreeIsUnknown) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.MatchOptions = 64;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("MatchOptions") + "(none)\n" +
                                                  UnknownBanner("ZKGMO - ZKMO_...", "00000040") +
                                                  FieldLineName("GroupStatus")));
  ExpectReport("ZKGMO - ZKMO_...", "00000040");
  gmo.MatchOptions = 65;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("MatchOptions") + "MATCH_MSG_ID\n" +
                                                  UnknownBanner("ZKGMO - ZKMO_...", "00000041") +
                                                  FieldLineName("GroupStatus")));
}

// ---------------------------------------------------------------------------
// Get-message options: the status characters a get fills in.

TEST_F(PutGetOptions, GmoStatusNames) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.GroupStatus = ZKGS_NOT_IN_GROUP;
  gmo.SegmentStatus = ZKSS_NOT_A_SEGMENT;
  gmo.Segmentation = ZKSEG_INHIBITED;
  EXPECT_TRUE(
      Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_OK), FieldLineName("GroupStatus") + "NOT_IN_GROUP\n" +
                                               FieldLineName("SegmentStatus") + "NOT_A_SEGMENT\n" +
                                               FieldLineName("Segmentation") + "INHIBITED\n"));
  gmo.GroupStatus = ZKGS_LAST_MSG_IN_GROUP;
  gmo.SegmentStatus = ZKSS_SEGMENT;
  EXPECT_TRUE(
      Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_OK), FieldLineName("GroupStatus") + "LAST_MSG_IN_GROUP\n" +
                                               FieldLineName("SegmentStatus") + "SEGMENT\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoGroupStatusZeroBeforeAGetHasNoBanner) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.GroupStatus = 0;
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_BEFORE, 0), FieldLineName("GroupStatus") + "00  [.]\n" +
                                                  FieldLineName("SegmentStatus") +
                                                  "LAST_SEGMENT\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoGroupStatusZeroAfterASuccessfulGetHasTheBanner) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.GroupStatus = 0;
  EXPECT_TRUE(
      Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_OK), FieldLineName("GroupStatus") + "00  [.]\n" +
                                               UnknownBanner("ZKGMO - ZKGS_...", "00000000") +
                                               FieldLineName("SegmentStatus") + "LAST_SEGMENT\n"));
  ExpectReport("ZKGMO - ZKGS_...", "00000000");
}

TEST_F(PutGetOptions, GmoStatusesAfterAGetThatDidNotCompleteAreNotReported) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.GroupStatus = 0;
  gmo.SegmentStatus = 'X';
  gmo.Segmentation = 0;
  const std::string lines = FieldLineName("GroupStatus") + "00  [.]\n" +
                            FieldLineName("SegmentStatus") + "58  [X]\n" +
                            FieldLineName("Segmentation") + "00  [.]\n";
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_WARNING), lines));
  EXPECT_TRUE(Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_FAILED), lines));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoSegmentStatusAndSegmentationReportedAfterASuccessfulGet) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.SegmentStatus = 'X';
  gmo.Segmentation = 0;
  EXPECT_TRUE(
      Holds(Gmo(gmo, ZKXR_AFTER, ZKCC_OK), FieldLineName("GroupStatus") + "MSG_IN_GROUP\n" +
                                               FieldLineName("SegmentStatus") + "58  [X]\n" +
                                               UnknownBanner("ZKGMO - ZKSS_...", "00000058") +
                                               FieldLineName("Segmentation") + "00  [.]\n" +
                                               UnknownBanner("ZKGMO - ZKSEG_...", "00000000")));
  ExpectReport("ZKGMO - ZKSS_...", "00000058");
  ExpectReport("ZKGMO - ZKSEG_...", "00000000");
}

// ---------------------------------------------------------------------------
// Get-message options: byte order. Version 2 is tested on the Version word
// in host order, versions 3 and 4 on the word as stored.

TEST_F(PutGetOptions, BigEndianGmoVersion4ShowsTheSameAsHostOrder) {
  ZKGMO gmo = DistinctiveGmo(4);
  ZKGMO swapped = SwappedGmo(gmo);
  ASSERT_EQ(((const unsigned char *)&swapped.Version)[0], 0);
  std::string host = Gmo(gmo, ZKXR_AFTER, ZKCC_OK);
  EXPECT_EQ(Gmo(swapped, ZKXR_AFTER, ZKCC_OK), host);
  EXPECT_STRUCTURE_TEXT(host, "zkgmo_v4.txt");
  ExpectNoReport();
}

TEST_F(PutGetOptions, BigEndianGmoVersion1ShowsOnlyVersion1) {
  EXPECT_EQ(Gmo(SwappedGmo(DistinctiveGmo(1)), ZKXR_AFTER, ZKCC_OK),
            ExpectedStructureText("zkgmo_v1.txt"));
}

TEST_F(PutGetOptions, BigEndianGmoVersions2And3ShowTheVersion3And4Groups) {
  // Stored as 00 00 00 02, the word read as it is passes 3 and 4: every
  // group is shown, with the Version line in host order.
  std::string all = ExpectedStructureText("zkgmo_v4.txt");
  const std::string version4 = FieldLineName("Version") + "4\n";
  ASSERT_EQ(all.find(version4), 0u);
  for (int32_t version : {2, 3}) {
    std::string expected = all;
    expected.replace(0, version4.size(), FieldLineName("Version") + std::to_string(version) + "\n");
    EXPECT_EQ(Gmo(SwappedGmo(DistinctiveGmo(version)), ZKXR_AFTER, ZKCC_OK), expected) << version;
  }
  ExpectNoReport();
}

TEST_F(PutGetOptions, BigEndianGmoUnknownValuesReportedInHostOrder) {
  ZKGMO gmo = DistinctiveGmo(2);
  gmo.MatchOptions = 64;
  std::string text = Gmo(SwappedGmo(gmo), ZKXR_AFTER, ZKCC_OK);
  EXPECT_TRUE(Holds(text, FieldLineName("MatchOptions") + "(none)\n" +
                              UnknownBanner("ZKGMO - ZKMO_...", "00000040")));
  ExpectReport("ZKGMO - ZKMO_...", "00000040");
}

// ---------------------------------------------------------------------------
// The alias or model queue a resolved name was opened under.

TEST_F(PutGetOptions, PmoShowsTheAliasOfTheResolvedQueue) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  Open(5, "APP.OTHER", "APP.ELSEWHERE");
  Open(6, "APP.ALIAS", "APP.TARGET.QUEUE");
  EXPECT_TRUE(Holds(Pmo(DistinctivePmo(1)), FieldLineName("ResolvedQName") + "APP.TARGET.QUEUE\n" +
                                                FieldLineName("(alias/model name)") +
                                                "APP.ALIAS\n" + FieldLineName("ResolvedQMgrName") +
                                                "QM.REMOTE\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, GmoShowsTheModelOfTheResolvedQueue) {
  Open(9, "APP.MODEL", "APP.INPUT.QUEUE");
  EXPECT_TRUE(Holds(Gmo(DistinctiveGmo(2), ZKXR_AFTER, ZKCC_OK),
                    FieldLineName("ResolvedQName") + "APP.INPUT.QUEUE\n" +
                        FieldLineName("(alias/model name)") + "APP.MODEL\n" +
                        "|> --- GMO version 2----------\n"));
  ExpectNoReport();
}

TEST_F(PutGetOptions, NoAliasLineWithoutAnAliasOfTheResolvedQueue) {
  SetCall(ZKXF_PUT, ZKXR_BEFORE, 0);
  // An empty list.
  EXPECT_STRUCTURE_TEXT(Pmo(DistinctivePmo(1)), "zkpmo_v1.txt");
  EXPECT_STRUCTURE_TEXT(Gmo(DistinctiveGmo(1), ZKXR_AFTER, ZKCC_OK), "zkgmo_v1.txt");
  // Aliases of other queues, and the resolved queues opened under their own
  // names.
  Open(5, "APP.ALIAS", "APP.ELSEWHERE");
  Open(6, "APP.TARGET.QUEUE", "APP.TARGET.QUEUE");
  Open(7, "APP.INPUT.QUEUE", nullptr);
  EXPECT_STRUCTURE_TEXT(Pmo(DistinctivePmo(1)), "zkpmo_v1.txt");
  EXPECT_STRUCTURE_TEXT(Gmo(DistinctiveGmo(1), ZKXR_AFTER, ZKCC_OK), "zkgmo_v1.txt");
  // A blank resolved name matches nothing.
  ZKPMO pmo = DistinctivePmo(1);
  SetBlankPadded(pmo.ResolvedQName, sizeof pmo.ResolvedQName, "");
  std::string text = Pmo(pmo);
  EXPECT_TRUE(
      Holds(text, FieldLineName("ResolvedQName") + "\n" + FieldLineName("ResolvedQMgrName")));
  EXPECT_EQ(text.find("(alias/model name)"), std::string::npos) << text;
  ExpectNoReport();
}
