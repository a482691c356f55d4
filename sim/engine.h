// The queue manager proper: every ZKI call carried out on the in-memory
// objects, with the platform's parameters, completion codes and reason
// codes. The exits are not called here (see calls.h); the engine only
// offers the points where the queue manager calls them inside a call (the
// data-conversion point of ZKGET, message delivery to consumers).
//
// One lock guards all objects and connections; a ZKGET that waits releases
// it while it waits, and a put or commit wakes the waiting gets.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "objects.h"

namespace zkqm {

// Who the connection is, for the context of the messages it puts.
struct ConnIdentity {
  std::string user;
  std::string applName;
  ZKLONG applType = ZKAT_UNIX;
};

struct Destination {
  std::string name; // as given in the object record
  std::string qmgr;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  bool remote = false;
  std::string localQueue; // local destination, or the transmission queue
  std::string remoteName;
  std::string remoteQMgr;
};

struct OpenHandle {
  enum class Kind { Queue, QMgr, Topic, DistList, Subscription };
  Kind kind = Kind::Queue;
  ZKLONG options = 0;
  ZKLONG objectType = ZKOT_Q;
  std::string openedName; // name as opened (the dynamic name for a model)
  std::string aliasName;  // the alias queue opened, when there was one
  // Output to a remote queue goes to the transmission queue in localQueue.
  bool remote = false;
  std::string localQueue;
  std::string remoteName;
  std::string remoteQMgr;
  std::string topicString;
  std::vector<Destination> dests; // a distribution list
  // Browse cursor: the message last browsed.
  bool cursorSet = false;
  uint64_t cursorUid = 0;
  ZKLONG cursorPriority = 0;
  // Context saved by a get on a handle opened with SAVE_ALL_CONTEXT.
  bool savedContextValid = false;
  ZKMD savedContext = ZKMD_DEFAULT;
  // A subscription handle.
  std::string subName;
  bool createdDynamic = false; // this handle created a dynamic queue
};

// A registered consumer (or the event handler, with hobj 0).
struct Consumer {
  ZKHOBJ hobj = 0;
  ZKCBD cbd = ZKCBD_DEFAULT;
  ZKMD md = ZKMD_DEFAULT;
  ZKGMO gmo = ZKGMO_DEFAULT;
  bool suspended = false;
};

// One call of a consumer's callback function, prepared by the engine.
struct Delivery {
  std::size_t consumer = 0;
  ZKHOBJ hobj = 0;
  ZKCBD cbd = ZKCBD_DEFAULT;
  ZKMD md = ZKMD_DEFAULT;
  ZKGMO gmo = ZKGMO_DEFAULT;
  ZKCBC cbc = ZKCBC_DEFAULT;
  std::vector<unsigned char> buffer;
  bool hasMessage = false;
  // An event for an event handler: the callback gets no descriptor, no get
  // options and no buffer.
  bool event = false;
};

struct EngineConn {
  ZKHCONN hconn = 0;
  ConnIdentity identity;
  std::map<ZKHOBJ, OpenHandle> handles;
  ZKHOBJ nextHobj = 101;
  uint64_t uow = 0;       // token of the unit of work in progress, 0 for none
  bool globalUow = false; // begun with ZKBEGIN
  bool xaAssociated = false;
  // Results of asynchronous puts since the last ZKSTAT.
  ZKLONG putSuccess = 0;
  ZKLONG putWarning = 0;
  ZKLONG putFailure = 0;
  ZKSTS firstError = ZKSTS_DEFAULT;
  bool hasFirstError = false;
  // Asynchronous consumption.
  std::vector<Consumer> consumers;
  enum class Ctl { Stopped, Started, Suspended } ctl = Ctl::Stopped;
  ZKPTR connectionArea = nullptr;
  std::deque<Delivery> pendingCalls; // register/start/stop calls not yet made
};

// An XID in either layout, as bytes.
struct XidValue {
  std::vector<unsigned char> bytes; // 140 or 152 bytes
  bool layout64 = false;
  // The fields of the XID, whatever its layout; `data` points into `bytes`
  // (gtrid, then bqual).
  struct Parts {
    long long formatId = 0;
    long long gtridLength = 0;
    long long bqualLength = 0;
    const unsigned char *data = nullptr;
  };
  Parts parts() const;
  std::string key() const; // formatID, gtrid and bqual, whatever the layout
};
XidValue makeXid(long formatId, const std::string &gtrid, const std::string &bqual, bool layout64);
XidValue xidFromMemory(const void *xid, bool layout64);

class Engine {
public:
  explicit Engine(std::string qmgrName);

