#include "reform/parser.h"

#include <string.h>

#include <utility>

namespace wzreform {

namespace {

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && memcmp(text.data(), prefix.data(), prefix.size()) == 0;
}

std::string_view TrimRight(std::string_view text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
    text.remove_suffix(1);
  }
  return text;
}

std::string_view TrimLeft(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
    text.remove_prefix(1);
  }
  return text;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int HexValue(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (c >= 'A' && c <= 'F') {
    return c - 'A' + 10;
  }
  if (c >= 'a' && c <= 'f') {
    return c - 'a' + 10;
  }
  return -1;
}

// "0x0000ABCD"
bool ParseHex32(std::string_view text, uint32_t *value) {
  text = TrimRight(text);
  if (text.size() < 3 || text.size() > 10 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
    return false;
  }
  uint32_t v = 0;
  for (size_t i = 2; i < text.size(); i++) {
    int h = HexValue(text[i]);
    if (h < 0) {
      return false;
    }
    v = (v << 4) | static_cast<uint32_t>(h);
  }
  *value = v;
  return true;
}

// A decimal number with an optional sign, in 64 bits; false for anything
// else or a number out of range.
bool ParseInt64(std::string_view text, int64_t *value) {
  text = TrimRight(TrimLeft(text));
  bool negative = false;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  if (text.empty() || text.size() > 18) {
    return false;
  }
  int64_t v = 0;
  for (char c : text) {
    if (!IsDigit(c)) {
      return false;
    }
    v = v * 10 + (c - '0');
  }
  *value = negative ? -v : v;
  return true;
}

// A code as the exit writes it: signed, or unsigned 32-bit (a negative
// value shown as 4294967292), kept as the 32-bit value it stands for.
bool ParseCode(std::string_view text, int32_t *value) {
  int64_t v;
  if (!ParseInt64(text, &v) || v < INT32_MIN || v > UINT32_MAX) {
    return false;
  }
  *value = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v)));
  return true;
}

bool ParseDigits(std::string_view text, size_t at, size_t count, int *value) {
  if (at + count > text.size()) {
    return false;
  }
  int v = 0;
  for (size_t i = at; i < at + count; i++) {
    if (!IsDigit(text[i])) {
      return false;
    }
    v = v * 10 + (text[i] - '0');
  }
  *value = v;
  return true;
}

// Days since 1970-01-01 of a date of the proleptic Gregorian calendar.
int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

// A stamp without its brackets: "2026/11/24 03:52:27.085442".
std::string_view StampText(std::string_view line) {
  if (!line.empty() && line.front() == '[') {
    line.remove_prefix(1);
  }
  if (!line.empty() && line.back() == ']') {
    line.remove_suffix(1);
  }
  return line;
}

bool IsHexDumpLine(std::string_view line) {
  if (line.size() < 9) {
    return false;
  }
  for (size_t i = 0; i < 8; i++) {
    if (HexValue(line[i]) < 0) {
      return false;
    }
  }
  return line[8] == ':' || line[8] == '-';
}

// The label of a "Label:value" line: letters, digits, '_', '-', '>', '.'
// and blanks inside ("XA return value"), not starting with a blank.
size_t LabelEnd(std::string_view line) {
  if (line.empty() || line[0] == ' ') {
    return std::string_view::npos;
  }
  for (size_t i = 0; i < line.size() && i < 64; i++) {
    char c = line[i];
    if (c == ':') {
      return i > 0 ? i : std::string_view::npos;
    }
    bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || IsDigit(c) || c == '_' ||
              c == '-' || c == '>' || c == '.' || c == ' ' || c == '(' || c == ')';
    if (!ok) {
      return std::string_view::npos;
    }
  }
  return std::string_view::npos;
}

// Whether a value is a dump title's "(324=x144 bytes, Address 0x...)".
bool IsDumpTitleValue(std::string_view value) {
  if (value.size() < 4 || value[0] != '(' || !IsDigit(value[1])) {
    return false;
  }
  size_t i = 1;
  while (i < value.size() && IsDigit(value[i])) {
    i++;
  }
  return i + 1 < value.size() && value[i] == '=' && value[i + 1] == 'x';
}

