// SPDX-License-Identifier: BSD-3-Clause
// One 2D level of the 5/3 and 9/7 wavelets on a tile, in place and out of place, the
// streaming and region forms, and the component transforms on three planes;
// throughput in samples and bytes per second against memcpy of the same bytes.
#include <benchmark/benchmark.h>
#include <string.h>

#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

// ---- One 2D level of the wavelets on a 2048x2048 tile, samples per second (and
// bytes of the tile per second: each level reads and writes every sample at least
// once). BM_yardstick_wavelet_memcpy copies the 32-bit tile.

constexpr int kSide = 2048;
constexpr int64_t kTileSamples = int64_t{kSide} * kSide;

template <class T>
struct Tile {
  std::vector<T> img = kro_bench::RandomVector<T>(kTileSamples, -1000, 1000);
  std::vector<Kro8u> buf;
  static constexpr int kStep = kSide * static_cast<int>(sizeof(T));
  static constexpr KroiRect kRect = {0, 0, kSide, kSide};
  // Four bands of the out-of-place forms, each a quarter of the tile.
  std::vector<T> bands = kro_bench::RandomVector<T>(kTileSamples, -1000, 1000);
  T* band[4] = {&bands[0], &bands[kTileSamples / 4], &bands[kTileSamples / 2],
                &bands[3 * kTileSamples / 4]};
  const T* cband[4] = {band[0], band[1], band[2], band[3]};
  int band_step[4] = {kStep / 2, kStep / 2, kStep / 2, kStep / 2};
};

template <class T>
void CountTile(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kTileSamples);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kTileSamples * 2 * sizeof(T));
}

void BM_yardstick_wavelet_memcpy(benchmark::State& state) {
  Tile<Kro32s> t;
  for (auto _ : state) {
    memcpy(t.bands.data(), t.img.data(), kTileSamples * sizeof(Kro32s));
    benchmark::ClobberMemory();
  }
  CountTile<Kro32s>(state);
}
BENCHMARK(BM_yardstick_wavelet_memcpy)->Name("BM_yardstick_wavelet_memcpy/2048")->UseRealTime();

