/* The structures of the subscription, status, control and callback calls:
 * the subscription descriptor ZKSD (ZKSUB), the subscription request
 * options ZKSRO (ZKSUBRQ), the status structure ZKSTS (ZKSTAT), the
 * control options ZKCTLO (ZKCTL), the callback descriptor ZKCBD (ZKCB) and
 * the callback context ZKCBC passed to a message consumer. */
#ifndef ZK_ZKSUB_H
#define ZK_ZKSUB_H

#include "zkconst.h"
#include "zkgmo.h"
#include "zkmd.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Subscription handles are object handles. */
typedef ZKHOBJ ZKHSUB;

/* Subscription descriptor. */
#define ZKSD_STRUC_ID "SD  "
#define ZKSD_STRUC_ID_ARRAY 'S', 'D', ' ', ' '
#define ZKSD_VERSION_1 1
#define ZKSD_CURRENT_VERSION 1
#define ZKSD_LENGTH_1 312
#define ZKSD_CURRENT_LENGTH 312

typedef struct tagZKSD {
  ZKCHAR4 StrucId;              /* "SD  " */
  ZKLONG Version;               /* 1 */
  ZKLONG Options;               /* subscription options */
  ZKCHAR48 ObjectName;          /* name of the topic object */
  ZKCHAR12 AlternateUserId;     /* alternate user identifier */
  ZKBYTE40 AlternateSecurityId; /* alternate security identifier */
  ZKLONG SubExpiry;             /* expiry of the subscription */
  ZKCHARV ObjectString;         /* topic string */
  ZKCHARV SubName;              /* subscription name */
  ZKCHARV SubUserData;          /* subscription user data */
  ZKBYTE24 SubCorrelId;         /* correlation identifier of publications */
  ZKLONG PubPriority;           /* priority of publications */
  ZKBYTE32 PubAccountingToken;  /* accounting token of publications */
  ZKCHAR32 PubApplIdentityData; /* identity data of publications */
  ZKCHARV SelectionString;      /* selection string */
  ZKLONG SubLevel;              /* subscription level */
  ZKCHARV ResObjectString;      /* resolved topic string */
} ZKSD;
typedef ZKSD *PZKSD;
typedef PZKSD *PPZKSD;

/* Initial value of ZKSD: the platform default. */
/* clang-format off */
#define ZKSD_DEFAULT                                                                               \
  {{ZKSD_STRUC_ID_ARRAY},                                                                          \
   ZKSD_VERSION_1,                                                                                 \
   ZKSO_NONE /* options: none */,                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS12},                                                                                  \
   {0} /* alternate security id: none */,                                                          \
   ZKEI_UNLIMITED /* expiry: unlimited */,                                                         \
   ZKCHARV_DEFAULT,                                                                                \
   ZKCHARV_DEFAULT,                                                                                \
   ZKCHARV_DEFAULT,                                                                                \
   {0} /* correlation id: none */,                                                                 \
   ZKPRI_PRIORITY_AS_Q_DEF /* publication priority: as queue definition */,                        \
   {0} /* accounting token: none */,                                                               \
   {ZK_BLANKS32},                                                                                  \
   ZKCHARV_DEFAULT,                                                                                \
   1 /* subscription level */,                                                                     \
   ZKCHARV_DEFAULT}
/* clang-format on */

ZK_CHECK_SIZE(ZKSD, ZKSD_LENGTH_1);
ZK_CHECK_OFFSET(ZKSD, ObjectString, 116);
ZK_CHECK_OFFSET(ZKSD, SubCorrelId, 176);
ZK_CHECK_OFFSET(ZKSD, SelectionString, 268);

/* Subscription request options. */
#define ZKSRO_STRUC_ID "SRO "
#define ZKSRO_STRUC_ID_ARRAY 'S', 'R', 'O', ' '
#define ZKSRO_VERSION_1 1
#define ZKSRO_CURRENT_VERSION 1
#define ZKSRO_LENGTH_1 16
#define ZKSRO_CURRENT_LENGTH 16

typedef struct tagZKSRO {
  ZKCHAR4 StrucId; /* "SRO " */
  ZKLONG Version;  /* 1 */
  ZKLONG Options;  /* request options */
  ZKLONG NumPubs;  /* number of publications sent (output) */
} ZKSRO;
typedef ZKSRO *PZKSRO;
typedef PZKSRO *PPZKSRO;

