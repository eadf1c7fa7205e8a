// SPDX-License-Identifier: BSD-3-Clause
// JPEG Huffman tables: encoder and decoder tables built from BITS/HUFFVAL,
// the bit-stream states and optimal tables from symbol statistics (T.81 K.2).
#include <string.h>

#include "bitio.h"
#include "kro_checks.h"

namespace kro {
namespace {

// T.81 C.1/C.2: code lengths in HUFFVAL order and their canonical codes. Returns the
// number of codes, or -1 when BITS lists more than 256. reject_overfull: refuse a
// length whose codes run past 2^length - 1 (the all-1-bits code included).
int CanonicalCodes(const Kro8u* bits, uint8_t size[257], uint32_t code[256], bool reject_overfull) {
  int total = 0;
  for (int i = 0; i < 16; ++i) {
    if (total + bits[i] > 256) return -1;
    for (int j = 0; j < bits[i]; ++j) size[total++] = static_cast<uint8_t>(i + 1);
  }
  size[total] = 0;
  uint32_t next = 0;
  int len = total > 0 ? size[0] : 0;
  for (int p = 0; p < total;) {
    while (p < total && size[p] == len) code[p++] = next++;
    if (reject_overfull && next >= (uint32_t{1} << len)) return -2;
    next <<= 1;
    ++len;
  }
  return total;
}

}  // namespace

KroStatus ownpj_EncodeHuffmanSpecInit(const Kro8u* pListBits, const Kro8u* pListVals, EncSpec* spec) {
  memset(spec, 0, sizeof(EncSpec));
  uint8_t size[257];
  uint32_t code[256];
  const int total = CanonicalCodes(pListBits, size, code, true);
  if (total < 0) return kroStatusJPEGHuffTableError;
  for (int i = 0; i < total; ++i) spec->entry[pListVals[i]] = (uint32_t{size[i]} << 16) | code[i];
  return kroStatusOk;
}

KroStatus ownpj_DecodeHuffmanSpecInit(const Kro8u* pListBits, const Kro8u* pListVals, DecSpec* spec) {
  memset(spec, 0, sizeof(DecSpec));
  uint8_t size[257];
  uint32_t code[256];
  const int total = CanonicalCodes(pListBits, size, code, false);
  if (total < 0) return kroStatusJPEGHuffTableError;
  for (int i = 0; i < total; ++i) spec->values[i] = pListVals[i];
  int p = 0;
  for (int L = 1; L <= 16; ++L) {
    const int n = pListBits[L - 1];
    if (n == 0) {
      spec->maxCode[L] = 0xFFFF;
      continue;
    }
    spec->valPtr[L] = static_cast<uint16_t>(p);
    spec->minCode[L] = static_cast<uint16_t>(code[p]);
    p += n;
    spec->maxCode[L] = static_cast<uint16_t>(code[p - 1]);
  }
  spec->maxCode[17] = 0xFFFF;
  // An over-full list yields codes that do not fit their length: they have no place
  // in the lookup (and would overrun it).
  for (int i = 0; i < total && size[i] <= 8; ++i) {
    const int shift = 8 - size[i];
    if (code[i] >= (uint32_t{1} << size[i])) continue;
    const uint32_t e = pListVals[i] | (uint32_t{size[i]} << 16);
    for (uint32_t k = code[i] << shift, end = (code[i] + 1) << shift; k < end; ++k) spec->fastLookup[k] = e;
  }
  return kroStatusOk;
}

void ownpj_EncodeHuffmanStateInit(EncState* state) { memset(state, 0, sizeof(EncState)); }

void ownpj_DecodeHuffmanStateInit(DecState* state) { memset(state, 0, 20); }

namespace {

KroStatus GetSize(int* pSize, int bytes) {
  if (pSize == nullptr) return kroStatusNullPointer;
  *pSize = bytes;
  return kroStatusOk;
}

template <class Spec, class Build>
KroStatus SpecInit(const Kro8u* bits, const Kro8u* vals, Spec* spec, Build build) {
  if (AnyNull(bits, vals, spec)) return kroStatusNullPointer;
  return build(bits, vals, spec);
}

template <class Spec, class Build>
KroStatus SpecInitAlloc(const Kro8u* bits, const Kro8u* vals, Spec** pp, Build build) {
  if (AnyNull(bits, vals, pp)) return kroStatusNullPointer;
  *pp = reinterpret_cast<Spec*>(krosMalloc_8u(static_cast<int>(sizeof(Spec))));
  if (*pp == nullptr) return kroStatusNullPointer;
  return build(bits, vals, *pp);
}

template <class State, class Clear>
KroStatus StateInit(State* state, Clear clear) {
  if (state == nullptr) return kroStatusNullPointer;
  clear(state);
  return kroStatusOk;
}

template <class State, class Clear>
KroStatus StateInitAlloc(State** pp, Clear clear) {
  if (pp == nullptr) return kroStatusNullPointer;
  *pp = reinterpret_cast<State*>(krosMalloc_8u(static_cast<int>(sizeof(State))));
  if (*pp == nullptr) return kroStatusNullPointer;
  clear(*pp);
  return kroStatusOk;
}

KroStatus FreeBuf(void* p) {
  if (p == nullptr) return kroStatusNullPointer;
  krosFree(p);
  return kroStatusOk;
}

}  // namespace

// T.81 K.2 (figures K.1 to K.4): code lengths by repeatedly merging the two least
// frequent subtrees; ties pick the highest symbol, counts above 10^9 are never
// picked. Symbol 256 is a reserved count of 1 so that no real code is all 1-bits.
KroStatus ownpj_EncodeHuffmanRawTableInit(const int* pStatistics, Kro8u* pListBits, Kro8u* pListVals) {
  int64_t freq[257];
  int codesize[257];
  int others[257];
  int bits[33] = {};
  for (int i = 0; i < 256; ++i) freq[i] = pStatistics[i];
  freq[256] = 1;
  for (int i = 0; i < 257; ++i) {
    codesize[i] = 0;
    others[i] = -1;
  }
  auto least = [&](int skip) {
    int best = -1;
    int64_t v = 1000000000;
    for (int i = 0; i < 257; ++i) {
      if (freq[i] != 0 && freq[i] <= v && i != skip) {
        v = freq[i];
        best = i;
      }
    }
    return best;
  };
  for (;;) {
    const int c1 = least(-1);
    const int c2 = least(c1);
    if (c1 < 0 || c2 < 0) break;
    freq[c1] += freq[c2];
    freq[c2] = 0;
    int c = c1;
    for (++codesize[c]; others[c] >= 0; ++codesize[c]) c = others[c];
    others[c] = c2;
    c = c2;
    for (++codesize[c]; others[c] >= 0; ++codesize[c]) c = others[c];
  }
  for (int i = 0; i < 257; ++i) {
    if (codesize[i] == 0) continue;
    if (codesize[i] > 32) return kroStatusJPEGHuffTableError;
    ++bits[codesize[i]];
  }
  // T.81 figure K.3: move pairs of over-long codes up until none exceeds 16 bits.
  for (int i = 32; i > 16; --i) {
    while (bits[i] > 0) {
      int j = i - 2;
      while (j > 0 && bits[j] == 0) --j;
      bits[i] -= 2;
      bits[i - 1] += 1;
      bits[j + 1] += 2;
      bits[j] -= 1;
    }
  }
  // Drop the reserved symbol's code, one of the longest.
  for (int i = 16; i > 0; --i) {
    if (bits[i] > 0) {
      --bits[i];
      break;
    }
  }
  for (int i = 0; i < 16; ++i) pListBits[i] = static_cast<Kro8u>(bits[i + 1]);
  int p = 0;
  for (int len = 1; len <= 32; ++len)
    for (int sym = 0; sym < 256; ++sym)
      if (codesize[sym] == len) pListVals[p++] = static_cast<Kro8u>(sym);
  return kroStatusOk;
}

}  // namespace kro

