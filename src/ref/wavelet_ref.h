// SPDX-License-Identifier: BSD-3-Clause
// Reference lifting arithmetic of the JPEG 2000 wavelet transforms (T.800 F.3.8 and
// F.4.8: the reversible 5/3 and the irreversible 9/7 in lifting form) and the plain
// scalar kernels built on it: the in-place line kernels of the 2D transforms, the
// region kernels that read outside their region, and the streaming column rows.
//
// Positions follow the reference grid: an even position is low-pass, an odd one
// high-pass. For a signal x, d[n] is made from x[2n+1] and s[n] from x[2n].
//
// 5/3, exact integers (>> is an arithmetic shift):
//   predict  d[n] = x[2n+1] - ((x[2n] + x[2n+2]) >> 1)
//   update   s[n] = x[2n] + ((d[n-1] + d[n] + 2) >> 2)
// 32s sums wrap in 32 bits; 16s sums are exact in 32 bits and every result is
// kept as its low 16 bits, which is the value any later step reads.
//
// 9/7, four lifting steps and a scaling:
//   d1 = x_odd  + alpha (x_even + x_even')      s1 = x_even + beta  (d1 + d1')
//   d2 = d1     + gamma (s1 + s1')              s2 = s1     + delta (d2 + d2')
//   low = s2 / K, high = d2 K
// The inverse scales first (low by K, high by 1/K) and subtracts the same terms in
// reverse order. Three arithmetics are used (see D97Q14, D97Float32s, D97Float).
#ifndef KROJ_SRC_REF_WAVELET_REF_H_
#define KROJ_SRC_REF_WAVELET_REF_H_

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <bit>

#include "kro_base.h"

