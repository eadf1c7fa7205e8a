// SPDX-License-Identifier: BSD-3-Clause
// Progressive JPEG Huffman encoding (T.81 G.1.2): DC first and refinement scans, AC
// first scans with end-of-band runs, AC refinement scans with buffered correction
// bits; one block per call, encoders and symbol statistics.
#include <stdlib.h>
#include <string.h>

#include "bitio.h"
#include "kro_checks.h"

namespace kro {
namespace {

// Every progressive call fits in this many free bytes: an EOBRUN (16+14 bits), up to
// 1000 buffered correction bits, 63 symbols of at most 16+11 bits, 7 pending bits,
// all doubled for stuffing (684 bytes), and the fast sink's eight-byte last store.
constexpr int kProgressiveWorstCaseBytes = 1024;

// Binds a sink to one table so the scan coders name only symbols.
template <class Sink>
struct TableSink {
  Sink& sink;
  const EncSpec* table;
  KroStatus Symbol(int sym, uint32_t extra, int nbits) { return sink.Symbol(table, sym, extra, nbits); }
  KroStatus Bits(uint32_t v, int n) { return sink.Bits(v, n); }
};

// Statistics: symbols are counted, bits cost nothing.
struct CountSink {
  int* counts;
  KroStatus Symbol(int sym, uint32_t, int) {
    if (sym < 256) ++counts[sym];
    return kroStatusOk;
  }
  KroStatus Bits(uint32_t, int) { return kroStatusOk; }
};

bool BadBand(int Ss, int Se) { return Ss < 1 || Ss > 63 || Se < Ss || Se > 63; }
bool BadAl(int Al) { return Al < 0 || Al > 13; }

// T.81 G.1.2.2: the pending run as EOBx (x = floor(log2 run)) and the x low bits.
template <class E>
KroStatus ownpj_encode_eobrun(E& e, EncState* st) {
  if (st->eobRun <= 0) return kroStatusOk;
  const int x = ownpj_get_eobsize(st->eobRun);
  if (x > 14) return kroStatusJPEGDataError;
  const KroStatus s = e.Symbol(x << 4, static_cast<uint32_t>(st->eobRun), x);
  if (s == kroStatusOk) st->eobRun = 0;
  return s;
}

// Writes *count buffered correction bits one at a time, counting down as it goes.
template <class E>
KroStatus ownpj_AppendBits(E& e, const uint8_t* bits, int* count) {
  for (const uint8_t* p = bits; *count > 0; ++p, --*count) {
    const KroStatus s = e.Bits(*p & 1, 1);
    if (s != kroStatusOk) return s;
  }
  return kroStatusOk;
}

template <class E>
KroStatus DCFirst(E& e, const Kro16s* src, Kro16s* last_dc, int Al) {
  const int32_t value = src[0] >> Al;
  const int32_t diff = value - *last_dc;
  *last_dc = static_cast<Kro16s>(value);
  const int s = ownpj_get_csize(diff);
  if (s > 11) return kroStatusJPEGDataError;
  return e.Symbol(s, ExtraBits(diff, s), s);
}

// T.81 G.1.2.2. max_size: 11 for the encoder, 10 for the statistics.
template <class E>
KroStatus ACFirst(E& e, const Kro16s* src, int Ss, int Se, int Al, EncState* st, int max_size) {
  int r = 0;
  for (int k = Ss; k <= Se; ++k) {
    const int32_t v = src[own_pj_izigzag_index[k]];
    const int32_t m = abs(v) >> Al;  // magnitudes round toward zero
    if (m == 0) {
      ++r;
      continue;
    }
    KroStatus s = ownpj_encode_eobrun(e, st);
    if (s != kroStatusOk) return s;
    for (; r > 15; r -= 16) {
      s = e.Symbol(0xF0, 0, 0);
      if (s != kroStatusOk) return s;
    }
    const int size = ownpj_get_csize(m);
    if (size > max_size) return kroStatusJPEGDataError;
    s = e.Symbol(r * 16 + size, static_cast<uint32_t>(v < 0 ? ~m : m), size);
    if (s != kroStatusOk) return s;
    r = 0;
  }
  if (r > 0 && ++st->eobRun == kMaxEobRun) return ownpj_encode_eobrun(e, st);
  return kroStatusOk;
}

// T.81 G.1.2.3. The state buffer holds the correction bits of earlier bands (count
// `held`) followed by this band's (count `mine`, from offset `at`); both go out after
// the next symbol, and a band that ends in zeros or bits joins the run.
template <class E>
KroStatus ACRefine(E& e, const Kro16s* src, int Ss, int Se, int Al, EncState* st) {
  int32_t mag[64];
  int eob = 0;  // last newly significant position
  for (int k = Ss; k <= Se; ++k) {
    mag[k] = abs(int32_t{src[own_pj_izigzag_index[k]]}) >> Al;
    if (mag[k] == 1) eob = k;
  }
  uint8_t* buf = st->correctionBits;
  int held = st->correctionBitCount;
  int at = held, mine = 0, r = 0;
  KroStatus s = kroStatusOk;
  auto run_and_held = [&] {
    s = ownpj_encode_eobrun(e, st);
    if (s == kroStatusOk) s = ownpj_AppendBits(e, buf, &held);
    return s == kroStatusOk;
  };
  auto own_bits = [&] {
    s = ownpj_AppendBits(e, buf + at, &mine);
    at = 0;
    return s == kroStatusOk;
  };
  for (int k = Ss; k <= Se; ++k) {
    const int32_t m = mag[k];
    if (m == 0) {
      ++r;
      continue;
    }
    // ZRLs go out only where a new coefficient follows; otherwise the EOB covers them.
    for (; r > 15 && k <= eob; r -= 16) {
      if (!run_and_held() || (s = e.Symbol(0xF0, 0, 0)) != kroStatusOk || !own_bits()) goto fail;
    }
    if (m > 1) {
      if (at + mine < static_cast<int>(sizeof(st->correctionBits))) buf[at + mine] = static_cast<uint8_t>(m & 1);
      ++mine;
      continue;
    }
    if (!run_and_held()) goto fail;
    s = e.Symbol(r * 16 + 1, src[own_pj_izigzag_index[k]] > 0 ? 1 : 0, 1);
    if (s != kroStatusOk || !own_bits()) goto fail;
    r = 0;
  }
  if (r > 0 || mine > 0) {
    ++st->eobRun;
    held += mine;
    if (st->eobRun == kMaxEobRun || held > kMaxCorrectionBits) {
      if (!run_and_held()) goto fail;
    }
  }
  st->correctionBitCount = held;
  return kroStatusOk;
fail:
  st->correctionBitCount = held;
  return s;
}

// End of an AC scan: the pending run and bits, then the padding; the state is reset
// whatever happens. The refinement kind reports a padding failure first, else what
// writing the run or the bits returned; the first kind reports the padding only.
template <class Sink>
KroStatus FlushAC(Sink& sink, const EncSpec* table, EncState* st, bool refine) {
  TableSink<Sink> e{sink, table};
  KroStatus s = ownpj_encode_eobrun(e, st);
  if (s == kroStatusOk) s = ownpj_AppendBits(e, st->correctionBits, &st->correctionBitCount);
  const KroStatus pad = sink.Bits(0x7F, 7);
  return refine && pad == kroStatusOk ? s : pad;
}

// ---- encoders ----------------------------------------------------------------

KroStatus CheckEncoder(const Kro8u* pDst, int dstLenBytes, const int* pDstCurrPos, const EncState* st) {
  if (pDst == nullptr) return kroStatusNullPointer;
  if (dstLenBytes < 1) return kroStatusBadSize;
  if (AnyNull(pDstCurrPos, st)) return kroStatusNullPointer;
  return kroStatusOk;
}

// Callers have refused a negative position (it would write before pDst).
template <class Body>
KroStatus Encode(Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, EncState* st, Body&& body) {
  return WithSink(pDst, dstLenBytes, pDstCurrPos, st, kProgressiveWorstCaseBytes, body);
}

KroStatus EncodeDCFirst(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, Kro16s* pLastDC,
                        int Al, const EncSpec* pDcTable, EncState* st, int bFlushState) {
  if (KroStatus c = CheckEncoder(pDst, dstLenBytes, pDstCurrPos, st)) return c;
  if (*pDstCurrPos < 0) return kroStatusBadArgument;
  if (bFlushState != 0) return FlushState(pDst, dstLenBytes, pDstCurrPos, st);
  if (AnyNull(pSrc, pLastDC)) return kroStatusNullPointer;
  if (BadAl(Al)) return kroStatusBadArgument;
  if (pDcTable == nullptr) return kroStatusNullPointer;
  return Encode(pDst, dstLenBytes, pDstCurrPos, st, [&](auto& sink) {
    TableSink<std::remove_reference_t<decltype(sink)>> e{sink, pDcTable};
    return DCFirst(e, pSrc, pLastDC, Al);
  });
}

KroStatus EncodeDCRefine(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, int Al, EncState* st,
                         int bFlushState) {
  if (KroStatus c = CheckEncoder(pDst, dstLenBytes, pDstCurrPos, st)) return c;
  if (*pDstCurrPos < 0) return kroStatusBadArgument;
  if (bFlushState != 0) return FlushState(pDst, dstLenBytes, pDstCurrPos, st);
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (BadAl(Al)) return kroStatusBadArgument;
  return ownpj_write_bits_jpeg((pSrc[0] >> Al) & 1, 1, pDst, dstLenBytes, pDstCurrPos, st);
}

template <bool kRefine>
KroStatus EncodeAC(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes, int* pDstCurrPos, int Ss, int Se, int Al,
                   const EncSpec* pAcTable, EncState* st, int bFlushState) {
  if (pDst == nullptr) return kroStatusNullPointer;
  if (dstLenBytes < 1) return kroStatusBadSize;
  if (AnyNull(pDstCurrPos, pAcTable, st)) return kroStatusNullPointer;
  if (*pDstCurrPos < 0) return kroStatusBadArgument;
  if (bFlushState != 0) {
    const KroStatus s = Encode(pDst, dstLenBytes, pDstCurrPos, st,
                               [&](auto& sink) { return FlushAC(sink, pAcTable, st, kRefine); });
    memset(st, 0, sizeof(EncState));
    return s;
  }
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (BadAl(Al) || BadBand(Ss, Se)) return kroStatusBadArgument;
  return Encode(pDst, dstLenBytes, pDstCurrPos, st, [&](auto& sink) {
    TableSink<std::remove_reference_t<decltype(sink)>> e{sink, pAcTable};
    return kRefine ? ACRefine(e, pSrc, Ss, Se, Al, st) : ACFirst(e, pSrc, Ss, Se, Al, st, 11);
  });
}

// ---- statistics --------------------------------------------------------------

KroStatus StatsDCFirst(const Kro16s* pSrc, int* pDcStatistics, Kro16s* pLastDC, int Al) {
  if (AnyNull(pSrc, pDcStatistics, pLastDC)) return kroStatusNullPointer;
  if (BadAl(Al)) return kroStatusBadArgument;
  CountSink e{pDcStatistics};
  return DCFirst(e, pSrc, pLastDC, Al);
}

template <bool kRefine>
KroStatus StatsAC(const Kro16s* pSrc, int* pAcStatistics, int Ss, int Se, int Al, EncState* st, int bFlushState) {
  if (AnyNull(pAcStatistics, st)) return kroStatusNullPointer;
  CountSink e{pAcStatistics};
  if (bFlushState != 0) {
    const KroStatus s = ownpj_encode_eobrun(e, st);
    memset(st, 0, sizeof(EncState));
    return s;
  }
  if (pSrc == nullptr) return kroStatusNullPointer;
  if (BadAl(Al) || BadBand(Ss, Se)) return kroStatusBadArgument;
  return kRefine ? ACRefine(e, pSrc, Ss, Se, Al, st) : ACFirst(e, pSrc, Ss, Se, Al, st, 10);
}

}  // namespace
}  // namespace kro

