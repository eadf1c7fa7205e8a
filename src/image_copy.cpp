// SPDX-License-Identifier: BSD-3-Clause
// Image copy between layouts (whole pixels, one channel, alpha-preserving, masked,
// interleaved and planar), fill with a value, and the 8u to 16u widening.
//
// Argument checks, in this order:
//   copy     pointers (mask, plane array, each plane) null -> NullPointer; size -> BadSize.
//            Steps are not checked: 0 repeats a row, a negative step walks upwards.
//   set      pointers (value array, mask) null -> NullPointer; size -> BadSize;
//            dstStep (and maskStep) below 1 -> BadStep.
//   convert  null -> NullPointer; size -> BadSize; either step below 1 -> BadStep.
//
// Whole-pixel copies are memmove per row. Every other row runs through the SIMD rows
// of simd/image-inl.h, chosen for the CPU once per call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "image_copy.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/image-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// This target's row for a layout pair: source and destination pixel strides and the
// channels moved (see CopyChannelsRow).
template <class U>
MoveRowFn<U> MoveRowFor(int src_stride, int dst_stride, int channels) {
  const int s = src_stride, d = dst_stride, c = channels;
  if (s == 4 && d == 4 && c == 3) return MoveChannelsRowSimd<4, 4, 3, U>;  // AC4
  if (s == 3 && d == 1) return MoveChannelsRowSimd<3, 1, 1, U>;
  if (s == 4 && d == 1) return MoveChannelsRowSimd<4, 1, 1, U>;
  if (s == 1 && d == 3) return MoveChannelsRowSimd<1, 3, 1, U>;
  if (s == 1 && d == 4) return MoveChannelsRowSimd<1, 4, 1, U>;
  if (s == 3 && d == 3 && c == 1) return MoveChannelsRowSimd<3, 3, 1, U>;  // C3CR
  if (s == 4 && d == 4 && c == 1) return MoveChannelsRowSimd<4, 4, 1, U>;  // C4CR
  if (s == 4 && d == 3) return MoveChannelsRowSimd<4, 3, 3, U>;
  if (s == 3 && d == 4) return MoveChannelsRowSimd<3, 4, 3, U>;
  return nullptr;
}

// Pixels of `stride` samples of which `channels` are written: C1, C3, C4, AC4 and,
// for the fills, C3CR and C4CR.
template <class U>
MaskedMoveRowFn<U> MaskedRowFor(int stride, int channels) {
  if (stride == 1) return CopyMaskedRowSimd<1, 1, U>;
  if (stride == 3) return CopyMaskedRowSimd<3, 3, U>;
  if (channels == 4) return CopyMaskedRowSimd<4, 4, U>;
  return CopyMaskedRowSimd<4, 3, U>;
}
template <class U>
SetRowFn<U> SetRowFor(int stride, int channels) {
  if (stride == 1) return SetRowSimd<1, 1, U>;
  if (stride == 3) return channels == 3 ? SetRowSimd<3, 3, U> : SetRowSimd<3, 1, U>;
  if (channels == 4) return SetRowSimd<4, 4, U>;
  return channels == 3 ? SetRowSimd<4, 3, U> : SetRowSimd<4, 1, U>;
}
template <class U>
SetMaskedRowFn<U> SetMaskedRowFor(int stride, int channels) {
  if (stride == 1) return SetMaskedRowSimd<1, 1, U>;
  if (stride == 3) return SetMaskedRowSimd<3, 3, U>;
  if (channels == 4) return SetMaskedRowSimd<4, 4, U>;
  return SetMaskedRowSimd<4, 3, U>;
}
template <class U>
SplitRowFn<U> SplitRowFor(int planes) {
  return planes == 3 ? SplitPlanesRowSimd<3, U> : SplitPlanesRowSimd<4, U>;
}
template <class U>
MergeRowFn<U> MergeRowFor(int planes) {
  return planes == 3 ? MergePlanesRowSimd<3, U> : MergePlanesRowSimd<4, U>;
}

