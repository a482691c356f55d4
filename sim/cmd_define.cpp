// 'define': the queue manager's objects and its own attributes.
//
//   define qlocal NAME [maxdepth=N] [maxmsgl=N] [put=enabled|disabled] ...
//   define qalias NAME target=NAME [targtype=queue|topic] ...
//   define qmodel NAME [deftype=temporary|permanent] ...
//   define qremote NAME rname=NAME rqmname=NAME [xmitq=NAME] ...
//   define topic NAME topicstr=STRING
//   define sub NAME topicstr=STRING dest=QUEUE [destqmgr=NAME] ...
//   define qmgr [deadq=NAME] [defxmitq=NAME] [ccsid=N] [maxmsgl=N] [descr=TEXT]
#include <cstring>

#include "commands.h"

namespace zkqm {
namespace {

const std::vector<std::string> kQueueKeys = {"descr",   "put",      "get",
                                             "defprty", "defpsist", "replace"};
const std::vector<std::string> kLocalKeys = {
    "maxdepth", "maxmsgl", "share",    "defsopt",  "usage", "msgdlvsq", "boqname",
    "bothresh", "trigger", "trigdpth", "trigmpri", "initq", "process",  "trigdata"};

bool number(const Args &args, const std::string &key, ZKLONG low, ZKLONG high, ZKLONG &field,
            std::string &error) {
  if (!args.has(key)) {
    return true;
  }
  ZKLONG v = 0;
  if (!parseValue(args.get(key), "", v, error) || v < low || v > high) {
    error = key + "=" + args.get(key) + ": expected a number from " + std::to_string(low) + " to " +
            std::to_string(high);
    return false;
  }
  field = v;
  return true;
}

bool choice(const Args &args, const std::string &key,
            const std::vector<std::pair<std::string, ZKLONG>> &values, ZKLONG &field,
            std::string &error) {
  if (!args.has(key)) {
    return true;
  }
  std::string v = args.get(key);
  std::string list;
  for (const auto &p : values) {
    if (p.first == v) {
      field = p.second;
      return true;
    }
    list += (list.empty() ? "" : ", ") + p.first;
  }
  error = key + "=" + v + ": expected one of " + list;
  return false;
}

bool name48(const std::string &key, const std::string &value, std::string &error) {
  if (value.size() > 48) {
    error = key + "=" + value + ": a name has at most 48 characters";
    return false;
  }
  return true;
}

// Reads the definition of a queue from the words; `def` gets what they say.
bool queueFromArgs(const std::string &kind, const Args &args, QueueDef &def, std::string &error) {
  std::vector<std::string> keys = kQueueKeys;
  if (kind == "qlocal" || kind == "qmodel") {
    keys.insert(keys.end(), kLocalKeys.begin(), kLocalKeys.end());
  }
  if (kind == "qmodel") {
    keys.push_back("deftype");
  } else if (kind == "qalias") {
    keys.insert(keys.end(), {"target", "targtype"});
  } else if (kind == "qremote") {
    keys.insert(keys.end(), {"rname", "rqmname", "xmitq"});
  }
  if (!args.checkKeys(keys, {}, error)) {
    return false;
  }
  def.type = kind == "qlocal"   ? ZKQT_LOCAL
             : kind == "qalias" ? ZKQT_ALIAS
             : kind == "qmodel" ? ZKQT_MODEL
                                : ZKQT_REMOTE;
  def.description = args.get("descr");
  if (def.description.size() > 64) {
    error = "descr: at most 64 characters";
    return false;
  }
  ZKLONG v = 0;
  v = def.putInhibited;
  if (!choice(args, "put", {{"enabled", 0}, {"disabled", 1}}, v, error)) {
    return false;
  }
  def.putInhibited = v != 0;
  v = def.getInhibited;
  if (!choice(args, "get", {{"enabled", 0}, {"disabled", 1}}, v, error)) {
    return false;
  }
  def.getInhibited = v != 0;
  if (!number(args, "defprty", 0, 9, def.defPriority, error) ||
      !choice(args, "defpsist", {{"no", ZKPER_NOT_PERSISTENT}, {"yes", ZKPER_PERSISTENT}},
              def.defPersistence, error) ||
      !number(args, "maxdepth", 0, 999999999, def.maxDepth, error) ||
      !number(args, "maxmsgl", 0, 104857600, def.maxMsgLength, error) ||
      !choice(args, "defsopt", {{"shared", ZKOO_INPUT_SHARED}, {"exclusive", ZKOO_INPUT_EXCLUSIVE}},
              def.defInputOpenOption, error) ||
      !choice(args, "usage", {{"normal", ZKUS_NORMAL}, {"xmitq", ZKUS_TRANSMISSION}}, def.usage,
              error) ||
      !choice(args, "msgdlvsq", {{"priority", ZKMDS_PRIORITY}, {"fifo", ZKMDS_FIFO}},
              def.deliverySequence, error) ||
      !number(args, "bothresh", 0, 999999999, def.backoutThreshold, error) ||
      !number(args, "trigdpth", 1, 999999999, def.triggerDepth, error) ||
      !number(args, "trigmpri", 0, 9, def.triggerMsgPriority, error) ||
      !choice(args, "deftype",
              {{"temporary", ZKQDT_TEMPORARY_DYNAMIC}, {"permanent", ZKQDT_PERMANENT_DYNAMIC}},
              def.definitionType, error) ||
      !choice(args, "targtype", {{"queue", 0}, {"topic", 1}}, v = 0, error)) {
    return false;
  }
  def.targetIsTopic = args.get("targtype") == "topic";
  v = def.shareable;
  if (!choice(args, "share", {{"yes", 1}, {"no", 0}}, v, error)) {
    return false;
  }
  def.shareable = v != 0;
  if (args.has("trigger")) {
    ZKLONG type = ZKTT_NONE;
    std::string t = args.get("trigger");
    if (t == "off") {
      def.triggerControl = ZKTC_OFF;
    } else {
      if (!choice(args, "trigger",
                  {{"first", ZKTT_FIRST}, {"every", ZKTT_EVERY}, {"depth", ZKTT_DEPTH}}, type,
                  error)) {
        return false;
      }
      def.triggerControl = ZKTC_ON;
      def.triggerType = type;
    }
  }
  def.backoutQueue = args.get("boqname");
  def.initiationQueue = args.get("initq");
  def.processName = args.get("process");
  def.triggerData = args.get("trigdata");
  def.target = args.get("target");
  def.remoteName = args.get("rname");
  def.remoteQMgr = args.get("rqmname");
  def.xmitQueue = args.get("xmitq");
  if (def.triggerData.size() > 64) {
    error = "trigdata: at most 64 characters";
    return false;
  }
  for (const char *k : {"boqname", "initq", "process", "target", "rname", "rqmname", "xmitq"}) {
    if (!name48(k, args.get(k), error)) {
      return false;
    }
  }
  if (kind == "qalias" && def.target.empty()) {
    error = "define qalias: target= names the queue or topic it stands for";
    return false;
  }
  if (kind == "qremote" && def.remoteQMgr.empty()) {
    error = "define qremote: rqmname= names the queue manager of the remote queue";
    return false;
  }
  return true;
}

bool define(ScenarioContext *context, const ScenarioCommand &cmd, std::string &error) {
  const std::string kind = cmd.words[1];
  if (kind == "qmgr") {
    Args args(cmd, 2);
    if (!args.checkKeys({"deadq", "defxmitq", "ccsid", "maxmsgl", "maxprty", "descr", "cmdlevel"},
                        {}, error)) {
      return false;
    }
    QMgrAttributes scratch;
    QMgrAttributes *a = &scratch;
    std::unique_lock<std::mutex> lock;
    if (context != nullptr) {
      lock = std::unique_lock<std::mutex>(context->qmgr.engine().mutex());
      a = &context->qmgr.engine().store().qmgr;
    }
    if (!number(args, "ccsid", 1, 65535, a->ccsid, error) ||
        !number(args, "maxmsgl", 32768, 104857600, a->maxMsgLength, error) ||
        !number(args, "maxprty", 0, 9, a->maxPriority, error) ||
        !number(args, "cmdlevel", 1, 9999, a->commandLevel, error)) {
      return false;
    }
    if (args.has("deadq")) {
      a->deadLetterQueue = args.get("deadq");
    }
    if (args.has("defxmitq")) {
      a->defaultXmitQueue = args.get("defxmitq");
    }
    if (args.has("descr")) {
      a->description = args.get("descr");
    }
    return name48("deadq", a->deadLetterQueue, error) &&
           name48("defxmitq", a->defaultXmitQueue, error);
  }
  if (cmd.words.size() < 3) {
    error = "usage: define " + kind + " NAME [key=value ...]";
    return false;
  }
  const std::string &name = cmd.words[2];
  if (!name48("name", name, error)) {
    return false;
  }
  Args args(cmd, 3);
  if (kind == "qlocal" || kind == "qalias" || kind == "qmodel" || kind == "qremote") {
    QueueDef def;
    def.name = name;
    if (!queueFromArgs(kind, args, def, error)) {
      return false;
    }
    return context == nullptr ||
           context->qmgr.engine().defineQueue(def, args.get("replace") == "yes", error);
  }
  if (kind == "topic") {
    if (!args.checkKeys({"topicstr", "descr"}, {}, error)) {
      return false;
    }
    TopicDef def;
    def.name = name;
    def.topicString = args.get("topicstr");
    def.description = args.get("descr");
    if (def.topicString.empty()) {
      error = "define topic: topicstr= gives its topic string";
      return false;
    }
    return context == nullptr || context->qmgr.engine().defineTopic(def, error);
  }
  if (kind == "sub") {
    if (!args.checkKeys(
            {"topicstr", "dest", "destqmgr", "pubpriority", "wildcard", "correlid", "userdata"}, {},
            error)) {
      return false;
    }
    Subscription s;
    s.name = name;
    s.topicString = args.get("topicstr");
    s.destQueue = args.get("dest");
    s.destQMgr = args.get("destqmgr");
    s.durable = true;
    s.adminDefined = true;
    s.userData = args.get("userdata");
    if (s.topicString.empty() || s.destQueue.empty()) {
      error = "define sub: topicstr= and dest= are needed";
      return false;
    }
    if (!number(args, "pubpriority", -3, 9, s.pubPriority, error)) {
      return false;
    }
    ZKLONG wildcard = 0;
    if (!choice(args, "wildcard", {{"topic", 0}, {"char", 1}}, wildcard, error)) {
      return false;
    }
    s.wildcardChar = wildcard != 0;
    if (args.has("correlid")) {
      FieldDef f;
      f.name = "correlid";
      f.size = 24;
      f.kind = FieldKind::Bytes;
      if (!setFieldValue(f, s.correlId, args.get("correlid"), nullptr, error)) {
        return false;
      }
    }
    return context == nullptr || context->qmgr.engine().defineSubscription(s, error);
  }
  error = "define what? (qlocal, qalias, qmodel, qremote, topic, sub, qmgr)";
  return false;
}

} // namespace

bool checkDefine(const ScenarioCommand &cmd, std::string &error) {
  for (const std::string &w : cmd.words) {
    if (hasVariable(w)) {
      return true; // checked when it runs
    }
  }
  return define(nullptr, cmd, error);
}

bool runDefine(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  if (!define(&context, cmd, error)) {
    return false;
  }
  if (cmd.words[1] == "qmgr") {
    context.log.line("defined the attributes of %s", context.qmgr.name().c_str());
  } else {
    context.log.line("defined %s %s", cmd.words[1].c_str(), cmd.words[2].c_str());
  }
  return true;
}

} // namespace zkqm
