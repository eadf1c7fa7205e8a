// SPDX-License-Identifier: BSD-3-Clause
// Chroma up-sampling by two with a triangle filter: the row functions (edges
// replicated) and the row-parallel plane functions (caller-supplied border), with
// rows compiled per SIMD target and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjdecss.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/sampling-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void UpH2V1Row(const uint8_t* s, uint8_t* d, int width) { UpH2V1RowSimd(s, d, width); }
void UpH2V2Row(const uint8_t* n, const uint8_t* f, uint8_t* d, int width) {
  UpH2V2RowSimd(n, f, d, width);
}
// The row forms: edge pairs as in the scalar row, the samples between by the plane
// row of this target.
void UpRowH2V1Triangle(const uint8_t* s, int w, uint8_t* d) {
  ref::UpRowH2V1Triangle(s, w, d, &UpH2V1RowSimd);
}
void UpRowH2V2Triangle(const uint8_t* n, const uint8_t* f, int w, uint8_t* d) {
  ref::UpRowH2V2Triangle(n, f, w, d, &UpH2V2RowSimd);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "colour_impl.h"

namespace kro {

HWY_EXPORT(UpH2V1Row);
HWY_EXPORT(UpH2V2Row);
HWY_EXPORT(UpRowH2V1Triangle);
HWY_EXPORT(UpRowH2V2Triangle);

namespace {

// The H2V2 and H1V2 row functions share one computation, kept identical for
// callers that use either name.
KroStatus UpRowH2V2(const Kro8u* pSrc1, const Kro8u* pSrc2, int srcWidth, Kro8u* pDst) {
  if (AnyNull(pSrc1, pSrc2, pDst)) return kroStatusNullPointer;
  if (BadLen(srcWidth)) return kroStatusBadSize;
  HWY_DYNAMIC_DISPATCH(UpRowH2V2Triangle)(pSrc1, pSrc2, srcWidth, pDst);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiSampleUpH2V1_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                  KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                  KroiSize dstRoiSize) {
  const auto row = HWY_DYNAMIC_DISPATCH(kro::UpH2V1Row);
  return kro::ResamplePlane(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize,
                            [&](int y, Kro8u* d) {
                              row(kro::RowPtr(pSrc, srcStep, y), d, dstRoiSize.width);
                            });
}

// Destination row y lies nearest to source row y / 2; its farther neighbour is the
// row above for even y and the row below for odd y. The first and last destination
// rows read the caller's border rows.
KRO_EXPORT KroStatus kroiSampleUpH2V2_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                  KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                  KroiSize dstRoiSize) {
  const auto row = HWY_DYNAMIC_DISPATCH(kro::UpH2V2Row);
  return kro::ResamplePlane(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize,
                            [&](int y, Kro8u* d) {
                              const int near = y >> 1, far = (y & 1) ? near + 1 : near - 1;
                              row(kro::RowPtr(pSrc, srcStep, near), kro::RowPtr(pSrc, srcStep, far),
                                  d, dstRoiSize.width);
                            });
}

KRO_EXPORT KroStatus kroiSampleUpRowH1V2_Triangle_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                             int srcWidth, Kro8u* pDst) {
  return kro::UpRowH2V2(pSrc1, pSrc2, srcWidth, pDst);
}

KRO_EXPORT KroStatus kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Kro8u* pSrc, int srcWidth,
                                                             Kro8u* pDst) {
  if (kro::AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (kro::BadLen(srcWidth)) return kroStatusBadSize;
  HWY_DYNAMIC_DISPATCH(kro::UpRowH2V1Triangle)(pSrc, srcWidth, pDst);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                             int srcWidth, Kro8u* pDst) {
  return kro::UpRowH2V2(pSrc1, pSrc2, srcWidth, pDst);
}
#endif  // HWY_ONCE
