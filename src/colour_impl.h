// SPDX-License-Identifier: BSD-3-Clause
// Private to the colour conversion families: the argument checks and row loop of
// the plane conversions, their scalar (table-driven) row kernels built from pixel
// layout traits, the MCU geometries and the scalar MCU kernels. The vector kernels
// of simd/ compute the same values and hand row tails to these.
#ifndef KROJ_SRC_COLOUR_IMPL_H_
#define KROJ_SRC_COLOUR_IMPL_H_

#include <string.h>

#include "kro_base.h"
#include "kro_checks.h"
#include "kro_parallel.h"
#include "ref/colour_ref.h"
#include "tables.h"

namespace kro {

// ---- Plane conversions: checks and row loop ----

// A row kernel converts `width` pixels. src[k] and dst[k] point at the current row
// of plane k; an interleaved side has a single entry. The ownpj_* kernels of the
// conversion files (one per SIMD target, chosen at each call) have this type.
template <class S, class D>
using PlaneRowFn = void (*)(const S* const* src, D* const* dst, int width);

enum class Rows { kSerial, kParallel };

// Checks, in this order: every pointer (the plane arrays and each plane of them) ->
// -8; srcStep or dstStep < 1 -> -14; width < 1, then height < 1 -> -6. Then the rows,
// on the calling thread or under the row-parallel rule.
template <int kSrcPlanes, int kDstPlanes, Rows kRows, class S, class D>
KroStatus ConvertPlanes(const S* const* pSrc, int srcStep, D* const* pDst, int dstStep,
                        KroiSize roiSize, PlaneRowFn<S, D> row) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  for (int k = 0; k < kSrcPlanes; ++k)
    if (pSrc[k] == nullptr) return kroStatusNullPointer;
  for (int k = 0; k < kDstPlanes; ++k)
    if (pDst[k] == nullptr) return kroStatusNullPointer;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  if (BadSize(roiSize)) return kroStatusBadSize;

  auto convert_row = [&](int y) {
    const S* src[kSrcPlanes];
    D* dst[kDstPlanes];
    for (int k = 0; k < kSrcPlanes; ++k) src[k] = RowPtr(pSrc[k], srcStep, y);
    for (int k = 0; k < kDstPlanes; ++k) dst[k] = RowPtr(pDst[k], dstStep, y);
    row(src, dst, roiSize.width);
  };
  if constexpr (kRows == Rows::kParallel) {
    ForEachRow(roiSize.width, roiSize.height, convert_row);
  } else {
    for (int y = 0; y < roiSize.height; ++y) convert_row(y);
  }
  return kroStatusOk;
}

// ---- Plane conversions: table-driven pixel arithmetic ----
// Three lookups and two additions per encoder component, one or two lookups per
// decoder component; the values are those of ref::PlaneY .. ref::PlaneRgb.

// Y, Cb, Cr of 8-bit R, G, B. The unsigned sums stay below 2^24.
inline uint8_t TableY(ref::Rgb p) {
  return static_cast<uint8_t>(
      (cc_table[kCcYR + p.r] + cc_table[kCcYG + p.g] + cc_table[kCcYB + p.b]) >> 16);
}
inline uint8_t TableCb(ref::Rgb p) {
  return static_cast<uint8_t>(
      (cc_table[kCcCbR + p.r] + cc_table[kCcCbG + p.g] + cc_table[kCcHalf + p.b]) >> 16);
}
inline uint8_t TableCr(ref::Rgb p) {
  return static_cast<uint8_t>(
      (cc_table[kCcHalf + p.r] + cc_table[kCcCrG + p.g] + cc_table[kCcCrB + p.b]) >> 16);
}

// Clamped R, G, B of 8-bit Y, Cb, Cr.
inline ref::Rgb TableRgb(int32_t y, int cb, int cr) {
  return {ref::Clamp255(y + cr_r_tbl[cr]), ref::Clamp255(y + ((cb_g_tbl[cb] + cr_g_tbl[cr]) >> 16)),
          ref::Clamp255(y + cb_b_tbl[cb])};
}

