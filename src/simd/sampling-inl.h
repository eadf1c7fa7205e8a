// SPDX-License-Identifier: BSD-3-Clause
// SIMD rows of the chroma down- and up-samplers, compiled once per target. Sums of
// up to sixteen 8-bit samples weighted as in ref/sampling_ref.h fit 16-bit lanes
// (at most 16 * 255 + 8), so every filter is exact in unsigned 16-bit arithmetic;
// the results are at most 255 and narrow back without clamping. Each row hands its
// last samples (fewer than one vector) to the scalar row.

// Per-target include guard: this file is included once for every SIMD target.
#if defined(KROJ_SRC_SIMD_SAMPLING_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KROJ_SRC_SIMD_SAMPLING_INL_H_
#undef KROJ_SRC_SIMD_SAMPLING_INL_H_
#else
#define KROJ_SRC_SIMD_SAMPLING_INL_H_
#endif

#include <stdint.h>

#include "ref/sampling_ref.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

namespace sampling {
using DW = hn::ScalableTag<uint16_t>;  // one output sample per lane
using DB = hn::Rebind<uint8_t, DW>;      // the same samples as bytes
using DP = hn::Repartition<uint8_t, DW>;  // two source bytes per output lane
using VW = hn::Vec<DW>;
inline constexpr int kLanes = static_cast<int>(hn::MaxLanes(DW()));

HWY_INLINE VW Widen(const uint8_t* p) { return hn::PromoteTo(DW(), hn::LoadU(DB(), p)); }
// Results are at most 255; the narrowing goes through signed lanes.
HWY_INLINE hn::Vec<DB> Narrow(VW v) {
  return hn::DemoteTo(DB(), hn::BitCast(hn::RebindToSigned<DW>(), v));
}
HWY_INLINE void StoreNarrow(VW v, uint8_t* p) { hn::StoreU(Narrow(v), DB(), p); }
// s[2j] + s[2j+1] in lane j.
HWY_INLINE VW PairSums(const uint8_t* p) {
  const VW w = hn::BitCast(DW(), hn::LoadU(DP(), p));
  return hn::Add(hn::And(w, hn::Set(DW(), 0xFF)), hn::ShiftRight<8>(w));
}
// Alternating biases: `even` in even lanes, `odd` in odd lanes.
HWY_INLINE VW Alternating(uint16_t even, uint16_t odd) {
  return hn::OddEven(hn::Set(DW(), odd), hn::Set(DW(), even));
}
HWY_INLINE VW Times3(VW v) { return hn::Add(hn::Add(v, v), v); }
}  // namespace sampling

// ---- Down-sampling: output j from source samples 2j, 2j+1 (and of a second row) ----

// Plane rows, constant biases.
inline void DownH2V1RowSimd(const uint8_t* s, uint8_t* d, int width) {
  const hn::ScalableTag<uint8_t> d8;
  const int lanes = static_cast<int>(hn::Lanes(d8));
  int x = 0;
  for (; x + lanes <= width; x += lanes) {
    hn::Vec<decltype(d8)> even, odd;
    hn::LoadInterleaved2(d8, s + 2 * x, even, odd);
    hn::StoreU(hn::AverageRound(even, odd), d8, d + x);  // (a + b + 1) >> 1
  }
  ref::DownH2V1Row(s + 2 * x, d + x, width - x);
}

inline void DownH2V2RowSimd(const uint8_t* a, const uint8_t* c, uint8_t* d, int width) {
  using namespace sampling;
  const VW k3 = hn::Set(DW(), 3);
  int x = 0;
  for (; x + kLanes <= width; x += kLanes) {
    const VW sum = hn::Add(PairSums(a + 2 * x), PairSums(c + 2 * x));
    StoreNarrow(hn::ShiftRight<2>(hn::Add(sum, k3)), d + x);
  }
  ref::DownH2V2Row(a + 2 * x, c + 2 * x, d + x, width - x);
}

