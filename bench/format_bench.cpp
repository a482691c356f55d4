// Formatting speed of the field primitives, dumps and the fixed records of
// a call, in bytes of trace text per second, next to the speed of writing
// the same number of bytes to a file with plain write() calls.
// Run: build/bin/wz_format_bench [seconds]
//      build/bin/wz_format_bench --calls N ROW   (ROW 1 to 16, for counting
//      instructions: N calls of one row, nothing timed)
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "config/parameters.h"
#include "exit/call_records.h"
#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "format/message_content.h"
#include "format/structures.h"
#include "output/record_writers.h"
#include "output/trace_file.h"

namespace {

double Now() {
  struct timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

struct Bench {
  const char *Name;
  void (*Run)(ExitControlBlock *cb);
  int32_t Ccsid = 819;    // code page of the dump's character column
  uint8_t Characters = 1; // ShowHexCharImage
  int32_t DataBytes = 0;  // message data a call shows, for the MB/s of data
};

unsigned char gData[4096];

void HexDump4K(ExitControlBlock *cb) {
  PutHexData(cb, "Buffer", gData, sizeof gData, 0);
}
void HexSingleLine(ExitControlBlock *cb) {
  ShowParsedHexValueSingleLine(cb, "MsgId", gData, 24, 0, 1, 1);
}
void FieldLines(ExitControlBlock *cb) {
  for (int32_t i = 0; i < 16; i++) {
    ShowFieldValueZklong(cb, "Priority", i * 1000, 1);
  }
}
void StringFields(ExitControlBlock *cb) {
  ShowFieldValueStringFixed(cb, "ReplyToQ", "APP.REPLY.QUEUE                                 ", 48);
}

// The fixed records of every traced call: the header before and after it,
// and the one line of summary-only mode (a put with its descriptor).
CallCounterRecord gFirst, gSecond;
ZKMD gMd = ZKMD_DEFAULT;

void HeaderRecords(ExitControlBlock *cb) {
  PutHeaderRecord(cb, ZKXF_PUT, ZKXR_BEFORE, 0, 0, nullptr, nullptr);
  PutHeaderRecord(cb, ZKXF_PUT, ZKXR_AFTER, 0, 0, &gFirst, &gSecond);
}
void SummaryLines(ExitControlBlock *cb) {
  cb->Settings.WriteAfterEachApi = 0; // collected in the buffer, as the headers are
  cb->Call.CurrentFunction = ZKXF_PUT;
  strcpy(cb->Call.CurrentQueueName, "APP.REQUEST.QUEUE");
  PutSimpleRecord(cb, 0, 0, &gFirst, &gSecond, &gMd, 100);
}

// Whole structures field by field, every field set: a message descriptor of
// version 2 as a put passes it, put options of version 3 and get options of
// version 4 after a get.
ZKMD gMd2 = ZKMD_DEFAULT;
ZKPMO gPmo3 = ZKPMO_DEFAULT;
ZKGMO gGmo4 = ZKGMO_DEFAULT;

void FillStructures() {
  gMd2.Version = 2;
  gMd2.Report = 0x07000000 | 0x700 | 1;
  gMd2.Feedback = 275;
  memcpy(gMd2.Format, "ZKSTR   ", 8);
  gMd2.Persistence = 1;
  memcpy(gMd2.MsgId, gData + 100, sizeof gMd2.MsgId);
  memcpy(gMd2.CorrelId, gData + 200, sizeof gMd2.CorrelId);
  memcpy(gMd2.ReplyToQ, "APP.REPLY.QUEUE", 15);
  memcpy(gMd2.UserIdentifier, "appuser", 7);
  memcpy(gMd2.AccountingToken, gData + 300, sizeof gMd2.AccountingToken);
  memcpy(gMd2.PutApplName, "orders", 6);
  memcpy(gMd2.PutDate, "20261123", 8);
  memcpy(gMd2.PutTime, "12345678", 8);
  memcpy(gMd2.GroupId, gData + 400, sizeof gMd2.GroupId);
  gMd2.MsgFlags = 8 | 16;
  gPmo3.Version = 3;
  gPmo3.Options = 2 | 64 | 0x2000;
  memcpy(gPmo3.ResolvedQName, "APP.REQUEST.QUEUE", 17);
  gPmo3.PutMsgRecFields = 0x1F;
  gPmo3.Action = 1;
  gGmo4.Version = 4;
  gGmo4.Options = 1 | 2 | 0x4000 | 0x2000;
  gGmo4.WaitInterval = 5000;
  memcpy(gGmo4.ResolvedQName, "APP.REQUEST.QUEUE", 17);
  gGmo4.MatchOptions = 3;
  gGmo4.GroupStatus = 'G';
  gGmo4.SegmentStatus = ' ';
  gGmo4.Segmentation = 'A';
  memcpy(gGmo4.MsgToken, gData + 500, sizeof gGmo4.MsgToken);
  gGmo4.ReturnedLength = 1000;
  gGmo4.MsgHandle = 0x1234;
}

void MessageDescriptor2(ExitControlBlock *cb) {
  cb->Call.CurrentFunction = ZKXF_PUT;
  cb->Call.CurrentExitReason = ZKXR_BEFORE;
  ShowParsedZkmd(cb, &gMd2);
}
void PutOptions3(ExitControlBlock *cb) {
  ShowParsedZkpmo(cb, &gPmo3);
}
void GetOptions4(ExitControlBlock *cb) {
  ShowParsedZkgmo(cb, &gGmo4, ZKXR_AFTER, 0);
}

// 64 KB of message data: a rules-and-formatting header of version 2 whose
// folder is XML, and a command-format message of string and integer
// parameters, each parsed and each dumped for comparison.
constexpr int32_t kMessageSize = 65536;
unsigned char gRulesXml[kMessageSize];
unsigned char gCommand[kMessageSize];

void FillMessages() {
  ZKRFH2 rfh = ZKRFH2_DEFAULT;
  rfh.StrucLength = kMessageSize;
  memcpy(rfh.Format, "ZKSTR   ", 8);
  memcpy(gRulesXml, &rfh, sizeof rfh);
  int32_t folderLength = kMessageSize - (int32_t)sizeof rfh - 4;
  memcpy(gRulesXml + sizeof rfh, &folderLength, 4);
  char *xml = (char *)gRulesXml + sizeof rfh + 4;
  int32_t at = snprintf(xml, 32, "<orders>");
  for (int32_t i = 0; at < folderLength - 80; i++) {
    at += snprintf(xml + at, 80, "<order id=\"%d\"><item>widget</item><qty>%d</qty></order>", i,
                   i % 97);
  }
  at += snprintf(xml + at, 16, "</orders>");
  memset(xml + at, ' ', (size_t)(folderLength - at));

  ZKCFH header = ZKCFH_DEFAULT;
  header.Type = 2; // a response
  header.Command = 13;
  int32_t offset = (int32_t)sizeof header;
  int32_t count = 0;
  while (offset + 64 <= kMessageSize) {
    ZKCFST string = {4, 48, 2016, 1208, 28};
    memcpy(gCommand + offset, &string, sizeof string);
    memcpy(gCommand + offset + sizeof string, "APP.QUEUE.NUMBER.0000000001 ", 28);
    offset += 48;
    ZKCFIN integer = {3, 16, 3, count};
    memcpy(gCommand + offset, &integer, sizeof integer);
    offset += 16;
    count += 2;
  }
  header.ParameterCount = count;
  memcpy(gCommand, &header, sizeof header);
}

void RulesXmlParsed(ExitControlBlock *cb) {
  ShowParsedMsgData(cb, "ZKHRF2  ", ZKENC_NATIVE, gRulesXml, kMessageSize);
}
void RulesXmlDumped(ExitControlBlock *cb) {
  PutHexData(cb, "Buffer", gRulesXml, kMessageSize, 0);
}
void CommandParsed(ExitControlBlock *cb) {
  ShowParsedMsgData(cb, "ZKADMIN ", ZKENC_NATIVE, gCommand, kMessageSize);
}
void CommandDumped(ExitControlBlock *cb) {
  PutHexData(cb, "Buffer", gCommand, kMessageSize, 0);
}

const Bench kBenches[] = {
    {"hex dump, 4096 bytes", HexDump4K},
    {"single-line hex, 24 bytes", HexSingleLine},
    {"integer field lines", FieldLines},
    {"48-character string fields", StringFields},
    {"call header, before+after", HeaderRecords},
    {"summary-only line", SummaryLines},
    {"hex dump, no characters", HexDump4K, 819, 0},
    {"hex dump, UTF-8 (1208)", HexDump4K, 1208, 1},
    {"hex dump, double-byte (943)", HexDump4K, 943, 1},
    {"ZKMD version 2, parsed", MessageDescriptor2},
    {"ZKPMO version 3, parsed", PutOptions3},
    {"ZKGMO version 4, parsed", GetOptions4},
    {"64 KB rules header + XML", RulesXmlParsed, 819, 1, kMessageSize},
    {"the same, hex dump", RulesXmlDumped, 819, 1, kMessageSize},
    {"64 KB command format", CommandParsed, 819, 1, kMessageSize},
    {"the same, hex dump", CommandDumped, 819, 1, kMessageSize},
};

ExitControlBlock *MakeBlock(const char *path, int32_t bufferSize);

// A block for one row: its code page and character column.
ExitControlBlock *MakeBlockFor(const Bench &bench, const char *path, int32_t bufferSize) {
  ExitControlBlock *cb = MakeBlock(path, bufferSize);
  cb->Settings.ShowHexCharImage = bench.Characters;
  FillCodeRangeMap(&cb->CodeRange, bench.Ccsid);
  return cb;
}

ExitControlBlock *MakeBlock(const char *path, int32_t bufferSize) {
  auto *cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock) + (size_t)bufferSize);
  SetDefaultParameterSettings(&cb->Settings);
  cb->Settings.MaxFileSize = 2000000000;
  cb->WriteBufferSize = bufferSize;
  cb->File.FileDescriptor = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s", path);
  FillCodeRangeMap(&cb->CodeRange, 819);
  // The records' elapsed times count from here, as from a call's start.
  gettimeofday(&cb->Clock.ApiBeforeTime, nullptr);
  return cb;
}

