// SPDX-License-Identifier: BSD-3-Clause
// Tier-1 code-block coding speed on the 64x64 code-blocks of a real photo: three levels
// of a reversible 5/3 transform (lossless) and of a 9/7 transform quantised with step 8
// (lossy). Encode = load + drain, decode = the one-call decoder; items are samples.
// The argument is the code-block style: 0 plain, 2 bypass, 4 terminate every pass,
// 31 all of causal, bypass, terminate every pass, reset and segmentation symbols.
#include <benchmark/benchmark.h>
#include <cmath>
#include <string>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

constexpr int kCb = 64;

struct Band {
  std::vector<int> v;  // two's complement coefficients
  int subband;         // 0 LL, 1 LH, 2 HL, 3 HH
};

// Orientation of the band that holds (x, y) after three levels on a 512 x 512 image.
int SubbandAt(int x, int y) {
  for (int size = 256; size >= 64; size /= 2) {
    if (x >= size || y >= size) return (x >= size ? 2 : 0) + (y >= size ? 1 : 0);
  }
  return 0;
}

// One lifting level on rows or columns of an n-sample line with symmetric extension.
template <class T, class Lift>
void Lines(std::vector<T>& img, int stride, int w, int h, bool rows, Lift lift) {
  const int n = rows ? w : h, lines = rows ? h : w;
  std::vector<T> line(static_cast<size_t>(n)), out(static_cast<size_t>(n));
  for (int l = 0; l < lines; ++l) {
    for (int i = 0; i < n; ++i) line[i] = rows ? img[l * stride + i] : img[i * stride + l];
    lift(line);
    const int half = (n + 1) / 2;  // low-pass first, then high-pass
    for (int i = 0; i < n; ++i) out[i % 2 ? half + i / 2 : i / 2] = line[i];
    for (int i = 0; i < n; ++i) (rows ? img[l * stride + i] : img[i * stride + l]) = out[i];
  }
}

void Lift53(std::vector<int>& x) {
  const int n = static_cast<int>(x.size());
  auto at = [&](int i) { return x[i < 0 ? -i : (i >= n ? 2 * n - 2 - i : i)]; };
  for (int i = 1; i < n; i += 2) x[i] -= (at(i - 1) + at(i + 1)) >> 1;
  for (int i = 0; i < n; i += 2) x[i] += (at(i - 1) + at(i + 1) + 2) >> 2;
}

void Lift97(std::vector<float>& x) {
  const int n = static_cast<int>(x.size());
  auto at = [&](int i) { return x[i < 0 ? -i : (i >= n ? 2 * n - 2 - i : i)]; };
  const float k[4] = {-1.586134342f, -0.052980118f, 0.882911075f, 0.443506852f};
  for (int s = 0; s < 4; ++s) {
    for (int i = (s % 2 == 0) ? 1 : 0; i < n; i += 2) x[i] += k[s] * (at(i - 1) + at(i + 1));
  }
  for (int i = 0; i < n; ++i) x[i] *= i % 2 ? 0.812893066f : 1.230174105f;
}

// The sub-bands of three transform levels, cut into 64x64 code-blocks.
std::vector<Band> PhotoCodeBlocks(bool lossy) {
  const std::vector<uint8_t> file = kro_bench::ReadFile(kro_bench::DataPath("camera.pgm"));
  const int w = 512, h = 512;
  const size_t header = file.size() - static_cast<size_t>(w) * h;
  std::vector<int> ints(static_cast<size_t>(w) * h);
  std::vector<float> flts(ints.size());
  for (size_t i = 0; i < ints.size(); ++i) {
    ints[i] = file.size() > header ? file[header + i] - 128 : 0;
    flts[i] = static_cast<float>(ints[i]);
  }
  for (int lw = w, lh = h, level = 0; level < 3; ++level, lw /= 2, lh /= 2) {
    if (lossy) {
      Lines(flts, w, lw, lh, false, Lift97);
      Lines(flts, w, lw, lh, true, Lift97);
    } else {
      Lines(ints, w, lw, lh, false, Lift53);
      Lines(ints, w, lw, lh, true, Lift53);
    }
  }
  if (lossy) {
    for (size_t i = 0; i < ints.size(); ++i) ints[i] = static_cast<int>(flts[i] / 8.0f);
  }
  std::vector<Band> blocks;
  for (int y = 0; y < h; y += kCb) {
    for (int x = 0; x < w; x += kCb) {
      Band b{std::vector<int>(kCb * kCb), SubbandAt(x, y)};
      for (int r = 0; r < kCb; ++r)
        for (int c = 0; c < kCb; ++c) b.v[r * kCb + c] = ints[(y + r) * w + x + c];
      blocks.push_back(std::move(b));
    }
  }
  return blocks;
}

