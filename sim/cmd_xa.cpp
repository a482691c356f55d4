// A stand-in transaction manager: 'xid' names a transaction identifier,
// 'xa' makes one xa_* or ax_* call on a connection's queue manager,
// through the exits that registered for it.
//
//   xid g1 format=5 gtrid=GTRID-0001 bqual=BQ1 layout=64
//   xa c1 open info="zkqm rm" rmid=1
//   xa c1 start g1 rmid=1
//   put c1 q text=inside options=SYNCPOINT
//   xa c1 end g1 flags=TMSUCCESS
//   xa c1 prepare g1
//   xa c1 commit g1
#include <cstring>

#include "commands.h"
#include "constants.h"
#include "engine_util.h"

namespace zkqm {
namespace {

struct XaOp {
  const char *word;
  ZKLONG function;
  const char *name;
};

const XaOp kOps[] = {
    {"open", ZKXF_XAOPEN, "xa_open"},
    {"close", ZKXF_XACLOSE, "xa_close"},
    {"start", ZKXF_XASTART, "xa_start"},
    {"end", ZKXF_XAEND, "xa_end"},
    {"prepare", ZKXF_XAPREPARE, "xa_prepare"},
    {"commit", ZKXF_XACOMMIT, "xa_commit"},
    {"rollback", ZKXF_XAROLLBACK, "xa_rollback"},
    {"forget", ZKXF_XAFORGET, "xa_forget"},
    {"recover", ZKXF_XARECOVER, "xa_recover"},
    {"complete", ZKXF_XACOMPLETE, "xa_complete"},
    {"reg", ZKXF_AXREG, "ax_reg"},
    {"unreg", ZKXF_AXUNREG, "ax_unreg"},
};

const XaOp *opOf(const std::string &word) {
  for (const XaOp &op : kOps) {
    if (word == op.word) {
      return &op;
    }
  }
  return nullptr;
}

bool takesXid(ZKLONG f) {
  return f == ZKXF_XASTART || f == ZKXF_XAEND || f == ZKXF_XAPREPARE || f == ZKXF_XACOMMIT ||
         f == ZKXF_XAROLLBACK || f == ZKXF_XAFORGET;
}

std::string xidName(const XidValue &x) {
  std::string key = x.key();
  return printable(reinterpret_cast<const unsigned char *>(key.data()), key.size());
}

} // namespace

bool checkXid(const ScenarioCommand &cmd, std::string &error) {
  Args args(cmd, 2);
  if (!args.checkKeys({"format", "gtrid", "bqual", "layout"}, {}, error)) {
    return false;
  }
  std::string layout = args.get("layout", "32");
  if (layout != "32" && layout != "64") {
    error = "xid: layout=32 or layout=64";
    return false;
  }
  if (args.get("gtrid").size() > 64 || args.get("bqual").size() > 64) {
    error = "xid: gtrid and bqual have at most 64 bytes each";
    return false;
  }
  return true;
}

bool runXid(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Args args(cmd, 2);
  ZKLONG format = 0;
  if (!parseValue(args.get("format", "0"), "", format, error)) {
    return false;
  }
  XidValue x =
      makeXid(format, args.get("gtrid"), args.get("bqual"), args.get("layout", "32") == "64");
  std::lock_guard<std::mutex> lock(context.shared.mutex);
  context.shared.xids[cmd.words[1]] = x;
  return true;
}

bool checkXa(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  const XaOp *op = opOf(cmd.words[2]);
  if (op == nullptr) {
    error = "xa: open, close, start, end, prepare, commit, rollback, forget, recover, complete, "
            "reg or unreg";
    return false;
  }
  Args args(cmd, 3);
  if (takesXid(op->function) && args.positional().size() != 1) {
    error = std::string("xa ") + op->word + ": name the XID (or none)";
    return false;
  }
  return args.checkKeys({"rmid", "flags", "info", "count", "layout", "handle"}, {}, error) &&
         args.checkValues({{"rmid", ""}, {"flags", "TM"}, {"count", ""}, {"handle", ""}}, error);
}

bool runXa(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectedOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  const XaOp *op = opOf(cmd.words[2]);
  Args args(cmd, 3);
  ZKLONG rmid = 1;
  ZKLONG flags = TMNOFLAGS;
  ZKLONG count = 10;
  ZKLONG handle = 0;
  if ((args.has("rmid") && !parseValue(args.get("rmid"), "", rmid, error)) ||
      (args.has("flags") && !parseValue(args.get("flags"), "TM", flags, error)) ||
      (args.has("count") && !parseValue(args.get("count"), "", count, error)) ||
      (args.has("handle") && !parseValue(args.get("handle"), "", handle, error))) {
    return false;
  }
  // The XID argument, in its own layout.
  XidValue xid;
  bool haveXid = false;
  std::string xidWord = args.positional().empty() ? "none" : args.positional()[0];
  if (xidWord != "none") {
    std::lock_guard<std::mutex> lock(context.shared.mutex);
    auto it = context.shared.xids.find(xidWord);
    if (it == context.shared.xids.end()) {
      error = "no XID named '" + xidWord + "' (define it with 'xid')";
      return false;
    }
    xid = it->second;
    haveXid = true;
  }
  bool layout64 = haveXid ? xid.layout64 : args.get("layout", "32") == "64";
  std::size_t xidSize = layout64 ? ZKXID64_LENGTH : ZKXID32_LENGTH;
  // ax_reg returns the transaction's XID into the application's area.
  std::vector<unsigned char> xidArea = haveXid ? xid.bytes : std::vector<unsigned char>(xidSize, 0);
  if (op->function == ZKXF_AXREG) {
    xidArea.assign(xidSize, 0);
    ZKLONG nullFormat = -1;
    if (layout64) {
      ZKINT64 f = nullFormat;
      std::memcpy(xidArea.data(), &f, 8);
    } else {
      std::memcpy(xidArea.data(), &nullFormat, 4);
    }
  }
  std::vector<unsigned char> recovered(static_cast<std::size_t>(std::max<ZKLONG>(count, 0)) *
                                       xidSize);
  std::string info = args.get("info", "zkqm resource manager");
  std::vector<char> infoText(info.begin(), info.end());
  infoText.push_back('\0');

  ZKHCONN hconn = c->hconn;
  PZKCHAR pInfo = args.get("info") == "none" ? nullptr : infoText.data();
  ZKPTR pXid = haveXid || op->function == ZKXF_AXREG ? xidArea.data() : nullptr;
  ZKPTR pXids = recovered.empty() ? nullptr : recovered.data();
  ZKLONG retval = 0;
  PZKLONG pHandle = &handle;
  PZKLONG pRetval = &retval;
  ZKLONG rc = XA_OK;

  std::string what = op->name;
  if (haveXid) {
    what += " " + xidWord + " (" + std::string(layout64 ? "64" : "32") + "-bit XID)";
  }
  context.log.line("%s %s, rmid %d, flags 0x%08X", c->name.c_str(), what.c_str(), rmid,
                   static_cast<unsigned>(flags));
  ApiCall api;
  api.function = op->function;
  api.name = op->name;
  api.invoke = [&](PZKFUNC entry, PZKAXP axp, PZKAXC axc) {
    switch (op->function) {
    case ZKXF_XAOPEN:
    case ZKXF_XACLOSE:
      reinterpret_cast<PZK_XAOPEN_EXIT>(entry)(axp, axc, &hconn, &pInfo, &rmid, &flags, &rc);
      break;
    case ZKXF_XARECOVER:
      reinterpret_cast<PZK_XARECOVER_EXIT>(entry)(axp, axc, &hconn, &pXids, &count, &rmid, &flags,
                                                  &rc);
      break;
    case ZKXF_XACOMPLETE:
      reinterpret_cast<PZK_XACOMPLETE_EXIT>(entry)(axp, axc, &hconn, &pHandle, &pRetval, &rmid,
                                                   &flags, &rc);
      break;
    case ZKXF_AXREG:
      reinterpret_cast<PZK_AXREG_EXIT>(entry)(axp, axc, &hconn, &rmid, &pXid, &flags, &rc);
      break;
    case ZKXF_AXUNREG:
      reinterpret_cast<PZK_AXUNREG_EXIT>(entry)(axp, axc, &hconn, &rmid, &flags, &rc);
      break;
    default:
      reinterpret_cast<PZK_XASTART_EXIT>(entry)(axp, axc, &hconn, &pXid, &rmid, &flags, &rc);
      break;
    }
  };
  api.describe = [&](ParamSnapshot &s) {
    s.addLong("Hconn", &hconn);
    switch (op->function) {
    case ZKXF_XAOPEN:
    case ZKXF_XACLOSE:
      s.addPointer("xa_info address", reinterpret_cast<void *const *>(&pInfo));
      if (pInfo != nullptr) {
        s.addBytes("xa_info", pInfo, infoText.size());
      }
      break;
    case ZKXF_XARECOVER:
      s.addPointer("XID array address", &pXids);
      s.addBytes("XID array", pXids, recovered.size());
      s.addLong("count", &count);
      break;
    case ZKXF_XACOMPLETE:
      s.addPointer("handle address", reinterpret_cast<void *const *>(&pHandle));
      s.addLong("handle", pHandle);
      s.addPointer("retval address", reinterpret_cast<void *const *>(&pRetval));
      s.addLong("retval", pRetval);
      break;
    case ZKXF_AXUNREG:
      break;
    default:
      s.addPointer("XID address", &pXid);
      if (pXid != nullptr) {
        s.addRecords("XID", pXid, structNamed(layout64 ? "ZKXID64" : "ZKXID32"), 1);
      }
      break;
    }
    s.addLong("rmid", &rmid);
    s.addLong("flags", &flags);
    s.addLong("XA return code", &rc);
  };
  Engine &engine = context.qmgr.engine();
  std::string details;
  context.qmgr.perform(*c, api, [&]() {
    switch (op->function) {
    case ZKXF_XAOPEN:
      rc = engine.xaOpen(pInfo, rmid, flags);
      break;
    case ZKXF_XACLOSE:
      rc = engine.xaClose(pInfo, rmid, flags);
      break;
    case ZKXF_XASTART:
      rc = engine.xaStart(hconn, pXid, layout64, rmid, flags);
      break;
    case ZKXF_XAEND:
      rc = engine.xaEnd(hconn, pXid, layout64, rmid, flags);
      break;
    case ZKXF_XAPREPARE:
      rc = engine.xaPrepare(pXid, layout64, rmid, flags);
      break;
    case ZKXF_XACOMMIT:
      rc = engine.xaCommit(pXid, layout64, rmid, flags);
      break;
    case ZKXF_XAROLLBACK:
      rc = engine.xaRollback(pXid, layout64, rmid, flags);
      break;
    case ZKXF_XAFORGET:
      rc = engine.xaForget(pXid, layout64, rmid, flags);
      break;
    case ZKXF_XARECOVER:
      rc = engine.xaRecover(pXids, layout64, count, rmid, flags);
      break;
    case ZKXF_XACOMPLETE:
      rc = engine.xaComplete(pHandle, pRetval, rmid, flags);
      break;
    case ZKXF_AXREG:
      // The transaction manager answers with the transaction the
      // connection works in (the XID named), and the queue manager joins it.
      rc = TM_OK;
      if (haveXid) {
        std::memcpy(xidArea.data(), xid.bytes.data(), xidSize);
        ZKLONG start = engine.xaStart(hconn, xidArea.data(), layout64, rmid, TMNOFLAGS);
        if (start == XAER_DUPID) {
          start = engine.xaStart(hconn, xidArea.data(), layout64, rmid, TMJOIN);
          rc = TM_JOIN;
        }
        if (start != XA_OK) {
          rc = TMER_PROTO;
        }
      }
      break;
    case ZKXF_AXUNREG:
      engine.leaveTransaction(hconn);
      rc = TM_OK;
      break;
    default:
      break;
    }
  });
  c->lastXaReturn = rc;
  std::string name = op->function == ZKXF_AXREG || op->function == ZKXF_AXUNREG ? axReturnName(rc)
                                                                                : xaReturnName(rc);
  if (op->function == ZKXF_XARECOVER && rc >= 0) {
    details = std::to_string(rc) + " XID(s)";
    for (ZKLONG i = 0; i < rc && i < count; ++i) {
      details +=
          (i == 0 ? ": " : ", ") + xidName(xidFromMemory(recovered.data() + i * xidSize, layout64));
    }
  } else if (op->function == ZKXF_AXREG && rc >= 0) {
    details = "XID " + xidName(xidFromMemory(xidArea.data(), layout64));
  } else if (op->function == ZKXF_XACOMPLETE) {
    details = "retval " + std::to_string(retval);
  }
  ++context.calls;
  if (rc < 0) {
    ++context.failedCalls;
  }
  c->lastCall = op->name;
  context.log.line("%s   XA return code %d%s%s%s%s", c->name.c_str(), rc, name.empty() ? "" : " (",
                   name.c_str(), name.empty() ? "" : ")",
                   details.empty() ? "" : ("; " + details).c_str());
  return true;
}

} // namespace zkqm

