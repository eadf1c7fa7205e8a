// SPDX-License-Identifier: BSD-3-Clause
// The example codec's JPEG reader on any bytes: it must return a decoded image or an
// error message, never crash, and a decoded image must hold exactly its pixels. The
// coefficient reader must agree with it on the frame size.
//
// Input: a byte of options, then the file.
#include "codec/jpeg_codec.h"
#include "fuzz_util.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  krojcodec::JpegDecodeOptions options;
  options.fast_upsampling = (data[0] & 1) != 0;
  const uint8_t* file = data + 1;
  const size_t bytes = size - 1;

  krojcodec::Image img;
  std::string error;
  const bool ok = krojcodec::DecodeJpeg(file, bytes, &img, &error, options);
  FUZZ_CHECK(ok || !error.empty());
  if (ok) {
    FUZZ_CHECK(img.width > 0 && img.height > 0 && (img.channels == 1 || img.channels == 3));
    FUZZ_CHECK(img.pixels.size() == img.row_bytes() * static_cast<size_t>(img.height));
  }
  krojcodec::JpegCoefficients coefficients;
  std::string error2;
  if (krojcodec::ReadJpegCoefficients(file, bytes, &coefficients, &error2) && ok) {
    FUZZ_CHECK(coefficients.width == img.width && coefficients.height == img.height);
  }
  return 0;
}
