// SPDX-License-Identifier: BSD-3-Clause
// SIMD rows of the image copy, set and logical operations, compiled once per target,
// on unsigned lanes of the sample's size (see image_impl.h).
//
// A row of pixels of kStride samples is worked in blocks of kStride vectors, which
// hold Lanes(d) whole pixels, so a per-channel pattern (constants, which lanes are
// written) is the same for every block and is formed once per row. Interleaved to
// planar and back goes through LoadInterleaved3/4 and StoreInterleaved3/4.
//
// Samples a layout must not write (AC4's alpha, the other channels of a CR image,
// pixels whose mask byte is 0) are never stored, not even with their own value, so
// another thread may own them meanwhile: nothing outside what the reference row
// writes is touched. AVX-512 (all lanes) and AVX2 (32-bit lanes) have masked stores
// for that (BlendedStore). Elsewhere Highway's BlendedStore writes lane by lane behind
// a branch, so there a block goes through an aligned buffer and each pixel's written
// channels are copied as one short run (a 3-byte AC4 pixel is a 2-byte and a 1-byte
// store); masked rows store a block whole when every mask byte is set, skip it when
// none is, and otherwise send the runs of unselected pixels to a spare pixel on the
// stack, which keeps the loop free of branches on the mask.
//
// Where a layout leaves the last samples of a pixel alone, the caller's buffer may
// end before the pixel's stride does; the last pixel then goes to the reference with
// the rest of the row, so no block reads or writes past the last sample the reference
// touches.
//
// Where the time goes (4 MB images, AVX-512): the reference rows move one sample at a
// time, the masked ones with a branch on every mask byte (2 to 15 ns a pixel on
// random masks); the compiler widens none of the strided rows. A block costs a few
// shuffles and stores, and the rows run at 60 to 100% of memcpy's speed.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_IMAGE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_IMAGE_INL_H_
#undef KROJ_SRC_SIMD_IMAGE_INL_H_
#else
#define KROJ_SRC_SIMD_IMAGE_INL_H_
#endif

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "image_impl.h"
#include "ref/image_ref.h"
#include "ref/logic_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// ---- Blocks of kStride vectors ----

// Channels c[0..kStride-1] of Lanes(d) pixels into kStride vectors of interleaved
// samples, through an aligned buffer.
template <int kStride, class D, class V = hn::Vec<D>>
HWY_INLINE void Interleave(D d, const V* c, V* out) {
  if constexpr (kStride == 1) {
    out[0] = c[0];
  } else {
    HWY_ALIGN hn::TFromD<D> buf[kStride * hn::MaxLanes(D())];
    if constexpr (kStride == 3) hn::StoreInterleaved3(c[0], c[1], c[2], d, buf);
    if constexpr (kStride == 4) hn::StoreInterleaved4(c[0], c[1], c[2], c[3], d, buf);
    const size_t lanes = hn::Lanes(d);
    for (int j = 0; j < kStride; ++j) out[j] = hn::Load(d, buf + j * lanes);
  }
}

template <int kStride, class D, class T, class V = hn::Vec<D>>
HWY_INLINE void LoadPixels(D d, const T* p, V* c) {
  if constexpr (kStride == 1) c[0] = hn::LoadU(d, p);
  if constexpr (kStride == 3) hn::LoadInterleaved3(d, p, c[0], c[1], c[2]);
  if constexpr (kStride == 4) hn::LoadInterleaved4(d, p, c[0], c[1], c[2], c[3]);
}

template <int kStride, class D, class T, class V = hn::Vec<D>>
HWY_INLINE void StorePixels(D d, const V* c, T* p) {
  if constexpr (kStride == 1) hn::StoreU(c[0], d, p);
  if constexpr (kStride == 3) hn::StoreInterleaved3(c[0], c[1], c[2], d, p);
  if constexpr (kStride == 4) hn::StoreInterleaved4(c[0], c[1], c[2], c[3], d, p);
}

// The same value in channels 0..kChannels-1 of every pixel and zero in the others,
// as the kStride vectors of a block.
template <int kStride, int kChannels, class D, class V = hn::Vec<D>>
HWY_INLINE void Spread(D d, V v, V* out) {
  V c[4];
  for (int i = 0; i < 4; ++i) c[i] = i < kChannels ? v : hn::Zero(d);
  Interleave<kStride>(d, c, out);
}

