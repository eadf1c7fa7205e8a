// SPDX-License-Identifier: BSD-3-Clause
// Chroma down-sampling by two with a box filter: the row functions (alternating
// rounding) and the row-parallel plane functions (constant rounding).
#include "colour_impl.h"
#include "ref/sampling_ref.h"

KRO_EXPORT KroStatus kroiSampleDownH2V1_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                    KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                    KroiSize dstRoiSize) {
  return kro::ResamplePlane(
      pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, [&](int y, Kro8u* d) {
        kro::ref::DownH2V1Row(kro::RowPtr(pSrc, srcStep, y), d, dstRoiSize.width);
      });
}

KRO_EXPORT KroStatus kroiSampleDownH2V2_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                    KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                    KroiSize dstRoiSize) {
  return kro::ResamplePlane(
      pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, [&](int y, Kro8u* d) {
        kro::ref::DownH2V2Row(kro::RowPtr(pSrc, srcStep, 2 * y),
                              kro::RowPtr(pSrc, srcStep, 2 * y + 1), d, dstRoiSize.width);
      });
}

KRO_EXPORT KroStatus kroiSampleDownRowH2V1_Box_JPEG_8u_C1(const Kro8u* pSrc, int srcWidth,
                                                          Kro8u* pDst) {
  if (kro::AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  kro::ref::DownRowH2V1Box(pSrc, srcWidth, pDst);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiSampleDownRowH2V2_Box_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                          int srcWidth, Kro8u* pDst) {
  if (kro::AnyNull(pSrc1, pSrc2, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  kro::ref::DownRowH2V2Box(pSrc1, pSrc2, srcWidth, pDst);
  return kroStatusOk;
}
