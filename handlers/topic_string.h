// The display name of a topic: "(topic) " + object name + topic string.
#pragma once

#include <stdint.h>

#include "zk/zk.h"

struct ExitControlBlock;

// `charv` may be null; its text is found by pointer, or by offset from
// `base`. The result is at most 48 characters (cut ones end in "..").
void SetTopicString(ExitControlBlock *cb, const char *objectName48, const ZKCHARV *charv,
                    const void *base, char *out, int32_t outSize);
