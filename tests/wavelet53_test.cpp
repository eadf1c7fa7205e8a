// SPDX-License-Identifier: BSD-3-Clause
// The reversible 5/3 wavelet: argument checks, hand-computed vectors, an independent
// transform straight from the lifting equations on the symmetrically extended signal,
// round trips, and agreement between the 2D, region and streaming forms.
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <vector>

#include "kroj.h"
#include "test_util.h"
#include "wavelet_test_util.h"

namespace {

using kro_test::ExactBuffer;
using kro_test::LowCount;
using kro_test::Mirror;
using kro_test::Plane;
using kro_test::Rng;

// ---- The 5/3 transform from T.800 F.3.8 / F.4.8, one line at a time --------------

template <class T>
T Keep(int64_t v) {
  return static_cast<T>(static_cast<uint64_t>(v));
}

// Forward on n samples at positions p..p+n-1; returns the interleaved result.
// Every value kept at the sample width, except that this library's two-sample lines
// update with the unwrapped difference.
template <class T>
std::vector<T> Fwd53Line(const std::vector<T>& x, int p) {
  const int n = static_cast<int>(x.size());
  if (n == 1) return {Keep<T>(p ? 2 * int64_t{x[0]} : x[0])};
  auto X = [&](int k) -> int64_t { return x[Mirror(k, p, p + n) - p]; };
  std::vector<int64_t> d_raw(n + 2), d(n + 2);  // odd positions p-1 .. p+n
  auto idx = [&](int k) { return k - (p - 1); };
  for (int k = p - 1; k <= p + n; ++k) {
    if ((k & 1) == 0) continue;
    d_raw[idx(k)] = X(k) - ((X(k - 1) + X(k + 1)) >> 1);
    d[idx(k)] = Keep<T>(d_raw[idx(k)]);
  }
  const auto& du = n == 2 ? d_raw : d;
  std::vector<T> y(n);
  for (int k = p; k < p + n; ++k) {
    y[k - p] = (k & 1) ? Keep<T>(d[idx(k)]) : Keep<T>(X(k) + ((du[idx(k - 1)] + du[idx(k + 1)] + 2) >> 2));
  }
  return y;
}

template <class T>
std::vector<T> Inv53Line(const std::vector<T>& y, int p) {
  const int n = static_cast<int>(y.size());
  if (n == 1) return {static_cast<T>(p ? y[0] / 2 : y[0])};
  auto Y = [&](int k) -> int64_t { return y[Mirror(k, p, p + n) - p]; };
  std::vector<int64_t> e(n + 2);  // even positions p-1 .. p+n
  auto idx = [&](int k) { return k - (p - 1); };
  for (int k = p - 1; k <= p + n; ++k)
    if ((k & 1) == 0) e[idx(k)] = Keep<T>(Y(k) - ((Y(k - 1) + Y(k + 1) + 2) >> 2));
  std::vector<T> x(n);
  for (int k = p; k < p + n; ++k)
    x[k - p] = (k & 1) ? Keep<T>(Y(k) + ((e[idx(k - 1)] + e[idx(k + 1)]) >> 1)) : Keep<T>(e[idx(k)]);
  return x;
}

// Natural order <-> quadrant layout (low-pass samples first).
template <class T>
std::vector<T> ToBands(const std::vector<T>& y, int p) {
  const int n = static_cast<int>(y.size()), nl = LowCount(n, p);
  std::vector<T> b(n);
  for (int j = 0; j < n; ++j) b[((j + p) & 1) ? nl + j / 2 : j / 2] = y[j];
  return b;
}
template <class T>
std::vector<T> FromBands(const std::vector<T>& b, int p) {
  const int n = static_cast<int>(b.size()), nl = LowCount(n, p);
  std::vector<T> y(n);
  for (int j = 0; j < n; ++j) y[j] = b[((j + p) & 1) ? nl + j / 2 : j / 2];
  return y;
}

// One 2D level in quadrant layout: columns then rows (forward).
template <class T>
void Fwd53Tile(Plane<T>& img, int px, int py) {
  for (int x = 0; x < img.w; ++x) {
    std::vector<T> col(img.h);
    for (int y = 0; y < img.h; ++y) col[y] = img.at(x, y);
    col = ToBands(Fwd53Line(col, py), py);
    for (int y = 0; y < img.h; ++y) img.at(x, y) = col[y];
  }
  for (int y = 0; y < img.h; ++y) {
    std::vector<T> row(&img.at(0, y), &img.at(0, y) + img.w);
    row = ToBands(Fwd53Line(row, px), px);
    std::copy(row.begin(), row.end(), &img.at(0, y));
  }
}

template <class T>
bool SamePlane(const Plane<T>& a, const Plane<T>& b, int* bad_x = nullptr, int* bad_y = nullptr) {
  for (int y = 0; y < a.h; ++y)
    for (int x = 0; x < a.w; ++x)
      if (a.at(x, y) != b.at(x, y)) {
        if (bad_x) *bad_x = x, *bad_y = y;
        return false;
      }
  return true;
}

// ---- Typed access to the exported functions --------------------------------------

template <class T>
struct B53;
template <>
struct B53<Kro16s> {
  static constexpr auto kFwdIR = kroiWTFwd_B53_JPEG2K_16s_C1IR;
  static constexpr auto kInvIR = kroiWTInv_B53_JPEG2K_16s_C1IR;
  static constexpr auto kFwdR = kroiWTFwd_B53_JPEG2K_16s_C1R;
  static constexpr auto kInvR = kroiWTInv_B53_JPEG2K_16s_C1R;
  static constexpr auto kSizeIR = kroiWTGetBufSize_B53_JPEG2K_16s_C1IR;
  static constexpr auto kSizeR = kroiWTGetBufSize_B53_JPEG2K_16s_C1R;
  static constexpr auto kFwdRow = kroiWTFwdRow_B53_JPEG2K_16s_C1R;
  static constexpr auto kInvRow = kroiWTInvRow_B53_JPEG2K_16s_C1R;
  static constexpr auto kFwdCol = kroiWTFwdCol_B53_JPEG2K_16s_C1R;
  static constexpr auto kInvCol = kroiWTInvCol_B53_JPEG2K_16s_C1R;
  static constexpr auto kFwdLift = kroiWTFwdColLift_B53_JPEG2K_16s_C1;
  static constexpr auto kInvLift = kroiWTInvColLift_B53_JPEG2K_16s_C1;
  static constexpr auto kFwdStep = kroiWTFwdColStep_B53_JPEG2K_16s_C1;
  static constexpr auto kInvStep = kroiWTInvColStep_B53_JPEG2K_16s_C1;
  // Round trips hold while no doubled sample or two-sample difference leaves the type
  // (a one-sample tile at odd x and y is quadrupled).
  static constexpr int64_t kSafe = 8191;
};
template <>
struct B53<Kro32s> {
  static constexpr auto kFwdIR = kroiWTFwd_B53_JPEG2K_32s_C1IR;
  static constexpr auto kInvIR = kroiWTInv_B53_JPEG2K_32s_C1IR;
  static constexpr auto kFwdR = kroiWTFwd_B53_JPEG2K_32s_C1R;
  static constexpr auto kInvR = kroiWTInv_B53_JPEG2K_32s_C1R;
  static constexpr auto kSizeIR = kroiWTGetBufSize_B53_JPEG2K_32s_C1IR;
  static constexpr auto kSizeR = kroiWTGetBufSize_B53_JPEG2K_32s_C1R;
  static constexpr auto kFwdRow = kroiWTFwdRow_B53_JPEG2K_32s_C1R;
  static constexpr auto kInvRow = kroiWTInvRow_B53_JPEG2K_32s_C1R;
  static constexpr auto kFwdCol = kroiWTFwdCol_B53_JPEG2K_32s_C1R;
  static constexpr auto kInvCol = kroiWTInvCol_B53_JPEG2K_32s_C1R;
  static constexpr auto kFwdLift = kroiWTFwdColLift_B53_JPEG2K_32s_C1;
  static constexpr auto kInvLift = kroiWTInvColLift_B53_JPEG2K_32s_C1;
  static constexpr auto kFwdStep = kroiWTFwdColStep_B53_JPEG2K_32s_C1;
  static constexpr auto kInvStep = kroiWTInvColStep_B53_JPEG2K_32s_C1;
  static constexpr int64_t kSafe = int64_t{1} << 28;
};

template <class T>
KroStatus FwdInPlace(Plane<T>& img, const KroiRect& r) {
  int size = -1;
  EXPECT_EQ(B53<T>::kSizeIR(&r, &size), kroStatusOk);
  ExactBuffer buf(size);
  return B53<T>::kFwdIR(img.data(), img.step(), &r, buf.get());
}
template <class T>
KroStatus InvInPlace(Plane<T>& img, const KroiRect& r) {
  int size = -1;
  EXPECT_EQ(B53<T>::kSizeIR(&r, &size), kroStatusOk);
  ExactBuffer buf(size);
  return B53<T>::kInvIR(img.data(), img.step(), &r, buf.get());
}

// ---- Argument checks ----------------------------------------------------------------

TEST(Wavelet53, ArgumentChecksInDocumentedOrder) {
  Kro32s img[64] = {}, b0[16], b1[16], b2[16], b3[16];
  Kro8u buf[4096];
  const KroiRect rect{0, 0, 4, 4}, bad_rect{0, 0, 0, 4};
  Kro32s* bands[4] = {b0, b1, b2, b3};
  const Kro32s* cbands[4] = {b0, b1, b2, b3};
  int steps[4] = {8, 8, 8, 8}, bad_steps[4] = {8, 8, 0, 8};
  Kro32s* null_bands[4] = {b0, nullptr, b2, b3};
  const Kro32s* cnull_bands[4] = {b0, b1, nullptr, b3};
  const KroiSize sz{2, 2}, bad_sz{2, 0};
  int size;

  struct Case {
    const char* what;
    KroStatus got, want;
  };
  const Case cases[] = {
      {"IR null image before step", kroiWTFwd_B53_JPEG2K_32s_C1IR(nullptr, 0, &rect, buf), kroStatusNullPointer},
      {"IR step before rect", kroiWTInv_B53_JPEG2K_32s_C1IR(img, 0, nullptr, buf), kroStatusBadStep},
      {"IR null rect", kroiWTFwd_B53_JPEG2K_16s_C1IR(reinterpret_cast<Kro16s*>(img), 8, nullptr, buf),
       kroStatusNullPointer},
      {"IR null buffer", kroiWTInv_B53_JPEG2K_32s_C1IR(img, 16, &rect, nullptr), kroStatusNullPointer},
      {"R null buffer before src step", kroiWTFwd_B53_JPEG2K_32s_C1R(img, 0, bands, steps, &rect, nullptr),
       kroStatusNullPointer},
      {"R null step array", kroiWTFwd_B53_JPEG2K_32s_C1R(img, 0, bands, nullptr, &rect, buf), kroStatusNullPointer},
      {"R src step before band pointer", kroiWTFwd_B53_JPEG2K_32s_C1R(img, 0, null_bands, steps, &rect, buf),
       kroStatusBadStep},
      {"R band pointer before band step", kroiWTFwd_B53_JPEG2K_32s_C1R(img, 16, null_bands, bad_steps, &rect, buf),
       kroStatusNullPointer},
      {"R band step before size", kroiWTFwd_B53_JPEG2K_32s_C1R(img, 16, bands, bad_steps, &bad_rect, buf),
       kroStatusBadStep},
      {"R size", kroiWTFwd_B53_JPEG2K_32s_C1R(img, 16, bands, steps, &bad_rect, buf), kroStatusBadSize},
      {"R inverse dst step before band pointer",
       kroiWTInv_B53_JPEG2K_32s_C1R(cnull_bands, steps, img, -1, &rect, buf), kroStatusBadStep},
      {"R inverse band pointer", kroiWTInv_B53_JPEG2K_32s_C1R(cnull_bands, bad_steps, img, 16, &rect, buf),
       kroStatusNullPointer},
      {"R inverse band step", kroiWTInv_B53_JPEG2K_32s_C1R(cbands, bad_steps, img, 16, &bad_rect, buf),
       kroStatusBadStep},
      {"R inverse size", kroiWTInv_B53_JPEG2K_32s_C1R(cbands, steps, img, 16, &bad_rect, buf), kroStatusBadSize},
      {"Row null before step", kroiWTFwdRow_B53_JPEG2K_32s_C1R(img, 0, nullptr, 8, b1, 8, bad_sz, 0),
       kroStatusNullPointer},
      {"Row step before size", kroiWTInvRow_B53_JPEG2K_32s_C1R(img, 8, b0, 8, bad_sz, b1, 0, 0), kroStatusBadStep},
      {"Row size", kroiWTFwdRow_B53_JPEG2K_32s_C1R(img, 8, b0, 8, b1, 8, bad_sz, 1), kroStatusBadSize},
      {"Col null before step", kroiWTInvCol_B53_JPEG2K_32s_C1R(img, 0, b0, 8, sz, nullptr, 8, 0),
       kroStatusNullPointer},
      {"Col step before size", kroiWTFwdCol_B53_JPEG2K_32s_C1R(img, 8, b0, -8, b1, 8, bad_sz, 0),
       kroStatusBadStep},
      {"Col size", kroiWTInvCol_B53_JPEG2K_32s_C1R(img, 8, b0, 8, KroiSize{0, 1}, b1, 8, 0), kroStatusBadSize},
      {"ColLift null before width", kroiWTFwdColLift_B53_JPEG2K_32s_C1(img, img, img, b0, nullptr, b1, 0),
       kroStatusNullPointer},
      {"ColLift width", kroiWTFwdColLift_B53_JPEG2K_32s_C1(img, img, img, b0, b1, b1, 0), kroStatusBadSize},
      {"ColStep inverse null", kroiWTInvColStep_B53_JPEG2K_32s_C1(img, img, img, img, b0, nullptr, -1),
       kroStatusNullPointer},
      {"ColStep inverse width", kroiWTInvColStep_B53_JPEG2K_32s_C1(img, img, img, img, b0, b1, -1),
       kroStatusBadSize},
      {"BufSize null rect", kroiWTGetBufSize_B53_JPEG2K_16s_C1R(nullptr, &size), kroStatusNullPointer},
      {"BufSize null result", kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&rect, nullptr), kroStatusNullPointer},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, c.want) << c.what;
  for (Kro32s v : img) EXPECT_EQ(v, 0);  // no failed call wrote anything
}

