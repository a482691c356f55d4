// wzreform's picture of one traced call: the before-record and the
// after-record of one ZKI or transaction-manager call joined, with the
// calls made inside it (the data-conversion point of a ZKGET, a
// transaction-manager call or a callback inside a ZKI call).
//
// The reader (reader.h) turns trace files into Calls one at a time, in the
// order the calls ended; every output format is a CallWriter that takes
// them one at a time, so memory stays flat whatever the size of the trace.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

namespace wzreform {

// One line of a record after its header, as the exit wrote it ("|> Version
// : 2", "Hconn:0x00000001", a dump line), with its kind told apart.
struct FieldLine {
  enum Kind : uint8_t {
    FIELD,   // "|> Name   : value" (Name and Value filled in)
    VALUE,   // "Label:value" such as "Hconn:0x00000001", "BufferLength:5"
    NAME,    // "| ObjectName:..." and the other "| " lines
    DUMP,    // a dump title "MD:(324=x144 bytes, ...)", its lines, "same as above"
    SECTION, // "|> ----- offset ..." and "|> --- MD version 2---" lines
    OTHER,   // anything else, kept as it is
  };
  Kind Type = OTHER;
  std::string Name;  // the field's or label's name, trimmed
  std::string Value; // the value, trailing blanks trimmed
  std::string Text;  // the whole line as written
};

// Where a trace file comes from, from its name and its profile.
struct TraceSource {
  std::string Path;       // the file read
  std::string QMgr;       // queue manager, from the file name
  std::string Program;    // program name, from the file name
  int64_t ProcessId = 0;  // from the file name
  int64_t ThreadId = 0;   // from the file name
  std::string Connection; // connection name from the profile, when shown
  std::string Host;       // node name from the profile, when shown
};

struct Call {
  const TraceSource *Source = nullptr;
  std::string Function;    // "ZKPUT", "xa_commit", "DATA_CONV_ON_GET", "ZKCB_FU"
  uint32_t Sequence = 0;   // the "|--- Seq #" number of its before-record; 0: none
  std::string ObjectName;  // "| ObjectName:"
  std::string ResolvedName; // "| (real name):"
  bool HasHconn = false;
  uint32_t Hconn = 0;
  bool HasHobj = false;
  uint32_t Hobj = 0;
  bool HasCodes = false;   // the after-record gave CompCode and Reason
  int32_t CompCode = 0;
  int32_t Reason = 0;
  std::string ReasonName;  // "ZKRC_NO_MSG_AVAILABLE", "XAER_NOTA", empty for 0
  std::string BeforeTime;  // "2026/11/24 12:00:00.123456" as written; empty: none
  std::string AfterTime;
  int64_t BeforeMicros = -1; // the time stamps as microseconds since the epoch
  int64_t AfterMicros = -1;  // (local time as written, read as UTC); -1: none
  bool HasElapsed = false;
  int64_t ElapsedMicros = 0; // "| API process time:"
  std::vector<FieldLine> Before; // the before-record's lines after its header
  std::vector<FieldLine> After;  // the after-record's lines after its header
  std::vector<Call> Inside;      // calls made inside this one, in order
  bool Unfinished = false;       // the trace ended before its after-record
};

// An output format. Begin once, Write for each call in the order the calls
// ended, End once; each returns 0, or -1 when the output failed (the reason
// in errno).
struct CallWriter {
  virtual ~CallWriter() = default;
  virtual int Begin() = 0;
  virtual int Write(const Call &call) = 0;
  virtual int End() = 0;
};

} // namespace wzreform
