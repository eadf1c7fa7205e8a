// SPDX-License-Identifier: BSD-3-Clause
// Vector copy, zero, fill, multiplication and division.
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <complex>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "kroj.h"
#include "ref/signal_ref.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::Rng;
using I128 = __int128;

// Complex element types and their parts, as the library sees them.
template <class T>
concept Complex = kro::ref::ComplexElem<T>;
template <class T>
using Part = kro::ref::Part<T>;

// ---- Argument checks of every member, driven by its signature -----------------
// Pointers come first in the check order, then len (the first int after the last
// pointer), then a constant divisor. Calls are made with several bad arguments at
// once so that the first check in that order must decide.

struct Plan {
  int null_ptr = -1;  // ordinal of the pointer passed as null
  int len = 4;
  bool zero_val = false;
};

alignas(64) unsigned char g_buf[4][256];

template <class T>
T Value(bool zero) {
  T v{};
  if constexpr (Complex<T>) {
    v.re = zero ? 0 : 3;
  } else {
    v = static_cast<T>(zero ? 0 : 3);
  }
  return v;
}

template <class... Args>
KroStatus Call(KroStatus (*f)(Args...), const Plan& p) {
  constexpr bool kPtr[] = {std::is_pointer_v<Args>...};
  constexpr int kLenAt = [] {
    int last = -1;
    for (int i = 0; i < static_cast<int>(sizeof...(Args)); ++i)
      if (kPtr[i]) last = i;
    return last + 1;
  }();
  auto arg = [&]<class T>(std::type_identity<T>, int i) -> T {
    if constexpr (std::is_pointer_v<T>) {
      const int ordinal = static_cast<int>(std::count(kPtr, kPtr + i, true));
      return ordinal == p.null_ptr ? nullptr : reinterpret_cast<T>(g_buf[ordinal]);
    } else {
      if (i == kLenAt) {
        // clang has no parenthesised aggregate initialisation: spell it out.
        if constexpr (std::is_arithmetic_v<T>) return static_cast<T>(p.len);
        else return T{static_cast<decltype(T{}.re)>(p.len), {}};
      }
      if (i == kLenAt + 1) return T{};  // scale factor 0
      return Value<T>(p.zero_val);
    }
  };
  return [&]<size_t... I>(std::index_sequence<I...>) {
    return f(arg(std::type_identity<Args>{}, static_cast<int>(I))...);
  }
  (std::index_sequence_for<Args...>{});
}

template <class... Args>
constexpr int PointerCount(KroStatus (*)(Args...)) {
  return (0 + ... + (std::is_pointer_v<Args> ? 1 : 0));
}

struct Member {
  const char* name;
  KroStatus (*call)(const Plan&);
  int pointers;
};
#define MEMBER(fn)                                                   \
  Member {                                                           \
#fn, [](const Plan& p) { return Call(fn, p); }, PointerCount(fn) \
  }

