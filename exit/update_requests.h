// Live control: the request files that enable, disable or renew tracing in
// a running process are sought before calls (see PreProcessForAnExitCall)
// and carried out here. The test of one name is config/update_requests.h.
#pragma once

#include <stdint.h>

#include "config/update_requests.h"

struct ExitControlBlock;

// Tests the four request names of the connection, in this order: every
// process, this process, this process and the running thread, this process
// and the thread of the exit context. Since they share the newest time
// seen, a later name counts only when it is newer than the earlier ones.
// The request that counts is the first found in the reverse order (the
// exit context's thread first). With a null `exitData` the times are only
// recorded (start-up: files that already exist are not requests); else the
// request is carried out, and `exitData` (the 32-character exit data of the
// connection) names where "wz.def" is read on a renew. Returns the request
// kind (UPDATE_REQUEST_*), UPDATE_REQUEST_NONE when there was none.
int32_t SeekUpdateRequestFiles(const char *exitData, ExitControlBlock *cb);

// Enable: when tracing is off, turns it on; the note "Enabled" starts a new
// trace file.
void EnableTraceByRequest(ExitControlBlock *cb);
// Disable: when tracing is on, writes the note "Disabled", closes the file
// with ".f" after its ".txt" and turns tracing off.
void DisableTraceByRequest(ExitControlBlock *cb);
// Renew: closes the file of a running trace ("Disabled for renew", ".f"),
// reads "wz.def" again into a fresh settings block and puts it in force
// (the write buffer keeps its size), rebuilds what depends on the settings,
// applies the process filters again and notes the outcome in a new file:
// "Enabled for renew", or why the process is not traced.
void RenewTraceByRequest(ExitControlBlock *cb, const char *exitData);
