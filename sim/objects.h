// The queue manager's objects and messages, all in memory: local, alias,
// model and remote queues, topics and subscriptions, and the attributes of
// the queue manager itself.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "zk/zk.h"

namespace zkqm {

// A message on a queue. A message put under syncpoint carries the token of
// its unit of work until it is committed; one got under syncpoint is hidden
// (and still counted in the depth) until then.
struct Message {
  uint64_t uid = 0; // arrival order and identity, unique in the process
  ZKMD md = ZKMD_DEFAULT;
  std::vector<unsigned char> data;
  uint64_t putUow = 0; // uncommitted put: its unit of work
  uint64_t getUow = 0; // got under syncpoint: its unit of work
};

struct QueueDef {
  ZKLONG type = ZKQT_LOCAL; // ZKQT_LOCAL, ZKQT_ALIAS, ZKQT_MODEL, ZKQT_REMOTE
  std::string name;
  std::string description;
  std::string creationDate; // yyyy-mm-dd
  std::string creationTime; // hh.mm.ss
  bool putInhibited = false;
  bool getInhibited = false;
  // Local and model queues.
  ZKLONG maxDepth = 5000;
  ZKLONG maxMsgLength = 4194304;
  ZKLONG defPriority = 0;
  ZKLONG defPersistence = ZKPER_NOT_PERSISTENT;
  bool shareable = true;
  ZKLONG defInputOpenOption = ZKOO_INPUT_SHARED;
  ZKLONG usage = ZKUS_NORMAL;
  ZKLONG definitionType = ZKQDT_PREDEFINED; // for a model: what it creates
  ZKLONG deliverySequence = ZKMDS_PRIORITY;
  ZKLONG backoutThreshold = 0;
  std::string backoutQueue;
  ZKLONG triggerControl = ZKTC_OFF;
  ZKLONG triggerType = ZKTT_FIRST;
  ZKLONG triggerDepth = 1;
  ZKLONG triggerMsgPriority = 0;
  std::string triggerData;
  std::string initiationQueue;
  std::string processName;
  // Alias queues: the queue (or topic) they stand for.
  std::string target;
  bool targetIsTopic = false;
  // Remote queue definitions.
  std::string remoteName;
  std::string remoteQMgr;
  std::string xmitQueue;

  // Run-time state of a local queue.
  std::vector<Message> messages; // in delivery order
  int openInput = 0;
  int openOutput = 0;
  int openExclusive = 0;
  int highDepth = 0;
  int enqueued = 0;
  int dequeued = 0;
  ZKHCONN dynamicOwner = 0; // creator of a temporary dynamic queue
};

struct TopicDef {
  std::string name;
  std::string topicString;
  std::string description;
};

struct Subscription {
  std::string name;        // SubName; generated for an unnamed one
  std::string topicString; // full topic string, wildcards allowed
  std::string destQueue;
  std::string destQMgr;
  bool durable = false;
  bool managed = false;
  bool wildcardChar = false; // ZKSO_WILDCARD_CHAR: '*' and '?' rather than topic levels
  ZKBYTE24 correlId = {};
  ZKLONG pubPriority = ZKPRI_PRIORITY_AS_PUBLISHED;
  ZKBYTE32 accountingToken = {};
  std::string applIdentityData;
  std::string userData;
  ZKLONG options = 0;
  bool onRequest = false; // publications only on ZKSUBRQ
  ZKHCONN owner = 0;      // connection of a non-durable subscription
  bool adminDefined = false;
};

struct RetainedPublication {
  ZKMD md = ZKMD_DEFAULT;
  std::vector<unsigned char> data;
};

// The queue manager's own attributes.
struct QMgrAttributes {
  std::string description = "zkqm stand-in queue manager";
  std::string deadLetterQueue;
  std::string defaultXmitQueue;
  std::string commandQueue = "ZK.ADMIN.COMMANDS";
  ZKLONG ccsid = 1208;
  ZKLONG maxMsgLength = 4194304;
  ZKLONG maxPriority = 9;
  ZKLONG maxHandles = 256;
  ZKLONG maxUncommitted = 10000;
  ZKLONG commandLevel = 842; // the level dspzkver shows
  std::string identifier;    // set at start
};

struct ObjectStore {
  QMgrAttributes qmgr;
  std::map<std::string, QueueDef> queues;
  std::map<std::string, TopicDef> topics;
  std::vector<Subscription> subscriptions;
  std::map<std::string, RetainedPublication> retained; // by topic string

  QueueDef *queue(const std::string &name);
  TopicDef *topic(const std::string &name);
  Subscription *subscription(const std::string &name);
};

// Does a subscription's topic string (with '#' for any number of levels and
// '+' for one, or '*' and '?' with character wildcards) match a topic?
bool topicMatches(const std::string &pattern, const std::string &topic, bool characterWildcards);

// The date and time now, as the queue manager writes them: "20240131" and
// "13450599" (hundredths) in UTC, and "2024-01-31", "13.45.05" for objects.
std::string putDateNow();
std::string putTimeNow();
std::string objectDateNow();
std::string objectTimeNow();

} // namespace zkqm
