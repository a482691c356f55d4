// --report FILE.html: one self-contained HTML page (inline style sheet,
// inline SVG charts, no script and nothing fetched from anywhere) with the
// summary tables, the calls per second over time and a latency histogram
// per function. Every text that comes from the trace is escaped; bytes
// outside printable ASCII are written as character references (each byte
// read as ISO 8859-1), so the page is plain ASCII.
#include <math.h>
#include <stdio.h>

#include <algorithm>
#include <string>
#include <vector>

#include "reform/summary.h"
#include "reform/writers.h"

namespace wzreform {

namespace {

std::string Html(const std::string &text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    unsigned char byte = static_cast<unsigned char>(c);
    switch (c) {
    case '&':
      out += "&amp;";
      break;
    case '<':
      out += "&lt;";
      break;
    case '>':
      out += "&gt;";
      break;
    case '"':
      out += "&quot;";
      break;
    case '\'':
      out += "&#39;";
      break;
    default:
      if (byte < 0x20 || byte == 0x7F) {
        out += "&#xFFFD;"; // control characters have no place in a page
      } else if (byte >= 0x80) {
        char ref[12];
        snprintf(ref, sizeof ref, "&#x%02X;", byte);
        out += ref;
      } else {
        out += c;
      }
    }
  }
  return out;
}

std::string Format(const char *format, double value) {
  char text[64];
  snprintf(text, sizeof text, format, value);
  return text;
}

// A duration for an axis or a tooltip: "250 us", "1.5 ms", "12 s".
std::string Duration(double micros) {
  if (micros < 1000) {
    return Format("%.0f us", micros);
  }
  if (micros < 1e6) {
    return Format(micros < 10000 ? "%.3g ms" : "%.0f ms", micros / 1000);
  }
  return Format(micros < 1e7 ? "%.3g s" : "%.0f s", micros / 1e6);
}

const char kStyle[] = R"(
body { font-family: sans-serif; margin: 1.5em; color: #222; background: #fff; }
h1 { font-size: 1.4em; }
h2 { font-size: 1.2em; margin-top: 1.8em; border-bottom: 1px solid #ccc; }
h3 { font-size: 1em; margin: 1.2em 0 0.3em; }
table { border-collapse: collapse; margin: 0.5em 0; }
th, td { padding: 0.2em 0.6em; border: 1px solid #ddd; }
th { background: #f0f0f0; text-align: left; }
td.n { text-align: right; font-variant-numeric: tabular-nums; }
tr.total td { font-weight: bold; }
td.failed { color: #b00; }
svg { display: block; margin: 0.3em 0 1em; }
svg text { font-size: 11px; fill: #444; }
.bar { fill: #4a7ab5; }
.bar-failed { fill: #c84a3a; }
.axis { stroke: #888; stroke-width: 1; }
.mark { stroke-width: 1; stroke-dasharray: 4 3; }
.p50 { stroke: #2a8a2a; }
.p90 { stroke: #c08000; }
.p99 { stroke: #b00; }
.note { color: #666; }
)";

class HtmlReport {
public:
  explicit HtmlReport(const TraceStats &stats) : Stats(stats) {}

  std::string Render() {
    Out += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    Out += "<title>wzreform report</title>\n<style>";
    Out += kStyle;
    Out += "</style>\n</head>\n<body>\n<h1>Trace report</h1>\n";
    Overview();
    FunctionTable();
    TimelineChart();
    Histograms();
    ObjectTable();
    SlowestTables();
    Out += "</body>\n</html>\n";
    return Out;
  }

private:
  void Overview() {
    const GroupStats &all = Stats.Overall();
    Out += "<p>" + std::to_string(all.Calls) + " calls from " +
           std::to_string(Stats.Traces().size()) + " trace file(s), " +
           Html(FormatMicrosTime(all.First)) + " to " + Html(FormatMicrosTime(all.Last)) +
           ".</p>\n";
    if (!Stats.Traces().empty()) {
      Out += "<ul>\n";
      for (const std::string &trace : Stats.Traces()) {
        Out += "<li>" + Html(trace) + "</li>\n";
      }
      Out += "</ul>\n";
    }
  }

  void TableHeader(const std::vector<std::string> &names) {
    Out += "<table>\n<tr>";
    for (const std::string &name : names) {
      Out += "<th>" + Html(name) + "</th>";
    }
    for (const std::string &column : GroupColumns()) {
      Out += "<th>" + Html(column) + "</th>";
    }
    Out += "</tr>\n";
  }

  void TableRow(const std::vector<std::string> &names, const GroupStats &group, bool total) {
    Out += total ? "<tr class=\"total\">" : "<tr>";
    for (const std::string &name : names) {
      Out += "<td>" + Html(name) + "</td>";
    }
    std::vector<std::string> cells = GroupCells(group);
    for (size_t i = 0; i < cells.size(); i++) {
      // The column of failed calls (the fourth) stands out when not 0.
      bool failed = i == 3 && group.ByOutcome[static_cast<int>(Outcome::FAILED)] != 0;
      Out += failed ? "<td class=\"n failed\">" : "<td class=\"n\">";
      Out += Html(cells[i]) + "</td>";
    }
    Out += "</tr>\n";
  }

  void FunctionTable() {
    Out += "<h2>Calls by function</h2>\n";
    TableHeader({"Function"});
    for (const auto &[function, group] : Stats.ByFunction()) {
      TableRow({function}, group, false);
    }
    TableRow({"(all)"}, Stats.Overall(), true);
    Out += "</table>\n";
  }

  void ObjectTable() {
    Out += "<h2>Calls by object name</h2>\n";
    if (Stats.ByObject().empty()) {
      Out += "<p class=\"note\">No call with an object name.</p>\n";
      return;
    }
    TableHeader({"Object name", "Function"});
    for (const auto &[key, group] : Stats.ByObject()) {
      TableRow({key.first, key.second}, group, false);
    }
    Out += "</table>\n";
    if (Stats.ObjectsCut()) {
      Out += "<p class=\"note\">Past " + std::to_string(TraceStats::kMaxObjects) +
             " object names, the calls on further names are counted under " +
             Html(TraceStats::kOtherObjects) + ".</p>\n";
    }
  }

  void SlowestTables() {
    Out += "<h2>Slowest calls by function</h2>\n";
    bool any = false;
    for (const auto &[function, group] : Stats.ByFunction()) {
      if (group.Slowest.empty()) {
        continue;
      }
      any = true;
      Out += "<h3>" + Html(function) +
             "</h3>\n<table>\n<tr><th>Elapsed</th><th>Seq #</th>"
             "<th>Start</th><th>Object name</th><th>Thread</th><th>Trace</th></tr>\n";
      for (const SlowCall &call : group.Slowest) {
        Out += "<tr><td class=\"n\">" + Html(Duration(static_cast<double>(call.Micros))) +
               "</td><td class=\"n\">" +
               (call.Sequence != 0 ? std::to_string(call.Sequence) : std::string("-")) +
               "</td><td>" + Html(FormatMicrosTime(call.Start)) + "</td><td>" +
               Html(call.ObjectName) + "</td><td class=\"n\">" + std::to_string(call.ThreadId) +
               "</td><td>" + Html(call.Trace) + "</td></tr>\n";
      }
      Out += "</table>\n";
    }
    if (!any) {
      Out += "<p class=\"note\">No call with a known elapsed time.</p>\n";
    }
  }

  // Calls per second over the time of the trace, the failed calls drawn
  // over them in another colour.
  void TimelineChart() {
    Out += "<h2>Calls per second</h2>\n";
    const Timeline &timeline = Stats.OverTime();
    std::vector<Timeline::Bin> bins = timeline.Bins();
    if (bins.empty()) {
      Out += "<p class=\"note\">No call with a time stamp.</p>\n";
      return;
    }
    const double seconds = static_cast<double>(timeline.BinMicros()) / 1e6;
    uint64_t most = 0;
    for (const Timeline::Bin &bin : bins) {
      most = std::max(most, bin.Calls);
    }
    const double top = static_cast<double>(most) / seconds;
    const int width = 720;
    const int height = 200;
    const int left = 80;
    const int right = 10;
    const int upper = 10;
    const int lower = 40;
    const double plotWidth = width - left - right;
    const double plotHeight = height - upper - lower;
    const double barWidth = plotWidth / static_cast<double>(bins.size());

    Out += "<p class=\"note\">Each bar: " + Html(Duration(seconds * 1e6)) + ".</p>\n";
    Out += Svg(width, height, "calls per second");
    for (size_t i = 0; i < bins.size(); i++) {
      const Timeline::Bin &bin = bins[i];
      if (bin.Calls == 0) {
        continue;
      }
      double x = left + barWidth * static_cast<double>(i);
      double h = plotHeight * static_cast<double>(bin.Calls) / static_cast<double>(most);
      double hf = plotHeight * static_cast<double>(bin.Failed) / static_cast<double>(most);
      std::string tip = FormatMicrosTime(bin.Start) + ": " + std::to_string(bin.Calls) +
                        " calls (" + Format("%.1f", static_cast<double>(bin.Calls) / seconds) +
                        "/s), " + std::to_string(bin.Failed) + " failed";
      Out += Rect("bar", x, upper + plotHeight - h, barWidth, h, tip);
      if (bin.Failed != 0) {
        Out += Rect("bar-failed", x, upper + plotHeight - hf, barWidth, hf, tip);
      }
    }
    Axes(left, upper, plotWidth, plotHeight);
    Out += Text(left - 4, upper + 10, "end", Format(top >= 100 ? "%.0f/s" : "%.1f/s", top));
    Out += Text(left - 4, upper + plotHeight, "end", "0");
    Out += Text(left, upper + plotHeight + 16, "start", FormatMicrosTime(bins.front().Start));
    Out += Text(left + plotWidth, upper + plotHeight + 16, "end",
                FormatMicrosTime(bins.back().Start + timeline.BinMicros()));
    Out += "</svg>\n";
  }

  // One histogram per function: the fine buckets gathered ten to a
  // decade, from the shortest time to the longest, the 50th, 90th and
  // 99th percentiles marked.
  void Histograms() {
    Out += "<h2>Elapsed time by function</h2>\n";
    Out += "<p class=\"note\">Calls by elapsed time, on a logarithmic scale of ten bars per "
           "decade; dashed lines: 50th, 90th and 99th percentile.</p>\n";
    for (const auto &[function, group] : Stats.ByFunction()) {
      Out += "<h3>" + Html(function) + "</h3>\n";
      if (group.Latency.Count() == 0) {
        Out += "<p class=\"note\">No call with a known elapsed time.</p>\n";
        continue;
      }
      Histogram(function, group.Latency);
    }
  }

  // The display bar of a time: 10 per decade from 1 us (bar 0), times under
  // 1 us in bar -1.
  static int DisplayBar(double micros) {
    return micros < 1 ? -1 : static_cast<int>(floor(10 * log10(micros)));
  }
  static double DisplayLow(int bar) { return bar < 0 ? 0 : pow(10, bar / 10.0); }
  static double DisplayHigh(int bar) { return bar < 0 ? 1 : pow(10, (bar + 1) / 10.0); }

  // Where a time falls on the histogram's axis, in bars from the first.
  static double AxisPosition(double micros, int first) {
    if (micros < 1) {
      return -1 - first + micros;
    }
    return 10 * log10(micros) - first;
  }

  void Histogram(const std::string &function, const LatencyHistogram &latency) {
    // Whole decades, so that a few close times do not fill the chart.
    int first = DisplayBar(static_cast<double>(latency.Min()));
    int last = DisplayBar(static_cast<double>(latency.Max()));
    first = first < 0 ? first : first - first % 10;
    last = last < 0 ? 9 : last - last % 10 + 9;
    std::vector<uint64_t> bars(last - first + 1, 0);
    for (int bucket = 0; bucket < LatencyHistogram::kBuckets; bucket++) {
      uint64_t count = latency.BucketCount(bucket);
      if (count == 0) {
        continue;
      }
      // A fine bucket goes to the bar that holds its middle, kept within
      // the bars of the exact minimum and maximum.
      double low = LatencyHistogram::BucketLow(bucket);
      double high = LatencyHistogram::BucketHigh(bucket);
      double middle = bucket == 0   ? 0
                      : isinf(high) ? static_cast<double>(latency.Max())
                                    : sqrt(low * high);
      int bar = std::clamp(DisplayBar(middle), first, last);
      bars[bar - first] += count;
    }
    uint64_t most = *std::max_element(bars.begin(), bars.end());

    const int width = 720;
    const int height = 194;
    const int left = 80;
    const int right = 10;
    const int upper = 28;
    const int lower = 36;
    const double plotWidth = width - left - right;
    const double plotHeight = height - upper - lower;
    const double barWidth = plotWidth / static_cast<double>(bars.size());

    Out += Svg(width, height, "elapsed times of " + function);
    for (size_t i = 0; i < bars.size(); i++) {
      if (bars[i] == 0) {
        continue;
      }
      int bar = first + static_cast<int>(i);
      double x = left + barWidth * static_cast<double>(i);
      double h =
          std::max(1.0, plotHeight * static_cast<double>(bars[i]) / static_cast<double>(most));
      std::string tip = Duration(DisplayLow(bar)) + " to " + Duration(DisplayHigh(bar)) + ": " +
                        std::to_string(bars[i]) + " calls";
      Out += Rect("bar", x + 0.5, upper + plotHeight - h, std::max(barWidth - 1, 0.5), h, tip);
    }
    Axes(left, upper, plotWidth, plotHeight);
    // Under the axis: the two ends, and the decades not too close to them.
    for (int bar = first; bar <= last + 1; bar++) {
      double x = left + barWidth * (bar - first);
      bool end = bar == first || bar == last + 1;
      if (!end && (bar % 10 != 0 || x - left < 40 || left + plotWidth - x < 40)) {
        continue;
      }
      const char *anchor = bar == first ? "start" : bar == last + 1 ? "end" : "middle";
      Out += Line("axis", x, upper + plotHeight, x, upper + plotHeight + 4);
      Out += Text(x, upper + plotHeight + 16, anchor, Duration(DisplayLow(bar)));
    }
    Out += Text(left, upper + plotHeight + 30, "start",
                "min " + Duration(static_cast<double>(latency.Min())));
    Out += Text(left + plotWidth, upper + plotHeight + 30, "end",
                "max " + Duration(static_cast<double>(latency.Max())) + ", " +
                    std::to_string(latency.Count()) + " calls");
    Out += Text(left - 4, upper + 10, "end", std::to_string(most));
    Out += Text(left - 4, upper + plotHeight, "end", "0");
    const struct {
      double P;
      const char *Class;
      const char *Label;
    } kMarks[] = {{50, "p50", "p50"}, {90, "p90", "p90"}, {99, "p99", "p99"}};
    std::string legend;
    for (const auto &mark : kMarks) {
      double value = static_cast<double>(latency.Percentile(mark.P));
      legend += std::string(legend.empty() ? "" : ", ") + mark.Label + " " + Duration(value);
      double x = left + barWidth * std::clamp(AxisPosition(value, first), 0.0,
                                              static_cast<double>(bars.size()));
      Out += Line(std::string("mark ") + mark.Class, x, upper, x, upper + plotHeight,
                  std::string(mark.Label) + " " + Duration(value));
    }
    Out += Text(left + plotWidth, 12, "end", legend);
    Out += "</svg>\n";
  }

  static std::string Svg(int width, int height, const std::string &label) {
    return "<svg width=\"" + std::to_string(width) + "\" height=\"" + std::to_string(height) +
           "\" viewBox=\"0 0 " + std::to_string(width) + " " + std::to_string(height) +
           "\" role=\"img\" aria-label=\"" + Html(label) + "\">\n";
  }

  static std::string Rect(const char *cls, double x, double y, double w, double h,
                          const std::string &tip) {
    return std::string("<rect class=\"") + cls + "\" x=\"" + Format("%.2f", x) + "\" y=\"" +
           Format("%.2f", y) + "\" width=\"" + Format("%.2f", w) + "\" height=\"" +
           Format("%.2f", h) + "\"><title>" + Html(tip) + "</title></rect>\n";
  }

  static std::string Line(const std::string &cls, double x1, double y1, double x2, double y2,
                          const std::string &tip = std::string()) {
    std::string line = "<line class=\"" + cls + "\" x1=\"" + Format("%.2f", x1) + "\" y1=\"" +
                       Format("%.2f", y1) + "\" x2=\"" + Format("%.2f", x2) + "\" y2=\"" +
                       Format("%.2f", y2) + "\"";
    if (tip.empty()) {
      return line + "/>\n";
    }
    return line + "><title>" + Html(tip) + "</title></line>\n";
  }

  static std::string Text(double x, double y, const char *anchor, const std::string &text) {
    return "<text x=\"" + Format("%.2f", x) + "\" y=\"" + Format("%.2f", y) + "\" text-anchor=\"" +
           anchor + "\">" + Html(text) + "</text>\n";
  }

  void Axes(double left, double upper, double plotWidth, double plotHeight) {
    Out += Line("axis", left, upper, left, upper + plotHeight);
    Out += Line("axis", left, upper + plotHeight, left + plotWidth, upper + plotHeight);
  }

  const TraceStats &Stats;
  std::string Out;
};

std::string RenderHtmlReport(const TraceStats &stats) {
  return HtmlReport(stats).Render();
}

} // namespace

CallWriter *NewHtmlReportWriter(FILE *out) {
  return new StatsWriter(out, RenderHtmlReport);
}

} // namespace wzreform
