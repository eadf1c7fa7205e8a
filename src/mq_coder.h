// SPDX-License-Identifier: BSD-3-Clause
// The MQ arithmetic coder of T.800 Annex C and the raw (bypass) bit coder with their
// segment terminations and termination checks, as the code-block encoder and decoders
// use them. Header-only: the coding loops inline them. Decisions are coded in 19
// contexts, each kept as one byte: estimator state * 2 + MPS (see kMqTransitions).
#ifndef KROJ_SRC_MQ_CODER_H_
#define KROJ_SRC_MQ_CODER_H_

#include <string.h>

#include "kro_base.h"
#include "tables.h"

#ifndef KRO_T1_INLINE
#define KRO_T1_INLINE inline __attribute__((always_inline))
#endif

namespace kro {

inline constexpr int kMqContexts = 19;
inline constexpr int kCtxUniform = 0;
inline constexpr int kCtxRunLength = 1;

inline void MqResetContexts(uint8_t* ctx) {
  for (int i = 0; i < kMqContexts; ++i) {
    ctx[i] = static_cast<uint8_t>(owniInitialCtxIndexes_JPEG2K[i] * 2 + owniInitialMPS_JPEG2K[i]);
  }
}

// ---------------------------------------------------------------------------------------
// Byte source of a coded segment. Positions at or past the end read as 0xFF, which the
// MQ byte-in treats as a marker, so a decoder never looks beyond its segment.
struct ByteChain {
  const uint8_t* data;
  int32_t length;
  int32_t pos;
};

inline uint32_t byteChainGetCurr(const ByteChain& b) {
  return b.pos < b.length ? b.data[b.pos] : 0xFFu;
}
inline uint32_t byteChainGetNext(const ByteChain& b) {
  return b.pos + 1 < b.length ? b.data[b.pos + 1] : 0xFFu;
}
inline uint32_t byteChainRead(ByteChain& b) {
  const uint32_t v = byteChainGetCurr(b);
  if (b.pos < b.length)
    ++b.pos;
  else
    b.pos = b.length + 1;  // stays "past the end" without growing
  return v;
}
// Whether the byte that the last byteChainRead returned came from the segment.
inline bool byteChainIsLastReadedReal(const ByteChain& b) { return b.pos - 1 < b.length; }
inline bool byteChainHasMore(const ByteChain& b) { return b.pos < b.length; }

// ---------------------------------------------------------------------------------------
// MQ decoder. C is kept complemented (all-ones minus the T.800 register in its active
// bits): bytes enter as 255 - b and the LPS test becomes A - Qe <= C_high.
struct MqDecoder {
  ByteChain chain;
  uint32_t a;
  uint32_t c;
  uint32_t ct;
  uint8_t ctx[kMqContexts];
  int32_t marker;  // 0xFF followed by a byte above 0x8F met: only 1-bits from now on
};

// The decoder's A, C and CT copied into locals for the length of a pass; every decision
// goes through here, so they live in machine registers while a pass runs and return to
// the state at its end. The byte source, needed every eighth shift at most, stays in the
// state.
struct MqDecLocal {
  uint32_t a;
  uint32_t c;
  uint32_t ct;
  uint8_t* ctx;
  MqDecoder* d;

  explicit MqDecLocal(MqDecoder& dec) : a(dec.a), c(dec.c), ct(dec.ct), ctx(dec.ctx), d(&dec) {}
  void Store(MqDecoder& dec) const {
    dec.a = a;
    dec.c = c;
    dec.ct = ct;
  }

  // T.800 C.3.4 BYTEIN, complemented; a stuffed byte after 0xFF contributes 7 bits.
  KRO_T1_INLINE void ByteIn() {
    if (d->marker) {
      ct = 8;
      return;
    }
    const uint32_t b = byteChainGetCurr(d->chain);
    const uint32_t b1 = byteChainGetNext(d->chain);
    if (b < 0xFF) {
      ++d->chain.pos;
      c += 0xFF00u - (b1 << 8);
      ct = 8;
    } else if (b1 < 0x90) {
      ++d->chain.pos;
      c += 0xFE00u - (b1 << 9);
      ct = 7;
    } else {
      d->marker = 1;
      ct = 8;
    }
  }

