// Lines of one input, read in blocks from a file descriptor: a trace file
// as it is, or the output of a decompressor started on a compressed one.
//
// Every byte is taken as it comes. A line longer than the limit is cut
// there (the rest of it is skipped up to its line feed) and counted; a
// line feed is the only line end, a carriage return before it is kept as
// part of the line. Memory: one block buffer plus one line of at most the
// limit, whatever the input.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#include <string>
#include <string_view>

namespace wzreform {

class LineSource {
public:
  explicit LineSource(size_t maxLine = 64 * 1024);
  ~LineSource();
  LineSource(const LineSource &) = delete;
  LineSource &operator=(const LineSource &) = delete;

  // Starts reading from fd, which the source closes when done. `child`
  // is the process that writes into fd (a decompressor), or 0: it is
  // waited for at the end. `label` names the child in messages.
  void Open(int fd, pid_t child = 0, const char *label = nullptr);

  // The next line without its line feed, valid until the next call. false
  // at the end of the input or on a read error (see Error()).
  bool Next(std::string_view *line);

  // Closes the descriptor and waits for the child. Returns 0, or -1 when
  // reading failed or the child did not end with status 0 (ErrorText()
  // says why).
  int Close();

  uint64_t LineNumber() const { return Lines; }      // lines returned so far
  uint64_t CutLines() const { return Cut; }          // lines cut at the limit
  bool LastLineUnended() const { return Unended; }   // the input ended without a line feed
  uint64_t Bytes() const { return BytesRead; }
  const std::string &ErrorText() const { return Error; }

private:
  bool Fill(); // reads more into the buffer; false at the end or on error

  int Fd = -1;
  pid_t Child = 0;
  std::string ChildLabel;
  char *Buffer = nullptr;
  size_t Capacity = 0;
  size_t Start = 0; // the unread bytes are Buffer[Start, End)
  size_t End = 0;
  size_t MaxLine;
  std::string Long; // a line that spans blocks
  uint64_t Lines = 0;
  uint64_t Cut = 0;
  uint64_t BytesRead = 0;
  bool Eof = false;
  bool Failed = false;
  bool Unended = false;
  std::string Error;
};

// Starts `program` (found on PATH, run without a shell) with `args` (argv
// without the program's name, nullptr-terminated), its standard input from
// inFd and its standard output into a pipe. Returns the pipe's reading end
// and sets *child, or -1 with errno set.
int SpawnFilter(const char *program, const char *const *args, int inFd, pid_t *child);

} // namespace wzreform