// Writes `total` bytes in buffer-sized write() calls, as the trace file does.
double RawWriteSeconds(const char *path, int64_t total, int32_t chunk) {
  char *block = (char *)malloc((size_t)chunk);
  memset(block, 'x', (size_t)chunk);
  int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  double start = Now();
  for (int64_t done = 0; done < total; done += chunk) {
    if (write(fd, block, (size_t)chunk) < 0) {
      break;
    }
  }
  double seconds = Now() - start;
  close(fd);
  free(block);
  return seconds;
}

const int32_t kBuffer = 10000; // the default WriteBufferSize

int RunCounted(const char *path, long calls, long row) {
  const long rows = (long)(sizeof kBenches / sizeof kBenches[0]);
  if (calls < 1 || row < 1 || row > rows) {
    fprintf(stderr, "usage: wz_format_bench --calls N ROW (ROW 1 to %ld)\n", rows);
    return 2;
  }
  ExitControlBlock *cb = MakeBlockFor(kBenches[row - 1], path, kBuffer);
  for (long i = 0; i < calls; i++) {
    kBenches[row - 1].Run(cb);
  }
  FlushTraceDataInBuffer(cb);
  printf("%s: %ld calls, %lld bytes\n", kBenches[row - 1].Name, calls,
         (long long)cb->File.CurrentFileSize);
  close(cb->File.FileDescriptor);
  free(cb);
  return 0;
}

