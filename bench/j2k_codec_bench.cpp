// SPDX-License-Identifier: BSD-3-Clause
// The example JPEG 2000 codec end to end against OpenJPEG's library on the same photo
// (astronaut tiled to 2048 x 1536, 3.1 MP), one thread each, memory to memory:
//   encode_lossless  RCT, five levels of 5/3, 64x64 code-blocks, one layer, every pass
//   encode_lossy     ICT, five levels of 9/7, rate control to 20:1 (1.2 bits per pixel)
//   decode_*         the same file (OpenJPEG's, so that neither side reads its own
//                    choices) decoded to interleaved 8-bit pixels
// The peer's encode starts from the same interleaved pixels and its decode ends in them,
// so both sides do the same work; items are pixels.
#ifdef KROJ_HAVE_CODEC
#include <benchmark/benchmark.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench_util.h"
#include "codec/image_io.h"
#include "codec/j2k_codec.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_OPJ
#include <openjpeg.h>
#include "opj_memory_stream.h"
#endif

namespace {

using krojcodec::Image;

constexpr double kLossyRatio = 20.0;

// The photo repeated to w x h.
const Image& Photo(int w, int h) {
  static Image img;
  if (img.width == w && img.height == h) return img;
  Image src;
  std::string error;
  krojcodec::ReadImage(kro_bench::DataPath("astronaut.ppm"), &src, &error);
  img.width = w;
  img.height = h;
  img.channels = 3;
  img.pixels.resize(img.row_bytes() * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      memcpy(img.row(y) + 3 * x, src.row(y % src.height) + 3 * (x % src.width), 3);
  return img;
}

krojcodec::J2kEncodeOptions Options(bool lossy) {
  krojcodec::J2kEncodeOptions o;
  if (lossy) {
    o.lossless = false;
    o.bits_per_pixel = 24.0 / kLossyRatio;
  }
  return o;
}

void SetPixels(benchmark::State& state, const Image& img, size_t bytes) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * img.width * img.height);
  state.counters["bpp"] = 8.0 * static_cast<double>(bytes) / (double{1} * img.width * img.height);
}

