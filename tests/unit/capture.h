// A control block for tests that look at trace text: caching on, a write
// buffer large enough that nothing is flushed, no file switch, and a file
// descriptor of /dev/null should anything be written out after all. The
// text written through WriteTraceData is read back from the write buffer.
// Alert messages go to the error file in a temporary trace directory.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "tests/unit/test_support.h"

class CaptureBlock {
public:
  // Process and thread id of the block, which name its error file.
  static constexpr int32_t kProcessId = 4711;
  static constexpr uint32_t kThreadId = 815;

  explicit CaptureBlock(int32_t bufferSize = 1 << 20);
  ~CaptureBlock();
  CaptureBlock(const CaptureBlock &) = delete;
  CaptureBlock &operator=(const CaptureBlock &) = delete;

  ExitControlBlock *cb() const { return cb_; }
  // The trace text written since construction or the last Clear().
  std::string Text() const;
  // Text() with the buffer emptied.
  std::string Take();
  void Clear();
  // Sets ShowHexCharCcsid and refills the code-range map from it.
  void SetCcsid(int32_t ccsid);
  // The alert messages written for this block so far (empty when none).
  std::string Alerts() const;
  const TempDir &Directory() const { return dir_; }

private:
  ExitControlBlock *cb_;
  TempDir dir_;
};

// A capture block whose flushed text goes to a file in its directory
// instead of /dev/null, so that text written before a flush can be read
// back too.
struct FileCapture {
  CaptureBlock block;
  ExitControlBlock *cb = block.cb();
  const TempDir &dir = block.Directory();

  FileCapture();
  // Everything written so far: the file, then what the buffer still holds.
  std::string Text() const;
};

// The lines of a text, without their newlines.
std::vector<std::string> TextLines(const std::string &text);