// Runs a row for `budget` seconds against the file; returns the seconds
// taken and gives the bytes written and the calls made.
double TimedRun(const Bench &bench, const char *path, double budget, int64_t *bytes,
                int64_t *calls) {
  ExitControlBlock *cb = MakeBlockFor(bench, path, kBuffer);
  *calls = 0;
  double start = Now(), elapsed = 0;
  do {
    for (int i = 0; i < 100; i++) {
      bench.Run(cb);
    }
    *calls += 100;
    elapsed = Now() - start;
  } while (elapsed < budget);
  FlushTraceDataInBuffer(cb);
  *bytes = cb->File.CurrentFileSize;
  close(cb->File.FileDescriptor);
  free(cb);
  return elapsed;
}

} // namespace

int main(int argc, char **argv) {
  for (size_t i = 0; i < sizeof gData; i++) {
    gData[i] = (unsigned char)(i * 7 + i / 16); // no two lines alike: no collapsing
  }
  memcpy(gMd.MsgId, gData, sizeof gMd.MsgId);
  FillStructures();
  FillMessages();
  char path[] = "/tmp/wz-format-bench-XXXXXX";
  int tmp = mkstemp(path);
  close(tmp);
  if (argc > 1 && strcmp(argv[1], "--calls") == 0) {
    int rc = RunCounted(path, argc > 2 ? atol(argv[2]) : 0, argc > 3 ? atol(argv[3]) : 0);
    unlink(path);
    return rc;
  }
  double budget = argc > 1 ? atof(argv[1]) : 1.0;
  printf("%-28s %14s %14s %14s %14s\n", "what", "MB/s formatted", "MB/s write()", "ns/call",
         "ns, /dev/null");
  for (const Bench &bench : kBenches) {
    int64_t bytes = 0, calls = 0, nullBytes = 0, nullCalls = 0;
    double elapsed = TimedRun(bench, path, budget, &bytes, &calls);
    double raw = RawWriteSeconds(path, bytes, kBuffer);
    // The same calls with the file on /dev/null: the formatting alone, the
    // write() calls costing almost nothing.
    double nullElapsed = TimedRun(bench, "/dev/null", budget, &nullBytes, &nullCalls);
    printf("%-28s %14.1f %14.1f %14.1f %14.1f\n", bench.Name, (double)bytes / elapsed / 1e6,
           (double)bytes / raw / 1e6, elapsed / (double)calls * 1e9,
           nullElapsed / (double)nullCalls * 1e9);
    if (bench.DataBytes > 0) {
      printf("%-28s %14.1f MB/s of message data\n", "",
             (double)bench.DataBytes * (double)calls / elapsed / 1e6);
    }
  }
  unlink(path);
  return 0;
}
