// The reading of trace text: lines of the files of one connection, in
// rotation order, become Calls.
//
// A before-record opens a call and an after-record of the same function
// closes it; a call whose before-record comes while another one is open
// goes inside it when that is how the exit traces nested calls (a
// transaction-manager call or a callback inside a ZKI call, a call made by
// a callback, the data-conversion point inside its get). The profile, the
// summaries, the connection's INIT and TERM records and the notes of live
// control are passed over. A summary-only file gives one call per line.
//
// Memory stays bounded: a call keeps at most MaxCallBytes of its lines
// (the rest of its records is counted and left out) and at most MaxDepth
// calls are open at once.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "reform/call.h"

namespace wzreform {

// "[2026/11/24 12:00:00.123456]" (or without the brackets) as microseconds
// since 1970-01-01 00:00:00, the local time read as UTC; -1 when the text
// is not such a stamp.
int64_t ParseStampMicros(std::string_view stamp);

// "    0.000034" (seconds and microseconds, as the exit writes a process
// time; a negative time as "0.-00005") as microseconds; false when it is
// not such a text.
bool ParseProcessTime(std::string_view text, int64_t *micros);

// Whether the function is one of the transaction manager's (xa_..., ax_...).
bool IsTransactionFunction(std::string_view function);

// Splits one line of a record into its kind, name and value.
void ClassifyLine(std::string_view line, FieldLine *out);

// One line of a summary-only file ("       5 [2026/11/24 ...]  ZKPUT  0 0
// 0.000012  PAY.Q  <MsgId> 9  (null)") as a call; false when the line is
// not such a record.
bool ParseSimpleRecord(std::string_view line, Call *call);

struct ParserLimits {
  size_t MaxCallBytes = 256u << 20; // the lines a call (with its inner calls) keeps
  size_t MaxDepth = 32;             // calls open at once
};

class TraceParser {
public:
  // The sink gets each call when it has ended (or, unfinished, when the
  // input ends); it returns 0, or -1 to stop the reading (an output error).
  using Sink = std::function<int(const Call &)>;

  explicit TraceParser(Sink sink, ParserLimits limits = ParserLimits());

  // A new file of the connection: its source stays valid until the
  // connection ends (the parser fills in what the profile tells).
  void BeginFile(TraceSource *source);

  // One line, without its line feed. 0, or -1 when the sink failed.
  int Line(std::string_view line);

  // Whether the file so far looks like a trace: known after its first
  // lines (a profile or a record). Unknown (0) until then, 1 yes, -1 no.
  int Recognised() const { return Verdict; }

  // The file ended. Returns 0, or -1 when the sink failed; *cut tells
  // whether the file ends inside a record's header (or, with
  // lastLineUnended, inside a line).
  int EndFile(bool lastLineUnended, bool *cut);

  // The connection's input ended: open calls are written as unfinished.
  int EndConnection();

  uint64_t CallsWritten() const { return Written; }
  uint64_t LinesLeftOut() const { return LeftOut; } // over MaxCallBytes
  uint64_t DepthOverflows() const { return Overflows; }

private:
  enum class State : uint8_t {
    Outside,     // profile, summaries, notes, connection records
    BlockStart,  // after a "-" line
    Stamp,       // after the time stamp: the function comes next
    Function,    // after "<FUNCTION": the record's kind comes next
    AfterHeader, // the result lines of an after-record
    Body,        // the lines of a record after its header
    Simple,      // the one-line records of summary-only mode
  };
  // What the current record fills in.
  enum class Target : uint8_t { None, Before, After, Point };

  void CheckFirstLines(std::string_view line);
  void ProfileLine(std::string_view line);
  void StartRecord(std::string_view kind);
  int FinishRecord();
  void StartBefore();
  void StartAfter();
  void StartPoint();
  Call &PushCall();
  void CloseOpenCalls(size_t keep); // unfinished, down to `keep` open calls
  int Emit(Call &call);
  void AttachOrEmit(size_t index);  // the innermost open call has ended
  void BodyLine(std::string_view line);
  void AfterHeaderLine(std::string_view line, bool *consumed);
  Call *RecordCall();
  FieldLine &NewLine(std::vector<FieldLine> &lines);
  void Recycle(Call &call);
  void Charge(size_t bytes);
  void ApplyRecordNames(Call &call, bool after);

  Sink Output;
  ParserLimits Limits;
  TraceSource *Source = nullptr;
  State Now = State::Outside;
  int Verdict = 0;
  uint32_t FileLines = 0;
  bool InProfile = false;
  std::string ProfileSection; // "API Exit context", "Operating environment", ...

  // The record being read.
  uint32_t PendingSequence = 0;
  std::string PendingStamp;
  std::string PendingFunction;
  Target Into = Target::None;
  bool HeaderComplete = true;

  // Names the current record shows.
  struct RecordNames {
    bool HasHconn = false, HasHobj = false, HasObject = false, HasResolved = false;
    uint32_t Hconn = 0, Hobj = 0;
    std::string Object, Resolved;
  } Names;

  std::vector<Call> Open; // open calls, outermost first: Open[0, Depth)
  size_t Depth = 0;
  Call Point;             // a data-conversion record outside any call
  bool PointInside = false; // the data-conversion record is inside the open call
  bool RecordDropped = false; // the current record has left lines out
  Call Scratch;           // a call being emitted
  std::vector<FieldLine> Pool; // lines of written calls, for reuse
  size_t Charged = 0;     // bytes the open calls' lines take
  bool Dropping = false;  // over the budget: lines are counted, not kept

  uint64_t Written = 0;
  uint64_t LeftOut = 0;
  uint64_t Overflows = 0;
  int SinkStatus = 0;
};

} // namespace wzreform
