// SPDX-License-Identifier: BSD-3-Clause
// Tier-1 coding passes (T.800 D.3) shared by the code-block encoder and decoders: the
// neighbourhood-state words and one scan per pass, parameterised by a coder that either
// decodes a decision or records the one the encoder makes.
//
// Where the time goes (64x64 blocks of a photo's 5/3 sub-bands): about 4.5 decisions per
// sample, 43% in propagation, 19% in refinement, 38% in cleanup (two fifths of those run
// lengths). MQ coding takes about 60% of the instructions and more of the time, because
// on the low planes the propagation and refinement decisions are close to coin tosses
// and every branch on them is mispredicted half the time; the coders therefore take
// those decisions without branches (mq_coder.h). The scans take the rest: they test a
// whole stripe column (two state words, or four columns as 64-bit pairs) for candidates
// before looking at a row, keep the column's two words in registers while its rows are
// coded, unroll the four rows so that the word, the half and the update masks are
// constants, and hand the coder a stripe's first row once instead of addressing every
// coefficient afresh.
#ifndef KROJ_SRC_CODEBLOCK_IMPL_H_
#define KROJ_SRC_CODEBLOCK_IMPL_H_

#include <string.h>

#include "kro_base.h"
#include "tables.h"

#ifndef KRO_T1_INLINE
#define KRO_T1_INLINE inline __attribute__((always_inline))
#endif

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
// A block too large for any memory gets 2^62 bytes rather than an overflowing product.
inline int64_t NbhBytes(int width, int height) {
  const int64_t pitch = NbhPitchBytes(width), rows = NbhRows(height);
  return pitch > (int64_t{1} << 62) / rows ? int64_t{1} << 62 : pitch * rows;
}

inline const Kro32u* ZeroCodingTable(int subband) {
  if (subband == 2) return ZeroCodingLUT_HxLy.data();
  if (subband == 3) return ZeroCodingLUT_HxHy.data();
  return ZeroCodingLUT_LxHy.data();
}

// Coefficient rows may sit at any byte address (steps need not be multiples of 4).
KRO_T1_INLINE uint32_t LoadCoef(const Kro32s* p) {
  uint32_t v;
  memcpy(&v, p, sizeof(v));
  return v;
}
KRO_T1_INLINE void StoreCoef(Kro32s* p, uint32_t v) { memcpy(p, &v, sizeof(v)); }

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

// Row R (0..3) of a stripe column becomes significant (neg: 0 or 1): set its own state
// and tell its eight neighbours. The column's own two words (rows 0-1 and 2-3) are held
// by the scan in c0 and c1 and stored when it leaves the column; the six neighbouring
// columns' words and the rows above and below the stripe are updated in memory. In
// vertically causal mode (T.800 D.7) a stripe never learns about the stripe below it,
// so the first row of a stripe leaves the row above untouched: no context, candidate
// test or run-length test of that row then sees it, in any pass.
template <int R>
KRO_T1_INLINE void SetSignificant(uint32_t* col, ptrdiff_t p, bool causal, uint32_t neg,
                                  uint32_t& c0, uint32_t& c1) {
  const uint32_t m = 0u - neg;
  // The word of the row's pair in the neighbouring columns, and of the pair above/below.
  uint32_t* w = col + (R >> 1) * p;
  if constexpr ((R & 1) == 0) {
    uint32_t& own = R == 0 ? c0 : c1;
    own |= kSig | kNbr | ((kSigN | kNbr | (kSgnN & m)) << 16);
    w[-1] |= kSigE | kNbr | (kSgnE & m) | ((kSigNE | kNbr) << 16);
    w[1] |= kSigW | kNbr | (kSgnW & m) | ((kSigNW | kNbr) << 16);
    if (R == 2) {
      c0 |= (kSigS | kNbr | (kSgnS & m)) << 16;
      col[-1] |= (kSigSE | kNbr) << 16;
      col[1] |= (kSigSW | kNbr) << 16;
    } else if (!causal) {
      w[-p] |= (kSigS | kNbr | (kSgnS & m)) << 16;
      w[-p - 1] |= (kSigSE | kNbr) << 16;
      w[-p + 1] |= (kSigSW | kNbr) << 16;
    }
  } else {
    uint32_t& own = R == 1 ? c0 : c1;
    own |= ((kSig | kNbr) << 16) | kSigS | kNbr | (kSgnS & m);
    w[-1] |= ((kSigE | kNbr | (kSgnE & m)) << 16) | kSigSE | kNbr;
    w[1] |= ((kSigW | kNbr | (kSgnW & m)) << 16) | kSigSW | kNbr;
    if (R == 1) {
      c1 |= kSigN | kNbr | (kSgnN & m);
    } else {
      w[p] |= kSigN | kNbr | (kSgnN & m);
    }
    w[p - 1] |= kSigNE | kNbr;
    w[p + 1] |= kSigNW | kNbr;
  }
}

