// The records of ZKINQ and ZKSET: handles and names, the counts, the three
// arrays dumped in hex and shown selector by selector, which values stand
// before and which after the call, calls on queues that are not selected,
// summary-only mode, and counts and arrays that the application got wrong.
#include <gtest/gtest.h>

#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "exit/handle_list.h"
#include "handlers/handlers.h"
#include "tests/unit/handler_fixture.h"
#include "zk/zk.h"

namespace {

// One call's parameters as the queue manager passes them.
struct InqParms {
  ZKHCONN hconn = kHconn;
  ZKHOBJ hobj = kHobj;
  ZKLONG selectorCount = 0;
  ZKLONG selectorArray[300] = {};
  PZKLONG selectors = selectorArray;
  ZKLONG intAttrCount = 0;
  ZKLONG intArray[300] = {};
  PZKLONG intAttrs = intArray;
  ZKLONG charAttrLength = 0;
  ZKCHAR charArea[70000] = {};
  PZKCHAR charAttrs = charArea;
};

struct InquireCalls : HandlerParmsFixture<InqParms> {
  // A handle in the list as ZKOPEN leaves it, with its inquire and set flags.
  void Opened(const char *name, const char *resolved, uint8_t inq = 1, uint8_t set = 1) {
    queueHandleListAddEntry(cb, name, 1, 1, 1, 1, inq, set);
    queueHandleListSetHandleToLastEntry(cb, kHobj, name, resolved);
  }

  void Selectors(std::vector<ZKLONG> s) {
    p->selectorCount = (ZKLONG)s.size();
    for (size_t i = 0; i < s.size(); i++) {
      p->selectorArray[i] = s[i];
    }
  }
  void Ints(std::vector<ZKLONG> v) {
    p->intAttrCount = (ZKLONG)v.size();
    for (size_t i = 0; i < v.size(); i++) {
      p->intArray[i] = v[i];
    }
  }
  void Chars(const std::string &text) {
    p->charAttrLength = (ZKLONG)text.size();
    memcpy(p->charArea, text.data(), text.size());
  }

  void InqB() {
    InqBefore(Axp(ZKXF_INQ, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, &p->selectorCount,
              &p->selectors, &p->intAttrCount, &p->intAttrs, &p->charAttrLength, &p->charAttrs,
              &compCode, &reason);
  }
  void InqA() {
    InqAfter(Axp(ZKXF_INQ, ZKXR_AFTER), &axc, &p->hconn, &p->hobj, &p->selectorCount, &p->selectors,
             &p->intAttrCount, &p->intAttrs, &p->charAttrLength, &p->charAttrs, &compCode, &reason);
  }
  void SetB() {
    SetBefore(Axp(ZKXF_SET, ZKXR_BEFORE), &axc, &p->hconn, &p->hobj, &p->selectorCount,
              &p->selectors, &p->intAttrCount, &p->intAttrs, &p->charAttrLength, &p->charAttrs,
              &compCode, &reason);
  }
  void SetA() {
    SetAfter(Axp(ZKXF_SET, ZKXR_AFTER), &axc, &p->hconn, &p->hobj, &p->selectorCount, &p->selectors,
             &p->intAttrCount, &p->intAttrs, &p->charAttrLength, &p->charAttrs, &compCode, &reason);
  }
};

std::string Blanks(size_t n) {
  return std::string(n, ' ');
}

} // namespace

// ---------------------------------------------------------------------------
// ZKINQ

TEST_F(InquireCalls, InquireNamesTheSelectorsBeforeAndShowsTheValuesAfter) {
  Opened("APP.ALIAS", "APP.IN");
  Selectors({ZKIA_CURRENT_Q_DEPTH, ZKCA_Q_NAME, ZKIA_INHIBIT_PUT});
  p->intAttrCount = 2;
  p->charAttrLength = 48;
  InqB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.ALIAS",
                            "| (real name):APP.IN",
                            "SelectorCount:3",
                            "Selectors:(12=xC bytes)",
                            Dump("00000000:03000000 E0070000 0A000000", "............"),
                            Field("ZKIA_CURRENT_Q_DEPTH", ""),
                            Field("ZKIA_INHIBIT_PUT", ""),
                            Field("ZKCA_Q_NAME", ""),
                            "IntAttrCount:2",
                            "CharAttrLength:48",
                        }));

  Ints({7, ZKQA_PUT_INHIBITED});
  Chars("APP.IN" + Blanks(42));
  InqA();
  EXPECT_EQ(OwnLines(),
            (std::vector<std::string>{
                "IntAttrs:(8=x8 bytes)",
                Dump("00000000:07000000 01000000", "........"),
                Field("ZKIA_CURRENT_Q_DEPTH", "7"),
                Field("ZKIA_INHIBIT_PUT", "1 (put inhibited)"),
                "CharAttrs:(48=x30 bytes)",
                Dump("00000000:4150502E 494E2020 20202020 20202020", "APP.IN          "),
                Dump("00000010:20202020 20202020 20202020 20202020", "                "),
                Dump("00000020:20202020 20202020 20202020 20202020", "                "),
                Field("ZKCA_Q_NAME", "APP.IN"),
            }));
}

