// SPDX-License-Identifier: BSD-3-Clause
// Reference rows of the bitwise operations, shared by the image logical operations
// and by the code-block decoder's clearing of low bit-planes.
#ifndef KROJ_SRC_REF_LOGIC_REF_H_
#define KROJ_SRC_REF_LOGIC_REF_H_

#include <stddef.h>

#include "ref/image_ref.h"

namespace kro::ref {

enum class LogicOp { kAnd, kOr, kXor };

template <LogicOp op, class T>
constexpr T ApplyLogic(T a, T b) {
  if constexpr (op == LogicOp::kAnd) return static_cast<T>(a & b);
  if constexpr (op == LogicOp::kOr) return static_cast<T>(a | b);
  if constexpr (op == LogicOp::kXor) return static_cast<T>(a ^ b);
}

// dst[i] = src[i] op value for n samples; src may equal dst.
template <LogicOp op, class T>
inline void LogicConstRow(const T* src, T value, T* dst, ptrdiff_t n) {
  for (ptrdiff_t i = 0; i < n; ++i)
    StoreSample(dst + i, ApplyLogic<op>(LoadSample(src + i), value));
}

// dst[i] = src[i] & value for n samples; src may equal dst.
template <class T>
inline void AndCRow(const T* src, T value, T* dst, int n) {
  LogicConstRow<LogicOp::kAnd>(src, value, dst, n);
}
template <class T>
inline void OrCRow(const T* src, T value, T* dst, int n) {
  LogicConstRow<LogicOp::kOr>(src, value, dst, n);
}
template <class T>
inline void XorCRow(const T* src, T value, T* dst, int n) {
  LogicConstRow<LogicOp::kXor>(src, value, dst, n);
}

// dst[x*kStride + c] = a[x*kStride + c] op b[x*kStride + c] for c < kChannels;
// with kStride == kChannels == 1 this is the plain element-wise row. Either source
// may equal dst.
template <LogicOp op, int kStride, int kChannels, class T>
inline void LogicChannelsRow(const T* a, const T* b, T* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    for (int c = 0; c < kChannels; ++c) {
      const ptrdiff_t i = x * kStride + c;
      StoreSample(dst + i, ApplyLogic<op>(LoadSample(a + i), LoadSample(b + i)));
    }
  }
}

// dst[x*kStride + c] = src[x*kStride + c] op value[c] for c < kChannels.
template <LogicOp op, int kStride, int kChannels, class T>
inline void LogicConstChannelsRow(const T* src, const T* value, T* dst, ptrdiff_t n) {
  for (ptrdiff_t x = 0; x < n; ++x) {
    for (int c = 0; c < kChannels; ++c) {
      const ptrdiff_t i = x * kStride + c;
      StoreSample(dst + i, ApplyLogic<op>(LoadSample(src + i), value[c]));
    }
  }
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_LOGIC_REF_H_
