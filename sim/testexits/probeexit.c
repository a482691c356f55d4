/* An API exit for testing zkqm's calls and its parameter check.
 *
 * Its entry function ProbeEntry registers a function for every exit point
 * that the queue manager offers: BEFORE and AFTER of every ZKI call and of
 * the message-consumer callback, BEFORE of the data-conversion point of
 * ZKGET, and BEFORE and AFTER of the transaction-manager calls. Each
 * function has the parameter list of its call. It reports every call on
 * standard error as "probe <name>: BEFORE ZKPUT", so that a test can see
 * the order in which the exits of a chain are called.
 *
 * Words in the exit data (blank-separated) make it misbehave in exactly one
 * way, so that a test can show that zkqm catches it:
 *   quiet          no report per call
 *   md-priority    ZKPUT BEFORE: adds 1 to the ZKMD Priority
 *   compcode       ZKPUT AFTER: sets the CompCode to 1
 *   reason         ZKGET AFTER: sets the Reason to 2033
 *   buffer         ZKPUT BEFORE: changes the first byte of the message data
 *   hobj           ZKPUT BEFORE: adds 1 to the object handle
 *   md-pointer     ZKPUT BEFORE: points the ZKMD address at a copy
 *   od-name        ZKOPEN BEFORE: changes the first character of ObjectName
 *   cd             ZKCONNX BEFORE: changes the BatchSize of the channel
 *                  definition, reached by pointer or offset
 *   ldap           ZKCONNX BEFORE: changes the first LDAP user name
 *   pmr            ZKPUT BEFORE: changes the first byte of the put-message records
 *   selectors      ZKINQ BEFORE: changes the first selector
 *   datalength     ZKGET AFTER: changes the data length
 *   conv-buffer    data-conversion point: changes the first byte of the buffer
 *   cbc            callback BEFORE: changes the ZKCBC State
 *   xid            xa_start BEFORE: changes the XID's formatID
 *   axp-function   every BEFORE: changes ZKAXP Function
 *   axc            every BEFORE: changes ZKAXC ThreadId
 *   init-reason    INIT: sets the Reason to 1
 *   own-fields     every call: changes the fields that are the exit's own
 *                  (user area, problem-determination area, Feedback,
 *                  chain area), which is allowed
 *   suppress-chain every BEFORE: answers SUPPRESS_CHAIN
 *   skip-put       ZKPUT BEFORE: answers SKIP_FUNCTION (the put is not made)
 *
 * and one word makes it report what it receives, changing nothing:
 *   show           BEFORE and AFTER of ZKCONNX, ZKOPEN, ZKPUT, ZKPUT1, ZKGET
 *                  and ZKBEGIN: the structures of the call and what they
 *                  lead to (channel definition, TLS options, authentication
 *                  records and their LDAP user names, security parameters,
 *                  object, put-message and response records, strings), each
 *                  reached as an exit reaches it, by pointer or else by
 *                  offset, as far as the structure's version takes it; one
 *                  line each ("probe A: BEFORE ZKOPEN: ZKOR[1] 'Q1' ''"). */
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "exit_parameters.h"
#include "zk/zkxfunc.h"

#define EXPORT __attribute__((visibility("default")))