namespace zkqm {

// during CONN xa CONN OP ...: the transaction-manager call is made inside
// the connection's next ZKI call instead of now.
bool checkDuring(const ScenarioCommand &cmd, std::string &error) {
  if (!checkConnectionName(cmd.words[1], error)) {
    return false;
  }
  if (cmd.words.size() < 4 || cmd.words[2] != "xa") {
    error = "during CONNECTION xa CONNECTION OPERATION ...: only an xa call can come inside a call";
    return false;
  }
  ScenarioCommand inner = cmd;
  inner.words.erase(inner.words.begin(), inner.words.begin() + 2);
  if (inner.words[1] != cmd.words[1]) {
    error = "during: the xa call must be made on the same connection";
    return false;
  }
  return checkXa(inner, error);
}

bool runDuring(ScenarioContext &context, const ScenarioCommand &cmd, std::string &error) {
  Connection *c = connectionOf(context, cmd.words[1], error);
  if (c == nullptr) {
    return false;
  }
  ScenarioCommand inner = cmd;
  inner.words.erase(inner.words.begin(), inner.words.begin() + 2);
  ScenarioContext *run = &context;
  c->insideNextCall = [run, inner]() {
    std::string failure;
    if (!runXa(*run, inner, failure)) {
      run->log.line("error: inside the call: %s", failure.c_str());
    }
  };
  std::string words;
  for (const std::string &word : inner.words) {
    words += (words.empty() ? "" : " ") + word;
  }
  context.log.line("%s the next call carries: %s", c->name.c_str(), words.c_str());
  return true;
}

} // namespace zkqm