  // T.800 C.3.3 RENORMD: shift until bit 15 of A is set, a byte entering whenever CT
  // has run out; done a run of shifts at a time (A is never 0 here).
  KRO_T1_INLINE void Renorm() {
    uint32_t n = static_cast<uint32_t>(__builtin_clz(a)) - 16u;
    if (n <= ct) {  // the usual case: no byte needed
      a <<= n;
      c <<= n;
      ct -= n;
      return;
    }
    while (n > 0) {
      if (ct == 0) ByteIn();
      const uint32_t k = n < ct ? n : ct;
      a <<= k;
      c <<= k;
      ct -= k;
      n -= k;
    }
  }

  // T.800 C.3.2 DECODE with the conditional exchanges. Written without branches: which
  // half of the interval the code value lies in is close to a coin toss on the
  // low bit-planes, and a mispredicted branch costs more than the few selects here.
  // An MPS that leaves bit 15 of A set changes neither the context nor the registers
  // beyond A and needs no renormalisation (the shift count is then 0).
  KRO_T1_INLINE int Decode(int cx) {
    uint8_t& st = ctx[cx];
    const uint32_t s = st;
    const MqTransition t = kMqTransitions[s];
    const uint32_t qe = t.qe;
    a -= qe;
    // All-ones masks: the code value lies in the upper (MPS) sub-interval of T.800's C
    // (here complemented), and the conditional exchange (A < Qe) applies; the decision
    // is 1 - MPS when the two agree.
    const uint32_t upper = static_cast<uint32_t>(static_cast<int32_t>((c >> 16) - a) >> 31);
    const uint32_t swap = static_cast<uint32_t>(static_cast<int32_t>(a - qe) >> 31);
    const uint32_t flip = ~(upper ^ swap);
    c -= (a << 16) & ~upper;
    a = upper ? a : qe;
    const uint32_t next = flip ? t.next_lps : t.next_mps;
    st = static_cast<uint8_t>((a & 0x8000u) ? s : next);
    Renorm();
    return static_cast<int>((s ^ flip) & 1u);
  }

