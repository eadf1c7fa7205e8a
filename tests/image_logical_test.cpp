// SPDX-License-Identifier: BSD-3-Clause
// Image logical operations: every exported member runs through one table on every
// SIMD target against the bitwise operators of C, with guard bytes around every
// image, and once more on buffers that end at the last sample the member may touch.
#include <limits.h>
#include <string.h>

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "kroj.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;

enum Ptr { kSrc1, kSrc2, kValue, kDst };
enum Step { kSrc1Step, kSrc2Step, kDstStep };

template <class T>
struct Args {
  const T* src1 = nullptr;
  int src1_step = 0;
  const T* src2 = nullptr;
  int src2_step = 0;
  const T* value = nullptr;
  T* dst = nullptr;
  int dst_step = 0;
  KroiSize size{};
};

template <class T>
struct Entry {
  std::string name;
  std::function<KroStatus(const Args<T>&)> call;
  std::vector<Ptr> ptrs;
  std::vector<Step> steps;
};

template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, const T*, int, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) {
            return f(a.src1, a.src1_step, a.src2, a.src2_step, a.dst, a.dst_step, a.size);
          },
          {kSrc1, kSrc2, kDst},
          {kSrc1Step, kSrc2Step, kDstStep}};
}
// Two-source in place (pSrc, pSrcDst) and NOT out of place (pSrc, pDst).
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) { return f(a.src1, a.src1_step, a.dst, a.dst_step, a.size); },
          {kSrc1, kDst},
          {kSrc1Step, kDstStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, T, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) {
            return f(a.src1, a.src1_step, a.value[0], a.dst, a.dst_step, a.size);
          },
          {kSrc1, kDst},
          {kSrc1Step, kDstStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, const T*, T*, int, KroiSize)) {
  return {
      n,
      [f](const Args<T>& a) { return f(a.src1, a.src1_step, a.value, a.dst, a.dst_step, a.size); },
      {kSrc1, kValue, kDst},
      {kSrc1Step, kDstStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(T, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) { return f(a.value[0], a.dst, a.dst_step, a.size); },
          {kDst},
          {kDstStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) { return f(a.value, a.dst, a.dst_step, a.size); },
          {kValue, kDst},
          {kDstStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(T*, int, KroiSize)) {
  return {n, [f](const Args<T>& a) { return f(a.dst, a.dst_step, a.size); }, {kDst}, {kDstStep}};
}

#define F(fn) Adapt(#fn, fn)
template <class T>
std::vector<Entry<T>> Members();
template <>
std::vector<Entry<Kro8u>> Members() {
  return {F(kroiAnd_8u_C1R),  F(kroiAnd_8u_C1IR),  F(kroiAnd_8u_C3R),   F(kroiAnd_8u_C3IR),
          F(kroiAnd_8u_C4R),  F(kroiAnd_8u_C4IR),  F(kroiAnd_8u_AC4R),  F(kroiAnd_8u_AC4IR),
          F(kroiOr_8u_C1R),   F(kroiOr_8u_C1IR),   F(kroiOr_8u_C3R),    F(kroiOr_8u_C3IR),
          F(kroiOr_8u_C4R),   F(kroiOr_8u_C4IR),   F(kroiOr_8u_AC4R),   F(kroiOr_8u_AC4IR),
          F(kroiXor_8u_C1R),  F(kroiXor_8u_C1IR),  F(kroiXor_8u_C3R),   F(kroiXor_8u_C3IR),
          F(kroiXor_8u_C4R),  F(kroiXor_8u_C4IR),  F(kroiXor_8u_AC4R),  F(kroiXor_8u_AC4IR),
          F(kroiAndC_8u_C1R), F(kroiAndC_8u_C1IR), F(kroiAndC_8u_C3R),  F(kroiAndC_8u_C3IR),
          F(kroiAndC_8u_C4R), F(kroiAndC_8u_C4IR), F(kroiAndC_8u_AC4R), F(kroiAndC_8u_AC4IR),
          F(kroiOrC_8u_C1R),  F(kroiOrC_8u_C1IR),  F(kroiOrC_8u_C3R),   F(kroiOrC_8u_C3IR),
          F(kroiOrC_8u_C4R),  F(kroiOrC_8u_C4IR),  F(kroiOrC_8u_AC4R),  F(kroiOrC_8u_AC4IR),
          F(kroiXorC_8u_C1R), F(kroiXorC_8u_C1IR), F(kroiXorC_8u_C3R),  F(kroiXorC_8u_C3IR),
          F(kroiXorC_8u_C4R), F(kroiXorC_8u_C4IR), F(kroiXorC_8u_AC4R), F(kroiXorC_8u_AC4IR),
          F(kroiNot_8u_C1R),  F(kroiNot_8u_C1IR),  F(kroiNot_8u_C3R),   F(kroiNot_8u_C3IR),
          F(kroiNot_8u_C4R),  F(kroiNot_8u_C4IR),  F(kroiNot_8u_AC4R),  F(kroiNot_8u_AC4IR)};
}
template <>
std::vector<Entry<Kro16u>> Members() {
  return {F(kroiAnd_16u_C1R),  F(kroiAnd_16u_C1IR),  F(kroiAnd_16u_C3R),   F(kroiAnd_16u_C3IR),
          F(kroiAnd_16u_C4R),  F(kroiAnd_16u_C4IR),  F(kroiAnd_16u_AC4R),  F(kroiAnd_16u_AC4IR),
          F(kroiOr_16u_C1R),   F(kroiOr_16u_C1IR),   F(kroiOr_16u_C3R),    F(kroiOr_16u_C3IR),
          F(kroiOr_16u_C4R),   F(kroiOr_16u_C4IR),   F(kroiOr_16u_AC4R),   F(kroiOr_16u_AC4IR),
          F(kroiXor_16u_C1R),  F(kroiXor_16u_C1IR),  F(kroiXor_16u_C3R),   F(kroiXor_16u_C3IR),
          F(kroiXor_16u_C4R),  F(kroiXor_16u_C4IR),  F(kroiXor_16u_AC4R),  F(kroiXor_16u_AC4IR),
          F(kroiAndC_16u_C1R), F(kroiAndC_16u_C1IR), F(kroiAndC_16u_C3R),  F(kroiAndC_16u_C3IR),
          F(kroiAndC_16u_C4R), F(kroiAndC_16u_C4IR), F(kroiAndC_16u_AC4R), F(kroiAndC_16u_AC4IR),
          F(kroiOrC_16u_C1R),  F(kroiOrC_16u_C1IR),  F(kroiOrC_16u_C3R),   F(kroiOrC_16u_C3IR),
          F(kroiOrC_16u_C4R),  F(kroiOrC_16u_C4IR),  F(kroiOrC_16u_AC4R),  F(kroiOrC_16u_AC4IR),
          F(kroiXorC_16u_C1R), F(kroiXorC_16u_C1IR), F(kroiXorC_16u_C3R),  F(kroiXorC_16u_C3IR),
          F(kroiXorC_16u_C4R), F(kroiXorC_16u_C4IR), F(kroiXorC_16u_AC4R), F(kroiXorC_16u_AC4IR)};
}
template <>
std::vector<Entry<Kro32s>> Members() {
  return {F(kroiAnd_32s_C1R),  F(kroiAnd_32s_C1IR),  F(kroiAnd_32s_C3R),   F(kroiAnd_32s_C3IR),
          F(kroiAnd_32s_C4R),  F(kroiAnd_32s_C4IR),  F(kroiAnd_32s_AC4R),  F(kroiAnd_32s_AC4IR),
          F(kroiOr_32s_C1R),   F(kroiOr_32s_C1IR),   F(kroiOr_32s_C3R),    F(kroiOr_32s_C3IR),
          F(kroiOr_32s_C4R),   F(kroiOr_32s_C4IR),   F(kroiOr_32s_AC4R),   F(kroiOr_32s_AC4IR),
          F(kroiXor_32s_C1R),  F(kroiXor_32s_C1IR),  F(kroiXor_32s_C3R),   F(kroiXor_32s_C3IR),
          F(kroiXor_32s_C4R),  F(kroiXor_32s_C4IR),  F(kroiXor_32s_AC4R),  F(kroiXor_32s_AC4IR),
          F(kroiAndC_32s_C1R), F(kroiAndC_32s_C1IR), F(kroiAndC_32s_C3R),  F(kroiAndC_32s_C3IR),
          F(kroiAndC_32s_C4R), F(kroiAndC_32s_C4IR), F(kroiAndC_32s_AC4R), F(kroiAndC_32s_AC4IR),
          F(kroiOrC_32s_C1R),  F(kroiOrC_32s_C1IR),  F(kroiOrC_32s_C3R),   F(kroiOrC_32s_C3IR),
          F(kroiOrC_32s_C4R),  F(kroiOrC_32s_C4IR),  F(kroiOrC_32s_AC4R),  F(kroiOrC_32s_AC4IR),
          F(kroiXorC_32s_C1R), F(kroiXorC_32s_C1IR), F(kroiXorC_32s_C3R),  F(kroiXorC_32s_C3IR),
          F(kroiXorC_32s_C4R), F(kroiXorC_32s_C4IR), F(kroiXorC_32s_AC4R), F(kroiXorC_32s_AC4IR)};
}

// What a member computes, read from its name.
struct Model {
  char op;        // '&', '|', '^', or '~' for NOT
  bool constant;  // second operand is a per-channel constant
  bool in_place;  // IR
  int channels;   // samples per pixel
  int written;    // channels written (3 for AC4)
};

Model ModelOf(const std::string& name) {
  Model m{};
  const std::string op = name.substr(4, name.find('_') - 4);
  m.constant = op.back() == 'C';
  const std::string base = m.constant ? op.substr(0, op.size() - 1) : op;
  m.op = base == "And" ? '&' : base == "Or" ? '|' : base == "Xor" ? '^' : '~';
  const std::string layout = name.substr(name.rfind('_') + 1);
  m.in_place = layout.find("IR") != std::string::npos;
  m.channels = layout[0] == 'A' ? 4 : layout[1] - '0';
  m.written = layout[0] == 'A' ? 3 : m.channels;
  return m;
}

template <class T>
T Get(GuardedImage<T>& im, int ch, int x, int y, int c) {
  T v;
  memcpy(&v, reinterpret_cast<uint8_t*>(im.row(y)) + (static_cast<size_t>(x) * ch + c) * sizeof(T),
         sizeof(T));
  return v;
}
template <class T>
void Put(GuardedImage<T>& im, int ch, int x, int y, int c, T v) {
  memcpy(reinterpret_cast<uint8_t*>(im.row(y)) + (static_cast<size_t>(x) * ch + c) * sizeof(T), &v,
         sizeof(T));
}

template <class T>
struct Scene {
  Model m;
  GuardedImage<T> src1, src2, dst;
  T value[4];
  Args<T> args;

  Scene(const std::string& name, KroiSize s, int pad, int odd_channel, Rng& rng)
      : m(ModelOf(name)),
        src1(s.width, s.height, m.channels, pad),
        src2(s.width, s.height, m.channels, pad + 1),
        dst(s.width, s.height, m.channels, pad) {
    for (auto* im : {&src1, &src2, &dst}) {
      for (int y = 0; y < s.height; ++y) {
        rng.Fill(reinterpret_cast<uint8_t*>(im->row(y)),
                 static_cast<size_t>(s.width) * m.channels * sizeof(T), 0, 255);
      }
    }
    rng.Fill(reinterpret_cast<uint8_t*>(value), sizeof(value), 0, 255);
    // odd_channel 0: random constants; 1..3: all equal to value[0] but that one;
    // 4: all equal (the single-constant path of C3 and C4).
    if (odd_channel > 0) {
      for (int c = 1; c < 4; ++c)
        value[c] = c == odd_channel ? static_cast<T>(~value[0]) : value[0];
    }
    args = {src1.data(), src1.step(), src2.data(), src2.step(), value, dst.data(), dst.step(), s};
  }

  void Expect(GuardedImage<T>& out) {
    const KroiSize s = out.size();
    for (int y = 0; y < s.height; ++y) {
      for (int x = 0; x < s.width; ++x) {
        for (int c = 0; c < m.written; ++c) {
          const bool unary = m.constant || m.op == '~';
          const T a =
              unary && m.in_place ? Get(dst, m.channels, x, y, c) : Get(src1, m.channels, x, y, c);
          const T b = m.op == '~'  ? static_cast<T>(~T{0})
                      : m.constant ? value[m.channels == 1 ? 0 : c]
                      : m.in_place ? Get(dst, m.channels, x, y, c)
                                   : Get(src2, m.channels, x, y, c);
          const T r = m.op == '&' ? T(a & b) : m.op == '|' ? T(a | b) : T(a ^ b);
          Put(out, m.channels, x, y, c, r);
        }
      }
    }
  }
};

// A copy of a row's samples, up to the last one the layout touches, in a heap block
// of exactly that size.
template <class T>
struct Tight {
  Tight(const T* p, size_t count) : bytes(count * sizeof(T)) { memcpy(bytes.data(), p, bytes.size()); }
  T* data() { return reinterpret_cast<T*>(bytes.data()); }
  std::vector<uint8_t> bytes;
};

template <class T>
void CheckValues(const Entry<T>& e, KroiSize size, int pad, int odd_channel, uint64_t seed) {
  SCOPED_TRACE(testing::Message() << e.name << " " << size.width << "x" << size.height << " pad "
                                  << pad << " constants " << odd_channel);
  Rng rng(seed);
  Scene<T> sc(e.name, size, pad, odd_channel, rng);
  GuardedImage<T> want = sc.dst;
  const GuardedImage<T> src1 = sc.src1, src2 = sc.src2;
  sc.Expect(want);
  if (size.height == 1) {
    const size_t n = static_cast<size_t>(size.width - 1) * sc.m.channels + sc.m.written;
    Tight<T> a(sc.args.src1, n), b(sc.args.src2, n), d(sc.args.dst, n);
    ASSERT_EQ(e.call({a.data(), 1, b.data(), 1, sc.args.value, d.data(), 1, size}), kroStatusOk);
    EXPECT_EQ(0, memcmp(d.data(), want.row(0), n * sizeof(T)));
  }
  ASSERT_EQ(e.call(sc.args), kroStatusOk);
  EXPECT_TRUE(sc.dst.SamePixels(want));
  EXPECT_TRUE(sc.dst.IntactOutside());
  EXPECT_TRUE(sc.src1.SamePixels(src1) && sc.src2.SamePixels(src2));
}

template <class T>
void CheckAllValues() {
  uint64_t seed = 100;
  for (const auto& e : Members<T>()) {
    for (int w : kro_test::EdgeWidths()) {
      // odd 0: random constants; 1..3: all equal but that channel; 4: all equal (the
      // single-constant rows of C3 and C4).
      const int odd = ModelOf(e.name).constant ? w % 5 : 0;
      CheckValues(e, {w, 2}, 0, odd, seed++);
      CheckValues(e, {w, 2}, 3, odd, seed++);
      CheckValues(e, {w, 1}, 1, odd, seed++);
    }
  }
}

class ImageLogicalTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(ImageLogicalTargets);

TEST_P(ImageLogicalTargets, EveryMemberMatchesTheOperator8u) { CheckAllValues<Kro8u>(); }
TEST_P(ImageLogicalTargets, EveryMemberMatchesTheOperator16u) { CheckAllValues<Kro16u>(); }
TEST_P(ImageLogicalTargets, EveryMemberMatchesTheOperator32s) { CheckAllValues<Kro32s>(); }

// Pointers, then steps, then size; every single and paired fault; a failed call
// writes nothing.
template <class T>
void CheckArguments(const Entry<T>& e) {
  enum Kind { kNullPtr, kBadStep, kBadSize };  // in check order
  struct Fault {
    Kind kind;
    int which;
  };
  std::vector<Fault> faults;
  for (Ptr p : e.ptrs) faults.push_back({kNullPtr, p});
  for (Step s : e.steps) {
    faults.push_back({kBadStep, s});
    faults.push_back({kBadStep, s + 3});  // the same step negative
  }
  for (int s = 0; s < 3; ++s) faults.push_back({kBadSize, s});
  const KroStatus status[] = {kroStatusNullPointer, kroStatusBadStep, kroStatusBadSize};

  Rng rng(3);
  for (size_t i = 0; i < faults.size(); ++i) {
    for (size_t j = i; j < faults.size(); ++j) {
      Scene<T> sc(e.name, {5, 2}, 4, 0, rng);
      Args<T>& a = sc.args;
      for (const Fault& f : {faults[i], faults[j]}) {
        if (f.kind == kNullPtr) {
          if (f.which == kSrc1) a.src1 = nullptr;
          if (f.which == kSrc2) a.src2 = nullptr;
          if (f.which == kValue) a.value = nullptr;
          if (f.which == kDst) a.dst = nullptr;
        } else if (f.kind == kBadStep) {
          int& step = f.which % 3 == kSrc1Step   ? a.src1_step
                      : f.which % 3 == kSrc2Step ? a.src2_step
                                                 : a.dst_step;
          step = f.which < 3 ? 0 : -1;
        } else {
          if (f.which == 0) a.size.width = 0;
          if (f.which == 1) a.size.height = 0;
          if (f.which == 2) a.size.width = INT_MIN;
        }
      }
      const GuardedImage<T> before = sc.dst;
      EXPECT_EQ(e.call(a), status[std::min(faults[i].kind, faults[j].kind)])
          << e.name << " faults " << faults[i].kind << "/" << faults[i].which << " and "
          << faults[j].kind << "/" << faults[j].which;
      EXPECT_TRUE(sc.dst.SamePixels(before)) << e.name;
    }
  }
}

TEST(ImageLogical, ArgumentChecksInFamilyOrder) {
  for (const auto& e : Members<Kro8u>()) CheckArguments(e);
  for (const auto& e : Members<Kro16u>()) CheckArguments(e);
  for (const auto& e : Members<Kro32s>()) CheckArguments(e);
}

TEST(ImageLogical, HandVectors) {
  Kro8u px[4] = {0x0F, 0xF0, 0x00, 0x55};
  ASSERT_EQ(kroiNot_8u_AC4IR(px, 4, {1, 1}), kroStatusOk);
  EXPECT_EQ(px[0], 0xF0);
  EXPECT_EQ(px[1], 0x0F);
  EXPECT_EQ(px[2], 0xFF);
  EXPECT_EQ(px[3], 0x55);

  const Kro32s s[3] = {-1, INT_MIN + 1, 0x7FFF0000};
  Kro32s d[3];
  ASSERT_EQ(kroiAndC_32s_C1R(s, 12, -2, d, 12, {3, 1}), kroStatusOk);
  EXPECT_EQ(d[0], -2);
  EXPECT_EQ(d[1], INT_MIN);
  EXPECT_EQ(d[2], 0x7FFF0000);

  const Kro16u v[3] = {0x8001, 0x00FF, 0xFFFF};
  Kro16u rgb[3] = {0x0001, 0xFF00, 0x1234};
  ASSERT_EQ(kroiXorC_16u_C3IR(v, rgb, 6, {1, 1}), kroStatusOk);
  EXPECT_EQ(rgb[0], 0x8000);
  EXPECT_EQ(rgb[1], 0xFFFF);
  EXPECT_EQ(rgb[2], 0xEDCB);
}

}  // namespace
