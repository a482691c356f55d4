# The fuzzing build: 32-bit like every build, compiled by clang 14 with the
# libFuzzer coverage hooks, AddressSanitizer and UndefinedBehaviorSanitizer
# on every object (the exit's own code included). Any sanitizer report ends
# the run as a crash. Configure with -DWZ_FUZZ_ENGINE=ON as well (see the
# Makefile's fuzz target).
include(${CMAKE_CURRENT_LIST_DIR}/../cmake/i386.cmake)

set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)

set(WZ_FUZZ_FLAGS
    "-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer")
set(CMAKE_C_FLAGS_INIT "-m32 ${WZ_FUZZ_FLAGS}")
set(CMAKE_CXX_FLAGS_INIT "-m32 ${WZ_FUZZ_FLAGS}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-m32 -fsanitize=address,undefined")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-m32 -fsanitize=address,undefined")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-m32 -fsanitize=address,undefined")