TEST_F(InquireCalls, NoResolvedNameLineWhenTheNamesAreTheSame) {
  Opened("APP.IN", "APP.IN");
  Selectors({ZKIA_CURRENT_Q_DEPTH});
  InqB();
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 4u);
  EXPECT_EQ(lines[2], "| ObjectName:APP.IN");
  EXPECT_EQ(lines[3], "SelectorCount:1");
}

TEST_F(InquireCalls, SelectorCountZeroDumpsNoBytesAndListsNothing) {
  Opened("APP.IN", "");
  InqB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.IN",
                            "SelectorCount:0",
                            "Selectors:(0=x0 bytes)",
                            "IntAttrCount:0",
                            "CharAttrLength:0",
                        }));
  InqA();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "IntAttrs:(0=x0 bytes)",
                            "CharAttrs:(0=x0 bytes)",
                        }));
}

TEST_F(InquireCalls, FewerIntegersThanSelectorsLeaveTheRestWithoutValues) {
  Opened("APP.IN", "");
  Selectors({ZKIA_CURRENT_Q_DEPTH, ZKIA_MAX_Q_DEPTH, ZKIA_Q_TYPE});
  InqB();
  capture.Take();
  Ints({2});
  compCode = ZKCC_WARNING;
  reason = ZKRC_INT_ATTR_COUNT_TOO_SMALL;
  InqA();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "IntAttrs:(4=x4 bytes)",
                            Dump("00000000:02000000", "...."),
                            Field("ZKIA_CURRENT_Q_DEPTH", "2"),
                            Field("ZKIA_MAX_Q_DEPTH", ""),
                            Field("ZKIA_Q_TYPE", ""),
                            "CharAttrs:(0=x0 bytes)",
                        }));
}

TEST_F(InquireCalls, ANameListShowsAsManyNamesAsTheNameCountSays) {
  Opened("ALL.NAMES", "");
  Selectors({ZKIA_NAME_COUNT, ZKCA_NAMES});
  InqB();
  capture.Take();
  Ints({2});
  std::string first = "Q.ONE" + Blanks(43), second = "Q.TWO" + Blanks(43);
  Chars(first + second + std::string(48, 'X'));
  InqA();
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[2], Field("ZKIA_NAME_COUNT", "2"));
  std::vector<std::string> names(lines.end() - 2, lines.end());
  EXPECT_EQ(names,
            (std::vector<std::string>{Field("ZKCA_NAMES", "Q.ONE"), Field("ZKCA_NAMES", "Q.TWO")}));
}