// Highway exports plain functions only: one per kind of row and lane size.
MoveRowFn<uint8_t> MoveRow8(int s, int d, int c) { return MoveRowFor<uint8_t>(s, d, c); }
MoveRowFn<uint16_t> MoveRow16(int s, int d, int c) { return MoveRowFor<uint16_t>(s, d, c); }
MoveRowFn<uint32_t> MoveRow32(int s, int d, int c) { return MoveRowFor<uint32_t>(s, d, c); }
MaskedMoveRowFn<uint8_t> MaskedRow8(int s, int c) { return MaskedRowFor<uint8_t>(s, c); }
MaskedMoveRowFn<uint16_t> MaskedRow16(int s, int c) { return MaskedRowFor<uint16_t>(s, c); }
MaskedMoveRowFn<uint32_t> MaskedRow32(int s, int c) { return MaskedRowFor<uint32_t>(s, c); }
SetRowFn<uint8_t> SetRow8(int s, int c) { return SetRowFor<uint8_t>(s, c); }
SetRowFn<uint16_t> SetRow16(int s, int c) { return SetRowFor<uint16_t>(s, c); }
SetRowFn<uint32_t> SetRow32(int s, int c) { return SetRowFor<uint32_t>(s, c); }
SetMaskedRowFn<uint8_t> SetMaskedRow8(int s, int c) { return SetMaskedRowFor<uint8_t>(s, c); }
SetMaskedRowFn<uint16_t> SetMaskedRow16(int s, int c) { return SetMaskedRowFor<uint16_t>(s, c); }
SetMaskedRowFn<uint32_t> SetMaskedRow32(int s, int c) { return SetMaskedRowFor<uint32_t>(s, c); }
SplitRowFn<uint8_t> SplitRow8(int planes) { return SplitRowFor<uint8_t>(planes); }
SplitRowFn<uint16_t> SplitRow16(int planes) { return SplitRowFor<uint16_t>(planes); }
SplitRowFn<uint32_t> SplitRow32(int planes) { return SplitRowFor<uint32_t>(planes); }
MergeRowFn<uint8_t> MergeRow8(int planes) { return MergeRowFor<uint8_t>(planes); }
MergeRowFn<uint16_t> MergeRow16(int planes) { return MergeRowFor<uint16_t>(planes); }
MergeRowFn<uint32_t> MergeRow32(int planes) { return MergeRowFor<uint32_t>(planes); }
void WidenRow(const uint8_t* src, uint16_t* dst, ptrdiff_t n) { WidenRowSimd(src, dst, n); }

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <string.h>

#include "kro_base.h"
#include "kro_checks.h"

