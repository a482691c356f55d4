/* The object descriptor ZKOD (versions 1 to 4) and the object and response
 * records ZKOR and ZKRR that it points to when it opens a distribution
 * list. */
#ifndef ZK_ZKOD_H
#define ZK_ZKOD_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Object descriptor. */
#define ZKOD_STRUC_ID "OD  "
#define ZKOD_STRUC_ID_ARRAY 'O', 'D', ' ', ' '
#define ZKOD_VERSION_1 1
#define ZKOD_VERSION_2 2
#define ZKOD_VERSION_3 3
#define ZKOD_VERSION_4 4
#define ZKOD_CURRENT_VERSION 4
#define ZKOD_LENGTH_1 168
#define ZKOD_LENGTH_2 200
#define ZKOD_LENGTH_3 336
#define ZKOD_LENGTH_4 400
#define ZKOD_CURRENT_LENGTH 400

typedef struct tagZKOD {
  ZKCHAR4 StrucId;          /* "OD  " */
  ZKLONG Version;           /* 1 to 4 */
  ZKLONG ObjectType;        /* type of the object */
  ZKCHAR48 ObjectName;      /* name of the object */
  ZKCHAR48 ObjectQMgrName;  /* name of the object's queue manager */
  ZKCHAR48 DynamicQName;    /* name template of a dynamic queue */
  ZKCHAR12 AlternateUserId; /* alternate user identifier */
  /* Version 2 */
  ZKLONG RecsPresent;       /* number of object records present */
  ZKLONG KnownDestCount;    /* local queues opened successfully */
  ZKLONG UnknownDestCount;  /* remote queues opened successfully */
  ZKLONG InvalidDestCount;  /* queues that failed to open */
  ZKLONG ObjectRecOffset;   /* offset of the first object record */
  ZKLONG ResponseRecOffset; /* offset of the first response record */
  ZKPTR ObjectRecPtr;       /* address of the first object record */
  ZKPTR ResponseRecPtr;     /* address of the first response record */
  /* Version 3 */
  ZKBYTE40 AlternateSecurityId; /* alternate security identifier */
  ZKCHAR48 ResolvedQName;       /* resolved queue name */
  ZKCHAR48 ResolvedQMgrName;    /* resolved queue manager name */
  /* Version 4 */
  ZKCHARV ObjectString;    /* long object name (topic string) */
  ZKCHARV SelectionString; /* selection string */
  ZKCHARV ResObjectString; /* resolved long object name */
  ZKLONG ResolvedType;     /* type of the resolved object */
} ZKOD;
typedef ZKOD *PZKOD;
typedef PZKOD *PPZKOD;

/* Initial value of ZKOD: the platform default (version 1). */
/* clang-format off */
#define ZKOD_DEFAULT                                                                               \
  {{ZKOD_STRUC_ID_ARRAY},                                                                          \
   ZKOD_VERSION_1,                                                                                 \
   ZKOT_Q /* object type: queue */,                                                                \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {'Z', 'K', '.', '*', ZK_BLANKS44} /* dynamic queue name template */,                            \
   {ZK_BLANKS12},                                                                                  \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   {0} /* alternate security id: none */,                                                          \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   ZKCHARV_DEFAULT,                                                                                \
   ZKCHARV_DEFAULT,                                                                                \
   ZKCHARV_DEFAULT,                                                                                \
   0 /* resolved type: none */}
/* clang-format on */

ZK_CHECK_SIZE(ZKOD, ZKOD_LENGTH_4);
ZK_CHECK_OFFSET(ZKOD, RecsPresent, ZKOD_LENGTH_1);
ZK_CHECK_OFFSET(ZKOD, AlternateSecurityId, ZKOD_LENGTH_2);
ZK_CHECK_OFFSET(ZKOD, ObjectString, ZKOD_LENGTH_3);

/* Object record: one destination of a distribution list. Records follow
 * each other without gaps. */
#define ZKOR_LENGTH 96

typedef struct tagZKOR {
  ZKCHAR48 ObjectName;     /* name of the destination queue */
  ZKCHAR48 ObjectQMgrName; /* name of its queue manager */
} ZKOR;
typedef ZKOR *PZKOR;

/* Initial value of ZKOR. */
/* clang-format off */
#define ZKOR_DEFAULT                                                                               \
  {{ZK_BLANKS48}, {ZK_BLANKS48}}
/* clang-format on */

ZK_CHECK_SIZE(ZKOR, ZKOR_LENGTH);

/* Response record: the result for one destination of a distribution
 * list. Records follow each other without gaps. */
#define ZKRR_LENGTH 8

typedef struct tagZKRR {
  ZKLONG CompCode; /* completion code for the destination */
  ZKLONG Reason;   /* reason code for the destination */
} ZKRR;
typedef ZKRR *PZKRR;

/* Initial value of ZKRR. */
#define ZKRR_DEFAULT                                                                               \
  { 0 /* completion code: OK */, 0 /* reason: none */ }

ZK_CHECK_SIZE(ZKRR, ZKRR_LENGTH);

#ifdef __cplusplus
}
#endif

#endif
