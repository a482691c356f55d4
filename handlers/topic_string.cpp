#include "handlers/topic_string.h"

#include <string.h>

#include "text/string_utils.h"

void SetTopicString(ExitControlBlock *, const char *objectName48, const ZKCHARV *charv,
                    const void *base, char *out, int32_t outSize) {
  char text[160] = "(topic) ";
  size_t length = strlen(text);
  memcpy(text + length, objectName48, strnlen(objectName48, 48));
  text[length + strnlen(objectName48, 48)] = '\0';
  StringTrimTrailing(text);
  if (charv != nullptr) {
    const char *string = nullptr;
    if (charv->VSPtr != nullptr) {
      string = (const char *)charv->VSPtr;
    } else if (charv->VSOffset != 0) {
      string = (const char *)base + charv->VSOffset;
    }
    if (string != nullptr) {
      int32_t stringLength = charv->VSLength == -1 ? (int32_t)strlen(string) : charv->VSLength;
      length = strlen(text);
      int32_t room = 98 - (int32_t)length;
      if (stringLength > room) {
        stringLength = room;
      }
      text[length++] = ' ';
      if (stringLength > 0) {
        memcpy(text + length, string, (size_t)stringLength);
        length += (size_t)stringLength;
      }
      text[length] = '\0';
      StringTrimTrailing(text);
    }
  }
  if (strlen(text) > 48) {
    text[46] = '.';
    text[47] = '.';
    text[48] = '\0';
  }
  if (outSize > 0) {
    strncpy(out, text, (size_t)outSize - 1);
    out[outSize - 1] = '\0';
  }
}
