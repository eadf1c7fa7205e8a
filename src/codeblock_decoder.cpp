// SPDX-License-Identifier: BSD-3-Clause
// Code-block decoding passes (T.800 D.3, arithmetic-coded and raw), concealment and
// clearing, and the one-call decoder that drives the step-wise decoder over all segments.
#include "codeblock_decoder.h"

#include "kro_checks.h"
#include "ref/logic_ref.h"

namespace kro {

namespace {

using namespace t1;

// Reconstruction values of bit-plane p (T.800 E.1.1.2 with the midpoint rule): a newly
// significant coefficient is 1.5 * 2^p, a refinement keeps the bits above p, sets bit p
// to the decision and adds the half value 2^(p-1). Planes above 30 only occur with a
// bit-plane count the block cannot hold; their values are defined but meaningless.
struct Plane {
  uint32_t one;    // 1 << p
  uint32_t sig;    // (3 << p) >> 1
  uint32_t half;   // 1 << (p - 1), 0 at p = 0
  uint32_t upper;  // bits above p, the sign included
};

Plane PlaneOf(int p) {
  const int q = p < 40 ? p : 40;
  const uint32_t one = q < 32 ? 1u << q : 0u;
  const uint32_t sig = static_cast<uint32_t>((uint64_t{3} << q) >> 1);
  const uint32_t half = q >= 1 ? static_cast<uint32_t>((uint64_t{1} << q) >> 1) : 0u;
  const uint32_t upper = q >= 31 ? 0x80000000u : ~0u << (q + 1);
  return {one, sig, half, upper};
}

// Where decoded coefficients go: kept in memory and read only when a coefficient is
// written, so that the MQ registers and the scan have the machine registers to themselves.
struct Target {
  Kro32s* dst;
  ptrdiff_t step;
  Kro32s* row0;  // first row of the current stripe
  Plane pl;

  KRO_T1_INLINE Kro32s* At(int x, int r) const { return ByteOffset(row0, r * step) + x; }
};

// Decoder side of the pass scans: every decision comes from the MQ decoder, whose
// registers live in locals for the length of the pass.
template <bool kSkewed>
struct MqPassCoder {
  MqDecLocal d;
  Target* t;

  KRO_T1_INLINE int Decode(int ctx) { return kSkewed ? d.DecodeSkewed(ctx) : d.Decode(ctx); }
  KRO_T1_INLINE void Stripe(int y0, int) { t->row0 = ByteOffset(t->dst, y0 * t->step); }
  KRO_T1_INLINE int Bit(int ctx, int, int) { return Decode(ctx); }
  KRO_T1_INLINE uint32_t Sign(uint32_t lut, int, int) {
    return static_cast<uint32_t>(Decode(static_cast<int>(lut & 0xFF))) ^ (lut >> 31);
  }
  KRO_T1_INLINE void Significant(int x, int r, uint32_t neg) {
    StoreCoef(t->At(x, r), (neg << 31) | t->pl.sig);
  }
  KRO_T1_INLINE void Refine(int ctx, int x, int r) {
    const uint32_t bit = static_cast<uint32_t>(Decode(ctx));
    Kro32s* c = t->At(x, r);
    StoreCoef(c, (LoadCoef(c) & t->pl.upper) | ((0u - bit) & t->pl.one) | t->pl.half);
  }
  // Refinement of a stripe column: the candidate rows are taken from a mask, so that the
  // only branch that depends on the data is the end of the loop.
  template <int kRows>
  KRO_T1_INLINE void RefinementColumn(uint32_t* col, ptrdiff_t p, int x) {
    constexpr uint64_t kRowsMask = RowsMask0(kRows) | uint64_t{RowsMask1(kRows)} << 32;
    uint64_t cw = col[0] | uint64_t{col[p]} << 32;
    uint64_t cand = RefinementCandidates(cw) & kRowsMask;
    if (cand == 0) return;
    do {
      const int r = __builtin_ctzll(cand) >> 4;
      const uint32_t st = static_cast<uint32_t>(cw >> (r * 16));
      const uint32_t bit = static_cast<uint32_t>(Decode(static_cast<int>(MagnRefineLUT[st & 0x1FF])));
      Kro32s* c = t->At(x, r);
      StoreCoef(c, (LoadCoef(c) & t->pl.upper) | ((0u - bit) & t->pl.one) | t->pl.half);
      cw |= uint64_t{kRefined} << (r * 16);
      cand &= cand - 1;
    } while (cand);
    col[0] = static_cast<uint32_t>(cw);
    if constexpr (kRows > 2) col[p] = static_cast<uint32_t>(cw >> 32);
  }

