// Trace files: accepting the texts of the record writers, switching to a
// new file when the current one is full, and closing a file with its notes,
// its final extension and its compression.
//
// Large-file interfaces: trace files of a 32-bit process may grow beyond
// 2 GB when a closed file is taken up again.
#define _FILE_OFFSET_BITS 64

#include "output/trace_file.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "exit/debug_output.h"
#include "exit/alerts.h"
#include "output/commands.h"
#include "exit/exit_files.h"
#include "exit/control_block.h"
#include "output/process_id.h"
#include "output/profile.h"
#include "output/summary.h"
#include "output/timing.h"
#include "output/trace_text.h"

namespace {

constexpr int32_t kPathSize = 640;
constexpr int32_t kCommandSize = 4096;

const char kNoteDashLine[] = "|----------------------------------------------------------\n";
const char kStarLine[] = "|*****************************************************************\n";

uint32_t CurrentThreadId() {
  return (uint32_t)(uintptr_t)pthread_self();
}

// Writes the pieces one after the other as one text.
void WriteLines(ExitControlBlock *cb, const char *const *lines, size_t count) {
  TraceText text;
  TraceTextStart(&text, cb, TRACE_TEXT_WRITE_OUT);
  for (size_t i = 0; i < count; i++) {
    TraceTextAppendString(&text, lines[i]);
  }
  TraceTextWrite(&text);
}

// Opens cb->File.TraceFilePath: a stream in append mode, or a descriptor on the
// existing file, else a new file created exclusively with mode 0660. A
// symbolic link or anything but a regular file at the name is a file that
// cannot be opened.
int32_t OpenTraceFile(ExitControlBlock *cb) {
  if (cb->Settings.WriteStream == 1) {
    FILE *stream = OpenExitStream(cb->File.TraceFilePath, EXIT_FILE_APPEND);
    if (stream == nullptr) {
      PutMessage<1001>(cb, -1, cb->File.TraceFilePath, "fopen");
      return -1;
    }
    cb->File.FileStream = stream;
    return 0;
  }
  int descriptor = OpenExitFile(cb->File.TraceFilePath, EXIT_FILE_READ_WRITE);
  if (descriptor < 0 && errno == ENOENT) {
    descriptor = OpenExitFile(cb->File.TraceFilePath, EXIT_FILE_CREATE_NEW);
  }
  if (descriptor < 0) {
    PutMessage<1001>(cb, -1, cb->File.TraceFilePath, "open");
    return -1;
  }
  cb->File.FileDescriptor = descriptor;
  return 0;
}

void CloseTraceFile(ExitControlBlock *cb) {
  if (cb->File.FileStream != nullptr) {
    fclose(cb->File.FileStream);
    cb->File.FileStream = nullptr;
  }
  if (cb->File.FileDescriptor > 0) {
    close(cb->File.FileDescriptor);
  }
  cb->File.FileDescriptor = 0;
}

// Closes the current file and opens the next one with its profile and the
// summary so far.
int32_t SwitchTraceFile(ExitControlBlock *cb) {
  CloseAndCompressFile(cb, nullptr);
  cb->File.ThreadChanged = 0;
  int64_t reopenedSize = 0;
  if (GenerateNewFileName(cb, &reopenedSize) != 0) {
    cb->FatalError = 1;
    DEBUG_TITLE(cb, "fatal error occurred.");
    return -1;
  }
  if (OpenTraceFile(cb) != 0) {
    cb->FatalError = 1;
    DEBUG_TITLE(cb, "fatal error occurred.");
    return -1;
  }
  cb->WriteBufferFill = 0;
  // The first write interval runs from the opening of the file.
  cb->File.LastFlushTime = CallClockSeconds(cb);
  cb->File.RecordedProcessId = CurrentProcessId();
  cb->File.RecordedThreadId = CurrentThreadId();
  // The profile banner of a reopened file sets this too; the closing note
  // depends on it, so it is set where the reopening happened.
  if (reopenedSize > 0) {
    cb->File.FileReopened = 1;
  }
  PutProcessProfileRecords(cb, reopenedSize);
  if (cb->Settings.ShowPerformanceOnly == 1) {
    cb->Settings.ShowSummaryOnly = 1;
  }
  PutSummaryRecord(cb);
  cb->File.NewFileOpened = 1;
  return 0;
}

void ResetFileCounters(ExitControlBlock *cb) {
  cb->File.CurrentFileSize = 0;
  cb->WriteBufferFill = 0;
  if (cb->WriteBufferSize > 0) {
    cb->WriteBuffer[0] = '\0';
  }
}

void WriteUnknownAttributeBlock(ExitControlBlock *cb) {
  char contact[sizeof cb->Identity.MakerContact + 1];
  memcpy(contact, cb->Identity.MakerContact, sizeof cb->Identity.MakerContact);
  contact[sizeof cb->Identity.MakerContact] = '\0';
  const char *const lines[] = {
      "\n",
      kStarLine,
      kStarLine,
      "|**\n",
      "|**   Unknown ZK attribute exists.\n",
      "|**   Please check ZK attribute settings in your program or\n",
      "|**   report to ",
      contact,
      " with this trace data.\n",
      "|**   (New attributes might have been supported by Tarnvelde ZK.)\n",
      "|**\n",
      kStarLine,
      kStarLine,
      "\n",
  };
  WriteLines(cb, lines, sizeof lines / sizeof lines[0]);
}

void WriteThreadChangedBlock(ExitControlBlock *cb) {
  const char *const lines[] = {
      "|\n",
      kStarLine,
      "|**   Thread id has been changed after opening trace file.\n",
      "|**   File extension '.txt' is not set after closing this file.\n",
      kStarLine,
      "|\n",
  };
  WriteLines(cb, lines, sizeof lines / sizeof lines[0]);
}

void WriteReopenedBlock(ExitControlBlock *cb) {
  const char *const lines[] = {
      "|\n",
      kStarLine,
      "|**   This trace file was reopened.\n",
      "|**   Multiple sets of call summary data might exist in the file.\n",
      kStarLine,
      "|\n",
  };
  WriteLines(cb, lines, sizeof lines / sizeof lines[0]);
}

// Renames the closed file once more with a further ".txt" and starts the
// compress command on it in the background. 0, or -1 when the rename failed.
int32_t CompressClosedFile(ExitControlBlock *cb, const char *closedPath) {
  // Room for the closed path (at most kPathSize - 1 characters) and ".txt".
  char compressPath[kPathSize + 4];
  snprintf(compressPath, sizeof compressPath, "%s.txt", closedPath);
  if (rename(closedPath, compressPath) != 0) {
    PutMessage<1006>(cb, -1, closedPath, compressPath);
    return -1;
  }
  char command[kCommandSize];
  if (BuildCompressCommand(cb->Settings.CompressCommand, compressPath, command, sizeof command) !=
      0) {
    // A cut command line could name a wrong file: not run.
    PutMessage<1002>(cb, E2BIG, command);
    return 0;
  }
  if (StartBackgroundCommand(command) != 0) {
    PutMessage<1002>(cb, -1, command);
  }
  return 0;
}

} // namespace

