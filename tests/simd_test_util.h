// SPDX-License-Identifier: BSD-3-Clause
// Per-target SIMD tests: a suite derived from hwy::TestWithParamTarget runs each test
// once for every target compiled into the library and supported by this CPU; the
// library's dynamic dispatch follows the target the test selects.
//
//   class FooTargets : public hwy::TestWithParamTarget {};
//   HWY_TARGET_INSTANTIATE_TEST_SUITE_P(FooTargets);
//   TEST_P(FooTargets, MatchesReference) { ... }
#ifndef KROJ_TESTS_SIMD_TEST_UTIL_H_
#define KROJ_TESTS_SIMD_TEST_UTIL_H_

#include <vector>

#include <hwy/tests/hwy_gtest.h>

namespace kro_test {

// Widths that put a row tail at every interesting place for vectors of up to 64
// bytes of the narrowest element: 1, N-1, N, N+1, 2N+1 for N = 16, 32 and 64.
inline std::vector<int> EdgeWidths() {
  std::vector<int> w = {1, 2, 3, 7, 8, 9};
  for (int n : {16, 32, 64}) {
    for (int x : {n - 1, n, n + 1, 2 * n + 1}) w.push_back(x);
  }
  w.push_back(200);
  return w;
}

}  // namespace kro_test

#endif  // KROJ_TESTS_SIMD_TEST_UTIL_H_
