// The structures of the queue calls as the queue handlers show them: a dump
// of the bytes of each structure's version, the structure field by field,
// then the records of a distribution list (by address or by offset) and the
// variable-length strings of the object descriptor; unknown versions;
// ShowParsedData; the message data cut at its maximum and parsed with
// ShowParsedMsgContent; counts, lengths and pointers that make no sense.
#include <gtest/gtest.h>

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "format/message_content.h"
#include "format/structures.h"
#include "handlers/short_dumps.h"
#include "output/record_writers.h"
#include "tests/harness_text.h"
#include "tests/unit/capture.h"
#include "tests/unit/dump_test_support.h"
#include "tests/unit/message_builder.h"
#include "zk/zk.h"

namespace {

// Lengths of the dumps by version, version 1 first, as the trace shows them.
const int32_t kOdLengths[] = {168, 200, 336, 400};
const int32_t kMdLengths[] = {324, 364};
const int32_t kPmoLengths[] = {128, 152, 176};
const int32_t kGmoLengths[] = {72, 80, 100, 112};

// More records than are ever shown, so that a capped count stays inside.
constexpr int32_t kRecords = SHOWN_DISTRIBUTION_RECORDS_MAX + 10;

// The structures of a queue call in one block, so that offsets reach the
// records and strings from the structure that leads to them.
struct QueueBlock {
  ZKOD od;
  ZKOR objects[kRecords];
  ZKRR responses[kRecords];
  char objectString[32];
  char selectionString[32];
  char resObjectString[32];
  ZKPMO pmo;
  unsigned char putRecords[kRecords * ZKPMR_LENGTH_ALL_FIELDS];
  ZKRR putResponses[kRecords];
  ZKMD md;
  ZKGMO gmo;
  unsigned char data[512];
};

// The message data: a dead-letter header and a text after it.
constexpr int32_t kDataLength = (int32_t)sizeof(ZKDLH) + 13;

// A field line: "|> ", the name in 25 columns, ": ", the value.
std::string Field(const std::string &name, const std::string &value) {
  std::string padded = name;
  padded.resize(25, ' ');
  return "|> " + padded + ": " + value + "\n";
}

struct QueueDumps : ::testing::Test {
  CaptureBlock capture;
  ExitControlBlock *cb = capture.cb();
  QueueBlock *block = new QueueBlock();

  void SetUp() override {
    cb->Settings.CheckUpdateRequestInterval = 0;
    // Dump titles without addresses, so that they can be compared as text.
    cb->File.NoAddress = 1;
    cb->Settings.ShowParsedData = 1;
    cb->Settings.ShowParsedMsgContent = 1;
    cb->Settings.ShowMaxLenCharv = -1;
    cb->Call.CurrentExitReason = ZKXR_AFTER;
    memset(block, 0, sizeof *block);
    ZKOD od = ZKOD_DEFAULT;
    block->od = od;
    SetBlankPadded(block->od.ObjectName, sizeof block->od.ObjectName, "PAYROLL.LIST");
    for (int32_t i = 0; i < kRecords; i++) {
      char name[48];
      snprintf(name, sizeof name, "Q%d", i + 1);
      SetBlankPadded(block->objects[i].ObjectName, sizeof block->objects[i].ObjectName, name);
      SetBlankPadded(block->objects[i].ObjectQMgrName, sizeof block->objects[i].ObjectQMgrName,
                     "QM1");
      block->responses[i].CompCode = 2;
      block->responses[i].Reason = 2085;
      block->putResponses[i].CompCode = 0;
      block->putResponses[i].Reason = 0;
    }
    for (size_t i = 0; i < sizeof block->putRecords; i++) {
      block->putRecords[i] = (unsigned char)(i % 251 + 1);
    }
    strcpy(block->objectString, "SPORTS/NEWS");
    strcpy(block->selectionString, "Colour = 'Blue'");
    strcpy(block->resObjectString, "SPORTS/NEWS/TODAY");
    ZKPMO pmo = ZKPMO_DEFAULT;
    block->pmo = pmo;
    ZKMD md = ZKMD_DEFAULT;
    block->md = md;
    memcpy(block->md.Format, "ZKDEAD  ", 8);
    ZKGMO gmo = ZKGMO_DEFAULT;
    block->gmo = gmo;
    ZKDLH dlh = DeadLetterHeader("ZKSTR   ", 2085);
    memcpy(block->data, &dlh, sizeof dlh);
    memcpy(block->data + sizeof dlh, "Hello, queue!", 13);
  }
  void TearDown() override { delete block; }

