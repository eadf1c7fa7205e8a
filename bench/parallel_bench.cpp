// SPDX-License-Identifier: BSD-3-Clause
// The twenty-three row-parallel functions on a 3000x3000 (9 Mpixel) image, each with
// one and with two threads: BM_parallel_<function>/3000x3000/threads:<n>. The thread
// count is set inside the benchmark, so these pairs do not depend on --kroj_threads.
// Bytes are those read plus written; items are destination pixels. The up-samplers
// count the half-size source plane, the down-samplers the half-size destination.
// BM_yardstick_parallel_memcpy copies three 9 Mbyte planes, counted the same way, as
// the bandwidth the streaming kernels are held against.
#include <benchmark/benchmark.h>
#include <string.h>

#include <string>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

constexpr int kW = 3000, kH = 3000;
constexpr int64_t kPixels = int64_t{kW} * kH;
constexpr KroiSize kRoi = {kW, kH};

// Every buffer the functions read or write, built once: four 8-bit planes with a
// one-sample border (the up-samplers read one sample around their source region),
// an interleaved 8-bit image of up to four channels, a 16-bit plane and three 32-bit
// planes with their interleaved counterpart.
struct Buffers {
  static constexpr int kStep = kW + 2;
  static constexpr int kStep32 = kW * static_cast<int>(sizeof(Kro32s));
  std::vector<Kro8u> planes[4];
  std::vector<Kro8u> px = kro_bench::RandomVector<Kro8u>(4 * kPixels, 0, 255, 11);
  std::vector<Kro16s> coef = kro_bench::RandomVector<Kro16s>(kPixels, -128, 127, 12);
  std::vector<Kro32s> c32[3];
  std::vector<Kro32s> px32 = kro_bench::RandomVector<Kro32s>(3 * kPixels, 0, 255, 13);
  Kro8u* p[4];
  Kro32s* p32[3];

  Buffers() {
    for (int c = 0; c < 4; ++c) {
      planes[c] = kro_bench::RandomVector<Kro8u>(size_t{kStep} * (kH + 2), 0, 255, 20 + c);
      p[c] = planes[c].data() + kStep + 1;
    }
    for (int c = 0; c < 3; ++c) {
      c32[c] = kro_bench::RandomVector<Kro32s>(kPixels, 0, 255, 30 + c);
      p32[c] = c32[c].data();
    }
  }
  const Kro8u* const* cp() const { return p; }
  const Kro32s** cp32() { return const_cast<const Kro32s**>(p32); }
};

Buffers& Bufs() {
  static Buffers b;
  return b;
}

struct Case {
  const char* name;
  int64_t bytes;  // read plus written per call
  void (*call)(Buffers&);
};

constexpr int64_t kQuarter = kPixels / 4, kHalf = kPixels / 2;

