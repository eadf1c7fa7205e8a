// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion YCCK -> CMYK: Y, Cb, Cr to clamped R, G, B, stored as
// their complements C, M, Y (Adobe-style inks); K passes through unchanged.
#include "colour_impl.h"

namespace kro {

inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_YCCKToCMYK_JPEG_8u_P4R =
    &DecodeRow<PlanesIn<4>, PlanesOut<4>, Ink::kComplement>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_YCCKToCMYK_JPEG_8u_P4C4R =
    &DecodeRow<PlanesIn<4>, BytesOut<4, 0>, Ink::kComplement>;

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiYCCKToCMYK_JPEG_8u_P4C4R(const Kro8u* const pSrc[4], int srcStep,
                                                  Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return ConvertPlanes<4, 1, Rows::kParallel>(pSrc, srcStep, &pDst, dstStep, roiSize,
                                              kro::ownpj_YCCKToCMYK_JPEG_8u_P4C4R);
}

KRO_EXPORT KroStatus kroiYCCKToCMYK_JPEG_8u_P4R(const Kro8u* const pSrc[4], int srcStep,
                                                Kro8u* const pDst[4], int dstStep,
                                                KroiSize roiSize) {
  return ConvertPlanes<4, 4, Rows::kParallel>(pSrc, srcStep, pDst, dstStep, roiSize,
                                              kro::ownpj_YCCKToCMYK_JPEG_8u_P4R);
}