  // An object descriptor of a distribution list of `count` records, both
  // kinds by address.
  void OdRecordsByAddress(int32_t version, int32_t count) {
    block->od.Version = version;
    block->od.RecsPresent = count;
    block->od.ObjectRecPtr = block->objects;
    block->od.ResponseRecPtr = block->responses;
  }
  void OdRecordsByOffset(int32_t version, int32_t count) {
    block->od.Version = version;
    block->od.RecsPresent = count;
    block->od.ObjectRecOffset = (ZKLONG)offsetof(QueueBlock, objects);
    block->od.ResponseRecOffset = (ZKLONG)offsetof(QueueBlock, responses);
  }
  void PmoRecordsByAddress(int32_t version, int32_t count, int32_t fields) {
    block->pmo.Version = version;
    block->pmo.RecsPresent = count;
    block->pmo.PutMsgRecFields = fields;
    block->pmo.PutMsgRecPtr = block->putRecords;
    block->pmo.ResponseRecPtr = block->putResponses;
  }
  void PmoRecordsByOffset(int32_t version, int32_t count, int32_t fields) {
    block->pmo.Version = version;
    block->pmo.RecsPresent = count;
    block->pmo.PutMsgRecFields = fields;
    block->pmo.PutMsgRecOffset =
        (ZKLONG)(offsetof(QueueBlock, putRecords) - offsetof(QueueBlock, pmo));
    block->pmo.ResponseRecOffset =
        (ZKLONG)(offsetof(QueueBlock, putResponses) - offsetof(QueueBlock, pmo));
  }

  // What the pieces write one by one: a dump, a formatter.
  std::string Dump(const char *title, const void *address, int32_t length) {
    PutHexData(cb, title, address, length, HEX_MODE_PLAIN);
    return capture.Take();
  }
  template <typename F> std::string Written(F show) {
    capture.Take();
    show();
    return capture.Take();
  }
  std::string Od(int32_t length) {
    return Dump("OD", &block->od, length) +
           Written([&] { ShowParsedZkod(cb, &block->od, nullptr, nullptr, nullptr); });
  }
  std::string OdRecords(int32_t count) {
    return Dump("OD->OR", block->objects, 96 * count) +
           Written([&] { ShowParsedZkor(cb, block->objects, count); }) +
           Dump("OD->RR", block->responses, 8 * count) +
           Written([&] { ShowParsedZkrr(cb, block->responses, count); });
  }
  std::string Pmo(int32_t length) {
    return Dump("PMO", &block->pmo, length) + Written([&] { ShowParsedZkpmo(cb, &block->pmo); });
  }
  std::string PmoRecords(int32_t count, int32_t unit) {
    int32_t fields = block->pmo.PutMsgRecFields;
    return Dump("PMO->PMR", block->putRecords, unit * count) +
           Written([&] { ShowParsedZkpmr(cb, block->putRecords, count, fields); }) +
           Dump("PMO->RR", block->putResponses, 8 * count) +
           Written([&] { ShowParsedZkrr(cb, block->putResponses, count); });
  }

