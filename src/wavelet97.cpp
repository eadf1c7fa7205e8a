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

// One 2D level in place, per sample type and direction.
#if HWY_TARGET != HWY_SCALAR
void Fwd97Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2D<int16_t, Fwd97Ref<int16_t>>(kFwd97Q14, img, step, r, buf);
}
void Fwd97Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2D<int32_t, Fwd97Ref<int32_t>>(kFwd97S, img, step, r, buf);
}
void Inv97Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2D<int16_t, Inv97Ref<int16_t>>(kInv97Q14, img, step, r, buf);
}
void Inv97Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2D<int32_t, Inv97Ref<int32_t>>(kInv97S, img, step, r, buf);
}
#else
void Fwd97Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2DInPlace<int16_t, Fwd97Ref<int16_t>>(img, step, r, buf);
}
void Fwd97Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2DInPlace<int32_t, Fwd97Ref<int32_t>>(img, step, r, buf);
}
void Inv97Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2DInPlace<int16_t, Inv97Ref<int16_t>>(img, step, r, buf);
}
void Inv97Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2DInPlace<int32_t, Inv97Ref<int32_t>>(img, step, r, buf);
}
#endif

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(Fwd97Level16s);
HWY_EXPORT(Fwd97Level32s);
HWY_EXPORT(Inv97Level16s);
HWY_EXPORT(Inv97Level32s);

