// SPDX-License-Identifier: BSD-3-Clause
// Vector building blocks of the baseline Huffman encoder, compiled once per target:
// the mask of non-zero coefficients of a block in zig-zag order.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_HUFFMAN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_HUFFMAN_INL_H_
#undef KROJ_SRC_SIMD_HUFFMAN_INL_H_
#else
#define KROJ_SRC_SIMD_HUFFMAN_INL_H_
#endif

#include <stdint.h>
#include <string.h>

#include "tables.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Bit i: natural index i of the block is non-zero. One vector compare per 8, 16 or
// 32 coefficients, its mask bits stored side by side.
HWY_INLINE uint64_t NaturalNonZero(const int16_t* blk) {
#if HWY_TARGET == HWY_SCALAR
  uint64_t m = 0;
  for (int i = 0; i < 64; ++i) m |= uint64_t{blk[i] != 0} << i;
  return m;
#else
  const hn::ScalableTag<int16_t> d;
  const size_t lanes = hn::Lanes(d);
  uint8_t bytes[8];
  for (size_t i = 0; i < 64; i += lanes)
    hn::StoreMaskBits(d, hn::Ne(hn::LoadU(d, blk + i), hn::Zero(d)), bytes + i / 8);
  static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "mask bytes in memory order");
  uint64_t m;
  memcpy(&m, bytes, sizeof(m));
  return m;
#endif
}

// Bit k: zig-zag position k of the block is non-zero; the natural mask goes through
// one table per row, eight independent lookups.
HWY_INLINE uint64_t ZigZagNonZeroSimd(const int16_t* blk) {
  const uint64_t m = NaturalNonZero(blk);
  uint64_t zz = 0;
  for (int r = 0; r < 8; ++r) zz |= kZigZagRowBits[r][(m >> (8 * r)) & 255];
  return zz;
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
