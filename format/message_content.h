// Parsed message data: the chain of the platform's headers that the data
// begins with, each named by the Format of the one before it, and the body
// after them as command-format parameters, XML or a pointer to the dump.
// Every length, offset and count is checked against the bytes given before
// it is used; nothing is read outside [data, data + length).
#pragma once

#include <stdint.h>

struct ExitControlBlock;

// The whole chain, starting with the descriptor's Format (8 characters) and
// Encoding. `length` is the full length of the message data; what is shown
// stops at ShowMaxLenParsedContent when that is not negative.
void ShowParsedMsgData(ExitControlBlock *cb, const char *format, int32_t encoding, const void *data,
                       int32_t length);

// A command-format body (header and parameters) of `length` bytes that
// starts `offset` bytes into the message data, its integers read with
// `encoding`.
void ShowParsedPCF(ExitControlBlock *cb, int32_t encoding, const void *body, int32_t length,
                   uint32_t offset);

// XML shown one tag or text run a line, indented by its nesting. Returns 1
// when shown, 0 when the bytes are not XML or lie beyond the limit.
int32_t ShowParsedXml(ExitControlBlock *cb, const void *data, int32_t length, uint32_t offset,
                      const char *title);