// In place: the same tile transformed over and over (integer samples only wrap or
// saturate, at the same speed).
template <class T, auto kSize, auto kFn>
void InPlace(benchmark::State& state) {
  Tile<T> t;
  int size = 0;
  kSize(&Tile<T>::kRect, &size);
  t.buf.resize(size);
  for (auto _ : state) {
    kFn(t.img.data(), Tile<T>::kStep, &Tile<T>::kRect, t.buf.data());
    benchmark::ClobberMemory();
  }
  CountTile<T>(state);
}
template <class T, auto kSize, auto kFn>
void FwdOutOfPlace(benchmark::State& state) {
  Tile<T> t;
  int size = 0;
  kSize(&Tile<T>::kRect, &size);
  t.buf.resize(size);
  for (auto _ : state) {
    kFn(t.img.data(), Tile<T>::kStep, t.band, t.band_step, &Tile<T>::kRect, t.buf.data());
    benchmark::ClobberMemory();
  }
  CountTile<T>(state);
}
template <class T, auto kSize, auto kFn>
void InvOutOfPlace(benchmark::State& state) {
  Tile<T> t;
  int size = 0;
  kSize(&Tile<T>::kRect, &size);
  t.buf.resize(size);
  for (auto _ : state) {
    kFn(t.cband, t.band_step, t.img.data(), Tile<T>::kStep, &Tile<T>::kRect, t.buf.data());
    benchmark::ClobberMemory();
  }
  CountTile<T>(state);
}
#define WAVELET_BENCH(name, ...) \
  BENCHMARK_TEMPLATE(__VA_ARGS__)->Name("BM_wavelet_" #name "/2048")->UseRealTime();
WAVELET_BENCH(WTFwd_B53_32s_C1IR, InPlace, Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1IR,
              kroiWTFwd_B53_JPEG2K_32s_C1IR)
WAVELET_BENCH(WTInv_B53_32s_C1IR, InPlace, Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1IR,
              kroiWTInv_B53_JPEG2K_32s_C1IR)
WAVELET_BENCH(WTFwd_B53_32s_C1R, FwdOutOfPlace, Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1R,
              kroiWTFwd_B53_JPEG2K_32s_C1R)
WAVELET_BENCH(WTInv_B53_32s_C1R, InvOutOfPlace, Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1R,
              kroiWTInv_B53_JPEG2K_32s_C1R)
WAVELET_BENCH(WTFwd_B53_16s_C1IR, InPlace, Kro16s, kroiWTGetBufSize_B53_JPEG2K_16s_C1IR,
              kroiWTFwd_B53_JPEG2K_16s_C1IR)
WAVELET_BENCH(WTInv_B53_16s_C1IR, InPlace, Kro16s, kroiWTGetBufSize_B53_JPEG2K_16s_C1IR,
              kroiWTInv_B53_JPEG2K_16s_C1IR)
WAVELET_BENCH(WTFwd_D97_32s_C1IR, InPlace, Kro32s, kroiWTGetBufSize_D97_JPEG2K_32s_C1IR,
              kroiWTFwd_D97_JPEG2K_32s_C1IR)
WAVELET_BENCH(WTInv_D97_32s_C1IR, InPlace, Kro32s, kroiWTGetBufSize_D97_JPEG2K_32s_C1IR,
              kroiWTInv_D97_JPEG2K_32s_C1IR)
WAVELET_BENCH(WTFwd_D97_16s_C1IR, InPlace, Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1IR,
              kroiWTFwd_D97_JPEG2K_16s_C1IR)
WAVELET_BENCH(WTInv_D97_16s_C1IR, InPlace, Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1IR,
              kroiWTInv_D97_JPEG2K_16s_C1IR)
WAVELET_BENCH(WTFwd_D97_16s_C1R, FwdOutOfPlace, Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1R,
              kroiWTFwd_D97_JPEG2K_16s_C1R)

// 9/7 in single precision has no 2D function: a level is the column form into two
// half-height images, then the row form on each, the caller holding the neighbours
// (here the tile is surrounded by a margin of 4 samples).
void BM_wavelet_D97_32f_ColRow(benchmark::State& state) {
  const int n = kSide, m = 4, stride = n + 2 * m;
  std::vector<float> src(size_t(stride) * stride);
  for (size_t i = 0; i < src.size(); ++i)
    src[i] = static_cast<float>((i * 2654435761u) % 1000) - 500.0f;
  std::vector<float> lo(size_t(stride) * (n / 2 + 2 * m)), hi(lo.size()),
      out(size_t(n / 2) * n * 2);
  const int step = stride * 4, half = n / 2;
  for (auto _ : state) {
    kroiWTFwdCol_D97_JPEG2K_32f_C1R(&src[size_t(m) * stride + m], step, &lo[size_t(m) * stride + m],
                                    step, &hi[size_t(m) * stride + m], step, KroiSize{n, half}, 0);
    kroiWTFwdRow_D97_JPEG2K_32f_C1R(&lo[size_t(m) * stride + m], step, &out[0], half * 4,
                                    &out[size_t(half) * half], half * 4, KroiSize{half, half}, 0);
    kroiWTFwdRow_D97_JPEG2K_32f_C1R(
        &hi[size_t(m) * stride + m], step, &out[size_t(2) * half * half], half * 4,
        &out[size_t(3) * half * half], half * 4, KroiSize{half, half}, 0);
    benchmark::ClobberMemory();
  }
  CountTile<float>(state);
}
BENCHMARK(BM_wavelet_D97_32f_ColRow)->Name("BM_wavelet_D97_32f_ColRow/2048")->UseRealTime();

// The vertical pass alone through the streaming column step, row pair by row pair.
void BM_wavelet_WTFwdColLift_D97_32f(benchmark::State& state) {
  const int n = kSide;
  std::vector<float> src(size_t(n) * n), rows(size_t(5) * n);
  for (size_t i = 0; i < src.size(); ++i)
    src[i] = static_cast<float>((i * 2654435761u) % 1000) - 500.0f;
  for (auto _ : state) {
    float* r[5] = {&rows[0], &rows[n], &rows[2 * n], &rows[3 * n], &rows[4 * n]};
    for (int k = 0; k + 2 < n; k += 2) {
      kroiWTFwdColLift_D97_JPEG2K_32f_C1(&src[size_t(k) * n], &src[size_t(k + 1) * n],
                                         &src[size_t(k + 2) * n], r[0], r[1], r[2], r[3], r[4], n);
      float* l = r[0];
      float* h = r[2];
      r[0] = r[1], r[2] = r[3], r[3] = r[4], r[1] = l, r[4] = h;
    }
    benchmark::ClobberMemory();
  }
  CountTile<float>(state);
}
BENCHMARK(BM_wavelet_WTFwdColLift_D97_32f)
    ->Name("BM_wavelet_WTFwdColLift_D97_32f/2048")
    ->UseRealTime();

// ---- Component transforms on a 3840x2400 image (9.2 Mpixel), pixels and bytes per
// second. BM_yardstick_component_memcpy copies the bytes the 32-bit planar forms
// read and write (three planes each way): streaming kernels compare their bytes/s
// with its bytes/s. Run with --kroj_threads=2 for the row-parallel 32s RCT figures.

constexpr int kW = 3840, kH = 2400;
constexpr int64_t kPixels = int64_t{kW} * kH;

void Count(benchmark::State& state, int64_t bytes) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kPixels);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
}

