// The output formats of wzreform, each made by its own factory function in
// its own source file (out_jsonl.cpp, out_csv.cpp, out_trace_event.cpp,
// out_otlp.cpp, out_summary.cpp, report_html.cpp). A factory returns a writer
// that writes to out (which stays open and owned by the caller), or
// nullptr when the format is not part of this build.
#pragma once

#include <stdio.h>

#include "reform/call.h"

namespace wzreform {

CallWriter *NewJsonlWriter(FILE *out);      // one JSON object per call and line
CallWriter *NewCsvWriter(FILE *out);        // one row per call, header fields only
CallWriter *NewTraceEventWriter(FILE *out); // timeline in trace-event JSON
CallWriter *NewOtlpWriter(FILE *out);       // spans in OTLP JSON
CallWriter *NewSummaryWriter(FILE *out);    // counts and times per function and object
CallWriter *NewHtmlReportWriter(FILE *out); // a self-contained HTML report

} // namespace wzreform