// The passes below scan stripes of four rows, column by column, top to bottom within a
// column. The coder C supplies, for row r (0..3) of column x in the current stripe:
//   void Stripe(int y0, int rows)           a new stripe starts at row y0
//   int Bit(int ctx, int x, int r)          significance decision (zero coding)
//   uint32_t Sign(uint32_t lut, int x, int r) sign from a SignCodingLUT entry, 1 = negative
//   void Significant(int x, int r, uint32_t negative)
//   void Refine(int ctx, int x, int r)      magnitude refinement
//   int RunLength(int x)                    cleanup run: does one of the four rows become
//                                           significant
//   int RunPosition(int x)                  the first of them, 0..3

// State-word masks of the rows that exist in a stripe of `rows` rows: the first and the
// second word of a column.
constexpr uint32_t RowsMask0(int rows) { return rows >= 2 ? ~0u : 0xFFFFu; }
constexpr uint32_t RowsMask1(int rows) { return rows >= 4 ? ~0u : (rows == 3 ? 0xFFFFu : 0u); }

// Two adjacent state words read as one 64-bit value (first column in the low half). The
// candidate tests shift within 16-bit states only, so they work on two columns at once;
// the scans use them to pass over four columns without candidates in one step.
KRO_T1_INLINE uint64_t Load2(const uint32_t* w) {
  uint64_t v;
  memcpy(&v, w, sizeof(v));
  return v;
}

// State of row R from the column's words.
template <int R>
KRO_T1_INLINE uint32_t RowState(uint32_t c0, uint32_t c1) {
  return (R < 2 ? c0 : c1) >> ((R & 1) * 16);
}
template <int R>
KRO_T1_INLINE void MarkRow(uint32_t& c0, uint32_t& c1, uint32_t bits) {
  (R < 2 ? c0 : c1) |= bits << ((R & 1) * 16);
}

// Zero coding of row R (T.800 D.3.1), and on a 1 its sign and the neighbourhood update.
template <int R, class C>
KRO_T1_INLINE void CodeRow(uint32_t st, uint32_t* col, ptrdiff_t p, bool causal,
                           const Kro32u* zc, C& coder, int x, uint32_t& c0, uint32_t& c1) {
  if (coder.Bit(static_cast<int>(zc[st & 0xFF]), x, R)) {
    const uint32_t neg = coder.Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, R);
    coder.Significant(x, R, neg);
    SetSignificant<R>(col, p, causal, neg, c0, c1);
  }
}

// T.800 D.3.1 significance propagation: insignificant coefficients with a significant
// neighbour (bit 13 without bit 15).
template <class T>
KRO_T1_INLINE T PropagationCandidates(T w) {
  return w & ~(w >> 2) & static_cast<T>(kNbr * kBoth * uint64_t{0x100000001u});
}

template <int R, class C>
KRO_T1_INLINE void PropagationRow(uint32_t* col, ptrdiff_t p, bool causal, const Kro32u* zc,
                                  C& coder, int x, uint32_t& c0, uint32_t& c1) {
  const uint32_t st = RowState<R>(c0, c1);
  if ((st & (kSig | kNbr)) != kNbr) return;
  MarkRow<R>(c0, c1, kVisited);
  CodeRow<R>(st, col, p, causal, zc, coder, x, c0, c1);
}

