# Thin wrapper over CMake.
#   make test                      install deps, configure, build, run every test
#   make test SANITIZE=address,undefined   the same with sanitizers (in build-san/)
#   make bench                     build kroj_bench and run it (results in build/bench.json)
#   make demo                      build krojcodec, encode and decode the built-in image in
#                                  every mode, print a table, leave the files in out/
BUILD_TYPE ?= Release
SANITIZE ?=
JOBS ?= $(shell nproc)
ifeq ($(SANITIZE),)
BUILD ?= build
else
BUILD ?= build-san
endif
CMAKE_FLAGS ?=

.PHONY: all deps configure build test bench demo clean

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) \
	  -DKROJ_SANITIZE=$(SANITIZE) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

bench: deps
	@cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DKROJ_BUILD_BENCH=ON \
	  -DKROJ_BUILD_TESTS=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-bench -j $(JOBS) --target kroj_bench
	@./build-bench/bench/kroj_bench --benchmark_out=build-bench/bench.json \
	  --benchmark_out_format=json $(BENCH_ARGS)

demo: configure
	@cmake --build $(BUILD) -j $(JOBS) --target krojcodec
	@$(BUILD)/examples/krojcodec demo --out out $(DEMO_ARGS)

clean:
	rm -rf build build-* out
