// The connect options and begin options as the connection handlers show
// them: a dump of the bytes of each structure's version, the structure field
// by field, then the same for what the connect options lead to (channel
// definition, TLS configuration options, authentication information records
// with their LDAP user names, security parameters), reached by address or
// offset; unknown versions; ShowParsedData and ShowChannelAttributes;
// structures that are missing and counts and lengths that make no sense.
#include <gtest/gtest.h>

#include <stddef.h>
#include <string.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "format/structures.h"
#include "handlers/short_dumps.h"
#include "output/record_writers.h"
#include "tests/harness_text.h"
#include "tests/unit/capture.h"
#include "tests/unit/dump_test_support.h"
#include "zk/zk.h"

namespace {

// Lengths of the dumps by version, version 1 first, as the trace shows them.
const int32_t kCnoLengths[] = {12, 20, 148, 156, 188};
const int32_t kCdLengths[] = {952, 1312, 1480, 1536, 1552, 1648, 1748, 1840, 1864, 1876};
const int32_t kScoLengths[] = {532, 540, 556, 560};
const int32_t kAirLengths[] = {320, 576};

// A connection's structures in one block, so that offsets reach each from
// the structure that leads to it. The records follow one another at the
// length of the first record's version.
struct ConnectBlock {
  ZKCNO cno;
  ZKCD cd;
  ZKSCO sco;
  unsigned char records[120 * sizeof(ZKAIR)];
  char names[120][16];
  ZKCSP csp;
  char user[8];
  char password[8];
  char longName[4096];
};

// A field line: "|> ", the name in 25 columns, ": ", the value.
std::string Field(const std::string &name, const std::string &value) {
  std::string padded = name;
  padded.resize(25, ' ');
  return "|> " + padded + ": " + value + "\n";
}

struct ConnectDumps : ::testing::Test {
  CaptureBlock capture;
  ExitControlBlock *cb = capture.cb();
  ConnectBlock *block = new ConnectBlock();

  void SetUp() override {
    cb->Settings.CheckUpdateRequestInterval = 0;
    // Dump titles without addresses, so that they can be compared as text.
    cb->File.NoAddress = 1;
    memset(block, 0, sizeof *block);
    ZKCNO cno = ZKCNO_DEFAULT;
    block->cno = cno;
    ZKCD cd = ZKCD_DEFAULT;
    block->cd = cd;
    SetBlankPadded(block->cd.ChannelName, sizeof block->cd.ChannelName, "TO.QM2");
    ZKSCO sco = ZKSCO_DEFAULT;
    block->sco = sco;
    ZKCSP csp = ZKCSP_DEFAULT;
    block->csp = csp;
    memcpy(block->user, "alice", 5);
    memcpy(block->password, "secret", 6);
  }
  void TearDown() override { delete block; }

  ZKAIR *Record(int32_t index, int32_t length) {
    return (ZKAIR *)(block->records + (size_t)index * (size_t)length);
  }

  // Connect options of `version` leading to everything by address: the
  // channel definition, TLS options with `records` authentication records
  // of `airVersion` (each with an LDAP user name), the security parameters.
  void ByAddress(int32_t version, int32_t records = 2, int32_t airVersion = 2) {
    ZKCNO &cno = block->cno;
    cno.Version = version;
    cno.ClientConnPtr = &block->cd;
    cno.SSLConfigPtr = &block->sco;
    cno.SecurityParmsPtr = &block->csp;
    block->cd.Version = 10;
    block->sco.Version = 4;
    block->sco.AuthInfoRecCount = records;
    block->sco.AuthInfoRecPtr = block->records;
    int32_t length = kAirLengths[airVersion >= 2 ? 1 : 0];
    for (int32_t i = 0; i < records; i++) {
      ZKAIR *air = Record(i, length);
      ZKAIR fresh = ZKAIR_DEFAULT;
      memcpy(air, &fresh, (size_t)length);
      air->Version = airVersion;
      char connName[32];
      snprintf(connName, sizeof connName, "ldap%d.example(389)", i + 1);
      SetBlankPadded(air->AuthInfoConnName, sizeof air->AuthInfoConnName, connName);
      snprintf(block->names[i], sizeof block->names[i], "cn=user%d", i + 1);
      air->LDAPUserNamePtr = block->names[i];
      air->LDAPUserNameLength = (ZKLONG)strlen(block->names[i]);
    }
    block->csp.AuthenticationType = ZKCSP_AUTH_USER_ID_AND_PWD;
    block->csp.CSPUserIdPtr = block->user;
    block->csp.CSPUserIdLength = 5;
    block->csp.CSPPasswordPtr = block->password;
    block->csp.CSPPasswordLength = 6;
  }

