// Statistics of traced calls, kept per group (a function, or an object name
// and a function) in bounded memory: counts by result, a latency histogram
// of fixed size with logarithmic buckets, and the slowest calls. The plain
// summary (--summary) and the HTML report (--report) are both made from it.
//
// Also here: what every output format needs to know about a call beyond its
// fields, such as its family, its result class and its place in time.
#pragma once

#include <stdint.h>
#include <stdio.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "reform/call.h"

namespace wzreform {

// The family of a function: "connection" (connect, disconnect, units of
// work, and anything not known), "queue", "inquire", "subscription",
// "callback" or "xa" (transaction-manager calls).
const char *FunctionFamily(const std::string &function);

// How a call ended. A transaction-manager call (IsTransactionFunction,
// parser.h) has one return value, which the reader gives as both its
// completion code and its reason.
enum class Outcome : uint8_t {
  OK,         // completion code 0; XA: a return value of 0 or more
  WARNING,    // completion code 1
  FAILED,     // completion code 2 (or any other); XA: a negative return value
  UNFINISHED, // the trace ended before its after-record
  NO_RESULT,  // finished, but no result was traced
};
Outcome CallOutcome(const Call &call);
const char *OutcomeName(Outcome outcome); // "ok", "warning", "failed", ...

// The time the call took, in microseconds: the exit's own measure ("API
// process time") when traced, else the difference of its two time stamps.
// False when neither is known (an unfinished call, for one).
bool CallElapsed(const Call &call, int64_t *micros);

// The call's span on the time line, in microseconds since the epoch: from
// its before time stamp (or, in summary-only traces without one, its after
// time stamp less its elapsed time) to its after time stamp (or its start
// plus its elapsed time). *end is -1 when the end is not known. False when
// not even the start is known.
bool CallSpan(const Call &call, int64_t *start, int64_t *end);

// A latency histogram of fixed buckets: bucket 0 holds 0 us, bucket i
// (from 1) the times from 1.01^(i-1) to 1.01^i us, up to 1000 s; one
// bucket more holds everything longer. Percentiles are read to 1% (values
// under 100 us exactly); count, minimum, maximum and sum are exact. Only
// the buckets from the lowest to the highest one used take memory, at
// most kBuckets counters.
class LatencyHistogram {
public:
  static const int kBuckets; // all buckets, the overflow bucket included

  void Add(int64_t micros);
  uint64_t Count() const { return Total; }
  int64_t Min() const { return Total != 0 ? Smallest : 0; }
  int64_t Max() const { return Total != 0 ? Largest : 0; }
  double Mean() const { return Total != 0 ? static_cast<double>(Sum) / Total : 0; }
  // The p-th percentile (0 < p <= 100) by nearest rank, read from the
  // bucket that holds it (its middle, kept within the exact minimum and
  // maximum). 0 when empty.
  int64_t Percentile(double p) const;

  static int BucketOf(int64_t micros);
  static double BucketLow(int bucket);  // the lower end, in us
  static double BucketHigh(int bucket); // the upper end, in us (infinite for the last)
  uint64_t BucketCount(int bucket) const {
    size_t at = static_cast<size_t>(bucket - Offset);
    return bucket >= Offset && at < Counts.size() ? Counts[at] : 0;
  }

private:
  std::vector<uint64_t> Counts; // from bucket Offset on
  int Offset = 0;
  uint64_t Total = 0;
  int64_t Smallest = 0;
  int64_t Largest = 0;
  int64_t Sum = 0;
};

// One of the slowest calls of a group.
struct SlowCall {
  int64_t Micros = 0;
  uint32_t Sequence = 0;
  int64_t Start = -1; // us since the epoch, -1: not known
  std::string ObjectName;
  std::string Trace; // the trace file it came from
  int64_t ThreadId = 0;
};

// The statistics of one group of calls.
struct GroupStats {
  static constexpr size_t kSlowest = 10;

