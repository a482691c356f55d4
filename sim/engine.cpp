// The engine: connections, units of work, status, definitions, identifiers.
// The queue calls are in engine_queue.cpp, inquire and set in
// engine_inq.cpp, publish/subscribe in engine_pubsub.cpp, asynchronous
// consumption in engine_async.cpp and the transaction calls in
// engine_xa.cpp.
#include "engine.h"

#include <algorithm>
#include <cstring>

#include "engine_util.h"

namespace zkqm {

Engine::Engine(std::string qmgrName) : name_(std::move(qmgrName)) {
  store_.qmgr.identifier = name_ + "_ZKQM";
}

void Engine::setName(const std::string &name) {
  std::lock_guard<std::mutex> lock(mutex_);
  name_ = name;
  store_.qmgr.identifier = name_ + "_ZKQM";
}

namespace {

thread_local uint64_t tStream = 0;
thread_local uint64_t tCounter = 0;
thread_local ZKHCONN tNextHconn = 1;

} // namespace

void Engine::setProcessIndex(unsigned index) {
  std::lock_guard<std::mutex> lock(mutex_);
  idBase_ = static_cast<uint64_t>(index) << 40;
}

void Engine::setThreadStream(unsigned index) {
  tStream = index;
  tCounter = 0;
  tNextHconn = index == 0 ? 1 : static_cast<ZKHCONN>(index) * 1000 + 1;
}

uint64_t Engine::nextIdValue() {
  return idBase_ | (tStream << 32) | ++tCounter;
}

void Engine::newMsgId(ZKBYTE24 id) {
  // "ZKQ ", the first 12 characters of the queue manager name, then a
  // counter, high byte first: unique and the same from run to run.
  std::memset(id, 0, 24);
  std::memcpy(id, "ZKQ ", 4);
  std::string name = name_.substr(0, 12);
  name.resize(12, ' ');
  std::memcpy(id + 4, name.data(), 12);
  uint64_t n = nextIdValue();
  for (int i = 0; i < 8; ++i) {
    id[23 - i] = static_cast<unsigned char>(n >> (8 * i));
  }
}

EngineConn *Engine::connOf(ZKHCONN hconn) {
  auto it = conns_.find(hconn);
  return it == conns_.end() ? nullptr : &it->second;
}

OpenHandle *Engine::handleOf(EngineConn &c, ZKHOBJ hobj) {
  auto it = c.handles.find(hobj);
  return it == c.handles.end() ? nullptr : &it->second;
}

EngineConn *Engine::callConn(ZKHCONN hconn, PZKLONG compCode, PZKLONG reason) {
  *compCode = ZKCC_FAILED;
  EngineConn *c = connOf(hconn);
  if (c == nullptr) {
    *reason = ZKRC_HCONN_ERROR;
  }
  return c;
}

OpenHandle *Engine::callHandle(ZKHCONN hconn, ZKHOBJ hobj, PZKLONG compCode, PZKLONG reason,
                               EngineConn **conn) {
  EngineConn *c = callConn(hconn, compCode, reason);
  if (conn != nullptr) {
    *conn = c;
  }
  if (c == nullptr) {
    return nullptr;
  }
  OpenHandle *h = handleOf(*c, hobj);
  if (h == nullptr) {
    *reason = ZKRC_HOBJ_ERROR;
  }
  return h;
}

// ---- connect and disconnect ---------------------------------------------------------

void Engine::conn(const char *qmgrName, PZKCNO cno, const ConnIdentity &identity, PZKHCONN hconn,
                  PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto fail = [&](ZKLONG why) {
    *compCode = ZKCC_FAILED;
    *reason = why;
  };
  std::string wanted = qmgrName != nullptr ? fixedText(qmgrName, ZK_Q_MGR_NAME_LENGTH) : "";
  if (!wanted.empty() && wanted != name_) {
    return fail(ZKRC_Q_MGR_NAME_ERROR);
  }
  if (cno != nullptr) {
    if (!hasStrucId(cno, ZKCNO_STRUC_ID) || cno->Version < ZKCNO_VERSION_1 ||
        cno->Version > ZKCNO_VERSION_5) {
      return fail(ZKRC_CNO_ERROR);
    }
    ZKLONG bindings =
        cno->Options & (ZKCNO_FASTPATH_BINDING | ZKCNO_SHARED_BINDING | ZKCNO_ISOLATED_BINDING |
                        ZKCNO_LOCAL_BINDING | ZKCNO_CLIENT_BINDING);
    if ((bindings & (bindings - 1)) != 0) {
      return fail(ZKRC_OPTIONS_ERROR);
    }
    if (cno->Version >= ZKCNO_VERSION_2) {
      auto *cd = subStructure<ZKCD>(cno, cno->ClientConnPtr, cno->ClientConnOffset);
      if (cd != nullptr && (cd->Version < ZKCD_VERSION_1 || cd->Version > ZKCD_VERSION_10)) {
        return fail(ZKRC_CD_ERROR);
      }
    }
    if (cno->Version >= ZKCNO_VERSION_4) {
      auto *sco = subStructure<ZKSCO>(cno, cno->SSLConfigPtr, cno->SSLConfigOffset);
      if (sco != nullptr) {
        if (!hasStrucId(sco, ZKSCO_STRUC_ID) || sco->Version < ZKSCO_VERSION_1 ||
            sco->Version > ZKSCO_VERSION_4) {
          return fail(ZKRC_SCO_ERROR);
        }
        if (sco->AuthInfoRecCount < 0) {
          return fail(ZKRC_AUTH_INFO_REC_COUNT_ERROR);
        }
        auto *air = subStructure<unsigned char>(sco, sco->AuthInfoRecPtr, sco->AuthInfoRecOffset);
        if (sco->AuthInfoRecCount > 0 && air == nullptr) {
          return fail(ZKRC_AUTH_INFO_REC_ERROR);
        }
        for (ZKLONG i = 0; i < sco->AuthInfoRecCount; ++i) {
          auto *rec = reinterpret_cast<ZKAIR *>(air);
          if (!hasStrucId(rec, ZKAIR_STRUC_ID) || rec->Version < ZKAIR_VERSION_1 ||
              rec->Version > ZKAIR_VERSION_2) {
            return fail(ZKRC_AIR_ERROR);
          }
          if (rec->AuthInfoType != ZKAIT_CRL_LDAP && rec->AuthInfoType != ZKAIT_OCSP) {
            return fail(ZKRC_AUTH_INFO_TYPE_ERROR);
          }
          if (rec->LDAPUserNameLength < 0 ||
              (rec->LDAPUserNameLength > 0 && rec->LDAPUserNamePtr == nullptr &&
               rec->LDAPUserNameOffset == 0)) {
            return fail(ZKRC_LDAP_USER_NAME_ERROR);
          }
          air += rec->Version == ZKAIR_VERSION_1 ? ZKAIR_LENGTH_1 : ZKAIR_LENGTH_2;
        }
      }
    }
    if (cno->Version >= ZKCNO_VERSION_5) {
      auto *csp = subStructure<ZKCSP>(cno, cno->SecurityParmsPtr, cno->SecurityParmsOffset);
      if (csp != nullptr && (!hasStrucId(csp, ZKCSP_STRUC_ID) || csp->Version != 1 ||
                             (csp->AuthenticationType != ZKCSP_AUTH_NONE &&
                              csp->AuthenticationType != ZKCSP_AUTH_USER_ID_AND_PWD))) {
        return fail(ZKRC_CSP_ERROR);
      }
    }
  }
  ZKHCONN h = tNextHconn++;
  EngineConn &c = conns_[h];
  c.hconn = h;
  c.identity = identity;
  if (cno != nullptr && cno->Version >= ZKCNO_VERSION_5) {
    // The connection identifier: "ZKCN", the queue manager name, a counter.
    ZKBYTE24 id;
    newMsgId(id);
    std::memcpy(id, "ZKCN", 4);
    std::memcpy(cno->ConnectionId, id, 24);
  }
  *hconn = h;
  *compCode = ZKCC_OK;
  *reason = 0;
}

void Engine::endConnection(EngineConn &c) {
  // Uncommitted work of a normal disconnect is committed; a unit of work
  // that belongs to a transaction manager stays for it to resolve.
  if (c.uow != 0 && !c.xaAssociated) {
    commitToken(c.uow);
  }
  c.uow = 0;
  std::vector<ZKHOBJ> open;
  for (auto &entry : c.handles) {
    open.push_back(entry.first);
  }
  for (ZKHOBJ hobj : open) {
    auto it = c.handles.find(hobj);
    if (it != c.handles.end()) {
      OpenHandle h = it->second;
      closeHandle(c, hobj, h, ZKCO_NONE);
    }
  }
  // Non-durable subscriptions end with their connection.
  std::vector<std::string> gone;
  for (const Subscription &s : store_.subscriptions) {
    if (!s.durable && s.owner == c.hconn) {
      gone.push_back(s.name);
    }
  }
  for (const std::string &name : gone) {
    removeSubscription(name);
  }
}

void Engine::disc(PZKHCONN hconn, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = callConn(*hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  endConnection(*c);
  conns_.erase(*hconn);
  *hconn = ZKHC_UNUSABLE_HCONN;
  *compCode = ZKCC_OK;
  *reason = 0;
  arrived_.notify_all();
}

// ---- units of work ------------------------------------------------------------------

uint64_t Engine::uowToken(EngineConn &c) {
  if (c.uow == 0) {
    c.uow = nextToken_++;
  }
  return c.uow;
}

bool Engine::tokenHasWork(uint64_t token) {
  for (auto &entry : store_.queues) {
    for (const Message &m : entry.second.messages) {
      if (m.putUow == token || m.getUow == token) {
        return true;
      }
    }
  }
  return false;
}

void Engine::commitToken(uint64_t token) {
  for (auto &entry : store_.queues) {
    QueueDef &q = entry.second;
    bool madeAvailable = false;
    for (auto it = q.messages.begin(); it != q.messages.end();) {
      if (it->getUow == token) {
        it = q.messages.erase(it);
        ++q.dequeued;
        continue;
      }
      if (it->putUow == token) {
        it->putUow = 0;
        madeAvailable = true;
      }
      ++it;
    }
    if (madeAvailable) {
      trigger(q);
    }
  }
  arrived_.notify_all();
}

void Engine::backoutToken(uint64_t token) {
  for (auto &entry : store_.queues) {
    QueueDef &q = entry.second;
    for (auto it = q.messages.begin(); it != q.messages.end();) {
      if (it->putUow == token) {
        it = q.messages.erase(it);
        continue;
      }
      if (it->getUow == token) {
        it->getUow = 0;
        ++it->md.BackoutCount;
      }
      ++it;
    }
  }
  arrived_.notify_all();
}

void Engine::begin(ZKHCONN hconn, PZKBO bo, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (bo != nullptr && (!hasStrucId(bo, ZKBO_STRUC_ID) || bo->Version != ZKBO_VERSION_1 ||
                        bo->Options != ZKBO_NONE)) {
    *reason = ZKRC_BO_ERROR;
    return;
  }
  if (c->uow != 0 || c->xaAssociated) {
    *reason = ZKRC_UOW_IN_PROGRESS;
    return;
  }
  uowToken(*c);
  c->globalUow = true;
  // No other resource manager takes part: the unit of work is the queue
  // manager's alone, which the platform reports as a warning.
  *compCode = ZKCC_WARNING;
  *reason = ZKRC_NO_EXTERNAL_PARTICIPANTS;
}

void Engine::endLocalUow(ZKHCONN hconn, bool commit, PZKLONG compCode, PZKLONG reason) {
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (c->xaAssociated) {
    *reason = ZKRC_ENVIRONMENT_ERROR; // the transaction manager ends this work
    return;
  }
  if (c->uow != 0) {
    if (commit) {
      commitToken(c->uow);
    } else {
      backoutToken(c->uow);
    }
  }
  c->uow = 0;
  c->globalUow = false;
  *compCode = ZKCC_OK;
  *reason = 0;
}

void Engine::cmit(ZKHCONN hconn, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  endLocalUow(hconn, true, compCode, reason);
}

void Engine::back(ZKHCONN hconn, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  endLocalUow(hconn, false, compCode, reason);
}

// ---- status ----------------------------------------------------------------------

void Engine::stat(ZKHCONN hconn, ZKLONG type, PZKSTS sts, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (sts == nullptr || !hasStrucId(sts, ZKSTS_STRUC_ID) || sts->Version < ZKSTS_VERSION_1 ||
      sts->Version > ZKSTS_VERSION_2) {
    *reason = ZKRC_STS_ERROR;
    return;
  }
  if (type != ZKSTAT_TYPE_ASYNC_ERROR && type != ZKSTAT_TYPE_RECONNECTION &&
      type != ZKSTAT_TYPE_RECONNECTION_ERROR) {
    *reason = ZKRC_STAT_TYPE_ERROR;
    return;
  }
  ZKLONG version = sts->Version;
  ZKCHARV objectString = sts->ObjectString;
  ZKCHARV subName = sts->SubName;
  std::size_t length = version == ZKSTS_VERSION_1 ? ZKSTS_LENGTH_1 : ZKSTS_LENGTH_2;
  ZKSTS fresh = ZKSTS_DEFAULT;
  if (type == ZKSTAT_TYPE_ASYNC_ERROR) {
    if (c->hasFirstError) {
      fresh = c->firstError;
    }
    fresh.PutSuccessCount = c->putSuccess;
    fresh.PutWarningCount = c->putWarning;
    fresh.PutFailureCount = c->putFailure;
    c->putSuccess = c->putWarning = c->putFailure = 0;
    c->hasFirstError = false;
  }
  fresh.Version = version;
  // The version-2 strings go to the application's own buffers.
  fresh.ObjectString = objectString;
  fresh.SubName = subName;
  if (version >= ZKSTS_VERSION_2) {
    fresh.ObjectString.VSLength = 0;
    fresh.SubName.VSLength = 0;
  }
  std::memcpy(sts, &fresh, length);
  *compCode = ZKCC_OK;
  *reason = 0;
}

// ---- definitions -------------------------------------------------------------------

bool Engine::defineQueue(const QueueDef &def, bool replace, std::string &error) {
  std::lock_guard<std::mutex> lock(mutex_);
  QueueDef *existing = store_.queue(def.name);
  if (existing != nullptr) {
    if (!replace) {
      error = "object '" + def.name + "' already exists";
      return false;
    }
    if (existing->type != def.type) {
      error = "object '" + def.name + "' exists with another type";
      return false;
    }
    std::vector<Message> messages = std::move(existing->messages);
    *existing = def;
    existing->messages = std::move(messages);
    return true;
  }
  if (store_.topic(def.name) != nullptr) {
    error = "object '" + def.name + "' exists as a topic";
    return false;
  }
  QueueDef q = def;
  q.creationDate = objectDateNow();
  q.creationTime = objectTimeNow();
  store_.queues[def.name] = std::move(q);
  return true;
}

bool Engine::defineTopic(const TopicDef &def, std::string &error) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (store_.queue(def.name) != nullptr) {
    error = "object '" + def.name + "' exists as a queue";
    return false;
  }
  store_.topics[def.name] = def;
  return true;
}

bool Engine::defineSubscription(const Subscription &sub, std::string &error) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (store_.subscription(sub.name) != nullptr) {
    error = "subscription '" + sub.name + "' already exists";
    return false;
  }
  Subscription s = sub;
  if (std::all_of(std::begin(s.correlId), std::end(s.correlId),
                  [](unsigned char b) { return b == 0; })) {
    newMsgId(s.correlId);
    std::memcpy(s.correlId, "ZKSB", 4);
  }
  store_.subscriptions.push_back(s);
  return true;
}

