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
// - each row is lifted horizontally as soon as the vertical pipeline has finished
//   it (forward) or just before the pipeline first reads it (inverse), while it is
//   in cache; the rows are then moved into (or, first, out of) quadrant order with
//   the spare row. The out-of-place forms need no move: the pipeline reads source
//   rows into a ring of working rows and writes finished rows to the bands, one
//   pass over memory.
// That leaves about 4.5 (5/3) and 10 (9/7, 32s) instructions per sample on AVX2, and
// an in-place 5/3 level of a large tile bound by its two passes over memory.
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

#include <type_traits>

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
// SatTrunc32 on lanes: the x86 targets' conversion truncates inside [-2^31, 2^31)
// and saturates beyond (a positive NaN included); 2^31 itself and NaN then become
// INT32_MIN as in the reference.
template <class DF>
HWY_INLINE hn::Vec<hn::RebindToSigned<DF>> SatTrunc32V(DF df, hn::Vec<DF> v) {
  const hn::RebindToSigned<DF> di;
  const auto odd = hn::Or(hn::Eq(v, hn::Set(df, 2147483648.0f)), hn::IsNaN(v));
  return hn::IfThenElse(hn::RebindMask(di, odd), hn::Set(di, INT32_MIN), hn::ConvertTo(di, v));
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

// The steps of each arithmetic. Keep marks a scaling that does nothing.
struct Keep {};

template <class T>
struct Steps53 {
  using Predict = Predict53V<T>;
  using Update = Update53V<T>;
  using UnUpdate = UnUpdate53V<T>;
  using UnPredict = UnPredict53V<T>;
};

template <class S>
struct Steps97;
template <>
struct Steps97<int16_t> {
  using Alpha = StepQ14V<ref::kAlphaQ14, true>;
  using Beta = StepQ14V<ref::kBetaQ14, true>;
  using Gamma = StepQ14V<ref::kGammaQ14, true>;
  using Delta = StepQ14V<ref::kDeltaQ14, true>;
  using UnDelta = StepQ14V<ref::kDeltaQ14, false>;
  using UnGamma = StepQ14V<ref::kGammaQ14, false>;
  using UnBeta = StepQ14V<ref::kBetaQ14, false>;
  using UnAlpha = StepQ14V<ref::kAlphaQ14, false>;
  using Low = ScaleQ14V<ref::kInvKQ14>;
  using High = ScaleQ14V<ref::kKQ14>;
  using InvLow = ScaleQ14V<ref::kKQ14>;
  using InvHigh = ScaleQ14V<ref::kInvKQ14>;
  using Out = Keep;
};
template <>
struct Steps97<int32_t> {
  using Alpha = AlphaSV;
  using Beta = BetaSV;
  using Gamma = StepSV<ref::kGamma, true>;
  using Delta = StepSV<ref::kDelta, true>;
  using UnDelta = StepSV<ref::kDelta, false>;
  using UnGamma = StepSV<ref::kGamma, false>;
  using UnBeta = StepSV<ref::kBeta, false>;
  using UnAlpha = StepSV<ref::kAlpha, false>;
  using Low = ScaleOutSV<ref::kInvK>;
  using High = ScaleOutSV<ref::kK>;
  using InvLow = ScaleInSV<ref::kK>;
  using InvHigh = ScaleInSV<ref::kInvK>;
  using Out = OutSV;
};
template <>
struct Steps97<float> {
  using Alpha = StepFV<ref::kAlpha, true>;
  using Beta = StepFV<ref::kBeta, true>;
  using Gamma = StepFV<ref::kGamma, true>;
  using Delta = StepFV<ref::kDelta, true>;
  using UnDelta = StepFV<ref::kDelta, false>;
  using UnGamma = StepFV<ref::kGamma, false>;
  using UnBeta = StepFV<ref::kBeta, false>;
  using UnAlpha = StepFV<ref::kAlpha, false>;
  using Low = ScaleFV<ref::kInvK>;
  using High = ScaleFV<ref::kK>;
  using InvLow = ScaleFV<ref::kK>;
  using InvHigh = ScaleFV<ref::kInvK>;
  using Out = Keep;
};

template <class Unary, class S>
constexpr void (*UnaryFnOf())(S*, size_t) {
  if constexpr (std::is_same_v<Unary, Keep>) {
    return nullptr;
  } else {
    return UnaryRow<Unary, S>;
  }
}

template <class T>
constexpr Scheme<T> kFwd53 = {
    2, {StepRow<Predict53V<T>, T>, StepRow<Update53V<T>, T>}, {true, false}};
template <class T>
constexpr Scheme<T> kInv53 = {
    2, {StepRow<UnUpdate53V<T>, T>, StepRow<UnPredict53V<T>, T>}, {false, true}};

template <class S, class St = Steps97<S>>
constexpr Scheme<S> kFwd97 = {4,
                              {StepRow<typename St::Alpha, S>, StepRow<typename St::Beta, S>,
                               StepRow<typename St::Gamma, S>, StepRow<typename St::Delta, S>},
                              {true, false, true, false},
                              nullptr,
                              nullptr,
                              UnaryFnOf<typename St::Low, S>(),
                              UnaryFnOf<typename St::High, S>()};
template <class S, class St = Steps97<S>>
constexpr Scheme<S> kInv97 = {4,
                              {StepRow<typename St::UnDelta, S>, StepRow<typename St::UnGamma, S>,
                               StepRow<typename St::UnBeta, S>, StepRow<typename St::UnAlpha, S>},
                              {false, true, false, true},
                              UnaryFnOf<typename St::InvLow, S>(),
                              UnaryFnOf<typename St::InvHigh, S>(),
                              UnaryFnOf<typename St::Out, S>(),
                              UnaryFnOf<typename St::Out, S>()};

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

// Rows live in the image (ring 0) or, for the out-of-place forms, in a ring of
// `ring` rows of the working image that the pipeline cycles through: a row is in use
// from its load (feed r - 1) to its `done` (feed r + steps), so steps + 2 slots suffice.
template <class S>
struct PipelineRows {
  S* base;
  int step, n, ring;
  S* operator()(int j) const {
    j = j < 0 ? -j : j >= n ? 2 * (n - 1) - j : j;
    return RowPtr(base, step, ring ? j % ring : j);
  }
};
inline constexpr int kRing = 8;

template <class S, class Load, class Done>
void VerticalPipeline(const Scheme<S>& sch, S* img, int step, int w, int n, int p, int ring,
                      Load&& load, Done&& done) {
  const PipelineRows<S> row{img, step, n, ring};
  const size_t width = static_cast<size_t>(w);
  int loaded = 0;
  for (int f = 0; f < n + sch.steps; ++f) {
    for (; loaded < n && loaded <= f + 1; ++loaded) {
      load(loaded, row(loaded));
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
      done(r, row(r));
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
  RowMarks marks(h);
  if (h < Line::kSplitMin || !marks.ok()) {
    for (int x = 0; x < w; ++x) Line::Run(Strided<S>{img + x, step}, h, py, buf);
    for (int y = 0; y < h; ++y) horizontal(y);
    return;
  }
  VerticalPipeline(
      sch, img, step, w, h, py, 0, [](int, S*) {}, [&](int y, S*) { horizontal(y); });
  MoveRows(img, step, w, h, py, true, buf, marks);
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
  RowMarks marks(h);
  if (h < Line::kSplitMin || !marks.ok()) {
    for (int y = 0; y < h; ++y) horizontal(y);
    for (int x = 0; x < w; ++x) Line::Run(Strided<S>{img + x, step}, h, py, buf);
    return;
  }
  MoveRows(img, step, w, h, py, false, buf, marks);
  VerticalPipeline(
      sch, img, step, w, h, py, 0, [&](int y, S*) { horizontal(y); }, [](int, S*) {});
}

// One 2D level between an image and four bands in a single pass down the tile: the
// vertical pipeline loads each source row into a ring of working rows as it first
// needs it, and each finished row is lifted horizontally and cut into its two band
// rows (at (width + 1) / 2 whatever the origin, as the quadrant copy of the working
// image would cut it); the inverse assembles each row from its band rows and lifts it
// horizontally as the pipeline loads it, and stores each finished row. Tiles the
// pipeline or the split form does not take go through the whole working image.
template <class S, class Line, Transform2D<S> kLevel>
void FwdBands(const Scheme<S>& sch, const S* src, int src_step, S* const* band,
              const int* band_step, const KroiRect& r, uint8_t* buf) {
  const int w = r.width, h = r.height, px = r.x & 1, py = r.y & 1;
  if (w < Line::kSplitMin || h < Line::kSplitMin) {
    FwdBandsThroughImage<S, kLevel>(src, src_step, band, band_step, r, buf);
    return;
  }
  const int work_step = WorkStep<S>(w), wl = (w + 1) / 2, hl = (h + 1) / 2;
  uint8_t* line = buf + static_cast<ptrdiff_t>(work_step) * h;
  VerticalPipeline(
      sch, reinterpret_cast<S*>(buf), work_step, w, h, py, kRing,
      [&](int y, S* row) { memcpy(row, RowPtr(src, src_step, y), sizeof(S) * w); },
      [&](int y, S* row) {
        FwdRowSplit(sch, row, w, px, line);
        const int i = BandPlace(y, h, py), b = i < hl ? 0 : 1, bi = i < hl ? i : i - hl;
        memcpy(RowPtr(band[b], band_step[b], bi), row, sizeof(S) * wl);
        memcpy(RowPtr(band[b + 2], band_step[b + 2], bi), row + wl, sizeof(S) * (w - wl));
      });
}

template <class S, class Line, Transform2D<S> kLevel>
void InvBands(const Scheme<S>& sch, const S* const* band, const int* band_step, S* dst,
              int dst_step, const KroiRect& r, uint8_t* buf) {
  const int w = r.width, h = r.height, px = r.x & 1, py = r.y & 1;
  if (w < Line::kSplitMin || h < Line::kSplitMin) {
    InvBandsThroughImage<S, kLevel>(band, band_step, dst, dst_step, r, buf);
    return;
  }
  const int work_step = WorkStep<S>(w), wl = (w + 1) / 2, hl = (h + 1) / 2;
  uint8_t* line = buf + static_cast<ptrdiff_t>(work_step) * h;
  VerticalPipeline(
      sch, reinterpret_cast<S*>(buf), work_step, w, h, py, kRing,
      [&](int y, S* row) {
        const int i = BandPlace(y, h, py), b = i < hl ? 0 : 1, bi = i < hl ? i : i - hl;
        memcpy(row, RowPtr(band[b], band_step[b], bi), sizeof(S) * wl);
        memcpy(row + wl, RowPtr(band[b + 2], band_step[b + 2], bi), sizeof(S) * (w - wl));
        InvRowSplit(sch, row, w, px, line);
      },
      [&](int y, S* row) { memcpy(RowPtr(dst, dst_step, y), row, sizeof(S) * w); });
}

// ---------------------------------------------------------------------------------
// Region forms. They read the caller's samples around the region and extend nothing;
// every value is computed from the same operands as in the reference pipelines of
// ref/wavelet_ref.h, so each output equals the reference's (and the 2D kernel's).

// Column forms: the reference pipelines on vectors of adjacent columns, walking down
// the rows (the lanes are columns). Remaining columns go one by one.

template <class S>
struct VecOps53 {
  using D = hn::ScalableTag<S>;
  using V = hn::Vec<D>;
  static V Predict(V x, V a, V b) { return Predict53V<S>::Vec(D(), x, a, b); }
  static V Update(V x, V a, V b) { return Update53V<S>::Vec(D(), x, a, b); }
  static V UnUpdate(V x, V a, V b) { return UnUpdate53V<S>::Vec(D(), x, a, b); }
  static V UnPredict(V x, V a, V b) { return UnPredict53V<S>::Vec(D(), x, a, b); }
};

template <class S, class St = Steps97<S>>
struct VecOps97 {
  using D = hn::ScalableTag<S>;
  using V = hn::Vec<D>;
  using Sample = V;
  using Inter = V;
  static V Alpha(V x, V a, V b) { return St::Alpha::Vec(D(), x, a, b); }
  static V Beta(V x, V a, V b) { return St::Beta::Vec(D(), x, a, b); }
  static V Gamma(V x, V a, V b) { return St::Gamma::Vec(D(), x, a, b); }
  static V Delta(V x, V a, V b) { return St::Delta::Vec(D(), x, a, b); }
  static V UnDelta(V x, V a, V b) { return St::UnDelta::Vec(D(), x, a, b); }
  static V UnGamma(V x, V a, V b) { return St::UnGamma::Vec(D(), x, a, b); }
  static V UnBeta(V x, V a, V b) { return St::UnBeta::Vec(D(), x, a, b); }
  static V UnAlpha(V x, V a, V b) { return St::UnAlpha::Vec(D(), x, a, b); }
  static V Low(V v) { return St::Low::Vec(D(), v); }
  static V High(V v) { return St::High::Vec(D(), v); }
  static V InvLow(V v) { return St::InvLow::Vec(D(), v); }
  static V InvHigh(V v) { return St::InvHigh::Vec(D(), v); }
  static V Out(V v) {
    if constexpr (std::is_same_v<typename St::Out, Keep>) {
      return v;
    } else {
      return St::Out::Vec(D(), v);
    }
  }
};

// Row i of a group of adjacent columns: one vector.
template <class S>
struct StripLine {
  using T = std::remove_const_t<S>;
  using D = hn::ScalableTag<T>;
  S* base;
  ptrdiff_t step;  // bytes
  hn::Vec<D> operator[](ptrdiff_t i) const { return hn::LoadU(D(), ByteOffset(base, i * step)); }
  void Set(ptrdiff_t i, hn::Vec<D> v) const { hn::StoreU(v, D(), ByteOffset(base, i * step)); }
};

// The pipelines of ref::Fwd53Region and ref::Inv53Region.
template <class Op, class Src, class Dst>
HWY_INLINE void Fwd53Strip(const Src& x, const Dst& low, const Dst& high, int w, bool phase) {
  using V = typename Op::V;
  if (!phase) {
    V dprev = Op::Predict(x[-1], x[-2], x[0]);
    for (int k = 0; k < w; ++k) {
      const V d = Op::Predict(x[2 * k + 1], x[2 * k], x[2 * k + 2]);
      low.Set(k, Op::Update(x[2 * k], dprev, d));
      high.Set(k, d);
      dprev = d;
    }
    return;
  }
  V dprev = Op::Predict(x[0], x[-1], x[1]);
  high.Set(0, dprev);
  for (int k = 0; k + 1 < w; ++k) {
    const V d = Op::Predict(x[2 * k + 2], x[2 * k + 1], x[2 * k + 3]);
    low.Set(k, Op::Update(x[2 * k + 1], dprev, d));
    high.Set(k + 1, d);
    dprev = d;
  }
  low.Set(w - 1,
          Op::Update(x[2 * w - 1], dprev, Op::Predict(x[2 * w], x[2 * w - 1], x[2 * w + 1])));
}

template <class Op, class Src, class Dst>
HWY_INLINE void Inv53Strip(const Src& low, const Src& high, const Dst& y, int w, bool phase) {
  using V = typename Op::V;
  if (!phase) {
    V yprev = Op::UnUpdate(low[0], high[-1], high[0]);
    y.Set(0, yprev);
    for (int k = 0; k + 1 < w; ++k) {
      const V e = Op::UnUpdate(low[k + 1], high[k], high[k + 1]);
      y.Set(2 * k + 1, Op::UnPredict(high[k], yprev, e));
      y.Set(2 * k + 2, e);
      yprev = e;
    }
    y.Set(2 * w - 1, Op::UnPredict(high[w - 1], yprev, Op::UnUpdate(low[w], high[w - 1], high[w])));
    return;
  }
  V eprev = Op::UnUpdate(low[-1], high[-1], high[0]);
  for (int k = 0; k < w; ++k) {
    const V e = Op::UnUpdate(low[k], high[k], high[k + 1]);
    y.Set(2 * k, Op::UnPredict(high[k], eprev, e));
    y.Set(2 * k + 1, e);
    eprev = e;
  }
}

// The pipelines of ref::Fwd97Region and ref::Inv97Region (see there for the rounds).
template <class A, class Src, class Dst>
HWY_INLINE void Fwd97Strip(const Src& x, const Dst& low, const Dst& high, int w, bool phase) {
  using I = typename A::Inter;
  const int o = phase ? 1 : 0;
  const int s2_lo = 2 * o, s2_hi = 2 * w - 2 + 2 * o;
  auto xs = [&](int u) { return x[u - o]; };
  I d1_a = hn::Zero(typename A::D()), s1_a = d1_a, s1_b = d1_a, d2_a = d1_a, d2_b = d1_a;
  for (int j = s2_lo - 3; j <= s2_hi + 3; j += 2) {
    const I d1 = A::Alpha(xs(j), xs(j - 1), xs(j + 1));
    if (j - 1 >= s2_lo - 2) {
      s1_a = s1_b;
      s1_b = A::Beta(xs(j - 1), d1_a, d1);
    }
    if (j - 2 >= s2_lo - 1) {
      d2_a = d2_b;
      d2_b = A::Gamma(d1_a, s1_a, s1_b);
      if (j - 2 >= 1 && j - 2 <= 2 * w - 1) high.Set((j - 3) / 2, A::High(d2_b));
    }
    if (j - 3 >= s2_lo) low.Set((j - 3 - 2 * o) / 2, A::Low(A::Delta(s1_a, d2_a, d2_b)));
    d1_a = d1;
  }
}

template <class A, class Src, class Dst>
HWY_INLINE void Inv97Strip(const Src& low, const Src& high, const Dst& y, int w, bool phase) {
  using I = typename A::Inter;
  const int o = phase ? 1 : 0;
  I d2_a = A::InvHigh(high[-2]), s1_a = hn::Zero(typename A::D()), s1_b = s1_a, d1_a = s1_a,
    d1_b = s1_a, xe_a = s1_a, xe_b = s1_a;
  for (int e = -2; e <= 2 * w + 2; e += 2) {
    const I d2_b = A::InvHigh(high[e / 2]);
    s1_a = s1_b;
    s1_b = A::UnDelta(A::InvLow(low[e / 2 - o]), d2_a, d2_b);
    if (e >= 0) {
      d1_a = d1_b;
      d1_b = A::UnGamma(d2_a, s1_a, s1_b);
    }
    if (e >= 2) {
      xe_a = xe_b;
      xe_b = A::UnBeta(s1_a, d1_a, d1_b);
      if (e - 2 >= o && e - 2 <= 2 * w - 1 + o) y.Set(e - 2 - o, A::Out(xe_b));
    }
    if (e >= 4) y.Set(e - 3 - o, A::Out(A::UnAlpha(d1_a, xe_a, xe_b)));
    d2_a = d2_b;
  }
}

// Kernel: Fwd(src_line, low_line, high_line, n, phase), Inv(low_line, high_line,
// dst_line, n, phase) for either strip lines (vectors) or one reference column.
template <class Kernel, class S>
void FwdCols(const S* src, int src_step, S* low, int low_step, S* high, int high_step,
             KroiSize size, bool phase) {
  const size_t lanes = hn::Lanes(hn::ScalableTag<S>());
  size_t x = 0;
  for (; x + lanes <= static_cast<size_t>(size.width); x += lanes) {
    Kernel::template Fwd<true>(StripLine<const S>{src + x, src_step},
                               StripLine<S>{low + x, low_step}, StripLine<S>{high + x, high_step},
                               size.height, phase);
  }
  for (; x < static_cast<size_t>(size.width); ++x) {
    Kernel::template Fwd<false>(Strided<const S>{src + x, src_step}, Strided<S>{low + x, low_step},
                                Strided<S>{high + x, high_step}, size.height, phase);
  }
}
template <class Kernel, class S>
void InvCols(const S* low, int low_step, const S* high, int high_step, KroiSize size, S* dst,
             int dst_step, bool phase) {
  const size_t lanes = hn::Lanes(hn::ScalableTag<S>());
  size_t x = 0;
  for (; x + lanes <= static_cast<size_t>(size.width); x += lanes) {
    Kernel::template Inv<true>(StripLine<const S>{low + x, low_step},
                               StripLine<const S>{high + x, high_step},
                               StripLine<S>{dst + x, dst_step}, size.height, phase);
  }
  for (; x < static_cast<size_t>(size.width); ++x) {
    Kernel::template Inv<false>(Strided<const S>{low + x, low_step},
                                Strided<const S>{high + x, high_step},
                                Strided<S>{dst + x, dst_step}, size.height, phase);
  }
}

template <class S>
struct Cols53 {
  template <bool kVec, class Src, class Dst>
  static void Fwd(const Src& x, const Dst& low, const Dst& high, int n, bool phase) {
    if constexpr (kVec) {
      Fwd53Strip<VecOps53<S>>(x, low, high, n, phase);
    } else {
      ref::Fwd53Region<ref::Lift53<S>>(x, low, high, n, phase);
    }
  }
  template <bool kVec, class Src, class Dst>
  static void Inv(const Src& low, const Src& high, const Dst& y, int n, bool phase) {
    if constexpr (kVec) {
      Inv53Strip<VecOps53<S>>(low, high, y, n, phase);
    } else {
      ref::Inv53Region<ref::Lift53<S>>(low, high, y, n, phase);
    }
  }
};
template <class S>
struct Cols97 {
  template <bool kVec, class Src, class Dst>
  static void Fwd(const Src& x, const Dst& low, const Dst& high, int n, bool phase) {
    if constexpr (kVec) {
      Fwd97Strip<VecOps97<S>>(x, low, high, n, phase);
    } else {
      ref::Fwd97Region<D97<S>>(x, low, high, n, phase);
    }
  }
  template <bool kVec, class Src, class Dst>
  static void Inv(const Src& low, const Src& high, const Dst& y, int n, bool phase) {
    if constexpr (kVec) {
      Inv97Strip<VecOps97<S>>(low, high, y, n, phase);
    } else {
      ref::Inv97Region<D97<S>>(low, high, y, n, phase);
    }
  }
};

// Row forms: each row in chunks of up to kChunk outputs, in split form on the stack.
// E holds the even positions u = 2m and O the odd ones u = 2j + 1, where u counts
// from the first low-pass position (u = i + phase for sample i of the row); a step
// lifts a range of one half from the other half as it stands. The ranges are planned
// backwards from the outputs, so the chunk reads exactly the samples the reference
// pipeline reads.

struct Span {
  int lo, hi;  // inclusive; empty when lo > hi
};
inline Span Cover(Span a, Span b) {
  if (a.lo > a.hi) return b;
  if (b.lo > b.hi) return a;
  return {a.lo < b.lo ? a.lo : b.lo, a.hi > b.hi ? a.hi : b.hi};
}

template <class S>
struct SplitPlan {
  Span step[4];
  Span raw_e, raw_o;
  SplitPlan(const Scheme<S>& sch, Span out_e, Span out_o) {
    for (int t = sch.steps - 1; t >= 0; --t) {
      if (sch.odd[t]) {  // O[j] from E[j] and E[j + 1]
        step[t] = out_o;
        out_e = Cover(out_e, {out_o.lo, out_o.hi + 1});
      } else {  // E[m] from O[m - 1] and O[m]
        step[t] = out_e;
        out_o = Cover(out_o, {out_e.lo - 1, out_e.hi});
      }
    }
    raw_e = out_e;
    raw_o = out_o;
  }
  Span Shifted(Span s, int by) const { return {s.lo + by, s.hi + by}; }
};

inline constexpr int kChunk = 256;
inline constexpr int kChunkMargin = 8;

template <class S>
void LiftPlanned(const Scheme<S>& sch, const SplitPlan<S>& plan, int shift, S* E, S* O) {
  for (int t = 0; t < sch.steps; ++t) {
    const Span r = plan.Shifted(plan.step[t], shift);
    const size_t n = static_cast<size_t>(r.hi - r.lo + 1);
    if (sch.odd[t]) {
      sch.step[t](O + r.lo, O + r.lo, E + r.lo, E + r.lo + 1, n);
    } else {
      sch.step[t](E + r.lo, E + r.lo, O + r.lo - 1, O + r.lo, n);
    }
  }
}

// Forward: low[k] = E[k + o], high[k] = O[k] for k = 0..w-1.
template <class S>
void FwdRowChunks(const Scheme<S>& sch, const S* x, S* low, S* high, int w, int o) {
  S e_buf[kChunk + kChunkMargin], o_buf[kChunk + kChunkMargin];
  for (int k0 = 0; k0 < w; k0 += kChunk) {
    const int c = w - k0 < kChunk ? w - k0 : kChunk;
    const SplitPlan<S> plan(sch, {o, c - 1 + o}, {0, c - 1});
    // Positions u of the raw samples, relative to the chunk (u = 2 k0 is 0).
    const int u_lo =
        2 * plan.raw_e.lo < 2 * plan.raw_o.lo + 1 ? 2 * plan.raw_e.lo : 2 * plan.raw_o.lo + 1;
    const int u_hi =
        2 * plan.raw_e.hi > 2 * plan.raw_o.hi + 1 ? 2 * plan.raw_e.hi : 2 * plan.raw_o.hi + 1;
    const int base = (u_lo - 1) >> 1;  // the lowest index either half uses
    S* E = e_buf - base;
    S* O = o_buf - base;
    const S* xu = x + 2 * k0 - o;  // xu[u] is the sample at chunk position u
    const size_t count = static_cast<size_t>(u_hi - u_lo + 1);
    if ((u_lo & 1) == 0) {
      Deinterleave(xu + u_lo, count, E + u_lo / 2, O + u_lo / 2);
    } else {
      Deinterleave(xu + u_lo, count, O + (u_lo - 1) / 2, E + (u_lo + 1) / 2);
    }
    LiftPlanned(sch, plan, 0, E, O);
    ApplyUnary(sch.post_low, E + o, static_cast<size_t>(c));
    ApplyUnary(sch.post_high, O, static_cast<size_t>(c));
    memcpy(low + k0, E + o, sizeof(S) * c);
    memcpy(high + k0, O, sizeof(S) * c);
  }
}

// Inverse: E[m] = low[m - o], O[j] = high[j]; y[i] is position u = i + o.
template <class S>
void InvRowChunks(const Scheme<S>& sch, const S* low, const S* high, S* y, int w, int o) {
  S e_buf[kChunk + kChunkMargin], o_buf[kChunk + kChunkMargin];
  for (int k0 = 0; k0 < w; k0 += kChunk) {
    const int c = w - k0 < kChunk ? w - k0 : kChunk;
    const SplitPlan<S> plan(sch, {o, c - 1 + o}, {0, c - 1});
    S* E = e_buf - plan.raw_e.lo;
    S* O = o_buf - plan.raw_o.lo;
    const size_t ne = static_cast<size_t>(plan.raw_e.hi - plan.raw_e.lo + 1);
    const size_t no = static_cast<size_t>(plan.raw_o.hi - plan.raw_o.lo + 1);
    memcpy(E + plan.raw_e.lo, low + k0 + plan.raw_e.lo - o, sizeof(S) * ne);
    memcpy(O + plan.raw_o.lo, high + k0 + plan.raw_o.lo, sizeof(S) * no);
    ApplyUnary(sch.pre_low, E + plan.raw_e.lo, ne);
    ApplyUnary(sch.pre_high, O + plan.raw_o.lo, no);
    LiftPlanned(sch, plan, 0, E, O);
    ApplyUnary(sch.post_low, E + o, static_cast<size_t>(c));
    ApplyUnary(sch.post_high, O, static_cast<size_t>(c));
    if (o == 0) {
      Interleave(E, O, static_cast<size_t>(2 * c), y + 2 * k0);
    } else {
      Interleave(O, E + 1, static_cast<size_t>(2 * c), y + 2 * k0);
    }
  }
}

template <class S>
void FwdRows(const Scheme<S>& sch, const S* src, int src_step, S* low, int low_step, S* high,
             int high_step, KroiSize size, bool phase) {
  for (int y = 0; y < size.height; ++y) {
    FwdRowChunks(sch, RowPtr(src, src_step, y), RowPtr(low, low_step, y),
                 RowPtr(high, high_step, y), size.width, phase ? 1 : 0);
  }
}
template <class S>
void InvRows(const Scheme<S>& sch, const S* low, int low_step, const S* high, int high_step,
             KroiSize size, S* dst, int dst_step, bool phase) {
  for (int y = 0; y < size.height; ++y) {
    InvRowChunks(sch, RowPtr(low, low_step, y), RowPtr(high, high_step, y),
                 RowPtr(dst, dst_step, y), size.width, phase ? 1 : 0);
  }
}

// ---------------------------------------------------------------------------------
// Streaming column rows (ColLift / ColStep).

// 5/3: per column, every input is loaded before either output is stored, so the
// high row may be the previous high row.
template <class T>
void Fwd53LiftSimd(const T* x0, const T* x1, const T* x2, T* low, const T* dprev, T* high,
                   int width) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d), w = static_cast<size_t>(width);
  size_t i = 0;
  for (; i + lanes <= w; i += lanes) {
    const auto v0 = hn::LoadU(d, x0 + i), dp = hn::LoadU(d, dprev + i);
    const auto dv = Predict53V<T>::Vec(d, hn::LoadU(d, x1 + i), v0, hn::LoadU(d, x2 + i));
    const auto sv = Update53V<T>::Vec(d, v0, dp, dv);
    hn::StoreU(dv, d, high + i);
    hn::StoreU(sv, d, low + i);
  }
  ref::Fwd53LiftRow(x0 + i, x1 + i, x2 + i, low + i, dprev + i, high + i,
                    width - static_cast<int>(i));
}
template <class T>
void Inv53LiftSimd(const T* s, const T* dprev, const T* dcur, const T* xprev, T* odd, T* even,
                   int width) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d), w = static_cast<size_t>(width);
  size_t i = 0;
  for (; i + lanes <= w; i += lanes) {
    const auto dp = hn::LoadU(d, dprev + i);
    const auto e = UnUpdate53V<T>::Vec(d, hn::LoadU(d, s + i), dp, hn::LoadU(d, dcur + i));
    const auto o = UnPredict53V<T>::Vec(d, dp, hn::LoadU(d, xprev + i), e);
    hn::StoreU(e, d, even + i);
    hn::StoreU(o, d, odd + i);
  }
  ref::Inv53LiftRow(s + i, dprev + i, dcur + i, xprev + i, odd + i, even + i,
                    width - static_cast<int>(i));
}

