// SPDX-License-Identifier: BSD-3-Clause
// SIMD rows of the scaled vector multiplications and of the 16-bit divisions,
// compiled once per target; bit-exact with ref/signal_ref.h. Row tails, the scale
// factors a row cannot take in its lanes, and every row on the one-lane scalar
// target go to the reference rows.
//
// Exactness:
// - 16-bit products (16s x 16s, 16u x 16s) are exact in 32-bit lanes (|p| < 2^31).
//   Scaling down uses the reference's addend, (p + 2^(sf-1) - 1 + bit sf of p) >> sf,
//   while p plus the addend fits 32 bits (every 16s x 16s product up to sf = 30,
//   16u x 16s up to sf = 17); beyond that the same quotient is formed as
//   (p >> sf) + ((low sf bits + 2^(sf-1) - 1 + bit sf) >> sf), which cannot
//   overflow. Scaling up saturates p to 16 bits and shifts it by at most 16 (enough
//   to saturate any non-zero value) within 32 bits. The saturating narrowing to
//   16-bit lanes is the final saturation.
// - 8-bit products (at most 65025) are exact in 16-bit unsigned lanes, and so is the
//   second quotient form for sf up to 15.
// - The 16-bit divisions follow the single-precision rule step by step: the same
//   IEEE product and quotient (nothing fused), the saturation with not-a-number
//   going to the low end, t = r + 32768 + 0.5 in two additions, truncation, and the
//   odd-tie correction; lanes with a zero divisor are replaced afterwards.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_SIGNAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_SIGNAL_INL_H_
#undef KROJ_SRC_SIMD_SIGNAL_INL_H_
#else
#define KROJ_SRC_SIMD_SIGNAL_INL_H_
#endif

#include <stddef.h>
#include <stdint.h>

#include <algorithm>
#include <type_traits>

#include "ref/signal_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// An operand from element i on: a pointer moves, a constant stays.
template <class T>
HWY_INLINE const T* From(const T* p, size_t i) {
  return p + i;
}
template <class T>
HWY_INLINE ref::Splat<T> From(ref::Splat<T> s, size_t) {
  return s;
}

#if HWY_TARGET != HWY_SCALAR

namespace signal_simd {

// Lanes of an operand widened to the lanes of D, from a vector or a constant.
template <class D, class T>
HWY_INLINE hn::Vec<D> Widened(D d, const T* p) {
  const hn::Rebind<hwy::MakeWide<T>, D> dw;
  return hn::BitCast(d, hn::PromoteTo(dw, hn::LoadU(hn::Rebind<T, D>(), p)));
}
template <class D, class T>
HWY_INLINE hn::Vec<D> Widened(D d, ref::Splat<T> s) {
  return hn::Set(d, static_cast<hn::TFromD<D>>(s.value));
}

// (p >> sf) + ((p & (2^sf - 1)) + 2^(sf-1) - 1 + bit sf of p) >> sf: the
// reference's rounding without the overflow of its single sum.
template <class V>
HWY_INLINE V RoundShiftSplit(V p, int sf, V mask, V add, V one) {
  const V q = hn::ShiftRightSame(p, sf);
  return hn::Add(q, hn::ShiftRightSame(hn::Add(hn::Add(hn::And(p, mask), add), hn::And(q, one)), sf));
}

}  // namespace signal_simd

