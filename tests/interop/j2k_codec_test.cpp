// SPDX-License-Identifier: BSD-3-Clause
// The example JPEG 2000 codec against OpenJPEG: lossless files either way decode to the
// original pixels, lossy files either way decode alike and our rate control keeps up
// with OpenJPEG's at equal size, OpenJPEG's optional coding features decode here, and
// corrupt input ends in an error, never a crash.
#include <math.h>
#include <string.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "jpeg_oracle.h"
#include "test_util.h"

#if defined(KROJ_HAVE_CODEC) && defined(KROJ_HAVE_OPENJPEG)
#include <openjpeg.h>
#include "opj_memory_stream.h"

#include "codec/j2k_codec.h"

namespace {

using krojcodec::DecodeJ2k;
using krojcodec::EncodeJ2k;
using krojcodec::Image;
using krojcodec::J2kEncodeOptions;

Image Load(const char* name) {
  const kro_oracle::Image src = kro_oracle::ReadPnm(kro_test::DataPath(name));
  Image img;
  img.width = src.width;
  img.height = src.height;
  img.channels = src.comps;
  img.pixels = src.pixels;
  return img;
}

Image Crop(const Image& src, int x0, int y0, int w, int h) {
  Image img;
  img.width = w;
  img.height = h;
  img.channels = src.channels;
  for (int y = 0; y < h; ++y) {
    const uint8_t* row = src.row(y0 + y) + static_cast<size_t>(x0) * src.channels;
    img.pixels.insert(img.pixels.end(), row, row + img.row_bytes());
  }
  return img;
}

double Psnr(const Image& a, const Image& b) {
  double se = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    const double d = static_cast<double>(a.pixels[i]) - b.pixels[i];
    se += d * d;
  }
  return se == 0 ? 99.0 : 10 * log10(255.0 * 255.0 * a.pixels.size() / se);
}

double Bpp(size_t bytes, const Image& img) {
  return 8.0 * bytes / (static_cast<double>(img.width) * img.height);
}

// ---- OpenJPEG through its library API, with in-memory streams ----

using kro_peer::MemStream;
using kro_peer::OpenStream;

// Decodes a .j2k or .jp2 file; layers > 0 stops after that many quality layers.
bool OpjDecode(const std::vector<uint8_t>& file, Image* img, int layers = 0) {
  MemStream m{file.data(), file.size()};
  const bool jp2 = file.size() > 4 && file[4] == 'j';
  opj_codec_t* codec = opj_create_decompress(jp2 ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K);
  opj_dparameters_t p;
  opj_set_default_decoder_parameters(&p);
  p.cp_layer = static_cast<OPJ_UINT32>(layers);
  opj_stream_t* s = OpenStream(&m, true);
  opj_image_t* image = nullptr;
  bool ok = opj_setup_decoder(codec, &p) && opj_read_header(s, codec, &image) &&
            opj_decode(codec, s, image) && opj_end_decompress(codec, s);
  if (ok) {
    img->width = static_cast<int>(image->comps[0].w);
    img->height = static_cast<int>(image->comps[0].h);
    img->channels = static_cast<int>(image->numcomps);
    img->pixels.resize(img->row_bytes() * img->height);
    for (size_t i = 0; i < img->pixels.size(); ++i)
      img->pixels[i] = static_cast<uint8_t>(
          std::clamp(image->comps[i % img->channels].data[i / img->channels], 0, 255));
  }
  opj_image_destroy(image);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
  return ok;
}

struct OpjOptions {
  double ratio = 0;  // compression ratio (-r), 0 lossless
  double psnr = 0;   // fixed quality (-q) instead of a ratio
  std::vector<double> layer_ratios;
  int mode = 0;  // code-block style bits
  OPJ_PROG_ORDER order = OPJ_LRCP;
  int csty = 0;  // 1 precincts, 2 SOP, 4 EPH
  int cblk_w = 64, cblk_h = 64;
  int resolutions = 6;
  int offset_x = 0, offset_y = 0;
  int tile = 0;  // tile size, 0 for one tile
  bool tile_parts = false;
  bool jp2 = false;
};

