/* SPDX-License-Identifier: BSD-3-Clause */
/*
 * kroj.h - public interface of libkrojmx, the JPEG and JPEG 2000 codec primitives.
 *
 * Every function works on caller-owned memory and returns a KroStatus: 0 success,
 * negative an error (nothing was written, or the operation stopped where its
 * documentation says), positive a warning (the operation completed). Arguments are
 * checked before any memory is written; the first failing check decides the status.
 *
 * Images are given by a pointer to the first pixel of the region, a row step in bytes
 * and a KroiSize. 8x8 blocks are 64 Kro16s in natural row-major order unless a
 * function says zig-zag. State and table buffers are sized by the library
 * (...GetBufSize / ...GetStateSize) and owned by the caller.
 *
 * Threads: the library creates no threads except inside the row-parallel image
 * functions, which split their rows over an OpenMP team of threads_omp_of_n_kro
 * threads when the region has 8193 samples or more. No function keeps hidden state:
 * distinct buffers may be used from different threads at once; one state or table
 * buffer must be used by one thread at a time.
 */
#ifndef KROJ_H_
#define KROJ_H_

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__) || defined(__clang__)
#define KRO_API __attribute__((visibility("default")))
#else
#define KRO_API
#endif

/* ======================================================================== */
/* Element types                                                            */
/* ======================================================================== */

typedef unsigned char Kro8u;
typedef signed char Kro8s;
typedef unsigned short Kro16u;
typedef signed short Kro16s;
typedef unsigned int Kro32u;
typedef signed int Kro32s;
typedef long long Kro64s;
typedef float Kro32f;
typedef double Kro64f;

typedef struct { Kro8s re; Kro8s im; } Kro8sc;
typedef struct { Kro16s re; Kro16s im; } Kro16sc;
typedef struct { Kro32s re; Kro32s im; } Kro32sc;
typedef struct { Kro64s re; Kro64s im; } Kro64sc;
typedef struct { Kro32f re; Kro32f im; } Kro32fc;
typedef struct { Kro64f re; Kro64f im; } Kro64fc;

/* Size of an image region: width in pixels, height in rows. Passed by value. */
typedef struct {
  int width;
  int height;
} KroiSize;

/* A tile component on the JPEG 2000 reference grid. Only the parity of x and y
 * (the low-pass or high-pass phase of the first sample) is used. */
typedef struct {
  int x;
  int y;
  int width;
  int height;
} KroiRect;

/* ======================================================================== */
/* Status codes                                                             */
/* ======================================================================== */

typedef enum {
  kroStatusDivideByZeroWarning = 6,
  kroStatusOk = 0,
  kroStatusError = -2,
  kroStatusBadArgument = -5,
  kroStatusBadSize = -6,
  kroStatusOutOfRange = -7,
  kroStatusNullPointer = -8,
  kroStatusNoMemory = -9,
  kroStatusDivideByZero = -10,
  kroStatusBadStep = -14,
  kroStatusContextMismatch = -17,
  kroStatusJPEGOutOfBuffer = -62,
  kroStatusJPEGDataError = -63,
  kroStatusJPEGHuffTableError = -64,
  kroStatusJPEG2KCorruptCodeBlock = -112,
  kroStatusJPEG2KBadPassNumber = -113,
  kroStatusJPEG2KNotAttached = -180
} KroStatus;

/* ======================================================================== */
/* Library version                                                          */
/* ======================================================================== */

typedef struct {
  int major;            /* 5 */
  int minor;            /* 1 */
  int majorBuild;       /* 133 */
  int build;            /* 250 */
  char targetCpu[4];    /* "mx" */
  const char* name;     /* "libkrojmx.so.5.1" */
  const char* version;  /* "5.1.1" */
  const char* buildDate;
} KroLibraryVersion;

/* The constant version record; never freed. */
KRO_API const KroLibraryVersion* krojGetLibVersion(void);

/* ======================================================================== */
/* Aligned allocation                                                       */
/* ======================================================================== */
/* Each returns a 32-byte aligned block of len elements, or null when len < 1
 * or the system allocator fails. Release only with krosFree. */

KRO_API Kro8u* krosMalloc_8u(int len);
KRO_API Kro8s* krosMalloc_8s(int len);
KRO_API Kro16u* krosMalloc_16u(int len);
KRO_API Kro16s* krosMalloc_16s(int len);
KRO_API Kro32u* krosMalloc_32u(int len);
KRO_API Kro32s* krosMalloc_32s(int len);
KRO_API Kro32f* krosMalloc_32f(int len);
KRO_API Kro64s* krosMalloc_64s(int len);
KRO_API Kro64f* krosMalloc_64f(int len);
KRO_API Kro8sc* krosMalloc_8sc(int len);
KRO_API Kro16sc* krosMalloc_16sc(int len);
KRO_API Kro32sc* krosMalloc_32sc(int len);
KRO_API Kro64sc* krosMalloc_64sc(int len);
KRO_API Kro32fc* krosMalloc_32fc(int len);
KRO_API Kro64fc* krosMalloc_64fc(int len);
/* Releases a block from any krosMalloc_*; null is ignored. */
KRO_API void krosFree(void* ptr);

/* ======================================================================== */
/* Row-parallel execution                                                   */
/* ======================================================================== */
/* Number of threads the row-parallel image functions use for regions of 8193
 * samples or more. Read at every call; initialised to the number of processors.
 * Changing it while calls are running affects only later calls. */
KRO_API extern int threads_omp_of_n_kro;

/* ======================================================================== */
/* JPEG Huffman coding: tables, baseline, progressive, lossless, statistics */
/* ======================================================================== */
/* Tables arrive as in a DHT segment: pListBits = BITS, 16 counts of codes of
 * length 1..16; pListVals = HUFFVAL, the symbols in order of increasing code length.
 * Table and state buffers are sized by their ...GetBufSize function
 * (encoder spec 1024 bytes, decoder spec 1644, encoder state 1048, decoder state 24)
 * and owned by the caller; their contents are private. The ...InitAlloc functions
 * allocate with krosMalloc_8u and return kroStatusNullPointer when that fails; a
 * spec whose build fails is still handed back and must be freed. Blocks are 64
 * Kro16s in natural order. Coded data carries a 0x00 after every 0xFF data byte;
 * a flush pads the last byte with 1-bits. */

typedef struct KroiEncodeHuffmanSpec KroiEncodeHuffmanSpec;
typedef struct KroiDecodeHuffmanSpec KroiDecodeHuffmanSpec;
typedef struct KroiEncodeHuffmanState KroiEncodeHuffmanState;
typedef struct KroiDecodeHuffmanState KroiDecodeHuffmanState;

/* Huffman tables and states. GetBufSize: pSize null -> -8. The encoder spec
 * refuses BITS totalling more than 256 codes or over-filling a code length (-64;
 * codes may not be all 1-bits). The decoder spec refuses only more than 256 codes:
 * an over-full list is accepted, its codes that do not fit their length are never
 * matched through the 8-bit lookup. A symbol listed twice keeps its last code.
 * Decoder state init clears the first 20 of its 24 bytes. */
KRO_API KroStatus kroiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
KRO_API KroStatus kroiEncodeHuffmanSpecInit_JPEG_8u(const Kro8u* pListBits, const Kro8u* pListVals,
                                                    KroiEncodeHuffmanSpec* pEncHuffSpec);
KRO_API KroStatus kroiEncodeHuffmanSpecInitAlloc_JPEG_8u(const Kro8u* pListBits,
                                                         const Kro8u* pListVals,
                                                         KroiEncodeHuffmanSpec** ppEncHuffSpec);
KRO_API KroStatus kroiEncodeHuffmanSpecFree_JPEG_8u(KroiEncodeHuffmanSpec* pEncHuffSpec);
KRO_API KroStatus kroiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
KRO_API KroStatus kroiEncodeHuffmanStateInit_JPEG_8u(KroiEncodeHuffmanState* pEncHuffState);
KRO_API KroStatus kroiEncodeHuffmanStateInitAlloc_JPEG_8u(KroiEncodeHuffmanState** ppEncHuffState);
KRO_API KroStatus kroiEncodeHuffmanStateFree_JPEG_8u(KroiEncodeHuffmanState* pEncHuffState);
KRO_API KroStatus kroiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
KRO_API KroStatus kroiDecodeHuffmanSpecInit_JPEG_8u(const Kro8u* pListBits, const Kro8u* pListVals,
                                                    KroiDecodeHuffmanSpec* pDecHuffSpec);
KRO_API KroStatus kroiDecodeHuffmanSpecInitAlloc_JPEG_8u(const Kro8u* pListBits,
                                                         const Kro8u* pListVals,
                                                         KroiDecodeHuffmanSpec** ppDecHuffSpec);
KRO_API KroStatus kroiDecodeHuffmanSpecFree_JPEG_8u(KroiDecodeHuffmanSpec* pDecHuffSpec);
KRO_API KroStatus kroiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
KRO_API KroStatus kroiDecodeHuffmanStateInit_JPEG_8u(KroiDecodeHuffmanState* pDecHuffState);
KRO_API KroStatus kroiDecodeHuffmanStateInitAlloc_JPEG_8u(KroiDecodeHuffmanState** ppDecHuffState);
KRO_API KroStatus kroiDecodeHuffmanStateFree_JPEG_8u(KroiDecodeHuffmanState* pDecHuffState);

/* Baseline block encoding: DC difference from *pLastDC (then replaced), AC run/size
 * symbols with ZRL and EOB, appended at pDst[*pDstCurrPos]. Checks: pDst null -> -8,
 * dstLenBytes < 1 -> -6, pDstCurrPos or pEncHuffState null -> -8, then (not flushing)
 * pSrc, pLastDC, pDcTable, pAcTable null -> -8. bFlushState != 0 only pads the
 * pending bits and resets the state. -62: destination full (the bytes stored so far
 * stay, the state is that of before the failing symbol: the stream is broken);
 * -64: a needed symbol has no code. Coefficients lie in -32767..32767 (unchecked):
 * an AC value of -32768 takes category 16, symbol run*16 + 16, which no JPEG table
 * holds; after a run of 15 that index is 256, treated as a symbol without a code.
 * The Direct variant writes at bit position *pDstBitsLen of pDst with no capacity, no
 * state and no flush: it returns 0 whenever its six pointers are non-null (else -8),
 * silently skips symbols without a code, and the caller pads the last byte. */
KRO_API KroStatus kroiEncodeHuffman8x8_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                     int* pDstCurrPos, Kro16s* pLastDC,
                                                     const KroiEncodeHuffmanSpec* pDcTable,
                                                     const KroiEncodeHuffmanSpec* pAcTable,
                                                     KroiEncodeHuffmanState* pEncHuffState,
                                                     int bFlushState);
KRO_API KroStatus kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                            int* pDstBitsLen, Kro16s* pLastDC,
                                                            const KroiEncodeHuffmanSpec* pDcTable,
                                                            const KroiEncodeHuffmanSpec* pAcTable);

/* Baseline block decoding into 64 coefficients (cleared first), reading from
 * pSrc[*pSrcCurrPos] with srcLenBytes bytes in all. A marker (0xFF then a byte other
 * than 0x00 or 0xFF) stops reading: its code goes to *pMarker, which the caller clears
 * before decoding past it. Checks: pSrc null -> -8, srcLenBytes < 0 -> -5, any other
 * pointer null -> -8. -62: the source ended while bits were needed; -63: no code
 * matches, or bits were needed after a marker; -2: a run carried the position beyond
 * the block (zig-zag positions 64..71 still land on coefficient 63).
 * The Direct variant reads from pSrc + (*pSrcBitsLen >> 3) until a marker, with no
 * length: the source must end in a marker. The caller keeps the bit accumulator and
 * its count; *pSrcBitsLen receives 8 times the index in pSrc of the next unread byte,
 * so consecutive calls pass the same variable along. Checks: pSrc or pSrcBitsLen
 * null -> -8; *pSrcBitsLen < 0 -> -5; pDst, pLastDC, pMarker, pPrefetchedBits,
 * pNumValidPrefetchedBits null -> -8; *pNumValidPrefetchedBits < 0 -> -5; tables
 * null -> -8. Running out of data before the DC symbol leaves a zero block (0). The
 * last bits before a marker are looked up padded with zeros; a code found there that
 * is longer than they are leaves a negative count, refused by the next call (-5). */