  // The same, every structure reached by its offset instead.
  void ByOffset(int32_t version, int32_t records = 2, int32_t airVersion = 2) {
    ByAddress(version, records, airVersion);
    ZKCNO &cno = block->cno;
    cno.ClientConnPtr = nullptr;
    cno.ClientConnOffset = (ZKLONG)offsetof(ConnectBlock, cd);
    cno.SSLConfigPtr = nullptr;
    cno.SSLConfigOffset = (ZKLONG)offsetof(ConnectBlock, sco);
    cno.SecurityParmsPtr = nullptr;
    cno.SecurityParmsOffset = (ZKLONG)offsetof(ConnectBlock, csp);
    block->sco.AuthInfoRecPtr = nullptr;
    block->sco.AuthInfoRecOffset =
        (ZKLONG)(offsetof(ConnectBlock, records) - offsetof(ConnectBlock, sco));
    int32_t length = kAirLengths[airVersion >= 2 ? 1 : 0];
    for (int32_t i = 0; i < records; i++) {
      ZKAIR *air = Record(i, length);
      air->LDAPUserNamePtr = nullptr;
      air->LDAPUserNameOffset = (ZKLONG)((const char *)block->names[i] - (const char *)air);
    }
  }

  std::string Shown() {
    capture.Clear();
    ShowZKCNO(cb, &block->cno);
    return capture.Take();
  }

  // What the pieces write one by one: a dump, a formatter.
  std::string Dump(const char *title, const void *address, int32_t length) {
    PutHexData(cb, title, address, length, HEX_MODE_PLAIN);
    return capture.Take();
  }
  template <typename F> std::string Written(F show) {
    show();
    return capture.Take();
  }
  std::string Cno(int32_t length) {
    return Dump("CNO", &block->cno, length) + Written([&] { ShowParsedZkcno(cb, &block->cno); });
  }
  std::string Cd(int32_t length) {
    return Dump("CNO->CD", &block->cd, length) + Written([&] { ShowParsedZkcd(cb, &block->cd); });
  }
  std::string Sco(int32_t length) {
    return Dump("CNO->SCO", &block->sco, length) +
           Written([&] { ShowParsedZksco(cb, &block->sco); });
  }
  std::string Air(int32_t index, int32_t length) {
    const ZKAIR *air = Record(index, length);
    return Dump("CNO->SCO->AIR", air, length) + Written([&] { ShowParsedZkair(cb, air); }) +
           Dump("CNO->SCO->AIR->LDAPUserName", block->names[index],
                (int32_t)strlen(block->names[index])) +
           Written([&] {
             ShowParsedLDAPUserName(cb, block->names[index], (int32_t)strlen(block->names[index]));
           });
  }
  std::string Csp() {
    return Dump("CNO->CSP", &block->csp, 48) + Written([&] { ShowParsedZkcsp(cb, &block->csp); });
  }
};

} // namespace

// ---------------------------------------------------------------------------
// The connect options by version

