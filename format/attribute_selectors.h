// Attribute selectors: the names of the selectors of ZKINQ and ZKSET and of
// the parameters of command-format messages, their integer values by name
// (or as flags), and the character attributes sliced from the caller's area
// by each attribute's length.
//
// The caller passes each array with its count: nothing is read beyond the
// count given, and a count below 0 counts as 0.
#pragma once

#include <stdint.h>

#include "text/attribute_tables.h"

struct ExitControlBlock;

// The ZKINQ/ZKSET label under which an unknown selector is reported.
#define ZK_ATTR_UNKNOWN_SELECTOR_LABEL "ZKINQ/ZKSET - Attribute Selector"

// Finds a selector's row: 1 to 2000 among the integer attributes, 2001 to
// 2124 among the character attributes, 7001 to 7035 among the byte-string
// parameters, 8001 to 8014 among the groups and any other among the other
// parameters. Each output may be null; the name and the two rows are first
// set from the unknown rows (Constant_ZkAttrsZkiaUnknown,
// Constant_ZkAttrsZkcaUnknown), and keep them when nothing matches. Returns
// 0 when the selector has a row, -1 when not.
int32_t SearchZkAttributeTable(ExitControlBlock *cb, int32_t selector, const char **name,
                               const ZkAttrIntEntry **intRow, const ZkAttrCharEntry **charRow);

// One integer attribute's value as a field line under `name` (no name part
// when it is null or empty), by the row's selector: the flags of the
// authority, registration, publication and deletion options; report options
// and message flags in hex with their names; a command, an encoding or a
// reason code with its name; otherwise the value and its name from the row's
// value table, or the value alone when the row has none. `fixedLength` writes
// values as "%6d", else "%d". Unknown flag bits are reported under the row's
// name after the line.
int32_t SearchIntZkAttrValueAndSetString(ExitControlBlock *cb, int32_t value,
                                         const ZkAttrIntEntry *row, uint8_t fixedLength,
                                         const char *name);

// The integer attributes of a ZKINQ or ZKSET: one field line for each
// selector from 1 to 2000, in order, with the next integer value, or with no
// value once the integers are used up; other selectors are skipped. An
// unknown selector is reported after its line. Values are shown whatever
// the completion code: a failed call shows what the queue manager left.
void ShowParsedZkinqZksetOptionsInt(ExitControlBlock *cb, int32_t compCode, int32_t selectorCount,
                                    const int32_t *selectors, int32_t intAttrCount,
                                    const int32_t *intAttrs);

// The character attributes: for each selector from 2001 to 2124, in order,
// the next bytes of the area (as many as the attribute's length, fewer at
// the end), or no value once the area is used up; the name list (ZKCA_NAMES)
// as as many names as the name count among the integer attributes says, as
// far as the area reaches. An unknown selector is reported and ends the walk.
void ShowParsedZkinqZksetOptionsChar(ExitControlBlock *cb, int32_t compCode, int32_t selectorCount,
                                     const int32_t *selectors, int32_t intAttrCount,
                                     const int32_t *intAttrs, int32_t charAttrLength,
                                     const char *charAttrs);

// The value of the name count (ZKIA_NAME_COUNT) among the integer
// attributes, or 0 when it was not asked for or not returned.
int32_t SearchZkiaNameCount(int32_t selectorCount, const int32_t *selectors, int32_t intAttrCount,
                            const int32_t *intAttrs);
