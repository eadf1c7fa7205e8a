// SPDX-License-Identifier: BSD-3-Clause
// Element-wise vector division: by a vector (the first operand is the divisor), by
// a constant, and of a constant by a vector. The element rules are in
// ref/signal_ref.h; here are the checks and the statuses. The 16-bit rows are
// compiled per SIMD target (simd/signal-inl.h) and chosen at each call.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "signal_div.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/signal-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

bool Div16sRow(const int16_t* divisor, const int16_t* dividend, int16_t* dst, int n, int sf) {
  return Div16sRowSimd(divisor, dividend, dst, n, sf);
}
void DivC16sRow(const int16_t* src, int16_t val, int16_t* dst, int n, int sf) {
  DivC16sRowSimd(src, val, dst, n, sf);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "kro_checks.h"
#include "ref/signal_ref.h"

namespace kro {

HWY_EXPORT(Div16sRow);
HWY_EXPORT(DivC16sRow);

namespace {

// dst[i] = dividend[i] / divisor[i] by rule; a zero divisor anywhere makes the
// call a warning, all elements still being written.
template <class Rule, class V, class D, class T>
KroStatus Div(const V* divisor, const D* dividend, T* dst, int len, Rule rule) {
  if (AnyNull(divisor, dividend, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  bool zero = false;
  for (int i = 0; i < len; ++i) dst[i] = rule(dividend[i], divisor[i], zero);
  return zero ? kroStatusDivideByZeroWarning : kroStatusOk;
}

// dst[i] = src[i] / val; a zero constant is refused before anything is written.
template <class Rule, class T>
KroStatus DivC(const T* src, T val, T* dst, int len, int sf) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  if (Rule::IsZero(val)) return kroStatusDivideByZero;
  const Rule rule(val, sf);
  for (int i = 0; i < len; ++i) dst[i] = rule(src[i]);
  return kroStatusOk;
}

// The 16-bit forms through the dispatched rows, with the checks above.
KroStatus Div16s(const Kro16s* divisor, const Kro16s* dividend, Kro16s* dst, int len, int sf) {
  if (AnyNull(divisor, dividend, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  const bool zero = HWY_DYNAMIC_DISPATCH(Div16sRow)(divisor, dividend, dst, len, sf);
  return zero ? kroStatusDivideByZeroWarning : kroStatusOk;
}

KroStatus DivC16s(const Kro16s* src, Kro16s val, Kro16s* dst, int len, int sf) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  if (ref::DivC16s::IsZero(val)) return kroStatusDivideByZero;
  HWY_DYNAMIC_DISPATCH(DivC16sRow)(src, val, dst, len, sf);
  return kroStatusOk;
}

// dst[i] = val / src[i].
template <class T, bool (*kRow)(const T*, T, T*, int)>
KroStatus DivCRev(const T* src, T val, T* dst, int len) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  return kRow(src, val, dst, len) ? kroStatusDivideByZeroWarning : kroStatusOk;
}

}  // namespace
}  // namespace kro

using kro::ref::Div16sc;
using kro::ref::Div8u;
using kro::ref::DivC16sc;
using kro::ref::DivC8u;
using kro::ref::DivCFloat;
using kro::ref::DivFloat;
using kro::ref::DivWide;

// Vector by vector
KRO_EXPORT KroStatus krosDiv_16s_Sfs(const Kro16s* pSrc1, const Kro16s* pSrc2, Kro16s* pDst,
                                     int len, int scaleFactor) {
  return kro::Div16s(pSrc1, pSrc2, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDiv_16s_ISfs(const Kro16s* pSrc, Kro16s* pSrcDst, int len,
                                      int scaleFactor) {
  return kro::Div16s(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDiv_8u_Sfs(const Kro8u* pSrc1, const Kro8u* pSrc2, Kro8u* pDst, int len,
                                    int scaleFactor) {
  return kro::Div(pSrc1, pSrc2, pDst, len, Div8u(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_8u_ISfs(const Kro8u* pSrc, Kro8u* pSrcDst, int len, int scaleFactor) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, Div8u(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_16sc_Sfs(const Kro16sc* pSrc1, const Kro16sc* pSrc2, Kro16sc* pDst,
                                      int len, int scaleFactor) {
  return kro::Div(pSrc1, pSrc2, pDst, len, Div16sc(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_16sc_ISfs(const Kro16sc* pSrc, Kro16sc* pSrcDst, int len,
                                       int scaleFactor) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, Div16sc(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_32s_Sfs(const Kro32s* pSrc1, const Kro32s* pSrc2, Kro32s* pDst,
                                     int len, int scaleFactor) {
  return kro::Div(pSrc1, pSrc2, pDst, len, DivWide<Kro32s>(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_32s_ISfs(const Kro32s* pSrc, Kro32s* pSrcDst, int len,
                                      int scaleFactor) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, DivWide<Kro32s>(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_32s16s_Sfs(const Kro16s* pSrc1, const Kro32s* pSrc2, Kro16s* pDst,
                                        int len, int scaleFactor) {
  return kro::Div(pSrc1, pSrc2, pDst, len, DivWide<Kro16s>(scaleFactor));
}
KRO_EXPORT KroStatus krosDiv_32f(const Kro32f* pSrc1, const Kro32f* pSrc2, Kro32f* pDst, int len) {
  return kro::Div(pSrc1, pSrc2, pDst, len, DivFloat<Kro32f>());
}
KRO_EXPORT KroStatus krosDiv_32f_I(const Kro32f* pSrc, Kro32f* pSrcDst, int len) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, DivFloat<Kro32f>());
}
KRO_EXPORT KroStatus krosDiv_64f(const Kro64f* pSrc1, const Kro64f* pSrc2, Kro64f* pDst, int len) {
  return kro::Div(pSrc1, pSrc2, pDst, len, DivFloat<Kro64f>());
}
KRO_EXPORT KroStatus krosDiv_64f_I(const Kro64f* pSrc, Kro64f* pSrcDst, int len) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, DivFloat<Kro64f>());
}
KRO_EXPORT KroStatus krosDiv_32fc(const Kro32fc* pSrc1, const Kro32fc* pSrc2, Kro32fc* pDst,
                                  int len) {
  return kro::Div(pSrc1, pSrc2, pDst, len, DivFloat<Kro32fc>());
}
KRO_EXPORT KroStatus krosDiv_32fc_I(const Kro32fc* pSrc, Kro32fc* pSrcDst, int len) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, DivFloat<Kro32fc>());
}
KRO_EXPORT KroStatus krosDiv_64fc(const Kro64fc* pSrc1, const Kro64fc* pSrc2, Kro64fc* pDst,
                                  int len) {
  return kro::Div(pSrc1, pSrc2, pDst, len, DivFloat<Kro64fc>());
}
KRO_EXPORT KroStatus krosDiv_64fc_I(const Kro64fc* pSrc, Kro64fc* pSrcDst, int len) {
  return kro::Div(pSrc, pSrcDst, pSrcDst, len, DivFloat<Kro64fc>());
}

// Vector by constant
KRO_EXPORT KroStatus krosDivC_16s_Sfs(const Kro16s* pSrc, Kro16s val, Kro16s* pDst, int len,
                                      int scaleFactor) {
  return kro::DivC16s(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDivC_16s_ISfs(Kro16s val, Kro16s* pSrcDst, int len, int scaleFactor) {
  return kro::DivC16s(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDivC_8u_Sfs(const Kro8u* pSrc, Kro8u val, Kro8u* pDst, int len,
                                     int scaleFactor) {
  return kro::DivC<DivC8u>(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDivC_8u_ISfs(Kro8u val, Kro8u* pSrcDst, int len, int scaleFactor) {
  return kro::DivC<DivC8u>(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDivC_16sc_Sfs(const Kro16sc* pSrc, Kro16sc val, Kro16sc* pDst, int len,
                                       int scaleFactor) {
  return kro::DivC<DivC16sc>(pSrc, val, pDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDivC_16sc_ISfs(Kro16sc val, Kro16sc* pSrcDst, int len, int scaleFactor) {
  return kro::DivC<DivC16sc>(pSrcDst, val, pSrcDst, len, scaleFactor);
}
KRO_EXPORT KroStatus krosDivC_32f(const Kro32f* pSrc, Kro32f val, Kro32f* pDst, int len) {
  return kro::DivC<DivCFloat<Kro32f>>(pSrc, val, pDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_32f_I(Kro32f val, Kro32f* pSrcDst, int len) {
  return kro::DivC<DivCFloat<Kro32f>>(pSrcDst, val, pSrcDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_32fc(const Kro32fc* pSrc, Kro32fc val, Kro32fc* pDst, int len) {
  return kro::DivC<DivCFloat<Kro32fc>>(pSrc, val, pDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_32fc_I(Kro32fc val, Kro32fc* pSrcDst, int len) {
  return kro::DivC<DivCFloat<Kro32fc>>(pSrcDst, val, pSrcDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_64f(const Kro64f* pSrc, Kro64f val, Kro64f* pDst, int len) {
  return kro::DivC<DivCFloat<Kro64f>>(pSrc, val, pDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_64f_I(Kro64f val, Kro64f* pSrcDst, int len) {
  return kro::DivC<DivCFloat<Kro64f>>(pSrcDst, val, pSrcDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_64fc(const Kro64fc* pSrc, Kro64fc val, Kro64fc* pDst, int len) {
  return kro::DivC<DivCFloat<Kro64fc>>(pSrc, val, pDst, len, 0);
}
KRO_EXPORT KroStatus krosDivC_64fc_I(Kro64fc val, Kro64fc* pSrcDst, int len) {
  return kro::DivC<DivCFloat<Kro64fc>>(pSrcDst, val, pSrcDst, len, 0);
}

// Constant by vector
KRO_EXPORT KroStatus krosDivCRev_16u(const Kro16u* pSrc, Kro16u val, Kro16u* pDst, int len) {
  return kro::DivCRev<Kro16u, kro::ref::DivCRev16uRow>(pSrc, val, pDst, len);
}
KRO_EXPORT KroStatus krosDivCRev_16u_I(Kro16u val, Kro16u* pSrcDst, int len) {
  return kro::DivCRev<Kro16u, kro::ref::DivCRev16uRow>(pSrcDst, val, pSrcDst, len);
}
KRO_EXPORT KroStatus krosDivCRev_32f(const Kro32f* pSrc, Kro32f val, Kro32f* pDst, int len) {
  return kro::DivCRev<Kro32f, kro::ref::DivCRev32fRow>(pSrc, val, pDst, len);
}
KRO_EXPORT KroStatus krosDivCRev_32f_I(Kro32f val, Kro32f* pSrcDst, int len) {
  return kro::DivCRev<Kro32f, kro::ref::DivCRev32fRow>(pSrcDst, val, pSrcDst, len);
}
#endif  // HWY_ONCE
