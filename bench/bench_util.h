// SPDX-License-Identifier: BSD-3-Clause
// Helpers for the benchmarks: test images and deterministic data.
#ifndef KROJ_BENCH_BENCH_UTIL_H_
#define KROJ_BENCH_BENCH_UTIL_H_

#include <stdint.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace kro_bench {

inline std::string DataPath(const std::string& name) { return std::string(KROJ_TEST_DATA_DIR) + "/" + name; }

inline std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(f), {});
}

template <class T>
std::vector<T> RandomVector(size_t n, int64_t lo, int64_t hi, uint64_t seed = 1) {
  std::mt19937_64 gen(seed);
  std::uniform_int_distribution<int64_t> d(lo, hi);
  std::vector<T> v(n);
  for (auto& x : v) x = static_cast<T>(d(gen));
  return v;
}

}  // namespace kro_bench

#endif  // KROJ_BENCH_BENCH_UTIL_H_
