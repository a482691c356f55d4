// The records of ZKSTAT, ZKSUB, ZKSUBRQ, ZKCTL, ZKCB and the message-consumer
// callback: their structures field by field at every version (ZKSD, ZKSRO,
// ZKSTS, ZKCTLO, ZKCBD, ZKCBC) with the operation, action and status-type
// codes and every unknown value they report; the dumps of those structures
// at the length of their version, unknown versions included; each
// handler's lines; the names of subscriptions and of delivered messages;
// registrations with and without a descriptor; callbacks without a
// descriptor or get options; summary-only mode; and that the handlers
// change nothing.
#include <gtest/gtest.h>

#include <stddef.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "exit/control_block.h"
#include "exit/handle_list.h"
#include "format/v7_structures.h"
#include "handlers/handlers.h"
#include "handlers/short_dumps.h"
#include "handlers/v7_dumps.h"
#include "tests/harness_text.h"
#include "tests/unit/capture.h"
#include "tests/unit/dump_test_support.h"
#include "tests/unit/handler_fixture.h"
#include "tests/unit/structure_test.h"
#include "zk/zk.h"

namespace {

typedef std::vector<std::string> Lines;

// A field line: "|> ", the name in 25 columns, ": ", the value, a newline.
std::string F(const std::string &name, const std::string &value) {
  return FieldLineName(name) + value + "\n";
}

// The lines of a variable-length string: its five fields, then its value
// when one is given.
std::string Charv(const std::string &name, int32_t offset, const std::string &bufSize,
                  const std::string &length, const std::string &ccsid,
                  const std::string &value = "") {
  std::string text = F(name, "") + F("  VSPtr", "(null)") +
                     F("  VSOffset", std::to_string(offset)) + F("  VSBufSize", bufSize);
  text += length == "(null terminate)" ? F("VSLength", length) : F("  VSLength", length);
  text += F("  VSCCSID", ccsid);
  if (!value.empty()) {
    text += F("  Value (in string)", value);
  }
  return text;
}

// ---------------------------------------------------------------------------
// Structures with every field a distinctive value, their strings in the
// bytes after them and found through offsets.

struct DistinctiveSd {
  ZKSD sd = ZKSD_DEFAULT;
  char strings[64] = {};
};

void FillSd(DistinctiveSd *d) {
  ZKSD &sd = d->sd;
  sd.Options = ZKSO_CREATE | ZKSO_DURABLE | ZKSO_FAIL_IF_QUIESCING | ZKSO_READ_AHEAD;
  SetBlankPadded(sd.ObjectName, sizeof sd.ObjectName, "SPORTS");
  SetBlankPadded(sd.AlternateUserId, sizeof sd.AlternateUserId, "altuser");
  for (int i = 0; i < 40; i++) {
    sd.AlternateSecurityId[i] = (ZKBYTE)(i + 1);
  }
  sd.SubExpiry = 3000;
  memcpy(d->strings, "Sports/Scores", 13);
  sd.ObjectString.VSOffset = (ZKLONG)offsetof(DistinctiveSd, strings);
  sd.ObjectString.VSLength = 13;
  sd.ObjectString.VSCCSID = 1208;
  memcpy(d->strings + 16, "scores", 7);
  sd.SubName.VSOffset = (ZKLONG)offsetof(DistinctiveSd, strings) + 16;
  sd.SubName.VSLength = -1;
  memcpy(d->strings + 24, "user data", 9);
  sd.SubUserData.VSOffset = (ZKLONG)offsetof(DistinctiveSd, strings) + 24;
  sd.SubUserData.VSLength = 9;
  for (int i = 0; i < 24; i++) {
    sd.SubCorrelId[i] = (ZKBYTE)('A' + i);
  }
  sd.PubPriority = ZKPRI_PRIORITY_AS_PARENT;
  SetBlankPadded(sd.PubApplIdentityData, sizeof sd.PubApplIdentityData, "ident-data");
  sd.SubLevel = 2;
  // An output string: a buffer of 16 bytes the call fills.
  sd.ResObjectString.VSOffset = (ZKLONG)offsetof(DistinctiveSd, strings) + 40;
  sd.ResObjectString.VSBufSize = 16;
  memcpy(d->strings + 40, "Sports/Scores", 13);
}

const std::string kSecurityId = "01020304 05060708 090A0B0C 0D0E0F10 11121314 15161718 191A1B1C "
                                "1D1E1F20 21222324 25262728  [..............................."
                                " !\"#$%&'(]";
const std::string kCorrelId =
    "41424344 45464748 494A4B4C 4D4E4F50 51525354 55565758  [ABCDEFGHIJKLMNOPQRSTUVWX]";

// The text of the distinctive subscription descriptor, with its options
// and its priority as given.
std::string SdText(const std::string &options, const std::string &priority) {
  return F("Version", "1") + F("Options", options) + F("ObjectName", "SPORTS") +
         F("AlternateUserId", "altuser") + F("AlternateSecurityId", kSecurityId) +
         F("SubExpiry", "3000") +
         Charv("ObjectString", 312, "(use VSLength)", "13", "1208 (UTF-8)", "Sports/Scores") +
         Charv("SubName", 328, "(use VSLength)", "(null terminate)", "-3 (appl)", "scores") +
         Charv("SubUserData", 336, "(use VSLength)", "9", "-3 (appl)", "user data") +
         F("SubCorrelId", kCorrelId) + F("PubPriority", priority) +
         F("PubAccountingToken", "(null)") + F("PubApplIdentityData", "ident-data") +
         Charv("SelectionString", 0, "(use VSLength)", "0", "-3 (appl)") + F("SubLevel", "2") +
         Charv("ResObjectString", 352, "16", "0", "-3 (appl)", "Sports/Scores");
}

struct DistinctiveSts {
  ZKSTS sts = ZKSTS_DEFAULT;
  char strings[32] = {};
};

void FillSts(DistinctiveSts *d, int32_t version) {
  ZKSTS &sts = d->sts;
  sts.Version = version;
  sts.CompCode = ZKCC_FAILED;
  sts.Reason = ZKRC_UNKNOWN_OBJECT_NAME;
  sts.PutSuccessCount = 7;
  sts.PutWarningCount = 1;
  sts.PutFailureCount = 2;
  sts.ObjectType = ZKOT_TOPIC;
  SetBlankPadded(sts.ObjectName, 48, "SPORTS");
  SetBlankPadded(sts.ObjectQMgrName, 48, "QM.EAST");
  SetBlankPadded(sts.ResolvedObjectName, 48, "SPORTS.LOCAL");
  SetBlankPadded(sts.ResolvedQMgrName, 48, "QM.WEST");
  memcpy(d->strings, "Sports/Scores", 13);
  sts.ObjectString.VSOffset = (ZKLONG)offsetof(DistinctiveSts, strings);
  sts.ObjectString.VSLength = 13;
  memcpy(d->strings + 16, "sub-1", 6);
  sts.SubName.VSOffset = (ZKLONG)offsetof(DistinctiveSts, strings) + 16;
  sts.SubName.VSLength = -1;
  sts.OpenOptions = 2;
  sts.SubOptions = 1;
}

const std::string kStsVersion1 =
    F("CompCode", "2") + F("Reason", "2085 (ZKRC_UNKNOWN_OBJECT_NAME)") +
    F("PutSuccessCount", "7") + F("PutWarningCount", "1") + F("PutFailureCount", "2") +
    F("ObjectType", "topic") + F("ObjectName", "SPORTS") + F("ObjectQMgrName", "QM.EAST") +
    F("ResolvedObjectName", "SPORTS.LOCAL") + F("ResolvedQMgrName", "QM.WEST");
const std::string kStsVersion2 =
    "|> --- STS version 2----------\n" +
    Charv("ObjectString", 272, "(use VSLength)", "13", "-3 (appl)", "Sports/Scores") +
    Charv("SubName", 288, "(use VSLength)", "(null terminate)", "-3 (appl)", "sub-1");

ZKCBC DistinctiveCbc(int32_t version) {
  ZKCBC cbc = ZKCBC_DEFAULT;
  cbc.Version = version;
  cbc.CallType = ZKCBCT_MSG_REMOVED;
  cbc.Hobj = 0x51;
  cbc.CallbackArea = (ZKPTR)(uintptr_t)0x1000; // the areas are not shown
  cbc.ConnectionArea = (ZKPTR)(uintptr_t)0x2000;
  cbc.CompCode = ZKCC_WARNING;
  cbc.Reason = ZKRC_TRUNCATED_MSG_ACCEPTED;
  cbc.State = ZKCS_SUSPENDED;
  cbc.DataLength = 40;
  cbc.BufferLength = 30;
  cbc.Flags = ZKCBCF_READA_BUFFER_EMPTY;
  cbc.ReconnectDelay = 250;
  return cbc;
}

const std::string kCbcVersion1 = F("CallType", "MSG_REMOVED") + F("Hobj", "0x00000051") +
                                 F("CompCode", "1") + F("Reason", "2079") +
                                 F("State", "SUSPENDED") + F("DataLength", "40") +
                                 F("BufferLength", "30") + F("Flags", "READA_BUFFER_EMPTY");

struct V7Structures : StructureTest {
  void ExpectReported(const std::string &name, const std::string &hex) {
    EXPECT_NE(capture.Alerts().find("Unknown API attribute : " + name + " value 0x" + hex),
              std::string::npos)
        << capture.Alerts();
    EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
  }
  void ExpectNothingReported() {
    EXPECT_EQ(capture.Alerts(), "");
    EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
  }
};

} // namespace

