// SPDX-License-Identifier: BSD-3-Clause
// JPEG level shift between 8-bit samples and signed 16-bit values: the unchecked
// region kernels (row-parallel for large regions) and the checks of the exported
// functions. The LS block functions of the DCT call the kernels directly.
#ifndef KROJ_SRC_PJLS_H_
#define KROJ_SRC_PJLS_H_

#include "kro_base.h"
#include "kro_checks.h"

namespace kro {

// dst = src - 128 over a region. No argument checks.
KroStatus ownpj_Sub128_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize);
// dst = clamp(src + 128, 0, 255) over a region. No argument checks.
KroStatus ownpj_Add128_JPEG_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize);

// Checks of the region level shifts, in their documented order: source pointer,
// source step, destination pointer, destination step, then the size.
template <auto kKernel, class S, class D>
KroStatus LevelShift(const S* pSrc, int srcStep, D* pDst, int dstStep, KroiSize roiSize) {
  if (AnyNull(pSrc)) return kroStatusNullPointer;
  if (BadStep(srcStep)) return kroStatusBadStep;
  if (AnyNull(pDst)) return kroStatusNullPointer;
  if (BadStep(dstStep)) return kroStatusBadStep;
  if (BadSize(roiSize)) return kroStatusBadSize;
  return kKernel(pSrc, srcStep, pDst, dstStep, roiSize);
}

}  // namespace kro

#endif  // KROJ_SRC_PJLS_H_