// Row forms: ceil(w / 2) outputs with alternating biases. Vectors start at even
// outputs, so lane parity is output parity; the scalar row finishes (and reads the
// sample past an odd row, as it always has).
inline void DownRowH2V1BoxSimd(const uint8_t* s, int w, uint8_t* d) {
  using namespace sampling;
  const VW bias = Alternating(0, 1);
  int j = 0;
  for (; 2 * (j + kLanes) <= w; j += kLanes)
    StoreNarrow(hn::ShiftRight<1>(hn::Add(PairSums(s + 2 * j), bias)), d + j);
  ref::DownRowH2V1Box(s + 2 * j, w - 2 * j, d + j);
}

inline void DownRowH2V2BoxSimd(const uint8_t* a, const uint8_t* c, int w, uint8_t* d) {
  using namespace sampling;
  const VW bias = Alternating(1, 2);
  int j = 0;
  for (; 2 * (j + kLanes) <= w; j += kLanes) {
    const VW sum = hn::Add(PairSums(a + 2 * j), PairSums(c + 2 * j));
    StoreNarrow(hn::ShiftRight<2>(hn::Add(sum, bias)), d + j);
  }
  ref::DownRowH2V2Box(a + 2 * j, c + 2 * j, w - 2 * j, d + j);
}

// ---- Up-sampling: outputs 2i, 2i+1 from source sample i and its neighbours ----

// (3 s[i] + s[i-1] + 1) >> 2 and (3 s[i] + s[i+1] + 2) >> 2; reads s[-1] and, for
// the last full pair, s[width / 2].
inline void UpH2V1RowSimd(const uint8_t* s, uint8_t* d, int width) {
  using namespace sampling;
  const VW k1 = hn::Set(DW(), 1), k2 = hn::Set(DW(), 2);
  int i = 0;
  for (; 2 * (i + kLanes) <= width; i += kLanes) {
    const VW near3 = Times3(Widen(s + i));
    const VW even = hn::ShiftRight<2>(hn::Add(hn::Add(near3, Widen(s + i - 1)), k1));
    const VW odd = hn::ShiftRight<2>(hn::Add(hn::Add(near3, Widen(s + i + 1)), k2));
    hn::StoreInterleaved2(Narrow(even), Narrow(odd), DB(), d + 2 * i);
  }
  ref::UpH2V1Row(s + i, d + 2 * i, width - 2 * i);
}

// Column sums C = 3 N + F of the nearer and farther rows, then (3 C_i + C_{i-1} + 8)
// >> 4 and (3 C_i + C_{i+1} + 7) >> 4.
inline void UpH2V2RowSimd(const uint8_t* n, const uint8_t* f, uint8_t* d, int width) {
  using namespace sampling;
  const VW k7 = hn::Set(DW(), 7), k8 = hn::Set(DW(), 8);
  auto col = [&](int i) { return hn::Add(Times3(Widen(n + i)), Widen(f + i)); };
  int i = 0;
  for (; 2 * (i + kLanes) <= width; i += kLanes) {
    const VW near3 = Times3(col(i));
    const VW even = hn::ShiftRight<4>(hn::Add(hn::Add(near3, col(i - 1)), k8));
    const VW odd = hn::ShiftRight<4>(hn::Add(hn::Add(near3, col(i + 1)), k7));
    hn::StoreInterleaved2(Narrow(even), Narrow(odd), DB(), d + 2 * i);
  }
  ref::UpH2V2Row(n + i, f + i, d + 2 * i, width - 2 * i);
}

#else  // HWY_TARGET == HWY_SCALAR: the scalar rows under the same names

inline void DownH2V1RowSimd(const uint8_t* s, uint8_t* d, int width) {
  ref::DownH2V1Row(s, d, width);
}
inline void DownH2V2RowSimd(const uint8_t* a, const uint8_t* c, uint8_t* d, int width) {
  ref::DownH2V2Row(a, c, d, width);
}
inline void DownRowH2V1BoxSimd(const uint8_t* s, int w, uint8_t* d) {
  ref::DownRowH2V1Box(s, w, d);
}
inline void DownRowH2V2BoxSimd(const uint8_t* a, const uint8_t* c, int w, uint8_t* d) {
  ref::DownRowH2V2Box(a, c, w, d);
}
inline void UpH2V1RowSimd(const uint8_t* s, uint8_t* d, int width) { ref::UpH2V1Row(s, d, width); }
inline void UpH2V2RowSimd(const uint8_t* n, const uint8_t* f, uint8_t* d, int width) {
  ref::UpH2V2Row(n, f, d, width);
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