int Engine::depth(const std::string &queue, bool &exists) {
  std::lock_guard<std::mutex> lock(mutex_);
  QueueDef *q = store_.queue(queue);
  exists = q != nullptr && q->type == ZKQT_LOCAL;
  return exists ? static_cast<int>(q->messages.size()) : 0;
}

// ---- XIDs --------------------------------------------------------------------------

XidValue::Parts XidValue::parts() const {
  Parts p;
  if (layout64) {
    ZKXID64 x;
    std::memcpy(&x, bytes.data(), sizeof x);
    p.formatId = x.formatID;
    p.gtridLength = x.gtrid_length;
    p.bqualLength = x.bqual_length;
    p.data = bytes.data() + ZKXID64_HEADER_LENGTH;
  } else {
    ZKXID32 x;
    std::memcpy(&x, bytes.data(), sizeof x);
    p.formatId = x.formatID;
    p.gtridLength = x.gtrid_length;
    p.bqualLength = x.bqual_length;
    p.data = bytes.data() + ZKXID32_HEADER_LENGTH;
  }
  return p;
}

std::string XidValue::key() const {
  Parts p = parts();
  long long n = std::clamp<long long>(p.gtridLength + p.bqualLength, 0, ZK_XID_DATA_SIZE);
  return std::to_string(p.formatId) + ":" + std::to_string(p.gtridLength) + ":" +
         std::string(reinterpret_cast<const char *>(p.data), static_cast<std::size_t>(n));
}