namespace kro {

HWY_EXPORT(MoveRow8);
HWY_EXPORT(MoveRow16);
HWY_EXPORT(MoveRow32);
HWY_EXPORT(MaskedRow8);
HWY_EXPORT(MaskedRow16);
HWY_EXPORT(MaskedRow32);
HWY_EXPORT(SetRow8);
HWY_EXPORT(SetRow16);
HWY_EXPORT(SetRow32);
HWY_EXPORT(SetMaskedRow8);
HWY_EXPORT(SetMaskedRow16);
HWY_EXPORT(SetMaskedRow32);
HWY_EXPORT(SplitRow8);
HWY_EXPORT(SplitRow16);
HWY_EXPORT(SplitRow32);
HWY_EXPORT(MergeRow8);
HWY_EXPORT(MergeRow16);
HWY_EXPORT(MergeRow32);
HWY_EXPORT(WidenRow);

namespace {

// The row kernels of the best target of this CPU, for lanes of type U.
template <class U>
struct Rows {
  static MoveRowFn<U> Move(int s, int d, int c) {
    if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(MoveRow8)(s, d, c);
    if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(MoveRow16)(s, d, c);
    if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(MoveRow32)(s, d, c);
  }
  static MaskedMoveRowFn<U> Masked(int s, int c) {
    if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(MaskedRow8)(s, c);
    if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(MaskedRow16)(s, c);
    if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(MaskedRow32)(s, c);
  }
  static SetRowFn<U> Set(int s, int c) {
    if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(SetRow8)(s, c);
    if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(SetRow16)(s, c);
    if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(SetRow32)(s, c);
  }
  static SetMaskedRowFn<U> SetMasked(int s, int c) {
    if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(SetMaskedRow8)(s, c);
    if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(SetMaskedRow16)(s, c);
    if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(SetMaskedRow32)(s, c);
  }
  static SplitRowFn<U> Split(int planes) {
    if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(SplitRow8)(planes);
    if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(SplitRow16)(planes);
    if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(SplitRow32)(planes);
  }
  static MergeRowFn<U> Merge(int planes) {
    if constexpr (sizeof(U) == 1) return HWY_DYNAMIC_DISPATCH(MergeRow8)(planes);
    if constexpr (sizeof(U) == 2) return HWY_DYNAMIC_DISPATCH(MergeRow16)(planes);
    if constexpr (sizeof(U) == 4) return HWY_DYNAMIC_DISPATCH(MergeRow32)(planes);
  }
};

// How a copy moves samples: pixel strides (in samples) of source and destination,
// and the number of channels moved from each pixel, starting at the one the
// pointers address.
struct CopyShape {
  int src_stride;
  int dst_stride;
  int channels;
};
constexpr CopyShape kCopyC1{1, 1, 1};
constexpr CopyShape kCopyC3{3, 3, 3};
constexpr CopyShape kCopyC4{4, 4, 4};
constexpr CopyShape kCopyAC4{4, 4, 3};
constexpr CopyShape kCopyC3C1{3, 1, 1};
constexpr CopyShape kCopyC1C3{1, 3, 1};
constexpr CopyShape kCopyC4C1{4, 1, 1};
constexpr CopyShape kCopyC1C4{1, 4, 1};
constexpr CopyShape kCopyC3CR{3, 3, 1};
constexpr CopyShape kCopyC4CR{4, 4, 1};
constexpr CopyShape kCopyAC4C3{4, 3, 3};
constexpr CopyShape kCopyC3AC4{3, 4, 3};

// Pixels of a region as one count (for the paths that treat a gap-free region as a
// single row).
constexpr ptrdiff_t Pixels(KroiSize roi) {
  return static_cast<ptrdiff_t>(roi.width) * roi.height;
}

template <class T, CopyShape S>
KroStatus CopyImage(const T* pSrc, int srcStep, T* pDst, int dstStep, KroiSize roi) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  if constexpr (S.src_stride == S.channels && S.dst_stride == S.channels) {
    // Whole pixels: a row is a run of bytes. memmove, because a caller may copy an
    // image onto itself.
    const size_t row_bytes = static_cast<size_t>(roi.width) * S.channels * sizeof(T);
    for (int y = 0; y < roi.height; ++y)
      memmove(RowPtr(pDst, dstStep, y), RowPtr(pSrc, srcStep, y), row_bytes);
    return kroStatusOk;
  } else {
    const auto row = Rows<BitsOf<T>>::Move(S.src_stride, S.dst_stride, S.channels);
    if constexpr (S.src_stride == 4 && S.dst_stride == 4 && S.channels == 3) {
      // AC4 over gap-free rows on both sides: the region is one long row.
      const int64_t packed = int64_t{4} * roi.width * static_cast<int64_t>(sizeof(T));
      if (srcStep == dstStep && srcStep == packed) {
        row(AsBits(pSrc), AsBits(pDst), Pixels(roi));
        return kroStatusOk;
      }
    }
    for (int y = 0; y < roi.height; ++y)
      row(AsBits(RowPtr(pSrc, srcStep, y)), AsBits(RowPtr(pDst, dstStep, y)), roi.width);
    return kroStatusOk;
  }
}

// Masked copy of pixels of kStride samples, kChannels of them moved (3 for AC4).
template <class T, int kStride, int kChannels>
KroStatus CopyMasked(const T* pSrc, int srcStep, T* pDst, int dstStep, KroiSize roi,
                     const Kro8u* pMask, int maskStep) {
  if (AnyNull(pSrc, pDst, pMask)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  const auto row = Rows<BitsOf<T>>::Masked(kStride, kChannels);
  for (int y = 0; y < roi.height; ++y) {
    row(AsBits(RowPtr(pSrc, srcStep, y)), RowPtr(pMask, maskStep, y),
        AsBits(RowPtr(pDst, dstStep, y)), roi.width);
  }
  return kroStatusOk;
}

// Interleaved kPlanes-channel image to kPlanes planes sharing dstStep.
template <class T, int kPlanes>
KroStatus SplitPlanes(const T* pSrc, int srcStep, T* const* pDst, int dstStep, KroiSize roi) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  for (int c = 0; c < kPlanes; ++c) {
    if (pDst[c] == nullptr) return kroStatusNullPointer;
  }
  if (BadSize(roi)) return kroStatusBadSize;
  const auto row = Rows<BitsOf<T>>::Split(kPlanes);
  BitsOf<T>* rows[kPlanes];
  for (int y = 0; y < roi.height; ++y) {
    for (int c = 0; c < kPlanes; ++c) rows[c] = AsBits(RowPtr(pDst[c], dstStep, y));
    row(AsBits(RowPtr(pSrc, srcStep, y)), rows, roi.width);
  }
  return kroStatusOk;
}

// kPlanes planes sharing srcStep to one interleaved image.
template <class T, int kPlanes>
KroStatus MergePlanes(const T* const* pSrc, int srcStep, T* pDst, int dstStep, KroiSize roi) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  for (int c = 0; c < kPlanes; ++c) {
    if (pSrc[c] == nullptr) return kroStatusNullPointer;
  }
  if (BadSize(roi)) return kroStatusBadSize;
  const auto row = Rows<BitsOf<T>>::Merge(kPlanes);
  const BitsOf<T>* rows[kPlanes];
  for (int y = 0; y < roi.height; ++y) {
    for (int c = 0; c < kPlanes; ++c) rows[c] = AsBits(RowPtr(pSrc[c], srcStep, y));
    row(rows, AsBits(RowPtr(pDst, dstStep, y)), roi.width);
  }
  return kroStatusOk;
}

