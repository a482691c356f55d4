// Dynamic update requests: request files the operator drops into the trace
// directory to enable, disable or renew tracing in running processes. Here
// one request name is tested; exit/update_requests.h seeks all the names of
// a connection and carries the request out.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// What a request file asks for, by its size in bytes.
#define UPDATE_REQUEST_NONE 0
#define UPDATE_REQUEST_ENABLE 1  // 20 bytes and more
#define UPDATE_REQUEST_DISABLE 2 // 10 to 19 bytes
#define UPDATE_REQUEST_RENEW 3   // 0 to 9 bytes

// The names, in the trace directory:
//   signal_all_all.set        every process
//   signal_<pid>_all.set      one process
//   signal_<pid>_<tid>.set    one thread of a process
#define UPDATE_REQUEST_PREFIX "signal_"
#define UPDATE_REQUEST_ALL "all"
#define UPDATE_REQUEST_SUFFIX ".set"

// The request kind of a size.
int32_t UpdateRequestKindOfSize(int64_t size);

// Builds the path of one request name in the trace directory: a process id
// of 0 gives the "all" name, a thread id of 0 the per-process name. The
// length of the path, or -1 when it does not fit in `size` bytes.
int32_t BuildUpdateRequestPath(const ExitControlBlock *cb, uint32_t processId, uint32_t threadId,
                               char *out, int32_t size);

// Tests one request name: UPDATE_REQUEST_NONE when there is no regular file
// at the name (a symbolic link, a directory, a FIFO or anything else that
// is not a regular file is not a request and is not followed) or when its
// modification time is not later than the newest one seen for any name of
// the connection; else the file's time becomes the newest seen and its
// request kind is returned. Times are compared in whole seconds.
int32_t CheckUpdateRequestFileExistence(ExitControlBlock *cb, uint32_t processId,
                                        uint32_t threadId);
