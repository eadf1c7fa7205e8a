// SPDX-License-Identifier: BSD-3-Clause
// SIMD rows of the JPEG level shift, compiled once per target. The tail of a row
// (fewer samples than one vector) goes to the reference row.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_LEVELSHIFT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_LEVELSHIFT_INL_H_
#undef KROJ_SRC_SIMD_LEVELSHIFT_INL_H_
#else
#define KROJ_SRC_SIMD_LEVELSHIFT_INL_H_
#endif

#include <stdint.h>

#include "ref/dct_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// dst = src - 128, widened to 16 bits.
inline void Sub128RowSimd(const uint8_t* src, int16_t* dst, int n) {
  const hn::ScalableTag<int16_t> d16;
  const hn::Rebind<uint8_t, decltype(d16)> d8;
  const size_t lanes = hn::Lanes(d16);
  const auto k128 = hn::Set(d16, 128);
  size_t i = 0;
  for (; i + lanes <= static_cast<size_t>(n); i += lanes) {
    const auto v = hn::PromoteTo(d16, hn::LoadU(d8, src + i));
    hn::StoreU(hn::Sub(v, k128), d16, dst + i);
  }
  ref::Sub128Row(src + i, dst + i, n - static_cast<int>(i));
}

// dst = clamp(src + 128, 0, 255). The saturating add keeps src + 128 inside 16 bits
// without changing the clamped result; the demotion clamps to 0..255.
inline void Add128RowSimd(const int16_t* src, uint8_t* dst, int n) {
  const hn::ScalableTag<int16_t> d16;
  const hn::Rebind<uint8_t, decltype(d16)> d8;
  const size_t lanes = hn::Lanes(d16);
  const auto k128 = hn::Set(d16, 128);
  size_t i = 0;
  for (; i + lanes <= static_cast<size_t>(n); i += lanes) {
    const auto v = hn::SaturatedAdd(hn::LoadU(d16, src + i), k128);
    hn::StoreU(hn::DemoteTo(d8, v), d8, dst + i);
  }
  ref::Add128Row(src + i, dst + i, n - static_cast<int>(i));
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