  uint64_t Calls = 0;
  uint64_t ByOutcome[5] = {};    // indexed by Outcome
  LatencyHistogram Latency;      // calls whose elapsed time is known
  int64_t First = -1;            // the earliest start, us since the epoch
  int64_t Last = -1;             // the latest end (or start)
  std::vector<SlowCall> Slowest; // at most kSlowest, slowest first

  void Add(const Call &call);
  // Calls per second between First and Last; 0 for a single call, or when
  // that is no time at all.
  double Throughput() const;
};

// The calls of a trace counted over time in at most kMaxBins bins. The
// bins start 1 ms wide and widen (to 2, 10, 20, 100, 200 ms, 1, 2, 10,
// 20 s, 1, 2, 10, 20 min, 1 h, then twice as wide each time) whenever the
// calls spread over more of them than there are; a bin's start is a
// multiple of its width.
class Timeline {
public:
  static constexpr int kMaxBins = 240;

  void Add(int64_t micros, bool failed);
  int64_t BinMicros() const { return Width; }
  // The bins from the first to the last that holds a call, gaps included:
  // start time, calls, failed calls.
  struct Bin {
    int64_t Start;
    uint64_t Calls;
    uint64_t Failed;
  };
  std::vector<Bin> Bins() const;

private:
  void Widen();

  int64_t Width = 1000;                                    // us
  std::map<int64_t, std::pair<uint64_t, uint64_t>> Counts; // bin number -> calls, failed
};

// Everything the summary and the report show: per function, per object
// name and function, overall, and over time. Calls made inside other calls
// count as calls of their own function. Past kMaxObjects object names (a
// trace of many temporary queues), the calls on further names are counted
// under kOtherObjects, so that memory stays bounded.
class TraceStats {
public:
  static constexpr size_t kMaxObjects = 1000;
  static const char *const kOtherObjects; // "(other names)"

  void Add(const Call &call);

  const std::map<std::string, GroupStats> &ByFunction() const { return Functions; }
  // Keyed by object name, then function; calls without an object name
  // are left out.
  const std::map<std::pair<std::string, std::string>, GroupStats> &ByObject() const {
    return Objects;
  }
  const GroupStats &Overall() const { return All; }
  const Timeline &OverTime() const { return Time; }
  // The trace files seen, in the order first seen.
  const std::vector<std::string> &Traces() const { return TraceNames; }
  // Whether some calls were counted under kOtherObjects.
  bool ObjectsCut() const { return Cut; }

private:
  void AddOne(const Call &call);

  std::map<std::string, GroupStats> Functions;
  std::map<std::pair<std::string, std::string>, GroupStats> Objects;
  std::set<std::string> ObjectNames; // the names with groups of their own
  bool Cut = false;
  GroupStats All;
  Timeline Time;
  std::vector<std::string> TraceNames;
  size_t LastTrace = 0; // the index of the last call's trace file in TraceNames
};

// The columns both the plain summary and the report show for a group, and
// a group's cells under them: calls, results by class, elapsed-time
// percentiles and maximum in microseconds, calls per second.
const std::vector<std::string> &GroupColumns();
std::vector<std::string> GroupCells(const GroupStats &group);

// "2026/11/24 12:00:00.123456" from microseconds since the epoch (read as
// UTC, the way the reader stores the local time stamps); "-" for -1.
std::string FormatMicrosTime(int64_t micros);

// A writer that gathers the statistics of all calls and at the end writes
// what `render` makes of them (the plain summary, the HTML report) to out.
class StatsWriter : public CallWriter {
public:
  using Render = std::string (*)(const TraceStats &stats);

  StatsWriter(FILE *out, Render render) : Out(out), RenderText(render) {}

  int Begin() override { return 0; }
  int Write(const Call &call) override;
  int End() override;

private:
  FILE *Out;
  Render RenderText;
  TraceStats Stats;
};

} // namespace wzreform
