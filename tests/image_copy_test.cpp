// SPDX-License-Identifier: BSD-3-Clause
// Image copy, set and convert: every exported member runs through one table on every
// SIMD target, against a model of what its layout moves, with guard bytes around
// every image, and once more on buffers that end at the last sample the member may
// touch (the sanitizer build then catches any read or write past it).
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

// Pointer and step arguments a member may take, so that one harness can null or
// break each of them.
enum Ptr { kSrc, kDst, kPlaneArray, kPlane0, kPlane1, kPlane2, kPlane3, kValue, kMask };
enum Step { kSrcStep, kDstStep, kMaskStep };

template <class T>
struct Args {
  const T* src = nullptr;
  int src_step = 0;
  T* dst = nullptr;
  int dst_step = 0;
  T* planes[4] = {};
  bool plane_array = true;  // false: the plane array itself is null
  const T* value = nullptr;
  const Kro8u* mask = nullptr;
  int mask_step = 0;
  KroiSize size{};
};

template <class T>
struct Entry {
  std::string name;
  std::function<KroStatus(const Args<T>&)> call;
  std::vector<Ptr> ptrs;    // checked for null
  std::vector<Step> steps;  // passed (whether checked depends on the family)
};

template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) { return f(a.src, a.src_step, a.dst, a.dst_step, a.size); },
          {kSrc, kDst},
          {kSrcStep, kDstStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, T*, int, KroiSize, const Kro8u*, int)) {
  return {n,
          [f](const Args<T>& a) {
            return f(a.src, a.src_step, a.dst, a.dst_step, a.size, a.mask, a.mask_step);
          },
          {kSrc, kDst, kMask},
          {kSrcStep, kDstStep, kMaskStep}};
}
// Interleaved to planes: the planes are the destination and share dst_step.
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, int, T**, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) {
            T* p[4] = {a.planes[0], a.planes[1], a.planes[2], a.planes[3]};
            return f(a.src, a.src_step, a.plane_array ? p : nullptr, a.dst_step, a.size);
          },
          {kSrc, kPlaneArray, kPlane0, kPlane1, kPlane2},
          {kSrcStep, kDstStep}};
}
// Planes to interleaved: the planes are the source and share src_step.
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T**, int, T*, int, KroiSize)) {
  return {n,
          [f](const Args<T>& a) {
            const T* p[4] = {a.planes[0], a.planes[1], a.planes[2], a.planes[3]};
            return f(a.plane_array ? p : nullptr, a.src_step, a.dst, a.dst_step, a.size);
          },
          {kDst, kPlaneArray, kPlane0, kPlane1, kPlane2},
          {kSrcStep, kDstStep}};
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
Entry<T> Adapt(const char* n, KroStatus (*f)(T, T*, int, KroiSize, const Kro8u*, int)) {
  return {n,
          [f](const Args<T>& a) {
            return f(a.value[0], a.dst, a.dst_step, a.size, a.mask, a.mask_step);
          },
          {kDst, kMask},
          {kDstStep, kMaskStep}};
}
template <class T>
Entry<T> Adapt(const char* n, KroStatus (*f)(const T*, T*, int, KroiSize, const Kro8u*, int)) {
  return {
      n,
      [f](const Args<T>& a) { return f(a.value, a.dst, a.dst_step, a.size, a.mask, a.mask_step); },
      {kValue, kDst, kMask},
      {kDstStep, kMaskStep}};
}

#define F(fn) Adapt(#fn, fn)

template <class T>
std::vector<Entry<T>> Members();
template <>
std::vector<Entry<Kro8u>> Members() {
  return {F(kroiCopy_8u_C1R),   F(kroiCopy_8u_C3R),   F(kroiCopy_8u_C4R),    F(kroiCopy_8u_AC4R),
          F(kroiCopy_8u_C3C1R), F(kroiCopy_8u_C1C3R), F(kroiCopy_8u_C4C1R),  F(kroiCopy_8u_C1C4R),
          F(kroiCopy_8u_C3CR),  F(kroiCopy_8u_C4CR),  F(kroiCopy_8u_AC4C3R), F(kroiCopy_8u_C3AC4R),
          F(kroiCopy_8u_C1MR),  F(kroiCopy_8u_C3MR),  F(kroiCopy_8u_C4MR),   F(kroiCopy_8u_AC4MR),
          F(kroiCopy_8u_C3P3R), F(kroiCopy_8u_P3C3R), F(kroiCopy_8u_C4P4R),  F(kroiCopy_8u_P4C4R),
          F(kroiSet_8u_C1R),    F(kroiSet_8u_C3CR),   F(kroiSet_8u_C4CR),    F(kroiSet_8u_C3R),
          F(kroiSet_8u_C4R),    F(kroiSet_8u_AC4R),   F(kroiSet_8u_C1MR),    F(kroiSet_8u_C3MR),
          F(kroiSet_8u_C4MR),   F(kroiSet_8u_AC4MR)};
}
template <>
std::vector<Entry<Kro16s>> Members() {
  return {
      F(kroiCopy_16s_C1R),   F(kroiCopy_16s_C3R),   F(kroiCopy_16s_C4R),    F(kroiCopy_16s_AC4R),
      F(kroiCopy_16s_C3C1R), F(kroiCopy_16s_C1C3R), F(kroiCopy_16s_C4C1R),  F(kroiCopy_16s_C1C4R),
      F(kroiCopy_16s_C3CR),  F(kroiCopy_16s_C4CR),  F(kroiCopy_16s_AC4C3R), F(kroiCopy_16s_C3AC4R),
      F(kroiCopy_16s_C1MR),  F(kroiCopy_16s_C3MR),  F(kroiCopy_16s_C4MR),   F(kroiCopy_16s_AC4MR),
      F(kroiCopy_16s_C3P3R), F(kroiCopy_16s_P3C3R), F(kroiCopy_16s_C4P4R),  F(kroiCopy_16s_P4C4R),
      F(kroiSet_16s_C1R),    F(kroiSet_16s_C3CR),   F(kroiSet_16s_C4CR),    F(kroiSet_16s_C3R),
      F(kroiSet_16s_C4R),    F(kroiSet_16s_AC4R),   F(kroiSet_16s_C1MR),    F(kroiSet_16s_C3MR),
      F(kroiSet_16s_C4MR),   F(kroiSet_16s_AC4MR)};
}
template <>
std::vector<Entry<Kro32f>> Members() {
  return {
      F(kroiCopy_32f_C1R),   F(kroiCopy_32f_C3R),   F(kroiCopy_32f_C4R),    F(kroiCopy_32f_AC4R),
      F(kroiCopy_32f_C3C1R), F(kroiCopy_32f_C1C3R), F(kroiCopy_32f_C4C1R),  F(kroiCopy_32f_C1C4R),
      F(kroiCopy_32f_C3CR),  F(kroiCopy_32f_C4CR),  F(kroiCopy_32f_AC4C3R), F(kroiCopy_32f_C3AC4R),
      F(kroiCopy_32f_C1MR),  F(kroiCopy_32f_C3MR),  F(kroiCopy_32f_C4MR),   F(kroiCopy_32f_AC4MR),
      F(kroiCopy_32f_C3P3R), F(kroiCopy_32f_P3C3R), F(kroiCopy_32f_C4P4R),  F(kroiCopy_32f_P4C4R),
      F(kroiSet_32f_C1R),    F(kroiSet_32f_C3CR),   F(kroiSet_32f_C4CR),    F(kroiSet_32f_C3R),
      F(kroiSet_32f_C4R),    F(kroiSet_32f_AC4R),   F(kroiSet_32f_C1MR),    F(kroiSet_32f_C3MR),
      F(kroiSet_32f_C4MR),   F(kroiSet_32f_AC4MR)};
}

// What a layout moves: samples per pixel of source and destination, the channel the
// pointers address, how many channels from there are written, whether a mask
// selects pixels, and planes (>0: interleaved to planes, <0: planes to interleaved).
struct Model {
  int src_ch, dst_ch, src_off, dst_off, moved;
  bool masked;
  int planes;
};

Model ModelOf(const std::string& name) {
  const bool set = name.rfind("kroiSet", 0) == 0;
  const std::string layout = name.substr(name.rfind('_') + 1);
  static const struct {
    const char* layout;
    Model m;
  } kModels[] = {
      {"C1R", {1, 1, 0, 0, 1, false, 0}},    {"C3R", {3, 3, 0, 0, 3, false, 0}},
      {"C4R", {4, 4, 0, 0, 4, false, 0}},    {"AC4R", {4, 4, 0, 0, 3, false, 0}},
      {"C3C1R", {3, 1, 1, 0, 1, false, 0}},  {"C1C3R", {1, 3, 0, 2, 1, false, 0}},
      {"C4C1R", {4, 1, 3, 0, 1, false, 0}},  {"C1C4R", {1, 4, 0, 1, 1, false, 0}},
      {"C3CR", {3, 3, 1, 1, 1, false, 0}},   {"C4CR", {4, 4, 3, 3, 1, false, 0}},
      {"AC4C3R", {4, 3, 0, 0, 3, false, 0}}, {"C3AC4R", {3, 4, 0, 0, 3, false, 0}},
      {"C1MR", {1, 1, 0, 0, 1, true, 0}},    {"C3MR", {3, 3, 0, 0, 3, true, 0}},
      {"C4MR", {4, 4, 0, 0, 4, true, 0}},    {"AC4MR", {4, 4, 0, 0, 3, true, 0}},
      {"C3P3R", {3, 1, 0, 0, 3, false, 3}},  {"C4P4R", {4, 1, 0, 0, 4, false, 4}},
      {"P3C3R", {1, 3, 0, 0, 3, false, -3}}, {"P4C4R", {1, 4, 0, 0, 4, false, -4}},
  };
  for (const auto& k : kModels) {
    if (layout == k.layout) {
      Model m = k.m;
      if (set) m.src_ch = 0;
      return m;
    }
  }
  ADD_FAILURE() << "no model for " << name;
  return {};
}

// Sample bytes, so that misaligned rows (odd steps) and float bit patterns are
// handled without typed access.
template <class T>
uint8_t* At(GuardedImage<T>& im, int channels, int x, int y, int c) {
  return reinterpret_cast<uint8_t*>(im.row(y)) +
         (static_cast<size_t>(x) * channels + c) * sizeof(T);
}
template <class T>
void RandomBytes(GuardedImage<T>& im, int channels, Rng& rng) {
  const KroiSize s = im.size();
  for (int y = 0; y < s.height; ++y) {
    rng.Fill(reinterpret_cast<uint8_t*>(im.row(y)),
             static_cast<size_t>(s.width) * channels * sizeof(T), 0, 255);
  }
}

// All images a member may touch, laid out for its model, and the arguments pointing
// at them.
template <class T>
struct Scene {
  Model m;
  GuardedImage<T> src, dst;
  std::vector<GuardedImage<T>> planes;
  GuardedImage<Kro8u> mask;
  T value[4];
  Args<T> args;

  Scene(const std::string& name, KroiSize s, int pad, Rng& rng)
      : m(ModelOf(name)),
        src(s.width, s.height, std::max(m.src_ch, 1), pad),
        dst(s.width, s.height, m.dst_ch, pad),
        planes(4, GuardedImage<T>(s.width, s.height, 1, pad)),
        mask(s.width, s.height, 1, pad) {
    RandomBytes(src, std::max(m.src_ch, 1), rng);
    RandomBytes(dst, m.dst_ch, rng);
    for (auto& p : planes) RandomBytes(p, 1, rng);
    for (int y = 0; y < s.height; ++y) {
      for (int x = 0; x < s.width; ++x) mask.at(x, y) = rng.Int(0, 2) == 0 ? 0 : rng.Int(1, 255);
    }
    rng.Fill(reinterpret_cast<uint8_t*>(value), sizeof(value), 0, 255);
    args.src = src.data() + m.src_off;
    args.src_step = src.step();
    args.dst = dst.data() + m.dst_off;
    args.dst_step = dst.step();
    for (int c = 0; c < 4; ++c) args.planes[c] = planes[c].data();
    if (m.planes < 0) args.src_step = planes[0].step();
    if (m.planes > 0) args.dst_step = planes[0].step();
    args.value = value;
    args.mask = mask.data();
    args.mask_step = mask.step();
    args.size = s;
  }

  // The destination images as the member must leave them.
  void Expect(GuardedImage<T>& out, std::vector<GuardedImage<T>>& out_planes) {
    const KroiSize s = out.size();
    for (int y = 0; y < s.height; ++y) {
      for (int x = 0; x < s.width; ++x) {
        for (int c = 0; c < m.moved; ++c) {
          if (m.planes > 0) {
            memcpy(At(out_planes[c], 1, x, y, 0), At(src, m.src_ch, x, y, c), sizeof(T));
          } else if (m.planes < 0) {
            memcpy(At(out, m.dst_ch, x, y, c), At(planes[c], 1, x, y, 0), sizeof(T));
          } else if (!m.masked || mask.at(x, y) != 0) {
            const void* from = m.src_ch == 0 ? static_cast<const void*>(&value[c])
                                             : At(src, m.src_ch, x, y, m.src_off + c);
            memcpy(At(out, m.dst_ch, x, y, m.dst_off + c), from, sizeof(T));
          }
        }
      }
    }
  }
};

// A copy of `count` samples in a heap block of exactly that size.
template <class T>
struct Tight {
  Tight(const T* p, size_t count) : bytes(count * sizeof(T)) { memcpy(bytes.data(), p, bytes.size()); }
  T* data() { return reinterpret_cast<T*>(bytes.data()); }
  std::vector<uint8_t> bytes;
};

// One row of the scene on tight copies: samples from each pointer up to the last one
// the layout touches ((width - 1) pixels plus the channels moved), w plane samples,
// w mask bytes. The destination must come out as `want`.
template <class T>
void CheckTight(const Entry<T>& e, Scene<T>& sc, GuardedImage<T>& want,
                std::vector<GuardedImage<T>>& want_planes) {
  const Model& m = sc.m;
  const size_t w = sc.args.size.width;
  const size_t src_n = m.src_ch > 0 ? (w - 1) * m.src_ch + m.moved : 1;
  const size_t dst_n = (w - 1) * m.dst_ch + m.moved;
  Tight<T> src(sc.args.src, src_n), dst(sc.args.dst, dst_n);
  Tight<Kro8u> mask(sc.args.mask, w);
  std::vector<Tight<T>> planes;
  for (int c = 0; c < 4; ++c) planes.emplace_back(sc.args.planes[c], w);
  Args<T> a = sc.args;
  a.src = src.data();
  a.dst = dst.data();
  a.mask = mask.data();
  for (int c = 0; c < 4; ++c) a.planes[c] = planes[c].data();
  ASSERT_EQ(e.call(a), kroStatusOk);
  if (m.planes > 0) {
    for (int c = 0; c < m.planes; ++c)
      EXPECT_EQ(0, memcmp(planes[c].data(), want_planes[c].row(0), w * sizeof(T))) << c;
  } else {
    EXPECT_EQ(0, memcmp(dst.data(), want.row(0) + m.dst_off, dst_n * sizeof(T)));
  }
}

template <class T>
void CheckValues(const Entry<T>& e, KroiSize size, int pad, uint64_t seed) {
  SCOPED_TRACE(testing::Message() << e.name << " " << size.width << "x" << size.height << " pad "
                                  << pad);
  Rng rng(seed);
  Scene<T> sc(e.name, size, pad, rng);
  GuardedImage<T> want = sc.dst, src_before = sc.src;
  std::vector<GuardedImage<T>> want_planes = sc.planes;
  sc.Expect(want, want_planes);
  if (size.height == 1) CheckTight(e, sc, want, want_planes);
  ASSERT_EQ(e.call(sc.args), kroStatusOk);
  EXPECT_TRUE(sc.dst.SamePixels(want));
  EXPECT_TRUE(sc.dst.IntactOutside());
  for (int c = 0; c < 4; ++c) {
    EXPECT_TRUE(sc.planes[c].SamePixels(want_planes[c])) << "plane " << c;
    EXPECT_TRUE(sc.planes[c].IntactOutside()) << "plane " << c;
  }
  EXPECT_TRUE(sc.src.SamePixels(src_before));
}

template <class T>
void CheckAllValues() {
  uint64_t seed = 1;
  for (const auto& e : Members<T>()) {
    for (int w : kro_test::EdgeWidths()) {
      // Gap-free rows (the single-row paths), rows misaligned for 16- and 32-bit
      // samples, and one row on tight buffers.
      CheckValues(e, {w, 2}, 0, seed++);
      CheckValues(e, {w, 2}, 3, seed++);
      CheckValues(e, {w, 1}, 1, seed++);
    }
  }
}

class ImageCopyTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(ImageCopyTargets);

TEST_P(ImageCopyTargets, EveryMemberMovesWhatItsLayoutSays8u) { CheckAllValues<Kro8u>(); }
TEST_P(ImageCopyTargets, EveryMemberMovesWhatItsLayoutSays16s) { CheckAllValues<Kro16s>(); }
TEST_P(ImageCopyTargets, EveryMemberMovesWhatItsLayoutSays32f) { CheckAllValues<Kro32f>(); }

// Argument checks. Each member gets every single fault and every pair of faults;
// the status must be that of the first failing check in its family's order, and a
// failed call must write nothing. Copy checks no steps (a step of 0 is legal there).
enum Kind { kNullPtr, kBadSize, kBadStep };
struct Fault {
  Kind kind;
  int which;
};

template <class T>
void Apply(const Fault& f, Args<T>& a, bool steps_checked) {
  switch (f.kind) {
    case kNullPtr:
      switch (static_cast<Ptr>(f.which)) {
        case kSrc:
          a.src = nullptr;
          break;
        case kDst:
          a.dst = nullptr;
          break;
        case kPlaneArray:
          a.plane_array = false;
          break;
        case kValue:
          a.value = nullptr;
          break;
        case kMask:
          a.mask = nullptr;
          break;
        default:
          a.planes[f.which - kPlane0] = nullptr;
          break;
      }
      break;
    case kBadSize:
      if (f.which == 0) a.size.width = 0;
      if (f.which == 1) a.size.height = 0;
      if (f.which == 2) a.size.width = -1;
      break;
    case kBadStep: {
      const int bad = steps_checked && f.which % 2 ? -1 : 0;
      (f.which == kSrcStep ? a.src_step : f.which == kDstStep ? a.dst_step : a.mask_step) = bad;
      break;
    }
  }
}

template <class T>
void CheckArguments(const Entry<T>& e) {
  const bool is_copy = e.name.rfind("kroiCopy", 0) == 0;
  // The family's order; a kind it does not check never fails.
  const std::vector<std::pair<Kind, KroStatus>> order =
      is_copy ? std::vector<std::pair<Kind, KroStatus>>{{kNullPtr, kroStatusNullPointer},
                                                        {kBadSize, kroStatusBadSize}}
              : std::vector<std::pair<Kind, KroStatus>>{{kNullPtr, kroStatusNullPointer},
                                                        {kBadSize, kroStatusBadSize},
                                                        {kBadStep, kroStatusBadStep}};
  std::vector<Fault> faults;
  for (Ptr p : e.ptrs) faults.push_back({kNullPtr, p});
  if (e.name.find("P4") != std::string::npos) faults.push_back({kNullPtr, kPlane3});
  for (int s = 0; s < 3; ++s) faults.push_back({kBadSize, s});
  for (Step s : e.steps) faults.push_back({kBadStep, s});

  Rng rng(7);
  for (size_t i = 0; i < faults.size(); ++i) {
    for (size_t j = i; j < faults.size(); ++j) {
      Scene<T> sc(e.name, {4, 3}, 2 * sizeof(T), rng);
      Apply(faults[i], sc.args, !is_copy);
      Apply(faults[j], sc.args, !is_copy);
      KroStatus want = kroStatusOk;
      for (const auto& [kind, status] : order) {
        if (faults[i].kind == kind || faults[j].kind == kind) {
          want = status;
          break;
        }
      }
      const GuardedImage<T> before = sc.dst;
      EXPECT_EQ(e.call(sc.args), want)
          << e.name << " faults " << faults[i].kind << "/" << faults[i].which << " and "
          << faults[j].kind << "/" << faults[j].which;
      if (want != kroStatusOk) EXPECT_TRUE(sc.dst.SamePixels(before)) << e.name;
    }
  }
}

TEST(ImageCopy, ArgumentChecksInFamilyOrder) {
  for (const auto& e : Members<Kro8u>()) CheckArguments(e);
  for (const auto& e : Members<Kro16s>()) CheckArguments(e);
  for (const auto& e : Members<Kro32f>()) CheckArguments(e);
}

// Copy does not check steps: a source step of 0 repeats the first row, a destination
// step of 0 leaves the last row, and negative steps walk upwards (a vertical flip).
TEST(ImageCopy, StepsAreNotChecked) {
  const Kro8u src[3][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}};
  Kro8u dst[3][4] = {};
  ASSERT_EQ(kroiCopy_8u_C1R(src[0], 0, dst[0], 4, {4, 3}), kroStatusOk);
  for (int y = 0; y < 3; ++y) EXPECT_EQ(0, memcmp(dst[y], src[0], 4));
  Kro8u one[4] = {};
  ASSERT_EQ(kroiCopy_8u_C1R(src[0], 4, one, 0, {4, 3}), kroStatusOk);
  EXPECT_EQ(0, memcmp(one, src[2], 4));
  ASSERT_EQ(kroiCopy_8u_C1R(src[2], -4, dst[0], 4, {4, 3}), kroStatusOk);
  for (int y = 0; y < 3; ++y) EXPECT_EQ(0, memcmp(dst[y], src[2 - y], 4));
  EXPECT_EQ(kroiSet_8u_C1R(0, dst[0], 0, {4, 3}), kroStatusBadStep);
}

