/* A small API exit for testing the stand-in queue manager.
 *
 * Its entry function TestEntry links a chain area of its own into the
 * connection's chain and registers, in this order: INIT (with the exit
 * property "TestExit"), TERM, BEFORE and AFTER ZKCONN, BEFORE and AFTER
 * ZKDISC. It marks its exit user area at entry; TERM reports whether the
 * mark came back, takes the area out of the chain again and frees it.
 *
 * Words in the exit data (blank-separated) change what it does:
 *   fail   answer FAILED (with suppress-chain) after registering
 *   stop   stop registering at the first failed registration and answer
 *          FAILED, as a careful exit does
 *   dereg  deregister the BEFORE ZKDISC function again right away
 *   noterm register no TERM function, and link in no chain area either:
 *          only TERM could free it
 *   badhc  first call ZKXEP with a configuration handle it made up
 *   bad    also register AFTER for the data-conversion point, which
 *          has no AFTER call
 *   dump   write what it received in ZKAXP and ZKAXC to standard error
 * Every call of the entry and TERM functions is reported on standard error,
 * prefixed "testexit <name>:". The ZKCONN and ZKDISC functions observe
 * silently. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "exit_parameters.h"
#include "zk/zkxfunc.h"

#define EXPORT __attribute__((visibility("default")))

EXPORT ZK_INIT_EXIT TestEntry;
EXPORT ZK_INIT_EXIT TestInit;
EXPORT ZK_TERM_EXIT TestTerm;
EXPORT ZK_CONN_EXIT TestConnBefore;
EXPORT ZK_CONN_EXIT TestConnAfter;
EXPORT ZK_DISC_EXIT TestDiscBefore;
EXPORT ZK_DISC_EXIT TestDiscAfter;
EXPORT ZK_GET_EXIT TestDataConvAfter;

/* The ZKI functions observe and do nothing; the queue manager calls them
 * around ZKCONN and ZKDISC. */
void TestInit(PZKAXP p, PZKAXC c, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)cc, (void)rc;
}
void TestConnBefore(PZKAXP p, PZKAXC c, PZKCHAR q, PPZKCNO o, PPZKHCONN h, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)q, (void)o, (void)h, (void)cc, (void)rc;
}
void TestConnAfter(PZKAXP p, PZKAXC c, PZKCHAR q, PPZKCNO o, PPZKHCONN h, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)q, (void)o, (void)h, (void)cc, (void)rc;
}
void TestDiscBefore(PZKAXP p, PZKAXC c, PPZKHCONN h, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)h, (void)cc, (void)rc;
}
void TestDiscAfter(PZKAXP p, PZKAXC c, PPZKHCONN h, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)h, (void)cc, (void)rc;
}
/* Registered only to be refused: the data-conversion point has no AFTER. */
void TestDataConvAfter(PZKAXP p, PZKAXC c, PZKHCONN h, PZKHOBJ o, PPZKMD md, PPZKGMO gmo,
                       PZKLONG bl, PPZKVOID b, PPZKLONG dl, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)h, (void)o, (void)md, (void)gmo, (void)bl, (void)b, (void)dl, (void)cc,
      (void)rc;
}

/* What the entry leaves in the exit user area (16 bytes). */
static const char kUserAreaMark[17] = "testexit-area-01";

static const char *nameOf(const PZKAXP p, char *out) {
  return field(p->ExitInfoName, sizeof p->ExitInfoName, out);
}

static void dump(const PZKAXP p, const PZKAXC c) {
  char name[49], data[33], qmgr[49], appl[29], user[13], conn[265], channel[21];
  fprintf(stderr,
          "testexit %s: AXP '%.4s' v%d id %d reason %d function %d response %d/%d caller %d "
          "data '%s' qmgr '%s' chain %s hconfig %s\n",
          nameOf(p, name), p->StrucId, p->Version, p->ExitId, p->ExitReason, p->Function,
          p->ExitResponse, p->ExitResponse2, p->APICallerType,
          field(p->ExitData, sizeof p->ExitData, data),
          field(p->QMgrName, sizeof p->QMgrName, qmgr), p->ExitChainAreaPtr ? "set" : "null",
          p->Hconfig ? "set" : "null");
  fprintf(stderr,
          "testexit %s: AXC '%.4s' v%d env %d user '%s' appl '%s' type %d pid %s thread %d "
          "conname '%s' channel '%s'\n",
          name, c->StrucId, c->Version, c->Environment, field(c->UserId, sizeof c->UserId, user),
          field(c->ApplName, sizeof c->ApplName, appl), c->ApplType,
          c->ProcessId == (ZKLONG)getpid() ? "self" : "other", c->ThreadId,
          field(c->ConnectionName, sizeof c->ConnectionName, conn),
          field(c->ChannelName, sizeof c->ChannelName, channel));
}

