// SPDX-License-Identifier: BSD-3-Clause
// Chroma up- and down-sampling: argument order, the documented examples, the filters
// written out per output sample, the border the plane up-samplers read, and the
// row-parallel plane functions under every thread count.
#include <string.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::kGuard;
using kro_test::Rng;
using kro_test::ScopedThreads;

using Row = std::vector<Kro8u>;

// ---- Row functions ----

TEST(SampleRow, ArgumentChecks) {
  Kro8u s[8] = {}, t[8] = {}, d[16];
  memset(d, kGuard, sizeof d);
  EXPECT_EQ(kroiSampleDownRowH2V1_Box_JPEG_8u_C1(nullptr, 0, d), kroStatusNullPointer);
  EXPECT_EQ(kroiSampleDownRowH2V1_Box_JPEG_8u_C1(s, 4, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiSampleDownRowH2V1_Box_JPEG_8u_C1(s, 0, d), kroStatusBadSize);
  EXPECT_EQ(kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s, -3, d), kroStatusBadSize);
  EXPECT_EQ(kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(nullptr, -3, d), kroStatusNullPointer);
  for (auto fn : {kroiSampleDownRowH2V2_Box_JPEG_8u_C1, kroiSampleUpRowH2V2_Triangle_JPEG_8u_C1,
                  kroiSampleUpRowH1V2_Triangle_JPEG_8u_C1}) {
    EXPECT_EQ(fn(nullptr, t, 0, d), kroStatusNullPointer);
    EXPECT_EQ(fn(s, nullptr, 0, d), kroStatusNullPointer);
    EXPECT_EQ(fn(s, t, 0, nullptr), kroStatusNullPointer);
    EXPECT_EQ(fn(s, t, 0, d), kroStatusBadSize);
  }
  for (Kro8u v : d) EXPECT_EQ(v, kGuard);
}

TEST(Sample, DocumentedExamples) {
  Kro8u d[8];
  const Kro8u a[] = {10, 11, 10, 11};
  ASSERT_EQ(kroiSampleDownRowH2V1_Box_JPEG_8u_C1(a, 4, d), kroStatusOk);
  EXPECT_EQ(Row(d, d + 2), (Row{10, 11}));  // alternating bias 0, 1
  const Kro8u z[] = {0, 0}, o[] = {0, 1};
  ASSERT_EQ(kroiSampleDownRowH2V2_Box_JPEG_8u_C1(z, o, 2, d), kroStatusOk);
  EXPECT_EQ(d[0], 0);  // (1 + 1) >> 2
  const Kro8u ramp[] = {0, 100};
  ASSERT_EQ(kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(ramp, 2, d), kroStatusOk);
  EXPECT_EQ(Row(d, d + 4), (Row{0, 25, 75, 100}));
  // The plane forms round with constant biases.
  ASSERT_EQ(kroiSampleDownH2V1_JPEG_8u_C1R(a, 4, {4, 1}, d, 2, {2, 1}), kroStatusOk);
  EXPECT_EQ(Row(d, d + 2), (Row{11, 11}));
  const Kro8u q[] = {0, 0, 0, 1};
  ASSERT_EQ(kroiSampleDownH2V2_JPEG_8u_C1R(q, 2, {2, 2}, d, 1, {1, 1}), kroStatusOk);
  EXPECT_EQ(d[0], 1);  // (1 + 3) >> 2
  // A constant region, border included, is reproduced by the H2V2 up-sampler.
  std::vector<Kro8u> flat(6 * 6, 77), out(8 * 8);
  ASSERT_EQ(kroiSampleUpH2V2_JPEG_8u_C1R(flat.data() + 7, 6, {4, 4}, out.data(), 8, {8, 8}),
            kroStatusOk);
  for (Kro8u v : out) EXPECT_EQ(v, 77);
}

// The triangle filters with the row's edge samples replicated: nearer sample 3/4,
// farther 1/4; even outputs round with +1 (of 4) or +8 (of 16), odd ones with +2 or +7.
int UpH2V1(const Row& s, int k) {
  const int w = static_cast<int>(s.size()), i = k / 2,
            j = std::clamp(k % 2 ? i + 1 : i - 1, 0, w - 1);
  return (3 * s[i] + s[j] + (k % 2 ? 2 : 1)) >> 2;
}
int UpH2V2(const Row& n, const Row& f, int k) {
  const int w = static_cast<int>(n.size()), i = k / 2,
            j = std::clamp(k % 2 ? i + 1 : i - 1, 0, w - 1);
  return (9 * n[i] + 3 * n[j] + 3 * f[i] + f[j] + (k % 2 ? 7 : 8)) >> 4;
}

// Every compiled SIMD target: every width from 1 to 80 and a few long rows (odd
// widths read the sample after the row when going down); exactly ceil(w/2) or 2w
// outputs are written.
class SamplingTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(SamplingTargets);

