// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion, encoder side: RGB, BGR and 16-bit packed RGB pixels to
// Y, Cb, Cr planes (T.871 7), rounded as documented in kroj.h. The row kernels are
// compiled per SIMD target and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjenccc0.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/colour-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

using Planes3 = PlanesOutV<3>;

// The 8-bit members go row-parallel for large regions, the packed ones stay on the
// calling thread.
void ownpj_RGBToYCbCr_JPEG_8u_P3R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<PlanesInV<3>, Planes3>(src, dst, width);
}
void ownpj_RGBToYCbCr_JPEG_8u_C3P3R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<BytesInV<3, 0>, Planes3>(src, dst, width);
}
void ownpj_BGRToYCbCr_JPEG_8u_C3P3R(const Kro8u* const* src, Kro8u* const* dst, int width) {
  EncodeRowSimd<BytesInV<3, 2>, Planes3>(src, dst, width);
}
void ownpj_RGB555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* const* src, Kro8u* const* dst,
                                          int width) {
  EncodeRowSimd<PackedInV<ref::Rgb555>, Planes3>(src, dst, width);
}
void ownpj_BGR555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* const* src, Kro8u* const* dst,
                                          int width) {
  EncodeRowSimd<PackedInV<ref::Bgr555>, Planes3>(src, dst, width);
}
void ownpj_RGB565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* const* src, Kro8u* const* dst,
                                          int width) {
  EncodeRowSimd<PackedInV<ref::Rgb565>, Planes3>(src, dst, width);
}
void ownpj_BGR565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* const* src, Kro8u* const* dst,
                                          int width) {
  EncodeRowSimd<PackedInV<ref::Bgr565>, Planes3>(src, dst, width);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_RGBToYCbCr_JPEG_8u_P3R);
HWY_EXPORT(ownpj_RGBToYCbCr_JPEG_8u_C3P3R);
HWY_EXPORT(ownpj_BGRToYCbCr_JPEG_8u_C3P3R);
HWY_EXPORT(ownpj_RGB555ToYCbCr_JPEG_16u8u_C3P3R);
HWY_EXPORT(ownpj_BGR555ToYCbCr_JPEG_16u8u_C3P3R);
HWY_EXPORT(ownpj_RGB565ToYCbCr_JPEG_16u8u_C3P3R);
HWY_EXPORT(ownpj_BGR565ToYCbCr_JPEG_16u8u_C3P3R);

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiBGR555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(
      &pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR555ToYCbCr_JPEG_16u8u_C3P3R));
}

KRO_EXPORT KroStatus kroiBGR565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(
      &pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR565ToYCbCr_JPEG_16u8u_C3P3R));
}

KRO_EXPORT KroStatus kroiBGRToYCbCr_JPEG_8u_C3P3R(const Kro8u* pSrc, int srcStep,
                                                  Kro8u* const pDst[3], int dstStep,
                                                  KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kParallel>(
      &pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_BGRToYCbCr_JPEG_8u_C3P3R));
}

KRO_EXPORT KroStatus kroiRGB555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(
      &pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_RGB555ToYCbCr_JPEG_16u8u_C3P3R));
}

KRO_EXPORT KroStatus kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(
      &pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_RGB565ToYCbCr_JPEG_16u8u_C3P3R));
}

KRO_EXPORT KroStatus kroiRGBToYCbCr_JPEG_8u_C3P3R(const Kro8u* pSrc, int srcStep,
                                                  Kro8u* const pDst[3], int dstStep,
                                                  KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kParallel>(
      &pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToYCbCr_JPEG_8u_C3P3R));
}

KRO_EXPORT KroStatus kroiRGBToYCbCr_JPEG_8u_P3R(const Kro8u* const pSrc[3], int srcStep,
                                                Kro8u* const pDst[3], int dstStep,
                                                KroiSize roiSize) {
  return ConvertPlanes<3, 3, Rows::kParallel>(
      pSrc, srcStep, pDst, dstStep, roiSize,
      HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToYCbCr_JPEG_8u_P3R));
}
#endif  // HWY_ONCE
