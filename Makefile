# Entry points: `make demo` and `make test`. Both install what is missing,
# build everything 32-bit and then run.
BUILD ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= 2

.PHONY: all deps configure build test demo package bench format clean

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

# The demonstration shows what zkqm and the exit do: the build's own output
# goes to $(BUILD)/demo-build.log (its end is shown if the build fails).
demo: deps
	@scripts/quietly.sh $(BUILD)/demo-build.log "Building wz into $(BUILD)/" \
	  $(MAKE) --no-print-directory build BUILD=$(BUILD) BUILD_TYPE=$(BUILD_TYPE) JOBS=$(JOBS)
	@scripts/demo.sh $(BUILD)

# The Debian package wz_<version>_i386.deb, made by cpack in $(BUILD)/
# from what `cmake --install` puts under /opt/wz (cmake/install.cmake).
package: build
	@cd $(BUILD) && cpack --config CPackConfig.cmake

# Everything built with AddressSanitizer and UndefinedBehaviorSanitizer in
# its own folder, and the unit and end-to-end tests run there: any report
# fails its test.
SAN_BUILD ?= build-san
.PHONY: test-sanitize
test-sanitize: deps
	@if [ -f $(SAN_BUILD)/CMakeCache.txt ]; then \
	  cmake -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) -DWZ_SANITIZE=ON >/dev/null; \
	else \
	  cmake -S . -B $(SAN_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/i386.cmake \
	    -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) -DWZ_SANITIZE=ON >/dev/null; \
	fi
	@cmake --build $(SAN_BUILD) -j$(JOBS)
	@cd $(SAN_BUILD) && ctest --output-on-failure -j$(JOBS)

# The fuzz targets (fuzz/) built with clang and libFuzzer in their own
# folder, each run FUZZ_SECONDS seconds on its seed corpus; inputs that
# crash are saved in fuzz/crashes/<name>/, where `make test` replays them.
# FUZZ_TARGETS picks targets by name (default: all).
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?=
.PHONY: fuzz
fuzz:
	@scripts/install-deps.sh fuzz
	@if [ -f $(FUZZ_BUILD)/CMakeCache.txt ]; then \
	  cmake -S . -B $(FUZZ_BUILD) >/dev/null; \
	else \
	  cmake -S . -B $(FUZZ_BUILD) -DCMAKE_TOOLCHAIN_FILE=fuzz/clang-libfuzzer.cmake \
	    -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) -DWZ_FUZZ_ENGINE=ON >/dev/null; \
	fi
	@cmake --build $(FUZZ_BUILD) -j$(JOBS) --target wz_fuzz_all
	@fuzz/run.sh $(FUZZ_BUILD) $(FUZZ_SECONDS) $(FUZZ_TARGETS)

format:
	@clang-format -i $$(git ls-files '*.c' '*.cpp' '*.h')

clean:
	@rm -rf $(BUILD)
