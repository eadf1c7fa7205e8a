// SPDX-License-Identifier: BSD-3-Clause
// Decoder-side level shift: signed 16-bit values back to 8-bit samples, clamped.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pjdecls.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/levelshift-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void Add128Row(const int16_t* src, uint8_t* dst, int n) { Add128RowSimd(src, dst, n); }

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_parallel.h"
#include "pjls.h"

namespace kro {

HWY_EXPORT(Add128Row);

KroStatus ownpj_Add128_JPEG_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize) {
  const auto row_fn = HWY_DYNAMIC_DISPATCH(Add128Row);
  ForEachRow(roiSize.width, roiSize.height, [&](int y) {
    row_fn(RowPtr(pSrc, srcStep, y), RowPtr(pDst, dstStep, y), roiSize.width);
  });
  return kroStatusOk;
}

}  // namespace kro

KRO_EXPORT KroStatus kroiAdd128_JPEG_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst,
                                               int dstStep, KroiSize roiSize) {
  return kro::LevelShift<kro::ownpj_Add128_JPEG_16s8u_C1R>(pSrc, srcStep, pDst, dstStep, roiSize);
}
#endif  // HWY_ONCE