// Fill kChannels channels of pixels of kStride samples with value[0..kChannels-1].
// C1: stride 1; CR: stride 3 or 4, one channel; C3, C4: all; AC4: 3 of 4.
template <class T, int kStride, int kChannels>
KroStatus SetImage(const T* value, T* pDst, int dstStep, KroiSize roi) {
  if (AnyNull(value, pDst)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  if (BadStep(dstStep)) return kroStatusBadStep;
  BitsOf<T> v[kChannels];
  memcpy(v, value, sizeof(v));
  const auto row = Rows<BitsOf<T>>::Set(kStride, kChannels);
  for (int y = 0; y < roi.height; ++y) row(v, AsBits(RowPtr(pDst, dstStep, y)), roi.width);
  return kroStatusOk;
}

template <class T, int kStride, int kChannels>
KroStatus SetMasked(const T* value, T* pDst, int dstStep, KroiSize roi, const Kro8u* pMask,
                    int maskStep) {
  if (AnyNull(value, pDst, pMask)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  if (BadStep(dstStep, maskStep)) return kroStatusBadStep;
  BitsOf<T> v[kChannels];
  memcpy(v, value, sizeof(v));
  const auto row = Rows<BitsOf<T>>::SetMasked(kStride, kChannels);
  for (int y = 0; y < roi.height; ++y)
    row(v, RowPtr(pMask, maskStep, y), AsBits(RowPtr(pDst, dstStep, y)), roi.width);
  return kroStatusOk;
}

// Unsigned widening, one channel.
KroStatus Widen(const Kro8u* pSrc, int srcStep, Kro16u* pDst, int dstStep, KroiSize roi) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  const auto row = HWY_DYNAMIC_DISPATCH(WidenRow);
  // Gap-free rows on both sides: the region is one long row.
  if (dstStep == int64_t{2} * srcStep && srcStep == roi.width) {
    row(pSrc, pDst, Pixels(roi));
    return kroStatusOk;
  }
  for (int y = 0; y < roi.height; ++y)
    row(RowPtr(pSrc, srcStep, y), RowPtr(pDst, dstStep, y), roi.width);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiConvert_8u16u_C1R(const Kro8u* pSrc, int srcStep, Kro16u* pDst,
                                           int dstStep, KroiSize roiSize) {
  return kro::Widen(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_AC4C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                         KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyAC4C3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_AC4MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                        KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro16s, 4, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyAC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C1C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC1C3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C1C4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC1C4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C1MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro16s, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C3AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                         KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC3AC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C3C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC3C1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C3CR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC3CR>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C3MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro16s, 3, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[3],
                                        int dstStep, KroiSize roiSize) {
  return kro::SplitPlanes<Kro16s, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C4C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC4C1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C4CR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC4CR>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C4MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro16s, 4, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_16s_C4P4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[4],
                                        int dstStep, KroiSize roiSize) {
  return kro::SplitPlanes<Kro16s, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_C4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro16s, kro::kCopyC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_P3C3R(const Kro16s* pSrc[3], int srcStep, Kro16s* pDst,
                                        int dstStep, KroiSize roiSize) {
  return kro::MergePlanes<Kro16s, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_16s_P4C4R(const Kro16s* pSrc[4], int srcStep, Kro16s* pDst,
                                        int dstStep, KroiSize roiSize) {
  return kro::MergePlanes<Kro16s, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_AC4C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                         KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyAC4C3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_AC4MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                        KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro32f, 4, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyAC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C1C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC1C3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C1C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC1C4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C1MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro32f, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_32f_C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C3AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                         KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC3AC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C3C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC3C1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C3CR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC3CR>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C3MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro32f, 3, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_32f_C3P3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[3],
                                        int dstStep, KroiSize roiSize) {
  return kro::SplitPlanes<Kro32f, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C4C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC4C1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C4CR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC4CR>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C4MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro32f, 4, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_32f_C4P4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[4],
                                        int dstStep, KroiSize roiSize) {
  return kro::SplitPlanes<Kro32f, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro32f, kro::kCopyC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_P3C3R(const Kro32f* pSrc[3], int srcStep, Kro32f* pDst,
                                        int dstStep, KroiSize roiSize) {
  return kro::MergePlanes<Kro32f, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_32f_P4C4R(const Kro32f* pSrc[4], int srcStep, Kro32f* pDst,
                                        int dstStep, KroiSize roiSize) {
  return kro::MergePlanes<Kro32f, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_AC4C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyAC4C3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_AC4MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro8u, 4, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyAC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C1C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC1C3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C1C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC1C4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C1MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro8u, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C3AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                        KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC3AC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC3C1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C3CR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC3CR>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C3MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro8u, 3, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst[3], int dstStep,
                                       KroiSize roiSize) {
  return kro::SplitPlanes<Kro8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C4C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC4C1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C4CR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC4CR>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C4MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::CopyMasked<Kro8u, 4, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiCopy_8u_C4P4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst[4], int dstStep,
                                       KroiSize roiSize) {
  return kro::SplitPlanes<Kro8u, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::CopyImage<Kro8u, kro::kCopyC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_P3C3R(const Kro8u* pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::MergePlanes<Kro8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiCopy_8u_P4C4R(const Kro8u* pSrc[4], int srcStep, Kro8u* pDst, int dstStep,
                                       KroiSize roiSize) {
  return kro::MergePlanes<Kro8u, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_16s_AC4MR(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro16s, 4, 3>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_16s_AC4R(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::SetImage<Kro16s, 4, 3>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_16s_C1MR(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize,
                                      const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro16s, 1, 1>(&value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_16s_C1R(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro16s, 1, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_16s_C3CR(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro16s, 3, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_16s_C3MR(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro16s, 3, 3>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_16s_C3R(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::SetImage<Kro16s, 3, 3>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_16s_C4CR(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro16s, 4, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_16s_C4MR(const Kro16s value[4], Kro16s* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro16s, 4, 4>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_16s_C4R(const Kro16s value[4], Kro16s* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::SetImage<Kro16s, 4, 4>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_32f_AC4MR(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                       KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro32f, 4, 3>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_32f_AC4R(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                      KroiSize roiSize) {
  return kro::SetImage<Kro32f, 4, 3>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_32f_C1MR(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize,
                                      const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro32f, 1, 1>(&value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_32f_C1R(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro32f, 1, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_32f_C3CR(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro32f, 3, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_32f_C3MR(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro32f, 3, 3>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_32f_C3R(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::SetImage<Kro32f, 3, 3>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_32f_C4CR(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro32f, 4, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_32f_C4MR(const Kro32f value[4], Kro32f* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro32f, 4, 4>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_32f_C4R(const Kro32f value[4], Kro32f* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::SetImage<Kro32f, 4, 4>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_8u_AC4MR(const Kro8u value[3], Kro8u* pDst, int dstStep,
                                      KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro8u, 4, 3>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_8u_AC4R(const Kro8u value[3], Kro8u* pDst, int dstStep,
                                     KroiSize roiSize) {
  return kro::SetImage<Kro8u, 4, 3>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_8u_C1MR(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize,
                                     const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro8u, 1, 1>(&value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_8u_C1R(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro8u, 1, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_8u_C3CR(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro8u, 3, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_8u_C3MR(const Kro8u value[3], Kro8u* pDst, int dstStep,
                                     KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro8u, 3, 3>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_8u_C3R(const Kro8u value[3], Kro8u* pDst, int dstStep,
                                    KroiSize roiSize) {
  return kro::SetImage<Kro8u, 3, 3>(value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_8u_C4CR(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize) {
  return kro::SetImage<Kro8u, 4, 1>(&value, pDst, dstStep, roiSize);
}
KRO_EXPORT KroStatus kroiSet_8u_C4MR(const Kro8u value[4], Kro8u* pDst, int dstStep,
                                     KroiSize roiSize, const Kro8u* pMask, int maskStep) {
  return kro::SetMasked<Kro8u, 4, 4>(value, pDst, dstStep, roiSize, pMask, maskStep);
}
KRO_EXPORT KroStatus kroiSet_8u_C4R(const Kro8u value[4], Kro8u* pDst, int dstStep,
                                    KroiSize roiSize) {
  return kro::SetImage<Kro8u, 4, 4>(value, pDst, dstStep, roiSize);
}
#endif  // HWY_ONCE
