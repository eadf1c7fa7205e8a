// SPDX-License-Identifier: BSD-3-Clause
// The example JPEG codec against libjpeg-turbo: our files decode there without warnings
// to exactly the coefficients we coded and to pixels close to ours; our decoder reads
// libjpeg-turbo's files and the real test photos to its coefficients and close pixels.
// Lossless round trips, corrupt input and the image I/O helpers are covered too.
#ifdef KROJ_HAVE_CODEC

#include "codec/jpeg_codec.h"

#include <jpeglib.h>
#include <setjmp.h>
#include <stdio.h>

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "codec/image_io.h"
#include "codec/jpeg_format.h"
#include "test_util.h"

namespace {

using krojcodec::ChromaSampling;
using krojcodec::Image;
using krojcodec::JpegCoefficients;
using krojcodec::JpegEncodeOptions;

Image Load(const char* name) {
  Image img;
  std::string error;
  EXPECT_TRUE(krojcodec::ReadImage(kro_test::DataPath(name), &img, &error)) << error;
  return img;
}

std::vector<uint8_t> LoadBytes(const char* name) {
  std::vector<uint8_t> bytes;
  std::string error;
  EXPECT_TRUE(krojcodec::ReadFileBytes(kro_test::DataPath(name), &bytes, &error)) << error;
  return bytes;
}

Image Crop(const Image& src, int w, int h) {
  Image out;
  out.width = w;
  out.height = h;
  out.channels = src.channels;
  for (int y = 0; y < h; ++y)
    out.pixels.insert(out.pixels.end(), src.row(y), src.row(y) + out.row_bytes());
  return out;
}

// ---------------------------------------------------------------------------
// libjpeg-turbo as the peer

struct PeerError {
  jpeg_error_mgr pub;
  jmp_buf jump;
  char message[JMSG_LENGTH_MAX] = {};
};

void PeerErrorExit(j_common_ptr cinfo) {
  PeerError* e = reinterpret_cast<PeerError*>(cinfo->err);
  (*cinfo->err->format_message)(cinfo, e->message);
  longjmp(e->jump, 1);
}

void PeerKeepWarning(j_common_ptr cinfo, int level) {
  PeerError* e = reinterpret_cast<PeerError*>(cinfo->err);
  if (level < 0) {
    ++cinfo->err->num_warnings;
    (*cinfo->err->format_message)(cinfo, e->message);
  }
}

struct PeerResult {
  bool ok = false;
  long warnings = 0;
  std::string message;
  Image pixels;
  JpegCoefficients coef;  // blocks within width_in_blocks x height_in_blocks are filled
};

// Decodes with libjpeg-turbo's defaults (accurate integer IDCT, smooth up-sampling),
// either to pixels or to quantised coefficients, counting warnings.
PeerResult PeerDecode(const std::vector<uint8_t>& file, bool coefficients) {
  PeerResult r;
  jpeg_decompress_struct d;
  PeerError err;
  d.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = PeerErrorExit;
  err.pub.emit_message = PeerKeepWarning;
  if (setjmp(err.jump)) {
    r.message = err.message;
    jpeg_destroy_decompress(&d);
    return r;
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&d, TRUE);
  if (coefficients) {
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&d);
    r.coef.width = static_cast<int>(d.image_width);
    r.coef.height = static_cast<int>(d.image_height);
    for (int ci = 0; ci < d.num_components; ++ci) {
      const jpeg_component_info& info = d.comp_info[ci];
      krojcodec::JpegComponent c;
      c.id = info.component_id;
      c.h = info.h_samp_factor;
      c.v = info.v_samp_factor;
      c.width_in_blocks = c.blocks_w = static_cast<int>(info.width_in_blocks);
      c.height_in_blocks = c.blocks_h = static_cast<int>(info.height_in_blocks);
      c.coef.resize(static_cast<size_t>(c.blocks_w) * c.blocks_h * 64);
      for (int by = 0; by < c.blocks_h; ++by) {
        JBLOCKARRAY row = (*d.mem->access_virt_barray)(
            reinterpret_cast<j_common_ptr>(&d), arrays[ci], static_cast<JDIMENSION>(by), 1, FALSE);
        memcpy(c.block(0, by), row[0], sizeof(JBLOCK) * c.blocks_w);
      }
      for (int k = 0; k < 64; ++k)
        r.coef.quant[ci][k] = info.quant_table ? info.quant_table->quantval[k] : 0;
      r.coef.components.push_back(std::move(c));
    }
  } else {
    d.out_color_space = d.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&d);
    r.pixels.width = static_cast<int>(d.output_width);
    r.pixels.height = static_cast<int>(d.output_height);
    r.pixels.channels = d.output_components;
    r.pixels.pixels.resize(r.pixels.row_bytes() * r.pixels.height);
    while (d.output_scanline < d.output_height) {
      JSAMPROW row = r.pixels.row(static_cast<int>(d.output_scanline));
      jpeg_read_scanlines(&d, &row, 1);
    }
  }
  jpeg_finish_decompress(&d);
  r.warnings = err.pub.num_warnings;
  r.message = err.message;
  jpeg_destroy_decompress(&d);
  r.ok = true;
  return r;
}

