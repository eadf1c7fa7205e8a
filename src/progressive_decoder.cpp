// SPDX-License-Identifier: BSD-3-Clause
// Progressive JPEG Huffman decoding of one block per call (T.81 G.2): DC first and
// refinement scans, AC first scans with end-of-band runs, AC refinement scans. The
// caller's block is refined in place, never cleared.
//
// Where the time goes: AC refinement scans took most of a progressive decode, nearly
// all of it in mispredicted branches while walking the band coefficient by
// coefficient (is it already non-zero? has the zero run ended? is the correction bit
// set?). The walk now works on a mask of the non-zero positions in zig-zag order:
// the end of a zero run is found by clearing mask bits, the correction bits of the
// coefficients passed over are taken from the bit window several at a time (by the
// same one-bit-at-a-time refill rule), and applied without branches.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "progressive_decoder.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include <algorithm>

#include "bitio.h"
#include "simd/huffman-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// Checks shared by the four decoders up to the Al and band ranges: pSrc null -> -8,
// a length below 1 -> -6 (the baseline decoder accepts 0, kept for compatibility),
// position, block or marker null -> -8.
HWY_INLINE KroStatus CheckSource(const Kro8u* pSrc, int srcLenBytes, const int* pSrcCurrPos, const Kro16s* pDst,
                                 const int* pMarker) {
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (srcLenBytes < 1) return kroStatusBadSize;
  if (pSrcCurrPos == nullptr || pDst == nullptr || pMarker == nullptr) return kroStatusNullPointer;
  return kroStatusOk;
}

HWY_INLINE bool BadAl(int Al) { return Al < 0 || Al > 13; }
HWY_INLINE bool BadBand(int Ss, int Se) { return Ss < 1 || Ss > 63 || Se < Ss || Se > 63; }

// Runs body on a reader over the source; the state keeps the bits consumed, whatever
// the outcome.
template <class Body>
HWY_INLINE KroStatus WithReader(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, DecState* st,
                                Body&& body) {
  if (*pSrcCurrPos < 0) return kroStatusBadArgument;  // would read before pSrc
  BitReader r(pSrc, srcLenBytes, pSrcCurrPos, pMarker, st);
  const KroStatus s = body(r);
  r.Commit(pSrcCurrPos, st);
  return s;
}

// Bits k..Se (k <= 63, Se <= 63).
HWY_INLINE uint64_t Band(int k, int Se) { return (~uint64_t{0} << k) & (~uint64_t{0} >> (63 - Se)); }

// T.81 G.2.2 for every coefficient at a set bit of positions (zig-zag order,
// ascending): one correction bit each, read as separate one-bit reads would read it
// (a refill only when no bit is held), a 1 adding 2^Al away from zero unless that bit
// of the coefficient is set already. A refill that meets a marker yields a zero bit,
// the next one -63; a failure leaves the coefficients before it refined.
HWY_INLINE KroStatus Corrections(BitReader& r, Kro16s* dst, uint64_t positions, int32_t p1, int32_t m1) {
  int count = std::popcount(positions);
  while (count > 0) {
    if (r.bits == 0) {
      const KroStatus st = ownpj_FillBitBuffer(r, 1);
      if (st != kroStatusOk) return st;
      if (r.bits == 0) {  // a marker: one bit reads as 0, which changes nothing
        positions &= positions - 1;
        --count;
        continue;
      }
    }
    const int n = std::min({count, r.bits, 31});
    r.bits -= n;
    count -= n;
    uint32_t chunk = LowBits(r.acc >> r.bits, n) << (32 - n);  // first bit on top
    for (int i = 0; i < n; ++i, chunk <<= 1, positions &= positions - 1) {
      Kro16s* c = &dst[own_pj_izigzag_index[std::countr_zero(positions)]];
      const int32_t v = *c;
      const int32_t sign = v >> 31;  // 2^Al away from zero: p1, or m1 for negative v
      const int32_t add = (static_cast<int32_t>(chunk) >> 31) & -static_cast<int32_t>((v & p1) == 0);
      *c = Wrap16(v + (add & ((p1 & ~sign) | (m1 & sign))));
    }
  }
  return kroStatusOk;
}

HWY_INLINE KroStatus DCFirst(BitReader& r, Kro16s* dst, Kro16s* last_dc, int Al, const DecSpec* t) {
  const int sym = DecodeSymbol(r, t);
  if (sym < 0) return static_cast<KroStatus>(sym);
  const int n = sym & 15;
  if (n > 0) {
    uint32_t v;
    const KroStatus s = ReceiveBits(r, n, &v);
    if (s != kroStatusOk) return s;
    *last_dc = Wrap16(*last_dc + Extend(v, n));
  }
  dst[0] = Wrap16(ShlWrap32(*last_dc, Al));
  return kroStatusOk;
}

