// SPDX-License-Identifier: BSD-3-Clause
// Private to the image copy, set and logical families: the row kernel types that the
// per-target code hands to the exported functions, and the lane type of each sample.
//
// Copies, fills and bitwise operations only move or combine bits, so every sample
// type goes through the unsigned integer of its size: 16s shares code with 16u, 32f
// and 32s with 32u, and a float's bits (NaN payloads, negative zero) pass untouched.
//
// A pixel layout is a pair (stride, channels): samples per pixel and how many of
// them, from the one the pointer addresses, an operation reads or writes. C1 is
// (1, 1), C3 (3, 3), C4 (4, 4), AC4 (4, 3), C3CR (3, 1), C4CR (4, 1).
#ifndef KROJ_SRC_IMAGE_IMPL_H_
#define KROJ_SRC_IMAGE_IMPL_H_

#include <stddef.h>
#include <stdint.h>

#include <type_traits>

#include "ref/logic_ref.h"

namespace kro {

template <class T>
using BitsOf = std::conditional_t<
    sizeof(T) == 1, uint8_t,
    std::conditional_t<sizeof(T) == 2, uint16_t,
                       std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>>;

template <class T>
const BitsOf<T>* AsBits(const T* p) {
  return reinterpret_cast<const BitsOf<T>*>(p);
}
template <class T>
BitsOf<T>* AsBits(T* p) {
  return reinterpret_cast<BitsOf<T>*>(p);
}

struct PixelLayout {
  int stride;
  int channels;
};

// Row kernels over n pixels. Channel moves copy channel c of a source pixel to
// channel c of a destination pixel; masked rows write a pixel where mask[x] != 0.
template <class U>
using MoveRowFn = void (*)(const U* src, U* dst, ptrdiff_t n);
template <class U>
using MaskedMoveRowFn = void (*)(const U* src, const uint8_t* mask, U* dst, ptrdiff_t n);
template <class U>
using SplitRowFn = void (*)(const U* src, U* const* planes, ptrdiff_t n);
template <class U>
using MergeRowFn = void (*)(const U* const* planes, U* dst, ptrdiff_t n);
template <class U>
using SetRowFn = void (*)(const U* value, U* dst, ptrdiff_t n);
template <class U>
using SetMaskedRowFn = void (*)(const U* value, const uint8_t* mask, U* dst, ptrdiff_t n);
using WidenRowFn = void (*)(const uint8_t* src, uint16_t* dst, ptrdiff_t n);

// Bitwise rows: two images, or an image and one constant per channel.
template <class U>
using LogicRowFn = void (*)(const U* a, const U* b, U* dst, ptrdiff_t n);
template <class U>
using LogicConstRowFn = void (*)(const U* src, const U* value, U* dst, ptrdiff_t n);

}  // namespace kro

#endif  // KROJ_SRC_IMAGE_IMPL_H_
