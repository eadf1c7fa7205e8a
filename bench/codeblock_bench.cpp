// SPDX-License-Identifier: BSD-3-Clause
// Tier-1 code-block coding speed on the code-blocks of a real photo (astronaut, 512 x 512
// RGB): lossless = reversible colour transform and five levels of the 5/3 transform;
// lossy = five levels of the 9/7 transform on each colour plane, quantised with step 16.
// Both transforms are the library's own. Encode = load + drain + rate and distortion
// queries, decode = the one-call decoder; items are samples. The argument is the
// code-block style: 0 plain, 2 bypass, 4 terminate every pass, 31 all of causal, bypass,
// terminate every pass, reset and segmentation symbols.
// The peer (style 0 only) is OpenJPEG's whole single-threaded encoder or decoder on the
// same image with the same structure, so the printed ratio is peer codec time over our
// tier-1 time: the share tier-1 would take in a codec as fast as the peer.
#include <benchmark/benchmark.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_OPJ
#include <openjpeg.h>
#endif

namespace {

constexpr int kCb = 64;
constexpr int kLevels = 5;
constexpr int kMagBits = 20;  // left-aligned magnitudes: planes 30 down to 11
constexpr int kLossyStep = 16;

struct Image {
  int w = 0, h = 0;
  std::vector<uint8_t> rgb;  // interleaved
};

Image Astronaut() {
  const std::vector<uint8_t> file = kro_bench::ReadFile(kro_bench::DataPath("astronaut.ppm"));
  Image im;
  im.w = 512;
  im.h = 512;
  const size_t n = static_cast<size_t>(im.w) * im.h * 3;
  im.rgb.assign(n, 128);
  if (file.size() >= n) std::copy(file.end() - static_cast<long>(n), file.end(), im.rgb.begin());
  return im;
}

struct CodeBlock {
  std::vector<Kro32s> input;  // sign-magnitude, left-aligned
  int w, h, subband;
};

// Cuts a w x h band (row step in samples) into code-blocks.
void CutBand(const Kro32s* band, int stride, int w, int h, int subband,
             std::vector<CodeBlock>& out) {
  for (int y0 = 0; y0 < h; y0 += kCb) {
    for (int x0 = 0; x0 < w; x0 += kCb) {
      CodeBlock cb{{}, std::min(kCb, w - x0), std::min(kCb, h - y0), subband};
      for (int y = 0; y < cb.h; ++y) {
        for (int x = 0; x < cb.w; ++x) {
          const int v = band[(y0 + y) * stride + x0 + x];
          const uint32_t m = static_cast<uint32_t>(v < 0 ? -v : v) << (31 - kMagBits);
          cb.input.push_back(static_cast<Kro32s>(m | (v < 0 ? 0x80000000u : 0u)));
        }
      }
      out.push_back(std::move(cb));
    }
  }
}

// Five decomposition levels of one plane with the library's 2D transforms; the detail
// bands of every level and the final LL band are cut into code-blocks.
void Decompose(std::vector<Kro32s> plane, int w, int h, bool lossy, std::vector<CodeBlock>& out) {
  for (int level = 0; level < kLevels; ++level) {
    const KroiRect rect{0, 0, w, h};
    int size = 0;
    if (lossy)
      kroiWTGetBufSize_D97_JPEG2K_32s_C1R(&rect, &size);
    else
      kroiWTGetBufSize_B53_JPEG2K_32s_C1R(&rect, &size);
    std::vector<Kro8u> buffer(static_cast<size_t>(size) + 64);
    const int bw[4] = {(w + 1) / 2, (w + 1) / 2, w / 2, w / 2};
    const int bh[4] = {(h + 1) / 2, h / 2, (h + 1) / 2, h / 2};
    std::vector<Kro32s> bands[4];
    Kro32s* dst[4];
    int steps[4];
    for (int b = 0; b < 4; ++b) {
      bands[b].assign(static_cast<size_t>(bw[b]) * bh[b] + 1, 0);
      dst[b] = bands[b].data();
      steps[b] = bw[b] * 4;
    }
    if (lossy)
      kroiWTFwd_D97_JPEG2K_32s_C1R(plane.data(), w * 4, dst, steps, &rect, buffer.data());
    else
      kroiWTFwd_B53_JPEG2K_32s_C1R(plane.data(), w * 4, dst, steps, &rect, buffer.data());
    for (int b = 1; b < 4; ++b) {
      if (lossy) {
        for (Kro32s& v : bands[b]) v /= kLossyStep;
      }
      CutBand(bands[b].data(), bw[b], bw[b], bh[b], b, out);
    }
    plane = std::move(bands[0]);
    w = bw[0];
    h = bh[0];
  }
  if (lossy) {
    for (Kro32s& v : plane) v /= kLossyStep;
  }
  CutBand(plane.data(), w, w, h, 0, out);
}

std::vector<CodeBlock> PhotoCodeBlocks(bool lossy) {
  const Image im = Astronaut();
  const size_t n = static_cast<size_t>(im.w) * im.h;
  std::vector<Kro32s> planes[3];
  for (int c = 0; c < 3; ++c) {
    planes[c].resize(n);
    for (size_t i = 0; i < n; ++i) planes[c][i] = im.rgb[3 * i + c] - 128;
  }
  if (!lossy) {
    Kro32s* p[3] = {planes[0].data(), planes[1].data(), planes[2].data()};
    kroiRCTFwd_JPEG2K_32s_P3IR(p, im.w * 4, {im.w, im.h});
  }
  std::vector<CodeBlock> blocks;
  for (int c = 0; c < 3; ++c) Decompose(planes[c], im.w, im.h, lossy, blocks);
  return blocks;
}

int64_t Samples(const std::vector<CodeBlock>& blocks) {
  int64_t n = 0;
  for (const CodeBlock& b : blocks) n += int64_t{b.w} * b.h;
  return n;
}

struct Coded {
  std::vector<uint8_t> data;
  std::vector<int> seg_len;
  int sf_bits = 0, passes = 0;
};

// Load, drain in one request, and the queries a rate allocator makes.
void EncodeOne(KroiEncodeState_JPEG2K* st, const CodeBlock& b, int flags, Coded& c) {
  int segments = 0;
  kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(b.input.data(), b.w * 4, {b.w, b.h}, st, b.subband,
                                         kMagBits, 0, 0, flags, &c.sf_bits, &c.passes, &segments);
  c.data.resize(1 << 16);
  int len = static_cast<int>(c.data.size()), more = 0;
  kroiEncodeStoreBits_JPEG2K_1u(c.data.data(), &len, st, &more);
  c.data.resize(static_cast<size_t>(len));
  c.seg_len.assign(static_cast<size_t>(segments), 0);
  for (int s = 0; s < segments; ++s) kroiEncodeGetTermPassLen_JPEG2K(st, s, &c.seg_len[s]);
  for (int k = 0; k < c.passes; ++k) {
    int rate = 0, mant = 0, expo = 0;
    kroiEncodeGetRate_JPEG2K(st, k, &rate);
    kroiEncodeGetDistReduction_JPEG2K(st, k, &mant, &expo);
    benchmark::DoNotOptimize(rate + mant + expo);
  }
}

void BM_codeblock_Encode(benchmark::State& state, bool lossy) {
  const int flags = static_cast<int>(state.range(0));
  const std::vector<CodeBlock> blocks = PhotoCodeBlocks(lossy);
  KroiEncodeState_JPEG2K* st = nullptr;
  kroiEncodeInitAlloc_JPEG2K(&st, {kCb, kCb});
  Coded c;
  size_t bytes = 0;
  for (auto _ : state) {
    bytes = 0;
    for (const CodeBlock& b : blocks) {
      EncodeOne(st, b, flags, c);
      bytes += c.data.size();
    }
  }
  kroiEncodeFree_JPEG2K(st);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * Samples(blocks));
  state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_codeblock_Decode(benchmark::State& state, bool lossy) {
  const int flags = static_cast<int>(state.range(0));
  const std::vector<CodeBlock> blocks = PhotoCodeBlocks(lossy);
  std::vector<Coded> coded(blocks.size());
  KroiEncodeState_JPEG2K* st = nullptr;
  kroiEncodeInitAlloc_JPEG2K(&st, {kCb, kCb});
  for (size_t i = 0; i < blocks.size(); ++i) EncodeOne(st, blocks[i], flags, coded[i]);
  kroiEncodeFree_JPEG2K(st);
  int size = 0;
  kroiDecodeGetBufSize_JPEG2K({kCb, kCb}, &size);
  std::vector<uint8_t> dec_state(static_cast<size_t>(size));
  std::vector<Kro32s> out(kCb * kCb);
  const uint8_t empty = 0;
  for (auto _ : state) {
    for (size_t i = 0; i < coded.size(); ++i) {
      const Coded& c = coded[i];
      const CodeBlock& b = blocks[i];
      const int sf = std::max(0, c.sf_bits - (31 - kMagBits));
      kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
          c.data.empty() ? &empty : c.data.data(), out.data(), b.w * 4, {b.w, b.h}, b.subband, sf,
          c.passes, c.seg_len.empty() ? &size : c.seg_len.data(),
          static_cast<int>(c.seg_len.size()), flags, nullptr,
          reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(dec_state.data()));
      benchmark::DoNotOptimize(out.data());
    }
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * Samples(blocks));
}

