// SPDX-License-Identifier: BSD-3-Clause
// Convex-hull truncation points and the slope threshold search of the rate control.
#include "codec/j2k_rate.h"

#include <math.h>

#include <algorithm>
#include <limits>

namespace krojcodec::j2k {
namespace {

// The 9/7 lifting steps and scaling (T.800 F.3.8.2).
constexpr double kAlpha = -1.586134342059924;
constexpr double kBeta = -0.052980118572961;
constexpr double kGamma = 0.882911075530934;
constexpr double kDelta = 0.443506852043971;
constexpr double kK = 1.230174104914001;

// One level of one-dimensional synthesis of low and high into x (2 * low.size()), the
// signal taken as zero outside, in real arithmetic (the 5/3 without its rounding).
void Synthesis(const std::vector<double>& low, const std::vector<double>& high, bool reversible,
               std::vector<double>* x) {
  const size_t m = low.size(), n = 2 * m;
  x->assign(n, 0.0);
  auto at = [&](size_t i) { return i < n ? (*x)[i] : 0.0; };
  for (size_t i = 0; i < m; ++i) {
    (*x)[2 * i] = reversible ? low[i] : low[i] * kK;
    (*x)[2 * i + 1] = reversible ? high[i] : high[i] / kK;
  }
  // Even samples use the odd neighbours on both sides, odd samples the even ones.
  auto lift = [&](size_t parity, double c) {
    for (size_t i = parity; i < n; i += 2) {
      const double left = i > 0 ? (*x)[i - 1] : 0.0;
      (*x)[i] += c * (left + at(i + 1));
    }
  };
  if (reversible) {
    lift(0, -0.25);
    lift(1, 0.5);
  } else {
    lift(0, -kDelta);
    lift(1, -kGamma);
    lift(0, -kBeta);
    lift(1, -kAlpha);
  }
}

// Squared norm of the one-dimensional synthesis of a unit sample in the low (high) band
// of the given level.
double Gain1D(bool reversible, bool high_band, int level) {
  if (level == 0) return 1.0;
  // The norm grows by a factor of two per level once the filters' support dwarfs the
  // impulse; beyond twelve levels extrapolate.
  const int exact = std::min(level, 12);
  const size_t m0 = size_t{32};
  std::vector<double> low(m0, 0.0), high(m0, 0.0), x;
  (high_band ? high : low)[m0 / 2] = 1.0;
  for (int k = 0; k < exact; ++k) {
    Synthesis(low, high, reversible, &x);
    low.swap(x);
    high.assign(low.size(), 0.0);
  }
  double e = 0.0;
  for (double v : low) e += v * v;
  return ldexp(e, level - exact);
}

}  // namespace

double SynthesisGain(bool reversible, int orient, int level) {
  return Gain1D(reversible, orient & 1, level) * Gain1D(reversible, (orient >> 1) != 0, level);
}

void RateAllocator::AddBlock(int passes, const int* length, const double* dist) {
  if (first_.empty()) first_.push_back(0);
  length_.push_back(length);
  const size_t base = hull_.size();
  // hull_[base..] lists the kept points; the implicit first point is (0 bytes, 0).
  auto rate_of = [&](size_t h) { return h == base ? 0 : length[hull_[h - 1].passes]; };
  auto dist_of = [&](size_t h) { return h == base ? 0.0 : dist[hull_[h - 1].passes]; };
  constexpr double kInfinite = std::numeric_limits<double>::max();
  for (int j = 1; j <= passes; ++j) {
    for (;;) {
      const size_t top = hull_.size();  // one past the last kept point
      const double dd = dist[j] - dist_of(top);
      if (dd <= 0) break;  // no better than a point already kept
      const int dr = length[j] - rate_of(top);
      const double slope = dr <= 0 ? kInfinite : dd / dr;
      // A point whose slope is not below its predecessor's lies under the hull.
      if (top > base && slope >= hull_[top - 1].slope) {
        hull_.pop_back();
        continue;
      }
      hull_.push_back({j, slope});
      break;
    }
  }
  first_.push_back(static_cast<int>(hull_.size()));
}

int RateAllocator::Cut(int block, double lambda) const {
  int passes = 0;
  for (int h = first_[block]; h < first_[block + 1] && hull_[h].slope >= lambda; ++h)
    passes = hull_[h].passes;
  return passes;
}

double RateAllocator::Search(size_t budget, double max_lambda,
                             const std::function<size_t(double)>& size) const {
  // Candidate thresholds: the distinct hull slopes not above max_lambda, steepest first.
  std::vector<double> slopes;
  for (const Point& p : hull_)
    if (p.slope <= max_lambda) slopes.push_back(p.slope);
  std::sort(slopes.begin(), slopes.end(), [](double a, double b) { return a > b; });
  slopes.erase(std::unique(slopes.begin(), slopes.end()), slopes.end());
  // Bytes grow as the threshold falls: find the last slope that still fits.
  size_t lo = 0, hi = slopes.size();  // slopes[0..lo) fit, slopes[hi..) do not
  while (lo < hi) {
    const size_t mid = (lo + hi) / 2;
    if (size(slopes[mid]) <= budget)
      lo = mid + 1;
    else
      hi = mid;
  }
  return lo == 0 ? std::numeric_limits<double>::infinity() : slopes[lo - 1];
}

void RateAllocator::Fill(size_t budget, std::vector<int>* passes,
                         const std::function<size_t()>& size) const {
  struct Candidate {
    double slope;
    int block, passes;
  };
  std::vector<Candidate> next;
  for (int b = 0; b + 1 < static_cast<int>(first_.size()); ++b)
    for (int h = first_[b]; h < first_[b + 1]; ++h)
      if (hull_[h].passes > (*passes)[b]) next.push_back({hull_[h].slope, b, hull_[h].passes});
  std::stable_sort(next.begin(), next.end(),
                   [](const Candidate& a, const Candidate& b) { return a.slope > b.slope; });
  // Body bytes are exact; a block's header grows by about a byte when it takes more
  // passes, which the final measurement settles.
  size_t estimate = size();
  std::vector<char> stuck(first_.size(), 0);
  std::vector<std::pair<int, int>> taken;  // block, previous cut
  for (const Candidate& c : next) {
    if (stuck[c.block]) continue;  // its earlier point did not fit
    const int grow = length_[c.block][c.passes] - length_[c.block][(*passes)[c.block]];
    if (estimate + static_cast<size_t>(grow) + 1 > budget) {
      stuck[c.block] = 1;
      continue;
    }
    taken.emplace_back(c.block, (*passes)[c.block]);
    (*passes)[c.block] = c.passes;
    estimate += static_cast<size_t>(grow) + 1;
  }
  while (!taken.empty() && size() > budget) {
    (*passes)[taken.back().first] = taken.back().second;
    taken.pop_back();
  }
}

}  // namespace krojcodec::j2k