static const char *functionName(ZKLONG f) {
  static const struct {
    ZKLONG f;
    const char *name;
  } names[] = {{ZKXF_CONN, "ZKCONN"},
               {ZKXF_CONNX, "ZKCONNX"},
               {ZKXF_DISC, "ZKDISC"},
               {ZKXF_OPEN, "ZKOPEN"},
               {ZKXF_CLOSE, "ZKCLOSE"},
               {ZKXF_PUT1, "ZKPUT1"},
               {ZKXF_PUT, "ZKPUT"},
               {ZKXF_GET, "ZKGET"},
               {ZKXF_DATA_CONV_ON_GET, "DATA_CONV_ON_GET"},
               {ZKXF_INQ, "ZKINQ"},
               {ZKXF_SET, "ZKSET"},
               {ZKXF_BEGIN, "ZKBEGIN"},
               {ZKXF_CMIT, "ZKCMIT"},
               {ZKXF_BACK, "ZKBACK"},
               {ZKXF_STAT, "ZKSTAT"},
               {ZKXF_SUB, "ZKSUB"},
               {ZKXF_SUBRQ, "ZKSUBRQ"},
               {ZKXF_CTL, "ZKCTL"},
               {ZKXF_CB, "ZKCB"},
               {ZKXF_CALLBACK, "CALLBACK"},
               {ZKXF_XACLOSE, "xa_close"},
               {ZKXF_XACOMMIT, "xa_commit"},
               {ZKXF_XACOMPLETE, "xa_complete"},
               {ZKXF_XAEND, "xa_end"},
               {ZKXF_XAFORGET, "xa_forget"},
               {ZKXF_XAOPEN, "xa_open"},
               {ZKXF_XAPREPARE, "xa_prepare"},
               {ZKXF_XARECOVER, "xa_recover"},
               {ZKXF_XAROLLBACK, "xa_rollback"},
               {ZKXF_XASTART, "xa_start"},
               {ZKXF_AXREG, "ax_reg"},
               {ZKXF_AXUNREG, "ax_unreg"}};
  for (size_t i = 0; i < sizeof names / sizeof names[0]; ++i) {
    if (names[i].f == f) {
      return names[i].name;
    }
  }
  return "?";
}

static int before(const PZKAXP p) {
  return p->ExitReason == ZKXR_BEFORE;
}

/* What every function does first: report, and the misbehaviours that do
 * not depend on the call. */
static void common(PZKAXP p, PZKAXC c) {
  char name[49];
  if (!hasWord(p, "quiet")) {
    fprintf(stderr, "probe %s: %s %s\n", field(p->ExitInfoName, sizeof p->ExitInfoName, name),
            before(p) ? "BEFORE" : "AFTER", functionName(p->Function));
  }
  if (hasWord(p, "own-fields")) {
    p->ExitUserArea[0] ^= 0x5A;
    p->ExitPDArea[0] ^= 0x5A;
    p->Feedback += 1;
  }
  if (before(p) && hasWord(p, "axp-function")) {
    p->Function += 1;
  }
  if (before(p) && hasWord(p, "axc")) {
    c->ThreadId += 1;
  }
  if (before(p) && hasWord(p, "suppress-chain")) {
    p->ExitResponse2 = ZKXR2_SUPPRESS_CHAIN;
  }
}

/* ---- show: what the exit receives ------------------------------------------ */

/* What a pointer field or, when it is null, an offset from `base` leads to. */
static const void *reach(const void *base, const void *pointer, ZKLONG offset) {
  return pointer != NULL ? pointer : offset != 0 ? (const char *)base + offset : NULL;
}

static const char *how(const void *pointer, ZKLONG offset) {
  return pointer != NULL ? "by pointer" : offset != 0 ? "by offset" : "none";
}

/* Text of at most `n` bytes of a string (bounded, so that a wrong length
 * cannot flood the report), characters outside printable ASCII as '.'. */
static const char *text(const void *p, ZKLONG n, char *out, size_t room) {
  size_t k = 0;
  const unsigned char *b = p;
  for (ZKLONG i = 0; b != NULL && i < n && k + 1 < room; ++i) {
    out[k++] = (b[i] >= 0x20 && b[i] < 0x7f) ? (char)b[i] : '.';
  }
  out[k] = '\0';
  return out;
}

static const char *hex(const void *p, size_t n, char *out, size_t room) {
  static const char digits[] = "0123456789ABCDEF";
  const unsigned char *b = p;
  size_t k = 0;
  for (size_t i = 0; i < n && k + 2 < room; ++i) {
    out[k++] = digits[b[i] >> 4];
    out[k++] = digits[b[i] & 15];
  }
  out[k] = '\0';
  return out;
}

/* Records and string lengths read from the structures are bounded. */
static ZKLONG bounded(ZKLONG n, ZKLONG max) {
  return n < 0 ? 0 : n > max ? max : n;
}

static void show(const PZKAXP p, const char *format, ...) {
  char name[49];
  va_list args;
  fprintf(stderr, "probe %s: %s %s: ", field(p->ExitInfoName, sizeof p->ExitInfoName, name),
          before(p) ? "BEFORE" : "AFTER", functionName(p->Function));
  va_start(args, format);
  vfprintf(stderr, format, args);
  va_end(args);
  fputc('\n', stderr);
}