std::vector<uint8_t> OpjEncode(const Image& img, const OpjOptions& o) {
  opj_cparameters_t p;
  opj_set_default_encoder_parameters(&p);
  p.irreversible = o.ratio > 0 || o.psnr > 0 || !o.layer_ratios.empty();
  p.tcp_numlayers = 1;
  if (o.psnr > 0) {
    p.tcp_distoratio[0] = static_cast<float>(o.psnr);
    p.cp_fixed_quality = 1;
  } else if (!o.layer_ratios.empty()) {
    p.tcp_numlayers = static_cast<int>(o.layer_ratios.size());
    for (size_t i = 0; i < o.layer_ratios.size(); ++i)
      p.tcp_rates[i] = static_cast<float>(o.layer_ratios[i]);
    p.cp_disto_alloc = 1;
  } else {
    p.tcp_rates[0] = static_cast<float>(o.ratio);
    p.cp_disto_alloc = 1;
  }
  p.tcp_mct = img.channels == 3 ? 1 : 0;
  p.mode = o.mode;
  p.prog_order = o.order;
  p.csty = o.csty;
  if (o.csty & 1) {
    p.res_spec = 2;
    p.prcw_init[0] = p.prch_init[0] = 64;
    p.prcw_init[1] = p.prch_init[1] = 32;
  }
  p.cblockw_init = o.cblk_w;
  p.cblockh_init = o.cblk_h;
  p.numresolution = o.resolutions;
  if (o.tile) {
    p.tile_size_on = OPJ_TRUE;
    p.cp_tdx = p.cp_tdy = o.tile;
  }
  if (o.tile_parts) {
    p.tp_on = 1;
    p.tp_flag = 'R';
  }
  const int nc = img.channels;
  opj_image_cmptparm_t cp[3];
  memset(cp, 0, sizeof(cp));
  for (int c = 0; c < nc; ++c) {
    cp[c].dx = cp[c].dy = 1;
    cp[c].w = static_cast<OPJ_UINT32>(img.width);
    cp[c].h = static_cast<OPJ_UINT32>(img.height);
    cp[c].x0 = static_cast<OPJ_UINT32>(o.offset_x);
    cp[c].y0 = static_cast<OPJ_UINT32>(o.offset_y);
    cp[c].prec = 8;
  }
  opj_image_t* image = opj_image_create(static_cast<OPJ_UINT32>(nc), cp,
                                        nc == 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY);
  image->x0 = static_cast<OPJ_UINT32>(o.offset_x);
  image->y0 = static_cast<OPJ_UINT32>(o.offset_y);
  image->x1 = image->x0 + static_cast<OPJ_UINT32>(img.width);
  image->y1 = image->y0 + static_cast<OPJ_UINT32>(img.height);
  for (size_t i = 0; i < img.pixels.size(); ++i) image->comps[i % nc].data[i / nc] = img.pixels[i];
  std::vector<uint8_t> out;
  MemStream m;
  m.out = &out;
  opj_codec_t* codec = opj_create_compress(o.jp2 ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K);
  opj_stream_t* s = OpenStream(&m, false);
  const bool ok = opj_setup_encoder(codec, &p, image) && opj_start_compress(codec, image, s) &&
                  opj_encode(codec, s) && opj_end_compress(codec, s);
  opj_stream_destroy(s);
  opj_destroy_codec(codec);
  opj_image_destroy(image);
  if (!ok) out.clear();
  return out;
}

std::vector<uint8_t> Encode(const Image& img, const J2kEncodeOptions& o) {
  std::vector<uint8_t> out;
  std::string error;
  EXPECT_TRUE(EncodeJ2k(img, o, &out, &error)) << error;
  return out;
}

Image Decode(const std::vector<uint8_t>& file) {
  Image img;
  std::string error;
  EXPECT_TRUE(DecodeJ2k(file.data(), file.size(), &img, &error)) << error;
  return img;
}

J2kEncodeOptions Lossy(double bpp, int layers = 1) {
  J2kEncodeOptions o;
  o.lossless = false;
  o.bits_per_pixel = bpp;
  o.layers = layers;
  return o;
}

const char* const kImages[] = {"astronaut.ppm", "coffee.ppm", "chelsea.ppm", "camera.pgm"};

// ---- Lossless ----

