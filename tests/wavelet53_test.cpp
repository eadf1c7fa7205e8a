// SPDX-License-Identifier: BSD-3-Clause
// The reversible 5/3 wavelet against a transform written straight from the lifting
// equations on the symmetrically extended signal; round trips; the region and
// streaming forms against the 2D one; argument checks and hand-computed vectors.
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <vector>

#include "kroj.h"
#include "simd_test_util.h"
#include "test_util.h"
#include "wavelet_test_util.h"

namespace {

using namespace kro_test;

// ---- T.800 F.3.8 / F.4.8 on one line at positions p..p+n-1 ----------------------

template <class T>
T Keep(int64_t v) {
  return static_cast<T>(static_cast<uint64_t>(v));  // the stored low bits
}

template <class T>
std::vector<T> Fwd53(const std::vector<T>& x, int p) {
  const int n = static_cast<int>(x.size());
  if (n == 1) return {Keep<T>(int64_t{x[0]} << p)};
  auto X = [&](int k) -> int64_t { return x[Mirror(k, p, p + n) - p]; };
  // High-pass at odd k; two-sample lines update with the unwrapped difference.
  auto d = [&](int k) {
    const int64_t v = X(k) - ((X(k - 1) + X(k + 1)) >> 1);
    return n == 2 ? v : int64_t{Keep<T>(v)};
  };
  std::vector<T> y(n);
  for (int k = p; k < p + n; ++k)
    y[k - p] = Keep<T>((k & 1) ? d(k) : X(k) + ((d(k - 1) + d(k + 1) + 2) >> 2));
  return y;
}

template <class T>
std::vector<T> Inv53(const std::vector<T>& y, int p) {
  const int n = static_cast<int>(y.size());
  if (n == 1) return {static_cast<T>(p ? y[0] / 2 : y[0])};
  auto Y = [&](int k) -> int64_t { return y[Mirror(k, p, p + n) - p]; };
  auto e = [&](int k) -> int64_t { return Keep<T>(Y(k) - ((Y(k - 1) + Y(k + 1) + 2) >> 2)); };
  std::vector<T> x(n);
  for (int k = p; k < p + n; ++k)
    x[k - p] = Keep<T>((k & 1) ? Y(k) + ((e(k - 1) + e(k + 1)) >> 1) : e(k));
  return x;
}

// ---- Typed access -------------------------------------------------------------------

template <class T>
struct B53;
#define KROJ_B53(T, t, safe)                                                         \
  template <>                                                                        \
  struct B53<T> {                                                                    \
    static constexpr auto kFwdIR = kroiWTFwd_B53_JPEG2K_##t##_C1IR;                  \
    static constexpr auto kInvIR = kroiWTInv_B53_JPEG2K_##t##_C1IR;                  \
    static constexpr auto kFwdR = kroiWTFwd_B53_JPEG2K_##t##_C1R;                    \
    static constexpr auto kInvR = kroiWTInv_B53_JPEG2K_##t##_C1R;                    \
    static constexpr auto kSizeIR = kroiWTGetBufSize_B53_JPEG2K_##t##_C1IR;          \
    static constexpr auto kSizeR = kroiWTGetBufSize_B53_JPEG2K_##t##_C1R;            \
    static constexpr auto kFwdRow = kroiWTFwdRow_B53_JPEG2K_##t##_C1R;               \
    static constexpr auto kInvRow = kroiWTInvRow_B53_JPEG2K_##t##_C1R;               \
    static constexpr auto kFwdCol = kroiWTFwdCol_B53_JPEG2K_##t##_C1R;               \
    static constexpr auto kInvCol = kroiWTInvCol_B53_JPEG2K_##t##_C1R;               \
    static constexpr decltype(kroiWTFwdColLift_B53_JPEG2K_##t##_C1)* kFwdLift[2] = { \
        kroiWTFwdColLift_B53_JPEG2K_##t##_C1, kroiWTFwdColStep_B53_JPEG2K_##t##_C1}; \
    static constexpr decltype(kroiWTInvColLift_B53_JPEG2K_##t##_C1)* kInvLift[2] = { \
        kroiWTInvColLift_B53_JPEG2K_##t##_C1, kroiWTInvColStep_B53_JPEG2K_##t##_C1}; \
    static constexpr int64_t kSafe = safe;                                           \
  };
// Round trips hold while no doubled sample (quadrupled for a one-sample tile at odd
// x and y) or two-sample difference leaves the type.
KROJ_B53(Kro16s, 16s, 8191)
KROJ_B53(Kro32s, 32s, int64_t{1} << 28)
#undef KROJ_B53

template <class T>
KroStatus InPlace(bool fwd, Plane<T>& img, const KroiRect& r) {
  return kro_test::InPlace<B53<T>>(fwd, img, r);
}

// ---- Checks and hand-computed vectors -------------------------------------------------

TEST(Wavelet53, ArgumentChecksInDocumentedOrder) {
  Kro32s img[64] = {}, b0[16], b1[16];
  Kro8u buf[512];
  const KroiRect rect{0, 0, 4, 4}, empty{0, 0, 0, 4};
  Kro32s* bands[4] = {b0, b1, nullptr, b0};
  const Kro32s* cbands[4] = {b0, b1, b0, b1};
  int steps[4] = {8, 8, 8, 8}, bad_steps[4] = {8, 8, 0, 8};
  const KroiSize no_rows{2, 0};
  int size;
  EXPECT_EQ(kroiWTFwd_B53_JPEG2K_32s_C1IR(nullptr, 0, &rect, buf), kroStatusNullPointer);
  EXPECT_EQ(kroiWTInv_B53_JPEG2K_32s_C1IR(img, 0, nullptr, buf), kroStatusBadStep);
  EXPECT_EQ(kroiWTInv_B53_JPEG2K_16s_C1IR(reinterpret_cast<Kro16s*>(img), 8, &rect, nullptr),
            kroStatusNullPointer);
  EXPECT_EQ(kroiWTFwd_B53_JPEG2K_32s_C1R(img, 0, bands, steps, &rect, nullptr),
            kroStatusNullPointer);
  EXPECT_EQ(kroiWTFwd_B53_JPEG2K_32s_C1R(img, 0, bands, bad_steps, &empty, buf), kroStatusBadStep);
  EXPECT_EQ(kroiWTFwd_B53_JPEG2K_32s_C1R(img, 16, bands, bad_steps, &empty, buf),
            kroStatusNullPointer);
  EXPECT_EQ(kroiWTInv_B53_JPEG2K_32s_C1R(cbands, bad_steps, img, 16, &empty, buf),
            kroStatusBadStep);
  EXPECT_EQ(kroiWTInv_B53_JPEG2K_32s_C1R(cbands, steps, img, 16, &empty, buf), kroStatusBadSize);
  EXPECT_EQ(kroiWTFwdRow_B53_JPEG2K_32s_C1R(img, 0, nullptr, 8, b1, 8, no_rows, 0),
            kroStatusNullPointer);
  EXPECT_EQ(kroiWTInvCol_B53_JPEG2K_32s_C1R(img, 8, b0, 8, no_rows, b1, 0, 0), kroStatusBadStep);
  EXPECT_EQ(kroiWTFwdCol_B53_JPEG2K_16s_C1R(reinterpret_cast<Kro16s*>(img), 8,
                                            reinterpret_cast<Kro16s*>(b0), 8,
                                            reinterpret_cast<Kro16s*>(b1), 8, no_rows, 1),
            kroStatusBadSize);
  EXPECT_EQ(kroiWTFwdColLift_B53_JPEG2K_32s_C1(img, img, img, b0, nullptr, b1, 0),
            kroStatusNullPointer);
  EXPECT_EQ(kroiWTInvColStep_B53_JPEG2K_32s_C1(img, img, img, img, b0, b1, 0), kroStatusBadSize);
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_16s_C1R(nullptr, &size), kroStatusNullPointer);
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&rect, nullptr), kroStatusNullPointer);
  for (Kro32s v : img) EXPECT_EQ(v, 0);  // failed calls write nothing
}

