// The message content chain: each kind of header, chains of several, the
// body as XML, name/value strings or a pointer to the dump, the limit of
// parsed content, and data that is cut short or lies about its lengths.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "format/message_content.h"
#include "tests/unit/pcf_builder.h"
#include "tests/unit/message_builder.h"
#include "tests/unit/structure_test.h"
#include "zk/zk.h"

namespace {

// With WZ_WRITE_FUZZ_SEEDS set to a directory, every message a test shows
// is also written there as an input of the message_chain fuzz target: the
// fuzz corpus is made of these messages.
void WriteFuzzSeed(const char *format, int32_t encoding, int32_t limit,
                   const std::vector<unsigned char> &bytes) {
  const char *directory = getenv("WZ_WRITE_FUZZ_SEEDS");
  if (directory == nullptr) {
    return;
  }
  static int seed = 0;
  const char *const formats[] = {"ZKADMIN ", "ZKDEAD  ", "ZKHDIST ", "ZKHEPCF ", "ZKEVENT ",
                                 "ZKHMDE  ", "ZKPCF   ", "ZKHREF  ", "ZKHRF   ", "ZKHRF2  ",
                                 "ZKSTR   ", "ZKTRIG  ", "ZKXMIT  ", "        ", "NOTKNOWN"};
  std::string input;
  unsigned char choice = 0xFF;
  for (unsigned char i = 0; i < sizeof formats / sizeof formats[0]; i++) {
    choice = memcmp(formats[i], format, 8) == 0 ? i : choice;
  }
  input.push_back((char)choice);
  if (choice == 0xFF) {
    input.append(format, 8);
  }
  input.push_back(3); // the encoding follows
  input.append((const char *)&encoding, 4);
  uint16_t limitWord = limit < 0 || limit > 0xFFFE ? 0xFFFF : (uint16_t)limit;
  input.append((const char *)&limitWord, 2);
  input.push_back(15); // line length 100
  input.append(bytes.begin(), bytes.end());
  std::string path = std::string(directory) + "/test-" + std::to_string(++seed);
  FILE *file = fopen(path.c_str(), "wb");
  if (file != nullptr) {
    fwrite(input.data(), 1, input.size(), file);
    fclose(file);
  }
}

struct MessageChain : StructureTest {
  // The parsed view of the bytes, from a buffer of exactly their size so
  // that a read past the end is caught by the address checker.
  std::string Show(const char *format, const std::vector<unsigned char> &bytes,
                   int32_t encoding = ZKENC_NATIVE) {
    unsigned char *copy = (unsigned char *)calloc(bytes.empty() ? 1 : bytes.size(), 1);
    if (!bytes.empty()) {
      memcpy(copy, bytes.data(), bytes.size());
    }
    ShowParsedMsgData(cb, format, encoding, copy, (int32_t)bytes.size());
    free(copy);
    WriteFuzzSeed(format, encoding, cb->Settings.ShowMaxLenParsedContent, bytes);
    return capture.Take();
  }
  std::string Xml(const std::string &text, uint32_t offset = 0) {
    int32_t shown = ShowParsedXml(cb, text.data(), (int32_t)text.size(), offset, "XML data");
    std::string out = capture.Take();
    return shown == 1 ? out : "(not XML)" + out;
  }
};

std::string Section(const std::string &range, const std::string &title) {
  return "|> ----- offset " + range + " - " + title + "\n";
}

const char kDataPointer[] = "|>  (refer to data shown in hexadecimal format)\n";

// ---------------------------------------------------------------------------
// XML.

TEST_F(MessageChain, XmlLinesIndentByNesting) {
  EXPECT_EQ(Xml("<a><b/></a>"), Section("0-10 (=x0-xA) length 11 (=xB)", "XML data") + "|> <a>\n"
                                                                                       "|>   <b/>\n"
                                                                                       "|> </a>\n");
}

TEST_F(MessageChain, BracketsThatNestOrTextFirstAreNotXml) {
  EXPECT_EQ(Xml("<a<b>>"), "(not XML)");
  EXPECT_EQ(Xml("a<b>"), "(not XML)");
  EXPECT_EQ(Xml("<a>>"), "(not XML)");
  EXPECT_EQ(Xml("<a"), "(not XML)");
  EXPECT_EQ(Xml("<"), "(not XML)");
  EXPECT_EQ(Xml(""), "(not XML)");
}

TEST_F(MessageChain, XmlTextRunsAndTrailingBlanks) {
  std::string xml = "<order>\n  <id>42</id>\n</order>  ";
  xml.push_back('\0');
  EXPECT_EQ(Xml(xml, 36), Section("36-65 (=x24-x41) length 30 (=x1E)", "XML data") +
                              "|> <order>\n"
                              "|>   <id>\n"
                              "|>     42\n"
                              "|>   </id>\n"
                              "|> </order>\n");
}

TEST_F(MessageChain, XmlBeyondTheLimitIsNotShownAndIsCutAtIt) {
  cb->Settings.ShowMaxLenParsedContent = 10;
  EXPECT_EQ(Xml("<a>b</a>", 10), "(not XML)");
  EXPECT_EQ(Xml("<a>bcdefg</a>", 4), Section("4-9 (=x4-x9) length 6 (=x6)", "XML data") +
                                         "|> <a>\n"
                                         "|>   bcd\n");
}

TEST_F(MessageChain, DeepXmlStopsIndentingWithOneNote) {
  std::string xml;
  for (int i = 0; i < 40; i++) {
    xml += "<e>";
  }
  for (int i = 0; i < 40; i++) {
    xml += "</e>";
  }
  std::string out = Xml(xml);
  std::vector<std::string> lines = TextLines(out);
  ASSERT_EQ(lines.size(), 1u + 80u + 1u) << out;
  EXPECT_EQ(lines[1], "|> <e>");
  EXPECT_EQ(lines[33], "|> " + std::string(64, ' ') + "<e>"); // the 33rd element
  EXPECT_EQ(lines[34], "|> (XML nested deeper than this is shown without further indentation)");
  EXPECT_EQ(lines[35], "|> " + std::string(64, ' ') + "<e>");
  EXPECT_EQ(lines[81], "|> </e>");
  size_t notes = 0;
  for (const std::string &line : lines) {
    notes += line.find("nested deeper") != std::string::npos;
  }
  EXPECT_EQ(notes, 1u);
}

TEST_F(MessageChain, IndentationLeavesRoomOnShortLines) {
  cb->Settings.MaxParsedOutputLineLength = 40; // the lowest setting: 20 columns of indentation
  std::string xml;
  for (int i = 0; i < 12; i++) {
    xml += "<e>";
  }
  xml += "x";
  for (int i = 0; i < 12; i++) {
    xml += "</e>";
  }
  std::string out = Xml(xml);
  for (const std::string &line : TextLines(out)) {
    if (line.rfind("|> -----", 0) == 0 || line.find("nested deeper") != std::string::npos) {
      continue; // the section line and the note are not indented text
    }
    EXPECT_LE(line.size(), 40u) << line;
  }
  EXPECT_NE(out.find("|> " + std::string(20, ' ') + "<e>\n"), std::string::npos) << out;
  EXPECT_NE(out.find("|> " + std::string(20, ' ') + "x\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("|> " + std::string(22, ' ')), std::string::npos) << out;
}

// ---------------------------------------------------------------------------
// The body when no header leads to it.

TEST_F(MessageChain, ShortTransmissionMessageIsABody) {
  MessageBytes xml;
  xml.AddText("<a>short</a>");
  EXPECT_EQ(Show(ZKFMT_XMIT_Q_HEADER, xml.Bytes),
            Section("0-11 (=x0-xB) length 12 (=xC)", "XML data") + "|> <a>\n|>   short\n|> </a>\n");
  MessageBytes text;
  text.AddText(std::string(427, 'x'));
  // A body at offset 0 that is not XML is only in the dump.
  EXPECT_EQ(Show(ZKFMT_XMIT_Q_HEADER, text.Bytes), "");
}

TEST_F(MessageChain, EmptyAndNullDataShowNothing) {
  EXPECT_EQ(Show(ZKFMT_STRING, {}), "");
  ShowParsedMsgData(cb, ZKFMT_STRING, ZKENC_NATIVE, nullptr, 10);
  ShowParsedMsgData(cb, ZKFMT_STRING, ZKENC_NATIVE, "<a/>", -1);
  EXPECT_EQ(capture.Take(), "");
}

// ---------------------------------------------------------------------------
// Headers.

ZKXQH TransmissionHeader(const char *nextFormat) {
  ZKXQH xqh = ZKXQH_DEFAULT;
  SetBlankPadded(xqh.RemoteQName, sizeof xqh.RemoteQName, "ORDERS.IN");
  SetBlankPadded(xqh.RemoteQMgrName, sizeof xqh.RemoteQMgrName, "QM2");
  SetFormat(xqh.MsgDesc.Format, nextFormat);
  xqh.MsgDesc.Encoding = ZKENC_NATIVE;
  xqh.MsgDesc.CodedCharSetId = 1208;
  return xqh;
}

TEST_F(MessageChain, TransmissionDeadLetterRulesHeaderAndXml) {
  std::string xml = "<msg><to>billing</to></msg>";
  MessageBytes m;
  m.Add(TransmissionHeader(ZKFMT_DEAD_LETTER_HEADER));
  m.Add(DeadLetterHeader(ZKFMT_RF_HEADER_2, ZKRC_Q_FULL));
  m.Add(RulesHeader2(ZKFMT_STRING, 36 + 4 + (int32_t)xml.size()));
  m.AddFolder(xml);
  m.AddText("plain text body");
  EXPECT_STRUCTURE_TEXT(Show(ZKFMT_XMIT_Q_HEADER, m.Bytes), "chain_xmit_dlh_rfh2.txt");
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 0);
}

// A command-format request sent to another queue manager that came back to
// the dead-letter queue: transmission header, dead-letter header, rules
// header with XML, and the command-format body.
std::vector<unsigned char> CommandBody() {
  PcfBuilder pcf;
  pcf.Header(ZKCFT_COMMAND, ZKCMD_INQUIRE_Q).String(ZKCA_Q_NAME, "ORDERS.*").Int(ZKIA_Q_TYPE, 1);
  return pcf.Bytes();
}

TEST_F(MessageChain, TransmissionDeadLetterRulesHeaderAndCommandBody) {
  std::string xml = "<mcd><Msd>pcf</Msd></mcd>";
  MessageBytes m;
  m.Add(TransmissionHeader(ZKFMT_DEAD_LETTER_HEADER));
  m.Add(DeadLetterHeader(ZKFMT_RF_HEADER_2, ZKRC_UNKNOWN_OBJECT_NAME));
  m.Add(RulesHeader2(ZKFMT_ADMIN, 36 + 4 + (int32_t)xml.size()));
  m.AddFolder(xml);
  std::vector<unsigned char> body = CommandBody();
  m.Bytes.insert(m.Bytes.end(), body.begin(), body.end());
  EXPECT_STRUCTURE_TEXT(Show(ZKFMT_XMIT_Q_HEADER, m.Bytes), "chain_xmit_dlh_rfh2_pcf.txt");
}

TEST_F(MessageChain, EmbeddedCommandHeaderAndItsParameters) {
  MessageBytes m;
  ZKEPH eph = ZKEPH_DEFAULT;
  std::vector<unsigned char> body = CommandBody();
  // The embedded header holds the command-format header at its byte 32.
  memcpy(&eph.PCFHeader, body.data(), sizeof eph.PCFHeader);
  eph.StrucLength = 32 + (int32_t)body.size();
  eph.Flags = ZKEPH_CCSID_EMBEDDED;
  m.Add(eph);
  m.Bytes.insert(m.Bytes.end(), body.begin() + sizeof eph.PCFHeader, body.end());
  std::string out = Show(ZKFMT_EMBEDDED_PCF, m.Bytes);
  EXPECT_STRUCTURE_TEXT(out, "chain_eph.txt");
  // Every cut of it, the trigger message's too, stays inside the data.
  for (size_t cut = 0; cut <= m.Bytes.size(); cut++) {
    Show(ZKFMT_EMBEDDED_PCF,
         std::vector<unsigned char>(m.Bytes.begin(), m.Bytes.begin() + (long)cut));
  }
  MessageBytes trigger;
  trigger.Add(ZKTM(ZKTM_DEFAULT));
  for (size_t cut = 0; cut <= trigger.Bytes.size(); cut++) {
    std::vector<unsigned char> part(trigger.Bytes.begin(), trigger.Bytes.begin() + (long)cut);
    bool shown = Show(ZKFMT_TRIGGER, part).find("ZKTM (Trigger message)") != std::string::npos;
    EXPECT_EQ(shown, cut >= sizeof(ZKTM)) << cut;
  }
}

TEST_F(MessageChain, LimitInsideTheTransmissionHeader) {
  cb->Settings.ShowMaxLenParsedContent = 200;
  MessageBytes m;
  m.Add(TransmissionHeader(ZKFMT_DEAD_LETTER_HEADER));
  m.Add(DeadLetterHeader(ZKFMT_STRING, ZKRC_Q_FULL));
  m.AddText("<a/>");
  std::string out = Show(ZKFMT_XMIT_Q_HEADER, m.Bytes);
  EXPECT_NE(out.find("ZKXQH (Transmission-queue header)"), std::string::npos) << out;
  EXPECT_NE(out.find("RemoteQName"), std::string::npos) << out;
  EXPECT_EQ(out.find("ZKMD1"), std::string::npos) << out;
  EXPECT_EQ(out.find("ZKDLH"), std::string::npos) << out;
  EXPECT_EQ(out.find("XML data"), std::string::npos) << out;
  // The chain went on at 428 and past the dead-letter header: what follows
  // is announced as data for the dump.
  EXPECT_NE(out.find(Section("600-603 (=x258-x25B) length 4 (=x4)", "Data") + kDataPointer),
            std::string::npos)
      << out;
}

TEST_F(MessageChain, TwoRulesHeadersThenAHeaderOnlyABodyCanBe) {
  std::string f1 = "<mcd><Msd>xml</Msd></mcd>", f2 = "<usr><n>1</n></usr>";
  MessageBytes m;
  m.Add(RulesHeader2(ZKFMT_RF_HEADER_2, 36 + 4 + (int32_t)f1.size()));
  m.AddFolder(f1);
  m.Add(RulesHeader2(ZKFMT_DEAD_LETTER_HEADER, 36 + 4 + (int32_t)f2.size()));
  m.AddFolder(f2);
  m.Add(DeadLetterHeader(ZKFMT_STRING, ZKRC_Q_FULL));
  std::string out = Show(ZKFMT_RF_HEADER_2, m.Bytes);
  EXPECT_STRUCTURE_TEXT(out, "chain_rfh2_twice.txt");
  EXPECT_EQ(out.find("ZKDLH"), std::string::npos);
}

TEST_F(MessageChain, FolderLongerThanTheHeaderIsOneDataSection) {
  MessageBytes m;
  m.Add(RulesHeader2(ZKFMT_STRING, 36 + 4 + 10));
  m.AddWord(500);
  m.AddText("<a>bc</a>x");
  std::string out = Show(ZKFMT_RF_HEADER_2, m.Bytes);
  EXPECT_NE(out.find(Section("40-49 (=x28-x31) length 10 (=xA)", "Data") + kDataPointer),
            std::string::npos)
      << out;
  EXPECT_EQ(out.find("XML data"), std::string::npos) << out;
}

TEST_F(MessageChain, RulesHeaderVersion1NameValueString) {
  std::string nameValues = "A 1 B \"x y\"";
  MessageBytes m;
  ZKRFH rfh = ZKRFH_DEFAULT;
  rfh.StrucLength = 32 + (int32_t)nameValues.size();
  SetFormat(rfh.Format, ZKFMT_STRING);
  m.Add(rfh);
  m.AddText(nameValues);
  m.AddText("body that is not parsed");
  std::string out = Show(ZKFMT_RF_HEADER, m.Bytes);
  EXPECT_STRUCTURE_TEXT(out, "chain_rfh1.txt");
  EXPECT_NE(out.find("|> A - 1\n|> B - \"x y\"\n"), std::string::npos) << out;
}

TEST_F(MessageChain, ReferenceHeaderDataItems) {
  MessageBytes m;
  ZKRMH rmh = ZKRMH_DEFAULT;
  SetFormat(rmh.Format, ZKFMT_STRING);
  SetBlankPadded(rmh.ObjectType, sizeof rmh.ObjectType, "FILE");
  rmh.ObjectInstanceId[0] = 0x11;
  rmh.SrcEnvLength = 6; // offset 0: "(none)"
  rmh.SrcNameLength = 8;
  rmh.SrcNameOffset = 108;
  rmh.DestEnvLength = 40;
  rmh.DestEnvOffset = 116;
  rmh.DestNameLength = 20;
  rmh.DestNameOffset = 150; // passes the header's bytes: " ..."
  rmh.StrucLength = 156;
  rmh.DataLogicalLength = 1000;
  m.Add(rmh);
  m.AddText("src.name");
  m.AddText(std::string(40, 'E'));
  m.Bytes.resize(156, ' ');
  m.AddText("<b>after</b>");
  EXPECT_STRUCTURE_TEXT(Show(ZKFMT_REF_MSG_HEADER, m.Bytes), "chain_rmh.txt");
}

TEST_F(MessageChain, DistributionHeaderWithRecords) {
  MessageBytes m;
  ZKDH dh = ZKDH_DEFAULT;
  dh.Flags = ZKDHF_NEW_MSG_IDS;
  dh.PutMsgRecFields = ZKPMRF_MSG_ID | ZKPMRF_FEEDBACK;
  dh.RecsPresent = 2;
  dh.ObjectRecOffset = 48;
  dh.PutMsgRecOffset = 48 + 2 * 96;
  dh.StrucLength = 48 + 2 * 96 + 2 * 28;
  SetFormat(dh.Format, ZKFMT_STRING);
  m.Add(dh);
  for (const char *name : {"Q1", "Q2"}) {
    ZKOR record;
    SetBlankPadded(record.ObjectName, sizeof record.ObjectName, name);
    SetBlankPadded(record.ObjectQMgrName, sizeof record.ObjectQMgrName, "QM1");
    m.Add(record);
  }
  for (int32_t i = 0; i < 2; i++) {
    unsigned char msgId[24] = {(unsigned char)(0xA0 + i)};
    m.Bytes.insert(m.Bytes.end(), msgId, msgId + 24);
    m.AddWord(ZKFB_NONE + i);
  }
  m.AddText("<a/>");
  std::string out = Show(ZKFMT_DIST_HEADER, m.Bytes);
  EXPECT_STRUCTURE_TEXT(out, "chain_dh.txt");
}

TEST_F(MessageChain, DescriptorExtensionAndTriggerMessage) {
  MessageBytes m;
  ZKMDE mde = ZKMDE_DEFAULT;
  SetFormat(mde.Format, ZKFMT_TRIGGER);
  mde.GroupId[23] = 0x7F;
  mde.MsgSeqNumber = 3;
  mde.MsgFlags = ZKMF_LAST_MSG_IN_GROUP | ZKMF_MSG_IN_GROUP;
  mde.OriginalLength = 900;
  m.Add(mde);
  ZKTM tm = ZKTM_DEFAULT;
  SetBlankPadded(tm.QName, sizeof tm.QName, "ORDERS.IN");
  SetBlankPadded(tm.ProcessName, sizeof tm.ProcessName, "ORDER.PROC");
  tm.ApplType = ZKAT_UNIX;
  SetBlankPadded(tm.ApplId, sizeof tm.ApplId, "/opt/orders/bin/run");
  m.Add(tm);
  EXPECT_STRUCTURE_TEXT(Show(ZKFMT_MD_EXTENSION, m.Bytes), "chain_mde_tm.txt");
}

TEST_F(MessageChain, ForeignByteOrderReversesTheHeaderIntegers) {
  MessageBytes m;
  ZKDLH dlh = DeadLetterHeader(ZKFMT_STRING, (int32_t)__builtin_bswap32(ZKRC_Q_FULL));
  dlh.Version = (int32_t)__builtin_bswap32(1);
  dlh.Encoding = (int32_t)__builtin_bswap32(273);
  m.Add(dlh);
  std::string out = Show(ZKFMT_DEAD_LETTER_HEADER, m.Bytes, 273);
  EXPECT_NE(out.find(FieldLineName("Version") + "1\n"), std::string::npos) << out;
  EXPECT_NE(out.find(FieldLineName("Reason") + "2053 (ZKRC_Q_FULL)\n"), std::string::npos) << out;
  EXPECT_NE(out.find(FieldLineName("Encoding") + "273 INTEGER_NORMAL"), std::string::npos) << out;
}

TEST_F(MessageChain, UnknownHeaderVersionIsReportedAndShown) {
  MessageBytes m;
  ZKDLH dlh = DeadLetterHeader(ZKFMT_STRING, 0);
  dlh.Version = 2;
  m.Add(dlh);
  std::string out = Show(ZKFMT_DEAD_LETTER_HEADER, m.Bytes);
  EXPECT_NE(out.find("|* Unknown : ZKDLH version 2\n"), std::string::npos) << out;
  EXPECT_NE(out.find(FieldLineName("Reason") + "0\n"), std::string::npos) << out;
  EXPECT_EQ(cb->File.UnknownAttributeSeen, 1);
}

// ---------------------------------------------------------------------------
// Data that is cut short or lies.

// Every header kind in one chain, for cutting.
std::vector<unsigned char> LongChain() {
  MessageBytes m;
  m.Add(TransmissionHeader(ZKFMT_DIST_HEADER));
  ZKDH dh = ZKDH_DEFAULT;
  dh.RecsPresent = 1;
  dh.ObjectRecOffset = 48;
  dh.PutMsgRecFields = ZKPMRF_CORREL_ID;
  dh.PutMsgRecOffset = 48 + 96;
  dh.StrucLength = 48 + 96 + 24;
  SetFormat(dh.Format, ZKFMT_REF_MSG_HEADER);
  m.Add(dh);
  m.Bytes.resize(m.Bytes.size() + 96 + 24, 'r');
  ZKRMH rmh = ZKRMH_DEFAULT;
  rmh.StrucLength = 116;
  rmh.SrcNameLength = 8;
  rmh.SrcNameOffset = 108;
  SetFormat(rmh.Format, ZKFMT_DEAD_LETTER_HEADER);
  m.Add(rmh);
  m.AddText("srcname!");
  m.Add(DeadLetterHeader(ZKFMT_MD_EXTENSION, ZKRC_Q_FULL));
  ZKMDE mde = ZKMDE_DEFAULT;
  SetFormat(mde.Format, ZKFMT_RF_HEADER_2);
  m.Add(mde);
  m.Add(RulesHeader2(ZKFMT_RF_HEADER, 36 + 4 + 7));
  m.AddFolder("<x>y</x>");
  m.Bytes.pop_back(); // the folder's length word says 8: one byte short
  ZKRFH rfh = ZKRFH_DEFAULT;
  rfh.StrucLength = 40;
  m.Add(rfh);
  m.AddText("n1 v1 n2");
  return m.Bytes;
}

TEST_F(MessageChain, EveryCutOfAChainStaysInsideTheData) {
  std::vector<unsigned char> whole = LongChain();
  for (size_t cut = 0; cut <= whole.size(); cut++) {
    std::vector<unsigned char> part(whole.begin(), whole.begin() + (long)cut);
    Show(ZKFMT_XMIT_Q_HEADER, part);
  }
  std::string full = Show(ZKFMT_XMIT_Q_HEADER, whole);
  for (const char *title : {"ZKXQH", "ZKMD1", "ZKDH (", "ZKDH -> ZKOR", "ZKDH -> ZKPMR", "ZKRMH",
                            "ZKDLH", "ZKMDE", "ZKHRF2", "ZKHRF (", "NameValueString"}) {
    EXPECT_NE(full.find(title), std::string::npos) << title << "\n" << full;
  }
}

TEST_F(MessageChain, EveryLimitOfAChainStaysInsideTheData) {
  std::vector<unsigned char> whole = LongChain();
  for (int32_t limit = -1; limit <= (int32_t)whole.size() + 1; limit += 7) {
    cb->Settings.ShowMaxLenParsedContent = limit;
    Show(ZKFMT_XMIT_Q_HEADER, whole);
  }
}

TEST_F(MessageChain, LyingLengthsEndTheChainCleanly) {
  const int32_t lies[] = {0, -1, 1, 35, 47, 0x7FFFFFFF, INT32_MIN, 100000};
  for (int32_t lie : lies) {
    MessageBytes dh;
    ZKDH header = ZKDH_DEFAULT;
    header.StrucLength = lie;
    header.RecsPresent = lie;
    header.ObjectRecOffset = lie;
    header.PutMsgRecOffset = lie;
    header.PutMsgRecFields = 31;
    SetFormat(header.Format, ZKFMT_STRING);
    dh.Add(header);
    dh.AddText("<a/>");
    Show(ZKFMT_DIST_HEADER, dh.Bytes);

    MessageBytes rmh;
    ZKRMH reference = ZKRMH_DEFAULT;
    reference.StrucLength = lie;
    reference.SrcEnvLength = reference.SrcNameLength = reference.DestEnvLength = lie;
    reference.SrcEnvOffset = reference.SrcNameOffset = reference.DestNameOffset = lie;
    reference.DestNameLength = 4;
    reference.DestEnvOffset = 104;
    rmh.Add(reference);
    Show(ZKFMT_REF_MSG_HEADER, rmh.Bytes);

    MessageBytes rfh2;
    rfh2.Add(RulesHeader2(ZKFMT_RF_HEADER_2, lie));
    rfh2.AddWord(lie);
    rfh2.AddText("<a/>");
    Show(ZKFMT_RF_HEADER_2, rfh2.Bytes);

    MessageBytes rfh;
    ZKRFH rules = ZKRFH_DEFAULT;
    rules.StrucLength = lie;
    rfh.Add(rules);
    rfh.AddText("a b c d \"");
    Show(ZKFMT_RF_HEADER, rfh.Bytes);
  }
}

TEST_F(MessageChain, RulesHeadersThatDoNotMoveEndTheRepetition) {
  MessageBytes m;
  for (int i = 0; i < 100; i++) {
    m.Add(RulesHeader2(ZKFMT_RF_HEADER_2, 36));
  }
  std::string out = Show(ZKFMT_RF_HEADER_2, m.Bytes);
  size_t sections = 0;
  const std::string title = "- ZKHRF2 (";
  for (size_t at = out.find(title); at != std::string::npos; at = out.find(title, at + 1)) {
    sections++;
  }
  EXPECT_EQ(sections, 100u);
}

} // namespace