TEST_F(ConnectDumps, Version1IsTheTwelveByteDumpAndItsFieldsOnly) {
  // Everything a later version could lead to is set, and not followed.
  ByAddress(1);
  std::string text = Shown();
  EXPECT_EQ(text, Cno(12));
  EXPECT_EQ(Titles(text), std::vector<std::string>{Title("CNO", 12)});
  EXPECT_NE(text.find(Field("Version", "1")), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

TEST_F(ConnectDumps, Version2AddsTheChannelDefinition) {
  ByAddress(2);
  std::string text = Shown();
  EXPECT_EQ(text, Cno(20) + Cd(1876));
  EXPECT_EQ(Titles(text), (std::vector<std::string>{Title("CNO", 20), Title("CNO->CD", 1876)}));
  EXPECT_NE(text.find(Field("ChannelName", "TO.QM2")), std::string::npos) << text;
}

TEST_F(ConnectDumps, Version3ShowsNoTlsOptions) {
  ByAddress(3);
  std::string text = Shown();
  EXPECT_EQ(text, Cno(148) + Cd(1876));
}

TEST_F(ConnectDumps, Version4AddsTheTlsOptionsAndTheirRecords) {
  ByAddress(4);
  std::string text = Shown();
  EXPECT_EQ(text, Cno(156) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576));
  EXPECT_EQ(Titles(text),
            (std::vector<std::string>{
                Title("CNO", 156), Title("CNO->CD", 1876), Title("CNO->SCO", 560),
                Title("CNO->SCO->AIR", 576), Title("CNO->SCO->AIR->LDAPUserName", 8),
                Title("CNO->SCO->AIR", 576), Title("CNO->SCO->AIR->LDAPUserName", 8)}));
  EXPECT_NE(text.find(Field("LDAPUserName", "cn=user1")), std::string::npos) << text;
  EXPECT_NE(text.find(Field("LDAPUserName", "cn=user2")), std::string::npos) << text;
  EXPECT_NE(text.find(Field("AuthInfoConnName", "ldap2.example(389)")), std::string::npos) << text;
}

TEST_F(ConnectDumps, Version5AddsTheSecurityParameters) {
  ByAddress(5);
  std::string text = Shown();
  EXPECT_EQ(text, Cno(188) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576) + Csp());
  std::vector<std::string> titles = Titles(text);
  ASSERT_FALSE(titles.empty());
  EXPECT_EQ(titles.back(), Title("CNO->CSP", 48));
  EXPECT_NE(text.find(Field("CSPUserId", "616C6963 65  [alice]")), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectDumps, EveryStructureReachedByItsOffsetShowsTheSame) {
  ByAddress(5);
  std::string byAddress = Shown();
  ByOffset(5);
  std::string byOffset = Shown();
  // The dumps differ only where the connect options, the TLS options and the
  // records hold addresses or offsets; the titles and the fields agree.
  EXPECT_EQ(Titles(byOffset), Titles(byAddress));
  auto fields = [](const std::string &text) {
    std::vector<std::string> lines;
    for (const std::string &line : SplitTextLines(text)) {
      if (line.compare(0, 2, "|>") == 0) {
        lines.push_back(line);
      }
    }
    return lines;
  };
  EXPECT_EQ(fields(byOffset), fields(byAddress));
  EXPECT_GT(fields(byOffset).size(), 100u);
  EXPECT_EQ(byOffset, Cno(188) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576) + Csp());
}

TEST_F(ConnectDumps, Version6IsReportedDumpedAt188AndLeadsOnAsVersion5) {
  ByAddress(6);
  std::string text = Shown();
  EXPECT_EQ(text, VersionBanner("ZKCNO", 6) + Cno(188) + Cd(1876) + Sco(560) + Air(0, 576) +
                      Air(1, 576) + Csp());
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKCNO version 6\n"),
            std::string::npos)
      << capture.Alerts();
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

TEST_F(ConnectDumps, VersionBelowOneIsDumpedAtTheLengthOfVersion1Unreported) {
  ByAddress(0);
  EXPECT_EQ(Shown(), Cno(12));
  block->cno.Version = -3;
  EXPECT_EQ(Shown(), Cno(12));
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectDumps, NullConnectOptionsShowNothing) {
  ShowZKCNO(cb, nullptr);
  EXPECT_EQ(capture.Take(), "");
}