// dst[i] = a[i] * b[i] * 2^-sf, rounded half to even and saturated to 16 bits, for
// A = int16_t or uint16_t and b an int16_t pointer or constant.
template <class A, class SB>
HWY_INLINE void MulScaled16RowSimd(const A* a, SB b, int16_t* dst, int n, int sf) {
  using namespace signal_simd;
  constexpr int kDirect = std::is_signed_v<A> ? 30 : 17;
  const hn::ScalableTag<int32_t> d;
  const hn::Rebind<int16_t, decltype(d)> dh;
  using V = hn::Vec<decltype(d)>;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  auto run = [&](auto scale) {
    for (; i + lanes <= static_cast<size_t>(n); i += lanes) {
      const V p = hn::Mul(Widened(d, a + i), Widened(d, From(b, i)));
      hn::StoreU(hn::DemoteTo(dh, scale(p)), dh, dst + i);
    }
  };
  if (sf == 0) {
    run([](V p) { return p; });
  } else if (sf < 0) {
    const int up = std::min(-sf, 16);
    const V lo = hn::Set(d, -32768), hi = hn::Set(d, 32767);
    run([&](V p) { return hn::ShiftLeftSame(hn::Min(hn::Max(p, lo), hi), up); });
  } else if (sf <= 30) {
    const V add = hn::Set(d, (1 << (sf - 1)) - 1), one = hn::Set(d, 1);
    if (sf <= kDirect) {
      run([&](V p) {
        const V odd = hn::And(hn::ShiftRightSame(p, sf), one);
        return hn::ShiftRightSame(hn::Add(hn::Add(p, add), odd), sf);
      });
    } else {
      const V mask = hn::Set(d, static_cast<int32_t>((1u << sf) - 1));
      run([&](V p) { return RoundShiftSplit(p, sf, mask, add, one); });
    }
  }
  using W = ref::ProductWord<A, int16_t, int16_t>;
  ref::MulScaledRow<int16_t, W>(a + i, From(b, i), dst + i, n - static_cast<int>(i), sf);
}

// dst[i] = a[i] * b[i] * 2^-sf for 8-bit operands, rounded half to even and capped
// at 255 (T = uint8_t), or the plain product (T = uint16_t, sf = 0).
template <class T, class SB>
HWY_INLINE void MulScaled8uRowSimd(const uint8_t* a, SB b, T* dst, int n, int sf) {
  using namespace signal_simd;
  const hn::ScalableTag<uint16_t> d;
  const hn::Rebind<uint8_t, decltype(d)> d8;
  const hn::RebindToSigned<decltype(d)> di;
  using V = hn::Vec<decltype(d)>;
  const size_t lanes = hn::Lanes(d);
  const V k255 = hn::Set(d, 255);
  size_t i = 0;
  auto run = [&](auto scale) {
    for (; i + lanes <= static_cast<size_t>(n); i += lanes) {
      const V p = hn::Mul(Widened(d, a + i), Widened(d, From(b, i)));
      if constexpr (sizeof(T) == 2) {
        hn::StoreU(p, d, dst + i);
      } else {
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(di, hn::Min(scale(p), k255))), d8, dst + i);
      }
    }
  };
  if (sf == 0) {
    run([](V p) { return p; });
  } else if (sf < 0) {
    const int up = std::min(-sf, 8);
    run([&](V p) { return hn::ShiftLeftSame(hn::Min(p, k255), up); });
  } else if (sf <= 15) {
    const V add = hn::Set(d, static_cast<uint16_t>((1 << (sf - 1)) - 1));
    const V mask = hn::Set(d, static_cast<uint16_t>((1 << sf) - 1)), one = hn::Set(d, 1);
    run([&](V p) { return RoundShiftSplit(p, sf, mask, add, one); });
  }
  ref::MulScaledRow<T, int32_t>(a + i, From(b, i), dst + i, n - static_cast<int>(i), sf);
}

namespace signal_simd {

// r (float lanes) rounded half to even into 16-bit lanes, for r in [-32768, 32767]:
// t = (r + 32768) + 0.5, n = t truncated, minus one when n is odd and t == n.
template <class DF>
HWY_INLINE hn::Vec<hn::RebindToSigned<DF>> RoundHalfEven16s(DF df, hn::Vec<DF> r) {
  const hn::RebindToSigned<DF> di;
  const auto t = hn::Add(hn::Add(r, hn::Set(df, 32768.0f)), hn::Set(df, 0.5f));
  const auto n = hn::ConvertTo(di, t);
  const auto exact = hn::RebindMask(di, hn::Eq(hn::ConvertTo(df, n), t));
  const auto odd = hn::And(n, hn::Set(di, 1));
  return hn::Sub(hn::Sub(n, hn::IfThenElseZero(exact, odd)), hn::Set(di, 32768));
}

// r saturated to [-32768, 32767], not-a-number giving -32768.
template <class DF>
HWY_INLINE hn::Vec<DF> Saturate16s(DF df, hn::Vec<DF> r) {
  const auto lo = hn::Set(df, -32768.0f);
  return hn::Min(hn::IfThenElse(hn::Ge(r, lo), r, lo), hn::Set(df, 32767.0f));
}

}  // namespace signal_simd

