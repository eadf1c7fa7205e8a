// SPDX-License-Identifier: BSD-3-Clause
// Code-block encoder (T.800 Annex D): loading runs every coding pass and records the
// binary decisions with their contexts; the bytes are MQ- or raw-coded lazily while the
// caller drains them, pass by pass, with the rate, distortion and segment bookkeeping a
// rate allocator needs.
#include <limits.h>
#include <string.h>

#include <algorithm>

#include "codeblock_impl.h"
#include "kro_checks.h"
#include "mq_coder.h"

namespace kro::enc {

inline constexpr int kMaxPasses = 109;
inline constexpr Kro32u kEncodeId = 0x4c4d5344u;  // "DSML"
// Decision bytes reserved per column of four rows: 31 planes of at most 10 decisions each
// plus the segmentation symbols, with ample room.
inline constexpr int64_t kDecisionsPerColumn = 1090;

// Per-block coding and delivery bookkeeping.
struct Book {
  MqEncoder mq;
  Kro32s term_type;
  Kro32s pass;        // pass being delivered
  Kro32s cursor;      // next recorded decision to code
  Kro32s pass_end;    // end of the current pass's decisions
  Kro32s terminated;  // the current segment's termination has run
  Kro32s delivered;   // bytes handed to the caller since loading
  Kro32s pass_start;  // value of delivered when the current pass started
  Kro32s n_passes;
  Kro32s n_segments;
  Kro32s pass_ndec[kMaxPasses];
  Kro32s pass_len[kMaxPasses];
  Kro8u pass_raw[kMaxPasses];
  Kro32u rate[kMaxPasses];
  Kro32s total_dec;
  Kro32s reset_ctx;
  Kro32s term_all;
};

}  // namespace kro::enc

struct KroiEncodeState_JPEG2K {
  Kro32u id;
  kro::enc::Book* book;
  Kro32s dist_mant[kro::enc::kMaxPasses];
  Kro32s dist_exp[kro::enc::kMaxPasses];
  Kro32s cur_exp;
  Kro32s pass_index;
  Kro32s flags;
  uint32_t* nbh;
  Kro8u* decisions;  // per decision: context << 1 | bit
  int64_t decision_bytes;
  int64_t nbh_bytes;
};

namespace kro::enc {

namespace {

using namespace t1;
using State = KroiEncodeState_JPEG2K;

// Encoder side of the pass scans: each decision is the coefficient's own bit, recorded
// with its context; newly significant and refined coefficients add their distortion
// reduction to the pass. Magnitudes are read with their sign bit: the plane bits and the
// distortion indexes never reach bit 31.
struct PassRecorder {
  const Kro32s* src;
  int step;
  const Kro32s* row[4];
  int p;
  bool raw;
  Kro8u* out;  // next decision
  uint32_t dist;
  const Kro32s* fs;
  const Kro32s* fm;
  int s1, s2;  // distortion index: ((v >> s1) << s2) & mask

  KRO_T1_INLINE void Stripe(int y0, int rows) {
    for (int r = 0; r < rows; ++r) row[r] = RowPtr(src, step, y0 + r);
  }
  KRO_T1_INLINE uint32_t Value(int x, int r) const { return LoadCoef(row[r] + x); }
  KRO_T1_INLINE void Put(uint32_t ctx, uint32_t bit) {
    *out++ = static_cast<Kro8u>((ctx << 1) | bit);
  }
  // Six (Fs) or seven (Fm) magnitude bits from plane p down; missing planes below 0 read 0.
  KRO_T1_INLINE uint32_t Index(uint32_t v, uint32_t mask) const { return ((v >> s1) << s2) & mask; }

