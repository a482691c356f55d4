/* The get-message options ZKGMO (versions 1 to 4). */
#ifndef ZK_ZKGMO_H
#define ZK_ZKGMO_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Get-message options. */
#define ZKGMO_STRUC_ID "GMO "
#define ZKGMO_STRUC_ID_ARRAY 'G', 'M', 'O', ' '
#define ZKGMO_VERSION_1 1
#define ZKGMO_VERSION_2 2
#define ZKGMO_VERSION_3 3
#define ZKGMO_VERSION_4 4
#define ZKGMO_CURRENT_VERSION 4
#define ZKGMO_LENGTH_1 72
#define ZKGMO_LENGTH_2 80
#define ZKGMO_LENGTH_3 100
#define ZKGMO_LENGTH_4 112
#define ZKGMO_CURRENT_LENGTH 112

typedef struct tagZKGMO {
  ZKCHAR4 StrucId;     /* "GMO " */
  ZKLONG Version;      /* 1 to 4 */
  ZKLONG Options;      /* get options */
  ZKLONG WaitInterval; /* wait interval in milliseconds */
  ZKLONG Signal1;      /* signal */
  ZKLONG Signal2;      /* signal identifier */

  ZKCHAR48 ResolvedQName; /* resolved name of the queue */
  /* Version 2 */
  ZKLONG MatchOptions;  /* which descriptor fields select the message */
  ZKCHAR GroupStatus;   /* whether the message is in a group */
  ZKCHAR SegmentStatus; /* whether the message is a segment */
  ZKCHAR Segmentation;  /* whether further segmentation is allowed */
  ZKCHAR Reserved1;     /* reserved */
  /* Version 3 */
  ZKBYTE16 MsgToken;     /* message token */
  ZKLONG ReturnedLength; /* length of the message data returned */
  /* Version 4 */
  ZKLONG Reserved2; /* reserved */
  ZKHMSG MsgHandle; /* message handle of the properties */
} ZKGMO;
typedef ZKGMO *PZKGMO;
typedef PZKGMO *PPZKGMO;

/* Initial value of ZKGMO: the platform default (version 1). */
/* clang-format off */
#define ZKGMO_DEFAULT                                                                              \
  {{ZKGMO_STRUC_ID_ARRAY},                                                                         \
   ZKGMO_VERSION_1,                                                                                \
   ZKGMO_NO_WAIT /* options: no wait */,                                                           \
   0 /* wait interval */,                                                                          \
   0 /* signal */,                                                                                 \
   0 /* signal identifier */,                                                                      \
   {ZK_BLANKS48},                                                                                  \
   3 /* match options: message id and correlation id */,                                           \
   ZKGS_NOT_IN_GROUP /* not in a group */,                                                         \
   ZKSS_NOT_A_SEGMENT /* not a segment */,                                                         \
   ZKSEG_INHIBITED /* segmentation inhibited */,                                                   \
   ' ',                                                                                            \
   {0} /* message token: none */,                                                                  \
   -1 /* returned length: not set */,                                                              \
   0,                                                                                              \
   0 /* message handle: none */}
/* clang-format on */

ZK_CHECK_SIZE(ZKGMO, ZKGMO_LENGTH_4);
ZK_CHECK_OFFSET(ZKGMO, MatchOptions, ZKGMO_LENGTH_1);
ZK_CHECK_OFFSET(ZKGMO, MsgToken, ZKGMO_LENGTH_2);
ZK_CHECK_OFFSET(ZKGMO, Reserved2, ZKGMO_LENGTH_3);

#ifdef __cplusplus
}
#endif

#endif
