// Fuzz target "connection": one whole connection through the exit, in
// process, as the queue manager drives it.
//
// Input: a 2-byte length (little-endian), that many bytes of wz.def, a
// control block of kControlSize bytes (see Control below), and the rest:
// the message data of the put (and of the get that reads it back).
//
// The connection: the entry function (INIT) with the ZKAXP and ZKAXC the
// queue manager passes and a ZKXEP stand-in that records the registered
// functions; then the before and after functions of ZKCONNX, ZKOPEN,
// ZKPUT, ZKPUT1, ZKGET (and its data-conversion point), ZKINQ, ZKCMIT,
// ZKCLOSE and ZKDISC, and TERM.
//
// Checks: after every exit call, nothing the exit must leave alone has
// changed (handles, option structures, descriptors, buffers, lengths,
// completion code and reason, the queue manager's ZKAXP and ZKAXC fields:
// zkqm's parameter check); the exit answers OK to every call; after TERM
// its chain area is released, no trace file is left open (".t"), no file
// descriptor and no command stream of the process is left open, and every
// file it wrote ends with a complete line.
#include <dirent.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "describe.h"
#include "fuzz/connection_driver.h"
#include "fuzz/fuzz_support.h"

extern "C" void wzEntry(PZKAXP, PZKAXC, PZKLONG, PZKLONG);
extern "C" void wzEntryDebug(PZKAXP, PZKAXC, PZKLONG, PZKLONG);

namespace {

constexpr size_t kControlSize = 12;

const char *const kFormats[] = {"ZKSTR   ", "ZKHRF2  ", "ZKHRF   ", "ZKDEAD  ", "ZKXMIT  ",
                                "ZKPCF   ", "ZKADMIN ", "ZKEVENT ", "ZKTRIG  ", "ZKHREF  ",
                                "ZKHDIST ", "ZKHMDE  ", "ZKHEPCF ", "        ", "UNKNOWN!"};
const char *const kQueues[] = {"APP.Q",     "APP.REQUEST",
                               "LOG.AUDIT", "SYSTEM.DEFAULT.LOCAL.QUEUE",
                               "NONE",      "QUEUE.NAME.OF.FORTY.EIGHT.CHARACTERS.EXACTLY.XX"};
const char *const kApplications[] = {"/opt/app/bin/payroll",
                                     "payroll",
                                     "profiler",
                                     "other1",
                                     "endzkm",
                                     "batchload",
                                     "my prog",
                                     "",
                                     "/a/b/c/d/e/f/g/h/i/j/k/lmn"};
const int32_t kCcsids[] = {0, 819, 1208, 500, 37, 1200, 932, 954, -1, 65535};
const int32_t kEncodings[] = {546, 273, 785, 0, 1, 2, -1, 0x7FFFFFFF};
const int32_t kReasons[] = {0, 2033, 2080, 2085, 2009, 2019, 2035, 2053, 2195, 9999};

template <typename T, size_t N> T Pick(const T (&table)[N], uint8_t byte) {
  return table[byte % N];
}

// The control block of the input.
struct Control {
  uint8_t flags;
  uint8_t format;
  uint8_t queue;
  uint8_t application;
  uint8_t ccsid;
  uint8_t encoding;
  uint8_t getBuffer; // 0 exact, 1 half (truncated), 2 larger, 3 none
  uint8_t selectors; // inquiry selectors: count and mix
  uint8_t versions;  // MD, PMO and GMO versions
  uint8_t outcome;   // completion codes and reasons the calls end with
  uint8_t hobj;
  uint8_t hconn;
};

enum : uint8_t {
  kAxpVersion1 = 0x01,
  kDebugEntry = 0x02,
  kTopic = 0x04,
  kPut1 = 0x08,
  kGetFails = 0x10,
  kDataConversion = 0x20,
  kPutFails = 0x40,
  kLevelFromInput = 0x80,
};

void SetBlankPadded(char *field, size_t width, const std::string &value) {
  memset(field, ' ', width);
  memcpy(field, value.data(), value.size() < width ? value.size() : width);
}

int CountOpenDescriptors() {
  int count = 0;
  if (DIR *dir = opendir("/proc/self/fd")) {
    while (readdir(dir) != nullptr) {
      count++;
    }
    closedir(dir);
  }
  return count;
}

// The ZKAXP exit data naming the scratch directory.
std::string ExitData() {
  return ScratchDirectory();
}

// One connection's calls; every structure lives here for the whole run.
struct Connection {
  ConnectionDriver &d;
  const Control &c;
  const std::string &message;

