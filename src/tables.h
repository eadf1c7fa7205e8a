// SPDX-License-Identifier: BSD-3-Clause
// Constant tables shared across families. Each family declares its tables in its own
// section; the definitions live in tables.cpp.
#ifndef KROJ_SRC_TABLES_H_
#define KROJ_SRC_TABLES_H_

#include <array>

#include "kro_base.h"

namespace kro {

// ---- Huffman coding ----

// ---- Quantisation, DCT and zig-zag ----

// T.81 figure A.6. zigzag_index_Fwd[k]: zig-zag position of natural index k;
// zigzag_index_Inv[i]: natural index at zig-zag position i.
extern const int32_t zigzag_index_Fwd[64];
extern const int32_t zigzag_index_Inv[64];

// ---- Colour conversion and sampling ----

// YCbCr -> RGB, indexed by an 8-bit chroma sample c with d = c - 128 (T.871 7):
//   cr_r_tbl[c] = (91881 d + 32768) >> 16      red from Cr, whole units
//   cb_b_tbl[c] = (116130 d + 32768) >> 16     blue from Cb, whole units
//   cr_g_tbl[c] = -46802 d                     green from Cr, 16 fraction bits
//   cb_g_tbl[c] = -22554 d + 32768             green from Cb, 16 fraction bits + one half
extern const std::array<int32_t, 256> cr_r_tbl;
extern const std::array<int32_t, 256> cb_b_tbl;
extern const std::array<int32_t, 256> cr_g_tbl;
extern const std::array<int32_t, 256> cb_g_tbl;

// RGB -> YCbCr: eight sub-tables of 256 products (16 fraction bits, mod 2^32),
// summed three at a time and shifted right by 16. See kCc* below for the layout.
extern const std::array<uint32_t, 2048> cc_table;
inline constexpr int kCcYR = 0, kCcYG = 256, kCcYB = 512;    // Y
inline constexpr int kCcCbR = 768, kCcCbG = 1024;            // Cb (B part: kCcHalf)
inline constexpr int kCcHalf = 1280;                         // Cb from B and Cr from R
inline constexpr int kCcCrG = 1536, kCcCrB = 1792;           // Cr (R part: kCcHalf)

// ---- JPEG 2000 transforms ----

// ---- JPEG 2000 tier-1 (MQ coder, contexts, distortion) ----

// ---- Image and signal primitives ----

}  // namespace kro

#endif  // KROJ_SRC_TABLES_H_
