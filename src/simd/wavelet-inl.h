// SPDX-License-Identifier: BSD-3-Clause
// SIMD building blocks of the JPEG 2000 wavelet transforms, compiled once per target:
// lifting steps over whole rows, the split (de-interleaved) form of a line, the 2D
// level in place, and the streaming column rows. The one-lane scalar target uses the
// reference kernels of ref/wavelet_ref.h and wavelet_impl.h instead.
//
// Where the time goes. The reference 2D level lifts every column through the line
// buffer row by row and every row through it sample by sample; callgrind puts 85% of
// a 5/3 level and 75% of a 9/7 level in the horizontal pass (about 20 and 45
// instructions per sample). Here both directions become lifting steps over
// contiguous arrays:
// - vertically, a step lifts a whole row from its two neighbour rows (mirrored at
//   the tile's ends), and the steps run as a pipeline down the tile, each row
//   touched while its neighbours are still in cache;
// - horizontally, a row is de-interleaved into its low-pass and high-pass halves
//   (each with one slot of margin on both sides, filled by the whole-sample
//   symmetric extension before each step), so that a step lifts one half from the
//   other half shifted by one sample;
// - rows are moved into (or out of) quadrant order once, with the spare row.
// Every value is formed from the same operands by the same operations as in the
// reference (lifting steps are symmetric in their two neighbours, and the extension
// of a lifted signal is the lifted extension), so the results are identical.
//
// Lane arithmetic, exact against the reference:
// - 5/3 32s: lane adds wrap in 32 bits, shifts are arithmetic.
// - 5/3 16s stays in 16-bit lanes: the reference's 32-bit sums are only ever
//   shifted, and floor((a + b) / 2) = (a & b) + ((a ^ b) >> 1) never overflows;
//   floor((a + b + 2) / 4) = ceil(floor((a + b) / 2) / 2). Results wrap in 16 bits.
// - 9/7 16s (2^-14) widens each half to 32-bit lanes, where no sum or product of
//   16-bit samples wraps, and keeps the low 16 bits.
// - 9/7 32f and 32s: separate float adds and multiplies in the reference's order
//   (never a fused multiply-add); the 32s conversion back saturates as SatTrunc32.
// - Streaming 9/7 rows in 2^-16: 16s products keep the low 32 bits, which fix the
//   low 16 bits of the shifted result; 32s products are formed in 64-bit lanes.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_WAVELET_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_WAVELET_INL_H_
#undef KROJ_SRC_SIMD_WAVELET_INL_H_
#else
#define KROJ_SRC_SIMD_WAVELET_INL_H_
#endif

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "ref/wavelet_ref.h"
#include "wavelet_impl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

// ---------------------------------------------------------------------------------
// Lane arithmetic. A step maps (x, a, b) to the lifted x given its neighbours a and
// b; Vec works on vectors of slots, One on a single slot (row tails).

template <class V>
HWY_INLINE V FloorHalfSum(V a, V b) {  // floor((a + b) / 2), no overflow
  return hn::Add(hn::And(a, b), hn::ShiftRight<1>(hn::Xor(a, b)));
}

// 5/3 terms (a + b) >> 1 and (a + b + 2) >> 2 as the reference forms them.
template <class T>
struct Terms53 {
  template <class V>
  static HWY_INLINE V Half(V a, V b) {
    if constexpr (sizeof(T) == 2) return FloorHalfSum(a, b);
    return hn::ShiftRight<1>(hn::Add(a, b));
  }
  template <class D, class V>
  static HWY_INLINE V Quarter(D d, V a, V b) {
    if constexpr (sizeof(T) == 2) {
      const V h = FloorHalfSum(a, b);
      return hn::Add(hn::ShiftRight<1>(h), hn::And(h, hn::Set(d, T{1})));
    }
    return hn::ShiftRight<2>(hn::Add(hn::Add(a, b), hn::Set(d, T{2})));
  }
};