KRO_API KroStatus kroiDecodeHuffman8x8_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                     int* pSrcCurrPos, Kro16s* pDst, Kro16s* pLastDC,
                                                     int* pMarker,
                                                     const KroiDecodeHuffmanSpec* pDcTable,
                                                     const KroiDecodeHuffmanSpec* pAcTable,
                                                     KroiDecodeHuffmanState* pDecHuffState);
KRO_API KroStatus kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
    const Kro8u* pSrc, int* pSrcBitsLen, Kro16s* pDst, Kro16s* pLastDC, int* pMarker,
    Kro32u* pPrefetchedBits, int* pNumValidPrefetchedBits, const KroiDecodeHuffmanSpec* pDcTable,
    const KroiDecodeHuffmanSpec* pAcTable);

/* Statistics: adds to 256 counters per table the symbols the baseline encoder would
 * write for the block (the caller clears them first). Any pointer null -> -8. An AC
 * value of -32768 counts symbol run*16 + 16; after a run of 15 (index 256) nothing. */
KRO_API KroStatus kroiGetHuffmanStatistics8x8_JPEG_16s_C1(const Kro16s* pSrc, int pDcStatistics[256],
                                                          int pAcStatistics[256], Kro16s* pLastDC);
/* Optimal table from 256 counters (T.81 K.2; ties go to the higher symbol), limited to
 * 16-bit codes, with no all-1-bits code. Writes BITS (16 bytes) and HUFFVAL (one byte
 * per symbol with a non-zero count). Pointer null -> -8; a code longer than 32 bits
 * before limiting -> -64 (nothing written). All-zero counters give empty lists. */
KRO_API KroStatus kroiEncodeHuffmanRawTableInit_JPEG_8u(const int pStatistics[256], Kro8u* pListBits,
                                                        Kro8u* pListVals);

/* Progressive encoding (T.81 G.1.2), one block per call; Ss..Se is the spectral band in
 * zig-zag positions, Al the point transform. AC scans code runs of empty bands as
 * EOBRUN across blocks and calls, refinement scans buffer their correction bits in the
 * state; bFlushState != 0 writes what is pending, pads and resets the state. Checks:
 * pDst null -> -8, dstLenBytes < 1 -> -6, pDstCurrPos, the AC table and pEncHuffState
 * null -> -8; then (not flushing) pSrc (and pLastDC) null -> -8; Al outside 0..13,
 * Ss outside 1..63, Se outside Ss..63 -> -5; DC first: pDcTable null -> -8 last.
 * -63: a DC category or AC size above 11. A refinement flush returns a padding failure
 * first, else the status of writing the pending run or bits. */
KRO_API KroStatus kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                             int dstLenBytes, int* pDstCurrPos,
                                                             Kro16s* pLastDC, int Al,
                                                             const KroiEncodeHuffmanSpec* pDcTable,
                                                             KroiEncodeHuffmanState* pEncHuffState,
                                                             int bFlushState);
KRO_API KroStatus kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                              int dstLenBytes, int* pDstCurrPos, int Al,
                                                              KroiEncodeHuffmanState* pEncHuffState,
                                                              int bFlushState);
KRO_API KroStatus kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                             int dstLenBytes, int* pDstCurrPos, int Ss,
                                                             int Se, int Al,
                                                             const KroiEncodeHuffmanSpec* pAcTable,
                                                             KroiEncodeHuffmanState* pEncHuffState,
                                                             int bFlushState);
KRO_API KroStatus kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst,
                                                              int dstLenBytes, int* pDstCurrPos, int Ss,
                                                              int Se, int Al,
                                                              const KroiEncodeHuffmanSpec* pAcTable,
                                                              KroiEncodeHuffmanState* pEncHuffState,
                                                              int bFlushState);
/* Progressive statistics. DC first: any pointer null -> -8, Al outside 0..13 -> -5,
 * category above 11 -> -63. AC kinds: counters or state null -> -8, then a flush
 * (counts the pending EOBRUN, resets the state), then pSrc null -> -8, then the
 * Ss/Se/Al ranges -> -5. AC first refuses sizes above 10 (-63), one less than its
 * encoder, kept for compatibility with existing callers. */
KRO_API KroStatus kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const Kro16s* pSrc,
                                                                  int pDcStatistics[256],
                                                                  Kro16s* pLastDC, int Al);
KRO_API KroStatus kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const Kro16s* pSrc,
                                                                  int pAcStatistics[256], int Ss,
                                                                  int Se, int Al,
                                                                  KroiEncodeHuffmanState* pEncHuffState,
                                                                  int bFlushState);
KRO_API KroStatus kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const Kro16s* pSrc,
                                                                   int pAcStatistics[256], int Ss,
                                                                   int Se, int Al,
                                                                   KroiEncodeHuffmanState* pEncHuffState,
                                                                   int bFlushState);

/* Progressive decoding (T.81 G.2), one block per call, refining the caller's block in
 * place (never cleared). Checks: pSrc null -> -8, srcLenBytes < 1 -> -6 (unlike the
 * baseline decoder), pSrcCurrPos, pDst, pMarker (and pLastDC) null -> -8, Al outside
 * 0..13 or Ss/Se outside 1 <= Ss <= Se <= 63 -> -5, table and state null -> -8.
 * Reader statuses as for the baseline decoder; a failed block is not retried. */
KRO_API KroStatus kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                             int* pSrcCurrPos, Kro16s* pDst,
                                                             Kro16s* pLastDC, int* pMarker, int Al,
                                                             const KroiDecodeHuffmanSpec* pDcTable,
                                                             KroiDecodeHuffmanState* pDecHuffState);
KRO_API KroStatus kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                              int* pSrcCurrPos, Kro16s* pDst,
                                                              int* pMarker, int Al,
                                                              KroiDecodeHuffmanState* pDecHuffState);
KRO_API KroStatus kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                             int* pSrcCurrPos, Kro16s* pDst,
                                                             int* pMarker, int Ss, int Se, int Al,
                                                             const KroiDecodeHuffmanSpec* pAcTable,
                                                             KroiDecodeHuffmanState* pDecHuffState);
KRO_API KroStatus kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                              int* pSrcCurrPos, Kro16s* pDst,
                                                              int* pMarker, int Ss, int Se, int Al,
                                                              const KroiDecodeHuffmanSpec* pAcTable,
                                                              KroiDecodeHuffmanState* pDecHuffState);

/* Lossless coding (T.81 H). Predictors 1..7 over Ra (left), Rb (above), Rc (above
 * left), computed in 32 bits, results and differences modulo 2^16; column 0 of a row
 * after the first is predicted by Rb. The first row is predicted by 2^(P-Pt-1) at
 * column 0 (no offset when Pt >= P). First-row checks: pointers -> -8, width < 1 -> -6,
 * P outside 2..16 or Pt < 0 -> -5; row checks: pointers -> -8, width < 1 -> -6,
 * predictor outside 1..7 -> -5. */
KRO_API KroStatus kroiDiffPredFirstRow_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst, int width, int P,
                                                   int Pt);
KRO_API KroStatus kroiDiffPredRow_JPEG_16s_C1(const Kro16s* pSrc, const Kro16s* pPrevRow, Kro16s* pDst,
                                              int width, int predictor);
KRO_API KroStatus kroiReconstructPredFirstRow_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst, int width,
                                                          int P, int Pt);
KRO_API KroStatus kroiReconstructPredRow_JPEG_16s_C1(const Kro16s* pSrc, const Kro16s* pPrevRow,
                                                     Kro16s* pDst, int width, int predictor);
/* One difference as a DC-style category symbol plus extra bits; category 16 (0x8000)
 * has no extra bits. The encoder returns 0 once its checks pass (pDst null -> -8,
 * dstLenBytes < 1 -> -6, pDstCurrPos or state null -> -8, then unless flushing pSrc or
 * table null -> -8), whatever the writer met: callers watch the position, as existing
 * callers do. The decoder: pSrc null -> -8, srcLenBytes < 0 -> -5, other pointers
 * null -> -8; reader failures are returned and leave *pDst alone. */
KRO_API KroStatus kroiEncodeHuffmanOne_JPEG_16s1u_C1(const Kro16s* pSrc, Kro8u* pDst, int dstLenBytes,
                                                     int* pDstCurrPos,
                                                     const KroiEncodeHuffmanSpec* pEncHuffTable,
                                                     KroiEncodeHuffmanState* pEncHuffState,
                                                     int bFlushState);
KRO_API KroStatus kroiDecodeHuffmanOne_JPEG_1u16s_C1(const Kro8u* pSrc, int srcLenBytes,
                                                     int* pSrcCurrPos, Kro16s* pDst, int* pMarker,
                                                     const KroiDecodeHuffmanSpec* pDecHuffTable,
                                                     KroiDecodeHuffmanState* pDecHuffState);
KRO_API KroStatus kroiGetHuffmanStatisticsOne_JPEG_16s_C1(const Kro16s* pSrc, int pStatistics[256]);

/* ======================================================================== */
/* JPEG quantisation, 8x8 DCT, level shift and zig-zag                      */
/* ======================================================================== */
/* Raw quantisation tables are 64 Kro8u steps in zig-zag order, as stored in a
 * JPEG stream. The working tables are 64 Kro16u in natural order: the forward
 * one holds 32768 / step rounded (a 15-bit fraction), the inverse one the steps.
 * All block functions take 64 Kro16s in natural order. */

/* Scales a raw table in place by a quality factor: S = 5000 / q for q < 50,
 * else 200 - 2q; each step becomes (step * S + 50) / 100 clamped to 1..255.
 * 50 keeps the table; 100, above 100 and negative factors give all ones. The
 * factor is not range-checked; 0, which has no scale, leaves the table unchanged
 * and returns kroStatusBadArgument. -8 for a null table. */
KRO_API KroStatus kroiQuantFwdRawTableInit_JPEG_8u(Kro8u* pQuantRawTable, int qualityFactor);
/* Forward working table. A zero step gives 65535 in its entry and the warning
 * kroStatusDivideByZeroWarning; -8 for a null pointer. */
KRO_API KroStatus kroiQuantFwdTableInit_JPEG_8u16u(const Kro8u* pQuantRawTable,
                                                   Kro16u* pQuantFwdTable);
/* Inverse working table (the steps widened and put in natural order). */
KRO_API KroStatus kroiQuantInvTableInit_JPEG_8u16u(const Kro8u* pQuantRawTable,
                                                   Kro16u* pQuantInvTable);
/* c = coef * recip / 32768 rounded half to even, saturated. As the reciprocal is
 * rounded, c may differ by one from coef / step. */
KRO_API KroStatus kroiQuantFwd8x8_JPEG_16s_C1I(Kro16s* pSrcDst, const Kro16u* pQuantFwdTable);
/* coef * step, saturated to 16 bits. */
KRO_API KroStatus kroiQuantInv8x8_JPEG_16s_C1I(Kro16s* pSrcDst, const Kro16u* pQuantInvTable);