// Whether a function of the trace nests inside the open call `outer`: a
// transaction-manager call or a callback inside a ZKI call, anything a
// callback does inside the callback.
bool Nests(std::string_view outer, std::string_view inner) {
  if (outer == "ZKCB_FU") {
    return StartsWith(inner, "ZK") || IsTransactionFunction(inner);
  }
  if (StartsWith(outer, "ZK")) {
    return IsTransactionFunction(inner) || inner == "ZKCB_FU";
  }
  return false;
}

constexpr size_t kPoolMax = 1 << 16;
constexpr std::string_view kDataConv = "DATA_CONV_ON_GET";

} // namespace

int64_t ParseStampMicros(std::string_view stamp) {
  std::string_view t = StampText(stamp);
  // YYYY/MM/DD hh:mm:ss.uuuuuu
  int year, month, day, hour, minute, second, micros;
  if (t.size() != 26 || t[4] != '/' || t[7] != '/' || t[10] != ' ' || t[13] != ':' ||
      t[16] != ':' || t[19] != '.' || !ParseDigits(t, 0, 4, &year) ||
      !ParseDigits(t, 5, 2, &month) || !ParseDigits(t, 8, 2, &day) ||
      !ParseDigits(t, 11, 2, &hour) || !ParseDigits(t, 14, 2, &minute) ||
      !ParseDigits(t, 17, 2, &second) || !ParseDigits(t, 20, 6, &micros)) {
    return -1;
  }
  if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) {
    return -1;
  }
  int64_t days = DaysFromCivil(year, month, day);
  return ((days * 24 + hour) * 60 + minute) * 60 * 1000000LL + second * 1000000LL + micros;
}

bool ParseProcessTime(std::string_view text, int64_t *micros) {
  text = TrimRight(TrimLeft(text));
  size_t dot = text.find('.');
  if (dot == std::string_view::npos) {
    return false;
  }
  int64_t seconds, fraction;
  std::string_view fractionText = text.substr(dot + 1);
  if (!ParseInt64(text.substr(0, dot), &seconds) || !ParseInt64(fractionText, &fraction)) {
    return false;
  }
  if (fractionText.empty() || fractionText.size() > 7) {
    return false;
  }
  // The fraction carries its own sign when the time is negative.
  bool negative = !text.empty() && text[0] == '-';
  if (negative && fraction > 0) {
    fraction = -fraction;
  }
  *micros = seconds * 1000000 + fraction;
  return true;
}

bool IsTransactionFunction(std::string_view function) {
  return StartsWith(function, "xa_") || StartsWith(function, "ax_");
}

void ClassifyLine(std::string_view line, FieldLine *out) {
  out->Text.assign(line.data(), line.size());
  out->Name.clear();
  out->Value.clear();
  if (line.size() >= 3 && line[0] == '|' && line[1] == '>' && line[2] == ' ') {
    std::string_view rest = line.substr(3);
    if (!rest.empty() && rest[0] == '-') {
      out->Type = FieldLine::SECTION;
      return;
    }
    // "Name" padded to 25 columns (or longer, without blanks), then ": ".
    size_t colon = rest.find(':');
    if (colon != std::string_view::npos && colon > 0 && rest[0] != ' ' &&
        (colon + 1 == rest.size() || rest[colon + 1] == ' ')) {
      std::string_view name = TrimRight(rest.substr(0, colon));
      bool padded = colon >= 25 && name.find(' ') == std::string_view::npos;
      if (padded && !name.empty()) {
        out->Type = FieldLine::FIELD;
        out->Name.assign(name.data(), name.size());
        std::string_view value =
            colon + 2 <= rest.size() ? TrimRight(rest.substr(colon + 2)) : std::string_view();
        out->Value.assign(value.data(), value.size());
        return;
      }
    }
    out->Type = FieldLine::OTHER;
    return;
  }
  if (line.size() >= 2 && line[0] == '|' && line[1] == ' ') {
    std::string_view rest = line.substr(2);
    size_t colon = rest.find(':');
    if (colon != std::string_view::npos && colon > 0 && rest[0] != ' ') {
      out->Type = FieldLine::NAME;
      std::string_view name = TrimRight(rest.substr(0, colon));
      std::string_view value = TrimRight(rest.substr(colon + 1));
      out->Name.assign(name.data(), name.size());
      out->Value.assign(value.data(), value.size());
      return;
    }
    out->Type = FieldLine::OTHER;
    return;
  }
  if (IsHexDumpLine(line)) {
    out->Type = FieldLine::DUMP;
    return;
  }
  size_t colon = LabelEnd(line);
  if (colon != std::string_view::npos) {
    std::string_view name = TrimRight(line.substr(0, colon));
    std::string_view value = TrimRight(line.substr(colon + 1));
    out->Type = IsDumpTitleValue(value) ? FieldLine::DUMP : FieldLine::VALUE;
    out->Name.assign(name.data(), name.size());
    out->Value.assign(value.data(), value.size());
    return;
  }
  out->Type = FieldLine::OTHER;
}

