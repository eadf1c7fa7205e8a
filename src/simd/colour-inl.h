// SPDX-License-Identifier: BSD-3-Clause
// SIMD building blocks of the JPEG colour conversions, compiled once per target:
// pixel loads and stores for every layout, and the fixed-point sums of the plane and
// MCU conversions, on vectors of pixels held in 16-bit lanes.
//
// Exactness. The scalar kernels add table entries that are 16-bit fixed-point
// products modulo 2^32; the same sums formed here from 32-bit lane products are the
// same integers, because every sum the tables can produce for 8-bit inputs lies in
// 0 .. 2^24 (encoder) or fits 32 bits trivially (decoder), so no wrap can differ.
// The decoder MCU products wrap in 32 bits; their high halves are still exact in
// 16-bit lanes (see McuTerms). Every result is a 32-bit value shifted right by 16 or
// more, so it fits a 16-bit lane. Clamping to 0..255 is the saturating narrowing
// from 16 to 8 bits.
//
// Where the time goes (instruction counts per pixel under callgrind, AVX2): the
// encoder formed its sums from 32-bit lane products at first (9 multiplies per 8
// pixels); pairs of 16-bit values through pmaddwd halve that, and what remains of
// an interleaved row is mostly the byte shuffles of LoadInterleaved3 and
// StoreInterleaved3 (about 5 instructions per pixel for RGB -> YCbCr, 4 back). On
// large images the rows then run at memory speed.
//
// Plane rows use whole vectors of 16-bit lanes, one pixel per lane; the MCU kernels
// use 8 or 16 lanes, one MCU row. The one-lane scalar target uses the scalar kernels
// under the same names (the #else branch at the end).

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_COLOUR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_COLOUR_INL_H_
#undef KROJ_SRC_SIMD_COLOUR_INL_H_
#else
#define KROJ_SRC_SIMD_COLOUR_INL_H_
#endif

#include <stdint.h>

#include <array>
#include <utility>

#include "colour_impl.h"
#include "ref/colour_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

// D is a tag of int16_t lanes, one pixel per lane; the 32-bit tag holds half of them.
template <class D>
using D32Of = hn::Repartition<int32_t, D>;
template <class D>
using D8Of = hn::Rebind<uint8_t, D>;
template <class D>
using V32Of = hn::Vec<D32Of<D>>;
using DRow = hn::ScalableTag<int16_t>;  // plane rows: 8, 16 or 32 pixels per vector

// The halves of a 16-bit vector widened to 32 bits, and back (values fit 16 bits).
template <class D, class V = hn::Vec<D>>
HWY_INLINE V32Of<D> Lo32(D, V v) {
  return hn::PromoteTo(D32Of<D>(), hn::LowerHalf(hn::Half<D>(), v));
}
template <class D, class V = hn::Vec<D>>
HWY_INLINE V32Of<D> Hi32(D, V v) {
  return hn::PromoteTo(D32Of<D>(), hn::UpperHalf(hn::Half<D>(), v));
}
template <class D>
HWY_INLINE hn::Vec<D> Narrow(D d, V32Of<D> lo, V32Of<D> hi) {
  const hn::Half<D> dh;
  return hn::Combine(d, hn::DemoteTo(dh, hi), hn::DemoteTo(dh, lo));
}
template <class D>
HWY_INLINE hn::Vec<D> Widen(D d, hn::Vec<D8Of<D>> v) {
  return hn::PromoteTo(d, v);
}
template <class D, class V = hn::Vec<D>>
HWY_INLINE hn::Vec<D8Of<D>> Clamp8(D, V v) {  // saturates to 0..255
  return hn::DemoteTo(D8Of<D>(), v);
}

// ---- Colour arithmetic ----

