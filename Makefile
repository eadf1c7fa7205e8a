# Thin wrapper over CMake.
#   make test                      install deps, configure, build, run every test
#   make test SANITIZE=address,undefined   the same with sanitizers (in build-san/)
#   make bench                     build and run kroj_bench and kroj_rd, write the report
#                                  build-bench/report/README.md (SVG charts beside it)
#   make demo                      build krojcodec, encode and decode the built-in image in
#                                  every mode, print a table, leave the files in out/
#   make tsan                      ThreadSanitizer build with clang and its OpenMP runtime
#                                  (build-tsan/): the thread and row-parallel tests
#   make valgrind                  memcheck over the unit tests and the demo (build-vg/)
#   make fuzz                      libFuzzer targets with ASan and UBSan (build-fuzz/), then
#                                  FUZZ=<target> FUZZ_ARGS="-max_total_time=60" runs one
BUILD_TYPE ?= Release
SANITIZE ?=
JOBS ?= $(shell nproc)
ifeq ($(SANITIZE),)
BUILD ?= build
else
BUILD ?= build-san
endif
CMAKE_FLAGS ?=

.PHONY: all deps configure build test bench demo tsan valgrind fuzz clean

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

# make bench: kroj_bench with the peers (console output in build-bench/bench.txt), the
# streaming, DCT and wavelet families once per SIMD target, kroj_rd's rate-PSNR points, then
# scripts/bench_report.py writes build-bench/report/README.md and prints its summary.
BENCH_MIN_TIME ?= 0.1
BENCH_TARGETS ?= AVX2 SSE4 SCALAR
BENCH_TARGET_FILTER ?= ^BM_(colour|component|wavelet|dct|image|signal)_
bench: deps
	@cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DKROJ_BUILD_BENCH=ON \
	  -DKROJ_BUILD_TESTS=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-bench -j $(JOBS) --target kroj_bench
	@if grep -q '^build kroj_rd\|bench/kroj_rd:' build-bench/build.ninja; then \
	  cmake --build build-bench -j $(JOBS) --target kroj_rd; fi
	@rm -f build-bench/bench-target-*.json build-bench/rd.json
	@cat /proc/loadavg > build-bench/loadavg.txt 2>/dev/null || true
	@echo "kroj_bench: all benchmarks, best target (log in build-bench/bench.txt)"
	@./build-bench/bench/kroj_bench --benchmark_out=build-bench/bench.json \
	  --benchmark_out_format=json --benchmark_min_time=$(BENCH_MIN_TIME) $(BENCH_ARGS) \
	  > build-bench/bench.txt 2>&1 || { tail -5 build-bench/bench.txt; exit 1; }
	@avail=" $$(./build-bench/bench/kroj_bench --kroj_list_targets | tr '\n' ' ')"; \
	for t in $(BENCH_TARGETS); do \
	  case "$$avail" in *" $$t "*) ;; *) echo "kroj_bench: no $$t on this CPU"; continue;; esac; \
	  echo "kroj_bench: streaming, DCT and wavelet families on $$t"; \
	  ./build-bench/bench/kroj_bench --kroj_target=$$t --benchmark_min_time=0.03 \
	    --benchmark_filter='$(BENCH_TARGET_FILTER)' --benchmark_out_format=json \
	    --benchmark_out=build-bench/bench-target-$$t.json > build-bench/bench-target-$$t.txt 2>&1 \
	    || { tail -5 build-bench/bench-target-$$t.txt; exit 1; }; \
	done
	@if [ -x build-bench/bench/kroj_rd ]; then echo "kroj_rd: rate against PSNR"; \
	  ./build-bench/bench/kroj_rd --json=build-bench/rd.json > build-bench/rd.csv; fi
	@python3 scripts/bench_report.py --dir build-bench

demo: configure
	@cmake --build $(BUILD) -j $(JOBS) --target krojcodec
	@$(BUILD)/examples/krojcodec demo --out out $(DEMO_ARGS)

# Tests that run threads: the row-parallel rule, every row-parallel family, and the
# threads that use distinct states at once. OpenMP synchronisation reaches
# ThreadSanitizer through LLVM's archer tool, which wants the uninstrumented OpenMP
# runtime's own accesses ignored (they are ordered by atomics ThreadSanitizer cannot see).
TSAN_TESTS ?= RowParallel.*:*ThreadCount*:*ParallelRows*:Threads.*
tsan: deps
	@cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
	  -DCMAKE_CXX_COMPILER=clang++ -DKROJ_SANITIZE=thread -DKROJ_BUILD_EXAMPLES=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-tsan -j $(JOBS) --target unit_tests
	@omp=$$(sed -n 's/^OpenMP_omp_LIBRARY:FILEPATH=//p' build-tsan/CMakeCache.txt); \
	  test -f "$$(dirname "$$omp")/libarcher.so" || { echo "tsan: no libarcher.so beside $$omp"; exit 1; }; \
	  OMP_TOOL_LIBRARIES=$$(dirname "$$omp")/libarcher.so \
	  TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ignore_noninstrumented_modules=1" \
	  build-tsan/tests/unit_tests --gtest_filter='$(TSAN_TESTS)'

valgrind: deps
	@cmake -S . -B build-vg -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-vg -j $(JOBS) --target unit_tests krojcodec
	@./scripts/valgrind.sh build-vg

FUZZ ?=
FUZZ_ARGS ?= -max_total_time=60
fuzz: deps
	@cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
	  -DCMAKE_CXX_COMPILER=clang++ -DKRO_BUILD_FUZZ=ON -DKROJ_SANITIZE=address,undefined \
	  -DKROJ_BUILD_TESTS=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-fuzz -j $(JOBS)
	@if [ -n "$(FUZZ)" ]; then mkdir -p build-fuzz/corpus/$(FUZZ) && \
	  build-fuzz/fuzz/$(FUZZ)_fuzzer build-fuzz/corpus/$(FUZZ) fuzz/corpus/$(FUZZ) $(FUZZ_ARGS); fi

clean:
	rm -rf build build-* out
