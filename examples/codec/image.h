// SPDX-License-Identifier: BSD-3-Clause
// The image type shared by the example codecs: 8-bit samples, interleaved.
#ifndef KROJCODEC_IMAGE_H_
#define KROJCODEC_IMAGE_H_

#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace krojcodec {

struct Image {
  int width = 0;
  int height = 0;
  int channels = 0;             // 1 grey, 3 RGB
  std::vector<uint8_t> pixels;  // width * channels samples per row, rows top to bottom

  size_t row_bytes() const { return static_cast<size_t>(width) * channels; }
  uint8_t* row(int y) { return pixels.data() + row_bytes() * y; }
  const uint8_t* row(int y) const { return pixels.data() + row_bytes() * y; }
};

}  // namespace krojcodec

#endif  // KROJCODEC_IMAGE_H_
