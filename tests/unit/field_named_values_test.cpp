// Recurring displays: CCSIDs, message formats, compression lists, encodings,
// and the byte order of integers from foreign-encoded structures.
#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "format/field_primitives.h"
#include "tests/unit/field_line_test.h"
#include "zk/zk.h"

namespace {

struct FieldNamedValue : FieldLineTest {};

} // namespace

TEST_F(FieldNamedValue, CcsidWithItsName) {
  ShowParsedCommonCcsid(cb, "CodedCharSetId", 273, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("CodedCharSetId") + "   273 (AUS/GERM EBCDIC)\n");
  ShowParsedCommonCcsid(cb, "CodedCharSetId", 37, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("CodedCharSetId") + "37 (COM EUROPE EBCDIC)\n");
  ShowParsedCommonCcsid(cb, "CodedCharSetId", 0, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("CodedCharSetId") + "     0 (default / queue_manager)\n");
  ShowParsedCommonCcsid(cb, "  VSCCSID", -3, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("  VSCCSID") + "-3 (appl)\n");
  ShowParsedCommonCcsid(cb, "CodedCharSetId", 99999, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("CodedCharSetId") + "99999 ((Unknown CCSID))\n");
}

TEST_F(FieldNamedValue, KnownFormatWithDescription) {
  ShowParsedMsgFormat(cb, "ZKXMIT  ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKXMIT (Transmission queue header)\n");
  ShowParsedMsgFormat(cb, "ZKHMDE  ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKHMDE (Message descrptor extension)\n");
  ShowParsedMsgFormat(cb, "ZKHRF2  ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKHRF2 (Rules and formatting header 2)\n");
  // Zero bytes end the name, which is then padded with blanks.
  const char shortName[8] = {'Z', 'K', 'S', 'T', 'R', 0, 0, 0};
  ShowParsedMsgFormat(cb, shortName);
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKSTR (String)\n");
}