const Case kCases[] = {
    {"kroiRCTFwd_JPEG2K_32s_P3IR", 6 * 4 * kPixels,
     [](Buffers& b) { kroiRCTFwd_JPEG2K_32s_P3IR(b.p32, Buffers::kStep32, kRoi); }},
    {"kroiRCTInv_JPEG2K_32s_P3IR", 6 * 4 * kPixels,
     [](Buffers& b) { kroiRCTInv_JPEG2K_32s_P3IR(b.p32, Buffers::kStep32, kRoi); }},
    {"kroiRCTFwd_JPEG2K_32s_C3P3R", 6 * 4 * kPixels,
     [](Buffers& b) {
       kroiRCTFwd_JPEG2K_32s_C3P3R(b.px32.data(), 3 * Buffers::kStep32, b.p32,
                                   Buffers::kStep32, kRoi);
     }},
    {"kroiRCTInv_JPEG2K_32s_P3C3R", 6 * 4 * kPixels,
     [](Buffers& b) {
       kroiRCTInv_JPEG2K_32s_P3C3R(b.cp32(), Buffers::kStep32, b.px32.data(),
                                   3 * Buffers::kStep32, kRoi);
     }},
    {"kroiYCbCrToRGB_JPEG_8u_P3C3R", 6 * kPixels,
     [](Buffers& b) {
       kroiYCbCrToRGB_JPEG_8u_P3C3R(b.cp(), Buffers::kStep, b.px.data(), 3 * kW, kRoi);
     }},
    {"kroiYCbCrToBGR_JPEG_8u_P3C3R", 6 * kPixels,
     [](Buffers& b) {
       kroiYCbCrToBGR_JPEG_8u_P3C3R(b.cp(), Buffers::kStep, b.px.data(), 3 * kW, kRoi);
     }},
    {"kroiYCbCrToRGB_JPEG_8u_P3R", 6 * kPixels,
     [](Buffers& b) { kroiYCbCrToRGB_JPEG_8u_P3R(b.cp(), Buffers::kStep, b.p, Buffers::kStep, kRoi); }},
    {"kroiYCCKToCMYK_JPEG_8u_P4R", 8 * kPixels,
     [](Buffers& b) { kroiYCCKToCMYK_JPEG_8u_P4R(b.cp(), Buffers::kStep, b.p, Buffers::kStep, kRoi); }},
    {"kroiYCCKToCMYK_JPEG_8u_P4C4R", 8 * kPixels,
     [](Buffers& b) {
       kroiYCCKToCMYK_JPEG_8u_P4C4R(b.cp(), Buffers::kStep, b.px.data(), 4 * kW, kRoi);
     }},
    {"kroiRGBToYCbCr_JPEG_8u_P3R", 6 * kPixels,
     [](Buffers& b) { kroiRGBToYCbCr_JPEG_8u_P3R(b.cp(), Buffers::kStep, b.p, Buffers::kStep, kRoi); }},
    {"kroiRGBToYCbCr_JPEG_8u_C3P3R", 6 * kPixels,
     [](Buffers& b) {
       kroiRGBToYCbCr_JPEG_8u_C3P3R(b.px.data(), 3 * kW, b.p, Buffers::kStep, kRoi);
     }},
    {"kroiBGRToYCbCr_JPEG_8u_C3P3R", 6 * kPixels,
     [](Buffers& b) {
       kroiBGRToYCbCr_JPEG_8u_C3P3R(b.px.data(), 3 * kW, b.p, Buffers::kStep, kRoi);
     }},
    {"kroiCMYKToYCCK_JPEG_8u_P4R", 8 * kPixels,
     [](Buffers& b) { kroiCMYKToYCCK_JPEG_8u_P4R(b.cp(), Buffers::kStep, b.p, Buffers::kStep, kRoi); }},
    {"kroiCMYKToYCCK_JPEG_8u_C4P4R", 8 * kPixels,
     [](Buffers& b) {
       kroiCMYKToYCCK_JPEG_8u_C4P4R(b.px.data(), 4 * kW, b.p, Buffers::kStep, kRoi);
     }},
    {"kroiRGBToY_JPEG_8u_P3C1R", 4 * kPixels,
     [](Buffers& b) { kroiRGBToY_JPEG_8u_P3C1R(b.cp(), Buffers::kStep, b.p[3], Buffers::kStep, kRoi); }},
    {"kroiRGBToY_JPEG_8u_C3C1R", 4 * kPixels,
     [](Buffers& b) { kroiRGBToY_JPEG_8u_C3C1R(b.px.data(), 3 * kW, b.p[0], Buffers::kStep, kRoi); }},
    {"kroiBGRToY_JPEG_8u_C3C1R", 4 * kPixels,
     [](Buffers& b) { kroiBGRToY_JPEG_8u_C3C1R(b.px.data(), 3 * kW, b.p[0], Buffers::kStep, kRoi); }},
    {"kroiSampleUpH2V1_JPEG_8u_C1R", kPixels + kHalf,
     [](Buffers& b) {
       kroiSampleUpH2V1_JPEG_8u_C1R(b.p[0], Buffers::kStep, {kW / 2, kH}, b.p[1], Buffers::kStep,
                                    kRoi);
     }},
    {"kroiSampleUpH2V2_JPEG_8u_C1R", kPixels + kQuarter,
     [](Buffers& b) {
       kroiSampleUpH2V2_JPEG_8u_C1R(b.p[0], Buffers::kStep, {kW / 2, kH / 2}, b.p[1],
                                    Buffers::kStep, kRoi);
     }},
    {"kroiSampleDownH2V1_JPEG_8u_C1R", kPixels + kHalf,
     [](Buffers& b) {
       kroiSampleDownH2V1_JPEG_8u_C1R(b.p[0], Buffers::kStep, kRoi, b.p[1], Buffers::kStep,
                                      {kW / 2, kH});
     }},
    {"kroiSampleDownH2V2_JPEG_8u_C1R", kPixels + kQuarter,
     [](Buffers& b) {
       kroiSampleDownH2V2_JPEG_8u_C1R(b.p[0], Buffers::kStep, kRoi, b.p[1], Buffers::kStep,
                                      {kW / 2, kH / 2});
     }},
    {"kroiAdd128_JPEG_16s8u_C1R", 3 * kPixels,
     [](Buffers& b) {
       kroiAdd128_JPEG_16s8u_C1R(b.coef.data(), 2 * kW, b.p[0], Buffers::kStep, kRoi);
     }},
    {"kroiSub128_JPEG_8u16s_C1R", 3 * kPixels,
     [](Buffers& b) {
       kroiSub128_JPEG_8u16s_C1R(b.p[0], Buffers::kStep, b.coef.data(), 2 * kW, kRoi);
     }},
};
static_assert(sizeof(kCases) / sizeof(kCases[0]) == 23, "one entry per row-parallel function");

// Destination pixels: the down-samplers write a half or a quarter of the frame.
int64_t DstPixels(const Case& c) {
  if (strstr(c.name, "DownH2V1")) return kHalf;
  if (strstr(c.name, "DownH2V2")) return kQuarter;
  return kPixels;
}

void Run(benchmark::State& state, const Case* c, int threads) {
  Buffers& b = Bufs();
  const int saved = threads_omp_of_n_kro;
  threads_omp_of_n_kro = threads;
  for (auto _ : state) {
    c->call(b);
    benchmark::ClobberMemory();
  }
  threads_omp_of_n_kro = saved;
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * DstPixels(*c));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * c->bytes);
}

void BM_yardstick_parallel_memcpy(benchmark::State& state) {
  Buffers& b = Bufs();
  for (auto _ : state) {
    for (int c = 0; c < 3; ++c) memcpy(b.px.data() + c * kPixels, b.p[c] - 1, kPixels);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2 * 3 * kPixels);
}
BENCHMARK(BM_yardstick_parallel_memcpy)
    ->Name("BM_yardstick_parallel_memcpy/3000x3000")
    ->UseRealTime();

const bool kRegistered = [] {
  for (const Case& c : kCases) {
    for (int threads : {1, 2}) {
      const std::string name = std::string("BM_parallel_") + c.name + "/3000x3000/threads:" +
                               std::to_string(threads);
      benchmark::RegisterBenchmark(name.c_str(), Run, &c, threads)->UseRealTime();
    }
  }
  return true;
}();

}  // namespace
