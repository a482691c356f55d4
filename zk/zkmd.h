/* The message descriptor ZKMD (versions 1 and 2), its version-1 form ZKMD1
 * as embedded in the transmission-queue header, and the descriptor
 * extension ZKMDE that carries the version-2 fields in the message data. */
#ifndef ZK_ZKMD_H
#define ZK_ZKMD_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Message descriptor. */
#define ZKMD_STRUC_ID "MD  "
#define ZKMD_STRUC_ID_ARRAY 'M', 'D', ' ', ' '
#define ZKMD_VERSION_1 1
#define ZKMD_VERSION_2 2
#define ZKMD_CURRENT_VERSION 2
#define ZKMD_LENGTH_1 324
#define ZKMD_LENGTH_2 364
#define ZKMD_CURRENT_LENGTH 364

typedef struct tagZKMD {
  ZKCHAR4 StrucId;           /* "MD  " */
  ZKLONG Version;            /* 1 or 2 */
  ZKLONG Report;             /* report options */
  ZKLONG MsgType;            /* message type */
  ZKLONG Expiry;             /* lifetime in tenths of a second */
  ZKLONG Feedback;           /* feedback or reason code */
  ZKLONG Encoding;           /* numeric encoding of the message data */
  ZKLONG CodedCharSetId;     /* character set of the message data */
  ZKCHAR8 Format;            /* format name of the message data */
  ZKLONG Priority;           /* message priority */
  ZKLONG Persistence;        /* message persistence */
  ZKBYTE24 MsgId;            /* message identifier */
  ZKBYTE24 CorrelId;         /* correlation identifier */
  ZKLONG BackoutCount;       /* number of times backed out */
  ZKCHAR48 ReplyToQ;         /* name of the reply queue */
  ZKCHAR48 ReplyToQMgr;      /* name of the reply queue manager */
  ZKCHAR12 UserIdentifier;   /* user identifier */
  ZKBYTE32 AccountingToken;  /* accounting token */
  ZKCHAR32 ApplIdentityData; /* application data about identity */
  ZKLONG PutApplType;        /* type of the putting application */
  ZKCHAR28 PutApplName;      /* name of the putting application */
  ZKCHAR8 PutDate;           /* date of the put, YYYYMMDD */
  ZKCHAR8 PutTime;           /* time of the put, HHMMSSTH */
  ZKCHAR4 ApplOriginData;    /* application data about origin */
  /* Version 2 */
  ZKBYTE24 GroupId;      /* group identifier */
  ZKLONG MsgSeqNumber;   /* sequence number of the message in its group */
  ZKLONG Offset;         /* offset of a segment in the logical message */
  ZKLONG MsgFlags;       /* message flags */
  ZKLONG OriginalLength; /* length of the original message */
} ZKMD;
typedef ZKMD *PZKMD;
typedef PZKMD *PPZKMD;
typedef ZKMD ZKMD2;
typedef ZKMD2 *PZKMD2;

/* Message descriptor, version 1 only: the form the transmission-queue
 * header embeds. Field for field the same as the first part of ZKMD. */
typedef struct tagZKMD1 {
  ZKCHAR4 StrucId;           /* "MD  " */
  ZKLONG Version;            /* 1 */
  ZKLONG Report;             /* report options */
  ZKLONG MsgType;            /* message type */
  ZKLONG Expiry;             /* lifetime in tenths of a second */
  ZKLONG Feedback;           /* feedback or reason code */
  ZKLONG Encoding;           /* numeric encoding of the message data */
  ZKLONG CodedCharSetId;     /* character set of the message data */
  ZKCHAR8 Format;            /* format name of the message data */
  ZKLONG Priority;           /* message priority */
  ZKLONG Persistence;        /* message persistence */
  ZKBYTE24 MsgId;            /* message identifier */
  ZKBYTE24 CorrelId;         /* correlation identifier */
  ZKLONG BackoutCount;       /* number of times backed out */
  ZKCHAR48 ReplyToQ;         /* name of the reply queue */
  ZKCHAR48 ReplyToQMgr;      /* name of the reply queue manager */
  ZKCHAR12 UserIdentifier;   /* user identifier */
  ZKBYTE32 AccountingToken;  /* accounting token */
  ZKCHAR32 ApplIdentityData; /* application data about identity */
  ZKLONG PutApplType;        /* type of the putting application */
  ZKCHAR28 PutApplName;      /* name of the putting application */
  ZKCHAR8 PutDate;           /* date of the put, YYYYMMDD */
  ZKCHAR8 PutTime;           /* time of the put, HHMMSSTH */
  ZKCHAR4 ApplOriginData;    /* application data about origin */
} ZKMD1;
typedef ZKMD1 *PZKMD1;

