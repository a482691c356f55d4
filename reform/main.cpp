// wzreform: reads wz trace files and writes their calls as JSON Lines, CSV
// or one of the other formats (see docs/wzreform.md).
//
//   wzreform [OPTIONS] INPUT... [-o OUTPUT]
#include <errno.h>
#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "reform/filters.h"
#include "reform/reader.h"
#include "reform/writers.h"
#include "wz_version.h"

namespace {

using namespace wzreform;

constexpr int kUsageStatus = 64;

const char kUsage[] =
    "usage: wzreform [OPTIONS] INPUT... [-o OUTPUT]\n"
    "Reads wz trace files (open, closed, gzip- or zstd-compressed; a directory\n"
    "for all the trace files in it; - for standard input) and writes one record\n"
    "per call.\n"
    "\n"
    "  -o, --output FILE     write to FILE (default: standard output)\n"
    "  -f, --format NAME     jsonl (default), csv, trace-event, otlp, summary, html\n"
    "      --summary FILE    also write the summary of the calls to FILE\n"
    "      --report FILE     also write the HTML report to FILE\n"
    "  -q, --quiet           no information on standard error, only problems\n"
    "\n"
    "Selection (each kind given must match; a kind given twice: either):\n"
    "      --function NAME   the function (ZKPUT, xa_commit, ...; * and ? match)\n"
    "      --queue PATTERN   object or resolved name (* and ? match)\n"
    "      --reason R        reason (or transaction return value) by name or number\n"
    "      --since TIME      calls that started at TIME or later\n"
    "      --until TIME      calls that started at TIME or earlier\n"
    "                        TIME: \"YYYY/MM/DD hh:mm:ss\" or \"hh:mm:ss\" (any day)\n"
    "      --failed          failed calls only (CompCode 2, or a transaction\n"
    "                        return value below 0)\n"
    "\n"
    "      --version         print the version\n"
    "  -h, --help            print this help\n"
    "\n"
    "Exit status: 0 all read and written; 1 some input was cut off or too large\n"
    "(the rest written); 2 some input could not be read or is no trace; 3 the\n"
    "output could not be written; 64 wrong usage.\n";

enum LongOption {
  OPT_FUNCTION = 256,
  OPT_QUEUE,
  OPT_REASON,
  OPT_SINCE,
  OPT_UNTIL,
  OPT_FAILED,
  OPT_SUMMARY,
  OPT_REPORT,
  OPT_VERSION,
};

const struct option kOptions[] = {
    {"output", required_argument, nullptr, 'o'},
    {"format", required_argument, nullptr, 'f'},
    {"quiet", no_argument, nullptr, 'q'},
    {"help", no_argument, nullptr, 'h'},
    {"function", required_argument, nullptr, OPT_FUNCTION},
    {"queue", required_argument, nullptr, OPT_QUEUE},
    {"reason", required_argument, nullptr, OPT_REASON},
    {"since", required_argument, nullptr, OPT_SINCE},
    {"until", required_argument, nullptr, OPT_UNTIL},
    {"failed", no_argument, nullptr, OPT_FAILED},
    {"summary", required_argument, nullptr, OPT_SUMMARY},
    {"report", required_argument, nullptr, OPT_REPORT},
    {"version", no_argument, nullptr, OPT_VERSION},
    {nullptr, 0, nullptr, 0},
};

int UsageError(const std::string &text) {
  fprintf(stderr, "wzreform: %s\n", text.c_str());
  fprintf(stderr, "Try 'wzreform --help' for more information.\n");
  return kUsageStatus;
}

// The factory of a format by its name; nullptr for an unknown name.
using Factory = CallWriter *(*)(FILE *);
Factory FormatFactory(const std::string &name) {
  if (name == "jsonl" || name == "json") {
    return NewJsonlWriter;
  }
  if (name == "csv") {
    return NewCsvWriter;
  }
  if (name == "trace-event") {
    return NewTraceEventWriter;
  }
  if (name == "otlp") {
    return NewOtlpWriter;
  }
  if (name == "summary") {
    return NewSummaryWriter;
  }
  if (name == "html") {
    return NewHtmlReportWriter;
  }
  return nullptr;
}

// One output: a format written to a file.
struct Output {
  std::string Format;
  std::string Path; // "-": standard output
  FILE *File = nullptr;
  std::unique_ptr<CallWriter> Writer;
  bool Failed = false;
};

void WriteFailed(Output &output, int error) {
  if (!output.Failed) {
    fprintf(stderr, "wzreform: %s: %s\n",
            output.Path == "-" ? "standard output" : Printable(output.Path).c_str(),
            strerror(error != 0 ? error : EIO));
  }
  output.Failed = true;
}

} // namespace