// Per 32-bit lane, the sum of the products of its two 16-bit halves with those of
// `coefs` (pmaddwd on x86, where the pairs stay in their lanes; the per-target tests
// hold every target to the scalar kernels).
template <class D32, class V32 = hn::Vec<D32>>
HWY_INLINE V32 MulPairs(D32 d32, V32 pairs, V32 coefs) {
#if HWY_ARCH_X86
  const hn::Repartition<int16_t, D32> d16;
  V32 unused = hn::Zero(d32);
  return hn::ReorderWidenMulAccumulate(d32, hn::BitCast(d16, pairs), hn::BitCast(d16, coefs),
                                       hn::Zero(d32), unused);
#else
  auto lo = [](V32 v) { return hn::ShiftRight<16>(hn::ShiftLeft<16>(v)); };
  return hn::Add(hn::Mul(lo(pairs), lo(coefs)),
                 hn::Mul(hn::ShiftRight<16>(pairs), hn::ShiftRight<16>(coefs)));
#endif
}
// Coefficient pair (a for the low half, b for the high half), each within int16.
template <class D32>
HWY_INLINE hn::Vec<D32> Coefs(D32 d32, int32_t a, int32_t b) {
  return hn::Set(d32, static_cast<int32_t>(static_cast<uint32_t>(b) << 16 |
                                           (static_cast<uint32_t>(a) & 0xFFFF)));
}

// Encoder operands in 32-bit lanes: R and B alone, and the 16-bit pairs (R, G) and
// (B, G); every value is non-negative and below 2^15.
template <class D32>
struct Pairs {
  hn::Vec<D32> r, b, rg, bg;
};
// From separate 32-bit lanes, in order.
template <class D32, class V32 = hn::Vec<D32>>
HWY_INLINE Pairs<D32> PairsOf(D32, V32 r, V32 g, V32 b) {
  const V32 g_hi = hn::ShiftLeft<16>(g);
  return {r, b, hn::Or(r, g_hi), hn::Or(b, g_hi)};
}
// From 16-bit lanes by zipping: the lower or upper half of each 128-bit block, so
// Join() below must bring the results back together.
template <bool kUpper, class D, class V = hn::Vec<D>>
HWY_INLINE Pairs<D32Of<D>> ZipPairs(D d, V r, V g, V b) {
  const D32Of<D> d32;
  const V z = hn::Zero(d);
  auto zip = [&](V a, V c) { return kUpper ? hn::ZipUpper(d32, a, c) : hn::ZipLower(d32, a, c); };
  return {zip(r, z), zip(b, z), zip(r, g), zip(b, g)};
}
// Narrows the lower-zip and upper-zip results (values within int16) back to pixel
// order: the 16-bit pack works per 128-bit block, as the zips did.
template <class D>
HWY_INLINE hn::Vec<D> Join(D d, V32Of<D> lo, V32Of<D> hi) {
  return hn::ReorderDemote2To(d, lo, hi);
}

// 19595 R + 38470 G + 7471 B; -11059 R - 21709 G + 32768 B; 32768 R - 27439 G -
// 5329 B, exact (38470 G is formed as 19235 G twice; 32768 x as x << 15).
static_assert(ref::kYG % 2 == 0 && ref::kHalf == 1 << 15);
template <class D32>
HWY_INLINE hn::Vec<D32> LumaSum(D32 d, const Pairs<D32>& p) {
  return hn::Add(MulPairs(d, p.rg, Coefs(d, ref::kYR, ref::kYG / 2)),
                 MulPairs(d, p.bg, Coefs(d, ref::kYB, ref::kYG / 2)));
}
template <class D32>
HWY_INLINE hn::Vec<D32> CbSum(D32 d, const Pairs<D32>& p) {
  return hn::Add(MulPairs(d, p.rg, Coefs(d, -ref::kCbR, -ref::kCbG)), hn::ShiftLeft<15>(p.b));
}
template <class D32>
HWY_INLINE hn::Vec<D32> CrSum(D32 d, const Pairs<D32>& p) {
  return hn::Add(MulPairs(d, p.bg, Coefs(d, -ref::kCrB, -ref::kCrG)), hn::ShiftLeft<15>(p.r));
}
template <int kShift, class D32, class V32 = hn::Vec<D32>>
HWY_INLINE V32 Shr(D32 d, V32 sum, int32_t add) {
  return hn::ShiftRight<kShift>(hn::Add(sum, hn::Set(d, add)));
}

