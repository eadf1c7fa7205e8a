// SPDX-License-Identifier: BSD-3-Clause
// The irreversible 9/7 wavelet: argument checks and hand values, the exact float and
// fixed-point evaluations against a transform written from the lifting equations on
// the extended signal, error bounds against double precision, agreement between the
// 2D, region and streaming forms, and exactly sized work buffers.
#include <gtest/gtest.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <cstdio>
#include <type_traits>
#include <vector>

#include "kroj.h"
#include "ref/wavelet_ref.h"
#include "test_util.h"
#include "wavelet_test_util.h"

namespace {

using kro_test::ExactBuffer;
using kro_test::LowCount;
using kro_test::Mirror;
using kro_test::Plane;
using kro_test::Rng;

// ---- Lifting coefficients: the stored floats, and fixed point rounded from them ----

float FromBits(uint32_t b) {
  float f;
  memcpy(&f, &b, 4);
  return f;
}
const float kA = FromBits(0xBFCB0673), kB = FromBits(0xBD5901AE), kG = FromBits(0x3F620676),
            kD = FromBits(0x3EE31355), kK = FromBits(0x3F9D7658), kIK = FromBits(0x3F5019C3);
int32_t Q(float c, int bits) { return static_cast<int32_t>(lround(static_cast<double>(c) * (1 << bits))); }

// Double-precision 9/7 (T.800 table F.4, the exact filter), the yardstick for errors.
constexpr double kAd = -1.586134342059924, kBd = -0.052980118572961, kGd = 0.882911075530934,
                 kDd = 0.443506852043971, kKd = 1.230174104914001;

// ---- One line from the lifting equations, over full arrays of the extended signal --
//
// Ops supplies the arithmetic of a sample type; positions p-4 .. p+n+3 are lifted step
// by step, each step over every position whose neighbours the step before produced.

template <class S, class I>
struct Ops {
  I (*alpha)(S x, S a, S b);
  I (*beta)(S x, I a, I b);
  I (*gamma)(I x, I a, I b);
  I (*delta)(I x, I a, I b);
  S (*low)(I), (*high)(I);
  I (*inv_low)(S), (*inv_high)(S);
  I (*un_delta)(I, I, I), (*un_gamma)(I, I, I), (*un_beta)(I, I, I), (*un_alpha)(I, I, I);
  S (*out)(I);
};

template <class S, class I>
std::vector<S> Fwd97Line(const Ops<S, I>& op, const std::vector<S>& x, int p) {
  const int n = static_cast<int>(x.size());
  if (n == 1) {
    if constexpr (std::is_integral_v<S>) {
      return {static_cast<S>(static_cast<uint64_t>(x[0]) << p)};  // doubled, kept as S
    } else {
      return {p ? x[0] * 2 : x[0]};
    }
  }
  const int lo = p - 4, hi = p + n + 3;
  auto X = [&](int k) { return x[Mirror(k, p, p + n) - p]; };
  std::vector<I> v(hi - lo + 1);
  auto at = [&](int k) -> I& { return v[k - lo]; };
  for (int k = lo + 1; k < hi; ++k)
    if (k & 1) at(k) = op.alpha(X(k), X(k - 1), X(k + 1));
  for (int k = lo + 2; k < hi - 1; ++k)
    if (!(k & 1)) at(k) = op.beta(X(k), at(k - 1), at(k + 1));
  for (int k = lo + 3; k < hi - 2; ++k)
    if (k & 1) at(k) = op.gamma(at(k), at(k - 1), at(k + 1));
  for (int k = lo + 4; k < hi - 3; ++k)
    if (!(k & 1)) at(k) = op.delta(at(k), at(k - 1), at(k + 1));
  std::vector<S> y(n);
  for (int k = p; k < p + n; ++k) y[k - p] = (k & 1) ? op.high(at(k)) : op.low(at(k));
  return y;
}

template <class S, class I>
std::vector<S> Inv97Line(const Ops<S, I>& op, const std::vector<S>& y, int p) {
  const int n = static_cast<int>(y.size());
  if (n == 1) return {static_cast<S>(p ? y[0] / 2 : y[0])};
  const int lo = p - 4, hi = p + n + 3;
  auto Y = [&](int k) { return y[Mirror(k, p, p + n) - p]; };
  std::vector<I> v(hi - lo + 1);
  auto at = [&](int k) -> I& { return v[k - lo]; };
  for (int k = lo; k <= hi; ++k) at(k) = (k & 1) ? op.inv_high(Y(k)) : op.inv_low(Y(k));
  for (int k = lo + 1; k < hi; ++k)
    if (!(k & 1)) at(k) = op.un_delta(at(k), at(k - 1), at(k + 1));
  for (int k = lo + 2; k < hi - 1; ++k)
    if (k & 1) at(k) = op.un_gamma(at(k), at(k - 1), at(k + 1));
  for (int k = lo + 3; k < hi - 2; ++k)
    if (!(k & 1)) at(k) = op.un_beta(at(k), at(k - 1), at(k + 1));
  for (int k = lo + 4; k < hi - 3; ++k)
    if (k & 1) at(k) = op.un_alpha(at(k), at(k - 1), at(k + 1));
  std::vector<S> x(n);
  for (int k = p; k < p + n; ++k) x[k - p] = op.out(at(k));
  return x;
}

// Single precision: (a + b), times c, added: three rounded operations.
float FAdd(float x, float a, float b, float c) { return x + (a + b) * c; }
float FSub(float x, float a, float b, float c) { return x - (a + b) * c; }
const Ops<float, float> kFloatOps = {
    [](float x, float a, float b) { return FAdd(x, a, b, kA); },
    [](float x, float a, float b) { return FAdd(x, a, b, kB); },
    [](float x, float a, float b) { return FAdd(x, a, b, kG); },
    [](float x, float a, float b) { return FAdd(x, a, b, kD); },
    [](float s) { return s * kIK; },
    [](float d) { return d * kK; },
    [](float s) { return s * kK; },
    [](float d) { return d * kIK; },
    [](float x, float a, float b) { return FSub(x, a, b, kD); },
    [](float x, float a, float b) { return FSub(x, a, b, kG); },
    [](float x, float a, float b) { return FSub(x, a, b, kB); },
    [](float x, float a, float b) { return FSub(x, a, b, kA); },
    [](float v) { return v; },
};

// 32s: floats, the first neighbour sum as a wrapping 32-bit integer, saturating
// truncation back (exactly 2^31 comes back as -2^31).
int32_t Sat(float v) {
  if (v >= 2147483648.0f) return v == 2147483648.0f ? INT32_MIN : INT32_MAX;
  if (v < -2147483648.0f) return INT32_MIN;
  return static_cast<int32_t>(v);
}
int32_t WrapSum(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
const Ops<int32_t, float> kInt32Ops = {
    [](int32_t x, int32_t a, int32_t b) { return static_cast<float>(x) + static_cast<float>(WrapSum(a, b)) * kA; },
    [](int32_t x, float a, float b) { return FAdd(static_cast<float>(x), a, b, kB); },
    kFloatOps.gamma,
    kFloatOps.delta,
    [](float s) { return Sat(s * kIK); },
    [](float d) { return Sat(d * kK); },
    [](int32_t s) { return static_cast<float>(s) * kK; },
    [](int32_t d) { return static_cast<float>(d) * kIK; },
    kFloatOps.un_delta,
    kFloatOps.un_gamma,
    kFloatOps.un_beta,
    kFloatOps.un_alpha,
    [](float v) { return Sat(v); },
};

// 16s, 2^-14: v + ((c (a + b) + 8192) >> 14), every result kept as 16 bits.
int16_t K16(int32_t v) { return static_cast<int16_t>(v); }
int32_t R14(float c, int32_t a, int32_t b) { return (Q(c, 14) * (a + b) + 8192) >> 14; }
const Ops<int16_t, int16_t> kInt16Ops = {
    [](int16_t x, int16_t a, int16_t b) { return K16(x + R14(kA, a, b)); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x + R14(kB, a, b)); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x + R14(kG, a, b)); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x + R14(kD, a, b)); },
    [](int16_t s) { return K16((s * Q(kIK, 14) + 8192) >> 14); },
    [](int16_t d) { return K16((d * Q(kK, 14) + 8192) >> 14); },
    [](int16_t s) { return K16((s * Q(kK, 14) + 8192) >> 14); },
    [](int16_t d) { return K16((d * Q(kIK, 14) + 8192) >> 14); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x - R14(kD, a, b)); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x - R14(kG, a, b)); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x - R14(kB, a, b)); },
    [](int16_t x, int16_t a, int16_t b) { return K16(x - R14(kA, a, b)); },
    [](int16_t v) { return v; },
};