bool ParseSimpleRecord(std::string_view line, Call *call) {
  // The number, right-aligned in 8 columns.
  size_t p = 0;
  while (p < line.size() && line[p] == ' ') {
    p++;
  }
  size_t numberStart = p;
  while (p < line.size() && IsDigit(line[p])) {
    p++;
  }
  int64_t sequence;
  if (p == numberStart || p - numberStart > 10 ||
      !ParseInt64(line.substr(numberStart, p - numberStart), &sequence) || sequence > UINT32_MAX) {
    return false;
  }
  if (p + 1 >= line.size() || line[p] != ' ' || line[p + 1] != '[') {
    return false;
  }
  size_t stampEnd = line.find(']', p + 1);
  if (stampEnd == std::string_view::npos) {
    return false;
  }
  std::string_view stamp = line.substr(p + 2, stampEnd - p - 2);
  p = stampEnd + 1;
  if (line.substr(p, 2) != "  ") {
    return false;
  }
  p += 2;
  // The function, padded to 11 columns; a longer name runs on into the
  // codes, which are digits.
  size_t functionStart = p;
  while (p < line.size() && p - functionStart < 11 && line[p] != ' ') {
    p++;
  }
  if (p - functionStart == 11) {
    while (p < line.size() && ((line[p] >= 'A' && line[p] <= 'Z') ||
                               (line[p] >= 'a' && line[p] <= 'z') || line[p] == '_')) {
      p++;
    }
  }
  std::string_view function = line.substr(functionStart, p - functionStart);
  if (function.empty()) {
    return false;
  }
  // The reason by name at the end: " (2033 = ZKRC_NO_MSG_AVAILABLE)".
  std::string_view rest = line.substr(p);
  std::string_view body = rest;
  bool hasTail = false;
  int32_t tailReason = 0;
  std::string_view tailName;
  if (!rest.empty() && rest.back() == ')') {
    for (size_t at = rest.rfind(" ("); at != std::string_view::npos && at > 0;
         at = rest.rfind(" (", at - 1)) {
      size_t q = at + 2;
      size_t digits = q;
      while (q < rest.size() && IsDigit(rest[q])) {
        q++;
      }
      if (q > digits && rest.substr(q, 3) == " = " &&
          ParseCode(rest.substr(digits, q - digits), &tailReason)) {
        hasTail = true;
        tailName = rest.substr(q + 3, rest.size() - 1 - (q + 3));
        body = rest.substr(0, at);
        break;
      }
      if (at == 0) {
        break;
      }
    }
  }
  // The codes, then the process time (the only token with a point).
  size_t q = 0;
  auto token = [&](std::string_view *out) {
    while (q < body.size() && body[q] == ' ') {
      q++;
    }
    size_t start = q;
    while (q < body.size() && body[q] != ' ') {
      q++;
    }
    *out = body.substr(start, q - start);
    return q > start;
  };
  std::string_view first, second, third;
  if (!token(&first) || !token(&second)) {
    return false;
  }
  int32_t compCode = 0, reason = 0;
  std::string_view timeText;
  if (second.find('.') != std::string_view::npos) {
    // Both codes ran together ("42949672924294967292"): the reason is the
    // one named at the end.
    if (!hasTail) {
      return false;
    }
    std::string reasonText = std::to_string(static_cast<uint32_t>(tailReason));
    if (first.size() <= reasonText.size() ||
        first.substr(first.size() - reasonText.size()) != reasonText ||
        !ParseCode(first.substr(0, first.size() - reasonText.size()), &compCode)) {
      return false;
    }
    reason = tailReason;
    timeText = second;
  } else {
    if (!ParseCode(first, &compCode) || !ParseCode(second, &reason) || !token(&third)) {
      return false;
    }
    timeText = third;
  }
  int64_t elapsed;
  if (!ParseProcessTime(timeText, &elapsed)) {
    return false;
  }
  // The object in 48 columns after two blanks, then the descriptor's
  // columns.
  std::string_view object, tail;
  if (q + 2 <= body.size()) {
    object = body.substr(q + 2, 48);
    tail = q + 2 + 48 < body.size() ? body.substr(q + 2 + 48) : std::string_view();
  }
  object = TrimRight(object);

  call->Function.assign(function.data(), function.size());
  call->Sequence = static_cast<uint32_t>(sequence);
  call->AfterTime.assign(stamp.data(), stamp.size());
  call->AfterMicros = ParseStampMicros(stamp);
  call->HasElapsed = true;
  call->ElapsedMicros = elapsed;
  call->BeforeMicros = call->AfterMicros >= 0 ? call->AfterMicros - elapsed : -1;
  call->HasCodes = true;
  call->CompCode = compCode;
  call->Reason = reason;
  if (hasTail) {
    call->ReasonName.assign(tailName.data(), tailName.size());
  }
  call->ObjectName.assign(object.data(), object.size());

  // The descriptor's columns as lines of the after-part.
  bool haveMsgId = false, haveLength = false, haveCorrelId = false;
  size_t t = 0;
  while (t < tail.size()) {
    while (t < tail.size() && tail[t] == ' ') {
      t++;
    }
    if (t >= tail.size()) {
      break;
    }
    std::string_view word;
    if (tail.substr(t, 15) == "(End of group)") {
      word = tail.substr(t, 14);
    } else {
      size_t end = tail.find(' ', t);
      word = tail.substr(t, end == std::string_view::npos ? std::string_view::npos : end - t);
    }
    t += word.size();
    call->After.emplace_back();
    FieldLine &f = call->After.back();
    f.Text.assign(word.data(), word.size());
    bool digits = !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
    const char *name = nullptr;
    if (word.size() == 48 && word.find_first_not_of("0123456789ABCDEF") == std::string_view::npos) {
      name = !haveMsgId ? "MsgId" : "CorrelId";
      (haveMsgId ? haveCorrelId : haveMsgId) = true;
    } else if (word == "(null)") {
      name = "CorrelId";
      haveCorrelId = true;
    } else if (digits && haveMsgId && !haveLength && !haveCorrelId) {
      name = "MsgLen";
      haveLength = true;
    } else if (digits) {
      name = "MsgSeqNumber";
    }
    if (name != nullptr) {
      f.Type = FieldLine::VALUE;
      f.Name = name;
      f.Value.assign(word.data(), word.size());
    } else {
      f.Type = FieldLine::OTHER;
    }
  }
  return true;
}

