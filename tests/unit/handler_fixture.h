// What the tests of the call handlers share: the handles the calls are made
// with; a fixture whose control block traces every call (no update-request
// checks, no addresses in records, parsed data shown) with an empty handle
// list, the two exit structures the queue manager passes and a completion
// code and reason; the lines of a record after its header; structure dumps
// taken aside; the counters of a function; a variant that holds one call's
// parameters and compares them with a copy; and the pieces the expected
// lines are built from.
#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "exit/control_block.h"
#include "exit/handle_list.h"
#include "output/statistics_index.h"
#include "tests/harness_text.h"
#include "tests/unit/capture.h"
#include "zk/zk.h"

// The connection and object handles of the calls the tests make; the
// records show them as "Hconn:0x00001A2B" and "Hobj:0x00000051".
const ZKHCONN kHconn = 0x1A2B;
const ZKHOBJ kHobj = 0x51;

struct HandlerFixture : ::testing::Test {
  CaptureBlock capture;
  ExitControlBlock *cb = capture.cb();
  ZKAXP axp;
  ZKAXC axc;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = ZKRC_NONE;

  void SetUp() override {
    cb->Settings.CheckUpdateRequestInterval = 0;
    cb->Settings.ShowParsedData = 1;
    cb->File.NoAddress = 1;
    cb->ExecStatus = 1;
    cb->Handles.HandleList = (QueueHandleEntry *)calloc(HANDLE_LIST_STEP, sizeof(QueueHandleEntry));
    cb->Handles.HandleCapacity = HANDLE_LIST_STEP;
    memset(&axp, 0, sizeof axp);
    memset(&axc, 0, sizeof axc);
    axp.ExitChainAreaPtr = cb;
  }
  void TearDown() override {
    free(cb->Handles.HandleList);
    cb->Handles.HandleList = nullptr;
  }

  // The exit parameters of one call: which function, before or after.
  PZKAXP Axp(int32_t function, int32_t exitReason) {
    axp.Function = function;
    axp.ExitReason = exitReason;
    return &axp;
  }

  // The lines a record holds after its header: after the exit-reason line
  // of a before-record, after the process time of an after-record. Text
  // without a header record fails the test.
  std::vector<std::string> OwnLines() {
    std::string text = capture.Take();
    std::vector<std::string> lines = SplitTextLines(text);
    size_t from = lines.size() + 1;
    for (size_t i = 0; i < lines.size(); i++) {
      if (lines[i] == "(BEFORE" || lines[i].compare(0, 19, "| API process time:") == 0) {
        from = i + 1;
      }
    }
    EXPECT_LE(from, lines.size()) << "no header record in:\n" << text;
    if (from > lines.size()) {
      return {};
    }
    return std::vector<std::string>(lines.begin() + (long)from, lines.end());
  }

  // What a structure dump writes by itself, as lines. The text of the call
  // being checked stays in the buffer, so that these may be evaluated
  // before or after OwnLines().
  template <typename Show> std::vector<std::string> Shown(Show show) {
    int32_t fill = cb->WriteBufferFill;
    show();
    std::string text(cb->WriteBuffer + fill, (size_t)(cb->WriteBufferFill - fill));
    cb->WriteBufferFill = fill;
    cb->WriteBuffer[fill] = '\0';
    return SplitTextLines(text);
  }

  CallCounterRecord &Counted(int32_t function) {
    return cb->Counters.Statistics[StatisticsIndexOfFunction(function)][COUNTER_CUMULATIVE];
  }
};

// A handler fixture with one call's parameters as the queue manager passes
// them, `p` (on the heap: some are large), and a copy of them to compare
// with after the calls.
template <typename Parms> struct HandlerParmsFixture : HandlerFixture {
  Parms *p = new Parms();
  ~HandlerParmsFixture() override { delete p; }

  std::unique_ptr<Parms> Copy() const { return std::unique_ptr<Parms>(new Parms(*p)); }
};

// That a parameter holds the same bytes as its copy from before the calls.
#define EXPECT_SAME_BYTES(now, before)                                                             \
  do {                                                                                             \
    static_assert(sizeof(now) == sizeof(before), "compared parameters differ in size");            \
    EXPECT_EQ(memcmp(&(now), &(before), sizeof(now)), 0) << #now;                                  \
  } while (0)

// A field line as the formatters write it: "|> ", the name in 25 columns,
// ": " and the value.
inline std::string Field(const std::string &name, const std::string &value) {
  std::string padded = name;
  if (padded.size() < 25) {
    padded.append(25 - padded.size(), ' ');
  }
  return "|> " + padded + ": " + value;
}

// A dump line: offset and hex words, the character column from column 46.
inline std::string Dump(std::string offsetAndHex, const std::string &characters) {
  offsetAndHex.resize(46, ' ');
  return offsetAndHex + "[" + characters + "]";
}

// The lines of a record made of parts: given lines and structure dumps.
inline std::vector<std::string>
Join(std::vector<std::string> a, const std::vector<std::string> &b = {},
     const std::vector<std::string> &c = {}, const std::vector<std::string> &d = {},
     const std::vector<std::string> &e = {}, const std::vector<std::string> &f = {},
     const std::vector<std::string> &g = {}) {
  for (const std::vector<std::string> *more : {&b, &c, &d, &e, &f, &g}) {
    a.insert(a.end(), more->begin(), more->end());
  }
  return a;
}

// Whether a line begins with `prefix`.
inline bool HasLine(const std::vector<std::string> &lines, const std::string &prefix) {
  for (const std::string &line : lines) {
    if (line.compare(0, prefix.size(), prefix) == 0) {
      return true;
    }
  }
  return false;
}
