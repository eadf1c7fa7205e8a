// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion to luminance alone: R, G, B (planar or interleaved) or
// B, G, R to a Y plane, rounded like the Y of the full conversion.
#include "colour_impl.h"

namespace kro {

inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_RGBToY_JPEG_8u_P3C1R =
    &EncodeRow<PlanesIn<3>, LumaOut, Ink::kNone, true>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_RGBToY_JPEG_8u_C3C1R =
    &EncodeRow<BytesIn<3, 0>, LumaOut, Ink::kNone, true>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_BGRToY_JPEG_8u_C3C1R =
    &EncodeRow<BytesIn<3, 2>, LumaOut, Ink::kNone, true>;

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiBGRToY_JPEG_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst,
                                              int dstStep, KroiSize roiSize) {
  return ConvertPlanes<1, 1, Rows::kParallel>(&pSrc, srcStep, &pDst, dstStep, roiSize,
                                              kro::ownpj_BGRToY_JPEG_8u_C3C1R);
}

KRO_EXPORT KroStatus kroiRGBToY_JPEG_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst,
                                              int dstStep, KroiSize roiSize) {
  return ConvertPlanes<1, 1, Rows::kParallel>(&pSrc, srcStep, &pDst, dstStep, roiSize,
                                              kro::ownpj_RGBToY_JPEG_8u_C3C1R);
}

KRO_EXPORT KroStatus kroiRGBToY_JPEG_8u_P3C1R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst,
                                              int dstStep, KroiSize roiSize) {
  return ConvertPlanes<3, 1, Rows::kParallel>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                              kro::ownpj_RGBToY_JPEG_8u_P3C1R);
}
