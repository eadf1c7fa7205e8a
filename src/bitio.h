// SPDX-License-Identifier: BSD-3-Clause
// JPEG entropy-coded segment bit I/O shared by the baseline, progressive and lossless
// Huffman coders: the layouts of the caller-visible tables and states, the bit writers
// (0xFF/0x00 stuffing, padding with 1-bits) and the bit readers (marker detection and
// the two-stage symbol lookup of T.81 F.2.2.3).
#ifndef KROJ_SRC_BITIO_H_
#define KROJ_SRC_BITIO_H_

#include <string.h>

#include <bit>

#include <hwy/base.h>

#include "kro_base.h"
#include "tables.h"

// The public header declares these as opaque; callers only size them, but the byte
// layout is fixed so that buffers stay interchangeable between library versions.

// One entry per symbol: (code length << 16) | code. Length 0: the symbol has no code.
struct KroiEncodeHuffmanSpec {
  uint32_t entry[256];
};

struct KroiDecodeHuffmanSpec {
  uint16_t values[256];     // HUFFVAL in order of increasing code length
  uint32_t fastLookup[256]; // next 8 bits -> symbol | (length << 16); 0: longer code
  uint16_t minCode[18];     // first code of each length 1..16
  uint16_t maxCode[18];     // last code of each length; 65535: no code of that length
  uint16_t valPtr[17];      // index into values of the first symbol of each length
};

struct KroiEncodeHuffmanState {
  uint64_t accumulator;  // low 32 bits: last byte written (31..24), pending bits from bit 23 down
  int32_t bitCount;      // pending bits, 0..7 between calls
  int32_t eobRun;        // progressive: blocks ended since the last EOBRUN was written
  int32_t correctionBitCount;
  uint8_t correctionBits[1024];  // progressive refinement: one bit (0/1) per byte
};

struct KroiDecodeHuffmanState {
  uint64_t accumulator;  // low 32 bits: the last four data bytes read
  int32_t bitCount;      // unread bits; the next one is bit bitCount - 1
  int32_t eobRun;        // progressive: bands still to skip
  int32_t endPosition;   // zig-zag index just past the last decoded run of a block
};

static_assert(sizeof(KroiEncodeHuffmanSpec) == 1024);
static_assert(sizeof(KroiDecodeHuffmanSpec) == 1644);
static_assert(sizeof(KroiEncodeHuffmanState) == 1048);
static_assert(sizeof(KroiDecodeHuffmanState) == 24);