  KRO_T1_INLINE int RunLength(int) { return Decode(kCtxRunLength); }
  KRO_T1_INLINE int RunPosition(int) {
    const int hi = Decode(kCtxUniform);
    return (hi << 1) | Decode(kCtxUniform);
  }
};

// The raw passes read significance, sign (1 = negative) and refinement bits directly.
struct RawPassCoder {
  RawReader r;
  Target* t;

  KRO_T1_INLINE void Stripe(int y0, int) { t->row0 = ByteOffset(t->dst, y0 * t->step); }
  KRO_T1_INLINE int Bit(int, int, int) { return RawReadBit(r); }
  KRO_T1_INLINE uint32_t Sign(uint32_t, int, int) { return static_cast<uint32_t>(RawReadBit(r)); }
  KRO_T1_INLINE void Significant(int x, int i, uint32_t neg) {
    StoreCoef(t->At(x, i), (neg << 31) | t->pl.sig);
  }
  KRO_T1_INLINE void Refine(int, int x, int i) {
    const uint32_t bit = static_cast<uint32_t>(RawReadBit(r));
    Kro32s* c = t->At(x, i);
    StoreCoef(c, (LoadCoef(c) & t->pl.upper) | ((0u - bit) & t->pl.one) | t->pl.half);
  }
  int RunLength(int) { return 0; }  // raw coding has no cleanup pass
  int RunPosition(int) { return 0; }
};

Target TargetOf(const ProgrState& s) { return {s.dst, s.step, s.dst, PlaneOf(s.bitplane)}; }

Nbh NbhOf(const ProgrState& s) {
  return MakeNbh(s.nbh, s.size.width, s.size.height, (s.flags & kFlagCausal) != 0);
}

// Ends an MQ pass: registers back into the state, termination check (which decides the
// result when enabled), context reset.
template <class C>
int FinishMqPass(ProgrState& s, C& c, int err, bool check) {
  c.d.Store(s.mq);
  if (check) err = mqDecoderCheckErrPredTerm(s.mq);
  if (s.flags & kFlagReset) mqDecoderResetCtx(s.mq);
  return err;
}

}  // namespace

int cleanup(ProgrState& s, bool check) {
  Target t = TargetOf(s);
  MqPassCoder<true> c{MqDecLocal(s.mq), &t};
  CleanupScan(NbhOf(s), s.zc, c);
  int err = 0;
  if (s.flags & kFlagSegSym) {
    int v = 0;
    for (int i = 0; i < 4; ++i) v = (v << 1) | c.Decode(kCtxUniform);
    err = v != 0xA;
  }
  // A failed segmentation symbol is forgiven when the termination check passes: the
  // check looks at the whole segment and is the stronger test.
  return FinishMqPass(s, c, err, check);
}

int significancePropagation(ProgrState& s, bool check) {
  Target t = TargetOf(s);
  MqPassCoder<false> c{MqDecLocal(s.mq), &t};
  SignificancePropagationScan(NbhOf(s), s.zc, c);
  return FinishMqPass(s, c, 0, check);
}

int magnitudeRefinement(ProgrState& s, bool check) {
  Target t = TargetOf(s);
  MqPassCoder<false> c{MqDecLocal(s.mq), &t};
  MagnitudeRefinementScan(NbhOf(s), c);
  return FinishMqPass(s, c, 0, check);
}

int significancePropagationRaw(ProgrState& s, bool check) {
  Target t = TargetOf(s);
  RawPassCoder c{s.raw, &t};
  SignificancePropagationScan(NbhOf(s), s.zc, c);
  const int err = check ? RawCheckTermination(c.r) : 0;
  s.raw = c.r;
  return err;
}

int magnitudeRefinementRaw(ProgrState& s, bool check) {
  Target t = TargetOf(s);
  RawPassCoder c{s.raw, &t};
  MagnitudeRefinementScan(NbhOf(s), c);
  const int err = check ? RawCheckTermination(c.r) : 0;
  s.raw = c.r;
  return err;
}

// Concealment and clearing shift by the bit-plane as 32-bit shifts do, the count taken
// modulo 32; planes beyond 30 only come with a bit-plane count the block cannot hold.
void concealError(Kro32s* block, int step, KroiSize size, int p) {
  const uint32_t keep = ~0u << (p & 31);
  const uint32_t mark = 1u << (p & 31);
  for (int y = 0; y < size.height; ++y) {
    Kro32s* row = RowPtr(block, step, y);
    for (int x = 0; x < size.width; ++x) {
      const uint32_t v = LoadCoef(row + x) & keep;
      StoreCoef(row + x, (v & 0x7FFFFFFFu) ? v | mark : 0u);
    }
  }
}

void ClearBelow(Kro32s* block, int step, KroiSize size, int p) {
  if (p < 1) return;
  const Kro32s mask = static_cast<Kro32s>(~0u << (p & 31));  // -(1 << p)
  for (int y = 0; y < size.height; ++y) {
    Kro32s* row = RowPtr(block, step, y);
    ref::AndCRow(row, mask, row, size.width);
  }
}

}  // namespace kro

