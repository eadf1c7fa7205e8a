// SPDX-License-Identifier: BSD-3-Clause
// The one row-parallel rule of the library. Whole-image functions that may split
// their rows over threads call ForEachRow after their argument checks:
//
//  - a region of fewer than 8193 samples (width x height as a signed 32-bit
//    product, so an overflowing product that comes out negative counts as small)
//    runs its rows in order on the calling thread;
//  - otherwise, if the OpenMP runtime would not give a new region more than one
//    thread (nesting limit reached), the rows run on the calling thread alone;
//  - otherwise a team of threads_omp_of_n_kro threads (read now) splits the rows
//    0..height-1 into contiguous, nearly equal blocks (static schedule).
//
// Every row is computed from the source alone and written to its own destination
// row, so results never depend on the thread count.
#ifndef KROJ_SRC_KRO_PARALLEL_H_
#define KROJ_SRC_KRO_PARALLEL_H_

#include <omp.h>

#include "kro_base.h"

namespace kro {

inline constexpr int32_t kParallelThreshold = 8193;

// Whether a region of width x height samples goes to the parallel path.
constexpr bool WantsParallel(int width, int height) {
  return Area32(width, height) >= kParallelThreshold;
}

// Calls row(y) for y = 0..height-1. row must not throw and must only write the
// destination row y.
template <class RowFn>
void ForEachRow(int width, int height, RowFn&& row) {
  if (!WantsParallel(width, height)) {
    for (int y = 0; y < height; ++y) row(y);
    return;
  }
  // The runtime refuses a new active region once the nesting limit is reached; the
  // rows then run here as a team of one.
  if (omp_get_active_level() >= omp_get_max_active_levels()) {
    for (int y = 0; y < height; ++y) row(y);
    return;
  }
  int threads = threads_omp_of_n_kro;
  if (threads < 1) threads = 1;
#pragma omp parallel for schedule(static) num_threads(threads)
  for (int y = 0; y < height; ++y) row(y);
}

}  // namespace kro

#endif  // KROJ_SRC_KRO_PARALLEL_H_
