// SPDX-License-Identifier: BSD-3-Clause
// Tier-1 coding passes (T.800 D.3) shared by the code-block encoder and decoders: the
// neighbourhood-state words and one scan per pass, parameterised by a coder that either
// decodes a decision or records the one the encoder makes.
#ifndef KROJ_SRC_CODEBLOCK_IMPL_H_
#define KROJ_SRC_CODEBLOCK_IMPL_H_

#include "kro_base.h"
#include "tables.h"

namespace kro::t1 {

// One 16-bit state per coefficient; a 32-bit word holds a column's two rows of a row
// pair (upper row in the low half). Bits 0..7 index the zero-coding tables, bits 0..8 the
// refinement table and bits 4..12 the sign table.
inline constexpr uint32_t kSigNW = 1u << 0;  // diagonal neighbours significant
inline constexpr uint32_t kSigNE = 1u << 1;
inline constexpr uint32_t kSigSW = 1u << 2;
inline constexpr uint32_t kSigSE = 1u << 3;
inline constexpr uint32_t kSigN = 1u << 4;  // vertical neighbours significant
inline constexpr uint32_t kSigS = 1u << 5;
inline constexpr uint32_t kSigW = 1u << 6;  // horizontal neighbours significant
inline constexpr uint32_t kSigE = 1u << 7;
inline constexpr uint32_t kRefined = 1u << 8;
inline constexpr uint32_t kSgnN = 1u << 9;  // signs (1 = negative) of N, S, W, E
inline constexpr uint32_t kSgnS = 1u << 10;
inline constexpr uint32_t kSgnW = 1u << 11;
inline constexpr uint32_t kSgnE = 1u << 12;
inline constexpr uint32_t kNbr = 1u << 13;      // some neighbour significant
inline constexpr uint32_t kVisited = 1u << 14;  // coded in this plane's propagation pass
inline constexpr uint32_t kSig = 1u << 15;
inline constexpr uint32_t kBoth = 0x10001u;  // a state mask applied to both rows of a word

// Coding-style flags.
inline constexpr int kFlagCausal = 1;
inline constexpr int kFlagBypass = 2;
inline constexpr int kFlagTermAll = 4;
inline constexpr int kFlagReset = 8;
inline constexpr int kFlagSegSym = 16;
inline constexpr int kFlagLossless = 32;
inline constexpr int kFlagConceal = 65536;
inline constexpr int kFlagKeepDst = 131072;
inline constexpr int kFlagNoClear = 262144;
inline constexpr int kFlagKeepNbh = 524288;
inline constexpr int kFlagCheckTerm = 1048576;

// Bytes of one neighbourhood row (a row pair with a guard word at each end), a multiple
// of 32, and the number of rows including one guard row above and below.
inline int64_t NbhPitchBytes(int width) { return (4 * int64_t{width} + 8 + 31) / 32 * 32; }
inline int64_t NbhRows(int height) { return (int64_t{height} + 1) / 2 + 2; }
inline int64_t NbhBytes(int width, int height) { return NbhPitchBytes(width) * NbhRows(height); }

inline const Kro32u* ZeroCodingTable(int subband) {
  if (subband == 2) return ZeroCodingLUT_HxLy.data();
  if (subband == 3) return ZeroCodingLUT_HxHy.data();
  return ZeroCodingLUT_LxHy.data();
}

// A code-block's neighbourhood states: origin is the word of column 0, rows 0 and 1.
struct Nbh {
  uint32_t* origin;
  ptrdiff_t pitch;  // words per row pair
  int width;
  int height;
  bool causal;
};

inline Nbh MakeNbh(void* buffer, int width, int height, bool causal) {
  const ptrdiff_t pitch = static_cast<ptrdiff_t>(NbhPitchBytes(width) / 4);
  return {static_cast<uint32_t*>(buffer) + pitch + 1, pitch, width, height, causal};
}

// The coefficient in word w, row y, becomes significant: set its own state and tell its
// eight neighbours. In vertically causal mode (T.800 D.7) a stripe never learns about
// the stripe below it, so the first row of a stripe leaves the row above untouched: no
// context, candidate test or run-length test of that row then sees it, in any pass.
inline void SetSignificant(const Nbh& n, uint32_t* w, int y, uint32_t negative) {
  const ptrdiff_t p = n.pitch;
  const uint32_t neg = negative ? ~0u : 0u;
  if ((y & 1) == 0) {
    w[0] |= kSig | kNbr | ((kSigN | kNbr | (kSgnN & neg)) << 16);
    w[-1] |= kSigE | kNbr | (kSgnE & neg) | ((kSigNE | kNbr) << 16);
    w[1] |= kSigW | kNbr | (kSgnW & neg) | ((kSigNW | kNbr) << 16);
    if (!(n.causal && (y & 3) == 0)) {
      w[-p] |= (kSigS | kNbr | (kSgnS & neg)) << 16;
      w[-p - 1] |= (kSigSE | kNbr) << 16;
      w[-p + 1] |= (kSigSW | kNbr) << 16;
    }
  } else {
    w[0] |= ((kSig | kNbr) << 16) | kSigS | kNbr | (kSgnS & neg);
    w[-1] |= ((kSigE | kNbr | (kSgnE & neg)) << 16) | kSigSE | kNbr;
    w[1] |= ((kSigW | kNbr | (kSgnW & neg)) << 16) | kSigSW | kNbr;
    w[p] |= kSigN | kNbr | (kSgnN & neg);
    w[p - 1] |= kSigNE | kNbr;
    w[p + 1] |= kSigNW | kNbr;
  }
}

// The passes below scan stripes of four rows, column by column, top to bottom within a
// column. The coder C supplies, for the coefficient at (x, y):
//   int Bit(int ctx, int x, int y)          significance decision (zero coding)
//   uint32_t Sign(uint32_t lut, int x, int y) sign from a SignCodingLUT entry, 1 = negative
//   void Significant(int x, int y, uint32_t negative)
//   void Refine(int ctx, int x, int y)      magnitude refinement
//   int RunLength(int x, int y0)            cleanup run: does one of four rows become significant
//   int RunPosition(int x, int y0)          the first of them, 0..3

// T.800 D.3.1 significance propagation: insignificant coefficients with a significant
// neighbour.
template <class C>
void SignificancePropagationScan(const Nbh& n, const Kro32u* zc, C& coder) {
  for (int y0 = 0; y0 < n.height; y0 += 4) {
    const int rows = n.height - y0 < 4 ? n.height - y0 : 4;
    uint32_t* col = n.origin + (y0 >> 1) * n.pitch;
    for (int x = 0; x < n.width; ++x, ++col) {
      if (((col[0] | col[n.pitch]) & (kNbr * kBoth)) == 0) continue;
      for (int r = 0; r < rows; ++r) {
        uint32_t* w = col + (r >> 1) * n.pitch;
        const int sh = (r & 1) * 16;
        const uint32_t st = *w >> sh;
        if ((st & (kSig | kNbr)) != kNbr) continue;
        *w |= kVisited << sh;
        const int y = y0 + r;
        if (coder.Bit(static_cast<int>(zc[st & 0xFF]), x, y)) {
          const uint32_t neg = coder.Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, y);
          coder.Significant(x, y, neg);
          SetSignificant(n, w, y, neg);
        }
      }
    }
  }
}

