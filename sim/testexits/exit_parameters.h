/* What both test exits read from and add to their exit parameters: the
 * blank-padded fields, the words of the exit data, a chain area of their
 * own. */
#ifndef ZKQM_TESTEXITS_EXIT_PARAMETERS_H
#define ZKQM_TESTEXITS_EXIT_PARAMETERS_H

#include <stddef.h>

#include "zk/zkxfunc.h"

/* A field without its trailing blanks, NUL-terminated, in `out` (which has
 * room for `width` + 1 characters). */
const char *field(const char *f, size_t width, char *out);

/* Is `word` one of the blank-separated words of the exit data? */
int hasWord(const PZKAXP p, const char *word);

/* A new chain area for this exit: the header every chain area begins with,
 * named after the exit. NULL when there is no memory for it. */
PZKACH newChainArea(const PZKAXP p);

#endif
