// SPDX-License-Identifier: BSD-3-Clause
// Encoder-side level shift: 8-bit samples to signed 16-bit values centred on zero.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjencls.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/levelshift-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void Sub128Row(const uint8_t* src, int16_t* dst, int n) { Sub128RowSimd(src, dst, n); }

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_parallel.h"
#include "pjls.h"

namespace kro {

HWY_EXPORT(Sub128Row);

KroStatus ownpj_Sub128_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize) {
  const auto row_fn = HWY_DYNAMIC_DISPATCH(Sub128Row);
  ForEachRow(roiSize.width, roiSize.height, [&](int y) {
    row_fn(RowPtr(pSrc, srcStep, y), RowPtr(pDst, dstStep, y), roiSize.width);
  });
  return kroStatusOk;
}

}  // namespace kro

KRO_EXPORT KroStatus kroiSub128_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep, Kro16s* pDst,
                                               int dstStep, KroiSize roiSize) {
  return kro::LevelShift<kro::ownpj_Sub128_JPEG_8u16s_C1R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
#endif  // HWY_ONCE
