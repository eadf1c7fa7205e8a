// SPDX-License-Identifier: BSD-3-Clause
// Constant tables: colour conversion, zig-zag, Huffman sizes, MQ and context
// tables, distortion tables.
#include "tables.h"

#include "ref/colour_ref.h"

namespace kro {

// ---- Huffman coding ----

// own_pj_csize[n]: bits needed for n (T.81 F.1.2.1 magnitude categories).
const int32_t own_pj_csize[256] = {
    0, 1, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5,
    6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
};

const int32_t own_pj_izigzag_index[72] = {
     0,  1,  8, 16,  9,  2,  3, 10, 17, 24, 32, 25, 18, 11,  4,  5,
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13,  6,  7, 14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
    63, 63, 63, 63, 63, 63, 63, 63,
};

// 1 - 2^s: added to a received s-bit value whose top bit is 0 (T.81 F.2.2.1 EXTEND).
const int32_t own_pj_lowest_coef[17] = {
    0, -1, -3, -7, -15, -31, -63, -127, -255, -511, -1023, -2047, -4095, -8191, -16383,
    -32767, 0,
};

// own_pj_eobsize[n] = floor(log2 n): the EOBRUN size category of T.81 G.1.2.2.
const int32_t own_pj_eobsize[512] = {
    0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4,
    5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5,
    6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6,
    6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
};

// ---- Quantisation, DCT and zig-zag ----

const int32_t zigzag_index_Fwd[64] = {
    0,  1,  5,  6,  14, 15, 27, 28, 2,  4,  7,  13, 16, 26, 29, 42,
    3,  8,  12, 17, 25, 30, 41, 43, 9,  11, 18, 24, 31, 40, 44, 53,
    10, 19, 23, 32, 39, 45, 52, 54, 20, 22, 33, 38, 46, 51, 55, 60,
    21, 34, 37, 47, 50, 56, 59, 61, 35, 36, 48, 49, 57, 58, 62, 63,
};

const int32_t zigzag_index_Inv[64] = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};

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
