/* The programmable command format: the header ZKCFH and the typed parameter
 * structures that follow it in a command, response or event message.
 *
 * Every parameter begins with Type, StrucLength (the whole parameter,
 * padding and variable part included) and Parameter (the identifier). The
 * structures below hold the fixed part of each type; a _STRUC_LENGTH_FIXED
 * length says that a variable part (strings or values) follows it. */
#ifndef ZK_ZKCFC_H
#define ZK_ZKCFC_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Command-format header. */
#define ZKCFH_VERSION_1 1
#define ZKCFH_VERSION_2 2
#define ZKCFH_VERSION_3 3
#define ZKCFH_CURRENT_VERSION 3
#define ZKCFH_STRUC_LENGTH 36
#define ZKCFH_LENGTH_1 36
#define ZKCFH_LENGTH_2 36
#define ZKCFH_LENGTH_3 36

typedef struct tagZKCFH {
  ZKLONG Type;           /* structure type: command, response, event ... */
  ZKLONG StrucLength;    /* 36 */
  ZKLONG Version;        /* 1 to 3; all versions have the same layout */
  ZKLONG Command;        /* command identifier */
  ZKLONG MsgSeqNumber;   /* sequence number of the message */
  ZKLONG Control;        /* whether this is the last message of a set */
  ZKLONG CompCode;       /* completion code */
  ZKLONG Reason;         /* reason code qualifying the completion code */
  ZKLONG ParameterCount; /* number of parameter structures that follow */
} ZKCFH;
typedef ZKCFH *PZKCFH;

/* Initial value of ZKCFH: a single command message of version 1. */
/* clang-format off */
#define ZKCFH_DEFAULT                                                                              \
  {1 /* type: command */,                                                                          \
   ZKCFH_STRUC_LENGTH,                                                                             \
   ZKCFH_VERSION_1,                                                                                \
   0 /* command: none */,                                                                          \
   1 /* message sequence number */,                                                                \
   ZKCFC_LAST /* control: last message */,                                                         \
   ZKCC_OK /* completion code: OK */,                                                              \
   ZKRC_NONE /* reason: none */,                                                                   \
   0 /* parameter count */}
/* clang-format on */

ZK_CHECK_SIZE(ZKCFH, ZKCFH_STRUC_LENGTH);

/* Integer parameter (type 3). */
#define ZKCFIN_STRUC_LENGTH 16

typedef struct tagZKCFIN {
  ZKLONG Type;        /* 3 */
  ZKLONG StrucLength; /* 16 */
  ZKLONG Parameter;   /* parameter identifier */
  ZKLONG Value;       /* parameter value */
} ZKCFIN;
typedef ZKCFIN *PZKCFIN;

#define ZKCFIN_DEFAULT                                                                             \
  { 3 /* integer */, ZKCFIN_STRUC_LENGTH, 0, 0 }

ZK_CHECK_SIZE(ZKCFIN, ZKCFIN_STRUC_LENGTH);

/* String parameter (type 4); the string of StringLength bytes follows. */
#define ZKCFST_STRUC_LENGTH_FIXED 20

typedef struct tagZKCFST {
  ZKLONG Type;           /* 4 */
  ZKLONG StrucLength;    /* 20 plus the string, rounded up to 4 */
  ZKLONG Parameter;      /* parameter identifier */
  ZKLONG CodedCharSetId; /* character set of the string */
  ZKLONG StringLength;   /* length of the string */
} ZKCFST;
typedef ZKCFST *PZKCFST;

#define ZKCFST_DEFAULT                                                                             \
  { 4 /* string */, ZKCFST_STRUC_LENGTH_FIXED, 0, 0 /* CCSID: default */, 0 }

ZK_CHECK_SIZE(ZKCFST, ZKCFST_STRUC_LENGTH_FIXED);

/* Integer list parameter (type 5); Count 32-bit values follow. */
#define ZKCFIL_STRUC_LENGTH_FIXED 16