  std::string ShownOd() {
    capture.Clear();
    ShowZKOD(cb, &block->od, nullptr, nullptr, nullptr);
    return capture.Take();
  }
  std::string ShownPmo() {
    capture.Clear();
    ShowZKPMO(cb, &block->pmo);
    return capture.Take();
  }
  std::string ShownContent(int32_t length, int32_t maximum) {
    capture.Clear();
    const ZKMD *md = &block->md;
    const void *buffer = block->data;
    ShowMsgContent(cb, &md, &buffer, length, maximum);
    return capture.Take();
  }
  std::string Parsed(int32_t length) {
    return Written(
        [&] { ShowParsedMsgData(cb, block->md.Format, block->md.Encoding, block->data, length); });
  }
};

// ---------------------------------------------------------------------------
// The object descriptor

struct OdVersions : QueueDumps, ::testing::WithParamInterface<int32_t> {};

TEST_P(OdVersions, DumpedAtTheLengthOfItsVersion) {
  int32_t version = GetParam();
  block->od.Version = version;
  std::string text = ShownOd();
  std::vector<std::string> titles = Titles(text);
  ASSERT_FALSE(titles.empty()) << text;
  EXPECT_EQ(titles[0], Title("OD", kOdLengths[version - 1]));
  if (version < 4) {
    EXPECT_EQ(text, Od(kOdLengths[version - 1]));
    EXPECT_EQ(titles.size(), 1u);
  }
  EXPECT_NE(text.find(Field("ObjectName", "PAYROLL.LIST")), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

INSTANTIATE_TEST_SUITE_P(Versions, OdVersions, ::testing::Range(1, 5));

TEST_F(QueueDumps, OdVersion4DumpsItsThreeStringsEachOnItsOwn) {
  block->od.Version = 4;
  block->od.ObjectString.VSPtr = block->objectString;
  block->od.ObjectString.VSLength = 11;
  block->od.SelectionString.VSOffset =
      (ZKLONG)(offsetof(QueueBlock, selectionString) - offsetof(QueueBlock, od));
  block->od.SelectionString.VSLength = 15;
  // The resolved string is returned by the call: a buffer of 32 bytes.
  block->od.ResObjectString.VSPtr = block->resObjectString;
  block->od.ResObjectString.VSBufSize = 32;
  block->od.ResObjectString.VSLength = 17;
  std::string text = ShownOd();
  EXPECT_EQ(Titles(text),
            (std::vector<std::string>{Title("OD", 400), Title("Variable-ObjectString", 11),
                                      Title("Variable-SelectionString", 15),
                                      Title("Variable-ResObjectString", 32)}));
  std::string strings = Written([&] {
    PutHexCharvData(cb, "Variable-ObjectString", &block->od.ObjectString, &block->od);
    PutHexCharvData(cb, "Variable-SelectionString", &block->od.SelectionString, &block->od);
    PutHexCharvData(cb, "Variable-ResObjectString", &block->od.ResObjectString, &block->od);
  });
  EXPECT_EQ(text, Dump("OD", &block->od, 400) + strings +
                      Written([&] { ShowParsedZkod(cb, &block->od, nullptr, nullptr, nullptr); }));
  EXPECT_NE(text.find("[SPORTS/NEWS]"), std::string::npos) << text;
  EXPECT_NE(text.find("[Colour = 'Blue']"), std::string::npos) << text;
}

TEST_F(QueueDumps, OdStringAddressesGoToTheDumpsAndTheFormatter) {
  block->od.Version = 4;
  block->od.ObjectString.VSLength = 11;
  block->od.SelectionString.VSLength = 15;
  block->od.ResObjectString.VSBufSize = 32;
  capture.Clear();
  // The descriptors hold no address; the caller gives the first two and
  // marks the third as not readable yet.
  ShowZKOD(cb, &block->od, block->objectString, block->selectionString, ZKCHARV_STRING_UNREADABLE);
  std::string text = capture.Take();
  EXPECT_EQ(Titles(text),
            (std::vector<std::string>{Title("OD", 400), Title("Variable-ObjectString", 11),
                                      Title("Variable-SelectionString", 15)}));
  EXPECT_NE(text.find("[SPORTS/NEWS]"), std::string::npos) << text;
  EXPECT_EQ(Count(text, "SPORTS/NEWS/TODAY"), 0u) << text;
  std::string parsed = Written([&] {
    ShowParsedZkod(cb, &block->od, block->objectString, block->selectionString,
                   ZKCHARV_STRING_UNREADABLE);
  });
  EXPECT_NE(text.find(parsed), std::string::npos) << text;
}

TEST_F(QueueDumps, OdVersion5IsReportedAndDumpedAt400) {
  block->od.Version = 5;
  std::string text = ShownOd();
  EXPECT_EQ(text.compare(0, VersionBanner("ZKOD", 5).size(), VersionBanner("ZKOD", 5)), 0) << text;
  std::vector<std::string> titles = Titles(text);
  ASSERT_EQ(titles.size(), 4u);
  EXPECT_EQ(titles[0], Title("OD", 400));
  EXPECT_EQ(titles[1], Title("Variable-ObjectString", 0));
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKOD version 5\n"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(QueueDumps, OdVersion2WithRecordsNeitherAddressedNorOffsetShowsNone) {
  block->od.Version = 2;
  block->od.RecsPresent = 3;
  std::string text = ShownOd();
  EXPECT_EQ(text, Od(200));
  EXPECT_EQ(Count(text, "OD->OR"), 0u);
  EXPECT_EQ(Count(text, "OD->RR"), 0u);
}

TEST_F(QueueDumps, OdRecordsByAddress) {
  OdRecordsByAddress(2, 3);
  std::string text = ShownOd();
  EXPECT_EQ(text, Od(200) + OdRecords(3));
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("OD", 200), Title("OD->OR", 288),
                                                    Title("OD->RR", 24)}));
  EXPECT_NE(text.find(Field("ObjectName", "Q3") + Field("ObjectQMgrName", "QM1")),
            std::string::npos)
      << text;
  EXPECT_EQ(Count(text, Field("ObjectName", "Q4")), 0u);
  EXPECT_EQ(Count(text, Field("CompCode", "2")), 3u) << text;
}