/* Forward and inverse 8x8 DCT (T.81 A.3.3) in 16-bit fixed point: forward rows then
 * columns, inverse columns then rows, exact integer arithmetic. Intermediates wrap
 * at 32 bits and are kept as 16 bits between passes, so out-of-range input wraps
 * rather than saturates. A constant block v gives 8v at index 0; an inverse DC of
 * 8v gives v everywhere. -8 for a null pointer. */
KRO_API KroStatus kroiDCT8x8Fwd_16s_C1(const Kro16s* pSrc, Kro16s* pDst);
KRO_API KroStatus kroiDCT8x8Fwd_16s_C1I(Kro16s* pSrcDst);
KRO_API KroStatus kroiDCT8x8Inv_16s_C1(const Kro16s* pSrc, Kro16s* pDst);
KRO_API KroStatus kroiDCT8x8Inv_16s_C1I(Kro16s* pSrcDst);

/* Forward DCT into pDst, then quantisation of pDst as kroiQuantFwd8x8_JPEG_16s_C1I.
 * -8 for any null pointer. */
KRO_API KroStatus kroiDCTQuantFwd8x8_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst,
                                                 const Kro16u* pQuantFwdTable);
KRO_API KroStatus kroiDCTQuantFwd8x8_JPEG_16s_C1I(Kro16s* pSrcDst, const Kro16u* pQuantFwdTable);
/* An 8x8 region of 8-bit samples, minus 128, forward DCT, quantised into 64
 * contiguous coefficients. Checks: pSrc or pDst null -8; srcStep < 1 -14;
 * table null -8. */
KRO_API KroStatus kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDst,
                                                      const Kro16u* pQuantFwdTable);
/* Dequantisation (saturated) into pDst, then inverse DCT of pDst. -8 for any null
 * pointer. */
KRO_API KroStatus kroiDCTQuantInv8x8_JPEG_16s_C1(const Kro16s* pSrc, Kro16s* pDst,
                                                 const Kro16u* pQuantInvTable);
KRO_API KroStatus kroiDCTQuantInv8x8_JPEG_16s_C1I(Kro16s* pSrcDst, const Kro16u* pQuantInvTable);
/* Dequantisation, inverse DCT, plus 128 clamped to 0..255 into an 8x8 region;
 * pSrc is left unchanged. Checks: pSrc or pDst null -8; dstStep < 1 -14; table
 * null -8. */
KRO_API KroStatus kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Kro16s* pSrc, Kro8u* pDst,
                                                      int dstStep,
                                                      const Kro16u* pQuantInvTable);

/* Level shifts over a region: dst = src - 128, and dst = clamp(src + 128, 0, 255).
 * Checks: pSrc null -8; srcStep < 1 -14; pDst null -8; dstStep < 1 -14; width or
 * height < 1 -6. Regions of 8193 samples or more split their rows over threads. */
KRO_API KroStatus kroiSub128_JPEG_8u16s_C1R(const Kro8u* pSrc, int srcStep, Kro16s* pDst,
                                            int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAdd128_JPEG_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst,
                                            int dstStep, KroiSize roiSize);

/* Zig-zag reordering (T.81 figure A.6): Fwd natural to zig-zag, Inv back. The
 * blocks must not overlap. -8 for a null pointer. */
KRO_API KroStatus kroiZigzagFwd8x8_16s_C1(const Kro16s* pSrc, Kro16s* pDst);
KRO_API KroStatus kroiZigzagInv8x8_16s_C1(const Kro16s* pSrc, Kro16s* pDst);

/* ======================================================================== */
/* JPEG colour conversion, sampling and MCU conversion                      */
/* ======================================================================== */

/* ---- Plane colour conversion (JFIF YCbCr, Adobe-style YCCK) ----
 * Arguments: source, source step, destination, destination step, roiSize. A planar
 * side is an array of 3 or 4 plane pointers sharing one step; steps are in bytes.
 * Checks: any null pointer (array or plane) -> kroStatusNullPointer; srcStep or
 * dstStep < 1 -> kroStatusBadStep; width < 1, then height < 1 -> kroStatusBadSize.
 * The 8-bit members split their rows over threads for regions of 8193 samples or
 * more; the 16-bit packed members run on the calling thread.
 *
 * Encoder side, 16 fraction bits, sums unsigned, shifted right by 16:
 *   Y  = (19595 R + 38470 G + 7471 B + 32768) >> 16
 *   Cb = (-11059 R - 21709 G + 32768 B + 8421375) >> 16
 *   Cr = (32768 R - 27439 G - 5329 B + 8421375) >> 16
 * 8421375 = 128 * 65536 + 32767: the chroma offset plus a rounding term one below
 * one half, kept for compatibility. CMYK input converts R = 255 - C, G = 255 - M,
 * B = 255 - Y and passes K through. Packed input: each 5-bit field f reads as
 * f << 3, the 6-bit green of 565 as f << 2 (no bit replication).
 * Layouts: RGB555 R bits 0-4, G 5-9, B 10-14 (bit 15 0 on output, ignored on input);
 * RGB565 R 0-4, G 5-10, B 11-15; the BGR formats swap R and B. */
KRO_API KroStatus kroiBGR555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                     Kro8u* const pDst[3], int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiBGR565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                     Kro8u* const pDst[3], int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiBGRToYCbCr_JPEG_8u_C3P3R(const Kro8u* pSrc, int srcStep,
                                               Kro8u* const pDst[3], int dstStep,
                                               KroiSize roiSize);
KRO_API KroStatus kroiRGB555ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                     Kro8u* const pDst[3], int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R(const Kro16u* pSrc, int srcStep,
                                                     Kro8u* const pDst[3], int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiRGBToYCbCr_JPEG_8u_C3P3R(const Kro8u* pSrc, int srcStep,
                                               Kro8u* const pDst[3], int dstStep,
                                               KroiSize roiSize);
KRO_API KroStatus kroiRGBToYCbCr_JPEG_8u_P3R(const Kro8u* const pSrc[3], int srcStep,
                                             Kro8u* const pDst[3], int dstStep,
                                             KroiSize roiSize);
/* C, M, Y, K (planar or interleaved) -> Y, Cb, Cr, K planes. */
KRO_API KroStatus kroiCMYKToYCCK_JPEG_8u_C4P4R(const Kro8u* pSrc, int srcStep,
                                               Kro8u* const pDst[4], int dstStep,
                                               KroiSize roiSize);
KRO_API KroStatus kroiCMYKToYCCK_JPEG_8u_P4R(const Kro8u* const pSrc[4], int srcStep,
                                             Kro8u* const pDst[4], int dstStep,
                                             KroiSize roiSize);
/* Y alone, as in the full conversion. */
KRO_API KroStatus kroiBGRToY_JPEG_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst,
                                           int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiRGBToY_JPEG_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst,
                                           int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiRGBToY_JPEG_8u_P3C1R(const Kro8u* const pSrc[3], int srcStep,
                                           Kro8u* pDst, int dstStep, KroiSize roiSize);

/* Decoder side, with d = sample - 128, each result clamped to 0..255:
 *   R = Y + ((91881 dCr + 32768) >> 16)
 *   G = Y + ((32768 - 22554 dCb - 46802 dCr) >> 16)
 *   B = Y + ((116130 dCb + 32768) >> 16)
 * Packed output drops the low bits of the clamped values (5 or 6 bits kept). YCCK
 * output stores C = 255 - R, M = 255 - G, Y = 255 - B and copies K. */
KRO_API KroStatus kroiYCbCrToBGR555_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                     Kro16u* pDst, int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiYCbCrToBGR565_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                     Kro16u* pDst, int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiYCbCrToBGR_JPEG_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                               Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiYCbCrToRGB555_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                     Kro16u* pDst, int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiYCbCrToRGB565_JPEG_8u16u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                                     Kro16u* pDst, int dstStep,
                                                     KroiSize roiSize);
KRO_API KroStatus kroiYCbCrToRGB_JPEG_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep,
                                               Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiYCbCrToRGB_JPEG_8u_P3R(const Kro8u* const pSrc[3], int srcStep,
                                             Kro8u* const pDst[3], int dstStep,
                                             KroiSize roiSize);
KRO_API KroStatus kroiYCCKToCMYK_JPEG_8u_P4C4R(const Kro8u* const pSrc[4], int srcStep,
                                               Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiYCCKToCMYK_JPEG_8u_P4R(const Kro8u* const pSrc[4], int srcStep,
                                             Kro8u* const pDst[4], int dstStep,
                                             KroiSize roiSize);

/* ---- Chroma down- and up-sampling by two ----
 * Row functions: one output row from one or two source rows of srcWidth samples.
 * Checks: any null pointer -> kroStatusNullPointer; srcWidth < 1 -> kroStatusBadSize.
 * Down (box, ceil(w/2) outputs; an odd w reads the sample after the row):
 *   H2V1 (s[2j] + s[2j+1] + b) >> 1, b = 0, 1, 0, 1, ... along the row;
 *   H2V2 (sum of the 2x2 group + b) >> 2, b = 1, 2, 1, 2, ...
 * Up (triangle, 2w outputs, edge samples replicated): H2V1 weighs the nearer sample
 * 3/4 and the other 1/4, rounding +1 for even and +2 for odd outputs, and copies
 * the end samples. H2V2 forms C_i = 3 pSrc1[i] + pSrc2[i] (pSrc1 the nearer row),
 * then 3/4 : 1/4 horizontally with ends 4 C, over 16, +8 even and +7 odd.
 * H1V2 computes exactly what H2V2 computes. A width of 1 is accepted and reads
 * pSrc[1]; of the four outputs the filter forms then, only the first two fit the
 * 2w-sample destination and are written (pDst[0], pDst[1]). */
KRO_API KroStatus kroiSampleDownRowH2V1_Box_JPEG_8u_C1(const Kro8u* pSrc, int srcWidth,
                                                       Kro8u* pDst);
KRO_API KroStatus kroiSampleDownRowH2V2_Box_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                       int srcWidth, Kro8u* pDst);
KRO_API KroStatus kroiSampleUpRowH1V2_Triangle_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                          int srcWidth, Kro8u* pDst);
KRO_API KroStatus kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Kro8u* pSrc, int srcWidth,
                                                          Kro8u* pDst);
KRO_API KroStatus kroiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Kro8u* pSrc1, const Kro8u* pSrc2,
                                                          int srcWidth, Kro8u* pDst);

/* Plane functions: the destination size drives the loop, the source size is only
 * checked. Checks: pSrc null -8; srcStep < 1 -14; srcRoiSize side < 1 -6; pDst null
 * -8; dstStep < 1 -14; dstRoiSize width < 1, then height < 1, -6. Rows split over
 * threads for destinations of 8193 samples or more.
 * Down: H2V1 (a + b + 1) >> 1; H2V2 (sum of the 2x2 group + 3) >> 2.
 * Up: the row filters without edge replication: every destination row reads one
 * sample left and right of the source region, and H2V2 reads the source row above
 * the region (for the first destination row) and below it (for the last). The
 * caller supplies that one-sample border. */
KRO_API KroStatus kroiSampleDownH2V1_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                 KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                 KroiSize dstRoiSize);
KRO_API KroStatus kroiSampleDownH2V2_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                                 KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                                 KroiSize dstRoiSize);
KRO_API KroStatus kroiSampleUpH2V1_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                               KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                               KroiSize dstRoiSize);
KRO_API KroStatus kroiSampleUpH2V2_JPEG_8u_C1R(const Kro8u* pSrc, int srcStep,
                                               KroiSize srcRoiSize, Kro8u* pDst, int dstStep,
                                               KroiSize dstRoiSize);