  char qmgrName[48];
  ZKCNO cno = ZKCNO_DEFAULT;
  PZKCNO pCno = &cno;
  ZKHCONN hconn = -1;
  PZKHCONN pHconn = &hconn;
  ZKOD od = ZKOD_DEFAULT;
  PZKOD pOd = &od;
  std::string topic;
  char resolvedTopic[64];
  ZKLONG openOptions = 0x2011; // input shared, output, fail if quiescing
  ZKHOBJ hobj = -1;
  PZKHOBJ pHobj = &hobj;
  ZKMD md = ZKMD_DEFAULT;
  PZKMD pMd = &md;
  ZKPMO pmo = ZKPMO_DEFAULT;
  PZKPMO pPmo = &pmo;
  ZKGMO gmo = ZKGMO_DEFAULT;
  PZKGMO pGmo = &gmo;
  ZKLONG compCode = ZKCC_OK;
  ZKLONG reason = 0;

  Connection(ConnectionDriver &driver, const Control &control, const std::string &data)
      : d(driver), c(control), message(data) {
    SetBlankPadded(qmgrName, sizeof qmgrName, "ZKQM1");
    SetBlankPadded(od.ObjectName, sizeof od.ObjectName, Pick(kQueues, c.queue));
    memset(resolvedTopic, 0, sizeof resolvedTopic);
    if (c.flags & kTopic) {
      od.Version = ZKOD_VERSION_4;
      od.ObjectType = 8; // topic
      SetBlankPadded(od.ObjectName, sizeof od.ObjectName, "");
      topic = message.substr(0, 300);
      od.ObjectString.VSPtr = topic.empty() ? nullptr : &topic[0];
      od.ObjectString.VSLength = (ZKLONG)topic.size();
      od.ResObjectString.VSPtr = resolvedTopic;
      od.ResObjectString.VSBufSize = (ZKLONG)sizeof resolvedTopic;
    }
    memcpy(md.Format, Pick(kFormats, c.format), 8);
    md.CodedCharSetId = Pick(kCcsids, c.ccsid);
    md.Encoding = Pick(kEncodings, c.encoding);
    md.Version = (c.versions & 1) ? ZKMD_VERSION_2 : ZKMD_VERSION_1;
    pmo.Version = 1 + (c.versions >> 1) % 3;
    gmo.Version = 1 + (c.versions >> 3) % 4;
  }

  // The outcome of a call: OK, or a warning or failure with a reason.
  void Outcome(bool fails, ZKLONG failReason) {
    if (fails) {
      compCode = ZKCC_FAILED;
      reason = failReason;
    } else if ((c.outcome & 3) == 1) {
      compCode = ZKCC_WARNING;
      reason = Pick(kReasons, c.outcome >> 2);
    } else {
      compCode = ZKCC_OK;
      reason = 0;
    }
  }

  void Codes(zkqm::ParamSnapshot &s) {
    s.addLong("CompCode", &compCode);
    s.addLong("Reason", &reason);
  }

  void Connect() {
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_CONNX_EXIT>(f)(axp, axc, qmgrName, &pCno, &pHconn, &compCode, &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addBytes("QMgrName", qmgrName, sizeof qmgrName);
      s.addPointer("ZKCNO address", (void *const *)&pCno);
      zkqm::describeCno(s, pCno);
      s.addPointer("Hconn address", (void *const *)&pHconn);
      s.addLong("Hconn", pHconn);
      Codes(s);
    };
    d.Call(ZKXR_BEFORE, ZKXF_CONNX, "ZKCONNX", invoke, describe);
    hconn = 1000 + c.hconn;
    Outcome(false, 0);
    d.Call(ZKXR_AFTER, ZKXF_CONNX, "ZKCONNX", invoke, describe);
  }