const Ops<double, double> kDoubleOps = {
    [](double x, double a, double b) { return x + kAd * (a + b); },
    [](double x, double a, double b) { return x + kBd * (a + b); },
    [](double x, double a, double b) { return x + kGd * (a + b); },
    [](double x, double a, double b) { return x + kDd * (a + b); },
    [](double s) { return s / kKd; },
    [](double d) { return d * kKd; },
    [](double s) { return s * kKd; },
    [](double d) { return d / kKd; },
    [](double x, double a, double b) { return x - kDd * (a + b); },
    [](double x, double a, double b) { return x - kGd * (a + b); },
    [](double x, double a, double b) { return x - kBd * (a + b); },
    [](double x, double a, double b) { return x - kAd * (a + b); },
    [](double v) { return v; },
};

template <class T>
const auto& OpsOf() {
  if constexpr (std::is_same_v<T, Kro16s>) {
    return kInt16Ops;
  } else if constexpr (std::is_same_v<T, Kro32s>) {
    return kInt32Ops;
  } else {
    return kFloatOps;
  }
}

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

template <class T>
std::vector<T> Column(const Plane<T>& img, int x) {
  std::vector<T> c(img.h);
  for (int y = 0; y < img.h; ++y) c[y] = img.at(x, y);
  return c;
}
template <class T>
void SetColumn(Plane<T>& img, int x, const std::vector<T>& c) {
  for (int y = 0; y < img.h; ++y) img.at(x, y) = c[y];
}
template <class T>
std::vector<T> Row(const Plane<T>& img, int y) {
  return std::vector<T>(img.row(y), img.row(y) + img.w);
}
template <class T>
void SetRow(Plane<T>& img, int y, const std::vector<T>& r) {
  std::copy(r.begin(), r.end(), img.row(y));
}

// One 2D level in quadrant layout (forward: columns, then rows).
template <class S, class I>
void FwdTile(const Ops<S, I>& op, Plane<S>& img, int px, int py) {
  for (int x = 0; x < img.w; ++x) SetColumn(img, x, ToBands(Fwd97Line(op, Column(img, x), py), py));
  for (int y = 0; y < img.h; ++y) SetRow(img, y, ToBands(Fwd97Line(op, Row(img, y), px), px));
}
template <class S, class I>
void InvTile(const Ops<S, I>& op, Plane<S>& img, int px, int py) {
  for (int y = 0; y < img.h; ++y) SetRow(img, y, Inv97Line(op, FromBands(Row(img, y), px), px));
  for (int x = 0; x < img.w; ++x) SetColumn(img, x, Inv97Line(op, FromBands(Column(img, x), py), py));
}

