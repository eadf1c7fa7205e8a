// SPDX-License-Identifier: BSD-3-Clause
// Vector primitives on 4 MB buffers (per operand). Bytes counted: one destination
// buffer. Each member's peer (BM_peer_signal_<name>) is memcpy, or memset for the
// fill, of as many bytes in the same run, so the printed speed-up is the fraction of
// memcpy's bandwidth. The scaled 16-bit products and divisions also run on every
// SIMD target this CPU has, as .../<target>.
#include <string.h>

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

#include <hwy/targets.h>

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

void BM_signal_krosSet_8u(benchmark::State& state) {
  std::vector<Kro8u> b(kBytes);
  for (auto _ : state) {
    krosSet_8u(7, b.data(), kBytes);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}

// op(a, b, dst, n, scaleFactor) over 16-bit vectors; the divisors avoid zero.
template <KroStatus (*kOp)(const Kro16s*, const Kro16s*, Kro16s*, int, int)>
void Binary16s(benchmark::State& state, int sf) {
  const int n = kBytes / 2;
  const auto a = kro_bench::RandomVector<Kro16s>(n, 1, 3000, 1);
  const auto b = kro_bench::RandomVector<Kro16s>(n, -3000, 3000, 2);
  std::vector<Kro16s> d(n);
  for (auto _ : state) {
    kOp(a.data(), b.data(), d.data(), n, sf);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}

template <KroStatus (*kOp)(const Kro16s*, Kro16s, Kro16s*, int, int)>
void ByConstant16s(benchmark::State& state, Kro16s val, int sf) {
  const int n = kBytes / 2;
  const auto a = kro_bench::RandomVector<Kro16s>(n, -32768, 32767);
  std::vector<Kro16s> d(n);
  for (auto _ : state) {
    kOp(a.data(), val, d.data(), n, sf);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}

void Memcpy(benchmark::State& state) {
  const std::vector<Kro8u> a(kBytes, 1);
  std::vector<Kro8u> b(kBytes);
  for (auto _ : state) {
    memcpy(b.data(), a.data(), kBytes);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}

void Memset(benchmark::State& state) {
  std::vector<Kro8u> b(kBytes);
  for (auto _ : state) {
    memset(b.data(), 7, kBytes);
    benchmark::ClobberMemory();
  }
  Bytes(state);
}

void OnTarget(benchmark::State& state, int64_t target, void (*run)(benchmark::State&)) {
  hwy::SetSupportedTargetsForTest(target);
  run(state);
  hwy::SetSupportedTargetsForTest(0);
}

const bool kRegistered = [] {
  struct Case {
    const char* name;
    void (*run)(benchmark::State&);
    bool per_target;
  };
  static const Case kCases[] = {
      {"krosCopy_8u/4MB", BM_signal_krosCopy_8u, false},
      {"krosSet_8u/4MB", BM_signal_krosSet_8u, false},
      {"krosMul_16s_Sfs/4MB/4", [](benchmark::State& s) { Binary16s<krosMul_16s_Sfs>(s, 4); },
       true},
      {"krosDiv_16s_Sfs/4MB/0", [](benchmark::State& s) { Binary16s<krosDiv_16s_Sfs>(s, 0); },
       true},
      {"krosMulC_16s_Sfs/4MB",
       [](benchmark::State& s) { ByConstant16s<krosMulC_16s_Sfs>(s, 1234, 11); }, true},
      {"krosDivC_16s_Sfs/4MB",
       [](benchmark::State& s) { ByConstant16s<krosDivC_16s_Sfs>(s, 7, 0); }, true},
  };
  for (const Case& c : kCases) {
    const std::string name = c.name;
    benchmark::RegisterBenchmark(("BM_signal_" + name).c_str(), c.run);
    benchmark::RegisterBenchmark(("BM_peer_signal_" + name).c_str(),
                                 name.rfind("krosSet", 0) == 0 ? Memset : Memcpy);
    if (!c.per_target) continue;
    for (int64_t t : hwy::SupportedAndGeneratedTargets()) {
      benchmark::RegisterBenchmark(("BM_signal_" + name + "/" + hwy::TargetName(t)).c_str(),
                                   OnTarget, t, c.run);
    }
  }
  return true;
}();

}  // namespace
