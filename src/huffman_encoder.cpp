// SPDX-License-Identifier: BSD-3-Clause
// Baseline JPEG Huffman encoding of 8x8 blocks (T.81 F.1.2): the buffered encoder with
// its capacity checks and flush, the Direct encoder that writes at a bit position, and
// the symbol statistics of the same walk (T.81 K.2).
//
// Where the time goes (instruction counts on the blocks of a photo, about 7 AC values
// per block): finding the non-zero coefficients in zig-zag order cost a fifth of a
// block when done coefficient by coefficient, and the symbol writes the rest. Blocks
// therefore start from a mask of the non-zero positions built with one vector compare
// per 8 to 32 coefficients, and, when the destination has room for the worst case,
// go through a 64-bit bit window without capacity checks. The checked path, byte by
// byte, remains for the end of the buffer; both leave the same bytes and state.
// Then (about 530 instructions per block of the interleaved scan): 45 per AC value,
// and per call about 45 for the dispatch, 45 for the mask, 100 for the checks, the DC
// difference and EOB, and the flush of the last whole bytes, which had been a loop
// whose length changed from block to block (a mispredicted exit in most calls).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "huffman_encoder.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "bitio.h"
#include "simd/huffman-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// The whole call, checks included, so that the exported function only dispatches.
KroStatus EncodeBaseline(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, Kro16s* pLastDC,
                         const EncSpec* pDcTable, const EncSpec* pAcTable, EncState* pEncHuffState,
                         int bFlushState) {
  if (pDst == nullptr) return kroStatusNullPointer;
  if (dstLenBytes < 1) return kroStatusBadSize;
  if (pDstCurrPos == nullptr || pEncHuffState == nullptr) return kroStatusNullPointer;
  const int pos = *pDstCurrPos;
  if (pos < 0) return kroStatusBadArgument;  // would write before pDst
  if (bFlushState != 0) return FlushState(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
  if (pSrc == nullptr || pLastDC == nullptr || pDcTable == nullptr || pAcTable == nullptr)
    return kroStatusNullPointer;
  const uint64_t nz = ZigZagNonZeroSimd(pSrc);
  if (dstLenBytes - pos >= kBlockWorstCaseBytes) [[likely]] {
    FastSink sink(pDst, pDstCurrPos, pEncHuffState);
    const KroStatus st = EncodeBlock(pSrc, nz, pLastDC, pDcTable, pAcTable, sink);
    sink.Finish();
    return st;
  }
  CheckedSink sink(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
  return EncodeBlock(pSrc, nz, pLastDC, pDcTable, pAcTable, sink);
}

KroStatus Statistics(const Kro16s* pSrc, int* pDcStatistics, int* pAcStatistics, Kro16s* pLastDC) {
  if (pSrc == nullptr || pDcStatistics == nullptr || pAcStatistics == nullptr || pLastDC == nullptr)
    return kroStatusNullPointer;
  CountingSink sink;
  return EncodeBlock(pSrc, ZigZagNonZeroSimd(pSrc), pLastDC, pDcStatistics, pAcStatistics, sink);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"

namespace kro {
namespace {

HWY_EXPORT(EncodeBaseline);
HWY_EXPORT(Statistics);

KroStatus EncodeBaselineDirect(const Kro16s* pSrc, Kro8u* pDst, int* pDstBitsLen, Kro16s* pLastDC,
                               const EncSpec* pDcTable, const EncSpec* pAcTable) {
  if (AnyNull(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable)) return kroStatusNullPointer;
  DirectSink sink(pDst, pDstBitsLen);
  EncodeBlock(pSrc, ZigZagNonZero(pSrc), pLastDC, pDcTable, pAcTable, sink);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiEncodeHuffman8x8_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                        int* pDstCurrPos, Kro16s* pLastDC,
                                                        const KroiEncodeHuffmanSpec* pDcTable,
                                                        const KroiEncodeHuffmanSpec* pAcTable,
                                                        KroiEncodeHuffmanState* pEncHuffState,
                                                        int bFlushState) {
  return HWY_DYNAMIC_DISPATCH(kro::EncodeBaseline)(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable,
                                                   pAcTable, pEncHuffState, bFlushState);
}

KRO_EXPORT KroStatus kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                               int* pDstBitsLen, Kro16s* pLastDC,
                                                               const KroiEncodeHuffmanSpec* pDcTable,
                                                               const KroiEncodeHuffmanSpec* pAcTable) {
  return kro::EncodeBaselineDirect(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
}

KRO_EXPORT KroStatus kroiGetHuffmanStatistics8x8_JPEG_16s_C1(const Kro16s* pSrc, int pDcStatistics[256],
                                                             int pAcStatistics[256], Kro16s* pLastDC) {
  return HWY_DYNAMIC_DISPATCH(kro::Statistics)(pSrc, pDcStatistics, pAcStatistics, pLastDC);
}
#endif  // HWY_ONCE
