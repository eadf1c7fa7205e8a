// SPDX-License-Identifier: BSD-3-Clause
// MCU conversion, decoder side: the level-shifted 8x8 blocks of one MCU -> interleaved
// pixels, with chroma up-sampling by replication in the 444 (8x8), 422 (16x8) and
// 411 (16x16) geometries, colour conversion, +128 and clamping.
//
// The colour arithmetic works directly on the signed samples without rounding terms
// (ref::McuChromaTerms, ref::McuRgb): every product truncates toward minus infinity.
// The products are 32-bit two's complement, so samples far outside -128..127 wrap
// them as a 32-bit multiply does; existing callers see those results.
#include "colour_impl.h"

namespace kro {
namespace {

// The 4:2:2 byte stream Y0 Cb Y1 Cr: each pixel writes its Y and, at the byte
// after it, Cb for the left pixel of a pair and Cr for the right one.
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

// Checks, in this order: pSrcMCU or pDst null -8; each component block null -8;
// dstStep < 1 -14.
template <class G, class Out, McuKind kKind>
KroStatus DecodeMcu(const Kro16s* const* pSrcMCU, typename Out::T* pDst, int dstStep) {
  constexpr int kComponents = kKind == McuKind::kYCCK ? 4 : 3;
  if (AnyNull(pSrcMCU, pDst)) return kroStatusNullPointer;
  for (int k = 0; k < kComponents; ++k)
    if (pSrcMCU[k] == nullptr) return kroStatusNullPointer;
  if (BadStep(dstStep)) return kroStatusBadStep;
  DecodeMcuBlocks<G, Out, kKind>(pSrcMCU, pDst, dstStep);
  return kroStatusOk;
}

using RgbBytes = BytesOut<3, 0>;
using BgrBytes = BytesOut<3, 2>;
using Bgr555Words = PackedOut<ref::Bgr555>;
using Bgr565Words = PackedOut<ref::Bgr565>;
using CmykBytes = BytesOut<4, 0>;
using RawBytes = BytesOut<3, 0>;

}  // namespace
}  // namespace kro

using kro::DecodeMcu;
using kro::Mcu411;
using kro::Mcu422;
using kro::Mcu444;
using kro::McuKind;

KRO_EXPORT KroStatus kroiJoin422LS_MCU_16s8u_P3C2R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                   int dstStep) {
  return DecodeMcu<Mcu422, kro::YCbYCrOut, McuKind::kNone>(pSrcMCU, pDst, dstStep);
}

KRO_EXPORT KroStatus kroiSampleUp411LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                       int dstStep) {
  return DecodeMcu<Mcu411, kro::RawBytes, McuKind::kNone>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiSampleUp422LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                       int dstStep) {
  return DecodeMcu<Mcu422, kro::RawBytes, McuKind::kNone>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiSampleUp444LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                       int dstStep) {
  return DecodeMcu<Mcu444, kro::RawBytes, McuKind::kNone>(pSrcMCU, pDst, dstStep);
}

KRO_EXPORT KroStatus kroiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu411, kro::CmykBytes, McuKind::kYCCK>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu422, kro::CmykBytes, McuKind::kYCCK>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu444, kro::CmykBytes, McuKind::kYCCK>(pSrcMCU, pDst, dstStep);
}

KRO_EXPORT KroStatus kroiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<Mcu411, kro::Bgr555Words, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<Mcu411, kro::Bgr565Words, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu411, kro::BgrBytes, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu411, kro::RgbBytes, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}

KRO_EXPORT KroStatus kroiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<Mcu422, kro::Bgr555Words, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<Mcu422, kro::Bgr565Words, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu422, kro::BgrBytes, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu422, kro::RgbBytes, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}

KRO_EXPORT KroStatus kroiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<Mcu444, kro::Bgr555Words, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<Mcu444, kro::Bgr565Words, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu444, kro::BgrBytes, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
KRO_EXPORT KroStatus kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<Mcu444, kro::RgbBytes, McuKind::kYCbCr>(pSrcMCU, pDst, dstStep);
}