template <int kRows, class C>
KRO_T1_INLINE void PropagationColumn(uint32_t* col, ptrdiff_t p, bool causal, const Kro32u* zc,
                                     C& coder, int x) {
  uint32_t c0 = col[0], c1 = col[p];
  if (((PropagationCandidates(c0) & RowsMask0(kRows)) |
       (PropagationCandidates(c1) & RowsMask1(kRows))) == 0)
    return;
  PropagationRow<0>(col, p, causal, zc, coder, x, c0, c1);
  if constexpr (kRows > 1) PropagationRow<1>(col, p, causal, zc, coder, x, c0, c1);
  if constexpr (kRows > 2) PropagationRow<2>(col, p, causal, zc, coder, x, c0, c1);
  if constexpr (kRows > 3) PropagationRow<3>(col, p, causal, zc, coder, x, c0, c1);
  col[0] = c0;
  col[p] = c1;
}

// A coder that knows its decisions before coding them (the encoder) may take a column
// its own way.
template <int kRows, class C>
KRO_T1_INLINE void PropagationColumnOf(uint32_t* col, ptrdiff_t p, bool causal, const Kro32u* zc,
                                       C& coder, int x) {
  if constexpr (requires { coder.template PropagationColumn<kRows>(col, p, causal, zc, x); })
    coder.template PropagationColumn<kRows>(col, p, causal, zc, x);
  else
    PropagationColumn<kRows>(col, p, causal, zc, coder, x);
}

template <int kRows, class C>
KRO_T1_INLINE void PropagationStripe(uint32_t* col, ptrdiff_t p, int width, bool causal,
                                     const Kro32u* zc, C& coder) {
  int x = 0;
  if constexpr (kRows == 4) {
    for (; x + 4 <= width; x += 4, col += 4) {
      if ((PropagationCandidates(Load2(col)) | PropagationCandidates(Load2(col + 2)) |
           PropagationCandidates(Load2(col + p)) | PropagationCandidates(Load2(col + p + 2))) == 0)
        continue;
      for (int i = 0; i < 4; ++i) PropagationColumnOf<4>(col + i, p, causal, zc, coder, x + i);
    }
  }
  for (; x < width; ++x, ++col) PropagationColumnOf<kRows>(col, p, causal, zc, coder, x);
}

template <class C>
KRO_T1_INLINE void SignificancePropagationScan(const Nbh& n, const Kro32u* zc, C& coder) {
  const ptrdiff_t p = n.pitch;
  for (int y0 = 0; y0 < n.height; y0 += 4) {
    const int rows = n.height - y0 < 4 ? n.height - y0 : 4;
    coder.Stripe(y0, rows);
    uint32_t* col = n.origin + (y0 >> 1) * p;
    switch (rows) {
      case 4:
        PropagationStripe<4>(col, p, n.width, n.causal, zc, coder);
        break;
      case 3:
        PropagationStripe<3>(col, p, n.width, n.causal, zc, coder);
        break;
      case 2:
        PropagationStripe<2>(col, p, n.width, n.causal, zc, coder);
        break;
      default:
        PropagationStripe<1>(col, p, n.width, n.causal, zc, coder);
        break;
    }
  }
}

// T.800 D.3.3 magnitude refinement: significant coefficients not coded in this plane's
// propagation pass (bit 15 without bit 14). Refinement changes no neighbour.
template <class T>
KRO_T1_INLINE T RefinementCandidates(T w) {
  return w & ~(w << 1) & static_cast<T>(kSig * kBoth * uint64_t{0x100000001u});
}

template <int R, class C>
KRO_T1_INLINE void RefinementRow(uint32_t& word, C& coder, int x) {
  constexpr int sh = (R & 1) * 16;
  const uint32_t st = word >> sh;
  if constexpr (requires { coder.template RefinementRow<R>(st, x); }) {
    word |= coder.template RefinementRow<R>(st, x) << sh;
  } else {
    if ((st & (kSig | kVisited)) != kSig) return;
    coder.Refine(static_cast<int>(MagnRefineLUT[st & 0x1FF]), x, R);
    word |= kRefined << sh;
  }
}

