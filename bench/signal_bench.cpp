// SPDX-License-Identifier: BSD-3-Clause
// Vector primitives on 4 MB buffers (per operand), to set against the memcpy and
// memset yardsticks of the same run. Bytes counted: one destination buffer.
#include <benchmark/benchmark.h>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

constexpr int kBytes = 4 << 20;

void Bytes(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBytes);
}

void BM_signal_krosCopy_8u(benchmark::State& state) {
  const std::vector<Kro8u> a(kBytes, 1);
  std::vector<Kro8u> b(kBytes);
  for (auto _ : state) {
    krosCopy_8u(a.data(), b.data(), kBytes);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}
BENCHMARK(BM_signal_krosCopy_8u)->Name("BM_signal_krosCopy_8u/4MB");

void BM_signal_krosSet_8u(benchmark::State& state) {
  std::vector<Kro8u> b(kBytes);
  for (auto _ : state) {
    krosSet_8u(7, b.data(), kBytes);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}
BENCHMARK(BM_signal_krosSet_8u)->Name("BM_signal_krosSet_8u/4MB");

// op(a, b, dst, n, scaleFactor) over 16-bit vectors; the divisors avoid zero.
template <KroStatus (*kOp)(const Kro16s*, const Kro16s*, Kro16s*, int, int)>
void Binary16s(benchmark::State& state) {
  const int n = kBytes / 2, sf = static_cast<int>(state.range(0));
  const auto a = kro_bench::RandomVector<Kro16s>(n, 1, 3000, 1);
  const auto b = kro_bench::RandomVector<Kro16s>(n, -3000, 3000, 2);
  std::vector<Kro16s> d(n);
  for (auto _ : state) {
    kOp(a.data(), b.data(), d.data(), n, sf);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}
BENCHMARK(Binary16s<krosMul_16s_Sfs>)->Name("BM_signal_krosMul_16s_Sfs/4MB")->Arg(4);
BENCHMARK(Binary16s<krosDiv_16s_Sfs>)->Name("BM_signal_krosDiv_16s_Sfs/4MB")->Arg(0);

void BM_signal_krosMulC_16s_Sfs(benchmark::State& state) {
  const int n = kBytes / 2;
  const auto a = kro_bench::RandomVector<Kro16s>(n, -32768, 32767);
  std::vector<Kro16s> d(n);
  for (auto _ : state) {
    krosMulC_16s_Sfs(a.data(), 1234, d.data(), n, 11);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}
BENCHMARK(BM_signal_krosMulC_16s_Sfs)->Name("BM_signal_krosMulC_16s_Sfs/4MB");

void BM_signal_krosDivC_16s_Sfs(benchmark::State& state) {
  const int n = kBytes / 2;
  const auto a = kro_bench::RandomVector<Kro16s>(n, -32768, 32767);
  std::vector<Kro16s> d(n);
  for (auto _ : state) {
    krosDivC_16s_Sfs(a.data(), 7, d.data(), n, 0);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}
BENCHMARK(BM_signal_krosDivC_16s_Sfs)->Name("BM_signal_krosDivC_16s_Sfs/4MB");

}  // namespace
