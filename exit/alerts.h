// Numbered alert messages, written to the error file of the connection (or
// of the process when there is no control block yet), and external commands.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// Writes alert `number` with its template filled from the arguments: one
// argument per placeholder $1, $2, ... in order, each a const char *, an
// int32_t or a uint32_t as the placeholder says (s, d or u/x). `error` is
// the operating system's error number for $0s/$0d; -1 means errno.
// Never fails towards the caller.
void PutMessage(const ExitControlBlock *cb, uint32_t number, int32_t error, ...);

// Runs a command line, copying its output to standard output. 0 or -1.
int32_t PerformCommand(const ExitControlBlock *cb, const char *commandLine);

// Runs the external reformatting tool on a trace file. 0 or -1.
int32_t CallReformatUtility(const ExitControlBlock *cb, const char *traceFilePath, char mode,
                            const char *inputName, const char *outputName);