  void Open() {
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_OPEN_EXIT>(f)(axp, axc, &hconn, &pOd, &openOptions, &pHobj, &compCode,
                                         &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addLong("Hconn", &hconn);
      s.addPointer("ZKOD address", (void *const *)&pOd);
      zkqm::describeOd(s, pOd);
      s.addLong("Options", &openOptions);
      s.addPointer("Hobj address", (void *const *)&pHobj);
      s.addLong("Hobj", pHobj);
      Codes(s);
    };
    d.Call(ZKXR_BEFORE, ZKXF_OPEN, "ZKOPEN", invoke, describe);
    hobj = 100 + c.hobj;
    if (c.flags & kTopic) {
      size_t n = topic.size() < sizeof resolvedTopic ? topic.size() : sizeof resolvedTopic;
      memcpy(resolvedTopic, topic.data(), n);
      od.ResObjectString.VSLength = (ZKLONG)topic.size();
    }
    Outcome(false, 0);
    d.Call(ZKXR_AFTER, ZKXF_OPEN, "ZKOPEN", invoke, describe);
  }

  void Put(bool one) {
    ZKLONG length = (ZKLONG)message.size();
    // The message in a buffer of exactly its size.
    std::vector<uint8_t> data(message.begin(), message.end());
    PZKVOID pBuffer = data.empty() ? nullptr : data.data();
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      if (one) {
        reinterpret_cast<PZK_PUT1_EXIT>(f)(axp, axc, &hconn, &pOd, &pMd, &pPmo, &length, &pBuffer,
                                           &compCode, &reason);
      } else {
        reinterpret_cast<PZK_PUT_EXIT>(f)(axp, axc, &hconn, &hobj, &pMd, &pPmo, &length, &pBuffer,
                                          &compCode, &reason);
      }
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addLong("Hconn", &hconn);
      if (one) {
        s.addPointer("ZKOD address", (void *const *)&pOd);
        zkqm::describeOd(s, pOd);
      } else {
        s.addLong("Hobj", &hobj);
      }
      s.addPointer("ZKMD address", (void *const *)&pMd);
      zkqm::describeMd(s, pMd);
      s.addPointer("ZKPMO address", (void *const *)&pPmo);
      zkqm::describePmo(s, pPmo);
      s.addLong("BufferLength", &length);
      s.addPointer("Buffer address", &pBuffer);
      s.addBytes("Buffer", pBuffer, data.size());
      Codes(s);
    };
    const char *name = one ? "ZKPUT1" : "ZKPUT";
    ZKLONG function = one ? (ZKLONG)ZKXF_PUT1 : (ZKLONG)ZKXF_PUT;
    Outcome(false, 0);
    d.Call(ZKXR_BEFORE, function, name, invoke, describe);
    bool fails = (c.flags & kPutFails) != 0;
    if (!fails) {
      memcpy(md.MsgId, "ZKQM1 MSGID.00000000001", sizeof md.MsgId);
      SetBlankPadded(pmo.ResolvedQName, sizeof pmo.ResolvedQName, Pick(kQueues, c.queue));
    }
    Outcome(fails, Pick(kReasons, c.outcome >> 4));
    d.Call(ZKXR_AFTER, function, name, invoke, describe);
  }

  void Get() {
    ZKLONG messageLength = (ZKLONG)message.size();
    ZKLONG bufferLength;
    switch (c.getBuffer % 4) {
    case 0:
      bufferLength = messageLength;
      break;
    case 1:
      bufferLength = messageLength / 2;
      break;
    case 2:
      bufferLength = messageLength + 16;
      break;
    default:
      bufferLength = 0;
      break;
    }
    // The application's buffer: exactly BufferLength bytes.
    std::vector<uint8_t> buffer((size_t)bufferLength, 0xEE);
    PZKVOID pBuffer = buffer.empty() ? nullptr : buffer.data();
    ZKLONG dataLength = 0;
    PZKLONG pDataLength = &dataLength;
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_GET_EXIT>(f)(axp, axc, &hconn, &hobj, &pMd, &pGmo, &bufferLength,
                                        &pBuffer, &pDataLength, &compCode, &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addLong("Hconn", &hconn);
      s.addLong("Hobj", &hobj);
      s.addPointer("ZKMD address", (void *const *)&pMd);
      zkqm::describeMd(s, pMd);
      s.addPointer("ZKGMO address", (void *const *)&pGmo);
      zkqm::describeGmo(s, pGmo);
      s.addLong("BufferLength", &bufferLength);
      s.addPointer("Buffer address", &pBuffer);
      s.addBytes("Buffer", pBuffer, buffer.size());
      s.addPointer("DataLength address", (void *const *)&pDataLength);
      s.addLong("DataLength", pDataLength);
      Codes(s);
    };
    Outcome(false, 0);
    d.Call(ZKXR_BEFORE, ZKXF_GET, "ZKGET", invoke, describe);
    bool fails = (c.flags & kGetFails) != 0;
    bool truncated = bufferLength < messageLength;
    if (!fails) {
      size_t copied = (size_t)(truncated ? bufferLength : messageLength);
      if (copied > 0) {
        memcpy(buffer.data(), message.data(), copied);
      }
      dataLength = messageLength;
      SetBlankPadded(gmo.ResolvedQName, sizeof gmo.ResolvedQName, Pick(kQueues, c.queue));
      if (gmo.Version >= ZKGMO_VERSION_3) {
        gmo.ReturnedLength = truncated ? bufferLength : messageLength;
      }
      if (c.flags & kDataConversion) {
        d.Call(ZKXR_BEFORE, ZKXF_DATA_CONV_ON_GET, "ZKGET data conversion", invoke, describe);
      }
    }
    if (fails) {
      Outcome(true, 2033);
    } else if (truncated) {
      Outcome(true, 2080);
    } else {
      Outcome(false, 0);
    }
    d.Call(ZKXR_AFTER, ZKXF_GET, "ZKGET", invoke, describe);
  }

