// Asynchronous consumption: cb, ctl, deliver, and the queue manager's calls
// of the registered callback functions, each passed to the exits' callback
// functions (ZKXF_CALLBACK) before and after.
//
//   cb c1 REGISTER q consumer=log cbd.Options=START_CALL+STOP_CALL
//   ctl c1 START          # messages are delivered after each command
//   ctl c1 START_WAIT     # delivered inside the call until none is left
//   ctl c1 STOP
#include <cstring>
#include <unistd.h>

#include "commands.h"
#include "constants.h"
#include "describe.h"
#include "engine_util.h"

namespace zkqm {
namespace {

// The delivery in progress on this thread, for the application's callback.
struct CurrentDelivery {
  Connection *connection = nullptr;
  Log *log = nullptr;
};
thread_local CurrentDelivery tCurrent;

// Areas that the callback descriptor and the control options hand over;
// the queue manager passes them back in the callback context.
char callbackArea[16] = "callback area";
char connectionArea[16] = "connection area";

// The application's message consumer: it logs what it received.
void applicationConsumer(ZKHCONN hconn, PZKMD md, PZKGMO gmo, PZKVOID buffer, PZKCBC context) {
  (void)hconn;
  (void)gmo;
  Connection *c = tCurrent.connection;
  if (c == nullptr || context == nullptr) {
    return;
  }
  std::string callType = constantName(context->CallType, "ZKCBCT_");
  std::string text;
  if (context->CallType == ZKCBCT_MSG_REMOVED || context->CallType == ZKCBCT_MSG_NOT_REMOVED) {
    ZKLONG n = std::min(context->DataLength, context->BufferLength);
    const auto *data = static_cast<const unsigned char *>(buffer);
    c->lastData.assign(data, data + std::max<ZKLONG>(n, 0));
    c->lastDataLength = context->DataLength;
    text = ", " + std::to_string(context->DataLength) + " bytes, MsgId " +
           (md != nullptr ? idText(md->MsgId) : "none") + ", data '" +
           printable(c->lastData.data(), c->lastData.size()) + "'";
  }
  tCurrent.log->line(
      "%s   consumer: %s Hobj %d, CompCode %d Reason %s%s%s%s", c->name.c_str(), callType.c_str(),
      context->Hobj, context->CompCode, reasonWithName(context->Reason).c_str(),
      context->CallbackArea == callbackArea ? ", callback area" : "",
      context->ConnectionArea == connectionArea ? ", connection area" : "", text.c_str());
}

void deliverOne(QueueManager &qmgr, Connection &c, Delivery &d) {
  ZKHCONN hconn = c.hconn;
  PZKMD pMd = d.event ? nullptr : &d.md;
  PZKGMO pGmo = d.event ? nullptr : &d.gmo;
  PZKVOID pBuffer = d.buffer.empty() ? nullptr : d.buffer.data();
  PZKCBC pCbc = &d.cbc;
  std::string callType = constantName(d.cbc.CallType, "ZKCBCT_");
  qmgr.log().line("%s callback %s, Hobj %d", c.name.c_str(), callType.c_str(), d.hobj);
  ApiCall api;
  api.function = ZKXF_CALLBACK;
  api.name = "ZKCB_FU";
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_CALLBACK_EXIT>(entry)(axp, axc, &hconn, &pMd, &pGmo, &pBuffer, &pCbc);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addPointer("ZKMD address", reinterpret_cast<void *const *>(&pMd));
    describeMd(s, pMd);
    s.addPointer("ZKGMO address", reinterpret_cast<void *const *>(&pGmo));
    describeGmo(s, pGmo);
    s.addPointer("Buffer address", &pBuffer);
    s.addBytes("Buffer", pBuffer, d.buffer.size());
    s.addPointer("ZKCBC address", reinterpret_cast<void *const *>(&pCbc));
    describeSimple(s, "ZKCBC", pCbc);
  };
  CurrentDelivery saved = tCurrent;
  tCurrent.connection = &c;
  tCurrent.log = &qmgr.log();
  qmgr.perform(c, api, [&]() {
    auto function = reinterpret_cast<PZK_CALLBACK_FUNCTION>(d.cbd.CallbackFunction);
    if (function != nullptr) {
      function(hconn, pMd, pGmo, pBuffer, pCbc);
    }
  });
  tCurrent = saved;
  ++c.delivered;
  c.keep("cbc", &d.cbc, sizeof d.cbc);
}

// cb and ctl: the connection, then an operation (ZKOP_*).
bool checkOperationCommand(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  ZKLONG op = 0;
  return hasVariable(cmd.words[2]) || parseValue(cmd.words[2], "ZKOP_", op, error);
}

// The connection and the operation that a cb or ctl command names; null
// with `error` when either is wrong.
Connection *operationCommandOf(ScenarioContext &context, const ScenarioCommand &cmd,
                               ZKLONG &operation, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr || !parseValue(cmd.words[2], "ZKOP_", operation, error)) {
    return nullptr;
  }
  return c;
}

} // namespace

