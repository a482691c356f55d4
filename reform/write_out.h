// Writing a format's buffered text to its output.
#pragma once

#include <stdio.h>

#include <string>

namespace wzreform {

// Writes `text` to `out` and empties it; with `flush` also flushes `out`.
// 0, or -1 with errno set (EIO when the stream gave no reason).
int WriteOut(FILE *out, std::string *text, bool flush);

} // namespace wzreform