// Compares the blocks that hold image samples, component by component.
void ExpectSameCoefficients(const JpegCoefficients& ours, const JpegCoefficients& peer,
                            const std::string& what) {
  ASSERT_EQ(ours.components.size(), peer.components.size()) << what;
  for (size_t c = 0; c < ours.components.size(); ++c) {
    const krojcodec::JpegComponent& a = ours.components[c];
    const krojcodec::JpegComponent& b = peer.components[c];
    ASSERT_EQ(a.width_in_blocks, b.width_in_blocks) << what;
    ASSERT_EQ(a.height_in_blocks, b.height_in_blocks) << what;
    int mismatches = 0;
    for (int by = 0; by < a.height_in_blocks; ++by)
      for (int bx = 0; bx < a.width_in_blocks; ++bx)
        mismatches += memcmp(a.block(bx, by), b.block(bx, by), 64 * sizeof(int16_t)) != 0;
    EXPECT_EQ(mismatches, 0) << what << ": blocks differing in component " << c;
  }
}

// ---------------------------------------------------------------------------
// Our files in libjpeg-turbo

struct EncodeCase {
  const char* name;
  const char* image;
  JpegEncodeOptions options;
  int crop_w = 0, crop_h = 0;  // a corner of the image, for odd sizes
};

JpegEncodeOptions Opt(int quality, ChromaSampling s, bool optimize = false, int restart = 0,
                      bool progressive = false, bool planes = false) {
  JpegEncodeOptions o;
  o.quality = quality;
  o.sampling = s;
  o.optimize = optimize;
  o.restart_interval = restart;
  o.progressive = progressive;
  o.colour_planes = planes;
  return o;
}