/* ---- MCU conversion, encoder side ----
 * One MCU of interleaved pixels at pSrc (row step srcStep bytes) -> level-shifted
 * 8x8 blocks of Kro16s, natural order, one buffer per component. Geometries: 444
 * 8x8 (one block per component); 422 16x8 (luminance blocks left, right at 0, 64);
 * 411 16x16 (luminance blocks at 0, 64, 128, 192: top-left, top-right, bottom-left,
 * bottom-right). Chroma is one block combining 1, 2 or 4 pixels; the K of YCCK is
 * full resolution, laid out like the luminance.
 * Checks: pSrc or pDstMCU null -8; srcStep < 1 -14; each component buffer null -8.
 * Arithmetic truncates (no rounding terms): Y' = ((19595 R + 38470 G + 7471 B) >> 16)
 * - 128; Cb' = (-11059 R - 21709 G + 32768 B) >> s and Cr' = (32768 R - 27439 G -
 * 5329 B) >> s over the sums of the group's R, G, B, s = 16, 17, 18 for groups of
 * 1, 2, 4 pixels. CMYK complements C, M, Y first; K' = K - 128. The SampleDown and
 * Split members convert nothing: the floor of the group mean minus 128.
 * Split422 reads rows of 32 bytes Y0 Cb Y1 Cr. */
KRO_API KroStatus kroiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                          Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                          Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                          Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                          Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                          Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                          Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[4]);
KRO_API KroStatus kroiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[4]);
KRO_API KroStatus kroiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[4]);
KRO_API KroStatus kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiSampleDown411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiSampleDown422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiSampleDown444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                      Kro16s* pDstMCU[3]);
KRO_API KroStatus kroiSplit422LS_MCU_8u16s_C2P3R(const Kro8u* pSrc, int srcStep,
                                                 Kro16s* pDstMCU[3]);

/* ---- MCU conversion, decoder side ----
 * The blocks of one MCU (geometries and layout as on the encoder side; chroma
 * replicated over its 1, 2 or 4 pixels) -> interleaved pixels at pDst, row step
 * dstStep bytes. Checks: pSrcMCU or pDst null -8; each component block null -8;
 * dstStep < 1 -14 (the step after the blocks, unlike the encoder side).
 * Arithmetic on the signed samples, 32-bit wrapping products, truncating, clamped:
 *   R = y + ((91881 cr) >> 16) + 128, G = y + ((-22554 cb - 46802 cr) >> 16) + 128,
 *   B = y + ((116130 cb) >> 16) + 128.
 * YCCK: C, M, Y are the complements of the clamped R, G, B; K = (k + 128) mod 256,
 * deliberately not clamped. SampleUp and Join: clamp(v + 128); Join422 writes rows
 * of 32 bytes Y0 Cb Y1 Cr. */
KRO_API KroStatus kroiJoin422LS_MCU_16s8u_P3C2R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                int dstStep);
KRO_API KroStatus kroiSampleUp411LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                    int dstStep);
KRO_API KroStatus kroiSampleUp422LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                    int dstStep);
KRO_API KroStatus kroiSampleUp444LS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                    int dstStep);
KRO_API KroStatus kroiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const Kro16s* pSrcMCU[4], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3],
                                                          Kro16u* pDst, int dstStep);
KRO_API KroStatus kroiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3],
                                                          Kro16u* pDst, int dstStep);
KRO_API KroStatus kroiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3],
                                                          Kro16u* pDst, int dstStep);
KRO_API KroStatus kroiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3],
                                                          Kro16u* pDst, int dstStep);
KRO_API KroStatus kroiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3],
                                                          Kro16u* pDst, int dstStep);
KRO_API KroStatus kroiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const Kro16s* pSrcMCU[3],
                                                          Kro16u* pDst, int dstStep);
KRO_API KroStatus kroiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                      int dstStep);
KRO_API KroStatus kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Kro16s* pSrcMCU[3], Kro8u* pDst,
                                                      int dstStep);

/* ======================================================================== */
/* JPEG 2000 component transforms and wavelet transforms                    */
/* ======================================================================== */

/* Component transforms on three components (T.800 G.2, G.3). Planar arguments are
 * an array of three plane pointers sharing one row step; transformed planes are
 * ordered Y, then the blue difference, then the red difference.
 *   RCT forward: Y = (R + 2G + B) >> 2, U = B - G, V = R - G.
 *   RCT inverse: G = Y - ((U + V) >> 2), R = V + G, B = U + G.
 *   ICT 32f: the YCbCr rotation evaluated in double precision, rounded to float.
 *   ICT 32s/16s: 2^-14 fixed point (forward rounds the whole sum, the inverse each
 *   correction term). Integer results wrap (32s in 32 bits, 16s to the low 16 bits).
 * P3IR checks: null array or plane -8, srcDstStep < 1 -14, width or height < 1 -6.
 * C3P3R / P3C3R checks: null pointer or plane -8, a step < 1 -14, size -6.
 * The four 32s RCT functions split their rows over threads for 8193 or more pixels. */
KRO_API KroStatus kroiRCTFwd_JPEG2K_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[3], int dstStep,
                                              KroiSize roiSize);
KRO_API KroStatus kroiRCTFwd_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiRCTFwd_JPEG2K_32s_C3P3R(const Kro32s* pSrc, int srcStep, Kro32s* pDst[3], int dstStep,
                                              KroiSize roiSize);
KRO_API KroStatus kroiRCTFwd_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiRCTInv_JPEG2K_16s_P3C3R(const Kro16s* pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                              KroiSize roiSize);
KRO_API KroStatus kroiRCTInv_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiRCTInv_JPEG2K_32s_P3C3R(const Kro32s* pSrc[3], int srcStep, Kro32s* pDst, int dstStep,
                                              KroiSize roiSize);
KRO_API KroStatus kroiRCTInv_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiICTFwd_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiICTFwd_JPEG2K_32f_C3P3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[3], int dstStep,
                                              KroiSize roiSize);
