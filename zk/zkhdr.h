/* The headers that message data can begin with, each naming the format of
 * what follows it: the transmission-queue header ZKXQH, the distribution
 * header ZKDH, the reference message header ZKRMH, the dead-letter header
 * ZKDLH, the rules-and-formatting headers ZKRFH and ZKRFH2, the trigger
 * message ZKTM and the embedded command-format header ZKEPH. The
 * descriptor extension ZKMDE is in zkmd.h.
 *
 * The lengths below are those of the fixed parts; a header's StrucLength,
 * where it has one, covers what it carries beyond them. */
#ifndef ZK_ZKHDR_H
#define ZK_ZKHDR_H

#include "zkconst.h"
#include "zkcfc.h"
#include "zkmd.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Transmission-queue header: in front of every message on a transmission
 * queue, followed by the original descriptor in version-1 form. */
#define ZKXQH_STRUC_ID "XQH "
#define ZKXQH_STRUC_ID_ARRAY 'X', 'Q', 'H', ' '
#define ZKXQH_VERSION_1 1
#define ZKXQH_CURRENT_VERSION 1
#define ZKXQH_LENGTH_1 428
#define ZKXQH_CURRENT_LENGTH 428

/* Offset of the embedded descriptor: the length of the header proper. */
#define ZKXQH_MSG_DESC_OFFSET 104

typedef struct tagZKXQH {
  ZKCHAR4 StrucId;         /* "XQH " */
  ZKLONG Version;          /* 1 */
  ZKCHAR48 RemoteQName;    /* name of the destination queue */
  ZKCHAR48 RemoteQMgrName; /* name of the destination queue manager */
  ZKMD1 MsgDesc;           /* original message descriptor */
} ZKXQH;
typedef ZKXQH *PZKXQH;

/* Initial value of ZKXQH. */
#define ZKXQH_DEFAULT                                                                              \
  { {ZKXQH_STRUC_ID_ARRAY}, ZKXQH_VERSION_1, {ZK_BLANKS48}, {ZK_BLANKS48}, ZKMD1_DEFAULT }

ZK_CHECK_SIZE(ZKXQH, ZKXQH_LENGTH_1);
ZK_CHECK_OFFSET(ZKXQH, MsgDesc, ZKXQH_MSG_DESC_OFFSET);

/* Distribution header: object records and put-message records of a
 * distribution list follow it at the offsets it gives. */
#define ZKDH_STRUC_ID "DH  "
#define ZKDH_STRUC_ID_ARRAY 'D', 'H', ' ', ' '
#define ZKDH_VERSION_1 1
#define ZKDH_CURRENT_VERSION 1
#define ZKDH_LENGTH_1 48
#define ZKDH_CURRENT_LENGTH 48

typedef struct tagZKDH {
  ZKCHAR4 StrucId;        /* "DH  " */
  ZKLONG Version;         /* 1 */
  ZKLONG StrucLength;     /* header plus its records */
  ZKLONG Encoding;        /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId;  /* character set of the data that follows */
  ZKCHAR8 Format;         /* format name of the data that follows */
  ZKLONG Flags;           /* general flags */
  ZKLONG PutMsgRecFields; /* fields present in each put-message record */
  ZKLONG RecsPresent;     /* number of object records present */
  ZKLONG ObjectRecOffset; /* offset of the first object record */
  ZKLONG PutMsgRecOffset; /* offset of the first put-message record */
} ZKDH;
typedef ZKDH *PZKDH;

/* Initial value of ZKDH. */
/* clang-format off */
#define ZKDH_DEFAULT                                                                               \
  {{ZKDH_STRUC_ID_ARRAY},                                                                          \
   ZKDH_VERSION_1,                                                                                 \
   ZKDH_LENGTH_1,                                                                                  \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKDHF_NONE /* flags: none */,                                                                   \
   ZKPMRF_NONE /* put-message record fields: none */,                                              \
   0,                                                                                              \
   0,                                                                                              \
   0}
