// The connect options ZKCNO of ZKCONNX and the structures they lead to: the
// client channel definition ZKCD, the TLS configuration options ZKSCO, its
// authentication information records ZKAIR and the security parameters
// ZKCSP. These are always in the host's byte order. Passwords are shown as
// the application passed them.
#include <string.h>

#include "format/structure_fields.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

// The binding bits: with none of them set the binding is the standard one,
// which the list names after the client binding.
constexpr uint32_t kBindingBits = 0xF01;
constexpr uint32_t kConnectKnownBits = 0x1F00FFFF;

void ShowConnectOptions(FieldWalk *walk, const StructField *field) {
  TraceText *text = &walk->Text;
  uint32_t word = (uint32_t)FieldWalkInt32(walk, field->Offset, 0);
  TraceTextAppendFieldName(text, field->Name);
  int32_t named = 0;
  auto name = [&](const char *shown) {
    if (named++ > 0) {
      TraceTextAppend(text, " / ", 3);
    }
    TraceTextAppendString(text, shown);
  };
  for (const ConstantIntEntry *row = Constant_Zkcno; row->value != CONSTANT_TABLE_END; row++) {
    uint32_t bits = (uint32_t)row->value;
    if (bits != 0 && (bits & ~ConstantKnownBits_Zkcno) == 0 && (word & bits) == bits) {
      name(row->text);
    }
    if (bits == ZKCNO_CLIENT_BINDING && (word & kBindingBits) == 0) {
      name("STANDARD_BINDING");
    }
  }
  if (named == 0) {
    TraceTextAppend(text, "(none)", 6);
  }
  TraceTextAppendChar(text, '\n');
  if ((word & ~kConnectKnownBits) != 0) {
    FieldWalkFlush(walk);
    ShowUnknownAttribute(text->Cb, "ZKCNO - Options", word);
  }
}

// clang-format off
constexpr StructField kZkcnoFields[] = {
    FIELD_OF(ZKCNO, Version, "Version", FIELD_INT),
    FIELD_FUNCTION_OF(ZKCNO, Options, "Options", ShowConnectOptions),
    FIELD_VERSION(3, 0),
    FIELD_OF(ZKCNO, ConnTag, "ConnTag", FIELD_BYTES_DUMP),
    FIELD_VERSION(5, 0),
    FIELD_OF(ZKCNO, ConnectionId, "ConnectionId", FIELD_BYTES),
};
// clang-format on
constexpr StructDisplay kZkcno = STRUCT_DISPLAY("CNO", ZKCNO, Version, kZkcnoFields);

// ---------------------------------------------------------------------------
// TLS configuration options and authentication information records. Their
// later fields come without version headers.

constexpr ValueDisplay kFipsRequired = {ConstantIdentifier_Zkssl, ZKSSL_FIPS_NO,
                                        ZKSSL_FIPS_YES,           sizeof "ZKSSL_FIPS_" - 1,
                                        VALUE_NUMBER_REPORTED,    "ZKSCO - ZKSSL_FIPS_.."};
constexpr ValueDisplay kCertificateValPolicy = {Constant_Zkcert,  INT32_MIN, INT32_MAX, 0,
                                                VALUE_TABLE_TEXT, ""};

// clang-format off
constexpr StructField kZkscoFields[] = {
    FIELD_OF(ZKSCO, Version, "Version", FIELD_INT),
    FIELD_OF(ZKSCO, KeyRepository, "KeyRepository", FIELD_TEXT),
    FIELD_OF(ZKSCO, CryptoHardware, "CryptoHardware", FIELD_TEXT),
    FIELD_OF(ZKSCO, AuthInfoRecCount, "AuthInfoRecCount", FIELD_INT),
    FIELD_VERSION(2, FIELD_NO_HEADER),
    FIELD_OF(ZKSCO, KeyResetCount, "KeyResetCount", FIELD_INT),
    FIELD_VALUE_OF(ZKSCO, FipsRequired, "FipsRequired", kFipsRequired, 0),
    FIELD_VERSION(3, FIELD_NO_HEADER),
    FIELD_ELEMENT_OF(ZKSCO, EncryptionPolicySuiteB, 0, "EncryptionPolicySuiteB[0]", FIELD_INT),
    FIELD_ELEMENT_OF(ZKSCO, EncryptionPolicySuiteB, 1, "EncryptionPolicySuiteB[1]", FIELD_INT),
    FIELD_ELEMENT_OF(ZKSCO, EncryptionPolicySuiteB, 2, "EncryptionPolicySuiteB[2]", FIELD_INT),
    FIELD_ELEMENT_OF(ZKSCO, EncryptionPolicySuiteB, 3, "EncryptionPolicySuiteB[3]", FIELD_INT),
    FIELD_VERSION(4, FIELD_NO_HEADER),
    FIELD_VALUE_OF(ZKSCO, CertificateValPolicy, "CertificateValPolicy", kCertificateValPolicy, 0),
};
// clang-format on
constexpr StructDisplay kZksco = STRUCT_DISPLAY("SCO", ZKSCO, Version, kZkscoFields);