template <class T>
Plane<double> ToDouble(const Plane<T>& p) {
  Plane<double> d(p.w, p.h);
  for (int y = 0; y < p.h; ++y)
    for (int x = 0; x < p.w; ++x) d.at(x, y) = p.at(x, y);
  return d;
}
template <class A, class B>
double MaxDiff(const Plane<A>& a, const Plane<B>& b) {
  double m = 0;
  for (int y = 0; y < a.h; ++y)
    for (int x = 0; x < a.w; ++x) m = std::max(m, fabs(static_cast<double>(a.at(x, y)) - b.at(x, y)));
  return m;
}

// ---- Typed access ----------------------------------------------------------------------

template <class T>
struct D97;
template <>
struct D97<Kro16s> {
  static constexpr auto kFwdIR = kroiWTFwd_D97_JPEG2K_16s_C1IR;
  static constexpr auto kInvIR = kroiWTInv_D97_JPEG2K_16s_C1IR;
  static constexpr auto kFwdR = kroiWTFwd_D97_JPEG2K_16s_C1R;
  static constexpr auto kInvR = kroiWTInv_D97_JPEG2K_16s_C1R;
  static constexpr auto kSizeIR = kroiWTGetBufSize_D97_JPEG2K_16s_C1IR;
  static constexpr auto kSizeR = kroiWTGetBufSize_D97_JPEG2K_16s_C1R;
  static constexpr auto kFwdRow = kroiWTFwdRow_D97_JPEG2K_16s_C1R;
  static constexpr auto kInvRow = kroiWTInvRow_D97_JPEG2K_16s_C1R;
  static constexpr auto kFwdLift = kroiWTFwdColLift_D97_JPEG2K_16s_C1;
  static constexpr auto kInvLift = kroiWTInvColLift_D97_JPEG2K_16s_C1;
  static constexpr int64_t kRange = 2048;  // 12-bit samples after the level shift
};
template <>
struct D97<Kro32s> {
  static constexpr auto kFwdIR = kroiWTFwd_D97_JPEG2K_32s_C1IR;
  static constexpr auto kInvIR = kroiWTInv_D97_JPEG2K_32s_C1IR;
  static constexpr auto kFwdR = kroiWTFwd_D97_JPEG2K_32s_C1R;
  static constexpr auto kInvR = kroiWTInv_D97_JPEG2K_32s_C1R;
  static constexpr auto kSizeIR = kroiWTGetBufSize_D97_JPEG2K_32s_C1IR;
  static constexpr auto kSizeR = kroiWTGetBufSize_D97_JPEG2K_32s_C1R;
  static constexpr auto kFwdRow = kroiWTFwdRow_D97_JPEG2K_32s_C1R;
  static constexpr auto kInvRow = kroiWTInvRow_D97_JPEG2K_32s_C1R;
  static constexpr auto kFwdCol = kroiWTFwdCol_D97_JPEG2K_32s_C1R;
  static constexpr auto kInvCol = kroiWTInvCol_D97_JPEG2K_32s_C1R;
  static constexpr auto kFwdLift = kroiWTFwdColLift_D97_JPEG2K_32s_C1;
  static constexpr auto kInvLift = kroiWTInvColLift_D97_JPEG2K_32s_C1;
  static constexpr int64_t kRange = 1 << 20;
};
template <>
struct D97<Kro32f> {
  static constexpr auto kFwdRow = kroiWTFwdRow_D97_JPEG2K_32f_C1R;
  static constexpr auto kInvRow = kroiWTInvRow_D97_JPEG2K_32f_C1R;
  static constexpr auto kFwdCol = kroiWTFwdCol_D97_JPEG2K_32f_C1R;
  static constexpr auto kInvCol = kroiWTInvCol_D97_JPEG2K_32f_C1R;
  static constexpr auto kFwdLift = kroiWTFwdColLift_D97_JPEG2K_32f_C1;
  static constexpr auto kInvLift = kroiWTInvColLift_D97_JPEG2K_32f_C1;
};

template <class T>
void FillRandom(Plane<T>& p, Rng& rng, double range) {
  for (auto& v : p.v) {
    if constexpr (std::is_floating_point_v<T>) {
      v = static_cast<T>(rng.Real(-range, range));
    } else {
      v = static_cast<T>(rng.Int(-static_cast<int64_t>(range), static_cast<int64_t>(range)));
    }
  }
}

template <class T>
KroStatus InPlace(bool fwd, Plane<T>& img, const KroiRect& r) {
  int size = -1;
  EXPECT_EQ(D97<T>::kSizeIR(&r, &size), kroStatusOk);
  ExactBuffer buf(size);
  return (fwd ? D97<T>::kFwdIR : D97<T>::kInvIR)(img.data(), img.step(), &r, buf.get());
}

// ---- Argument checks and hand values -------------------------------------------------