TEST(Wavelet53, HandComputedVectors) {
  auto fwd_row = [](std::vector<Kro32s> x, int px) {
    Plane<Kro32s> p(static_cast<int>(x.size()), 1);
    p.SetRow(0, x);
    EXPECT_EQ(InPlace(true, p, KroiRect{px, 0, p.w, 1}), kroStatusOk);
    return p.Row(0);
  };
  // One sample at an odd column doubles; the inverse halves toward zero.
  EXPECT_EQ(fwd_row({-3}, 1), std::vector<Kro32s>{-6});
  Plane<Kro16s> one(1, 1);
  one.at(0, 0) = -3;
  ASSERT_EQ(InPlace(false, one, KroiRect{1, 0, 1, 1}), kroStatusOk);
  EXPECT_EQ(one.at(0, 0), -1);
  // Two samples: (a, b) -> (a + ((b - a + 1) >> 1), b - a); at odd x they swap roles.
  EXPECT_EQ(fwd_row({10, 3}, 0), (std::vector<Kro32s>{10 + ((3 - 10 + 1) >> 1), -7}));
  EXPECT_EQ(fwd_row({10, 3}, 1), (std::vector<Kro32s>{3 + ((10 - 3 + 1) >> 1), 7}));
  // d0 = 7 - 7 = 0, d1 = 1 - 9 (mirrored x4 = x2); s0 = 5 + 0, s1 = 9 + ((0 - 8 + 2) >> 2).
  EXPECT_EQ(fwd_row({5, 7, 9, 1}, 0), (std::vector<Kro32s>{5, 7, 0, -8}));
  // At odd x the samples sit at positions 1..4, mirrored x(0) = 7, x(5) = 9:
  // d(1) = 5 - 7, d(3) = 9 - 4, d(5) = d(3); s(2) = 7 + ((-2 + 5 + 2) >> 2), s(4) = 1 + 3.
  EXPECT_EQ(fwd_row({5, 7, 9, 1}, 1), (std::vector<Kro32s>{8, 4, -2, 5}));
  // 16 bits wrap: the high-pass 65535 of (-32768, 32767, -32768) is stored as -1.
  Plane<Kro16s> p(3, 1);
  p.SetRow(0, {-32768, 32767, -32768});
  ASSERT_EQ(InPlace(true, p, KroiRect{0, 0, 3, 1}), kroStatusOk);
  EXPECT_EQ(p.Row(0), (std::vector<Kro16s>{-32768, -32768, -1}));

  // Buffer sizes: none for 2 x 2; a line of 3 + 4 samples; the 32-byte working rows;
  // the line size computed in 64 bits and kept as 32 (4 (2^30 + 4) -> 16).
  int size = -1;
  const KroiRect r22{0, 0, 2, 2}, r31{0, 0, 3, 1}, r175{0, 0, 17, 5}, huge{0, 0, 1 << 30, 3};
  EXPECT_TRUE(kroiWTGetBufSize_B53_JPEG2K_16s_C1IR(&r22, &size) == kroStatusOk && size == 0);
  EXPECT_TRUE(kroiWTGetBufSize_B53_JPEG2K_16s_C1IR(&r31, &size) == kroStatusOk && size == 14);
  EXPECT_TRUE(kroiWTGetBufSize_B53_JPEG2K_32s_C1R(&r175, &size) == kroStatusOk &&
              size == 96 * 5 + 84);
  EXPECT_TRUE(kroiWTGetBufSize_B53_JPEG2K_16s_C1R(&r22, &size) == kroStatusOk && size == 64);
  EXPECT_TRUE(kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&huge, &size) == kroStatusOk && size == 16);
}

