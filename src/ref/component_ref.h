// SPDX-License-Identifier: BSD-3-Clause
// Reference pixels and rows of the JPEG 2000 component transforms (T.800 G.2 reversible,
// G.3 irreversible): the formulas once, shared by the planar and interleaved forms.
#ifndef KROJ_SRC_REF_COMPONENT_REF_H_
#define KROJ_SRC_REF_COMPONENT_REF_H_

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "kro_base.h"

namespace kro::ref {

// Caller rows may start at any byte (the step is in bytes), so samples move by memcpy.
template <class T>
inline T LoadPx(const T* p) {
  T v;
  memcpy(&v, p, sizeof(T));
  return v;
}
template <class T>
inline void StorePx(T* p, T v) {
  memcpy(p, &v, sizeof(T));
}

// Each transform maps the three samples of a pixel to three others. Integer forms
// work in 32-bit two's complement (16-bit inputs are sign-extended, so nothing wraps
// before the store) and keep the low bits of the result on the store.

// Reversible: Y = (R + 2G + B) >> 2, U = B - G, V = R - G.
struct RctFwd {
  template <class T>
  static void Apply(const T in[3], T out[3]) {
    const int32_t r = in[0], g = in[1], b = in[2];
    out[0] = static_cast<T>(Sra(AddWrap32(AddWrap32(r, ShlWrap32(g, 1)), b), 2));
    out[1] = static_cast<T>(SubWrap32(b, g));
    out[2] = static_cast<T>(SubWrap32(r, g));
  }
};

// G = Y - ((U + V) >> 2), R = V + G, B = U + G.
struct RctInv {
  template <class T>
  static void Apply(const T in[3], T out[3]) {
    const int32_t y = in[0], u = in[1], v = in[2];
    const int32_t g = SubWrap32(y, Sra(AddWrap32(u, v), 2));
    out[0] = static_cast<T>(AddWrap32(v, g));
    out[1] = static_cast<T>(g);
    out[2] = static_cast<T>(AddWrap32(u, g));
  }
};

// Irreversible, 2^-14 fixed point: the forward rounds each whole sum once, adding
// 8192 before the arithmetic shift. The 32-bit forms wrap on overflow.
constexpr int32_t kIctRound = 8192;  // 0.5 * 2^14
constexpr int32_t FixDot3(int32_t c0, int32_t a, int32_t c1, int32_t b, int32_t c2, int32_t c) {
  return Sra(AddWrap32(AddWrap32(AddWrap32(MulWrap32(c0, a), MulWrap32(c1, b)), MulWrap32(c2, c)),
                       kIctRound),
             14);
}

struct IctFwdFixed {
  static constexpr int32_t kYR = 4899, kYG = 9617, kYB = 1868;    // 0.299, 0.587, 0.114
  static constexpr int32_t kUR = -2765, kUG = -5427, kUB = 8192;  // -0.16875, -0.33126, 0.5
  static constexpr int32_t kVR = 8192, kVG = -6860, kVB = -1332;  // 0.5, -0.41869, -0.08131
  template <class T>
  static void Apply(const T in[3], T out[3]) {
    const int32_t r = in[0], g = in[1], b = in[2];
    out[0] = static_cast<T>(FixDot3(kYR, r, kYG, g, kYB, b));
    out[1] = static_cast<T>(FixDot3(kUR, r, kUG, g, kUB, b));
    out[2] = static_cast<T>(FixDot3(kVR, r, kVG, g, kVB, b));
  }
};

// The inverse rounds each correction term separately and adds Y afterwards.
struct IctInvFixed {
  static constexpr int32_t kRV = 22970;                // 1.402 * 2^14
  static constexpr int32_t kGU = -5638, kGV = -11700;  // -0.34413, -0.71414
  static constexpr int32_t kBU = 29032;                // 1.772 * 2^14
  template <class T>
  static void Apply(const T in[3], T out[3]) {
    const int32_t y = in[0], u = in[1], v = in[2];
    out[0] = static_cast<T>(AddWrap32(y, Sra(AddWrap32(MulWrap32(kRV, v), kIctRound), 14)));
    out[1] = static_cast<T>(AddWrap32(
        y, Sra(AddWrap32(AddWrap32(MulWrap32(kGU, u), MulWrap32(kGV, v)), kIctRound), 14)));
    out[2] = static_cast<T>(AddWrap32(y, Sra(AddWrap32(MulWrap32(kBU, u), kIctRound), 14)));
  }
};

// Single-precision forms: each sample is widened to double, the products and sums are
// formed left to right in double, and each result is rounded to float once.
struct IctFwdFloat {
  static void Apply(const float in[3], float out[3]) {
    const double r = in[0], g = in[1], b = in[2];
    out[0] = static_cast<float>((0.299 * r + 0.587 * g) + 0.114 * b);
    out[1] = static_cast<float>((-0.16875 * r - 0.33126 * g) + 0.5 * b);
    out[2] = static_cast<float>((0.5 * r - 0.41869 * g) - 0.08131 * b);
  }
};

struct IctInvFloat {
  static void Apply(const float in[3], float out[3]) {
    const double y = in[0], u = in[1], v = in[2];
    out[0] = static_cast<float>(y + 1.402 * v);
    out[1] = static_cast<float>((y - 0.34413 * u) - 0.71414 * v);
    out[2] = static_cast<float>(y + 1.772 * u);
  }
};

// One row of width pixels. Component c of pixel x is read at src[c][x * src_stride]
// and written at dst[c][x * dst_stride]: stride 1 for planes, 3 for interleaved
// samples (with src[c] = base + c). All three inputs of a pixel are read before any
// output is written, so dst may equal src (the in-place planar forms).
template <class Op, class T>
inline void Component3Row(const T* const src[3], ptrdiff_t src_stride, T* const dst[3],
                          ptrdiff_t dst_stride, int width) {
  for (int x = 0; x < width; ++x) {
    const ptrdiff_t si = x * src_stride, di = x * dst_stride;
    const T in[3] = {LoadPx(src[0] + si), LoadPx(src[1] + si), LoadPx(src[2] + si)};
    T out[3];
    Op::Apply(in, out);
    for (int c = 0; c < 3; ++c) StorePx(dst[c] + di, out[c]);
  }
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_COMPONENT_REF_H_
