// The keywords of "wz.def": kind, field, accepted range and default of each.
#include <stddef.h>
#include <stdint.h>

#include <type_traits>

#include "config/parameters.h"

namespace {

// The offset of a field, checked at compile time against the type that the
// row's kind writes, so that a row cannot point a setter at the wrong field.
template <typename Want, typename Have> constexpr uint32_t FieldOffset(size_t offset) {
  static_assert(std::is_same_v<Want, Have>, "keyword kind does not match its field");
  return (uint32_t)offset;
}

#define FIELD(type, field)                                                                         \
  FieldOffset<type, std::remove_cv_t<decltype(ParameterSettings::field)>>(                         \
      offsetof(ParameterSettings, field))

#define YES_NO(field, def)                                                                         \
  { #field, PARM_KIND_YES_NO, FIELD(uint8_t, field), 0, 1, def }
#define INTEGER_ANY(keyword, field, def)                                                           \
  { keyword, PARM_KIND_INTEGER_MIN, FIELD(int32_t, field), INT32_MIN, INT32_MAX, def }
#define INTEGER_MIN(field, min, def)                                                               \
  { #field, PARM_KIND_INTEGER_MIN, FIELD(int32_t, field), min, INT32_MAX, def }
#define INTEGER_RANGE(field, min, max, def)                                                        \
  { #field, PARM_KIND_INTEGER_RANGE, FIELD(int32_t, field), min, max, def }
#define LIST(field, kind)                                                                          \
  { #field, kind, 0, 0, PARAMETER_LIST_MAX, 0 }

} // namespace

const ParameterKeywordEntry ParameterKeywordTable[] = {
    YES_NO(WriteCache, 1),
    YES_NO(WriteStream, 0),
    YES_NO(WriteAfterEachApi, 1),
    YES_NO(ShowDataConvOnGet, 0),
    YES_NO(ShowSummaryOnly, 0),
    YES_NO(ShowParsedData, 1),
    YES_NO(ShowParsedMsgContent, 1),
    YES_NO(ShowHexCharImage, 1),
    YES_NO(CreateEmptyFile, 1),
    YES_NO(ShowPerformanceOnly, 0),
    YES_NO(PutAlertFileError, 1),
    YES_NO(PutAlertFileWarning, 0),
    YES_NO(PutAlertFileInfo, 0),
    YES_NO(ShowProcessEnvValue, 0),
    YES_NO(ShowZkVersion, 1),
    YES_NO(ShowSummaryCorrelId, 1),
    YES_NO(CountSelectedCallsOnly, 0),
    YES_NO(NoExitProcessIfProcNameMismatch, 0),
    YES_NO(ShowChannelAttributes, 1),
    YES_NO(ShowXaCalls, 0),
    YES_NO(fx40217, 0),
    {"ExecFlag", PARM_KIND_EXEC_FLAG, FIELD(uint8_t, ExecFlag), 0, 1, 1},
    INTEGER_MIN(WriteBufferSize, 5000, 10000),
    INTEGER_MIN(WriteInterval, 0, 30),
    INTEGER_MIN(CompressFileSizeThreshold, 100000, 1000000),
    {"MaxFileSize", PARM_KIND_INT64_RANGE, FIELD(int64_t, MaxFileSize), 1000000, 2000000000,
     100000000},
    INTEGER_RANGE(MaxParsedOutputLineLength, 40, 999, 100),
    // Each display limit has a long and a short keyword for the same field.
    INTEGER_ANY("ShowMaxLenPut", ShowMaxLenPut, -1),
    INTEGER_ANY("ShowMaxDataLengthPut", ShowMaxLenPut, -1),
    INTEGER_ANY("ShowMaxLenGet", ShowMaxLenGet, -1),
    INTEGER_ANY("ShowMaxDataLengthGet", ShowMaxLenGet, -1),
    INTEGER_ANY("ShowMaxLenChannel", ShowMaxLenChannel, -1),
    INTEGER_ANY("ShowMaxDataLengthChannel", ShowMaxLenChannel, -1),
    INTEGER_ANY("ShowMaxLenParsedContent", ShowMaxLenParsedContent, -1),
    INTEGER_ANY("ShowMaxLenCharv", ShowMaxLenCharv, -1),
    INTEGER_ANY("ShowMaxLenCharvString", ShowMaxLenCharvString, 400),
    INTEGER_ANY("ShowPerformanceIntervalTime", ShowPerformanceIntervalTime, 0),
    INTEGER_ANY("ShowPerformanceIntervalCount", ShowPerformanceIntervalCount, 0),
    // A negative code page is replaced by the locale's once the file is read.
    INTEGER_ANY("ShowHexCharCcsid", ShowHexCharCcsid, 0),
    INTEGER_ANY("CheckUpdateRequestInterval", CheckUpdateRequestInterval, 30),
    // A second row of the same keyword: the scan stops at the row above, so
    // this one is never reached. It keeps the table's rows in the order of
    // the keyword list, which names this keyword twice.
    INTEGER_ANY("ShowPerformanceIntervalCount", ShowPerformanceIntervalCount, 0),
    {"CompressCommand", PARM_KIND_TEXT, FIELD(char[300], CompressCommand), 0, PARAMETER_COMMAND_MAX,
     0},
    LIST(TargetProcess, PARM_KIND_TARGET_PROCESS),
    LIST(ExcludeProcess, PARM_KIND_EXCLUDE_PROCESS),
    LIST(TargetQueue, PARM_KIND_TARGET_QUEUE),
    LIST(PutAlertSuppress, PARM_KIND_PUT_ALERT_SUPPRESS),
    LIST(ShowSummaryDataSuppress, PARM_KIND_SHOW_SUMMARY_DATA_SUPPRESS),
    {nullptr, PARM_KIND_YES_NO, 0, 0, 0, 0},
};