const Member kMembers[] = {
    MEMBER(krosCopy_8u),         MEMBER(krosCopy_16s),         MEMBER(krosCopy_16sc),
    MEMBER(krosCopy_32s),        MEMBER(krosCopy_32sc),        MEMBER(krosCopy_32f),
    MEMBER(krosCopy_32fc),       MEMBER(krosCopy_64s),         MEMBER(krosCopy_64sc),
    MEMBER(krosCopy_64f),        MEMBER(krosCopy_64fc),        MEMBER(krosZero_8u),
    MEMBER(krosZero_16s),        MEMBER(krosZero_16sc),        MEMBER(krosZero_32s),
    MEMBER(krosZero_32sc),       MEMBER(krosZero_32f),         MEMBER(krosZero_32fc),
    MEMBER(krosZero_64s),        MEMBER(krosZero_64sc),        MEMBER(krosZero_64f),
    MEMBER(krosZero_64fc),       MEMBER(krosSet_8u),           MEMBER(krosSet_16s),
    MEMBER(krosSet_16sc),        MEMBER(krosSet_32s),          MEMBER(krosSet_32sc),
    MEMBER(krosSet_32f),         MEMBER(krosSet_32fc),         MEMBER(krosSet_64s),
    MEMBER(krosSet_64sc),        MEMBER(krosSet_64f),          MEMBER(krosSet_64fc),
    MEMBER(krosDiv_16s_Sfs),     MEMBER(krosDiv_16s_ISfs),     MEMBER(krosDiv_8u_Sfs),
    MEMBER(krosDiv_8u_ISfs),     MEMBER(krosDiv_16sc_Sfs),     MEMBER(krosDiv_16sc_ISfs),
    MEMBER(krosDiv_32s_Sfs),     MEMBER(krosDiv_32s_ISfs),     MEMBER(krosDiv_32s16s_Sfs),
    MEMBER(krosDiv_32f),         MEMBER(krosDiv_32f_I),        MEMBER(krosDiv_64f),
    MEMBER(krosDiv_64f_I),       MEMBER(krosDiv_32fc),         MEMBER(krosDiv_32fc_I),
    MEMBER(krosDiv_64fc),        MEMBER(krosDiv_64fc_I),       MEMBER(krosDivC_16s_Sfs),
    MEMBER(krosDivC_16s_ISfs),   MEMBER(krosDivC_8u_Sfs),      MEMBER(krosDivC_8u_ISfs),
    MEMBER(krosDivC_16sc_Sfs),   MEMBER(krosDivC_16sc_ISfs),   MEMBER(krosDivC_32f),
    MEMBER(krosDivC_32f_I),      MEMBER(krosDivC_32fc),        MEMBER(krosDivC_32fc_I),
    MEMBER(krosDivC_64f),        MEMBER(krosDivC_64f_I),       MEMBER(krosDivC_64fc),
    MEMBER(krosDivC_64fc_I),     MEMBER(krosDivCRev_16u),      MEMBER(krosDivCRev_16u_I),
    MEMBER(krosDivCRev_32f),     MEMBER(krosDivCRev_32f_I),    MEMBER(krosMulC_8u_ISfs),
    MEMBER(krosMulC_8u_Sfs),     MEMBER(krosMul_8u_ISfs),      MEMBER(krosMul_8u_Sfs),
    MEMBER(krosMul_8u16u),       MEMBER(krosMulC_16s_I),       MEMBER(krosMulC_16s_ISfs),
    MEMBER(krosMulC_16s_Sfs),    MEMBER(krosMulC_16sc_ISfs),   MEMBER(krosMulC_16sc_Sfs),
    MEMBER(krosMul_16s_I),       MEMBER(krosMul_16s_ISfs),     MEMBER(krosMul_16sc_ISfs),
    MEMBER(krosMul_16s),         MEMBER(krosMul_16s32f),       MEMBER(krosMul_16s32s_Sfs),
    MEMBER(krosMul_16s_Sfs),     MEMBER(krosMul_16u16s_Sfs),   MEMBER(krosMul_16sc_Sfs),
    MEMBER(krosMulC_32s_ISfs),   MEMBER(krosMulC_32s_Sfs),     MEMBER(krosMulC_32sc_ISfs),
    MEMBER(krosMulC_32sc_Sfs),   MEMBER(krosMul_32s32sc_ISfs), MEMBER(krosMul_32s32sc_Sfs),
    MEMBER(krosMul_32s_ISfs),    MEMBER(krosMul_32sc_ISfs),    MEMBER(krosMul_32s_Sfs),
    MEMBER(krosMul_32sc_Sfs),    MEMBER(krosMulC_32f_I),       MEMBER(krosMulC_32fc_I),
    MEMBER(krosMulC_32fc),       MEMBER(krosMul_32f_I),        MEMBER(krosMul_32fc_I),
    MEMBER(krosMul_32f),         MEMBER(krosMul_32fc),         MEMBER(krosMulC_Low_32f16s),
    MEMBER(krosMulC_32f16s_Sfs), MEMBER(krosMulC_64f_I),       MEMBER(krosMulC_64fc_I),
    MEMBER(krosMulC_64fc),       MEMBER(krosMul_64f_I),        MEMBER(krosMul_64fc_I),
    MEMBER(krosMul_64f),         MEMBER(krosMul_64fc),         MEMBER(krosMulC_32f),
    MEMBER(krosMulC_64f),
};

TEST(Signal, ArgumentChecksOfEveryMember) {
  EXPECT_EQ(std::size(kMembers), 115u);
  for (const Member& m : kMembers) {
    SCOPED_TRACE(m.name);
    const bool by_constant = strncmp(m.name, "krosDivC_", 9) == 0;
    memset(g_buf, 0x5A, sizeof(g_buf));
    for (int k = 0; k < m.pointers; ++k) {
      EXPECT_EQ(m.call({k, 0, true}), kroStatusNullPointer) << "pointer " << k;
    }
    EXPECT_EQ(m.call({-1, 0, true}), kroStatusBadSize);
    EXPECT_EQ(m.call({-1, -7, true}), kroStatusBadSize);
    for (auto& row : g_buf)
      for (unsigned char c : row) ASSERT_EQ(c, 0x5A);  // failed calls write nothing
    const KroStatus zero_val = m.call({-1, 4, true});
    if (by_constant) {
      EXPECT_EQ(zero_val, kroStatusDivideByZero);
    } else {
      EXPECT_GE(zero_val, kroStatusOk);
    }
    EXPECT_GE(m.call({-1, 4, false}), kroStatusOk);
  }
}

// ---- Copy, zero, fill --------------------------------------------------------

