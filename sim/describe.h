// The parameters of the ZKI calls as the parameter check sees them: each
// structure at its version's length, and whatever it leads to by pointer or
// by offset (channel definition, TLS options and their records, security
// parameters, object and response records, put-message records, strings).
#pragma once

#include <string>

#include "param_check.h"

namespace zkqm {

void describeCno(ParamSnapshot &s, const ZKCNO *cno);
void describeOd(ParamSnapshot &s, const ZKOD *od);
void describeMd(ParamSnapshot &s, const ZKMD *md);
void describePmo(ParamSnapshot &s, const ZKPMO *pmo);
void describeGmo(ParamSnapshot &s, const ZKGMO *gmo);
void describeSd(ParamSnapshot &s, const ZKSD *sd);
void describeSts(ParamSnapshot &s, const ZKSTS *sts);
void describeSimple(ParamSnapshot &s, const char *name, const void *structure);

// " (ZKCNO v5, ZKCD v10 by pointer, ...)" for the log; empty for null.
std::string describeConnectOptions(const ZKCNO *cno);

// The length of a put-message record with the fields `fields` selects.
int putMsgRecordLength(ZKLONG fields);

} // namespace zkqm
