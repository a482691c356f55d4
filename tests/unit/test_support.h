// Helpers shared by the unit tests: a recording ZKXEP, temporary
// directories and connection parameter structures.
#pragma once

#include <string>
#include <vector>

#include "zk/zkxc.h"

struct RecordedRegistration {
  ZKLONG ExitReason;
  ZKLONG Function;
  PZKFUNC EntryPoint;
  bool HadOptions;
  std::string ExitProperty;
};

// What the test ZKXEP has seen and how it answers.
struct TestXep {
  std::vector<RecordedRegistration> Calls;
  int FailAt = 0;          // 1-based call number that fails; 0: none
  ZKLONG FailReason = 0;   // reason code of the failing call(s)
  ZKLONG FailFunction = 0; // every registration of this function fails; 0: none
  void Reset() { *this = TestXep(); }
};
extern TestXep gTestXep;

// A fresh empty directory under /tmp, removed with its files by the destructor.
class TempDir {
public:
  TempDir();
  ~TempDir();
  const std::string &Path() const { return path_; }
  std::string File(const std::string &name) const { return path_ + "/" + name; }
  void Write(const std::string &name, const std::string &content) const;
  std::string Read(const std::string &name) const;
  std::vector<std::string> List() const;

private:
  std::string path_;
};

// Connection structures as the queue manager fills them.
struct TestConnection {
  ZKAXP Axp;
  ZKAXC Axc;
  ZKLONG CompCode = 0;
  ZKLONG Reason = 0;
  TestConnection(const std::string &exitData, const std::string &applName, ZKLONG axpVersion = 2);
};

// Fills a blank-padded fixed-width field.
void SetFixedField(char *field, size_t width, const std::string &value);