/* Initial value of ZKSRO: the platform default. */
#define ZKSRO_DEFAULT                                                                              \
  { {ZKSRO_STRUC_ID_ARRAY}, ZKSRO_VERSION_1, ZKSRO_NONE /* options: none */, 0 }

ZK_CHECK_SIZE(ZKSRO, ZKSRO_LENGTH_1);

/* Status structure, filled in by ZKSTAT. */
#define ZKSTS_STRUC_ID "STAT"
#define ZKSTS_STRUC_ID_ARRAY 'S', 'T', 'A', 'T'
#define ZKSTS_VERSION_1 1
#define ZKSTS_VERSION_2 2
#define ZKSTS_CURRENT_VERSION 2
#define ZKSTS_LENGTH_1 224
#define ZKSTS_LENGTH_2 272
#define ZKSTS_CURRENT_LENGTH 272

typedef struct tagZKSTS {
  ZKCHAR4 StrucId;             /* "STAT" */
  ZKLONG Version;              /* 1 or 2 */
  ZKLONG CompCode;             /* completion code of the first error */
  ZKLONG Reason;               /* reason code of the first error */
  ZKLONG PutSuccessCount;      /* number of successful asynchronous puts */
  ZKLONG PutWarningCount;      /* number of asynchronous puts that warned */
  ZKLONG PutFailureCount;      /* number of failed asynchronous puts */
  ZKLONG ObjectType;           /* type of the object of the first error */
  ZKCHAR48 ObjectName;         /* name of that object */
  ZKCHAR48 ObjectQMgrName;     /* name of its queue manager */
  ZKCHAR48 ResolvedObjectName; /* resolved name of the object */
  ZKCHAR48 ResolvedQMgrName;   /* resolved name of its queue manager */
  /* Version 2 */
  ZKCHARV ObjectString; /* long object name */
  ZKCHARV SubName;      /* subscription name */
  ZKLONG OpenOptions;   /* open options of the failing call */
  ZKLONG SubOptions;    /* subscription options of the failing call */
} ZKSTS;
typedef ZKSTS *PZKSTS;
typedef PZKSTS *PPZKSTS;

/* Initial value of ZKSTS: the platform default (version 1). */
/* clang-format off */
#define ZKSTS_DEFAULT                                                                              \
  {{ZKSTS_STRUC_ID_ARRAY},                                                                         \
   ZKSTS_VERSION_1,                                                                                \
   ZKCC_OK /* completion code: OK */,                                                              \
   ZKRC_NONE /* reason: none */,                                                                   \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   ZKOT_Q /* object type: queue */,                                                                \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   ZKCHARV_DEFAULT,                                                                                \
   ZKCHARV_DEFAULT,                                                                                \
   0 /* open options: none */,                                                                     \
   ZKSO_NONE /* subscription options: none */}
/* clang-format on */

ZK_CHECK_SIZE(ZKSTS, ZKSTS_LENGTH_2);
ZK_CHECK_OFFSET(ZKSTS, ObjectString, ZKSTS_LENGTH_1);

/* Control options of ZKCTL. */
#define ZKCTLO_STRUC_ID "CTLO"
#define ZKCTLO_STRUC_ID_ARRAY 'C', 'T', 'L', 'O'
#define ZKCTLO_VERSION_1 1
#define ZKCTLO_CURRENT_VERSION 1
#define ZKCTLO_LENGTH_1 20
#define ZKCTLO_CURRENT_LENGTH 20

typedef struct tagZKCTLO {
  ZKCHAR4 StrucId;      /* "CTLO" */
  ZKLONG Version;       /* 1 */
  ZKLONG Options;       /* control options */
  ZKLONG Reserved;      /* reserved */
  ZKPTR ConnectionArea; /* area passed to every callback of the connection */
} ZKCTLO;
typedef ZKCTLO *PZKCTLO;
typedef PZKCTLO *PPZKCTLO;

/* Initial value of ZKCTLO: the platform default. */
#define ZKCTLO_DEFAULT                                                                             \
  { {ZKCTLO_STRUC_ID_ARRAY}, ZKCTLO_VERSION_1, ZKCTLO_NONE /* options: none */, 0, 0 }

ZK_CHECK_SIZE(ZKCTLO, ZKCTLO_LENGTH_1);

/* Callback descriptor of ZKCB. */
#define ZKCBD_STRUC_ID "CBD "
#define ZKCBD_STRUC_ID_ARRAY 'C', 'B', 'D', ' '
#define ZKCBD_VERSION_1 1
#define ZKCBD_CURRENT_VERSION 1
#define ZKCBD_LENGTH_1 156
#define ZKCBD_CURRENT_LENGTH 156