TraceParser::TraceParser(Sink sink, ParserLimits limits)
    : Output(std::move(sink)), Limits(limits) {
  if (Limits.MaxDepth < 2) {
    Limits.MaxDepth = 2;
  }
  Open.resize(Limits.MaxDepth);
}

void TraceParser::BeginFile(TraceSource *source) {
  Source = source;
  Now = State::Outside;
  Verdict = 0;
  FileLines = 0;
  InProfile = false;
  HeaderComplete = true;
  Into = Target::None;
}

void TraceParser::CheckFirstLines(std::string_view line) {
  if (FileLines == 1) {
    if (line == "-") {
      return; // a record or a block: the next line tells
    }
    bool dashes = line.size() >= 11 && line[0] == '|' &&
                  line.find_first_not_of('-', 1) == std::string_view::npos;
    if (dashes) {
      return;
    }
    Verdict = -1;
    return;
  }
  // The second line: what follows "-" or the profile's dashed line.
  if (StartsWith(line, "|--- Seq # :") || StartsWith(line, "|>-- Seq # :") ||
      StartsWith(line, "|Program information") || StartsWith(line, "|Reopen this trace file") ||
      StartsWith(line, "|Call summary") || StartsWith(line, "          Time") ||
      (line.size() >= 11 && line[0] == '|' && line.find_first_not_of('-', 1) == std::string_view::npos) ||
      (StartsWith(line, "[") && ParseStampMicros(line) >= 0)) {
    Verdict = 1;
    return;
  }
  Verdict = -1;
}

