// Field formatting primitives: the one line layout of every parsed field
// ("|> ", the name padded to 25 columns, ": ", the value, a newline), the
// forms of numbers, strings, byte fields, pointers and handles, the byte
// order of integers read from foreign-encoded structures, and the displays
// that recur in many structures. Every structure formatter is a sequence of
// calls to these.
//
// Each Show... function writes through WriteTraceData and returns what the
// last WriteTraceData returned (0, or -1 on a file failure); callers may
// ignore it. Nothing here allocates: text is built in buffers on the stack.
#pragma once

#include <stdint.h>
#include <string.h>

#include "output/trace_text.h"
#include "zk/zkconst.h"
#include "zk/zktypes.h"

struct ExitControlBlock;

// Byte fields shorter than this are shown on one line; longer ones as a dump.
#define FIELD_SINGLE_LINE_HEX_LIMIT 33
// A string value goes to separate text lines when its length plus this
// exceeds MaxParsedOutputLineLength.
#define FIELD_STRING_LINE_RESERVE 30
// A string field is written in pieces of at most this many bytes.
#define FIELD_STRING_PIECE 99
// ShowZKCHARV: the string cannot be read (the call has not filled it yet).
#define ZKCHARV_STRING_UNREADABLE ((const void *)(intptr_t)-1)

// ---------------------------------------------------------------------------
// Line-building primitives.

// Field names may be left empty (or null) to write a value alone.
inline bool FieldHasName(const char *name) {
  return name != nullptr && name[0] != '\0';
}

// Starts a field line with the name part, when the field has a name.
inline void TraceTextStartField(TraceText *line, ExitControlBlock *cb, const char *name) {
  TraceTextStart(line, cb, TRACE_TEXT_WRITE_OUT);
  if (FieldHasName(name)) {
    TraceTextAppendFieldName(line, name);
  }
}

// "|> " then the name left-justified in 25 columns, then ": ".
int32_t ShowFieldName(ExitControlBlock *cb, const char *name);

// The version header line "|> --- MD version 2" filled with "-" to 29
// characters, then a newline.
int32_t ShowDataVersion(ExitControlBlock *cb, const char *structureName, int32_t version);

// The field name (when the name is not empty), the value as "%d", and a
// newline when endOfLine is set.
int32_t ShowFieldValueZklong(ExitControlBlock *cb, const char *name, int32_t value,
                             uint8_t endOfLine);

// The same with the value right-aligned in six columns ("%6d").
int32_t ShowFieldValueZklongFixedLen(ExitControlBlock *cb, const char *name, int32_t value,
                                     uint8_t endOfLine);

// The field name (when not empty), the 64-bit value given as its low and high
// word as "%6lld", " (description)" when the description is not empty
// (null counts as empty), and always a newline.
int32_t ShowFieldValueZkInt64FixedLen(ExitControlBlock *cb, const char *name, uint32_t low,
                                      uint32_t high, const char *description);

// The field name (when not empty), then the bytes as text: trailing LF, CR
// and blanks dropped, every byte outside 7-bit printable ASCII shown as "."
// and a zero byte ending the text of its 99-byte piece; always a newline.
int32_t ShowFieldValueStringFixed(ExitControlBlock *cb, const char *name, const void *bytes,
                                  int32_t length);

// One entry of a flag list: " / " when *counter is above 0, then the text;
// *counter is incremented.
int32_t ShowAttributeDescription(ExitControlBlock *cb, uint32_t *counter, const char *text);

// An unknown flag or enumeration value: alert message 3101 with the name and
// value, the unknown banner, and the unknown-attribute flag set.
int32_t ShowUnknownAttribute(ExitControlBlock *cb, const char *name, uint32_t value);

// An unknown structure version: the unknown-attribute flag set, alert
// message 3100, and the unknown banner with the version.
int32_t ShowUnknownStructureVersion(ExitControlBlock *cb, const char *structureName,
                                    int32_t version);