// ---------------------------------------------------------------------------
// The channel definition

struct ChannelDefinitionDumps : ConnectDumps, ::testing::WithParamInterface<int32_t> {};

TEST_P(ChannelDefinitionDumps, DumpedAtTheLengthOfItsVersion) {
  int32_t version = GetParam();
  ByAddress(2);
  block->cd.Version = version;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(20) + Cd(kCdLengths[version - 1]));
  EXPECT_EQ(capture.Alerts(), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, ChannelDefinitionDumps, ::testing::Range(1, 11));

TEST_F(ConnectDumps, ChannelDefinitionVersion11IsReportedAsZkcdAndDumpedAt1876) {
  ByAddress(5);
  block->cd.Version = 11;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(188) + VersionBanner("ZKCD", 11) + Cd(1876) + Sco(560) + Air(0, 576) +
                      Air(1, 576) + Csp());
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKCD version 11\n"),
            std::string::npos)
      << capture.Alerts();
}

TEST_F(ConnectDumps, ChannelAttributesOffLeaveTheChannelDefinitionOut) {
  ByAddress(5);
  cb->Settings.ShowChannelAttributes = 0;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(188) + Sco(560) + Air(0, 576) + Air(1, 576) + Csp());
  EXPECT_EQ(text.find("CNO->CD"), std::string::npos) << text;
  EXPECT_EQ(text.find("|> ChannelName"), std::string::npos) << text;
  // Not even an unknown version of it is reported.
  block->cd.Version = 11;
  EXPECT_EQ(Shown(), text);
  EXPECT_EQ(capture.Alerts(), "");
  cb->Settings.ShowChannelAttributes = 1;
  EXPECT_NE(Shown().find(Title("CNO->CD", 1876) + "\n"), std::string::npos);
}

TEST_F(ConnectDumps, ParsedDataOffLeavesTheDumpsOnly) {
  ByAddress(5);
  cb->Settings.ShowParsedData = 0;
  std::string text = Shown();
  EXPECT_EQ(text, Dump("CNO", &block->cno, 188) + Dump("CNO->CD", &block->cd, 1876) +
                      Dump("CNO->SCO", &block->sco, 560) +
                      Dump("CNO->SCO->AIR", Record(0, 576), 576) +
                      Dump("CNO->SCO->AIR->LDAPUserName", block->names[0], 8) +
                      Dump("CNO->SCO->AIR", Record(1, 576), 576) +
                      Dump("CNO->SCO->AIR->LDAPUserName", block->names[1], 8) +
                      Dump("CNO->CSP", &block->csp, 48));
  EXPECT_EQ(text.find("|> "), std::string::npos) << text;
}

// ---------------------------------------------------------------------------
// Missing structures

TEST_F(ConnectDumps, NullAddressesAndZeroOffsetsAreSkippedSilently) {
  ByAddress(5);
  block->cno.ClientConnPtr = nullptr;
  block->cno.SSLConfigPtr = nullptr;
  block->cno.SecurityParmsPtr = nullptr;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(188));
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectDumps, AnAddressWinsOverAnOffset) {
  ByAddress(5);
  // Offsets that would lead to the wrong structures.
  block->cno.ClientConnOffset = (ZKLONG)offsetof(ConnectBlock, csp);
  block->cno.SSLConfigOffset = (ZKLONG)offsetof(ConnectBlock, cd);
  block->cno.SecurityParmsOffset = (ZKLONG)offsetof(ConnectBlock, sco);
  block->sco.AuthInfoRecOffset = 4;
  Record(0, 576)->LDAPUserNameOffset = 1;
  EXPECT_EQ(Shown(), Cno(188) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576) + Csp());
}

