// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 code-stream encoder and decoder built on the library's component and
// wavelet transforms and tier-1 code-block coder. Tier-2 (packets, tag trees) and the
// code-stream markers are this layer's own.
#ifndef KROJCODEC_J2K_CODEC_H_
#define KROJCODEC_J2K_CODEC_H_

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "codec/image.h"

namespace krojcodec {

// One tile, LRCP progression, 64x64 code-blocks, precincts of the maximum size.
struct J2kEncodeOptions {
  bool lossless = true;  // RCT + 5/3, else ICT + 9/7 with scalar quantisation
  int levels = 5;        // decomposition levels (fewer for images too small for them)
  // Size of the whole output (headers and JP2 boxes included) in bits per pixel; the
  // rate control keeps at or below it. 0 keeps every coding pass, which with the 5/3
  // path is lossless. A target with the 5/3 path gives reversibly coded lossy files.
  double bits_per_pixel = 0.0;
  int layers = 1;    // quality layers (1 to 64), sizes growing geometrically to the target
  bool jp2 = false;  // wrap the code-stream in a JP2 file
  // Truncated code-blocks end at the shortest prefix that decodes alike, found by
  // decoding (about 1% more bytes for quality, for some encoding time).
  bool exact_truncation = true;
};

// Encodes img (grey or RGB) into a .j2k code-stream (or .jp2 file). On failure returns
// false and sets *error.
bool EncodeJ2k(const Image& img, const J2kEncodeOptions& options, std::vector<uint8_t>* out,
               std::string* error);

struct J2kDecodeOptions {
  // The largest image accepted, in samples (width x height x components); a header
  // beyond it is refused as corrupt rather than decoded.
  int64_t max_samples = int64_t{1} << 28;
};

// Decodes a single-tile .j2k code-stream (or .jp2 file) into img.
bool DecodeJ2k(const uint8_t* data, size_t size, Image* img, std::string* error,
               const J2kDecodeOptions& options = J2kDecodeOptions());

}  // namespace krojcodec

#endif  // KROJCODEC_J2K_CODEC_H_