static void showCno(const PZKAXP p, const ZKCNO *o) {
  char a[1100], b[1100];
  show(p, "ZKCNO v%d options 0x%08X", o->Version, (unsigned)o->Options);
  if (o->Version >= 2) {
    const ZKCD *cd = reach(o, o->ClientConnPtr, o->ClientConnOffset);
    if (cd != NULL) {
      show(p, "ZKCD v%d %s, StrucLength %d, ChannelName '%s', BatchSize %d", cd->Version,
           how(o->ClientConnPtr, o->ClientConnOffset), cd->StrucLength,
           field(cd->ChannelName, sizeof cd->ChannelName, a), cd->BatchSize);
    }
  }
  if (o->Version >= 4) {
    const ZKSCO *sco = reach(o, o->SSLConfigPtr, o->SSLConfigOffset);
    if (sco != NULL) {
      show(p, "ZKSCO v%d %s, KeyRepository '%s', %d ZKAIR %s", sco->Version,
           how(o->SSLConfigPtr, o->SSLConfigOffset),
           field(sco->KeyRepository, sizeof sco->KeyRepository, a), sco->AuthInfoRecCount,
           how(sco->AuthInfoRecPtr, sco->AuthInfoRecOffset));
      const char *rec = reach(sco, sco->AuthInfoRecPtr, sco->AuthInfoRecOffset);
      ZKLONG count = rec != NULL ? bounded(sco->AuthInfoRecCount, 100) : 0;
      for (ZKLONG i = 0; i < count; ++i) {
        const ZKAIR *air = (const ZKAIR *)rec;
        const char *user = reach(air, air->LDAPUserNamePtr, air->LDAPUserNameOffset);
        show(p, "ZKAIR[%d] v%d type %d, AuthInfoConnName '%s', LDAPUserName '%s' %s", i + 1,
             air->Version, air->AuthInfoType,
             field(air->AuthInfoConnName, sizeof air->AuthInfoConnName, a),
             text(user, bounded(air->LDAPUserNameLength, 1024), b, sizeof b),
             how(air->LDAPUserNamePtr, air->LDAPUserNameOffset));
        if (air->Version >= 2) {
          show(p, "ZKAIR[%d] OCSPResponderURL '%s'", i + 1,
               field(air->OCSPResponderURL, sizeof air->OCSPResponderURL, a));
        }
        rec += air->Version >= 2 ? ZKAIR_LENGTH_2 : ZKAIR_LENGTH_1;
      }
    }
  }
  if (o->Version >= 5) {
    const ZKCSP *csp = reach(o, o->SecurityParmsPtr, o->SecurityParmsOffset);
    if (csp != NULL) {
      const void *user = reach(csp, csp->CSPUserIdPtr, csp->CSPUserIdOffset);
      const void *password = reach(csp, csp->CSPPasswordPtr, csp->CSPPasswordOffset);
      show(p, "ZKCSP v%d %s, type %d, user '%s' %s, password '%s' %s", csp->Version,
           how(o->SecurityParmsPtr, o->SecurityParmsOffset), csp->AuthenticationType,
           text(user, bounded(csp->CSPUserIdLength, 1024), a, sizeof a),
           how(csp->CSPUserIdPtr, csp->CSPUserIdOffset),
           text(password, bounded(csp->CSPPasswordLength, 1024), b, sizeof b),
           how(csp->CSPPasswordPtr, csp->CSPPasswordOffset));
    }
  }
}

static void showString(const PZKAXP p, const void *base, const char *name, const ZKCHARV *v) {
  char a[1100];
  const void *s = reach(base, v->VSPtr, v->VSOffset);
  ZKLONG n = v->VSLength == -1 && s != NULL ? (ZKLONG)strlen(s) : v->VSLength;
  show(p, "%s '%s' %s, VSLength %d, VSBufSize %d, VSCCSID %d", name,
       text(s, bounded(n, 1024), a, sizeof a), how(v->VSPtr, v->VSOffset), v->VSLength,
       v->VSBufSize, v->VSCCSID);
}

