// The queue calls of the engine: ZKOPEN, ZKCLOSE, ZKPUT, ZKPUT1, ZKGET.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "engine.h"
#include "engine_util.h"

namespace zkqm {
namespace {

constexpr ZKLONG kInputOptions = ZKOO_INPUT_AS_Q_DEF | ZKOO_INPUT_SHARED | ZKOO_INPUT_EXCLUSIVE;
constexpr ZKLONG kContextPutOptions = ZKPMO_NO_CONTEXT | ZKPMO_DEFAULT_CONTEXT |
                                      ZKPMO_PASS_IDENTITY_CONTEXT | ZKPMO_PASS_ALL_CONTEXT |
                                      ZKPMO_SET_IDENTITY_CONTEXT | ZKPMO_SET_ALL_CONTEXT;
constexpr ZKLONG kBrowseOptions =
    ZKGMO_BROWSE_FIRST | ZKGMO_BROWSE_NEXT | ZKGMO_BROWSE_MSG_UNDER_CURSOR;

int bitCount(ZKLONG v) {
  return __builtin_popcount(static_cast<unsigned>(v));
}

bool visible(const Message &m) {
  return m.putUow == 0 && m.getUow == 0;
}

int visibleCount(const QueueDef &q, ZKLONG minPriority) {
  int n = 0;
  for (const Message &m : q.messages) {
    if (visible(m) && m.md.Priority >= minPriority) {
      ++n;
    }
  }
  return n;
}

// True when the descriptor has version-2 fields that are not their defaults.
bool hasVersion2Fields(const ZKMD &md) {
  return !allZero(md.GroupId, sizeof md.GroupId) || md.MsgSeqNumber != 1 || md.Offset != 0 ||
         md.MsgFlags != 0 || md.OriginalLength != -1;
}

ZKLONG partialFailure(const std::vector<ZKLONG> &reasons, ZKLONG &compCode) {
  int failed = 0;
  ZKLONG first = 0;
  bool same = true;
  for (ZKLONG r : reasons) {
    if (r != 0 && r != ZKRC_PRIORITY_EXCEEDS_MAXIMUM) {
      if (failed == 0) {
        first = r;
      } else if (r != first) {
        same = false;
      }
      ++failed;
    }
  }
  if (failed == 0) {
    compCode = ZKCC_OK;
    return 0;
  }
  if (failed == static_cast<int>(reasons.size())) {
    compCode = ZKCC_FAILED;
    return same ? first : ZKRC_MULTIPLE_REASONS;
  }
  compCode = ZKCC_WARNING;
  return ZKRC_MULTIPLE_REASONS;
}

int pmrUnitLength(ZKLONG fields) {
  int n = 0;
  if (fields & ZKPMRF_MSG_ID) {
    n += ZK_MSG_ID_LENGTH;
  }
  if (fields & ZKPMRF_CORREL_ID) {
    n += ZK_CORREL_ID_LENGTH;
  }
  if (fields & ZKPMRF_GROUP_ID) {
    n += ZK_GROUP_ID_LENGTH;
  }
  if (fields & ZKPMRF_FEEDBACK) {
    n += ZKPMR_FEEDBACK_LENGTH;
  }
  if (fields & ZKPMRF_ACCOUNTING_TOKEN) {
    n += ZK_ACCOUNTING_TOKEN_LENGTH;
  }
  return n;
}

bool usableOd(const ZKOD *od) {
  return od != nullptr && hasStrucId(od, ZKOD_STRUC_ID) && od->Version >= ZKOD_VERSION_1 &&
         od->Version <= ZKOD_VERSION_4;
}

} // namespace

// ---- opening ------------------------------------------------------------------------

bool Engine::resolveOutput(const std::string &name, const std::string &qmgr, Destination &dest,
                           std::string &aliasName, std::string &topicString, ZKLONG &reason) {
  auto viaXmitQ = [&](const std::string &xmit, const std::string &rname, const std::string &rqmgr) {
    QueueDef *x = store_.queue(xmit);
    if (x == nullptr) {
      reason = ZKRC_UNKNOWN_XMIT_Q;
      return false;
    }
    if (x->type != ZKQT_LOCAL) {
      reason = ZKRC_XMIT_Q_TYPE_ERROR;
      return false;
    }
    if (x->usage != ZKUS_TRANSMISSION) {
      reason = ZKRC_XMIT_Q_USAGE_ERROR;
      return false;
    }
    dest.remote = true;
    dest.localQueue = xmit;
    dest.remoteName = rname;
    dest.remoteQMgr = rqmgr;
    return true;
  };
  if (!qmgr.empty() && qmgr != name_) {
    // Another queue manager: the transmission queue of its name, else the
    // default transmission queue.
    QueueDef *x = store_.queue(qmgr);
    if (x != nullptr && x->type == ZKQT_LOCAL && x->usage == ZKUS_TRANSMISSION) {
      return viaXmitQ(qmgr, name, qmgr);
    }
    if (!store_.qmgr.defaultXmitQueue.empty()) {
      return viaXmitQ(store_.qmgr.defaultXmitQueue, name, qmgr);
    }
    reason = ZKRC_UNKNOWN_REMOTE_Q_MGR;
    return false;
  }
  QueueDef *q = store_.queue(name);
  if (q == nullptr) {
    reason = ZKRC_UNKNOWN_OBJECT_NAME;
    return false;
  }
  if (q->type == ZKQT_ALIAS) {
    aliasName = name;
    if (q->targetIsTopic) {
      TopicDef *t = store_.topic(q->target);
      if (t == nullptr) {
        reason = ZKRC_UNKNOWN_ALIAS_BASE_Q;
        return false;
      }
      topicString = t->topicString;
      return true;
    }
    q = store_.queue(q->target);
    if (q == nullptr) {
      reason = ZKRC_UNKNOWN_ALIAS_BASE_Q;
      return false;
    }
    if (q->type != ZKQT_LOCAL && q->type != ZKQT_REMOTE) {
      reason = ZKRC_ALIAS_BASE_Q_TYPE_ERROR;
      return false;
    }
  }
  if (q->type == ZKQT_REMOTE) {
    if (q->remoteQMgr.empty() && q->remoteName.empty()) {
      reason = ZKRC_REMOTE_Q_NAME_ERROR;
      return false;
    }
    std::string xmit = q->xmitQueue;
    if (xmit.empty()) {
      QueueDef *x = store_.queue(q->remoteQMgr);
      xmit = x != nullptr ? q->remoteQMgr : store_.qmgr.defaultXmitQueue;
    }
    return viaXmitQ(xmit, q->remoteName.empty() ? q->name : q->remoteName, q->remoteQMgr);
  }
  if (q->type == ZKQT_MODEL) {
    reason = ZKRC_OBJECT_TYPE_ERROR;
    return false;
  }
  dest.localQueue = q->name;
  return true;
}

bool Engine::createDynamic(EngineConn &c, QueueDef &model, PZKOD od, std::string &name,
                           ZKLONG &reason) {
  std::string tmpl = fixedText(od->DynamicQName, ZK_Q_NAME_LENGTH);
  if (tmpl.empty() || tmpl[0] == '*') {
    reason = ZKRC_DYNAMIC_Q_NAME_ERROR;
    return false;
  }
  std::size_t star = tmpl.find('*');
  if (star == std::string::npos) {
    name = tmpl;
    if (store_.queue(name) != nullptr || store_.topic(name) != nullptr) {
      reason = ZKRC_OBJECT_ALREADY_EXISTS;
      return false;
    }
  } else {
    // The characters before the '*' and a unique suffix, the same from run
    // to run.
    char suffix[24];
    std::snprintf(suffix, sizeof suffix, "%016llX", static_cast<unsigned long long>(nextIdValue()));
    name = (tmpl.substr(0, star) + suffix).substr(0, ZK_Q_NAME_LENGTH);
  }
  QueueDef q = model;
  q.type = ZKQT_LOCAL;
  q.name = name;
  q.messages.clear();
  q.openInput = q.openOutput = q.openExclusive = 0;
  q.highDepth = q.enqueued = q.dequeued = 0;
  if (q.definitionType == ZKQDT_PREDEFINED) {
    q.definitionType = ZKQDT_TEMPORARY_DYNAMIC;
  }
  q.dynamicOwner = q.definitionType == ZKQDT_TEMPORARY_DYNAMIC ? c.hconn : 0;
  q.creationDate = objectDateNow();
  q.creationTime = objectTimeNow();
  store_.queues[name] = q;
  setFixed(od->ObjectName, ZK_Q_NAME_LENGTH, name);
  return true;
}

bool Engine::openQueue(EngineConn &c, PZKOD od, ZKLONG options, OpenHandle &h, ZKLONG &compCode,
                       ZKLONG &reason) {
  std::string name = fixedText(od->ObjectName, ZK_Q_NAME_LENGTH);
  std::string qmgr = fixedText(od->ObjectQMgrName, ZK_Q_MGR_NAME_LENGTH);
  ZKLONG input = options & kInputOptions;
  bool wantsInput = input != 0 || (options & ZKOO_BROWSE) != 0;
  bool output = (options & ZKOO_OUTPUT) != 0;
  auto fail = [&](ZKLONG why) {
    compCode = ZKCC_FAILED;
    reason = why;
    return false;
  };
  if (name.empty()) {
    return fail(ZKRC_UNKNOWN_OBJECT_NAME);
  }
  QueueDef *q = nullptr;
  bool remoteQMgr = !qmgr.empty() && qmgr != name_;
  if (!remoteQMgr) {
    q = store_.queue(name);
    if (q == nullptr) {
      return fail(ZKRC_UNKNOWN_OBJECT_NAME);
    }
    if (q->type == ZKQT_MODEL) {
      if (!createDynamic(c, *q, od, name, reason)) {
        return fail(reason);
      }
      h.createdDynamic = true;
      q = store_.queue(name);
    }
  }
  h.openedName = name;
  h.objectType = ZKOT_Q;

  // What the handle reads from and writes to.
  QueueDef *local = nullptr;
  if (remoteQMgr || q->type == ZKQT_REMOTE ||
      (q->type == ZKQT_ALIAS && store_.queue(q->target) != nullptr &&
       store_.queue(q->target)->type == ZKQT_REMOTE)) {
    if (wantsInput || (options & ZKOO_SET) != 0) {
      return fail(ZKRC_OPTION_NOT_VALID_FOR_TYPE);
    }
    if (q != nullptr && q->type == ZKQT_ALIAS) {
      h.aliasName = name;
    }
    if (output) {
      Destination d;
      std::string alias;
      std::string topic;
      if (!resolveOutput(name, qmgr, d, alias, topic, reason)) {
        return fail(reason);
      }
      h.remote = true;
      h.localQueue = d.localQueue;
      h.remoteName = d.remoteName;
      h.remoteQMgr = d.remoteQMgr;
    } else if (q != nullptr) {
      h.remoteName = q->remoteName;
      h.remoteQMgr = q->remoteQMgr;
    }
  } else if (q->type == ZKQT_ALIAS) {
    h.aliasName = name;
    if (q->targetIsTopic) {
      TopicDef *t = store_.topic(q->target);
      if (t == nullptr) {
        return fail(ZKRC_UNKNOWN_ALIAS_BASE_Q);
      }
      if (wantsInput) {
        return fail(ZKRC_OPTION_NOT_VALID_FOR_TYPE);
      }
      h.kind = OpenHandle::Kind::Topic;
      h.topicString = t->topicString;
      h.objectType = ZKOT_TOPIC;
    } else {
      local = store_.queue(q->target);
      if (local == nullptr) {
        return fail(ZKRC_UNKNOWN_ALIAS_BASE_Q);
      }
      if (local->type != ZKQT_LOCAL) {
        return fail(ZKRC_ALIAS_BASE_Q_TYPE_ERROR);
      }
    }
  } else {
    local = q;
  }

  if (local != nullptr) {
    bool exclusive = false;
    if (input != 0) {
      ZKLONG effective = input == ZKOO_INPUT_AS_Q_DEF ? local->defInputOpenOption : input;
      exclusive = effective == ZKOO_INPUT_EXCLUSIVE || !local->shareable;
      if (local->openExclusive > 0 || (exclusive && local->openInput > 0)) {
        return fail(ZKRC_OBJECT_IN_USE);
      }
    }
    h.localQueue = local->name;
    if (input != 0) {
      ++local->openInput;
      if (exclusive) {
        ++local->openExclusive;
        h.options |= 0x40000000; // remembered for the close
      }
    }
    if (output) {
      ++local->openOutput;
    }
  }

  if (od->Version >= ZKOD_VERSION_2) {
    od->KnownDestCount = local != nullptr && output ? 1 : 0;
    od->UnknownDestCount = h.remote ? 1 : 0;
    od->InvalidDestCount = 0;
  }
  if (od->Version >= ZKOD_VERSION_3) {
    std::string resolved = h.remote                ? h.remoteName
                           : local != nullptr      ? local->name
                           : !h.remoteName.empty() ? h.remoteName
                                                   : name;
    setFixed(od->ResolvedQName, ZK_Q_NAME_LENGTH, resolved);
    setFixed(od->ResolvedQMgrName, ZK_Q_MGR_NAME_LENGTH, h.remote ? h.remoteQMgr : name_);
  }
  if (od->Version >= ZKOD_VERSION_4) {
    od->ResolvedType = h.kind == OpenHandle::Kind::Topic ? ZKOT_TOPIC : ZKOT_Q;
    if (h.kind == OpenHandle::Kind::Topic) {
      setCharvOutput(od, od->ResObjectString, h.topicString);
    }
  }
  return true;
}

bool Engine::openDistList(EngineConn &c, PZKOD od, ZKLONG options, OpenHandle &h, ZKLONG &compCode,
                          ZKLONG &reason) {
  (void)c;
  if ((options &
       ~(ZKOO_OUTPUT | ZKOO_FAIL_IF_QUIESCING | ZKOO_PASS_IDENTITY_CONTEXT | ZKOO_PASS_ALL_CONTEXT |
         ZKOO_SET_IDENTITY_CONTEXT | ZKOO_SET_ALL_CONTEXT | ZKOO_ALTERNATE_USER_AUTHORITY)) != 0 ||
      (options & ZKOO_OUTPUT) == 0) {
    compCode = ZKCC_FAILED;
    reason = ZKRC_OPTION_NOT_VALID_FOR_TYPE;
    return false;
  }
  auto *records = subStructure<ZKOR>(od, od->ObjectRecPtr, od->ObjectRecOffset);
  auto *responses = subStructure<ZKRR>(od, od->ResponseRecPtr, od->ResponseRecOffset);
  if (records == nullptr) {
    compCode = ZKCC_FAILED;
    reason = ZKRC_OBJECT_RECORDS_ERROR;
    return false;
  }
  h.kind = OpenHandle::Kind::DistList;
  h.openedName = "";
  std::vector<ZKLONG> reasons;
  ZKLONG known = 0;
  ZKLONG unknown = 0;
  ZKLONG invalid = 0;
  for (ZKLONG i = 0; i < od->RecsPresent; ++i) {
    Destination d;
    d.name = fixedText(records[i].ObjectName, ZK_Q_NAME_LENGTH);
    d.qmgr = fixedText(records[i].ObjectQMgrName, ZK_Q_MGR_NAME_LENGTH);
    std::string alias;
    std::string topic;
    ZKLONG why = 0;
    if (!resolveOutput(d.name, d.qmgr, d, alias, topic, why)) {
      d.compCode = ZKCC_FAILED;
      d.reason = why;
    } else if (!topic.empty()) {
      d.compCode = ZKCC_FAILED;
      d.reason = ZKRC_OBJECT_TYPE_ERROR;
    }
    if (d.compCode == ZKCC_OK) {
      if (d.remote) {
        ++unknown;
      } else {
        ++known;
        ++store_.queue(d.localQueue)->openOutput;
      }
    } else {
      ++invalid;
    }
    if (responses != nullptr) {
      responses[i].CompCode = d.compCode;
      responses[i].Reason = d.reason;
    }
    reasons.push_back(d.reason);
    h.dests.push_back(d);
  }
  od->KnownDestCount = known;
  od->UnknownDestCount = unknown;
  od->InvalidDestCount = invalid;
  reason = partialFailure(reasons, compCode);
  return compCode != ZKCC_FAILED;
}

bool Engine::openTopic(PZKOD od, ZKLONG options, OpenHandle &h, ZKLONG &compCode, ZKLONG &reason) {
  auto fail = [&](ZKLONG why) {
    compCode = ZKCC_FAILED;
    reason = why;
    return false;
  };
  std::string name = fixedText(od->ObjectName, ZK_Q_NAME_LENGTH);
  std::string string =
      od->Version >= ZKOD_VERSION_4 ? charvText(od, od->ObjectString) : std::string();
  std::string topic;
  if (!fullTopic(name, string, topic)) {
    return fail(ZKRC_UNKNOWN_OBJECT_NAME);
  }
  if (topic.empty()) {
    return fail(ZKRC_UNKNOWN_OBJECT_NAME);
  }
  if ((options & (kInputOptions | ZKOO_BROWSE | ZKOO_SET)) != 0) {
    return fail(ZKRC_OPTION_NOT_VALID_FOR_TYPE);
  }
  h.kind = OpenHandle::Kind::Topic;
  h.objectType = ZKOT_TOPIC;
  h.openedName = name;
  h.topicString = topic;
  if (od->Version >= ZKOD_VERSION_4) {
    setCharvOutput(od, od->ResObjectString, topic);
    od->ResolvedType = ZKOT_TOPIC;
  }
  compCode = ZKCC_OK;
  reason = 0;
  return true;
}

void Engine::open(ZKHCONN hconn, PZKOD od, ZKLONG options, PZKHOBJ hobj, PZKLONG compCode,
                  PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (!usableOd(od)) {
    *reason = ZKRC_OD_ERROR;
    return;
  }
  ZKLONG input = options & kInputOptions;
  if (bitCount(input) > 1 || (options & ~0x001FFFFF) != 0 ||
      (options & (kInputOptions | ZKOO_BROWSE | ZKOO_OUTPUT | ZKOO_INQUIRE | ZKOO_SET)) == 0) {
    *reason = ZKRC_OPTIONS_ERROR;
    return;
  }
  OpenHandle h;
  h.options = options;
  ZKLONG cc = ZKCC_OK;
  ZKLONG rc = 0;
  bool ok = false;
  if (od->ObjectType == ZKOT_Q) {
    if (od->Version >= ZKOD_VERSION_2 && od->RecsPresent < 0) {
      *reason = ZKRC_RECS_PRESENT_ERROR;
      return;
    }
    ok = od->Version >= ZKOD_VERSION_2 && od->RecsPresent > 0
             ? openDistList(*c, od, options, h, cc, rc)
             : openQueue(*c, od, options, h, cc, rc);
  } else if (od->ObjectType == ZKOT_Q_MGR) {
    std::string name = fixedText(od->ObjectName, ZK_Q_MGR_NAME_LENGTH);
    if ((options & ~(ZKOO_INQUIRE | ZKOO_FAIL_IF_QUIESCING)) != 0) {
      rc = ZKRC_OPTION_NOT_VALID_FOR_TYPE;
    } else if (!name.empty() && name != name_) {
      rc = ZKRC_UNKNOWN_OBJECT_NAME;
    } else {
      h.kind = OpenHandle::Kind::QMgr;
      h.objectType = ZKOT_Q_MGR;
      h.openedName = name_;
      ok = true;
    }
    cc = ok ? ZKCC_OK : ZKCC_FAILED;
  } else if (od->ObjectType == ZKOT_TOPIC) {
    ok = openTopic(od, options, h, cc, rc);
  } else {
    rc = ZKRC_OBJECT_TYPE_ERROR;
    cc = ZKCC_FAILED;
  }
  *compCode = cc;
  *reason = rc;
  if (!ok) {
    return;
  }
  ZKHOBJ handle = c->nextHobj++;
  c->handles[handle] = h;
  *hobj = handle;
}

// ---- closing ------------------------------------------------------------------------

void Engine::closeHandle(EngineConn &c, ZKHOBJ hobj, const OpenHandle &h, ZKLONG options) {
  if (h.kind == OpenHandle::Kind::Queue && !h.localQueue.empty() && !h.remote) {
    QueueDef *q = store_.queue(h.localQueue);
    if (q != nullptr) {
      if (h.options & kInputOptions) {
        --q->openInput;
        if (h.options & 0x40000000) {
          --q->openExclusive;
        }
      }
      if (h.options & ZKOO_OUTPUT) {
        --q->openOutput;
      }
      bool temporary = q->definitionType == ZKQDT_TEMPORARY_DYNAMIC && h.createdDynamic;
      bool deleteIt = (q->definitionType == ZKQDT_PERMANENT_DYNAMIC ||
                       q->definitionType == ZKQDT_TEMPORARY_DYNAMIC) &&
                      (options & (ZKCO_DELETE | ZKCO_DELETE_PURGE)) != 0;
      if (temporary || deleteIt) {
        store_.queues.erase(h.localQueue);
      }
    }
  } else if (h.kind == OpenHandle::Kind::DistList) {
    for (const Destination &d : h.dests) {
      QueueDef *q = d.compCode != ZKCC_FAILED && !d.remote ? store_.queue(d.localQueue) : nullptr;
      if (q != nullptr) {
        --q->openOutput;
      }
    }
  } else if (h.kind == OpenHandle::Kind::Subscription) {
    Subscription *s = store_.subscription(h.subName);
    if (s != nullptr && (!s->durable || (options & ZKCO_REMOVE_SUB) != 0)) {
      removeSubscription(h.subName);
    }
  }
  c.handles.erase(hobj);
}

void Engine::close(ZKHCONN hconn, PZKHOBJ hobj, ZKLONG options, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = nullptr;
  OpenHandle *h = callHandle(hconn, *hobj, compCode, reason, &c);
  if (h == nullptr) {
    return;
  }
  ZKLONG deleting = options & (ZKCO_DELETE | ZKCO_DELETE_PURGE);
  ZKLONG subOptions = options & (ZKCO_KEEP_SUB | ZKCO_REMOVE_SUB);
  if ((options &
       ~(ZKCO_DELETE | ZKCO_DELETE_PURGE | ZKCO_KEEP_SUB | ZKCO_REMOVE_SUB | ZKCO_QUIESCE)) != 0 ||
      bitCount(deleting) > 1 || bitCount(subOptions) > 1) {
    *reason = ZKRC_OPTIONS_ERROR;
    return;
  }
  if (deleting != 0) {
    QueueDef *q =
        h->kind == OpenHandle::Kind::Queue && !h->remote ? store_.queue(h->localQueue) : nullptr;
    if (q == nullptr || q->definitionType == ZKQDT_PREDEFINED ||
        (q->definitionType == ZKQDT_TEMPORARY_DYNAMIC && !h->createdDynamic)) {
      *reason = ZKRC_OPTION_NOT_VALID_FOR_TYPE;
      return;
    }
    if (deleting == ZKCO_DELETE && !q->messages.empty()) {
      *reason = ZKRC_Q_NOT_EMPTY;
      return;
    }
  }
  if (subOptions != 0) {
    Subscription *s =
        h->kind == OpenHandle::Kind::Subscription ? store_.subscription(h->subName) : nullptr;
    if (s == nullptr || (subOptions == ZKCO_KEEP_SUB && !s->durable)) {
      *reason = ZKRC_OPTION_NOT_VALID_FOR_TYPE;
      return;
    }
  }
  OpenHandle copy = *h;
  closeHandle(*c, *hobj, copy, options);
  *hobj = ZKHO_UNUSABLE_HOBJ;
  *compCode = ZKCC_OK;
  *reason = 0;
}

// ---- putting ------------------------------------------------------------------------

void Engine::trigger(QueueDef &q) {
  if (q.triggerControl != ZKTC_ON || q.initiationQueue.empty() || q.usage == ZKUS_TRANSMISSION) {
    return;
  }
  int available = visibleCount(q, q.triggerMsgPriority);
  bool fire = false;
  switch (q.triggerType) {
  case ZKTT_FIRST:
    fire = available == 1 && q.openInput == 0;
    break;
  case ZKTT_EVERY:
    fire = available > 0;
    break;
  case ZKTT_DEPTH:
    fire = available >= q.triggerDepth;
    if (fire) {
      q.triggerControl = ZKTC_OFF;
    }
    break;
  default:
    break;
  }
  QueueDef *initq = store_.queue(q.initiationQueue);
  if (!fire || initq == nullptr || initq->type != ZKQT_LOCAL || initq == &q) {
    return;
  }
  ZKTM tm = ZKTM_DEFAULT;
  setFixed(tm.QName, sizeof tm.QName, q.name);
  setFixed(tm.ProcessName, sizeof tm.ProcessName, q.processName);
  setFixed(tm.TriggerData, sizeof tm.TriggerData, q.triggerData);
  tm.ApplType = ZKAT_UNIX;
  Message msg;
  msg.md.Version = ZKMD_VERSION_2;
  std::memcpy(msg.md.Format, ZKFMT_TRIGGER, 8);
  msg.md.CodedCharSetId = store_.qmgr.ccsid;
  msg.md.Persistence = ZKPER_NOT_PERSISTENT;
  msg.md.Priority = 0;
  newMsgId(msg.md.MsgId);
  msg.md.PutApplType = ZKAT_QMGR;
  setFixed(msg.md.PutApplName, sizeof msg.md.PutApplName, name_);
  setFixed(msg.md.PutDate, 8, putDateNow());
  setFixed(msg.md.PutTime, 8, putTimeNow());
  msg.data.assign(reinterpret_cast<unsigned char *>(&tm),
                  reinterpret_cast<unsigned char *>(&tm) + sizeof tm);
  enqueue(*initq, std::move(msg), false);
}

ZKLONG Engine::enqueue(QueueDef &q, Message msg, bool checkInhibit) {
  if (checkInhibit && q.putInhibited) {
    return ZKRC_PUT_INHIBITED;
  }
  if (static_cast<ZKLONG>(msg.data.size()) > q.maxMsgLength) {
    return ZKRC_MSG_TOO_BIG_FOR_Q;
  }
  if (static_cast<ZKLONG>(msg.data.size()) > store_.qmgr.maxMsgLength) {
    return ZKRC_MSG_TOO_BIG_FOR_Q_MGR;
  }
  if (static_cast<ZKLONG>(q.messages.size()) >= q.maxDepth) {
    return ZKRC_Q_FULL;
  }
  if (msg.md.Priority == ZKPRI_PRIORITY_AS_Q_DEF) {
    msg.md.Priority = q.defPriority;
  }
  if (msg.md.Persistence == ZKPER_PERSISTENCE_AS_Q_DEF) {
    msg.md.Persistence = q.defPersistence;
  }
  msg.uid = nextUid_++;
  auto at = q.messages.end();
  if (q.deliverySequence == ZKMDS_PRIORITY) {
    at = std::find_if(q.messages.begin(), q.messages.end(),
                      [&](const Message &m) { return m.md.Priority < msg.md.Priority; });
  }
  bool available = msg.putUow == 0;
  q.messages.insert(at, std::move(msg));
  q.highDepth = std::max(q.highDepth, static_cast<int>(q.messages.size()));
  ++q.enqueued;
  if (available) {
    trigger(q);
    arrived_.notify_all();
  }
  return 0;
}

void Engine::fillContext(EngineConn &c, OpenHandle *h, PZKMD md, PZKPMO pmo, ZKMD &stored) {
  ZKLONG opts = pmo->Options;
  auto identityByQMgr = [&]() {
    setFixed(stored.UserIdentifier, sizeof stored.UserIdentifier, c.identity.user);
    std::memset(stored.AccountingToken, 0, sizeof stored.AccountingToken);
    stored.AccountingToken[0] =
        static_cast<ZKBYTE>(std::min<std::size_t>(c.identity.user.size(), 12));
    std::memcpy(stored.AccountingToken + 1, c.identity.user.data(),
                std::min<std::size_t>(c.identity.user.size(), 12));
    setFixed(stored.ApplIdentityData, sizeof stored.ApplIdentityData, "");
  };
  auto originByQMgr = [&]() {
    stored.PutApplType = c.identity.applType;
    // The program's name, without its directory.
    std::string appl = c.identity.applName.substr(c.identity.applName.rfind('/') + 1);
    if (appl.size() > 28) {
      appl = appl.substr(appl.size() - 28);
    }
    setFixed(stored.PutApplName, sizeof stored.PutApplName, appl);
    setFixed(stored.PutDate, 8, putDateNow());
    setFixed(stored.PutTime, 8, putTimeNow());
    setFixed(stored.ApplOriginData, 4, "");
  };
  auto copyIdentity = [&](const ZKMD &from) {
    std::memcpy(stored.UserIdentifier, from.UserIdentifier, sizeof stored.UserIdentifier);
    std::memcpy(stored.AccountingToken, from.AccountingToken, sizeof stored.AccountingToken);
    std::memcpy(stored.ApplIdentityData, from.ApplIdentityData, sizeof stored.ApplIdentityData);
  };
  auto copyOrigin = [&](const ZKMD &from) {
    stored.PutApplType = from.PutApplType;
    std::memcpy(stored.PutApplName, from.PutApplName, sizeof stored.PutApplName);
    std::memcpy(stored.PutDate, from.PutDate, 8);
    std::memcpy(stored.PutTime, from.PutTime, 8);
    std::memcpy(stored.ApplOriginData, from.ApplOriginData, 4);
  };
  if (opts & ZKPMO_NO_CONTEXT) {
    setFixed(stored.UserIdentifier, sizeof stored.UserIdentifier, "");
    std::memset(stored.AccountingToken, 0, sizeof stored.AccountingToken);
    setFixed(stored.ApplIdentityData, sizeof stored.ApplIdentityData, "");
    stored.PutApplType = ZKAT_NO_CONTEXT;
    setFixed(stored.PutApplName, sizeof stored.PutApplName, "");
    setFixed(stored.PutDate, 8, "");
    setFixed(stored.PutTime, 8, "");
    setFixed(stored.ApplOriginData, 4, "");
  } else if (opts & ZKPMO_SET_ALL_CONTEXT) {
    copyIdentity(*md);
    copyOrigin(*md);
  } else if (opts & ZKPMO_SET_IDENTITY_CONTEXT) {
    copyIdentity(*md);
    originByQMgr();
  } else if (opts & (ZKPMO_PASS_ALL_CONTEXT | ZKPMO_PASS_IDENTITY_CONTEXT)) {
    OpenHandle *from = handleOf(c, pmo->Context);
    copyIdentity(from->savedContext);
    if (opts & ZKPMO_PASS_ALL_CONTEXT) {
      copyOrigin(from->savedContext);
    } else {
      originByQMgr();
    }
  } else {
    identityByQMgr();
    originByQMgr();
  }
  (void)h;
  // The context goes back to the application in its descriptor.
  std::memcpy(md->UserIdentifier, stored.UserIdentifier, sizeof md->UserIdentifier);
  std::memcpy(md->AccountingToken, stored.AccountingToken, sizeof md->AccountingToken);
  std::memcpy(md->ApplIdentityData, stored.ApplIdentityData, sizeof md->ApplIdentityData);
  md->PutApplType = stored.PutApplType;
  std::memcpy(md->PutApplName, stored.PutApplName, sizeof md->PutApplName);
  std::memcpy(md->PutDate, stored.PutDate, 8);
  std::memcpy(md->PutTime, stored.PutTime, 8);
  std::memcpy(md->ApplOriginData, stored.ApplOriginData, 4);
}

bool Engine::prepareMessage(EngineConn &c, OpenHandle *h, PZKMD md, PZKPMO pmo, ZKLONG length,
                            const void *buffer, Message &msg, ZKLONG &reason) {
  if (md == nullptr || !hasStrucId(md, ZKMD_STRUC_ID) || md->Version < ZKMD_VERSION_1 ||
      md->Version > ZKMD_VERSION_2) {
    reason = ZKRC_MD_ERROR;
    return false;
  }
  if (pmo == nullptr || !hasStrucId(pmo, ZKPMO_STRUC_ID) || pmo->Version < ZKPMO_VERSION_1 ||
      pmo->Version > ZKPMO_VERSION_3) {
    reason = ZKRC_PMO_ERROR;
    return false;
  }
  if (length < 0) {
    reason = ZKRC_BUFFER_LENGTH_ERROR;
    return false;
  }
  if (length > 0 && buffer == nullptr) {
    reason = ZKRC_BUFFER_ERROR;
    return false;
  }
  ZKLONG opts = pmo->Options;
  if ((opts & ZKPMO_SYNCPOINT) && (opts & ZKPMO_NO_SYNCPOINT)) {
    reason = ZKRC_OPTIONS_ERROR;
    return false;
  }
  if (bitCount(opts & kContextPutOptions) > 1 ||
      ((opts & ZKPMO_ASYNC_RESPONSE) && (opts & ZKPMO_SYNC_RESPONSE))) {
    reason = ZKRC_OPTIONS_ERROR;
    return false;
  }
  ZKLONG openOptions = h != nullptr ? h->options : 0;
  if ((opts & ZKPMO_SET_ALL_CONTEXT) && !(openOptions & ZKOO_SET_ALL_CONTEXT)) {
    reason = ZKRC_NOT_OPEN_FOR_SET_ALL;
    return false;
  }
  if ((opts & ZKPMO_SET_IDENTITY_CONTEXT) &&
      !(openOptions & (ZKOO_SET_IDENTITY_CONTEXT | ZKOO_SET_ALL_CONTEXT))) {
    reason = ZKRC_NOT_OPEN_FOR_SET_IDENT;
    return false;
  }
  if ((opts & ZKPMO_PASS_ALL_CONTEXT) &&
      !(openOptions & (ZKOO_PASS_ALL_CONTEXT | ZKOO_SET_ALL_CONTEXT))) {
    reason = ZKRC_NOT_OPEN_FOR_PASS_ALL;
    return false;
  }
  if ((opts & ZKPMO_PASS_IDENTITY_CONTEXT) &&
      !(openOptions & (ZKOO_PASS_IDENTITY_CONTEXT | ZKOO_PASS_ALL_CONTEXT |
                       ZKOO_SET_IDENTITY_CONTEXT | ZKOO_SET_ALL_CONTEXT))) {
    reason = ZKRC_NOT_OPEN_FOR_PASS_IDENT;
    return false;
  }
  if (opts & (ZKPMO_PASS_ALL_CONTEXT | ZKPMO_PASS_IDENTITY_CONTEXT)) {
    OpenHandle *from = handleOf(c, pmo->Context);
    if (from == nullptr || !(from->options & ZKOO_SAVE_ALL_CONTEXT)) {
      reason = ZKRC_CONTEXT_HANDLE_ERROR;
      return false;
    }
  }
  if (md->Persistence < ZKPER_NOT_PERSISTENT || md->Persistence > ZKPER_PERSISTENCE_AS_Q_DEF) {
    reason = ZKRC_PERSISTENCE_ERROR;
    return false;
  }
  if (md->Priority < ZKPRI_PRIORITY_AS_Q_DEF) {
    reason = ZKRC_PRIORITY_ERROR;
    return false;
  }
  if (md->Expiry < -1 || md->Expiry == 0) {
    reason = ZKRC_EXPIRY_ERROR;
    return false;
  }
  if (md->MsgType == ZKMT_REQUEST && fixedText(md->ReplyToQ, ZK_Q_NAME_LENGTH).empty()) {
    reason = ZKRC_MISSING_REPLY_TO_Q;
    return false;
  }

  msg.md = ZKMD_DEFAULT;
  std::memcpy(&msg.md, md, md->Version >= ZKMD_VERSION_2 ? ZKMD_LENGTH_2 : ZKMD_LENGTH_1);
  msg.md.Version = ZKMD_VERSION_2;
  const auto *bytes = static_cast<const unsigned char *>(buffer);
  msg.data.assign(bytes, bytes + length);
  // A version-1 descriptor with the version-2 fields in an extension in
  // front of the data: the queue manager takes them into the descriptor.
  if (md->Version == ZKMD_VERSION_1 && std::memcmp(md->Format, ZKFMT_MD_EXTENSION, 8) == 0 &&
      msg.data.size() >= ZKMDE_LENGTH_2 && hasStrucId(msg.data.data(), ZKMDE_STRUC_ID)) {
    ZKMDE mde;
    std::memcpy(&mde, msg.data.data(), sizeof mde);
    std::memcpy(msg.md.GroupId, mde.GroupId, sizeof mde.GroupId);
    msg.md.MsgSeqNumber = mde.MsgSeqNumber;
    msg.md.Offset = mde.Offset;
    msg.md.MsgFlags = mde.MsgFlags;
    msg.md.OriginalLength = mde.OriginalLength;
    msg.md.Encoding = mde.Encoding;
    msg.md.CodedCharSetId = mde.CodedCharSetId;
    std::memcpy(msg.md.Format, mde.Format, 8);
    std::size_t skip = mde.StrucLength >= ZKMDE_LENGTH_2 &&
                               static_cast<std::size_t>(mde.StrucLength) <= msg.data.size()
                           ? static_cast<std::size_t>(mde.StrucLength)
                           : ZKMDE_LENGTH_2;
    msg.data.erase(msg.data.begin(), msg.data.begin() + skip);
  }
  if (msg.md.CodedCharSetId == ZKCCSI_DEFAULT) {
    msg.md.CodedCharSetId = store_.qmgr.ccsid;
  }
  if ((opts & ZKPMO_NEW_MSG_ID) || allZero(md->MsgId, sizeof md->MsgId)) {
    newMsgId(msg.md.MsgId);
    std::memcpy(md->MsgId, msg.md.MsgId, sizeof md->MsgId);
  }
  if (opts & ZKPMO_NEW_CORREL_ID) {
    newMsgId(msg.md.CorrelId);
    std::memcpy(md->CorrelId, msg.md.CorrelId, sizeof md->CorrelId);
  }
  fillContext(c, h, md, pmo, msg.md);
  reason = 0;
  return true;
}

ZKLONG Engine::putToDestination(const Destination &dest, const Message &msg) {
  QueueDef *q = store_.queue(dest.localQueue);
  if (q == nullptr) {
    return ZKRC_Q_DELETED;
  }
  if (!dest.remote) {
    return enqueue(*q, msg, true);
  }
  // To another queue manager: on its transmission queue, behind a
  // transmission-queue header that carries the original descriptor, with
  // the defaults of the queue definition resolved.
  Message resolved = msg;
  if (resolved.md.Priority == ZKPRI_PRIORITY_AS_Q_DEF) {
    resolved.md.Priority = q->defPriority;
  }
  if (resolved.md.Persistence == ZKPER_PERSISTENCE_AS_Q_DEF) {
    resolved.md.Persistence = q->defPersistence;
  }
  ZKXQH xqh = ZKXQH_DEFAULT;
  setFixed(xqh.RemoteQName, sizeof xqh.RemoteQName, dest.remoteName);
  setFixed(xqh.RemoteQMgrName, sizeof xqh.RemoteQMgrName, dest.remoteQMgr);
  std::memcpy(&xqh.MsgDesc, &resolved.md, sizeof xqh.MsgDesc);
  xqh.MsgDesc.Version = ZKMD_VERSION_1;
  Message x = resolved;
  std::memcpy(x.md.Format, ZKFMT_XMIT_Q_HEADER, 8);
  x.md.Encoding = ZKENC_NATIVE;
  x.md.CodedCharSetId = store_.qmgr.ccsid;
  x.data.assign(reinterpret_cast<unsigned char *>(&xqh),
                reinterpret_cast<unsigned char *>(&xqh) + sizeof xqh);
  x.data.insert(x.data.end(), msg.data.begin(), msg.data.end());
  return enqueue(*q, std::move(x), true);
}

void Engine::putToHandle(EngineConn &c, OpenHandle &h, PZKMD md, PZKPMO pmo, ZKLONG length,
                         const void *buffer, ZKLONG &compCode, ZKLONG &reason) {
  compCode = ZKCC_FAILED;
  if (!(h.options & ZKOO_OUTPUT)) {
    reason = ZKRC_NOT_OPEN_FOR_OUTPUT;
    return;
  }
  Message msg;
  if (!prepareMessage(c, &h, md, pmo, length, buffer, msg, reason)) {
    return;
  }
  ZKLONG opts = pmo->Options;
  bool syncpoint = (opts & ZKPMO_SYNCPOINT) != 0;
  if (syncpoint) {
    msg.putUow = uowToken(c);
  }
  ZKLONG warning = 0;
  if (msg.md.Priority > store_.qmgr.maxPriority) {
    msg.md.Priority = store_.qmgr.maxPriority;
    warning = ZKRC_PRIORITY_EXCEEDS_MAXIMUM;
  }
  ZKLONG known = 0;
  ZKLONG unknown = 0;
  ZKLONG invalid = 0;
  std::string resolvedQ;
  std::string resolvedQMgr = name_;

  if (!h.aliasName.empty()) {
    QueueDef *alias = store_.queue(h.aliasName);
    if (alias != nullptr && alias->putInhibited) {
      reason = ZKRC_PUT_INHIBITED;
      return;
    }
  }
  if (h.kind == OpenHandle::Kind::Topic) {
    int matched = 0;
    reason = publish(c, h.topicString, msg, opts, matched);
    if (reason == 0 && matched == 0 && (opts & ZKPMO_WARN_IF_NO_SUBS_MATCHED)) {
      warning = ZKRC_NO_SUBS_MATCHED;
    }
    resolvedQ = "";
  } else if (h.kind == OpenHandle::Kind::DistList) {
    std::vector<ZKLONG> reasons;
    char *pmr = nullptr;
    ZKRR *rr = nullptr;
    ZKLONG fields = 0;
    if (pmo->Version >= ZKPMO_VERSION_2 && pmo->RecsPresent > 0) {
      if (pmo->RecsPresent != static_cast<ZKLONG>(h.dests.size())) {
        reason = ZKRC_RECS_PRESENT_ERROR;
        return;
      }
      if ((pmo->PutMsgRecFields & ~0x1F) != 0) {
        reason = ZKRC_PMO_RECORD_FLAGS_ERROR;
        return;
      }
      fields = pmo->PutMsgRecFields;
      pmr = subStructure<char>(pmo, pmo->PutMsgRecPtr, pmo->PutMsgRecOffset);
      rr = subStructure<ZKRR>(pmo, pmo->ResponseRecPtr, pmo->ResponseRecOffset);
      if (pmr == nullptr && fields != 0) {
        reason = ZKRC_PUT_MSG_RECORDS_ERROR;
        return;
      }
    }
    int unit = pmrUnitLength(fields);
    // Remote destinations that share a transmission queue and queue manager
    // travel as one message with a distribution header.
    std::map<std::string, std::vector<std::size_t>> remoteGroups;
    std::vector<Message> perDest(h.dests.size(), msg);
    for (std::size_t i = 0; i < h.dests.size(); ++i) {
      const char *rec = pmr != nullptr ? pmr + i * unit : nullptr;
      Message &m = perDest[i];
      if (rec != nullptr) {
        if (fields & ZKPMRF_MSG_ID) {
          std::memcpy(m.md.MsgId, rec, 24);
          if (allZero(m.md.MsgId, 24)) {
            newMsgId(m.md.MsgId);
            std::memcpy(const_cast<char *>(rec), m.md.MsgId, 24);
          }
          rec += 24;
        }
        if (fields & ZKPMRF_CORREL_ID) {
          std::memcpy(m.md.CorrelId, rec, 24);
          rec += 24;
        }
        if (fields & ZKPMRF_GROUP_ID) {
          std::memcpy(m.md.GroupId, rec, 24);
          rec += 24;
        }
        if (fields & ZKPMRF_FEEDBACK) {
          std::memcpy(&m.md.Feedback, rec, 4);
          rec += 4;
        }
        if (fields & ZKPMRF_ACCOUNTING_TOKEN) {
          std::memcpy(m.md.AccountingToken, rec, 32);
        }
      }
      const Destination &d = h.dests[i];
      if (d.compCode == ZKCC_FAILED) {
        continue;
      }
      if (d.remote) {
        remoteGroups[d.localQueue + "\n" + d.remoteQMgr].push_back(i);
      }
    }
    std::vector<ZKLONG> result(h.dests.size(), 0);
    for (std::size_t i = 0; i < h.dests.size(); ++i) {
      const Destination &d = h.dests[i];
      if (d.compCode == ZKCC_FAILED) {
        result[i] = d.reason;
      } else if (!d.remote) {
        result[i] = putToDestination(d, perDest[i]);
      }
    }
    for (auto &group : remoteGroups) {
      const std::vector<std::size_t> &members = group.second;
      const Destination &first = h.dests[members.front()];
      if (members.size() == 1) {
        result[members.front()] = putToDestination(first, perDest[members.front()]);
        continue;
      }
      // Distribution header, object records, put-message records, data.
      std::vector<unsigned char> body;
      ZKLONG recFields = ZKPMRF_MSG_ID | ZKPMRF_CORREL_ID;
      int recUnit = pmrUnitLength(recFields);
      ZKDH dh = ZKDH_DEFAULT;
      dh.Encoding = msg.md.Encoding;
      dh.CodedCharSetId = msg.md.CodedCharSetId;
      std::memcpy(dh.Format, msg.md.Format, 8);
      dh.PutMsgRecFields = recFields;
      dh.RecsPresent = static_cast<ZKLONG>(members.size());
      dh.ObjectRecOffset = ZKDH_LENGTH_1;
      dh.PutMsgRecOffset = ZKDH_LENGTH_1 + ZKOR_LENGTH * dh.RecsPresent;
      dh.StrucLength = dh.PutMsgRecOffset + recUnit * dh.RecsPresent;
      body.resize(dh.StrucLength);
      std::memcpy(body.data(), &dh, sizeof dh);
      for (std::size_t k = 0; k < members.size(); ++k) {
        const Destination &d = h.dests[members[k]];
        ZKOR orec = ZKOR_DEFAULT;
        setFixed(orec.ObjectName, sizeof orec.ObjectName, d.remoteName);
        setFixed(orec.ObjectQMgrName, sizeof orec.ObjectQMgrName, d.remoteQMgr);
        std::memcpy(body.data() + dh.ObjectRecOffset + k * ZKOR_LENGTH, &orec, sizeof orec);
        unsigned char *p = body.data() + dh.PutMsgRecOffset + k * recUnit;
        std::memcpy(p, perDest[members[k]].md.MsgId, 24);
        std::memcpy(p + 24, perDest[members[k]].md.CorrelId, 24);
      }
      body.insert(body.end(), msg.data.begin(), msg.data.end());
      Message dm = msg;
      std::memcpy(dm.md.Format, ZKFMT_DIST_HEADER, 8);
      dm.md.Encoding = ZKENC_NATIVE;
      dm.data = body;
      Destination d = first;
      d.remoteName = "";
      ZKLONG r = putToDestination(d, dm);
      for (std::size_t i : members) {
        result[i] = r;
      }
    }
    for (std::size_t i = 0; i < h.dests.size(); ++i) {
      if (rr != nullptr) {
        rr[i].CompCode = result[i] == 0 ? ZKCC_OK : ZKCC_FAILED;
        rr[i].Reason = result[i];
      }
      if (result[i] != 0) {
        ++invalid;
      } else if (h.dests[i].remote) {
        ++unknown;
      } else {
        ++known;
      }
      reasons.push_back(result[i]);
    }
    reason = partialFailure(reasons, compCode);
    if (pmo->Version >= ZKPMO_VERSION_1) {
      pmo->KnownDestCount = known;
      pmo->UnknownDestCount = unknown;
      pmo->InvalidDestCount = invalid;
    }
    setFixed(pmo->ResolvedQName, ZK_Q_NAME_LENGTH, "");
    setFixed(pmo->ResolvedQMgrName, ZK_Q_MGR_NAME_LENGTH, "");
    if (compCode == ZKCC_OK && warning != 0) {
      compCode = ZKCC_WARNING;
      reason = warning;
    }
    return;
  } else {
    Destination d;
    d.localQueue = h.localQueue;
    d.remote = h.remote;
    d.remoteName = h.remoteName;
    d.remoteQMgr = h.remoteQMgr;
    reason = putToDestination(d, msg);
    resolvedQ = h.remote ? h.remoteName : h.localQueue;
    resolvedQMgr = h.remote ? h.remoteQMgr : name_;
    if (reason == 0) {
      (h.remote ? unknown : known) = 1;
    } else {
      invalid = 1;
    }
  }
  pmo->KnownDestCount = known;
  pmo->UnknownDestCount = unknown;
  pmo->InvalidDestCount = invalid;
  setFixed(pmo->ResolvedQName, ZK_Q_NAME_LENGTH, resolvedQ);
  setFixed(pmo->ResolvedQMgrName, ZK_Q_MGR_NAME_LENGTH, resolvedQMgr);
  if (reason != 0) {
    compCode = ZKCC_FAILED;
    return;
  }
  compCode = warning != 0 ? ZKCC_WARNING : ZKCC_OK;
  reason = warning;
}

void Engine::put(ZKHCONN hconn, ZKHOBJ hobj, PZKMD md, PZKPMO pmo, ZKLONG length,
                 const void *buffer, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = nullptr;
  OpenHandle *h = callHandle(hconn, hobj, compCode, reason, &c);
  if (h == nullptr) {
    return;
  }
  ZKLONG cc = ZKCC_FAILED;
  ZKLONG rc = 0;
  putToHandle(*c, *h, md, pmo, length, buffer, cc, rc);
  if (pmo != nullptr && hasStrucId(pmo, ZKPMO_STRUC_ID) && (pmo->Options & ZKPMO_ASYNC_RESPONSE) &&
      rc != ZKRC_PMO_ERROR && rc != ZKRC_MD_ERROR) {
    // An asynchronous put answers at once; its outcome waits for ZKSTAT.
    if (cc == ZKCC_OK) {
      ++c->putSuccess;
    } else {
      (cc == ZKCC_WARNING ? c->putWarning : c->putFailure) += 1;
      if (!c->hasFirstError) {
        c->hasFirstError = true;
        c->firstError = ZKSTS_DEFAULT;
        c->firstError.CompCode = cc;
        c->firstError.Reason = rc;
        c->firstError.ObjectType = h->objectType;
        setFixed(c->firstError.ObjectName, ZK_Q_NAME_LENGTH, h->openedName);
        setFixed(c->firstError.ObjectQMgrName, ZK_Q_MGR_NAME_LENGTH, "");
        setFixed(c->firstError.ResolvedObjectName, ZK_Q_NAME_LENGTH,
                 h->remote ? h->remoteName : h->localQueue);
        setFixed(c->firstError.ResolvedQMgrName, ZK_Q_MGR_NAME_LENGTH,
                 h->remote ? h->remoteQMgr : name_);
        c->firstError.OpenOptions = h->options & 0x001FFFFF;
      }
    }
    cc = ZKCC_OK;
    rc = 0;
  }
  *compCode = cc;
  *reason = rc;
}

void Engine::put1(ZKHCONN hconn, PZKOD od, PZKMD md, PZKPMO pmo, ZKLONG length, const void *buffer,
                  PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (!usableOd(od)) {
    *reason = ZKRC_OD_ERROR;
    return;
  }
  if (pmo == nullptr || !hasStrucId(pmo, ZKPMO_STRUC_ID) || pmo->Version < ZKPMO_VERSION_1 ||
      pmo->Version > ZKPMO_VERSION_3) {
    *reason = ZKRC_PMO_ERROR;
    return;
  }
  // The open that ZKPUT1 implies: output, with the context authority that
  // the put options need.
  ZKLONG options = ZKOO_OUTPUT;
  ZKLONG p = pmo->Options;
  if (p & ZKPMO_SET_ALL_CONTEXT) {
    options |= ZKOO_SET_ALL_CONTEXT;
  }
  if (p & ZKPMO_SET_IDENTITY_CONTEXT) {
    options |= ZKOO_SET_IDENTITY_CONTEXT;
  }
  if (p & ZKPMO_PASS_ALL_CONTEXT) {
    options |= ZKOO_PASS_ALL_CONTEXT;
  }
  if (p & ZKPMO_PASS_IDENTITY_CONTEXT) {
    options |= ZKOO_PASS_IDENTITY_CONTEXT;
  }
  if (p & ZKPMO_ALTERNATE_USER_AUTHORITY) {
    options |= ZKOO_ALTERNATE_USER_AUTHORITY;
  }
  OpenHandle h;
  h.options = options;
  ZKLONG cc = ZKCC_OK;
  ZKLONG rc = 0;
  bool ok = false;
  if (od->ObjectType == ZKOT_Q) {
    ok = od->Version >= ZKOD_VERSION_2 && od->RecsPresent > 0
             ? openDistList(*c, od, options, h, cc, rc)
             : openQueue(*c, od, options, h, cc, rc);
    if (ok && h.createdDynamic) {
      // A model queue cannot be the target of ZKPUT1.
      closeHandle(*c, 0, h, ZKCO_NONE);
      ok = false;
      cc = ZKCC_FAILED;
      rc = ZKRC_OBJECT_TYPE_ERROR;
    }
  } else if (od->ObjectType == ZKOT_TOPIC) {
    ok = openTopic(od, options, h, cc, rc);
  } else {
    cc = ZKCC_FAILED;
    rc = ZKRC_OBJECT_TYPE_ERROR;
  }
  if (!ok) {
    *compCode = cc;
    *reason = rc;
    return;
  }
  ZKLONG openCc = cc;
  ZKLONG openRc = rc;
  putToHandle(*c, h, md, pmo, length, buffer, cc, rc);
  closeHandle(*c, 0, h, ZKCO_NONE);
  if (openCc == ZKCC_WARNING && cc == ZKCC_OK) {
    cc = openCc;
    rc = openRc;
  }
  *compCode = cc;
  *reason = rc;
}

// ---- getting ------------------------------------------------------------------------

Message *Engine::findMessage(QueueDef &q, OpenHandle &h, PZKMD md, PZKGMO gmo, ZKLONG options,
                             ZKLONG &reason) {
  ZKLONG match = 0;
  if (gmo->Version >= ZKGMO_VERSION_2) {
    match = gmo->MatchOptions;
  } else {
    if (!allZero(md->MsgId, 24)) {
      match |= ZKMO_MATCH_MSG_ID;
    }
    if (!allZero(md->CorrelId, 24)) {
      match |= ZKMO_MATCH_CORREL_ID;
    }
  }
  auto matches = [&](const Message &m) {
    if ((match & ZKMO_MATCH_MSG_ID) && !allZero(md->MsgId, 24) &&
        std::memcmp(m.md.MsgId, md->MsgId, 24) != 0) {
      return false;
    }
    if ((match & ZKMO_MATCH_CORREL_ID) && !allZero(md->CorrelId, 24) &&
        std::memcmp(m.md.CorrelId, md->CorrelId, 24) != 0) {
      return false;
    }
    if (md->Version >= ZKMD_VERSION_2) {
      if ((match & ZKMO_MATCH_GROUP_ID) && !allZero(md->GroupId, 24) &&
          std::memcmp(m.md.GroupId, md->GroupId, 24) != 0) {
        return false;
      }
      if ((match & ZKMO_MATCH_MSG_SEQ_NUMBER) && m.md.MsgSeqNumber != md->MsgSeqNumber) {
        return false;
      }
      if ((match & ZKMO_MATCH_OFFSET) && m.md.Offset != md->Offset) {
        return false;
      }
    }
    if ((match & ZKMO_MATCH_MSG_TOKEN) && gmo->Version >= ZKGMO_VERSION_3) {
      uint64_t token = 0;
      std::memcpy(&token, gmo->MsgToken, sizeof token);
      if (token != m.uid) {
        return false;
      }
    }
    return true;
  };
  if (options & (ZKGMO_MSG_UNDER_CURSOR | ZKGMO_BROWSE_MSG_UNDER_CURSOR)) {
    if (h.cursorSet) {
      for (Message &m : q.messages) {
        if (m.uid == h.cursorUid && visible(m)) {
          return &m;
        }
      }
    }
    reason = ZKRC_NO_MSG_UNDER_CURSOR;
    return nullptr;
  }
  bool next = (options & ZKGMO_BROWSE_NEXT) != 0 && h.cursorSet;
  for (Message &m : q.messages) {
    if (!visible(m) || !matches(m)) {
      continue;
    }
    if (next) {
      bool after = q.deliverySequence == ZKMDS_PRIORITY
                       ? (m.md.Priority < h.cursorPriority ||
                          (m.md.Priority == h.cursorPriority && m.uid > h.cursorUid))
                       : m.uid > h.cursorUid;
      if (!after) {
        continue;
      }
    }
    return &m;
  }
  return nullptr;
}

void Engine::returnMessage(EngineConn &c, OpenHandle &h, QueueDef &q, Message &msg, PZKMD md,
                           PZKGMO gmo, ZKLONG bufferLength, void *buffer, PZKLONG dataLength,
                           ZKLONG &compCode, ZKLONG &reason, bool &removed) {
  ZKLONG options = gmo->Options;
  bool browse = (options & kBrowseOptions) != 0;
  ZKMD out = msg.md;
  std::vector<unsigned char> data = msg.data;
  if (md->Version == ZKMD_VERSION_1 && hasVersion2Fields(out)) {
    // The application cannot receive the version-2 fields in its
    // descriptor: they come in an extension in front of the data.
    ZKMDE mde = ZKMDE_DEFAULT;
    mde.Encoding = out.Encoding;
    mde.CodedCharSetId = out.CodedCharSetId;
    std::memcpy(mde.Format, out.Format, 8);
    std::memcpy(mde.GroupId, out.GroupId, 24);
    mde.MsgSeqNumber = out.MsgSeqNumber;
    mde.Offset = out.Offset;
    mde.MsgFlags = out.MsgFlags;
    mde.OriginalLength = out.OriginalLength;
    data.insert(data.begin(), reinterpret_cast<unsigned char *>(&mde),
                reinterpret_cast<unsigned char *>(&mde) + sizeof mde);
    std::memcpy(out.Format, ZKFMT_MD_EXTENSION, 8);
    out.Encoding = ZKENC_NATIVE;
    out.CodedCharSetId = store_.qmgr.ccsid;
  }
  ZKLONG version = md->Version;
  std::memcpy(md, &out, version >= ZKMD_VERSION_2 ? ZKMD_LENGTH_2 : ZKMD_LENGTH_1);
  md->Version = version;
  ZKLONG total = static_cast<ZKLONG>(data.size());
  ZKLONG n = std::min(total, bufferLength);
  if (n > 0) {
    std::memcpy(buffer, data.data(), static_cast<std::size_t>(n));
  }
  *dataLength = total;
  bool truncated = total > bufferLength;
  removed = false;
  if (truncated && !(options & ZKGMO_ACCEPT_TRUNCATED_MSG)) {
    compCode = ZKCC_WARNING;
    reason = ZKRC_TRUNCATED_MSG_FAILED;
  } else {
    compCode = truncated ? ZKCC_WARNING : ZKCC_OK;
    reason = truncated ? ZKRC_TRUNCATED_MSG_ACCEPTED : 0;
    if (!browse) {
      bool syncpoint =
          (options & ZKGMO_SYNCPOINT) != 0 || ((options & ZKGMO_SYNCPOINT_IF_PERSISTENT) != 0 &&
                                               msg.md.Persistence == ZKPER_PERSISTENT);
      if (h.options & ZKOO_SAVE_ALL_CONTEXT) {
        h.savedContext = msg.md;
        h.savedContextValid = true;
      }
      if (syncpoint) {
        msg.getUow = uowToken(c);
      } else {
        uint64_t uid = msg.uid;
        q.messages.erase(std::find_if(q.messages.begin(), q.messages.end(),
                                      [&](const Message &m) { return m.uid == uid; }));
        ++q.dequeued;
      }
      removed = true;
    }
  }
  if (browse) {
    h.cursorSet = true;
    h.cursorUid = msg.uid;
    h.cursorPriority = msg.md.Priority;
  }
  setFixed(gmo->ResolvedQName, ZK_Q_NAME_LENGTH, q.name);
  if (gmo->Version >= ZKGMO_VERSION_2) {
    gmo->GroupStatus = (out.MsgFlags & ZKMF_LAST_MSG_IN_GROUP) ? 'L'
                       : (out.MsgFlags & ZKMF_MSG_IN_GROUP)    ? 'G'
                                                               : ' ';
    gmo->SegmentStatus = (out.MsgFlags & ZKMF_LAST_SEGMENT) ? 'L'
                         : (out.MsgFlags & ZKMF_SEGMENT)    ? 'S'
                                                            : ' ';
    gmo->Segmentation = (out.MsgFlags & ZKMF_SEGMENTATION_ALLOWED) ? 'A' : ' ';
  }
  if (gmo->Version >= ZKGMO_VERSION_3) {
    std::memset(gmo->MsgToken, 0, sizeof gmo->MsgToken);
    gmo->ReturnedLength = std::max<ZKLONG>(0, n);
  }
}

void Engine::get(ZKHCONN hconn, ZKHOBJ hobj, PZKMD md, PZKGMO gmo, ZKLONG bufferLength,
                 void *buffer, PZKLONG dataLength, PZKLONG compCode, PZKLONG reason,
                 const std::function<void()> &conversionPoint) {
  std::unique_lock<std::mutex> lock(mutex_);
  auto fail = [&](ZKLONG why) { *reason = why; };
  EngineConn *c = nullptr;
  OpenHandle *h = callHandle(hconn, hobj, compCode, reason, &c);
  if (h == nullptr) {
    return;
  }
  if (md == nullptr || !hasStrucId(md, ZKMD_STRUC_ID) || md->Version < ZKMD_VERSION_1 ||
      md->Version > ZKMD_VERSION_2) {
    return fail(ZKRC_MD_ERROR);
  }
  if (gmo == nullptr || !hasStrucId(gmo, ZKGMO_STRUC_ID) || gmo->Version < ZKGMO_VERSION_1 ||
      gmo->Version > ZKGMO_VERSION_4) {
    return fail(ZKRC_GMO_ERROR);
  }
  if (bufferLength < 0) {
    return fail(ZKRC_BUFFER_LENGTH_ERROR);
  }
  if (bufferLength > 0 && buffer == nullptr) {
    return fail(ZKRC_BUFFER_ERROR);
  }
  if (dataLength == nullptr) {
    return fail(ZKRC_DATA_LENGTH_ERROR);
  }
  ZKLONG options = gmo->Options;
  bool browse = (options & kBrowseOptions) != 0;
  if (bitCount(options & (kBrowseOptions | ZKGMO_MSG_UNDER_CURSOR)) > 1 ||
      ((options & ZKGMO_SYNCPOINT) && (options & ZKGMO_NO_SYNCPOINT)) ||
      (browse && (options & ZKGMO_SYNCPOINT))) {
    return fail(ZKRC_OPTIONS_ERROR);
  }
  if (gmo->Version >= ZKGMO_VERSION_2 && (gmo->MatchOptions & ~0x3F) != 0) {
    return fail(ZKRC_MATCH_OPTIONS_ERROR);
  }
  if ((options & ZKGMO_WAIT) && gmo->WaitInterval < ZKWI_UNLIMITED) {
    return fail(ZKRC_WAIT_INTERVAL_ERROR);
  }
  if (h->kind != OpenHandle::Kind::Queue || h->remote) {
    return fail(ZKRC_NOT_OPEN_FOR_INPUT);
  }
  if (browse && !(h->options & ZKOO_BROWSE)) {
    return fail(ZKRC_NOT_OPEN_FOR_BROWSE);
  }
  if (!browse && !(h->options & kInputOptions)) {
    return fail(ZKRC_NOT_OPEN_FOR_INPUT);
  }
  ZKLONG requestedCcsid = md->CodedCharSetId;
  ZKLONG requestedEncoding = md->Encoding;
  std::string queueName = h->localQueue;
  std::string aliasName = h->aliasName;
  auto deadline = std::chrono::steady_clock::now() +
                  std::chrono::milliseconds(std::max<ZKLONG>(0, gmo->WaitInterval));
  bool forever = (options & ZKGMO_WAIT) && gmo->WaitInterval == ZKWI_UNLIMITED;
  Message *msg = nullptr;
  QueueDef *q = nullptr;
  while (true) {
    c = connOf(hconn);
    h = c != nullptr ? handleOf(*c, hobj) : nullptr;
    if (c == nullptr || h == nullptr) {
      return fail(ZKRC_CONNECTION_BROKEN);
    }
    q = store_.queue(queueName);
    if (q == nullptr) {
      return fail(ZKRC_Q_DELETED);
    }
    QueueDef *alias = aliasName.empty() ? nullptr : store_.queue(aliasName);
    if (q->getInhibited || (alias != nullptr && alias->getInhibited)) {
      return fail(ZKRC_GET_INHIBITED);
    }
    ZKLONG why = 0;
    msg = findMessage(*q, *h, md, gmo, options, why);
    if (why != 0) {
      return fail(why);
    }
    if (msg != nullptr) {
      break;
    }
    if (!(options & ZKGMO_WAIT)) {
      return fail(ZKRC_NO_MSG_AVAILABLE);
    }
    if (forever) {
      arrived_.wait(lock);
    } else if (arrived_.wait_until(lock, deadline) == std::cv_status::timeout) {
      // One last look after the interval.
      q = store_.queue(queueName);
      ZKLONG last = 0;
      msg = q != nullptr ? findMessage(*q, *h, md, gmo, options, last) : nullptr;
      if (msg == nullptr) {
        return fail(ZKRC_NO_MSG_AVAILABLE);
      }
      break;
    }
  }
  ZKLONG cc = ZKCC_OK;
  ZKLONG rc = 0;
  bool removed = false;
  uint64_t uid = msg->uid;
  returnMessage(*c, *h, *q, *msg, md, gmo, bufferLength, buffer, dataLength, cc, rc, removed);
  if (gmo->Version >= ZKGMO_VERSION_3) {
    std::memcpy(gmo->MsgToken, &uid, sizeof uid);
  }
  *compCode = cc;
  *reason = rc;
  ZKLONG qmgrCcsid = store_.qmgr.ccsid;
  lock.unlock();

  if (!(options & ZKGMO_CONVERT) || cc == ZKCC_FAILED) {
    return;
  }
  // The data-conversion exit point: the data is in the buffer as it was put.
  conversionPoint();
  ZKLONG target = requestedCcsid <= 0 ? qmgrCcsid : requestedCcsid;
  ZKLONG source = md->CodedCharSetId <= 0 ? qmgrCcsid : md->CodedCharSetId;
  bool sameEncoding =
      (requestedEncoding & ZKENC_INTEGER_MASK) == (md->Encoding & ZKENC_INTEGER_MASK);
  if (target == source && sameEncoding) {
    return;
  }
  auto warn = [&](ZKLONG why) {
    if (*compCode == ZKCC_OK) {
      *compCode = ZKCC_WARNING;
      *reason = why;
    }
  };
  if (std::memcmp(md->Format, ZKFMT_STRING, 8) != 0) {
    if (target != source) {
      warn(ZKRC_FORMAT_ERROR);
      return;
    }
    md->Encoding = requestedEncoding;
    return;
  }
  if (!knownCcsid(source)) {
    warn(ZKRC_SOURCE_CCSID_ERROR);
    return;
  }
  if (!knownCcsid(target)) {
    warn(ZKRC_TARGET_CCSID_ERROR);
    return;
  }
  ZKLONG have = std::min(*dataLength, bufferLength);
  const auto *in = static_cast<const unsigned char *>(buffer);
  std::vector<unsigned char> text(in, in + have);
  std::vector<unsigned char> converted;
  convertText(text, source, target, converted);
  if (static_cast<ZKLONG>(converted.size()) > bufferLength) {
    warn(ZKRC_CONVERTED_MSG_TOO_BIG);
    return;
  }
  if (!converted.empty()) {
    std::memcpy(buffer, converted.data(), converted.size());
  }
  *dataLength += static_cast<ZKLONG>(converted.size()) - have;
  if (gmo->Version >= ZKGMO_VERSION_3) {
    gmo->ReturnedLength = static_cast<ZKLONG>(converted.size());
  }
  md->CodedCharSetId = target;
  md->Encoding = requestedEncoding;
}

} // namespace zkqm