void TraceParser::ProfileLine(std::string_view line) {
  // "|  Queue manager      : ZKQM1"
  if (!StartsWith(line, "|  ") || Source == nullptr) {
    return;
  }
  std::string_view rest = line.substr(3);
  size_t colon = rest.find(": ");
  if (colon == std::string_view::npos) {
    colon = rest.find(':');
    if (colon == std::string_view::npos || colon + 1 != rest.size()) {
      return;
    }
  }
  std::string_view key = TrimRight(rest.substr(0, colon));
  std::string_view value =
      colon + 2 <= rest.size() ? TrimRight(rest.substr(colon + 2)) : std::string_view();
  int64_t number;
  if (ProfileSection == "Operating environment") {
    if (key == "Node name" && Source->Host.empty()) {
      Source->Host.assign(value.data(), value.size());
    }
    return;
  }
  if (ProfileSection != "API Exit context") {
    return;
  }
  if (key == "Queue manager" && Source->QMgr.empty()) {
    Source->QMgr.assign(value.data(), value.size());
  } else if (key == "Program name" && Source->Program.empty()) {
    Source->Program.assign(value.data(), value.size());
  } else if (key == "Process id" && Source->ProcessId == 0 && ParseInt64(value, &number)) {
    Source->ProcessId = number;
  } else if (key == "Thread id" && Source->ThreadId == 0 && ParseInt64(value, &number)) {
    Source->ThreadId = number;
  } else if (key == "Connection name" && Source->Connection.empty()) {
    Source->Connection.assign(value.data(), value.size());
  }
}

Call *TraceParser::RecordCall() {
  switch (Into) {
  case Target::Before:
  case Target::After:
    return Depth > 0 ? &Open[Depth - 1] : nullptr;
  case Target::Point:
    if (PointInside) {
      return Depth > 0 && !Open[Depth - 1].Inside.empty() ? &Open[Depth - 1].Inside.back()
                                                           : nullptr;
    }
    return &Point;
  case Target::None:
    break;
  }
  return nullptr;
}

FieldLine &TraceParser::NewLine(std::vector<FieldLine> &lines) {
  if (!Pool.empty()) {
    lines.push_back(std::move(Pool.back()));
    Pool.pop_back();
  } else {
    lines.emplace_back();
  }
  return lines.back();
}

void TraceParser::Recycle(Call &call) {
  for (std::vector<FieldLine> *lines : {&call.Before, &call.After}) {
    for (FieldLine &line : *lines) {
      if (Pool.size() < kPoolMax) {
        Pool.push_back(std::move(line));
      }
    }
    lines->clear();
  }
  for (Call &inner : call.Inside) {
    Recycle(inner);
  }
  call.Inside.clear();
  call.Source = nullptr;
  call.Function.clear();
  call.Sequence = 0;
  call.ObjectName.clear();
  call.ResolvedName.clear();
  call.HasHconn = call.HasHobj = call.HasCodes = call.HasElapsed = call.Unfinished = false;
  call.Hconn = call.Hobj = 0;
  call.CompCode = call.Reason = 0;
  call.ReasonName.clear();
  call.BeforeTime.clear();
  call.AfterTime.clear();
  call.BeforeMicros = call.AfterMicros = -1;
  call.ElapsedMicros = 0;
}

int TraceParser::Emit(Call &call) {
  if (SinkStatus == 0 && Output && Output(call) != 0) {
    SinkStatus = -1;
  }
  Written++;
  Recycle(call);
  return SinkStatus;
}

void TraceParser::AttachOrEmit(size_t index) {
  // Open[index] is the innermost open call.
  Call &call = Open[index];
  if (index == 0) {
    Emit(call);
    Charged = 0;
    Dropping = false;
    return;
  }
  Open[index - 1].Inside.push_back(std::move(call));
  Recycle(call); // a moved-from call: back to its empty state
}

void TraceParser::CloseOpenCalls(size_t keep) {
  while (Depth > keep) {
    Depth--;
    Open[Depth].Unfinished = true;
    AttachOrEmit(Depth);
  }
}

void TraceParser::Charge(size_t bytes) {
  Charged += bytes;
  if (Charged > Limits.MaxCallBytes) {
    Dropping = true;
  }
}