namespace {
template <class T>
struct Region97 {
  template <int N>
  using Op = std::conditional_t<N == 1, D97<T>, Lanes97<D97<T>, N>>;
  template <int N, class S, class D>
  static void Fwd(const S& x, const D& low, const D& high, int w, bool phase) {
    ref::Fwd97Region<Op<N>>(x, low, high, w, phase);
  }
  template <int N, class S, class D>
  static void Inv(const S& low, const S& high, const D& y, int w, bool phase) {
    ref::Inv97Region<Op<N>>(low, high, y, w, phase);
  }
};

// Only single samples go without the buffer.
constexpr int kShort97 = 1;

template <class T>
KroStatus BufSize97(const KroiRect* pTileRect, int* pSize, bool out_of_place) {
  return GetBufSize<T, kExt97, kShort97>(pTileRect, pSize, out_of_place);
}

template <class T>
void FwdLiftRows97(const T* x0, const T* x1, const T* x2, T* lp, T* lc, T* hp2, T* hp, T* hc, int w) {
  if constexpr (std::is_same_v<T, float>) {
    ref::Fwd97LiftRowsF(x0, x1, x2, lp, lc, hp2, hp, hc, w);
  } else {
    ref::Fwd97LiftRowsQ16(x0, x1, x2, lp, lc, hp2, hp, hc, w);
  }
}
template <class T>
void InvLiftRows97(const T* l, const T* hprev, const T* h, T* op, T* oc, T* ep2, T* ep, T* ec, int w) {
  if constexpr (std::is_same_v<T, float>) {
    ref::Inv97LiftRowsF(l, hprev, h, op, oc, ep2, ep, ec, w);
  } else {
    ref::Inv97LiftRowsQ16(l, hprev, h, op, oc, ep2, ep, ec, w);
  }
}

template <class T>
KroStatus FwdColLift97(const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pLowPrev, T* pLowCur, T* pHighPrev2,
                       T* pHighPrev, T* pHighCur, int width) {
  const KroStatus st =
      CheckLift(width, pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur);
  if (st != kroStatusOk) return st;
  FwdLiftRows97(pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
  return kroStatusOk;
}

template <class T>
KroStatus InvColLift97(const T* pSrcLow, const T* pSrcHighPrev, const T* pSrcHigh, T* pOddPrev, T* pOddCur,
                       T* pEvenPrev2, T* pEvenPrev, T* pEvenCur, int width) {
  const KroStatus st =
      CheckLift(width, pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur);
  if (st != kroStatusOk) return st;
  InvLiftRows97(pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur, width);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

using kro::Region97;

KRO_EXPORT KroStatus kroiWTFwdColLift_D97_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1,
                                                        const Kro16s* pSrc2, Kro16s* pLowPrev, Kro16s* pLowCur,
                                                        Kro16s* pHighPrev2, Kro16s* pHighPrev, Kro16s* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdColLift_D97_JPEG2K_32f_C1(const Kro32f* pSrc0, const Kro32f* pSrc1,
                                                        const Kro32f* pSrc2, Kro32f* pLowPrev, Kro32f* pLowCur,
                                                        Kro32f* pHighPrev2, Kro32f* pHighPrev, Kro32f* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdColLift_D97_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1,
                                                        const Kro32s* pSrc2, Kro32s* pLowPrev, Kro32s* pLowCur,
                                                        Kro32s* pHighPrev2, Kro32s* pHighPrev, Kro32s* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdColStep_D97_JPEG2K_32f_C1(const Kro32f* pSrc0, const Kro32f* pSrc1,
                                                        const Kro32f* pSrc2, Kro32f* pLowPrev, Kro32f* pLowCur,
                                                        Kro32f* pHighPrev2, Kro32f* pHighPrev, Kro32f* pHighCur,
                                                        int width) {
  return kro::FwdColLift97(pSrc0, pSrc1, pSrc2, pLowPrev, pLowCur, pHighPrev2, pHighPrev, pHighCur, width);
}
KRO_EXPORT KroStatus kroiWTFwdCol_D97_JPEG2K_32f_C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDstLow,
                                                     int dstLowStep, Kro32f* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdColRegion<Kro32f, Region97<Kro32f>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdCol_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                     int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdColRegion<Kro32s, Region97<Kro32s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_D97_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstLow,
                                                     int dstLowStep, Kro16s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRowRegion<Kro16s, Region97<Kro16s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_D97_JPEG2K_32f_C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDstLow,
                                                     int dstLowStep, Kro32f* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRowRegion<Kro32f, Region97<Kro32f>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                     int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRowRegion<Kro32s, Region97<Kro32s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Level16s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstBand[4],
                                                  int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Level16s), pSrc, srcStep, pDstBand, dstBandStep, pTileRect,
                                                            pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Level32s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_D97_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstBand[4],
                                                  int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd97Level32s), pSrc, srcStep, pDstBand, dstBandStep, pTileRect,
                                                            pBuffer);
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
KRO_EXPORT KroStatus kroiWTInvColLift_D97_JPEG2K_16s_C1(const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev,
                                                        const Kro16s* pSrcHigh, Kro16s* pOddPrev, Kro16s* pOddCur,
                                                        Kro16s* pEvenPrev2, Kro16s* pEvenPrev, Kro16s* pEvenCur,
                                                        int width) {
  return kro::InvColLift97(pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur,
                           width);
}
KRO_EXPORT KroStatus kroiWTInvColLift_D97_JPEG2K_32f_C1(const Kro32f* pSrcLow, const Kro32f* pSrcHighPrev,
                                                        const Kro32f* pSrcHigh, Kro32f* pOddPrev, Kro32f* pOddCur,
                                                        Kro32f* pEvenPrev2, Kro32f* pEvenPrev, Kro32f* pEvenCur,
                                                        int width) {
  return kro::InvColLift97(pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur,
                           width);
}
KRO_EXPORT KroStatus kroiWTInvColLift_D97_JPEG2K_32s_C1(const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev,
                                                        const Kro32s* pSrcHigh, Kro32s* pOddPrev, Kro32s* pOddCur,
                                                        Kro32s* pEvenPrev2, Kro32s* pEvenPrev, Kro32s* pEvenCur,
                                                        int width) {
  return kro::InvColLift97(pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur,
                           width);
}
KRO_EXPORT KroStatus kroiWTInvColStep_D97_JPEG2K_32f_C1(const Kro32f* pSrcLow, const Kro32f* pSrcHighPrev,
                                                        const Kro32f* pSrcHigh, Kro32f* pOddPrev, Kro32f* pOddCur,
                                                        Kro32f* pEvenPrev2, Kro32f* pEvenPrev, Kro32f* pEvenCur,
                                                        int width) {
  return kro::InvColLift97(pSrcLow, pSrcHighPrev, pSrcHigh, pOddPrev, pOddCur, pEvenPrev2, pEvenPrev, pEvenCur,
                           width);
}
KRO_EXPORT KroStatus kroiWTInvCol_D97_JPEG2K_32f_C1R(const Kro32f* pSrcLow, int srcLowStep, const Kro32f* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro32f* pDst,
                                                     int dstStep, int phase) {
  return kro::InvColRegion<Kro32f, Region97<Kro32f>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvCol_D97_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvColRegion<Kro32s, Region97<Kro32s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_D97_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep, const Kro16s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro16s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvRowRegion<Kro16s, Region97<Kro16s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_D97_JPEG2K_32f_C1R(const Kro32f* pSrcLow, int srcLowStep, const Kro32f* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro32f* pDst,
                                                     int dstStep, int phase) {
  return kro::InvRowRegion<Kro32f, Region97<Kro32f>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_D97_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvRowRegion<Kro32s, Region97<Kro32s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Level16s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_16s_C1R(const Kro16s* pSrcBand[4], int srcBandStep[4], Kro16s* pDst,
                                                  int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Level16s), pSrcBand, srcBandStep, pDst, dstStep, pTileRect,
                                                            pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Level32s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_D97_JPEG2K_32s_C1R(const Kro32s* pSrcBand[4], int srcBandStep[4], Kro32s* pDst,
                                                  int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv97Level32s), pSrcBand, srcBandStep, pDst, dstStep, pTileRect,
                                                            pBuffer);
}
#endif  // HWY_ONCE
