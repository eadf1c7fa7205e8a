// SPDX-License-Identifier: BSD-3-Clause
// Vector copy, zero and fill for every element type.
#include <string.h>

#include <algorithm>

#include "kro_checks.h"

namespace kro {
namespace {

// Overlapping vectors are copied as if through a temporary.
template <class T>
KroStatus Copy(const T* src, T* dst, int len) {
  if (AnyNull(src, dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  memmove(dst, src, static_cast<size_t>(len) * sizeof(T));
  return kroStatusOk;
}

// All-zero bytes are 0 for the integer types and +0.0 for the float types.
template <class T>
KroStatus Zero(T* dst, int len) {
  if (AnyNull(dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  memset(dst, 0, static_cast<size_t>(len) * sizeof(T));
  return kroStatusOk;
}

template <class T>
KroStatus Set(T val, T* dst, int len) {
  if (AnyNull(dst)) return kroStatusNullPointer;
  if (BadLen(len)) return kroStatusBadSize;
  std::fill_n(dst, len, val);
  return kroStatusOk;
}

}  // namespace
}  // namespace kro

KRO_EXPORT KroStatus krosCopy_8u(const Kro8u* pSrc, Kro8u* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_16s(const Kro16s* pSrc, Kro16s* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_16sc(const Kro16sc* pSrc, Kro16sc* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_32s(const Kro32s* pSrc, Kro32s* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_32sc(const Kro32sc* pSrc, Kro32sc* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_32f(const Kro32f* pSrc, Kro32f* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_32fc(const Kro32fc* pSrc, Kro32fc* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_64s(const Kro64s* pSrc, Kro64s* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_64sc(const Kro64sc* pSrc, Kro64sc* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_64f(const Kro64f* pSrc, Kro64f* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosCopy_64fc(const Kro64fc* pSrc, Kro64fc* pDst, int len) {
  return kro::Copy(pSrc, pDst, len);
}

KRO_EXPORT KroStatus krosZero_8u(Kro8u* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_16s(Kro16s* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_16sc(Kro16sc* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_32s(Kro32s* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_32sc(Kro32sc* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_32f(Kro32f* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_32fc(Kro32fc* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_64s(Kro64s* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_64sc(Kro64sc* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_64f(Kro64f* pDst, int len) { return kro::Zero(pDst, len); }
KRO_EXPORT KroStatus krosZero_64fc(Kro64fc* pDst, int len) { return kro::Zero(pDst, len); }

KRO_EXPORT KroStatus krosSet_8u(Kro8u val, Kro8u* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_16s(Kro16s val, Kro16s* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_16sc(Kro16sc val, Kro16sc* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_32s(Kro32s val, Kro32s* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_32sc(Kro32sc val, Kro32sc* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_32f(Kro32f val, Kro32f* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_32fc(Kro32fc val, Kro32fc* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_64s(Kro64s val, Kro64s* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_64sc(Kro64sc val, Kro64sc* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_64f(Kro64f val, Kro64f* pDst, int len) {
  return kro::Set(val, pDst, len);
}
KRO_EXPORT KroStatus krosSet_64fc(Kro64fc val, Kro64fc* pDst, int len) {
  return kro::Set(val, pDst, len);
}
