/* The connect options ZKCNO of ZKCONNX (versions 1 to 5) and the structures
 * they lead to: the client channel definition ZKCD (versions 1 to 10), the
 * TLS configuration options ZKSCO (versions 1 to 4), its authentication
 * information records ZKAIR (versions 1 and 2) and the security
 * parameters ZKCSP. */
#ifndef ZK_ZKCNO_H
#define ZK_ZKCNO_H

#include "zkconst.h"
#include "zkstruc.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Connect options. */
#define ZKCNO_STRUC_ID "CNO "
#define ZKCNO_STRUC_ID_ARRAY 'C', 'N', 'O', ' '
#define ZKCNO_VERSION_1 1
#define ZKCNO_VERSION_2 2
#define ZKCNO_VERSION_3 3
#define ZKCNO_VERSION_4 4
#define ZKCNO_VERSION_5 5
#define ZKCNO_CURRENT_VERSION 5
#define ZKCNO_LENGTH_1 12
#define ZKCNO_LENGTH_2 20
#define ZKCNO_LENGTH_3 148
#define ZKCNO_LENGTH_4 156
#define ZKCNO_LENGTH_5 188
#define ZKCNO_CURRENT_LENGTH 188

typedef struct tagZKCNO {
  ZKCHAR4 StrucId; /* "CNO " */
  ZKLONG Version;  /* 1 to 5 */
  ZKLONG Options;  /* connect options */
  /* Version 2 */
  ZKLONG ClientConnOffset; /* offset of the client channel definition */
  ZKPTR ClientConnPtr;     /* address of the client channel definition */
  /* Version 3 */
  ZKBYTE ConnTag[128]; /* connection tag */
  /* Version 4 */
  ZKPTR SSLConfigPtr;     /* address of the TLS configuration options */
  ZKLONG SSLConfigOffset; /* offset of the TLS configuration options */
  /* Version 5 */
  ZKBYTE24 ConnectionId;      /* unique connection identifier (output) */
  ZKLONG SecurityParmsOffset; /* offset of the security parameters */
  ZKPTR SecurityParmsPtr;     /* address of the security parameters */
} ZKCNO;
typedef ZKCNO *PZKCNO;
typedef PZKCNO *PPZKCNO;

/* Initial value of ZKCNO: the platform default (version 1). */
/* clang-format off */
#define ZKCNO_DEFAULT                                                                              \
  {{ZKCNO_STRUC_ID_ARRAY},                                                                         \
   ZKCNO_VERSION_1,                                                                                \
   ZKCNO_STANDARD_BINDING /* options: standard binding */,                                         \
   0,                                                                                              \
   0,                                                                                              \
   {0} /* connection tag: none */,                                                                 \
   0,                                                                                              \
   0,                                                                                              \
   {0} /* connection id: none */,                                                                  \
   0,                                                                                              \
   0}
/* clang-format on */

ZK_CHECK_SIZE(ZKCNO, ZKCNO_LENGTH_5);
ZK_CHECK_OFFSET(ZKCNO, ClientConnOffset, ZKCNO_LENGTH_1);
ZK_CHECK_OFFSET(ZKCNO, ConnTag, ZKCNO_LENGTH_2);
ZK_CHECK_OFFSET(ZKCNO, SSLConfigPtr, ZKCNO_LENGTH_3);
ZK_CHECK_OFFSET(ZKCNO, ConnectionId, ZKCNO_LENGTH_4);

/* Channel definition. It has no structure identifier: the channel name
 * comes first and the version follows it. */
