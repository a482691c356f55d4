// XML in message data, one tag or text run a line, indented by nesting.
// Bytes count as XML when they start with "<", end with ">" (trailing
// blanks and zero bytes aside) and their angle brackets pair up without
// nesting; nothing else about them is checked, so any bytes that pass are
// shown as they are, and the walk over them is a single pass.
#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "format/message_content.h"

namespace {

// Nesting levels that are indented; deeper elements stay at the indentation
// of this level.
constexpr int32_t kIndentedLevels = 32;
constexpr int32_t kIndentStep = 2;
constexpr int32_t kLinePrefixLength = 3; // "|> "
// Text a line keeps however deep the indentation.
constexpr int32_t kTextRoom = 16;

// The index of the last byte that is not a blank or a zero byte, or -1.
int32_t LastSignificantByte(const unsigned char *data, int32_t length) {
  int32_t last = length - 1;
  while (last >= 0 && (data[last] == ' ' || data[last] == '\0')) {
    last--;
  }
  return last;
}

// Angle brackets that open and close in turn, never two open at once.
bool BracketsPair(const unsigned char *data, int32_t end) {
  int32_t depth = 0;
  for (int32_t i = 0; i < end; i++) {
    if (data[i] == '<') {
      depth++;
    } else if (data[i] == '>') {
      depth--;
    }
    if (depth > 1 || depth < 0) {
      return false;
    }
  }
  return depth == 0;
}

bool OnlyBlanks(const unsigned char *text, int32_t length) {
  for (int32_t i = 0; i < length; i++) {
    if (text[i] > ' ') {
      return false;
    }
  }
  return true;
}

// The deepest indentation a line may have: kIndentedLevels levels, or less
// when a line of MaxParsedOutputLineLength would keep no room for its text.
int32_t IndentLimit(const ExitControlBlock *cb) {
  int32_t room = cb->Settings.MaxParsedOutputLineLength - kLinePrefixLength - kTextRoom;
  int32_t limit = kIndentedLevels * kIndentStep;
  if (room < limit) {
    limit = room > 0 ? room - room % kIndentStep : 0;
  }
  return limit;
}

} // namespace

int32_t ShowParsedXml(ExitControlBlock *cb, const void *data, int32_t length, uint32_t offset,
                      const char *title) {
  const unsigned char *bytes = (const unsigned char *)data;
  int32_t limit = cb->Settings.ShowMaxLenParsedContent;
  if ((limit >= 0 && (uint32_t)limit <= offset) || bytes == nullptr || length < 1 ||
      bytes[0] != '<') {
    return 0;
  }
  int32_t last = LastSignificantByte(bytes, length);
  if (last < 1 || bytes[last] != '>') {
    return 0;
  }
  int32_t end = last + 1;
  if (!BracketsPair(bytes, end)) {
    return 0;
  }
  if (limit >= 0 && (int64_t)limit - offset < end) {
    end = (int32_t)((int64_t)limit - offset);
  }
  if (end <= 0) {
    return 0;
  }
  ShowParsedValueOffset(cb, offset, (uint32_t)end, title);

  int32_t indentLimit = IndentLimit(cb);
  int32_t depth = 0; // nesting, counted on past the indented levels
  bool flatNoted = false;
  int32_t i = 0;
  while (i < end) {
    if (bytes[i] != '<') {
      const unsigned char *next = (const unsigned char *)memchr(bytes + i, '<', (size_t)(end - i));
      int32_t runEnd = next != nullptr ? (int32_t)(next - bytes) : end;
      // Line breaks and indentation between tags are not shown as text.
      if (!OnlyBlanks(bytes + i, runEnd - i)) {
        int32_t indentation = depth * kIndentStep;
        ShowTextStringDataRegardingMaximumLrecl(
            cb, bytes + i, runEnd - i, indentation < indentLimit ? indentation : indentLimit);
      }
      i = runEnd;
      continue;
    }
    const unsigned char *close = (const unsigned char *)memchr(bytes + i, '>', (size_t)(end - i));
    int32_t tagEnd = close != nullptr ? (int32_t)(close - bytes) + 1 : end;
    int32_t tagLength = tagEnd - i;
    bool closing = tagLength >= 2 && bytes[i + 1] == '/';
    bool empty = tagLength >= 2 && bytes[tagEnd - 2] == '/' && bytes[tagEnd - 1] == '>';
    if (closing && depth > 0) {
      depth--;
    }
    int32_t indentation = depth * kIndentStep;
    if (indentation > indentLimit && !flatNoted) {
      TraceText line;
      TraceTextStart(&line, cb, TRACE_TEXT_WRITE_OUT);
      TraceTextAppendLiteral(&line, "|> (XML nested deeper than this is shown without further "
                                    "indentation)\n");
      TraceTextWrite(&line);
      flatNoted = true;
    }
    ShowTextStringDataRegardingMaximumLrecl(cb, bytes + i, tagLength,
                                            indentation < indentLimit ? indentation : indentLimit);
    if (!closing && !empty && depth < INT32_MAX / kIndentStep) {
      depth++;
    }
    i = tagEnd;
  }
  return 1;
}