// ---------------------------------------------------------------------------
// Subscription descriptor and subscription request

TEST_F(V7Structures, SubscriptionDescriptorEveryField) {
  DistinctiveSd d;
  FillSd(&d);
  ShowParsedZksd(cb, &d.sd);
  EXPECT_EQ(capture.Take(),
            SdText("CREATE / DURABLE / FAIL_IF_QUIESCING / READ_AHEAD", "as parent"));
  ExpectNothingReported();
}

TEST_F(V7Structures, SubscriptionOptionsEveryNameAndUnknownBits) {
  DistinctiveSd d;
  FillSd(&d);
  d.sd.Options = (ZKLONG)0x1C743BFF;
  ShowParsedZksd(cb, &d.sd);
  EXPECT_EQ(capture.Take(),
            SdText("ALTER / CREATE / RESUME / DURABLE / GROUP_SUB / MANAGED / "
                   "SET_IDENTITY_CONTEXT / NO_MULTICAST / FIXED_USERID / ANY_USERID / "
                   "PUBLICATIONS_ON_REQUEST / NEW_PUBLICATIONS_ONLY / FAIL_IF_QUIESCING / "
                   "ALTERNATE_USER_AUTHORITY / WILDCARD_CHAR / WILDCARD_TOPIC / SET_CORREL_ID / "
                   "SCOPE_QMGR / NO_READ_AHEAD / READ_AHEAD",
                   "as parent"));
  ExpectNothingReported();

  // 0x400 and 0x20000000 are no option: the known ones are named, then the
  // whole word is reported after the line.
  d.sd.Options = ZKSO_ALTER | 0x400 | 0x20000000;
  ShowParsedZksd(cb, &d.sd);
  std::string text = capture.Take();
  EXPECT_NE(text.find(F("Options", "ALTER") + UnknownBanner("ZKSD - Options", "20000401") +
                      F("ObjectName", "SPORTS")),
            std::string::npos)
      << text;
  ExpectReported("ZKSD - Options", "20000401");

  d.sd.Options = ZKSO_NONE;
  ShowParsedZksd(cb, &d.sd);
  EXPECT_NE(capture.Take().find(F("Options", "(none)")), std::string::npos);
}

TEST_F(V7Structures, PublicationPriorityByMeaningOrNumber) {
  const struct {
    int32_t priority;
    const char *shown;
  } cases[] = {{-1, "as queue definition"},
               {-2, "as parent"},
               {-3, "as published"},
               {-4, "-4"},
               {0, "0"},
               {9, "9"}};
  for (const auto &c : cases) {
    DistinctiveSd d;
    FillSd(&d);
    d.sd.PubPriority = c.priority;
    ShowParsedZksd(cb, &d.sd);
    EXPECT_EQ(capture.Take(), SdText("CREATE / DURABLE / FAIL_IF_QUIESCING / READ_AHEAD", c.shown))
        << c.priority;
  }
  ExpectNothingReported();
}

TEST_F(V7Structures, SubscriptionRequestOptions) {
  ZKSRO sro = ZKSRO_DEFAULT;
  sro.NumPubs = 3;
  ShowParsedZksro(cb, &sro);
  EXPECT_EQ(capture.Take(), F("Version", "1") + F("Options", "(none)") + F("NumPubs", "3"));
  sro.Options = ZKSRO_FAIL_IF_QUIESCING;
  ShowParsedZksro(cb, &sro);
  EXPECT_EQ(capture.Take(),
            F("Version", "1") + F("Options", "FAIL_IF_QUIESCING") + F("NumPubs", "3"));
  ExpectNothingReported();
  sro.Options = ZKSRO_FAIL_IF_QUIESCING | 1;
  ShowParsedZksro(cb, &sro);
  EXPECT_EQ(capture.Take(), F("Version", "1") + F("Options", "FAIL_IF_QUIESCING") +
                                UnknownBanner("ZKSRO - Options", "00002001") + F("NumPubs", "3"));
  ExpectReported("ZKSRO - Options", "00002001");
}

TEST_F(V7Structures, ActionIsPublicationOrReported) {
  ShowParsedZksr(cb, 0);
  EXPECT_EQ(capture.Take(), F("Action", "(none)"));
  ShowParsedZksr(cb, ZKSR_ACTION_PUBLICATION);
  EXPECT_EQ(capture.Take(), F("Action", "PUBLICATION"));
  ExpectNothingReported();
  ShowParsedZksr(cb, 2);
  EXPECT_EQ(capture.Take(), F("Action", "(none)") + UnknownBanner("ZKSR_...", "00000002"));
  ShowParsedZksr(cb, -1);
  EXPECT_EQ(capture.Take(), F("Action", "PUBLICATION") + UnknownBanner("ZKSR_...", "FFFFFFFF"));
  ExpectReported("ZKSR_...", "FFFFFFFF");
}

// ---------------------------------------------------------------------------
// Status

TEST_F(V7Structures, StatusVersion1) {
  DistinctiveSts d;
  FillSts(&d, 1);
  ShowParsedZksts(cb, &d.sts);
  EXPECT_EQ(capture.Take(), F("Version", "1") + kStsVersion1);
  ExpectNothingReported();
}

TEST_F(V7Structures, StatusVersion2DecodesItsOptionWordsAsStatusTypes) {
  DistinctiveSts d;
  FillSts(&d, 2);
  ShowParsedZksts(cb, &d.sts);
  EXPECT_EQ(capture.Take(), F("Version", "2") + kStsVersion1 + kStsVersion2 +
                                F("OpenOptions", "RECONNECTION_ERROR") +
                                F("SubOptions", "RECONNECTION"));
  ExpectNothingReported();

  // Open options 16 are no status type: no line, only the report.
  d.sts.OpenOptions = ZKOO_OUTPUT;
  d.sts.SubOptions = 0;
  ShowParsedZksts(cb, &d.sts);
  EXPECT_EQ(capture.Take(), F("Version", "2") + kStsVersion1 + kStsVersion2 +
                                UnknownBanner("ZKSTAT_TYPE_...", "00000010") +
                                F("SubOptions", "ASYNC_ERROR"));
  ExpectReported("ZKSTAT_TYPE_...", "00000010");
}

TEST_F(V7Structures, StatusReasonZeroAndObjectTypes) {
  DistinctiveSts d;
  FillSts(&d, 1);
  d.sts.CompCode = ZKCC_OK;
  d.sts.Reason = ZKRC_NONE;
  d.sts.ObjectType = ZKOT_Q;
  ShowParsedZksts(cb, &d.sts);
  std::string text = capture.Take();
  EXPECT_NE(text.find(F("CompCode", "0") + F("Reason", "0") + F("PutSuccessCount", "7")),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(F("ObjectType", "queue")), std::string::npos) << text;
  d.sts.ObjectType = 77;
  ShowParsedZksts(cb, &d.sts);
  text = capture.Take();
  EXPECT_NE(text.find(F("ObjectType", "(Unknown value)") + F("ObjectName", "SPORTS")),
            std::string::npos)
      << text;
  ExpectNothingReported();
}

