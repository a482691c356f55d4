// Displays of the queue manager's state and of message data, and the
// expectation on a queue's depth.
#include <cstddef>
#include <cstdio>

#include "commands.h"
#include "engine_util.h"

namespace zkqm {
namespace {

// A hex dump, 16 bytes a line, with the characters beside it.
void dump(Log &log, const std::string &prefix, const std::vector<unsigned char> &data) {
  for (std::size_t at = 0; at < data.size(); at += 16) {
    char line[128];
    int n = std::snprintf(line, sizeof line, "%s %08zX ", prefix.c_str(), at);
    std::string text(line, static_cast<std::size_t>(n));
    std::string chars;
    for (std::size_t i = at; i < at + 16; ++i) {
      if (i < data.size()) {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%02X", data[i]);
        text += hex;
        unsigned char ch = data[i];
        chars += (ch >= 0x20 && ch < 0x7f) ? static_cast<char>(ch) : '.';
      } else {
        text += "  ";
      }
      if (i % 4 == 3) {
        text += ' ';
      }
    }
    log.line("%s |%s|", text.c_str(), chars.c_str());
  }
}

const char *typeName(ZKLONG type) {
  switch (type) {
  case ZKQT_LOCAL:
    return "qlocal";
  case ZKQT_ALIAS:
    return "qalias";
  case ZKQT_MODEL:
    return "qmodel";
  case ZKQT_REMOTE:
    return "qremote";
  default:
    return "queue";
  }
}

} // namespace

bool checkExpectDepth(const ScenarioCommand &cmd, std::string &error) {
  ZKLONG n = 0;
  if (!hasVariable(cmd.words[2]) && !parseValue(cmd.words[2], "", n, error)) {
    error = "expect-depth: the depth is a number";
    return false;
  }
  return true;
}

bool runExpectDepth(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKLONG wanted = 0;
  if (!parseValue(cmd.words[2], "", wanted, error)) {
    return false;
  }
  bool exists = false;
  int depth = context.qmgr.engine().depth(cmd.words[1], exists);
  std::string actual = exists ? std::to_string(depth) : "(no such local queue)";
  if (exists && depth == wanted) {
    context.log.line("expectation met: depth of %s %d", cmd.words[1].c_str(), wanted);
  } else {
    ++context.shared.failedExpectations;
    context.log.always("EXPECTATION FAILED (line %d): depth of %s is %s, expected %d", cmd.line,
                       cmd.words[1].c_str(), actual.c_str(), wanted);
  }
  return true;
}

bool checkShowMore(const ScenarioCommand &, std::string &) {
  return true;
}

bool runShowMore(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  const std::string &what = cmd.words[1];
  Engine &engine = context.qmgr.engine();
  if (what == "data") {
    Connection *c = connectionOf(context, cmd.words[2], error);
    if (c == nullptr) {
      return false;
    }
    std::vector<unsigned char> data = c->lastData;
    // The date and time that the queue manager wrote into a transmission-
    // queue header differ from run to run: their digits are shown as '#'.
    bool masked = false;
    if (data.size() >= ZKXQH_LENGTH_1 && hasStrucId(data.data(), ZKXQH_STRUC_ID)) {
      std::size_t at = ZKXQH_MSG_DESC_OFFSET + offsetof(ZKMD1, PutDate);
      for (std::size_t i = at; i < at + 16; ++i) {
        if (data[i] >= '0' && data[i] <= '9') {
          data[i] = '#';
          masked = true;
        }
      }
    }
    context.log.line("%s data: %zu bytes%s", c->name.c_str(), data.size(),
                     masked ? " (put date and time masked)" : "");
    dump(context.log, c->name, data);
    return true;
  }
  if (what == "message") {
    BuiltMessage m;
    {
      std::lock_guard<std::mutex> lock(context.shared.mutex);
      auto it = context.shared.messages.find(cmd.words[2]);
      if (it == context.shared.messages.end()) {
        error = "no message named '" + cmd.words[2] + "'";
        return false;
      }
      m = it->second;
    }
    std::string fields;
    for (const auto &f : m.mdFields) {
      fields += " " + f.first + "=" + f.second;
    }
    context.log.line("message %s: %zu bytes;%s", cmd.words[2].c_str(), m.data.size(),
                     fields.c_str());
    dump(context.log, cmd.words[2], m.data);
    return true;
  }
  std::lock_guard<std::mutex> lock(engine.mutex());
  ObjectStore &store = engine.store();
  if (what == "objects") {
    for (const auto &entry : store.queues) {
      const QueueDef &q = entry.second;
      std::string more;
      if (q.type == ZKQT_LOCAL) {
        more = ", depth " + std::to_string(q.messages.size()) + ", open input " +
               std::to_string(q.openInput) + ", open output " + std::to_string(q.openOutput);
        if (q.definitionType != ZKQDT_PREDEFINED) {
          more += ", dynamic";
        }
      } else if (q.type == ZKQT_ALIAS) {
        more = ", target " + q.target;
      } else if (q.type == ZKQT_REMOTE) {
        more = ", " + q.remoteName + " on " + q.remoteQMgr;
      }
      context.log.line("%s %s%s", typeName(q.type), q.name.c_str(), more.c_str());
    }
    for (const auto &entry : store.topics) {
      context.log.line("topic %s '%s'", entry.first.c_str(), entry.second.topicString.c_str());
    }
    for (const Subscription &s : store.subscriptions) {
      context.log.line("sub %s '%s' -> %s%s", s.name.c_str(), s.topicString.c_str(),
                       s.destQueue.c_str(), s.durable ? ", durable" : "");
    }
    return true;
  }
  QueueDef *q = store.queue(cmd.words[2]);
  if (q == nullptr || q->type != ZKQT_LOCAL) {
    error = "no local queue named '" + cmd.words[2] + "'";
    return false;
  }
  context.log.line("queue %s: depth %zu", q->name.c_str(), q->messages.size());
  int n = 0;
  for (const Message &m : q->messages) {
    std::string state = m.putUow != 0   ? ", put in a unit of work"
                        : m.getUow != 0 ? ", got in a unit of work"
                                        : "";
    context.log.line("  %d: MsgId %s, format '%s', priority %d, %zu bytes%s: '%s'", ++n,
                     idText(m.md.MsgId).c_str(), fixedText(m.md.Format, 8).c_str(), m.md.Priority,
                     m.data.size(), state.c_str(), printable(m.data.data(), m.data.size()).c_str());
  }
  return true;
}

} // namespace zkqm
