// SPDX-License-Identifier: BSD-3-Clause
// Colour conversion, sampling and MCU conversion on a 3840x2400 image (9.2 Mpixel),
// in pixels (items/s) and bytes read plus written (bytes/s). Peers of the same run:
// TurboJPEG's YUV plane encoder and decoder (4:4:4 for the plane conversions; for
// the MCU loops the matching subsampling, where it also subsamples or up-samples),
// and for the samplers memcpy moving the same number of bytes. BM_yardstick_colour_memcpy
// copies an RGB frame: streaming kernels compare their bytes/s with its bytes/s.
// Run with --kroj_threads=2 for the row-parallel figures; the MCU loops then split
// MCU rows over as many threads, as an encoder or decoder would.
#include <omp.h>
#include <string.h>

#include <benchmark/benchmark.h>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_TJ
#include <turbojpeg.h>
#endif

namespace {

constexpr int kW = 3840, kH = 2400;  // a multiple of the 16x16 MCU
constexpr int64_t kPixels = int64_t{kW} * kH;

void Count(benchmark::State& state, int64_t pixels, int64_t bytes) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * pixels);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
}

// Interleaved pixels (up to 4 bytes each) and four planes, with a one-sample border
// around each plane for the up-samplers.
struct Image {
  static constexpr int kStep = kW + 2;
  std::vector<Kro8u> px = kro_bench::RandomVector<Kro8u>(4 * kPixels, 0, 255, 1);
  std::vector<Kro8u> planes[4] = {
      kro_bench::RandomVector<Kro8u>(size_t{kStep} * (kH + 2), 0, 255, 2),
      kro_bench::RandomVector<Kro8u>(size_t{kStep} * (kH + 2), 0, 255, 3),
      kro_bench::RandomVector<Kro8u>(size_t{kStep} * (kH + 2), 0, 255, 4),
      kro_bench::RandomVector<Kro8u>(size_t{kStep} * (kH + 2), 0, 255, 5)};
  Kro8u* p[4] = {planes[0].data() + kStep + 1, planes[1].data() + kStep + 1,
                 planes[2].data() + kStep + 1, planes[3].data() + kStep + 1};
  Kro16u* words() { return reinterpret_cast<Kro16u*>(px.data()); }
};

void BM_yardstick_colour_memcpy(benchmark::State& state) {
  Image img;
  std::vector<Kro8u> out(3 * kPixels);
  for (auto _ : state) {
    memcpy(out.data(), img.px.data(), out.size());
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, 2 * 3 * kPixels);
}
BENCHMARK(BM_yardstick_colour_memcpy)->Name("BM_yardstick_colour_memcpy/3840x2400")->UseRealTime();

// ---- Plane conversions: interleaved or packed side `bytes` per pixel, planes 1 ----