// ---- 2D against the definition, every size and phase, and back -------------------

// Every tile up to max_side square round-trips; those up to 24 on a side, the square
// ones and the thin ones also match the definition both ways.
template <class T>
void CheckTiles(int max_side, int64_t range, bool round_trip) {
  Rng rng(53 + range);
  SCOPED_TRACE(::testing::Message() << sizeof(T) * 8 << "-bit samples within +-" << range);
  for (int h = 1; h <= max_side; ++h)
    for (int w = 1; w <= max_side; ++w)
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{(parity & 1) + 2 * w, (parity >> 1) - 4, w, h};
        const bool vs_definition = (w <= 24 && h <= 24) || w == h || w <= 3 || h <= 3;
        Plane<T> img(w, h, 1);
        rng.Fill(img.data(), img.v.size(), -range, range - 1);
        const Plane<T> orig = img;
        Plane<T> want = img;
        ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
        if (vs_definition) {
          FwdTile(want, r.x & 1, r.y & 1, Fwd53<T>);
          ASSERT_EQ(MaxDiff(img, want), 0) << w << "x" << h << " parity " << parity;
          InvTile(want, r.x & 1, r.y & 1,
                  Inv53<T>);  // also on coefficients it did not make (16-bit wraps)
        }
        ASSERT_EQ(InPlace(false, img, r), kroStatusOk);
        if (vs_definition)
          ASSERT_EQ(MaxDiff(img, want), 0) << w << "x" << h << " parity " << parity << " inverse";
        if (round_trip) ASSERT_EQ(MaxDiff(img, orig), 0) << w << "x" << h << " parity " << parity;
      }
}