  // The same with branches, for contexts whose decisions are mostly the MPS without
  // renormalisation (the cleanup pass, run lengths): there the branches predict well and
  // the short path is shorter.
  KRO_T1_INLINE int DecodeSkewed(int cx) {
    uint8_t& st = ctx[cx];
    const MqTransition t = kMqTransitions[st];
    int bit = st & 1;
    a -= t.qe;
    if (a <= (c >> 16)) {
      c -= a << 16;
      if (a < t.qe) {
        st = t.next_mps;
      } else {
        bit ^= 1;
        st = t.next_lps;
      }
      a = t.qe;
    } else {
      if (a & 0x8000u) return bit;
      if (a < t.qe) {
        bit ^= 1;
        st = t.next_lps;
      } else {
        st = t.next_mps;
      }
    }
    Renorm();
    return bit;
  }
};

inline void mqDecoderByteIn(MqDecoder& d) {
  MqDecLocal l(d);
  l.ByteIn();
  l.Store(d);
}

inline void mqDecoderRenorm(MqDecoder& d) {
  MqDecLocal l(d);
  l.Renorm();
  l.Store(d);
}

// T.800 C.3.5 INITDEC.
inline void mqDecoderInit(MqDecoder& d, const uint8_t* data, int32_t length) {
  d.chain = {data, length, 0};
  d.marker = 0;
  d.c = (0xFFu - byteChainGetCurr(d.chain)) << 16;
  mqDecoderByteIn(d);
  d.c <<= 7;
  d.ct -= 7;
  d.a = 0x8000u;
}

inline void mqDecoderResetCtx(MqDecoder& d) { MqResetContexts(d.ctx); }

inline int mqDecoderDecode(MqDecoder& d, int cx) {
  MqDecLocal l(d);
  const int bit = l.Decode(cx);
  l.Store(d);
  return bit;
}

// After the last decision of a predictably terminated segment (T.800 D.4.2): 1 if the
// segment is found corrupt, 0 if it is consistent. A correct segment leaves the decoder
// on the marker that its end produces, with the 1-bits the terminator added still
// unread: reading them must land in the LPS half of an interval of probability
// 2^-(CT-1).
inline int mqDecoderCheckErrPredTerm(MqDecoder& d) {
  if (byteChainGetCurr(d.chain) < 0xFFu && !d.marker) return 1;
  if (d.ct != 0) {
    if (!d.marker) return 1;
    if (d.ct == 1) return 0;
  } else {
    if (!d.marker && byteChainGetNext(d.chain) < 0x90u) return 1;
    d.ct = 8;
  }
  const uint32_t u = 0x8000u >> (d.ct - 1);
  const uint32_t a = d.a - u;
  if (a > (d.c >> 16)) {
    d.a = a;
    return 1;
  }
  d.c -= a << 16;
  d.a = u;
  mqDecoderRenorm(d);
  return 0;
}

// ---------------------------------------------------------------------------------------
// Raw (bypass) reader: bits most significant first; after a 0xFF byte the next byte's
// top bit is a stuffed 0 and is skipped.
struct RawReader {
  ByteChain chain;
  int32_t counter;  // next bit to read in cur; below 0: fetch a byte first
  uint32_t cur;
};

inline void RawReaderInit(RawReader& r, const uint8_t* data, int32_t length) {
  r.chain = {data, length, 0};
  r.counter = -1;
  r.cur = 0;
}

inline int RawReadBit(RawReader& r) {
  if (r.counter < 0) {
    r.counter = r.cur == 0xFFu ? 6 : 7;
    r.cur = byteChainRead(r.chain);
  }
  return static_cast<int>((r.cur >> r.counter--) & 1u);
}

// End of a raw segment: the rest of the last byte must hold the padding 0,1,0,1...
// Returns 1 if the segment is found corrupt.
inline int RawCheckTermination(RawReader& r) {
  if (r.counter >= 0) {
    const uint32_t mask = (2u << r.counter) - 1u;
    if ((r.cur & mask) != (0x55u >> (7 - r.counter))) return 1;
  } else if (r.cur == 0xFFu && byteChainIsLastReadedReal(r.chain)) {
    r.cur = byteChainRead(r.chain);
    r.counter = 6;
  }
  if (!byteChainHasMore(r.chain)) return 0;
  const uint32_t before = r.cur;
  const uint32_t extra = byteChainRead(r.chain);
  if (before < 0xFFu || r.counter != 0) return 0;
  if (extra >= 0x80u) return 1;
  return byteChainHasMore(r.chain) ? 1 : 0;
}

// ---------------------------------------------------------------------------------------
// MQ and raw encoder. Produced bytes go to a queue from which the code-block encoder
// delivers them; B, the newest byte, stays in the coder until the next byte-out because
// a carry may still change it. The queue is large enough for a batch of decisions coded
// in one go (at most three bytes each, see MqEncLocal::Encode).
inline constexpr int kMqQueueSize = 4096;
// A run of all-ones bytes kept back for minimal termination is released beyond this.
inline constexpr int kMqMaxHeldRun = 32;

struct MqEncoder {
  uint8_t queue[kMqQueueSize];
  int32_t qw;          // write index
  int32_t qr;          // read index
  uint32_t b;          // last produced byte, not yet released
  int32_t skip_first;  // the first B of an MQ segment is a dummy
  uint32_t a;
  uint32_t c;
  uint32_t ct;
  uint8_t ctx[kMqContexts];
  int32_t produced;  // byte-outs in this segment (the dummy included)
  uint32_t raw_acc;
  int32_t raw_pos;  // next bit position in raw_acc
  int32_t raw_last_ff;
  int32_t raw_count;
  int32_t hold_ones;  // keep trailing all-ones bytes queued (minimal termination)
};

// Start a segment: T.800 C.2.8 INITENC for MQ segments, an empty byte for raw ones.
inline void MqEncoderStartSegment(MqEncoder& e, bool raw, bool hold_ones) {
  e.qw = 0;
  e.qr = 0;
  e.b = 0;
  e.skip_first = raw ? 0 : 1;
  e.a = 0x8000u;
  e.c = 0;
  e.ct = 12;
  e.produced = 0;
  e.raw_acc = 0;
  e.raw_pos = 7;
  e.raw_last_ff = 0;
  e.raw_count = 0;
  e.hold_ones = hold_ones && !raw;
}

// Moves the undelivered bytes to the front of the queue.
inline void MqCompactQueue(MqEncoder& e) {
  const int n = e.qw - e.qr;
  memmove(e.queue, e.queue + e.qr, static_cast<size_t>(n));
  e.qr = 0;
  e.qw = n;
}

inline void MqQueuePush(MqEncoder& e, uint32_t byte) {
  if (e.qw == kMqQueueSize) MqCompactQueue(e);  // only held bytes can remain
  e.queue[e.qw++] = static_cast<uint8_t>(byte);
}

// The MQ encoder's registers in locals for the length of a coding loop; the caller
// guarantees queue room for three bytes per decision.
struct MqEncLocal {
  uint32_t a;
  uint32_t c;
  uint32_t ct;
  uint32_t b;
  int32_t qw;
  int32_t produced;
  uint8_t* queue;
  uint8_t* ctx;

