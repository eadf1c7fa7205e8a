// SPDX-License-Identifier: BSD-3-Clause
// Rate control by post-compression rate-distortion optimisation: each code-block's
// truncation points on the convex hull of its (bytes, distortion reduction) curve, and
// one slope threshold per quality layer chosen to fill a byte budget.
#ifndef KROJCODEC_J2K_RATE_H_
#define KROJCODEC_J2K_RATE_H_

#include <stddef.h>

#include <functional>
#include <vector>

namespace krojcodec::j2k {

// Squared norm of the image that a unit coefficient of a sub-band (orientation,
// decomposition level) produces through the inverse wavelet transform: what a squared
// error in the sub-band costs in the image.
double SynthesisGain(bool reversible, int orient, int level);

class RateAllocator {
 public:
  // Adds a code-block: after the first j of its passes it takes length[j] bytes and has
  // removed dist[j] of the (weighted) squared error, j = 0..passes (both 0 at j = 0).
  void AddBlock(int passes, const int* length, const double* dist);

  // Passes of block b kept at slope threshold lambda.
  int Cut(int block, double lambda) const;

  // Finds the smallest threshold, not above max_lambda, whose packets fit the budget;
  // size(lambda) gives the bytes they take. Returns +infinity when even the first hull
  // point does not fit.
  double Search(size_t budget, double max_lambda, const std::function<size_t(double)>& size) const;

  // Spends what a threshold leaves of the budget: moves blocks on to their next hull
  // points, steepest first, while size() of the cuts in *passes stays within budget.
  void Fill(size_t budget, std::vector<int>* passes, const std::function<size_t()>& size) const;

 private:
  struct Point {
    int passes;
    double slope;
  };
  std::vector<Point> hull_;
  std::vector<int> first_;  // hull_[first_[b] .. first_[b + 1]) belongs to block b
  std::vector<const int*> length_;
};

}  // namespace krojcodec::j2k

#endif  // KROJCODEC_J2K_RATE_H_