TEST(Wavelet97, ArgumentChecksInDocumentedOrder) {
  Kro32f f[64] = {};
  Kro16s s[64] = {};
  Kro32s i[64] = {};
  Kro8u buf[1024];
  const KroiRect rect{0, 0, 4, 4};
  Kro16s* bands[4] = {s, s + 16, nullptr, s + 48};
  int steps[4] = {8, 8, 8, 0};
  const KroiSize bad{3, 0};
  int size;
  struct Case {
    const char* what;
    KroStatus got, want;
  };
  const Case cases[] = {
      {"IR null", kroiWTFwd_D97_JPEG2K_16s_C1IR(nullptr, 0, &rect, buf), kroStatusNullPointer},
      {"IR step", kroiWTInv_D97_JPEG2K_32s_C1IR(i, 0, nullptr, nullptr), kroStatusBadStep},
      {"IR buffer", kroiWTFwd_D97_JPEG2K_32s_C1IR(i, 16, &rect, nullptr), kroStatusNullPointer},
      {"R step before band", kroiWTFwd_D97_JPEG2K_16s_C1R(s, 0, bands, steps, &rect, buf), kroStatusBadStep},
      {"R band before band step", kroiWTFwd_D97_JPEG2K_16s_C1R(s, 8, bands, steps, &rect, buf),
       kroStatusNullPointer},
      {"Row 32f step before size", kroiWTFwdRow_D97_JPEG2K_32f_C1R(f, 8, f, 8, f, 0, bad, 0), kroStatusBadStep},
      {"Row 16s size", kroiWTInvRow_D97_JPEG2K_16s_C1R(s, 8, s, 8, bad, s, 8, 1), kroStatusBadSize},
      {"Col 32s null", kroiWTFwdCol_D97_JPEG2K_32s_C1R(i, 0, nullptr, 8, i, 8, bad, 0), kroStatusNullPointer},
      {"Col 32f size", kroiWTInvCol_D97_JPEG2K_32f_C1R(f, 8, f, 8, bad, f, 8, 0), kroStatusBadSize},
      {"ColLift null before width", kroiWTFwdColLift_D97_JPEG2K_32f_C1(f, f, f, f, f, f, f, nullptr, 0),
       kroStatusNullPointer},
      {"ColLift width", kroiWTInvColLift_D97_JPEG2K_16s_C1(s, s, s, s, s, s, s, s, 0), kroStatusBadSize},
      {"ColStep null", kroiWTInvColStep_D97_JPEG2K_32f_C1(f, nullptr, f, f, f, f, f, f, 4), kroStatusNullPointer},
      {"ColStep width", kroiWTFwdColStep_D97_JPEG2K_32f_C1(f, f, f, f, f, f, f, f, -1), kroStatusBadSize},
      {"BufSize null", kroiWTGetBufSize_D97_JPEG2K_32s_C1R(&rect, nullptr), kroStatusNullPointer},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, c.want) << c.what;
  for (int k = 0; k < 64; ++k) EXPECT_TRUE(f[k] == 0 && s[k] == 0 && i[k] == 0);
  (void)size;
}

