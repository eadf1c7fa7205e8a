// SPDX-License-Identifier: BSD-3-Clause
// SIMD MCU conversions, compiled once per target, on vectors of 16 pixels (8 on
// 128-bit targets): a row of a 16-pixel-wide MCU, or two rows of a 444 MCU, with the
// colour arithmetic and pixel layouts of simd/colour-inl.h. The encoder sums the chroma of a pixel group
// in 16-bit lanes (at most 4 * 255) and forms pair sums in 32-bit lanes; the decoder
// replicates each chroma sample over its group before the colour arithmetic, and
// its saturating additions clamp exactly as the scalar sums do.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_MCU_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_MCU_INL_H_
#undef KROJ_SRC_SIMD_MCU_INL_H_
#else
#define KROJ_SRC_SIMD_MCU_INL_H_
#endif

#include <stdint.h>

#include "colour_impl.h"
#include "simd/colour-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

// 16-bit samples of pixels x .. x+lanes-1 of row y in the full-resolution blocks of
// geometry G (8 pixels per block row, blocks left to right).
template <class G, class D>
HWY_INLINE void StoreFull(D d, hn::Vec<D> v, Kro16s* base, int x, int y) {
  if constexpr (G::kWidth == 8) {  // one or two whole rows of the block
    hn::StoreU(v, d, base + 8 * y);
  } else if constexpr (hn::MaxLanes(D()) == 16) {
    const hn::Half<D> dh;
    hn::StoreU(hn::LowerHalf(dh, v), dh, base + G::FullIndex(x, y));
    hn::StoreU(hn::UpperHalf(dh, v), dh, base + G::FullIndex(x + 8, y));
  } else {
    hn::StoreU(v, d, base + G::FullIndex(x, y));
  }
}
template <class G, class D>
HWY_INLINE hn::Vec<D> LoadFull(D d, const Kro16s* base, int x, int y) {
  if constexpr (G::kWidth == 8) {
    return hn::LoadU(d, base + 8 * y);
  } else if constexpr (hn::MaxLanes(D()) == 16) {
    const hn::Half<D> dh;
    return hn::Combine(d, hn::LoadU(dh, base + G::FullIndex(x + 8, y)),
                       hn::LoadU(dh, base + G::FullIndex(x, y)));
  } else {
    return hn::LoadU(d, base + G::FullIndex(x, y));
  }
}

// The 16-bit tag of an MCU kernel: one MCU row of 16 pixels, or of 8 pixels; where
// vectors hold 16 lanes, an 8-pixel (444) MCU goes two rows at a time.
using McuTag = hn::CappedTag<int16_t, 16>;
template <class G>
inline constexpr int kMcuRows =
    hn::MaxLanes(McuTag()) > static_cast<size_t>(G::kWidth) ? 2 : 1;

// Pixels x.. of MCU row y (and of row y + 1 in the upper lanes when kRows is 2).
template <int kRows, class In, class D>
HWY_INLINE Px<D> LoadPixels(D d, const typename In::T* src, int step, int x, int y) {
  const typename In::T* row = RowPtr(src, step, y);
  if constexpr (kRows == 1) {
    return In::Load(d, &row, x);
  } else {
    const hn::Half<D> dh;
    const typename In::T* next = RowPtr(src, step, y + 1);
    const Px<hn::Half<D>> a = In::Load(dh, &row, x), b = In::Load(dh, &next, x);
    return {hn::Combine(d, b.c0, a.c0), hn::Combine(d, b.c1, a.c1), hn::Combine(d, b.c2, a.c2),
            hn::Combine(d, b.k, a.k)};
  }
}
template <int kRows, class Out, class D>
HWY_INLINE void StorePixels(D d, const Px<D>& p, typename Out::T* dst, int step, int x, int y) {
  typename Out::T* row = RowPtr(dst, step, y);
  if constexpr (kRows == 1) {
    Out::Store(d, &row, x, p);
  } else {
    const hn::Half<D> dh;
    typename Out::T* next = RowPtr(dst, step, y + 1);
    Out::Store(dh, &row, x,
               {hn::LowerHalf(dh, p.c0), hn::LowerHalf(dh, p.c1), hn::LowerHalf(dh, p.c2),
                hn::LowerHalf(dh, p.k)});
    Out::Store(dh, &next, x,
               {hn::UpperHalf(dh, p.c0), hn::UpperHalf(dh, p.c1), hn::UpperHalf(dh, p.c2),
                hn::UpperHalf(dh, p.k)});
  }
}

