// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 component transforms between pixel-interleaved and planar images: forward
// from C3 to three planes (C3P3R), inverse from three planes to C3 (P3C3R).
#include "kro_checks.h"
#include "kro_parallel.h"
#include "ref/component_ref.h"

namespace kro {
namespace {

template <class Op, class T>
void SplitRow(const T* src, T* const plane[3], int width) {
  const T* const in[3] = {src, src + 1, src + 2};
  ref::Component3Row<Op>(in, 3, plane, 1, width);
}

template <class Op, class T>
void MergeRow(const T* const plane[3], T* dst, int width) {
  T* const out[3] = {dst, dst + 1, dst + 2};
  ref::Component3Row<Op>(plane, 1, out, 3, width);
}

}  // namespace

// Per-row kernels, one per exported function.
void ownpj_RCTFwd_JPEG2K_16s_C3P3R(const Kro16s* s, Kro16s* const p[3], int w) { SplitRow<ref::RctFwd>(s, p, w); }
void ownpj_RCTFwd_JPEG2K_32s_C3P3R(const Kro32s* s, Kro32s* const p[3], int w) { SplitRow<ref::RctFwd>(s, p, w); }
void ownpj_ICTFwd_JPEG2K_32f_C3P3R(const Kro32f* s, Kro32f* const p[3], int w) {
  SplitRow<ref::IctFwdFloat>(s, p, w);
}
void ownpj_RCTInv_JPEG2K_16s_P3C3R(const Kro16s* const p[3], Kro16s* d, int w) { MergeRow<ref::RctInv>(p, d, w); }
void ownpj_RCTInv_JPEG2K_32s_P3C3R(const Kro32s* const p[3], Kro32s* d, int w) { MergeRow<ref::RctInv>(p, d, w); }
void ownpj_ICTInv_JPEG2K_32f_P3C3R(const Kro32f* const p[3], Kro32f* d, int w) {
  MergeRow<ref::IctInvFloat>(p, d, w);
}

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
KroStatus Split(void (*row_fn)(const T*, T* const[3], int), const T* pSrc, int srcStep, T* pDst[3], int dstStep,
                KroiSize roiSize) {
  if (pSrc == nullptr || pDst == nullptr || AnyNull(pDst[0], pDst[1], pDst[2])) return kroStatusNullPointer;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  if (BadSize(roiSize)) return kroStatusBadSize;
  RunRows<kParallel>(roiSize, [&](int y) {
    T* const plane[3] = {RowPtr(pDst[0], dstStep, y), RowPtr(pDst[1], dstStep, y), RowPtr(pDst[2], dstStep, y)};
    row_fn(RowPtr(pSrc, srcStep, y), plane, roiSize.width);
  });
  return kroStatusOk;
}

template <bool kParallel, class T>
KroStatus Merge(void (*row_fn)(const T* const[3], T*, int), const T* pSrc[3], int srcStep, T* pDst, int dstStep,
                KroiSize roiSize) {
  if (pSrc == nullptr || AnyNull(pSrc[0], pSrc[1], pSrc[2]) || pDst == nullptr) return kroStatusNullPointer;
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

KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[3], int dstStep,
                                                 KroiSize roiSize) {
  return kro::Split<false>(kro::ownpj_RCTFwd_JPEG2K_16s_C3P3R, pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTFwd_JPEG2K_32s_C3P3R(const Kro32s* pSrc, int srcStep, Kro32s* pDst[3], int dstStep,
                                                 KroiSize roiSize) {
  return kro::Split<true>(kro::ownpj_RCTFwd_JPEG2K_32s_C3P3R, pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_16s_P3C3R(const Kro16s* pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                                 KroiSize roiSize) {
  return kro::Merge<false>(kro::ownpj_RCTInv_JPEG2K_16s_P3C3R, pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiRCTInv_JPEG2K_32s_P3C3R(const Kro32s* pSrc[3], int srcStep, Kro32s* pDst, int dstStep,
                                                 KroiSize roiSize) {
  return kro::Merge<true>(kro::ownpj_RCTInv_JPEG2K_32s_P3C3R, pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTFwd_JPEG2K_32f_C3P3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[3], int dstStep,
                                                 KroiSize roiSize) {
  return kro::Split<false>(kro::ownpj_ICTFwd_JPEG2K_32f_C3P3R, pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiICTInv_JPEG2K_32f_P3C3R(const Kro32f* pSrc[3], int srcStep, Kro32f* pDst, int dstStep,
                                                 KroiSize roiSize) {
  return kro::Merge<false>(kro::ownpj_ICTInv_JPEG2K_32f_P3C3R, pSrc, srcStep, pDst, dstStep, roiSize);
}