template <class T>
void CheckCopyZeroSet(KroStatus (*copy)(const T*, T*, int), KroStatus (*zero)(T*, int),
                      KroStatus (*set)(T, T*, int)) {
  std::vector<T> a(40), b(40);
  for (size_t i = 0; i < a.size(); ++i) memset(&a[i], static_cast<int>(i + 1), sizeof(T));
  memset(b.data(), 0x77, b.size() * sizeof(T));
  ASSERT_EQ(copy(a.data(), b.data(), 37), kroStatusOk);
  EXPECT_EQ(memcmp(a.data(), b.data(), 37 * sizeof(T)), 0);
  EXPECT_EQ(reinterpret_cast<unsigned char*>(&b[37])[0], 0x77);
  ASSERT_EQ(copy(b.data(), b.data() + 3, 30), kroStatusOk);  // overlapping
  EXPECT_EQ(memcmp(a.data(), b.data() + 3, 30 * sizeof(T)), 0);
  ASSERT_EQ(zero(b.data() + 1, 38), kroStatusOk);
  for (int i = 1; i < 39; ++i)
    for (size_t k = 0; k < sizeof(T); ++k) ASSERT_EQ(reinterpret_cast<unsigned char*>(&b[i])[k], 0);
  ASSERT_EQ(set(a[5], b.data(), 39), kroStatusOk);
  for (int i = 0; i < 39; ++i) ASSERT_EQ(memcmp(&b[i], &a[5], sizeof(T)), 0);
  EXPECT_EQ(reinterpret_cast<unsigned char*>(&b[39])[0], 0x77);
}

TEST(Signal, CopyZeroSet) {
  CheckCopyZeroSet(krosCopy_8u, krosZero_8u, krosSet_8u);
  CheckCopyZeroSet(krosCopy_16s, krosZero_16s, krosSet_16s);
  CheckCopyZeroSet(krosCopy_16sc, krosZero_16sc, krosSet_16sc);
  CheckCopyZeroSet(krosCopy_32s, krosZero_32s, krosSet_32s);
  CheckCopyZeroSet(krosCopy_32sc, krosZero_32sc, krosSet_32sc);
  CheckCopyZeroSet(krosCopy_32f, krosZero_32f, krosSet_32f);
  CheckCopyZeroSet(krosCopy_32fc, krosZero_32fc, krosSet_32fc);
  CheckCopyZeroSet(krosCopy_64s, krosZero_64s, krosSet_64s);
  CheckCopyZeroSet(krosCopy_64sc, krosZero_64sc, krosSet_64sc);
  CheckCopyZeroSet(krosCopy_64f, krosZero_64f, krosSet_64f);
  CheckCopyZeroSet(krosCopy_64fc, krosZero_64fc, krosSet_64fc);
}

// ---- Integer multiplication against exact arithmetic -------------------------

// p * 2^-sf to the nearest integer, ties to even, saturated to T: floor division
// and remainder, independent of the library's addend form.
template <class T>
T ExactScaled(I128 p, int sf) {
  const I128 lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
  I128 q;
  if (sf <= 0) {
    q = -sf >= 64 ? (p > 0 ? hi : p < 0 ? lo : 0) : p * (I128{1} << -sf);
  } else {
    const I128 d = I128{1} << sf;
    q = p / d;
    if (p % d != 0 && p < 0) --q;
    const I128 r2 = 2 * (p - q * d);
    if (r2 > d || (r2 == d && (q & 1))) ++q;
  }
  return static_cast<T>(std::clamp(q, lo, hi));
}

using kro::ref::Im;
using kro::ref::Re;

template <class T>
T Sample(Rng& rng) {
  using P = Part<T>;
  auto one = [&]() -> P {
    const int64_t lo = std::numeric_limits<P>::min(), hi = std::numeric_limits<P>::max();
    switch (rng.Int(0, 3)) {
      case 0:
        return static_cast<P>(rng.Int(0, 1) ? lo : hi);  // saturation edges
      case 1:
        return static_cast<P>(rng.Int(-3, 3) + (lo < 0 ? 0 : 3));
      default:
        return static_cast<P>(rng.Int(lo, hi));
    }
  };
  T v{};
  if constexpr (Complex<T>) {
    v.re = one();
    v.im = one();
  } else {
    v = one();
  }
  return v;
}

