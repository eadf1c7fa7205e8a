// SPDX-License-Identifier: BSD-3-Clause
// Reference passes of the 8x8 integer DCT pair, and the level-shift rows.
//
// Both transforms are separable: one 8-point butterfly per row and per column, the
// forward one rows first, the inverse one columns first. The rotations are 12-bit
// fixed-point cosines (cos(k pi/16) * 4096), several carrying an extra factor 8:
//   17734 = 8 * 0.541196 * 4096      25080 + 17734 = 42814 = 8 * 1.306563 * 4096
//   46341 = 8 * sqrt(2) * 4096       3218 + 799 = 4017 = cos(pi/16) * 4096
//   5793  = sqrt(2) * 4096           3406 = cos(3 pi/16) * 4096
// Each pass computes 16 sqrt(2) times the 1-D transform (T.81 A.3.3, C(0) = 1/sqrt(2)):
// a DC term as the plain sum times 8, the others through the 12-bit constants and a
// rounding shift by 12. Pass 2 does not round its rotated outputs at 12 bits: their
// sums carry 2^12 * (16 sqrt(2))^2 = 2^21 times the 2-D result and are rounded with
// +2^20 >> 21; its forward DC-type sums carry 64 times the result (+32 >> 6). So a
// constant block v gives F(0,0) = 8v, and an inverse DC of 800 gives 100 everywhere.
//
// All sums and products are 32-bit two's-complement (they wrap on overflow, which
// only out-of-range input reaches); >> is arithmetic; each pass stores its outputs
// truncated to signed 16 bits. The forward odd part gives R5 = 2276 e1 + 3406 e3 but
// R3 = 3406 e1 - 2275 e3 (3406 - 5681); the unit of asymmetry is kept for
// compatibility with existing callers.
//
// A pass reads 8 values at a stride and writes 8 at a stride, so that a vector
// version can process 8 rows or columns at once and replace a whole pass.
#ifndef KROJ_SRC_REF_DCT_REF_H_
#define KROJ_SRC_REF_DCT_REF_H_

#include <stdint.h>

#include "tables.h"

