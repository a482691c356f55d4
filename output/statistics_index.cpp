// The functions with counter records, in the order the summary lists them.
#include "output/statistics_index.h"

#include "exit/control_block.h"
#include "zk/zk.h"

namespace {

// The functions with counter records, in summary order.
constexpr int32_t kStatisticsOrder[STATISTICS_FUNCTION_COUNT] = {
    ZKXF_CONN,     ZKXF_CONNX,     ZKXF_DISC,      ZKXF_OPEN,       ZKXF_CLOSE,   ZKXF_GET,
    ZKXF_PUT,      ZKXF_PUT1,      ZKXF_SET,       ZKXF_INQ,        ZKXF_CMIT,    ZKXF_BACK,
    ZKXF_BEGIN,    ZKXF_STAT,      ZKXF_SUB,       ZKXF_SUBRQ,      ZKXF_CTL,     ZKXF_CB,
    ZKXF_CALLBACK, ZKXF_XACLOSE,   ZKXF_XACOMMIT,  ZKXF_XACOMPLETE, ZKXF_XAEND,   ZKXF_XAFORGET,
    ZKXF_XAOPEN,   ZKXF_XAPREPARE, ZKXF_XARECOVER, ZKXF_XAROLLBACK, ZKXF_XASTART, ZKXF_AXREG,
    ZKXF_AXUNREG};

// Function codes run from 1 to ZKXF_AXUNREG: the index of every code is
// looked up in a table made from the order above when the code is compiled,
// as every after-call asks for it.
#define STATISTICS_CODE_LIMIT (ZKXF_AXUNREG + 1)

struct StatisticsIndexTable {
  int8_t Index[STATISTICS_CODE_LIMIT];
};

constexpr StatisticsIndexTable MakeStatisticsIndexTable() {
  StatisticsIndexTable table = {};
  for (int32_t code = 0; code < STATISTICS_CODE_LIMIT; code++) {
    table.Index[code] = -1;
  }
  for (int32_t i = 0; i < STATISTICS_FUNCTION_COUNT; i++) {
    table.Index[kStatisticsOrder[i]] = (int8_t)i;
  }
  return table;
}

constexpr StatisticsIndexTable kStatisticsIndex = MakeStatisticsIndexTable();

} // namespace

int32_t StatisticsIndexOfFunction(int32_t function) {
  if ((uint32_t)function >= (uint32_t)STATISTICS_CODE_LIMIT) {
    return -1;
  }
  return kStatisticsIndex.Index[function];
}