  explicit MqEncLocal(MqEncoder& e)
      : a(e.a), c(e.c), ct(e.ct), b(e.b), qw(e.qw), produced(e.produced), queue(e.queue),
        ctx(e.ctx) {}
  void Store(MqEncoder& e) const {
    e.a = a;
    e.c = c;
    e.ct = ct;
    e.b = b;
    e.qw = qw;
    e.produced = produced;
  }

  // T.800 C.2.7 BYTEOUT with carry into B and a stuffed bit after 0xFF. B is an 8-bit
  // value; the new byte is the low 8 bits of the shifted register.
  KRO_T1_INLINE void ByteOut() {
    uint32_t next;
    if (b != 0xFFu && c >= 0x8000000u) {
      ++b;  // carry
      c &= 0x7FFFFFFu;
    }
    if (b == 0xFFu) {
      next = (c >> 20) & 0xFFu;
      c &= 0xFFFFFu;
      ct = 7;
    } else {
      next = (c >> 19) & 0xFFu;
      c &= 0x7FFFFu;
      ct = 8;
    }
    queue[qw++] = static_cast<uint8_t>(b);
    ++produced;
    b = next;
  }

  // T.800 C.2.5/C.2.6 CODEMPS/CODELPS, without branches on the decision: after
  // A = A - Qe, the conditional exchange leaves Qe in A exactly when (A < Qe) differs
  // from "the decision is the LPS", and otherwise adds Qe to C. Renormalisation (C.2.4:
  // shift, and a byte-out whenever CT reaches 0, also on the last shift) runs a stretch
  // of shifts at a time; A >= 1 needs at most 15 shifts, so at most three byte-outs.
  KRO_T1_INLINE void Encode(uint32_t bit, uint32_t cx) {
    uint8_t& st = ctx[cx];
    const uint32_t s = st;
    const MqTransition t = kMqTransitions[s];
    const uint32_t qe = t.qe;
    a -= qe;
    const uint32_t lps = bit ^ (s & 1u);
    const uint32_t swap = (a < qe ? 1u : 0u) ^ lps;
    c += qe & (swap - 1u);
    a = swap ? qe : a;
    const uint32_t after_mps = (a & 0x8000u) ? s : t.next_mps;
    st = static_cast<uint8_t>(lps ? t.next_lps : after_mps);
    Renorm();
  }

