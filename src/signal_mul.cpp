// SPDX-License-Identifier: BSD-3-Clause
// Element-wise vector multiplication, by a vector or a constant: integer forms with
// a scale factor (exact product, round half to even, saturation), float forms in
// their own precision, and the mixed conversions. The 8- and 16-bit integer rows
// are compiled per SIMD target (simd/signal-inl.h) and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "signal_mul.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/signal-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void Mul16sRow(const int16_t* a, const int16_t* b, int16_t* dst, int n, int sf) {
  MulScaled16RowSimd(a, b, dst, n, sf);
}
void MulC16sRow(const int16_t* a, int16_t b, int16_t* dst, int n, int sf) {
  MulScaled16RowSimd(a, ref::Splat<int16_t>{b}, dst, n, sf);
}
void Mul16u16sRow(const uint16_t* a, const int16_t* b, int16_t* dst, int n, int sf) {
  MulScaled16RowSimd(a, b, dst, n, sf);
}
void Mul8uRow(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n, int sf) {
  MulScaled8uRowSimd(a, b, dst, n, sf);
}
void MulC8uRow(const uint8_t* a, uint8_t b, uint8_t* dst, int n, int sf) {
  MulScaled8uRowSimd(a, ref::Splat<uint8_t>{b}, dst, n, sf);
}
void Mul8u16uRow(const uint8_t* a, const uint8_t* b, uint16_t* dst, int n, int sf) {
  MulScaled8uRowSimd(a, b, dst, n, sf);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"
#include "ref/signal_ref.h"

namespace kro {

HWY_EXPORT(Mul16sRow);
HWY_EXPORT(MulC16sRow);
HWY_EXPORT(Mul16u16sRow);
HWY_EXPORT(Mul8uRow);
HWY_EXPORT(MulC8uRow);
HWY_EXPORT(Mul8u16uRow);

namespace {

using ref::ProductWord;
using ref::Splat;

// Integer and complex integer products scaled by 2^-sf. Without a scale factor the
// forms run with sf = 0, i.e. plain saturation. The 8- and 16-bit real forms run
// through the dispatched rows, the wider and complex ones through the reference.
template <class A, class B, class T>
KroStatus MulSfs(const A* a, const B* b, T* dst, int len, int sf) {
  if (AnyNull(a, b, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  if constexpr (std::is_same_v<A, int16_t> && std::is_same_v<B, int16_t> &&
                std::is_same_v<T, int16_t>) {
    HWY_DYNAMIC_DISPATCH(Mul16sRow)(a, b, dst, len, sf);
  } else if constexpr (std::is_same_v<A, uint16_t> && std::is_same_v<T, int16_t>) {
    HWY_DYNAMIC_DISPATCH(Mul16u16sRow)(a, b, dst, len, sf);
  } else if constexpr (std::is_same_v<A, uint8_t> && std::is_same_v<T, uint8_t>) {
    HWY_DYNAMIC_DISPATCH(Mul8uRow)(a, b, dst, len, sf);
  } else if constexpr (std::is_same_v<A, uint8_t> && std::is_same_v<T, uint16_t>) {
    HWY_DYNAMIC_DISPATCH(Mul8u16uRow)(a, b, dst, len, sf);
  } else {
    ref::MulScaledRow<T, ProductWord<A, B, T>>(a, b, dst, len, sf);
  }
  return kroStatusOk;
}

template <class A, class T>
KroStatus MulCSfs(const A* a, A val, T* dst, int len, int sf) {
  if (AnyNull(a, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  if constexpr (std::is_same_v<A, int16_t> && std::is_same_v<T, int16_t>) {
    HWY_DYNAMIC_DISPATCH(MulC16sRow)(a, val, dst, len, sf);
  } else if constexpr (std::is_same_v<A, uint8_t> && std::is_same_v<T, uint8_t>) {
    HWY_DYNAMIC_DISPATCH(MulC8uRow)(a, val, dst, len, sf);
  } else {
    ref::MulScaledRow<T, ProductWord<A, A, T>>(a, Splat<A>{val}, dst, len, sf);
  }
  return kroStatusOk;
}

template <class T>
KroStatus MulFloat(const T* a, const T* b, T* dst, int len) {
  if (AnyNull(a, b, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  ref::MulFloatRow(a, b, dst, len);
  return kroStatusOk;
}

template <class T>
KroStatus MulCFloat(const T* a, T val, T* dst, int len) {
  if (AnyNull(a, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  ref::MulFloatRow(a, Splat<T>{val}, dst, len);
  return kroStatusOk;
}

KroStatus Mul16s32f(const Kro16s* a, const Kro16s* b, Kro32f* dst, int len) {
  if (AnyNull(a, b, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  ref::Mul16s32fRow(a, b, dst, len);
  return kroStatusOk;
}

template <bool kLowPrecision>
KroStatus MulC32f16s(const Kro32f* a, Kro32f val, Kro16s* dst, int len, int sf) {
  if (AnyNull(a, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  ref::MulC32f16sRow<kLowPrecision>(a, val, dst, len, sf);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

// 8-bit
KRO_EXPORT KroStatus krosMulC_8u_ISfs(Kro8u val, Kro8u* pSrcDst, int len, int scaleFactor) {
  return kro::MulCSfs(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_8u_Sfs(const Kro8u* pSrc, Kro8u val, Kro8u* pDst, int len,
                                     int scaleFactor) {
  return kro::MulCSfs(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_8u_ISfs(const Kro8u* pSrc, Kro8u* pSrcDst, int len, int scaleFactor) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_8u_Sfs(const Kro8u* pSrc1, const Kro8u* pSrc2, Kro8u* pDst, int len,
                                    int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_8u16u(const Kro8u* pSrc1, const Kro8u* pSrc2, Kro16u* pDst, int len) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, 0);
}

// 16-bit
KRO_EXPORT KroStatus krosMulC_16s_I(Kro16s val, Kro16s* pSrcDst, int len) {
  return kro::MulCSfs(pSrcDst, val, pSrcDst, len, 0);
}
KRO_EXPORT KroStatus krosMulC_16s_ISfs(Kro16s val, Kro16s* pSrcDst, int len, int scaleFactor) {
  return kro::MulCSfs(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_16s_Sfs(const Kro16s* pSrc, Kro16s val, Kro16s* pDst, int len,
                                      int scaleFactor) {
  return kro::MulCSfs(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_16sc_ISfs(Kro16sc val, Kro16sc* pSrcDst, int len, int scaleFactor) {
  return kro::MulCSfs(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_16sc_Sfs(const Kro16sc* pSrc, Kro16sc val, Kro16sc* pDst, int len,
                                       int scaleFactor) {
  return kro::MulCSfs(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_16s_I(const Kro16s* pSrc, Kro16s* pSrcDst, int len) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, 0);
}
KRO_EXPORT KroStatus krosMul_16s_ISfs(const Kro16s* pSrc, Kro16s* pSrcDst, int len,
                                      int scaleFactor) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_16sc_ISfs(const Kro16sc* pSrc, Kro16sc* pSrcDst, int len,
                                       int scaleFactor) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_16s(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro16s* pDst, int len) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, 0);
}
KRO_EXPORT KroStatus krosMul_16s32f(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro32f* pDst,
                                    int len) {
  return kro::Mul16s32f(pSrc1, pSrc2, pDst, len);
}
KRO_EXPORT KroStatus krosMul_16s32s_Sfs(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro32s* pDst,
                                        int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_16s_Sfs(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro16s* pDst,
                                     int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_16u16s_Sfs(const Kro16u* pSrc1, const Kro16s* pSrc2, Kro16s* pDst,
                                        int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_16sc_Sfs(const Kro16sc* pSrc1, const Kro16sc* pSrc2, Kro16sc* pDst,
                                      int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}

// 32-bit
KRO_EXPORT KroStatus krosMulC_32s_ISfs(Kro32s val, Kro32s* pSrcDst, int len, int scaleFactor) {
  return kro::MulCSfs(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_32s_Sfs(const Kro32s* pSrc, Kro32s val, Kro32s* pDst, int len,
                                      int scaleFactor) {
  return kro::MulCSfs(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_32sc_ISfs(Kro32sc val, Kro32sc* pSrcDst, int len, int scaleFactor) {
  return kro::MulCSfs(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMulC_32sc_Sfs(const Kro32sc* pSrc, Kro32sc val, Kro32sc* pDst, int len,
                                       int scaleFactor) {
  return kro::MulCSfs(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_32s32sc_ISfs(const Kro32s* pSrc, Kro32sc* pSrcDst, int len,
                                          int scaleFactor) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_32s32sc_Sfs(const Kro32s* pSrc1, const Kro32sc* pSrc2, Kro32sc* pDst,
                                         int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_32s_ISfs(const Kro32s* pSrc, Kro32s* pSrcDst, int len,
                                      int scaleFactor) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_32sc_ISfs(const Kro32sc* pSrc, Kro32sc* pSrcDst, int len,
                                       int scaleFactor) {
  return kro::MulSfs(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_32s_Sfs(const Kro32s* pSrc1, const Kro32s* pSrc2, Kro32s* pDst,
                                     int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosMul_32sc_Sfs(const Kro32sc* pSrc1, const Kro32sc* pSrc2, Kro32sc* pDst,
                                      int len, int scaleFactor) {
  return kro::MulSfs(pSrc1, pSrc2, pDst, len, scaleFactor);
}

// Single precision
KRO_EXPORT KroStatus krosMulC_32f_I(Kro32f val, Kro32f* pSrcDst, int len) {
  return kro::MulCFloat(pSrcDst, val, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMulC_32fc_I(Kro32fc val, Kro32fc* pSrcDst, int len) {
  return kro::MulCFloat(pSrcDst, val, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMulC_32fc(const Kro32fc* pSrc, Kro32fc val, Kro32fc* pDst, int len) {
  return kro::MulCFloat(pSrc, val, pDst, len);
}
KRO_EXPORT KroStatus krosMul_32f_I(const Kro32f* pSrc, Kro32f* pSrcDst, int len) {
  return kro::MulFloat(pSrc, pSrcDst, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMul_32fc_I(const Kro32fc* pSrc, Kro32fc* pSrcDst, int len) {
  return kro::MulFloat(pSrc, pSrcDst, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMul_32f(const Kro32f* pSrc1, const Kro32f* pSrc2, Kro32f* pDst, int len) {
  return kro::MulFloat(pSrc1, pSrc2, pDst, len);
}
KRO_EXPORT KroStatus krosMul_32fc(const Kro32fc* pSrc1, const Kro32fc* pSrc2, Kro32fc* pDst,
                                  int len) {
  return kro::MulFloat(pSrc1, pSrc2, pDst, len);
}
KRO_EXPORT KroStatus krosMulC_Low_32f16s(const Kro32f* pSrc, Kro32f val, Kro16s* pDst, int len) {
  return kro::MulC32f16s<true>(pSrc, val, pDst, len, 0);
}
KRO_EXPORT KroStatus krosMulC_32f16s_Sfs(const Kro32f* pSrc, Kro32f val, Kro16s* pDst, int len,
                                         int scaleFactor) {
  return kro::MulC32f16s<false>(pSrc, val, pDst, len, scaleFactor);
}

// Double precision
KRO_EXPORT KroStatus krosMulC_64f_I(Kro64f val, Kro64f* pSrcDst, int len) {
  return kro::MulCFloat(pSrcDst, val, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMulC_64fc_I(Kro64fc val, Kro64fc* pSrcDst, int len) {
  return kro::MulCFloat(pSrcDst, val, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMulC_64fc(const Kro64fc* pSrc, Kro64fc val, Kro64fc* pDst, int len) {
  return kro::MulCFloat(pSrc, val, pDst, len);
}
KRO_EXPORT KroStatus krosMul_64f_I(const Kro64f* pSrc, Kro64f* pSrcDst, int len) {
  return kro::MulFloat(pSrc, pSrcDst, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMul_64fc_I(const Kro64fc* pSrc, Kro64fc* pSrcDst, int len) {
  return kro::MulFloat(pSrc, pSrcDst, pSrcDst, len);
}
KRO_EXPORT KroStatus krosMul_64f(const Kro64f* pSrc1, const Kro64f* pSrc2, Kro64f* pDst, int len) {
  return kro::MulFloat(pSrc1, pSrc2, pDst, len);
}
KRO_EXPORT KroStatus krosMul_64fc(const Kro64fc* pSrc1, const Kro64fc* pSrc2, Kro64fc* pDst,
                                  int len) {
  return kro::MulFloat(pSrc1, pSrc2, pDst, len);
}
KRO_EXPORT KroStatus krosMulC_32f(const Kro32f* pSrc, Kro32f val, Kro32f* pDst, int len) {
  return kro::MulCFloat(pSrc, val, pDst, len);
}
KRO_EXPORT KroStatus krosMulC_64f(const Kro64f* pSrc, Kro64f val, Kro64f* pDst, int len) {
  return kro::MulCFloat(pSrc, val, pDst, len);
}
#endif  // HWY_ONCE