TEST_F(QueueDumps, OdRecordsByOffsetShowTheSame) {
  OdRecordsByAddress(3, 3);
  std::string byAddress = ShownOd();
  block->od.ObjectRecPtr = nullptr;
  block->od.ResponseRecPtr = nullptr;
  OdRecordsByOffset(3, 3);
  std::string byOffset = ShownOd();
  EXPECT_EQ(byOffset, Od(336) + OdRecords(3));
  EXPECT_EQ(Titles(byOffset), Titles(byAddress));
}

TEST_F(QueueDumps, OdRecordsOfOneKindOnly) {
  OdRecordsByAddress(2, 2);
  block->od.ResponseRecPtr = nullptr;
  std::string text = ShownOd();
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("OD", 200), Title("OD->OR", 192)}));
  OdRecordsByAddress(2, 2);
  block->od.ObjectRecPtr = nullptr;
  text = ShownOd();
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("OD", 200), Title("OD->RR", 16)}));
}

TEST_F(QueueDumps, OdVersion1FollowsNoRecords) {
  OdRecordsByAddress(1, 3);
  EXPECT_EQ(ShownOd(), Od(168));
}

TEST_F(QueueDumps, OdNegativeOrZeroRecordCountShowsNoRecords) {
  OdRecordsByAddress(2, -1);
  EXPECT_EQ(ShownOd(), Od(200));
  OdRecordsByAddress(2, INT32_MIN);
  EXPECT_EQ(ShownOd(), Od(200));
  OdRecordsByAddress(2, 0);
  EXPECT_EQ(ShownOd(), Od(200));
}

TEST_F(QueueDumps, OdHugeRecordCountIsCapped) {
  OdRecordsByAddress(2, INT32_MAX);
  std::string text = ShownOd();
  EXPECT_EQ(text, Od(200) + OdRecords(SHOWN_DISTRIBUTION_RECORDS_MAX));
  EXPECT_EQ(Titles(text),
            (std::vector<std::string>{Title("OD", 200),
                                      Title("OD->OR", 96 * SHOWN_DISTRIBUTION_RECORDS_MAX),
                                      Title("OD->RR", 8 * SHOWN_DISTRIBUTION_RECORDS_MAX)}));
  // The descriptor's own object name and one per record shown.
  EXPECT_EQ(Count(text, "|> ObjectName "), (size_t)SHOWN_DISTRIBUTION_RECORDS_MAX + 1);
  EXPECT_EQ(Count(text, Field("ObjectName", "Q1000")), 1u);
  EXPECT_EQ(Count(text, Field("ObjectName", "Q1001")), 0u);
  OdRecordsByAddress(2, SHOWN_DISTRIBUTION_RECORDS_MAX + 1);
  EXPECT_EQ(Titles(ShownOd()), Titles(text));
}