// ---- Plane conversions: pixel layouts ----
// An encoder source yields R, G, B (and K) of pixel x; a decoder source yields Y, Cb,
// Cr (and K). Destinations store what they are given.

struct Px {
  ref::Rgb c;  // R, G, B or Y, Cb, Cr
  int32_t k;   // fourth component where there is one
};

// Three or four separate 8-bit planes, components in plane order.
template <int kPlanes>
struct PlanesIn {
  using T = Kro8u;
  static Px Load(const T* const* s, int x) {
    return {{s[0][x], s[1][x], s[2][x]}, kPlanes == 4 ? s[kPlanes - 1][x] : 0};
  }
};
template <int kPlanes>
struct PlanesOut {
  using T = Kro8u;
  static void Store(T* const* d, int x, Px p) {
    d[0][x] = static_cast<T>(p.c.r);
    d[1][x] = static_cast<T>(p.c.g);
    d[2][x] = static_cast<T>(p.c.b);
    if constexpr (kPlanes == 4) d[3][x] = static_cast<T>(p.k);
  }
};

// Interleaved bytes, kChannels per pixel; R (or C) at byte kFirst and B (or Y) at
// byte 2 - kFirst, so kFirst = 2 reads BGR. A fourth channel is K.
template <int kChannels, int kFirst>
struct BytesIn {
  using T = Kro8u;
  static Px Load(const T* const* s, int x) {
    const T* p = s[0] + kChannels * x;
    return {{p[kFirst], p[1], p[2 - kFirst]}, kChannels == 4 ? p[kChannels - 1] : 0};
  }
};
template <int kChannels, int kFirst>
struct BytesOut {
  using T = Kro8u;
  static void Store(T* const* d, int x, Px p) {
    T* q = d[0] + kChannels * x;
    q[kFirst] = static_cast<T>(p.c.r);
    q[1] = static_cast<T>(p.c.g);
    q[2 - kFirst] = static_cast<T>(p.c.b);
    if constexpr (kChannels == 4) q[3] = static_cast<T>(p.k);
  }
};

// One 16-bit word per pixel in a ref::Packed format. Rows of words may start at any
// byte (the step is in bytes and may be odd), so words are moved with memcpy.
template <class Format>
struct PackedIn {
  using T = Kro16u;
  static Px Load(const T* const* s, int x) {
    Kro16u w;
    memcpy(&w, s[0] + x, sizeof w);
    return {Format::Unpack(w), 0};
  }
};
template <class Format>
struct PackedOut {
  using T = Kro16u;
  static void Store(T* const* d, int x, Px p) {
    const Kro16u w = Format::Pack(p.c);
    memcpy(d[0] + x, &w, sizeof w);
  }
};

// Y alone.
struct LumaOut {
  using T = Kro8u;
  static void Store(T* const* d, int x, Px p) { d[0][x] = static_cast<T>(p.c.r); }
};

// ---- Plane conversions: row kernels ----

enum class Ink { kNone, kComplement };  // CMYK carries the complements of R, G, B

// RGB-like pixels x .. width-1 -> Y, Cb, Cr (and K). With kLumaOnly only Y is
// computed. A vector row converts the first pixels and hands the rest to this one.
template <class In, class Out, Ink kInk = Ink::kNone, bool kLumaOnly = false>
void EncodeRow(const typename In::T* const* src, typename Out::T* const* dst, int width,
               int x = 0) {
  for (; x < width; ++x) {
    Px p = In::Load(src, x);
    if constexpr (kInk == Ink::kComplement) p.c = {255 - p.c.r, 255 - p.c.g, 255 - p.c.b};
    if constexpr (kLumaOnly) {
      Out::Store(dst, x, {{TableY(p.c), 0, 0}, 0});
    } else {
      Out::Store(dst, x, {{TableY(p.c), TableCb(p.c), TableCr(p.c)}, p.k});
    }
  }
}

