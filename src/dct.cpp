// SPDX-License-Identifier: BSD-3-Clause
// 8x8 forward and inverse DCT, alone and combined with quantisation and level
// shift, and the zig-zag reorderings.
#include "kro_checks.h"
#include "pjls.h"
#include "ref/dct_ref.h"
#include "ref/quant_ref.h"

namespace kro {
namespace {

// The block transforms every exported function goes through; a vector version of
// the passes replaces these two bodies.
void FwdDctBlock(const Kro16s* src, Kro16s* dst) { ref::FwdDct8x8(src, dst); }
void InvDctBlock(const Kro16s* src, Kro16s* dst) { ref::InvDct8x8(src, dst); }

// The 8x8 regions of the LS functions are handed to the level-shift kernels as
// contiguous blocks with rows of 16 bytes.
constexpr int kBlockStep = 8 * sizeof(Kro16s);
constexpr KroiSize kBlockSize = {8, 8};

template <void (*kTransform)(const Kro16s*, Kro16s*)>
KroStatus Dct(const Kro16s* src, Kro16s* dst) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  kTransform(src, dst);
  return kroStatusOk;
}

KroStatus DctQuantFwd(const Kro16s* src, Kro16s* dst, const Kro16u* recip) {
  if (AnyNull(src, dst, recip)) return kroStatusNullPointer;
  FwdDctBlock(src, dst);
  ref::QuantFwdBlock(dst, recip);
  return kroStatusOk;
}

KroStatus DctQuantFwdLS(const Kro8u* src, int src_step, Kro16s* dst, const Kro16u* recip) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadStep(src_step)) return kroStatusBadStep;
  if (AnyNull(recip)) return kroStatusNullPointer;
  ownpj_Sub128_JPEG_8u16s_C1R(src, src_step, dst, kBlockStep, kBlockSize);
  FwdDctBlock(dst, dst);
  ref::QuantFwdBlock(dst, recip);
  return kroStatusOk;
}

KroStatus DctQuantInv(const Kro16s* src, Kro16s* dst, const Kro16u* steps) {
  if (AnyNull(src, dst, steps)) return kroStatusNullPointer;
  ref::QuantInvBlock(src, steps, dst);
  InvDctBlock(dst, dst);
  return kroStatusOk;
}

KroStatus DctQuantInvLS(const Kro16s* src, Kro8u* dst, int dst_step, const Kro16u* steps) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadStep(dst_step)) return kroStatusBadStep;
  if (AnyNull(steps)) return kroStatusNullPointer;
  alignas(32) Kro16s block[64];
  ref::QuantInvBlock(src, steps, block);
  InvDctBlock(block, block);
  ownpj_Add128_JPEG_16s8u_C1R(block, kBlockStep, dst, dst_step, kBlockSize);
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
  return kro::Dct<kro::FwdDctBlock>(pSrc, pDst);
}

KRO_EXPORT KroStatus kroiDCT8x8Fwd_16s_C1I(Kro16s* pSrcDst) {
  return kro::Dct<kro::FwdDctBlock>(pSrcDst, pSrcDst);
}

KRO_EXPORT KroStatus kroiDCT8x8Inv_16s_C1(const Kro16s* pSrc, Kro16s* pDst) {
  return kro::Dct<kro::InvDctBlock>(pSrc, pDst);
}

KRO_EXPORT KroStatus kroiDCT8x8Inv_16s_C1I(Kro16s* pSrcDst) {
  return kro::Dct<kro::InvDctBlock>(pSrcDst, pSrcDst);
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
