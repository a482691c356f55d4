#include "reform/reader.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <utility>

#include "reform/line_source.h"

namespace wzreform {

namespace {

const unsigned char kGzipMagic[] = {0x1F, 0x8B};
const unsigned char kZstdMagic[] = {0x28, 0xB5, 0x2F, 0xFD};

} // namespace

std::string Printable(const std::string &text) {
  std::string out = text;
  for (char &c : out) {
    unsigned char u = static_cast<unsigned char>(c);
    if (u < 0x20 || u >= 0x7F) {
      c = '?';
    }
  }
  return out;
}

Reader::Reader(ReaderOptions options, TraceParser::Sink sink)
    : Options(options), Sink(std::move(sink)) {}

void Reader::Report(const std::string &path, const std::string &text, int status) {
  fprintf(stderr, "wzreform: %s: %s\n", Printable(path).c_str(), text.c_str());
  Worst = std::max(Worst, status);
}

bool Reader::IsInput(dev_t device, ino_t inode) const {
  return Known.count({device, inode}) != 0;
}

void Reader::AddFile(const std::string &path, const struct stat &status, bool fromDirectory) {
  if (IsInput(status.st_dev, status.st_ino)) {
    return; // named twice, or found again in a directory
  }
  Input input;
  input.Path = path;
  input.Device = status.st_dev;
  input.Inode = status.st_ino;
  input.Order = Inputs.size();
  size_t slash = path.rfind('/');
  std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  input.Named = ParseTraceFileName(base, &input.Name);
  if (fromDirectory && !input.Named) {
    return;
  }
  Known.insert({status.st_dev, status.st_ino});
  Inputs.push_back(std::move(input));
}

void Reader::AddDirectory(const std::string &path) {
  DIR *directory = opendir(path.c_str());
  if (directory == nullptr) {
    Report(path, strerror(errno), READ_FAILED);
    return;
  }
  std::vector<std::string> names;
  errno = 0;
  while (struct dirent *entry = readdir(directory)) {
    TraceFileName name;
    if (ParseTraceFileName(entry->d_name, &name)) {
      names.emplace_back(entry->d_name);
    }
  }
  int error = errno;
  closedir(directory);
  if (error != 0) {
    Report(path, strerror(error), READ_FAILED);
  }
  std::sort(names.begin(), names.end());
  std::string prefix = path;
  if (prefix.empty() || prefix.back() != '/') {
    prefix += '/';
  }
  size_t found = 0;
  for (const std::string &name : names) {
    std::string full = prefix + name;
    struct stat status;
    // Only regular files, and not through links.
    if (lstat(full.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
      continue;
    }
    AddFile(full, status, true);
    found++;
  }
  if (found == 0) {
    Report(path, "no wz trace files in this directory", READ_FAILED);
  }
}

void Reader::Add(const std::string &path) {
  if (path == "-") {
    Input input;
    input.Path = "-";
    input.Stdin = true;
    input.Order = Inputs.size();
    Inputs.push_back(std::move(input));
    return;
  }
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    Report(path, strerror(errno), READ_FAILED);
    return;
  }
  if (S_ISDIR(status.st_mode)) {
    AddDirectory(path);
    return;
  }
  if (!S_ISREG(status.st_mode)) {
    Report(path, "not a regular file", READ_FAILED);
    return;
  }
  AddFile(path, status, false);
}

bool Reader::ReadFile(const Input &input, TraceParser &parser, std::deque<TraceSource> &sources) {
  int fd = 0;
  if (!input.Stdin) {
    fd = open(input.Path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
      Report(input.Path, strerror(errno), READ_FAILED);
      return true;
    }
    struct stat status;
    if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
      Report(input.Path, "not a regular file", READ_FAILED);
      close(fd);
      return true;
    }
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  } else {
    fd = dup(0);
    if (fd < 0) {
      Report("-", strerror(errno), READ_FAILED);
      return true;
    }
  }

  // Compressed? The first bytes tell (standard input is read as text).
  unsigned char magic[4] = {};
  ssize_t got = input.Stdin ? 0 : pread(fd, magic, sizeof magic, 0);
  const char *program = nullptr;
  const char *args[3] = {nullptr, nullptr, nullptr};
  if (got >= 2 && memcmp(magic, kGzipMagic, sizeof kGzipMagic) == 0) {
    program = "gzip";
    args[0] = "-dc";
  } else if (got >= 4 && memcmp(magic, kZstdMagic, sizeof kZstdMagic) == 0) {
    program = "zstd";
    args[0] = "-dcq";
  }
  LineSource source(Options.MaxLine);
  std::string label;
  if (program != nullptr) {
    pid_t child = 0;
    int pipeFd = SpawnFilter(program, args, fd, &child);
    int error = errno;
    close(fd);
    label = std::string(program) + " " + args[0];
    if (pipeFd < 0) {
      Report(input.Path, "cannot run " + label + ": " + strerror(error), READ_FAILED);
      return true;
    }
    source.Open(pipeFd, child, label.c_str());
  } else {
    source.Open(fd);
  }