// ---- Hand-computed vectors ------------------------------------------------------

TEST(Wavelet53, HandComputedVectors) {
  {  // One sample at an odd column: doubled forward, halved toward zero inverse.
    Plane<Kro16s> p(1, 1);
    p.at(0, 0) = -3;
    ASSERT_EQ(FwdInPlace(p, KroiRect{1, 0, 1, 1}), kroStatusOk);
    EXPECT_EQ(p.at(0, 0), -6);
    p.at(0, 0) = -3;
    ASSERT_EQ(InvInPlace(p, KroiRect{1, 0, 1, 1}), kroStatusOk);
    EXPECT_EQ(p.at(0, 0), -1);
  }
  {  // Two samples: (a, b) -> (a + ((b - a + 1) >> 1), b - a); at odd x the roles swap.
    Plane<Kro32s> p(2, 1);
    p.at(0, 0) = 10, p.at(1, 0) = 3;
    ASSERT_EQ(FwdInPlace(p, KroiRect{0, 0, 2, 1}), kroStatusOk);
    EXPECT_EQ(p.at(0, 0), 10 + ((3 - 10 + 1) >> 1));
    EXPECT_EQ(p.at(1, 0), -7);
    p.at(0, 0) = 10, p.at(1, 0) = 3;
    ASSERT_EQ(FwdInPlace(p, KroiRect{5, 0, 2, 1}), kroStatusOk);
    EXPECT_EQ(p.at(0, 0), 3 + ((10 - 3 + 1) >> 1));
    EXPECT_EQ(p.at(1, 0), 7);
  }
  {  // Full-scale 16-bit input wraps: the high-pass 65535 is stored as -1.
    Plane<Kro16s> p(3, 1);
    p.at(0, 0) = -32768, p.at(1, 0) = 32767, p.at(2, 0) = -32768;
    ASSERT_EQ(FwdInPlace(p, KroiRect{0, 0, 3, 1}), kroStatusOk);
    EXPECT_EQ(p.at(2, 0), -1);
    // The lows read the wrapped high: -32768 + ((-1 + -1 + 2) >> 2).
    EXPECT_EQ(p.at(0, 0), -32768);
  }
  {  // A 16s two-sample line updates with the unwrapped difference (65535 here).
    Plane<Kro16s> p(1, 2);
    p.at(0, 0) = -32768, p.at(0, 1) = 32767;
    ASSERT_EQ(FwdInPlace(p, KroiRect{0, 0, 1, 2}), kroStatusOk);
    EXPECT_EQ(p.at(0, 1), -1);
    EXPECT_EQ(p.at(0, 0), 0);  // -32768 + 32768
  }
  {  // Four samples at even x: s = (5, 9) -> d0 = 7 - 7 = 0, d1 = 1 - 9 = -8 (mirror).
    Plane<Kro32s> p(4, 1);
    const int x[4] = {5, 7, 9, 1};
    for (int i = 0; i < 4; ++i) p.at(i, 0) = x[i];
    ASSERT_EQ(FwdInPlace(p, KroiRect{0, 0, 4, 1}), kroStatusOk);
    // d0 = 7 - ((5 + 9) >> 1) = 0; d1 = 1 - ((9 + 9) >> 1) = -8;
    // s0 = 5 + ((0 + 0 + 2) >> 2) = 5; s1 = 9 + ((0 - 8 + 2) >> 2) = 7.
    EXPECT_EQ(p.at(0, 0), 5);
    EXPECT_EQ(p.at(1, 0), 7);
    EXPECT_EQ(p.at(2, 0), 0);
    EXPECT_EQ(p.at(3, 0), -8);
  }
  int size = -1;
  KroiRect r{0, 0, 2, 2};
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_16s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 0);
  r = {0, 0, 3, 1};
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_16s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 2 * 3 + 8);
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 4 * (3 + 4));
  r = {0, 0, 17, 5};  // rows of 68 bytes round up to 96
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_32s_C1R(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 96 * 5 + 4 * (17 + 4));
  r = {0, 0, 2, 2};
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_16s_C1R(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 32 * 2);
  r = {0, 0, 1 << 30, 3};  // the line size is computed in 64 bits, kept as 32
  EXPECT_EQ(kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, static_cast<int>(static_cast<uint32_t>(4 * ((int64_t{1} << 30) + 4))));
}

