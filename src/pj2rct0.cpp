// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 component transforms in place on three planes (P3IR): the reversible RCT
// and the irreversible ICT in 16s, 32s and 32f.
#include "kro_checks.h"
#include "kro_parallel.h"
#include "ref/component_ref.h"

namespace kro {
namespace {

template <class T>
using PlanarRowFn = void (*)(T* const plane[3], int width);

template <class Op, class T>
void PlanarRow(T* const plane[3], int width) {
  const T* const src[3] = {plane[0], plane[1], plane[2]};
  ref::Component3Row<Op>(src, 1, plane, 1, width);
}

}  // namespace

// Per-row kernels, one per exported function.
void ownpj_RCTFwd_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) { PlanarRow<ref::RctFwd>(p, w); }
void ownpj_RCTFwd_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) { PlanarRow<ref::RctFwd>(p, w); }
void ownpj_RCTInv_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) { PlanarRow<ref::RctInv>(p, w); }
void ownpj_RCTInv_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) { PlanarRow<ref::RctInv>(p, w); }
void ownpj_ICTFwd_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) { PlanarRow<ref::IctFwdFixed>(p, w); }
void ownpj_ICTFwd_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) { PlanarRow<ref::IctFwdFixed>(p, w); }
void ownpj_ICTFwd_JPEG2K_32f_P3IR(Kro32f* const p[3], int w) { PlanarRow<ref::IctFwdFloat>(p, w); }
void ownpj_ICTInv_JPEG2K_16s_P3IR(Kro16s* const p[3], int w) { PlanarRow<ref::IctInvFixed>(p, w); }
void ownpj_ICTInv_JPEG2K_32s_P3IR(Kro32s* const p[3], int w) { PlanarRow<ref::IctInvFixed>(p, w); }
void ownpj_ICTInv_JPEG2K_32f_P3IR(Kro32f* const p[3], int w) { PlanarRow<ref::IctInvFloat>(p, w); }

namespace {

// Checks, then the rows; kParallel selects the row-parallel rule (32s RCT only).
template <bool kParallel, class T>
KroStatus PlanarInPlace(PlanarRowFn<T> row_fn, T* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  if (pSrcDst == nullptr || AnyNull(pSrcDst[0], pSrcDst[1], pSrcDst[2])) return kroStatusNullPointer;
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

KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_RCTFwd_JPEG2K_16s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<true>(kro::ownpj_RCTFwd_JPEG2K_32s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_RCTInv_JPEG2K_16s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<true>(kro::ownpj_RCTInv_JPEG2K_32s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_ICTFwd_JPEG2K_16s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_32f_P3IR(Kro32f* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_ICTFwd_JPEG2K_32f_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_ICTFwd_JPEG2K_32s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_ICTInv_JPEG2K_16s_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_32f_P3IR(Kro32f* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_ICTInv_JPEG2K_32f_P3IR, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize) {
  return kro::PlanarInPlace<false>(kro::ownpj_ICTInv_JPEG2K_32s_P3IR, pSrcDst, srcDstStep, roiSize);
}
