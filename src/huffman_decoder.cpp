// SPDX-License-Identifier: BSD-3-Clause
// Baseline JPEG Huffman decoding of 8x8 blocks (T.81 F.2.2): the buffered decoder over
// a source of known length, and the Direct decoder that reads until a marker with a
// bit accumulator kept by the caller.
//
// Where the time goes (instruction counts on the blocks of a photo, about 7 AC values
// per block): refilling the bit window byte by byte took a quarter of a block, the
// variable shifts of symbol lookup and extra bits most of the rest. Refills take up to
// four plain bytes in one step (exactly the bytes the byte-wise rule takes, so every
// position and count a caller sees is unchanged), and the kernels are compiled per
// target so that the shifts and masks use the BMI2 forms where the CPU has them.
// After that (about 430 instructions and 3.4 mispredicted branches per block, 8 AC
// values): the chain from one table load to the next bounds an AC value, and the
// branches on whether a refill is due and on the end of the block are the
// mispredictions. Values are therefore taken from a left-aligned window together
// with their symbol; refilling without that branch (loading every time) cost more
// instructions and a longer chain than the mispredictions it saved.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "huffman_decoder.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include <string.h>

#include "bitio.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The 64 coefficients cleared with whole vectors (a byte-count memset of 128 bytes
// compiles to a string instruction with a long start-up).
HWY_INLINE void ClearBlock(Kro16s* dst) {
  const hn::ScalableTag<int16_t> d;
  for (size_t i = 0; i < 64; i += hn::Lanes(d)) hn::StoreU(hn::Zero(d), d, dst + i);
}

// T.81 F.2.2.1 and F.2.2.2. The cursor k is the zig-zag position of the next
// coefficient; positions still unvisited are 64 - k, so endPosition is k (0 after a
// failure in the DC part). A run carries k up to 63 + 15 + 1.
HWY_INLINE KroStatus DecodeBlock(BitReader& r, Kro16s* dst, Kro16s* last_dc, const DecSpec* dc, const DecSpec* ac,
                                 DecState* state) {
  ClearBlock(dst);
  int sym = DecodeSymbol(r, dc);  // a status when negative
  if (sym > 0 && (sym & 15) != 0) {
    const int s = sym & 15;
    uint32_t v;
    const KroStatus st = ReceiveBits(r, s, &v);
    if (st == kroStatusOk) *last_dc = Wrap16(*last_dc + Extend(v, s));
    sym = st != kroStatusOk ? st : sym;
  }
  if (sym < 0) {
    state->endPosition = 0;
    return static_cast<KroStatus>(sym);
  }
  dst[0] = *last_dc;
  int k = 1;
  KroStatus st = kroStatusOk;
  // The unread bits, left-aligned: the next lookup index is the top byte, and a symbol
  // with its value leaves by one shift, so that from one table load to the next the
  // dependency chain is load, add, shift, shift; the decoder waits on this chain
  // (indexing through the count, and taking the value in a second step, made it three
  // operations longer). Refills, EOB and ZRL, codes longer than 8 bits and the bits
  // before a marker take the exact reader, after which the window is rebuilt.
  uint64_t win = (uint64_t{r.acc} << 32) << (32 - r.bits);
  for (;;) {
    const uint32_t e = r.bits >= 8 ? ac->fastLookup[win >> 56] : 0;
    const int len = static_cast<int>(e >> 16);  // 1..8 from a built table
    const int size = static_cast<int>(e & 15);
    if (size != 0 && r.bits >= len + size) [[likely]] {  // the value is held too
      k += static_cast<int>(e >> 4) & 15;
      const uint32_t v = static_cast<uint32_t>((win << len) >> (64 - size));
      win <<= len + size;
      r.bits -= len + size;
      if (k < 63) [[likely]] {
        dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, size));
        continue;
      }
      if (k >= 72) return kroStatusError;
      dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, size));
      break;
    }
    if (e != 0) {
      r.bits -= len;
      win <<= len & 63;
      sym = static_cast<int>(e & 0xFF);
    } else {
      sym = DecodeSymbol(r, ac);
      if (sym < 0) {
        st = static_cast<KroStatus>(sym);
        break;
      }
      win = (uint64_t{r.acc} << 32) << (32 - r.bits);
    }
    const int run = sym >> 4;
    const int s = sym & 15;
    if (s > 0) {
      k += run;
      uint32_t v;
      if (r.bits >= s) [[likely]] {
        v = static_cast<uint32_t>(win >> (64 - s));
        win <<= s;
        r.bits -= s;
      } else {
        st = ReceiveBits(r, s, &v);
        if (st != kroStatusOk) {
          ++k;  // the value's position counts as visited
          break;
        }
        win = (uint64_t{r.acc} << 32) << (32 - r.bits);
      }
      if (k < 63) [[likely]] {
        dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, s));
        continue;
      }
      // The last position, or past it: 64..71 land on coefficient 63, a run further
      // out is refused.
      if (k >= 72) return kroStatusError;
      dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, s));
      break;
    } else if (run < 15) {
      break;  // EOB
    } else {
      k += 16;  // ZRL
      if (k >= 64) break;
    }
  }
  state->endPosition = k;
  return st;
}

