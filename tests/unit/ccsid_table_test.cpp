#include <gtest/gtest.h>

#include <string.h>

#include "text/codepage.h"
#include "text/constant_table.h"
#include "zk/zkconst.h"

static const char *CcsidText(int32_t ccsid) {
  return SearchConstantInt(ccsid, Constant_Ccsid_description);
}

TEST(CcsidTable, Has710Rows) {
  EXPECT_EQ(CountConstantIntRows(Constant_Ccsid_description), 710);
}

TEST(CcsidTable, PlatformConstantsAndTheirRows) {
  EXPECT_EQ(ZKCCSI_DEFAULT, 0);
  EXPECT_EQ(ZKCCSI_EMBEDDED, -1);
  EXPECT_EQ(ZKCCSI_INHERIT, -2);
  EXPECT_EQ(ZKCCSI_APPL, -3);
  EXPECT_STREQ(CcsidText(ZKCCSI_DEFAULT), "7-bit ASCII");
  EXPECT_STREQ(CcsidText(ZKCCSI_EMBEDDED), "embedded");
  EXPECT_STREQ(CcsidText(ZKCCSI_INHERIT), "inherit");
  EXPECT_STREQ(CcsidText(ZKCCSI_APPL), "appl");
}

TEST(CcsidTable, KnownPages) {
  EXPECT_STREQ(CcsidText(37), "COM EUROPE EBCDIC");
  EXPECT_STREQ(CcsidText(273), "AUS/GERM EBCDIC");
  EXPECT_STREQ(CcsidText(819), "ISO 8859-1 ASCII");
  EXPECT_STREQ(CcsidText(1208), "UTF-8");
  EXPECT_STREQ(CcsidText(1200), "UTF-16 BE");
  EXPECT_STREQ(CcsidText(1140), "COM EUROPE EBCDIC + EURO");
  EXPECT_STREQ(CcsidText(1148), "INTL EBCDIC + EURO");
  EXPECT_STREQ(CcsidText(954), "JAPANESE EUC MIXED");
  EXPECT_STREQ(CcsidText(5488), "SIMPL CHINESE GB18030");
}

TEST(CcsidTable, EuroUpdatesOfTheCountryPagesAreAllThere) {
  for (int32_t ccsid = 1140; ccsid <= 1149; ccsid++) {
    EXPECT_NE(strstr(CcsidText(ccsid), "+ EURO"), nullptr) << ccsid;
  }
}

TEST(CcsidTable, UnicodeForms) {
  for (int32_t ccsid : {1200, 1202, 1208, 1232, 1234, 13488, 17584}) {
    EXPECT_STRNE(CcsidText(ccsid), "(Unknown CCSID)") << ccsid;
  }
}

TEST(CcsidTable, UnknownCcsidGivesEndText) {
  EXPECT_STREQ(CcsidText(12345), "(Unknown CCSID)");
  EXPECT_STREQ(CcsidText(-4), "(Unknown CCSID)");
  EXPECT_STREQ(CcsidText(CONSTANT_TABLE_END), "(Unknown CCSID)");
}

TEST(CcsidTable, ValuesAreUniqueAndTextsNonEmpty) {
  int32_t rows = CountConstantIntRows(Constant_Ccsid_description);
  for (int32_t i = 0; i < rows; i++) {
    const ConstantIntEntry &row = Constant_Ccsid_description[i];
    EXPECT_NE(row.text, nullptr);
    EXPECT_GT(strlen(row.text), 0u) << row.value;
    EXPECT_STRNE(row.text, "(Unknown CCSID)") << row.value;
    for (int32_t j = i + 1; j < rows; j++) {
      EXPECT_NE(row.value, Constant_Ccsid_description[j].value) << "rows " << i << " and " << j;
    }
  }
}

TEST(CcsidTable, TextLooksUpItsValue) {
  EXPECT_EQ(SearchConstantIntByString("UTF-8", Constant_Ccsid_description), 1208);
  EXPECT_EQ(SearchConstantIntByString("utf-8", Constant_Ccsid_description), CONSTANT_TABLE_END);
}

TEST(CcsidTable, SearchConstantCcsidStringTellsDefaultFromAscii) {
  EXPECT_STREQ(SearchConstantCcsidString(0, 1), "7-bit ASCII");
  EXPECT_STREQ(SearchConstantCcsidString(0, 0), "default / queue_manager");
  EXPECT_STREQ(SearchConstantCcsidString(37, 0), "COM EUROPE EBCDIC");
  EXPECT_STREQ(SearchConstantCcsidString(1208, 1), "UTF-8");
  EXPECT_STREQ(SearchConstantCcsidString(12345, 0), "(Unknown CCSID)");
}

// Every CCSID that a locale can choose or that has character patterns is one
// the trace can name.
TEST(CcsidTable, DescribesEveryCcsidOfTheLocaleAndRangeTables) {
  for (const LocaleCcsidEntry *row = LocaleCcsidTable; row->locale[0] != '\0'; row++) {
    EXPECT_STRNE(CcsidText(row->ccsid), "(Unknown CCSID)") << row->locale;
  }
  for (const CcsidRangeEntry *row = CcsidRangeTable; row->ccsid != 0; row++) {
    EXPECT_STRNE(CcsidText(row->ccsid), "(Unknown CCSID)") << row->ccsid;
  }
}