TEST(JpegCodecInterop, OurFilesDecodeInLibjpegTurboToOurCoefficients) {
  using S = ChromaSampling;
  const EncodeCase cases[] = {
      {"baseline 4:2:0 q90", "astronaut.ppm", Opt(90, S::k420)},
      {"baseline 4:4:4 q90", "astronaut.ppm", Opt(90, S::k444)},
      {"optimised 4:2:2 q75", "astronaut.ppm", Opt(75, S::k422, true)},
      {"odd size 4:2:0 restart 7", "chelsea.ppm", Opt(90, S::k420, false, 7)},
      {"odd size 4:2:2 planes optimised restart 1", "chelsea.ppm",
       Opt(85, S::k422, true, 1, false, true)},
      {"4:2:0 planes q30", "coffee.ppm", Opt(30, S::k420, false, 0, false, true)},
      {"4:4:4 q100 optimised", "coffee.ppm", Opt(100, S::k444, true)},
      {"grey q90", "camera.pgm", Opt(90, S::k420)},
      {"RGB to grey q60 restart 3", "coffee.ppm", Opt(60, S::kGrey, false, 3)},
      {"progressive 4:2:0 q90", "astronaut.ppm", Opt(90, S::k420, false, 0, true)},
      {"progressive 4:4:4 planes q95 restart 5", "chelsea.ppm",
       Opt(95, S::k444, false, 5, true, true)},
      {"progressive 4:2:2 planes q50", "coffee.ppm", Opt(50, S::k422, false, 0, true, true)},
      {"progressive grey q75", "camera.pgm", Opt(75, S::kGrey, false, 0, true)},
      {"17x9 progressive 4:2:0 restart 1", "chelsea.ppm", Opt(80, S::k420, false, 1, true), 17, 9},
      {"1x1 4:2:0", "astronaut.ppm", Opt(90, S::k420), 1, 1},
      {"7x5 grey progressive", "camera.pgm", Opt(90, S::kGrey, true, 0, true), 7, 5},
  };
  for (const EncodeCase& tc : cases) {
    SCOPED_TRACE(tc.name);
    Image img = Load(tc.image);
    if (tc.crop_w) img = Crop(img, tc.crop_w, tc.crop_h);
    std::vector<uint8_t> file;
    JpegCoefficients coded;
    std::string error;
    ASSERT_TRUE(krojcodec::EncodeJpeg(img, tc.options, &file, &error, &coded)) << error;

    const PeerResult peer_coef = PeerDecode(file, true);
    ASSERT_TRUE(peer_coef.ok) << peer_coef.message;
    EXPECT_EQ(peer_coef.warnings, 0) << peer_coef.message;
    ExpectSameCoefficients(coded, peer_coef.coef, tc.name);

    const PeerResult peer = PeerDecode(file, false);
    ASSERT_TRUE(peer.ok) << peer.message;
    EXPECT_EQ(peer.warnings, 0) << peer.message;
    Image ours;
    ASSERT_TRUE(krojcodec::DecodeJpeg(file.data(), file.size(), &ours, &error)) << error;
    const Image reference = img.channels == 3 && coded.components.size() == 1 ? Image() : img;
    const double ours_vs_peer = krojcodec::Psnr(ours, peer.pixels);
    EXPECT_GE(ours_vs_peer, 44.0);
    if (!reference.pixels.empty()) {
      // Both decoders are as faithful to the original as each other.
      EXPECT_NEAR(krojcodec::Psnr(ours, reference), krojcodec::Psnr(peer.pixels, reference), 0.1);
    }
    printf("  %-44s %7zu bytes, ours vs libjpeg-turbo pixels %.2f dB\n", tc.name, file.size(),
           ours_vs_peer);
  }
}

// The T.81 K.1/K.2 tables scaled by quality exactly as libjpeg-turbo scales them.
TEST(JpegCodecInterop, QuantisationTablesMatchLibjpegTurbo) {
  const Image img = Crop(Load("astronaut.ppm"), 16, 16);
  for (int quality : {1, 25, 50, 75, 90, 100}) {
    std::vector<uint8_t> ours;
    JpegCoefficients coded;
    std::string error;
    ASSERT_TRUE(
        krojcodec::EncodeJpeg(img, Opt(quality, ChromaSampling::k420), &ours, &error, &coded))
        << error;
    const PeerResult peer = PeerDecode(ours, true);
    ASSERT_TRUE(peer.ok);
    // The peer's own tables at this quality (jpeg_set_quality) must be the same.
    jpeg_compress_struct c;
    jpeg_error_mgr err;
    c.err = jpeg_std_error(&err);
    jpeg_create_compress(&c);
    c.in_color_space = JCS_RGB;
    c.input_components = 3;
    jpeg_set_defaults(&c);
    jpeg_set_quality(&c, quality, TRUE);
    for (int t = 0; t < 2; ++t)
      for (int k = 0; k < 64; ++k) {
        ASSERT_EQ(coded.quant[t][k], c.quant_tbl_ptrs[t]->quantval[k])
            << "quality " << quality << " table " << t;
        ASSERT_EQ(peer.coef.quant[t == 0 ? 0 : 1][k], coded.quant[t][k]);
      }
    jpeg_destroy_compress(&c);
  }
}

// ---------------------------------------------------------------------------
// libjpeg-turbo's files and the real photos in our decoder

struct PeerWriteCase {
  const char* name;
  const char* image;
  int quality, h0, v0;
  bool optimize, progressive;
  int restart;
};