// Y, Cb, Cr (and K) -> RGB-like pixels, clamped (and complemented for CMYK).
template <class In, class Out, Ink kInk = Ink::kNone>
void DecodeRow(const typename In::T* const* src, typename Out::T* const* dst, int width,
               int x = 0) {
  for (; x < width; ++x) {
    Px p = In::Load(src, x);
    p.c = TableRgb(p.c.r, p.c.g, p.c.b);
    if constexpr (kInk == Ink::kComplement) p.c = {255 - p.c.r, 255 - p.c.g, 255 - p.c.b};
    Out::Store(dst, x, p);
  }
}

// ---- Plane up- and down-sampling ----

// Checks, in this order: pSrc null -8; srcStep < 1 -14; source width or height < 1
// -6; pDst null -8; dstStep < 1 -14; destination width < 1, then height < 1, -6.
// The destination size drives the loop (row-parallel); the source size is only
// checked. row(y, dst_row) finds its own source rows.
template <class RowFn>
KroStatus ResamplePlane(const Kro8u* pSrc, int srcStep, KroiSize srcRoiSize, Kro8u* pDst,
                        int dstStep, KroiSize dstRoiSize, RowFn&& row) {
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (BadStep(srcStep)) return kroStatusBadStep;
  if (BadSize(srcRoiSize)) return kroStatusBadSize;
  if (pDst == nullptr) return kroStatusNullPointer;
  if (BadStep(dstStep)) return kroStatusBadStep;
  if (BadSize(dstRoiSize)) return kroStatusBadSize;
  ForEachRow(dstRoiSize.width, dstRoiSize.height, [&](int y) { row(y, RowPtr(pDst, dstStep, y)); });
  return kroStatusOk;
}

// ---- MCU geometry ----
// Chroma is subsampled by 2^kLog2X horizontally and 2^kLog2Y vertically: 444 (8x8),
// 422 (16x8) and 411 (16x16). The full-resolution components (luminance, and K of
// CMYK/YCCK) fill 1, 2 or 4 blocks left to right, then top to bottom.
template <int kLog2X, int kLog2Y>
struct McuGeometry {
  static constexpr int kShiftX = kLog2X, kShiftY = kLog2Y;
  static constexpr int kLog2Group = kLog2X + kLog2Y;  // pixels per chroma sample, log2
  static constexpr int kWidth = 8 << kLog2X, kHeight = 8 << kLog2Y;
  // Index of pixel (x, y) in the full-resolution component's blocks.
  static constexpr int FullIndex(int x, int y) {
    return 64 * (((y >> 3) << kLog2X) + (x >> 3)) + 8 * (y & 7) + (x & 7);
  }
};
using Mcu444 = McuGeometry<0, 0>;
using Mcu422 = McuGeometry<1, 0>;
using Mcu411 = McuGeometry<1, 1>;

// What an MCU function does besides sampling and the level shift of 128: convert
// between RGB-like pixels and Y, Cb, Cr (three components), between CMYK and YCCK
// (the complements of R, G, B, and K at full resolution laid out like the
// luminance), or nothing (the samples are already in the output colour space).
enum class McuKind { kYCbCr, kYCCK, kNone };

// ---- MCU kernels (scalar) ----
// The vector kernels of simd/mcu-inl.h compute the same values.

// One MCU of pixels -> level-shifted blocks: luminance (or the first component, and
// K) per pixel, chroma from the sums of each group's R, G, B. The chroma of a 2- or
// 4-pixel group is computed from the sums with the shift widened by one or two bits,
// i.e. the floor of the chroma of the mean colour.
template <class G, class In, McuKind kKind>
void EncodeMcuBlocks(const typename In::T* pSrc, int srcStep, Kro16s* const* dst);

// Encoder input, the 4:2:2 byte stream Y0 Cb Y1 Cr: pixel x reads its own Y and the
// chroma of its pair, so the floor mean over the pair is the pair's chroma sample.
struct YCbYCrIn {
  using T = Kro8u;
  static Px Load(const T* const* s, int x) {
    const T* pair = s[0] + 4 * (x >> 1);
    return {{s[0][2 * x], pair[1], pair[3]}, 0};
  }
};