#define ZKCD_VERSION_1 1
#define ZKCD_VERSION_2 2
#define ZKCD_VERSION_3 3
#define ZKCD_VERSION_4 4
#define ZKCD_VERSION_5 5
#define ZKCD_VERSION_6 6
#define ZKCD_VERSION_7 7
#define ZKCD_VERSION_8 8
#define ZKCD_VERSION_9 9
#define ZKCD_VERSION_10 10
#define ZKCD_CURRENT_VERSION 10
#define ZKCD_LENGTH_1 984
#define ZKCD_LENGTH_2 1312
#define ZKCD_LENGTH_3 1480
#define ZKCD_LENGTH_4 1540
#define ZKCD_LENGTH_5 1552
#define ZKCD_LENGTH_6 1648
#define ZKCD_LENGTH_7 1748
#define ZKCD_LENGTH_8 1840
#define ZKCD_LENGTH_9 1864
#define ZKCD_LENGTH_10 1876
#define ZKCD_CURRENT_LENGTH 1876

/* Offset of the Version field, which follows the channel name. */
#define ZKCD_VERSION_OFFSET 20

/* Number of entries of the compression lists. */
#define ZK_HDR_COMP_LIST_LENGTH 2
#define ZK_MSG_COMP_LIST_LENGTH 16

