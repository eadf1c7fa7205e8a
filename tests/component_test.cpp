// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 component transforms: argument checks, hand values, every function
// against its formula on random and extreme samples, round trips, untouched row
// padding, and the row-parallel 32-bit RCT across thread counts.
#include <gtest/gtest.h>
#include <math.h>
#include <stdint.h>

#include <functional>
#include <iterator>
#include <vector>

#include "kroj.h"
#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;
using kro_test::ScopedThreads;

// ---- The formulas, written out: integer ones exactly in 64 bits, then wrapped ----

template <class T>
T Low(int64_t v) {
  return static_cast<T>(static_cast<uint64_t>(v));
}
// A 32-bit sum wrapped before the arithmetic shift.
int64_t Shr(int64_t v, int s) { return static_cast<int64_t>(static_cast<int32_t>(static_cast<uint32_t>(v))) >> s; }

template <class T>
void RctFwd(const T in[3], T out[3]) {
  const int64_t r = in[0], g = in[1], b = in[2];
  out[0] = Low<T>(Shr(r + 2 * g + b, 2));
  out[1] = Low<T>(b - g);
  out[2] = Low<T>(r - g);
}
template <class T>
void RctInv(const T in[3], T out[3]) {
  const int64_t y = in[0], u = in[1], v = in[2];
  const int64_t g = y - Shr(u + v, 2);
  out[0] = Low<T>(v + g);
  out[1] = Low<T>(g);
  out[2] = Low<T>(u + g);
}
template <class T>
void IctFwdFix(const T in[3], T out[3]) {
  const int64_t r = in[0], g = in[1], b = in[2];
  out[0] = Low<T>(Shr(4899 * r + 9617 * g + 1868 * b + 8192, 14));
  out[1] = Low<T>(Shr(-2765 * r - 5427 * g + 8192 * b + 8192, 14));
  out[2] = Low<T>(Shr(8192 * r - 6860 * g - 1332 * b + 8192, 14));
}
template <class T>
void IctInvFix(const T in[3], T out[3]) {
  const int64_t y = in[0], u = in[1], v = in[2];
  out[0] = Low<T>(y + Shr(22970 * v + 8192, 14));
  out[1] = Low<T>(y + Shr(-5638 * u - 11700 * v + 8192, 14));
  out[2] = Low<T>(y + Shr(29032 * u + 8192, 14));
}
void IctFwdF(const float in[3], float out[3]) {
  const double r = in[0], g = in[1], b = in[2];
  out[0] = static_cast<float>(0.299 * r + 0.587 * g + 0.114 * b);
  out[1] = static_cast<float>(-0.16875 * r - 0.33126 * g + 0.5 * b);
  out[2] = static_cast<float>(0.5 * r - 0.41869 * g - 0.08131 * b);
}
void IctInvF(const float in[3], float out[3]) {
  const double y = in[0], u = in[1], v = in[2];
  out[0] = static_cast<float>(y + 1.402 * v);
  out[1] = static_cast<float>(y - 0.34413 * u - 0.71414 * v);
  out[2] = static_cast<float>(y + 1.772 * u);
}

// ---- Calling the three layouts uniformly ---------------------------------------

// Three planes of w x h samples with padded rows and guards around them.
template <class T>
struct Planes {
  GuardedImage<T> p[3];
  Planes(int w, int h) : p{GuardedImage<T>(w, h, 1, 8), GuardedImage<T>(w, h, 1, 8), GuardedImage<T>(w, h, 1, 8)} {}
  T* ptr[3] = {p[0].data(), p[1].data(), p[2].data()};
  int step() const { return p[0].step(); }
};

enum class Layout { kP3IR, kC3P3R, kP3C3R };

template <class T>
struct Transform {
  const char* name;
  Layout layout;
  KroStatus (*in_place)(T* [3], int, KroiSize);
  KroStatus (*split)(const T*, int, T* [3], int, KroiSize);
  KroStatus (*merge)(const T* [3], int, T*, int, KroiSize);
  void (*formula)(const T in[3], T out[3]);
};