void Encode(benchmark::State& state, bool lossy) {
  const Image& img = Photo(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  std::vector<uint8_t> out;
  std::string error;
  for (auto _ : state) {
    if (!krojcodec::EncodeJ2k(img, Options(lossy), &out, &error)) state.SkipWithError(error.c_str());
  }
  SetPixels(state, img, out.size());
}

#ifdef KROJ_HAVE_PEER_OPJ
using kro_peer::MemStream;
using kro_peer::OpenStream;

// The same structure as ours: one tile, LRCP, 64x64 code-blocks, six resolutions,
// colour transform, one layer.
bool PeerEncode(const Image& img, bool lossy, std::vector<uint8_t>* out) {
  opj_cparameters_t p;
  opj_set_default_encoder_parameters(&p);
  p.numresolution = 6;
  p.cblockw_init = p.cblockh_init = 64;
  p.tcp_mct = 1;
  p.irreversible = lossy ? 1 : 0;
  p.tcp_numlayers = 1;
  p.tcp_rates[0] = lossy ? static_cast<float>(kLossyRatio) : 0.0f;
  p.cp_disto_alloc = 1;
  opj_image_cmptparm_t cp[3];
  memset(cp, 0, sizeof(cp));
  for (auto& c : cp) {
    c.dx = c.dy = 1;
    c.w = static_cast<OPJ_UINT32>(img.width);
    c.h = static_cast<OPJ_UINT32>(img.height);
    c.prec = 8;
  }
  opj_image_t* image = opj_image_create(3, cp, OPJ_CLRSPC_SRGB);
  image->x1 = static_cast<OPJ_UINT32>(img.width);
  image->y1 = static_cast<OPJ_UINT32>(img.height);
  const size_t n = static_cast<size_t>(img.width) * img.height;
  for (int c = 0; c < 3; ++c) {
    OPJ_INT32* dst = image->comps[c].data;
    for (size_t i = 0; i < n; ++i) dst[i] = img.pixels[3 * i + static_cast<size_t>(c)];
  }
  out->clear();
  MemStream m;
  m.out = out;
  opj_codec_t* codec = opj_create_compress(OPJ_CODEC_J2K);
  opj_stream_t* s = OpenStream(&m, false);
  const bool ok = opj_setup_encoder(codec, &p, image) && opj_codec_set_threads(codec, 0) &&
                  opj_start_compress(codec, image, s) && opj_encode(codec, s) &&
                  opj_end_compress(codec, s);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
  opj_image_destroy(image);
  return ok;
}

bool PeerDecode(const std::vector<uint8_t>& file, Image* img) {
  MemStream m{file.data(), file.size()};
  opj_dparameters_t p;
  opj_set_default_decoder_parameters(&p);
  opj_codec_t* codec = opj_create_decompress(OPJ_CODEC_J2K);
  opj_stream_t* s = OpenStream(&m, true);
  opj_image_t* image = nullptr;
  bool ok = opj_setup_decoder(codec, &p) && opj_codec_set_threads(codec, 0) &&
            opj_read_header(s, codec, &image) && opj_decode(codec, s, image) &&
            opj_end_decompress(codec, s) && image->numcomps == 3;
  if (ok) {
    img->width = static_cast<int>(image->comps[0].w);
    img->height = static_cast<int>(image->comps[0].h);
    img->channels = 3;
    img->pixels.resize(img->row_bytes() * img->height);
    const size_t n = static_cast<size_t>(img->width) * img->height;
    for (int c = 0; c < 3; ++c) {
      const OPJ_INT32* src = image->comps[c].data;
      for (size_t i = 0; i < n; ++i)
        img->pixels[3 * i + static_cast<size_t>(c)] =
            static_cast<uint8_t>(std::clamp<OPJ_INT32>(src[i], 0, 255));
    }
  }
  opj_image_destroy(image);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
  return ok;
}

void PeerEncodeBench(benchmark::State& state, bool lossy) {
  const Image& img = Photo(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  std::vector<uint8_t> out;
  for (auto _ : state) {
    if (!PeerEncode(img, lossy, &out)) state.SkipWithError("OpenJPEG encode failed");
  }
  SetPixels(state, img, out.size());
}

// The peer's file at the benchmark's size, made once per size and mode.
const std::vector<uint8_t>& PeerFile(int w, int h, bool lossy) {
  static std::vector<uint8_t> files[2];
  static int sizes[2][2] = {};
  std::vector<uint8_t>& f = files[lossy];
  if (sizes[lossy][0] != w || sizes[lossy][1] != h) {
    PeerEncode(Photo(w, h), lossy, &f);
    sizes[lossy][0] = w;
    sizes[lossy][1] = h;
  }
  return f;
}

void Decode(benchmark::State& state, bool lossy) {
  const int w = static_cast<int>(state.range(0)), h = static_cast<int>(state.range(1));
  const std::vector<uint8_t>& file = PeerFile(w, h, lossy);
  Image img;
  std::string error;
  for (auto _ : state) {
    if (!krojcodec::DecodeJ2k(file.data(), file.size(), &img, &error))
      state.SkipWithError(error.c_str());
  }
  if (!lossy && img.pixels != Photo(w, h).pixels) state.SkipWithError("lossless decode differs");
  SetPixels(state, Photo(w, h), file.size());
}

void PeerDecodeBench(benchmark::State& state, bool lossy) {
  const int w = static_cast<int>(state.range(0)), h = static_cast<int>(state.range(1));
  const std::vector<uint8_t>& file = PeerFile(w, h, lossy);
  Image img;
  for (auto _ : state) {
    if (!PeerDecode(file, &img)) state.SkipWithError("OpenJPEG decode failed");
  }
  if (!lossy && img.pixels != Photo(w, h).pixels) state.SkipWithError("lossless decode differs");
  SetPixels(state, Photo(w, h), file.size());
}

void BM_peer_j2k_encode_lossless(benchmark::State& s) { PeerEncodeBench(s, false); }
void BM_peer_j2k_encode_lossy(benchmark::State& s) { PeerEncodeBench(s, true); }
void BM_peer_j2k_decode_lossless(benchmark::State& s) { PeerDecodeBench(s, false); }
void BM_peer_j2k_decode_lossy(benchmark::State& s) { PeerDecodeBench(s, true); }
#else
// Without the peer the decoders read our own files.
void Decode(benchmark::State& state, bool lossy) {
  const Image& img = Photo(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  std::vector<uint8_t> file;
  std::string error;
  krojcodec::EncodeJ2k(img, Options(lossy), &file, &error);
  Image out;
  for (auto _ : state) krojcodec::DecodeJ2k(file.data(), file.size(), &out, &error);
  SetPixels(state, img, file.size());
}
#endif

void BM_j2k_encode_lossless(benchmark::State& s) { Encode(s, false); }
void BM_j2k_encode_lossy(benchmark::State& s) { Encode(s, true); }
void BM_j2k_decode_lossless(benchmark::State& s) { Decode(s, false); }
void BM_j2k_decode_lossy(benchmark::State& s) { Decode(s, true); }

// Each benchmark beside its peer.
#define KROJ_J2K_SIZES ->Args({2048, 1536})->Unit(benchmark::kMillisecond)
BENCHMARK(BM_j2k_encode_lossless) KROJ_J2K_SIZES;
BENCHMARK(BM_j2k_decode_lossless) KROJ_J2K_SIZES;
BENCHMARK(BM_j2k_encode_lossy) KROJ_J2K_SIZES;
BENCHMARK(BM_j2k_decode_lossy) KROJ_J2K_SIZES;
#ifdef KROJ_HAVE_PEER_OPJ
BENCHMARK(BM_peer_j2k_encode_lossless) KROJ_J2K_SIZES;
BENCHMARK(BM_peer_j2k_decode_lossless) KROJ_J2K_SIZES;
BENCHMARK(BM_peer_j2k_encode_lossy) KROJ_J2K_SIZES;
BENCHMARK(BM_peer_j2k_decode_lossy) KROJ_J2K_SIZES;
#endif

}  // namespace
#endif  // KROJ_HAVE_CODEC