std::vector<uint8_t> PeerEncode(const Image& img, const PeerWriteCase& pc) {
  jpeg_compress_struct c;
  PeerError err;
  c.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = PeerErrorExit;
  unsigned char* mem = nullptr;
  unsigned long size = 0;
  if (setjmp(err.jump)) {
    jpeg_destroy_compress(&c);
    free(mem);
    return {};
  }
  jpeg_create_compress(&c);
  jpeg_mem_dest(&c, &mem, &size);
  c.image_width = static_cast<JDIMENSION>(img.width);
  c.image_height = static_cast<JDIMENSION>(img.height);
  c.input_components = img.channels;
  c.in_color_space = img.channels == 3 ? JCS_RGB : JCS_GRAYSCALE;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, pc.quality, TRUE);
  c.comp_info[0].h_samp_factor = pc.h0;
  c.comp_info[0].v_samp_factor = pc.v0;
  c.optimize_coding = pc.optimize;
  c.restart_interval = static_cast<unsigned>(pc.restart);
  if (pc.progressive) jpeg_simple_progression(&c);
  jpeg_start_compress(&c, TRUE);
  while (c.next_scanline < c.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(img.row(static_cast<int>(c.next_scanline)));
    jpeg_write_scanlines(&c, &row, 1);
  }
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  std::vector<uint8_t> out(mem, mem + size);
  free(mem);
  return out;
}

void CheckOurDecoder(const std::string& name, const std::vector<uint8_t>& file, double min_psnr,
                     double min_psnr_fast) {
  SCOPED_TRACE(name);
  const PeerResult peer_coef = PeerDecode(file, true);
  ASSERT_TRUE(peer_coef.ok) << peer_coef.message;
  JpegCoefficients ours_coef;
  std::string error;
  ASSERT_TRUE(krojcodec::ReadJpegCoefficients(file.data(), file.size(), &ours_coef, &error))
      << error;
  ExpectSameCoefficients(ours_coef, peer_coef.coef, name);

  const PeerResult peer = PeerDecode(file, false);
  ASSERT_TRUE(peer.ok) << peer.message;
  Image smooth, fast;
  ASSERT_TRUE(krojcodec::DecodeJpeg(file.data(), file.size(), &smooth, &error)) << error;
  krojcodec::JpegDecodeOptions fast_options;
  fast_options.fast_upsampling = true;
  ASSERT_TRUE(krojcodec::DecodeJpeg(file.data(), file.size(), &fast, &error, fast_options))
      << error;
  const double psnr = krojcodec::Psnr(smooth, peer.pixels),
               psnr_fast = krojcodec::Psnr(fast, peer.pixels);
  EXPECT_GE(psnr, min_psnr);
  EXPECT_GE(psnr_fast, min_psnr_fast);
  printf("  %-34s pixels vs libjpeg-turbo: %.2f dB (replicated chroma %.2f dB)\n", name.c_str(),
         psnr, psnr_fast);
}

TEST(JpegCodecInterop, OurDecoderOnLibjpegTurboFiles) {
  const PeerWriteCase cases[] = {
      {"4:4:4 q75", "astronaut.ppm", 75, 1, 1, false, false, 0},
      {"4:2:2 q50 optimised", "astronaut.ppm", 50, 2, 1, true, false, 0},
      {"4:2:0 q90 restart 7", "chelsea.ppm", 90, 2, 2, false, false, 7},
      {"4:2:0 q95 restart 1 optimised", "coffee.ppm", 95, 2, 2, true, false, 1},
      {"grey q75", "camera.pgm", 75, 1, 1, false, false, 0},
      {"progressive 4:2:0 q85", "astronaut.ppm", 85, 2, 2, false, true, 0},
      {"progressive 4:4:4 q90 restart 3", "chelsea.ppm", 90, 1, 1, false, true, 3},
      {"progressive grey q60", "camera.pgm", 60, 1, 1, false, true, 0},
  };
  for (const PeerWriteCase& pc : cases) {
    const std::vector<uint8_t> file = PeerEncode(Load(pc.image), pc);
    ASSERT_FALSE(file.empty());
    const bool subsampled = pc.h0 * pc.v0 > 1;
    CheckOurDecoder(pc.name, file, 44.0, subsampled ? 30.0 : 44.0);
  }
}

// Sampling the library's up-samplers do not cover (vertical only, by four): the
// coefficients still read exactly, pixel decoding is refused with a clear message.
TEST(JpegCodecInterop, UnsupportedSamplingReadsCoefficientsAndRefusesPixels) {
  const Image img = Crop(Load("chelsea.ppm"), 75, 41);
  for (const PeerWriteCase& pc : {PeerWriteCase{"4:4:0", "", 80, 1, 2, false, false, 0},
                                  PeerWriteCase{"4:1:1", "", 80, 4, 1, false, true, 0}}) {
    SCOPED_TRACE(pc.name);
    const std::vector<uint8_t> file = PeerEncode(img, pc);
    JpegCoefficients ours;
    std::string error;
    ASSERT_TRUE(krojcodec::ReadJpegCoefficients(file.data(), file.size(), &ours, &error)) << error;
    ExpectSameCoefficients(ours, PeerDecode(file, true).coef, pc.name);
    Image pixels;
    EXPECT_FALSE(krojcodec::DecodeJpeg(file.data(), file.size(), &pixels, &error));
    EXPECT_NE(error.find("sampling factors"), std::string::npos) << error;
  }
}

