// SPDX-License-Identifier: BSD-3-Clause
// The example codec's JPEG 2000 reader (code-streams and JP2 files) on any bytes: it
// must return a decoded image or an error message, never crash, and a decoded image
// must hold exactly its pixels. Images are limited to 2^22 samples: larger ones cost
// time in proportion to their size and reach no other code.
#include "codec/j2k_codec.h"
#include "fuzz_util.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  krojcodec::Image img;
  std::string error;
  krojcodec::J2kDecodeOptions options;
  options.max_samples = int64_t{1} << 22;
  const bool ok = krojcodec::DecodeJ2k(data, size, &img, &error, options);
  FUZZ_CHECK(ok || !error.empty());
  if (ok) {
    FUZZ_CHECK(img.width > 0 && img.height > 0 && (img.channels == 1 || img.channels == 3));
    FUZZ_CHECK(img.pixels.size() == img.row_bytes() * static_cast<size_t>(img.height));
  }
  return 0;
}
