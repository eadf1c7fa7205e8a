// SPDX-License-Identifier: BSD-3-Clause
// Reference rows of the bitwise operations, shared by the image logical operations
// and by the code-block decoder's clearing of low bit-planes.
#ifndef KROJ_SRC_REF_LOGIC_REF_H_
#define KROJ_SRC_REF_LOGIC_REF_H_

namespace kro::ref {

// dst[i] = src[i] & value for n samples; src may equal dst.
template <class T>
inline void AndCRow(const T* src, T value, T* dst, int n) {
  for (int i = 0; i < n; ++i) dst[i] = static_cast<T>(src[i] & value);
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_LOGIC_REF_H_
