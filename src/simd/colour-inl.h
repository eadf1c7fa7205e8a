// SPDX-License-Identifier: BSD-3-Clause
// SIMD building blocks of the JPEG colour conversions, compiled once per target:
// pixel loads and stores for every layout, and the fixed-point sums of the plane and
// MCU conversions, on vectors of up to 16 pixels held in 16-bit lanes.
//
// Exactness. The scalar kernels add table entries that are 16-bit fixed-point
// products modulo 2^32; the same sums formed here from 32-bit lane products are the
// same integers, because every sum the tables can produce for 8-bit inputs lies in
// 0 .. 2^24 (encoder) or fits 32 bits trivially (decoder), so no wrap can differ.
// The decoder MCU products wrap exactly as the reference's 32-bit products do: a
// lane multiply keeps the low 32 bits. Every result is a 32-bit value shifted right
// by 16 or more, so it fits a 16-bit lane. Clamping to 0..255 is the saturating
// narrowing from 16 to 8 bits.
//
// Vectors are capped at 16 lanes of 16 bits: an MCU row is 8 or 16 pixels, and the
// plane rows are memory bound beyond that width. The one-lane scalar target uses
// the scalar kernels instead (see HWY_TARGET == HWY_SCALAR in the callers).

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

using D16 = hn::CappedTag<int16_t, 16>;  // 8 or 16 pixels
using DH16 = hn::Half<D16>;
using DU16 = hn::RebindToUnsigned<D16>;
using D8 = hn::Rebind<uint8_t, D16>;     // one byte per pixel
using D32 = hn::Repartition<int32_t, D16>;  // half the pixels in 32-bit lanes
using V16 = hn::Vec<D16>;
using V32 = hn::Vec<D32>;
using V8 = hn::Vec<D8>;

inline constexpr int kLanes = static_cast<int>(hn::MaxLanes(D16()));

// The halves of a 16-bit vector widened to 32 bits, and back (values fit 16 bits).
HWY_INLINE V32 Lo32(V16 v) { return hn::PromoteTo(D32(), hn::LowerHalf(DH16(), v)); }
HWY_INLINE V32 Hi32(V16 v) { return hn::PromoteTo(D32(), hn::UpperHalf(DH16(), v)); }
HWY_INLINE V16 Narrow(V32 lo, V32 hi) {
  return hn::Combine(D16(), hn::DemoteTo(DH16(), hi), hn::DemoteTo(DH16(), lo));
}
HWY_INLINE V16 Widen(V8 v) { return hn::PromoteTo(D16(), v); }
HWY_INLINE V8 Clamp8(V16 v) { return hn::DemoteTo(D8(), v); }  // saturates to 0..255

// ---- Colour arithmetic ----

// Per 32-bit lane, the sum of the products of its two 16-bit halves with those of
// `coefs` (pmaddwd on x86, where the pairs stay in their lanes; the per-target tests
// hold every target to the scalar kernels).
HWY_INLINE V32 MulPairs(V32 pairs, V32 coefs) {
#if HWY_ARCH_X86
  const D32 d32;
  V32 unused = hn::Zero(d32);
  return hn::ReorderWidenMulAccumulate(d32, hn::BitCast(D16(), pairs), hn::BitCast(D16(), coefs),
                                       hn::Zero(d32), unused);
#else
  auto lo = [](V32 v) { return hn::ShiftRight<16>(hn::ShiftLeft<16>(v)); };
  return hn::Add(hn::Mul(lo(pairs), lo(coefs)),
                 hn::Mul(hn::ShiftRight<16>(pairs), hn::ShiftRight<16>(coefs)));
#endif
}
// Coefficient pair (a for the low half, b for the high half), each within int16.
HWY_INLINE V32 Coefs(int32_t a, int32_t b) {
  return hn::Set(D32(), static_cast<int32_t>(static_cast<uint32_t>(b) << 16 |
                                             (static_cast<uint32_t>(a) & 0xFFFF)));
}

