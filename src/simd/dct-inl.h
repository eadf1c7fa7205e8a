// SPDX-License-Identifier: BSD-3-Clause
// SIMD 8x8 DCT pair with its quantising and level-shifting block forms, and the
// block quantiser and dequantiser, compiled once per target; bit-exact with
// ref/dct_ref.h and ref/quant_ref.h.
//
// Layout. A block is held as eight 128-bit vectors of 16-bit values, one per row.
// Each pass runs the reference butterfly "vertically": butterfly input k is vector
// k, and every lane is a separate line of the block. The inverse transform's first
// pass (over columns) thus runs on the rows as loaded; the forward one's first pass
// (over rows) runs on the transposed block. Between the passes the block is
// transposed once more, and the inverse transposes its result back to rows.
//
// Exactness. The butterflies run on 32-bit lanes, eight per block line (one 256-bit
// vector, or two 128-bit halves on 128-bit targets). Lane adds, subtracts, left
// shifts and multiplies keep the low 32 bits, which is the reference's wrapping
// arithmetic, and ShiftRight is arithmetic; rounding addends are folded into shared
// sums, which modular addition allows. A pass output "kept as 16 bits" is its low
// half sign-extended (left 16, arithmetic right 16), after which the saturating
// narrowing to 16-bit lanes is exact. The quantiser forms the 16u x 16s product in
// 32 bits (|p| < 2^31) and rounds with the reference's addend, which cannot overflow
// there; the dequantiser clamps the exact product.
//
// Cost per block on AVX2 (the reason for this shape): two transposes of 24
// interleaves, 22 lane multiplies, about 130 other lane operations.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_DCT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_DCT_INL_H_
#undef KROJ_SRC_SIMD_DCT_INL_H_
#else
#define KROJ_SRC_SIMD_DCT_INL_H_
#endif

#include <stddef.h>
#include <stdint.h>

#include "ref/dct_ref.h"
#include "ref/quant_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