// Lane j of the result: v[2j] + v[2j+1] (non-negative 16-bit values), in order.
template <class D>
HWY_INLINE V32Of<D> PairSums(D, hn::Vec<D> v) {
  const V32Of<D> w = hn::BitCast(D32Of<D>(), v);
  return hn::Add(hn::And(w, hn::Set(D32Of<D>(), 0xFFFF)), hn::ShiftRight<16>(w));
}

// Each of the lanes/2 values at p twice: p0 p0 p1 p1 ...
template <class D>
HWY_INLINE hn::Vec<D> LoadTwice(D d, const Kro16s* p) {
  const hn::Half<D> dh;
  const hn::Vec<decltype(dh)> v = hn::LoadU(dh, p);
  if constexpr (hn::MaxLanes(D()) == 16) {
    return hn::Combine(d, hn::InterleaveUpper(dh, v, v), hn::InterleaveLower(dh, v, v));
  } else {
    const hn::Vec<D> w = hn::ZeroExtendVector(d, v);
    return hn::InterleaveLower(d, w, w);
  }
}

// One MCU of pixels -> level-shifted blocks, as EncodeMcuBlocks.
template <class G, class In, McuKind kKind>
void EncodeMcuSimd(const typename In::T* src, int step, Kro16s* const* dst) {
  using D = McuTag;
  constexpr int kRows = kMcuRows<G>;
  const D d;
  const D32Of<D> d32;
  const hn::Half<D> dh;
  using V = hn::Vec<D>;
  constexpr int kLanes = static_cast<int>(hn::MaxLanes(d));
  const V k128 = hn::Set(d, 128), k255 = hn::Set(d, 255);
  for (int cy = 0; cy < 8; cy += kRows) {
    for (int x = 0; x < G::kWidth; x += kLanes / kRows) {
      const int c = 8 * cy + (x >> G::kShiftX);
      V sum_r = hn::Zero(d), sum_g = sum_r, sum_b = sum_r;
      for (int dy = 0; dy < (1 << G::kShiftY); ++dy) {
        const int y = (cy << G::kShiftY) + dy;
        Px<D> p = LoadPixels<kRows, In>(d, src, step, x, y);
        if constexpr (kKind == McuKind::kNone) {
          StoreFull<G>(d, hn::Sub(p.c0, k128), dst[0], x, y);
          if constexpr (G::kLog2Group == 0) {
            hn::StoreU(hn::Sub(p.c1, k128), d, dst[1] + c);
            hn::StoreU(hn::Sub(p.c2, k128), d, dst[2] + c);
          }
        } else {
          if constexpr (kKind == McuKind::kYCCK) {
            p = {hn::Sub(k255, p.c0), hn::Sub(k255, p.c1), hn::Sub(k255, p.c2), p.k};
            StoreFull<G>(d, hn::Sub(p.k, k128), dst[3], x, y);
          }
          const auto lo = ZipPairs<false>(d, p.c0, p.c1, p.c2);
          const auto hi = ZipPairs<true>(d, p.c0, p.c1, p.c2);
          auto out = [&](auto sum) {
            return Join(d, hn::ShiftRight<16>(sum(lo)), hn::ShiftRight<16>(sum(hi)));
          };
          const V luma = out([&](const auto& q) { return LumaSum(d32, q); });
          StoreFull<G>(d, hn::Sub(luma, k128), dst[0], x, y);
          if constexpr (G::kLog2Group == 0) {  // 444: each pixel its own chroma sample
            hn::StoreU(out([&](const auto& q) { return CbSum(d32, q); }), d, dst[1] + c);
            hn::StoreU(out([&](const auto& q) { return CrSum(d32, q); }), d, dst[2] + c);
          }
        }
        if constexpr (G::kLog2Group != 0) {
          sum_r = hn::Add(sum_r, p.c0), sum_g = hn::Add(sum_g, p.c1), sum_b = hn::Add(sum_b, p.c2);
        }
      }
      if constexpr (G::kLog2Group != 0) {  // pairs, or 2 x 2 groups
        constexpr int kShift = 16 + G::kLog2Group;
        const auto r = PairSums(d, sum_r), g = PairSums(d, sum_g), b = PairSums(d, sum_b);
        if constexpr (kKind == McuKind::kNone) {
          const auto k = hn::Set(d32, 128);
          hn::StoreU(hn::DemoteTo(dh, hn::Sub(hn::ShiftRight<G::kLog2Group>(g), k)), dh, dst[1] + c);
          hn::StoreU(hn::DemoteTo(dh, hn::Sub(hn::ShiftRight<G::kLog2Group>(b), k)), dh, dst[2] + c);
        } else {
          const auto q = PairsOf(d32, r, g, b);
          hn::StoreU(hn::DemoteTo(dh, hn::ShiftRight<kShift>(CbSum(d32, q))), dh, dst[1] + c);
          hn::StoreU(hn::DemoteTo(dh, hn::ShiftRight<kShift>(CrSum(d32, q))), dh, dst[2] + c);
        }
      }
    }
  }
}

