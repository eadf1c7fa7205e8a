// SPDX-License-Identifier: BSD-3-Clause
// The JPEG colour arithmetic stated once, per pixel and without tables: the JFIF
// YCbCr equations (T.871 7) in 16-bit fixed point, the rounded forms of the plane
// conversions, the truncating forms of the MCU conversions, and the 16-bit packed
// RGB layouts.
//
// Scaling. Every coefficient is round(c * 2^16). The encoder sums three products
// and shifts right by 16; the decoder adds a product (shifted) to Y. The plane
// encoders add 32768 to Y and 128 * 2^16 + 32767 = 8421375 to Cb and Cr: an offset
// of 128 and a rounding term one below one half, so that an exact half rounds
// down. This library kept that constant from its first release; callers compare
// bytes. The MCU forms add no rounding term at all (they truncate), and since the
// chroma offset of +128 and the level shift of -128 cancel, their chroma carry no
// constant either.
#ifndef KROJ_SRC_REF_COLOUR_REF_H_
#define KROJ_SRC_REF_COLOUR_REF_H_

#include <stdint.h>

#include "kroj.h"

namespace kro::ref {

// RGB -> YCbCr.
inline constexpr int32_t kYR = 19595;              // 0.29900 * 2^16
inline constexpr int32_t kYG = 38470;              // 0.58700 * 2^16
inline constexpr int32_t kYB = 7471;               // 0.11400 * 2^16
inline constexpr int32_t kCbR = 11059;             // 0.16874 * 2^16 (negated)
inline constexpr int32_t kCbG = 21709;             // 0.33126 * 2^16 (negated)
inline constexpr int32_t kHalf = 32768;            // 0.50000 * 2^16: Cb from B and Cr from R
inline constexpr int32_t kCrG = 27439;             // 0.41869 * 2^16 (negated)
inline constexpr int32_t kCrB = 5329;              // 0.08131 * 2^16 (negated)
inline constexpr int32_t kChromaOffset = 8421375;  // 128 * 2^16 + 32767

// YCbCr -> RGB.
inline constexpr int32_t kRCr = 91881;   // 1.40200 * 2^16
inline constexpr int32_t kGCb = 22554;   // 0.34414 * 2^16 (negated)
inline constexpr int32_t kGCr = 46802;   // 0.71414 * 2^16 (negated)
inline constexpr int32_t kBCb = 116130;  // 1.77200 * 2^16

struct Rgb {
  int32_t r, g, b;
};

constexpr uint8_t Clamp255(int32_t v) {
  return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

// ---- Plane conversions (rounded) ----

// Y = (19595 R + 38470 G + 7471 B + 32768) >> 16; never above 255.
constexpr uint8_t PlaneY(Rgb p) {
  return static_cast<uint8_t>((kYR * p.r + kYG * p.g + kYB * p.b + kHalf) >> 16);
}
// Cb, Cr: each coefficient row sums to 0, so the sum stays in 0 .. 2^24 - 1.
constexpr uint8_t PlaneCb(Rgb p) {
  return static_cast<uint8_t>((-kCbR * p.r - kCbG * p.g + kHalf * p.b + kChromaOffset) >> 16);
}
constexpr uint8_t PlaneCr(Rgb p) {
  return static_cast<uint8_t>((kHalf * p.r - kCrG * p.g - kCrB * p.b + kChromaOffset) >> 16);
}

// R = Y + round(1.402 d_cr), B = Y + round(1.772 d_cb), each rounded half up on its
// own; G = Y + floor((32768 - 22554 d_cb - 46802 d_cr) / 2^16), one rounding for the
// sum. d = sample - 128; results clamped to 0..255.
constexpr Rgb PlaneRgb(int32_t y, int32_t cb, int32_t cr) {
  const int32_t dcb = cb - 128, dcr = cr - 128;
  return {Clamp255(y + ((kRCr * dcr + kHalf) >> 16)),
          Clamp255(y + ((kHalf - kGCb * dcb - kGCr * dcr) >> 16)),
          Clamp255(y + ((kBCb * dcb + kHalf) >> 16))};
}

// ---- MCU conversions (truncating, level-shifted) ----

// Y' = ((19595 R + 38470 G + 7471 B) >> 16) - 128.
constexpr int16_t McuY(Rgb p) {
  return static_cast<int16_t>(((kYR * p.r + kYG * p.g + kYB * p.b) >> 16) - 128);
}
// Chroma of a group of 2^log2n pixels from the sums of their R, G, B: the floor of
// the mean's chroma, as (sum of products) >> (16 + log2n). The sums fit easily in 32
// bits (|sum| < 4 * 255 * 2^16).
constexpr int16_t McuCb(Rgb sum, int log2n) {
  return static_cast<int16_t>((-kCbR * sum.r - kCbG * sum.g + kHalf * sum.b) >> (16 + log2n));
}
constexpr int16_t McuCr(Rgb sum, int log2n) {
  return static_cast<int16_t>((kHalf * sum.r - kCrG * sum.g - kCrB * sum.b) >> (16 + log2n));
}

// Decoder side from level-shifted samples: R = y + ((91881 cr) >> 16) + 128 and so
// on, clamped. The products are 32-bit two's complement: a sample far outside
// -128..127 wraps the product exactly as a 32-bit multiply would.
constexpr int32_t Mul32(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
constexpr int32_t Add32(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
// The chroma terms of one chroma sample pair, shared by every pixel of its group.
struct ChromaTerms {
  int32_t r, g, b;
};
constexpr ChromaTerms McuChromaTerms(int32_t cb, int32_t cr) {
  return {Mul32(kRCr, cr) >> 16, Add32(Mul32(-kGCb, cb), Mul32(-kGCr, cr)) >> 16,
          Mul32(kBCb, cb) >> 16};
}
constexpr Rgb McuRgb(int32_t y, ChromaTerms t) {
  return {Clamp255(y + t.r + 128), Clamp255(y + t.g + 128), Clamp255(y + t.b + 128)};
}

// ---- 16-bit packed pixels ----
// Low field in bits 0-4, green in bits 5-9 (555) or 5-10 (565), high field above
// it. RGB formats hold R in the low field, BGR formats B. Unpacking shifts each
// field up to 8 bits with zero low bits (no replication of the top bits); packing
// drops the low bits. The spare bit 15 of 555 is written as 0 and ignored on input.
template <bool kBgr, int kGreenBits>
struct Packed {
  static constexpr bool kIsBgr = kBgr;
  static constexpr int kGreenWidth = kGreenBits;
  static constexpr int kHighShift = 5 + kGreenBits;
  static constexpr Rgb Unpack(uint16_t w) {
    const int32_t low = (w & 31) << 3;
    const int32_t g = ((w >> 5) & ((1 << kGreenBits) - 1)) << (8 - kGreenBits);
    const int32_t high = ((w >> kHighShift) & 31) << 3;
    return kBgr ? Rgb{high, g, low} : Rgb{low, g, high};
  }
  // r, g, b in 0..255.
  static constexpr uint16_t Pack(Rgb p) {
    const int32_t low = (kBgr ? p.b : p.r) >> 3, high = (kBgr ? p.r : p.b) >> 3;
    return static_cast<uint16_t>(low | (p.g >> (8 - kGreenBits)) << 5 | high << kHighShift);
  }
};
using Rgb555 = Packed<false, 5>;
using Bgr555 = Packed<true, 5>;
using Rgb565 = Packed<false, 6>;
using Bgr565 = Packed<true, 6>;

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_COLOUR_REF_H_
