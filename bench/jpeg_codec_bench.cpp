// SPDX-License-Identifier: BSD-3-Clause
// The example JPEG codec end to end against libjpeg-turbo's TurboJPEG API, one thread
// each, in memory, on the same RGB pixels: the largest test photo (retina.jpg, 1411 x
// 1411) tiled 2 x 2 to 2822 x 2822 (8 MP).
//   encode_{420,444}_q90     RGB pixels to a baseline file, quality 90, standard tables
//   decode_{420,444}_q90     the peer's baseline file to RGB pixels
//   decode_progressive       the peer's progressive 4:2:0 file to RGB pixels
// Both sides use their default, accurate paths: the peer runs with TJFLAG_ACCURATEDCT
// (its default islow DCT, fancy up-sampling), our codec with its default options
// (MCU colour conversion when encoding, triangle up-sampling when decoding). Decoders
// read the peer's files so that neither side reads its own choices. Items are pixels.
#ifdef KROJ_HAVE_CODEC
#include <benchmark/benchmark.h>
#include <string.h>

#include <string>
#include <vector>

#include "bench_util.h"
#include "codec/jpeg_codec.h"

#ifdef KROJ_HAVE_PEER_TJ
#include <turbojpeg.h>
#endif

namespace {

using krojcodec::ChromaSampling;
using krojcodec::Image;

constexpr int kQuality = 90;

const Image& Photo() {
  static Image img;
  if (!img.pixels.empty()) return img;
  const std::vector<uint8_t> file = kro_bench::ReadFile(kro_bench::DataPath("retina.jpg"));
  Image src;
  std::string error;
  if (!krojcodec::DecodeJpeg(file.data(), file.size(), &src, &error) || src.channels != 3)
    return img;
  img.width = 2 * src.width;
  img.height = 2 * src.height;
  img.channels = 3;
  img.pixels.resize(img.row_bytes() * img.height);
  for (int y = 0; y < img.height; ++y)
    for (int t = 0; t < 2; ++t)
      memcpy(img.row(y) + t * src.row_bytes(), src.row(y % src.height), src.row_bytes());
  return img;
}

void SetPixels(benchmark::State& state, const Image& img, size_t bytes) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * img.width * img.height);
  state.counters["bpp"] = 8.0 * static_cast<double>(bytes) / (double{1} * img.width * img.height);
}

void Encode(benchmark::State& state, ChromaSampling sampling) {
  const Image& img = Photo();
  if (img.pixels.empty()) return state.SkipWithError("cannot read retina.jpg");
  krojcodec::JpegEncodeOptions o;
  o.quality = kQuality;
  o.sampling = sampling;
  std::vector<uint8_t> out;
  std::string error;
  for (auto _ : state) {
    if (!krojcodec::EncodeJpeg(img, o, &out, &error)) state.SkipWithError(error.c_str());
  }
  SetPixels(state, img, out.size());
}

void DecodeFile(benchmark::State& state, const std::vector<uint8_t>& file) {
  if (file.empty()) return state.SkipWithError("no input file");
  Image img;
  std::string error;
  for (auto _ : state) {
    if (!krojcodec::DecodeJpeg(file.data(), file.size(), &img, &error))
      state.SkipWithError(error.c_str());
  }
  SetPixels(state, img, file.size());
}

#ifdef KROJ_HAVE_PEER_TJ
constexpr int kPeerFlags = TJFLAG_ACCURATEDCT;

int Subsamp(ChromaSampling s) { return s == ChromaSampling::k444 ? TJSAMP_444 : TJSAMP_420; }

// The peer's file for a sampling and mode, made once.
const std::vector<uint8_t>& PeerFile(ChromaSampling sampling, bool progressive) {
  static std::vector<uint8_t> files[2][2];
  std::vector<uint8_t>& f = files[sampling == ChromaSampling::k444][progressive];
  if (!f.empty()) return f;
  const Image& img = Photo();
  if (img.pixels.empty()) return f;
  tjhandle h = tjInitCompress();
  unsigned char* buf = nullptr;
  unsigned long size = 0;
  if (tjCompress2(h, img.pixels.data(), img.width, 0, img.height, TJPF_RGB, &buf, &size,
                  Subsamp(sampling), kQuality,
                  kPeerFlags | (progressive ? TJFLAG_PROGRESSIVE : 0)) == 0)
    f.assign(buf, buf + size);
  tjFree(buf);
  tjDestroy(h);
  return f;
}