namespace dct_simd {

using D16 = hn::Full128<int16_t>;  // one block row
using V16 = hn::Vec<D16>;
using D32 = hn::CappedTag<int32_t, 8>;
using V32 = hn::Vec<D32>;
inline constexpr size_t kLanes = hn::MaxLanes(D32());
inline constexpr size_t kGroups = 8 / kLanes;  // 32-bit vectors per block line
using DH = hn::Rebind<int16_t, D32>;           // the 16-bit lanes of one of them
using Rows = V16[8];
using Wide = V32[kGroups][8];  // [g][k]: lanes g * kLanes.. of line k

// A constant on every lane, loaded from tables.cpp (see dct_lane_constants).
template <int32_t kValue>
HWY_INLINE V32 K() {
  constexpr int kIndex = DctLaneIndex(kValue);
  static_assert(kIndex >= 0, "add the value to kDctLaneValues");
  return hn::Load(D32(), dct_lane_constants[kIndex].data());
}

// ---- Between 16-bit rows and 32-bit lanes ----

template <class D>
HWY_INLINE void Widen(D d, V16 v, hn::Vec<D>* out) {
  if constexpr (hn::MaxLanes(D()) == 8) {
    out[0] = hn::PromoteTo(d, v);
  } else {
    out[0] = hn::PromoteTo(d, hn::LowerHalf(v));
    out[1] = hn::PromoteTo(d, hn::UpperHalf(hn::Half<D16>(), v));
  }
}

// The low 16 bits of each lane, sign-extended: the value a 16-bit store keeps.
template <class V>
HWY_INLINE V Low16(V v) {
  return hn::ShiftRight<16>(hn::ShiftLeft<16>(v));
}

template <class D>
HWY_INLINE V16 Narrow(D, const hn::Vec<D>* in) {
  if constexpr (hn::MaxLanes(D()) == 8) {
    return hn::DemoteTo(D16(), in[0]);
  } else {
    const hn::Half<D16> dh;
    return hn::Combine(D16(), hn::DemoteTo(dh, in[1]), hn::DemoteTo(dh, in[0]));
  }
}

HWY_INLINE void WidenAll(const Rows& r, Wide& w) {
  for (size_t k = 0; k < 8; ++k) {
    V32 parts[kGroups];
    Widen(D32(), r[k], parts);
    for (size_t g = 0; g < kGroups; ++g) w[g][k] = parts[g];
  }
}

// Lines of a final pass that may need wrapping to 16 bits: the outputs rounded at
// 21 bits lie in [-2^10, 2^10) already, so only the forward transform's DC-type
// lines 0 and 4 ((sum + 32) >> 6) can leave the 16-bit range.
inline constexpr unsigned kFwdWrapLines = 0x11, kInvWrapLines = 0x00;

// Rows of 16-bit values from lines kept as 16 bits; bit k of wrap_lines marks a
// line that may need wrapping (the others fit and narrow exactly).
HWY_INLINE void NarrowAll(const Wide& w, Rows& r, unsigned wrap_lines = 0xFF) {
  for (size_t k = 0; k < 8; ++k) {
    V32 parts[kGroups];
    for (size_t g = 0; g < kGroups; ++g) parts[g] = (wrap_lines >> k) & 1 ? Low16(w[g][k]) : w[g][k];
    r[k] = Narrow(D32(), parts);
  }
}

// 8x8 transpose of 16-bit values: interleaves of 16-, 32- and 64-bit units.
HWY_INLINE void Transpose(Rows& r) {
  const D16 d;
  const hn::Repartition<int32_t, D16> d32;
  const hn::Repartition<int64_t, D16> d64;
  hn::Vec<decltype(d32)> a[8];
  for (size_t i = 0; i < 4; ++i) {  // row pairs (2i, 2i+1), columns 0-3 and 4-7
    a[2 * i] = hn::BitCast(d32, hn::InterleaveLower(d, r[2 * i], r[2 * i + 1]));
    a[2 * i + 1] = hn::BitCast(d32, hn::InterleaveUpper(d, r[2 * i], r[2 * i + 1]));
  }
  hn::Vec<decltype(d64)> b[8];
  for (size_t h = 0; h < 2; ++h) {  // rows 0-3, then rows 4-7: column pairs
    const size_t i = 4 * h;
    b[i] = hn::BitCast(d64, hn::InterleaveLower(d32, a[i], a[i + 2]));      // columns 0, 1
    b[i + 1] = hn::BitCast(d64, hn::InterleaveUpper(d32, a[i], a[i + 2]));  // 2, 3
    b[i + 2] = hn::BitCast(d64, hn::InterleaveLower(d32, a[i + 1], a[i + 3]));  // 4, 5
    b[i + 3] = hn::BitCast(d64, hn::InterleaveUpper(d32, a[i + 1], a[i + 3]));  // 6, 7
  }
  for (size_t c = 0; c < 4; ++c) {
    r[2 * c] = hn::BitCast(d, hn::InterleaveLower(d64, b[c], b[c + 4]));
    r[2 * c + 1] = hn::BitCast(d, hn::InterleaveUpper(d64, b[c], b[c + 4]));
  }
}

// Transposes a block held as 32-bit lines, w[g][k] = lanes g * kLanes.. of line k:
// 4x4 transposes inside each 128-bit block, then the off-diagonal 4x4 tiles swap
// places (halves of 256-bit vectors, or whole vectors on 128-bit targets).
template <class V>
HWY_INLINE void Transpose4(V& v0, V& v1, V& v2, V& v3) {
  const D32 d;
  const hn::Repartition<int64_t, D32> d64;
  const auto a0 = hn::BitCast(d64, hn::InterleaveLower(d, v0, v1));
  const auto a1 = hn::BitCast(d64, hn::InterleaveUpper(d, v0, v1));
  const auto a2 = hn::BitCast(d64, hn::InterleaveLower(d, v2, v3));
  const auto a3 = hn::BitCast(d64, hn::InterleaveUpper(d, v2, v3));
  v0 = hn::BitCast(d, hn::InterleaveLower(d64, a0, a2));
  v1 = hn::BitCast(d, hn::InterleaveUpper(d64, a0, a2));
  v2 = hn::BitCast(d, hn::InterleaveLower(d64, a1, a3));
  v3 = hn::BitCast(d, hn::InterleaveUpper(d64, a1, a3));
}

template <size_t kG>
HWY_INLINE void TransposeWide(V32 (&w)[kG][8]) {
  for (size_t g = 0; g < kG; ++g) {
    Transpose4(w[g][0], w[g][1], w[g][2], w[g][3]);
    Transpose4(w[g][4], w[g][5], w[g][6], w[g][7]);
  }
  if constexpr (kG == 1) {
    const D32 d;
    for (size_t j = 0; j < 4; ++j) {
      const V32 lo = w[0][j], hi = w[0][4 + j];
      w[0][j] = hn::ConcatLowerLower(d, hi, lo);
      w[0][4 + j] = hn::ConcatUpperUpper(d, hi, lo);
    }
  } else {
    for (size_t j = 0; j < 4; ++j) {
      const V32 t = w[0][4 + j];
      w[0][4 + j] = w[1][j];
      w[1][j] = t;
    }
  }
}

// Lines kept as 16 bits, then transposed. wrap = false when they are known to fit.
HWY_INLINE void CutAndTranspose(Wide& w, bool wrap = true) {
  if (wrap) {
    for (size_t g = 0; g < kGroups; ++g)
      for (size_t k = 0; k < 8; ++k) w[g][k] = Low16(w[g][k]);
  }
  TransposeWide(w);
}

// ---- Butterflies (ref::FwdDct1D, ref::InvDct1D) on lines x[0..7], in place ----

template <bool kFinal>
HWY_INLINE void FwdButterfly(V32* x) {
  const D32 d;
  constexpr int kShift = kFinal ? 21 : 12;
  const V32 round = K<1 << (kShift - 1)>();
  const V32 s0 = hn::Add(x[0], x[7]), s1 = hn::Add(x[1], x[6]);
  const V32 s2 = hn::Add(x[2], x[5]), s3 = hn::Add(x[3], x[4]);
  const V32 d0 = hn::Sub(x[0], x[7]), d1 = hn::Sub(x[1], x[6]);
  const V32 d2 = hn::Sub(x[2], x[5]), d3 = hn::Sub(x[3], x[4]);

  const V32 a0 = hn::Add(s0, s3), a1 = hn::Add(s1, s2);
  const V32 a2 = hn::Sub(s0, s3), a3 = hn::Sub(s1, s2);
  if constexpr (kFinal) {
    const V32 k32 = K<32>();
    x[0] = hn::ShiftRight<6>(hn::Add(hn::Add(a0, a1), k32));
    x[4] = hn::ShiftRight<6>(hn::Add(hn::Sub(a0, a1), k32));
  } else {
    x[0] = hn::ShiftLeft<3>(hn::Add(a0, a1));
    x[4] = hn::ShiftLeft<3>(hn::Sub(a0, a1));
  }
  const V32 z = hn::Add(hn::Mul(hn::Add(a2, a3), K<17734>()), round);
  x[2] = hn::ShiftRight<kShift>(hn::Add(hn::Mul(a2, K<25080>()), z));
  x[6] = hn::ShiftRight<kShift>(hn::Add(hn::Mul(a3, K<-60547>()), z));

  const V32 p = hn::ShiftLeft<3>(hn::Add(d2, d1)), q = hn::ShiftLeft<3>(hn::Sub(d1, d2));
  const V32 c46341 = K<46341>(), r12 = K<2048>();
  const V32 t0 = hn::ShiftRight<12>(hn::Add(hn::Mul(d0, c46341), r12));
  const V32 t3 = hn::ShiftRight<12>(hn::Add(hn::Mul(d3, c46341), r12));
  const V32 e0 = hn::Add(t0, p), e1 = hn::Sub(t0, p), e2 = hn::Add(t3, q), e3 = hn::Sub(t3, q);
  const V32 z1 = hn::Add(hn::Mul(hn::Add(e0, e2), K<799>()), round);
  x[1] = hn::ShiftRight<kShift>(hn::Add(z1, hn::Mul(e0, K<3218>())));
  x[7] = hn::ShiftRight<kShift>(hn::Add(z1, hn::Mul(e2, K<-4816>())));
  const V32 z2 = hn::Add(hn::Mul(hn::Add(e1, e3), K<3406>()), round);
  x[5] = hn::ShiftRight<kShift>(hn::Add(z2, hn::Mul(e1, K<-1130>())));
  x[3] = hn::ShiftRight<kShift>(hn::Add(z2, hn::Mul(e3, K<-5681>())));
}

template <bool kFinal>
HWY_INLINE void InvButterfly(V32* x) {
  const D32 d;
  constexpr int kShift = kFinal ? 21 : 12;
  const V32 r12 = K<2048>(), c5793 = K<5793>();
  // Odd part.
  const V32 z5 = hn::Mul(hn::Add(x[5], x[3]), K<27246>());
  const V32 a = hn::Add(z5, hn::Mul(x[5], K<-9041>()));
  const V32 b = hn::Add(z5, hn::Mul(x[3], K<-45451>()));
  const V32 z6 = hn::Mul(hn::Add(x[1], x[7]), K<6393>());
  const V32 c = hn::Add(z6, hn::Mul(x[1], K<25746>()));
  const V32 dd = hn::Add(z6, hn::Mul(x[7], K<-38531>()));
  const V32 e = hn::Sub(c, a), f = hn::Sub(dd, b);
  const V32 g = hn::Mul(hn::ShiftRight<12>(hn::Add(hn::Add(a, c), r12)), c5793);
  const V32 h = hn::Mul(hn::ShiftRight<12>(hn::Add(hn::Add(b, dd), r12)), c5793);
  const V32 p = hn::Add(e, f), q = hn::Sub(e, f);
  // Even part, with the output rounding folded into t0..t3.
  const V32 e0 = hn::ShiftLeft<15>(hn::Add(x[0], x[4]));
  const V32 e1 = hn::ShiftLeft<15>(hn::Sub(x[0], x[4]));
  const V32 z1 = hn::Mul(hn::Add(x[2], x[6]), K<17734>());
  const V32 r = hn::Add(z1, hn::Mul(x[2], K<25080>()));
  const V32 s = hn::Add(z1, hn::Mul(x[6], K<-60547>()));
  const V32 round = K<1 << (kShift - 1)>();
  const V32 e0r = hn::Add(e0, round), e1r = hn::Add(e1, round);
  const V32 t0 = hn::Add(e0r, r), t3 = hn::Sub(e0r, r);
  const V32 t1 = hn::Add(e1r, s), t2 = hn::Sub(e1r, s);
  x[0] = hn::ShiftRight<kShift>(hn::Add(t0, g));
  x[7] = hn::ShiftRight<kShift>(hn::Sub(t0, g));
  x[1] = hn::ShiftRight<kShift>(hn::Add(t1, p));
  x[6] = hn::ShiftRight<kShift>(hn::Sub(t1, p));
  x[2] = hn::ShiftRight<kShift>(hn::Add(t2, q));
  x[5] = hn::ShiftRight<kShift>(hn::Sub(t2, q));
  x[3] = hn::ShiftRight<kShift>(hn::Add(t3, h));
  x[4] = hn::ShiftRight<kShift>(hn::Sub(t3, h));
}

// ---- Whole transforms ----

// Forward DCT of the sample rows r. w receives the output rows on 32-bit lanes,
// not yet cut to 16 bits.
//
// kSamples: the rows hold 8-bit samples not yet level-shifted. Subtracting 128 from
// every sample only lowers each row's first-pass R0 = 8 * (sum of the row) by
// 8 * 8 * 128 = 8192 (all other outputs are built from differences), so the shift
// is one subtraction on line 0 after the first pass. Every first-pass output of
// level-shifted samples fits 16 bits (|R| <= 8192), so none needs wrapping.
template <bool kSamples = false>
HWY_INLINE void FwdDct(Rows& r, Wide& w) {
  Transpose(r);
  WidenAll(r, w);
  for (size_t g = 0; g < kGroups; ++g) FwdButterfly<false>(w[g]);
  if (kSamples) {
    for (size_t g = 0; g < kGroups; ++g) w[g][0] = hn::Sub(w[g][0], K<8192>());
  }
  CutAndTranspose(w, !kSamples);
  for (size_t g = 0; g < kGroups; ++g) FwdButterfly<true>(w[g]);
}

// Inverse DCT of the coefficient rows w (16-bit values on 32-bit lanes, consumed);
// r receives the sample rows.
HWY_INLINE void InvDct(Wide& w, Rows& r) {
  for (size_t g = 0; g < kGroups; ++g) InvButterfly<false>(w[g]);
  CutAndTranspose(w);
  for (size_t g = 0; g < kGroups; ++g) InvButterfly<true>(w[g]);
  NarrowAll(w, r, kInvWrapLines);
  Transpose(r);
}

// ---- Loads, stores and the quantisation steps ----

HWY_INLINE void LoadRows(const int16_t* src, Rows& r) {
  for (size_t k = 0; k < 8; ++k) r[k] = hn::LoadU(D16(), src + 8 * k);
}
HWY_INLINE void StoreRows(const Rows& r, int16_t* dst) {
  for (size_t k = 0; k < 8; ++k) hn::StoreU(r[k], D16(), dst + 8 * k);
}

// An 8x8 region of 8-bit samples (FwdDct<true> applies the level shift).
HWY_INLINE void LoadSampleRows(const uint8_t* src, int step, Rows& r) {
  const hn::Rebind<uint8_t, D16> d8;
  for (size_t k = 0; k < 8; ++k) {
    r[k] = hn::PromoteTo(D16(), hn::LoadU(d8, src + static_cast<ptrdiff_t>(k) * step));
  }
}

// clamp(r + 128, 0, 255) into an 8x8 region; the saturating add cannot change
// the clamped value.
HWY_INLINE void StoreShiftedRows(const Rows& r, uint8_t* dst, int step) {
  const hn::Rebind<uint8_t, D16> d8;
  const V16 k128 = hn::Set(D16(), 128);
  for (size_t k = 0; k < 8; ++k) {
    uint8_t* row = dst + static_cast<ptrdiff_t>(k) * step;
    hn::StoreU(hn::DemoteTo(d8, hn::SaturatedAdd(r[k], k128)), d8, row);
  }
}

// Quantised 16-bit lanes of the values v, wrapped to 16 bits first if need be, with
// reciprocals at recip:
// (p + 2^14 - 1 + bit 15 of p) >> 15 for p = v * recip, saturated.
HWY_INLINE hn::Vec<DH> Quantise(V32 v, const uint16_t* recip, bool wrap) {
  const D32 d;
  const hn::Rebind<uint32_t, D32> du;
  const hn::Rebind<uint16_t, D32> du16;
  const V32 r = hn::BitCast(d, hn::PromoteTo(du, hn::LoadU(du16, recip)));
  const V32 p = hn::Mul(wrap ? Low16(v) : v, r);
  const V32 odd = hn::And(hn::ShiftRight<15>(p), K<1>());
  return hn::DemoteTo(DH(), hn::ShiftRight<15>(hn::Add(hn::Add(p, K<16383>()), odd)));
}

HWY_INLINE void StoreQuantised(const Wide& w, const uint16_t* recip, int16_t* dst) {
  for (size_t k = 0; k < 8; ++k) {
    for (size_t g = 0; g < kGroups; ++g) {
      const size_t at = 8 * k + g * kLanes;
      hn::StoreU(Quantise(w[g][k], recip + at, (kFwdWrapLines >> k) & 1), DH(), dst + at);
    }
  }
}

// Dequantised coefficient rows: coef * step, the steps read as signed, clamped to
// 16 bits.
HWY_INLINE void Dequantise(const Rows& coef, const uint16_t* steps, Wide& w) {
  const D32 d;
  const V32 lo = K<-32768>(), hi = K<32767>();
  for (size_t k = 0; k < 8; ++k) {
    V32 c[kGroups], s[kGroups];
    Widen(d, coef[k], c);
    Widen(d, hn::BitCast(D16(), hn::LoadU(hn::Full128<uint16_t>(), steps + 8 * k)), s);
    for (size_t g = 0; g < kGroups; ++g) w[g][k] = hn::Min(hn::Max(hn::Mul(c[g], s[g]), lo), hi);
  }
}

// Whether the block holds no AC coefficient: then every sample of its inverse
// transform is ref::InvDctOfDc of the DC term, which costs a fraction of the
// transform (and many decoded blocks, chroma above all, are like that).
HWY_INLINE bool OnlyDc(const Rows& coef) {
  const D16 d;
  V16 ac = hn::IfThenZeroElse(hn::FirstN(d, 1), coef[0]);
  for (size_t k = 1; k < 8; ++k) ac = hn::Or(ac, coef[k]);
  return hn::AllTrue(d, hn::Eq(ac, hn::Zero(d)));
}

// Inverse transform of the coefficient rows r (dequantised with steps unless
// null) into r.
HWY_INLINE void InvDctRows(Rows& r, const uint16_t* steps) {
  if (OnlyDc(r)) {
    int32_t dc = hn::GetLane(r[0]);
    if (steps) dc = HWY_MIN(HWY_MAX(dc * static_cast<int16_t>(steps[0]), -32768), 32767);
    const V16 v = hn::Set(D16(), ref::InvDctOfDc(static_cast<int16_t>(dc)));
    for (size_t k = 0; k < 8; ++k) r[k] = v;
    return;
  }
  Wide w;
  if (steps) {
    Dequantise(r, steps, w);
  } else {
    WidenAll(r, w);
  }
  InvDct(w, r);
}

}  // namespace dct_simd