KRO_API KroStatus kroiICTFwd_JPEG2K_32f_P3IR(Kro32f* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiICTFwd_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiICTInv_JPEG2K_16s_P3IR(Kro16s* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiICTInv_JPEG2K_32f_P3C3R(const Kro32f* pSrc[3], int srcStep, Kro32f* pDst, int dstStep,
                                              KroiSize roiSize);
KRO_API KroStatus kroiICTInv_JPEG2K_32f_P3IR(Kro32f* pSrcDst[3], int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiICTInv_JPEG2K_32s_P3IR(Kro32s* pSrcDst[3], int srcDstStep, KroiSize roiSize);

/* Wavelet transforms, one decomposition level (T.800 annex F, whole-sample
 * symmetric extension). B53 is the reversible 5/3 filter, D97 the irreversible 9/7.
 * pTileRect gives the tile component's origin (only the parity of x and y matters:
 * an even coordinate is a low-pass position) and its size. Four-band arrays are
 * ordered LxLy, LxHy, HxLy, HxHy.
 *
 * GetBufSize: bytes of work buffer the 2D functions of the same form need; null
 * pointer -8. The in-place (C1IR) size is 0 for tiles whose sides are all short
 * (B53: at most 2, D97: below 2); the out-of-place (C1R) size adds a working image
 * whose rows are rounded up to 32 bytes. */
KRO_API KroStatus kroiWTGetBufSize_B53_JPEG2K_16s_C1IR(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_B53_JPEG2K_16s_C1R(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_B53_JPEG2K_32s_C1R(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_D97_JPEG2K_32s_C1IR(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_D97_JPEG2K_16s_C1R(const KroiRect* pTileRect, int* pSize);
KRO_API KroStatus kroiWTGetBufSize_D97_JPEG2K_32s_C1R(const KroiRect* pTileRect, int* pSize);

/* 2D in place: forward runs every column, then every row, leaving the sub-bands as
 * quadrants whose split follows the origin's parity; the inverse runs rows, then
 * columns. Checks: pSrcDst null -8, srcDstStep < 1 -14, pTileRect or pBuffer null
 * -8 (pBuffer even when its reported size is 0). The tile size is not checked. */
KRO_API KroStatus kroiWTFwd_B53_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTFwd_B53_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_B53_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_B53_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTFwd_D97_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTFwd_D97_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_D97_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_D97_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                Kro8u* pBuffer);

/* 2D out of place, through a working image in pBuffer. The bands are cut as if the
 * first sample were low-pass whatever the origin's parity: band 0 is
 * (width + 1) / 2 x (height + 1) / 2, band 3 width / 2 x height / 2 (kept for
 * compatibility with existing callers). Checks: pSrc/pDst, the band pointer and
 * step arrays, pTileRect, pBuffer null -8; srcStep/dstStep < 1 -14; a band pointer
 * null -8; a band step < 1 -14; width or height < 1 -6. */
KRO_API KroStatus kroiWTFwd_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstBand[4],
                                               int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTFwd_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstBand[4],
                                               int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_B53_JPEG2K_16s_C1R(const Kro16s* pSrcBand[4], int srcBandStep[4], Kro16s* pDst,
                                               int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_B53_JPEG2K_32s_C1R(const Kro32s* pSrcBand[4], int srcBandStep[4], Kro32s* pDst,
                                               int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTFwd_D97_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstBand[4],
                                               int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTFwd_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstBand[4],
                                               int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_D97_JPEG2K_16s_C1R(const Kro16s* pSrcBand[4], int srcBandStep[4], Kro16s* pDst,
                                               int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer);
KRO_API KroStatus kroiWTInv_D97_JPEG2K_32s_C1R(const Kro32s* pSrcBand[4], int srcBandStep[4], Kro32s* pDst,
                                               int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer);

/* Region forms: one level in one direction over a region whose neighbours exist in
 * memory. They read samples outside the region and never extend. Row forms write
 * dstRoiSize.width samples per band row from 2 * width source samples; column forms
 * write dstRoiSize.height band rows from 2 * height source rows. phase 0: source
 * sample (row) 0 is a low-pass position; any other value: a high-pass one.
 * Rows read outside [0, 2w): B53 forward 2 left / 1 right (phase 0) or 1 / 2,
 * D97 forward 4 / 3 or 3 / 4; the inverse forms read the matching band neighbours.
 * Checks: a pointer null -8, a step < 1 -14, width or height < 1 -6. */
KRO_API KroStatus kroiWTFwdRow_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstLow,
                                                  int dstLowStep, Kro16s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTFwdRow_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                  int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTInvRow_B53_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep, const Kro16s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro16s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTInvRow_B53_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTFwdCol_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstLow,
                                                  int dstLowStep, Kro16s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTFwdCol_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                  int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTInvCol_B53_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep, const Kro16s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro16s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTInvCol_B53_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTFwdRow_D97_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstLow,
                                                  int dstLowStep, Kro16s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTFwdRow_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                  int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTFwdRow_D97_JPEG2K_32f_C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDstLow,
                                                  int dstLowStep, Kro32f* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTInvRow_D97_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep, const Kro16s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro16s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTInvRow_D97_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTInvRow_D97_JPEG2K_32f_C1R(const Kro32f* pSrcLow, int srcLowStep, const Kro32f* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro32f* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTFwdCol_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                  int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTFwdCol_D97_JPEG2K_32f_C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDstLow,
                                                  int dstLowStep, Kro32f* pDstHigh, int dstHighStep,
                                                  KroiSize dstRoiSize, int phase);
KRO_API KroStatus kroiWTInvCol_D97_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                  int dstStep, int phase);
KRO_API KroStatus kroiWTInvCol_D97_JPEG2K_32f_C1R(const Kro32f* pSrcLow, int srcLowStep, const Kro32f* pSrcHigh,
                                                  int srcHighStep, KroiSize srcRoiSize, Kro32f* pDst,
                                                  int dstStep, int phase);

/* Streaming 5/3 column step for index n over a row of width samples; no extension.
 * Forward: pDstHigh = d[n] = x[2n+1] - ((x[2n] + x[2n+2]) >> 1) from pSrc0..2 =
 * x[2n..2n+2], then pDstLow = s[n] = x[2n] + ((d[n-1] + d[n] + 2) >> 2) with
 * pSrcHighPrev = d[n-1] (which may be the same row as pDstHigh).
 * Inverse: pDstEven = x[2n] = s[n] - ((d[n-1] + d[n] + 2) >> 2), then pDstOdd =
 * x[2n-1] = d[n-1] + ((x[2n-2] + x[2n]) >> 1) with pSrcEvenPrev = x[2n-2].
 * ColStep is the same function under a second name. Null pointer -8, width < 1 -6. */
KRO_API KroStatus kroiWTFwdColLift_B53_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1, const Kro16s* pSrc2,
                                                     Kro16s* pDstLow, const Kro16s* pSrcHighPrev, Kro16s* pDstHigh,
                                                     int width);
KRO_API KroStatus kroiWTFwdColLift_B53_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1, const Kro32s* pSrc2,
                                                     Kro32s* pDstLow, const Kro32s* pSrcHighPrev, Kro32s* pDstHigh,
                                                     int width);
KRO_API KroStatus kroiWTFwdColStep_B53_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1, const Kro16s* pSrc2,
                                                     Kro16s* pDstLow, const Kro16s* pSrcHighPrev, Kro16s* pDstHigh,
                                                     int width);
KRO_API KroStatus kroiWTFwdColStep_B53_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1, const Kro32s* pSrc2,
                                                     Kro32s* pDstLow, const Kro32s* pSrcHighPrev, Kro32s* pDstHigh,
                                                     int width);
KRO_API KroStatus kroiWTInvColLift_B53_JPEG2K_16s_C1(const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev,
                                                     const Kro16s* pSrcHigh, const Kro16s* pSrcEvenPrev,
                                                     Kro16s* pDstOdd, Kro16s* pDstEven, int width);
KRO_API KroStatus kroiWTInvColLift_B53_JPEG2K_32s_C1(const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev,
                                                     const Kro32s* pSrcHigh, const Kro32s* pSrcEvenPrev,
                                                     Kro32s* pDstOdd, Kro32s* pDstEven, int width);
KRO_API KroStatus kroiWTInvColStep_B53_JPEG2K_16s_C1(const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev,
                                                     const Kro16s* pSrcHigh, const Kro16s* pSrcEvenPrev,
                                                     Kro16s* pDstOdd, Kro16s* pDstEven, int width);
KRO_API KroStatus kroiWTInvColStep_B53_JPEG2K_32s_C1(const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev,
                                                     const Kro32s* pSrcHigh, const Kro32s* pSrcEvenPrev,
                                                     Kro32s* pDstOdd, Kro32s* pDstEven, int width);

/* Streaming 9/7 column step: a lifting pipeline over whole rows that lags behind its
 * input. Forward call n, each pass over the whole width before the next:
 *   pHighCur  = d1[n] = x[2n+1] + alpha (x[2n] + x[2n+2])   (pSrc0..2 = x[2n..2n+2])
 *   pLowCur   = s1[n] = x[2n] + beta (pHighPrev + pHighCur)
 *   pHighPrev = d2[n-1] = pHighPrev + gamma (pLowPrev + pLowCur)
 *   pLowPrev  = final low n-1 (delta step from pHighPrev2, pHighPrev, then 1/K)
 *   pHighPrev2 = final high n-2 (times K)
 * then rotate: pLowCur -> pLowPrev, pHighPrev -> pHighPrev2, pHighCur -> pHighPrev.
 * Inverse call n, from pSrcLow = low[n], pSrcHighPrev = high[n-1], pSrcHigh = high[n]:
 *   pEvenCur = s1[n] = low[n] K - (high[n-1] + high[n]) delta/K
 *   pOddCur  = d1[n-1] = high[n-1] / K - gamma (pEvenPrev + pEvenCur)
 *   pEvenPrev = x[2n-2] = pEvenPrev - beta (pOddPrev + pOddCur)
 *   pOddPrev  = x[2n-3] = pOddPrev - alpha (pEvenPrev2 + pEvenPrev)
 * then rotate: pEvenCur -> pEvenPrev, pEvenPrev -> pEvenPrev2, pOddCur -> pOddPrev,
 * pSrcHigh -> pSrcHighPrev. 32f runs in single precision, each sum, product and
 * addition rounded separately; 16s and 32s use 2^-16 fixed point with 64-bit
 * products, the delta step folded into the scaling. No extension: the caller
 * supplies the mirrored rows at both ends. ColStep (32f) is ColLift under a second
 * name. Null pointer -8, width < 1 -6. */
KRO_API KroStatus kroiWTFwdColLift_D97_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1, const Kro16s* pSrc2,
                                                     Kro16s* pLowPrev, Kro16s* pLowCur, Kro16s* pHighPrev2,
                                                     Kro16s* pHighPrev, Kro16s* pHighCur, int width);
KRO_API KroStatus kroiWTFwdColLift_D97_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1, const Kro32s* pSrc2,
                                                     Kro32s* pLowPrev, Kro32s* pLowCur, Kro32s* pHighPrev2,
                                                     Kro32s* pHighPrev, Kro32s* pHighCur, int width);
KRO_API KroStatus kroiWTFwdColLift_D97_JPEG2K_32f_C1(const Kro32f* pSrc0, const Kro32f* pSrc1, const Kro32f* pSrc2,
                                                     Kro32f* pLowPrev, Kro32f* pLowCur, Kro32f* pHighPrev2,
                                                     Kro32f* pHighPrev, Kro32f* pHighCur, int width);
KRO_API KroStatus kroiWTFwdColStep_D97_JPEG2K_32f_C1(const Kro32f* pSrc0, const Kro32f* pSrc1, const Kro32f* pSrc2,
                                                     Kro32f* pLowPrev, Kro32f* pLowCur, Kro32f* pHighPrev2,
                                                     Kro32f* pHighPrev, Kro32f* pHighCur, int width);
KRO_API KroStatus kroiWTInvColLift_D97_JPEG2K_16s_C1(const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev,
                                                     const Kro16s* pSrcHigh, Kro16s* pOddPrev, Kro16s* pOddCur,
                                                     Kro16s* pEvenPrev2, Kro16s* pEvenPrev, Kro16s* pEvenCur,
                                                     int width);
KRO_API KroStatus kroiWTInvColLift_D97_JPEG2K_32s_C1(const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev,
                                                     const Kro32s* pSrcHigh, Kro32s* pOddPrev, Kro32s* pOddCur,
                                                     Kro32s* pEvenPrev2, Kro32s* pEvenPrev, Kro32s* pEvenCur,
                                                     int width);
KRO_API KroStatus kroiWTInvColLift_D97_JPEG2K_32f_C1(const Kro32f* pSrcLow, const Kro32f* pSrcHighPrev,
                                                     const Kro32f* pSrcHigh, Kro32f* pOddPrev, Kro32f* pOddCur,
                                                     Kro32f* pEvenPrev2, Kro32f* pEvenPrev, Kro32f* pEvenCur,
                                                     int width);
KRO_API KroStatus kroiWTInvColStep_D97_JPEG2K_32f_C1(const Kro32f* pSrcLow, const Kro32f* pSrcHighPrev,
                                                     const Kro32f* pSrcHigh, Kro32f* pOddPrev, Kro32f* pOddCur,
                                                     Kro32f* pEvenPrev2, Kro32f* pEvenPrev, Kro32f* pEvenCur,
                                                     int width);

/* ======================================================================== */
/* JPEG 2000 tier-1 code-block coding                                       */
/* ======================================================================== */
/* Code-block coefficients are 32-bit sign-magnitude words (bit 31 the sign, bits 30..0
 * the magnitude). Encoder input is left-aligned: a sub-band with Mb magnitude bit-planes
 * uses bits 30 down to 31 - Mb (pass magnitudeBits = Mb; the code-stream's count of
 * missing bit-planes is then 31 - *pSfBits). Decoder output is right-aligned: sfBits
 * planes in bits sfBits - 1 down to 0.
 *
 * Sub-band codes: 0 LL, 1 LH, 2 HL, 3 HH (other values: as LL).
 * Code-style flags (not the code-stream's bits; callers translate):
 *   1 vertically causal contexts        2 selective arithmetic-coding bypass
 *   4 terminate every pass              8 reset contexts after every pass
 *   16 segmentation symbols             32 reversible coding: the encoder's last
 *                                          plane uses the lossless distortion tables
 *   decoder only: 65536 conceal errors, 131072 keep the destination on attach,
 *   262144 keep the reconstruction bits below the last decoded plane, 524288 keep the
 *   neighbourhood states on attach, 1048576 check predictable termination. */

/* MQ segment termination (termType of the encoder). */
typedef enum {
  kroMQTermFlush = 0,      /* T.800 C.2.9 flush; other values act as this */
  kroMQTermMinimal = 1,    /* shortest string that decodes to the same decisions */
  kroMQTermPredictable = 2 /* T.800 D.4.2, checkable by the decoder */
} KroMQTermType;

typedef struct KroiEncodeState_JPEG2K KroiEncodeState_JPEG2K;
typedef struct KroiDecodeCBProgrState_JPEG2K KroiDecodeCBProgrState_JPEG2K;

/* Encoder state for code-blocks up to maxCodeBlockSize. -8 null ppState, -6 bad size,
 * -9 allocation failure (*ppState set to null). */
KRO_API KroStatus kroiEncodeInitAlloc_JPEG2K(KroiEncodeState_JPEG2K** ppState,
                                             KroiSize maxCodeBlockSize);
/* Releases the state; -8 for null. The identification is not tested. */
KRO_API KroStatus kroiEncodeFree_JPEG2K(KroiEncodeState_JPEG2K* pState);
/* Runs every coding pass of one code-block and records its decisions. Outputs the
 * number of significant bit-planes, of coding passes and of terminated segments.
 * Checks: -8 pState; -17 identification; -8 pSfBits, pNOfPasses, pNOfTermPasses;
 * -6 size (also a block whose decisions or neighbourhood states would not fit the
 * buffers of the state's maximum size); -8 pSrc; -14 srcStep. termType: KroMQTermType.
 * reserved is not read. Coding stops at plane 31 - magnitudeBits, taken as 0 for
 * magnitudeBits above 31; magnitudeBits below 1 gives no passes. The segment count is
 * one plus the changes of the raw flag (one empty segment for a block without passes),
 * or the pass count under flag 4. */
KRO_API KroStatus kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(
    const Kro32s* pSrc, int srcStep, KroiSize codeBlockSize, KroiEncodeState_JPEG2K* pState,
    int subband, int magnitudeBits, int termType, int reserved, int codeStyleFlags, int* pSfBits,
    int* pNOfPasses, int* pNOfTermPasses);
/* Delivers up to *pDstLen coded bytes (all segments back to back); *pDstLen becomes the
 * count delivered and *pIsNotFinish 1 while bytes remain. The bytes do not depend on
 * how the requests are split. Checks: -8 pState; -17; -8 pDst, pDstLen, pIsNotFinish;
 * -5 *pDstLen below 1. */
KRO_API KroStatus kroiEncodeStoreBits_JPEG2K_1u(Kro8u* pDst, int* pDstLen,
                                                KroiEncodeState_JPEG2K* pState,
                                                int* pIsNotFinish);

/* Rate-control queries. Checks: -8 pState; -17 identification; -8 result pointer(s);
 * -113 pass number negative or not below the number of passes (segment number not
 * below the number of segments). Rates and segment lengths are final once all bytes
 * are delivered; rates are non-decreasing and include an estimate of the bytes an
 * unterminated pass still needs. Distortion reduction of a pass = mantissa * 2^exponent
 * in squared units of the lowest coded bit-plane. */
KRO_API KroStatus kroiEncodeGetRate_JPEG2K(const KroiEncodeState_JPEG2K* pState, int nPass,
                                           int* pRate);
KRO_API KroStatus kroiEncodeGetDistReduction_JPEG2K(const KroiEncodeState_JPEG2K* pState,
                                                    int nPass, int* pMantissa, int* pExponent);
/* Sum of the reductions of passes 0..nPass in double, in pass order. 2^e is formed as
 * 1 / (1 << -e) for e <= 0 and as the 32-bit integer 1 << e for e > 0, the shift count
 * taken modulo 32: exponents of 31 and above (more than 22 coded planes) read as -2^31
 * and 2^(e - 32), kept for compatibility. */
KRO_API KroStatus kroiEncodeGetDist_JPEG2K(const KroiEncodeState_JPEG2K* pState, int nPass,
                                           double* pDist);
KRO_API KroStatus kroiEncodeGetTermPassLen_JPEG2K(const KroiEncodeState_JPEG2K* pState,
                                                  int nTermPass, int* pLength);

/* One-call decoder: nOfTermPasses segments of pTermLen[i] bytes back to back at pSrc,
 * nOfPasses coding passes. pState: a buffer of kroiDecodeGetBufSize_JPEG2K bytes.
 * Returns the status of the last step: -112 when corrupt data was detected (then
 * *pErrorBitPlane, if given, receives the bit-plane). Checks: -8 pSrc, pState; -6 size;
 * -8 pTermLen, pDst; -14 dstStep. A negative segment length reads as an empty segment
 * and does not move the source position. Unless flag 262144, the block is ANDed with
 * -(1 << p) for the last decoded plane p >= 1 (a 32-bit shift, count modulo 32). */
KRO_API KroStatus kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
    const Kro8u* pSrc, Kro32s* pDst, int dstStep, KroiSize codeBlockSize, int subband, int sfBits,
    int nOfPasses, const int* pTermLen, int nOfTermPasses, int codeStyleFlags, int* pErrorBitPlane,
    KroiDecodeCBProgrState_JPEG2K* pState);