TEST(JpegCodecInterop, OurDecoderOnRealPhotos) {
  for (const char* name : {"rocket.jpg", "hubble_deep_field.jpg", "retina.jpg"})
    CheckOurDecoder(name, LoadBytes(name), 44.0, 30.0);
}

// The smooth reconstruction over whole planes: every component inverse transformed
// whole, the sub-sampled ones given a border of repeated edge samples and enlarged by
// the plane up-samplers, then one colour conversion. The decoder does the same strip
// by strip, which this pins (edge rows and columns above all).
Image WholePlanes(const JpegCoefficients& f) {
  const int n = static_cast<int>(f.components.size()), w = f.width, h = f.height;
  std::vector<std::vector<uint8_t>> planes(n, std::vector<uint8_t>(size_t{1} * w * h));
  for (int c = 0; c < n; ++c) {
    const krojcodec::JpegComponent& comp = f.components[c];
    const int cw = krojcodec::ComponentWidth(f, comp), ch = krojcodec::ComponentHeight(f, comp);
    const int step = cw + 2;
    std::vector<uint8_t> b(size_t{1} * step * (ch + 2));
    for (int y = 0; y < ch; ++y) {
      for (int x = 0; x < cw; ++x) {
        uint8_t block[64];
        kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(comp.block(x / 8, y / 8), block, 8,
                                            f.quant[comp.quant_table]);
        b[size_t{1} * (y + 1) * step + x + 1] = block[8 * (y % 8) + x % 8];
      }
      b[size_t{1} * (y + 1) * step] = b[size_t{1} * (y + 1) * step + 1];
      b[size_t{1} * (y + 1) * step + cw + 1] = b[size_t{1} * (y + 1) * step + cw];
    }
    std::copy_n(b.begin() + step, step, b.begin());
    std::copy_n(b.begin() + size_t{1} * ch * step, step, b.begin() + size_t{1} * (ch + 1) * step);
    const uint8_t* inner = b.data() + step + 1;
    if (cw == w && ch == h) {
      for (int y = 0; y < h; ++y) std::copy_n(inner + size_t{1} * y * step, w, &planes[c][size_t{1} * y * w]);
    } else if (ch == h) {
      kroiSampleUpH2V1_JPEG_8u_C1R(inner, step, {cw, ch}, planes[c].data(), w, {w, h});
    } else {
      kroiSampleUpH2V2_JPEG_8u_C1R(inner, step, {cw, ch}, planes[c].data(), w, {w, h});
    }
  }
  Image img;
  img.width = w;
  img.height = h;
  img.channels = n;
  img.pixels = planes[0];
  if (n == 3) {
    img.pixels.resize(img.row_bytes() * h);
    const Kro8u* src[3] = {planes[0].data(), planes[1].data(), planes[2].data()};
    kroiYCbCrToRGB_JPEG_8u_P3C3R(src, w, img.pixels.data(), 3 * w, {w, h});
  }
  return img;
}