typedef struct tagZKCD {
  ZKCHAR20 ChannelName;         /* channel name */
  ZKLONG Version;               /* 1 to 10 */
  ZKLONG ChannelType;           /* channel type */
  ZKLONG TransportType;         /* transport type */
  ZKCHAR64 Desc;                /* channel description */
  ZKCHAR48 QMgrName;            /* queue manager name */
  ZKCHAR48 XmitQName;           /* transmission queue name */
  ZKCHAR20 ShortConnectionName; /* first 20 bytes of the connection name */
  ZKCHAR20 MCAName;             /* reserved */
  ZKCHAR8 ModeName;             /* LU 6.2 mode name */
  ZKCHAR64 TpName;              /* LU 6.2 transaction program name */
  ZKLONG BatchSize;             /* batch size */
  ZKLONG DiscInterval;          /* disconnect interval */
  ZKLONG ShortRetryCount;       /* short retry count */
  ZKLONG ShortRetryInterval;    /* short retry wait interval */
  ZKLONG LongRetryCount;        /* long retry count */
  ZKLONG LongRetryInterval;     /* long retry wait interval */
  ZKCHAR128 SecurityExit;       /* channel security exit name */
  ZKCHAR128 MsgExit;            /* channel message exit name */
  ZKCHAR128 SendExit;           /* channel send exit name */
  ZKCHAR128 ReceiveExit;        /* channel receive exit name */
  ZKLONG SeqNumberWrap;         /* highest allowable message sequence number */
  ZKLONG MaxMsgLength;          /* maximum message length */
  ZKLONG PutAuthority;          /* put authority */
  ZKLONG DataConversion;        /* data conversion */
  ZKCHAR32 SecurityUserData;    /* security exit user data */
  ZKCHAR32 MsgUserData;         /* message exit user data */
  ZKCHAR32 SendUserData;        /* send exit user data */
  ZKCHAR32 ReceiveUserData;     /* receive exit user data */
  /* Version 2 */
  ZKCHAR12 UserIdentifier;       /* user identifier */
  ZKCHAR12 Password;             /* password */
  ZKCHAR12 MCAUserIdentifier;    /* first 12 bytes of the MCA user identifier */
  ZKLONG MCAType;                /* message channel agent type */
  ZKCHAR264 ConnectionName;      /* connection name */
  ZKCHAR12 RemoteUserIdentifier; /* first 12 bytes of the partner's user identifier */
  ZKCHAR12 RemotePassword;       /* partner's password */
  /* Version 3 */
  ZKCHAR128 MsgRetryExit;    /* channel message retry exit name */
  ZKCHAR32 MsgRetryUserData; /* message retry exit user data */
  ZKLONG MsgRetryCount;      /* number of times the message is retried */
  ZKLONG MsgRetryInterval;   /* minimum interval between retries, in ms */
  /* Version 4 */
  ZKLONG HeartbeatInterval;     /* time between heartbeat flows */
  ZKLONG BatchInterval;         /* batch duration */
  ZKLONG NonPersistentMsgSpeed; /* speed of nonpersistent messages */
  ZKLONG StrucLength;           /* length of this structure */
  ZKLONG ExitNameLength;        /* length of the exit names */
  ZKLONG ExitDataLength;        /* length of the exit user data fields */
  ZKLONG MsgExitsDefined;       /* number of message exits defined */
  ZKLONG SendExitsDefined;      /* number of send exits defined */
  ZKLONG ReceiveExitsDefined;   /* number of receive exits defined */
  ZKPTR MsgExitPtr;             /* address of the first message exit name */
  ZKPTR MsgUserDataPtr;         /* address of the first message exit user data */
  ZKPTR SendExitPtr;            /* address of the first send exit name */
  ZKPTR SendUserDataPtr;        /* address of the first send exit user data */
  ZKPTR ReceiveExitPtr;         /* address of the first receive exit name */
  ZKPTR ReceiveUserDataPtr;     /* address of the first receive exit user data */
  /* Version 5 */
  ZKPTR ClusterPtr;       /* address of a list of cluster names */
  ZKLONG ClustersDefined; /* number of cluster names */
  ZKLONG NetworkPriority; /* network priority */
  /* Version 6 */
  ZKLONG LongMCAUserIdLength;    /* length of the long MCA user identifier */
  ZKLONG LongRemoteUserIdLength; /* length of the long partner user identifier */
  ZKPTR LongMCAUserIdPtr;        /* address of the long MCA user identifier */
  ZKPTR LongRemoteUserIdPtr;     /* address of the long partner user identifier */
  ZKBYTE40 MCASecurityId;        /* MCA security identifier */
  ZKBYTE40 RemoteSecurityId;     /* partner security identifier */
  /* Version 7 */
  ZKCHAR32 SSLCipherSpec;   /* TLS cipher suite */
  ZKPTR SSLPeerNamePtr;     /* address of the TLS peer name */
  ZKLONG SSLPeerNameLength; /* length of the TLS peer name */
  ZKLONG SSLClientAuth;     /* whether TLS client authentication is required */
  ZKLONG KeepAliveInterval; /* keepalive interval */
  ZKCHAR48 LocalAddress;    /* local communications address */
  ZKLONG BatchHeartbeat;    /* batch heartbeat interval */
  /* Version 8 */
  ZKLONG HdrCompList[ZK_HDR_COMP_LIST_LENGTH]; /* header data compression list */
  ZKLONG MsgCompList[ZK_MSG_COMP_LIST_LENGTH]; /* message data compression list */
  ZKLONG CLWLChannelRank;                      /* cluster workload channel rank */
  ZKLONG CLWLChannelPriority;                  /* cluster workload channel priority */
  ZKLONG CLWLChannelWeight;                    /* cluster workload channel weight */
  ZKLONG ChannelMonitoring;                    /* channel monitoring */
  ZKLONG ChannelStatistics;                    /* channel statistics */
  /* Version 9 */
  ZKLONG SharingConversations;  /* limit on sharing conversations */
  ZKLONG PropertyControl;       /* message property control */
  ZKLONG MaxInstances;          /* limit on server-connection instances */
  ZKLONG MaxInstancesPerClient; /* limit on instances per client */
  ZKLONG ClientChannelWeight;   /* client channel weight */
  ZKLONG ConnectionAffinity;    /* connection affinity */
  /* Version 10 */
  ZKLONG BatchDataLimit; /* batch data limit, in kilobytes */
  ZKLONG UseDLQ;         /* whether the dead-letter queue is used */
  ZKLONG DefReconnect;   /* default client reconnection option */
} ZKCD;
typedef ZKCD *PZKCD;
typedef PZKCD *PPZKCD;

/* Initial value of ZKCD. A channel definition is built whole, so the
 * default describes the structure at its current version and length. */