// Encoder operands in 32-bit lanes: R and B alone, and the 16-bit pairs (R, G) and
// (B, G); every value is non-negative and below 2^15.
struct Pairs {
  V32 r, b, rg, bg;
};
// From separate 32-bit lanes, in order.
HWY_INLINE Pairs PairsOf(V32 r, V32 g, V32 b) {
  const V32 g_hi = hn::ShiftLeft<16>(g);
  return {r, b, hn::Or(r, g_hi), hn::Or(b, g_hi)};
}
// From 16-bit lanes by zipping: the lower or upper half of each 128-bit block, so
// Join() below must bring the results back together.
template <bool kUpper>
HWY_INLINE Pairs ZipPairs(V16 r, V16 g, V16 b) {
  const D32 d32;
  const V16 z = hn::Zero(D16());
  auto zip = [&](V16 a, V16 c) {
    return kUpper ? hn::ZipUpper(d32, a, c) : hn::ZipLower(d32, a, c);
  };
  return {zip(r, z), zip(b, z), zip(r, g), zip(b, g)};
}
// Narrows the lower-zip and upper-zip results (values within int16) back to pixel
// order: the 16-bit pack works per 128-bit block, as the zips did.
HWY_INLINE V16 Join(V32 lo, V32 hi) { return hn::ReorderDemote2To(D16(), lo, hi); }

// 19595 R + 38470 G + 7471 B; -11059 R - 21709 G + 32768 B; 32768 R - 27439 G -
// 5329 B, exact (38470 G is formed as 19235 G twice; 32768 x as x << 15).
static_assert(ref::kYG % 2 == 0 && ref::kHalf == 1 << 15);
HWY_INLINE V32 LumaSum(const Pairs& p) {
  return hn::Add(MulPairs(p.rg, Coefs(ref::kYR, ref::kYG / 2)),
                 MulPairs(p.bg, Coefs(ref::kYB, ref::kYG / 2)));
}
HWY_INLINE V32 CbSum(const Pairs& p) {
  return hn::Add(MulPairs(p.rg, Coefs(-ref::kCbR, -ref::kCbG)), hn::ShiftLeft<15>(p.b));
}
HWY_INLINE V32 CrSum(const Pairs& p) {
  return hn::Add(MulPairs(p.bg, Coefs(-ref::kCrB, -ref::kCrG)), hn::ShiftLeft<15>(p.r));
}
template <int kShift>
HWY_INLINE V32 Shr(V32 sum, int32_t add) {
  return hn::ShiftRight<kShift>(hn::Add(sum, hn::Set(D32(), add)));
}

// Plane decoder: the chroma contribution (c d + 32768) >> 16 of a centred sample d
// in -128..127 for c = k * 2^16 + c' with c' within int16. Since c d = k d 2^16 +
// c' d, the result is k d plus the high half of c' d, plus one when the low half of
// c' d is 32768 or more (the carry of the rounding term).
template <int32_t kC>
HWY_INLINE V16 RoundedTerm(V16 d) {
  constexpr int32_t kK = (kC + 32768) >> 16, kLow = kC - kK * 65536;
  static_assert(kLow >= -32768 && kLow < 32768);
  const D16 d16;
  const V16 c = hn::Set(d16, static_cast<int16_t>(kLow));
  const V16 carry = hn::BitCast(d16, hn::ShiftRight<15>(hn::BitCast(DU16(), hn::Mul(d, c))));
  static_assert(kK == 1 || kK == 2);
  const V16 whole = kK == 1 ? d : hn::Add(d, d);
  return hn::Add(hn::Add(whole, hn::MulHigh(d, c)), carry);
}
// Plane decoder green: (32768 - 22554 dcb - 46802 dcr) >> 16 = -dcr + ((32768 -
// 22554 dcb + 18734 dcr) >> 16), the bracket from 16-bit pairs (dcb, dcr).
static_assert(ref::kGCr - 65536 == -18734);
HWY_INLINE V16 RoundedGreenTerm(V16 dcb, V16 dcr) {
  const D32 d32;
  const V32 coefs = Coefs(-ref::kGCb, 65536 - ref::kGCr);
  auto half = [&](V32 pairs) { return Shr<16>(MulPairs(pairs, coefs), ref::kHalf); };
  return hn::Sub(Join(half(hn::ZipLower(d32, dcb, dcr)), half(hn::ZipUpper(d32, dcb, dcr))), dcr);
}

