// The structures of a call shown the one way every handler shows them: a
// hex dump of exactly the bytes the structure's version defines, then, when
// ShowParsedData is on, the structure field by field, then the same for
// each structure it leads to. A version above the highest known is reported
// and shown at the highest known length. A null structure shows nothing.
#pragma once

#include "zk/zkbo.h"
#include "zk/zkcno.h"

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
