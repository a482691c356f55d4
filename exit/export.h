// Marks a function as part of the exit library's outside.
#pragma once

#define WZ_EXPORT extern "C" __attribute__((visibility("default")))