TEST_F(FieldNamedValue, BlankAndUnknownFormats) {
  ShowParsedMsgFormat(cb, "        ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "(blank)\n");
  const char zeros[8] = {};
  ShowParsedMsgFormat(cb, zeros);
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "(blank)\n");
  ShowParsedMsgFormat(cb, "MYFMT   ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "MYFMT\n");
  // All 8 bytes are compared exactly: no case folding, no wildcards.
  ShowParsedMsgFormat(cb, "zkstr   ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "zkstr\n");
  ShowParsedMsgFormat(cb, "ZKS*    ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKS*\n");
  ShowParsedMsgFormat(cb, " ZKSTR  ");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKSTR\n");
  const char cut[8] = {'Z', 'K', 0, 'X', 'M', 'I', 'T', ' '};
  ShowParsedMsgFormat(cb, cut);
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZK\n");
  // Only the 8 bytes of the field are read.
  ShowParsedMsgFormat(cb, "ZKXMIT  TRAILING");
  EXPECT_EQ(capture.Take(), FieldLineName("Format") + "ZKXMIT (Transmission queue header)\n");
}

TEST_F(FieldNamedValue, CompressionSpecialValues) {
  ShowParsedCompressInfo(cb, "HeaderCompression", 0x0FFFFFFF, 0, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("HeaderCompression") + "268435455 (any)\n");
  ShowParsedCompressInfo(cb, "HeaderCompression", -1, 1, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("HeaderCompression") + "    -1 (not available)\n");
  ShowParsedCompressInfo(cb, "HeaderCompression", 0, 1, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("HeaderCompression") + "     0 (none)");
}

TEST_F(FieldNamedValue, CompressionBitsJoined) {
  ShowParsedCompressInfo(cb, "MsgCompression", 3, 0, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgCompression") + "3 (RLE / ZLIBFAST)\n");
  ShowParsedCompressInfo(cb, "MsgCompression", 16, 0, 1);
  EXPECT_EQ(capture.Take(), FieldLineName("MsgCompression") + "16 ()\n");
  ShowParsedCompressInfo(cb, "MsgCompression", 15, 1, 1);
  EXPECT_EQ(capture.Take(),
            FieldLineName("MsgCompression") + "    15 (RLE / ZLIBFAST / ZLIBHIGH / SYSTEM)\n");
  ShowParsedCompressInfo(cb, "", 4 | 8 | 32, 0, 0);
  EXPECT_EQ(capture.Take(), "44 (ZLIBHIGH / SYSTEM)");
}

TEST_F(FieldNamedValue, EncodingNames) {
  ShowParsedEncodingValue(cb, 273);
  EXPECT_EQ(capture.Take(), FieldLineName("Encoding") +
                                "273 INTEGER_NORMAL / DECIMAL_NORMAL / FLOAT_IEEE_NORMAL\n");
  ShowParsedEncodingValue(cb, 546);
  EXPECT_EQ(
      capture.Take(),
      FieldLineName("Encoding") +
          "546 (Native encoding) INTEGER_REVERSED / DECIMAL_REVERSED / FLOAT_IEEE_REVERSED\n");
  ShowParsedEncodingValue(cb, 0x311);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Encoding") + "785 INTEGER_NORMAL / DECIMAL_NORMAL / FLOAT_S390\n");
  ShowParsedEncodingValue(cb, 0x422);
  EXPECT_EQ(capture.Take(),
            FieldLineName("Encoding") + "1058 INTEGER_REVERSED / DECIMAL_REVERSED / FLOAT_TNS\n");
  ShowParsedEncodingValue(cb, 0);
  EXPECT_EQ(capture.Take(), FieldLineName("Encoding") +
                                "0 INTEGER_UNDEFINED / DECIMAL_UNDEFINED / FLOAT_UNDEFINED\n");
  ShowParsedEncodingValue(cb, -1);
  EXPECT_EQ(capture.Take(), FieldLineName("Encoding") +
                                "4294967295 INTEGER_UNDEFINED / DECIMAL_UNDEFINED / "
                                "FLOAT_UNDEFINED\n");
  // Bits above the three fields name nothing.
  ShowParsedEncodingValue(cb, 0x1222);
  EXPECT_EQ(capture.Take(), FieldLineName("Encoding") +
                                "4642 INTEGER_REVERSED / DECIMAL_REVERSED / FLOAT_IEEE_REVERSED\n");
}

TEST(FieldByteOrder, FourByteValues) {
  EXPECT_EQ(ZklongValueRegardingEncoding(0x01020304, 1), 0x04030201);
  EXPECT_EQ(ZklongValueRegardingEncoding(0x01020304, 273), 0x04030201);
  EXPECT_EQ(ZklongValueRegardingEncoding(0x01020304, 2), 0x01020304);
  EXPECT_EQ(ZklongValueRegardingEncoding(0x01020304, 546), 0x01020304);
  EXPECT_EQ(ZklongValueRegardingEncoding(0x01020304, 3), 0x01020304);
  EXPECT_EQ(ZklongValueRegardingEncoding(0x01020304, 0), 0x01020304);
  EXPECT_EQ(ZklongValueRegardingEncoding((int32_t)0xFFFFFF80, 1), (int32_t)0x80FFFFFF);
}

TEST(FieldByteOrder, EightByteValues) {
  EXPECT_EQ(ZkInt64ValueRegardingEncoding(0x05060708, 0x01020304, 1), 0x0807060504030201LL);
  EXPECT_EQ(ZkInt64ValueRegardingEncoding(0x05060708, 0x01020304, 546), 0x0102030405060708LL);
  EXPECT_EQ(ZkInt64ValueRegardingEncoding(0x05060708, 0x01020304, 0), 0x0102030405060708LL);
  // The top byte of the high word becomes the lowest byte of the result.
  EXPECT_EQ(ZkInt64ValueRegardingEncoding(0, 0xAB000000u, 273), 0xABLL);
}

TEST_F(FieldNamedValue, BigEndianStructureHasItsIntegersReversed) {
  ZKMD md;
  memset(&md, 0, sizeof md);
  memcpy(md.StrucId, "MD  ", 4);
  const unsigned char version[4] = {0x00, 0x00, 0x00, 0x02};
  const unsigned char expiry[4] = {0x00, 0x00, 0x01, 0x2C};   // 300
  const unsigned char priority[4] = {0xFF, 0xFF, 0xFF, 0xFF}; // -1
  memcpy(&md.Version, version, 4);
  memcpy(&md.Expiry, expiry, 4);
  memcpy(&md.Priority, priority, 4);

  int32_t encoding = ZkStructureEncoding(&md);
  EXPECT_EQ(encoding, ZKENC_INTEGER_NORMAL);
  ShowFieldValueZklong(cb, "Version", ZklongValueRegardingEncoding(md.Version, encoding), 1);
  ShowFieldValueZklong(cb, "Expiry", ZklongValueRegardingEncoding(md.Expiry, encoding), 1);
  ShowFieldValueZklong(cb, "Priority", ZklongValueRegardingEncoding(md.Priority, encoding), 1);
  EXPECT_EQ(capture.Take(), FieldLineName("Version") + "2\n" + FieldLineName("Expiry") + "300\n" +
                                FieldLineName("Priority") + "-1\n");
}

TEST_F(FieldNamedValue, HostOrderStructureIsShownAsItIs) {
  ZKMD md;
  memset(&md, 0, sizeof md);
  memcpy(md.StrucId, "MD  ", 4);
  md.Version = 2;
  md.Expiry = 300;
  int32_t encoding = ZkStructureEncoding(&md);
  EXPECT_EQ(encoding, ZKENC_INTEGER_REVERSED);
  EXPECT_EQ(ZklongValueRegardingEncoding(md.Version, encoding), 2);
  EXPECT_EQ(ZklongValueRegardingEncoding(md.Expiry, encoding), 300);
}
