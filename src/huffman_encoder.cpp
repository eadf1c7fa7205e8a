// SPDX-License-Identifier: BSD-3-Clause
// Baseline JPEG Huffman encoding of 8x8 blocks (T.81 F.1.2): the buffered encoder with
// its capacity checks and flush, and the Direct encoder that writes at a bit position.
#include "bitio.h"
#include "kro_checks.h"

namespace kro {
namespace {

KroStatus EncodeBaseline(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos,
                         Kro16s* pLastDC, const EncSpec* pDcTable, const EncSpec* pAcTable,
                         EncState* pEncHuffState, int bFlushState) {
  if (pDst == nullptr) return kroStatusNullPointer;
  if (dstLenBytes < 1) return kroStatusBadSize;
  if (AnyNull(pDstCurrPos, pEncHuffState)) return kroStatusNullPointer;
  if (*pDstCurrPos < 0) return kroStatusBadArgument;  // would write before pDst
  if (bFlushState != 0) return FlushState(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
  if (AnyNull(pSrc, pLastDC, pDcTable, pAcTable)) return kroStatusNullPointer;
  return WithSink(pDst, dstLenBytes, pDstCurrPos, pEncHuffState, kBlockWorstCaseBytes, [&](auto& sink) {
    return EncodeBlock(pSrc, pLastDC, pDcTable, pAcTable, sink);
  });
}

KroStatus EncodeBaselineDirect(const Kro16s* pSrc, Kro8u* pDst, int* pDstBitsLen, Kro16s* pLastDC,
                               const EncSpec* pDcTable, const EncSpec* pAcTable) {
  if (AnyNull(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable)) return kroStatusNullPointer;
  DirectSink sink(pDst, pDstBitsLen);
  EncodeBlock(pSrc, pLastDC, pDcTable, pAcTable, sink);
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
  return kro::EncodeBaseline(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, pDcTable, pAcTable,
                             pEncHuffState, bFlushState);
}

KRO_EXPORT KroStatus kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                               int* pDstBitsLen, Kro16s* pLastDC,
                                                               const KroiEncodeHuffmanSpec* pDcTable,
                                                               const KroiEncodeHuffmanSpec* pAcTable) {
  return kro::EncodeBaselineDirect(pSrc, pDst, pDstBitsLen, pLastDC, pDcTable, pAcTable);
}