// Runs t on a w x h image whose pixel (x, y) component c is src(x, y, c); returns
// the output as pixel-major triples and checks that nothing outside was written.
template <class T>
std::vector<T> Apply(const Transform<T>& t, int w, int h, const std::function<T(int, int, int)>& src) {
  std::vector<T> out;
  const KroiSize size{w, h};
  if (t.layout == Layout::kC3P3R || t.layout == Layout::kP3C3R) {
    GuardedImage<T> c3(w, h, 3, 12);
    Planes<T> pl(w, h);
    if (t.layout == Layout::kC3P3R) {
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
          for (int c = 0; c < 3; ++c) c3.at(x, y, c) = src(x, y, c);
      EXPECT_EQ(t.split(c3.data(), c3.step(), pl.ptr, pl.step(), size), kroStatusOk);
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
          for (int c = 0; c < 3; ++c) out.push_back(pl.p[c].at(x, y));
    } else {
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
          for (int c = 0; c < 3; ++c) pl.p[c].at(x, y) = src(x, y, c);
      const T* cptr[3] = {pl.ptr[0], pl.ptr[1], pl.ptr[2]};
      EXPECT_EQ(t.merge(cptr, pl.step(), c3.data(), c3.step(), size), kroStatusOk);
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
          for (int c = 0; c < 3; ++c) out.push_back(c3.at(x, y, c));
    }
    EXPECT_TRUE(c3.IntactOutside()) << t.name;
    for (auto& p : pl.p) EXPECT_TRUE(p.IntactOutside()) << t.name;
    return out;
  }
  Planes<T> pl(w, h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < 3; ++c) pl.p[c].at(x, y) = src(x, y, c);
  EXPECT_EQ(t.in_place(pl.ptr, pl.step(), size), kroStatusOk);
  for (auto& p : pl.p) EXPECT_TRUE(p.IntactOutside()) << t.name;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < 3; ++c) out.push_back(pl.p[c].at(x, y));
  return out;
}

const Transform<Kro16s> k16s[] = {
    {"RCTFwd_16s_P3IR", Layout::kP3IR, kroiRCTFwd_JPEG2K_16s_P3IR, nullptr, nullptr, RctFwd<Kro16s>},
    {"RCTInv_16s_P3IR", Layout::kP3IR, kroiRCTInv_JPEG2K_16s_P3IR, nullptr, nullptr, RctInv<Kro16s>},
    {"ICTFwd_16s_P3IR", Layout::kP3IR, kroiICTFwd_JPEG2K_16s_P3IR, nullptr, nullptr, IctFwdFix<Kro16s>},
    {"ICTInv_16s_P3IR", Layout::kP3IR, kroiICTInv_JPEG2K_16s_P3IR, nullptr, nullptr, IctInvFix<Kro16s>},
    {"RCTFwd_16s_C3P3R", Layout::kC3P3R, nullptr, kroiRCTFwd_JPEG2K_16s_C3P3R, nullptr, RctFwd<Kro16s>},
    {"RCTInv_16s_P3C3R", Layout::kP3C3R, nullptr, nullptr, kroiRCTInv_JPEG2K_16s_P3C3R, RctInv<Kro16s>},
};
const Transform<Kro32s> k32s[] = {
    {"RCTFwd_32s_P3IR", Layout::kP3IR, kroiRCTFwd_JPEG2K_32s_P3IR, nullptr, nullptr, RctFwd<Kro32s>},
    {"RCTInv_32s_P3IR", Layout::kP3IR, kroiRCTInv_JPEG2K_32s_P3IR, nullptr, nullptr, RctInv<Kro32s>},
    {"ICTFwd_32s_P3IR", Layout::kP3IR, kroiICTFwd_JPEG2K_32s_P3IR, nullptr, nullptr, IctFwdFix<Kro32s>},
    {"ICTInv_32s_P3IR", Layout::kP3IR, kroiICTInv_JPEG2K_32s_P3IR, nullptr, nullptr, IctInvFix<Kro32s>},
    {"RCTFwd_32s_C3P3R", Layout::kC3P3R, nullptr, kroiRCTFwd_JPEG2K_32s_C3P3R, nullptr, RctFwd<Kro32s>},
    {"RCTInv_32s_P3C3R", Layout::kP3C3R, nullptr, nullptr, kroiRCTInv_JPEG2K_32s_P3C3R, RctInv<Kro32s>},
};
const Transform<Kro32f> k32f[] = {
    {"ICTFwd_32f_P3IR", Layout::kP3IR, kroiICTFwd_JPEG2K_32f_P3IR, nullptr, nullptr, IctFwdF},
    {"ICTInv_32f_P3IR", Layout::kP3IR, kroiICTInv_JPEG2K_32f_P3IR, nullptr, nullptr, IctInvF},
    {"ICTFwd_32f_C3P3R", Layout::kC3P3R, nullptr, kroiICTFwd_JPEG2K_32f_C3P3R, nullptr, IctFwdF},
    {"ICTInv_32f_P3C3R", Layout::kP3C3R, nullptr, nullptr, kroiICTInv_JPEG2K_32f_P3C3R, IctInvF},
};