TEST(J2kCodec, LosslessFilesDecodeExactlyBothWays) {
  for (const char* name : kImages) {
    SCOPED_TRACE(name);
    const Image img = Load(name);
    const std::vector<uint8_t> ours = Encode(img, J2kEncodeOptions{});
    Image by_opj;
    ASSERT_TRUE(OpjDecode(ours, &by_opj));
    EXPECT_TRUE(by_opj.pixels == img.pixels);
    EXPECT_TRUE(Decode(ours).pixels == img.pixels);

    const std::vector<uint8_t> theirs = OpjEncode(img, OpjOptions{});
    ASSERT_FALSE(theirs.empty());
    EXPECT_TRUE(Decode(theirs).pixels == img.pixels);
    // Same transforms, same code-blocks: the sizes differ only by coding choices.
    EXPECT_LT(static_cast<double>(ours.size()), 1.01 * theirs.size());
    printf("  %-14s lossless: ours %.3f bpp, OpenJPEG %.3f bpp\n", name, Bpp(ours.size(), img),
           Bpp(theirs.size(), img));
  }
}

// Level counts down to none, several layers and the JP2 wrapper on small odd sizes.
TEST(J2kCodec, LosslessVariantsDecodeExactly) {
  const Image chelsea = Load("chelsea.ppm");
  const Image camera = Load("camera.pgm");
  struct Case {
    Image img;
    int levels, layers;
    bool jp2;
  } cases[] = {
      {Crop(chelsea, 3, 5, 77, 45), 0, 1, false}, {Crop(chelsea, 100, 40, 33, 70), 1, 3, true},
      {Crop(camera, 7, 9, 129, 65), 3, 2, false}, {Crop(chelsea, 0, 0, 1, 1), 5, 1, false},
      {Crop(camera, 1, 1, 3, 200), 7, 1, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << c.img.width << "x" << c.img.height << " levels " << c.levels);
    J2kEncodeOptions o;
    o.levels = c.levels;
    o.layers = c.layers;
    o.jp2 = c.jp2;
    const std::vector<uint8_t> file = Encode(c.img, o);
    Image by_opj;
    ASSERT_TRUE(OpjDecode(file, &by_opj));
    EXPECT_TRUE(by_opj.pixels == c.img.pixels);
    EXPECT_TRUE(Decode(file).pixels == c.img.pixels);
  }
}

// OpenJPEG's code-block styles, progressions, precincts, markers, tile-parts, block
// sizes and an odd image origin, each decoded exactly.
TEST(J2kCodec, OpenJpegOptionsDecodeExactly) {
  const Image img = Crop(Load("coffee.ppm"), 201, 97, 150, 101);
  struct Case {
    const char* what;
    OpjOptions o;
  };
  std::vector<Case> cases;
  auto add = [&](const char* what, auto set) {
    OpjOptions o;
    set(o);
    cases.push_back({what, o});
  };
  add("bypass", [](OpjOptions& o) { o.mode = 1; });
  add("all styles", [](OpjOptions& o) { o.mode = 63; });
  add("terminate all, causal", [](OpjOptions& o) { o.mode = 4 | 8; });
  add("reset, predictable, segmentation", [](OpjOptions& o) { o.mode = 2 | 16 | 32; });
  add("RLCP", [](OpjOptions& o) { o.order = OPJ_RLCP; });
  add("RPCL precincts", [](OpjOptions& o) {
    o.order = OPJ_RPCL;
    o.csty = 1;
  });
  add("PCRL precincts", [](OpjOptions& o) {
    o.order = OPJ_PCRL;
    o.csty = 1;
  });
  add("CPRL SOP EPH", [](OpjOptions& o) {
    o.order = OPJ_CPRL;
    o.csty = 6;
  });
  add("tile-parts", [](OpjOptions& o) { o.tile_parts = true; });
  add("JP2 file", [](OpjOptions& o) { o.jp2 = true; });
  add("32x16 blocks", [](OpjOptions& o) {
    o.cblk_w = 32;
    o.cblk_h = 16;
  });
  add("odd origin", [](OpjOptions& o) {
    o.offset_x = 5;
    o.offset_y = 3;
    o.resolutions = 4;
  });
  add("odd origin precincts", [](OpjOptions& o) {
    o.offset_x = 1;
    o.offset_y = 6;
    o.csty = 1;
    o.order = OPJ_PCRL;
  });
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::vector<uint8_t> file = OpjEncode(img, c.o);
    ASSERT_FALSE(file.empty());
    EXPECT_TRUE(Decode(file).pixels == img.pixels);
  }
}

// ---- Lossy ----