template <int kRows, class C>
KRO_T1_INLINE void RefinementColumn(uint32_t* col, ptrdiff_t p, C& coder, int x) {
  if constexpr (requires { coder.template RefinementColumn<kRows>(col, p, x); }) {
    coder.template RefinementColumn<kRows>(col, p, x);
    return;
  }
  uint32_t c0 = col[0], c1 = col[p];
  if (((RefinementCandidates(c0) & RowsMask0(kRows)) |
       (RefinementCandidates(c1) & RowsMask1(kRows))) == 0)
    return;
  RefinementRow<0>(c0, coder, x);
  if constexpr (kRows > 1) RefinementRow<1>(c0, coder, x);
  col[0] = c0;
  if constexpr (kRows > 2) {
    RefinementRow<2>(c1, coder, x);
    if constexpr (kRows > 3) RefinementRow<3>(c1, coder, x);
    col[p] = c1;
  }
}

template <int kRows, class C>
KRO_T1_INLINE void RefinementStripe(uint32_t* col, ptrdiff_t p, int width, C& coder) {
  int x = 0;
  if constexpr (kRows == 4) {
    for (; x + 4 <= width; x += 4, col += 4) {
      if ((RefinementCandidates(Load2(col)) | RefinementCandidates(Load2(col + 2)) |
           RefinementCandidates(Load2(col + p)) | RefinementCandidates(Load2(col + p + 2))) == 0)
        continue;
      for (int i = 0; i < 4; ++i) RefinementColumn<4>(col + i, p, coder, x + i);
    }
  }
  for (; x < width; ++x, ++col) RefinementColumn<kRows>(col, p, coder, x);
}

template <class C>
KRO_T1_INLINE void MagnitudeRefinementScan(const Nbh& n, C& coder) {
  const ptrdiff_t p = n.pitch;
  for (int y0 = 0; y0 < n.height; y0 += 4) {
    const int rows = n.height - y0 < 4 ? n.height - y0 : 4;
    coder.Stripe(y0, rows);
    uint32_t* col = n.origin + (y0 >> 1) * p;
    switch (rows) {
      case 4:
        RefinementStripe<4>(col, p, n.width, coder);
        break;
      case 3:
        RefinementStripe<3>(col, p, n.width, coder);
        break;
      case 2:
        RefinementStripe<2>(col, p, n.width, coder);
        break;
      default:
        RefinementStripe<1>(col, p, n.width, coder);
        break;
    }
  }
}

// T.800 D.3.4 cleanup: every row not yet significant and not coded in this plane's
// propagation pass.
template <int R, class C>
KRO_T1_INLINE void CleanupRow(uint32_t* col, ptrdiff_t p, bool causal, const Kro32u* zc,
                              C& coder, int x, uint32_t& c0, uint32_t& c1) {
  const uint32_t st = RowState<R>(c0, c1);
  if constexpr (requires { coder.template CleanupRow<R>(st, col, p, causal, zc, x, c0, c1); }) {
    coder.template CleanupRow<R>(st, col, p, causal, zc, x, c0, c1);
  } else {
    if (st & (kSig | kVisited)) return;
    CodeRow<R>(st, col, p, causal, zc, coder, x, c0, c1);
  }
}

// The first significant row of a run, with its sign.
template <int R, class C>
KRO_T1_INLINE void RunStart(uint32_t* col, ptrdiff_t p, bool causal, C& coder, int x,
                            uint32_t& c0, uint32_t& c1) {
  const uint32_t st = RowState<R>(c0, c1);
  const uint32_t neg = coder.Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, R);
  coder.Significant(x, R, neg);
  SetSignificant<R>(col, p, causal, neg, c0, c1);
}