TEST(Wavelet53, InPlaceMatchesDefinitionForEverySizeAndPhase) {
  CheckTiles<Kro32s>(67, B53<Kro32s>::kSafe, true);
  CheckTiles<Kro16s>(67, B53<Kro16s>::kSafe, true);
  CheckTiles<Kro16s>(12, 32768, false);  // full range: every stored value wraps
}

// Taller than 32768 rows the row moves keep their marks on the heap.
TEST(Wavelet53, VeryTallTiles) {
  Rng rng(32769);
  for (int p = 0; p < 2; ++p) {
    Plane<Kro32s> img(2, 32769 + p);
    rng.Fill(img.data(), img.v.size(), -1000, 1000);
    Plane<Kro32s> want = img;
    FwdTile(want, 0, p, Fwd53<Kro32s>);
    ASSERT_EQ(InPlace(true, img, KroiRect{0, p, 2, img.h}), kroStatusOk);
    EXPECT_EQ(MaxDiff(img, want), 0);
    InvTile(want, 0, p, Inv53<Kro32s>);
    ASSERT_EQ(InPlace(false, img, KroiRect{0, p, 2, img.h}), kroStatusOk);
    EXPECT_EQ(MaxDiff(img, want), 0);
  }
}

// Several levels, each on the LL quadrant at the halved origin.
TEST(Wavelet53, SeveralLevelsRoundTrip) {
  Rng rng(5);
  for (int origin = 0; origin < 16; ++origin) {
    Plane<Kro32s> img(61, 45, 5);
    rng.Fill(img.data(), img.v.size(), -100000, 100000);
    const Plane<Kro32s> orig = img;
    std::vector<KroiRect> levels;
    for (KroiRect r{origin & 3, origin >> 2, 61, 45}; levels.size() < 4;) {
      levels.push_back(r);
      ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
      r = {(r.x + 1) >> 1, (r.y + 1) >> 1, LowCount(r.width, r.x & 1), LowCount(r.height, r.y & 1)};
    }
    for (auto it = levels.rbegin(); it != levels.rend(); ++it)
      ASSERT_EQ(InPlace(false, img, *it), kroStatusOk);
    EXPECT_EQ(MaxDiff(img, orig), 0) << origin;
  }
}

// ---- Region and streaming forms against the 2D transform ---------------------------

