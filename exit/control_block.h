// The per-connection control block: everything the exit knows about one
// connection lives here, reached through the exit chain area pointer.
//
// A hub: every subsystem reads and writes its own part of the block, so
// every folder may include this header.
#pragma once

#include <stdint.h>
#include <stdio.h>
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

// Counts and times of one traced function (or of all, as the total) over
// one summary period.
struct CallCounterRecord {
  int64_t MinimumTime; // microseconds
  int64_t MaximumTime;
  int64_t TotalTime;
  int64_t TimedCalls;
  int64_t SecondMinimum; // a second measure only a channel-exit build supplies
  int64_t SecondMaximum;
  int64_t SecondTotal;
  int64_t SecondCount;
  uint32_t OkCount;              // CompCode 0
  uint32_t ExpectedFailureCount; // failed with an expected reason, such as no message
  uint32_t WarningCount;         // CompCode 1
  uint32_t ErrorCount;           // anything else
  uint32_t CallCount;            // all calls
};

// The two summary periods: since start-up, and since the last split.
#define COUNTER_CUMULATIVE 0
#define COUNTER_SPLIT 1

// Functions with counters, in summary order: ZKCONN, ZKCONNX, ZKDISC, ZKOPEN,
// ZKCLOSE, ZKGET, ZKPUT, ZKPUT1, ZKSET, ZKINQ, ZKCMIT, ZKBACK, ZKBEGIN,
// ZKSTAT, ZKSUB, ZKSUBRQ, ZKCTL, ZKCB, the callback, then the 12 xa_*/ax_*.
#define STATISTICS_FUNCTION_COUNT 31

// One open object handle and the name it was opened under.
struct QueueHandleEntry {
  int32_t Hobj;
  char QueueName[49];
  char ResolvedQueueName[49];
  uint8_t OpenFlag, CloseFlag, PutFlag, GetFlag, InqFlag, SetFlag;
  uint8_t ResolvedDiffers; // ResolvedQueueName is set and is not QueueName
};

struct ExitControlBlock {
  char EyeCatcher[8];
  ZKACH ChainHeader;
  ParameterSettings Settings;
  // Call counting and summaries.
  CallCounterRecord Statistics[STATISTICS_FUNCTION_COUNT][2]; // [function][period]
  CallCounterRecord Totals[2]; // per period; Totals[0].CallCount numbers the records
  uint32_t SplitSequence;
  struct timeval SplitStartTime;
  char SplitStartText[64];
  int32_t IntervalCallCounter;
  time_t LastIntervalTime;
  int32_t ProcessId;
  uint32_t ThreadId;
  time_t LastUpdateCheck;
  int32_t CurrentFunction;
  int32_t CurrentExitReason;
  int32_t CurrentCompCode;
  // EXIT_TYPE_API in this library. The record writers, the summary and the
  // error file name also keep the channel exit's forms (EXIT_TYPE_CHANNEL:
  // exit reason and exit kind in the header, no after-record, its own error
  // file), so that the same code serves a channel-exit build; tests set it
  // to reach them.
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
  // Record writing.
  struct timeval ApiBeforeTime; // before-time of the current ZKI call
  struct timeval XaBeforeTime;  // before-time of the current transaction-manager call
  char RecordTimeText[64];      // time stamp of the record being written
  // The record time stamp's text up to its microseconds ("[YYYY/MM/DD
  // hh:mm:ss."), kept for the second it shows: the local time is broken
  // down once per second, not once per record.
  time_t StampSecond;
  int32_t StampPrefixLength; // 0: nothing kept yet
  char StampPrefix[72];
  uint32_t LastPrintedSequence;
  uint8_t NoAddress; // leave storage addresses out of dump titles
  uint8_t SuppressProcessChangeNotes;
  // Platform level, found once per connection.
  uint8_t ZkLevelSearched;
  char ZkVersion[75];
  char ZkLevel[80];
  char ZkBuildType[80];
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
  // Trace file.
  int64_t CurrentFileSize; // bytes written to the current file
  char TraceDirectory[34];
  char TraceFilePath[300];
  int32_t FileDescriptor; // 0: none (WriteStream no)
  FILE *FileStream;       // null: none (WriteStream yes)
  int32_t FileSequenceNumber;
  time_t LastFlushTime;
  int64_t ProgressMark;
  uint8_t RotationPermitted;
  uint8_t ThreadChanged;
  uint8_t FileReopened;
  uint8_t UnknownAttributeSeen;
  uint8_t NewFileOpened;
  int32_t RecordedProcessId;
  uint32_t RecordedThreadId;
  CodeRangeMap CodeRange;
  int32_t HandleCount;
  int32_t HandleCapacity;
  QueueHandleEntry *HandleList;
  int32_t WriteBufferSize;
  int32_t WriteBufferFill;
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
