#include "handlers/xa_fields.h"

#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "output/record_writers.h"
#include "output/trace_text.h"
#include "text/constant_table.h"
#include "zk/zkxa.h"

namespace {

// The bits that the flags line names: bit 20 (TMMIGRATE) to bit 31
// (TMASYNC).
constexpr uint32_t kNamedFlagBits = 0xFFF00000u;

uint64_t Unsigned64At(const void *base, int32_t offset) {
  uint64_t value;
  memcpy(&value, (const char *)base + offset, sizeof value);
  return value;
}

// The dump length of an XID in the 32-bit layout: its three integers and
// the identifier and qualifier, at most the whole XID. Negative lengths
// (no XA sender writes them) count as 0.
int32_t Xid32DumpLength(const ZKXID32 *xid) {
  int64_t gtrid = xid->gtrid_length > 0 ? xid->gtrid_length : 0;
  int64_t bqual = xid->bqual_length > 0 ? xid->bqual_length : 0;
  int64_t length = gtrid + bqual + ZKXID32_HEADER_LENGTH;
  return length < ZKXID32_LENGTH ? (int32_t)length : ZKXID32_LENGTH;
}

} // namespace

int32_t XaShowXid(ExitControlBlock *cb, const void *xid) {
  if (xid == nullptr) {
    PutHexData(cb, "xid", nullptr, 0, HEX_MODE_PLAIN);
    return 0;
  }
  uint64_t gtrid = Unsigned64At(xid, 8);
  uint64_t bqual = Unsigned64At(xid, 16);
  if (gtrid <= ZK_XID_MAX_GTRID_SIZE && bqual <= ZK_XID_MAX_BQUAL_SIZE) {
    // 64 + 64 + 24 = 152: never more than the XID.
    PutHexData(cb, "xid", xid, (int32_t)(gtrid + bqual) + ZKXID64_HEADER_LENGTH, HEX_MODE_PLAIN);
    return ZKXID64_LENGTH;
  }
  PutHexData(cb, "xid", xid, Xid32DumpLength((const ZKXID32 *)xid), HEX_MODE_PLAIN);
  return ZKXID32_LENGTH;
}

void ShowParsedXaFlags(ExitControlBlock *cb, int32_t flags) {
  ShowFieldName(cb, "flags");
  uint32_t named = 0;
  // The rows stand in the order of their bits: read backwards, the highest
  // bit comes first.
  int32_t rows = CountConstantIntRows(ConstantIdentifier_Tmflags);
  for (int32_t i = rows - 1; i >= 0; i--) {
    uint32_t bit = (uint32_t)ConstantIdentifier_Tmflags[i].value;
    if ((bit & kNamedFlagBits) != 0 && ((uint32_t)flags & bit) == bit) {
      ShowAttributeDescription(cb, &named, ConstantIdentifier_Tmflags[i].text);
    }
  }
  if (named == 0) {
    ShowAttributeDescription(cb, &named, "TMNOFLAGS");
  }
  TraceText end;
  TraceTextStart(&end, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendChar(&end, '\n');
  TraceTextWrite(&end);
}

void ShowXaFlags(ExitControlBlock *cb, const int32_t *flags) {
  if (flags == nullptr) {
    return;
  }
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_CUT);
  TraceTextAppendLiteral(&line, "flags:0x");
  TraceTextAppendHex32(&line, (uint32_t)*flags);
  TraceTextAppendChar(&line, '\n');
  TraceTextWrite(&line);
  if (cb->Settings.ShowParsedData == 1) {
    ShowParsedXaFlags(cb, *flags);
  }
}
