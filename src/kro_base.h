// SPDX-License-Identifier: BSD-3-Clause
// Shared internals: the public header, element aliases, row addressing and the
// bit-exact integer helpers every family leans on.
#ifndef KROJ_SRC_KRO_BASE_H_
#define KROJ_SRC_KRO_BASE_H_

#include <stddef.h>
#include <stdint.h>

#include <limits>
#include <type_traits>

#include "kroj.h"

// Exported definitions carry the same visibility as their declarations; the linker
// version script is the second gate.
#define KRO_EXPORT extern "C" KRO_API

namespace kro {

// Row y of an image that starts at base and advances step bytes per row.
template <class T>
inline T* RowPtr(T* base, int step, int y) {
  using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<ptrdiff_t>(step) * y);
}

// Byte offset helper for pointers that move by a step in bytes.
template <class T>
inline T* ByteOffset(T* p, ptrdiff_t bytes) {
  using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(p) + bytes);
}

// Saturate a wide integer to the range of T.
template <class T, class W>
constexpr T Sat(W v) {
  static_assert(std::is_integral_v<T> && std::is_integral_v<W>);
  if (v < static_cast<W>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  if (v > static_cast<W>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  return static_cast<T>(v);
}

// Two's-complement wrap to 16 or 32 bits (the low bits of v, reinterpreted).
constexpr int16_t Wrap16(int64_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }
constexpr int32_t Wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }

// 32-bit two's-complement arithmetic without undefined overflow.
constexpr int32_t AddWrap32(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t SubWrap32(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
constexpr int32_t MulWrap32(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
// Left shift of a signed value as the hardware does it (bits shifted out are lost).
constexpr int32_t ShlWrap32(int32_t a, int s) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) << s);
}

// Arithmetic right shift (C++20 defines >> on negative values as arithmetic).
template <class T>
constexpr T Sra(T v, int s) {
  static_assert(std::is_signed_v<T>);
  return static_cast<T>(v >> s);
}

// Product of a region's sides as a signed 32-bit value, wrapping like the
// hardware does (an overflowing product may come out negative).
constexpr int32_t Area32(int width, int height) { return MulWrap32(width, height); }

}  // namespace kro

#endif  // KROJ_SRC_KRO_BASE_H_