/* State size for code-blocks up to codeBlockSize: -8 null pSize, then -6 bad size. */
KRO_API KroStatus kroiDecodeGetBufSize_JPEG2K(KroiSize codeBlockSize, int* pSize);

/* Step-wise decoder. Init -> Attach -> SetPassCounter -> Step per segment. */
KRO_API KroStatus kroiDecodeCBProgrGetStateSize_JPEG2K(KroiSize codeBlockSize, int* pSize);
/* -8 for null; prepares caller memory of the reported size. */
KRO_API KroStatus kroiDecodeCBProgrInit_JPEG2K(KroiDecodeCBProgrState_JPEG2K* pState);
/* -8 null ppState, -6 bad size, -9 allocation failure. */
KRO_API KroStatus kroiDecodeCBProgrInitAlloc_JPEG2K(KroiDecodeCBProgrState_JPEG2K** ppState,
                                                    KroiSize codeBlockSize);
/* -8 null, -17 identification. */
KRO_API KroStatus kroiDecodeCBProgrFree_JPEG2K(KroiDecodeCBProgrState_JPEG2K* pState);
/* Attaches an output block of sfBits magnitude bit-planes. Checks: -8 pState; -17;
 * -8 pDst; -14 dstStep; -6 size. Zeroes the block unless flag 131072. */
KRO_API KroStatus kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(Kro32s* pDst, int dstStep,
                                                         KroiSize codeBlockSize,
                                                         KroiDecodeCBProgrState_JPEG2K* pState,
                                                         int subband, int sfBits,
                                                         int codeStyleFlags);
/* Sets / reads the number of passes still to decode; -8, -17. The counter drops by one
 * for every pass decoded, also when a segment ends inside a bit-plane. sfBits above 31
 * gives defined but meaningless values. */
KRO_API KroStatus kroiDecodeCBProgrSetPassCounter_JPEG2K(int nOfPasses,
                                                         KroiDecodeCBProgrState_JPEG2K* pState);
KRO_API KroStatus kroiDecodeCBProgrGetPassCounter_JPEG2K(
    const KroiDecodeCBProgrState_JPEG2K* pState, int* pNOfPasses);
/* The bit-plane being decoded; -8 pState, -17, -8 pBitPlane. */
KRO_API KroStatus kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(
    const KroiDecodeCBProgrState_JPEG2K* pState, int* pBitPlane);
/* Decodes the passes one segment carries. Checks: -8 pSegment, pState; -17; -180 not
 * attached; -112 once corrupt data has been met (and from then on). */
KRO_API KroStatus kroiDecodeCBProgrStep_JPEG2K(const Kro8u* pSegment, int segmentLength,
                                               KroiDecodeCBProgrState_JPEG2K* pState);

/* ======================================================================== */
/* Image copy, set, convert and logical operations                          */
/* ======================================================================== */
/* Regions of interest as everywhere: a pointer to the first pixel, a row step in
 * bytes (any value; rows of 16- and 32-bit samples need not be aligned to the sample
 * size) and a KroiSize. CR forms: the pointers address one channel of the first pixel
 * and the pixel stride is the channel count. AC4: four channels of which the fourth
 * (alpha) is never written. P3/P4: three or four planes sharing one step. M: an 8-bit
 * mask image with its own step; a pixel is written only where its mask byte is not 0.
 * All of these run on the calling thread. Float images are copied and set as bits.
 *
 * Checks, first failure decides:
 *   Copy     null pointer (mask, plane array, any plane) -> kroStatusNullPointer;
 *            width or height below 1 -> kroStatusBadSize. Steps are not checked: a
 *            step of 0 repeats one row, a negative step walks upwards.
 *   Set      null (value array, mask) -> kroStatusNullPointer; size -> kroStatusBadSize;
 *            dstStep, and for the M forms maskStep, below 1 -> kroStatusBadStep.
 *   Convert  null -> kroStatusNullPointer; size -> kroStatusBadSize; either step below
 *            1 -> kroStatusBadStep.
 *   Logical  any pointer (value array included) null -> kroStatusNullPointer; any step
 *            below 1 -> kroStatusBadStep; then size -> kroStatusBadSize. */

/* Copy. C1R, C3R, C4R: whole pixels. AC4R: channels 0 to 2, the destination keeps
 * its alpha; when both steps are exactly four samples times the width the region is
 * copied as one row. */
KRO_API KroStatus kroiCopy_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                    KroiSize roiSize);

/* Copy one channel. C3C1R, C4C1R: the channel pSrc addresses into a one-channel
 * image. C1C3R, C1C4R: a one-channel image into the channel pDst addresses, the
 * others untouched. C3CR, C4CR: one channel into one channel. AC4C3R drops alpha;
 * C3AC4R writes channels 0 to 2 and keeps the destination's alpha. */
KRO_API KroStatus kroiCopy_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C3C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C3C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C4C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C4C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C4C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C1C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C1C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C1C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C1C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C1C4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C1C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C3CR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C3CR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C3CR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C4CR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C4CR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C4CR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_AC4C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_AC4C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_AC4C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                      KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C3AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C3AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                      KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C3AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                      KroiSize roiSize);

/* Masked copy: every channel of a pixel (channels 0 to 2 for AC4) where the mask
 * byte is not 0; other pixels keep their values. */
