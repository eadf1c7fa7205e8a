// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion to luminance alone: R, G, B (planar or interleaved) or
// B, G, R to a Y plane, rounded like the Y of the full conversion; per SIMD target.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjenccc.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/colour-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void ownpj_RGBToY_JPEG_8u_P3C1R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<PlanesInV<3>, LumaOutV, Ink::kNone, true>(src, dst, width);
}
void ownpj_RGBToY_JPEG_8u_C3C1R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<BytesInV<3, 0>, LumaOutV, Ink::kNone, true>(src, dst, width);
}
void ownpj_BGRToY_JPEG_8u_C3C1R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<BytesInV<3, 2>, LumaOutV, Ink::kNone, true>(src, dst, width);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_RGBToY_JPEG_8u_P3C1R);
HWY_EXPORT(ownpj_RGBToY_JPEG_8u_C3C1R);
HWY_EXPORT(ownpj_BGRToY_JPEG_8u_C3C1R);

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiBGRToY_JPEG_8u_C3C1R(const Kro8u* pSrc, int srcStep,
                                              Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<1, 1, Rows::kParallel>(
      &pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGRToY_JPEG_8u_C3C1R));
}

KRO_EXPORT KroStatus kroiRGBToY_JPEG_8u_C3C1R(const Kro8u* pSrc, int srcStep,
                                              Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<1, 1, Rows::kParallel>(
      &pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToY_JPEG_8u_C3C1R));
}

KRO_EXPORT KroStatus kroiRGBToY_JPEG_8u_P3C1R(const Kro8u* const pSrc[3], int srcStep,
                                              Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kParallel>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToY_JPEG_8u_P3C1R));
}
#endif  // HWY_ONCE
