// SPDX-License-Identifier: BSD-3-Clause
// The irreversible 9/7 wavelet: every form against a transform written from the
// lifting equations on the extended signal (bit for bit in each arithmetic), error
// bounds against double precision, the streaming column steps, exact buffer sizes.
#include <gtest/gtest.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include <bit>
#include <cstdio>
#include <type_traits>
#include <vector>

#include "kroj.h"
#include "ref/wavelet_ref.h"
#include "simd_test_util.h"
#include "test_util.h"
#include "wavelet_test_util.h"

namespace {

using namespace kro_test;

// ---- The lifting equations over full arrays of the extended line ------------------
//
// An arithmetic R gives: First (the alpha step on raw samples), In (a raw sample as a
// lifted value), Lift / UnLift (x +- c (a + b)), Scale / Unscale and Out.

constexpr float kA = std::bit_cast<float>(0xBFCB0673u), kB = std::bit_cast<float>(0xBD5901AEu),
                kG = std::bit_cast<float>(0x3F620676u), kD = std::bit_cast<float>(0x3EE31355u),
                kK = std::bit_cast<float>(0x3F9D7658u), kIK = std::bit_cast<float>(0x3F5019C3u);
int32_t Q(double c, int bits) { return static_cast<int32_t>(lround(c * (1 << bits))); }

struct Float {  // single precision, (a + b), times c, added: three roundings
  using S = float;
  using I = float;
  static constexpr float kC[6] = {kA, kB, kG, kD, kK, kIK};
  static I In(S v) { return v; }
  static I First(S x, S a, S b) { return Lift(x, a, b, kA); }
  static I Lift(I x, I a, I b, float c) { return x + (a + b) * c; }
  static I UnLift(I x, I a, I b, float c) { return x - (a + b) * c; }
  static S Scale(I v, float c) { return v * c; }
  static I Unscale(S v, float c) { return v * c; }
  static S Out(I v) { return v; }
};
struct Fixed14 {  // 16s: v + ((c (a + b) + 8192) >> 14), kept as 16 bits
  using S = int16_t;
  using I = int16_t;
  static constexpr float kC[6] = {kA, kB, kG, kD, kK, kIK};
  static I In(S v) { return v; }
  static I First(S x, S a, S b) { return Lift(x, a, b, kA); }
  static I Lift(I x, I a, I b, float c) {
    return static_cast<I>(x + ((Q(c, 14) * (a + b) + 8192) >> 14));
  }
  static I UnLift(I x, I a, I b, float c) {
    return static_cast<I>(x - ((Q(c, 14) * (a + b) + 8192) >> 14));
  }
  static S Scale(I v, float c) { return static_cast<S>((v * Q(c, 14) + 8192) >> 14); }
  static I Unscale(S v, float c) { return Scale(v, c); }
  static S Out(I v) { return v; }
};
struct Float32s : Float {  // 32s: floats, a wrapping integer first sum, saturating truncation
  using S = int32_t;
  static int32_t Sat(float v) {
    if (v >= 2147483648.0f) return v == 2147483648.0f ? INT32_MIN : INT32_MAX;
    return v < -2147483648.0f ? INT32_MIN : static_cast<int32_t>(v);
  }
  static I In(S v) { return static_cast<float>(v); }
  static I First(S x, S a, S b) {
    return static_cast<float>(x) +
           static_cast<float>(static_cast<int32_t>(uint32_t(a) + uint32_t(b))) * kA;
  }
  static S Scale(I v, float c) { return Sat(v * c); }
  static I Unscale(S v, float c) { return static_cast<float>(v) * c; }
  static S Out(I v) { return Sat(v); }
};
struct Exact {  // double precision and the filter's exact coefficients (T.800 table F.4)
  using S = double;
  using I = double;
  static constexpr double kC[6] = {-1.586134342059924, -0.052980118572961, 0.882911075530934,
                                   0.443506852043971,  1.230174104914001,  1 / 1.230174104914001};
  static I In(S v) { return v; }
  static I First(S x, S a, S b) { return Lift(x, a, b, kC[0]); }
  static I Lift(I x, I a, I b, double c) { return x + c * (a + b); }
  static I UnLift(I x, I a, I b, double c) { return x - c * (a + b); }
  static S Scale(I v, double c) { return v * c; }
  static I Unscale(S v, double c) { return v * c; }
  static S Out(I v) { return v; }
};

// Positions p-4 .. p+n+3; step t lifts the positions of its parity in [lo+t, hi-t].
template <class R>
std::vector<typename R::S> Fwd97(const std::vector<typename R::S>& x, int p) {
  using S = typename R::S;
  const int n = static_cast<int>(x.size()), lo = p - 4, hi = p + n + 3;
  if (n == 1)
    return {static_cast<S>(std::is_integral_v<S> ? S(uint64_t(x[0]) << p) : S(x[0] * (1 + p)))};
  auto X = [&](int k) { return x[Mirror(k, p, p + n) - p]; };
  std::vector<typename R::I> v(hi - lo + 1);
  auto at = [&](int k) -> auto& { return v[k - lo]; };
  for (int k = lo + 1; k < hi; ++k)
    at(k) = (k & 1) ? R::First(X(k), X(k - 1), X(k + 1)) : R::In(X(k));
  for (int t = 2; t <= 4; ++t)
    for (int k = lo + t; k <= hi - t; ++k)
      if ((k & 1) == (t & 1)) at(k) = R::Lift(at(k), at(k - 1), at(k + 1), R::kC[t - 1]);
  std::vector<S> y(n);
  for (int k = p; k < p + n; ++k) y[k - p] = R::Scale(at(k), R::kC[(k & 1) ? 4 : 5]);
  return y;
}

template <class R>
std::vector<typename R::S> Inv97(const std::vector<typename R::S>& y, int p) {
  using S = typename R::S;
  const int n = static_cast<int>(y.size()), lo = p - 4, hi = p + n + 3;
  if (n == 1) return {static_cast<S>(p ? y[0] / 2 : y[0])};
  std::vector<typename R::I> v(hi - lo + 1);
  auto at = [&](int k) -> auto& { return v[k - lo]; };
  for (int k = lo; k <= hi; ++k)
    at(k) = R::Unscale(y[Mirror(k, p, p + n) - p], R::kC[(k & 1) ? 5 : 4]);
  for (int t = 1; t <= 4; ++t)
    for (int k = lo + t; k <= hi - t; ++k)
      if ((k & 1) != (t & 1)) at(k) = R::UnLift(at(k), at(k - 1), at(k + 1), R::kC[4 - t]);
  std::vector<S> x(n);
  for (int k = p; k < p + n; ++k) x[k - p] = R::Out(at(k));
  return x;
}

template <class T>
using RefOf = std::conditional_t<std::is_same_v<T, Kro16s>, Fixed14,
                                 std::conditional_t<std::is_same_v<T, Kro32s>, Float32s, Float>>;

template <class T>
Plane<double> ToDouble(const Plane<T>& p) {
  Plane<double> d(p.w, p.h);
  for (size_t i = 0; i < p.v.size(); ++i) d.v[i] = p.v[i];
  return d;
}

template <class T>
void Fill(Plane<T>& p, Rng& rng, double range) {
  for (auto& v : p.v)
    v = static_cast<T>(std::is_integral_v<T> ? rng.Int(-range, range) : rng.Real(-range, range));
}

// ---- Typed access ----------------------------------------------------------------------

template <class T>
struct D97;
#define KROJ_D97_REGION(t)                                               \
  static constexpr auto kFwdRow = kroiWTFwdRow_D97_JPEG2K_##t##_C1R;     \
  static constexpr auto kInvRow = kroiWTInvRow_D97_JPEG2K_##t##_C1R;     \
  static constexpr auto kFwdLift = kroiWTFwdColLift_D97_JPEG2K_##t##_C1; \
  static constexpr auto kInvLift = kroiWTInvColLift_D97_JPEG2K_##t##_C1;
#define KROJ_D97_2D(t)                                                    \
  static constexpr auto kFwdIR = kroiWTFwd_D97_JPEG2K_##t##_C1IR,         \
                        kInvIR = kroiWTInv_D97_JPEG2K_##t##_C1IR;         \
  static constexpr auto kFwdR = kroiWTFwd_D97_JPEG2K_##t##_C1R;           \
  static constexpr auto kInvR = kroiWTInv_D97_JPEG2K_##t##_C1R;           \
  static constexpr auto kSizeIR = kroiWTGetBufSize_D97_JPEG2K_##t##_C1IR; \
  static constexpr auto kSizeR = kroiWTGetBufSize_D97_JPEG2K_##t##_C1R;
#define KROJ_D97_COL(t)                                              \
  static constexpr auto kFwdCol = kroiWTFwdCol_D97_JPEG2K_##t##_C1R; \
  static constexpr auto kInvCol = kroiWTInvCol_D97_JPEG2K_##t##_C1R;
template <>
struct D97<Kro16s> {
  KROJ_D97_REGION(16s) KROJ_D97_2D(16s)
};
template <>
struct D97<Kro32s> {
  KROJ_D97_REGION(32s) KROJ_D97_2D(32s) KROJ_D97_COL(32s)
};
template <>
struct D97<Kro32f> {
  KROJ_D97_REGION(32f) KROJ_D97_COL(32f)
};
#undef KROJ_D97_REGION
#undef KROJ_D97_2D
#undef KROJ_D97_COL

template <class T>
KroStatus InPlace(bool fwd, Plane<T>& img, const KroiRect& r) {
  return kro_test::InPlace<D97<T>>(fwd, img, r);
}

// ---- Checks and hand values ---------------------------------------------------------

TEST(Wavelet97, ArgumentChecksInDocumentedOrder) {
  Kro32f f[16] = {};
  Kro16s s[64] = {};
  Kro8u buf[256];
  const KroiRect rect{0, 0, 4, 4};
  Kro16s* bands[4] = {s, s + 16, nullptr, s + 48};
  int steps[4] = {8, 8, 8, 0};
  const KroiSize bad{3, 0};
  EXPECT_EQ(kroiWTFwd_D97_JPEG2K_16s_C1IR(nullptr, 0, &rect, buf), kroStatusNullPointer);
  EXPECT_EQ(kroiWTInv_D97_JPEG2K_32s_C1IR(reinterpret_cast<Kro32s*>(s), 0, nullptr, nullptr),
            kroStatusBadStep);
  EXPECT_EQ(kroiWTFwd_D97_JPEG2K_16s_C1R(s, 0, bands, steps, &rect, buf), kroStatusBadStep);
  EXPECT_EQ(kroiWTFwd_D97_JPEG2K_16s_C1R(s, 8, bands, steps, &rect, buf), kroStatusNullPointer);
  EXPECT_EQ(kroiWTFwdRow_D97_JPEG2K_32f_C1R(f, 8, f, 8, f, 0, bad, 0), kroStatusBadStep);
  EXPECT_EQ(kroiWTInvRow_D97_JPEG2K_16s_C1R(s, 8, s, 8, bad, s, 8, 1), kroStatusBadSize);
  EXPECT_EQ(kroiWTFwdCol_D97_JPEG2K_32f_C1R(f, 0, nullptr, 8, f, 8, bad, 0), kroStatusNullPointer);
  EXPECT_EQ(kroiWTFwdColLift_D97_JPEG2K_32f_C1(f, f, f, f, f, f, f, nullptr, 0),
            kroStatusNullPointer);
  EXPECT_EQ(kroiWTInvColLift_D97_JPEG2K_16s_C1(s, s, s, s, s, s, s, s, 0), kroStatusBadSize);
  EXPECT_EQ(kroiWTFwdColStep_D97_JPEG2K_32f_C1(f, f, f, f, f, f, f, f, -1), kroStatusBadSize);
  EXPECT_EQ(kroiWTGetBufSize_D97_JPEG2K_32s_C1R(&rect, nullptr), kroStatusNullPointer);
  for (int k = 0; k < 64; ++k) EXPECT_TRUE(s[k] == 0 && f[k % 16] == 0);
}

TEST(Wavelet97, HandValues) {
  // The fixed-point coefficients are the floats rounded to 2^-14 and 2^-16.
  namespace r = kro::ref;
  const int32_t q14[6] = {r::kAlphaQ14, r::kBetaQ14, r::kGammaQ14,
                          r::kDeltaQ14, r::kKQ14,    r::kInvKQ14};
  const int32_t q16[6] = {r::kAlphaQ16,      r::kBetaQ16, r::kGammaQ16,
                          r::kDeltaOverKQ16, r::kKQ16,    r::kInvKQ16};
  const double c16[6] = {kA, kB, kG, static_cast<double>(kD) / kK, kK, kIK};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(q14[i], Q(Float::kC[i], 14)) << i;
  for (int i = 0; i < 6; ++i) EXPECT_EQ(q16[i], Q(c16[i], 16)) << i;
  EXPECT_EQ(r::kDeltaOverK, 0.36052364f);  // the nearest float, not the float quotient
  EXPECT_NE(r::kDeltaOverK, kD / kK);

  Plane<Kro32s> one(1, 1);  // one sample at an odd column doubles, and halves back
  one.at(0, 0) = -7;
  ASSERT_EQ(InPlace(true, one, KroiRect{3, 2, 1, 1}), kroStatusOk);
  EXPECT_EQ(one.at(0, 0), -14);
  one.at(0, 0) = -7;
  ASSERT_EQ(InPlace(false, one, KroiRect{3, 2, 1, 1}), kroStatusOk);
  EXPECT_EQ(one.at(0, 0), -3);

  int size = -1;
  const KroiRect r1{0, 0, 1, 1}, r2{0, 0, 2, 1}, r3{0, 0, 3, 9};
  EXPECT_TRUE(kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(&r1, &size) == kroStatusOk && size == 0);
  EXPECT_TRUE(kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(&r2, &size) == kroStatusOk &&
              size == 2 * 2 + 16);
  EXPECT_TRUE(kroiWTGetBufSize_D97_JPEG2K_32s_C1IR(&r3, &size) == kroStatusOk &&
              size == 4 * (9 + 8));
  EXPECT_TRUE(kroiWTGetBufSize_D97_JPEG2K_16s_C1R(&r3, &size) == kroStatusOk &&
              size == 32 * 9 + 2 * 17);

  EXPECT_EQ(r::SatTrunc32(2147483904.0f), INT32_MAX);
  EXPECT_EQ(r::SatTrunc32(2147483648.0f), INT32_MIN);  // as the truncating conversion gives it
  EXPECT_EQ(r::SatTrunc32(-3e9f), INT32_MIN);
  EXPECT_EQ(r::SatTrunc32(-2.9f), -2);
  for (int sign : {1, -1}) {  // high-pass values near +-3.2e9 saturate
    Plane<Kro32s> p(8, 1);
    for (int k = 0; k < 8; ++k) p.at(k, 0) = (k & 1) ? sign * INT32_MAX : -sign * (1 << 29);
    ASSERT_EQ(InPlace(true, p, KroiRect{0, 0, 8, 1}), kroStatusOk);
    for (int k = 4; k < 8; ++k) EXPECT_EQ(p.at(k, 0), sign > 0 ? INT32_MAX : INT32_MIN);
  }
}

// ---- 2D: exact against the definition, then within bounds of double precision ------

template <class T>
void CheckTiles(int max_side, double range) {
  Rng rng(97);
  SCOPED_TRACE(::testing::Message() << sizeof(T) * 8 << "-bit samples within +-" << range);
  for (int h = 1; h <= max_side; ++h)
    for (int w = 1; w <= max_side; ++w)
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{parity & 1, (parity >> 1) + 6, w, h};
        Plane<T> img(w, h, 2);
        Fill(img, rng, range);
        Plane<T> want = img;
        FwdTile(want, r.x & 1, r.y & 1, Fwd97<RefOf<T>>);
        ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
        ASSERT_EQ(MaxDiff(img, want), 0) << w << "x" << h << " parity " << parity;
        InvTile(want, r.x & 1, r.y & 1, Inv97<RefOf<T>>);
        ASSERT_EQ(InPlace(false, img, r), kroStatusOk);
        ASSERT_EQ(MaxDiff(img, want), 0) << w << "x" << h << " parity " << parity << " inverse";
      }
}

