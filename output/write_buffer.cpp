// The write buffer: small trace texts are collected in the control block's
// buffer and written in one call when it fills up, when the write interval
// has passed, or when the file is closed. Large texts, and every text when
// the cache is off, go straight to the file; in stream mode stdio buffers.
#include "output/trace_file.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "exit/debug_output.h"
#include "exit/alerts.h"
#include "exit/control_block.h"
#include "output/timing.h"

namespace {

// Writes the whole text to the open descriptor; a short or failed write
// stops the trace.
int32_t WriteDirect(ExitControlBlock *cb, const char *text, size_t length) {
  ssize_t written = write(cb->File.FileDescriptor, text, length);
  if (written < 0 || (size_t)written < length) {
    int error = written < 0 ? errno : 0;
    cb->FatalError = 1;
    DEBUG_TITLE(cb, "fatal error occurred.");
    PutMessage<1001>(cb, error, cb->File.TraceFilePath, "write");
    return -1;
  }
  return 0;
}

// Makes room for `length` more bytes: flushes when the buffer would fill,
// else when the write interval has passed since the last flush.
int32_t FlushBeforeAppending(ExitControlBlock *cb, size_t length) {
  if (cb->WriteBufferFill <= 0) {
    return 0;
  }
  if ((int64_t)cb->WriteBufferFill + (int64_t)length >= (int64_t)cb->WriteBufferSize) {
    int32_t result = FlushTraceDataInBuffer(cb);
    // The next interval is counted from this flush, so a buffer that fills
    // regularly is not flushed a second time for the interval.
    if (cb->Settings.WriteInterval != 0) {
      cb->File.LastFlushTime = CallClockSeconds(cb);
    }
    return result;
  }
  if (cb->Settings.WriteInterval != 0) {
    time_t now = CallClockSeconds(cb);
    // A difference in 64 bits: any interval from the file is safe to add.
    if ((int64_t)now - (int64_t)cb->File.LastFlushTime > (int64_t)cb->Settings.WriteInterval) {
      int32_t result = FlushTraceDataInBuffer(cb);
      cb->File.LastFlushTime = now;
      return result;
    }
  }
  return 0;
}

// Counts the text as written and shows the progress mark when it is
// passed.
void CountWritten(ExitControlBlock *cb, size_t length) {
  cb->File.CurrentFileSize += (int64_t)length;
  if (cb->File.ProgressMark > 0 && cb->File.ProgressMark < cb->File.CurrentFileSize) {
    fprintf(stdout, "<%uMB>", (unsigned)(cb->File.ProgressMark / 1000000));
    cb->File.ProgressMark += 10000000;
  }
}

// WriteTraceData of a text whose length is known.
int32_t WriteText(ExitControlBlock *cb, const char *text, size_t length) {
  // The handle that is open decides the way of writing, so that a settings
  // change while a file is open cannot lead to an unopened handle.
  if (cb->File.FileStream != nullptr) {
    if (fputs(text, cb->File.FileStream) < 0) {
      cb->FatalError = 1;
      DEBUG_TITLE(cb, "fatal error occurred.");
      PutMessage<1001>(cb, -1, cb->File.TraceFilePath, "fputs");
      return -1;
    }
  } else if (cb->File.FileDescriptor <= 0) {
    return -1; // no file is open: the text has nowhere to go
  } else if (cb->Settings.WriteCache == 1) {
    if (FlushBeforeAppending(cb, length) != 0) {
      return -1;
    }
    if ((int64_t)length >= (int64_t)cb->WriteBufferSize) {
      if (WriteDirect(cb, text, length) != 0) {
        return -1;
      }
    } else {
      // Fill + length < WriteBufferSize here, so the NUL fits as well.
      memcpy(cb->WriteBuffer + cb->WriteBufferFill, text, length + 1);
      cb->WriteBufferFill += (int32_t)length;
    }
  } else if (WriteDirect(cb, text, length) != 0) {
    return -1;
  }
  CountWritten(cb, length);
  return 0;
}

} // namespace

int32_t WriteTraceData(ExitControlBlock *cb, const char *text) {
  if (cb == nullptr || text == nullptr) {
    return -1;
  }
  return WriteText(cb, text, strlen(text));
}

int32_t WriteTraceDataLength(ExitControlBlock *cb, const char *text, int32_t length) {
  if (cb == nullptr || text == nullptr || length < 0) {
    return -1;
  }
  return WriteText(cb, text, (size_t)length);
}

int32_t FlushTraceDataInBuffer(ExitControlBlock *cb) {
  if (cb == nullptr || cb->File.FileStream != nullptr || cb->WriteBufferFill <= 0) {
    return 0;
  }
  if (cb->File.FileDescriptor <= 0) {
    cb->WriteBufferFill = 0;
    return -1;
  }
  ssize_t written = write(cb->File.FileDescriptor, cb->WriteBuffer, (size_t)cb->WriteBufferFill);
  cb->WriteBufferFill = 0;
  // Only a failed call counts: a short write (a full disk part-way through
  // the buffer) passes, and the next write reports the disk's error.
  if (written < 0) {
    cb->FatalError = 1;
    DEBUG_TITLE(cb, "fatal error occurred.");
    PutMessage<1001>(cb, -1, cb->File.TraceFilePath, "write");
    return -1;
  }
  return 0;
}