/* clang-format off */
#define ZKCD_DEFAULT                                                                               \
  {{ZK_BLANKS20},                                                                                  \
   ZKCD_CURRENT_VERSION,                                                                           \
   1 /* channel type: sender */,                                                                   \
   2 /* transport type: TCP */,                                                                    \
   {ZK_BLANKS64},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS48},                                                                                  \
   {ZK_BLANKS20},                                                                                  \
   {ZK_BLANKS20},                                                                                  \
   {ZK_BLANKS8},                                                                                   \
   {ZK_BLANKS64},                                                                                  \
   50 /* batch size */,                                                                            \
   6000 /* disconnect interval, seconds */,                                                        \
   10 /* short retry count */,                                                                     \
   60 /* short retry interval, seconds */,                                                         \
   999999999 /* long retry count */,                                                               \
   1200 /* long retry interval, seconds */,                                                        \
   {ZK_BLANKS128},                                                                                 \
   {ZK_BLANKS128},                                                                                 \
   {ZK_BLANKS128},                                                                                 \
   {ZK_BLANKS128},                                                                                 \
   999999999 /* sequence number wrap */,                                                           \
   4194304 /* maximum message length */,                                                           \
   1 /* put authority: default */,                                                                 \
   0 /* data conversion: none by the sender */,                                                    \
   {ZK_BLANKS32},                                                                                  \
   {ZK_BLANKS32},                                                                                  \
   {ZK_BLANKS32},                                                                                  \
   {ZK_BLANKS32},                                                                                  \
   {ZK_BLANKS12},                                                                                  \
   {ZK_BLANKS12},                                                                                  \
   {ZK_BLANKS12},                                                                                  \
   1 /* MCA type: process */,                                                                      \
   {ZK_BLANKS264},                                                                                 \
   {ZK_BLANKS12},                                                                                  \
   {ZK_BLANKS12},                                                                                  \
   {ZK_BLANKS128},                                                                                 \
   {ZK_BLANKS32},                                                                                  \
   10 /* message retry count */,                                                                   \
   1000 /* message retry interval, ms */,                                                          \
   300 /* heartbeat interval, seconds */,                                                          \
   0 /* batch interval */,                                                                         \
   2 /* nonpersistent message speed: fast */,                                                      \
   ZKCD_CURRENT_LENGTH,                                                                            \
   ZK_EXIT_NAME_LENGTH,                                                                            \
   ZK_EXIT_DATA_LENGTH,                                                                            \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0 /* network priority */,                                                                       \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   {0} /* MCA security id: none */,                                                                \
   {0} /* partner security id: none */,                                                            \
   {ZK_BLANKS32},                                                                                  \
   0,                                                                                              \
   0,                                                                                              \
   0 /* TLS client authentication: required */,                                                    \
   -1 /* keepalive interval: automatic */,                                                         \
   {ZK_BLANKS48},                                                                                  \
   0 /* batch heartbeat: off */,                                                                   \
   {0, -1} /* header compression: none, then not available */,                                     \
   {0, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1} /* message compression */,      \
   0 /* cluster workload rank */,                                                                  \
   0 /* cluster workload priority */,                                                              \
   50 /* cluster workload weight */,                                                               \
   -3 /* channel monitoring: as queue manager */,                                                  \
   -3 /* channel statistics: as queue manager */,                                                  \
   10 /* sharing conversations */,                                                                 \
   0 /* property control: compatibility */,                                                        \
   999999999 /* maximum instances */,                                                              \
   999999999 /* maximum instances per client */,                                                   \
   0 /* client channel weight */,                                                                  \
   1 /* connection affinity: preferred */,                                                         \
   5000 /* batch data limit, kilobytes */,                                                         \
   2 /* use dead-letter queue: yes */,                                                             \
   0 /* default reconnection: no */}
/* clang-format on */