  // The same with branches, for passes whose decisions are mostly the MPS without
  // renormalisation (cleanup): there the branches predict well.
  KRO_T1_INLINE void EncodeSkewed(uint32_t bit, uint32_t cx) {
    uint8_t& st = ctx[cx];
    const MqTransition t = kMqTransitions[st];
    a -= t.qe;
    if (bit == (st & 1u)) {
      if (a & 0x8000u) {
        c += t.qe;
        return;
      }
      if (a < t.qe)
        a = t.qe;
      else
        c += t.qe;
      st = t.next_mps;
    } else {
      if (a < t.qe)
        c += t.qe;
      else
        a = t.qe;
      st = t.next_lps;
    }
    Renorm();
  }

  KRO_T1_INLINE void Renorm() {
    uint32_t n = static_cast<uint32_t>(__builtin_clz(a)) - 16u;
    if (n < ct) {  // the usual case: no byte-out
      a <<= n;
      c <<= n;
      ct -= n;
      return;
    }
    do {
      a <<= ct;
      c <<= ct;
      n -= ct;
      ByteOut();
    } while (n >= ct);
    a <<= n;
    c <<= n;
    ct -= n;
  }
};

inline void mqByteOut(MqEncoder& e) {
  if (e.qw > kMqQueueSize - 3) MqCompactQueue(e);
  MqEncLocal l(e);
  l.ByteOut();
  l.Store(e);
}

inline void mqEncode(MqEncoder& e, int bit, int cx) {
  if (e.qw > kMqQueueSize - 3) MqCompactQueue(e);
  MqEncLocal l(e);
  l.Encode(static_cast<uint32_t>(bit), static_cast<uint32_t>(cx));
  l.Store(e);
}

inline void RawPutBit(MqEncoder& e, int bit) {
  e.raw_acc |= static_cast<uint32_t>(bit & 1) << e.raw_pos;
  if (--e.raw_pos < 0) {
    MqQueuePush(e, e.raw_acc);
    e.raw_last_ff = e.raw_acc == 0xFFu;
    ++e.raw_count;
    e.raw_acc = 0;
    e.raw_pos = e.raw_last_ff ? 6 : 7;
  }
}

// A byte that adds only 1-bits to the code string: 0xFF, or 0x7F after 0xFF (a stuffed
// 0 followed by seven 1s). A decoder that runs out of bytes reads 1-bits, so such bytes
// at the end of a segment carry nothing.
inline bool OnesByte(const uint8_t* q, int i, int first) {
  if (q[i] == 0xFF) return true;
  return q[i] == 0x7F && i > first && q[i - 1] == 0xFF;
}

inline int TrailingOnesRun(const MqEncoder& e) {
  int i = e.qw;
  while (i > e.qr && OnesByte(e.queue, i - 1, e.qr)) --i;
  return e.qw - i;
}

// The bytes of the code value t followed by 1-bits, B first, appended to out after the
// undelivered queue; trailing bytes that add only 1-bits are dropped. t is on the scale
// of C << CT: bit 27 has the weight of B's last bit. Returns the resulting length.
inline int BuildTail(const MqEncoder& e, uint64_t t, uint8_t* out) {
  int n = 0;
  for (int i = e.qr; i < e.qw; ++i) out[n++] = e.queue[i];
  uint32_t b = e.b;
  if (b != 0xFFu && t >= (uint64_t{1} << 27)) {
    ++b;
    t -= uint64_t{1} << 27;
  }
  for (int k = 0; k < 8; ++k) {
    const uint64_t rest_ones = b == 0xFFu ? 0xFFFFFFFu : 0x7FFFFFFu;
    if (t == rest_ones) break;
    out[n++] = static_cast<uint8_t>(b);
    if (b == 0xFFu) {
      b = static_cast<uint32_t>(t >> 20) & 0xFFu;
      t = ((t & 0xFFFFFu) << 7) | 0x7Fu;
    } else {
      b = static_cast<uint32_t>(t >> 19) & 0xFFu;
      t = ((t & 0x7FFFFu) << 8) | 0xFFu;
    }
  }
  out[n++] = static_cast<uint8_t>(b);
  while (n > 0 && OnesByte(out, n - 1, 0)) --n;
  return n;
}

// Type 1: the shortest byte string whose value, followed by the 1-bits a decoder reads
// past the end, lies in the final interval [C, C + A). The values of the interval that
// are followed by the longest runs of 1-bits need the fewest bytes; the best few
// candidates are tried and the shortest result kept.
inline void TerminateMinimal(MqEncoder& e) {
  const uint64_t lo = uint64_t{e.c} << e.ct;
  const uint64_t hi = (uint64_t{e.c} + e.a) << e.ct;
  uint8_t best[kMqQueueSize + 16];
  uint8_t trial[kMqQueueSize + 16];
  int best_n = BuildTail(e, hi - 1, best);
  for (int j = 41; j >= 0; --j) {
    uint64_t m = (hi >> j) << j;
    for (int k = 0; k < 2 && m > lo; ++k, m -= uint64_t{1} << j) {
      const int n = BuildTail(e, m - 1, trial);
      if (n < best_n) {
        best_n = n;
        for (int i = 0; i < n; ++i) best[i] = trial[i];
      }
    }
  }
  e.qr = 0;
  e.qw = 0;
  for (int i = 0; i < best_n; ++i) MqQueuePush(e, best[i]);
  e.b = 0;
}

// Type 0: T.800 C.2.9 FLUSH with the low bits filled with 1s; the byte left in B is
// dropped (a final 0xFF, or the filler of the last byte-out).
inline void TerminateFlush(MqEncoder& e) {
  const uint32_t t = e.c | 0xFFFFu;
  e.c = t < e.c + e.a ? t : t - 0x8000u;
  e.c <<= e.ct;
  mqByteOut(e);
  e.c = (e.c | 0x7FFFu) << e.ct;
  mqByteOut(e);
  e.c |= 0x7FFFu;
  if (e.b != 0xFFu) {
    e.c <<= e.ct;
    mqByteOut(e);
  }
}

// Type 2: T.800 D.4.2 predictable termination; the byte left in B is dropped.
inline void TerminatePredictable(MqEncoder& e) {
  int k = 12 - static_cast<int>(e.ct);
  while (k > 0) {
    e.c <<= e.ct;
    mqByteOut(e);
    k -= static_cast<int>(e.ct);
  }
  if (e.b != 0xFFu) {
    e.c <<= e.ct;
    mqByteOut(e);
  }
}

// Terminates the current MQ segment with termination type 0 (flush), 1 (minimal) or
// 2 (predictable); any other value flushes. The final bytes are queued.
inline void MqTerminate(MqEncoder& e, int term_type) {
  if (term_type == kroMQTermMinimal)
    TerminateMinimal(e);
  else if (term_type == kroMQTermPredictable)
    TerminatePredictable(e);
  else
    TerminateFlush(e);
  e.hold_ones = 0;
}

// Completes the last byte of a raw segment with the pattern 0,1,0,1...; a segment that
// ends on 0xFF gets the byte 0x2A (stuffed 0 and the pattern) so no marker can form.
inline void RawTerminate(MqEncoder& e) {
  if (e.raw_pos != 7) {
    MqQueuePush(e, e.raw_acc | (0x55u >> (7 - e.raw_pos)));
    ++e.raw_count;
    e.raw_acc = 0;
    e.raw_pos = 7;
    e.raw_last_ff = 0;
  }
}

// Number of queued bytes that may be delivered now (the others are held back).
inline int MqDeliverable(const MqEncoder& e) {
  const int queued = e.qw - e.qr;
  if (!e.hold_ones || queued == 0) return queued;
  const int run = TrailingOnesRun(e);
  return run >= kMqMaxHeldRun ? queued : queued - run;
}

}  // namespace kro

#endif  // KROJ_SRC_MQ_CODER_H_