TEST_F(ConnectDumps, RecordsWithoutAddressOrOffsetAreNotShown) {
  ByAddress(4);
  block->sco.AuthInfoRecPtr = nullptr;
  block->sco.AuthInfoRecOffset = 0;
  EXPECT_EQ(Shown(), Cno(156) + Cd(1876) + Sco(560));
}

TEST_F(ConnectDumps, NoRecordsForACountOfZeroOrBelow) {
  ByAddress(4);
  block->sco.AuthInfoRecCount = 0;
  EXPECT_EQ(Shown(), Cno(156) + Cd(1876) + Sco(560));
  block->sco.AuthInfoRecCount = -1;
  EXPECT_EQ(Shown(), Cno(156) + Cd(1876) + Sco(560));
  block->sco.AuthInfoRecCount = INT32_MIN;
  EXPECT_EQ(Shown(), Cno(156) + Cd(1876) + Sco(560));
}

TEST_F(ConnectDumps, AHugeRecordCountShowsOneHundredRecordsAtMost) {
  ByAddress(4, 101, 1);
  block->sco.AuthInfoRecCount = 0x7FFFFFFF;
  std::string text = Shown();
  EXPECT_EQ(Count(text, Title("CNO->SCO->AIR", 320) + "\n"), 100u);
  std::string nameLine = Field("LDAPUserName", "cn=user");
  nameLine.pop_back();
  EXPECT_EQ(Count(text, nameLine), 100u);
  EXPECT_NE(text.find(Field("LDAPUserName", "cn=user100")), std::string::npos);
  EXPECT_EQ(text.find("cn=user101"), std::string::npos);
  EXPECT_EQ(SHOWN_AUTH_INFO_RECORDS_MAX, 100);
}

TEST_F(ConnectDumps, SecurityParametersWithoutPasswordShowNoPasswordLine) {
  ByAddress(5);
  block->csp.CSPPasswordLength = 0;
  std::string text = Shown();
  EXPECT_EQ(text.find("CSPPassword"), std::string::npos) << text;
  EXPECT_NE(text.find("|> CSPUserId"), std::string::npos) << text;
}

TEST_F(ConnectDumps, SecurityParametersVersion2AreReportedAndDumpedAt48) {
  ByAddress(5);
  block->csp.Version = 2;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(188) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576) +
                      VersionBanner("ZKCSP", 2) + Csp());
}

// ---------------------------------------------------------------------------
// The TLS configuration options and their records

struct TlsOptionsDumps : ConnectDumps, ::testing::WithParamInterface<int32_t> {};

TEST_P(TlsOptionsDumps, DumpedAtTheLengthOfTheirVersion) {
  int32_t version = GetParam();
  ByAddress(4);
  block->sco.Version = version;
  EXPECT_EQ(Shown(),
            Cno(156) + Cd(1876) + Sco(kScoLengths[version - 1]) + Air(0, 576) + Air(1, 576));
}

INSTANTIATE_TEST_SUITE_P(Versions, TlsOptionsDumps, ::testing::Range(1, 5));

TEST_F(ConnectDumps, TlsOptionsVersion5AreReportedAndDumpedAt560) {
  ByAddress(4);
  block->sco.Version = 5;
  EXPECT_EQ(Shown(),
            Cno(156) + Cd(1876) + VersionBanner("ZKSCO", 5) + Sco(560) + Air(0, 576) + Air(1, 576));
}

TEST_F(ConnectDumps, Version1RecordsFollowEachOtherAt320Bytes) {
  ByOffset(4, 3, 1);
  std::string text = Shown();
  EXPECT_EQ(text, Cno(156) + Cd(1876) + Sco(560) + Air(0, 320) + Air(1, 320) + Air(2, 320));
  EXPECT_EQ(Count(text, Title("CNO->SCO->AIR", 320) + "\n"), 3u);
  EXPECT_EQ(text.find("OCSPResponderURL"), std::string::npos) << text;
}

