// SPDX-License-Identifier: BSD-3-Clause
// Helpers shared by the wavelet tests: whole-sample symmetric extension, images of
// exactly known size, work buffers of exactly the reported size, the quadrant layout
// and a 2D level built from a one-line transform.
#ifndef KROJ_TESTS_WAVELET_TEST_UTIL_H_
#define KROJ_TESTS_WAVELET_TEST_UTIL_H_

#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <tuple>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "kroj.h"
#include "simd_test_util.h"
#include "test_util.h"
#include "wavelet_impl.h"

namespace kro_test {

// The index in [i0, i1) that position k mirrors to (T.800 F.3.7).
inline int Mirror(int k, int i0, int i1) {
  if (i1 - i0 == 1) return i0;
  const int period = 2 * (i1 - i0 - 1);
  int r = (k - i0) % period;
  if (r < 0) r += period;
  return i0 + (r < i1 - i0 ? r : period - r);
}

// Low-pass count of n samples whose first position has parity p.
inline int LowCount(int n, int p) { return (n + 1 - p) / 2; }

// Quadrant place of interleaved index j (low-pass samples first).
inline int BandIndex(int j, int n, int p) { return ((j + p) & 1) ? LowCount(n, p) + j / 2 : j / 2; }

template <class T>
std::vector<T> ToBands(const std::vector<T>& y, int p) {
  std::vector<T> b(y.size());
  for (size_t j = 0; j < y.size(); ++j)
    b[BandIndex(static_cast<int>(j), static_cast<int>(y.size()), p)] = y[j];
  return b;
}
template <class T>
std::vector<T> FromBands(const std::vector<T>& b, int p) {
  std::vector<T> y(b.size());
  for (size_t j = 0; j < b.size(); ++j)
    y[j] = b[BandIndex(static_cast<int>(j), static_cast<int>(b.size()), p)];
  return y;
}

// A heap block of exactly n bytes (ASan reports any access beyond it); never null.
class ExactBuffer {
 public:
  explicit ExactBuffer(int n) : p_(new uint8_t[n > 0 ? n : 0]) {}
  Kro8u* get() { return p_.get(); }

 private:
  std::unique_ptr<uint8_t[]> p_;
};

// A w x h image of T in one exactly sized block, rows `pad` samples longer.
template <class T>
struct Plane {
  int w, h, pad;
  std::vector<T> v;
  Plane(int w_, int h_, int pad_ = 0)
      : w(w_), h(h_), pad(pad_), v(static_cast<size_t>(w_ + pad_) * h_) {}
  int step() const { return (w + pad) * static_cast<int>(sizeof(T)); }
  T* data() { return v.data(); }
  T* row(int y) { return v.data() + static_cast<size_t>(y) * (w + pad); }
  const T* row(int y) const { return v.data() + static_cast<size_t>(y) * (w + pad); }
  T& at(int x, int y) { return row(y)[x]; }
  T at(int x, int y) const { return row(y)[x]; }
  std::vector<T> Column(int x) const {
    std::vector<T> c(h);
    for (int y = 0; y < h; ++y) c[y] = at(x, y);
    return c;
  }
  void SetColumn(int x, const std::vector<T>& c) {
    for (int y = 0; y < h; ++y) at(x, y) = c[y];
  }
  std::vector<T> Row(int y) const { return std::vector<T>(row(y), row(y) + w); }
  void SetRow(int y, const std::vector<T>& r) { std::copy(r.begin(), r.end(), row(y)); }
  Plane Transposed() const {
    Plane t(h, w);
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) t.at(y, x) = at(x, y);
    return t;
  }
};

template <class A, class B>
double MaxDiff(const Plane<A>& a, const Plane<B>& b) {
  double m = 0;
  for (int y = 0; y < a.h; ++y)
    for (int x = 0; x < a.w; ++x)
      m = std::max(m, std::abs(static_cast<double>(a.at(x, y)) - static_cast<double>(b.at(x, y))));
  return m;
}

