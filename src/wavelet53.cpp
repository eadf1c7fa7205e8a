// SPDX-License-Identifier: BSD-3-Clause
// The reversible 5/3 wavelet transform (T.800 F.3.8, F.4.8) in 16s and 32s: buffer
// sizes, one 2D level in place and out of place, the row and column region forms and
// the streaming column step. The kernels are compiled per SIMD target and chosen at
// each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "wavelet53.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/wavelet-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
template <class T>
void Fwd53Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2D<T, Fwd53Ref<T>>(kFwd53<T>, img, step, r, buf);
}
template <class T>
void Inv53Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2D<T, Inv53Ref<T>>(kInv53<T>, img, step, r, buf);
}
template <class T>
void Fwd53Rows(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  FwdRows(kFwd53<T>, s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv53Rows(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  InvRows(kInv53<T>, l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd53Cols(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  FwdCols<Cols53<T>>(s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv53Cols(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  InvCols<Cols53<T>>(l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd53Lift(const T* x0, const T* x1, const T* x2, T* low, const T* dprev, T* high, int w) {
  Fwd53LiftSimd(x0, x1, x2, low, dprev, high, w);
}
template <class T>
void Inv53Lift(const T* s, const T* dprev, const T* d, const T* xprev, T* odd, T* even, int w) {
  Inv53LiftSimd(s, dprev, d, xprev, odd, even, w);
}
template <class T>
void Fwd53Bands(const T* s, int ss, T* const* b, const int* bs, const KroiRect& r, uint8_t* buf) {
  FwdBands<T, Fwd53Ref<T>, Fwd53Level<T>>(kFwd53<T>, s, ss, b, bs, r, buf);
}
template <class T>
void Inv53Bands(const T* const* b, const int* bs, T* d, int ds, const KroiRect& r, uint8_t* buf) {
  InvBands<T, Inv53Ref<T>, Inv53Level<T>>(kInv53<T>, b, bs, d, ds, r, buf);
}
#else
template <class T>
void Fwd53Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2DInPlace<T, Fwd53Ref<T>>(img, step, r, buf);
}
template <class T>
void Inv53Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2DInPlace<T, Inv53Ref<T>>(img, step, r, buf);
}
template <class T>
void Fwd53Rows(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  RefFwdRows<T, Region53Ref<T>>(s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv53Rows(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  RefInvRows<T, Region53Ref<T>>(l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd53Cols(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  RefFwdCols<T, Region53Ref<T>>(s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv53Cols(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  RefInvCols<T, Region53Ref<T>>(l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd53Lift(const T* x0, const T* x1, const T* x2, T* low, const T* dprev, T* high, int w) {
  ref::Fwd53LiftRow(x0, x1, x2, low, dprev, high, w);
}
template <class T>
void Inv53Lift(const T* s, const T* dprev, const T* d, const T* xprev, T* odd, T* even, int w) {
  ref::Inv53LiftRow(s, dprev, d, xprev, odd, even, w);
}
template <class T>
void Fwd53Bands(const T* s, int ss, T* const* b, const int* bs, const KroiRect& r, uint8_t* buf) {
  FwdBandsThroughImage<T, Fwd53Level<T>>(s, ss, b, bs, r, buf);
}
template <class T>
void Inv53Bands(const T* const* b, const int* bs, T* d, int ds, const KroiRect& r, uint8_t* buf) {
  InvBandsThroughImage<T, Inv53Level<T>>(b, bs, d, ds, r, buf);
}
#endif

// The kernels behind the exported functions, per sample type.
void Fwd53Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd53Level(img, step, r, buf);
}
void Fwd53Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd53Level(img, step, r, buf);
}
void Inv53Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv53Level(img, step, r, buf);
}
void Inv53Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv53Level(img, step, r, buf);
}
void Fwd53Rows16s(const int16_t* s, int ss, int16_t* l, int ls, int16_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd53Rows(s, ss, l, ls, h, hs, z, p);
}
void Fwd53Rows32s(const int32_t* s, int ss, int32_t* l, int ls, int32_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd53Rows(s, ss, l, ls, h, hs, z, p);
}
void Inv53Rows16s(const int16_t* l, int ls, const int16_t* h, int hs, KroiSize z, int16_t* d,
                  int ds, bool p) {
  Inv53Rows(l, ls, h, hs, z, d, ds, p);
}
void Inv53Rows32s(const int32_t* l, int ls, const int32_t* h, int hs, KroiSize z, int32_t* d,
                  int ds, bool p) {
  Inv53Rows(l, ls, h, hs, z, d, ds, p);
}
void Fwd53Cols16s(const int16_t* s, int ss, int16_t* l, int ls, int16_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd53Cols(s, ss, l, ls, h, hs, z, p);
}
void Fwd53Cols32s(const int32_t* s, int ss, int32_t* l, int ls, int32_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd53Cols(s, ss, l, ls, h, hs, z, p);
}
void Inv53Cols16s(const int16_t* l, int ls, const int16_t* h, int hs, KroiSize z, int16_t* d,
                  int ds, bool p) {
  Inv53Cols(l, ls, h, hs, z, d, ds, p);
}
void Inv53Cols32s(const int32_t* l, int ls, const int32_t* h, int hs, KroiSize z, int32_t* d,
                  int ds, bool p) {
  Inv53Cols(l, ls, h, hs, z, d, ds, p);
}
void Fwd53Lift16s(const int16_t* x0, const int16_t* x1, const int16_t* x2, int16_t* low,
                  const int16_t* dprev, int16_t* high, int w) {
  Fwd53Lift(x0, x1, x2, low, dprev, high, w);
}
void Fwd53Lift32s(const int32_t* x0, const int32_t* x1, const int32_t* x2, int32_t* low,
                  const int32_t* dprev, int32_t* high, int w) {
  Fwd53Lift(x0, x1, x2, low, dprev, high, w);
}
void Inv53Lift16s(const int16_t* s, const int16_t* dprev, const int16_t* d, const int16_t* xprev,
                  int16_t* odd, int16_t* even, int w) {
  Inv53Lift(s, dprev, d, xprev, odd, even, w);
}
void Inv53Lift32s(const int32_t* s, const int32_t* dprev, const int32_t* d, const int32_t* xprev,
                  int32_t* odd, int32_t* even, int w) {
  Inv53Lift(s, dprev, d, xprev, odd, even, w);
}

void Fwd53Bands16s(const int16_t* s, int ss, int16_t* const* b, const int* bs, const KroiRect& r,
                   uint8_t* buf) {
  Fwd53Bands(s, ss, b, bs, r, buf);
}
void Inv53Bands16s(const int16_t* const* b, const int* bs, int16_t* d, int ds, const KroiRect& r,
                   uint8_t* buf) {
  Inv53Bands(b, bs, d, ds, r, buf);
}
void Fwd53Bands32s(const int32_t* s, int ss, int32_t* const* b, const int* bs, const KroiRect& r,
                   uint8_t* buf) {
  Fwd53Bands(s, ss, b, bs, r, buf);
}
void Inv53Bands32s(const int32_t* const* b, const int* bs, int32_t* d, int ds, const KroiRect& r,
                   uint8_t* buf) {
  Inv53Bands(b, bs, d, ds, r, buf);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(Fwd53Bands16s);
HWY_EXPORT(Fwd53Bands32s);
HWY_EXPORT(Inv53Bands16s);
HWY_EXPORT(Inv53Bands32s);
HWY_EXPORT(Fwd53Level16s);
HWY_EXPORT(Fwd53Level32s);
HWY_EXPORT(Inv53Level16s);
HWY_EXPORT(Inv53Level32s);
HWY_EXPORT(Fwd53Rows16s);
HWY_EXPORT(Fwd53Rows32s);
HWY_EXPORT(Inv53Rows16s);
HWY_EXPORT(Inv53Rows32s);
HWY_EXPORT(Fwd53Cols16s);
HWY_EXPORT(Fwd53Cols32s);
HWY_EXPORT(Inv53Cols16s);
HWY_EXPORT(Inv53Cols32s);
HWY_EXPORT(Fwd53Lift16s);
HWY_EXPORT(Fwd53Lift32s);
HWY_EXPORT(Inv53Lift16s);
HWY_EXPORT(Inv53Lift32s);

namespace {

// Lines of at most two samples need no buffer.
constexpr int kShort53 = 2;

template <class T>
KroStatus BufSize53(const KroiRect* pTileRect, int* pSize, bool out_of_place) {
  return GetBufSize<T, kExt53, kShort53>(pTileRect, pSize, out_of_place);
}

template <class T>
KroStatus FwdColLift53(void (*kernel)(const T*, const T*, const T*, T*, const T*, T*, int),
                       const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pDstLow,
                       const T* pSrcHighPrev, T* pDstHigh, int width) {
  const KroStatus st = CheckLift(width, pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh);
  if (st != kroStatusOk) return st;
  kernel(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);
  return kroStatusOk;
}

template <class T>
KroStatus InvColLift53(void (*kernel)(const T*, const T*, const T*, const T*, T*, T*, int),
                       const T* pSrcLow, const T* pSrcHighPrev, const T* pSrcHigh,
                       const T* pSrcEvenPrev, T* pDstOdd, T* pDstEven, int width) {
  const KroStatus st =
      CheckLift(width, pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven);
  if (st != kroStatusOk) return st;
  kernel(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiWTFwdColLift_B53_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1,
                                                        const Kro16s* pSrc2, Kro16s* pDstLow,
                                                        const Kro16s* pSrcHighPrev,
                                                        Kro16s* pDstHigh, int width) {
  return kro::FwdColLift53(HWY_DYNAMIC_DISPATCH(kro::Fwd53Lift16s), pSrc0, pSrc1, pSrc2, pDstLow,
                           pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdColLift_B53_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1,
                                                        const Kro32s* pSrc2, Kro32s* pDstLow,
                                                        const Kro32s* pSrcHighPrev,
                                                        Kro32s* pDstHigh, int width) {
  return kro::FwdColLift53(HWY_DYNAMIC_DISPATCH(kro::Fwd53Lift32s), pSrc0, pSrc1, pSrc2, pDstLow,
                           pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdColStep_B53_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1,
                                                        const Kro16s* pSrc2, Kro16s* pDstLow,
                                                        const Kro16s* pSrcHighPrev,
                                                        Kro16s* pDstHigh, int width) {
  return kro::FwdColLift53(HWY_DYNAMIC_DISPATCH(kro::Fwd53Lift16s), pSrc0, pSrc1, pSrc2, pDstLow,
                           pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdColStep_B53_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1,
                                                        const Kro32s* pSrc2, Kro32s* pDstLow,
                                                        const Kro32s* pSrcHighPrev,
                                                        Kro32s* pDstHigh, int width) {
  return kro::FwdColLift53(HWY_DYNAMIC_DISPATCH(kro::Fwd53Lift32s), pSrc0, pSrc1, pSrc2, pDstLow,
                           pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdCol_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep,
                                                     Kro16s* pDstLow, int dstLowStep,
                                                     Kro16s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Cols16s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdCol_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep,
                                                     Kro32s* pDstLow, int dstLowStep,
                                                     Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Cols32s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep,
                                                     Kro16s* pDstLow, int dstLowStep,
                                                     Kro16s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Rows16s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep,
                                                     Kro32s* pDstLow, int dstLowStep,
                                                     Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Rows32s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Level16s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep,
                                                  Kro16s* pDstBand[4], int dstBandStep[4],
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Bands16s), pSrc, srcStep,
                                      pDstBand, dstBandStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Level32s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep,
                                                  Kro32s* pDstBand[4], int dstBandStep[4],
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Bands32s), pSrc, srcStep,
                                      pDstBand, dstBandStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_B53_JPEG2K_16s_C1IR(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize53<Kro16s>(pTileRect, pSize, false);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_B53_JPEG2K_16s_C1R(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize53<Kro16s>(pTileRect, pSize, true);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize53<Kro32s>(pTileRect, pSize, false);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_B53_JPEG2K_32s_C1R(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize53<Kro32s>(pTileRect, pSize, true);
}
KRO_EXPORT KroStatus kroiWTInvColLift_B53_JPEG2K_16s_C1(const Kro16s* pSrcLow,
                                                        const Kro16s* pSrcHighPrev,
                                                        const Kro16s* pSrcHigh,
                                                        const Kro16s* pSrcEvenPrev, Kro16s* pDstOdd,
                                                        Kro16s* pDstEven, int width) {
  return kro::InvColLift53(HWY_DYNAMIC_DISPATCH(kro::Inv53Lift16s), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvColLift_B53_JPEG2K_32s_C1(const Kro32s* pSrcLow,
                                                        const Kro32s* pSrcHighPrev,
                                                        const Kro32s* pSrcHigh,
                                                        const Kro32s* pSrcEvenPrev, Kro32s* pDstOdd,
                                                        Kro32s* pDstEven, int width) {
  return kro::InvColLift53(HWY_DYNAMIC_DISPATCH(kro::Inv53Lift32s), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvColStep_B53_JPEG2K_16s_C1(const Kro16s* pSrcLow,
                                                        const Kro16s* pSrcHighPrev,
                                                        const Kro16s* pSrcHigh,
                                                        const Kro16s* pSrcEvenPrev, Kro16s* pDstOdd,
                                                        Kro16s* pDstEven, int width) {
  return kro::InvColLift53(HWY_DYNAMIC_DISPATCH(kro::Inv53Lift16s), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvColStep_B53_JPEG2K_32s_C1(const Kro32s* pSrcLow,
                                                        const Kro32s* pSrcHighPrev,
                                                        const Kro32s* pSrcHigh,
                                                        const Kro32s* pSrcEvenPrev, Kro32s* pDstOdd,
                                                        Kro32s* pDstEven, int width) {
  return kro::InvColLift53(HWY_DYNAMIC_DISPATCH(kro::Inv53Lift32s), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvCol_B53_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep,
                                                     const Kro16s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro16s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Cols16s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvCol_B53_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep,
                                                     const Kro32s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro32s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Cols32s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_B53_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep,
                                                     const Kro16s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro16s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Rows16s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_B53_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep,
                                                     const Kro32s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro32s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Rows32s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Level16s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_16s_C1R(const Kro16s* pSrcBand[4], int srcBandStep[4],
                                                  Kro16s* pDst, int dstStep,
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Bands16s), pSrcBand,
                                      srcBandStep, pDst, dstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Level32s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_32s_C1R(const Kro32s* pSrcBand[4], int srcBandStep[4],
                                                  Kro32s* pDst, int dstStep,
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Bands32s), pSrcBand,
                                      srcBandStep, pDst, dstStep, pTileRect, pBuffer);
}
#endif  // HWY_ONCE
