// SPDX-License-Identifier: BSD-3-Clause
// Helpers for the benchmarks: test images and deterministic data.
#ifndef KROJ_BENCH_BENCH_UTIL_H_
#define KROJ_BENCH_BENCH_UTIL_H_

#include <stdint.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kro_bench {

inline std::string DataPath(const std::string& name) { return std::string(KROJ_TEST_DATA_DIR) + "/" + name; }

inline std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(f), {});
}

// Uniform values in lo..hi from SplitMix64: several benchmarks fill 9-megapixel images
// for every run, so the generator is kept cheap (the modulo bias is immaterial here).
template <class T>
std::vector<T> RandomVector(size_t n, int64_t lo, int64_t hi, uint64_t seed = 1) {
  const uint64_t span = static_cast<uint64_t>(hi) - static_cast<uint64_t>(lo) + 1;  // 0: all
  uint64_t state = seed;
  std::vector<T> v(n);
  for (auto& x : v) {
    uint64_t z = (state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    z ^= z >> 31;
    x = static_cast<T>(static_cast<int64_t>(static_cast<uint64_t>(lo) + (span ? z % span : z)));
  }
  return v;
}

}  // namespace kro_bench

#endif  // KROJ_BENCH_BENCH_UTIL_H_