// Sequential files are coded and decoded one MCU at a time, other files through the
// frame's coefficient arrays. Asking for the coefficients takes the second way when
// encoding, a progressive file of the same coefficients when decoding: bytes and
// pixels must not depend on the way (partial MCUs, restarts, chroma edge rows).
TEST(JpegCodecPaths, McuAtATimeMatchesWholeFrame) {
  const Image chelsea = Load("chelsea.ppm");
  const Image images[] = {Crop(chelsea, 151, 66), Crop(chelsea, 17, 33), Crop(chelsea, 9, 2),
                          Crop(Load("camera.pgm"), 37, 21)};
  for (const Image& img : images) {
    for (ChromaSampling s : {ChromaSampling::k444, ChromaSampling::k422, ChromaSampling::k420,
                             ChromaSampling::kGrey}) {
      for (int restart : {0, 5}) {
        SCOPED_TRACE(testing::Message() << img.width << "x" << img.height << "x" << img.channels
                                        << " sampling " << static_cast<int>(s) << " restart "
                                        << restart);
        JpegEncodeOptions o;
        o.sampling = s;
        o.restart_interval = restart;
        std::vector<uint8_t> by_mcu, by_frame, progressive;
        std::string error;
        JpegCoefficients coef;
        ASSERT_TRUE(krojcodec::EncodeJpeg(img, o, &by_mcu, &error)) << error;
        ASSERT_TRUE(krojcodec::EncodeJpeg(img, o, &by_frame, &error, &coef)) << error;
        EXPECT_EQ(by_mcu, by_frame);
        o.progressive = true;
        ASSERT_TRUE(krojcodec::EncodeJpeg(img, o, &progressive, &error)) << error;
        const Image expected = WholePlanes(coef);
        for (bool fast : {false, true}) {
          krojcodec::JpegDecodeOptions d;
          d.fast_upsampling = fast;
          Image a, b;
          ASSERT_TRUE(krojcodec::DecodeJpeg(by_mcu.data(), by_mcu.size(), &a, &error, d));
          ASSERT_TRUE(
              krojcodec::DecodeJpeg(progressive.data(), progressive.size(), &b, &error, d));
          EXPECT_EQ(a.pixels, b.pixels) << "fast " << fast;
          if (!fast) EXPECT_EQ(a.pixels, expected.pixels);
        }
      }
    }
  }
}

// ---------------------------------------------------------------------------
// Lossless mode (the peer's version predates lossless decoding: round trips only)

TEST(JpegCodecLossless, EveryPredictorRoundTripsExactly) {
  const Image colour = Crop(Load("chelsea.ppm"), 151, 67);  // odd width and height
  const Image grey = Load("camera.pgm");
  for (int predictor = 1; predictor <= 7; ++predictor) {
    for (const Image* img : {&colour, &grey}) {
      JpegEncodeOptions o;
      o.lossless = true;
      o.predictor = predictor;
      std::vector<uint8_t> file;
      std::string error;
      ASSERT_TRUE(krojcodec::EncodeJpeg(*img, o, &file, &error)) << error;
      Image back;
      ASSERT_TRUE(krojcodec::DecodeJpeg(file.data(), file.size(), &back, &error)) << error;
      EXPECT_EQ(back.pixels, img->pixels)
          << "predictor " << predictor << ", " << img->channels << " channels";
    }
  }
}

TEST(JpegCodecLossless, PointTransformDropsLowBitsOnly) {
  const Image img = Crop(Load("coffee.ppm"), 64, 33);
  for (int pt : {1, 3, 7}) {
    JpegEncodeOptions o;
    o.lossless = true;
    o.predictor = 7;
    o.point_transform = pt;
    std::vector<uint8_t> file;
    std::string error;
    ASSERT_TRUE(krojcodec::EncodeJpeg(img, o, &file, &error)) << error;
    Image back;
    ASSERT_TRUE(krojcodec::DecodeJpeg(file.data(), file.size(), &back, &error)) << error;
    Image expected = img;
    for (uint8_t& v : expected.pixels) v = static_cast<uint8_t>(v >> pt << pt);
    EXPECT_EQ(back.pixels, expected.pixels) << "pt " << pt;
  }
}

// ---------------------------------------------------------------------------
// Corrupt and hostile input

TEST(JpegCodecRobustness, TruncatedAndCorruptFilesFailCleanly) {
  std::string error;
  Image img;
  const std::vector<uint8_t> truncated = LoadBytes("truncated.jpg");
  EXPECT_FALSE(krojcodec::DecodeJpeg(truncated.data(), truncated.size(), &img, &error));
  EXPECT_FALSE(error.empty());

  // Every cut of a small progressive file with restarts fails or decodes, never
  // crashes; cuts inside the scans must fail.
  std::vector<uint8_t> file;
  ASSERT_TRUE(krojcodec::EncodeJpeg(Crop(Load("chelsea.ppm"), 40, 24),
                                    Opt(80, ChromaSampling::k420, false, 2, true), &file, &error));
  int failures = 0;
  for (size_t n = 0; n + 2 < file.size(); n += 7)
    failures += !krojcodec::DecodeJpeg(file.data(), n, &img, &error);
  EXPECT_EQ(failures, static_cast<int>((file.size() - 3) / 7 + 1));

  // Random byte damage: any outcome but a crash or a sanitizer report.
  std::mt19937 rng(7);
  for (const JpegEncodeOptions& o :
       {Opt(75, ChromaSampling::k420, false, 3), Opt(75, ChromaSampling::k444, true, 0, true)}) {
    ASSERT_TRUE(krojcodec::EncodeJpeg(Crop(Load("coffee.ppm"), 48, 40), o, &file, &error));
    for (int trial = 0; trial < 300; ++trial) {
      std::vector<uint8_t> bad = file;
      for (int k = 0; k < 1 + trial % 4; ++k) bad[rng() % bad.size()] = static_cast<uint8_t>(rng());
      krojcodec::DecodeJpeg(bad.data(), bad.size(), &img, &error);
      krojcodec::JpegDecodeOptions fast;
      fast.fast_upsampling = true;
      krojcodec::DecodeJpeg(bad.data(), bad.size(), &img, &error, fast);
    }
  }
}