template <class T>
struct Predict53V {
  template <class D, class V>
  static HWY_INLINE V Vec(D, V x, V a, V b) {
    return hn::Sub(x, Terms53<T>::Half(a, b));
  }
  static T One(T x, T a, T b) { return ref::Predict53(x, a, b); }
};
template <class T>
struct Update53V {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    return hn::Add(x, Terms53<T>::Quarter(d, a, b));
  }
  static T One(T x, T a, T b) { return ref::Update53(x, a, b); }
};
template <class T>
struct UnUpdate53V {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    return hn::Sub(x, Terms53<T>::Quarter(d, a, b));
  }
  static T One(T x, T a, T b) { return ref::UnUpdate53(x, a, b); }
};
template <class T>
struct UnPredict53V {
  template <class D, class V>
  static HWY_INLINE V Vec(D, V x, V a, V b) {
    return hn::Add(x, Terms53<T>::Half(a, b));
  }
  static T One(T x, T a, T b) { return ref::UnPredict53(x, a, b); }
};

// 9/7, 16s in 2^-14: each half widened; x +- ((c (a + b) + 8192) >> 14) and the
// scalings (v c + 8192) >> 14, keeping the low 16 bits.
template <class D16, class F>
HWY_INLINE hn::Vec<D16> Widen16(D16 d16, hn::Vec<D16> x, hn::Vec<D16> a, hn::Vec<D16> b, F f) {
  const hn::Half<D16> dh;
  const hn::RepartitionToWide<D16> d32;
  auto lo = [&](hn::Vec<D16> v) { return hn::PromoteTo(d32, hn::LowerHalf(dh, v)); };
  auto hi = [&](hn::Vec<D16> v) { return hn::PromoteTo(d32, hn::UpperHalf(dh, v)); };
  auto keep16 = [&](hn::Vec<decltype(d32)> v) {
    return hn::DemoteTo(dh, hn::ShiftRight<16>(hn::ShiftLeft<16>(v)));
  };
  return hn::Combine(d16, keep16(f(d32, hi(x), hi(a), hi(b))), keep16(f(d32, lo(x), lo(a), lo(b))));
}

template <int32_t kC, bool kAdd>
struct StepQ14V {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    return Widen16(d, x, a, b, [](auto d32, auto x32, auto a32, auto b32) {
      const auto t = hn::ShiftRight<14>(
          hn::Add(hn::Mul(hn::Set(d32, kC), hn::Add(a32, b32)), hn::Set(d32, 8192)));
      return kAdd ? hn::Add(x32, t) : hn::Sub(x32, t);
    });
  }
  static int16_t One(int16_t x, int16_t a, int16_t b) {
    return kAdd ? ref::D97Q14::Add(x, a, b, kC) : ref::D97Q14::Sub(x, a, b, kC);
  }
};
template <int32_t kC>
struct ScaleQ14V {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x) {
    return Widen16(d, x, x, x, [](auto d32, auto x32, auto, auto) {
      return hn::ShiftRight<14>(hn::Add(hn::Mul(x32, hn::Set(d32, kC)), hn::Set(d32, 8192)));
    });
  }
  static int16_t One(int16_t x) { return ref::D97Q14::Scale(x, kC); }
};

// 9/7 32f: x +- (a + b) c, three rounded operations; scalings one product.
template <const float& kC, bool kAdd>
struct StepFV {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    const V t = hn::Mul(hn::Add(a, b), hn::Set(d, kC));
    return kAdd ? hn::Add(x, t) : hn::Sub(x, t);
  }
  static float One(float x, float a, float b) {
    return kAdd ? ref::D97Float::Add(x, a, b, kC) : ref::D97Float::Sub(x, a, b, kC);
  }
};
template <const float& kC>
struct ScaleFV {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x) {
    return hn::Mul(x, hn::Set(d, kC));
  }
  static float One(float x) { return x * kC; }
};

// 9/7 32s: slots hold raw samples or the bits of lifted floats (see D97Float32s).
// SatTrunc32 on lanes: truncation inside [-2^31, 2^31), 2^31 itself and NaN to
// INT32_MIN, beyond to the nearer limit.
template <class DF>
HWY_INLINE hn::Vec<hn::RebindToSigned<DF>> SatTrunc32V(DF df, hn::Vec<DF> v) {
  const hn::RebindToSigned<DF> di;
  const auto big = hn::Set(df, 2147483648.0f);
  const auto inside = hn::RebindMask(di, hn::Lt(v, big));
  const auto above = hn::RebindMask(di, hn::Gt(v, big));
  const auto below = hn::RebindMask(di, hn::Lt(v, hn::Neg(big)));
  const auto limit = hn::IfThenElse(above, hn::Set(di, INT32_MAX), hn::Set(di, INT32_MIN));
  const auto r = hn::IfThenElse(inside, hn::ConvertTo(di, v), limit);
  return hn::IfThenElse(below, hn::Set(di, INT32_MIN), r);
}