// ---- Tests --------------------------------------------------------------------------

TEST(ComponentTransform, ArgumentChecksInDocumentedOrder) {
  Kro32s a[12] = {}, b[12] = {}, c[12] = {}, px[36] = {};
  Kro32s* planes[3] = {a, b, c};
  Kro32s* holed[3] = {a, nullptr, c};
  const Kro32s* cplanes[3] = {a, b, c};
  const Kro32s* choled[3] = {a, b, nullptr};
  const KroiSize ok{4, 3}, no_rows{4, 0};
  struct Case {
    const char* what;
    KroStatus got, want;
  };
  const Case cases[] = {
      {"P3IR null array", kroiRCTFwd_JPEG2K_32s_P3IR(nullptr, 0, no_rows), kroStatusNullPointer},
      {"P3IR null plane", kroiICTInv_JPEG2K_32s_P3IR(holed, 0, no_rows), kroStatusNullPointer},
      {"P3IR step before size", kroiRCTInv_JPEG2K_32s_P3IR(planes, 0, no_rows), kroStatusBadStep},
      {"P3IR size", kroiICTFwd_JPEG2K_16s_P3IR(reinterpret_cast<Kro16s**>(planes), 8, KroiSize{0, 3}),
       kroStatusBadSize},
      {"C3P3R null source", kroiRCTFwd_JPEG2K_32s_C3P3R(nullptr, 0, planes, 16, ok), kroStatusNullPointer},
      {"C3P3R null plane before step", kroiRCTFwd_JPEG2K_32s_C3P3R(px, 0, holed, 16, ok), kroStatusNullPointer},
      {"C3P3R dst step before size", kroiRCTFwd_JPEG2K_32s_C3P3R(px, 48, planes, 0, no_rows), kroStatusBadStep},
      {"C3P3R size", kroiRCTFwd_JPEG2K_32s_C3P3R(px, 48, planes, 16, no_rows), kroStatusBadSize},
      {"P3C3R null plane", kroiRCTInv_JPEG2K_32s_P3C3R(choled, 16, px, 48, ok), kroStatusNullPointer},
      {"P3C3R null destination", kroiRCTInv_JPEG2K_32s_P3C3R(cplanes, 0, nullptr, 0, ok), kroStatusNullPointer},
      {"P3C3R src step before size", kroiRCTInv_JPEG2K_32s_P3C3R(cplanes, 0, px, 48, no_rows), kroStatusBadStep},
      {"P3C3R size", kroiRCTInv_JPEG2K_32s_P3C3R(cplanes, 16, px, 48, KroiSize{-1, 1}), kroStatusBadSize},
  };
  for (const Case& t : cases) EXPECT_EQ(t.got, t.want) << t.what;
  for (int i = 0; i < 12; ++i) EXPECT_TRUE(a[i] == 0 && b[i] == 0 && c[i] == 0);
  for (Kro32s v : px) EXPECT_EQ(v, 0);
}

