// Command-format bodies for the tests: a header and parameters of every
// type, written field by field into a byte vector with their integers in
// the host's order (encoding 546) or reversed (encoding 273). Every
// parameter's StrucLength is its real length, its variable part padded to a
// multiple of 4; a test that wants a lying length sets the word afterwards.
#pragma once

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "zk/zkcfc.h"

class PcfBuilder {
public:
  // `reversed`: integers high byte first, as encoding 273 says.
  explicit PcfBuilder(bool reversed = false) : reversed_(reversed) {}

  int32_t Encoding() const { return reversed_ ? 273 : 546; }

  // The header; its ParameterCount is counted by the top-level parameters
  // added until Bytes() is called, unless set with Count().
  PcfBuilder &Header(int32_t type, int32_t command, int32_t version = 3, int32_t compCode = 0,
                     int32_t reason = 0, int32_t control = 1, int32_t msgSeqNumber = 1) {
    Word(type);
    Word(ZKCFH_STRUC_LENGTH);
    Word(version);
    Word(command);
    Word(msgSeqNumber);
    Word(control);
    Word(compCode);
    Word(reason);
    Word(0);
    return *this;
  }
  PcfBuilder &Count(int32_t count) {
    fixedCount_ = true;
    Set(32, count);
    return *this;
  }

  PcfBuilder &Int(int32_t parameter, int32_t value) {
    size_t at = Start(ZKCFT_INTEGER, parameter);
    Word(value);
    return End(at);
  }
  PcfBuilder &String(int32_t parameter, const std::string &text, int32_t ccsid = 1208) {
    size_t at = Start(ZKCFT_STRING, parameter);
    Word(ccsid);
    Word((int32_t)text.size());
    Text(text);
    return End(at);
  }
  PcfBuilder &IntList(int32_t parameter, const std::vector<int32_t> &values) {
    size_t at = Start(ZKCFT_INTEGER_LIST, parameter);
    Word((int32_t)values.size());
    for (int32_t v : values) {
      Word(v);
    }
    return End(at);
  }
  PcfBuilder &Int64(int32_t parameter, int64_t value) {
    size_t at = Start(ZKCFT_INTEGER64, parameter);
    Word(0); // Reserved
    Long(value);
    return End(at);
  }
  PcfBuilder &Int64List(int32_t parameter, const std::vector<int64_t> &values) {
    size_t at = Start(ZKCFT_INTEGER64_LIST, parameter);
    Word((int32_t)values.size());
    for (int64_t v : values) {
      Long(v);
    }
    return End(at);
  }
  // Strings blank-padded to `length` each.
  PcfBuilder &StringList(int32_t parameter, const std::vector<std::string> &texts, int32_t length,
                         int32_t ccsid = 1208) {
    size_t at = Start(ZKCFT_STRING_LIST, parameter);
    Word(ccsid);
    Word((int32_t)texts.size());
    Word(length);
    for (const std::string &t : texts) {
      std::string padded = t.substr(0, (size_t)length);
      padded.resize((size_t)length, ' ');
      Text(padded);
    }
    return End(at);
  }
  PcfBuilder &ByteString(int32_t parameter, const std::string &bytes) {
    size_t at = Start(ZKCFT_BYTE_STRING, parameter);
    Word((int32_t)bytes.size());
    Text(bytes);
    return End(at);
  }
  PcfBuilder &IntFilter(int32_t parameter, int32_t op, int32_t value) {
    size_t at = Start(ZKCFT_INTEGER_FILTER, parameter);
    Word(op);
    Word(value);
    return End(at);
  }
  PcfBuilder &StringFilter(int32_t parameter, int32_t op, const std::string &text,
                           int32_t ccsid = 1208) {
    size_t at = Start(ZKCFT_STRING_FILTER, parameter);
    Word(op);
    Word(ccsid);
    Word((int32_t)text.size());
    Text(text);
    return End(at);
  }
  PcfBuilder &ByteStringFilter(int32_t parameter, int32_t op, const std::string &bytes) {
    size_t at = Start(ZKCFT_BYTE_STRING_FILTER, parameter);
    Word(op);
    Word((int32_t)bytes.size());
    Text(bytes);
    return End(at);
  }
  // A group of `members` parameters: the parameters added next, until
  // EndGroup(), are its members (they do not count at the outer level).
  PcfBuilder &Group(int32_t parameter, int32_t members) {
    size_t at = Start(ZKCFT_GROUP, parameter);
    Word(members);
    End(at);
    depth_++;
    return *this;
  }
  PcfBuilder &EndGroup() {
    depth_--;
    return *this;
  }
  // A parameter of any type with the bytes given after its three words.
  PcfBuilder &Raw(int32_t type, int32_t parameter, const std::string &bytes) {
    size_t at = Start(type, parameter);
    Text(bytes);
    return End(at);
  }

  // The offset of the last parameter added, to change its words afterwards.
  size_t Last() const { return last_; }
  // Overwrites the 32-bit word at `at` (in the body's byte order).
  PcfBuilder &Set(size_t at, int32_t value) {
    unsigned char b[4];
    Encode(value, b);
    memcpy(bytes_.data() + at, b, 4);
    return *this;
  }

  std::vector<unsigned char> Bytes() {
    if (!fixedCount_ && bytes_.size() >= ZKCFH_STRUC_LENGTH) {
      Set(32, topLevel_);
    }
    return bytes_;
  }

private:
  void Encode(int32_t value, unsigned char *b) const {
    memcpy(b, &value, 4);
    if (reversed_) {
      unsigned char t = b[0];
      b[0] = b[3];
      b[3] = t;
      t = b[1];
      b[1] = b[2];
      b[2] = t;
    }
  }
  void Word(int32_t value) {
    unsigned char b[4];
    Encode(value, b);
    bytes_.insert(bytes_.end(), b, b + 4);
  }
  void Long(int64_t value) {
    unsigned char b[8];
    memcpy(b, &value, 8);
    if (reversed_) {
      for (int i = 0; i < 4; i++) {
        unsigned char t = b[i];
        b[i] = b[7 - i];
        b[7 - i] = t;
      }
    }
    bytes_.insert(bytes_.end(), b, b + 8);
  }
  void Text(const std::string &text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  size_t Start(int32_t type, int32_t parameter) {
    if (depth_ == 0) {
      topLevel_++;
    }
    size_t at = bytes_.size();
    Word(type);
    Word(0);
    Word(parameter);
    last_ = at;
    return at;
  }
  PcfBuilder &End(size_t at) {
    while (bytes_.size() % 4 != 0) {
      bytes_.push_back(0);
    }
    Set(at + 4, (int32_t)(bytes_.size() - at));
    return *this;
  }

  bool reversed_;
  bool fixedCount_ = false;
  int32_t depth_ = 0;
  int32_t topLevel_ = 0;
  size_t last_ = 0;
  std::vector<unsigned char> bytes_;
};