namespace kro {

using EncSpec = KroiEncodeHuffmanSpec;
using DecSpec = KroiDecodeHuffmanSpec;
using EncState = KroiEncodeHuffmanState;
using DecState = KroiDecodeHuffmanState;

// Internal results of the Direct decoder; never returned to a caller.
inline constexpr int kDirectBadCode = -1;
inline constexpr int kDirectEndOfData = -256;

// Correction bits buffered in a refinement state before EOBRUN must be written.
inline constexpr int kMaxCorrectionBits = 937;
inline constexpr int kMaxEobRun = 32767;

// True when none of the four bytes of w is 0xFF.
HWY_INLINE bool NoFF(uint32_t w) {
  const uint32_t inv = ~w;  // a 0xFF byte of w is a zero byte of inv
  return ((inv - 0x01010101u) & ~inv & 0x80808080u) == 0;
}

// The low n bits of v, n = 0..31.
constexpr uint32_t LowBits(uint32_t v, int n) { return v & ((uint32_t{1} << n) - 1); }

// T.81 F.1.2.1 magnitude category: bits of |v|, for |v| up to 65535.
inline int ownpj_get_csize(int32_t v) {
  const uint32_t a = static_cast<uint32_t>(v < 0 ? -static_cast<int64_t>(v) : v);
  return a < 256 ? own_pj_csize[a] : own_pj_csize[(a >> 8) & 255] + 8;
}

// T.81 G.1.2.2 EOBRUN size: floor(log2 n), n = 1..32767.
inline int ownpj_get_eobsize(int32_t n) {
  return n < 256 ? own_pj_eobsize[n] : own_pj_eobsize[(n >> 8) & 511] + 8;
}

// The s extra bits that follow a category: v itself when v >= 0, the low s bits of
// v - 1 (the one's complement of |v|) when v < 0. v + (v >> 31) is v - 1 exactly for
// negative v, so no branch is needed.
constexpr uint32_t ExtraBits(int32_t v, int s) {
  return LowBits(static_cast<uint32_t>(v) + static_cast<uint32_t>(v >> 31), s);
}

// Magnitude category by counting bits (T.81 F.1.2.1), equal to ownpj_get_csize for
// |v| up to 65535, the range of every difference and coefficient coded here. The
// highest set bit of 2|v| + 1 is the category, 0 included, without a test for 0.
inline int Category(int32_t v) {
  const uint32_t a = static_cast<uint32_t>(v < 0 ? -v : v);
  return __builtin_clz(2 * a + 1) ^ 31;
}

// T.81 F.2.2.1 EXTEND: s received bits v (s = 1..15) become a signed value, v plus
// own_pj_lowest_coef[s] = 1 - 2^s when bit s - 1 of v is clear. Computed from the
// bit itself: no table load, no branch.
HWY_INLINE int32_t Extend(uint32_t v, int s) {
  const uint32_t top_clear = ((v >> (s - 1)) & 1) ^ 1;
  return static_cast<int32_t>(v - (top_clear << s) + top_clear);
}

// ---------------------------------------------------------------------------------
// Writers

// Buffered writer, one symbol at a time (length 1..16). The code enters a 32-bit
// window below the pending bits; every completed byte (bits 23..16) is stored, with a
// 0x00 after each 0xFF. The destination fills up -> -62: the bytes already stored and
// the advanced position stay, the state keeps its window from before the call.
inline KroStatus ownpj_write_bits_jpeg(uint32_t code, int length, Kro8u* pDst, int dstLenBytes,
                                       int* pDstCurrPos, EncState* state) {
  // Length 0: the symbol has no code. Above 16 only a corrupted table gets here.
  if (length <= 0 || length > 16) return kroStatusJPEGHuffTableError;
  int n = state->bitCount + length;
  uint32_t acc = static_cast<uint32_t>(state->accumulator) | (LowBits(code, length) << (24 - n));
  int pos = *pDstCurrPos;
  for (; n >= 8; n -= 8, acc <<= 8) {
    const uint8_t b = static_cast<uint8_t>(acc >> 16);
    if (pos >= dstLenBytes) {
      *pDstCurrPos = pos;
      return kroStatusJPEGOutOfBuffer;
    }
    pDst[pos++] = b;
    if (b == 0xFF) {
      if (pos >= dstLenBytes) {
        *pDstCurrPos = pos;
        return kroStatusJPEGOutOfBuffer;
      }
      pDst[pos++] = 0;
    }
  }
  *pDstCurrPos = pos;
  state->accumulator = acc;
  state->bitCount = n;
  return kroStatusOk;
}

// Direct writer at bit position *pBitPos: the byte there keeps its upper (pos & 7)
// bits, everything after the written bits in the last touched byte is cleared, and a
// completed 0xFF is followed by 0x00 (which advances the position by 8 more). A
// length below 1 writes nothing.
inline void ownpj_write_bits_direct_jpeg(uint32_t code, int length, Kro8u* pDst, int* pBitPos) {
  if (length < 1 || length > 16) return;  // above 16: only from a corrupted table
  const int p = *pBitPos;
  Kro8u* d = pDst + (p >> 3);
  const int free_bits = 8 - (p & 7);
  const uint32_t kept = *d & (0xFFu << free_bits) & 0xFF;
  code = LowBits(code, length);
  *pBitPos = p + length;
  if (length < free_bits) {
    *d = static_cast<Kro8u>(kept | (code << (free_bits - length)));
    return;
  }
  int rem = length - free_bits;
  uint32_t b = kept | (code >> rem);
  for (;;) {
    *d++ = static_cast<Kro8u>(b);
    if (b == 0xFF) {
      *d++ = 0;
      *pBitPos += 8;
    }
    if (rem < 8) break;
    rem -= 8;
    b = (code >> rem) & 0xFF;
  }
  *d = static_cast<Kro8u>(LowBits(code, rem) << (8 - rem));
}

// Pads the pending bits to a byte with 1-bits (T.81 F.1.2.3), then re-initialises the
// state whatever the outcome.
inline KroStatus FlushState(Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, EncState* state) {
  const KroStatus st = ownpj_write_bits_jpeg(0x7F, 7, pDst, dstLenBytes, pDstCurrPos, state);
  memset(state, 0, sizeof(EncState));
  return st;
}

// Sinks give the block coders one interface for writing symbols:
//   Symbol(table, sym, extra, nbits): the code of sym (sym may exceed 255: no code),
//     then nbits extra bits;  Bits(v, n): n raw bits.

// Checked sink: every write goes through ownpj_write_bits_jpeg.
class CheckedSink {
 public:
  CheckedSink(Kro8u* dst, int len, int* pos, EncState* st) : dst_(dst), len_(len), pos_(pos), st_(st) {}
  KroStatus Symbol(const EncSpec* t, int sym, uint32_t extra, int nbits) {
    const uint32_t e = sym < 256 ? t->entry[sym] : 0;
    KroStatus s = ownpj_write_bits_jpeg(e & 0xFFFF, static_cast<int>(e >> 16), dst_, len_, pos_, st_);
    if (s == kroStatusOk && nbits > 0) s = Bits(extra, nbits);
    return s;
  }
  KroStatus Bits(uint32_t v, int n) { return ownpj_write_bits_jpeg(v, n, dst_, len_, pos_, st_); }
  void Finish() {}