/* clang-format on */

ZK_CHECK_SIZE(ZKDH, ZKDH_LENGTH_1);

/* Reference message header: describes an object that is sent as a
 * reference; the four data items lie at the offsets it gives. */
#define ZKRMH_STRUC_ID "RMH "
#define ZKRMH_STRUC_ID_ARRAY 'R', 'M', 'H', ' '
#define ZKRMH_VERSION_1 1
#define ZKRMH_CURRENT_VERSION 1
#define ZKRMH_LENGTH_1 108
#define ZKRMH_CURRENT_LENGTH 108

typedef struct tagZKRMH {
  ZKCHAR4 StrucId;           /* "RMH " */
  ZKLONG Version;            /* 1 */
  ZKLONG StrucLength;        /* header plus its data items */
  ZKLONG Encoding;           /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId;     /* character set of the data that follows */
  ZKCHAR8 Format;            /* format name of the data that follows */
  ZKLONG Flags;              /* reference message flags */
  ZKCHAR8 ObjectType;        /* object type */
  ZKBYTE24 ObjectInstanceId; /* object instance identifier */
  ZKLONG SrcEnvLength;       /* length of the source environment data */
  ZKLONG SrcEnvOffset;       /* offset of the source environment data */
  ZKLONG SrcNameLength;      /* length of the source object name */
  ZKLONG SrcNameOffset;      /* offset of the source object name */
  ZKLONG DestEnvLength;      /* length of the destination environment data */
  ZKLONG DestEnvOffset;      /* offset of the destination environment data */
  ZKLONG DestNameLength;     /* length of the destination object name */
  ZKLONG DestNameOffset;     /* offset of the destination object name */
  ZKLONG DataLogicalLength;  /* length of the bulk data */
  ZKLONG DataLogicalOffset;  /* low offset of the bulk data */
  ZKLONG DataLogicalOffset2; /* high offset of the bulk data */
} ZKRMH;
typedef ZKRMH *PZKRMH;

/* Initial value of ZKRMH. */
/* clang-format off */
#define ZKRMH_DEFAULT                                                                              \
  {{ZKRMH_STRUC_ID_ARRAY},                                                                         \
   ZKRMH_VERSION_1,                                                                                \
   ZKRMH_LENGTH_1,                                                                                 \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKRMHF_NOT_LAST /* flags: none, not the last */,                                                \
   {ZK_BLANKS8},                                                                                   \
   {0} /* object instance id: none */,                                                             \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0}
/* clang-format on */

ZK_CHECK_SIZE(ZKRMH, ZKRMH_LENGTH_1);
ZK_CHECK_OFFSET(ZKRMH, SrcEnvLength, 64);

/* Dead-letter header: in front of a message that could not be delivered. */
#define ZKDLH_STRUC_ID "DLH "
#define ZKDLH_STRUC_ID_ARRAY 'D', 'L', 'H', ' '
#define ZKDLH_VERSION_1 1
#define ZKDLH_CURRENT_VERSION 1
#define ZKDLH_LENGTH_1 172
#define ZKDLH_CURRENT_LENGTH 172

typedef struct tagZKDLH {
  ZKCHAR4 StrucId;       /* "DLH " */
  ZKLONG Version;        /* 1 */
  ZKLONG Reason;         /* why the message was not delivered */
  ZKCHAR48 DestQName;    /* name of the original destination queue */
  ZKCHAR48 DestQMgrName; /* name of the original destination queue manager */
  ZKLONG Encoding;       /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId; /* character set of the data that follows */
  ZKCHAR8 Format;        /* format name of the data that follows */
  ZKLONG PutApplType;    /* type of the application that put it here */
  ZKCHAR28 PutApplName;  /* name of that application */
  ZKCHAR8 PutDate;       /* date it was put here, YYYYMMDD */
  ZKCHAR8 PutTime;       /* time it was put here, HHMMSSTH */
} ZKDLH;
typedef ZKDLH *PZKDLH;