TEST_P(SamplingTargets, RowsAgainstTheFilters) {
  Rng rng(3);
  std::vector<int> widths(80);
  for (int w = 1; w <= 80; ++w) widths[w - 1] = w;
  widths.insert(widths.end(), {129, 200});
  for (int w : widths) {
    Row a(w + 1), c(w + 1), d(2 * w + 8, kGuard);
    rng.Fill(a.data(), a.size(), 0, 255);
    rng.Fill(c.data(), c.size(), 0, 255);
    const int half = (w + 1) / 2;
    ASSERT_EQ(kroiSampleDownRowH2V1_Box_JPEG_8u_C1(a.data(), w, d.data()), kroStatusOk);
    for (int j = 0; j < half; ++j) ASSERT_EQ(d[j], (a[2 * j] + a[2 * j + 1] + j % 2) >> 1) << w;
    ASSERT_EQ(d[half], kGuard);
    ASSERT_EQ(kroiSampleDownRowH2V2_Box_JPEG_8u_C1(a.data(), c.data(), w, d.data()), kroStatusOk);
    for (int j = 0; j < half; ++j)
      ASSERT_EQ(d[j], (a[2 * j] + a[2 * j + 1] + c[2 * j] + c[2 * j + 1] + 1 + j % 2) >> 2) << w;
    ASSERT_EQ(d[half], kGuard);
    if (w < 2) continue;  // width 1 below
    const Row s(a.begin(), a.begin() + w), f(c.begin(), c.begin() + w);
    ASSERT_EQ(kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s.data(), w, d.data()), kroStatusOk);
    for (int k = 0; k < 2 * w; ++k) ASSERT_EQ(d[k], UpH2V1(s, k)) << w << " " << k;
    ASSERT_EQ(d[2 * w], kGuard);
    for (auto fn :
         {kroiSampleUpRowH2V2_Triangle_JPEG_8u_C1, kroiSampleUpRowH1V2_Triangle_JPEG_8u_C1}) {
      ASSERT_EQ(fn(s.data(), f.data(), w, d.data()), kroStatusOk);
      for (int k = 0; k < 2 * w; ++k) ASSERT_EQ(d[k], UpH2V2(s, f, k)) << w << " " << k;
      ASSERT_EQ(d[2 * w], kGuard);
    }
  }
}

// A one-sample row is accepted and reads s[1]; only the opening pair fits the
// two-sample destination, and nothing after it may be written.
TEST(SampleRow, WidthOneUpSampling) {
  const Kro8u s[] = {40, 100, 200}, f[] = {0, 80, 160};
  Kro8u d[6];
  memset(d, kGuard, sizeof d);
  ASSERT_EQ(kroiSampleUpRowH2V1_Triangle_JPEG_8u_C1(s + 1, 1, d + 1), kroStatusOk);
  EXPECT_EQ(Row(d, d + 6), (Row{kGuard, 100, 125, kGuard, kGuard, kGuard}));
  // C_0 = 380, C_1 = 760: (1520 + 8) >> 4, (1140 + 760 + 7) >> 4
  for (auto fn :
       {kroiSampleUpRowH2V2_Triangle_JPEG_8u_C1, kroiSampleUpRowH1V2_Triangle_JPEG_8u_C1}) {
    ASSERT_EQ(fn(s + 1, f + 1, 1, d + 1), kroStatusOk);
    EXPECT_EQ(Row(d, d + 6), (Row{kGuard, 95, 119, kGuard, kGuard, kGuard}));
  }
}

// ---- Plane functions ----

using PlaneFn = KroStatus (*)(const Kro8u*, int, KroiSize, Kro8u*, int, KroiSize);

// A source region with a one-sample border of random values all round, rows padded
// to an odd step.
struct Bordered {
  int step;
  std::vector<Kro8u> bytes;
  Bordered(KroiSize size, Rng& rng)
      : step(size.width + 2 + 5), bytes(static_cast<size_t>(step) * (size.height + 2)) {
    rng.Fill(bytes.data(), bytes.size(), 0, 255);
  }
  const Kro8u* origin() const { return bytes.data() + step + 1; }
  int at(int x, int y) const { return origin()[y * step + x]; }
};

// Destination sample (x, y) of each plane function, from the source with border.
int DownH2V1(const Bordered& s, int x, int y) {
  return (s.at(2 * x, y) + s.at(2 * x + 1, y) + 1) >> 1;
}
int DownH2V2(const Bordered& s, int x, int y) {
  return (s.at(2 * x, 2 * y) + s.at(2 * x + 1, 2 * y) + s.at(2 * x, 2 * y + 1) +
          s.at(2 * x + 1, 2 * y + 1) + 3) >>
         2;
}
int UpH2V1(const Bordered& s, int x, int y) {
  const int i = x >> 1, j = x % 2 ? i + 1 : i - 1;
  return (3 * s.at(i, y) + s.at(j, y) + (x % 2 ? 2 : 1)) >> 2;
}
int UpH2V2(const Bordered& s, int x, int y) {
  const int i = x >> 1, j = x % 2 ? i + 1 : i - 1, n = y >> 1, f = y % 2 ? n + 1 : n - 1;
  return (9 * s.at(i, n) + 3 * s.at(j, n) + 3 * s.at(i, f) + s.at(j, f) + (x % 2 ? 7 : 8)) >> 4;
}

