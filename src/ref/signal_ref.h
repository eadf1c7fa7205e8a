// SPDX-License-Identifier: BSD-3-Clause
// Reference element rules of the vector primitives: scaled integer products with
// round-half-to-even and saturation, the 16.16 reverse division, and the rounding
// and zero-divisor rules of the float-based divisions. The quantisation kernels use
// the same rules, so each is stated once here.
#ifndef KROJ_SRC_REF_SIGNAL_REF_H_
#define KROJ_SRC_REF_SIGNAL_REF_H_

#include <math.h>
#include <stdint.h>

#include <limits>
#include <type_traits>

namespace kro::ref {

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
// rounding addend cannot overflow and any sf >= bits(W) - 1 rounds to zero.
template <class T, class W>
constexpr T ScaleRoundSat(W p, int sf) {
  static_assert(std::is_integral_v<T>);
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
    if (p > 0) {
      if (up >= kTBits || p > (kMax >> up)) return std::numeric_limits<T>::max();
    } else if (p < 0) {
      if (up >= kTBits || p < (kMin >> up)) return std::numeric_limits<T>::min();
    }
    p = p * (static_cast<W>(1) << up);
  }
  if (p > kMax) return std::numeric_limits<T>::max();
  if (p < kMin) return std::numeric_limits<T>::min();
  return static_cast<T>(p);
}

// dst[i] = ScaleRoundSat(W(a[i]) * W(b[i]), sf). a or b may equal dst.
template <class T, class W, class A, class B>
inline void MulScaledRow(const A* a, const B* b, T* dst, int n, int sf) {
  for (int i = 0; i < n; ++i) dst[i] = ScaleRoundSat<T, W>(static_cast<W>(a[i]) * static_cast<W>(b[i]), sf);
}

// dst[i] = ScaleRoundSat(W(a[i]) * W(c), sf). a may equal dst.
template <class T, class W, class A, class C>
inline void MulCScaledRow(const A* a, C c, T* dst, int n, int sf) {
  const W wc = static_cast<W>(c);
  for (int i = 0; i < n; ++i) dst[i] = ScaleRoundSat<T, W>(static_cast<W>(a[i]) * wc, sf);
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