// "(null)" when the value is 0 and nullFlag is set, else "0x%8.8X"; no newline.
int32_t Show4ByteIntegerInHex(ExitControlBlock *cb, uint32_t value, uint8_t nullFlag);

// A pointer the same way (pointers are 32-bit).
int32_t ShowPointerInHex(ExitControlBlock *cb, const void *pointer, uint8_t nullFlag);

// "(null)" when the value is 0 and nullFlag is set, else "0x", the high word
// in eight hex digits, a blank and the low word ("0x0000000A 00000001").
int32_t Show8ByteIntegerInHex(ExitControlBlock *cb, uint32_t low, uint32_t high, uint8_t nullFlag);

// A byte field on one line: the field name (when not empty); with nullCheck,
// "(null)\n" when the length is below 1 or all bytes are 0; with hex, the
// bytes in hex, a blank before every fourth byte, then two blanks; then the
// character image in brackets and, with endOfLine, a newline.
int32_t ShowParsedHexValueSingleLine(ExitControlBlock *cb, const char *name, const void *bytes,
                                     int32_t length, uint8_t nullCheck, uint8_t hex,
                                     uint8_t endOfLine);

// A byte field as a dump: the field name (when not empty); with nullCheck
// "(null)\n" when the length is below 1 or all bytes are 0; else a newline
// and the prefixed hex dump of the bytes.
int32_t ShowParsedHexValueMultipleLines(ExitControlBlock *cb, const char *name, const void *bytes,
                                        int32_t length, uint8_t nullCheck);

// One line for fields below 33 bytes, the dump from 33 bytes on.
int32_t ShowParsedHexValueFormatSelect(ExitControlBlock *cb, const char *name, const void *bytes,
                                       int32_t length);

// The 8 bytes of a message handle on one line.
int32_t ShowZKHMSG(ExitControlBlock *cb, const char *name, ZKHMSG handle);

// The value ("%6d" when fixedWidth is set, else "%d") and " (name of the
// CCSID)\n"; CCSID 0 reads "default / queue_manager".
int32_t ShowParsedCommonCcsid(ExitControlBlock *cb, const char *name, int32_t ccsid,
                              uint8_t fixedWidth);

// The field "Format": the 8-character format name with its description when
// the name is known, "(blank)" for an empty one.
int32_t ShowParsedMsgFormat(ExitControlBlock *cb, const char *format);

// A compression value and, in parentheses, "not available", "none", "any"
// or the names of its set bits joined by " / "; a newline with endOfLine.
int32_t ShowParsedCompressInfo(ExitControlBlock *cb, const char *name, int32_t value,
                               uint8_t fixedWidth, uint8_t endOfLine);

// The field "Encoding": the value and the names of its integer, decimal and
// floating-point encodings.
int32_t ShowParsedEncodingValue(ExitControlBlock *cb, int32_t encoding);

// A variable-length string: its name, its five fields and its value.
// `structure` is the address of the structure that holds the descriptor (for
// offset-addressed strings). `string` is null to find the string through the
// descriptor, ZKCHARV_STRING_UNREADABLE to show no value, or the string's
// address. A null descriptor shows the name line only.
int32_t ShowZKCHARV(ExitControlBlock *cb, const char *name, const ZKCHARV *charv,
                    const void *structure, const void *string);

// The most bytes of one variable-length string dumped when ShowMaxLenCharv
// sets no limit (negative): four times the longest string the platform
// accepts in any of its descriptors.
#define CHARV_DUMP_MAX 40960

// Dumps the text of a variable-length string; `base` is the address of the
// structure that holds the descriptor, for offset-addressed text. Text
// beyond ShowMaxLenCharv (or CHARV_DUMP_MAX without a limit) is left out
// with a note.
void PutHexCharvData(ExitControlBlock *cb, const char *title, const ZKCHARV *charv,
                     const void *base);