// call(a, b, dst, n, sf): a member with its operands in place. A constant form
// gets b[0] and sees b filled with it; forms without a scale factor run at 0.
template <class A, class B, class T, class Call>
void CheckScaledProducts(const char* name, bool constant, bool scaled, Call call) {
  SCOPED_TRACE(name);
  Rng rng(std::hash<std::string>{}(name));
  constexpr int kN = 67;
  std::vector<A> a(kN);
  std::vector<B> b(kN);
  std::vector<T> dst(kN);
  for (int sf = scaled ? -40 : 0; sf <= (scaled ? 70 : 0); ++sf) {
    for (auto& v : a) v = Sample<A>(rng);
    for (auto& v : b) v = Sample<B>(rng);
    if (constant) std::fill(b.begin(), b.end(), b[0]);
    ASSERT_EQ(call(a.data(), b.data(), dst.data(), kN, sf), kroStatusOk);
    for (int i = 0; i < kN; ++i) {
      const I128 re = Re<I128>(a[i]) * Re<I128>(b[i]) - Im<I128>(a[i]) * Im<I128>(b[i]);
      if constexpr (Complex<T>) {
        using P = Part<T>;
        const I128 im = Re<I128>(a[i]) * Im<I128>(b[i]) + Im<I128>(a[i]) * Re<I128>(b[i]);
        ASSERT_EQ(dst[i].re, ExactScaled<P>(re, sf)) << "sf " << sf << " i " << i;
        ASSERT_EQ(dst[i].im, ExactScaled<P>(im, sf)) << "sf " << sf << " i " << i;
      } else {
        ASSERT_EQ(dst[i], ExactScaled<T>(re, sf)) << "sf " << sf << " i " << i;
      }
    }
  }
}

// In-place forms get the second operand copied into the destination first.
#define VEC(fn, A, B, T)        \
  CheckScaledProducts<A, B, T>( \
      #fn, false, true, [](auto a, auto b, auto d, int n, int sf) { return fn(a, b, d, n, sf); })
#define VEC_I(fn, A, T)                                                                      \
  CheckScaledProducts<A, T, T>(#fn, false, true, [](auto a, auto b, auto d, int n, int sf) { \
    std::copy(b, b + n, d);                                                                  \
    return fn(a, d, n, sf);                                                                  \
  })
#define CON(fn, T)                                                                          \
  CheckScaledProducts<T, T, T>(#fn, true, true, [](auto a, auto b, auto d, int n, int sf) { \
    return fn(a, b[0], d, n, sf);                                                           \
  })
#define CON_I(fn, T)                                                                        \
  CheckScaledProducts<T, T, T>(#fn, true, true, [](auto a, auto b, auto d, int n, int sf) { \
    std::copy(a, a + n, d);                                                                 \
    return fn(b[0], d, n, sf);                                                              \
  })

// The members with SIMD rows (8- and 16-bit products, 16-bit divisions) run on every
// target; the others take the same path on each and are checked along.
class SignalTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(SignalTargets);

TEST_P(SignalTargets, IntegerProductsAreExactlyRounded) {
  VEC(krosMul_8u_Sfs, Kro8u, Kro8u, Kro8u);
  VEC_I(krosMul_8u_ISfs, Kro8u, Kro8u);
  CON(krosMulC_8u_Sfs, Kro8u);
  CON_I(krosMulC_8u_ISfs, Kro8u);
  VEC(krosMul_16s_Sfs, Kro16s, Kro16s, Kro16s);
  VEC_I(krosMul_16s_ISfs, Kro16s, Kro16s);
  CON(krosMulC_16s_Sfs, Kro16s);
  CON_I(krosMulC_16s_ISfs, Kro16s);
  VEC(krosMul_16u16s_Sfs, Kro16u, Kro16s, Kro16s);
  VEC(krosMul_16s32s_Sfs, Kro16s, Kro16s, Kro32s);
  VEC(krosMul_16sc_Sfs, Kro16sc, Kro16sc, Kro16sc);
  VEC_I(krosMul_16sc_ISfs, Kro16sc, Kro16sc);
  CON(krosMulC_16sc_Sfs, Kro16sc);
  CON_I(krosMulC_16sc_ISfs, Kro16sc);
  VEC(krosMul_32s_Sfs, Kro32s, Kro32s, Kro32s);
  VEC_I(krosMul_32s_ISfs, Kro32s, Kro32s);
  CON(krosMulC_32s_Sfs, Kro32s);
  CON_I(krosMulC_32s_ISfs, Kro32s);
  VEC(krosMul_32sc_Sfs, Kro32sc, Kro32sc, Kro32sc);
  VEC_I(krosMul_32sc_ISfs, Kro32sc, Kro32sc);
  CON(krosMulC_32sc_Sfs, Kro32sc);
  CON_I(krosMulC_32sc_ISfs, Kro32sc);
  VEC(krosMul_32s32sc_Sfs, Kro32s, Kro32sc, Kro32sc);
  VEC_I(krosMul_32s32sc_ISfs, Kro32s, Kro32sc);
  auto plain = [](auto fn) {
    return [fn](auto a, auto b, auto d, int n, int) { return fn(a, b, d, n); };
  };
  CheckScaledProducts<Kro8u, Kro8u, Kro16u>("krosMul_8u16u", false, false, plain(krosMul_8u16u));
  CheckScaledProducts<Kro16s, Kro16s, Kro16s>("krosMul_16s", false, false, plain(krosMul_16s));
  CheckScaledProducts<Kro16s, Kro16s, Kro16s>("krosMul_16s_I", false, false,
                                              [](auto a, auto b, auto d, int n, int) {
                                                std::copy(b, b + n, d);
                                                return krosMul_16s_I(a, d, n);
                                              });
  CheckScaledProducts<Kro16s, Kro16s, Kro16s>("krosMulC_16s_I", true, false,
                                              [](auto a, auto b, auto d, int n, int) {
                                                std::copy(a, a + n, d);
                                                return krosMulC_16s_I(b[0], d, n);
                                              });
}