// Which lanes of a block hold channels 0..kChannels-1 of their pixel.
template <int kStride, int kChannels, class D>
HWY_INLINE void ChannelMasks(D d, hn::Mask<D>* m) {
  hn::Vec<D> v[kStride];
  Spread<kStride, kChannels>(d, hn::Set(d, static_cast<hn::TFromD<D>>(~0ull)), v);
  for (int j = 0; j < kStride; ++j) m[j] = hn::MaskFromVec(v[j]);
}

// Lanes of all ones for the pixels whose mask byte is not 0, one pixel per lane.
template <class D>
HWY_INLINE hn::Vec<D> PixelMask(D d, const uint8_t* mask) {
  if constexpr (sizeof(hn::TFromD<D>) == 1) {
    return hn::VecFromMask(d, hn::Ne(hn::LoadU(d, mask), hn::Zero(d)));
  } else {
    const hn::Rebind<uint8_t, D> d8;
    return hn::VecFromMask(d, hn::Ne(hn::PromoteTo(d, hn::LoadU(d8, mask)), hn::Zero(d)));
  }
}

// Pixels that whole blocks may cover: all of them, or all but the last where a pixel
// has samples the layout leaves alone.
inline ptrdiff_t BlockEnd(ptrdiff_t n, bool partial) { return partial ? n - 1 : n; }

// Whether this target stores lanes of T under a mask in one instruction.
template <class T>
constexpr bool kMaskedStores =
    HWY_ARCH_X86 && (HWY_TARGET <= HWY_AVX3 || (HWY_TARGET == HWY_AVX2 && sizeof(T) >= 4));

// Writes channels 0..kChannels-1 of every pixel of the block v[0..kStride-1]; `chan`
// are its ChannelMasks.
template <int kStride, int kChannels, class D, class T>
HWY_INLINE void WriteChannels(D d, const hn::Vec<D>* v, const hn::Mask<D>* chan, T* dst) {
  const size_t lanes = hn::Lanes(d);
  if constexpr (kChannels == kStride) {
    for (int j = 0; j < kStride; ++j) hn::StoreU(v[j], d, dst + j * lanes);
  } else if constexpr (kMaskedStores<T>) {
    for (int j = 0; j < kStride; ++j) hn::BlendedStore(v[j], chan[j], d, dst + j * lanes);
  } else {
    HWY_ALIGN T buf[kStride * hn::MaxLanes(D())];
    for (int j = 0; j < kStride; ++j) hn::Store(v[j], d, buf + j * lanes);
    for (size_t x = 0; x < lanes; ++x)
      memcpy(dst + x * kStride, buf + x * kStride, kChannels * sizeof(T));
  }
}

// The same for the pixels whose mask byte is not 0.
template <int kStride, int kChannels, class D, class T>
HWY_INLINE void WriteSelected(D d, const hn::Vec<D>* v, const hn::Mask<D>* chan,
                              const uint8_t* mask, T* dst) {
  const size_t lanes = hn::Lanes(d);
  if constexpr (kMaskedStores<T>) {
    hn::Vec<D> sel[kStride];
    Spread<kStride, kChannels>(d, PixelMask(d, mask), sel);
    for (int j = 0; j < kStride; ++j)
      hn::BlendedStore(v[j], hn::MaskFromVec(sel[j]), d, dst + j * lanes);
  } else {
    const hn::Rebind<uint8_t, D> d8;
    const auto selected = hn::Ne(hn::LoadU(d8, mask), hn::Zero(d8));
    if (hn::AllFalse(d8, selected)) return;
    if (hn::AllTrue(d8, selected)) return WriteChannels<kStride, kChannels>(d, v, chan, dst);
    HWY_ALIGN T buf[kStride * hn::MaxLanes(D())];
    for (int j = 0; j < kStride; ++j) hn::Store(v[j], d, buf + j * lanes);
    // The destination is picked with bit operations: compilers turn a conditional
    // pointer into a branch, which random masks mispredict half of the time.
    T spare[kStride];
    const uintptr_t to_spare = reinterpret_cast<uintptr_t>(spare);
    for (size_t x = 0; x < lanes; ++x) {
      const uintptr_t keep = uintptr_t{0} - static_cast<uintptr_t>(mask[x] != 0);
      const uintptr_t to_dst = reinterpret_cast<uintptr_t>(dst + x * kStride);
      memcpy(reinterpret_cast<T*>((to_dst & keep) | (to_spare & ~keep)), buf + x * kStride,
             kChannels * sizeof(T));
    }
  }
}

