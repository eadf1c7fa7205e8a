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

/* ======================================================================== */
/* JPEG quantisation, 8x8 DCT, level shift and zig-zag                      */
/* ======================================================================== */

/* ======================================================================== */
/* JPEG colour conversion, sampling and MCU conversion                      */
/* ======================================================================== */

/* ======================================================================== */
/* JPEG 2000 component transforms and wavelet transforms                    */
/* ======================================================================== */

/* ======================================================================== */
/* JPEG 2000 tier-1 code-block coding                                       */
/* ======================================================================== */

/* ======================================================================== */
/* Image copy, set, convert and logical operations                          */
/* ======================================================================== */

/* ======================================================================== */
/* Signal copy, set, zero, multiplication and division                      */
/* ======================================================================== */

#ifdef __cplusplus
}
#endif

#endif /* KROJ_H_ */