// MCU decoder: (c x) >> 16 with the 32-bit product of any 16-bit x wrapping as in
// the scalar kernels; the terms of the three colours.
struct Terms {
  V16 r, g, b;
};
HWY_INLINE Terms WrappedTerms(V16 cb, V16 cr) {
  const D32 d;
  auto half = [&](V32 b32, V32 r32) {
    const V32 r = hn::Mul(r32, hn::Set(d, ref::kRCr));
    const V32 g = hn::Add(hn::Mul(b32, hn::Set(d, -ref::kGCb)), hn::Mul(r32, hn::Set(d, -ref::kGCr)));
    const V32 b = hn::Mul(b32, hn::Set(d, ref::kBCb));
    return std::array<V32, 3>{hn::ShiftRight<16>(r), hn::ShiftRight<16>(g), hn::ShiftRight<16>(b)};
  };
  const auto lo = half(Lo32(cb), Lo32(cr)), hi = half(Hi32(cb), Hi32(cr));
  return {Narrow(lo[0], hi[0]), Narrow(lo[1], hi[1]), Narrow(lo[2], hi[2])};
}

// ---- Pixel layouts ----
// A pixel vector: R, G, B (or Y, Cb, Cr) and K in 16-bit lanes, values 0..255 on
// input; on output anything, clamped to 0..255 by the store (K is stored as is).
struct Px16 {
  V16 c0, c1, c2, k;
};

// Three or four separate 8-bit planes.
template <int kPlanes>
struct PlanesInV {
  using T = Kro8u;
  using Scalar = PlanesIn<kPlanes>;
  static HWY_INLINE Px16 Load(const T* const* s, int x) {
    const D8 d8;
    const V16 k = kPlanes == 4 ? Widen(hn::LoadU(d8, s[kPlanes - 1] + x)) : hn::Zero(D16());
    return {Widen(hn::LoadU(d8, s[0] + x)), Widen(hn::LoadU(d8, s[1] + x)),
            Widen(hn::LoadU(d8, s[2] + x)), k};
  }
};
template <int kPlanes>
struct PlanesOutV {
  using T = Kro8u;
  using Scalar = PlanesOut<kPlanes>;
  static HWY_INLINE void Store(T* const* d, int x, Px16 p) {
    const D8 d8;
    hn::StoreU(Clamp8(p.c0), d8, d[0] + x);
    hn::StoreU(Clamp8(p.c1), d8, d[1] + x);
    hn::StoreU(Clamp8(p.c2), d8, d[2] + x);
    if constexpr (kPlanes == 4) hn::StoreU(Clamp8(p.k), d8, d[3] + x);
  }
};

// Interleaved bytes; kFirst = 2 reads or writes B, G, R.
template <int kChannels, int kFirst>
struct BytesInV {
  using T = Kro8u;
  using Scalar = BytesIn<kChannels, kFirst>;
  static HWY_INLINE Px16 Load(const T* const* s, int x) {
    const D8 d8;
    V8 a, b, c, k;
    if constexpr (kChannels == 4) {
      hn::LoadInterleaved4(d8, s[0] + 4 * x, a, b, c, k);
    } else {
      hn::LoadInterleaved3(d8, s[0] + 3 * x, a, b, c);
      k = hn::Zero(d8);
    }
    if constexpr (kFirst == 2) std::swap(a, c);
    return {Widen(a), Widen(b), Widen(c), Widen(k)};
  }
};
template <int kChannels, int kFirst>
struct BytesOutV {
  using T = Kro8u;
  using Scalar = BytesOut<kChannels, kFirst>;
  static HWY_INLINE void Store(T* const* d, int x, Px16 p) {
    const D8 d8;
    V8 a = Clamp8(p.c0), b = Clamp8(p.c1), c = Clamp8(p.c2);
    if constexpr (kFirst == 2) std::swap(a, c);
    if constexpr (kChannels == 4) {
      hn::StoreInterleaved4(a, b, c, Clamp8(p.k), d8, d[0] + 4 * x);
    } else {
      hn::StoreInterleaved3(a, b, c, d8, d[0] + 3 * x);
    }
  }
};

