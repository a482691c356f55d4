// The connect options of ZKCONNX with everything they lead to, and the begin
// options of ZKBEGIN, as dumps and (with ShowParsedData) field by field.
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "exit/control_block.h"
#include "format/structures.h"
#include "handlers/short_dumps.h"
#include "output/record_writers.h"

namespace {

// The bytes dumped of each version of a structure, version 1 first. These
// are the dump lengths by version that the trace shows. For the channel
// definition of versions 1 and 4 they are shorter than the layouts of
// zk/zkcno.h (ZKCD_LENGTH_1 984, ZKCD_LENGTH_4 1540): the trace keeps its
// own lengths, and the fields are still shown from the whole structure.
struct DumpLengths {
  const char *Name;     // the name an unknown version is reported under
  int32_t HighestKnown; // also the number of lengths below
  int32_t ByVersion[10];
};

constexpr DumpLengths kCnoDump = {"ZKCNO", 5, {12, 20, 148, 156, 188}};
constexpr DumpLengths kCdDump = {
    "ZKCD", 10, {952, 1312, 1480, 1536, 1552, 1648, 1748, 1840, 1864, 1876}};
constexpr DumpLengths kScoDump = {"ZKSCO", 4, {532, 540, 556, 560}};
constexpr DumpLengths kAirDump = {"ZKAIR", 2, {320, 576}};
constexpr DumpLengths kCspDump = {"ZKCSP", 1, {48}};
constexpr DumpLengths kBoDump = {"ZKBO", 1, {12}};

// No dump reaches beyond the structure as this exit declares it.
static_assert(kCnoDump.ByVersion[kCnoDump.HighestKnown - 1] == sizeof(ZKCNO), "ZKCNO dump");
static_assert(kCdDump.ByVersion[kCdDump.HighestKnown - 1] == sizeof(ZKCD), "ZKCD dump");
static_assert(kScoDump.ByVersion[kScoDump.HighestKnown - 1] == sizeof(ZKSCO), "ZKSCO dump");
static_assert(kAirDump.ByVersion[kAirDump.HighestKnown - 1] == sizeof(ZKAIR), "ZKAIR dump");
static_assert(kCspDump.ByVersion[kCspDump.HighestKnown - 1] == sizeof(ZKCSP), "ZKCSP dump");
static_assert(kBoDump.ByVersion[kBoDump.HighestKnown - 1] == sizeof(ZKBO), "ZKBO dump");

// The length dumped for a structure of this version: a version above the
// highest known is reported and dumped at the highest known length; one
// below 1 is dumped at the length of version 1. The version used is left
// in *used when asked for.
int32_t DumpLengthOf(ExitControlBlock *cb, const DumpLengths &lengths, int32_t version,
                     int32_t *used = nullptr) {
  int32_t known = CheckStructureVersion(cb, lengths.Name, version, lengths.HighestKnown);
  if (used != nullptr) {
    *used = known;
  }
  return lengths.ByVersion[known >= 1 ? known - 1 : 0];
}

// The same length, without reporting a version above the highest known.
int32_t LengthOfVersion(const DumpLengths &lengths, int32_t version) {
  int32_t known = version > lengths.HighestKnown ? lengths.HighestKnown : version;
  return lengths.ByVersion[known >= 1 ? known - 1 : 0];
}

ZKLONG VersionAt(const unsigned char *structure, size_t offset) {
  ZKLONG version;
  memcpy(&version, structure + offset, sizeof version);
  return version;
}

// A structure reached from another: by its address when that is not null,
// else by its offset from the other's start when that is not zero, else
// there is none.
const unsigned char *Reached(const void *from, const void *address, int32_t offset) {
  if (address != nullptr) {
    return (const unsigned char *)address;
  }
  if (offset != 0) {
    return (const unsigned char *)((uintptr_t)from + (uintptr_t)(intptr_t)offset);
  }
  return nullptr;
}

bool ShowParsed(const ExitControlBlock *cb) {
  return cb->Settings.ShowParsedData == 1;
}

void ShowChannelDefinition(ExitControlBlock *cb, const ZKCD *cd) {
  if (cd == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kCdDump, cd->Version);
  PutHexData(cb, "CNO->CD", cd, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkcd(cb, cd);
  }
}

// The LDAP user name of one authentication information record, by the
// record's address or its offset from the record's start. A negative length
// shows nothing; a very long one is dumped and shown only in part.
void ShowLdapUserName(ExitControlBlock *cb, const unsigned char *record, const ZKAIR &fields) {
  const unsigned char *name = Reached(record, fields.LDAPUserNamePtr, fields.LDAPUserNameOffset);
  int32_t length = fields.LDAPUserNameLength;
  if (name == nullptr || length < 0) {
    return;
  }
  int32_t shown = length < SHOWN_LDAP_USER_NAME_MAX ? length : SHOWN_LDAP_USER_NAME_MAX;
  PutHexDataLen(cb, "CNO->SCO->AIR->LDAPUserName", name, shown, HEX_MODE_PLAIN, length);
  if (ShowParsed(cb)) {
    ShowParsedLDAPUserName(cb, name, shown);
  }
}

// The authentication information records follow one another, all of the
// length that the first record's version gives. A record whose own version
// gives another length ends the walk before it: it is not of that length,
// so neither it nor the records after it can be found and read at that
// length (whatever they would show, their address fields included, would
// be bytes of other records).
void ShowAuthInfoRecords(ExitControlBlock *cb, const ZKSCO *sco) {
  int32_t count = sco->AuthInfoRecCount;
  if (count <= 0) {
    return;
  }
  const unsigned char *first = Reached(sco, sco->AuthInfoRecPtr, sco->AuthInfoRecOffset);
  if (first == nullptr) {
    return;
  }
  if (count > SHOWN_AUTH_INFO_RECORDS_MAX) {
    count = SHOWN_AUTH_INFO_RECORDS_MAX;
  }
  int32_t length = DumpLengthOf(cb, kAirDump, VersionAt(first, offsetof(ZKAIR, Version)));
  for (int32_t i = 0; i < count; i++) {
    const unsigned char *record = first + (size_t)i * (size_t)length;
    if (i > 0 && LengthOfVersion(kAirDump, VersionAt(record, offsetof(ZKAIR, Version))) != length) {
      break;
    }
    PutHexData(cb, "CNO->SCO->AIR", record, length, HEX_MODE_PLAIN);
    // The fields are read from a copy of the bytes dumped, so that the
    // formatter reads no further than the dump.
    ZKAIR fields;
    memset(&fields, 0, sizeof fields);
    memcpy(&fields, record, (size_t)length);
    if (ShowParsed(cb)) {
      ShowParsedZkair(cb, &fields);
    }
    ShowLdapUserName(cb, record, fields);
  }
}

void ShowTlsConfiguration(ExitControlBlock *cb, const ZKSCO *sco) {
  if (sco == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kScoDump, sco->Version);
  PutHexData(cb, "CNO->SCO", sco, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZksco(cb, sco);
  }
  ShowAuthInfoRecords(cb, sco);
}

void ShowSecurityParameters(ExitControlBlock *cb, const ZKCSP *csp) {
  if (csp == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kCspDump, csp->Version);
  PutHexData(cb, "CNO->CSP", csp, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkcsp(cb, csp);
  }
}

} // namespace