TEST(JpegCodecRobustness, AbsurdDimensionsAreRefusedBeforeAllocating) {
  std::vector<uint8_t> file;
  std::string error;
  ASSERT_TRUE(krojcodec::EncodeJpeg(Crop(Load("camera.pgm"), 8, 8), Opt(75, ChromaSampling::kGrey),
                                    &file, &error));
  // Patch the frame header: 65535 x 65535 is past the codec's limit; 20000 x 10000
  // is allowed in general, but not from a file of a few hundred bytes.
  size_t sof = 0;
  while (sof + 1 < file.size() && !(file[sof] == 0xFF && file[sof + 1] == 0xC0)) ++sof;
  ASSERT_LT(sof + 9, file.size());
  Image img;
  const struct {
    uint8_t bytes[4];
    const char* message;
  } cases[] = {{{0xFF, 0xFF, 0xFF, 0xFF}, "too large"},
               {{0x27, 0x10, 0x4E, 0x20}, "more than the file can hold"}};
  for (const auto& c : cases) {
    memcpy(&file[sof + 5], c.bytes, 4);
    EXPECT_FALSE(krojcodec::DecodeJpeg(file.data(), file.size(), &img, &error));
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
  }
}

// ---------------------------------------------------------------------------
// Image I/O helpers

TEST(CodecImageIo, PnmHeadersWithCommentsAndRefusals) {
  const std::string text = "P6\n# a comment\n2 # inline\n1\n255\n";
  std::vector<uint8_t> bytes(text.begin(), text.end());
  for (uint8_t v : {1, 2, 3, 4, 5, 6}) bytes.push_back(v);
  Image img;
  std::string error;
  ASSERT_TRUE(krojcodec::DecodePnm(bytes.data(), bytes.size(), &img, &error)) << error;
  EXPECT_EQ(img.width, 2);
  EXPECT_EQ(img.channels, 3);
  EXPECT_EQ(img.pixels, std::vector<uint8_t>({1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(krojcodec::EncodePnm(img).size(), std::string("P6\n2 1\n255\n").size() + 6);

  bytes.pop_back();
  EXPECT_FALSE(krojcodec::DecodePnm(bytes.data(), bytes.size(), &img, &error));  // truncated
  const std::string wide = "P5 2 2 65535\n";
  EXPECT_FALSE(krojcodec::DecodePnm(reinterpret_cast<const uint8_t*>(wide.data()), wide.size(),
                                    &img, &error));
  EXPECT_NE(error.find("maxval"), std::string::npos);

  if (krojcodec::PngAvailable()) {
    const Image grey = Crop(Load("camera.pgm"), 33, 7);
    std::vector<uint8_t> png;
    Image back;
    ASSERT_TRUE(krojcodec::EncodePng(grey, &png, &error)) << error;
    ASSERT_TRUE(krojcodec::DecodePng(png.data(), png.size(), &back, &error)) << error;
    EXPECT_EQ(back.channels, 1);
    EXPECT_EQ(back.pixels, grey.pixels);
  }

  Image a = img, b = img;
  EXPECT_TRUE(std::isinf(krojcodec::Psnr(a, b)));
  b.pixels[0] ^= 1;  // one error of 1 in 6 samples: 10 log10(255^2 * 6)
  EXPECT_NEAR(krojcodec::Psnr(a, b), 10.0 * log10(255.0 * 255.0 * 6.0), 1e-9);
}

}  // namespace

#endif  // KROJ_HAVE_CODEC
