#include "describe.h"

#include <algorithm>
#include <cstring>

#include "engine_util.h"
#include "zk/zkconst.h"

namespace zkqm {
namespace {

// Counts and lengths read from the application's structures are bounded, so
// that a wrong value cannot make the check read far beyond them.
constexpr ZKLONG kMaxRecords = 1000;
constexpr ZKLONG kMaxStringLength = 1 << 20;

ZKLONG bounded(ZKLONG n, ZKLONG max) {
  return std::clamp<ZKLONG>(n, 0, max);
}

// A string that the structure gives by ZKCHARV: its VSLength bytes (the
// string and its NUL when VSLength is -1).
void charvIn(ParamSnapshot &s, const void *base, const ZKCHARV &v, const std::string &label) {
  const char *text = subStructure<const char>(base, v.VSPtr, v.VSOffset);
  if (text == nullptr) {
    return;
  }
  std::size_t n = v.VSLength == -1
                      ? std::strlen(text) + 1
                      : static_cast<std::size_t>(bounded(v.VSLength, kMaxStringLength));
  s.addBytes(label, text, n);
}

// A string buffer that the call fills: its VSBufSize bytes.
void charvOut(ParamSnapshot &s, const void *base, const ZKCHARV &v, const std::string &label) {
  const char *buffer = subStructure<const char>(base, v.VSPtr, v.VSOffset);
  if (buffer != nullptr) {
    s.addBytes(label, buffer, static_cast<std::size_t>(bounded(v.VSBufSize, kMaxStringLength)));
  }
}

const char *how(const void *pointer, ZKLONG offset) {
  return pointer != nullptr ? "by pointer" : offset != 0 ? "by offset" : "none";
}

} // namespace

int putMsgRecordLength(ZKLONG fields) {
  int n = 0;
  n += (fields & ZKPMRF_MSG_ID) ? ZK_MSG_ID_LENGTH : 0;
  n += (fields & ZKPMRF_CORREL_ID) ? ZK_CORREL_ID_LENGTH : 0;
  n += (fields & ZKPMRF_GROUP_ID) ? ZK_GROUP_ID_LENGTH : 0;
  n += (fields & ZKPMRF_FEEDBACK) ? ZKPMR_FEEDBACK_LENGTH : 0;
  n += (fields & ZKPMRF_ACCOUNTING_TOKEN) ? ZK_ACCOUNTING_TOKEN_LENGTH : 0;
  return n;
}

void describeCno(ParamSnapshot &s, const ZKCNO *cno) {
  if (cno == nullptr) {
    return;
  }
  s.addStruct("ZKCNO", cno, structNamed("ZKCNO"));
  if (cno->Version >= ZKCNO_VERSION_2) {
    const auto *cd = subStructure<const ZKCD>(cno, cno->ClientConnPtr, cno->ClientConnOffset);
    s.addStruct("ZKCNO->ZKCD", cd, structNamed("ZKCD"));
  }
  if (cno->Version >= ZKCNO_VERSION_4) {
    const auto *sco = subStructure<const ZKSCO>(cno, cno->SSLConfigPtr, cno->SSLConfigOffset);
    if (sco != nullptr) {
      s.addStruct("ZKCNO->ZKSCO", sco, structNamed("ZKSCO"));
      const auto *rec =
          subStructure<const unsigned char>(sco, sco->AuthInfoRecPtr, sco->AuthInfoRecOffset);
      ZKLONG count = rec != nullptr ? bounded(sco->AuthInfoRecCount, kMaxRecords) : 0;
      for (ZKLONG i = 0; i < count; ++i) {
        const auto *air = reinterpret_cast<const ZKAIR *>(rec);
        std::string label = "ZKCNO->ZKSCO->ZKAIR[" + std::to_string(i + 1) + "]";
        const StructDef &def = structNamed("ZKAIR");
        s.addStruct(label, air, def);
        const char *user =
            subStructure<const char>(air, air->LDAPUserNamePtr, air->LDAPUserNameOffset);
        if (user != nullptr) {
          s.addBytes(label + "->LDAPUserName", user,
                     static_cast<std::size_t>(bounded(air->LDAPUserNameLength, kMaxStringLength)));
        }
        rec += def.lengthOf(air);
      }
    }
  }
  if (cno->Version >= ZKCNO_VERSION_5) {
    const auto *csp =
        subStructure<const ZKCSP>(cno, cno->SecurityParmsPtr, cno->SecurityParmsOffset);
    if (csp != nullptr) {
      s.addStruct("ZKCNO->ZKCSP", csp, structNamed("ZKCSP"));
      const char *user = subStructure<const char>(csp, csp->CSPUserIdPtr, csp->CSPUserIdOffset);
      if (user != nullptr) {
        s.addBytes("ZKCNO->ZKCSP->CSPUserId", user,
                   static_cast<std::size_t>(bounded(csp->CSPUserIdLength, kMaxStringLength)));
      }
      const char *password =
          subStructure<const char>(csp, csp->CSPPasswordPtr, csp->CSPPasswordOffset);
      if (password != nullptr) {
        s.addBytes("ZKCNO->ZKCSP->CSPPassword", password,
                   static_cast<std::size_t>(bounded(csp->CSPPasswordLength, kMaxStringLength)));
      }
    }
  }
}

void describeOd(ParamSnapshot &s, const ZKOD *od) {
  if (od == nullptr) {
    return;
  }
  s.addStruct("ZKOD", od, structNamed("ZKOD"));
  if (od->Version >= ZKOD_VERSION_2 && od->RecsPresent > 0) {
    ZKLONG n = bounded(od->RecsPresent, kMaxRecords);
    s.addRecords("ZKOD->ZKOR", subStructure<const ZKOR>(od, od->ObjectRecPtr, od->ObjectRecOffset),
                 structNamed("ZKOR"), n);
    s.addRecords("ZKOD->ZKRR",
                 subStructure<const ZKRR>(od, od->ResponseRecPtr, od->ResponseRecOffset),
                 structNamed("ZKRR"), n);
  }
  if (od->Version >= ZKOD_VERSION_4) {
    charvIn(s, od, od->ObjectString, "ZKOD->ObjectString");
    charvIn(s, od, od->SelectionString, "ZKOD->SelectionString");
    charvOut(s, od, od->ResObjectString, "ZKOD->ResObjectString");
  }
}

void describeMd(ParamSnapshot &s, const ZKMD *md) {
  if (md != nullptr) {
    s.addStruct("ZKMD", md, structNamed("ZKMD"));
  }
}

void describePmo(ParamSnapshot &s, const ZKPMO *pmo) {
  if (pmo == nullptr) {
    return;
  }
  s.addStruct("ZKPMO", pmo, structNamed("ZKPMO"));
  if (pmo->Version >= ZKPMO_VERSION_2 && pmo->RecsPresent > 0) {
    ZKLONG n = bounded(pmo->RecsPresent, kMaxRecords);
    const char *pmr = subStructure<const char>(pmo, pmo->PutMsgRecPtr, pmo->PutMsgRecOffset);
    int unit = putMsgRecordLength(pmo->PutMsgRecFields);
    if (pmr != nullptr && unit > 0) {
      s.addBytes("ZKPMO->ZKPMR", pmr, static_cast<std::size_t>(n) * unit);
    }
    s.addRecords("ZKPMO->ZKRR",
                 subStructure<const ZKRR>(pmo, pmo->ResponseRecPtr, pmo->ResponseRecOffset),
                 structNamed("ZKRR"), n);
  }
}

void describeGmo(ParamSnapshot &s, const ZKGMO *gmo) {
  if (gmo != nullptr) {
    s.addStruct("ZKGMO", gmo, structNamed("ZKGMO"));
  }
}

void describeSd(ParamSnapshot &s, const ZKSD *sd) {
  if (sd == nullptr) {
    return;
  }
  s.addStruct("ZKSD", sd, structNamed("ZKSD"));
  charvIn(s, sd, sd->ObjectString, "ZKSD->ObjectString");
  charvIn(s, sd, sd->SubName, "ZKSD->SubName");
  charvIn(s, sd, sd->SubUserData, "ZKSD->SubUserData");
  charvIn(s, sd, sd->SelectionString, "ZKSD->SelectionString");
  charvOut(s, sd, sd->ResObjectString, "ZKSD->ResObjectString");
}

void describeSts(ParamSnapshot &s, const ZKSTS *sts) {
  if (sts == nullptr) {
    return;
  }
  s.addStruct("ZKSTS", sts, structNamed("ZKSTS"));
  if (sts->Version >= ZKSTS_VERSION_2) {
    charvOut(s, sts, sts->ObjectString, "ZKSTS->ObjectString");
    charvOut(s, sts, sts->SubName, "ZKSTS->SubName");
  }
}

void describeSimple(ParamSnapshot &s, const char *name, const void *structure) {
  if (structure != nullptr) {
    s.addStruct(name, structure, structNamed(name));
  }
}

std::string describeConnectOptions(const ZKCNO *cno) {
  if (cno == nullptr) {
    return "";
  }
  std::string text = " (ZKCNO v" + std::to_string(cno->Version);
  if (cno->Version >= ZKCNO_VERSION_2) {
    const auto *cd = subStructure<const ZKCD>(cno, cno->ClientConnPtr, cno->ClientConnOffset);
    if (cd != nullptr) {
      text += ", ZKCD v" + std::to_string(cd->Version) + " " +
              how(cno->ClientConnPtr, cno->ClientConnOffset);
    }
  }
  if (cno->Version >= ZKCNO_VERSION_4) {
    const auto *sco = subStructure<const ZKSCO>(cno, cno->SSLConfigPtr, cno->SSLConfigOffset);
    if (sco != nullptr) {
      text += ", ZKSCO v" + std::to_string(sco->Version) + " " +
              how(cno->SSLConfigPtr, cno->SSLConfigOffset);
      if (sco->AuthInfoRecCount > 0) {
        text += " with " + std::to_string(sco->AuthInfoRecCount) + " ZKAIR " +
                how(sco->AuthInfoRecPtr, sco->AuthInfoRecOffset);
      }
    }
  }
  if (cno->Version >= ZKCNO_VERSION_5) {
    const auto *csp =
        subStructure<const ZKCSP>(cno, cno->SecurityParmsPtr, cno->SecurityParmsOffset);
    if (csp != nullptr) {
      text += ", ZKCSP " + std::string(how(cno->SecurityParmsPtr, cno->SecurityParmsOffset));
    }
  }
  return text + ")";
}

} // namespace zkqm