// 16-bit packed words (ref::Packed formats): fields widened with zero low bits.
template <class Format>
struct PackedInV {
  using T = Kro16u;
  using Scalar = PackedIn<Format>;
  static HWY_INLINE Px16 Load(const T* const* s, int x) {
    const DU16 du;
    const auto w = hn::LoadU(du, s[0] + x);
    const auto k31 = hn::Set(du, 31);
    constexpr int kG = Format::kGreenWidth;
    const auto low = hn::ShiftLeft<3>(hn::And(w, k31));
    const auto g = hn::ShiftLeft<8 - kG>(
        hn::And(hn::ShiftRight<5>(w), hn::Set(du, static_cast<uint16_t>((1 << kG) - 1))));
    const auto high = hn::ShiftLeft<3>(hn::And(hn::ShiftRight<5 + kG>(w), k31));
    const D16 d;
    const V16 l = hn::BitCast(d, low), h = hn::BitCast(d, high);
    return {Format::kIsBgr ? h : l, hn::BitCast(d, g), Format::kIsBgr ? l : h, hn::Zero(d)};
  }
};
template <class Format>
struct PackedOutV {
  using T = Kro16u;
  using Scalar = PackedOut<Format>;
  static HWY_INLINE void Store(T* const* d, int x, Px16 p) {
    const DU16 du;
    auto clamp = [&](V16 v) { return hn::PromoteTo(du, Clamp8(v)); };
    const auto r = clamp(p.c0), g = clamp(p.c1), b = clamp(p.c2);
    constexpr int kG = Format::kGreenWidth;
    const auto low = hn::ShiftRight<3>(Format::kIsBgr ? b : r);
    const auto high = hn::ShiftRight<3>(Format::kIsBgr ? r : b);
    const auto w = hn::Or(hn::Or(low, hn::ShiftLeft<5>(hn::ShiftRight<8 - kG>(g))),
                          hn::ShiftLeft<5 + kG>(high));
    hn::StoreU(w, du, d[0] + x);
  }
};

// Y alone.
struct LumaOutV {
  using T = Kro8u;
  using Scalar = LumaOut;
  static HWY_INLINE void Store(T* const* d, int x, Px16 p) {
    hn::StoreU(Clamp8(p.c0), D8(), d[0] + x);
  }
};

// ---- Plane rows ----

// RGB-like pixels -> Y, Cb, Cr (and K), as EncodeRow; the last width % kLanes
// pixels go to EncodeRow.
template <class In, class Out, Ink kInk = Ink::kNone, bool kLumaOnly = false>
void EncodeRowSimd(const typename In::T* const* src, typename Out::T* const* dst, int width) {
  const D16 d;
  int x = 0;
  for (; x + kLanes <= width; x += kLanes) {
    Px16 p = In::Load(src, x);
    if constexpr (kInk == Ink::kComplement) {
      const V16 k255 = hn::Set(d, 255);
      p = {hn::Sub(k255, p.c0), hn::Sub(k255, p.c1), hn::Sub(k255, p.c2), p.k};
    }
    const Pairs lo = ZipPairs<false>(p.c0, p.c1, p.c2), hi = ZipPairs<true>(p.c0, p.c1, p.c2);
    const V16 y = Join(Shr<16>(LumaSum(lo), ref::kHalf), Shr<16>(LumaSum(hi), ref::kHalf));
    if constexpr (kLumaOnly) {
      Out::Store(dst, x, {y, y, y, y});
    } else {
      const V16 cb = Join(Shr<16>(CbSum(lo), ref::kChromaOffset),
                          Shr<16>(CbSum(hi), ref::kChromaOffset));
      const V16 cr = Join(Shr<16>(CrSum(lo), ref::kChromaOffset),
                          Shr<16>(CrSum(hi), ref::kChromaOffset));
      Out::Store(dst, x, {y, cb, cr, p.k});
    }
  }
  EncodeRow<typename In::Scalar, typename Out::Scalar, kInk, kLumaOnly>(src, dst, width, x);
}

// Y, Cb, Cr (and K) -> RGB-like pixels, as DecodeRow.
template <class In, class Out, Ink kInk = Ink::kNone>
void DecodeRowSimd(const typename In::T* const* src, typename Out::T* const* dst, int width) {
  const D16 d;
  const V16 k128 = hn::Set(d, 128), k255 = hn::Set(d, 255);
  int x = 0;
  for (; x + kLanes <= width; x += kLanes) {
    const Px16 p = In::Load(src, x);
    const V16 dcb = hn::Sub(p.c1, k128), dcr = hn::Sub(p.c2, k128);
    V16 r = hn::Add(p.c0, RoundedTerm<ref::kRCr>(dcr));
    V16 g = hn::Add(p.c0, RoundedGreenTerm(dcb, dcr));
    V16 b = hn::Add(p.c0, RoundedTerm<ref::kBCb>(dcb));
    if constexpr (kInk == Ink::kComplement) {
      // Complement the clamped values: clamp first, then 255 - v.
      auto ink = [&](V16 v) { return hn::Sub(k255, hn::Min(hn::Max(v, hn::Zero(d)), k255)); };
      r = ink(r), g = ink(g), b = ink(b);
    }
    Out::Store(dst, x, {r, g, b, p.k});
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
