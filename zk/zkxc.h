/* The API-exit interface of the ZK queue manager: the exit parameter and
 * context structures, the chain-area header, the exit options, the response
 * values and the registration call ZKXEP.
 *
 * ZKXEP is provided by the process that hosts the exit (the queue manager's
 * application stub); the exit library only calls it. */
#ifndef ZK_ZKXC_H
#define ZK_ZKXC_H

#include "zkconst.h"
#include "zktypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The completion codes (ZKCC_*), exit identifiers (ZKXT_*), exit responses
 * (ZKXCC_*) and secondary exit responses (ZKXR2_*) are constant families of
 * zk/defs, defined by zkconst.h. */

/* Exit parameter structure, passed to every exit function. */
#define ZKAXP_STRUC_ID "AXP "
#define ZKAXP_VERSION_1 1
#define ZKAXP_VERSION_2 2
#define ZKAXP_CURRENT_VERSION 2
#define ZKAXP_LENGTH_1 236
#define ZKAXP_LENGTH_2 244

typedef struct tagZKAXP {
  ZKCHAR4 StrucId;        /* "AXP " */
  ZKLONG Version;         /* 1 or 2 */
  ZKLONG ExitId;          /* ZKXT_API_EXIT */
  ZKLONG ExitReason;      /* ZKXR_* */
  ZKLONG ExitResponse;    /* ZKXCC_*, set by the exit */
  ZKLONG ExitResponse2;   /* ZKXR2_*, set by the exit */
  ZKLONG Feedback;        /* reserved for the exit */
  ZKLONG APICallerType;   /* ZKXACT_* */
  ZKBYTE16 ExitUserArea;  /* kept between calls for the exit */
  ZKCHAR32 ExitData;      /* Data attribute of the exit's stanza */
  ZKCHAR48 ExitInfoName;  /* Name attribute of the exit's stanza */
  ZKBYTE48 ExitPDArea;    /* problem-determination area */
  ZKCHAR48 QMgrName;      /* queue manager name */
  ZKPTR ExitChainAreaPtr; /* first chain area of this exit */
  ZKHCONFIG Hconfig;      /* configuration handle for ZKXEP */
  ZKLONG Function;        /* ZKXF_* */
  /* Version 2 */
  ZKHMSG ExitMsgHandle; /* message handle of the call, if any */
} ZKAXP;
typedef ZKAXP *PZKAXP;

/* Exit context structure. */
#define ZKAXC_STRUC_ID "AXC "
#define ZKAXC_VERSION_1 1
#define ZKAXC_VERSION_2 2
#define ZKAXC_CURRENT_VERSION 2
#define ZKAXC_LENGTH_1 384
#define ZKAXC_LENGTH_2 412

typedef struct tagZKAXC {
  ZKCHAR4 StrucId;             /* "AXC " */
  ZKLONG Version;              /* 1 or 2 */
  ZKLONG Environment;          /* ZKXE_* */
  ZKCHAR12 UserId;             /* user id of the connection */
  ZKBYTE40 SecurityId;         /* extended user id */
  ZKCHAR264 ConnectionName;    /* client connection name, blank for local */
  ZKLONG LongMCAUserIdLength;  /* length of the long MCA user id */
  ZKLONG LongRemoteUserIdLength;
  ZKPTR LongMCAUserIdPtr;
  ZKPTR LongRemoteUserIdPtr;
  ZKCHAR28 ApplName;           /* application name */
  ZKLONG ApplType;             /* ZKAT_* */
  ZKLONG ProcessId;            /* process id of the application */
  ZKLONG ThreadId;             /* thread id of the application */
  /* Version 2 */
  ZKCHAR20 ChannelName;        /* channel of a client connection */
  ZKBYTE Reserved1[4];
  ZKPTR pChannelDefinition;    /* ZKCD of the channel, or null */
} ZKAXC;
typedef ZKAXC *PZKAXC;

/* Chain-area header: every exit chain area begins with one. */
#define ZKACH_STRUC_ID "ACH "
#define ZKACH_VERSION_1 1
#define ZKACH_CURRENT_VERSION 1
#define ZKACH_LENGTH_1 68
#define ZKACH_CURRENT_LENGTH 68

typedef struct tagZKACH {
  ZKCHAR4 StrucId;        /* "ACH " */
  ZKLONG Version;         /* 1 */
  ZKLONG StrucLength;     /* 68 */
  ZKLONG ChainAreaLength; /* length of the whole chain area */
  ZKCHAR48 ExitInfoName;  /* exit information name of the owner */
  ZKPTR NextChainAreaPtr; /* next chain area, or null */
} ZKACH;
typedef ZKACH *PZKACH;

/* Exit options of a registration through ZKXEP. */
#define ZKXEPO_STRUC_ID "XEPO"
#define ZKXEPO_VERSION_1 1
#define ZKXEPO_CURRENT_VERSION 1
#define ZKXEPO_LENGTH_1 32

typedef struct tagZKXEPO {
  ZKCHAR4 StrucId;        /* "XEPO" */
  ZKLONG Version;         /* 1 */
  ZKLONG ExitSpace;       /* bytes of exit space wanted for messages */
  ZKCHARV ExitProperties; /* exit property text */
} ZKXEPO;
typedef ZKXEPO *PZKXEPO;

/* Initial value of ZKXEPO: the platform default. */
#define ZKXEPO_DEFAULT                                                                             \
  {{'X', 'E', 'P', 'O'}, ZKXEPO_VERSION_1, 0, {0, 0, 0, 0, -3}}

/* Signature of the connection-time functions (entry, ZKXF_INIT, ZKXF_TERM). */
typedef void ZK_INIT_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKLONG pCompCode,
                          PZKLONG pReason);
typedef ZK_INIT_EXIT *PZK_INIT_EXIT;
typedef ZK_INIT_EXIT ZK_TERM_EXIT;
typedef ZK_TERM_EXIT *PZK_TERM_EXIT;

/* Any exit function, as registered through ZKXEP; the queue manager calls it
 * with the parameter list of the function it was registered for. */
typedef void (*PZKFUNC)(void);

/* Registers (or, with a null entry point, deregisters) an exit function. */
typedef void ZK_XEP_CALL(ZKHCONFIG Hconfig, ZKLONG ExitReason, ZKLONG Function,
                         PZKFUNC pEntryPoint, PZKXEPO pExitOpts, PZKLONG pCompCode,
                         PZKLONG pReason);
ZK_XEP_CALL ZKXEP;

ZK_CHECK_SIZE(ZKAXP, ZKAXP_LENGTH_2);
ZK_CHECK_SIZE(ZKAXC, ZKAXC_LENGTH_2);
ZK_CHECK_SIZE(ZKACH, ZKACH_LENGTH_1);
ZK_CHECK_SIZE(ZKXEPO, ZKXEPO_LENGTH_1);

#ifdef __cplusplus
}
#endif

#endif