typedef struct tagZKCBD {
  ZKCHAR4 StrucId;        /* "CBD " */
  ZKLONG Version;         /* 1 */
  ZKLONG CallbackType;    /* message consumer or event handler */
  ZKLONG Options;         /* callback options */
  ZKPTR CallbackArea;     /* area passed to the callback */
  ZKPTR CallbackFunction; /* the callback function */
  ZKCHAR128 CallbackName; /* name of the callback function, when not by address */
  ZKLONG MaxMsgLength;    /* longest message the callback accepts */
} ZKCBD;
typedef ZKCBD *PZKCBD;
typedef PZKCBD *PPZKCBD;

/* Initial value of ZKCBD: the platform default. */
/* clang-format off */
#define ZKCBD_DEFAULT                                                                              \
  {{ZKCBD_STRUC_ID_ARRAY},                                                                         \
   ZKCBD_VERSION_1,                                                                                \
   ZKCBT_MESSAGE_CONSUMER /* type: message consumer */,                                            \
   ZKCBDO_NONE /* options: none */,                                                                \
   0,                                                                                              \
   0,                                                                                              \
   {ZK_BLANKS128},                                                                                 \
   ZKCBD_FULL_MSG_LENGTH /* maximum message length: the full message */}
/* clang-format on */

ZK_CHECK_SIZE(ZKCBD, ZKCBD_LENGTH_1);
ZK_CHECK_OFFSET(ZKCBD, CallbackName, 24);

/* Callback context, passed by the queue manager to each callback. */
#define ZKCBC_STRUC_ID "CBC "
#define ZKCBC_STRUC_ID_ARRAY 'C', 'B', 'C', ' '
#define ZKCBC_VERSION_1 1
#define ZKCBC_VERSION_2 2
#define ZKCBC_CURRENT_VERSION 2
#define ZKCBC_LENGTH_1 48
#define ZKCBC_LENGTH_2 52
#define ZKCBC_CURRENT_LENGTH 52

typedef struct tagZKCBC {
  ZKCHAR4 StrucId;      /* "CBC " */
  ZKLONG Version;       /* 1 or 2 */
  ZKLONG CallType;      /* why the callback is called */
  ZKHOBJ Hobj;          /* object handle */
  ZKPTR CallbackArea;   /* area of the callback descriptor */
  ZKPTR ConnectionArea; /* area of the control options */
  ZKLONG CompCode;      /* completion code */
  ZKLONG Reason;        /* reason code */
  ZKLONG State;         /* state of the consumer */
  ZKLONG DataLength;    /* length of the message data */
  ZKLONG BufferLength;  /* length of the message buffer */
  ZKLONG Flags;         /* general flags */
  /* Version 2 */
  ZKLONG ReconnectDelay; /* milliseconds before a reconnection attempt */
} ZKCBC;
typedef ZKCBC *PZKCBC;
typedef PZKCBC *PPZKCBC;

/* Initial value of ZKCBC: the platform default (version 1). */
/* clang-format off */
#define ZKCBC_DEFAULT                                                                              \
  {{ZKCBC_STRUC_ID_ARRAY},                                                                         \
   ZKCBC_VERSION_1,                                                                                \
   0 /* call type: not set */,                                                                     \
   ZKHO_NONE /* no object handle */,                                                               \
   0,                                                                                              \
   0,                                                                                              \
   ZKCC_OK /* completion code: OK */,                                                              \
   ZKRC_NONE /* reason: none */,                                                                   \
   ZKCS_NONE /* state: none */,                                                                    \
   0,                                                                                              \
   0,                                                                                              \
   ZKCBCF_NONE /* flags: none */,                                                                  \
   0 /* reconnect delay */}
/* clang-format on */

ZK_CHECK_SIZE(ZKCBC, ZKCBC_LENGTH_2);
ZK_CHECK_OFFSET(ZKCBC, ReconnectDelay, ZKCBC_LENGTH_1);

/* The application's callback function named by ZKCBD CallbackFunction: the
 * queue manager calls it with the connection handle, the descriptor and
 * get options of the message, the message data and the callback context. */
typedef void ZK_CALLBACK_FUNCTION(ZKHCONN Hconn, PZKMD pMsgDesc, PZKGMO pGetMsgOpts,
                                  PZKVOID pBuffer, PZKCBC pContext);
typedef ZK_CALLBACK_FUNCTION *PZK_CALLBACK_FUNCTION;

#ifdef __cplusplus
}
#endif

#endif