TEST_F(V7Structures, StatusTypes) {
  ShowParsedZkstatType(cb, "Type", ZKSTAT_TYPE_ASYNC_ERROR);
  ShowParsedZkstatType(cb, "Type", ZKSTAT_TYPE_RECONNECTION);
  ShowParsedZkstatType(cb, "Type", ZKSTAT_TYPE_RECONNECTION_ERROR);
  EXPECT_EQ(capture.Take(),
            F("Type", "ASYNC_ERROR") + F("Type", "RECONNECTION") + F("Type", "RECONNECTION_ERROR"));
  ExpectNothingReported();
  ShowParsedZkstatType(cb, "Type", 3);
  ShowParsedZkstatType(cb, "Type", -1);
  EXPECT_EQ(capture.Take(), UnknownBanner("ZKSTAT_TYPE_...", "00000003") +
                                UnknownBanner("ZKSTAT_TYPE_...", "FFFFFFFF"));
  ExpectReported("ZKSTAT_TYPE_...", "00000003");
}

// ---------------------------------------------------------------------------
// Operation and control options

TEST_F(V7Structures, Operations) {
  ShowParsedZkop(cb, ZKOP_START);
  ShowParsedZkop(cb, ZKOP_REGISTER | ZKOP_SUSPEND);
  ShowParsedZkop(cb, 0x30307);
  ShowParsedZkop(cb, 0);
  EXPECT_EQ(capture.Take(),
            F("Operation", "START") + F("Operation", "REGISTER / SUSPEND") +
                F("Operation", "START / START_WAIT / STOP / REGISTER / DEREGISTER / SUSPEND / "
                               "RESUME") +
                F("Operation", "(none)"));
  ExpectNothingReported();
  ShowParsedZkop(cb, ZKOP_STOP | 0x8);
  EXPECT_EQ(capture.Take(),
            F("Operation", "STOP") + UnknownBanner("ZKCB/ZKCTL - ZKOP_...", "0000000C"));
  ExpectReported("ZKCB/ZKCTL - ZKOP_...", "0000000C");
}

TEST_F(V7Structures, ControlOptionsEveryField) {
  ZKCTLO ctlo = ZKCTLO_DEFAULT;
  ctlo.Options = ZKCTLO_THREAD_AFFINITY | ZKCTLO_FAIL_IF_QUIESCING;
  ctlo.Reserved = 99; // not shown
  ctlo.ConnectionArea = (ZKPTR)(uintptr_t)0x2000;
  ShowParsedZkctlo(cb, &ctlo);
  EXPECT_EQ(capture.Take(), F("Version", "1") +
                                F("Options", "THREAD_AFFINITY / FAIL_IF_QUIESCING") +
                                F("ConnectionArea", "0x00002000"));
  ctlo.Options = ZKCTLO_NONE;
  ctlo.ConnectionArea = nullptr;
  ShowParsedZkctlo(cb, &ctlo);
  EXPECT_EQ(capture.Take(),
            F("Version", "1") + F("Options", "(none)") + F("ConnectionArea", "(null)"));
  ExpectNothingReported();
}

TEST_F(V7Structures, ControlOptionFourIsReportedUnderTheOperationsName) {
  ZKCTLO ctlo = ZKCTLO_DEFAULT;
  ctlo.Options = 4;
  ShowParsedZkctlo(cb, &ctlo);
  EXPECT_EQ(capture.Take(), F("Version", "1") + F("Options", "(none)") +
                                UnknownBanner("ZKCB/ZKCTL - ZKOP_...", "00000004") +
                                F("ConnectionArea", "(null)"));
  ExpectReported("ZKCB/ZKCTL - ZKOP_...", "00000004");
}

// ---------------------------------------------------------------------------
// Callback descriptor and callback context

TEST_F(V7Structures, CallbackDescriptorEveryField) {
  ZKCBD cbd = ZKCBD_DEFAULT;
  cbd.Options = ZKCBDO_START_CALL | ZKCBDO_REGISTER_CALL | ZKCBDO_FAIL_IF_QUIESCING;
  cbd.CallbackArea = (ZKPTR)(uintptr_t)0x1000;
  SetBlankPadded(cbd.CallbackName, sizeof cbd.CallbackName, "consume");
  ShowParsedZkcbd(cb, &cbd);
  EXPECT_EQ(capture.Take(), F("Version", "1") + F("CallbackType", "MESSAGE_CONSUMER") +
                                F("Options", "START_CALL / REGISTER_CALL / FAIL_IF_QUIESCING") +
                                F("CallbackArea", "0x00001000") + F("CallbackFunction", "(null)") +
                                F("CallbackName", "consume") + F("MaxMsgLength", "-1"));

  cbd.CallbackType = ZKCBT_EVENT_HANDLER;
  cbd.Options = 0x2305;
  cbd.CallbackArea = nullptr;
  cbd.CallbackFunction = (ZKPTR)(uintptr_t)0xABCDEF01u;
  SetBlankPadded(cbd.CallbackName, sizeof cbd.CallbackName, "");
  cbd.MaxMsgLength = 4096;
  ShowParsedZkcbd(cb, &cbd);
  EXPECT_EQ(capture.Take(),
            F("Version", "1") + F("CallbackType", "EVENT_HANDLER") +
                F("Options",
                  "START_CALL / STOP_CALL / REGISTER_CALL / DEREGISTER_CALL / FAIL_IF_QUIESCING") +
                F("CallbackArea", "(null)") + F("CallbackFunction", "0xABCDEF01") +
                F("CallbackName", "") + F("MaxMsgLength", "4096"));
  ExpectNothingReported();
}

TEST_F(V7Structures, CallbackTypesAndUnknownOptions) {
  ZKCBD cbd = ZKCBD_DEFAULT;
  // 3 names both types and is not reported; above 3 is.
  cbd.CallbackType = 3;
  ShowParsedZkcbd(cb, &cbd);
  EXPECT_NE(capture.Take().find(F("CallbackType", "MESSAGE_CONSUMER / EVENT_HANDLER") +
                                F("Options", "(none)")),
            std::string::npos);
  cbd.CallbackType = 0;
  ShowParsedZkcbd(cb, &cbd);
  EXPECT_NE(capture.Take().find(F("CallbackType", "(none)") + F("Options", "(none)")),
            std::string::npos);
  ExpectNothingReported();
  cbd.CallbackType = 4;
  cbd.Options = ZKCBDO_STOP_CALL | 0x2;
  ShowParsedZkcbd(cb, &cbd);
  std::string text = capture.Take();
  EXPECT_NE(text.find(F("CallbackType", "(none)") +
                      UnknownBanner("ZKCBD - CallbackType", "00000004") +
                      F("Options", "STOP_CALL") + UnknownBanner("ZKCBD - Options", "00000006") +
                      F("CallbackArea", "(null)")),
            std::string::npos)
      << text;
  ExpectReported("ZKCBD - CallbackType", "00000004");
  ExpectReported("ZKCBD - Options", "00000006");
}

TEST_F(V7Structures, CallbackContextVersion1And2) {
  ZKCBC cbc = DistinctiveCbc(1);
  ShowParsedZkcbc(cb, &cbc);
  EXPECT_EQ(capture.Take(), F("Version", "1") + kCbcVersion1);
  // Version 2 adds the delay, without a version line.
  cbc = DistinctiveCbc(2);
  ShowParsedZkcbc(cb, &cbc);
  EXPECT_EQ(capture.Take(), F("Version", "2") + kCbcVersion1 + F("ReconnectDelay", "250"));
  ExpectNothingReported();
}