 private:
  Kro8u* dst_;
  int len_;
  int* pos_;
  EncState* st_;
};

// Fast sink for a destination with room for the worst case of the call plus eight
// bytes. Bits gather in a 64-bit window and leave eight bytes at a time (one store
// when none of them is 0xFF). Finish() must run on every exit: it writes the
// remaining whole bytes and stores the state the checked sink would have left,
// because without a full buffer the only failure is a missing code, which writes
// nothing. That state keeps the last byte written in bits 31..24 of its accumulator,
// as the byte-wise writer does.
class FastSink {
 public:
  FastSink(Kro8u* dst, int* pos, EncState* st) : base_(dst), pos_(pos), st_(st) {
    const int n = st->bitCount & 7;
    const uint32_t acc = static_cast<uint32_t>(st->accumulator);
    buf_ = (acc >> (24 - n)) & ((1u << n) - 1);
    free_ = 64 - n;
    last_ = acc >> 24;
    p_ = dst + *pos;
  }
  // The code of sym followed by the low nbits (0..16) of extra.
  HWY_INLINE KroStatus Symbol(const EncSpec* t, int sym, uint32_t extra, int nbits) {
    const uint32_t e = t->entry[sym & 255];
    const uint32_t len = e >> 16;
    if ((len - 1 > 15) | (sym > 255)) return kroStatusJPEGHuffTableError;  // no code
    Put((LowBits(e, static_cast<int>(len)) << nbits) | LowBits(extra, nbits), static_cast<int>(len) + nbits);
    return kroStatusOk;
  }
  HWY_INLINE KroStatus Bits(uint32_t v, int n) {
    Put(LowBits(v, n), n);
    return kroStatusOk;
  }
  // The whole bytes left in the window (0..8) go out in one eight-byte store when none
  // is 0xFF: the bytes after them are loaded and stored back unchanged, which is safe
  // because the fast sink only runs with room for eight bytes past anything it writes.
  // This replaces a byte loop whose length changed from block to block.
  void Finish() {
    int n = 64 - free_;  // 0..64
    const int whole = n >> 3;
    const uint64_t top = buf_ << ((64 - n) & 63);  // whole bytes first; the rest is masked off
    const uint64_t keep = whole == 8 ? 0 : ~uint64_t{0} >> (8 * whole);
    const uint64_t inv = ~top | keep;
    if (((inv - 0x0101010101010101u) & ~inv & 0x8080808080808080u) == 0) [[likely]] {
      const uint64_t mem_keep = __builtin_bswap64(keep);
      const uint64_t be = __builtin_bswap64(top);
      uint64_t old;
      memcpy(&old, p_, 8);
      const uint64_t out = (be & ~mem_keep) | (old & mem_keep);
      memcpy(p_, &out, 8);
      p_ += whole;
      n &= 7;
      last_ = whole != 0 ? static_cast<uint32_t>(buf_ >> n) & 0xFF : last_;
    } else {
      for (; n >= 8; n -= 8) Byte(static_cast<uint8_t>(buf_ >> (n - 8)));
    }
    *pos_ = static_cast<int>(p_ - base_);
    st_->accumulator = last_ << 24 | LowBits(static_cast<uint32_t>(buf_), n) << (24 - n);
    st_->bitCount = n;
  }