template <class D>
HWY_INLINE hn::Vec<hn::Rebind<float, D>> AsF(D, hn::Vec<D> v) {
  return hn::BitCast(hn::Rebind<float, D>(), v);
}

struct AlphaSV {  // raw x, raw a, raw b -> float: F(x) + F(a + b wrapped) alpha
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    const hn::Rebind<float, D> df;
    const auto t = hn::Mul(hn::ConvertTo(df, hn::Add(a, b)), hn::Set(df, ref::kAlpha));
    return hn::BitCast(d, hn::Add(hn::ConvertTo(df, x), t));
  }
  static int32_t One(int32_t x, int32_t a, int32_t b) {
    return ref::D97Float32s::Put(ref::D97Float32s::Alpha(x, a, b));
  }
};
struct BetaSV {  // raw x, float a, float b -> float
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    const hn::Rebind<float, D> df;
    const auto t = hn::Mul(hn::Add(AsF(d, a), AsF(d, b)), hn::Set(df, ref::kBeta));
    return hn::BitCast(d, hn::Add(hn::ConvertTo(df, x), t));
  }
  static int32_t One(int32_t x, int32_t a, int32_t b) {
    using A = ref::D97Float32s;
    return A::Put(A::Beta(x, A::Get(a), A::Get(b)));
  }
};
template <const float& kC, bool kAdd>
struct StepSV {  // floats
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    const hn::Rebind<float, D> df;
    return hn::BitCast(d, StepFV<kC, kAdd>::Vec(df, AsF(d, x), AsF(d, a), AsF(d, b)));
  }
  static int32_t One(int32_t x, int32_t a, int32_t b) {
    using A = ref::D97Float32s;
    return A::Put(StepFV<kC, kAdd>::One(A::Get(x), A::Get(a), A::Get(b)));
  }
};
template <const float& kC>
struct ScaleOutSV {  // float -> raw: SatTrunc32(v c)
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x) {
    const hn::Rebind<float, D> df;
    return SatTrunc32V(df, hn::Mul(AsF(d, x), hn::Set(df, kC)));
  }
  static int32_t One(int32_t x) { return ref::SatTrunc32(ref::D97Float32s::Get(x) * kC); }
};
template <const float& kC>
struct ScaleInSV {  // raw -> float: F(v) c
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x) {
    const hn::Rebind<float, D> df;
    return hn::BitCast(d, hn::Mul(hn::ConvertTo(df, x), hn::Set(df, kC)));
  }
  static int32_t One(int32_t x) { return ref::D97Float32s::Put(static_cast<float>(x) * kC); }
};
struct OutSV {  // float -> raw: SatTrunc32(v)
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x) {
    return SatTrunc32V(hn::Rebind<float, D>(), AsF(d, x));
  }
  static int32_t One(int32_t x) { return ref::SatTrunc32(ref::D97Float32s::Get(x)); }
};

// ---------------------------------------------------------------------------------
// Row kernels on caller memory (any byte address: unaligned loads and stores, the
// tail through memcpy). out may be x (lifting in place) but no other input.

template <class Step, class S>
HWY_NOINLINE void StepRow(S* out, const S* x, const S* a, const S* b, size_t n) {
  const hn::ScalableTag<S> d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const auto v = Step::Vec(d, hn::LoadU(d, x + i), hn::LoadU(d, a + i), hn::LoadU(d, b + i));
    hn::StoreU(v, d, out + i);
  }
  for (; i < n; ++i) ref::St(out + i, Step::One(ref::Ld(x + i), ref::Ld(a + i), ref::Ld(b + i)));
}

template <class Unary, class S>
HWY_NOINLINE void UnaryRow(S* x, size_t n) {
  const hn::ScalableTag<S> d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) hn::StoreU(Unary::Vec(d, hn::LoadU(d, x + i)), d, x + i);
  for (; i < n; ++i) ref::St(x + i, Unary::One(ref::Ld(x + i)));
}

