// ShowParsedPCF: a command-format body, its header ZKCFH and then its
// parameters one by one. Each parameter is numbered by the counters of the
// groups it lies in ("3", "5.1", "5.2.4"): a group opens a level that holds
// as many parameters as its count says, and a level closes when it has shown
// them all. The levels are a fixed array; groups nested deeper are shown flat.
#include <stddef.h>

#include "exit/control_block.h"
#include "format/attribute_selectors.h"
#include "format/message_content.h"
#include "format/pcf_message.h"
#include "zk/zkcfc.h"

namespace {

constexpr char kHeadingName[] = "------------------------";
constexpr char kTooDeep[] = "|> (groups nested deeper than 32 levels are shown flat)\n";
static_assert(PCF_MAX_GROUP_DEPTH == 32, "the line about flat groups names the depth");

// A level of the numbering: the parameters shown at it so far, and how many
// it holds (the body's ParameterCount, or a group's).
struct PcfLevel {
  int32_t Shown;
  int64_t Holds;
};

struct PcfWalk {
  ExitControlBlock *Cb;
  const unsigned char *Body;
  int64_t Length; // the body's bytes as far as they are shown
  int32_t Encoding;
  uint32_t Offset; // of the body in the message
  PcfLevel Levels[PCF_MAX_GROUP_DEPTH + 1];
  int32_t Depth; // the innermost open level; 0 is the body itself
  bool TooDeepNoted;
};

void AppendNamedNumber(TraceText *line, const char *name, int32_t value) {
  TraceTextAppendFieldName(line, name);
  TraceTextAppendInt32(line, value, 6);
  TraceTextAppendChar(line, '\n');
}

void AppendNamedText(TraceText *line, const char *name, const char *text) {
  TraceTextAppendFieldName(line, name);
  TraceTextAppendString(line, text);
  TraceTextAppendChar(line, '\n');
}

// The header's fields, after its section line. Returns its ParameterCount.
int32_t ShowHeader(ExitControlBlock *cb, const unsigned char *body, int32_t encoding) {
  int32_t type = PcfReadInt32(body + offsetof(ZKCFH, Type), encoding);
  int32_t command = PcfReadInt32(body + offsetof(ZKCFH, Command), encoding);
  int32_t control = PcfReadInt32(body + offsetof(ZKCFH, Control), encoding);
  int32_t reason = PcfReadInt32(body + offsetof(ZKCFH, Reason), encoding);
  int32_t count = PcfReadInt32(body + offsetof(ZKCFH, ParameterCount), encoding);
  TraceText line;
  TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
  AppendNamedText(&line, "Type", SearchConstantInt(type, Constant_ZkAttrsPcfType));
  AppendNamedNumber(&line, "StrucLength",
                    PcfReadInt32(body + offsetof(ZKCFH, StrucLength), encoding));
  AppendNamedNumber(&line, "Version", PcfReadInt32(body + offsetof(ZKCFH, Version), encoding));
  TraceTextAppendFieldName(&line, "Command");
  TraceTextAppendUInt32(&line, (uint32_t)command, 6);
  TraceTextAppendLiteral(&line, " (");
  TraceTextAppendString(&line, SearchConstantInt(command, Constant_ZkAttrsPcfCommand));
  TraceTextAppendLiteral(&line, ")\n");
  AppendNamedNumber(&line, "MsgSeqNumber",
                    PcfReadInt32(body + offsetof(ZKCFH, MsgSeqNumber), encoding));
  AppendNamedText(&line, "Control", SearchConstantInt(control, Constant_ZkAttrsPcfControl));
  AppendNamedNumber(&line, "CompCode", PcfReadInt32(body + offsetof(ZKCFH, CompCode), encoding));
  TraceTextAppendFieldName(&line, "Reason");
  TraceTextAppendInt32(&line, reason, 6);
  if (reason != 0) {
    TraceTextAppendLiteral(&line, " (");
    TraceTextAppendString(&line, SearchConstantInt(reason, Constant_Zkrc));
    TraceTextAppendChar(&line, ')');
  }
  TraceTextAppendChar(&line, '\n');
  AppendNamedNumber(&line, "ParameterCount", count);
  TraceTextWrite(&line);
  return count;
}

// The heading of a parameter and its Type, Length and Parameter lines.
void ShowParameterHeading(PcfWalk *walk, const PcfParameter *p, int64_t position,
                          const char *name) {
  TraceText line;
  TraceTextStart(&line, walk->Cb, TRACE_TEXT_WRITE_OUT);
  TraceTextAppendFieldName(&line, kHeadingName);
  TraceTextAppendLiteral(&line, "--- ");
  for (int32_t level = 0; level <= walk->Depth; level++) {
    if (level > 0) {
      TraceTextAppendChar(&line, '.');
    }
    TraceTextAppendInt32(&line, walk->Levels[level].Shown, 0);
  }
  TraceTextAppendLiteral(&line, " ---");
  TraceTextAppendOffsetRange(&line, walk->Offset + (uint32_t)position, (uint32_t)p->StrucLength);
  TraceTextAppendChar(&line, '\n');
  AppendNamedText(&line, "(parm) - Type", SearchConstantInt(p->Type, Constant_ZkAttrsPcfType));
  AppendNamedNumber(&line, "(parm) - Length", p->StrucLength);
  TraceTextAppendFieldName(&line, "(parm) - Parameter");
  TraceTextAppendInt32(&line, p->Parameter, 6);
  TraceTextAppendLiteral(&line, " (");
  TraceTextAppendString(&line, name);
  TraceTextAppendLiteral(&line, ")\n");
  TraceTextWrite(&line);
}

// After a group: a level for its members, or, below the deepest level, its
// members counted among those of the level it lies in.
void OpenGroup(PcfWalk *walk, int32_t members) {
  int64_t holds = members > 0 ? members : 0;
  if (walk->Depth < PCF_MAX_GROUP_DEPTH) {
    walk->Depth++;
    walk->Levels[walk->Depth].Shown = 0;
    walk->Levels[walk->Depth].Holds = holds;
    return;
  }
  if (!walk->TooDeepNoted) {
    TraceText line;
    TraceTextStart(&line, walk->Cb, TRACE_TEXT_WRITE_OUT);
    TraceTextAppendLiteral(&line, kTooDeep);
    TraceTextWrite(&line);
    walk->TooDeepNoted = true;
  }
  walk->Levels[walk->Depth].Holds += holds; // at most 2^31 a group: no overflow
}

// Closes the groups that have shown all their members, innermost first. A
// group without members closes at once.
void CloseFinishedGroups(PcfWalk *walk) {
  while (walk->Depth > 0 && walk->Levels[walk->Depth].Shown >= walk->Levels[walk->Depth].Holds) {
    walk->Depth--;
  }
}

void ShowParameters(PcfWalk *walk, int32_t parameterCount) {
  walk->Depth = 0;
  walk->Levels[0].Shown = 0;
  walk->Levels[0].Holds = parameterCount;
  walk->TooDeepNoted = false;
  int64_t position = ZKCFH_STRUC_LENGTH;
  while (walk->Length - position >= ZKCFPARM_HEADER_LENGTH) {
    if (walk->Depth == 0 && walk->Levels[0].Shown >= walk->Levels[0].Holds) {
      return;
    }
    walk->Levels[walk->Depth].Shown++;
    PcfParameter p;
    p.At = walk->Body + position;
    p.Remaining = (int32_t)(walk->Length - position);
    p.Encoding = walk->Encoding;
    p.Type = PcfReadInt32(p.At + offsetof(ZKCFPARM, Type), walk->Encoding);
    p.StrucLength = PcfReadInt32(p.At + offsetof(ZKCFPARM, StrucLength), walk->Encoding);
    p.Parameter = PcfReadInt32(p.At + offsetof(ZKCFPARM, Parameter), walk->Encoding);
    const char *name = nullptr;
    SearchZkAttributeTable(walk->Cb, p.Parameter, &name, &p.Row, nullptr);
    // A parameter longer than what remains ends the display; so does one
    // shorter than its own three words, which would not move the walk on.
    if (p.StrucLength > p.Remaining || p.StrucLength < ZKCFPARM_HEADER_LENGTH) {
      return;
    }
    ShowParameterHeading(walk, &p, position, name);
    int32_t members = ShowPcfParameterValue(walk->Cb, &p);
    if (p.Type == ZKCFT_GROUP) {
      OpenGroup(walk, members);
    }
    CloseFinishedGroups(walk);
    position += p.StrucLength;
  }
}

} // namespace