TEST_P(ImageCopyTargets, ConvertWidensWithoutSign) {
  std::vector<int> widths = kro_test::EdgeWidths();
  widths.push_back(256);
  for (int w : widths) {
    for (int pad : {0, 5}) {
      GuardedImage<Kro8u> src(w, 3, 1, pad);
      GuardedImage<Kro16u> dst(w, 3, 1, pad == 0 ? 0 : 2);
      for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < w; ++x) src.at(x, y) = static_cast<Kro8u>(x * 7 + y);
      }
      ASSERT_EQ(kroiConvert_8u16u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size()),
                kroStatusOk);
      for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < w; ++x) ASSERT_EQ(dst.at(x, y), (x * 7 + y) & 0xFF) << x << "," << y;
      }
      EXPECT_TRUE(dst.IntactOutside());
    }
  }
}

TEST(ImageConvert, ChecksStepsLast) {
  Kro8u s[4] = {};
  Kro16u d[4] = {};
  EXPECT_EQ(kroiConvert_8u16u_C1R(nullptr, 0, d, 0, {0, 1}), kroStatusNullPointer);
  EXPECT_EQ(kroiConvert_8u16u_C1R(s, 4, nullptr, 8, {4, 1}), kroStatusNullPointer);
  EXPECT_EQ(kroiConvert_8u16u_C1R(s, 0, d, 0, {4, 0}), kroStatusBadSize);
  EXPECT_EQ(kroiConvert_8u16u_C1R(s, 4, d, 0, {4, 1}), kroStatusBadStep);
  EXPECT_EQ(kroiConvert_8u16u_C1R(s, -4, d, 8, {4, 1}), kroStatusBadStep);
}

}  // namespace
