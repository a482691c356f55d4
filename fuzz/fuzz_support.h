// Helpers shared by the fuzz targets: a check that survives NDEBUG, a
// scratch directory per process, small file helpers, a reader of the fuzz
// input and a control block that captures trace text.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

struct ExitControlBlock;

// Stops the process with a message when `condition` is false. A fuzz
// target's own checks must hold in every build, so this is not assert().
#define FUZZ_CHECK(condition, ...)                                                                 \
  do {                                                                                             \
    if (!(condition)) {                                                                            \
      FuzzCheckFailed(__FILE__, __LINE__, #condition, "" __VA_ARGS__);                             \
    }                                                                                              \
  } while (0)

[[noreturn]] void FuzzCheckFailed(const char *file, int line, const char *condition,
                                  const char *format, ...) __attribute__((format(printf, 4, 5)));

// The process's scratch directory, "/tmp/wzfz.XXXXXX/" (17 characters, so
// that it fits the 32-character exit data). Made on the first call and
// removed with its files when the process ends normally.
const std::string &ScratchDirectory();

// Makes the scratch directory the current directory, so that anything the
// exit writes relative to it (an alert it could not put into the trace
// directory) stays out of the caller's tree.
void EnterScratchDirectory();

// The names of the entries of a directory, without "." and "..".
std::vector<std::string> ListDirectory(const std::string &directory);
// Removes every entry of the directory (files only; it is flat).
void ClearDirectory(const std::string &directory);
std::string ReadWholeFile(const std::string &path);
void WriteWholeFile(const std::string &path, const void *data, size_t size);
size_t CountLines(const std::string &text);
// The lines of a text that ends in a line feed, without their line feeds.
std::vector<std::string> SplitLines(const std::string &text);
// A zero-filled control block that alert lines can be written for: its
// trace directory is the scratch directory. Made once; the caller sets
// process name and ids.
ExitControlBlock *AlertBlock();

// The fuzz input, read front to back. Past the end every read gives zeros
// and Rest() gives nothing.
class FuzzInput {
public:
  FuzzInput(const uint8_t *data, size_t size) : data_(data), size_(size) {}
  uint8_t Byte();
  uint16_t U16();
  uint32_t U32();
  bool Bit() { return (Byte() & 1) != 0; }
  // Up to `count` bytes (fewer at the end of the input).
  std::string Bytes(size_t count);
  // A piece whose length is given by the next byte (0..255).
  std::string Piece();
  std::string Rest();
  size_t Remaining() const { return size_ - offset_; }

private:
  const uint8_t *data_;
  size_t size_;
  size_t offset_ = 0;
};

// Settings the targets of message data take from their input: an encoding
// (a byte choosing native 546, normal 273 or 0, else 4 bytes of its own) and
// a limit of parsed content (2 bytes, 0xFFFF for none).
int32_t ReadFuzzEncoding(FuzzInput &in);
int32_t ReadFuzzLimit(FuzzInput &in);

// A control block that collects trace text as the record writers produce
// it: a write buffer of `bufferSize` bytes whose overflow goes to an
// in-memory file, so that every byte written can be read back. Alerts go to
// the scratch directory.
class CaptureBlock {
public:
  explicit CaptureBlock(int32_t bufferSize);
  ~CaptureBlock();
  CaptureBlock(const CaptureBlock &) = delete;
  CaptureBlock &operator=(const CaptureBlock &) = delete;

  ExitControlBlock *cb() const { return cb_; }
  // Everything written since the last Take(), then forgets it.
  std::string Take();
  // Sets ShowHexCharCcsid and fills the code-range map from it.
  void SetCcsid(int32_t ccsid);

private:
  ExitControlBlock *cb_;
  int fd_;
};

// The capture block of the targets of parsed message data (one per
// process), emptied, with the parsed-content limit and the line length of
// this input.
CaptureBlock &ParsedContentCapture(int32_t limit, int32_t lineLength);
