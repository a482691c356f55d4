// Unknown flag values and unknown structure versions: not errors, but shown
// in a banner, reported as an alert message and remembered, so that the
// closed trace file ends with the "Unknown ZK attribute exists." block.
#include "exit/alerts.h"
#include "exit/control_block.h"
#include "format/field_primitives.h"

namespace {

constexpr char kBannerStars[] = "|**********************************\n";
constexpr int32_t kBannerStarsLength = sizeof kBannerStars - 1;

} // namespace

int32_t ShowUnknownAttribute(ExitControlBlock *cb, const char *name, uint32_t value) {
  PutMessage(cb, 3101, 0, name, value);
  TraceLine line;
  TraceLineStart(&line, cb);
  TraceLineAppend(&line, kBannerStars, kBannerStarsLength);
  TraceLineAppend(&line, "|* Unknown : ", 13);
  TraceLineAppendText(&line, name);
  TraceLineAppend(&line, " 0x", 3);
  TraceLineAppendHex32(&line, value);
  TraceLineAppendChar(&line, '\n');
  TraceLineAppend(&line, kBannerStars, kBannerStarsLength);
  int32_t rc = TraceLineWrite(&line);
  cb->UnknownAttributeSeen = 1;
  return rc;
}

int32_t ShowUnknownStructureVersion(ExitControlBlock *cb, const char *structureName,
                                    int32_t version) {
  cb->UnknownAttributeSeen = 1;
  PutMessage(cb, 3100, 0, structureName, (uint32_t)version);
  TraceLine line;
  TraceLineStart(&line, cb);
  TraceLineAppend(&line, kBannerStars, kBannerStarsLength);
  TraceLineAppend(&line, "|* Unknown : ", 13);
  TraceLineAppendText(&line, structureName);
  TraceLineAppend(&line, " version ", 9);
  TraceLineAppendInt32(&line, version, 0);
  TraceLineAppendChar(&line, '\n');
  TraceLineAppend(&line, kBannerStars, kBannerStarsLength);
  return TraceLineWrite(&line);
}
