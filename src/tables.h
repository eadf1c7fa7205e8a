// SPDX-License-Identifier: BSD-3-Clause
// Constant tables shared across families. Each family declares its tables in its own
// section; the definitions live in tables.cpp.
#ifndef KROJ_SRC_TABLES_H_
#define KROJ_SRC_TABLES_H_

#include <array>

#include "kro_base.h"

namespace kro {

// ---- Huffman coding ----

// Magnitude category helper: entry n is the number of significant bits of n.
extern const int32_t own_pj_csize[256];
// Natural index of each zig-zag position (T.81 figure A.6); entries 64..71 are 63
// so that a decoded run overshooting the block by up to 8 positions stays inside it.
extern const int32_t own_pj_izigzag_index[72];
// EXTEND offsets: entry s = 1 - 2^s for s = 0..15, entry 16 = 0.
extern const int32_t own_pj_lowest_coef[17];
// Entry n = floor(log2 n) for n >= 1, 0 for n = 0 (EOBRUN sizes).
extern const int32_t own_pj_eobsize[512];
// Zig-zag bits of one row: entry [row][m] has bit k set for every column c with bit
// c of m set, k the zig-zag position of (row, c). Turns a natural-order non-zero
// mask into a zig-zag one, a row at a time.
extern const std::array<std::array<uint64_t, 256>, 8> kZigZagRowBits;

// ---- Quantisation, DCT and zig-zag ----

// T.81 figure A.6. zigzag_index_Fwd[k]: zig-zag position of natural index k;
// zigzag_index_Inv[i]: natural index at zig-zag position i.
extern const int32_t zigzag_index_Fwd[64];
extern const int32_t zigzag_index_Inv[64];

// The SIMD block kernels' multipliers and addends, each repeated on 8 lanes. They
// live out of line on purpose: with the values in sight the compiler rebuilds each
// vector from an immediate at every call (three instructions), while a load from
// here is one, usually folded into the multiply.
inline constexpr int32_t kDctLaneValues[] = {
    17734, 25080, -60547, 46341, 799,   3218, -4816, 3406,  -1130,   -5681,  27246, -9041,
    -45451, 6393, 25746, -38531, 5793, 1,    32,    2048,  1 << 20, 16383, -32768, 32767, 8192};
inline constexpr int kDctLaneCount = sizeof(kDctLaneValues) / sizeof(kDctLaneValues[0]);
alignas(32) extern const std::array<std::array<int32_t, 8>, kDctLaneCount> dct_lane_constants;
constexpr int DctLaneIndex(int32_t value) {
  for (int i = 0; i < kDctLaneCount; ++i)
    if (kDctLaneValues[i] == value) return i;
  return -1;
}

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
//
// Contexts are numbered 0 uniform, 1 run-length, 2..10 zero coding (T.800 labels 0..8),
// 11..15 sign coding (labels 9..13), 16..18 magnitude refinement (labels 14..16).
// These tables are constexpr so that both coders and the unit tests see the same data;
// the context tables are generated from their rules (T.800 D.3), not typed in.

// T.800 Table C.2, row = estimator state: Qe, next state after MPS, next state after LPS,
// switch flag.
inline constexpr Kro32s owniEstimator_JPEG2K[47][4] = {
    {0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},
    {0x0521, 5, 29, 0},  {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},
    {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0}, {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0},
    {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1}, {0x5401, 16, 14, 0},
    {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
    {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0},
    {0x1C01, 25, 22, 0}, {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0},
    {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0}, {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0},
    {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0}, {0x02A1, 36, 33, 0},
    {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
    {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0},
    {0x0005, 45, 42, 0}, {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0}};

// T.800 Table D.7: initial estimator state and MPS of each context.
inline constexpr Kro32s owniInitialCtxIndexes_JPEG2K[19] = {46, 3, 4, 0, 0, 0, 0, 0, 0, 0,
                                                             0,  0, 0, 0, 0, 0, 0, 0, 0};
inline constexpr Kro32s owniInitialMPS_JPEG2K[19] = {};

// The coders keep a context as one byte, state * 2 + MPS. kMqTransitions is Table C.2
// re-indexed that way, with the MPS switch folded into the LPS successor.
struct MqTransition {
  uint16_t qe;
  uint8_t next_mps;  // successor (state * 2 + MPS) after coding the MPS with renormalisation
  uint8_t next_lps;  // successor after coding the LPS
};

constexpr std::array<MqTransition, 94> MakeMqTransitions() {
  std::array<MqTransition, 94> t{};
  for (int s = 0; s < 47; ++s) {
    for (int mps = 0; mps < 2; ++mps) {
      const Kro32s* row = owniEstimator_JPEG2K[s];
      const int lps_mps = row[3] ? 1 - mps : mps;
      t[s * 2 + mps] = {static_cast<uint16_t>(row[0]), static_cast<uint8_t>(row[1] * 2 + mps),
                        static_cast<uint8_t>(row[2] * 2 + lps_mps)};
    }
  }
  return t;
}
inline constexpr std::array<MqTransition, 94> kMqTransitions = MakeMqTransitions();

// Zero-coding context (2 + T.800 Table D.1 label) from the eight neighbour significance
// bits: 0..3 diagonal, 4..5 vertical (above, below), 6..7 horizontal (left, right).
// band 0: LL and LH columns; band 1: HL (horizontal and vertical exchanged); band 2: HH.
constexpr int ZeroCodingLabel(int index, int band) {
  const int d = ((index >> 0) & 1) + ((index >> 1) & 1) + ((index >> 2) & 1) + ((index >> 3) & 1);
  int v = ((index >> 4) & 1) + ((index >> 5) & 1);
  int h = ((index >> 6) & 1) + ((index >> 7) & 1);
  if (band == 2) {
    const int hv = h + v;
    if (d >= 3) return 8;
    if (d == 2) return hv >= 1 ? 7 : 6;
    if (d == 1) return hv >= 2 ? 5 : (hv == 1 ? 4 : 3);
    return hv >= 2 ? 2 : hv;
  }
  if (band == 1) {
    const int t = h;
    h = v;
    v = t;
  }
  if (h == 2) return 8;
  if (h == 1) return v >= 1 ? 7 : (d >= 1 ? 6 : 5);
  if (v == 2) return 4;
  if (v == 1) return 3;
  return d >= 2 ? 2 : d;
}

constexpr std::array<Kro32u, 256> MakeZeroCodingLut(int band) {
  std::array<Kro32u, 256> t{};
  for (int i = 0; i < 256; ++i) t[i] = static_cast<Kro32u>(2 + ZeroCodingLabel(i, band));
  return t;
}
inline constexpr std::array<Kro32u, 256> ZeroCodingLUT_LxHy = MakeZeroCodingLut(0);
inline constexpr std::array<Kro32u, 256> ZeroCodingLUT_HxLy = MakeZeroCodingLut(1);
inline constexpr std::array<Kro32u, 256> ZeroCodingLUT_HxHy = MakeZeroCodingLut(2);

// Sign-coding context. Index bits 0..1: significance of the vertical neighbours, 2..3 of
// the horizontal ones, 5..8 their signs (1 = negative) in the same order; bit 4 unused.
// Entry: context (2 + Table D.3 label) in the low byte, the XOR bit in bit 31. Entry 511
// stays 0: the passes never form that index (bit 4 is the refined flag, clear whenever a
// sign is coded), and existing callers that dump the table expect the 0 there.
constexpr Kro32u SignCodingEntry(int index) {
  if (index == 511) return 0;
  auto contribution = [index](int k) {
    if (!((index >> k) & 1)) return 0;
    return ((index >> (5 + k)) & 1) ? -1 : 1;
  };
  auto clamp = [](int s) { return s > 1 ? 1 : (s < -1 ? -1 : s); };
  const int v = clamp(contribution(0) + contribution(1));
  int h = clamp(contribution(2) + contribution(3));
  int vv = v;
  Kro32u xor_bit = 0;
  if (h < 0 || (h == 0 && v < 0)) {
    h = -h;
    vv = -v;
    xor_bit = 1;
  }
  const int label = h == 0 ? (vv == 0 ? 9 : 10) : (vv < 0 ? 11 : (vv == 0 ? 12 : 13));
  return static_cast<Kro32u>(label + 2) | (xor_bit << 31);
}
constexpr std::array<Kro32u, 512> MakeSignCodingLut() {
  std::array<Kro32u, 512> t{};
  for (int i = 0; i < 512; ++i) t[i] = SignCodingEntry(i);
  return t;
}
inline constexpr std::array<Kro32u, 512> SignCodingLUT = MakeSignCodingLut();

// Magnitude-refinement context: index bits 0..7 neighbour significance, bit 8 refined
// before. 16 first refinement without significant neighbours, 17 with, 18 later ones.
constexpr std::array<Kro32u, 512> MakeMagnRefineLut() {
  std::array<Kro32u, 512> t{};
  for (int i = 0; i < 512; ++i) t[i] = i >= 256 ? 18 : (i == 0 ? 16 : 17);
  return t;
}
inline constexpr std::array<Kro32u, 512> MagnRefineLUT = MakeMagnRefineLut();

// Distortion reductions in units of 8192 = (2^p)^2 at bit-plane p. Fs: a coefficient
// becomes significant, i = the six magnitude bits below p (v = 1 + i/64). Fm: a
// refinement, i = bit p and the six below (v = i/64). Lossless: the reconstruction
// becomes exact; lossy: it moves to the midpoint of the remaining interval.
constexpr std::array<Kro32s, 64> MakeFs(bool lossless) {
  std::array<Kro32s, 64> t{};
  for (int i = 0; i < 64; ++i) t[i] = lossless ? 2 * (64 + i) * (64 + i) : 6144 + 384 * i;
  return t;
}
constexpr std::array<Kro32s, 128> MakeFm(bool lossless) {
  std::array<Kro32s, 128> t{};
  for (int i = 0; i < 128; ++i) {
    if (lossless) {
      t[i] = 2 * (i - 64) * (i - 64);  // 8192 (v - 1)^2
    } else {
      t[i] = i < 64 ? 6144 - 128 * i : 128 * i - 10240;  // 8192 (0.75 - v), 8192 (v - 1.25)
    }
  }
  return t;
}
inline constexpr std::array<Kro32s, 64> FsLossless_LUT = MakeFs(true);
inline constexpr std::array<Kro32s, 64> FsLossy_LUT = MakeFs(false);
inline constexpr std::array<Kro32s, 128> FmLossless_LUT = MakeFm(true);
inline constexpr std::array<Kro32s, 128> FmLossy_LUT = MakeFm(false);

// ---- Image and signal primitives ----

// Reciprocals used by the 8-bit division by a constant: 1 / i rounded half up to
// six decimals and then to the nearest float (0.333333f, 0.007813f), entry 0 being
// 0.000001f. The decimal rounding decides results and is kept for compatibility.
extern const float reciprocal8u[256];

}  // namespace kro

#endif  // KROJ_SRC_TABLES_H_