  KRO_T1_INLINE int Bit(int ctx, int x, int r) {
    const uint32_t b = (Value(x, r) >> p) & 1u;
    Put(raw ? 0u : static_cast<uint32_t>(ctx), b);
    return static_cast<int>(b);
  }
  KRO_T1_INLINE uint32_t Sign(uint32_t lut, int x, int r) {
    const uint32_t s = Value(x, r) >> 31;
    if (raw)
      Put(0, s);
    else
      Put(lut & 0xFF, s ^ (lut >> 31));
    return s;
  }
  KRO_T1_INLINE void Significant(int x, int r, uint32_t) {
    dist += static_cast<uint32_t>(fs[Index(Value(x, r), 63)]);
  }
  KRO_T1_INLINE void Refine(int ctx, int x, int r) {
    const uint32_t v = Value(x, r);
    Put(raw ? 0u : static_cast<uint32_t>(ctx), (v >> p) & 1u);
    dist += static_cast<uint32_t>(fm[Index(v, 127)]);
  }
  // Significance propagation of a stripe column with no branch on which rows are
  // candidates (their pattern changes from column to column and defeats prediction):
  // every row writes a decision slot, kept only for a candidate.
  template <int kRows>
  KRO_T1_INLINE void PropagationColumn(uint32_t* col, ptrdiff_t pitch, bool causal,
                                       const Kro32u* zc, int x) {
    uint32_t c0 = col[0], c1 = col[pitch];
    if (((PropagationCandidates(c0) & RowsMask0(kRows)) |
         (PropagationCandidates(c1) & RowsMask1(kRows))) == 0)
      return;
    PropagationRow<0>(col, pitch, causal, zc, x, c0, c1);
    if constexpr (kRows > 1) PropagationRow<1>(col, pitch, causal, zc, x, c0, c1);
    if constexpr (kRows > 2) PropagationRow<2>(col, pitch, causal, zc, x, c0, c1);
    if constexpr (kRows > 3) PropagationRow<3>(col, pitch, causal, zc, x, c0, c1);
    col[0] = c0;
    col[pitch] = c1;
  }
  template <int R>
  KRO_T1_INLINE void PropagationRow(uint32_t* col, ptrdiff_t pitch, bool causal,
                                    const Kro32u* zc, int x, uint32_t& c0, uint32_t& c1) {
    const uint32_t st = RowState<R>(c0, c1);
    const uint32_t cand = (st & (kSig | kNbr)) == kNbr ? 1u : 0u;
    const uint32_t v = Value(x, R);
    const uint32_t bit = (v >> p) & 1u;
    *out = static_cast<Kro8u>(((raw ? 0u : zc[st & 0xFF]) << 1) | bit);
    out += cand;
    MarkRow<R>(c0, c1, kVisited & (0u - cand));
    if (bit & cand) {
      const uint32_t neg = Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, R);
      Significant(x, R, neg);
      SetSignificant<R>(col, pitch, causal, neg, c0, c1);
    }
  }

  // Cleanup of row R, likewise without a branch on whether it is still to be coded.
  template <int R>
  KRO_T1_INLINE void CleanupRow(uint32_t st, uint32_t* col, ptrdiff_t pitch, bool causal,
                                const Kro32u* zc, int x, uint32_t& c0, uint32_t& c1) {
    const uint32_t cand = (st & (kSig | kVisited)) == 0 ? 1u : 0u;
    const uint32_t v = Value(x, R);
    const uint32_t bit = (v >> p) & 1u;
    *out = static_cast<Kro8u>((zc[st & 0xFF] << 1) | bit);
    out += cand;
    if (bit & cand) {
      const uint32_t neg = Sign(SignCodingLUT[(st >> 4) & 0x1FF], x, R);
      Significant(x, R, neg);
      SetSignificant<R>(col, pitch, causal, neg, c0, c1);
    }
  }

  // Refinement of row R without a branch on whether it is a candidate; returns the
  // state bits to set (the refined flag for a candidate).
  template <int R>
  KRO_T1_INLINE uint32_t RefinementRow(uint32_t st, int x) {
    const uint32_t cand = (st & (kSig | kVisited)) == kSig ? 1u : 0u;
    const uint32_t v = Value(x, R);
    *out = static_cast<Kro8u>(((raw ? 0u : MagnRefineLUT[st & 0x1FF]) << 1) | ((v >> p) & 1u));
    out += cand;
    dist += static_cast<uint32_t>(fm[Index(v, 127)]) & (0u - cand);
    return kRefined & (0u - cand);
  }

