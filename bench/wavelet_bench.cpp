// SPDX-License-Identifier: BSD-3-Clause
// One 2D level of the 5/3 and 9/7 wavelets on a tile, in place and out of place, and
// the component transforms on three planes; throughput in samples per second.
#include <benchmark/benchmark.h>
#include <string.h>

#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

template <class T>
struct Tile {
  int n;
  std::vector<T> img;
  std::vector<Kro8u> buf;
  explicit Tile(int side, int64_t range) : n(side), img(kro_bench::RandomVector<T>(size_t(side) * side, -range, range)) {}
  int step() const { return n * static_cast<int>(sizeof(T)); }
  KroiRect rect() const { return {0, 0, n, n}; }
};

void Items(benchmark::State& state, int64_t per_iteration) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * per_iteration);
}

// In place: the same tile transformed over and over (integer samples only wrap).
template <class T, auto kSize, auto kFn>
void InPlace(benchmark::State& state) {
  Tile<T> t(static_cast<int>(state.range(0)), 1000);
  const KroiRect r = t.rect();
  int size = 0;
  kSize(&r, &size);
  t.buf.resize(size + 1);
  for (auto _ : state) {
    kFn(t.img.data(), t.step(), &r, t.buf.data());
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{t.n} * t.n);
}

template <class T, auto kSize, auto kFn>
void FwdOutOfPlace(benchmark::State& state) {
  Tile<T> t(static_cast<int>(state.range(0)), 1000);
  const KroiRect r = t.rect();
  int size = 0;
  kSize(&r, &size);
  t.buf.resize(size);
  const int h = (t.n + 1) / 2;
  std::vector<T> bands(size_t(4) * h * h);
  T* dst[4] = {&bands[0], &bands[size_t(h) * h], &bands[size_t(2) * h * h], &bands[size_t(3) * h * h]};
  int steps[4] = {h * int(sizeof(T)), h * int(sizeof(T)), h * int(sizeof(T)), h * int(sizeof(T))};
  for (auto _ : state) {
    kFn(t.img.data(), t.step(), dst, steps, &r, t.buf.data());
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{t.n} * t.n);
}

template <class T, auto kSize, auto kFn>
void InvOutOfPlace(benchmark::State& state) {
  Tile<T> t(static_cast<int>(state.range(0)), 1000);
  const KroiRect r = t.rect();
  int size = 0;
  kSize(&r, &size);
  t.buf.resize(size);
  const int h = (t.n + 1) / 2;
  std::vector<T> bands = kro_bench::RandomVector<T>(size_t(4) * h * h, -1000, 1000);
  const T* src[4] = {&bands[0], &bands[size_t(h) * h], &bands[size_t(2) * h * h], &bands[size_t(3) * h * h]};
  int steps[4] = {h * int(sizeof(T)), h * int(sizeof(T)), h * int(sizeof(T)), h * int(sizeof(T))};
  for (auto _ : state) {
    kFn(src, steps, t.img.data(), t.step(), &r, t.buf.data());
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{t.n} * t.n);
}

