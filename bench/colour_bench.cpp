// SPDX-License-Identifier: BSD-3-Clause
// Colour conversion and sampling throughput in pixels per second (items/s): the plane
// conversions, the H2V2 samplers and a whole 4:2:0 image converted MCU by MCU.
// Run with --kroj_threads=2 for the row-parallel figures; the MCU loops then split
// MCU rows over as many threads, as an encoder or decoder would. Peers: TurboJPEG's
// YUV plane encoder and decoder (4:4:4 for the plane conversions, 4:2:0 for the MCU
// loops, where it also subsamples, or replicates chroma on the way back).
#include <omp.h>

#include <benchmark/benchmark.h>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_TJ
#include <turbojpeg.h>
#endif

namespace {

constexpr int kW = 1920, kH = 1088;  // a multiple of the 16x16 MCU

void SetPixels(benchmark::State& state, int64_t per_iteration) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * per_iteration);
}

struct Image {
  std::vector<Kro8u> rgb = kro_bench::RandomVector<Kro8u>(3 * kW * kH, 0, 255, 1);
  std::vector<Kro8u> p0 = kro_bench::RandomVector<Kro8u>(kW * kH, 0, 255, 2);
  std::vector<Kro8u> p1 = kro_bench::RandomVector<Kro8u>(kW * kH, 0, 255, 3);
  std::vector<Kro8u> p2 = kro_bench::RandomVector<Kro8u>(kW * kH, 0, 255, 4);
};

void BM_colour_RGBToYCbCr_C3P3R(benchmark::State& state) {
  Image img;
  Kro8u* const dst[3] = {img.p0.data(), img.p1.data(), img.p2.data()};
  for (auto _ : state) {
    kroiRGBToYCbCr_JPEG_8u_C3P3R(img.rgb.data(), 3 * kW, dst, kW, {kW, kH});
    benchmark::ClobberMemory();
  }
  SetPixels(state, kW * kH);
}
BENCHMARK(BM_colour_RGBToYCbCr_C3P3R)->Name("BM_colour_RGBToYCbCr_C3P3R/1920x1088")->UseRealTime();

void BM_colour_YCbCrToRGB_P3C3R(benchmark::State& state) {
  Image img;
  const Kro8u* const src[3] = {img.p0.data(), img.p1.data(), img.p2.data()};
  for (auto _ : state) {
    kroiYCbCrToRGB_JPEG_8u_P3C3R(src, kW, img.rgb.data(), 3 * kW, {kW, kH});
    benchmark::ClobberMemory();
  }
  SetPixels(state, kW * kH);
}
BENCHMARK(BM_colour_YCbCrToRGB_P3C3R)->Name("BM_colour_YCbCrToRGB_P3C3R/1920x1088")->UseRealTime();

// Whole-plane samplers; pixels counted at full resolution. The up-sampler reads a
// one-sample border, so its source starts one row and one column in.
void BM_colour_SampleDownH2V2(benchmark::State& state) {
  Image img;
  for (auto _ : state) {
    kroiSampleDownH2V2_JPEG_8u_C1R(img.p0.data(), kW, {kW, kH}, img.p1.data(), kW / 2,
                                   {kW / 2, kH / 2});
    benchmark::ClobberMemory();
  }
  SetPixels(state, kW * kH);
}
BENCHMARK(BM_colour_SampleDownH2V2)->Name("BM_colour_SampleDownH2V2/1920x1088")->UseRealTime();

void BM_colour_SampleUpH2V2(benchmark::State& state) {
  Image img;
  const int step = kW / 2 + 2;
  for (auto _ : state) {
    kroiSampleUpH2V2_JPEG_8u_C1R(img.p0.data() + step + 1, step, {kW / 2, kH / 2}, img.p1.data(),
                                 kW, {kW, kH});
    benchmark::ClobberMemory();
  }
  SetPixels(state, kW * kH);
}
BENCHMARK(BM_colour_SampleUpH2V2)->Name("BM_colour_SampleUpH2V2/1920x1088")->UseRealTime();

