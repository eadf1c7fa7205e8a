// SPDX-License-Identifier: BSD-3-Clause
// Image copy, set and logical operations on 4 MB images (2048 bytes a row), in bytes
// written per second. memcpy and memset of the same rows are the peers of copy and
// set; the logical operations compare with BM_yardstick_memcpy of the same run.
#include <string.h>

#include <benchmark/benchmark.h>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

constexpr int kRowBytes = 2048;

// A byte image of state.range(0) bytes, rows of kRowBytes.
struct Image {
  explicit Image(const benchmark::State& state, uint64_t seed)
      : rows(static_cast<int>(state.range(0) / kRowBytes)),
        bytes(kro_bench::RandomVector<Kro8u>(static_cast<size_t>(rows) * kRowBytes, 0, 255, seed)) {
  }
  int rows;
  std::vector<Kro8u> bytes;
};

void Done(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void BM_image_kroiCopy_8u_C1R(benchmark::State& state) {
  Image src(state, 1), dst(state, 2);
  for (auto _ : state) {
    kroiCopy_8u_C1R(src.bytes.data(), kRowBytes, dst.bytes.data(), kRowBytes,
                    {kRowBytes, src.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_peer_image_kroiCopy_8u_C1R(benchmark::State& state) {
  Image src(state, 1), dst(state, 2);
  for (auto _ : state) {
    for (int y = 0; y < src.rows; ++y) {
      memcpy(&dst.bytes[static_cast<size_t>(y) * kRowBytes],
             &src.bytes[static_cast<size_t>(y) * kRowBytes], kRowBytes);
    }
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiCopy_16s_AC4R(benchmark::State& state) {
  Image src(state, 1), dst(state, 2);
  for (auto _ : state) {
    kroiCopy_16s_AC4R(reinterpret_cast<const Kro16s*>(src.bytes.data()), kRowBytes,
                      reinterpret_cast<Kro16s*>(dst.bytes.data()), kRowBytes,
                      {kRowBytes / 8, src.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiCopy_8u_C3P3R(benchmark::State& state) {
  Image src(state, 1), dst(state, 2);
  const int plane_rows = dst.rows / 3;  // three planes of kRowBytes / 3 a row
  for (auto _ : state) {
    Kro8u* planes[3] = {dst.bytes.data(),
                        dst.bytes.data() + static_cast<size_t>(plane_rows) * kRowBytes,
                        dst.bytes.data() + static_cast<size_t>(2 * plane_rows) * kRowBytes};
    kroiCopy_8u_C3P3R(src.bytes.data(), kRowBytes, planes, kRowBytes / 3,
                      {kRowBytes / 3, src.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiSet_8u_C1R(benchmark::State& state) {
  Image dst(state, 2);
  for (auto _ : state) {
    kroiSet_8u_C1R(7, dst.bytes.data(), kRowBytes, {kRowBytes, dst.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_peer_image_kroiSet_8u_C1R(benchmark::State& state) {
  Image dst(state, 2);
  for (auto _ : state) {
    for (int y = 0; y < dst.rows; ++y)
      memset(&dst.bytes[static_cast<size_t>(y) * kRowBytes], 7, kRowBytes);
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiSet_16s_C3R(benchmark::State& state) {
  Image dst(state, 2);
  const Kro16s value[3] = {1, -2, 3};
  for (auto _ : state) {
    kroiSet_16s_C3R(value, reinterpret_cast<Kro16s*>(dst.bytes.data()), kRowBytes,
                    {kRowBytes / 6, dst.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiAnd_8u_C1R(benchmark::State& state) {
  Image a(state, 1), b(state, 3), dst(state, 2);
  for (auto _ : state) {
    kroiAnd_8u_C1R(a.bytes.data(), kRowBytes, b.bytes.data(), kRowBytes, dst.bytes.data(),
                   kRowBytes, {kRowBytes, a.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiAndC_16u_C1IR(benchmark::State& state) {
  Image dst(state, 2);
  for (auto _ : state) {
    kroiAndC_16u_C1IR(0xFFF0, reinterpret_cast<Kro16u*>(dst.bytes.data()), kRowBytes,
                      {kRowBytes / 2, dst.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

void BM_image_kroiXorC_8u_AC4R(benchmark::State& state) {
  Image src(state, 1), dst(state, 2);
  const Kro8u value[3] = {1, 2, 3};
  for (auto _ : state) {
    kroiXorC_8u_AC4R(src.bytes.data(), kRowBytes, value, dst.bytes.data(), kRowBytes,
                     {kRowBytes / 4, src.rows});
    benchmark::ClobberMemory();
  }
  Done(state);
}

constexpr int64_t k4MB = 4 << 20;
BENCHMARK(BM_image_kroiCopy_8u_C1R)->Arg(k4MB);
BENCHMARK(BM_peer_image_kroiCopy_8u_C1R)->Arg(k4MB);
BENCHMARK(BM_image_kroiCopy_16s_AC4R)->Arg(k4MB);
BENCHMARK(BM_image_kroiCopy_8u_C3P3R)->Arg(k4MB);
BENCHMARK(BM_image_kroiSet_8u_C1R)->Arg(k4MB);
BENCHMARK(BM_peer_image_kroiSet_8u_C1R)->Arg(k4MB);
BENCHMARK(BM_image_kroiSet_16s_C3R)->Arg(k4MB);
BENCHMARK(BM_image_kroiAnd_8u_C1R)->Arg(k4MB);
BENCHMARK(BM_image_kroiAndC_16u_C1IR)->Arg(k4MB);
BENCHMARK(BM_image_kroiXorC_8u_AC4R)->Arg(k4MB);

}  // namespace