KRO_API KroStatus kroiCopy_8u_C1MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_16s_C1MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_32f_C1MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_8u_C3MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_16s_C3MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_32f_C3MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_8u_C4MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_16s_C4MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_32f_C4MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_8u_AC4MR(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_16s_AC4MR(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiCopy_32f_AC4MR(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize, const Kro8u* pMask, int maskStep);

/* Interleaved to planar and back; pDst[c] / pSrc[c] is plane c, all with one step. */
KRO_API KroStatus kroiCopy_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst[3], int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[3], int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C3P3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[3], int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_P3C3R(const Kro8u* pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_P3C3R(const Kro16s* pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_P3C3R(const Kro32f* pSrc[3], int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_C4P4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst[4], int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_C4P4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst[4], int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_C4P4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst[4], int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_8u_P4C4R(const Kro8u* pSrc[4], int srcStep, Kro8u* pDst, int dstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiCopy_16s_P4C4R(const Kro16s* pSrc[4], int srcStep, Kro16s* pDst, int dstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiCopy_32f_P4C4R(const Kro32f* pSrc[4], int srcStep, Kro32f* pDst, int dstStep,
                                     KroiSize roiSize);

/* Set every pixel to a value. C1R; C3CR, C4CR: the channel pDst addresses, the others
 * untouched; C3R, C4R: three or four channel values; AC4R: three values, alpha kept. */
KRO_API KroStatus kroiSet_8u_C1R(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_16s_C1R(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_32f_C1R(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_8u_C3CR(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_16s_C3CR(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_32f_C3CR(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_8u_C4CR(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_16s_C4CR(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_32f_C4CR(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_8u_C3R(const Kro8u value[3], Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_16s_C3R(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiSet_32f_C3R(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiSet_8u_C4R(const Kro8u value[4], Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_16s_C4R(const Kro16s value[4], Kro16s* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiSet_32f_C4R(const Kro32f value[4], Kro32f* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiSet_8u_AC4R(const Kro8u value[3], Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiSet_16s_AC4R(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiSet_32f_AC4R(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                   KroiSize roiSize);

/* Masked set: pixels whose mask byte is not 0. */
KRO_API KroStatus kroiSet_8u_C1MR(Kro8u value, Kro8u* pDst, int dstStep, KroiSize roiSize,
                                  const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_16s_C1MR(Kro16s value, Kro16s* pDst, int dstStep, KroiSize roiSize,
                                   const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_32f_C1MR(Kro32f value, Kro32f* pDst, int dstStep, KroiSize roiSize,
                                   const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_8u_C3MR(const Kro8u value[3], Kro8u* pDst, int dstStep, KroiSize roiSize,
                                  const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_16s_C3MR(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_32f_C3MR(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_8u_C4MR(const Kro8u value[4], Kro8u* pDst, int dstStep, KroiSize roiSize,
                                  const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_16s_C4MR(const Kro16s value[4], Kro16s* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_32f_C4MR(const Kro32f value[4], Kro32f* pDst, int dstStep,
                                   KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_8u_AC4MR(const Kro8u value[3], Kro8u* pDst, int dstStep, KroiSize roiSize,
                                   const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_16s_AC4MR(const Kro16s value[3], Kro16s* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);
KRO_API KroStatus kroiSet_32f_AC4MR(const Kro32f value[3], Kro32f* pDst, int dstStep,
                                    KroiSize roiSize, const Kro8u* pMask, int maskStep);

/* Widening without sign: pDst = pSrc. When srcStep equals the width and dstStep
 * twice that, the region is converted as one row. */
KRO_API KroStatus kroiConvert_8u16u_C1R(const Kro8u* pSrc, int srcStep, Kro16u* pDst, int dstStep,
                                        KroiSize roiSize);

/* pDst = pSrc1 op pSrc2 per sample; IR: pSrcDst = pSrc op pSrcDst. AC4 forms work on
 * channels 0 to 2 and leave the destination's alpha. */
KRO_API KroStatus kroiAnd_8u_C1R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_C1IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_C3R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_C3IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_C4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_C4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_AC4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                  int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_8u_AC4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_C1R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_C1IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_C3R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_C3IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_C4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_C4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_AC4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                   int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_16u_AC4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                    int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_C1R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_C1IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_C3R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_C3IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_C4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_C4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_AC4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                   int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAnd_32s_AC4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                    int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_C1R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_C1IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                 KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_C3R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_C3IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                 KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_C4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_C4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                 KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_AC4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_8u_AC4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_C1R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                 int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_C1IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_C3R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                 int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_C3IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_C4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                 int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_C4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_AC4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_16u_AC4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_C1R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                 int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_C1IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_C3R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                 int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_C3IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_C4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                 int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_C4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_AC4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOr_32s_AC4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_C1R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_C1IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_C3R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_C3IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_C4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2, int src2Step,
                                 Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_C4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_AC4R(const Kro8u* pSrc1, int src1Step, const Kro8u* pSrc2,
                                  int src2Step, Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_8u_AC4IR(const Kro8u* pSrc, int srcStep, Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_C1R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_C1IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_C3R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_C3IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_C4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                  int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_C4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_AC4R(const Kro16u* pSrc1, int src1Step, const Kro16u* pSrc2,
                                   int src2Step, Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_16u_AC4IR(const Kro16u* pSrc, int srcStep, Kro16u* pSrcDst,
                                    int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_C1R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_C1IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_C3R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_C3IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_C4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                  int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_C4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_AC4R(const Kro32s* pSrc1, int src1Step, const Kro32s* pSrc2,
                                   int src2Step, Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXor_32s_AC4IR(const Kro32s* pSrc, int srcStep, Kro32s* pSrcDst,
                                    int srcDstStep, KroiSize roiSize);

/* pDst = pSrc op value[c] per channel c (one value for C1, three for C3 and AC4,
 * four for C4); IR in place. C3 and C4 constants whose channels are all equal run as
 * the one-channel form over rows of 3 or 4 times width samples. */
KRO_API KroStatus kroiAndC_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u value, Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_C1IR(Kro8u value, Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_C3R(const Kro8u* pSrc, int srcStep, const Kro8u value[3], Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_C3IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_C4R(const Kro8u* pSrc, int srcStep, const Kro8u value[4], Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_C4IR(const Kro8u value[4], Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_AC4R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                   Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_8u_AC4IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u value, Kro16u* pDst,
                                   int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_C1IR(Kro16u value, Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_C3R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                   Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_C3IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_C4R(const Kro16u* pSrc, int srcStep, const Kro16u value[4],
                                   Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_C4IR(const Kro16u value[4], Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_AC4R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                    Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_16u_AC4IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s value, Kro32s* pDst,
                                   int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_C1IR(Kro32s value, Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_C3R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                   Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_C3IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_C4R(const Kro32s* pSrc, int srcStep, const Kro32s value[4],
                                   Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_C4IR(const Kro32s value[4], Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_AC4R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                    Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiAndC_32s_AC4IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u value, Kro8u* pDst,
                                 int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_C1IR(Kro8u value, Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_C3R(const Kro8u* pSrc, int srcStep, const Kro8u value[3], Kro8u* pDst,
                                 int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_C3IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_C4R(const Kro8u* pSrc, int srcStep, const Kro8u value[4], Kro8u* pDst,
                                 int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_C4IR(const Kro8u value[4], Kro8u* pSrcDst, int srcDstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_AC4R(const Kro8u* pSrc, int srcStep, const Kro8u value[3], Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_8u_AC4IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u value, Kro16u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_C1IR(Kro16u value, Kro16u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_C3R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                  Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_C3IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_C4R(const Kro16u* pSrc, int srcStep, const Kro16u value[4],
                                  Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_C4IR(const Kro16u value[4], Kro16u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_AC4R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                   Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_16u_AC4IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s value, Kro32s* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_C1IR(Kro32s value, Kro32s* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_C3R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                  Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_C3IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_C4R(const Kro32s* pSrc, int srcStep, const Kro32s value[4],
                                  Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_C4IR(const Kro32s value[4], Kro32s* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_AC4R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                   Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiOrC_32s_AC4IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u value, Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_C1IR(Kro8u value, Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_C3R(const Kro8u* pSrc, int srcStep, const Kro8u value[3], Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_C3IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_C4R(const Kro8u* pSrc, int srcStep, const Kro8u value[4], Kro8u* pDst,
                                  int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_C4IR(const Kro8u value[4], Kro8u* pSrcDst, int srcDstStep,
                                   KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_AC4R(const Kro8u* pSrc, int srcStep, const Kro8u value[3],
                                   Kro8u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_8u_AC4IR(const Kro8u value[3], Kro8u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u value, Kro16u* pDst,
                                   int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_C1IR(Kro16u value, Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_C3R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                   Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_C3IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_C4R(const Kro16u* pSrc, int srcStep, const Kro16u value[4],
                                   Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_C4IR(const Kro16u value[4], Kro16u* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_AC4R(const Kro16u* pSrc, int srcStep, const Kro16u value[3],
                                    Kro16u* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_16u_AC4IR(const Kro16u value[3], Kro16u* pSrcDst, int srcDstStep,
                                     KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s value, Kro32s* pDst,
                                   int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_C1IR(Kro32s value, Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_C3R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                   Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_C3IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_C4R(const Kro32s* pSrc, int srcStep, const Kro32s value[4],
                                   Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_C4IR(const Kro32s value[4], Kro32s* pSrcDst, int srcDstStep,
                                    KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_AC4R(const Kro32s* pSrc, int srcStep, const Kro32s value[3],
                                    Kro32s* pDst, int dstStep, KroiSize roiSize);
KRO_API KroStatus kroiXorC_32s_AC4IR(const Kro32s value[3], Kro32s* pSrcDst, int srcDstStep,
                                     KroiSize roiSize);

/* NOT: XOR with 0xFF through the XorC form of the same layout (same checks); AC4 keeps
 * alpha. */
KRO_API KroStatus kroiNot_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                 KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_C1IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                 KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                 KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_C4IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                  KroiSize roiSize);
KRO_API KroStatus kroiNot_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, KroiSize roiSize);

/* ======================================================================== */
/* Signal copy, set, zero, multiplication and division                      */
/* ======================================================================== */
/* Every function checks its pointers (-8) and then len >= 1 (-6); a constant
 * divisor is checked after these. Sfs: the exact result times 2^-scaleFactor,
 * rounded half to even and saturated to the destination type (a negative factor
 * scales up). In-place forms (I) use pSrcDst as the second operand and the result. */

/* Copy (overlap allowed), zero and fill. */
KRO_API KroStatus krosCopy_8u(const Kro8u* pSrc, Kro8u* pDst, int len);
KRO_API KroStatus krosCopy_16s(const Kro16s* pSrc, Kro16s* pDst, int len);
KRO_API KroStatus krosCopy_16sc(const Kro16sc* pSrc, Kro16sc* pDst, int len);
KRO_API KroStatus krosCopy_32s(const Kro32s* pSrc, Kro32s* pDst, int len);
KRO_API KroStatus krosCopy_32sc(const Kro32sc* pSrc, Kro32sc* pDst, int len);
KRO_API KroStatus krosCopy_32f(const Kro32f* pSrc, Kro32f* pDst, int len);
KRO_API KroStatus krosCopy_32fc(const Kro32fc* pSrc, Kro32fc* pDst, int len);
KRO_API KroStatus krosCopy_64s(const Kro64s* pSrc, Kro64s* pDst, int len);
KRO_API KroStatus krosCopy_64sc(const Kro64sc* pSrc, Kro64sc* pDst, int len);
KRO_API KroStatus krosCopy_64f(const Kro64f* pSrc, Kro64f* pDst, int len);
KRO_API KroStatus krosCopy_64fc(const Kro64fc* pSrc, Kro64fc* pDst, int len);

KRO_API KroStatus krosZero_8u(Kro8u* pDst, int len);
KRO_API KroStatus krosZero_16s(Kro16s* pDst, int len);
KRO_API KroStatus krosZero_16sc(Kro16sc* pDst, int len);
KRO_API KroStatus krosZero_32s(Kro32s* pDst, int len);
KRO_API KroStatus krosZero_32sc(Kro32sc* pDst, int len);
KRO_API KroStatus krosZero_32f(Kro32f* pDst, int len);
KRO_API KroStatus krosZero_32fc(Kro32fc* pDst, int len);
KRO_API KroStatus krosZero_64s(Kro64s* pDst, int len);
KRO_API KroStatus krosZero_64sc(Kro64sc* pDst, int len);
KRO_API KroStatus krosZero_64f(Kro64f* pDst, int len);
KRO_API KroStatus krosZero_64fc(Kro64fc* pDst, int len);
KRO_API KroStatus krosSet_8u(Kro8u val, Kro8u* pDst, int len);
KRO_API KroStatus krosSet_16s(Kro16s val, Kro16s* pDst, int len);
KRO_API KroStatus krosSet_16sc(Kro16sc val, Kro16sc* pDst, int len);
KRO_API KroStatus krosSet_32s(Kro32s val, Kro32s* pDst, int len);
KRO_API KroStatus krosSet_32sc(Kro32sc val, Kro32sc* pDst, int len);
KRO_API KroStatus krosSet_32f(Kro32f val, Kro32f* pDst, int len);
KRO_API KroStatus krosSet_32fc(Kro32fc val, Kro32fc* pDst, int len);
KRO_API KroStatus krosSet_64s(Kro64s val, Kro64s* pDst, int len);
KRO_API KroStatus krosSet_64sc(Kro64sc val, Kro64sc* pDst, int len);
KRO_API KroStatus krosSet_64f(Kro64f val, Kro64f* pDst, int len);
KRO_API KroStatus krosSet_64fc(Kro64fc val, Kro64fc* pDst, int len);

/* Integer multiplication, by a vector or a constant. The product is exact, then
 * scaled, rounded half to even and saturated, for every scale factor (so for 16-bit
 * products: above 30 gives 0, below -15 gives the saturated sign). The forms
 * without Sfs use factor 0 (saturation only); complex products round each part.
 * 32-bit products are carried in 64 bits and complex 32-bit ones in 128 bits, so
 * the 32-bit forms follow the same exact rule. */
KRO_API KroStatus krosMulC_8u_ISfs(Kro8u val, Kro8u* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMulC_8u_Sfs(const Kro8u* pSrc, Kro8u val, Kro8u* pDst, int len,
                                  int scaleFactor);
KRO_API KroStatus krosMul_8u_ISfs(const Kro8u* pSrc, Kro8u* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMul_8u_Sfs(const Kro8u* pSrc1, const Kro8u* pSrc2, Kro8u* pDst, int len,
                                 int scaleFactor);
KRO_API KroStatus krosMul_8u16u(const Kro8u* pSrc1, const Kro8u* pSrc2, Kro16u* pDst, int len);
KRO_API KroStatus krosMulC_16s_I(Kro16s val, Kro16s* pSrcDst, int len);
KRO_API KroStatus krosMulC_16s_ISfs(Kro16s val, Kro16s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMulC_16s_Sfs(const Kro16s* pSrc, Kro16s val, Kro16s* pDst, int len,
                                   int scaleFactor);
KRO_API KroStatus krosMulC_16sc_ISfs(Kro16sc val, Kro16sc* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMulC_16sc_Sfs(const Kro16sc* pSrc, Kro16sc val, Kro16sc* pDst, int len,
                                    int scaleFactor);
KRO_API KroStatus krosMul_16s_I(const Kro16s* pSrc, Kro16s* pSrcDst, int len);
KRO_API KroStatus krosMul_16s_ISfs(const Kro16s* pSrc, Kro16s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMul_16sc_ISfs(const Kro16sc* pSrc, Kro16sc* pSrcDst, int len,
                                    int scaleFactor);
KRO_API KroStatus krosMul_16s(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro16s* pDst, int len);
KRO_API KroStatus krosMul_16s32s_Sfs(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro32s* pDst,
                                     int len, int scaleFactor);
KRO_API KroStatus krosMul_16s_Sfs(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro16s* pDst, int len,
                                  int scaleFactor);
KRO_API KroStatus krosMul_16u16s_Sfs(const Kro16u* pSrc1, const Kro16s* pSrc2, Kro16s* pDst,
                                     int len, int scaleFactor);
KRO_API KroStatus krosMul_16sc_Sfs(const Kro16sc* pSrc1, const Kro16sc* pSrc2, Kro16sc* pDst,
                                   int len, int scaleFactor);
KRO_API KroStatus krosMulC_32s_ISfs(Kro32s val, Kro32s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMulC_32s_Sfs(const Kro32s* pSrc, Kro32s val, Kro32s* pDst, int len,
                                   int scaleFactor);
KRO_API KroStatus krosMulC_32sc_ISfs(Kro32sc val, Kro32sc* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMulC_32sc_Sfs(const Kro32sc* pSrc, Kro32sc val, Kro32sc* pDst, int len,
                                    int scaleFactor);
KRO_API KroStatus krosMul_32s32sc_ISfs(const Kro32s* pSrc, Kro32sc* pSrcDst, int len,
                                       int scaleFactor);
KRO_API KroStatus krosMul_32s32sc_Sfs(const Kro32s* pSrc1, const Kro32sc* pSrc2, Kro32sc* pDst,
                                      int len, int scaleFactor);
KRO_API KroStatus krosMul_32s_ISfs(const Kro32s* pSrc, Kro32s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosMul_32sc_ISfs(const Kro32sc* pSrc, Kro32sc* pSrcDst, int len,
                                    int scaleFactor);
KRO_API KroStatus krosMul_32s_Sfs(const Kro32s* pSrc1, const Kro32s* pSrc2, Kro32s* pDst, int len,
                                  int scaleFactor);
KRO_API KroStatus krosMul_32sc_Sfs(const Kro32sc* pSrc1, const Kro32sc* pSrc2, Kro32sc* pDst,
                                   int len, int scaleFactor);

/* Float multiplication in the element precision (complex: (ac - bd, ad + bc)).
 * krosMul_16s32f rounds the exact integer product once to single precision.
 * krosMulC_32f16s_Sfs: the exact (double) product times 2^-scaleFactor, saturated
 * and rounded half to even into 16 bits, not-a-number giving -32768;
 * krosMulC_Low_32f16s: the same with the product first rounded to single precision
 * and no scale factor. */
KRO_API KroStatus krosMul_16s32f(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro32f* pDst, int len);
KRO_API KroStatus krosMulC_32f_I(Kro32f val, Kro32f* pSrcDst, int len);
KRO_API KroStatus krosMulC_32fc_I(Kro32fc val, Kro32fc* pSrcDst, int len);
KRO_API KroStatus krosMulC_32fc(const Kro32fc* pSrc, Kro32fc val, Kro32fc* pDst, int len);
KRO_API KroStatus krosMul_32f_I(const Kro32f* pSrc, Kro32f* pSrcDst, int len);
KRO_API KroStatus krosMul_32fc_I(const Kro32fc* pSrc, Kro32fc* pSrcDst, int len);
KRO_API KroStatus krosMul_32f(const Kro32f* pSrc1, const Kro32f* pSrc2, Kro32f* pDst, int len);
KRO_API KroStatus krosMul_32fc(const Kro32fc* pSrc1, const Kro32fc* pSrc2, Kro32fc* pDst, int len);
KRO_API KroStatus krosMulC_Low_32f16s(const Kro32f* pSrc, Kro32f val, Kro16s* pDst, int len);
KRO_API KroStatus krosMulC_32f16s_Sfs(const Kro32f* pSrc, Kro32f val, Kro16s* pDst, int len,
                                      int scaleFactor);
KRO_API KroStatus krosMulC_64f_I(Kro64f val, Kro64f* pSrcDst, int len);
KRO_API KroStatus krosMulC_64fc_I(Kro64fc val, Kro64fc* pSrcDst, int len);
KRO_API KroStatus krosMulC_64fc(const Kro64fc* pSrc, Kro64fc val, Kro64fc* pDst, int len);
KRO_API KroStatus krosMul_64f_I(const Kro64f* pSrc, Kro64f* pSrcDst, int len);
KRO_API KroStatus krosMul_64fc_I(const Kro64fc* pSrc, Kro64fc* pSrcDst, int len);
KRO_API KroStatus krosMul_64f(const Kro64f* pSrc1, const Kro64f* pSrc2, Kro64f* pDst, int len);
KRO_API KroStatus krosMul_64fc(const Kro64fc* pSrc1, const Kro64fc* pSrc2, Kro64fc* pDst, int len);
KRO_API KroStatus krosMulC_32f(const Kro32f* pSrc, Kro32f val, Kro32f* pDst, int len);
KRO_API KroStatus krosMulC_64f(const Kro64f* pSrc, Kro64f val, Kro64f* pDst, int len);

/* Vector division, pDst = pSrc2 / pSrc1 (the first vector is the divisor); a zero
 * divisor writes the element's fixed value and makes the status
 * kroStatusDivideByZeroWarning. 16s and 8u work in single precision: r =
 * dividend * 2^-sf / divisor, then t = r (+ 32768 for 16s) + 0.5 truncated, ties
 * to even. 16s: saturated first when scaleFactor < 1 (not-a-number gives -32768);
 * a zero divisor gives 0, 32767 or -32768 by the dividend. 8u: factors below -15
 * give 255 for any non-zero dividend, above 8 give 0; negative factors cap at 255;
 * a zero divisor gives 255 (0 for a zero dividend). 16sc: the 16s rules in double
 * precision, per part. 32s and 32s16s (32-bit dividend, 16-bit divisor and
 * result): the quotient in double precision, saturated and rounded half to even;
 * a zero divisor gives 0 or the saturated sign of the dividend.
 * Float forms: IEEE quotients; a zero divisor gives +inf, NaN or -inf for a
 * positive, zero or other dividend (per part for complex; complex 32fc quotients
 * are formed in double). */
KRO_API KroStatus krosDiv_16s_Sfs(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro16s* pDst, int len,
                                  int scaleFactor);
KRO_API KroStatus krosDiv_16s_ISfs(const Kro16s* pSrc, Kro16s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosDiv_8u_Sfs(const Kro8u* pSrc1, const Kro8u* pSrc2, Kro8u* pDst, int len,
                                 int scaleFactor);
KRO_API KroStatus krosDiv_8u_ISfs(const Kro8u* pSrc, Kro8u* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosDiv_16sc_Sfs(const Kro16sc* pSrc1, const Kro16sc* pSrc2, Kro16sc* pDst,
                                   int len, int scaleFactor);
KRO_API KroStatus krosDiv_16sc_ISfs(const Kro16sc* pSrc, Kro16sc* pSrcDst, int len,
                                    int scaleFactor);
KRO_API KroStatus krosDiv_32s_Sfs(const Kro32s* pSrc1, const Kro32s* pSrc2, Kro32s* pDst, int len,
                                  int scaleFactor);
KRO_API KroStatus krosDiv_32s_ISfs(const Kro32s* pSrc, Kro32s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosDiv_32s16s_Sfs(const Kro16s* pSrc1, const Kro32s* pSrc2, Kro16s* pDst,
                                     int len, int scaleFactor);
KRO_API KroStatus krosDiv_32f(const Kro32f* pSrc1, const Kro32f* pSrc2, Kro32f* pDst, int len);
KRO_API KroStatus krosDiv_32f_I(const Kro32f* pSrc, Kro32f* pSrcDst, int len);
KRO_API KroStatus krosDiv_64f(const Kro64f* pSrc1, const Kro64f* pSrc2, Kro64f* pDst, int len);
KRO_API KroStatus krosDiv_64f_I(const Kro64f* pSrc, Kro64f* pSrcDst, int len);
KRO_API KroStatus krosDiv_32fc(const Kro32fc* pSrc1, const Kro32fc* pSrc2, Kro32fc* pDst, int len);
KRO_API KroStatus krosDiv_32fc_I(const Kro32fc* pSrc, Kro32fc* pSrcDst, int len);
KRO_API KroStatus krosDiv_64fc(const Kro64fc* pSrc1, const Kro64fc* pSrc2, Kro64fc* pDst, int len);
KRO_API KroStatus krosDiv_64fc_I(const Kro64fc* pSrc, Kro64fc* pSrcDst, int len);

/* Division by a constant; a zero constant returns kroStatusDivideByZero (-10)
 * with nothing written. 16s: m = 2^-sf / val once, r = x * m in single precision,
 * saturated first unless m is in [-0.9999, 1]. 8u: m = 2^-sf times 1/val rounded to
 * six decimals (1/3 -> 0.333333), capped at 255. 16sc: m = conj(val) * 2^-sf /
 * |val|^2 in double, saturated when |m|^2 >= 0.5. Float forms multiply by the
 * reciprocal formed once (complex ones formed in double, rounded to the element
 * type), so they give the results of a rounded reciprocal. */
KRO_API KroStatus krosDivC_16s_Sfs(const Kro16s* pSrc, Kro16s val, Kro16s* pDst, int len,
                                   int scaleFactor);
KRO_API KroStatus krosDivC_16s_ISfs(Kro16s val, Kro16s* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosDivC_8u_Sfs(const Kro8u* pSrc, Kro8u val, Kro8u* pDst, int len,
                                  int scaleFactor);
KRO_API KroStatus krosDivC_8u_ISfs(Kro8u val, Kro8u* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosDivC_16sc_Sfs(const Kro16sc* pSrc, Kro16sc val, Kro16sc* pDst, int len,
                                    int scaleFactor);
KRO_API KroStatus krosDivC_16sc_ISfs(Kro16sc val, Kro16sc* pSrcDst, int len, int scaleFactor);
KRO_API KroStatus krosDivC_32f(const Kro32f* pSrc, Kro32f val, Kro32f* pDst, int len);
KRO_API KroStatus krosDivC_32f_I(Kro32f val, Kro32f* pSrcDst, int len);
KRO_API KroStatus krosDivC_32fc(const Kro32fc* pSrc, Kro32fc val, Kro32fc* pDst, int len);
KRO_API KroStatus krosDivC_32fc_I(Kro32fc val, Kro32fc* pSrcDst, int len);
KRO_API KroStatus krosDivC_64f(const Kro64f* pSrc, Kro64f val, Kro64f* pDst, int len);
KRO_API KroStatus krosDivC_64f_I(Kro64f val, Kro64f* pSrcDst, int len);
KRO_API KroStatus krosDivC_64fc(const Kro64fc* pSrc, Kro64fc val, Kro64fc* pDst, int len);
KRO_API KroStatus krosDivC_64fc_I(Kro64fc val, Kro64fc* pSrcDst, int len);

/* Constant divided by a vector. 16u: q = val * 65536 / src truncated, result
 * (q + 32767 + 2 * (bit 16 of q)) >> 16 (ties to even; with an odd integer part a
 * fraction of 32767/65536 rounds up); a zero element gives 65535, a zero val gives
 * 0 everywhere, and a zero element makes the status kroStatusDivideByZeroWarning.
 * 32f: val / src; a zero element gives +inf, NaN or -inf by val, with the
 * warning. */
KRO_API KroStatus krosDivCRev_16u(const Kro16u* pSrc, Kro16u val, Kro16u* pDst, int len);
KRO_API KroStatus krosDivCRev_16u_I(Kro16u val, Kro16u* pSrcDst, int len);
KRO_API KroStatus krosDivCRev_32f(const Kro32f* pSrc, Kro32f val, Kro32f* pDst, int len);
KRO_API KroStatus krosDivCRev_32f_I(Kro32f val, Kro32f* pSrcDst, int len);

#ifdef __cplusplus
}
#endif

#endif /* KROJ_H_ */
