// SPDX-License-Identifier: BSD-3-Clause
// Constant tables: colour conversion, zig-zag, Huffman sizes, MQ and context
// tables, distortion tables.
#include "tables.h"

#include "ref/colour_ref.h"

namespace kro {

// ---- Huffman coding ----

// ---- Quantisation, DCT and zig-zag ----

// ---- Colour conversion and sampling ----

namespace colour_detail {

template <class T, size_t N, class F>
constexpr std::array<T, N> Tabulate(F f) {
  std::array<T, N> t{};
  for (size_t i = 0; i < N; ++i) t[i] = f(static_cast<int32_t>(i));
  return t;
}

// (coef * d + add) >> 16 with d = c - 128, or without the shift.
constexpr auto Rounded(int32_t coef) {
  return [coef](int32_t c) { return (coef * (c - 128) + ref::kHalf) >> 16; };
}
constexpr auto Fixed(int32_t coef, int32_t add) {
  return [coef, add](int32_t c) { return coef * (c - 128) + add; };
}

// cc_table: sub-table i >> 8 holds coef * x (+ add) for x = i & 255, mod 2^32.
constexpr uint32_t CcEntry(int32_t i) {
  constexpr int32_t kCoef[8] = {ref::kYR,   ref::kYG,   ref::kYB,   -ref::kCbR,
                                -ref::kCbG, ref::kHalf, -ref::kCrG, -ref::kCrB};
  constexpr int32_t kAdd[8] = {0, 0, ref::kHalf, 0, 0, ref::kChromaOffset, 0, 0};
  return static_cast<uint32_t>(kCoef[i >> 8] * (i & 255) + kAdd[i >> 8]);
}

}  // namespace colour_detail

constinit const std::array<int32_t, 256> cr_r_tbl =
    colour_detail::Tabulate<int32_t, 256>(colour_detail::Rounded(ref::kRCr));
constinit const std::array<int32_t, 256> cb_b_tbl =
    colour_detail::Tabulate<int32_t, 256>(colour_detail::Rounded(ref::kBCb));
constinit const std::array<int32_t, 256> cr_g_tbl =
    colour_detail::Tabulate<int32_t, 256>(colour_detail::Fixed(-ref::kGCr, 0));
constinit const std::array<int32_t, 256> cb_g_tbl =
    colour_detail::Tabulate<int32_t, 256>(colour_detail::Fixed(-ref::kGCb, ref::kHalf));
constinit const std::array<uint32_t, 2048> cc_table =
    colour_detail::Tabulate<uint32_t, 2048>(colour_detail::CcEntry);

// ---- JPEG 2000 transforms ----

// ---- JPEG 2000 tier-1 (MQ coder, contexts, distortion) ----

// ---- Image and signal primitives ----

}  // namespace kro