// A 4:2:0 image MCU by MCU: six 8x8 blocks per 16x16 pixels, kept in one buffer.
void BM_colour_RGBToYCbCr411_MCU(benchmark::State& state) {
  Image img;
  std::vector<Kro16s> blocks(static_cast<size_t>(kW / 16) * (kH / 16) * 384);
  for (auto _ : state) {
#pragma omp parallel for schedule(static) num_threads(threads_omp_of_n_kro)
    for (int my = 0; my < kH / 16; ++my)
      for (int mx = 0; mx < kW / 16; ++mx) {
        Kro16s* b = blocks.data() + (static_cast<size_t>(my) * (kW / 16) + mx) * 384;
        Kro16s* dst[3] = {b, b + 256, b + 320};
        kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R(img.rgb.data() + (my * 16 * kW + mx * 16) * 3, 3 * kW,
                                            dst);
      }
    benchmark::ClobberMemory();
  }
  SetPixels(state, kW * kH);
}
BENCHMARK(BM_colour_RGBToYCbCr411_MCU)
    ->Name("BM_colour_RGBToYCbCr411_MCU/1920x1088")
    ->UseRealTime();

void BM_colour_YCbCr411ToRGB_MCU(benchmark::State& state) {
  Image img;
  std::vector<Kro16s> blocks =
      kro_bench::RandomVector<Kro16s>(static_cast<size_t>(kW / 16) * (kH / 16) * 384, -128, 127, 5);
  for (auto _ : state) {
#pragma omp parallel for schedule(static) num_threads(threads_omp_of_n_kro)
    for (int my = 0; my < kH / 16; ++my)
      for (int mx = 0; mx < kW / 16; ++mx) {
        const Kro16s* b = blocks.data() + (static_cast<size_t>(my) * (kW / 16) + mx) * 384;
        const Kro16s* src[3] = {b, b + 256, b + 320};
        kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(src, img.rgb.data() + (my * 16 * kW + mx * 16) * 3,
                                            3 * kW);
      }
    benchmark::ClobberMemory();
  }
  SetPixels(state, kW * kH);
}
BENCHMARK(BM_colour_YCbCr411ToRGB_MCU)
    ->Name("BM_colour_YCbCr411ToRGB_MCU/1920x1088")
    ->UseRealTime();

#ifdef KROJ_HAVE_PEER_TJ
// TurboJPEG on the same work, single-threaded.
void PeerEncode(benchmark::State& state, int subsamp) {
  Image img;
  tjhandle h = tjInitCompress();
  const int cw = subsamp == TJSAMP_444 ? kW : kW / 2;
  unsigned char* planes[3] = {img.p0.data(), img.p1.data(), img.p2.data()};
  int strides[3] = {kW, cw, cw};
  for (auto _ : state) {
    tjEncodeYUVPlanes(h, img.rgb.data(), kW, 3 * kW, kH, TJPF_RGB, planes, strides, subsamp, 0);
    benchmark::ClobberMemory();
  }
  tjDestroy(h);
  SetPixels(state, kW * kH);
}
void PeerDecode(benchmark::State& state, int subsamp) {
  Image img;
  tjhandle h = tjInitDecompress();
  const int cw = subsamp == TJSAMP_444 ? kW : kW / 2;
  const unsigned char* planes[3] = {img.p0.data(), img.p1.data(), img.p2.data()};
  int strides[3] = {kW, cw, cw};
  for (auto _ : state) {
    tjDecodeYUVPlanes(h, planes, strides, subsamp, img.rgb.data(), kW, 3 * kW, kH, TJPF_RGB, 0);
    benchmark::ClobberMemory();
  }
  tjDestroy(h);
  SetPixels(state, kW * kH);
}
BENCHMARK_CAPTURE(PeerEncode, 444, TJSAMP_444)
    ->Name("BM_peer_colour_RGBToYCbCr_C3P3R/1920x1088")
    ->UseRealTime();
BENCHMARK_CAPTURE(PeerDecode, 444, TJSAMP_444)
    ->Name("BM_peer_colour_YCbCrToRGB_P3C3R/1920x1088")
    ->UseRealTime();
BENCHMARK_CAPTURE(PeerEncode, 420, TJSAMP_420)
    ->Name("BM_peer_colour_RGBToYCbCr411_MCU/1920x1088")
    ->UseRealTime();
BENCHMARK_CAPTURE(PeerDecode, 420, TJSAMP_420)
    ->Name("BM_peer_colour_YCbCr411ToRGB_MCU/1920x1088")
    ->UseRealTime();
#endif

}  // namespace