XidValue makeXid(long formatId, const std::string &gtrid, const std::string &bqual, bool layout64) {
  XidValue x;
  x.layout64 = layout64;
  std::string data =
      gtrid.substr(0, ZK_XID_MAX_GTRID_SIZE) + bqual.substr(0, ZK_XID_MAX_BQUAL_SIZE);
  if (layout64) {
    ZKXID64 v = ZKXID64_DEFAULT;
    v.formatID = formatId;
    v.gtrid_length = static_cast<ZKINT64>(std::min<std::size_t>(gtrid.size(), 64));
    v.bqual_length = static_cast<ZKINT64>(std::min<std::size_t>(bqual.size(), 64));
    std::memcpy(v.data, data.data(), data.size());
    x.bytes.assign(reinterpret_cast<unsigned char *>(&v),
                   reinterpret_cast<unsigned char *>(&v) + sizeof v);
  } else {
    ZKXID32 v = ZKXID32_DEFAULT;
    v.formatID = static_cast<ZKLONG>(formatId);
    v.gtrid_length = static_cast<ZKLONG>(std::min<std::size_t>(gtrid.size(), 64));
    v.bqual_length = static_cast<ZKLONG>(std::min<std::size_t>(bqual.size(), 64));
    std::memcpy(v.data, data.data(), data.size());
    x.bytes.assign(reinterpret_cast<unsigned char *>(&v),
                   reinterpret_cast<unsigned char *>(&v) + sizeof v);
  }
  return x;
}

XidValue xidFromMemory(const void *xid, bool layout64) {
  XidValue x;
  x.layout64 = layout64;
  const auto *p = static_cast<const unsigned char *>(xid);
  x.bytes.assign(p, p + (layout64 ? ZKXID64_LENGTH : ZKXID32_LENGTH));
  return x;
}

} // namespace zkqm
