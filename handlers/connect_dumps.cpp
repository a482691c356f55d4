// The connect options of ZKCONNX with everything they lead to, and the begin
// options of ZKBEGIN, as dumps and (with ShowParsedData) field by field.
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "exit/control_block.h"
#include "format/structures.h"
#include "handlers/dump_lengths.h"
#include "handlers/short_dumps.h"
#include "output/record_writers.h"

namespace {

ZKLONG VersionAt(const unsigned char *structure, size_t offset) {
  ZKLONG version;
  memcpy(&version, structure + offset, sizeof version);
  return version;
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
