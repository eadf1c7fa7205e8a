// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion, decoder side: Y, Cb, Cr planes to interleaved RGB or BGR
// bytes and to 16-bit packed RGB/BGR 555 and 565 words (T.871 7). The 8-bit members
// go row-parallel for large regions, the packed ones stay on the calling thread.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjdeccc0.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/colour-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

using Planes3 = PlanesInV<3>;

void ownpj_YCbCrToRGB_JPEG_8u_P3C3R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  DecodeRowSimd<Planes3, BytesOutV<3, 0>>(src, dst, width);
}
void ownpj_YCbCrToBGR_JPEG_8u_P3C3R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  DecodeRowSimd<Planes3, BytesOutV<3, 2>>(src, dst, width);
}
void ownpj_YCbCrToRGB555_JPEG_8u16u_P3C3R(const Kro8u* const* src, Kro16u* const* dst, int width) {
  DecodeRowSimd<Planes3, PackedOutV<ref::Rgb555>>(src, dst, width);
}
void ownpj_YCbCrToBGR555_JPEG_8u16u_P3C3R(const Kro8u* const* src, Kro16u* const* dst, int width) {
  DecodeRowSimd<Planes3, PackedOutV<ref::Bgr555>>(src, dst, width);
}
void ownpj_YCbCrToRGB565_JPEG_8u16u_P3C3R(const Kro8u* const* src, Kro16u* const* dst, int width) {
  DecodeRowSimd<Planes3, PackedOutV<ref::Rgb565>>(src, dst, width);
}
void ownpj_YCbCrToBGR565_JPEG_8u16u_P3C3R(const Kro8u* const* src, Kro16u* const* dst, int width) {
  DecodeRowSimd<Planes3, PackedOutV<ref::Bgr565>>(src, dst, width);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_YCbCrToRGB_JPEG_8u_P3C3R);
HWY_EXPORT(ownpj_YCbCrToBGR_JPEG_8u_P3C3R);
HWY_EXPORT(ownpj_YCbCrToRGB555_JPEG_8u16u_P3C3R);
HWY_EXPORT(ownpj_YCbCrToBGR555_JPEG_8u16u_P3C3R);
HWY_EXPORT(ownpj_YCbCrToRGB565_JPEG_8u16u_P3C3R);
HWY_EXPORT(ownpj_YCbCrToBGR565_JPEG_8u16u_P3C3R);

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiYCbCrToBGR555_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToBGR555_JPEG_8u16u_P3C3R));
}

KRO_EXPORT KroStatus kroiYCbCrToBGR565_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToBGR565_JPEG_8u16u_P3C3R));
}

KRO_EXPORT KroStatus kroiYCbCrToBGR_JPEG_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                  Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kParallel>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToBGR_JPEG_8u_P3C3R));
}

KRO_EXPORT KroStatus kroiYCbCrToRGB555_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToRGB555_JPEG_8u16u_P3C3R));
}

KRO_EXPORT KroStatus kroiYCbCrToRGB565_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToRGB565_JPEG_8u16u_P3C3R));
}

KRO_EXPORT KroStatus kroiYCbCrToRGB_JPEG_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                  Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kParallel>(
      pSrc, srcStep, &pDst, dstStep, roiSize, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCrToRGB_JPEG_8u_P3C3R));
}
#endif  // HWY_ONCE