struct PlaneCase {
  const char* name;
  PlaneFn fn;
  int (*expect)(const Bordered&, int, int);
  int num_x, den_x, num_y, den_y;  // source side = ceil(destination side * num / den)
};
const PlaneCase kPlanes[] = {
    {"DownH2V1", kroiSampleDownH2V1_JPEG_8u_C1R, DownH2V1, 2, 1, 1, 1},
    {"DownH2V2", kroiSampleDownH2V2_JPEG_8u_C1R, DownH2V2, 2, 1, 2, 1},
    {"UpH2V1", kroiSampleUpH2V1_JPEG_8u_C1R, UpH2V1, 1, 2, 1, 1},
    {"UpH2V2", kroiSampleUpH2V2_JPEG_8u_C1R, UpH2V2, 1, 2, 1, 2},
};

KroiSize SourceSize(const PlaneCase& c, KroiSize dst) {
  return {(dst.width * c.num_x + c.den_x - 1) / c.den_x,
          (dst.height * c.num_y + c.den_y - 1) / c.den_y};
}

// Runs c on random data of destination size `size` and checks every sample against
// the formula (unless !verify) and the guard bytes; returns the destination.
kro_test::GuardedImage<Kro8u> RunPlane(const PlaneCase& c, KroiSize size, uint64_t seed,
                                       bool verify = true) {
  Rng rng(seed);
  const KroiSize src_size = SourceSize(c, size);
  Bordered src(src_size, rng);
  kro_test::GuardedImage<Kro8u> dst(size.width, size.height, 1, 3);
  EXPECT_EQ(c.fn(src.origin(), src.step, src_size, dst.data(), dst.step(), size), kroStatusOk);
  for (int y = 0; y < size.height && verify; ++y)
    for (int x = 0; x < size.width; ++x)
      if (dst.at(x, y) != c.expect(src, x, y)) {
        ADD_FAILURE() << c.name << " at " << x << "," << y;
        return dst;
      }
  EXPECT_TRUE(dst.IntactOutside()) << c.name;
  return dst;
}

TEST(SamplePlane, ArgumentChecksInOrder) {
  Kro8u s[64] = {}, d[64];
  memset(d, kGuard, sizeof d);
  const KroiSize ok{2, 2}, bad{0, 2};
  for (const PlaneCase& c : kPlanes) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.fn(nullptr, 0, bad, nullptr, 0, bad), kroStatusNullPointer);
    EXPECT_EQ(c.fn(s + 9, 0, bad, nullptr, 0, bad), kroStatusBadStep);
    EXPECT_EQ(c.fn(s + 9, 8, {2, -1}, nullptr, 0, bad), kroStatusBadSize);
    EXPECT_EQ(c.fn(s + 9, 8, ok, nullptr, 0, bad), kroStatusNullPointer);
    EXPECT_EQ(c.fn(s + 9, 8, ok, d, -8, bad), kroStatusBadStep);
    EXPECT_EQ(c.fn(s + 9, 8, ok, d, 8, bad), kroStatusBadSize);
    EXPECT_EQ(c.fn(s + 9, 8, ok, d, 8, {2, 0}), kroStatusBadSize);
  }
  for (Kro8u v : d) EXPECT_EQ(v, kGuard);
}

// Edge sizes (one row, one column, odd sides, every place a vector can end) read the
// border exactly as documented.
TEST_P(SamplingTargets, PlanesAgainstTheFiltersWithBorder) {
  uint64_t seed = 11;
  for (const PlaneCase& c : kPlanes) {
    for (KroiSize size : {KroiSize{1, 1}, KroiSize{1, 5}, KroiSize{33, 17}})
      RunPlane(c, size, seed++);
    for (int w : kro_test::EdgeWidths()) RunPlane(c, {w, 3}, seed++);
  }
}

TEST(SamplePlane, SameResultForEveryThreadCount) {
  for (const PlaneCase& c : kPlanes)
    for (KroiSize size :
         {KroiSize{128, 64}, KroiSize{8193, 1}, KroiSize{1, 8193}, KroiSize{97, 91}}) {
      const auto serial = [&] {
        ScopedThreads one(1);
        return RunPlane(c, size, 5);
      }();
      for (int threads = 2; threads <= 8; ++threads) {
        ScopedThreads scoped(threads);
        ASSERT_TRUE(RunPlane(c, size, 5, false).SamePixels(serial))
            << c.name << " threads " << threads;
      }
    }
}

}  // namespace