Call &TraceParser::PushCall() {
  if (Depth >= Open.size()) {
    Overflows++;
    CloseOpenCalls(0);
  }
  Call &call = Open[Depth++];
  call.Source = Source;
  call.Function = PendingFunction;
  Charge(sizeof(Call) + PendingFunction.size() + PendingStamp.size());
  return call;
}

void TraceParser::StartBefore() {
  if (Depth > 0 && !Nests(Open[Depth - 1].Function, PendingFunction)) {
    CloseOpenCalls(0);
  }
  Call &call = PushCall();
  call.Sequence = PendingSequence;
  std::string_view stamp = StampText(PendingStamp);
  call.BeforeTime.assign(stamp.data(), stamp.size());
  call.BeforeMicros = ParseStampMicros(stamp);
  Into = Target::Before;
}

void TraceParser::StartAfter() {
  size_t found = Depth;
  for (size_t i = Depth; i-- > 0;) {
    if (Open[i].Function == PendingFunction) {
      found = i;
      break;
    }
  }
  if (found < Depth) {
    CloseOpenCalls(found + 1);
  } else {
    // An after-record without its before-record (the trace began or was
    // enabled in the middle of the call).
    if (Depth > 0 && !Nests(Open[Depth - 1].Function, PendingFunction)) {
      CloseOpenCalls(0);
    }
    PushCall();
  }
  Call &call = Open[Depth - 1];
  std::string_view stamp = StampText(PendingStamp);
  call.AfterTime.assign(stamp.data(), stamp.size());
  call.AfterMicros = ParseStampMicros(stamp);
  Into = Target::After;
}

void TraceParser::StartPoint() {
  Call *point;
  if (Depth > 0) {
    Open[Depth - 1].Inside.emplace_back();
    point = &Open[Depth - 1].Inside.back();
    PointInside = true;
  } else {
    point = &Point;
    PointInside = false;
  }
  point->Source = Source;
  point->Function = PendingFunction;
  point->Sequence = PendingSequence;
  std::string_view stamp = StampText(PendingStamp);
  point->BeforeTime.assign(stamp.data(), stamp.size());
  point->AfterTime = point->BeforeTime;
  point->BeforeMicros = point->AfterMicros = ParseStampMicros(stamp);
  Charge(sizeof(Call) + 2 * stamp.size());
  Into = Target::Point;
}

void TraceParser::StartRecord(std::string_view kind) {
  size_t space = kind.find(' ');
  if (space != std::string_view::npos) {
    kind = kind.substr(0, space);
  }
  Names = RecordNames();
  RecordDropped = false;
  if (kind == "BEFORE") {
    if (PendingFunction == kDataConv) {
      StartPoint();
    } else {
      StartBefore();
    }
    Now = State::Body;
    HeaderComplete = true;
    return;
  }
  if (kind == "AFTER") {
    StartAfter();
    Now = State::AfterHeader;
    return;
  }
  // The connection's INIT and TERM records: no call is open across them.
  if (kind == "CONNECTION") {
    CloseOpenCalls(0);
  }
  Now = State::Outside;
  HeaderComplete = true;
}

void TraceParser::ApplyRecordNames(Call &call, bool after) {
  auto good = [](uint32_t v) { return v != 0 && v != 0xFFFFFFFFu; };
  auto usable = [](const std::string &s) { return !s.empty() && s != "(null)"; };
  if (Names.HasHconn && (!after || !(call.HasHconn && good(call.Hconn)))) {
    call.HasHconn = true;
    call.Hconn = Names.Hconn;
  }
  if (Names.HasHobj && (!after || !(call.HasHobj && good(call.Hobj)))) {
    call.HasHobj = true;
    call.Hobj = Names.Hobj;
  }
  if (Names.HasObject && !usable(call.ObjectName) &&
      (usable(Names.Object) || call.ObjectName.empty())) {
    call.ObjectName = Names.Object;
  }
  if (Names.HasResolved && !usable(call.ResolvedName) &&
      (usable(Names.Resolved) || call.ResolvedName.empty())) {
    call.ResolvedName = Names.Resolved;
  }
}