void BM_wavelet_WTFwd_B53_32s_C1IR(benchmark::State& s) {
  InPlace<Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1IR, kroiWTFwd_B53_JPEG2K_32s_C1IR>(s);
}
void BM_wavelet_WTInv_B53_32s_C1IR(benchmark::State& s) {
  InPlace<Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1IR, kroiWTInv_B53_JPEG2K_32s_C1IR>(s);
}
void BM_wavelet_WTFwd_B53_32s_C1R(benchmark::State& s) {
  FwdOutOfPlace<Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1R, kroiWTFwd_B53_JPEG2K_32s_C1R>(s);
}
void BM_wavelet_WTInv_B53_32s_C1R(benchmark::State& s) {
  InvOutOfPlace<Kro32s, kroiWTGetBufSize_B53_JPEG2K_32s_C1R, kroiWTInv_B53_JPEG2K_32s_C1R>(s);
}
void BM_wavelet_WTFwd_B53_16s_C1IR(benchmark::State& s) {
  InPlace<Kro16s, kroiWTGetBufSize_B53_JPEG2K_16s_C1IR, kroiWTFwd_B53_JPEG2K_16s_C1IR>(s);
}
void BM_wavelet_WTFwd_D97_16s_C1IR(benchmark::State& s) {
  InPlace<Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1IR, kroiWTFwd_D97_JPEG2K_16s_C1IR>(s);
}
void BM_wavelet_WTInv_D97_16s_C1IR(benchmark::State& s) {
  InPlace<Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1IR, kroiWTInv_D97_JPEG2K_16s_C1IR>(s);
}
void BM_wavelet_WTFwd_D97_16s_C1R(benchmark::State& s) {
  FwdOutOfPlace<Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1R, kroiWTFwd_D97_JPEG2K_16s_C1R>(s);
}
void BM_wavelet_WTInv_D97_16s_C1R(benchmark::State& s) {
  InvOutOfPlace<Kro16s, kroiWTGetBufSize_D97_JPEG2K_16s_C1R, kroiWTInv_D97_JPEG2K_16s_C1R>(s);
}
void BM_wavelet_WTFwd_D97_32s_C1IR(benchmark::State& s) {
  InPlace<Kro32s, kroiWTGetBufSize_D97_JPEG2K_32s_C1IR, kroiWTFwd_D97_JPEG2K_32s_C1IR>(s);
}
BENCHMARK(BM_wavelet_WTFwd_B53_32s_C1IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTInv_B53_32s_C1IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTFwd_B53_32s_C1R)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTInv_B53_32s_C1R)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTFwd_B53_16s_C1IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTFwd_D97_16s_C1IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTInv_D97_16s_C1IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTFwd_D97_16s_C1R)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTInv_D97_16s_C1R)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_wavelet_WTFwd_D97_32s_C1IR)->Arg(2048)->Unit(benchmark::kMillisecond);

// 9/7 in single precision has no 2D function: a level is the column form into two
// half-height images, then the row form on each, the caller holding the neighbours
// (here the tile is surrounded by a margin of 4 samples).
void BM_wavelet_D97_32f_ColRow(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0)), m = 4, stride = n + 2 * m;
  std::vector<float> src(size_t(stride) * stride);
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<float>((i * 2654435761u) % 1000) - 500.0f;
  std::vector<float> lo(size_t(stride) * (n / 2 + 2 * m)), hi(lo.size()), out(size_t(n / 2) * n * 2);
  const int step = stride * 4, half = n / 2;
  for (auto _ : state) {
    kroiWTFwdCol_D97_JPEG2K_32f_C1R(&src[size_t(m) * stride + m], step, &lo[size_t(m) * stride + m], step,
                                    &hi[size_t(m) * stride + m], step, KroiSize{n, half}, 0);
    kroiWTFwdRow_D97_JPEG2K_32f_C1R(&lo[size_t(m) * stride + m], step, &out[0], half * 4, &out[size_t(half) * half],
                                    half * 4, KroiSize{half, half}, 0);
    kroiWTFwdRow_D97_JPEG2K_32f_C1R(&hi[size_t(m) * stride + m], step, &out[size_t(2) * half * half], half * 4,
                                    &out[size_t(3) * half * half], half * 4, KroiSize{half, half}, 0);
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{n} * n);
}
BENCHMARK(BM_wavelet_D97_32f_ColRow)->Arg(2048)->Unit(benchmark::kMillisecond);