void BM_codeblock_Encode_lossless(benchmark::State& s) { BM_codeblock_Encode(s, false); }
void BM_codeblock_Encode_lossy(benchmark::State& s) { BM_codeblock_Encode(s, true); }
void BM_codeblock_Decode_lossless(benchmark::State& s) { BM_codeblock_Decode(s, false); }
void BM_codeblock_Decode_lossy(benchmark::State& s) { BM_codeblock_Decode(s, true); }
BENCHMARK(BM_codeblock_Encode_lossless)->Arg(0)->Arg(2)->Arg(4)->Arg(31)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_codeblock_Encode_lossy)->Arg(0)->Arg(2)->Arg(4)->Arg(31)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_codeblock_Decode_lossless)->Arg(0)->Arg(2)->Arg(4)->Arg(31)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_codeblock_Decode_lossy)->Arg(0)->Arg(2)->Arg(4)->Arg(31)->Unit(benchmark::kMillisecond);

#ifdef KROJ_HAVE_PEER_OPJ
// OpenJPEG through memory streams.
struct MemStream {
  std::vector<uint8_t> data;
  size_t pos = 0;
};

OPJ_SIZE_T MemRead(void* buf, OPJ_SIZE_T n, void* user) {
  auto* m = static_cast<MemStream*>(user);
  if (m->pos >= m->data.size()) return static_cast<OPJ_SIZE_T>(-1);
  n = std::min(n, m->data.size() - m->pos);
  memcpy(buf, m->data.data() + m->pos, n);
  m->pos += n;
  return n;
}
OPJ_SIZE_T MemWrite(void* buf, OPJ_SIZE_T n, void* user) {
  auto* m = static_cast<MemStream*>(user);
  if (m->pos + n > m->data.size()) m->data.resize(m->pos + n);
  memcpy(m->data.data() + m->pos, buf, n);
  m->pos += n;
  return n;
}
OPJ_OFF_T MemSkip(OPJ_OFF_T n, void* user) {
  auto* m = static_cast<MemStream*>(user);
  m->pos = static_cast<size_t>(static_cast<OPJ_OFF_T>(m->pos) + n);
  return n;
}
OPJ_BOOL MemSeek(OPJ_OFF_T n, void* user) {
  static_cast<MemStream*>(user)->pos = static_cast<size_t>(n);
  return OPJ_TRUE;
}