namespace kro::ref {

// Caller rows and work buffers may start at any byte, so samples move by memcpy
// (a single unaligned move once compiled).
template <class T>
inline T Ld(const T* p) {
  T v;
  memcpy(&v, p, sizeof(T));
  return v;
}
template <class T>
inline void St(T* p, T v) {
  memcpy(p, &v, sizeof(T));
}

// A line of samples a fixed number of bytes apart: a column (the row step) or a row
// (the sample size). Index i may be negative or beyond the line for the region forms,
// which read the caller's neighbouring samples.
template <class T>
struct Strided {
  T* base;
  ptrdiff_t step;  // bytes
  T* Ptr(ptrdiff_t i) const { return ByteOffset(base, i * step); }
  T operator[](ptrdiff_t i) const { return Ld(Ptr(i)); }
  void Set(ptrdiff_t i, T v) const { St(Ptr(i), v); }
};

// The same for consecutive samples, so that row loops compile to plain moves.
template <class T>
struct Contig {
  T* base;
  T* Ptr(ptrdiff_t i) const { return base + i; }
  T operator[](ptrdiff_t i) const { return Ld(base + i); }
  void Set(ptrdiff_t i, T v) const { St(base + i, v); }
};

// ---------------------------------------------------------------------------------
// 5/3 lifting steps on one sample. T is int16_t or int32_t; the result is the
// stored value (the low bits of the 32-bit result).

template <class T>
constexpr T Predict53(T x_odd, T x_a, T x_b) {
  return static_cast<T>(SubWrap32(x_odd, Sra(AddWrap32(x_a, x_b), 1)));
}
template <class T>
constexpr T Update53(T x_even, T d_a, T d_b) {
  return static_cast<T>(AddWrap32(x_even, Sra(AddWrap32(AddWrap32(d_a, d_b), 2), 2)));
}
template <class T>
constexpr T UnUpdate53(T s, T d_a, T d_b) {
  return static_cast<T>(SubWrap32(s, Sra(AddWrap32(AddWrap32(d_a, d_b), 2), 2)));
}
template <class T>
constexpr T UnPredict53(T d, T x_a, T x_b) {
  return static_cast<T>(AddWrap32(d, Sra(AddWrap32(x_a, x_b), 1)));
}

// Forward 5/3 over a line of n >= 3 samples in a line buffer, first sample of
// parity p, already extended by 2 - p samples on the left and ((p + n) & 1) + 1 on
// the right. q walks the even positions; each round predicts the odd sample after q
// and updates q. For an odd count the last round predicts one discarded sample in
// the right extension.
template <class T>
inline void Fwd53Line(T* data, int n, int p) {
  T* q = data + p;
  St(q - 1, Predict53(Ld(q - 1), Ld(q - 2), Ld(q)));
  for (int c = n - p; c >= 1; c -= 2, q += 2) {
    St(q + 1, Predict53(Ld(q + 1), Ld(q), Ld(q + 2)));
    St(q, Update53(Ld(q), Ld(q - 1), Ld(q + 1)));
  }
}

// Inverse 5/3 over an interleaved line of n >= 3 coefficients, extended by p + 1 on
// the left and 1 (p + n odd) or 2 (p + n even) on the right. q walks the even
// positions from the one at or before the line start; each round restores the next
// even sample, then the odd one between. When p + n is odd the round that would
// start at c == 1 only produces samples past the line (and would read one beyond
// the line buffer), so the loop stops before it.
template <class T>
inline void Inv53Line(T* data, int n, int p) {
  T* q = data - p;
  St(q, UnUpdate53(Ld(q), Ld(q - 1), Ld(q + 1)));
  for (int c = n + p; c > 1; c -= 2, q += 2) {
    St(q + 2, UnUpdate53(Ld(q + 2), Ld(q + 1), Ld(q + 3)));
    St(q + 1, UnPredict53(Ld(q + 1), Ld(q), Ld(q + 2)));
  }
}

// Whole-row 5/3 steps for the vertical passes of the 2D transforms: row x is lifted
// in place, every column at once, from its neighbour rows a and b.
template <class T>
inline void Predict53Row(T* x, const T* a, const T* b, int w) {
  for (int i = 0; i < w; ++i) St(x + i, Predict53(Ld(x + i), Ld(a + i), Ld(b + i)));
}
template <class T>
inline void Update53Row(T* x, const T* a, const T* b, int w) {
  for (int i = 0; i < w; ++i) St(x + i, Update53(Ld(x + i), Ld(a + i), Ld(b + i)));
}
template <class T>
inline void UnUpdate53Row(T* x, const T* a, const T* b, int w) {
  for (int i = 0; i < w; ++i) St(x + i, UnUpdate53(Ld(x + i), Ld(a + i), Ld(b + i)));
}
template <class T>
inline void UnPredict53Row(T* x, const T* a, const T* b, int w) {
  for (int i = 0; i < w; ++i) St(x + i, UnPredict53(Ld(x + i), Ld(a + i), Ld(b + i)));
}

// 5/3 region kernels: one band row (or column) of w outputs. They read the caller's
// samples around the region and extend nothing. Every intermediate value, stored or
// not, is kept at the sample width, so each output equals the 2D kernel's value at
// the same position. Op supplies the steps on a value V: Lift53<T> on one sample,
// or a group of columns at once (see wavelet_impl.h).
template <class T>
struct Lift53 {
  using V = T;
  static constexpr T Predict(T x, T a, T b) { return Predict53(x, a, b); }
  static constexpr T Update(T x, T a, T b) { return Update53(x, a, b); }
  static constexpr T UnUpdate(T x, T a, T b) { return UnUpdate53(x, a, b); }
  static constexpr T UnPredict(T x, T a, T b) { return UnPredict53(x, a, b); }
};

// Forward, phase 0 (x[0] low-pass): reads x[-2 .. 2w].
// Forward, phase 1 (x[0] high-pass): reads x[-1 .. 2w+1].
template <class Op, class Src, class Dst>
inline void Fwd53Region(const Src& x, const Dst& low, const Dst& high, int w, bool phase) {
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
  const V dlast = Op::Predict(x[2 * w], x[2 * w - 1], x[2 * w + 1]);
  low.Set(w - 1, Op::Update(x[2 * w - 1], dprev, dlast));
}

// Inverse, phase 0: reads low[0 .. w], high[-1 .. w]; writes y[0 .. 2w-1].
// Inverse, phase 1: reads low[-1 .. w-1], high[-1 .. w].
template <class Op, class Src, class Dst>
inline void Inv53Region(const Src& low, const Src& high, const Dst& y, int w, bool phase) {
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
    const V elast = Op::UnUpdate(low[w], high[w - 1], high[w]);
    y.Set(2 * w - 1, Op::UnPredict(high[w - 1], yprev, elast));
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

// Streaming 5/3 column rows. Each column reads all its inputs before it writes, so
// pDstHigh may be the row pSrcHighPrev (and any output may alias its own inputs).
template <class T>
inline void Fwd53LiftRow(const T* x0, const T* x1, const T* x2, T* low, const T* dprev, T* high,
                         int width) {
  for (int i = 0; i < width; ++i) {
    const T d = Predict53(Ld(x1 + i), Ld(x0 + i), Ld(x2 + i));
    const T s = Update53(Ld(x0 + i), Ld(dprev + i), d);
    St(high + i, d);
    St(low + i, s);
  }
}
template <class T>
inline void Inv53LiftRow(const T* s, const T* dprev, const T* d, const T* xprev, T* odd, T* even,
                         int width) {
  for (int i = 0; i < width; ++i) {
    const T dp = Ld(dprev + i);
    const T e = UnUpdate53(Ld(s + i), dp, Ld(d + i));
    const T o = UnPredict53(dp, Ld(xprev + i), e);
    St(even + i, e);
    St(odd + i, o);
  }
}

// ---------------------------------------------------------------------------------
// 9/7 constants: single-precision lifting coefficients as stored, and their 2^-14
// (2D and region kernels, 16s) and 2^-16 (streaming column rows) fixed-point forms.

inline constexpr float kAlpha = std::bit_cast<float>(0xBFCB0673u);  // -1.5861343
inline constexpr float kBeta = std::bit_cast<float>(0xBD5901AEu);   // -0.052980117
inline constexpr float kGamma = std::bit_cast<float>(0x3F620676u);  // 0.88291109
inline constexpr float kDelta = std::bit_cast<float>(0x3EE31355u);  // 0.44350687
inline constexpr float kK = std::bit_cast<float>(0x3F9D7658u);      // 1.2301741
inline constexpr float kInvK = std::bit_cast<float>(0x3F5019C3u);   // 0.81289309
// delta / K for the inverse streaming rows: the float nearest 0.36052364, one unit
// in the last place below the float quotient of the two stored constants.
inline constexpr float kDeltaOverK = 0.36052364f;

inline constexpr int32_t kAlphaQ14 = -25987;  // -1.5861343 * 2^14
inline constexpr int32_t kBetaQ14 = -868;     // -0.052980117 * 2^14
inline constexpr int32_t kGammaQ14 = 14466;   // 0.88291109 * 2^14
inline constexpr int32_t kDeltaQ14 = 7266;    // 0.44350687 * 2^14
inline constexpr int32_t kKQ14 = 20155;       // 1.2301741 * 2^14
inline constexpr int32_t kInvKQ14 = 13318;    // 0.81289309 * 2^14

inline constexpr int32_t kAlphaQ16 = -103949;     // -1.5861343 * 2^16
inline constexpr int32_t kBetaQ16 = -3472;        // -0.052980117 * 2^16
inline constexpr int32_t kGammaQ16 = 57862;       // 0.88291109 * 2^16
inline constexpr int32_t kDeltaOverKQ16 = 23627;  // 0.36052364 * 2^16
inline constexpr int32_t kKQ16 = 80621;           // 1.2301741 * 2^16
inline constexpr int32_t kInvKQ16 = 53274;        // 0.81289309 * 2^16

// Conversion of a float result to a 32-bit sample: saturating above 2^31 and below
// -2^31, truncating toward zero in between. Exactly 2^31 gives -2^31, as the
// processor's truncating conversion does for an out-of-range value; this library
// keeps that for compatibility with existing callers. NaN (which finite inputs never
// produce) gives -2^31 likewise.
constexpr int32_t SatTrunc32(float v) {
  if (v > 2147483648.0f) return INT32_MAX;
  if (v < -2147483648.0f) return INT32_MIN;
  if (!(v < 2147483648.0f)) return INT32_MIN;
  return static_cast<int32_t>(v);
}

// The three 9/7 arithmetics share one interface. Sample is the caller's type; Inter
// holds lifted values between steps; Slot is the line-buffer element of the 2D
// kernels, which hold raw samples first and lifted values later.
//   Alpha(x, a, b)  d1 from the odd sample and its raw even neighbours
//   Beta(x, a, b)   s1 from the raw even sample and two d1
//   Gamma, Delta    the later steps on lifted values
//   Low, High       the scaling to output samples
//   InvLow/InvHigh  the inverse scaling of input samples
//   Un*             the inverse steps (subtracting the same terms); Out the result.

// 16s, 2^-14 fixed point: each step adds (c (a + b) + 8192) >> 14 (sum and product
// in 32 bits; 16-bit inputs cannot overflow them) and keeps the low 16 bits.
struct D97Q14 {
  using Sample = int16_t;
  using Inter = int16_t;
  using Slot = int16_t;
  static constexpr int32_t Rnd(int32_t c, int32_t a, int32_t b) {
    return (c * (a + b) + 8192) >> 14;
  }
  static constexpr Inter Add(Inter x, Inter a, Inter b, int32_t c) {
    return static_cast<Inter>(x + Rnd(c, a, b));
  }
  static constexpr Inter Sub(Inter x, Inter a, Inter b, int32_t c) {
    return static_cast<Inter>(x - Rnd(c, a, b));
  }
  static constexpr Inter Scale(int32_t v, int32_t c) {
    return static_cast<Inter>((v * c + 8192) >> 14);
  }

  static constexpr Inter Alpha(Sample x, Sample a, Sample b) { return Add(x, a, b, kAlphaQ14); }
  static constexpr Inter Beta(Sample x, Inter a, Inter b) { return Add(x, a, b, kBetaQ14); }
  static constexpr Inter Gamma(Inter x, Inter a, Inter b) { return Add(x, a, b, kGammaQ14); }
  static constexpr Inter Delta(Inter x, Inter a, Inter b) { return Add(x, a, b, kDeltaQ14); }
  static constexpr Sample Low(Inter s) { return Scale(s, kInvKQ14); }
  static constexpr Sample High(Inter d) { return Scale(d, kKQ14); }
  static constexpr Inter InvLow(Sample v) { return Scale(v, kKQ14); }
  static constexpr Inter InvHigh(Sample v) { return Scale(v, kInvKQ14); }
  static constexpr Inter UnDelta(Inter x, Inter a, Inter b) { return Sub(x, a, b, kDeltaQ14); }
  static constexpr Inter UnGamma(Inter x, Inter a, Inter b) { return Sub(x, a, b, kGammaQ14); }
  static constexpr Inter UnBeta(Inter x, Inter a, Inter b) { return Sub(x, a, b, kBetaQ14); }
  static constexpr Inter UnAlpha(Inter x, Inter a, Inter b) { return Sub(x, a, b, kAlphaQ14); }
  static constexpr Sample Out(Inter v) { return v; }
  static constexpr Inter Get(Slot s) { return s; }
  static constexpr Slot Put(Inter v) { return v; }
};

// 32f: single precision, each step as (a + b), times the coefficient, added to (or
// subtracted from) the sample: three separately rounded operations, never fused.
struct D97Float {
  using Sample = float;
  using Inter = float;
  using Slot = float;
  static constexpr Inter Add(Inter x, Inter a, Inter b, float c) { return x + (a + b) * c; }
  static constexpr Inter Sub(Inter x, Inter a, Inter b, float c) { return x - (a + b) * c; }

  static constexpr Inter Alpha(Sample x, Sample a, Sample b) { return Add(x, a, b, kAlpha); }
  static constexpr Inter Beta(Sample x, Inter a, Inter b) { return Add(x, a, b, kBeta); }
  static constexpr Inter Gamma(Inter x, Inter a, Inter b) { return Add(x, a, b, kGamma); }
  static constexpr Inter Delta(Inter x, Inter a, Inter b) { return Add(x, a, b, kDelta); }
  static constexpr Sample Low(Inter s) { return s * kInvK; }
  static constexpr Sample High(Inter d) { return d * kK; }
  static constexpr Inter InvLow(Sample v) { return v * kK; }
  static constexpr Inter InvHigh(Sample v) { return v * kInvK; }
  static constexpr Inter UnDelta(Inter x, Inter a, Inter b) { return Sub(x, a, b, kDelta); }
  static constexpr Inter UnGamma(Inter x, Inter a, Inter b) { return Sub(x, a, b, kGamma); }
  static constexpr Inter UnBeta(Inter x, Inter a, Inter b) { return Sub(x, a, b, kBeta); }
  static constexpr Inter UnAlpha(Inter x, Inter a, Inter b) { return Sub(x, a, b, kAlpha); }
  static constexpr Sample Out(Inter v) { return v; }
  static constexpr Inter Get(Slot s) { return s; }
  static constexpr Slot Put(Inter v) { return v; }
};

// 32s: the float arithmetic on converted samples. The first step's neighbour sum is
// a wrapping 32-bit integer sum converted once; the results convert back with
// SatTrunc32. A 2D line buffer of 32-bit slots holds the lifted floats as bits.
struct D97Float32s {
  using Sample = int32_t;
  using Inter = float;
  using Slot = int32_t;
  static constexpr float F(int32_t v) { return static_cast<float>(v); }

  static constexpr Inter Alpha(Sample x, Sample a, Sample b) {
    return F(x) + F(AddWrap32(a, b)) * kAlpha;
  }
  static constexpr Inter Beta(Sample x, Inter a, Inter b) {
    return D97Float::Add(F(x), a, b, kBeta);
  }
  static constexpr Inter Gamma(Inter x, Inter a, Inter b) { return D97Float::Gamma(x, a, b); }
  static constexpr Inter Delta(Inter x, Inter a, Inter b) { return D97Float::Delta(x, a, b); }
  static constexpr Sample Low(Inter s) { return SatTrunc32(D97Float::Low(s)); }
  static constexpr Sample High(Inter d) { return SatTrunc32(D97Float::High(d)); }
  static constexpr Inter InvLow(Sample v) { return F(v) * kK; }
  static constexpr Inter InvHigh(Sample v) { return F(v) * kInvK; }
  static constexpr Inter UnDelta(Inter x, Inter a, Inter b) { return D97Float::UnDelta(x, a, b); }
  static constexpr Inter UnGamma(Inter x, Inter a, Inter b) { return D97Float::UnGamma(x, a, b); }
  static constexpr Inter UnBeta(Inter x, Inter a, Inter b) { return D97Float::UnBeta(x, a, b); }
  static constexpr Inter UnAlpha(Inter x, Inter a, Inter b) { return D97Float::UnAlpha(x, a, b); }
  static constexpr Sample Out(Inter v) { return SatTrunc32(v); }
  static constexpr Inter Get(Slot s) { return std::bit_cast<float>(s); }
  static constexpr Slot Put(Inter v) { return std::bit_cast<int32_t>(v); }
};

// Whole-row 9/7 steps on line-buffer slots (rows of a tile lifted in place):
// x = step(x, a, b) for every column, where step sees the slots' values as the
// arithmetic A reads them (raw samples for the first step, lifted values after).
template <class A>
struct Rows97 {
  using S = typename A::Slot;
  static void Alpha(S* x, const S* a, const S* b, int w) {
    for (int i = 0; i < w; ++i) St<S>(x + i, A::Put(A::Alpha(Ld(x + i), Ld(a + i), Ld(b + i))));
  }
  static void Beta(S* x, const S* a, const S* b, int w) {
    for (int i = 0; i < w; ++i)
      St<S>(x + i, A::Put(A::Beta(Ld(x + i), A::Get(Ld(a + i)), A::Get(Ld(b + i)))));
  }
  template <typename A::Inter (*kStep)(typename A::Inter, typename A::Inter, typename A::Inter)>
  static void Lift(S* x, const S* a, const S* b, int w) {
    for (int i = 0; i < w; ++i)
      St<S>(x + i, A::Put(kStep(A::Get(Ld(x + i)), A::Get(Ld(a + i)), A::Get(Ld(b + i)))));
  }
  static void Low(S* x, int w) {
    for (int i = 0; i < w; ++i) St<S>(x + i, A::Low(A::Get(Ld(x + i))));
  }
  static void High(S* x, int w) {
    for (int i = 0; i < w; ++i) St<S>(x + i, A::High(A::Get(Ld(x + i))));
  }
  static void InvLow(S* x, int w) {
    for (int i = 0; i < w; ++i) St<S>(x + i, A::Put(A::InvLow(Ld(x + i))));
  }
  static void InvHigh(S* x, int w) {
    for (int i = 0; i < w; ++i) St<S>(x + i, A::Put(A::InvHigh(Ld(x + i))));
  }
  static void Out(S* x, int w) {
    for (int i = 0; i < w; ++i) St<S>(x + i, A::Out(A::Get(Ld(x + i))));
  }
};

// Parity of buffer index j on a line whose first sample has parity p.
constexpr bool IsOdd(int j, int p) { return ((j + p) & 1) != 0; }

// Forward 9/7 over a line buffer holding positions lo..hi (lo = -left extension,
// hi = n - 1 + right extension). Step t (1..4) lifts the positions of its parity
// within [lo + t, hi - t], whose neighbours the previous step has lifted; the
// extensions are wide enough that positions 0..n-1 come out complete. The results
// are scaled into raw samples in place.
template <class A>
inline void Fwd97Line(typename A::Slot* b, int n, int p, int lo, int hi) {
  using S = typename A::Slot;
  auto first = [&](int from, bool odd) { return IsOdd(from, p) == odd ? from : from + 1; };
  for (int j = first(lo + 1, true); j <= hi - 1; j += 2)
    St<S>(b + j, A::Put(A::Alpha(Ld(b + j), Ld(b + j - 1), Ld(b + j + 1))));
  for (int j = first(lo + 2, false); j <= hi - 2; j += 2)
    St<S>(b + j, A::Put(A::Beta(Ld(b + j), A::Get(Ld(b + j - 1)), A::Get(Ld(b + j + 1)))));
  for (int j = first(lo + 3, true); j <= hi - 3; j += 2)
    St<S>(b + j, A::Put(A::Gamma(A::Get(Ld(b + j)), A::Get(Ld(b + j - 1)), A::Get(Ld(b + j + 1)))));
  for (int j = first(lo + 4, false); j <= hi - 4; j += 2)
    St<S>(b + j, A::Put(A::Delta(A::Get(Ld(b + j)), A::Get(Ld(b + j - 1)), A::Get(Ld(b + j + 1)))));
  for (int j = 0; j < n; ++j) {
    const typename A::Inter v = A::Get(Ld(b + j));
    St<S>(b + j, IsOdd(j, p) ? A::High(v) : A::Low(v));
  }
}

// Inverse 9/7 over an interleaved line buffer holding positions lo..hi: every
// position is scaled, then the four steps are undone in reverse order, each within
// a range one narrower on both sides than the last; positions 0..n-1 end as samples.
template <class A>
inline void Inv97Line(typename A::Slot* b, int n, int p, int lo, int hi) {
  using S = typename A::Slot;
  auto first = [&](int from, bool odd) { return IsOdd(from, p) == odd ? from : from + 1; };
  for (int j = lo; j <= hi; ++j) {
    const typename A::Sample v = Ld(b + j);
    St<S>(b + j, A::Put(IsOdd(j, p) ? A::InvHigh(v) : A::InvLow(v)));
  }
  auto undo = [&](int t, bool odd, auto step) {
    for (int j = first(lo + t, odd); j <= hi - t; j += 2)
      St<S>(b + j, A::Put(step(A::Get(Ld(b + j)), A::Get(Ld(b + j - 1)), A::Get(Ld(b + j + 1)))));
  };
  undo(1, false, A::UnDelta);
  undo(2, true, A::UnGamma);
  undo(3, false, A::UnBeta);
  undo(4, true, A::UnAlpha);
  for (int j = 0; j < n; ++j) St<S>(b + j, A::Out(A::Get(Ld(b + j))));
}

// 9/7 region kernels: one band row (or column) of w outputs, reading the caller's
// samples around the region. Positions u are counted so that u is even at low-pass
// samples: u = i for phase 0, u = i + 1 for phase 1 (source or destination index i).
// The lifting runs as a pipeline, each value computed once from the same operands
// as in the 2D kernels, so each output equals the 2D value at its position.
//
// Forward, phase 0: lows at u = 0, 2, .., 2w-2; reads x[-4 .. 2w+2].
// Forward, phase 1: lows at u = 2, 4, .., 2w;   reads x[-3 .. 2w+3].
// Highs at u = 1, 3, .., 2w-1 in both. Round j (odd) computes d1[j], s1[j-1],
// d2[j-2] and s2[j-3], each step starting where its neighbours exist.
template <class A, class Src, class Dst>
inline void Fwd97Region(const Src& x, const Dst& low, const Dst& high, int w, bool phase) {
  using I = typename A::Inter;
  const int o = phase ? 1 : 0;
  const int s2_lo = 2 * o, s2_hi = 2 * w - 2 + 2 * o;
  auto xs = [&](int u) { return x[u - o]; };
  // Held between rounds: d1[j-2]; s1[j-5], s1[j-3]; d2[j-6], d2[j-4].
  I d1_a{}, s1_a{}, s1_b{}, d2_a{}, d2_b{};
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

// Inverse, phase 0: reads low[-1 .. w+1], high[-2 .. w+1]; writes y[0 .. 2w-1].
// Inverse, phase 1: reads low[-2 .. w],   high[-2 .. w+1].
// Low u (even) is low[u/2 - o], high u (odd) is high[(u-1)/2]. Round e (even)
// computes s1[e], d1[e-1], x[e-2] and x[e-3]; x[2w] (phase 0) and x[0] (phase 1) are
// needed by their odd neighbours but lie outside the destination.
template <class A, class Src, class Dst>
inline void Inv97Region(const Src& low, const Src& high, const Dst& y, int w, bool phase) {
  using I = typename A::Inter;
  const int o = phase ? 1 : 0;
  // Held between rounds: d2[e-1]; s1[e-4], s1[e-2]; d1[e-5], d1[e-3]; x[e-6], x[e-4].
  I d2_a = A::InvHigh(high[-2]), s1_a{}, s1_b{}, d1_a{}, d1_b{}, xe_a{}, xe_b{};
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

// ---------------------------------------------------------------------------------
// 9/7 streaming column rows. Each pass runs over the whole width before the next, so
// a row written by one pass is read back by the next as stored.
//
// Forward call n (x0, x1, x2 = x[2n], x[2n+1], x[2n+2]):
//   hc  = d1[n]   from x1 and x0 + x2            (alpha)
//   lc  = s1[n]   from x0 and hp + hc            (beta)
//   hp  = d2[n-1] from hp and lp + lc            (gamma)
//   lp  = low[n-1]  = (s1[n-1] + delta (hp2 + hp)) / K
//   hp2 = high[n-2] = hp2 K
// Inverse call n (l = low[n], hp = high[n-1], h = high[n]):
//   ec  = s1[n]   = l K - (delta / K) (hp + h)
//   oc  = d1[n-1] = hp / K - gamma (ep + ec)
//   ep  = x[2n-2] = ep - beta (op + oc)
//   op  = x[2n-3] = op - alpha (ep2 + ep)

// 32f: the order of D97Float, the scalings and the folded first inverse step as one
// more rounded product each.
inline void Fwd97LiftRowsF(const float* x0, const float* x1, const float* x2, float* lp, float* lc,
                           float* hp2, float* hp, float* hc, int w) {
  for (int i = 0; i < w; ++i) St(hc + i, D97Float::Alpha(Ld(x1 + i), Ld(x0 + i), Ld(x2 + i)));
  for (int i = 0; i < w; ++i) St(lc + i, D97Float::Beta(Ld(x0 + i), Ld(hp + i), Ld(hc + i)));
  for (int i = 0; i < w; ++i) St(hp + i, D97Float::Gamma(Ld(hp + i), Ld(lp + i), Ld(lc + i)));
  for (int i = 0; i < w; ++i) St(lp + i, D97Float::Delta(Ld(lp + i), Ld(hp2 + i), Ld(hp + i)));
  for (int i = 0; i < w; ++i) St(lp + i, D97Float::Low(Ld(lp + i)));
  for (int i = 0; i < w; ++i) St(hp2 + i, D97Float::High(Ld(hp2 + i)));
}

inline void Inv97LiftRowsF(const float* l, const float* hprev, const float* h, float* op, float* oc,
                           float* ep2, float* ep, float* ec, int w) {
  for (int i = 0; i < w; ++i)
    St(ec + i, Ld(l + i) * kK - (Ld(hprev + i) + Ld(h + i)) * kDeltaOverK);
  for (int i = 0; i < w; ++i)
    St(oc + i, Ld(hprev + i) * kInvK - (Ld(ep + i) + Ld(ec + i)) * kGamma);
  for (int i = 0; i < w; ++i) St(ep + i, D97Float::UnBeta(Ld(ep + i), Ld(op + i), Ld(oc + i)));
  for (int i = 0; i < w; ++i) St(op + i, D97Float::UnAlpha(Ld(op + i), Ld(ep2 + i), Ld(ep + i)));
}

// 16s and 32s, 2^-16 fixed point: a step adds (c (a + b) + 32768) >> 16, the
// neighbour sum in 32 bits (wrapping for 32s) and the product in 64 bits; every
// result keeps the low bits of the sample type. The delta step is folded into the
// low-pass scaling: low = (s1 53274 + (d2 + d2') 23627 + 32768) >> 16.
template <class T>
struct D97Q16 {
  static constexpr int64_t Rnd(int32_t c, T a, T b) {
    return (static_cast<int64_t>(c) * AddWrap32(a, b) + 32768) >> 16;
  }
  static constexpr T Keep(int64_t v) { return static_cast<T>(Wrap32(v)); }
  static constexpr T Add(T x, T a, T b, int32_t c) { return Keep(x + Rnd(c, a, b)); }
  static constexpr T Sub(T x, T a, T b, int32_t c) { return Keep(x - Rnd(c, a, b)); }
  // (v cv - cs (a + b) + 32768) >> 16: a scaled sample less (or plus) a scaled sum.
  static constexpr T Fold(T v, int32_t cv, T a, T b, int32_t cs) {
    return Keep(
        (static_cast<int64_t>(v) * cv + static_cast<int64_t>(cs) * AddWrap32(a, b) + 32768) >> 16);
  }
};

template <class T>
inline void Fwd97LiftRowsQ16(const T* x0, const T* x1, const T* x2, T* lp, T* lc, T* hp2, T* hp,
                             T* hc, int w) {
  using Q = D97Q16<T>;
  for (int i = 0; i < w; ++i) St(hc + i, Q::Add(Ld(x1 + i), Ld(x0 + i), Ld(x2 + i), kAlphaQ16));
  for (int i = 0; i < w; ++i) St(lc + i, Q::Add(Ld(x0 + i), Ld(hp + i), Ld(hc + i), kBetaQ16));
  for (int i = 0; i < w; ++i) St(hp + i, Q::Add(Ld(hp + i), Ld(lp + i), Ld(lc + i), kGammaQ16));
  for (int i = 0; i < w; ++i)
    St(lp + i, Q::Fold(Ld(lp + i), kInvKQ16, Ld(hp2 + i), Ld(hp + i), kDeltaOverKQ16));
  for (int i = 0; i < w; ++i)
    St(hp2 + i, Q::Keep((static_cast<int64_t>(Ld(hp2 + i)) * kKQ16 + 32768) >> 16));
}

template <class T>
inline void Inv97LiftRowsQ16(const T* l, const T* hprev, const T* h, T* op, T* oc, T* ep2, T* ep,
                             T* ec, int w) {
  using Q = D97Q16<T>;
  for (int i = 0; i < w; ++i)
    St(ec + i, Q::Fold(Ld(l + i), kKQ16, Ld(hprev + i), Ld(h + i), -kDeltaOverKQ16));
  for (int i = 0; i < w; ++i)
    St(oc + i, Q::Fold(Ld(hprev + i), kInvKQ16, Ld(ep + i), Ld(ec + i), -kGammaQ16));
  for (int i = 0; i < w; ++i) St(ep + i, Q::Sub(Ld(ep + i), Ld(op + i), Ld(oc + i), kBetaQ16));
  for (int i = 0; i < w; ++i) St(op + i, Q::Sub(Ld(op + i), Ld(ep2 + i), Ld(ep + i), kAlphaQ16));
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_WAVELET_REF_H_