int32_t TraceFileIsOpen(const ExitControlBlock *cb) {
  return (cb->File.FileStream != nullptr || cb->File.FileDescriptor > 0) ? 1 : 0;
}

void NoteProcessOrThreadChange(ExitControlBlock *cb) {
  uint32_t processId = (uint32_t)CurrentProcessId();
  uint32_t threadId = CurrentThreadId();
  if (cb->File.RecordedProcessId == 0 && cb->File.RecordedThreadId == 0) {
    cb->File.RecordedProcessId = (int32_t)processId;
    cb->File.RecordedThreadId = threadId;
    return;
  }
  uint32_t recordedProcessId = (uint32_t)cb->File.RecordedProcessId;
  uint32_t recordedThreadId = cb->File.RecordedThreadId;
  if (processId == recordedProcessId && threadId == recordedThreadId) {
    return;
  }
  if (cb->File.SuppressProcessChangeNotes == 0) {
    TraceText note;
    TraceTextStart(&note, cb, TRACE_TEXT_WRITE_OUT);
    TraceTextAppendLiteral(&note, "|\n");
    TraceTextAppendLiteral(&note, kNoteDashLine);
    if (processId != recordedProcessId) {
      TraceTextAppendLiteral(&note, "|  Process id (real) has been changed from ");
      TraceTextAppendUInt32(&note, recordedProcessId, 0);
      TraceTextAppendLiteral(&note, " to ");
      TraceTextAppendUInt32(&note, processId, 0);
      TraceTextAppendLiteral(&note, ".\n");
    }
    if (threadId != recordedThreadId) {
      TraceTextAppendLiteral(&note, "|  Thread id (real) has been changed from ");
      TraceTextAppendUInt32(&note, recordedThreadId, 0);
      TraceTextAppendLiteral(&note, " to ");
      TraceTextAppendUInt32(&note, threadId, 0);
      TraceTextAppendLiteral(&note, ".\n");
    }
    TraceTextAppendLiteral(&note, kNoteDashLine);
    TraceTextAppendLiteral(&note, "|\n");
    TraceTextWrite(&note);
  }
  cb->File.RecordedProcessId = (int32_t)processId;
  cb->File.RecordedThreadId = threadId;
  // The block's own identifiers follow, so that messages name the writer.
  cb->Identity.ProcessId = (int32_t)processId;
  cb->Identity.ThreadId = threadId;
  cb->File.ThreadChanged = 1;
}