TEST_F(InquireCalls, ANameListWithCountZeroShowsNothingForIt) {
  Opened("ALL.NAMES", "");
  Selectors({ZKIA_NAME_COUNT, ZKCA_NAMES, ZKCA_Q_NAME});
  InqB();
  capture.Take();
  Ints({0});
  Chars("APP.IN" + Blanks(42));
  InqA();
  std::vector<std::string> lines = OwnLines();
  ASSERT_GE(lines.size(), 1u);
  EXPECT_EQ(lines.back(), Field("ZKCA_Q_NAME", "APP.IN"));
  for (const std::string &line : lines) {
    EXPECT_EQ(line.find("ZKCA_NAMES"), std::string::npos) << line;
  }
}

TEST_F(InquireCalls, FailedInquireShowsTheArraysAsLeftAndTheReasonByName) {
  Opened("APP.IN", "");
  Selectors({ZKIA_CURRENT_Q_DEPTH, 9999});
  p->intAttrCount = 2;
  InqB();
  capture.Take();
  p->intArray[0] = 0x11;
  p->intArray[1] = 0x22;
  compCode = ZKCC_FAILED;
  reason = ZKRC_SELECTOR_ERROR;
  InqA();
  std::string text = capture.Take();
  EXPECT_NE(text.find("CompCode:2\nReason:2067\n"), std::string::npos) << text;
  EXPECT_NE(text.find("ZKRC_SELECTOR_ERROR"), std::string::npos) << text;
  EXPECT_NE(
      text.find("IntAttrs:(8=x8 bytes)\n" + Dump("00000000:11000000 22000000", "....\"...") + "\n"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find(Field("ZKIA_CURRENT_Q_DEPTH", "17") + "\n"), std::string::npos) << text;
  EXPECT_EQ(Counted(ZKXF_INQ).ErrorCount, 1u);
}

// ---------------------------------------------------------------------------
// ZKSET

TEST_F(InquireCalls, SetShowsTheValuesToBeSetBeforeAndTheHeaderOnlyAfter) {
  Opened("APP.IN", "");
  Selectors({ZKIA_INHIBIT_PUT, ZKCA_TRIGGER_DATA});
  Ints({ZKQA_PUT_ALLOWED});
  Chars("start" + Blanks(59));
  SetB();
  std::vector<std::string> expected = {
      "Hconn:0x00001A2B",
      "Hobj:0x00000051",
      "| ObjectName:APP.IN",
      "SelectorCount:2",
      "Selectors:(8=x8 bytes)",
      Dump("00000000:0A000000 E7070000", "........"),
      "IntAttrCount:1",
      "IntAttrs:(4=x4 bytes)",
      Dump("00000000:00000000", "...."),
      Field("ZKIA_INHIBIT_PUT", "0 (put allowed)"),
      "CharAttrLength:64",
      "CharAttrs:(64=x40 bytes)",
      Dump("00000000:73746172 74202020 20202020 20202020", "start           "),
      Dump("00000010:20202020 20202020 20202020 20202020", "                "),
      "00000020-0000002F same as above",
      Dump("00000030:20202020 20202020 20202020 20202020", "                "),
      Field("ZKCA_TRIGGER_DATA", "start"),
  };
  EXPECT_EQ(OwnLines(), expected);
  SetA();
  EXPECT_EQ(OwnLines(), std::vector<std::string>{});
  EXPECT_EQ(Counted(ZKXF_SET).OkCount, 1u);
}

TEST_F(InquireCalls, SetWithoutParsedDataShowsTheCountsAndTheThreeDumpsOnly) {
  cb->Settings.ShowParsedData = 0;
  Opened("APP.IN", "");
  Selectors({ZKIA_INHIBIT_PUT, ZKCA_TRIGGER_DATA});
  Ints({1});
  Chars("go");
  SetB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.IN",
                            "SelectorCount:2",
                            "Selectors:(8=x8 bytes)",
                            Dump("00000000:0A000000 E7070000", "........"),
                            "IntAttrCount:1",
                            "IntAttrs:(4=x4 bytes)",
                            Dump("00000000:01000000", "...."),
                            "CharAttrLength:2",
                            "CharAttrs:(2=x2 bytes)",
                            Dump("00000000:676F", "go"),
                        }));
}

