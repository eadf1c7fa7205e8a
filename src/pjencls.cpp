// SPDX-License-Identifier: BSD-3-Clause
// Encoder-side level shift: 8-bit samples to signed 16-bit values centred on zero.
#include "kro_parallel.h"
#include "pjls.h"
#include "ref/dct_ref.h"

namespace kro {

KroStatus ownpj_Sub128_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize) {
  ForEachRow(roiSize.width, roiSize.height, [&](int y) {
    ref::Sub128Row(RowPtr(pSrc, srcStep, y), RowPtr(pDst, dstStep, y), roiSize.width);
  });
  return kroStatusOk;
}

}  // namespace kro

KRO_EXPORT KroStatus kroiSub128_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep, Kro16s* pDst,
                                               int dstStep, KroiSize roiSize) {
  return kro::LevelShift<kro::ownpj_Sub128_JPEG_8u16s_C1R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
