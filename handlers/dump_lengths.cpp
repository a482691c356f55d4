// The dump lengths by version and the address-or-offset rule that the
// structure dumps of the handlers share.
#include "handlers/dump_lengths.h"

#include "exit/control_block.h"
#include "format/structures.h"

int32_t DumpLengthOf(ExitControlBlock *cb, const DumpLengths &lengths, int32_t version,
                     int32_t *used) {
  int32_t known = CheckStructureVersion(cb, lengths.Name, version, lengths.HighestKnown);
  if (used != nullptr) {
    *used = known;
  }
  return lengths.ByVersion[known >= 1 ? known - 1 : 0];
}

int32_t LengthOfVersion(const DumpLengths &lengths, int32_t version) {
  int32_t known = version > lengths.HighestKnown ? lengths.HighestKnown : version;
  return lengths.ByVersion[known >= 1 ? known - 1 : 0];
}

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