// ---- Against the lifting definition, every size and phase -------------------------

template <class T>
void CheckAgainstDefinition(int max_side, int64_t lo, int64_t hi, bool round_trip) {
  Rng rng(53 + sizeof(T));
  SCOPED_TRACE(::testing::Message() << sizeof(T) * 8 << "-bit samples in [" << lo << ", " << hi << "]");
  for (int h = 1; h <= max_side; ++h) {
    for (int w = 1; w <= max_side; ++w) {
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{(parity & 1) + 2 * w, (parity >> 1) - 4, w, h};
        Plane<T> img(w, h, 1), want(w, h, 1);
        rng.Fill(img.data(), img.v.size(), lo, hi);
        want.v = img.v;
        const Plane<T> orig = img;
        Fwd53Tile(want, r.x & 1, r.y & 1);
        ASSERT_EQ(FwdInPlace(img, r), kroStatusOk);
        int bx = 0, by = 0;
        ASSERT_TRUE(SamePlane(img, want, &bx, &by)) << w << "x" << h << " parity " << parity << " at " << bx
                                                    << "," << by;
        if (!round_trip) continue;
        ASSERT_EQ(InvInPlace(img, r), kroStatusOk);
        ASSERT_TRUE(SamePlane(img, orig, &bx, &by)) << w << "x" << h << " parity " << parity << " at " << bx
                                                    << "," << by;
      }
    }
  }
}

