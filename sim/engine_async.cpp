// Asynchronous consumption: ZKCB, ZKCTL and the calls the queue manager
// makes to the registered callback functions.
#include <algorithm>
#include <cstring>

#include "engine.h"
#include "engine_util.h"

namespace zkqm {
namespace {

constexpr ZKLONG kCbdOptions = ZKCBDO_START_CALL | ZKCBDO_STOP_CALL | ZKCBDO_REGISTER_CALL |
                               ZKCBDO_DEREGISTER_CALL | ZKCBDO_FAIL_IF_QUIESCING;

Delivery controlCall(const Consumer &consumer, ZKLONG callType, ZKPTR connectionArea) {
  Delivery d;
  d.hobj = consumer.hobj;
  d.cbd = consumer.cbd;
  d.md = consumer.md;
  d.gmo = consumer.gmo;
  d.cbc = ZKCBC_DEFAULT;
  d.cbc.Version = ZKCBC_VERSION_2;
  d.cbc.CallType = callType;
  d.cbc.Hobj = consumer.hobj;
  d.cbc.CallbackArea = consumer.cbd.CallbackArea;
  d.cbc.ConnectionArea = connectionArea;
  d.cbc.State = ZKCS_NONE;
  d.cbc.DataLength = 0;
  d.cbc.BufferLength = 0;
  d.hasMessage = false;
  return d;
}

// Queues the control call of `callType` for each consumer that asked for it
// with `option` in its callback descriptor.
void queueControlCalls(EngineConn &c, ZKLONG option, ZKLONG callType) {
  for (const Consumer &k : c.consumers) {
    if (k.cbd.Options & option) {
      c.pendingCalls.push_back(controlCall(k, callType, c.connectionArea));
    }
  }
}

} // namespace

void Engine::cb(ZKHCONN hconn, ZKLONG operation, PZKCBD cbd, ZKHOBJ hobj, PZKMD md, PZKGMO gmo,
                PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto fail = [&](ZKLONG why) { *reason = why; };
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (operation != ZKOP_REGISTER && operation != ZKOP_DEREGISTER && operation != ZKOP_SUSPEND &&
      operation != ZKOP_RESUME) {
    return fail(ZKRC_OPERATION_ERROR);
  }
  bool eventHandler = cbd != nullptr && cbd->CallbackType == ZKCBT_EVENT_HANDLER;
  ZKHOBJ key = eventHandler ? 0 : hobj;
  auto it = std::find_if(c->consumers.begin(), c->consumers.end(),
                         [&](const Consumer &k) { return k.hobj == key; });
  if (operation != ZKOP_REGISTER) {
    if (it == c->consumers.end()) {
      return fail(ZKRC_CALLBACK_NOT_REGISTERED);
    }
    if (operation == ZKOP_DEREGISTER) {
      if (it->cbd.Options & ZKCBDO_DEREGISTER_CALL) {
        c->pendingCalls.push_back(controlCall(*it, ZKCBCT_DEREGISTER_CALL, c->connectionArea));
      }
      c->consumers.erase(it);
    } else {
      it->suspended = operation == ZKOP_SUSPEND;
    }
    *compCode = ZKCC_OK;
    *reason = 0;
    return;
  }
  if (cbd == nullptr || !hasStrucId(cbd, ZKCBD_STRUC_ID) || cbd->Version != ZKCBD_VERSION_1) {
    return fail(ZKRC_CBD_ERROR);
  }
  if (cbd->CallbackType != ZKCBT_MESSAGE_CONSUMER && cbd->CallbackType != ZKCBT_EVENT_HANDLER) {
    return fail(ZKRC_CALLBACK_TYPE_ERROR);
  }
  if ((cbd->Options & ~kCbdOptions) != 0) {
    return fail(ZKRC_CBD_OPTIONS_ERROR);
  }
  if (cbd->CallbackFunction == nullptr &&
      fixedText(cbd->CallbackName, sizeof cbd->CallbackName).empty()) {
    return fail(ZKRC_CALLBACK_ROUTINE_ERROR);
  }
  if (cbd->MaxMsgLength < ZKCBD_FULL_MSG_LENGTH) {
    return fail(ZKRC_MAX_MSG_LENGTH_ERROR);
  }
  Consumer consumer;
  consumer.hobj = key;
  consumer.cbd = *cbd;
  if (!eventHandler) {
    OpenHandle *h = handleOf(*c, hobj);
    if (h == nullptr || h->kind != OpenHandle::Kind::Queue ||
        !(h->options &
          (ZKOO_INPUT_AS_Q_DEF | ZKOO_INPUT_SHARED | ZKOO_INPUT_EXCLUSIVE | ZKOO_BROWSE))) {
      return fail(ZKRC_HOBJ_ERROR);
    }
    if (md != nullptr) {
      if (!hasStrucId(md, ZKMD_STRUC_ID) || md->Version < 1 || md->Version > 2) {
        return fail(ZKRC_MD_ERROR);
      }
      std::memcpy(&consumer.md, md, md->Version == 1 ? ZKMD_LENGTH_1 : ZKMD_LENGTH_2);
    }
    if (gmo != nullptr) {
      if (!hasStrucId(gmo, ZKGMO_STRUC_ID) || gmo->Version < 1 || gmo->Version > 4) {
        return fail(ZKRC_GMO_ERROR);
      }
      std::memcpy(&consumer.gmo, gmo,
                  static_cast<std::size_t>(gmo->Version == 1   ? ZKGMO_LENGTH_1
                                           : gmo->Version == 2 ? ZKGMO_LENGTH_2
                                           : gmo->Version == 3 ? ZKGMO_LENGTH_3
                                                               : ZKGMO_LENGTH_4));
    }
  }
  if (it != c->consumers.end()) {
    *it = consumer;
  } else {
    c->consumers.push_back(consumer);
  }
  if (cbd->Options & ZKCBDO_REGISTER_CALL) {
    c->pendingCalls.push_back(controlCall(consumer, ZKCBCT_REGISTER_CALL, c->connectionArea));
  }
  *compCode = ZKCC_OK;
  *reason = 0;
}

void Engine::ctl(ZKHCONN hconn, ZKLONG operation, PZKCTLO ctlo, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto fail = [&](ZKLONG why) { *reason = why; };
  EngineConn *c = callConn(hconn, compCode, reason);
  if (c == nullptr) {
    return;
  }
  if (ctlo == nullptr || !hasStrucId(ctlo, ZKCTLO_STRUC_ID) || ctlo->Version != ZKCTLO_VERSION_1 ||
      (ctlo->Options & ~(ZKCTLO_THREAD_AFFINITY | ZKCTLO_FAIL_IF_QUIESCING)) != 0) {
    return fail(ZKRC_CTLO_ERROR);
  }
  bool consumers = std::any_of(c->consumers.begin(), c->consumers.end(),
                               [](const Consumer &k) { return k.hobj != 0; });
  switch (operation) {
  case ZKOP_START:
  case ZKOP_START_WAIT:
    if (!consumers) {
      return fail(ZKRC_NO_CALLBACKS_ACTIVE);
    }
    c->connectionArea = ctlo->ConnectionArea;
    if (c->ctl != EngineConn::Ctl::Started) {
      queueControlCalls(*c, ZKCBDO_START_CALL, ZKCBCT_START_CALL);
    }
    c->ctl = EngineConn::Ctl::Started;
    break;
  case ZKOP_STOP:
    if (c->ctl != EngineConn::Ctl::Stopped) {
      queueControlCalls(*c, ZKCBDO_STOP_CALL, ZKCBCT_STOP_CALL);
    }
    c->ctl = EngineConn::Ctl::Stopped;
    break;
  case ZKOP_SUSPEND:
    if (c->ctl == EngineConn::Ctl::Started) {
      c->ctl = EngineConn::Ctl::Suspended;
    }
    break;
  case ZKOP_RESUME:
    if (c->ctl == EngineConn::Ctl::Suspended) {
      c->ctl = EngineConn::Ctl::Started;
    }
    break;
  default:
    return fail(ZKRC_OPERATION_ERROR);
  }
  *compCode = ZKCC_OK;
  *reason = 0;
}

bool Engine::isStarted(ZKHCONN hconn) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = connOf(hconn);
  return c != nullptr && c->ctl == EngineConn::Ctl::Started;
}