// At the size OpenJPEG's rate control reaches for a ratio, ours (decoded by OpenJPEG)
// must be as good; and our decoder must read OpenJPEG's file as OpenJPEG does.
TEST(J2kCodec, LossyRateDistortionMatchesOpenJpeg) {
  struct Case {
    const char* name;
    double ratio;
  } cases[] = {{"astronaut.ppm", 96}, {"astronaut.ppm", 24}, {"coffee.ppm", 48},
               {"chelsea.ppm", 12},   {"camera.pgm", 32},    {"camera.pgm", 8}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.name << " ratio " << c.ratio);
    const Image img = Load(c.name);
    OpjOptions oo;
    oo.ratio = c.ratio;
    const std::vector<uint8_t> theirs = OpjEncode(img, oo);
    ASSERT_FALSE(theirs.empty());
    Image opj_of_theirs;
    ASSERT_TRUE(OpjDecode(theirs, &opj_of_theirs));
    const double psnr_theirs = Psnr(img, opj_of_theirs);
    const double psnr_ours_of_theirs = Psnr(img, Decode(theirs));
    EXPECT_NEAR(psnr_ours_of_theirs, psnr_theirs, 0.1);

    const double bpp = Bpp(theirs.size(), img);
    const std::vector<uint8_t> ours = Encode(img, Lossy(bpp));
    EXPECT_LE(ours.size(), theirs.size());
    EXPECT_GT(static_cast<double>(ours.size()), 0.97 * theirs.size());
    Image opj_of_ours;
    ASSERT_TRUE(OpjDecode(ours, &opj_of_ours));
    const double psnr_ours = Psnr(img, opj_of_ours);
    EXPECT_GT(psnr_ours, psnr_theirs - 0.3);
    EXPECT_NEAR(Psnr(img, Decode(ours)), psnr_ours, 0.05);
    printf(
        "  %-14s %.3f bpp: ours %.2f dB, OpenJPEG %.2f dB; OpenJPEG's file decoded here %.2f dB\n",
        c.name, bpp, psnr_ours, psnr_theirs, psnr_ours_of_theirs);
  }
}

// Quality layers: each prefix decodes, quality grows layer by layer, and the whole
// file keeps to its budget; OpenJPEG's layered and fixed-quality files decode here.
TEST(J2kCodec, LossyLayers) {
  const Image img = Crop(Load("astronaut.ppm"), 64, 32, 256, 192);
  const std::vector<uint8_t> ours = Encode(img, Lossy(1.0, 4));
  EXPECT_LE(Bpp(ours.size(), img), 1.0);
  EXPECT_GT(Bpp(ours.size(), img), 0.97);
  double last = 0;
  for (int l = 1; l <= 4; ++l) {
    Image part;
    ASSERT_TRUE(OpjDecode(ours, &part, l));
    const double psnr = Psnr(img, part);
    EXPECT_GT(psnr, last + 0.5) << "layer " << l;
    last = psnr;
  }
  Image all;
  ASSERT_TRUE(OpjDecode(ours, &all));
  EXPECT_NEAR(Psnr(img, Decode(ours)), Psnr(img, all), 0.05);

  OpjOptions layered;
  layered.layer_ratios = {80, 40, 20, 10};
  OpjOptions fixed_quality;
  fixed_quality.psnr = 36;
  for (const OpjOptions& o : {layered, fixed_quality}) {
    const std::vector<uint8_t> theirs = OpjEncode(img, o);
    ASSERT_TRUE(OpjDecode(theirs, &all));
    EXPECT_NEAR(Psnr(img, Decode(theirs)), Psnr(img, all), 0.1);
  }
}

// Without a target every pass is kept: close to lossless for the irreversible path.
TEST(J2kCodec, LossyWithoutTargetKeepsEveryPass) {
  const Image img = Crop(Load("coffee.ppm"), 0, 0, 200, 120);
  J2kEncodeOptions o = Lossy(0.0);
  o.jp2 = true;
  const std::vector<uint8_t> file = Encode(img, o);
  Image by_opj;
  ASSERT_TRUE(OpjDecode(file, &by_opj));
  EXPECT_GT(Psnr(img, by_opj), 45.0);
  EXPECT_NEAR(Psnr(img, Decode(file)), Psnr(img, by_opj), 0.05);
}