TEST_F(V7Structures, CallbackContextCallTypesStatesAndFlags) {
  const char *callTypes[] = {"START_CALL", "STOP_CALL",   "REGISTER_CALL",  "DEREGISTER_CALL",
                             "EVENT_CALL", "MSG_REMOVED", "MSG_NOT_REMOVED"};
  for (int32_t type = 1; type <= 7; type++) {
    ZKCBC cbc = DistinctiveCbc(1);
    cbc.CallType = type;
    ShowParsedZkcbc(cb, &cbc);
    EXPECT_NE(capture.Take().find(F("CallType", callTypes[type - 1]) + F("Hobj", "0x00000051")),
              std::string::npos)
        << type;
  }
  const char *states[] = {"NONE", "SUSPENDED_TEMPORARY", "SUSPENDED_USER_ACTION", "SUSPENDED",
                          "STOPPED"};
  for (int32_t state = 0; state <= 4; state++) {
    ZKCBC cbc = DistinctiveCbc(1);
    cbc.State = state;
    ShowParsedZkcbc(cb, &cbc);
    EXPECT_NE(capture.Take().find(F("State", states[state]) + F("DataLength", "40")),
              std::string::npos)
        << state;
  }
  ZKCBC cbc = DistinctiveCbc(1);
  cbc.Flags = 0;
  ShowParsedZkcbc(cb, &cbc);
  EXPECT_NE(capture.Take().find(F("Flags", "(none)")), std::string::npos);
  ExpectNothingReported();

  // A handle of all ones is still a handle in hex.
  cbc.Hobj = -1;
  cbc.CallType = 0;
  cbc.State = 9;
  cbc.Flags = 3;
  ShowParsedZkcbc(cb, &cbc);
  EXPECT_EQ(capture.Take(), F("Version", "1") + F("CallType", "0") +
                                UnknownBanner("ZKCBC - ZKCBCT_...", "00000000") +
                                F("Hobj", "0xFFFFFFFF") + F("CompCode", "1") + F("Reason", "2079") +
                                F("State", "9") + UnknownBanner("ZKCBC - ZKCS_...", "00000009") +
                                F("DataLength", "40") + F("BufferLength", "30") +
                                F("Flags", "READA_BUFFER_EMPTY") +
                                UnknownBanner("ZKCBC - ZKCBCF_...", "00000003"));
  ExpectReported("ZKCBC - ZKCBCT_...", "00000000");
  ExpectReported("ZKCBC - ZKCS_...", "00000009");
  ExpectReported("ZKCBC - ZKCBCF_...", "00000003");
}

// ---------------------------------------------------------------------------
// The dumps

namespace {

struct V7Dumps : V7Structures {
  void SetUp() override { cb->File.NoAddress = 1; }
};

} // namespace

TEST_F(V7Dumps, SubscriptionDescriptorWithItsFiveStrings) {
  DistinctiveSd d;
  FillSd(&d);
  ShowZKSD(cb, &d.sd);
  std::string text = capture.Take();
  EXPECT_EQ(Titles(text),
            (Lines{Title("SD", 312), Title("Variable-ObjectString", 13),
                   Title("Variable-SubName", 7), Title("Variable-SubUserData", 9),
                   Title("Variable-SelectionString", 0), Title("Variable-ResObjectString", 16)}));
  Lines lines = SplitTextLines(text);
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[1], Dump("00000000:53442020 01000000 0A200010 53504F52", "SD  ..... ..SPOR"));
  size_t strings = text.find(Title("Variable-ObjectString", 13));
  ASSERT_NE(strings, std::string::npos);
  EXPECT_EQ(text.substr(strings),
            Title("Variable-ObjectString", 13) + "\n" +
                Dump("00000000:53706F72 74732F53 636F7265 73", "Sports/Scores") + "\n" +
                Title("Variable-SubName", 7) + "\n" + Dump("00000000:73636F72 657300", "scores.") +
                "\n" + Title("Variable-SubUserData", 9) + "\n" +
                Dump("00000000:75736572 20646174 61", "user data") + "\n" +
                Title("Variable-SelectionString", 0) + "\n" +
                Title("Variable-ResObjectString", 16) + "\n" +
                Dump("00000000:53706F72 74732F53 636F7265 73000000", "Sports/Scores...") + "\n" +
                SdText("CREATE / DURABLE / FAIL_IF_QUIESCING / READ_AHEAD", "as parent"));
  ExpectNothingReported();

  cb->Settings.ShowParsedData = 0;
  ShowZKSD(cb, &d.sd);
  text = capture.Take();
  EXPECT_EQ(text.find("|>"), std::string::npos) << text;
  EXPECT_EQ(Titles(text).size(), 6u);
}

TEST_F(V7Dumps, StatusByVersion) {
  DistinctiveSts d;
  FillSts(&d, 1);
  ShowZKSTS(cb, &d.sts);
  std::string text = capture.Take();
  EXPECT_EQ(Titles(text), Lines{Title("STS", 224)});
  EXPECT_NE(text.find("\n" + F("Version", "1") + kStsVersion1), std::string::npos) << text;
  EXPECT_EQ(text.substr(text.size() - kStsVersion1.size()), kStsVersion1);

  FillSts(&d, 2);
  ShowZKSTS(cb, &d.sts);
  text = capture.Take();
  EXPECT_EQ(Titles(text), (Lines{Title("STS", 272), Title("Variable-ObjectString", 13),
                                 Title("Variable-SubName", 6)}));
  EXPECT_NE(text.find(Title("Variable-SubName", 6) + "\n" +
                      Dump("00000000:7375622D 3100", "sub-1.") + "\n" + F("Version", "2") +
                      kStsVersion1 + kStsVersion2 + F("OpenOptions", "RECONNECTION_ERROR") +
                      F("SubOptions", "RECONNECTION")),
            std::string::npos)
      << text;
  ExpectNothingReported();
}

TEST_F(V7Dumps, EachStructureAtItsLength) {
  ZKSRO sro = ZKSRO_DEFAULT;
  sro.NumPubs = 2;
  ShowZKSRO(cb, &sro);
  EXPECT_EQ(capture.Take(),
            Title("SRO", 16) + "\n" +
                Dump("00000000:53524F20 01000000 00000000 02000000", "SRO ............") + "\n" +
                F("Version", "1") + F("Options", "(none)") + F("NumPubs", "2"));
  ZKCTLO ctlo = ZKCTLO_DEFAULT;
  ctlo.Options = ZKCTLO_FAIL_IF_QUIESCING;
  ShowZKCTLO(cb, &ctlo);
  EXPECT_EQ(capture.Take(),
            Title("CTLO", 20) + "\n" +
                Dump("00000000:43544C4F 01000000 00200000 00000000", "CTLO..... ......") + "\n" +
                Dump("00000010:00000000", "....") + "\n" + F("Version", "1") +
                F("Options", "FAIL_IF_QUIESCING") + F("ConnectionArea", "(null)"));
  ZKCBD cbd = ZKCBD_DEFAULT;
  ShowZKCBD(cb, &cbd);
  std::string text = capture.Take();
  EXPECT_EQ(Titles(text), Lines{Title("CBD", 156)});
  EXPECT_NE(text.find(Dump("00000090:20202020 20202020 FFFFFFFF", "        ....") + "\n" +
                      F("Version", "1") + F("CallbackType", "MESSAGE_CONSUMER")),
            std::string::npos)
      << text;
  ZKCBC cbc = DistinctiveCbc(1);
  ShowZKCBC(cb, &cbc);
  text = capture.Take();
  EXPECT_EQ(Titles(text), Lines{Title("CBC", 48)});
  EXPECT_NE(text.find(Dump("00000020:03000000 28000000 1E000000 01000000", "....(...........") +
                      "\n" + F("Version", "1") + kCbcVersion1),
            std::string::npos)
      << text;
  cbc = DistinctiveCbc(2);
  ShowZKCBC(cb, &cbc);
  text = capture.Take();
  EXPECT_EQ(Titles(text), Lines{Title("CBC", 52)});
  EXPECT_NE(text.find(Dump("00000030:FA000000", "....") + "\n" + F("Version", "2")),
            std::string::npos)
      << text;
  ExpectNothingReported();

  // Without ShowParsedData: the dumps alone.
  cb->Settings.ShowParsedData = 0;
  ShowZKSRO(cb, &sro);
  ShowZKCTLO(cb, &ctlo);
  ShowZKCBD(cb, &cbd);
  ShowZKCBC(cb, &cbc);
  text = capture.Take();
  EXPECT_EQ(text.find("|>"), std::string::npos) << text;
  EXPECT_EQ(Titles(text),
            (Lines{Title("SRO", 16), Title("CTLO", 20), Title("CBD", 156), Title("CBC", 52)}));
}

