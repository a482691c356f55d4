// The subscription descriptor, subscription request options, status
// structure, control options, callback descriptor and callback context as
// dumps and (with ShowParsedData) field by field.
#include "handlers/v7_dumps.h"

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "format/v7_structures.h"
#include "handlers/dump_lengths.h"
#include "output/record_writers.h"

void ShowZKSD(ExitControlBlock *cb, const ZKSD *sd) {
  if (cb == nullptr || sd == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kSdDump, sd->Version);
  PutHexData(cb, "SD", sd, length, HEX_MODE_PLAIN);
  PutHexCharvData(cb, "Variable-ObjectString", &sd->ObjectString, sd);
  PutHexCharvData(cb, "Variable-SubName", &sd->SubName, sd);
  PutHexCharvData(cb, "Variable-SubUserData", &sd->SubUserData, sd);
  PutHexCharvData(cb, "Variable-SelectionString", &sd->SelectionString, sd);
  PutHexCharvData(cb, "Variable-ResObjectString", &sd->ResObjectString, sd);
  if (ShowParsed(cb)) {
    ShowParsedZksd(cb, sd);
  }
}

void ShowZKSRO(ExitControlBlock *cb, const ZKSRO *sro) {
  if (cb == nullptr || sro == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kSroDump, sro->Version);
  PutHexData(cb, "SRO", sro, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZksro(cb, sro);
  }
}

void ShowZKSTS(ExitControlBlock *cb, const ZKSTS *sts) {
  if (cb == nullptr || sts == nullptr) {
    return;
  }
  int32_t version;
  int32_t length = DumpLengthOf(cb, kStsDump, sts->Version, &version);
  PutHexData(cb, "STS", sts, length, HEX_MODE_PLAIN);
  if (version >= ZKSTS_VERSION_2) {
    PutHexCharvData(cb, "Variable-ObjectString", &sts->ObjectString, sts);
    PutHexCharvData(cb, "Variable-SubName", &sts->SubName, sts);
  }
  if (ShowParsed(cb)) {
    ShowParsedZksts(cb, sts);
  }
}

void ShowZKCTLO(ExitControlBlock *cb, const ZKCTLO *ctlo) {
  if (cb == nullptr || ctlo == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kCtloDump, ctlo->Version);
  PutHexData(cb, "CTLO", ctlo, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkctlo(cb, ctlo);
  }
}

void ShowZKCBD(ExitControlBlock *cb, const ZKCBD *cbd) {
  if (cb == nullptr || cbd == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kCbdDump, cbd->Version);
  PutHexData(cb, "CBD", cbd, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkcbd(cb, cbd);
  }
}

void ShowZKCBC(ExitControlBlock *cb, const ZKCBC *cbc) {
  if (cb == nullptr || cbc == nullptr) {
    return;
  }
  int32_t length = DumpLengthOf(cb, kCbcDump, cbc->Version);
  PutHexData(cb, "CBC", cbc, length, HEX_MODE_PLAIN);
  if (ShowParsed(cb)) {
    ShowParsedZkcbc(cb, cbc);
  }
}