// ---- Block kernels (each in place when src == dst) ----

HWY_INLINE void FwdDctBlockSimd(const int16_t* src, int16_t* dst) {
  using namespace dct_simd;
  Rows r;
  Wide w;
  LoadRows(src, r);
  FwdDct(r, w);
  NarrowAll(w, r, kFwdWrapLines);
  StoreRows(r, dst);
}

HWY_INLINE void FwdDctQuantBlockSimd(const int16_t* src, int16_t* dst, const uint16_t* recip) {
  using namespace dct_simd;
  Rows r;
  Wide w;
  LoadRows(src, r);
  FwdDct(r, w);
  StoreQuantised(w, recip, dst);
}

HWY_INLINE void FwdDctQuantLSBlockSimd(const uint8_t* src, int step, int16_t* dst,
                                       const uint16_t* recip) {
  using namespace dct_simd;
  Rows r;
  Wide w;
  LoadSampleRows(src, step, r);
  FwdDct<true>(r, w);
  StoreQuantised(w, recip, dst);
}

HWY_INLINE void InvDctBlockSimd(const int16_t* src, int16_t* dst) {
  using namespace dct_simd;
  Rows r;
  LoadRows(src, r);
  InvDctRows(r, nullptr);
  StoreRows(r, dst);
}

HWY_INLINE void InvDctDequantBlockSimd(const int16_t* src, int16_t* dst, const uint16_t* steps) {
  using namespace dct_simd;
  Rows r;
  LoadRows(src, r);
  InvDctRows(r, steps);
  StoreRows(r, dst);
}

