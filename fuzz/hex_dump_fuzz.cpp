// Fuzz target "hex_dump": the hex-and-character dump and the field
// primitives on arbitrary bytes, code pages and settings.
//
// The input begins with a header of settings (see Header below), then a
// title or field name, then the bytes to show. Every operation runs on a
// capture block and its trace text is checked:
//  - the text is made of whole lines: it ends in '\n' and holds no other
//    control character and no NUL;
//  - a dump has the title line, then for every 16 bytes a line with the
//    offset and exactly the bytes in hex, or a "same as above" line for a
//    run of repeated lines; the lines cover the dumped bytes in order,
//    nothing more; the character column holds one character per byte
//    shown, each the byte itself or ".", exactly as the code page's
//    patterns (CcsidRangeTable) make them;
//  - a single-line byte field, a string field and a text run are exactly
//    what their descriptions in field_primitives.h say, and every field line
//    starts with "|> ";
//  - numbers formatted by hand agree with printf, and the byte order helpers
//    undo themselves.
#include <byteswap.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "fuzz/fuzz_support.h"
#include "output/record_writers.h"
#include "text/codepage.h"

namespace {

// Code pages worth trying often: every one with patterns of its own, the
// default, and odd values.
const int32_t kCcsids[] = {0,     819,  437,  850, 932,  942,  943,   954,  5050, 33722,
                           17338, 949,  1363, 970, 1383, 1381, 1386,  5488, 950,  1370,
                           964,   1208, 1,    -1,  37,   500,  65535, 1200, 13488};

constexpr int32_t kBufferSize = 8192; // small, so that dumps also go through the file

CaptureBlock &Capture() {
  static CaptureBlock *capture = new CaptureBlock(kBufferSize);
  return *capture;
}

// -- The character column as the code page's patterns make it ---------------

struct Pattern {
  CodeRangeBytes range[CODE_RANGE_POSITIONS];
  int32_t length;
};

Pattern PatternOf(const CcsidRangeEntry *row) {
  Pattern p;
  memcpy(p.range, row->range, sizeof p.range);
  p.length = 0;
  while (p.length < CODE_RANGE_POSITIONS && p.range[p.length].high != 0) {
    p.length++;
  }
  return p;
}

std::vector<Pattern> PatternsOf(int32_t ccsid) {
  std::vector<Pattern> patterns;
  const CcsidRangeEntry *row = CcsidRangeTable;
  for (; row->ccsid != 0; row++) {
    if (row->ccsid == ccsid && (int32_t)patterns.size() < CODE_RANGE_MAX_PATTERNS) {
      patterns.push_back(PatternOf(row));
    }
  }
  if (patterns.empty()) { // the closing row: the pattern of every other code page
    patterns.push_back(PatternOf(row));
  }
  return patterns;
}

// Walks bytes through the patterns: the first pattern that allows every
// pending byte and the new one decides; a byte no pattern takes makes the
// pending bytes and itself dots.
class CharacterWalk {
public:
  explicit CharacterWalk(int32_t ccsid) : patterns_(PatternsOf(ccsid)) {}
  void Feed(uint8_t b) {
    for (const Pattern &p : patterns_) {
      if (pending_.size() >= (size_t)p.length) {
        continue;
      }
      bool fits = true;
      for (size_t k = 0; k <= pending_.size() && fits; k++) {
        uint8_t byte = k < pending_.size() ? pending_[k] : b;
        fits = byte >= p.range[k].low && byte <= p.range[k].high;
      }
      if (!fits) {
        continue;
      }
      pending_.push_back(b);
      if ((int32_t)pending_.size() == p.length) {
        out_.append(pending_.begin(), pending_.end());
        pending_.clear();
      }
      return;
    }
    out_.append(pending_.size() + 1, '.');
    pending_.clear();
  }
  // The pending bytes are no character after all.
  void Break() {
    out_.append(pending_.size(), '.');
    pending_.clear();
  }
  bool Pending() const { return !pending_.empty(); }
  std::string Take() {
    std::string text = out_;
    out_.clear();
    return text;
  }

private:
  std::vector<Pattern> patterns_;
  std::string pending_;
  std::string out_;
};

// -- Line checks --------------------------------------------------------------

std::vector<std::string> LinesOf(const std::string &text, const char *what) {
  FUZZ_CHECK(!text.empty() && text.back() == '\n', "%s: does not end in a line feed: [%s]", what,
             text.c_str());
  for (unsigned char c : text) {
    FUZZ_CHECK(c >= 0x20 || c == '\n', "%s: control byte 0x%02X in the text", what, c);
  }
  return SplitLines(text);
}

void CheckFieldLines(const std::string &text, const char *what) {
  for (const std::string &line : LinesOf(text, what)) {
    FUZZ_CHECK(line.compare(0, 3, "|> ") == 0, "%s: line without \"|> \": [%s]", what,
               line.c_str());
  }
}

std::string FieldNamePart(const std::string &name) {
  if (name.empty()) {
    return "";
  }
  std::string part = "|> " + name;
  if (name.size() < FIELD_NAME_WIDTH) {
    part.append(FIELD_NAME_WIDTH - name.size(), ' ');
  }
  return part + ": ";
}

std::string SevenBit(const uint8_t *bytes, size_t length) {
  std::string text;
  for (size_t i = 0; i < length && bytes[i] != 0; i++) {
    text.push_back(bytes[i] < 0x20 || bytes[i] >= 0x7F ? '.' : (char)bytes[i]);
  }
  return text;
}

uint32_t HexValue(const std::string &text, size_t at) {
  uint32_t value = 0;
  for (size_t i = at; i < at + 8; i++) {
    char c = i < text.size() ? text[i] : 'x';
    FUZZ_CHECK((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'), "not an offset: [%s]",
               text.c_str());
    value = value * 16 + (uint32_t)(c <= '9' ? c - '0' : c - 'A' + 10);
  }
  return value;
}

std::string HexPart(const uint8_t *bytes, int32_t count) {
  std::string part;
  char pair[3];
  for (int32_t i = 0; i < 16; i++) {
    if (i < count) {
      snprintf(pair, sizeof pair, "%02X", bytes[i]);
      part += pair;
    } else {
      part += "  ";
    }
    if ((i & 3) == 3) {
      part += ' ';
    }
  }
  return part;
}

struct DumpSettings {
  bool prefixed;
  bool characters;
  bool collapse;
  int32_t ccsid;
};

// Checks the dump lines from lines[first] on; returns the index after them.
size_t CheckDumpLines(const std::vector<std::string> &lines, size_t first, const uint8_t *bytes,
                      int32_t length, const DumpSettings &s) {
  const std::string prefix = s.prefixed ? "|>     " : "";
  CharacterWalk walk(s.ccsid);
  int32_t offset = 0;
  size_t i = first;
  bool skipped = false;
  while (offset < length) {
    FUZZ_CHECK(i < lines.size(), "the dump ends at offset %d of %d", offset, length);
    const std::string &line = lines[i++];
    FUZZ_CHECK(line.compare(0, prefix.size(), prefix) == 0, "no prefix: [%s]", line.c_str());
    size_t at = prefix.size();
    FUZZ_CHECK(HexValue(line, at) == (uint32_t)offset, "offset %d expected: [%s]", offset,
               line.c_str());
    FUZZ_CHECK(line.size() > at + 8, "short line [%s]", line.c_str());
    if (line[at + 8] == '-') {
      FUZZ_CHECK(s.collapse && !skipped, "unexpected run: [%s]", line.c_str());
      uint32_t last = HexValue(line, at + 9);
      FUZZ_CHECK(line.substr(at + 17) == " same as above", "[%s]", line.c_str());
      FUZZ_CHECK(last >= (uint32_t)offset + 15 && (last + 1) % 16 == 0 &&
                     last + 1 < (uint32_t)length,
                 "run to %u of %d: [%s]", last, length, line.c_str());
      for (uint32_t o = (uint32_t)offset; o < last; o += 16) {
        FUZZ_CHECK(o >= 16 && memcmp(bytes + o, bytes + o - 16, 16) == 0,
                   "line at %u left out but not the same as above", o);
      }
      offset = (int32_t)last + 1;
      walk.Break();
      skipped = true;
      continue;
    }
    skipped = false;
    FUZZ_CHECK(line[at + 8] == ':', "[%s]", line.c_str());
    int32_t count = length - offset < 16 ? length - offset : 16;
    bool lastLine = offset + count == length;
    if (s.collapse && offset > 0 && !lastLine) {
      FUZZ_CHECK(memcmp(bytes + offset, bytes + offset - 16, 16) != 0,
                 "a repeated line at %d was not left out", offset);
    }
    std::string hex = HexPart(bytes + offset, count);
    FUZZ_CHECK(line.compare(at + 9, hex.size(), hex) == 0, "hex of offset %d: [%s] expected [%s]",
               offset, line.c_str(), hex.c_str());
    size_t rest = at + 9 + hex.size();
    if (!s.characters) {
      FUZZ_CHECK(line.size() == rest, "text after the hex part: [%s]", line.c_str());
    } else {
      for (int32_t k = 0; k < count; k++) {
        walk.Feed(bytes[offset + k]);
      }
      if (lastLine) {
        walk.Break();
      }
      std::string column = walk.Take();
      char close = walk.Pending() ? '>' : ']';
      std::string expected = " [" + column + close;
      FUZZ_CHECK(line.substr(rest) == expected, "character column of offset %d: [%s] expected [%s]",
                 offset, line.c_str(), expected.c_str());
    }
    offset += count;
  }
  return i;
}

std::string Title(const std::string &title, int32_t shown, const void *address, bool noAddress) {
  char text[2048];
  if (noAddress) {
    snprintf(text, sizeof text, "%s:(%u=x%X bytes)", title.c_str(), (unsigned)shown,
             (unsigned)shown);
  } else {
    snprintf(text, sizeof text, "%s:(%u=x%X bytes, Address 0x%08X)", title.c_str(), (unsigned)shown,
             (unsigned)shown, (unsigned)(uintptr_t)address);
  }
  return text;
}

// -- The operations -----------------------------------------------------------

struct Header {
  uint8_t flags;
  int32_t ccsid;
  int32_t lineLength;  // MaxParsedOutputLineLength, 40..999
  int32_t charvLimit;  // ShowMaxLenCharv
  int32_t stringLimit; // ShowMaxLenCharvString
  int32_t indentation;
  int32_t shownLength;
  uint8_t charvForm;
  uint32_t charvLength;
  uint64_t number;
  int32_t width;
  std::string name; // title or field name: printable, no line feed
};

Header ReadHeader(FuzzInput &in) {
  Header h;
  h.flags = in.Byte();
  uint8_t pick = in.Byte();
  uint32_t raw = in.U32();
  h.ccsid = (pick & 0x80) ? (int32_t)raw : kCcsids[pick % (sizeof kCcsids / sizeof kCcsids[0])];
  h.lineLength = 40 + in.U16() % 960;
  h.charvLimit = (int16_t)in.U16();
  h.stringLimit = (int16_t)in.U16();
  h.indentation = (int8_t)in.Byte();
  h.shownLength = (int32_t)in.U32();
  h.charvForm = in.Byte();
  h.charvLength = in.U16();
  h.number = in.U32();
  h.number |= (uint64_t)in.U32() << 32;
  h.width = in.Byte() % 48;
  std::string raw_name = in.Bytes(in.U16() % 700);
  for (char c : raw_name) {
    h.name.push_back((char)(0x20 + (uint8_t)c % 95));
  }
  return h;
}

void CheckPlainDump(CaptureBlock &capture, const Header &h, const uint8_t *data, int32_t size) {
  ExitControlBlock *cb = capture.cb();
  bool prefixed = (h.flags & 0x02) != 0;
  PutHexDataLen(cb, h.name.c_str(), data, size, prefixed ? HEX_MODE_PREFIXED : HEX_MODE_PLAIN,
                h.shownLength);
  std::string text = capture.Take();
  bool titled = !h.name.empty() && !prefixed;
  if (!titled && size == 0) {
    FUZZ_CHECK(text.empty(), "a dump of nothing wrote [%s]", text.c_str());
    return;
  }
  std::vector<std::string> lines = LinesOf(text, "dump");
  size_t first = 0;
  if (titled) {
    std::string title = Title(h.name, h.shownLength, data, cb->File.NoAddress != 0);
    // A title too long for the line is cut, but its line is still a line.
    FUZZ_CHECK(lines[0] == title ||
                   (title.size() > 400 && title.compare(0, lines[0].size(), lines[0]) == 0),
               "title [%s] expected [%s]", lines[0].c_str(), title.c_str());
    first = 1;
  }
  DumpSettings s = {prefixed, cb->Settings.ShowHexCharImage != 0 || prefixed,
                    cb->Settings.Spare == 0, h.ccsid};
  size_t end = CheckDumpLines(lines, first, data, size, s);
  FUZZ_CHECK(end == lines.size(), "%zu lines after the dump", lines.size() - end);
}

void CheckSingleLine(CaptureBlock &capture, const Header &h, const uint8_t *data, int32_t size) {
  bool nullCheck = (h.flags & 0x10) != 0;
  bool hex = (h.flags & 0x20) != 0;
  bool endOfLine = (h.flags & 0x40) != 0;
  ShowParsedHexValueSingleLine(capture.cb(), h.name.c_str(), data, size, nullCheck, hex, endOfLine);
  std::string text = capture.Take();
  std::string expected = FieldNamePart(h.name);
  bool allZero = true;
  for (int32_t i = 0; i < size; i++) {
    allZero = allZero && data[i] == 0;
  }
  if (nullCheck && allZero) {
    expected += "(null)\n";
  } else {
    if (hex) {
      for (int32_t i = 0; i < size; i++) {
        char pair[3];
        snprintf(pair, sizeof pair, "%02X", data[i]);
        expected += (i > 0 && (i & 3) == 0) ? " " : "";
        expected += pair;
      }
      expected += "  ";
    }
    CharacterWalk walk(h.ccsid);
    for (int32_t i = 0; i < size; i++) {
      walk.Feed(data[i]);
    }
    walk.Break();
    expected += "[" + walk.Take() + "]";
    if (endOfLine) {
      expected += "\n";
    }
  }
  FUZZ_CHECK(text == expected, "single line [%s] expected [%s]", text.c_str(), expected.c_str());
}

void CheckMultipleLines(CaptureBlock &capture, const Header &h, const uint8_t *data, int32_t size) {
  bool nullCheck = (h.flags & 0x10) != 0;
  ShowParsedHexValueMultipleLines(capture.cb(), h.name.c_str(), data, size, nullCheck);
  std::string text = capture.Take();
  std::string head = FieldNamePart(h.name);
  bool allZero = true;
  for (int32_t i = 0; i < size; i++) {
    allZero = allZero && data[i] == 0;
  }
  if (nullCheck && allZero) {
    FUZZ_CHECK(text == head + "(null)\n", "[%s]", text.c_str());
    return;
  }
  FUZZ_CHECK(text.compare(0, head.size() + 1, head + "\n") == 0, "[%s]", text.c_str());
  std::string dump = text.substr(head.size() + 1);
  if (size == 0) {
    FUZZ_CHECK(dump.empty(), "[%s]", text.c_str());
    return;
  }
  std::vector<std::string> lines = LinesOf(dump, "field dump");
  DumpSettings s = {true, true, capture.cb()->Settings.Spare == 0, h.ccsid};
  FUZZ_CHECK(CheckDumpLines(lines, 0, data, size, s) == lines.size(), "lines after the dump");
}

void CheckStringFixed(CaptureBlock &capture, const Header &h, const uint8_t *data, int32_t size) {
  ShowFieldValueStringFixed(capture.cb(), h.name.c_str(), data, size);
  std::string text = capture.Take();
  int32_t length = size;
  while (length > 0 &&
         (data[length - 1] == '\n' || data[length - 1] == '\r' || data[length - 1] == ' ')) {
    length--;
  }
  std::string expected = FieldNamePart(h.name);
  for (int32_t start = 0; start < length; start += FIELD_STRING_PIECE) {
    int32_t n = length - start < FIELD_STRING_PIECE ? length - start : FIELD_STRING_PIECE;
    expected += SevenBit(data + start, (size_t)n);
  }
  expected += "\n";
  FUZZ_CHECK(text == expected, "string field [%s] expected [%s]", text.c_str(), expected.c_str());
}

void CheckTextRun(CaptureBlock &capture, const Header &h, const uint8_t *data, int32_t size) {
  ShowTextStringDataRegardingMaximumLrecl(capture.cb(), data, size, h.indentation);
  std::string text = capture.Take();
  int32_t indentation = h.indentation < 0 ? 0 : h.indentation;
  int32_t width = h.lineLength - 3 - indentation;
  if (width < 16) {
    width = 16;
  }
  std::string expected;
  for (int32_t done = 0; done < size && data[done] != 0; done += width) {
    int32_t piece = size - done < width ? size - done : width;
    std::string part = SevenBit(data + done, (size_t)piece);
    expected += "|> " + std::string((size_t)indentation, ' ') + part + "\n";
    if ((int32_t)part.size() < piece) {
      break;
    }
  }
  FUZZ_CHECK(text == expected, "text run [%s] expected [%s]", text.c_str(), expected.c_str());
}

// A ZKCHARV over the data, in one of the ways an application can give one,
// with lengths that stay within the data.
struct CharvCase {
  std::vector<uint8_t> area; // the structure: the descriptor, then the string and a NUL
  ZKCHARV *charv;
  const void *string; // the string argument of ShowZKCHARV
};

void BuildCharv(CharvCase &c, const Header &h, const uint8_t *data, int32_t size) {
  c.area.assign(sizeof(ZKCHARV) + (size_t)size + 1, 0);
  if (size > 0) {
    memcpy(c.area.data() + sizeof(ZKCHARV), data, (size_t)size);
  }
  ZKCHARV v;
  memset(&v, 0, sizeof v);
  char *text = (char *)c.area.data() + sizeof(ZKCHARV);
  int32_t length = size > 0 ? (int32_t)(h.charvLength % (uint32_t)(size + 1)) : 0;
  c.string = nullptr;
  switch (h.charvForm % 6) {
  case 0: // by pointer, with its length
    v.VSPtr = text;
    v.VSLength = length;
    break;
  case 1: // by pointer, null-terminated (the NUL after the data ends it)
    v.VSPtr = text;
    v.VSLength = -1;
    break;
  case 2: // a buffer the call fills: its size counts
    v.VSPtr = text;
    v.VSBufSize = length;
    v.VSLength = length != 0 ? (int32_t)h.number : 0; // a size of 0 leaves it to VSLength
    break;
  case 3: // by offset from the structure
    v.VSOffset = (int32_t)sizeof(ZKCHARV);
    v.VSLength = length;
    break;
  case 4: // no string at all
    v.VSLength = length;
    break;
  default: // the string given apart from the descriptor, not yet readable
    v.VSPtr = text;
    v.VSLength = length;
    c.string = ZKCHARV_STRING_UNREADABLE;
    break;
  }
  v.VSCCSID = h.ccsid;
  memcpy(c.area.data(), &v, sizeof v);
  c.charv = (ZKCHARV *)c.area.data();
}

void CheckCharv(CaptureBlock &capture, const Header &h, const uint8_t *data, int32_t size) {
  ExitControlBlock *cb = capture.cb();
  CharvCase c;
  BuildCharv(c, h, data, size);
  const void *structure = c.area.data();
  uint32_t length = CalculateZkcharvDataLength(c.charv, c.string, structure);
  const void *address = ZkcharvStringAddress(c.charv, c.string, structure);
  FUZZ_CHECK(address == nullptr ||
                 ((const uint8_t *)address >= c.area.data() &&
                  (const uint8_t *)address + length <= c.area.data() + c.area.size()),
             "the string's %u bytes are not within the structure", length);
  FUZZ_CHECK(address != nullptr || length == 0, "a length of %u without a string", length);

  ShowZKCHARV(cb, h.name.c_str(), c.charv, structure, c.string);
  std::string text = capture.Take();
  CheckFieldLines(text, "ZKCHARV");
  // The name line is written even for an empty name.
  std::string nameLine = "|> " + h.name;
  nameLine.append(h.name.size() < FIELD_NAME_WIDTH ? FIELD_NAME_WIDTH - h.name.size() : 0, ' ');
  nameLine += ": \n";
  FUZZ_CHECK(text.compare(0, nameLine.size(), nameLine) == 0, "[%s]", text.c_str());

  PutHexCharvData(cb, h.name.c_str(), c.charv, structure);
  text = capture.Take();
  int32_t shown = (int32_t)CalculateZkcharvDataLength(c.charv, nullptr, structure);
  if (shown < 0) {
    shown = 0;
  }
  int32_t dumped = h.charvLimit >= 0 && shown > h.charvLimit ? h.charvLimit : shown;
  const uint8_t *bytes = (const uint8_t *)ZkcharvStringAddress(c.charv, nullptr, structure);
  if (h.name.empty() && (bytes == nullptr || dumped == 0) && dumped == shown) {
    FUZZ_CHECK(text.empty(), "[%s]", text.c_str());
    return;
  }
  std::vector<std::string> lines = LinesOf(text, "ZKCHARV dump");
  size_t first = 0;
  if (!h.name.empty()) {
    std::string title = Title(h.name, shown, bytes, true);
    FUZZ_CHECK(lines[0] == title ||
                   (title.size() > 400 && title.compare(0, lines[0].size(), lines[0]) == 0),
               "title [%s] expected [%s]", lines[0].c_str(), title.c_str());
    first = 1;
  }
  DumpSettings s = {false, cb->Settings.ShowHexCharImage != 0, cb->Settings.Spare == 0, h.ccsid};
  size_t end = bytes != nullptr ? CheckDumpLines(lines, first, bytes, dumped, s) : first;
  if (dumped < shown) {
    FUZZ_CHECK(end + 1 == lines.size() && lines[end] == "  (Shown only leading " +
                                                            std::to_string(dumped) +
                                                            " byte(s) ...)",
               "no note after a cut dump");
  } else {
    FUZZ_CHECK(end == lines.size(), "lines after the dump");
  }
}

void CheckNumbers(CaptureBlock &capture, const Header &h) {
  char area[32];
  char expected[64];
  for (char separator : {',', '.'}) {
    int32_t n = FormatNumericWithSeparators(area, h.number, separator);
    snprintf(expected, sizeof expected, "%llu", (unsigned long long)h.number);
    std::string digits = expected;
    std::string grouped;
    for (size_t i = 0; i < digits.size(); i++) {
      if (i > 0 && (digits.size() - i) % 3 == 0) {
        grouped.push_back(separator);
      }
      grouped.push_back(digits[i]);
    }
    FUZZ_CHECK(n == (int32_t)grouped.size() && grouped == area, "%s expected %s", area,
               grouped.c_str());
  }

  char out[64];
  for (uint8_t zeroPad = 0; zeroPad <= 1; zeroPad++) {
    int64_t value = (int64_t)h.number;
    int32_t n = FormatDecimalInt64(out, value, h.width, zeroPad);
    snprintf(expected, sizeof expected, zeroPad ? "%0*lld" : "%*lld", (int)h.width,
             (long long)value);
    FUZZ_CHECK(n == (int32_t)strlen(expected) && memcmp(out, expected, (size_t)n) == 0,
               "%.*s expected %s", n, out, expected);
    uint32_t small = (uint32_t)h.number;
    n = FormatDecimalUInt32(out, small, h.width, zeroPad);
    snprintf(expected, sizeof expected, zeroPad ? "%0*u" : "%*u", (int)h.width, small);
    FUZZ_CHECK(n == (int32_t)strlen(expected) && memcmp(out, expected, (size_t)n) == 0,
               "%.*s expected %s", n, out, expected);
  }

  ExitControlBlock *cb = capture.cb();
  int32_t value = (int32_t)h.number;
  uint32_t high = (uint32_t)(h.number >> 32);
  ShowFieldValueZklong(cb, h.name.c_str(), value, 1);
  snprintf(expected, sizeof expected, "%d\n", value);
  FUZZ_CHECK(capture.Take() == FieldNamePart(h.name) + expected, "ShowFieldValueZklong");
  ShowFieldValueZklongFixedLen(cb, h.name.c_str(), value, 1);
  snprintf(expected, sizeof expected, "%6d\n", value);
  FUZZ_CHECK(capture.Take() == FieldNamePart(h.name) + expected, "ShowFieldValueZklongFixedLen");
  ShowFieldValueZkInt64FixedLen(cb, h.name.c_str(), (uint32_t)h.number, high, "x");
  snprintf(expected, sizeof expected, "%6lld (x)\n", (long long)h.number);
  FUZZ_CHECK(capture.Take() == FieldNamePart(h.name) + expected, "ShowFieldValueZkInt64FixedLen");
  Show4ByteIntegerInHex(cb, (uint32_t)value, 1);
  snprintf(expected, sizeof expected, "0x%08X", (uint32_t)value);
  FUZZ_CHECK(capture.Take() == (value == 0 ? "(null)" : expected), "Show4ByteIntegerInHex");
  Show8ByteIntegerInHex(cb, (uint32_t)value, high, 0);
  snprintf(expected, sizeof expected, "0x%08X %08X", high, (uint32_t)value);
  FUZZ_CHECK(capture.Take() == expected, "Show8ByteIntegerInHex");

  // Byte order: reversed for an encoding that is set and not "reversed".
  int32_t encoding = (int32_t)high;
  int32_t once = ZklongValueRegardingEncoding(value, encoding);
  bool swap = encoding != 0 && (encoding & ZKENC_INTEGER_REVERSED) == 0;
  FUZZ_CHECK(once == (swap ? (int32_t)bswap_32((uint32_t)value) : value), "%d with encoding %d",
             value, encoding);
  FUZZ_CHECK(ZklongValueRegardingEncoding(once, encoding) == value, "not its own inverse");
  int64_t wide = ZkInt64ValueRegardingEncoding((uint32_t)h.number, high, encoding);
  FUZZ_CHECK(wide == (swap ? (int64_t)bswap_64(h.number) : (int64_t)h.number),
             "64-bit value with encoding %d", encoding);

  // Displays with names of their values: whole field lines.
  ShowParsedCommonCcsid(cb, h.name.c_str(), h.ccsid, h.flags & 1);
  ShowParsedEncodingValue(cb, encoding);
  ShowParsedCompressInfo(cb, h.name.c_str(), value, h.flags & 1, 1);
  ShowDataVersion(cb, "MD", value);
  std::string text = capture.Take();
  if (h.name.empty()) {
    // A field without a name starts with its value.
    FUZZ_CHECK(!text.empty() && text.back() == '\n', "[%s]", text.c_str());
  } else {
    CheckFieldLines(text, "named values");
  }
}

void CheckFormatName(CaptureBlock &capture, const uint8_t *data, int32_t size) {
  char format[9];
  memset(format, ' ', 8);
  memcpy(format, data, size < 8 ? (size_t)size : 8);
  format[8] = '\0';
  ShowParsedMsgFormat(capture.cb(), format);
  std::string text = capture.Take();
  CheckFieldLines(text, "format");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, size_t inputSize) {
  FuzzInput in(input, inputSize);
  Header h = ReadHeader(in);
  size_t offset = inputSize - in.Remaining();
  const uint8_t *data = input + offset; // the rest of the input, exactly
  int32_t size = (int32_t)in.Remaining();

  CaptureBlock &capture = Capture();
  ExitControlBlock *cb = capture.cb();
  cb->Settings.ShowHexCharImage = (h.flags & 0x01) != 0;
  cb->Settings.Spare = (h.flags & 0x04) != 0 ? 1 : 0; // 1: repeated lines are not collapsed
  cb->File.NoAddress = (h.flags & 0x08) != 0 ? 1 : 0;
  cb->Settings.MaxParsedOutputLineLength = h.lineLength;
  cb->Settings.ShowMaxLenCharv = h.charvLimit;
  cb->Settings.ShowMaxLenCharvString = h.stringLimit;
  capture.SetCcsid(h.ccsid);
  capture.Take();

  CheckPlainDump(capture, h, data, size);
  CheckSingleLine(capture, h, data, size);
  CheckMultipleLines(capture, h, data, size);
  CheckStringFixed(capture, h, data, size);
  CheckTextRun(capture, h, data, size);
  cb->File.NoAddress = 1;
  CheckCharv(capture, h, data, size);
  CheckNumbers(capture, h);
  CheckFormatName(capture, data, size);
  FUZZ_CHECK(cb->FatalError == 0);
  return 0;
}