// The number of bytes of a variable-length string to show: 0 when the
// descriptor or the structure address is null or all ones, or when no string
// can be found; else VSBufSize when not 0, else VSLength when not -1, else
// the length of the null-terminated string with its terminator. `string` as
// for ShowZKCHARV.
uint32_t CalculateZkcharvDataLength(const ZKCHARV *charv, const void *string,
                                    const void *structure);

// The address of the string as ShowZKCHARV reads it, or null when there is
// none: a given address as it is, else VSPtr, else the structure address plus
// VSOffset (neither when both are 0).
const void *ZkcharvStringAddress(const ZKCHARV *charv, const void *string, const void *structure);

// ---------------------------------------------------------------------------
// The values of the primitives above, appended to a text that is being built,
// for formatters that write many fields through one text. Each ends the line
// as its Show... form does.

// The version header line.
void TraceTextAppendVersionHeader(TraceText *line, const char *structureName, int32_t version);
// A string value and the newline (ShowFieldValueStringFixed).
void TraceTextAppendFieldString(TraceText *line, const void *bytes, int32_t length);
// A byte field on one line (ShowParsedHexValueSingleLine), the character
// image in the code page of the text's control block.
void TraceTextAppendHexSingleLine(TraceText *line, const void *bytes, int32_t length,
                                  uint8_t nullCheck, uint8_t hex, uint8_t endOfLine);
// A CCSID, its name and the newline (ShowParsedCommonCcsid).
void TraceTextAppendCcsid(TraceText *line, int32_t ccsid, uint8_t fixedWidth);
// A compression value and its names in parentheses, no newline.
void TraceTextAppendCompression(TraceText *line, int32_t value, uint8_t fixedWidth);
// An encoding value, its names and the newline (ShowParsedEncodingValue).
void TraceTextAppendEncoding(TraceText *line, int32_t encoding);

// ---------------------------------------------------------------------------
// Byte order of integers taken from foreign-encoded structures.

// The value in host order: its four bytes reversed when the encoding is not 0
// and does not say "integer reversed" (bit value 2), else unchanged.
int32_t ZklongValueRegardingEncoding(int32_t value, int32_t encoding);

// The same for a 64-bit value given as its low and high word: all eight bytes
// reversed (the top byte of the high word becomes the lowest of the result).
int64_t ZkInt64ValueRegardingEncoding(uint32_t low, uint32_t high, int32_t encoding);

// The encoding of a structure that carries no Encoding field of its own,
// decided from its 4-byte identifier and the Version field that follows it:
// a non-zero first Version byte means little-endian (host) order and gives
// ZKENC_INTEGER_REVERSED, otherwise ZKENC_INTEGER_NORMAL.
int32_t ZkStructureEncoding(const void *structure);

// ---------------------------------------------------------------------------
// Text runs and numbers.

// Writes `length` bytes of text (ending early at a zero byte) as lines of
// "|> ", `indentation` blanks and the text, each line at most
// MaxParsedOutputLineLength characters (but holding at least 16 characters
// of text), bytes outside 7-bit printable ASCII shown as ".". Nothing is
// written for an empty text.
int32_t ShowTextStringDataRegardingMaximumLrecl(ExitControlBlock *cb, const void *text,
                                                int32_t length, int32_t indentation);

// ---------------------------------------------------------------------------
// Sections of parsed message data.

// Appends " offset F-L (=xF-xL) length N (=xN)" for the bytes from `offset`
// on, F and L their first and last offset (L = F when there are none).
void TraceTextAppendOffsetRange(TraceText *line, uint32_t offset, uint32_t length);

// The line that opens a header, folder or body of the message data:
// "|> ----- offset F-L (=xF-xL) length N (=xN) - title".
int32_t ShowParsedValueOffset(ExitControlBlock *cb, uint32_t offset, uint32_t length,
                              const char *title);

// A body shown only in the hex dump: when both the offset and the length
// are above 0, a section titled "Data" and the line that points to the dump.
int32_t ShowParsedGeneralData(ExitControlBlock *cb, int32_t offset, int32_t length);