// Decoder chroma contributions in 16-bit lanes, without 32-bit products. For c = k *
// 2^16 + c' with c' within int16, c x = k x 2^16 + c' x, so (c x + round) >> 16 is
// k x plus the high half of c' x, plus, with the rounding term 32768, one when the
// low half of c' x is 32768 or more. The sum is taken modulo 2^16.
template <int32_t kC, bool kRound, class D, class V = hn::Vec<D>>
HWY_INLINE V ProductHigh(D d16, V x) {
  constexpr int32_t kK = (kC + 32768) >> 16, kLow = kC - kK * 65536;
  static_assert(kLow >= -32768 && kLow < 32768 && (kK == 1 || kK == 2));
  const V c = hn::Set(d16, static_cast<int16_t>(kLow));
  const V whole = kK == 1 ? x : hn::Add(x, x);
  const V high = hn::Add(whole, hn::MulHigh(x, c));
  if constexpr (!kRound) return high;
  const hn::RebindToUnsigned<D> du;
  return hn::Add(high, hn::BitCast(d16, hn::ShiftRight<15>(hn::BitCast(du, hn::Mul(x, c)))));
}
// Green: (round - 22554 cb - 46802 cr) >> 16 = -cr + ((round - 22554 cb + 18734 cr)
// >> 16), the bracket from 16-bit pairs (cb, cr), which never leaves 32 bits for
// 16-bit cb and cr.
static_assert(ref::kGCr - 65536 == -18734);
template <bool kRound, class D, class V = hn::Vec<D>>
HWY_INLINE V GreenHigh(D d, V cb, V cr) {
  const D32Of<D> d32;
  const auto coefs = Coefs(d32, -ref::kGCb, 65536 - ref::kGCr);
  auto half = [&](V32Of<D> pairs) {
    return Shr<16>(d32, MulPairs(d32, pairs, coefs), kRound ? ref::kHalf : 0);
  };
  return hn::Sub(Join(d, half(hn::ZipLower(d32, cb, cr)), half(hn::ZipUpper(d32, cb, cr))), cr);
}

// MCU decoder: (c x) >> 16 for the three colours, where the scalar kernels form the
// 32-bit product of any 16-bit x, wrapping. The wrapped product differs from the
// exact one by a multiple of 2^32, so its high half differs by a multiple of 2^16:
// the two agree in 16-bit lanes, and the 16-bit forms above are exact for every x.
template <class D>
struct Terms {
  hn::Vec<D> r, g, b;
};
template <class D, class V = hn::Vec<D>>
HWY_INLINE Terms<D> McuTerms(D d, V cb, V cr) {
  return {ProductHigh<ref::kRCr, false>(d, cr), GreenHigh<false>(d, cb, cr),
          ProductHigh<ref::kBCb, false>(d, cb)};
}

// ---- Pixel layouts ----
// A pixel vector: R, G, B (or Y, Cb, Cr) and K in 16-bit lanes, values 0..255 on
// input; on output anything, clamped to 0..255 by the store. Loads and stores take
// the row pointers of the planes (one for an interleaved side) and a first pixel.
template <class D>
struct Px {
  hn::Vec<D> c0, c1, c2, k;
};

// Three or four separate 8-bit planes.
template <int kPlanes>
struct PlanesInV {
  using T = Kro8u;
  using Scalar = PlanesIn<kPlanes>;
  template <class D>
  static HWY_INLINE Px<D> Load(D d, const T* const* s, int x) {
    const D8Of<D> d8;
    auto load = [&](int k) { return Widen(d, hn::LoadU(d8, s[k] + x)); };
    return {load(0), load(1), load(2), kPlanes == 4 ? load(kPlanes - 1) : hn::Zero(d)};
  }
};
template <int kPlanes>
struct PlanesOutV {
  using T = Kro8u;
  using Scalar = PlanesOut<kPlanes>;
  template <class D>
  static HWY_INLINE void Store(D d, T* const* dst, int x, const Px<D>& p) {
    const D8Of<D> d8;
    hn::StoreU(Clamp8(d, p.c0), d8, dst[0] + x);
    hn::StoreU(Clamp8(d, p.c1), d8, dst[1] + x);
    hn::StoreU(Clamp8(d, p.c2), d8, dst[2] + x);
    if constexpr (kPlanes == 4) hn::StoreU(Clamp8(d, p.k), d8, dst[3] + x);
  }
};

