// The platform's version, level and build type, as its level-display
// command reports them, for the profile.
#include <stdio.h>
#include <string.h>

#include "exit/control_block.h"
#include "output/profile.h"
#include "text/string_utils.h"

namespace {

// The command runs with the library search path cleared, so that the
// application's libraries cannot disturb the platform's own command, and
// with its input and errors on /dev/null, so that it neither reads the
// application's input nor writes into its error output.
#define LEVEL_COMMAND "LIBPATH= LD_LIBRARY_PATH= dspzkver </dev/null 2>/dev/null"
// Characters of the command's output that are kept.
#define LEVEL_OUTPUT_MAX 998

// One "key: value" line; lines without ":" are not looked at. 1 when the
// line gave the version.
int32_t ParseLevelLine(ExitControlBlock *cb, char *line) {
  char *colon = strchr(line, ':');
  if (colon == nullptr) {
    return 0;
  }
  *colon = '\0';
  char *value = colon + 1;
  StringTrim(line);
  StringTrim(value);
  if (strcmp(line, "Version") == 0) {
    StringCopyCut(cb->Identity.ZkVersion, value, sizeof cb->Identity.ZkVersion);
    return 1;
  }
  if (strcmp(line, "CMVC level") == 0 || strcmp(line, "Level") == 0) {
    StringCopyCut(cb->Identity.ZkLevel, value, sizeof cb->Identity.ZkLevel);
  } else if (strcmp(line, "BuildType") == 0) {
    StringCopyCut(cb->Identity.ZkBuildType, value, sizeof cb->Identity.ZkBuildType);
  }
  return 0;
}

} // namespace

int32_t SetZkLevelInfo(ExitControlBlock *cb) {
  // "e": the pipe is not inherited by other programs the host starts.
  FILE *pipe = popen(LEVEL_COMMAND, "re");
  if (pipe == nullptr) {
    return RC_NOP;
  }
  char output[LEVEL_OUTPUT_MAX + 1];
  size_t length = 0;
  while (length < LEVEL_OUTPUT_MAX) {
    size_t n = fread(output + length, 1, LEVEL_OUTPUT_MAX - length, pipe);
    if (n == 0) {
      break;
    }
    length += n;
  }
  output[length] = '\0';
  // Read what is left so that the command does not stop on a full pipe.
  char rest[256];
  while (fread(rest, 1, sizeof rest, pipe) > 0) {
  }
  pclose(pipe);
  return SetZkLevelToCommonArea(cb, output);
}

int32_t SetZkLevelToCommonArea(ExitControlBlock *cb, const char *text) {
  cb->Identity.ZkVersion[0] = '\0';
  cb->Identity.ZkLevel[0] = '\0';
  cb->Identity.ZkBuildType[0] = '\0';
  uint8_t versionFound = 0;
  const char *start = text;
  while (*start != '\0') {
    const char *end = strchr(start, '\n');
    size_t length = end != nullptr ? (size_t)(end - start) : strlen(start);
    char line[LEVEL_OUTPUT_MAX + 1];
    if (length > LEVEL_OUTPUT_MAX) {
      length = LEVEL_OUTPUT_MAX;
    }
    memcpy(line, start, length);
    line[length] = '\0';
    if (ParseLevelLine(cb, line) == 1) {
      versionFound = 1;
    }
    if (end == nullptr) {
      break;
    }
    start = end + 1;
  }
  return versionFound == 1 ? RC_OK : RC_NOP;
}
