// The queue manager as a resource manager under a transaction manager: the
// xa_* calls, with global transactions keyed by their XID.
#include <cstring>

#include "engine.h"

namespace zkqm {

ZKLONG Engine::xaOpen(const char *info, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)info;
  if ((flags & ~(TMASYNC)) != 0) {
    return XAER_INVAL;
  }
  if (flags & TMASYNC) {
    return XAER_ASYNC;
  }
  xaOpen_[rmid] = true;
  return XA_OK;
}

ZKLONG Engine::xaClose(const char *info, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)info;
  if (flags & TMASYNC) {
    return XAER_ASYNC;
  }
  for (const auto &entry : xa_) {
    if (entry.second.associated != 0) {
      return XAER_PROTO; // still in use by a connection
    }
  }
  xaOpen_.erase(rmid);
  return XA_OK;
}

ZKLONG Engine::findXa(const void *xid, bool layout64, XaMap::iterator &it) {
  if (xid == nullptr) {
    return XAER_INVAL;
  }
  it = xa_.find(xidFromMemory(xid, layout64).key());
  return it == xa_.end() ? XAER_NOTA : XA_OK;
}

void Engine::completeXa(XaMap::iterator it, bool commit) {
  if (commit) {
    commitToken(it->second.token);
  } else {
    backoutToken(it->second.token);
  }
  xa_.erase(it);
}

ZKLONG Engine::xaStart(ZKHCONN hconn, const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!xaOpen_.count(rmid)) {
    return XAER_PROTO;
  }
  if (xid == nullptr || (flags & (TMJOIN | TMRESUME)) == (TMJOIN | TMRESUME)) {
    return XAER_INVAL;
  }
  EngineConn *c = connOf(hconn);
  if (c == nullptr) {
    return XAER_RMFAIL;
  }
  if (c->xaAssociated) {
    return XAER_PROTO;
  }
  if (c->uow != 0) {
    return XAER_OUTSIDE; // the connection has local work in progress
  }
  XidValue x = xidFromMemory(xid, layout64);
  auto it = xa_.find(x.key());
  if (flags & (TMJOIN | TMRESUME)) {
    if (it == xa_.end()) {
      return XAER_NOTA;
    }
    if (it->second.state == XaTxn::State::Prepared) {
      return XAER_PROTO;
    }
  } else {
    if (it != xa_.end()) {
      return XAER_DUPID;
    }
    XaTxn t;
    t.xid = x;
    t.token = nextToken_++;
    it = xa_.emplace(x.key(), t).first;
  }
  it->second.state = XaTxn::State::Active;
  it->second.associated = hconn;
  c->uow = it->second.token;
  c->xaAssociated = true;
  return XA_OK;
}

ZKLONG Engine::xaEnd(ZKHCONN hconn, const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)rmid;
  XaMap::iterator it;
  ZKLONG found = findXa(xid, layout64, it);
  if (found != XA_OK) {
    return found;
  }
  EngineConn *c = connOf(hconn);
  if (it->second.associated != hconn || c == nullptr) {
    return XAER_PROTO;
  }
  c->uow = 0;
  c->xaAssociated = false;
  it->second.associated = 0;
  it->second.state = XaTxn::State::Idle;
  if (flags & TMFAIL) {
    it->second.rollbackOnly = true;
    return XA_RBROLLBACK;
  }
  return XA_OK;
}

ZKLONG Engine::xaPrepare(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)rmid;
  (void)flags;
  XaMap::iterator it;
  ZKLONG found = findXa(xid, layout64, it);
  if (found != XA_OK) {
    return found;
  }
  XaTxn &t = it->second;
  if (t.associated != 0 || t.state == XaTxn::State::Prepared) {
    return XAER_PROTO;
  }
  if (t.rollbackOnly) {
    completeXa(it, false);
    return XA_RBROLLBACK;
  }
  if (!tokenHasWork(t.token)) {
    xa_.erase(it); // nothing to commit: read-only, and forgotten at once
    return XA_RDONLY;
  }
  t.state = XaTxn::State::Prepared;
  return XA_OK;
}

ZKLONG Engine::xaCommit(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)rmid;
  XaMap::iterator it;
  ZKLONG found = findXa(xid, layout64, it);
  if (found != XA_OK) {
    return found;
  }
  XaTxn &t = it->second;
  if (t.associated != 0) {
    return XAER_PROTO;
  }
  bool onePhase = (flags & TMONEPHASE) != 0;
  if (onePhase == (t.state == XaTxn::State::Prepared)) {
    return XAER_PROTO; // one-phase after prepare, or two-phase without it
  }
  if (t.rollbackOnly) {
    completeXa(it, false);
    return XA_RBROLLBACK;
  }
  completeXa(it, true);
  return XA_OK;
}

ZKLONG Engine::xaRollback(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)rmid;
  (void)flags;
  XaMap::iterator it;
  ZKLONG found = findXa(xid, layout64, it);
  if (found != XA_OK) {
    return found;
  }
  if (it->second.associated != 0) {
    return XAER_PROTO;
  }
  completeXa(it, false);
  return XA_OK;
}

ZKLONG Engine::xaForget(const void *xid, bool layout64, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  (void)rmid;
  (void)flags;
  // Only heuristically completed transactions can be forgotten, and this
  // resource manager never completes one heuristically.
  XaMap::iterator it;
  ZKLONG found = findXa(xid, layout64, it);
  return found == XA_OK ? XAER_PROTO : found;
}

ZKLONG Engine::xaRecover(void *xids, bool layout64, ZKLONG count, ZKLONG rmid, ZKLONG flags) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!xaOpen_.count(rmid)) {
    return XAER_PROTO;
  }
  if (count < 0 || (count > 0 && xids == nullptr) || (flags & ~(TMSTARTRSCAN | TMENDRSCAN)) != 0) {
    return XAER_INVAL;
  }
  std::size_t size = layout64 ? ZKXID64_LENGTH : ZKXID32_LENGTH;
  ZKLONG n = 0;
  for (const auto &entry : xa_) {
    if (n >= count) {
      break;
    }
    if (entry.second.state != XaTxn::State::Prepared) {
      continue;
    }
    // An XID in the layout asked for, whatever layout it came in.
    XidValue::Parts x = entry.second.xid.parts();
    const char *data = reinterpret_cast<const char *>(x.data);
    XidValue out = makeXid(static_cast<long>(x.formatId), std::string(data, x.gtridLength),
                           std::string(data + x.gtridLength, x.bqualLength), layout64);
    std::memcpy(static_cast<char *>(xids) + n * size, out.bytes.data(), size);
    ++n;
  }
  return n;
}

void Engine::leaveTransaction(ZKHCONN hconn) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = connOf(hconn);
  for (auto &entry : xa_) {
    if (entry.second.associated == hconn) {
      entry.second.associated = 0;
      entry.second.state = XaTxn::State::Idle;
    }
  }
  if (c != nullptr && c->xaAssociated) {
    c->uow = 0;
    c->xaAssociated = false;
  }
}

ZKLONG Engine::xaComplete(PZKLONG handle, PZKLONG retval, ZKLONG rmid, ZKLONG flags) {
  (void)handle;
  (void)rmid;
  (void)flags;
  // No operation of this resource manager is asynchronous: there is
  // nothing to wait for.
  if (retval != nullptr) {
    *retval = XAER_PROTO;
  }
  return XAER_PROTO;
}

} // namespace zkqm
