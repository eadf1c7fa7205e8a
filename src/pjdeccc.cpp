// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion Y, Cb, Cr planes -> R, G, B planes (T.871 7).
#include "colour_impl.h"

namespace kro {

inline constexpr PlaneRowFn<Kro8u, Kro8u> ownpj_YCbCrToRGB_JPEG_8u_P3R =
    &DecodeRow<PlanesIn<3>, PlanesOut<3>>;

}  // namespace kro

KRO_EXPORT KroStatus kroiYCbCrToRGB_JPEG_8u_P3R(const Kro8u* const pSrc[3], int srcStep,
                                                Kro8u* const pDst[3], int dstStep,
                                                KroiSize roiSize) {
  return kro::ConvertPlanes<3, 3, kro::Rows::kParallel>(pSrc, srcStep, pDst, dstStep, roiSize,
                                                        kro::ownpj_YCbCrToRGB_JPEG_8u_P3R);
}