  sources.emplace_back();
  TraceSource &trace = sources.back();
  trace.Path = input.Path;
  if (input.Named) {
    trace.QMgr = input.Name.QMgr;
    trace.Program = input.Name.Program;
    trace.ProcessId = input.Name.ProcessId;
    trace.ThreadId = input.Name.ThreadId;
  }
  parser.BeginFile(&trace);
  uint64_t before = parser.CallsWritten();
  uint64_t leftOut = parser.LinesLeftOut();
  bool outputFailed = false;
  bool notTrace = false;
  std::string_view line;
  while (source.Next(&line)) {
    if (parser.Line(line) != 0) {
      outputFailed = true;
      break;
    }
    if (parser.Recognised() < 0) {
      notTrace = true;
      break;
    }
  }
  bool stoppedEarly = outputFailed || notTrace;
  uint64_t lines = source.LineNumber();
  bool unended = source.LastLineUnended();
  uint64_t cutLines = source.CutLines();
  int closed = source.Close();
  BytesRead += source.Bytes();
  FilesRead++;
  if (!stoppedEarly && parser.Recognised() == 0 && lines > 0) {
    notTrace = true;
  }
  if (notTrace) {
    Report(input.Path, "not a wz trace file", READ_FAILED);
  } else if (closed != 0 && !stoppedEarly) {
    Report(input.Path, source.ErrorText(), READ_FAILED);
  }
  bool cut = false;
  if (parser.EndFile(unended, &cut) != 0) {
    outputFailed = true;
  }
  if (!notTrace) {
    if (cut && closed == 0) {
      uint64_t whole = unended ? lines - 1 : lines;
      Report(input.Path, "the last record is cut off after line " + std::to_string(whole),
             READ_DAMAGED);
    }
    if (cutLines > 0) {
      Report(input.Path,
             std::to_string(cutLines) + " line(s) longer than " +
                 std::to_string(Options.MaxLine) + " bytes were cut there",
             READ_DAMAGED);
    }
    if (parser.LinesLeftOut() > leftOut) {
      Report(input.Path,
             std::to_string(parser.LinesLeftOut() - leftOut) +
                 " line(s) of calls too large to hold were left out",
             READ_DAMAGED);
    }
  }
  CallsRead += parser.CallsWritten() - before;
  return !outputFailed;
}

int Reader::Run() {
  // Group the files by connection: named files by the name up to the
  // sequence number (in their directory), any other file on its own.
  std::map<std::string, std::vector<size_t>> byName;
  std::vector<std::vector<size_t>> groups;
  for (size_t i = 0; i < Inputs.size(); i++) {
    const Input &input = Inputs[i];
    if (!input.Named) {
      groups.push_back({i});
      continue;
    }
    size_t slash = input.Path.rfind('/');
    std::string directory = slash == std::string::npos ? "" : input.Path.substr(0, slash + 1);
    byName[directory + '\0' + input.Name.Connection].push_back(i);
  }
  for (auto &entry : byName) {
    std::vector<size_t> &files = entry.second;
    std::stable_sort(files.begin(), files.end(), [this](size_t a, size_t b) {
      return Inputs[a].Name.Sequence < Inputs[b].Name.Sequence;
    });
    groups.push_back(std::move(files));
  }
  // Connections in a stable order: queue manager, program, mode, process,
  // thread; files that are not named as traces where they were given.
  std::stable_sort(groups.begin(), groups.end(),
                   [this](const std::vector<size_t> &a, const std::vector<size_t> &b) {
                     const Input &x = Inputs[a[0]];
                     const Input &y = Inputs[b[0]];
                     if (x.Named != y.Named) {
                       return x.Named;
                     }
                     if (!x.Named) {
                       return x.Order < y.Order;
                     }
                     auto key = [](const Input &i) {
                       return std::tie(i.Name.QMgr, i.Name.Program, i.Name.Mode, i.Name.ProcessId,
                                       i.Name.ThreadId);
                     };
                     return key(x) < key(y);
                   });

  TraceParser parser(Sink, Options.Limits);
  for (const std::vector<size_t> &group : groups) {
    std::deque<TraceSource> sources;
    bool ok = true;
    for (size_t index : group) {
      if (!ReadFile(Inputs[index], parser, sources)) {
        ok = false;
        break;
      }
    }
    uint64_t before = parser.CallsWritten();
    if (!ok || parser.EndConnection() != 0) {
      Worst = std::max(Worst, static_cast<int>(READ_OUTPUT));
      return Worst;
    }
    CallsRead += parser.CallsWritten() - before;
  }
  return Worst;
}

} // namespace wzreform
