// SPDX-License-Identifier: BSD-3-Clause
// Lossless JPEG (T.81 annex H): the seven predictors in both directions over rows of
// 16-bit samples, and the coding of single differences with DC-style Huffman codes.
#include "bitio.h"
#include "kro_checks.h"

namespace kro {
namespace {

// T.81 H.1.2.1, table H.1, in 32 bits (no overflow for 16-bit operands); shifts are
// arithmetic (floor). The caller takes the result modulo 2^16.
template <int kPred>
inline int32_t Predict(int32_t ra, int32_t rb, int32_t rc) {
  if constexpr (kPred == 1) return ra;
  if constexpr (kPred == 2) return rb;
  if constexpr (kPred == 3) return rc;
  if constexpr (kPred == 4) return ra + rb - rc;
  if constexpr (kPred == 5) return ra + ((rb - rc) >> 1);
  if constexpr (kPred == 6) return rb + ((ra - rc) >> 1);
  if constexpr (kPred == 7) return (ra + rb) >> 1;
  return 0;
}

// ownpj_DiffRow_PRED<n>_JPEG_16s_C1: differences of a row after the first. Right to
// left, so that pDst may be pSrc. Column 0 is predicted by Rb.
template <int kPred>
void DiffRow(const Kro16s* src, const Kro16s* prev, Kro16s* dst, int width) {
  for (int x = width - 1; x > 0; --x) dst[x] = Wrap16(src[x] - Predict<kPred>(src[x - 1], prev[x], prev[x - 1]));
  dst[0] = Wrap16(src[0] - prev[0]);
}

// ownpj_ReconstructRow_PRED<n>_JPEG_16s_C1: Ra comes from the row being rebuilt.
template <int kPred>
void ReconstructRow(const Kro16s* src, const Kro16s* prev, Kro16s* dst, int width) {
  dst[0] = Wrap16(src[0] + prev[0]);
  for (int x = 1; x < width; ++x) dst[x] = Wrap16(src[x] + Predict<kPred>(dst[x - 1], prev[x], prev[x - 1]));
}

using RowFn = void (*)(const Kro16s*, const Kro16s*, Kro16s*, int);
constexpr RowFn kDiffRow[8] = {nullptr,        DiffRow<1>, DiffRow<2>, DiffRow<3>,
                               DiffRow<4>,     DiffRow<5>, DiffRow<6>, DiffRow<7>};
constexpr RowFn kReconstructRow[8] = {nullptr,           ReconstructRow<1>, ReconstructRow<2>, ReconstructRow<3>,
                                      ReconstructRow<4>, ReconstructRow<5>, ReconstructRow<6>, ReconstructRow<7>};

// First row: column 0 against 2^(P - Pt - 1), the others against their left
// neighbour. No offset when Pt >= P leaves nothing to shift.
int32_t FirstRowOffset(int P, int Pt) { return P - Pt - 1 >= 0 ? int32_t{1} << (P - Pt - 1) : 0; }

KroStatus FirstRow(const Kro16s* pSrc, Kro16s* pDst, int width, int P, int Pt, bool reconstruct) {
  if (AnyNull(pSrc, pDst)) return kroStatusNullPointer;
  if (width < 1) return kroStatusBadSize;
  if (P < 2 || P > 16 || Pt < 0) return kroStatusBadArgument;
  const int32_t offset = FirstRowOffset(P, Pt);
  if (reconstruct) {
    pDst[0] = Wrap16(pSrc[0] + offset);
    for (int x = 1; x < width; ++x) pDst[x] = Wrap16(pSrc[x] + pDst[x - 1]);
  } else {
    for (int x = width - 1; x > 0; --x) pDst[x] = Wrap16(pSrc[x] - pSrc[x - 1]);
    pDst[0] = Wrap16(pSrc[0] - offset);
  }
  return kroStatusOk;
}

KroStatus Row(const Kro16s* pSrc, const Kro16s* pPrevRow, Kro16s* pDst, int width, int predictor,
              const RowFn* kernels) {
  if (AnyNull(pSrc, pPrevRow, pDst)) return kroStatusNullPointer;
  if (width < 1) return kroStatusBadSize;
  if (predictor < 1 || predictor > 7) return kroStatusBadArgument;
  kernels[predictor](pSrc, pPrevRow, pDst, width);
  return kroStatusOk;
}

// Category 16 (0x8000, standing for 32768) is sent without extra bits (T.81 H.1.2.2).
// The writer's status is dropped: this kernel reports only argument errors, as
// existing callers expect; they watch the position instead.
KroStatus EncodeOne(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, const EncSpec* table,
                    EncState* st, int bFlushState) {
  if (pDst == nullptr) return kroStatusNullPointer;
  if (dstLenBytes < 1) return kroStatusBadSize;
  if (AnyNull(pDstCurrPos, st)) return kroStatusNullPointer;
  if (*pDstCurrPos < 0) return kroStatusBadArgument;  // would write before pDst
  if (bFlushState != 0) {
    FlushState(pDst, dstLenBytes, pDstCurrPos, st);
    return kroStatusOk;
  }
  if (AnyNull(pSrc, table)) return kroStatusNullPointer;
  const int32_t v = *pSrc;
  const int s = ownpj_get_csize(v);
  const uint32_t e = table->entry[s];
  if (ownpj_write_bits_jpeg(e & 0xFFFF, static_cast<int>(e >> 16), pDst, dstLenBytes, pDstCurrPos, st) ==
          kroStatusOk &&
      s > 0 && s < 16)
    ownpj_write_bits_jpeg(ExtraBits(v, s), s, pDst, dstLenBytes, pDstCurrPos, st);
  return kroStatusOk;
}

KroStatus DecodeOne(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos, Kro16s* pDst, int* pMarker,
                    const DecSpec* table, DecState* st) {
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (srcLenBytes < 0) return kroStatusBadArgument;
  if (AnyNull(pSrcCurrPos, pDst, pMarker, table, st)) return kroStatusNullPointer;
  if (*pSrcCurrPos < 0) return kroStatusBadArgument;  // would read before pSrc
  BitReader r(pSrc, srcLenBytes, pSrcCurrPos, pMarker, st);
  int s;
  KroStatus status = ownpj_DecodeHuffSymbol(r, &s, table);
  if (status == kroStatusOk) {
    if (s == 0) {
      *pDst = 0;
    } else if (s < 16) {
      uint32_t v;
      status = ReceiveBits(r, s, &v);
      // T.81 F.2.2.1 EXTEND.
      if (status == kroStatusOk)
        *pDst = Wrap16(static_cast<int32_t>(v) + (v >> (s - 1) != 0 ? 0 : own_pj_lowest_coef[s]));
    } else {
      *pDst = static_cast<Kro16s>(-32768);  // 32768 modulo 2^16
    }
  }
  r.Commit(pSrcCurrPos, st);
  return status;
}

KroStatus StatisticsOne(const Kro16s* pSrc, int* pStatistics) {
  if (AnyNull(pSrc, pStatistics)) return kroStatusNullPointer;
  const int s = ownpj_get_csize(*pSrc);
  if (s > 16) return kroStatusOutOfRange;
  ++pStatistics[s];
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

using namespace kro;

KRO_EXPORT KroStatus kroiDiffPredFirstRow_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst, int width, int P, int Pt) {
  return FirstRow(pSrc, pDst, width, P, Pt, false);
}
KRO_EXPORT KroStatus kroiDiffPredRow_JPEG_16s_C1(const Kro16s* pSrc, const Kro16s* pPrevRow, Kro16s* pDst, int width,
                                                 int predictor) {
  return Row(pSrc, pPrevRow, pDst, width, predictor, kDiffRow);
}
KRO_EXPORT KroStatus kroiReconstructPredFirstRow_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst, int width, int P,
                                                             int Pt) {
  return FirstRow(pSrc, pDst, width, P, Pt, true);
}
KRO_EXPORT KroStatus kroiReconstructPredRow_JPEG_16s_C1(const Kro16s* pSrc, const Kro16s* pPrevRow, Kro16s* pDst,
                                                        int width, int predictor) {
  return Row(pSrc, pPrevRow, pDst, width, predictor, kReconstructRow);
}
KRO_EXPORT KroStatus kroiEncodeHuffmanOne_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                        int* pDstCurrPos, const KroiEncodeHuffmanSpec* pEncHuffTable,
                                                        KroiEncodeHuffmanState* pEncHuffState, int bFlushState) {
  return EncodeOne(pSrc, pDst, dstLenBytes, pDstCurrPos, pEncHuffTable, pEncHuffState, bFlushState);
}
KRO_EXPORT KroStatus kroiDecodeHuffmanOne_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                        Kro16s* pDst, int* pMarker,
                                                        const KroiDecodeHuffmanSpec* pDecHuffTable,
                                                        KroiDecodeHuffmanState* pDecHuffState) {
  return DecodeOne(pSrc, srcLenBytes, pSrcCurrPos, pDst, pMarker, pDecHuffTable, pDecHuffState);
}
KRO_EXPORT KroStatus kroiGetHuffmanStatisticsOne_JPEG_16s_C1(const Kro16s* pSrc, int pStatistics[256]) {
  return StatisticsOne(pSrc, pStatistics);
}
