// Fuzz target "attribute_selectors": the integer and character attributes
// of ZKINQ and ZKSET with arbitrary selector counts, selectors, integer
// values and character areas carved from the input.
//
// Input: for each of the three arrays a count form and its contents (see
// ReadArrays below); the character area is the rest of the input. Each
// array is handed over in a block of exactly its size, and its count never
// promises more than the block holds (that is the caller's part); counts may
// be 0, negative or less than the array. Checks, against a walk worked out
// here independently with a plain scan of the tables:
//  - the text is whole lines starting with "|", no control characters;
//  - integer attributes: one field line per selector from 1 to 2000 among
//    the first `count` selectors, named by its row (or "Unknown attribute",
//    followed by the unknown banner), with a value while integers remain and
//    without one after; a plain attribute shows its integer as "%d";
//  - character attributes: one field line per value, named by its row, the
//    name list as many as the name count says as far as the area reaches,
//    an unknown selector's banner ending the walk; a value never longer
//    than its slice of the area;
//  - a count of 0 or less writes nothing.
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "exit/control_block.h"
#include "format/attribute_selectors.h"
#include "fuzz/fuzz_support.h"
#include "zk/zk.h"

namespace {

CaptureBlock &Capture() {
  static CaptureBlock *capture = new CaptureBlock(8192);
  return *capture;
}

// The selectors worth trying: every row of both tables, and a few that have
// none.
std::vector<int32_t> InterestingSelectors() {
  std::vector<int32_t> selectors;
  for (const ZkAttrIntEntry *row = Constant_ZkAttrsZkia; row->Selector != CONSTANT_TABLE_END;
       row++) {
    selectors.push_back(row->Selector);
  }
  for (const ZkAttrCharEntry *row = Constant_ZkAttrsZkca; row->Selector != CONSTANT_TABLE_END;
       row++) {
    selectors.push_back(row->Selector);
  }
  for (int32_t s : {0, -1, 67, 1999, 2043, 2125, 3011, 7001, INT32_MIN, INT32_MAX}) {
    selectors.push_back(s);
  }
  return selectors;
}

// An array of 32-bit values and the count passed with it.
struct Array {
  std::unique_ptr<int32_t[]> values; // exactly `size` values
  int32_t size;
  int32_t count;
};

// A count form (a byte: the array's size, less than it, 0 or negative), the
// size (a byte), then each value: a byte choosing an interesting value or 4
// bytes of its own.
Array ReadArray(FuzzInput &in, const std::vector<int32_t> &interesting, bool selectors) {
  uint8_t form = in.Byte();
  Array a;
  a.size = in.Byte() % 64;
  a.values.reset(new int32_t[a.size]);
  for (int32_t i = 0; i < a.size; i++) {
    uint16_t pick = in.U16();
    if (pick < 0xF000) {
      a.values[i] = selectors ? interesting[pick % interesting.size()] : (int32_t)(pick % 8) - 1;
    } else {
      a.values[i] = (int32_t)in.U32();
    }
  }
  switch (form & 3) {
  case 0:
    a.count = a.size;
    break;
  case 1:
    a.count = a.size > 0 ? (int32_t)(form >> 2) % (a.size + 1) : 0;
    break;
  case 2:
    a.count = 0;
    break;
  default:
    a.count = (int32_t)(0x80000000u | in.U32());
  }
  return a;
}

const ZkAttrIntEntry *ScanInt(int32_t selector) {
  for (const ZkAttrIntEntry *row = Constant_ZkAttrsZkia; row->Selector != CONSTANT_TABLE_END;
       row++) {
    if (row->Selector == selector) {
      return row;
    }
  }
  return nullptr;
}

const ZkAttrCharEntry *ScanChar(int32_t selector) {
  for (const ZkAttrCharEntry *row = Constant_ZkAttrsZkca; row->Selector != CONSTANT_TABLE_END;
       row++) {
    if (row->Selector == selector) {
      return row;
    }
  }
  return nullptr;
}

const char kBannerStars[] = "|**********************************";

// "|> ", the name left-justified in 25 columns, ": ".
std::string FieldNamePart(const std::string &name) {
  std::string part = "|> " + name;
  if (name.size() < 25) {
    part.append(25 - name.size(), ' ');
  }
  return part + ": ";
}

void CheckWholeLines(const std::string &text) {
  if (text.empty()) {
    return;
  }
  FUZZ_CHECK(text.back() == '\n', "text does not end in a line feed");
  bool lineStart = true;
  for (unsigned char c : text) {
    FUZZ_CHECK(!lineStart || c == '|', "a line starts with 0x%02X", c);
    FUZZ_CHECK(c == '\n' || (c >= ' ' && c != 0x7F), "control byte 0x%02X", c);
    lineStart = c == '\n';
  }
}

// Skips the three lines of an unknown banner at lines[at], checking them.
size_t SkipBanner(const std::vector<std::string> &lines, size_t at, uint32_t selector) {
  char middle[80];
  snprintf(middle, sizeof middle, "|* Unknown : %s 0x%08X", ZK_ATTR_UNKNOWN_SELECTOR_LABEL,
           selector);
  FUZZ_CHECK(at + 2 < lines.size() && lines[at] == kBannerStars && lines[at + 1] == middle &&
                 lines[at + 2] == kBannerStars,
             "no banner for selector %d", (int)selector);
  return at + 3;
}

// Skips the unknown-bits banner that a flag display writes, under the row's
// name, after its line.
size_t SkipFlagBanner(const std::vector<std::string> &lines, size_t at, const char *name) {
  if (at < lines.size() && lines[at] == kBannerStars) {
    std::string middle = std::string("|* Unknown : ") + name + " 0x";
    FUZZ_CHECK(at + 2 < lines.size() && lines[at + 1].compare(0, middle.size(), middle) == 0 &&
                   lines[at + 2] == kBannerStars,
               "a banner that is not %s's", name);
    return at + 3;
  }
  return at;
}

void CheckInts(const std::string &text, const Array &sel, const Array &ints) {
  std::vector<std::string> lines = SplitLines(text);
  int32_t values = ints.count > 0 ? ints.count : 0;
  int32_t used = 0;
  size_t at = 0;
  for (int32_t i = 0; i < sel.count; i++) {
    int32_t s = sel.values[i];
    if (s < 1 || s > 2000) {
      continue;
    }
    const ZkAttrIntEntry *row = ScanInt(s);
    std::string name = FieldNamePart(row != nullptr ? row->Name : "Unknown attribute");
    FUZZ_CHECK(at < lines.size(), "no line for selector %d", s);
    const std::string &line = lines[at++];
    FUZZ_CHECK(line.compare(0, name.size(), name) == 0, "[%s] is not selector %d", line.c_str(), s);
    std::string value = line.substr(name.size());
    if (used >= values) {
      FUZZ_CHECK(value.empty(), "a value past the integers: [%s]", line.c_str());
    } else {
      int32_t v = ints.values[used++];
      FUZZ_CHECK(!value.empty(), "no value for selector %d", s);
      if (row != nullptr && row->Values == nullptr && s != ZKIA_CODED_CHAR_SET_ID) {
        FUZZ_CHECK(value == std::to_string(v), "[%s] is not %d", line.c_str(), v);
      }
      if (row != nullptr && row->Values != nullptr) {
        at = SkipFlagBanner(lines, at, row->Name);
      }
    }
    if (row == nullptr) {
      at = SkipBanner(lines, at, (uint32_t)s);
    }
  }
  FUZZ_CHECK(at == lines.size(), "%zu lines more than the selectors give", lines.size() - at);
}

int32_t NameCount(const Array &sel, const Array &ints) {
  int32_t index = 0;
  for (int32_t i = 0; i < sel.count; i++) {
    int32_t s = sel.values[i];
    if (s < 1 || s > 2000) {
      continue;
    }
    if (s == ZKIA_NAME_COUNT) {
      return index < ints.count ? ints.values[index] : 0;
    }
    index++;
  }
  return 0;
}

void CheckChars(const std::string &text, const Array &sel, const Array &ints, int32_t areaLength) {
  std::vector<std::string> lines = SplitLines(text);
  int32_t length = areaLength > 0 ? areaLength : 0;
  int32_t used = 0;
  size_t at = 0;
  for (int32_t i = 0; i < sel.count; i++) {
    int32_t s = sel.values[i];
    if (s < 2001 || s > 2124) {
      continue;
    }
    const ZkAttrCharEntry *row = ScanChar(s);
    if (row == nullptr) {
      at = SkipBanner(lines, at, (uint32_t)s);
      break;
    }
    std::string name = FieldNamePart(row->Name);
    int32_t names = s == ZKCA_NAMES ? NameCount(sel, ints) : 1;
    for (int32_t n = 0; n < names; n++) {
      FUZZ_CHECK(at < lines.size(), "no line for selector %d", s);
      const std::string &line = lines[at++];
      FUZZ_CHECK(line.compare(0, name.size(), name) == 0, "[%s] is not selector %d", line.c_str(),
                 s);
      int32_t left = length - used;
      if (left <= 0) {
        FUZZ_CHECK(line.size() == name.size(), "a value past the area: [%s]", line.c_str());
        break;
      }
      int32_t slice = row->Length < left ? row->Length : left;
      FUZZ_CHECK((int32_t)(line.size() - name.size()) <= slice, "[%s] longer than %d bytes",
                 line.c_str(), slice);
      used += slice;
    }
  }
  FUZZ_CHECK(at == lines.size(), "%zu lines more than the selectors give", lines.size() - at);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, size_t inputSize) {
  static const std::vector<int32_t> interesting = InterestingSelectors();
  FuzzInput in(input, inputSize);
  Array sel = ReadArray(in, interesting, true);
  Array ints = ReadArray(in, interesting, false);
  uint8_t areaForm = in.Byte();
  std::string rest = in.Rest();
  std::unique_ptr<char[]> area(new char[rest.size()]);
  memcpy(area.get(), rest.data(), rest.size());
  int32_t areaLength = (areaForm & 3) == 3 ? -(int32_t)areaForm : (int32_t)rest.size();

  CaptureBlock &capture = Capture();
  ExitControlBlock *cb = capture.cb();
  capture.Take();
  ShowParsedZkinqZksetOptionsInt(cb, 0, sel.count, sel.values.get(), ints.count, ints.values.get());
  std::string intText = capture.Take();
  ShowParsedZkinqZksetOptionsChar(cb, 0, sel.count, sel.values.get(), ints.count, ints.values.get(),
                                  areaLength, area.get());
  std::string charText = capture.Take();

  CheckWholeLines(intText);
  CheckWholeLines(charText);
  if (sel.count <= 0) {
    FUZZ_CHECK(intText.empty() && charText.empty(), "text for selector count %d", sel.count);
  }
  CheckInts(intText, sel, ints);
  CheckChars(charText, sel, ints, areaLength);
  FUZZ_CHECK(cb->FatalError == 0);
  return 0;
}