void ShowParsedPCF(ExitControlBlock *cb, int32_t encoding, const void *body, int32_t length,
                   uint32_t offset) {
  if (cb == nullptr || body == nullptr || length < ZKCFH_STRUC_LENGTH) {
    return;
  }
  // The limit counts from the start of the message data.
  int64_t shown = length;
  int32_t limit = cb->Settings.ShowMaxLenParsedContent;
  if (limit >= 0 && (int64_t)limit - (int64_t)offset < shown) {
    shown = (int64_t)limit - (int64_t)offset;
  }
  if (shown < ZKCFH_STRUC_LENGTH) {
    return;
  }
  const unsigned char *bytes = (const unsigned char *)body;
  int32_t version = PcfReadInt32(bytes + offsetof(ZKCFH, Version), encoding);
  if (version > ZKCFH_CURRENT_VERSION) {
    ShowUnknownStructureVersion(cb, "ZKCFH", version);
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)shown, "ZKCFH (PCF header and parameters)");
  int32_t parameterCount = ShowHeader(cb, bytes, encoding);
  PcfWalk walk;
  walk.Cb = cb;
  walk.Body = bytes;
  walk.Length = shown;
  walk.Encoding = encoding;
  walk.Offset = offset;
  ShowParameters(&walk, parameterCount);
}
