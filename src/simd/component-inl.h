// SPDX-License-Identifier: BSD-3-Clause
// SIMD rows of the JPEG 2000 component transforms, compiled once per target: the
// reversible and irreversible transforms on vectors of pixels, loaded from three
// planes or from interleaved samples and stored either way. Row tails, and every row
// on the one-lane scalar target, go to the reference rows of ref/component_ref.h.
//
// Exactness:
// - 32s: lane adds, subtracts and multiplies keep the low 32 bits, which is the
//   reference's wrapping arithmetic; shifts are arithmetic.
// - 16s RCT stays in 16-bit lanes. The reference forms the sums in 32 bits, but the
//   shifted sums it stores fit 16 bits: floor((R + 2G + B) / 4) is the floor average
//   of floor((R + B) / 2) and G, and floor((U + V) / 4) is floor((U + V) / 2) halved,
//   where the floor average (a & b) + ((a ^ b) >> 1) never overflows. The plain
//   differences and sums wrap in 16 bits exactly as the stored low bits do.
// - 16s ICT widens to 32-bit lanes, runs the 32s arithmetic (no sum of 16-bit
//   inputs can wrap there) and keeps the low 16 bits of each result.
// - 32f ICT widens to double, evaluates the reference's expression with separate
//   multiplies and adds in its order, and rounds once to float.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_COMPONENT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_COMPONENT_INL_H_
#undef KROJ_SRC_SIMD_COMPONENT_INL_H_
#else
#define KROJ_SRC_SIMD_COMPONENT_INL_H_
#endif

#include <stddef.h>
#include <stdint.h>

#include "ref/component_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

// Floor of (a + b) / 2 without overflow, for signed lanes.
template <class V>
HWY_INLINE V FloorAvg(V a, V b) {
  return hn::Add(hn::And(a, b), hn::ShiftRight<1>(hn::Xor(a, b)));
}

// ---- Transforms of three vectors (in[0..2] -> out[0..2]) ----

struct RctFwdV {
  template <class D, class V>
  static HWY_INLINE void Apply(D, const V in[3], V out[3]) {
    const V r = in[0], g = in[1], b = in[2];
    if constexpr (sizeof(hn::TFromD<D>) == 2) {
      out[0] = FloorAvg(FloorAvg(r, b), g);
    } else {
      out[0] = hn::ShiftRight<2>(hn::Add(hn::Add(r, hn::Add(g, g)), b));
    }
    out[1] = hn::Sub(b, g);
    out[2] = hn::Sub(r, g);
  }
};

struct RctInvV {
  template <class D, class V>
  static HWY_INLINE void Apply(D, const V in[3], V out[3]) {
    const V y = in[0], u = in[1], v = in[2];
    V g;
    if constexpr (sizeof(hn::TFromD<D>) == 2) {
      g = hn::Sub(y, hn::ShiftRight<1>(FloorAvg(u, v)));
    } else {
      g = hn::Sub(y, hn::ShiftRight<2>(hn::Add(u, v)));
    }
    out[0] = hn::Add(v, g);
    out[1] = g;
    out[2] = hn::Add(u, g);
  }
};

// The 2^-14 fixed-point ICT on 32-bit lanes.
template <class D32, class V32 = hn::Vec<D32>>
HWY_INLINE V32 FixDot3V(D32 d, int32_t c0, V32 a, int32_t c1, V32 b, int32_t c2, V32 c) {
  const V32 sum = hn::Add(hn::Add(hn::Mul(hn::Set(d, c0), a), hn::Mul(hn::Set(d, c1), b)),
                          hn::Mul(hn::Set(d, c2), c));
  return hn::ShiftRight<14>(hn::Add(sum, hn::Set(d, ref::kIctRound)));
}

struct IctFwdFixed32 {
  template <class D32, class V32>
  static HWY_INLINE void Apply(D32 d, const V32 in[3], V32 out[3]) {
    using C = ref::IctFwdFixed;
    out[0] = FixDot3V(d, C::kYR, in[0], C::kYG, in[1], C::kYB, in[2]);
    out[1] = FixDot3V(d, C::kUR, in[0], C::kUG, in[1], C::kUB, in[2]);
    out[2] = FixDot3V(d, C::kVR, in[0], C::kVG, in[1], C::kVB, in[2]);
  }
};

