// SPDX-License-Identifier: BSD-3-Clause
#include "codec/j2k_codec.h"

namespace krojcodec {

bool EncodeJ2k(const Image&, const J2kEncodeOptions&, std::vector<uint8_t>*, std::string* error) {
  *error = "JPEG 2000 encoding is not available yet";
  return false;
}

bool DecodeJ2k(const uint8_t*, size_t, Image*, std::string* error) {
  *error = "JPEG 2000 decoding is not available yet";
  return false;
}

}  // namespace krojcodec