// Interleaved bytes; kFirst = 2 reads or writes B, G, R.
template <int kChannels, int kFirst>
struct BytesInV {
  using T = Kro8u;
  using Scalar = BytesIn<kChannels, kFirst>;
  template <class D>
  static HWY_INLINE Px<D> Load(D d, const T* const* s, int x) {
    const D8Of<D> d8;
    hn::Vec<D8Of<D>> a, b, c, k;
    if constexpr (kChannels == 4) {
      hn::LoadInterleaved4(d8, s[0] + 4 * x, a, b, c, k);
    } else {
      hn::LoadInterleaved3(d8, s[0] + 3 * x, a, b, c);
      k = hn::Zero(d8);
    }
    if constexpr (kFirst == 2) std::swap(a, c);
    return {Widen(d, a), Widen(d, b), Widen(d, c), Widen(d, k)};
  }
};
template <int kChannels, int kFirst>
struct BytesOutV {
  using T = Kro8u;
  using Scalar = BytesOut<kChannels, kFirst>;
  template <class D>
  static HWY_INLINE void Store(D d, T* const* dst, int x, const Px<D>& p) {
    const D8Of<D> d8;
    auto a = Clamp8(d, p.c0), b = Clamp8(d, p.c1), c = Clamp8(d, p.c2);
    if constexpr (kFirst == 2) std::swap(a, c);
    if constexpr (kChannels == 4) {
      hn::StoreInterleaved4(a, b, c, Clamp8(d, p.k), d8, dst[0] + 4 * x);
    } else {
      hn::StoreInterleaved3(a, b, c, d8, dst[0] + 3 * x);
    }
  }
};

// 16-bit packed words (ref::Packed formats): fields widened with zero low bits.
template <class Format>
struct PackedInV {
  using T = Kro16u;
  using Scalar = PackedIn<Format>;
  template <class D>
  static HWY_INLINE Px<D> Load(D d, const T* const* s, int x) {
    const hn::RebindToUnsigned<D> du;
    const auto w = hn::LoadU(du, s[0] + x);
    const auto k31 = hn::Set(du, 31);
    constexpr int kG = Format::kGreenWidth;
    const auto low = hn::BitCast(d, hn::ShiftLeft<3>(hn::And(w, k31)));
    const auto g = hn::BitCast(d, hn::ShiftLeft<8 - kG>(hn::And(
                                      hn::ShiftRight<5>(w), hn::Set(du, (1 << kG) - 1))));
    const auto high = hn::BitCast(d, hn::ShiftLeft<3>(hn::And(hn::ShiftRight<5 + kG>(w), k31)));
    return {Format::kIsBgr ? high : low, g, Format::kIsBgr ? low : high, hn::Zero(d)};
  }
};
template <class Format>
struct PackedOutV {
  using T = Kro16u;
  using Scalar = PackedOut<Format>;
  template <class D>
  static HWY_INLINE void Store(D d, T* const* dst, int x, const Px<D>& p) {
    const hn::RebindToUnsigned<D> du;
    auto clamp = [&](hn::Vec<D> v) { return hn::PromoteTo(du, Clamp8(d, v)); };
    const auto r = clamp(p.c0), g = clamp(p.c1), b = clamp(p.c2);
    constexpr int kG = Format::kGreenWidth;
    const auto low = hn::ShiftRight<3>(Format::kIsBgr ? b : r);
    const auto high = hn::ShiftRight<3>(Format::kIsBgr ? r : b);
    const auto w = hn::Or(hn::Or(low, hn::ShiftLeft<5>(hn::ShiftRight<8 - kG>(g))),
                          hn::ShiftLeft<5 + kG>(high));
    hn::StoreU(w, du, dst[0] + x);
  }
};

// Y alone.
struct LumaOutV {
  using T = Kro8u;
  using Scalar = LumaOut;
  template <class D>
  static HWY_INLINE void Store(D d, T* const* dst, int x, const Px<D>& p) {
    hn::StoreU(Clamp8(d, p.c0), D8Of<D>(), dst[0] + x);
  }
};

// ---- Plane rows ----