// even[k] = src[2k], odd[k] = src[2k + 1] for a line of n samples.
template <class S>
HWY_NOINLINE void Deinterleave(const S* src, size_t n, S* even, S* odd) {
  const hn::ScalableTag<S> d;
  const size_t lanes = hn::Lanes(d);
  size_t k = 0;
  for (; 2 * (k + lanes) <= n; k += lanes) {
    hn::Vec<decltype(d)> e, o;
    hn::LoadInterleaved2(d, src + 2 * k, e, o);
    hn::StoreU(e, d, even + k);
    hn::StoreU(o, d, odd + k);
  }
  for (; 2 * k < n; ++k) {
    ref::St(even + k, ref::Ld(src + 2 * k));
    if (2 * k + 1 < n) ref::St(odd + k, ref::Ld(src + 2 * k + 1));
  }
}

// The reverse: dst[2k] = even[k], dst[2k + 1] = odd[k].
template <class S>
HWY_NOINLINE void Interleave(const S* even, const S* odd, size_t n, S* dst) {
  const hn::ScalableTag<S> d;
  const size_t lanes = hn::Lanes(d);
  size_t k = 0;
  for (; 2 * (k + lanes) <= n; k += lanes) {
    hn::StoreInterleaved2(hn::LoadU(d, even + k), hn::LoadU(d, odd + k), d, dst + 2 * k);
  }
  for (; 2 * k < n; ++k) {
    ref::St(dst + 2 * k, ref::Ld(even + k));
    if (2 * k + 1 < n) ref::St(dst + 2 * k + 1, ref::Ld(odd + k));
  }
}

// ---------------------------------------------------------------------------------
// Lifting schemes: the steps of a direction in order, each with the parity of the
// positions it lifts (odd = high-pass), and the per-parity scalings before the
// first step and after the last (null where the arithmetic has none).

template <class S>
struct Scheme {
  using StepFn = void (*)(S*, const S*, const S*, const S*, size_t);
  using UnaryFn = void (*)(S*, size_t);
  int steps;
  StepFn step[4];
  bool odd[4];
  UnaryFn pre_low, pre_high, post_low, post_high;
};

template <class T>
constexpr Scheme<T> kFwd53 = {2, {StepRow<Predict53V<T>, T>, StepRow<Update53V<T>, T>}, {true, false}};
template <class T>
constexpr Scheme<T> kInv53 = {2, {StepRow<UnUpdate53V<T>, T>, StepRow<UnPredict53V<T>, T>}, {false, true}};

constexpr Scheme<int16_t> kFwd97Q14 = {
    4,
    {StepRow<StepQ14V<ref::kAlphaQ14, true>, int16_t>, StepRow<StepQ14V<ref::kBetaQ14, true>, int16_t>,
     StepRow<StepQ14V<ref::kGammaQ14, true>, int16_t>, StepRow<StepQ14V<ref::kDeltaQ14, true>, int16_t>},
    {true, false, true, false},
    nullptr,
    nullptr,
    UnaryRow<ScaleQ14V<ref::kInvKQ14>, int16_t>,
    UnaryRow<ScaleQ14V<ref::kKQ14>, int16_t>};
constexpr Scheme<int16_t> kInv97Q14 = {
    4,
    {StepRow<StepQ14V<ref::kDeltaQ14, false>, int16_t>, StepRow<StepQ14V<ref::kGammaQ14, false>, int16_t>,
     StepRow<StepQ14V<ref::kBetaQ14, false>, int16_t>, StepRow<StepQ14V<ref::kAlphaQ14, false>, int16_t>},
    {false, true, false, true},
    UnaryRow<ScaleQ14V<ref::kKQ14>, int16_t>,
    UnaryRow<ScaleQ14V<ref::kInvKQ14>, int16_t>,
    nullptr,
    nullptr};

constexpr Scheme<int32_t> kFwd97S = {
    4,
    {StepRow<AlphaSV, int32_t>, StepRow<BetaSV, int32_t>, StepRow<StepSV<ref::kGamma, true>, int32_t>,
     StepRow<StepSV<ref::kDelta, true>, int32_t>},
    {true, false, true, false},
    nullptr,
    nullptr,
    UnaryRow<ScaleOutSV<ref::kInvK>, int32_t>,
    UnaryRow<ScaleOutSV<ref::kK>, int32_t>};
constexpr Scheme<int32_t> kInv97S = {
    4,
    {StepRow<StepSV<ref::kDelta, false>, int32_t>, StepRow<StepSV<ref::kGamma, false>, int32_t>,
     StepRow<StepSV<ref::kBeta, false>, int32_t>, StepRow<StepSV<ref::kAlpha, false>, int32_t>},
    {false, true, false, true},
    UnaryRow<ScaleInSV<ref::kK>, int32_t>,
    UnaryRow<ScaleInSV<ref::kInvK>, int32_t>,
    UnaryRow<OutSV, int32_t>,
    UnaryRow<OutSV, int32_t>};

