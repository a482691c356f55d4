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

// What the exit knows of the call in progress (exit/ dispatch and the
// handlers set it; records, summaries and alerts read it).
struct CallState {
  int32_t CurrentFunction;   // ZKXF_* of the call
  int32_t CurrentExitReason; // ZKXR_* of the call
  int32_t CurrentCompCode;
  uint8_t QueueSelected;      // the call's object passes the TargetQueue filter
  char CurrentQueueName[49];  // name the call's object was opened under
  char ResolvedQueueName[49]; // name the queue manager resolved it to
  uint8_t OpenEntryAdded;     // the ZKOPEN before-call added its handle-list entry
};

// Who is traced: the process, the connection and the program, found at
// start-up and shown in the profile, file names and alert lines.
struct ConnectionIdentity {
  int32_t ProcessId;       // real ids of the process and thread that own the block,
  uint32_t ThreadId;       // renewed when a fork or another thread is noticed
  uint8_t ZkLevelSearched; // the platform level below has been looked for
  char ZkVersion[75];
  char ZkLevel[80];
  char ZkBuildType[80];
  char ProductTitle[50];
  char ProgramVersion[20];
  char BuildVariant[50];
  char MakerContact[80];
  int32_t ApiLevel;       // API_LEVEL_600 or API_LEVEL_700, from the entry point
  int32_t ZkaxcProcessId; // the ids as the queue manager passes them
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
  char ProcessName[80]; // program name without its directory
  char ProcessDescription[130];
};

// The clock of the records: the connection's start, the before-times the
// elapsed times count from, and the time stamp of the record being written.
struct RecordClock {
  struct timeval StartTime;
  char StartTimeText[64];
  struct timeval ApiBeforeTime; // before-time of the current ZKI call
  struct timeval XaBeforeTime;  // before-time of the current transaction-manager call
  char RecordTimeText[64];      // time stamp of the record being written
  // The record time stamp's text up to its microseconds ("[YYYY/MM/DD
  // hh:mm:ss."), kept for the second it shows: the local time is broken
  // down once per second, not once per record.
  time_t StampSecond;
  int32_t StampPrefixLength; // 0: nothing kept yet
  char StampPrefix[72];
  // The one clock reading of the current exit call (see ReadCallClock).
  struct timeval CallTime;
  uint8_t CallTimeRead; // CallTime holds this call's reading
};

// Call counting and summaries.
struct CallCounters {
  CallCounterRecord Statistics[STATISTICS_FUNCTION_COUNT][2]; // [function][period]
  CallCounterRecord Totals[2]; // per period; Totals[0].CallCount numbers the records
  uint32_t SplitSequence;      // number of the split summaries written
  struct timeval SplitStartTime;
  char SplitStartText[64];
  int32_t IntervalCallCounter;  // calls since the last interval summary
  time_t LastIntervalTime;      // time of the last interval summary
  uint32_t LastPrintedSequence; // the last sequence number a record showed
};

// The trace file being written and how records reach it.
struct TraceFileState {
  int64_t CurrentFileSize; // bytes written to the current file
  char TraceDirectory[34];
  char TraceFilePath[300];
  int32_t FileDescriptor; // 0: none (WriteStream no)
  FILE *FileStream;       // null: none (WriteStream yes)
  int32_t FileSequenceNumber;
  time_t LastFlushTime;         // of the write buffer, for WriteInterval
  int64_t ProgressMark;         // file size at which the next "<nMB>" mark is shown
  uint8_t RotationPermitted;    // the text being written may start a new file
  uint8_t ThreadChanged;        // another thread wrote to the file: keep ".t"
  uint8_t FileReopened;         // the current file was a closed one taken up again
  uint8_t UnknownAttributeSeen; // the file ends with the unknown-attribute block
  uint8_t NewFileOpened;        // the next summary-only line starts with its heading
  uint8_t NoAddress;            // leave storage addresses out of dump titles
  uint8_t SuppressProcessChangeNotes;
  int32_t RecordedProcessId; // the ids that opened the current file
  uint32_t RecordedThreadId;
};

// The object handles the connection has open, with the names they were
// opened under (see handle_list.h).
struct HandleListState {
  int32_t HandleCount;
  int32_t HandleCapacity;
  QueueHandleEntry *HandleList;
};

struct ExitControlBlock {
  char EyeCatcher[8];
  ZKACH ChainHeader;
  ParameterSettings Settings;
  CallState Call;
  ConnectionIdentity Identity;
  RecordClock Clock;
  CallCounters Counters;
  TraceFileState File;
  HandleListState Handles;
  // EXIT_TYPE_API in this library. The record writers, the summary and the
  // error file name also keep the channel exit's forms (EXIT_TYPE_CHANNEL:
  // exit reason and exit kind in the header, no after-record, its own error
  // file), so that the same code serves a channel-exit build; tests set it
  // to reach them.
  uint8_t ExitType;
  uint8_t Debug;            // wzEntryDebug: the exit's own debug output is wanted
  uint8_t FatalError;       // a file failure stopped the trace of this connection
  uint8_t ExecStatus;       // 1: tracing is on (ExecFlag and the process filter)
  uint8_t ProcessNameMatch; // the program passes the target/exclude process lists
  time_t LastUpdateCheck;   // last look for update request files
  // The newest modification time (seconds) seen on any request file name,
  // shared by all names: only a later one is a new request.
  int32_t UpdateRequestTime;
  CodeRangeMap CodeRange; // which byte sequences are characters in dumps
  // The write buffer: WriteBufferSize bytes at the end of the block.
  int32_t WriteBufferSize;
  int32_t WriteBufferFill;
  char WriteBuffer[]; // the block's last member
};

// Bytes of the block before its write buffer.
#define CONTROL_BLOCK_FIXED_SIZE (sizeof(ExitControlBlock))

// Fills the code-range map from ShowHexCharCcsid.
void SetValueForCodeRangeCheck(ExitControlBlock *cb);

// The connection's block, from the exit parameter structure.
inline ExitControlBlock *ControlBlockOf(const ZKAXP *axp) {
  return (ExitControlBlock *)axp->ExitChainAreaPtr;
}
