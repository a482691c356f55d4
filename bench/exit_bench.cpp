// Cost of the exit per ZKI call, measured by calling its put and get
// functions directly the way the queue manager does, in the settings that
// matter: tracing off, queue not selected, summary only, full records
// collected in the buffer, every setting at its default (an empty wz.def),
// and at their defaults again with 1 KB of XML as the message, which the
// parsed view shows tag by tag.
// Also counts heap allocations made inside the loop: the exit must make none
// per call. Run: build/bin/wz_exit_bench [calls [a|b|c|d|e|f]]
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <string>

#include "handlers/handlers.h"
#include "zk/zk.h"

// Allocation counting: the exit's objects are linked with --wrap for these.
static long gAllocations = 0;
extern "C" {
void *__real_malloc(size_t);
void *__real_calloc(size_t, size_t);
void *__real_realloc(void *, size_t);
FILE *__real_fopen(const char *, const char *);
void *__wrap_malloc(size_t n) {
  gAllocations++;
  return __real_malloc(n);
}
void *__wrap_calloc(size_t n, size_t m) {
  gAllocations++;
  return __real_calloc(n, m);
}
void *__wrap_realloc(void *p, size_t n) {
  gAllocations++;
  return __real_realloc(p, n);
}
FILE *__wrap_fopen(const char *path, const char *mode) {
  gAllocations++; // a stream allocates its buffer
  return __real_fopen(path, mode);
}

void ZKXEP(ZKHCONFIG, ZKLONG, ZKLONG, PZKFUNC, PZKXEPO, PZKLONG pCompCode, PZKLONG pReason) {
  *pCompCode = 0;
  *pReason = 0;
}
}