void PeerEncode(benchmark::State& state, ChromaSampling sampling) {
  const Image& img = Photo();
  if (img.pixels.empty()) return state.SkipWithError("cannot read retina.jpg");
  tjhandle h = tjInitCompress();
  // One buffer the peer reuses across iterations (it grows it when needed).
  unsigned char* buf = nullptr;
  unsigned long size = 0;
  for (auto _ : state) {
    if (tjCompress2(h, img.pixels.data(), img.width, 0, img.height, TJPF_RGB, &buf, &size,
                    Subsamp(sampling), kQuality, kPeerFlags) != 0)
      state.SkipWithError(tjGetErrorStr2(h));
  }
  SetPixels(state, img, size);
  tjFree(buf);
  tjDestroy(h);
}

void PeerDecode(benchmark::State& state, const std::vector<uint8_t>& file) {
  if (file.empty()) return state.SkipWithError("no input file");
  const Image& img = Photo();
  std::vector<uint8_t> pixels(img.pixels.size());
  tjhandle h = tjInitDecompress();
  for (auto _ : state) {
    if (tjDecompress2(h, file.data(), file.size(), pixels.data(), img.width, 0, img.height,
                      TJPF_RGB, kPeerFlags) != 0)
      state.SkipWithError(tjGetErrorStr2(h));
  }
  SetPixels(state, img, file.size());
  tjDestroy(h);
}

void Decode(benchmark::State& state, ChromaSampling sampling, bool progressive) {
  DecodeFile(state, PeerFile(sampling, progressive));
}

void BM_peer_jpegcodec_encode_420_q90(benchmark::State& s) { PeerEncode(s, ChromaSampling::k420); }
void BM_peer_jpegcodec_encode_444_q90(benchmark::State& s) { PeerEncode(s, ChromaSampling::k444); }
void BM_peer_jpegcodec_decode_420_q90(benchmark::State& s) {
  PeerDecode(s, PeerFile(ChromaSampling::k420, false));
}
void BM_peer_jpegcodec_decode_444_q90(benchmark::State& s) {
  PeerDecode(s, PeerFile(ChromaSampling::k444, false));
}
void BM_peer_jpegcodec_decode_progressive(benchmark::State& s) {
  PeerDecode(s, PeerFile(ChromaSampling::k420, true));
}
#else
// Without the peer the decoder reads our own files.
void Decode(benchmark::State& state, ChromaSampling sampling, bool progressive) {
  krojcodec::JpegEncodeOptions o;
  o.quality = kQuality;
  o.sampling = sampling;
  o.progressive = progressive;
  std::vector<uint8_t> file;
  std::string error;
  if (!Photo().pixels.empty()) krojcodec::EncodeJpeg(Photo(), o, &file, &error);
  DecodeFile(state, file);
}
#endif

void BM_jpegcodec_encode_420_q90(benchmark::State& s) { Encode(s, ChromaSampling::k420); }
void BM_jpegcodec_encode_444_q90(benchmark::State& s) { Encode(s, ChromaSampling::k444); }
void BM_jpegcodec_decode_420_q90(benchmark::State& s) { Decode(s, ChromaSampling::k420, false); }
void BM_jpegcodec_decode_444_q90(benchmark::State& s) { Decode(s, ChromaSampling::k444, false); }
void BM_jpegcodec_decode_progressive(benchmark::State& s) {
  Decode(s, ChromaSampling::k420, true);
}

// Each benchmark right before its peer, so that both see the same load on a shared machine.
#define KROJ_JPEG_CODEC_BENCH(name) BENCHMARK(name)->Unit(benchmark::kMillisecond)
KROJ_JPEG_CODEC_BENCH(BM_jpegcodec_encode_420_q90);
#ifdef KROJ_HAVE_PEER_TJ
KROJ_JPEG_CODEC_BENCH(BM_peer_jpegcodec_encode_420_q90);
#endif
KROJ_JPEG_CODEC_BENCH(BM_jpegcodec_encode_444_q90);
#ifdef KROJ_HAVE_PEER_TJ
KROJ_JPEG_CODEC_BENCH(BM_peer_jpegcodec_encode_444_q90);
#endif
KROJ_JPEG_CODEC_BENCH(BM_jpegcodec_decode_420_q90);
#ifdef KROJ_HAVE_PEER_TJ
KROJ_JPEG_CODEC_BENCH(BM_peer_jpegcodec_decode_420_q90);
#endif
KROJ_JPEG_CODEC_BENCH(BM_jpegcodec_decode_444_q90);
#ifdef KROJ_HAVE_PEER_TJ
KROJ_JPEG_CODEC_BENCH(BM_peer_jpegcodec_decode_444_q90);
#endif
KROJ_JPEG_CODEC_BENCH(BM_jpegcodec_decode_progressive);
#ifdef KROJ_HAVE_PEER_TJ
KROJ_JPEG_CODEC_BENCH(BM_peer_jpegcodec_decode_progressive);
#endif

}  // namespace
#endif  // KROJ_HAVE_CODEC