bool Engine::raiseEvent(ZKHCONN hconn, ZKLONG compCode, ZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = connOf(hconn);
  if (c == nullptr) {
    return false;
  }
  auto it = std::find_if(c->consumers.begin(), c->consumers.end(), [](const Consumer &k) {
    return k.hobj == 0 && k.cbd.CallbackType == ZKCBT_EVENT_HANDLER;
  });
  if (it == c->consumers.end()) {
    return false;
  }
  Delivery d = controlCall(*it, ZKCBCT_EVENT_CALL, c->connectionArea);
  d.cbc.CompCode = compCode;
  d.cbc.Reason = reason;
  d.event = true;
  c->pendingCalls.push_back(d);
  return true;
}

bool Engine::nextDelivery(ZKHCONN hconn, Delivery &d) {
  std::lock_guard<std::mutex> lock(mutex_);
  EngineConn *c = connOf(hconn);
  if (c == nullptr) {
    return false;
  }
  if (!c->pendingCalls.empty()) {
    d = c->pendingCalls.front();
    c->pendingCalls.pop_front();
    return true;
  }
  if (c->ctl != EngineConn::Ctl::Started) {
    return false;
  }
  for (std::size_t i = 0; i < c->consumers.size(); ++i) {
    Consumer &k = c->consumers[i];
    if (k.hobj == 0 || k.suspended) {
      continue;
    }
    OpenHandle *h = handleOf(*c, k.hobj);
    QueueDef *q = h != nullptr ? store_.queue(h->localQueue) : nullptr;
    if (q == nullptr || q->getInhibited) {
      continue;
    }
    ZKMD md = k.md;
    ZKGMO gmo = k.gmo;
    ZKLONG options = gmo.Options & ~(ZKGMO_WAIT | ZKGMO_SET_SIGNAL);
    if ((options & ZKGMO_BROWSE_FIRST) && h->cursorSet) {
      options = (options & ~ZKGMO_BROWSE_FIRST) | ZKGMO_BROWSE_NEXT;
    }
    gmo.Options = options;
    ZKLONG why = 0;
    Message *m = findMessage(*q, *h, &md, &gmo, options, why);
    if (m == nullptr) {
      continue;
    }
    ZKLONG size = static_cast<ZKLONG>(m->data.size()) + (md.Version == 1 ? ZKMDE_LENGTH_2 : 0);
    ZKLONG bufferLength =
        k.cbd.MaxMsgLength == ZKCBD_FULL_MSG_LENGTH ? size : std::min(size, k.cbd.MaxMsgLength);
    d = Delivery();
    d.consumer = i;
    d.hobj = k.hobj;
    d.cbd = k.cbd;
    d.buffer.assign(static_cast<std::size_t>(std::max<ZKLONG>(bufferLength, 0)), 0);
    ZKLONG dataLength = 0;
    ZKLONG cc = ZKCC_OK;
    ZKLONG rc = 0;
    bool removed = false;
    returnMessage(*c, *h, *q, *m, &md, &gmo, bufferLength, d.buffer.data(), &dataLength, cc, rc,
                  removed);
    d.md = md;
    d.gmo = gmo;
    d.hasMessage = true;
    d.cbc = ZKCBC_DEFAULT;
    d.cbc.Version = ZKCBC_VERSION_2;
    d.cbc.CallType = removed ? ZKCBCT_MSG_REMOVED : ZKCBCT_MSG_NOT_REMOVED;
    d.cbc.Hobj = k.hobj;
    d.cbc.CallbackArea = k.cbd.CallbackArea;
    d.cbc.ConnectionArea = c->connectionArea;
    d.cbc.CompCode = cc;
    d.cbc.Reason = rc;
    d.cbc.State = ZKCS_NONE;
    d.cbc.DataLength = dataLength;
    d.cbc.BufferLength = bufferLength;
    d.cbc.Flags = 0;
    if (rc == ZKRC_TRUNCATED_MSG_FAILED) {
      // The consumer cannot take the message: it is suspended rather than
      // offered the same message again and again.
      k.suspended = true;
      d.cbc.State = ZKCS_SUSPENDED;
    }
    return true;
  }
  return false;
}

} // namespace zkqm
