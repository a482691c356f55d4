// The per-connection control block: everything the exit knows about one
// connection lives here, reached through the exit chain area pointer.
#pragma once

#include <stdint.h>
#include <sys/time.h>
#include <time.h>

#include "config/parameters.h"
#include "text/codepage.h"
#include "zk/zkxc.h"

#define RC_OK 0
#define RC_NOP (-1)

#define CONTROL_BLOCK_EYE_CATCHER "KT5RCB"
#define EXIT_TYPE_API 1
#define EXIT_TYPE_CHANNEL 2
#define API_LEVEL_600 600
#define API_LEVEL_700 700
#define HANDLE_LIST_STEP 100

// Calls counted and timed per traced function (one record for the calls,
// one for the calls counted since the last summary).
struct ApiCallStatistics {
  int64_t Count;
  int64_t TotalMicroseconds;
  int64_t MinimumMicroseconds;
  int64_t MaximumMicroseconds;
};
#define STATISTICS_FUNCTION_COUNT 31

// One open object handle and the name it was opened under.
struct QueueHandleEntry {
  int32_t Hobj;
  char QueueName[49];
  char ResolvedQueueName[49];
  uint8_t OpenFlag, CloseFlag, PutFlag, GetFlag, InqFlag, SetFlag;
};

struct ExitControlBlock {
  char EyeCatcher[8];
  ZKACH ChainHeader;
  ParameterSettings Settings;
  ApiCallStatistics Statistics[STATISTICS_FUNCTION_COUNT][2];
  int32_t ProcessId;
  uint32_t ThreadId;
  time_t LastUpdateCheck;
  int32_t CurrentFunction;
  int32_t CurrentExitReason;
  int32_t CurrentCompCode;
  uint8_t ExitType;
  uint8_t Debug;
  uint8_t FatalError;
  uint8_t ExecStatus;
  uint8_t ProcessNameMatch;
  uint8_t QueueSelected;
  char CurrentQueueName[49];
  char ResolvedQueueName[49];
  struct timeval StartTime;
  char StartTimeText[64];
  struct timeval ApiBeforeTime;
  char ProductTitle[50];
  char ProgramVersion[20];
  char BuildVariant[50];
  char MakerContact[80];
  int32_t ApiLevel;
  int32_t ZkaxcProcessId;
  int32_t ZkaxcThreadId;
  char ExitInfoName[49];
  char EntryName[49];
  char ApiCallerTypeText[50];
  char QMgrName[49];
  char EnvironmentText[50];
  char UserId[13];
  char ConnectionName[265];
  char ApplName[80];
  char ApplTypeText[50];
  char ProcessName[80];
  char ProcessDescription[130];
  int64_t CurrentFileSize;
  char TraceDirectory[34];
  uint8_t RotationPermitted;
  CodeRangeMap CodeRange;
  int32_t HandleCount;
  int32_t HandleCapacity;
  QueueHandleEntry *HandleList;
  int32_t WriteBufferSize;
  int32_t WriteBufferUsed;
  char WriteBuffer[]; // WriteBufferSize bytes: the block's last member
};

// Bytes of the block before its write buffer.
#define CONTROL_BLOCK_FIXED_SIZE (sizeof(ExitControlBlock))

// Fills the code-range map from ShowHexCharCcsid.
void SetValueForCodeRangeCheck(ExitControlBlock *cb);

// The connection's block, from the exit parameter structure.
inline ExitControlBlock *ControlBlockOf(const ZKAXP *axp) {
  return (ExitControlBlock *)axp->ExitChainAreaPtr;
}
