// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion: argument order, every member against the per-pixel JFIF
// formulas written out here (exhaustively where the input space allows), guard
// bytes, and identical results for every thread count.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <thread>
#include <vector>

#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;
using kro_test::ScopedThreads;

// ---- The formulas, written from the documented equations ----

int Y(int r, int g, int b) { return (19595 * r + 38470 * g + 7471 * b + 32768) >> 16; }
int Cb(int r, int g, int b) { return (-11059 * r - 21709 * g + 32768 * b + 8421375) >> 16; }
int Cr(int r, int g, int b) { return (32768 * r - 27439 * g - 5329 * b + 8421375) >> 16; }
int Clamp(int v) { return std::clamp(v, 0, 255); }
// R, G, B of Y, Cb, Cr, before the complement of CMYK.
std::array<int, 3> Rgb(int y, int cb, int cr) {
  const int64_t dcb = cb - 128, dcr = cr - 128;
  return {Clamp(y + static_cast<int>((91881 * dcr + 32768) >> 16)),
          Clamp(y + static_cast<int>((32768 - 22554 * dcb - 46802 * dcr) >> 16)),
          Clamp(y + static_cast<int>((116130 * dcb + 32768) >> 16))};
}

// Packed words: low field bits 0-4, green from bit 5 (5 or 6 bits), high field above.
struct Packing {
  bool bgr;
  int gbits;
};
std::array<int, 3> Unpack(int w, Packing f) {
  const int low = (w & 31) << 3, g = ((w >> 5) & ((1 << f.gbits) - 1)) << (8 - f.gbits);
  const int high = ((w >> (5 + f.gbits)) & 31) << 3;
  return f.bgr ? std::array<int, 3>{high, g, low} : std::array<int, 3>{low, g, high};
}
int Pack(std::array<int, 3> rgb, Packing f) {
  const int low = (f.bgr ? rgb[2] : rgb[0]) >> 3, high = (f.bgr ? rgb[0] : rgb[2]) >> 3;
  return low | (rgb[1] >> (8 - f.gbits)) << 5 | high << (5 + f.gbits);
}
constexpr Packing kRgb555{false, 5}, kBgr555{true, 5}, kRgb565{false, 6}, kBgr565{true, 6};

// ---- One description per member ----

// A side of a conversion: `planes` images of `channels` components per pixel, each
// component `bytes` wide.
struct Side {
  int planes, channels, bytes;
  int Components() const { return planes * channels; }
};
using Pixel = std::array<int, 4>;  // unused components stay 0

struct Member {
  const char* name;
  Side src, dst;
  bool threaded;
  KroStatus (*call)(const Kro8u* const* s, int ss, Kro8u* const* d, int ds, KroiSize);
  Pixel (*expect)(const Pixel&);
};

template <class T>
const T* const* As(const Kro8u* const* p) {
  return reinterpret_cast<const T* const*>(p);
}
template <class T>
T* const* As(Kro8u* const* p) {
  return reinterpret_cast<T* const*>(p);
}

Pixel Encode(int r, int g, int b) { return {Y(r, g, b), Cb(r, g, b), Cr(r, g, b)}; }
Pixel EncodeInk(const Pixel& c) {
  Pixel p = Encode(255 - c[0], 255 - c[1], 255 - c[2]);
  p[3] = c[3];
  return p;
}
Pixel Decode(const Pixel& s, int order) {  // order 0: R, G, B; 2: B, G, R
  const auto c = Rgb(s[0], s[1], s[2]);
  return {c[order], c[1], c[2 - order]};
}
Pixel DecodeInk(const Pixel& s) {
  const auto c = Rgb(s[0], s[1], s[2]);
  return {255 - c[0], 255 - c[1], 255 - c[2], s[3]};
}

#define KRO_CALL(fn, S, D, sarg, darg)                                                  \
  [](const Kro8u* const* s, int ss, Kro8u* const* d, int ds, KroiSize r) {             \
    return fn(sarg(As<S>(s)), ss, darg(As<D>(d)), ds, r);                              \
  }
#define ONE(p) ((p) ? (p)[0] : nullptr)
#define ALL(p) (p)