  void Inquire() {
    // Selectors from the message bytes: integer ones below 2000, character
    // ones from 2001 on, and counts that need not match them.
    ZKLONG selectorCount = c.selectors % 8;
    std::vector<ZKLONG> selectors((size_t)selectorCount);
    ZKLONG intCount = 0;
    ZKLONG charLength = 0;
    for (ZKLONG i = 0; i < selectorCount; i++) {
      uint8_t b = i < (ZKLONG)message.size() ? (uint8_t)message[(size_t)i] : (uint8_t)i;
      selectors[(size_t)i] = (b & 1) ? 2001 + b % 30 : 1 + b % 70;
      if (b & 1) {
        charLength += 48;
      } else {
        intCount++;
      }
    }
    if (c.selectors & 0x80) {
      intCount += 1; // one integer slot more than selected
    }
    std::vector<ZKLONG> intAttrs((size_t)intCount, 0);
    std::string charAttrs((size_t)charLength, ' ');
    PZKLONG pSelectors = selectors.empty() ? nullptr : selectors.data();
    PZKLONG pIntAttrs = intAttrs.empty() ? nullptr : intAttrs.data();
    PZKCHAR pCharAttrs = charAttrs.empty() ? nullptr : &charAttrs[0];
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_INQ_EXIT>(f)(axp, axc, &hconn, &hobj, &selectorCount, &pSelectors,
                                        &intCount, &pIntAttrs, &charLength, &pCharAttrs, &compCode,
                                        &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addLong("Hconn", &hconn);
      s.addLong("Hobj", &hobj);
      s.addLong("SelectorCount", &selectorCount);
      s.addPointer("Selectors address", (void *const *)&pSelectors);
      s.addBytes("Selectors", pSelectors, selectors.size() * sizeof(ZKLONG));
      s.addLong("IntAttrCount", &intCount);
      s.addPointer("IntAttrs address", (void *const *)&pIntAttrs);
      s.addBytes("IntAttrs", pIntAttrs, intAttrs.size() * sizeof(ZKLONG));
      s.addLong("CharAttrLength", &charLength);
      s.addPointer("CharAttrs address", (void *const *)&pCharAttrs);
      s.addBytes("CharAttrs", pCharAttrs, charAttrs.size());
      Codes(s);
    };
    Outcome(false, 0);
    d.Call(ZKXR_BEFORE, ZKXF_INQ, "ZKINQ", invoke, describe);
    for (size_t i = 0; i < intAttrs.size(); i++) {
      intAttrs[i] = (ZKLONG)(i * 1000 + 7);
    }
    for (size_t i = 0; i < charAttrs.size(); i++) {
      charAttrs[i] = i < message.size() ? message[i] : 'A';
    }
    Outcome((c.outcome & 3) == 2, Pick(kReasons, c.outcome >> 2));
    d.Call(ZKXR_AFTER, ZKXF_INQ, "ZKINQ", invoke, describe);
  }

  // ZKCMIT, ZKDISC: the calls with only the connection handle.
  void Commit() {
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_CMIT_EXIT>(f)(axp, axc, &hconn, &compCode, &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addLong("Hconn", &hconn);
      Codes(s);
    };
    Outcome(false, 0);
    d.Call(ZKXR_BEFORE, ZKXF_CMIT, "ZKCMIT", invoke, describe);
    d.Call(ZKXR_AFTER, ZKXF_CMIT, "ZKCMIT", invoke, describe);
  }