TEST_F(ConnectDumps, TheFirstRecordsVersionDecidesTheLengthOfAll) {
  // Versions 0 and 1 have the length of version 1; 2 and above that of 2.
  ByAddress(4, 2, 1);
  Record(1, 320)->Version = 0;
  EXPECT_EQ(Shown(), Cno(156) + Cd(1876) + Sco(560) + Air(0, 320) + Air(1, 320));
  ByAddress(4, 3, 2);
  Record(1, 576)->Version = 3;
  Record(2, 576)->Version = 7;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(156) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576) + Air(2, 576));
  // Only the first record's version is checked and reported.
  EXPECT_EQ(text.find("|* Unknown"), std::string::npos) << text;
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectDumps, ARecordOfAnotherLengthEndsTheRecords) {
  // The first record is of version 1; the second claims version 2, so it
  // is not 320 bytes long, and the third could not be found either.
  ByAddress(4, 3, 1);
  Record(1, 320)->Version = 2;
  std::string text = Shown();
  EXPECT_EQ(text, Cno(156) + Cd(1876) + Sco(560) + Air(0, 320));
  EXPECT_EQ(Count(text, Title("CNO->SCO->AIR", 320) + "\n"), 1u);
  EXPECT_EQ(text.find(Title("CNO->SCO->AIR", 576)), std::string::npos);
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectDumps, RecordsOfMixedVersionsOneAfterTheOther) {
  // Versions 2, 1, 2, each of its own length: the second lies where a
  // record of the first's length would, and is not of that length.
  ByOffset(4, 1, 2);
  unsigned char *records = block->records;
  const int32_t versions[] = {2, 1, 2};
  size_t at = 0;
  for (int32_t i = 0; i < 3; i++) {
    ZKAIR fresh = ZKAIR_DEFAULT;
    size_t length = versions[i] == 2 ? 576 : 320;
    memcpy(records + at, &fresh, length);
    ((ZKAIR *)(records + at))->Version = versions[i];
    at += length;
  }
  block->sco.AuthInfoRecCount = 3;
  std::string text = Shown();
  EXPECT_EQ(Count(text, Title("CNO->SCO->AIR", 576) + "\n"), 1u) << text;
  EXPECT_EQ(text.find(Title("CNO->SCO->AIR", 320)), std::string::npos);
  EXPECT_EQ(text, Cno(156) + Cd(1876) + Sco(560) + Dump("CNO->SCO->AIR", records, 576) +
                      Written([&] { ShowParsedZkair(cb, (const ZKAIR *)records); }));
}

TEST_F(ConnectDumps, AnUnknownRecordVersionIsReportedOnceAndShownAt576) {
  ByAddress(4, 2, 2);
  Record(0, 576)->Version = 3;
  Record(1, 576)->Version = 3;
  std::string text = Shown();
  EXPECT_EQ(Count(text, "|* Unknown : ZKAIR version 3\n"), 1u) << text;
  EXPECT_EQ(text,
            Cno(156) + Cd(1876) + Sco(560) + VersionBanner("ZKAIR", 3) + Air(0, 576) + Air(1, 576));
  EXPECT_EQ(Count(capture.Alerts(), "Msg3100: Unknown API structure : ZKAIR version 3\n"), 1u);
}

// ---------------------------------------------------------------------------
// LDAP user names

TEST_F(ConnectDumps, LdapUserNameByOffsetFromItsRecord) {
  ByAddress(4, 2, 2);
  ZKAIR *first = Record(0, 576);
  first->LDAPUserNamePtr = nullptr;
  first->LDAPUserNameOffset = (ZKLONG)((const char *)block->names[0] - (const char *)first);
  EXPECT_EQ(Shown(), Cno(156) + Cd(1876) + Sco(560) + Air(0, 576) + Air(1, 576));
}

