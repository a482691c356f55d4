// The process profile written at the head of every new trace file.
#pragma once

#include <stdint.h>

struct ExitControlBlock;

void PutProcessProfileRecords(ExitControlBlock *cb, int64_t reopenedSize);
void PutProfileRecordYesNo(ExitControlBlock *cb, const char *label, uint8_t flag);
void PutProfileRecordLength(ExitControlBlock *cb, const char *label, int64_t value);
void PutEnvironmentVariables(ExitControlBlock *cb);
int32_t SetZkLevelInfo(ExitControlBlock *cb);
int32_t SetZkLevelToCommonArea(ExitControlBlock *cb, const char *text);

// The value in decimal with thousands separators, no newline: "," between
// groups, or "." when the locale's decimal point is ",".
int32_t ReformatAndShowNumericValue(ExitControlBlock *cb, uint64_t value);
