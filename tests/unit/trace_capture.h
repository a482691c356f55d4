// A connection with a real trace file in a temporary directory, for tests
// that check what the record writers put into the file.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "exit/control_block.h"
#include "output/trace_file.h"
#include "tests/unit/test_support.h"

extern "C" void wzEntry(PZKAXP, PZKAXC, PZKLONG, PZKLONG);
extern "C" void Terminate(PZKAXP, PZKAXC, PZKLONG, PZKLONG);

struct TraceCaptureTest : ::testing::Test {
  TempDir dir;
  TestConnection conn{dir.Path(), "/opt/app/bin/payroll"};
  ExitControlBlock *cb = nullptr;
  std::string path;  // the file read last
  size_t mark = 0;   // bytes of it already taken
  std::string start; // what the connection wrote before the test's own records

  // Extra lines of the parameter file.
  virtual std::string Parameters() { return ""; }

  void SetUp() override {
    gTestXep.Reset();
    dir.Write("wz.def", "ShowZkVersion=no\n" + Parameters());
    wzEntry(&conn.Axp, &conn.Axc, &conn.CompCode, &conn.Reason);
    cb = ControlBlockOf(&conn.Axp);
    ASSERT_NE(cb, nullptr);
    ASSERT_EQ(cb->FatalError, 0);
    cb->File.NoAddress = 1;
    start = Take();
  }

  void TearDown() override {
    if (conn.Axp.ExitChainAreaPtr != nullptr) {
      conn.Axp.ExitReason = ZKXR_CONNECTION;
      conn.Axp.Function = ZKXF_TERM;
      Terminate(&conn.Axp, &conn.Axc, &conn.CompCode, &conn.Reason);
    }
    gTestXep.Reset();
  }

  static std::string ReadFile(const std::string &name) {
    std::ifstream in(name, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }

  // Text written to the current trace file since the last call, after the
  // buffer is flushed; a new file is read from its beginning.
  std::string Take(bool flush = true) {
    if (flush) {
      FlushTraceDataInBuffer(cb);
    }
    if (path != cb->File.TraceFilePath) {
      path = cb->File.TraceFilePath;
      mark = 0;
    }
    std::string all = ReadFile(path);
    std::string part = mark <= all.size() ? all.substr(mark) : std::string();
    mark = all.size();
    return part;
  }

  // Time stamps become "[TIME]"; elapsed times keep their width as
  // "SSSSS.UUUUUU".
  static std::string Mask(const std::string &text) {
    static const std::regex stamp(R"(\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\.\d{6}\])");
    static const std::regex elapsed(R"([ 0-9]{4}[0-9]\.[0-9]{6})");
    return std::regex_replace(std::regex_replace(text, stamp, "[TIME]"), elapsed, "SSSSS.UUUUUU");
  }

  std::string TakeMasked() { return Mask(Take()); }
};