TEST(Wavelet53, InPlaceMatchesLiftingDefinitionAndRoundTrips) {
  CheckAgainstDefinition<Kro32s>(67, -B53<Kro32s>::kSafe, B53<Kro32s>::kSafe, true);
  CheckAgainstDefinition<Kro16s>(40, -B53<Kro16s>::kSafe, B53<Kro16s>::kSafe, true);
  // Full-range 16-bit samples: every step wraps as the stored value.
  CheckAgainstDefinition<Kro16s>(12, -32768, 32767, false);
}

// Tiles of more than 32768 rows take their columns one at a time.
TEST(Wavelet53, VeryTallTiles) {
  Rng rng(32769);
  for (int p = 0; p < 2; ++p) {
    Plane<Kro32s> img(2, 32769 + p), want(2, 32769 + p);
    rng.Fill(img.data(), img.v.size(), -1000, 1000);
    want.v = img.v;
    const Plane<Kro32s> orig = img;
    Fwd53Tile(want, 0, p);
    ASSERT_EQ(FwdInPlace(img, KroiRect{0, p, 2, img.h}), kroStatusOk);
    EXPECT_TRUE(SamePlane(img, want));
    ASSERT_EQ(InvInPlace(img, KroiRect{0, p, 2, img.h}), kroStatusOk);
    EXPECT_TRUE(SamePlane(img, orig));
  }
}