// 9/7 32f: v cv - (a + b) cs, each product and the difference rounded (the first
// steps of the inverse).
template <const float& kCv, const float& kCs>
struct FoldFV {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V v, V a, V b) {
    return hn::Sub(hn::Mul(v, hn::Set(d, kCv)), hn::Mul(hn::Add(a, b), hn::Set(d, kCs)));
  }
  static float One(float v, float a, float b) { return v * kCv - (a + b) * kCs; }
};

// 9/7 in 2^-16: x +- ((c (a + b) + 2^15) >> 16) and (v cv + (a + b) cs + 2^15) >> 16
// kept at the sample width. 16s lanes widen to 32 bits, where the low 32 bits of the
// products fix the low 16 bits of the result; 32s lanes form the products in 64-bit
// lanes, even and odd lanes apart, and keep bits 16..47 of each sum.
// Bits 16..47 of v cv + s cs + 2^15 (kWithV) or of s cs + 2^15, per 32-bit lane.
template <bool kWithV, class D32, class V32 = hn::Vec<D32>>
HWY_INLINE V32 FoldQ16Lanes(D32 d, V32 v, int32_t cv, V32 s, int32_t cs) {
  const hn::RepartitionToWide<D32> d64;
  const hn::RebindToUnsigned<decltype(d64)> du64;
  auto sum = [&](V32 a, V32 b) {  // in the 64 bits of each even lane pair
    auto p = hn::Add(hn::MulEven(b, hn::Set(d, cs)), hn::Set(d64, int64_t{32768}));
    if constexpr (kWithV) p = hn::Add(hn::MulEven(a, hn::Set(d, cv)), p);
    return hn::BitCast(du64, p);
  };
  auto odd_down = [&](V32 a) { return hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(du64, a))); };
  const auto even = hn::ShiftRight<16>(sum(v, s));
  const auto odd = hn::ShiftLeft<16>(sum(odd_down(v), odd_down(s)));
  return hn::OddEven(hn::BitCast(d, odd), hn::BitCast(d, even));
}