// ---- Copies ----

// dst[x*kDst + c] = src[x*kSrc + c] for c < kChannels (ref::CopyChannelsRow).
template <int kSrc, int kDst, int kChannels, class U>
void MoveChannelsRowSimd(const U* src, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = BlockEnd(n, kChannels < kSrc || kChannels < kDst);
  hn::Mask<decltype(d)> chan[kDst];
  ChannelMasks<kDst, kChannels>(d, chan);
  ptrdiff_t x = 0;
  for (; x + lanes <= end; x += lanes) {
    hn::Vec<decltype(d)> out[kDst];
    if constexpr (kSrc == kDst) {
      // Same layout on both sides: the lanes stay where they are.
      for (int j = 0; j < kDst; ++j) out[j] = hn::LoadU(d, src + x * kSrc + j * lanes);
    } else {
      hn::Vec<decltype(d)> c[4];
      LoadPixels<kSrc>(d, src + x * kSrc, c);
      if constexpr (kChannels == kDst) {
        StorePixels<kDst>(d, c, dst + x * kDst);
        continue;
      }
      for (int i = kChannels; i < 4; ++i) c[i] = hn::Zero(d);
      Interleave<kDst>(d, c, out);
    }
    WriteChannels<kDst, kChannels>(d, out, chan, dst + x * kDst);
  }
  ref::CopyChannelsRow<kSrc, kDst, kChannels>(src + x * kSrc, dst + x * kDst, n - x);
}

// Channels 0..kChannels-1 of the pixels where mask[x] != 0.
template <int kStride, int kChannels, class U>
void CopyMaskedRowSimd(const U* src, const uint8_t* mask, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = BlockEnd(n, kChannels < kStride);
  hn::Mask<decltype(d)> chan[kStride];
  ChannelMasks<kStride, kChannels>(d, chan);
  ptrdiff_t x = 0;
  for (; x + lanes <= end; x += lanes) {
    hn::Vec<decltype(d)> v[kStride];
    for (int j = 0; j < kStride; ++j) v[j] = hn::LoadU(d, src + x * kStride + j * lanes);
    WriteSelected<kStride, kChannels>(d, v, chan, mask + x, dst + x * kStride);
  }
  ref::CopyChannelsMaskedRow<kStride, kChannels>(src + x * kStride, mask + x, dst + x * kStride,
                                                 n - x);
}

template <int kPlanes, class U>
void SplitPlanesRowSimd(const U* src, U* const* plane, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  ptrdiff_t x = 0;
  for (; x + lanes <= n; x += lanes) {
    hn::Vec<decltype(d)> c[4];
    LoadPixels<kPlanes>(d, src + x * kPlanes, c);
    for (int p = 0; p < kPlanes; ++p) hn::StoreU(c[p], d, plane[p] + x);
  }
  U* rest[kPlanes];
  for (int p = 0; p < kPlanes; ++p) rest[p] = plane[p] + x;
  ref::SplitPlanesRow<kPlanes>(src + x * kPlanes, rest, n - x);
}

template <int kPlanes, class U>
void MergePlanesRowSimd(const U* const* plane, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  ptrdiff_t x = 0;
  for (; x + lanes <= n; x += lanes) {
    hn::Vec<decltype(d)> c[4];
    for (int p = 0; p < kPlanes; ++p) c[p] = hn::LoadU(d, plane[p] + x);
    StorePixels<kPlanes>(d, c, dst + x * kPlanes);
  }
  const U* rest[kPlanes];
  for (int p = 0; p < kPlanes; ++p) rest[p] = plane[p] + x;
  ref::MergePlanesRow<kPlanes>(rest, dst + x * kPlanes, n - x);
}

// ---- Fills ----

// The constants value[0..kChannels-1] as the kStride vectors of a block.
template <int kStride, int kChannels, class D, class U>
HWY_INLINE void ValuePattern(D d, const U* value, hn::Vec<D>* out) {
  hn::Vec<D> c[4];
  for (int i = 0; i < 4; ++i) c[i] = i < kChannels ? hn::Set(d, value[i]) : hn::Zero(d);
  Interleave<kStride>(d, c, out);
}

