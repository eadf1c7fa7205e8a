// SPDX-License-Identifier: BSD-3-Clause
// Reference element rules of the vector primitives: scaled integer products with
// round-half-to-even and saturation, the 16.16 reverse division, and the scale,
// rounding and zero-divisor rules of the float-based divisions. The quantisation
// kernels use the same rules, so each is stated once here.
//
// Rows take their operands as indexables: a pointer, or Splat(c) for a constant
// operand, so one row serves the vector and the by-constant forms. Every row
// computes an element completely before storing it, so an operand may be the
// destination (the in-place forms).
#ifndef KROJ_SRC_REF_SIGNAL_REF_H_
#define KROJ_SRC_REF_SIGNAL_REF_H_

#include <math.h>
#include <stdint.h>

#include <algorithm>
#include <limits>
#include <type_traits>

#include "tables.h"

namespace kro::ref {

// A constant seen as a vector.
template <class T>
struct Splat {
  T value;
  constexpr const T& operator[](int) const { return value; }
};

// Complex element types are the {re, im} records of the public header.
template <class T>
concept ComplexElem = requires(T t) {
  t.re;
  t.im;
};

template <class T>
struct PartOf {
  using type = T;
};
template <ComplexElem T>
struct PartOf<T> {
  using type = decltype(T::re);
};
template <class T>
using Part = typename PartOf<T>::type;

// ---------------------------------------------------------------------------
// Integer products

// p * 2^-sf for an exact product p held in W, rounded half to even and saturated
// to T. This is the scale-factor rule of the integer multiplications:
//   sf = 0        saturate;
//   sf > 0        (p + 2^(sf-1) - 1 + ((p >> sf) & 1)) >> sf, arithmetic shifts,
//                 which rounds half to even; saturate;
//   sf < 0        p * 2^-sf saturated (a non-zero p with -sf >= bits of T always
//                 saturates, so large factors need no shift).
// W must leave two bits of headroom over every product it carries, so that the
// rounding addend cannot overflow and any sf >= bits(W) - 1 rounds to zero. For
// 16-bit products this is the documented rule itself: saturating before a left
// shift, the sign rule below -15 and zero above 30 are what exact scaling gives.
template <class T, class W>
constexpr T ScaleRoundSat(W p, int sf) {
  static_assert(std::is_integral_v<T> && sizeof(W) > sizeof(T));
  constexpr int kWBits = static_cast<int>(sizeof(W)) * 8;
  constexpr int kTBits = static_cast<int>(sizeof(T)) * 8;
  constexpr W kMax = static_cast<W>(std::numeric_limits<T>::max());
  constexpr W kMin = static_cast<W>(std::numeric_limits<T>::min());
  if (sf > 0) {
    if (sf >= kWBits - 1) return 0;
    const W one = 1;
    p = (p + ((one << (sf - 1)) - 1) + ((p >> sf) & 1)) >> sf;
  } else if (sf < 0) {
    const int up = -sf;
    if (p == 0) return 0;
    if (p > 0 && (up >= kTBits || p > (kMax >> up))) return std::numeric_limits<T>::max();
    if (p < 0 && (up >= kTBits || p < (kMin >> up))) return std::numeric_limits<T>::min();
    p = p * (static_cast<W>(1) << up);
  }
  if (p > kMax) return std::numeric_limits<T>::max();
  if (p < kMin) return std::numeric_limits<T>::min();
  return static_cast<T>(p);
}

// The parts of an integer operand widened to W; a real operand has a zero
// imaginary part, so one product formula serves real and complex operands.
template <class W, class A>
constexpr W Re(const A& a) {
  if constexpr (ComplexElem<A>) {
    return static_cast<W>(a.re);
  } else {
    return static_cast<W>(a);
  }
}
template <class W, class A>
constexpr W Im(const A& a) {
  if constexpr (ComplexElem<A>) {
    return static_cast<W>(a.im);
  } else {
    return 0;
  }
}

// dst[i] = a[i] * b[i] * 2^-sf, each part rounded half to even and saturated, with
// the product exact in W. a and b are pointers or Splats.
template <class T, class W, class SA, class SB>
inline void MulScaledRow(SA a, SB b, T* dst, int n, int sf) {
  // The common factors get loops of their own, free of per-element branches on
  // sf, which the compiler can vectorise; the others take the full rule.
  using P = Part<T>;
  auto row = [&](auto scale) {
    for (int i = 0; i < n; ++i) {
      if constexpr (ComplexElem<T>) {
        const W re = Re<W>(a[i]) * Re<W>(b[i]) - Im<W>(a[i]) * Im<W>(b[i]);
        const W im = Re<W>(a[i]) * Im<W>(b[i]) + Im<W>(a[i]) * Re<W>(b[i]);
        T out;
        out.re = scale(re);
        out.im = scale(im);
        dst[i] = out;
      } else {
        dst[i] = scale(static_cast<W>(a[i]) * static_cast<W>(b[i]));
      }
    }
  };
  constexpr W kMax = static_cast<W>(std::numeric_limits<P>::max());
  constexpr W kMin = static_cast<W>(std::numeric_limits<P>::min());
  auto clamp = [](W p) { return static_cast<P>(p < kMin ? kMin : p > kMax ? kMax : p); };
  if (sf == 0) {
    row(clamp);
  } else if (sf > 0 && sf < static_cast<int>(sizeof(W)) * 8 - 1) {
    const W add = (static_cast<W>(1) << (sf - 1)) - 1;
    row([=](W p) { return clamp((p + add + ((p >> sf) & 1)) >> sf); });
  } else {
    row([=](W p) { return ScaleRoundSat<P, W>(p, sf); });
  }
}

// The word that holds a product of A and B exactly with two bits to spare (the
// magnitude bits of both operands, plus one for the sum of two products of a
// complex multiplication) and is wider than the result part T.
template <class A, class B>
inline constexpr int kProductBits = std::numeric_limits<Part<A>>::digits +
                                    std::numeric_limits<Part<B>>::digits +
                                    (ComplexElem<A> && ComplexElem<B> ? 1 : 0);
template <class A, class B, class T>
using ProductWord =
    std::conditional_t<kProductBits<A, B> <= 30 && sizeof(Part<T>) < 4, int32_t,
                       std::conditional_t<kProductBits<A, B> <= 62, int64_t, __int128>>;

// ---------------------------------------------------------------------------
// Float products, in the element precision F (or a wider one for the conversions)

template <class F, class A, class B>
constexpr void CMul(const A& a, const B& b, F& re, F& im) {
  re = static_cast<F>(a.re) * static_cast<F>(b.re) - static_cast<F>(a.im) * static_cast<F>(b.im);
  im = static_cast<F>(a.re) * static_cast<F>(b.im) + static_cast<F>(a.im) * static_cast<F>(b.re);
}

// dst[i] = a[i] * b[i] for float and complex float elements.
template <class T, class SA, class SB>
inline void MulFloatRow(SA a, SB b, T* dst, int n) {
  for (int i = 0; i < n; ++i) {
    if constexpr (ComplexElem<T>) {
      T out;
      CMul<Part<T>>(a[i], b[i], out.re, out.im);
      dst[i] = out;
    } else {
      dst[i] = a[i] * b[i];
    }
  }
}

// dst[i] = a[i] * b[i], exact in 32 bits, rounded once to single precision.
inline void Mul16s32fRow(const int16_t* a, const int16_t* b, float* dst, int n) {
  for (int i = 0; i < n; ++i) dst[i] = static_cast<float>(int32_t{a[i]} * int32_t{b[i]});
}

// ---------------------------------------------------------------------------
// Float-based division rules

// 2^-sf built by halving 1.0 sf times or doubling it -sf times in F; it stops
// changing once it reaches 0 or infinity.
template <class F>
inline F PowerOfTwo(int sf) {
  F s = 1;
  for (int i = 0; i < sf && s != 0; ++i) s = s * F(0.5);
  for (int i = 0; i > sf && s != std::numeric_limits<F>::infinity(); --i) s = s * F(2);
  return s;
}

// r saturated to [lo, hi]; not-a-number gives lo.
template <class F>
constexpr F SatF(F r, F lo, F hi) {
  if (!(r >= lo)) return lo;
  return r > hi ? hi : r;
}

// r in [-32768, 32767] to 16 bits, rounded half to even with the positive offset:
// t = r + 32768 + 0.5 in F, n = t truncated, minus one when n is odd and t == n.
// Not-a-number gives -32768; the range checks on t only guard values that a
// rounding error of the caller may carry just past the range.
template <class F>
inline int16_t RoundHalfEven16s(F r) {
  if (r != r) return -32768;
  F t = r + F(32768);
  t = t + F(0.5);
  if (t < 0) return -32768;
  if (t >= F(65536)) return 32767;
  const int32_t n = static_cast<int32_t>(t);
  // Without a branch: the parity of n is data, and a mispredicted step costs more
  // than the whole element.
  return static_cast<int16_t>(n - ((n & 1) & (static_cast<F>(n) == t)) - 32768);
}

// r >= 0 (single precision) to a non-negative integer, rounded half to even with
// t = r + 0.5; not-a-number gives 0. Values beyond 2^24 are left to the caller's cap.
inline int32_t RoundHalfEven8u(float r) {
  if (!(r >= 0)) return 0;
  if (r > 16777216.0f) r = 16777216.0f;
  const float t = r + 0.5f;
  const int32_t n = static_cast<int32_t>(t);
  return n - ((n & 1) & (static_cast<float>(n) == t));
}

// r to the nearest integer, ties to even, exact in double for |r| < 2^52.
inline double RoundHalfEven(double r) {
  const double f = floor(r);
  const double d = r - f;
  if (d > 0.5 || (d == 0.5 && fmod(f, 2.0) != 0)) return f + 1;
  return f;
}

// Result of a division by zero for the float forms: +inf for a positive dividend,
// NaN for a zero one, -inf otherwise (including a NaN dividend).
template <class F>
constexpr F FloatZeroDivide(F dividend) {
  if (dividend > 0) return std::numeric_limits<F>::infinity();
  if (dividend == 0) return std::numeric_limits<F>::quiet_NaN();
  return -std::numeric_limits<F>::infinity();
}

// Result of a division by zero for the integer forms: by the dividend's sign.
template <class T, class D>
constexpr T IntZeroDivide(D dividend) {
  if (dividend == 0) return 0;
  return dividend > 0 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
}

// float * c scaled by 2^-sf into 16 bits: the product is exact in double (or,
// for the low-precision form, first rounded to single precision), scaled, then
// saturated (not-a-number gives -32768) and rounded half to even.
template <bool kLowPrecision>
inline void MulC32f16sRow(const float* a, float c, int16_t* dst, int n, int sf) {
  const int e = -std::clamp(sf, -2000, 2000);
  for (int i = 0; i < n; ++i) {
    const double p = kLowPrecision ? static_cast<double>(a[i] * c)
                                   : static_cast<double>(a[i]) * static_cast<double>(c);
    const double r = SatF(ldexp(p, e), -32768.0, 32767.0);
    dst[i] = static_cast<int16_t>(RoundHalfEven(r));
  }
}

// Element rules of the divisions. A vector rule maps (dividend, divisor) to the
// quotient and raises `zero` for a zero divisor; a by-constant rule is built once
// from the constant (IsZero tells a constant the call must refuse) and maps an
// element to its quotient.

// 16-bit: r = dividend * scale / divisor in single precision. A factor below 1
// can push r out of range (or make it not a number through an infinite scale),
// so r is saturated first; from 1 on |r| <= 16384 and it is rounded directly.
struct Div16s {
  float scale;
  bool saturate;
  explicit Div16s(int sf) : scale(PowerOfTwo<float>(sf)), saturate(sf < 1) {}
  int16_t operator()(int16_t dividend, int16_t divisor, bool& zero) const {
    if (divisor == 0) {
      zero = true;
      return IntZeroDivide<int16_t>(dividend);
    }
    float r = static_cast<float>(dividend) * scale / static_cast<float>(divisor);
    if (saturate) r = SatF(r, -32768.0f, 32767.0f);
    return RoundHalfEven16s(r);
  }
};

// 8-bit: below -15 any non-zero quotient saturates and above 8 any quotient
// rounds to 0, so those factors need no arithmetic; in between r is computed in
// single precision, and only negative factors can take it past 255.
struct Div8u {
  int sf;
  float scale;
  explicit Div8u(int sf_) : sf(sf_), scale(PowerOfTwo<float>(std::clamp(sf_, -15, 8))) {}
  uint8_t operator()(uint8_t dividend, uint8_t divisor, bool& zero) const {
    if (divisor == 0) {
      zero = true;
      return dividend == 0 ? 0 : 255;
    }
    if (sf < -15) return dividend == 0 ? 0 : 255;
    if (sf > 8) return 0;
    const float r = static_cast<float>(dividend) * scale / static_cast<float>(divisor);
    return static_cast<uint8_t>(std::min(RoundHalfEven8u(r), 255));
  }
};

// 32-bit dividends (32s / 32s -> 32s, 32s / 16s -> 16s): the rules of Div16s in
// double precision. r = dividend * 2^-sf / divisor (the scaled dividend is exact,
// r is one rounded quotient), saturated to T, then rounded half to even. Factors
// beyond +-64 act as +-64: every non-zero quotient saturates, or every quotient
// rounds to 0 (for 32s / 16s this is the sign rule below -29 and the zero rule from
// 32 on), so the scale can neither overflow nor underflow.
template <class T>
struct DivWide {
  double scale;
  explicit DivWide(int sf) : scale(PowerOfTwo<double>(std::clamp(sf, -64, 64))) {}
  template <class D, class V>
  T operator()(D dividend, V divisor, bool& zero) const {
    if (divisor == 0) {
      zero = true;
      return IntZeroDivide<T>(dividend);
    }
    constexpr double kLo = std::numeric_limits<T>::min(), kHi = std::numeric_limits<T>::max();
    const double r = static_cast<double>(dividend) * scale / static_cast<double>(divisor);
    return static_cast<T>(RoundHalfEven(SatF(r, kLo, kHi)));
  }
};

// Complex 16-bit: the rules of Div16s in double precision, per part; a zero
// divisor gives each part by the sign of the dividend's part.
struct Div16sc {
  double scale;
  bool saturate;
  explicit Div16sc(int sf) : scale(PowerOfTwo<double>(sf)), saturate(sf < 1) {}
  template <class C>
  C operator()(const C& x, const C& y, bool& zero) const {
    C out;
    if (y.re == 0 && y.im == 0) {
      zero = true;
      out.re = IntZeroDivide<Part<C>>(x.re);
      out.im = IntZeroDivide<Part<C>>(x.im);
      return out;
    }
    const double xr = x.re * scale, xi = x.im * scale, yr = y.re, yi = y.im;
    const double den = yr * yr + yi * yi;
    double re = (xr * yr + xi * yi) / den, im = (xi * yr - xr * yi) / den;
    if (saturate) {
      re = SatF(re, -32768.0, 32767.0);
      im = SatF(im, -32768.0, 32767.0);
    }
    out.re = RoundHalfEven16s(re);
    out.im = RoundHalfEven16s(im);
    return out;
  }
};

// Float and complex float quotients. A zero divisor gives +inf, NaN or -inf by the
// dividend (per part for complex values). Complex single-precision quotients are
// formed in double and rounded once; double ones use the plain formula.
template <class T>
struct DivFloat {
  explicit DivFloat(int = 0) {}
  T operator()(const T& x, const T& y, bool& zero) const {
    if constexpr (ComplexElem<T>) {
      using F = Part<T>;
      T out;
      if (y.re == 0 && y.im == 0) {
        zero = true;
        out.re = FloatZeroDivide(x.re);
        out.im = FloatZeroDivide(x.im);
        return out;
      }
      const double xr = x.re, xi = x.im, yr = y.re, yi = y.im;
      const double den = yr * yr + yi * yi;
      out.re = static_cast<F>((xr * yr + xi * yi) / den);
      out.im = static_cast<F>((xi * yr - xr * yi) / den);
      return out;
    } else {
      if (y == 0) {
        zero = true;
        return FloatZeroDivide(x);
      }
      return x / y;
    }
  }
};

// By a 16-bit constant: m = scale / val once, r = x * m in single precision. With
// m in [-0.9999, 1.0] r stays in range and is rounded directly; otherwise it is
// saturated first. The bound -0.9999 sends m = -1 (where -(-32768) does not fit)
// to the saturating path.
struct DivC16s {
  float m;
  bool saturate;
  static bool IsZero(int16_t val) { return val == 0; }
  DivC16s(int16_t val, int sf)
      : m(PowerOfTwo<float>(sf) / static_cast<float>(val)),
        saturate(!(m >= -0.9999f && m <= 1.0f)) {}
  int16_t operator()(int16_t x) const {
    float r = static_cast<float>(x) * m;
    if (saturate) r = SatF(r, -32768.0f, 32767.0f);
    return RoundHalfEven16s(r);
  }
};

// By an 8-bit constant: m = scale * reciprocal8u[val] (the table's six-decimal
// value, not 1 / val), r = x * m; only m > 1 can take r past 255.
struct DivC8u {
  float m;
  static bool IsZero(uint8_t val) { return val == 0; }
  DivC8u(uint8_t val, int sf) : m(PowerOfTwo<float>(sf) * reciprocal8u[val]) {}
  uint8_t operator()(uint8_t x) const {
    float r = static_cast<float>(x) * m;
    if (m > 1.0f && r > 255.0f) r = 255.0f;
    return static_cast<uint8_t>(std::min(RoundHalfEven8u(r), 255));
  }
};

// By a complex 16-bit constant: m = (re, -im) * scale / |val|^2 once, in double;
// each element times m in double, saturated when |m|^2 >= 0.5 (below that no
// product can leave the range), rounded half to even per part.
struct DivC16sc {
  double m_re, m_im;
  bool saturate;
  template <class C>
  static bool IsZero(const C& val) {
    return Mag2(val) == 0;
  }
  template <class C>
  DivC16sc(const C& val, int sf) {
    const double scale = PowerOfTwo<double>(sf), mag2 = Mag2(val);
    m_re = val.re * scale / mag2;
    m_im = -val.im * scale / mag2;
    saturate = m_re * m_re + m_im * m_im >= 0.5;
  }
  template <class C>
  C operator()(const C& x) const {
    double re = x.re * m_re - x.im * m_im, im = x.re * m_im + x.im * m_re;
    if (saturate) {
      re = SatF(re, -32768.0, 32767.0);
      im = SatF(im, -32768.0, 32767.0);
    }
    C out;
    out.re = RoundHalfEven16s(re);
    out.im = RoundHalfEven16s(im);
    return out;
  }
  template <class C>
  static double Mag2(const C& v) {
    return static_cast<double>(v.re) * v.re + static_cast<double>(v.im) * v.im;
  }
};

// By a float constant: multiplication by the reciprocal formed once, so results
// are those of a rounded reciprocal, not of true division. A complex reciprocal
// conj(val) / |val|^2 is formed in double and rounded to the element precision.
template <class T>
struct DivCFloat {
  T recip;
  static bool IsZero(const T& val) {
    if constexpr (ComplexElem<T>) {
      return val.re == 0 && val.im == 0;
    } else {
      return val == 0;
    }
  }
  DivCFloat(const T& val, int) {
    if constexpr (ComplexElem<T>) {
      using F = Part<T>;
      const double re = val.re, im = val.im, mag2 = re * re + im * im;
      recip.re = static_cast<F>(re / mag2);
      recip.im = static_cast<F>(-im / mag2);
    } else {
      recip = T(1) / val;
    }
  }
  T operator()(const T& x) const {
    if constexpr (ComplexElem<T>) {
      T out;
      CMul<Part<T>>(x, recip, out.re, out.im);
      return out;
    } else {
      return x * recip;
    }
  }
};

// dst[i] = val / src[i] in single precision; a zero element gives +inf, NaN or
// -inf by val (NaN for a zero val). Returns whether a zero element was met.
inline bool DivCRev32fRow(const float* src, float val, float* dst, int n) {
  bool zero = false;
  for (int i = 0; i < n; ++i) {
    const float x = src[i];
    if (x == 0) {
      zero = true;
      dst[i] = FloatZeroDivide(val);
    } else {
      dst[i] = val / x;
    }
  }
  return zero;
}

// ---------------------------------------------------------------------------
// Reverse division of a 16-bit constant by a vector

// val / q for q != 0, from the truncated 16.16 quotient t = val * 2^16 / q:
// (t + 32767 + 2 * (bit 16 of t)) >> 16. The bias rounds a tie to the even
// integer, and with an odd integer part a fraction of 32767/65536 already rounds
// up; this is kept for compatibility with existing callers. The sum stays below
// 2^32 for every val and q, and the result below 2^16.
constexpr uint16_t DivCRev16u(uint32_t val, uint32_t q) {
  const uint32_t t = (val << 16) / q;
  return static_cast<uint16_t>((t + 32767u + 2u * ((t >> 16) & 1u)) >> 16);
}

// dst[i] = val / src[i] as above; a zero element gives 65535, a zero constant gives
// 0 everywhere. Returns whether a zero element was met. src may equal dst.
inline bool DivCRev16uRow(const uint16_t* src, uint16_t val, uint16_t* dst, int n) {
  bool zero = false;
  for (int i = 0; i < n; ++i) {
    const uint16_t q = src[i];
    zero |= q == 0;
    dst[i] = val == 0 ? 0 : q == 0 ? 65535 : DivCRev16u(val, q);
  }
  return zero;
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_SIGNAL_REF_H_