using namespace kro;

KRO_EXPORT KroStatus kroiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize) { return GetSize(pSize, sizeof(EncSpec)); }
KRO_EXPORT KroStatus kroiEncodeHuffmanSpecInit_JPEG_8u(const Kro8u* pListBits, const Kro8u* pListVals,
                                                       KroiEncodeHuffmanSpec* pEncHuffSpec) {
  return SpecInit(pListBits, pListVals, pEncHuffSpec, ownpj_EncodeHuffmanSpecInit);
}
KRO_EXPORT KroStatus kroiEncodeHuffmanSpecInitAlloc_JPEG_8u(const Kro8u* pListBits, const Kro8u* pListVals,
                                                            KroiEncodeHuffmanSpec** ppEncHuffSpec) {
  return SpecInitAlloc(pListBits, pListVals, ppEncHuffSpec, ownpj_EncodeHuffmanSpecInit);
}
KRO_EXPORT KroStatus kroiEncodeHuffmanSpecFree_JPEG_8u(KroiEncodeHuffmanSpec* pEncHuffSpec) {
  return FreeBuf(pEncHuffSpec);
}
KRO_EXPORT KroStatus kroiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize) { return GetSize(pSize, sizeof(EncState)); }
KRO_EXPORT KroStatus kroiEncodeHuffmanStateInit_JPEG_8u(KroiEncodeHuffmanState* pEncHuffState) {
  return StateInit(pEncHuffState, ownpj_EncodeHuffmanStateInit);
}
KRO_EXPORT KroStatus kroiEncodeHuffmanStateInitAlloc_JPEG_8u(KroiEncodeHuffmanState** ppEncHuffState) {
  return StateInitAlloc(ppEncHuffState, ownpj_EncodeHuffmanStateInit);
}
KRO_EXPORT KroStatus kroiEncodeHuffmanStateFree_JPEG_8u(KroiEncodeHuffmanState* pEncHuffState) {
  return FreeBuf(pEncHuffState);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize) { return GetSize(pSize, sizeof(DecSpec)); }
