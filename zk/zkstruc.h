/* Helpers shared by the structure headers of the ZK platform: the layout
 * check for the lengths of the lower versions of a structure, the blank
 * fillers used by the default initializers, and the lengths of the
 * fixed-width fields that recur across structures.
 *
 * Every structure is laid out for the 32-bit (i386) ABI (see zktypes.h). */
#ifndef ZK_ZKSTRUC_H
#define ZK_ZKSTRUC_H

#include <stddef.h>

#include "zkconst.h"
#include "zktypes.h"

/* Compile-time layout check of a lower structure version: the first field
 * that version n+1 adds must start exactly at the length of version n, so
 * that a version-n structure ends where the platform says it does. */
#ifdef __cplusplus
#define ZK_CHECK_OFFSET(type, field, bytes)                                                        \
  static_assert(offsetof(type, field) == (bytes), #type "." #field " is at the wrong offset")
#else
#define ZK_CHECK_OFFSET(type, field, bytes)                                                        \
  _Static_assert(offsetof(type, field) == (bytes), #type "." #field " is at the wrong offset")
#endif

/* Blank fillers for character fields in initializers. A string literal of
 * exactly the field's length is valid C but not C++ (no room for the NUL),
 * so the defaults spell the blanks out. */
#define ZK_BLANKS4 ' ', ' ', ' ', ' '
#define ZK_BLANKS8 ZK_BLANKS4, ZK_BLANKS4
#define ZK_BLANKS12 ZK_BLANKS8, ZK_BLANKS4
#define ZK_BLANKS16 ZK_BLANKS8, ZK_BLANKS8
#define ZK_BLANKS20 ZK_BLANKS16, ZK_BLANKS4
#define ZK_BLANKS28 ZK_BLANKS16, ZK_BLANKS12
#define ZK_BLANKS32 ZK_BLANKS16, ZK_BLANKS16
#define ZK_BLANKS44 ZK_BLANKS32, ZK_BLANKS12
#define ZK_BLANKS48 ZK_BLANKS32, ZK_BLANKS16
#define ZK_BLANKS64 ZK_BLANKS32, ZK_BLANKS32
#define ZK_BLANKS128 ZK_BLANKS64, ZK_BLANKS64
#define ZK_BLANKS256 ZK_BLANKS128, ZK_BLANKS128
#define ZK_BLANKS264 ZK_BLANKS256, ZK_BLANKS8

/* Initial value of a ZKCHARV: no string, CCSID of the application. */
#define ZKCHARV_DEFAULT                                                                            \
  { 0, 0, 0, 0, ZKCCSI_APPL }

/* Lengths of the fixed-width fields of the platform's structures. */
#define ZK_ACCOUNTING_TOKEN_LENGTH 32
#define ZK_APPL_IDENTITY_DATA_LENGTH 32
#define ZK_APPL_NAME_LENGTH 28
#define ZK_APPL_ORIGIN_DATA_LENGTH 4
#define ZK_CHANNEL_NAME_LENGTH 20
#define ZK_CONN_TAG_LENGTH 128
#define ZK_CONNECTION_ID_LENGTH 24
#define ZK_CORREL_ID_LENGTH 24
#define ZK_EXIT_DATA_LENGTH 32
#define ZK_EXIT_NAME_LENGTH 128
#define ZK_FORMAT_LENGTH 8
#define ZK_GROUP_ID_LENGTH 24
#define ZK_MSG_ID_LENGTH 24
#define ZK_MSG_TOKEN_LENGTH 16
#define ZK_OBJECT_INSTANCE_ID_LENGTH 24
#define ZK_OBJECT_NAME_LENGTH 48
#define ZK_PUT_APPL_NAME_LENGTH 28
#define ZK_PUT_DATE_LENGTH 8
#define ZK_PUT_TIME_LENGTH 8
#define ZK_Q_MGR_NAME_LENGTH 48
#define ZK_Q_NAME_LENGTH 48
#define ZK_SECURITY_ID_LENGTH 40
#define ZK_USER_ID_LENGTH 12

#endif
