// SPDX-License-Identifier: BSD-3-Clause
// The irreversible 9/7 wavelet transform (T.800 F.3.8, F.4.8 with the 9/7 lifting
// coefficients): 16s in 2^-14 fixed point, 32s through single precision with
// saturating truncation, 32f in single precision; buffer sizes, one 2D level in place
// and out of place (16s, 32s), the row and column region forms and the streaming
// column steps (2^-16 fixed point for 16s and 32s). The kernels are compiled per
// SIMD target and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "wavelet97.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/wavelet-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
template <class T>
void Fwd97Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2D<T, Fwd97Ref<T>>(kFwd97<T>, img, step, r, buf);
}
template <class T>
void Inv97Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2D<T, Inv97Ref<T>>(kInv97<T>, img, step, r, buf);
}
template <class T>
void Fwd97Rows(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  FwdRows(kFwd97<T>, s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv97Rows(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  InvRows(kInv97<T>, l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd97Cols(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  FwdCols<Cols97<T>>(s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv97Cols(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  InvCols<Cols97<T>>(l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd97Lift(const T* x0, const T* x1, const T* x2, T* lp, T* lc, T* hp2, T* hp, T* hc, int w) {
  Fwd97LiftSimd(x0, x1, x2, lp, lc, hp2, hp, hc, w);
}
template <class T>
void Inv97Lift(const T* l, const T* hprev, const T* h, T* op, T* oc, T* ep2, T* ep, T* ec, int w) {
  Inv97LiftSimd(l, hprev, h, op, oc, ep2, ep, ec, w);
}
template <class T>
void Fwd97Bands(const T* s, int ss, T* const* b, const int* bs, const KroiRect& r, uint8_t* buf) {
  FwdBands<T, Fwd97Ref<T>, Fwd97Level<T>>(kFwd97<T>, s, ss, b, bs, r, buf);
}
template <class T>
void Inv97Bands(const T* const* b, const int* bs, T* d, int ds, const KroiRect& r, uint8_t* buf) {
  InvBands<T, Inv97Ref<T>, Inv97Level<T>>(kInv97<T>, b, bs, d, ds, r, buf);
}
#else
template <class T>
void Fwd97Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2DInPlace<T, Fwd97Ref<T>>(img, step, r, buf);
}
template <class T>
void Inv97Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2DInPlace<T, Inv97Ref<T>>(img, step, r, buf);
}
template <class T>
void Fwd97Rows(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  RefFwdRows<T, Region97Ref<T>>(s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv97Rows(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  RefInvRows<T, Region97Ref<T>>(l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd97Cols(const T* s, int ss, T* l, int ls, T* h, int hs, KroiSize z, bool p) {
  RefFwdCols<T, Region97Ref<T>>(s, ss, l, ls, h, hs, z, p);
}
template <class T>
void Inv97Cols(const T* l, int ls, const T* h, int hs, KroiSize z, T* d, int ds, bool p) {
  RefInvCols<T, Region97Ref<T>>(l, ls, h, hs, z, d, ds, p);
}
template <class T>
void Fwd97Lift(const T* x0, const T* x1, const T* x2, T* lp, T* lc, T* hp2, T* hp, T* hc, int w) {
  if constexpr (std::is_same_v<T, float>) {
    ref::Fwd97LiftRowsF(x0, x1, x2, lp, lc, hp2, hp, hc, w);
  } else {
    ref::Fwd97LiftRowsQ16(x0, x1, x2, lp, lc, hp2, hp, hc, w);
  }
}
template <class T>
void Inv97Lift(const T* l, const T* hprev, const T* h, T* op, T* oc, T* ep2, T* ep, T* ec, int w) {
  if constexpr (std::is_same_v<T, float>) {
    ref::Inv97LiftRowsF(l, hprev, h, op, oc, ep2, ep, ec, w);
  } else {
    ref::Inv97LiftRowsQ16(l, hprev, h, op, oc, ep2, ep, ec, w);
  }
}
template <class T>
void Fwd97Bands(const T* s, int ss, T* const* b, const int* bs, const KroiRect& r, uint8_t* buf) {
  FwdBandsThroughImage<T, Fwd97Level<T>>(s, ss, b, bs, r, buf);
}
template <class T>
void Inv97Bands(const T* const* b, const int* bs, T* d, int ds, const KroiRect& r, uint8_t* buf) {
  InvBandsThroughImage<T, Inv97Level<T>>(b, bs, d, ds, r, buf);
}
#endif

// The kernels behind the exported functions, per sample type.
void Fwd97Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd97Level(img, step, r, buf);
}
void Inv97Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv97Level(img, step, r, buf);
}
void Fwd97Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd97Level(img, step, r, buf);
}
void Inv97Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv97Level(img, step, r, buf);
}
void Fwd97Rows16s(const int16_t* s, int ss, int16_t* l, int ls, int16_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd97Rows(s, ss, l, ls, h, hs, z, p);
}
void Inv97Rows16s(const int16_t* l, int ls, const int16_t* h, int hs, KroiSize z, int16_t* d,
                  int ds, bool p) {
  Inv97Rows(l, ls, h, hs, z, d, ds, p);
}
void Fwd97Rows32s(const int32_t* s, int ss, int32_t* l, int ls, int32_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd97Rows(s, ss, l, ls, h, hs, z, p);
}
void Inv97Rows32s(const int32_t* l, int ls, const int32_t* h, int hs, KroiSize z, int32_t* d,
                  int ds, bool p) {
  Inv97Rows(l, ls, h, hs, z, d, ds, p);
}
void Fwd97Rows32f(const float* s, int ss, float* l, int ls, float* h, int hs, KroiSize z, bool p) {
  Fwd97Rows(s, ss, l, ls, h, hs, z, p);
}
void Inv97Rows32f(const float* l, int ls, const float* h, int hs, KroiSize z, float* d, int ds,
                  bool p) {
  Inv97Rows(l, ls, h, hs, z, d, ds, p);
}
void Fwd97Cols32s(const int32_t* s, int ss, int32_t* l, int ls, int32_t* h, int hs, KroiSize z,
                  bool p) {
  Fwd97Cols(s, ss, l, ls, h, hs, z, p);
}
void Inv97Cols32s(const int32_t* l, int ls, const int32_t* h, int hs, KroiSize z, int32_t* d,
                  int ds, bool p) {
  Inv97Cols(l, ls, h, hs, z, d, ds, p);
}
void Fwd97Cols32f(const float* s, int ss, float* l, int ls, float* h, int hs, KroiSize z, bool p) {
  Fwd97Cols(s, ss, l, ls, h, hs, z, p);
}
void Inv97Cols32f(const float* l, int ls, const float* h, int hs, KroiSize z, float* d, int ds,
                  bool p) {
  Inv97Cols(l, ls, h, hs, z, d, ds, p);
}
void Fwd97Lift16s(const int16_t* x0, const int16_t* x1, const int16_t* x2, int16_t* lp, int16_t* lc,
                  int16_t* hp2, int16_t* hp, int16_t* hc, int w) {
  Fwd97Lift(x0, x1, x2, lp, lc, hp2, hp, hc, w);
}
void Inv97Lift16s(const int16_t* l, const int16_t* hprev, const int16_t* h, int16_t* op,
                  int16_t* oc, int16_t* ep2, int16_t* ep, int16_t* ec, int w) {
  Inv97Lift(l, hprev, h, op, oc, ep2, ep, ec, w);
}
void Fwd97Lift32s(const int32_t* x0, const int32_t* x1, const int32_t* x2, int32_t* lp, int32_t* lc,
                  int32_t* hp2, int32_t* hp, int32_t* hc, int w) {
  Fwd97Lift(x0, x1, x2, lp, lc, hp2, hp, hc, w);
}
void Inv97Lift32s(const int32_t* l, const int32_t* hprev, const int32_t* h, int32_t* op,
                  int32_t* oc, int32_t* ep2, int32_t* ep, int32_t* ec, int w) {
  Inv97Lift(l, hprev, h, op, oc, ep2, ep, ec, w);
}
void Fwd97Lift32f(const float* x0, const float* x1, const float* x2, float* lp, float* lc,
                  float* hp2, float* hp, float* hc, int w) {
  Fwd97Lift(x0, x1, x2, lp, lc, hp2, hp, hc, w);
}
void Inv97Lift32f(const float* l, const float* hprev, const float* h, float* op, float* oc,
                  float* ep2, float* ep, float* ec, int w) {
  Inv97Lift(l, hprev, h, op, oc, ep2, ep, ec, w);
}

void Fwd97Bands16s(const int16_t* s, int ss, int16_t* const* b, const int* bs, const KroiRect& r,
                   uint8_t* buf) {
  Fwd97Bands(s, ss, b, bs, r, buf);
}
void Inv97Bands16s(const int16_t* const* b, const int* bs, int16_t* d, int ds, const KroiRect& r,
                   uint8_t* buf) {
  Inv97Bands(b, bs, d, ds, r, buf);
}
void Fwd97Bands32s(const int32_t* s, int ss, int32_t* const* b, const int* bs, const KroiRect& r,
                   uint8_t* buf) {
  Fwd97Bands(s, ss, b, bs, r, buf);
}
void Inv97Bands32s(const int32_t* const* b, const int* bs, int32_t* d, int ds, const KroiRect& r,
                   uint8_t* buf) {
  Inv97Bands(b, bs, d, ds, r, buf);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(Fwd97Bands16s);
HWY_EXPORT(Fwd97Bands32s);
HWY_EXPORT(Inv97Bands16s);
HWY_EXPORT(Inv97Bands32s);
HWY_EXPORT(Fwd97Level16s);
HWY_EXPORT(Inv97Level16s);
HWY_EXPORT(Fwd97Level32s);
HWY_EXPORT(Inv97Level32s);
HWY_EXPORT(Fwd97Rows16s);
HWY_EXPORT(Inv97Rows16s);
HWY_EXPORT(Fwd97Rows32s);
HWY_EXPORT(Inv97Rows32s);
HWY_EXPORT(Fwd97Rows32f);
HWY_EXPORT(Inv97Rows32f);
HWY_EXPORT(Fwd97Cols32s);
HWY_EXPORT(Inv97Cols32s);
HWY_EXPORT(Fwd97Cols32f);
HWY_EXPORT(Inv97Cols32f);
HWY_EXPORT(Fwd97Lift16s);
HWY_EXPORT(Inv97Lift16s);
HWY_EXPORT(Fwd97Lift32s);
HWY_EXPORT(Inv97Lift32s);
HWY_EXPORT(Fwd97Lift32f);
HWY_EXPORT(Inv97Lift32f);

namespace {

// Only single samples go without the buffer.
constexpr int kShort97 = 1;

template <class T>
KroStatus BufSize97(const KroiRect* pTileRect, int* pSize, bool out_of_place) {
  return GetBufSize<T, kExt97, kShort97>(pTileRect, pSize, out_of_place);
}

template <class T>
KroStatus FwdColLift97(void (*kernel)(const T*, const T*, const T*, T*, T*, T*, T*, T*, int),
                       const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pLowPrev, T* pLowCur,
                       T* pHighPrev2, T* pHighPrev, T* pHighCur, int width) {
  const KroStatus st =
      CheckLift(width, pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur);
  if (st != kroStatusOk) return st;
  kernel(pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
  return kroStatusOk;
}

template <class T>
KroStatus InvColLift97(void (*kernel)(const T*, const T*, const T*, T*, T*, T*, T*, T*, int),
                       const T* pSrcLow, const T* pSrcHighPrev, const T* pSrcHigh, T* pOddPrev,
                       T* pOddCur, T* pEvenPrev2, T* pEvenPrev, T* pEvenCur, int width) {
  const KroStatus st = CheckLift(width, pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur,
                                 pEvenPrev2, pEvenPrev, pEvenCur);
  if (st != kroStatusOk) return st;
  kernel(pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur,
         width);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus kroiWTFwdColLift_D97_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1,
                                                        const Kro16s* pSrc2, Kro16s* pLowPrev,
                                                        Kro16s* pLowCur, Kro16s* pHighPrev2,
                                                        Kro16s* pHighPrev, Kro16s* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(HWY_DYNAMIC_DISPATCH(kro::Fwd97Lift16s), pSrc0, pSrc1, pSrc2, pLowPrev,
                           pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdColLift_D97_JPEG2K_32f_C1(const Kro32f* pSrc0, const Kro32f* pSrc1,
                                                        const Kro32f* pSrc2, Kro32f* pLowPrev,
                                                        Kro32f* pLowCur, Kro32f* pHighPrev2,
                                                        Kro32f* pHighPrev, Kro32f* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(HWY_DYNAMIC_DISPATCH(kro::Fwd97Lift32f), pSrc0, pSrc1, pSrc2, pLowPrev,
                           pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdColLift_D97_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1,
                                                        const Kro32s* pSrc2, Kro32s* pLowPrev,
                                                        Kro32s* pLowCur, Kro32s* pHighPrev2,
                                                        Kro32s* pHighPrev, Kro32s* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(HWY_DYNAMIC_DISPATCH(kro::Fwd97Lift32s), pSrc0, pSrc1, pSrc2, pLowPrev,
                           pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdColStep_D97_JPEG2K_32f_C1(const Kro32f* pSrc0, const Kro32f* pSrc1,
                                                        const Kro32f* pSrc2, Kro32f* pLowPrev,
                                                        Kro32f* pLowCur, Kro32f* pHighPrev2,
                                                        Kro32f* pHighPrev, Kro32f* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(HWY_DYNAMIC_DISPATCH(kro::Fwd97Lift32f), pSrc0, pSrc1, pSrc2, pLowPrev,
                           pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdCol_D97_JPEG2K_32f_C1R(const Kro32f* pSrc, int srcStep,
                                                     Kro32f* pDstLow, int dstLowStep,
                                                     Kro32f* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro32f>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Cols32f), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdCol_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep,
                                                     Kro32s* pDstLow, int dstLowStep,
                                                     Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Cols32s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_D97_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep,
                                                     Kro16s* pDstLow, int dstLowStep,
                                                     Kro16s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Rows16s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_D97_JPEG2K_32f_C1R(const Kro32f* pSrc, int srcStep,
                                                     Kro32f* pDstLow, int dstLowStep,
                                                     Kro32f* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro32f>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Rows32f), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep,
                                                     Kro32s* pDstLow, int dstLowStep,
                                                     Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Rows32s), pSrc, srcStep, pDstLow,
                                dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Level16s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep,
                                                  Kro16s* pDstBand[4], int dstBandStep[4],
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Bands16s), pSrc, srcStep,
                                      pDstBand, dstBandStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Level32s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep,
                                                  Kro32s* pDstBand[4], int dstBandStep[4],
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Bands32s), pSrc, srcStep,
                                      pDstBand, dstBandStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize97<Kro16s>(pTileRect, pSize, false);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_D97_JPEG2K_16s_C1R(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize97<Kro16s>(pTileRect, pSize, true);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_D97_JPEG2K_32s_C1IR(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize97<Kro32s>(pTileRect, pSize, false);
}
KRO_EXPORT KroStatus kroiWTGetBufSize_D97_JPEG2K_32s_C1R(const KroiRect* pTileRect, int* pSize) {
  return kro::BufSize97<Kro32s>(pTileRect, pSize, true);
}
KRO_EXPORT KroStatus kroiWTInvColLift_D97_JPEG2K_16s_C1(
    const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev, const Kro16s* pSrcHigh, Kro16s* pOddPrev,
    Kro16s* pOddCur, Kro16s* pEvenPrev2, Kro16s* pEvenPrev, Kro16s* pEvenCur, int width) {
  return kro::InvColLift97(HWY_DYNAMIC_DISPATCH(kro::Inv97Lift16s), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur, width);
}
KRO_EXPORT KroStatus kroiWTInvColLift_D97_JPEG2K_32f_C1(
    const Kro32f* pSrcLow, const Kro32f* pSrcHighPrev, const Kro32f* pSrcHigh, Kro32f* pOddPrev,
    Kro32f* pOddCur, Kro32f* pEvenPrev2, Kro32f* pEvenPrev, Kro32f* pEvenCur, int width) {
  return kro::InvColLift97(HWY_DYNAMIC_DISPATCH(kro::Inv97Lift32f), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur, width);
}
KRO_EXPORT KroStatus kroiWTInvColLift_D97_JPEG2K_32s_C1(
    const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev, const Kro32s* pSrcHigh, Kro32s* pOddPrev,
    Kro32s* pOddCur, Kro32s* pEvenPrev2, Kro32s* pEvenPrev, Kro32s* pEvenCur, int width) {
  return kro::InvColLift97(HWY_DYNAMIC_DISPATCH(kro::Inv97Lift32s), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur, width);
}
KRO_EXPORT KroStatus kroiWTInvColStep_D97_JPEG2K_32f_C1(
    const Kro32f* pSrcLow, const Kro32f* pSrcHighPrev, const Kro32f* pSrcHigh, Kro32f* pOddPrev,
    Kro32f* pOddCur, Kro32f* pEvenPrev2, Kro32f* pEvenPrev, Kro32f* pEvenCur, int width) {
  return kro::InvColLift97(HWY_DYNAMIC_DISPATCH(kro::Inv97Lift32f), pSrcLow, pSrcHighPrev, pSrcHigh,
                           pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur, width);
}
KRO_EXPORT KroStatus kroiWTInvCol_D97_JPEG2K_32f_C1R(const Kro32f* pSrcLow, int srcLowStep,
                                                     const Kro32f* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro32f* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro32f>(HWY_DYNAMIC_DISPATCH(kro::Inv97Cols32f), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvCol_D97_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep,
                                                     const Kro32s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro32s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Cols32s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_D97_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep,
                                                     const Kro16s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro16s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Rows16s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_D97_JPEG2K_32f_C1R(const Kro32f* pSrcLow, int srcLowStep,
                                                     const Kro32f* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro32f* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro32f>(HWY_DYNAMIC_DISPATCH(kro::Inv97Rows32f), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_D97_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep,
                                                     const Kro32s* pSrcHigh, int srcHighStep,
                                                     KroiSize srcRoiSize, Kro32s* pDst, int dstStep,
                                                     int phase) {
  return kro::InvRegion<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Rows32s), pSrcLow, srcLowStep,
                                pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Level16s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_16s_C1R(const Kro16s* pSrcBand[4], int srcBandStep[4],
                                                  Kro16s* pDst, int dstStep,
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Bands16s), pSrcBand,
                                      srcBandStep, pDst, dstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep,
                                                   const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Level32s), pSrcDst, srcDstStep,
                                pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_32s_C1R(const Kro32s* pSrcBand[4], int srcBandStep[4],
                                                  Kro32s* pDst, int dstStep,
                                                  const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Bands32s), pSrcBand,
                                      srcBandStep, pDst, dstStep, pTileRect, pBuffer);
}
#endif  // HWY_ONCE
