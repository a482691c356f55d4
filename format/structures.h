// The platform's structures shown field by field: message and object
// descriptors, the records of distribution lists, open and close options,
// put and get options, connect options and what they lead to. Each writes
// its lines to the trace output; none fails.
#pragma once

#include <stdint.h>

#include "zk/zkcno.h"
#include "zk/zkgmo.h"
#include "zk/zkmd.h"
#include "zk/zkod.h"
#include "zk/zkpmo.h"

struct ExitControlBlock;

// The message descriptor.
void ShowParsedZkmd(ExitControlBlock *cb, const ZKMD *md);
// The object descriptor; each string address goes to the variable-length
// string of the same place (null: found through its descriptor;
// ZKCHARV_STRING_UNREADABLE: not shown).
void ShowParsedZkod(ExitControlBlock *cb, const ZKOD *od, const void *objectString,
                    const void *selectionString, const void *resObjectString);
// Object records and response records of a distribution list.
void ShowParsedZkor(ExitControlBlock *cb, const ZKOR *records, int32_t count);
void ShowParsedZkrr(ExitControlBlock *cb, const ZKRR *records, int32_t count);
// The option words of ZKOPEN and ZKCLOSE, as the field "Options".
void ShowParsedZkoo(ExitControlBlock *cb, int32_t options);
void ShowParsedZkco(ExitControlBlock *cb, int32_t options);
// Report options and message flags, as the fields "Report" and "MsgFlags".
// Embedded: the caller has written the field name, and unknown bits are not
// reported.
void ShowParsedReportOptions(ExitControlBlock *cb, int32_t options, uint8_t embedded);
void ShowParsedMsgFlags(ExitControlBlock *cb, int32_t flags, uint8_t embedded);

// Put-message options, the fields of put-message records, the records.
void ShowParsedZkpmo(ExitControlBlock *cb, const ZKPMO *pmo);
void ShowParsedZkpmrf(ExitControlBlock *cb, int32_t fields);
// Length of one put-message record for the given ZKPMRF_* flags.
int32_t CalculateZkpmrUnitLength(int32_t putMsgRecFields);
void ShowParsedZkpmr(ExitControlBlock *cb, const void *records, int32_t count, int32_t fields);
// Get-message options; exitReason and compCode say whether the call has
// filled the output fields.
void ShowParsedZkgmo(ExitControlBlock *cb, const ZKGMO *gmo, int32_t exitReason, int32_t compCode);

// Connect options and the structures they lead to.
void ShowParsedZkcno(ExitControlBlock *cb, const ZKCNO *cno);
void ShowParsedZkcd(ExitControlBlock *cb, const ZKCD *cd);
void ShowParsedZksco(ExitControlBlock *cb, const ZKSCO *sco);
void ShowParsedZkair(ExitControlBlock *cb, const ZKAIR *air);
void ShowParsedLDAPUserName(ExitControlBlock *cb, const void *name, int32_t length);
void ShowParsedZkcsp(ExitControlBlock *cb, const ZKCSP *csp);

// A structure's version checked against the highest this exit knows: a
// higher one is reported under `name` and the highest known is returned,
// else the version itself.
int32_t CheckStructureVersion(ExitControlBlock *cb, const char *name, int32_t version,
                              int32_t highestKnown);