// Rows of 2w samples with the neighbours the row form reads (2 left, 1 right at phase
// 0; 1 and 2 at phase 1) taken from the symmetric extension, in memory of exactly
// that size; the band neighbours of the inverse likewise. The column forms run the
// transposed data (16 columns at a time, then one by one).
template <class T>
void CheckRegionForms(int w, int rows, int p, int64_t range, Rng& rng) {
  const int n = 2 * w, left = 2 - p, right = 1 + p, l_left = p, l_right = 1 - p;
  Plane<T> src(n + 3, rows), low(w, rows), high(w, rows), lowx(w + 1, rows), highx(w + 2, rows),
      want(n, rows), back(n, rows);
  for (int y = 0; y < rows; ++y) {
    Plane<T> tile(n, 1);
    rng.Fill(tile.data(), n, -range, range - 1);
    for (int i = -left; i < n + right; ++i) src.at(i + left, y) = tile.at(Mirror(i, 0, n), 0);
    back.SetRow(y, tile.Row(0));
    ASSERT_EQ(InPlace(true, tile, KroiRect{p, 0, n, 1}), kroStatusOk);
    want.SetRow(y, tile.Row(0));
    lowx.SetRow(y, ExtendedBand(tile.Row(0), p, 2 * p, -l_left, w - 1 + l_right));
    highx.SetRow(y, ExtendedBand(tile.Row(0), p, 1, -1, w));
  }
  const KroiSize size{w, rows}, sizeT{rows, w};
  ASSERT_EQ(B53<T>::kFwdRow(src.row(0) + left, src.step(), low.data(), low.step(), high.data(),
                            high.step(), size, p ? -3 : 0),
            kroStatusOk);
  Plane<T> out(n, rows);
  ASSERT_EQ(B53<T>::kInvRow(lowx.row(0) + l_left, lowx.step(), highx.row(0) + 1, highx.step(), size,
                            out.data(), out.step(), p),
            kroStatusOk);
  for (int y = 0; y < rows; ++y) {
    for (int k = 0; k < w; ++k) ASSERT_EQ(low.at(k, y), want.at(k, y)) << "w " << w << " p " << p;
    for (int k = 0; k < w; ++k)
      ASSERT_EQ(high.at(k, y), want.at(w + k, y)) << "w " << w << " p " << p;
  }
  ASSERT_EQ(MaxDiff(out, back), 0) << "w " << w << " p " << p;

  const Plane<T> srcT = src.Transposed(), lowxT = lowx.Transposed(), highxT = highx.Transposed();
  Plane<T> lowT(rows, w), highT(rows, w), outT(rows, n);
  ASSERT_EQ(B53<T>::kFwdCol(srcT.row(left), srcT.step(), lowT.data(), lowT.step(), highT.data(),
                            highT.step(), sizeT, p),
            kroStatusOk);
  ASSERT_EQ(B53<T>::kInvCol(lowxT.row(l_left), lowxT.step(), highxT.row(1), highxT.step(), sizeT,
                            outT.data(), outT.step(), p),
            kroStatusOk);
  ASSERT_EQ(MaxDiff(lowT.Transposed(), low), 0);
  ASSERT_EQ(MaxDiff(highT.Transposed(), high), 0);
  ASSERT_EQ(MaxDiff(outT.Transposed(), back), 0);
}

TEST(Wavelet53, RegionFormsMatch2DBandForBand) {
  Rng rng(97);
  for (int w = 1; w <= 20; ++w)
    for (int p = 0; p < 2; ++p) {
      CheckRegionForms<Kro16s>(w, 18, p, B53<Kro16s>::kSafe, rng);
      CheckRegionForms<Kro32s>(w, 2 + 16 * (w % 3), p, B53<Kro32s>::kSafe, rng);
    }
  // Full-range 16-bit rows: the unstored values wrap like the stored ones (the 2D
  // form's two-sample lines are the one exception, so w starts at 2).
  for (int w = 2; w <= 6; ++w)
    for (int rep = 0; rep < 10; ++rep) CheckRegionForms<Kro16s>(w, 1, rep & 1, 32768, rng);
}

