// SPDX-License-Identifier: BSD-3-Clause
// Block transforms over a 512x512 plane (4096 blocks): forward DCT with quantisation
// from 8-bit samples, dequantisation with inverse DCT back to samples, the plain
// transforms, the block quantisers, and the region level shifts. The peers are
// libjpeg-turbo's exported accurate integer transforms (its portable C code: the
// SIMD ones are internal to it): the FDCT alone, and the IDCT, which dequantises,
// transforms and range-limits like kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R.
#include <stdio.h>
#include <string.h>

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

#include <hwy/targets.h>

#include "bench_util.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_JPEG
#include <jpeglib.h>
extern "C" void jpeg_fdct_islow(int* data);  // DCTELEM is int for 8-bit samples
extern "C" void jpeg_idct_islow(j_decompress_ptr cinfo, jpeg_component_info* compptr,
                                JCOEFPTR coef_block, JSAMPARRAY output_buf,
                                JDIMENSION output_col);
#endif

namespace {

constexpr int kSide = 512, kBlocks = (kSide / 8) * (kSide / 8);

struct Tables {
  Kro16u fwd[64], inv[64];
  Tables() {
    Kro8u raw[64];
    for (int i = 0; i < 64; ++i) raw[i] = static_cast<Kro8u>(2 + i / 2);
    kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd);
    kroiQuantInvTableInit_JPEG_8u16u(raw, inv);
  }
};

void SetBlocks(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kBlocks);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kSide * kSide);
}