constexpr Scheme<float> kFwd97F = {
    4,
    {StepRow<StepFV<ref::kAlpha, true>, float>, StepRow<StepFV<ref::kBeta, true>, float>,
     StepRow<StepFV<ref::kGamma, true>, float>, StepRow<StepFV<ref::kDelta, true>, float>},
    {true, false, true, false},
    nullptr,
    nullptr,
    UnaryRow<ScaleFV<ref::kInvK>, float>,
    UnaryRow<ScaleFV<ref::kK>, float>};
constexpr Scheme<float> kInv97F = {
    4,
    {StepRow<StepFV<ref::kDelta, false>, float>, StepRow<StepFV<ref::kGamma, false>, float>,
     StepRow<StepFV<ref::kBeta, false>, float>, StepRow<StepFV<ref::kAlpha, false>, float>},
    {false, true, false, true},
    UnaryRow<ScaleFV<ref::kK>, float>,
    UnaryRow<ScaleFV<ref::kInvK>, float>,
    nullptr,
    nullptr};

template <class S>
HWY_INLINE void ApplyUnary(void (*fn)(S*, size_t), S* x, size_t n) {
  if (fn != nullptr && n > 0) fn(x, n);
}

// ---------------------------------------------------------------------------------
// One line in split form: L holds the nl low-pass samples (positions 2k + p of a
// line of n whose first sample has parity p), H the nh high-pass ones (2k + 1 - p),
// each with one free slot before and after. A high-pass sample's neighbours are
// L[k - p] and L[k - p + 1], a low-pass one's H[k + p - 1] and H[k + p]; before each
// step the slots beyond the ends of the neighbour half receive the mirrored samples
// (whole-sample symmetric extension of the interleaved line).

// The index in [0, count) of half-index i of a half whose position 0 is at pos0.
inline int MirroredHalfIndex(int i, int pos0, int n) {
  const int period = 2 * (n - 1);
  int j = (2 * i + pos0) % period;
  if (j < 0) j += period;
  if (j >= n) j = period - j;
  return (j - pos0) / 2;
}

template <class S>
inline void FillMargins(S* y, int ny, int pos0, int n) {
  ref::St(y - 1, ref::Ld(y + MirroredHalfIndex(-1, pos0, n)));
  ref::St(y + ny, ref::Ld(y + MirroredHalfIndex(ny, pos0, n)));
}

template <class S>
void LiftSplit(const Scheme<S>& sch, S* L, S* H, int n, int p) {
  const int nl = (n + 1 - p) / 2, nh = n - nl;
  for (int t = 0; t < sch.steps; ++t) {
    if (sch.odd[t]) {
      FillMargins(L, nl, p, n);
      sch.step[t](H, H, L - p, L - p + 1, static_cast<size_t>(nh));
    } else {
      FillMargins(H, nh, 1 - p, n);
      sch.step[t](L, L, H + p - 1, H + p, static_cast<size_t>(nl));
    }
  }
}

// Line-buffer layout of the split form: n + 4 slots, which the work buffer of the
// in-place 2D forms always holds for lines that go through it.
template <class S>
struct SplitLine {
  int nl, nh;
  S* L;
  S* H;
  SplitLine(uint8_t* buf, int n, int p)
      : nl((n + 1 - p) / 2), nh(n - nl), L(reinterpret_cast<S*>(buf) + 1), H(L + nl + 2) {}
};

// Forward over a row of n >= 2 samples in place: split, lift, scale, and the halves
// back low-pass first (the in-place quadrant layout).
template <class S>
void FwdRowSplit(const Scheme<S>& sch, S* row, int n, int p, uint8_t* buf) {
  const SplitLine<S> s(buf, n, p);
  Deinterleave(row, static_cast<size_t>(n), p ? s.H : s.L, p ? s.L : s.H);
  LiftSplit(sch, s.L, s.H, n, p);
  ApplyUnary(sch.post_low, s.L, s.nl);
  ApplyUnary(sch.post_high, s.H, s.nh);
  memcpy(row, s.L, sizeof(S) * s.nl);
  memcpy(row + s.nl, s.H, sizeof(S) * s.nh);
}