// A column run through ColLift (or ColStep) the way a caller would: mirrored rows at
// the ends, d[-1] at an even start from a first call for d[0], the high row updated
// in place; then back through the inverse step. Equal to the 2D vertical pass.
template <class T>
void CheckColLift(int W, int H, int p, bool step_name, Rng& rng) {
  Plane<T> img(W, H), lifted(W, H), back(W, H);
  rng.Fill(img.data(), img.v.size(), -B53<T>::kSafe, B53<T>::kSafe);
  const auto fwd = B53<T>::kFwdLift[step_name];
  const auto inv = B53<T>::kInvLift[step_name];
  const int nl = LowCount(H, p);
  auto row = [&](int k) { return img.row(Mirror(k, p, p + H) - p); };
  std::vector<T> hrow(W), lrow(W), even(W), prev(W), odd(W);
  if (p == 0)
    ASSERT_EQ(fwd(row(0), row(1), row(2), lrow.data(), hrow.data(), hrow.data(), W), kroStatusOk);
  for (int n = 0; 2 * n <= p + H - 1; ++n) {
    ASSERT_EQ(
        fwd(row(2 * n), row(2 * n + 1), row(2 * n + 2), lrow.data(), hrow.data(), hrow.data(), W),
        kroStatusOk);
    if (2 * n >= p) std::copy(lrow.begin(), lrow.end(), lifted.row(n - p));
    if (2 * n + 1 < p + H) std::copy(hrow.begin(), hrow.end(), lifted.row(nl + n));
  }
  for (int x = 0; x < W; ++x) {
    Plane<T> col(1, H);
    col.SetColumn(0, img.Column(x));
    ASSERT_EQ(InPlace(true, col, KroiRect{0, p, 1, H}), kroStatusOk);
    ASSERT_EQ(lifted.Column(x), col.Column(0)) << "H " << H << " p " << p;
  }
  auto coef = [&](int k) {
    const int j = Mirror(k, p, p + H) - p;
    return lifted.row(BandIndex(j, H, p));
  };
  for (int n = 0; n <= (p + H) / 2; ++n) {
    ASSERT_EQ(
        inv(coef(2 * n), coef(2 * n - 1), coef(2 * n + 1), prev.data(), odd.data(), even.data(), W),
        kroStatusOk);
    if (2 * n >= p && 2 * n < p + H) back.SetRow(2 * n - p, even);
    if (2 * n - 1 >= p && 2 * n - 1 < p + H) back.SetRow(2 * n - 1 - p, odd);
    prev.swap(even);
  }
  ASSERT_EQ(MaxDiff(back, img), 0) << "H " << H << " p " << p;
}

TEST(Wavelet53, ColLiftMatchesVerticalPass) {
  Rng rng(21);
  for (int H = 3; H <= 24; ++H)
    for (int p = 0; p < 2; ++p) {
      CheckColLift<Kro16s>(5, H, p, H & 1, rng);
      CheckColLift<Kro32s>(3, H, p, !(H & 1), rng);
    }
}

// ---- Every SIMD target against the reference kernels ---------------------------------

class Wavelet53Targets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(Wavelet53Targets);

TEST_P(Wavelet53Targets, LevelsMatchTheReference) {
  Rng rng(530);
  CheckLevelAgainstReference<Kro16s>(kroiWTFwd_B53_JPEG2K_16s_C1IR,
                                     kroiWTGetBufSize_B53_JPEG2K_16s_C1IR,
                                     kro::Fwd2DInPlace<Kro16s, kro::Fwd53Ref<Kro16s>>, rng);
  CheckLevelAgainstReference<Kro16s>(kroiWTInv_B53_JPEG2K_16s_C1IR,
                                     kroiWTGetBufSize_B53_JPEG2K_16s_C1IR,
                                     kro::Inv2DInPlace<Kro16s, kro::Inv53Ref<Kro16s>>, rng);
  CheckLevelAgainstReference<Kro32s>(kroiWTFwd_B53_JPEG2K_32s_C1IR,
                                     kroiWTGetBufSize_B53_JPEG2K_32s_C1IR,
                                     kro::Fwd2DInPlace<Kro32s, kro::Fwd53Ref<Kro32s>>, rng);
  CheckLevelAgainstReference<Kro32s>(kroiWTInv_B53_JPEG2K_32s_C1IR,
                                     kroiWTGetBufSize_B53_JPEG2K_32s_C1IR,
                                     kro::Inv2DInPlace<Kro32s, kro::Inv53Ref<Kro32s>>, rng);
}