TEST_F(V7Dumps, UnknownVersionsAreReportedAndShownAtTheHighestKnownLength) {
  DistinctiveSd d;
  FillSd(&d);
  d.sd.Version = 2;
  ShowZKSD(cb, &d.sd);
  std::string text = capture.Take();
  EXPECT_EQ(text.substr(0, VersionBanner("ZKSD", 2).size()), VersionBanner("ZKSD", 2));
  EXPECT_EQ(Titles(text)[0], Title("SD", 312));
  EXPECT_NE(text.find(F("Version", "2") +
                      F("Options", "CREATE / DURABLE / FAIL_IF_QUIESCING / READ_AHEAD")),
            std::string::npos)
      << text;

  DistinctiveSts s;
  FillSts(&s, 3);
  ShowZKSTS(cb, &s.sts);
  text = capture.Take();
  EXPECT_EQ(text.substr(0, VersionBanner("ZKSTS", 3).size()), VersionBanner("ZKSTS", 3));
  EXPECT_EQ(Titles(text), (Lines{Title("STS", 272), Title("Variable-ObjectString", 13),
                                 Title("Variable-SubName", 6)}));
  EXPECT_NE(text.find(F("Version", "3") + kStsVersion1 + kStsVersion2 +
                      F("OpenOptions", "RECONNECTION_ERROR")),
            std::string::npos)
      << text;

  ZKSRO sro = ZKSRO_DEFAULT;
  sro.Version = 2;
  ShowZKSRO(cb, &sro);
  text = capture.Take();
  EXPECT_EQ(text.substr(0, VersionBanner("ZKSRO", 2).size()), VersionBanner("ZKSRO", 2));
  EXPECT_EQ(Titles(text), Lines{Title("SRO", 16)});

  ZKCTLO ctlo = ZKCTLO_DEFAULT;
  ctlo.Version = 5;
  ShowZKCTLO(cb, &ctlo);
  text = capture.Take();
  EXPECT_EQ(text.substr(0, VersionBanner("ZKCTLO", 5).size()), VersionBanner("ZKCTLO", 5));
  EXPECT_EQ(Titles(text), Lines{Title("CTLO", 20)});

  ZKCBD cbd = ZKCBD_DEFAULT;
  cbd.Version = 2;
  ShowZKCBD(cb, &cbd);
  text = capture.Take();
  EXPECT_EQ(text.substr(0, VersionBanner("ZKCBD", 2).size()), VersionBanner("ZKCBD", 2));
  EXPECT_EQ(Titles(text), Lines{Title("CBD", 156)});

  ZKCBC cbc = DistinctiveCbc(3);
  ShowZKCBC(cb, &cbc);
  text = capture.Take();
  EXPECT_EQ(text.substr(0, VersionBanner("ZKCBC", 3).size()), VersionBanner("ZKCBC", 3));
  EXPECT_EQ(Titles(text), Lines{Title("CBC", 52)});
  EXPECT_NE(text.find(F("Version", "3") + kCbcVersion1 + F("ReconnectDelay", "250")),
            std::string::npos)
      << text;

  for (const char *name : {"ZKSD", "ZKSTS", "ZKSRO", "ZKCTLO", "ZKCBD", "ZKCBC"}) {
    EXPECT_NE(capture.Alerts().find(std::string("Unknown API structure : ") + name),
              std::string::npos)
        << name;
  }
}

TEST_F(V7Dumps, NullStructuresShowNothing) {
  ShowZKSD(cb, nullptr);
  ShowZKSRO(cb, nullptr);
  ShowZKSTS(cb, nullptr);
  ShowZKCTLO(cb, nullptr);
  ShowZKCBD(cb, nullptr);
  ShowZKCBC(cb, nullptr);
  EXPECT_EQ(capture.Take(), "");
}

// ---------------------------------------------------------------------------
// The handlers

namespace {

const ZKHSUB kHsub = 0x77;

// One call's parameters as the queue manager passes them: each structure
// by a pointer whose address the handler gets.
struct V7Parms {
  ZKHCONN hconn = kHconn;
  ZKLONG type = ZKSTAT_TYPE_ASYNC_ERROR;
  ZKSTS sts = ZKSTS_DEFAULT;
  PZKSTS pSts = &sts;
  ZKSD sd = ZKSD_DEFAULT;
  PZKSD pSd = &sd;
  ZKHOBJ hobj = 0;
  PZKHOBJ pHobj = &hobj;
  ZKHSUB hsub = 0;
  PZKHSUB pHsub = &hsub;
  ZKLONG action = ZKSR_ACTION_PUBLICATION;
  ZKSRO sro = ZKSRO_DEFAULT;
  PZKSRO pSro = &sro;
  ZKLONG operation = ZKOP_START;
  ZKCTLO ctlo = ZKCTLO_DEFAULT;
  PZKCTLO pCtlo = &ctlo;
  ZKCBD cbd = ZKCBD_DEFAULT;
  PZKCBD pCbd = &cbd;
  ZKMD md = ZKMD_DEFAULT;
  PZKMD pMd = &md;
  ZKGMO gmo = ZKGMO_DEFAULT;
  PZKGMO pGmo = &gmo;
  unsigned char buffer[64] = {};
  PZKVOID pBuffer = buffer;
  ZKCBC cbc = ZKCBC_DEFAULT;
  PZKCBC pCbc = &cbc;
  char topic[80] = {};
};

struct V7Calls : HandlerParmsFixture<V7Parms> {
  void SetUp() override {
    HandlerParmsFixture::SetUp();
    cb->Settings.ShowParsedMsgContent = 0;
    cb->Settings.ShowMaxLenGet = -1;
  }

  // A queue opened under `name` that resolved to `resolved`, as the open
  // records it in the handle list.
  void Opened(ZKHOBJ handle, const char *name, const char *resolved) {
    queueHandleListAddEntry(cb, name, 1, 1, 1, 1, 1, 1);
    queueHandleListSetHandleToLastEntry(cb, handle, name, resolved);
  }

  // `count` bytes of message data, "ABC...".
  void Message(int32_t count) {
    for (int32_t i = 0; i < count; i++) {
      p->buffer[i] = (unsigned char)('A' + i % 26);
    }
  }

  void StatB() {
    StatBefore(Axp(ZKXF_STAT, ZKXR_BEFORE), &axc, &p->hconn, &p->type, &p->pSts, &compCode,
               &reason);
  }
  void StatA() {
    StatAfter(Axp(ZKXF_STAT, ZKXR_AFTER), &axc, &p->hconn, &p->type, &p->pSts, &compCode, &reason);
  }
  void SubB() {
    SubBefore(Axp(ZKXF_SUB, ZKXR_BEFORE), &axc, &p->hconn, &p->pSd, &p->pHobj, &p->pHsub, &compCode,
              &reason);
  }
  void SubA() {
    SubAfter(Axp(ZKXF_SUB, ZKXR_AFTER), &axc, &p->hconn, &p->pSd, &p->pHobj, &p->pHsub, &compCode,
             &reason);
  }
  void SubrqB() {
    SubrqBefore(Axp(ZKXF_SUBRQ, ZKXR_BEFORE), &axc, &p->hconn, &p->hsub, &p->action, &p->pSro,
                &compCode, &reason);
  }
  void SubrqA() {
    SubrqAfter(Axp(ZKXF_SUBRQ, ZKXR_AFTER), &axc, &p->hconn, &p->hsub, &p->action, &p->pSro,
               &compCode, &reason);
  }
  void CtlB() {
    CtlBefore(Axp(ZKXF_CTL, ZKXR_BEFORE), &axc, &p->hconn, &p->operation, &p->pCtlo, &compCode,
              &reason);
  }
  void CtlA() {
    CtlAfter(Axp(ZKXF_CTL, ZKXR_AFTER), &axc, &p->hconn, &p->operation, &p->pCtlo, &compCode,
             &reason);
  }
  void CbB() {
    CbBefore(Axp(ZKXF_CB, ZKXR_BEFORE), &axc, &p->hconn, &p->operation, &p->pCbd, &p->hobj, &p->pMd,
             &p->pGmo, &compCode, &reason);
  }
  void CbA() {
    CbAfter(Axp(ZKXF_CB, ZKXR_AFTER), &axc, &p->hconn, &p->operation, &p->pCbd, &p->hobj, &p->pMd,
            &p->pGmo, &compCode, &reason);
  }
  void CallbackB() {
    CallbackBefore(Axp(ZKXF_CALLBACK, ZKXR_BEFORE), &axc, &p->hconn, &p->pMd, &p->pGmo, &p->pBuffer,
                   &p->pCbc);
  }
  void CallbackA() {
    CallbackAfter(Axp(ZKXF_CALLBACK, ZKXR_AFTER), &axc, &p->hconn, &p->pMd, &p->pGmo, &p->pBuffer,
                  &p->pCbc);
  }

