// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion Y, Cb, Cr planes -> R, G, B planes (T.871 7).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjdeccc.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/colour-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void ownpj_YCbCrToRGB_JPEG_8u_P3R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  DecodeRowSimd<PlanesInV<3>, PlanesOutV<3>>(src, dst, width);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_YCbCrToRGB_JPEG_8u_P3R);

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiYCbCrToRGB_JPEG_8u_P3R(const Kro8u* const pSrc[3], int srcStep,
                                                Kro8u* const pDst[3], int dstStep,
                                                KroiSize roiSize) {
  return ConvertPlanes<3, 3, Rows::kParallel>(
      pSrc, srcStep, pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToRGB_JPEG_8u_P3R));
}
#endif  // HWY_ONCE