// The inverse on coefficients it did not produce, against the definition too (the
// round trips above only reach the forward's image).
TEST(Wavelet53, InverseMatchesLiftingDefinition) {
  Rng rng(7);
  for (int n = 1; n <= 40; ++n) {
    for (int p = 0; p < 2; ++p) {
      Plane<Kro16s> img(n, 1);
      rng.Fill(img.data(), img.v.size(), -32768, 32767);
      std::vector<Kro16s> want(img.v.begin(), img.v.end());
      want = Inv53Line(FromBands(want, p), p);
      ASSERT_EQ(InvInPlace(img, KroiRect{p, 0, n, 1}), kroStatusOk);
      EXPECT_EQ(img.v, want) << n << " " << p;
    }
  }
}

// ---- Out of place, several levels ---------------------------------------------------

template <class T>
void CheckOutOfPlace(int w, int h, int px, int py, Rng& rng) {
  const KroiRect r{px, py + 10, w, h};
  Plane<T> src(w, h, 3);
  rng.Fill(src.data(), src.v.size(), -B53<T>::kSafe, B53<T>::kSafe);
  Plane<T> inplace = src;
  ASSERT_EQ(FwdInPlace(inplace, r), kroStatusOk);

  // Bands sized (w + 1) / 2 etc. whatever the parity, cut from the same places.
  const int wl = (w + 1) / 2, hl = (h + 1) / 2;
  const int bx[4] = {0, 0, wl, wl}, by[4] = {0, hl, 0, hl};
  const int bw[4] = {wl, wl, w / 2, w / 2}, bh[4] = {hl, h / 2, hl, h / 2};
  std::vector<Plane<T>> band;
  for (int b = 0; b < 4; ++b) band.emplace_back(std::max(bw[b], 1), std::max(bh[b], 1), b);
  T* dst[4];
  int steps[4];
  for (int b = 0; b < 4; ++b) dst[b] = band[b].data(), steps[b] = band[b].step();
  int size = -1;
  ASSERT_EQ(B53<T>::kSizeR(&r, &size), kroStatusOk);
  {
    ExactBuffer buf(size);
    ASSERT_EQ(B53<T>::kFwdR(src.data(), src.step(), dst, steps, &r, buf.get()), kroStatusOk);
  }
  for (int b = 0; b < 4; ++b)
    for (int y = 0; y < bh[b]; ++y)
      for (int x = 0; x < bw[b]; ++x)
        ASSERT_EQ(band[b].at(x, y), inplace.at(bx[b] + x, by[b] + y)) << "band " << b << " " << w << "x" << h;

  Plane<T> back(w, h, 2);
  const T* cdst[4] = {dst[0], dst[1], dst[2], dst[3]};
  ExactBuffer buf(size);
  ASSERT_EQ(B53<T>::kInvR(cdst, steps, back.data(), back.step(), &r, buf.get()), kroStatusOk);
  ASSERT_TRUE(SamePlane(back, src)) << w << "x" << h;
}

