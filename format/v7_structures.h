// The structures and codes of the subscription, status, control and
// callback calls shown field by field: subscription descriptor, subscription
// request options and action, status structure and status type, control
// options, the operation of ZKCB and ZKCTL, callback descriptor and
// callback context. Each writes its lines to the trace output; none fails.
#pragma once

#include <stdint.h>

#include "zk/zksub.h"

struct ExitControlBlock;

// The subscription descriptor of ZKSUB, its variable-length strings found
// through their descriptors.
void ShowParsedZksd(ExitControlBlock *cb, const ZKSD *sd);
// The subscription request options of ZKSUBRQ.
void ShowParsedZksro(ExitControlBlock *cb, const ZKSRO *sro);
// The action of ZKSUBRQ, as the field "Action".
void ShowParsedZksr(ExitControlBlock *cb, int32_t action);
// The operation of ZKCB and ZKCTL, as the field "Operation".
void ShowParsedZkop(ExitControlBlock *cb, int32_t operation);
// The control options of ZKCTL.
void ShowParsedZkctlo(ExitControlBlock *cb, const ZKCTLO *ctlo);
// The callback descriptor of ZKCB.
void ShowParsedZkcbd(ExitControlBlock *cb, const ZKCBD *cbd);
// The callback context passed to a callback function.
void ShowParsedZkcbc(ExitControlBlock *cb, const ZKCBC *cbc);
// The status structure of ZKSTAT.
void ShowParsedZksts(ExitControlBlock *cb, const ZKSTS *sts);
// A status type under the field name `label`: ASYNC_ERROR, RECONNECTION or
// RECONNECTION_ERROR. Any other value writes no field line, only the report
// of an unknown value.
void ShowParsedZkstatType(ExitControlBlock *cb, const char *label, int32_t value);