// ---------------------------------------------------------------------------
// Selection, summary-only mode

TEST_F(InquireCalls, HandleNotInTheListWithTargetQueueEntriesIsCountedNotWritten) {
  cb->Settings.TargetQueueCount = 1;
  strcpy(cb->Settings.TargetQueue[0].QueueName, "APP.*");
  cb->Settings.TargetQueue[0].I = 1;
  Selectors({ZKIA_CURRENT_Q_DEPTH});
  InqB();
  InqA();
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(Counted(ZKXF_INQ).CallCount, 1u);
  EXPECT_EQ(Counted(ZKXF_INQ).TimedCalls, 0);

  cb->Settings.CountSelectedCallsOnly = 1;
  InqB();
  InqA();
  EXPECT_EQ(capture.Take(), "");
  EXPECT_EQ(Counted(ZKXF_INQ).CallCount, 1u);
}

TEST_F(InquireCalls, TheInquireAndSetFlagsOfTheHandleSelect) {
  cb->Settings.TargetQueueCount = 1;
  strcpy(cb->Settings.TargetQueue[0].QueueName, "APP.IN");
  Opened("APP.IN", "", 0, 1);
  Selectors({ZKIA_INHIBIT_PUT});
  Ints({0});
  InqB();
  InqA();
  EXPECT_EQ(capture.Take(), "");
  SetB();
  EXPECT_NE(capture.Take().find("<ZKSET\n"), std::string::npos);
}

TEST_F(InquireCalls, SummaryOnlyWritesNothingBeforeAndOneLineAfter) {
  cb->Settings.ShowSummaryOnly = 1;
  Opened("APP.IN", "");
  Selectors({ZKIA_CURRENT_Q_DEPTH});
  Ints({3});
  InqB();
  EXPECT_EQ(capture.Take(), "");
  InqA();
  std::vector<std::string> lines = SplitTextLines(capture.Take());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("  ZKINQ  "), std::string::npos) << lines[0];
  EXPECT_EQ(lines[0].find("IntAttrs"), std::string::npos) << lines[0];
}

// ---------------------------------------------------------------------------
// What the application got wrong

TEST_F(InquireCalls, NegativeCountsAndLengthDumpAndShowNothing) {
  Opened("APP.IN", "");
  Selectors({ZKIA_CURRENT_Q_DEPTH, ZKCA_Q_NAME});
  p->selectorCount = -1;
  p->intAttrCount = -5;
  p->charAttrLength = -48;
  InqB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.IN",
                            "SelectorCount:-1",
                            "Selectors:(0=x0 bytes)",
                            "IntAttrCount:-5",
                            "CharAttrLength:-48",
                        }));
  InqA();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "IntAttrs:(0=x0 bytes)",
                            "CharAttrs:(0=x0 bytes)",
                        }));
  SetB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.IN",
                            "SelectorCount:-1",
                            "Selectors:(0=x0 bytes)",
                            "IntAttrCount:-5",
                            "IntAttrs:(0=x0 bytes)",
                            "CharAttrLength:-48",
                            "CharAttrs:(0=x0 bytes)",
                        }));
}

