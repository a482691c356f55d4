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
#include "zk/zksub.h"

struct ExitControlBlock;

// The bytes dumped of each version of a structure, version 1 first.
struct DumpLengths {
  const char *Name;     // the name an unknown version is reported under
  int32_t HighestKnown; // also the number of lengths below
  int32_t ByVersion[10];
};

// The dump lengths by version that the trace shows, for every structure the
// handlers dump: the lengths of the layouts in zk/, except for the channel
// definition of versions 1 and 4, whose dumps are shorter than the layouts
// (952 and 1536 bytes against 984 and 1540): the trace keeps its own lengths
// there, and the fields are still shown from the whole structure.
#define CD_DUMP_LENGTH_1 952
#define CD_DUMP_LENGTH_4 1536
inline constexpr DumpLengths kCnoDump = {
    "ZKCNO", 5, {ZKCNO_LENGTH_1, ZKCNO_LENGTH_2, ZKCNO_LENGTH_3, ZKCNO_LENGTH_4, ZKCNO_LENGTH_5}};
inline constexpr DumpLengths kCdDump = {
    "ZKCD",
    10,
    {CD_DUMP_LENGTH_1, ZKCD_LENGTH_2, ZKCD_LENGTH_3, CD_DUMP_LENGTH_4, ZKCD_LENGTH_5, ZKCD_LENGTH_6,
     ZKCD_LENGTH_7, ZKCD_LENGTH_8, ZKCD_LENGTH_9, ZKCD_LENGTH_10}};
inline constexpr DumpLengths kScoDump = {
    "ZKSCO", 4, {ZKSCO_LENGTH_1, ZKSCO_LENGTH_2, ZKSCO_LENGTH_3, ZKSCO_LENGTH_4}};
inline constexpr DumpLengths kAirDump = {"ZKAIR", 2, {ZKAIR_LENGTH_1, ZKAIR_LENGTH_2}};
inline constexpr DumpLengths kCspDump = {"ZKCSP", 1, {ZKCSP_LENGTH_1}};
inline constexpr DumpLengths kBoDump = {"ZKBO", 1, {ZKBO_LENGTH_1}};
inline constexpr DumpLengths kOdDump = {
    "ZKOD", 4, {ZKOD_LENGTH_1, ZKOD_LENGTH_2, ZKOD_LENGTH_3, ZKOD_LENGTH_4}};
inline constexpr DumpLengths kMdDump = {"ZKMD", 2, {ZKMD_LENGTH_1, ZKMD_LENGTH_2}};
inline constexpr DumpLengths kPmoDump = {
    "ZKPMO", 3, {ZKPMO_LENGTH_1, ZKPMO_LENGTH_2, ZKPMO_LENGTH_3}};
inline constexpr DumpLengths kGmoDump = {
    "ZKGMO", 4, {ZKGMO_LENGTH_1, ZKGMO_LENGTH_2, ZKGMO_LENGTH_3, ZKGMO_LENGTH_4}};
inline constexpr DumpLengths kSdDump = {"ZKSD", 1, {ZKSD_LENGTH_1}};
inline constexpr DumpLengths kSroDump = {"ZKSRO", 1, {ZKSRO_LENGTH_1}};
inline constexpr DumpLengths kStsDump = {"ZKSTS", 2, {ZKSTS_LENGTH_1, ZKSTS_LENGTH_2}};
inline constexpr DumpLengths kCtloDump = {"ZKCTLO", 1, {ZKCTLO_LENGTH_1}};
inline constexpr DumpLengths kCbdDump = {"ZKCBD", 1, {ZKCBD_LENGTH_1}};
inline constexpr DumpLengths kCbcDump = {"ZKCBC", 2, {ZKCBC_LENGTH_1, ZKCBC_LENGTH_2}};

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