  // A subscription made through the handlers to the topic string `topic`
  // under the object name `object`; the queue manager returns kHsub.
  void Subscribe(const std::string &object, const std::string &topic) {
    SetBlankPadded(p->sd.ObjectName, 48, object);
    memset(p->topic, 0, sizeof p->topic);
    memcpy(p->topic, topic.data(), topic.size());
    p->sd.ObjectString.VSPtr = p->topic;
    p->sd.ObjectString.VSLength = (ZKLONG)topic.size();
    p->hsub = 0;
    SubB();
    p->hsub = kHsub;
    SubA();
  }

  // What a structure dump writes by itself, as lines.
  Lines Sts() {
    return Shown([&] { ShowZKSTS(cb, &p->sts); });
  }
  Lines Sd() {
    return Shown([&] { ShowZKSD(cb, &p->sd); });
  }
  Lines Sro() {
    return Shown([&] { ShowZKSRO(cb, &p->sro); });
  }
  Lines Ctlo() {
    return Shown([&] { ShowZKCTLO(cb, &p->ctlo); });
  }
  Lines Cbd() {
    return Shown([&] { ShowZKCBD(cb, &p->cbd); });
  }
  Lines Cbc() {
    return Shown([&] { ShowZKCBC(cb, &p->cbc); });
  }
  Lines Md() {
    return Shown([&] { ShowZKMD(cb, &p->md); });
  }
  Lines Gmo(int32_t exitReason, int32_t code) {
    return Shown([&] { ShowZKGMO(cb, &p->gmo, exitReason, code); });
  }
};

} // namespace

TEST_F(V7Calls, StatShowsTheTypeAndTheStatusBeforeAndTheStatusAfter) {
  p->type = ZKSTAT_TYPE_RECONNECTION_ERROR;
  StatB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKSTAT\n(BEFORE\n"), std::string::npos) << text;
  EXPECT_EQ(
      OwnLines(),
      Join({"Hconn:0x00001A2B", "Type:0x00000002", Field("Type", "RECONNECTION_ERROR")}, Sts()));
  p->sts.PutSuccessCount = 4;
  StatA();
  EXPECT_EQ(OwnLines(), Sts());

  // An unknown type: its line in hex, and the report without a field line.
  p->type = 7;
  StatB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Type:0x00000007", "|**********************************",
                  "|* Unknown : ZKSTAT_TYPE_... 0x00000007", "|**********************************"},
                 Sts()));

  cb->Settings.ShowParsedData = 0;
  p->type = ZKSTAT_TYPE_ASYNC_ERROR;
  StatB();
  Lines lines = OwnLines();
  EXPECT_EQ(lines, Join({"Hconn:0x00001A2B", "Type:0x00000000"}, Sts()));
  EXPECT_FALSE(HasLine(lines, "|>"));
}

TEST_F(V7Calls, SubscriptionLinesAndItsTopicAsRealNameOfLaterRequests) {
  // A 60-character topic string on a blank topic object.
  std::string topic = "Sports/Football/Results/Premier/League/Season/2026/Round/001";
  ASSERT_EQ(topic.size(), 60u);
  SetBlankPadded(p->sd.ObjectName, 48, "");
  memcpy(p->topic, topic.data(), topic.size());
  p->sd.ObjectString.VSPtr = p->topic;
  p->sd.ObjectString.VSLength = 60;
  p->sd.Options = ZKSO_CREATE | ZKSO_MANAGED;
  SubB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKSUB\n(BEFORE\n"), std::string::npos) << text;
  // No object handle: the object is named "(null)".
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B"}, Sd(), {"Hobj:0x00000000", "| ObjectName:(null)"}));
  EXPECT_EQ(cb->Handles.HandleCount, 0);

  p->hsub = kHsub;
  SubA();
  std::string realName = "(topic) Sports/Football/Results/Premier/League..";
  ASSERT_EQ(realName.size(), 48u);
  EXPECT_EQ(OwnLines(), Join(Sd(), {"Hobj:0x00000000", "| ObjectName:(null)", "Hsub:0x00000077",
                                    "| (real name):" + realName}));
  ASSERT_EQ(cb->Handles.HandleCount, 1);
  EXPECT_EQ(cb->Handles.HandleList[0].Hobj, kHsub);

  p->hsub = kHsub;
  p->sro.Options = ZKSRO_FAIL_IF_QUIESCING;
  SubrqB();
  text = capture.Text();
  EXPECT_NE(text.find("<ZKSUBRQ\n(BEFORE\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hsub:0x00000077", "| (real name):" + realName,
                              "Action:0x00000001", Field("Action", "PUBLICATION")},
                             Sro()));
  p->sro.NumPubs = 1;
  SubrqA();
  EXPECT_EQ(OwnLines(), Sro());

  // Without ShowParsedData the action has its hex line only.
  cb->Settings.ShowParsedData = 0;
  SubrqB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hsub:0x00000077", "| (real name):" + realName,
                              "Action:0x00000001"},
                             Sro()));
}

TEST_F(V7Calls, SubscriptionObjectHandleNames) {
  // An object handle of all ones is no handle either.
  p->hobj = -1;
  SubB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B"}, Sd(), {"Hobj:0xFFFFFFFF", "| ObjectName:(null)"}));
  // A handle when the list is empty.
  p->hobj = kHobj;
  SubB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B"}, Sd(), {"Hobj:0x00000051", "| ObjectName:(unknown)"}));
  // A handle that is not in a list that has entries: the name stays empty.
  Opened(0x60, "APP.IN", "APP.IN");
  SubB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B"}, Sd(), {"Hobj:0x00000051", "| ObjectName:"}));
  // A handle the list knows, with the name it resolved to.
  Opened(kHobj, "SPORTS.ALIAS", "SPORTS");
  SubB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B"}, Sd(),
                 {"Hobj:0x00000051", "| ObjectName:SPORTS.ALIAS", "| (real name):SPORTS"}));
  // After the call, the object handle is looked up again; the
  // subscription is named by its topic object and string.
  SetBlankPadded(p->sd.ObjectName, 48, "SPORTS");
  strcpy(p->topic, "Scores");
  p->sd.ObjectString.VSPtr = p->topic;
  p->sd.ObjectString.VSLength = -1;
  p->hsub = kHsub;
  SubA();
  EXPECT_EQ(OwnLines(),
            Join(Sd(), {"Hobj:0x00000051", "| ObjectName:SPORTS.ALIAS", "| (real name):SPORTS",
                        "Hsub:0x00000077", "| (real name):(topic) SPORTS Scores"}));
}

TEST_F(V7Calls, FailedSubscriptionKeepsNoHandle) {
  compCode = ZKCC_FAILED;
  reason = ZKRC_UNKNOWN_OBJECT_NAME;
  p->hsub = ZKHO_UNUSABLE_HOBJ;
  SubA();
  EXPECT_EQ(cb->Handles.HandleCount, 0);
  EXPECT_NE(capture.Text().find("CompCode:2\nReason:2085\n"), std::string::npos) << capture.Text();
  EXPECT_EQ(OwnLines(), Join(Sd(), {"Hobj:0x00000000", "| ObjectName:(null)", "Hsub:0xFFFFFFFF",
                                    "| (real name):(null)"}));
  // A request on a subscription handle the list does not know.
  compCode = ZKCC_OK;
  reason = ZKRC_NONE;
  Subscribe("SPORTS", "Scores");
  capture.Clear();
  p->hsub = 0x99;
  SubrqB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Hsub:0x00000099", "| (real name):",
                              "Action:0x00000001", Field("Action", "PUBLICATION")},
                             Sro()));
  // A second subscription is kept under its own handle.
  p->hsub = kHsub;
  SubrqB();
  EXPECT_TRUE(HasLine(OwnLines(), "| (real name):(topic) SPORTS Scores"));
}