TEST_F(InquireCalls, NullArraysShowNothing) {
  Opened("APP.IN", "");
  p->selectorCount = 2;
  p->intAttrCount = 2;
  p->charAttrLength = 10;
  p->selectors = nullptr;
  p->intAttrs = nullptr;
  p->charAttrs = nullptr;
  SetB();
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hconn:0x00001A2B",
                            "Hobj:0x00000051",
                            "| ObjectName:APP.IN",
                            "SelectorCount:2",
                            "Selectors:(0=x0 bytes)",
                            "IntAttrCount:2",
                            "IntAttrs:(0=x0 bytes)",
                            "CharAttrLength:10",
                            "CharAttrs:(0=x0 bytes)",
                        }));
  // Arrays passed by a null address, and counts that cannot be read.
  InqBefore(Axp(ZKXF_INQ, ZKXR_BEFORE), &axc, nullptr, &p->hobj, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "Hobj:0x00000051",
                            "| ObjectName:APP.IN",
                            "Selectors:(0=x0 bytes)",
                        }));
  InqAfter(Axp(ZKXF_INQ, ZKXR_AFTER), &axc, nullptr, &p->hobj, nullptr, nullptr, nullptr, nullptr,
           nullptr, nullptr, &compCode, &reason);
  EXPECT_EQ(OwnLines(), (std::vector<std::string>{
                            "IntAttrs:(0=x0 bytes)",
                            "CharAttrs:(0=x0 bytes)",
                        }));
}

TEST_F(InquireCalls, HugeCountsAreReadOnlyUpToTheBound) {
  cb->Settings.ShowParsedData = 0;
  Opened("APP.IN", "");
  p->selectorCount = 0x7FFFFFFF;
  p->intAttrCount = 1000000;
  p->charAttrLength = 0x40000000;
  SetB();
  std::string text = capture.Take();
  EXPECT_NE(text.find("SelectorCount:2147483647\nSelectors:(1024=x400 bytes)\n"),
            std::string::npos);
  EXPECT_NE(text.find("IntAttrCount:1000000\nIntAttrs:(1024=x400 bytes)\n"), std::string::npos);
  EXPECT_NE(text.find("CharAttrLength:1073741824\nCharAttrs:(65536=x10000 bytes)\n"),
            std::string::npos);
  // With the parsed display, the selectors walked are bounded the same way.
  cb->Settings.ShowParsedData = 1;
  for (int i = 0; i < 300; i++) {
    p->selectorArray[i] = ZKIA_CURRENT_Q_DEPTH;
  }
  InqB();
  std::vector<std::string> lines = OwnLines();
  size_t named = 0;
  for (const std::string &line : lines) {
    named += line == Field("ZKIA_CURRENT_Q_DEPTH", "") ? 1 : 0;
  }
  EXPECT_EQ(named, 256u);
}

TEST_F(InquireCalls, TheHandlersChangeNoParameter) {
  Opened("APP.IN", "");
  Selectors({ZKIA_INHIBIT_PUT, ZKCA_TRIGGER_DATA, ZKIA_NAME_COUNT, ZKCA_NAMES});
  Ints({1, 3});
  Chars("some trigger data and names");
  compCode = ZKCC_WARNING;
  reason = ZKRC_CHAR_ATTRS_TOO_SHORT;
  std::unique_ptr<InqParms> copy = Copy();
  InqB();
  InqA();
  SetB();
  SetA();
  EXPECT_EQ(p->hconn, copy->hconn);
  EXPECT_EQ(p->hobj, copy->hobj);
  EXPECT_EQ(p->selectorCount, copy->selectorCount);
  EXPECT_EQ(p->intAttrCount, copy->intAttrCount);
  EXPECT_EQ(p->charAttrLength, copy->charAttrLength);
  EXPECT_EQ(p->selectors, p->selectorArray);
  EXPECT_EQ(p->intAttrs, p->intArray);
  EXPECT_EQ(p->charAttrs, p->charArea);
  EXPECT_SAME_BYTES(p->selectorArray, copy->selectorArray);
  EXPECT_SAME_BYTES(p->intArray, copy->intArray);
  EXPECT_SAME_BYTES(p->charArea, copy->charArea);
  EXPECT_EQ(compCode, ZKCC_WARNING);
  EXPECT_EQ(reason, ZKRC_CHAR_ATTRS_TOO_SHORT);
  EXPECT_NE(capture.Take().find("<ZKSET\n"), std::string::npos);
}
