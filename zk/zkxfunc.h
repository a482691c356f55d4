/* Signatures of the API-exit functions, one per ZKI call and per exit point
 * that an exit can register through ZKXEP (the connection-time functions
 * ZK_INIT_EXIT and ZK_TERM_EXIT are in zkxc.h).
 *
 * Every function gets the exit parameter and context structures, then a
 * pointer to each argument of the call in the call's own order, so that an
 * exit can see (and, before the call, could change) every argument. A
 * structure, buffer or array argument, and a handle or length that the call
 * returns through a pointer, is therefore passed as a pointer to that
 * pointer. The ZKI functions end with the completion code and reason
 * pointers; the transaction-manager functions end with the XA return code,
 * which is the call's result. The functions return nothing: the exit
 * answers through the ExitResponse fields of ZKAXP. */
#ifndef ZK_ZKXFUNC_H
#define ZK_ZKXFUNC_H

#include "zkbo.h"
#include "zkcno.h"
#include "zkgmo.h"
#include "zkmd.h"
#include "zkod.h"
#include "zkpmo.h"
#include "zksub.h"
#include "zktypes.h"
#include "zkxa.h"
#include "zkxc.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef ZKPTR *PZKPTR;
typedef PZKLONG *PPZKLONG;
typedef PZKCHAR *PPZKCHAR;
typedef PZKVOID *PPZKVOID;
typedef PZKHCONN *PPZKHCONN;
typedef PZKHOBJ *PPZKHOBJ;
typedef ZKHSUB *PZKHSUB;
typedef PZKHSUB *PPZKHSUB;

/* ZKCONN and ZKCONNX: both get the connect options (for ZKCONN as the
 * queue manager builds them). pQMgrName points to the 48-character name. */
typedef void ZK_CONNX_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKCHAR pQMgrName,
                           PPZKCNO ppConnectOpts, PPZKHCONN ppHconn, PZKLONG pCompCode,
                           PZKLONG pReason);
typedef ZK_CONNX_EXIT *PZK_CONNX_EXIT;
typedef ZK_CONNX_EXIT ZK_CONN_EXIT;
typedef ZK_CONN_EXIT *PZK_CONN_EXIT;

/* ZKDISC. */
typedef void ZK_DISC_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PPZKHCONN ppHconn,
                          PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_DISC_EXIT *PZK_DISC_EXIT;

/* ZKOPEN. */
typedef void ZK_OPEN_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PPZKOD ppObjDesc,
                          PZKLONG pOptions, PPZKHOBJ ppHobj, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_OPEN_EXIT *PZK_OPEN_EXIT;

/* ZKCLOSE. */
typedef void ZK_CLOSE_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PPZKHOBJ ppHobj,
                           PZKLONG pOptions, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_CLOSE_EXIT *PZK_CLOSE_EXIT;

/* ZKPUT1. */
typedef void ZK_PUT1_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PPZKOD ppObjDesc,
                          PPZKMD ppMsgDesc, PPZKPMO ppPutMsgOpts, PZKLONG pBufferLength,
                          PPZKVOID ppBuffer, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_PUT1_EXIT *PZK_PUT1_EXIT;

/* ZKPUT. */
typedef void ZK_PUT_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKHOBJ pHobj,
                         PPZKMD ppMsgDesc, PPZKPMO ppPutMsgOpts, PZKLONG pBufferLength,
                         PPZKVOID ppBuffer, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_PUT_EXIT *PZK_PUT_EXIT;

/* ZKGET. */
typedef void ZK_GET_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKHOBJ pHobj,
                         PPZKMD ppMsgDesc, PPZKGMO ppGetMsgOpts, PZKLONG pBufferLength,
                         PPZKVOID ppBuffer, PPZKLONG ppDataLength, PZKLONG pCompCode,
                         PZKLONG pReason);
typedef ZK_GET_EXIT *PZK_GET_EXIT;

/* The data-conversion point inside ZKGET: called before the message data
 * is converted, with the parameters of the ZKGET, so that one function can
 * serve both. */
typedef ZK_GET_EXIT ZK_DATA_CONV_ON_GET_EXIT;
typedef ZK_DATA_CONV_ON_GET_EXIT *PZK_DATA_CONV_ON_GET_EXIT;

/* ZKINQ. */
typedef void ZK_INQ_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKHOBJ pHobj,
                         PZKLONG pSelectorCount, PPZKLONG ppSelectors, PZKLONG pIntAttrCount,
                         PPZKLONG ppIntAttrs, PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs,
                         PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_INQ_EXIT *PZK_INQ_EXIT;

/* ZKSET: the same parameters as ZKINQ, the attributes being input. */
typedef void ZK_SET_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKHOBJ pHobj,
                         PZKLONG pSelectorCount, PPZKLONG ppSelectors, PZKLONG pIntAttrCount,
                         PPZKLONG ppIntAttrs, PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs,
                         PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_SET_EXIT *PZK_SET_EXIT;

/* ZKBEGIN. */
typedef void ZK_BEGIN_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                           PPZKBO ppBeginOptions, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_BEGIN_EXIT *PZK_BEGIN_EXIT;

/* ZKCMIT. */
typedef void ZK_CMIT_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                          PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_CMIT_EXIT *PZK_CMIT_EXIT;

/* ZKBACK. */
typedef void ZK_BACK_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                          PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_BACK_EXIT *PZK_BACK_EXIT;