HWY_INLINE KroStatus DCRefine(BitReader& r, Kro16s* dst, int Al) {
  uint32_t bit;
  const KroStatus s = ReceiveBits(r, 1, &bit);
  if (s == kroStatusOk && bit != 0) dst[0] = static_cast<Kro16s>(dst[0] | (1 << Al));
  return s;
}

// T.81 G.2.2 AC first scan. A run may carry k past 63: positions 64..71 land on
// coefficient 63, further ones are refused.
HWY_INLINE KroStatus ACFirst(BitReader& r, Kro16s* dst, int Ss, int Se, int Al, const DecSpec* t, DecState* st) {
  if (st->eobRun > 0) {
    --st->eobRun;
    return kroStatusOk;
  }
  // A symbol with its value, both within the bits held, leaves a left-aligned window
  // in one shift (see the baseline decoder); anything else takes the exact reader.
  uint64_t win = (uint64_t{r.acc} << 32) << (32 - r.bits);
  for (int k = Ss; k <= Se; ++k) {
    const uint32_t e = r.bits >= 8 ? t->fastLookup[win >> 56] : 0;
    const int len = static_cast<int>(e >> 16);  // 1..8 from a built table
    const int size = static_cast<int>(e & 15);
    if (size != 0 && r.bits >= len + size) [[likely]] {
      k += static_cast<int>(e >> 4) & 15;
      const uint32_t v = static_cast<uint32_t>((win << len) >> (64 - size));
      win <<= len + size;
      r.bits -= len + size;
      if (k >= 72) [[unlikely]] return kroStatusError;
      dst[own_pj_izigzag_index[k]] = Wrap16(ShlWrap32(Extend(v, size), Al));
      continue;
    }
    const int sym = DecodeSymbol(r, t);
    if (sym < 0) return static_cast<KroStatus>(sym);
    const int run = sym >> 4, n = sym & 15;
    uint32_t v;
    if (n > 0) {
      k += run;
      const KroStatus s = ReceiveBits(r, n, &v);
      if (s != kroStatusOk) return s;
      if (k >= 72) [[unlikely]] return kroStatusError;
      dst[own_pj_izigzag_index[k]] = Wrap16(ShlWrap32(Extend(v, n), Al));
      win = (uint64_t{r.acc} << 32) << (32 - r.bits);
    } else if (run == 15) {
      k += 15;  // ZRL
      win = (uint64_t{r.acc} << 32) << (32 - r.bits);
    } else {
      // EOBr: this band and 2^r - 1 + (r more bits) following ones are empty.
      int32_t eob = (1 << run) - 1;
      if (run > 0) {
        const KroStatus s = ReceiveBits(r, run, &v);
        if (s != kroStatusOk) return s;
        eob += static_cast<int32_t>(v);
      }
      st->eobRun = eob;
      break;
    }
  }
  return kroStatusOk;
}

// T.81 G.2.2 AC refinement scan. nz holds the non-zero positions of the band; a new
// value goes on the zero that ends its run, or, when the band ends first, just past
// it (zig-zag position 64 is coefficient 63).
HWY_INLINE KroStatus ACRefine(BitReader& r, Kro16s* dst, int Ss, int Se, int Al, const DecSpec* t, DecState* st) {
  const int32_t p1 = 1 << Al, m1 = ShlWrap32(-1, Al);
  uint64_t nz = ZigZagNonZeroSimd(dst);
  KroStatus s;
  int k = Ss;
  if (st->eobRun <= 0) {
    for (; k <= Se; ++k) {
      const int sym = DecodeSymbol(r, t);
      if (sym < 0) return static_cast<KroStatus>(sym);
      const int run = sym >> 4;
      int32_t value = 0;
      if ((sym & 15) != 0) {
        uint32_t bit;
        if ((s = ReceiveBits(r, 1, &bit)) != kroStatusOk) return s;
        value = bit != 0 ? p1 : m1;
      } else if (run != 15) {
        int32_t eob = 1 << run;
        if (run > 0) {
          uint32_t v;
          if ((s = ReceiveBits(r, run, &v)) != kroStatusOk) return s;
          eob += static_cast<int32_t>(v);
        }
        st->eobRun = eob;
        break;
      }
      // The zero that ends the run: the (run + 1)-th zero position from k.
      const uint64_t band = Band(k, Se);
      uint64_t zeros = ~nz & band;
      for (int i = 0; i < run; ++i) zeros &= zeros - 1;
      const int end = zeros != 0 ? std::countr_zero(zeros) : Se + 1;
      const uint64_t before = end >= 64 ? ~uint64_t{0} : (uint64_t{1} << end) - 1;
      if ((s = Corrections(r, dst, nz & band & before, p1, m1)) != kroStatusOk) return s;
      k = end;
      if (value != 0) {
        dst[own_pj_izigzag_index[k]] = static_cast<Kro16s>(value);
        nz |= uint64_t{1} << std::min(k, 63);  // position 64 is coefficient 63
      }
    }
  }
  if (st->eobRun > 0) {
    if (k <= Se && (s = Corrections(r, dst, nz & Band(k, Se), p1, m1)) != kroStatusOk) return s;
    --st->eobRun;
  }
  return kroStatusOk;
}

