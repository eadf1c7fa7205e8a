// SPDX-License-Identifier: BSD-3-Clause
// The example codecs refuse images whose size would take absurd memory (more than 2^28
// samples), with a message, before allocating for them: real files whose headers claim
// huge frames, and huge images handed to the encoders.
#ifdef KROJ_HAVE_CODEC
#include <gtest/gtest.h>
#include <stdint.h>
#include <sys/resource.h>

#include <string>
#include <tuple>
#include <vector>

#include "codec/image_io.h"
#include "codec/j2k_codec.h"
#include "codec/jpeg_codec.h"

namespace {

using namespace krojcodec;

long PeakKiB() {
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  return u.ru_maxrss;
}

void Put16(uint8_t* p, uint32_t x) {
  p[0] = static_cast<uint8_t>(x >> 8);
  p[1] = static_cast<uint8_t>(x);
}
void Put32(uint8_t* p, uint32_t x) {
  Put16(p, x >> 16);
  Put16(p + 2, x & 0xFFFF);
}

Image Tiny(int channels) {
  Image img;
  img.width = img.height = 8;
  img.channels = channels;
  img.pixels.assign(64 * channels, 100);
  return img;
}

// A real file of an 8x8 image whose frame header (SOF) then claims another size.
std::vector<uint8_t> JpegClaiming(int width, int height, int channels) {
  std::vector<uint8_t> f;
  std::string error;
  EXPECT_TRUE(EncodeJpeg(Tiny(channels), JpegEncodeOptions(), &f, &error)) << error;
  for (size_t i = 0; i + 9 < f.size(); ++i) {
    if (f[i] == 0xFF && f[i + 1] == 0xC0) {
      Put16(&f[i + 5], static_cast<uint32_t>(height));
      Put16(&f[i + 7], static_cast<uint32_t>(width));
      break;
    }
  }
  return f;
}

// The same for a code-stream: image and tile size in SIZ.
std::vector<uint8_t> J2kClaiming(uint32_t width, uint32_t height, int channels) {
  std::vector<uint8_t> f;
  std::string error;
  EXPECT_TRUE(EncodeJ2k(Tiny(channels), J2kEncodeOptions(), &f, &error)) << error;
  Put32(&f[8], width);
  Put32(&f[12], height);
  Put32(&f[24], width);
  Put32(&f[28], height);
  return f;
}

void ExpectRefusal(bool ok, const std::string& error, long peak_before) {
  EXPECT_FALSE(ok);
  EXPECT_NE(error, "");
  EXPECT_LT(PeakKiB() - peak_before, 64 * 1024) << "memory was taken for the image";
}

TEST(CodecLimits, ReadersRefuseHugeFrames) {
  for (const auto& [w, h, c] : {std::tuple(65535, 65535, 1), std::tuple(20000, 20000, 3), std::tuple(16385, 16384, 1)}) {
    const long peak = PeakKiB();
    Image img;
    std::string error;
    const std::vector<uint8_t> jpg = JpegClaiming(w, h, c);
    ExpectRefusal(DecodeJpeg(jpg.data(), jpg.size(), &img, &error), error, peak);
    JpegCoefficients coefficients;
    error.clear();
    ExpectRefusal(ReadJpegCoefficients(jpg.data(), jpg.size(), &coefficients, &error), error, peak);
  }
  for (const auto& [w, h, c] : {std::tuple(4000000000u, 4000000000u, 1), std::tuple(10000u, 10000u, 3),
                                std::tuple(16385u, 16384u, 1)}) {
    const long peak = PeakKiB();
    Image img;
    std::string error;
    const std::vector<uint8_t> j2k = J2kClaiming(w, h, c);
    ExpectRefusal(DecodeJ2k(j2k.data(), j2k.size(), &img, &error), error, peak);
  }
  const std::string pnm = "P6\n40000 40000\n255\n";
  Image img;
  std::string error;
  const long peak = PeakKiB();
  ExpectRefusal(DecodePnm(reinterpret_cast<const uint8_t*>(pnm.data()), pnm.size(), &img, &error), error, peak);
}

TEST(CodecLimits, EncodersRefuseHugeImages) {
  Image img;
  img.width = 20000;
  img.height = 20000;
  img.channels = 3;  // no pixels: the size alone must stop the encoders
  const long peak = PeakKiB();
  std::vector<uint8_t> out;
  std::string error;
  ExpectRefusal(EncodeJpeg(img, JpegEncodeOptions(), &out, &error), error, peak);
  error.clear();
  ExpectRefusal(EncodeJ2k(img, J2kEncodeOptions(), &out, &error), error, peak);
}

}  // namespace
#endif  // KROJ_HAVE_CODEC