TEST(Wavelet97, InPlaceMatchesDefinitionExactly) {
  CheckTiles<Kro16s>(23, 2048);
  CheckTiles<Kro32s>(23, 1 << 24);
  CheckTiles<Kro16s>(9, 32767);         // 16-bit wrap at every step
  CheckTiles<Kro32s>(9, 2147483647.0);  // wrapping first sums and saturation
}

// Largest difference of a 2D level from double precision, and of forward + inverse
// from the input (printed: these are the figures the documentation quotes).
template <class T>
void Bounds2D(double range, double bound_fwd, double bound_rt) {
  Rng rng(1234);
  double fwd = 0, rt = 0;
  for (int w : {1, 2, 5, 16, 37})
    for (int h : {1, 3, 4, 29})
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{parity & 1, parity >> 1, w, h};
        Plane<T> img(w, h);
        Fill(img, rng, range);
        const Plane<T> orig = img;
        Plane<double> ref = ToDouble(img);
        FwdTile(ref, r.x & 1, r.y & 1, Fwd97<Exact>);
        ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
        fwd = std::max(fwd, MaxDiff(img, ref));
        ASSERT_EQ(InPlace(false, img, r), kroStatusOk);
        rt = std::max(rt, MaxDiff(img, orig));
      }
  printf("[ bounds   ] %zus 2D, samples within +-%g: |fwd - double| <= %g, |inv(fwd) - x| <= %g\n",
         sizeof(T) * 8, range, fwd, rt);
  EXPECT_LE(fwd, bound_fwd);
  EXPECT_LE(rt, bound_rt);
}