template <class G, class In, McuKind kKind>
void EncodeMcuBlocks(const typename In::T* pSrc, int srcStep, Kro16s* const* dst) {
  constexpr int kGroupX = 1 << G::kShiftX, kGroupY = 1 << G::kShiftY;
  for (int cy = 0; cy < 8; ++cy) {
    for (int cx = 0; cx < 8; ++cx) {
      ref::Rgb sum{0, 0, 0};
      for (int dy = 0; dy < kGroupY; ++dy) {
        const int y = cy * kGroupY + dy;
        const typename In::T* row = RowPtr(pSrc, srcStep, y);
        for (int dx = 0; dx < kGroupX; ++dx) {
          const int x = cx * kGroupX + dx;
          Px p = In::Load(&row, x);
          const int full = G::FullIndex(x, y);
          if constexpr (kKind == McuKind::kNone) {
            dst[0][full] = static_cast<Kro16s>(p.c.r - 128);
          } else {
            if constexpr (kKind == McuKind::kYCCK) {
              p.c = {255 - p.c.r, 255 - p.c.g, 255 - p.c.b};
              dst[3][full] = static_cast<Kro16s>(p.k - 128);
            }
            dst[0][full] = ref::McuY(p.c);
          }
          sum = {sum.r + p.c.r, sum.g + p.c.g, sum.b + p.c.b};
        }
      }
      const int c = 8 * cy + cx;
      if constexpr (kKind == McuKind::kNone) {
        dst[1][c] = static_cast<Kro16s>((sum.g >> G::kLog2Group) - 128);
        dst[2][c] = static_cast<Kro16s>((sum.b >> G::kLog2Group) - 128);
      } else {
        dst[1][c] = ref::McuCb(sum, G::kLog2Group);
        dst[2][c] = ref::McuCr(sum, G::kLog2Group);
      }
    }
  }
}

// Level-shifted blocks -> one MCU of pixels, each chroma sample replicated over its
// group. The colour arithmetic works directly on the signed samples without
// rounding terms (ref::McuChromaTerms, ref::McuRgb).
template <class G, class Out, McuKind kKind>
void DecodeMcuBlocks(const Kro16s* const* src, typename Out::T* pDst, int dstStep);

// Decoder output, the 4:2:2 byte stream Y0 Cb Y1 Cr: each pixel writes its Y and, at
// the byte after it, Cb for the left pixel of a pair and Cr for the right one.
struct YCbYCrOut {
  using T = Kro8u;
  static void Store(T* const* d, int x, Px p) {
    d[0][2 * x] = static_cast<T>(p.c.r);
    d[0][2 * x + 1] = static_cast<T>((x & 1) ? p.c.b : p.c.g);
  }
};

template <class G, class Out, McuKind kKind>
void DecodeMcuBlocks(const Kro16s* const* src, typename Out::T* pDst, int dstStep) {
  constexpr int kGroupX = 1 << G::kShiftX, kGroupY = 1 << G::kShiftY;
  for (int cy = 0; cy < 8; ++cy) {
    for (int cx = 0; cx < 8; ++cx) {
      const int cb = src[1][8 * cy + cx], cr = src[2][8 * cy + cx];
      const ref::ChromaTerms terms = ref::McuChromaTerms(cb, cr);
      for (int dy = 0; dy < kGroupY; ++dy) {
        const int y = cy * kGroupY + dy;
        typename Out::T* row = RowPtr(pDst, dstStep, y);
        for (int dx = 0; dx < kGroupX; ++dx) {
          const int x = cx * kGroupX + dx;
          const int full = G::FullIndex(x, y);
          Px p{};
          if constexpr (kKind == McuKind::kNone) {
            p.c = {ref::Clamp255(src[0][full] + 128), ref::Clamp255(cb + 128),
                   ref::Clamp255(cr + 128)};
          } else {
            p.c = ref::McuRgb(src[0][full], terms);
          }
          if constexpr (kKind == McuKind::kYCCK) {
            p.c = {255 - p.c.r, 255 - p.c.g, 255 - p.c.b};
            p.k = static_cast<uint8_t>(src[3][full] + 128);  // wraps, never clamped
          }
          Out::Store(&row, x, p);
        }
      }
    }
  }
}

}  // namespace kro

#endif  // KROJ_SRC_COLOUR_IMPL_H_
