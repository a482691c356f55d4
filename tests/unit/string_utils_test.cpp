#include <gtest/gtest.h>

#include <string.h>

#include "text/string_utils.h"

TEST(StringTrim, RemovesBlanksCrLfAtEndAndBlanksAtFront) {
  char s[] = "   word\r\n";
  EXPECT_EQ(StringTrim(s), 4);
  EXPECT_STREQ(s, "word");
}

TEST(StringTrim, KeepsTabsAtEitherEnd) {
  char s[] = "\tword\t";
  EXPECT_EQ(StringTrim(s), 6);
  EXPECT_STREQ(s, "\tword\t");
}

TEST(StringTrim, LeadingLineFeedStays) {
  char s[] = "\n x ";
  StringTrim(s);
  EXPECT_STREQ(s, "\n x");
}

TEST(StringTrim, AllBlanksGiveEmpty) {
  char s[] = "    ";
  EXPECT_EQ(StringTrim(s), 0);
  EXPECT_STREQ(s, "");
}

TEST(StringTrimTrailing, KeepsLeadingBlanks) {
  char s[] = "  word  \n";
  EXPECT_EQ(StringTrimTrailing(s), 6);
  EXPECT_STREQ(s, "  word");
}

TEST(StringEliminateBlank, RemovesEveryBlank) {
  char s[] = " a b  c ";
  EXPECT_EQ(StringEliminateBlank(s), 3);
  EXPECT_STREQ(s, "abc");
}

TEST(StringUppershift, LengthLimitsTheChange) {
  char s[] = "abcd";
  StringUppershift(s, 3);
  EXPECT_STREQ(s, "ABCd");
}

TEST(StringUppershift, LengthBelowOneMeansWholeString) {
  char s[] = "ab\xe9z1";
  StringUppershift(s, 0);
  EXPECT_STREQ(s, "AB\xe9Z1");
  char t[] = "abc";
  StringUppershift(t, -5);
  EXPECT_STREQ(t, "ABC");
}

TEST(StringXlateToSevenBitAscii, ReplacesControlAndHighBytes) {
  char s[] = "a\x01\x7f\x80z~ ";
  EXPECT_EQ(StringXlateToSevenBitAscii(s), 7);
  EXPECT_STREQ(s, "a...z~ ");
}

TEST(StringSearch, FindsFirstOccurrence) {
  EXPECT_EQ(StringSearch("abcabc", "bc"), 1);
  EXPECT_EQ(StringSearch("abc", "abcd"), -1);
  EXPECT_EQ(StringSearch("abc", "x"), -1);
  EXPECT_EQ(StringSearch("abc", ""), 0);
}

TEST(StringSearchFromLast, FindsLastOccurrence) {
  EXPECT_EQ(StringSearchFromLast("abcabc", "bc"), 4);
  EXPECT_EQ(StringSearchFromLast("abcabc", "abc"), 3);
  EXPECT_EQ(StringSearchFromLast("abc", "x"), -1);
  EXPECT_EQ(StringSearchFromLast("", "x"), -1);
  EXPECT_EQ(StringSearchFromLast("ab", "abc"), -1);
}

TEST(StringWordFindByNum, CountsWordsAcrossBlankRuns) {
  char s[] = "x  y z";
  EXPECT_EQ(StringWordFindByNum(s, 3), s + 5);
  EXPECT_EQ(StringWordFindByNum(s, 4), STRING_WORD_NOT_FOUND);
  EXPECT_EQ(StringWordFindByNum(s, 2), s + 3);
  EXPECT_EQ(StringWordFindByNum(s, 0), s);
  EXPECT_EQ(StringWordFindByNum(s, -3), s);
}

TEST(StringWordFindByNum, SkipsLeadingBlanksAndEmptyGivesNotFound) {
  char s[] = "   first second";
  EXPECT_EQ(StringWordFindByNum(s, 1), s + 3);
  char empty[] = "";
  EXPECT_EQ(StringWordFindByNum(empty, 1), STRING_WORD_NOT_FOUND);
  char blanks[] = "   ";
  EXPECT_EQ(StringWordFindByNum(blanks, 1), STRING_WORD_NOT_FOUND);
}

TEST(StringTrimFileNameAndExtractDir, KeepsDirectoryWithSlash) {
  char s[] = "/var/zk/trace.t";
  EXPECT_EQ(StringTrimFileNameAndExtractDir(s), 8);
  EXPECT_STREQ(s, "/var/zk/");
}

TEST(StringTrimFileNameAndExtractDir, NoSlashGivesEmpty) {
  char s[] = "trace.t";
  EXPECT_EQ(StringTrimFileNameAndExtractDir(s), 0);
  EXPECT_STREQ(s, "");
}

TEST(StringTrimFileNameAndExtractDir, StopsAtByteFF) {
  char s[] = "ab\xff"
             "cd";
  EXPECT_EQ(StringTrimFileNameAndExtractDir(s), 3);
  EXPECT_STREQ(s, "ab\xff");
}

TEST(StringReplace, ReplacesLeadingCharacters) {
  char s[32] = "abcdef";
  StringReplace(s, 2, "XYZ");
  EXPECT_STREQ(s, "XYZcdef");
  StringReplace(s, 4, "");
  EXPECT_STREQ(s, "def");
}

TEST(StringReplaceFirst, ReplacesAndCutsToSize) {
  char s[16] = "a[$1s]b";
  EXPECT_EQ(StringReplaceFirst(s, sizeof s, "[$1s]", "value"), 0);
  EXPECT_STREQ(s, "avalueb");
  EXPECT_EQ(StringReplaceFirst(s, sizeof s, "[$2s]", "x"), -1);
  char small[8] = "a$b";
  StringReplaceFirst(small, sizeof small, "$", "0123456789");
  EXPECT_STREQ(small, "a012345");
}

TEST(StringCopyFixedField, CopiesAndTrimsBlankPaddedField) {
  char out[13];
  const char field[12] = {'a', 'l', 'i', 'c', 'e', ' ', ' ', ' ', ' ', ' ', ' ', ' '};
  EXPECT_EQ(StringCopyFixedField(out, field, 12), 5);
  EXPECT_STREQ(out, "alice");
}

TEST(StringCopyCut, CopiesCutsAndAlwaysTerminates) {
  char out[6];
  memset(out, 'x', sizeof out);
  StringCopyCut(out, "abc", sizeof out);
  EXPECT_STREQ(out, "abc");
  StringCopyCut(out, "abcdefgh", sizeof out);
  EXPECT_STREQ(out, "abcde");
  const char unterminated[3] = {'p', 'q', 'r'};
  StringCopyCut(out, unterminated, 3); // reads at most two bytes of it
  EXPECT_STREQ(out, "pq");
  StringCopyCut(out, "zz", 1);
  EXPECT_STREQ(out, "");
  out[0] = 'k';
  StringCopyCut(out, "zz", 0); // no room at all: untouched
  EXPECT_EQ(out[0], 'k');
}