// One 2D level from a one-line transform line(samples, parity): columns then rows
// into quadrant layout (forward), or rows then columns out of it (inverse).
template <class T, class Line>
void FwdTile(Plane<T>& img, int px, int py, Line line) {
  for (int x = 0; x < img.w; ++x) img.SetColumn(x, ToBands(line(img.Column(x), py), py));
  for (int y = 0; y < img.h; ++y) img.SetRow(y, ToBands(line(img.Row(y), px), px));
}
template <class T, class Line>
void InvTile(Plane<T>& img, int px, int py, Line line) {
  for (int y = 0; y < img.h; ++y) img.SetRow(y, line(FromBands(img.Row(y), px), px));
  for (int x = 0; x < img.w; ++x) img.SetColumn(x, line(FromBands(img.Column(x), py), py));
}

// Band row of the region forms: the samples of one band of an interleaved line
// (in quadrant layout `bands`, parity p) at band indices from..to, beyond the line
// taken from the symmetric extension of the interleaved sequence. first_pos is the
// position of band index 0 (0 or 2 for low, 1 for high; positions counted from the
// line's first sample at p).
template <class T>
std::vector<T> ExtendedBand(const std::vector<T>& bands, int p, int first_pos, int from, int to) {
  const int n = static_cast<int>(bands.size());
  std::vector<T> out;
  for (int k = from; k <= to; ++k) {
    const int j = Mirror(first_pos + 2 * k, p, p + n) - p;
    out.push_back(bands[BandIndex(j, n, p)]);
  }
  return out;
}

// The 2D functions of a family: F has kFwdIR, kInvIR, kSizeIR, kFwdR, kInvR, kSizeR.
// One level in place with a work buffer of exactly the reported size.
template <class F, class T>
KroStatus InPlace(bool fwd, Plane<T>& img, const KroiRect& r) {
  int size = -1;
  EXPECT_EQ(F::kSizeIR(&r, &size), kroStatusOk);
  ExactBuffer buf(size);
  return (fwd ? F::kFwdIR : F::kInvIR)(img.data(), img.step(), &r, buf.get());
}

// Out of place: the bands are the in-place quadrants cut as if the first sample were
// low-pass, whatever the origin's parity, and the inverse of those bands is the
// in-place inverse; the work buffer is exactly the reported size.
template <class F, class T>
void CheckOutOfPlace(int w, int h, int px, int py, int64_t range, Rng& rng) {
  const KroiRect r{px, py, w, h};
  Plane<T> src(w, h, 3), inplace(w, h), back(w, h, 2);
  rng.Fill(src.data(), src.v.size(), -range, range);
  for (int y = 0; y < h; ++y) inplace.SetRow(y, src.Row(y));
  ASSERT_EQ(InPlace<F>(true, inplace, r), kroStatusOk);
  const int wl = (w + 1) / 2, hl = (h + 1) / 2, bx[4] = {0, 0, wl, wl}, by[4] = {0, hl, 0, hl},
            bw[4] = {wl, wl, w / 2, w / 2}, bh[4] = {hl, h / 2, hl, h / 2};
  std::vector<Plane<T>> band;
  for (int b = 0; b < 4; ++b) band.emplace_back(std::max(bw[b], 1), std::max(bh[b], 1), b);
  T* dst[4] = {band[0].data(), band[1].data(), band[2].data(), band[3].data()};
  const T* cdst[4] = {dst[0], dst[1], dst[2], dst[3]};
  int steps[4] = {band[0].step(), band[1].step(), band[2].step(), band[3].step()};
  int size = -1;
  ASSERT_EQ(F::kSizeR(&r, &size), kroStatusOk);
  ExactBuffer buf(size);
  ASSERT_EQ(F::kFwdR(src.data(), src.step(), dst, steps, &r, buf.get()), kroStatusOk);
  for (int b = 0; b < 4; ++b)
    for (int y = 0; y < bh[b]; ++y)
      for (int x = 0; x < bw[b]; ++x)
        ASSERT_EQ(band[b].at(x, y), inplace.at(bx[b] + x, by[b] + y)) << b;
  ASSERT_EQ(F::kInvR(cdst, steps, back.data(), back.step(), &r, buf.get()), kroStatusOk);
  ASSERT_EQ(InPlace<F>(false, inplace, r), kroStatusOk);
  ASSERT_EQ(MaxDiff(back, inplace), 0) << w << "x" << h << " at " << px << "," << py;
}