struct IctInvFixed32 {
  template <class D32, class V32>
  static HWY_INLINE void Apply(D32 d, const V32 in[3], V32 out[3]) {
    using C = ref::IctInvFixed;
    const V32 y = in[0], u = in[1], v = in[2], rnd = hn::Set(d, ref::kIctRound);
    const V32 dr = hn::ShiftRight<14>(hn::Add(hn::Mul(hn::Set(d, C::kRV), v), rnd));
    const V32 dg = hn::ShiftRight<14>(
        hn::Add(hn::Add(hn::Mul(hn::Set(d, C::kGU), u), hn::Mul(hn::Set(d, C::kGV), v)), rnd));
    const V32 db = hn::ShiftRight<14>(hn::Add(hn::Mul(hn::Set(d, C::kBU), u), rnd));
    out[0] = hn::Add(y, dr);
    out[1] = hn::Add(y, dg);
    out[2] = hn::Add(y, db);
  }
};

// 16-bit lanes through the 32-bit arithmetic Op32, each half widened; the results
// keep their low 16 bits (sign-extended in place, so the narrowing cannot saturate).
template <class Op32>
struct Widened16 {
  template <class D16, class V16>
  static HWY_INLINE void Apply(D16 d16, const V16 in[3], V16 out[3]) {
    const hn::Half<D16> dh;
    const hn::RepartitionToWide<D16> d32;
    using V32 = hn::Vec<decltype(d32)>;
    V32 lo[3], hi[3], rlo[3], rhi[3];
    for (int c = 0; c < 3; ++c) {
      lo[c] = hn::PromoteTo(d32, hn::LowerHalf(dh, in[c]));
      hi[c] = hn::PromoteTo(d32, hn::UpperHalf(dh, in[c]));
    }
    Op32::Apply(d32, lo, rlo);
    Op32::Apply(d32, hi, rhi);
    for (int c = 0; c < 3; ++c) {
      const V32 l = hn::ShiftRight<16>(hn::ShiftLeft<16>(rlo[c]));
      const V32 h = hn::ShiftRight<16>(hn::ShiftLeft<16>(rhi[c]));
      out[c] = hn::Combine(d16, hn::DemoteTo(dh, h), hn::DemoteTo(dh, l));
    }
  }
};

// Float lanes through double precision: each half widened, the reference's
// expressions evaluated with separate products and sums, rounded once on the way back.
struct IctFwdDouble {
  template <class DD, class VD>
  static HWY_INLINE void Apply(DD dd, const VD in[3], VD out[3]) {
    const VD r = in[0], g = in[1], b = in[2];
    auto k = [&](double c) { return hn::Set(dd, c); };
    out[0] = hn::Add(hn::Add(hn::Mul(k(0.299), r), hn::Mul(k(0.587), g)), hn::Mul(k(0.114), b));
    out[1] = hn::Add(hn::Sub(hn::Mul(k(-0.16875), r), hn::Mul(k(0.33126), g)), hn::Mul(k(0.5), b));
    out[2] = hn::Sub(hn::Sub(hn::Mul(k(0.5), r), hn::Mul(k(0.41869), g)), hn::Mul(k(0.08131), b));
  }
};

struct IctInvDouble {
  template <class DD, class VD>
  static HWY_INLINE void Apply(DD dd, const VD in[3], VD out[3]) {
    const VD y = in[0], u = in[1], v = in[2];
    auto k = [&](double c) { return hn::Set(dd, c); };
    out[0] = hn::Add(y, hn::Mul(k(1.402), v));
    out[1] = hn::Sub(hn::Sub(y, hn::Mul(k(0.34413), u)), hn::Mul(k(0.71414), v));
    out[2] = hn::Add(y, hn::Mul(k(1.772), u));
  }
};

template <class OpD>
struct WidenedFloat {
  template <class DF, class VF>
  static HWY_INLINE void Apply(DF df, const VF in[3], VF out[3]) {
    const hn::Half<DF> dh;
    const hn::Repartition<double, DF> dd;
    using VD = hn::Vec<decltype(dd)>;
    VD lo[3], hi[3], rlo[3], rhi[3];
    for (int c = 0; c < 3; ++c) {
      lo[c] = hn::PromoteTo(dd, hn::LowerHalf(dh, in[c]));
      hi[c] = hn::PromoteTo(dd, hn::UpperHalf(dh, in[c]));
    }
    OpD::Apply(dd, lo, rlo);
    OpD::Apply(dd, hi, rhi);
    for (int c = 0; c < 3; ++c)
      out[c] = hn::Combine(df, hn::DemoteTo(dh, rhi[c]), hn::DemoteTo(dh, rlo[c]));
  }
};

// ---- Rows ----

