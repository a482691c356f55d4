// Publish/subscribe: ZKSUB, ZKSUBRQ and the publications that a put to a
// topic makes.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "engine.h"
#include "engine_util.h"

namespace zkqm {

void Engine::removeSubscription(const std::string &name) {
  auto it = std::find_if(store_.subscriptions.begin(), store_.subscriptions.end(),
                         [&](const Subscription &s) { return s.name == name; });
  if (it == store_.subscriptions.end()) {
    return;
  }
  // A managed queue goes with its subscription once nothing has it open.
  if (it->managed) {
    QueueDef *q = store_.queue(it->destQueue);
    if (q != nullptr && q->openInput == 0 && q->openOutput == 0) {
      store_.queues.erase(it->destQueue);
    }
  }
  store_.subscriptions.erase(it);
}

ZKLONG Engine::publish(EngineConn &c, const std::string &topic, const Message &msg,
                       ZKLONG pmoOptions, int &matched) {
  matched = 0;
  if (pmoOptions & ZKPMO_RETAIN) {
    RetainedPublication &r = store_.retained[topic];
    r.md = msg.md;
    r.data = msg.data;
  }
  for (const Subscription &s : store_.subscriptions) {
    if (!topicMatches(s.topicString, topic, s.wildcardChar)) {
      continue;
    }
    if ((pmoOptions & ZKPMO_NOT_OWN_SUBS) && s.owner == c.hconn) {
      continue;
    }
    if (s.onRequest) {
      continue;
    }
    ++matched;
    Message copy = msg;
    newMsgId(copy.md.MsgId);
    std::memcpy(copy.md.CorrelId, s.correlId, sizeof copy.md.CorrelId);
    if (s.pubPriority >= 0) {
      copy.md.Priority = s.pubPriority;
    }
    if (!allZero(s.accountingToken, sizeof s.accountingToken)) {
      std::memcpy(copy.md.AccountingToken, s.accountingToken, sizeof s.accountingToken);
    }
    if (!s.applIdentityData.empty()) {
      setFixed(copy.md.ApplIdentityData, sizeof copy.md.ApplIdentityData, s.applIdentityData);
    }
    Destination d;
    std::string alias;
    std::string topicOfAlias;
    ZKLONG why = 0;
    if (!resolveOutput(s.destQueue, s.destQMgr, d, alias, topicOfAlias, why) ||
        !topicOfAlias.empty()) {
      continue; // the publication is lost for this subscriber only
    }
    putToDestination(d, copy);
  }
  return 0;
}

void Engine::deliverRetained(const Subscription &s, int &count) {
  count = 0;
  for (const auto &entry : store_.retained) {
    if (!topicMatches(s.topicString, entry.first, s.wildcardChar)) {
      continue;
    }
    Message msg;
    msg.md = entry.second.md;
    msg.data = entry.second.data;
    newMsgId(msg.md.MsgId);
    std::memcpy(msg.md.CorrelId, s.correlId, sizeof msg.md.CorrelId);
    Destination d;
    std::string alias;
    std::string topic;
    ZKLONG why = 0;
    if (resolveOutput(s.destQueue, s.destQMgr, d, alias, topic, why) && topic.empty() &&
        putToDestination(d, msg) == 0) {
      ++count;
    }
  }
}

bool Engine::fullTopic(const std::string &objectName, const std::string &string,
                       std::string &topic) {
  topic.clear();
  if (!objectName.empty()) {
    TopicDef *t = store_.topic(objectName);
    if (t == nullptr) {
      return false;
    }
    topic = t->topicString;
  }
  if (!string.empty()) {
    topic = topic.empty() ? string : topic + "/" + string;
  }
  return true;
}

void Engine::sub(ZKHCONN hconn, PZKSD sd, PZKHOBJ hobj, PZKHOBJ hsub, PZKLONG compCode,
                 PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto fail = [&](ZKLONG why) { *reason = why; };
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (sd == nullptr || !hasStrucId(sd, ZKSD_STRUC_ID) || sd->Version != ZKSD_VERSION_1) {
    return fail(ZKRC_SD_ERROR);
  }
  ZKLONG options = sd->Options;
  ZKLONG action = options & (ZKSO_CREATE | ZKSO_RESUME | ZKSO_ALTER);
  if (action == 0 || (action & ZKSO_ALTER && action != ZKSO_ALTER) ||
      ((options & ZKSO_WILDCARD_CHAR) && (options & ZKSO_WILDCARD_TOPIC))) {
    return fail(ZKRC_OPTIONS_ERROR);
  }
  std::string name = charvText(sd, sd->SubName);
  std::string objectName = fixedText(sd->ObjectName, ZK_Q_NAME_LENGTH);
  std::string string = charvText(sd, sd->ObjectString);
  std::string topic;
  if (!fullTopic(objectName, string, topic)) {
    return fail(ZKRC_UNKNOWN_OBJECT_NAME);
  }
  bool durable = (options & ZKSO_DURABLE) != 0;
  if (durable && name.empty()) {
    return fail(ZKRC_SUB_NAME_ERROR);
  }
  Subscription *existing = name.empty() ? nullptr : store_.subscription(name);
  if (action == ZKSO_CREATE && existing != nullptr) {
    return fail(ZKRC_SUB_ALREADY_EXISTS);
  }
  if ((action & ZKSO_CREATE) == 0 && existing == nullptr) {
    return fail(ZKRC_NO_SUBSCRIPTION);
  }
  if (existing != nullptr && !existing->durable && existing->owner != hconn) {
    return fail(ZKRC_SUBSCRIPTION_IN_USE);
  }
  if (existing == nullptr && topic.empty()) {
    return fail(ZKRC_TOPIC_STRING_ERROR);
  }
  bool managed = (options & ZKSO_MANAGED) != 0;
  OpenHandle *dest = nullptr;
  if (!managed && existing == nullptr) {
    dest = handleOf(*c, *hobj);
    if (dest == nullptr || dest->kind != OpenHandle::Kind::Queue ||
        !(dest->options & ZKOO_OUTPUT)) {
      return fail(ZKRC_HOBJ_ERROR);
    }
  }

  Subscription s;
  if (existing != nullptr) {
    s = *existing;
  } else {
    s.name = name;
    if (s.name.empty()) {
      char generated[48];
      std::snprintf(generated, sizeof generated, "ZKQM.NDURABLE.%016llX",
                    static_cast<unsigned long long>(nextIdValue()));
      s.name = generated;
    }
    s.topicString = topic;
    s.durable = durable;
    s.managed = managed;
    s.wildcardChar = (options & ZKSO_WILDCARD_CHAR) != 0;
    s.owner = durable ? 0 : hconn;
    s.onRequest = (options & ZKSO_PUBLICATIONS_ON_REQUEST) != 0;
    if (dest != nullptr) {
      s.destQueue = dest->remote ? dest->remoteName : dest->localQueue;
      s.destQMgr = dest->remote ? dest->remoteQMgr : "";
    }
  }
  if (existing == nullptr || action == ZKSO_ALTER) {
    s.options = options;
    s.pubPriority = sd->PubPriority;
    std::memcpy(s.accountingToken, sd->PubAccountingToken, sizeof s.accountingToken);
    s.applIdentityData = fixedText(sd->PubApplIdentityData, sizeof sd->PubApplIdentityData);
    s.userData = charvText(sd, sd->SubUserData);
    if (options & ZKSO_SET_CORREL_ID) {
      std::memcpy(s.correlId, sd->SubCorrelId, sizeof s.correlId);
    } else if (existing == nullptr) {
      newMsgId(s.correlId);
      std::memcpy(s.correlId, "ZKSB", 4);
    }
  }
  if (managed && existing == nullptr) {
    // The queue manager makes the subscription's queue and opens it for the
    // application.
    char qname[49];
    std::snprintf(qname, sizeof qname, "ZK.MANAGED.%s.%016llX", durable ? "DURABLE" : "NDURABLE",
                  static_cast<unsigned long long>(nextIdValue()));
    QueueDef q;
    q.type = ZKQT_LOCAL;
    q.name = qname;
    q.definitionType = durable ? ZKQDT_PERMANENT_DYNAMIC : ZKQDT_TEMPORARY_DYNAMIC;
    q.creationDate = objectDateNow();
    q.creationTime = objectTimeNow();
    store_.queues[q.name] = q;
    s.destQueue = q.name;
  }
  if (managed) {
    QueueDef *q = store_.queue(s.destQueue);
    if (q == nullptr) {
      return fail(ZKRC_UNKNOWN_OBJECT_NAME);
    }
    OpenHandle mh;
    mh.kind = OpenHandle::Kind::Queue;
    mh.options = ZKOO_INPUT_AS_Q_DEF | ZKOO_BROWSE | ZKOO_INQUIRE;
    mh.openedName = q->name;
    mh.localQueue = q->name;
    mh.createdDynamic = !durable;
    ++q->openInput;
    ZKHOBJ handle = c->nextHobj++;
    c->handles[handle] = mh;
    *hobj = handle;
  }
  if (existing != nullptr) {
    *existing = s;
  } else {
    store_.subscriptions.push_back(s);
  }
  OpenHandle sh;
  sh.kind = OpenHandle::Kind::Subscription;
  sh.subName = s.name;
  sh.openedName = objectName;
  sh.topicString = s.topicString;
  sh.objectType = ZKOT_TOPIC;
  ZKHOBJ handle = c->nextHobj++;
  c->handles[handle] = sh;
  *hsub = handle;
  std::memcpy(sd->SubCorrelId, s.correlId, sizeof sd->SubCorrelId);
  setCharvOutput(sd, sd->ResObjectString, s.topicString);
  if (existing == nullptr && !(options & ZKSO_NEW_PUBLICATIONS_ONLY) && !s.onRequest) {
    int count = 0;
    deliverRetained(s, count);
  }
  *compCode = ZKCC_OK;
  *reason = 0;
}

void Engine::subrq(ZKHCONN hconn, ZKHOBJ hsub, ZKLONG action, PZKSRO sro, PZKLONG compCode,
                   PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  OpenHandle *h = handleOf(*c, hsub);
  Subscription *s = h != nullptr && h->kind == OpenHandle::Kind::Subscription
                        ? store_.subscription(h->subName)
                        : nullptr;
  if (s == nullptr) {
    *reason = ZKRC_HOBJ_ERROR;
    return;
  }
  if (action != ZKSR_ACTION_PUBLICATION) {
    *reason = ZKRC_ACTION_ERROR;
    return;
  }
  if (sro != nullptr && (!hasStrucId(sro, ZKSRO_STRUC_ID) || sro->Version != ZKSRO_VERSION_1 ||
                         (sro->Options & ~ZKSRO_FAIL_IF_QUIESCING) != 0)) {
    *reason = ZKRC_SRO_ERROR;
    return;
  }
  int count = 0;
  deliverRetained(*s, count);
  if (sro != nullptr) {
    sro->NumPubs = count;
  }
  if (count == 0) {
    *compCode = ZKCC_WARNING;
    *reason = ZKRC_NO_RETAINED_MSG;
    return;
  }
  *compCode = ZKCC_OK;
  *reason = 0;
}

} // namespace zkqm