namespace kro::ref {

namespace dct_detail {

using U = uint32_t;  // carries the wrapping 32-bit arithmetic without overflow UB

constexpr U In(int16_t v) { return static_cast<U>(static_cast<int32_t>(v)); }
constexpr int32_t Sra(U v, int s) { return static_cast<int32_t>(v) >> s; }
constexpr int16_t Out(U v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }
constexpr int16_t Out(int32_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }
constexpr U C(int32_t c) { return static_cast<U>(c); }

}  // namespace dct_detail

// One forward butterfly. kFinal selects pass 2: the DC-type outputs become
// (sum + 32) >> 6 instead of sum * 8, and the rotated outputs round at 21 bits
// instead of 12; the inner 12-bit roundings of the odd part stay.
template <bool kFinal>
inline void FwdDct1D(const int16_t* in, int in_stride, int16_t* out, int out_stride) {
  using namespace dct_detail;
  constexpr int kShift = kFinal ? 21 : 12;
  constexpr U kRound = U{1} << (kShift - 1);
  const U x0 = In(in[0]), x1 = In(in[in_stride]), x2 = In(in[2 * in_stride]),
          x3 = In(in[3 * in_stride]), x4 = In(in[4 * in_stride]), x5 = In(in[5 * in_stride]),
          x6 = In(in[6 * in_stride]), x7 = In(in[7 * in_stride]);
  const U s0 = x0 + x7, s1 = x1 + x6, s2 = x2 + x5, s3 = x3 + x4;
  const U d0 = x0 - x7, d1 = x1 - x6, d2 = x2 - x5, d3 = x3 - x4;

  const U a0 = s0 + s3, a1 = s1 + s2, a2 = s0 - s3, a3 = s1 - s2;
  int16_t r0, r4;
  if constexpr (kFinal) {
    r0 = Out(Sra(a0 + a1 + 32, 6));
    r4 = Out(Sra(a0 - a1 + 32, 6));
  } else {
    r0 = Out((a0 + a1) * 8);
    r4 = Out((a0 - a1) * 8);
  }
  const U z = (a2 + a3) * C(17734);
  const int16_t r2 = Out(Sra(a2 * C(25080) + z + kRound, kShift));
  const int16_t r6 = Out(Sra(a3 * C(-60547) + z + kRound, kShift));

  const U p = (d2 + d1) * 8, q = (d1 - d2) * 8;
  const U t0 = C(Sra(d0 * C(46341) + 2048, 12));
  const U t3 = C(Sra(d3 * C(46341) + 2048, 12));
  const U e0 = t0 + p, e1 = t0 - p, e2 = t3 + q, e3 = t3 - q;
  const U z1 = (e0 + e2) * C(799);
  const int16_t r1 = Out(Sra(z1 + e0 * C(3218) + kRound, kShift));
  const int16_t r7 = Out(Sra(z1 + e2 * C(-4816) + kRound, kShift));
  const U z2 = (e1 + e3) * C(3406);
  const int16_t r5 = Out(Sra(z2 + e1 * C(-1130) + kRound, kShift));
  const int16_t r3 = Out(Sra(z2 + e3 * C(-5681) + kRound, kShift));

  out[0] = r0, out[out_stride] = r1, out[2 * out_stride] = r2, out[3 * out_stride] = r3;
  out[4 * out_stride] = r4, out[5 * out_stride] = r5, out[6 * out_stride] = r6;
  out[7 * out_stride] = r7;
}

// One inverse butterfly; kFinal selects pass 2 (outputs rounded at 21 bits instead
// of 12; the 12-bit roundings inside g and h stay).
template <bool kFinal>
inline void InvDct1D(const int16_t* in, int in_stride, int16_t* out, int out_stride) {
  using namespace dct_detail;
  constexpr int kShift = kFinal ? 21 : 12;
  constexpr U kRound = U{1} << (kShift - 1);
  const U x0 = In(in[0]), x1 = In(in[in_stride]), x2 = In(in[2 * in_stride]),
          x3 = In(in[3 * in_stride]), x4 = In(in[4 * in_stride]), x5 = In(in[5 * in_stride]),
          x6 = In(in[6 * in_stride]), x7 = In(in[7 * in_stride]);
  // Odd part.
  const U z5 = (x5 + x3) * C(27246);
  const U a = z5 + x5 * C(-9041), b = z5 + x3 * C(-45451);
  const U z6 = (x1 + x7) * C(6393);
  const U c = z6 + x1 * C(25746), d = z6 + x7 * C(-38531);
  const U e = c - a, f = d - b;
  const U g = C(Sra(a + c + 2048, 12)) * C(5793);
  const U h = C(Sra(b + d + 2048, 12)) * C(5793);
  const U p = e + f, q = e - f;
  // Even part.
  const U e0 = (x0 + x4) << 15, e1 = (x0 - x4) << 15;
  const U z1 = (x2 + x6) * C(17734);
  const U r = z1 + x2 * C(25080), s = z1 + x6 * C(-60547);
  const U t0 = e0 + r, t3 = e0 - r, t1 = e1 + s, t2 = e1 - s;

  out[0] = Out(Sra(t0 + g + kRound, kShift));
  out[7 * out_stride] = Out(Sra(t0 - g + kRound, kShift));
  out[out_stride] = Out(Sra(t1 + p + kRound, kShift));
  out[6 * out_stride] = Out(Sra(t1 - p + kRound, kShift));
  out[2 * out_stride] = Out(Sra(t2 + q + kRound, kShift));
  out[5 * out_stride] = Out(Sra(t2 - q + kRound, kShift));
  out[3 * out_stride] = Out(Sra(t3 + h + kRound, kShift));
  out[4 * out_stride] = Out(Sra(t3 - h + kRound, kShift));
}

// The inverse transform of a block whose only non-zero coefficient is the DC term:
// every sample takes this value. Pass 1 turns column 0 into (y, ..., y) and the
// other columns into zeros, so each row of pass 2 sees (y, 0, ..., 0).
inline int16_t InvDctOfDc(int16_t dc) {
  int16_t line[8] = {dc}, out[8];
  InvDct1D<false>(line, 1, out, 1);
  line[0] = out[0];
  InvDct1D<true>(line, 1, out, 1);
  return out[0];
}

// Forward DCT of a natural-order block; src may equal dst.
inline void FwdDct8x8(const int16_t* src, int16_t* dst) {
  int16_t tmp[64];
  for (int r = 0; r < 8; ++r) FwdDct1D<false>(src + 8 * r, 1, tmp + 8 * r, 1);
  for (int c = 0; c < 8; ++c) FwdDct1D<true>(tmp + c, 8, dst + c, 8);
}

// Inverse DCT of a natural-order block; src may equal dst.
inline void InvDct8x8(const int16_t* src, int16_t* dst) {
  int16_t tmp[64];
  for (int c = 0; c < 8; ++c) InvDct1D<false>(src + c, 8, tmp + c, 8);
  for (int r = 0; r < 8; ++r) InvDct1D<true>(tmp + 8 * r, 1, dst + 8 * r, 1);
}

// Zig-zag reordering of a block (T.81 figure A.6); src and dst must not overlap.
template <class S, class D>
inline void ZigzagToNatural(const S* zigzag, D* natural) {
  for (int k = 0; k < 64; ++k) natural[k] = zigzag[zigzag_index_Fwd[k]];
}
template <class T>
inline void NaturalToZigzag(const T* natural, T* zigzag) {
  for (int i = 0; i < 64; ++i) zigzag[i] = natural[zigzag_index_Inv[i]];
}

// Level shifts of one row: 8-bit samples to signed 16-bit and back with clamping.
inline void Sub128Row(const uint8_t* src, int16_t* dst, int n) {
  for (int i = 0; i < n; ++i) dst[i] = static_cast<int16_t>(src[i] - 128);
}
inline void Add128Row(const int16_t* src, uint8_t* dst, int n) {
  for (int i = 0; i < n; ++i) {
    const int32_t v = src[i] + 128;
    dst[i] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
  }
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_DCT_REF_H_
