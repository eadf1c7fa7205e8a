// SPDX-License-Identifier: BSD-3-Clause
// Helpers shared by the wavelet tests: whole-sample symmetric extension, tiles with
// a work buffer of exactly the reported size, and the quadrant layout.
#ifndef KROJ_TESTS_WAVELET_TEST_UTIL_H_
#define KROJ_TESTS_WAVELET_TEST_UTIL_H_

#include <stdint.h>
#include <string.h>

#include <memory>
#include <vector>

#include "kroj.h"

namespace kro_test {

// The index in [i0, i1) that position k mirrors to (T.800 F.3.7, PSE_O).
inline int Mirror(int k, int i0, int i1) {
  if (i1 - i0 == 1) return i0;
  const int period = 2 * (i1 - i0 - 1);
  int r = (k - i0) % period;
  if (r < 0) r += period;
  return i0 + (r < i1 - i0 ? r : period - r);
}

// Low-pass count of n samples whose first position has parity p.
inline int LowCount(int n, int p) { return (n + 1 - p) / 2; }

// A heap block of exactly n bytes (ASan reports any access beyond it); never null,
// even for n == 0.
class ExactBuffer {
 public:
  explicit ExactBuffer(int n) : p_(new uint8_t[n > 0 ? n : 0]) {}
  Kro8u* get() { return p_.get(); }

 private:
  std::unique_ptr<uint8_t[]> p_;
};

// A w x h image of T in one exactly sized block, with rows `pad` samples longer.
template <class T>
struct Plane {
  int w, h, pad;
  std::vector<T> v;
  Plane(int w_, int h_, int pad_ = 0) : w(w_), h(h_), pad(pad_), v(static_cast<size_t>(w_ + pad_) * h_) {}
  int step() const { return (w + pad) * static_cast<int>(sizeof(T)); }
  T* data() { return v.data(); }
  const T* data() const { return v.data(); }
  T& at(int x, int y) { return v[static_cast<size_t>(y) * (w + pad) + x]; }
  T at(int x, int y) const { return v[static_cast<size_t>(y) * (w + pad) + x]; }
  T* row(int y) { return v.data() + static_cast<size_t>(y) * (w + pad); }
  const T* row(int y) const { return v.data() + static_cast<size_t>(y) * (w + pad); }
};

}  // namespace kro_test

#endif  // KROJ_TESTS_WAVELET_TEST_UTIL_H_