TEST_F(QueueDumps, OdWithoutParsedDataIsDumpsOnly) {
  cb->Settings.ShowParsedData = 0;
  OdRecordsByAddress(2, 2);
  std::string text = ShownOd();
  EXPECT_EQ(text, Dump("OD", &block->od, 200) + Dump("OD->OR", block->objects, 192) +
                      Dump("OD->RR", block->responses, 16));
  EXPECT_EQ(Count(text, "|> "), 0u);
}

TEST_F(QueueDumps, NullObjectDescriptorShowsNothing) {
  ShowZKOD(cb, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(capture.Take(), "");
}

// ---------------------------------------------------------------------------
// The message descriptor

struct MdVersions : QueueDumps, ::testing::WithParamInterface<int32_t> {};

TEST_P(MdVersions, DumpedAtTheLengthOfItsVersion) {
  int32_t version = GetParam();
  block->md.Version = version;
  capture.Clear();
  ShowZKMD(cb, &block->md);
  std::string text = capture.Take();
  EXPECT_EQ(text, Dump("MD", &block->md, kMdLengths[version - 1]) +
                      Written([&] { ShowParsedZkmd(cb, &block->md); }));
  EXPECT_EQ(Titles(text), std::vector<std::string>{Title("MD", kMdLengths[version - 1])});
  EXPECT_NE(text.find(Field("Version", std::to_string(version))), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, MdVersions, ::testing::Range(1, 3));

TEST_F(QueueDumps, MdVersion3IsReportedAndDumpedAt364) {
  block->md.Version = 3;
  capture.Clear();
  ShowZKMD(cb, &block->md);
  std::string text = capture.Take();
  EXPECT_EQ(text, VersionBanner("ZKMD", 3) + Dump("MD", &block->md, 364) +
                      Written([&] { ShowParsedZkmd(cb, &block->md); }));
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKMD version 3\n"),
            std::string::npos)
      << capture.Alerts();
}

TEST_F(QueueDumps, MdWithoutParsedDataIsTheDumpOnly) {
  cb->Settings.ShowParsedData = 0;
  block->md.Version = 2;
  ShowZKMD(cb, &block->md);
  std::string text = capture.Take();
  EXPECT_EQ(text, Dump("MD", &block->md, 364));
  ShowZKMD(cb, nullptr);
  EXPECT_EQ(capture.Take(), "");
}

// ---------------------------------------------------------------------------
// The put-message options

struct PmoVersions : QueueDumps, ::testing::WithParamInterface<int32_t> {};

TEST_P(PmoVersions, DumpedAtTheLengthOfItsVersion) {
  int32_t version = GetParam();
  block->pmo.Version = version;
  std::string text = ShownPmo();
  EXPECT_EQ(text, Pmo(kPmoLengths[version - 1]));
  EXPECT_EQ(Titles(text), std::vector<std::string>{Title("PMO", kPmoLengths[version - 1])});
  EXPECT_EQ(capture.Alerts(), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, PmoVersions, ::testing::Range(1, 4));

TEST_F(QueueDumps, PmoVersion4IsReportedDumpedAt176AndFollowsItsRecords) {
  PmoRecordsByAddress(4, 2, ZKPMRF_MSG_ID | ZKPMRF_FEEDBACK);
  std::string text = ShownPmo();
  EXPECT_EQ(text, VersionBanner("ZKPMO", 4) + Pmo(176) + PmoRecords(2, 28));
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKPMO version 4\n"),
            std::string::npos)
      << capture.Alerts();
}

TEST_F(QueueDumps, PmoRecordsByAddressAreOfTheLengthTheirFieldsGive) {
  PmoRecordsByAddress(2, 2, ZKPMRF_MSG_ID | ZKPMRF_FEEDBACK);
  std::string text = ShownPmo();
  EXPECT_EQ(text, Pmo(152) + PmoRecords(2, 28));
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("PMO", 152), Title("PMO->PMR", 56),
                                                    Title("PMO->RR", 16)}));
  EXPECT_EQ(Count(text, "|> MsgId "), 2u) << text;
  EXPECT_EQ(Count(text, "|> CorrelId "), 0u) << text;
  PmoRecordsByAddress(3, 3, 0x1F);
  text = ShownPmo();
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("PMO", 176), Title("PMO->PMR", 324),
                                                    Title("PMO->RR", 24)}));
  EXPECT_EQ(text, Pmo(176) + PmoRecords(3, 108));
}

