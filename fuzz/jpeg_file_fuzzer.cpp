// SPDX-License-Identifier: BSD-3-Clause
// The example codec's JPEG reader on any bytes: it must return a decoded image or an
// error message, never crash, and a decoded image must hold exactly its pixels. A file
// that decodes is decoded again with fast up-sampling, which must give the same frame;
// the coefficient reader must agree with it on the frame size.
//
// Input: the file itself, so that real files serve as seeds.
#include "codec/jpeg_codec.h"
#include "fuzz_util.h"

namespace {

void CheckImage(const krojcodec::Image& img) {
  FUZZ_CHECK(img.width > 0 && img.height > 0 && (img.channels == 1 || img.channels == 3));
  FUZZ_CHECK(img.pixels.size() == img.row_bytes() * static_cast<size_t>(img.height));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  krojcodec::Image img;
  std::string error;
  const bool ok = krojcodec::DecodeJpeg(data, size, &img, &error);
  FUZZ_CHECK(ok || !error.empty());
  if (!ok) return 0;
  CheckImage(img);

  krojcodec::JpegDecodeOptions fast;
  fast.fast_upsampling = true;
  krojcodec::Image img2;
  FUZZ_CHECK(krojcodec::DecodeJpeg(data, size, &img2, &error, fast));
  CheckImage(img2);
  FUZZ_CHECK(img2.width == img.width && img2.height == img.height && img2.channels == img.channels);

  krojcodec::JpegCoefficients coefficients;
  if (krojcodec::ReadJpegCoefficients(data, size, &coefficients, &error)) {
    FUZZ_CHECK(coefficients.width == img.width && coefficients.height == img.height);
  }
  return 0;
}