typedef struct tagZKCFIL {
  ZKLONG Type;        /* 5 */
  ZKLONG StrucLength; /* 16 plus 4 per value */
  ZKLONG Parameter;   /* parameter identifier */
  ZKLONG Count;       /* number of values */
} ZKCFIL;
typedef ZKCFIL *PZKCFIL;

#define ZKCFIL_DEFAULT                                                                             \
  { 5 /* integer list */, ZKCFIL_STRUC_LENGTH_FIXED, 0, 0 }

ZK_CHECK_SIZE(ZKCFIL, ZKCFIL_STRUC_LENGTH_FIXED);

/* String list parameter (type 6); Count strings of StringLength bytes
 * each follow. */
#define ZKCFSL_STRUC_LENGTH_FIXED 24

typedef struct tagZKCFSL {
  ZKLONG Type;           /* 6 */
  ZKLONG StrucLength;    /* 24 plus the strings, rounded up to 4 */
  ZKLONG Parameter;      /* parameter identifier */
  ZKLONG CodedCharSetId; /* character set of the strings */
  ZKLONG Count;          /* number of strings */
  ZKLONG StringLength;   /* length of each string */
} ZKCFSL;
typedef ZKCFSL *PZKCFSL;

#define ZKCFSL_DEFAULT                                                                             \
  { 6 /* string list */, ZKCFSL_STRUC_LENGTH_FIXED, 0, 0 /* CCSID: default */, 0, 0 }

ZK_CHECK_SIZE(ZKCFSL, ZKCFSL_STRUC_LENGTH_FIXED);

/* Byte string parameter (type 9); the bytes follow. */
#define ZKCFBS_STRUC_LENGTH_FIXED 16

typedef struct tagZKCFBS {
  ZKLONG Type;         /* 9 */
  ZKLONG StrucLength;  /* 16 plus the bytes, rounded up to 4 */
  ZKLONG Parameter;    /* parameter identifier */
  ZKLONG StringLength; /* number of bytes */
} ZKCFBS;
typedef ZKCFBS *PZKCFBS;

#define ZKCFBS_DEFAULT                                                                             \
  { 9 /* byte string */, ZKCFBS_STRUC_LENGTH_FIXED, 0, 0 }

ZK_CHECK_SIZE(ZKCFBS, ZKCFBS_STRUC_LENGTH_FIXED);

/* Integer filter parameter (type 13). */
#define ZKCFIF_STRUC_LENGTH 20

typedef struct tagZKCFIF {
  ZKLONG Type;        /* 13 */
  ZKLONG StrucLength; /* 20 */
  ZKLONG Parameter;   /* parameter identifier */
  ZKLONG Operator;    /* comparison operator */
  ZKLONG FilterValue; /* value compared with */
} ZKCFIF;
typedef ZKCFIF *PZKCFIF;

#define ZKCFIF_DEFAULT                                                                             \
  { 13 /* integer filter */, ZKCFIF_STRUC_LENGTH, 0, 0, 0 }

ZK_CHECK_SIZE(ZKCFIF, ZKCFIF_STRUC_LENGTH);

/* String filter parameter (type 14); the value of FilterValueLength bytes
 * follows. */
#define ZKCFSF_STRUC_LENGTH_FIXED 24

typedef struct tagZKCFSF {
  ZKLONG Type;              /* 14 */
  ZKLONG StrucLength;       /* 24 plus the value, rounded up to 4 */
  ZKLONG Parameter;         /* parameter identifier */
  ZKLONG Operator;          /* comparison operator */
  ZKLONG CodedCharSetId;    /* character set of the value */
  ZKLONG FilterValueLength; /* length of the value */
} ZKCFSF;
typedef ZKCFSF *PZKCFSF;

#define ZKCFSF_DEFAULT                                                                             \
  { 14 /* string filter */, ZKCFSF_STRUC_LENGTH_FIXED, 0, 0, 0 /* CCSID: default */, 0 }

