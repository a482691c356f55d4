// The message data of the put, get and callback calls: a dump of the buffer,
// cut at the call's maximum, and the data parsed as its chain of headers.
#include <stdint.h>

#include "exit/control_block.h"
#include "format/message_content.h"
#include "handlers/short_dumps.h"
#include "output/record_writers.h"
#include "output/trace_text.h"

void ShowMsgContent(ExitControlBlock *cb, const ZKMD *const *md, const void *const *buffer,
                    int32_t length, int32_t maximum) {
  if (cb == nullptr || length < 0) {
    return;
  }
  const void *data = buffer != nullptr ? *buffer : nullptr;
  if (data == nullptr) {
    // Nothing can be read: the dump says so by its length.
    PutHexData(cb, "Buffer", data, 0, HEX_MODE_PLAIN);
    return;
  }
  if (maximum >= 0 && length > maximum) {
    PutHexData(cb, "Buffer", data, maximum, HEX_MODE_PLAIN);
    TraceText note;
    TraceTextStart(&note, cb, TRACE_TEXT_WRITE_OUT);
    TraceTextAppendLiteral(&note, "  (Shown only leading ");
    TraceTextAppendUInt32(&note, (uint32_t)maximum, 0);
    TraceTextAppendLiteral(&note, " byte(s) ...)\n");
    TraceTextWrite(&note);
  } else {
    PutHexData(cb, "Buffer", data, length, HEX_MODE_PLAIN);
  }
  // The headers of the data are told apart from the descriptor's Format and
  // Encoding: without a descriptor there is nothing to start the chain from.
  const ZKMD *descriptor = md != nullptr ? *md : nullptr;
  if (cb->Settings.ShowParsedMsgContent == 1 && descriptor != nullptr) {
    ShowParsedMsgData(cb, descriptor->Format, descriptor->Encoding, data, length);
  }
}