static void showOd(const PZKAXP p, const ZKOD *od) {
  char a[64], b[64];
  show(p, "ZKOD v%d type %d, ObjectName '%s', ObjectQMgrName '%s'", od->Version, od->ObjectType,
       field(od->ObjectName, sizeof od->ObjectName, a),
       field(od->ObjectQMgrName, sizeof od->ObjectQMgrName, b));
  if (od->Version >= 2 && od->RecsPresent > 0) {
    const ZKOR *ors = reach(od, od->ObjectRecPtr, od->ObjectRecOffset);
    const ZKRR *rrs = reach(od, od->ResponseRecPtr, od->ResponseRecOffset);
    show(p, "ZKOD %d records, ZKOR %s, ZKRR %s", od->RecsPresent,
         how(od->ObjectRecPtr, od->ObjectRecOffset),
         how(od->ResponseRecPtr, od->ResponseRecOffset));
    for (ZKLONG i = 0; i < bounded(od->RecsPresent, 100); ++i) {
      if (ors != NULL) {
        show(p, "ZKOR[%d] '%s' '%s'", i + 1, field(ors[i].ObjectName, sizeof ors[i].ObjectName, a),
             field(ors[i].ObjectQMgrName, sizeof ors[i].ObjectQMgrName, b));
      }
      if (rrs != NULL) {
        show(p, "ZKOD ZKRR[%d] CompCode %d Reason %d", i + 1, rrs[i].CompCode, rrs[i].Reason);
      }
    }
  }
  if (od->Version >= 4) {
    showString(p, od, "ObjectString", &od->ObjectString);
    showString(p, od, "SelectionString", &od->SelectionString);
    showString(p, od, "ResObjectString", &od->ResObjectString);
  }
}

static void showMd(const PZKAXP p, const ZKMD *md) {
  char a[16], b[64];
  show(p, "ZKMD v%d Format '%s' Priority %d MsgId %s", md->Version,
       field(md->Format, sizeof md->Format, a), md->Priority,
       hex(md->MsgId, sizeof md->MsgId, b, sizeof b));
}

static void showPmo(const PZKAXP p, const ZKPMO *pmo) {
  char a[256];
  show(p, "ZKPMO v%d options 0x%08X", pmo->Version, (unsigned)pmo->Options);
  if (pmo->Version < 2 || pmo->RecsPresent <= 0) {
    return;
  }
  const unsigned char *pmr = reach(pmo, pmo->PutMsgRecPtr, pmo->PutMsgRecOffset);
  const ZKRR *rrs = reach(pmo, pmo->ResponseRecPtr, pmo->ResponseRecOffset);
  ZKLONG f = pmo->PutMsgRecFields;
  size_t unit = ((f & ZKPMRF_MSG_ID) ? 24 : 0) + ((f & ZKPMRF_CORREL_ID) ? 24 : 0) +
                ((f & ZKPMRF_GROUP_ID) ? 24 : 0) + ((f & ZKPMRF_FEEDBACK) ? 4 : 0) +
                ((f & ZKPMRF_ACCOUNTING_TOKEN) ? 32 : 0);
  show(p, "ZKPMO %d records, PutMsgRecFields 0x%08X, ZKPMR %s, ZKRR %s", pmo->RecsPresent,
       (unsigned)f, how(pmo->PutMsgRecPtr, pmo->PutMsgRecOffset),
       how(pmo->ResponseRecPtr, pmo->ResponseRecOffset));
  for (ZKLONG i = 0; i < bounded(pmo->RecsPresent, 100); ++i) {
    if (pmr != NULL && unit > 0) {
      show(p, "ZKPMR[%d] %s", i + 1, hex(pmr + i * unit, unit, a, sizeof a));
    }
    if (rrs != NULL) {
      show(p, "ZKPMO ZKRR[%d] CompCode %d Reason %d", i + 1, rrs[i].CompCode, rrs[i].Reason);
    }
  }
}

