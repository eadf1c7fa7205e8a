// SPDX-License-Identifier: BSD-3-Clause
// Decoder-side level shift: signed 16-bit values back to 8-bit samples, clamped.
#include "kro_parallel.h"
#include "pjls.h"
#include "ref/dct_ref.h"

namespace kro {

KroStatus ownpj_Add128_JPEG_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize) {
  ForEachRow(roiSize.width, roiSize.height, [&](int y) {
    ref::Add128Row(RowPtr(pSrc, srcStep, y), RowPtr(pDst, dstStep, y), roiSize.width);
  });
  return kroStatusOk;
}

}  // namespace kro

KRO_EXPORT KroStatus kroiAdd128_JPEG_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst,
                                               int dstStep, KroiSize roiSize) {
  return kro::LevelShift<kro::ownpj_Add128_JPEG_16s8u_C1R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
