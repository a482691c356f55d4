// The alert message catalogue and the error-name table.
#pragma once

#include <stdint.h>

#include "exit/message_catalogue.h"

// One error-name row: "ENAME - description" and the error number.
struct MessageTableEntry {
  const char *Text;
  int32_t Number;
};

extern const MessageTableEntry MessageTable[];

// The catalogue template of a message, or null when the number is unknown.
const char *SearchMessageTemplate(uint32_t number);
// The name and description of an error number; the empty end-row text when
// the number is unknown.
const char *SearchErrorName(int32_t number);