opj_stream_t* OpenStream(MemStream& m, bool input) {
  opj_stream_t* s = opj_stream_create(1 << 16, input ? OPJ_TRUE : OPJ_FALSE);
  opj_stream_set_user_data(s, &m, nullptr);
  if (input) {
    opj_stream_set_read_function(s, MemRead);
    opj_stream_set_user_data_length(s, m.data.size());
  } else {
    opj_stream_set_write_function(s, MemWrite);
  }
  opj_stream_set_skip_function(s, MemSkip);
  opj_stream_set_seek_function(s, MemSeek);
  return s;
}

// Whole single-threaded encode: 64x64 code-blocks, five levels, colour transform;
// lossless, or 9/7 at 20:1.
std::vector<uint8_t> OpjEncode(const Image& im, bool lossy) {
  opj_cparameters_t p;
  opj_set_default_encoder_parameters(&p);
  p.numresolution = kLevels + 1;
  p.cblockw_init = kCb;
  p.cblockh_init = kCb;
  p.tcp_mct = 1;
  p.irreversible = lossy ? 1 : 0;
  p.tcp_numlayers = 1;
  p.tcp_rates[0] = lossy ? 20.0f : 0.0f;
  p.cp_disto_alloc = 1;
  opj_image_cmptparm_t cp[3];
  memset(cp, 0, sizeof(cp));
  for (auto& c : cp) {
    c.dx = c.dy = 1;
    c.w = static_cast<OPJ_UINT32>(im.w);
    c.h = static_cast<OPJ_UINT32>(im.h);
    c.prec = 8;
  }
  opj_image_t* img = opj_image_create(3, cp, OPJ_CLRSPC_SRGB);
  img->x1 = static_cast<OPJ_UINT32>(im.w);
  img->y1 = static_cast<OPJ_UINT32>(im.h);
  for (int c = 0; c < 3; ++c) {
    for (size_t i = 0; i < static_cast<size_t>(im.w) * im.h; ++i)
      img->comps[c].data[i] = im.rgb[3 * i + static_cast<size_t>(c)];
  }
  opj_codec_t* codec = opj_create_compress(OPJ_CODEC_J2K);
  opj_setup_encoder(codec, &p, img);
  opj_codec_set_threads(codec, 0);  // 0: run on the calling thread
  MemStream m;
  opj_stream_t* s = OpenStream(m, false);
  opj_start_compress(codec, img, s);
  opj_encode(codec, s);
  opj_end_compress(codec, s);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
  opj_image_destroy(img);
  return m.data;
}