using namespace kro;

KRO_EXPORT KroStatus kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(const Kro8u* pSrc, Kro32s* pDst,
                                                          int dstStep, KroiSize codeBlockSize,
                                                          int subband, int sfBits, int nOfPasses,
                                                          const int* pTermLen, int nOfTermPasses,
                                                          int codeStyleFlags, int* pErrorBitPlane,
                                                          KroiDecodeCBProgrState_JPEG2K* pState) {
  if (AnyNull(pSrc, pState)) return kroStatusNullPointer;
  if (BadSize(codeBlockSize)) return kroStatusBadSize;
  if (AnyNull(pTermLen, pDst)) return kroStatusNullPointer;
  if (BadStep(dstStep)) return kroStatusBadStep;

  kroiDecodeCBProgrInit_JPEG2K(pState);
  kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(pDst, dstStep, codeBlockSize, pState, subband, sfBits,
                                         codeStyleFlags);
  kroiDecodeCBProgrSetPassCounter_JPEG2K(nOfPasses, pState);
  KroStatus status = kroStatusOk;
  const Kro8u* segment = pSrc;
  for (int i = 0; i < nOfTermPasses; ++i) {
    status = kroiDecodeCBProgrStep_JPEG2K(segment, pTermLen[i], pState);
    if (status != kroStatusOk) break;
    if (pTermLen[i] > 0) segment += pTermLen[i];
  }
  if (status == kroStatusJPEG2KCorruptCodeBlock) {
    if (pErrorBitPlane) *pErrorBitPlane = pState->bitplane;
    if (codeStyleFlags & t1::kFlagConceal) cbProgrConcealError(pState);
  }
  if (!(codeStyleFlags & t1::kFlagNoClear)) cbProgrClearLeastSfBits(pState);
  return status;
}

KRO_EXPORT KroStatus kroiDecodeGetBufSize_JPEG2K(KroiSize codeBlockSize, int* pSize) {
  return kroiDecodeCBProgrGetStateSize_JPEG2K(codeBlockSize, pSize);
}