TEST(ComponentTransform, HandValues) {
  auto one = [](auto fn, auto r, auto g, auto b) {
    using T = decltype(r);
    T p0[1] = {r}, p1[1] = {g}, p2[1] = {b};
    T* pl[3] = {p0, p1, p2};
    EXPECT_EQ(fn(pl, 4, KroiSize{1, 1}), kroStatusOk);
    return std::vector<int64_t>{p0[0], p1[0], p2[0]};
  };
  // The shift floors.
  EXPECT_EQ(one(kroiRCTFwd_JPEG2K_32s_P3IR, 1, 0, 0), (std::vector<int64_t>{0, 0, 1}));
  EXPECT_EQ(one(kroiRCTFwd_JPEG2K_16s_P3IR, Kro16s{-1}, Kro16s{0}, Kro16s{0}), (std::vector<int64_t>{-1, 0, -1}));
  EXPECT_EQ(one(kroiICTFwd_JPEG2K_16s_P3IR, Kro16s{255}, Kro16s{255}, Kro16s{255}),
            (std::vector<int64_t>{255, 0, 0}));
  // 16 bits keep the low bits: B - G = 32767 - (-32768) = 65535 is -1.
  EXPECT_EQ(one(kroiRCTFwd_JPEG2K_16s_P3IR, Kro16s{0}, Kro16s{-32768}, Kro16s{32767}),
            (std::vector<int64_t>{(0 - 65536 + 32767) >> 2, -1, -32768}));
  // The inverse rounds each correction term: R = 100 + ((22970 * 3 + 8192) >> 14) = 104.
  EXPECT_EQ(one(kroiICTInv_JPEG2K_32s_P3IR, 100, 0, 3), (std::vector<int64_t>{104, 100 + ((-35100 + 8192) >> 14), 100}));
}

template <class T>
void CheckFormulas(const Transform<T>* list, size_t count, double lo, double hi) {
  Rng rng(55);
  for (size_t i = 0; i < count; ++i) {
    const Transform<T>& t = list[i];
    for (const KroiSize s : {KroiSize{1, 1}, KroiSize{7, 3}, KroiSize{33, 2}}) {
      std::vector<T> in(static_cast<size_t>(s.width) * s.height * 3);
      for (auto& v : in) {
        if constexpr (std::is_floating_point_v<T>) {
          v = static_cast<T>(rng.Real(lo, hi));
        } else {
          // Extremes as often as anything else, to reach every wrap.
          const int64_t pick = rng.Int(0, 3);
          v = static_cast<T>(pick == 0 ? lo : pick == 1 ? hi : rng.Int(static_cast<int64_t>(lo), static_cast<int64_t>(hi)));
        }
      }
      const std::vector<T> got =
          Apply<T>(t, s.width, s.height, [&](int x, int y, int c) { return in[(static_cast<size_t>(y) * s.width + x) * 3 + c]; });
      for (size_t p = 0; p < in.size(); p += 3) {
        T want[3];
        t.formula(&in[p], want);
        for (int c = 0; c < 3; ++c) ASSERT_EQ(got[p + c], want[c]) << t.name << " pixel " << p / 3 << " c " << c;
      }
    }
  }
}

TEST(ComponentTransform, EveryFunctionFollowsItsFormula) {
  CheckFormulas(k16s, std::size(k16s), -32768, 32767);
  CheckFormulas(k32s, std::size(k32s), INT32_MIN, INT32_MAX);
  CheckFormulas(k32f, std::size(k32f), -1e4, 1e4);
}

