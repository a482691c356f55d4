// The names of the exit's trace files:
//
//   wz_<qmgr>_<program>_<pid>_<tid>_[perf_|summary_]<seq><extension>
//
// <seq> has three digits with leading zeros below 1000 and all its digits
// from there on. <extension> is ".t" while the file is open, ".txt" once
// closed, ".txt.f" when closed by a disable request, and gets a further
// ".txt" and the compressor's suffix (".gz", ".zst") when the compress
// command has run on it.
#pragma once

#include <stdint.h>

#include <string>
#include <string_view>

namespace wzreform {

struct TraceFileName {
  std::string Connection; // the name up to <seq>: one per connection and mode
  std::string QMgr;
  std::string Program;
  std::string Mode;       // "", "perf" or "summary"
  int64_t ProcessId = 0;
  int64_t ThreadId = 0;
  uint64_t Sequence = 0;
  std::string Extension;
};

// The parts of a trace file's name (without its directory); false when
// the name is not one the exit gives its trace files.
bool ParseTraceFileName(std::string_view name, TraceFileName *out);

} // namespace wzreform
