// SPDX-License-Identifier: BSD-3-Clause
// kroj_rd: rate against PSNR of the example codecs and their peers on one photo.
//   JPEG  4:2:0 at quality 30..95: ours against TurboJPEG's tjCompress2 (islow DCT)
//   J2K   ICT + 9/7, one layer, at 10:1..80:1: ours against OpenJPEG (and Grok when
//         it is found)
// Every file of a codec is decoded by the same decoder (the peer's), so the curves
// compare encoders alone; our own decoder reads our files as a further curve. Rates
// are whole-file sizes in bits per pixel, PSNR is over all RGB samples.
//   kroj_rd [--image=<ppm/pgm/png>] [--json=<out.json>]
// prints a CSV table and optionally writes the same points as JSON.
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "codec/image_io.h"
#include "codec/j2k_codec.h"
#include "codec/jpeg_codec.h"

#ifdef KROJ_HAVE_PEER_TJ
#include <turbojpeg.h>
#endif
#ifdef KROJ_HAVE_PEER_OPJ
#include <openjpeg.h>
#include "opj_memory_stream.h"
#endif
#ifdef KROJ_HAVE_PEER_GRK
#include <grok.h>
#endif

namespace {

using krojcodec::Image;

struct Point {
  double param;  // quality factor or compression ratio asked for
  double bpp;
  double psnr;
};

struct Curve {
  std::string codec;    // "jpeg" or "j2k"
  std::string encoder;  // who wrote the files
  std::string decoder;  // who read them
  std::vector<Point> points;
};

double Bpp(size_t bytes, const Image& img) {
  return 8.0 * static_cast<double>(bytes) / (static_cast<double>(img.width) * img.height);
}

#ifdef KROJ_HAVE_PEER_TJ
bool TjEncode(const Image& img, int quality, std::vector<uint8_t>* out) {
  tjhandle h = tjInitCompress();
  unsigned char* buf = nullptr;
  unsigned long size = 0;
  const bool grey = img.channels == 1;
  const bool ok = tjCompress2(h, img.pixels.data(), img.width, 0, img.height,
                              grey ? TJPF_GRAY : TJPF_RGB, &buf, &size,
                              grey ? TJSAMP_GRAY : TJSAMP_420, quality, 0) == 0;
  if (ok) out->assign(buf, buf + size);
  tjFree(buf);
  tjDestroy(h);
  return ok;
}

bool TjDecode(const std::vector<uint8_t>& file, int channels, Image* img) {
  tjhandle h = tjInitDecompress();
  int w = 0, hgt = 0, samp = 0, cs = 0;
  bool ok = tjDecompressHeader3(h, file.data(), file.size(), &w, &hgt, &samp, &cs) == 0;
  if (ok) {
    img->width = w;
    img->height = hgt;
    img->channels = channels;
    img->pixels.resize(img->row_bytes() * hgt);
    ok = tjDecompress2(h, file.data(), file.size(), img->pixels.data(), w, 0, hgt,
                       channels == 1 ? TJPF_GRAY : TJPF_RGB, 0) == 0;
  }
  tjDestroy(h);
  return ok;
}
#endif

#ifdef KROJ_HAVE_PEER_OPJ
using kro_peer::MemStream;
using kro_peer::OpenStream;

// The structure of our encoder: one tile, LRCP, 64x64 code-blocks, five levels,
// colour transform for RGB, 9/7, one layer at the given ratio.
bool OpjEncode(const Image& img, double ratio, std::vector<uint8_t>* out) {
  opj_cparameters_t p;
  opj_set_default_encoder_parameters(&p);
  p.numresolution = 6;
  p.cblockw_init = p.cblockh_init = 64;
  p.tcp_mct = img.channels == 3 ? 1 : 0;
  p.irreversible = 1;
  p.tcp_numlayers = 1;
  p.tcp_rates[0] = static_cast<float>(ratio);
  p.cp_disto_alloc = 1;
  opj_image_cmptparm_t cp[3];
  memset(cp, 0, sizeof(cp));
  for (int c = 0; c < img.channels; ++c) {
    cp[c].dx = cp[c].dy = 1;
    cp[c].w = static_cast<OPJ_UINT32>(img.width);
    cp[c].h = static_cast<OPJ_UINT32>(img.height);
    cp[c].prec = 8;
  }
  opj_image_t* image = opj_image_create(static_cast<OPJ_UINT32>(img.channels), cp,
                                        img.channels == 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY);
  image->x1 = static_cast<OPJ_UINT32>(img.width);
  image->y1 = static_cast<OPJ_UINT32>(img.height);
  const size_t n = static_cast<size_t>(img.width) * img.height;
  for (int c = 0; c < img.channels; ++c) {
    OPJ_INT32* dst = image->comps[c].data;
    for (size_t i = 0; i < n; ++i) dst[i] = img.pixels[img.channels * i + c];
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

bool OpjDecode(const std::vector<uint8_t>& file, Image* img) {
  MemStream m{file.data(), file.size()};
  opj_dparameters_t p;
  opj_set_default_decoder_parameters(&p);
  opj_codec_t* codec = opj_create_decompress(OPJ_CODEC_J2K);
  opj_stream_t* s = OpenStream(&m, true);
  opj_image_t* image = nullptr;
  bool ok = opj_setup_decoder(codec, &p) && opj_codec_set_threads(codec, 0) &&
            opj_read_header(s, codec, &image) && opj_decode(codec, s, image) &&
            opj_end_decompress(codec, s) && (image->numcomps == 1 || image->numcomps == 3);
  if (ok) {
    img->width = static_cast<int>(image->comps[0].w);
    img->height = static_cast<int>(image->comps[0].h);
    img->channels = static_cast<int>(image->numcomps);
    img->pixels.resize(img->row_bytes() * img->height);
    const size_t n = static_cast<size_t>(img->width) * img->height;
    for (int c = 0; c < img->channels; ++c) {
      const OPJ_INT32* src = image->comps[c].data;
      for (size_t i = 0; i < n; ++i)
        img->pixels[img->channels * i + c] = static_cast<uint8_t>(std::clamp<OPJ_INT32>(src[i], 0, 255));
    }
  }
  opj_image_destroy(image);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
  return ok;
}
#endif

#ifdef KROJ_HAVE_PEER_GRK
// Grok with the same structure as the other two, one thread. Its memory streams only
// read in this version, so the code-stream goes through a temporary file.
bool GrkEncode(const Image& img, double ratio, std::vector<uint8_t>* out) {
  grk_cparameters p;
  grk_compress_set_default_params(&p);
  p.cod_format = GRK_FMT_J2K;
  p.numresolution = 6;
  p.cblockw_init = p.cblockh_init = 64;
  p.irreversible = true;
  p.numlayers = 1;
  p.layer_rate[0] = ratio;
  p.allocationByRateDistoration = true;
  p.mct = img.channels == 3 ? 1 : 0;
  p.numThreads = 1;
  grk_image_comp cp[3];
  memset(cp, 0, sizeof(cp));
  for (int c = 0; c < img.channels; ++c) {
    cp[c].dx = cp[c].dy = 1;
    cp[c].w = static_cast<uint32_t>(img.width);
    cp[c].h = static_cast<uint32_t>(img.height);
    cp[c].prec = 8;
  }
  grk_image* image = grk_image_new(static_cast<uint16_t>(img.channels), cp,
                                   img.channels == 3 ? GRK_CLRSPC_SRGB : GRK_CLRSPC_GRAY);
  if (!image) return false;
  image->x1 = static_cast<uint32_t>(img.width);
  image->y1 = static_cast<uint32_t>(img.height);
  for (int c = 0; c < img.channels; ++c) {
    const grk_image_comp& comp = image->comps[c];
    if (!comp.data) {
      grk_object_unref(&image->obj);
      return false;
    }
    for (int y = 0; y < img.height; ++y)
      for (int x = 0; x < img.width; ++x)
        comp.data[static_cast<size_t>(y) * comp.stride + x] = img.row(y)[img.channels * x + c];
  }
  char path[] = "/tmp/kroj_rd_XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) {
    grk_object_unref(&image->obj);
    return false;
  }
  close(fd);
  grk_stream_params sp;
  memset(&sp, 0, sizeof(sp));
  sp.file = path;
  grk_codec* codec = grk_compress_init(&sp, &p, image);
  bool ok = codec && grk_compress(codec, nullptr);
  if (codec) grk_object_unref(codec);
  grk_object_unref(&image->obj);
  std::string error;
  ok = ok && krojcodec::ReadFileBytes(path, out, &error);
  unlink(path);
  return ok;
}
#endif

void Add(Curve* c, double param, size_t bytes, const Image& ref, const Image& decoded, bool ok) {
  if (!ok) {
    fprintf(stderr, "kroj_rd: %s by %s read by %s failed at %g\n", c->codec.c_str(),
            c->encoder.c_str(), c->decoder.c_str(), param);
    return;
  }
  const double psnr = krojcodec::Psnr(ref, decoded);
  c->points.push_back({param, Bpp(bytes, ref), psnr < 99.0 ? psnr : 99.0});  // JSON has no inf
}

std::vector<Curve> JpegCurves(const Image& img) {
  Curve ours_own{"jpeg", "krojmx", "krojmx", {}};
#ifdef KROJ_HAVE_PEER_TJ
  Curve ours{"jpeg", "krojmx", "libjpeg-turbo", {}};
  Curve peer{"jpeg", "libjpeg-turbo", "libjpeg-turbo", {}};
#endif
  std::string error;
  for (int q : {30, 40, 50, 60, 70, 75, 80, 85, 90, 95}) {
    krojcodec::JpegEncodeOptions o;
    o.quality = q;
    o.sampling = img.channels == 1 ? krojcodec::ChromaSampling::kGrey
                                   : krojcodec::ChromaSampling::k420;
    std::vector<uint8_t> file;
    if (!krojcodec::EncodeJpeg(img, o, &file, &error)) {
      fprintf(stderr, "kroj_rd: JPEG encode at q%d: %s\n", q, error.c_str());
      continue;
    }
    Image dec;
    Add(&ours_own, q, file.size(), img, dec,
        krojcodec::DecodeJpeg(file.data(), file.size(), &dec, &error));
#ifdef KROJ_HAVE_PEER_TJ
    Add(&ours, q, file.size(), img, dec, TjDecode(file, img.channels, &dec));
    std::vector<uint8_t> peer_file;
    Add(&peer, q, peer_file.size(), img, dec,
        TjEncode(img, q, &peer_file) && TjDecode(peer_file, img.channels, &dec));
#endif
  }
#ifdef KROJ_HAVE_PEER_TJ
  return {ours, peer, ours_own};
#else
  return {ours_own};
#endif
}

std::vector<Curve> J2kCurves(const Image& img) {
  Curve ours_own{"j2k", "krojmx", "krojmx", {}};
#ifdef KROJ_HAVE_PEER_OPJ
  Curve ours{"j2k", "krojmx", "OpenJPEG", {}};
  Curve peer{"j2k", "OpenJPEG", "OpenJPEG", {}};
#ifdef KROJ_HAVE_PEER_GRK
  Curve grok{"j2k", "Grok", "OpenJPEG", {}};
  grk_initialize(nullptr, 1);
#endif
#endif
  std::string error;
  const double raw_bits = 8.0 * img.channels;
  for (double ratio : {10.0, 15.0, 20.0, 30.0, 40.0, 60.0, 80.0}) {
    krojcodec::J2kEncodeOptions o;
    o.lossless = false;
    o.bits_per_pixel = raw_bits / ratio;
    std::vector<uint8_t> file;
    if (!krojcodec::EncodeJ2k(img, o, &file, &error)) {
      fprintf(stderr, "kroj_rd: J2K encode at %g:1: %s\n", ratio, error.c_str());
      continue;
    }
    Image dec;
    Add(&ours_own, ratio, file.size(), img, dec,
        krojcodec::DecodeJ2k(file.data(), file.size(), &dec, &error));
#ifdef KROJ_HAVE_PEER_OPJ
    Add(&ours, ratio, file.size(), img, dec, OpjDecode(file, &dec));
    std::vector<uint8_t> peer_file;
    Add(&peer, ratio, peer_file.size(), img, dec,
        OpjEncode(img, ratio, &peer_file) && OpjDecode(peer_file, &dec));
#ifdef KROJ_HAVE_PEER_GRK
    Add(&grok, ratio, peer_file.size(), img, dec,
        GrkEncode(img, ratio, &peer_file) && OpjDecode(peer_file, &dec));
#endif
#endif
  }
#ifdef KROJ_HAVE_PEER_OPJ
#ifdef KROJ_HAVE_PEER_GRK
  grk_deinitialize();
  if (!grok.points.empty()) return {ours, peer, ours_own, grok};
#endif
  return {ours, peer, ours_own};
#else
  return {ours_own};
#endif
}

}  // namespace

int main(int argc, char** argv) {
  std::string path = std::string(KROJ_TEST_DATA_DIR) + "/astronaut.ppm";
  std::string json;
  for (int i = 1; i < argc; ++i) {
    if (strncmp(argv[i], "--image=", 8) == 0) {
      path = argv[i] + 8;
    } else if (strncmp(argv[i], "--json=", 7) == 0) {
      json = argv[i] + 7;
    } else {
      fprintf(stderr, "usage: kroj_rd [--image=<file>] [--json=<out.json>]\n");
      return 2;
    }
  }
  Image img;
  std::string error;
  if (!krojcodec::ReadImage(path, &img, &error)) {
    fprintf(stderr, "kroj_rd: %s: %s\n", path.c_str(), error.c_str());
    return 1;
  }
  std::vector<Curve> curves = JpegCurves(img);
  for (Curve& c : J2kCurves(img)) curves.push_back(std::move(c));

  printf("codec,encoder,decoder,param,bpp,psnr_db\n");
  for (const Curve& c : curves)
    for (const Point& p : c.points)
      printf("%s,%s,%s,%g,%.4f,%.3f\n", c.codec.c_str(), c.encoder.c_str(), c.decoder.c_str(),
             p.param, p.bpp, p.psnr);
  if (json.empty()) return 0;

  FILE* f = fopen(json.c_str(), "w");
  if (!f) {
    fprintf(stderr, "kroj_rd: cannot write %s\n", json.c_str());
    return 1;
  }
  const char* name = strrchr(path.c_str(), '/');
  fprintf(f, "{\n  \"image\": \"%s\", \"width\": %d, \"height\": %d, \"channels\": %d,\n",
          name ? name + 1 : path.c_str(), img.width, img.height, img.channels);
  fprintf(f, "  \"curves\": [\n");
  for (size_t i = 0; i < curves.size(); ++i) {
    const Curve& c = curves[i];
    fprintf(f, "    {\"codec\": \"%s\", \"encoder\": \"%s\", \"decoder\": \"%s\", \"points\": [",
            c.codec.c_str(), c.encoder.c_str(), c.decoder.c_str());
    for (size_t j = 0; j < c.points.size(); ++j) {
      const Point& p = c.points[j];
      fprintf(f, "%s{\"param\": %g, \"bpp\": %.5f, \"psnr\": %.4f}", j ? ", " : "", p.param,
              p.bpp, p.psnr);
    }
    fprintf(f, "]}%s\n", i + 1 < curves.size() ? "," : "");
  }
  fprintf(f, "  ]\n}\n");
  fclose(f);
  return 0;
}