void ShowZKCNO(ExitControlBlock *cb, const ZKCNO *cno) {
  if (cb == nullptr || cno == nullptr) {
    return;
  }
  int32_t version;
  int32_t length = DumpLengthOf(cb, kCnoDump, cno->Version, &version);
  PutHexData(cb, "CNO", cno, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkcno(cb, cno);
  }
  if (version >= ZKCNO_VERSION_2 && cb->Settings.ShowChannelAttributes == 1) {
    ShowChannelDefinition(cb,
                          (const ZKCD *)Reached(cno, cno->ClientConnPtr, cno->ClientConnOffset));
  }
  if (version >= ZKCNO_VERSION_4) {
    ShowTlsConfiguration(cb, (const ZKSCO *)Reached(cno, cno->SSLConfigPtr, cno->SSLConfigOffset));
  }
  if (version >= ZKCNO_VERSION_5) {
    ShowSecurityParameters(
        cb, (const ZKCSP *)Reached(cno, cno->SecurityParmsPtr, cno->SecurityParmsOffset));
  }
}

void ShowZKBO(ExitControlBlock *cb, const ZKBO *bo) {
  if (cb == nullptr || bo == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kBoDump, bo->Version);
  PutHexData(cb, "BO", bo, length, HEX_MODE_PLAIN);
}