/* Registers one function; returns the Reason. */
static ZKLONG reg(PZKAXP p, ZKHCONFIG h, ZKLONG reason, ZKLONG function, PZKFUNC entry,
                  PZKXEPO opts) {
  ZKLONG cc = -1, rc = -1;
  ZKXEP(h, reason, function, entry, opts, &cc, &rc);
  if (rc != 0) {
    char name[49];
    fprintf(stderr, "testexit %s: ZKXEP %d/%d -> CompCode %d Reason %d\n", nameOf(p, name), reason,
            function, cc, rc);
  }
  return rc;
}

void TestEntry(PZKAXP p, PZKAXC c, PZKLONG pCompCode, PZKLONG pReason) {
  char name[49];
  static const char property[] = "TestExit";
  ZKXEPO opts = ZKXEPO_DEFAULT;
  int stop = hasWord(p, "stop");
  (void)pCompCode, (void)pReason;

  fprintf(stderr, "testexit %s: entry\n", nameOf(p, name));
  if (hasWord(p, "dump")) {
    dump(p, c);
  }
  p->ExitResponse = ZKXCC_FAILED;
  p->ExitResponse2 = ZKXR2_SUPPRESS_CHAIN;
  memcpy(p->ExitUserArea, kUserAreaMark, sizeof p->ExitUserArea);

  /* This exit's chain area goes to the end of the chain. */
  if (!hasWord(p, "noterm")) {
    PZKACH area = newChainArea(p);
    if (area == NULL) {
      return;
    }
    if (p->ExitChainAreaPtr == NULL) {
      p->ExitChainAreaPtr = area;
    } else {
      PZKACH last = p->ExitChainAreaPtr;
      while (last->NextChainAreaPtr != NULL) {
        last = last->NextChainAreaPtr;
      }
      last->NextChainAreaPtr = area;
    }
  }

  if (hasWord(p, "badhc")) {
    reg(p, (ZKHCONFIG)(size_t)0x1234, ZKXR_BEFORE, ZKXF_PUT, (PZKFUNC)TestConnBefore, NULL);
  }
  opts.ExitProperties.VSPtr = (ZKPTR)property;
  opts.ExitProperties.VSLength = (ZKLONG)strlen(property);

  struct {
    ZKLONG reason, function;
    PZKFUNC entry;
    PZKXEPO opts;
  } table[] = {
      {ZKXR_CONNECTION, ZKXF_INIT, (PZKFUNC)TestInit, &opts},
      {ZKXR_CONNECTION, ZKXF_TERM, (PZKFUNC)TestTerm, NULL},
      {ZKXR_BEFORE, ZKXF_CONN, (PZKFUNC)TestConnBefore, NULL},
      {ZKXR_AFTER, ZKXF_CONN, (PZKFUNC)TestConnAfter, NULL},
      {ZKXR_BEFORE, ZKXF_DISC, (PZKFUNC)TestDiscBefore, NULL},
      {ZKXR_AFTER, ZKXF_DISC, (PZKFUNC)TestDiscAfter, NULL},
  };
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i) {
    if (table[i].function == ZKXF_TERM && hasWord(p, "noterm")) {
      continue;
    }
    if (reg(p, p->Hconfig, table[i].reason, table[i].function, table[i].entry, table[i].opts) !=
            0 &&
        stop) {
      return;
    }
  }
  if (hasWord(p, "dereg")) {
    reg(p, p->Hconfig, ZKXR_BEFORE, ZKXF_DISC, NULL, NULL);
  }
  if (hasWord(p, "bad")) {
    reg(p, p->Hconfig, ZKXR_AFTER, ZKXF_DATA_CONV_ON_GET, (PZKFUNC)TestDataConvAfter, NULL);
  }
  if (hasWord(p, "fail")) {
    return;
  }
  p->ExitResponse = ZKXCC_OK;
  p->ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
}

void TestTerm(PZKAXP p, PZKAXC c, PZKLONG pCompCode, PZKLONG pReason) {
  char name[49];
  (void)pCompCode, (void)pReason;
  fprintf(stderr, "testexit %s: TERM, user area %s\n", nameOf(p, name),
          memcmp(p->ExitUserArea, kUserAreaMark, sizeof p->ExitUserArea) == 0 ? "kept" : "lost");
  if (hasWord(p, "dump")) {
    dump(p, c);
  }
  /* Take this exit's area (found by its name) out of the chain. */
  PZKACH previous = NULL;
  for (PZKACH area = p->ExitChainAreaPtr; area != NULL; area = area->NextChainAreaPtr) {
    if (memcmp(area->ExitInfoName, p->ExitInfoName, sizeof p->ExitInfoName) == 0) {
      if (previous == NULL) {
        p->ExitChainAreaPtr = area->NextChainAreaPtr;
      } else {
        previous->NextChainAreaPtr = area->NextChainAreaPtr;
      }
      free(area);
      fprintf(stderr, "testexit %s: chain area freed\n", name);
      break;
    }
    previous = area;
  }
  p->ExitResponse = ZKXCC_OK;
  p->ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
}
