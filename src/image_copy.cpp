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
#include <stdint.h>
#include <string.h>

#include <type_traits>

#include "kro_base.h"
#include "kro_checks.h"
#include "ref/image_ref.h"

namespace kro {
namespace {

// Copies and fills only move bits, so each sample type goes through the unsigned
// integer of its size: 16s and 32f share code with the other types of their width,
// and a float's bits (NaN payloads, negative zero) pass through untouched.
template <class T>
using BitsOf =
    std::conditional_t<sizeof(T) == 1, uint8_t,
                       std::conditional_t<sizeof(T) == 2, uint16_t,
                                          std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>>;

template <class T>
const BitsOf<T>* AsBits(const T* p) {
  return reinterpret_cast<const BitsOf<T>*>(p);
}
template <class T>
BitsOf<T>* AsBits(T* p) {
  return reinterpret_cast<BitsOf<T>*>(p);
}

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
    if constexpr (S.src_stride == 4 && S.dst_stride == 4 && S.channels == 3) {
      // AC4 over gap-free rows on both sides: the region is one long row.
      const int64_t packed = int64_t{4} * roi.width * static_cast<int64_t>(sizeof(T));
      if (srcStep == dstStep && srcStep == packed) {
        ref::CopyChannelsRow<4, 4, 3>(AsBits(pSrc), AsBits(pDst), Pixels(roi));
        return kroStatusOk;
      }
    }
    for (int y = 0; y < roi.height; ++y) {
      ref::CopyChannelsRow<S.src_stride, S.dst_stride, S.channels>(
          AsBits(RowPtr(pSrc, srcStep, y)), AsBits(RowPtr(pDst, dstStep, y)), roi.width);
    }
    return kroStatusOk;
  }
}

// Masked copy of pixels of kStride samples, kChannels of them moved (3 for AC4).
template <class T, int kStride, int kChannels>
KroStatus CopyMasked(const T* pSrc, int srcStep, T* pDst, int dstStep, KroiSize roi,
                     const Kro8u* pMask, int maskStep) {
  if (AnyNull(pSrc, pDst, pMask)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  for (int y = 0; y < roi.height; ++y) {
    ref::CopyChannelsMaskedRow<kStride, kChannels>(AsBits(RowPtr(pSrc, srcStep, y)),
                                                   RowPtr(pMask, maskStep, y),
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
  BitsOf<T>* rows[kPlanes];
  for (int y = 0; y < roi.height; ++y) {
    for (int c = 0; c < kPlanes; ++c) rows[c] = AsBits(RowPtr(pDst[c], dstStep, y));
    ref::SplitPlanesRow<kPlanes>(AsBits(RowPtr(pSrc, srcStep, y)), rows, roi.width);
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
  const BitsOf<T>* rows[kPlanes];
  for (int y = 0; y < roi.height; ++y) {
    for (int c = 0; c < kPlanes; ++c) rows[c] = AsBits(RowPtr(pSrc[c], srcStep, y));
    ref::MergePlanesRow<kPlanes>(rows, AsBits(RowPtr(pDst, dstStep, y)), roi.width);
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
  for (int y = 0; y < roi.height; ++y) {
    ref::SetChannelsRow<kStride, kChannels>(v, AsBits(RowPtr(pDst, dstStep, y)), roi.width);
  }
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
  for (int y = 0; y < roi.height; ++y) {
    ref::SetChannelsMaskedRow<kStride, kChannels>(v, RowPtr(pMask, maskStep, y),
                                                  AsBits(RowPtr(pDst, dstStep, y)), roi.width);
  }
  return kroStatusOk;
}

// Unsigned widening, one channel.
template <class S, class D>
KroStatus Widen(const S* pSrc, int srcStep, D* pDst, int dstStep, KroiSize roi) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (BadSize(roi)) return kroStatusBadSize;
  if (BadStep(srcStep, dstStep)) return kroStatusBadStep;
  // Gap-free rows on both sides: the region is one long row.
  const int64_t ratio = sizeof(D) / sizeof(S);
  if (dstStep == ratio * srcStep &&
      srcStep == static_cast<int64_t>(roi.width) * static_cast<int64_t>(sizeof(S))) {
    ref::ZeroExtendRow(pSrc, pDst, Pixels(roi));
    return kroStatusOk;
  }
  for (int y = 0; y < roi.height; ++y)
    ref::ZeroExtendRow(RowPtr(pSrc, srcStep, y), RowPtr(pDst, dstStep, y), roi.width);
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