int main(int argc, char **argv) {
  std::string outputPath = "-";
  std::string format = "jsonl";
  std::string summaryPath, reportPath;
  bool quiet = false;
  CallFilter filter;

  opterr = 0;
  int option;
  while ((option = getopt_long(argc, argv, ":o:f:qh", kOptions, nullptr)) != -1) {
    switch (option) {
    case 'o':
      outputPath = optarg;
      break;
    case 'f':
      format = optarg;
      break;
    case 'q':
      quiet = true;
      break;
    case 'h':
      fputs(kUsage, stdout);
      return 0;
    case OPT_VERSION:
      printf("wzreform %s\n", WZ_VERSION);
      return 0;
    case OPT_FUNCTION:
      filter.AddFunction(optarg);
      break;
    case OPT_QUEUE:
      filter.AddQueue(optarg);
      break;
    case OPT_REASON:
      if (!filter.SetReason(optarg)) {
        return UsageError("--reason needs a name or a number");
      }
      break;
    case OPT_SINCE:
      if (!filter.SetSince(optarg)) {
        return UsageError(std::string("--since: not a time: ") + Printable(optarg));
      }
      break;
    case OPT_UNTIL:
      if (!filter.SetUntil(optarg)) {
        return UsageError(std::string("--until: not a time: ") + Printable(optarg));
      }
      break;
    case OPT_FAILED:
      filter.SetFailed();
      break;
    case OPT_SUMMARY:
      summaryPath = optarg;
      break;
    case OPT_REPORT:
      reportPath = optarg;
      break;
    case ':':
      return UsageError(std::string("option ") + Printable(argv[optind - 1]) +
                        " needs a value");
    default:
      return UsageError(std::string("unknown option ") +
                        Printable(optopt != 0 ? std::string("-") + char(optopt)
                                              : std::string(argv[optind - 1])));
    }
  }
  if (optind >= argc) {
    return UsageError("no input: name trace files or directories, or - for standard input");
  }

  // The outputs: the main one, and the summary and report when asked for.
  std::vector<Output> outputs;
  outputs.push_back({format, outputPath});
  if (!summaryPath.empty()) {
    outputs.push_back({"summary", summaryPath});
  }
  if (!reportPath.empty()) {
    outputs.push_back({"html", reportPath});
  }
  for (const Output &output : outputs) {
    if (FormatFactory(output.Format) == nullptr) {
      return UsageError("unknown format " + Printable(output.Format) +
                        " (jsonl, csv, trace-event, otlp, summary, html)");
    }
  }
  int standardOutputs = 0;
  for (const Output &output : outputs) {
    standardOutputs += output.Path == "-";
  }
  if (standardOutputs > 1) {
    return UsageError("only one output can go to standard output");
  }

  ReaderOptions readerOptions;
  readerOptions.Quiet = quiet;
  int status = 0;
  std::vector<Output> *outs = &outputs;
  const CallFilter *selection = &filter;
  // Each call that matches goes to every output; a call that does not may
  // have calls inside that do, and they go out on their own.
  std::function<int(const Call &)> deliver = [&](const Call &call) -> int {
    if (!selection->Active() || selection->Matches(call)) {
      int result = 0;
      for (Output &output : *outs) {
        if (!output.Failed && output.Writer->Write(call) != 0) {
          WriteFailed(output, errno);
        }
        if (output.Failed) {
          result = -1;
        }
      }
      return result;
    }
    for (const Call &inner : call.Inside) {
      if (deliver(inner) != 0) {
        return -1;
      }
    }
    return 0;
  };
  Reader reader(readerOptions, deliver);
  for (int i = optind; i < argc; i++) {
    reader.Add(argv[i]);
  }

  // Open the outputs; an output file must not be one of the inputs.
  for (Output &output : outputs) {
    if (output.Path == "-") {
      output.File = stdout;
    } else {
      struct stat existing;
      if (stat(output.Path.c_str(), &existing) == 0 &&
          reader.IsInput(existing.st_dev, existing.st_ino)) {
        return UsageError("the output " + Printable(output.Path) + " is one of the inputs");
      }
      output.File = fopen(output.Path.c_str(), "we");
      if (output.File == nullptr) {
        fprintf(stderr, "wzreform: %s: %s\n", Printable(output.Path).c_str(), strerror(errno));
        return READ_OUTPUT;
      }
    }
    static char buffers[3][1 << 18];
    setvbuf(output.File, buffers[&output - &outputs[0]], _IOFBF, sizeof buffers[0]);
    output.Writer.reset(FormatFactory(output.Format)(output.File));
    if (!output.Writer) {
      fprintf(stderr, "wzreform: format %s is not available\n", output.Format.c_str());
      return READ_OUTPUT;
    }
    if (output.Writer->Begin() != 0) {
      WriteFailed(output, errno);
    }
  }

  status = reader.Run();
  for (Output &output : outputs) {
    if (!output.Failed && output.Writer->End() != 0) {
      WriteFailed(output, errno);
    }
    output.Writer.reset();
    if (output.File != stdout) {
      if (fclose(output.File) != 0 && !output.Failed) {
        WriteFailed(output, errno);
      }
    } else if (fflush(stdout) != 0 && !output.Failed) {
      WriteFailed(output, errno);
    }
    if (output.Failed) {
      status = READ_OUTPUT;
    }
  }
  if (!quiet) {
    fprintf(stderr, "wzreform: %llu call(s) from %llu file(s), %llu bytes read\n",
            static_cast<unsigned long long>(reader.Calls()),
            static_cast<unsigned long long>(reader.Files()),
            static_cast<unsigned long long>(reader.Bytes()));
  }
  return status;
}