int QueueManager::deliver(Connection &c, int limit) {
  int n = 0;
  Delivery d;
  while (n < limit && c.state == ConnectionState::Connected && engine_.nextDelivery(c.hconn, d)) {
    deliverOne(*this, c, d);
    ++n;
  }
  return n;
}

void QueueManager::deliverPending(ScenarioContext &context) {
  (void)context;
  for (Connection *c : connections()) {
    if (c->state == ConnectionState::Connected && c->owner == std::this_thread::get_id() &&
        c->ownerPid == static_cast<int>(getpid())) {
      deliver(*c);
    }
  }
}

bool checkCb(const ScenarioCommand &cmd, std::string &error) {
  if (!checkOperationCommand(cmd, error)) {
    return false;
  }
  Args args(cmd, 3);
  if (args.positional().size() > 1) {
    error = "cb: at most one handle";
    return false;
  }
  return args.checkKeys({"consumer", "type", "maxmsgl", "md", "gmo", "options", "match", "cbd"},
                        {"cbd", "md", "gmo"}, error) &&
         args.checkValues({{"type", "ZKCBT_"},
                           {"maxmsgl", ""},
                           {"options", "ZKGMO_"},
                           {"match", "ZKMO_,ZKMO_MATCH_"}},
                          error);
}

bool runCb(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKLONG operation = 0;
  Connection *c = operationCommandOf(context, cmd, operation, error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 3);
  ZKHOBJ hobj = 0;
  std::string handleName = args.positional().empty() ? "" : args.positional()[0];
  if (!handleName.empty() && handleName != "-" && !handleOf(*c, handleName, hobj, error)) {
    return false;
  }
  bool registering = (operation & ZKOP_REGISTER) != 0;
  ZKCBD cbd = ZKCBD_DEFAULT;
  PZKCBD pCbd = nullptr;
  cbd.CallbackArea = callbackArea;
  if (args.get("consumer", "log") == "log") {
    cbd.CallbackFunction = reinterpret_cast<ZKPTR>(&applicationConsumer);
  }
  if ((args.has("type") && !parseValue(args.get("type"), "ZKCBT_", cbd.CallbackType, error)) ||
      (args.has("maxmsgl") && !parseValue(args.get("maxmsgl"), "", cbd.MaxMsgLength, error)) ||
      !structArgument(context, args, "cbd", "ZKCBD", cbd, pCbd, error)) {
    return false;
  }
  ZKMD md = ZKMD_DEFAULT;
  ZKGMO gmo = ZKGMO_DEFAULT;
  std::string mdWord = args.get("md", registering ? "1" : "none");
  std::string gmoWord = args.get("gmo", registering ? (args.has("match") ? "2" : "1") : "none");
  if ((mdWord != "none" && !parseValue(mdWord, "", md.Version, error)) ||
      (gmoWord != "none" && !parseValue(gmoWord, "", gmo.Version, error)) ||
      (args.has("options") && !parseValue(args.get("options"), "ZKGMO_", gmo.Options, error)) ||
      (args.has("match") &&
       !parseValue(args.get("match"), "ZKMO_,ZKMO_MATCH_", gmo.MatchOptions, error)) ||
      !args.applyFields("md", &md, structNamed("ZKMD"), resolverOf(context), error) ||
      !args.applyFields("gmo", &gmo, structNamed("ZKGMO"), resolverOf(context), error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  PZKMD pMd = mdWord == "none" ? nullptr : &md;
  PZKGMO pGmo = gmoWord == "none" ? nullptr : &gmo;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKCB operation 0x%08X%s%s", c->name.c_str(),
                   static_cast<unsigned>(operation), handleName.empty() ? "" : ", handle ",
                   handleName.c_str());
  ApiCall api = makeApiCall(ZKXF_CB, "ZKCB", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_CB_EXIT>(entry)(axp, axc, &hconn, &operation, &pCbd, &hobj, &pMd, &pGmo,
                                         &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("Operation", &operation);
    s.addPointer("ZKCBD address", reinterpret_cast<void *const *>(&pCbd));
    describeSimple(s, "ZKCBD", pCbd);
    s.addLong("Hobj", &hobj);
    s.addPointer("ZKMD address", reinterpret_cast<void *const *>(&pMd));
    describeMd(s, pMd);
    s.addPointer("ZKGMO address", reinterpret_cast<void *const *>(&pGmo));
    describeGmo(s, pGmo);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  context.qmgr.perform(*c, api, [&]() {
    context.qmgr.engine().cb(hconn, operation, pCbd, hobj, pMd, pGmo, &compCode, &reason);
  });
  c->keep("cbd", pCbd, sizeof cbd);
  logResult(context, *c, "ZKCB", compCode, reason);
  return true;
}

bool checkCtl(const ScenarioCommand &cmd, std::string &error) {
  if (!checkOperationCommand(cmd, error)) {
    return false;
  }
  Args args(cmd, 3);
  return args.checkKeys({"ctlo"}, {"ctlo"}, error);
}

bool runCtl(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  ZKLONG operation = 0;
  Connection *c = operationCommandOf(context, cmd, operation, error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 3);
  ZKCTLO ctlo = ZKCTLO_DEFAULT;
  ctlo.ConnectionArea = connectionArea;
  PZKCTLO pCtlo = nullptr;
  if (!structArgument(context, args, "ctlo", "ZKCTLO", ctlo, pCtlo, error)) {
    return false;
  }
  ZKHCONN hconn = c->hconn;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;
  context.log.line("%s ZKCTL operation 0x%08X", c->name.c_str(), static_cast<unsigned>(operation));
  ApiCall api = makeApiCall(ZKXF_CTL, "ZKCTL", compCode, reason);
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    reinterpret_cast<PZK_CTL_EXIT>(entry)(axp, axc, &hconn, &operation, &pCtlo, &compCode, &reason);
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    s.addLong("Operation", &operation);
    s.addPointer("ZKCTLO address", reinterpret_cast<void *const *>(&pCtlo));
    describeSimple(s, "ZKCTLO", pCtlo);
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  };
  int delivered = 0;
  context.qmgr.perform(*c, api, [&]() {
    context.qmgr.engine().ctl(hconn, operation, pCtlo, &compCode, &reason);
    if (operation == ZKOP_START_WAIT && compCode == ZKCC_OK) {
      // START_WAIT: the callbacks run inside the call, on this thread, until
      // nothing is left for them; then the consumers are stopped.
      delivered = context.qmgr.deliver(*c);
      ZKLONG cc = 0;
      ZKLONG rc = 0;
      ZKCTLO stop = ZKCTLO_DEFAULT;
      context.qmgr.engine().ctl(hconn, ZKOP_STOP, &stop, &cc, &rc);
      delivered += context.qmgr.deliver(*c);
    }
  });
  logResult(context, *c, "ZKCTL", compCode, reason,
            operation == ZKOP_START_WAIT ? std::to_string(delivered) + " callback call(s)" : "");
  return true;
}

bool checkDeliver(const ScenarioCommand &cmd, std::string &error) {
  return checkConnectionName(cmd.words[1], error);
}

bool runDeliver(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  int n = context.qmgr.deliver(*c);
  context.log.line("%s delivered %d callback call(s)", c->name.c_str(), n);
  return true;
}

// event CONN [compcode=N] [reason=N]: a connection event for the
// connection's event handler, delivered at once (the callback gets no
// descriptor and no get options).
bool checkEvent(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  Args args(cmd, 2);
  return args.checkKeys({"compcode", "reason"}, {}, error) &&
         args.checkValues({{"compcode", "ZKCC_"}, {"reason", "ZKRC_"}}, error);
}

bool runEvent(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  Args args(cmd, 2);
  ZKLONG compCode = ZKCC_WARNING;
  ZKLONG reason = ZKRC_RECONNECTING;
  if ((args.has("compcode") && !parseValue(args.get("compcode"), "ZKCC_", compCode, error)) ||
      (args.has("reason") && !parseValue(args.get("reason"), "ZKRC_", reason, error))) {
    return false;
  }
  if (!context.qmgr.engine().raiseEvent(c->hconn, compCode, reason)) {
    error = c->name + " has no event handler registered (cb ... type=EVENT_HANDLER)";
    return false;
  }
  int n = context.qmgr.deliver(*c);
  context.log.line("%s event CompCode %d Reason %s: delivered %d callback call(s)", c->name.c_str(),
                   compCode, reasonWithName(reason).c_str(), n);
  return true;
}

} // namespace zkqm