TEST(Wavelet97, IntegerFormsWithinBoundsOfDoublePrecision) {
  Bounds2D<Kro16s>(2048, 6, 6);
  Bounds2D<Kro32s>(1 << 20, 4, 6);
}

// ---- Region forms ---------------------------------------------------------------------

// Rows of 2w samples with the neighbours the row form reads (4 left and 3 right at
// phase 0, 3 and 4 at phase 1) from the symmetric extension, in memory of exactly that
// size; the inverse's band neighbours likewise. Exact against the definition; the
// column forms equal the row forms on the transposed layout. Returns the largest
// difference of the forward from double precision and of the round trip.
template <class T>
std::pair<double, double> CheckRegion(int w, int rows, int p, double range, Rng& rng) {
  const int n = 2 * w, left = 4 - p, right = 3 + p, l_left = 1 + p, l_right = 2 - p;
  Plane<T> src(n + 7, rows), low(w, rows), high(w, rows), lowx(w + 3, rows), highx(w + 4, rows),
      out(n, rows), want(n, rows), back(n, rows);
  double fwd_err = 0;
  for (int y = 0; y < rows; ++y) {
    Plane<T> line(n, 1);
    Fill(line, rng, range);
    for (int i = -left; i < n + right; ++i) src.at(i + left, y) = line.at(Mirror(i, 0, n), 0);
    const std::vector<T> bands = ToBands(Fwd97<RefOf<T>>(line.Row(0), p), p);
    const std::vector<double> exact =
        ToBands(Fwd97<Exact>(std::vector<double>(line.v.begin(), line.v.end()), p), p);
    for (int i = 0; i < n; ++i) fwd_err = std::max(fwd_err, fabs(bands[i] - exact[i]));
    want.SetRow(y, bands);
    back.SetRow(y, Inv97<RefOf<T>>(FromBands(bands, p), p));
    lowx.SetRow(y, ExtendedBand(bands, p, 2 * p, -l_left, w - 1 + l_right));
    highx.SetRow(y, ExtendedBand(bands, p, 1, -2, w + 1));
  }
  const KroiSize size{w, rows};
  EXPECT_EQ(D97<T>::kFwdRow(src.row(0) + left, src.step(), low.data(), low.step(), high.data(),
                            high.step(), size, p ? 9 : 0),
            kroStatusOk);
  EXPECT_EQ(D97<T>::kInvRow(lowx.row(0) + l_left, lowx.step(), highx.row(0) + 2, highx.step(), size,
                            out.data(), out.step(), p),
            kroStatusOk);
  for (int y = 0; y < rows; ++y)
    for (int k = 0; k < w; ++k)
      EXPECT_TRUE(low.at(k, y) == want.at(k, y) && high.at(k, y) == want.at(w + k, y))
          << "w " << w << " p " << p;
  EXPECT_EQ(MaxDiff(out, back), 0) << "w " << w << " p " << p;
  if constexpr (!std::is_same_v<T, Kro16s>) {
    const Plane<T> srcT = src.Transposed(), lowxT = lowx.Transposed(), highxT = highx.Transposed();
    Plane<T> lowT(rows, w), highT(rows, w), outT(rows, n);
    const KroiSize sizeT{rows, w};
    EXPECT_EQ(D97<T>::kFwdCol(srcT.row(left), srcT.step(), lowT.data(), lowT.step(), highT.data(),
                              highT.step(), sizeT, p),
              kroStatusOk);
    EXPECT_EQ(D97<T>::kInvCol(lowxT.row(l_left), lowxT.step(), highxT.row(2), highxT.step(), sizeT,
                              outT.data(), outT.step(), p),
              kroStatusOk);
    EXPECT_EQ(MaxDiff(lowT.Transposed(), low) + MaxDiff(highT.Transposed(), high), 0)
        << "w " << w << " p " << p;
    EXPECT_EQ(MaxDiff(outT.Transposed(), out), 0) << "w " << w << " p " << p;
  }
  Plane<T> orig(n, rows);
  for (int y = 0; y < rows; ++y)
    for (int i = 0; i < n; ++i) orig.at(i, y) = src.at(i + left, y);
  return {fwd_err, MaxDiff(out, orig)};
}