// Products that are ties at every scale factor, long enough for whole vectors:
// p = k * 2^(sf-1) for odd k, split over the two operands.
TEST_P(SignalTargets, SixteenBitProductsRoundEveryTieToEven) {
  for (int sf = 1; sf <= 30; ++sf) {
    for (bool unsigned_a : {false, true}) {
      const int a_shift = std::min(sf - 1, unsigned_a ? 15 : 14);
      std::vector<Kro16u> a;
      std::vector<Kro16s> b, d;
      for (int rep = 0; rep < 5; ++rep)
        for (int k = -31; k <= 31; k += 2) {
          const int64_t bv = int64_t{k} << (sf - 1 - a_shift);
          if (bv < -32768 || bv > 32767) continue;
          a.push_back(static_cast<Kro16u>(1 << a_shift));
          b.push_back(static_cast<Kro16s>(bv));
        }
      d.resize(a.size());
      const int n = static_cast<int>(d.size());
      if (unsigned_a) {
        ASSERT_EQ(krosMul_16u16s_Sfs(a.data(), b.data(), d.data(), n, sf), kroStatusOk);
      } else {
        std::vector<Kro16s> as(a.begin(), a.end());
        ASSERT_EQ(krosMul_16s_Sfs(as.data(), b.data(), d.data(), n, sf), kroStatusOk);
      }
      for (int i = 0; i < n; ++i) {
        const int k = static_cast<int>((int64_t{a[i]} * b[i]) >> (sf - 1));  // the odd k
        const int lo = (k - 1) / 2, hi = lo + 1;                             // k / 2 = lo + 0.5
        ASSERT_EQ(d[i], (lo % 2 == 0) ? lo : hi) << "sf " << sf << " k " << k;
      }
    }
  }
  Kro16s one = 1, three = 3, five = 5, min16 = -32768, out;
  ASSERT_EQ(krosMul_16s_Sfs(&three, &one, &out, 1, 1), kroStatusOk);
  EXPECT_EQ(out, 2);
  ASSERT_EQ(krosMul_16s_Sfs(&five, &one, &out, 1, 1), kroStatusOk);
  EXPECT_EQ(out, 2);
  ASSERT_EQ(krosMul_16s_Sfs(&min16, &min16, &out, 1, 0), kroStatusOk);
  EXPECT_EQ(out, 32767);
  ASSERT_EQ(krosMul_16s_Sfs(&one, &one, &out, 1, -16), kroStatusOk);
  EXPECT_EQ(out, 32767);
}

TEST(Signal, FloatProductsAndConversions) {
  const Kro32fc a[2] = {{1.5f, -2.0f}, {3.0f, 0.25f}}, b[2] = {{2.0f, 4.0f}, {-1.0f, 8.0f}};
  Kro32fc c[2];
  ASSERT_EQ(krosMul_32fc(a, b, c, 2), kroStatusOk);
  EXPECT_TRUE(c[0].re == 11.0f && c[0].im == 2.0f);  // (3 + 8, 6 - 4)
  ASSERT_EQ(krosMulC_32fc(a, b[1], c, 2), kroStatusOk);
  EXPECT_TRUE(c[1].re == -5.0f && c[1].im == 23.75f);

  const Kro16s s1[2] = {32767, -3}, s2[2] = {32767, 5};
  Kro32f f[2];
  ASSERT_EQ(krosMul_16s32f(s1, s2, f, 2), kroStatusOk);
  EXPECT_TRUE(f[0] == static_cast<float>(32767 * 32767) && f[1] == -15.0f);

  const Kro32f g[6] = {2.5f, 3.5f, -2.5f, 70000.0f, NAN, 1022.998046875f};
  const Kro16s expect[6] = {2, 4, -2, 32767, -32768, 1023};
  Kro16s h[6];
  ASSERT_EQ(krosMulC_32f16s_Sfs(g, 1.0f, h, 6, 0), kroStatusOk);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(h[i], expect[i]) << i;
  ASSERT_EQ(krosMulC_32f16s_Sfs(g, 4.0f, h, 2, 3), kroStatusOk);  // halves: 1.25, 1.75
  EXPECT_TRUE(h[0] == 1 && h[1] == 2);
  // 1022.998046875 * (0.5 + 2^-20) = 511.4999990: the exact product rounds to 511,
  // the single-precision one is 511.5 and rounds to even.
  const float c_half = 0.5f + 1.0f / (1 << 20);
  ASSERT_EQ(krosMulC_32f16s_Sfs(g + 5, c_half, h, 1, 0), kroStatusOk);
  EXPECT_EQ(h[0], 511);
  ASSERT_EQ(krosMulC_Low_32f16s(g + 5, c_half, h, 1), kroStatusOk);
  EXPECT_EQ(h[0], 512);
}

