// SPDX-License-Identifier: BSD-3-Clause
// MCU conversion, decoder side: the level-shifted 8x8 blocks of one MCU -> interleaved
// pixels, with chroma up-sampling by replication in the 444 (8x8), 422 (16x8) and
// 411 (16x16) geometries, colour conversion, +128 and clamping. The kernels are
// compiled per SIMD target (simd/mcu-inl.h) and chosen at each call. The products
// are 32-bit two's complement, so samples far outside -128..127 wrap them as a
// 32-bit multiply does; existing callers see those results.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "mcu_decoder.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/mcu-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void ownpj_YCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* const* src, Kro16u* dst, int step) {
  DecodeMcuSimd<Mcu411, PackedOutV<ref::Bgr555>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* const* src, Kro16u* dst, int step) {
  DecodeMcuSimd<Mcu422, PackedOutV<ref::Bgr555>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* const* src, Kro16u* dst, int step) {
  DecodeMcuSimd<Mcu444, PackedOutV<ref::Bgr555>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* const* src, Kro16u* dst, int step) {
  DecodeMcuSimd<Mcu411, PackedOutV<ref::Bgr565>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* const* src, Kro16u* dst, int step) {
  DecodeMcuSimd<Mcu422, PackedOutV<ref::Bgr565>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* const* src, Kro16u* dst, int step) {
  DecodeMcuSimd<Mcu444, PackedOutV<ref::Bgr565>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu411, BytesOutV<3, 2>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu422, BytesOutV<3, 2>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu444, BytesOutV<3, 2>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCCK411ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu411, BytesOutV<4, 0>, McuKind::kYCCK>(src, dst, step);
}
void ownpj_YCCK422ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu422, BytesOutV<4, 0>, McuKind::kYCCK>(src, dst, step);
}
void ownpj_YCCK444ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu444, BytesOutV<4, 0>, McuKind::kYCCK>(src, dst, step);
}
void ownpj_YCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu411, BytesOutV<3, 0>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu422, BytesOutV<3, 0>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_YCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu444, BytesOutV<3, 0>, McuKind::kYCbCr>(src, dst, step);
}
void ownpj_SampleUp411LS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu411, BytesOutV<3, 0>, McuKind::kNone>(src, dst, step);
}
void ownpj_SampleUp422LS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu422, BytesOutV<3, 0>, McuKind::kNone>(src, dst, step);
}
void ownpj_SampleUp444LS_MCU_16s8u_P3C3R(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuSimd<Mcu444, BytesOutV<3, 0>, McuKind::kNone>(src, dst, step);
}
void ownpj_Join422LS_MCU_16s8u_P3C2R(const Kro16s* const* src, Kro8u* dst, int step) {
  Join422Simd(src, dst, step);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_Join422LS_MCU_16s8u_P3C2R);
HWY_EXPORT(ownpj_SampleUp411LS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_SampleUp422LS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_SampleUp444LS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_YCCK411ToCMYKLS_MCU_16s8u_P4C4R);
HWY_EXPORT(ownpj_YCCK422ToCMYKLS_MCU_16s8u_P4C4R);
HWY_EXPORT(ownpj_YCCK444ToCMYKLS_MCU_16s8u_P4C4R);
HWY_EXPORT(ownpj_YCbCr411ToBGR555LS_MCU_16s16u_P3C3R);
HWY_EXPORT(ownpj_YCbCr411ToBGR565LS_MCU_16s16u_P3C3R);
HWY_EXPORT(ownpj_YCbCr411ToBGRLS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_YCbCr411ToRGBLS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_YCbCr422ToBGR555LS_MCU_16s16u_P3C3R);
HWY_EXPORT(ownpj_YCbCr422ToBGR565LS_MCU_16s16u_P3C3R);
HWY_EXPORT(ownpj_YCbCr422ToBGRLS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_YCbCr422ToRGBLS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_YCbCr444ToBGR555LS_MCU_16s16u_P3C3R);
HWY_EXPORT(ownpj_YCbCr444ToBGR565LS_MCU_16s16u_P3C3R);
HWY_EXPORT(ownpj_YCbCr444ToBGRLS_MCU_16s8u_P3C3R);
HWY_EXPORT(ownpj_YCbCr444ToRGBLS_MCU_16s8u_P3C3R);

// Checks, in this order: pSrcMCU or pDst null -8; each component block null -8;
// dstStep < 1 -14. Then the kernel of the chosen target.
template <int kComponents, class T>
KroStatus DecodeMcu(const Kro16s* const* pSrcMCU, T* pDst, int dstStep,
                    void (*kernel)(const Kro16s* const*, T*, int)) {
  if (AnyNull(pSrcMCU, pDst)) return kroStatusNullPointer;
  for (int k = 0; k < kComponents; ++k)
    if (pSrcMCU[k] == nullptr) return kroStatusNullPointer;
  if (BadStep(dstStep)) return kroStatusBadStep;
  kernel(pSrcMCU, pDst, dstStep);
  return kroStatusOk;
}

}  // namespace kro

using kro::DecodeMcu;

KRO_EXPORT KroStatus kroiJoin422LS_MCU_16s8u_P3C2R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                   int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep,
                      HWY_DYNAMIC_DISPATCH(kro::ownpj_Join422LS_MCU_16s8u_P3C2R));
}
KRO_EXPORT KroStatus kroiSampleUp411LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                       int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_SampleUp411LS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiSampleUp422LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                       int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_SampleUp422LS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiSampleUp444LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                       int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_SampleUp444LS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<4>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCCK411ToCMYKLS_MCU_16s8u_P4C4R));
}
KRO_EXPORT KroStatus kroiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<4>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCCK422ToCMYKLS_MCU_16s8u_P4C4R));
}
KRO_EXPORT KroStatus kroiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<4>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCCK444ToCMYKLS_MCU_16s8u_P4C4R));
}
KRO_EXPORT KroStatus kroiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr411ToBGR555LS_MCU_16s16u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr411ToBGR565LS_MCU_16s16u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr411ToBGRLS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr411ToRGBLS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr422ToBGR555LS_MCU_16s16u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr422ToBGR565LS_MCU_16s16u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr422ToBGRLS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr422ToRGBLS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr444ToBGR555LS_MCU_16s16u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3], Kro16u* pDst,
                                                             int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr444ToBGR565LS_MCU_16s16u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr444ToBGRLS_MCU_16s8u_P3C3R));
}
KRO_EXPORT KroStatus kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                         int dstStep) {
  return DecodeMcu<3>(pSrcMCU, pDst, dstStep, HWY_DYNAMIC_DISPATCH(kro::ownpj_YCbCr444ToRGBLS_MCU_16s8u_P3C3R));
}
#endif  // HWY_ONCE
