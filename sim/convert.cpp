// Character conversion of string data between the code pages zkqm knows:
// UTF-8 (1208), UTF-16 high byte first (1200), ISO Latin-1 (819), 7-bit
// ASCII (367), the PC and Windows Latin pages (437, 850, 1252: their 7-bit
// part), and the EBCDIC pages 37 and 500. A character that the target page
// lacks becomes '?'.
#include <cstdint>
#include <vector>

#include "engine.h"

namespace zkqm {
namespace {

// EBCDIC code page 37 for the code points 0x00..0x7F.
const unsigned char kAsciiToEbcdic37[128] = {
    0x00, 0x01, 0x02, 0x03, 0x37, 0x2D, 0x2E, 0x2F, 0x16, 0x05, 0x25, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
    0x10, 0x11, 0x12, 0x13, 0x3C, 0x3D, 0x32, 0x26, 0x18, 0x19, 0x3F, 0x27, 0x1C, 0x1D, 0x1E, 0x1F,
    0x40, 0x5A, 0x7F, 0x7B, 0x5B, 0x6C, 0x50, 0x7D, 0x4D, 0x5D, 0x5C, 0x4E, 0x6B, 0x60, 0x4B, 0x61,
    0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0x7A, 0x5E, 0x4C, 0x7E, 0x6E, 0x6F,
    0x7C, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6,
    0xD7, 0xD8, 0xD9, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xBA, 0xE0, 0xBB, 0xB0, 0x6D,
    0x79, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x91, 0x92, 0x93, 0x94, 0x95, 0x96,
    0x97, 0x98, 0x99, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xC0, 0x4F, 0xD0, 0xA1, 0x07};

unsigned char toEbcdic(uint32_t cp, ZKLONG ccsid) {
  if (cp >= 128) {
    return 0x6F; // '?'
  }
  if (ccsid == 500) {
    switch (cp) {
    case '[':
      return 0x4A;
    case ']':
      return 0x5A;
    case '!':
      return 0x4F;
    case '^':
      return 0x5F;
    case '|':
      return 0xBB;
    default:
      break;
    }
  }
  return kAsciiToEbcdic37[cp];
}

uint32_t fromEbcdic(unsigned char b, ZKLONG ccsid) {
  for (uint32_t cp = 0; cp < 128; ++cp) {
    if (toEbcdic(cp, ccsid) == b && !(cp == '?' && b != 0x6F)) {
      return cp;
    }
  }
  return '?';
}

bool isEbcdic(ZKLONG ccsid) {
  return ccsid == 37 || ccsid == 500;
}

std::vector<uint32_t> decode(const std::vector<unsigned char> &in, ZKLONG ccsid) {
  std::vector<uint32_t> out;
  if (ccsid == 1208) {
    for (std::size_t i = 0; i < in.size();) {
      unsigned char b = in[i];
      int extra = b < 0x80 ? 0 : (b >> 5) == 6 ? 1 : (b >> 4) == 14 ? 2 : (b >> 3) == 30 ? 3 : -1;
      if (extra < 0 || i + extra >= in.size() + (extra == 0 ? 1 : 0)) {
        out.push_back('?');
        ++i;
        continue;
      }
      uint32_t cp = extra == 0 ? b : b & (0x3F >> extra);
      for (int k = 1; k <= extra; ++k) {
        cp = (cp << 6) | (in[i + k] & 0x3F);
      }
      out.push_back(cp);
      i += static_cast<std::size_t>(extra) + 1;
    }
  } else if (ccsid == 1200) {
    for (std::size_t i = 0; i + 1 < in.size(); i += 2) {
      out.push_back(static_cast<uint32_t>(in[i] << 8 | in[i + 1]));
    }
  } else if (isEbcdic(ccsid)) {
    for (unsigned char b : in) {
      out.push_back(fromEbcdic(b, ccsid));
    }
  } else if (ccsid == 819) {
    for (unsigned char b : in) {
      out.push_back(b);
    }
  } else {
    for (unsigned char b : in) {
      out.push_back(b < 0x80 ? b : '?');
    }
  }
  return out;
}

void encode(const std::vector<uint32_t> &cps, ZKLONG ccsid, std::vector<unsigned char> &out) {
  out.clear();
  for (uint32_t cp : cps) {
    if (ccsid == 1208) {
      if (cp < 0x80) {
        out.push_back(static_cast<unsigned char>(cp));
      } else if (cp < 0x800) {
        out.push_back(static_cast<unsigned char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<unsigned char>(0x80 | (cp & 0x3F)));
      } else if (cp < 0x10000) {
        out.push_back(static_cast<unsigned char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<unsigned char>(0x80 | (cp & 0x3F)));
      } else {
        out.push_back(static_cast<unsigned char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<unsigned char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<unsigned char>(0x80 | (cp & 0x3F)));
      }
    } else if (ccsid == 1200) {
      uint32_t v = cp < 0x10000 ? cp : '?';
      out.push_back(static_cast<unsigned char>(v >> 8));
      out.push_back(static_cast<unsigned char>(v & 0xFF));
    } else if (isEbcdic(ccsid)) {
      out.push_back(toEbcdic(cp, ccsid));
    } else if (ccsid == 819) {
      out.push_back(cp < 0x100 ? static_cast<unsigned char>(cp) : '?');
    } else {
      out.push_back(cp < 0x80 ? static_cast<unsigned char>(cp) : '?');
    }
  }
}

} // namespace

bool knownCcsid(ZKLONG ccsid) {
  switch (ccsid) {
  case 1208:
  case 1200:
  case 819:
  case 367:
  case 437:
  case 850:
  case 1252:
  case 37:
  case 500:
    return true;
  default:
    return false;
  }
}

bool convertText(const std::vector<unsigned char> &in, ZKLONG from, ZKLONG to,
                 std::vector<unsigned char> &out) {
  if (!knownCcsid(from) || !knownCcsid(to)) {
    out = in;
    return false;
  }
  encode(decode(in, from), to, out);
  return true;
}

} // namespace zkqm