ZK_CHECK_SIZE(ZKCD, ZKCD_LENGTH_10);
ZK_CHECK_OFFSET(ZKCD, Version, ZKCD_VERSION_OFFSET);
ZK_CHECK_OFFSET(ZKCD, UserIdentifier, ZKCD_LENGTH_1);
ZK_CHECK_OFFSET(ZKCD, MsgRetryExit, ZKCD_LENGTH_2);
ZK_CHECK_OFFSET(ZKCD, HeartbeatInterval, ZKCD_LENGTH_3);
ZK_CHECK_OFFSET(ZKCD, ClusterPtr, ZKCD_LENGTH_4);
ZK_CHECK_OFFSET(ZKCD, LongMCAUserIdLength, ZKCD_LENGTH_5);
ZK_CHECK_OFFSET(ZKCD, SSLCipherSpec, ZKCD_LENGTH_6);
ZK_CHECK_OFFSET(ZKCD, HdrCompList, ZKCD_LENGTH_7);
ZK_CHECK_OFFSET(ZKCD, SharingConversations, ZKCD_LENGTH_8);
ZK_CHECK_OFFSET(ZKCD, BatchDataLimit, ZKCD_LENGTH_9);

/* TLS configuration options. */
#define ZKSCO_STRUC_ID "SCO "
#define ZKSCO_STRUC_ID_ARRAY 'S', 'C', 'O', ' '
#define ZKSCO_VERSION_1 1
#define ZKSCO_VERSION_2 2
#define ZKSCO_VERSION_3 3
#define ZKSCO_VERSION_4 4
#define ZKSCO_CURRENT_VERSION 4
#define ZKSCO_LENGTH_1 532
#define ZKSCO_LENGTH_2 540
#define ZKSCO_LENGTH_3 556
#define ZKSCO_LENGTH_4 560
#define ZKSCO_CURRENT_LENGTH 560

/* Number of entries of the Suite B encryption policy. */
#define ZK_SUITE_B_SIZE 4

typedef struct tagZKSCO {
  ZKCHAR4 StrucId;          /* "SCO " */
  ZKLONG Version;           /* 1 to 4 */
  ZKCHAR256 KeyRepository;  /* location of the key repository */
  ZKCHAR256 CryptoHardware; /* cryptographic hardware configuration */
  ZKLONG AuthInfoRecCount;  /* number of authentication information records */
  ZKLONG AuthInfoRecOffset; /* offset of the first record */
  ZKPTR AuthInfoRecPtr;     /* address of the first record */
  /* Version 2 */
  ZKLONG KeyResetCount; /* bytes sent and received before the key is renegotiated */
  ZKLONG FipsRequired;  /* whether only FIPS-certified algorithms are used */
  /* Version 3 */
  ZKLONG EncryptionPolicySuiteB[ZK_SUITE_B_SIZE]; /* Suite B policy */
  /* Version 4 */
  ZKLONG CertificateValPolicy; /* certificate validation policy */
} ZKSCO;
typedef ZKSCO *PZKSCO;

/* Initial value of ZKSCO: the platform default (version 1). */
/* clang-format off */
#define ZKSCO_DEFAULT                                                                              \
  {{ZKSCO_STRUC_ID_ARRAY},                                                                         \
   ZKSCO_VERSION_1,                                                                                \
   {ZK_BLANKS256},                                                                                 \
   {ZK_BLANKS256},                                                                                 \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   0 /* key reset count: never */,                                                                 \
   0 /* FIPS: not required */,                                                                     \
   {1, 0, 0, 0} /* Suite B: none */,                                                               \
   0 /* certificate validation: any */}
/* clang-format on */

ZK_CHECK_SIZE(ZKSCO, ZKSCO_LENGTH_4);
ZK_CHECK_OFFSET(ZKSCO, KeyResetCount, ZKSCO_LENGTH_1);
ZK_CHECK_OFFSET(ZKSCO, EncryptionPolicySuiteB, ZKSCO_LENGTH_2);
ZK_CHECK_OFFSET(ZKSCO, CertificateValPolicy, ZKSCO_LENGTH_3);

/* Authentication information record. Records follow each other, each of
 * the length of its version. */