 private:
  // bits holds exactly n (0..32) significant bits. The window holds 64 - free_
  // pending bits at its bottom; bits above them are stale.
  HWY_INLINE void Put(uint64_t bits, int n) {
    free_ -= n;
    if (free_ >= 0) [[likely]] {
      buf_ = (buf_ << n) | bits;
      return;
    }
    Word((buf_ << (n + free_)) | (bits >> -free_));
    free_ += 64;
    buf_ = bits;
  }
  HWY_INLINE void Word(uint64_t w) {
    const uint64_t inv = ~w;  // a 0xFF byte of w is a zero byte of inv
    if (((inv - 0x0101010101010101u) & ~inv & 0x8080808080808080u) == 0) [[likely]] {
      const uint64_t be = __builtin_bswap64(w);
      memcpy(p_, &be, 8);
      p_ += 8;
      last_ = static_cast<uint32_t>(w & 0xFF);
    } else {
      for (int i = 56; i >= 0; i -= 8) Byte(static_cast<uint8_t>(w >> i));
    }
  }
  void Byte(uint8_t b) {
    *p_++ = b;
    if (b == 0xFF) *p_++ = 0;
    last_ = b;
  }

  uint64_t buf_;
  int free_;
  uint32_t last_;
  Kro8u* p_;
  Kro8u* base_;
  int* pos_;
  EncState* st_;
};

// Counts the symbols the baseline encoder writes (T.81 K.2 statistics); the "table"
// of each symbol is its counter array. Indices past 255 count nothing.
struct CountingSink {
  HWY_INLINE KroStatus Symbol(int* counts, int sym, uint32_t, int) {
    if (sym < 256) ++counts[sym];
    return kroStatusOk;
  }
};

// Direct sink: no capacity, no failure; a symbol without a code is skipped.
class DirectSink {
 public:
  DirectSink(Kro8u* dst, int* bitpos) : dst_(dst), bitpos_(bitpos) {}
  KroStatus Symbol(const EncSpec* t, int sym, uint32_t extra, int nbits) {
    const uint32_t e = sym < 256 ? t->entry[sym] : 0;
    ownpj_write_bits_direct_jpeg(e & 0xFFFF, static_cast<int>(e >> 16), dst_, bitpos_);
    ownpj_write_bits_direct_jpeg(extra, nbits, dst_, bitpos_);
    return kroStatusOk;
  }
  void Finish() {}

 private:
  Kro8u* dst_;
  int* bitpos_;
};

// Runs body(sink) with the fast sink when the destination has worst_case bytes free
// after the current position, with the checked sink otherwise.
template <class Body>
KroStatus WithSink(Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, EncState* state, int worst_case,
                   Body&& body) {
  const int pos = *pDstCurrPos;
  if (pos >= 0 && static_cast<int64_t>(dstLenBytes) - pos >= worst_case) {
    FastSink sink(pDst, pDstCurrPos, state);
    const KroStatus st = body(sink);
    sink.Finish();
    return st;
  }
  CheckedSink sink(pDst, dstLenBytes, pDstCurrPos, state);
  return body(sink);
}

// Bytes one baseline block can need: 7 pending bits, DC 16 + 16 bits, 63 AC values of
// at most 16 + 16 bits (ZRL and EOB never cost more than the values they stand for):
// 2055 bits, of which 256 whole bytes leave, doubled for stuffing: 512, and eight
// more for the fast sink's last store.
inline constexpr int kBlockWorstCaseBytes = 520;

// Bit k: zig-zag position k of the block holds a non-zero value. Plain version, for
// the checked and Direct paths; the fast paths compute it with vectors.
inline uint64_t ZigZagNonZero(const Kro16s* src) {
  uint64_t nz = 0;
  for (int i = 0; i < 64; i += 4) {
    uint64_t group;
    memcpy(&group, src + i, sizeof(group));
    if (group == 0) continue;
    for (int j = i; j < i + 4; ++j)
      if (src[j] != 0) nz |= uint64_t{1} << zigzag_index_Fwd[j];
  }
  return nz;
}

// T.81 F.1.2.1 and F.1.2.2: one baseline block in natural order, with nz its
// ZigZagNonZero mask. The DC difference is computed in 32 bits; each AC run is a
// count of trailing zeros of the mask. Table is whatever the sink takes for a
// symbol's table (an encoder spec, or a counter array). A value of -32768 after a run
// of 15 makes symbol 256, which the sinks treat as having no code.
template <class Table, class Sink>
HWY_INLINE KroStatus EncodeBlock(const Kro16s* src, uint64_t nz, Kro16s* last_dc, Table dc, Table ac,
                                 Sink& sink) {
  const int32_t diff = int32_t{src[0]} - *last_dc;
  *last_dc = src[0];
  int s = Category(diff);
  KroStatus st = sink.Symbol(dc, s, ExtraBits(diff, s), s);
  if (st != kroStatusOk) return st;
  nz &= ~uint64_t{1};
  int next = 1;  // zig-zag position just after the last value written
  while (nz != 0) {
    const int k = std::countr_zero(nz);
    nz &= nz - 1;
    int r = k - next;
    if (r > 15) [[unlikely]] {
      for (; r > 15; r -= 16) {
        st = sink.Symbol(ac, 0xF0, 0, 0);  // ZRL
        if (st != kroStatusOk) return st;
      }
    }
    const int32_t v = src[own_pj_izigzag_index[k]];
    s = Category(v);
    st = sink.Symbol(ac, r * 16 + s, ExtraBits(v, s), s);
    if (st != kroStatusOk) return st;
    next = k + 1;
  }
  // Trailing zeros end in EOB, never in ZRL; a block ending in a value has no EOB.
  return next < 64 ? sink.Symbol(ac, 0x00, 0, 0) : kroStatusOk;
}

// ---------------------------------------------------------------------------------
// Buffered reader. The working copy lives in registers during a call; Commit() stores
// it back (the state keeps consumed bits whatever the outcome).
//
// The refill rule fixes what a caller sees after every call: bytes enter one at a
// time, only when an operation finds fewer bits than it needs, and only until 25 or
// more are held. The fast refill below takes the same bytes in one step when the next
// four are at hand and none is 0xFF; anything else (the end of the source, stuffing,
// fill bytes, markers) goes byte by byte. Either way the position, accumulator and
// count are those of the byte-wise rule.

struct BitReader {
  const Kro8u* src;
  int len;
  int pos;
  int* marker;
  uint32_t acc;
  int bits;