/* Initial value of ZKDLH. */
/* clang-format off */
#define ZKDLH_DEFAULT                                                                              \
  {{ZKDLH_STRUC_ID_ARRAY},                                                                         \
   ZKDLH_VERSION_1,                                                                                \
   ZKRC_NONE /* reason: none */,                                                                   \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKAT_NO_CONTEXT /* put application type: no context */,                                         \
   {ZK_BLANKS28},                                                                                  \
   {ZK_BLANKS8},                                                                                   \
   {ZK_BLANKS8}}
/* clang-format on */

ZK_CHECK_SIZE(ZKDLH, ZKDLH_LENGTH_1);
ZK_CHECK_OFFSET(ZKDLH, Encoding, 108);

/* Rules-and-formatting header, version 1: a name/value string follows the
 * fixed part, up to StrucLength. Version 2 is ZKRFH2 below; both share the
 * structure identifier. */
#define ZKRFH_STRUC_ID "RFH "
#define ZKRFH_STRUC_ID_ARRAY 'R', 'F', 'H', ' '
#define ZKRFH_VERSION_1 1
#define ZKRFH_VERSION_2 2
#define ZKRFH_CURRENT_VERSION 2
#define ZKRFH_LENGTH_1 32
#define ZKRFH_STRUC_LENGTH_FIXED 32

typedef struct tagZKRFH {
  ZKCHAR4 StrucId;       /* "RFH " */
  ZKLONG Version;        /* 1 */
  ZKLONG StrucLength;    /* fixed part plus the name/value string */
  ZKLONG Encoding;       /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId; /* character set of the data that follows */
  ZKCHAR8 Format;        /* format name of the data that follows */
  ZKLONG Flags;          /* flags */
} ZKRFH;
typedef ZKRFH *PZKRFH;

/* Initial value of ZKRFH. */
/* clang-format off */
#define ZKRFH_DEFAULT                                                                              \
  {{ZKRFH_STRUC_ID_ARRAY},                                                                         \
   ZKRFH_VERSION_1,                                                                                \
   ZKRFH_STRUC_LENGTH_FIXED,                                                                       \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKRFH_NONE /* flags: none */}
/* clang-format on */

ZK_CHECK_SIZE(ZKRFH, ZKRFH_LENGTH_1);

/* Rules-and-formatting header, version 2: folders follow the fixed part
 * up to StrucLength, each a 32-bit NameValueLength and that many bytes of
 * NameValueData. */
#define ZKRFH2_STRUC_ID ZKRFH_STRUC_ID
#define ZKRFH2_STRUC_ID_ARRAY ZKRFH_STRUC_ID_ARRAY
#define ZKRFH2_VERSION_2 ZKRFH_VERSION_2
#define ZKRFH2_CURRENT_VERSION 2
#define ZKRFH2_LENGTH_2 36
#define ZKRFH2_STRUC_LENGTH_FIXED 36

typedef struct tagZKRFH2 {
  ZKCHAR4 StrucId;       /* "RFH " */
  ZKLONG Version;        /* 2 */
  ZKLONG StrucLength;    /* fixed part plus the folders */
  ZKLONG Encoding;       /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId; /* character set of the data that follows */
  ZKCHAR8 Format;        /* format name of the data that follows */
  ZKLONG Flags;          /* flags */
  ZKLONG NameValueCCSID; /* character set of the folders */
} ZKRFH2;
typedef ZKRFH2 *PZKRFH2;

/* Initial value of ZKRFH2. */
/* clang-format off */
#define ZKRFH2_DEFAULT                                                                             \
  {{ZKRFH2_STRUC_ID_ARRAY},                                                                        \
   ZKRFH2_VERSION_2,                                                                               \
   ZKRFH2_STRUC_LENGTH_FIXED,                                                                      \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKRFH_NONE /* flags: none */,                                                                   \
   1208 /* folders in UTF-8 */}