HWY_INLINE void InvDctDequantLSBlockSimd(const int16_t* src, uint8_t* dst, int step,
                                         const uint16_t* steps) {
  using namespace dct_simd;
  Rows r;
  LoadRows(src, r);
  InvDctRows(r, steps);
  StoreShiftedRows(r, dst, step);
}

// Block quantiser and dequantiser, in place.
HWY_INLINE void QuantFwdBlockSimd(int16_t* block, const uint16_t* recip) {
  using namespace dct_simd;
  for (size_t k = 0; k < 8; ++k) {
    V32 v[kGroups];
    Widen(D32(), hn::LoadU(D16(), block + 8 * k), v);
    for (size_t g = 0; g < kGroups; ++g) {
      const size_t at = 8 * k + g * kLanes;
      hn::StoreU(Quantise(v[g], recip + at, false), DH(), block + at);
    }
  }
}

HWY_INLINE void QuantInvBlockSimd(int16_t* block, const uint16_t* steps) {
  using namespace dct_simd;
  Wide w;
  Rows r;
  LoadRows(block, r);
  Dequantise(r, steps, w);
  NarrowAll(w, r);
  StoreRows(r, block);
}

#else  // HWY_TARGET == HWY_SCALAR: the reference kernels under the same names

HWY_INLINE void FwdDctBlockSimd(const int16_t* src, int16_t* dst) { ref::FwdDct8x8(src, dst); }