// The vertical pass alone through the streaming column step, row pair by row pair.
void BM_wavelet_WTFwdColLift_D97_32f(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<float> src(size_t(n) * n), rows(size_t(5) * n);
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<float>((i * 2654435761u) % 1000) - 500.0f;
  for (auto _ : state) {
    float* r[5] = {&rows[0], &rows[n], &rows[2 * n], &rows[3 * n], &rows[4 * n]};
    for (int k = 0; k + 2 < n; k += 2) {
      kroiWTFwdColLift_D97_JPEG2K_32f_C1(&src[size_t(k) * n], &src[size_t(k + 1) * n], &src[size_t(k + 2) * n],
                                         r[0], r[1], r[2], r[3], r[4], n);
      float* l = r[0];
      float* h = r[2];
      r[0] = r[1], r[2] = r[3], r[3] = r[4], r[1] = l, r[4] = h;
    }
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{n} * n);
}
BENCHMARK(BM_wavelet_WTFwdColLift_D97_32f)->Arg(2048)->Unit(benchmark::kMillisecond);

template <class T, auto kFn>
void PlanesInPlace(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<T> p[3] = {kro_bench::RandomVector<T>(size_t(n) * n, 0, 255, 1),
                         kro_bench::RandomVector<T>(size_t(n) * n, 0, 255, 2),
                         kro_bench::RandomVector<T>(size_t(n) * n, 0, 255, 3)};
  T* planes[3] = {p[0].data(), p[1].data(), p[2].data()};
  for (auto _ : state) {
    kFn(planes, n * static_cast<int>(sizeof(T)), KroiSize{n, n});
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{n} * n);
}
void BM_component_RCTFwd_32s_P3IR(benchmark::State& s) { PlanesInPlace<Kro32s, kroiRCTFwd_JPEG2K_32s_P3IR>(s); }
void BM_component_RCTInv_32s_P3IR(benchmark::State& s) { PlanesInPlace<Kro32s, kroiRCTInv_JPEG2K_32s_P3IR>(s); }
void BM_component_ICTFwd_16s_P3IR(benchmark::State& s) { PlanesInPlace<Kro16s, kroiICTFwd_JPEG2K_16s_P3IR>(s); }
// Forward and inverse in turn, so that repeated float passes neither grow nor decay
// into denormals; each pass counts.
void BM_component_ICTFwdInv_32f_P3IR(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<Kro32f> p[3] = {kro_bench::RandomVector<Kro32f>(size_t(n) * n, 0, 255, 1),
                              kro_bench::RandomVector<Kro32f>(size_t(n) * n, 0, 255, 2),
                              kro_bench::RandomVector<Kro32f>(size_t(n) * n, 0, 255, 3)};
  Kro32f* planes[3] = {p[0].data(), p[1].data(), p[2].data()};
  for (auto _ : state) {
    kroiICTFwd_JPEG2K_32f_P3IR(planes, 4 * n, KroiSize{n, n});
    kroiICTInv_JPEG2K_32f_P3IR(planes, 4 * n, KroiSize{n, n});
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{2} * n * n);
}
BENCHMARK(BM_component_RCTFwd_32s_P3IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_component_RCTInv_32s_P3IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_component_ICTFwd_16s_P3IR)->Arg(2048)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_component_ICTFwdInv_32f_P3IR)->Arg(2048)->Unit(benchmark::kMillisecond);

void BM_component_RCTFwd_32s_C3P3R(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<Kro32s> src = kro_bench::RandomVector<Kro32s>(size_t(3) * n * n, 0, 255);
  std::vector<Kro32s> p[3] = {std::vector<Kro32s>(size_t(n) * n), std::vector<Kro32s>(size_t(n) * n),
                              std::vector<Kro32s>(size_t(n) * n)};
  Kro32s* planes[3] = {p[0].data(), p[1].data(), p[2].data()};
  for (auto _ : state) {
    kroiRCTFwd_JPEG2K_32s_C3P3R(src.data(), 12 * n, planes, 4 * n, KroiSize{n, n});
    benchmark::ClobberMemory();
  }
  Items(state, int64_t{n} * n);
}
BENCHMARK(BM_component_RCTFwd_32s_C3P3R)->Arg(2048)->Unit(benchmark::kMillisecond);

}  // namespace
