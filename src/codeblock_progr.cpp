// SPDX-License-Identifier: BSD-3-Clause
// Step-wise code-block decoder: a caller attaches a block and hands over its codeword
// segments one call at a time; each step decodes the passes its segment carries.
#include <limits.h>
#include <string.h>

#include "codeblock_decoder.h"
#include "kro_checks.h"

namespace kro {

namespace {

using namespace t1;

bool BadId(const ProgrState* s) { return s->id != kProgrId; }

// One segment holding several passes (termination only where the code-block style
// requires it): from the cleanup of the top plane down to the last arithmetic-coded
// plane first_raw, then alternately two raw passes and one arithmetic-coded cleanup.
int StepSegment(ProgrState& s, const uint8_t* seg, int len) {
  const bool check = (s.flags & kFlagCheckTerm) != 0;
  switch (s.kind) {
    case kRawPropagationNext:
    case kRawRefinementNext:
      RawReaderInit(s.raw, seg, len);
      if (s.kind == kRawPropagationNext) {
        if (significancePropagationRaw(s, false)) return 1;
        --s.remaining;
        s.kind = kRawRefinementNext;
        if (s.remaining <= 0) return 0;
      }
      // The raw segment always ends with the padding pattern: checked unconditionally.
      if (magnitudeRefinementRaw(s, true)) return 1;
      --s.remaining;
      s.kind = kCleanupAfterRaw;
      return 0;
    case kCleanupAfterRaw:
      mqDecoderInit(s.mq, seg, len);
      if (cleanup(s, check)) return 1;
      if (--s.remaining > 0) {
        --s.bitplane;
        s.kind = kRawPropagationNext;
      }
      return 0;
    default:
      break;
  }
  mqDecoderInit(s.mq, seg, len);
  for (;;) {
    if (s.kind == kCleanupFirst) {
      if (cleanup(s, check && s.bitplane == s.first_raw)) return 1;
      --s.remaining;
      if (s.bitplane <= s.first_raw) {
        if (s.remaining > 0) {
          --s.bitplane;
          s.kind = kRawPropagationNext;
        }
        return 0;
      }
      if (s.remaining <= 0) return 0;
      --s.bitplane;
      s.kind = kPropagationNext;
    }
    if (s.kind == kPropagationNext) {
      if (significancePropagation(s, false)) return 1;
      s.kind = kRefinementNext;
      if (--s.remaining <= 0) return 0;
    }
    if (magnitudeRefinement(s, false)) return 1;
    s.kind = kCleanupFirst;
    if (--s.remaining <= 0) return 0;
  }
}

// Termination on every pass: each segment is exactly one pass.
int StepOnePass(ProgrState& s, const uint8_t* seg, int len) {
  const bool check = (s.flags & kFlagCheckTerm) != 0;
  int err = 0;
  switch (s.kind) {
    case kPropagationNext:
      mqDecoderInit(s.mq, seg, len);
      err = significancePropagation(s, check);
      s.kind = kRefinementNext;
      break;
    case kRefinementNext:
      mqDecoderInit(s.mq, seg, len);
      err = magnitudeRefinement(s, check);
      s.kind = kCleanupFirst;
      break;
    case kRawPropagationNext:
      RawReaderInit(s.raw, seg, len);
      err = significancePropagationRaw(s, true);
      s.kind = kRawRefinementNext;
      break;
    case kRawRefinementNext:
      RawReaderInit(s.raw, seg, len);
      err = magnitudeRefinementRaw(s, true);
      s.kind = kCleanupAfterRaw;
      break;
    default: {  // a cleanup, first or after refinement, or after raw passes
      mqDecoderInit(s.mq, seg, len);
      err = cleanup(s, check);
      if (err) return 1;
      if (s.remaining - 1 > 0) {
        --s.bitplane;
        s.kind = s.bitplane >= s.first_raw ? kPropagationNext : kRawPropagationNext;
      }
      break;
    }
  }
  if (err) return 1;
  --s.remaining;
  return 0;
}

}  // namespace

KroStatus cbProgrConcealError(ProgrState* pState) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (BadId(pState)) return kroStatusContextMismatch;
  concealError(pState->dst, pState->step, pState->size, pState->bitplane);
  return kroStatusOk;
}

KroStatus cbProgrClearLeastSfBits(ProgrState* pState) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (BadId(pState)) return kroStatusContextMismatch;
  ClearBelow(pState->dst, pState->step, pState->size, pState->bitplane);
  return kroStatusOk;
}

}  // namespace kro

using namespace kro;

