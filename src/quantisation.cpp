// SPDX-License-Identifier: BSD-3-Clause
// JPEG quantisation tables (quality scaling, forward reciprocal and inverse step
// tables in natural order) and block quantisation and dequantisation; the block
// kernels are compiled per SIMD target (simd/dct-inl.h) and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quantisation.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/dct-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void QuantFwdBlock(int16_t* block, const uint16_t* recip) { QuantFwdBlockSimd(block, recip); }
void QuantInvBlock(int16_t* block, const uint16_t* steps) { QuantInvBlockSimd(block, steps); }

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"
#include "ref/dct_ref.h"
#include "ref/quant_ref.h"
#include "ref/signal_ref.h"

namespace kro {

HWY_EXPORT(QuantFwdBlock);
HWY_EXPORT(QuantInvBlock);

namespace {

// The raw steps come in zig-zag order as bytes; the working tables are 16-bit and
// in natural order, to line up with the coefficient blocks.
void NaturalSteps(const Kro8u* raw, Kro16u* table) {
  Kro16u wide[64];
  for (int k = 0; k < 64; ++k) wide[k] = raw[k];
  ref::ZigzagToNatural(wide, table);
}

KroStatus QuantRawTableInit(Kro8u* table, int quality) {
  if (AnyNull(table)) return kroStatusNullPointer;
  // A factor of 0 has no scale (5000 / 0). Rather than fault inside the caller's
  // process, the table is left as it is and the call reports a bad argument.
  if (quality == 0) return kroStatusBadArgument;
  ref::QualityScaleTable(table, quality);
  return kroStatusOk;
}

// Forward table: each natural-order step q becomes the 15-bit reciprocal
// 32768 / q; a zero step becomes 65535 and turns the status into a warning.
KroStatus QuantFwdTableInit(const Kro8u* raw, Kro16u* table) {
  if (AnyNull(raw, table)) return kroStatusNullPointer;
  NaturalSteps(raw, table);
  const bool zero_step = ref::DivCRev16uRow(table, 32768, table, 64);
  return zero_step ? kroStatusDivideByZeroWarning : kroStatusOk;
}

KroStatus QuantInvTableInit(const Kro8u* raw, Kro16u* table) {
  if (AnyNull(raw, table)) return kroStatusNullPointer;
  NaturalSteps(raw, table);
  return kroStatusOk;
}

KroStatus QuantFwd(Kro16s* block, const Kro16u* table) {
  if (AnyNull(block, table)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(QuantFwdBlock)(block, table);
  return kroStatusOk;
}

KroStatus QuantInv(Kro16s* block, const Kro16u* table) {
  if (AnyNull(block, table)) return kroStatusNullPointer;
  HWY_DYNAMIC_DISPATCH(QuantInvBlock)(block, table);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiQuantFwdRawTableInit_JPEG_8u(Kro8u* pQuantRawTable, int qualityFactor) {
  return kro::QuantRawTableInit(pQuantRawTable, qualityFactor);
}

KRO_EXPORT KroStatus kroiQuantFwdTableInit_JPEG_8u16u(const Kro8u* pQuantRawTable,
                                                      Kro16u* pQuantFwdTable) {
  return kro::QuantFwdTableInit(pQuantRawTable, pQuantFwdTable);
}

KRO_EXPORT KroStatus kroiQuantInvTableInit_JPEG_8u16u(const Kro8u* pQuantRawTable,
                                                      Kro16u* pQuantInvTable) {
  return kro::QuantInvTableInit(pQuantRawTable, pQuantInvTable);
}

KRO_EXPORT KroStatus kroiQuantFwd8x8_JPEG_16s_C1I(Kro16s* pSrcDst, const Kro16u* pQuantFwdTable) {
  return kro::QuantFwd(pSrcDst, pQuantFwdTable);
}

KRO_EXPORT KroStatus kroiQuantInv8x8_JPEG_16s_C1I(Kro16s* pSrcDst, const Kro16u* pQuantInvTable) {
  return kro::QuantInv(pSrcDst, pQuantInvTable);
}
#endif  // HWY_ONCE
