// SPDX-License-Identifier: BSD-3-Clause
// Block transforms over 512x512 planes (4096 blocks): forward DCT with quantisation
// from 8-bit samples, dequantisation with inverse DCT back to samples, the plain
// transforms, the block quantiser, and the region level shifts. Two data sets:
// "4096" is random samples and coefficients (every AC term busy), "camera_q90" the
// camera test image and its own coefficients at quality 90 (as a decoder sees them,
// many blocks without AC terms). The peers are libjpeg-turbo's exported accurate
// integer transforms (its portable C code: the SIMD ones are internal to it): the
// FDCT alone, and the IDCT, which dequantises, transforms and range-limits like
// kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R. The two LS block functions also run on every
// SIMD target this CPU has, as .../<target>.
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

// A plane, its quantisation tables and its coefficients (forward LS transform).
struct Data {
  std::vector<Kro8u> px;
  std::vector<Kro16s> coef;
  Kro8u raw[64];  // zig-zag order
  Kro16u fwd[64], inv[64];

  explicit Data(bool photo) {
    if (photo) {
      // T.81 table K.1 (luminance), in zig-zag order, scaled to quality 90.
      static const Kro8u kLuma[64] = {
          16, 11, 12, 14, 12, 10, 16, 14, 13, 14, 18, 17, 16, 19, 24, 40,
          26, 24, 22, 22, 24, 49, 35, 37, 29, 40, 58, 51, 61, 60, 57, 51,
          56, 55, 64, 72, 92, 78, 64, 68, 87, 69, 55, 56, 80, 109, 81, 87,
          95, 98, 103, 104, 103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99};
      memcpy(raw, kLuma, 64);
      kroiQuantFwdRawTableInit_JPEG_8u(raw, 90);
      const auto file = kro_bench::ReadFile(kro_bench::DataPath("camera.pgm"));
      px.assign(file.end() - kSide * kSide, file.end());  // P5 512 512 255
    } else {
      for (int i = 0; i < 64; ++i) raw[i] = static_cast<Kro8u>(2 + i / 2);
      px = kro_bench::RandomVector<Kro8u>(kSide * kSide, 0, 255);
    }
    kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd);
    kroiQuantInvTableInit_JPEG_8u16u(raw, inv);
    if (photo) {
      coef.resize(px.size());
      ForEachBlock([&](int bx, int by, Kro16s* c) {
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&px[by * kSide + bx], kSide, c, fwd);
      });
    } else {
      coef = kro_bench::RandomVector<Kro16s>(kSide * kSide, -8, 8);
      for (size_t i = 0; i < coef.size(); i += 64) coef[i] = static_cast<Kro16s>(i % 200);
    }
  }

  template <class F>
  void ForEachBlock(F f) {
    Kro16s* c = coef.data();
    for (int by = 0; by < kSide; by += 8)
      for (int bx = 0; bx < kSide; bx += 8, c += 64) f(bx, by, c);
  }
};

Data& DataSet(bool photo) {
  static Data* sets[2] = {new Data(false), new Data(true)};
  return *sets[photo];
}

void SetBlocks(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kBlocks);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kSide * kSide);
}

void FwdLS(benchmark::State& state, bool photo) {
  Data& d = DataSet(photo);
  std::vector<Kro16s> out(d.coef.size());
  for (auto _ : state) {
    Kro16s* c = out.data();
    for (int by = 0; by < kSide; by += 8)
      for (int bx = 0; bx < kSide; bx += 8, c += 64)
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&d.px[by * kSide + bx], kSide, c, d.fwd);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}

void InvLS(benchmark::State& state, bool photo) {
  Data& d = DataSet(photo);
  std::vector<Kro8u> px(d.px.size());
  for (auto _ : state) {
    d.ForEachBlock([&](int bx, int by, Kro16s* c) {
      kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(c, &px[by * kSide + bx], kSide, d.inv);
    });
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}

#ifdef KROJ_HAVE_PEER_JPEG
// The IDCT needs only the range-limit table of a decompressor (laid out as its
// master control builds it) and the component's multipliers (the steps).
void PeerInvLS(benchmark::State& state, bool photo) {
  Data& d = DataSet(photo);
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
  for (int i = 0; i < 64; ++i) mult[i] = static_cast<short>(d.inv[i]);
  comp.dct_table = mult;

  std::vector<Kro8u> px(d.px.size());
  std::vector<JSAMPROW> rows(kSide);
  for (int y = 0; y < kSide; ++y) rows[y] = &px[y * kSide];
  for (auto _ : state) {
    d.ForEachBlock([&](int bx, int by, Kro16s* c) {
      jpeg_idct_islow(&cinfo, &comp, c, &rows[by], static_cast<JDIMENSION>(bx));
    });
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}

void PeerFdct(benchmark::State& state) {
  const auto src = kro_bench::RandomVector<int>(kSide * kSide, -128, 127);
  std::vector<int> work(src.size());
  for (auto _ : state) {
    work = src;
    for (size_t i = 0; i < work.size(); i += 64) jpeg_fdct_islow(&work[i]);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}
#endif

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

void Quant(benchmark::State& state) {
  Data& d = DataSet(false);
  auto coef = kro_bench::RandomVector<Kro16s>(kSide * kSide, -1000, 1000);
  for (auto _ : state) {
    for (size_t i = 0; i < coef.size(); i += 64) kroiQuantFwd8x8_JPEG_16s_C1I(&coef[i], d.fwd);
    benchmark::ClobberMemory();
  }
  SetBlocks(state);
}

void OnTarget(benchmark::State& state, int64_t target, bool photo,
              void (*run)(benchmark::State&, bool)) {
  hwy::SetSupportedTargetsForTest(target);
  run(state, photo);
  hwy::SetSupportedTargetsForTest(0);
}

const bool kRegistered = [] {
  using benchmark::RegisterBenchmark;
  for (bool photo : {false, true}) {
    const std::string set = photo ? "/camera_q90" : "/4096";
    const std::string fwd = "BM_dct_kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R" + set;
    const std::string inv = "BM_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R" + set;
    RegisterBenchmark(fwd.c_str(), FwdLS, photo);
    RegisterBenchmark(inv.c_str(), InvLS, photo);
#ifdef KROJ_HAVE_PEER_JPEG
    RegisterBenchmark(("BM_peer_dct_kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R" + set).c_str(),
                      PeerInvLS, photo);
#endif
    for (int64_t t : hwy::SupportedAndGeneratedTargets()) {
      const std::string target = std::string("/") + hwy::TargetName(t);
      RegisterBenchmark((fwd + target).c_str(), OnTarget, t, photo, FwdLS);
      RegisterBenchmark((inv + target).c_str(), OnTarget, t, photo, InvLS);
    }
  }
  RegisterBenchmark("BM_dct_kroiDCT8x8Fwd_16s_C1/4096", BlockTransform<kroiDCT8x8Fwd_16s_C1>);
  RegisterBenchmark("BM_dct_kroiDCT8x8Inv_16s_C1/4096", BlockTransform<kroiDCT8x8Inv_16s_C1>);
#ifdef KROJ_HAVE_PEER_JPEG
  RegisterBenchmark("BM_peer_dct_kroiDCT8x8Fwd_16s_C1/4096", PeerFdct);
#endif
  RegisterBenchmark("BM_dct_kroiQuantFwd8x8_JPEG_16s_C1I/4096", Quant);
  return true;
}();

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