// The out-of-place bands are the in-place quadrants cut as if the first sample were
// low-pass, and their inverse is the in-place inverse.
TEST_P(Wavelet53Targets, OutOfPlaceCutsBandsFromSizeAlone) {
  Rng rng(11);
  for (int w : {1, 2, 3, 5, 8, 33})
    for (int h : {1, 2, 3, 7, 30})
      for (int parity = 0; parity < 4; ++parity) {
        CheckOutOfPlace<B53<Kro16s>, Kro16s>(w, h, parity & 1, parity >> 1, B53<Kro16s>::kSafe,
                                             rng);
        CheckOutOfPlace<B53<Kro32s>, Kro32s>(w, h, parity & 1, parity >> 1, B53<Kro32s>::kSafe,
                                             rng);
      }
}

TEST_P(Wavelet53Targets, RegionAndStreamingFormsMatchTheReference) {
  Rng rng(531);
  // Source x[-2 .. 2n] or x[-1 .. 2n+1]; low 0..n or -1..n-1; high -1..n.
  const RegionReach reach{{{2, 1}, {1, 2}}, {{0, 1}, {1, 0}}, {{1, 1}, {1, 1}}};
  for (bool rows : {true, false}) {
    CheckRegionForm<Kro16s>(
        rows, rows ? kroiWTFwdRow_B53_JPEG2K_16s_C1R : kroiWTFwdCol_B53_JPEG2K_16s_C1R,
        rows ? kro::RefFwdRows<Kro16s, kro::Region53Ref<Kro16s>>
             : kro::RefFwdCols<Kro16s, kro::Region53Ref<Kro16s>>,
        rows ? kroiWTInvRow_B53_JPEG2K_16s_C1R : kroiWTInvCol_B53_JPEG2K_16s_C1R,
        rows ? kro::RefInvRows<Kro16s, kro::Region53Ref<Kro16s>>
             : kro::RefInvCols<Kro16s, kro::Region53Ref<Kro16s>>,
        reach, rng);
    CheckRegionForm<Kro32s>(
        rows, rows ? kroiWTFwdRow_B53_JPEG2K_32s_C1R : kroiWTFwdCol_B53_JPEG2K_32s_C1R,
        rows ? kro::RefFwdRows<Kro32s, kro::Region53Ref<Kro32s>>
             : kro::RefFwdCols<Kro32s, kro::Region53Ref<Kro32s>>,
        rows ? kroiWTInvRow_B53_JPEG2K_32s_C1R : kroiWTInvCol_B53_JPEG2K_32s_C1R,
        rows ? kro::RefInvRows<Kro32s, kro::Region53Ref<Kro32s>>
             : kro::RefInvCols<Kro32s, kro::Region53Ref<Kro32s>>,
        reach, rng);
  }
  // Rows x0, x1, x2, low, d[n-1], high; the high row may be d[n-1] itself.
  for (int alias : {-1, 5}) {
    CheckLiftRows<Kro16s, 6>(kroiWTFwdColLift_B53_JPEG2K_16s_C1, kro::ref::Fwd53LiftRow<Kro16s>,
                             rng, alias, 4);
    CheckLiftRows<Kro32s, 6>(kroiWTFwdColStep_B53_JPEG2K_32s_C1, kro::ref::Fwd53LiftRow<Kro32s>,
                             rng, alias, 4);
  }
  CheckLiftRows<Kro16s, 6>(kroiWTInvColStep_B53_JPEG2K_16s_C1, kro::ref::Inv53LiftRow<Kro16s>, rng);
  CheckLiftRows<Kro32s, 6>(kroiWTInvColLift_B53_JPEG2K_32s_C1, kro::ref::Inv53LiftRow<Kro32s>, rng);
}

}  // namespace
