// SPDX-License-Identifier: BSD-3-Clause
// Chroma up-sampling by two with a triangle filter: the row functions (edges
// replicated) and the row-parallel plane functions (caller-supplied border).
#include "colour_impl.h"
#include "ref/sampling_ref.h"

namespace {

// The H2V2 and H1V2 row functions share one computation, kept identical for
// callers that use either name.
KroStatus UpRowH2V2(const Kro8u* pSrc1, const Kro8u* pSrc2, int srcWidth, Kro8u* pDst) {
  if (kro::AnyNull(pSrc1, pSrc2, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  kro::ref::UpRowH2V2Triangle(pSrc1, pSrc2, srcWidth, pDst);
  return kroStatusOk;
}

}  // namespace

KRO_EXPORT KroStatus kroiSampleUpH2V1_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                  KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                  KroiSize dstRoiSize) {
  return kro::ResamplePlane(
      pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, [&](int y, Kro8u* d) {
        kro::ref::UpH2V1Row(kro::RowPtr(pSrc, srcStep, y), d, dstRoiSize.width);
      });
}

// Destination row y lies nearest to source row y / 2; its farther neighbour is the
// row above for even y and the row below for odd y. The first and last destination
// rows read the caller's border rows.
KRO_EXPORT KroStatus kroiSampleUpH2V2_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                  KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                  KroiSize dstRoiSize) {
  return kro::ResamplePlane(
      pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, [&](int y, Kro8u* d) {
        const int near = y >> 1, far = (y & 1) ? near + 1 : near - 1;
        kro::ref::UpH2V2Row(kro::RowPtr(pSrc, srcStep, near), kro::RowPtr(pSrc, srcStep, far), d,
                            dstRoiSize.width);
      });
}

KRO_EXPORT KroStatus kroiSampleUpRowH1V2_Triangle_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                             int srcWidth, Kro8u* pDst) {
  return UpRowH2V2(pSrc1, pSrc2, srcWidth, pDst);
}

KRO_EXPORT KroStatus kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Kro8u* pSrc, int srcWidth,
                                                             Kro8u* pDst) {
  if (kro::AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  kro::ref::UpRowH2V1Triangle(pSrc, srcWidth, pDst);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                             int srcWidth, Kro8u* pDst) {
  return UpRowH2V2(pSrc1, pSrc2, srcWidth, pDst);
}
