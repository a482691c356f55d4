// The pieces of the transaction-manager records: the transaction identifier
// dumped at the length its layout and lengths give, and the flags word with
// the names of its bits.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// Dumps the XID at `xid` as "xid" and returns its size in its layout (140
// for 32-bit integers, 152 for 64-bit), so that an array can be walked; 0,
// with a zero-length dump, when the address is null. The layout is told
// from the 64-bit words at offsets 8 and 16: both 64 or less (the longest
// identifier and qualifier) mean 64-bit integers.
int32_t XaShowXid(ExitControlBlock *cb, const void *xid);

// "flags:0x" and the flags in eight hex digits; with ShowParsedData the
// line "flags" with the names of the set bits (ShowParsedXaFlags).
void ShowXaFlags(ExitControlBlock *cb, const int32_t *flags);

// The field "flags": the names of its set bits from the highest down,
// joined by " / ", or "TMNOFLAGS" when none is set. Bits without a name
// here (below bit 20) are left out.
void ShowParsedXaFlags(ExitControlBlock *cb, int32_t flags);