// The whole call, checks included, so that the exported function only dispatches.
KroStatus DecodeBaseline(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst, Kro16s* pLastDC,
                         int* pMarker, const DecSpec* pDcTable, const DecSpec* pAcTable, DecState* pDecHuffState) {
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (srcLenBytes < 0) return kroStatusBadArgument;
  if (pSrcCurrPos == nullptr || pDst == nullptr || pLastDC == nullptr || pMarker == nullptr ||
      pDcTable == nullptr || pAcTable == nullptr || pDecHuffState == nullptr)
    return kroStatusNullPointer;
  if (*pSrcCurrPos < 0) return kroStatusBadArgument;  // would read before pSrc
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

// Byte-wise refill: a 0xFF followed by fill bytes and a 0x00 is a data 0xFF, followed
// by anything else a marker, whose bytes count as read.
[[gnu::noinline]] int PrefetchBytes(DirectReader& r) {
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

// Refill to 25 bits or more, unless a marker was met (now or earlier). Returns the
// bit count. The source has no length but ends in a marker, so two bytes are always
// there (a data byte is followed at least by the marker, a 0xFF by its partner),
// and when neither is 0xFF the two after them are too: up to four plain bytes enter
// at once, exactly those the byte-wise rule would take.
HWY_INLINE int ownpj_PrefetchBits(DirectReader& r) {
  if (*r.marker > 0 || r.bits >= 25) return r.bits;
  const Kro8u* p = r.src + r.read;
  if (p[0] != 0xFF && p[1] != 0xFF) [[likely]] {
    const int k = (32 - r.bits) >> 3;  // bytes to reach 25 bits: 1..4
    uint32_t w = uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16;
    if (k <= 2 || (p[2] != 0xFF && p[3] != 0xFF)) [[likely]] {
      if (k > 2) w |= uint32_t{p[2]} << 8 | p[3];
      r.acc = static_cast<uint32_t>(((uint64_t{r.acc} << 32) | w) >> (32 - 8 * k));
      r.read += k;
      r.bits += 8 * k;
      return r.bits;
    }
  }
  DirectReader t = r;  // the reader itself never has its address taken
  const int bits = PrefetchBytes(t);
  r = t;
  return bits;
}

// Codes longer than 8 bits. Results: a symbol, kDirectBadCode when nothing matches
// within 16 bits, kDirectEndOfData when the data ends first.
[[gnu::noinline]] int ownpj_DecodeLongBits(DirectReader& r, const DecSpec* t, int L) {
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
HWY_INLINE int ownpj_HuffDecode(DirectReader& r, const DecSpec* t) {
  if (r.bits < 8 && ownpj_PrefetchBits(r) <= 0) return kDirectEndOfData;
  const uint32_t idx = (r.bits >= 8 ? r.acc >> (r.bits - 8) : r.acc << (8 - r.bits)) & 255;
  const uint32_t e = t->fastLookup[idx];
  if (e == 0) [[unlikely]] {
    DirectReader c = r;
    const int sym = ownpj_DecodeLongBits(c, t, 9);
    r = c;
    return sym;
  }
  r.bits -= static_cast<int>(e >> 16);
  return static_cast<int>(e & 0xFFFF);
}

// s extra bits; false when the data ends first.
HWY_INLINE bool DirectReceive(DirectReader& r, int s, uint32_t* v) {
  if (r.bits < s && ownpj_PrefetchBits(r) < s) return false;
  r.bits -= s;
  *v = LowBits(r.acc >> r.bits, s);
  return true;
}

HWY_INLINE KroStatus DecodeDirectBlock(DirectReader& r, Kro16s* dst, Kro16s* last_dc, const DecSpec* dc,
                                       const DecSpec* ac, bool* end_of_data) {
  ClearBlock(dst);
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
  // As in the buffered decoder: a symbol with its value, both within the bits held,
  // leaves a left-aligned window in one shift; anything else takes the exact reader.
  uint64_t win = r.bits > 0 ? (uint64_t{r.acc} << 32) << (32 - r.bits) : 0;
  for (int k = 1; k < 64;) {
    const uint32_t e = r.bits >= 8 ? ac->fastLookup[win >> 56] : 0;
    const int len = static_cast<int>(e >> 16);  // 1..8 from a built table
    const int size = static_cast<int>(e & 15);
    if (size != 0 && r.bits >= len + size) [[likely]] {
      k += static_cast<int>(e >> 4) & 15;
      const uint32_t v = static_cast<uint32_t>((win << len) >> (64 - size));
      win <<= len + size;
      r.bits -= len + size;
      if (k >= 72) return kroStatusError;
      dst[own_pj_izigzag_index[k++]] = static_cast<Kro16s>(Extend(v, size));
      continue;
    }
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
    win = r.bits > 0 ? (uint64_t{r.acc} << 32) << (32 - r.bits) : 0;
  }
  return kroStatusOk;
}

KroStatus DecodeDirect(const Kro8u* pSrc, int* pSrcBitsLen, Kro16s* pDst, Kro16s* pLastDC, int* pMarker,
                       Kro32u* pPrefetchedBits, int* pNumValidPrefetchedBits, const DecSpec* pDcTable,
                       const DecSpec* pAcTable) {
  if (pSrc == nullptr || pSrcBitsLen == nullptr) return kroStatusNullPointer;
  if (*pSrcBitsLen < 0) return kroStatusBadArgument;
  if (pDst == nullptr || pLastDC == nullptr || pMarker == nullptr || pPrefetchedBits == nullptr ||
      pNumValidPrefetchedBits == nullptr)
    return kroStatusNullPointer;
  if (*pNumValidPrefetchedBits < 0) return kroStatusBadArgument;
  if (pDcTable == nullptr || pAcTable == nullptr) return kroStatusNullPointer;
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

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {
HWY_EXPORT(DecodeBaseline);
HWY_EXPORT(DecodeDirect);
}  // namespace kro

KRO_EXPORT KroStatus kroiDecodeHuffman8x8_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                        int* pSrcCurrPos, Kro16s* pDst, Kro16s* pLastDC,
                                                        int* pMarker,
                                                        const KroiDecodeHuffmanSpec* pDcTable,
                                                        const KroiDecodeHuffmanSpec* pAcTable,
                                                        KroiDecodeHuffmanState* pDecHuffState) {
  return HWY_DYNAMIC_DISPATCH(kro::DecodeBaseline)(pSrc, srcLenBytes, pSrcCurrPos, pDst, pLastDC, pMarker,
                                                   pDcTable, pAcTable, pDecHuffState);
}

KRO_EXPORT KroStatus kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
    const Kro8u* pSrc, int* pSrcBitsLen, Kro16s* pDst, Kro16s* pLastDC, int* pMarker,
    Kro32u* pPrefetchedBits, int* pNumValidPrefetchedBits, const KroiDecodeHuffmanSpec* pDcTable,
    const KroiDecodeHuffmanSpec* pAcTable) {
  return HWY_DYNAMIC_DISPATCH(kro::DecodeDirect)(pSrc, pSrcBitsLen, pDst, pLastDC, pMarker, pPrefetchedBits,
                                                 pNumValidPrefetchedBits, pDcTable, pAcTable);
}
#endif  // HWY_ONCE
