// SPDX-License-Identifier: BSD-3-Clause
// Image logical operations: AND, OR, XOR of two images or of an image and a
// per-channel constant, and NOT, for C1, C3, C4 and AC4 (alpha never written),
// out of place and in place (the in-place forms pass the destination as source).
//
// Argument checks, in this order: any pointer (value array included) null ->
// NullPointer; any step below 1 -> BadStep; width or height below 1 -> BadSize.
// The steps come before the size here, unlike the copy family; kept for
// compatibility with existing callers.
#include <limits.h>
#include <stdint.h>

#include "kro_base.h"
#include "kro_checks.h"
#include "ref/logic_ref.h"

namespace kro {

using ref::LogicOp;
constexpr LogicOp kAnd = LogicOp::kAnd;
constexpr LogicOp kOr = LogicOp::kOr;
constexpr LogicOp kXor = LogicOp::kXor;

namespace {

// Pixel stride in samples, and how many channels of each pixel are written.
struct LogicLayout {
  int stride;
  int channels;
};
constexpr LogicLayout kC1{1, 1};
constexpr LogicLayout kC3{3, 3};
constexpr LogicLayout kC4{4, 4};
constexpr LogicLayout kAC4{4, 3};

// The row kernels, one place to swap in vector versions.
template <LogicOp op, class T>
void TwoSourceRow(const T* a, const T* b, T* dst, ptrdiff_t n) {
  ref::LogicChannelsRow<op, 1, 1>(a, b, dst, n);
}

template <LogicOp op, class T>
void AlphaTwoSourceRow(const T* a, const T* b, T* dst, ptrdiff_t pixels) {
  ref::LogicChannelsRow<op, 4, 3>(a, b, dst, pixels);
}

// One constant for every sample. These are the shared rows the code-block decoder
// uses as well; they count in int, so a row longer than that goes in pieces.
template <LogicOp op, class T>
void ConstRow(const T* src, T value, T* dst, ptrdiff_t n) {
  while (n > 0) {
    const int m = n > INT_MAX ? INT_MAX : static_cast<int>(n);
    if constexpr (op == LogicOp::kAnd) ref::AndCRow(src, value, dst, m);
    if constexpr (op == LogicOp::kOr) ref::OrCRow(src, value, dst, m);
    if constexpr (op == LogicOp::kXor) ref::XorCRow(src, value, dst, m);
    src += m;
    dst += m;
    n -= m;
  }
}

template <LogicOp op, class T, LogicLayout L>
void ConstChannelsRow(const T* src, const T* value, T* dst, ptrdiff_t pixels) {
  ref::LogicConstChannelsRow<op, L.stride, L.channels>(src, value, dst, pixels);
}

// pDst = pSrc1 op pSrc2. Either source may be the destination (in-place forms).
template <LogicOp op, class T, LogicLayout L>
KroStatus Logic(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep,
                KroiSize roi) {
  if (AnyNull(pSrc1, pSrc2, pDst)) return kroStatusNullPointer;
  if (BadStep(src1Step, src2Step, dstStep)) return kroStatusBadStep;
  if (BadSize(roi)) return kroStatusBadSize;
  for (int y = 0; y < roi.height; ++y) {
    const T* a = RowPtr(pSrc1, src1Step, y);
    const T* b = RowPtr(pSrc2, src2Step, y);
    T* d = RowPtr(pDst, dstStep, y);
    if constexpr (L.stride == L.channels) {
      TwoSourceRow<op>(a, b, d, static_cast<ptrdiff_t>(roi.width) * L.stride);
    } else {
      AlphaTwoSourceRow<op>(a, b, d, roi.width);
    }
  }
  return kroStatusOk;
}

// pDst = pSrc op value[channel]. A C3 or C4 constant whose channels all agree is
// one constant over rows of 3 or 4 times width samples, as for C1.
template <LogicOp op, class T, LogicLayout L>
KroStatus LogicConst(const T* pSrc, int srcStep, const T* value, T* pDst, int dstStep,
                     KroiSize roi) {
  if (AnyNull(pSrc, value, pDst)) return kroStatusNullPointer;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  if (BadSize(roi)) return kroStatusBadSize;
  bool uniform = L.stride == L.channels;
  for (int c = 1; c < L.channels; ++c) uniform = uniform && value[c] == value[0];
  for (int y = 0; y < roi.height; ++y) {
    const T* s = RowPtr(pSrc, srcStep, y);
    T* d = RowPtr(pDst, dstStep, y);
    if (uniform) {
      ConstRow<op>(s, value[0], d, static_cast<ptrdiff_t>(roi.width) * L.stride);
    } else {
      ConstChannelsRow<op, T, L>(s, value, d, roi.width);
    }
  }
  return kroStatusOk;
}

// NOT is XOR with all bits set, through the XorC form of the same layout (and so
// with its checks).
template <LogicLayout L>
KroStatus Not(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, KroiSize roi) {
  static constexpr Kro8u kAllOnes[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  return LogicConst<LogicOp::kXor, Kro8u, L>(pSrc, srcStep, kAllOnes, pDst, dstStep, roi);
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiAndC_16u_AC4IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                        KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                       srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_AC4R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                       Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep,
                                                       roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_C1IR(Kro16u value, Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u value, Kro16u* pDst,
                                      int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep,
                                                      roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_C3IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_C3R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                      Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_C4IR(const Kro16u value[4], Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_16u_C4R(const Kro16u* pSrc, int srcStep, const Kro16u value[4],
                                      Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro16u, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_AC4IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                        KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                       srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_AC4R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                       Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep,
                                                       roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_C1IR(Kro32s value, Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s value, Kro32s* pDst,
                                      int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep,
                                                      roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_C3IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_C3R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                      Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_C4IR(const Kro32s value[4], Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_32s_C4R(const Kro32s* pSrc, int srcStep, const Kro32s value[4],
                                      Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro32s, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_AC4IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_AC4R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                      Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_C1IR(Kro8u value, Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u value, Kro8u* pDst,
                                     int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_C3IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_C3R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                     Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_C4IR(const Kro8u value[4], Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAndC_8u_C4R(const Kro8u* pSrc, int srcStep, const Kro8u value[4],
                                     Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kAnd, Kro8u, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_AC4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                       int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                  srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_AC4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                      int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                  roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_C1IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_C1R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_C3IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_C3R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_C4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_16u_C4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro16u, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_AC4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                       int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                  srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_AC4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                      int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                  roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_C1IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_C1R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_C3IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_C3R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_C4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_32s_C4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro32s, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_AC4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_AC4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                     int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_C1IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_C1R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_C3IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_C3R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_C4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiAnd_8u_C4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kAnd, Kro8u, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize) {
  return kro::Not<kro::kAC4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::Not<kro::kAC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_C1IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize) {
  return kro::Not<kro::kC1>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize) {
  return kro::Not<kro::kC1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize) {
  return kro::Not<kro::kC3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize) {
  return kro::Not<kro::kC3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_C4IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize) {
  return kro::Not<kro::kC4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiNot_8u_C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize) {
  return kro::Not<kro::kC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_AC4IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_AC4R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                      Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_C1IR(Kro16u value, Kro16u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u value, Kro16u* pDst,
                                     int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_C3IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_C3R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                     Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_C4IR(const Kro16u value[4], Kro16u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_16u_C4R(const Kro16u* pSrc, int srcStep, const Kro16u value[4],
                                     Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro16u, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_AC4IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_AC4R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                      Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_C1IR(Kro32s value, Kro32s* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s value, Kro32s* pDst,
                                     int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_C3IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_C3R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                     Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_C4IR(const Kro32s value[4], Kro32s* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_32s_C4R(const Kro32s* pSrc, int srcStep, const Kro32s value[4],
                                     Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro32s, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_AC4IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_AC4R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                     Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_C1IR(Kro8u value, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                    srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u value, Kro8u* pDst,
                                    int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_C3IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep,
                                                    roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_C3R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                    Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_C4IR(const Kro8u value[4], Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep,
                                                    roiSize);
}
KRO_EXPORT KroStatus kroiOrC_8u_C4R(const Kro8u* pSrc, int srcStep, const Kro8u value[4],
                                    Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kOr, Kro8u, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_AC4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_AC4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_C1IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                     int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_C1R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                    int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_C3IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                     int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_C3R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                    int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_C4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                     int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_16u_C4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                    int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro16u, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_AC4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_AC4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_C1IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                     int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_C1R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                    int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_C3IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                     int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_C3R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                    int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_C4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                     int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_32s_C4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                    int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro32s, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_AC4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_AC4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_C1IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                               srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_C1R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                   int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                               roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_C3IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                               srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_C3R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                   int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                               roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_C4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                               srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiOr_8u_C4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                   int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kOr, Kro8u, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                               roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_AC4IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                        KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                       srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_AC4R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                       Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep,
                                                       roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_C1IR(Kro16u value, Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u value, Kro16u* pDst,
                                      int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep,
                                                      roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_C3IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_C3R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                      Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_C4IR(const Kro16u value[4], Kro16u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_16u_C4R(const Kro16u* pSrc, int srcStep, const Kro16u value[4],
                                      Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro16u, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_AC4IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                        KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                       srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_AC4R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                       Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep,
                                                       roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_C1IR(Kro32s value, Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s value, Kro32s* pDst,
                                      int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep,
                                                      roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_C3IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_C3R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                      Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_C4IR(const Kro32s value[4], Kro32s* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_32s_C4R(const Kro32s* pSrc, int srcStep, const Kro32s value[4],
                                      Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro32s, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_AC4IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                       KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kAC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                      srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_AC4R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                      Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kAC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_C1IR(Kro8u value, Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kC1>(pSrcDst, srcDstStep, &value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u value, Kro8u* pDst,
                                     int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kC1>(pSrc, srcStep, &value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_C3IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kC3>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_C3R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                     Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kC3>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_C4IR(const Kro8u value[4], Kro8u* pSrcDst, int srcDstStep,
                                      KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kC4>(pSrcDst, srcDstStep, value, pSrcDst,
                                                     srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXorC_8u_C4R(const Kro8u* pSrc, int srcStep, const Kro8u value[4],
                                     Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::LogicConst<kro::kXor, Kro8u, kro::kC4>(pSrc, srcStep, value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_AC4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                       int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                  srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_AC4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                      int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                  roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_C1IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_C1R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_C3IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_C3R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_C4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_16u_C4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                     int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro16u, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_AC4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                       int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                  srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_AC4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                      int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                  roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_C1IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_C1R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_C3IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_C3R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_C4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_32s_C4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                     int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro32s, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_AC4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst,
                                      int srcDstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kAC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                 srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_AC4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                     int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kAC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                 roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_C1IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kC1>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_C1R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kC1>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_C3IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kC3>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_C3R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kC3>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_C4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kC4>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst,
                                                srcDstStep, roiSize);
}
KRO_EXPORT KroStatus kroiXor_8u_C4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                    int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::Logic<kro::kXor, Kro8u, kro::kC4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                                                roiSize);
}
