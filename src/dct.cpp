// SPDX-License-Identifier: BSD-3-Clause
// 8x8 forward and inverse DCT, alone and combined with quantisation and level
// shift, and the zig-zag reorderings. The block kernels are compiled per SIMD
// target (simd/dct-inl.h) and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dct.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/dct-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void FwdDctBlock(const int16_t* src, int16_t* dst) { FwdDctBlockSimd(src, dst); }
void InvDctBlock(const int16_t* src, int16_t* dst) { InvDctBlockSimd(src, dst); }
void FwdDctQuantBlock(const int16_t* src, int16_t* dst, const uint16_t* recip) {
  FwdDctQuantBlockSimd(src, dst, recip);
}
void FwdDctQuantLSBlock(const uint8_t* src, int step, int16_t* dst, const uint16_t* recip) {
  FwdDctQuantLSBlockSimd(src, step, dst, recip);
}
void InvDctDequantBlock(const int16_t* src, int16_t* dst, const uint16_t* steps) {
  InvDctDequantBlockSimd(src, dst, steps);
}
void InvDctDequantLSBlock(const int16_t* src, uint8_t* dst, int step, const uint16_t* steps) {
  InvDctDequantLSBlockSimd(src, dst, step, steps);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"
#include "ref/dct_ref.h"

namespace kro {

HWY_EXPORT(FwdDctBlock);
HWY_EXPORT(InvDctBlock);
HWY_EXPORT(FwdDctQuantBlock);
HWY_EXPORT(FwdDctQuantLSBlock);
HWY_EXPORT(InvDctDequantBlock);
HWY_EXPORT(InvDctDequantLSBlock);

namespace {

// The level shifts of the LS forms are done by the block kernels themselves, on
// the 8x8 region in registers, rather than through the region kernels of
// pjencls.cpp and pjdecls.cpp: the arithmetic is the same and a block needs no
// row loop.

KroStatus DctFwd(const Kro16s* src, Kro16s* dst) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(FwdDctBlock)(src, dst);
  return kroStatusOk;
}

KroStatus DctInv(const Kro16s* src, Kro16s* dst) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(InvDctBlock)(src, dst);
  return kroStatusOk;
}

KroStatus DctQuantFwd(const Kro16s* src, Kro16s* dst, const Kro16u* recip) {
  if (AnyNull(src, dst, recip)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(FwdDctQuantBlock)(src, dst, recip);
  return kroStatusOk;
}

KroStatus DctQuantFwdLS(const Kro8u* src, int src_step, Kro16s* dst, const Kro16u* recip) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadStep(src_step)) return kroStatusBadStep;
  if (AnyNull(recip)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(FwdDctQuantLSBlock)(src, src_step, dst, recip);
  return kroStatusOk;
}

KroStatus DctQuantInv(const Kro16s* src, Kro16s* dst, const Kro16u* steps) {
  if (AnyNull(src, dst, steps)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(InvDctDequantBlock)(src, dst, steps);
  return kroStatusOk;
}

KroStatus DctQuantInvLS(const Kro16s* src, Kro8u* dst, int dst_step, const Kro16u* steps) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadStep(dst_step)) return kroStatusBadStep;
  if (AnyNull(steps)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(InvDctDequantLSBlock)(src, dst, dst_step, steps);
  return kroStatusOk;
}

// No scratch copy: source and destination must not overlap.
template <bool kToZigzag>
KroStatus Zigzag(const Kro16s* src, Kro16s* dst) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if constexpr (kToZigzag) {
    ref::NaturalToZigzag(src, dst);
  } else {
    ref::ZigzagToNatural(src, dst);
  }
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiDCT8x8Fwd_16s_C1(const Kro16s* pSrc, Kro16s* pDst) {
  return kro::DctFwd(pSrc, pDst);
}

KRO_EXPORT KroStatus kroiDCT8x8Fwd_16s_C1I(Kro16s* pSrcDst) {
  return kro::DctFwd(pSrcDst, pSrcDst);
}

KRO_EXPORT KroStatus kroiDCT8x8Inv_16s_C1(const Kro16s* pSrc, Kro16s* pDst) {
  return kro::DctInv(pSrc, pDst);
}

KRO_EXPORT KroStatus kroiDCT8x8Inv_16s_C1I(Kro16s* pSrcDst) {
  return kro::DctInv(pSrcDst, pSrcDst);
}

KRO_EXPORT KroStatus kroiDCTQuantFwd8x8_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst,
                                                    const Kro16u* pQuantFwdTable) {
  return kro::DctQuantFwd(pSrc, pDst, pQuantFwdTable);
}

KRO_EXPORT KroStatus kroiDCTQuantFwd8x8_JPEG_16s_C1I(Kro16s* pSrcDst,
                                                     const Kro16u* pQuantFwdTable) {
  return kro::DctQuantFwd(pSrcDst, pSrcDst, pQuantFwdTable);
}

KRO_EXPORT KroStatus kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDst,
                                                         const Kro16u* pQuantFwdTable) {
  return kro::DctQuantFwdLS(pSrc, srcStep, pDst, pQuantFwdTable);
}

KRO_EXPORT KroStatus kroiDCTQuantInv8x8_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst,
                                                    const Kro16u* pQuantInvTable) {
  return kro::DctQuantInv(pSrc, pDst, pQuantInvTable);
}

KRO_EXPORT KroStatus kroiDCTQuantInv8x8_JPEG_16s_C1I(Kro16s* pSrcDst,
                                                     const Kro16u* pQuantInvTable) {
  return kro::DctQuantInv(pSrcDst, pSrcDst, pQuantInvTable);
}

KRO_EXPORT KroStatus kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Kro16s* pSrc, Kro8u* pDst,
                                                         int dstStep,
                                                         const Kro16u* pQuantInvTable) {
  return kro::DctQuantInvLS(pSrc, pDst, dstStep, pQuantInvTable);
}

KRO_EXPORT KroStatus kroiZigzagFwd8x8_16s_C1(const Kro16s* pSrc, Kro16s* pDst) {
  return kro::Zigzag<true>(pSrc, pDst);
}

KRO_EXPORT KroStatus kroiZigzagInv8x8_16s_C1(const Kro16s* pSrc, Kro16s* pDst) {
  return kro::Zigzag<false>(pSrc, pDst);
}
#endif  // HWY_ONCE