TEST(Wavelet97, RegionFormsMatchDefinitionExactly) {
  Rng rng(79);
  double fwd = 0, rt = 0;
  for (int w = 1; w <= 16; ++w)
    for (int p = 0; p < 2; ++p) {
      const auto [f, r] =
          CheckRegion<Kro32f>(w, 3 + 16 * (w % 3), p, 1.0, rng);  // 16 columns at a time
      fwd = std::max(fwd, f), rt = std::max(rt, r);
      CheckRegion<Kro32s>(w, 19, p, 1 << 24, rng);
      CheckRegion<Kro16s>(w, 3, p, 32767, rng);
    }
  printf("[ bounds   ] 32f rows, samples within +-1: |fwd - double| <= %g, |inv(fwd) - x| <= %g\n",
         fwd, rt);
  EXPECT_LE(fwd, 1e-6);
  EXPECT_LE(rt, 1e-6);
}

// ---- Streaming column steps ---------------------------------------------------------

// A tile's columns through the ColLift pipeline, mirrored rows supplied at both ends,
// starting early enough that the zeroed state rows have left the pipeline before the
// first output; forward into quadrant layout, inverse back.
template <class T>
Plane<T> ByLift(const Plane<T>& img, int p, bool fwd, bool step_name) {
  const int W = img.w, H = img.h, last = p + H - 1;
  std::vector<std::vector<T>> state(5, std::vector<T>(W));
  T* r[5] = {state[0].data(), state[1].data(), state[2].data(), state[3].data(), state[4].data()};
  Plane<T> out(W, H);
  // Forward rows are x(k); inverse rows the interleaved coefficient at position k.
  auto in = [&](int k) {
    const int j = Mirror(k, p, p + H) - p;
    return img.row(fwd ? j : BandIndex(j, H, p));
  };
  for (int n = -3; 2 * n - 3 <= last + 2; ++n) {
    KroStatus st;
    if (fwd) {  // r = lp, lc, hp2, hp, hc: low n-1 and high n-2 come out in lp, hp2
      auto f = D97<T>::kFwdLift;
      if constexpr (std::is_same_v<T, Kro32f>)
        f = step_name ? kroiWTFwdColStep_D97_JPEG2K_32f_C1 : f;
      st = f(in(2 * n), in(2 * n + 1), in(2 * n + 2), r[0], r[1], r[2], r[3], r[4], W);
      const int kl = 2 * n - 2, kh = 2 * n - 3;
      if (kl >= p && kl <= last) memcpy(out.row(BandIndex(kl - p, H, p)), r[0], W * sizeof(T));
      if (kh >= p && kh <= last) memcpy(out.row(BandIndex(kh - p, H, p)), r[2], W * sizeof(T));
      T* const old[5] = {r[0], r[1], r[2], r[3], r[4]};
      r[0] = old[1], r[1] = old[0], r[2] = old[3], r[3] = old[4], r[4] = old[2];
    } else {  // r = op, oc, ep2, ep, ec: x(2n-2) and x(2n-3) come out in ep, op
      auto f = D97<T>::kInvLift;
      if constexpr (std::is_same_v<T, Kro32f>)
        f = step_name ? kroiWTInvColStep_D97_JPEG2K_32f_C1 : f;
      st = f(in(2 * n), in(2 * n - 1), in(2 * n + 1), r[0], r[1], r[2], r[3], r[4], W);
      const int ke = 2 * n - 2, ko = 2 * n - 3;
      if (ke >= p && ke <= last) memcpy(out.row(ke - p), r[3], W * sizeof(T));
      if (ko >= p && ko <= last) memcpy(out.row(ko - p), r[0], W * sizeof(T));
      T* const old[5] = {r[0], r[1], r[2], r[3], r[4]};
      r[0] = old[1], r[1] = old[0], r[2] = old[3], r[3] = old[4], r[4] = old[2];
    }
    EXPECT_EQ(st, kroStatusOk);
  }
  return out;
}

