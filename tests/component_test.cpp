// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 component transforms: argument checks, every function against its formula
// on random and extreme samples (planar in place, from and to interleaved), round
// trips, untouched row padding, the row-parallel 32-bit RCT across thread counts, and
// every SIMD target against the reference rows.
#include <gtest/gtest.h>
#include <stdint.h>

#include <limits>
#include <type_traits>
#include <vector>

#include "kroj.h"
#include "ref/component_ref.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;

// ---- Hand-computed pixels, the extremes chosen so that every sum and product wraps --

template <class T>
struct Pixel {
  KroStatus (*fn)(T* [3], int, KroiSize);
  T in[3], out[3];
};
constexpr Kro32s kMax = INT32_MAX, kMin = INT32_MIN;
const Pixel<Kro16s> k16s[] = {
    {kroiRCTFwd_JPEG2K_16s_P3IR, {-1, 0, 0}, {-1, 0, -1}},  // the shift floors
    {kroiRCTFwd_JPEG2K_16s_P3IR, {0, -32768, 32767}, {-8193, -1, -32768}},
    {kroiRCTInv_JPEG2K_16s_P3IR, {-8193, -1, -32768}, {-32768, 0, -1}},
    {kroiRCTInv_JPEG2K_16s_P3IR, {32767, 32767, 32767}, {-16385, 16384, -16385}},
    {kroiICTFwd_JPEG2K_16s_P3IR, {255, 255, 255}, {255, 0, 0}},
    {kroiICTFwd_JPEG2K_16s_P3IR, {-32768, 32767, -32768}, {5699, -21708, -27440}},
    {kroiICTInv_JPEG2K_16s_P3IR, {100, 0, 3}, {104, 98, 100}},  // each term rounded alone
    {kroiICTInv_JPEG2K_16s_P3IR, {32767, -32768, 32767}, {13170, 20644, -25297}},
};
const Pixel<Kro32s> k32s[] = {
    {kroiRCTFwd_JPEG2K_32s_P3IR, {1, 0, 0}, {0, 0, 1}},
    {kroiRCTFwd_JPEG2K_32s_P3IR, {kMax, kMax, 1}, {536870911, -2147483646, 0}},
    {kroiRCTInv_JPEG2K_32s_P3IR, {5, -3, 2}, {8, 6, 3}},
    {kroiRCTInv_JPEG2K_32s_P3IR, {kMax, kMax, kMax}, {-1, kMin, -1}},
    {kroiICTFwd_JPEG2K_32s_P3IR, {100, -50, 25}, {3, 12, 69}},
    {kroiICTFwd_JPEG2K_32s_P3IR, {kMax, 0, 0}, {-131072, -131072, 0}},
    {kroiICTInv_JPEG2K_32s_P3IR, {100, -50, 25}, {135, 99, 11}},
    {kroiICTInv_JPEG2K_32s_P3IR, {kMax, kMax, kMin}, {kMax, kMax, kMax - 2}},
};
// Double-precision sums, rounded once to float.
const Pixel<Kro32f> k32f[] = {
    {kroiICTFwd_JPEG2K_32f_P3IR, {10, 20, 30}, {18.15f, 6.6873f, -5.8131f}},
    {kroiICTInv_JPEG2K_32f_P3IR, {100, -12.5f, 7.25f}, {110.1645f, 99.124107f, 77.85f}},
};

template <class T>
void CheckPixels(const Pixel<T>* list, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    T p0 = list[i].in[0], p1 = list[i].in[1], p2 = list[i].in[2];
    T* planes[3] = {&p0, &p1, &p2};
    ASSERT_EQ(list[i].fn(planes, 16, KroiSize{1, 1}), kroStatusOk);
    EXPECT_TRUE(p0 == list[i].out[0] && p1 == list[i].out[1] && p2 == list[i].out[2])
        << i << ": " << p0 << " " << p1 << " " << p2;
  }
}