template <class S, int32_t kC, bool kAdd>
struct AddQ16V {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V x, V a, V b) {
    if constexpr (std::is_same_v<S, int32_t>) {
      const auto t = FoldQ16Lanes<false>(d, x, 0, hn::Add(a, b), kC);
      return kAdd ? hn::Add(x, t) : hn::Sub(x, t);
    } else {
      return Widen16(d, x, a, b, [](auto d32, auto x32, auto a32, auto b32) {
        const auto t = hn::ShiftRight<16>(
            hn::Add(hn::Mul(hn::Add(a32, b32), hn::Set(d32, kC)), hn::Set(d32, 32768)));
        return kAdd ? hn::Add(x32, t) : hn::Sub(x32, t);
      });
    }
  }
  static S One(S x, S a, S b) {
    return kAdd ? ref::D97Q16<S>::Add(x, a, b, kC) : ref::D97Q16<S>::Sub(x, a, b, kC);
  }
};
template <class S, int32_t kCv, int32_t kCs>
struct FoldQ16V {
  template <class D, class V>
  static HWY_INLINE V Vec(D d, V v, V a, V b) {
    if constexpr (std::is_same_v<S, int32_t>) {
      return FoldQ16Lanes<true>(d, v, kCv, hn::Add(a, b), kCs);
    } else {
      return Widen16(d, v, a, b, [](auto d32, auto v32, auto a32, auto b32) {
        const auto p =
            hn::Add(hn::Mul(v32, hn::Set(d32, kCv)), hn::Mul(hn::Add(a32, b32), hn::Set(d32, kCs)));
        return hn::ShiftRight<16>(hn::Add(p, hn::Set(d32, 32768)));
      });
    }
  }
  static S One(S v, S a, S b) { return ref::D97Q16<S>::Fold(v, kCv, a, b, kCs); }
};