// T.800 D.3.3 magnitude refinement: significant coefficients not coded in this plane's
// propagation pass.
template <class C>
void MagnitudeRefinementScan(const Nbh& n, C& coder) {
  for (int y0 = 0; y0 < n.height; y0 += 4) {
    const int rows = n.height - y0 < 4 ? n.height - y0 : 4;
    uint32_t* col = n.origin + (y0 >> 1) * n.pitch;
    for (int x = 0; x < n.width; ++x, ++col) {
      if (((col[0] | col[n.pitch]) & (kSig * kBoth)) == 0) continue;
      for (int r = 0; r < rows; ++r) {
        uint32_t* w = col + (r >> 1) * n.pitch;
        const int sh = (r & 1) * 16;
        const uint32_t st = *w >> sh;
        if ((st & (kSig | kVisited)) != kSig) continue;
        coder.Refine(static_cast<int>(MagnRefineLUT[st & 0x1FF]), x, y0 + r);
        *w |= kRefined << sh;
      }
    }
  }
}

// T.800 D.3.4 cleanup: everything not yet coded in this plane, with run-length coding of
// full stripe columns whose four coefficients and all their neighbours are insignificant.
// Clears the coded-in-propagation marks for the next plane.
template <class C>
void CleanupScan(const Nbh& n, const Kro32u* zc, C& coder) {
  for (int y0 = 0; y0 < n.height; y0 += 4) {
    const int rows = n.height - y0 < 4 ? n.height - y0 : 4;
    uint32_t* col = n.origin + (y0 >> 1) * n.pitch;
    for (int x = 0; x < n.width; ++x, ++col) {
      int r = 0;
      if (rows == 4 && ((col[0] | col[n.pitch]) & ((kSig | kVisited | kNbr) * kBoth)) == 0) {
        if (!coder.RunLength(x, y0)) continue;  // nothing to clear either
        r = coder.RunPosition(x, y0);
        uint32_t* w = col + (r >> 1) * n.pitch;
        const uint32_t st = *w >> ((r & 1) * 16);
        const uint32_t neg = coder.Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, y0 + r);
        coder.Significant(x, y0 + r, neg);
        SetSignificant(n, w, y0 + r, neg);
        ++r;
      }
      for (; r < rows; ++r) {
        uint32_t* w = col + (r >> 1) * n.pitch;
        const int sh = (r & 1) * 16;
        const uint32_t st = *w >> sh;
        if (st & (kSig | kVisited)) continue;
        const int y = y0 + r;
        if (coder.Bit(static_cast<int>(zc[st & 0xFF]), x, y)) {
          const uint32_t neg = coder.Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, y);
          coder.Significant(x, y, neg);
          SetSignificant(n, w, y, neg);
        }
      }
      col[0] &= ~(kVisited * kBoth);
      col[n.pitch] &= ~(kVisited * kBoth);
    }
  }
}

}  // namespace kro::t1

#endif  // KROJ_SRC_CODEBLOCK_IMPL_H_
