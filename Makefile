# Entry points: `make demo` and `make test`. Both install what is missing,
# build everything 32-bit and then run.
BUILD ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= 2

.PHONY: all deps configure build test demo bench format clean

all: build

deps:
	@scripts/install-deps.sh

# The toolchain file is read when the build folder is first configured.
configure: deps
	@if [ -f $(BUILD)/CMakeCache.txt ]; then \
	  cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) >/dev/null; \
	else \
	  cmake -S . -B $(BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/i386.cmake \
	    -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) >/dev/null; \
	fi

build: configure
	@cmake --build $(BUILD) -j$(JOBS)

test: build
	@cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

demo: build
	@scripts/demo.sh $(BUILD)

format:
	@clang-format -i $$(git ls-files '*.c' '*.cpp' '*.h')

clean:
	@rm -rf $(BUILD)
