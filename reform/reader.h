// wzreform's input: trace files named on the command line, the trace files
// of directories, or standard input, read connection by connection.
//
// The files of one connection (same queue manager, program, process,
// thread and mode) are read one after the other in rotation order, through
// one TraceParser, so that a call continues from one file into the next.
// Compressed files (gzip or zstd, told by their first bytes, whatever
// their name) are read through "gzip -dc" or "zstd -dcq", started without
// a shell with the file as their standard input. Problems are reported on
// standard error as "wzreform: FILE: ..." and the reading goes on with
// the next file.
#pragma once

#include <stdint.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <deque>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "reform/parser.h"
#include "reform/trace_names.h"

namespace wzreform {

// Exit statuses, worst last.
enum ReadStatus : int {
  READ_OK = 0,
  READ_DAMAGED = 1,  // read, but some input was cut off or left out
  READ_FAILED = 2,   // some input could not be read, or is not a trace
  READ_OUTPUT = 3,   // the output could not be written
};

struct ReaderOptions {
  bool Quiet = false;
  size_t MaxLine = 64 * 1024; // longer lines are cut here and counted
  ParserLimits Limits;
};

class Reader {
public:
  Reader(ReaderOptions options, TraceParser::Sink sink);

  // An input: a file, a directory (the trace files in it, not its
  // subdirectories), or "-" for standard input. Problems are reported
  // at once.
  void Add(const std::string &path);

  // Whether a path names a file among the inputs (so that the output does
  // not overwrite one).
  bool IsInput(dev_t device, ino_t inode) const;

  // Reads every input; returns the worst ReadStatus.
  int Run();

  uint64_t Files() const { return FilesRead; }
  uint64_t Calls() const { return CallsRead; }
  uint64_t Bytes() const { return BytesRead; }
  int Status() const { return Worst; }

private:
  struct Input {
    std::string Path;
    bool Stdin = false;
    bool Named = false;   // the name is a trace file's name
    TraceFileName Name;
    dev_t Device = 0;
    ino_t Inode = 0;
    size_t Order = 0;     // position among the inputs
  };

  void AddFile(const std::string &path, const struct stat &status, bool fromDirectory);
  void AddDirectory(const std::string &path);
  // Reads one file into the parser; false when the output failed.
  bool ReadFile(const Input &input, TraceParser &parser, std::deque<TraceSource> &sources);
  void Report(const std::string &path, const std::string &text, int status);

  ReaderOptions Options;
  TraceParser::Sink Sink;
  std::vector<Input> Inputs;
  std::set<std::pair<dev_t, ino_t>> Known; // the files among the inputs
  int Worst = READ_OK;
  uint64_t FilesRead = 0;
  uint64_t CallsRead = 0;
  uint64_t BytesRead = 0;
};

// A path or text for a message: bytes that are not printable ASCII shown
// as '?', so that a hostile file name cannot drive the terminal.
std::string Printable(const std::string &text);

} // namespace wzreform