ZK_CHECK_SIZE(ZKCFSF, ZKCFSF_STRUC_LENGTH_FIXED);

/* Byte string filter parameter (type 15); the value of FilterValueLength
 * bytes follows. */
#define ZKCFBF_STRUC_LENGTH_FIXED 20

typedef struct tagZKCFBF {
  ZKLONG Type;              /* 15 */
  ZKLONG StrucLength;       /* 20 plus the value, rounded up to 4 */
  ZKLONG Parameter;         /* parameter identifier */
  ZKLONG Operator;          /* comparison operator */
  ZKLONG FilterValueLength; /* length of the value */
} ZKCFBF;
typedef ZKCFBF *PZKCFBF;

#define ZKCFBF_DEFAULT                                                                             \
  { 15 /* byte string filter */, ZKCFBF_STRUC_LENGTH_FIXED, 0, 0, 0 }

ZK_CHECK_SIZE(ZKCFBF, ZKCFBF_STRUC_LENGTH_FIXED);

/* Group parameter (type 20); its ParameterCount members follow it as
 * parameters of their own. */
#define ZKCFGR_STRUC_LENGTH 16

typedef struct tagZKCFGR {
  ZKLONG Type;           /* 20 */
  ZKLONG StrucLength;    /* 16 */
  ZKLONG Parameter;      /* group identifier */
  ZKLONG ParameterCount; /* number of member parameters */
} ZKCFGR;
typedef ZKCFGR *PZKCFGR;

#define ZKCFGR_DEFAULT                                                                             \
  { 20 /* group */, ZKCFGR_STRUC_LENGTH, 0, 0 }

ZK_CHECK_SIZE(ZKCFGR, ZKCFGR_STRUC_LENGTH);

/* 64-bit integer parameter (type 23). */
#define ZKCFIN64_STRUC_LENGTH 24

typedef struct tagZKCFIN64 {
  ZKLONG Type;        /* 23 */
  ZKLONG StrucLength; /* 24 */
  ZKLONG Parameter;   /* parameter identifier */
  ZKLONG Reserved;    /* reserved */
  ZKINT64 Value;      /* parameter value */
} ZKCFIN64;
typedef ZKCFIN64 *PZKCFIN64;

#define ZKCFIN64_DEFAULT                                                                           \
  { 23 /* 64-bit integer */, ZKCFIN64_STRUC_LENGTH, 0, 0, 0 }

ZK_CHECK_SIZE(ZKCFIN64, ZKCFIN64_STRUC_LENGTH);
ZK_CHECK_OFFSET(ZKCFIN64, Value, 16);

/* 64-bit integer list parameter (type 25); Count 64-bit values follow. */
#define ZKCFIL64_STRUC_LENGTH_FIXED 16

typedef struct tagZKCFIL64 {
  ZKLONG Type;        /* 25 */
  ZKLONG StrucLength; /* 16 plus 8 per value */
  ZKLONG Parameter;   /* parameter identifier */
  ZKLONG Count;       /* number of values */
} ZKCFIL64;
typedef ZKCFIL64 *PZKCFIL64;

#define ZKCFIL64_DEFAULT                                                                           \
  { 25 /* 64-bit integer list */, ZKCFIL64_STRUC_LENGTH_FIXED, 0, 0 }

ZK_CHECK_SIZE(ZKCFIL64, ZKCFIL64_STRUC_LENGTH_FIXED);

/* The three words every parameter begins with: enough to step from one
 * parameter to the next. */
#define ZKCFPARM_HEADER_LENGTH 12

typedef struct tagZKCFPARM {
  ZKLONG Type;        /* parameter type */
  ZKLONG StrucLength; /* length of the whole parameter */
  ZKLONG Parameter;   /* parameter identifier */
} ZKCFPARM;
typedef ZKCFPARM *PZKCFPARM;

ZK_CHECK_SIZE(ZKCFPARM, ZKCFPARM_HEADER_LENGTH);

#ifdef __cplusplus
}
#endif

#endif