void BM_dct_kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(benchmark::State& state) {
  const Tables t;
  const auto px = kro_bench::RandomVector<Kro8u>(kSide * kSide, 0, 255);
  std::vector<Kro16s> coef(kSide * kSide);
  for (auto _ : state) {
    Kro16s* out = coef.data();
    for (int by = 0; by < kSide; by += 8)
      for (int bx = 0; bx < kSide; bx += 8, out += 64)
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&px[by * kSide + bx], kSide, out, t.fwd);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
BENCHMARK(BM_dct_kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R)
    ->Name("BM_dct_kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R/4096");

void BM_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(benchmark::State& state) {
  const Tables t;
  auto coef = kro_bench::RandomVector<Kro16s>(kSide * kSide, -8, 8);
  for (size_t i = 0; i < coef.size(); i += 64) coef[i] = static_cast<Kro16s>(i % 200);
  std::vector<Kro8u> px(kSide * kSide);
  for (auto _ : state) {
    const Kro16s* in = coef.data();
    for (int by = 0; by < kSide; by += 8)
      for (int bx = 0; bx < kSide; bx += 8, in += 64)
        kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(in, &px[by * kSide + bx], kSide, t.inv);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
BENCHMARK(BM_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R)
    ->Name("BM_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R/4096");

// The two hot block functions once more on every SIMD target this CPU runs, as
// .../4096/<target>; the unsuffixed runs above use the best one.
void OnTarget(benchmark::State& state, int64_t target,
              void (*run)(benchmark::State&)) {
  hwy::SetSupportedTargetsForTest(target);
  run(state);
  hwy::SetSupportedTargetsForTest(0);
}
const bool kPerTarget = [] {
  for (int64_t t : hwy::SupportedAndGeneratedTargets()) {
    const std::string suffix = std::string("/4096/") + hwy::TargetName(t);
    benchmark::RegisterBenchmark(
        ("BM_dct_kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R" + suffix).c_str(), OnTarget, t,
        BM_dct_kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R);
    benchmark::RegisterBenchmark(
        ("BM_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R" + suffix).c_str(), OnTarget, t,
        BM_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R);
  }
  return true;
}();

template <KroStatus (*kTransform)(const Kro16s*, Kro16s*)>
void BlockTransform(benchmark::State& state) {
  const auto src = kro_bench::RandomVector<Kro16s>(kSide * kSide, -128, 127);
  std::vector<Kro16s> dst(src.size());
  for (auto _ : state) {
    for (size_t i = 0; i < src.size(); i += 64) kTransform(&src[i], &dst[i]);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
BENCHMARK(BlockTransform<kroiDCT8x8Fwd_16s_C1>)->Name("BM_dct_kroiDCT8x8Fwd_16s_C1/4096");
BENCHMARK(BlockTransform<kroiDCT8x8Inv_16s_C1>)->Name("BM_dct_kroiDCT8x8Inv_16s_C1/4096");

#ifdef KROJ_HAVE_PEER_JPEG
void BM_peer_dct_Fwd(benchmark::State& state) {
  const auto src = kro_bench::RandomVector<int>(kSide * kSide, -128, 127);
  std::vector<int> work(src.size());
  for (auto _ : state) {
    work = src;
    for (size_t i = 0; i < work.size(); i += 64) jpeg_fdct_islow(&work[i]);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
BENCHMARK(BM_peer_dct_Fwd)->Name("BM_peer_dct_kroiDCT8x8Fwd_16s_C1/4096");
#endif

#ifdef KROJ_HAVE_PEER_JPEG
// The IDCT needs only the range-limit table of a decompressor (laid out as its
// master control builds it) and the component's multipliers (the steps).
void BM_peer_dct_Inv(benchmark::State& state) {
  std::vector<JSAMPLE> limit(5 * 256 + 128);
  JSAMPLE* table = limit.data() + 256;
  for (int i = 0; i < 256; ++i) table[i] = static_cast<JSAMPLE>(i);
  JSAMPLE* post = table + 128;
  for (int i = 128; i < 512; ++i) post[i] = 255;
  memset(post + 512, 0, 384);
  memcpy(post + 1024 - 128, table, 128);
  jpeg_decompress_struct cinfo{};
  cinfo.sample_range_limit = table;
  jpeg_component_info comp{};
  short mult[64];
  for (int i = 0; i < 64; ++i) mult[i] = static_cast<short>(2 + i / 2);
  comp.dct_table = mult;

  auto coef = kro_bench::RandomVector<JCOEF>(kSide * kSide, -8, 8);
  for (size_t i = 0; i < coef.size(); i += 64) coef[i] = static_cast<JCOEF>(i % 200);
  std::vector<Kro8u> px(kSide * kSide);
  std::vector<JSAMPROW> rows(kSide);
  for (int y = 0; y < kSide; ++y) rows[y] = &px[y * kSide];
  for (auto _ : state) {
    JCOEF* in = coef.data();
    for (int by = 0; by < kSide; by += 8)
      for (int bx = 0; bx < kSide; bx += 8, in += 64)
        jpeg_idct_islow(&cinfo, &comp, in, &rows[by], static_cast<JDIMENSION>(bx));
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
BENCHMARK(BM_peer_dct_Inv)->Name("BM_peer_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R/4096");
#endif

void BM_dct_kroiQuantFwd8x8_JPEG_16s_C1I(benchmark::State& state) {
  const Tables t;
  auto coef = kro_bench::RandomVector<Kro16s>(kSide * kSide, -1000, 1000);
  for (auto _ : state) {
    for (size_t i = 0; i < coef.size(); i += 64) kroiQuantFwd8x8_JPEG_16s_C1I(&coef[i], t.fwd);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
BENCHMARK(BM_dct_kroiQuantFwd8x8_JPEG_16s_C1I)->Name("BM_dct_kroiQuantFwd8x8_JPEG_16s_C1I/4096");

// Level shifts of a 1920x1080 plane on one thread (the harness default).
void BM_dct_kroiSub128_JPEG_8u16s_C1R(benchmark::State& state) {
  const int w = 1920, h = 1080;
  const auto src = kro_bench::RandomVector<Kro8u>(w * h, 0, 255);
  std::vector<Kro16s> dst(w * h);
  for (auto _ : state) {
    kroiSub128_JPEG_8u16s_C1R(src.data(), w, dst.data(), 2 * w, {w, h});
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * w * h);
}
BENCHMARK(BM_dct_kroiSub128_JPEG_8u16s_C1R)
    ->Name("BM_dct_kroiSub128_JPEG_8u16s_C1R/1920x1080")
    ->UseRealTime();

void BM_dct_kroiAdd128_JPEG_16s8u_C1R(benchmark::State& state) {
  const int w = 1920, h = 1080;
  const auto src = kro_bench::RandomVector<Kro16s>(w * h, -200, 200);
  std::vector<Kro8u> dst(w * h);
  for (auto _ : state) {
    kroiAdd128_JPEG_16s8u_C1R(src.data(), 2 * w, dst.data(), w, {w, h});
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * w * h);
}
BENCHMARK(BM_dct_kroiAdd128_JPEG_16s8u_C1R)
    ->Name("BM_dct_kroiAdd128_JPEG_16s8u_C1R/1920x1080")
    ->UseRealTime();

}  // namespace