TEST(ComponentTransform, RoundTrips) {
  Rng rng(9);
  const int w = 19, h = 4;
  // RCT is exact while R + 2G + B fits; in place and through the interleaved forms.
  std::vector<Kro32s> img32(w * h * 3);
  std::vector<Kro16s> img16(w * h * 3);
  rng.Fill(img32.data(), img32.size(), -(1 << 28), 1 << 28);
  rng.Fill(img16.data(), img16.size(), -8192, 8191);
  auto at32 = [&](int x, int y, int c) { return img32[(y * w + x) * 3 + c]; };
  auto at16 = [&](int x, int y, int c) { return img16[(y * w + x) * 3 + c]; };
  std::vector<Kro32s> f32 = Apply<Kro32s>(k32s[0], w, h, at32);
  EXPECT_EQ(Apply<Kro32s>(k32s[1], w, h, [&](int x, int y, int c) { return f32[(y * w + x) * 3 + c]; }), img32);
  f32 = Apply<Kro32s>(k32s[4], w, h, at32);
  EXPECT_EQ(Apply<Kro32s>(k32s[5], w, h, [&](int x, int y, int c) { return f32[(y * w + x) * 3 + c]; }), img32);
  std::vector<Kro16s> f16 = Apply<Kro16s>(k16s[0], w, h, at16);
  EXPECT_EQ(Apply<Kro16s>(k16s[1], w, h, [&](int x, int y, int c) { return f16[(y * w + x) * 3 + c]; }), img16);
  f16 = Apply<Kro16s>(k16s[4], w, h, at16);
  EXPECT_EQ(Apply<Kro16s>(k16s[5], w, h, [&](int x, int y, int c) { return f16[(y * w + x) * 3 + c]; }), img16);
  // ICT: the five-digit matrices invert each other to about 1e-4; the fixed point
  // ones to a few units.
  std::vector<float> rgb(w * h * 3);
  for (auto& v : rgb) v = static_cast<float>(rng.Real(0, 255));
  const std::vector<float> ycc =
      Apply<Kro32f>(k32f[2], w, h, [&](int x, int y, int c) { return rgb[(y * w + x) * 3 + c]; });
  const std::vector<float> back =
      Apply<Kro32f>(k32f[3], w, h, [&](int x, int y, int c) { return ycc[(y * w + x) * 3 + c]; });
  for (size_t i = 0; i < rgb.size(); ++i) EXPECT_NEAR(back[i], rgb[i], 0.05) << i;
  rng.Fill(img16.data(), img16.size(), 0, 255);
  f16 = Apply<Kro16s>(k16s[2], w, h, at16);
  const std::vector<Kro16s> b16 = Apply<Kro16s>(k16s[3], w, h, [&](int x, int y, int c) { return f16[(y * w + x) * 3 + c]; });
  for (size_t i = 0; i < img16.size(); ++i) EXPECT_NEAR(b16[i], img16[i], 2) << i;
}

// The four 32-bit RCT functions split rows over threads from 8193 pixels on; the
// result never depends on the split.
TEST(ComponentTransform, RowParallelRctIsIndependentOfThreadCount) {
  const KroiSize sizes[] = {{128, 64}, {8193, 1}, {1, 8193}, {97, 85}, {64, 129}};
  for (const KroiSize s : sizes) {
    auto src = [&](int x, int y, int c) { return static_cast<Kro32s>((x * 7919 + y * 104729 + c * 31) % 200003 - 100001); };
    std::vector<std::vector<Kro32s>> serial;
    {
      ScopedThreads one(1);
      for (int i : {0, 1, 4, 5}) serial.push_back(Apply<Kro32s>(k32s[i], s.width, s.height, src));
    }
    for (int threads = 1; threads <= 8; ++threads) {
      ScopedThreads n(threads);
      int j = 0;
      for (int i : {0, 1, 4, 5}) {
        EXPECT_EQ(Apply<Kro32s>(k32s[i], s.width, s.height, src), serial[j++])
            << k32s[i].name << " " << s.width << "x" << s.height << " threads " << threads;
      }
    }
    // And the serial result is the formula's.
    for (size_t p = 0; p < serial[0].size(); p += 3) {
      const int x = static_cast<int>(p / 3) % s.width, y = static_cast<int>(p / 3) / s.width;
      const Kro32s in[3] = {src(x, y, 0), src(x, y, 1), src(x, y, 2)};
      Kro32s want[3];
      RctFwd(in, want);
      ASSERT_EQ(serial[0][p], want[0]);
      ASSERT_EQ(serial[0][p + 2], want[2]);
    }
  }
}

}  // namespace