TEST_F(V7Calls, ControlShowsTheOperationAndItsOptionsBeforeOnly) {
  p->operation = ZKOP_START_WAIT;
  p->ctlo.Options = 4;
  CtlB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKCTL\n(BEFORE\n"), std::string::npos) << text;
  Lines lines = OwnLines();
  EXPECT_EQ(
      lines,
      Join({"Hconn:0x00001A2B", "Operation:0x00000002", Field("Operation", "START_WAIT")}, Ctlo()));
  EXPECT_TRUE(HasLine(lines, "|* Unknown : ZKCB/ZKCTL - ZKOP_... 0x00000004"));
  CtlA();
  EXPECT_EQ(OwnLines(), Lines{});
  EXPECT_EQ(Counted(ZKXF_CTL).OkCount, 1u);

  cb->Settings.ShowParsedData = 0;
  p->operation = ZKOP_STOP;
  CtlB();
  EXPECT_EQ(OwnLines(), Join({"Hconn:0x00001A2B", "Operation:0x00000004"}, Ctlo()));
}

TEST_F(V7Calls, CallbackStartHasNoDescriptorOrGetOptions) {
  Opened(kHobj, "APP.ALIAS", "APP.IN");
  p->hobj = kHobj;
  p->operation = ZKOP_START;
  CbB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKCB\n(BEFORE\n"), std::string::npos) << text;
  Lines lines = OwnLines();
  EXPECT_EQ(lines,
            Join({"Hconn:0x00001A2B", "Operation:0x00000001", Field("Operation", "START")}, Cbd(),
                 {"Hobj:0x00000051", "| ObjectName:APP.ALIAS", "| (real name):APP.IN"}));
  EXPECT_FALSE(HasLine(lines, "MD:"));
  EXPECT_FALSE(HasLine(lines, "GMO:"));
  CbA();
  EXPECT_EQ(OwnLines(), Lines{});
}

TEST_F(V7Calls, RegistrationShowsDescriptorAndGetOptionsOrEmptyDumps) {
  Opened(kHobj, "APP.IN", "APP.IN");
  p->hobj = kHobj;
  p->operation = ZKOP_REGISTER;
  p->gmo.Options = ZKGMO_WAIT | ZKGMO_FAIL_IF_QUIESCING;
  p->gmo.WaitInterval = 3000;
  CbB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Operation:0x00000100", Field("Operation", "REGISTER")},
                 Cbd(), {"Hobj:0x00000051", "| ObjectName:APP.IN"}, Md(), Gmo(ZKXR_BEFORE, ZKCC_OK),
                 {"WaitInterval:3000"}));

  // A null descriptor: a dump of no bytes in its place.
  p->pMd = nullptr;
  p->gmo.Options = ZKGMO_NO_WAIT;
  CbB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Operation:0x00000100", Field("Operation", "REGISTER")},
                 Cbd(), {"Hobj:0x00000051", "| ObjectName:APP.IN", "MD:(0=x0 bytes)"},
                 Gmo(ZKXR_BEFORE, ZKCC_OK)));
  // Null get options too, and the descriptor address itself null.
  p->pGmo = nullptr;
  p->operation = ZKOP_REGISTER | ZKOP_START;
  CbBefore(Axp(ZKXF_CB, ZKXR_BEFORE), &axc, &p->hconn, &p->operation, &p->pCbd, &p->hobj, nullptr,
           &p->pGmo, &compCode, &reason);
  EXPECT_EQ(
      OwnLines(),
      Join({"Hconn:0x00001A2B", "Operation:0x00000101", Field("Operation", "START / REGISTER")},
           Cbd(),
           {"Hobj:0x00000051", "| ObjectName:APP.IN", "MD:(0=x0 bytes)", "GMO:(0=x0 bytes)"}));

  // A handle that was never opened.
  p->hobj = 0x52;
  p->pMd = &p->md;
  p->pGmo = &p->gmo;
  p->operation = ZKOP_DEREGISTER;
  CbB();
  EXPECT_EQ(OwnLines(),
            Join({"Hconn:0x00001A2B", "Operation:0x00000200", Field("Operation", "DEREGISTER")},
                 Cbd(), {"Hobj:0x00000052", "| ObjectName:(unknown)"}));
}

TEST_F(V7Calls, RegistrationsAreWrittenWhateverTheQueueSelection) {
  TargetQueueEntry &entry = cb->Settings.TargetQueue[cb->Settings.TargetQueueCount++];
  strcpy(entry.QueueName, "OTHER.*");
  entry.P = entry.G = entry.I = entry.S = 1;
  queueHandleListAddEntry(cb, "APP.IN", 0, 0, 0, 0, 0, 0);
  queueHandleListSetHandleToLastEntry(cb, kHobj, "APP.IN", "APP.IN");
  p->hobj = kHobj;
  CbB();
  EXPECT_TRUE(HasLine(OwnLines(), "| ObjectName:APP.IN"));
  CbA();
  EXPECT_NE(capture.Take().find("<ZKCB\n(AFTER\n"), std::string::npos);
}

TEST_F(V7Calls, DeliveredMessageIsNamedByItsQueueAndShownWithItsContext) {
  Opened(kHobj, "APP.ALIAS", "APP.IN");
  SetBlankPadded(p->gmo.ResolvedQName, 48, "APP.IN");
  p->cbc = DistinctiveCbc(2);
  p->cbc.CompCode = ZKCC_OK;
  p->cbc.Reason = ZKRC_NONE;
  p->cbc.DataLength = 20;
  p->cbc.BufferLength = 64;
  Message(20);
  CallbackB();
  std::string text = capture.Text();
  EXPECT_NE(text.find("<ZKCB_FU\n(BEFORE\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(),
            Join({"| ObjectName:APP.ALIAS", "| (real name):APP.IN", "Hconn:0x00001A2B"}, Md(),
                 Gmo(ZKXR_BEFORE, ZKCC_OK), Cbc(),
                 {"DataLength:20", "Buffer:(20=x14 bytes)",
                  Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
                  Dump("00000010:51525354", "QRST")}));
  CallbackA();
  text = capture.Text();
  EXPECT_NE(text.find("<ZKCB_FU\n(AFTER\nCompCode:0\nReason:0\n"), std::string::npos) << text;
  EXPECT_EQ(OwnLines(), Lines{});

  // A queue no alias was opened for is named by its resolved name; the
  // context's completion code stands in the header. ShowMaxLenGet applies,
  // and no more than the buffer holds is shown.
  SetBlankPadded(p->gmo.ResolvedQName, 48, "APP.OTHER");
  p->cbc.CompCode = ZKCC_WARNING;
  p->cbc.Reason = ZKRC_TRUNCATED_MSG_ACCEPTED;
  p->cbc.DataLength = 40;
  p->cbc.BufferLength = 20;
  cb->Settings.ShowMaxLenGet = 8;
  CallbackB();
  EXPECT_EQ(OwnLines(), Join({"| ObjectName:APP.OTHER", "Hconn:0x00001A2B"}, Md(),
                             Gmo(ZKXR_BEFORE, ZKCC_WARNING), Cbc(),
                             {"DataLength:40", "Buffer:(8=x8 bytes)",
                              Dump("00000000:41424344 45464748", "ABCDEFGH"),
                              "  (Shown only leading 8 byte(s) ...)"}));
  cb->Settings.ShowMaxLenGet = -1;
  CallbackB();
  Lines lines = OwnLines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
            (Lines{"Buffer:(20=x14 bytes)",
                   Dump("00000000:41424344 45464748 494A4B4C 4D4E4F50", "ABCDEFGHIJKLMNOP"),
                   Dump("00000010:51525354", "QRST")}));
  CallbackA();
  EXPECT_NE(capture.Take().find("CompCode:1\nReason:2079\n"), std::string::npos);
  EXPECT_EQ(Counted(ZKXF_CALLBACK).WarningCount, 1u);
}