// Level-shifted blocks -> one MCU of pixels, as DecodeMcuBlocks.
template <class G, class Out, McuKind kKind>
void DecodeMcuSimd(const Kro16s* const* src, typename Out::T* dst, int step) {
  using D = McuTag;
  constexpr int kRows = kMcuRows<G>;
  const D d;
  using V = hn::Vec<D>;
  constexpr int kLanes = static_cast<int>(hn::MaxLanes(d));
  const V k128 = hn::Set(d, 128), k255 = hn::Set(d, 255), zero = hn::Zero(d);
  for (int cy = 0; cy < 8; cy += kRows) {
    for (int x = 0; x < G::kWidth; x += kLanes / kRows) {
      const int c = 8 * cy + (x >> G::kShiftX);
      V cb, cr;
      if constexpr (G::kShiftX == 0) {
        cb = hn::LoadU(d, src[1] + c), cr = hn::LoadU(d, src[2] + c);
      } else {
        cb = LoadTwice(d, src[1] + c), cr = LoadTwice(d, src[2] + c);
      }
      Terms<D> t{zero, zero, zero};
      if constexpr (kKind != McuKind::kNone) t = McuTerms(d, cb, cr);
      for (int dy = 0; dy < (1 << G::kShiftY); ++dy) {
        const int y = (cy << G::kShiftY) + dy;
        const V luma = LoadFull<G>(d, src[0], x, y);
        Px<D> p;
        if constexpr (kKind == McuKind::kNone) {
          p = {hn::SaturatedAdd(luma, k128), hn::SaturatedAdd(cb, k128),
               hn::SaturatedAdd(cr, k128), zero};
        } else {
          // y + term + 128 saturated twice clamps to 0..255 as the exact sum would.
          auto colour = [&](V term) { return hn::SaturatedAdd(hn::SaturatedAdd(luma, term), k128); };
          p = {colour(t.r), colour(t.g), colour(t.b), zero};
        }
        if constexpr (kKind == McuKind::kYCCK) {
          auto ink = [&](V v) { return hn::Sub(k255, hn::Min(hn::Max(v, zero), k255)); };
          const V k = hn::And(hn::Add(LoadFull<G>(d, src[3], x, y), k128), hn::Set(d, 255));
          p = {ink(p.c0), ink(p.c1), ink(p.c2), k};  // K wraps, never clamped
        }
        StorePixels<kRows, Out>(d, p, dst, step, x, y);
      }
    }
  }
}

