// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion, encoder side: RGB, BGR and 16-bit packed RGB pixels to
// Y, Cb, Cr planes (T.871 7), rounded as documented in kroj.h.
#include "colour_impl.h"

namespace kro {

// Row kernels. The 8-bit members go row-parallel for large regions, the packed
// ones stay on the calling thread.
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_RGBToYCbCr_JPEG_8u_P3R =
    &EncodeRow<PlanesIn<3>, PlanesOut<3>>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_RGBToYCbCr_JPEG_8u_C3P3R =
    &EncodeRow<BytesIn<3, 0>, PlanesOut<3>>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_BGRToYCbCr_JPEG_8u_C3P3R =
    &EncodeRow<BytesIn<3, 2>, PlanesOut<3>>;
inline constexpr PlaneRowFn<Kro16u, Kro8u> ownpj_RGB555ToYCbCr_JPEG_16u8u_C3P3R =
    &EncodeRow<PackedIn<ref::Rgb555>, PlanesOut<3>>;
inline constexpr PlaneRowFn<Kro16u, Kro8u> ownpj_BGR555ToYCbCr_JPEG_16u8u_C3P3R =
    &EncodeRow<PackedIn<ref::Bgr555>, PlanesOut<3>>;
inline constexpr PlaneRowFn<Kro16u, Kro8u> ownpj_RGB565ToYCbCr_JPEG_16u8u_C3P3R =
    &EncodeRow<PackedIn<ref::Rgb565>, PlanesOut<3>>;
inline constexpr PlaneRowFn<Kro16u, Kro8u> ownpj_BGR565ToYCbCr_JPEG_16u8u_C3P3R =
    &EncodeRow<PackedIn<ref::Bgr565>, PlanesOut<3>>;

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiBGR555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                            kro::ownpj_BGR555ToYCbCr_JPEG_16u8u_C3P3R);
}

KRO_EXPORT KroStatus kroiBGR565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                            kro::ownpj_BGR565ToYCbCr_JPEG_16u8u_C3P3R);
}

KRO_EXPORT KroStatus kroiBGRToYCbCr_JPEG_8u_C3P3R(const Kro8u* pSrc, int srcStep,
                                                  Kro8u* const pDst[3], int dstStep,
                                                  KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kParallel>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                              kro::ownpj_BGRToYCbCr_JPEG_8u_C3P3R);
}

KRO_EXPORT KroStatus kroiRGB555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                            kro::ownpj_RGB555ToYCbCr_JPEG_16u8u_C3P3R);
}

KRO_EXPORT KroStatus kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                        Kro8u* const pDst[3], int dstStep,
                                                        KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kSerial>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                            kro::ownpj_RGB565ToYCbCr_JPEG_16u8u_C3P3R);
}

KRO_EXPORT KroStatus kroiRGBToYCbCr_JPEG_8u_C3P3R(const Kro8u* pSrc, int srcStep,
                                                  Kro8u* const pDst[3], int dstStep,
                                                  KroiSize roiSize) {
  return ConvertPlanes<1, 3, Rows::kParallel>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                              kro::ownpj_RGBToYCbCr_JPEG_8u_C3P3R);
}

KRO_EXPORT KroStatus kroiRGBToYCbCr_JPEG_8u_P3R(const Kro8u* const pSrc[3], int srcStep,
                                                Kro8u* const pDst[3], int dstStep,
                                                KroiSize roiSize) {
  return ConvertPlanes<3, 3, Rows::kParallel>(pSrc, srcStep, pDst, dstStep, roiSize,
                                              kro::ownpj_RGBToYCbCr_JPEG_8u_P3R);
}