using namespace kro;

KRO_EXPORT KroStatus kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                                int* pDstCurrPos, Kro16s* pLastDC, int Al,
                                                                const KroiEncodeHuffmanSpec* pDcTable,
                                                                KroiEncodeHuffmanState* pEncHuffState,
                                                                int bFlushState) {
  return EncodeDCFirst(pSrc, pDst, dstLenBytes, pDstCurrPos, pLastDC, Al, pDcTable, pEncHuffState, bFlushState);
}
KRO_EXPORT KroStatus kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                                 int* pDstCurrPos, int Al,
                                                                 KroiEncodeHuffmanState* pEncHuffState,
                                                                 int bFlushState) {
  return EncodeDCRefine(pSrc, pDst, dstLenBytes, pDstCurrPos, Al, pEncHuffState, bFlushState);
}
KRO_EXPORT KroStatus kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                                int* pDstCurrPos, int Ss, int Se, int Al,
                                                                const KroiEncodeHuffmanSpec* pAcTable,
                                                                KroiEncodeHuffmanState* pEncHuffState,
                                                                int bFlushState) {
  return EncodeAC<false>(pSrc, pDst, dstLenBytes, pDstCurrPos, Ss, Se, Al, pAcTable, pEncHuffState, bFlushState);
}
KRO_EXPORT KroStatus kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                                 int* pDstCurrPos, int Ss, int Se, int Al,
                                                                 const KroiEncodeHuffmanSpec* pAcTable,
                                                                 KroiEncodeHuffmanState* pEncHuffState,
                                                                 int bFlushState) {
  return EncodeAC<true>(pSrc, pDst, dstLenBytes, pDstCurrPos, Ss, Se, Al, pAcTable, pEncHuffState, bFlushState);
}

KRO_EXPORT KroStatus kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const Kro16s* pSrc, int pDcStatistics[256],
                                                                     Kro16s* pLastDC, int Al) {
  return StatsDCFirst(pSrc, pDcStatistics, pLastDC, Al);
}
KRO_EXPORT KroStatus kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const Kro16s* pSrc, int pAcStatistics[256],
                                                                     int Ss, int Se, int Al,
                                                                     KroiEncodeHuffmanState* pEncHuffState,
                                                                     int bFlushState) {
  return StatsAC<false>(pSrc, pAcStatistics, Ss, Se, Al, pEncHuffState, bFlushState);
}
KRO_EXPORT KroStatus kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const Kro16s* pSrc, int pAcStatistics[256],
                                                                      int Ss, int Se, int Al,
                                                                      KroiEncodeHuffmanState* pEncHuffState,
                                                                      int bFlushState) {
  return StatsAC<true>(pSrc, pAcStatistics, Ss, Se, Al, pEncHuffState, bFlushState);
}