// ---- Every SIMD target against the reference kernels --------------------------------

// Samples over the whole range of T, a quarter of them at its two ends.
template <class T>
void FillFullRange(GuardedImage<T>& img, Rng& rng) {
  const KroiSize s = img.size();
  for (int y = 0; y < s.height; ++y)
    for (int x = 0; x < s.width; ++x) {
      const int64_t lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max(),
                    pick = rng.Int(0, 7);
      const T v = static_cast<T>(pick == 0 ? lo : pick == 1 ? hi : rng.Int(lo, hi));
      memcpy(img.row(y) + x, &v, sizeof(T));  // rows may sit at odd addresses
    }
}

// One 2D level in place against the reference driver, for a grid of tile sizes around
// the vector widths and all four origin parities: rows at odd byte addresses with
// guard bytes around them, the work buffer exactly the reported size and at an odd
// address.
template <class T>
void CheckLevelAgainstReference(KroStatus (*fn)(T*, int, const KroiRect*, Kro8u*),
                                KroStatus (*size_fn)(const KroiRect*, int*),
                                void (*ref)(T*, int, const KroiRect&, uint8_t*), Rng& rng) {
  for (int h : {1, 2, 3, 4, 5, 8, 9, 17})
    for (int w : {1, 2, 3, 4, 5, 8, 9, 17, 33, 67})
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{parity & 1, parity >> 1, w, h};
        GuardedImage<T> img(w, h, 1, 3);
        FillFullRange(img, rng);
        GuardedImage<T> want = img;
        int size = -1;
        ASSERT_EQ(size_fn(&r, &size), kroStatusOk);
        std::vector<uint8_t> ref_buf(size + 8);
        ref(want.data(), want.step(), r, ref_buf.data());
        std::unique_ptr<uint8_t[]> buf(new uint8_t[size + 1]);
        ASSERT_EQ(fn(img.data(), img.step(), &r, buf.get() + 1), kroStatusOk);
        ASSERT_TRUE(img.SamePixels(want) && img.IntactOutside())
            << w << "x" << h << " parity " << parity;
      }
}

// A heap block of exactly n samples of random values (integers over the whole type,
// floats within +-10^4); ASan flags any access outside it.
template <class T>
struct Block {
  std::unique_ptr<T[]> p;
  size_t n;
  Block(size_t n_, Rng& rng) : p(new T[n_ > 0 ? n_ : 1]), n(n_) {
    for (size_t i = 0; i < n; ++i) {
      if constexpr (std::is_integral_v<T>) {
        const int64_t lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max(),
                      pick = rng.Int(0, 7);
        p[i] = static_cast<T>(pick == 0 ? lo : pick == 1 ? hi : rng.Int(lo, hi));
      } else {
        p[i] = static_cast<T>(rng.Real(-1e4, 1e4));
      }
    }
  }
  T* get() { return p.get(); }
  bool Same(const std::vector<T>& v) const { return memcmp(p.get(), v.data(), sizeof(T) * n) == 0; }
  std::vector<T> Copy() const { return std::vector<T>(p.get(), p.get() + n); }
};

// The samples a region form reads beyond its band rows (or columns), per phase:
// before and after the source line, and before and after each band line.
struct RegionReach {
  int src[2][2], low[2][2], high[2][2];  // [phase][before, after]
};

template <class T>
using RegionFwd = KroStatus (*)(const T*, int, T*, int, T*, int, KroiSize, int);
template <class T>
using RegionInv = KroStatus (*)(const T*, int, const T*, int, KroiSize, T*, int, int);