  KRO_T1_INLINE int RunLength(int x) {
    const uint32_t any = ((Value(x, 0) | Value(x, 1) | Value(x, 2) | Value(x, 3)) >> p) & 1u;
    Put(kCtxRunLength, any);
    return static_cast<int>(any);
  }
  KRO_T1_INLINE int RunPosition(int x) {
    int r = 0;
    while (!((Value(x, r) >> p) & 1u)) ++r;
    Put(kCtxUniform, static_cast<uint32_t>(r >> 1));
    Put(kCtxUniform, static_cast<uint32_t>(r & 1));
    return r;
  }
};

enum class PassType { kPropagation, kRefinement, kCleanup };

struct Coding {
  State* st;
  Book* bk;
  Nbh nbh;
  const Kro32u* zc;
  const Kro32s* src;
  int step;
  int p_low;
  bool lossless;
  bool seg_sym;
};

// Runs one pass at plane p and records its decisions, raw flag and distortion.
void RunPass(Coding& c, PassType type, int p, bool raw) {
  Book& bk = *c.bk;
  const bool exact = c.lossless && p == c.p_low;
  Kro8u* const first = c.st->decisions + bk.total_dec;
  PassRecorder rec{c.src,
                   c.step,
                   {},
                   p,
                   raw,
                   first,
                   0,
                   exact ? FsLossless_LUT.data() : FsLossy_LUT.data(),
                   exact ? FmLossless_LUT.data() : FmLossy_LUT.data(),
                   p >= 6 ? p - 6 : 0,
                   p >= 6 ? 0 : 6 - p};
  if (type == PassType::kPropagation) {
    SignificancePropagationScan(c.nbh, c.zc, rec);
  } else if (type == PassType::kRefinement) {
    MagnitudeRefinementScan(c.nbh, rec);
  } else {
    CleanupScan(c.nbh, c.zc, rec);
    if (c.seg_sym) {
      for (uint32_t bit : {1u, 0u, 1u, 0u}) rec.Put(kCtxUniform, bit);
    }
  }
  const int k = bk.n_passes++;
  const Kro32s n = static_cast<Kro32s>(rec.out - first);
  bk.pass_ndec[k] = n;
  bk.pass_raw[k] = raw ? 1 : 0;
  bk.total_dec += n;
  c.st->dist_mant[k] = static_cast<Kro32s>(rec.dist);
  c.st->dist_exp[k] = c.st->cur_exp;
  c.st->pass_index = bk.n_passes;
}

bool SegmentEndsAt(const Book& bk, int k) {
  return bk.term_all || k == bk.n_passes - 1 || bk.pass_raw[k] != bk.pass_raw[k + 1];
}

// Coder reset at the start of a code-block: registers, queue, contexts, counts.
void encBufReset(Book& bk, int flags, int term_type) {
  memset(&bk, 0, sizeof(bk));
  bk.term_type = term_type;
  bk.reset_ctx = (flags & kFlagReset) != 0;
  bk.term_all = (flags & kFlagTermAll) != 0;
  MqEncoderStartSegment(bk.mq, false, term_type == kroMQTermMinimal);
  MqResetContexts(bk.mq.ctx);
}

// Hands queued bytes to the caller; the dummy first byte of an MQ segment is dropped.
int Deliver(Book& bk, Kro8u* dst, int room) {
  MqEncoder& e = bk.mq;
  if (e.skip_first && e.qw > e.qr) {
    ++e.qr;
    e.skip_first = 0;
  }
  int n = MqDeliverable(e);
  if (n > room) n = room;
  if (n > 0) memcpy(dst, e.queue + e.qr, static_cast<size_t>(n));
  e.qr += n;
  bk.delivered += n;
  return n;
}

// Rate of the pass just delivered: bytes so far plus what the coder still holds. For an
// unterminated MQ pass that is B and the register bits: 4 bytes, 5 once the register
// holds more than 22 bits (23 when B is below 254), one less while B is still the
// dummy, plus any bytes held back in the queue. A raw pass holds at most a partial
// byte. After an exact rate, earlier estimates above it are lowered to it.
void encBufRateCalc(Book& bk, bool segment_end) {
  const int k = bk.pass;
  const MqEncoder& e = bk.mq;
  int est = 0;
  if (!segment_end) {
    if (bk.pass_raw[k]) {
      est = e.raw_pos != (e.raw_last_ff ? 6 : 7) ? 1 : 0;
    } else {
      const int bits = 27 - static_cast<int>(e.ct);
      est = bits > (e.b >= 254 ? 22 : 23) ? 5 : 4;
      if (e.produced == 0) --est;
      est += e.qw - e.qr;
    }
  }
  bk.rate[k] = static_cast<Kro32u>(bk.delivered + est);
  if (est == 0) {
    for (int j = k - 1; j >= 0 && bk.rate[j] > bk.rate[k]; --j) bk.rate[j] = bk.rate[k];
  }
}

void EndPass(Book& bk) {
  const int k = bk.pass;
  const bool segment_end = SegmentEndsAt(bk, k);
  bk.pass_len[k] = bk.delivered - bk.pass_start;
  encBufRateCalc(bk, segment_end);
  bk.pass_start = bk.delivered;
  bk.pass = k + 1;
  if (bk.pass >= bk.n_passes) return;
  if (segment_end) {
    MqEncoderStartSegment(bk.mq, bk.pass_raw[k + 1] != 0, bk.term_type == kroMQTermMinimal);
  }
  if (bk.reset_ctx) MqResetContexts(bk.mq.ctx);
  bk.pass_end += bk.pass_ndec[k + 1];
  bk.terminated = 0;
}

// Codes n recorded decisions of an MQ pass with the registers in locals. Under minimal
// termination the queue is offered to the caller after every decision that produced a
// byte, as the one-at-a-time drain does, because held-back bytes are released by rules
// that look at the queue after each decision.
// Codes n recorded decisions of an MQ pass with the registers in locals; a function of
// its own so that nothing else competes for the machine registers.
template <bool kSkewed>
__attribute__((noinline)) void MqCodeRun(MqEncoder& e, const Kro8u* d, const Kro8u* end) {
  MqEncLocal l(e);
  for (; d != end; ++d) {
    const uint32_t v = *d;
    if constexpr (kSkewed)
      l.EncodeSkewed(v & 1u, v >> 1);
    else
      l.Encode(v & 1u, v >> 1);
  }
  l.Store(e);
}

// Under minimal termination the queue is offered to the caller after every decision
// that produced a byte, as the one-at-a-time drain does, because held-back bytes are
// released by rules that look at the queue after each decision.
void MqCodeDecisions(Book& bk, const Kro8u* d, int n, Kro8u* dst, int& out, int want,
                     bool skewed) {
  MqEncoder& e = bk.mq;
  if (!e.hold_ones) {
    if (skewed)
      MqCodeRun<true>(e, d, d + n);
    else
      MqCodeRun<false>(e, d, d + n);
    return;
  }
  for (int i = 0; i < n; ++i) {
    const int32_t qw = e.qw;
    MqEncLocal l(e);
    l.Encode(d[i] & 1u, d[i] >> 1u);
    l.Store(e);
    if (e.qw != qw) out += Deliver(bk, dst + out, want - out);
  }
}

// Passes 0, 3, 6, ... are cleanup passes.
bool IsCleanup(int pass) { return pass % 3 == 0; }

// The deferred coder: codes recorded decisions only while the caller wants bytes, ends
// segments with their termination and passes with their bookkeeping. The bytes, pass
// lengths and rates do not depend on how the caller splits its requests. Decisions are
// coded one at a time near the end of the caller's buffer, and otherwise in batches that
// cannot fill it (an MQ decision gives at most three bytes, a raw one at most one), so
// that a batch ends in the state the one-at-a-time drain would reach.
int decEncoderMQEncodeAndTerminate(Book& bk, const Kro8u* decisions, Kro8u* dst, int want) {
  int out = 0;
  while (bk.pass < bk.n_passes) {
    out += Deliver(bk, dst + out, want - out);
    if (bk.cursor < bk.pass_end) {
      if (out == want) break;
      MqEncoder& e = bk.mq;
      if (e.qr == e.qw)
        e.qr = e.qw = 0;
      else if (e.qw > kMqQueueSize / 2)
        MqCompactQueue(e);
      const bool raw = bk.pass_raw[bk.pass] != 0;
      const int per = raw ? 1 : 3;
      int n = bk.pass_end - bk.cursor;
      n = std::min(n, (want - out - (e.qw - e.qr) - 1) / per);
      n = std::min(n, (kMqQueueSize - e.qw) / per);
      n = std::max(n, 1);
      const Kro8u* d = decisions + bk.cursor;
      bk.cursor += n;
      if (raw) {
        for (int i = 0; i < n; ++i) RawPutBit(e, d[i] & 1);
      } else {
        MqCodeDecisions(bk, d, n, dst, out, want, IsCleanup(bk.pass));
      }
      continue;
    }
    if (!bk.terminated && SegmentEndsAt(bk, bk.pass)) {
      if (bk.pass_raw[bk.pass])
        RawTerminate(bk.mq);
      else
        MqTerminate(bk.mq, bk.term_type);
      bk.terminated = 1;
      continue;
    }
    if (MqDeliverable(bk.mq) > 0) break;  // the caller's buffer is full
    EndPass(bk);
  }
  return out;
}

bool BadId(const State* s) { return s->id != kEncodeId; }

// 2^e as the distortion sums have always formed it: the double 1 / (1 << -e) for e <= 0
// and the 32-bit integer 1 << e converted to double for e > 0. The shift is a 32-bit
// one with its count taken modulo 32, as the processor does it, so exponents from 31 up
// (only blocks with more than 22 planes above the lowest coded one reach them) read as
// -2^31 for 31 and 2^(e - 32) beyond. Kept for compatibility with existing callers.
double DistScale(int e) {
  if (e <= 0) {
    const uint32_t count = (0u - static_cast<uint32_t>(e)) & 31u;
    return 1.0 / static_cast<double>(static_cast<int32_t>(1u << count));
  }
  return static_cast<double>(static_cast<int32_t>(1u << (static_cast<uint32_t>(e) & 31u)));
}

bool BadPass(const State* s, int n) { return n < 0 || n >= s->book->n_passes; }

}  // namespace

}  // namespace kro::enc

