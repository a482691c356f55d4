// The walk through the headers of message data. Each kind of header is
// looked for once, in a fixed order, where the header before it (or the
// descriptor) named its format; the body after the last header is shown by
// its format. Offsets only grow and every step checks what remains, so the
// walk ends after a bounded number of steps whatever the data says.
#include <string.h>

#include "exit/control_block.h"
#include "format/field_primitives.h"
#include "format/message_content.h"
#include "format/message_headers.h"
#include "format/structures.h"
#include "zk/zkconst.h"

namespace {

struct ChainCursor {
  ExitControlBlock *Cb;
  const unsigned char *Data;
  int32_t Length; // of the whole message data
  int32_t Offset; // of the current header, 0 to Length
  int32_t Encoding;
  char Format[MESSAGE_FORMAT_LENGTH];
};

bool FormatIs(const ChainCursor *c, const char *name) {
  return memcmp(c->Format, name, MESSAGE_FORMAT_LENGTH) == 0;
}

int32_t Remaining(const ChainCursor *c) {
  return c->Length - c->Offset;
}

const unsigned char *Here(const ChainCursor *c) {
  return c->Data + c->Offset;
}

// Moves on by `length` bytes; false when that leaves the data (the chain
// ends there).
bool Advance(ChainCursor *c, int64_t length) {
  if (length < 0 || length > Remaining(c)) {
    c->Offset = c->Length;
    return false;
  }
  c->Offset += (int32_t)length;
  return true;
}

// A format holder cleared before each header: a header that is not shown
// names no format, and the chain goes on as for a blank one.
void ClearFormat(ChainCursor *c) {
  memset(c->Format, ' ', sizeof c->Format);
}

// The transmission-queue header and the original descriptor it carries.
void ShowTransmissionHeader(ChainCursor *c) {
  int32_t limit = c->Cb->Settings.ShowMaxLenParsedContent;
  const ZKXQH *xqh = (const ZKXQH *)c->Data;
  if (limit < 0 || limit >= ZKXQH_MSG_DESC_OFFSET) {
    ShowParsedValueOffset(c->Cb, 0, ZKXQH_MSG_DESC_OFFSET, "ZKXQH (Transmission-queue header)");
    ShowParsedZkxqh(c->Cb, xqh);
  }
  // A descriptor that claims a later version is shown with the bytes that
  // follow it, as far as the data goes.
  ZKMD md;
  memset(&md, 0, sizeof md);
  int32_t available = c->Length - ZKXQH_MSG_DESC_OFFSET;
  memcpy(&md, c->Data + ZKXQH_MSG_DESC_OFFSET,
         (size_t)(available < (int32_t)sizeof md ? available : (int32_t)sizeof md));
  if (limit < 0 || limit >= ZKXQH_LENGTH_1) {
    ShowParsedValueOffset(c->Cb, ZKXQH_MSG_DESC_OFFSET, ZKMD_LENGTH_1,
                          "ZKMD1 (Original message descriptor)");
    ShowParsedZkmd(c->Cb, &md);
  }
  memcpy(c->Format, md.Format, sizeof c->Format);
  c->Encoding = ZklongValueRegardingEncoding(md.Encoding, c->Encoding);
  c->Offset = ZKXQH_LENGTH_1;
}

// Headers that say their own length, in the order they are looked for. One
// that is not shown takes nothing; one whose length is below its fixed part
// or beyond the data ends the walk.
struct SizedHeader {
  const char *Format;
  int32_t (*Show)(ExitControlBlock *, char *, int32_t *, const void *, int32_t, uint32_t);
  int32_t Minimum;
};
const SizedHeader kSizedHeaders[] = {
    {ZKFMT_DIST_HEADER, ShowParsedZKDH, ZKDH_LENGTH_1},
    {ZKFMT_REF_MSG_HEADER, ShowParsedZKRMH, ZKRMH_LENGTH_1},
};

// Headers of one length, which the walk passes whether they are shown or
// not (after one that does not fit, the body step finds nothing left).
struct FixedSizeHeader {
  const char *Format;
  void (*Show)(ExitControlBlock *, char *, int32_t *, const void *, int32_t, uint32_t);
  int32_t Length;
};
const FixedSizeHeader kFixedSizeHeaders[] = {
    {ZKFMT_DEAD_LETTER_HEADER, ShowParsedZKDLH, ZKDLH_LENGTH_1},
    {ZKFMT_MD_EXTENSION, ShowParsedZKMDE, ZKMDE_LENGTH_2},
};

// The body after the last header, by its format.
void ShowBody(ChainCursor *c) {
  ExitControlBlock *cb = c->Cb;
  int32_t remaining = Remaining(c);
  uint32_t offset = (uint32_t)c->Offset;
  if (FormatIs(c, ZKFMT_RF_HEADER)) {
    ShowParsedZKHRF1(cb, c->Encoding, Here(c), remaining, offset);
  } else if (FormatIs(c, ZKFMT_ADMIN) || FormatIs(c, ZKFMT_PCF) || FormatIs(c, ZKFMT_EVENT)) {
    ShowParsedPCF(cb, c->Encoding, Here(c), ParsedContentClippedLength(cb, remaining, offset),
                  offset);
  } else if (FormatIs(c, ZKFMT_TRIGGER)) {
    ShowParsedZKTM(cb, c->Encoding, Here(c), remaining, offset);
  } else if (FormatIs(c, ZKFMT_EMBEDDED_PCF)) {
    ShowParsedZKEPH(cb, c->Encoding, Here(c), remaining, offset);
  } else if (ShowParsedXml(cb, Here(c), remaining, offset, "XML data") == 0) {
    ShowParsedGeneralData(cb, c->Offset, remaining);
  }
}

} // namespace

void ShowParsedMsgData(ExitControlBlock *cb, const char *format, int32_t encoding, const void *data,
                       int32_t length) {
  if (cb == nullptr || data == nullptr || length < 0) {
    return;
  }
  ChainCursor c = {cb, (const unsigned char *)data, length, 0, encoding, {}};
  memset(c.Format, ' ', sizeof c.Format);
  if (format != nullptr) {
    memcpy(c.Format, format, sizeof c.Format);
  }

  if (FormatIs(&c, ZKFMT_XMIT_Q_HEADER) && c.Length >= ZKXQH_LENGTH_1) {
    ShowTransmissionHeader(&c);
  }
  for (const SizedHeader &header : kSizedHeaders) {
    if (!FormatIs(&c, header.Format)) {
      continue;
    }
    ClearFormat(&c);
    int32_t consumed =
        header.Show(cb, c.Format, &c.Encoding, Here(&c), Remaining(&c), (uint32_t)c.Offset);
    if (consumed != 0 && (consumed < header.Minimum || !Advance(&c, consumed))) {
      return;
    }
  }
  for (const FixedSizeHeader &header : kFixedSizeHeaders) {
    if (!FormatIs(&c, header.Format)) {
      continue;
    }
    ClearFormat(&c);
    header.Show(cb, c.Format, &c.Encoding, Here(&c), Remaining(&c), (uint32_t)c.Offset);
    if (!Advance(&c, header.Length)) {
      return;
    }
  }
  // Headers of version 2 may follow one another; each takes at least its
  // fixed part, so the repetition ends with the data.
  while (FormatIs(&c, ZKFMT_RF_HEADER_2)) {
    ClearFormat(&c);
    int32_t consumed =
        ShowParsedZKHRF2(cb, c.Format, &c.Encoding, Here(&c), Remaining(&c), (uint32_t)c.Offset);
    if (consumed != 0 && !Advance(&c, consumed)) {
      return;
    }
  }
  ShowBody(&c);
}