  // A count outside 0..32 can only come from a corrupted state; it is clamped so that
  // no shift goes out of range.
  BitReader(const Kro8u* s, int n, const int* p, int* m, const DecState* st)
      : src(s),
        len(n),
        pos(*p),
        marker(m),
        acc(static_cast<uint32_t>(st->accumulator)),
        bits(st->bitCount < 0 ? 0 : st->bitCount > 32 ? 32 : st->bitCount) {}
  void Commit(int* p, DecState* st) const {
    *p = pos;
    st->accumulator = acc;
    st->bitCount = bits;
  }

  // The next n bits (n <= 16). Bits missing after a marker read as zeros and leave
  // the count at 0, so the next refill reports the shortage.
  HWY_INLINE uint32_t Take(int n) {
    uint32_t v;
    if (bits >= n) [[likely]] {
      bits -= n;
      v = acc >> bits;
    } else {
      v = acc << (n - bits);
      bits = 0;
    }
    return LowBits(v, n);
  }
};

// Four bytes at p, the first in the top byte.
HWY_INLINE uint32_t LoadBE32(const Kro8u* p) {
  uint32_t w;
  memcpy(&w, p, sizeof(w));
  return __builtin_bswap32(w);
}

// Byte-wise refill, off the common path: see ownpj_FillBitBuffer.
[[gnu::noinline]] inline KroStatus FillBytes(BitReader& r, int n) {
  while (r.pos < r.len) {
    uint32_t b = r.src[r.pos++];
    if (b == 0xFF) {
      for (;;) {
        if (r.pos >= r.len) return kroStatusJPEGOutOfBuffer;
        const uint32_t c = r.src[r.pos++];
        if (c == 0) break;  // stuffed byte: data 0xFF
        if (c != 0xFF) {    // 0xFF 0xFF...: fill bytes before a marker
          *r.marker = static_cast<int>(c);
          return kroStatusOk;
        }
      }
    }
    r.acc = (r.acc << 8) | b;
    r.bits += 8;
    if (r.bits >= 25) return kroStatusOk;
  }
  return n > r.bits ? kroStatusJPEGOutOfBuffer : kroStatusOk;
}


// Refill until at least 25 bits are held (n: bits the caller needs). A marker stops
// reading for good (*marker = its code) and is not an error by itself; asking for more
// bits than held after it is (-63). The source running out while bits are needed: -62.
HWY_INLINE KroStatus ownpj_FillBitBuffer(BitReader& r, int n) {
  if (*r.marker != 0) return n > r.bits ? kroStatusJPEGDataError : kroStatusOk;
  if (r.bits >= 25) return kroStatusOk;
  if (r.len - r.pos >= 4) [[likely]] {
    const uint32_t w = LoadBE32(r.src + r.pos);
    if (NoFF(w)) [[likely]] {
      const int k = (32 - r.bits) >> 3;  // bytes to reach 25 bits: 1..4
      r.acc = static_cast<uint32_t>(((uint64_t{r.acc} << 32) | w) >> (32 - 8 * k));
      r.pos += k;
      r.bits += 8 * k;
      return kroStatusOk;
    }
  }
  // The slow path works on a copy, so that the reader itself never has its address
  // taken and stays in registers.
  BitReader t = r;
  const KroStatus st = FillBytes(t, n);
  r = t;
  return st;
}

// Canonical-limit search from code length L (T.81 F.2.2.3 DECODE), for codes the
// 8-bit lookup does not hold.
inline KroStatus ownpj_DecodeHuffLongCodes(BitReader& r, int* sym, const DecSpec* t, int L) {
  if (r.bits < L) {
    const KroStatus st = ownpj_FillBitBuffer(r, L);
    if (st != kroStatusOk) return st;
  }
  uint32_t code = r.Take(L);
  for (;;) {
    if (t->maxCode[L] != 0xFFFF && code <= t->maxCode[L]) {
      const int64_t idx = int64_t{t->valPtr[L]} + code - t->minCode[L];
      if (idx < 0 || idx > 255) break;  // only an inconsistent (over-full) table gets here
      *sym = t->values[idx];
      return kroStatusOk;
    }
    if (L == 16) break;
    if (r.bits == 0) {
      const KroStatus st = ownpj_FillBitBuffer(r, 1);
      if (st != kroStatusOk) return st;
    }
    code = (code << 1) | r.Take(1);
    ++L;
  }
  *sym = 0;
  return kroStatusJPEGDataError;
}

// The long-code search off the common path: lengths from L (1 when fewer than 8 bits
// are left before a marker or the end of the source, 9 after a lookup miss).
[[gnu::noinline]] inline KroStatus DecodeLongSymbolCopy(BitReader& r, int* sym, const DecSpec* t, int L) {
  return ownpj_DecodeHuffLongCodes(r, sym, t, L);
}
HWY_INLINE KroStatus DecodeLongSymbol(BitReader& r, int* sym, const DecSpec* t, int L) {
  BitReader c = r;  // see ownpj_FillBitBuffer
  const KroStatus st = DecodeLongSymbolCopy(c, sym, t, L);
  r = c;
  return st;
}

// The next symbol (0..255), or a status (below 0).
HWY_INLINE int DecodeSymbol(BitReader& r, const DecSpec* t) {
  int sym;
  if (r.bits < 8) {
    const KroStatus st = ownpj_FillBitBuffer(r, 0);
    if (st != kroStatusOk) return st;
    if (r.bits < 8) [[unlikely]] {
      const KroStatus lst = DecodeLongSymbol(r, &sym, t, 1);
      return lst != kroStatusOk ? lst : sym;
    }
  }
  const uint32_t e = t->fastLookup[(r.acc >> (r.bits - 8)) & 255];
  if (e == 0) [[unlikely]] {
    const KroStatus lst = DecodeLongSymbol(r, &sym, t, 9);
    return lst != kroStatusOk ? lst : sym;
  }
  r.bits -= static_cast<int>(e >> 16);
  return static_cast<int>(e & 0xFF);  // symbols are bytes
}

HWY_INLINE KroStatus ownpj_DecodeHuffSymbol(BitReader& r, int* sym, const DecSpec* t) {
  const int v = DecodeSymbol(r, t);
  if (v < 0) return static_cast<KroStatus>(v);
  *sym = v;
  return kroStatusOk;
}

// s extra bits (s = 1..16), refilling first when fewer are held.
HWY_INLINE KroStatus ReceiveBits(BitReader& r, int s, uint32_t* v) {
  if (r.bits < s) {
    const KroStatus st = ownpj_FillBitBuffer(r, s);
    if (st != kroStatusOk) return st;
  }
  *v = r.Take(s);
  return kroStatusOk;
}

}  // namespace kro

#endif  // KROJ_SRC_BITIO_H_