const std::vector<Member>& Members() {
  static const Side p3{3, 1, 1}, p4{4, 1, 1}, c1{1, 1, 1}, c3{1, 3, 1}, c4{1, 4, 1}, w{1, 1, 2};
  static const std::vector<Member> members = {
      {"RGBToYCbCr_P3R", p3, p3, true, KRO_CALL(kroiRGBToYCbCr_JPEG_8u_P3R, Kro8u, Kro8u, ALL, ALL),
       [](const Pixel& s) { return Encode(s[0], s[1], s[2]); }},
      {"RGBToYCbCr_C3P3R", c3, p3, true, KRO_CALL(kroiRGBToYCbCr_JPEG_8u_C3P3R, Kro8u, Kro8u, ONE, ALL),
       [](const Pixel& s) { return Encode(s[0], s[1], s[2]); }},
      {"BGRToYCbCr_C3P3R", c3, p3, true, KRO_CALL(kroiBGRToYCbCr_JPEG_8u_C3P3R, Kro8u, Kro8u, ONE, ALL),
       [](const Pixel& s) { return Encode(s[2], s[1], s[0]); }},
      {"RGB555ToYCbCr", w, p3, false, KRO_CALL(kroiRGB555ToYCbCr_JPEG_16u8u_C3P3R, Kro16u, Kro8u, ONE, ALL),
       [](const Pixel& s) { auto c = Unpack(s[0], kRgb555); return Encode(c[0], c[1], c[2]); }},
      {"BGR555ToYCbCr", w, p3, false, KRO_CALL(kroiBGR555ToYCbCr_JPEG_16u8u_C3P3R, Kro16u, Kro8u, ONE, ALL),
       [](const Pixel& s) { auto c = Unpack(s[0], kBgr555); return Encode(c[0], c[1], c[2]); }},
      {"RGB565ToYCbCr", w, p3, false, KRO_CALL(kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R, Kro16u, Kro8u, ONE, ALL),
       [](const Pixel& s) { auto c = Unpack(s[0], kRgb565); return Encode(c[0], c[1], c[2]); }},
      {"BGR565ToYCbCr", w, p3, false, KRO_CALL(kroiBGR565ToYCbCr_JPEG_16u8u_C3P3R, Kro16u, Kro8u, ONE, ALL),
       [](const Pixel& s) { auto c = Unpack(s[0], kBgr565); return Encode(c[0], c[1], c[2]); }},
      {"CMYKToYCCK_P4R", p4, p4, true, KRO_CALL(kroiCMYKToYCCK_JPEG_8u_P4R, Kro8u, Kro8u, ALL, ALL), EncodeInk},
      {"CMYKToYCCK_C4P4R", c4, p4, true, KRO_CALL(kroiCMYKToYCCK_JPEG_8u_C4P4R, Kro8u, Kro8u, ONE, ALL),
       EncodeInk},
      {"RGBToY_P3C1R", p3, c1, true, KRO_CALL(kroiRGBToY_JPEG_8u_P3C1R, Kro8u, Kro8u, ALL, ONE),
       [](const Pixel& s) { return Pixel{Y(s[0], s[1], s[2])}; }},
      {"RGBToY_C3C1R", c3, c1, true, KRO_CALL(kroiRGBToY_JPEG_8u_C3C1R, Kro8u, Kro8u, ONE, ONE),
       [](const Pixel& s) { return Pixel{Y(s[0], s[1], s[2])}; }},
      {"BGRToY_C3C1R", c3, c1, true, KRO_CALL(kroiBGRToY_JPEG_8u_C3C1R, Kro8u, Kro8u, ONE, ONE),
       [](const Pixel& s) { return Pixel{Y(s[2], s[1], s[0])}; }},
      {"YCbCrToRGB_P3C3R", p3, c3, true, KRO_CALL(kroiYCbCrToRGB_JPEG_8u_P3C3R, Kro8u, Kro8u, ALL, ONE),
       [](const Pixel& s) { return Decode(s, 0); }},
      {"YCbCrToBGR_P3C3R", p3, c3, true, KRO_CALL(kroiYCbCrToBGR_JPEG_8u_P3C3R, Kro8u, Kro8u, ALL, ONE),
       [](const Pixel& s) { return Decode(s, 2); }},
      {"YCbCrToRGB_P3R", p3, p3, true, KRO_CALL(kroiYCbCrToRGB_JPEG_8u_P3R, Kro8u, Kro8u, ALL, ALL),
       [](const Pixel& s) { return Decode(s, 0); }},
      {"YCbCrToRGB555", p3, w, false, KRO_CALL(kroiYCbCrToRGB555_JPEG_8u16u_P3C3R, Kro8u, Kro16u, ALL, ONE),
       [](const Pixel& s) { return Pixel{Pack(Rgb(s[0], s[1], s[2]), kRgb555)}; }},
      {"YCbCrToBGR555", p3, w, false, KRO_CALL(kroiYCbCrToBGR555_JPEG_8u16u_P3C3R, Kro8u, Kro16u, ALL, ONE),
       [](const Pixel& s) { return Pixel{Pack(Rgb(s[0], s[1], s[2]), kBgr555)}; }},
      {"YCbCrToRGB565", p3, w, false, KRO_CALL(kroiYCbCrToRGB565_JPEG_8u16u_P3C3R, Kro8u, Kro16u, ALL, ONE),
       [](const Pixel& s) { return Pixel{Pack(Rgb(s[0], s[1], s[2]), kRgb565)}; }},
      {"YCbCrToBGR565", p3, w, false, KRO_CALL(kroiYCbCrToBGR565_JPEG_8u16u_P3C3R, Kro8u, Kro16u, ALL, ONE),
       [](const Pixel& s) { return Pixel{Pack(Rgb(s[0], s[1], s[2]), kBgr565)}; }},
      {"YCCKToCMYK_P4R", p4, p4, true, KRO_CALL(kroiYCCKToCMYK_JPEG_8u_P4R, Kro8u, Kro8u, ALL, ALL), DecodeInk},
      {"YCCKToCMYK_P4C4R", p4, c4, true, KRO_CALL(kroiYCCKToCMYK_JPEG_8u_P4C4R, Kro8u, Kro8u, ALL, ONE),
       DecodeInk},
  };
  return members;
}

