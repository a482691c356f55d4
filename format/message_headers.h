// The headers of message data, one formatter each. The chain calls them
// with the bytes that remain from the header on and the header's offset in
// the message data; `encoding` is the byte order in force before the header
// and becomes the one it names for what follows, and `nextFormat` (8 bytes)
// receives the format it names. A header whose fixed part does not fit in
// what remains within the limit of parsed content is not shown and names
// no format.
#pragma once

#include <stdint.h>

#include "zk/zkhdr.h"

struct ExitControlBlock;

#define MESSAGE_FORMAT_LENGTH 8
// Bytes of a name/value token written at a time.
#define NAME_VALUE_TOKEN_PIECE 199

// The bytes from `offset` on that may be shown: what remains, cut at the
// limit of parsed content (ShowMaxLenParsedContent, counted from the start
// of the message data; negative: no limit).
int32_t ParsedContentClippedLength(const ExitControlBlock *cb, int32_t remaining, uint32_t offset);

// Transmission-queue header, its integers in the header's own byte order.
void ShowParsedZkxqh(ExitControlBlock *cb, const ZKXQH *xqh);
// Distribution and reference message headers; they return the length they
// take (0: not shown).
int32_t ShowParsedZKDH(ExitControlBlock *cb, char *nextFormat, int32_t *encoding,
                       const void *header, int32_t remaining, uint32_t offset);
int32_t ShowParsedZKRMH(ExitControlBlock *cb, char *nextFormat, int32_t *encoding,
                        const void *header, int32_t remaining, uint32_t offset);
// One data item of a reference message header, at `offset` from the
// header's start, within the header's `clippedLength` bytes.
void ShowOneZKRMHData(ExitControlBlock *cb, const void *header, const char *name, int32_t length,
                      int32_t offset, int32_t clippedLength);
// Dead-letter header and descriptor extension: always 172 and 72 bytes.
void ShowParsedZKDLH(ExitControlBlock *cb, char *nextFormat, int32_t *encoding, const void *header,
                     int32_t remaining, uint32_t offset);
void ShowParsedZKMDE(ExitControlBlock *cb, char *nextFormat, int32_t *encoding, const void *header,
                     int32_t remaining, uint32_t offset);
// Rules-and-formatting header version 2 with its folders; returns the
// length it takes (0: none).
int32_t ShowParsedZKHRF2(ExitControlBlock *cb, char *nextFormat, int32_t *encoding,
                         const void *header, int32_t remaining, uint32_t offset);
// Headers that end the chain: rules-and-formatting version 1 with its
// name/value string, the trigger message, and the embedded command-format
// header with the parameters it holds.
void ShowParsedZKHRF1(ExitControlBlock *cb, int32_t encoding, const void *header, int32_t remaining,
                      uint32_t offset);
void ShowParsedZKTM(ExitControlBlock *cb, int32_t encoding, const void *header, int32_t remaining,
                    uint32_t offset);
void ShowParsedZKEPH(ExitControlBlock *cb, int32_t encoding, const void *header, int32_t remaining,
                     uint32_t offset);
