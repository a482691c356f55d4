// What the structure dumps of the handlers share: the dump lengths by
// version of every structure they dump, the length to dump for a version,
// the way a structure reaches another (by address or by offset), and the
// setting that says whether the dumps are followed by the fields.
#pragma once

#include <stdint.h>

#include "zk/zkbo.h"
#include "zk/zkcno.h"
#include "zk/zkgmo.h"
#include "zk/zkmd.h"
#include "zk/zkod.h"
#include "zk/zkpmo.h"

struct ExitControlBlock;

// The bytes dumped of each version of a structure, version 1 first.
struct DumpLengths {
  const char *Name;     // the name an unknown version is reported under
  int32_t HighestKnown; // also the number of lengths below
  int32_t ByVersion[10];
};

// The dump lengths by version that the trace shows, for every structure the
// handlers dump. For the channel definition of versions 1 and 4 they are
// shorter than the layouts of zk/zkcno.h (ZKCD_LENGTH_1 984, ZKCD_LENGTH_4
// 1540): the trace keeps its own lengths, and the fields are still shown
// from the whole structure.
inline constexpr DumpLengths kCnoDump = {"ZKCNO", 5, {12, 20, 148, 156, 188}};
inline constexpr DumpLengths kCdDump = {
    "ZKCD", 10, {952, 1312, 1480, 1536, 1552, 1648, 1748, 1840, 1864, 1876}};
inline constexpr DumpLengths kScoDump = {"ZKSCO", 4, {532, 540, 556, 560}};
inline constexpr DumpLengths kAirDump = {"ZKAIR", 2, {320, 576}};
inline constexpr DumpLengths kCspDump = {"ZKCSP", 1, {48}};
inline constexpr DumpLengths kBoDump = {"ZKBO", 1, {12}};
inline constexpr DumpLengths kOdDump = {"ZKOD", 4, {168, 200, 336, 400}};
inline constexpr DumpLengths kMdDump = {"ZKMD", 2, {324, 364}};
inline constexpr DumpLengths kPmoDump = {"ZKPMO", 3, {128, 152, 176}};
inline constexpr DumpLengths kGmoDump = {"ZKGMO", 4, {72, 80, 100, 112}};

// No dump reaches beyond the structure as this exit declares it.
static_assert(kCnoDump.ByVersion[kCnoDump.HighestKnown - 1] == sizeof(ZKCNO), "ZKCNO dump");
static_assert(kCdDump.ByVersion[kCdDump.HighestKnown - 1] == sizeof(ZKCD), "ZKCD dump");
static_assert(kScoDump.ByVersion[kScoDump.HighestKnown - 1] == sizeof(ZKSCO), "ZKSCO dump");
static_assert(kAirDump.ByVersion[kAirDump.HighestKnown - 1] == sizeof(ZKAIR), "ZKAIR dump");
static_assert(kCspDump.ByVersion[kCspDump.HighestKnown - 1] == sizeof(ZKCSP), "ZKCSP dump");
static_assert(kBoDump.ByVersion[kBoDump.HighestKnown - 1] == sizeof(ZKBO), "ZKBO dump");
static_assert(kOdDump.ByVersion[kOdDump.HighestKnown - 1] == sizeof(ZKOD), "ZKOD dump");
static_assert(kMdDump.ByVersion[kMdDump.HighestKnown - 1] == sizeof(ZKMD), "ZKMD dump");
static_assert(kPmoDump.ByVersion[kPmoDump.HighestKnown - 1] == sizeof(ZKPMO), "ZKPMO dump");
static_assert(kGmoDump.ByVersion[kGmoDump.HighestKnown - 1] == sizeof(ZKGMO), "ZKGMO dump");
// The queue structures' dumps of each version end where the layouts say the
// fields of the next version begin.
static_assert(kOdDump.ByVersion[0] == ZKOD_LENGTH_1 && kOdDump.ByVersion[1] == ZKOD_LENGTH_2 &&
                  kOdDump.ByVersion[2] == ZKOD_LENGTH_3,
              "ZKOD dump by version");
static_assert(kMdDump.ByVersion[0] == ZKMD_LENGTH_1, "ZKMD dump by version");
static_assert(kPmoDump.ByVersion[0] == ZKPMO_LENGTH_1 && kPmoDump.ByVersion[1] == ZKPMO_LENGTH_2,
              "ZKPMO dump by version");
static_assert(kGmoDump.ByVersion[0] == ZKGMO_LENGTH_1 && kGmoDump.ByVersion[1] == ZKGMO_LENGTH_2 &&
                  kGmoDump.ByVersion[2] == ZKGMO_LENGTH_3,
              "ZKGMO dump by version");

// The length dumped for a structure of this version: a version above the
// highest known is reported and dumped at the highest known length; one
// below 1 is dumped at the length of version 1. The version used is left
// in *used when asked for.
int32_t DumpLengthOf(ExitControlBlock *cb, const DumpLengths &lengths, int32_t version,
                     int32_t *used = nullptr);

// The same length, without reporting a version above the highest known.
int32_t LengthOfVersion(const DumpLengths &lengths, int32_t version);

// A structure reached from another: by its address when that is not null,
// else by its offset from the other's start when that is not zero, else
// there is none.
const unsigned char *Reached(const void *from, const void *address, int32_t offset);

// Whether the structures are shown field by field after their dumps.
bool ShowParsed(const ExitControlBlock *cb);