static void showGmo(const PZKAXP p, const ZKGMO *gmo) {
  if (gmo->Version >= 2) {
    show(p,
         "ZKGMO v%d options 0x%08X, MatchOptions 0x%08X, GroupStatus 0x%02X, "
         "SegmentStatus 0x%02X, Segmentation 0x%02X",
         gmo->Version, (unsigned)gmo->Options, (unsigned)gmo->MatchOptions,
         (unsigned char)gmo->GroupStatus, (unsigned char)gmo->SegmentStatus,
         (unsigned char)gmo->Segmentation);
  } else {
    show(p, "ZKGMO v%d options 0x%08X", gmo->Version, (unsigned)gmo->Options);
  }
}

EXPORT ZK_INIT_EXIT ProbeEntry;
EXPORT ZK_INIT_EXIT ProbeInit;
EXPORT ZK_TERM_EXIT ProbeTerm;

void ProbeInit(PZKAXP p, PZKAXC c, PZKLONG cc, PZKLONG rc) {
  (void)p, (void)c, (void)cc, (void)rc;
}

void ProbeTerm(PZKAXP p, PZKAXC c, PZKLONG cc, PZKLONG rc) {
  (void)c, (void)cc, (void)rc;
  char name[49];
  if (!hasWord(p, "quiet")) {
    fprintf(stderr, "probe %s: TERM\n", field(p->ExitInfoName, sizeof p->ExitInfoName, name));
  }
  if (hasWord(p, "own-fields") && p->ExitChainAreaPtr != NULL) {
    free(p->ExitChainAreaPtr);
    p->ExitChainAreaPtr = NULL;
  }
}

EXPORT void ProbeConn(PZKAXP p, PZKAXC c, PZKCHAR q, PPZKCNO cno, PPZKHCONN h, PZKLONG cc,
                      PZKLONG rc) {
  (void)q, (void)h, (void)cc, (void)rc;
  common(p, c);
  if (hasWord(p, "show") && p->Function == ZKXF_CONNX && *cno != NULL) {
    showCno(p, *cno);
  }
  if (!before(p) || *cno == NULL || p->Function != ZKXF_CONNX) {
    return;
  }
  PZKCNO o = *cno;
  if (hasWord(p, "cd") && o->Version >= 2) {
    PZKCD cd = o->ClientConnPtr != NULL   ? (PZKCD)o->ClientConnPtr
               : o->ClientConnOffset != 0 ? (PZKCD)((char *)o + o->ClientConnOffset)
                                          : NULL;
    if (cd != NULL) {
      cd->BatchSize += 1;
    }
  }
  if (hasWord(p, "ldap") && o->Version >= 4) {
    PZKSCO sco = o->SSLConfigPtr != NULL   ? (PZKSCO)o->SSLConfigPtr
                 : o->SSLConfigOffset != 0 ? (PZKSCO)((char *)o + o->SSLConfigOffset)
                                           : NULL;
    if (sco != NULL && sco->AuthInfoRecCount > 0) {
      PZKAIR air = sco->AuthInfoRecPtr != NULL   ? (PZKAIR)sco->AuthInfoRecPtr
                   : sco->AuthInfoRecOffset != 0 ? (PZKAIR)((char *)sco + sco->AuthInfoRecOffset)
                                                 : NULL;
      char *user = air == NULL                    ? NULL
                   : air->LDAPUserNamePtr != NULL ? (char *)air->LDAPUserNamePtr
                   : air->LDAPUserNameOffset != 0 ? (char *)air + air->LDAPUserNameOffset
                                                  : NULL;
      if (user != NULL && air->LDAPUserNameLength > 0) {
        user[0] ^= 0x20;
      }
    }
  }
}

