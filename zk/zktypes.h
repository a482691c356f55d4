/* Elementary data types of the ZK platform interface.
 *
 * Every structure of the platform is laid out for the 32-bit (i386) ABI:
 * pointers and ZKLONG are 4 bytes, ZKINT64 is 8 bytes aligned on 4. */
#ifndef ZK_ZKTYPES_H
#define ZK_ZKTYPES_H

#include <stdint.h>

typedef int32_t ZKLONG;
typedef uint32_t ZKULONG;
typedef int64_t ZKINT64;
typedef uint64_t ZKUINT64;
typedef char ZKCHAR;
typedef unsigned char ZKBYTE;
typedef void *ZKPTR;
typedef ZKLONG ZKHCONN;
typedef ZKLONG ZKHOBJ;
typedef ZKINT64 ZKHMSG;
typedef ZKLONG ZKHCONFIG_VALUE;
typedef ZKPTR ZKHCONFIG;

typedef ZKCHAR ZKCHAR4[4];
typedef ZKCHAR ZKCHAR8[8];
typedef ZKCHAR ZKCHAR12[12];
typedef ZKCHAR ZKCHAR20[20];
typedef ZKCHAR ZKCHAR28[28];
typedef ZKCHAR ZKCHAR32[32];
typedef ZKCHAR ZKCHAR48[48];
typedef ZKCHAR ZKCHAR64[64];
typedef ZKCHAR ZKCHAR128[128];
typedef ZKCHAR ZKCHAR256[256];
typedef ZKCHAR ZKCHAR264[264];
typedef ZKBYTE ZKBYTE8[8];
typedef ZKBYTE ZKBYTE16[16];
typedef ZKBYTE ZKBYTE24[24];
typedef ZKBYTE ZKBYTE32[32];
typedef ZKBYTE ZKBYTE40[40];
typedef ZKBYTE ZKBYTE48[48];

/* Variable-length character string: the text is reached by VSPtr when it is
 * not null, else by VSOffset from the start of the structure that holds it. */
typedef struct tagZKCHARV {
  ZKPTR VSPtr;
  ZKLONG VSOffset;
  ZKLONG VSBufSize;
  ZKLONG VSLength;
  ZKLONG VSCCSID;
} ZKCHARV;
typedef ZKCHARV *PZKCHARV;

typedef ZKLONG *PZKLONG;
typedef ZKCHAR *PZKCHAR;
typedef ZKBYTE *PZKBYTE;
typedef ZKHCONN *PZKHCONN;
typedef ZKHOBJ *PZKHOBJ;
typedef void *PZKVOID;

/* Compile-time layout check: fails the build when a structure's size on
 * this target differs from the length the platform defines for it. */
#ifdef __cplusplus
#define ZK_CHECK_SIZE(type, bytes) static_assert(sizeof(type) == (bytes), #type " has the wrong length")
#else
#define ZK_CHECK_SIZE(type, bytes) _Static_assert(sizeof(type) == (bytes), #type " has the wrong length")
#endif

ZK_CHECK_SIZE(ZKCHARV, 20);

#endif
