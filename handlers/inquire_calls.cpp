// Inquire and set calls: ZKINQ and ZKSET. Both work on an object handle and
// carry three arrays (selectors, integer attributes, a character area),
// which the records dump in hex and, with ShowParsedData, show selector by
// selector. A call on a queue that TargetQueue does not select (its inquire
// or set flag off) is not written, only counted.
//
// The counts and the length come from the application: a negative one
// dumps nothing and shows nothing, a null array likewise, and no more than
// a fixed bound is read of any array, whatever count the application gives.
#include <string.h>

#include "format/attribute_selectors.h"
#include "handlers/handler_shape.h"
#include "handlers/handlers.h"
#include "output/record_writers.h"
#include "output/trace_text.h"

namespace {

// The most selectors and integer attributes read from a call: the queue
// manager refuses more than 256 selectors.
#define INQ_MAX_ARRAY_ENTRIES 256
// The most bytes of the character area read from a call.
#define INQ_MAX_CHAR_LENGTH 65536

// What the handlers read of one call's parameters.
struct InquireArgs {
  const ZKLONG *SelectorCount;
  const ZKLONG *Selectors;
  const ZKLONG *IntAttrCount;
  const ZKLONG *IntAttrs;
  const ZKLONG *CharAttrLength;
  const ZKCHAR *CharAttrs;
};

// The entries of an array that are read: none when the count is missing or
// negative or the array is null, never more than `bound`.
int32_t Readable(const ZKLONG *pCount, const void *array, int32_t bound) {
  if (pCount == nullptr || array == nullptr || *pCount <= 0) {
    return 0;
  }
  return *pCount < bound ? *pCount : bound;
}

int32_t SelectorsRead(const InquireArgs &a) {
  return Readable(a.SelectorCount, a.Selectors, INQ_MAX_ARRAY_ENTRIES);
}
int32_t IntAttrsRead(const InquireArgs &a) {
  return Readable(a.IntAttrCount, a.IntAttrs, INQ_MAX_ARRAY_ENTRIES);
}
int32_t CharAttrsRead(const InquireArgs &a) {
  return Readable(a.CharAttrLength, a.CharAttrs, INQ_MAX_CHAR_LENGTH);
}

// The handles and names that open the before-records of both calls.
void PutHandlesAndNames(ExitControlBlock *cb, const ZKHCONN *pHconn, const ZKHOBJ *pHobj) {
  PutHconnLine(cb, pHconn);
  PutHobjLine(cb, pHobj);
  PutObjectNameLines(cb);
}

void PutSelectors(ExitControlBlock *cb, const InquireArgs &a) {
  PutDecimalLine(cb, "SelectorCount:", a.SelectorCount);
  PutHexData(cb, "Selectors", a.Selectors, 4 * SelectorsRead(a), HEX_MODE_PLAIN);
}

void PutIntAttrs(ExitControlBlock *cb, const InquireArgs &a) {
  PutHexData(cb, "IntAttrs", a.IntAttrs, 4 * IntAttrsRead(a), HEX_MODE_PLAIN);
}

void PutCharAttrs(ExitControlBlock *cb, const InquireArgs &a) {
  PutHexData(cb, "CharAttrs", a.CharAttrs, CharAttrsRead(a), HEX_MODE_PLAIN);
}

// Each integer selector with its value (none once the values are used up).
void ShowIntValues(ExitControlBlock *cb, int32_t compCode, const InquireArgs &a) {
  ShowParsedZkinqZksetOptionsInt(cb, compCode, SelectorsRead(a), a.Selectors, IntAttrsRead(a),
                                 a.IntAttrs);
}

// Each character selector with its slice of the area.
void ShowCharValues(ExitControlBlock *cb, int32_t compCode, const InquireArgs &a) {
  ShowParsedZkinqZksetOptionsChar(cb, compCode, SelectorsRead(a), a.Selectors, IntAttrsRead(a),
                                  a.IntAttrs, CharAttrsRead(a), a.CharAttrs);
}

bool Parsed(const ExitControlBlock *cb) {
  return cb->Settings.ShowParsedData == 1;
}

// Before ZKINQ: what is asked for. Nothing has been returned yet, so the
// selectors are listed by name only.
void InquireBeforeLines(ExitControlBlock *cb, const ZKHCONN *pHconn, const ZKHOBJ *pHobj,
                        const InquireArgs &a) {
  PutHandlesAndNames(cb, pHconn, pHobj);
  PutSelectors(cb, a);
  if (Parsed(cb)) {
    int32_t selectors = SelectorsRead(a);
    ShowParsedZkinqZksetOptionsInt(cb, 0, selectors, a.Selectors, 0, nullptr);
    ShowParsedZkinqZksetOptionsChar(cb, 0, selectors, a.Selectors, 0, nullptr, 0, nullptr);
  }
  PutDecimalLine(cb, "IntAttrCount:", a.IntAttrCount);
  PutDecimalLine(cb, "CharAttrLength:", a.CharAttrLength);
}

// After ZKINQ: what the queue manager returned (or left, when it failed).
void InquireAfterLines(ExitControlBlock *cb, int32_t compCode, const InquireArgs &a) {
  PutIntAttrs(cb, a);
  if (Parsed(cb)) {
    ShowIntValues(cb, compCode, a);
  }
  PutCharAttrs(cb, a);
  if (Parsed(cb)) {
    ShowCharValues(cb, compCode, a);
  }
}

// Before ZKSET: the selectors with the values to be set.
void SetBeforeLines(ExitControlBlock *cb, const ZKHCONN *pHconn, const ZKHOBJ *pHobj,
                    const InquireArgs &a) {
  PutHandlesAndNames(cb, pHconn, pHobj);
  PutSelectors(cb, a);
  PutDecimalLine(cb, "IntAttrCount:", a.IntAttrCount);
  PutIntAttrs(cb, a);
  if (Parsed(cb)) {
    ShowIntValues(cb, 0, a);
  }
  PutDecimalLine(cb, "CharAttrLength:", a.CharAttrLength);
  PutCharAttrs(cb, a);
  if (Parsed(cb)) {
    ShowCharValues(cb, 0, a);
  }
}

InquireArgs ArgsOf(PZKLONG pSelectorCount, PPZKLONG ppSelectors, PZKLONG pIntAttrCount,
                   PPZKLONG ppIntAttrs, PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs) {
  InquireArgs a;
  a.SelectorCount = pSelectorCount;
  a.Selectors = Deref(ppSelectors);
  a.IntAttrCount = pIntAttrCount;
  a.IntAttrs = Deref(ppIntAttrs);
  a.CharAttrLength = pCharAttrLength;
  a.CharAttrs = Deref(ppCharAttrs);
  return a;
}

// The lines of a before-record of ZKINQ or ZKSET.
typedef void (*BeforeLines)(ExitControlBlock *cb, const ZKHCONN *pHconn, const ZKHOBJ *pHobj,
                            const InquireArgs &a);

// A before-record of ZKINQ or ZKSET: the header record, then the call's
// lines by `lines`. The arrays are looked at only when the record is
// written.
void AttrCallBefore(BeforeLines lines, PZKAXP axp, PZKHCONN pHconn, PZKHOBJ pHobj,
                    PZKLONG pSelectorCount, PPZKLONG ppSelectors, PZKLONG pIntAttrCount,
                    PPZKLONG ppIntAttrs, PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs,
                    PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  if (HandlerBefore(&call) != RC_OK) {
    return;
  }
  lines(
      call.Cb, pHconn, pHobj,
      ArgsOf(pSelectorCount, ppSelectors, pIntAttrCount, ppIntAttrs, pCharAttrLength, ppCharAttrs));
  HandlerBeforeEnd(&call);
}

} // namespace

void InqBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKHOBJ pHobj, PZKLONG pSelectorCount,
               PPZKLONG ppSelectors, PZKLONG pIntAttrCount, PPZKLONG ppIntAttrs,
               PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs, PZKLONG pCompCode, PZKLONG pReason) {
  AttrCallBefore(InquireBeforeLines, axp, pHconn, pHobj, pSelectorCount, ppSelectors, pIntAttrCount,
                 ppIntAttrs, pCharAttrLength, ppCharAttrs, pCompCode, pReason);
}

void InqAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PZKLONG pSelectorCount,
              PPZKLONG ppSelectors, PZKLONG pIntAttrCount, PPZKLONG ppIntAttrs,
              PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  if (HandlerAfter(&call) != RC_OK) {
    return;
  }
  InquireAfterLines(
      call.Cb, pCompCode != nullptr ? *pCompCode : 0,
      ArgsOf(pSelectorCount, ppSelectors, pIntAttrCount, ppIntAttrs, pCharAttrLength, ppCharAttrs));
  HandlerAfterEnd(&call);
}

void SetBefore(PZKAXP axp, PZKAXC, PZKHCONN pHconn, PZKHOBJ pHobj, PZKLONG pSelectorCount,
               PPZKLONG ppSelectors, PZKLONG pIntAttrCount, PPZKLONG ppIntAttrs,
               PZKLONG pCharAttrLength, PPZKCHAR ppCharAttrs, PZKLONG pCompCode, PZKLONG pReason) {
  AttrCallBefore(SetBeforeLines, axp, pHconn, pHobj, pSelectorCount, ppSelectors, pIntAttrCount,
                 ppIntAttrs, pCharAttrLength, ppCharAttrs, pCompCode, pReason);
}

// The record of the header only: what was set stands in the before-record.
void SetAfter(PZKAXP axp, PZKAXC, PZKHCONN, PZKHOBJ pHobj, PZKLONG, PPZKLONG, PZKLONG, PPZKLONG,
              PZKLONG, PPZKCHAR, PZKLONG pCompCode, PZKLONG pReason) {
  HandlerCall call = {axp, pCompCode, pReason, pHobj};
  call.QueueCall = 1;
  if (HandlerAfter(&call) == RC_OK) {
    HandlerAfterEnd(&call);
  }
}