// The images of one side, with guard bytes around every plane.
struct Planes {
  Side side;
  std::vector<GuardedImage<uint8_t>> img;
  Planes(Side s, KroiSize size, int pad) : side(s) {
    for (int p = 0; p < s.planes; ++p) img.emplace_back(size.width, size.height, s.channels * s.bytes, pad);
  }
  int step() const { return img[0].step(); }
  std::array<const Kro8u*, 4> In() const {
    std::array<const Kro8u*, 4> a{};
    for (size_t p = 0; p < img.size(); ++p) a[p] = img[p].data();
    return a;
  }
  std::array<Kro8u*, 4> Out() {
    std::array<Kro8u*, 4> a{};
    for (size_t p = 0; p < img.size(); ++p) a[p] = img[p].data();
    return a;
  }
  int Get(int x, int y, int c) const {
    const uint8_t* b = img[c / side.channels].row(y) + (x * side.channels + c % side.channels) * side.bytes;
    return side.bytes == 1 ? b[0] : b[0] | b[1] << 8;
  }
  void Set(int x, int y, int c, int v) {
    uint8_t* b = img[c / side.channels].row(y) + (x * side.channels + c % side.channels) * side.bytes;
    b[0] = static_cast<uint8_t>(v);
    if (side.bytes == 2) b[1] = static_cast<uint8_t>(v >> 8);
  }
  Pixel At(int x, int y) const {
    Pixel p{};
    for (int c = 0; c < side.Components(); ++c) p[c] = Get(x, y, c);
    return p;
  }
  bool Intact() const {
    return std::all_of(img.begin(), img.end(), [](const auto& i) { return i.IntactOutside(); });
  }
};

KroStatus Convert(const Member& m, const Planes& src, Planes& dst, KroiSize size) {
  const auto in = src.In();
  const auto out = dst.Out();
  return m.call(in.data(), src.step(), out.data(), dst.step(), size);
}

// Converts random pixels and checks every output pixel (unless !verify) and the
// guard bytes.
Planes CheckMember(const Member& m, KroiSize size, uint64_t seed, int pad = 3, bool verify = true) {
  Planes src(m.src, size, pad), dst(m.dst, size, pad + 2);
  Rng rng(seed);
  for (auto& i : src.img) i.FillRandom(rng, 0, 255);
  EXPECT_EQ(Convert(m, src, dst, size), kroStatusOk) << m.name;
  for (int y = 0; y < size.height && verify; ++y)
    for (int x = 0; x < size.width; ++x)
      if (dst.At(x, y) != m.expect(src.At(x, y))) {
        ADD_FAILURE() << m.name << " at " << x << "," << y;
        return dst;
      }
  EXPECT_TRUE(dst.Intact()) << m.name;
  return dst;
}

const Member& Find(const char* name) {
  for (const Member& m : Members())
    if (strcmp(m.name, name) == 0) return m;
  abort();
}