TEST(ComponentTransform, ArgumentChecksInDocumentedOrder) {
  Kro32s a[12] = {}, b[12] = {}, c[12] = {}, px[36] = {};
  Kro32s* planes[3] = {a, b, c};
  Kro32s* holed[3] = {a, nullptr, c};
  const Kro32s* cplanes[3] = {a, b, c};
  const Kro32s* choled[3] = {a, b, nullptr};
  const KroiSize ok{4, 3}, no_rows{4, 0};
  EXPECT_EQ(kroiRCTFwd_JPEG2K_32s_P3IR(nullptr, 0, no_rows), kroStatusNullPointer);
  EXPECT_EQ(kroiICTInv_JPEG2K_32s_P3IR(holed, 0, no_rows), kroStatusNullPointer);
  EXPECT_EQ(kroiRCTInv_JPEG2K_32s_P3IR(planes, 0, no_rows), kroStatusBadStep);
  EXPECT_EQ(kroiICTFwd_JPEG2K_16s_P3IR(reinterpret_cast<Kro16s**>(planes), 8, KroiSize{0, 3}),
            kroStatusBadSize);
  EXPECT_EQ(kroiRCTFwd_JPEG2K_32s_C3P3R(nullptr, 0, planes, 16, ok), kroStatusNullPointer);
  EXPECT_EQ(kroiRCTFwd_JPEG2K_32s_C3P3R(px, 0, holed, 16, ok), kroStatusNullPointer);
  EXPECT_EQ(kroiRCTFwd_JPEG2K_32s_C3P3R(px, 48, planes, 0, no_rows), kroStatusBadStep);
  EXPECT_EQ(kroiICTFwd_JPEG2K_32f_C3P3R(reinterpret_cast<Kro32f*>(px), 48,
                                        reinterpret_cast<Kro32f**>(planes), 16, no_rows),
            kroStatusBadSize);
  EXPECT_EQ(kroiRCTInv_JPEG2K_32s_P3C3R(choled, 16, px, 48, ok), kroStatusNullPointer);
  EXPECT_EQ(kroiRCTInv_JPEG2K_32s_P3C3R(cplanes, 0, nullptr, 0, ok), kroStatusNullPointer);
  EXPECT_EQ(kroiRCTInv_JPEG2K_32s_P3C3R(cplanes, 0, px, 48, no_rows), kroStatusBadStep);
  EXPECT_EQ(kroiRCTInv_JPEG2K_16s_P3C3R(reinterpret_cast<const Kro16s**>(cplanes), 16,
                                        reinterpret_cast<Kro16s*>(px), 48, KroiSize{-1, 1}),
            kroStatusBadSize);
  for (int i = 0; i < 36; ++i)
    EXPECT_TRUE(px[i] == 0 && a[i % 12] == 0 && b[i % 12] == 0 && c[i % 12] == 0);
}

TEST(ComponentTransform, HandComputedPixels) {
  CheckPixels(k16s, std::size(k16s));
  CheckPixels(k32s, std::size(k32s));
  CheckPixels(k32f, std::size(k32f));
}

// Planes of w x h samples (padded rows, guards around) and the same pixels interleaved.
template <class T>
struct Images {
  int w, h;
  GuardedImage<T> pl[3], c3;
  Images(int w_, int h_, Rng& rng, double lo, double hi)
      : w(w_), h(h_), pl{{w, h, 1, 8}, {w, h, 1, 8}, {w, h, 1, 8}}, c3(w, h, 3, 12) {
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x)
        for (int c = 0; c < 3; ++c) {
          const int pick = static_cast<int>(rng.Int(0, 2));  // a third at each end of the range
          pl[c].at(x, y) = c3.at(x, y, c) = static_cast<T>(pick == 0   ? lo
                                                           : pick == 1 ? hi
                                                                       : rng.Real(lo, hi));
        }
  }
  Images(const Images& o) : w(o.w), h(o.h), pl{o.pl[0], o.pl[1], o.pl[2]}, c3(o.c3) {}
  T* planes[3] = {pl[0].data(), pl[1].data(), pl[2].data()};  // this copy's own planes
  int step() const { return pl[0].step(); }
  // The planes equal the interleaved image and nothing outside either was written.
  bool Consistent() const {
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x)
        for (int c = 0; c < 3; ++c)
          if (pl[c].at(x, y) != c3.at(x, y, c)) return false;
    return pl[0].IntactOutside() && pl[1].IntactOutside() && pl[2].IntactOutside() &&
           c3.IntactOutside();
  }
};

// The interleaved forms compute what the planar one does, pixel for pixel; the
// forward then inverse restores the input (RCT exactly while R + 2G + B fits).
template <class T>
void CheckLayouts(KroStatus (*fwd)(T* [3], int, KroiSize), KroStatus (*inv)(T* [3], int, KroiSize),
                  KroStatus (*split)(const T*, int, T* [3], int, KroiSize),
                  KroStatus (*merge)(const T* [3], int, T*, int, KroiSize), double lo, double hi,
                  double tol) {
  Rng rng(9);
  for (const KroiSize s : {KroiSize{1, 1}, KroiSize{19, 4}, KroiSize{97, 85}}) {
    Images<T> a(s.width, s.height, rng, lo, hi), b = a;
    ASSERT_EQ(split(a.c3.data(), a.c3.step(), a.planes, a.step(), s),
              kroStatusOk);  // planes <- fwd(c3)
    ASSERT_EQ(fwd(b.planes, b.step(), s), kroStatusOk);
    for (int c = 0; c < 3; ++c) ASSERT_TRUE(a.pl[c].SamePixels(b.pl[c]));
    const T* cp[3] = {a.planes[0], a.planes[1], a.planes[2]};
    ASSERT_EQ(merge(cp, a.step(), a.c3.data(), a.c3.step(), s), kroStatusOk);  // c3 <- inv(planes)
    ASSERT_EQ(inv(a.planes, a.step(), s), kroStatusOk);
    EXPECT_TRUE(a.Consistent());
    for (int y = 0; y < s.height; ++y)  // b.c3 still holds the input
      for (int x = 0; x < s.width; ++x)
        for (int c = 0; c < 3; ++c) ASSERT_NEAR(a.pl[c].at(x, y), b.c3.at(x, y, c), tol);
  }
}