// Inverse over a row in quadrant layout, back to natural order in place.
template <class S>
void InvRowSplit(const Scheme<S>& sch, S* row, int n, int p, uint8_t* buf) {
  const SplitLine<S> s(buf, n, p);
  memcpy(s.L, row, sizeof(S) * s.nl);
  memcpy(s.H, row + s.nl, sizeof(S) * s.nh);
  ApplyUnary(sch.pre_low, s.L, s.nl);
  ApplyUnary(sch.pre_high, s.H, s.nh);
  LiftSplit(sch, s.L, s.H, n, p);
  ApplyUnary(sch.post_low, s.L, s.nl);
  ApplyUnary(sch.post_high, s.H, s.nh);
  Interleave(p ? s.H : s.L, p ? s.L : s.H, static_cast<size_t>(n), row);
}

// ---------------------------------------------------------------------------------
// Vertical passes over whole rows of a tile of n >= 2 rows (first row parity p),
// rows mirrored at both ends. Step t lifts row r at feed r + t, after step t - 1 has
// lifted rows r - 1 and r + 1 (at feeds r - 1 + t - 1 and r + t, the latter earlier
// in the same feed); a row's scaling and `done` follow at feed r + steps, when no
// step reads it any more. `load(r)` runs before any step reads row r.

template <class S, class Load, class Done>
void VerticalPipeline(const Scheme<S>& sch, S* img, int step, int w, int n, int p, Load&& load, Done&& done) {
  const TileRows<S> row{img, step, n};
  const size_t width = static_cast<size_t>(w);
  int loaded = 0;
  for (int f = 0; f < n + sch.steps; ++f) {
    for (; loaded < n && loaded <= f + 1; ++loaded) {
      load(loaded);
      ApplyUnary(ref::IsOdd(loaded, p) ? sch.pre_high : sch.pre_low, row(loaded), width);
    }
    for (int t = 0; t < sch.steps; ++t) {
      const int r = f - t;
      if (r < 0 || r >= n || ref::IsOdd(r, p) != sch.odd[t]) continue;
      sch.step[t](row(r), row(r), row(r - 1), row(r + 1), width);
    }
    const int r = f - sch.steps;
    if (r >= 0) {
      ApplyUnary(ref::IsOdd(r, p) ? sch.post_high : sch.post_low, row(r), width);
      done(r);
    }
  }
}

// One 2D level in place. Line is the reference's one-line pass for the short lines
// that have no split form (Line::kSplitMin), and for the vertical pass of tiles too
// short or too tall for the row pipeline.
template <class S, class Line>
void Fwd2D(const Scheme<S>& sch, S* img, int step, const KroiRect& r, uint8_t* buf) {
  const int w = r.width, h = r.height, px = r.x & 1, py = r.y & 1;
  if (w < 1 || h < 1) return;
  auto horizontal = [&](int y) {
    S* row = RowPtr(img, step, y);
    if (w < Line::kSplitMin) {
      Line::Run(Contig<S>{row}, w, px, buf);
    } else {
      FwdRowSplit(sch, row, w, px, buf);
    }
  };
  if (h < Line::kSplitMin || h > kMaxRowMoves) {
    for (int x = 0; x < w; ++x) Line::Run(Strided<S>{img + x, step}, h, py, buf);
    for (int y = 0; y < h; ++y) horizontal(y);
    return;
  }
  VerticalPipeline(sch, img, step, w, h, py, [](int) {}, horizontal);
  MoveRows(img, step, w, h, py, true, buf);
}

template <class S, class Line>
void Inv2D(const Scheme<S>& sch, S* img, int step, const KroiRect& r, uint8_t* buf) {
  const int w = r.width, h = r.height, px = r.x & 1, py = r.y & 1;
  if (w < 1 || h < 1) return;
  auto horizontal = [&](int y) {
    S* row = RowPtr(img, step, y);
    if (w < Line::kSplitMin) {
      Line::Run(Contig<S>{row}, w, px, buf);
    } else {
      InvRowSplit(sch, row, w, px, buf);
    }
  };
  if (h < Line::kSplitMin || h > kMaxRowMoves) {
    for (int y = 0; y < h; ++y) horizontal(y);
    for (int x = 0; x < w; ++x) Line::Run(Strided<S>{img + x, step}, h, py, buf);
    return;
  }
  MoveRows(img, step, w, h, py, false, buf);
  VerticalPipeline(sch, img, step, w, h, py, horizontal, [](int) {});
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
