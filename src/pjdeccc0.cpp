// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion, decoder side: Y, Cb, Cr planes to interleaved RGB or BGR
// bytes and to 16-bit packed RGB/BGR 555 and 565 words (T.871 7).
#include "colour_impl.h"

namespace kro {

// Row kernels. The 8-bit members go row-parallel for large regions, the packed
// ones stay on the calling thread.
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_YCbCrToRGB_JPEG_8u_P3C3R =
    &DecodeRow<PlanesIn<3>, BytesOut<3, 0>>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_YCbCrToBGR_JPEG_8u_P3C3R =
    &DecodeRow<PlanesIn<3>, BytesOut<3, 2>>;
inline constexpr PlaneRowFn<Kro8u, Kro16u> ownpj_YCbCrToRGB555_JPEG_8u16u_P3C3R =
    &DecodeRow<PlanesIn<3>, PackedOut<ref::Rgb555>>;
inline constexpr PlaneRowFn<Kro8u, Kro16u> ownpj_YCbCrToBGR555_JPEG_8u16u_P3C3R =
    &DecodeRow<PlanesIn<3>, PackedOut<ref::Bgr555>>;
inline constexpr PlaneRowFn<Kro8u, Kro16u> ownpj_YCbCrToRGB565_JPEG_8u16u_P3C3R =
    &DecodeRow<PlanesIn<3>, PackedOut<ref::Rgb565>>;
inline constexpr PlaneRowFn<Kro8u, Kro16u> ownpj_YCbCrToBGR565_JPEG_8u16u_P3C3R =
    &DecodeRow<PlanesIn<3>, PackedOut<ref::Bgr565>>;

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiYCbCrToBGR555_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                            kro::ownpj_YCbCrToBGR555_JPEG_8u16u_P3C3R);
}

KRO_EXPORT KroStatus kroiYCbCrToBGR565_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                            kro::ownpj_YCbCrToBGR565_JPEG_8u16u_P3C3R);
}

KRO_EXPORT KroStatus kroiYCbCrToBGR_JPEG_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                  Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kParallel>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                              kro::ownpj_YCbCrToBGR_JPEG_8u_P3C3R);
}

KRO_EXPORT KroStatus kroiYCbCrToRGB555_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                            kro::ownpj_YCbCrToRGB555_JPEG_8u16u_P3C3R);
}

KRO_EXPORT KroStatus kroiYCbCrToRGB565_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                        Kro16u* pDst, int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kSerial>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                            kro::ownpj_YCbCrToRGB565_JPEG_8u16u_P3C3R);
}

KRO_EXPORT KroStatus kroiYCbCrToRGB_JPEG_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                  Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kParallel>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                              kro::ownpj_YCbCrToRGB_JPEG_8u_P3C3R);
}