int TraceParser::FinishRecord() {
  Target into = Into;
  Into = Target::None;
  if (into == Target::None) {
    return SinkStatus;
  }
  if (into == Target::Point) {
    Call *point = PointInside ? (Depth > 0 && !Open[Depth - 1].Inside.empty()
                                     ? &Open[Depth - 1].Inside.back()
                                     : nullptr)
                              : &Point;
    if (point != nullptr) {
      ApplyRecordNames(*point, false);
      if (!PointInside) {
        Emit(Point);
        if (Depth == 0) {
          Charged = 0;
          Dropping = false;
        }
      }
    }
    return SinkStatus;
  }
  if (Depth == 0) {
    return SinkStatus;
  }
  Call &call = Open[Depth - 1];
  ApplyRecordNames(call, into == Target::After);
  if (into == Target::After) {
    Depth--;
    AttachOrEmit(Depth);
  }
  return SinkStatus;
}

void TraceParser::AfterHeaderLine(std::string_view line, bool *consumed) {
  *consumed = true;
  Call *call = RecordCall();
  int32_t value;
  if (call == nullptr) {
    return;
  }
  if (StartsWith(line, "CompCode:") && ParseCode(line.substr(9), &value)) {
    call->HasCodes = true;
    call->CompCode = value;
  } else if (StartsWith(line, "Reason:") && ParseCode(line.substr(7), &value)) {
    call->HasCodes = true;
    call->Reason = value;
  } else if (StartsWith(line, "| Reason:")) {
    std::string_view name = TrimRight(line.substr(9));
    call->ReasonName.assign(name.data(), name.size());
  } else if (StartsWith(line, "XA return value:") && ParseCode(line.substr(16), &value)) {
    // A transaction-manager call has one return value, which the exit
    // passes as both codes.
    call->HasCodes = true;
    call->CompCode = call->Reason = value;
  } else if (StartsWith(line, "| XA return value:")) {
    std::string_view name = TrimRight(line.substr(18));
    call->ReasonName.assign(name.data(), name.size());
  } else if (StartsWith(line, "Total number of XIDs:") && ParseCode(line.substr(21), &value)) {
    call->HasCodes = true;
    call->CompCode = call->Reason = value;
  } else if (StartsWith(line, "| API process time:")) {
    std::string_view text = line.substr(19);
    size_t unit = text.rfind(" second");
    if (unit != std::string_view::npos) {
      text = text.substr(0, unit);
    }
    int64_t micros;
    if (ParseProcessTime(text, &micros)) {
      call->HasElapsed = true;
      call->ElapsedMicros = micros;
    }
    Now = State::Body;
    HeaderComplete = true;
  } else {
    Now = State::Body;
    HeaderComplete = true;
    *consumed = false;
  }
}

void TraceParser::BodyLine(std::string_view line) {
  // Notes between records ("|", "|  *** Enabled ***  [...]", the notes of a
  // changed process or thread id) are not part of a record.
  if (line == "|" || StartsWith(line, "|  ")) {
    return;
  }
  Call *call = RecordCall();
  if (call == nullptr) {
    return;
  }
  std::vector<FieldLine> &lines = Into == Target::After ? call->After : call->Before;
  // The names that the call's header fields come from are read even when
  // the line itself is left out.
  FieldLine probe;
  FieldLine *line_ = nullptr;
  if (Dropping) {
    LeftOut++;
    if (!RecordDropped) {
      RecordDropped = true;
      FieldLine &note = NewLine(lines);
      note.Type = FieldLine::OTHER;
      note.Name.clear();
      note.Value.clear();
      note.Text = "(wzreform: the rest of this record is left out: the call's lines pass the "
                  "memory limit)";
    }
    ClassifyLine(line, &probe);
    line_ = &probe;
  } else {
    line_ = &NewLine(lines);
    ClassifyLine(line, line_);
    Charge(sizeof(FieldLine) + line.size() + line_->Name.size() + line_->Value.size());
  }
  const FieldLine &f = *line_;
  if (f.Type == FieldLine::VALUE) {
    uint32_t handle;
    if (!Names.HasHconn && f.Name == "Hconn" && ParseHex32(f.Value, &handle)) {
      Names.HasHconn = true;
      Names.Hconn = handle;
    } else if (!Names.HasHobj && f.Name == "Hobj" && ParseHex32(f.Value, &handle)) {
      Names.HasHobj = true;
      Names.Hobj = handle;
    } else if (Into == Target::Point && (f.Name == "CompCode" || f.Name == "Reason")) {
      int32_t value;
      if (ParseCode(f.Value, &value)) {
        call->HasCodes = true;
        (f.Name == "CompCode" ? call->CompCode : call->Reason) = value;
      }
    }
  } else if (f.Type == FieldLine::NAME) {
    if (!Names.HasObject && f.Name == "ObjectName") {
      Names.HasObject = true;
      Names.Object = f.Value;
    } else if (!Names.HasResolved && f.Name == "(real name)") {
      Names.HasResolved = true;
      Names.Resolved = f.Value;
    }
  }
}