/* clang-format on */

ZK_CHECK_SIZE(ZKRFH2, ZKRFH2_LENGTH_2);
ZK_CHECK_OFFSET(ZKRFH2, NameValueCCSID, ZKRFH_LENGTH_1);

/* Trigger message: what the queue manager puts to an initiation queue. */
#define ZKTM_STRUC_ID "TM  "
#define ZKTM_STRUC_ID_ARRAY 'T', 'M', ' ', ' '
#define ZKTM_VERSION_1 1
#define ZKTM_CURRENT_VERSION 1
#define ZKTM_LENGTH_1 684
#define ZKTM_CURRENT_LENGTH 684

typedef struct tagZKTM {
  ZKCHAR4 StrucId;      /* "TM  " */
  ZKLONG Version;       /* 1 */
  ZKCHAR48 QName;       /* name of the triggered queue */
  ZKCHAR48 ProcessName; /* name of the process object */
  ZKCHAR64 TriggerData; /* trigger data */
  ZKLONG ApplType;      /* type of the application to start */
  ZKCHAR256 ApplId;     /* identifier of the application to start */
  ZKCHAR128 EnvData;    /* environment data */
  ZKCHAR128 UserData;   /* user data */
} ZKTM;
typedef ZKTM *PZKTM;

/* Initial value of ZKTM. */
/* clang-format off */
#define ZKTM_DEFAULT                                                                               \
  {{ZKTM_STRUC_ID_ARRAY},                                                                          \
   ZKTM_VERSION_1,                                                                                 \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS64},                                                                                  \
   0 /* application type: none */,                                                                 \
   {ZK_BLANKS256},                                                                                 \
   {ZK_BLANKS128},                                                                                 \
   {ZK_BLANKS128}}
/* clang-format on */

ZK_CHECK_SIZE(ZKTM, ZKTM_LENGTH_1);
ZK_CHECK_OFFSET(ZKTM, ApplType, 168);

/* Embedded command-format header: carries a command-format header and its
 * parameters inside other message data. */
#define ZKEPH_STRUC_ID "EPH "
#define ZKEPH_STRUC_ID_ARRAY 'E', 'P', 'H', ' '
#define ZKEPH_VERSION_1 1
#define ZKEPH_CURRENT_VERSION 1
#define ZKEPH_LENGTH_1 68
#define ZKEPH_STRUC_LENGTH_FIXED 68

/* Offset of the embedded command-format header. */
#define ZKEPH_PCF_HEADER_OFFSET 32

typedef struct tagZKEPH {
  ZKCHAR4 StrucId;       /* "EPH " */
  ZKLONG Version;        /* 1 */
  ZKLONG StrucLength;    /* fixed part plus the parameters */
  ZKLONG Encoding;       /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId; /* character set of the data that follows */
  ZKCHAR8 Format;        /* format name of the data that follows */
  ZKLONG Flags;          /* flags */
  ZKCFH PCFHeader;       /* command-format header; its parameters follow */
} ZKEPH;
typedef ZKEPH *PZKEPH;

/* Initial value of ZKEPH. */
/* clang-format off */
#define ZKEPH_DEFAULT                                                                              \
  {{ZKEPH_STRUC_ID_ARRAY},                                                                         \
   ZKEPH_VERSION_1,                                                                                \
   ZKEPH_STRUC_LENGTH_FIXED,                                                                       \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKEPH_NONE /* flags: none */,                                                                   \
   ZKCFH_DEFAULT}
/* clang-format on */

ZK_CHECK_SIZE(ZKEPH, ZKEPH_LENGTH_1);
ZK_CHECK_OFFSET(ZKEPH, PCFHeader, ZKEPH_PCF_HEADER_OFFSET);

#ifdef __cplusplus
}
#endif

#endif