TEST(Wavelet53, OutOfPlaceCutsBandsFromSizeAloneAndRoundTrips) {
  Rng rng(11);
  for (int w : {1, 2, 3, 4, 5, 8, 13, 32, 33})
    for (int h : {1, 2, 3, 6, 7, 31})
      for (int parity = 0; parity < 4; ++parity) {
        CheckOutOfPlace<Kro16s>(w, h, parity & 1, parity >> 1, rng);
        CheckOutOfPlace<Kro32s>(w, h, parity & 1, parity >> 1, rng);
      }
}

template <class T>
void CheckLevels(int w, int h, int x0, int y0, Rng& rng) {
  Plane<T> img(w, h, 5);
  rng.Fill(img.data(), img.v.size(), -B53<T>::kSafe / 8, B53<T>::kSafe / 8);
  const Plane<T> orig = img;
  std::vector<KroiRect> levels;
  KroiRect r{x0, y0, w, h};
  for (int l = 0; l < 4 && r.width > 0 && r.height > 0; ++l) {
    levels.push_back(r);
    ASSERT_EQ(FwdInPlace(img, r), kroStatusOk);
    // The LL band is the top-left quadrant; its origin is the reference grid halved up.
    const int nx = (r.x + 1) >> 1, ny = (r.y + 1) >> 1;
    r = {nx, ny, LowCount(r.width, r.x & 1), LowCount(r.height, r.y & 1)};
  }
  for (auto it = levels.rbegin(); it != levels.rend(); ++it) ASSERT_EQ(InvInPlace(img, *it), kroStatusOk);
  EXPECT_TRUE(SamePlane(img, orig)) << w << "x" << h << " at " << x0 << "," << y0;
}

TEST(Wavelet53, SeveralLevelsRoundTrip) {
  Rng rng(5);
  for (int x0 : {0, 1, 2, 3})
    for (int y0 : {0, 1, 6, 7}) {
      CheckLevels<Kro16s>(61, 45, x0, y0, rng);
      CheckLevels<Kro32s>(64, 37, x0, y0, rng);
      CheckLevels<Kro32s>(9, 130, x0, y0, rng);
    }
}

// Rows and work buffers at odd byte addresses give the same results.
template <class T>
void CheckOddAddresses(int w, int h, Rng& rng) {
  Plane<T> img(w, h);
  rng.Fill(img.data(), img.v.size(), -B53<T>::kSafe, B53<T>::kSafe);
  const KroiRect r{1, 0, w, h};
  const int step = w * static_cast<int>(sizeof(T)) + 3;
  std::vector<uint8_t> bytes(static_cast<size_t>(step) * h + 1);
  for (int y = 0; y < h; ++y) memcpy(&bytes[1 + static_cast<size_t>(y) * step], img.row(y), w * sizeof(T));
  int size = -1;
  ASSERT_EQ(B53<T>::kSizeIR(&r, &size), kroStatusOk);
  std::vector<uint8_t> buf(static_cast<size_t>(size) + 1);
  T* odd = reinterpret_cast<T*>(&bytes[1]);
  ASSERT_EQ(B53<T>::kFwdIR(odd, step, &r, &buf[1]), kroStatusOk);
  ASSERT_EQ(FwdInPlace(img, r), kroStatusOk);
  for (int y = 0; y < h; ++y) EXPECT_EQ(memcmp(&bytes[1 + static_cast<size_t>(y) * step], img.row(y), w * sizeof(T)), 0);
  ASSERT_EQ(B53<T>::kInvIR(odd, step, &r, &buf[1]), kroStatusOk);
  ASSERT_EQ(InvInPlace(img, r), kroStatusOk);
  for (int y = 0; y < h; ++y) EXPECT_EQ(memcmp(&bytes[1 + static_cast<size_t>(y) * step], img.row(y), w * sizeof(T)), 0);
}

TEST(Wavelet53, OddAddressesAndSteps) {
  Rng rng(1);
  CheckOddAddresses<Kro16s>(21, 18, rng);
  CheckOddAddresses<Kro32s>(9, 13, rng);
}

// ---- Region forms against the 2D transform ----------------------------------------

