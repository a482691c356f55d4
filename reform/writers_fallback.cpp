// Weak stand-ins for the factories of output formats whose source file is
// not part of this build: each says "not built" by returning nullptr, and
// the real definition, when linked, takes its place.
#include "reform/writers.h"

namespace wzreform {

__attribute__((weak)) CallWriter *NewTraceEventWriter(FILE *) { return nullptr; }
__attribute__((weak)) CallWriter *NewOtlpWriter(FILE *) { return nullptr; }
__attribute__((weak)) CallWriter *NewSummaryWriter(FILE *) { return nullptr; }
__attribute__((weak)) CallWriter *NewHtmlReportWriter(FILE *) { return nullptr; }

} // namespace wzreform
