// ZKINQ and ZKSET on queues, topics and the queue manager.
#include <cstring>

#include "engine.h"
#include "engine_util.h"

namespace zkqm {
namespace {

struct CharSelector {
  ZKLONG selector;
  ZKLONG length;
};

const CharSelector kCharSelectors[] = {
    {ZKCA_BASE_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_COMMAND_INPUT_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_CREATION_DATE, ZK_CREATION_DATE_LENGTH},
    {ZKCA_CREATION_TIME, ZK_CREATION_TIME_LENGTH},
    {ZKCA_DEAD_LETTER_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_INITIATION_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_PROCESS_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_Q_DESC, ZK_Q_DESC_LENGTH},
    {ZKCA_Q_MGR_DESC, ZK_Q_MGR_DESC_LENGTH},
    {ZKCA_Q_MGR_NAME, ZK_Q_MGR_NAME_LENGTH},
    {ZKCA_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_REMOTE_Q_MGR_NAME, ZK_Q_MGR_NAME_LENGTH},
    {ZKCA_REMOTE_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_BACKOUT_REQ_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_TRIGGER_DATA, ZK_TRIGGER_DATA_LENGTH},
    {ZKCA_XMIT_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_DEF_XMIT_Q_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_ALTERATION_DATE, ZK_CREATION_DATE_LENGTH},
    {ZKCA_ALTERATION_TIME, ZK_CREATION_TIME_LENGTH},
    {ZKCA_Q_MGR_IDENTIFIER, ZK_Q_MGR_NAME_LENGTH},
    {ZKCA_TOPIC_NAME, ZK_Q_NAME_LENGTH},
    {ZKCA_TOPIC_STRING, ZK_TOPIC_STR_LENGTH},
};

const ZKLONG kIntSelectors[] = {
    ZKIA_CODED_CHAR_SET_ID,
    ZKIA_CURRENT_Q_DEPTH,
    ZKIA_DEF_INPUT_OPEN_OPTION,
    ZKIA_DEF_PERSISTENCE,
    ZKIA_DEF_PRIORITY,
    ZKIA_DEFINITION_TYPE,
    ZKIA_HARDEN_GET_BACKOUT,
    ZKIA_INHIBIT_GET,
    ZKIA_INHIBIT_PUT,
    ZKIA_MAX_HANDLES,
    ZKIA_USAGE,
    ZKIA_MAX_MSG_LENGTH,
    ZKIA_MAX_PRIORITY,
    ZKIA_MAX_Q_DEPTH,
    ZKIA_MSG_DELIVERY_SEQUENCE,
    ZKIA_OPEN_INPUT_COUNT,
    ZKIA_OPEN_OUTPUT_COUNT,
    ZKIA_Q_TYPE,
    ZKIA_RETENTION_INTERVAL,
    ZKIA_BACKOUT_THRESHOLD,
    ZKIA_SHAREABILITY,
    ZKIA_TRIGGER_CONTROL,
    ZKIA_TRIGGER_INTERVAL,
    ZKIA_TRIGGER_MSG_PRIORITY,
    ZKIA_TRIGGER_TYPE,
    ZKIA_TRIGGER_DEPTH,
    ZKIA_SYNCPOINT,
    ZKIA_COMMAND_LEVEL,
    ZKIA_PLATFORM,
    ZKIA_MAX_UNCOMMITTED_MSGS,
    ZKIA_DIST_LISTS,
    ZKIA_HIGH_Q_DEPTH,
    ZKIA_MSG_ENQ_COUNT,
    ZKIA_MSG_DEQ_COUNT,
};

bool isIntSelector(ZKLONG s) {
  for (ZKLONG k : kIntSelectors) {
    if (k == s) {
      return true;
    }
  }
  return false;
}

const CharSelector *charSelector(ZKLONG s) {
  for (const CharSelector &c : kCharSelectors) {
    if (c.selector == s) {
      return &c;
    }
  }
  return nullptr;
}

// The object an inquiry or a set describes: the queue definition as opened
// (the alias or remote definition itself), the queue manager or a topic.
struct Target {
  QueueDef *queue = nullptr;
  const QMgrAttributes *qmgr = nullptr;
  std::string qmgrName;
  std::string topicName;
  std::string topicString;
  bool isTopic = false;
};

bool intValue(const Target &t, ZKLONG s, ZKLONG &v) {
  if (t.qmgr != nullptr) {
    switch (s) {
    case ZKIA_CODED_CHAR_SET_ID:
      v = t.qmgr->ccsid;
      return true;
    case ZKIA_COMMAND_LEVEL:
      v = t.qmgr->commandLevel;
      return true;
    case ZKIA_PLATFORM:
      v = ZKPL_UNIX;
      return true;
    case ZKIA_MAX_MSG_LENGTH:
      v = t.qmgr->maxMsgLength;
      return true;
    case ZKIA_MAX_PRIORITY:
      v = t.qmgr->maxPriority;
      return true;
    case ZKIA_MAX_HANDLES:
      v = t.qmgr->maxHandles;
      return true;
    case ZKIA_SYNCPOINT:
      v = ZKSP_AVAILABLE;
      return true;
    case ZKIA_MAX_UNCOMMITTED_MSGS:
      v = t.qmgr->maxUncommitted;
      return true;
    case ZKIA_DIST_LISTS:
      v = ZKDL_SUPPORTED;
      return true;
    case ZKIA_TRIGGER_INTERVAL:
      v = 999999999;
      return true;
    default:
      return false;
    }
  }
  if (t.queue == nullptr) {
    return false;
  }
  const QueueDef &q = *t.queue;
  bool local = q.type == ZKQT_LOCAL;
  switch (s) {
  case ZKIA_Q_TYPE:
    v = q.type;
    return true;
  case ZKIA_INHIBIT_PUT:
    v = q.putInhibited ? ZKQA_PUT_INHIBITED : ZKQA_PUT_ALLOWED;
    return true;
  case ZKIA_INHIBIT_GET:
    v = q.getInhibited ? ZKQA_GET_INHIBITED : ZKQA_GET_ALLOWED;
    return q.type != ZKQT_REMOTE;
  case ZKIA_DEF_PRIORITY:
    v = q.defPriority;
    return true;
  case ZKIA_DEF_PERSISTENCE:
    v = q.defPersistence;
    return true;
  default:
    break;
  }
  if (!local) {
    return false;
  }
  switch (s) {
  case ZKIA_CURRENT_Q_DEPTH:
    v = static_cast<ZKLONG>(q.messages.size());
    return true;
  case ZKIA_MAX_Q_DEPTH:
    v = q.maxDepth;
    return true;
  case ZKIA_MAX_MSG_LENGTH:
    v = q.maxMsgLength;
    return true;
  case ZKIA_OPEN_INPUT_COUNT:
    v = q.openInput;
    return true;
  case ZKIA_OPEN_OUTPUT_COUNT:
    v = q.openOutput;
    return true;
  case ZKIA_SHAREABILITY:
    v = q.shareable ? ZKQA_SHAREABLE : ZKQA_NOT_SHAREABLE;
    return true;
  case ZKIA_DEF_INPUT_OPEN_OPTION:
    v = q.defInputOpenOption;
    return true;
  case ZKIA_USAGE:
    v = q.usage;
    return true;
  case ZKIA_DEFINITION_TYPE:
    v = q.definitionType;
    return true;
  case ZKIA_MSG_DELIVERY_SEQUENCE:
    v = q.deliverySequence;
    return true;
  case ZKIA_BACKOUT_THRESHOLD:
    v = q.backoutThreshold;
    return true;
  case ZKIA_HARDEN_GET_BACKOUT:
    v = ZKQA_BACKOUT_NOT_HARDENED;
    return true;
  case ZKIA_TRIGGER_CONTROL:
    v = q.triggerControl;
    return true;
  case ZKIA_TRIGGER_TYPE:
    v = q.triggerType;
    return true;
  case ZKIA_TRIGGER_DEPTH:
    v = q.triggerDepth;
    return true;
  case ZKIA_TRIGGER_MSG_PRIORITY:
    v = q.triggerMsgPriority;
    return true;
  case ZKIA_RETENTION_INTERVAL:
    v = 999999999;
    return true;
  case ZKIA_HIGH_Q_DEPTH:
    v = q.highDepth;
    return true;
  case ZKIA_MSG_ENQ_COUNT:
    v = q.enqueued;
    return true;
  case ZKIA_MSG_DEQ_COUNT:
    v = q.dequeued;
    return true;
  default:
    return false;
  }
}

bool charValue(const Target &t, ZKLONG s, std::string &v) {
  if (t.qmgr != nullptr) {
    switch (s) {
    case ZKCA_Q_MGR_NAME:
      v = t.qmgrName;
      return true;
    case ZKCA_Q_MGR_DESC:
      v = t.qmgr->description;
      return true;
    case ZKCA_DEAD_LETTER_Q_NAME:
      v = t.qmgr->deadLetterQueue;
      return true;
    case ZKCA_COMMAND_INPUT_Q_NAME:
      v = t.qmgr->commandQueue;
      return true;
    case ZKCA_DEF_XMIT_Q_NAME:
      v = t.qmgr->defaultXmitQueue;
      return true;
    case ZKCA_Q_MGR_IDENTIFIER:
      v = t.qmgr->identifier;
      return true;
    default:
      return false;
    }
  }
  if (t.isTopic) {
    if (s == ZKCA_TOPIC_NAME) {
      v = t.topicName;
      return true;
    }
    if (s == ZKCA_TOPIC_STRING) {
      v = t.topicString;
      return true;
    }
    return false;
  }
  if (t.queue == nullptr) {
    return false;
  }
  const QueueDef &q = *t.queue;
  switch (s) {
  case ZKCA_Q_NAME:
    v = q.name;
    return true;
  case ZKCA_Q_DESC:
    v = q.description;
    return true;
  case ZKCA_CREATION_DATE:
  case ZKCA_ALTERATION_DATE:
    v = q.creationDate;
    return true;
  case ZKCA_CREATION_TIME:
  case ZKCA_ALTERATION_TIME:
    v = q.creationTime;
    return true;
  default:
    break;
  }
  if (q.type == ZKQT_ALIAS) {
    if (s == ZKCA_BASE_Q_NAME) {
      v = q.target;
      return true;
    }
    return false;
  }
  if (q.type == ZKQT_REMOTE) {
    switch (s) {
    case ZKCA_REMOTE_Q_NAME:
      v = q.remoteName;
      return true;
    case ZKCA_REMOTE_Q_MGR_NAME:
      v = q.remoteQMgr;
      return true;
    case ZKCA_XMIT_Q_NAME:
      v = q.xmitQueue;
      return true;
    default:
      return false;
    }
  }
  switch (s) {
  case ZKCA_BACKOUT_REQ_Q_NAME:
    v = q.backoutQueue;
    return true;
  case ZKCA_INITIATION_Q_NAME:
    v = q.initiationQueue;
    return true;
  case ZKCA_PROCESS_NAME:
    v = q.processName;
    return true;
  case ZKCA_TRIGGER_DATA:
    v = q.triggerData;
    return true;
  default:
    return false;
  }
}

} // namespace

ZKLONG charAttrLength(ZKLONG selector) {
  const CharSelector *cs = charSelector(selector);
  return cs != nullptr ? cs->length : 0;
}

void Engine::inq(ZKHCONN hconn, ZKHOBJ hobj, ZKLONG selectorCount, const ZKLONG *selectors,
                 ZKLONG intAttrCount, PZKLONG intAttrs, ZKLONG charAttrLength, char *charAttrs,
                 PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  OpenHandle *h = callHandle(hconn, hobj, compCode, reason);
  if (h == nullptr) {
    return;
  }
  if (!(h->options & ZKOO_INQUIRE)) {
    *reason = ZKRC_NOT_OPEN_FOR_INQUIRE;
    return;
  }
  if (selectorCount < 0 || selectorCount > ZK_MAX_SELECTOR_COUNT) {
    *reason = ZKRC_SELECTOR_COUNT_ERROR;
    return;
  }
  if (selectorCount > 0 && selectors == nullptr) {
    *reason = ZKRC_SELECTOR_ERROR;
    return;
  }
  if (intAttrCount < 0) {
    *reason = ZKRC_INT_ATTR_COUNT_ERROR;
    return;
  }
  if (intAttrCount > 0 && intAttrs == nullptr) {
    *reason = ZKRC_INT_ATTRS_ARRAY_ERROR;
    return;
  }
  if (charAttrLength < 0) {
    *reason = ZKRC_CHAR_ATTR_LENGTH_ERROR;
    return;
  }
  if (charAttrLength > 0 && charAttrs == nullptr) {
    *reason = ZKRC_CHAR_ATTRS_ERROR;
    return;
  }
  for (ZKLONG i = 0; i < selectorCount; ++i) {
    if (!isIntSelector(selectors[i]) && charSelector(selectors[i]) == nullptr) {
      *reason = ZKRC_SELECTOR_ERROR;
      return;
    }
  }
  Target t;
  if (h->kind == OpenHandle::Kind::QMgr) {
    t.qmgr = &store_.qmgr;
    t.qmgrName = name_;
  } else if (h->kind == OpenHandle::Kind::Topic) {
    t.isTopic = true;
    t.topicName = h->openedName;
    t.topicString = h->topicString;
  } else if (h->kind == OpenHandle::Kind::Queue) {
    t.queue = store_.queue(h->openedName);
    if (t.queue == nullptr) {
      *reason = ZKRC_Q_DELETED;
      return;
    }
  }
  std::vector<ZKLONG> ints;
  std::string chars;
  bool notForType = false;
  for (ZKLONG i = 0; i < selectorCount; ++i) {
    ZKLONG s = selectors[i];
    if (isIntSelector(s)) {
      ZKLONG v = ZKIAV_NOT_APPLICABLE;
      if (!intValue(t, s, v)) {
        v = ZKIAV_NOT_APPLICABLE;
        notForType = true;
      }
      ints.push_back(v);
    } else {
      const CharSelector *cs = charSelector(s);
      std::string v;
      if (!charValue(t, s, v)) {
        v.clear();
        notForType = true;
      }
      v.resize(static_cast<std::size_t>(cs->length), ' ');
      chars += v.substr(0, static_cast<std::size_t>(cs->length));
    }
  }
  for (std::size_t i = 0; i < ints.size() && static_cast<ZKLONG>(i) < intAttrCount; ++i) {
    intAttrs[i] = ints[i];
  }
  std::size_t n = std::min<std::size_t>(chars.size(), static_cast<std::size_t>(charAttrLength));
  if (n > 0) {
    std::memcpy(charAttrs, chars.data(), n);
  }
  *compCode = ZKCC_OK;
  *reason = 0;
  if (notForType) {
    *compCode = ZKCC_WARNING;
    *reason = ZKRC_SELECTOR_NOT_FOR_TYPE;
  } else if (static_cast<ZKLONG>(ints.size()) > intAttrCount) {
    *compCode = ZKCC_WARNING;
    *reason = ZKRC_INT_ATTR_COUNT_TOO_SMALL;
  } else if (static_cast<ZKLONG>(chars.size()) > charAttrLength) {
    *compCode = ZKCC_WARNING;
    *reason = ZKRC_CHAR_ATTRS_TOO_SHORT;
  }
}

void Engine::set(ZKHCONN hconn, ZKHOBJ hobj, ZKLONG selectorCount, const ZKLONG *selectors,
                 ZKLONG intAttrCount, const ZKLONG *intAttrs, ZKLONG charAttrLength,
                 const char *charAttrs, PZKLONG compCode, PZKLONG reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto fail = [&](ZKLONG why) { *reason = why; };
  OpenHandle *h = callHandle(hconn, hobj, compCode, reason);
  if (h == nullptr) {
    return;
  }
  if (!(h->options & ZKOO_SET)) {
    return fail(ZKRC_NOT_OPEN_FOR_SET);
  }
  if (selectorCount < 0 || selectorCount > ZK_MAX_SELECTOR_COUNT) {
    return fail(ZKRC_SELECTOR_COUNT_ERROR);
  }
  if (selectorCount > 0 && selectors == nullptr) {
    return fail(ZKRC_SELECTOR_ERROR);
  }
  if (intAttrCount < 0) {
    return fail(ZKRC_INT_ATTR_COUNT_ERROR);
  }
  if (charAttrLength < 0) {
    return fail(ZKRC_CHAR_ATTR_LENGTH_ERROR);
  }
  QueueDef *q = h->kind == OpenHandle::Kind::Queue ? store_.queue(h->openedName) : nullptr;
  if (q == nullptr) {
    return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
  }
  // Check everything before changing anything.
  ZKLONG ints = 0;
  ZKLONG chars = 0;
  for (ZKLONG i = 0; i < selectorCount; ++i) {
    ZKLONG s = selectors[i];
    if (isIntSelector(s)) {
      if (ints >= intAttrCount) {
        return fail(ZKRC_INT_ATTR_COUNT_TOO_SMALL);
      }
      if (intAttrs == nullptr) {
        return fail(ZKRC_INT_ATTRS_ARRAY_ERROR);
      }
      ZKLONG v = intAttrs[ints++];
      bool local = q->type == ZKQT_LOCAL;
      switch (s) {
      case ZKIA_INHIBIT_PUT:
      case ZKIA_INHIBIT_GET:
        if (s == ZKIA_INHIBIT_GET && q->type == ZKQT_REMOTE) {
          return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
        }
        if (v != 0 && v != 1) {
          return fail(ZKRC_INHIBIT_VALUE_ERROR);
        }
        break;
      case ZKIA_TRIGGER_CONTROL:
        if (!local) {
          return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
        }
        if (v != ZKTC_OFF && v != ZKTC_ON) {
          return fail(ZKRC_TRIGGER_CONTROL_ERROR);
        }
        break;
      case ZKIA_TRIGGER_TYPE:
        if (!local) {
          return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
        }
        if (v < ZKTT_NONE || v > ZKTT_DEPTH) {
          return fail(ZKRC_TRIGGER_TYPE_ERROR);
        }
        break;
      case ZKIA_TRIGGER_DEPTH:
        if (!local) {
          return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
        }
        if (v < 1) {
          return fail(ZKRC_TRIGGER_DEPTH_ERROR);
        }
        break;
      case ZKIA_TRIGGER_MSG_PRIORITY:
        if (!local) {
          return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
        }
        if (v < 0 || v > store_.qmgr.maxPriority) {
          return fail(ZKRC_TRIGGER_MSG_PRIORITY_ERR);
        }
        break;
      default:
        return fail(ZKRC_SELECTOR_ERROR);
      }
    } else if (const CharSelector *cs = charSelector(s)) {
      if (s != ZKCA_TRIGGER_DATA) {
        return fail(ZKRC_SELECTOR_ERROR);
      }
      if (q->type != ZKQT_LOCAL) {
        return fail(ZKRC_SELECTOR_NOT_FOR_TYPE);
      }
      chars += cs->length;
      if (chars > charAttrLength) {
        return fail(ZKRC_CHAR_ATTR_LENGTH_ERROR);
      }
    } else {
      return fail(ZKRC_SELECTOR_ERROR);
    }
  }
  if (ints > 0 && intAttrs == nullptr) {
    return fail(ZKRC_INT_ATTRS_ARRAY_ERROR);
  }
  if (chars > 0 && charAttrs == nullptr) {
    return fail(ZKRC_CHAR_ATTRS_ERROR);
  }
  ints = 0;
  chars = 0;
  for (ZKLONG i = 0; i < selectorCount; ++i) {
    ZKLONG s = selectors[i];
    if (isIntSelector(s)) {
      ZKLONG v = intAttrs[ints++];
      switch (s) {
      case ZKIA_INHIBIT_PUT:
        q->putInhibited = v == ZKQA_PUT_INHIBITED;
        break;
      case ZKIA_INHIBIT_GET:
        q->getInhibited = v == ZKQA_GET_INHIBITED;
        break;
      case ZKIA_TRIGGER_CONTROL:
        q->triggerControl = v;
        break;
      case ZKIA_TRIGGER_TYPE:
        q->triggerType = v;
        break;
      case ZKIA_TRIGGER_DEPTH:
        q->triggerDepth = v;
        break;
      case ZKIA_TRIGGER_MSG_PRIORITY:
        q->triggerMsgPriority = v;
        break;
      default:
        break;
      }
    } else {
      const CharSelector *cs = charSelector(s);
      q->triggerData = fixedText(charAttrs + chars, static_cast<std::size_t>(cs->length));
      chars += cs->length;
    }
  }
  *compCode = ZKCC_OK;
  *reason = 0;
}

} // namespace zkqm