// Planes in place: all three inputs of a pixel are loaded before any store.
template <class OpV, class OpRef, class T>
void PlanarRowSimd(T* const p[3], int width) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d), w = static_cast<size_t>(width);
  size_t x = 0;
  for (; x + lanes <= w; x += lanes) {
    const hn::Vec<decltype(d)> in[3] = {hn::LoadU(d, p[0] + x), hn::LoadU(d, p[1] + x),
                                        hn::LoadU(d, p[2] + x)};
    hn::Vec<decltype(d)> out[3];
    OpV::Apply(d, in, out);
    for (int c = 0; c < 3; ++c) hn::StoreU(out[c], d, p[c] + x);
  }
  T* const rest[3] = {p[0] + x, p[1] + x, p[2] + x};
  const T* const crest[3] = {rest[0], rest[1], rest[2]};
  ref::Component3Row<OpRef>(crest, 1, rest, 1, width - static_cast<int>(x));
}

// Interleaved pixels to three planes.
template <class OpV, class OpRef, class T>
void SplitRowSimd(const T* src, T* const p[3], int width) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d), w = static_cast<size_t>(width);
  size_t x = 0;
  for (; x + lanes <= w; x += lanes) {
    hn::Vec<decltype(d)> in[3], out[3];
    hn::LoadInterleaved3(d, src + 3 * x, in[0], in[1], in[2]);
    OpV::Apply(d, in, out);
    for (int c = 0; c < 3; ++c) hn::StoreU(out[c], d, p[c] + x);
  }
  const T* const in[3] = {src + 3 * x, src + 3 * x + 1, src + 3 * x + 2};
  T* const out[3] = {p[0] + x, p[1] + x, p[2] + x};
  ref::Component3Row<OpRef>(in, 3, out, 1, width - static_cast<int>(x));
}

// Three planes to interleaved pixels.
template <class OpV, class OpRef, class T>
void MergeRowSimd(const T* const p[3], T* dst, int width) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d), w = static_cast<size_t>(width);
  size_t x = 0;
  for (; x + lanes <= w; x += lanes) {
    const hn::Vec<decltype(d)> in[3] = {hn::LoadU(d, p[0] + x), hn::LoadU(d, p[1] + x),
                                        hn::LoadU(d, p[2] + x)};
    hn::Vec<decltype(d)> out[3];
    OpV::Apply(d, in, out);
    hn::StoreInterleaved3(out[0], out[1], out[2], d, dst + 3 * x);
  }
  const T* const in[3] = {p[0] + x, p[1] + x, p[2] + x};
  T* const out[3] = {dst + 3 * x, dst + 3 * x + 1, dst + 3 * x + 2};
  ref::Component3Row<OpRef>(in, 1, out, 3, width - static_cast<int>(x));
}

#else  // HWY_TARGET == HWY_SCALAR: the reference rows under the same names

struct RctFwdV {};
struct RctInvV {};
struct IctFwdFixed32 {};
struct IctInvFixed32 {};
struct IctFwdDouble {};
struct IctInvDouble {};
template <class Op32>
struct Widened16 {};
template <class OpD>
struct WidenedFloat {};

template <class OpV, class OpRef, class T>
void PlanarRowSimd(T* const p[3], int width) {
  const T* const src[3] = {p[0], p[1], p[2]};
  ref::Component3Row<OpRef>(src, 1, p, 1, width);
}
template <class OpV, class OpRef, class T>
void SplitRowSimd(const T* src, T* const p[3], int width) {
  const T* const in[3] = {src, src + 1, src + 2};
  ref::Component3Row<OpRef>(in, 3, p, 1, width);
}
template <class OpV, class OpRef, class T>
void MergeRowSimd(const T* const p[3], T* dst, int width) {
  T* const out[3] = {dst, dst + 1, dst + 2};
  ref::Component3Row<OpRef>(p, 1, out, 3, width);
}

#endif  // HWY_TARGET != HWY_SCALAR

// The lane form of each transform for each sample type.
template <class T>
struct RctOps {
  using Fwd = RctFwdV;
  using Inv = RctInvV;
};
template <class T>
struct IctOps {  // 32s
  using Fwd = IctFwdFixed32;
  using Inv = IctInvFixed32;
};
template <>
struct IctOps<int16_t> {
  using Fwd = Widened16<IctFwdFixed32>;
  using Inv = Widened16<IctInvFixed32>;
};
template <>
struct IctOps<float> {
  using Fwd = WidenedFloat<IctFwdDouble>;
  using Inv = WidenedFloat<IctInvDouble>;
};

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
