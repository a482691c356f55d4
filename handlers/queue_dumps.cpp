// The structures of the queue calls as dumps and (with ShowParsedData) field
// by field: the object descriptor with its variable-length strings and the
// records of a distribution list, the message descriptor, the put-message
// options with their records, the get-message options.
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "format/structures.h"
#include "handlers/dump_lengths.h"
#include "handlers/short_dumps.h"
#include "output/record_writers.h"

namespace {

// The record count the application states, as many as are shown: none when
// it is not above 0, at most SHOWN_DISTRIBUTION_RECORDS_MAX.
int32_t ShownRecords(int32_t count) {
  if (count <= 0) {
    return 0;
  }
  return count < SHOWN_DISTRIBUTION_RECORDS_MAX ? count : SHOWN_DISTRIBUTION_RECORDS_MAX;
}

// One variable-length string of the object descriptor as a dump of its own.
// A string address given by the caller stands in for the descriptor's own
// address; an unreadable one is not dumped.
void ShowObjectString(ExitControlBlock *cb, const char *title, const ZKCHARV *charv, const ZKOD *od,
                      const void *string) {
  if (string == ZKCHARV_STRING_UNREADABLE) {
    return;
  }
  ZKCHARV dumped = *charv;
  if (string != nullptr) {
    dumped.VSPtr = (ZKPTR)string;
  }
  PutHexCharvData(cb, title, &dumped, od);
}

// The object records and the response records of a distribution list,
// each by its address or its offset from the object descriptor.
void ShowDistributionRecords(ExitControlBlock *cb, const ZKOD *od) {
  int32_t count = ShownRecords(od->RecsPresent);
  if (count == 0) {
    return;
  }
  const unsigned char *objects = Reached(od, od->ObjectRecPtr, od->ObjectRecOffset);
  if (objects != nullptr) {
    PutHexData(cb, "OD->OR", objects, count * ZKOR_LENGTH, HEX_MODE_PLAIN);
    if (ShowParsed(cb)) {
      ShowParsedZkor(cb, (const ZKOR *)objects, count);
    }
  }
  const unsigned char *responses = Reached(od, od->ResponseRecPtr, od->ResponseRecOffset);
  if (responses != nullptr) {
    PutHexData(cb, "OD->RR", responses, count * ZKRR_LENGTH, HEX_MODE_PLAIN);
    if (ShowParsed(cb)) {
      ShowParsedZkrr(cb, (const ZKRR *)responses, count);
    }
  }
}

// The put-message records, each of the fields PutMsgRecFields names, and
// the response records, each by its address or its offset from the options.
void ShowPutMessageRecords(ExitControlBlock *cb, const ZKPMO *pmo) {
  int32_t count = ShownRecords(pmo->RecsPresent);
  if (count == 0) {
    return;
  }
  const unsigned char *records = Reached(pmo, pmo->PutMsgRecPtr, pmo->PutMsgRecOffset);
  if (records != nullptr) {
    int32_t unit = CalculateZkpmrUnitLength(pmo->PutMsgRecFields);
    PutHexData(cb, "PMO->PMR", records, count * unit, HEX_MODE_PLAIN);
    if (ShowParsed(cb)) {
      ShowParsedZkpmr(cb, records, count, pmo->PutMsgRecFields);
    }
  }
  const unsigned char *responses = Reached(pmo, pmo->ResponseRecPtr, pmo->ResponseRecOffset);
  if (responses != nullptr) {
    PutHexData(cb, "PMO->RR", responses, count * ZKRR_LENGTH, HEX_MODE_PLAIN);
    if (ShowParsed(cb)) {
      ShowParsedZkrr(cb, (const ZKRR *)responses, count);
    }
  }
}

} // namespace

// A count of SHOWN_DISTRIBUTION_RECORDS_MAX records of the longest kind
// still makes a length that a dump can be asked for.
static_assert((int64_t)SHOWN_DISTRIBUTION_RECORDS_MAX * ZKPMR_LENGTH_ALL_FIELDS <= INT32_MAX,
              "record dump length");
static_assert((int64_t)SHOWN_DISTRIBUTION_RECORDS_MAX * ZKOR_LENGTH <= INT32_MAX,
              "record dump length");

void ShowZKOD(ExitControlBlock *cb, const ZKOD *od, const void *objectString,
              const void *selectionString, const void *resObjectString) {
  if (cb == nullptr || od == nullptr) {
    return;
  }
  int32_t version;
  int32_t length = DumpLengthOf(cb, kOdDump, od->Version, &version);
  PutHexData(cb, "OD", od, length, HEX_MODE_PLAIN);
  if (version >= ZKOD_VERSION_4) {
    ShowObjectString(cb, "Variable-ObjectString", &od->ObjectString, od, objectString);
    ShowObjectString(cb, "Variable-SelectionString", &od->SelectionString, od, selectionString);
    ShowObjectString(cb, "Variable-ResObjectString", &od->ResObjectString, od, resObjectString);
  }
  if (ShowParsed(cb)) {
    ShowParsedZkod(cb, od, objectString, selectionString, resObjectString);
  }
  if (version >= ZKOD_VERSION_2) {
    ShowDistributionRecords(cb, od);
  }
}

void ShowZKMD(ExitControlBlock *cb, const ZKMD *md) {
  if (cb == nullptr || md == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kMdDump, md->Version);
  PutHexData(cb, "MD", md, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkmd(cb, md);
  }
}

void ShowZKPMO(ExitControlBlock *cb, const ZKPMO *pmo) {
  if (cb == nullptr || pmo == nullptr) {
    return;
  }
  int32_t version;
  int32_t length = DumpLengthOf(cb, kPmoDump, pmo->Version, &version);
  PutHexData(cb, "PMO", pmo, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkpmo(cb, pmo);
  }
  if (version >= ZKPMO_VERSION_2) {
    ShowPutMessageRecords(cb, pmo);
  }
}

void ShowZKGMO(ExitControlBlock *cb, const ZKGMO *gmo, int32_t exitReason, int32_t compCode) {
  if (cb == nullptr || gmo == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kGmoDump, gmo->Version);
  PutHexData(cb, "GMO", gmo, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkgmo(cb, gmo, exitReason, compCode);
  }
}