HWY_INLINE void FwdDctQuantBlockSimd(const int16_t* src, int16_t* dst, const uint16_t* recip) {
  ref::FwdDct8x8(src, dst);
  ref::QuantFwdBlock(dst, recip);
}

HWY_INLINE void FwdDctQuantLSBlockSimd(const uint8_t* src, int step, int16_t* dst,
                                       const uint16_t* recip) {
  for (int r = 0; r < 8; ++r) ref::Sub128Row(src + static_cast<ptrdiff_t>(r) * step, dst + 8 * r, 8);
  ref::FwdDct8x8(dst, dst);
  ref::QuantFwdBlock(dst, recip);
}

HWY_INLINE void InvDctBlockSimd(const int16_t* src, int16_t* dst) { ref::InvDct8x8(src, dst); }

HWY_INLINE void InvDctDequantBlockSimd(const int16_t* src, int16_t* dst, const uint16_t* steps) {
  ref::QuantInvBlock(src, steps, dst);
  ref::InvDct8x8(dst, dst);
}

HWY_INLINE void InvDctDequantLSBlockSimd(const int16_t* src, uint8_t* dst, int step,
                                         const uint16_t* steps) {
  int16_t block[64];
  ref::QuantInvBlock(src, steps, block);
  ref::InvDct8x8(block, block);
  for (int r = 0; r < 8; ++r) ref::Add128Row(block + 8 * r, dst + static_cast<ptrdiff_t>(r) * step, 8);
}

HWY_INLINE void QuantFwdBlockSimd(int16_t* block, const uint16_t* recip) {
  ref::QuantFwdBlock(block, recip);
}

HWY_INLINE void QuantInvBlockSimd(int16_t* block, const uint16_t* steps) {
  ref::QuantInvBlock(block, steps, block);
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
