// Message data for the tests of the content display: the platform's
// headers filled field by field into a byte vector, in the host's byte order
// unless a test reverses them.
#pragma once

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "tests/harness_text.h"
#include "zk/zkhdr.h"

struct MessageBytes {
  std::vector<unsigned char> Bytes;

  template <typename T> void Add(const T &structure) {
    const unsigned char *at = (const unsigned char *)&structure;
    Bytes.insert(Bytes.end(), at, at + sizeof structure);
  }
  void AddText(const std::string &text) { Bytes.insert(Bytes.end(), text.begin(), text.end()); }
  void AddWord(int32_t word) { Add(word); }
  // A folder of a version-2 rules-and-formatting header: its length word
  // and its bytes.
  void AddFolder(const std::string &folder) {
    AddWord((int32_t)folder.size());
    AddText(folder);
  }
  int32_t Size() const { return (int32_t)Bytes.size(); }
};

inline void SetFormat(char *field, const char *format) {
  memcpy(field, format, 8);
}

inline ZKDLH DeadLetterHeader(const char *nextFormat, int32_t reason) {
  ZKDLH dlh = ZKDLH_DEFAULT;
  dlh.Reason = reason;
  SetBlankPadded(dlh.DestQName, sizeof dlh.DestQName, "ORDERS.IN");
  SetBlankPadded(dlh.DestQMgrName, sizeof dlh.DestQMgrName, "QM2");
  dlh.Encoding = ZKENC_NATIVE;
  dlh.CodedCharSetId = 1208;
  SetFormat(dlh.Format, nextFormat);
  dlh.PutApplType = ZKAT_UNIX;
  SetBlankPadded(dlh.PutApplName, sizeof dlh.PutApplName, "billing");
  SetBlankPadded(dlh.PutDate, sizeof dlh.PutDate, "20261124");
  SetBlankPadded(dlh.PutTime, sizeof dlh.PutTime, "10300000");
  return dlh;
}

inline ZKRFH2 RulesHeader2(const char *nextFormat, int32_t strucLength) {
  ZKRFH2 rfh = ZKRFH2_DEFAULT;
  rfh.StrucLength = strucLength;
  rfh.Encoding = ZKENC_NATIVE;
  rfh.CodedCharSetId = 1208;
  SetFormat(rfh.Format, nextFormat);
  rfh.NameValueCCSID = 1208;
  return rfh;
}
