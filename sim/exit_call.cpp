#include "exit_call.h"

#include <cstring>

#include "names.h"

namespace zkqm {
namespace {

void fillParameters(const ExitInstance &exit, ZKLONG exitFunction, ZKAXP &axp) {
  const Connection &connection = *exit.connection;
  const ExitDefinition &def = exit.module->definition;
  std::memset(&axp, 0, sizeof axp);
  std::memcpy(axp.StrucId, ZKAXP_STRUC_ID, 4);
  axp.Version = connection.identity.axpVersion;
  axp.ExitId = ZKXT_API_EXIT;
  axp.ExitReason = ZKXR_CONNECTION;
  axp.ExitResponse = ZKXCC_OK;
  axp.ExitResponse2 = ZKXR2_DEFAULT_CONTINUATION;
  axp.Feedback = 0;
  axp.APICallerType = connection.identity.callerType;
  std::memcpy(axp.ExitUserArea, exit.userArea, sizeof axp.ExitUserArea);
  setBlankPadded(axp.ExitData, sizeof axp.ExitData, def.data);
  setBlankPadded(axp.ExitInfoName, sizeof axp.ExitInfoName, def.name);
  std::memcpy(axp.ExitPDArea, exit.pdArea, sizeof axp.ExitPDArea);
  setBlankPadded(axp.QMgrName, sizeof axp.QMgrName, connection.qmgrName);
  axp.ExitChainAreaPtr = connection.chainArea;
  axp.Hconfig = exit.hconfig;
  axp.Function = exitFunction;
  axp.ExitMsgHandle = 0;
}

// The fields of the ZKAXP that belong to the queue manager.
void checkParameters(const ZKAXP &before, const ZKAXP &after, std::vector<std::string> &out) {
#define ZKQM_CHECK(field)                                                                          \
  if (std::memcmp(&before.field, &after.field, sizeof before.field) != 0) {                        \
    out.push_back("ZKAXP " #field);                                                                \
  }
  ZKQM_CHECK(StrucId)
  ZKQM_CHECK(Version)
  ZKQM_CHECK(ExitId)
  ZKQM_CHECK(ExitReason)
  ZKQM_CHECK(APICallerType)
  ZKQM_CHECK(ExitData)
  ZKQM_CHECK(ExitInfoName)
  ZKQM_CHECK(QMgrName)
  ZKQM_CHECK(Hconfig)
  ZKQM_CHECK(Function)
  ZKQM_CHECK(ExitMsgHandle)
#undef ZKQM_CHECK
}

} // namespace

ExitAnswer callConnectionFunction(ExitInstance &exit, ZKLONG exitFunction, PZK_INIT_EXIT function,
                                  ZKLONG &compCode, ZKLONG &reason) {
  Connection &connection = *exit.connection;
  ZKAXP axp;
  fillParameters(exit, exitFunction, axp);
  ZKAXC axc;
  connection.fillContext(axc);
  const ZKAXP axpSent = axp;
  const ZKAXC axcSent = axc;

  function(&axp, &axc, &compCode, &reason);

  std::memcpy(exit.userArea, axp.ExitUserArea, sizeof exit.userArea);
  std::memcpy(exit.pdArea, axp.ExitPDArea, sizeof exit.pdArea);
  connection.chainArea = axp.ExitChainAreaPtr;

  ExitAnswer answer;
  answer.response = axp.ExitResponse;
  answer.response2 = axp.ExitResponse2;
  checkParameters(axpSent, axp, answer.violations);
  if (std::memcmp(&axcSent, &axc, sizeof axc) != 0) {
    answer.violations.push_back("ZKAXC");
  }
  return answer;
}

const char *chainAreaChange(ZKPTR before, ZKPTR after) {
  if (before == nullptr) {
    return after == nullptr ? "empty" : "set";
  }
  if (after == nullptr) {
    return "cleared";
  }
  return before == after ? "kept" : "changed";
}

} // namespace zkqm
