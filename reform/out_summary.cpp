// --summary: plain-text tables of the calls per function and per object
// name (results by class, elapsed-time percentiles, calls per second) and
// the slowest calls of each function with their sequence numbers. The
// statistics are kept as the calls come (summary.h); the tables are
// written at the end.
#include <stdio.h>

#include <algorithm>
#include <string>
#include <vector>

#include "reform/summary.h"
#include "reform/writers.h"

namespace wzreform {

namespace {

// Trace text in a table: control characters would break its lines.
std::string Printable(const std::string &text) {
  std::string out = text;
  for (char &c : out) {
    unsigned char byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      c = '.';
    }
  }
  return out;
}

// A table of text cells, two blanks between columns; `align` has an 'L'
// for each column aligned left (the names), the others are aligned right
// (the numbers).
class TextTable {
public:
  TextTable(std::vector<std::string> header, std::string align) : Align(std::move(align)) {
    Rows.push_back(std::move(header));
  }
  void Add(std::vector<std::string> row) { Rows.push_back(std::move(row)); }

  std::string Render(const std::string &indent) const {
    std::vector<size_t> widths;
    for (const auto &row : Rows) {
      if (widths.size() < row.size()) {
        widths.resize(row.size(), 0);
      }
      for (size_t i = 0; i < row.size(); i++) {
        widths[i] = std::max(widths[i], row[i].size());
      }
    }
    std::string out;
    for (const auto &row : Rows) {
      std::string line = indent;
      for (size_t i = 0; i < row.size(); i++) {
        if (i != 0) {
          line += "  ";
        }
        size_t pad = widths[i] - row[i].size();
        if (i < Align.size() && Align[i] == 'L') {
          line += row[i];
          if (i + 1 < row.size()) {
            line.append(pad, ' ');
          }
        } else {
          line.append(pad, ' ');
          line += row[i];
        }
      }
      out += line;
      out += '\n';
    }
    return out;
  }

private:
  std::string Align;
  std::vector<std::vector<std::string>> Rows;
};

std::vector<std::string> Header(std::vector<std::string> names) {
  for (const std::string &column : GroupColumns()) {
    names.push_back(column);
  }
  return names;
}

std::vector<std::string> Row(std::vector<std::string> names, const GroupStats &group) {
  for (std::string &cell : GroupCells(group)) {
    names.push_back(std::move(cell));
  }
  return names;
}

std::string RenderSummary(const TraceStats &stats) {
  const GroupStats &all = stats.Overall();
  std::string out;
  char line[256];
  snprintf(line, sizeof line, "Calls: %llu from %zu trace file(s), %s to %s\n",
           static_cast<unsigned long long>(all.Calls), stats.Traces().size(),
           FormatMicrosTime(all.First).c_str(), FormatMicrosTime(all.Last).c_str());
  out += line;
  for (const std::string &trace : stats.Traces()) {
    out += "  " + Printable(trace) + "\n";
  }

  out += "\nCalls by function\n";
  TextTable functions(Header({"Function"}), "L");
  for (const auto &[function, group] : stats.ByFunction()) {
    functions.Add(Row({Printable(function)}, group));
  }
  functions.Add(Row({"(all)"}, all));
  out += functions.Render("  ");

  out += "\nCalls by object name\n";
  if (stats.ByObject().empty()) {
    out += "  (no call with an object name)\n";
  } else {
    TextTable objects(Header({"Object name", "Function"}), "LL");
    for (const auto &[key, group] : stats.ByObject()) {
      objects.Add(Row({Printable(key.first), Printable(key.second)}, group));
    }
    out += objects.Render("  ");
    if (stats.ObjectsCut()) {
      out += "  Past " + std::to_string(TraceStats::kMaxObjects) +
             " object names, the calls on further names are counted under " +
             TraceStats::kOtherObjects + ".\n";
    }
  }

  out += "\nSlowest calls by function\n";
  bool any = false;
  for (const auto &[function, group] : stats.ByFunction()) {
    if (group.Slowest.empty()) {
      continue;
    }
    any = true;
    out += "  " + Printable(function) + "\n";
    TextTable slowest({"Elapsed us", "Seq #", "Start", "Object name", "Thread", "Trace"}, "RRLLRL");
    for (const SlowCall &call : group.Slowest) {
      slowest.Add({std::to_string(call.Micros),
                   call.Sequence != 0 ? std::to_string(call.Sequence) : "-",
                   FormatMicrosTime(call.Start), Printable(call.ObjectName),
                   std::to_string(call.ThreadId), Printable(call.Trace)});
    }
    out += slowest.Render("    ");
  }
  if (!any) {
    out += "  (no call with a known elapsed time)\n";
  }
  return out;
}

} // namespace

CallWriter *NewSummaryWriter(FILE *out) {
  return new StatsWriter(out, RenderSummary);
}

} // namespace wzreform