// A target that the whole file fits gives the file without a target, for both paths:
// the encoder, which at low targets leaves out the lowest bit-planes at first, must
// then code every block again with all of them. The steep ramp keeps the file small.
TEST(J2kCodec, TargetAboveTheWholeFileKeepsEveryPlane) {
  Image img;
  img.width = 96;
  img.height = 80;
  img.channels = 1;
  for (int y = 0; y < img.height; ++y)
    for (int x = 0; x < img.width; ++x) img.pixels.push_back(static_cast<uint8_t>(2 * x + y));
  for (const bool lossless : {true, false}) {
    J2kEncodeOptions o = lossless ? J2kEncodeOptions{} : Lossy(0.0);
    const std::vector<uint8_t> whole = Encode(img, o);
    o.bits_per_pixel = 0.6;  // leaves out one plane at first
    ASSERT_LT(Bpp(whole.size(), img), o.bits_per_pixel) << lossless;
    EXPECT_EQ(Encode(img, o), whole) << lossless;
  }
}

// ---- Malformed and unsupported input ----

TEST(J2kCodec, RefusesWhatItDoesNotSupport) {
  const Image img = Crop(Load("camera.pgm"), 0, 0, 100, 80);
  OpjOptions tiled;
  tiled.tile = 64;
  const std::vector<uint8_t> file = OpjEncode(img, tiled);
  Image out;
  std::string error;
  EXPECT_FALSE(DecodeJ2k(file.data(), file.size(), &out, &error));
  EXPECT_NE(error.find("tiles"), std::string::npos) << error;

  // Our own file with a SIZ claiming 200000 x 200000 samples.
  std::vector<uint8_t> big = Encode(img, J2kEncodeOptions{});
  for (int k : {8, 12}) {  // Xsiz, Ysiz
    big[k] = 0x00;
    big[k + 1] = 0x03;
    big[k + 2] = 0x0D;
    big[k + 3] = 0x40;
  }
  for (int k : {24, 28}) {  // the tile grows with the image
    big[k] = 0x00;
    big[k + 1] = 0x03;
    big[k + 2] = 0x0D;
    big[k + 3] = 0x40;
  }
  EXPECT_FALSE(DecodeJ2k(big.data(), big.size(), &out, &error));
  EXPECT_NE(error.find("too large"), std::string::npos) << error;

  for (const std::vector<uint8_t>& junk :
       {std::vector<uint8_t>{}, std::vector<uint8_t>{0xFF, 0x4F}, std::vector<uint8_t>(64, 0xFF)}) {
    error.clear();
    EXPECT_FALSE(DecodeJ2k(junk.data(), junk.size(), &out, &error));
    EXPECT_FALSE(error.empty());
  }
}

// Truncations and single-byte changes of our files and OpenJPEG's: the decoder returns,
// with an image or an error (the sanitizers watch the memory).
TEST(J2kCodec, CorruptInputNeverCrashes) {
  const Image img = Crop(Load("chelsea.ppm"), 40, 40, 48, 40);
  OpjOptions styled;
  styled.mode = 63;
  styled.csty = 7;
  styled.order = OPJ_RPCL;
  const std::vector<std::vector<uint8_t>> files = {
      Encode(img, J2kEncodeOptions{}), Encode(img, Lossy(1.0, 3)), OpjEncode(img, styled)};
  kro_test::Rng rng(2024);
  for (const std::vector<uint8_t>& file : files) {
    for (size_t len = 0; len < file.size(); len += 1 + len / 16) {
      Image out;
      std::string error;
      DecodeJ2k(file.data(), len, &out, &error);
    }
    for (int trial = 0; trial < 400; ++trial) {
      std::vector<uint8_t> bad = file;
      const size_t at = static_cast<size_t>(rng.Int(0, static_cast<int64_t>(bad.size()) - 1));
      bad[at] =
          static_cast<uint8_t>(trial < 200 ? bad[at] ^ (1 << rng.Int(0, 7)) : rng.Int(0, 255));
      Image out;
      std::string error;
      if (!DecodeJ2k(bad.data(), bad.size(), &out, &error)) {
        EXPECT_FALSE(error.empty());
      } else {
        EXPECT_EQ(out.pixels.size(), out.row_bytes() * out.height);
      }
    }
  }
}

}  // namespace

#else

TEST(J2kCodec, SkippedWithoutOpenJpeg) {
  GTEST_SKIP() << "OpenJPEG (libopenjp2) or the example codec is not available";
}

#endif
