// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion CMYK -> YCCK: C, M, Y are the complements of R, G, B
// (Adobe-style inks), converted like RGB; K passes through unchanged.
#include "colour_impl.h"

namespace kro {

inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_CMYKToYCCK_JPEG_8u_P4R =
    &EncodeRow<PlanesIn<4>, PlanesOut<4>, Ink::kComplement>;
inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_CMYKToYCCK_JPEG_8u_C4P4R =
    &EncodeRow<BytesIn<4, 0>, PlanesOut<4>, Ink::kComplement>;

}  // namespace kro

using kro::ConvertPlanes;
using kro::Rows;

KRO_EXPORT KroStatus kroiCMYKToYCCK_JPEG_8u_C4P4R(const Kro8u* pSrc, int srcStep,
                                                  Kro8u* const pDst[4], int dstStep,
                                                  KroiSize roiSize) {
  return ConvertPlanes<1, 4, Rows::kParallel>(&pSrc, srcStep, pDst, dstStep, roiSize,
                                              kro::ownpj_CMYKToYCCK_JPEG_8u_C4P4R);
}

KRO_EXPORT KroStatus kroiCMYKToYCCK_JPEG_8u_P4R(const Kro8u* const pSrc[4], int srcStep,
                                                Kro8u* const pDst[4], int dstStep,
                                                KroiSize roiSize) {
  return ConvertPlanes<4, 4, Rows::kParallel>(pSrc, srcStep, pDst, dstStep, roiSize,
                                              kro::ownpj_CMYKToYCCK_JPEG_8u_P4R);
}