// The four exported calls, checks included: after CheckSource, Al (and the band)
// ranges -> -5, then the table and state null -> -8.
KroStatus DecodeDCFirst(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst, Kro16s* pLastDC,
                        int* pMarker, int Al, const DecSpec* pDcTable, DecState* pDecHuffState) {
  if (KroStatus c = CheckSource(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker)) return c;
  if (pLastDC == nullptr) return kroStatusNullPointer;
  if (BadAl(Al)) return kroStatusBadArgument;
  if (pDcTable == nullptr || pDecHuffState == nullptr) return kroStatusNullPointer;
  return WithReader(pSrc, srcLenBytes, pSrcCurrPos, pMarker, pDecHuffState,
                    [&](BitReader& r) { return DCFirst(r, pDst, pLastDC, Al, pDcTable); });
}

KroStatus DecodeDCRefine(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst, int* pMarker, int Al,
                         DecState* pDecHuffState) {
  if (KroStatus c = CheckSource(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker)) return c;
  if (BadAl(Al)) return kroStatusBadArgument;
  if (pDecHuffState == nullptr) return kroStatusNullPointer;
  return WithReader(pSrc, srcLenBytes, pSrcCurrPos, pMarker, pDecHuffState,
                    [&](BitReader& r) { return DCRefine(r, pDst, Al); });
}

KroStatus DecodeACFirst(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst, int* pMarker, int Ss,
                        int Se, int Al, const DecSpec* pAcTable, DecState* pDecHuffState) {
  if (KroStatus c = CheckSource(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker)) return c;
  if (BadAl(Al) || BadBand(Ss, Se)) return kroStatusBadArgument;
  if (pAcTable == nullptr || pDecHuffState == nullptr) return kroStatusNullPointer;
  return WithReader(pSrc, srcLenBytes, pSrcCurrPos, pMarker, pDecHuffState,
                    [&](BitReader& r) { return ACFirst(r, pDst, Ss, Se, Al, pAcTable, pDecHuffState); });
}

KroStatus DecodeACRefine(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst, int* pMarker, int Ss,
                         int Se, int Al, const DecSpec* pAcTable, DecState* pDecHuffState) {
  if (KroStatus c = CheckSource(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker)) return c;
  if (BadAl(Al) || BadBand(Ss, Se)) return kroStatusBadArgument;
  if (pAcTable == nullptr || pDecHuffState == nullptr) return kroStatusNullPointer;
  return WithReader(pSrc, srcLenBytes, pSrcCurrPos, pMarker, pDecHuffState,
                    [&](BitReader& r) { return ACRefine(r, pDst, Ss, Se, Al, pAcTable, pDecHuffState); });
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {
HWY_EXPORT(DecodeDCFirst);
HWY_EXPORT(DecodeDCRefine);
HWY_EXPORT(DecodeACFirst);
HWY_EXPORT(DecodeACRefine);
}  // namespace kro

KRO_EXPORT KroStatus kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                                int* pSrcCurrPos, Kro16s* pDst, Kro16s* pLastDC,
                                                                int* pMarker, int Al,
                                                                const KroiDecodeHuffmanSpec* pDcTable,
                                                                KroiDecodeHuffmanState* pDecHuffState) {
  return HWY_DYNAMIC_DISPATCH(kro::DecodeDCFirst)(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker, Al,
                                                  pDcTable, pDecHuffState);
}
KRO_EXPORT KroStatus kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                                 int* pSrcCurrPos, Kro16s* pDst, int* pMarker,
                                                                 int Al, KroiDecodeHuffmanState* pDecHuffState) {
  return HWY_DYNAMIC_DISPATCH(kro::DecodeDCRefine)(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker, Al,
                                                   pDecHuffState);
}
KRO_EXPORT KroStatus kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                                int* pSrcCurrPos, Kro16s* pDst, int* pMarker, int Ss,
                                                                int Se, int Al,
                                                                const KroiDecodeHuffmanSpec* pAcTable,
                                                                KroiDecodeHuffmanState* pDecHuffState) {
  return HWY_DYNAMIC_DISPATCH(kro::DecodeACFirst)(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker, Ss, Se, Al,
                                                  pAcTable, pDecHuffState);
}
KRO_EXPORT KroStatus kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                                 int* pSrcCurrPos, Kro16s* pDst, int* pMarker,
                                                                 int Ss, int Se, int Al,
                                                                 const KroiDecodeHuffmanSpec* pAcTable,
                                                                 KroiDecodeHuffmanState* pDecHuffState) {
  return HWY_DYNAMIC_DISPATCH(kro::DecodeACRefine)(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker, Ss, Se, Al,
                                                   pAcTable, pDecHuffState);
}
#endif  // HWY_ONCE
