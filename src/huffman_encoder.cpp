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
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "huffman_encoder.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "bitio.h"
#include "simd/huffman-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

// One block into a destination with at least kBlockWorstCaseBytes free.
KroStatus EncodeBlockFast(const Kro16s* src, Kro16s* last_dc, const EncSpec* dc, const EncSpec* ac, Kro8u* dst,
                          int* pos, EncState* state) {
  FastSink sink(dst, pos, state);
  const KroStatus st = EncodeBlock(src, ZigZagNonZeroSimd(src), last_dc, dc, ac, sink);
  sink.Finish();
  return st;
}

KroStatus CountBlock(const Kro16s* src, int* dc, int* ac, Kro16s* last_dc) {
  CountingSink sink;
  return EncodeBlock(src, ZigZagNonZeroSimd(src), last_dc, dc, ac, sink);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"

namespace kro {
namespace {

HWY_EXPORT(EncodeBlockFast);
HWY_EXPORT(CountBlock);

KroStatus EncodeBaseline(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos,
                         Kro16s* pLastDC, const EncSpec* pDcTable, const EncSpec* pAcTable,
                         EncState* pEncHuffState, int bFlushState) {
  if (pDst == nullptr) return kroStatusNullPointer;
  if (dstLenBytes < 1) return kroStatusBadSize;
  if (AnyNull(pDstCurrPos, pEncHuffState)) return kroStatusNullPointer;
  const int pos = *pDstCurrPos;
  if (pos < 0) return kroStatusBadArgument;  // would write before pDst
  if (bFlushState != 0) return FlushState(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
  if (AnyNull(pSrc, pLastDC, pDcTable, pAcTable)) return kroStatusNullPointer;
  if (dstLenBytes - pos >= kBlockWorstCaseBytes) {
    return HWY_DYNAMIC_DISPATCH(EncodeBlockFast)(pSrc, pLastDC, pDcTable, pAcTable, pDst, pDstCurrPos,
                                                 pEncHuffState);
  }
  CheckedSink sink(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
  return EncodeBlock(pSrc, ZigZagNonZero(pSrc), pLastDC, pDcTable, pAcTable, sink);
}

KroStatus EncodeBaselineDirect(const Kro16s* pSrc, Kro8u* pDst, int* pDstBitsLen, Kro16s* pLastDC,
                               const EncSpec* pDcTable, const EncSpec* pAcTable) {
  if (AnyNull(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable)) return kroStatusNullPointer;
  DirectSink sink(pDst, pDstBitsLen);
  EncodeBlock(pSrc, ZigZagNonZero(pSrc), pLastDC, pDcTable, pAcTable, sink);
  return kroStatusOk;
}

KroStatus Statistics(const Kro16s* pSrc, int* pDcStatistics, int* pAcStatistics, Kro16s* pLastDC) {
  if (AnyNull(pSrc, pDcStatistics, pAcStatistics, pLastDC)) return kroStatusNullPointer;
  return HWY_DYNAMIC_DISPATCH(CountBlock)(pSrc, pDcStatistics, pAcStatistics, pLastDC);
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiEncodeHuffman8x8_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                        int* pDstCurrPos, Kro16s* pLastDC,
                                                        const KroiEncodeHuffmanSpec* pDcTable,
                                                        const KroiEncodeHuffmanSpec* pAcTable,
                                                        KroiEncodeHuffmanState* pEncHuffState,
                                                        int bFlushState) {
  return kro::EncodeBaseline(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable,
                             pEncHuffState, bFlushState);
}

KRO_EXPORT KroStatus kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                               int* pDstBitsLen, Kro16s* pLastDC,
                                                               const KroiEncodeHuffmanSpec* pDcTable,
                                                               const KroiEncodeHuffmanSpec* pAcTable) {
  return kro::EncodeBaselineDirect(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
}

KRO_EXPORT KroStatus kroiGetHuffmanStatistics8x8_JPEG_16s_C1(const Kro16s* pSrc, int pDcStatistics[256],
                                                             int pAcStatistics[256], Kro16s* pLastDC) {
  return kro::Statistics(pSrc, pDcStatistics, pAcStatistics, pLastDC);
}
#endif  // HWY_ONCE
