// Trace files: the write buffer, file naming, rotation, reopening and
// compression. All trace text reaches the disk through here.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// The one entry point of the record writers: switches to a new file when
// the text would not fit in the current one, then writes it. An empty text
// only makes the file checks (this is how start-up opens the first file).
// 0, or -1 on a file failure (FatalError is then set).
int32_t SetDataToWriteBuffer(ExitControlBlock *cb, const char *text);
// The checks of SetDataToWriteBuffer for a text of `length` bytes, without
// writing it: a record put together afterwards is written with
// WriteTraceData. 0, or -1 when nothing may be written.
int32_t PrepareTraceFile(ExitControlBlock *cb, int64_t length);

// Writes a text through the buffer, without the file-switch check. 0 or -1.
int32_t WriteTraceData(ExitControlBlock *cb, const char *text);
// The same for a text whose length is known; text[length] must be its NUL.
int32_t WriteTraceDataLength(ExitControlBlock *cb, const char *text, int32_t length);

// Writes the buffer out. 0 or -1.
int32_t FlushTraceDataInBuffer(ExitControlBlock *cb);

// Closes the current file: summary, closing notes, rename from ".t" to
// ".txt" (then `suffix`, when given), compression. `suffix` may be null.
void CloseAndCompressFile(ExitControlBlock *cb, const char *suffix);

// Chooses the next file name and stores its full path in cb->File.TraceFilePath.
// 0 or -1; *reopenedSize is the size of a closed file taken up again, else 0.
int32_t GenerateNewFileName(ExitControlBlock *cb, int64_t *reopenedSize);

// Looks for `name` in the trace directory: 2 an entry of exactly that name
// (its size in *size), 1 entries beginning with it, 0 none, -1 no directory.
int32_t CheckFileExistence(ExitControlBlock *cb, const char *name, int64_t *size);

// Maps the first `length` bytes in place to characters safe in file names.
void TranslateZkObjectNameToFileName(char *text, int32_t length);

extern const unsigned char ZkObjectNameToFileNameTable[256];

// 1 while a trace file is open through a descriptor or a stream, else 0.
int32_t TraceFileIsOpen(const ExitControlBlock *cb);

// Compares getpid() and pthread_self() with the identifiers recorded for
// the current file. On a difference writes the change note (unless the
// block suppresses it), records the new identifiers and sets ThreadChanged.
// The first call of a block only records them.
void NoteProcessOrThreadChange(ExitControlBlock *cb);

// Builds the compress command line: `command` with every "$" replaced by
// `path` as one single-quoted shell word, then " &". 0, or -1 when the line
// does not fit in `size` bytes (`out` then holds as much as fits).
int32_t BuildCompressCommand(const char *command, const char *path, char *out, int32_t size);
