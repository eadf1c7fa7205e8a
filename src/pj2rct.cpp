// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 component transforms between pixel-interleaved and planar images: forward
// from C3 to three planes (C3P3R), inverse from three planes to C3 (P3C3R). The row
// kernels are compiled per SIMD target and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pj2rct.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/component-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// Per-row kernels, one per exported function.
void ownpj_RCTFwd_JPEG2K_16s_C3P3R(const Kro16s* s, Kro16s* const p[3], int w) {
  SplitRowSimd<RctOps<Kro16s>::Fwd, ref::RctFwd>(s, p, w);
}
void ownpj_RCTFwd_JPEG2K_32s_C3P3R(const Kro32s* s, Kro32s* const p[3], int w) {
  SplitRowSimd<RctOps<Kro32s>::Fwd, ref::RctFwd>(s, p, w);
}
void ownpj_ICTFwd_JPEG2K_32f_C3P3R(const Kro32f* s, Kro32f* const p[3], int w) {
  SplitRowSimd<IctOps<Kro32f>::Fwd, ref::IctFwdFloat>(s, p, w);
}
void ownpj_RCTInv_JPEG2K_16s_P3C3R(const Kro16s* const p[3], Kro16s* d, int w) {
  MergeRowSimd<RctOps<Kro16s>::Inv, ref::RctInv>(p, d, w);
}
void ownpj_RCTInv_JPEG2K_32s_P3C3R(const Kro32s* const p[3], Kro32s* d, int w) {
  MergeRowSimd<RctOps<Kro32s>::Inv, ref::RctInv>(p, d, w);
}
void ownpj_ICTInv_JPEG2K_32f_P3C3R(const Kro32f* const p[3], Kro32f* d, int w) {
  MergeRowSimd<IctOps<Kro32f>::Inv, ref::IctInvFloat>(p, d, w);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"
#include "kro_parallel.h"

namespace kro {

HWY_EXPORT(ownpj_RCTFwd_JPEG2K_16s_C3P3R);
HWY_EXPORT(ownpj_RCTFwd_JPEG2K_32s_C3P3R);
HWY_EXPORT(ownpj_ICTFwd_JPEG2K_32f_C3P3R);
HWY_EXPORT(ownpj_RCTInv_JPEG2K_16s_P3C3R);
HWY_EXPORT(ownpj_RCTInv_JPEG2K_32s_P3C3R);
HWY_EXPORT(ownpj_ICTInv_JPEG2K_32f_P3C3R);

namespace {

template <bool kParallel, class RowFn>
void RunRows(KroiSize roi, RowFn&& row) {
  if constexpr (kParallel) {
    ForEachRow(roi.width, roi.height, row);
  } else {
    for (int y = 0; y < roi.height; ++y) row(y);
  }
}

template <bool kParallel, class T>
KroStatus Split(void (*row_fn)(const T*, T* const[3], int), const T* pSrc, int srcStep, T* pDst[3],
                int dstStep, KroiSize roiSize) {
  if (pSrc == nullptr || pDst == nullptr || AnyNull(pDst[0], pDst[1], pDst[2]))
    return kroStatusNullPointer;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  if (BadSize(roiSize)) return kroStatusBadSize;
  RunRows<kParallel>(roiSize, [&](int y) {
    T* const plane[3] = {RowPtr(pDst[0], dstStep, y), RowPtr(pDst[1], dstStep, y),
                         RowPtr(pDst[2], dstStep, y)};
    row_fn(RowPtr(pSrc, srcStep, y), plane, roiSize.width);
  });
  return kroStatusOk;
}

template <bool kParallel, class T>
KroStatus Merge(void (*row_fn)(const T* const[3], T*, int), const T* pSrc[3], int srcStep, T* pDst,
                int dstStep, KroiSize roiSize) {
  if (pSrc == nullptr || AnyNull(pSrc[0], pSrc[1], pSrc[2]) || pDst == nullptr)
    return kroStatusNullPointer;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  if (BadSize(roiSize)) return kroStatusBadSize;
  RunRows<kParallel>(roiSize, [&](int y) {
    const T* const plane[3] = {RowPtr(pSrc[0], srcStep, y), RowPtr(pSrc[1], srcStep, y),
                               RowPtr(pSrc[2], srcStep, y)};
    row_fn(plane, RowPtr(pDst, dstStep, y), roiSize.width);
  });
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[3],
                                                 int dstStep, KroiSize roiSize) {
  return kro::Split<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTFwd_JPEG2K_16s_C3P3R), pSrc, srcStep,
                           pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_32s_C3P3R(const Kro32s* pSrc, int srcStep, Kro32s* pDst[3],
                                                 int dstStep, KroiSize roiSize) {
  return kro::Split<true>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTFwd_JPEG2K_32s_C3P3R), pSrc, srcStep,
                          pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_16s_P3C3R(const Kro16s* pSrc[3], int srcStep, Kro16s* pDst,
                                                 int dstStep, KroiSize roiSize) {
  return kro::Merge<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTInv_JPEG2K_16s_P3C3R), pSrc, srcStep,
                           pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_32s_P3C3R(const Kro32s* pSrc[3], int srcStep, Kro32s* pDst,
                                                 int dstStep, KroiSize roiSize) {
  return kro::Merge<true>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTInv_JPEG2K_32s_P3C3R), pSrc, srcStep,
                          pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_32f_C3P3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[3],
                                                 int dstStep, KroiSize roiSize) {
  return kro::Split<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTFwd_JPEG2K_32f_C3P3R), pSrc, srcStep,
                           pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_32f_P3C3R(const Kro32f* pSrc[3], int srcStep, Kro32f* pDst,
                                                 int dstStep, KroiSize roiSize) {
  return kro::Merge<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTInv_JPEG2K_32f_P3C3R), pSrc, srcStep,
                           pDst, dstStep, roiSize);
}
#endif  // HWY_ONCE
