/* The put-message options ZKPMO (versions 1 to 3) and the put-message
 * record ZKPMR of distribution lists. */
#ifndef ZK_ZKPMO_H
#define ZK_ZKPMO_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Put-message options. */
#define ZKPMO_STRUC_ID "PMO "
#define ZKPMO_STRUC_ID_ARRAY 'P', 'M', 'O', ' '
#define ZKPMO_VERSION_1 1
#define ZKPMO_VERSION_2 2
#define ZKPMO_VERSION_3 3
#define ZKPMO_CURRENT_VERSION 3
#define ZKPMO_LENGTH_1 128
#define ZKPMO_LENGTH_2 152
#define ZKPMO_LENGTH_3 176
#define ZKPMO_CURRENT_LENGTH 176

typedef struct tagZKPMO {
  ZKCHAR4 StrucId;           /* "PMO " */
  ZKLONG Version;            /* 1 to 3 */
  ZKLONG Options;            /* put options */
  ZKLONG Timeout;            /* reserved */
  ZKHOBJ Context;            /* object handle of the input queue */
  ZKLONG KnownDestCount;     /* messages sent to local queues */
  ZKLONG UnknownDestCount;   /* messages sent to remote queues */
  ZKLONG InvalidDestCount;   /* messages that could not be sent */
  ZKCHAR48 ResolvedQName;    /* resolved name of the destination queue */
  ZKCHAR48 ResolvedQMgrName; /* resolved name of the destination queue manager */
  /* Version 2 */
  ZKLONG RecsPresent;       /* number of put-message records present */
  ZKLONG PutMsgRecFields;   /* fields present in each put-message record */
  ZKLONG PutMsgRecOffset;   /* offset of the first put-message record */
  ZKLONG ResponseRecOffset; /* offset of the first response record */
  ZKPTR PutMsgRecPtr;       /* address of the first put-message record */
  ZKPTR ResponseRecPtr;     /* address of the first response record */
  /* Version 3 */
  ZKHMSG OriginalMsgHandle; /* original message handle */
  ZKHMSG NewMsgHandle;      /* new message handle */
  ZKLONG Action;            /* type of put being performed */
  ZKLONG PubLevel;          /* level of subscription targeted */
} ZKPMO;
typedef ZKPMO *PZKPMO;
typedef PZKPMO *PPZKPMO;

/* Initial value of ZKPMO: the platform default (version 1). */
/* clang-format off */
#define ZKPMO_DEFAULT                                                                              \
  {{ZKPMO_STRUC_ID_ARRAY},                                                                         \
   ZKPMO_VERSION_1,                                                                                \
   ZKPMO_NONE /* options: none */,                                                                 \
   -1 /* timeout */,                                                                               \
   0 /* context: no handle */,                                                                     \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   0,                                                                                              \
   ZKPMRF_NONE /* put-message record fields: none */,                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0 /* original message handle: none */,                                                          \
   0 /* new message handle: none */,                                                               \
   ZKACTP_NEW /* action: new message */,                                                           \
   9 /* publication level */}
/* clang-format on */

ZK_CHECK_SIZE(ZKPMO, ZKPMO_LENGTH_3);
ZK_CHECK_OFFSET(ZKPMO, RecsPresent, ZKPMO_LENGTH_1);
ZK_CHECK_OFFSET(ZKPMO, OriginalMsgHandle, ZKPMO_LENGTH_2);

/* Put-message record. A record holds only the fields that the ZKPMO's
 * PutMsgRecFields selects, in the order below and without gaps, so its
 * real length is the sum of the lengths of the selected fields:
 * ZK_MSG_ID_LENGTH, ZK_CORREL_ID_LENGTH, ZK_GROUP_ID_LENGTH,
 * ZKPMR_FEEDBACK_LENGTH, ZK_ACCOUNTING_TOKEN_LENGTH. This structure is
 * the record with every field present. */
#define ZKPMR_FEEDBACK_LENGTH 4
#define ZKPMR_LENGTH_ALL_FIELDS 108

typedef struct tagZKPMR {
  ZKBYTE24 MsgId;           /* message identifier */
  ZKBYTE24 CorrelId;        /* correlation identifier */
  ZKBYTE24 GroupId;         /* group identifier */
  ZKLONG Feedback;          /* feedback or reason code */
  ZKBYTE32 AccountingToken; /* accounting token */
} ZKPMR;
typedef ZKPMR *PZKPMR;

/* Initial value of a record with every field present. */
#define ZKPMR_DEFAULT                                                                              \
  {                                                                                                \
    {0}, {0}, {0}, 0 /* feedback: none */, {                                                       \
      0                                                                                            \
    }                                                                                              \
  }

ZK_CHECK_SIZE(ZKPMR, ZKPMR_LENGTH_ALL_FIELDS);
ZK_CHECK_OFFSET(ZKPMR, Feedback, ZK_MSG_ID_LENGTH + ZK_CORREL_ID_LENGTH + ZK_GROUP_ID_LENGTH);

#ifdef __cplusplus
}
#endif

#endif