// 32f: the forward pipeline is the other forms' arithmetic bit for bit; the inverse
// folds delta / K into one constant and is held to double precision. The 2^-16 forms
// are held to double precision both ways.
template <class T>
void CheckColLift(double range, double bound_fwd, double bound_rt) {
  Rng rng(31);
  double fwd = 0, rt = 0;
  for (int H = 2; H <= 19; ++H)
    for (int p = 0; p < 2; ++p) {
      Plane<T> img(std::is_same_v<T, Kro32f> ? 4 : 3, H);
      Fill(img, rng, range);
      const Plane<T> bands = ByLift(img, p, true, H & 1);
      for (int x = 0; x < img.w; ++x) {
        const std::vector<T> c = img.Column(x);
        if constexpr (std::is_same_v<T, Kro32f>)
          ASSERT_EQ(bands.Column(x), ToBands(Fwd97<Float>(c, p), p));
        const std::vector<double> exact =
            ToBands(Fwd97<Exact>(std::vector<double>(c.begin(), c.end()), p), p);
        for (int y = 0; y < H; ++y) fwd = std::max(fwd, fabs(bands.at(x, y) - exact[y]));
      }
      rt = std::max(rt, MaxDiff(ByLift(bands, p, false, H & 2), img));
    }
  printf(
      "[ bounds   ] %zu%c ColLift, samples within +-%g: |fwd - double| <= %g, |inv(fwd) - x| <= "
      "%g\n",
      sizeof(T) * 8, std::is_integral_v<T> ? 's' : 'f', range, fwd, rt);
  EXPECT_LE(fwd, bound_fwd);
  EXPECT_LE(rt, bound_rt);
}

