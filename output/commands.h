// External commands: the compress command of closed trace files and the
// reformatting tool. Text from outside (paths that hold application names)
// reaches a shell only as a quoted word.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct ExitControlBlock;

// Appends `text` to the NUL-terminated `out` (`size` bytes) as one shell
// word: in single quotes, each embedded quote written as '\''. 0, or -1
// when it does not fit (out is then left as it was).
int32_t AppendShellWord(char *out, size_t size, const char *text);

// Starts `commandLine` with /bin/sh in the background and returns at once:
// its standard input, output and error are /dev/null, it runs in a session
// of its own and the host never waits for it. 0, or -1 with errno set.
int32_t StartBackgroundCommand(const char *commandLine);

// Runs a command line through the shell, its output copied to standard
// output. 0 or -1.
int32_t PerformCommand(const ExitControlBlock *cb, const char *commandLine);

// Runs the external reformatting tool on a trace file. 0 or -1.
int32_t CallReformatUtility(const ExitControlBlock *cb, const char *traceFilePath, char mode,
                            const char *inputName, const char *outputName);