// ---- Division ------------------------------------------------------------------

// The documented single-precision rules, written out: t = r + offset + 0.5,
// truncated, odd results on an exact t stepping down.
int RoundOffset(float r, float offset) {
  float t = r + offset;
  t = t + 0.5f;
  int n = static_cast<int>(t);
  if ((n & 1) && static_cast<float>(n) == t) --n;
  return n - static_cast<int>(offset);
}

TEST_P(SignalTargets, Div16sFollowsTheSinglePrecisionRule) {
  Rng rng(21);
  constexpr int kN = 1027;
  std::vector<Kro16s> num(kN), den(kN), out(kN);
  for (int sf = -20; sf <= 40; ++sf) {
    for (int i = 0; i < kN; ++i) {
      num[i] = Sample<Kro16s>(rng);
      den[i] = static_cast<Kro16s>(i % 16 == 0  ? 0
                                   : i % 3 == 0 ? rng.Int(-9, 9)
                                                : Sample<Kro16s>(rng));
    }
    ASSERT_EQ(krosDiv_16s_Sfs(den.data(), num.data(), out.data(), kN, sf),
              kroStatusDivideByZeroWarning);
    const float scale = ldexpf(1.0f, -sf);
    for (int i = 0; i < kN; ++i) {
      int expect;
      if (den[i] == 0) {
        expect = num[i] == 0 ? 0 : num[i] > 0 ? 32767 : -32768;
      } else {
        float r = static_cast<float>(num[i]) * scale / static_cast<float>(den[i]);
        if (sf < 1) r = std::clamp(r, -32768.0f, 32767.0f);
        expect = RoundOffset(r, 32768.0f);
      }
      ASSERT_EQ(out[i], expect) << num[i] << " / " << den[i] << " sf " << sf;
    }
    // By a constant: m = 2^-sf / val, saturated first unless m is in [-0.9999, 1].
    const Kro16s val = den[1 + sf % 7 + 20];
    if (val == 0) continue;
    ASSERT_EQ(krosDivC_16s_Sfs(num.data(), val, out.data(), kN, sf), kroStatusOk);
    const float m = scale / static_cast<float>(val);
    for (int i = 0; i < kN; ++i) {
      float r = static_cast<float>(num[i]) * m;
      if (!(m >= -0.9999f && m <= 1.0f)) r = std::clamp(r, -32768.0f, 32767.0f);
      ASSERT_EQ(out[i], RoundOffset(r, 32768.0f)) << num[i] << " / " << val << " sf " << sf;
    }
  }
  const Kro16s n[3] = {-32768, 5, 7}, d[3] = {-1, 2, 2};
  Kro16s q[3];
  ASSERT_EQ(krosDiv_16s_Sfs(d, n, q, 3, 0), kroStatusOk);
  EXPECT_TRUE(q[0] == 32767 && q[1] == 2 && q[2] == 4);  // saturated; ties to even

  // By a constant: m = -1 saturates, m in [-0.9999, 1] does not need to.
  Kro16s v[2] = {-32768, 32767};
  ASSERT_EQ(krosDivC_16s_ISfs(-1, v, 2, 0), kroStatusOk);
  EXPECT_TRUE(v[0] == 32767 && v[1] == -32767);
  ASSERT_EQ(krosDivC_16s_ISfs(3, v, 2, -1), kroStatusOk);  // m = 2/3
  EXPECT_TRUE(v[0] == 21845 && v[1] == -21845);
}

TEST(Signal, EightBitDivisionExhaustive) {
  // The reciprocal table rebuilt from its rule: 1/i to six decimals, half up.
  float recip[256];
  recip[0] = 0.000001f;
  for (int i = 1; i < 256; ++i) {
    char text[32];
    snprintf(text, sizeof(text), "0.%06d", (2000000 + i) / (2 * i));
    recip[i] = i == 1 ? 1.0f : strtof(text, nullptr);
  }
  std::vector<Kro8u> num(65536), den(65536), out(65536);
  for (int i = 0; i < 65536; ++i)
    num[i] = static_cast<Kro8u>(i), den[i] = static_cast<Kro8u>(i >> 8);
  for (int sf : {-16, -15, -3, 0, 1, 5, 8, 9}) {
    ASSERT_EQ(krosDiv_8u_Sfs(den.data(), num.data(), out.data(), 65536, sf),
              kroStatusDivideByZeroWarning);
    for (int i = 0; i < 65536; ++i) {
      int expect;
      if (den[i] == 0 || sf < -15) {
        expect = num[i] ? 255 : 0;
      } else if (sf > 8) {
        expect = 0;
      } else {
        expect = std::min(255, RoundOffset(num[i] * ldexpf(1.0f, -sf) / den[i], 0.0f));
      }
      ASSERT_EQ(out[i], expect) << int(num[i]) << " / " << int(den[i]) << " sf " << sf;
    }
  }
  for (int sf : {-2, 0, 3}) {
    for (int val = 1; val < 256; ++val) {
      std::vector<Kro8u> o(256);
      ASSERT_EQ(krosDivC_8u_Sfs(num.data(), static_cast<Kro8u>(val), o.data(), 256, sf),
                kroStatusOk);
      const float m = ldexpf(1.0f, -sf) * recip[val];
      for (int x = 0; x < 256; ++x)
        ASSERT_EQ(o[x], std::min(255, RoundOffset(std::min(x * m, 255.0f), 0.0f)))
            << x << "/" << val;
    }
  }
  Kro8u x = 255, y;
  ASSERT_EQ(krosDivC_8u_Sfs(&x, 3, &y, 1, 0), kroStatusOk);
  EXPECT_EQ(y, 85);  // 255 * 0.333333 = 84.99992
}

