// The checks every parsed view of untrusted bytes must pass, shared by the
// fuzz targets of message data.
#pragma once

#include <stddef.h>

#include <string>

// The text is whole lines, each starting with "|", holding no control
// character but the line feed and no NUL, and no more of them than a view of
// `dataSize` bytes can need.
void CheckParsedText(const std::string &text, size_t dataSize);