TEST_F(QueueDumps, PmoRecordsByOffsetShowTheSame) {
  PmoRecordsByOffset(2, 2, ZKPMRF_CORREL_ID | ZKPMRF_ACCOUNTING_TOKEN);
  std::string text = ShownPmo();
  EXPECT_EQ(text, Pmo(152) + PmoRecords(2, 56));
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("PMO", 152), Title("PMO->PMR", 112),
                                                    Title("PMO->RR", 16)}));
}

TEST_F(QueueDumps, PmoRecordsWithoutFieldsAreAnEmptyDump) {
  PmoRecordsByAddress(2, 2, ZKPMRF_NONE);
  std::string text = ShownPmo();
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("PMO", 152), Title("PMO->PMR", 0),
                                                    Title("PMO->RR", 16)}));
}

TEST_F(QueueDumps, PmoVersion1FollowsNoRecords) {
  PmoRecordsByAddress(1, 2, ZKPMRF_MSG_ID);
  EXPECT_EQ(ShownPmo(), Pmo(128));
}

TEST_F(QueueDumps, PmoRecordsNeitherAddressedNorOffsetAreNotShown) {
  block->pmo.Version = 2;
  block->pmo.RecsPresent = 3;
  block->pmo.PutMsgRecFields = ZKPMRF_MSG_ID;
  EXPECT_EQ(ShownPmo(), Pmo(152));
}

TEST_F(QueueDumps, PmoNegativeRecordCountShowsNoRecords) {
  PmoRecordsByAddress(2, -2, ZKPMRF_MSG_ID);
  EXPECT_EQ(ShownPmo(), Pmo(152));
}

TEST_F(QueueDumps, PmoHugeRecordCountIsCapped) {
  PmoRecordsByAddress(2, INT32_MAX, 0x1F);
  std::string text = ShownPmo();
  EXPECT_EQ(text, Pmo(152) + PmoRecords(SHOWN_DISTRIBUTION_RECORDS_MAX, 108));
  EXPECT_EQ(Titles(text),
            (std::vector<std::string>{Title("PMO", 152),
                                      Title("PMO->PMR", 108 * SHOWN_DISTRIBUTION_RECORDS_MAX),
                                      Title("PMO->RR", 8 * SHOWN_DISTRIBUTION_RECORDS_MAX)}));
}

TEST_F(QueueDumps, PmoWithoutParsedDataIsDumpsOnly) {
  cb->Settings.ShowParsedData = 0;
  PmoRecordsByAddress(2, 2, ZKPMRF_MSG_ID);
  std::string text = ShownPmo();
  EXPECT_EQ(text, Dump("PMO", &block->pmo, 152) + Dump("PMO->PMR", block->putRecords, 48) +
                      Dump("PMO->RR", block->putResponses, 16));
  ShowZKPMO(cb, nullptr);
  EXPECT_EQ(capture.Take(), "");
}

// ---------------------------------------------------------------------------
// The get-message options

struct GmoVersions : QueueDumps, ::testing::WithParamInterface<int32_t> {};