void OpjDecode(const std::vector<uint8_t>& stream) {
  MemStream m{stream, 0};
  opj_dparameters_t p;
  opj_set_default_decoder_parameters(&p);
  opj_codec_t* codec = opj_create_decompress(OPJ_CODEC_J2K);
  opj_setup_decoder(codec, &p);
  opj_codec_set_threads(codec, 0);  // 0: run on the calling thread
  opj_stream_t* s = OpenStream(m, true);
  opj_image_t* img = nullptr;
  opj_read_header(s, codec, &img);
  opj_decode(codec, s, img);
  opj_end_decompress(codec, s);
  benchmark::DoNotOptimize(img->comps[0].data[0]);
  opj_image_destroy(img);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
}

void BM_peer_codeblock_Encode(benchmark::State& state, bool lossy) {
  const Image im = Astronaut();
  size_t bytes = 0;
  for (auto _ : state) bytes = OpjEncode(im, lossy).size();
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * im.w * im.h * 3);
  state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_peer_codeblock_Decode(benchmark::State& state, bool lossy) {
  const Image im = Astronaut();
  const std::vector<uint8_t> stream = OpjEncode(im, lossy);
  for (auto _ : state) OpjDecode(stream);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * im.w * im.h * 3);
}

void BM_peer_codeblock_Encode_lossless(benchmark::State& s) { BM_peer_codeblock_Encode(s, false); }
void BM_peer_codeblock_Encode_lossy(benchmark::State& s) { BM_peer_codeblock_Encode(s, true); }
void BM_peer_codeblock_Decode_lossless(benchmark::State& s) { BM_peer_codeblock_Decode(s, false); }
void BM_peer_codeblock_Decode_lossy(benchmark::State& s) { BM_peer_codeblock_Decode(s, true); }
BENCHMARK(BM_peer_codeblock_Encode_lossless)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_codeblock_Encode_lossy)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_codeblock_Decode_lossless)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_codeblock_Decode_lossy)->Arg(0)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