constexpr ValueDisplay kAuthInfoType = {ConstantIdentifier_Zkait, ZKAIT_CRL_LDAP,
                                        ZKAIT_CRL_LDAP,           sizeof "ZKAIT_" - 1,
                                        VALUE_NUMBER_REPORTED,    "ZKAIR - ZKAIT_..."};

// clang-format off
constexpr StructField kZkairFields[] = {
    FIELD_OF(ZKAIR, Version, "Version", FIELD_INT),
    FIELD_VALUE_OF(ZKAIR, AuthInfoType, "AuthInfoType", kAuthInfoType, 0),
    FIELD_OF(ZKAIR, AuthInfoConnName, "AuthInfoConnName", FIELD_TEXT),
    FIELD_OF(ZKAIR, LDAPPassword, "LDAPPassword", FIELD_TEXT),
    FIELD_VERSION(2, FIELD_NO_HEADER),
    FIELD_OF(ZKAIR, OCSPResponderURL, "OCSPResponderURL", FIELD_TEXT),
};
// clang-format on
constexpr StructDisplay kZkair = STRUCT_DISPLAY("AIR", ZKAIR, Version, kZkairFields);

// ---------------------------------------------------------------------------
// Security parameters: the user identifier and the password are found by
// address, else by offset from the structure, with their lengths.

constexpr ValueDisplay kAuthenticationType = {ConstantIdentifier_Zkcsp,   ZKCSP_AUTH_NONE,
                                              ZKCSP_AUTH_USER_ID_AND_PWD, sizeof "ZKCSP_AUTH_" - 1,
                                              VALUE_NUMBER_REPORTED,      "ZKCSP - ZKCSP_AUTH_..."};

void ShowReferencedBytes(ExitControlBlock *cb, const char *name, const ZKCSP *csp, ZKPTR pointer,
                         ZKLONG offset, ZKLONG length) {
  if (length == 0) {
    return;
  }
  const void *bytes = pointer;
  if (bytes == nullptr && offset != 0) {
    bytes = (const unsigned char *)csp + offset;
  }
  if (bytes == nullptr) {
    return;
  }
  ShowParsedHexValueFormatSelect(cb, name, bytes, length);
}

} // namespace

void ShowParsedZkcno(ExitControlBlock *cb, const ZKCNO *cno) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, cno, ZKENC_NATIVE, kZkcno.VersionOffset);
  WalkStructFields(&walk, &kZkcno);
}

void ShowParsedZksco(ExitControlBlock *cb, const ZKSCO *sco) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, sco, ZKENC_NATIVE, kZksco.VersionOffset);
  WalkStructFields(&walk, &kZksco);
}

void ShowParsedZkair(ExitControlBlock *cb, const ZKAIR *air) {
  FieldWalk walk;
  StartFieldWalk(&walk, cb, air, ZKENC_NATIVE, kZkair.VersionOffset);
  WalkStructFields(&walk, &kZkair);
}

void ShowParsedLDAPUserName(ExitControlBlock *cb, const void *name, int32_t length) {
  ShowFieldValueStringFixed(cb, "LDAPUserName", name, length);
}

void ShowParsedZkcsp(ExitControlBlock *cb, const ZKCSP *csp) {
  ShowValueField(cb, "AuthenticationType", &kAuthenticationType, csp->AuthenticationType, 1);
  ShowReferencedBytes(cb, "CSPUserId", csp, csp->CSPUserIdPtr, csp->CSPUserIdOffset,
                      csp->CSPUserIdLength);
  ShowReferencedBytes(cb, "CSPPassword", csp, csp->CSPPasswordPtr, csp->CSPPasswordOffset,
                      csp->CSPPasswordLength);
}