template <class S>
void Fwd97LiftSimd(const S* x0, const S* x1, const S* x2, S* lp, S* lc, S* hp2, S* hp, S* hc,
                   int width) {
  const size_t w = static_cast<size_t>(width);
  if constexpr (std::is_same_v<S, float>) {
    StepRow<StepFV<ref::kAlpha, true>>(hc, x1, x0, x2, w);
    StepRow<StepFV<ref::kBeta, true>>(lc, x0, hp, hc, w);
    StepRow<StepFV<ref::kGamma, true>>(hp, hp, lp, lc, w);
    StepRow<StepFV<ref::kDelta, true>>(lp, lp, hp2, hp, w);
    UnaryRow<ScaleFV<ref::kInvK>>(lp, w);
    UnaryRow<ScaleFV<ref::kK>>(hp2, w);
  } else {
    StepRow<AddQ16V<S, ref::kAlphaQ16, true>>(hc, x1, x0, x2, w);
    StepRow<AddQ16V<S, ref::kBetaQ16, true>>(lc, x0, hp, hc, w);
    StepRow<AddQ16V<S, ref::kGammaQ16, true>>(hp, hp, lp, lc, w);
    StepRow<FoldQ16V<S, ref::kInvKQ16, ref::kDeltaOverKQ16>>(lp, lp, hp2, hp, w);
    StepRow<FoldQ16V<S, ref::kKQ16, 0>>(hp2, hp2, hp2, hp2, w);
  }
}

template <class S>
void Inv97LiftSimd(const S* l, const S* hprev, const S* h, S* op, S* oc, S* ep2, S* ep, S* ec,
                   int width) {
  const size_t w = static_cast<size_t>(width);
  if constexpr (std::is_same_v<S, float>) {
    StepRow<FoldFV<ref::kK, ref::kDeltaOverK>>(ec, l, hprev, h, w);
    StepRow<FoldFV<ref::kInvK, ref::kGamma>>(oc, hprev, ep, ec, w);
    StepRow<StepFV<ref::kBeta, false>>(ep, ep, op, oc, w);
    StepRow<StepFV<ref::kAlpha, false>>(op, op, ep2, ep, w);
  } else {
    StepRow<FoldQ16V<S, ref::kKQ16, -ref::kDeltaOverKQ16>>(ec, l, hprev, h, w);
    StepRow<FoldQ16V<S, ref::kInvKQ16, -ref::kGammaQ16>>(oc, hprev, ep, ec, w);
    StepRow<AddQ16V<S, ref::kBetaQ16, false>>(ep, ep, op, oc, w);
    StepRow<AddQ16V<S, ref::kAlphaQ16, false>>(op, op, ep2, ep, w);
  }
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