namespace {

double Now() {
  struct timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

void Fixed(char *field, size_t width, const char *value) {
  memset(field, ' ', width);
  memcpy(field, value, strlen(value) < width ? strlen(value) : width);
}

struct Setting {
  const char *Name;
  const char *Parameters;
  bool Xml; // the message is 1 KB of XML in format ZKSTR, not a short text
};

const Setting kSettings[] = {
    {"(a) ExecFlag=no", "ExecFlag=no\nCreateEmptyFile=no\n", false},
    {"(b) queue not selected", "TargetQueue=OTHER.Q\n", false},
    {"(c) ShowSummaryOnly=yes", "ShowSummaryOnly=yes\nWriteAfterEachApi=no\n", false},
    {"(d) whole records", "WriteAfterEachApi=no\n", false},
    {"(e) every setting default", "", false},
    {"(f) defaults, 1 KB XML", "", true},
};

// One connection with an open queue, driven through put and get pairs.
struct Connection {
  ZKAXP axp;
  ZKAXC axc;
  ZKLONG compCode = 0, reason = 0;
  ZKHCONN hconn = 1;
  ZKHOBJ hobj = 101;
  ZKMD md = ZKMD_DEFAULT;
  ZKPMO pmo = ZKPMO_DEFAULT;
  ZKGMO gmo = ZKGMO_DEFAULT;
  ZKOD od = ZKOD_DEFAULT;
  char buffer[1100] = "benchmark message";
  ZKLONG length = 100, dataLength = 100;

  // About 1 KB of orders as XML, described as a string.
  void UseXml() {
    static const char order[] = "<order id='7'><item>widget</item><qty>3</qty></order>";
    size_t n = 0;
    memcpy(buffer, "<orders>", 8);
    n += 8;
    while (n + sizeof order - 1 + 9 <= 1024) {
      memcpy(buffer + n, order, sizeof order - 1);
      n += sizeof order - 1;
    }
    memcpy(buffer + n, "</orders>", 9);
    n += 9;
    length = dataLength = (ZKLONG)n;
    memcpy(md.Format, ZKFMT_STRING, sizeof md.Format);
  }

  explicit Connection(const std::string &dir) {
    memset(&axp, 0, sizeof axp);
    memset(&axc, 0, sizeof axc);
    memcpy(axp.StrucId, "AXP ", 4);
    axp.Version = 2;
    Fixed(axp.ExitData, 32, dir.c_str());
    Fixed(axp.QMgrName, 48, "ZKQM1");
    Fixed(axp.ExitInfoName, 48, "wz");
    memcpy(axc.StrucId, "AXC ", 4);
    axc.Version = 2;
    Fixed(axc.ApplName, 28, "/opt/app/bin/bench");
    Fixed(axc.UserId, 12, "bench");
    axp.ExitReason = ZKXR_CONNECTION;
    axp.Function = ZKXF_INIT;
    wzEntry(&axp, &axc, &compCode, &reason);
    Fixed(od.ObjectName, 48, "APP.Q");
    PZKOD pod = &od;
    PZKHOBJ phobj = &hobj;
    ZKLONG options = 16;
    Call(ZKXF_OPEN, ZKXR_BEFORE);
    OpenBefore(&axp, &axc, &hconn, &pod, &options, &phobj, &compCode, &reason);
    Call(ZKXF_OPEN, ZKXR_AFTER);
    OpenAfter(&axp, &axc, &hconn, &pod, &options, &phobj, &compCode, &reason);
  }
  void Call(ZKLONG function, ZKLONG exitReason) {
    axp.Function = function;
    axp.ExitReason = exitReason;
  }
  void PutAndGet() {
    PZKMD pmd = &md;
    PZKPMO ppmo = &pmo;
    PZKGMO pgmo = &gmo;
    PZKVOID pbuffer = buffer;
    PZKLONG pdata = &dataLength;
    Call(ZKXF_PUT, ZKXR_BEFORE);
    PutBefore(&axp, &axc, &hconn, &hobj, &pmd, &ppmo, &length, &pbuffer, &compCode, &reason);
    Call(ZKXF_PUT, ZKXR_AFTER);
    PutAfter(&axp, &axc, &hconn, &hobj, &pmd, &ppmo, &length, &pbuffer, &compCode, &reason);
    Call(ZKXF_GET, ZKXR_BEFORE);
    GetBefore(&axp, &axc, &hconn, &hobj, &pmd, &pgmo, &length, &pbuffer, &pdata, &compCode,
              &reason);
    Call(ZKXF_GET, ZKXR_AFTER);
    GetAfter(&axp, &axc, &hconn, &hobj, &pmd, &pgmo, &length, &pbuffer, &pdata, &compCode, &reason);
  }
  ~Connection() {
    Call(ZKXF_TERM, ZKXR_CONNECTION);
    Terminate(&axp, &axc, &compCode, &reason);
  }
};

} // namespace

int main(int argc, char **argv) {
  long calls = argc > 1 ? atol(argv[1]) : 200000;
  const char *only = argc > 2 ? argv[2] : nullptr; // run only the setting "a" to "e"
  printf("%-26s %12s %18s\n", "setting", "ns per call", "allocations/call");
  int failures = 0;
  for (const Setting &setting : kSettings) {
    if (only != nullptr && setting.Name[1] != only[0]) {
      continue;
    }
    char dir[] = "/tmp/wz-exit-bench-XXXXXX";
    if (mkdtemp(dir) == nullptr) {
      return 2;
    }
    std::string path = std::string(dir) + "/";
    FILE *def = fopen((path + "wz.def").c_str(), "w");
    fputs(setting.Parameters, def);
    fclose(def);
    double seconds;
    long allocations;
    {
      Connection c(path);
      if (setting.Xml) {
        c.UseXml();
      }
      c.PutAndGet(); // first calls open files and warm caches
      long before = gAllocations;
      double start = Now();
      for (long i = 0; i < calls / 2; i++) {
        c.PutAndGet();
      }
      seconds = Now() - start;
      allocations = gAllocations - before;
    }
    printf("%-26s %12.1f %18.4f\n", setting.Name, seconds / (double)calls * 1e9,
           (double)allocations / (double)calls);
    failures += allocations != 0;
    std::string clean = "rm -rf " + path;
    if (system(clean.c_str()) != 0) {
      perror(clean.c_str());
    }
  }
  return failures == 0 ? 0 : 1;
}