TEST(Wavelet97, ColLift) {
  CheckColLift<Kro32f>(100, 2e-4, 1e-4);
  CheckColLift<Kro16s>(2048, 3, 6);
  CheckColLift<Kro32s>(2048, 3, 6);
  // The 2^-16 coefficients are good to about 5e-6 relative, which dominates for
  // large samples.
  CheckColLift<Kro32s>(1 << 20, 64, 16);
}

// ---- Every SIMD target against the reference kernels ---------------------------------

class Wavelet97Targets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(Wavelet97Targets);

TEST_P(Wavelet97Targets, LevelsMatchTheReference) {
  Rng rng(970);
  CheckLevelAgainstReference<Kro16s>(kroiWTFwd_D97_JPEG2K_16s_C1IR,
                                     kroiWTGetBufSize_D97_JPEG2K_16s_C1IR,
                                     kro::Fwd2DInPlace<Kro16s, kro::Fwd97Ref<Kro16s>>, rng);
  CheckLevelAgainstReference<Kro16s>(kroiWTInv_D97_JPEG2K_16s_C1IR,
                                     kroiWTGetBufSize_D97_JPEG2K_16s_C1IR,
                                     kro::Inv2DInPlace<Kro16s, kro::Inv97Ref<Kro16s>>, rng);
  CheckLevelAgainstReference<Kro32s>(kroiWTFwd_D97_JPEG2K_32s_C1IR,
                                     kroiWTGetBufSize_D97_JPEG2K_32s_C1IR,
                                     kro::Fwd2DInPlace<Kro32s, kro::Fwd97Ref<Kro32s>>, rng);
  CheckLevelAgainstReference<Kro32s>(kroiWTInv_D97_JPEG2K_32s_C1IR,
                                     kroiWTGetBufSize_D97_JPEG2K_32s_C1IR,
                                     kro::Inv2DInPlace<Kro32s, kro::Inv97Ref<Kro32s>>, rng);
  // A row whose lifted float lands exactly on 2^31 (stored as INT32_MIN, as the
  // truncating conversion gives it) next to two beyond it (INT32_MAX), through the
  // horizontal and the vertical pass.
  const Kro32s row[8] = {-1656079901, -838669814, 901501713, -123898510,
                         1729140449,  -584231040, 15715782,  1025349402};
  const Kro32s want[8] = {-1720276864, INT32_MIN, INT32_MAX,   -41870512,  // low-pass
                          -585545472,  INT32_MAX, -2043318400, 1507650048};
  for (const KroiRect r : {KroiRect{0, 0, 8, 1}, KroiRect{2, 4, 1, 8}}) {
    Kro32s img[8];
    Kro8u buf[64];
    memcpy(img, row, sizeof(img));
    ASSERT_EQ(kroiWTFwd_D97_JPEG2K_32s_C1IR(img, r.width * 4, &r, buf), kroStatusOk);
    EXPECT_EQ(memcmp(img, want, sizeof(img)), 0) << r.width;
  }
}

