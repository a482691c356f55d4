// Every file the exit opens goes through here. The exit runs inside other
// people's processes and writes into directories other users may share, so
// a file of its own is never reached through a symbolic link, is always a
// regular file, never blocks the call (a FIFO or device planted at its name
// is refused, not waited on), is never inherited by programs the host
// starts, and is created with mode 0660 (before the umask).
//
// A hub: the parameter file, trace files, alert and error files and every
// later file of the exit open through here, so every folder may include
// this header.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

enum ExitFileMode {
  EXIT_FILE_READ = 0,       // read an existing file
  EXIT_FILE_APPEND = 1,     // append, creating the file when it is missing
  EXIT_FILE_READ_WRITE = 2, // read-write and append, on an existing file only
  EXIT_FILE_CREATE_NEW = 3, // read-write and append, on a file created now
};

// The errno value that stands for "there is something at the name, but it
// is not a regular file".
#define EXIT_FILE_NOT_REGULAR EINVAL

// Opens `path` under the rules above. The descriptor (never 0, 1 or 2, so
// that it cannot be mistaken for the host's standard streams), or -1 with
// errno set: ELOOP for a symbolic link, EXIT_FILE_NOT_REGULAR for anything
// else that is not a regular file, or the error of the failed call.
int32_t OpenExitFile(const char *path, int32_t mode);

// The same, as a stream ("r" for EXIT_FILE_READ, "a" for the append modes).
// Null with errno set.
FILE *OpenExitStream(const char *path, int32_t mode);

// Appends `length` bytes to `path` in one write (EXIT_FILE_APPEND) and
// closes it. 0 when every byte was written, else -1 with errno set.
int32_t AppendToExitFile(const char *path, const char *text, size_t length);