/* ZKSTAT. */
typedef void ZK_STAT_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKLONG pType,
                          PPZKSTS ppStatus, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_STAT_EXIT *PZK_STAT_EXIT;

/* ZKSUB. */
typedef void ZK_SUB_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PPZKSD ppSubDesc,
                         PPZKHOBJ ppHobj, PPZKHSUB ppHsub, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_SUB_EXIT *PZK_SUB_EXIT;

/* ZKSUBRQ. */
typedef void ZK_SUBRQ_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKHSUB pHsub,
                           PZKLONG pAction, PPZKSRO ppSubRqOpts, PZKLONG pCompCode,
                           PZKLONG pReason);
typedef ZK_SUBRQ_EXIT *PZK_SUBRQ_EXIT;

/* ZKCTL. */
typedef void ZK_CTL_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                         PZKLONG pOperation, PPZKCTLO ppControlOpts, PZKLONG pCompCode,
                         PZKLONG pReason);
typedef ZK_CTL_EXIT *PZK_CTL_EXIT;

/* ZKCB. */
typedef void ZK_CB_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKLONG pOperation,
                        PPZKCBD ppCallbackDesc, PZKHOBJ pHobj, PPZKMD ppMsgDesc,
                        PPZKGMO ppGetMsgOpts, PZKLONG pCompCode, PZKLONG pReason);
typedef ZK_CB_EXIT *PZK_CB_EXIT;

/* Delivery to a message consumer or event handler. There is no completion
 * code or reason of its own: they are the CompCode and Reason fields of
 * the callback context. */
typedef void ZK_CALLBACK_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                              PPZKMD ppMsgDesc, PPZKGMO ppGetMsgOpts, PPZKVOID ppBuffer,
                              PPZKCBC ppCallbackContext);
typedef ZK_CALLBACK_EXIT *PZK_CALLBACK_EXIT;

/* Transaction-manager calls. Each gets the connection handle, then the XA
 * arguments of the call in their own order, then the XA return code. An
 * XID argument is passed as the address of the XID's address; the XID is
 * in the 32-bit or the 64-bit layout of zkxa.h, so it is typed as plain
 * memory. rmid and flags are 32-bit on this platform. */

/* xa_open and xa_close: xa_info (address of the string's address), rmid,
 * flags. */
typedef void ZK_XAOPEN_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                            PPZKCHAR ppXaInfo, PZKLONG pRmid, PZKLONG pFlags, PZKLONG pXaRetCode);
typedef ZK_XAOPEN_EXIT *PZK_XAOPEN_EXIT;
typedef ZK_XAOPEN_EXIT ZK_XACLOSE_EXIT;
typedef ZK_XACLOSE_EXIT *PZK_XACLOSE_EXIT;

/* xa_start, xa_end, xa_prepare, xa_commit, xa_rollback and xa_forget:
 * XID, rmid, flags. */
typedef void ZK_XASTART_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKPTR ppXid,
                             PZKLONG pRmid, PZKLONG pFlags, PZKLONG pXaRetCode);
typedef ZK_XASTART_EXIT *PZK_XASTART_EXIT;
typedef ZK_XASTART_EXIT ZK_XAEND_EXIT;
typedef ZK_XAEND_EXIT *PZK_XAEND_EXIT;
typedef ZK_XASTART_EXIT ZK_XAPREPARE_EXIT;
typedef ZK_XAPREPARE_EXIT *PZK_XAPREPARE_EXIT;
typedef ZK_XASTART_EXIT ZK_XACOMMIT_EXIT;
typedef ZK_XACOMMIT_EXIT *PZK_XACOMMIT_EXIT;
typedef ZK_XASTART_EXIT ZK_XAROLLBACK_EXIT;
typedef ZK_XAROLLBACK_EXIT *PZK_XAROLLBACK_EXIT;
typedef ZK_XASTART_EXIT ZK_XAFORGET_EXIT;
typedef ZK_XAFORGET_EXIT *PZK_XAFORGET_EXIT;

/* xa_recover: the XID array (filled in by the call), count, rmid, flags.
 * The return code is the number of XIDs returned when not negative. */
typedef void ZK_XARECOVER_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                               PZKPTR ppXids, PZKLONG pCount, PZKLONG pRmid, PZKLONG pFlags,
                               PZKLONG pXaRetCode);
typedef ZK_XARECOVER_EXIT *PZK_XARECOVER_EXIT;

/* xa_complete: handle and retval (each the address of the integer's
 * address), rmid, flags. */
typedef void ZK_XACOMPLETE_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn,
                                PPZKLONG ppHandle, PPZKLONG ppRetval, PZKLONG pRmid, PZKLONG pFlags,
                                PZKLONG pXaRetCode);
typedef ZK_XACOMPLETE_EXIT *PZK_XACOMPLETE_EXIT;

/* ax_reg: rmid, the XID that the call returns, flags. */
typedef void ZK_AXREG_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKLONG pRmid,
                           PZKPTR ppXid, PZKLONG pFlags, PZKLONG pXaRetCode);
typedef ZK_AXREG_EXIT *PZK_AXREG_EXIT;

/* ax_unreg: rmid, flags. */
typedef void ZK_AXUNREG_EXIT(PZKAXP pExitParms, PZKAXC pExitContext, PZKHCONN pHconn, PZKLONG pRmid,
                             PZKLONG pFlags, PZKLONG pXaRetCode);
typedef ZK_AXUNREG_EXIT *PZK_AXUNREG_EXIT;

#ifdef __cplusplus
}
#endif

#endif