TEST_F(V7Calls, CallbackWithoutDescriptorOrGetOptionsReadsNeither) {
  Opened(kHobj, "APP.ALIAS", "APP.IN");
  // An event handler's call: no descriptor, no get options, no buffer.
  p->pMd = nullptr;
  p->pGmo = nullptr;
  p->pBuffer = nullptr;
  p->cbc = DistinctiveCbc(2);
  p->cbc.CallType = ZKCBCT_EVENT_CALL;
  p->cbc.CompCode = ZKCC_FAILED;
  p->cbc.Reason = ZKRC_CONNECTION_BROKEN;
  p->cbc.DataLength = 0;
  p->cbc.BufferLength = 0;
  CallbackB();
  EXPECT_EQ(OwnLines(),
            Join({"| ObjectName:", "Hconn:0x00001A2B", "MD:(0=x0 bytes)", "GMO:(0=x0 bytes)"},
                 Cbc(), {"DataLength:0", "Buffer:(0=x0 bytes)"}));
  // The addresses of the pointers null as well.
  CallbackBefore(Axp(ZKXF_CALLBACK, ZKXR_BEFORE), &axc, &p->hconn, nullptr, nullptr, nullptr,
                 &p->pCbc);
  EXPECT_EQ(OwnLines(),
            Join({"| ObjectName:", "Hconn:0x00001A2B", "MD:(0=x0 bytes)", "GMO:(0=x0 bytes)"},
                 Cbc(), {"DataLength:0", "Buffer:(0=x0 bytes)"}));
  CallbackA();
  EXPECT_NE(capture.Take().find("CompCode:2\nReason:2009\n"), std::string::npos);
  // Without a context there are no codes, no context and no data.
  CallbackBefore(Axp(ZKXF_CALLBACK, ZKXR_BEFORE), &axc, nullptr, nullptr, nullptr, nullptr,
                 nullptr);
  EXPECT_EQ(OwnLines(), (Lines{"| ObjectName:", "MD:(0=x0 bytes)", "GMO:(0=x0 bytes)"}));
}

TEST_F(V7Calls, SummaryOnlyWritesNothingBeforeAndOneLineAfter) {
  cb->Settings.ShowSummaryOnly = 1;
  memset(p->md.MsgId, 0xAB, sizeof p->md.MsgId);
  std::string msgId;
  for (int i = 0; i < 24; i++) {
    msgId += "AB";
  }
  Opened(kHobj, "APP.IN", "APP.IN");
  p->hobj = kHobj;
  p->hsub = kHsub;
  p->operation = ZKOP_REGISTER;
  struct Pair {
    const char *name;
    void (V7Calls::*before)();
    void (V7Calls::*after)();
  };
  const Pair pairs[] = {{"ZKSTAT", &V7Calls::StatB, &V7Calls::StatA},
                        {"ZKSUB", &V7Calls::SubB, &V7Calls::SubA},
                        {"ZKSUBRQ", &V7Calls::SubrqB, &V7Calls::SubrqA},
                        {"ZKCTL", &V7Calls::CtlB, &V7Calls::CtlA},
                        {"ZKCB", &V7Calls::CbB, &V7Calls::CbA}};
  for (const Pair &pair : pairs) {
    (this->*pair.before)();
    EXPECT_EQ(capture.Take(), "") << pair.name;
    (this->*pair.after)();
    Lines lines = SplitTextLines(capture.Take());
    ASSERT_EQ(lines.size(), 1u) << pair.name;
    EXPECT_NE(lines[0].find(std::string("  ") + pair.name + "  "), std::string::npos) << lines[0];
    // Only the callback passes a message descriptor.
    EXPECT_EQ(lines[0].find(msgId), std::string::npos) << lines[0];
  }

  p->cbc.DataLength = 37;
  p->cbc.BufferLength = 64;
  CallbackB();
  EXPECT_EQ(capture.Take(), "");
  CallbackA();
  Lines lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKCB_FU  "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(msgId + "        37"), std::string::npos) << lines[0];

  // Without a descriptor: neither it nor the length.
  p->pMd = nullptr;
  CallbackB();
  CallbackA();
  lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKCB_FU  "), std::string::npos) << lines[0];
  EXPECT_EQ(lines[0].find(msgId), std::string::npos) << lines[0];

  for (int32_t function : {ZKXF_STAT, ZKXF_SUB, ZKXF_SUBRQ, ZKXF_CTL, ZKXF_CB}) {
    EXPECT_EQ(Counted(function).CallCount, 1u) << function;
    EXPECT_EQ(Counted(function).TimedCalls, 1) << function;
  }
  EXPECT_EQ(Counted(ZKXF_CALLBACK).CallCount, 2u);
}

TEST_F(V7Calls, TheHandlersChangeNoParameter) {
  cb->Settings.ShowParsedMsgContent = 1;
  Opened(kHobj, "APP.ALIAS", "APP.IN");
  Subscribe("SPORTS", "Scores/Today");
  p->hobj = kHobj;
  p->hsub = kHsub;
  p->type = 9;
  p->action = 3;
  p->operation = ZKOP_REGISTER | 0x40;
  p->sts.Version = 2;
  p->sts.OpenOptions = 16;
  p->ctlo.Options = 4;
  p->cbd.Options = 0x2;
  p->gmo.Options = ZKGMO_WAIT;
  p->gmo.WaitInterval = 100;
  SetBlankPadded(p->gmo.ResolvedQName, 48, "APP.IN");
  memset(p->md.MsgId, 0x5A, sizeof p->md.MsgId);
  Message(30);
  p->cbc = DistinctiveCbc(2);
  p->cbc.DataLength = 30;
  p->cbc.BufferLength = 64;
  compCode = ZKCC_WARNING;
  reason = ZKRC_TRUNCATED_MSG_ACCEPTED;
  std::unique_ptr<V7Parms> copy = Copy();
  StatB();
  StatA();
  SubB();
  SubA();
  SubrqB();
  SubrqA();
  CtlB();
  CtlA();
  CbB();
  CbA();
  CallbackB();
  CallbackA();
  EXPECT_NE(capture.Take().find("<ZKCB_FU\n"), std::string::npos);
  EXPECT_EQ(p->hconn, copy->hconn);
  EXPECT_EQ(p->type, copy->type);
  EXPECT_EQ(p->hobj, copy->hobj);
  EXPECT_EQ(p->hsub, copy->hsub);
  EXPECT_EQ(p->action, copy->action);
  EXPECT_EQ(p->operation, copy->operation);
  EXPECT_EQ(p->pSts, &p->sts);
  EXPECT_EQ(p->pSd, &p->sd);
  EXPECT_EQ(p->pHobj, &p->hobj);
  EXPECT_EQ(p->pHsub, &p->hsub);
  EXPECT_EQ(p->pSro, &p->sro);
  EXPECT_EQ(p->pCtlo, &p->ctlo);
  EXPECT_EQ(p->pCbd, &p->cbd);
  EXPECT_EQ(p->pMd, &p->md);
  EXPECT_EQ(p->pGmo, &p->gmo);
  EXPECT_EQ(p->pBuffer, (PZKVOID)p->buffer);
  EXPECT_EQ(p->pCbc, &p->cbc);
  EXPECT_SAME_BYTES(p->sts, copy->sts);
  EXPECT_SAME_BYTES(p->sd, copy->sd);
  EXPECT_SAME_BYTES(p->sro, copy->sro);
  EXPECT_SAME_BYTES(p->ctlo, copy->ctlo);
  EXPECT_SAME_BYTES(p->cbd, copy->cbd);
  EXPECT_SAME_BYTES(p->md, copy->md);
  EXPECT_SAME_BYTES(p->gmo, copy->gmo);
  EXPECT_SAME_BYTES(p->cbc, copy->cbc);
  EXPECT_SAME_BYTES(p->buffer, copy->buffer);
  EXPECT_SAME_BYTES(p->topic, copy->topic);
  EXPECT_EQ(compCode, ZKCC_WARNING);
  EXPECT_EQ(reason, ZKRC_TRUNCATED_MSG_ACCEPTED);
}
