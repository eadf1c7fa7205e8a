// SPDX-License-Identifier: BSD-3-Clause
// Chroma down-sampling by two with a box filter: the row functions (alternating
// rounding) and the row-parallel plane functions (constant rounding), with rows
// compiled per SIMD target and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjencss.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/sampling-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void DownH2V1Row(const uint8_t* s, uint8_t* d, int width) { DownH2V1RowSimd(s, d, width); }
void DownH2V2Row(const uint8_t* a, const uint8_t* c, uint8_t* d, int width) {
  DownH2V2RowSimd(a, c, d, width);
}
void DownRowH2V1Box(const uint8_t* s, int w, uint8_t* d) { DownRowH2V1BoxSimd(s, w, d); }
void DownRowH2V2Box(const uint8_t* a, const uint8_t* c, int w, uint8_t* d) {
  DownRowH2V2BoxSimd(a, c, w, d);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "colour_impl.h"

namespace kro {

HWY_EXPORT(DownH2V1Row);
HWY_EXPORT(DownH2V2Row);
HWY_EXPORT(DownRowH2V1Box);
HWY_EXPORT(DownRowH2V2Box);

}  // namespace kro

KRO_EXPORT KroStatus kroiSampleDownH2V1_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                    KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                    KroiSize dstRoiSize) {
  const auto row = HWY_DYNAMIC_DISPATCH(kro::DownH2V1Row);
  return kro::ResamplePlane(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize,
                            [&](int y, Kro8u* d) {
                              row(kro::RowPtr(pSrc, srcStep, y), d, dstRoiSize.width);
                            });
}

KRO_EXPORT KroStatus kroiSampleDownH2V2_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                    KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                    KroiSize dstRoiSize) {
  const auto row = HWY_DYNAMIC_DISPATCH(kro::DownH2V2Row);
  return kro::ResamplePlane(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize,
                            [&](int y, Kro8u* d) {
                              row(kro::RowPtr(pSrc, srcStep, 2 * y),
                                  kro::RowPtr(pSrc, srcStep, 2 * y + 1), d, dstRoiSize.width);
                            });
}

KRO_EXPORT KroStatus kroiSampleDownRowH2V1_Box_JPEG_8u_C1(const Kro8u* pSrc, int srcWidth,
                                                          Kro8u* pDst) {
  if (kro::AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  HWY_DYNAMIC_DISPATCH(kro::DownRowH2V1Box)(pSrc, srcWidth, pDst);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiSampleDownRowH2V2_Box_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                          int srcWidth, Kro8u* pDst) {
  if (kro::AnyNull(pSrc1, pSrc2, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  HWY_DYNAMIC_DISPATCH(kro::DownRowH2V2Box)(pSrc1, pSrc2, srcWidth, pDst);
  return kroStatusOk;
}
#endif  // HWY_ONCE