// 32-bit dividends: the quotient in double precision, saturated, then rounded half
// to even (nearbyint in the default rounding mode).
template <class T, class D, class V>
T DoubleQuotient(D num, V den, int sf) {
  if (den == 0)
    return num == 0 ? 0 : num > 0 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
  const double r = ldexp(static_cast<double>(num), -std::clamp(sf, -64, 64)) / den;
  return static_cast<T>(nearbyint(std::clamp<double>(r, std::numeric_limits<T>::min(),
                                                     std::numeric_limits<T>::max())));
}

TEST(Signal, ThirtyTwoBitDivisionInDoublePrecision) {
  Rng rng(8);
  std::vector<Kro32s> num(2000), den32(2000), out32(2000);
  std::vector<Kro16s> den16(2000), out16(2000);
  for (int sf : {-70, -62, -61, -30, -29, -20, -3, 0, 1, 7, 15, 31, 32, 40}) {
    for (int i = 0; i < 2000; ++i) {
      num[i] = Sample<Kro32s>(rng);
      den32[i] = i % 50 == 0 ? 0
                 : i % 2     ? Sample<Kro32s>(rng)
                             : static_cast<Kro32s>(rng.Int(-99, 99));
      den16[i] = static_cast<Kro16s>(i % 50 == 0 ? 0 : rng.Int(-32768, 32767));
    }
    ASSERT_EQ(krosDiv_32s_Sfs(den32.data(), num.data(), out32.data(), 2000, sf),
              kroStatusDivideByZeroWarning);
    ASSERT_EQ(krosDiv_32s16s_Sfs(den16.data(), num.data(), out16.data(), 2000, sf),
              kroStatusDivideByZeroWarning);
    for (int i = 0; i < 2000; ++i) {
      ASSERT_EQ(out32[i], DoubleQuotient<Kro32s>(num[i], den32[i], sf))
          << num[i] << "/" << den32[i] << " sf " << sf;
      ASSERT_EQ(out16[i], DoubleQuotient<Kro16s>(num[i], den16[i], sf))
          << num[i] << "/" << den16[i] << " sf " << sf;
    }
  }
  // 583934566 * 2^30 / 1329254399 = 471689216.5000000004 would round up; its
  // double quotient is the tie 471689216.5, which goes to the even 471689216.
  const Kro32s n = 583934566, d = 1329254399;
  Kro32s q;
  ASSERT_EQ(krosDiv_32s_Sfs(&d, &n, &q, 1, -30), kroStatusOk);
  EXPECT_EQ(q, 471689216);
}

TEST(Signal, ComplexSixteenBitDivision) {
  const Kro16sc num[3] = {{100, 50}, {-7, 3}, {5, -5}}, den[3] = {{3, 4}, {2, 0}, {0, 0}};
  Kro16sc q[3];
  ASSERT_EQ(krosDiv_16sc_Sfs(den, num, q, 3, 0), kroStatusDivideByZeroWarning);
  EXPECT_EQ(q[0].re, 20);  // (100 + 50i)(3 - 4i) / 25 = (500 - 250i) / 25
  EXPECT_EQ(q[0].im, -10);
  EXPECT_EQ(q[1].re, -4);  // -3.5 -> -4 (even)
  EXPECT_EQ(q[1].im, 2);   // 1.5 -> 2
  EXPECT_EQ(q[2].re, 32767);
  EXPECT_EQ(q[2].im, -32768);

  Kro16sc v[2] = {{-32768, 0}, {1000, 3}};
  EXPECT_EQ(krosDivC_16sc_ISfs({0, 0}, v, 2, 0), kroStatusDivideByZero);
  ASSERT_EQ(krosDivC_16sc_ISfs({-1, 0}, v, 2, 0), kroStatusOk);  // |m|^2 = 1: saturating
  EXPECT_EQ(v[0].re, 32767);
  EXPECT_EQ(v[1].re, -1000);
  EXPECT_EQ(v[1].im, -3);
  ASSERT_EQ(krosDivC_16sc_ISfs({0, 4}, v, 2, 0), kroStatusOk);  // times -i/4
  EXPECT_EQ(v[1].re, -1);                                       // -3/4
  EXPECT_EQ(v[1].im, 250);                                      // 1000/4
}