// A region form against its reference kernel: rows (one per call, in blocks of
// exactly the samples the form may read and write) across the vector widths and the
// chunk boundaries, or columns (whole regions, blocks of exactly the rows) across
// the vector widths. The reference writes into plain vectors.
template <class T>
void CheckRegionForm(bool rows, RegionFwd<T> fwd, kro::RegionFwdFn<T> ref_fwd, RegionInv<T> inv,
                     kro::RegionInvFn<T> ref_inv, const RegionReach& reach, Rng& rng) {
  std::vector<int> sizes = EdgeWidths();
  if (rows) sizes.insert(sizes.end(), {255, 256, 257, 520});
  for (int n : sizes)
    for (int phase = 0; phase < 2; ++phase) {
      // Rows: n outputs per band, one row. Columns: n columns, 1 to 3 band rows.
      const int bands = rows ? n : 1 + n % 3, across = rows ? 1 : n;
      const KroiSize size = rows ? KroiSize{n, 1} : KroiSize{n, bands};
      const int unit = rows ? 1 : across;  // samples per line position
      const int* sr = reach.src[phase];
      const int* lr = reach.low[phase];
      const int* hr = reach.high[phase];
      const int step = static_cast<int>(sizeof(T)) * (rows ? 1000000 : across);
      Block<T> src(static_cast<size_t>(sr[0] + 2 * bands + sr[1]) * unit, rng);
      Block<T> low(static_cast<size_t>(bands) * unit, rng),
          high(static_cast<size_t>(bands) * unit, rng);
      std::vector<T> want_low = low.Copy(), want_high = high.Copy();
      ASSERT_EQ(
          fwd(src.get() + sr[0] * unit, step, low.get(), step, high.get(), step, size, phase * 7),
          kroStatusOk);
      ref_fwd(src.get() + sr[0] * unit, step, want_low.data(), step, want_high.data(), step, size,
              phase != 0);
      ASSERT_TRUE(low.Same(want_low) && high.Same(want_high))
          << (rows ? "row " : "col ") << n << " phase " << phase;

      Block<T> lows(static_cast<size_t>(lr[0] + bands + lr[1]) * unit, rng);
      Block<T> highs(static_cast<size_t>(hr[0] + bands + hr[1]) * unit, rng);
      Block<T> out(static_cast<size_t>(2 * bands) * unit, rng);
      std::vector<T> want = out.Copy();
      ASSERT_EQ(inv(lows.get() + lr[0] * unit, step, highs.get() + hr[0] * unit, step, size,
                    out.get(), step, phase),
                kroStatusOk);
      ref_inv(lows.get() + lr[0] * unit, step, highs.get() + hr[0] * unit, step, size, want.data(),
              step, phase != 0);
      ASSERT_TRUE(out.Same(want)) << (rows ? "row " : "col ") << n << " phase " << phase
                                  << " inverse";
    }
}

// A streaming column step against its reference: K rows of `width` samples in exact
// blocks (row `alias_to` of row `alias` when alias >= 0), all compared afterwards.
template <class T, size_t K, class F, class R>
void CheckLiftRows(F api, R ref, Rng& rng, int alias = -1, int alias_to = -1) {
  for (int w : EdgeWidths()) {
    std::vector<Block<T>> rows;
    for (size_t k = 0; k < K; ++k) rows.emplace_back(static_cast<size_t>(w), rng);
    std::array<std::vector<T>, K> want;
    std::array<T*, K> p, q;
    for (size_t k = 0; k < K; ++k) want[k] = rows[k].Copy();
    for (size_t k = 0; k < K; ++k) {
      p[k] = rows[k].get();
      q[k] = want[k].data();
    }
    if (alias >= 0) p[alias] = p[alias_to], q[alias] = q[alias_to];
    ASSERT_EQ(std::apply([&](auto... r) { return api(r..., w); }, p), kroStatusOk);
    std::apply([&](auto... r) { ref(r..., w); }, q);
    for (size_t k = 0; k < K; ++k)
      ASSERT_TRUE(rows[k].Same(want[k])) << "width " << w << " row " << k;
  }
}

}  // namespace kro_test

#endif  // KROJ_TESTS_WAVELET_TEST_UTIL_H_