/* The version-1 fields of the platform default, shared by ZKMD and ZKMD1. */
/* clang-format off */
#define ZKMD_DEFAULT_VERSION_1_FIELDS                                                              \
  {ZKMD_STRUC_ID_ARRAY},                                                                           \
  ZKMD_VERSION_1,                                                                                  \
  ZKRO_NONE /* report: none */,                                                                    \
  ZKMT_DATAGRAM /* message type: datagram */,                                                      \
  ZKEI_UNLIMITED /* expiry: unlimited */,                                                          \
  ZKFB_NONE /* feedback: none */,                                                                  \
  ZKENC_NATIVE /* encoding: native */,                                                             \
  0 /* CCSID: queue manager's */,                                                                  \
  {ZK_BLANKS8} /* format: none */,                                                                 \
  ZKPRI_PRIORITY_AS_Q_DEF /* priority: as queue definition */,                                     \
  ZKPER_PERSISTENCE_AS_Q_DEF /* persistence: as queue definition */,                               \
  {0} /* MsgId: none */,                                                                           \
  {0} /* CorrelId: none */,                                                                        \
  0 /* backout count */,                                                                           \
  {ZK_BLANKS48},                                                                                   \
  {ZK_BLANKS48},                                                                                   \
  {ZK_BLANKS12},                                                                                   \
  {0} /* accounting token: none */,                                                                \
  {ZK_BLANKS32},                                                                                   \
  ZKAT_NO_CONTEXT /* put application type: no context */,                                          \
  {ZK_BLANKS28},                                                                                   \
  {ZK_BLANKS8},                                                                                    \
  {ZK_BLANKS8},                                                                                    \
  {ZK_BLANKS4}

/* Initial value of ZKMD: the platform default (version 1). */
#define ZKMD_DEFAULT                                                                               \
  {ZKMD_DEFAULT_VERSION_1_FIELDS,                                                                  \
   {0} /* GroupId: none */,                                                                        \
   1 /* MsgSeqNumber */,                                                                           \
   0 /* Offset */,                                                                                 \
   ZKMF_NONE /* MsgFlags: none */,                                                                 \
   -1 /* OriginalLength: undefined */}

/* Initial value of ZKMD1. */
#define ZKMD1_DEFAULT {ZKMD_DEFAULT_VERSION_1_FIELDS}
/* clang-format on */

ZK_CHECK_SIZE(ZKMD, ZKMD_LENGTH_2);
ZK_CHECK_OFFSET(ZKMD, GroupId, ZKMD_LENGTH_1);
ZK_CHECK_OFFSET(ZKMD, Format, 32);
ZK_CHECK_SIZE(ZKMD1, ZKMD_LENGTH_1);

/* Message descriptor extension: the version-2 fields of a descriptor,
 * carried as a header in front of the message data. */
#define ZKMDE_STRUC_ID "MDE "
#define ZKMDE_STRUC_ID_ARRAY 'M', 'D', 'E', ' '
#define ZKMDE_VERSION_2 2
#define ZKMDE_CURRENT_VERSION 2
#define ZKMDE_LENGTH_2 72
#define ZKMDE_CURRENT_LENGTH 72

typedef struct tagZKMDE {
  ZKCHAR4 StrucId;       /* "MDE " */
  ZKLONG Version;        /* 2 */
  ZKLONG StrucLength;    /* 72 */
  ZKLONG Encoding;       /* numeric encoding of the data that follows */
  ZKLONG CodedCharSetId; /* character set of the data that follows */
  ZKCHAR8 Format;        /* format name of the data that follows */
  ZKLONG Flags;          /* general flags */
  ZKBYTE24 GroupId;      /* group identifier */
  ZKLONG MsgSeqNumber;   /* sequence number of the message in its group */
  ZKLONG Offset;         /* offset of a segment in the logical message */
  ZKLONG MsgFlags;       /* message flags */
  ZKLONG OriginalLength; /* length of the original message */
} ZKMDE;
typedef ZKMDE *PZKMDE;

/* Initial value of ZKMDE. */
/* clang-format off */
#define ZKMDE_DEFAULT                                                                              \
  {{ZKMDE_STRUC_ID_ARRAY},                                                                         \
   ZKMDE_VERSION_2,                                                                                \
   ZKMDE_LENGTH_2,                                                                                 \
   ZKENC_NATIVE /* encoding: native */,                                                            \
   ZKCCSI_INHERIT /* CCSID: inherited */,                                                          \
   {ZK_BLANKS8} /* format: none */,                                                                \
   ZKMDEF_NONE /* flags: none */,                                                                  \
   {0} /* GroupId: none */,                                                                        \
   1 /* MsgSeqNumber */,                                                                           \
   0 /* Offset */,                                                                                 \
   ZKMF_NONE /* MsgFlags: none */,                                                                 \
   -1 /* OriginalLength: undefined */}
/* clang-format on */

ZK_CHECK_SIZE(ZKMDE, ZKMDE_LENGTH_2);

#ifdef __cplusplus
}
#endif

#endif