TEST_P(GmoVersions, DumpedAtTheLengthOfItsVersion) {
  int32_t version = GetParam();
  block->gmo.Version = version;
  capture.Clear();
  ShowZKGMO(cb, &block->gmo, ZKXR_BEFORE, 0);
  std::string text = capture.Take();
  EXPECT_EQ(text, Dump("GMO", &block->gmo, kGmoLengths[version - 1]) +
                      Written([&] { ShowParsedZkgmo(cb, &block->gmo, ZKXR_BEFORE, 0); }));
  EXPECT_EQ(Titles(text), std::vector<std::string>{Title("GMO", kGmoLengths[version - 1])});
  EXPECT_EQ(capture.Alerts(), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, GmoVersions, ::testing::Range(1, 5));

TEST_F(QueueDumps, GmoHandsTheExitReasonAndCompletionCodeOn) {
  block->gmo.Version = 4;
  // An output field the call has not set yet holds anything: its unknown
  // value is reported only once a successful call has returned it.
  block->gmo.GroupStatus = 'X';
  std::string before = Written([&] { ShowZKGMO(cb, &block->gmo, ZKXR_BEFORE, 0); });
  std::string after = Written([&] { ShowZKGMO(cb, &block->gmo, ZKXR_AFTER, 0); });
  std::string failed = Written([&] { ShowZKGMO(cb, &block->gmo, ZKXR_AFTER, 2); });
  EXPECT_EQ(before, Dump("GMO", &block->gmo, 112) +
                        Written([&] { ShowParsedZkgmo(cb, &block->gmo, ZKXR_BEFORE, 0); }));
  EXPECT_EQ(after, Dump("GMO", &block->gmo, 112) +
                       Written([&] { ShowParsedZkgmo(cb, &block->gmo, ZKXR_AFTER, 0); }));
  EXPECT_EQ(Count(before, "|* Unknown : "), 0u) << before;
  EXPECT_EQ(Count(after, "|* Unknown : "), 1u) << after;
  EXPECT_EQ(failed, before);
}

TEST_F(QueueDumps, GmoVersion5IsReportedAndDumpedAt112) {
  block->gmo.Version = 5;
  std::string text = Written([&] { ShowZKGMO(cb, &block->gmo, ZKXR_AFTER, 0); });
  EXPECT_EQ(text, VersionBanner("ZKGMO", 5) + Dump("GMO", &block->gmo, 112) +
                      Written([&] { ShowParsedZkgmo(cb, &block->gmo, ZKXR_AFTER, 0); }));
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKGMO version 5\n"),
            std::string::npos)
      << capture.Alerts();
}

TEST_F(QueueDumps, GmoWithoutParsedDataIsTheDumpOnly) {
  cb->Settings.ShowParsedData = 0;
  block->gmo.Version = 2;
  EXPECT_EQ(Written([&] { ShowZKGMO(cb, &block->gmo, ZKXR_AFTER, 0); }),
            Dump("GMO", &block->gmo, 80));
  EXPECT_EQ(Written([&] { ShowZKGMO(cb, nullptr, ZKXR_AFTER, 0); }), "");
}

// ---------------------------------------------------------------------------
// The message data

TEST_F(QueueDumps, ContentWithoutLimitAndNoDataIsAnEmptyDump) {
  std::string text = ShownContent(0, -1);
  EXPECT_EQ(text, Title("Buffer", 0) + "\n" + Parsed(0));
  EXPECT_EQ(Count(text, "Shown only"), 0u);
}

TEST_F(QueueDumps, ContentWithinTheMaximumIsDumpedWhole) {
  std::string text = ShownContent(kDataLength, -1);
  EXPECT_EQ(text, Dump("Buffer", block->data, kDataLength) + Parsed(kDataLength));
  EXPECT_EQ(Titles(text), std::vector<std::string>{Title("Buffer", kDataLength)});
  EXPECT_EQ(Count(text, "Shown only"), 0u);
  EXPECT_NE(text.find(Field("DestQName", "ORDERS.IN")), std::string::npos) << text;
  // A maximum as long as the data cuts nothing.
  EXPECT_EQ(ShownContent(kDataLength, kDataLength), text);
}

