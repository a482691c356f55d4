// The structures of a call shown the one way every handler shows them: a
// hex dump of exactly the bytes the structure's version defines, then, when
// ShowParsedData is on, the structure field by field, then the same for
// each structure it leads to. A version above the highest known is reported
// and shown at the highest known length. A null structure shows nothing.
#pragma once

#include <stdint.h>

#include "zk/zkbo.h"
#include "zk/zkcno.h"
#include "zk/zkgmo.h"
#include "zk/zkmd.h"
#include "zk/zkod.h"
#include "zk/zkpmo.h"

struct ExitControlBlock;

// The connect options of ZKCONNX and what they lead to: the client channel
// definition (unless ShowChannelAttributes is off), the TLS configuration
// options with their authentication information records and LDAP user
// names, and the security parameters.
void ShowZKCNO(ExitControlBlock *cb, const ZKCNO *cno);

// The begin options of ZKBEGIN: a dump only, they have no field list.
void ShowZKBO(ExitControlBlock *cb, const ZKBO *bo);

// The most authentication information records shown for one TLS
// configuration: a count beyond it is taken as this many.
#define SHOWN_AUTH_INFO_RECORDS_MAX 100
// The most bytes of one LDAP user name dumped and shown; the dump title
// still gives the length the record states.
#define SHOWN_LDAP_USER_NAME_MAX 1024

// The object descriptor of ZKOPEN and ZKPUT1. From version 4 on its three
// variable-length strings are dumped one by one; the three addresses go to
// the formatter and the dumps as ShowParsedZkod takes them (null: found
// through the string's descriptor; ZKCHARV_STRING_UNREADABLE: neither dumped
// nor shown). From version 2 on, with RecsPresent above 0, the object
// records and the response records of the distribution list follow.
void ShowZKOD(ExitControlBlock *cb, const ZKOD *od, const void *objectString = nullptr,
              const void *selectionString = nullptr, const void *resObjectString = nullptr);

// The message descriptor.
void ShowZKMD(ExitControlBlock *cb, const ZKMD *md);

// The put-message options and, from version 2 on with RecsPresent above 0,
// the put-message records (of the length their PutMsgRecFields give) and
// the response records.
void ShowZKPMO(ExitControlBlock *cb, const ZKPMO *pmo);

// The get-message options; the exit reason and the completion code tell
// whether the call has filled the output fields.
void ShowZKGMO(ExitControlBlock *cb, const ZKGMO *gmo, int32_t exitReason, int32_t compCode);

// The message data of a call, as the call passes it: the address of its
// message descriptor pointer and of its buffer pointer. The buffer is dumped
// as "Buffer", no more than `maximum` bytes when `maximum` is 0 or more, with
// a note when cut; then, with ShowParsedMsgContent, the whole `length` is
// shown parsed from the descriptor's Format and Encoding (the parsed view
// has its own limit). Without a buffer the dump is empty; without a
// descriptor there is no parsed view; a negative length shows nothing.
void ShowMsgContent(ExitControlBlock *cb, const ZKMD *const *md, const void *const *buffer,
                    int32_t length, int32_t maximum);

// The most object, response or put-message records of one call shown: a
// count beyond it is taken as this many, in the dumps and field by field.
#define SHOWN_DISTRIBUTION_RECORDS_MAX 1000