  const std::string &name() const { return name_; }
  void setName(const std::string &name);
  // The objects, for definitions and displays; lock while using them.
  ObjectStore &store() { return store_; }
  std::mutex &mutex() { return mutex_; }
  // Distinguishes the identifiers generated in a forked process.
  void setProcessIndex(unsigned index);
  // Gives the calling thread identifiers and connection handles of its own
  // (thread 0 is the scenario's main thread), so that what a thread gets
  // does not depend on how the threads interleave.
  static void setThreadStream(unsigned index);

  // ---- ZKI calls, with the platform's parameters --------------------------
  void conn(const char *qmgrName, PZKCNO cno, const ConnIdentity &identity, PZKHCONN hconn,
            PZKLONG compCode, PZKLONG reason);
  void disc(PZKHCONN hconn, PZKLONG compCode, PZKLONG reason);
  void open(ZKHCONN hconn, PZKOD od, ZKLONG options, PZKHOBJ hobj, PZKLONG compCode,
            PZKLONG reason);
  void close(ZKHCONN hconn, PZKHOBJ hobj, ZKLONG options, PZKLONG compCode, PZKLONG reason);
  void put(ZKHCONN hconn, ZKHOBJ hobj, PZKMD md, PZKPMO pmo, ZKLONG length, const void *buffer,
           PZKLONG compCode, PZKLONG reason);
  void put1(ZKHCONN hconn, PZKOD od, PZKMD md, PZKPMO pmo, ZKLONG length, const void *buffer,
            PZKLONG compCode, PZKLONG reason);
  // `conversionPoint` is called, without the lock, when the get has a
  // message and asks for conversion: before the data is converted, with
  // the completion code and reason as they stand.
  void get(ZKHCONN hconn, ZKHOBJ hobj, PZKMD md, PZKGMO gmo, ZKLONG bufferLength, void *buffer,
           PZKLONG dataLength, PZKLONG compCode, PZKLONG reason,
           const std::function<void()> &conversionPoint);
  void inq(ZKHCONN hconn, ZKHOBJ hobj, ZKLONG selectorCount, const ZKLONG *selectors,
           ZKLONG intAttrCount, PZKLONG intAttrs, ZKLONG charAttrLength, char *charAttrs,
           PZKLONG compCode, PZKLONG reason);
  void set(ZKHCONN hconn, ZKHOBJ hobj, ZKLONG selectorCount, const ZKLONG *selectors,
           ZKLONG intAttrCount, const ZKLONG *intAttrs, ZKLONG charAttrLength,
           const char *charAttrs, PZKLONG compCode, PZKLONG reason);
  void begin(ZKHCONN hconn, PZKBO bo, PZKLONG compCode, PZKLONG reason);
  void cmit(ZKHCONN hconn, PZKLONG compCode, PZKLONG reason);
  void back(ZKHCONN hconn, PZKLONG compCode, PZKLONG reason);
  void stat(ZKHCONN hconn, ZKLONG type, PZKSTS sts, PZKLONG compCode, PZKLONG reason);
  void sub(ZKHCONN hconn, PZKSD sd, PZKHOBJ hobj, PZKHOBJ hsub, PZKLONG compCode, PZKLONG reason);
  void subrq(ZKHCONN hconn, ZKHOBJ hsub, ZKLONG action, PZKSRO sro, PZKLONG compCode,
             PZKLONG reason);
  void cb(ZKHCONN hconn, ZKLONG operation, PZKCBD cbd, ZKHOBJ hobj, PZKMD md, PZKGMO gmo,
          PZKLONG compCode, PZKLONG reason);
  void ctl(ZKHCONN hconn, ZKLONG operation, PZKCTLO ctlo, PZKLONG compCode, PZKLONG reason);

