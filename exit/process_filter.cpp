#include "exit/process_filter.h"

#include "exit/control_block.h"
#include "text/name_match.h"

namespace {

bool ListHasName(const char (*names)[32], int32_t count, const char *processName) {
  for (int32_t i = 0; i < count; i++) {
    if (CompareModuleNameNocase(processName, names[i]) == 1) {
      return true;
    }
  }
  return false;
}

} // namespace

int32_t SetExecStatusFlagAndProcessNameMatchFlag(ExitControlBlock *cb) {
  const ParameterSettings &settings = cb->Settings;
  cb->ExecStatus = settings.ExecFlag;
  cb->ProcessNameMatch = 1;
  if (cb->ExecStatus == 1) {
    // A TargetProcess list, when present, decides alone.
    if (settings.TargetProcessCount > 0) {
      cb->ProcessNameMatch =
          ListHasName(settings.TargetProcess, settings.TargetProcessCount, cb->Identity.ProcessName)
              ? 1
              : 0;
    } else if (settings.ExcludeProcessCount > 0) {
      cb->ProcessNameMatch = ListHasName(settings.ExcludeProcess, settings.ExcludeProcessCount,
                                         cb->Identity.ProcessName)
                                 ? 0
                                 : 1;
    }
    cb->ExecStatus = cb->ProcessNameMatch;
    return (cb->ProcessNameMatch == 1 || settings.CreateEmptyFile == 1) ? 0 : -1;
  }
  return settings.CreateEmptyFile == 1 ? 0 : -1;
}