int32_t PrepareTraceFile(ExitControlBlock *cb, int64_t length) {
  if (cb == nullptr) {
    return -1;
  }
  if (cb->FatalError != 0) {
    return -1; // writing stopped for good at the failure
  }
  NoteProcessOrThreadChange(cb);
  if (cb->File.RotationPermitted != 0 && cb->Settings.MaxFileSize > 0 &&
      cb->Settings.MaxFileSize < cb->File.CurrentFileSize + length) {
    if (SwitchTraceFile(cb) != 0) {
      return -1;
    }
  }
  return 0;
}

int32_t SetDataToWriteBuffer(ExitControlBlock *cb, const char *text) {
  if (text == nullptr) {
    text = "";
  }
  int64_t length = (int64_t)strlen(text);
  if (PrepareTraceFile(cb, length) != 0) {
    return -1;
  }
  if (length == 0) {
    return 0;
  }
  return WriteTraceData(cb, text);
}

void CloseAndCompressFile(ExitControlBlock *cb, const char *suffix) {
  if (cb == nullptr) {
    return;
  }
  if (TraceFileIsOpen(cb) == 0) {
    ResetFileCounters(cb);
    return;
  }
  if (cb->WriteBufferFill > 0) {
    FlushTraceDataInBuffer(cb);
  }
  PutSummaryRecord(cb);
  if (cb->File.UnknownAttributeSeen != 0) {
    WriteUnknownAttributeBlock(cb);
    cb->File.UnknownAttributeSeen = 0;
  }
  NoteProcessOrThreadChange(cb);
  if (cb->File.ThreadChanged != 0) {
    WriteThreadChangedBlock(cb);
  }
  if (cb->File.FileReopened != 0) {
    WriteReopenedBlock(cb);
    cb->File.FileReopened = 0;
  }
  FlushTraceDataInBuffer(cb);
  CloseTraceFile(cb);

  // A file another process or thread wrote to keeps ".t" and is left alone.
  if (cb->File.ThreadChanged == 0) {
    char closedPath[kPathSize];
    snprintf(closedPath, sizeof closedPath, "%s", cb->File.TraceFilePath);
    size_t length = strlen(closedPath);
    if (length > 2 && strcmp(closedPath + length - 2, ".t") == 0) {
      closedPath[length - 2] = '\0';
      length -= 2;
    }
    snprintf(closedPath + length, sizeof closedPath - length, ".txt%s",
             suffix != nullptr ? suffix : "");
    if (rename(cb->File.TraceFilePath, closedPath) != 0) {
      return;
    }
    if (cb->Settings.CompressCommand[0] != '\0' &&
        cb->File.CurrentFileSize >= (int64_t)cb->Settings.CompressFileSizeThreshold) {
      if (CompressClosedFile(cb, closedPath) != 0) {
        return;
      }
    }
  }
  ResetFileCounters(cb);
}

int32_t BuildCompressCommand(const char *command, const char *path, char *out, int32_t size) {
  if (size <= 0) {
    return -1;
  }
  out[0] = '\0';
  // The path stands in the line as one quoted word, whatever it holds: the
  // application's name is part of it. The operator's own text keeps its
  // shell syntax.
  char literal[2] = {0, 0};
  for (const char *c = command; *c != '\0'; c++) {
    int32_t fits;
    if (*c == '$') {
      fits = AppendShellWord(out, (size_t)size, path);
    } else {
      literal[0] = *c;
      fits = strlen(out) + 1 < (size_t)size ? (strcat(out, literal), 0) : -1;
    }
    if (fits != 0) {
      return -1;
    }
  }
  if (strlen(out) + 2 >= (size_t)size) {
    return -1;
  }
  strcat(out, " &");
  return 0;
}
