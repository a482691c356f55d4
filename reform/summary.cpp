#include "reform/summary.h"

#include "reform/write_out.h"

#include "reform/parser.h"

#include <errno.h>
#include <math.h>
#include <stdio.h>
#include <time.h>

#include <algorithm>

namespace wzreform {

namespace {

// Buckets of 1% from 1 us: 1.01^2083 is just over 1000 s.
const int kRegularBuckets = 2083;
const double kLogStep = log(1.01);

// The integer micros in a bucket run from IntegerLow to IntegerHigh; none
// when IntegerLow > IntegerHigh (buckets under 100 us are narrower than
// one microsecond, and some of them hold no integer at all).
int64_t IntegerLow(int bucket) {
  return bucket == 0 ? 0 : static_cast<int64_t>(ceil(LatencyHistogram::BucketLow(bucket)));
}
int64_t IntegerHigh(int bucket) {
  return bucket == 0 ? 0 : static_cast<int64_t>(ceil(LatencyHistogram::BucketHigh(bucket))) - 1;
}

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

} // namespace

const char *FunctionFamily(const std::string &function) {
  if (IsTransactionFunction(function)) {
    return "xa";
  }
  static const struct {
    const char *Function;
    const char *Family;
  } kFamilies[] = {
      {"ZKOPEN", "queue"},       {"ZKCLOSE", "queue"},        {"ZKPUT1", "queue"},
      {"ZKPUT", "queue"},        {"ZKGET", "queue"},          {"DATA_CONV_ON_GET", "queue"},
      {"ZKINQ", "inquire"},      {"ZKSET", "inquire"},        {"ZKSTAT", "inquire"},
      {"ZKSUB", "subscription"}, {"ZKSUBRQ", "subscription"}, {"ZKCB", "callback"},
      {"ZKCB_FU", "callback"},   {"ZKCTL", "callback"},
  };
  for (const auto &row : kFamilies) {
    if (function == row.Function) {
      return row.Family;
    }
  }
  return "connection"; // ZKCONN, ZKCONNX, ZKDISC, ZKBEGIN, ZKCMIT, ZKBACK, INIT, TERM
}

Outcome CallOutcome(const Call &call) {
  if (call.Unfinished) {
    return Outcome::UNFINISHED;
  }
  if (!call.HasCodes) {
    return Outcome::NO_RESULT;
  }
  if (IsTransactionFunction(call.Function)) {
    return call.CompCode < 0 ? Outcome::FAILED : Outcome::OK;
  }
  switch (call.CompCode) {
  case 0:
    return Outcome::OK;
  case 1:
    return Outcome::WARNING;
  default:
    return Outcome::FAILED;
  }
}

const char *OutcomeName(Outcome outcome) {
  switch (outcome) {
  case Outcome::OK:
    return "ok";
  case Outcome::WARNING:
    return "warning";
  case Outcome::FAILED:
    return "failed";
  case Outcome::UNFINISHED:
    return "unfinished";
  case Outcome::NO_RESULT:
    break;
  }
  return "no result";
}

bool CallElapsed(const Call &call, int64_t *micros) {
  if (call.HasElapsed && call.ElapsedMicros >= 0) {
    *micros = call.ElapsedMicros;
    return true;
  }
  if (call.BeforeMicros >= 0 && call.AfterMicros >= call.BeforeMicros) {
    *micros = call.AfterMicros - call.BeforeMicros;
    return true;
  }
  return false;
}

bool CallSpan(const Call &call, int64_t *start, int64_t *end) {
  bool elapsed = call.HasElapsed && call.ElapsedMicros >= 0;
  if (call.BeforeMicros >= 0) {
    *start = call.BeforeMicros;
  } else if (call.AfterMicros >= 0) {
    *start = call.AfterMicros - (elapsed ? call.ElapsedMicros : 0);
  } else {
    return false;
  }
  if (call.AfterMicros >= *start) {
    *end = call.AfterMicros;
  } else if (elapsed && !call.Unfinished) {
    *end = *start + call.ElapsedMicros;
  } else {
    *end = -1;
  }
  return true;
}

// ----- LatencyHistogram

const int LatencyHistogram::kBuckets = 1 + kRegularBuckets + 1;

int LatencyHistogram::BucketOf(int64_t micros) {
  if (micros <= 0) {
    return 0;
  }
  int bucket = static_cast<int>(floor(log(static_cast<double>(micros)) / kLogStep)) + 1;
  // The logarithm may land a hair off at a bucket's edge: go by the edges.
  while (bucket > 1 && static_cast<double>(micros) < BucketLow(bucket)) {
    bucket--;
  }
  while (bucket <= kRegularBuckets && static_cast<double>(micros) >= BucketHigh(bucket)) {
    bucket++;
  }
  return bucket > kRegularBuckets ? kRegularBuckets + 1 : bucket;
}

double LatencyHistogram::BucketLow(int bucket) {
  if (bucket <= 0) {
    return 0;
  }
  return pow(1.01, bucket - 1);
}

double LatencyHistogram::BucketHigh(int bucket) {
  if (bucket <= 0) {
    return 1;
  }
  if (bucket > kRegularBuckets) {
    return HUGE_VAL;
  }
  return pow(1.01, bucket);
}

void LatencyHistogram::Add(int64_t micros) {
  if (micros < 0) {
    micros = 0;
  }
  int bucket = BucketOf(micros);
  if (Counts.empty()) {
    Offset = bucket;
  } else if (bucket < Offset) {
    Counts.insert(Counts.begin(), static_cast<size_t>(Offset - bucket), 0);
    Offset = bucket;
  }
  size_t at = static_cast<size_t>(bucket - Offset);
  if (at >= Counts.size()) {
    Counts.resize(at + 1, 0);
  }
  Counts[at]++;
  if (Total == 0 || micros < Smallest) {
    Smallest = micros;
  }
  if (Total == 0 || micros > Largest) {
    Largest = micros;
  }
  Total++;
  Sum += micros;
}

int64_t LatencyHistogram::Percentile(double p) const {
  if (Total == 0) {
    return 0;
  }
  uint64_t rank = static_cast<uint64_t>(ceil(p / 100.0 * static_cast<double>(Total)));
  if (rank <= 1) {
    return Smallest;
  }
  if (rank >= Total) {
    return Largest;
  }
  uint64_t seen = 0;
  int bucket = Offset;
  for (uint64_t count : Counts) {
    seen += count;
    if (seen >= rank) {
      break;
    }
    bucket++;
  }
  int64_t value;
  if (bucket > kRegularBuckets) {
    value = Largest;
  } else {
    int64_t low = IntegerLow(bucket);
    int64_t high = IntegerHigh(bucket);
    value = low <= high ? (low + high + 1) / 2 : low;
  }
  return std::clamp(value, Smallest, Largest);
}

// ----- GroupStats

void GroupStats::Add(const Call &call) {
  Calls++;
  Outcome outcome = CallOutcome(call);
  ByOutcome[static_cast<int>(outcome)]++;

  int64_t start = -1;
  int64_t end = -1;
  if (CallSpan(call, &start, &end)) {
    if (First < 0 || start < First) {
      First = start;
    }
    int64_t latest = end >= 0 ? end : start;
    if (latest > Last) {
      Last = latest;
    }
  }

  int64_t micros = 0;
  if (outcome == Outcome::UNFINISHED || !CallElapsed(call, &micros)) {
    return;
  }
  Latency.Add(micros);
  if (Slowest.size() == kSlowest && micros <= Slowest.back().Micros) {
    return;
  }
  SlowCall slow;
  slow.Micros = micros;
  slow.Sequence = call.Sequence;
  slow.Start = start;
  slow.ObjectName = call.ObjectName;
  if (call.Source != nullptr) {
    slow.Trace = call.Source->Path;
    slow.ThreadId = call.Source->ThreadId;
  }
  // After those as slow as it, so that the earlier of equals stays first.
  auto at = std::upper_bound(Slowest.begin(), Slowest.end(), micros,
                             [](int64_t m, const SlowCall &s) { return m > s.Micros; });
  Slowest.insert(at, std::move(slow));
  if (Slowest.size() > kSlowest) {
    Slowest.pop_back();
  }
}

double GroupStats::Throughput() const {
  if (Calls < 2 || First < 0 || Last <= First) {
    return 0;
  }
  return static_cast<double>(Calls) * 1e6 / static_cast<double>(Last - First);
}

// ----- Timeline

void Timeline::Add(int64_t micros, bool failed) {
  auto &bin = Counts[FloorDiv(micros, Width)];
  bin.first++;
  if (failed) {
    bin.second++;
  }
  while (Counts.rbegin()->first - Counts.begin()->first + 1 > kMaxBins) {
    Widen();
  }
}

void Timeline::Widen() {
  // Each width a multiple of the one before, so that bins merge whole.
  static const int64_t kWidths[] = {1000,     2000,      10000,     20000,      100000,
                                    200000,   1000000,   2000000,   10000000,   20000000,
                                    60000000, 120000000, 600000000, 1200000000, 3600000000LL};
  int64_t next = Width * 2;
  for (int64_t width : kWidths) {
    if (width > Width) {
      next = width;
      break;
    }
  }
  std::map<int64_t, std::pair<uint64_t, uint64_t>> wider;
  for (const auto &[number, counts] : Counts) {
    auto &bin = wider[FloorDiv(number * Width, next)];
    bin.first += counts.first;
    bin.second += counts.second;
  }
  Counts.swap(wider);
  Width = next;
}

std::vector<Timeline::Bin> Timeline::Bins() const {
  std::vector<Bin> bins;
  if (Counts.empty()) {
    return bins;
  }
  int64_t first = Counts.begin()->first;
  int64_t last = Counts.rbegin()->first;
  for (int64_t number = first; number <= last; number++) {
    auto found = Counts.find(number);
    Bin bin = {number * Width, 0, 0};
    if (found != Counts.end()) {
      bin.Calls = found->second.first;
      bin.Failed = found->second.second;
    }
    bins.push_back(bin);
  }
  return bins;
}

// ----- TraceStats

void TraceStats::Add(const Call &call) {
  AddOne(call);
  for (const Call &inner : call.Inside) {
    Add(inner);
  }
}

const char *const TraceStats::kOtherObjects = "(other names)";

void TraceStats::AddOne(const Call &call) {
  Functions[call.Function].Add(call);
  if (!call.ObjectName.empty()) {
    const std::string *name = &call.ObjectName;
    if (ObjectNames.count(*name) == 0) {
      if (ObjectNames.size() < kMaxObjects) {
        ObjectNames.insert(*name);
      } else {
        static const std::string kOther = kOtherObjects;
        name = &kOther;
        Cut = true;
      }
    }
    Objects[{*name, call.Function}].Add(call);
  }
  All.Add(call);
  int64_t start = -1;
  int64_t end = -1;
  if (CallSpan(call, &start, &end)) {
    Time.Add(start, CallOutcome(call) == Outcome::FAILED);
  }
  // By path: the reader may keep the source of the next connection where
  // it kept the last one's.
  if (call.Source != nullptr &&
      (TraceNames.empty() || call.Source->Path != TraceNames[LastTrace])) {
    auto found = std::find(TraceNames.begin(), TraceNames.end(), call.Source->Path);
    if (found == TraceNames.end()) {
      found = TraceNames.insert(found, call.Source->Path);
    }
    LastTrace = static_cast<size_t>(found - TraceNames.begin());
  }
}

const std::vector<std::string> &GroupColumns() {
  static const std::vector<std::string> kColumns = {"Calls",      "OK",        "Warning", "Failed",
                                                    "Unfinished", "No result", "p50 us",  "p90 us",
                                                    "p99 us",     "Max us",    "Calls/s"};
  return kColumns;
}

std::vector<std::string> GroupCells(const GroupStats &group) {
  std::vector<std::string> cells;
  auto number = [&cells](uint64_t value) { cells.push_back(std::to_string(value)); };
  number(group.Calls);
  for (Outcome outcome :
       {Outcome::OK, Outcome::WARNING, Outcome::FAILED, Outcome::UNFINISHED, Outcome::NO_RESULT}) {
    number(group.ByOutcome[static_cast<int>(outcome)]);
  }
  const LatencyHistogram &latency = group.Latency;
  if (latency.Count() == 0) {
    cells.insert(cells.end(), 4, "-");
  } else {
    for (double p : {50.0, 90.0, 99.0}) {
      number(latency.Percentile(p));
    }
    number(latency.Max());
  }
  double throughput = group.Throughput();
  if (throughput > 0) {
    char text[32];
    snprintf(text, sizeof text, "%.1f", throughput);
    cells.push_back(text);
  } else {
    cells.push_back("-");
  }
  return cells;
}

std::string FormatMicrosTime(int64_t micros) {
  if (micros < 0) {
    return "-";
  }
  time_t seconds = static_cast<time_t>(micros / 1000000);
  struct tm parts;
  if (gmtime_r(&seconds, &parts) == nullptr) {
    return "-";
  }
  char text[48];
  snprintf(text, sizeof text, "%04d/%02d/%02d %02d:%02d:%02d.%06d", parts.tm_year + 1900,
           parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
           static_cast<int>(micros % 1000000));
  return text;
}

int StatsWriter::Write(const Call &call) {
  Stats.Add(call);
  return 0;
}

int StatsWriter::End() {
  std::string text = RenderText(Stats);
  return WriteOut(Out, &text, true);
}

} // namespace wzreform