// The result pointer is the principal pointer and is checked first, as in every size
// query of the library.
KRO_EXPORT KroStatus kroiDecodeCBProgrGetStateSize_JPEG2K(KroiSize codeBlockSize, int* pSize) {
  if (pSize == nullptr) return kroStatusNullPointer;
  if (BadSize(codeBlockSize)) return kroStatusBadSize;
  const int64_t size =
      t1::NbhBytes(codeBlockSize.width, codeBlockSize.height) + t1::kProgrFixedBytes;
  if (size > INT_MAX) return kroStatusBadSize;
  *pSize = static_cast<int>(size);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrInit_JPEG2K(KroiDecodeCBProgrState_JPEG2K* pState) {
  if (pState == nullptr) return kroStatusNullPointer;
  pState->id = t1::kProgrId;
  pState->attached = 0;
  pState->nbh = t1::ProgrNbh(pState);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrInitAlloc_JPEG2K(KroiDecodeCBProgrState_JPEG2K** ppState,
                                                       KroiSize codeBlockSize) {
  if (ppState == nullptr) return kroStatusNullPointer;
  if (BadSize(codeBlockSize)) return kroStatusBadSize;
  int size = 0;
  if (kroiDecodeCBProgrGetStateSize_JPEG2K(codeBlockSize, &size) != kroStatusOk) {
    *ppState = nullptr;
    return kroStatusNoMemory;
  }
  auto* state = reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(krosMalloc_8u(size));
  *ppState = state;
  if (state == nullptr) return kroStatusNoMemory;
  return kroiDecodeCBProgrInit_JPEG2K(state);
}

KRO_EXPORT KroStatus kroiDecodeCBProgrFree_JPEG2K(KroiDecodeCBProgrState_JPEG2K* pState) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (BadId(pState)) return kroStatusContextMismatch;
  krosFree(pState);
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(Kro32s* pDst, int dstStep,
                                                            KroiSize codeBlockSize,
                                                            KroiDecodeCBProgrState_JPEG2K* pState,
                                                            int subband, int sfBits,
                                                            int codeStyleFlags) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (BadId(pState)) return kroStatusContextMismatch;
  if (pDst == nullptr) return kroStatusNullPointer;
  if (BadStep(dstStep)) return kroStatusBadStep;
  if (BadSize(codeBlockSize)) return kroStatusBadSize;

  ProgrState& s = *pState;
  s.flags = codeStyleFlags;
  s.dst = pDst;
  s.step = dstStep;
  s.size = codeBlockSize;
  if (!(codeStyleFlags & t1::kFlagKeepDst)) {
    for (int y = 0; y < codeBlockSize.height; ++y) {
      Kro32s* row = RowPtr(pDst, dstStep, y);
      memset(row, 0, static_cast<size_t>(codeBlockSize.width) * sizeof(Kro32s));
    }
  }
  if (!(codeStyleFlags & t1::kFlagKeepNbh)) {
    const int64_t words = t1::NbhBytes(codeBlockSize.width, codeBlockSize.height) / 4;
    for (int64_t i = 0; i < words; ++i) s.nbh[i] = 0;
  }
  mqDecoderResetCtx(s.mq);
  s.zc = t1::ZeroCodingTable(subband);
  const int64_t first_raw = int64_t{sfBits} - 4;
  s.first_raw =
      (codeStyleFlags & t1::kFlagBypass) && first_raw > 0 ? static_cast<Kro32s>(first_raw) : 0;
  s.bitplane = sfBits > INT_MIN ? sfBits - 1 : INT_MIN;
  s.kind = t1::kCleanupFirst;
  s.remaining = 0;
  s.error = 0;
  s.attached = 1;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrSetPassCounter_JPEG2K(int nOfPasses,
                                                            KroiDecodeCBProgrState_JPEG2K* pState) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (BadId(pState)) return kroStatusContextMismatch;
  pState->remaining = nOfPasses;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrGetPassCounter_JPEG2K(
    const KroiDecodeCBProgrState_JPEG2K* pState, int* pNOfPasses) {
  if (AnyNull(pState, pNOfPasses)) return kroStatusNullPointer;
  if (pState->id != t1::kProgrId) return kroStatusContextMismatch;
  *pNOfPasses = pState->remaining;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(
    const KroiDecodeCBProgrState_JPEG2K* pState, int* pBitPlane) {
  if (pState == nullptr) return kroStatusNullPointer;
  if (pState->id != t1::kProgrId) return kroStatusContextMismatch;
  if (pBitPlane == nullptr) return kroStatusNullPointer;
  *pBitPlane = pState->bitplane;
  return kroStatusOk;
}

KRO_EXPORT KroStatus kroiDecodeCBProgrStep_JPEG2K(const Kro8u* pSegment, int segmentLength,
                                                  KroiDecodeCBProgrState_JPEG2K* pState) {
  if (AnyNull(pSegment, pState)) return kroStatusNullPointer;
  if (BadId(pState)) return kroStatusContextMismatch;
  if (!pState->attached) return kroStatusJPEG2KNotAttached;
  if (pState->error) return kroStatusJPEG2KCorruptCodeBlock;
  ProgrState& s = *pState;
  if (s.remaining <= 0 || s.bitplane < 0) return kroStatusOk;
  const int err = (s.flags & t1::kFlagTermAll) ? StepOnePass(s, pSegment, segmentLength)
                                               : StepSegment(s, pSegment, segmentLength);
  if (err) {
    s.error = 1;
    return kroStatusJPEG2KCorruptCodeBlock;
  }
  return kroStatusOk;
}
