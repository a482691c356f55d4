/* The begin options ZKBO of ZKBEGIN. */
#ifndef ZK_ZKBO_H
#define ZK_ZKBO_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Begin options. */
#define ZKBO_STRUC_ID "BO  "
#define ZKBO_STRUC_ID_ARRAY 'B', 'O', ' ', ' '
#define ZKBO_VERSION_1 1
#define ZKBO_CURRENT_VERSION 1
#define ZKBO_LENGTH_1 12
#define ZKBO_CURRENT_LENGTH 12

typedef struct tagZKBO {
  ZKCHAR4 StrucId; /* "BO  " */
  ZKLONG Version;  /* 1 */
  ZKLONG Options;  /* begin options */
} ZKBO;
typedef ZKBO *PZKBO;
typedef PZKBO *PPZKBO;

/* Initial value of ZKBO: the platform default. */
#define ZKBO_DEFAULT                                                                               \
  { {ZKBO_STRUC_ID_ARRAY}, ZKBO_VERSION_1, ZKBO_NONE /* options: none */ }

ZK_CHECK_SIZE(ZKBO, ZKBO_LENGTH_1);

#ifdef __cplusplus
}
#endif

#endif