// Left-aligned sign-magnitude input with 12 magnitude bit-planes.
constexpr int kMagBits = 12;
std::vector<Kro32s> ToEncoderInput(const Band& b) {
  std::vector<Kro32s> out(b.v.size());
  for (size_t i = 0; i < b.v.size(); ++i) {
    const int v = b.v[i];
    const uint32_t m = static_cast<uint32_t>(v < 0 ? -v : v) << (31 - kMagBits);
    out[i] = static_cast<Kro32s>(m | (v < 0 ? 0x80000000u : 0u));
  }
  return out;
}

struct Coded {
  std::vector<uint8_t> data;
  std::vector<int> seg_len;
  int sf_bits, passes;
};

Coded EncodeOne(KroiEncodeState_JPEG2K* st, const std::vector<Kro32s>& src, int flags,
                int subband) {
  Coded c{};
  int segments = 0;
  kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(src.data(), kCb * 4, {kCb, kCb}, st, subband, kMagBits, 0,
                                         0, flags, &c.sf_bits, &c.passes, &segments);
  c.data.resize(1 << 16);
  int len = static_cast<int>(c.data.size()), more = 0;
  kroiEncodeStoreBits_JPEG2K_1u(c.data.data(), &len, st, &more);
  c.data.resize(static_cast<size_t>(len));
  for (int s = 0; s < segments; ++s) {
    int l = 0;
    kroiEncodeGetTermPassLen_JPEG2K(st, s, &l);
    c.seg_len.push_back(l);
  }
  return c;
}

void BM_codeblock_Encode(benchmark::State& state, bool lossy) {
  const int flags = static_cast<int>(state.range(0));
  std::vector<std::vector<Kro32s>> inputs;
  std::vector<int> bands;
  for (const Band& b : PhotoCodeBlocks(lossy)) {
    inputs.push_back(ToEncoderInput(b));
    bands.push_back(b.subband);
  }
  KroiEncodeState_JPEG2K* st = nullptr;
  kroiEncodeInitAlloc_JPEG2K(&st, {kCb, kCb});
  size_t bytes = 0;
  for (auto _ : state) {
    bytes = 0;
    for (size_t i = 0; i < inputs.size(); ++i)
      bytes += EncodeOne(st, inputs[i], flags, bands[i]).data.size();
  }
  kroiEncodeFree_JPEG2K(st);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(inputs.size()) * kCb * kCb);
  state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_codeblock_Decode(benchmark::State& state, bool lossy) {
  const int flags = static_cast<int>(state.range(0));
  std::vector<Coded> coded;
  KroiEncodeState_JPEG2K* st = nullptr;
  kroiEncodeInitAlloc_JPEG2K(&st, {kCb, kCb});
  const std::vector<Band> blocks = PhotoCodeBlocks(lossy);
  for (const Band& b : blocks) coded.push_back(EncodeOne(st, ToEncoderInput(b), flags, b.subband));
  kroiEncodeFree_JPEG2K(st);
  int size = 0;
  kroiDecodeGetBufSize_JPEG2K({kCb, kCb}, &size);
  std::vector<uint8_t> dec_state(static_cast<size_t>(size));
  std::vector<Kro32s> out(kCb * kCb);
  const uint8_t empty = 0;
  for (auto _ : state) {
    for (size_t i = 0; i < coded.size(); ++i) {
      const Coded& c = coded[i];
      const int sf = c.sf_bits > 31 - kMagBits ? c.sf_bits - (31 - kMagBits) : 0;
      kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
          c.data.empty() ? &empty : c.data.data(), out.data(), kCb * 4, {kCb, kCb},
          blocks[i].subband, sf, c.passes, c.seg_len.empty() ? &size : c.seg_len.data(),
          static_cast<int>(c.seg_len.size()), flags, nullptr,
          reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(dec_state.data()));
      benchmark::DoNotOptimize(out.data());
    }
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(coded.size()) * kCb * kCb);
}

void BM_codeblock_Encode_lossless(benchmark::State& s) { BM_codeblock_Encode(s, false); }
void BM_codeblock_Encode_lossy(benchmark::State& s) { BM_codeblock_Encode(s, true); }
void BM_codeblock_Decode_lossless(benchmark::State& s) { BM_codeblock_Decode(s, false); }
void BM_codeblock_Decode_lossy(benchmark::State& s) { BM_codeblock_Decode(s, true); }
BENCHMARK(BM_codeblock_Encode_lossless)
    ->Arg(0)
    ->Arg(2)
    ->Arg(4)
    ->Arg(31)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_codeblock_Encode_lossy)
    ->Arg(0)
    ->Arg(2)
    ->Arg(4)
    ->Arg(31)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_codeblock_Decode_lossless)
    ->Arg(0)
    ->Arg(2)
    ->Arg(4)
    ->Arg(31)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_codeblock_Decode_lossy)
    ->Arg(0)
    ->Arg(2)
    ->Arg(4)
    ->Arg(31)
    ->Unit(benchmark::kMillisecond);

}  // namespace
