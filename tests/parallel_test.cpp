// SPDX-License-Identifier: BSD-3-Clause
// The row-parallel rule, shown with a small kernel of the test's own.
#include <gtest/gtest.h>
#include <omp.h>

#include <atomic>
#include <thread>
#include <vector>

#include "kro_parallel.h"
#include "test_util.h"

namespace {

using kro_test::ScopedThreads;

// Each row records whether it ran inside an active parallel region and on which
// thread, and computes a value from the row number alone.
struct Trace {
  std::vector<int> in_parallel, thread, value;
  explicit Trace(int h) : in_parallel(h, -1), thread(h, -1), value(h, 0) {}
};

Trace RunRows(int width, int height) {
  Trace t(height);
  kro::ForEachRow(width, height, [&](int y) {
    t.in_parallel[y] = omp_in_parallel();
    t.thread[y] = omp_get_thread_num();
    t.value[y] = y * 7 + width;
  });
  return t;
}

TEST(RowParallel, ThresholdIsASigned32BitProduct) {
  ScopedThreads threads(2);
  EXPECT_FALSE(kro::WantsParallel(128, 64));  // 8192 samples
  EXPECT_TRUE(kro::WantsParallel(8193, 1));
  EXPECT_TRUE(kro::WantsParallel(1, 8193));
  EXPECT_FALSE(kro::WantsParallel(65536, 32768));  // 2^31 wraps negative
  EXPECT_TRUE(kro::WantsParallel(65536, 16384));

  Trace serial = RunRows(128, 64);
  for (int p : serial.in_parallel) EXPECT_EQ(p, 0);
  Trace one_row = RunRows(8193, 1);
  EXPECT_EQ(one_row.in_parallel[0], 1);
}

TEST(RowParallel, StaticScheduleGivesContiguousBlocks) {
  for (int n : {1, 2, 3, 8}) {
    ScopedThreads threads(n);
    Trace t = RunRows(1000, 37);
    std::vector<int> seen;
    for (int y = 0; y < 37; ++y) {
      EXPECT_EQ(t.value[y], y * 7 + 1000);
      if (seen.empty() || seen.back() != t.thread[y]) seen.push_back(t.thread[y]);
    }
    // Thread numbers increase down the rows: one block per thread, in order.
    for (size_t i = 1; i < seen.size(); ++i) EXPECT_GT(seen[i], seen[i - 1]);
    EXPECT_LE(static_cast<int>(seen.size()), n);
  }
}

TEST(RowParallel, SameResultsForEveryThreadCount) {
  const Trace ref = [] { ScopedThreads one(1); return RunRows(9000, 5); }();
  for (int n : {1, 2, 3, 8, 0, -4}) {  // counts below 1 run one thread
    ScopedThreads threads(n);
    EXPECT_EQ(RunRows(9000, 5).value, ref.value) << n;
  }
}

TEST(RowParallel, CallsFromSeveralThreadsAtOnce) {
  ScopedThreads threads(2);
  std::atomic<int> failures{0};
  std::vector<std::thread> callers;
  for (int c = 0; c < 4; ++c) {
    callers.emplace_back([&, c] {
      for (int rep = 0; rep < 20; ++rep) {
        Trace t = RunRows(4096 + c, 3 + rep);
        for (int y = 0; y < 3 + rep; ++y)
          if (t.value[y] != y * 7 + 4096 + c) ++failures;
      }
    });
  }
  for (auto& t : callers) t.join();
  EXPECT_EQ(failures.load(), 0);
}

TEST(RowParallel, NestedCallsFallBackToTheCallingThread) {
  ScopedThreads threads(2);
  const int saved = omp_get_max_active_levels();
  omp_set_max_active_levels(1);
  std::vector<int> ok(2, 0);
#pragma omp parallel num_threads(2)
  {
    Trace t = RunRows(10000, 4);
    bool same_thread = true;
    for (int y = 0; y < 4; ++y) same_thread = same_thread && t.thread[y] == omp_get_thread_num();
    ok[omp_get_thread_num()] = same_thread;
  }
  omp_set_max_active_levels(saved);
  EXPECT_EQ(ok[0], 1);
}

}  // namespace