// dst[i] = dividend[i] / divisor[i] by the rule of ref::Div16s; returns whether a
// zero divisor was met.
HWY_INLINE bool Div16sRowSimd(const int16_t* divisor, const int16_t* dividend, int16_t* dst,
                              int n, int sf) {
  using namespace signal_simd;
  const ref::Div16s rule(sf);
  const hn::ScalableTag<float> df;
  const hn::RebindToSigned<decltype(df)> di;
  const hn::Rebind<int16_t, decltype(di)> dh;
  const size_t lanes = hn::Lanes(df);
  const auto scale = hn::Set(df, rule.scale);
  const auto zero = hn::Zero(di);
  auto zero_seen = hn::Zero(di);
  size_t i = 0;
  for (; i + lanes <= static_cast<size_t>(n); i += lanes) {
    const auto num = hn::PromoteTo(di, hn::LoadU(dh, dividend + i));
    const auto den = hn::PromoteTo(di, hn::LoadU(dh, divisor + i));
    auto r = hn::Div(hn::Mul(hn::ConvertTo(df, num), scale), hn::ConvertTo(df, den));
    if (rule.saturate) r = Saturate16s(df, r);
    const auto q = RoundHalfEven16s(df, r);
    const auto by_zero = hn::Eq(den, zero);
    zero_seen = hn::Or(zero_seen, hn::VecFromMask(di, by_zero));
    // A zero divisor: 0, 32767 or -32768 by the sign of the dividend.
    const auto sign = hn::IfThenElse(hn::Gt(num, zero), hn::Set(di, 32767),
                                     hn::IfThenElseZero(hn::Lt(num, zero), hn::Set(di, -32768)));
    hn::StoreU(hn::DemoteTo(dh, hn::IfThenElse(by_zero, sign, q)), dh, dst + i);
  }
  bool zero_div = !hn::AllFalse(di, hn::MaskFromVec(zero_seen));
  for (; i < static_cast<size_t>(n); ++i) dst[i] = rule(dividend[i], divisor[i], zero_div);
  return zero_div;
}

// dst[i] = src[i] / val by the rule of ref::DivC16s (val != 0).
HWY_INLINE void DivC16sRowSimd(const int16_t* src, int16_t val, int16_t* dst, int n, int sf) {
  using namespace signal_simd;
  const ref::DivC16s rule(val, sf);
  const hn::ScalableTag<float> df;
  const hn::RebindToSigned<decltype(df)> di;
  const hn::Rebind<int16_t, decltype(di)> dh;
  const size_t lanes = hn::Lanes(df);
  const auto m = hn::Set(df, rule.m);
  size_t i = 0;
  for (; i + lanes <= static_cast<size_t>(n); i += lanes) {
    auto r = hn::Mul(hn::ConvertTo(df, hn::PromoteTo(di, hn::LoadU(dh, src + i))), m);
    if (rule.saturate) r = Saturate16s(df, r);
    hn::StoreU(hn::DemoteTo(dh, RoundHalfEven16s(df, r)), dh, dst + i);
  }
  for (; i < static_cast<size_t>(n); ++i) dst[i] = rule(src[i]);
}

#else  // HWY_TARGET == HWY_SCALAR: the reference rows under the same names

template <class A, class SB>
HWY_INLINE void MulScaled16RowSimd(const A* a, SB b, int16_t* dst, int n, int sf) {
  ref::MulScaledRow<int16_t, ref::ProductWord<A, int16_t, int16_t>>(a, b, dst, n, sf);
}

template <class T, class SB>
HWY_INLINE void MulScaled8uRowSimd(const uint8_t* a, SB b, T* dst, int n, int sf) {
  ref::MulScaledRow<T, int32_t>(a, b, dst, n, sf);
}

HWY_INLINE bool Div16sRowSimd(const int16_t* divisor, const int16_t* dividend, int16_t* dst,
                              int n, int sf) {
  const ref::Div16s rule(sf);
  bool zero = false;
  for (int i = 0; i < n; ++i) dst[i] = rule(dividend[i], divisor[i], zero);
  return zero;
}

HWY_INLINE void DivC16sRowSimd(const int16_t* src, int16_t val, int16_t* dst, int n, int sf) {
  const ref::DivC16s rule(val, sf);
  for (int i = 0; i < n; ++i) dst[i] = rule(src[i]);
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