template <int kStride, int kChannels, class U>
void SetRowSimd(const U* value, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = BlockEnd(n, kChannels < kStride);
  hn::Vec<decltype(d)> v[kStride];
  ValuePattern<kStride, kChannels>(d, value, v);
  hn::Mask<decltype(d)> chan[kStride];
  ChannelMasks<kStride, kChannels>(d, chan);
  ptrdiff_t x = 0;
  for (; x + lanes <= end; x += lanes) WriteChannels<kStride, kChannels>(d, v, chan, dst + x * kStride);
  ref::SetChannelsRow<kStride, kChannels>(value, dst + x * kStride, n - x);
}

template <int kStride, int kChannels, class U>
void SetMaskedRowSimd(const U* value, const uint8_t* mask, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = BlockEnd(n, kChannels < kStride);
  hn::Vec<decltype(d)> v[kStride];
  ValuePattern<kStride, kChannels>(d, value, v);
  hn::Mask<decltype(d)> chan[kStride];
  ChannelMasks<kStride, kChannels>(d, chan);
  ptrdiff_t x = 0;
  for (; x + lanes <= end; x += lanes)
    WriteSelected<kStride, kChannels>(d, v, chan, mask + x, dst + x * kStride);
  ref::SetChannelsMaskedRow<kStride, kChannels>(value, mask + x, dst + x * kStride, n - x);
}

inline void WidenRowSimd(const uint8_t* src, uint16_t* dst, ptrdiff_t n) {
  const hn::ScalableTag<uint16_t> d16;
  const hn::Rebind<uint8_t, decltype(d16)> d8;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d16));
  ptrdiff_t x = 0;
  for (; x + lanes <= n; x += lanes) hn::StoreU(hn::PromoteTo(d16, hn::LoadU(d8, src + x)), d16, dst + x);
  ref::ZeroExtendRow(src + x, dst + x, n - x);
}

// ---- Bitwise operations ----

template <ref::LogicOp op, class V>
HWY_INLINE V Apply(V a, V b) {
  if constexpr (op == ref::LogicOp::kAnd) return hn::And(a, b);
  if constexpr (op == ref::LogicOp::kOr) return hn::Or(a, b);
  if constexpr (op == ref::LogicOp::kXor) return hn::Xor(a, b);
}

// dst = a op b on channels 0..kChannels-1 (ref::LogicChannelsRow). Either source may
// be dst: a block is loaded whole before any of it is stored.
template <ref::LogicOp op, int kStride, int kChannels, class U>
void LogicRowSimd(const U* a, const U* b, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = BlockEnd(n, kChannels < kStride);
  hn::Mask<decltype(d)> chan[kStride];
  ChannelMasks<kStride, kChannels>(d, chan);
  ptrdiff_t x = 0;
  for (; x + lanes <= end; x += lanes) {
    hn::Vec<decltype(d)> r[kStride];
    for (int j = 0; j < kStride; ++j) {
      const ptrdiff_t i = x * kStride + j * lanes;
      r[j] = Apply<op>(hn::LoadU(d, a + i), hn::LoadU(d, b + i));
    }
    WriteChannels<kStride, kChannels>(d, r, chan, dst + x * kStride);
  }
  const ptrdiff_t i = x * kStride;
  ref::LogicChannelsRow<op, kStride, kChannels>(a + i, b + i, dst + i, n - x);
}

// dst = src op value[channel] (ref::LogicConstChannelsRow); src may be dst.
template <ref::LogicOp op, int kStride, int kChannels, class U>
void LogicConstRowSimd(const U* src, const U* value, U* dst, ptrdiff_t n) {
  const hn::ScalableTag<U> d;
  const ptrdiff_t lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t end = BlockEnd(n, kChannels < kStride);
  hn::Vec<decltype(d)> v[kStride];
  ValuePattern<kStride, kChannels>(d, value, v);
  hn::Mask<decltype(d)> chan[kStride];
  ChannelMasks<kStride, kChannels>(d, chan);
  ptrdiff_t x = 0;
  for (; x + lanes <= end; x += lanes) {
    hn::Vec<decltype(d)> r[kStride];
    for (int j = 0; j < kStride; ++j) r[j] = Apply<op>(hn::LoadU(d, src + x * kStride + j * lanes), v[j]);
    WriteChannels<kStride, kChannels>(d, r, chan, dst + x * kStride);
  }
  const ptrdiff_t i = x * kStride;
  ref::LogicConstChannelsRow<op, kStride, kChannels>(src + i, value, dst + i, n - x);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