EXPORT void ProbeDisc(PZKAXP p, PZKAXC c, PPZKHCONN h, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeOpen(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKOD od, PZKLONG o, PPZKHOBJ hobj,
                      PZKLONG cc, PZKLONG rc) {
  (void)h, (void)o, (void)hobj, (void)cc, (void)rc;
  common(p, c);
  if (hasWord(p, "show") && *od != NULL) {
    showOd(p, *od);
  }
  if (before(p) && hasWord(p, "od-name") && *od != NULL) {
    (*od)->ObjectName[0] = 'X';
  }
}

EXPORT void ProbeClose(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKHOBJ hobj, PZKLONG o, PZKLONG cc,
                       PZKLONG rc) {
  (void)h, (void)hobj, (void)o, (void)cc, (void)rc;
  common(p, c);
}

static ZKMD mdCopy;

static void putCommon(PZKAXP p, PZKHOBJ hobj, PPZKMD md, PPZKPMO pmo, PZKLONG length,
                      PPZKVOID buffer, PZKLONG cc) {
  if (hasWord(p, "show")) {
    if (*md != NULL) {
      showMd(p, *md);
    }
    if (*pmo != NULL) {
      showPmo(p, *pmo);
    }
  }
  if (before(p)) {
    if (hasWord(p, "md-priority") && *md != NULL) {
      (*md)->Priority += 1;
    }
    if (hasWord(p, "buffer") && *buffer != NULL && *length > 0) {
      ((unsigned char *)*buffer)[0] ^= 0x01;
    }
    if (hasWord(p, "hobj") && hobj != NULL) {
      *hobj += 1;
    }
    if (hasWord(p, "md-pointer") && *md != NULL) {
      mdCopy = **md;
      *md = &mdCopy;
    }
    if (hasWord(p, "pmr") && *pmo != NULL && (*pmo)->Version >= 2 && (*pmo)->RecsPresent > 0) {
      PZKPMO o = *pmo;
      unsigned char *rec = o->PutMsgRecPtr != NULL   ? (unsigned char *)o->PutMsgRecPtr
                           : o->PutMsgRecOffset != 0 ? (unsigned char *)o + o->PutMsgRecOffset
                                                     : NULL;
      if (rec != NULL && o->PutMsgRecFields != 0) {
        rec[0] ^= 0xFF;
      }
    }
    if (hasWord(p, "skip-put")) {
      p->ExitResponse = ZKXCC_SKIP_FUNCTION;
    }
  } else if (hasWord(p, "compcode")) {
    *cc = ZKCC_WARNING;
  }
}

EXPORT void ProbePut(PZKAXP p, PZKAXC c, PZKHCONN h, PZKHOBJ hobj, PPZKMD md, PPZKPMO pmo,
                     PZKLONG length, PPZKVOID buffer, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)rc;
  common(p, c);
  putCommon(p, hobj, md, pmo, length, buffer, cc);
}

EXPORT void ProbePut1(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKOD od, PPZKMD md, PPZKPMO pmo,
                      PZKLONG length, PPZKVOID buffer, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)rc;
  common(p, c);
  if (hasWord(p, "show") && *od != NULL) {
    showOd(p, *od);
  }
  putCommon(p, NULL, md, pmo, length, buffer, cc);
}

EXPORT void ProbeGet(PZKAXP p, PZKAXC c, PZKHCONN h, PZKHOBJ hobj, PPZKMD md, PPZKGMO gmo,
                     PZKLONG length, PPZKVOID buffer, PPZKLONG dataLength, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)hobj, (void)cc;
  common(p, c);
  if (hasWord(p, "show") && p->Function == ZKXF_GET) {
    if (*md != NULL) {
      showMd(p, *md);
    }
    if (*gmo != NULL) {
      showGmo(p, *gmo);
    }
  }
  if (p->Function == ZKXF_DATA_CONV_ON_GET && hasWord(p, "conv-buffer") && *buffer != NULL &&
      *length > 0) {
    ((unsigned char *)*buffer)[0] ^= 0x01;
  }
  if (!before(p) && hasWord(p, "reason")) {
    *rc = 2033;
  }
  if (!before(p) && hasWord(p, "datalength") && *dataLength != NULL) {
    **dataLength += 1;
  }
}

EXPORT void ProbeInq(PZKAXP p, PZKAXC c, PZKHCONN h, PZKHOBJ hobj, PZKLONG count,
                     PPZKLONG selectors, PZKLONG intCount, PPZKLONG ints, PZKLONG charLength,
                     PPZKCHAR chars, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)hobj, (void)intCount, (void)ints, (void)charLength, (void)chars, (void)cc,
      (void)rc;
  common(p, c);
  if (before(p) && p->Function == ZKXF_INQ && hasWord(p, "selectors") && *count > 0 &&
      *selectors != NULL) {
    (*selectors)[0] += 1;
  }
}