KRO_EXPORT KroStatus kroiDecodeHuffmanSpecInit_JPEG_8u(const Kro8u* pListBits, const Kro8u* pListVals,
                                                       KroiDecodeHuffmanSpec* pDecHuffSpec) {
  return SpecInit(pListBits, pListVals, pDecHuffSpec, ownpj_DecodeHuffmanSpecInit);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanSpecInitAlloc_JPEG_8u(const Kro8u* pListBits, const Kro8u* pListVals,
                                                            KroiDecodeHuffmanSpec** ppDecHuffSpec) {
  return SpecInitAlloc(pListBits, pListVals, ppDecHuffSpec, ownpj_DecodeHuffmanSpecInit);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanSpecFree_JPEG_8u(KroiDecodeHuffmanSpec* pDecHuffSpec) {
  return FreeBuf(pDecHuffSpec);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize) { return GetSize(pSize, sizeof(DecState)); }
KRO_EXPORT KroStatus kroiDecodeHuffmanStateInit_JPEG_8u(KroiDecodeHuffmanState* pDecHuffState) {
  return StateInit(pDecHuffState, ownpj_DecodeHuffmanStateInit);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanStateInitAlloc_JPEG_8u(KroiDecodeHuffmanState** ppDecHuffState) {
  return StateInitAlloc(ppDecHuffState, ownpj_DecodeHuffmanStateInit);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanStateFree_JPEG_8u(KroiDecodeHuffmanState* pDecHuffState) {
  return FreeBuf(pDecHuffState);
}

KRO_EXPORT KroStatus kroiEncodeHuffmanRawTableInit_JPEG_8u(const int pStatistics[256], Kro8u* pListBits,
                                                           Kro8u* pListVals) {
  if (AnyNull(pStatistics, pListBits, pListVals)) return kroStatusNullPointer;
  return ownpj_EncodeHuffmanRawTableInit(pStatistics, pListBits, pListVals);
}