int TraceParser::Line(std::string_view line) {
  FileLines++;
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  if (Verdict == 0) {
    CheckFirstLines(line);
  }
  if (Verdict < 0) {
    return SinkStatus;
  }
  if (line.size() == 1 && line[0] == '-') {
    FinishRecord();
    Now = State::BlockStart;
    PendingSequence = 0;
    PendingStamp.clear();
    HeaderComplete = false;
    InProfile = false;
    return SinkStatus;
  }
  switch (Now) {
  case State::Outside:
    if (line == "|Program information") {
      InProfile = true;
      ProfileSection.clear();
    } else if (InProfile) {
      if (StartsWith(line, "|---")) {
        InProfile = false;
      } else if (line.size() > 1 && line[0] == '|' && line[1] != ' ') {
        ProfileSection.assign(line.data() + 1, line.size() - 1); // "|API Exit context"
      } else {
        ProfileLine(line);
      }
    }
    break;
  case State::BlockStart:
    if (StartsWith(line, "|>-- Seq # :")) {
      break; // calls the parameter file left out
    }
    if (StartsWith(line, "|--- Seq # :")) {
      int64_t number = 0;
      std::string_view rest = TrimLeft(line.substr(12));
      size_t end = rest.find(' ');
      if (ParseInt64(rest.substr(0, end), &number) && number >= 0 && number <= UINT32_MAX) {
        PendingSequence = static_cast<uint32_t>(number);
      }
      break;
    }
    if (!line.empty() && line[0] == '[') {
      PendingStamp.assign(line.data(), line.size());
      Now = State::Stamp;
      break;
    }
    HeaderComplete = true;
    if (StartsWith(line, "          Time")) {
      Now = State::Simple;
      break;
    }
    Now = State::Outside;
    if (line == "|Program information") {
      InProfile = true;
      ProfileSection.clear();
    }
    break;
  case State::Stamp:
    if (!line.empty() && line[0] == '<') {
      std::string_view function = line.substr(1);
      size_t space = function.find(' ');
      if (space != std::string_view::npos) {
        function = function.substr(0, space);
      }
      PendingFunction.assign(function.data(), function.size());
      Now = State::Function;
    } else {
      Now = State::Outside;
      HeaderComplete = true;
    }
    break;
  case State::Function:
    if (!line.empty() && line[0] == '(') {
      StartRecord(line.substr(1));
    } else {
      Now = State::Outside;
      HeaderComplete = true;
    }
    break;
  case State::AfterHeader: {
    bool consumed;
    AfterHeaderLine(line, &consumed);
    if (!consumed) {
      BodyLine(line);
    }
    break;
  }
  case State::Body:
    BodyLine(line);
    break;
  case State::Simple:
    if (ParseSimpleRecord(line, &Scratch)) {
      Scratch.Source = Source;
      Emit(Scratch);
    } else {
      Recycle(Scratch);
    }
    break;
  }
  return SinkStatus;
}

int TraceParser::EndFile(bool lastLineUnended, bool *cut) {
  bool inHeader = Now == State::BlockStart || Now == State::Stamp || Now == State::Function ||
                  Now == State::AfterHeader;
  *cut = Verdict > 0 && (lastLineUnended || (inHeader && !HeaderComplete));
  FinishRecord();
  Now = State::Outside;
  HeaderComplete = true;
  return SinkStatus;
}

int TraceParser::EndConnection() {
  FinishRecord();
  CloseOpenCalls(0);
  Charged = 0;
  Dropping = false;
  Now = State::Outside;
  return SinkStatus;
}

} // namespace wzreform