template <class F>
void Plane(benchmark::State& state, int side_bytes, int planes, F convert) {
  Image img;
  for (auto _ : state) {
    convert(img);
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, kPixels * (side_bytes + planes));
}
#define PLANE_BENCH(name, side_bytes, planes, call)                                      \
  BENCHMARK_CAPTURE(Plane, name, side_bytes, planes, [](Image& img) { call; }) \
      ->Name("BM_colour_" #name "/3840x2400")                                          \
      ->UseRealTime();

PLANE_BENCH(RGBToYCbCr_C3P3R, 3, 3,
            kroiRGBToYCbCr_JPEG_8u_C3P3R(img.px.data(), 3 * kW, img.p, Image::kStep, {kW, kH}))
PLANE_BENCH(RGBToYCbCr_P3R, 0, 6,
            kroiRGBToYCbCr_JPEG_8u_P3R(img.p, Image::kStep, img.p, Image::kStep, {kW, kH}))
PLANE_BENCH(RGBToY_C3C1R, 3, 1,
            kroiRGBToY_JPEG_8u_C3C1R(img.px.data(), 3 * kW, img.p[0], Image::kStep, {kW, kH}))
PLANE_BENCH(RGB565ToYCbCr_C3P3R, 2, 3,
            kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R(img.words(), 2 * kW, img.p, Image::kStep,
                                               {kW, kH}))
PLANE_BENCH(CMYKToYCCK_C4P4R, 4, 4,
            kroiCMYKToYCCK_JPEG_8u_C4P4R(img.px.data(), 4 * kW, img.p, Image::kStep, {kW, kH}))
PLANE_BENCH(YCbCrToRGB_P3C3R, 3, 3,
            kroiYCbCrToRGB_JPEG_8u_P3C3R(img.p, Image::kStep, img.px.data(), 3 * kW, {kW, kH}))
PLANE_BENCH(YCbCrToRGB_P3R, 0, 6,
            kroiYCbCrToRGB_JPEG_8u_P3R(img.p, Image::kStep, img.p, Image::kStep, {kW, kH}))
PLANE_BENCH(YCbCrToRGB565_P3C3R, 2, 3,
            kroiYCbCrToRGB565_JPEG_8u16u_P3C3R(img.p, Image::kStep, img.words(), 2 * kW,
                                               {kW, kH}))
PLANE_BENCH(YCCKToCMYK_P4C4R, 4, 4,
            kroiYCCKToCMYK_JPEG_8u_P4C4R(img.p, Image::kStep, img.px.data(), 4 * kW, {kW, kH}))

// ---- Plane samplers; pixels counted at full resolution ----

void BM_colour_SampleDownH2V2(benchmark::State& state) {
  Image img;
  for (auto _ : state) {
    kroiSampleDownH2V2_JPEG_8u_C1R(img.p[0], Image::kStep, {kW, kH}, img.p[1], Image::kStep,
                                   {kW / 2, kH / 2});
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, kPixels + kPixels / 4);
}
BENCHMARK(BM_colour_SampleDownH2V2)->Name("BM_colour_SampleDownH2V2/3840x2400")->UseRealTime();

void BM_colour_SampleDownH2V1(benchmark::State& state) {
  Image img;
  for (auto _ : state) {
    kroiSampleDownH2V1_JPEG_8u_C1R(img.p[0], Image::kStep, {kW, kH}, img.p[1], Image::kStep,
                                   {kW / 2, kH});
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, kPixels + kPixels / 2);
}
BENCHMARK(BM_colour_SampleDownH2V1)->Name("BM_colour_SampleDownH2V1/3840x2400")->UseRealTime();

void BM_colour_SampleUpH2V2(benchmark::State& state) {
  Image img;
  for (auto _ : state) {
    kroiSampleUpH2V2_JPEG_8u_C1R(img.p[0], Image::kStep, {kW / 2, kH / 2}, img.p[1],
                                 Image::kStep, {kW, kH});
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, kPixels + kPixels / 4);
}
BENCHMARK(BM_colour_SampleUpH2V2)->Name("BM_colour_SampleUpH2V2/3840x2400")->UseRealTime();

void BM_colour_SampleUpH2V1(benchmark::State& state) {
  Image img;
  for (auto _ : state) {
    kroiSampleUpH2V1_JPEG_8u_C1R(img.p[0], Image::kStep, {kW / 2, kH}, img.p[1], Image::kStep,
                                 {kW, kH});
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, kPixels + kPixels / 2);
}
BENCHMARK(BM_colour_SampleUpH2V1)->Name("BM_colour_SampleUpH2V1/3840x2400")->UseRealTime();

// memcpy moving as many bytes as each sampler reads and writes together.
void PeerSampler(benchmark::State& state, int64_t read, int64_t written) {
  Image img;
  const size_t n = static_cast<size_t>((read + written) / 2);
  std::vector<Kro8u> out(n);
  for (auto _ : state) {
    memcpy(out.data(), img.px.data(), n);
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, read + written);
}
BENCHMARK_CAPTURE(PeerSampler, DownH2V2, kPixels, kPixels / 4)
    ->Name("BM_peer_colour_SampleDownH2V2/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(PeerSampler, DownH2V1, kPixels, kPixels / 2)
    ->Name("BM_peer_colour_SampleDownH2V1/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(PeerSampler, UpH2V2, kPixels / 4, kPixels)
    ->Name("BM_peer_colour_SampleUpH2V2/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(PeerSampler, UpH2V1, kPixels / 2, kPixels)
    ->Name("BM_peer_colour_SampleUpH2V1/3840x2400")
    ->UseRealTime();

// ---- Whole images MCU by MCU: the blocks of each MCU kept in one buffer ----

// MCUs of w x h pixels: w * h luminance samples and two chroma blocks each (at most
// three 8x8 blocks per 8x8 pixels).
struct Mcus {
  Mcus(int w, int h) : mcu_w(w), mcu_h(h), cols(kW / w), rows(kH / h), luma(w * h) {}
  int mcu_w, mcu_h, cols, rows, luma;
  int PerMcu() const { return luma + 128; }
  std::vector<Kro16s> blocks =
      kro_bench::RandomVector<Kro16s>(size_t{kW / 8} * (kH / 8) * 3 * 64, -128, 127, 6);
  Kro16s* At(int mx, int my) {
    return blocks.data() + (static_cast<size_t>(my) * cols + mx) * PerMcu();
  }
  size_t Pixel(int mx, int my) const {
    return (static_cast<size_t>(my) * mcu_h * kW + mx * mcu_w) * 3;
  }
  int64_t Bytes() const { return 3 * kPixels + 2 * int64_t{cols} * rows * PerMcu(); }
};

void EncodeMcus(benchmark::State& state, int mcu_w, int mcu_h,
                KroStatus (*fn)(const Kro8u*, int, Kro16s* pDstMCU[3])) {
  Image img;
  Mcus m(mcu_w, mcu_h);
  for (auto _ : state) {
#pragma omp parallel for schedule(static) num_threads(threads_omp_of_n_kro)
    for (int my = 0; my < m.rows; ++my)
      for (int mx = 0; mx < m.cols; ++mx) {
        Kro16s* b = m.At(mx, my);
        Kro16s* dst[3] = {b, b + m.luma, b + m.luma + 64};
        fn(img.px.data() + m.Pixel(mx, my), 3 * kW, dst);
      }
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, m.Bytes());
}
void DecodeMcus(benchmark::State& state, int mcu_w, int mcu_h,
                KroStatus (*fn)(const Kro16s* pSrcMCU[3], Kro8u*, int)) {
  Image img;
  Mcus m(mcu_w, mcu_h);
  for (auto _ : state) {
#pragma omp parallel for schedule(static) num_threads(threads_omp_of_n_kro)
    for (int my = 0; my < m.rows; ++my)
      for (int mx = 0; mx < m.cols; ++mx) {
        const Kro16s* b = m.At(mx, my);
        const Kro16s* src[3] = {b, b + m.luma, b + m.luma + 64};
        fn(src, img.px.data() + m.Pixel(mx, my), 3 * kW);
      }
    benchmark::ClobberMemory();
  }
  Count(state, kPixels, m.Bytes());
}
BENCHMARK_CAPTURE(EncodeMcus, 411, 16, 16, kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R)
    ->Name("BM_colour_RGBToYCbCr411_MCU/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(EncodeMcus, 422, 16, 8, kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R)
    ->Name("BM_colour_RGBToYCbCr422_MCU/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(EncodeMcus, 444, 8, 8, kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R)
    ->Name("BM_colour_RGBToYCbCr444_MCU/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(DecodeMcus, 411, 16, 16, kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R)
    ->Name("BM_colour_YCbCr411ToRGB_MCU/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(DecodeMcus, 422, 16, 8, kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R)
    ->Name("BM_colour_YCbCr422ToRGB_MCU/3840x2400")
    ->UseRealTime();
BENCHMARK_CAPTURE(DecodeMcus, 444, 8, 8, kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R)
    ->Name("BM_colour_YCbCr444ToRGB_MCU/3840x2400")
    ->UseRealTime();

#ifdef KROJ_HAVE_PEER_TJ
// TurboJPEG on the same work, single-threaded.
void PeerEncode(benchmark::State& state, int subsamp) {
  Image img;
  tjhandle h = tjInitCompress();
  unsigned char* planes[3] = {img.p[0], img.p[1], img.p[2]};
  int strides[3] = {Image::kStep, Image::kStep, Image::kStep};
  for (auto _ : state) {
    tjEncodeYUVPlanes(h, img.px.data(), kW, 3 * kW, kH, TJPF_RGB, planes, strides, subsamp, 0);
    benchmark::ClobberMemory();
  }
  tjDestroy(h);
  Count(state, kPixels, 6 * kPixels);
}
void PeerDecode(benchmark::State& state, int subsamp) {
  Image img;
  tjhandle h = tjInitDecompress();
  const unsigned char* planes[3] = {img.p[0], img.p[1], img.p[2]};
  int strides[3] = {Image::kStep, Image::kStep, Image::kStep};
  for (auto _ : state) {
    tjDecodeYUVPlanes(h, planes, strides, subsamp, img.px.data(), kW, 3 * kW, kH, TJPF_RGB, 0);
    benchmark::ClobberMemory();
  }
  tjDestroy(h);
  Count(state, kPixels, 6 * kPixels);
}
#define TJ_PEER(fn, name, samp) \
  BENCHMARK_CAPTURE(fn, name, samp)->Name("BM_peer_colour_" #name "/3840x2400")->UseRealTime();
TJ_PEER(PeerEncode, RGBToYCbCr_C3P3R, TJSAMP_444)
TJ_PEER(PeerDecode, YCbCrToRGB_P3C3R, TJSAMP_444)
TJ_PEER(PeerEncode, RGBToYCbCr411_MCU, TJSAMP_420)
TJ_PEER(PeerEncode, RGBToYCbCr422_MCU, TJSAMP_422)
TJ_PEER(PeerEncode, RGBToYCbCr444_MCU, TJSAMP_444)
TJ_PEER(PeerDecode, YCbCr411ToRGB_MCU, TJSAMP_420)
TJ_PEER(PeerDecode, YCbCr422ToRGB_MCU, TJSAMP_422)
TJ_PEER(PeerDecode, YCbCr444ToRGB_MCU, TJSAMP_444)
#endif

}  // namespace
