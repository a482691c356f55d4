/* Helpers on the exit parameters, shared by the test exits. */
#include "exit_parameters.h"

#include <stdlib.h>
#include <string.h>

const char *field(const char *f, size_t width, char *out) {
  size_t n = width;
  memcpy(out, f, width);
  while (n > 0 && (out[n - 1] == ' ' || out[n - 1] == '\0')) {
    --n;
  }
  out[n] = '\0';
  return out;
}

int hasWord(const PZKAXP p, const char *word) {
  char data[33];
  char *save = NULL;
  field(p->ExitData, sizeof p->ExitData, data);
  for (char *w = strtok_r(data, " ", &save); w != NULL; w = strtok_r(NULL, " ", &save)) {
    if (strcmp(w, word) == 0) {
      return 1;
    }
  }
  return 0;
}

PZKACH newChainArea(const PZKAXP p) {
  PZKACH area = calloc(1, sizeof *area);
  if (area != NULL) {
    memcpy(area->StrucId, ZKACH_STRUC_ID, 4);
    area->Version = ZKACH_VERSION_1;
    area->StrucLength = ZKACH_LENGTH_1;
    area->ChainAreaLength = sizeof *area;
    memcpy(area->ExitInfoName, p->ExitInfoName, sizeof area->ExitInfoName);
  }
  return area;
}
