// Unknown flag values and unknown structure versions: not errors, but shown
// in a banner, reported as an alert message and remembered, so that the
// closed trace file ends with the "Unknown ZK attribute exists." block.
#include "exit/alerts.h"
#include "exit/control_block.h"
#include "format/field_primitives.h"

namespace {

constexpr char kBannerStars[] = "|**********************************\n";
constexpr int32_t kBannerStarsLength = sizeof kBannerStars - 1;

// Starts the banner of something unknown: the stars, then "|* Unknown : "
// and its name; the caller adds what is unknown about it.
void StartUnknownBanner(TraceText *line, ExitControlBlock *cb, const char *name) {
  TraceTextStart(line, cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppend(line, kBannerStars, kBannerStarsLength);
  TraceTextAppend(line, "|* Unknown : ", 13);
  TraceTextAppendString(line, name);
}

// Ends the banner line and closes the banner with the stars.
int32_t EndUnknownBanner(TraceText *line) {
  TraceTextAppendChar(line, '\n');
  TraceTextAppend(line, kBannerStars, kBannerStarsLength);
  return TraceTextWrite(line);
}

} // namespace

int32_t ShowUnknownAttribute(ExitControlBlock *cb, const char *name, uint32_t value) {
  PutMessage<3101>(cb, 0, name, value);
  TraceText line;
  StartUnknownBanner(&line, cb, name);
  TraceTextAppend(&line, " 0x", 3);
  TraceTextAppendHex32(&line, value);
  int32_t rc = EndUnknownBanner(&line);
  cb->File.UnknownAttributeSeen = 1;
  return rc;
}

int32_t ShowUnknownStructureVersion(ExitControlBlock *cb, const char *structureName,
                                    int32_t version) {
  cb->File.UnknownAttributeSeen = 1;
  PutMessage<3100>(cb, 0, structureName, (uint32_t)version);
  TraceText line;
  StartUnknownBanner(&line, cb, structureName);
  TraceTextAppend(&line, " version ", 9);
  TraceTextAppendInt32(&line, version, 0);
  return EndUnknownBanner(&line);
}
