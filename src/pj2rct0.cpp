// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 component transforms in place on three planes (P3IR): the reversible RCT
// and the irreversible ICT in 16s, 32s and 32f. The row kernels are compiled per
// SIMD target and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pj2rct0.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/component-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// Per-row kernels, one per exported function.
void ownpj_RCTFwd_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) {
  PlanarRowSimd<RctOps<Kro16s>::Fwd, ref::RctFwd>(p, w);
}
void ownpj_RCTFwd_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) {
  PlanarRowSimd<RctOps<Kro32s>::Fwd, ref::RctFwd>(p, w);
}
void ownpj_RCTInv_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) {
  PlanarRowSimd<RctOps<Kro16s>::Inv, ref::RctInv>(p, w);
}
void ownpj_RCTInv_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) {
  PlanarRowSimd<RctOps<Kro32s>::Inv, ref::RctInv>(p, w);
}
void ownpj_ICTFwd_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) {
  PlanarRowSimd<IctOps<Kro16s>::Fwd, ref::IctFwdFixed>(p, w);
}
void ownpj_ICTFwd_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) {
  PlanarRowSimd<IctOps<Kro32s>::Fwd, ref::IctFwdFixed>(p, w);
}
void ownpj_ICTFwd_JPEG2K_32f_P3IR(Kro32f* const p[3], int w) {
  PlanarRowSimd<IctOps<Kro32f>::Fwd, ref::IctFwdFloat>(p, w);
}
void ownpj_ICTInv_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) {
  PlanarRowSimd<IctOps<Kro16s>::Inv, ref::IctInvFixed>(p, w);
}
void ownpj_ICTInv_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) {
  PlanarRowSimd<IctOps<Kro32s>::Inv, ref::IctInvFixed>(p, w);
}
void ownpj_ICTInv_JPEG2K_32f_P3IR(Kro32f* const p[3], int w) {
  PlanarRowSimd<IctOps<Kro32f>::Inv, ref::IctInvFloat>(p, w);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"
#include "kro_parallel.h"

namespace kro {

HWY_EXPORT(ownpj_RCTFwd_JPEG2K_16s_P3IR);
HWY_EXPORT(ownpj_RCTFwd_JPEG2K_32s_P3IR);
HWY_EXPORT(ownpj_RCTInv_JPEG2K_16s_P3IR);
HWY_EXPORT(ownpj_RCTInv_JPEG2K_32s_P3IR);
HWY_EXPORT(ownpj_ICTFwd_JPEG2K_16s_P3IR);
HWY_EXPORT(ownpj_ICTFwd_JPEG2K_32s_P3IR);
HWY_EXPORT(ownpj_ICTFwd_JPEG2K_32f_P3IR);
HWY_EXPORT(ownpj_ICTInv_JPEG2K_16s_P3IR);
HWY_EXPORT(ownpj_ICTInv_JPEG2K_32s_P3IR);
HWY_EXPORT(ownpj_ICTInv_JPEG2K_32f_P3IR);

namespace {

template <class T>
using PlanarRowFn = void (*)(T* const plane[3], int width);

// Checks, then the rows; kParallel selects the row-parallel rule (32s RCT only).
template <bool kParallel, class T>
KroStatus PlanarInPlace(PlanarRowFn<T> row_fn, T* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  if (pSrcDst == nullptr || AnyNull(pSrcDst[0], pSrcDst[1], pSrcDst[2]))
    return kroStatusNullPointer;
  if (BadStep(srcDstStep)) return kroStatusBadStep;
  if (BadSize(roiSize)) return kroStatusBadSize;
  auto row = [&](int y) {
    T* const plane[3] = {RowPtr(pSrcDst[0], srcDstStep, y), RowPtr(pSrcDst[1], srcDstStep, y),
                         RowPtr(pSrcDst[2], srcDstStep, y)};
    row_fn(plane, roiSize.width);
  };
  if constexpr (kParallel) {
    ForEachRow(roiSize.width, roiSize.height, row);
  } else {
    for (int y = 0; y < roiSize.height; ++y) row(y);
  }
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTFwd_JPEG2K_16s_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<true>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTFwd_JPEG2K_32s_P3IR), pSrcDst,
                                  srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTInv_JPEG2K_16s_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<true>(HWY_DYNAMIC_DISPATCH(kro::ownpj_RCTInv_JPEG2K_32s_P3IR), pSrcDst,
                                  srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTFwd_JPEG2K_16s_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_32f_P3IR(Kro32f* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTFwd_JPEG2K_32f_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTFwd_JPEG2K_32s_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTInv_JPEG2K_16s_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_32f_P3IR(Kro32f* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTInv_JPEG2K_32f_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep,
                                                KroiSize roiSize) {
  return kro::PlanarInPlace<false>(HWY_DYNAMIC_DISPATCH(kro::ownpj_ICTInv_JPEG2K_32s_P3IR), pSrcDst,
                                   srcDstStep, roiSize);
}
#endif  // HWY_ONCE