EXPORT void ProbeBegin(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKBO bo, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)cc, (void)rc;
  common(p, c);
  if (hasWord(p, "show")) {
    if (*bo != NULL) {
      show(p, "ZKBO v%d options 0x%08X", (*bo)->Version, (unsigned)(*bo)->Options);
    } else {
      show(p, "no ZKBO");
    }
  }
}

EXPORT void ProbeCmit(PZKAXP p, PZKAXC c, PZKHCONN h, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeStat(PZKAXP p, PZKAXC c, PZKHCONN h, PZKLONG type, PPZKSTS sts, PZKLONG cc,
                      PZKLONG rc) {
  (void)h, (void)type, (void)sts, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeSub(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKSD sd, PPZKHOBJ hobj, PPZKHSUB hsub,
                     PZKLONG cc, PZKLONG rc) {
  (void)h, (void)sd, (void)hobj, (void)hsub, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeSubrq(PZKAXP p, PZKAXC c, PZKHCONN h, PZKHSUB hsub, PZKLONG action, PPZKSRO sro,
                       PZKLONG cc, PZKLONG rc) {
  (void)h, (void)hsub, (void)action, (void)sro, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeCtl(PZKAXP p, PZKAXC c, PZKHCONN h, PZKLONG op, PPZKCTLO ctlo, PZKLONG cc,
                     PZKLONG rc) {
  (void)h, (void)op, (void)ctlo, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeCb(PZKAXP p, PZKAXC c, PZKHCONN h, PZKLONG op, PPZKCBD cbd, PZKHOBJ hobj,
                    PPZKMD md, PPZKGMO gmo, PZKLONG cc, PZKLONG rc) {
  (void)h, (void)op, (void)cbd, (void)hobj, (void)md, (void)gmo, (void)cc, (void)rc;
  common(p, c);
}

EXPORT void ProbeCallback(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKMD md, PPZKGMO gmo, PPZKVOID buffer,
                          PPZKCBC cbc) {
  (void)h, (void)md, (void)gmo, (void)buffer;
  common(p, c);
  if (before(p) && hasWord(p, "cbc") && *cbc != NULL) {
    (*cbc)->State += 1;
  }
}

EXPORT void ProbeXaOpen(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKCHAR info, PZKLONG rmid, PZKLONG flags,
                        PZKLONG rc) {
  (void)h, (void)info, (void)rmid, (void)flags, (void)rc;
  common(p, c);
}

EXPORT void ProbeXaXid(PZKAXP p, PZKAXC c, PZKHCONN h, PZKPTR xid, PZKLONG rmid, PZKLONG flags,
                       PZKLONG rc) {
  (void)h, (void)rmid, (void)flags, (void)rc;
  common(p, c);
  if (before(p) && p->Function == ZKXF_XASTART && hasWord(p, "xid") && *xid != NULL) {
    ((unsigned char *)*xid)[0] ^= 0x01;
  }
}

EXPORT void ProbeXaRecover(PZKAXP p, PZKAXC c, PZKHCONN h, PZKPTR xids, PZKLONG count, PZKLONG rmid,
                           PZKLONG flags, PZKLONG rc) {
  (void)h, (void)xids, (void)count, (void)rmid, (void)flags, (void)rc;
  common(p, c);
}

EXPORT void ProbeXaComplete(PZKAXP p, PZKAXC c, PZKHCONN h, PPZKLONG handle, PPZKLONG retval,
                            PZKLONG rmid, PZKLONG flags, PZKLONG rc) {
  (void)h, (void)handle, (void)retval, (void)rmid, (void)flags, (void)rc;
  common(p, c);
}

EXPORT void ProbeAxReg(PZKAXP p, PZKAXC c, PZKHCONN h, PZKLONG rmid, PZKPTR xid, PZKLONG flags,
                       PZKLONG rc) {
  (void)h, (void)rmid, (void)xid, (void)flags, (void)rc;
  common(p, c);
}

EXPORT void ProbeAxUnreg(PZKAXP p, PZKAXC c, PZKHCONN h, PZKLONG rmid, PZKLONG flags, PZKLONG rc) {
  (void)h, (void)rmid, (void)flags, (void)rc;
  common(p, c);
}

void ProbeEntry(PZKAXP p, PZKAXC c, PZKLONG pCompCode, PZKLONG pReason) {
  static const struct {
    ZKLONG function;
    PZKFUNC entry;
    int after;
  } table[] = {
      {ZKXF_CONN, (PZKFUNC)ProbeConn, 1},
      {ZKXF_CONNX, (PZKFUNC)ProbeConn, 1},
      {ZKXF_DISC, (PZKFUNC)ProbeDisc, 1},
      {ZKXF_OPEN, (PZKFUNC)ProbeOpen, 1},
      {ZKXF_CLOSE, (PZKFUNC)ProbeClose, 1},
      {ZKXF_PUT1, (PZKFUNC)ProbePut1, 1},
      {ZKXF_PUT, (PZKFUNC)ProbePut, 1},
      {ZKXF_GET, (PZKFUNC)ProbeGet, 1},
      {ZKXF_DATA_CONV_ON_GET, (PZKFUNC)ProbeGet, 0},
      {ZKXF_INQ, (PZKFUNC)ProbeInq, 1},
      {ZKXF_SET, (PZKFUNC)ProbeInq, 1},
      {ZKXF_BEGIN, (PZKFUNC)ProbeBegin, 1},
      {ZKXF_CMIT, (PZKFUNC)ProbeCmit, 1},
      {ZKXF_BACK, (PZKFUNC)ProbeCmit, 1},
      {ZKXF_STAT, (PZKFUNC)ProbeStat, 1},
      {ZKXF_SUB, (PZKFUNC)ProbeSub, 1},
      {ZKXF_SUBRQ, (PZKFUNC)ProbeSubrq, 1},
      {ZKXF_CTL, (PZKFUNC)ProbeCtl, 1},
      {ZKXF_CB, (PZKFUNC)ProbeCb, 1},
      {ZKXF_CALLBACK, (PZKFUNC)ProbeCallback, 1},
      {ZKXF_XAOPEN, (PZKFUNC)ProbeXaOpen, 1},
      {ZKXF_XACLOSE, (PZKFUNC)ProbeXaOpen, 1},
      {ZKXF_XASTART, (PZKFUNC)ProbeXaXid, 1},
      {ZKXF_XAEND, (PZKFUNC)ProbeXaXid, 1},
      {ZKXF_XAPREPARE, (PZKFUNC)ProbeXaXid, 1},
      {ZKXF_XACOMMIT, (PZKFUNC)ProbeXaXid, 1},
      {ZKXF_XAROLLBACK, (PZKFUNC)ProbeXaXid, 1},
      {ZKXF_XAFORGET, (PZKFUNC)ProbeXaXid, 1},
      {ZKXF_XARECOVER, (PZKFUNC)ProbeXaRecover, 1},
      {ZKXF_XACOMPLETE, (PZKFUNC)ProbeXaComplete, 1},
      {ZKXF_AXREG, (PZKFUNC)ProbeAxReg, 1},
      {ZKXF_AXUNREG, (PZKFUNC)ProbeAxUnreg, 1},
  };
  ZKLONG cc = 0, rc = 0;
  (void)c;
  p->ExitResponse = ZKXCC_FAILED;
  p->ExitResponse2 = ZKXR2_SUPPRESS_CHAIN;
  ZKXEP(p->Hconfig, ZKXR_CONNECTION, ZKXF_INIT, (PZKFUNC)ProbeInit, NULL, &cc, &rc);
  ZKXEP(p->Hconfig, ZKXR_CONNECTION, ZKXF_TERM, (PZKFUNC)ProbeTerm, NULL, &cc, &rc);
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i) {
    ZKXEP(p->Hconfig, ZKXR_BEFORE, table[i].function, table[i].entry, NULL, &cc, &rc);
    if (rc != 0) {
      return;
    }
    if (table[i].after) {
      ZKXEP(p->Hconfig, ZKXR_AFTER, table[i].function, table[i].entry, NULL, &cc, &rc);
      if (rc != 0) {
        return;
      }
    }
  }
  if (hasWord(p, "init-reason")) {
    *pReason = 1;
  }
  (void)pCompCode;
  if (p->ExitChainAreaPtr == NULL && hasWord(p, "own-fields")) {
    p->ExitChainAreaPtr = newChainArea(p);
  }
  p->ExitResponse = ZKXCC_OK;
  p->ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
}