#define ZKAIR_STRUC_ID "AIR "
#define ZKAIR_STRUC_ID_ARRAY 'A', 'I', 'R', ' '
#define ZKAIR_VERSION_1 1
#define ZKAIR_VERSION_2 2
#define ZKAIR_CURRENT_VERSION 2
#define ZKAIR_LENGTH_1 320
#define ZKAIR_LENGTH_2 576
#define ZKAIR_CURRENT_LENGTH 576

typedef struct tagZKAIR {
  ZKCHAR4 StrucId;            /* "AIR " */
  ZKLONG Version;             /* 1 or 2 */
  ZKLONG AuthInfoType;        /* type of authentication information */
  ZKCHAR264 AuthInfoConnName; /* connection name of the LDAP server */
  ZKPTR LDAPUserNamePtr;      /* address of the LDAP user name */
  ZKLONG LDAPUserNameOffset;  /* offset of the LDAP user name from this record */
  ZKLONG LDAPUserNameLength;  /* length of the LDAP user name */
  ZKCHAR32 LDAPPassword;      /* password for the LDAP server */
  /* Version 2 */
  ZKCHAR256 OCSPResponderURL; /* URL of the OCSP responder */
} ZKAIR;
typedef ZKAIR *PZKAIR;

/* Initial value of ZKAIR: the platform default (version 1). */
/* clang-format off */
#define ZKAIR_DEFAULT                                                                              \
  {{ZKAIR_STRUC_ID_ARRAY},                                                                         \
   ZKAIR_VERSION_1,                                                                                \
   1 /* type: certificate revocation list on LDAP */,                                              \
   {ZK_BLANKS264},                                                                                 \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   {ZK_BLANKS32},                                                                                  \
   {ZK_BLANKS256}}
/* clang-format on */

ZK_CHECK_SIZE(ZKAIR, ZKAIR_LENGTH_2);
ZK_CHECK_OFFSET(ZKAIR, OCSPResponderURL, ZKAIR_LENGTH_1);

/* Security parameters. */
#define ZKCSP_STRUC_ID "CSP "
#define ZKCSP_STRUC_ID_ARRAY 'C', 'S', 'P', ' '
#define ZKCSP_VERSION_1 1
#define ZKCSP_CURRENT_VERSION 1
#define ZKCSP_LENGTH_1 48
#define ZKCSP_CURRENT_LENGTH 48

typedef struct tagZKCSP {
  ZKCHAR4 StrucId;           /* "CSP " */
  ZKLONG Version;            /* 1 */
  ZKLONG AuthenticationType; /* type of authentication */
  ZKBYTE Reserved1[4];       /* reserved */
  ZKPTR CSPUserIdPtr;        /* address of the user identifier */
  ZKLONG CSPUserIdOffset;    /* offset of the user identifier */
  ZKLONG CSPUserIdLength;    /* length of the user identifier */
  ZKBYTE8 Reserved2;         /* reserved */
  ZKPTR CSPPasswordPtr;      /* address of the password */
  ZKLONG CSPPasswordOffset;  /* offset of the password */
  ZKLONG CSPPasswordLength;  /* length of the password */
} ZKCSP;
typedef ZKCSP *PZKCSP;

/* Initial value of ZKCSP: the platform default. */
/* clang-format off */
#define ZKCSP_DEFAULT                                                                              \
  {{ZKCSP_STRUC_ID_ARRAY},                                                                         \
   ZKCSP_VERSION_1,                                                                                \
   ZKCSP_AUTH_NONE /* authentication: none */,                                                     \
   {0},                                                                                            \
   0,                                                                                              \
   0,                                                                                              \
   0,                                                                                              \
   {0},                                                                                            \
   0,                                                                                              \
   0,                                                                                              \
   0}
/* clang-format on */

ZK_CHECK_SIZE(ZKCSP, ZKCSP_LENGTH_1);
ZK_CHECK_OFFSET(ZKCSP, CSPUserIdLength, 24);
ZK_CHECK_OFFSET(ZKCSP, CSPPasswordLength, 44);

#ifdef __cplusplus
}
#endif

#endif
