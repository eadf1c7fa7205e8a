// SPDX-License-Identifier: BSD-3-Clause
// Baseline JPEG Huffman decoding of 8x8 blocks (T.81 F.2.2): the buffered decoder over
// a source of known length, and the Direct decoder that reads until a marker with a
// bit accumulator kept by the caller.
#include <string.h>

#include "bitio.h"
#include "kro_checks.h"

namespace kro {
namespace {

// T.81 F.2.2.1 and F.2.2.2. endPosition: 64 minus the zig-zag positions left
// unvisited (0 after a failure in the DC part).
KroStatus DecodeBlock(BitReader& r, Kro16s* dst, Kro16s* last_dc, const DecSpec* dc, const DecSpec* ac,
                      DecState* state) {
  memset(dst, 0, 64 * sizeof(Kro16s));
  int sym;
  KroStatus st = ownpj_DecodeHuffSymbol(r, &sym, dc);
  if (st == kroStatusOk && (sym & 15) != 0) {
    const int s = sym & 15;
    uint32_t v;
    st = ReceiveBits(r, s, &v);
    if (st == kroStatusOk) *last_dc = Wrap16(*last_dc + Extend(v, s));
  }
  if (st != kroStatusOk) {
    state->endPosition = 0;
    return st;
  }
  dst[0] = *last_dc;
  int remaining = 63;
  int k = 1;
  for (;;) {
    st = ownpj_DecodeHuffSymbol(r, &sym, ac);
    if (st != kroStatusOk) break;
    const int run = sym >> 4;
    const int s = sym & 15;
    if (s > 0) {
      remaining -= run + 1;
      k += run;
      uint32_t v;
      st = ReceiveBits(r, s, &v);
      if (st != kroStatusOk) break;
      // Positions 64..71 land on coefficient 63; a run further out is refused.
      if (k >= 72) return kroStatusError;
      dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, s));
    } else if (run < 15) {
      break;  // EOB
    } else {
      remaining -= 16;  // ZRL
      k += 16;
    }
    if (remaining < 1) break;
  }
  state->endPosition = 64 - remaining;
  return st;
}

KroStatus DecodeBaseline(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst,
                         Kro16s* pLastDC, int* pMarker, const DecSpec* pDcTable, const DecSpec* pAcTable,
                         DecState* pDecHuffState) {
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (srcLenBytes < 0) return kroStatusBadArgument;
  if (AnyNull(pSrcCurrPos, pDst, pLastDC, pMarker, pDcTable, pAcTable, pDecHuffState))
    return kroStatusNullPointer;
  if (*pSrcCurrPos < 0) return kroStatusBadArgument;
  BitReader r(pSrc, srcLenBytes, pSrcCurrPos, pMarker, pDecHuffState);
  const KroStatus st = DecodeBlock(r, pDst, pLastDC, pDcTable, pAcTable, pDecHuffState);
  r.Commit(pSrcCurrPos, pDecHuffState);
  return st;
}

// ---------------------------------------------------------------------------------
// Direct decoder. The source has no length: reading stops only at a marker.

struct DirectReader {
  const Kro8u* src;
  int64_t read;  // bytes looked at from src, marker bytes included
  uint32_t acc;
  int bits;
  int* marker;
};

// Refill to 25 bits or more, unless a marker was met (now or earlier). Returns the
// bit count.
int ownpj_PrefetchBits(DirectReader& r) {
  if (*r.marker > 0 || r.bits >= 25) return r.bits;
  for (;;) {
    const uint32_t b = r.src[r.read++];
    if (b == 0xFF) {
      uint32_t c;
      do c = r.src[r.read++];
      while (c == 0xFF);
      if (c != 0) {
        *r.marker = static_cast<int>(c);
        return r.bits;
      }
    }
    r.acc = (r.acc << 8) | b;
    r.bits += 8;
    if (r.bits >= 25) return r.bits;
  }
}

// Codes longer than 8 bits. Results: a symbol, kDirectBadCode when nothing matches
// within 16 bits, kDirectEndOfData when the data ends first.
int ownpj_DecodeLongBits(DirectReader& r, const DecSpec* t, int L) {
  if (r.bits < L) {
    const int held = ownpj_PrefetchBits(r);
    if (held <= 0) return kDirectEndOfData;
    if (held < L) return kDirectBadCode;  // bits needed past a marker
  }
  r.bits -= L;
  uint32_t code = LowBits(r.acc >> r.bits, L);
  for (;;) {
    if (t->maxCode[L] != 0xFFFF && code <= t->maxCode[L]) {
      const int64_t idx = int64_t{t->valPtr[L]} + code - t->minCode[L];
      return idx < 0 || idx > 255 ? kDirectBadCode : t->values[idx];
    }
    if (L == 16) return kDirectBadCode;
    if (r.bits == 0 && ownpj_PrefetchBits(r) == 0) return kDirectEndOfData;
    --r.bits;
    code = (code << 1) | ((r.acc >> r.bits) & 1);
    ++L;
  }
}