TEST(ComponentTransform, LayoutsAgreeAndRoundTrip) {
  CheckLayouts<Kro32s>(kroiRCTFwd_JPEG2K_32s_P3IR, kroiRCTInv_JPEG2K_32s_P3IR,
                       kroiRCTFwd_JPEG2K_32s_C3P3R, kroiRCTInv_JPEG2K_32s_P3C3R, -(1 << 29),
                       (1 << 29) - 1, 0);
  CheckLayouts<Kro16s>(kroiRCTFwd_JPEG2K_16s_P3IR, kroiRCTInv_JPEG2K_16s_P3IR,
                       kroiRCTFwd_JPEG2K_16s_C3P3R, kroiRCTInv_JPEG2K_16s_P3C3R, -8192, 8191, 0);
  CheckLayouts<Kro32f>(kroiICTFwd_JPEG2K_32f_P3IR, kroiICTInv_JPEG2K_32f_P3IR,
                       kroiICTFwd_JPEG2K_32f_C3P3R, kroiICTInv_JPEG2K_32f_P3C3R, 0, 255, 0.05);
}

// The four 32-bit RCT functions split rows over threads from 8193 pixels on; the
// result never depends on the split.
TEST(ComponentTransform, RowParallelRctIsIndependentOfThreadCount) {
  for (const KroiSize s :
       {KroiSize{128, 64}, KroiSize{8193, 1}, KroiSize{1, 8193}, KroiSize{97, 85}}) {
    std::vector<Kro32s> first;
    for (int threads = 1; threads <= 8; ++threads) {
      kro_test::ScopedThreads n(threads);
      Rng rng(s.width);
      Images<Kro32s> a(s.width, s.height, rng, INT32_MIN, INT32_MAX), b = a;
      ASSERT_EQ(kroiRCTFwd_JPEG2K_32s_C3P3R(a.c3.data(), a.c3.step(), a.planes, a.step(), s),
                kroStatusOk);
      const Kro32s* cp[3] = {a.planes[0], a.planes[1], a.planes[2]};
      ASSERT_EQ(kroiRCTInv_JPEG2K_32s_P3C3R(cp, a.step(), b.c3.data(), b.c3.step(), s),
                kroStatusOk);
      ASSERT_EQ(kroiRCTFwd_JPEG2K_32s_P3IR(b.planes, b.step(), s), kroStatusOk);
      ASSERT_EQ(kroiRCTInv_JPEG2K_32s_P3IR(a.planes, a.step(), s), kroStatusOk);
      std::vector<Kro32s> all;
      for (const auto* img :
           {&a.pl[0], &a.pl[1], &a.pl[2], &a.c3, &b.pl[0], &b.pl[1], &b.pl[2], &b.c3})
        for (int y = 0; y < s.height; ++y)
          all.insert(all.end(), img->row(y),
                     img->row(y) + s.width * (img == &a.c3 || img == &b.c3 ? 3 : 1));
      if (threads == 1) first = all;
      EXPECT_EQ(all, first) << s.width << "x" << s.height << ", " << threads << " threads";
      for (const auto* img :
           {&a.pl[0], &a.pl[1], &a.pl[2], &a.c3, &b.pl[0], &b.pl[1], &b.pl[2], &b.c3})
        EXPECT_TRUE(img->IntactOutside());
    }
  }
}

// ---- Every compiled SIMD target against the reference rows -----------------------

class ComponentTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(ComponentTargets);

