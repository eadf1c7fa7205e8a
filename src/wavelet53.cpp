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
#else
template <class T>
void Fwd53Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Fwd2DInPlace<T, Fwd53Ref<T>>(img, step, r, buf);
}
template <class T>
void Inv53Level(T* img, int step, const KroiRect& r, uint8_t* buf) {
  Inv2DInPlace<T, Inv53Ref<T>>(img, step, r, buf);
}
#endif

// One 2D level in place, per sample type and direction.
void Fwd53Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) { Fwd53Level(img, step, r, buf); }
void Fwd53Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) { Fwd53Level(img, step, r, buf); }
void Inv53Level16s(int16_t* img, int step, const KroiRect& r, uint8_t* buf) { Inv53Level(img, step, r, buf); }
void Inv53Level32s(int32_t* img, int step, const KroiRect& r, uint8_t* buf) { Inv53Level(img, step, r, buf); }

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(Fwd53Level16s);
HWY_EXPORT(Fwd53Level32s);
HWY_EXPORT(Inv53Level16s);
HWY_EXPORT(Inv53Level32s);

namespace {
template <class T>
struct Region53 {
  template <int N>
  using Op = std::conditional_t<N == 1, ref::Lift53<T>, Lanes53<T, N>>;
  template <int N, class S, class D>
  static void Fwd(const S& x, const D& low, const D& high, int w, bool phase) {
    ref::Fwd53Region<Op<N>>(x, low, high, w, phase);
  }
  template <int N, class S, class D>
  static void Inv(const S& low, const S& high, const D& y, int w, bool phase) {
    ref::Inv53Region<Op<N>>(low, high, y, w, phase);
  }
};

// Lines of at most two samples need no buffer.
constexpr int kShort53 = 2;

template <class T>
KroStatus BufSize53(const KroiRect* pTileRect, int* pSize, bool out_of_place) {
  return GetBufSize<T, kExt53, kShort53>(pTileRect, pSize, out_of_place);
}

template <class T>
KroStatus FwdColLift53(const T* pSrc0, const T* pSrc1, const T* pSrc2, T* pDstLow, const T* pSrcHighPrev,
                       T* pDstHigh, int width) {
  const KroStatus st = CheckLift(width, pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh);
  if (st != kroStatusOk) return st;
  ref::Fwd53LiftRow(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);
  return kroStatusOk;
}

template <class T>
KroStatus InvColLift53(const T* pSrcLow, const T* pSrcHighPrev, const T* pSrcHigh, const T* pSrcEvenPrev,
                       T* pDstOdd, T* pDstEven, int width) {
  const KroStatus st = CheckLift(width, pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven);
  if (st != kroStatusOk) return st;
  ref::Inv53LiftRow(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

using kro::Region53;

KRO_EXPORT KroStatus kroiWTFwdColLift_B53_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1,
                                                        const Kro16s* pSrc2, Kro16s* pDstLow,
                                                        const Kro16s* pSrcHighPrev, Kro16s* pDstHigh, int width) {
  return kro::FwdColLift53(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdColLift_B53_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1,
                                                        const Kro32s* pSrc2, Kro32s* pDstLow,
                                                        const Kro32s* pSrcHighPrev, Kro32s* pDstHigh, int width) {
  return kro::FwdColLift53(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdColStep_B53_JPEG2K_16s_C1(const Kro16s* pSrc0, const Kro16s* pSrc1,
                                                        const Kro16s* pSrc2, Kro16s* pDstLow,
                                                        const Kro16s* pSrcHighPrev, Kro16s* pDstHigh, int width) {
  return kro::FwdColLift53(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdColStep_B53_JPEG2K_32s_C1(const Kro32s* pSrc0, const Kro32s* pSrc1,
                                                        const Kro32s* pSrc2, Kro32s* pDstLow,
                                                        const Kro32s* pSrcHighPrev, Kro32s* pDstHigh, int width) {
  return kro::FwdColLift53(pSrc0, pSrc1, pSrc2, pDstLow, pSrcHighPrev, pDstHigh, width);
}
KRO_EXPORT KroStatus kroiWTFwdCol_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstLow,
                                                     int dstLowStep, Kro16s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdColRegion<Kro16s, Region53<Kro16s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdCol_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                     int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdColRegion<Kro32s, Region53<Kro32s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstLow,
                                                     int dstLowStep, Kro16s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRowRegion<Kro16s, Region53<Kro16s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwdRow_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstLow,
                                                     int dstLowStep, Kro32s* pDstHigh, int dstHighStep,
                                                     KroiSize dstRoiSize, int phase) {
  return kro::FwdRowRegion<Kro32s, Region53<Kro32s>>(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep,
                                                     dstRoiSize, phase);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Level16s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDstBand[4],
                                                  int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Level16s), pSrc, srcStep, pDstBand, dstBandStep, pTileRect,
                                                            pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Level32s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTFwd_B53_JPEG2K_32s_C1R(const Kro32s* pSrc, int srcStep, Kro32s* pDstBand[4],
                                                  int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Fwd2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Fwd53Level32s), pSrc, srcStep, pDstBand, dstBandStep, pTileRect,
                                                            pBuffer);
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
KRO_EXPORT KroStatus kroiWTInvColLift_B53_JPEG2K_16s_C1(const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev,
                                                        const Kro16s* pSrcHigh, const Kro16s* pSrcEvenPrev,
                                                        Kro16s* pDstOdd, Kro16s* pDstEven, int width) {
  return kro::InvColLift53(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvColLift_B53_JPEG2K_32s_C1(const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev,
                                                        const Kro32s* pSrcHigh, const Kro32s* pSrcEvenPrev,
                                                        Kro32s* pDstOdd, Kro32s* pDstEven, int width) {
  return kro::InvColLift53(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvColStep_B53_JPEG2K_16s_C1(const Kro16s* pSrcLow, const Kro16s* pSrcHighPrev,
                                                        const Kro16s* pSrcHigh, const Kro16s* pSrcEvenPrev,
                                                        Kro16s* pDstOdd, Kro16s* pDstEven, int width) {
  return kro::InvColLift53(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvColStep_B53_JPEG2K_32s_C1(const Kro32s* pSrcLow, const Kro32s* pSrcHighPrev,
                                                        const Kro32s* pSrcHigh, const Kro32s* pSrcEvenPrev,
                                                        Kro32s* pDstOdd, Kro32s* pDstEven, int width) {
  return kro::InvColLift53(pSrcLow, pSrcHighPrev, pSrcHigh, pSrcEvenPrev, pDstOdd, pDstEven, width);
}
KRO_EXPORT KroStatus kroiWTInvCol_B53_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep, const Kro16s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro16s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvColRegion<Kro16s, Region53<Kro16s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvCol_B53_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvColRegion<Kro32s, Region53<Kro32s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_B53_JPEG2K_16s_C1R(const Kro16s* pSrcLow, int srcLowStep, const Kro16s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro16s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvRowRegion<Kro16s, Region53<Kro16s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInvRow_B53_JPEG2K_32s_C1R(const Kro32s* pSrcLow, int srcLowStep, const Kro32s* pSrcHigh,
                                                     int srcHighStep, KroiSize srcRoiSize, Kro32s* pDst,
                                                     int dstStep, int phase) {
  return kro::InvRowRegion<Kro32s, Region53<Kro32s>>(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst,
                                                     dstStep, phase);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_16s_C1IR(Kro16s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Level16s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_16s_C1R(const Kro16s* pSrcBand[4], int srcBandStep[4], Kro16s* pDst,
                                                  int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro16s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Level16s), pSrcBand, srcBandStep, pDst, dstStep, pTileRect,
                                                            pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_32s_C1IR(Kro32s* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                                                   Kro8u* pBuffer) {
  return kro::InPlace2D<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Level32s), pSrcDst, srcDstStep, pTileRect, pBuffer);
}
KRO_EXPORT KroStatus kroiWTInv_B53_JPEG2K_32s_C1R(const Kro32s* pSrcBand[4], int srcBandStep[4], Kro32s* pDst,
                                                  int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer) {
  return kro::Inv2DOutOfPlace<Kro32s>(HWY_DYNAMIC_DISPATCH(kro::Inv53Level32s), pSrcBand, srcBandStep, pDst, dstStep, pTileRect,
                                                            pBuffer);
}
#endif  // HWY_ONCE
