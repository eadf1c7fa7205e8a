// SPDX-License-Identifier: BSD-3-Clause
// Argument-check helpers. Each family writes its checks as a list of early returns in
// its documented order; these keep each line short enough to read against that order:
//
//   if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
//   if (BadSize(roiSize)) return kroStatusBadSize;
//   if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
#ifndef KROJ_SRC_KRO_CHECKS_H_
#define KROJ_SRC_KRO_CHECKS_H_

#include "kro_base.h"

namespace kro {

// True if any of the pointers is null.
template <class... P>
constexpr bool AnyNull(const P*... p) {
  return ((p == nullptr) || ...);
}

// A region with a side below 1.
constexpr bool BadSize(KroiSize s) { return s.width < 1 || s.height < 1; }

// A length below 1.
constexpr bool BadLen(int len) { return len < 1; }

// Any row step below 1.
template <class... S>
constexpr bool BadStep(S... steps) {
  return ((steps < 1) || ...);
}

}  // namespace kro

#endif  // KROJ_SRC_KRO_CHECKS_H_