// Run-length coding (T.800 D.3.4) applies to full stripe columns whose four
// coefficients and all their neighbours are insignificant: one decision for the column,
// and when a coefficient becomes significant, its row and sign, then the rows below it
// as usual. The coded-in-propagation marks are cleared for the next plane.
template <int kRows, class C>
KRO_T1_INLINE void CleanupColumn(uint32_t* col, ptrdiff_t p, bool causal, const Kro32u* zc,
                                 C& coder, int x) {
  constexpr uint32_t kRunBlockers = (kSig | kVisited | kNbr) * kBoth;
  constexpr uint32_t kVisitedBoth = kVisited * kBoth;
  uint32_t c0 = col[0], c1 = col[p];
  if constexpr (kRows == 4) {
    if (((c0 | c1) & kRunBlockers) == 0) {
      if (!coder.RunLength(x)) return;  // nothing to clear either
      switch (coder.RunPosition(x)) {
        case 0:
          RunStart<0>(col, p, causal, coder, x, c0, c1);
          CleanupRow<1>(col, p, causal, zc, coder, x, c0, c1);
          CleanupRow<2>(col, p, causal, zc, coder, x, c0, c1);
          CleanupRow<3>(col, p, causal, zc, coder, x, c0, c1);
          break;
        case 1:
          RunStart<1>(col, p, causal, coder, x, c0, c1);
          CleanupRow<2>(col, p, causal, zc, coder, x, c0, c1);
          CleanupRow<3>(col, p, causal, zc, coder, x, c0, c1);
          break;
        case 2:
          RunStart<2>(col, p, causal, coder, x, c0, c1);
          CleanupRow<3>(col, p, causal, zc, coder, x, c0, c1);
          break;
        default:
          RunStart<3>(col, p, causal, coder, x, c0, c1);
          break;
      }
      col[0] = c0;
      col[p] = c1;
      return;
    }
    // Nothing to code when every row is significant or visited.
    if (((~(c0 | (c0 << 1)) | ~(c1 | (c1 << 1))) & (kSig * kBoth)) == 0) {
      if ((c0 | c1) & kVisitedBoth) {
        col[0] = c0 & ~kVisitedBoth;
        col[p] = c1 & ~kVisitedBoth;
      }
      return;
    }
  }
  CleanupRow<0>(col, p, causal, zc, coder, x, c0, c1);
  if constexpr (kRows > 1) CleanupRow<1>(col, p, causal, zc, coder, x, c0, c1);
  if constexpr (kRows > 2) CleanupRow<2>(col, p, causal, zc, coder, x, c0, c1);
  if constexpr (kRows > 3) CleanupRow<3>(col, p, causal, zc, coder, x, c0, c1);
  col[0] = c0 & ~kVisitedBoth;
  col[p] = c1 & ~kVisitedBoth;
}

template <int kRows, class C>
KRO_T1_INLINE void CleanupStripe(uint32_t* col, ptrdiff_t p, int width, bool causal,
                                 const Kro32u* zc, C& coder) {
  for (int x = 0; x < width; ++x, ++col) CleanupColumn<kRows>(col, p, causal, zc, coder, x);
}

template <class C>
KRO_T1_INLINE void CleanupScan(const Nbh& n, const Kro32u* zc, C& coder) {
  const ptrdiff_t p = n.pitch;
  for (int y0 = 0; y0 < n.height; y0 += 4) {
    const int rows = n.height - y0 < 4 ? n.height - y0 : 4;
    coder.Stripe(y0, rows);
    uint32_t* col = n.origin + (y0 >> 1) * p;
    switch (rows) {
      case 4:
        CleanupStripe<4>(col, p, n.width, n.causal, zc, coder);
        break;
      case 3:
        CleanupStripe<3>(col, p, n.width, n.causal, zc, coder);
        break;
      case 2:
        CleanupStripe<2>(col, p, n.width, n.causal, zc, coder);
        break;
      default:
        CleanupStripe<1>(col, p, n.width, n.causal, zc, coder);
        break;
    }
  }
}

}  // namespace kro::t1

#endif  // KROJ_SRC_CODEBLOCK_IMPL_H_