  // The next callback call of a connection: a control call (register,
  // start, stop) that is due, or a message for a consumer when the
  // connection is started. False when there is none.
  bool nextDelivery(ZKHCONN hconn, Delivery &delivery);
  // Queues a connection event (CompCode and Reason as the event handler gets
  // them) for the connection's event handler; false when none is
  // registered.
  bool raiseEvent(ZKHCONN hconn, ZKLONG compCode, ZKLONG reason);
  bool isStarted(ZKHCONN hconn);

  // ---- the resource manager's side of the transaction-manager calls -------
  ZKLONG xaOpen(const char *info, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaClose(const char *info, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaStart(ZKHCONN hconn, const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaEnd(ZKHCONN hconn, const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaPrepare(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaCommit(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaRollback(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaForget(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaRecover(void *xids, bool layout64, ZKLONG count, ZKLONG rmid, ZKLONG flags);
  ZKLONG xaComplete(PZKLONG handle, PZKLONG retval, ZKLONG rmid, ZKLONG flags);
  // ax_unreg: the connection leaves the transaction it joined by ax_reg.
  void leaveTransaction(ZKHCONN hconn);

  // Object definitions (scenario commands), under the lock.
  bool defineQueue(const QueueDef &def, bool replace, std::string &error);
  bool defineTopic(const TopicDef &def, std::string &error);
  bool defineSubscription(const Subscription &sub, std::string &error);
  int depth(const std::string &queue, bool &exists);

  // Message identifiers, unique in the run and the same from run to run.
  void newMsgId(ZKBYTE24 id);
  // The next value of the calling thread's identifier stream.
  uint64_t nextIdValue();

private:
  // Everything below runs with mutex_ held.
  EngineConn *connOf(ZKHCONN hconn);
  OpenHandle *handleOf(EngineConn &c, ZKHOBJ hobj);
  // The start of a call on a connection: the completion code is FAILED
  // until the call sets it; null, with ZKRC_HCONN_ERROR, when the handle
  // names no connection.
  EngineConn *callConn(ZKHCONN hconn, PZKLONG compCode, PZKLONG reason);
  // The same for a call on an object handle of the connection: null, with
  // ZKRC_HOBJ_ERROR, when the connection has no such handle. The
  // connection goes to `conn` when one is given.
  OpenHandle *callHandle(ZKHCONN hconn, ZKHOBJ hobj, PZKLONG compCode, PZKLONG reason,
                         EngineConn **conn = nullptr);
  // ZKCMIT (commit) and ZKBACK: the local unit of work ends.
  void endLocalUow(ZKHCONN hconn, bool commit, PZKLONG compCode, PZKLONG reason);
  uint64_t uowToken(EngineConn &c);
  void commitToken(uint64_t token);
  void backoutToken(uint64_t token);
  bool tokenHasWork(uint64_t token);
  void endConnection(EngineConn &c);
  void closeHandle(EngineConn &c, ZKHOBJ hobj, const OpenHandle &h, ZKLONG options);
  void removeSubscription(const std::string &name);

  // Opening: where the output of a name goes, or why it cannot.
  bool resolveOutput(const std::string &name, const std::string &qmgr, Destination &dest,
                     std::string &aliasName, std::string &topicString, ZKLONG &reason);
  bool openQueue(EngineConn &c, PZKOD od, ZKLONG options, OpenHandle &h, ZKLONG &compCode,
                 ZKLONG &reason);
  bool openDistList(EngineConn &c, PZKOD od, ZKLONG options, OpenHandle &h, ZKLONG &compCode,
                    ZKLONG &reason);
  bool createDynamic(EngineConn &c, QueueDef &model, PZKOD od, std::string &name, ZKLONG &reason);
  // The topic string that a topic object's name and a topic string give
  // together: the object's string, then "/" and the string. False when the
  // name names no topic object.
  bool fullTopic(const std::string &objectName, const std::string &string, std::string &topic);
  // A topic opened by name, by string or both; false, with the reason,
  // when it cannot be opened with `options`.
  bool openTopic(PZKOD od, ZKLONG options, OpenHandle &h, ZKLONG &compCode, ZKLONG &reason);

  // Putting: one message to one local queue (the message is complete).
  ZKLONG enqueue(QueueDef &q, Message msg, bool checkInhibit);
  void fillContext(EngineConn &c, OpenHandle *h, PZKMD md, PZKPMO pmo, ZKMD &stored);
  bool prepareMessage(EngineConn &c, OpenHandle *h, PZKMD md, PZKPMO pmo, ZKLONG length,
                      const void *buffer, Message &msg, ZKLONG &reason);
  ZKLONG putToDestination(const Destination &dest, const Message &msg);
  void putToHandle(EngineConn &c, OpenHandle &h, PZKMD md, PZKPMO pmo, ZKLONG length,
                   const void *buffer, ZKLONG &compCode, ZKLONG &reason);
  ZKLONG publish(EngineConn &c, const std::string &topic, const Message &msg, ZKLONG pmoOptions,
                 int &matched);
  void deliverRetained(const Subscription &sub, int &count);
  void trigger(QueueDef &q);

  // Getting.
  Message *findMessage(QueueDef &q, OpenHandle &h, PZKMD md, PZKGMO gmo, ZKLONG options,
                       ZKLONG &reason);
  void returnMessage(EngineConn &c, OpenHandle &h, QueueDef &q, Message &msg, PZKMD md, PZKGMO gmo,
                     ZKLONG bufferLength, void *buffer, PZKLONG dataLength, ZKLONG &compCode,
                     ZKLONG &reason, bool &removed);

  std::string name_;
  ObjectStore store_;
  std::mutex mutex_;
  std::condition_variable arrived_; // a message became available somewhere
  std::map<ZKHCONN, EngineConn> conns_;
  uint64_t nextUid_ = 1;
  uint64_t nextToken_ = 1;
  uint64_t idBase_ = 0;

  // Transactions of the resource manager, by XID.
  struct XaTxn {
    XidValue xid;
    uint64_t token = 0;
    enum class State { Active, Idle, Prepared } state = State::Active;
    bool rollbackOnly = false;
    ZKHCONN associated = 0;
  };
  using XaMap = std::map<std::string, XaTxn>;
  XaMap xa_;
  std::map<ZKLONG, bool> xaOpen_; // rmid -> open
  // The transaction an XID names: XA_OK with `it` set, XAER_INVAL without
  // an XID, XAER_NOTA when there is no such transaction.
  ZKLONG findXa(const void *xid, bool layout64, XaMap::iterator &it);
  // Commits or backs out a transaction's work, and forgets the transaction.
  void completeXa(XaMap::iterator it, bool commit);
};

// The length of a character attribute (ZKCA_*) that ZKINQ returns; 0 for a
// selector the queue manager does not know.
ZKLONG charAttrLength(ZKLONG selector);

// Text conversion between the character sets zkqm knows (1208, 819, 367,
// 437, 850, 1252, 1200, 37, 500). False when either CCSID is not one of
// them.
bool knownCcsid(ZKLONG ccsid);
bool convertText(const std::vector<unsigned char> &in, ZKLONG from, ZKLONG to,
                 std::vector<unsigned char> &out);

} // namespace zkqm
