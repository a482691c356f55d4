/* The transaction identifier (XID) of the transaction-manager calls, in the
 * two layouts in which it reaches the exit: with 32-bit integers (140
 * bytes) and with 64-bit integers (152 bytes). Its first three fields are
 * formatID, gtrid_length and bqual_length; data holds the global
 * transaction identifier followed by the branch qualifier. */
#ifndef ZK_ZKXA_H
#define ZK_ZKXA_H

#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define ZK_XID_DATA_SIZE 128     /* bytes of data in either layout */
#define ZK_XID_MAX_GTRID_SIZE 64 /* longest global transaction identifier */
#define ZK_XID_MAX_BQUAL_SIZE 64 /* longest branch qualifier */

#define ZKXID32_LENGTH 140
#define ZKXID64_LENGTH 152

/* Length of the three integers in front of the data, per layout. */
#define ZKXID32_HEADER_LENGTH 12
#define ZKXID64_HEADER_LENGTH 24

/* XID with 32-bit integers. */
typedef struct tagZKXID32 {
  ZKLONG formatID;               /* format identifier; -1 means null XID */
  ZKLONG gtrid_length;           /* bytes of global transaction identifier */
  ZKLONG bqual_length;           /* bytes of branch qualifier */
  ZKCHAR data[ZK_XID_DATA_SIZE]; /* identifier, then qualifier */
} ZKXID32;
typedef ZKXID32 *PZKXID32;

/* XID with 64-bit integers. */
typedef struct tagZKXID64 {
  ZKINT64 formatID;              /* format identifier; -1 means null XID */
  ZKINT64 gtrid_length;          /* bytes of global transaction identifier */
  ZKINT64 bqual_length;          /* bytes of branch qualifier */
  ZKCHAR data[ZK_XID_DATA_SIZE]; /* identifier, then qualifier */
} ZKXID64;
typedef ZKXID64 *PZKXID64;

/* Initial values: a null XID. */
/* clang-format off */
#define ZKXID32_DEFAULT                                                                            \
  {-1 /* null XID */, 0, 0, {0}}
#define ZKXID64_DEFAULT                                                                            \
  {-1 /* null XID */, 0, 0, {0}}
/* clang-format on */

ZK_CHECK_SIZE(ZKXID32, ZKXID32_LENGTH);
ZK_CHECK_OFFSET(ZKXID32, data, ZKXID32_HEADER_LENGTH);
ZK_CHECK_SIZE(ZKXID64, ZKXID64_LENGTH);
ZK_CHECK_OFFSET(ZKXID64, gtrid_length, 8);
ZK_CHECK_OFFSET(ZKXID64, bqual_length, 16);
ZK_CHECK_OFFSET(ZKXID64, data, ZKXID64_HEADER_LENGTH);

#ifdef __cplusplus
}
#endif

#endif