// With fewer than 8 bits left before a marker, the lookup index is padded with zeros
// and the code found is taken whole: its length may exceed the bits held, leaving a
// negative count, after which every refill yields nothing (existing callers rely on
// this reading of the last bits before a marker).
int ownpj_HuffDecode(DirectReader& r, const DecSpec* t) {
  if (r.bits < 8 && ownpj_PrefetchBits(r) <= 0) return kDirectEndOfData;
  const uint32_t idx = (r.bits >= 8 ? r.acc >> (r.bits - 8) : r.acc << (8 - r.bits)) & 255;
  const uint32_t e = t->fastLookup[idx];
  if (e == 0) return ownpj_DecodeLongBits(r, t, 9);
  r.bits -= static_cast<int>(e >> 16);
  return static_cast<int>(e & 0xFFFF);
}

// s extra bits; false when the data ends first.
bool DirectReceive(DirectReader& r, int s, uint32_t* v) {
  if (r.bits < s && ownpj_PrefetchBits(r) < s) return false;
  r.bits -= s;
  *v = LowBits(r.acc >> r.bits, s);
  return true;
}

KroStatus DecodeDirectBlock(DirectReader& r, Kro16s* dst, Kro16s* last_dc, const DecSpec* dc,
                            const DecSpec* ac, bool* end_of_data) {
  memset(dst, 0, 64 * sizeof(Kro16s));
  int sym = ownpj_HuffDecode(r, dc);
  if (sym == kDirectEndOfData) {
    *end_of_data = true;
    return kroStatusOk;
  }
  if (sym < 0) return kroStatusJPEGDataError;
  if ((sym & 15) != 0) {
    const int s = sym & 15;
    uint32_t v;
    if (!DirectReceive(r, s, &v)) return kroStatusJPEGOutOfBuffer;
    *last_dc = Wrap16(*last_dc + Extend(v, s));
  }
  dst[0] = *last_dc;
  for (int k = 1; k < 64;) {
    sym = ownpj_HuffDecode(r, ac);
    if (sym == kDirectEndOfData) {
      *end_of_data = true;
      break;
    }
    if (sym < 0) return kroStatusJPEGDataError;
    const int run = sym >> 4;
    const int s = sym & 15;
    if (s > 0) {
      k += run;
      uint32_t v;
      if (!DirectReceive(r, s, &v)) return kroStatusJPEGOutOfBuffer;
      if (k >= 72) return kroStatusError;
      dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, s));
    } else if (run != 15) {
      break;  // EOB
    } else {
      k += 16;  // ZRL
    }
  }
  return kroStatusOk;
}

KroStatus DecodeBaselineDirect(const Kro8u* pSrc, int* pSrcBitsLen, Kro16s* pDst, Kro16s* pLastDC,
                               int* pMarker, Kro32u* pPrefetchedBits, int* pNumValidPrefetchedBits,
                               const DecSpec* pDcTable, const DecSpec* pAcTable) {
  if (AnyNull(pSrc, pSrcBitsLen)) return kroStatusNullPointer;
  if (*pSrcBitsLen < 0) return kroStatusBadArgument;
  if (AnyNull(pDst, pLastDC, pMarker, pPrefetchedBits, pNumValidPrefetchedBits))
    return kroStatusNullPointer;
  if (*pNumValidPrefetchedBits < 0) return kroStatusBadArgument;
  if (AnyNull(pDcTable, pAcTable)) return kroStatusNullPointer;
  const int start = *pSrcBitsLen >> 3;
  // The accumulator holds 32 bits; a larger count can only come from a corrupt caller.
  DirectReader r{pSrc + start, 0, *pPrefetchedBits, *pNumValidPrefetchedBits < 32 ? *pNumValidPrefetchedBits : 32,
                 pMarker};
  bool end_of_data = false;
  const KroStatus st = DecodeDirectBlock(r, pDst, pLastDC, pDcTable, pAcTable, &end_of_data);
  *pPrefetchedBits = r.acc;
  *pNumValidPrefetchedBits = end_of_data ? 0 : r.bits;
  if (st == kroStatusOk) *pSrcBitsLen = static_cast<int>((start + r.read) * 8);
  return st;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiDecodeHuffman8x8_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                        int* pSrcCurrPos, Kro16s* pDst, Kro16s* pLastDC,
                                                        int* pMarker,
                                                        const KroiDecodeHuffmanSpec* pDcTable,
                                                        const KroiDecodeHuffmanSpec* pAcTable,
                                                        KroiDecodeHuffmanState* pDecHuffState) {
  return kro::DecodeBaseline(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker, pDcTable,
                             pAcTable, pDecHuffState);
}

KRO_EXPORT KroStatus kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
    const Kro8u* pSrc, int* pSrcBitsLen, Kro16s* pDst, Kro16s* pLastDC, int* pMarker,
    Kro32u* pPrefetchedBits, int* pNumValidPrefetchedBits, const KroiDecodeHuffmanSpec* pDcTable,
    const KroiDecodeHuffmanSpec* pAcTable) {
  return kro::DecodeBaselineDirect(pSrc, pSrcBitsLen, pDst, pLastDC, pMarker, pPrefetchedBits,
                                   pNumValidPrefetchedBits, pDcTable, pAcTable);
}
