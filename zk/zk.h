/* Everything of the ZK platform interface in one include: the elementary
 * types, the named constants, the API-exit interface, every structure and
 * the exit-function signatures. */
#ifndef ZK_ZK_H
#define ZK_ZK_H

#include "zktypes.h"
#include "zkconst.h"
#include "zkstruc.h"
#include "zkxc.h"
#include "zkmd.h"
#include "zkod.h"
#include "zkpmo.h"
#include "zkgmo.h"
#include "zkbo.h"
#include "zkcno.h"
#include "zksub.h"
#include "zkcfc.h"
#include "zkhdr.h"
#include "zkxa.h"
#include "zkxfunc.h"

#endif