TEST(Signal, ReverseDivisionOfEverySixteenBitSource) {
  std::vector<Kro16u> src(65536), dst(65536);
  for (int i = 0; i < 65536; ++i) src[i] = static_cast<Kro16u>(i);
  for (uint32_t val : {1u, 2u, 255u, 32768u, 40000u, 65535u}) {
    dst = src;
    ASSERT_EQ(krosDivCRev_16u_I(static_cast<Kro16u>(val), dst.data(), 65536),
              kroStatusDivideByZeroWarning);
    EXPECT_EQ(dst[0], 65535);
    for (uint32_t q = 1; q < 65536; ++q) {
      const uint32_t t = (val << 16) / q, frac = t & 0xFFFF, whole = t >> 16;
      const uint32_t up = (whole & 1) ? frac >= 32767 : frac > 32768;
      ASSERT_EQ(dst[q], whole + up) << val << " / " << q;
    }
  }
  const Kro16u qs[2] = {3, 0};
  Kro16u o[2] = {9, 9};
  EXPECT_EQ(krosDivCRev_16u(qs, 0, o, 2), kroStatusDivideByZeroWarning);
  EXPECT_EQ(o[0], 0);
  EXPECT_EQ(o[1], 0);
  EXPECT_EQ(krosDivCRev_16u(qs, 0, o, 1), kroStatusOk);
}

TEST(Signal, FloatDivisionZeroesAndInfinities) {
  const float inf = std::numeric_limits<float>::infinity();
  const Kro32f den[5] = {0.0f, -0.0f, 0.0f, 2.0f, 0.0f}, num[5] = {3.0f, -3.0f, 0.0f, 1.0f, NAN};
  Kro32f q[5];
  ASSERT_EQ(krosDiv_32f(den, num, q, 5), kroStatusDivideByZeroWarning);
  EXPECT_TRUE(q[0] == inf && q[1] == -inf && isnan(q[2]) && q[3] == 0.5f && q[4] == -inf);
  EXPECT_EQ(krosDiv_32f(den + 3, num + 3, q, 1), kroStatusOk);
  EXPECT_EQ(krosDivC_32f(num, 0.0f, q, 5), kroStatusDivideByZero);
  EXPECT_EQ(krosDivC_32f(num, -0.0f, q, 5), kroStatusDivideByZero);
  // By a constant: multiplication by the rounded reciprocal, not true division.
  ASSERT_EQ(krosDivC_32f(num, -3.0f, q, 1), kroStatusOk);
  EXPECT_EQ(q[0], -1.0f);
  const Kro32f five = 5.0f;
  ASSERT_EQ(krosDivC_32f(&five, 3.0f, q, 1), kroStatusOk);
  EXPECT_EQ(q[0], 1.66666675f);  // 5 / 3 would be 1.66666663f

  Kro32f r[3] = {4.0f, 0.0f, -0.5f}, z[2] = {5.0f, 0.0f};
  ASSERT_EQ(krosDivCRev_32f_I(-2.0f, r, 3), kroStatusDivideByZeroWarning);
  EXPECT_TRUE(r[0] == -0.5f && r[1] == -inf && r[2] == 4.0f);
  ASSERT_EQ(krosDivCRev_32f_I(0.0f, z, 2), kroStatusDivideByZeroWarning);
  EXPECT_TRUE(z[0] == 0.0f && isnan(z[1]));

  // Complex quotients against std::complex, and a zero divisor per part.
  const Kro32fc cn[2] = {{1.0f, 2.0f}, {-3.0f, 0.0f}}, cd[2] = {{3.0f, -4.0f}, {0.0f, 0.0f}};
  Kro32fc cq[2];
  ASSERT_EQ(krosDiv_32fc(cd, cn, cq, 2), kroStatusDivideByZeroWarning);
  const std::complex<double> ref = std::complex<double>(1, 2) / std::complex<double>(3, -4);
  EXPECT_TRUE(cq[0].re == static_cast<float>(ref.real()) &&
              cq[0].im == static_cast<float>(ref.imag()));
  EXPECT_TRUE(cq[1].re == -inf && isnan(cq[1].im));
  Kro64fc c64[1] = {{1.0, 2.0}};
  ASSERT_EQ(krosDivC_64fc_I({0.0, 2.0}, c64, 1), kroStatusOk);
  EXPECT_TRUE(c64[0].re == 1.0 && c64[0].im == -0.5);
}

}  // namespace
