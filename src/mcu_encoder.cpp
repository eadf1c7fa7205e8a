// SPDX-License-Identifier: BSD-3-Clause
// MCU conversion, encoder side: one MCU of interleaved pixels -> level-shifted 8x8
// blocks of Kro16s, with colour conversion and chroma box-filter down-sampling in
// the 444 (8x8), 422 (16x8) and 411 (16x16) geometries.
//
// The colour arithmetic is that of the plane conversions without any rounding
// term (ref::McuY, ref::McuCb, ref::McuCr): every value truncates. The chroma of
// a 2- or 4-pixel group is computed from the sums of its R, G, B with the shift
// widened by one or two bits, i.e. the floor of the chroma of the mean colour.
#include "colour_impl.h"

namespace kro {
namespace {

// The 4:2:2 byte stream Y0 Cb Y1 Cr: pixel x reads its own Y and the chroma of its
// pair, so the floor mean over the pair is the pair's chroma sample itself.
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

// Checks, in this order: pSrc or pDstMCU null -8; srcStep < 1 -14; each component
// buffer null -8.
template <class G, class In, McuKind kKind>
KroStatus EncodeMcu(const typename In::T* pSrc, int srcStep, Kro16s* const* pDstMCU) {
  constexpr int kComponents = kKind == McuKind::kYCCK ? 4 : 3;
  if (AnyNull(pSrc, pDstMCU)) return kroStatusNullPointer;
  if (BadStep(srcStep)) return kroStatusBadStep;
  for (int k = 0; k < kComponents; ++k)
    if (pDstMCU[k] == nullptr) return kroStatusNullPointer;
  EncodeMcuBlocks<G, In, kKind>(pSrc, srcStep, pDstMCU);
  return kroStatusOk;
}

using RgbBytes = BytesIn<3, 0>;
using BgrBytes = BytesIn<3, 2>;
using Bgr555Words = PackedIn<ref::Bgr555>;
using Bgr565Words = PackedIn<ref::Bgr565>;
using CmykBytes = BytesIn<4, 0>;
using RawBytes = BytesIn<3, 0>;

}  // namespace
}  // namespace kro

using kro::EncodeMcu;
using kro::Mcu411;
using kro::Mcu422;
using kro::Mcu444;
using kro::McuKind;

KRO_EXPORT KroStatus kroiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu411, kro::Bgr555Words, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu422, kro::Bgr555Words, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu444, kro::Bgr555Words, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}

KRO_EXPORT KroStatus kroiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu411, kro::Bgr565Words, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu422, kro::Bgr565Words, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu444, kro::Bgr565Words, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}

KRO_EXPORT KroStatus kroiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu411, kro::BgrBytes, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu422, kro::BgrBytes, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu444, kro::BgrBytes, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}

KRO_EXPORT KroStatus kroiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[4]) {
  return EncodeMcu<Mcu411, kro::CmykBytes, McuKind::kYCCK>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[4]) {
  return EncodeMcu<Mcu422, kro::CmykBytes, McuKind::kYCCK>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[4]) {
  return EncodeMcu<Mcu444, kro::CmykBytes, McuKind::kYCCK>(pSrc, srcStep, pDstMCU);
}

KRO_EXPORT KroStatus kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu411, kro::RgbBytes, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu422, kro::RgbBytes, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu444, kro::RgbBytes, McuKind::kYCbCr>(pSrc, srcStep, pDstMCU);
}

KRO_EXPORT KroStatus kroiSampleDown411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu411, kro::RawBytes, McuKind::kNone>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiSampleDown422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu422, kro::RawBytes, McuKind::kNone>(pSrc, srcStep, pDstMCU);
}
KRO_EXPORT KroStatus kroiSampleDown444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu444, kro::RawBytes, McuKind::kNone>(pSrc, srcStep, pDstMCU);
}

KRO_EXPORT KroStatus kroiSplit422LS_MCU_8u16s_C2P3R(const Kro8u* pSrc, int srcStep,
                                                    Kro16s* pDstMCU[3]) {
  return EncodeMcu<Mcu422, kro::YCbYCrIn, McuKind::kNone>(pSrc, srcStep, pDstMCU);
}
