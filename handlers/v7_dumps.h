// The structures of the subscription, status, control and callback calls
// shown the way every handler shows its structures: a version above the
// highest known is reported, a hex dump of the bytes the structure's
// version defines (of the highest known version above it), the
// variable-length strings as dumps of their own, then, when ShowParsedData
// is on, the structure field by field. A null structure shows nothing.
#pragma once

#include "zk/zksub.h"

struct ExitControlBlock;

// The subscription descriptor of ZKSUB and its five strings.
void ShowZKSD(ExitControlBlock *cb, const ZKSD *sd);
// The subscription request options of ZKSUBRQ.
void ShowZKSRO(ExitControlBlock *cb, const ZKSRO *sro);
// The status structure of ZKSTAT; from version 2 on with its two strings.
void ShowZKSTS(ExitControlBlock *cb, const ZKSTS *sts);
// The control options of ZKCTL.
void ShowZKCTLO(ExitControlBlock *cb, const ZKCTLO *ctlo);
// The callback descriptor of ZKCB.
void ShowZKCBD(ExitControlBlock *cb, const ZKCBD *cbd);
// The callback context passed to a callback function.
void ShowZKCBC(ExitControlBlock *cb, const ZKCBC *cbc);
