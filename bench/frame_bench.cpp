// SPDX-License-Identifier: BSD-3-Clause
// Allocator cost, and memcpy/memset as the bandwidth yardsticks of the streaming kernels.
#include <benchmark/benchmark.h>
#include <string.h>

#include <vector>

#include "kroj.h"

namespace {

void BM_frame_krosMalloc_8u(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Kro8u* p = krosMalloc_8u(n);
    benchmark::DoNotOptimize(p);
    krosFree(p);
  }
}
BENCHMARK(BM_frame_krosMalloc_8u)->Arg(64)->Arg(1 << 20);

void BM_yardstick_memcpy(benchmark::State& state) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<unsigned char> a(n, 1), b(n);
  for (auto _ : state) {
    memcpy(b.data(), a.data(), n);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(n));
}
BENCHMARK(BM_yardstick_memcpy)->Arg(4 << 20);

void BM_yardstick_memset(benchmark::State& state) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<unsigned char> b(n);
  for (auto _ : state) {
    memset(b.data(), 7, n);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(n));
}
BENCHMARK(BM_yardstick_memset)->Arg(4 << 20);

}  // namespace
