// SPDX-License-Identifier: BSD-3-Clause
// Small helpers shared by the unit tests: seeded random data, guarded images whose
// padding and surroundings must stay untouched, and test-data paths.
#ifndef KROJ_TESTS_TEST_UTIL_H_
#define KROJ_TESTS_TEST_UTIL_H_

#include <stdint.h>
#include <string.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "kroj.h"

namespace kro_test {

inline constexpr uint8_t kGuard = 0xA5;

// Deterministic random generator; every test seeds its own.
class Rng {
 public:
  explicit Rng(uint64_t seed) : gen_(seed) {}
  // Uniform integer in [lo, hi].
  int64_t Int(int64_t lo, int64_t hi) { return std::uniform_int_distribution<int64_t>(lo, hi)(gen_); }
  double Real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(gen_); }
  template <class T>
  void Fill(T* p, size_t n, int64_t lo, int64_t hi) {
    for (size_t i = 0; i < n; ++i) p[i] = static_cast<T>(Int(lo, hi));
  }
  std::mt19937_64& gen() { return gen_; }

 private:
  std::mt19937_64 gen_;
};

// An image of T with `channels` samples per pixel, rows padded by `pad_bytes` and
// guard rows above and below. Everything outside the region holds kGuard bytes, so
// IntactOutside() tells whether a function wrote where it must not.
template <class T>
class GuardedImage {
 public:
  GuardedImage(int width, int height, int channels = 1, int pad_bytes = 3)
      : width_(width), height_(height), channels_(channels) {
    step_ = width * channels * static_cast<int>(sizeof(T)) + pad_bytes;
    bytes_.assign(static_cast<size_t>(step_) * (height + 2) + 64, kGuard);
  }
  T* data() { return reinterpret_cast<T*>(bytes_.data() + step_); }
  const T* data() const { return reinterpret_cast<const T*>(bytes_.data() + step_); }
  int step() const { return step_; }
  KroiSize size() const { return {width_, height_}; }
  T* row(int y) { return reinterpret_cast<T*>(bytes_.data() + step_ * (y + 1)); }
  const T* row(int y) const { return reinterpret_cast<const T*>(bytes_.data() + step_ * (y + 1)); }
  T& at(int x, int y, int c = 0) { return row(y)[x * channels_ + c]; }
  T at(int x, int y, int c = 0) const { return row(y)[x * channels_ + c]; }

  void FillRandom(Rng& rng, int64_t lo, int64_t hi) {
    for (int y = 0; y < height_; ++y) rng.Fill(row(y), static_cast<size_t>(width_) * channels_, lo, hi);
  }
  // True if every byte outside the width x height x channels region still holds kGuard.
  bool IntactOutside() const {
    const size_t row_bytes = static_cast<size_t>(width_) * channels_ * sizeof(T);
    for (size_t i = 0; i < bytes_.size(); ++i) {
      const long off = static_cast<long>(i) - step_;
      const bool inside = off >= 0 && off / step_ < height_ && static_cast<size_t>(off % step_) < row_bytes;
      if (!inside && bytes_[i] != kGuard) return false;
    }
    return true;
  }
  bool SamePixels(const GuardedImage& o) const {
    const size_t row_bytes = static_cast<size_t>(width_) * channels_ * sizeof(T);
    for (int y = 0; y < height_; ++y)
      if (memcmp(row(y), o.row(y), row_bytes) != 0) return false;
    return true;
  }

 private:
  int width_, height_, channels_, step_;
  std::vector<uint8_t> bytes_;
};

// Path of a file in tests/data.
inline std::string DataPath(const std::string& name) { return std::string(KROJ_TEST_DATA_DIR) + "/" + name; }

inline std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(f), {});
}

// Sets threads_omp_of_n_kro for the lifetime of the object.
class ScopedThreads {
 public:
  explicit ScopedThreads(int n) : saved_(threads_omp_of_n_kro) { threads_omp_of_n_kro = n; }
  ~ScopedThreads() { threads_omp_of_n_kro = saved_; }

 private:
  int saved_;
};

}  // namespace kro_test

#endif  // KROJ_TESTS_TEST_UTIL_H_
