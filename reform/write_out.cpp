#include "reform/write_out.h"

#include <errno.h>

namespace wzreform {

int WriteOut(FILE *out, std::string *text, bool flush) {
  errno = 0;
  bool written = text->empty() || fwrite(text->data(), 1, text->size(), out) == text->size();
  text->clear();
  if (!written || (flush && fflush(out) != 0)) {
    if (errno == 0) {
      errno = EIO;
    }
    return -1;
  }
  return 0;
}

} // namespace wzreform