TEST_F(QueueDumps, ContentBeyondTheMaximumIsCutAndParsedWhole) {
  std::string text = ShownContent(kDataLength, 5);
  EXPECT_EQ(text, Dump("Buffer", block->data, 5) + "  (Shown only leading 5 byte(s) ...)\n" +
                      Parsed(kDataLength));
  EXPECT_EQ(Titles(text), std::vector<std::string>{Title("Buffer", 5)});
  // The parsed view is of the whole data, not of the five bytes dumped.
  EXPECT_NE(Parsed(kDataLength), Parsed(5));
  EXPECT_NE(text.find(Field("DestQName", "ORDERS.IN")), std::string::npos) << text;
}

TEST_F(QueueDumps, ContentWithMaximumZeroIsAnEmptyDumpAndTheNote) {
  cb->Settings.ShowParsedMsgContent = 0;
  EXPECT_EQ(ShownContent(13, 0),
            Title("Buffer", 0) + "\n" + "  (Shown only leading 0 byte(s) ...)\n");
}

TEST_F(QueueDumps, ContentWithoutParsedMsgContentIsTheDumpOnly) {
  cb->Settings.ShowParsedMsgContent = 0;
  std::string text = ShownContent(13, -1);
  EXPECT_EQ(text, Dump("Buffer", block->data, 13));
  EXPECT_EQ(Count(text, "|> "), 0u);
  EXPECT_EQ(ShownContent(13, 4),
            Dump("Buffer", block->data, 4) + "  (Shown only leading 4 byte(s) ...)\n");
}

TEST_F(QueueDumps, ContentIsParsedFromTheDescriptorsFormatAndEncoding) {
  // Without a format naming a header the data has no parsed view.
  memcpy(block->md.Format, "ZKSTR   ", 8);
  EXPECT_EQ(ShownContent(kDataLength, -1), Dump("Buffer", block->data, kDataLength));
  // The header's integers are read in the descriptor's encoding.
  memcpy(block->md.Format, "ZKDEAD  ", 8);
  block->md.Encoding = 0x111;
  std::string reversed = ShownContent(kDataLength, -1);
  EXPECT_EQ(reversed, Dump("Buffer", block->data, kDataLength) + Parsed(kDataLength));
  block->md.Encoding = 0x222;
  std::string native = ShownContent(kDataLength, -1);
  EXPECT_EQ(native, Dump("Buffer", block->data, kDataLength) + Parsed(kDataLength));
  EXPECT_NE(native, reversed);
  EXPECT_NE(native.find(Field("Reason", "2085 (ZKRC_UNKNOWN_OBJECT_NAME)")), std::string::npos)
      << native;
}

TEST_F(QueueDumps, ContentWithoutDescriptorIsNotParsed) {
  const void *buffer = block->data;
  const ZKMD *none = nullptr;
  std::string dump = Dump("Buffer", block->data, kDataLength);
  ShowMsgContent(cb, &none, &buffer, kDataLength, -1);
  EXPECT_EQ(capture.Take(), dump);
  ShowMsgContent(cb, nullptr, &buffer, kDataLength, -1);
  EXPECT_EQ(capture.Take(), dump);
}

TEST_F(QueueDumps, ContentWithoutBufferIsAnEmptyDump) {
  const ZKMD *md = &block->md;
  const void *none = nullptr;
  ShowMsgContent(cb, &md, &none, 13, -1);
  EXPECT_EQ(capture.Take(), Title("Buffer", 0) + "\n");
  ShowMsgContent(cb, &md, nullptr, 13, 5);
  EXPECT_EQ(capture.Take(), Title("Buffer", 0) + "\n");
}

TEST_F(QueueDumps, ContentOfNegativeLengthShowsNothing) {
  EXPECT_EQ(ShownContent(-1, -1), "");
  EXPECT_EQ(ShownContent(INT32_MIN, 5), "");
}

} // namespace