TEST(Wavelet97, HandValues) {
  // The fixed-point coefficients are the floats rounded to 2^-14 and 2^-16.
  EXPECT_EQ(Q(kA, 14), -25987);
  EXPECT_EQ(Q(kIK, 14), 13318);
  EXPECT_EQ(Q(kG, 16), 57862);
  EXPECT_EQ(lround(static_cast<double>(kD) / kK * 65536), 23627);

  {  // A single sample at an odd column doubles, and halves back.
    Plane<Kro32s> p(1, 1);
    p.at(0, 0) = -7;
    ASSERT_EQ(InPlace(true, p, KroiRect{3, 2, 1, 1}), kroStatusOk);
    EXPECT_EQ(p.at(0, 0), -14);
    p.at(0, 0) = -7;
    ASSERT_EQ(InPlace(false, p, KroiRect{3, 2, 1, 1}), kroStatusOk);
    EXPECT_EQ(p.at(0, 0), -3);
  }
  int size = -1;
  KroiRect r{0, 0, 1, 1};
  EXPECT_EQ(kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 0);
  r = {0, 0, 2, 1};
  EXPECT_EQ(kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 2 * 2 + 16);
  r = {0, 0, 3, 9};
  EXPECT_EQ(kroiWTGetBufSize_D97_JPEG2K_32s_C1IR(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 4 * (9 + 8));
  EXPECT_EQ(kroiWTGetBufSize_D97_JPEG2K_32s_C1R(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 32 * 9 + 4 * (9 + 8));
  EXPECT_EQ(kroiWTGetBufSize_D97_JPEG2K_16s_C1R(&r, &size), kroStatusOk);
  EXPECT_EQ(size, 32 * 9 + 2 * (9 + 8));

  // Saturating truncation of the 32s forms.
  EXPECT_EQ(kro::ref::SatTrunc32(2147483904.0f), INT32_MAX);
  EXPECT_EQ(kro::ref::SatTrunc32(2147483648.0f), INT32_MIN);
  EXPECT_EQ(kro::ref::SatTrunc32(-2147483648.0f), INT32_MIN);
  EXPECT_EQ(kro::ref::SatTrunc32(-3e9f), INT32_MIN);
  EXPECT_EQ(kro::ref::SatTrunc32(-2.9f), -2);
  // High-pass coefficients beyond +-2^31 saturate (about +-3.2e9 here).
  for (int sign : {1, -1}) {
    Plane<Kro32s> p(8, 1);
    for (int k = 0; k < 8; ++k) p.at(k, 0) = (k & 1) ? sign * INT32_MAX : -sign * (1 << 29);
    ASSERT_EQ(InPlace(true, p, KroiRect{0, 0, 8, 1}), kroStatusOk);
    for (int k = 4; k < 8; ++k) EXPECT_EQ(p.at(k, 0), sign > 0 ? INT32_MAX : INT32_MIN);
  }
}

// ---- Exact evaluation: 2D (16s, 32s) and region (all types) against the definition ----

template <class T>
void Check2DExact(int max_side, double range, Rng& rng) {
  SCOPED_TRACE(::testing::Message() << sizeof(T) * 8 << "-bit");
  for (int h = 1; h <= max_side; ++h)
    for (int w = 1; w <= max_side; ++w)
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{parity & 1, (parity >> 1) + 6, w, h};
        Plane<T> img(w, h, 2);
        FillRandom(img, rng, range);
        Plane<T> want = img;
        FwdTile(OpsOf<T>(), want, r.x & 1, r.y & 1);
        ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
        ASSERT_EQ(MaxDiff(img, ToDouble(want)), 0) << w << "x" << h << " parity " << parity;
        InvTile(OpsOf<T>(), want, r.x & 1, r.y & 1);
        ASSERT_EQ(InPlace(false, img, r), kroStatusOk);
        ASSERT_EQ(MaxDiff(img, ToDouble(want)), 0) << w << "x" << h << " parity " << parity << " inverse";
      }
}

TEST(Wavelet97, InPlaceMatchesLiftingDefinitionExactly) {
  Rng rng(97);
  Check2DExact<Kro16s>(23, 2048, rng);
  Check2DExact<Kro32s>(23, 1 << 24, rng);
  Check2DExact<Kro16s>(9, 32767, rng);           // 16-bit wrap at every step
  Check2DExact<Kro32s>(9, 2147483647.0, rng);    // wrapping sums and saturation
}

// Rows and work buffers at odd byte addresses give the same results (the 32s form
// keeps lifted floats in the tile's rows between steps).
TEST(Wavelet97, OddAddressesAndSteps) {
  Rng rng(3);
  const int w = 11, h = 14, step = w * 4 + 1;
  const KroiRect r{0, 1, w, h};
  Plane<Kro32s> img(w, h);
  FillRandom(img, rng, 1 << 20);
  std::vector<uint8_t> bytes(static_cast<size_t>(step) * h + 3), buf(4 * (h + 8) + 3);
  for (int y = 0; y < h; ++y) memcpy(&bytes[3 + static_cast<size_t>(y) * step], img.row(y), w * 4);
  Kro32s* odd = reinterpret_cast<Kro32s*>(&bytes[3]);
  for (bool fwd : {true, false}) {
    ASSERT_EQ((fwd ? kroiWTFwd_D97_JPEG2K_32s_C1IR : kroiWTInv_D97_JPEG2K_32s_C1IR)(odd, step, &r, &buf[3]),
              kroStatusOk);
    ASSERT_EQ(InPlace(fwd, img, r), kroStatusOk);
    for (int y = 0; y < h; ++y) EXPECT_EQ(memcmp(&bytes[3 + static_cast<size_t>(y) * step], img.row(y), w * 4), 0);
  }
}

// Tiles of more than 32768 rows take their columns one at a time.
TEST(Wavelet97, VeryTallTiles) {
  Rng rng(32770);
  for (int p = 0; p < 2; ++p) {
    Plane<Kro16s> img(1, 32770 - p);
    FillRandom(img, rng, 2048);
    Plane<Kro16s> want = img;
    FwdTile(kInt16Ops, want, 0, p);
    ASSERT_EQ(InPlace(true, img, KroiRect{0, p, 1, img.h}), kroStatusOk);
    ASSERT_EQ(MaxDiff(img, ToDouble(want)), 0);
    InvTile(kInt16Ops, want, 0, p);
    ASSERT_EQ(InPlace(false, img, KroiRect{0, p, 1, img.h}), kroStatusOk);
    ASSERT_EQ(MaxDiff(img, ToDouble(want)), 0);
  }
}

// Row forms against the definition on rows of 2w samples whose neighbours (4 or 3
// on each side) are the symmetric extension, in memory of exactly that size; the
// column forms against the row forms on the transposed layout.
template <class T>
void CheckRegion(int w, int rows, int p, double range, Rng& rng) {
  const int n = 2 * w, left = p ? 3 : 4, right = p ? 4 : 3;
  Plane<T> src(n + left + right, rows), low(w, rows), high(w, rows);
  std::vector<std::vector<T>> want(rows);
  for (int y = 0; y < rows; ++y) {
    Plane<T> line(n, 1);
    FillRandom(line, rng, range);
    for (int i = -left; i < n + right; ++i) src.at(i + left, y) = line.at(Mirror(i, 0, n), 0);
    want[y] = ToBands(Fwd97Line(OpsOf<T>(), line.v, p), p);
  }
  const KroiSize size{w, rows};
  ASSERT_EQ(D97<T>::kFwdRow(src.row(0) + left, src.step(), low.data(), low.step(), high.data(), high.step(), size,
                            p ? 9 : 0),
            kroStatusOk);
  for (int y = 0; y < rows; ++y)
    for (int k = 0; k < w; ++k) {
      ASSERT_EQ(low.at(k, y), want[y][k]) << "w " << w << " p " << p << " low " << k;
      ASSERT_EQ(high.at(k, y), want[y][w + k]) << "w " << w << " p " << p << " high " << k;
    }

  // Inverse: low[-1 .. w+1] / high[-2 .. w+1] (phase 0) or low[-2 .. w] (phase 1).
  const int ll = p ? 2 : 1, lr = p ? 1 : 2;
  Plane<T> lowx(w + ll + lr, rows), highx(w + 4, rows), out(n, rows);
  std::vector<std::vector<T>> back(rows);
  for (int y = 0; y < rows; ++y) {
    auto coef = [&](int u) {
      const int m = Mirror(u, p, p + n) - p;
      return ((m + p) & 1) ? high.at(m / 2, y) : low.at(m / 2, y);
    };
    for (int k = -ll; k < w + lr; ++k) lowx.at(k + ll, y) = coef(2 * k + 2 * p);
    for (int k = -2; k < w + 2; ++k) highx.at(k + 2, y) = coef(2 * k + 1);
    std::vector<T> bands(low.row(y), low.row(y) + w);
    bands.insert(bands.end(), high.row(y), high.row(y) + w);
    back[y] = Inv97Line(OpsOf<T>(), FromBands(bands, p), p);
  }
  ASSERT_EQ(D97<T>::kInvRow(lowx.row(0) + ll, lowx.step(), highx.row(0) + 2, highx.step(), size, out.data(),
                            out.step(), p),
            kroStatusOk);
  for (int y = 0; y < rows; ++y)
    for (int i = 0; i < n; ++i) ASSERT_EQ(out.at(i, y), back[y][i]) << "w " << w << " p " << p << " i " << i;

  if constexpr (!std::is_same_v<T, Kro16s>) {
    auto transpose = [](const Plane<T>& a) {
      Plane<T> t(a.h, a.w);
      for (int y = 0; y < a.h; ++y)
        for (int x = 0; x < a.w; ++x) t.at(y, x) = a.at(x, y);
      return t;
    };
    const Plane<T> srcT = transpose(src), lowxT = transpose(lowx), highxT = transpose(highx);
    Plane<T> lowT(rows, w), highT(rows, w), outT(rows, n);
    const KroiSize sizeT{rows, w};
    ASSERT_EQ(D97<T>::kFwdCol(srcT.row(left), srcT.step(), lowT.data(), lowT.step(), highT.data(), highT.step(),
                              sizeT, p),
              kroStatusOk);
    ASSERT_EQ(D97<T>::kInvCol(lowxT.row(ll), lowxT.step(), highxT.row(2), highxT.step(), sizeT, outT.data(),
                              outT.step(), p),
              kroStatusOk);
    ASSERT_EQ(MaxDiff(transpose(lowT), ToDouble(low)), 0);
    ASSERT_EQ(MaxDiff(transpose(highT), ToDouble(high)), 0);
    ASSERT_EQ(MaxDiff(transpose(outT), ToDouble(out)), 0);
  }
}

TEST(Wavelet97, RegionFormsMatchLiftingDefinitionExactly) {
  Rng rng(79);
  for (int w = 1; w <= 16; ++w)
    for (int p = 0; p < 2; ++p) {
      CheckRegion<Kro32f>(w, 3 + 16 * (w % 3), p, 1000.0, rng);  // columns go 16 at a time
      CheckRegion<Kro32s>(w, 19, p, 1 << 24, rng);
      CheckRegion<Kro16s>(w, 3, p, 32767, rng);
    }
}

// The region forms equal the 2D kernel band for band (a one-row tile).
TEST(Wavelet97, RowFormsMatch2DTile) {
  Rng rng(8);
  for (int w = 1; w <= 12; ++w)
    for (int p = 0; p < 2; ++p) {
      const int n = 2 * w, left = p ? 3 : 4, right = p ? 4 : 3;
      Plane<Kro16s> tile(n, 1), src(n + left + right, 1), low(w, 1), high(w, 1);
      FillRandom(tile, rng, 4000);
      for (int i = -left; i < n + right; ++i) src.at(i + left, 0) = tile.at(Mirror(i, 0, n), 0);
      ASSERT_EQ(InPlace(true, tile, KroiRect{p, 0, n, 1}), kroStatusOk);
      ASSERT_EQ(kroiWTFwdRow_D97_JPEG2K_16s_C1R(src.row(0) + left, src.step(), low.data(), low.step(), high.data(),
                                                high.step(), KroiSize{w, 1}, p),
                kroStatusOk);
      for (int k = 0; k < w; ++k) {
        ASSERT_EQ(low.at(k, 0), tile.at(k, 0));
        ASSERT_EQ(high.at(k, 0), tile.at(w + k, 0));
      }
    }
}

// ---- Error bounds ------------------------------------------------------------------

// Largest difference between a 2D level of T and of double precision, and between
// the input and forward + inverse.
template <class T>
void Measure2D(const char* name, double bound_fwd, double bound_rt) {
  Rng rng(1234);
  double fwd = 0, rt = 0;
  for (int w : {1, 2, 5, 16, 37})
    for (int h : {1, 3, 4, 29})
      for (int parity = 0; parity < 4; ++parity) {
        const KroiRect r{parity & 1, parity >> 1, w, h};
        Plane<T> img(w, h);
        FillRandom(img, rng, static_cast<double>(D97<T>::kRange));
        Plane<double> ref = ToDouble(img);
        const Plane<T> orig = img;
        FwdTile(kDoubleOps, ref, r.x & 1, r.y & 1);
        ASSERT_EQ(InPlace(true, img, r), kroStatusOk);
        fwd = std::max(fwd, MaxDiff(img, ref));
        ASSERT_EQ(InPlace(false, img, r), kroStatusOk);
        rt = std::max(rt, MaxDiff(img, ToDouble(orig)));
      }
  printf("[ bounds   ] %s 2D, samples within +-%lld: |fwd - double| <= %g, |inv(fwd) - x| <= %g\n", name,
         static_cast<long long>(D97<T>::kRange), fwd, rt);
  EXPECT_LE(fwd, bound_fwd);
  EXPECT_LE(rt, bound_rt);
}

TEST(Wavelet97, FixedPointAndFloatErrorBounds) {
  Measure2D<Kro16s>("16s", 6, 6);
  Measure2D<Kro32s>("32s", 4, 6);

  // 32f rows against double, relative to the signal's range.
  Rng rng(4321);
  double fwd = 0, rt = 0;
  for (int w : {1, 2, 3, 8, 33})
    for (int p = 0; p < 2; ++p) {
      const int n = 2 * w;
      Plane<float> line(n, 1), src(n + 8, 1), low(w, 1), high(w, 1), lowx(w + 4, 1), highx(w + 4, 1), out(n, 1);
      FillRandom(line, rng, 1.0);
      for (int i = -4; i < n + 4; ++i) src.at(i + 4, 0) = line.at(Mirror(i, 0, n), 0);
      std::vector<double> xd(line.v.begin(), line.v.end());
      const std::vector<double> want = ToBands(Fwd97Line(kDoubleOps, xd, p), p);
      ASSERT_EQ(kroiWTFwdRow_D97_JPEG2K_32f_C1R(src.row(0) + 4, src.step(), low.data(), low.step(), high.data(),
                                                high.step(), KroiSize{w, 1}, p),
                kroStatusOk);
      for (int k = 0; k < w; ++k) {
        fwd = std::max({fwd, fabs(low.at(k, 0) - want[k]), fabs(high.at(k, 0) - want[w + k])});
      }
      for (int k = -2; k < w + 2; ++k) {
        auto coef = [&](int u) {
          const int m = Mirror(u, p, p + n) - p;
          return ((m + p) & 1) ? high.at(m / 2, 0) : low.at(m / 2, 0);
        };
        lowx.at(k + 2, 0) = coef(2 * k + 2 * p);
        highx.at(k + 2, 0) = coef(2 * k + 1);
      }
      ASSERT_EQ(kroiWTInvRow_D97_JPEG2K_32f_C1R(lowx.row(0) + 2, lowx.step(), highx.row(0) + 2, highx.step(),
                                                KroiSize{w, 1}, out.data(), out.step(), p),
                kroStatusOk);
      rt = std::max(rt, MaxDiff(out, ToDouble(line)));
    }
  printf("[ bounds   ] 32f rows, samples within +-1: |fwd - double| <= %g, |inv(fwd) - x| <= %g\n", fwd, rt);
  EXPECT_LE(fwd, 2e-6);
  EXPECT_LE(rt, 2e-6);
}

// ---- Streaming column steps ---------------------------------------------------------

// Runs the columns of img (first row of parity p) through the forward ColLift
// pipeline, supplying mirrored rows at both ends and starting early enough that the
// zero-initialised state has left the pipeline before the first output.
template <class T>
Plane<T> FwdByLift(const Plane<T>& img, int p, bool step_name) {
  const int W = img.w, H = img.h, nl = LowCount(H, p);
  auto row = [&](int k) { return img.row(Mirror(k, p, p + H) - p); };
  auto fwd = D97<T>::kFwdLift;
  if constexpr (std::is_same_v<T, Kro32f>)
    if (step_name) fwd = kroiWTFwdColStep_D97_JPEG2K_32f_C1;
  std::vector<std::vector<T>> rows(5, std::vector<T>(W));
  T *lp = rows[0].data(), *lc = rows[1].data(), *hp2 = rows[2].data(), *hp = rows[3].data(), *hc = rows[4].data();
  Plane<T> out(W, H);
  const int last = p + H - 1;
  for (int n = -3; 2 * n - 3 <= last + 2; ++n) {
    EXPECT_EQ(fwd(row(2 * n), row(2 * n + 1), row(2 * n + 2), lp, lc, hp2, hp, hc, W), kroStatusOk);
    const int kl = 2 * n - 2, kh = 2 * n - 3;  // positions now final in lp and hp2
    for (int x = 0; x < W; ++x) {
      if (kl >= p && kl <= last) out.at(x, kl / 2 - p) = lp[x];
      if (kh >= p && kh <= last) out.at(x, nl + (kh - 1) / 2) = hp2[x];
    }
    T* free_l = lp;
    T* free_h = hp2;
    lp = lc, hp2 = hp, hp = hc, lc = free_l, hc = free_h;
  }
  return out;
}

template <class T>
Plane<T> InvByLift(const Plane<T>& bands, int p, bool step_name) {
  const int W = bands.w, H = bands.h, nl = LowCount(H, p);
  auto coef = [&](int k) {
    const int m = Mirror(k, p, p + H);
    return bands.row((m & 1) ? nl + (m - 1) / 2 : m / 2 - p);
  };
  auto inv = D97<T>::kInvLift;
  if constexpr (std::is_same_v<T, Kro32f>)
    if (step_name) inv = kroiWTInvColStep_D97_JPEG2K_32f_C1;
  std::vector<std::vector<T>> rows(5, std::vector<T>(W));
  T *op = rows[0].data(), *oc = rows[1].data(), *ep2 = rows[2].data(), *ep = rows[3].data(), *ec = rows[4].data();
  Plane<T> out(W, H);
  const int last = p + H - 1;
  for (int n = -3; 2 * n - 3 <= last + 2; ++n) {
    EXPECT_EQ(inv(coef(2 * n), coef(2 * n - 1), coef(2 * n + 1), op, oc, ep2, ep, ec, W), kroStatusOk);
    const int ke = 2 * n - 2, ko = 2 * n - 3;  // positions now final in ep and op
    for (int x = 0; x < W; ++x) {
      if (ke >= p && ke <= last) out.at(x, ke - p) = ep[x];
      if (ko >= p && ko <= last) out.at(x, ko - p) = op[x];
    }
    T* free_o = op;
    T* free_e = ep2;
    op = oc, ep2 = ep, ep = ec, oc = free_o, ec = free_e;
  }
  return out;
}

// 32f: the forward pipeline is the same arithmetic as the other forms, bit for bit;
// the inverse folds delta / K into one constant, so it is held to double precision.
TEST(Wavelet97, ColLiftFloatMatchesColumnTransform) {
  Rng rng(31);
  double inv_err = 0, rt = 0;
  for (int H = 2; H <= 19; ++H)
    for (int p = 0; p < 2; ++p)
      for (bool step_name : {false, true}) {
        Plane<float> img(4, H);
        FillRandom(img, rng, 100.0);
        const Plane<float> bands = FwdByLift(img, p, step_name);
        Plane<double> want_inv(4, H);
        for (int x = 0; x < 4; ++x) {
          const std::vector<float> want = ToBands(Fwd97Line(kFloatOps, Column(img, x), p), p);
          for (int y = 0; y < H; ++y) ASSERT_EQ(bands.at(x, y), want[y]) << "H " << H << " p " << p << " y " << y;
          const std::vector<float> col = Column(bands, x);
          const std::vector<double> back =
              Inv97Line(kDoubleOps, FromBands(std::vector<double>(col.begin(), col.end()), p), p);
          for (int y = 0; y < H; ++y) want_inv.at(x, y) = back[y];
        }
        const Plane<float> back = InvByLift(bands, p, step_name);
        inv_err = std::max(inv_err, MaxDiff(back, want_inv));
        rt = std::max(rt, MaxDiff(back, ToDouble(img)));
      }
  printf("[ bounds   ] 32f ColLift inverse, samples within +-100: |inv - double| <= %g, |inv(fwd) - x| <= %g\n",
         inv_err, rt);
  EXPECT_LE(inv_err, 1e-4);
  EXPECT_LE(rt, 1e-4);
}

template <class T>
void MeasureLiftQ16(const char* name, int64_t range, double bound_fwd, double bound_rt) {
  Rng rng(16);
  double fwd = 0, rt = 0;
  for (int H = 2; H <= 21; ++H)
    for (int p = 0; p < 2; ++p) {
      Plane<T> img(3, H);
      FillRandom(img, rng, static_cast<double>(range));
      const Plane<T> bands = FwdByLift(img, p, false);
      for (int x = 0; x < 3; ++x) {
        const std::vector<T> c = Column(img, x);
        const std::vector<double> want =
            ToBands(Fwd97Line(kDoubleOps, std::vector<double>(c.begin(), c.end()), p), p);
        for (int y = 0; y < H; ++y) fwd = std::max(fwd, fabs(bands.at(x, y) - want[y]));
      }
      rt = std::max(rt, MaxDiff(InvByLift(bands, p, false), ToDouble(img)));
    }
  printf("[ bounds   ] %s ColLift (2^-16), samples within +-%lld: |fwd - double| <= %g, |inv(fwd) - x| <= %g\n",
         name, static_cast<long long>(range), fwd, rt);
  EXPECT_LE(fwd, bound_fwd);
  EXPECT_LE(rt, bound_rt);
}

TEST(Wavelet97, ColLiftFixedPointErrorBounds) {
  MeasureLiftQ16<Kro16s>("16s", 2048, 3, 4);
  MeasureLiftQ16<Kro32s>("32s", 2048, 3, 4);
  // The 2^-16 coefficients are good to about 5e-6 relative, which dominates for
  // large samples.
  MeasureLiftQ16<Kro32s>("32s", 1 << 20, 64, 16);
}

// ---- Out of place ------------------------------------------------------------------

template <class T>
void CheckOutOfPlace(int w, int h, int px, int py, Rng& rng) {
  const KroiRect r{px, py, w, h};
  Plane<T> src(w, h, 1);
  FillRandom(src, rng, static_cast<double>(D97<T>::kRange));
  Plane<T> inplace = src;
  ASSERT_EQ(InPlace(true, inplace, r), kroStatusOk);
  const int wl = (w + 1) / 2, hl = (h + 1) / 2;
  const int bx[4] = {0, 0, wl, wl}, by[4] = {0, hl, 0, hl};
  const int bw[4] = {wl, wl, w / 2, w / 2}, bh[4] = {hl, h / 2, hl, h / 2};
  std::vector<Plane<T>> band;
  for (int b = 0; b < 4; ++b) band.emplace_back(std::max(bw[b], 1), std::max(bh[b], 1));
  T* dst[4] = {band[0].data(), band[1].data(), band[2].data(), band[3].data()};
  int steps[4] = {band[0].step(), band[1].step(), band[2].step(), band[3].step()};
  int size = -1;
  ASSERT_EQ(D97<T>::kSizeR(&r, &size), kroStatusOk);
  ExactBuffer buf(size);
  ASSERT_EQ(D97<T>::kFwdR(src.data(), src.step(), dst, steps, &r, buf.get()), kroStatusOk);
  for (int b = 0; b < 4; ++b)
    for (int y = 0; y < bh[b]; ++y)
      for (int x = 0; x < bw[b]; ++x) ASSERT_EQ(band[b].at(x, y), inplace.at(bx[b] + x, by[b] + y));
  Plane<T> back(w, h, 3), want = inplace;
  ASSERT_EQ(InPlace(false, want, r), kroStatusOk);
  const T* cdst[4] = {dst[0], dst[1], dst[2], dst[3]};
  ASSERT_EQ(D97<T>::kInvR(cdst, steps, back.data(), back.step(), &r, buf.get()), kroStatusOk);
  ASSERT_EQ(MaxDiff(back, ToDouble(want)), 0) << w << "x" << h;
}

TEST(Wavelet97, OutOfPlaceEqualsInPlaceQuadrants) {
  Rng rng(2);
  for (int w : {1, 2, 3, 4, 5, 6, 9, 24})
    for (int h : {1, 2, 4, 5, 11})
      for (int parity = 0; parity < 4; ++parity) {
        CheckOutOfPlace<Kro16s>(w, h, parity & 1, parity >> 1, rng);
        CheckOutOfPlace<Kro32s>(w, h, parity & 1, parity >> 1, rng);
      }
}

}  // namespace