// Taller than 32768 rows the row moves keep their marks on the heap: in place against
// the definition, out of place against in place, both parities, split and short rows.
TEST_P(Wavelet97Targets, VeryTallTiles) {
  Rng rng(32770);
  for (int w : {2, 5})
    for (int py = 0; py < 2; ++py) {
      const KroiRect r{1, py, w, 32769 + py};
      Plane<Kro32s> img(w, r.height);
      Fill(img, rng, 1 << 20);
      Plane<Kro32s> want = img;
      FwdTile(want, 1, py, Fwd97<Float32s>);
      ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
      ASSERT_EQ(MaxDiff(img, want), 0) << w << " " << py;
      InvTile(want, 1, py, Inv97<Float32s>);
      ASSERT_EQ(InPlace(false, img, r), kroStatusOk);
      ASSERT_EQ(MaxDiff(img, want), 0) << w << " " << py << " inverse";
      CheckOutOfPlace<D97<Kro16s>, Kro16s>(w, r.height, 1, py, 1000, rng);
    }
}

TEST_P(Wavelet97Targets, OutOfPlaceEqualsInPlaceQuadrants) {
  Rng rng(2);
  for (int w : {1, 2, 3, 4, 5, 9, 24})
    for (int h : {1, 2, 4, 5, 11})
      for (int parity = 0; parity < 4; ++parity) {
        CheckOutOfPlace<D97<Kro16s>, Kro16s>(w, h, parity & 1, parity >> 1, 1000, rng);
        CheckOutOfPlace<D97<Kro32s>, Kro32s>(w, h, parity & 1, parity >> 1, 1 << 20, rng);
      }
}