// Each function on rows of every edge width: the planes or interleaved pixels it
// writes equal the reference row's bit for bit, and nothing around them changes.
// Integer samples cover the whole type (a quarter of them at its ends), floats a
// wide signed range.
template <class Op, class T>
void CheckAgainstReference(KroStatus (*planar)(T* [3], int, KroiSize),
                           KroStatus (*split)(const T*, int, T* [3], int, KroiSize),
                           KroStatus (*merge)(const T* [3], int, T*, int, KroiSize)) {
  Rng rng(sizeof(T) * 7 + (planar != nullptr));
  const double lo = std::is_integral_v<T> ? std::numeric_limits<T>::min() : -70000.0;
  const double hi = std::is_integral_v<T> ? std::numeric_limits<T>::max() : 70000.0;
  for (int w : kro_test::EdgeWidths()) {
    const KroiSize s{w, 2};
    Images<T> in(w, 2, rng, lo, hi), out = in;
    T* src_planes[3];
    for (int c = 0; c < 3; ++c) src_planes[c] = in.planes[c];
    std::vector<T> want(static_cast<size_t>(3) * w);
    for (int y = 0; y < 2; ++y) {
      const T* const p_in[3] = {in.pl[0].row(y), in.pl[1].row(y), in.pl[2].row(y)};
      const T* const c_in[3] = {in.c3.row(y), in.c3.row(y) + 1, in.c3.row(y) + 2};
      if (planar) {  // in place
        T* const w_out[3] = {&want[0], &want[w], &want[2 * w]};
        kro::ref::Component3Row<Op>(p_in, 1, w_out, 1, w);
      } else if (split) {
        T* const w_out[3] = {&want[0], &want[w], &want[2 * w]};
        kro::ref::Component3Row<Op>(c_in, 3, w_out, 1, w);
      } else {
        T* const w_out[3] = {&want[0], &want[1], &want[2]};
        kro::ref::Component3Row<Op>(p_in, 1, w_out, 3, w);
      }
      if (y == 0) {
        if (planar) ASSERT_EQ(planar(out.planes, out.step(), s), kroStatusOk);
        if (split)
          ASSERT_EQ(split(in.c3.data(), in.c3.step(), out.planes, out.step(), s), kroStatusOk);
        const T* cp[3] = {src_planes[0], src_planes[1], src_planes[2]};
        if (merge) ASSERT_EQ(merge(cp, in.step(), out.c3.data(), out.c3.step(), s), kroStatusOk);
      }
      const T* got[3] = {out.pl[0].row(y), out.pl[1].row(y), out.pl[2].row(y)};
      for (int i = 0; i < 3 * w; ++i) {
        const T g = merge ? out.c3.row(y)[i] : got[i / w][i % w];
        ASSERT_EQ(memcmp(&g, &want[i], sizeof(T)), 0)
            << "width " << w << " row " << y << " sample " << i;
      }
    }
    EXPECT_TRUE(out.pl[0].IntactOutside() && out.pl[1].IntactOutside() &&
                out.pl[2].IntactOutside() && out.c3.IntactOutside());
  }
}

TEST_P(ComponentTargets, EveryFunctionMatchesTheReferenceRows) {
  using namespace kro::ref;
  CheckAgainstReference<RctFwd, Kro16s>(kroiRCTFwd_JPEG2K_16s_P3IR, nullptr, nullptr);
  CheckAgainstReference<RctFwd, Kro32s>(kroiRCTFwd_JPEG2K_32s_P3IR, nullptr, nullptr);
  CheckAgainstReference<RctInv, Kro16s>(kroiRCTInv_JPEG2K_16s_P3IR, nullptr, nullptr);
  CheckAgainstReference<RctInv, Kro32s>(kroiRCTInv_JPEG2K_32s_P3IR, nullptr, nullptr);
  CheckAgainstReference<IctFwdFixed, Kro16s>(kroiICTFwd_JPEG2K_16s_P3IR, nullptr, nullptr);
  CheckAgainstReference<IctFwdFixed, Kro32s>(kroiICTFwd_JPEG2K_32s_P3IR, nullptr, nullptr);
  CheckAgainstReference<IctFwdFloat, Kro32f>(kroiICTFwd_JPEG2K_32f_P3IR, nullptr, nullptr);
  CheckAgainstReference<IctInvFixed, Kro16s>(kroiICTInv_JPEG2K_16s_P3IR, nullptr, nullptr);
  CheckAgainstReference<IctInvFixed, Kro32s>(kroiICTInv_JPEG2K_32s_P3IR, nullptr, nullptr);
  CheckAgainstReference<IctInvFloat, Kro32f>(kroiICTInv_JPEG2K_32f_P3IR, nullptr, nullptr);
  CheckAgainstReference<RctFwd, Kro16s>(nullptr, kroiRCTFwd_JPEG2K_16s_C3P3R, nullptr);
  CheckAgainstReference<RctFwd, Kro32s>(nullptr, kroiRCTFwd_JPEG2K_32s_C3P3R, nullptr);
  CheckAgainstReference<IctFwdFloat, Kro32f>(nullptr, kroiICTFwd_JPEG2K_32f_C3P3R, nullptr);
  CheckAgainstReference<RctInv, Kro16s>(nullptr, nullptr, kroiRCTInv_JPEG2K_16s_P3C3R);
  CheckAgainstReference<RctInv, Kro32s>(nullptr, nullptr, kroiRCTInv_JPEG2K_32s_P3C3R);
  CheckAgainstReference<IctInvFloat, Kro32f>(nullptr, nullptr, kroiICTInv_JPEG2K_32f_P3C3R);
}

}  // namespace
