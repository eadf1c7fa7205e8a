// SPDX-License-Identifier: BSD-3-Clause
// Image logical operations: AND, OR, XOR of two images or of an image and a
// per-channel constant, and NOT, for C1, C3, C4 and AC4 (alpha never written),
// out of place and in place (the in-place forms pass the destination as source).
//
// Argument checks, in this order: any pointer (value array included) null ->
// NullPointer; any step below 1 -> BadStep; width or height below 1 -> BadSize.
// The steps come before the size here, unlike the copy family; kept for
// compatibility with existing callers.
//
// The rows are the SIMD rows of simd/image-inl.h, chosen for the CPU once per call;
// 32s samples go through 32-bit unsigned lanes (the operations only see bits).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "image_logical.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/image-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// This target's rows for an operation on pixels of `stride` samples of which
// `channels` are written: (1, 1) for every element-wise row, (3, 3), (4, 4) and
// (4, 3) for the per-channel constants and AC4.
template <ref::LogicOp op, class U>
LogicRowFn<U> LogicRowFor(int stride) {
  return stride == 1 ? LogicRowSimd<op, 1, 1, U> : LogicRowSimd<op, 4, 3, U>;
}
template <ref::LogicOp op, class U>
LogicConstRowFn<U> LogicConstRowFor(int stride, int channels) {
  if (stride == 1) return LogicConstRowSimd<op, 1, 1, U>;
  if (stride == 3) return LogicConstRowSimd<op, 3, 3, U>;
  return channels == 4 ? LogicConstRowSimd<op, 4, 4, U> : LogicConstRowSimd<op, 4, 3, U>;
}
template <class U>
LogicRowFn<U> AnyLogicRow(ref::LogicOp op, int stride) {
  if (op == ref::LogicOp::kAnd) return LogicRowFor<ref::LogicOp::kAnd, U>(stride);
  if (op == ref::LogicOp::kOr) return LogicRowFor<ref::LogicOp::kOr, U>(stride);
  return LogicRowFor<ref::LogicOp::kXor, U>(stride);
}
template <class U>
LogicConstRowFn<U> AnyLogicConstRow(ref::LogicOp op, int stride, int channels) {
  if (op == ref::LogicOp::kAnd) return LogicConstRowFor<ref::LogicOp::kAnd, U>(stride, channels);
  if (op == ref::LogicOp::kOr) return LogicConstRowFor<ref::LogicOp::kOr, U>(stride, channels);
  return LogicConstRowFor<ref::LogicOp::kXor, U>(stride, channels);
}

// Highway exports plain functions only: one per kind of row and lane size.
LogicRowFn<uint8_t> LogicRow8(ref::LogicOp op, int s) { return AnyLogicRow<uint8_t>(op, s); }
LogicRowFn<uint16_t> LogicRow16(ref::LogicOp op, int s) { return AnyLogicRow<uint16_t>(op, s); }
LogicRowFn<uint32_t> LogicRow32(ref::LogicOp op, int s) { return AnyLogicRow<uint32_t>(op, s); }
LogicConstRowFn<uint8_t> LogicConstRow8(ref::LogicOp op, int s, int c) {
  return AnyLogicConstRow<uint8_t>(op, s, c);
}
LogicConstRowFn<uint16_t> LogicConstRow16(ref::LogicOp op, int s, int c) {
  return AnyLogicConstRow<uint16_t>(op, s, c);
}
LogicConstRowFn<uint32_t> LogicConstRow32(ref::LogicOp op, int s, int c) {
  return AnyLogicConstRow<uint32_t>(op, s, c);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_base.h"
#include "kro_checks.h"

namespace kro {

using ref::LogicOp;
constexpr LogicOp kAnd = LogicOp::kAnd;
constexpr LogicOp kOr = LogicOp::kOr;
constexpr LogicOp kXor = LogicOp::kXor;

HWY_EXPORT(LogicRow8);
HWY_EXPORT(LogicRow16);
HWY_EXPORT(LogicRow32);
HWY_EXPORT(LogicConstRow8);
HWY_EXPORT(LogicConstRow16);
HWY_EXPORT(LogicConstRow32);

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

// The rows of the best target of this CPU, for lanes of type U.
template <class U>
LogicRowFn<U> LogicRow(LogicOp op, int stride) {
  if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(LogicRow8)(op, stride);
  if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(LogicRow16)(op, stride);
  if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(LogicRow32)(op, stride);
}
template <class U>
LogicConstRowFn<U> LogicConstRow(LogicOp op, int stride, int channels) {
  if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(LogicConstRow8)(op, stride, channels);
  if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(LogicConstRow16)(op, stride, channels);
  if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(LogicConstRow32)(op, stride, channels);
}

// pDst = pSrc1 op pSrc2. Either source may be the destination (in-place forms).
// C1, C3 and C4 are one element-wise row of width * channels samples.
template <LogicOp op, class T, LogicLayout L>
KroStatus Logic(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep,
                KroiSize roi) {
  if (AnyNull(pSrc1, pSrc2, pDst)) return kroStatusNullPointer;
  if (BadStep(src1Step, src2Step, dstStep)) return kroStatusBadStep;
  if (BadSize(roi)) return kroStatusBadSize;
  constexpr bool kWhole = L.stride == L.channels;
  const auto row = LogicRow<BitsOf<T>>(op, kWhole ? 1 : L.stride);
  const ptrdiff_t n = static_cast<ptrdiff_t>(roi.width) * (kWhole ? L.stride : 1);
  for (int y = 0; y < roi.height; ++y) {
    row(AsBits(RowPtr(pSrc1, src1Step, y)), AsBits(RowPtr(pSrc2, src2Step, y)),
        AsBits(RowPtr(pDst, dstStep, y)), n);
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
  BitsOf<T> v[L.channels];
  for (int c = 0; c < L.channels; ++c) v[c] = static_cast<BitsOf<T>>(value[c]);
  const auto row = uniform ? LogicConstRow<BitsOf<T>>(op, 1, 1)
                           : LogicConstRow<BitsOf<T>>(op, L.stride, L.channels);
  const ptrdiff_t n = static_cast<ptrdiff_t>(roi.width) * (uniform ? L.stride : 1);
  for (int y = 0; y < roi.height; ++y)
    row(AsBits(RowPtr(pSrc, srcStep, y)), v, AsBits(RowPtr(pDst, dstStep, y)), n);
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
#endif  // HWY_ONCE