TEST_F(ConnectDumps, RecordWithoutLdapUserNameShowsNone) {
  ByAddress(4, 2, 2);
  ZKAIR *first = Record(0, 576);
  first->LDAPUserNamePtr = nullptr;
  first->LDAPUserNameOffset = 0;
  std::string text = Shown();
  EXPECT_EQ(Count(text, Title("CNO->SCO->AIR->LDAPUserName", 8) + "\n"), 1u);
  EXPECT_EQ(text.find("cn=user1"), std::string::npos) << text;
  EXPECT_NE(text.find(Field("LDAPUserName", "cn=user2")), std::string::npos) << text;
}

TEST_F(ConnectDumps, NegativeLdapUserNameLengthShowsNothing) {
  ByAddress(4, 1, 2);
  Record(0, 576)->LDAPUserNameLength = -5;
  std::string text = Shown();
  EXPECT_EQ(text.find("LDAPUserName"), std::string::npos) << text;
  EXPECT_EQ(text, Cno(156) + Cd(1876) + Sco(560) + Dump("CNO->SCO->AIR", Record(0, 576), 576) +
                      Written([&] { ShowParsedZkair(cb, Record(0, 576)); }));
}

TEST_F(ConnectDumps, ZeroLengthLdapUserNameIsAnEmptyName) {
  ByAddress(4, 1, 2);
  Record(0, 576)->LDAPUserNameLength = 0;
  std::string text = Shown();
  EXPECT_NE(text.find(Title("CNO->SCO->AIR->LDAPUserName", 0) + "\n" + Field("LDAPUserName", "")),
            std::string::npos)
      << text;
}

TEST_F(ConnectDumps, VeryLongLdapUserNameIsDumpedInPartWithItsLengthInTheTitle) {
  ByAddress(4, 1, 2);
  memset(block->longName, 'n', sizeof block->longName);
  ZKAIR *air = Record(0, 576);
  air->LDAPUserNamePtr = block->longName;
  air->LDAPUserNameLength = 0x7FFFFFF0;
  std::string text = Shown();
  std::string expectedDump;
  PutHexDataLen(cb, "CNO->SCO->AIR->LDAPUserName", block->longName, 1024, HEX_MODE_PLAIN,
                0x7FFFFFF0);
  expectedDump = capture.Take();
  EXPECT_NE(text.find("CNO->SCO->AIR->LDAPUserName:(2147483632=x7FFFFFF0 bytes)\n"),
            std::string::npos)
      << text.substr(0, 200);
  EXPECT_NE(text.find(expectedDump), std::string::npos);
  EXPECT_NE(text.find(Written([&] { ShowParsedLDAPUserName(cb, block->longName, 1024); })),
            std::string::npos);
  EXPECT_EQ(SHOWN_LDAP_USER_NAME_MAX, 1024);
}

// ---------------------------------------------------------------------------
// Begin options

TEST_F(ConnectDumps, BeginOptionsAreATwelveByteDumpWithoutFields) {
  ZKBO bo = ZKBO_DEFAULT;
  ShowZKBO(cb, &bo);
  std::string text = capture.Take();
  EXPECT_EQ(text, Dump("BO", &bo, 12));
  EXPECT_EQ(text, "BO:(12=xC bytes)\n"
                  "00000000:424F2020 01000000 00000000" +
                      std::string(11, ' ') + "[BO  ........]\n");
  EXPECT_EQ(capture.Alerts(), "");
}

TEST_F(ConnectDumps, BeginOptionsOfVersion2AreReportedAndDumpedAt12) {
  ZKBO bo = ZKBO_DEFAULT;
  bo.Version = 2;
  ShowZKBO(cb, &bo);
  std::string text = capture.Take();
  EXPECT_EQ(text, VersionBanner("ZKBO", 2) + Dump("BO", &bo, 12));
  EXPECT_NE(capture.Alerts().find("Msg3100: Unknown API structure : ZKBO version 2\n"),
            std::string::npos)
      << capture.Alerts();
}

TEST_F(ConnectDumps, NullBeginOptionsShowNothing) {
  ShowZKBO(cb, nullptr);
  EXPECT_EQ(capture.Take(), "");
}