TEST_P(Wavelet97Targets, RegionAndStreamingFormsMatchTheReference) {
  Rng rng(971);
  // Source x[-4 .. 2n+2] or x[-3 .. 2n+3]; low -1..n+1 or -2..n; high -2..n+1.
  const RegionReach reach{{{4, 3}, {3, 4}}, {{1, 2}, {2, 1}}, {{2, 2}, {2, 2}}};
  CheckRegionForm<Kro16s>(true, kroiWTFwdRow_D97_JPEG2K_16s_C1R,
                          kro::RefFwdRows<Kro16s, kro::Region97Ref<Kro16s>>,
                          kroiWTInvRow_D97_JPEG2K_16s_C1R,
                          kro::RefInvRows<Kro16s, kro::Region97Ref<Kro16s>>, reach, rng);
  for (bool rows : {true, false}) {
    CheckRegionForm<Kro32s>(
        rows, rows ? kroiWTFwdRow_D97_JPEG2K_32s_C1R : kroiWTFwdCol_D97_JPEG2K_32s_C1R,
        rows ? kro::RefFwdRows<Kro32s, kro::Region97Ref<Kro32s>>
             : kro::RefFwdCols<Kro32s, kro::Region97Ref<Kro32s>>,
        rows ? kroiWTInvRow_D97_JPEG2K_32s_C1R : kroiWTInvCol_D97_JPEG2K_32s_C1R,
        rows ? kro::RefInvRows<Kro32s, kro::Region97Ref<Kro32s>>
             : kro::RefInvCols<Kro32s, kro::Region97Ref<Kro32s>>,
        reach, rng);
    CheckRegionForm<Kro32f>(
        rows, rows ? kroiWTFwdRow_D97_JPEG2K_32f_C1R : kroiWTFwdCol_D97_JPEG2K_32f_C1R,
        rows ? kro::RefFwdRows<Kro32f, kro::Region97Ref<Kro32f>>
             : kro::RefFwdCols<Kro32f, kro::Region97Ref<Kro32f>>,
        rows ? kroiWTInvRow_D97_JPEG2K_32f_C1R : kroiWTInvCol_D97_JPEG2K_32f_C1R,
        rows ? kro::RefInvRows<Kro32f, kro::Region97Ref<Kro32f>>
             : kro::RefInvCols<Kro32f, kro::Region97Ref<Kro32f>>,
        reach, rng);
  }
  namespace r = kro::ref;
  CheckLiftRows<Kro16s, 8>(kroiWTFwdColLift_D97_JPEG2K_16s_C1, r::Fwd97LiftRowsQ16<Kro16s>, rng);
  CheckLiftRows<Kro32s, 8>(kroiWTFwdColLift_D97_JPEG2K_32s_C1, r::Fwd97LiftRowsQ16<Kro32s>, rng);
  CheckLiftRows<Kro32f, 8>(kroiWTFwdColLift_D97_JPEG2K_32f_C1, r::Fwd97LiftRowsF, rng);
  CheckLiftRows<Kro32f, 8>(kroiWTFwdColStep_D97_JPEG2K_32f_C1, r::Fwd97LiftRowsF, rng);
  CheckLiftRows<Kro16s, 8>(kroiWTInvColLift_D97_JPEG2K_16s_C1, r::Inv97LiftRowsQ16<Kro16s>, rng);
  CheckLiftRows<Kro32s, 8>(kroiWTInvColLift_D97_JPEG2K_32s_C1, r::Inv97LiftRowsQ16<Kro32s>, rng);
  CheckLiftRows<Kro32f, 8>(kroiWTInvColLift_D97_JPEG2K_32f_C1, r::Inv97LiftRowsF, rng);
  CheckLiftRows<Kro32f, 8>(kroiWTInvColStep_D97_JPEG2K_32f_C1, r::Inv97LiftRowsF, rng);
}

}  // namespace
