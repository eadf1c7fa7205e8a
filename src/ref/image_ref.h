// SPDX-License-Identifier: BSD-3-Clause
// Reference rows of the image copy, set and convert primitives: the plain scalar
// loops that say what each layout moves. The image functions call them row by row.
//
// Samples are read and written through memcpy because a caller's row step is any
// number of bytes, so a row of 16- or 32-bit samples need not start on a multiple of
// the sample size. Compilers turn these into single (unaligned) moves.
#ifndef KROJ_SRC_REF_IMAGE_REF_H_
#define KROJ_SRC_REF_IMAGE_REF_H_

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace kro::ref {

template <class T>
inline T LoadSample(const T* p) {
  T v;
  memcpy(&v, p, sizeof(T));
  return v;
}

template <class T>
inline void StoreSample(T* p, T v) {
  memcpy(p, &v, sizeof(T));
}

// dst[x*kDst + c] = src[x*kSrc + c] for c < kChannels, x < n. Covers moving whole
// pixels (AC4: kChannels 3 of stride 4, alpha untouched), extracting or inserting
// one channel (stride 3 or 4 on one side, 1 on the other) and dropping or adding
// alpha (strides 4 and 3).
template <int kSrc, int kDst, int kChannels, class U>
inline void CopyChannelsRow(const U* src, U* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    for (int c = 0; c < kChannels; ++c)
      StoreSample(dst + x * kDst + c, LoadSample(src + x * kSrc + c));
  }
}

// Channels 0..kChannels-1 of pixel x (stride kStride) move where mask[x] != 0.
template <int kStride, int kChannels, class U>
inline void CopyChannelsMaskedRow(const U* src, const uint8_t* mask, U* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    if (mask[x] == 0) continue;
    for (int c = 0; c < kChannels; ++c)
      StoreSample(dst + x * kStride + c, LoadSample(src + x * kStride + c));
  }
}

// Interleaved to planar: plane[c][x] = src[x*kPlanes + c].
template <int kPlanes, class U>
inline void SplitPlanesRow(const U* src, U* const* plane, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    for (int c = 0; c < kPlanes; ++c) StoreSample(plane[c] + x, LoadSample(src + x * kPlanes + c));
  }
}

// Planar to interleaved: dst[x*kPlanes + c] = plane[c][x].
template <int kPlanes, class U>
inline void MergePlanesRow(const U* const* plane, U* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    for (int c = 0; c < kPlanes; ++c) StoreSample(dst + x * kPlanes + c, LoadSample(plane[c] + x));
  }
}

// dst[x*kStride + c] = value[c] for c < kChannels, x < n.
template <int kStride, int kChannels, class U>
inline void SetChannelsRow(const U* value, U* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    for (int c = 0; c < kChannels; ++c) StoreSample(dst + x * kStride + c, value[c]);
  }
}

// The same where mask[x] != 0.
template <int kStride, int kChannels, class U>
inline void SetChannelsMaskedRow(const U* value, const uint8_t* mask, U* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    if (mask[x] == 0) continue;
    for (int c = 0; c < kChannels; ++c) StoreSample(dst + x * kStride + c, value[c]);
  }
}

// Widening without sign: dst[x] = src[x] for an unsigned source narrower than dst.
template <class S, class D>
inline void ZeroExtendRow(const S* src, D* dst, ptrdiff_t n) {
  static_assert(sizeof(S) < sizeof(D) && static_cast<S>(-1) > 0);
  for (ptrdiff_t x = 0; x < n; ++x) StoreSample(dst + x, static_cast<D>(LoadSample(src + x)));
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_IMAGE_REF_H_