// The 4:2:2 byte stream Y0 Cb Y1 Cr, read as 16-bit words (Y, chroma) per pixel:
// luminance in the low bytes, Cb and Cr alternating in the high bytes.
inline void Split422Simd(const Kro8u* src, int step, Kro16s* const* dst) {
  using D = hn::CappedTag<int16_t, 16>;
  const D d;
  const hn::RebindToUnsigned<D> du;
  const hn::Half<D> dh;
  constexpr int kLanes = static_cast<int>(hn::MaxLanes(d));
  const auto k128 = hn::Set(d, 128);
  for (int y = 0; y < 8; ++y) {
    const Kro8u* row = RowPtr(src, step, y);
    for (int x = 0; x < 16; x += kLanes) {
      const auto w = hn::BitCast(du, hn::LoadU(hn::Repartition<uint8_t, decltype(du)>(), row + 2 * x));
      StoreFull<Mcu422>(d, hn::Sub(hn::BitCast(d, hn::And(w, hn::Set(du, 0xFF))), k128), dst[0], x, y);
      const auto c = hn::Sub(hn::BitCast(d, hn::ShiftRight<8>(w)), k128);
      hn::StoreU(hn::LowerHalf(dh, hn::ConcatEven(d, c, c)), dh, dst[1] + 8 * y + x / 2);
      hn::StoreU(hn::LowerHalf(dh, hn::ConcatOdd(d, c, c)), dh, dst[2] + 8 * y + x / 2);
    }
  }
}

inline void Join422Simd(const Kro16s* const* src, Kro8u* dst, int step) {
  using D = hn::CappedTag<int16_t, 16>;
  const D d;
  const hn::RebindToUnsigned<D> du;
  const hn::Half<D> dh;
  constexpr int kLanes = static_cast<int>(hn::MaxLanes(d));
  const auto k128 = hn::Set(d, 128);
  // clamp(v + 128) in 16-bit lanes.
  auto byte = [&](hn::Vec<D> v) {
    return hn::PromoteTo(du, hn::DemoteTo(hn::Rebind<uint8_t, D>(), hn::SaturatedAdd(v, k128)));
  };
  for (int y = 0; y < 8; ++y) {
    Kro8u* row = RowPtr(dst, step, y);
    for (int x = 0; x < 16; x += kLanes) {
      const auto cb = hn::LoadU(dh, src[1] + 8 * y + x / 2), cr = hn::LoadU(dh, src[2] + 8 * y + x / 2);
      hn::Vec<D> c;
      if constexpr (kLanes == 16) {
        c = hn::Combine(d, hn::InterleaveUpper(dh, cb, cr), hn::InterleaveLower(dh, cb, cr));
      } else {
        c = hn::InterleaveLower(d, hn::ZeroExtendVector(d, cb), hn::ZeroExtendVector(d, cr));
      }
      const auto w = hn::Or(byte(LoadFull<Mcu422>(d, src[0], x, y)), hn::ShiftLeft<8>(byte(c)));
      hn::StoreU(hn::BitCast(hn::Repartition<uint8_t, decltype(du)>(), w),
                 hn::Repartition<uint8_t, decltype(du)>(), row + 2 * x);
    }
  }
}

#else  // HWY_TARGET == HWY_SCALAR: the scalar kernels under the same names

template <class G, class In, McuKind kKind>
void EncodeMcuSimd(const typename In::T* src, int step, Kro16s* const* dst) {
  EncodeMcuBlocks<G, In, kKind>(src, step, dst);
}
template <class G, class Out, McuKind kKind>
void DecodeMcuSimd(const Kro16s* const* src, typename Out::T* dst, int step) {
  DecodeMcuBlocks<G, Out, kKind>(src, dst, step);
}
inline void Split422Simd(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuBlocks<Mcu422, YCbYCrIn, McuKind::kNone>(src, step, dst);
}
inline void Join422Simd(const Kro16s* const* src, Kro8u* dst, int step) {
  DecodeMcuBlocks<Mcu422, YCbYCrOut, McuKind::kNone>(src, dst, step);
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