template <class T>
struct Planes {
  std::vector<T> v[3] = {kro_bench::RandomVector<T>(kPixels, 0, 255, 1),
                         kro_bench::RandomVector<T>(kPixels, 0, 255, 2),
                         kro_bench::RandomVector<T>(kPixels, 0, 255, 3)};
  std::vector<T> c3 = kro_bench::RandomVector<T>(3 * kPixels, 0, 255, 4);
  T* p[3] = {v[0].data(), v[1].data(), v[2].data()};
  const T* cp[3] = {v[0].data(), v[1].data(), v[2].data()};
  static constexpr int kStep = kW * static_cast<int>(sizeof(T));
};

void BM_yardstick_component_memcpy(benchmark::State& state) {
  Planes<Kro32s> img;
  for (auto _ : state) {
    for (int c = 0; c < 3; ++c)
      memcpy(img.c3.data() + c * kPixels, img.p[c], kPixels * sizeof(Kro32s));
    benchmark::ClobberMemory();
  }
  Count(state, 2 * 3 * kPixels * sizeof(Kro32s));
}
BENCHMARK(BM_yardstick_component_memcpy)
    ->Name("BM_yardstick_component_memcpy/3840x2400")
    ->UseRealTime();

// Planar in place; the 32f forms run forward and inverse in turn so that repeated
// passes neither grow nor decay into denormals (each pass counts).
template <class T, auto... kFns>
void PlanesInPlace(benchmark::State& state) {
  Planes<T> img;
  for (auto _ : state) {
    (kFns(img.p, Planes<T>::kStep, KroiSize{kW, kH}), ...);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kPixels * sizeof...(kFns));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPixels * 6 * sizeof(T) *
                          sizeof...(kFns));
}
template <class T, auto kFn>
void Split(benchmark::State& state) {
  Planes<T> img;
  for (auto _ : state) {
    kFn(img.c3.data(), 3 * Planes<T>::kStep, img.p, Planes<T>::kStep, KroiSize{kW, kH});
    benchmark::ClobberMemory();
  }
  Count(state, kPixels * 6 * sizeof(T));
}
template <class T, auto kFn>
void Merge(benchmark::State& state) {
  Planes<T> img;
  for (auto _ : state) {
    kFn(img.cp, Planes<T>::kStep, img.c3.data(), 3 * Planes<T>::kStep, KroiSize{kW, kH});
    benchmark::ClobberMemory();
  }
  Count(state, kPixels * 6 * sizeof(T));
}
#define COMPONENT_BENCH(name, ...) \
  BENCHMARK_TEMPLATE(__VA_ARGS__)->Name("BM_component_" #name "/3840x2400")->UseRealTime();
COMPONENT_BENCH(RCTFwd_32s_P3IR, PlanesInPlace, Kro32s, kroiRCTFwd_JPEG2K_32s_P3IR)
COMPONENT_BENCH(RCTInv_32s_P3IR, PlanesInPlace, Kro32s, kroiRCTInv_JPEG2K_32s_P3IR)
COMPONENT_BENCH(RCTFwd_16s_P3IR, PlanesInPlace, Kro16s, kroiRCTFwd_JPEG2K_16s_P3IR)
COMPONENT_BENCH(ICTFwd_32s_P3IR, PlanesInPlace, Kro32s, kroiICTFwd_JPEG2K_32s_P3IR)
COMPONENT_BENCH(ICTInv_32s_P3IR, PlanesInPlace, Kro32s, kroiICTInv_JPEG2K_32s_P3IR)
COMPONENT_BENCH(ICTFwd_16s_P3IR, PlanesInPlace, Kro16s, kroiICTFwd_JPEG2K_16s_P3IR)
COMPONENT_BENCH(ICTFwdInv_32f_P3IR, PlanesInPlace, Kro32f, kroiICTFwd_JPEG2K_32f_P3IR,
                kroiICTInv_JPEG2K_32f_P3IR)
COMPONENT_BENCH(RCTFwd_32s_C3P3R, Split, Kro32s, kroiRCTFwd_JPEG2K_32s_C3P3R)
COMPONENT_BENCH(RCTInv_32s_P3C3R, Merge, Kro32s, kroiRCTInv_JPEG2K_32s_P3C3R)
COMPONENT_BENCH(ICTFwd_32f_C3P3R, Split, Kro32f, kroiICTFwd_JPEG2K_32f_C3P3R)
COMPONENT_BENCH(ICTInv_32f_P3C3R, Merge, Kro32f, kroiICTInv_JPEG2K_32f_P3C3R)

}  // namespace