TEST(PlaneColour, ArgumentChecksInOrder) {
  for (const Member& m : Members()) {
    Planes src(m.src, {4, 2}, 0), dst(m.dst, {4, 2}, 0);
    auto in = src.In();
    auto out = dst.Out();
    const int ss = src.step(), ds = dst.step();
    auto call = [&](const Kro8u* const* s, int s_step, Kro8u* const* d, int d_step, KroiSize r) {
      return m.call(s, s_step, d, d_step, r);
    };
    SCOPED_TRACE(m.name);
    EXPECT_EQ(call(nullptr, 0, out.data(), ds, {0, 2}), kroStatusNullPointer);
    EXPECT_EQ(call(in.data(), 0, nullptr, ds, {0, 2}), kroStatusNullPointer);
    for (int p = 0; p < m.src.planes; ++p) {
      auto bad = in;
      bad[p] = nullptr;
      EXPECT_EQ(call(bad.data(), 0, out.data(), 0, {0, 0}), kroStatusNullPointer) << p;
    }
    for (int p = 0; p < m.dst.planes; ++p) {
      auto bad = out;
      bad[p] = nullptr;
      EXPECT_EQ(call(in.data(), 0, bad.data(), 0, {0, 0}), kroStatusNullPointer) << p;
    }
    EXPECT_EQ(call(in.data(), 0, out.data(), ds, {0, 0}), kroStatusBadStep);
    EXPECT_EQ(call(in.data(), ss, out.data(), -1, {4, 0}), kroStatusBadStep);
    EXPECT_EQ(call(in.data(), ss, out.data(), ds, {0, 2}), kroStatusBadSize);
    EXPECT_EQ(call(in.data(), ss, out.data(), ds, {4, -1}), kroStatusBadSize);
    EXPECT_TRUE(dst.Intact());
    for (auto& i : dst.img)
      for (int y = 0; y < 2; ++y)
        for (int b = 0; b < 4 * m.dst.channels * m.dst.bytes; ++b) ASSERT_EQ(i.row(y)[b], kro_test::kGuard);
  }
}

TEST(PlaneColour, HandComputedPixels) {
  auto convert = [](const char* name, Pixel in) {
    const Member& m = Find(name);
    Planes src(m.src, {1, 1}, 0), dst(m.dst, {1, 1}, 0);
    for (int c = 0; c < m.src.Components(); ++c) src.Set(0, 0, c, in[c]);
    EXPECT_EQ(Convert(m, src, dst, {1, 1}), kroStatusOk);
    return dst.At(0, 0);
  };
  EXPECT_EQ(convert("RGBToYCbCr_C3P3R", {255, 255, 255}), (Pixel{255, 128, 128}));
  EXPECT_EQ(convert("RGBToYCbCr_C3P3R", {0, 0, 0}), (Pixel{0, 128, 128}));
  EXPECT_EQ(convert("RGBToYCbCr_C3P3R", {255, 0, 0}), (Pixel{76, 85, 255}));
  EXPECT_EQ(convert("RGBToYCbCr_C3P3R", {0, 0, 255}), (Pixel{29, 255, 107}));
  EXPECT_EQ(convert("YCbCrToRGB_P3C3R", {255, 128, 128}), (Pixel{255, 255, 255}));
  EXPECT_EQ(convert("YCbCrToRGB_P3C3R", {100, 255, 0}), (Pixel{0, 148, 255}));
  EXPECT_EQ(convert("YCbCrToRGB_P3C3R", {0, 128, 0}), (Pixel{0, 91, 0}));
  EXPECT_EQ(convert("RGB555ToYCbCr", {0x7FFF}), (Pixel{248, 128, 128}));
  EXPECT_EQ(convert("RGB565ToYCbCr", {0xFFFF}), (Pixel{250, 127, 126}));  // 248, 252, 248
  EXPECT_EQ(convert("YCbCrToRGB565", {255, 128, 128}), (Pixel{0xFFFF}));
  EXPECT_EQ(convert("YCbCrToRGB555", {255, 128, 128}), (Pixel{0x7FFF}));
  EXPECT_EQ(convert("YCbCrToBGR565", {76, 85, 255}), (Pixel{0xF800}));  // pure red
  EXPECT_EQ(convert("CMYKToYCCK_C4P4R", {0, 0, 0, 77}), (Pixel{255, 128, 128, 77}));
  EXPECT_EQ(convert("YCCKToCMYK_P4C4R", {255, 128, 128, 77}), (Pixel{0, 0, 0, 77}));
}

