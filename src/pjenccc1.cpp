// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion CMYK -> YCCK: C, M, Y are the complements of R, G, B
// (Adobe-style inks), converted like RGB; K passes through unchanged.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjenccc1.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/colour-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void ownpj_CMYKToYCCK_JPEG_8u_P4R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<PlanesInV<4>, PlanesOutV<4>, Ink::kComplement>(src, dst, width);
}
void ownpj_CMYKToYCCK_JPEG_8u_C4P4R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<BytesInV<4, 0>, PlanesOutV<4>, Ink::kComplement>(src, dst, width);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_CMYKToYCCK_JPEG_8u_P4R);
HWY_EXPORT(ownpj_CMYKToYCCK_JPEG_8u_C4P4R);

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiCMYKToYCCK_JPEG_8u_C4P4R(const Kro8u* pSrc, int srcStep,
                                                  Kro8u* const pDst[4], int dstStep,
                                                  KroiSize roiSize) {
  return ConvertPlanes<1, 4, Rows::kParallel>(
      &pSrc, srcStep, pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_CMYKToYCCK_JPEG_8u_C4P4R));
}

KRO_EXPORT KroStatus kroiCMYKToYCCK_JPEG_8u_P4R(const Kro8u* const pSrc[4], int srcStep,
                                                Kro8u* const pDst[4], int dstStep,
                                                KroiSize roiSize) {
  return ConvertPlanes<4, 4, Rows::kParallel>(
      pSrc, srcStep, pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_CMYKToYCCK_JPEG_8u_P4R));
}
#endif  // HWY_ONCE