  void Close() {
    ZKLONG options = 0;
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_CLOSE_EXIT>(f)(axp, axc, &hconn, &pHobj, &options, &compCode, &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addLong("Hconn", &hconn);
      s.addPointer("Hobj address", (void *const *)&pHobj);
      s.addLong("Hobj", pHobj);
      s.addLong("Options", &options);
      Codes(s);
    };
    Outcome(false, 0);
    d.Call(ZKXR_BEFORE, ZKXF_CLOSE, "ZKCLOSE", invoke, describe);
    hobj = -1; // the call resets the handle
    d.Call(ZKXR_AFTER, ZKXF_CLOSE, "ZKCLOSE", invoke, describe);
  }

  void Disconnect() {
    auto invoke = [&](PZKFUNC f, PZKAXP axp, PZKAXC axc) {
      reinterpret_cast<PZK_DISC_EXIT>(f)(axp, axc, &pHconn, &compCode, &reason);
    };
    auto describe = [&](zkqm::ParamSnapshot &s) {
      s.addPointer("Hconn address", (void *const *)&pHconn);
      s.addLong("Hconn", pHconn);
      Codes(s);
    };
    Outcome(false, 0);
    d.Call(ZKXR_BEFORE, ZKXF_DISC, "ZKDISC", invoke, describe);
    hconn = -1;
    d.Call(ZKXR_AFTER, ZKXF_DISC, "ZKDISC", invoke, describe);
  }
};

// Every file the exit wrote ends with a whole line, and no trace file is
// left open (".t") once the connection has ended.
void CheckFiles(const std::string &directory) {
  for (const std::string &name : ListDirectory(directory)) {
    if (name == "wz.def") {
      continue;
    }
    FUZZ_CHECK(name.size() < 2 || name.compare(name.size() - 2, 2, ".t") != 0,
               "trace file %s still open after TERM", name.c_str());
    std::string text = ReadWholeFile(directory + name);
    FUZZ_CHECK(text.empty() || text.back() == '\n', "%s does not end with a line feed",
               name.c_str());
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, size_t size) {
  FuzzInput in(input, size);
  std::string parameters = in.Bytes(in.U16());
  Control c;
  memcpy(&c, in.Bytes(kControlSize).append(kControlSize, '\0').data(), sizeof c);
  static_assert(sizeof(Control) == kControlSize, "the control block is read whole");
  std::string message = in.Rest();

  const std::string &directory = ScratchDirectory();
  ClearDirectory(directory);
  WriteWholeFile(directory + "wz.def", parameters.data(), parameters.size());
  SetCommandOutput((c.flags & kLevelFromInput) ? message.substr(0, 1000) : std::string());
  int descriptors = CountOpenDescriptors();

  {
    ConnectionDriver driver(ExitData(), Pick(kApplications, c.application),
                            (c.flags & kAxpVersion1) ? ZKAXP_VERSION_1 : ZKAXP_VERSION_2);
    ZKLONG response = driver.Start((c.flags & kDebugEntry) ? wzEntryDebug : wzEntry);
    if (response == ZKXCC_OK) {
      Connection connection(driver, c, message);
      connection.Connect();
      connection.Open();
      connection.Put(false);
      if (c.flags & kPut1) {
        connection.Put(true);
      }
      connection.Get();
      connection.Inquire();
      connection.Commit();
      connection.Close();
      connection.Disconnect();
    }
    bool terminated = driver.Terminate();
    FUZZ_CHECK(driver.ChainArea() == nullptr,
               "ExitChainAreaPtr still set after the connection ended (TERM %s)",
               terminated ? "called" : "not registered");
  }

  if (getenv("WZ_FUZZ_VERBOSE") != nullptr) {
    for (const std::string &name : ListDirectory(directory)) {
      fprintf(stderr, "left: %s (%zu bytes)\n", name.c_str(),
              ReadWholeFile(directory + name).size());
    }
  }
  CheckFiles(directory);
  FUZZ_CHECK(OpenCommandStreams() == 0, "a command stream was left open");
  FUZZ_CHECK(CountOpenDescriptors() == descriptors, "file descriptors: %d before, %d after",
             descriptors, CountOpenDescriptors());
  TakeCommands();
  return 0;
}