// All 2^24 inputs of the RGB -> YCbCr and YCbCr -> RGB arithmetic, through the
// interleaved members (the others share the per-pixel code and are checked below).
TEST(PlaneColour, EveryThreeByteInput) {
  constexpr int kSide = 4096, kN = kSide * kSide;
  std::vector<Kro8u> packed(3 * kN), a(kN), b(kN), c(kN);
  for (int i = 0; i < kN; ++i) {
    packed[3 * i] = static_cast<Kro8u>(i >> 16);
    packed[3 * i + 1] = static_cast<Kro8u>(i >> 8);
    packed[3 * i + 2] = static_cast<Kro8u>(i);
  }
  Kro8u* const planes[3] = {a.data(), b.data(), c.data()};
  ASSERT_EQ(kroiRGBToYCbCr_JPEG_8u_C3P3R(packed.data(), 3 * kSide, planes, kSide, {kSide, kSide}), kroStatusOk);
  int64_t wrong = 0;
  for (int i = 0; i < kN; ++i) {
    const int r = i >> 16, g = (i >> 8) & 255, bl = i & 255;
    wrong += a[i] != Y(r, g, bl) || b[i] != Cb(r, g, bl) || c[i] != Cr(r, g, bl);
  }
  EXPECT_EQ(wrong, 0);

  for (int i = 0; i < kN; ++i) {
    a[i] = static_cast<Kro8u>(i >> 16);
    b[i] = static_cast<Kro8u>(i >> 8);
    c[i] = static_cast<Kro8u>(i);
  }
  const Kro8u* const ycc[3] = {a.data(), b.data(), c.data()};
  ASSERT_EQ(kroiYCbCrToRGB_JPEG_8u_P3C3R(ycc, kSide, packed.data(), 3 * kSide, {kSide, kSide}), kroStatusOk);
  for (int i = 0; i < kN; ++i) {
    const auto rgb = Rgb(a[i], b[i], c[i]);
    wrong += packed[3 * i] != rgb[0] || packed[3 * i + 1] != rgb[1] || packed[3 * i + 2] != rgb[2];
  }
  EXPECT_EQ(wrong, 0);
}

TEST(PlaneColour, EveryPackedWord) {
  for (const char* name : {"RGB555ToYCbCr", "BGR555ToYCbCr", "RGB565ToYCbCr", "BGR565ToYCbCr"}) {
    const Member& m = Find(name);
    Planes src(m.src, {256, 256}, 1), dst(m.dst, {256, 256}, 2);
    for (int v = 0; v < 65536; ++v) src.Set(v & 255, v >> 8, 0, v);
    ASSERT_EQ(Convert(m, src, dst, {256, 256}), kroStatusOk);
    for (int v = 0; v < 65536; ++v) ASSERT_EQ(dst.At(v & 255, v >> 8), m.expect({v})) << name << " " << v;
    EXPECT_TRUE(dst.Intact());
  }
}

TEST(PlaneColour, RandomRegionsOfEveryMember) {
  uint64_t seed = 1;
  for (const Member& m : Members())
    for (KroiSize size : {KroiSize{1, 1}, KroiSize{1, 7}, KroiSize{37, 1}, KroiSize{67, 29}})
      CheckMember(m, size, seed++, static_cast<int>(seed % 5));
}

// The row-parallel members: regions around the threshold, one row and one column,
// odd steps, thread counts 1..8; the formula check makes every count agree.
TEST(PlaneColour, SameResultForEveryThreadCount) {
  for (const Member& m : Members()) {
    if (!m.threaded) continue;
    for (KroiSize size : {KroiSize{128, 64}, KroiSize{8193, 1}, KroiSize{1, 9000}, KroiSize{91, 97}}) {
      const Planes serial = [&] {
        ScopedThreads one(1);
        return CheckMember(m, size, 7, 1);
      }();
      for (int threads = 2; threads <= 8; ++threads) {
        ScopedThreads scoped(threads);
        const Planes parallel = CheckMember(m, size, 7, 1, false);
        for (int p = 0; p < m.dst.planes; ++p)
          ASSERT_TRUE(parallel.img[p].SamePixels(serial.img[p])) << m.name << " threads " << threads;
      }
    }
  }
}

TEST(PlaneColour, ConcurrentCallers) {
  ScopedThreads scoped(2);
  std::vector<std::thread> callers;
  for (int t = 0; t < 4; ++t)
    callers.emplace_back([t] {
      const char* names[] = {"RGBToYCbCr_P3R", "YCbCrToRGB_P3C3R", "CMYKToYCCK_C4P4R", "RGBToY_C3C1R"};
      for (int rep = 0; rep < 3; ++rep) CheckMember(Find(names[t]), {120, 90}, t * 10 + rep);
    });
  for (auto& c : callers) c.join();
}

}  // namespace