// Rows of 2w samples (phase p) with the neighbours the forward row form reads,
// filled by symmetric extension, each row in memory of exactly that size.
template <class T>
void CheckRowForms(int w, int rows, int p, Rng& rng) {
  const int n = 2 * w;
  const int left = p ? 1 : 2, right = p ? 2 : 1;
  Plane<T> tile(n, 1);
  Plane<T> src(n + left + right, rows), low(w, rows), high(w, rows);
  std::vector<Plane<T>> tiles;
  for (int y = 0; y < rows; ++y) {
    rng.Fill(tile.data(), n, -B53<T>::kSafe, B53<T>::kSafe);
    for (int i = -left; i < n + right; ++i) src.at(i + left, y) = tile.at(Mirror(i, 0, n), 0);
    tiles.push_back(tile);
    ASSERT_EQ(FwdInPlace(tiles.back(), KroiRect{p, 0, n, 1}), kroStatusOk);
  }
  const KroiSize size{w, rows};
  ASSERT_EQ(B53<T>::kFwdRow(&src.at(left, 0), src.step(), low.data(), low.step(), high.data(), high.step(), size,
                            p ? -3 : 0),
            kroStatusOk);
  for (int y = 0; y < rows; ++y)
    for (int k = 0; k < w; ++k) {
      ASSERT_EQ(low.at(k, y), tiles[y].at(k, 0)) << "w " << w << " p " << p << " k " << k;
      ASSERT_EQ(high.at(k, y), tiles[y].at(w + k, 0)) << "w " << w << " p " << p << " k " << k;
    }

  // Inverse: the band neighbours are those of the extended interleaved sequence.
  const int l_left = p ? 1 : 0, l_right = p ? 0 : 1;
  Plane<T> lowx(w + l_left + l_right, rows), highx(w + 2, rows), out(n, rows);
  for (int y = 0; y < rows; ++y) {
    auto coef = [&](int u) {  // interleaved coefficient at position u (u = i + p)
      const int m = Mirror(u, p, p + n) - p;
      return tiles[y].at(((m + p) & 1) ? w + m / 2 : m / 2, 0);
    };
    for (int k = -l_left; k < w + l_right; ++k) lowx.at(k + l_left, y) = coef(2 * k + 2 * p);
    for (int k = -1; k <= w; ++k) highx.at(k + 1, y) = coef(2 * k + 1);
  }
  ASSERT_EQ(B53<T>::kInvRow(&lowx.at(l_left, 0), lowx.step(), &highx.at(1, 0), highx.step(), size, out.data(),
                            out.step(), p),
            kroStatusOk);
  for (int y = 0; y < rows; ++y) {
    Plane<T> t = tiles[y];
    ASSERT_EQ(InvInPlace(t, KroiRect{p, 0, n, 1}), kroStatusOk);
    for (int i = 0; i < n; ++i) ASSERT_EQ(out.at(i, y), t.at(i, 0)) << "w " << w << " p " << p << " i " << i;
  }

  // The column forms give the same on the transposed layout.
  Plane<T> srcT(rows, n + left + right), lowT(rows, w), highT(rows, w), outT(rows, n);
  for (int y = 0; y < rows; ++y)
    for (int i = 0; i < n + left + right; ++i) srcT.at(y, i) = src.at(i, y);
  const KroiSize sizeT{rows, w};
  ASSERT_EQ(B53<T>::kFwdCol(&srcT.at(0, left), srcT.step(), lowT.data(), lowT.step(), highT.data(), highT.step(),
                            sizeT, p),
            kroStatusOk);
  Plane<T> lowxT(rows, w + l_left + l_right), highxT(rows, w + 2);
  for (int y = 0; y < rows; ++y) {
    for (int k = 0; k < w; ++k) {
      ASSERT_EQ(lowT.at(y, k), low.at(k, y));
      ASSERT_EQ(highT.at(y, k), high.at(k, y));
    }
    for (int k = 0; k < w + l_left + l_right; ++k) lowxT.at(y, k) = lowx.at(k, y);
    for (int k = 0; k < w + 2; ++k) highxT.at(y, k) = highx.at(k, y);
  }
  ASSERT_EQ(B53<T>::kInvCol(&lowxT.at(0, l_left), lowxT.step(), &highxT.at(0, 1), highxT.step(), sizeT,
                            outT.data(), outT.step(), p),
            kroStatusOk);
  for (int y = 0; y < rows; ++y)
    for (int i = 0; i < n; ++i) ASSERT_EQ(outT.at(y, i), out.at(i, y));
}

TEST(Wavelet53, RegionFormsMatch2DBandForBand) {
  Rng rng(97);
  for (int w = 1; w <= 20; ++w)
    for (int p = 0; p < 2; ++p) {
      CheckRowForms<Kro16s>(w, 18, p, rng);  // the column forms take 16 columns at a time
      CheckRowForms<Kro32s>(w, 2 + 16 * (w % 3), p, rng);
    }
}

