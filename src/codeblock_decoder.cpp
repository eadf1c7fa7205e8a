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
  int p;
  uint32_t sig;    // (3 << p) >> 1
  uint32_t half;   // 1 << (p - 1), 0 at p = 0
  uint32_t upper;  // bits above p, the sign included
};

Plane PlaneOf(int p) {
  const int q = p < 40 ? p : 40;
  const uint32_t sig = static_cast<uint32_t>((uint64_t{3} << q) >> 1);
  const uint32_t half = q >= 1 ? static_cast<uint32_t>((uint64_t{1} << q) >> 1) : 0u;
  const uint32_t upper = q >= 31 ? 0x80000000u : ~0u << (q + 1);
  return {q, sig, half, upper};
}

Kro32s& At(Kro32s* block, int step, int x, int y) { return RowPtr(block, step, y)[x]; }

// Decoder side of the pass scans: every decision comes from the MQ decoder. The
// registers live in a local copy for the length of the pass.
struct MqPassCoder {
  MqDecoder d;
  Kro32s* dst;
  int step;
  Plane pl;

  int Bit(int ctx, int, int) { return mqDecoderDecode(d, ctx); }
  uint32_t Sign(uint32_t lut, int, int) {
    return static_cast<uint32_t>(mqDecoderDecode(d, static_cast<int>(lut & 0xFF))) ^ (lut >> 31);
  }
  void Significant(int x, int y, uint32_t neg) {
    At(dst, step, x, y) = static_cast<Kro32s>((neg << 31) | pl.sig);
  }
  void Refine(int ctx, int x, int y) {
    const uint32_t r = static_cast<uint32_t>(mqDecoderDecode(d, ctx));
    Kro32s& c = At(dst, step, x, y);
    c = static_cast<Kro32s>((static_cast<uint32_t>(c) & pl.upper) | (r << pl.p) | pl.half);
  }
  int RunLength(int, int) { return mqDecoderDecode(d, kCtxRunLength); }
  int RunPosition(int, int) {
    const int hi = mqDecoderDecode(d, kCtxUniform);
    return (hi << 1) | mqDecoderDecode(d, kCtxUniform);
  }
};

// The raw passes read significance, sign (1 = negative) and refinement bits directly.
struct RawPassCoder {
  RawReader r;
  Kro32s* dst;
  int step;
  Plane pl;

  int Bit(int, int, int) { return RawReadBit(r); }
  uint32_t Sign(uint32_t, int, int) { return static_cast<uint32_t>(RawReadBit(r)); }
  void Significant(int x, int y, uint32_t neg) {
    At(dst, step, x, y) = static_cast<Kro32s>((neg << 31) | pl.sig);
  }
  void Refine(int, int x, int y) {
    const uint32_t r_bit = static_cast<uint32_t>(RawReadBit(r));
    Kro32s& c = At(dst, step, x, y);
    c = static_cast<Kro32s>((static_cast<uint32_t>(c) & pl.upper) | (r_bit << pl.p) | pl.half);
  }
  int RunLength(int, int) { return 0; }  // raw coding has no cleanup pass
  int RunPosition(int, int) { return 0; }
};

Nbh NbhOf(const ProgrState& s) {
  return MakeNbh(s.nbh, s.size.width, s.size.height, (s.flags & kFlagCausal) != 0);
}

// Ends an MQ pass: termination check (which decides the result when enabled), context
// reset, registers back into the state.
int FinishMqPass(ProgrState& s, MqPassCoder& c, int err, bool check) {
  if (check) err = mqDecoderCheckErrPredTerm(c.d);
  if (s.flags & kFlagReset) mqDecoderResetCtx(c.d);
  s.mq = c.d;
  return err;
}

}  // namespace

int cleanup(ProgrState& s, bool check) {
  MqPassCoder c{s.mq, s.dst, s.step, PlaneOf(s.bitplane)};
  CleanupScan(NbhOf(s), s.zc, c);
  int err = 0;
  if (s.flags & kFlagSegSym) {
    int v = 0;
    for (int i = 0; i < 4; ++i) v = (v << 1) | mqDecoderDecode(c.d, kCtxUniform);
    err = v != 0xA;
  }
  // A failed segmentation symbol is forgiven when the termination check passes: the
  // check looks at the whole segment and is the stronger test.
  return FinishMqPass(s, c, err, check);
}

int significancePropagation(ProgrState& s, bool check) {
  MqPassCoder c{s.mq, s.dst, s.step, PlaneOf(s.bitplane)};
  SignificancePropagationScan(NbhOf(s), s.zc, c);
  return FinishMqPass(s, c, 0, check);
}

int magnitudeRefinement(ProgrState& s, bool check) {
  MqPassCoder c{s.mq, s.dst, s.step, PlaneOf(s.bitplane)};
  MagnitudeRefinementScan(NbhOf(s), c);
  return FinishMqPass(s, c, 0, check);
}

int significancePropagationRaw(ProgrState& s, bool check) {
  RawPassCoder c{s.raw, s.dst, s.step, PlaneOf(s.bitplane)};
  SignificancePropagationScan(NbhOf(s), s.zc, c);
  const int err = check ? RawCheckTermination(c.r) : 0;
  s.raw = c.r;
  return err;
}

int magnitudeRefinementRaw(ProgrState& s, bool check) {
  RawPassCoder c{s.raw, s.dst, s.step, PlaneOf(s.bitplane)};
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
      const uint32_t v = static_cast<uint32_t>(row[x]) & keep;
      row[x] = static_cast<Kro32s>((v & 0x7FFFFFFFu) ? v | mark : 0u);
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