// RGB-like pixels -> Y, Cb, Cr (and K), as EncodeRow; the last pixels (fewer than
// one vector) go to EncodeRow.
template <class In, class Out, Ink kInk = Ink::kNone, bool kLumaOnly = false>
void EncodeRowSimd(const typename In::T* const* src, typename Out::T* const* dst, int width) {
  const DRow d;
  const D32Of<DRow> d32;
  const int lanes = static_cast<int>(hn::Lanes(d));
  int x = 0;
  for (; x + lanes <= width; x += lanes) {
    Px<DRow> p = In::Load(d, src, x);
    if constexpr (kInk == Ink::kComplement) {
      const auto k255 = hn::Set(d, 255);
      p = {hn::Sub(k255, p.c0), hn::Sub(k255, p.c1), hn::Sub(k255, p.c2), p.k};
    }
    const auto lo = ZipPairs<false>(d, p.c0, p.c1, p.c2), hi = ZipPairs<true>(d, p.c0, p.c1, p.c2);
    // Each sum of the lower and upper zips, plus its rounding term, over 2^16.
    auto out = [&](auto sum, int32_t add) {
      return Join(d, Shr<16>(d32, sum(lo), add), Shr<16>(d32, sum(hi), add));
    };
    const auto y = out([&](const auto& q) { return LumaSum(d32, q); }, ref::kHalf);
    if constexpr (kLumaOnly) {
      Out::Store(d, dst, x, {y, y, y, y});
    } else {
      const auto cb = out([&](const auto& q) { return CbSum(d32, q); }, ref::kChromaOffset);
      const auto cr = out([&](const auto& q) { return CrSum(d32, q); }, ref::kChromaOffset);
      Out::Store(d, dst, x, {y, cb, cr, p.k});
    }
  }
  EncodeRow<typename In::Scalar, typename Out::Scalar, kInk, kLumaOnly>(src, dst, width, x);
}

// Y, Cb, Cr (and K) -> RGB-like pixels, as DecodeRow.
template <class In, class Out, Ink kInk = Ink::kNone>
void DecodeRowSimd(const typename In::T* const* src, typename Out::T* const* dst, int width) {
  const DRow d;
  const auto k128 = hn::Set(d, 128), k255 = hn::Set(d, 255);
  const int lanes = static_cast<int>(hn::Lanes(d));
  int x = 0;
  for (; x + lanes <= width; x += lanes) {
    const Px<DRow> p = In::Load(d, src, x);
    const auto dcb = hn::Sub(p.c1, k128), dcr = hn::Sub(p.c2, k128);
    auto r = hn::Add(p.c0, ProductHigh<ref::kRCr, true>(d, dcr));
    auto g = hn::Add(p.c0, GreenHigh<true>(d, dcb, dcr));
    auto b = hn::Add(p.c0, ProductHigh<ref::kBCb, true>(d, dcb));
    if constexpr (kInk == Ink::kComplement) {
      // The complements of the clamped values.
      auto ink = [&](hn::Vec<DRow> v) {
        return hn::Sub(k255, hn::Min(hn::Max(v, hn::Zero(d)), k255));
      };
      r = ink(r), g = ink(g), b = ink(b);
    }
    Out::Store(d, dst, x, {r, g, b, p.k});
  }
  DecodeRow<typename In::Scalar, typename Out::Scalar, kInk>(src, dst, width, x);
}

#else  // HWY_TARGET == HWY_SCALAR: the scalar rows under the same names

template <int kPlanes>
using PlanesInV = PlanesIn<kPlanes>;
template <int kPlanes>
using PlanesOutV = PlanesOut<kPlanes>;
template <int kChannels, int kFirst>
using BytesInV = BytesIn<kChannels, kFirst>;
template <int kChannels, int kFirst>
using BytesOutV = BytesOut<kChannels, kFirst>;
template <class Format>
using PackedInV = PackedIn<Format>;
template <class Format>
using PackedOutV = PackedOut<Format>;
using LumaOutV = LumaOut;

template <class In, class Out, Ink kInk = Ink::kNone, bool kLumaOnly = false>
void EncodeRowSimd(const typename In::T* const* src, typename Out::T* const* dst, int width) {
  EncodeRow<In, Out, kInk, kLumaOnly>(src, dst, width);
}
template <class In, class Out, Ink kInk = Ink::kNone>
void DecodeRowSimd(const typename In::T* const* src, typename Out::T* const* dst, int width) {
  DecodeRow<In, Out, kInk>(src, dst, width);
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
