/* An API exit that registers put and get functions that do nothing: the
 * benchmark's measure of what the queue manager itself spends on calling
 * an exit, so that the rest can be charged to the exit being measured. */
#include "zk/zk.h"

#define EXPORT __attribute__((visibility("default")))

EXPORT void NullEntry(PZKAXP axp, PZKAXC axc, PZKLONG compCode, PZKLONG reason);

static void NullFunction(void) {}

void NullEntry(PZKAXP axp, PZKAXC axc, PZKLONG compCode, PZKLONG reason) {
  static const ZKLONG functions[] = {ZKXF_PUT, ZKXF_GET};
  ZKLONG cc = 0, rs = 0;
  (void)axc;
  (void)compCode;
  (void)reason;
  for (unsigned i = 0; i < sizeof functions / sizeof functions[0]; i++) {
    ZKXEP(axp->Hconfig, ZKXR_BEFORE, functions[i], (PZKFUNC)NullFunction, NULL, &cc, &rs);
    ZKXEP(axp->Hconfig, ZKXR_AFTER, functions[i], (PZKFUNC)NullFunction, NULL, &cc, &rs);
  }
  axp->ExitResponse = ZKXCC_OK;
  axp->ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
}