using namespace kro;
using enc::State;

KRO_EXPORT KroStatus kroiEncodeInitAlloc_JPEG2K(KroiEncodeState_JPEG2K** ppState,
                                                KroiSize maxCodeBlockSize) {
  if (ppState == nullptr) return kroStatusNullPointer;
  if (BadSize(maxCodeBlockSize)) return kroStatusBadSize;
  *ppState = nullptr;
  const int64_t columns =
      int64_t{maxCodeBlockSize.width} * ((int64_t{maxCodeBlockSize.height} + 3) / 4);
  const int64_t nbh_bytes = t1::NbhBytes(maxCodeBlockSize.width, maxCodeBlockSize.height);
  if (columns > INT_MAX / enc::kDecisionsPerColumn || nbh_bytes > INT_MAX) return kroStatusNoMemory;
  const int64_t decision_bytes = enc::kDecisionsPerColumn * columns;

  auto* s = reinterpret_cast<State*>(krosMalloc_8u(static_cast<int>(sizeof(State))));
  auto* book = reinterpret_cast<enc::Book*>(krosMalloc_8u(static_cast<int>(sizeof(enc::Book))));
  Kro8u* decisions = krosMalloc_8u(static_cast<int>(decision_bytes));
  auto* nbh = reinterpret_cast<uint32_t*>(krosMalloc_8u(static_cast<int>(nbh_bytes)));
  if (s == nullptr || book == nullptr || decisions == nullptr || nbh == nullptr) {
    krosFree(nbh);
    krosFree(decisions);
    krosFree(book);
    krosFree(s);
    return kroStatusNoMemory;
  }
  memset(s, 0, sizeof(State));
  memset(book, 0, sizeof(enc::Book));
  s->book = book;
  s->decisions = decisions;
  s->decision_bytes = decision_bytes;
  s->nbh = nbh;
  s->nbh_bytes = nbh_bytes;
  s->id = enc::kEncodeId;
  *ppState = s;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeFree_JPEG2K(KroiEncodeState_JPEG2K* pState) {
  if (pState == nullptr) return kroStatusNullPointer;
  krosFree(pState->nbh);
  krosFree(pState->decisions);
  krosFree(pState->book);
  krosFree(pState);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(
    const Kro32s* pSrc, int srcStep, KroiSize codeBlockSize, KroiEncodeState_JPEG2K* pState,
    int subband, int magnitudeBits, int termType, int reserved, int codeStyleFlags, int* pSfBits,
    int* pNOfPasses, int* pNOfTermPasses) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (enc::BadId(pState)) return kroStatusContextMismatch;
  if (AnyNull(pSfBits, pNOfPasses, pNOfTermPasses)) return kroStatusNullPointer;
  if (BadSize(codeBlockSize)) return kroStatusBadSize;
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (BadStep(srcStep)) return kroStatusBadStep;
  // A block beyond the size the state was made for would overrun its buffers.
  const int w = codeBlockSize.width;
  const int h = codeBlockSize.height;
  if (enc::kDecisionsPerColumn * w * ((int64_t{h} + 3) / 4) > pState->decision_bytes ||
      t1::NbhBytes(w, h) > pState->nbh_bytes) {
    return kroStatusBadSize;
  }

  State& s = *pState;
  enc::Book& bk = *s.book;
  memset(s.nbh, 0, static_cast<size_t>(t1::NbhBytes(w, h)));  // sfInit
  enc::encBufReset(bk, codeStyleFlags, termType);
  s.flags = codeStyleFlags;

  uint32_t max_mag = 0;
  for (int y = 0; y < h; ++y) {
    const Kro32s* row = RowPtr(pSrc, srcStep, y);
    for (int x = 0; x < w; ++x) max_mag |= t1::LoadCoef(row + x) & 0x7FFFFFFFu;
  }
  int sf_bits = 0;
  while (sf_bits < 31 && (max_mag >> sf_bits) != 0) ++sf_bits;
  *pSfBits = sf_bits;

  // Magnitudes arrive left-aligned: a band with magnitudeBits planes uses bits 30 down
  // to 31 - magnitudeBits, the lowest plane coded.
  const int64_t p_low_wide = 31 - int64_t{magnitudeBits};
  const int p_low = p_low_wide < 0 ? 0 : (p_low_wide > 31 ? 31 : static_cast<int>(p_low_wide));
  const int top = sf_bits - 1;
  s.cur_exp = 2 * (top - p_low) - 13;
  s.pass_index = 0;

  enc::Coding c{&s,
                &bk,
                t1::MakeNbh(s.nbh, w, h, (codeStyleFlags & t1::kFlagCausal) != 0),
                t1::ZeroCodingTable(subband),
                pSrc,
                srcStep,
                p_low,
                (codeStyleFlags & t1::kFlagLossless) != 0,
                (codeStyleFlags & t1::kFlagSegSym) != 0};
  if (top >= p_low) {
    enc::RunPass(c, enc::PassType::kCleanup, top, false);
    s.cur_exp -= 2;
    for (int p = top - 1; p >= p_low; --p) {
      const bool raw = (codeStyleFlags & t1::kFlagBypass) && p < sf_bits - 4;
      enc::RunPass(c, enc::PassType::kPropagation, p, raw);
      enc::RunPass(c, enc::PassType::kRefinement, p, raw);
      enc::RunPass(c, enc::PassType::kCleanup, p, false);
      s.cur_exp -= 2;
    }
  }

  // Every pass under terminate-every-pass, else one plus the changes of the raw flag: a
  // block without passes reports one empty segment.
  int segments = bk.term_all ? bk.n_passes : 1;
  for (int k = 1; k < bk.n_passes && !bk.term_all; ++k)
    segments += bk.pass_raw[k] != bk.pass_raw[k - 1] ? 1 : 0;
  bk.n_segments = segments;
  *pNOfPasses = bk.n_passes;
  *pNOfTermPasses = segments;
  bk.pass_end = bk.n_passes > 0 ? bk.pass_ndec[0] : 0;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeStoreBits_JPEG2K_1u(Kro8u* pDst, int* pDstLen,
                                                   KroiEncodeState_JPEG2K* pState,
                                                   int* pIsNotFinish) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (enc::BadId(pState)) return kroStatusContextMismatch;
  if (AnyNull(pDst, pDstLen, pIsNotFinish)) return kroStatusNullPointer;
  if (*pDstLen < 1) return kroStatusBadArgument;
  enc::Book& bk = *pState->book;
  *pDstLen = enc::decEncoderMQEncodeAndTerminate(bk, pState->decisions, pDst, *pDstLen);
  *pIsNotFinish = bk.pass < bk.n_passes ? 1 : 0;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeGetRate_JPEG2K(const KroiEncodeState_JPEG2K* pState, int nPass,
                                              int* pRate) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (enc::BadId(pState)) return kroStatusContextMismatch;
  if (pRate == nullptr) return kroStatusNullPointer;
  if (enc::BadPass(pState, nPass)) return kroStatusJPEG2KBadPassNumber;
  *pRate = static_cast<int>(pState->book->rate[nPass]);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeGetDistReduction_JPEG2K(const KroiEncodeState_JPEG2K* pState,
                                                       int nPass, int* pMantissa, int* pExponent) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (enc::BadId(pState)) return kroStatusContextMismatch;
  if (AnyNull(pMantissa, pExponent)) return kroStatusNullPointer;
  if (enc::BadPass(pState, nPass)) return kroStatusJPEG2KBadPassNumber;
  *pMantissa = pState->dist_mant[nPass];
  *pExponent = pState->dist_exp[nPass];
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeGetDist_JPEG2K(const KroiEncodeState_JPEG2K* pState, int nPass,
                                              double* pDist) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (enc::BadId(pState)) return kroStatusContextMismatch;
  if (pDist == nullptr) return kroStatusNullPointer;
  if (enc::BadPass(pState, nPass)) return kroStatusJPEG2KBadPassNumber;
  double dist = 0.0;
  for (int k = 0; k <= nPass; ++k)
    dist += static_cast<double>(pState->dist_mant[k]) * enc::DistScale(pState->dist_exp[k]);
  *pDist = dist;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiEncodeGetTermPassLen_JPEG2K(const KroiEncodeState_JPEG2K* pState,
                                                     int nTermPass, int* pLength) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (enc::BadId(pState)) return kroStatusContextMismatch;
  if (pLength == nullptr) return kroStatusNullPointer;
  const enc::Book& bk = *pState->book;
  if (nTermPass < 0 || nTermPass >= bk.n_segments) return kroStatusJPEG2KBadPassNumber;
  int segment = 0;
  int length = 0;
  for (int k = 0; k < bk.n_passes && segment <= nTermPass; ++k) {
    if (segment == nTermPass) length += bk.pass_len[k];
    if (enc::SegmentEndsAt(bk, k)) ++segment;
  }
  *pLength = length;
  return kroStatusOk;
}
