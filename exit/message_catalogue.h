// The alert messages the exit raises. Placeholders: [$t] time stamp,
// [$0s]/[$0d] the operating system error's name and number, [$ns], [$nd],
// [$nu], [$nx] the n-th argument as text, signed, unsigned or hexadecimal.
//
// The catalogue is a compile-time table so that every raised message can be
// checked against its template when it is compiled (see PutMessage).
//
// Part of the alerts hub: alerts.h includes it, so every folder may.
#pragma once

#include <stdint.h>

#define MESSAGE_TABLE_END 9999

// One catalogue row: number, class (severity letter I/W/E and Y/N) and the
// template with its placeholders.
struct MessageCatalogueEntry {
  uint32_t Number;
  const char *Class;
  const char *Template;
};

inline constexpr MessageCatalogueEntry MessageTableMonitorTool[] = {
    {1, "IN", "[$1s]"},
    {2, "EN", "[$1s][$2s]"},
    {1001, "EY",
     "File I/O error. \n  File      : [$1s]\n  Operation : [$2s]\n  Result    : [$0s] ([$0d])."},
    {1002, "EY", "System call error.  Function : [$1s]   Result : [$0s] ([$0d])."},
    {1006, "EY", "File rename error. \n  From : [$1s]\n  To   : [$2s]  [$0s] ([$0d])"},
    {1010, "EY", "No more memory is available.  [$0s] ([$0d])"},
    {1021, "EY",
     "ZK API error. Function:[$1s] CompCode:[$2d] Reason:[$3d] ([$4s])  Parms: [$5s] [$6s] [$7s]"},
    {2008, "WY",
     "Invalid parameter was found in [$1s] file.  (This message might be put to a message file "
     "in another directory.)"},
    {2009, "WY", "  Line : [$1d]   Parameter : [$2s]"},
    {2010, "WY", "Too many [$1s] parameters.  Maximum count allowed is [$2d]"},
    {2011, "WY", "  [$1d] more invalid line(s) in [$2s] file are not shown."},
    {2012, "WY", "  [$1d] more line(s) for full lists in [$2s] file are not shown."},
    {2101, "EY",
     "Path name must be specified as Data attribute of ApiExitLocal stanza in qm.ini file."},
    {3100, "WY", "Unknown API structure : [$1s] version [$2u]"},
    {3101, "WY", "Unknown API attribute : [$1s] value [$2x]"},
    {MESSAGE_TABLE_END, "", ""},
};

// The template of a message, or null when the number is not in the
// catalogue. Usable at compile time.
constexpr const char *SearchMessageTemplateConst(uint32_t number) {
  for (const MessageCatalogueEntry &row : MessageTableMonitorTool) {
    if (row.Template[0] == '\0') {
      break;
    }
    if (row.Number == number) {
      return row.Template;
    }
  }
  return nullptr;
}

// Reads a placeholder "[$<digits><kind>]" at `text`: its number and kind,
// and its length; 0 when `text` does not start one. Numbers above 99 are
// not placeholders.
struct MessagePlaceholder {
  int32_t Length;
  int32_t Number;
  char Kind;
};

constexpr MessagePlaceholder ReadMessagePlaceholder(const char *text) {
  if (text[0] != '[' || text[1] != '$') {
    return {0, 0, 0};
  }
  if (text[2] == 't' && text[3] == ']') {
    return {4, 0, 't'};
  }
  int32_t number = 0;
  int32_t i = 2;
  while (text[i] >= '0' && text[i] <= '9' && i < 4) {
    number = number * 10 + (text[i] - '0');
    i++;
  }
  if (i == 2) {
    return {0, 0, 0};
  }
  char kind = text[i];
  if ((kind != 's' && kind != 'd' && kind != 'u' && kind != 'x') || text[i + 1] != ']') {
    return {0, 0, 0};
  }
  return {i + 2, number, kind};
}

// True when `kinds` (one letter per argument: 's', 'd' or 'u') is exactly
// what the template's placeholders $1, $2, ... ask for: every argument has a
// placeholder of its kind ('u' serves u and x), and every placeholder of
// the template has its argument.
constexpr bool MessageTemplateAccepts(const char *messageTemplate, const char *kinds) {
  if (messageTemplate == nullptr) {
    return false;
  }
  int32_t count = 0;
  while (kinds[count] != '\0') {
    count++;
  }
  bool seen[100] = {};
  for (const char *p = messageTemplate; *p != '\0'; p++) {
    MessagePlaceholder placeholder = ReadMessagePlaceholder(p);
    if (placeholder.Length == 0 || placeholder.Kind == 't' || placeholder.Number == 0) {
      continue;
    }
    if (placeholder.Number > count) {
      return false;
    }
    char wanted = placeholder.Kind == 'x' ? 'u' : placeholder.Kind;
    if (kinds[placeholder.Number - 1] != wanted) {
      return false;
    }
    seen[placeholder.Number] = true;
  }
  for (int32_t n = 1; n <= count; n++) {
    if (!seen[n]) {
      return false;
    }
  }
  return true;
}