// 16s region forms wrap the values they do not store, like the 2D kernel stores them.
TEST(Wavelet53, RegionFormsWrapUnstoredValues) {
  Rng rng(3);
  for (int w = 1; w <= 6; ++w)
    for (int p = 0; p < 2; ++p)
      for (int rep = 0; rep < 20; ++rep) {
        const int n = 2 * w, left = p ? 1 : 2, right = p ? 2 : 1;
        Plane<Kro16s> tile(n, 1), src(n + left + right, 1), low(w, 1), high(w, 1);
        rng.Fill(tile.data(), n, -32768, 32767);
        for (int i = -left; i < n + right; ++i) src.at(i + left, 0) = tile.at(Mirror(i, 0, n), 0);
        ASSERT_EQ(kroiWTFwdRow_B53_JPEG2K_16s_C1R(&src.at(left, 0), src.step(), low.data(), low.step(),
                                                  high.data(), high.step(), KroiSize{w, 1}, p),
                  kroStatusOk);
        std::vector<Kro16s> want = ToBands(Fwd53Line(tile.v, p), p);
        if (n == 2) continue;  // two-sample 2D lines use the unwrapped difference
        for (int k = 0; k < w; ++k) {
          ASSERT_EQ(low.at(k, 0), want[k]);
          ASSERT_EQ(high.at(k, 0), want[w + k]);
        }
      }
}

// ---- Streaming column steps ---------------------------------------------------------

// Runs a column of H rows (first row of parity p) through ColLift the way a caller
// would: the source rows beyond the ends are the mirrored rows, d[-1] at an even
// start comes from a first call for d[0], and the high row is updated in place.
template <class T>
Plane<T> FwdByLift(const Plane<T>& img, int p, bool step_name) {
  const int W = img.w, H = img.h;
  auto fwd = step_name ? B53<T>::kFwdStep : B53<T>::kFwdLift;
  auto row = [&](int k) { return img.row(Mirror(k, p, p + H) - p); };
  Plane<T> out(W, H);
  std::vector<T> hrow(W), lrow(W);
  const int nl = LowCount(H, p);
  if (p == 0) EXPECT_EQ(fwd(row(0), row(1), row(2), lrow.data(), hrow.data(), hrow.data(), W), kroStatusOk);
  for (int n = 0; 2 * n <= p + H - 1; ++n) {
    EXPECT_EQ(fwd(row(2 * n), row(2 * n + 1), row(2 * n + 2), lrow.data(), hrow.data(), hrow.data(), W),
              kroStatusOk);
    const int ke = 2 * n, ko = 2 * n + 1;
    for (int x = 0; x < W; ++x) {
      if (ke >= p && ke < p + H) out.at(x, ke / 2 - p) = lrow[x];
      if (ko >= p && ko < p + H) out.at(x, nl + (ko - 1) / 2) = hrow[x];
    }
  }
  return out;
}

template <class T>
Plane<T> InvByLift(const Plane<T>& bands, int p, bool step_name) {
  const int W = bands.w, H = bands.h;
  auto inv = step_name ? B53<T>::kInvStep : B53<T>::kInvLift;
  const int nl = LowCount(H, p);
  auto coef = [&](int k) {
    const int m = Mirror(k, p, p + H);
    return bands.row((m & 1) ? nl + (m - 1) / 2 : m / 2 - p);
  };
  Plane<T> out(W, H);
  std::vector<T> even(W), prev(W), odd(W);
  for (int n = 0; n <= (p + H) / 2; ++n) {
    EXPECT_EQ(inv(coef(2 * n), coef(2 * n - 1), coef(2 * n + 1), prev.data(), odd.data(), even.data(), W),
              kroStatusOk);
    for (int x = 0; x < W; ++x) {
      if (2 * n >= p && 2 * n < p + H) out.at(x, 2 * n - p) = even[x];
      if (2 * n - 1 >= p && 2 * n - 1 < p + H) out.at(x, 2 * n - 1 - p) = odd[x];
    }
    prev.swap(even);
  }
  return out;
}

template <class T>
void CheckLift(int W, int H, int p, Rng& rng) {
  Plane<T> img(W, H);
  rng.Fill(img.data(), img.v.size(), -B53<T>::kSafe, B53<T>::kSafe);
  // The vertical pass alone: each column as a one-column tile.
  Plane<T> want(W, H);
  for (int x = 0; x < W; ++x) {
    Plane<T> col(1, H);
    for (int y = 0; y < H; ++y) col.at(0, y) = img.at(x, y);
    ASSERT_EQ(FwdInPlace(col, KroiRect{0, p, 1, H}), kroStatusOk);
    for (int y = 0; y < H; ++y) want.at(x, y) = col.at(0, y);
  }
  for (bool step_name : {false, true}) {
    const Plane<T> got = FwdByLift(img, p, step_name);
    ASSERT_TRUE(SamePlane(got, want)) << "H " << H << " p " << p;
    ASSERT_TRUE(SamePlane(InvByLift(got, p, step_name), img)) << "H " << H << " p " << p;
  }
}

TEST(Wavelet53, ColLiftMatchesVerticalPass) {
  Rng rng(21);
  for (int H = 3; H <= 24; ++H)
    for (int p = 0; p < 2; ++p) {
      CheckLift<Kro16s>(5, H, p, rng);
      CheckLift<Kro32s>(3, H, p, rng);
    }
}

}  // namespace
